// The cylindrical and other standard projections on published worked
// examples and at the edges of their domain: the poles, with the data
// source's cartographic flag on and off, Miller beyond the pole, and the
// branches of the polyconic, Cassini and Bonne at the equator and the pole.
#include "../support/ReferenceData.h"

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/Constants.h>
#include <velmora/projections/Cylindrical.h>

#include <cmath>

using namespace Velmora::CS::PJ;
using namespace VelmoraTest;
using Velmora::DB::CDataSource;

namespace {

// Trinidad's grid is in Clarke's links: a = 20926348 Clarke's feet is
// 31706587.88 links, and 1/f = a/(a - b) with b = 20855233 feet.
constexpr double kTrinidadA = 31706587.88;
constexpr double kTrinidadRf = 20926348.0 / (20926348.0 - 20855233.0);

} // namespace

// EPSG Guidance Note 7-2 (2019), the examples of methods 9804, 9805, 1024,
// 9806 and 1028, and Snyder (1987), the ellipsoidal polyconic's example
// (which the note refers to for method 9818).
TEST(Cylindrical, PublishedExamples)
{
  Parameters const webMercator = {{"central_meridian", 0}, {"latitude_of_origin", 0}, {"scale_factor", 1},
                                  {"false_easting", 0}, {"false_northing", 0}};
  std::vector<Example> const examples = {
    {"Mercator A, Makassar / NEIEZ", CProjection::kMercator, 6377397.155, 299.1528128,
     {{"central_meridian", 110}, {"latitude_of_origin", 0}, {"scale_factor", 0.997}, {"false_easting", 3900000},
      {"false_northing", 900000}},
     120, -3, 5009726.58, 569150.82, 0.005, 2e-7},
    {"Mercator B, Pulkovo 1942 / Caspian Sea Mercator", CProjection::kMercator, 6378245, 298.3,
     {{"central_meridian", 51}, {"latitude_of_origin", 42}, {"scale_factor", 1}, {"false_easting", 0},
      {"false_northing", 0}},
     53, 53, 165704.29, 5171848.07, 0.005, 2e-7},
    // The latitudes are printed to 0.001 second, 3.4 cm of northing here.
    {"Pseudo-Mercator, WGS 84 / Pseudo-Mercator, on the sphere of a", CProjection::kMercator, 6378137, 0,
     webMercator, Dms(-100, 20, 0), Dms(24, 22, 54.433), -11169055.58, 2800000.00, 0.02, 3e-7},
    {"Pseudo-Mercator, the point 10 km north", CProjection::kMercator, 6378137, 0, webMercator, Dms(-100, 20, 0),
     Dms(24, 27, 48.889), -11169055.58, 2810000.00, 0.02, 3e-7},
    {"Cassini-Soldner, Trinidad 1903 / Trinidad Grid, in links", CProjection::kCassini, kTrinidadA, kTrinidadRf,
     {{"central_meridian", Dms(-61, 20, 0)}, {"latitude_of_origin", Dms(10, 26, 30)}, {"false_easting", 430000},
      {"false_northing", 325000}},
     -62, 10, 66644.94, 82536.22, 0.005, 2e-7},
    {"American polyconic, Snyder's example on Clarke 1866", CProjection::kPolyconic, 6378206.4, 294.9786982,
     {{"central_meridian", -96}, {"latitude_of_origin", 30}, {"false_easting", 0}, {"false_northing", 0}},
     -75, 40, 1776774.5, 1319657.8, 0.05, 5e-7},
    // The type is the spherical form on a, as PROJ's eqc: its northing is
    // a phi = 6122571.99, where the note's ellipsoidal arc gives 6097230.31,
    // 25341.68 m south. The easting is the note's.
    {"Equidistant cylindrical, WGS 84 / World Equidistant Cylindrical", CProjection::kEquidistantCylindrical,
     6378137, 298.257223563,
     {{"central_meridian", 0}, {"latitude_of_origin", 0}, {"false_easting", 0}, {"false_northing", 0}}, 10, 55,
     1113194.91, 6122571.99, 0.005, 1e-7},
  };
  ExpectExamples(examples);
}

