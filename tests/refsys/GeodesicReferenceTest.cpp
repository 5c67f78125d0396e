// The ellipsoid against GeographicLib: vectors written by
// scripts/gen-ellipsoid-refs.sh with GeodSolve, CartConvert and RhumbSolve.
#include <velmora/measures/BPoint.h>
#include <velmora/refsys/BEllipsoid.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

using Velmora::CS::BEllipsoid;
using VelmoraTest::ReadRows;
using Velmora::ML::BPoint2D;
using Velmora::ML::BPoint3D;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDeg = kPi / 180.0;

// Sideways offset that bounds the azimuth error of very short lines, metres.
constexpr double kShortLineOffset = 2e-7;

// Bound of the rhumb-line errors that come from the meridian arc series, metres.
constexpr double kRhumbSeriesError = 2.5e-3;

// Difference of two angles in radians, reduced to [-pi, pi].
double AngleDiff(double a, double b)
{
  return std::remainder(a - b, 2 * kPi);
}

struct Figure
{
  char const * file;
  double a;
  double b; // 0: use invF
  double invF;
};

BEllipsoid Make(Figure const & f)
{
  BEllipsoid e;
  if (f.b > 0)
    e.set_SemiMajor_SemiMinor(f.a, f.b);
  else
    e.set_SemiMajor_InverseFlattening(f.a, f.invF);
  return e;
}

Figure const kFigures[] = {
  {"geodesic_wgs84.txt", 6378137.0, 0.0, 298.257223563},
  {"geodesic_clarke1866.txt", 6378206.4, 6356583.8, 0.0},
  {"geodesic_sphere.txt", 6371000.0, 6371000.0, 0.0},
};

} // namespace

// Columns: lat1 lon1 azi1 lat2 lon2 azi2 s12, degrees and metres. GeodSolve's
// azimuths run from -180 to 180 and azi2 is the forward azimuth at point 2;
// the class gives 0 to 2 pi and the back azimuth, azi2 + 180 degrees.
// On lines of a few metres or less the azimuth is checked as a sideways
// offset at the far end, since both Vincenty's cos U1 sin U2 - sin U1 cos U2
// cos L and GeodSolve's own round-off (some 15 nm) limit it there.
TEST(GeodesicReference, VincentyInverseAgreesWithGeodSolveAwayFromAntipodes)
{
  for (Figure const & fig : kFigures) {
    BEllipsoid const e = Make(fig);
    auto const rows = ReadRows(fig.file, 7);
    ASSERT_GE(rows.size(), 200u) << fig.file;
    double maxDs = 0, maxDaz = 0, maxOffset = 0;
    for (auto const & r : rows) {
      BPoint2D const p1(r[1] * kDeg, r[0] * kDeg), p2(r[4] * kDeg, r[3] * kDeg);
      double az12, az21, s;
      e.GeodeticInverse(p1, p2, az12, az21, s);
      EXPECT_GE(az12, 0.0);
      EXPECT_LE(az12, 2 * kPi);
      EXPECT_GE(az21, 0.0);
      EXPECT_LE(az21, 2 * kPi);
      double const ds = std::fabs(s - r[6]);
      double const daz = std::max(std::fabs(AngleDiff(az12, r[2] * kDeg)),
                                  std::fabs(AngleDiff(az21, r[5] * kDeg + kPi)));
      EXPECT_LT(ds, 1e-4) << fig.file << " " << r[0] << " " << r[1] << " " << r[3] << " " << r[4];
      EXPECT_LT(daz, std::max(1e-8, kShortLineOffset / r[6]))
        << fig.file << " " << r[0] << " " << r[1] << " " << r[3] << " " << r[4];
      maxDs = std::max(maxDs, ds);
      if (r[6] > kShortLineOffset / 1e-8)
        maxDaz = std::max(maxDaz, daz);
      else
        maxOffset = std::max(maxOffset, daz * r[6]);
    }
    std::printf("%s inverse: max |ds| %.3g m, max |daz| %.3g rad, short lines max offset %.3g m\n",
                fig.file, maxDs, maxDaz, maxOffset);
  }
}

// The endpoint within 1e-9 degrees in latitude and in longitude times
// cos(latitude), about 0.1 mm on the ground.
TEST(GeodesicReference, VincentyForwardAgreesWithGeodSolveAwayFromAntipodes)
{
  for (Figure const & fig : kFigures) {
    BEllipsoid const e = Make(fig);
    auto const rows = ReadRows(fig.file, 7);
    double maxDp = 0, maxDaz = 0;
    for (auto const & r : rows) {
      BPoint2D const p1(r[1] * kDeg, r[0] * kDeg);
      BPoint2D p2;
      double az21;
      e.GeodeticForward(p1, r[2] * kDeg, r[6], p2, az21);
      double const lat2 = r[3] * kDeg;
      double const dLat = std::fabs(p2.y - lat2) / kDeg;
      double const dLon = std::fabs(AngleDiff(p2.x, r[4] * kDeg)) * std::cos(lat2) / kDeg;
      double const daz = std::fabs(AngleDiff(az21, r[5] * kDeg + kPi));
      EXPECT_LT(dLat, 1e-9) << fig.file << " " << r[0] << " " << r[1] << " " << r[2] << " " << r[6];
      EXPECT_LT(dLon, 1e-9) << fig.file << " " << r[0] << " " << r[1] << " " << r[2] << " " << r[6];
      EXPECT_LT(daz, 1e-8) << fig.file << " " << r[0] << " " << r[1] << " " << r[2] << " " << r[6];
      EXPECT_GE(az21, 0.0);
      EXPECT_LE(az21, 2 * kPi);
      maxDp = std::max({maxDp, dLat, dLon});
      maxDaz = std::max(maxDaz, daz);
    }
    std::printf("%s forward: max endpoint %.3g deg, max |daz| %.3g rad\n", fig.file, maxDp, maxDaz);
  }
}

