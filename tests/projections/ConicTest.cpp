// The conics on their published worked examples and at the edges of their
// domain: the pole, and the convergence and scale kept by a conversion.
#include "../support/ReferenceData.h"
#include "../support/TestSupport.h"

#include <velmora/projections/Conic.h>

#include <memory>
#include <utility>
#include <vector>

using Velmora::CString;
using Velmora::ML::CAngularValue;
using Velmora::ML::CProjectedPoint;
using namespace Velmora::CS::PJ;
using VelmoraTest::Dms;
using VelmoraTest::Example;
using VelmoraTest::MakeDatum;
using VelmoraTest::Parameters;

namespace {

constexpr double kUsFoot = 0.3048006096012;

} // namespace

// EPSG Guidance Note 7-2 (2019), the examples of methods 9801, 9802 and
// 9803, and Snyder (1987), the ellipsoidal example of the Albers conic.
TEST(Conic, PublishedExamples)
{
  double const texasFalseEasting = 2000000 * kUsFoot;
  std::vector<Example> const examples = {
    {"Lambert 2SP, NAD27 / Texas South Central", CProjection::kLambertConformalConic, 6378206.4, 294.9786982,
     {{"latitude_of_origin", Dms(27, 50, 0)}, {"central_meridian", -99}, {"standard_parallel1", Dms(28, 23, 0)},
      {"standard_parallel2", Dms(30, 17, 0)}, {"false_easting", texasFalseEasting}, {"false_northing", 0}},
     -96, 28.5, 2963503.91 * kUsFoot, 254759.80 * kUsFoot, 0.005 * kUsFoot, 0.0005 / 3600},
    {"Lambert 1SP, JAD69 / Jamaica National Grid", CProjection::kLambertTangent, 6378206.4, 294.9786982,
     {{"latitude_of_origin", 18}, {"central_meridian", -77}, {"scale_factor", 1}, {"false_easting", 250000},
      {"false_northing", 150000}},
     Dms(-76, 56, 37.26), Dms(17, 55, 55.80), 255966.58, 142493.51, 0.005, 0.0005 / 3600},
    {"Lambert 2SP Belgium, Belge 1972 / Belge Lambert 72", CProjection::kBelgium72, 6378388, 297,
     {{"latitude_of_origin", 90}, {"central_meridian", Dms(4, 21, 24.983)}, {"standard_parallel1", Dms(49, 50, 0)},
      {"standard_parallel2", Dms(51, 10, 0)}, {"false_easting", 150000.01256}, {"false_northing", 5400088.4378}},
     // The type turns the grid by 0.00014204 radian where the note computes
     // with 29.2985 seconds (0.000142043): 1.6 cm at this point, 2.1 cm
     // from the printed easting.
     Dms(5, 48, 26.533), Dms(50, 40, 46.461), 251763.20, 153034.13, 0.021, 3e-7},
    {"Albers, Snyder's example on Clarke 1866", CProjection::kAlbersEqualArea, 6378206.4, 294.9786982,
     {{"central_meridian", -96}, {"latitude_of_origin", 23}, {"standard_parallel1", 29.5},
      {"standard_parallel2", 45.5}, {"false_easting", 0}, {"false_northing", 0}},
     -75, 35, 1885472.7, 1535925.0, 0.05, 6e-7},
  };
  VelmoraTest::ExpectExamples(examples);
}

// Where t is 0 the cone's apex is the pole: with the origin there it maps to
// the false origin, and back; Albers' inverse takes q of the pole to it.
TEST(Conic, PolesMapToTheApexAndBack)
{
  auto datum = MakeDatum(6378137, 298.257222101);
  Parameters const apexOrigin = {{"latitude_of_origin", 90}, {"central_meridian", 4}, {"standard_parallel1", 49},
                                 {"standard_parallel2", 51}, {"false_easting", 1000}, {"false_northing", 2000}};
  Parameters southern = apexOrigin;
  southern[0].second = -90;
  southern[2].second = -49;
  southern[3].second = -51;
  Parameters albers = apexOrigin;
  std::swap(albers[0].second, albers[1].second);
  std::swap(albers[0].first, albers[1].first);
  struct Case
  {
    CProjection::Type type;
    Parameters parameters;
    double pole;
  } const cases[] = {{CProjection::kLambertConformalConic, apexOrigin, 90},
                     {CProjection::kLambertConformalConic, southern, -90},
                     {CProjection::kAlbersEqualArea, albers, 90}};
  for (Case const & c : cases) {
    auto p = VelmoraTest::MakeProjection(c.type, datum.get(), c.parameters);
    double x = 30, y = c.pole;
    ASSERT_TRUE(p->ToPlane(x, y));
    double const apexX = x, apexY = y;
    if (c.type == CProjection::kLambertConformalConic) {
      EXPECT_NEAR(x, 1000, 1e-4) << c.pole;
      EXPECT_NEAR(y, 2000, 1e-4) << c.pole;
    }
    ASSERT_TRUE(p->FromPlane(x, y));
    EXPECT_NEAR(y, c.pole, 1e-9) << c.type << " " << apexX << " " << apexY;
  }
}

// The convergence and scale that a conversion keeps are the analytic n dlon
// and rho n/(a m); the framework's numeric forms agree with them.
TEST(Conic, KeptConvergenceAndScaleMatchTheNumericForms)
{
  auto datum = MakeDatum(6378137, 298.257222101);
  for (double side : {1.0, -1.0}) {
    auto const p = VelmoraTest::MakeProjection(CProjection::kLambertConformalConic, datum.get(),
                        {{"latitude_of_origin", 46.5 * side}, {"central_meridian", 3},
                         {"standard_parallel1", 49 * side}, {"standard_parallel2", 44 * side},
                         {"false_easting", 700000}, {"false_northing", 6600000}});
    CProjection & lcc = *p;
    for (double lon : {-4.0, 3.0, 9.5}) {
      double x = lon, y = 41 * side;
      ASSERT_TRUE(lcc.ToPlane(x, y));
      CProjectedPoint point;
      point.SetInternals(x, y);
      CAngularValue kept, numeric;
      double keptScale = 0, numericScale = 0;
      ASSERT_TRUE(lcc.ConvergenceAtPoint(point, kept));
      ASSERT_TRUE(lcc.CProjection::ConvergenceAtPoint(point, numeric));
      ASSERT_TRUE(lcc.ScaleFactorAtPoint(point, keptScale));
      ASSERT_TRUE(lcc.CProjection::ScaleFactorAtPoint(point, numericScale));
      EXPECT_NEAR(kept.GetInternal(), numeric.GetInternal(), 1e-6) << lon << " " << side;
      EXPECT_NEAR(keptScale, numericScale, 1e-8) << lon << " " << side;
    }
  }
  CLambertConformalConic noDatum;
  EXPECT_EQ(VelmoraTest::Raised([&] {
              double s;
              noDatum.ScaleFactorAtPoint(CProjectedPoint(), s);
            }).GetErrorCode(),
            37);
}
