#include <velmora/projections/TransverseMercator.h>

#include <velmora/foundation/Constants.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/projections/MilitaryGrid_p.h>
#include <velmora/projections/ParameterNames_p.h>
#include <velmora/projections/UTMGrid_p.h>
#include <velmora/refsys/EllipsoidKernel_p.h>

#include <cmath>
#include <utility>

namespace Velmora::CS::PJ {

using Constants::kHalfPi;
using Constants::kPi;
using Constants::kRadiansPerDegree;
using Constants::kTwoPi;
using EX::CVelmoraException;
using namespace Parameter;

namespace {

// How many parameters each class reads.
constexpr long kTransverseParameterCount = 5;
constexpr long kExtendedParameterCount = 7;

// Below this longitude difference (radians) a point is on the central meridian.
constexpr double kMeridianTolerance = 2e-10;
// Below this easting offset (metres) the inverse puts a point on the central meridian.
constexpr double kEastingTolerance = 0.0001;
// Newton steps towards the footpoint latitude, at most.
constexpr int kFootpointIterations = 5;
// Below this footpoint step (radians) sin and cos of the step are exact to
// double precision from their series to the third and second order.
constexpr double kSmallStep = 1.0e-5;
// The raised ellipsoid's forward series leaves out the eighth-order northing term.
constexpr double kExtendedEighthOrderWeight = 0.0;
// Beyond this magnitude (radians) a Snyder inverse result is off the globe.
constexpr double kSnyderReductionLimit = 1.0e4;

// UTM.
constexpr double kUtmScaleFactor = 0.9996;
constexpr double kUtmFalseEasting = 500000.0;
constexpr double kUtmSouthFalseNorthing = 10000000.0;
constexpr double kUtmNorthLimit = 84.0;
constexpr double kUtmSouthLimit = -80.0;
constexpr long kUtmZoneWidth = 6;
constexpr long kUtmZoneOffset = 183; // zone 1 is centred on 177 W
constexpr long kUtmFirstZone = 1;
constexpr long kUtmLastZone = 60;
// Values of the three UTM parameters where they are made rather than read.
constexpr long kDefaultIsNorth = 1;
constexpr long kDefaultZone = 19;
constexpr long kDefaultAutoset = 1;

// Factorial reciprocals of the series, multiplied rather than divided by.
constexpr double kInv6 = 1.0 / 6.0;
constexpr double kInv24 = 1.0 / 24.0;
constexpr double kInv120 = 1.0 / 120.0;
constexpr double kInv720 = 1.0 / 720.0;
constexpr double kInv5040 = 1.0 / 5040.0;
constexpr double kInv40320 = 1.0 / 40320.0;

CString Name(char const * name) { return CString(name); }

// Helmert's arc from the members A to E.
inline double MeridianArc(double A, double B, double C, double D, double E, double lat, double s, double c)
{
  return Kernel::HelmertArc{A, B, C, D, E}.Arc(lat, s, c);
}

// Longitude difference from the central meridian, within one turn.
inline double MeridianOffset(double lon, double cm)
{
  if (lon > kPi)
    lon -= kTwoPi;
  double d = lon - cm;
  if (d > kPi)
    d -= kTwoPi;
  else if (d < -kPi)
    d += kTwoPi;
  if (std::fabs(d) < kMeridianTolerance)
    d = 0.0;
  return d;
}

// Only a longitude below -pi or above 2 pi is brought back; one between pi
// and 2 pi stays, as the inverse has always returned it.
inline double ReduceInverseLongitude(double lon)
{
  if (lon < -kPi || lon > kTwoPi) {
    lon = std::fmod(lon, kTwoPi);
    if (lon < -kPi)
      lon += kTwoPi;
    else if (lon > kTwoPi)
      lon -= kTwoPi;
  }
  return lon;
}

// Whole turns off an angle until it lies in [-pi, pi]; false for an angle
// too large to be on the globe (or not finite).
bool ReduceByTurns(double & angle)
{
  if (!(std::fabs(angle) < kSnyderReductionLimit))
    return false;
  while (angle > kPi)
    angle -= kTwoPi;
  while (angle < -kPi)
    angle += kTwoPi;
  return true;
}

} // namespace

// CTransverseMercator
//
// Redfearn's series (Thomas 1952, "Conformal projections in geodesy and
// cartography") to the eighth order in the longitude difference, with the
// footpoint latitude found by Newton's method on Helmert's meridian arc.

CTransverseMercator::CTransverseMercator(CHorizontalDatum * datum) : TProjection(datum) {}

CTransverseMercator::CTransverseMercator(CString const & typeName, CHorizontalDatum * datum)
  : TProjection(typeName, datum)
{
}

void CTransverseMercator::OnChange(unsigned short const *)
{
  if (ReadParameters())
    ApplyParameters();
}

bool CTransverseMercator::ReadParameters()
{
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  if (!p.AllItemsSet())
    return false;
  if (p.Count() >= kTransverseParameterCount) {
    m_cm = Internal(p, kCentralMeridian) * kRadiansPerDegree;
    m_lat0 = Internal(p, kLatitudeOfOrigin) * kRadiansPerDegree;
    m_k0 = p.GetDouble(Name(kScaleFactor));
    m_fe = Internal(p, kFalseEasting);
    m_fn = Internal(p, kFalseNorthing);
    if (m_cm > kPi)
      m_cm -= kTwoPi;
  }
  return true;
}

void CTransverseMercator::ApplyParameters()
{
  m_ellipsoid = GetInnerEllipsoid();
  m_south = IsSouthOriented();
  m_ready = m_ellipsoid != nullptr;
  if (!m_ready)
    return;
  m_a = m_ellipsoid->GetSemiMajor();
  m_b = m_ellipsoid->GetSemiMinor();
  m_e = m_ellipsoid->GetEccentricity();
  m_e2 = m_ellipsoid->GetEccentricitySquared();
  double const ratio = m_b / m_a;
  m_ep2 = 1.0 / (ratio * ratio) - 1.0;
  auto const arc = Kernel::HelmertArc::Make(m_a, m_b);
  m_A = arc.A;
  m_B = arc.B;
  m_C = arc.C;
  m_D = arc.D;
  m_E = arc.E;
  m_M0 = Arc(m_lat0, std::sin(m_lat0), std::cos(m_lat0));
  m_rhoNumerator = m_b * m_b / m_a;
  m_rhoInverse = 1.0 / m_rhoNumerator;
  m_k0Inverse = 1.0 / m_k0;
}

double CTransverseMercator::Arc(double lat, double s, double c) const
{
  return MeridianArc(m_A, m_B, m_C, m_D, m_E, lat, s, c);
}

bool CTransverseMercator::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet())
    return false;
  return Forward(x, y);
}

