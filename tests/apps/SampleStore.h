#pragma once
// A small data file made through the library's own API: degrees and metres,
// the WGS 84 and International 1924 ellipsoids, the WGS 84 and ED50 datums
// with their geodetic systems, UTM zone 32N on each, and the geocentric
// translation between the two datums. Written with CommitToFile into a
// directory that holds the schema.
#include <velmora/velmora.h>

#include <QFile>
#include <QString>

#include <memory>
#include <stdexcept>

namespace VelmoraTest {

namespace SampleDetail {

using namespace Velmora;

inline void Check(bool ok, char const * what)
{
  if (!ok)
    throw std::runtime_error(std::string("sample store: ") + what);
}

template <class T>
void Name(T & object, char const * name, char const * vm, char const * epsg = nullptr)
{
  object.SetName(CString(name));
  object.GetIdentifiers().Add(CString("VM"), CString(vm));
  if (epsg)
    object.GetIdentifiers().Add(CString("EPSG"), CString(epsg));
}

struct Builder
{
  DB::CDataSource & store;
  std::unique_ptr<ML::CAngularUnit> degree;
  std::unique_ptr<ML::CLinearUnit> metre;
  std::unique_ptr<ML::CGeodeticPoint> degrees;

  ML::CAngularValue Angle(double value) const
  {
    ML::CAngularValue angle;
    angle.SetUnits(*degree);
    angle.SetValue(value);
    return angle;
  }
  ML::CLinearValue Length(double value) const
  {
    ML::CLinearValue length;
    length.SetUnits(*metre);
    length.SetValue(value);
    return length;
  }

  void Units()
  {
    ML::CAngularUnit deg(CString("Degree"), CString("deg"), 1.0);
    Name(deg, "Degree", "1", "9102");
    Check(store.PutAngularUnit(deg, false), "degree");
    degree.reset(store.GetAngularUnit(CString("1")));
    ML::CLinearUnit m(CString("Metre"), CString("m"), 1.0);
    Name(m, "Metre", "1", "9001");
    Check(store.PutLinearUnit(m, false), "metre");
    metre.reset(store.GetLinearUnit(CString("1")));
  }

  void PointStyles()
  {
    ML::CGeodeticPoint geodetic(3);
    Name(geodetic, "Degrees", "1");
    geodetic.GetLon().SetUnits(*degree);
    geodetic.GetLat().SetUnits(*degree);
    geodetic.GetHgt().SetUnits(*metre);
    Check(store.PutGeodeticPoint(geodetic, false), "geodetic style");
    degrees.reset(store.GetGeodeticPoint(CString("1")));
    ML::CProjectedPoint projected(3);
    Name(projected, "Metres", "1");
    projected.GetEast().SetUnits(*metre);
    projected.GetNorth().SetUnits(*metre);
    projected.GetHgt().SetUnits(*metre);
    Check(store.PutProjectedPoint(projected, false), "projected style");
  }

  void Area(char const * name, char const * vm, double minLon, double minLat, double maxLon, double maxLat)
  {
    ML::CEnvelope area(ML::kGeodeticPoint);
    Name(area, name, vm);
    // Corners without heights: the area holds every height.
    ML::CGeodeticPoint corner(*degrees);
    corner.SetDimensions(2);
    corner.SetInternals(minLon, minLat);
    area.SetMinPoint(corner);
    corner.SetInternals(maxLon, maxLat);
    area.SetMaxPoint(corner);
    area.SetAlwaysAccept(false);
    Check(store.PutEnvelope(area, false), name);
  }

  void Datum(char const * name, char const * vm, char const * epsg, char const * ellipsoidName,
             char const * ellipsoidEpsg, double a, double inverseFlattening)
  {
    CS::CEllipsoid ellipsoid;
    Name(ellipsoid, ellipsoidName, vm, ellipsoidEpsg);
    ellipsoid.SetSemiMajor(Length(a));
    ellipsoid.SetInvFlattening(inverseFlattening);
    Check(store.PutEllipsoid(ellipsoid, false), ellipsoidName);
    std::unique_ptr<CS::CEllipsoid> stored(store.GetEllipsoid(CString(vm)));
    std::unique_ptr<CS::CPrimeMeridian> greenwich(store.GetPrimeMeridian(CString("1")));
    CS::CHorizontalDatum datum;
    Name(datum, name, vm, epsg);
    datum.SetEllipsoid(*stored);
    datum.SetPrimeMeridian(*greenwich);
    Check(store.PutHorizontalDatum(datum, false), name);
  }

  void Geodetic(char const * name, char const * vm, char const * epsg, char const * datumCode, char const * areaCode)
  {
    std::unique_ptr<CS::CHorizontalDatum> datum(store.GetHorizontalDatum(CString(datumCode)));
    std::unique_ptr<ML::CEnvelope> area(store.GetEnvelope(CString(areaCode)));
    CS::CGeodeticCoordSys system;
    Name(system, name, vm, epsg);
    system.SetHorizontalDatum(*datum);
    system.SetEnvelope(*area);
    system.SetPointStyle(*degrees);
    Check(store.PutGeodeticCoordSys(system, false), name);
  }

