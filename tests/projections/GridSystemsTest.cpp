// The special grids: grid references against GeographicLib's GeoConvert and
// their edge cases and failures; the New Zealand Map Grid against PROJ.
#include "../support/ReferenceData.h"
#include "../support/TestSupport.h"

#include <velmora/projections/GridSystems.h>

#include <cmath>
#include <string>

using namespace Velmora::CS::PJ;
using Velmora::CString;
using Velmora::ML::CGeodeticPoint;
using Velmora::ML::CProjectedPoint;
using VelmoraTest::MakeDatum;

namespace {

constexpr double kWgs84A = 6378137.0, kWgs84Rf = 298.257223563;
constexpr double kMetresPerDegree = 111320.0;

// GeoConvert writes the zone in two digits; this grid writes "%2d", a blank
// before a zone below 10.
std::string AsGeoConvert(CString const & ours)
{
  std::string text = ours.toStdString();
  if (!text.empty() && text[0] == ' ')
    text[0] = '0';
  return text;
}

// The reference of a point through either grid; empty where none is made.
std::string Reference(CProjection const & p, double lon, double lat, CProjectedPoint::FormatOption format)
{
  CProjectedPoint out(2);
  out.SetStringFormat(format);
  if (!p.ToPlane(CGeodeticPoint(lon, lat), out))
    return {};
  return AsGeoConvert(out.GetLocationString());
}

// Metres between the point a reference is read as and the expected one.
double ReadError(CProjection const & p, std::string const & text, CProjectedPoint::FormatOption format, double lon,
                 double lat)
{
  CGeodeticPoint back(2);
  if (!p.FromPlane(CProjectedPoint(format, VelmoraTest::Wide(text.c_str()).c_str()), back))
    return INFINITY;
  double const dx = std::remainder(back.GetLon().GetInternal() - lon, 360.0) * std::cos(lat * M_PI / 180.0);
  return kMetresPerDegree * std::hypot(dx, back.GetLat().GetInternal() - lat);
}

} // namespace

TEST(MilitaryGrid, AgreesWithGeoConvert)
{
  // Both grids and both letterings (alike on WGS 84) write and read the
  // references GeoConvert writes for points rounded to the metre, and read
  // cut references as the south-west corners of their squares.
  auto datum = MakeDatum(kWgs84A, kWgs84Rf, "7030");
  CMilitaryGridReferenceSystem mgrs(datum.get());
  CUniversalTransverseMercator utm(datum.get());
  struct Path
  {
    CProjection const & p;
    CProjectedPoint::FormatOption format;
  } const paths[] = {{mgrs, CProjectedPoint::kMGRS}, {utm, CProjectedPoint::kMGRS}, {utm, CProjectedPoint::kUSNG}};
  int written = 0;
  double worst = 0;
  for (auto const & r : VelmoraTest::ReadWords("grids_mgrs_wgs84.txt")) {
    ASSERT_EQ(r.size(), 5u);
    double const lon = std::stod(r[0]), lat = std::stod(r[1]);
    for (Path const & path : paths) {
      if (r[2].size() >= 15) {
        EXPECT_EQ(Reference(path.p, lon, lat, path.format), r[2]) << r[0] << " " << r[1];
        ++written;
      }
      worst = std::max(worst, ReadError(path.p, r[2], path.format, std::stod(r[3]), std::stod(r[4])));
    }
  }
  std::printf("grids_mgrs_wgs84.txt: %d references written, read back within %.3g m\n", written, worst);
  EXPECT_GT(written, 1500);
  EXPECT_LT(worst, 0.002); // Redfearn's series against the exact mapping
}

