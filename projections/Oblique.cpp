#include <velmora/projections/Oblique.h>

#include <velmora/foundation/Constants.h>
#include <velmora/projections/ParameterNames_p.h>
#include <velmora/refsys/EllipsoidKernel_p.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <utility>

namespace Velmora::CS::PJ {

using Constants::kHalfPi;
using Constants::kPi;
using Constants::kQuarterPi;
using Constants::kRadiansPerDegree;
using Constants::kTwoPi;
using namespace Parameter;

namespace {

// How many parameters each class reads.
constexpr long kTwoPointHotineCount = 8;
constexpr long kOnePointCount = 7;
constexpr long kAzimuthFormCount = 11;
constexpr long kTwoPointFormCount = 11;
constexpr long kKrovakCount = 7;
constexpr long kLabordeCount = 7;

// A latitude this close to a pole (radians) takes the pole's values, and so
// does an inverse whose U' is this close to 1.
constexpr double kPoleTolerance = 1e-07;
// Azimuths this close to a quarter turn take the special form of u at the
// centre (Guidance Note 7-2, method 9815).
constexpr double kQuarterTurnTolerance = 1e-10;
// Krovak's inverse stops its latitude iteration at this step (radians).
constexpr double kKrovakTolerance = 1e-07;
// The exact inverses (oblique cylinder, Laborde) iterate to rounding.
constexpr double kExactTolerance = 1e-12;
constexpr int kLatitudeRounds = 100;
// Laborde's complex cubic is solved until its residual is below this.
constexpr double kLabordeCubicTolerance = 1e-11;
constexpr int kLabordeCubicRounds = 50;
// Krovak's plane offsets below this (metres) are the origin itself.
constexpr double kKrovakOrigin = 1e-15;
// An oblique cylinder's sin b' this close to 1 is its pole, some 10 m away
// at most, where the northing leaves every range: the forward refuses it.
constexpr double kCylinderPole = 1e-12;

double Clamp1(double x) { return std::clamp(x, -1.0, 1.0); }

// Into -pi to pi by fmod; most longitudes are there already.
double WrapPi(double lambda)
{
  if (lambda >= -kPi && lambda <= kPi)
    return lambda;
  double w = std::fmod(lambda + kPi, kTwoPi);
  if (w < 0.0)
    w += kTwoPi;
  return w - kPi;
}

bool Finite(double x, double y) { return std::isfinite(x) && std::isfinite(y); }

long Flag(CParameterCollection const & p, char const * name) { return p.GetLong(CString(name)); }
double Scale(CParameterCollection const & p) { return p.GetDouble(CString(kScaleFactor)); }

// The one-point Hotine types: centre, azimuth, the skew as rectification.
bool SetOnePoint(BHotineAposphere & om, CParameterCollection const & p, BEllipsoid const * figure, bool centre)
{
  if (!figure)
    return false;
  om.SetCentre(figure->GetSemiMajor(), figure->GetEccentricitySquared(), Radians(p, kLatitudeOfOrigin), Scale(p));
  om.SetAzimuth(Radians(p, kCentralMeridian), Radians(p, kAzimuth), false);
  om.SetRectification(Radians(p, kAzimuthSkew));
  om.fromCentre = centre;
  om.poleTest = !centre;
  om.fe = Internal(p, kFalseEasting);
  om.fn = Internal(p, kFalseNorthing);
  return true;
}

// The two-point types: the centre's latitude, scale and the two points.
bool SetTwoPoints(BHotineAposphere & om, CParameterCollection const & p, BEllipsoid const * figure)
{
  if (!figure)
    return false;
  om.SetCentre(figure->GetSemiMajor(), figure->GetEccentricitySquared(), Radians(p, kLatitudeOfOrigin), Scale(p));
  om.SetTwoPoints(Radians(p, kStandardParallel1), Radians(p, kStandardLongitude1), Radians(p, kStandardParallel2),
                  Radians(p, kStandardLongitude2));
  om.fromCentre = false;
  om.fe = Internal(p, kFalseEasting);
  om.fn = Internal(p, kFalseNorthing);
  return true;
}

// A figure's isometric latitude and its inverse, by the kernel's series of
// e atanh(e sin phi).
struct BIsometric
{
  double e = 0.0;
  double c[Kernel::kEAtanhETerms] = {};
  int terms = 0;