bool CTransverseMercator::Forward(double & x, double & y) const
{
  if (!m_ready)
    return false;
  CenterLongitude(x, m_cm / kRadiansPerDegree);
  double const lat = y * kRadiansPerDegree;
  double const d = MeridianOffset(x * kRadiansPerDegree, m_cm);
  double const s = std::sin(lat), c = std::cos(lat);
  double const c2 = c * c;
  double const t2 = s * s / c2;
  double const t4 = t2 * t2, t6 = t4 * t2;
  double const h = m_ep2 * c2, h2 = h * h, h3 = h2 * h, h4 = h3 * h;
  double const N = m_a / std::sqrt(1.0 - m_e2 * s * s);

  double const P4 = 5.0 - t2 + 9.0 * h + 4.0 * h2;
  double const P6 = 61.0 - 58.0 * t2 + t4 + 270.0 * h - 330.0 * t2 * h + 445.0 * h2 + 324.0 * h3 - 680.0 * t2 * h2 +
                    88.0 * h4 - 600.0 * t2 * h3 - 192.0 * t2 * h4;
  double const P8 = 1385.0 - 3111.0 * t2 + 543.0 * t4 - t6;
  double const Q3 = 1.0 - t2 + h;
  double const Q5 = 5.0 - 18.0 * t2 + t4 + 14.0 * h - 58.0 * t2 * h + 13.0 * h2 + 4.0 * h3 - 64.0 * t2 * h2 -
                    24.0 * t2 * h3;
  double const Q7 = 61.0 - 479.0 * t2 + 179.0 * t4 - t6;

  // In powers of L = c^2 d^2: each order carries two more of c and of d.
  double const d2 = d * d, L = c2 * d2;
  double const kN = m_k0 * N;
  double const northing =
    m_k0 * (MeridianArc(m_A, m_B, m_C, m_D, m_E, lat, s, c) - m_M0) +
    kN * s * c * d2 * (0.5 + L * (P4 * kInv24 + L * (P6 * kInv720 + L * (P8 * kInv40320))));
  double const easting = kN * c * d * (1.0 + L * (Q3 * kInv6 + L * (Q5 * kInv120 + L * (Q7 * kInv5040))));
  if (m_south) {
    x = m_fe - easting;
    y = m_fn - northing;
  } else {
    x = m_fe + easting;
    y = m_fn + northing;
  }
  return true;
}

bool CTransverseMercator::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet())
    return false;
  return Inverse(x, y);
}

