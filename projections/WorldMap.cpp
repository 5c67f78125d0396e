#include <velmora/projections/WorldMap.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/Constants.h>
#include <velmora/projections/ParameterNames_p.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Velmora::CS::PJ {

using Constants::kHalfPi;
using Constants::kPi;
using Constants::kQuarterPi;
using Constants::kRadiansPerDegree;
using Constants::kTwoPi;
using namespace Parameter;

namespace {

constexpr char kSphericalRadius[] = "spherical_radius";

// The step at which the iterations stop, radians, and the tolerance of the
// sines that the inverses bring back to 1.
constexpr double kTolerance = 1e-07;
// Latitudes that the cartographic flag or a class keeps off the pole, radians.
constexpr double kNearPole = 89.9999999 * kRadiansPerDegree;

bool Cartographic() { return DB::CDataSource::GetCartographicFlag(); }

// A latitude beyond a pole taken to the pole while the cartographic flag is on.
double ClampToPole(double phi)
{
  if (Cartographic() && std::fabs(phi) > kHalfPi)
    return std::copysign(kHalfPi, phi);
  return phi;
}

// asin of a sine that may exceed 1 by rounding: within `tolerance` it is
// brought to +-1; beyond, false.
bool AsinWithin(double s, double tolerance, double & angle)
{
  if (std::fabs(s) > 1.0 + tolerance)
    return false;
  angle = std::asin(std::clamp(s, -1.0, 1.0));
  return true;
}

} // namespace

// CWorldMap

void CWorldMap::OnChange(unsigned short const *)
{
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  bool const sphere = p.Exists(CString(kSphericalRadius));
  bool const origin = p.Exists(CString(kLatitudeOfOrigin));
  if (!ParametersReady(3 + long(sphere) + long(origin)))
    return;
  m_lam0 = Radians(p, kCentralMeridian);
  m_phi1 = origin ? Radians(p, kLatitudeOfOrigin) : 0.0;
  m_fe = Internal(p, kFalseEasting);
  m_fn = Internal(p, kFalseNorthing);
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_R = sphere ? Internal(p, kSphericalRadius) : figure ? figure->GetSemiMajor() : 0.0;
  m_ready = m_R > 0.0;
  if (m_ready)
    Prepare();
}

bool CWorldMap::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_lam0 / kRadiansPerDegree);
  double e, n;
  if (!Forward(x * kRadiansPerDegree - m_lam0, y * kRadiansPerDegree, e, n))
    return false;
  x = e + m_fe;
  y = n + m_fn;
  return true;
}

bool CWorldMap::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double lambda, phi;
  if (!Inverse(x - m_fe, y - m_fn, lambda, phi))
    return false;
  x = (lambda + m_lam0) / kRadiansPerDegree;
  y = phi / kRadiansPerDegree;
  return true;
}

// Aitoff and Winkel's tripel
//
// With c = lambda/2, C = cos phi cos c, alpha = acos C and k = alpha / sin alpha:
// Aitoff's x = 2 k cos phi sin c, y = k sin phi (Snyder & Voxland 1989). The
// tripel is the mean of these and (lambda cos phi1, phi). The partials follow
// from dk/dC = (k C - 1) / sin^2 alpha, which tends to -1/3 - 4(1 - C)/15
// near alpha = 0.

namespace {

// The plane point of a longitude and latitude and its partials, on the unit sphere.
struct BPlaneTerms
{
  double x, y;
  double xLat, xLon, yLat, yLon;
};

// Below this 1 - C the series of dk/dC replaces the quotient.
constexpr double kAitoffSeries = 1e-5;

BPlaneTerms AitoffTerms(double lambda, double phi)
{
  double sinPhi, cosPhi, sinC, cosC;
  ::sincos(phi, &sinPhi, &cosPhi);
  ::sincos(0.5 * lambda, &sinC, &cosC);
  double const C = std::clamp(cosPhi * cosC, -1.0, 1.0);
  double const u = 1.0 - C;
  double k, dk;
  if (u < kAitoffSeries) {
    k = 1.0 + u / 3.0 + 2.0 * u * u / 15.0;
    dk = -1.0 / 3.0 - 4.0 * u / 15.0;
  } else {
    double const s2 = (1.0 - C) * (1.0 + C);
    k = std::acos(C) / std::sqrt(s2);
    dk = (k * C - 1.0) / s2;
  }
  double const cLat = -sinPhi * cosC, cLon = -0.5 * cosPhi * sinC;
  BPlaneTerms t;
  t.x = 2.0 * k * cosPhi * sinC;
  t.y = k * sinPhi;
  t.xLat = 2.0 * sinC * (dk * cLat * cosPhi - k * sinPhi);
  t.xLon = 2.0 * cosPhi * (dk * cLon * sinC + 0.5 * k * cosC);
  t.yLat = dk * cLat * sinPhi + k * cosPhi;
  t.yLon = dk * cLon * sinPhi;
  return t;
}

// Winkel's tripel: the mean of Aitoff and the equirectangular on cos phi1.
BPlaneTerms TripelTerms(double lambda, double phi, double cosPhi1)
{
  BPlaneTerms t = AitoffTerms(lambda, phi);
  t.x = 0.5 * (t.x + lambda * cosPhi1);
  t.y = 0.5 * (t.y + phi);
  t.xLat *= 0.5;
  t.xLon = 0.5 * (t.xLon + cosPhi1);
  t.yLat = 0.5 * (t.yLat + 1.0);
  t.yLon *= 0.5;
  return t;
}

constexpr int kTwoUnknownRounds = 30;
// Plane x (unit sphere) taken as the central meridian: a pole's image is
// 1e-16 off it.
constexpr double kCentralMeridianWidth = 1e-15;

// Newton's method in (phi, lambda) on f1 = x(phi, lambda) - X and
// f2 = y(phi, lambda) - Y with the 2-by-2 Jacobian (Bildirici & Ipbueker
// 2002, "A general algorithm for the inverse transformation of map
// projections using Jacobian matrices"), from (X/pi, Y/pi). False when 30
// rounds end without both steps below 1e-7; the last values stand.
//
// Aitoff's map repeats itself: (lambda + 2 pi, -pi - phi) has the image of
// (lambda, phi), and so has lambda + 4 pi. A step beyond a pole is folded
// back by the first and the longitude kept within two turns by the second,
// which keeps the iteration on the map's own sheet.
template <class Terms>
bool TwoUnknownNewton(double X, double Y, Terms terms, double & lambda, double & phi)
{
  lambda = X / kPi;
  phi = Y / kPi;
  for (int round = 0; round < kTwoUnknownRounds; ++round) {
    if (std::fabs(phi) > kHalfPi) {
      phi = std::copysign(kPi, phi) - phi;
      lambda += kTwoPi;
    }
    lambda = std::remainder(lambda, 2.0 * kTwoPi);
    BPlaneTerms const t = terms(lambda, phi);
    double const f1 = t.x - X, f2 = t.y - Y;
    double const det = t.xLat * t.yLon - t.xLon * t.yLat;
    if (det == 0.0)
      return false;
    double const dPhi = (f2 * t.xLon - f1 * t.yLon) / det;
    double const dLambda = (f1 * t.yLat - f2 * t.xLat) / det;
    phi += dPhi;
    lambda += dLambda;
    if (std::fabs(dPhi) < kTolerance && std::fabs(dLambda) < kTolerance)
      return true;
  }
  return false;
}

} // namespace

