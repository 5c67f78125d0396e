#include <velmora/projections/Azimuthal.h>

#include <velmora/foundation/Constants.h>
#include <velmora/projections/ParameterNames_p.h>
#include <velmora/refsys/EllipsoidKernel_p.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Velmora::CS::PJ {

using Constants::kHalfPi;
using Constants::kRadiansPerDegree;
using Constants::kTwoPi;
using namespace Parameter;

namespace {

// The names of the parameters only this family reads.
constexpr char kPlaneRotation[] = "xy_plane_rotation";
constexpr char kSphericalRadius[] = "spherical_radius";
constexpr char kHeight[] = "height";
constexpr char kAzimuthName[] = "azimuth";
constexpr char kTilt[] = "tilt";

// How many parameters each class reads.
constexpr long kStereographicCount = 6;
constexpr long kFiveCount = 5; // centre, scale or radius or turn, false origin
constexpr long kPolarCount = 4;
constexpr long kTiltedCount = 7;

// A plane point this close to the centre (metres) is the centre.
constexpr double kCentreTolerance = 1e-07;
// A centre this close to a pole (radians) makes the polar aspect.
constexpr double kPoleTolerance = 1e-07;
// The latitude iterations of the inverses: the step at which they stop,
// radians, and their limits.
constexpr double kIterationTolerance = 1e-07;
constexpr int kStereographicRounds = 1000;
constexpr int kArcRounds = 100;
// The oblique stereographic's iteration stops at 1e-5 seconds of arc, in degrees.
constexpr double kDoubleStereographicTolerance = 2.777777777777778e-09;
// The gnomonic refuses points whose cos c is at most this.
constexpr double kHorizon = 1e-07;

// 1 or -1 for a centre at the north or south pole, 0 elsewhere.
int PoleOf(double phi0)
{
  if (std::fabs(std::fabs(phi0) - kHalfPi) < kPoleTolerance)
    return phi0 > 0.0 ? 1 : -1;
  return 0;
}

// A longitude in radians into -pi to pi.
double Wrapped(double lambda) { return std::remainder(lambda, kTwoPi); }

// Radians to the degrees of a result.
void ToDegrees(double lambda, double phi, double & x, double & y)
{
  x = Wrapped(lambda) / kRadiansPerDegree;
  y = phi / kRadiansPerDegree;
}

// sin chi and cos chi of the conformal latitude from t = tan(pi/4 - chi/2),
// through 1/t beyond 1 so that t = infinity (the south pole) gives -1, 0.
void ChiFromT(double t, double & sinChi, double & cosChi)
{
  double const r = t > 1.0 ? 1.0 / t : t;
  double const d = 1.0 + r * r;
  sinChi = (t > 1.0 ? -1.0 : 1.0) * (1.0 - r * r) / d;
  cosChi = 2.0 * r / d;
}

// The centre, the false origin and the datum's figure, read the same way by
// most classes; false while the datum is missing.
struct Centre
{
  double lam0, phi0, fe, fn;
};

Centre ReadCentre(CParameterCollection const & p)
{
  return {Radians(p, kCentralMeridian), Radians(p, kLatitudeOfOrigin), Internal(p, kFalseEasting),
          Internal(p, kFalseNorthing)};
}

} // namespace

// BPlaneTurn

void BPlaneTurn::Set(double r)
{
  c = std::cos(r);
  s = std::sin(r);
}

void BPlaneTurn::Apply(double & x, double & y) const
{
  double const e = x * c + y * s;
  y = y * c - x * s;
  x = e;
}

void BPlaneTurn::Undo(double & x, double & y) const
{
  double const e = x * c - y * s;
  y = x * s + y * c;
  x = e;
}

// BStereographic

void BStereographic::Set(double semiMajor, double eccentricitySquared, double phi0, double lambda0, double k0)
{
  a = semiMajor;
  e2 = eccentricitySquared;
  e = std::sqrt(e2);
  eatanheTerms = Kernel::MakeEAtanhE(e, eatanhe);
  lam0 = lambda0;
  pole = PoleOf(phi0);
  if (pole != 0) {
    // Snyder 21-33 with phi_c at the pole.
    akm1 = 2.0 * a * k0 / std::sqrt(std::pow(1.0 + e, 1.0 + e) * std::pow(1.0 - e, 1.0 - e));
    return;
  }
  // Snyder 21-27: A = 2 a k0 m1 / (cos chi1 (1 + ...)).
  double const chi1 = Kernel::ConformalLatitude(e, phi0);
  sinChi1 = std::sin(chi1);
  cosChi1 = std::cos(chi1);
  akm1 = 2.0 * a * k0 * Kernel::ConicM(e2, phi0) / cosChi1;
}