TEST(MilitaryGrid, EdgesOfTheDomainAndLettering)
{
  auto wgs84 = MakeDatum(kWgs84A, kWgs84Rf, "7030");
  CMilitaryGridReferenceSystem mgrs(wgs84.get());
  auto const mgrsOf = [&](double lon, double lat) { return Reference(mgrs, lon, lat, CProjectedPoint::kMGRS); };
  // 84 N is band X, where GeoConvert has UPS; beyond it and 80 S no reference.
  EXPECT_EQ(mgrsOf(10, 84).substr(0, 3), "33X");
  EXPECT_EQ(mgrsOf(10, 84.000001), "");
  EXPECT_EQ(mgrsOf(10, -80).substr(0, 3), "32C");
  EXPECT_EQ(mgrsOf(10, -80.000001), "");
  // South-west Norway: 3.5 E in band V is zone 32 (GeoConvert: 32VJM9345864167, truncated).
  EXPECT_EQ(mgrsOf(3.5, 60), "32VJM9345964168");
  EXPECT_EQ(mgrsOf(2.5, 60).substr(0, 3), "31V");
  // A longitude beyond 180 is folded; to six decimals, as written.
  EXPECT_EQ(mgrsOf(190, 45), mgrsOf(-170, 45));
  EXPECT_EQ(mgrsOf(-170.0000004, 45), mgrsOf(-170, 45));
  CProjectedPoint out(2);
  EXPECT_FALSE(mgrs.ToPlane(CGeodeticPoint(10, 85), out));
  EXPECT_EQ(out.GetStringFormat(), CProjectedPoint::kNone);
  ASSERT_TRUE(mgrs.ToPlane(CGeodeticPoint(10, 50), out));
  EXPECT_EQ(out.GetEast().GetLabel(), CString("MGRS String"));
  double x = 10, y = 50;
  EXPECT_FALSE(mgrs.ToPlane(x, y));

  // Clarke 1866 keeps the older lettering, rows from L at the equator in
  // odd zones, outside zones 47 to 55; the US National Grid does not.
  auto clarke = MakeDatum(6378206.4, 294.978698213898, "7008");
  CMilitaryGridReferenceSystem old(clarke.get());
  CUniversalTransverseMercator utm(clarke.get());
  EXPECT_EQ(Reference(old, -177, 0.001, CProjectedPoint::kMGRS), "01NEL0000000111");
  EXPECT_EQ(Reference(utm, -177, 0.001, CProjectedPoint::kUSNG), "01NEA0000000111");
  EXPECT_EQ(Reference(old, 99, 0.001, CProjectedPoint::kMGRS), "47NNA0000000111");
}

