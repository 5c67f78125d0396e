// Behaviour of the transverse Mercator family and UTM: edge cases of the
// series, failures, false values and orientation, round trips, UTM's zones
// and parameters, and the EPSG worked example.
#include "TmercSupport.h"

#include "../support/TestSupport.h"

#include <velmora/projections/TransverseMercator.h>
#include <velmora/projections/UTMGrid_p.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>

using namespace TmercTest;
using Velmora::CString;
using Velmora::ML::CAngularValue;
using Velmora::ML::CGeodeticPoint;
using Velmora::ML::CProjectedPoint;
using Velmora::CS::PJ::CTransverseMercator;
using Velmora::CS::PJ::CTransverseMercatorExtended;
using Velmora::CS::PJ::CTransverseMercatorSnyder;
using Velmora::CS::PJ::CTransverseMercatorSouthOriented;
using Velmora::CS::PJ::CUniversalTransverseMercator;
namespace UTMGrid = Velmora::CS::PJ::UTMGrid;

namespace {

constexpr double kDeg = 0.017453292519943295;

void SetExtended(CProjection & p, double elevation, double geoid)
{
  p.GetParameters().SetItemInternal(CString("average_elevation"), elevation);
  p.GetParameters().SetItemInternal(CString("average_geoid_height"), geoid);
}

// Worst round-trip error in degrees over a grid of latitudes -80..84 and
// offsets up to `spread` degrees from the central meridian.
double RoundTripError(CProjection const & p, double cm, double spread)
{
  double worst = 0;
  for (double lat = -80; lat <= 84; lat += 4)
    for (double dlon = -spread; dlon <= spread; dlon += 0.5) {
      double x = cm + dlon, y = lat;
      EXPECT_TRUE(p.ToPlane(x, y));
      EXPECT_TRUE(p.FromPlane(x, y)) << lat << " " << dlon;
      worst = std::max({worst, std::fabs(LonOffset(x, cm + dlon)), std::fabs(y - lat)});
    }
  return worst;
}

} // namespace

TEST(TransverseMercator, UnsetParameterOrMissingDatumGivesFalse)
{
  auto datum = MakeDatum(kWgs84);
  std::vector<std::unique_ptr<CProjection>> all;
  all.push_back(std::make_unique<CTransverseMercator>(datum.get()));
  all.push_back(std::make_unique<CTransverseMercatorSouthOriented>(datum.get()));
  all.push_back(std::make_unique<CTransverseMercatorSnyder>(datum.get()));
  all.push_back(std::make_unique<CTransverseMercatorExtended>(datum.get()));
  for (auto & p : all) {
    auto & params = p->GetParameters();
    params.SetItemInternal(CString("central_meridian"), 9);
    params.SetItemInternal(CString("latitude_of_origin"), 0);
    params.SetDouble(CString("scale_factor"), 0.9996);
    params.SetItemInternal(CString("false_easting"), 500000);
    if (p->GetType() == CProjection::kTransverseMercatorExtended)
      SetExtended(*p, 0, 0);
    double x = 10, y = 50;
    EXPECT_FALSE(p->ToPlane(x, y)) << p->GetTypeName().toStdString();
    EXPECT_FALSE(p->FromPlane(x, y));
    EXPECT_EQ(x, 10.0); // untouched
    params.SetItemInternal(CString("false_northing"), 0);
    EXPECT_TRUE(p->ToPlane(x, y));
    params.SetItemSetState(CString("scale_factor"), false);
    EXPECT_FALSE(p->ToPlane(x, y));
  }
  CTransverseMercator noDatum;
  SetCommon(noDatum, 9, 0, 0.9996, 500000, 0);
  double x = 10, y = 50;
  EXPECT_FALSE(noDatum.ToPlane(x, y));
  noDatum.SetHorizontalDatum(datum.get());
  EXPECT_TRUE(noDatum.ToPlane(x, y));
}

