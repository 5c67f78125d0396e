#include <velmora/datasource/import/ImportObjects_p.h>

#include <velmora/datasource/import/ImportTables_p.h>
#include <velmora/datasource/import/miParser.h>

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
#include <velmora/transforms/datumshifts/DatumShift.h>

#include <ogr_spatialref.h>

#include <QStringList>

#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <string>

namespace Velmora::DB {

using EX::CVelmoraException;
using PJ = CS::PJ::CProjection;

using namespace ImportTables;

namespace {

// Well-known objects of the store that imports fall back on.
constexpr char kWKT[] = "WKT";
constexpr char kArcSecondCode[] = "9104";
constexpr char kWgs84Datum[] = "6326";
constexpr char kGreenwichCode[] = "8901";
constexpr char kDegreeStyle[] = "GEODETIC_POINT_DEGREES";
constexpr char kMetreStyle[] = "PROJECTED_POINT_METERS";
constexpr char kStandardEnvelope[] = "STANDARD_ENVELOPE";
constexpr char kCodePrefix[] = "wkt_";

// Tolerances under which a foreign number names a stored one.
constexpr double kUnitTolerance = 1e-12;     // relative, unit factors
constexpr double kAxisTolerance = 1e-3;      // metres, semi-major axes
constexpr double kInvFlatTolerance = 1e-8;   // inverse flattening
constexpr double kMinorTolerance = 1e-3;     // metres, semi-minor axes
constexpr double kMeridianTolerance = 1e-9;  // degrees
constexpr double kArcSecondsPerDegree = 3600.0;
// Name matching: at most this many tokens of a name take part.
constexpr int kMaxTokens = 32;

bool Near(double a, double b, double tolerance) { return std::fabs(a - b) <= tolerance; }

void Identify(CSerializable & object, CString const & name)
{
  object.SetName(name);
  object.GetIdentifiers().Add(CString(kVM), CString(kCodePrefix) + name);
  object.GetIdentifiers().Add(CString(kWKT), CString(kCodePrefix) + name);
}

CString Text(char const * text) { return CString(text ? text : ""); }

[[noreturn]] void Fail(char const * location, CString const & text)
{
  throw CVelmoraException(CVelmoraException::kImportFailed, CString(location), text);
}

// The lowercased name cut at each of " -_", at most kMaxTokens pieces; the
// prefix "D_" of datum names and a trailing "_CS" left out.
QStringList Tokens(CString const & name, bool datum)
{
  QString text = name;
  if (datum && text.startsWith(QLatin1String("D_")))
    text = text.mid(2);
  if (text.endsWith(QLatin1String("_CS")))
    text.chop(3);
  QStringList tokens;
  QString token;
  for (QChar const c : text.toLower() + QLatin1Char(' ')) {
    if (c != QLatin1Char(' ') && c != QLatin1Char('-') && c != QLatin1Char('_')) {
      token += c;
    } else if (!token.isEmpty()) {
      if (tokens.size() < kMaxTokens)
        tokens << token;
      token.clear();
    }
  }
  return tokens;
}

// The tokens of one name (two characters or more) that the other name holds.
int Hits(QStringList const & tokens, QString const & other, int & counted)
{
  int hits = 0;
  counted = 0;
  for (QString const & t : tokens)
    if (t.size() >= 2) {
      ++counted;
      if (other.contains(t))
        ++hits;
    }
  return hits;
}

template <class Handle>
Handle * Stored(CDataSource & store, long type, CString const & code)
{
  CSerializableDataDB const * body = store.FindObject(type, CString(kVM), code);
  return body ? dynamic_cast<Handle *>(store.CreateObject(*body)) : nullptr;
}

bool SameFigure(CS::CEllipsoid const & e, double a, double invf)
{
  if (!Near(e.GetSemiMajor().GetInternal(), a, kAxisTolerance))
    return false;
  double const storedInvf = e.GetInvFlattening();
  bool const sphere = invf == 0.0 || !std::isfinite(invf);
  bool const storedSphere = storedInvf == 0.0 || !std::isfinite(storedInvf);
  if (sphere || storedSphere)
    return sphere == storedSphere;
  if (e.GetInvFlatDefinitive())
    return Near(storedInvf, invf, kInvFlatTolerance * storedInvf);
  return Near(e.GetSemiMinor().GetInternal(), a * (1.0 - 1.0 / invf), kMinorTolerance);
}

// The figure and meridian the WKT gives, in metres and degrees.
struct Figure
{
  double a, invf, meridian;
};
Figure FigureOf(OGRSpatialReference const & srs)
{
  OGRErr err = OGRERR_NONE;
  Figure f{srs.GetSemiMajor(&err), srs.GetInvFlattening(&err), srs.GetPrimeMeridian()};
  return f;
}

bool FitsFigure(CS::CHorizontalDatum const & datum, Figure const & f)
{
  return SameFigure(datum.GetEllipsoid(), f.a, f.invf) &&
         Near(datum.GetPrimeMeridian().GetLongitude().GetInternal(), f.meridian, kMeridianTolerance);
}

bool IsEpsg(char const * authority) { return authority && !std::strcmp(authority, kEPSG); }

} // namespace

void ImportObjects::SetAngle(CParameterCollection & p, char const * name, double degrees,
                             ML::CAngularUnit const & unit)
{
  ML::CAngularValue v;
  v.SetUnits(unit);
  v.SetValue(degrees);
  p.SetAngularValue(CString(name), v);
}

void ImportObjects::SetLength(CParameterCollection & p, char const * name, double value, ML::CLinearUnit const & unit)
{
  ML::CLinearValue v;
  v.SetUnits(unit);
  v.SetValue(value);
  p.SetLinearValue(CString(name), v);
}

void ImportObjects::Put(long type, CSerializable const & object) { m_store.PutSerializable(type, object, true); }

// Units, styles, envelope -------------------------------------------------------

ML::CAngularUnit * ImportObjects::AngularUnit(CString const & name, double unitsPerDegree, char const * epsg)
{
  if (epsg && *epsg)
    if (ML::CAngularUnit * unit = m_store.GetAngularUnitNonThrow(CString(kEPSG), CString(epsg)))
      return unit;
  if (Near(unitsPerDegree, 1.0, kUnitTolerance))
    if (ML::CAngularUnit * unit = m_store.GetAngularUnitNonThrow(CString(kEPSG), CString(kDegreeCode)))
      return unit;
  for (auto & object : m_store.Search(kObjectAngularUnit)) {
    auto * unit = dynamic_cast<ML::CAngularUnit *>(object.get());
    if (unit && Near(unit->GetUnitsPerDegree(), unitsPerDegree, kUnitTolerance * unitsPerDegree)) {
      object.release();
      return unit;
    }
  }
  ML::CAngularUnit unit(name, CString(), unitsPerDegree);
  Identify(unit, name);
  Put(kObjectAngularUnit, unit);
  return Stored<ML::CAngularUnit>(m_store, kObjectAngularUnit, unit.GetIssuerCode(CString(kVM)));
}

ML::CLinearUnit * ImportObjects::LinearUnit(CString const & name, double unitsPerMetre, char const * epsg)
{
  if (epsg && *epsg)
    if (ML::CLinearUnit * unit = m_store.GetLinearUnitNonThrow(CString(kEPSG), CString(epsg)))
      return unit;
  if (Near(unitsPerMetre, 1.0, kUnitTolerance))
    if (ML::CLinearUnit * unit = m_store.GetLinearUnitNonThrow(CString(kEPSG), CString(kMetreCode)))
      return unit;
  for (auto & object : m_store.Search(kObjectLinearUnit)) {
    auto * unit = dynamic_cast<ML::CLinearUnit *>(object.get());
    if (unit && Near(unit->GetUnitsPerMeter(), unitsPerMetre, kUnitTolerance * unitsPerMetre)) {
      object.release();
      return unit;
    }
  }
  ML::CLinearUnit unit(name, CString(), unitsPerMetre);
  Identify(unit, name);
  Put(kObjectLinearUnit, unit);
  return Stored<ML::CLinearUnit>(m_store, kObjectLinearUnit, unit.GetIssuerCode(CString(kVM)));
}

CString ImportObjects::GeodeticStyle(ML::CAngularUnit const & unit)
{
  bool const degrees = Near(unit.GetUnitsPerDegree(), 1.0, kUnitTolerance);
  CString const name = CString("Geodetic Point in ") + unit.GetName();
  CString const code = degrees ? CString(kDegreeStyle) : CString(kCodePrefix) + name;
  if (m_store.FindObject(kObjectGeodeticPoint, CString(kVM), code))
    return code;
  std::unique_ptr<ML::CLinearUnit> metre(LinearUnit(CString("metre"), 1.0, kMetreCode));
  ML::CGeodeticPoint style(3);
  style.SetName(name);
  style.GetIdentifiers().Add(CString(kVM), code);
  style.GetLon().SetUnits(unit);
  style.GetLon().SetLabel(CString("Longitude"));
  style.GetLat().SetUnits(unit);
  style.GetLat().SetLabel(CString("Latitude"));
  style.GetHgt().SetUnits(*metre);
  style.GetHgt().SetLabel(CString("Height"));
  Put(kObjectGeodeticPoint, style);
  return code;
}

CString ImportObjects::ProjectedStyle(ML::CLinearUnit const & unit)
{
  bool const metres = Near(unit.GetUnitsPerMeter(), 1.0, kUnitTolerance);
  CString const name = CString("Projected Point in ") + unit.GetName();
  CString const code = metres ? CString(kMetreStyle) : CString(kCodePrefix) + name;
  if (m_store.FindObject(kObjectProjectedPoint, CString(kVM), code))
    return code;
  ML::CProjectedPoint style(3);
  style.SetName(name);
  style.GetIdentifiers().Add(CString(kVM), code);
  style.GetEast().SetUnits(unit);
  style.GetEast().SetLabel(CString("Easting"));
  style.GetNorth().SetUnits(unit);
  style.GetNorth().SetLabel(CString("Northing"));
  style.GetHgt().SetUnits(unit);
  style.GetHgt().SetLabel(CString("Height"));
  Put(kObjectProjectedPoint, style);
  return code;
}

// Imported systems come without an area of use: theirs takes every point.
CString ImportObjects::StandardEnvelope()
{
  CString const code(kStandardEnvelope);
  if (m_store.FindObject(kObjectEnvelope, CString(kVM), code))
    return code;
  std::unique_ptr<ML::CAngularUnit> degree(AngularUnit(CString("degree"), 1.0, kDegreeCode));
  std::unique_ptr<ML::CGeodeticPoint> corner(
    Stored<ML::CGeodeticPoint>(m_store, kObjectGeodeticPoint, GeodeticStyle(*degree)));
  corner->SetDimensions(2);
  ML::CEnvelope envelope(ML::kGeodeticPoint);
  envelope.SetName(CString("Standard envelope"));
  envelope.GetIdentifiers().Add(CString(kVM), code);
  envelope.SetAlwaysAccept(true);
  corner->SetInternals(-360.0, -90.0);
  envelope.SetMinPoint(*corner);
  corner->SetInternals(360.0, 90.0);
  envelope.SetMaxPoint(*corner);
  Put(kObjectEnvelope, envelope);
  return code;
}

// Name matching ------------------------------------------------------------------

// The stored object of `type` whose name fits the foreign one best and that
// `accept` takes: every token of the foreign name must be found in it, and
// its own tokens found in the foreign name add to its count.
template <class Accept>
CString BestByName(CDataSource const & store, long type, CString const & foreign, Accept accept)
{
  bool const datum = type == kObjectHorizontalDatum;
  QStringList const mine = Tokens(foreign, datum);
  QString const mineText = mine.join(QLatin1Char(' '));
  if (mine.isEmpty() || mineText.contains(QLatin1String("unnamed")))
    return CString();
  CString best;
  int bestScore = 0;
  bool bestRetired = false;
  for (CSerializableDataDB * body : store.SearchDB(type)) {
    QStringList const theirs = Tokens(body->GetName(), datum);
    QString const theirText = theirs.join(QLatin1Char(' '));
    int mineCounted = 0, theirCounted = 0;
    int const mineHits = Hits(mine, theirText, mineCounted);
    if (mineCounted == 0 || mineHits < mineCounted || theirText.contains(QLatin1String("unnamed")))
      continue;
    int const score = mineHits + Hits(theirs, mineText, theirCounted);
    // A retired definition never displaces a current one of the same count.
    bool const retired = body->GetName().contains(QLatin1String("DEPRECATED:"), Qt::CaseInsensitive);
    if (!(score > bestScore || (score == bestScore && bestRetired && !retired)))
      continue;
    std::unique_ptr<CSerializable> object(store.CreateObject(*body));
    if (!object || !accept(*object))
      continue;
    best = body->GetIdentifiers().GetItem(CString(kVM));
    bestScore = score;
    bestRetired = retired;
  }
  return best;
}

CString ImportObjects::MatchName(CDataSource const & store, long type, CString const & foreign,
                                 CS::CEllipsoid const * ellipsoid, CS::CPrimeMeridian const * meridian)
{
  return BestByName(store, type, foreign, [&](CSerializable const & object) {
    auto const * d = dynamic_cast<CS::CHorizontalDatum const *>(&object);
    if (!d)
      return !ellipsoid && !meridian;
    return (!ellipsoid || d->GetEllipsoid().IsNearlyEqual(*ellipsoid)) &&
           (!meridian || d->GetPrimeMeridian().IsNearlyEqual(*meridian));
  });
}

// Datums --------------------------------------------------------------------------

CS::CHorizontalDatum * ImportObjects::Datum(OGRSpatialReference const & srs)
{
  Figure const figure = FigureOf(srs);
  // An authority code counts only where its datum has the figure and meridian
  // given: GDAL names ESRI's "D_NTF" on the Paris meridian EPSG's Greenwich NTF.
  if (IsEpsg(srs.GetAuthorityName("GEOGCS|DATUM"))) {
    std::unique_ptr<CS::CHorizontalDatum> d(
      m_store.GetHorizontalDatumNonThrow(CString(kEPSG), Text(srs.GetAuthorityCode("GEOGCS|DATUM"))));
    if (d && FitsFigure(*d, figure))
      return d.release();
  }
  CString const name = Text(srs.GetAttrValue("DATUM"));
  double shift[7] = {};
  bool const hasShift = srs.GetTOWGS84(shift, 7) == OGRERR_NONE;
  CString code = ImportTables::DatumCodeFromName(name);
  if (code.isEmpty() && hasShift)
    code = ImportTables::DatumCodeFromShift(shift);
  if (!code.isEmpty()) {
    std::unique_ptr<CS::CHorizontalDatum> d(m_store.GetHorizontalDatumNonThrow(CString(kEPSG), code));
    if (d && FitsFigure(*d, figure))
      return d.release();
  }
  // By name, among datums on the same figure and meridian.
  CString const best = BestByName(m_store, kObjectHorizontalDatum, name, [&](CSerializable const & object) {
    auto const * d = dynamic_cast<CS::CHorizontalDatum const *>(&object);
    return d && FitsFigure(*d, figure);
  });
  if (!best.isEmpty())
    return Stored<CS::CHorizontalDatum>(m_store, kObjectHorizontalDatum, best);
  return NewDatum(srs);
}

CS::CHorizontalDatum * ImportObjects::NewDatum(OGRSpatialReference const & srs)
{
  Figure const figure = FigureOf(srs);
  // The prime meridian.
  std::unique_ptr<CS::CPrimeMeridian> meridian;
  if (IsEpsg(srs.GetAuthorityName("GEOGCS|PRIMEM")))
    meridian.reset(m_store.GetPrimeMeridianNonThrow(CString(kEPSG), Text(srs.GetAuthorityCode("GEOGCS|PRIMEM"))));
  if (!meridian && figure.meridian == 0.0)
    meridian.reset(m_store.GetPrimeMeridianNonThrow(CString(kEPSG), CString(kGreenwichCode)));
  if (!meridian) {
    std::unique_ptr<ML::CAngularUnit> degree(AngularUnit(CString("degree"), 1.0, kDegreeCode));
    CS::CPrimeMeridian pm;
    Identify(pm, Text(srs.GetAttrValue("PRIMEM")));
    pm.GetLongitude().SetUnits(*degree);
    pm.GetLongitude().SetValue(figure.meridian);
    Put(kObjectPrimeMeridian, pm);
    meridian.reset(Stored<CS::CPrimeMeridian>(m_store, kObjectPrimeMeridian, pm.GetIssuerCode(CString(kVM))));
  }
  // The ellipsoid: by authority, by figure among the stored ones, or new.
  std::unique_ptr<CS::CEllipsoid> ellipsoid;
  if (IsEpsg(srs.GetAuthorityName("GEOGCS|DATUM|SPHEROID")))
    ellipsoid.reset(
      m_store.GetEllipsoidNonThrow(CString(kEPSG), Text(srs.GetAuthorityCode("GEOGCS|DATUM|SPHEROID"))));
  if (ellipsoid && !SameFigure(*ellipsoid, figure.a, figure.invf))
    ellipsoid.reset();
  if (!ellipsoid)
    for (auto & object : m_store.Search(kObjectEllipsoid)) {
      auto * e = dynamic_cast<CS::CEllipsoid *>(object.get());
      if (e && SameFigure(*e, figure.a, figure.invf)) {
        object.release();
        ellipsoid.reset(e);
        break;
      }
    }
  if (!ellipsoid) {
    std::unique_ptr<ML::CLinearUnit> metre(LinearUnit(CString("metre"), 1.0, kMetreCode));
    CS::CEllipsoid e;
    Identify(e, Text(srs.GetAttrValue("SPHEROID")));
    ML::CLinearValue axis;
    axis.SetUnits(*metre);
    axis.SetValue(figure.a);
    e.SetSemiMajor(axis);
    if (figure.invf > 0.0) {
      e.SetInvFlattening(figure.invf);
    } else {
      e.SetSemiMinor(axis);
    }
    Put(kObjectEllipsoid, e);
    ellipsoid.reset(Stored<CS::CEllipsoid>(m_store, kObjectEllipsoid, e.GetIssuerCode(CString(kVM))));
  }
  CS::CHorizontalDatum datum;
  Identify(datum, Text(srs.GetAttrValue("DATUM")));
  datum.SetEllipsoid(*ellipsoid);
  datum.SetPrimeMeridian(*meridian);
  Put(kObjectHorizontalDatum, datum);
  std::unique_ptr<CS::CHorizontalDatum> stored(
    Stored<CS::CHorizontalDatum>(m_store, kObjectHorizontalDatum, datum.GetIssuerCode(CString(kVM))));
  ShiftToWgs84(srs, *stored);
  return stored.release();
}

// TOWGS84 in WKT turns in the position-vector sense with the scale in parts
// per million, as the library's seven-parameter shift does.
void ImportObjects::ShiftToWgs84(OGRSpatialReference const & srs, CS::CHorizontalDatum const & datum)
{
  double v[7] = {};
  if (srs.GetTOWGS84(v, 7) != OGRERR_NONE)
    return;
  bool const rotated = v[3] != 0.0 || v[4] != 0.0 || v[5] != 0.0 || v[6] != 0.0;
  if (!rotated && v[0] == 0.0 && v[1] == 0.0 && v[2] == 0.0)
    return;
  std::unique_ptr<CS::CHorizontalDatum> wgs84(m_store.GetHorizontalDatumNonThrow(CString(kEPSG), CString(kWgs84Datum)));
  if (!wgs84)
    return;
  std::unique_ptr<CT::DS::CDatumShift> shift(CT::DS::CDatumShiftFactory::CreateDatumShift(
    rotated ? CT::DS::CDatumShift::kBursaWolfe : CT::DS::CDatumShift::kGeocentricTranslation));
  std::unique_ptr<ML::CLinearUnit> metre(LinearUnit(CString("metre"), 1.0, kMetreCode));
  std::unique_ptr<ML::CAngularUnit> second(
    AngularUnit(CString("arc-second"), kArcSecondsPerDegree, kArcSecondCode));
  CParameterCollection & p = shift->GetParameters();
  char const * const linear[] = {"dx", "dy", "dz"};
  for (int i = 0; i < 3; ++i) {
    ML::CLinearValue length;
    length.SetUnits(*metre);
    length.SetValue(v[i]);
    p.SetLinearValue(CString(linear[i]), length);
  }
  if (rotated) {
    char const * const angular[] = {"rx", "ry", "rz"};
    for (int i = 0; i < 3; ++i) {
      ML::CAngularValue angle;
      angle.SetUnits(*second);
      angle.SetValue(v[3 + i]);
      p.SetAngularValue(CString(angular[i]), angle);
    }
    p.SetDouble(CString("k"), v[6]);
  }
  CString const name = CString(kCodePrefix) + datum.GetName() + CString("_to_WGS84");
  shift->SetName(name);
  shift->GetIdentifiers().Add(CString(kVM), name);
  shift->GetIdentifiers().Add(CString(kWKT), name);
  std::unique_ptr<ML::CEnvelope> envelope(Stored<ML::CEnvelope>(m_store, kObjectEnvelope, StandardEnvelope()));
  shift->SetEnvelope(*envelope);
  shift->GetSrcDatum() = datum;
  shift->GetDestDatum() = *wgs84;
  Put(kObjectDatumShift, *shift);
}

// Systems ---------------------------------------------------------------------------

ML::CAngularUnit * ImportObjects::GeographicUnit(OGRSpatialReference const & srs)
{
  char * unitName = nullptr;
  double const radiansPerUnit = srs.GetAngularUnits(const_cast<char const **>(&unitName));
  if (!(radiansPerUnit > 0.0) || !std::isfinite(radiansPerUnit))
    Fail("miParser::BuildGeodeticSystem", CString("Invalid angular unit"));
  return AngularUnit(Text(unitName), Constants::kRadiansPerDegree / radiansPerUnit,
                     srs.GetAuthorityCode("GEOGCS|UNIT"));
}

CS::CGeodeticCoordSys * ImportObjects::Geodetic(OGRSpatialReference const & srs)
{
  if (!srs.GetAttrNode("GEOGCS"))
    Fail("miParser::BuildGeodeticSystem", CString("No GEOGCS"));
  if (IsEpsg(srs.GetAuthorityName("GEOGCS")))
    if (CS::CGeodeticCoordSys * stored =
          m_store.GetGeodeticCoordSysNonThrow(CString(kEPSG), Text(srs.GetAuthorityCode("GEOGCS"))))
      return stored;
  std::unique_ptr<ML::CAngularUnit> unit(GeographicUnit(srs));
  Figure const figure = FigureOf(srs);
  if (!(figure.a > 0.0) || !std::isfinite(figure.a) || figure.invf < 0.0 || !std::isfinite(figure.invf) ||
      !std::isfinite(figure.meridian))
    Fail("miParser::BuildGeodeticSystem", CString("Invalid ellipsoid"));
  std::unique_ptr<CS::CHorizontalDatum> datum(Datum(srs));
  std::unique_ptr<ML::CGeodeticPoint> style(
    Stored<ML::CGeodeticPoint>(m_store, kObjectGeodeticPoint, GeodeticStyle(*unit)));
  std::unique_ptr<ML::CEnvelope> envelope(Stored<ML::CEnvelope>(m_store, kObjectEnvelope, StandardEnvelope()));
  CS::CGeodeticCoordSys system;
  Identify(system, Text(srs.GetAttrValue("GEOGCS")));
  system.SetHorizontalDatum(*datum);
  system.SetPointStyle(*style);
  system.SetEnvelope(*envelope);
  Put(kObjectGeodeticCoordSys, system);
  return Stored<CS::CGeodeticCoordSys>(m_store, kObjectGeodeticCoordSys, system.GetIssuerCode(CString(kVM)));
}

CS::CProjectedCoordSys * ImportObjects::Projected(OGRSpatialReference const & srs)
{
  // What can refuse is checked before anything is stored.
  CString const method = Text(srs.GetAttrValue("PROJECTION"));
  if (m_parser.ProjectionTypeOf(method) < 0)
    Fail("miParser::BuildProjection", CString("Could not create suitable projection for ") + method);
  if (!(srs.GetLinearUnits() > 0.0))
    Fail("miParser::BuildProjectedSystem", CString("Invalid linear unit"));
  std::unique_ptr<CS::CGeodeticCoordSys> base;
  try {
    base.reset(Geodetic(srs));
  } catch (...) {
    Fail("miParser::BuildProjectedSystem", CString("Could not build Geodetic Coord System"));
  }
  char * unitName = nullptr;
  double const metresPerUnit = srs.GetLinearUnits(const_cast<char const **>(&unitName));
  if (!(metresPerUnit > 0.0))
    Fail("miParser::BuildProjectedSystem", CString("Invalid linear unit"));
  std::unique_ptr<ML::CLinearUnit> unit(
    LinearUnit(Text(unitName), 1.0 / metresPerUnit, srs.GetAuthorityCode("PROJCS|UNIT")));
  CS::CHorizontalDatum & datum = const_cast<CS::CHorizontalDatum &>(base->GetHorizontalDatum());
  std::unique_ptr<CS::PJ::CProjection> projection(Projection(srs, datum, *unit));
  std::unique_ptr<ML::CProjectedPoint> style(
    Stored<ML::CProjectedPoint>(m_store, kObjectProjectedPoint, ProjectedStyle(*unit)));
  std::unique_ptr<ML::CEnvelope> envelope(Stored<ML::CEnvelope>(m_store, kObjectEnvelope, StandardEnvelope()));
  CS::CProjectedCoordSys system;
  Identify(system, Text(srs.GetAttrValue("PROJCS")));
  system.SetGeodeticCoordSys(*base);
  system.SetProjection(*projection);
  system.SetPointStyle(*style);
  system.SetEnvelope(*envelope);
  Put(kObjectProjectedCoordSys, system);
  return Stored<CS::CProjectedCoordSys>(m_store, kObjectProjectedCoordSys, system.GetIssuerCode(CString(kVM)));
}

CS::PJ::CProjection * ImportObjects::Projection(OGRSpatialReference const & srs, CS::CHorizontalDatum & datum,
                                                ML::CLinearUnit const & linear)
{
  CString const method = Text(srs.GetAttrValue("PROJECTION"));
  long centre = 0, isGamma = 0, useGamma = 0;
  int type = m_parser.ProjectionTypeOf(method, &centre, &isGamma, &useGamma);
  if (type < 0)
    Fail("miParser::BuildProjection", CString("Could not create suitable projection for ") + method);
  // Generic cylindrical names stand for Gall's and Behrmann's projections when the system says so.
  CString const systemName = Text(srs.GetAttrValue("PROJCS"));
  if (type == PJ::kEqualAreaCylindrical && systemName.contains(QLatin1String("Behrmann"), Qt::CaseInsensitive))
    type = PJ::kBehrmann;
  else if ((type == PJ::kEqualAreaCylindrical || type == PJ::kEquidistantCylindrical) &&
           systemName.contains(QLatin1String("Gall"), Qt::CaseInsensitive))
    type = PJ::kGallStereographic;

  // The parameters as given: angles in the geographic unit, lengths in the system's.
  double const degreesPerUnit = srs.GetAngularUnits() / Constants::kRadiansPerDegree;
  std::map<std::string, double> given;
  OGR_SRSNode const * node = srs.GetAttrNode("PROJCS");
  bool const twoParallelMercator = method == CString("Mercator_2SP");
  for (int i = 0; node && i < node->GetChildCount(); ++i) {
    OGR_SRSNode const * child = node->GetChild(i);
    if (!EQUAL(child->GetValue(), "PARAMETER") || child->GetChildCount() < 2)
      continue;
    CString const wkt = Text(child->GetChild(0)->GetValue());
    char const * parameter = ImportTables::ParameterOfWktName(wkt);
    if (twoParallelMercator && parameter && !std::strcmp(parameter, "standard_parallel1"))
      parameter = "latitude_of_origin";
    if (parameter)
      given[parameter] = CPLAtof(child->GetChild(1)->GetValue());
  }
  auto const value = [&](char const * name, double fallback) {
    auto const it = given.find(name);
    return it == given.end() ? fallback : it->second;
  };

  // A transverse Mercator with a zone's values is that UTM zone.
  long zone = 0;
  bool north = true;
  if (type == PJ::kTransverseMercator && Near(linear.GetUnitsPerMeter(), 1.0, kUnitTolerance) &&
      value("scale_factor", 1.0) == kUtmScale && value("latitude_of_origin", 0.0) == 0.0 &&
      value("false_easting", 0.0) == kUtmFalseEasting) {
    double const fn = value("false_northing", 0.0);
    double const z = (value("central_meridian", 0.0) * degreesPerUnit + kUtmZoneOffset) / kUtmZoneWidth;
    if ((fn == 0.0 || fn == kUtmSouthFalseNorthing) && z == std::floor(z) && z >= 1 && z <= kUtmZones) {
      zone = static_cast<long>(z);
      north = fn == 0.0;
      type = PJ::kUniversalTransverseMercator;
    }
  }

  std::unique_ptr<CS::PJ::CProjection> projection(CS::PJ::CProjectionFactory::CreateProjection(type, &datum));
  CParameterCollection & p = projection->GetParameters();
  if (zone) {
    p.SetLong(CString("zone"), zone);
    p.SetLong(CString("is_north"), north ? 1 : 0);
    p.SetLong(CString("autoset"), 0);
    return projection.release();
  }
  // Degrees under any code are the stored systems' degree (a unit's code
  // decides its comparison); other units are taken as the WKT names them.
  std::unique_ptr<ML::CAngularUnit> geographic(Near(degreesPerUnit, 1.0, kUnitTolerance)
                                                 ? AngularUnit(CString("degree"), 1.0, kDegreeCode)
                                                 : GeographicUnit(srs));
  std::map<std::string, long> const flags = {
    {"center_flag", centre}, {"azimuth_is_gamma", isGamma}, {"use_gamma_flag", useGamma}, {"unrectified_flag", 0}};
  for (long i = 0; i < p.Count(); ++i) {
    CString const name = p.ParameterNameAtIndex(i);
    std::string const key = name.toStdString();
    // Parameters WKT leaves out take its defaults: a scale of one, zero elsewhere.
    double const v = value(key.c_str(), key == "scale_factor" ? 1.0 : 0.0);
    switch (p.GetItemType(name)) {
    case CParameter::kAngularValue: {
      // Kept in the geographic unit the WKT gives them in, as stored systems
      // keep theirs, so that a grad system matches its stored self.
      ML::CAngularValue angle;
      angle.SetUnits(*geographic);
      angle.SetValue(v);
      p.SetAngularValue(name, angle);
      break;
    }
    case CParameter::kLinearValue: {
      ML::CLinearValue length;
      length.SetUnits(linear);
      length.SetValue(v);
      p.SetLinearValue(name, length);
      break;
    }
    case CParameter::kLong: {
      auto const flag = flags.find(key);
      p.SetLong(name, flag != flags.end() ? flag->second : std::lround(v));
      break;
    }
    case CParameter::kString:
      p.SetString(name, CString());
      break;
    default:
      p.SetDouble(name, v);
      break;
    }
  }
  // The rectified grid takes the azimuth's angle when none is given.
  if (p.Exists(CString("rotation_angle")) && !given.count("rotation_angle") && given.count("azimuth")) {
    ML::CAngularValue angle = p.GetAngularValue(CString("azimuth"));
    p.SetAngularValue(CString("rotation_angle"), angle);
  }
  return projection.release();
}

} // namespace Velmora::DB