bool CAitoff::Forward(double lambda, double phi, double & x, double & y) const
{
  BPlaneTerms const t = AitoffTerms(lambda, phi);
  x = m_R * t.x;
  y = m_R * t.y;
  return true;
}

// On the central meridian y = phi: there, and at the poles, whose images
// lie on it, the Jacobian is singular in longitude.
bool CAitoff::Inverse(double x, double y, double & lambda, double & phi) const
{
  if (std::fabs(x) < kCentralMeridianWidth * m_R) {
    lambda = 0.0;
    phi = y / m_R;
    return std::fabs(phi) <= kHalfPi + kTolerance;
  }
  return TwoUnknownNewton(x / m_R, y / m_R, AitoffTerms, lambda, phi) && std::fabs(lambda) <= kPi + kTolerance &&
         std::fabs(phi) <= kHalfPi;
}

bool CWinkelTripel::Forward(double lambda, double phi, double & x, double & y) const
{
  BPlaneTerms const t = TripelTerms(lambda, phi, std::cos(m_phi1));
  x = m_R * t.x;
  y = m_R * t.y;
  return true;
}

bool CWinkelTripel::Inverse(double x, double y, double & lambda, double & phi) const
{
  if (x == 0.0 && y == 0.0) {
    lambda = phi = 0.0;
    return true;
  }
  double const cosPhi1 = std::cos(m_phi1);
  auto const terms = [cosPhi1](double l, double p) { return TripelTerms(l, p, cosPhi1); };
  return TwoUnknownNewton(x / m_R, y / m_R, terms, lambda, phi);
}

// CHammerAitoff
//
// z = sqrt(1 + cos phi cos(lambda/2)); x = 2 sqrt2 cos phi sin(lambda/2) / z,
// y = sqrt2 sin phi / z. Back: Z^2 = 1 - (x/4)^2 - (y/2)^2, lambda =
// 2 atan(Z x / (2 (2 Z^2 - 1))), phi = asin(Z y) (Snyder & Voxland 1989).

namespace {
constexpr double kHammerHalf = 0.5, kHammerOne = 1.0, kHammerTwo = 2.0;
}

bool CHammerAitoff::Forward(double lambda, double phi, double & x, double & y) const
{
  double const cosPhi = std::cos(phi);
  double const d = std::sqrt(kHammerTwo / (kHammerOne + cosPhi * std::cos(kHammerHalf * lambda)));
  x = m_R * kHammerTwo * d * cosPhi * std::sin(kHammerHalf * lambda);
  y = m_R * d * std::sin(phi);
  return true;
}

bool CHammerAitoff::Inverse(double x, double y, double & lambda, double & phi) const
{
  double const X = x / m_R, Y = y / m_R;
  double const z2 = kHammerOne - 0.0625 * X * X - 0.25 * Y * Y;
  if (z2 < 0.0)
    return false;
  double const z = std::sqrt(z2);
  if (!AsinWithin(z * Y, kTolerance, phi))
    return false;
  lambda = kHammerTwo * std::atan2(z * X, kHammerTwo * (kHammerTwo * z2 - kHammerOne));
  return true;
}

// CWinkelI: x = lambda (cos phi1 + cos phi) / 2, y = phi.

bool CWinkelI::Forward(double lambda, double phi, double & x, double & y) const
{
  x = m_R * lambda * 0.5 * (std::cos(m_phi1) + std::cos(phi));
  y = m_R * phi;
  return true;
}

bool CWinkelI::Inverse(double x, double y, double & lambda, double & phi) const
{
  phi = y / m_R;
  if (std::fabs(phi) > kHalfPi)
    return false;
  double const sum = std::cos(m_phi1) + std::cos(phi);
  lambda = sum != 0.0 ? 2.0 * x / (m_R * sum) : 0.0;
  return true;
}

// CWinkelII
//
// x = lambda (cos theta + cos phi1) / 2, y = (pi sin theta + 2 phi) / 4 with
// 2 theta + sin 2 theta = pi sin phi, Mollweide's auxiliary angle.

namespace {

constexpr double kWinkelIIFour = 4.0;
constexpr int kMollweideRounds = 30;

// Mollweide's Newton method on t = 2 theta, from t = phi: t + sin t = pi sin phi,
// steps at most 1e-7, at most `rounds` (0: no limit) rounds. Stops where
// 1 + cos t vanishes, at the pole. Returns theta.
double MollweideTheta(double phi, int rounds)
{
  double const k = kPi * std::sin(phi);
  double t = phi;
  for (int round = 0; rounds == 0 || round < rounds; ++round) {
    double const d = 1.0 + std::cos(t);
    if (d == 0.0)
      break;
    double const step = (t + std::sin(t) - k) / d;
    t -= step;
    if (!(std::fabs(step) > kTolerance))
      break;
  }
  return 0.5 * t;
}

} // namespace

bool CWinkelII::Forward(double lambda, double phi, double & x, double & y) const
{
  phi = std::clamp(phi, -kNearPole, kNearPole);
  double const theta = MollweideTheta(phi, 0);
  x = m_R * 0.5 * lambda * (std::cos(theta) + std::cos(m_phi1));
  y = m_R * (kPi * std::sin(theta) + 2.0 * phi) / kWinkelIIFour;
  return true;
}

// Newton's method on the latitude: dy/dphi = (pi cos theta dtheta/dphi + 2)/4
// with dtheta/dphi = pi cos phi / (4 cos^2 theta).
bool CWinkelII::Inverse(double x, double y, double & lambda, double & phi) const
{
  double const Y = y / m_R;
  if (std::fabs(Y) > kHalfPi + kTolerance)
    return false;
  phi = std::clamp(Y, -kNearPole, kNearPole);
  double theta = 0.0;
  for (int round = 0; round < kTwoUnknownRounds; ++round) {
    theta = MollweideTheta(phi, 0);
    double const cosTheta = std::cos(theta);
    double const f = (kPi * std::sin(theta) + 2.0 * phi) / kWinkelIIFour - Y;
    double const df = (kPi * kPi * std::cos(phi) / (4.0 * cosTheta) + 2.0) / kWinkelIIFour;
    double const step = f / df;
    phi = std::clamp(phi - step, -kHalfPi, kHalfPi);
    if (std::fabs(step) < kTolerance)
      break;
  }
  theta = MollweideTheta(phi, 0);
  double const sum = std::cos(theta) + std::cos(m_phi1);
  lambda = sum != 0.0 ? 2.0 * x / (m_R * sum) : 0.0;
  return true;
}

