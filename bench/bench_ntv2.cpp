// NTv2 forward on one million points over Germany through BETA2007.gsb: our
// CCanadianNTV2 on the pair path beside PROJ's hgridshift on the same grid,
// in the same run. Both read the grid whole before timing.
#include <velmora/transforms/datumshifts/GridShifts.h>

#include <benchmark/benchmark.h>

#include "ProjectionBench.h"
#include "RatioReport.h"
#include <proj.h>

#include <vector>

using namespace Velmora;

namespace {

using VelmoraBench::XY;

constexpr int kPoints = 1000000;
char const kGrid[] = "/usr/share/proj/BETA2007.gsb";

std::vector<XY> const & Points()
{
  static std::vector<XY> const points = VelmoraBench::PointsIn(kPoints, 5.9, 15.0, 47.3, 55.0, 20261125);
  return points;
}

PJ * ProjGrid()
{
  static PJ * const pj = VelmoraBench::ProjProjection("+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
                                                      "+step +proj=hgridshift +grids=BETA2007.gsb "
                                                      "+step +proj=unitconvert +xy_in=rad +xy_out=deg");
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
  VelmoraBench::TimeOnCopies(state, Points(), [pj](std::vector<XY> & pts) { VelmoraBench::ProjTrans(pj, PJ_FWD, pts); });
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