bool CTransverseMercator::Inverse(double & x, double & y) const
{
  if (!m_ready)
    return false;
  double east, north;
  if (m_south) {
    east = m_fe - x;
    north = m_fn - y;
  } else {
    east = x - m_fe;
    north = y - m_fn;
  }
  double const m = north * m_k0Inverse + m_M0;

  // Footpoint: Newton on M(lat) = m, the meridian radius being dM/dlat.
  // After the first step the corrections are tiny, and the sine and cosine
  // of the next latitude follow from the last by the angle-sum rule, with
  // the step's own sine and cosine to full precision by their series.
  double lat = m / m_rhoNumerator;
  double s = std::sin(lat), c = std::cos(lat), w;
  for (int i = 0;; ++i) {
    w = 1.0 - m_e2 * s * s;
    if (i == kFootpointIterations)
      break;
    double const arc = MeridianArc(m_A, m_B, m_C, m_D, m_E, lat, s, c);
    double const step = (m - arc) * (w * std::sqrt(w)) * m_rhoInverse;
    double const next = lat + step;
    if (next == lat)
      break;
    if (std::fabs(step) < kSmallStep) {
      double const step2 = step * step;
      double const sinStep = step * (1.0 - step2 / 6.0), cosStep = 1.0 - step2 / 2.0;
      double const sNext = s * cosStep + c * sinStep;
      c = c * cosStep - s * sinStep;
      s = sNext;
    } else {
      s = std::sin(next);
      c = std::cos(next);
    }
    lat = next;
  }

  double const invC = 1.0 / c;
  double const t = s * invC, t2 = t * t, t4 = t2 * t2, t6 = t4 * t2;
  double const h = m_ep2 * c * c, h2 = h * h, h3 = h2 * h, h4 = h3 * h;
  double const invN = std::sqrt(w) / m_a;
  double const invR = w / m_b; // R = b / w, and R^2 = rho N
  if (std::fabs(east) < kEastingTolerance)
    east = 0.0;

  double const U4 = 5.0 + 3.0 * t2 + h - 4.0 * h2 - 9.0 * t2 * h;
  double const U6 = 61.0 + 90.0 * t2 + 46.0 * h + 45.0 * t4 - 252.0 * t2 * h - 3.0 * h2 + 100.0 * h3 -
                    66.0 * t2 * h2 - 90.0 * t4 * h + 88.0 * h4 + 225.0 * t4 * h2 + 84.0 * t2 * h3 -
                    192.0 * t2 * h4;
  double const U8 = 1385.0 + 3633.0 * t2 + 4095.0 * t4 + 1575.0 * t6;
  double const V3 = 1.0 + 2.0 * t2 + h;
  double const V5 = 5.0 + 28.0 * t2 + 6.0 * h - 3.0 * h2 + 8.0 * t2 * h + 24.0 * t4 - 4.0 * h3 + 4.0 * t2 * h2 +
                    24.0 * t2 * h3;
  double const V7 = 61.0 + 662.0 * t2 + 1320.0 * t4 + 720.0 * t6;

  // In powers of Q = (x / (k0 N))^2.
  double const X = east * m_k0Inverse;
  double const XN = X * invN, Q = XN * XN, XR = X * invR;
  double const latitude =
    lat - t * XR * XR * (0.5 - Q * (U4 * kInv24 - Q * (U6 * kInv720 - Q * (U8 * kInv40320))));
  double const longitude =
    m_cm + XN * invC * (1.0 - Q * (V3 * kInv6 - Q * (V5 * kInv120 - Q * (V7 * kInv5040))));
  x = ReduceInverseLongitude(longitude) / kRadiansPerDegree;
  y = latitude / kRadiansPerDegree;
  return true;
}

// CTransverseMercatorExtended
//
// The same series on an ellipsoid raised by the average elevation and geoid
// height, kept at the shorter forms that this projection has always used.

CTransverseMercatorExtended::CTransverseMercatorExtended(CHorizontalDatum * datum) : TProjection(datum) {}