TEST(TransverseMercator, WorkedExampleOfTheBritishNationalGrid)
{
  // OSGB 1936 / British National Grid on Airy 1830, EPSG Guidance Note 7-2:
  // 50 30 N, 0 30 E. The note prints E 577274.99, N 69740.50; GeographicLib's
  // exact mapping and PROJ both give 577274.984, 69740.492, and so do both
  // of our series, so the printed figures hold to their centimetre only.
  auto datum = MakeDatum(kAiry1830);
  CTransverseMercator tm(datum.get());
  SetCommon(tm, -2, 49, 0.9996012717, 400000, -100000);
  double x = 0.5, y = 50.5;
  ASSERT_TRUE(tm.ToPlane(x, y));
  EXPECT_NEAR(x, 577274.984, 0.001);
  EXPECT_NEAR(y, 69740.492, 0.001);
  EXPECT_NEAR(x, 577274.99, 0.01);
  EXPECT_NEAR(y, 69740.50, 0.01);
  x = 577274.984;
  y = 69740.492;
  ASSERT_TRUE(tm.FromPlane(x, y));
  EXPECT_NEAR(x, 0.5, 1e-8); // a millimetre is about 1e-8 degree
  EXPECT_NEAR(y, 50.5, 1e-8);

  CTransverseMercatorSnyder snyder(datum.get());
  SetCommon(snyder, -2, 49, 0.9996012717, 400000, -100000);
  x = 0.5;
  y = 50.5;
  ASSERT_TRUE(snyder.ToPlane(x, y));
  EXPECT_NEAR(x, 577274.984, 0.001);
  EXPECT_NEAR(y, 69740.492, 0.001);
}

TEST(TransverseMercator, InverseSnapsToTheCentralMeridianBelowATenthOfAMillimetre)
{
  auto datum = MakeDatum(kWgs84);
  CTransverseMercator tm(datum.get());
  SetCommon(tm, 9, 0, 0.9996, 500000, 0);
  for (double offset : {0.0, 0.00009, -0.00009}) {
    double x = 500000 + offset, y = 5500000;
    ASSERT_TRUE(tm.FromPlane(x, y));
    EXPECT_EQ(x, 9.0) << offset;
  }
  double x = 500000.0002, y = 5500000;
  ASSERT_TRUE(tm.FromPlane(x, y));
  EXPECT_NE(x, 9.0);
  EXPECT_GT(x, 9.0);

  // A tiny longitude difference counts as none on the way forward too.
  double lon = 9 + 1e-9, lat = 45;
  ASSERT_TRUE(tm.ToPlane(lon, lat));
  EXPECT_EQ(lon, 500000.0);
}

TEST(TransverseMercator, InverseLeavesLongitudesBetweenPiAndTwoPi)
{
  auto datum = MakeDatum(kWgs84);
  CTransverseMercator tm(datum.get());
  SetCommon(tm, 179, 0, 1.0, 0, 0);
  double x = 300000, y = 0;
  ASSERT_TRUE(tm.FromPlane(x, y));
  EXPECT_GT(x, 180.0);
  EXPECT_LT(x, 182.0);
  // and forward, such a longitude means the same place as its twin west of 180
  double a = x, b = y, c = x - 360, d = y;
  ASSERT_TRUE(tm.ToPlane(a, b));
  ASSERT_TRUE(tm.ToPlane(c, d));
  EXPECT_NEAR(a, c, 1e-6);
  EXPECT_NEAR(a, 300000, 1e-5);
  // A central meridian above 180 is taken a turn back.
  CTransverseMercator east(datum.get());
  SetCommon(east, 181, 0, 1.0, 0, 0);
  double e = -179, f = 10, g = 181, h = 10;
  ASSERT_TRUE(east.ToPlane(e, f));
  ASSERT_TRUE(east.ToPlane(g, h));
  EXPECT_NEAR(e, 0, 1e-6);
  EXPECT_NEAR(g, 0, 1e-6);
}

