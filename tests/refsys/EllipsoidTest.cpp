#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/BPoint.h>
#include <velmora/refsys/BEllipsoid.h>

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>
#include <vector>

using Velmora::CString;
using Velmora::CS::BEllipsoid;
using Velmora::EX::CVelmoraException;
using Velmora::ML::BPoint2D;
using Velmora::ML::BPoint3D;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDeg = kPi / 180.0;

// Published WGS 84 figures (NIMA TR8350.2).
constexpr double kWgsA = 6378137.0;
constexpr double kWgsInvF = 298.257223563;
constexpr double kWgsB = 6356752.314245;
constexpr double kWgsE2 = 0.00669437999014;
constexpr double kWgsSecondE2 = 0.00673949674228;
constexpr double kWgsAuthalicRadius = 6371007.1809;

BEllipsoid Wgs84()
{
  return BEllipsoid(kWgsA, kWgsInvF);
}

BEllipsoid Sphere(double r)
{
  BEllipsoid s;
  s.set_SemiMajor_SemiMinor(r, r);
  return s;
}

// Runs a setter that must fail and checks what it raised.
template <typename F>
void ExpectInitFailure(F setter, char const * location, char const * details)
{
  try {
    setter();
    ADD_FAILURE() << "no exception from " << location;
  } catch (CVelmoraException const & ex) {
    EXPECT_EQ(ex.GetErrorCode(), 14);
    EXPECT_EQ(QString(ex.GetLocation()), QString(location));
    EXPECT_EQ(QString(ex.GetDetails()), QString(details));
  }
}

// Snyder's q, written out independently of the class: the area from the
// equator to lat is a^2 dlon q / 2.
double TextbookQ(double e, double lat)
{
  double const s = std::sin(lat);
  return (1 - e * e) * (s / (1 - e * e * s * s) - std::log((1 - e * s) / (1 + e * s)) / (2 * e));
}

// Area of the cell bounded by two meridians and two parallels.
double TextbookCellArea(double a, double e, double lon1, double lon2, double lat1, double lat2)
{
  return a * a / 2 * (lon2 - lon1) * (TextbookQ(e, lat2) - TextbookQ(e, lat1));
}

// A lat/lon cell as a ring, each parallel traced by `steps` great-circle
// edges so that the ring follows the parallels closely.
std::vector<BPoint2D> Cell(double lon1, double lon2, double lat1, double lat2, bool counterClockwise,
                           int steps = 1)
{
  std::vector<BPoint2D> ring;
  for (int i = 0; i <= steps; ++i)
    ring.emplace_back(lon1 + (lon2 - lon1) * i / steps, lat1);
  for (int i = 0; i <= steps; ++i)
    ring.emplace_back(lon2 - (lon2 - lon1) * i / steps, lat2);
  if (counterClockwise)
    return ring;
  return std::vector<BPoint2D>(ring.rbegin(), ring.rend());
}

} // namespace

TEST(BPoint, PlainValues)
{
  static_assert(std::is_trivially_copyable_v<BPoint2D>);
  static_assert(std::is_trivially_copyable_v<BPoint3D>);
  static_assert(sizeof(BPoint3D) == 3 * sizeof(double));
  constexpr BPoint3D zero;
  static_assert(zero.x == 0 && zero.y == 0 && zero.z == 0);
  constexpr BPoint2D p(1.5, -2.5);
  static_assert(p.x == 1.5 && p.y == -2.5);
}

TEST(BEllipsoidFigure, DefaultCopyAndCompare)
{
  BEllipsoid e;
  EXPECT_EQ(e.GetSemiMajor(), 0.0);
  EXPECT_EQ(e.GetSemiMinor(), 0.0);
  EXPECT_EQ(e.GetInverseFlattening(), 1e32);
  EXPECT_EQ(e.GetFlattening(), 0.0);
  EXPECT_EQ(e.GetAxisRatio(), 1.0);
  EXPECT_EQ(e.GetEccentricity(), 0.0);
  EXPECT_EQ(e.GetEccentricitySquared(), 0.0);

  BEllipsoid w = Wgs84();
  e = w;
  EXPECT_TRUE(e == w);
  e.set_SemiMajor_InverseFlattening(kWgsA, kWgsInvF + 1e-9);
  EXPECT_TRUE(e != w);
  w.set_Default();
  EXPECT_TRUE(w == BEllipsoid());
}