void BStereographic::SetTrueScale(double phic, double k)
{
  phic = std::fabs(phic);
  if (PoleOf(phic) != 0)
    akm1 = 2.0 * a * k / std::sqrt(std::pow(1.0 + e, 1.0 + e) * std::pow(1.0 - e, 1.0 - e));
  else // Snyder 21-34: rho = a m_c t / t_c
    akm1 = a * k * Kernel::ConicM(e2, phic) / Kernel::ConformalT(e, phic);
}

bool BStereographic::Forward(double lambda, double phi, double & x, double & y) const
{
  double sinDl, cosDl;
  ::sincos(lambda - lam0, &sinDl, &cosDl);
  Kernel::EAtanhE const f{e, eatanhe, eatanheTerms};
  if (pole != 0) {
    double const rho = akm1 * Kernel::ConformalTFromSine(f, pole * std::sin(phi));
    if (!std::isfinite(rho))
      return false; // the other pole
    x = rho * sinDl;
    y = -pole * rho * cosDl;
    return true;
  }
  double sinChi, cosChi;
  ChiFromT(Kernel::ConformalTFromSine(f, std::sin(phi)), sinChi, cosChi);
  double const denominator = 1.0 + sinChi1 * sinChi + cosChi1 * cosChi * cosDl;
  if (!(denominator > 0.0))
    return false; // the antipode
  double const A = akm1 / denominator;
  x = A * cosChi * sinDl;
  y = A * (cosChi1 * sinChi - sinChi1 * cosChi * cosDl);
  return true;
}

// Snyder 21-36 to 21-41 (polar) and 21-37, 21-38 (oblique).
void BStereographic::ToConformal(double x, double y, double & lambda, double & chi) const
{
  double const rho = std::hypot(x, y);
  if (pole != 0) {
    chi = pole * (kHalfPi - 2.0 * std::atan(rho / akm1));
    lambda = lam0 + std::atan2(x, -pole * y);
    return;
  }
  double sinC, cosC;
  ::sincos(2.0 * std::atan(rho / akm1), &sinC, &cosC);
  chi = std::asin(std::clamp(cosC * sinChi1 + y * sinC * cosChi1 / rho, -1.0, 1.0));
  lambda = lam0 + std::atan2(x * sinC, rho * cosChi1 * cosC - y * sinChi1 * sinC);
}

void BStereographic::Inverse(double x, double y, double & lambda, double & phi, double tolerance, int rounds) const
{
  Kernel::EAtanhE const f{e, eatanhe, eatanheTerms};
  double t;
  if (pole != 0) {
    t = std::hypot(x, y) / akm1;
    lambda = lam0 + std::atan2(x, -pole * y);
  } else {
    double chi;
    ToConformal(x, y, lambda, chi);
    t = std::cos(chi) / (1.0 + std::sin(chi)); // tan(pi/4 - chi/2)
  }
  phi = kHalfPi - 2.0 * std::atan(Kernel::ConformalTangentByNewton(f, t, tolerance, rounds));
  if (pole < 0)
    phi = -phi;
}

bool BStereographic::ToGrid(double & x, double & y) const
{
  if (!Forward(x * kRadiansPerDegree, y * kRadiansPerDegree, x, y))
    return false;
  turn.Apply(x, y);
  x += fe;
  y += fn;
  return true;
}

bool BStereographic::FromGrid(double x, double y, double & dx, double & dy) const
{
  dx = x - fe;
  dy = y - fn;
  turn.Undo(dx, dy);
  return std::hypot(dx, dy) >= kCentreTolerance;
}

namespace {

// The stereographic classes' set-up from their parameters on the datum's
// figure, the centre at phi0; false without a datum.
bool SetUp(BStereographic & s, BEllipsoid const * figure, CParameterCollection const & p, double phi0)
{
  Centre const c = ReadCentre(p);
  s.fe = c.fe;
  s.fn = c.fn;
  s.phi0 = phi0;
  if (figure)
    s.Set(figure->GetSemiMajor(), figure->GetEccentricitySquared(), phi0, c.lam0, p.GetDouble(CString(kScaleFactor)));
  return figure != nullptr;
}

// Grid metres to degrees by Newton's inverse; the centre within 1e-7 of it.
bool GridToDegrees(BStereographic const & s, double & x, double & y)
{
  double dx, dy, lambda = s.lam0, phi = s.phi0;
  if (s.FromGrid(x, y, dx, dy))
    s.Inverse(dx, dy, lambda, phi, kIterationTolerance, kStereographicRounds);
  ToDegrees(lambda, phi, x, y);
  return true;
}

} // namespace

