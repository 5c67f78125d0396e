// The key/value form: a datum by name or from its ellipsoid, units by code
// or factor, and the projections whose parameters the keys give.
#include <velmora/datasource/import/ImportObjects_p.h>
#include <velmora/datasource/import/ImportTables_p.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/Constants.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/CoordPoints.h>
#include <velmora/measures/Envelope.h>
#include <velmora/measures/Units.h>
#include <velmora/refsys/CoordSys.h>
#include <velmora/refsys/Ellipsoid.h>
#include <velmora/refsys/HorizontalDatum.h>
#include <velmora/refsys/PrimeMeridian.h>

#include <cstdio>
#include <memory>

namespace Velmora::DB {

using EX::CVelmoraException;
using PJ = CS::PJ::CProjection;
using ImportTables::kDegreeCode;
using ImportTables::kMetreCode;

namespace {

constexpr char kLocation[] = "CDataSource::ImportCoordSysFromStringMap";
constexpr char kGreenwichCode[] = "8901";

struct KeyProjection
{
  char const * key;
  int type;
};
// The projection keys read, and the types they become.
KeyProjection const kKeyProjections[] = {
  {"UTM", PJ::kUniversalTransverseMercator}, {"TM", PJ::kTransverseMercator}, {"GAUSSK", PJ::kTransverseMercator},
  {"LM", PJ::kLambertConformalConic},        {"MRCAT", PJ::kMercator},
};

void Name(CSerializable & object, CString const & name, CString const & code)
{
  object.SetName(name);
  object.GetIdentifiers().Add(CString("VM"), code);
}

} // namespace

CS::CCoordSys * ImportObjects::FromStringMap(std::map<CString, CString> const & map)
{
  auto const get = [&](char const * key) {
    auto const it = map.find(CString(key));
    return it == map.end() ? CString() : it->second;
  };
  auto const number = [&](char const * key) { return get(key).toDouble(); };
  CString const proj = get("PROJ");
  bool const geographic = proj.isEmpty() || proj == CString("LL");
  // A projection the form cannot give is refused before anything is stored.
  int type = -1;
  for (KeyProjection const & k : kKeyProjections)
    if (proj == CString(k.key))
      type = k.type;
  if (type < 0 && !geographic)
    throw CVelmoraException(CVelmoraException::kImportFailed, CString(kLocation),
                            CString("Could not create suitable projection for ") + proj);

  // The datum: by name, else from the ellipsoid on Greenwich.
  QString datumName = get("DT_NAME");
  datumName.replace(QLatin1Char('-'), QLatin1Char('_'));
  std::unique_ptr<CS::CHorizontalDatum> datum(
    datumName.isEmpty() ? nullptr : m_store.GetHorizontalDatumNonThrow(CString("CS"), CString(datumName)));
  if (!datum) {
    std::unique_ptr<CS::CEllipsoid> ellipsoid(
      get("EL_NAME").isEmpty() ? nullptr : m_store.GetEllipsoidNonThrow(CString("CS"), get("EL_NAME")));
    if (!ellipsoid) {
      double const a = number("E_RAD"), b = number("P_RAD");
      if (!(a > 0.0) || !(b > 0.0) || b > a)
        throw CVelmoraException(CVelmoraException::kImportFailed, CString(kLocation), CString("No datum or ellipsoid"));
      char text[64];
      std::snprintf(text, sizeof text, "unnamed_radius_%lf", a);
      CString const elName = get("EL_NAME").isEmpty() ? CString(text) : get("EL_NAME");
      std::unique_ptr<ML::CLinearUnit> metre(LinearUnit(CString("METERS"), 1.0, kMetreCode));
      CS::CEllipsoid e;
      Name(e, elName, CString("CS_") + elName);
      ML::CLinearValue axis;
      axis.SetUnits(*metre);
      axis.SetValue(a);
      e.SetSemiMajor(axis);
      axis.SetValue(b);
      e.SetSemiMinor(axis);
      Put(kObjectEllipsoid, e);
      ellipsoid.reset(m_store.GetEllipsoid(CString("VM"), e.GetIssuerCode(CString("VM"))));
    }
    std::unique_ptr<CS::CPrimeMeridian> greenwich(
      m_store.GetPrimeMeridian(CString("EPSG"), CString(kGreenwichCode)));
    CS::CHorizontalDatum d;
    CString const dName = CString("unnamed datum based on ") + ellipsoid->GetName();
    Name(d, dName, CString("CS_") + dName);
    d.SetEllipsoid(*ellipsoid);
    d.SetPrimeMeridian(*greenwich);
    Put(kObjectHorizontalDatum, d);
    datum.reset(m_store.GetHorizontalDatum(CString("VM"), d.GetIssuerCode(CString("VM"))));
  }

  // The envelope: the four limits, else every point.
  CString envelopeCode = StandardEnvelope();
  CString const name = get("CS_NAME");
  if (!get("MIN_LNG").isEmpty() && !get("MIN_LAT").isEmpty() && !get("MAX_LNG").isEmpty() && !get("MAX_LAT").isEmpty()) {
    std::unique_ptr<ML::CAngularUnit> degree(AngularUnit(CString("degree"), 1.0, kDegreeCode));
    std::unique_ptr<ML::CGeodeticPoint> corner(
      m_store.GetGeodeticPointNonThrow(CString("TWL"), CString("GEODETIC_2D_POINT_DEGREES")));
    if (!corner)
      corner.reset(m_store.GetGeodeticPoint(CString("VM"), GeodeticStyle(*degree)));
    corner->SetDimensions(2);
    ML::CEnvelope envelope(ML::kGeodeticPoint);
    Name(envelope, CString("Envelope for ") + name, CString("CS_Envelope for ") + name);
    corner->SetInternals(number("MIN_LNG"), number("MIN_LAT"));
    envelope.SetMinPoint(*corner);
    corner->SetInternals(number("MAX_LNG"), number("MAX_LAT"));
    envelope.SetMaxPoint(*corner);
    Put(kObjectEnvelope, envelope);
    envelopeCode = envelope.GetIssuerCode(CString("VM"));
  }
  std::unique_ptr<ML::CEnvelope> envelope(m_store.GetEnvelope(CString("VM"), envelopeCode));

  // The geodetic system, in degrees.
  std::unique_ptr<ML::CAngularUnit> degree(m_store.GetAngularUnitNonThrow(CString("CS"), CString("DEGREES")));
  if (!degree)
    degree.reset(AngularUnit(CString("degree"), 1.0, kDegreeCode));
  std::unique_ptr<ML::CGeodeticPoint> geodeticStyle(m_store.GetGeodeticPoint(CString("VM"), GeodeticStyle(*degree)));
  CS::CGeodeticCoordSys geodetic;
  CString const geodeticName = geographic && !name.isEmpty() ? name : CString("Geodetic System based on ") + datum->GetName();
  Name(geodetic, geodeticName, CString("CS_") + geodeticName);
  geodetic.SetHorizontalDatum(*datum);
  geodetic.SetPointStyle(*geodeticStyle);
  geodetic.SetEnvelope(*envelope);
  Put(kObjectGeodeticCoordSys, geodetic);
  if (geographic)
    return m_store.GetGeodeticCoordSys(CString("VM"), geodetic.GetIssuerCode(CString("VM")));

  // The linear unit: by code, else by its factor in metres.
  std::unique_ptr<ML::CLinearUnit> unit;
  for (char const * issuer : {"CS", "CS2", "TWL"})
    if (!unit && !get("UNIT").isEmpty())
      unit.reset(m_store.GetLinearUnitNonThrow(CString(issuer), get("UNIT")));
  if (!unit) {
    double const factor = get("UNIT_FACTOR").isEmpty() ? 1.0 : number("UNIT_FACTOR");
    if (!(factor > 0.0))
      throw CVelmoraException(CVelmoraException::kImportFailed, CString(kLocation), CString("Invalid UNIT_FACTOR"));
    CString const abbreviation = get("UNIT_ABBREVIATION").isEmpty() ? CString("unknown") : get("UNIT_ABBREVIATION");
    CString const code = CString("unamed_unit_factor=") + get("UNIT_FACTOR");
    if (!(unit = std::unique_ptr<ML::CLinearUnit>(m_store.GetLinearUnitNonThrow(CString("VM"), code)))) {
      ML::CLinearUnit u(code, abbreviation, 1.0 / factor);
      Name(u, code, code);
      Put(kObjectLinearUnit, u);
      unit.reset(m_store.GetLinearUnit(CString("VM"), code));
    }
  }
  std::unique_ptr<ML::CProjectedPoint> style(m_store.GetProjectedPoint(CString("VM"), ProjectedStyle(*unit)));

  std::unique_ptr<CS::CGeodeticCoordSys> base(
    m_store.GetGeodeticCoordSys(CString("VM"), geodetic.GetIssuerCode(CString("VM"))));
  std::unique_ptr<PJ> projection(CS::PJ::CProjectionFactory::CreateProjection(type, datum.get()));
  CParameterCollection & p = projection->GetParameters();
  auto const angle = [&](char const * parameter, double degrees) { SetAngle(p, parameter, degrees, *degree); };
  auto const length = [&](char const * parameter, double value) { SetLength(p, parameter, value, *unit); };
  CString systemName = name;
  if (type == PJ::kUniversalTransverseMercator) {
    long const zone = std::lround(number("PARM1"));
    p.SetLong(CString("zone"), zone);
    p.SetLong(CString("is_north"), number("PARM2") < 0.0 ? 0 : 1);
    p.SetLong(CString("autoset"), 0);
    if (systemName.isEmpty())
      systemName = CString(QStringLiteral("UTM Zone %1 - ").arg(zone)) + datum->GetName();
  } else {
    length("false_easting", number("X_OFF"));
    length("false_northing", number("Y_OFF"));
    if (type == PJ::kLambertConformalConic) {
      angle("central_meridian", number("ORG_LNG"));
      angle("latitude_of_origin", number("ORG_LAT"));
      angle("standard_parallel1", number("PARM1"));
      angle("standard_parallel2", number("PARM2"));
    } else {
      angle("central_meridian", number("PARM1"));
      bool const mercator = type == PJ::kMercator;
      angle("latitude_of_origin", mercator ? number("PARM2") : number("ORG_LAT"));
      p.SetDouble(CString("scale_factor"), mercator || get("SCL_RED").isEmpty() ? 1.0 : number("SCL_RED"));
    }
  }
  if (systemName.isEmpty())
    systemName = CString("unamed_") + proj + CString("_CS");
  CS::CProjectedCoordSys system;
  Name(system, systemName, CString("CS_") + systemName);
  system.SetGeodeticCoordSys(*base);
  system.SetProjection(*projection);
  system.SetPointStyle(*style);
  system.SetEnvelope(*envelope);
  Put(kObjectProjectedCoordSys, system);
  return m_store.GetProjectedCoordSys(CString("VM"), system.GetIssuerCode(CString("VM")));
}

} // namespace Velmora::DB
