// Projected systems converting for real: on a prime meridian other than
// Greenwich against PROJ, pair and point paths agreeing, and the envelope on
// each side of the conversion.
#include <velmora/projections/TransverseMercator.h>
#include <velmora/refsys/CoordSys.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include <string>

using namespace Velmora;
using namespace Velmora::CS;
using namespace Velmora::ML;
using namespace VelmoraTest;

namespace {
// NTF-like: Clarke 1880 (IGN) on the Paris meridian, transverse Mercator about Paris.
CProjectedCoordSys ParisSystem()
{
  CHorizontalDatum datum;
  datum.GetEllipsoid().GetSemiMajor().SetValue(6378249.2);
  datum.GetEllipsoid().GetSemiMinor().SetValue(6356515.0);
  datum.GetPrimeMeridian().GetLongitude().SetValue(2.0 + 20.0 / 60.0 + 14.025 / 3600.0); // Paris
  CGeodeticCoordSys base;
  base.SetHorizontalDatum(datum);
  CProjectedCoordSys system;
  system.SetGeodeticCoordSys(base);
  PJ::CTransverseMercator tm;
  CParameterCollection & p = tm.GetParameters();
  CAngularValue angle;
  angle.SetInternal(0.0);
  p.SetAngularValue(CString("central_meridian"), angle);
  p.SetAngularValue(CString("latitude_of_origin"), angle);
  p.SetDouble(CString("scale_factor"), 0.9996);
  CLinearValue metres;
  metres.SetInternal(500000.0);
  p.SetLinearValue(CString("false_easting"), metres);
  metres.SetInternal(0.0);
  p.SetLinearValue(CString("false_northing"), metres);
  system.SetProjection(tm);
  return system;
}
} // namespace

TEST(ProjectedCoordSys, ParisMeridianMatchesProjToTheNanodegree)
{
  CProjectedCoordSys const system = ParisSystem();
  int points = 0;
  for (std::vector<double> const & row : ReadRows("paris_tmerc.txt", 4)) {
    double const e = row[0], n = row[1], lon = row[2], lat = row[3];
    // Pair path.
    double x = e, y = n;
    ASSERT_TRUE(system.ToGeodeticBase(x, y));
    EXPECT_NEAR(x, lon, 1e-9) << e << " " << n;
    EXPECT_NEAR(y, lat, 1e-9) << e << " " << n;
    // Point path gives the same.
    CGeodeticPoint out(3);
    ASSERT_TRUE(system.ToGeodeticBase(CProjectedPoint(e, n, 12.0), out));
    EXPECT_DOUBLE_EQ(out.GetLon().GetInternal(), x);
    EXPECT_DOUBLE_EQ(out.GetLat().GetInternal(), y);
    EXPECT_EQ(out.GetHgt().GetInternal(), 12.0);
    // And back.
    CProjectedPoint back(3);
    ASSERT_TRUE(system.FromGeodeticBase(out, back));
    EXPECT_NEAR(back.GetEast().GetInternal(), e, 1e-6);
    EXPECT_NEAR(back.GetNorth().GetInternal(), n, 1e-6);
    ++points;
  }
  EXPECT_EQ(points, 15);
}

TEST(ProjectedCoordSys, EnvelopeOnEachSide)
{
  CProjectedCoordSys system = ParisSystem();
  // A projected envelope guards the input of ToGeodeticBase, inclusive.
  CEnvelope box(kProjectedPoint);
  box.SetAlwaysAccept(false);
  box.GetMinPoint()->SetInternals(400000.0, 5000000.0, -1e4);
  box.GetMaxPoint()->SetInternals(600000.0, 5200000.0, 1e4);
  system.SetEnvelope(box);
  CGeodeticPoint out(3);
  EXPECT_TRUE(system.ToGeodeticBase(CProjectedPoint(600000.0, 5200000.0, 0.0), out));
  auto const e = Raised([&] { system.ToGeodeticBase(CProjectedPoint(600000.0, 5200001.0, 0.0), out); });
  EXPECT_EQ(e.GetErrorCode(), 43);
  EXPECT_EQ(e.GetLocation(), CString("CProjectedCoordSys::ToGeodeticBase"));
  EXPECT_EQ(e.GetDetails(), CString("Point is not within the specified envelope."));
  // The first coordinate is also tried a turn (360 units) away, for every point
  // class, so a metre past the easting edge of a box this wide still passes.
  EXPECT_TRUE(system.ToGeodeticBase(CProjectedPoint(600001.0, 5200000.0, 0.0), out));
  EXPECT_EQ(Raised([&] { system.ToGeodeticBase(CProjectedPoint(600361.0, 5200000.0, 0.0), out); }).GetErrorCode(), 43);
  // A geodetic envelope guards the geodetic side: landing outside raises 44
  // and leaves the computed point in `out`.
  CEnvelope area(kGeodeticPoint);
  area.SetAlwaysAccept(false);
  area.GetMinPoint()->SetInternals(2.0, 45.0, -1e4);
  area.GetMaxPoint()->SetInternals(3.0, 50.0, 1e4);
  system.SetEnvelope(area);
  auto const late = Raised([&] { system.ToGeodeticBase(CProjectedPoint(300000.0, 5100000.0, 0.0), out); });
  EXPECT_EQ(late.GetErrorCode(), 44);
  EXPECT_NEAR(out.GetLon().GetInternal(), -0.246848067564, 1e-9);
  double x = 300000.0, y = 5100000.0;
  EXPECT_EQ(Raised([&] { system.ToGeodeticBase(x, y); }).GetErrorCode(), 44);
  // Type first: a geodetic input is refused before any envelope.
  EXPECT_EQ(Raised([&] { system.ToGeodeticBase(CGeodeticPoint(2.5, 47.0, 0.0), out); }).GetErrorCode(), 45);
}
