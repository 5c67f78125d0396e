// EGM96 geoid heights on one million points over the world: our CEGM96 on
// the raster the build makes (a 4 by 4 spline a point) beside PROJ's
// vgridshift on egm96_15.gtx (bilinear), in the same run. Both read their
// grid before timing.
#include <velmora/vertical/HeightModels.h>

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

struct XYZ
{
  double x, y, z;
};

std::vector<XYZ> const & Points()
{
  static std::vector<XYZ> const points = [] {
    std::vector<XYZ> p;
    p.reserve(kPoints);
    std::mt19937_64 rng(20261125);
    std::uniform_real_distribution<double> lon(-180.0, 180.0), lat(-85.0, 85.0);
    for (int i = 0; i < kPoints; ++i)
      p.push_back({lon(rng), lat(rng), 0.0});
    return p;
  }();
  return points;
}

PJ * ProjGeoid()
{
  static PJ * const pj = [] {
    PJ * p = proj_create(PJ_DEFAULT_CTX, "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
                                         "+step +proj=vgridshift +grids=egm96_15.gtx +multiplier=1 "
                                         "+step +proj=unitconvert +xy_in=rad +xy_out=deg");
    if (!p) {
      std::fprintf(stderr, "PROJ could not open egm96_15.gtx\n");
      std::exit(1);
    }
    return p;
  }();
  return pj;
}

CS::VR::CEGM96 & Our()
{
  static CS::VR::CEGM96 model = [] {
    CS::VR::CEGM96 m;
    m.GetParameters().SetString(CString("path"), CString(VELMORA_BUILD_DIR "/data"));
    m.GetParameters().SetString(CString("file"), CString("WW15MGH.DAC"));
    m.Interpolate(ML::CGeodeticPoint(0.0, 0.0, 0.0));
    return m;
  }();
  return model;
}

void BM_Velmora_EGM96(benchmark::State & state)
{
  CS::VR::CEGM96 const & model = Our();
  ML::CGeodeticPoint point(0.0, 0.0, 0.0);
  VelmoraBench::TimeOnCopies(state, Points(), [&](std::vector<XYZ> & pts) {
    for (XYZ & p : pts) {
      point.SetInternals(p.x, p.y, p.z);
      p.z = model.Interpolate(point);
    }
  });
}

void BM_Proj_Vgridshift(benchmark::State & state)
{
  PJ * const pj = ProjGeoid();
  VelmoraBench::TimeOnCopies(state, Points(), [pj](std::vector<XYZ> & pts) {
    std::size_t const stride = sizeof(XYZ);
    proj_trans_generic(pj, PJ_FWD, &pts[0].x, stride, kPoints, &pts[0].y, stride, kPoints, &pts[0].z, stride,
                       kPoints, nullptr, 0, 0);
  });
}

BENCHMARK(BM_Velmora_EGM96)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_Vgridshift)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  return VelmoraBench::RunWithRatios(argc, argv, {
    {"EGM96 geoid height, spline against bilinear", "BM_Velmora_EGM96", "BM_Proj_Vgridshift"},
  }, [] {
    Points();
    Our();
    ProjGeoid();
  });
}