TEST(BEllipsoidFigure, Wgs84DerivedValuesMatchPublished)
{
  BEllipsoid const w = Wgs84();
  EXPECT_EQ(w.GetSemiMajor(), kWgsA);
  EXPECT_EQ(w.GetInverseFlattening(), kWgsInvF);
  EXPECT_NEAR(w.GetSemiMinor(), kWgsB, 1e-6);
  EXPECT_NEAR(w.GetEccentricitySquared(), kWgsE2, 1e-14);
  EXPECT_NEAR(w.GetSecondEccentricitySquared(), kWgsSecondE2, 1e-14);
  EXPECT_NEAR(w.GetEccentricity(), std::sqrt(kWgsE2), 1e-12);
  EXPECT_NEAR(w.GetFlattening(), 1 / kWgsInvF, 1e-16);
  EXPECT_FALSE(w.IsSpherical());
  EXPECT_EQ(w.GetSphericalRadius(), kWgsA);
}

TEST(BEllipsoidFigure, SpheresFromEachSetter)
{
  BEllipsoid const s = Sphere(6378137);
  EXPECT_EQ(s.GetAxisRatio(), 1.0);
  EXPECT_EQ(s.GetInverseFlattening(), 1e32);
  EXPECT_EQ(s.GetEccentricity(), 0.0);
  EXPECT_TRUE(s.IsSpherical());

  BEllipsoid t;
  EXPECT_NO_THROW(t.set_SemiMajor_InverseFlattening(6378137, 1));
  EXPECT_TRUE(t == s);
  EXPECT_NO_THROW(t.set_SemiMajor_AxisRatio(6378137, 1));
  EXPECT_TRUE(t == s);
}

TEST(BEllipsoidFigure, SetterFailuresRaiseAfterStoringAUsableFigure)
{
  char const * const kAxes = "BEllipsoid::set_SemiMajor_SemiMinor";
  char const * const kInvF = "BEllipsoid::set_SemiMajor_InverseFlattening";
  char const * const kRatio = "BEllipsoid::set_SemiMajor_AxisRatio";

  BEllipsoid e;
  ExpectInitFailure([&] { e.set_SemiMajor_SemiMinor(1, 2); }, kAxes,
                    "Semi-minor cannot be greater than semi-major");
  EXPECT_EQ(e.GetSemiMajor(), 1.0);
  EXPECT_EQ(e.GetSemiMinor(), 1.0);
  EXPECT_EQ(e.GetInverseFlattening(), 1e32);

  ExpectInitFailure([&] { e.set_SemiMajor_SemiMinor(6378137, -1); }, kAxes,
                    "Semi-minor cannot be less than zero");
  EXPECT_EQ(e.GetSemiMinor(), 0.0);
  EXPECT_EQ(e.GetAxisRatio(), 0.0);
  EXPECT_EQ(e.GetEccentricity(), 1.0);

  ExpectInitFailure([&] { e.set_SemiMajor_SemiMinor(-5, 0); }, kAxes,
                    "Semi-major axis cannot be negative");
  EXPECT_EQ(e.GetSemiMajor(), 0.0);

  ExpectInitFailure([&] { e.set_SemiMajor_InverseFlattening(6378137, 0.5); }, kInvF,
                    "Inverse flattening cannot be less than one");
  EXPECT_TRUE(e == Sphere(6378137));

  ExpectInitFailure([&] { e.set_SemiMajor_InverseFlattening(-1, 298); }, kInvF,
                    "Semi-major axis cannot be negative");
  EXPECT_EQ(e.GetSemiMajor(), 0.0);
  EXPECT_EQ(e.GetInverseFlattening(), 298.0);

  ExpectInitFailure([&] { e.set_SemiMajor_AxisRatio(6378137, -0.1); }, kRatio,
                    "Ratio of semi-minor to semi-major cannot be less than zero");
  EXPECT_EQ(e.GetAxisRatio(), 0.0);
  EXPECT_EQ(e.GetSemiMinor(), 0.0);
  EXPECT_EQ(e.GetFlattening(), 1.0);
  EXPECT_EQ(e.GetInverseFlattening(), 1.0);

  ExpectInitFailure([&] { e.set_SemiMajor_AxisRatio(6378137, 1.5); }, kRatio,
                    "Ratio of semi-minor to semi-major cannot be greater than one");
  EXPECT_TRUE(e == Sphere(6378137));

  // The full text a caller shows.
  try {
    e.set_SemiMajor_InverseFlattening(1, 0);
  } catch (CVelmoraException const & ex) {
    EXPECT_EQ(QString(ex.GetFullMessage()),
              QString("Attempted to assign an invalid value "
                      "[BEllipsoid::set_SemiMajor_InverseFlattening]: "
                      "Inverse flattening cannot be less than one"));
  }
}