void CTransverseMercatorExtended::OnChange(unsigned short const *)
{
  if (!ParametersReady(kExtendedParameterCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  m_cm = Internal(p, kCentralMeridian) * kRadiansPerDegree;
  m_lat0 = Internal(p, kLatitudeOfOrigin) * kRadiansPerDegree;
  m_k0 = p.GetDouble(Name(kScaleFactor));
  m_fe = Internal(p, kFalseEasting);
  m_fn = Internal(p, kFalseNorthing);
  double const E = Internal(p, kAverageElevation);
  double const G = Internal(p, kAverageGeoidHeight);

  m_ellipsoid = GetInnerEllipsoid();
  m_ready = m_ellipsoid != nullptr;
  if (!m_ready)
    return;
  m_a = m_ellipsoid->GetSemiMajor();
  m_b = m_ellipsoid->GetSemiMinor();
  m_e2 = m_ellipsoid->GetEccentricitySquared();
  m_raisedA = m_a + E + G;
  if (!(std::fabs(G) > 0.0)) {
    // Same shape, and the false values grow with the ground's radius.
    m_raisedB = m_raisedA * std::sqrt(1.0 - m_e2);
    double const s0 = std::sin(m_lat0);
    double const Rm = m_k0 * m_raisedA / std::sqrt(1.0 - m_e2 * s0 * s0);
    double const factor = (E + Rm) / Rm;
    m_fe *= factor;
    m_fn *= factor;
  } else {
    m_raisedB = m_b + E + G;
    double const ratio = m_raisedB / m_raisedA;
    m_e2 = 1.0 - ratio * ratio;
  }
  m_e = std::sqrt(m_e2);
  m_flattening = std::fabs((m_raisedA - m_raisedB) / m_raisedA);
  m_ep2 = 1.0 / (1.0 - m_e2) - 1.0;
  auto const arc = Kernel::HelmertArc::Make(m_raisedA, m_raisedB);
  m_A = arc.A;
  m_B = arc.B;
  m_C = arc.C;
  m_D = arc.D;
  m_E = arc.E;
  m_M0 = Arc(m_lat0, std::sin(m_lat0), std::cos(m_lat0));
  if (m_cm > kPi)
    m_cm -= kTwoPi;
}

double CTransverseMercatorExtended::Arc(double lat, double s, double c) const
{
  return MeridianArc(m_A, m_B, m_C, m_D, m_E, lat, s, c);
}

bool CTransverseMercatorExtended::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_cm / kRadiansPerDegree);
  double const lat = y * kRadiansPerDegree;
  double const d = MeridianOffset(x * kRadiansPerDegree, m_cm);
  double const s = std::sin(lat), c = std::cos(lat);
  double const c2 = c * c;
  double const t2 = s * s / c2, t4 = t2 * t2, t6 = t4 * t2;
  double const h = m_ep2 * c2, h2 = h * h;
  double const N = m_raisedA / std::sqrt(1.0 - m_e2 * s * s);

  double const P4 = 5.0 - t2 + 9.0 * h + 4.0 * h2;
  double const P6 = 61.0 - 58.0 * t2 + t4 + 270.0 * h - 330.0 * m_ep2; // e'2 itself, not t2 h
  double const P8 = 1385.0 - 3111.0 * t2 + 543.0 * t4 - t6;
  double const Q3 = 1.0 - t2 + h;
  double const Q5 = 5.0 - 18.0 * t2 + t4 + 14.0 * h - 58.0 * t2 * h;
  double const Q7 = 61.0 - 479.0 * t2 + 179.0 * t4 - t6;

  double const d2 = d * d, L = c2 * d2;
  double const kN = m_k0 * N;
  double const northing = m_k0 * (Arc(lat, s, c) - m_M0) +
                          kN * s * c * d2 * (0.5 + L * (P4 / 24.0 + L * (P6 / 720.0))) +
                          kExtendedEighthOrderWeight * kN * s * c * d2 * L * L * L * P8 / 40320.0;
  double const easting = kN * c * d * (1.0 + L * (Q3 / 6.0 + L * (Q5 / 120.0 + L * (Q7 / 5040.0))));
  x = m_fe + easting;
  y = m_fn + northing;
  return true;
}

bool CTransverseMercatorExtended::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double east = x - m_fe;
  double const m = (y - m_fn) / m_k0 + m_M0;

  double const rhoNumerator = m_raisedB * m_raisedB / m_raisedA;
  double lat = m / rhoNumerator;
  for (int i = 0; i < kFootpointIterations; ++i) {
    double const s = std::sin(lat), c = std::cos(lat);
    double const w = 1.0 - m_e2 * s * s;
    lat += (m - Arc(lat, s, c)) * (w * std::sqrt(w)) / rhoNumerator;
  }
  double const s = std::sin(lat), c = std::cos(lat);
  double const w = 1.0 - m_e2 * s * s;
  double const t = s / c, t2 = t * t, t4 = t2 * t2, t6 = t4 * t2;
  double const h = m_ep2 * c * c, h2 = h * h;
  double const N = m_raisedA / std::sqrt(w);
  double const R = m_raisedB / w;
  if (std::fabs(east) < kEastingTolerance)
    east = 0.0;

  // The terms that invert the shorter forward series: the same orders, the
  // same h powers, and the sixth-order latitude term matched to the forward
  // P6, whose -330 e'2 exceeds -330 t2 h by -330 h.
  double const U4 = 5.0 + 3.0 * t2 + h - 4.0 * h2 - 9.0 * t2 * h;
  double const U6 = 61.0 + 90.0 * t2 + 46.0 * h + 45.0 * t4 - 252.0 * t2 * h - 330.0 * h * c * c;
  double const V3 = 1.0 + 2.0 * t2 + h;
  double const V5 = 5.0 + 28.0 * t2 + 6.0 * h + 8.0 * t2 * h + 24.0 * t4;
  double const V7 = 61.0 + 662.0 * t2 + 1320.0 * t4 + 720.0 * t6;

  double const X = east / m_k0;
  double const Q = (X / N) * (X / N);
  double const latitude = lat - t * X * X / (R * R) * (0.5 - Q * (U4 / 24.0 - Q * (U6 / 720.0)));
  double const longitude = m_cm + X / (c * N) * (1.0 - Q * (V3 / 6.0 - Q * (V5 / 120.0 - Q * (V7 / 5040.0))));
  x = ReduceInverseLongitude(longitude) / kRadiansPerDegree;
  y = latitude / kRadiansPerDegree;
  return true;
}

