// The New Zealand Map Grid beside PROJ's nzmg on 200,000 points over New
// Zealand, and the Space Oblique Mercator beside PROJ's lsat (Landsat 5,
// path 44, WGS 84) on 200,000 points along its ground track: ours through
// ToPlane and FromPlane, PROJ's through proj_trans_generic. After the runs
// a table gives the time per point and Velmora / PROJ.
#include "ProjectionBench.h"
#include "RatioReport.h"

#include <velmora/projections/GridSystems.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

using Velmora::CString;
using Velmora::CS::PJ::CNewZealandMapGrid;
using Velmora::CS::PJ::CProjection;
using Velmora::CS::PJ::CSpaceObliqueMercator;
using namespace VelmoraBench;

namespace {

constexpr int kPoints = 200000;
constexpr double kWgs84F = 1 / 298.257223563;

PJ * Nzmg()
{
  static PJ * const pj = ProjProjection("+proj=nzmg +ellps=intl");
  return pj;
}

PJ * Lsat()
{
  static PJ * const pj = ProjProjection("+proj=lsat +lsat=5 +path=44 +ellps=WGS84");
  return pj;
}

CProjection const & Nz()
{
  static CNewZealandMapGrid * const p = [] {
    auto * nz = new CNewZealandMapGrid;
    auto & params = nz->GetParameters();
    params.SetItemInternal(CString("central_meridian"), 173);
    params.SetItemInternal(CString("latitude_of_origin"), -41);
    params.SetItemInternal(CString("false_easting"), 2510000);
    params.SetItemInternal(CString("false_northing"), 6023150);
    return nz;
  }();
  return *p;
}

CProjection const & Som()
{
  static CSpaceObliqueMercator * const p = [] {
    auto * som = new CSpaceObliqueMercator;
    auto & params = som->GetParameters();
    params.SetItemInternal(CString("central_meridian"), 0);
    params.SetDouble(CString("satellite_p1"), 1440);
    params.SetDouble(CString("satellite_p2"), 98.8841202);
    params.SetItemInternal(CString("satellite_lon0"), 129.3 - 360.0 / 233 * 44);
    params.SetItemInternal(CString("satellite_a"), 6378137);
    params.SetDouble(CString("satellite_e"), std::sqrt(2 * kWgs84F - kWgs84F * kWgs84F));
    params.SetItemInternal(CString("satellite_incl"), 98.2);
    params.SetDouble(CString("satellite_gamma"), 1.0 / 248 + 16.0 / 31);
    return som;
  }();
  return *p;
}

struct Input
{
  std::vector<XY> geodeticDeg, geodeticRad, projected;
};

// Points drawn in PROJ's plane (x, y ranges), taken to geodetic by PROJ.
Input Draw(PJ * pj, double x0, double x1, double y0, double y1, unsigned seed)
{
  Input in;
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> x(x0, x1), y(y0, y1);
  for (int i = 0; i < kPoints; ++i)
    in.projected.push_back({x(rng), y(rng)});
  in.geodeticRad = in.projected;
  ProjTrans(pj, PJ_INV, in.geodeticRad);
  for (XY const & p : in.geodeticRad)
    in.geodeticDeg.push_back({p.x / kDeg, p.y / kDeg});
  return in;
}

Input const & NzData()
{
  static Input const data = Draw(Nzmg(), 2000000, 3000000, 5300000, 6800000, 1973);
  return data;
}

Input const & SomData()
{
  static Input const data = Draw(Lsat(), 12000000, 40000000, -250000, 250000, 1984);
  return data;
}

template <class Convert>
void Ours(benchmark::State & state, std::vector<XY> const & input, CProjection const & p, Convert convert)
{
  TimeOnCopies(state, input, [&](std::vector<XY> & pts) {
    for (XY & q : pts)
      convert(p, q);
  });
}

void BM_Velmora_NzmgForward(benchmark::State & s)
{
  Ours(s, NzData().geodeticDeg, Nz(), [](CProjection const & p, XY & q) { p.ToPlane(q.x, q.y); });
}
void BM_Proj_NzmgForward(benchmark::State & s)
{
  TimeOnCopies(s, NzData().geodeticRad, [](std::vector<XY> & pts) { ProjTrans(Nzmg(), PJ_FWD, pts); });
}
void BM_Velmora_NzmgInverse(benchmark::State & s)
{
  Ours(s, NzData().projected, Nz(), [](CProjection const & p, XY & q) { p.FromPlane(q.x, q.y); });
}
void BM_Proj_NzmgInverse(benchmark::State & s)
{
  TimeOnCopies(s, NzData().projected, [](std::vector<XY> & pts) { ProjTrans(Nzmg(), PJ_INV, pts); });
}
void BM_Velmora_SomForward(benchmark::State & s)
{
  Ours(s, SomData().geodeticDeg, Som(), [](CProjection const & p, XY & q) { p.ToPlane(q.x, q.y); });
}
void BM_Proj_SomForward(benchmark::State & s)
{
  TimeOnCopies(s, SomData().geodeticRad, [](std::vector<XY> & pts) { ProjTrans(Lsat(), PJ_FWD, pts); });
}
void BM_Velmora_SomInverse(benchmark::State & s)
{
  Ours(s, SomData().projected, Som(), [](CProjection const & p, XY & q) { p.FromPlane(q.x, q.y); });
}
void BM_Proj_SomInverse(benchmark::State & s)
{
  TimeOnCopies(s, SomData().projected, [](std::vector<XY> & pts) { ProjTrans(Lsat(), PJ_INV, pts); });
}

BENCHMARK(BM_Velmora_NzmgForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_NzmgForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_NzmgInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_NzmgInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_SomForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_SomForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_SomInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_SomInverse)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  return RunWithRatios(argc, argv,
                       {
                         {"NZMG forward", "BM_Velmora_NzmgForward", "BM_Proj_NzmgForward"},
                         {"NZMG inverse", "BM_Velmora_NzmgInverse", "BM_Proj_NzmgInverse"},
                         {"SOM forward", "BM_Velmora_SomForward", "BM_Proj_SomForward"},
                         {"SOM inverse", "BM_Velmora_SomInverse", "BM_Proj_SomInverse"},
                       },
                       [] {
                         NzData();
                         SomData();
                         Nz();
                         Som();
                       });
}