TEST(TransverseMercator, SouthOrientedMirrorsTheOffsetsAndInverts)
{
  auto datum = MakeDatum(kWgs84);
  CTransverseMercator north(datum.get());
  CTransverseMercatorSouthOriented south(datum.get());
  SetCommon(north, 21, -22, 1.0, 100000, 200000);
  SetCommon(south, 21, -22, 1.0, 100000, 200000);
  EXPECT_EQ(south.GetType(), CProjection::kTransverseMercatorSouthOriented);
  for (double lat : {-30.0, -22.0, -10.0})
    for (double lon : {18.0, 21.0, 23.5}) {
      double xn = lon, yn = lat, xs = lon, ys = lat;
      ASSERT_TRUE(north.ToPlane(xn, yn));
      ASSERT_TRUE(south.ToPlane(xs, ys));
      EXPECT_NEAR(xs, 100000 - (xn - 100000), 1e-6);
      EXPECT_NEAR(ys, 200000 - (yn - 200000), 1e-6);
      ASSERT_TRUE(south.FromPlane(xs, ys));
      EXPECT_NEAR(xs, lon, 1e-9);
      EXPECT_NEAR(ys, lat, 1e-9);
    }
  // West of the meridian is positive.
  double x = 20, y = -22;
  ASSERT_TRUE(south.ToPlane(x, y));
  EXPECT_GT(x, 100000);
}

TEST(TransverseMercator, ExtendedScalesFalseValuesOnlyWithoutGeoidHeight)
{
  auto datum = MakeDatum(kWgs84);
  double const e2 = 0.00669437999014132, a = 6378137.0, k0 = 0.9999, lat0 = 45;
  double const elevation = 1000;
  auto originOf = [&](double geoid) {
    CTransverseMercatorExtended p(datum.get());
    SetCommon(p, -93, lat0, k0, 152400, 30480);
    SetExtended(p, elevation, geoid);
    double x = -93, y = lat0;
    EXPECT_TRUE(p.ToPlane(x, y));
    return std::pair(x, y);
  };
  auto const [x0, y0] = originOf(0.0);
  double const raised = a + elevation;
  double const Rm = k0 * raised / std::sqrt(1 - e2 * std::pow(std::sin(lat0 * kDeg), 2));
  double const factor = (elevation + Rm) / Rm;
  EXPECT_NEAR(x0, 152400 * factor, 1e-6);
  EXPECT_NEAR(y0, 30480 * factor, 1e-6);
  EXPECT_GT(x0 - 152400, 0.02);

  auto const [x1, y1] = originOf(-30.0);
  EXPECT_NEAR(x1, 152400, 1e-6);
  EXPECT_NEAR(y1, 30480, 1e-6);

  // With both zero it is the ellipsoid itself, and the shorter series stay
  // within a millimetre of the eighth-order one near the meridian.
  CTransverseMercatorExtended flat(datum.get());
  CTransverseMercator full(datum.get());
  SetCommon(flat, 9, 0, 0.9996, 500000, 0);
  SetCommon(full, 9, 0, 0.9996, 500000, 0);
  SetExtended(flat, 0, 0);
  for (double lat : {-60.0, 0.0, 30.0, 60.0})
    for (double lon : {6.0, 9.0, 12.0}) {
      double x = lon, y = lat, u = lon, v = lat;
      ASSERT_TRUE(flat.ToPlane(x, y));
      ASSERT_TRUE(full.ToPlane(u, v));
      EXPECT_NEAR(x, u, 0.001);
      EXPECT_NEAR(y, v, 0.001);
    }
}

