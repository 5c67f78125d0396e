// The store's import and export members: checks of the store, then the
// parser, which the store makes at first use and keeps.
#include <velmora/datasource/CDataSource.h>

#include <velmora/datasource/import/ImportObjects_p.h>
#include <velmora/datasource/import/miParser.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/CoordPoints.h>
#include <velmora/measures/Units.h>
#include <velmora/refsys/CoordSys.h>

#include <exception>
#include <memory>

namespace Velmora::DB {

using EX::CVelmoraException;

namespace {

constexpr char kReadOnlyText[] = "CDataSource::ImportFile : must set Editable flag on DataSource";
constexpr char kTWL[] = "TWL";
constexpr char kVM[] = "VM";
constexpr char kSTR[] = "STR";

// Failures of the dependencies reach the caller as code 0 with their text.
template <class Work>
auto Guarded(char const * location, Work work) -> decltype(work())
{
  try {
    return work();
  } catch (CVelmoraException const &) {
    throw;
  } catch (std::exception const & e) {
    throw CVelmoraException(CVelmoraException::kUndefined, CString(location), CString(e.what()));
  }
}

unsigned short * NewWide(CString const & text)
{
  _towchar wide(text.toUtf8().constData(), false);
  return wide;
}

} // namespace

miParser & CDataSource::Parser() const
{
  if (!m_parser)
    m_parser = std::make_unique<miParser>(const_cast<CDataSource *>(this));
  return *m_parser;
}

bool CDataSource::ImportFile(CString const & file)
{
  CheckEditable("CDataSource::ImportFile");
  return Guarded("CDataSource::ImportFile", [&] {
    std::unique_ptr<CS::CCoordSys> imported(Parser().fromWKT(file));
    return true;
  });
}

// Imports that store what they build need a loaded, editable store.
#define VELMORA_CHECK_IMPORT(location)                                                                           \
  do {                                                                                                           \
    if (!m_loaded)                                                                                               \
      throw CVelmoraException(CVelmoraException::kDataSourceNotLoaded, CString(location));                      \
    if (m_readOnly)                                                                                              \
      throw CVelmoraException(CVelmoraException::kCustom, CString(location), CString(kReadOnlyText));           \
  } while (false)

CS::CCoordSys * CDataSource::ImportCoordSysFromFile(CString const & file)
{
  VELMORA_CHECK_IMPORT("CDataSource::ImportCoordSysFromFile");
  return Guarded("CDataSource::ImportCoordSysFromFile", [&] { return Parser().fromWKT(file); });
}

CS::CCoordSys * CDataSource::ImportCoordSysFromString(CString const & text)
{
  VELMORA_CHECK_IMPORT("CDataSource::ImportCoordSysFromString");
  return Guarded("CDataSource::ImportCoordSysFromString", [&] { return Parser().FromString(text); });
}

CS::CCoordSys * CDataSource::ImportCoordSysFromString(unsigned short const * text)
{
  return ImportCoordSysFromString(text ? CString(text) : CString());
}

CS::CCoordSys * CDataSource::ImportCoordSysFromStrings(CString const & datum, CString const & projection,
                                                       CString const & units)
{
  VELMORA_CHECK_IMPORT("CDataSource::ImportCoordSysFromString");
  return Guarded("CDataSource::ImportCoordSysFromStrings", [&]() -> CS::CCoordSys * {
    QString datumName = datum;
    datumName.replace(QLatin1Char('-'), QLatin1Char('_'));
    std::unique_ptr<CS::CGeodeticCoordSys> geodetic(
      GetGeodeticCoordSys(CString(kTWL), CString(datumName + QLatin1String("_coordinate_system"))));
    if (projection == CString("LAT-LONG"))
      return geodetic.release();
    std::unique_ptr<CS::CProjectedCoordSys> projected(GetProjectedCoordSys(CString(kTWL), projection));
    auto const & style = dynamic_cast<ML::CProjectedPoint const &>(projected->GetPointStyle());
    ML::CLinearUnit const & current = style.GetEast().GetUnits();
    if (units.isEmpty() || (current.GetIdentifiers().Exists(CString(kTWL)) &&
                            current.GetIssuerCode(CString(kTWL)) == units))
      return projected.release();
    // Another unit: a copy of the system in it, stored once.
    std::unique_ptr<ML::CLinearUnit> unit(GetLinearUnit(CString(kTWL), units));
    CString const code = CString(datumName) + "_" + projection + "_" + units;
    if (std::unique_ptr<CS::CProjectedCoordSys> done{GetProjectedCoordSysNonThrow(CString(kVM), code)})
      return done.release();
    CS::CProjectedCoordSys copy(*projected);
    copy.Congeal();
    ML::CProjectedPoint restyled(dynamic_cast<ML::CProjectedPoint const &>(copy.GetPointStyle()));
    restyled.GetEast().SetUnits(*unit);
    restyled.GetNorth().SetUnits(*unit);
    copy.SetPointStyle(restyled);
    CIdentifierCollection ids;
    ids.Add(CString(kVM), code);
    ids.Add(CString(kSTR), code);
    copy.SetIdentifiers(ids);
    try {
      PutProjectedCoordSys(copy, false);
    } catch (CVelmoraException const &) {
      // Stored before under another identifier: the stored one serves.
    }
    return GetProjectedCoordSys(CString(kVM), code);
  });
}

// The key/value form of CS-MAP's dictionaries. Its projection keys are read
// for the projections whose parameters CS-MAP's documentation gives in these
// places: PARM1 the central meridian (TM, GAUSSK, MRCAT) or the zone (UTM,
// with PARM2 negative in the south), PARM1 and PARM2 the standard parallels
// (LM), PARM2 the standard parallel of the Mercator (MRCAT).
CS::CCoordSys * CDataSource::ImportCoordSysFromStringMap(std::map<CString, CString> const & map)
{
  VELMORA_CHECK_IMPORT("CDataSource::ImportCoordSysFromStringMap");
  return Guarded("CDataSource::ImportCoordSysFromStringMap", [&]() -> CS::CCoordSys * {
    auto const get = [&](char const * key) {
      auto const it = map.find(CString(key));
      return it == map.end() ? CString() : it->second;
    };
    CString const name = get("CS_NAME");
    if (!name.isEmpty()) {
      if (CS::CCoordSys * found = GetGeodeticCoordSysNonThrow(CString("EPSG"), name))
        return found;
      if (CS::CCoordSys * found = GetProjectedCoordSysNonThrow(CString("EPSG"), name))
        return found;
    }
    CString const proj = get("PROJ");
    bool const geographic = proj.isEmpty() || proj == CString("LL");
    if (geographic && !name.isEmpty())
      if (CS::CCoordSys * found = GetGeodeticCoordSysNonThrow(CString("CS"), name))
        return found;
    ImportObjects objects(*this, Parser());
    CS::CCoordSys * built = objects.FromStringMap(map);
    return built;
  });
}

bool CDataSource::ExportCoordSysToFile(CS::CCoordSys const & coordSys, CString const & file)
{
  return Guarded("CDataSource::ExportCoordSysToFile", [&] { return Parser().ToWKT(coordSys, file); });
}

unsigned short * CDataSource::ExportCoordSysToString(CS::CCoordSys const & coordSys)
{
  return Guarded("CDataSource::ExportCoordSysToString", [&] { return NewWide(Parser().ToString(coordSys)); });
}

bool CDataSource::ExportCoordSysToStrings(CS::CCoordSys const & coordSys, unsigned short ** datum,
                                          unsigned short ** projection, unsigned short ** units) const
{
  if (!datum || !projection || !units)
    return false;
  CString const twl(kTWL);
  CS::CHorizontalDatum const & d = coordSys.GetHorizontalDatum();
  if (!d.GetIdentifiers().Exists(twl))
    return false;
  CString projectionCode, unitCode("METERS");
  switch (coordSys.GetType()) {
  case CS::kGeodeticCoordSys: {
    projectionCode = CString("LAT-LONG");
    auto const & style = dynamic_cast<ML::CGeodeticPoint const &>(coordSys.GetPointStyle());
    ML::CAngularUnit const & unit = style.GetLon().GetUnits();
    if (unit.GetIdentifiers().Exists(twl))
      unitCode = unit.GetIssuerCode(twl);
    break;
  }
  case CS::kGeocentricCoordSys:
    projectionCode = CString("ECEF");
    break;
  case CS::kProjectedCoordSys: {
    if (!coordSys.GetIdentifiers().Exists(twl))
      return false;
    projectionCode = coordSys.GetIssuerCode(twl);
    auto const & style = dynamic_cast<ML::CProjectedPoint const &>(coordSys.GetPointStyle());
    ML::CLinearUnit const & unit = style.GetEast().GetUnits();
    if (unit.GetIdentifiers().Exists(twl))
      unitCode = unit.GetIssuerCode(twl);
    break;
  }
  default:
    return false;
  }
  *datum = NewWide(d.GetIssuerCode(twl));
  *projection = NewWide(projectionCode);
  *units = NewWide(unitCode);
  return true;
}

unsigned short * CDataSource::ExportCoordSysToMIFString(CS::CCoordSys const & coordSys)
{
  return Guarded("CDataSource::ExportCoordSysToMIFString", [&]() -> unsigned short * {
    CString const clause = Parser().ToMIF(coordSys);
    return clause.isEmpty() ? nullptr : NewWide(clause);
  });
}

} // namespace Velmora::DB