// CTransverseMercatorSnyder
//
// Snyder, Map Projections: A Working Manual (USGS PP 1395), 8-9 to 8-25,
// with the meridian arc 3-21 and footpoint 3-26. Two coefficients of the
// inverse are kept as this projection has always had them: e1^3 in the
// sin 4mu term and the meridian radius R1 to the power one.

CTransverseMercatorSnyder::CTransverseMercatorSnyder(CHorizontalDatum * datum) : TProjection(datum) {}

void CTransverseMercatorSnyder::OnChange(unsigned short const *)
{
  if (!ParametersReady(kTransverseParameterCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  m_cm = Internal(p, kCentralMeridian) * kRadiansPerDegree;
  m_lat0 = Internal(p, kLatitudeOfOrigin) * kRadiansPerDegree;
  m_k0 = p.GetDouble(Name(kScaleFactor));
  m_fe = Internal(p, kFalseEasting);
  m_fn = Internal(p, kFalseNorthing);
  BEllipsoid const * ellipsoid = GetInnerEllipsoid();
  m_ready = ellipsoid != nullptr;
  if (!m_ready)
    return;
  m_a = ellipsoid->GetSemiMajor();
  m_e2 = ellipsoid->GetEccentricitySquared();
  m_ep2 = m_e2 / (1.0 - m_e2);
  if (m_cm > kPi)
    m_cm -= kTwoPi;
  auto const series = Kernel::MeridianArcSeries::Make(m_e2, std::sqrt(1.0 - m_e2));
  m_c0 = series.c0;
  m_c1 = series.c1;
  m_c2 = series.c2;
  m_c3 = series.c3;
  m_M0 = m_a * series.Arc(m_lat0);
  m_e1 = series.e1;
}

bool CTransverseMercatorSnyder::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_cm / kRadiansPerDegree);
  double const lat = y * kRadiansPerDegree;
  double const M = m_a * Kernel::MeridianArc(m_c0, m_c1, m_c2, m_c3, lat);
  if (std::fabs(lat) == kPi) {
    x = 0.0;
    y = m_k0 * (M - m_M0);
    m_k = m_k0;
    return true;
  }
  double const d = MeridianOffset(x * kRadiansPerDegree, m_cm);
  double const s = std::sin(lat), c = std::cos(lat), tn = s / c;
  double const T = tn * tn, C = m_ep2 * c * c, A = d * c;
  double const N = m_a / std::sqrt(1.0 - m_e2 * s * s);
  double const A2 = A * A, A3 = A2 * A, A4 = A3 * A, A5 = A4 * A, A6 = A5 * A;

  x = m_k0 * N * (A + (1.0 - T + C) * A3 / 6.0 + (5.0 - 18.0 * T + T * T + 72.0 * C - 58.0 * m_ep2) * A5 / 120.0) +
      m_fe;
  y = m_k0 * (M - m_M0 +
              N * tn *
                (A2 / 2.0 + (5.0 - T + 9.0 * C + 4.0 * C * C) * A4 / 24.0 +
                 (61.0 - 58.0 * T + T * T + 600.0 * C - 330.0 * m_ep2) * A6 / 720.0)) +
      m_fn;
  m_k = m_k0 * (1.0 + (1.0 + C) * A2 / 2.0 + (5.0 - 4.0 * T + 42.0 * C + 13.0 * C * C - 28.0 * m_ep2) * A4 / 24.0 +
                (61.0 - 148.0 * T + 16.0 * T * T) * A6 / 720.0);
  return true;
}