TEST(TransverseMercator, RoundTripsOverTheZoneAndBeyond)
{
  // Worst errors in degrees over latitudes -80..84; the forward and inverse
  // series are not exact inverses, and measured 2.5e-10 degree (30 um) within
  // 4 degrees and 9.7e-9 degree (1 mm) within 6 degrees, on either series.
  auto datum = MakeDatum(kWgs84);
  CTransverseMercator tm(datum.get());
  SetCommon(tm, 9, 0, 0.9996, 500000, 0);
  EXPECT_LT(RoundTripError(tm, 9, 4), 3e-10);
  EXPECT_LT(RoundTripError(tm, 9, 6), 1.2e-8);

  CTransverseMercatorSouthOriented south(datum.get());
  SetCommon(south, 21, -22, 1.0, 0, 0);
  EXPECT_LT(RoundTripError(south, 21, 4), 3e-10);

  // The shorter series of the raised ellipsoid lack the eighth-order terms
  // both ways: 1.65e-9 degree (0.2 mm) within 4 degrees, 2.6e-8 within 6.
  CTransverseMercatorExtended extended(datum.get());
  SetCommon(extended, 9, 30, 0.9999, 50000, 20000);
  SetExtended(extended, 1500, -30);
  EXPECT_LT(RoundTripError(extended, 9, 4), 2e-9);
  EXPECT_LT(RoundTripError(extended, 9, 6), 3e-8);
  SetExtended(extended, 1500, 0);
  EXPECT_LT(RoundTripError(extended, 9, 4), 2e-9);

  CUniversalTransverseMercator utm(datum.get());
  SetUtm(utm, 32, true);
  EXPECT_LT(RoundTripError(utm, 9, 4), 3e-10);
}

TEST(TransverseMercator, SnyderInverseKeepsItsFootpointCoefficients)
{
  // The inverse carries e1^3 in the sin 4mu term and the meridian radius to
  // the power one, so a round trip is off by up to about 30 metres
  // (3e-4 degree, measured); on the central meridian of the equator it is exact.
  auto datum = MakeDatum(kWgs84);
  CTransverseMercatorSnyder tm(datum.get());
  SetCommon(tm, 9, 0, 0.9996, 500000, 0);
  double const worst = RoundTripError(tm, 9, 4);
  EXPECT_LT(worst, 3e-4);
  EXPECT_GT(worst, 1e-4);
  double x = 9, y = 0;
  ASSERT_TRUE(tm.ToPlane(x, y));
  EXPECT_NEAR(x, 500000, 1e-9);
  ASSERT_TRUE(tm.FromPlane(x, y));
  EXPECT_NEAR(x, 9, 1e-12);
  EXPECT_NEAR(y, 0, 1e-12);
}

TEST(TransverseMercator, SnyderPolesScaleAndOffGlobe)
{
  auto datum = MakeDatum(kWgs84);
  CTransverseMercatorSnyder tm(datum.get());
  SetCommon(tm, 0, 0, 0.9996, 500000, 1000);
  // A latitude of exactly a half turn: no false values, scale k0.
  double x = 3, y = 180;
  ASSERT_TRUE(tm.ToPlane(x, y));
  EXPECT_EQ(x, 0.0);
  double const c0 = 1 - 0.00669437999014132 / 4 - 3 * std::pow(0.00669437999014132, 2) / 64 -
                    5 * std::pow(0.00669437999014132, 3) / 256;
  EXPECT_NEAR(y, 0.9996 * 6378137.0 * c0 * 3.14159265358979323846, 1e-6);

  // Analytic scale: k0 on the meridian, growing with the offset, and close to
  // the numeric scale of the eighth-order series.
  double k = 0;
  ASSERT_TRUE(tm.ScaleFactorAtPoint(CProjectedPoint(500000, 5000000), k));
  EXPECT_NEAR(k, 0.9996, 1e-12);
  ASSERT_TRUE(tm.ScaleFactorAtPoint(CProjectedPoint(700000, 5000000), k));
  CTransverseMercator ref(datum.get());
  SetCommon(ref, 0, 0, 0.9996, 500000, 1000);
  double numeric = 0;
  ASSERT_TRUE(ref.ScaleFactorAtPoint(CProjectedPoint(700000, 5000000), numeric));
  EXPECT_NEAR(k, numeric, 2e-6);
  EXPECT_GT(k, 1.0);

  // Far off the globe the inverse refuses.
  x = 500000 + 1e9;
  y = 1e9;
  EXPECT_FALSE(tm.FromPlane(x, y));
}

