// The azimuthal family on the published worked examples and at the edges of
// its domains: the centre, horizons, the orthographic disc, the south pole.
#include "../support/ReferenceData.h"

#include <velmora/projections/Azimuthal.h>

#include <vector>

using namespace Velmora::CS::PJ;
using VelmoraTest::Dms;
using VelmoraTest::MakeDatum;
using VelmoraTest::MakeProjection;
using VelmoraTest::Parameters;

// EPSG Guidance Note 7-2 (2019): methods 9810, 9829, 9830, 9809 and 9820.
// Variant C (Petrels 1972 / Terre Adelie) is variant B with the false
// northing moved from the false origin to the pole: NF - a mF.
TEST(Azimuthal, PublishedExamples)
{
  Parameters const rdNew = {{"central_meridian", Dms(5, 23, 15.5)}, {"latitude_of_origin", Dms(52, 9, 22.178)},
                            {"scale_factor", 0.9999079}, {"false_easting", 155000}, {"false_northing", 463000}};
  VelmoraTest::ExpectExamples({
    {"9810, WGS 84 / UPS North", CProjection::kPolarStereographic, 6378137, 298.257223563,
     {{"central_meridian", 0}, {"latitude_of_origin", 90}, {"scale_factor", 0.994}, {"false_easting", 2000000},
      {"false_northing", 2000000}},
     44, 73, 3320416.75, 632668.43, 0.005, 0.0005 / 3600},
    {"9829, WGS 84 / Australian Antarctic Polar Stereographic", CProjection::kPolarStereographic, 6378137,
     298.257223563,
     {{"central_meridian", 70}, {"latitude_of_origin", -71}, {"scale_factor", 1}, {"false_easting", 6000000},
      {"false_northing", 6000000}},
     120, -75, 7255380.79, 7053389.56, 0.005, 0.0005 / 3600},
    {"9830, Petrels 1972 / Terre Adelie Polar Stereographic", CProjection::kPolarStereographic, 6378388, 297,
     {{"central_meridian", 140}, {"latitude_of_origin", -67}, {"scale_factor", 1}, {"false_easting", 300000},
      {"false_northing", -2299363.487830594}},
     Dms(140, 4, 17.04), Dms(-66, 36, 18.82), 303169.52, 244055.72, 0.005, 0.0005 / 3600},
    {"9809, Amersfoort / RD New", CProjection::kDoubleStereographic, 6377397.155, 299.1528128, rdNew, 6, 53,
     196105.283, 557057.739, 0.0005, 0.00005 / 3600},
    {"9820, ETRS89 / LAEA Europe", CProjection::kAzimuthalEqualArea, 6378137, 298.257222101,
     {{"central_meridian", 10}, {"latitude_of_origin", 52}, {"false_easting", 4321000}, {"false_northing", 3210000},
      {"xy_plane_rotation", 0}},
     5, 50, 3962799.45, 2999718.85, 0.005, 0.0005 / 3600},
  });
}

// Every class: nothing converts until the last parameter is set; then the
// false origin goes back to the centre (the pole for the polar classes).
TEST(Azimuthal, FalseOriginReturnsTheCentre)
{
  auto datum = MakeDatum(6378137, 298.257223563);
  Parameters const oblique = {{"central_meridian", 25},   {"latitude_of_origin", 46},     {"scale_factor", 0.99975},
                              {"spherical_radius", 6371000}, {"height", 1000000},          {"azimuth", 30},
                              {"tilt", 20},               {"xy_plane_rotation", 15},      {"false_easting", 500000},
                              {"false_northing", 400000}};
  Parameters polar = oblique;
  polar[1].second = -71; // a latitude of true scale: the centre is the south pole
  struct Case
  {
    CProjection::Type type;
    Parameters const & parameters;
    double lat;
  } const cases[] = {
    {CProjection::kStereographic, oblique, 46},          {CProjection::kDoubleStereographic, oblique, 46},
    {CProjection::kEuropeanStereographic, oblique, 46},  {CProjection::kPolarStereographic, polar, -90},
    {CProjection::kAzimuthalEqualArea, oblique, 46},     {CProjection::kPolarAzimuthalEqualArea, polar, -90},
    {CProjection::kAzimuthalEquidistant, oblique, 46},   {CProjection::kPolarEquidistant, polar, -90},
    {CProjection::kGnomic, oblique, 46},                 {CProjection::kOrthographic, oblique, 46},
    {CProjection::kVerticalPerspective, oblique, 46},    {CProjection::kTiltedPerspective, oblique, 46},
  };
  for (Case const & c : cases) {
    auto p = MakeProjection(c.type, datum.get(), {});
    Velmora::CParameterCollection const & registered = p->GetParameters();
    Parameters used;
    for (auto const & parameter : c.parameters)
      if (registered.Exists(Velmora::CString(parameter.first)))
        used.push_back(parameter);
    for (std::size_t i = 0; i < used.size(); ++i) {
      double x = 25, y = 46;
      EXPECT_FALSE(p->ToPlane(x, y)) << c.type << " " << i;
      VelmoraTest::SetParameter(*p, used[i].first, used[i].second);
    }
    double x = 500000, y = 400000;
    ASSERT_TRUE(p->FromPlane(x, y)) << c.type;
    EXPECT_NEAR(x, 25, 1e-12) << c.type;
    EXPECT_NEAR(y, c.lat, 1e-12) << c.type;
  }
}