  void Utm32(char const * name, char const * vm, char const * epsg, char const * geodeticCode, char const * areaCode)
  {
    std::unique_ptr<CS::CGeodeticCoordSys> geodetic(store.GetGeodeticCoordSys(CString(geodeticCode)));
    std::unique_ptr<ML::CEnvelope> area(store.GetEnvelope(CString(areaCode)));
    std::unique_ptr<ML::CProjectedPoint> metres(store.GetProjectedPoint(CString("1")));
    CS::CProjectedCoordSys system;
    Name(system, name, vm, epsg);
    system.SetGeodeticCoordSys(*geodetic);
    CS::PJ::CTransverseMercator projection;
    CParameterCollection & p = projection.GetParameters();
    p.SetAngularValue(CString("central_meridian"), Angle(9.0));
    p.SetAngularValue(CString("latitude_of_origin"), Angle(0.0));
    p.SetLinearValue(CString("false_easting"), Length(500000.0));
    p.SetLinearValue(CString("false_northing"), Length(0.0));
    p.SetDouble(CString("scale_factor"), 0.9996);
    system.SetProjection(projection);
    system.SetEnvelope(*area);
    system.SetPointStyle(*metres);
    Check(store.PutProjectedCoordSys(system, false), name);
  }

  // ED50 to WGS 84 by three translations, as EPSG's transformation 1133 has them.
  void Shift()
  {
    std::unique_ptr<CS::CHorizontalDatum> ed50(store.GetHorizontalDatum(CString("2")));
    std::unique_ptr<CS::CHorizontalDatum> wgs84(store.GetHorizontalDatum(CString("1")));
    std::unique_ptr<ML::CEnvelope> europe(store.GetEnvelope(CString("2")));
    CT::DS::CGeocentricTranslation shift;
    Name(shift, "ED50 to WGS 84 (1)", "1", "1133");
    shift.SetSrcDatum(*ed50);
    shift.SetDestDatum(*wgs84);
    shift.SetEnvelope(*europe);
    CParameterCollection & p = shift.GetParameters();
    p.SetLinearValue(CString("dx"), Length(-87.0));
    p.SetLinearValue(CString("dy"), Length(-98.0));
    p.SetLinearValue(CString("dz"), Length(-121.0));
    Check(store.PutDatumShift(shift, false), "shift");
  }
};

} // namespace SampleDetail

// The area the ED50 objects carry (the extent of EPSG's area 1296, rounded out).
constexpr double kEuropeMinLon = -16.1, kEuropeMinLat = 25.6, kEuropeMaxLon = 48.3, kEuropeMaxLat = 84.2;

// Writes the sample file into `directory` with the schema beside it and
// returns its path. Codes: EPSG 4326 and 4230 (geodetic), 32632 and 23032
// (UTM 32N on each datum), shift EPSG 1133 = VM 1.
inline QString WriteSampleStore(QString const & directory, QString const & schema)
{
  using namespace Velmora;
  QString const path = directory + "/velmora.xml";
  QFile::remove(directory + "/velmora.xsd");
  SampleDetail::Check(QFile::copy(schema, directory + "/velmora.xsd"), "schema copy");
  DB::CDataSource store;
  store.SetLoaded(true);
  SampleDetail::Builder b{store, nullptr, nullptr, nullptr};
  b.Units();
  CS::CPrimeMeridian greenwich;
  SampleDetail::Name(greenwich, "Greenwich", "1", "8901");
  greenwich.GetLongitude() = b.Angle(0.0);
  SampleDetail::Check(store.PutPrimeMeridian(greenwich, false), "Greenwich");
  b.PointStyles();
  b.Area("World", "1", -180.0, -90.0, 180.0, 90.0);
  b.Area("Europe", "2", kEuropeMinLon, kEuropeMinLat, kEuropeMaxLon, kEuropeMaxLat);
  b.Datum("World Geodetic System 1984", "1", "6326", "WGS 84", "7030", 6378137.0, 298.257223563);
  b.Datum("European Datum 1950", "2", "6230", "International 1924", "7022", 6378388.0, 297.0);
  b.Geodetic("WGS 84", "1", "4326", "1", "1");
  b.Geodetic("ED50", "2", "4230", "2", "2");
  b.Utm32("WGS 84 / UTM zone 32N", "32632", "32632", "1", "1");
  b.Utm32("ED50 / UTM zone 32N", "23032", "23032", "2", "2");
  b.Shift();
  store.SetFileName(CString(path));
  SampleDetail::Check(store.CommitToFile(), "commit");
  return path;
}

} // namespace VelmoraTest