TEST(UniversalTransverseMercator, ConstructedReadyWithItsParameters)
{
  auto datum = MakeDatum(kWgs84);
  CUniversalTransverseMercator utm(datum.get());
  auto const & p = utm.GetParameters();
  EXPECT_EQ(p.Count(), 3);
  EXPECT_TRUE(p.AllItemsSet());
  EXPECT_EQ(p.GetLong(CString("zone")), 19);
  EXPECT_EQ(p.GetLong(CString("is_north")), 1);
  EXPECT_EQ(p.GetLong(CString("autoset")), 1);
  // Automatic zoning from the start: Greenwich is in zone 31.
  double x = 0.5, y = 51.5;
  ASSERT_TRUE(utm.ToPlane(x, y));
  EXPECT_EQ(p.GetLong(CString("zone")), 31);
  EXPECT_NEAR(x, 326480.4964, 0.001); // PROJ, +proj=utm +zone=31
  // A parameter the body lacks is made again with its usual value.
  utm.GetParameters().Remove(CString("autoset"));
  utm.OnChange(nullptr);
  EXPECT_EQ(utm.GetParameters().GetLong(CString("autoset")), 1);
}

TEST(UniversalTransverseMercator, AutomaticZoning)
{
  auto datum = MakeDatum(kWgs84);
  CUniversalTransverseMercator utm(datum.get());
  SetUtm(utm, 1, true, true);
  struct Case
  {
    double lon, lat;
    long zone, north;
  } const cases[] = {{-180, 10, 1, 1},  {-177.5, -10, 1, 0}, {-0.5, 45, 30, 1}, {0, 45, 31, 1},
                     {5.999, 45, 31, 1}, {6, 45, 32, 1},      {179.9, 45, 60, 1}, {9, 0, 32, 0}};
  for (Case const & c : cases) {
    double x = c.lon, y = c.lat;
    ASSERT_TRUE(utm.ToPlane(x, y)) << c.lon;
    EXPECT_EQ(utm.GetParameters().GetLong(CString("zone")), c.zone) << c.lon;
    EXPECT_EQ(utm.GetParameters().GetLong(CString("is_north")), c.north) << c.lon;
  }
  // The equator is south: its northing is the southern false northing.
  double x = 9, y = 0;
  ASSERT_TRUE(utm.ToPlane(x, y));
  EXPECT_EQ(y, 10000000.0);
  EXPECT_EQ(x, 500000.0);

  // Longitude 180 falls in zone 61, which does not exist.
  auto const e = VelmoraTest::Raised([&] {
    double lon = 180, lat = 10;
    utm.ToPlane(lon, lat);
  });
  EXPECT_EQ(e.GetErrorCode(), 14);
  EXPECT_EQ(e.GetLocation(), CString("CUniversalTransverseMercator::OnChange"));
  EXPECT_EQ(e.GetDetails(), CString("UTM zone assignment out of bounds"));
  // ... and the next point in a valid zone converts again, as by a fixed zone.
  double a = 9, b = 45, c = 9, d = 45;
  ASSERT_TRUE(utm.ToPlane(a, b));
  EXPECT_EQ(utm.GetParameters().GetLong(CString("zone")), 32);
  CUniversalTransverseMercator fixed(datum.get());
  SetUtm(fixed, 32, true);
  ASSERT_TRUE(fixed.ToPlane(c, d));
  EXPECT_EQ(a, c);
  EXPECT_EQ(b, d);
}

TEST(UniversalTransverseMercator, ZoneOutOfBoundsRaises)
{
  auto datum = MakeDatum(kWgs84);
  CUniversalTransverseMercator utm(datum.get());
  VelmoraTest::ExpectFailures({
    {"zone 0", [&] { utm.GetParameters().SetLong(CString("zone"), 0); }, 14,
     "CUniversalTransverseMercator::OnChange", "UTM zone assignment out of bounds"},
    {"zone 61", [&] { utm.GetParameters().SetLong(CString("zone"), 61); }, 14,
     "CUniversalTransverseMercator::OnChange", "UTM zone assignment out of bounds"},
  });
  for (long zone : {1L, 60L})
    utm.GetParameters().SetLong(CString("zone"), zone); // no throw
}

