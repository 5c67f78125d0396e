// Lambert's conformal conic beside PROJ's lcc on the same million points of
// France's Lambert-93 (GRS 80, parallels 44 and 49, origin 46.5 N 3 E):
// ours through ToPlane(double &, double &) and FromPlane, PROJ's through
// proj_trans_generic. After the runs a table gives the time per point and
// Velmora / PROJ.
#include "ProjectionBench.h"
#include "RatioReport.h"

#include <velmora/projections/Conic.h>

#include <benchmark/benchmark.h>

#include <random>

using Velmora::CString;
using Velmora::CS::PJ::CLambertConformalConic;
using namespace VelmoraBench;

namespace {

constexpr int kPoints = 1000000;

PJ * Lcc()
{
  static PJ * const pj = ProjProjection("+proj=lcc +lat_0=46.5 +lon_0=3 +lat_1=49 +lat_2=44 +x_0=700000 "
                                        "+y_0=6600000 +ellps=GRS80");
  return pj;
}

CLambertConformalConic const & Projection()
{
  static CLambertConformalConic * const lcc = [] {
    auto * p = new CLambertConformalConic(LastingDatum(6378137.0, 298.257222101));
    auto & params = p->GetParameters();
    params.SetItemInternal(CString("latitude_of_origin"), 46.5);
    params.SetItemInternal(CString("central_meridian"), 3);
    params.SetItemInternal(CString("standard_parallel1"), 49);
    params.SetItemInternal(CString("standard_parallel2"), 44);
    params.SetItemInternal(CString("false_easting"), 700000);
    params.SetItemInternal(CString("false_northing"), 6600000);
    return p;
  }();
  return *lcc;
}

struct Input
{
  std::vector<XY> geodeticDeg, geodeticRad, projected;
};

Input const & Data()
{
  static Input const data = [] {
    Input in;
    std::mt19937_64 rng(19930101);
    std::uniform_real_distribution<double> lon(-5.5, 10), lat(41, 51.5);
    for (int i = 0; i < kPoints; ++i) {
      XY const p{lon(rng), lat(rng)};
      in.geodeticDeg.push_back(p);
      in.geodeticRad.push_back({p.x * kDeg, p.y * kDeg});
    }
    in.projected = in.geodeticRad;
    ProjTrans(Lcc(), PJ_FWD, in.projected);
    return in;
  }();
  return data;
}

void BM_Velmora_LccForward(benchmark::State & state)
{
  TimeOnCopies(state, Data().geodeticDeg, [](std::vector<XY> & pts) {
    for (XY & p : pts)
      Projection().ToPlane(p.x, p.y);
  });
}

void BM_Proj_LccForward(benchmark::State & state)
{
  TimeOnCopies(state, Data().geodeticRad, [](std::vector<XY> & pts) { ProjTrans(Lcc(), PJ_FWD, pts); });
}

void BM_Velmora_LccInverse(benchmark::State & state)
{
  TimeOnCopies(state, Data().projected, [](std::vector<XY> & pts) {
    for (XY & p : pts)
      Projection().FromPlane(p.x, p.y);
  });
}

void BM_Proj_LccInverse(benchmark::State & state)
{
  TimeOnCopies(state, Data().projected, [](std::vector<XY> & pts) { ProjTrans(Lcc(), PJ_INV, pts); });
}

BENCHMARK(BM_Velmora_LccForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_LccForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_LccInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_LccInverse)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  return RunWithRatios(argc, argv,
                       {
                         {"LCC forward", "BM_Velmora_LccForward", "BM_Proj_LccForward"},
                         {"LCC inverse", "BM_Velmora_LccInverse", "BM_Proj_LccInverse"},
                       },
                       [] {
                         Data();
                         Projection();
                       });
}
