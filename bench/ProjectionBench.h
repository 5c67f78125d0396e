#pragma once
// What the projection benchmarks share: the point pairs that both libraries
// convert in place, PROJ's array conversion, and a datum on a figure.
#include <velmora/refsys/HorizontalDatum.h>

#include <proj.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

namespace VelmoraBench {

constexpr double kDeg = 0.017453292519943295;

struct XY
{
  double x, y;
};

// `count` points drawn evenly from a box of longitudes and latitudes, with a fixed seed.
inline std::vector<XY> PointsIn(int count, double west, double east, double south, double north, unsigned seed)
{
  std::vector<XY> points;
  points.reserve(static_cast<std::size_t>(count));
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> lon(west, east), lat(south, north);
  for (int i = 0; i < count; ++i)
    points.push_back({lon(rng), lat(rng)});
  return points;
}

// A projection of PROJ from its definition; the program ends if PROJ refuses it.
inline PJ * ProjProjection(char const * definition)
{
  PJ * const pj = proj_create(PJ_DEFAULT_CTX, definition);
  if (!pj) {
    std::fprintf(stderr, "proj_create failed: %s\n", definition);
    std::exit(1);
  }
  return pj;
}

// PROJ's conversion of the points in place, radians on the geodetic side.
inline void ProjTrans(PJ * pj, PJ_DIRECTION dir, std::vector<XY> & pts)
{
  std::size_t const stride = sizeof(XY);
  std::size_t const n = pts.size();
  proj_trans_generic(pj, dir, &pts[0].x, stride, n, &pts[0].y, stride, n, nullptr, 0, 0, nullptr, 0, 0);
}

// A datum that lives as long as the program, on the figure (a, 1/f); 1/f of 0 is the sphere of radius a.
inline Velmora::CS::CHorizontalDatum * LastingDatum(double a, double invF)
{
  Velmora::CS::CEllipsoid e;
  e.GetSemiMajor().SetValue(a);
  if (invF > 0.0)
    e.SetInvFlattening(invF);
  else
    e.GetSemiMinor().SetValue(a);
  auto * d = new Velmora::CS::CHorizontalDatum();
  d->SetEllipsoid(e);
  return d;
}

} // namespace VelmoraBench