TEST(BEllipsoidAuxiliary, RadiiOfCurvatureAgreeWithTextbookForms)
{
  BEllipsoid const w = Wgs84();
  double const a = kWgsA;
  double const e2 = w.GetEccentricitySquared();
  for (double latDeg : {-90.0, -45.0, 0.0, 10.0, 52.5, 89.0, 90.0}) {
    double const lat = latDeg * kDeg;
    double const W2 = 1 - e2 * std::sin(lat) * std::sin(lat);
    double const M = a * (1 - e2) / std::pow(W2, 1.5);
    double const N = a / std::sqrt(W2);
    EXPECT_NEAR(w.ComputeMeridionalRadiusAtLatitude(lat), M, 1e-6) << latDeg;
    EXPECT_NEAR(w.ComputePrimeVerticalRadiusAtLatitude(lat), N, 1e-6) << latDeg;
    EXPECT_NEAR(w.ComputeGaussRadiusAtLatitude(lat), std::sqrt(M * N), 1e-6) << latDeg;
    EXPECT_NEAR(w.ComputeOrthometricScaleAtLatitude(lat, 1000), M / (M + 1000), 1e-15);
  }
  EXPECT_NEAR(w.ComputeMeridionalRadiusAtLatitude(0), 6335439.327, 1e-3);
  EXPECT_NEAR(w.ComputePrimeVerticalRadiusAtLatitude(kPi / 2), 6399593.626, 1e-3);
  EXPECT_EQ(w.ComputeOrthometricScaleAtLatitude(0.3, 0), 1.0);

  EXPECT_DOUBLE_EQ(BEllipsoid::Haversine(kPi), 1.0);
  EXPECT_DOUBLE_EQ(BEllipsoid::Haversine(kPi / 2), 0.5);
  EXPECT_EQ(BEllipsoid::Haversine(0), 0.0);
}