TEST(MilitaryGrid, Failures)
{
  auto wgs84 = MakeDatum(kWgs84A, kWgs84Rf, "7030");
  auto unnamed = MakeDatum(kWgs84A, kWgs84Rf);
  auto airy = MakeDatum(6377563.396, 299.3249646, "7001");
  auto bessel = MakeDatum(6377397.155, 299.1528128, "7004");
  CMilitaryGridReferenceSystem mgrs(wgs84.get()), bare(unnamed.get()), odd(airy.get());
  CUniversalTransverseMercator utm(unnamed.get()), usng(bessel.get());
  CGeodeticPoint const point(10, 50);
  auto const write = [&point](CProjection const & p, CProjectedPoint::FormatOption format) {
    return [&p, &point, format] {
      CProjectedPoint out(2);
      out.SetStringFormat(format);
      p.ToPlane(point, out);
    };
  };
  auto const read = [&mgrs](char const * text) {
    return [&mgrs, text] {
      CGeodeticPoint out(2);
      mgrs.FromPlane(CProjectedPoint(CProjectedPoint::kMGRS, VelmoraTest::Wide(text).c_str()), out);
    };
  };
  char const * const noCode = "MGRS requires an EPSG code to be set in Ellipsoid reference";
  char const * const toPlane = "CMilitaryGridReferenceSystem::ToPlane";
  char const * const fromPlane = "CMilitaryGridReferenceSystem::FromPlane";
  char const * const bad = "Bad format in MGRS string";
  char const * const odds =
    "Bad format in MGRS string: coordinate part of string needs to be an even number of characters";
  VelmoraTest::ExpectFailures({
    {"no EPSG code", write(bare, CProjectedPoint::kMGRS), 54, toPlane, noCode},
    {"no lettering", write(odd, CProjectedPoint::kMGRS), 54, toPlane, "Invalid Ellipsoid"},
    {"UTM, no EPSG code", write(utm, CProjectedPoint::kMGRS), 54, "CUniversalTransverseMercator::FormatMGRSString",
     noCode},
    {"USNG on Bessel", write(usng, CProjectedPoint::kUSNG), 54, "CUniversalTransverseMercator::FormatMGRSString",
     "Invalid Ellipsoid"},
    {"empty", read(""), 54, fromPlane, bad},
    {"no zone", read("UXP1234"), 54, fromPlane, bad},
    {"three digits of zone", read("132UXP1234"), 54, fromPlane, bad},
    {"too short", read("32U"), 54, fromPlane, bad},
    {"zone 0", read("0UXP1234"), 54, fromPlane, "Invalid ZONE"},
    {"zone 61", read("61UXP1234"), 54, fromPlane, "Invalid ZONE"},
    {"band I", read("32IXP1234"), 54, fromPlane, "Invalid ZONE designator"},
    {"band B", read("32BXP1234"), 54, fromPlane, "Invalid ZONE designator"},
    {"band Y", read("32YXP1234"), 54, fromPlane, "Invalid ZONE designator"},
    {"odd digits", read("32UXP123"), 54, fromPlane, odds},
    {"eleven digits", read("32UMU12345123451"), 54, fromPlane, odds},
    {"twelve digits", read("32UMU123451234512"), 54, fromPlane, bad},
    {"letter among digits", read("32UMU12A4"), 54, fromPlane, bad},
    {"column of another zone", read("32UAU1234"), 54, fromPlane, bad},
    {"column O", read("32UOU1234"), 54, fromPlane, bad},
    {"row W", read("32UMW1234"), 54, fromPlane, bad},
  });
}

TEST(NewZealandMapGrid, AgreesWithProj)
{
  // Two Newton steps after the inverse series, measured against PROJ's
  // converged inverse.
  CNewZealandMapGrid nzmg;
  VelmoraTest::ExpectReference(nzmg, "grids_nzmg.txt", 0.001, 1e-9);
}

TEST(SpaceObliqueMercator, AgreesWithProj)
{
  // Landsat 2, 4, 5 and MISR paths; both sides stop their iterations at
  // 1e-7 radian: measured 2.6 cm forward, 3.9e-7 degree back.
  CSpaceObliqueMercator som;
  VelmoraTest::ExpectReference(som, "grids_som.txt", 0.03, 5e-7);
}

TEST(TwoPointFit, ClosedFormOnTheSphere)
{
  // Points 1 W and 1 E on the equator set 2 arc-degrees apart to the north:
  // scale 2 and a quarter turn of the Mercator plane about (1000, 2000).
  constexpr double R = 6371000.0, degree = R * M_PI / 180.0;
  auto sphere = MakeDatum(R, 0);
  CTwoPointFit fit(sphere.get());
  struct Value
  {
    char const * name;
    double value;
  } const values[] = {{"standard_longitude1", -1}, {"standard_latitude1", 0}, {"standard_longitude2", 1},
                      {"standard_latitude2", 0},   {"east1", 1000},          {"north1", 2000 - 2 * degree},
                      {"east2", 1000},             {"north2", 2000 + 2 * degree}};
  double x = 0, y = 0;
  for (Value const & v : values) {
    EXPECT_FALSE(fit.ToPlane(x = 0, y = 0)) << v.name;
    VelmoraTest::SetParameter(fit, v.name, v.value);
  }
  struct Case
  {
    double lon, lat, east, north;
  } const cases[] = {
    {0.5, 0, 1000, 2000 + degree},
    {0, 30, 1000 - 2 * R * std::log(std::tan(M_PI / 4 + M_PI / 12)), 2000},
    {-1, -45, 1000 + 2 * R * std::log(std::tan(M_PI / 4 + M_PI / 8)), 2000 - 2 * degree},
  };
  for (Case const & c : cases) {
    x = c.lon, y = c.lat;
    ASSERT_TRUE(fit.ToPlane(x, y));
    EXPECT_NEAR(x, c.east, 1e-6);
    EXPECT_NEAR(y, c.north, 1e-6);
    ASSERT_TRUE(fit.FromPlane(x, y));
    EXPECT_NEAR(x, c.lon, 1e-12);
    EXPECT_NEAR(y, c.lat, 1e-12);
  }
}

