// The oblique projections on the published worked example of Hotine's
// oblique Mercator, and at the edges of their domains: the unrectified
// frame, the poles, the far side of the Hungarian cylinder and the apex of
// Krovak's cone.
#include "../support/ReferenceData.h"

#include <velmora/projections/Oblique.h>

#include <cmath>

using namespace Velmora::CS::PJ;
using VelmoraTest::Dms;
using VelmoraTest::MakeDatum;
using VelmoraTest::MakeProjection;
using VelmoraTest::Parameters;

namespace {

// Timbalai 1948 / RSO Borneo on Everest 1830 (1967 definition), EPSG
// Guidance Note 7-2 (2019), the example of methods 9812 and 9815; the
// centre's false values are also the natural origin's zero.
Parameters Borneo(double unrectified, double centre, double fe, double fn)
{
  return {{"central_meridian", 115},
          {"latitude_of_origin", 4},
          {"scale_factor", 0.99984},
          {"azimuth", Dms(53, 18, 56.9537)},
          {"false_easting", fe},
          {"false_northing", fn},
          {"rotation_angle", Dms(53, 7, 48.3685)},
          {"unrectified_flag", unrectified},
          {"center_flag", centre},
          {"use_gamma_flag", 0},
          {"azimuth_is_gamma", 0}};
}

Parameters BorneoOnePoint(double fe, double fn)
{
  return {{"central_meridian", 115},  {"latitude_of_origin", 4},
          {"scale_factor", 0.99984},  {"azimuth", Dms(53, 18, 56.9537)},
          {"azimuth_skew", Dms(53, 7, 48.3685)}, {"false_easting", fe},
          {"false_northing", fn}};
}

} // namespace

// Both variants, the one-point types, and the unrectified u and v that the
// note prints on the way (u counted from the centre).
TEST(Oblique, HotineWorkedExample)
{
  auto datum = MakeDatum(6377298.556, 300.8017);
  double const lon = Dms(115, 48, 19.8196), lat = Dms(5, 23, 14.1129);
  struct Case
  {
    CProjection::Type type;
    Parameters parameters;
    double east, north, metres;
  } const cases[] = {
    {CProjection::kObliqueMercatorAzimuth, Borneo(0, 1, 590476.87, 442857.65), 679245.73, 596562.78, 0.005},
    {CProjection::kObliqueMercatorAzimuth, Borneo(0, 0, 0, 0), 679245.73, 596562.78, 0.005},
    {CProjection::kHotineObliqueMercator_2, BorneoOnePoint(590476.87, 442857.65), 679245.73, 596562.78, 0.005},
    {CProjection::kHotineObliqueMercator_1, BorneoOnePoint(0, 0), 679245.73, 596562.78, 0.005},
    {CProjection::kObliqueMercatorAzimuth, Borneo(1, 1, 0, 0), 163238.163, -69702.787, 0.0005},
  };
  for (Case const & c : cases) {
    auto p = MakeProjection(c.type, datum.get(), c.parameters);
    double x = lon, y = lat;
    ASSERT_TRUE(p->ToPlane(x, y)) << c.type;
    EXPECT_NEAR(x, c.east, c.metres) << c.type;
    EXPECT_NEAR(y, c.north, c.metres) << c.type;
    ASSERT_TRUE(p->FromPlane(x, y)) << c.type;
    EXPECT_NEAR(x, Dms(115, 48, 19.820), 0.0005 / 3600) << c.type;
    EXPECT_NEAR(y, Dms(5, 23, 14.113), 0.0005 / 3600) << c.type;
  }
}

// A latitude of exactly 90 degrees takes the pole's limiting u and v and
// comes back as the pole; the type without the pole test refuses it.
TEST(Oblique, PoleTakesTheLimitingValues)
{
  auto datum = MakeDatum(6378137, 298.257222101);
  struct Case
  {
    CProjection::Type type;
    Parameters parameters;
    double lat;
    bool converts;
  } const cases[] = {
    {CProjection::kObliqueMercatorAzimuth, Borneo(0, 1, 0, 0), 90, true},
    {CProjection::kObliqueMercatorAzimuth, Borneo(1, 0, 0, 0), -90, true},
    {CProjection::kHotineObliqueMercator_1, BorneoOnePoint(0, 0), 90, true},
    {CProjection::kHotineObliqueMercator_2, BorneoOnePoint(0, 0), 90, false},
  };
  for (Case const & c : cases) {
    auto p = MakeProjection(c.type, datum.get(), c.parameters);
    double x = 30, y = c.lat;
    ASSERT_EQ(p->ToPlane(x, y), c.converts) << c.type << " " << c.lat;
    if (!c.converts)
      continue;
    EXPECT_TRUE(std::isfinite(x) && std::isfinite(y));
    ASSERT_TRUE(p->FromPlane(x, y));
    EXPECT_EQ(y, c.lat) << c.type;
  }
}

// The Hungarian cylinder's pole lies in the Pacific: there the northing
// has no value and the conversion is refused; Hungary itself converts.
TEST(Oblique, EovRefusesTheCylindersPole)
{
  CEgysegesOrszagosVetulet eov;
  double x = 650000, y = 200000 + 1e9; // beyond every northing: the pole itself
  ASSERT_TRUE(eov.FromPlane(x, y));
  EXPECT_GT(std::fabs(x - 19.05), 90);
  EXPECT_FALSE(eov.ToPlane(x, y));
  x = 19.05;
  y = 47.15;
  EXPECT_TRUE(eov.ToPlane(x, y));
}

// Plane offsets below 1e-15 m are Krovak's origin, the apex of the cone: it
// comes back as the pseudo-pole on the central meridian, which maps to it.
TEST(Oblique, KrovakApexIsThePseudoPole)
{
  auto datum = MakeDatum(6377397.155, 299.1528128);
  auto p = MakeProjection(CProjection::kKrovak, datum.get(),
                          {{"central_meridian", Dms(24, 50, 0)}, {"latitude_of_origin", Dms(49, 30, 0)},
                           {"azimuth", Dms(30, 17, 17.30311)}, {"latitude_of_true_scale", Dms(78, 30, 0)},
                           {"scale_factor", 0.9999}, {"false_easting", 0}, {"false_northing", 0}});
  double x = 1e-16, y = -1e-16;
  ASSERT_TRUE(p->FromPlane(x, y));
  EXPECT_EQ(x, Dms(24, 50, 0));
  EXPECT_NEAR(y, 59.76, 0.1); // the cone's axis meets the ellipsoid near 90 - 30.29 on the sphere
  ASSERT_TRUE(p->ToPlane(x, y));
  EXPECT_NEAR(x, 0, 1e-6);
  EXPECT_NEAR(y, 0, 1e-6);
}
