#pragma once
// The functions of latitude on an ellipsoid that the projection families and
// the numeric ellipsoid share, each once, under the name of its formula.
// Angles in radians; e the eccentricity, e2 its square. Lengths are per unit
// semi-major axis unless a function takes the axis.
//
// Sources: Snyder, "Map Projections: A Working Manual", USGS Professional
// Paper 1395 (1987), equation numbers as cited; EPSG Guidance Note 7-2,
// methods 9801 to 9803 and 9822, for the conic t and m.
#include <velmora/foundation/Constants.h>

#include <cmath>

namespace Velmora::CS::Kernel {

// m = cos phi / sqrt(1 - e2 sin^2 phi), the parallel's radius over a (Snyder 14-15).
inline double ConicM(double e2, double phi)
{
  double const s = std::sin(phi);
  return std::cos(phi) / std::sqrt(1.0 - e2 * s * s);
}

// t = tan(pi/4 - phi/2) / ((1 - e sin phi)/(1 + e sin phi))^(e/2) (Snyder 15-9, 7-10).
inline double ConformalT(double e, double phi)
{
  double const es = e * std::sin(phi);
  return std::tan(Constants::kQuarterPi - 0.5 * phi) / std::pow((1.0 - es) / (1.0 + es), 0.5 * e);
}

// e atanh(e x) = sum e^(2k+2) x^(2k+1)/(2k+1) (Karney, "Transverse Mercator
// with an accuracy of a few nanometers", J. Geodesy 85 (2011), eq. 7), for
// |x| <= 1, with the coefficients of one figure made once: the terms kept
// are those above 2^-60 of the first, so the sum is exact to rounding; a
// figure that would need more than kMaxTerms (e above 0.45) takes atanh.
// The coefficients live with the caller, kEAtanhETerms of them.
inline constexpr int kEAtanhETerms = 32;

// Fills c and returns how many terms to sum; 0 means by atanh.
inline int MakeEAtanhE(double e, double (&c)[kEAtanhETerms])
{
  double const e2 = e * e;
  double power = e2;
  for (int k = 0; k < kEAtanhETerms; ++k, power *= e2) {
    c[k] = power / (2.0 * k + 1.0);
    if (c[k] <= 0x1p-60 * c[0])
      return k + 1;
  }
  return 0;
}

// A figure's e atanh(e x), by its coefficients.
struct EAtanhE
{
  double e;
  double const * c;
  int terms;

  double operator()(double x) const
  {
    if (terms == 0)
      return e * std::atanh(e * x);
    // Two chains in x^4, the even and the odd terms, to halve the latency.
    double const x2 = x * x, x4 = x2 * x2;
    int const last = terms - 1;
    double even = c[last & ~1], odd = (last & 1) ? c[last] : 0.0;
    for (int k = (last & ~1) - 2; k >= 0; k -= 2) {
      even = even * x4 + c[k];
      odd = odd * x4 + c[k + 1];
    }
    return (even + odd * x2) * x;
  }
};

// Isometric latitude psi = -ln t = atanh(sin phi) - e atanh(e sin phi)
// (Snyder 3-7; Karney 2011, eq. 9), from the sine alone, with atanh(s) as
// ln((1 + s)/(1 - s))/2.
inline double IsometricLatitudeFromSine(EAtanhE const & eatanhe, double s)
{
  return 0.5 * std::log((1.0 + s) / (1.0 - s)) - eatanhe(s);
}

inline double IsometricLatitude(double e, double phi)
{
  return -std::log(std::fabs(ConformalT(e, phi)));
}

// Conformal latitude chi = pi/2 - 2 atan t (Snyder 3-1).
inline double ConformalLatitude(double e, double phi)
{
  return Constants::kHalfPi - 2.0 * std::atan(ConformalT(e, phi));
}

// exp(x), for |x| up to 2^-6 by Taylor's polynomial to x^8 (the rest is
// below 2^-72 relative), else by the library: the iteration below takes it
// of e atanh(e sin phi), which is under 0.007 on the Earth.
inline double ExpNearZero(double x)
{
  if (!(std::fabs(x) <= 0x1p-6))
    return std::exp(x);
  // Estrin's grouping: the same sum with shorter chains of dependence.
  double const x2 = x * x, x4 = x2 * x2;
  return (1.0 + x) + x2 * (1.0 / 2 + x * (1.0 / 6)) +
         x4 * ((1.0 / 24 + x * (1.0 / 120)) + x2 * (1.0 / 720 + x * (1.0 / 5040)) + x4 * (1.0 / 40320));
}

// The latitude whose t is given, by the fixed-point iteration
// phi = pi/2 - 2 atan(t ((1 - e sin phi)/(1 + e sin phi))^(e/2)) (Snyder 7-9),
// from the sphere's value; it stops when a step is at most `tolerance` or
// after `rounds` steps, keeping the last value either way. The iteration
// runs on u = tan(pi/4 - phi/2) (positive), where sin phi = (1 - u^2)/(1 + u^2),
// the power is exp(-e atanh(e sin phi)), and the step in phi is
// 2 atan((u' - u)/(1 + u' u)), taken as twice its argument: the two differ by
// less than 1e-22 radian at the tolerances used. Returns u.
inline double ConformalTangentFromT(EAtanhE const & eatanhe, double t, double tolerance, int rounds)
{
  double u = t;
  for (int i = 0; i < rounds; ++i) {
    double const u2 = u * u;
    double const next = t * ExpNearZero(-eatanhe((1.0 - u2) / (1.0 + u2)));
    bool const done = 2.0 * std::fabs(next - u) <= tolerance * (1.0 + next * u);
    u = next;
    if (done)
      break;
  }
  return u;
}

inline double LatitudeFromT(EAtanhE const & eatanhe, double t, double tolerance, int rounds)
{
  return Constants::kHalfPi - 2.0 * std::atan(ConformalTangentFromT(eatanhe, t, tolerance, rounds));
}

// Authalic q = (1 - e2)(sin phi/(1 - e2 sin^2 phi) - ln((1 - e sin phi)/(1 + e sin phi))/(2e))
// (Snyder 3-12), from the sine; 2 sin phi on a sphere.
inline double AuthalicQ(double e, double e2, double s)
{
  if (e == 0.0)
    return 2.0 * s;
  double const es = e * s;
  return (1.0 - e2) * (s / (1.0 - e2 * s * s) - std::log((1.0 - es) / (1.0 + es)) / (2.0 * e));
}

// The latitude whose q is given, by Snyder's Newton form (3-16) from `phi`;
// it stops when a step is at most `tolerance` or after `rounds` steps. On a
// sphere q = 2 sin phi.
inline double LatitudeFromAuthalicQ(double e, double e2, double q, double phi, double tolerance, int rounds)
{
  if (e == 0.0)
    return std::asin(q / 2.0);
  for (int i = 0; i < rounds; ++i) {
    double const s = std::sin(phi), c = std::cos(phi);
    double const w = 1.0 - e2 * s * s;
    double const es = e * s;
    double const step = w * w / (2.0 * c) *
                        (q / (1.0 - e2) - s / w + std::log((1.0 - es) / (1.0 + es)) / (2.0 * e));
    phi += step;
    if (std::fabs(step) <= tolerance)
      break;
  }
  return phi;
}

// Latitude from the authalic latitude beta by the series in e2 (Snyder 3-18).
struct AuthalicSeries
{
  double b2, b4, b6;

