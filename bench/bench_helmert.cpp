// WGS 84 to ED50 by a seven-parameter shift on one million points: our
// CCoordTransform pair path between two geodetic systems with a
// CSevenParameter shift, beside PROJ's proj_trans_generic on the same exact
// position-vector Helmert between the same ellipsoids, in the same run.
#include <velmora/transforms/CoordTransform.h>
#include <velmora/transforms/datumshifts/ParametricShifts.h>

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
constexpr double kArcSecond = 1.0 / 3600.0;

// An ED50 set for the direction WGS 84 to ED50, position-vector rotations.
constexpr double kDx = 89.5, kDy = 93.8, kDz = 123.1;
constexpr double kRx = 0.0, kRy = 0.0, kRz = 0.156; // arc seconds
constexpr double kPpm = 1.2;

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
    std::uniform_real_distribution<double> lon(-10, 30), lat(35, 70);
    for (int i = 0; i < kPoints; ++i)
      p.push_back({lon(rng), lat(rng)});
    return p;
  }();
  return points;
}

PJ * ProjHelmert()
{
  static PJ * const pj = [] {
    char text[1024];
    std::snprintf(text, sizeof text,
                  "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
                  "+step +proj=cart +ellps=WGS84 "
                  "+step +proj=helmert +x=%.17g +y=%.17g +z=%.17g +rx=%.17g +ry=%.17g +rz=%.17g +s=%.17g "
                  "+convention=position_vector +exact "
                  "+step +inv +proj=cart +ellps=intl "
                  "+step +proj=unitconvert +xy_in=rad +xy_out=deg",
                  kDx, kDy, kDz, kRx, kRy, kRz, kPpm);
    PJ * p = proj_create(PJ_DEFAULT_CTX, text);
    if (!p) {
      std::fprintf(stderr, "PROJ could not make the Helmert pipeline\n");
      std::exit(1);
    }
    return p;
  }();
  return pj;
}

CS::CHorizontalDatum Datum(double a, double invf)
{
  CS::CHorizontalDatum datum;
  datum.GetEllipsoid().GetSemiMajor().SetValue(a);
  datum.GetEllipsoid().SetInvFlattening(invf);
  return datum;
}

struct Systems
{
  CS::CGeodeticCoordSys wgs84;
  CS::CGeodeticCoordSys ed50;
  CT::CCoordTransform transform;

  Systems()
  {
    wgs84.SetHorizontalDatum(Datum(6378137.0, 298.257223563));
    ed50.SetHorizontalDatum(Datum(6378388.0, 297.0));
    transform = CT::CCoordTransform(&wgs84, &ed50);
    CT::DS::CSevenParameter shift;
    shift.SetSrcDatum(wgs84.GetHorizontalDatum());
    shift.SetDestDatum(ed50.GetHorizontalDatum());
    CParameterCollection & p = shift.GetParameters();
    p.SetAllItems();
    p.SetItemInternal(CString("dx"), kDx);
    p.SetItemInternal(CString("dy"), kDy);
    p.SetItemInternal(CString("dz"), kDz);
    p.SetItemInternal(CString("rx"), kRx * kArcSecond);
    p.SetItemInternal(CString("ry"), kRy * kArcSecond);
    p.SetItemInternal(CString("rz"), kRz * kArcSecond);
    p.SetDouble(CString("k"), kPpm);
    transform.GetDatumShifts().AddBack(shift);
  }
};

Systems & Our()
{
  static Systems systems;
  return systems;
}

void BM_Velmora_SevenParameter(benchmark::State & state)
{
  CT::CCoordTransform const & transform = Our().transform;
  VelmoraBench::TimeOnCopies(state, Points(), [&transform](std::vector<XY> & pts) {
    for (XY & p : pts)
      transform.ConvertAhead(p.x, p.y);
  });
}

void BM_Proj_Helmert(benchmark::State & state)
{
  PJ * const pj = ProjHelmert();
  VelmoraBench::TimeOnCopies(state, Points(), [pj](std::vector<XY> & pts) {
    std::size_t const stride = sizeof(XY);
    proj_trans_generic(pj, PJ_FWD, &pts[0].x, stride, kPoints, &pts[0].y, stride, kPoints, nullptr, 0, 0, nullptr,
                       0, 0);
  });
}

BENCHMARK(BM_Velmora_SevenParameter)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Proj_Helmert)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  return VelmoraBench::RunWithRatios(argc, argv, {
    {"WGS 84 to ED50, seven parameters, pair path", "BM_Velmora_SevenParameter", "BM_Proj_Helmert"},
  }, [] {
    Points();
    Our();
    ProjHelmert();
  });
}