// The Eckerts (Snyder & Voxland 1989; Snyder 1987, chapter 32 for IV and VI).

namespace {
constexpr double kEckertITwoOverThreePi = 0.2122065907891938;       // 2/(3 pi)
constexpr double kEckertIISixPi = 18.84955592153876;                // 6 pi
constexpr double kEckertIITwoPiOverThree = 2.0943951023931953;      // 2 pi/3
constexpr double kEckertIIIPiFourPlusPi = 22.43597501544853;        // pi (4 + pi)
constexpr double kEckertIVPiOverFourPlusPi = 0.43990084648844263;   // pi/(4 + pi), of which Cy is 2 sqrt
constexpr double kEckertIVCx = 0.4222382;                           // 2/sqrt(pi (4 + pi)), Snyder's figures
constexpr double kEckertIVCy = 1.3265004;                           // 2 sqrt(pi/(4 + pi)), Snyder's figures
constexpr double kEckertIVTwo = 2.0;
constexpr double kEckertIVCp = 3.5707963267948966;                  // 2 + pi/2
constexpr double kEckertVTwoPlusPi = 5.141592653589793;             // 2 + pi
constexpr double kEckertVICp = 2.5707963267948966;                  // 1 + pi/2
constexpr int kEckertRounds = 50;
// The cosine of the double nearest pi/2 is 6.1e-17: a cosine this small is
// the pole's, where Eckert IV's derivative vanishes.
constexpr double kZeroCosine = 1e-15;
// A cosine of exactly -1 is taken as this, off the antipode of the pole.
constexpr double kOffMinusOne = -0.9999999;

static_assert(kEckertIVCy * kEckertIVCy / 4.0 - kEckertIVPiOverFourPlusPi < 1e-7);

// The Eckert Newton scheme: f(theta) = p sin phi with the derivative df,
// from theta, steps below 1e-7 and 50 rounds; false on a vanishing cosine.
template <class F, class DF>
bool EckertConverge(double rhs, double & theta, F f, DF df)
{
  for (int round = 0; round < kEckertRounds; ++round) {
    double const c = std::cos(theta);
    if (std::fabs(c) < kZeroCosine || c == -1.0)
      return false;
    double const delta = -(f(theta, c) - rhs) / df(c);
    if (std::fabs(delta) < kTolerance)
      return true;
    theta += delta;
  }
  return false;
}

// The sine of a latitude from its auxiliary function: within 1e-7 above 1 is
// brought back to +-1 while the cartographic flag is on; false beyond.
bool LatitudeFromSine(double s, double & phi)
{
  return AsinWithin(s, Cartographic() ? kTolerance : 0.0, phi);
}

} // namespace

// CEckertI: x = 2 sqrt(2/(3 pi)) lambda (1 - |phi|/pi), y = 2 sqrt(2/(3 pi)) phi.

bool CEckertI::Forward(double lambda, double phi, double & x, double & y) const
{
  double const c = 2.0 * std::sqrt(kEckertITwoOverThreePi);
  x = m_R * c * lambda * (1.0 - std::fabs(phi) / kPi);
  y = m_R * c * phi;
  return true;
}

bool CEckertI::Inverse(double x, double y, double & lambda, double & phi) const
{
  double const c = 2.0 * std::sqrt(kEckertITwoOverThreePi);
  phi = y / (m_R * c);
  if (std::fabs(phi) > kHalfPi + kTolerance)
    return false;
  lambda = x / (m_R * c * (1.0 - std::fabs(phi) / kPi));
  return true;
}

// CEckertII: x = 2 lambda sqrt((4 - 3 sin|phi|)/(6 pi)),
// y = sqrt(2 pi/3) (2 - sqrt(4 - 3 sin|phi|)) sign phi.

bool CEckertII::Forward(double lambda, double phi, double & x, double & y) const
{
  double const v = std::sqrt(4.0 - 3.0 * std::sin(std::fabs(phi)));
  x = m_R * 2.0 * lambda * v / std::sqrt(kEckertIISixPi);
  y = std::copysign(m_R * std::sqrt(kEckertIITwoPiOverThree) * (2.0 - v), phi);
  return true;
}

bool CEckertII::Inverse(double x, double y, double & lambda, double & phi) const
{
  double const v = 2.0 - std::fabs(y) / (m_R * std::sqrt(kEckertIITwoPiOverThree));
  double const s = (4.0 - v * v) / 3.0;
  if (std::fabs(s) > 1.0 + kTolerance)
    return false;
  phi = std::copysign(std::fabs(s) > 1.0 ? kHalfPi : std::asin(s), y);
  lambda = x * std::sqrt(kEckertIISixPi) / (2.0 * m_R * v);
  return true;
}

// CEckertIII: x = 2/sqrt(pi (4 + pi)) lambda (1 + sqrt(1 - (2 phi/pi)^2)),
// y = 4/sqrt(pi (4 + pi)) phi.

bool CEckertIII::Forward(double lambda, double phi, double & x, double & y) const
{
  double const root = std::sqrt(kEckertIIIPiFourPlusPi);
  double const r = 2.0 * phi / kPi;
  x = m_R * 2.0 / root * lambda * (1.0 + std::sqrt(std::max(0.0, 1.0 - r * r)));
  y = m_R * 4.0 / root * phi;
  return true;
}

bool CEckertIII::Inverse(double x, double y, double & lambda, double & phi) const
{
  double const root = std::sqrt(kEckertIIIPiFourPlusPi);
  phi = y * root / (4.0 * m_R);
  double const r = 2.0 * phi / kPi;
  if (std::fabs(r) > 1.0 + kTolerance)
    return false;
  lambda = x * root / (2.0 * m_R * (1.0 + std::sqrt(std::max(0.0, 1.0 - r * r))));
  return true;
}

// CEckertIV: theta + sin theta cos theta + 2 sin theta = (2 + pi/2) sin phi;
// x = 0.4222382 lambda (1 + cos theta), y = 1.3265004 sin theta.

bool CEckertIV::converge(double latitude, double & theta) const
{
  auto const f = [](double t, double c) { return kEckertIVTwo * std::sin(t) + c * std::sin(t) + t; };
  auto const df = [](double c) { return kEckertIVTwo * c * (1.0 + c); };
  return EckertConverge(kEckertIVCp * std::sin(latitude), theta, f, df);
}

bool CEckertIV::Forward(double lambda, double phi, double & x, double & y) const
{
  phi = ClampToPole(phi);
  double theta = phi;
  // At a pole the scheme stops on the vanishing derivative with theta there.
  if (!converge(phi, theta) && std::fabs(std::cos(theta)) >= kZeroCosine)
    return false;
  x = m_R * kEckertIVCx * lambda * (1.0 + std::cos(theta));
  y = m_R * kEckertIVCy * std::sin(theta);
  return true;
}