TEST(BEllipsoidAuxiliary, LatitudesAgreeWithSeriesAndGeometry)
{
  BEllipsoid const w = Wgs84();
  double const e2 = w.GetEccentricitySquared();
  double const e4 = e2 * e2, e6 = e4 * e2, e8 = e6 * e2;
  std::vector<BPoint3D> pts;
  for (double latDeg = -89.5; latDeg < 90; latDeg += 7.25) {
    double const lat = latDeg * kDeg;

    // Conformal: back to the geodetic latitude by Snyder's series (3-5).
    double const chi = w.ComputeConformalLatitude(lat);
    double const fromChi = chi + (e2 / 2 + 5 * e4 / 24 + e6 / 12 + 13 * e8 / 360) * std::sin(2 * chi)
                           + (7 * e4 / 48 + 29 * e6 / 240 + 811 * e8 / 11520) * std::sin(4 * chi)
                           + (7 * e6 / 120 + 81 * e8 / 1120) * std::sin(6 * chi)
                           + (4279 * e8 / 161280) * std::sin(8 * chi);
    EXPECT_NEAR(fromChi, lat, 1e-11) << latDeg;

    // Authalic: the class gives the sine; Snyder's series (3-18) takes it back.
    double const beta = std::asin(w.ComputeAuthalicLatitude(lat));
    double const fromBeta = beta + (e2 / 3 + 31 * e4 / 180 + 517 * e6 / 5040) * std::sin(2 * beta)
                            + (23 * e4 / 360 + 251 * e6 / 3780) * std::sin(4 * beta)
                            + (761 * e6 / 45360) * std::sin(6 * beta);
    EXPECT_NEAR(fromBeta, lat, 1e-9) << latDeg;
    EXPECT_NEAR(w.ComputeAuthalicQ(lat), TextbookQ(w.GetEccentricity(), lat), 1e-15);

    pts.emplace_back(0.0, latDeg, 0.0);
  }

  // Geocentric and reduced latitudes of the surface point, from its cartesian form.
  w.FromGeodeticBase(static_cast<int>(pts.size()), pts.data());
  double latDeg = -89.5;
  for (BPoint3D const & p : pts) {
    double const lat = latDeg * kDeg;
    EXPECT_NEAR(w.ComputeGeocentricLatitude(lat), std::atan2(p.z, p.x), 1e-15) << latDeg;
    EXPECT_NEAR(w.ComputeReducedLatitude(lat), std::atan2(p.z / w.GetSemiMinor(), p.x / kWgsA), 1e-15);
    latDeg += 7.25;
  }

  EXPECT_NEAR(w.ComputeAuthalicLatitude(kPi / 2), 1.0, 1e-15);
  EXPECT_EQ(w.ComputeAuthalicLatitude(0), 0.0);
}

TEST(BEllipsoidAuxiliary, AuthalicRadii)
{
  BEllipsoid const w = Wgs84();
  double const e = w.GetEccentricity();
  EXPECT_NEAR(w.AuthalicRadius(), kWgsAuthalicRadius, 1e-4);
  EXPECT_NEAR(w.AuthalicRadius(), kWgsA * std::sqrt(TextbookQ(e, kPi / 2) / 2), 1e-6);

  // Band radius: R^2 dlon (sin lat2 - sin lat1) is the band's area. The
  // difference of the two q loses digits on a thin band near the pole, hence
  // a relative tolerance.
  double const bands[][2] = {{0, 1}, {-30, 60}, {45, 46}, {89, 90}, {-90, 90}, {10, -20}};
  for (auto const & band : bands) {
    double const lat1 = band[0] * kDeg, lat2 = band[1] * kDeg;
    double const area = TextbookCellArea(kWgsA, e, 0, 1, lat1, lat2);
    double const expected = std::sqrt(area / (std::sin(lat2) - std::sin(lat1)));
    EXPECT_NEAR(w.AuthalicRadius(lat1, lat2), expected, expected * 1e-11) << band[0] << " " << band[1];
  }
  EXPECT_NEAR(w.AuthalicRadius(-kPi / 2, kPi / 2), kWgsAuthalicRadius, 1e-4);

  // A sphere: exact through the special cases, and no value for the global radius.
  BEllipsoid const s = Sphere(6371000);
  EXPECT_EQ(s.ComputeAuthalicQ(0.5), 2 * std::sin(0.5));
  EXPECT_EQ(s.ComputeAuthalicQNorthPole(), 2.0);
  EXPECT_EQ(s.ComputeAuthalicLatitude(0.5), std::sin(0.5));
  EXPECT_DOUBLE_EQ(s.AuthalicRadius(0.1, 0.7), 6371000.0);
  EXPECT_TRUE(std::isnan(s.AuthalicRadius()));
}

