// NTv2 forward on one million points over Germany through BETA2007.gsb: our
// CCanadianNTV2 on the pair path beside PROJ's hgridshift on the same grid,
// in the same run. Both read the grid whole before timing.
#include <velmora/transforms/datumshifts/GridShifts.h>

#include <benchmark/benchmark.h>

#include "RatioReport.h"
#include <proj.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

using namespace Velmora;

namespace {

constexpr int kPoints = 1000000;
char const kGrid[] = "/usr/share/proj/BETA2007.gsb";

struct XY
{
  double x, y;
};

std::vector<XY> const & Points()
{
  static std::vector<XY> const points = [] {
    std::vector<XY> p;
    p.reserve(kPoints);
    std::mt19937_64 rng(20261125);
    std::uniform_real_distribution<double> lon(5.9, 15.0), lat(47.3, 55.0);
    for (int i = 0; i < kPoints; ++i)
      p.push_back({lon(rng), lat(rng)});
    return p;
  }();
  return points;
}

PJ * ProjGrid()
{
  static PJ * const pj = [] {
    PJ * p = proj_create(PJ_DEFAULT_CTX, "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
                                         "+step +proj=hgridshift +grids=BETA2007.gsb "
                                         "+step +proj=unitconvert +xy_in=rad +xy_out=deg");
    if (!p) {
      std::fprintf(stderr, "PROJ could not open BETA2007.gsb\n");
      std::exit(1);
    }
    return p;
  }();
  return pj;
}

CT::DS::CCanadianNTV2 & Our()
{
  static CT::DS::CCanadianNTV2 shift = [] {
    CT::DS::CCanadianNTV2 s;
    s.GetParameters().SetString(CString("cantrans_file"), CString(kGrid));
    s.Init();
    return s;
  }();
  return shift;
}

void BM_Velmora_NTv2(benchmark::State & state)
{
  CT::DS::CCanadianNTV2 const & shift = Our();
  VelmoraBench::TimeOnCopies(state, Points(), [&shift](std::vector<XY> & pts) {
    for (XY & p : pts)
      shift.ShiftForward(p.x, p.y);
  });
}

void BM_Proj_Hgridshift(benchmark::State & state)
{
  PJ * const pj = ProjGrid();
  VelmoraBench::TimeOnCopies(state, Points(), [pj](std::vector<XY> & pts) {
    std::size_t const stride = sizeof(XY);
    proj_trans_generic(pj, PJ_FWD, &pts[0].x, stride, kPoints, &pts[0].y, stride, kPoints, nullptr, 0, 0, nullptr,
                       0, 0);
  });
}

BENCHMARK(BM_Velmora_NTv2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_Hgridshift)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  return VelmoraBench::RunWithRatios(argc, argv, {
    {"NTv2 forward, BETA2007, pair path", "BM_Velmora_NTv2", "BM_Proj_Hgridshift"},
  }, [] {
    Points();
    Our();
    ProjGrid();
  });
}