bool CEckertIV::Inverse(double x, double y, double & lambda, double & phi) const
{
  double theta;
  if (!LatitudeFromSine(y / (m_R * kEckertIVCy), theta))
    return false;
  double c = std::cos(theta);
  double const s = std::sin(theta);
  if (!LatitudeFromSine((theta + s * c + kEckertIVTwo * s) / kEckertIVCp, phi))
    return false;
  if (c == -1.0)
    c = kOffMinusOne;
  lambda = x / (m_R * kEckertIVCx * (1.0 + c));
  return true;
}

// CEckertV: x = lambda (1 + cos phi) / sqrt(2 + pi), y = 2 phi / sqrt(2 + pi).

bool CEckertV::Forward(double lambda, double phi, double & x, double & y) const
{
  double const module = m_R / std::sqrt(kEckertVTwoPlusPi);
  x = module * lambda * (1.0 + std::cos(phi));
  y = module * 2.0 * phi;
  return true;
}

bool CEckertV::Inverse(double x, double y, double & lambda, double & phi) const
{
  double const module = m_R / std::sqrt(kEckertVTwoPlusPi);
  phi = y / (2.0 * module);
  if (std::fabs(phi) > kHalfPi + kTolerance)
    return false;
  lambda = x / (module * (1.0 + std::cos(phi)));
  return true;
}

// CEckertVI: theta + sin theta = (1 + pi/2) sin phi;
// x = lambda (1 + cos theta) / sqrt(2 + pi), y = 2 theta / sqrt(2 + pi).

void CEckertVI::Prepare() { m_module = m_R / std::sqrt(kEckertVTwoPlusPi); }

bool CEckertVI::converge(double latitude, double & theta) const
{
  auto const f = [](double t, double) { return t + std::sin(t); };
  auto const df = [](double c) { return 1.0 + c; };
  return EckertConverge(kEckertVICp * std::sin(latitude), theta, f, df);
}

bool CEckertVI::Forward(double lambda, double phi, double & x, double & y) const
{
  phi = ClampToPole(phi);
  double theta = phi;
  if (!converge(phi, theta) && std::fabs(std::cos(theta)) >= kZeroCosine)
    return false;
  x = m_module * lambda * (1.0 + std::cos(theta));
  y = m_module * 2.0 * theta;
  return true;
}

bool CEckertVI::Inverse(double x, double y, double & lambda, double & phi) const
{
  double const theta = y / (2.0 * m_module);
  if (!LatitudeFromSine((std::sin(theta) + theta) / kEckertVICp, phi))
    return false;
  double c = std::cos(theta);
  if (c == -1.0)
    c = kOffMinusOne;
  lambda = x / (m_module * (1.0 + c));
  return true;
}

// CMollweide (Snyder 1987, 31-1 to 31-8): t + sin t = pi sin phi with
// t = 2 theta; x = sqrt8/pi lambda cos theta, y = sqrt2 sin theta.

namespace {
constexpr double kMollweideEight = 8.0, kMollweideTwo = 2.0;
}

void CMollweide::Prepare()
{
  m_k1 = std::sqrt(kMollweideEight) / kPi * m_R;
  m_k2 = std::sqrt(kMollweideTwo) * m_R;
}

bool CMollweide::Forward(double lambda, double phi, double & x, double & y) const
{
  double const theta = MollweideTheta(ClampToPole(phi), 0);
  x = m_k1 * lambda * std::cos(theta);
  y = m_k2 * std::sin(theta);
  return true;
}

bool CMollweide::Inverse(double x, double y, double & lambda, double & phi) const
{
  double theta;
  if (!AsinWithin(y / m_k2, 0.0, theta) || !AsinWithin((2.0 * theta + std::sin(2.0 * theta)) / kPi, 0.0, phi))
    return false;
  lambda = x / (m_k1 * std::cos(theta));
  return true;
}

// CGoodeHomolosine

namespace {
constexpr double kGoodeJoin = 0.7109307819790236; // radians, where the two pieces meet
constexpr double kGoodeLowering = 0.0528;         // of the Mollweide piece, in R
} // namespace

bool CGoodeHomolosine::Forward(double lambda, double phi, double & x, double & y) const
{
  if (std::fabs(phi) < kGoodeJoin) {
    x = m_R * lambda * std::cos(phi);
    y = m_R * phi;
    return true;
  }
  double const theta = MollweideTheta(phi, kMollweideRounds);
  x = m_R * std::sqrt(kMollweideEight) / kPi * lambda * std::cos(theta);
  y = m_R * (std::sqrt(kMollweideTwo) * std::sin(theta) - std::copysign(kGoodeLowering, phi));
  return true;
}

bool CGoodeHomolosine::Inverse(double x, double y, double & lambda, double & phi) const
{
  if (std::fabs(y) < m_R * kGoodeJoin) {
    phi = y / m_R;
    lambda = x / (m_R * std::cos(phi));
    return true;
  }
  double theta;
  double const raised = y + std::copysign(kGoodeLowering * m_R, y);
  if (!AsinWithin(raised / (std::sqrt(kMollweideTwo) * m_R), 0.0, theta) ||
      !AsinWithin((2.0 * theta + std::sin(2.0 * theta)) / kPi, 0.0, phi))
    return false;
  lambda = x / (m_R * std::sqrt(kMollweideEight) / kPi * std::cos(theta));
  return true;
}

// CRobinson
//
// Robinson's table (Robinson 1974, as printed in Snyder, Flattening the Earth,
// 1993, p. 214, and in PROJ's documentation of robin): the length of the
// parallel (X) and its distance from the equator (Y) at every 5 degrees from
// 0 to 90, with a row before 0 and one after 90 for the differences. Y's
// rows beyond are as this library has always had them; X's last, used only
// by latitudes beyond 90 with the cartographic flag off, mirrors 85 degrees.

namespace {

constexpr double kRobinsonY[21] = {-0.062, 0.0,    0.062,  0.124,  0.186,  0.248,  0.31,
                                   0.372,  0.434,  0.4958, 0.5571, 0.6176, 0.6769, 0.7346,
                                   0.7903, 0.8435, 0.8936, 0.9394, 0.9761, 1.0,    0.9986};
constexpr double kRobinsonX[21] = {0.9986, 1.0,    0.9986, 0.9954, 0.99,   0.9822, 0.973,
                                   0.96,   0.9427, 0.9216, 0.8962, 0.8679, 0.835,  0.7986,
                                   0.7597, 0.7186, 0.6732, 0.6213, 0.5722, 0.5322, 0.5722};
constexpr double kRobinsonFx = 0.8477512782251756;
constexpr double kRobinsonFy = 1.3508202760235382;
constexpr double kRobinsonStep = 5.0;  // degrees between rows
constexpr double kRobinsonRows = 18.0; // rows from the equator to the pole
constexpr int kRobinsonLastRow = 18;   // the last whose next row the table holds

// Stirling's three-point form about row i (0 the equator) at the fraction t.
double RobinsonValue(double const (&v)[21], int i, double t)
{
  double const before = v[i], at = v[i + 1], after = v[i + 2];
  return at + (after - before) * t / 2.0 + (after - 2.0 * at + before) * t * t / 2.0;
}

} // namespace