  static AuthalicSeries Make(double e2)
  {
    double const e4 = e2 * e2, e6 = e4 * e2;
    return {e2 / 3.0 + 31.0 * e4 / 180.0 + 517.0 * e6 / 5040.0, 23.0 * e4 / 360.0 + 251.0 * e6 / 3780.0,
            761.0 * e6 / 45360.0};
  }
  double Latitude(double beta) const
  {
    return beta + b2 * std::sin(2.0 * beta) + b4 * std::sin(4.0 * beta) + b6 * std::sin(6.0 * beta);
  }
};

// Latitude from the conformal latitude chi by the series in e2 (Snyder 3-5).
struct ConformalSeries
{
  double c2, c4, c6, c8;

  static ConformalSeries Make(double e2)
  {
    double const e4 = e2 * e2, e6 = e4 * e2, e8 = e6 * e2;
    return {e2 / 2.0 + 5.0 * e4 / 24.0 + e6 / 12.0 + 13.0 * e8 / 360.0,
            7.0 * e4 / 48.0 + 29.0 * e6 / 240.0 + 811.0 * e8 / 11520.0, 7.0 * e6 / 120.0 + 81.0 * e8 / 1120.0,
            4279.0 * e8 / 161280.0};
  }
  double Latitude(double chi) const
  {
    return chi + c2 * std::sin(2.0 * chi) + c4 * std::sin(4.0 * chi) + c6 * std::sin(6.0 * chi) +
           c8 * std::sin(8.0 * chi);
  }
};

// Meridian arc to the e^6 term (Snyder 3-21), per unit semi-major axis:
// c0 lat - c1 sin 2lat + c2 sin 4lat - c3 sin 6lat.
inline double MeridianArc(double c0, double c1, double c2, double c3, double lat)
{
  return c0 * lat - c1 * std::sin(2.0 * lat) + c2 * std::sin(4.0 * lat) - c3 * std::sin(6.0 * lat);
}

// The coefficients of that arc (Snyder 3-21), and
// the footpoint from the rectifying latitude mu by the series in
// e1 = (1 - b/a)/(1 + b/a) (Snyder 3-24, 3-26).
struct MeridianArcSeries
{
  double c0, c1, c2, c3;
  double e1, i1, i2, i3, i4;

