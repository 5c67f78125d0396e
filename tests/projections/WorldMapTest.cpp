// The world maps at the edges of their domains: round trips over a world grid
// with the poles, the equator, the central meridian and Goode's join for every
// type, the stops of the Newton schemes and Robinson's table, and the plane
// points that have no image.
#include "../support/ReferenceData.h"
#include "../support/TestSupport.h"

#include <velmora/projections/WorldMap.h>

#include <cmath>
#include <memory>
#include <vector>

using Velmora::CString;
using namespace Velmora::CS::PJ;
using VelmoraTest::CartographicFlag;
using VelmoraTest::MakeDatum;

namespace {

constexpr double kR = 6371000.0;
constexpr double kDeg = 0.017453292519943295;
constexpr double kGoodeJoin = 0.7109307819790236 / kDeg; // degrees

// A type on the sphere of kR (the datum's axis and spherical_radius), its
// central meridian cm, a latitude of origin of 40 where it has one, no false origin.
std::unique_ptr<CProjection> Make(CProjection::Type type, Velmora::CS::CHorizontalDatum * datum, double cm)
{
  std::unique_ptr<CProjection> p(CProjectionFactory::CreateProjection(type, datum));
  auto & parameters = p->GetParameters();
  for (long i = 0; i < parameters.Count(); ++i) {
    CString const name = parameters.ParameterNameAtIndex(i);
    double const value = name == CString("spherical_radius")     ? kR
                         : name == CString("latitude_of_origin") ? 40.0
                         : name == CString("central_meridian")   ? cm
                                                                 : 0.0;
    parameters.SetItemInternal(name, value);
  }
  return p;
}

std::vector<double> Steps(double from, double to, double step, std::vector<double> extra)
{
  for (double v = from; v <= to + 1e-9; v += step)
    extra.push_back(v);
  return extra;
}

} // namespace

// Every type converts nothing before its parameters are set, then takes each
// point of the grid there and back. Near the poles, where a longitude or a
// sine of the latitude is hardly seen in the plane, what the iterations leave
// shows: Eckert IV's and VI's Newton schemes, which leave their last step
// untaken, hold 1e-5 and 2e-4 degree at 89.999 degrees, Mollweide's and
// Goode's 5e-8, Van der Grinten IV's search 1e-5, Van der Grinten's cubic
// 2e-6 on the edge meridian; the sinusoidal and Winkel II keep the poles at
// 89.9999999 degrees.
TEST(WorldMap, RoundTripsOverTheWorld)
{
  struct Case
  {
    CProjection::Type type;
    double degrees;
  } const cases[] = {
    {CProjection::kAitoff, 3e-9},          {CProjection::kHammerAitoff, 3e-9},
    {CProjection::kWinkelI, 1e-9},         {CProjection::kWinkelII, 1.1e-7},
    {CProjection::kWinkelTripel, 1e-9},    {CProjection::kEckertI, 1e-9},
    {CProjection::kEckertII, 1e-9},        {CProjection::kEckertIII, 1e-9},
    {CProjection::kEckertIV, 1e-5},        {CProjection::kEckertV, 1e-9},
    {CProjection::kEckertVI, 2e-4},        {CProjection::kMollweide, 5e-8},
    {CProjection::kGoodeHomolosine, 5e-8}, {CProjection::kRobinson, 1e-9},
    {CProjection::kSinusoidal, 1.1e-7},    {CProjection::kMcBrydeThomasFlatPolarQuartic, 1e-9},
    {CProjection::kQuarticAuthalic, 3e-9}, {CProjection::kCrasterParabolic, 1e-9},
    {CProjection::kTimes, 1e-9},           {CProjection::kLoximuthal, 1e-9},
    {CProjection::kVanDerGrinten, 2e-6},   {CProjection::kVanDerGrintenIV, 1e-5},
  };
  double const cm = 30.0;
  std::vector<double> const lats = Steps(-90, 90, 7.5, {-kGoodeJoin, kGoodeJoin, 1e-6, -1e-6, 89.999, -89.999});
  std::vector<double> const lons = Steps(-180, 180, 7.5, {1e-6, -1e-6, 179.999, -179.999});
  auto datum = MakeDatum(kR, 0);
  for (Case const & c : cases) {
    std::unique_ptr<CProjection> unset(CProjectionFactory::CreateProjection(c.type, datum.get()));
    double x = cm, y = 0;
    EXPECT_FALSE(unset->ToPlane(x, y)) << unset->GetTypeName().toStdString();
    EXPECT_FALSE(unset->FromPlane(x, y)) << unset->GetTypeName().toStdString();
    auto const p = Make(c.type, datum.get(), cm);
    double worst = 0;
    for (double lat : lats)
      for (double lon : lons) {
        x = cm + lon;
        y = lat;
        ASSERT_TRUE(p->ToPlane(x, y)) << p->GetTypeName().toStdString() << " " << lon << " " << lat;
        ASSERT_TRUE(p->FromPlane(x, y)) << p->GetTypeName().toStdString() << " " << lon << " " << lat;
        double const dLon = std::fabs(lat) == 90 ? 0 : std::fabs(std::remainder(x - cm - lon, 360));
        worst = std::max({worst, dLon, std::fabs(y - lat)});
      }
    EXPECT_LE(worst, c.degrees) << p->GetTypeName().toStdString();
  }
}