TEST(BEllipsoidGeodesic, CoincidenceAndTheFinalThreshold)
{
  BEllipsoid const w = Wgs84();
  double az12 = -1, az21 = -1, s = -1;
  BPoint2D const p(0.3, 0.8);
  w.GeodeticInverse(p, p, az12, az21, s);
  EXPECT_EQ(az12, 0.0);
  EXPECT_EQ(az21, 0.0);
  EXPECT_EQ(s, 0.0);

  // 0.05 mm north: below the 0.1 mm threshold, so coincident.
  double const M = w.ComputeMeridionalRadiusAtLatitude(p.y);
  w.GeodeticInverse(p, BPoint2D(p.x, p.y + 0.05e-3 / M), az12, az21, s);
  EXPECT_EQ(s, 0.0);
  EXPECT_EQ(az12, 0.0);
  EXPECT_EQ(az21, 0.0);

  // 0.2 mm north is a line.
  w.GeodeticInverse(p, BPoint2D(p.x, p.y + 0.2e-3 / M), az12, az21, s);
  EXPECT_NEAR(s, 0.2e-3, 1e-9);
  EXPECT_NEAR(std::remainder(az12, 2 * kPi), 0.0, 1e-6);
  EXPECT_NEAR(az21, kPi, 1e-6);
}

TEST(BEllipsoidGeodesic, AntipodalInputStopsWithoutFailure)
{
  BEllipsoid const w = Wgs84();
  double az12 = -1, az21 = -1, s = -1;
  EXPECT_NO_THROW(w.GeodeticInverse(BPoint2D(0.0, 0.2), BPoint2D(kPi, -0.2), az12, az21, s));
  EXPECT_GE(az12, 0.0);
  EXPECT_LE(az12, 2 * kPi);
  EXPECT_GE(az21, 0.0);
  EXPECT_LE(az21, 2 * kPi);
}

TEST(BEllipsoidGeodesic, ForwardReducesAzimuthsAndRoundTrips)
{
  BEllipsoid const w = Wgs84();
  BPoint2D const p1(-1.2, 0.6);
  BPoint2D a, b;
  double az21a, az21b;
  w.GeodeticForward(p1, 0.7, 5e6, a, az21a);
  for (double az : {0.7 + 4 * kPi, 0.7 - 2 * kPi}) {
    w.GeodeticForward(p1, az, 5e6, b, az21b);
    EXPECT_NEAR(b.x, a.x, 1e-14);
    EXPECT_NEAR(b.y, a.y, 1e-14);
    EXPECT_NEAR(az21b, az21a, 1e-13);
  }

  double az12, az21, s;
  w.GeodeticInverse(p1, a, az12, az21, s);
  EXPECT_NEAR(az12, 0.7, 1e-11);
  EXPECT_NEAR(az21, az21a, 1e-11);
  EXPECT_NEAR(s, 5e6, 1e-5);
}

TEST(BEllipsoidRhumb, RoundTripsAndCoincidence)
{
  BEllipsoid const w = Wgs84();
  double az = -1, s = -1;
  EXPECT_FALSE(w.RhumbInverse(BPoint2D(0.1, 0.2), BPoint2D(0.1 + 5e-11, 0.2 - 5e-11), az, s));
  EXPECT_EQ(az, 0.0);
  EXPECT_EQ(s, 0.0);

  double const cases[][4] = {
    {0.1, 0.2, 0.9, -0.7}, {-2.0, -1.3, 1.0, 1.3}, {0.5, 0.4, 0.5, 1.2},  {0.5, 0.4, 0.2, 0.4},
    {0.5, -0.4, 1.5, -0.4}, {3.0, 0.0, -0.1, 0.0},  {0.0, 1.48, 2.0, 1.0}, {1.0, 0.3, 1.0001, 0.3001},
  };
  for (auto const & c : cases) {
    BPoint2D const p1(c[0], c[1]), p2(c[2], c[3]);
    ASSERT_TRUE(w.RhumbInverse(p1, p2, az, s));
    EXPECT_GE(az, 0.0);
    EXPECT_LT(az, 2 * kPi);
    BPoint2D q;
    EXPECT_TRUE(w.RhumbDirect(p1, az, s, q));
    // The arc series and the inverse series of the direct way differ in
    // their truncation by up to about 1e-10 rad of northing; the easting
    // follows the northing by tan az.
    EXPECT_NEAR(q.y, p2.y, 2e-10) << c[0] << " " << c[1] << " " << c[2] << " " << c[3];
    EXPECT_NEAR((q.x - p2.x) * std::cos(p2.y) * std::fabs(std::cos(az)), 0.0, 2e-10)
      << c[0] << " " << c[1] << " " << c[2] << " " << c[3];
  }
}