TEST(UniversalTransverseMercator, LatitudeLimitsAndGridStrings)
{
  auto datum = MakeDatum(kWgs84);
  CUniversalTransverseMercator utm(datum.get());
  SetUtm(utm, 32, true);
  for (double lat : {84.0, -80.0}) {
    double x = 9, y = lat;
    EXPECT_TRUE(utm.ToPlane(x, y)) << lat;
  }
  for (double lat : {84.000001, -80.000001, 90.0}) {
    double x = 9, y = lat;
    EXPECT_FALSE(utm.ToPlane(x, y)) << lat;
    EXPECT_EQ(x, 9.0);
    EXPECT_EQ(y, lat);
    CProjectedPoint out(500, 600);
    EXPECT_FALSE(utm.ToPlane(CGeodeticPoint(9, lat), out));
    EXPECT_EQ(out.GetEast().GetInternal(), 500.0);
  }

  // Points agree between the double and the point paths, in 3D as well.
  CGeodeticPoint in(10, 50, 123);
  CProjectedPoint out(3);
  ASSERT_TRUE(utm.ToPlane(in, out));
  double x = 10, y = 50;
  ASSERT_TRUE(utm.ToPlane(x, y));
  EXPECT_EQ(out.GetEast().GetInternal(), x);
  EXPECT_EQ(out.GetNorth().GetInternal(), y);
  EXPECT_EQ(out.GetHgt().GetInternal(), 123.0);
  CGeodeticPoint back(3);
  ASSERT_TRUE(utm.FromPlane(out, back));
  EXPECT_NEAR(back.GetLon().GetInternal(), 10, 1e-10);
  EXPECT_NEAR(back.GetLat().GetInternal(), 50, 1e-10);

  // A grid reference is read as the point it names, in this zone's plane.
  CProjectedPoint usng(CProjectedPoint::kUSNG, VelmoraTest::Wide("32UNA0000000000").c_str());
  CAngularValue gamma, numeric;
  ASSERT_TRUE(utm.ConvergenceAtPoint(usng, gamma));
  ASSERT_TRUE(utm.ConvergenceAtPoint(CProjectedPoint(500000, 5500000), numeric));
  EXPECT_EQ(gamma.GetInternal(), numeric.GetInternal());
}

TEST(UniversalTransverseMercator, ConvergenceAndScaleAgreeWithExact)
{
  // gamma and k of GeographicLib's exact mapping at the points of the vectors.
  auto datum = MakeDatum(kWgs84);
  CUniversalTransverseMercator utm(datum.get());
  SetUtm(utm, 32, true);
  auto const rows = ReadRows("tmerc_exact_wgs84.txt", 7);
  int checked = 0;
  for (auto const & r : rows) {
    if (r[0] != 9 || r[2] <= 0 || r[2] > 80 || std::fabs(r[1] - 9) > 3)
      continue;
    CProjectedPoint const point(r[3] + 500000, r[4]);
    CAngularValue gamma;
    double k = 0;
    ASSERT_TRUE(utm.ConvergenceAtPoint(point, gamma));
    ASSERT_TRUE(utm.ScaleFactorAtPoint(point, k));
    EXPECT_NEAR(gamma.GetInternal() / kDeg, r[5], 2e-5) << r[1] << " " << r[2]; // radians
    EXPECT_NEAR(k, r[6], 1e-7) << r[1] << " " << r[2];
    ++checked;
  }
  EXPECT_GT(checked, 30);
}