TEST(VandH, FociAndRoundTrips)
{
  // The foci of the grid (Grimmelmann 1980): Floyd County, Kentucky at the
  // grid's origin (6363.235, 2250.7), Webster County, Utah 0.4 radian along
  // its axis, turned by 76.597497 degrees. The published western focus
  // lands 1 unit (a third of a mile) from the axis's end of the published
  // vectors: so far do the two publications agree.
  CVandH vh;
  double x = -(82 + 39 / 60.0 + 15.27 / 3600), y = 37 + 42 / 60.0 + 14.69 / 3600;
  ASSERT_TRUE(vh.ToPlane(x, y));
  EXPECT_NEAR(x, 6363.235, 0.01);
  EXPECT_NEAR(y, 2250.7, 0.01);
  x = -(112 + 3 / 60.0 + 39.35 / 3600), y = 41 + 2 / 60.0 + 55.53 / 3600;
  ASSERT_TRUE(vh.ToPlane(x, y));
  EXPECT_NEAR(x, 6363.235 + 0.4 * 12481.103 * 0.231790398, 1.0);
  EXPECT_NEAR(y, 2250.7 + 0.4 * 12481.103 * 0.972765753, 1.0);
  double worst = 0;
  for (double lat = 20; lat <= 60; lat += 5)
    for (double lon = -130; lon <= -60; lon += 5) {
      x = lon, y = lat;
      ASSERT_TRUE(vh.ToPlane(x, y));
      ASSERT_TRUE(vh.FromPlane(x, y));
      worst = std::max({worst, std::fabs(x - lon), std::fabs(y - lat)});
    }
  EXPECT_LT(worst, 1e-7); // near the axis of the foci, where v is a small root
  Velmora::ML::CAngularValue gamma;
  EXPECT_FALSE(vh.ConvergenceAtPoint(CProjectedPoint(5000, 3000), gamma));
}

TEST(DanishSystem34, RegionsWithoutTables)
{
  EXPECT_EQ(CDanishSystem34::GetRegionCode(CString("")), 0);
  EXPECT_EQ(CDanishSystem34::GetRegionCode(CString("jylland")), 1);
  EXPECT_EQ(CDanishSystem34::GetRegionCode(CString("2")), 2);
  EXPECT_EQ(CDanishSystem34::GetRegionCode(CString("bornholm")), 3);
  EXPECT_EQ(CDanishSystem34::GetRegionCode(CString("u")), 4);
  EXPECT_EQ(CDanishSystem34::GetRegionCode(CString("Jylland")), 0);
  CDanishSystem34 s34;
  s34.SetFromRegion(3);
  EXPECT_DOUBLE_EQ(s34.GetParameters().GetItemInternal(CString("central_meridian")), 15.0);
  VelmoraTest::ExpectFailures({
    {"region 0", [&] { s34.SetFromRegion(0); }, 15, "CDanishSystem34::SetFromRegion", "Unexpected region value."},
    {"region 4", [&] { s34.SetFromRegion(4); }, 15, "CDanishSystem34::SetFromRegion", "Unexpected region value."},
  });
}