// With the flag on, a pole is 89.9999999 degrees; off, it is passed on, to
// the northing of the largest latitude below 90 in radians. Miller's cylinder clamps beyond a pole to
// 1.5707 radians.
TEST(Cylindrical, PolesClampOrPassAsConfigured)
{
  auto datum = MakeDatum(6378137, 298.257223563);
  auto mercator = MakeProjection(CProjection::kMercator, datum.get(),
                       {{"central_meridian", 0}, {"latitude_of_origin", 0}, {"scale_factor", 1},
                        {"false_easting", 0}, {"false_northing", 0}});
  auto northing = [&](double lat) {
    double x = 10, y = lat;
    EXPECT_TRUE(mercator->ToPlane(x, y));
    return y;
  };
  CDataSource::SetCartographicFlag(true);
  double const clamped = northing(89.9999999);
  EXPECT_TRUE(std::isfinite(clamped));
  EXPECT_EQ(northing(90.0), clamped);
  EXPECT_EQ(northing(95.0), clamped);
  EXPECT_EQ(northing(-90.0), -clamped);
  CDataSource::SetCartographicFlag(false);
  EXPECT_GT(northing(90.0), northing(89.99999999));
  EXPECT_GT(northing(89.99999999), clamped);
  EXPECT_EQ(northing(-90.0), -northing(90.0));

  auto miller = MakeProjection(CProjection::kMillerCylindrical, datum.get(),
                     {{"central_meridian", 0}, {"spherical_radius", 6371000}, {"false_easting", 0},
                      {"false_northing", 0}});
  double const edge = 1.5707 / Velmora::Constants::kRadiansPerDegree;
  for (double sign : {1.0, -1.0}) {
    double x = 0, y = 91 * sign, xe = 0, ye = edge * sign;
    ASSERT_TRUE(miller->ToPlane(x, y));
    ASSERT_TRUE(miller->ToPlane(xe, ye));
    EXPECT_EQ(y, ye);
  }
}

// The polyconic's equator is a straight line at -M0, back to latitude 0
// exactly; Cassini's pole lies on the central meridian; Bonne's pole is the
// centre of its parallels, where the inverse gives the central meridian.
TEST(Cylindrical, EquatorAndPoleBranches)
{
  auto datum = MakeDatum(6378206.4, 294.9786982);
  Parameters const origin = {{"central_meridian", -54}, {"latitude_of_origin", 20}, {"false_easting", 1000},
                             {"false_northing", 2000}};
  auto polyconic = MakeProjection(CProjection::kPolyconic, datum.get(), origin);
  double x = -50, y = 0;
  ASSERT_TRUE(polyconic->ToPlane(x, y));
  EXPECT_NEAR(x, 1000 + 6378206.4 * 4 * Velmora::Constants::kRadiansPerDegree, 1e-6);
  ASSERT_TRUE(polyconic->FromPlane(x, y));
  EXPECT_EQ(y, 0.0);
  EXPECT_NEAR(x, -50, 1e-12);

  auto cassini = MakeProjection(CProjection::kCassini, datum.get(), origin);
  x = -10;
  y = 90;
  ASSERT_TRUE(cassini->ToPlane(x, y));
  EXPECT_EQ(x, 1000.0);

  auto bonne = MakeProjection(CProjection::kBonne, datum.get(), origin);
  x = 30;
  y = 90;
  ASSERT_TRUE(bonne->ToPlane(x, y));
  ASSERT_TRUE(bonne->FromPlane(x, y));
  EXPECT_NEAR(y, 90, 1e-9);
  EXPECT_NEAR(x, -54.0, 1e-12);
}