bool CRobinson::Forward(double lambda, double phi, double & x, double & y) const
{
  double const degrees = std::fabs(ClampToPole(phi)) / kRadiansPerDegree;
  double const rows = degrees / kRobinsonStep;
  if (!(rows < kRobinsonLastRow + 1))
    return false;
  int const i = int(std::floor(rows));
  double const t = rows - i;
  x = lambda * m_R * kRobinsonFx * RobinsonValue(kRobinsonX, i, t);
  y = std::copysign(m_R * kRobinsonFy * RobinsonValue(kRobinsonY, i, t), phi);
  return true;
}

// A fixed-point iteration on the row: each error in y moves it by the mean
// slope of the table, 1/18 of Y per row.
bool CRobinson::Inverse(double x, double y, double & lambda, double & phi) const
{
  double const scale = m_R * kRobinsonFy;
  double s = std::fabs(y / (m_R * kHalfPi)) * kRobinsonRows;
  for (;;) {
    if (!(s >= 0.0 && s < kRobinsonLastRow + 1))
      return false;
    int const i = int(s);
    double const e = std::fabs(y) - RobinsonValue(kRobinsonY, i, s - i) * scale;
    s += e * kRobinsonRows / scale;
    if (std::fabs(e) <= kTolerance)
      break;
  }
  int const i = std::min(int(s), kRobinsonLastRow);
  phi = std::copysign(s * kRobinsonStep * kRadiansPerDegree, y);
  lambda = x / (m_R * kRobinsonFx * RobinsonValue(kRobinsonX, i, s - i));
  return true;
}

// CSinusoidal: x = a lambda cos phi / sqrt(1 - e2 sin^2 phi), y = M(phi);
// back by the footpoint series of mu = y/(a c0).

void CSinusoidal::OnChange(unsigned short const *)
{
  if (!ParametersReady(3))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  m_lam0 = Radians(p, kCentralMeridian);
  m_fe = Internal(p, kFalseEasting);
  m_fn = Internal(p, kFalseNorthing);
  calc_meridional_values();
  m_ready = m_ellipsoid != nullptr;
  if (!m_ready)
    return;
  m_a = m_ellipsoid->GetSemiMajor();
  m_e2 = m_ellipsoid->GetEccentricitySquared();
}

bool CSinusoidal::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_lam0 / kRadiansPerDegree);
  double const phi = (y >= 90.0 ? 89.9999999 : y <= -90.0 ? -89.9999999 : y) * kRadiansPerDegree;
  double const s = std::sin(phi);
  x = m_a * (x * kRadiansPerDegree - m_lam0) * std::cos(phi) / std::sqrt(1.0 - m_e2 * s * s) + m_fe;
  y = calc_mx(m_a, phi) + m_fn;
  return true;
}

bool CSinusoidal::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const mu = (y - m_fn) / (m_a * c0);
  double const phi =
    mu + i1 * std::sin(2.0 * mu) + i2 * std::sin(4.0 * mu) + i3 * std::sin(6.0 * mu) + i4 * std::sin(8.0 * mu);
  double lambda = 0.0;
  if (std::fabs(std::fabs(phi) - kHalfPi) >= kTolerance) {
    if (std::fabs(phi) > kHalfPi)
      return false;
    double const s = std::sin(phi);
    lambda = (x - m_fe) * std::sqrt(1.0 - m_e2 * s * s) / (m_a * std::cos(phi));
  }
  x = (lambda + m_lam0) / kRadiansPerDegree;
  y = phi / kRadiansPerDegree;
  return true;
}

// CMcBrydeThomasFlatPolarQuartic: sin(theta/2) + sin theta = (1 + sqrt2/2) sin phi;
// x = lambda (1 + 2 cos theta / cos(theta/2)) / sqrt(3 sqrt2 + 6),
// y = 2 sqrt3 sin(theta/2) / sqrt(2 + sqrt2).

namespace {
constexpr double kQuarticCx = 0.3124597141037825; // 1/sqrt(3 sqrt2 + 6)
constexpr double kQuarticCy = 1.874758284622695;  // 2 sqrt3 / sqrt(2 + sqrt2)
constexpr double kQuarticCp = 1.7071067811865475; // 1 + sqrt2/2
constexpr int kQuarticRounds = 100;
} // namespace

bool CMcBrydeThomasFlatPolarQuartic::Forward(double lambda, double phi, double & x, double & y) const
{
  double const k = kQuarticCp * std::sin(phi);
  double theta = phi;
  for (int round = 0;; ++round) {
    if (round == kQuarticRounds)
      return false;
    double const step = (std::sin(0.5 * theta) + std::sin(theta) - k) / (std::cos(theta) + 0.5 * std::cos(0.5 * theta));
    theta -= step;
    if (std::fabs(step) < kTolerance)
      break;
  }
  x = m_R * kQuarticCx * lambda * (1.0 + 2.0 * std::cos(theta) / std::cos(0.5 * theta));
  y = m_R * kQuarticCy * std::sin(0.5 * theta);
  return true;
}

bool CMcBrydeThomasFlatPolarQuartic::Inverse(double x, double y, double & lambda, double & phi) const
{
  double half;
  if (!AsinWithin(y / (m_R * kQuarticCy), 0.0, half))
    return false;
  double const theta = 2.0 * half;
  if (!AsinWithin((std::sin(half) + std::sin(theta)) / kQuarticCp, kTolerance, phi))
    return false;
  lambda = x / (m_R * kQuarticCx * (1.0 + 2.0 * std::cos(theta) / std::cos(half)));
  return true;
}

// CQuarticAuthalic: x = lambda cos phi / cos(phi/2), y = 2 sin(phi/2).

namespace {
constexpr double kQuarticAuthalicHalf = 0.5, kQuarticAuthalicOne = 1.0;
}

bool CQuarticAuthalic::Forward(double lambda, double phi, double & x, double & y) const
{
  double const half = kQuarticAuthalicHalf * phi;
  x = m_R * kQuarticAuthalicOne * lambda * std::cos(phi) / std::cos(half);
  y = m_R * 2.0 * std::sin(half);
  return true;
}

bool CQuarticAuthalic::Inverse(double x, double y, double & lambda, double & phi) const
{
  double half;
  if (!AsinWithin(y / (2.0 * m_R), 0.0, half))
    return false;
  phi = 2.0 * half;
  double const c = std::cos(phi);
  lambda = c != 0.0 ? x * std::cos(half) / (m_R * kQuarticAuthalicOne * c) : 0.0;
  return true;
}

// CCrasterParabolic: x = sqrt(3/pi) lambda (2 cos(2 phi/3) - 1),
// y = sqrt(3 pi) sin(phi/3).