// Columns: lat lon h X Y Z. Heights from -10 km to +10,000 km, latitudes up
// to 89.99 degrees; the polar axis itself is outside the domain.
TEST(GeocentricReference, AgreesWithCartConvertBothWays)
{
  BEllipsoid const w(6378137.0, 298.257223563);
  auto const rows = ReadRows("geocentric_wgs84.txt", 6);
  ASSERT_GE(rows.size(), 200u);

  std::vector<BPoint3D> geodetic, geocentric;
  for (auto const & r : rows) {
    geodetic.emplace_back(r[1], r[0], r[2]);
    geocentric.emplace_back(r[3], r[4], r[5]);
  }
  std::vector<BPoint3D> toXyz = geodetic;
  w.FromGeodeticBase(static_cast<int>(toXyz.size()), toXyz.data());
  std::vector<BPoint3D> toGeo = geocentric;
  w.ToGeodeticBase(static_cast<int>(toGeo.size()), toGeo.data());

  double maxXyz = 0, maxAngle = 0, maxH = 0, maxPolarH = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    double const lat = geodetic[i].y;
    double const dXyz = std::max({std::fabs(toXyz[i].x - geocentric[i].x),
                                  std::fabs(toXyz[i].y - geocentric[i].y),
                                  std::fabs(toXyz[i].z - geocentric[i].z)});
    // Longitude as an arc on the parallel: close to the axis the nanometres
    // of the printed X and Y are a large angle.
    double const dLon = std::fabs(std::remainder(toGeo[i].x - geodetic[i].x, 360.0)) * std::cos(lat * kDeg);
    double const dLat = std::fabs(toGeo[i].y - lat);
    double const dH = std::fabs(toGeo[i].z - geodetic[i].z);
    // h = p/cos(lat) - N: one rounding of the latitude moves h by about
    // (N + h) tan(lat) 1e-16, which passes 1e-6 m beyond 89.9 degrees.
    bool const polar = std::fabs(lat) > 89.9;
    EXPECT_LT(dXyz, 1e-6) << rows[i][0] << " " << rows[i][1] << " " << rows[i][2];
    EXPECT_LT(dLon, 1e-11) << rows[i][0] << " " << rows[i][1] << " " << rows[i][2];
    EXPECT_LT(dLat, 1e-11) << rows[i][0] << " " << rows[i][1] << " " << rows[i][2];
    EXPECT_LT(dH, polar ? 1e-5 : 1e-6) << rows[i][0] << " " << rows[i][1] << " " << rows[i][2];
    maxXyz = std::max(maxXyz, dXyz);
    maxAngle = std::max({maxAngle, dLon, dLat});
    (polar ? maxPolarH : maxH) = std::max(polar ? maxPolarH : maxH, dH);
  }
  std::printf("geocentric: max |dXYZ| %.3g m, max |dlat|,|dlon cos lat| %.3g deg, "
              "max |dh| %.3g m, beyond 89.9 deg %.3g m\n", maxXyz, maxAngle, maxH, maxPolarH);
}

// Columns: lat1 lon1 lat2 lon2 azi12 s12. The meridian arc here is a series
// cut at e^6, off by up to about 1 mm near 70 degrees (the difference of two
// arcs by up to 2 mm), where GeographicLib is exact to nanometres. That error is in the northing, and a rhumb line's length and
// its easting follow the northing by 1/|cos az| and tan az: so distance and
// endpoint errors are compared after scaling by |cos az|.
TEST(RhumbReference, AgreesWithRhumbSolveWithinTheSeriesAccuracy)
{
  BEllipsoid const w(6378137.0, 298.257223563);
  double const a = w.GetSemiMajor();
  auto const rows = ReadRows("rhumb_wgs84.txt", 6);
  ASSERT_GE(rows.size(), 200u);
  double maxDs = 0, maxDaz = 0, maxNorth = 0, maxEast = 0;
  for (auto const & r : rows) {
    BPoint2D const p1(r[1] * kDeg, r[0] * kDeg), p2(r[3] * kDeg, r[2] * kDeg);
    double const az0 = r[4] * kDeg;
    double const cosAz = std::fabs(std::cos(az0));
    double az, s;
    ASSERT_TRUE(w.RhumbInverse(p1, p2, az, s));
    double const ds = std::fabs(s - r[5]) * cosAz;
    double const daz = std::fabs(AngleDiff(az, az0));
    EXPECT_LT(ds, kRhumbSeriesError) << r[0] << " " << r[1] << " " << r[2] << " " << r[3];
    EXPECT_LT(daz, 1e-12) << r[0] << " " << r[1] << " " << r[2] << " " << r[3];

    BPoint2D q;
    ASSERT_TRUE(w.RhumbDirect(p1, az0, r[5], q));
    double const north = std::fabs(q.y - p2.y) * a;
    double const east = std::fabs(q.x - p2.x) * std::cos(p2.y) * a * cosAz;
    EXPECT_LT(north, kRhumbSeriesError) << r[0] << " " << r[1] << " " << r[2] << " " << r[3];
    EXPECT_LT(east, kRhumbSeriesError) << r[0] << " " << r[1] << " " << r[2] << " " << r[3];
    maxDs = std::max(maxDs, ds);
    maxDaz = std::max(maxDaz, daz);
    maxNorth = std::max(maxNorth, north);
    maxEast = std::max(maxEast, east);
  }
  std::printf("rhumb: max |ds cos az| %.3g m, max |daz| %.3g rad, direct max north %.3g m, "
              "max east |cos az| %.3g m\n", maxDs, maxDaz, maxNorth, maxEast);
}