// CStereographic

void CStereographic::OnChange(unsigned short const *)
{
  if (!ParametersReady(kStereographicCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  m_s.turn.Set(Radians(p, kPlaneRotation));
  m_ready = SetUp(m_s, GetInnerEllipsoid(), p, Radians(p, kLatitudeOfOrigin));
}

bool CStereographic::ToPlane(double & x, double & y) const
{
  return GetParameters().AllItemsSet() && m_ready && m_s.ToGrid(x, y);
}

bool CStereographic::FromPlane(double & x, double & y) const
{
  return GetParameters().AllItemsSet() && m_ready && GridToDegrees(m_s, x, y);
}

// CPolarStereographic

void CPolarStereographic::OnChange(unsigned short const *)
{
  if (!ParametersReady(kFiveCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  double const phic = Radians(p, kLatitudeOfOrigin);
  m_ready = SetUp(m_s, GetInnerEllipsoid(), p, phic < 0.0 ? -kHalfPi : kHalfPi);
  if (m_ready)
    m_s.SetTrueScale(phic, p.GetDouble(CString(kScaleFactor)));
}

bool CPolarStereographic::ToPlane(double & x, double & y) const
{
  return GetParameters().AllItemsSet() && m_ready && m_s.ToGrid(x, y);
}

bool CPolarStereographic::FromPlane(double & x, double & y) const
{
  return GetParameters().AllItemsSet() && m_ready && GridToDegrees(m_s, x, y);
}

// CEuropeanStereographic

void CEuropeanStereographic::OnChange(unsigned short const *)
{
  if (!ParametersReady(kFiveCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = SetUp(m_s, figure, p, Radians(p, kLatitudeOfOrigin));
  if (!m_ready)
    return;
  auto const series = Kernel::ConformalSeries::Make(figure->GetEccentricitySquared());
  m_c2 = series.c2;
  m_c4 = series.c4;
  m_c6 = series.c6;
  m_c8 = series.c8;
}

bool CEuropeanStereographic::ToPlane(double & x, double & y) const
{
  return GetParameters().AllItemsSet() && m_ready && m_s.ToGrid(x, y);
}

bool CEuropeanStereographic::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double dx, dy, lambda = m_s.lam0, phi = m_s.phi0;
  if (m_s.FromGrid(x, y, dx, dy)) {
    double chi;
    m_s.ToConformal(dx, dy, lambda, chi);
    phi = Kernel::ConformalSeries{m_c2, m_c4, m_c6, m_c8}.Latitude(chi);
  }
  ToDegrees(lambda, phi, x, y);
  return true;
}

// CDoubleStereographic
//
// Guidance Note 7-2, method 9809: R = sqrt(rho0 nu0), n = sqrt(1 + e2 cos^4
// phi0 / (1 - e2)), w = c (Sa Sb^e)^n with Sa Sb^e = exp(2 psi), the
// isometric latitude psi; sin chi = (w - 1)/(w + 1), that is
// tanh(n psi + ln(c)/2), and Lambda - Lambda0 = n (lambda - lambda0).

void CDoubleStereographic::OnChange(unsigned short const *)
{
  if (!ParametersReady(kFiveCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  Centre const c = ReadCentre(p);
  m_lam0 = c.lam0;
  m_phi0 = c.phi0;
  m_fe = c.fe;
  m_fn = c.fn;
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = figure != nullptr;
  if (!figure)
    return;
  double const a = figure->GetSemiMajor(), e2 = figure->GetEccentricitySquared();
  m_e = std::sqrt(e2);
  m_eatanheTerms = Kernel::MakeEAtanhE(m_e, m_eatanhe);
  double const s0 = std::sin(c.phi0), cos0 = std::cos(c.phi0);
  double const w = 1.0 - e2 * s0 * s0;
  double const R = std::sqrt(a * (1.0 - e2) / (w * std::sqrt(w)) * a / std::sqrt(w));
  m_n = std::sqrt(1.0 + e2 * cos0 * cos0 * cos0 * cos0 / (1.0 - e2));
  double const S1 = (1.0 + s0) / (1.0 - s0), S2 = (1.0 - m_e * s0) / (1.0 + m_e * s0);
  double const w1 = std::pow(S1 * std::pow(S2, m_e), m_n);
  double const sinChi = (w1 - 1.0) / (w1 + 1.0);
  double const cc = (m_n + s0) * (1.0 - sinChi) / ((m_n - s0) * (1.0 + sinChi));
  double const w2 = cc * w1;
  double const chi0 = std::asin((w2 - 1.0) / (w2 + 1.0));
  m_halfLogC = 0.5 * std::log(cc);
  m_sinChi0 = std::sin(chi0);
  m_cosChi0 = std::cos(chi0);
  m_twoRk0 = 2.0 * R * p.GetDouble(CString(kScaleFactor));
}

bool CDoubleStereographic::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double sinDl, cosDl;
  ::sincos(m_n * Wrapped(x * kRadiansPerDegree - m_lam0), &sinDl, &cosDl);
  Kernel::EAtanhE const f{m_e, m_eatanhe, m_eatanheTerms};
  double const h = m_n * Kernel::IsometricLatitudeFromSine(f, std::sin(y * kRadiansPerDegree)) + m_halfLogC;
  // tanh h and sech h through one exponential of -|h|.
  double const q = std::exp(-std::fabs(h)), q2 = q * q;
  double const sinChi = std::copysign((1.0 - q2) / (1.0 + q2), h), cosChi = 2.0 * q / (1.0 + q2);
  double const B = 1.0 + sinChi * m_sinChi0 + cosChi * m_cosChi0 * cosDl;
  if (!(B > 0.0))
    return false; // the antipode of the origin
  x = m_fe + m_twoRk0 * cosChi * sinDl / B;
  y = m_fn + m_twoRk0 * (sinChi * m_cosChi0 - cosChi * m_sinChi0 * cosDl) / B;
  return true;
}

// The sphere's inverse (Snyder 20-14 to 20-18), then psi = (atanh(sin chi)
// - ln(c)/2)/n, and phi from psi by Newton's method as the Guidance Note does.
bool CDoubleStereographic::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const dx = x - m_fe, dy = y - m_fn;
  double const rho = std::hypot(dx, dy);
  if (rho < kCentreTolerance) {
    ToDegrees(m_lam0, m_phi0, x, y);
    return true;
  }
  double sinC, cosC;
  ::sincos(2.0 * std::atan(rho / m_twoRk0), &sinC, &cosC);
  double const sinChi = std::clamp(cosC * m_sinChi0 + dy * sinC * m_cosChi0 / rho, -1.0, 1.0);
  double const dLambda = std::atan2(dx * sinC, rho * m_cosChi0 * cosC - dy * m_sinChi0 * sinC);
  double const psi = (0.5 * std::log((1.0 + sinChi) / (1.0 - sinChi)) - m_halfLogC) / m_n;
  Kernel::EAtanhE const f{m_e, m_eatanhe, m_eatanheTerms};
  double const u = Kernel::ConformalTangentByNewton(f, std::exp(-psi), kDoubleStereographicTolerance * kRadiansPerDegree,
                                                    kStereographicRounds);
  ToDegrees(m_lam0 + dLambda / m_n, kHalfPi - 2.0 * std::atan(u), x, y);
  return true;
}

// BEqualAreaAzimuth (Snyder 24-1 to 24-32; q and the series, 3-11 to 3-18)

void BEqualAreaAzimuth::Set(double semiMajor, double eccentricitySquared, double phi0, double lambda0)
{
  a = semiMajor;
  e2 = eccentricitySquared;
  e = std::sqrt(e2);
  lam0 = lambda0;
  pole = PoleOf(phi0);
  qp = Kernel::AuthalicQ(e, e2, 1.0);
  Rq = a * std::sqrt(qp / 2.0);
  auto const series = Kernel::AuthalicSeries::Make(e2);
  b2 = series.b2;
  b4 = series.b4;
  b6 = series.b6;
  if (pole != 0)
    return;
  // The equatorial aspect is the oblique one with beta1 = 0.
  sinB1 = std::clamp(Kernel::AuthalicQ(e, e2, std::sin(phi0)) / qp, -1.0, 1.0);
  cosB1 = std::sqrt(1.0 - sinB1 * sinB1);
  D = a * Kernel::ConicM(e2, phi0) / (Rq * cosB1);
}

void BEqualAreaAzimuth::Forward(double lambda, double phi, double & x, double & y) const
{
  double sinDl, cosDl;
  ::sincos(lambda - lam0, &sinDl, &cosDl);
  double const q = Kernel::AuthalicQ(e, e2, std::sin(phi));
  if (pole != 0) {
    double const rho = a * std::sqrt(std::max(0.0, qp - pole * q));
    x = rho * sinDl;
    y = -pole * rho * cosDl;
    return;
  }
  double const sinB = std::clamp(q / qp, -1.0, 1.0), cosB = std::sqrt(1.0 - sinB * sinB);
  double const B = Rq * std::sqrt(2.0 / (1.0 + sinB1 * sinB + cosB1 * cosB * cosDl));
  x = B * D * cosB * sinDl;
  y = B / D * (cosB1 * sinB - sinB1 * cosB * cosDl);
}

void BEqualAreaAzimuth::Inverse(double x, double y, double & lambda, double & phi) const
{
  double beta;
  if (pole != 0) {
    double const rho = std::hypot(x, y);
    beta = pole * std::asin(std::clamp(1.0 - rho * rho / (a * a * qp), -1.0, 1.0));
    lambda = lam0 + std::atan2(x, -pole * y);
  } else {
    double const rho = std::hypot(x / D, D * y);
    double sinC, cosC;
    ::sincos(2.0 * std::asin(std::min(1.0, rho / (2.0 * Rq))), &sinC, &cosC);
    beta = std::asin(std::clamp(cosC * sinB1 + D * y * sinC * cosB1 / rho, -1.0, 1.0));
    lambda = lam0 + std::atan2(x * sinC, D * rho * cosB1 * cosC - D * D * y * sinB1 * sinC);
  }
  phi = Kernel::AuthalicSeries{b2, b4, b6}.Latitude(beta);
}

namespace {

// Forward and back of the equal-area classes: the centering step, the
// authalic mathematics, a turn of the plane, the false origin.
bool EqualAreaToPlane(BEqualAreaAzimuth const & z, BPlaneTurn const & turn, double fe, double fn, double & x,
                      double & y)
{
  CProjection::CenterLongitude(x, z.lam0 / kRadiansPerDegree);
  z.Forward(x * kRadiansPerDegree, y * kRadiansPerDegree, x, y);
  turn.Apply(x, y);
  x += fe;
  y += fn;
  return std::isfinite(x) && std::isfinite(y);
}

void EqualAreaFromPlane(BEqualAreaAzimuth const & z, BPlaneTurn const & turn, double phi0, double fe, double fn,
                        double & x, double & y)
{
  double dx = x - fe, dy = y - fn;
  turn.Undo(dx, dy);
  double lambda = z.lam0, phi = phi0;
  if (std::hypot(dx, dy) >= kCentreTolerance)
    z.Inverse(dx, dy, lambda, phi);
  ToDegrees(lambda, phi, x, y);
}

} // namespace

// CAzimuthalEqualArea

void CAzimuthalEqualArea::OnChange(unsigned short const *)
{
  if (!ParametersReady(kFiveCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  Centre const c = ReadCentre(p);
  m_phi0 = c.phi0;
  m_fe = c.fe;
  m_fn = c.fn;
  m_turn.Set(Radians(p, kPlaneRotation));
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = figure != nullptr;
  if (figure)
    m_z.Set(figure->GetSemiMajor(), figure->GetEccentricitySquared(), c.phi0, c.lam0);
}

bool CAzimuthalEqualArea::ToPlane(double & x, double & y) const
{
  return GetParameters().AllItemsSet() && m_ready && EqualAreaToPlane(m_z, m_turn, m_fe, m_fn, x, y);
}

bool CAzimuthalEqualArea::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  EqualAreaFromPlane(m_z, m_turn, m_phi0, m_fe, m_fn, x, y);
  return true;
}

// CPolarAzimuthalEqualArea

void CPolarAzimuthalEqualArea::OnChange(unsigned short const *)
{
  if (!ParametersReady(kPolarCount))
    return;
  Centre const c = ReadCentre(std::as_const(*this).GetParameters());
  m_phi0 = c.phi0 < 0.0 ? -kHalfPi : kHalfPi;
  m_fe = c.fe;
  m_fn = c.fn;
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = figure != nullptr;
  if (figure)
    m_z.Set(figure->GetSemiMajor(), figure->GetEccentricitySquared(), m_phi0, c.lam0);
}

bool CPolarAzimuthalEqualArea::ToPlane(double & x, double & y) const
{
  return GetParameters().AllItemsSet() && m_ready && EqualAreaToPlane(m_z, BPlaneTurn(), m_fe, m_fn, x, y);
}

bool CPolarAzimuthalEqualArea::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  EqualAreaFromPlane(m_z, BPlaneTurn(), m_phi0, m_fe, m_fn, x, y);
  return true;
}

// BPolarArc

void BPolarArc::Forward(double lambda, double phi, double & x, double & y) const
{
  double sinDl, cosDl;
  ::sincos(lambda - lam0, &sinDl, &cosDl);
  double const rho = arcPole - a * Kernel::MeridianArc(c0, c1, c2, c3, pole * phi);
  x = rho * sinDl;
  y = -pole * rho * cosDl;
}

// From the footpoint of the rectifying latitude (Snyder 3-24, 3-26), then
// Newton's steps on the series itself, dM/dphi = a (1 - e2) / (1 - e2 sin^2 phi)^(3/2).
void BPolarArc::Inverse(double x, double y, double & lambda, double & phi) const
{
  double const M = arcPole - std::hypot(x, y);
  double const mu = M / (a * c0);
  phi = mu + i1 * std::sin(2.0 * mu) + i2 * std::sin(4.0 * mu) + i3 * std::sin(6.0 * mu) + i4 * std::sin(8.0 * mu);
  for (int i = 0; i < kArcRounds; ++i) {
    double const s = std::sin(phi), w = 1.0 - e2 * s * s;
    double const step = (a * Kernel::MeridianArc(c0, c1, c2, c3, phi) - M) * w * std::sqrt(w) / (a * (1.0 - e2));
    phi -= step;
    if (std::fabs(step) <= kIterationTolerance)
      break;
  }
  phi *= pole;
  lambda = lam0 + std::atan2(x, -pole * y);
}

namespace {

// The arc of a polar equidistant from the coefficients of CMeridionalUtil.
BPolarArc MakePolarArc(double a, double e2, double lam0, int pole, double const (&c)[8])
{
  BPolarArc arc{a, e2, lam0, pole, c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7], 0.0};
  arc.arcPole = a * Kernel::MeridianArc(c[0], c[1], c[2], c[3], kHalfPi);
  return arc;
}

} // namespace

// CAzimuthalEquidistant

void CAzimuthalEquidistant::OnChange(unsigned short const *)
{
  if (!ParametersReady(kFiveCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  Centre const c = ReadCentre(p);
  m_phi0 = c.phi0;
  m_fe = c.fe;
  m_fn = c.fn;
  m_turn.Set(Radians(p, kPlaneRotation));
  calc_meridional_values();
  m_ready = m_ellipsoid != nullptr;
  if (!m_ready)
    return;
  int const pole = PoleOf(c.phi0);
  m_polar = pole != 0;
  m_arc = MakePolarArc(m_ellipsoid->GetSemiMajor(), m_ellipsoid->GetEccentricitySquared(), c.lam0,
                       m_polar ? pole : 1, {c0, c1, c2, c3, i1, i2, i3, i4});
}

bool CAzimuthalEquidistant::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const lambda = x * kRadiansPerDegree, phi = y * kRadiansPerDegree;
  if (m_polar) {
    m_arc.Forward(lambda, phi, x, y);
  } else {
    double az12, az21, s;
    m_ellipsoid->GeodeticInverse(ML::BPoint2D(m_arc.lam0, m_phi0), ML::BPoint2D(lambda, phi), az12, az21, s);
    x = s * std::sin(az12);
    y = s * std::cos(az12);
  }
  m_turn.Apply(x, y);
  x += m_fe;
  y += m_fn;
  return true;
}

bool CAzimuthalEquidistant::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double dx = x - m_fe, dy = y - m_fn;
  m_turn.Undo(dx, dy);
  double const rho = std::hypot(dx, dy);
  double lambda = m_arc.lam0, phi = m_phi0;
  if (rho >= kCentreTolerance) {
    if (m_polar) {
      m_arc.Inverse(dx, dy, lambda, phi);
    } else {
      ML::BPoint2D end;
      double az21;
      m_ellipsoid->GeodeticForward(ML::BPoint2D(m_arc.lam0, m_phi0), std::atan2(dx, dy), rho, end, az21);
      lambda = end.x;
      phi = end.y;
    }
  }
  ToDegrees(lambda, phi, x, y);
  return true;
}

// CPolarEquidistant

void CPolarEquidistant::OnChange(unsigned short const *)
{
  if (!ParametersReady(kPolarCount))
    return;
  Centre const c = ReadCentre(std::as_const(*this).GetParameters());
  m_phi0 = c.phi0 < 0.0 ? -kHalfPi : kHalfPi;
  m_fe = c.fe;
  m_fn = c.fn;
  calc_meridional_values();
  m_ready = m_ellipsoid != nullptr;
  if (m_ready)
    m_arc = MakePolarArc(m_ellipsoid->GetSemiMajor(), m_ellipsoid->GetEccentricitySquared(), c.lam0,
                         c.phi0 < 0.0 ? -1 : 1, {c0, c1, c2, c3, i1, i2, i3, i4});
}

bool CPolarEquidistant::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_arc.lam0 / kRadiansPerDegree);
  m_arc.Forward(x * kRadiansPerDegree, y * kRadiansPerDegree, x, y);
  x += m_fe;
  y += m_fn;
  return true;
}

bool CPolarEquidistant::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const dx = x - m_fe, dy = y - m_fn;
  double lambda = m_arc.lam0, phi = m_phi0;
  if (std::hypot(dx, dy) >= kCentreTolerance)
    m_arc.Inverse(dx, dy, lambda, phi);
  ToDegrees(lambda, phi, x, y);
  return true;
}

// BSphereView

void BSphereView::Set(double radius, double phi0, double lambda0)
{
  R = radius;
  ::sincos(phi0, &sinPhi0, &cosPhi0);
  lam0 = lambda0;
}

double BSphereView::CosC(double lambda, double phi, double & u, double & v) const
{
  double sinPhi, cosPhi, sinDl, cosDl;
  ::sincos(phi, &sinPhi, &cosPhi);
  ::sincos(lambda - lam0, &sinDl, &cosDl);
  u = cosPhi * sinDl;
  v = cosPhi0 * sinPhi - sinPhi0 * cosPhi * cosDl;
  return sinPhi0 * sinPhi + cosPhi0 * cosPhi * cosDl;
}

void BSphereView::Invert(double x, double y, double rho, double sinC, double cosC, double & lambda,
                         double & phi) const
{
  phi = std::asin(std::clamp(cosC * sinPhi0 + y * sinC * cosPhi0 / rho, -1.0, 1.0));
  lambda = lam0 + std::atan2(x * sinC, rho * cosPhi0 * cosC - y * sinPhi0 * sinC);
}

namespace {

// The view of a sphere from the parameters: the radius is spherical_radius
// where the class has one, else the datum's semi-major axis.
bool ReadView(CProjection const & projection, BSphereView & view, double & fe, double & fn, double radius)
{
  Centre const c = ReadCentre(projection.GetParameters());
  fe = c.fe;
  fn = c.fn;
  view.Set(radius, c.phi0, c.lam0);
  return radius > 0.0;
}

// The last step of the sphere classes' inverses: the point at c from the
// centre, or the centre itself.
void FromView(BSphereView const & v, double dx, double dy, double rho, double sinC, double cosC, double & x,
              double & y)
{
  double lambda = v.lam0, phi = std::asin(v.sinPhi0);
  if (rho >= kCentreTolerance)
    v.Invert(dx, dy, rho, sinC, cosC, lambda, phi);
  ToDegrees(lambda, phi, x, y);
}

} // namespace

// CGnomic

void CGnomic::OnChange(unsigned short const *)
{
  if (ParametersReady(kFiveCount))
    m_ready = ReadView(*this, m_v, m_fe, m_fn, Internal(GetParameters(), kSphericalRadius));
}

bool CGnomic::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double u, v;
  double const cosC = m_v.CosC(x * kRadiansPerDegree, y * kRadiansPerDegree, u, v);
  if (cosC <= kHorizon)
    return false;
  x = m_fe + m_v.R * u / cosC;
  y = m_fn + m_v.R * v / cosC;
  return true;
}