bool CTransverseMercatorSnyder::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const east = x - m_fe;
  double const M = (y - m_fn) / m_k0 + m_M0;
  double const mu = M / (m_a * m_c0);
  double const e1 = m_e1, e1_2 = e1 * e1, e1_3 = e1_2 * e1, e1_4 = e1_3 * e1;
  double const lat1 = mu + (3.0 * e1 / 2.0 - 27.0 * e1_3 / 32.0) * std::sin(2.0 * mu) +
                      (21.0 * e1_3 / 16.0 - 55.0 * e1_4 / 32.0) * std::sin(4.0 * mu) +
                      (151.0 * e1_3 / 96.0) * std::sin(6.0 * mu) + (1097.0 * e1_4 / 512.0) * std::sin(8.0 * mu);

  double const s1 = std::sin(lat1), c1 = std::cos(lat1), tn1 = s1 / c1;
  double const w = 1.0 - m_e2 * s1 * s1;
  double const C1 = m_ep2 * c1 * c1, T1 = tn1 * tn1;
  double const N1 = m_a / std::sqrt(w);
  double const R1 = m_a * (1.0 - m_e2) / w;
  double const D = east / (N1 * m_k0);
  double const D2 = D * D, D3 = D2 * D, D4 = D3 * D, D5 = D4 * D, D6 = D5 * D;

  double lat = lat1 - (N1 * tn1 / R1) *
                        (D2 / 2.0 - (5.0 + 3.0 * T1 + 10.0 * C1 - 4.0 * C1 * C1 - 9.0 * m_ep2) * D4 / 24.0 +
                         (61.0 + 90.0 * T1 + 298.0 * C1 + 45.0 * T1 * T1 - 252.0 * m_ep2 - 3.0 * C1 * C1) * D6 / 720.0);
  double lon = m_cm + (D - (1.0 + 2.0 * T1 + C1) * D3 / 6.0 +
                       (5.0 - 2.0 * C1 + 28.0 * T1 - 3.0 * C1 * C1 + 8.0 * m_ep2 + 24.0 * T1 * T1) * D5 / 120.0) /
                        c1;

  if (!ReduceByTurns(lat) || !ReduceByTurns(lon))
    return false;
  // Over a pole: back on the near side, half a turn round.
  if (lat > kHalfPi) {
    lat = kPi - lat;
    lon += kPi;
    if (lon > kPi)
      lon -= kTwoPi;
  } else if (lat < -kHalfPi) {
    lat = -(lat + kPi);
    lon += kPi;
    if (lon > kPi)
      lon -= kTwoPi;
  }
  if (std::fabs(lat) > kHalfPi || std::fabs(lon) > kTwoPi)
    return false;
  x = lon / kRadiansPerDegree;
  y = lat / kRadiansPerDegree;
  return true;
}

bool CTransverseMercatorSnyder::ScaleFactorAtPoint(ML::CProjectedPoint const & point, double & scale) const
{
  double x = point.GetEast().GetInternal();
  double y = point.GetNorth().GetInternal();
  if (!FromPlane(x, y) || !ToPlane(x, y))
    return false;
  scale = m_k;
  return true;
}

// UTM grid lettering

namespace UTMGrid {

void Limits(char letter, long zone, long & north, long & south, long & east, long & west)
{
  long const cm = zone * kUtmZoneWidth - kUtmZoneOffset;
  // Bands of 8 degrees from C at 80 S; I and O are not used.
  long const code = static_cast<unsigned char>(letter);
  south = 8 * code - 616;
  if (letter > 'H')
    south = 8 * code - 624;
  if (letter > 'N')
    south = 8 * code - 632;
  north = letter == 'X' ? south + 12 : south + 8;
  east = cm + 3;
  west = cm - 3;
  // South-west Norway and Svalbard.
  if (letter == 'V' && zone == 31)
    east = 3;
  else if (letter == 'V' && zone == 32)
    west = 3;
  else if (letter == 'X' && zone == 31)
    east = 9;
  else if (letter == 'X' && zone == 33) {
    west = 9;
    east = 21;
  } else if (letter == 'X' && zone == 35) {
    west = 21;
    east = 33;
  } else if (letter == 'X' && zone == 37)
    west = 33;
}

bool Lettering(bool usng, long zone, int ellipsoidCode, char & first, char & last, double & offset)
{
  long const set = (zone - 1) % 6 + 1;
  int pattern = 0;
  if (usng) {
    if (ellipsoidCode == 7008 || ellipsoidCode == 7019 || ellipsoidCode == 7030)
      pattern = 1;
  } else {
    switch (ellipsoidCode) {
    case 7003: case 7019: case 7022: case 7030: case 7036: case 7043: pattern = 1; break;
    case 7004: case 7008: case 7034: pattern = 2; break;
    default: break;
    }
  }
  if (pattern == 0)
    return false;
  // Clarke 1866 keeps the newer lettering in zones 47 to 55.
  if (ellipsoidCode == 7008 && zone >= 47 && zone <= 55)
    pattern = 1;

  switch (set) {
  case 1: case 4: first = 'A'; last = 'H'; break;
  case 2: case 5: first = 'J'; last = 'R'; break;
  default: first = 'S'; last = 'Z'; break;
  }
  bool const odd = set % 2 == 1;
  if (pattern == 1)
    offset = odd ? 0.0 : 1500000.0;
  else
    offset = odd ? 1000000.0 : 500000.0;
  return true;
}

} // namespace UTMGrid

// CUniversalTransverseMercator

CUniversalTransverseMercator::CUniversalTransverseMercator(CHorizontalDatum * datum)
  : TProjection(datum), m_inner(new CTransverseMercator(datum))
{
  CParameterCollection & inner = m_inner->GetParameters();
  inner.SetItemInternal(Name(kLatitudeOfOrigin), 0.0);
  inner.SetDouble(Name(kScaleFactor), kUtmScaleFactor);
  inner.SetItemInternal(Name(kFalseEasting), kUtmFalseEasting);
  // Registered unset like every parameter; UTM's own are given their usual
  // values, which also places the inner projection on its zone.
  CParameterCollection & own = GetParameters();
  own.SetLong(Name(kIsNorth), kDefaultIsNorth);
  own.SetLong(Name(kZone), kDefaultZone);
  own.SetLong(Name(kAutoset), kDefaultAutoset);
  if (datum)
    m_epsgCode = GetEllipsoidEPSGCode();
}