namespace {
constexpr double kCrasterThree = 3.0;
constexpr double kSqrt3 = 1.7320508075688772;
constexpr double kSqrtPi = 1.7724538509055159;
constexpr double kSqrt3Pi = 3.069980123839465;
} // namespace

bool CCrasterParabolic::Forward(double lambda, double phi, double & x, double & y) const
{
  double const third = phi / kCrasterThree;
  x = m_R * kSqrt3 / kSqrtPi * lambda * (2.0 * std::cos(2.0 * third) - 1.0);
  y = m_R * kSqrt3Pi * std::sin(third);
  return true;
}

bool CCrasterParabolic::Inverse(double x, double y, double & lambda, double & phi) const
{
  double third;
  if (!AsinWithin(y / (m_R * kSqrt3Pi), 0.0, third))
    return false;
  phi = kCrasterThree * third;
  lambda = x * kSqrtPi / (m_R * kSqrt3 * (2.0 * std::cos(2.0 * third) - 1.0));
  return true;
}

// CTimes: T = tan(phi/2), S = sin(pi/4 T); x = lambda (c1 - c2 S^2),
// y = (1 + sqrt2/2) T.

namespace {
constexpr double kTimesC1 = 0.7424450771282445;
constexpr double kTimesC2 = 0.3459321814870477;
constexpr double kTimesCy = 1.7071067811865475; // 1 + sqrt2/2, Gall's
} // namespace

bool CTimes::Forward(double lambda, double phi, double & x, double & y) const
{
  double const T = std::tan(0.5 * phi);
  double const S = std::sin(kQuarterPi * T);
  x = m_R * lambda * (kTimesC1 - kTimesC2 * S * S);
  y = m_R * kTimesCy * T;
  return true;
}

bool CTimes::Inverse(double x, double y, double & lambda, double & phi) const
{
  double const T = y / (m_R * kTimesCy);
  double const S = std::sin(kQuarterPi * T);
  phi = 2.0 * std::atan(T);
  lambda = x / (m_R * (kTimesC1 - kTimesC2 * S * S));
  return true;
}

// CLoximuthal: y = phi - phi1, x = lambda (phi - phi1) / (psi - psi1) with the
// isometric latitude psi = ln tan(pi/4 + phi/2); at phi = phi1, lambda cos phi1.
// psi - psi1 is taken as atanh((sin phi - sin phi1)/(1 - sin phi sin phi1)),
// the same difference without the loss of digits near phi1.

// Near a pole that quotient nears +-1, where atanh loses digits; there the
// difference of asinh(tan phi), the same psi, keeps them.

namespace {
constexpr double kAtanhLimit = 0.5;

double IsometricDifference(double phi, double phi1)
{
  double const numerator = 2.0 * std::cos(0.5 * (phi + phi1)) * std::sin(0.5 * (phi - phi1));
  double const u = numerator / (1.0 - std::sin(phi) * std::sin(phi1));
  if (std::fabs(u) <= kAtanhLimit)
    return std::atanh(u);
  return std::asinh(std::tan(phi)) - std::asinh(std::tan(phi1));
}
} // namespace

bool CLoximuthal::Forward(double lambda, double phi, double & x, double & y) const
{
  if (Cartographic() && std::fabs(phi) >= kHalfPi)
    phi = std::copysign(kNearPole, phi);
  double const dPhi = phi - m_phi1;
  x = m_R * lambda * (dPhi == 0.0 ? std::cos(m_phi1) : dPhi / IsometricDifference(phi, m_phi1));
  y = m_R * dPhi;
  return true;
}

bool CLoximuthal::Inverse(double x, double y, double & lambda, double & phi) const
{
  double const dPhi = y / m_R;
  phi = m_phi1 + dPhi;
  if (std::fabs(phi) > kHalfPi + kTolerance)
    return false;
  if (std::fabs(dPhi) < kTolerance)
    lambda = x / (m_R * std::cos(m_phi1));
  else if (std::fabs(std::fabs(phi) - kHalfPi) < kTolerance)
    lambda = 0.0; // the pole is a point
  else
    lambda = x * IsometricDifference(phi, m_phi1) / (m_R * dPhi);
  return true;
}

// CVanDerGrinten (Snyder 1987, 29-1 to 29-6, and 29-29 to 29-33).

namespace {
constexpr double kVdgPoleClamp = 1.5707962267948965;
constexpr double kCubicThree = 3.0, kCubicTwo = 2.0, kCubicNine = 9.0, kCubicTwentySeven = 27.0;
constexpr double kCubicThird = 0.3333333333333333;
constexpr double kPiOverThree = 1.0471975511965976;
} // namespace

bool CVanDerGrinten::Forward(double lambda, double phi, double & x, double & y) const
{
  if (Cartographic() && std::fabs(phi) >= kHalfPi)
    phi = std::copysign(kVdgPoleClamp, phi);
  if (std::fabs(phi) < kTolerance) {
    x = m_R * lambda;
    y = 0.0;
    return true;
  }
  double const theta = std::asin(std::min(1.0, std::fabs(2.0 * phi / kPi)));
  if (std::fabs(std::fabs(phi) - kHalfPi) < kTolerance || std::fabs(lambda) < kTolerance) {
    x = 0.0;
    y = std::copysign(kPi * m_R * std::tan(0.5 * theta), phi);
    return true;
  }
  if (lambda > kTwoPi)
    lambda -= kTwoPi;
  else if (lambda < -kTwoPi)
    lambda += kTwoPi;
  double const A = 0.5 * std::fabs(kPi / lambda - lambda / kPi);
  double sinTheta, cosTheta;
  ::sincos(theta, &sinTheta, &cosTheta);
  double const G = cosTheta / (sinTheta + cosTheta - 1.0);
  double const P = G * (2.0 / sinTheta - 1.0);
  double const Q = A * A + G;
  double const P2 = P * P, A2 = A * A;
  double const gp = G - P2;
  x = kPi * m_R * (A * gp + std::sqrt(std::max(0.0, A2 * gp * gp - (P2 + A2) * (G * G - P2)))) / (P2 + A2);
  y = kPi * m_R * (P * Q - A * std::sqrt(std::max(0.0, (A2 + 1.0) * (P2 + A2) - Q * Q))) / (P2 + A2);
  x = std::copysign(x, lambda);
  y = std::copysign(y, phi);
  return true;
}