bool CGnomic::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const dx = x - m_fe, dy = y - m_fn, rho = std::hypot(dx, dy);
  double sinC, cosC;
  ::sincos(std::atan(rho / m_v.R), &sinC, &cosC);
  FromView(m_v, dx, dy, rho, sinC, cosC, x, y);
  return true;
}

// COrthographic

void COrthographic::OnChange(unsigned short const *)
{
  if (ParametersReady(kFiveCount))
    m_ready = ReadView(*this, m_v, m_fe, m_fn, Internal(GetParameters(), kSphericalRadius));
}

bool COrthographic::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double u, v;
  m_v.CosC(x * kRadiansPerDegree, y * kRadiansPerDegree, u, v);
  x = m_fe + m_v.R * u;
  y = m_fn + m_v.R * v;
  return true;
}

bool COrthographic::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const dx = x - m_fe, dy = y - m_fn, rho = std::hypot(dx, dy);
  double const sinC = rho / m_v.R;
  if (sinC > 1.0)
    return false;
  FromView(m_v, dx, dy, rho, sinC, std::sqrt(1.0 - sinC * sinC), x, y);
  return true;
}

namespace {

// The vertical perspective about the centre (Snyder 23-1 to 23-3): k = (P - 1)/(P - cos c).
void PerspectiveForward(BSphereView const & view, double P, double lambda, double phi, double & x, double & y)
{
  double u, v;
  double const k = (P - 1.0) / (P - view.CosC(lambda, phi, u, v));
  x = view.R * k * u;
  y = view.R * k * v;
}

// Snyder 23-18: sin c = (P - sqrt(1 - rho^2 (P + 1)/(R^2 (P - 1)))) /
// (R (P - 1)/rho + rho/(R (P - 1))); false where the root is of a negative number.
bool PerspectiveInverse(BSphereView const & view, double P, double dx, double dy, double & x, double & y)
{
  double const rho = std::hypot(dx, dy);
  double const Rp = view.R * (P - 1.0);
  double const discriminant = 1.0 - rho * rho * (P + 1.0) / (view.R * Rp);
  if (discriminant < 0.0)
    return false;
  double const sinC = rho < kCentreTolerance ? 0.0 : (P - std::sqrt(discriminant)) / (Rp / rho + rho / Rp);
  FromView(view, dx, dy, rho, sinC, std::sqrt(1.0 - sinC * sinC), x, y);
  return true;
}

bool ReadPerspective(CProjection const & projection, BEllipsoid const * figure, BSphereView & view, double & P,
                     double & fe, double & fn)
{
  if (!figure)
    return false;
  double const R = figure->GetSemiMajor();
  P = 1.0 + Internal(projection.GetParameters(), kHeight) / R;
  return ReadView(projection, view, fe, fn, R) && P > 1.0;
}

} // namespace