  void Set(double eccentricity)
  {
    e = eccentricity;
    terms = Kernel::MakeEAtanhE(e, c);
  }
  Kernel::EAtanhE Series() const { return {e, c, terms}; }
  double Psi(double phi) const { return Kernel::IsometricLatitudeFromSine(Series(), std::sin(phi)); }
  double Latitude(double psi, double tolerance) const
  {
    return Kernel::LatitudeFromT(Series(), std::exp(-psi), tolerance, kLatitudeRounds);
  }
};

} // namespace

// BHotineAposphere
//
// B = sqrt(1 + e2 cos^4 phic/(1 - e2)), A = a B kc sqrt(1 - e2)/(1 - e2 sin^2 phic),
// D = B sqrt(1 - e2)/(cos phic sqrt(1 - e2 sin^2 phic)), F = D + sqrt(D^2 - 1) sign(phic),
// E = F t0^B (Guidance Note 7-2, method 9812, where E is written H).

void BHotineAposphere::SetCentre(double semiMajor, double eccentricitySquared, double phiC, double k0)
{
  a = semiMajor;
  e2 = eccentricitySquared;
  e = std::sqrt(e2);
  eatanheTerms = Kernel::MakeEAtanhE(e, eatanhe);
  Kernel::ConformalSeries const series = Kernel::ConformalSeries::Make(e2);
  c2 = series.c2;
  c4 = series.c4;
  c6 = series.c6;
  c8 = series.c8;
  sign = phiC < 0.0 ? -1.0 : 1.0;
  if (std::fabs(std::fabs(phiC) - kHalfPi) <= kPoleTolerance) {
    // The limits as cos phic goes to 0: F t0 tends to ((1 + e)/(1 - e))^(sign e/2).
    B = 1.0;
    A = a * k0 / std::sqrt(1.0 - e2);
    D = F = INFINITY;
    E = std::pow((1.0 + e) / (1.0 - e), sign * 0.5 * e);
    lnE = std::log(E);
    return;
  }
  double const s = std::sin(phiC), c = std::cos(phiC);
  double const w = 1.0 - e2 * s * s;
  B = std::sqrt(1.0 + e2 * c * c * c * c / (1.0 - e2));
  A = a * B * k0 * std::sqrt(1.0 - e2) / w;
  D = B * std::sqrt(1.0 - e2) / (c * std::sqrt(w));
  double const D2 = std::max(D * D, 1.0);
  F = D + sign * std::sqrt(D2 - 1.0);
  E = F * std::pow(Kernel::ConformalT(e, phiC), B);
  lnE = std::log(E);
}

// gamma0 = asin(sin alphac/D), lambda0 = lambdac - asin(G tan gamma0)/B,
// |uc| = (A/B) |atan(sqrt(D^2 - 1)/cos alphac)|, or A (lambdac - lambda0) for
// an azimuth of a quarter turn (Guidance Note 7-2, method 9815): the
// arctangent of one argument is u of the centre itself on both sides of a
// quarter turn, so that the centre keeps its false values.
void BHotineAposphere::SetAzimuth(double lambdaC, double angle, bool isGamma)
{
  if (std::isinf(D)) {
    alphaC = angle;
    gamma0 = 0.0;
    lambda0 = lambdaC - std::asin(sign * std::sin(alphaC));
    uc = sign * A * kHalfPi;
  } else {
    if (isGamma) {
      gamma0 = angle;
      alphaC = std::asin(Clamp1(D * std::sin(gamma0)));
    } else {
      alphaC = angle;
      gamma0 = std::asin(Clamp1(std::sin(alphaC) / D));
    }
    double const G = (F - 1.0 / F) / 2.0;
    lambda0 = lambdaC - std::asin(Clamp1(G * std::tan(gamma0))) / B;
    double const D2 = std::max(D * D, 1.0);
    double const u = std::fabs(std::fabs(alphaC) - kHalfPi) <= kQuarterTurnTolerance
                       ? A * (lambdaC - lambda0)
                       : A / B * std::atan(std::sqrt(D2 - 1.0) / std::cos(alphaC));
    uc = std::fabs(u) * sign;
  }
  sinGamma0 = std::sin(gamma0);
  cosGamma0 = std::cos(gamma0);
}

// With H = t1^B and L = t2^B of the two points, J = (E^2 - L H)/(E^2 + L H),
// P = (L - H)/(L + H), lambda0 = (lambda1 + lambda2)/2 - atan(J tan(B (lambda1 - lambda2)/2)/P)/B,
// gamma0 = atan(sin(B (lambda1 - lambda0))/G), G = (F' - 1/F')/2,
// F' = E/H, and alphac = asin(D sin gamma0) (Snyder 9-21 to 9-28).
void BHotineAposphere::SetTwoPoints(double phi1, double lambda1, double phi2, double lambda2)
{
  double const H = std::pow(Kernel::ConformalT(e, phi1), B), L = std::pow(Kernel::ConformalT(e, phi2), B);
  double const Fp = E / H;
  double const J = (E * E - L * H) / (E * E + L * H);
  double const P = (L - H) / (L + H);
  if (lambda1 - lambda2 < -kPi)
    lambda2 -= kTwoPi;
  else if (lambda1 - lambda2 > kPi)
    lambda2 += kTwoPi;
  lambda0 = WrapPi(0.5 * (lambda1 + lambda2) - std::atan(J * std::tan(0.5 * B * (lambda1 - lambda2)) / P) / B);
  gamma0 = std::atan(std::sin(B * WrapPi(lambda1 - lambda0)) / ((Fp - 1.0 / Fp) / 2.0));
  sinGamma0 = std::sin(gamma0);
  cosGamma0 = std::cos(gamma0);
  alphaC = std::asin(Clamp1(D * sinGamma0));
  double const D2 = std::max(D * D, 1.0);
  uc = sign * std::fabs(A / B * std::atan(std::sqrt(D2 - 1.0) / std::cos(alphaC)));
}

void BHotineAposphere::SetRectification(double angle)
{
  gammaC = angle;
  sinGammaC = std::sin(angle);
  cosGammaC = std::cos(angle);
}

// Q = E/t^B = E e^(B psi), S = (Q - 1/Q)/2, T = (Q + 1/Q)/2, V = sin(B (lambda - lambda0)),
// U = (-V cos gamma0 + S sin gamma0)/T, v = A ln((1 - U)/(1 + U))/(2B),
// u = (A/B) atan2(S cos gamma0 + V sin gamma0, cos(B (lambda - lambda0)));
// at a pole v = (A/B) ln tan(pi/4 -+ gamma0/2), u = A phi/B (Snyder 9-7 to 9-13).
void BHotineAposphere::Forward(double lambda, double phi, double & x, double & y) const
{
  double u, v;
  if (poleTest && std::fabs(std::fabs(phi) - kHalfPi) <= kPoleTolerance) {
    double const s = phi > 0.0 ? 1.0 : -1.0;
    v = A / B * std::log(std::tan(kQuarterPi - s * 0.5 * gamma0));
    u = s * A / B * kHalfPi;
  } else {
    double const psi = Kernel::IsometricLatitudeFromSine({e, eatanhe, eatanheTerms}, std::sin(phi));
    double const Q = std::exp(lnE + B * psi);
    double const S = 0.5 * (Q - 1.0 / Q), T = 0.5 * (Q + 1.0 / Q);
    double V, cosBl;
    ::sincos(B * WrapPi(lambda - lambda0), &V, &cosBl);
    double const U = (-V * cosGamma0 + S * sinGamma0) / T;
    v = A * std::log((1.0 - U) / (1.0 + U)) / (2.0 * B);
    u = A / B * std::atan2(S * cosGamma0 + V * sinGamma0, cosBl);
  }
  if (fromCentre)
    u -= uc;
  if (rectified) {
    x = v * cosGammaC + u * sinGammaC + fe;
    y = u * cosGammaC - v * sinGammaC + fn;
  } else {
    x = u + fe;
    y = v + fn;
  }
}

// Q' = e^(-B v/A), S', T', V' = sin(B u/A), U' = (V' cos gamma0 + S' sin gamma0)/T',
// t = (E/sqrt((1 + U')/(1 - U')))^(1/B), chi = pi/2 - 2 atan t, then the
// series for phi; lambda = lambda0 - atan2(S' cos gamma0 - V' sin gamma0, cos(B u/A))/B
// (Guidance Note 7-2, method 9812).
void BHotineAposphere::Inverse(double x, double y, double & lambda, double & phi) const
{
  double const dx = x - fe, dy = y - fn;
  double u = dx, v = dy;
  if (rectified) {
    v = dx * cosGammaC - dy * sinGammaC;
    u = dy * cosGammaC + dx * sinGammaC;
  }
  if (fromCentre)
    u += uc;
  double const Q = std::exp(-B * v / A);
  double const S = 0.5 * (Q - 1.0 / Q), T = 0.5 * (Q + 1.0 / Q);
  double V, cosBu;
  ::sincos(B * u / A, &V, &cosBu);
  double const U = (V * cosGamma0 + S * sinGamma0) / T;
  if (std::fabs(std::fabs(U) - 1.0) <= kPoleTolerance) {
    phi = std::copysign(kHalfPi, U);
    lambda = WrapPi(lambda0);
    return;
  }
  double const t = std::exp((lnE - std::atanh(U)) / B);
  double const chi = kHalfPi - 2.0 * std::atan(t);
  // The series summed by Clenshaw's recurrence on sin 2chi and cos 2chi.
  double s2, c2chi;
  ::sincos(2.0 * chi, &s2, &c2chi);
  double const r = 2.0 * c2chi;
  double const b4 = c8, b3 = c6 + r * b4, b2 = c4 + r * b3 - b4, b1 = c2 + r * b2 - b3;
  phi = chi + b1 * s2;
  lambda = WrapPi(lambda0 - std::atan2(S * cosGamma0 - V * sinGamma0, cosBu) / B);
}

bool BHotineAposphere::ToPlane(double & x, double & y) const
{
  Forward(x * kRadiansPerDegree, y * kRadiansPerDegree, x, y);
  return Finite(x, y);
}

bool BHotineAposphere::FromPlane(double & x, double & y) const
{
  double lambda, phi;
  Inverse(x, y, lambda, phi);
  x = lambda / kRadiansPerDegree;
  y = phi / kRadiansPerDegree;
  return Finite(x, y);
}

// BObliqueCylinder
//
// alpha = sqrt(1 + e2 cos^4 phi0/(1 - e2)), b0 = asin(sin phi0/alpha),
// K = ln tan(pi/4 + b0/2) - alpha psi(phi0), R = k0 a sqrt(1 - e2)/(1 - e2 sin^2 phi0);
// forward b = 2 atan(e^(alpha psi + K)) - pi/2, l = alpha (lambda - lambda0),
// l' = atan2(cos b sin l, sin b0 sin b + cos b0 cos b cos l),
// sin b' = cos b0 sin b - sin b0 cos b cos l, E = R l', N = R atanh(sin b')
// (Guidance Note 7-2, method 9814), the arctangent taken with both signs.

namespace {
// Both cylinders keep their figure's isometric series beside them.
struct BCylinderOnFigure
{
  BObliqueCylinder cylinder;
  BIsometric iso;

