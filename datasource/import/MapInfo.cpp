// MapInfo: the coordinate system of a .tab file through GDAL's MapInfo
// driver, and the MIF "CoordSys" clause through OGR's MapInfo tables of
// projection and datum numbers.
#include <velmora/datasource/import/miParser.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/refsys/CoordSys.h>

#include <gdal_priv.h>
#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

#include <memory>

namespace Velmora::DB {

using EX::CVelmoraException;

namespace {

// The buffer the clause is written in.
constexpr int kClauseCapacity = 1023;
// MapInfo's numbers: the geographic "projection" and the WGS 84 datum, and
// the numbers OGR writes for a datum given by its own parameters, which the
// clause does not carry.
constexpr int kLongLatProjection = 1;
constexpr int kWgs84Datum = 104;
constexpr int kCustomDatums[] = {999, 9999};
constexpr char kWgs84Code[] = "WGS84";

struct DatasetCloser
{
  void operator()(GDALDataset * d) const { GDALClose(d); }
};

// ".map" and ".dat" belong to the table of the same name.
CString TableOf(CString const & file)
{
  if (file.endsWith(QLatin1String(".tab"), Qt::CaseInsensitive))
    return file;
  QString const stem = file.left(file.size() - 4);
  for (char const * ending : {".tab", ".TAB"})
    if (QFileInfo(stem + QLatin1String(ending)).isFile())
      return CString(stem + QLatin1String(ending));
  return file;
}

} // namespace

CS::CCoordSys * miParser::ParseTab(CString const & file)
{
  GDALAllRegister();
  char const * const drivers[] = {"MapInfo File", nullptr};
  std::unique_ptr<GDALDataset, DatasetCloser> table(GDALDataset::Open(
    TableOf(file).toStdString().c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, drivers, nullptr, nullptr));
  if (!table || table->GetLayerCount() < 1)
    throw CVelmoraException(CVelmoraException::kImportFailed, CString("miParser::miParser"),
                            CString("Failed opening TAB/MAP file"));
  OGRSpatialReference const * srs = table->GetLayer(0)->GetSpatialRef();
  if (!srs || !(srs->IsProjected() || srs->IsGeographic()))
    return nullptr;
  return FromSpatialReference(*srs);
}

CString miParser::ToMIF(CS::CCoordSys const & coordSys)
{
  CheckSource("miParser::ToMIF");
  OGRSpatialReference srs;
  BuildSpatialReference(srs, coordSys, false);
  char * text = nullptr;
  if (srs.exportToMICoordSys(&text) != OGRERR_NONE || !text) {
    CPLFree(text);
    return CString();
  }
  // OGR writes: Earth Projection p, d[, "unit"][, values...]
  QString clause = QString::fromUtf8(text);
  CPLFree(text);
  clause.remove(QRegularExpression(QStringLiteral("\\s*(Bounds|Affine).*$")));
  QStringList parts = clause.mid(clause.indexOf(QLatin1String("Projection")) + 10).split(QLatin1Char(','));
  for (QString & part : parts)
    part = part.trimmed();
  bool ok1 = false, ok2 = false;
  int const projection = parts.value(0).toInt(&ok1);
  int datum = parts.value(1).toInt(&ok2);
  if (!ok1 || !ok2)
    return CString();
  CS::CHorizontalDatum const & d = coordSys.GetHorizontalDatum();
  if (d.GetIdentifiers().Exists(CString("VM")) && d.GetIssuerCode(CString("VM")) == CString(kWgs84Code))
    datum = kWgs84Datum;
  for (int custom : kCustomDatums)
    if (datum == custom)
      return CString();
  char buffer[kClauseCapacity + 1];
  int used = std::snprintf(buffer, sizeof buffer, "CoordSys Earth Projection %d,%d", projection, datum);
  if (projection == kLongLatProjection) {
    std::snprintf(buffer + used, sizeof buffer - used, "\nUnits \"degree\"");
    return CString(buffer);
  }
  QString unit = parts.value(2);
  unit.remove(QLatin1Char('"'));
  used += std::snprintf(buffer + used, sizeof buffer - used, "\nUnits \"%s\"", unit.toStdString().c_str());
  for (int i = 3; i < parts.size() && used < kClauseCapacity; ++i)
    used += std::snprintf(buffer + used, sizeof buffer - used, ", %lf", parts[i].toDouble());
  if (used >= kClauseCapacity)
    return CString();
  return CString(buffer);
}

CS::CCoordSys * miParser::FromMIF(CString const & clause)
{
  CheckSource("miParser::FromMIF");
  QStringList const tokens = clause.split(QRegularExpression(QStringLiteral("[( ,)\\s]+")), Qt::SkipEmptyParts);
  if (tokens.size() < 5 || tokens[0] != QLatin1String("CoordSys") || tokens[1] != QLatin1String("Earth") ||
      tokens[2] != QLatin1String("Projection"))
    throw CVelmoraException(CVelmoraException::kImportFailed, CString("miParser::FromMIF"),
                            CString("Failed parsing MIF CoordSys clause"));
  // Back to the form OGR reads: numbers and the quoted unit in one list.
  QStringList values = tokens.mid(3);
  values.removeAll(QStringLiteral("Units"));
  if (values.value(0).toInt() == kLongLatProjection)
    values = values.mid(0, 2);
  QString const text = QStringLiteral("Earth Projection ") + values.join(QLatin1String(", "));
  OGRSpatialReference srs;
  if (srs.importFromMICoordSys(text.toStdString().c_str()) != OGRERR_NONE || !(srs.IsProjected() || srs.IsGeographic()))
    throw CVelmoraException(CVelmoraException::kImportFailed, CString("miParser::FromMIF"),
                            CString("Failed parsing MIF CoordSys clause"));
  return MatchStored(FromSpatialReference(srs));
}

} // namespace Velmora::DB