// What lies beyond a projection's reach: the gnomonic's horizon (cos c at
// most 1e-7), the orthographic's disc, the stereographic's antipode, the
// perspective's horizon image.
TEST(Azimuthal, Horizons)
{
  auto sphere = MakeDatum(6371000, 0);
  Parameters const view = {{"central_meridian", 0}, {"latitude_of_origin", 0}, {"spherical_radius", 6371000},
                           {"scale_factor", 1},     {"height", 1000000},      {"false_easting", 0},
                           {"false_northing", 0},   {"xy_plane_rotation", 0}, {"azimuth", 0}, {"tilt", 0}};
  auto const make = [&](CProjection::Type type) {
    auto p = MakeProjection(type, sphere.get(), {});
    for (auto const & [name, value] : view)
      if (p->GetParameters().Exists(Velmora::CString(name)))
        VelmoraTest::SetParameter(*p, name, value);
    return p;
  };
  struct Point
  {
    CProjection::Type type;
    bool forward;
    double a, b;
    bool converts;
  } const points[] = {
    {CProjection::kGnomic, true, 90, 0, false},            // on the horizon
    {CProjection::kGnomic, true, 0, 90, false},
    {CProjection::kGnomic, true, 135, 10, false},          // beyond it
    {CProjection::kGnomic, true, 89.99, 0, true},          // just inside
    {CProjection::kOrthographic, false, 6371000.5, 0, false}, // off the disc
    {CProjection::kOrthographic, false, 4e6, 4.9e6, true},
    {CProjection::kOrthographic, true, 150, 0, true},      // the far side falls on the near one
    {CProjection::kStereographic, true, 180, 0, false},    // the antipode
    {CProjection::kDoubleStereographic, true, 180, 0, false},
    {CProjection::kVerticalPerspective, false, 3e6, 0, false}, // beyond the horizon's image
    {CProjection::kTiltedPerspective, false, 0, 3e6, false},
  };
  for (Point const & pt : points) {
    auto p = make(pt.type);
    double x = pt.a, y = pt.b;
    EXPECT_EQ(pt.forward ? p->ToPlane(x, y) : p->FromPlane(x, y), pt.converts) << pt.type << " " << pt.a;
  }
}

// A negative latitude of true scale puts the plane on the south pole with
// the northern plane's northing negated: (lon, -lat) goes to (E, -N).
TEST(Azimuthal, SouthPolarStereographicMirrorsTheNorth)
{
  auto datum = MakeDatum(6378137, 298.257223563);
  Parameters north = {{"central_meridian", 70}, {"latitude_of_origin", 71}, {"scale_factor", 1},
                      {"false_easting", 0},     {"false_northing", 0}};
  Parameters south = north;
  south[1].second = -71;
  auto const n = MakeProjection(CProjection::kPolarStereographic, datum.get(), north);
  auto const s = MakeProjection(CProjection::kPolarStereographic, datum.get(), south);
  for (double lon : {-170.0, 10.0, 70.0, 120.0}) {
    double xn = lon, yn = 75, xs = lon, ys = -75;
    ASSERT_TRUE(n->ToPlane(xn, yn));
    ASSERT_TRUE(s->ToPlane(xs, ys));
    EXPECT_NEAR(xs, xn, 1e-6) << lon;
    EXPECT_NEAR(ys, -yn, 1e-6) << lon;
    EXPECT_GT(std::hypot(xs, ys), 1.5e6) << lon;
  }
}