// Eckert IV's scheme stops at once at the pole, where its derivative
// vanishes, and the pole is still mapped; Robinson at exactly 90 degrees is
// the last row of the table, and beyond it with the cartographic flag off
// the call refuses; Goode's join belongs to the Mollweide piece; Winkel's
// tripel leaves the origin as it is.
TEST(WorldMap, EdgesOfTheSchemesAndTables)
{
  auto datum = MakeDatum(kR, 0);
  CEckertIV eckert(datum.get());
  double theta = M_PI / 2;
  EXPECT_FALSE(eckert.converge(M_PI / 2, theta));
  EXPECT_EQ(theta, M_PI / 2);
  auto p = Make(CProjection::kEckertIV, datum.get(), 0);
  double x = 10, y = 90;
  ASSERT_TRUE(p->ToPlane(x, y));
  EXPECT_NEAR(x, 0.4222382 * kR * 10 * kDeg, 1e-6);
  EXPECT_NEAR(y, 1.3265004 * kR, 1e-6);

  p = Make(CProjection::kRobinson, datum.get(), 0);
  x = 100;
  y = 90;
  ASSERT_TRUE(p->ToPlane(x, y));
  EXPECT_NEAR(x, 0.8477512782251756 * 0.5322 * kR * 100 * kDeg, 1e-6);
  EXPECT_NEAR(y, 1.3508202760235382 * kR, 1e-6);
  double x95 = 100, y95 = 95;
  {
    CartographicFlag const off(false);
    EXPECT_FALSE(p->ToPlane(x95, y95));
  }
  {
    CartographicFlag const on(true);
    ASSERT_TRUE(p->ToPlane(x95, y95));
    EXPECT_EQ(x95, x);
    EXPECT_EQ(y95, y);
  }

  auto const goode = Make(CProjection::kGoodeHomolosine, datum.get(), 0);
  auto const mollweide = Make(CProjection::kMollweide, datum.get(), 0);
  for (double lat : {kGoodeJoin, -kGoodeJoin}) {
    double gx = 120, gy = lat, mx = 120, my = lat;
    ASSERT_TRUE(goode->ToPlane(gx, gy));
    ASSERT_TRUE(mollweide->ToPlane(mx, my));
    EXPECT_NEAR(gx, mx, 1e-6);
    EXPECT_NEAR(gy, my - std::copysign(0.0528 * kR, lat), 1e-6);
  }

  p = Make(CProjection::kWinkelTripel, datum.get(), 0);
  x = y = 0;
  EXPECT_TRUE(p->FromPlane(x, y));
  EXPECT_EQ(x, 0);
  EXPECT_EQ(y, 0);
}

// Plane points off each map have no image.
TEST(WorldMap, PointsOffTheMapAreRefused)
{
  struct Row
  {
    CProjection::Type type;
    double x, y; // in radii
  } const rows[] = {
    {CProjection::kAitoff, 0, 1.6},       {CProjection::kHammerAitoff, 0, 2.1},
    {CProjection::kWinkelI, 0, 1.6},      {CProjection::kWinkelII, 0, 1.6},
    {CProjection::kEckertI, 0, 1.5},      {CProjection::kEckertII, 0, 2.2},
    {CProjection::kEckertIII, 0, 1.4},    {CProjection::kEckertIV, 0, 1.4},
    {CProjection::kEckertV, 0, 1.4},      {CProjection::kEckertVI, 0, 1.5},
    {CProjection::kMollweide, 0, 1.5},    {CProjection::kGoodeHomolosine, 0, 1.5},
    {CProjection::kRobinson, 0, 1.4},     {CProjection::kSinusoidal, 0, 1.6},
    {CProjection::kQuarticAuthalic, 0, 2.1}, {CProjection::kMcBrydeThomasFlatPolarQuartic, 0, 1.9},
    {CProjection::kCrasterParabolic, 0, 3.1}, {CProjection::kLoximuthal, 0, 1.0},
    {CProjection::kVanDerGrinten, 0, 3.3}, {CProjection::kVanDerGrintenIV, 3.3, 0},
  };
  auto datum = MakeDatum(kR, 0);
  for (Row const & r : rows) {
    auto const p = Make(r.type, datum.get(), 0);
    double x = r.x * kR, y = r.y * kR;
    EXPECT_FALSE(p->FromPlane(x, y)) << p->GetTypeName().toStdString();
  }
}