TEST(BEllipsoidRhumb, EastWestDirections)
{
  BEllipsoid const w = Wgs84();
  BPoint2D const p1(0.2, 0.7);
  double const s = 100000;
  double const dLon = s / (w.ComputePrimeVerticalRadiusAtLatitude(p1.y) * std::cos(p1.y));
  struct Case { double az; double sign; } const cases[] = {
    {kPi / 2, 1}, {kPi / 2 + 5e-11, 1}, {-kPi / 2, -1}, {3 * kPi / 2, -1}, {-3 * kPi / 2, -1},
  };
  for (Case const & c : cases) {
    BPoint2D q;
    EXPECT_TRUE(w.RhumbDirect(p1, c.az, s, q));
    EXPECT_EQ(q.y, p1.y) << c.az;
    EXPECT_NEAR(q.x - p1.x, c.sign * dLon, 1e-15) << c.az;
  }

  // Along the parallel the inverse gives the arc of the parallel, due east or west.
  double az, dist;
  ASSERT_TRUE(w.RhumbInverse(p1, BPoint2D(p1.x - dLon, p1.y), az, dist));
  EXPECT_NEAR(az, 3 * kPi / 2, 1e-12);
  EXPECT_NEAR(dist, s, 1e-8);
}

TEST(BEllipsoidArea, OneDegreeCellsAgainstTheAuthalicFormula)
{
  BEllipsoid const w = Wgs84();
  double const e = w.GetEccentricity();

  // The edges are great circles, not parallels: on a plain four-corner cell
  // they bulge poleward, which moves the area by up to some 5e-5 of a
  // one-degree cell. Traced by a hundred edges per parallel the ring follows
  // the cell to about 5e-9 of its area. Finer tracing gains nothing: the
  // triangles are taken with the north pole, and L'Huilier's differences of
  // colatitudes lose digits on short edges far from it (some 1e-8 at -60
  // degrees with a thousand edges, 1e-5 next to the south pole).
  for (double latDeg : {-89.0, -60.0, -0.5, 0.0, 45.0, 88.0}) {
    double const lon1 = 10 * kDeg, lon2 = 11 * kDeg;
    double const lat1 = latDeg * kDeg, lat2 = (latDeg + 1) * kDeg;
    double const expected = TextbookCellArea(kWgsA, e, lon1, lon2, lat1, lat2);

    double const corners = w.PolygonArea(Cell(lon1, lon2, lat1, lat2, false));
    EXPECT_NEAR(corners, expected, expected * 1e-4) << latDeg;
    EXPECT_DOUBLE_EQ(w.PolygonArea(Cell(lon1, lon2, lat1, lat2, true)), -corners) << latDeg;

    if (latDeg > -89.0) {
      double const cw = w.PolygonArea(Cell(lon1, lon2, lat1, lat2, false, 100));
      double const ccw = w.PolygonArea(Cell(lon1, lon2, lat1, lat2, true, 100));
      EXPECT_NEAR(cw, expected, expected * 1e-8) << latDeg;
      EXPECT_NEAR(ccw, -cw, expected * 1e-12) << latDeg;
    }
  }

  // Over the antimeridian, from 179.5 E to 179.5 W, longitudes kept in (-pi, pi].
  {
    double const lat1 = 30 * kDeg, lat2 = 31 * kDeg;
    double const expected = TextbookCellArea(kWgsA, e, 0, 1 * kDeg, lat1, lat2);
    std::vector<BPoint2D> ring = Cell(179.5 * kDeg, 180.5 * kDeg, lat1, lat2, false, 100);
    for (BPoint2D & v : ring)
      v.x = std::remainder(v.x, 2 * kPi);
    EXPECT_NEAR(w.PolygonArea(ring), expected, expected * 1e-8);
  }
}

