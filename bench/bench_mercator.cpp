// The Mercator on WGS 84 beside PROJ's merc, and the Pseudo-Mercator (the
// Mercator on the sphere of WGS 84's a, as the shipped file holds EPSG:3857)
// beside PROJ's webmerc, each on the same million points between 85 degrees
// south and north: ours through ToPlane(double &, double &) and FromPlane,
// PROJ's through proj_trans_generic. After the runs a table gives the time
// per point and Velmora / PROJ.
#include "ProjectionBench.h"
#include "RatioReport.h"

#include <velmora/projections/Cylindrical.h>

#include <benchmark/benchmark.h>

using Velmora::CString;
using Velmora::CS::PJ::CMercator;
using namespace VelmoraBench;

namespace {

constexpr int kPoints = 1000000;
constexpr double kWgs84A = 6378137.0, kWgs84InvF = 298.257223563;

// One of the two: ours on its figure, PROJ's definition, and the points.
struct Case
{
  CMercator * ours;
  PJ * proj;
  std::vector<XY> geodeticDeg, geodeticRad, projected;
};

Case Make(double invF, char const * definition)
{
  Case c{new CMercator(LastingDatum(kWgs84A, invF)), ProjProjection(definition), {}, {}, {}};
  auto & p = c.ours->GetParameters();
  for (char const * name : {"central_meridian", "latitude_of_origin", "false_easting", "false_northing"})
    p.SetItemInternal(CString(name), 0.0);
  p.SetDouble(CString("scale_factor"), 1.0);
  c.geodeticDeg = PointsIn(kPoints, -180, 180, -85, 85, 20260101);
  for (XY const & d : c.geodeticDeg)
    c.geodeticRad.push_back({d.x * kDeg, d.y * kDeg});
  c.projected = c.geodeticRad;
  ProjTrans(c.proj, PJ_FWD, c.projected);
  return c;
}

Case const & Ellipsoidal()
{
  static Case const c = Make(kWgs84InvF, "+proj=merc +ellps=WGS84");
  return c;
}

Case const & WebMercator()
{
  static Case const c = Make(0.0, "+proj=webmerc +ellps=WGS84");
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

template <Case const & (*Get)(), PJ_DIRECTION Direction>
void Proj(benchmark::State & state)
{
  TimeOnCopies(state, Direction == PJ_FWD ? Get().geodeticRad : Get().projected,
               [](std::vector<XY> & pts) { ProjTrans(Get().proj, Direction, pts); });
}

BENCHMARK(Forward<Ellipsoidal>)->Name("BM_Velmora_MercForward")->Unit(benchmark::kMillisecond);
BENCHMARK(Proj<Ellipsoidal, PJ_FWD>)->Name("BM_Proj_MercForward")->Unit(benchmark::kMillisecond);
BENCHMARK(Inverse<Ellipsoidal>)->Name("BM_Velmora_MercInverse")->Unit(benchmark::kMillisecond);
BENCHMARK(Proj<Ellipsoidal, PJ_INV>)->Name("BM_Proj_MercInverse")->Unit(benchmark::kMillisecond);
BENCHMARK(Forward<WebMercator>)->Name("BM_Velmora_WebMercForward")->Unit(benchmark::kMillisecond);
BENCHMARK(Proj<WebMercator, PJ_FWD>)->Name("BM_Proj_WebMercForward")->Unit(benchmark::kMillisecond);
BENCHMARK(Inverse<WebMercator>)->Name("BM_Velmora_WebMercInverse")->Unit(benchmark::kMillisecond);
BENCHMARK(Proj<WebMercator, PJ_INV>)->Name("BM_Proj_WebMercInverse")->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  return RunWithRatios(argc, argv,
                       {
                         {"Mercator forward", "BM_Velmora_MercForward", "BM_Proj_MercForward"},
                         {"Mercator inverse", "BM_Velmora_MercInverse", "BM_Proj_MercInverse"},
                         {"Web Mercator forward", "BM_Velmora_WebMercForward", "BM_Proj_WebMercForward"},
                         {"Web Mercator inverse", "BM_Velmora_WebMercInverse", "BM_Proj_WebMercInverse"},
                       },
                       [] {
                         Ellipsoidal();
                         WebMercator();
                       });
}
