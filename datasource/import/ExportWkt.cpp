// WKT1 composed from a system's objects: EPSG authorities wherever the
// objects carry that issuer, the first shift to WGS 84 as TOWGS84, angles in
// the geographic unit and lengths in the system's unit, as WKT1 counts them.
#include <velmora/datasource/import/ImportObjects_p.h>

#include <velmora/datasource/import/ImportTables_p.h>
#include <velmora/datasource/import/miParser.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/Constants.h>
#include <velmora/measures/CoordPoints.h>
#include <velmora/measures/Units.h>
#include <velmora/refsys/CoordSys.h>
#include <velmora/refsys/Ellipsoid.h>
#include <velmora/refsys/HorizontalDatum.h>
#include <velmora/refsys/PrimeMeridian.h>
#include <velmora/transforms/datumshifts/DatumShift.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

namespace Velmora::DB {

using PJ = CS::PJ::CProjection;

using namespace ImportTables;

namespace {

constexpr char kWgs84Datum[] = "6326";
constexpr double kArcSecondsPerDegree = 3600.0;

std::string Number(double value)
{
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

std::string Quoted(CString const & text)
{
  std::string s = text.toStdString();
  for (char & c : s)
    if (c == '"')
      c = '\'';
  return "\"" + s + "\"";
}

std::string Authority(CSerializable const & object)
{
  CIdentifierCollection const & ids = object.GetIdentifiers();
  if (!ids.Exists(CString(kEPSG)))
    return std::string();
  return ",AUTHORITY[\"EPSG\"," + Quoted(ids.GetItem(CString(kEPSG))) + "]";
}

// A unit as WKT names it: values carry their unit's factor, and its name and
// identifiers are the stored unit's.
template <class Unit>
std::string UnitNode(CDataSource const & store, long type, Unit const & unit, double factor, char const * fallback)
{
  CString name = unit.GetName();
  std::string authority = Authority(unit);
  CIdentifierCollection const & ids = unit.GetIdentifiers();
  if (ids.Exists(CString(kVM))) {
    CString storedName, group;
    if (name.isEmpty() && store.GetObjectInfo(type, CString(kVM), ids.GetItem(CString(kVM)), storedName, group))
      name = storedName;
    if (authority.empty())
      if (CSerializableDataDB const * body = store.FindObject(type, CString(kVM), ids.GetItem(CString(kVM))))
        if (body->GetIdentifiers().Exists(CString(kEPSG)))
          authority = ",AUTHORITY[\"EPSG\"," + Quoted(body->GetIdentifiers().GetItem(CString(kEPSG))) + "]";
  }
  if (name.isEmpty())
    name = CString(fallback);
  return ",UNIT[" + Quoted(name) + "," + Number(factor) + authority + "]";
}

std::string Parameter(char const * name, double value)
{
  return ",PARAMETER[\"" + std::string(name) + "\"," + Number(value) + "]";
}

bool IsWgs84(CS::CHorizontalDatum const & datum)
{
  CIdentifierCollection const & ids = datum.GetIdentifiers();
  return ids.Exists(CString(kEPSG)) && ids.GetItem(CString(kEPSG)) == CString(kWgs84Datum);
}

// The seven values of the first stored shift of the datum to WGS 84 that
// has them, position-vector rotations in arc seconds and the scale in ppm.
std::string ToWgs84(CDataSource const & store, CS::CHorizontalDatum const & datum)
{
  if (IsWgs84(datum) || !datum.GetIdentifiers().Exists(CString(kVM)))
    return std::string();
  CString const code = datum.GetIssuerCode(CString(kVM));
  CString const bursaWolf = CT::DS::CDatumShift::TypeName(CT::DS::CDatumShift::kBursaWolfe);
  CString const translation = CT::DS::CDatumShift::TypeName(CT::DS::CDatumShift::kGeocentricTranslation);
  for (CSerializableDataDB * body : store.SearchDB(kObjectDatumShift)) {
    auto const * shift = dynamic_cast<CT::DS::CDatumShiftData const *>(body);
    if (!shift || shift->GetReverseUsage() ||
        (shift->GetClassType() != bursaWolf && shift->GetClassType() != translation))
      continue;
    CIdentifierCollection const & from = shift->GetSrcDatum().GetIdentifiers();
    if (!from.Exists(CString(kVM)) || from.GetItem(CString(kVM)) != code || !IsWgs84(shift->GetDestDatum()))
      continue;
    CParameterCollection const & p = shift->GetParameters();
    double v[7] = {};
    char const * const linear[] = {"dx", "dy", "dz"};
    for (int i = 0; i < 3; ++i)
      v[i] = p.GetLinearValue(CString(linear[i])).GetInternal();
    if (shift->GetClassType() == bursaWolf) {
      char const * const angular[] = {"rx", "ry", "rz"};
      for (int i = 0; i < 3; ++i)
        v[3 + i] = p.GetAngularValue(CString(angular[i])).GetInternal() * kArcSecondsPerDegree;
      v[6] = p.GetDouble(CString("k"));
    }
    std::string text = ",TOWGS84[";
    for (int i = 0; i < 7; ++i)
      text += (i ? "," : "") + Number(v[i]);
    return text + "]";
  }
  return std::string();
}

std::string Geographic(CDataSource const & store, CS::CGeodeticCoordSys const & system, double & unitsPerDegree)
{
  auto const & style = dynamic_cast<ML::CGeodeticPoint const &>(system.GetPointStyle());
  ML::CAngularUnit const & unit = style.GetLon().GetUnits();
  unitsPerDegree = unit.GetUnitsPerDegree();
  CS::CHorizontalDatum const & datum = system.GetHorizontalDatum();
  CS::CEllipsoid const & e = datum.GetEllipsoid();
  double const invf = e.GetInvFlattening();
  CS::CPrimeMeridian const & pm = datum.GetPrimeMeridian();
  return "GEOGCS[" + Quoted(system.GetName()) + ",DATUM[" + Quoted(datum.GetName()) + ",SPHEROID[" +
         Quoted(e.GetName()) + "," + Number(e.GetSemiMajor().GetInternal()) + "," +
         Number(std::isfinite(invf) ? invf : 0.0) + Authority(e) + "]" + ToWgs84(store, datum) + Authority(datum) +
         "],PRIMEM[" + Quoted(pm.GetName()) + "," + Number(pm.GetLongitude().GetInternal() * unitsPerDegree) +
         Authority(pm) + "]" +
         UnitNode(store, kObjectAngularUnit, unit, Constants::kRadiansPerDegree / unitsPerDegree,
                  unitsPerDegree == 1.0 ? "degree" : "unnamed") +
         Authority(system) + "]";
}

// The projection under its alias and its parameters under their WKT names.
std::string ProjectionWkt(PJ const & projection, miParser const & parser, double unitsPerDegree, double unitsPerMetre)
{
  CParameterCollection const & p = projection.GetParameters();
  int const type = projection.GetType();
  auto const flag = [&](char const * name) { return p.Exists(CString(name)) ? p.GetLong(CString(name)) : 0L; };
  if (type == PJ::kUniversalTransverseMercator) {
    long const zone = p.GetLong(CString("zone"));
    bool const north = p.GetLong(CString("is_north")) != 0;
    return ",PROJECTION[\"Transverse_Mercator\"]" + Parameter("latitude_of_origin", 0.0) +
           Parameter("central_meridian", (zone * kUtmZoneWidth - kUtmZoneOffset) * unitsPerDegree) + Parameter("scale_factor", kUtmScale) +
           Parameter("false_easting", kUtmFalseEasting * unitsPerMetre) +
           Parameter("false_northing", (north ? 0.0 : kUtmSouthFalseNorthing) * unitsPerMetre);
  }
  std::string text = ",PROJECTION[" +
                     Quoted(parser.ProjectionNameOf(type, flag("center_flag"), flag("azimuth_is_gamma"),
                                                    flag("use_gamma_flag"))) +
                     "]";
  bool const centre = ImportTables::UsesCentreNames(type);
  for (long i = 0; i < p.Count(); ++i) {
    CString const name = p.ParameterNameAtIndex(i);
    if (!p.IsItemSet(name))
      continue;
    std::string const key = name.toStdString();
    double value = 0.0;
    switch (p.GetItemType(name)) {
    case CParameter::kAngularValue:
      value = p.GetAngularValue(name).GetInternal() * unitsPerDegree;
      break;
    case CParameter::kLinearValue:
      value = p.GetLinearValue(name).GetInternal() * unitsPerMetre;
      break;
    case CParameter::kLong:
      // The oblique family's flags are in its name.
      if (key.find("_flag") != std::string::npos || key == "azimuth_is_gamma")
        continue;
      value = static_cast<double>(p.GetLong(name));
      break;
    case CParameter::kDouble:
      value = p.GetDouble(name);
      break;
    default:
      continue;
    }
    text += Parameter(ImportTables::WktParameterName(key.c_str(), centre), value);
  }
  return text;
}

} // namespace

std::string ImportObjects::ComposeWkt(CDataSource const & store, CS::CCoordSys const & coordSys,
                                      miParser const & parser)
{
  double unitsPerDegree = 1.0;
  if (coordSys.GetType() == CS::kGeodeticCoordSys)
    return Geographic(store, dynamic_cast<CS::CGeodeticCoordSys const &>(coordSys), unitsPerDegree);
  if (coordSys.GetType() != CS::kProjectedCoordSys)
    return std::string();
  auto const & system = dynamic_cast<CS::CProjectedCoordSys const &>(coordSys);
  std::string const geographic = Geographic(store, system.GetGeodeticCoordSys(), unitsPerDegree);
  auto const & style = dynamic_cast<ML::CProjectedPoint const &>(system.GetPointStyle());
  ML::CLinearUnit const & unit = style.GetEast().GetUnits();
  double const unitsPerMetre = unit.GetUnitsPerMeter();
  return "PROJCS[" + Quoted(system.GetName()) + "," + geographic +
         ProjectionWkt(system.GetProjection(), parser, unitsPerDegree, unitsPerMetre) +
         UnitNode(store, kObjectLinearUnit, unit, 1.0 / unitsPerMetre, unitsPerMetre == 1.0 ? "metre" : "unnamed") +
         Authority(system) + "]";
}

} // namespace Velmora::DB
