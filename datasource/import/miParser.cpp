// Reading: OGR parses the text into a node tree, walked here into store
// objects, reusing stored ones wherever an authority code, the datum table
// or a name finds them. Writing: WKT1 text composed from the objects, which
// OGR reads and writes back in its own form.
#include <velmora/datasource/import/miParser.h>

#include <velmora/datasource/import/ImportObjects_p.h>
#include <velmora/datasource/import/ImportTables_p.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/Units.h>
#include <velmora/refsys/CoordSys.h>

#include <ogr_spatialref.h>

#include <QFile>
#include <QFileInfo>

#include <cctype>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>

namespace Velmora::DB {

using EX::CVelmoraException;
using PJ = CS::PJ::CProjection;

using namespace ImportTables;

namespace {

constexpr char kNoAccess[] = "No access to datasource";
constexpr int kSlack = 5; // zero bytes past the text, as the parser may look ahead

bool EndsWithTabName(CString const & file)
{
  if (file.size() <= 4)
    return false;
  for (char const * ending : {".tab", ".map", ".dat"})
    if (file.endsWith(QLatin1String(ending), Qt::CaseInsensitive))
      return true;
  return false;
}

[[noreturn]] void Fail(CVelmoraException::Code code, char const * location, char const * text)
{
  throw CVelmoraException(code, CString(location), CString(text));
}

// Older writers misspell the ellipsoid's keyword; OGR knows only one spelling.
void MendKeywords(std::string & text)
{
  for (std::size_t at = text.find("SPHERIOD"); at != std::string::npos; at = text.find("SPHERIOD", at))
    text.replace(at, 8, "SPHEROID");
}

// Past the bracket that closes the first one opened at `at`, quoted text
// skipped; the end when none closes.
char const * DefinitionEnd(char const * at, char const * end)
{
  int depth = 0;
  bool quoted = false;
  for (char const * p = at; p < end; ++p) {
    if (*p == '"')
      quoted = !quoted;
    else if (quoted)
      continue;
    else if (*p == '[' || *p == '(')
      ++depth;
    else if ((*p == ']' || *p == ')') && --depth == 0)
      return p + 1;
  }
  return end;
}

} // namespace

miParser::miParser(CDataSource * source) : m_source(source)
{
  int count = 0;
  ImportTables::AliasRow const * rows = ImportTables::AliasRows(count);
  for (int i = 0; i < count; ++i)
    for (char const * name : rows[i].names)
      m_aliases.push_back({CString(name), rows[i].type, 0, 0, 0});
  // The oblique family: the suffix chooses the flags. Natural-origin and
  // centre forms are the azimuth type; two-point forms the two-point type.
  for (char const * base : {"Oblique_Mercator", "Hotine_Oblique_Mercator", "Rectified_Skew_Orthomorphic"}) {
    bool const hotine = !std::strcmp(base, "Hotine_Oblique_Mercator");
    struct Suffix
    {
      char const * text;
      long centre, gamma;
    };
    std::vector<Suffix> suffixes = {{"_Azimuth_Center", 1, 0}, {"_Azimuth_Natural_Origin", 0, 0}};
    if (hotine) {
      suffixes.push_back({"_Azimuth_Center_Gamma", 1, 1});
      suffixes.push_back({"_Azimuth_Natural_Origin_Gamma", 0, 1});
    }
    for (Suffix const & s : suffixes)
      for (long isGamma : {0L, 1L})
        m_aliases.push_back({CString(std::string(base) + s.text + (isGamma ? "_Azimuth_Is_Gamma" : "")),
                             PJ::kObliqueMercatorAzimuth, s.centre, isGamma, s.gamma});
    m_aliases.push_back({CString(std::string(base) + "_Two_Point_Natural_Origin"), PJ::kObliqueMercatorTwoPoints, 0,
                         0, 0});
    if (hotine)
      m_aliases.push_back({CString(std::string(base) + "_Two_Point_Natural_Origin_Gamma"),
                           PJ::kObliqueMercatorTwoPoints, 0, 0, 1});
  }
}

miParser::~miParser() = default;

void miParser::CheckSource(char const * location) const
{
  if (!m_source)
    Fail(CVelmoraException::kDataSourceNotLoaded, location, kNoAccess);
}

int miParser::ProjectionTypeOf(CString const & name, long * centerFlag, long * azimuthIsGamma, long * useGamma) const
{
  for (Alias const & a : m_aliases)
    if (a.name == name) {
      if (centerFlag)
        *centerFlag = a.centerFlag;
      if (azimuthIsGamma)
        *azimuthIsGamma = a.azimuthIsGamma;
      if (useGamma)
        *useGamma = a.useGamma;
      return a.type;
    }
  return -1;
}

CString miParser::ProjectionNameOf(int type, long centerFlag, long azimuthIsGamma, long useGamma) const
{
  for (Alias const & a : m_aliases) {
    if (a.type != type)
      continue;
    bool const oblique = type == PJ::kObliqueMercatorAzimuth || type == PJ::kObliqueMercatorTwoPoints;
    if (!oblique || (a.name.startsWith(QLatin1String("Hotine_")) && a.centerFlag == centerFlag &&
                     a.azimuthIsGamma == azimuthIsGamma && a.useGamma == useGamma))
      return a.name;
  }
  return CString();
}

CString miParser::DatumCodeFromName(CString const & name) { return ImportTables::DatumCodeFromName(name); }
CString miParser::DatumCodeFromShift(double const values[7]) { return ImportTables::DatumCodeFromShift(values); }

// Reading --------------------------------------------------------------------

CS::CCoordSys * miParser::fromWKT(CString const & file)
{
  CheckSource("miParser::fromWKT");
  if (!QFileInfo(file).isFile())
    Fail(CVelmoraException::kFileNotFound, "miParser::miParser", "Failed to find file for Import");
  if (EndsWithTabName(file)) {
    CS::CCoordSys * built = ParseTab(file);
    if (!built)
      Fail(CVelmoraException::kImportFailed, "miParser::fromWKT", "Failed parsing TAB/MAP file");
    return MatchStored(built);
  }
  CS::CCoordSys * built = ParseWKT(file);
  if (!built)
    Fail(CVelmoraException::kImportFailed, "miParser::fromWKT", "Failed parsing WKT/PRJ file");
  return MatchStored(built);
}

CS::CCoordSys * miParser::ParseWKT(CString const & file)
{
  CheckSource("miParser::ParseWKT");
  QFile in(file);
  if (!in.open(QIODevice::ReadOnly))
    Fail(CVelmoraException::kFileNotFound, "miParser::miParser", "Failed to find file for Import");
  std::string text = in.readAll().toStdString();
  MendKeywords(text);
  text.append(kSlack, '\0');
  char const * const end = text.c_str() + std::strlen(text.c_str());
  char const * at = text.c_str();
  std::unique_ptr<CS::CCoordSys> first;
  while (at < end) {
    while (at < end && std::isspace(static_cast<unsigned char>(*at)))
      ++at;
    if (at >= end)
      break;
    // One definition: up to the bracket that closes its first one.
    char const * next = DefinitionEnd(at, end);
    std::string const one(at, next);
    OGRSpatialReference srs;
    if (srs.importFromWkt(one.c_str()) == OGRERR_NONE && (srs.IsProjected() || srs.IsGeographic())) {
      std::unique_ptr<CS::CCoordSys> built(FromSpatialReference(srs));
      if (!first)
        first = std::move(built);
      at = next;
      continue;
    }
    // Damaged text: go on at the next definition, if any.
    char const * projcs = std::strstr(at + 1, "PROJCS");
    char const * geogcs = std::strstr(at + 1, "GEOGCS");
    char const * resume = projcs && (!geogcs || projcs < geogcs) ? projcs : geogcs;
    if (!resume)
      Fail(CVelmoraException::kImportFailed, "miParser::ParseWKT", "Error parsing file");
    // A GEOGCS inside a damaged PROJCS is skipped with it.
    at = resume;
  }
  return first.release();
}

CS::CCoordSys * miParser::FromString(CString const & text)
{
  CheckSource("miParser::FromString");
  if (text.isEmpty())
    Fail(CVelmoraException::kImportFailed, "miParser::miParser", "Failed to find string for Import");
  std::string copy = text.toStdString();
  MendKeywords(copy);
  copy.append(kSlack, '\0');
  OGRSpatialReference srs;
  char const * at = copy.c_str();
  if (srs.importFromWkt(&at) != OGRERR_NONE || !(srs.IsProjected() || srs.IsGeographic()))
    Fail(CVelmoraException::kImportFailed, "miParser::FromString", "Failed parsing WKT/PRJ String");
  char const * authority = srs.GetAuthorityName(nullptr);
  CString const epsg = authority && !std::strcmp(authority, "EPSG") ? CString(srs.GetAuthorityCode(nullptr)) : CString();
  return MatchStored(FromSpatialReference(srs), epsg);
}

CS::CCoordSys * miParser::FromSpatialReference(OGRSpatialReference const & srs)
{
  if (srs.IsProjected())
    return BuildProjectedSystem(srs);
  return BuildGeodeticSystem(srs);
}

CS::CCoordSys * miParser::MatchStored(CS::CCoordSys * built, CString const & epsg)
{
  std::unique_ptr<CS::CCoordSys> held(built);
  if (!CDataSource::GetWKTForceMatch())
    return held.release();
  // The built system itself is stored under the "WKT" issuer: a stored
  // equivalent is any other body.
  CString const own = held->GetIdentifiers().Exists(CString("VM")) ? held->GetIssuerCode(CString("VM")) : CString();
  // EPSG keeps some systems twice under two codes: the one the text names wins.
  auto const stored = [&](CS::CCoordSys const & system) -> CS::CCoordSys * {
    CString chosen;
    for (CSerializableDataDB * body : m_source->Equivalent(system)) {
      CIdentifierCollection const & ids = body->GetIdentifiers();
      CString const vm = ids.Exists(CString("VM")) ? ids.GetItem(CString("VM")) : CString();
      if (vm.isEmpty() || vm == own)
        continue;
      bool const named = !epsg.isEmpty() && ids.Exists(CString("EPSG")) && ids.GetItem(CString("EPSG")) == epsg;
      if (chosen.isEmpty() || named)
        chosen = vm;
      if (named)
        break;
    }
    if (chosen.isEmpty())
      return nullptr;
    if (system.GetType() == CS::kProjectedCoordSys)
      return m_source->GetProjectedCoordSys(CString("VM"), chosen);
    return m_source->GetGeodeticCoordSys(CString("VM"), chosen);
  };
  if (CS::CCoordSys * found = stored(*held))
    return found;
  // A zone read as UTM may be stored as the transverse Mercator it is.
  auto const * projected = dynamic_cast<CS::CProjectedCoordSys const *>(held.get());
  if (!projected || projected->GetProjection().GetType() != PJ::kUniversalTransverseMercator)
    return held.release();
  CParameterCollection const & utm = projected->GetProjection().GetParameters();
  long const zone = utm.GetLong(CString("zone"));
  bool const north = utm.GetLong(CString("is_north")) != 0;
  std::unique_ptr<ML::CAngularUnit> degree(m_source->GetAngularUnitNonThrow(CString("EPSG"), CString(kDegreeCode)));
  std::unique_ptr<ML::CLinearUnit> metre(m_source->GetLinearUnitNonThrow(CString("EPSG"), CString(kMetreCode)));
  if (!degree || !metre)
    return held.release();
  CS::CProjectedCoordSys alternative(*projected);
  std::unique_ptr<PJ> tm(CS::PJ::CProjectionFactory::CreateProjection(
    PJ::kTransverseMercator, const_cast<CS::CHorizontalDatum *>(&projected->GetHorizontalDatum())));
  CParameterCollection & p = tm->GetParameters();
  auto const angle = [&](char const * name, double value) { ImportObjects::SetAngle(p, name, value, *degree); };
  auto const length = [&](char const * name, double value) { ImportObjects::SetLength(p, name, value, *metre); };
  angle("central_meridian", zone * kUtmZoneWidth - kUtmZoneOffset);
  angle("latitude_of_origin", 0.0);
  p.SetDouble(CString("scale_factor"), kUtmScale);
  length("false_easting", kUtmFalseEasting);
  length("false_northing", north ? 0.0 : kUtmSouthFalseNorthing);
  alternative.SetProjection(*tm);
  if (CS::CCoordSys * found = stored(alternative))
    return found;
  return held.release();
}

CS::CGeodeticCoordSys * miParser::BuildGeodeticSystem(OGRSpatialReference const & srs)
{
  CheckSource("miParser::BuildGeodeticSystem");
  try {
    ImportObjects objects(*m_source, *this);
    CS::CGeodeticCoordSys * built = objects.Geodetic(srs);
    return built;
  } catch (CVelmoraException const &) {
    throw;
  } catch (std::exception const & e) {
    Fail(CVelmoraException::kImportFailed, "miParser::BuildGeodeticSystem", e.what());
  }
}

CS::CProjectedCoordSys * miParser::BuildProjectedSystem(OGRSpatialReference const & srs)
{
  CheckSource("miParser::BuildProjectedSystem");
  ImportObjects objects(*m_source, *this);
  CS::CProjectedCoordSys * built = objects.Projected(srs);
  return built;
}

CS::PJ::CProjection * miParser::BuildProjection(OGRSpatialReference const & srs, CS::CHorizontalDatum & datum,
                                                 ML::CLinearUnit const & linear)
{
  CheckSource("miParser::BuildProjection");
  ImportObjects objects(*m_source, *this);
  CS::PJ::CProjection * built = objects.Projection(srs, datum, linear);
  return built;
}

CString miParser::MatchName(long type, CString const & foreign, CS::CEllipsoid const * ellipsoid,
                            CS::CPrimeMeridian const * meridian) const
{
  return ImportObjects::MatchName(*m_source, type, foreign, ellipsoid, meridian);
}

// Writing --------------------------------------------------------------------

void miParser::BuildSpatialReference(OGRSpatialReference & srs, CS::CCoordSys const & coordSys, bool wantTables)
{
  CheckSource("miParser::BuildSpatialReference");
  std::string const wkt = ImportObjects::ComposeWkt(*m_source, coordSys, *this);
  if (wkt.empty())
    Fail(CVelmoraException::kExportFailed, "miParser::BuildSpatialReference",
         "Can't convert this type of Coordinate System to WKT");
  srs.Clear();
  if (srs.importFromWkt(wkt.c_str()) != OGRERR_NONE)
    throw CVelmoraException(CVelmoraException::kExportFailed, CString("miParser::BuildSpatialReference"), CString("OGR does not read ") + CString(wkt));
  if (wantTables)
    srs.morphToESRI();
}

CString miParser::ToString(CS::CCoordSys const & coordSys)
{
  CheckSource("miParser::ToString");
  OGRSpatialReference srs;
  BuildSpatialReference(srs, coordSys, false);
  char * text = nullptr;
  if (srs.exportToWkt(&text) != OGRERR_NONE || !text) {
    CPLFree(text);
    Fail(CVelmoraException::kExportFailed, "miParser::ToString", "Could not write WKT");
  }
  CString const result(text);
  CPLFree(text);
  return result;
}

bool miParser::ToWKT(CS::CCoordSys const & coordSys, CString const & file)
{
  CheckSource("miParser::ToWKT");
  if (EndsWithTabName(file))
    Fail(CVelmoraException::kExportFailed, "miParser::ToWKT", "Writing of TAB/MAP files is currently unsupported");
  OGRSpatialReference srs;
  BuildSpatialReference(srs, coordSys, file.endsWith(QLatin1String(".prj"), Qt::CaseInsensitive));
  char * text = nullptr;
  if (srs.exportToWkt(&text) != OGRERR_NONE || !text) {
    CPLFree(text);
    Fail(CVelmoraException::kExportFailed, "miParser::ToWKT", "Could not write WKT");
  }
  std::string const out(text);
  CPLFree(text);
  QFile f(file);
  if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
    Fail(CVelmoraException::kExportFailed, "miParser::ToWKT", "Could not open specified file for writing");
  f.write(out.c_str(), static_cast<qint64>(out.size()));
  return true;
}

} // namespace Velmora::DB
