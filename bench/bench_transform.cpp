// The coordinate transform from WGS 84 longitude and latitude to UTM zone 32
// north, on one million points: our pair path (ConvertAhead(double &, double &)
// per point) and collection path (ConvertAhead of a CCoordPointCollection),
// beside PROJ's proj_trans_generic from EPSG:4326 to EPSG:32632, normalised
// to longitude-latitude order, on the same points in the same run.
#include <velmora/projections/TransverseMercator.h>
#include <velmora/transforms/CoordTransform.h>

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

struct XY
{
  double x, y;
};

std::vector<XY> const & Points()
{
  static std::vector<XY> const points = [] {
    std::vector<XY> p;
    p.reserve(kPoints);
    std::mt19937_64 rng(20261121);
    std::uniform_real_distribution<double> lon(6, 12), lat(0, 84);
    for (int i = 0; i < kPoints; ++i)
      p.push_back({lon(rng), lat(rng)});
    return p;
  }();
  return points;
}

// EPSG:4326 to EPSG:32632 from the registry, in the order we use: longitude first.
PJ * ProjUtm32()
{
  static PJ * const pj = [] {
    PJ * raw = proj_create_crs_to_crs(PJ_DEFAULT_CTX, "EPSG:4326", "EPSG:32632", nullptr);
    PJ * normalised = raw ? proj_normalize_for_visualization(PJ_DEFAULT_CTX, raw) : nullptr;
    proj_destroy(raw);
    if (!normalised) {
      std::fprintf(stderr, "PROJ could not make EPSG:4326 to EPSG:32632\n");
      std::exit(1);
    }
    return normalised;
  }();
  return pj;
}

// Systems and transform live as long as the program.
struct Systems
{
  CS::CGeodeticCoordSys geodetic;
  CS::CProjectedCoordSys utm;
  CT::CCoordTransform transform;

  Systems()
  {
    CS::CHorizontalDatum wgs84;
    wgs84.GetEllipsoid().GetSemiMajor().SetValue(6378137.0);
    wgs84.GetEllipsoid().SetInvFlattening(298.257223563);
    geodetic.SetHorizontalDatum(wgs84);
    utm.SetGeodeticCoordSys(geodetic);
    CS::PJ::CUniversalTransverseMercator projection;
    projection.GetParameters().SetLong(CString("autoset"), 0);
    projection.GetParameters().SetLong(CString("is_north"), 1);
    projection.GetParameters().SetLong(CString("zone"), 32);
    utm.SetProjection(projection);
    transform = CT::CCoordTransform(&geodetic, &utm);
  }
};

Systems & Our()
{
  static Systems systems;
  return systems;
}

ML::CCoordPointCollection const & GeodeticCollection()
{
  static ML::CCoordPointCollection const collection = [] {
    ML::CCoordPointCollection c{ML::CGeodeticPoint(2)};
    c.Reserve(kPoints);
    for (XY const & p : Points())
      c.AddInternals(p.x, p.y, 0.0);
    return c;
  }();
  return collection;
}

void BM_Velmora_TransformPair(benchmark::State & state)
{
  CT::CCoordTransform const & transform = Our().transform;
  VelmoraBench::TimeOnCopies(state, Points(), [&transform](std::vector<XY> & pts) {
    for (XY & p : pts)
      transform.ConvertAhead(p.x, p.y);
  });
}

void BM_Velmora_TransformCollection(benchmark::State & state)
{
  CT::CCoordTransform const & transform = Our().transform;
  ML::CCoordPointCollection const & in = GeodeticCollection();
  ML::CCoordPointCollection out{ML::CProjectedPoint(2)};
  for (auto _ : state) {
    long const written = transform.ConvertAhead(in, out);
    benchmark::DoNotOptimize(written);
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_Proj_Transform(benchmark::State & state)
{
  PJ * const pj = ProjUtm32();
  VelmoraBench::TimeOnCopies(state, Points(), [pj](std::vector<XY> & pts) {
    std::size_t const stride = sizeof(XY);
    proj_trans_generic(pj, PJ_FWD, &pts[0].x, stride, kPoints, &pts[0].y, stride, kPoints, nullptr, 0, 0, nullptr,
                       0, 0);
  });
}

BENCHMARK(BM_Velmora_TransformPair)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_TransformCollection)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_Transform)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  return VelmoraBench::RunWithRatios(argc, argv, {
    {"WGS 84 to UTM 32N, pair path", "BM_Velmora_TransformPair", "BM_Proj_Transform"},
    {"WGS 84 to UTM 32N, collection path", "BM_Velmora_TransformCollection", "BM_Proj_Transform"},
  }, [] {
    Points();
    Our();
    GeodeticCollection();
    ProjUtm32();
  });
}