  static MeridianArcSeries Make(double e2, double axisRatio)
  {
    double const e4 = e2 * e2, e6 = e4 * e2;
    double const e1 = (1.0 - axisRatio) / (1.0 + axisRatio);
    double const e1_2 = e1 * e1, e1_3 = e1_2 * e1, e1_4 = e1_3 * e1;
    return {1.0 - 0.25 * e2 - 3.0 * 0.015625 * e4 - 5.0 * 0.00390625 * e6,
            3.0 * e2 / 8.0 + 3.0 * e4 / 32.0 + 45.0 * e6 / 1024.0,
            15.0 * e4 / 256.0 + 45.0 * e6 / 1024.0,
            35.0 * e6 / 3072.0,
            e1,
            3.0 * e1 / 2.0 - 27.0 * e1_3 / 32.0,
            21.0 * e1_2 / 16.0 - 55.0 * e1_4 / 32.0,
            151.0 * e1_3 / 96.0,
            1097.0 * e1_4 / 512.0};
  }
  double Arc(double lat) const { return MeridianArc(c0, c1, c2, c3, lat); }
  double Footpoint(double mu) const
  {
    return mu + i1 * std::sin(2.0 * mu) + i2 * std::sin(4.0 * mu) + i3 * std::sin(6.0 * mu) +
           i4 * std::sin(8.0 * mu);
  }
};

// Helmert's meridian arc in n = (a - b)/(a + b), to n^5, in metres:
// M = A lat - B sin 2lat + C sin 4lat - D sin 6lat + E sin 8lat (Thomas,
// "Conformal projections in geodesy and cartography", 1952).
struct HelmertArc
{
  double A, B, C, D, E;

  static HelmertArc Make(double a, double b)
  {
    double const n = (a - b) / (a + b);
    double const n2 = n * n, n3 = n2 * n, n4 = n3 * n, n5 = n4 * n;
    return {a * (1.0 - n + 5.0 * (n2 - n3) / 4.0 + 81.0 * (n4 - n5) / 64.0),
            1.5 * a * (n - n2 + 7.0 * (n3 - n4) / 8.0 + 55.0 * n5 / 64.0),
            15.0 / 16.0 * a * (n2 - n3 + 3.0 * (n4 - n5) / 4.0), 35.0 / 48.0 * a * (n3 - n4 + 11.0 * n5 / 16.0),
            315.0 / 512.0 * a * (n4 - n5)};
  }
  // With the sine and cosine of lat at hand, the multiple angles come from
  // the double-angle identities.
  double Arc(double lat, double s, double c) const
  {
    double const sin2 = 2.0 * s * c, cos2 = (c - s) * (c + s);
    double const sin4 = 2.0 * sin2 * cos2, cos4 = 1.0 - 2.0 * sin2 * sin2;
    double const sin6 = sin4 * cos2 + cos4 * sin2, sin8 = 2.0 * sin4 * cos4;
    return A * lat - B * sin2 + C * sin4 - D * sin6 + E * sin8;
  }
};

// Azimuthal family: the conformal t from the sine, and its inverse by Newton.

// t = tan(pi/4 - phi/2) ((1 + e sin phi)/(1 - e sin phi))^(e/2) (Snyder 15-9),
// from the sine alone as sqrt((1 - s)/(1 + s)) exp(e atanh(e s)).
inline double ConformalTFromSine(EAtanhE const & eatanhe, double s)
{
  return std::sqrt((1.0 - s) / (1.0 + s)) * ExpNearZero(eatanhe(s));
}

// The latitude whose t is given, as u = tan(pi/4 - phi/2), by Newton's method
// on g(u) = u - t exp(-e atanh(e sin phi)), sin phi = (1 - u^2)/(1 + u^2):
// the same root as the fixed point of Snyder 7-9 (the isometric latitude
// psi = -ln t solved for phi, as EPSG Guidance Note 7-2 does by Newton for
// method 9809), converging quadratically. g'(u) = 1 - 4 u w f'(s)/(1 + u^2)^2,
// w = t exp(-f(s)), f'(s) = e2/(1 - e2 s^2). Stops when a step in phi
// (twice the step in u over 1 + u^2, to first order) is at most `tolerance`,
// or after `rounds`.
inline double ConformalTangentByNewton(EAtanhE const & eatanhe, double t, double tolerance, int rounds)
{
  double const e2 = eatanhe.e * eatanhe.e;
  double u = t;
  for (int i = 0; i < rounds; ++i) {
    double const u2 = u * u, d = 1.0 + u2;
    double const s = (1.0 - u2) / d;
    double const w = t * ExpNearZero(-eatanhe(s));
    double const slope = 1.0 - 4.0 * u * w * e2 / ((1.0 - e2 * s * s) * d * d);
    double const step = (u - w) / slope;
    u -= step;
    if (2.0 * std::fabs(step) <= tolerance * d)
      break;
  }
  return u;
}

// Isometric latitude from the sine and cosine, psi = ln((1 + |s|)/c) - e atanh(e |s|)
// with the sign of s (Snyder 7-7: atanh(sin phi) = ln(tan(pi/4 + phi/2))): finite
// wherever the cosine is not 0, so within 1e-7 degree of a pole as well, where
// 1 - sin phi rounds to 0.
inline double IsometricLatitudeFromSineCosine(EAtanhE const & eatanhe, double s, double c)
{
  double const as = std::fabs(s);
  return std::copysign(std::log((1.0 + as) / c) - eatanhe(as), s);
}

} // namespace Velmora::CS::Kernel