// CVerticalPerspective

void CVerticalPerspective::OnChange(unsigned short const *)
{
  if (ParametersReady(kFiveCount))
    m_ready = ReadPerspective(*this, GetInnerEllipsoid(), m_v, m_P, m_fe, m_fn);
}

bool CVerticalPerspective::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  PerspectiveForward(m_v, m_P, x * kRadiansPerDegree, y * kRadiansPerDegree, x, y);
  x += m_fe;
  y += m_fn;
  return true;
}

bool CVerticalPerspective::FromPlane(double & x, double & y) const
{
  return GetParameters().AllItemsSet() && m_ready && PerspectiveInverse(m_v, m_P, x - m_fe, y - m_fn, x, y);
}

// CTiltedPerspective: the vertical view (x, y), then Snyder 23-6 to 23-8,
// A = (y cos g + x sin g) sin w / H + cos w, x' = (x cos g - y sin g) cos w / A,
// y' = (y cos g + x sin g) / A; back, with d = H - y' sin w, the turned
// offsets are x' H / d and y' H cos w / d.

void CTiltedPerspective::OnChange(unsigned short const *)
{
  if (!ParametersReady(kTiltedCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  m_H = Internal(p, kHeight);
  ::sincos(Radians(p, kAzimuthName), &m_sinGamma, &m_cosGamma);
  ::sincos(Radians(p, kTilt), &m_sinOmega, &m_cosOmega);
  m_ready = ReadPerspective(*this, GetInnerEllipsoid(), m_v, m_P, m_fe, m_fn);
}

bool CTiltedPerspective::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double px, py;
  PerspectiveForward(m_v, m_P, x * kRadiansPerDegree, y * kRadiansPerDegree, px, py);
  double const along = py * m_cosGamma + px * m_sinGamma;
  double const A = along * m_sinOmega / m_H + m_cosOmega;
  x = m_fe + (px * m_cosGamma - py * m_sinGamma) * m_cosOmega / A;
  y = m_fn + along / A;
  return true;
}

bool CTiltedPerspective::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const tx = x - m_fe, ty = y - m_fn;
  double const d = m_H - ty * m_sinOmega;
  double const across = tx * m_H / d, along = ty * m_H * m_cosOmega / d;
  return PerspectiveInverse(m_v, m_P, across * m_cosGamma + along * m_sinGamma,
                            along * m_cosGamma - across * m_sinGamma, x, y);
}

} // namespace Velmora::CS::PJ