TEST(BEllipsoidArea, TinyCellTakesThePlanarSum)
{
  BEllipsoid const w = Wgs84();
  double const e = w.GetEccentricity();
  double const lon0 = 0.3, lat0 = 0.9, d = 0.0004; // extents of 0.0008 rad: the planar branch
  std::vector<BPoint2D> const ring = Cell(lon0 - d, lon0 + d, lat0 - d, lat0 + d, false);
  double const area = w.PolygonArea(ring);
  EXPECT_DOUBLE_EQ(area, w.PseudoPlanarPolygonArea(lon0, lat0, ring));
  double const expected = TextbookCellArea(kWgsA, e, lon0 - d, lon0 + d, lat0 - d, lat0 + d);
  EXPECT_NEAR(area, expected, expected * 1e-6);
  EXPECT_DOUBLE_EQ(w.PolygonArea(Cell(lon0 - d, lon0 + d, lat0 - d, lat0 + d, true)), -area);

  // Past the limit in latitude: the spherical sum, which agrees.
  double const top = lat0 + 2 * d;
  std::vector<BPoint2D> const taller = Cell(lon0 - d, lon0 + d, lat0 - d, top, false);
  double const tallerArea = w.PolygonArea(taller);
  EXPECT_DOUBLE_EQ(tallerArea, w.SphericalPolygonArea(lat0 - d, top, taller));
  double const tallerExpected = TextbookCellArea(kWgsA, e, lon0 - d, lon0 + d, lat0 - d, top);
  EXPECT_NEAR(tallerArea, tallerExpected, tallerExpected * 1e-6);
}

TEST(BEllipsoidArea, DegenerateBandUsesTheGaussRadius)
{
  BEllipsoid const w = Wgs84();
  // All vertices on one parallel: a thin spherical triangle, since the edges
  // are great circles. Its excess by Van Oosterom and Strackee's formula,
  // tan(E/2) = |a.(b x c)| / (1 + a.b + b.c + c.a), on unit vectors.
  double const lat = 0.5;
  std::vector<BPoint2D> const ring = {{0.0, lat}, {0.4, lat}, {0.8, lat}};
  auto unit = [](BPoint2D const & p) {
    return BPoint3D(std::cos(p.y) * std::cos(p.x), std::cos(p.y) * std::sin(p.x), std::sin(p.y));
  };
  auto dot = [](BPoint3D const & u, BPoint3D const & v) { return u.x * v.x + u.y * v.y + u.z * v.z; };
  BPoint3D const a = unit(ring[0]), b = unit(ring[1]), c = unit(ring[2]);
  BPoint3D const bxc(b.y * c.z - b.z * c.y, b.z * c.x - b.x * c.z, b.x * c.y - b.y * c.x);
  double const excess = 2 * std::atan(std::fabs(dot(a, bxc)) / (1 + dot(a, b) + dot(b, c) + dot(c, a)));

  double const R = w.ComputeGaussRadiusAtLatitude(lat);
  // East along the two short edges, back along the long one that bulges
  // further north: counter-clockwise, so negative.
  double const area = w.PolygonArea(ring);
  EXPECT_EQ(area, w.SphericalPolygonArea(lat, lat, ring));
  EXPECT_NEAR(area, -excess * R * R, excess * R * R * 1e-9);
}

// A sphere takes no Newton step: the first estimate is already exact.
TEST(BEllipsoidGeocentric, SphereRoundTrip)
{
  BEllipsoid const s = Sphere(6371000);
  std::vector<BPoint3D> pts = {{10, 20, 30}, {-170, -80, -5000}, {90, 0, 1e7}};
  std::vector<BPoint3D> const original = pts;
  s.FromGeodeticBase(3, pts.data());
  EXPECT_NEAR(pts[2].y, 6371000 + 1e7, 1e-6);
  s.ToGeodeticBase(3, pts.data());
  for (std::size_t i = 0; i < pts.size(); ++i) {
    EXPECT_NEAR(pts[i].x, original[i].x, 1e-12);
    EXPECT_NEAR(pts[i].y, original[i].y, 1e-12);
    EXPECT_NEAR(pts[i].z, original[i].z, 1e-6);
  }
}
