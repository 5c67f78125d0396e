// Robinson, Mollweide and Winkel's tripel beside PROJ's robin, moll and
// wintri on the same million points over the whole map (a sphere of radius
// 6371 km, central meridian 0): ours through ToPlane(double &, double &) and
// FromPlane, PROJ's through proj_trans_generic. Van der Grinten IV's numeric
// inverse is timed on a hundred thousand points beside PROJ's forward vandg4
// (PROJ has no inverse), so that its ratio counts forward conversions per
// inverse. After the runs a table gives the time per point and Velmora / PROJ.
#include "ProjectionBench.h"
#include "RatioReport.h"

#include <velmora/projections/WorldMap.h>

#include <benchmark/benchmark.h>

#include <memory>

using Velmora::CString;
using namespace Velmora::CS::PJ;
using namespace VelmoraBench;

namespace {

// The spherical types use only the semi-major axis of the figure.
constexpr double kRadius = 6371000.0;

// One projection of both libraries and its points, both ways.
struct Subject
{
  PJ * proj;
  CProjection * ours;
  std::vector<XY> geodeticDeg, geodeticRad, projected;
};

Subject Make(char const * definition, CProjection::Type type, int count)
{
  Subject s{ProjProjection(definition), CProjectionFactory::CreateProjection(type, LastingDatum(kRadius, 298.257223563)), {}, {},
            {}};
  auto & params = s.ours->GetParameters();
  for (long i = 0; i < params.Count(); ++i) {
    CString const name = params.ParameterNameAtIndex(i);
    params.SetItemInternal(name, name == CString("spherical_radius") ? kRadius : 0.0);
  }
  s.geodeticDeg = PointsIn(count, -179.9, 179.9, -89.9, 89.9, 19740101);
  for (XY const & p : s.geodeticDeg)
    s.geodeticRad.push_back({p.x * kDeg, p.y * kDeg});
  s.projected = s.geodeticRad;
  ProjTrans(s.proj, PJ_FWD, s.projected);
  return s;
}

Subject const & Robinson()
{
  static Subject const s = Make("+proj=robin +R=6371000", CProjection::kRobinson, 1000000);
  return s;
}
Subject const & Mollweide()
{
  static Subject const s = Make("+proj=moll +R=6371000", CProjection::kMollweide, 1000000);
  return s;
}
Subject const & Tripel()
{
  static Subject const s = Make("+proj=wintri +R=6371000", CProjection::kWinkelTripel, 1000000);
  return s;
}
Subject const & GrintenIV()
{
  static Subject const s = Make("+proj=vandg4 +R=6371000", CProjection::kVanDerGrintenIV, 100000);
  return s;
}

void Ours(benchmark::State & state, Subject const & s, bool forward)
{
  TimeOnCopies(state, forward ? s.geodeticDeg : s.projected, [&](std::vector<XY> & pts) {
    for (XY & p : pts)
      forward ? s.ours->ToPlane(p.x, p.y) : s.ours->FromPlane(p.x, p.y);
  });
}

void Proj(benchmark::State & state, Subject const & s, bool forward)
{
  TimeOnCopies(state, forward ? s.geodeticRad : s.projected,
               [&](std::vector<XY> & pts) { ProjTrans(s.proj, forward ? PJ_FWD : PJ_INV, pts); });
}

void BM_Velmora_RobinsonForward(benchmark::State & st) { Ours(st, Robinson(), true); }
void BM_Proj_RobinsonForward(benchmark::State & st) { Proj(st, Robinson(), true); }
void BM_Velmora_RobinsonInverse(benchmark::State & st) { Ours(st, Robinson(), false); }
void BM_Proj_RobinsonInverse(benchmark::State & st) { Proj(st, Robinson(), false); }
void BM_Velmora_MollweideForward(benchmark::State & st) { Ours(st, Mollweide(), true); }
void BM_Proj_MollweideForward(benchmark::State & st) { Proj(st, Mollweide(), true); }
void BM_Velmora_MollweideInverse(benchmark::State & st) { Ours(st, Mollweide(), false); }
void BM_Proj_MollweideInverse(benchmark::State & st) { Proj(st, Mollweide(), false); }
void BM_Velmora_TripelForward(benchmark::State & st) { Ours(st, Tripel(), true); }
void BM_Proj_TripelForward(benchmark::State & st) { Proj(st, Tripel(), true); }
void BM_Velmora_TripelInverse(benchmark::State & st) { Ours(st, Tripel(), false); }
void BM_Proj_TripelInverse(benchmark::State & st) { Proj(st, Tripel(), false); }
void BM_Velmora_GrintenIVInverse(benchmark::State & st) { Ours(st, GrintenIV(), false); }
void BM_Proj_GrintenIVForward(benchmark::State & st) { Proj(st, GrintenIV(), true); }

BENCHMARK(BM_Velmora_RobinsonForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_RobinsonForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_RobinsonInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_RobinsonInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_MollweideForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_MollweideForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_MollweideInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_MollweideInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_TripelForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_TripelForward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_TripelInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_TripelInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_GrintenIVInverse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_GrintenIVForward)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  return RunWithRatios(argc, argv,
                       {
                         {"Robinson forward", "BM_Velmora_RobinsonForward", "BM_Proj_RobinsonForward"},
                         {"Robinson inverse", "BM_Velmora_RobinsonInverse", "BM_Proj_RobinsonInverse"},
                         {"Mollweide forward", "BM_Velmora_MollweideForward", "BM_Proj_MollweideForward"},
                         {"Mollweide inverse", "BM_Velmora_MollweideInverse", "BM_Proj_MollweideInverse"},
                         {"Winkel tripel forward", "BM_Velmora_TripelForward", "BM_Proj_TripelForward"},
                         {"Winkel tripel inverse", "BM_Velmora_TripelInverse", "BM_Proj_TripelInverse"},
                         {"VdG IV inv / PROJ fwd", "BM_Velmora_GrintenIVInverse", "BM_Proj_GrintenIVForward"},
                       },
                       [] {
                         Robinson();
                         Mollweide();
                         Tripel();
                         GrintenIV();
                       });
}
