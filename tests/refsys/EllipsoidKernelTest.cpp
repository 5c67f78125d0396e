// The shared functions of latitude, each against its inverse or a second
// form of it, on the flattest and the roundest figures the library meets.
#include <velmora/refsys/EllipsoidKernel_p.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Kernel = Velmora::CS::Kernel;

namespace {

constexpr double kDeg = 0.017453292519943295;

struct Worst
{
  double value = 0;
  void Add(double x) { value = std::max(value, std::fabs(x)); }
};

} // namespace

// Bounds at about twice what was measured on WGS 84 and Clarke 1880 (e^2
// 0.0067 and 0.0068), latitudes -89.5 to 89.5: the fixed-point inverse stops
// at 1e-7 radian and leaves 4.8e-10; the series in e^2 are cut after e^8
// (conformal, 2e-12) and e^6 (authalic 2.6e-10, footpoint 1.3e-10, the arc
// 1.6e-10 of the axis from Helmert's).
TEST(EllipsoidKernel, EachFunctionAgreesWithItsInverse)
{
  for (double const f : {1 / 298.257223563, 1 / 293.466021293627}) {
    double const e2 = f * (2 - f), e = std::sqrt(e2);
    double coefficients[Kernel::kEAtanhETerms];
    Kernel::EAtanhE const eatanhe{e, coefficients, Kernel::MakeEAtanhE(e, coefficients)};
    auto const conformal = Kernel::ConformalSeries::Make(e2);
    auto const authalic = Kernel::AuthalicSeries::Make(e2);
    auto const arc = Kernel::MeridianArcSeries::Make(e2, 1 - f);
    auto const helmert = Kernel::HelmertArc::Make(1.0, 1 - f);
    double const qp = Kernel::AuthalicQ(e, e2, 1.0);
    Worst series, psi, fromT, fromQ, conformalSeries, authalicSeries, footpoint, arcs;
    for (double lat = -89.5; lat <= 89.5; lat += 0.5) {
      double const phi = lat * kDeg, s = std::sin(phi);
      series.Add(eatanhe(s) - e * std::atanh(e * s));
      psi.Add(Kernel::IsometricLatitudeFromSine(eatanhe, s) - Kernel::IsometricLatitude(e, phi));
      fromT.Add(Kernel::LatitudeFromT(eatanhe, Kernel::ConformalT(e, phi), 1e-7, 101) - phi);
      double const q = Kernel::AuthalicQ(e, e2, s);
      fromQ.Add(Kernel::LatitudeFromAuthalicQ(e, e2, q, std::asin(q / 2), 1e-7, 100) - phi);
      conformalSeries.Add(conformal.Latitude(Kernel::ConformalLatitude(e, phi)) - phi);
      authalicSeries.Add(authalic.Latitude(std::asin(q / qp)) - phi);
      footpoint.Add(arc.Footpoint(arc.Arc(phi) / arc.c0) - phi);
      arcs.Add(arc.Arc(phi) - helmert.Arc(phi, s, std::cos(phi)));
    }
    EXPECT_LE(series.value, 1e-17);
    EXPECT_LE(psi.value, 5e-13); // tan(pi/4 - phi/2) near the pole
    EXPECT_LE(fromT.value, 1e-9);
    EXPECT_LE(fromQ.value, 1e-13);
    EXPECT_LE(conformalSeries.value, 5e-12);
    EXPECT_LE(authalicSeries.value, 5e-10);
    EXPECT_LE(footpoint.value, 3e-10);
    EXPECT_LE(arcs.value, 2e-10); // per unit axis: 1.3 mm on the Earth
    std::printf("1/f %.6g: eatanhe %.2g, psi %.2g, from t %.2g, from q %.2g, conformal series %.2g, "
                "authalic series %.2g, footpoint %.2g, arcs %.2g\n",
                1 / f, series.value, psi.value, fromT.value, fromQ.value, conformalSeries.value,
                authalicSeries.value, footpoint.value, arcs.value);
  }
}