CUniversalTransverseMercator::CUniversalTransverseMercator(CUniversalTransverseMercator const & other)
  : TProjection(other), m_inner(new CTransverseMercator(*other.m_inner)), m_epsgCode(other.m_epsgCode),
    m_autoset(other.m_autoset), m_zone(other.m_zone), m_north(other.m_north)
{
}

CUniversalTransverseMercator & CUniversalTransverseMercator::operator=(CUniversalTransverseMercator const & other)
{
  if (&other == this)
    return *this;
  TProjection::operator=(other);
  *m_inner = *other.m_inner;
  m_epsgCode = other.m_epsgCode;
  m_autoset = other.m_autoset;
  m_zone = other.m_zone;
  m_north = other.m_north;
  return *this;
}

CUniversalTransverseMercator::~CUniversalTransverseMercator() { delete m_inner; }

void CUniversalTransverseMercator::OnChange(unsigned short const *)
{
  // A body read from a file may lack the three; they are made with their usual values.
  struct Made
  {
    char const * name;
    long value;
  };
  static constexpr Made kMade[] = {{kIsNorth, kDefaultIsNorth}, {kZone, kDefaultZone}, {kAutoset, kDefaultAutoset}};
  bool missing[3] = {};
  bool anyMissing = false;
  for (int i = 0; i < 3; ++i) {
    missing[i] = !std::as_const(*this).GetParameters().Exists(Name(kMade[i].name));
    anyMissing = anyMissing || missing[i];
  }
  if (anyMissing) {
    CParameterCollection & p = GetParameters();
    for (int i = 0; i < 3; ++i)
      if (missing[i])
        p.AddLong(Name(kMade[i].name), false);
    for (int i = 0; i < 3; ++i)
      if (missing[i])
        p.SetLong(Name(kMade[i].name), kMade[i].value);
  }
  OnChangeSafe();
}

void CUniversalTransverseMercator::OnChangeSafe()
{
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  if (!p.AllItemsSet())
    return;
  auto const read = [&p](char const * name, long fallback) {
    CString const key(name);
    return p.Exists(key) && p.IsItemSet(key) ? p.GetLong(key) : fallback;
  };
  bool north = read(kIsNorth, kDefaultIsNorth) != 0;
  long zone = read(kZone, kDefaultZone);
  m_autoset = read(kAutoset, 0) != 0;
  // Until the inner projection takes a zone, no zone is remembered as current.
  m_zone = 0;
  if (zone < kUtmFirstZone || zone > kUtmLastZone)
    throw CVelmoraException(CVelmoraException::kInvalidValue, "CUniversalTransverseMercator::OnChange",
                            "UTM zone assignment out of bounds");
  SetInnerTransformParameters(zone, north);
}

void CUniversalTransverseMercator::SetInnerTransformParameters(long & zone, bool & north)
{
  CParameterCollection & inner = m_inner->GetParameters();
  CString const cm(kCentralMeridian), fn(kFalseNorthing);
  // Both unset first, so that the inner constants are rebuilt once, by the last write.
  inner.SetItemSetState(cm, false);
  inner.SetItemSetState(fn, false);
  inner.SetItemInternal(cm, static_cast<double>(zone * kUtmZoneWidth - kUtmZoneOffset));
  inner.SetItemInternal(fn, north ? 0.0 : kUtmSouthFalseNorthing);
  m_zone = zone;
  m_north = north;
}

void CUniversalTransverseMercator::SetHorizontalDatum(CHorizontalDatum * datum)
{
  m_inner->SetHorizontalDatum(datum);
  CProjection::SetHorizontalDatum(datum);
  m_epsgCode = GetEllipsoidEPSGCode();
}

int CUniversalTransverseMercator::GetEllipsoidEPSGCode() const
{
  CHorizontalDatum const * datum = GetHorizontalDatum();
  if (!datum)
    return 0;
  CIdentifierCollection const & ids = datum->GetEllipsoid().GetIdentifiers();
  CString const issuer("EPSG");
  return ids.Exists(issuer) ? static_cast<int>(ids.GetItem(issuer).toLong()) : 0;
}

void CUniversalTransverseMercator::UTMLim(char letter, long zone, long & north, long & south, long & east,
                                          long & west)
{
  UTMGrid::Limits(letter, zone, north, south, east, west);
}

bool CUniversalTransverseMercator::UTMSet(bool flag, long zone, int ellipsoidCode, char & first, char & last,
                                          double & offset)
{
  return UTMGrid::Lettering(flag, zone, ellipsoidCode, first, last, offset);
}

void CUniversalTransverseMercator::DivineParameters(ML::CGeodeticPoint const & point)
{
  DivineParameters(point.GetLon().GetInternal(), point.GetLat().GetInternal());
}

