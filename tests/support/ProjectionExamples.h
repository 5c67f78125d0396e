#pragma once
// Published worked examples of projections: one table row each, converted
// forward and back by one loop.
#include "ReferenceData.h"

#include <memory>
#include <utility>
#include <vector>

namespace VelmoraTest {

inline double Dms(double d, double m, double s) { return d < 0 ? d - m / 60 - s / 3600 : d + m / 60 + s / 3600; }

using Parameters = std::vector<std::pair<char const *, double>>;

inline std::unique_ptr<Velmora::CS::PJ::CProjection> Make(Velmora::CS::PJ::CProjection::Type type,
                                                          Velmora::CS::CHorizontalDatum * datum,
                                                          Parameters const & parameters)
{
  std::unique_ptr<Velmora::CS::PJ::CProjection> p(Velmora::CS::PJ::CProjectionFactory::CreateProjection(type, datum));
  for (auto const & [name, value] : parameters)
    SetParameter(*p, name, value);
  return p;
}

struct Example
{
  char const * what;
  Velmora::CS::PJ::CProjection::Type type;
  double a, rf;
  Parameters parameters;
  double lon, lat, east, north; // degrees; metres
  double metres, degrees;       // half the last printed digit
};

// Forward from the printed geographic point, back from the printed grid point.
inline void ExpectExamples(std::vector<Example> const & examples)
{
  for (Example const & e : examples) {
    auto datum = MakeDatum(e.a, e.rf);
    auto p = Make(e.type, datum.get(), e.parameters);
    double x = e.lon, y = e.lat;
    ASSERT_TRUE(p->ToPlane(x, y)) << e.what;
    EXPECT_NEAR(x, e.east, e.metres) << e.what;
    EXPECT_NEAR(y, e.north, e.metres) << e.what;
    x = e.east;
    y = e.north;
    ASSERT_TRUE(p->FromPlane(x, y)) << e.what;
    EXPECT_NEAR(x, e.lon, e.degrees) << e.what;
    EXPECT_NEAR(y, e.lat, e.degrees) << e.what;
  }
}

} // namespace VelmoraTest
