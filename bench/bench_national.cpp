// The national grid readers on one million points each, beside PROJ on the
// twins of the same test grids (tools/make-test-grids.py): the Tokyo mesh
// against hgridshift on its NTv2 twin, and the GR3D1 grid through
// Molodensky's formula against xyzgridshift on its GeoTIFF twin with the
// exact geocentric translation. All read their grids whole before timing.
#include <velmora/transforms/datumshifts/NationalShifts.h>

#include <benchmark/benchmark.h>

#include "ProjectionBench.h"
#include "RatioReport.h"
#include <proj.h>

#include <string>
#include <vector>

using namespace Velmora;

namespace {

using VelmoraBench::XY;

constexpr int kPoints = 1000000;
std::string const kGrids = std::string(VELMORA_SOURCE_DIR) + "/tests/data/grids/";

std::vector<XY> const & TokyoPoints()
{
  static std::vector<XY> const points = VelmoraBench::PointsIn(kPoints, 139.501, 140.249, 35.001, 35.499, 20261125);
  return points;
}

std::vector<XY> const & FrancePoints()
{
  static std::vector<XY> const points = VelmoraBench::PointsIn(kPoints, -0.95, 2.95, 45.05, 47.95, 20261126);
  return points;
}

PJ * ProjTokyo()
{
  static std::string const definition = "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
                                        "+step +proj=hgridshift +grids=" + kGrids + "tokyo/tky_test.gsb "
                                        "+step +proj=unitconvert +xy_in=rad +xy_out=deg";
  static PJ * const pj = VelmoraBench::ProjProjection(definition.c_str());
  return pj;
}

PJ * ProjFrance()
{
  static std::string const definition = "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
                                        "+step +proj=cart +ellps=clrk80ign +step +proj=xyzgridshift +grids=" +
                                        kGrids + "gr3d/gr3d1_test.tif +grid_ref=input_crs +ellps=clrk80ign "
                                        "+step +inv +proj=cart +ellps=GRS80 "
                                        "+step +proj=unitconvert +xy_in=rad +xy_out=deg";
  static PJ * const pj = VelmoraBench::ProjProjection(definition.c_str());
  return pj;
}

CT::DS::CTokyoToJGD2000 & OurTokyo()
{
  static CT::DS::CTokyoToJGD2000 shift = [] {
    CT::DS::CTokyoToJGD2000 s;
    s.GetParameters().SetString(CString("path"), CString(QString::fromStdString(kGrids + "tokyo")));
    s.GetParameters().SetString(CString("file"), CString("tky_test.par"));
    double lon = 139.6, lat = 35.1;
    s.ShiftForward(lon, lat); // loads the mesh
    return s;
  }();
  return shift;
}

CT::DS::CNTFToRGF93 & OurFrance()
{
  static CT::DS::CNTFToRGF93 shift = [] {
    CT::DS::CNTFToRGF93 s;
    s.GetParameters().SetString(CString("file"), CString(QString::fromStdString(kGrids + "gr3d/gr3d1_test.txt")));
    s.SetSrcDatum(*VelmoraBench::LastingDatum(6378249.2, 293.4660212936269));
    s.SetDestDatum(*VelmoraBench::LastingDatum(6378137.0, 298.257222101));
    double lon = 1.0, lat = 46.0;
    s.ShiftForward(lon, lat); // loads the grid
    return s;
  }();
  return shift;
}

template <class Shift>
void TimeOurs(benchmark::State & state, Shift const & shift, std::vector<XY> const & points)
{
  VelmoraBench::TimeOnCopies(state, points, [&shift](std::vector<XY> & pts) {
    for (XY & p : pts)
      shift.ShiftForward(p.x, p.y);
  });
}

void TimeProj(benchmark::State & state, PJ * pj, std::vector<XY> const & points)
{
  VelmoraBench::TimeOnCopies(state, points, [pj](std::vector<XY> & pts) { VelmoraBench::ProjTrans(pj, PJ_FWD, pts); });
}

void BM_Velmora_Tokyo(benchmark::State & state) { TimeOurs(state, OurTokyo(), TokyoPoints()); }
void BM_Proj_Tokyo(benchmark::State & state) { TimeProj(state, ProjTokyo(), TokyoPoints()); }
void BM_Velmora_Gr3d(benchmark::State & state) { TimeOurs(state, OurFrance(), FrancePoints()); }
void BM_Proj_Gr3d(benchmark::State & state) { TimeProj(state, ProjFrance(), FrancePoints()); }

BENCHMARK(BM_Velmora_Tokyo)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_Tokyo)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_Gr3d)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_Gr3d)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  return VelmoraBench::RunWithRatios(argc, argv, {
    {"Tokyo mesh forward, test grid, pair path", "BM_Velmora_Tokyo", "BM_Proj_Tokyo"},
    {"GR3D1 forward, test grid, pair path", "BM_Velmora_Gr3d", "BM_Proj_Gr3d"},
  }, [] {
    TokyoPoints();
    FrancePoints();
    OurTokyo();
    OurFrance();
    ProjTokyo();
    ProjFrance();
  });
}