void CUniversalTransverseMercator::DivineParameters(double lon, double lat)
{
  long const zone = 1 - static_cast<long>(std::trunc((std::floor(lon) + 180.0) / -6.0));
  bool const north = lat > 0.0; // the equator itself is south
  // The usual case, a point in the zone of the last: nothing to write.
  if (zone == m_zone && north == m_north && std::as_const(*this).GetParameters().AllItemsSet())
    return;
  CParameterCollection & p = GetParameters();
  CString const zoneName(kZone), northName(kIsNorth);
  p.SetItemSetState(zoneName, false);
  p.SetItemSetState(northName, false);
  p.SetLong(zoneName, zone);
  p.SetLong(northName, north ? 1 : 0);
}

bool CUniversalTransverseMercator::FormatMGRSString(ML::CGeodeticPoint const & point, bool usng,
                                                    CString & text) const
{
  CHorizontalDatum * datum = m_inner->GetHorizontalDatum();
  if (!datum)
    return false;
  return MilitaryGrid::Format(datum, m_epsgCode, usng, point.GetLon().GetInternal(), point.GetLat().GetInternal(),
                              "CUniversalTransverseMercator::FormatMGRSString", text);
}

void CUniversalTransverseMercator::ParseMGRSString(CString const & text, bool usng, ML::CProjectedPoint & out) const
{
  double lon = 0.0, lat = 0.0;
  MilitaryGrid::Parse(m_inner->GetHorizontalDatum(), m_epsgCode, usng, text,
                      "CUniversalTransverseMercator::ParseMGRSString", lon, lat);
  // The reference names a point; this projection's plane may be of another zone.
  if (m_autoset)
    const_cast<CUniversalTransverseMercator *>(this)->DivineParameters(lon, lat);
  m_inner->Forward(lon, lat);
  out.SetInternals(lon, lat);
}

bool CUniversalTransverseMercator::PrepareInputPoint(ML::CProjectedPoint & out,
                                                     ML::CProjectedPoint const & in) const
{
  ML::CProjectedPoint::FormatOption const format = in.GetStringFormat();
  if (format == ML::CProjectedPoint::kNone) {
    out = in;
    return true;
  }
  if (!m_inner->GetHorizontalDatum() || !GetParameters().AllItemsSet())
    return false;
  out = ML::CProjectedPoint(in.GetDimensions());
  if (in.GetDimensions() == 3)
    out.GetHgt().SetInternal(in.GetHgt().GetInternal());
  ParseMGRSString(in.GetLocationString(), format == ML::CProjectedPoint::kUSNG, out);
  return true;
}

bool CUniversalTransverseMercator::Forward(double & x, double & y) const
{
  if (y > kUtmNorthLimit || y < kUtmSouthLimit)
    return false;
  if (m_autoset)
    const_cast<CUniversalTransverseMercator *>(this)->DivineParameters(x, y);
  return m_inner->Forward(x, y);
}

bool CUniversalTransverseMercator::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet())
    return false;
  return Forward(x, y);
}

bool CUniversalTransverseMercator::ToPlane(ML::CGeodeticPoint const & in, ML::CProjectedPoint & out) const
{
  if (!GetParameters().AllItemsSet())
    return false;
  double const lat = in.GetLat().GetInternal();
  if (lat > kUtmNorthLimit || lat < kUtmSouthLimit)
    return false;
  if (m_autoset)
    const_cast<CUniversalTransverseMercator *>(this)->DivineParameters(in);
  ML::CProjectedPoint::FormatOption const format = out.GetStringFormat();
  if (format != ML::CProjectedPoint::kNone) {
    CString text;
    if (!FormatMGRSString(in, format == ML::CProjectedPoint::kUSNG, text))
      return false;
    out.SetLocationString(text);
  }
  return m_inner->ToPlane(in, out);
}

bool CUniversalTransverseMercator::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet())
    return false;
  return m_inner->Inverse(x, y);
}

bool CUniversalTransverseMercator::FromPlane(ML::CProjectedPoint const & in, ML::CGeodeticPoint & out) const
{
  ML::CProjectedPoint prepared;
  if (!PrepareInputPoint(prepared, in))
    return false;
  return m_inner->FromPlane(prepared, out);
}

bool CUniversalTransverseMercator::ConvergenceAtPoint(ML::CProjectedPoint const & point,
                                                      ML::CAngularValue & angle) const
{
  ML::CProjectedPoint prepared;
  if (!PrepareInputPoint(prepared, point))
    return false;
  return m_inner->ConvergenceAtPoint(prepared, angle);
}

bool CUniversalTransverseMercator::ScaleFactorAtPoint(ML::CProjectedPoint const & point, double & scale) const
{
  ML::CProjectedPoint prepared;
  if (!PrepareInputPoint(prepared, point))
    return false;
  return m_inner->ScaleFactorAtPoint(prepared, scale);
}

} // namespace Velmora::CS::PJ
