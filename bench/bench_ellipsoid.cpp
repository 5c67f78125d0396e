// The ellipsoid's batch conversions and geodesic inverse beside PROJ doing
// the same work on the same points: geodetic <-> geocentric by
// "+proj=cart +ellps=WGS84" through proj_trans_generic, and the inverse
// geodesic by PROJ's geod_inverse (Karney's method; PROJ has no Vincenty).
// After the runs a table gives the time per point and Velmora / PROJ.
#include <velmora/measures/BPoint.h>
#include <velmora/refsys/BEllipsoid.h>

#include <benchmark/benchmark.h>

#include "RatioReport.h"
#include <geodesic.h>
#include <proj.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <vector>

using Velmora::CS::BEllipsoid;
using Velmora::ML::BPoint2D;
using Velmora::ML::BPoint3D;

namespace {

constexpr int kPoints = 1000000;
constexpr int kPairs = 100000;
constexpr double kA = 6378137.0;
constexpr double kInvF = 298.257223563;
constexpr double kDeg = 0.017453292519943295;

struct Input
{
  std::vector<BPoint3D> geodeticDeg; // lon, lat degrees, h metres: ours
  std::vector<BPoint3D> geodeticRad; // the same in radians: PROJ's cart
  std::vector<BPoint3D> geocentric;  // the same points as X, Y, Z
  std::vector<BPoint2D> from, to;    // geodesic pairs, radians
};

Input const & Data()
{
  static Input const data = [] {
    Input in;
    std::mt19937_64 rng(20240611);
    std::uniform_real_distribution<double> lon(-180, 180), sinLat(-0.9999, 0.9999), h(-10000, 10000);
    for (int i = 0; i < kPoints; ++i) {
      BPoint3D const p(lon(rng), std::asin(sinLat(rng)) / kDeg, h(rng));
      in.geodeticDeg.push_back(p);
      in.geodeticRad.emplace_back(p.x * kDeg, p.y * kDeg, p.z);
    }
    in.geocentric = in.geodeticDeg;
    BEllipsoid(kA, kInvF).FromGeodeticBase(kPoints, in.geocentric.data());
    // Pairs away from the antipodes, where Vincenty converges.
    std::uniform_real_distribution<double> dLon(-150, 150);
    for (int i = 0; i < kPairs; ++i) {
      double const lon1 = lon(rng), lat1 = std::asin(sinLat(rng)) / kDeg;
      in.from.emplace_back(lon1 * kDeg, lat1 * kDeg);
      in.to.emplace_back((lon1 + dLon(rng)) * kDeg, std::asin(sinLat(rng)));
    }
    return in;
  }();
  return data;
}

PJ * Cart()
{
  static PJ * const pj = proj_create(PJ_DEFAULT_CTX, "+proj=cart +ellps=WGS84");
  if (!pj) {
    std::fprintf(stderr, "proj_create failed\n");
    std::exit(1);
  }
  return pj;
}

void ProjTrans(PJ_DIRECTION dir, std::vector<BPoint3D> & pts)
{
  std::size_t const stride = sizeof(BPoint3D);
  std::size_t const n = pts.size();
  proj_trans_generic(Cart(), dir, &pts[0].x, stride, n, &pts[0].y, stride, n, &pts[0].z, stride, n,
                     nullptr, 0, 0);
}

// Batch conversions: the working copy is refreshed outside the timing.
void BM_Velmora_FromGeodeticBase(benchmark::State & state)
{
  BEllipsoid const w(kA, kInvF);
  VelmoraBench::TimeOnCopies(state, Data().geodeticDeg,
                             [&w](std::vector<BPoint3D> & pts) { w.FromGeodeticBase(kPoints, pts.data()); });
}

void BM_Proj_CartForward(benchmark::State & state)
{
  VelmoraBench::TimeOnCopies(state, Data().geodeticRad, [](std::vector<BPoint3D> & pts) { ProjTrans(PJ_FWD, pts); });
}

void BM_Velmora_ToGeodeticBase(benchmark::State & state)
{
  BEllipsoid const w(kA, kInvF);
  VelmoraBench::TimeOnCopies(state, Data().geocentric,
                             [&w](std::vector<BPoint3D> & pts) { w.ToGeodeticBase(kPoints, pts.data()); });
}

void BM_Proj_CartInverse(benchmark::State & state)
{
  VelmoraBench::TimeOnCopies(state, Data().geocentric, [](std::vector<BPoint3D> & pts) { ProjTrans(PJ_INV, pts); });
}

void BM_Velmora_GeodeticInverse(benchmark::State & state)
{
  BEllipsoid const w(kA, kInvF);
  Input const & in = Data();
  for (auto _ : state) {
    double sum = 0;
    for (int i = 0; i < kPairs; ++i) {
      double az12, az21, s;
      w.GeodeticInverse(in.from[i], in.to[i], az12, az21, s);
      sum += s + az12 + az21;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * kPairs);
}

void BM_Proj_GeodInverse(benchmark::State & state)
{
  geod_geodesic g;
  geod_init(&g, kA, 1 / kInvF);
  Input const & in = Data();
  for (auto _ : state) {
    double sum = 0;
    for (int i = 0; i < kPairs; ++i) {
      double s, az1, az2;
      geod_inverse(&g, in.from[i].y / kDeg, in.from[i].x / kDeg, in.to[i].y / kDeg, in.to[i].x / kDeg,
                   &s, &az1, &az2);
      sum += s + az1 + az2;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * kPairs);
}

BENCHMARK(BM_Velmora_FromGeodeticBase)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_CartForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_ToGeodeticBase)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_CartInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_GeodeticInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_GeodInverse)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  return VelmoraBench::RunWithRatios(argc, argv, {
    {"geodetic -> geocentric", "BM_Velmora_FromGeodeticBase", "BM_Proj_CartForward"},
    {"geocentric -> geodetic", "BM_Velmora_ToGeodeticBase", "BM_Proj_CartInverse"},
    {"geodesic inverse", "BM_Velmora_GeodeticInverse", "BM_Proj_GeodInverse"},
  }, [] {
    Data();
  });
}
