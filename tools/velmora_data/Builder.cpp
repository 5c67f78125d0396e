#include "Builder.h"

#include "Mapping.h"

#include <velmora/velmora.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

namespace VelmoraData {

using namespace Velmora;

namespace {

constexpr char kDegree[] = "9102";    // the degree, unit of angles the registry gives in encoded forms
constexpr char kMetre[] = "9001";     // the metre, unit of fixed linear values
constexpr char kEnvelopeUnit[] = "9122"; // degrees as the geographic systems use them: the corners' unit
constexpr char kWorldExtent[] = "1262";
// Longitudes an area across the antimeridian takes: any a conversion gives.
constexpr double kAnyLongitude = 360.0;
// What the objects of a sphere of a, made for a system of the registry, add
// to its codes: their "VM" codes, which no registry code takes.
constexpr char kSphereOfA[] = "-sphere-a";
// Below this, in degrees, a longitude rotation is the same angle given in two units.
constexpr double kNegligibleRotation = 1e-12;

// Exact factors where the registry's rounded ones would leave the last digits off.
double UnitsPerDegree(Unit const & unit)
{
  static std::map<std::string, double> const exact = {
    {"9102", 1.0},        {"9122", 1.0},           {"9103", 60.0},         {"9104", 3600.0},
    {"1031", 3600000.0},  {"9105", 10.0 / 9.0},    {"9112", 1000.0 / 9.0}, {"9113", 100000.0 / 9.0},
    {"9114", 6400.0 / 360.0}, {"9101", Constants::kRadiansPerDegree},
    {"9109", Constants::kRadiansPerDegree * 1e6}};
  auto const it = exact.find(unit.code);
  return it != exact.end() ? it->second : Constants::kRadiansPerDegree / *unit.factor;
}

double UnitsPerMetre(Unit const & unit)
{
  if (unit.code == "9003") // US survey foot: 1200/3937 metre
    return 3937.0 / 1200.0;
  return 1.0 / *unit.factor;
}

char const * Abbreviation(std::string const & code)
{
  static std::map<std::string, char const *> const known = {
    {"9101", "rad"}, {"9102", "deg"}, {"9122", "deg"}, {"9103", "min"}, {"9104", "sec"}, {"9105", "grad"},
    {"9001", "m"},   {"9002", "ft"},  {"9003", "ftUS"}, {"9036", "km"}, {"1025", "mm"}, {"1033", "cm"}};
  auto const it = known.find(code);
  return it == known.end() ? "" : it->second;
}

// The writer escapes only "&": quotes and angle brackets would end an attribute
// or an element, so names get harmless stand-ins for them.
CString Name(std::string const & text)
{
  QString name = QString::fromStdString(text);
  name.replace(QLatin1Char('"'), QLatin1String("''"));
  name.replace(QLatin1Char('<'), QLatin1Char('('));
  name.replace(QLatin1Char('>'), QLatin1Char(')'));
  return CString(name);
}

void Identify(CSerializable & object, std::string const & name, CString const & vm, std::string const & epsg)
{
  object.SetName(Name(name));
  object.GetIdentifiers().Add(CString("VM"), vm);
  if (!epsg.empty())
    object.GetIdentifiers().Add(CString("EPSG"), CString(epsg));
}

// Sexagesimal DMS (unit 9110) packs degrees, minutes and seconds into one
// number as DDD.MMSSsss; the digits are read from the registry's text so that
// no rounding of the binary value shifts a minute into the seconds.
double FromSexagesimal(std::string const & text)
{
  std::string t = text;
  bool const negative = !t.empty() && t[0] == '-';
  if (negative || (!t.empty() && t[0] == '+'))
    t.erase(0, 1);
  if (t.find_first_of("eE") != std::string::npos) {
    double const v = std::stod(t);
    double const d = std::floor(v + 1e-12), m = std::floor((v - d) * 100.0 + 1e-9);
    double const s = ((v - d) * 100.0 - m) * 100.0;
    double const degrees = d + m / 60.0 + s / 3600.0;
    return negative ? -degrees : degrees;
  }
  std::size_t const dot = t.find('.');
  std::string const whole = t.substr(0, dot);
  std::string fraction = dot == std::string::npos ? std::string() : t.substr(dot + 1);
  fraction.resize(std::max<std::size_t>(fraction.size(), 4), '0');
  double const d = whole.empty() ? 0.0 : std::stod(whole);
  double const m = std::stod(fraction.substr(0, 2));
  double const s = std::stod(fraction.substr(2, 2) + "." + (fraction.size() > 4 ? fraction.substr(4) : "0"));
  double const degrees = d + m / 60.0 + s / 3600.0;
  return negative ? -degrees : degrees;
}

// The longitude of a datum's prime meridian, in degrees east of Greenwich.
bool MeridianDegrees(Registry const & registry, std::string const & datum, double & degrees)
{
  auto const d = registry.datums.find(datum);
  auto const pm = d == registry.datums.end() ? registry.primeMeridians.end()
                                              : registry.primeMeridians.find(d->second.primeMeridian);
  if (pm == registry.primeMeridians.end())
    return false;
  if (pm->second.uom == "9110") {
    degrees = FromSexagesimal(pm->second.longitude);
    return true;
  }
  auto const unit = registry.units.find(pm->second.uom);
  if (unit == registry.units.end() || !unit->second.factor)
    return false;
  degrees = std::stod(pm->second.longitude) / UnitsPerDegree(unit->second);
  return true;
}

std::string Area(std::string const & extentName)
{
  std::size_t const cut = extentName.find(" - ");
  return cut == std::string::npos ? extentName : extentName.substr(0, cut);
}

bool IsAlong(std::string const & orientation) { return orientation.find("along") != std::string::npos; }

} // namespace

Builder::Builder(Registry const & registry, DB::CDataSource & store, std::set<std::string> const * only)
  : m_registry(registry), m_store(store), m_only(only)
{
}

Builder::~Builder() = default;

std::string Builder::MethodName(std::string const & code) const
{
  auto const it = m_registry.methodNames.find(code);
  return "method " + code + " (" + (it == m_registry.methodNames.end() ? std::string("?") : it->second) + ")";
}

template <class Handle>
Handle * Builder::Stored(long type, CString const & code)
{
  CSerializableDataDB const * body = m_store.FindObject(type, CString("VM"), code);
  if (!body)
    throw std::logic_error("stored object missing: " + code.toStdString());
  return dynamic_cast<Handle *>(m_store.CreateObject(*body));
}

template <class Handle>
Handle const * Builder::Cached(std::map<std::string, std::unique_ptr<Handle>> & cache, long type,
                               std::string const & code)
{
  std::unique_ptr<Handle> & slot = cache[code];
  slot.reset(Stored<Handle>(type, CString(code)));
  return slot.get();
}

// Units ---------------------------------------------------------------------

ML::CAngularUnit const * Builder::AngularUnit(std::string const & code)
{
  auto const done = m_angular.find(code);
  if (done != m_angular.end())
    return done->second.get();
  auto const it = m_registry.units.find(code);
  if (it == m_registry.units.end() || it->second.type != "angle" || !it->second.factor) {
    m_angular[code] = nullptr;
    return nullptr;
  }
  ML::CAngularUnit unit(Name(it->second.name), CString(Abbreviation(code)), UnitsPerDegree(it->second));
  Identify(unit, it->second.name, CString(code), code);
  m_store.PutAngularUnit(unit, false);
  return Cached(m_angular, kObjectAngularUnit, code);
}

ML::CLinearUnit const * Builder::LinearUnit(std::string const & code)
{
  auto const done = m_linear.find(code);
  if (done != m_linear.end())
    return done->second.get();
  auto const it = m_registry.units.find(code);
  if (it == m_registry.units.end() || it->second.type != "length" || !it->second.factor ||
      *it->second.factor <= 0.0) {
    m_linear[code] = nullptr;
    return nullptr;
  }
  ML::CLinearUnit unit(Name(it->second.name), CString(Abbreviation(code)), UnitsPerMetre(it->second));
  Identify(unit, it->second.name, CString(code), code);
  m_store.PutLinearUnit(unit, false);
  return Cached(m_linear, kObjectLinearUnit, code);
}

// Reference frames ------------------------------------------------------------

bool Builder::PrimeMeridian(std::string const & code)
{
  if (m_store.FindObject(kObjectPrimeMeridian, CString("VM"), CString(code)))
    return true;
  auto const it = m_registry.primeMeridians.find(code);
  if (it == m_registry.primeMeridians.end())
    return false;
  VelmoraData::PrimeMeridian const & pm = it->second;
  bool const sexagesimal = pm.uom == "9110";
  ML::CAngularUnit const * unit = AngularUnit(sexagesimal ? kDegree : pm.uom);
  if (!unit)
    return false;
  CS::CPrimeMeridian meridian;
  Identify(meridian, pm.name, CString(code), code);
  meridian.GetLongitude().SetUnits(*unit);
  meridian.GetLongitude().SetValue(sexagesimal ? FromSexagesimal(pm.longitude) : std::stod(pm.longitude));
  return m_store.PutPrimeMeridian(meridian, false);
}

bool Builder::Ellipsoid(std::string const & code)
{
  if (m_store.FindObject(kObjectEllipsoid, CString("VM"), CString(code)))
    return true;
  auto const it = m_registry.ellipsoids.find(code);
  if (it == m_registry.ellipsoids.end())
    return false;
  VelmoraData::Ellipsoid const & e = it->second;
  ML::CLinearUnit const * unit = LinearUnit(e.uom);
  if (!unit)
    return false;
  CS::CEllipsoid ellipsoid;
  Identify(ellipsoid, e.name, CString(code), code);
  ML::CLinearValue axis;
  axis.SetUnits(*unit);
  axis.SetValue(e.semiMajor);
  ellipsoid.SetSemiMajor(axis);
  if (e.invFlattening && *e.invFlattening > 0.0) {
    ellipsoid.SetInvFlattening(*e.invFlattening);
  } else {
    axis.SetValue(e.semiMinor ? *e.semiMinor : e.semiMajor);
    ellipsoid.SetSemiMinor(axis);
  }
  return m_store.PutEllipsoid(ellipsoid, false);
}

CS::CHorizontalDatum const * Builder::Datum(std::string const & code)
{
  auto const done = m_datums.find(code);
  if (done != m_datums.end())
    return done->second.get();
  auto const it = m_registry.datums.find(code);
  if (it == m_registry.datums.end() || !Ellipsoid(it->second.ellipsoid) || !PrimeMeridian(it->second.primeMeridian)) {
    m_datums[code] = nullptr;
    return nullptr;
  }
  CS::CHorizontalDatum datum;
  Identify(datum, it->second.name, CString(code), code);
  std::unique_ptr<CS::CEllipsoid> ellipsoid(
    Stored<CS::CEllipsoid>(kObjectEllipsoid, CString(it->second.ellipsoid)));
  std::unique_ptr<CS::CPrimeMeridian> meridian(
    Stored<CS::CPrimeMeridian>(kObjectPrimeMeridian, CString(it->second.primeMeridian)));
  datum.SetEllipsoid(*ellipsoid);
  datum.SetPrimeMeridian(*meridian);
  m_store.PutHorizontalDatum(datum, false);
  return Cached(m_datums, kObjectHorizontalDatum, code);
}

// Point styles and envelopes ---------------------------------------------------

CString Builder::GeodeticStyle(std::string const & angularUnit)
{
  CString const code = CString("LL") + CString(angularUnit);
  if (m_store.FindObject(kObjectGeodeticPoint, CString("VM"), code))
    return code;
  ML::CAngularUnit const * unit = AngularUnit(angularUnit);
  ML::CLinearUnit const * metre = LinearUnit(kMetre);
  if (!unit || !metre)
    return CString();
  // Longitude first, whatever order the registry gives its axes in.
  ML::CGeodeticPoint style(3);
  Identify(style, "Longitude, latitude (" + m_registry.units.at(angularUnit).name + ")", code, "");
  style.GetLon().SetUnits(*unit);
  style.GetLon().SetLabel(CString("Longitude"));
  style.GetLat().SetUnits(*unit);
  style.GetLat().SetLabel(CString("Latitude"));
  style.GetHgt().SetUnits(*metre);
  style.GetHgt().SetLabel(CString("Height"));
  m_store.PutGeodeticPoint(style, false);
  return code;
}

CString Builder::ProjectedStyle(std::string const & linearUnit)
{
  CString const code = CString("EN") + CString(linearUnit);
  if (m_store.FindObject(kObjectProjectedPoint, CString("VM"), code))
    return code;
  ML::CLinearUnit const * unit = LinearUnit(linearUnit);
  if (!unit)
    return CString();
  ML::CProjectedPoint style(3);
  Identify(style, "Easting, northing (" + m_registry.units.at(linearUnit).name + ")", code, "");
  style.GetEast().SetUnits(*unit);
  style.GetEast().SetLabel(CString("Easting"));
  style.GetNorth().SetUnits(*unit);
  style.GetNorth().SetLabel(CString("Northing"));
  style.GetHgt().SetUnits(*unit);
  style.GetHgt().SetLabel(CString("Height"));
  m_store.PutProjectedPoint(style, false);
  return code;
}

CString Builder::CartesianStyle(std::string const & linearUnit)
{
  CString const code = CString("XYZ") + CString(linearUnit);
  if (m_store.FindObject(kObjectCartesianPoint, CString("VM"), code))
    return code;
  ML::CLinearUnit const * unit = LinearUnit(linearUnit);
  if (!unit)
    return CString();
  ML::CCartesianPoint style(3);
  Identify(style, "Geocentric X, Y, Z (" + m_registry.units.at(linearUnit).name + ")", code, "");
  style.GetX().SetUnits(*unit);
  style.GetX().SetLabel(CString("X"));
  style.GetY().SetUnits(*unit);
  style.GetY().SetLabel(CString("Y"));
  style.GetZ().SetUnits(*unit);
  style.GetZ().SetLabel(CString("Z"));
  m_store.PutCartesianPoint(style, false);
  return code;
}

// The box of one or more registry extents in degrees. An extent whose west
// edge lies east of its east edge crosses the antimeridian. No box of one
// longitude interval holds such an area on both sides of 180 for the
// two-number test, which has no wrap: the box keeps the area's latitudes and
// takes every longitude from -360 to 360, since a projection's inverse counts
// from its central meridian and may hand back 180.5 for -179.5. So each point
// of the area converts on both paths, both ways.
CString Builder::Envelope(std::vector<std::string> const & given)
{
  std::vector<std::string> extents;
  for (std::string const & code : given)
    if (m_registry.extents.count(code))
      extents.push_back(code);
  if (extents.empty())
    extents.push_back(kWorldExtent);
  std::string key;
  for (std::string const & code : extents)
    key += (key.empty() ? "" : "+") + code;
  auto const done = m_envelopes.find(key);
  if (done != m_envelopes.end())
    return done->second;

  std::string name;
  double west = 1e9, east = -1e9, south = 90.0, north = -90.0;
  for (std::string const & code : extents) {
    Extent const & e = m_registry.extents.at(code);
    name += (name.empty() ? "" : " + ") + e.name;
    west = std::min(west, e.west);
    east = std::max(east, e.east < e.west ? e.east + 360.0 : e.east);
    south = std::min(south, e.south);
    north = std::max(north, e.north);
  }
  if (east > 180.0) {
    west = -kAnyLongitude;
    east = kAnyLongitude;
  } else if (east - west >= 360.0) {
    west = -180.0;
    east = 180.0;
  }
  CString const style = GeodeticStyle(kEnvelopeUnit);
  std::unique_ptr<ML::CGeodeticPoint> corner(Stored<ML::CGeodeticPoint>(kObjectGeodeticPoint, style));
  corner->SetDimensions(2);
  ML::CEnvelope envelope(ML::kGeodeticPoint);
  Identify(envelope, name, CString(key), "");
  envelope.SetAlwaysAccept(false);
  corner->SetInternals(west, south);
  envelope.SetMinPoint(*corner);
  corner->SetInternals(east, north);
  envelope.SetMaxPoint(*corner);
  m_store.PutEnvelope(envelope, false);
  return m_envelopes[key] = CString(key);
}

// A folder under the kind's primary one, named after the area of the first
// extent: the part of its name before " - ", mostly a country.
long Builder::AreaFolder(long type, std::vector<std::string> const & extents)
{
  auto const first = std::find_if(extents.begin(), extents.end(),
                                  [&](std::string const & code) { return m_registry.extents.count(code) != 0; });
  if (first == extents.end())
    return 0;
  std::string const area = Area(m_registry.extents.at(*first).name);
  long & folder = m_folders[{type, area}];
  if (!folder)
    folder = m_store.AddNewGroup(Name(area), type, DB::CDataSource::GetGroupID(type));
  return folder;
}

// Coordinate systems --------------------------------------------------------

CS::CGeodeticCoordSys const * Builder::GeodeticCrs(std::string const & code)
{
  auto const done = m_geodetic.find(code);
  if (done != m_geodetic.end())
    return done->second.get();
  m_geodetic[code] = nullptr;
  auto const it = m_registry.geodeticCrs.find(code);
  if (it == m_registry.geodeticCrs.end() || it->second.type.rfind("geographic", 0) != 0)
    return nullptr;
  VelmoraData::GeodeticCrs const & crs = it->second;
  auto const axes = m_registry.axes.find(crs.coordinateSystem);
  std::string unit;
  if (axes != m_registry.axes.end())
    for (Axis const & axis : axes->second)
      if (axis.orientation == "east")
        unit = axis.uom;
  if (unit.empty()) {
    Skip("geodetic: axes without an east axis");
    return nullptr;
  }
  CS::CHorizontalDatum const * datum = Datum(crs.datum);
  CString const style = datum ? GeodeticStyle(unit) : CString();
  if (style.isEmpty()) {
    Skip("geodetic: datum or angular unit not in the file");
    return nullptr;
  }
  std::vector<std::string> const & extents = m_registry.ExtentsOf("geodetic_crs", code);
  CString const area = Envelope(extents);
  std::unique_ptr<ML::CGeodeticPoint> pointStyle(Stored<ML::CGeodeticPoint>(kObjectGeodeticPoint, style));
  std::unique_ptr<ML::CEnvelope> envelope(Stored<ML::CEnvelope>(kObjectEnvelope, area));
  CS::CGeodeticCoordSys system;
  Identify(system, crs.name, CString(code), code);
  system.SetHorizontalDatum(*datum);
  system.SetPointStyle(*pointStyle);
  system.SetEnvelope(*envelope);
  m_store.PutGeodeticCoordSys(system, false);
  return Cached(m_geodetic, kObjectGeodeticCoordSys, code);
}

// The twin of a geographic system whose datum carries the sphere of its
// ellipsoid's semi-major axis, joined to the system's datum by a longitude
// rotation of 0. The rotation hands latitude and longitude over unchanged,
// so a projection on the twin applies spherical formulas with R = a to the
// system's own ellipsoidal coordinates, as the Pseudo-Mercator (EPSG method
// 1024) does, and it is the one route the store finds from the datum (or
// through it) to the twin's.
CS::CGeodeticCoordSys const * Builder::SphereOfA(std::string const & code)
{
  std::string const key = code + kSphereOfA;
  auto const done = m_geodetic.find(key);
  if (done != m_geodetic.end())
    return done->second.get();
  m_geodetic[key] = nullptr;
  CS::CGeodeticCoordSys const * base = GeodeticCrs(code);
  if (!base)
    return nullptr;
  VelmoraData::Datum const & d = m_registry.datums.at(m_registry.geodeticCrs.at(code).datum);
  std::string const datumKey = d.code + kSphereOfA, figureKey = d.ellipsoid + kSphereOfA;
  if (!m_store.FindObject(kObjectEllipsoid, CString("VM"), CString(figureKey))) {
    std::unique_ptr<CS::CEllipsoid> figure(Stored<CS::CEllipsoid>(kObjectEllipsoid, CString(d.ellipsoid)));
    CS::CEllipsoid sphere;
    Identify(sphere, m_registry.ellipsoids.at(d.ellipsoid).name + " (sphere of its semi-major axis)",
             CString(figureKey), "");
    sphere.SetSemiMajor(figure->GetSemiMajor());
    sphere.SetSemiMinor(figure->GetSemiMajor());
    m_store.PutEllipsoid(sphere, false);
  }
  if (!m_store.FindObject(kObjectHorizontalDatum, CString("VM"), CString(datumKey))) {
    std::unique_ptr<CS::CEllipsoid> sphere(Stored<CS::CEllipsoid>(kObjectEllipsoid, CString(figureKey)));
    std::unique_ptr<CS::CPrimeMeridian> meridian(
      Stored<CS::CPrimeMeridian>(kObjectPrimeMeridian, CString(d.primeMeridian)));
    CS::CHorizontalDatum datum;
    Identify(datum, d.name + " (sphere of a)", CString(datumKey), "");
    datum.SetEllipsoid(*sphere);
    datum.SetPrimeMeridian(*meridian);
    m_store.PutHorizontalDatum(datum, false);
    std::unique_ptr<CT::DS::CDatumShift> shift(
      CT::DS::CDatumShiftFactory::CreateDatumShift(CT::DS::CDatumShift::kLongitudeRotation));
    ML::CAngularValue none;
    none.SetUnits(*AngularUnit(kDegree));
    none.SetValue(0.0);
    shift->GetParameters().SetAngularValue(CString("rotation"), none);
    std::unique_ptr<ML::CEnvelope> world(Stored<ML::CEnvelope>(kObjectEnvelope, Envelope({kWorldExtent})));
    Identify(*shift, d.name + " to its sphere of a", CString(datumKey), "");
    shift->SetEnvelope(*world);
    shift->GetSrcDatum() = *Datum(d.code);
    shift->GetDestDatum() = *Cached(m_datums, kObjectHorizontalDatum, datumKey);
    m_store.PutDatumShift(*shift, false);
  }
  CS::CHorizontalDatum const * sphereDatum =
    m_datums.count(datumKey) ? m_datums[datumKey].get() : Cached(m_datums, kObjectHorizontalDatum, datumKey);
  CS::CGeodeticCoordSys system(*base);
  system.GetIdentifiers().Clear();
  Identify(system, m_registry.geodeticCrs.at(code).name + " (sphere of a)", CString(key), "");
  system.SetHorizontalDatum(*sphereDatum);
  m_store.PutGeodeticCoordSys(system, false);
  return Cached(m_geodetic, kObjectGeodeticCoordSys, key);
}

bool Builder::OnSphere(std::string const & datum) const
{
  VelmoraData::Ellipsoid const & e = m_registry.ellipsoids.at(m_registry.datums.at(datum).ellipsoid);
  return !(e.invFlattening && *e.invFlattening > 0.0) && (!e.semiMinor || *e.semiMinor == e.semiMajor);
}

// A geographic system with heights above a geoid of a model the library
// reads and the build ships: the horizontal system's definition with a
// vertical reference of an unassociated vertical datum and the model. Only
// EGM96 (datum 5171) so far, on the raster made beside the data file.
bool Builder::GeoidCrs(std::string const & code)
{
  struct Model
  {
    char const * datum;
    CS::VR::CHeightModel::Type type;
    char const * file;
  };
  static Model const kModels[] = {{"5171", CS::VR::CHeightModel::kEGM96, "WW15MGH.DAC"}};
  CompoundCrs const & crs = m_registry.compoundCrs.at(code);
  Model const * model = nullptr;
  for (Model const & m : kModels)
    if (crs.verticalDatum == m.datum)
      model = &m;
  if (!model)
    return false;
  CS::CGeodeticCoordSys const * horizontal = GeodeticCrs(crs.horizontal);
  if (!horizontal) {
    Skip("compound: horizontal system not in the file");
    return false;
  }
  CString const area = Envelope(m_registry.ExtentsOf("compound_crs", code));
  std::unique_ptr<ML::CEnvelope> envelope(Stored<ML::CEnvelope>(kObjectEnvelope, area));
  CString const datumCode(crs.verticalDatum);
  if (!m_store.FindObject(kObjectVerticalDatum, CString("VM"), datumCode)) {
    std::unique_ptr<CS::VR::CVerticalDatum> datum(
      CS::VR::CVerticalDatumFactory::CreateVerticalDatum(CS::VR::CVerticalDatum::kGeneric));
    Identify(*datum, crs.verticalDatumName, datumCode, crs.verticalDatum);
    datum->SetEnvelope(*envelope);
    m_store.PutVerticalDatum(*datum, false);
    std::unique_ptr<CS::VR::CHeightModel> geoid(CS::VR::CHeightModelFactory::CreateHeightModel(model->type));
    Identify(*geoid, crs.verticalDatumName + " model", datumCode, "");
    geoid->SetEnvelope(*envelope);
    geoid->SetHorizontalDatum(horizontal->GetHorizontalDatum());
    // The raster lies beside the data file, which is where the data path points.
    geoid->GetParameters().SetString(CString("path"), CString(""));
    geoid->GetParameters().SetString(CString("file"), CString(model->file));
    m_store.PutHeightModel(*geoid, false);
    std::unique_ptr<CS::VR::CVerticalDatum> storedDatum(m_store.GetVerticalDatum(datumCode));
    std::unique_ptr<CS::VR::CHeightModel> storedModel(m_store.GetHeightModel(datumCode));
    CS::VR::CVerticalReference reference(storedDatum.get(), storedModel.get());
    Identify(reference, crs.verticalDatumName + " height", datumCode, "");
    m_store.PutVerticalReference(reference, false);
  }
  std::unique_ptr<CS::VR::CVerticalReference> reference(m_store.GetVerticalReference(datumCode));
  CS::CGeodeticCoordSys system(*horizontal);
  system.GetIdentifiers().Clear();
  Identify(system, crs.name, CString(code), code);
  system.SetVerticalReference(*reference);
  system.SetEnvelope(*envelope);
  m_store.PutGeodeticCoordSys(system, false);
  ++m_made["compound: vertical datum " + crs.verticalDatum + " -> geodetic system with a geoid model"];
  return true;
}

bool Builder::GeocentricCrs(std::string const & code)
{
  VelmoraData::GeodeticCrs const & crs = m_registry.geodeticCrs.at(code);
  auto const axes = m_registry.axes.find(crs.coordinateSystem);
  CS::CHorizontalDatum const * datum = Datum(crs.datum);
  CString const style =
    datum && axes != m_registry.axes.end() ? CartesianStyle(axes->second.front().uom) : CString();
  if (style.isEmpty()) {
    Skip("geocentric: datum or linear unit not in the file");
    return false;
  }
  CString const area = Envelope(m_registry.ExtentsOf("geodetic_crs", code));
  std::unique_ptr<ML::CCartesianPoint> pointStyle(Stored<ML::CCartesianPoint>(kObjectCartesianPoint, style));
  std::unique_ptr<ML::CEnvelope> envelope(Stored<ML::CEnvelope>(kObjectEnvelope, area));
  CS::CGeocentricCoordSys system;
  Identify(system, crs.name, CString(code), code);
  system.SetHorizontalDatum(*datum);
  system.SetPointStyle(*pointStyle);
  system.SetEnvelope(*envelope);
  return m_store.PutGeocentricCoordSys(system, false);
}

namespace {

// The UTM zone a transverse Mercator conversion is, or 0: the registry's UTM
// conversions by name, with the zone's numbers checked as well.
long UtmZone(Conversion const & c, bool & north)
{
  if (c.method != "9807" || c.name.rfind("UTM zone ", 0) != 0)
    return 0;
  auto const value = [&](char const * code, char const * uom) {
    auto const it = c.parameters.find(code);
    return it != c.parameters.end() && it->second.uom == uom ? std::stod(it->second.value) : std::nan("");
  };
  double const lat0 = value("8801", "9102"), lon0 = value("8802", "9102"), k0 = value("8805", "9201");
  double const fe = value("8806", "9001"), fn = value("8807", "9001");
  long const zone = std::lround((lon0 + 183.0) / 6.0);
  if (lat0 != 0.0 || k0 != 0.9996 || fe != 500000.0 || (fn != 0.0 && fn != 10000000.0) || zone < 1 || zone > 60 ||
      zone * 6.0 - 183.0 != lon0)
    return 0;
  north = fn == 0.0;
  return zone;
}

// The axis orientations of a projected system, reduced to what a method accepts.
bool AxesFit(std::vector<Axis> const & axes, Axes wanted)
{
  if (axes.size() < 2)
    return false;
  std::string const a = axes[0].orientation, b = axes[1].orientation;
  bool const eastNorth = (a == "east" && b == "north") || (a == "north" && b == "east");
  switch (wanted) {
  case Axes::kEastNorth:
    return eastNorth;
  case Axes::kWestSouth:
    return (a == "west" && b == "south") || (a == "south" && b == "west");
  case Axes::kPolar:
    return eastNorth || (IsAlong(a) && IsAlong(b));
  }
  return false;
}

} // namespace

bool Builder::ProjectedCrs(std::string const & code)
{
  VelmoraData::ProjectedCrs const & crs = m_registry.projectedCrs.at(code);
  auto const conversion = m_registry.conversions.find(crs.conversion);
  if (conversion == m_registry.conversions.end()) {
    Skip("projected: conversion deprecated or not in the registry");
    return false;
  }
  Conversion const & c = conversion->second;
  ProjectionMethod const * method = FindProjectionMethod(c.method);
  if (!method) {
    Skip("projected: no projection type for " + MethodName(c.method));
    return false;
  }
  auto const axes = m_registry.axes.find(crs.coordinateSystem);
  if (axes == m_registry.axes.end() || !AxesFit(axes->second, method->axes)) {
    Skip("projected: axes the projection type does not give (method " + c.method + ")");
    return false;
  }
  std::string datumCode = m_registry.geodeticCrs.count(crs.base) ? m_registry.geodeticCrs.at(crs.base).datum : "";
  if (method->figure == Figure::kSphereOnly && !datumCode.empty() && !OnSphere(datumCode)) {
    Skip("projected: a spherical method on an ellipsoid, whose radius no type takes (method " + c.method + ")");
    return false;
  }
  CS::CGeodeticCoordSys const * base = GeodeticCrs(crs.base);
  if (base && method->figure == Figure::kSphereOfA) {
    base = SphereOfA(crs.base);
    datumCode += kSphereOfA;
  }
  CS::CHorizontalDatum const * datum = base ? Datum(datumCode) : nullptr;
  CString const style = base ? ProjectedStyle(axes->second.front().uom) : CString();
  if (!datum || style.isEmpty()) {
    Skip("projected: base system or linear unit not in the file");
    return false;
  }

  bool north = true;
  long const zone = UtmZone(c, north);
  int const type = zone ? CS::PJ::CProjection::kUniversalTransverseMercator : method->type;
  std::unique_ptr<CS::PJ::CProjection> projection(
    CS::PJ::CProjectionFactory::CreateProjection(type, const_cast<CS::CHorizontalDatum *>(datum)));
  CParameterCollection & p = projection->GetParameters();
  if (zone) {
    p.SetLong(CString("zone"), zone);
    p.SetLong(CString("is_north"), north ? 1 : 0);
    p.SetLong(CString("autoset"), 0);
  } else {
    for (ParameterSource const & source : method->parameters) {
      CString const name(source.name);
      double value = source.fixed;
      std::string uom = p.GetItemType(name) == CParameter::kLinearValue ? kMetre : kDegree;
      if (source.epsg) {
        auto const given = c.parameters.find(source.epsg);
        if (given == c.parameters.end()) {
          Skip("projected: parameter " + std::string(source.epsg) + " missing (method " + c.method + ")");
          return false;
        }
        uom = given->second.uom;
        if (uom == "9110") {
          uom = kDegree;
          value = FromSexagesimal(given->second.value);
        } else {
          value = std::stod(given->second.value);
        }
      }
      switch (p.GetItemType(name)) {
      case CParameter::kAngularValue: {
        ML::CAngularUnit const * unit = AngularUnit(uom);
        if (!unit) {
          Skip("projected: angular unit " + uom + " not in the file");
          return false;
        }
        ML::CAngularValue angle;
        angle.SetUnits(*unit);
        angle.SetValue(value);
        p.SetAngularValue(name, angle);
        break;
      }
      case CParameter::kLinearValue: {
        ML::CLinearUnit const * unit = LinearUnit(uom);
        if (!unit) {
          Skip("projected: linear unit " + uom + " not in the file");
          return false;
        }
        ML::CLinearValue length;
        length.SetUnits(*unit);
        length.SetValue(value);
        p.SetLinearValue(name, length);
        break;
      }
      case CParameter::kLong:
        p.SetLong(name, std::lround(value));
        break;
      default: {
        // Plain numbers: a scale factor may come in parts per million.
        auto const factor = m_registry.units.find(uom);
        if (source.epsg && factor != m_registry.units.end() && factor->second.factor)
          value *= *factor->second.factor;
        p.SetDouble(name, value);
        break;
      }
      }
    }
  }

  if (MovesFalseOriginToPole(c.method)) {
    CS::BEllipsoid const & figure = datum->GetEllipsoid().GetInner();
    double const phiF = p.GetItemInternal(CString("latitude_of_origin")) * Constants::kRadiansPerDegree;
    double const s = std::sin(phiF);
    double const rhoF =
      figure.GetSemiMajor() * std::cos(phiF) / std::sqrt(1.0 - figure.GetEccentricitySquared() * s * s);
    double const nf = p.GetItemInternal(CString("false_northing"));
    p.SetItemInternal(CString("false_northing"), phiF < 0.0 ? nf - rhoF : nf + rhoF);
  }

  std::vector<std::string> const & extents = m_registry.ExtentsOf("projected_crs", code);
  CString const area = Envelope(extents);
  std::unique_ptr<ML::CProjectedPoint> pointStyle(Stored<ML::CProjectedPoint>(kObjectProjectedPoint, style));
  std::unique_ptr<ML::CEnvelope> envelope(Stored<ML::CEnvelope>(kObjectEnvelope, area));
  CS::CProjectedCoordSys system;
  Identify(system, crs.name, CString(code), code);
  system.SetGeodeticCoordSys(*base);
  system.SetProjection(*projection);
  system.SetPointStyle(*pointStyle);
  system.SetEnvelope(*envelope);
  m_store.PutProjectedCoordSys(system, false);
  ++m_made["projected: " + MethodName(c.method) + " -> " + CS::PJ::CProjection::TypeName(type).toStdString()];
  if (long const folder = AreaFolder(kObjectProjectedCoordSys, extents))
    m_store.AssignGroupID(folder, kObjectProjectedCoordSys, CString("VM"), CString(code));
  return true;
}

// Datum shifts ----------------------------------------------------------------

bool Builder::Shift(std::string const & code)
{
  Transformation const & t = m_registry.transformations.at(code);
  ShiftMethod const * method = FindShiftMethod(t.method);
  if (!method) {
    Skip("datum shift: no shift type for " + MethodName(t.method));
    return false;
  }
  auto const source = m_registry.geodeticCrs.find(t.source), target = m_registry.geodeticCrs.find(t.target);
  CS::CHorizontalDatum const * from = source != m_registry.geodeticCrs.end() ? Datum(source->second.datum) : nullptr;
  CS::CHorizontalDatum const * to = target != m_registry.geodeticCrs.end() ? Datum(target->second.datum) : nullptr;
  if (!from || !to) {
    Skip("datum shift: source or target not a geodetic system of the file");
    return false;
  }

  std::unique_ptr<CT::DS::CDatumShift> shift(CT::DS::CDatumShiftFactory::CreateDatumShift(method->type));
  CParameterCollection & p = shift->GetParameters();
  // Numbers of the registry by parameter code, in the unit of the parameter.
  auto const number = [&](char const * epsg, std::string & uom, double & value) {
    auto const it = t.parameters.find(epsg);
    if (it == t.parameters.end() || it->second.value.empty())
      return false;
    uom = it->second.uom;
    if (uom == "9110") {
      uom = kDegree;
      value = FromSexagesimal(it->second.value);
    } else {
      value = std::stod(it->second.value);
    }
    return true;
  };
  // Sets a linear parameter; returns its value in metres.
  auto const linear = [&](char const * name, char const * epsg, double & metres) {
    std::string uom;
    double value = 0.0;
    ML::CLinearUnit const * unit = number(epsg, uom, value) ? LinearUnit(uom) : nullptr;
    if (!unit)
      return false;
    ML::CLinearValue length;
    length.SetUnits(*unit);
    length.SetValue(value);
    p.SetLinearValue(CString(name), length);
    metres = length.GetInternal();
    return true;
  };
  // Sets an angular parameter, of the other sign if asked; returns it in radians.
  auto const angular = [&](char const * name, char const * epsg, bool negate, double & radians) {
    std::string uom;
    double value = 0.0;
    ML::CAngularUnit const * unit = number(epsg, uom, value) ? AngularUnit(uom) : nullptr;
    if (!unit)
      return false;
    ML::CAngularValue angle;
    angle.SetUnits(*unit);
    angle.SetValue(negate ? -value : value);
    p.SetAngularValue(CString(name), angle);
    radians = angle.GetRadians();
    return true;
  };

  bool ok = true;
  switch (method->kind) {
  case ShiftKind::kTranslation:
  case ShiftKind::kMolodensky: {
    double m = 0.0;
    ok = linear("dx", "8605", m) && linear("dy", "8606", m) && linear("dz", "8607", m);
    break;
  }
  case ShiftKind::kPositionVector:
  case ShiftKind::kCoordinateFrame:
  case ShiftKind::kBadekasPosition:
  case ShiftKind::kBadekasFrame: {
    // The library turns in the position-vector sense: coordinate-frame
    // rotations change sign.
    bool const frame = method->kind == ShiftKind::kCoordinateFrame || method->kind == ShiftKind::kBadekasFrame;
    double T[3] = {}, r[3] = {}, P[3] = {};
    ok = linear("dx", "8605", T[0]) && linear("dy", "8606", T[1]) && linear("dz", "8607", T[2]) &&
         angular("rx", "8608", frame, r[0]) && angular("ry", "8609", frame, r[1]) &&
         angular("rz", "8610", frame, r[2]);
    std::string uom;
    double scale = 0.0;
    auto const unit = number("8611", uom, scale) ? m_registry.units.find(uom) : m_registry.units.end();
    ok = ok && unit != m_registry.units.end() && unit->second.factor;
    if (!ok)
      break;
    double const k = scale * *unit->second.factor * 1e6; // parts per million
    p.SetDouble(CString("k"), k);
    if (method->kind == ShiftKind::kBadekasPosition || method->kind == ShiftKind::kBadekasFrame) {
      ok = linear("xp", "8617", P[0]) && linear("yp", "8618", P[1]) && linear("zp", "8667", P[2]);
      if (!ok)
        break;
      // The registry's X' = s R (X - P) + P + T against the library's
      // X' = s R X + (I - R) P + T, whose scale leaves the pivot term alone:
      // the same when T grows by (1 - s) R P.
      double const s = 1.0 + k * 1e-6;
      double const R[3][3] = {{1.0, -r[2], r[1]}, {r[2], 1.0, -r[0]}, {-r[1], r[0], 1.0}};
      char const * const names[3] = {"dx", "dy", "dz"};
      for (int i = 0; i < 3; ++i) {
        ML::CLinearValue length = p.GetLinearValue(CString(names[i]));
        length.SetInternal(T[i] + (1.0 - s) * (R[i][0] * P[0] + R[i][1] * P[1] + R[i][2] * P[2]));
        p.SetLinearValue(CString(names[i]), length);
      }
    }
    break;
  }
  case ShiftKind::kLongitudeRotation: {
    // The registry rotates longitudes counted from the source system's prime
    // meridian into ones counted from the target's. The library's geodetic
    // systems already count from Greenwich on both sides of a shift, so only
    // what remains of the rotation once both meridians are taken out is kept:
    // target = source + rotation - source meridian + target meridian.
    double radians = 0.0;
    ok = angular("rotation", "8602", false, radians);
    double from = 0.0, to = 0.0;
    ok = ok && MeridianDegrees(m_registry, source->second.datum, from) &&
         MeridianDegrees(m_registry, target->second.datum, to);
    if (ok) {
      double remaining = radians / Constants::kRadiansPerDegree - from + to;
      if (std::fabs(remaining) < kNegligibleRotation)
        remaining = 0.0; // the same angle reached through two units
      ML::CAngularValue angle = p.GetAngularValue(CString("rotation"));
      angle.SetUnits(*AngularUnit(kDegree));
      angle.SetValue(remaining);
      p.SetAngularValue(CString("rotation"), angle);
    }
    break;
  }
  case ShiftKind::kNTv2:
    ok = !t.grid.empty();
    if (ok)
      p.SetString(CString("cantrans_file"), CString(t.grid));
    break;
  case ShiftKind::kGeocentricGrid:
    // The GR3D1 text of France alone: New Caledonia's .mnt grids are another format.
    ok = t.grid.size() > 4 && t.grid.compare(t.grid.size() - 4, 4, ".txt") == 0;
    if (ok)
      p.SetString(CString("file"), CString(t.grid));
    break;
  case ShiftKind::kNadcon:
    ok = !t.grid.empty() && !t.grid2.empty();
    if (ok) {
      p.SetString(CString("las_name"), CString(t.grid));
      p.SetString(CString("los_name"), CString(t.grid2));
      p.SetString(CString("type"), CString("NADCON"));
    }
    break;
  }
  if (!ok) {
    Skip("datum shift: parameter or unit missing (method " + t.method + ")");
    return false;
  }

  std::vector<std::string> const & extents = m_registry.ExtentsOf(t.table.c_str(), code);
  CString const area = Envelope(extents);
  std::unique_ptr<ML::CEnvelope> envelope(Stored<ML::CEnvelope>(kObjectEnvelope, area));
  Identify(*shift, t.name, CString(code), code);
  shift->SetEnvelope(*envelope);
  shift->GetSrcDatum() = *from;
  shift->GetDestDatum() = *to;
  m_store.PutDatumShift(*shift, false);
  ++m_made["datum shift: " + MethodName(t.method) + " -> " + shift->GetTypeName().toStdString()];
  if (long const folder = AreaFolder(kObjectDatumShift, extents))
    m_store.AssignGroupID(folder, kObjectDatumShift, CString("VM"), CString(code));
  return true;
}

// The whole -------------------------------------------------------------------

void Builder::Build()
{
  if (!m_only) {
    // Everything of the registry's reference objects, also what no system uses.
    for (auto const & [code, unit] : m_registry.units) {
      if (unit.type == "angle")
        AngularUnit(code);
      else if (unit.type == "length")
        LinearUnit(code);
    }
    for (auto const & [code, pm] : m_registry.primeMeridians)
      PrimeMeridian(code);
    for (auto const & [code, ellipsoid] : m_registry.ellipsoids)
      Ellipsoid(code);
    for (auto const & [code, datum] : m_registry.datums)
      if (!Datum(code))
        Skip("datum: ellipsoid or prime meridian not in the file");
  }
  for (auto const & [code, crs] : m_registry.geodeticCrs) {
    if (!Wanted(code))
      continue;
    if (crs.type == "geocentric")
      GeocentricCrs(code);
    else if (crs.type.rfind("geographic", 0) == 0)
      GeodeticCrs(code);
  }
  for (auto const & [code, crs] : m_registry.projectedCrs)
    if (Wanted(code))
      ProjectedCrs(code);
  for (auto const & [code, crs] : m_registry.compoundCrs)
    if (Wanted(code))
      GeoidCrs(code);
  for (auto const & [code, t] : m_registry.transformations)
    if (Wanted(code))
      Shift(code);
}

} // namespace VelmoraData
