// The polar and the oblique stereographic beside PROJ's stere and sterea on
// the same million points each: WGS 84 / Antarctic Polar Stereographic
// (standard parallel 71 S, EPSG:3031) over Antarctica, and Amersfoort / RD
// New (EPSG:28992) over the Netherlands and around. Ours through
// ToPlane(double &, double &) and FromPlane, PROJ's through
// proj_trans_generic. After the runs a table gives the time per point and
// Velmora / PROJ.
#include "ProjectionBench.h"
#include "RatioReport.h"

#include <velmora/projections/Azimuthal.h>

#include <benchmark/benchmark.h>

using Velmora::CString;
using Velmora::CS::PJ::CDoubleStereographic;
using Velmora::CS::PJ::CPolarStereographic;
using Velmora::CS::PJ::CProjection;
using namespace VelmoraBench;

namespace {

constexpr int kPoints = 1000000;

// One projection of each library and the points both convert.
struct Case
{
  PJ * proj;
  CProjection * ours;
  std::vector<XY> geodeticDeg, geodeticRad, projected;
};

Case MakeCase(char const * definition, CProjection * ours, double west, double east, double south, double north,
              unsigned seed)
{
  Case c{ProjProjection(definition), ours, PointsIn(kPoints, west, east, south, north, seed), {}, {}};
  for (XY const & p : c.geodeticDeg)
    c.geodeticRad.push_back({p.x * kDeg, p.y * kDeg});
  c.projected = c.geodeticRad;
  ProjTrans(c.proj, PJ_FWD, c.projected);
  return c;
}

void Set(CProjection & p, char const * name, double value)
{
  if (CString(name) == CString("scale_factor"))
    p.GetParameters().SetDouble(CString(name), value);
  else
    p.GetParameters().SetItemInternal(CString(name), value);
}

Case const & Polar()
{
  static Case const c = [] {
    auto * ours = new CPolarStereographic(LastingDatum(6378137.0, 298.257223563));
    for (auto [name, value] : {std::pair{"central_meridian", 0.0}, {"latitude_of_origin", -71.0},
                               {"scale_factor", 1.0}, {"false_easting", 0.0}, {"false_northing", 0.0}})
      Set(*ours, name, value);
    return MakeCase("+proj=stere +lat_0=-90 +lat_ts=-71 +lon_0=0 +ellps=WGS84", ours, -180, 180, -90, -60, 3031);
  }();
  return c;
}

Case const & Oblique()
{
  static Case const c = [] {
    auto * ours = new CDoubleStereographic(LastingDatum(6377397.155, 299.1528128));
    for (auto [name, value] :
         {std::pair{"central_meridian", 5.38763888888889}, {"latitude_of_origin", 52.1561605555556},
          {"scale_factor", 0.9999079}, {"false_easting", 155000.0}, {"false_northing", 463000.0}})
      Set(*ours, name, value);
    return MakeCase("+proj=sterea +lat_0=52.1561605555556 +lon_0=5.38763888888889 +k=0.9999079 +x_0=155000 "
                    "+y_0=463000 +ellps=bessel",
                    ours, 2, 8, 50, 54.5, 28992);
  }();
  return c;
}

template <Case const & (*Get)()>
void Forward(benchmark::State & state)
{
  TimeOnCopies(state, Get().geodeticDeg, [](std::vector<XY> & pts) {
    for (XY & p : pts)
      Get().ours->ToPlane(p.x, p.y);
  });
}

template <Case const & (*Get)()>
void Inverse(benchmark::State & state)
{
  TimeOnCopies(state, Get().projected, [](std::vector<XY> & pts) {
    for (XY & p : pts)
      Get().ours->FromPlane(p.x, p.y);
  });
}

template <Case const & (*Get)()>
void ProjForward(benchmark::State & state)
{
  TimeOnCopies(state, Get().geodeticRad, [](std::vector<XY> & pts) { ProjTrans(Get().proj, PJ_FWD, pts); });
}

template <Case const & (*Get)()>
void ProjInverse(benchmark::State & state)
{
  TimeOnCopies(state, Get().projected, [](std::vector<XY> & pts) { ProjTrans(Get().proj, PJ_INV, pts); });
}

BENCHMARK(Forward<Polar>)->Name("BM_Velmora_PolarForward")->Unit(benchmark::kMillisecond);
BENCHMARK(ProjForward<Polar>)->Name("BM_Proj_PolarForward")->Unit(benchmark::kMillisecond);
BENCHMARK(Inverse<Polar>)->Name("BM_Velmora_PolarInverse")->Unit(benchmark::kMillisecond);
BENCHMARK(ProjInverse<Polar>)->Name("BM_Proj_PolarInverse")->Unit(benchmark::kMillisecond);
BENCHMARK(Forward<Oblique>)->Name("BM_Velmora_ObliqueForward")->Unit(benchmark::kMillisecond);
BENCHMARK(ProjForward<Oblique>)->Name("BM_Proj_ObliqueForward")->Unit(benchmark::kMillisecond);
BENCHMARK(Inverse<Oblique>)->Name("BM_Velmora_ObliqueInverse")->Unit(benchmark::kMillisecond);
BENCHMARK(ProjInverse<Oblique>)->Name("BM_Proj_ObliqueInverse")->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  return RunWithRatios(argc, argv,
                       {
                         {"Polar stereographic forward", "BM_Velmora_PolarForward", "BM_Proj_PolarForward"},
                         {"Polar stereographic inverse", "BM_Velmora_PolarInverse", "BM_Proj_PolarInverse"},
                         {"Oblique stereographic forward", "BM_Velmora_ObliqueForward", "BM_Proj_ObliqueForward"},
                         {"Oblique stereographic inverse", "BM_Velmora_ObliqueInverse", "BM_Proj_ObliqueInverse"},
                       },
                       [] {
                         Polar();
                         Oblique();
                       });
}