bool CVanDerGrinten::Inverse(double x, double y, double & lambda, double & phi) const
{
  double const X = x / (kPi * m_R), Y = y / (kPi * m_R);
  double const X2 = X * X, Y2 = Y * Y, r2 = X2 + Y2;
  // The map is the disc of radius pi R.
  if (r2 > 1.0 + kTolerance)
    return false;
  if (std::fabs(Y) < kTolerance) {
    phi = 0.0;
    lambda = kPi * X;
    return true;
  }
  double const c1 = -std::fabs(Y) * (1.0 + r2);
  double const c2 = c1 - kCubicTwo * Y2 + X2;
  double const c3 = -kCubicTwo * c1 + 1.0 + kCubicTwo * Y2 + r2 * r2;
  double const d = Y2 / c3 + (kCubicTwo * c2 * c2 * c2 / (c3 * c3 * c3) - kCubicNine * c1 * c2 / (c3 * c3)) /
                               kCubicTwentySeven;
  double const a1 = (c1 - c2 * c2 / (kCubicThree * c3)) / c3;
  double const m1 = kCubicTwo * std::sqrt(-a1 / kCubicThree);
  double const theta1 = kCubicThird * std::acos(std::clamp(kCubicThree * d / (a1 * m1), -1.0, 1.0));
  phi = std::copysign(kPi * (-m1 * std::cos(theta1 + kPiOverThree) - c2 / (kCubicThree * c3)), y);
  if (std::fabs(phi) > kHalfPi + kTolerance)
    return false;
  lambda = X == 0.0 ? 0.0 : kPi * (r2 - 1.0 + std::sqrt(1.0 + kCubicTwo * (X2 - Y2) + r2 * r2)) / (kCubicTwo * X);
  return true;
}

// CVanDerGrintenIV (Snyder & Voxland 1989). With B = |2 phi/pi|,
// C = (8B - 2B^2 - B^4 - 5) / (2B^2 (B - 1)), D = v - 1/v for v = |2 lambda/pi|,
// F = (B + C)^2 (B^2 + C^2 D^2 - 1) + (1 - B^2)(B^2 ((B + 3C)^2 + 4C^2)
//     + 12 B C^3 + 4 C^4),
// x' = (D ((B + C)^2 + C^2 - 1) + 2 sqrt F) / (4 (B + C)^2 + D^2):
// x = pi/2 x' sign lambda, y = pi/2 sqrt(1 + D |x'| - x'^2) sign phi.
// On the equator x = lambda, y = 0; on the central meridian and at the poles
// x = 0, y = phi. D as v - 1/v is the album's sqrt((v + 1/v)^2 - 4) with its
// sign, negative inside |lambda| < pi/2.

namespace {

constexpr double kTileShrink = 0.8333333333333334;
constexpr double kTileEdge = 1e-11;
constexpr double kTilePole = 1.5707963267848966;
// Tiling rounds before the Newton steps take over: the cells shrink to 1.3%.
constexpr int kTileRounds = 24;
constexpr int kVdg4NewtonRounds = 30;
// Where Newton's method starts off the equator, the central meridian and
// the poles, radians; and the distance (unit sphere) that counts as a hit.
constexpr double kNewtonStart = 1e-4;
constexpr double kVdg4Fit = 1e-9;
constexpr int kVdg4Halvings = 40;

double Bfunc(double phi) { return std::fabs(2.0 * phi / kPi); }
double Cfunc(double B) { return (8.0 * B - 2.0 * B * B - B * B * B * B - 5.0) / (2.0 * B * B * (B - 1.0)); }
double Dfunc(double lambda)
{
  double const v = std::fabs(2.0 * lambda / kPi);
  return v - 1.0 / v;
}
double Ffunc(double B, double C, double D)
{
  double const G = B + C, H = B + 3.0 * C;
  return G * G * (B * B + C * C * D * D - 1.0) +
         (1.0 - B * B) * (B * B * (H * H + 4.0 * C * C) + 12.0 * B * C * C * C + 4.0 * C * C * C * C);
}
double xprime_function(double B, double C, double D, double F)
{
  double const G2 = (B + C) * (B + C);
  return (D * (G2 + C * C - 1.0) + 2.0 * std::sqrt(std::max(0.0, F))) / (4.0 * G2 + D * D);
}

// The plane point on the unit sphere, without the limiting forms.
void Vdg4Plane(double B, double D, double lambda, double phi, double & X, double & Y)
{
  double const C = Cfunc(B);
  double const xp = xprime_function(B, C, D, Ffunc(B, C, D));
  X = std::copysign(kHalfPi * xp, lambda);
  Y = std::copysign(kHalfPi * std::sqrt(std::max(0.0, 1.0 + D * std::fabs(xp) - xp * xp)), phi);
}

void Vdg4Unit(double lambda, double phi, double & X, double & Y)
{
  if (std::fabs(phi) < kTolerance) {
    X = lambda;
    Y = 0.0;
  } else if (std::fabs(lambda) < kTolerance || std::fabs(std::fabs(phi) - kHalfPi) < kTolerance) {
    X = 0.0;
    Y = phi;
  } else {
    Vdg4Plane(Bfunc(phi), Dfunc(lambda), lambda, phi, X, Y);
  }
}

// dC/dB of the quotient C = n/d.
double dCdB(double B)
{
  double const n = 8.0 * B - 2.0 * B * B - B * B * B * B - 5.0, d = 2.0 * B * B * (B - 1.0);
  double const dn = 8.0 - 4.0 * B - 4.0 * B * B * B, dd = 6.0 * B * B - 4.0 * B;
  return (dn * d - n * dd) / (d * d);
}

// dF/dB through B and C(B), and dF/dD.
double dFdlat_func(double B, double C, double Cb, double D)
{
  double const G = B + C, H = B + 3.0 * C;
  double const inner = B * B * (H * H + 4.0 * C * C) + 12.0 * B * C * C * C + 4.0 * C * C * C * C;
  double const dInner = 2.0 * B * (H * H + 4.0 * C * C) + B * B * (2.0 * H * (1.0 + 3.0 * Cb) + 8.0 * C * Cb) +
                        12.0 * C * C * C + 36.0 * B * C * C * Cb + 16.0 * C * C * C * Cb;
  return 2.0 * G * (1.0 + Cb) * (B * B + C * C * D * D - 1.0) + G * G * (2.0 * B + 2.0 * C * Cb * D * D) -
         2.0 * B * inner + (1.0 - B * B) * dInner;
}
double dFdlon_func(double B, double C, double D) { return 2.0 * (B + C) * (B + C) * C * C * D; }

// dx'/dB and dx'/dD of x' = N/M.
void xprime_derivs(double B, double D, double & xp, double & xpB, double & xpD)
{
  double const C = Cfunc(B), Cb = dCdB(B);
  double const F = std::max(Ffunc(B, C, D), 1e-300), rootF = std::sqrt(F);
  double const G2 = (B + C) * (B + C), G2b = 2.0 * (B + C) * (1.0 + Cb);
  double const N = D * (G2 + C * C - 1.0) + 2.0 * rootF, M = 4.0 * G2 + D * D;
  double const NB = D * (G2b + 2.0 * C * Cb) + dFdlat_func(B, C, Cb, D) / rootF;
  double const ND = G2 + C * C - 1.0 + dFdlon_func(B, C, D) / rootF;
  double const MB = 4.0 * G2b, MD = 2.0 * D;
  xp = N / M;
  xpB = (NB * M - N * MB) / (M * M);
  xpD = (ND * M - N * MD) / (M * M);
}

// The unit plane point and its partials in latitude and longitude (f1 = X, f2 = Y).
void Vdg4Jacobian(double lambda, double phi, double & X, double & Y, double J[4])
{
  double const B = Bfunc(phi), v = std::fabs(2.0 * lambda / kPi), D = v - 1.0 / v;
  double xp, xpB, xpD;
  xprime_derivs(B, D, xp, xpB, xpD);
  double const yp = std::sqrt(std::max(1e-300, 1.0 + D * xp - xp * xp));
  double const ypB = (D * xpB - 2.0 * xp * xpB) / (2.0 * yp);
  double const ypD = (xp + D * xpD - 2.0 * xp * xpD) / (2.0 * yp);
  double const sLon = lambda < 0.0 ? -1.0 : 1.0, sLat = phi < 0.0 ? -1.0 : 1.0;
  double const dDdlambda = (1.0 + 1.0 / (v * v)) * 2.0 / kPi * sLon; // dD/dv dv/dlambda
  double const dBdphi = 2.0 / kPi * sLat;
  X = sLon * kHalfPi * xp;
  Y = sLat * kHalfPi * yp;
  J[0] = sLon * kHalfPi * xpB * dBdphi;   // f1_deriv_lat
  J[1] = sLon * kHalfPi * xpD * dDdlambda; // f1_deriv_lon
  J[2] = sLat * kHalfPi * ypB * dBdphi;   // f2_deriv_lat
  J[3] = sLat * kHalfPi * ypD * dDdlambda; // f2_deriv_lon
}

struct BTiling
{
  double X, Y;                 // the target, unit sphere
  double lambda = 0, phi = 0;  // the best point
  double best = INFINITY;      // its squared distance

