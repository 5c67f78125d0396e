// UTM beside PROJ on the same million points of zone 32 north, WGS 84: ours
// through ToPlane(double &, double &) and FromPlane, one virtual call per
// point; PROJ's "+proj=utm +zone=32 +ellps=WGS84" through proj_trans_generic.
// After the runs a table gives the time per point and Velmora / PROJ.
#include "ProjectionBench.h"
#include "RatioReport.h"

#include <velmora/projections/TransverseMercator.h>

#include <benchmark/benchmark.h>


#include <random>

using Velmora::CString;
using Velmora::CS::PJ::CProjection;
using Velmora::CS::PJ::CUniversalTransverseMercator;
using namespace VelmoraBench;

namespace {

constexpr int kPoints = 1000000;
constexpr double kA = 6378137.0;
constexpr double kInvF = 298.257223563;

struct Input
{
  std::vector<XY> geodeticDeg; // lon, lat degrees: ours
  std::vector<XY> geodeticRad; // the same in radians: PROJ's
  std::vector<XY> projected;   // the same points as easting, northing
};

PJ * Utm()
{
  static PJ * const pj = ProjProjection("+proj=utm +zone=32 +ellps=WGS84");
  return pj;
}

void ProjTrans(PJ_DIRECTION dir, std::vector<XY> & pts) { VelmoraBench::ProjTrans(Utm(), dir, pts); }

// Zone 32 north, fixed, on WGS 84; the datum outlives every benchmark.
CProjection const & Projection()
{
  static auto * const datum = LastingDatum(kA, kInvF);
  static CUniversalTransverseMercator * const utm = [] {
    auto * p = new CUniversalTransverseMercator(datum);
    p->GetParameters().SetLong(CString("autoset"), 0);
    p->GetParameters().SetLong(CString("is_north"), 1);
    p->GetParameters().SetLong(CString("zone"), 32);
    return p;
  }();
  return *utm;
}

Input const & Data()
{
  static Input const data = [] {
    Input in;
    std::mt19937_64 rng(20240611);
    std::uniform_real_distribution<double> lon(6, 12), lat(0, 84);
    for (int i = 0; i < kPoints; ++i) {
      XY const p{lon(rng), lat(rng)};
      in.geodeticDeg.push_back(p);
      in.geodeticRad.push_back({p.x * kDeg, p.y * kDeg});
    }
    in.projected = in.geodeticRad;
    ProjTrans(PJ_FWD, in.projected);
    return in;
  }();
  return data;
}

// Each loop converts a working copy refreshed outside the timing.
template <class Convert>
void Run(benchmark::State & state, std::vector<XY> const & source, Convert convert)
{
  VelmoraBench::TimeOnCopies(state, source, convert);
}

void BM_Velmora_UtmForward(benchmark::State & state)
{
  CProjection const & utm = Projection();
  Run(state, Data().geodeticDeg, [&utm](std::vector<XY> & pts) {
    for (XY & p : pts)
      utm.ToPlane(p.x, p.y);
  });
}

void BM_Proj_UtmForward(benchmark::State & state)
{
  Run(state, Data().geodeticRad, [](std::vector<XY> & pts) { ProjTrans(PJ_FWD, pts); });
}

void BM_Velmora_UtmInverse(benchmark::State & state)
{
  CProjection const & utm = Projection();
  Run(state, Data().projected, [&utm](std::vector<XY> & pts) {
    for (XY & p : pts)
      utm.FromPlane(p.x, p.y);
  });
}

void BM_Proj_UtmInverse(benchmark::State & state)
{
  Run(state, Data().projected, [](std::vector<XY> & pts) { ProjTrans(PJ_INV, pts); });
}

BENCHMARK(BM_Velmora_UtmForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_UtmForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_UtmInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_UtmInverse)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  return VelmoraBench::RunWithRatios(argc, argv, {
    {"UTM forward", "BM_Velmora_UtmForward", "BM_Proj_UtmForward"},
    {"UTM inverse", "BM_Velmora_UtmInverse", "BM_Proj_UtmInverse"},
  }, [] {
    Data();
    Projection();
  });
}
