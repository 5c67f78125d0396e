// Hotine's oblique Mercator (variant B, RSO Borneo on Everest 1967) and
// Krovak's conic (S-JTSK on Bessel 1841) beside PROJ's omerc and krovak on
// the same million points of each grid's area: ours through
// ToPlane(double &, double &) and FromPlane, PROJ's through
// proj_trans_generic. After the runs a table gives the time per point and
// Velmora / PROJ.
#include "ProjectionBench.h"
#include "RatioReport.h"

#include <velmora/projections/Oblique.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <utility>

using Velmora::CString;
using namespace Velmora::CS::PJ;
using namespace VelmoraBench;

namespace {

constexpr int kPoints = 1000000;

// One grid: our projection, PROJ's, and the points both convert.
struct Grid
{
  std::unique_ptr<CProjection> ours;
  PJ * proj;
  std::vector<XY> geodeticDeg, geodeticRad, projected;

  Grid(CProjection * projection, char const * definition, double west, double east, double south, double north,
       unsigned seed)
    : ours(projection), proj(ProjProjection(definition)),
      geodeticDeg(PointsIn(kPoints, west, east, south, north, seed))
  {
    for (XY const & p : geodeticDeg)
      geodeticRad.push_back({p.x * kDeg, p.y * kDeg});
    projected = geodeticRad;
    ProjTrans(proj, PJ_FWD, projected);
  }
};

void Set(CProjection & p, std::initializer_list<std::pair<char const *, double>> values)
{
  auto & params = p.GetParameters();
  for (auto const & [name, value] : values) {
    CString const n(name);
    if (params.GetItemType(n) == Velmora::CParameter::kLong)
      params.SetLong(n, static_cast<long>(value));
    else if (params.GetItemType(n) == Velmora::CParameter::kDouble)
      params.SetDouble(n, value);
    else
      params.SetItemInternal(n, value);
  }
}

Grid const & Borneo()
{
  static Grid const grid = [] {
    auto * p = new CObliqueMercatorAzimuth(LastingDatum(6377298.556, 300.8017));
    Set(*p, {{"central_meridian", 115}, {"latitude_of_origin", 4}, {"scale_factor", 0.99984},
             {"azimuth", 53.3158204722222}, {"false_easting", 590476.87}, {"false_northing", 442857.65},
             {"rotation_angle", 53.1301023611111}, {"unrectified_flag", 0}, {"center_flag", 1},
             {"use_gamma_flag", 0}, {"azimuth_is_gamma", 0}});
    return Grid(p,
                "+proj=omerc +lonc=115 +lat_0=4 +alpha=53.3158204722222 +gamma=53.1301023611111 +k=0.99984 "
                "+x_0=590476.87 +y_0=442857.65 +a=6377298.556 +rf=300.8017",
                109.3, 119.6, 0.9, 7.6, 19480101);
  }();
  return grid;
}

Grid const & Jtsk()
{
  static Grid const grid = [] {
    auto * p = new CKrovak(LastingDatum(6377397.155, 299.1528128));
    Set(*p, {{"central_meridian", 24.8333333333333}, {"latitude_of_origin", 49.5}, {"azimuth", 30.2881397527778},
             {"latitude_of_true_scale", 78.5}, {"scale_factor", 0.9999}, {"false_easting", 0},
             {"false_northing", 0}});
    return Grid(p,
                "+proj=krovak +axis=swu +lon_0=24.8333333333333 +lat_0=49.5 +alpha=30.2881397527778 +k=0.9999 "
                "+ellps=bessel",
                12.1, 22.5, 47.8, 51.0, 19220101);
  }();
  return grid;
}

void Forward(benchmark::State & state, Grid const & g)
{
  TimeOnCopies(state, g.geodeticDeg, [&](std::vector<XY> & pts) {
    for (XY & p : pts)
      g.ours->ToPlane(p.x, p.y);
  });
}

void Inverse(benchmark::State & state, Grid const & g)
{
  TimeOnCopies(state, g.projected, [&](std::vector<XY> & pts) {
    for (XY & p : pts)
      g.ours->FromPlane(p.x, p.y);
  });
}

void ProjForward(benchmark::State & state, Grid const & g)
{
  TimeOnCopies(state, g.geodeticRad, [&](std::vector<XY> & pts) { ProjTrans(g.proj, PJ_FWD, pts); });
}

void ProjInverse(benchmark::State & state, Grid const & g)
{
  TimeOnCopies(state, g.projected, [&](std::vector<XY> & pts) { ProjTrans(g.proj, PJ_INV, pts); });
}

void BM_Velmora_HotineForward(benchmark::State & state) { Forward(state, Borneo()); }
void BM_Proj_HotineForward(benchmark::State & state) { ProjForward(state, Borneo()); }
void BM_Velmora_HotineInverse(benchmark::State & state) { Inverse(state, Borneo()); }
void BM_Proj_HotineInverse(benchmark::State & state) { ProjInverse(state, Borneo()); }
void BM_Velmora_KrovakForward(benchmark::State & state) { Forward(state, Jtsk()); }
void BM_Proj_KrovakForward(benchmark::State & state) { ProjForward(state, Jtsk()); }
void BM_Velmora_KrovakInverse(benchmark::State & state) { Inverse(state, Jtsk()); }
void BM_Proj_KrovakInverse(benchmark::State & state) { ProjInverse(state, Jtsk()); }

BENCHMARK(BM_Velmora_HotineForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_HotineForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_HotineInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_HotineInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_KrovakForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_KrovakForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_KrovakInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_KrovakInverse)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  return RunWithRatios(argc, argv,
                       {
                         {"Hotine B forward", "BM_Velmora_HotineForward", "BM_Proj_HotineForward"},
                         {"Hotine B inverse", "BM_Velmora_HotineInverse", "BM_Proj_HotineInverse"},
                         {"Krovak forward", "BM_Velmora_KrovakForward", "BM_Proj_KrovakForward"},
                         {"Krovak inverse", "BM_Velmora_KrovakInverse", "BM_Proj_KrovakInverse"},
                       },
                       [] {
                         Borneo();
                         Jtsk();
                       });
}