  BCylinderOnFigure(double a, double rf, double phi0Degrees, double lambda0Degrees, double k0, double fe, double fn)
  {
    double const f = 1.0 / rf, e2 = f * (2.0 - f);
    iso.Set(std::sqrt(e2));
    cylinder.Set(a, e2, phi0Degrees * kRadiansPerDegree, lambda0Degrees * kRadiansPerDegree, k0, fe, fn);
  }
  bool Forward(double & x, double & y) const
  {
    double const psi = iso.Psi(y * kRadiansPerDegree);
    return cylinder.Forward(x * kRadiansPerDegree, psi, x, y) && Finite(x, y);
  }
  bool Inverse(double & x, double & y) const
  {
    double lambda, psi;
    cylinder.Inverse(x, y, lambda, psi);
    x = lambda / kRadiansPerDegree;
    y = iso.Latitude(psi, kExactTolerance) / kRadiansPerDegree;
    return Finite(x, y);
  }
};

// Bessel 1841 and the origin of LV03 (Swisstopo 2008; EPSG CRS 21781).
BCylinderOnFigure const kSwiss(6377397.155, 299.1528128, 46.0 + 57.0 / 60.0 + 8.66 / 3600.0,
                               7.0 + 26.0 / 60.0 + 22.50 / 3600.0, 1.0, 600000.0, 200000.0);
// GRS 1967 and the centre of EOV (EPSG CRS 23700, Hotine variant B with a
// quarter-turn azimuth, the same cylinder).
BCylinderOnFigure const kEov(6378160.0, 298.247167427, 47.0 + 8.0 / 60.0 + 39.8174 / 3600.0,
                             19.0 + 2.0 / 60.0 + 54.8584 / 3600.0, 0.99993, 650000.0, 200000.0);
} // namespace

void BObliqueCylinder::Set(double a, double eccentricitySquared, double phi0, double lambdaOrigin, double k0,
                           double falseEasting, double falseNorthing)
{
  double const e2 = eccentricitySquared, e = std::sqrt(e2);
  double const s = std::sin(phi0), c = std::cos(phi0);
  alpha = std::sqrt(1.0 + e2 * c * c * c * c / (1.0 - e2));
  b0 = std::asin(s / alpha);
  sinB0 = std::sin(b0);
  cosB0 = std::cos(b0);
  K = std::log(std::tan(kQuarterPi + 0.5 * b0)) + alpha * std::log(Kernel::ConformalT(e, phi0));
  R = k0 * a * std::sqrt(1.0 - e2) / (1.0 - e2 * s * s);
  lambda0 = lambdaOrigin;
  fe = falseEasting;
  fn = falseNorthing;
}

// Takes the isometric latitude psi in place of the latitude.
bool BObliqueCylinder::Forward(double lambda, double psi, double & x, double & y) const
{
  double const b = 2.0 * std::atan(std::exp(alpha * psi + K)) - kHalfPi;
  double sinb, cosb, sinl, cosl;
  ::sincos(b, &sinb, &cosb);
  ::sincos(alpha * WrapPi(lambda - lambda0), &sinl, &cosl);
  double const sinbp = cosB0 * sinb - sinB0 * cosb * cosl;
  if (!(std::fabs(sinbp) < 1.0 - kCylinderPole))
    return false;
  x = fe + R * std::atan2(cosb * sinl, sinB0 * sinb + cosB0 * cosb * cosl);
  y = fn + R * std::atanh(sinbp);
  return true;
}

// Gives the isometric latitude psi in place of the latitude.
void BObliqueCylinder::Inverse(double x, double y, double & lambda, double & psi) const
{
  double const lp = (x - fe) / R;
  double const bp = 2.0 * std::atan(std::exp((y - fn) / R)) - kHalfPi;
  double sinbp, cosbp, sinlp, coslp;
  ::sincos(bp, &sinbp, &cosbp);
  ::sincos(lp, &sinlp, &coslp);
  double const b = std::asin(Clamp1(cosB0 * sinbp + sinB0 * cosbp * coslp));
  double const l = std::atan2(cosbp * sinlp, cosB0 * cosbp * coslp - sinB0 * sinbp);
  lambda = WrapPi(lambda0 + l / alpha);
  psi = (std::log(std::tan(kQuarterPi + 0.5 * b)) - K) / alpha;
}

// CHotineObliqueMercator: u from the centre, rectified by alphac (Snyder
// 9-14, 9-15).

void CHotineObliqueMercator::OnChange(unsigned short const *)
{
  if (!ParametersReady(kTwoPointHotineCount))
    return;
  m_ready = SetTwoPoints(m_om, std::as_const(*this).GetParameters(), GetInnerEllipsoid());
  m_om.SetRectification(m_om.alphaC);
  m_om.fromCentre = true;
}

// CHotineObliqueMercator_1 and _2

void CHotineObliqueMercator_1::OnChange(unsigned short const *)
{
  if (ParametersReady(kOnePointCount))
    m_ready = SetOnePoint(m_om, std::as_const(*this).GetParameters(), GetInnerEllipsoid(), false);
}

void CHotineObliqueMercator_2::OnChange(unsigned short const *)
{
  if (ParametersReady(kOnePointCount))
    m_ready = SetOnePoint(m_om, std::as_const(*this).GetParameters(), GetInnerEllipsoid(), true);
}

// CObliqueMercatorAzimuth

void CObliqueMercatorAzimuth::OnChange(unsigned short const *)
{
  if (!ParametersReady(kAzimuthFormCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = figure != nullptr;
  if (!m_ready)
    return;
  m_lambdaC = Internal(p, kCentralMeridian);
  m_om.SetCentre(figure->GetSemiMajor(), figure->GetEccentricitySquared(), Radians(p, kLatitudeOfOrigin), Scale(p));
  m_om.SetAzimuth(m_lambdaC * kRadiansPerDegree, Radians(p, kAzimuth), Flag(p, kAzimuthIsGamma) != 0);
  m_om.SetRectification(Flag(p, kUseGammaFlag) ? m_om.gamma0 : Radians(p, kRotationAngle));
  m_om.rectified = Flag(p, kUnrectifiedFlag) == 0;
  m_om.fromCentre = Flag(p, kCenterFlag) != 0;
  m_om.fe = Internal(p, kFalseEasting);
  m_om.fn = Internal(p, kFalseNorthing);
}

bool CObliqueMercatorAzimuth::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_lambdaC);
  return m_om.ToPlane(x, y);
}

// CObliqueMercatorTwoPoints

void CObliqueMercatorTwoPoints::OnChange(unsigned short const *)
{
  if (!ParametersReady(kTwoPointFormCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  m_ready = SetTwoPoints(m_om, p, GetInnerEllipsoid());
  m_om.SetRectification(Flag(p, kUseGammaFlag) ? m_om.gamma0 : Radians(p, kRotationAngle));
  m_om.rectified = Flag(p, kUnrectifiedFlag) == 0;
}

// CSwissObliqueMercator and CEgysegesOrszagosVetulet

bool CSwissObliqueMercator::ToPlane(double & x, double & y) const { return kSwiss.Forward(x, y); }
bool CSwissObliqueMercator::FromPlane(double & x, double & y) const { return kSwiss.Inverse(x, y); }
bool CEgysegesOrszagosVetulet::ToPlane(double & x, double & y) const { return kEov.Forward(x, y); }
bool CEgysegesOrszagosVetulet::FromPlane(double & x, double & y) const { return kEov.Inverse(x, y); }

// CKrovak
//
// A = a sqrt(1 - e2)/(1 - e2 sin^2 phic), B = sqrt(1 + e2 cos^4 phic/(1 - e2)),
// gamma0 = asin(sin phic/B), t0 = tan(pi/4 + gamma0/2) ((1 + e sin phic)/(1 - e sin phic))^(eB/2)
// / tan^B(pi/4 + phic/2), n = sin phip, r0 = kp A/tan phip (Guidance Note 7-2, method 9819).

void CKrovak::OnChange(unsigned short const *)
{
  if (!ParametersReady(kKrovakCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = figure != nullptr;
  if (!m_ready)
    return;
  double const e2 = figure->GetEccentricitySquared(), a = figure->GetSemiMajor();
  m_e = std::sqrt(e2);
  double const phiC = Radians(p, kLatitudeOfOrigin), phiP = Radians(p, kLatitudeOfTrueScale);
  double const alphaC = Radians(p, kAzimuth);
  double const s = std::sin(phiC), c = std::cos(phiC);
  double const A = a * std::sqrt(1.0 - e2) / (1.0 - e2 * s * s);
  m_B = std::sqrt(1.0 + e2 * std::pow(c, 4.0) / (1.0 - e2));
  double const gamma0 = std::asin(s / m_B);
  // t0 = tan(pi/4 + gamma0/2) / e^(B psi(phic)), the isometric form of the same.
  m_t0 = std::tan(kQuarterPi + 0.5 * gamma0) * std::pow(Kernel::ConformalT(m_e, phiC), m_B);
  m_lnT0 = std::log(m_t0);
  m_n = std::sin(phiP);
  m_r0 = Scale(p) * A / std::tan(phiP);
  m_rFactor = m_r0 * std::pow(std::tan(kQuarterPi + 0.5 * phiP), m_n);
  m_sinAlpha = std::sin(alphaC);
  m_cosAlpha = std::cos(alphaC);
  m_lambda0 = Radians(p, kCentralMeridian);
  m_fe = Internal(p, kFalseEasting);
  m_fn = Internal(p, kFalseNorthing);
  eatanheTerms = Kernel::MakeEAtanhE(m_e, eatanhe);
}

// U = 2 atan(t0 e^(B psi)) - pi/2, V = B (lambda0 - lambda),
// T = asin(cos alphac sin U + sin alphac cos U cos V), D from cos T sin D = cos U sin V,
// theta = n D, r = r0 tan^n(pi/4 + phip/2)/tan^n(T/2 + pi/4);
// southing X = r cos theta + FN in x, westing Y = r sin theta + FE in y.
bool CKrovak::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const psi = Kernel::IsometricLatitudeFromSine({m_e, eatanhe, eatanheTerms}, std::sin(y * kRadiansPerDegree));
  // With w = tan(U/2 + pi/4): sin U = (w^2 - 1)/(w^2 + 1), cos U = 2w/(w^2 + 1);
  // and tan^n(T/2 + pi/4) = e^(n atanh(sin T)).
  double const w = m_t0 * std::exp(m_B * psi), w2 = w * w;
  double const sinU = (w2 - 1.0) / (w2 + 1.0), cosU = 2.0 * w / (w2 + 1.0);
  double sinV, cosV;
  ::sincos(m_B * WrapPi(m_lambda0 - x * kRadiansPerDegree), &sinV, &cosV);
  double const sinT = Clamp1(m_cosAlpha * sinU + m_sinAlpha * cosU * cosV);
  double const D = std::atan2(cosU * sinV, m_cosAlpha * cosU * cosV - m_sinAlpha * sinU);
  double const r = m_rFactor * std::exp(-m_n * std::atanh(sinT));
  double sinTheta, cosTheta;
  ::sincos(m_n * D, &sinTheta, &cosTheta);
  x = r * cosTheta + m_fn;
  y = r * sinTheta + m_fe;
  return Finite(x, y);
}

// r' and theta' of the plane point, D' = theta'/n, T' = 2 atan((r0/r')^(1/n) tan(pi/4 + phip/2)) - pi/2,
// U' = asin(cos alphac sin T' - sin alphac cos T' cos D'), V' from cos U' sin V' = cos T' sin D',
// lambda = lambda0 - V'/B, and the latitude whose psi is (ln tan(pi/4 + U'/2) - ln t0)/B.
bool CKrovak::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double Xp = x - m_fn, Yp = y - m_fe;
  if (std::fabs(Xp) < kKrovakOrigin && std::fabs(Yp) < kKrovakOrigin)
    Xp = Yp = 0.0;
  double const r = std::hypot(Xp, Yp);
  double const D = std::atan2(Yp, Xp) / m_n;
  // With q = tan(T/2 + pi/4) = (r0 tan^n(pi/4 + phip/2)/r')^(1/n): sin T and
  // cos T as U's above; at the apex r' = 0, T = pi/2. The isometric
  // latitude of U on the sphere is atanh(sin U).
  double sinT = 1.0, cosT = 0.0;
  if (r != 0.0) {
    double const q = std::pow(m_rFactor / r, 1.0 / m_n), q2 = q * q;
    sinT = std::isinf(q2) ? 1.0 : (q2 - 1.0) / (q2 + 1.0);
    cosT = std::isinf(q2) ? 0.0 : 2.0 * q / (q2 + 1.0);
  }
  double sinD, cosD;
  ::sincos(D, &sinD, &cosD);
  double const sinU = Clamp1(m_cosAlpha * sinT - m_sinAlpha * cosT * cosD);
  double const V = std::atan2(cosT * sinD, m_cosAlpha * cosT * cosD + m_sinAlpha * sinT);
  double const psi = (std::atanh(sinU) - m_lnT0) / m_B;
  double const phi = Kernel::LatitudeFromT({m_e, eatanhe, eatanheTerms}, std::exp(-psi), kKrovakTolerance,
                                           kLatitudeRounds);
  x = WrapPi(m_lambda0 - V / m_B) / kRadiansPerDegree;
  y = phi / kRadiansPerDegree;
  return Finite(x, y);
}

// CLaborde
//
// B as Hotine's, phis = asin(sin phic/B), R = a kc sqrt(1 - e2)/(1 - e2 sin^2 phic),
// C = ln tan(pi/4 + phis/2) - B psi(phic), G = (1 - cos 2alphac + i sin 2alphac)/12
// (Guidance Note 7-2, method 9813).

void CLaborde::OnChange(unsigned short const *)
{
  if (!ParametersReady(kLabordeCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = figure != nullptr;
  if (!m_ready)
    return;
  double const e2 = figure->GetEccentricitySquared();
  m_e = std::sqrt(e2);
  eatanheTerms = Kernel::MakeEAtanhE(m_e, eatanhe);
  double const phiC = Radians(p, kLatitudeOfOrigin), alphaC = Radians(p, kAzimuth);
  double const s = std::sin(phiC), c = std::cos(phiC);
  m_B = std::sqrt(1.0 + e2 * c * c * c * c / (1.0 - e2));
  double const phiS = std::asin(s / m_B);
  m_sinS = std::sin(phiS);
  m_cosS = std::cos(phiS);
  m_R = figure->GetSemiMajor() * Scale(p) * std::sqrt(1.0 - e2) / (1.0 - e2 * s * s);
  m_C = std::log(std::tan(kQuarterPi + 0.5 * phiS)) -
        m_B * Kernel::IsometricLatitudeFromSine({m_e, eatanhe, eatanheTerms}, s);
  m_Gre = (1.0 - std::cos(2.0 * alphaC)) / 12.0;
  m_Gim = std::sin(2.0 * alphaC) / 12.0;
  m_lambdaC = Radians(p, kCentralMeridian);
  m_fe = Internal(p, kFalseEasting);
  m_fn = Internal(p, kFalseNorthing);
}

// L = B (lambda - lambdac), P = 2 atan(e^(C + B psi)) - pi/2, the sphere turned
// by phis to (L', P'), H = -L' + i ln tan(pi/4 + P'/2), E + i N from R (H + G H^3).
bool CLaborde::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_lambdaC / kRadiansPerDegree);
  double const psi = Kernel::IsometricLatitudeFromSine({m_e, eatanhe, eatanheTerms}, std::sin(y * kRadiansPerDegree));
  double const P = 2.0 * std::atan(std::exp(m_C + m_B * psi)) - kHalfPi;
  double sinP, cosP, sinL, cosL;
  ::sincos(P, &sinP, &cosP);
  ::sincos(m_B * WrapPi(x * kRadiansPerDegree - m_lambdaC), &sinL, &cosL);
  double const U = cosP * cosL * m_cosS + sinP * m_sinS;
  double const V = cosP * cosL * m_sinS - sinP * m_cosS;
  double const W = cosP * sinL;
  double const d = std::hypot(U, V);
  double const Lp = d != 0.0 ? std::atan2(V, U) : 0.0;
  double const Pp = d != 0.0 ? std::atan(W / d) : std::copysign(kHalfPi, W);
  std::complex<double> const H(-Lp, std::log(std::tan(kQuarterPi + 0.5 * Pp)));
  std::complex<double> const Z = H + std::complex<double>(m_Gre, m_Gim) * H * H * H;
  x = m_fe + m_R * Z.imag();
  y = m_fn + m_R * Z.real();
  return Finite(x, y);
}

// H + G H^3 = H0 by Newton's steps H <- (H0 + 2G H^3)/(3G H^2 + 1), then the
// sphere turned back and the latitude of psi = (ln tan(pi/4 + P/2) - C)/B.
bool CLaborde::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  std::complex<double> const G(m_Gre, m_Gim);
  std::complex<double> const H0((y - m_fn) / m_R, (x - m_fe) / m_R);
  std::complex<double> H = H0;
  for (int i = 0; i < kLabordeCubicRounds && std::abs(H0 - H - G * H * H * H) >= kLabordeCubicTolerance; ++i)
    H = (H0 + 2.0 * G * H * H * H) / (3.0 * G * H * H + 1.0);
  double const Lp = -H.real();
  double const Pp = 2.0 * std::atan(std::exp(H.imag())) - kHalfPi;
  double sinP, cosP, sinL, cosL;
  ::sincos(Pp, &sinP, &cosP);
  ::sincos(Lp, &sinL, &cosL);
  double const U = cosP * cosL * m_cosS + cosP * sinL * m_sinS;
  double const V = sinP;
  double const W = cosP * cosL * m_sinS - cosP * sinL * m_cosS;
  double const L = std::atan2(V, U);
  double const P = std::atan2(W, std::hypot(U, V));
  double const psi = (std::log(std::tan(kQuarterPi + 0.5 * P)) - m_C) / m_B;
  double const phi = Kernel::LatitudeFromT({m_e, eatanhe, eatanheTerms}, std::exp(-psi), kExactTolerance,
                                           kLatitudeRounds);
  x = WrapPi(m_lambdaC + L / m_B) / kRadiansPerDegree;
  y = phi / kRadiansPerDegree;
  return Finite(x, y);
}

} // namespace Velmora::CS::PJ
