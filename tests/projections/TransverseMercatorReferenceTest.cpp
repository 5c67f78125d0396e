// The transverse Mercator family against independent references, written by
// scripts/gen-tmerc-refs.sh: GeographicLib's exact mapping and PROJ's utm and
// tmerc +approx. Our classes evaluate fixed series, so the bounds grow with
// the distance from the central meridian; the bounds beyond six degrees are
// what the series were measured to do, kept so that a change shows.
#include "TmercSupport.h"

#include <velmora/projections/TransverseMercator.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace TmercTest;
using Velmora::CS::PJ::CTransverseMercator;
using Velmora::CS::PJ::CTransverseMercatorSnyder;
using Velmora::CS::PJ::CUniversalTransverseMercator;

namespace {

// Worst error by distance from the central meridian: up to 4, 4 to 6, 6 to 10 degrees.
struct Bands
{
  double near = 0, mid = 0, far = 0;
  void Add(double dlonDeg, double error)
  {
    double & slot = std::fabs(dlonDeg) <= 4.0 + 1e-9 ? near : std::fabs(dlonDeg) <= 6.0 + 1e-9 ? mid : far;
    slot = std::max(slot, error);
  }
};

// Each row forward and back through the shared loop, the errors sorted into
// bands by the distance of the row from its central meridian, which
// `prepare(row)` sets and returns. An inverse that may refuse is only
// measured where it answers.
template <class Prepare>
void Measure(Velmora::CS::PJ::CProjection & p, std::vector<std::vector<double>> const & rows, std::size_t first,
             Prepare prepare, Bands & forward, Bands & inverse, bool inverseMayRefuse = false)
{
  double dlon = 0;
  auto const setup = [&](std::vector<double> const & r) { dlon = LonOffset(r[first], prepare(r)); };
  VelmoraTest::MeasureRows(p, rows, first, setup, [&](std::vector<double> const &, VelmoraTest::RowErrors const & e) {
    forward.Add(dlon, e.forward);
    EXPECT_TRUE(inverseMayRefuse || !std::isnan(e.inverse));
    if (!std::isnan(e.inverse))
      inverse.Add(dlon, e.inverse);
  });
}

// Sets the plain transverse Mercator of a row's central meridian (column 0), when it changes.
auto CentralMeridianOf(Velmora::CS::PJ::CProjection & p)
{
  return [&p, cm = std::nan("")](std::vector<double> const & r) mutable {
    if (r[0] != cm) {
      cm = r[0];
      SetCommon(p, cm, 0, 0.9996, 0, 0);
    }
    return cm;
  };
}

void Expect(char const * what, Figure const & f, Bands const & b, double near, double mid, double far)
{
  EXPECT_LE(b.near, near) << what << " within 4 degrees, " << f.name;
  EXPECT_LE(b.mid, mid) << what << " 4 to 6 degrees, " << f.name;
  EXPECT_LE(b.far, far) << what << " 6 to 10 degrees, " << f.name;
}

} // namespace

// Eighth-order series against the exact mapping: forward in metres, inverse in degrees.
TEST(TransverseMercatorReference, SeriesAgreesWithExactWithinSixDegrees)
{
  for (Figure const & f : kFigures) {
    auto datum = MakeDatum(f);
    auto const rows = ReadRows(std::string("tmerc_exact_") + f.name + ".txt", 7);
    ASSERT_GT(rows.size(), 1000u);
    Bands forward, inverse;
    CTransverseMercator tm(datum.get());
    Measure(tm, rows, 1, CentralMeridianOf(tm), forward, inverse);
    // Measured on all four figures: 0.024 mm, 0.44 mm and 18.2 mm forward;
    // 2.5e-10, 9.7e-9 and 1.01e-6 degree inverse.
    Expect("forward, metres", f, forward, 0.0001, 0.001, 0.02);
    Expect("inverse, degrees", f, inverse, 1e-9, 1.2e-8, 1.2e-6);
  }
}

// UTM against PROJ's utm, which is accurate to nanometres over these distances.
TEST(TransverseMercatorReference, UtmAgreesWithProjWithinSixDegrees)
{
  for (Figure const & f : kFigures) {
    auto datum = MakeDatum(f);
    auto const rows = ReadRows(std::string("tmerc_utm_") + f.name + ".txt", 6);
    ASSERT_GT(rows.size(), 1000u);
    Bands forward, inverse;
    CUniversalTransverseMercator utm(datum.get());
    auto const zoneOf = [&utm](std::vector<double> const & r) {
      long const zone = static_cast<long>(r[0]);
      SetUtm(utm, zone, r[1] != 0);
      return zone * 6.0 - 183.0;
    };
    Measure(utm, rows, 2, zoneOf, forward, inverse);
    // The same series as the plain class, so the same measured errors.
    Expect("forward, metres", f, forward, 0.0001, 0.001, 0.02);
    Expect("inverse, degrees", f, inverse, 1e-9, 1.2e-8, 1.2e-6);
  }
}

// Snyder's series against PROJ's tmerc +approx (Evenden's, to the eighth order).
TEST(TransverseMercatorReference, SnyderForwardAgreesWithProjApproxInverseDoesNot)
{
  for (Figure const & f : kFigures) {
    auto datum = MakeDatum(f);
    auto const rows = ReadRows(std::string("tmerc_approx_") + f.name + ".txt", 5);
    ASSERT_GT(rows.size(), 1000u);
    Bands forward, inverse;
    CTransverseMercatorSnyder tm(datum.get());
    Measure(tm, rows, 1, CentralMeridianOf(tm), forward, inverse, true);
    // Forward, sixth order against eighth: 0.99 mm, 10.7 mm and 0.381 m
    // measured. Inverse: the footpoint keeps e1^3 in its sin 4mu term and the
    // meridian radius to the power one, which puts it 2.4e-4, 3.0e-4 and
    // 8.1e-4 degree (up to about 90 m) from PROJ.
    Expect("forward, metres", f, forward, 0.0012, 0.012, 0.4);
    Expect("inverse, degrees", f, inverse, 2.6e-4, 3.2e-4, 8.5e-4);
  }
}