TEST(UniversalTransverseMercator, CopiesOwnTheirInnerProjection)
{
  auto datum = MakeDatum(kWgs84);
  auto other = MakeDatum(kClarke1866);
  CUniversalTransverseMercator a(datum.get());
  SetUtm(a, 32, true);
  CUniversalTransverseMercator b(a);
  SetUtm(b, 33, false);
  double x1 = 9, y1 = 45, x2 = 9, y2 = 45;
  ASSERT_TRUE(a.ToPlane(x1, y1));
  ASSERT_TRUE(b.ToPlane(x2, y2));
  EXPECT_EQ(x1, 500000.0);
  EXPECT_LT(x2, 100000.0);
  EXPECT_GT(y2, 10000000.0);

  CUniversalTransverseMercator c(other.get());
  c = a;
  double x3 = 10, y3 = 45, x4 = 10, y4 = 45;
  ASSERT_TRUE(a.ToPlane(x3, y3));
  ASSERT_TRUE(c.ToPlane(x4, y4));
  EXPECT_EQ(x3, x4);
  EXPECT_EQ(y3, y4);
  // Through the base: same type copies too.
  std::unique_ptr<CProjection> d(
    Velmora::CS::PJ::CProjectionFactory::CreateProjection(CProjection::kUniversalTransverseMercator, other.get()));
  *d = static_cast<CProjection const &>(b);
  double x5 = 9, y5 = 45;
  ASSERT_TRUE(d->ToPlane(x5, y5));
  EXPECT_EQ(x5, x2);
  EXPECT_EQ(y5, y2);

  // A new datum reaches the inner projection.
  a.SetHorizontalDatum(other.get());
  double x6 = 10, y6 = 45;
  ASSERT_TRUE(a.ToPlane(x6, y6));
  EXPECT_GT(std::fabs(y6 - y3), 10.0);
}

TEST(UniversalTransverseMercator, GridLetteringTables)
{
  long n, s, e, w;
  struct Band
  {
    char letter;
    long zone, north, south, east, west;
  } const bands[] = {
    {'C', 1, -72, -80, -174, -180}, {'H', 32, -32, -40, 12, 6}, {'J', 32, -24, -32, 12, 6},
    {'N', 32, 8, 0, 12, 6},         {'P', 32, 16, 8, 12, 6},     {'X', 34, 84, 72, 24, 18},
    {'V', 31, 64, 56, 3, 0},        {'V', 32, 64, 56, 12, 3},    {'X', 31, 84, 72, 9, 0},
    {'X', 33, 84, 72, 21, 9},       {'X', 35, 84, 72, 33, 21},   {'X', 37, 84, 72, 42, 33},
    {'W', 32, 72, 64, 12, 6},
  };
  for (Band const & b : bands) {
    UTMGrid::Limits(b.letter, b.zone, n, s, e, w);
    EXPECT_EQ(n, b.north) << b.letter << b.zone;
    EXPECT_EQ(s, b.south) << b.letter << b.zone;
    EXPECT_EQ(e, b.east) << b.letter << b.zone;
    EXPECT_EQ(w, b.west) << b.letter << b.zone;
  }

  char first = 0, last = 0;
  double offset = -1;
  struct Set
  {
    bool usng;
    long zone;
    int code;
    bool ok;
    char first, last;
    double offset;
  } const sets[] = {
    {false, 1, 7030, true, 'A', 'H', 0},         {false, 2, 7030, true, 'J', 'R', 1500000},
    {false, 3, 7030, true, 'S', 'Z', 0},         {false, 6, 7043, true, 'S', 'Z', 1500000},
    {false, 31, 7004, true, 'A', 'H', 1000000},  {false, 32, 7034, true, 'J', 'R', 500000},
    {false, 46, 7008, true, 'A', 'H', 500000},   {false, 47, 7008, true, 'J', 'R', 0},
    {false, 55, 7008, true, 'A', 'H', 0},        {false, 56, 7008, true, 'J', 'R', 500000},
    {true, 32, 7008, true, 'J', 'R', 1500000},   {true, 32, 7019, true, 'J', 'R', 1500000},
    {true, 32, 7004, false, 0, 0, 0},            {false, 32, 7001, false, 0, 0, 0},
  };
  for (Set const & c : sets) {
    bool const ok = UTMGrid::Lettering(c.usng, c.zone, c.code, first, last, offset);
    EXPECT_EQ(ok, c.ok) << c.zone << " " << c.code;
    if (!ok || !c.ok)
      continue;
    EXPECT_EQ(first, c.first) << c.zone << " " << c.code;
    EXPECT_EQ(last, c.last) << c.zone << " " << c.code;
    EXPECT_EQ(offset, c.offset) << c.zone << " " << c.code;
  }
}