  void TryPoint(double l, double p)
  {
    if (std::fabs(p) >= kHalfPi)
      p = std::copysign(kTilePole, p);
    double x, y;
    Vdg4Unit(l, p, x, y);
    double const d = (x - X) * (x - X) + (y - Y) * (y - Y);
    if (d < best) {
      best = d;
      lambda = l;
      phi = p;
    }
  }

  // Five longitudes by three latitudes at thirds of the cell about the best point.
  void TryTilingStep(double cellLambda, double cellPhi)
  {
    double const l0 = lambda, p0 = phi;
    for (int i = -2; i <= 2; ++i)
      for (int j = -1; j <= 1; ++j) {
        double const l = l0 + i * cellLambda / 3.0, p = p0 + j * cellPhi / 3.0;
        if (std::fabs(l) <= kPi + kTileEdge && std::fabs(p) <= kHalfPi + kTileEdge)
          TryPoint(l, p);
      }
  }

  // Newton steps while the distance falls, from the tiling's point moved off
  // the limiting forms, which the target is not on; a step that would not
  // bring the distance down is halved until it does (near the poles the map
  // folds the longitudes together and full steps overshoot). Ends once a
  // step is below 1e-7 radian.
  bool TryNewtonStep(double l, double p)
  {
    l = std::fabs(l) < kNewtonStart ? std::copysign(kNewtonStart, X) : l;
    p = std::copysign(std::clamp(std::fabs(p), kNewtonStart, kHalfPi - kNewtonStart), Y);
    double x, y, J[4];
    Vdg4Jacobian(l, p, x, y, J);
    double d = (x - X) * (x - X) + (y - Y) * (y - Y);
    for (int round = 0; round < kVdg4NewtonRounds; ++round) {
      double const det = J[0] * J[3] - J[1] * J[2];
      if (!(det != 0.0 && std::isfinite(det)))
        break;
      double const f1 = x - X, f2 = y - Y;
      double dPhi = (f2 * J[1] - f1 * J[3]) / det, dLambda = (f1 * J[2] - f2 * J[0]) / det;
      bool fell = false;
      double taken = 0.0;
      for (int half = 0; half < kVdg4Halvings && !fell; ++half, dPhi *= 0.5, dLambda *= 0.5) {
        // The map's edge meridians and the poles bound the steps.
        double const nl = std::clamp(l + dLambda, -kPi, kPi);
        double const np = std::clamp(p + dPhi, -kTilePole, kTilePole);
        double nx, ny, nJ[4];
        Vdg4Jacobian(nl, np, nx, ny, nJ);
        double const nd = (nx - X) * (nx - X) + (ny - Y) * (ny - Y);
        if (nd < d) {
          fell = true;
          taken = std::max(std::fabs(dPhi), std::fabs(dLambda));
          l = nl;
          p = np;
          d = nd;
          x = nx;
          y = ny;
          std::copy(nJ, nJ + 4, J);
        }
      }
      if (!fell || taken < kTolerance)
        break;
    }
    if (!(d < best))
      return std::sqrt(best) < kVdg4Fit;
    lambda = l;
    phi = p;
    best = d;
    return std::sqrt(d) < kVdg4Fit;
  }
};

} // namespace

bool CVanDerGrintenIV::Forward(double lambda, double phi, double & x, double & y) const
{
  double X, Y;
  Vdg4Unit(lambda, phi, X, Y);
  x = m_R * X;
  y = m_R * Y;
  return true;
}

bool CVanDerGrintenIV::Inverse(double x, double y, double & lambda, double & phi) const
{
  // The equator and the central meridian are straight and true to scale.
  if (std::fabs(y) < kTolerance * m_R || std::fabs(x) < kTolerance * m_R) {
    lambda = std::fabs(y) < kTolerance * m_R ? x / m_R : 0.0;
    phi = std::fabs(y) < kTolerance * m_R ? 0.0 : y / m_R;
    return std::fabs(lambda) <= kPi + kTolerance && std::fabs(phi) <= kHalfPi + kTolerance;
  }
  BTiling tiling;
  tiling.X = x / m_R;
  tiling.Y = y / m_R;
  tiling.TryPoint(0.0, 0.0);
  double cellLambda = kPi, cellPhi = kHalfPi;
  for (int round = 0; round < kTileRounds; ++round) {
    tiling.TryTilingStep(cellLambda, cellPhi);
    cellLambda *= kTileShrink;
    cellPhi *= kTileShrink;
  }
  // Near the poles the map draws the meridians together and the tiles may
  // settle on the wrong one: Newton's method then starts again from the
  // tiles' latitude on a few meridians on the target's side.
  bool hit = tiling.TryNewtonStep(tiling.lambda, tiling.phi);
  double const phi0 = tiling.phi;
  for (double const quarter : {1.0, 2.0, 3.0, 4.0})
    hit = hit || tiling.TryNewtonStep(std::copysign(quarter * kQuarterPi, x), phi0);
  if (!hit)
    return false;
  lambda = tiling.lambda;
  phi = tiling.phi;
  return true;
}

} // namespace Velmora::CS::PJ
