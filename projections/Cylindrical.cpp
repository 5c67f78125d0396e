#include <velmora/projections/Cylindrical.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/Constants.h>
#include <velmora/projections/ParameterNames_p.h>
#include <velmora/refsys/EllipsoidKernel_p.h>

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
constexpr char kTrueScaleLongitude[] = "true_scale_longitude";
constexpr char kLatitudeNorth[] = "latitude_north";
constexpr char kLatitudeSouth[] = "latitude_south";

// How many parameters each class reads.
constexpr long kFourParameters = 4;
constexpr long kFiveParameters = 5;
constexpr long kThreeParameters = 3;
constexpr long kIMWParameters = 6;

// The Mercator's poles while the cartographic flag is on, degrees.
constexpr double kMercatorPoleClamp = 89.9999999;
// The exponential base of the Mercator's inverse, as this type has always
// written it: 2.7182818281828, not e to the last digits.
constexpr double kMercatorBase = 2.7182818281828;
// Latitude iterations: the step at which they stop, radians, and their limits.
constexpr double kIterationTolerance = 1e-07;
constexpr int kMercatorRounds = 100;
constexpr int kPolyconicRounds = 20;
constexpr int kIMWRounds = 20;
// Miller's cylinder: latitudes beyond the poles become this, radians.
constexpr double kMillerPole = 1.5707963267948966;
constexpr double kMillerClamp = 1.5707;
// Behrmann's true-scale latitude, 30 degrees: its sine squared and cosine.
constexpr double kBehrmannSin2 = 0.25;
// The polyconic's and Cassini's latitude at which a point is the pole or the
// equator, radians.
constexpr double kPoleTolerance = 1e-07;

// The central meridian (radians) and the false values, which every class reads.
void ReadOrigin(CParameterCollection const & p, double & cm, double & fe, double & fn)
{
  cm = Radians(p, kCentralMeridian);
  fe = Internal(p, kFalseEasting);
  fn = Internal(p, kFalseNorthing);
}

// A longitude difference into -pi to pi.
double WrapDifference(double d)
{
  if (d > kPi || d < -kPi)
    d -= kTwoPi * std::floor((d + kPi) / kTwoPi);
  return d;
}

// The footpoint latitude of the rectifying latitude mu by the series in e1
// (Snyder 3-26).
double Footpoint(double mu, double i1, double i2, double i3, double i4)
{
  return mu + i1 * std::sin(2.0 * mu) + i2 * std::sin(4.0 * mu) + i3 * std::sin(6.0 * mu) + i4 * std::sin(8.0 * mu);
}

} // namespace

// CMercator
//
// x = a k0 (lambda - lambda0), y = a k0 psi with psi the isometric latitude
// (Snyder 7-6, 7-7); back, t = exp(-y/(a k0)) and phi from t (Snyder 7-9).

void CMercator::OnChange(unsigned short const *)
{
  if (!ParametersReady(kFiveParameters))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  ReadOrigin(p, m_cm, m_fe, m_fn);
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = figure != nullptr;
  if (!m_ready)
    return;
  double const e2 = figure->GetEccentricitySquared();
  m_e = std::sqrt(e2);
  m_eatanheTerms = Kernel::MakeEAtanhE(m_e, m_eatanhe);
  double const k0 = p.GetDouble(CString(kScaleFactor)) * Kernel::ConicM(e2, Radians(p, kLatitudeOfOrigin));
  m_ak0 = figure->GetSemiMajor() * k0;
  m_psiPerY = std::log(kMercatorBase) / m_ak0;
}

bool CMercator::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  if (DB::CDataSource::GetCartographicFlag()) {
    if (y >= 90.0)
      y = kMercatorPoleClamp;
    else if (y <= -90.0)
      y = -kMercatorPoleClamp;
  }
  CenterLongitude(x, m_cm / kRadiansPerDegree);
  double s, c;
  ::sincos(y * kRadiansPerDegree, &s, &c);
  double const psi = Kernel::IsometricLatitudeFromSineCosine({m_e, m_eatanhe, m_eatanheTerms}, s, c);
  x = m_ak0 * WrapDifference(x * kRadiansPerDegree - m_cm) + m_fe;
  y = m_ak0 * psi + m_fn;
  return true;
}

bool CMercator::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const t = std::exp(-(y - m_fn) * m_psiPerY);
  // On a sphere the iteration's first value is the latitude.
  double const phi = m_e == 0.0 ? kHalfPi - 2.0 * std::atan(t)
                                : Kernel::LatitudeFromT({m_e, m_eatanhe, m_eatanheTerms}, t, kIterationTolerance,
                                                        kMercatorRounds);
  y = phi / kRadiansPerDegree;
  x = ((x - m_fe) / m_ak0 + m_cm) / kRadiansPerDegree;
  return true;
}

// CMillerCylindrical
//
// y = R ln(tan(pi/4 + 0.4 phi)) / 0.8 (Snyder 11-2); phi = 2.5 atan(exp(0.8 y/R)) - 5 pi/8 (11-6).

void CMillerCylindrical::OnChange(unsigned short const *)
{
  if (!ParametersReady(kFourParameters))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  ReadOrigin(p, m_cm, m_fe, m_fn);
  m_R = Internal(p, kSphericalRadius);
  m_ready = true;
}

bool CMillerCylindrical::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_cm / kRadiansPerDegree);
  double phi = y * kRadiansPerDegree;
  if (phi > kMillerPole)
    phi = kMillerClamp;
  else if (phi < -kMillerPole)
    phi = -kMillerClamp;
  x = m_R * WrapDifference(x * kRadiansPerDegree - m_cm) + m_fe;
  y = m_R * std::log(std::tan(kQuarterPi + 0.4 * phi)) / 0.8 + m_fn;
  return true;
}

bool CMillerCylindrical::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const phi = (std::atan(std::exp(0.8 * (y - m_fn) / m_R)) - kQuarterPi) / 0.4;
  x = ((x - m_fe) / m_R + m_cm) / kRadiansPerDegree;
  y = phi / kRadiansPerDegree;
  return true;
}

// CEqualAreaCylindrical
//
// k0 = cos phi1 / sqrt(1 - e2 sin^2 phi1), x = a k0 (lambda - lambda0),
// y = a q / (2 k0) (Snyder 10-13 to 10-15); back, beta = asin(2 y k0/(a qp))
// and the latitude by the authalic series (10-17, 3-18).

void CEqualAreaCylindrical::Prepare(double cm, double sinPhi1, double cosPhi1, double fe, double fn)
{
  m_cm = cm;
  m_fe = fe;
  m_fn = fn;
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = figure != nullptr;
  if (!m_ready)
    return;
  m_a = figure->GetSemiMajor();
  m_e2 = figure->GetEccentricitySquared();
  m_e = std::sqrt(m_e2);
  m_k0 = cosPhi1 / std::sqrt(1.0 - m_e2 * sinPhi1 * sinPhi1);
  m_qp = Kernel::AuthalicQ(m_e, m_e2, 1.0);
  auto const series = Kernel::AuthalicSeries::Make(m_e2);
  m_b2 = series.b2;
  m_b4 = series.b4;
  m_b6 = series.b6;
}

void CEqualAreaCylindrical::OnChange(unsigned short const *)
{
  if (!ParametersReady(kFourParameters))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  double const phi1 = Radians(p, kLatitudeOfOrigin);
  Prepare(Radians(p, kCentralMeridian), std::sin(phi1), std::cos(phi1), Internal(p, kFalseEasting),
          Internal(p, kFalseNorthing));
}

bool CEqualAreaCylindrical::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_cm / kRadiansPerDegree);
  double const q = Kernel::AuthalicQ(m_e, m_e2, std::sin(y * kRadiansPerDegree));
  x = m_a * m_k0 * WrapDifference(x * kRadiansPerDegree - m_cm) + m_fe;
  y = m_a * q / (2.0 * m_k0) + m_fn;
  return true;
}

bool CEqualAreaCylindrical::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const ratio = 2.0 * (y - m_fn) * m_k0 / (m_a * m_qp);
  double const beta = std::asin(std::fmax(-1.0, std::fmin(1.0, ratio)));
  double const phi = Kernel::AuthalicSeries{m_b2, m_b4, m_b6}.Latitude(beta);
  x = ((x - m_fe) / (m_a * m_k0) + m_cm) / kRadiansPerDegree;
  y = phi / kRadiansPerDegree;
  return true;
}

// CBehrmann: true to scale at 30 degrees, sin^2 = 0.25 and cos = sqrt(3)/2.

void CBehrmann::OnChange(unsigned short const *)
{
  if (!ParametersReady(kThreeParameters))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  Prepare(Radians(p, kCentralMeridian), std::sqrt(kBehrmannSin2), std::sqrt(3.0) * 0.5, Internal(p, kFalseEasting),
          Internal(p, kFalseNorthing));
}

// CEquidistantCylindrical: x = R (lambda - lambda0) cos phi1, y = R phi (Snyder 12-1, 12-2).

void CEquidistantCylindrical::OnChange(unsigned short const *)
{
  if (!ParametersReady(kFourParameters))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  ReadOrigin(p, m_cm, m_fe, m_fn);
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = figure != nullptr;
  if (!m_ready)
    return;
  m_R = figure->GetSemiMajor();
  m_Rcos = m_R * std::cos(Radians(p, kLatitudeOfOrigin));
}

bool CEquidistantCylindrical::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_cm / kRadiansPerDegree);
  x = m_Rcos * WrapDifference(x * kRadiansPerDegree - m_cm) + m_fe;
  y = m_R * y * kRadiansPerDegree + m_fn;
  return true;
}

bool CEquidistantCylindrical::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  x = ((x - m_fe) / m_Rcos + m_cm) / kRadiansPerDegree;
  y = (y - m_fn) / m_R / kRadiansPerDegree;
  return true;
}

// CGallStereographic: x = R (lambda - lambda0)/sqrt 2, y = R (1 + sqrt 2/2) tan(phi/2).

void CGallStereographic::OnChange(unsigned short const *)
{
  if (!ParametersReady(kThreeParameters))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  ReadOrigin(p, m_cm, m_fe, m_fn);
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = figure != nullptr;
  if (m_ready)
    m_R = figure->GetSemiMajor();
}

bool CGallStereographic::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_cm / kRadiansPerDegree);
  x = m_R * WrapDifference(x * kRadiansPerDegree - m_cm) / std::sqrt(2.0) + m_fe;
  y = m_R * (1.0 + std::sqrt(2.0) / 2.0) * std::tan(0.5 * y * kRadiansPerDegree) + m_fn;
  return true;
}

bool CGallStereographic::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  x = ((x - m_fe) * std::sqrt(2.0) / m_R + m_cm) / kRadiansPerDegree;
  y = 2.0 * std::atan((y - m_fn) / (m_R * (1.0 + std::sqrt(2.0) / 2.0))) / kRadiansPerDegree;
  return true;
}

// CCassini
//
// A = dlambda cos phi, T = tan^2 phi, C = e'2 cos^2 phi,
// x = N (A - T A^3/6 - (8 - T + 8C) T A^5/120),
// y = M - M0 + N tan phi (A^2/2 + (5 - T + 6C) A^4/24) (Snyder 13-5, 13-6);
// back from the footpoint phi1 of M0 + y (Snyder 13-8 to 13-13).

void CCassini::OnChange(unsigned short const *)
{
  if (!ParametersReady(kFourParameters))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  ReadOrigin(p, m_cm, m_fe, m_fn);
  calc_meridional_values();
  m_ready = m_ellipsoid != nullptr;
  if (!m_ready)
    return;
  m_a = m_ellipsoid->GetSemiMajor();
  m_e2 = m_ellipsoid->GetEccentricitySquared();
  m_ep2 = m_e2 / (1.0 - m_e2);
  m_M0 = calc_mx(m_a, Radians(p, kLatitudeOfOrigin));
}

bool CCassini::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_cm / kRadiansPerDegree);
  double const phi = y * kRadiansPerDegree;
  double const M = calc_mx(m_a, phi);
  if (kHalfPi - std::fabs(phi) < kPoleTolerance) {
    // The pole: A and N tan phi A^2 vanish.
    x = m_fe;
    y = M - m_M0 + m_fn;
    return true;
  }
  double const s = std::sin(phi), c = std::cos(phi), tn = s / c;
  double const A = WrapDifference(x * kRadiansPerDegree - m_cm) * c;
  double const A2 = A * A;
  double const T = tn * tn, C = m_ep2 * c * c;
  double const N = m_a / std::sqrt(1.0 - m_e2 * s * s);
  x = N * (A - T * A * A2 / 6.0 - (8.0 - T + 8.0 * C) * T * A * A2 * A2 / 120.0) + m_fe;
  y = M - m_M0 + N * tn * (A2 / 2.0 + (5.0 - T + 6.0 * C) * A2 * A2 / 24.0) + m_fn;
  return true;
}

bool CCassini::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const mu = (m_M0 + y - m_fn) / (m_a * c0);
  double const phi1 = Footpoint(mu, i1, i2, i3, i4);
  double const s = std::sin(phi1), c = std::cos(phi1), tn = s / c;
  double const w = 1.0 - m_e2 * s * s;
  double const T = tn * tn;
  double const N = m_a / std::sqrt(w);
  double const R = m_a * (1.0 - m_e2) / (w * std::sqrt(w));
  double const D = (x - m_fe) / N, D2 = D * D;
  double const phi = phi1 - (N * tn / R) * (D2 / 2.0 - (1.0 + 3.0 * T) * D2 * D2 / 24.0);
  double const dlambda = (D - T * D * D2 / 3.0 + (1.0 + 3.0 * T) * T * D * D2 * D2 / 15.0) / c;
  x = (m_cm + dlambda) / kRadiansPerDegree;
  y = phi / kRadiansPerDegree;
  return true;
}

// CPolyconic
//
// E = dlambda sin phi, x = N cot phi sin E, y = M - M0 + N cot phi (1 - cos E)
// (Snyder 18-1 to 18-3, 18-7); at the equator x = a dlambda, y = -M0.

void CPolyconic::OnChange(unsigned short const *)
{
  if (!ParametersReady(kFourParameters))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  ReadOrigin(p, m_cm, m_fe, m_fn);
  calc_meridional_values();
  m_ready = m_ellipsoid != nullptr;
  if (!m_ready)
    return;
  m_a = m_ellipsoid->GetSemiMajor();
  m_e2 = m_ellipsoid->GetEccentricitySquared();
  m_M0 = calc_mx(m_a, Radians(p, kLatitudeOfOrigin));
}

bool CPolyconic::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_cm / kRadiansPerDegree);
  double const phi = y * kRadiansPerDegree;
  double const dlambda = WrapDifference(x * kRadiansPerDegree - m_cm);
  if (std::fabs(phi) < kPoleTolerance) {
    x = m_a * dlambda + m_fe;
    y = -m_M0 + m_fn;
    return true;
  }
  double const s = std::sin(phi);
  double const NcotPhi = m_a / std::sqrt(1.0 - m_e2 * s * s) * std::cos(phi) / s;
  double const E = dlambda * s;
  x = NcotPhi * std::sin(E) + m_fe;
  y = calc_mx(m_a, phi) - m_M0 + NcotPhi * (1.0 - std::cos(E)) + m_fn;
  return true;
}

// Newton's scheme on the arc (Snyder 18-17 to 18-22): A = (M0 + y)/a,
// B = x^2/a^2 + A^2, and per step with C = sqrt(1 - e2 sin^2 phi) tan phi,
// Ma = M/a and Mn' = dMa/dphi,
// phi -= [A (C Ma + 1) - Ma - (Ma^2 + B) C/2] /
//        [e2 sin 2phi (Ma^2 + B - 2 A Ma)/(4 C) + (A - Ma)(C Mn' - 2/sin 2phi) - Mn'].
bool CPolyconic::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const dx = x - m_fe, dy = y - m_fn;
  if (std::fabs(dy + m_M0) < kPoleTolerance) {
    x = (dx / m_a + m_cm) / kRadiansPerDegree;
    y = 0.0;
    return true;
  }
  double const A = (m_M0 + dy) / m_a;
  double const B = dx * dx / (m_a * m_a) + A * A;
  double phi = A, C = 0.0;
  for (int i = 0; i < kPolyconicRounds; ++i) {
    double const s = std::sin(phi);
    C = std::sqrt(1.0 - m_e2 * s * s) * std::tan(phi);
    double const Ma = calc_mx(1.0, phi);
    double const dMa = c0 - 2.0 * c1 * std::cos(2.0 * phi) + 4.0 * c2 * std::cos(4.0 * phi) - 6.0 * c3 * std::cos(6.0 * phi);
    double const sin2 = std::sin(2.0 * phi);
    double const step = (A * (C * Ma + 1.0) - Ma - 0.5 * (Ma * Ma + B) * C) /
                        (m_e2 * sin2 * (Ma * Ma + B - 2.0 * A * Ma) / (4.0 * C) + (A - Ma) * (C * dMa - 2.0 / sin2) - dMa);
    phi -= step;
    if (std::fabs(step) <= kIterationTolerance)
      break;
  }
  double const s = std::sin(phi);
  C = std::sqrt(1.0 - m_e2 * s * s) * std::tan(phi);
  double const dlambda = std::asin(dx * C / m_a) / s;
  if (!std::isfinite(phi) || !std::isfinite(dlambda))
    return false;
  x = (m_cm + dlambda) / kRadiansPerDegree;
  y = phi / kRadiansPerDegree;
  return true;
}

// CIMWPolyconic
//
// Lengths per unit a. A standard parallel phi_i is the circle of radius
// R_i = cot phi_i / sqrt(1 - e2 sin^2 phi_i) (N cot phi) through its point on
// the central meridian; its point at longitude lambda lies at the angle
// lambda sin phi_i round it. The southern parallel's point on the central
// meridian is the origin of northings. The meridian true_scale_longitude
// from the central one is straight and as long between the two parallels
// as the meridian arc, which places the northern parallel; a parallel
// phi passes through the point of that meridian at its arc's share of the
// way, and the meridian lambda is the straight line through its points on
// the two standard parallels.

void CIMWPolyconic::OnParallel(int which, double lambda, double & x, double & y) const
{
  if (m_phi[which] == 0.0) {
    x = lambda;
    y = which == 1 ? m_C2 : 0.0;
    return;
  }
  double const F = lambda * m_sin[which];
  x = m_R[which] * std::sin(F);
  y = (which == 1 ? m_C2 : 0.0) + m_R[which] * (1.0 - std::cos(F));
}

void CIMWPolyconic::OnChange(unsigned short const *)
{
  if (!ParametersReady(kIMWParameters))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  ReadOrigin(p, m_cm, m_fe, m_fn);
  m_lambda1 = Radians(p, kTrueScaleLongitude);
  m_phi[0] = Radians(p, kLatitudeSouth);
  m_phi[1] = Radians(p, kLatitudeNorth);
  if (m_phi[1] < m_phi[0])
    std::swap(m_phi[0], m_phi[1]);
  calc_meridional_values();
  m_ready = m_ellipsoid != nullptr && m_phi[0] != m_phi[1];
  if (!m_ready)
    return;
  m_a = m_ellipsoid->GetSemiMajor();
  m_e2 = m_ellipsoid->GetEccentricitySquared();
  for (int i = 0; i < 2; ++i) {
    m_sin[i] = std::sin(m_phi[i]);
    m_R[i] = m_phi[i] == 0.0 ? 0.0 : 1.0 / (std::tan(m_phi[i]) * std::sqrt(1.0 - m_e2 * m_sin[i] * m_sin[i]));
  }
  m_C2 = 0.0;
  double x1, y1, x2, t2;
  OnParallel(0, m_lambda1, x1, y1);
  OnParallel(1, m_lambda1, x2, t2); // with m_C2 = 0: the height above the parallel's own point
  double const m1 = calc_mx(1.0, m_phi[0]), m2 = calc_mx(1.0, m_phi[1]);
  double const length = m2 - m1, spread = x2 - x1;
  double const y2 = std::sqrt(length * length - spread * spread) + y1;
  m_C2 = y2 - t2;
  // The true-scale meridian's point at arc m is (Pp + Qp m, P + Q m).
  m_P = (m2 * y1 - m1 * y2) / length;
  m_Q = (y2 - y1) / length;
  m_Pp = (m2 * x1 - m1 * x2) / length;
  m_Qp = (x2 - x1) / length;
}

void CIMWPolyconic::Forward(double lambda, double phi, double & x, double & y) const
{
  if (phi == 0.0) {
    x = lambda;
    y = 0.0;
    return;
  }
  double const s = std::sin(phi);
  double const m = calc_mx(1.0, phi);
  double const xa = m_Pp + m_Qp * m, ya = m_P + m_Q * m;
  double const R = 1.0 / (std::tan(phi) * std::sqrt(1.0 - m_e2 * s * s));
  // The parallel's circle has its centre at (0, bottom + R).
  double const bottom = ya - R + std::copysign(std::sqrt(R * R - xa * xa), phi);
  double xc, yc, xb, yb;
  OnParallel(0, lambda, xc, yc);
  OnParallel(1, lambda, xb, yb);
  // The meridian x = xc + D (y - yc) met with the circle.
  double const D = (xb - xc) / (yb - yc);
  double const B = xc + D * (bottom + R - yc);
  double const root = D * std::sqrt(R * R * (1.0 + D * D) - B * B);
  x = (B + (phi > 0.0 ? -root : root)) / (1.0 + D * D);
  double const h = std::sqrt(R * R - x * x);
  y = bottom + R + (phi > 0.0 ? -h : h);
}

bool CIMWPolyconic::ToPlane(ML::CGeodeticPoint const & in, ML::CProjectedPoint & out) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double lon, lat;
  in.GetInternals(lon, lat);
  double x, y;
  Forward(WrapDifference(lon * kRadiansPerDegree - m_cm), lat * kRadiansPerDegree, x, y);
  x = m_a * x + m_fe;
  y = m_a * y + m_fn;
  if (!std::isfinite(x) || !std::isfinite(y))
    return false;
  if (in.GetDimensions() == 3 && out.GetDimensions() == 3) {
    double a, b, h;
    in.GetInternals(a, b, h);
    out.SetInternals(x, y, h);
  } else {
    out.SetInternals(x, y);
  }
  return true;
}

// Newton's method on both coordinates, the Jacobian by forward differences;
// it starts on the central meridian at the latitude of the arc.
bool CIMWPolyconic::FromPlane(ML::CProjectedPoint const & in, ML::CGeodeticPoint & out) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double east, north;
  in.GetInternals(east, north);
  double const X = (east - m_fe) / m_a, Y = (north - m_fn) / m_a;
  constexpr double h = 1e-6;
  double phi = m_phi[0] + Y, lambda = 0.0;
  bool converged = false;
  for (int i = 0; i < kIMWRounds && !converged; ++i) {
    double x, y, xl, yl, xp, yp;
    Forward(lambda, phi, x, y);
    Forward(lambda + h, phi, xl, yl);
    Forward(lambda, phi + h, xp, yp);
    double const a11 = (xl - x) / h, a12 = (xp - x) / h, a21 = (yl - y) / h, a22 = (yp - y) / h;
    double const det = a11 * a22 - a12 * a21;
    double const dl = ((X - x) * a22 - a12 * (Y - y)) / det;
    double const dp = (a11 * (Y - y) - a21 * (X - x)) / det;
    lambda += dl;
    phi += dp;
    if (!std::isfinite(lambda) || !std::isfinite(phi))
      return false;
    converged = std::fabs(dl) <= kIterationTolerance && std::fabs(dp) <= kIterationTolerance;
  }
  if (!converged || std::fabs(phi) > kHalfPi)
    return false;
  double const lon = (lambda + m_cm) / kRadiansPerDegree, lat = phi / kRadiansPerDegree;
  if (in.GetDimensions() == 3 && out.GetDimensions() == 3) {
    double a, b, height;
    in.GetInternals(a, b, height);
    out.SetInternals(lon, lat, height);
  } else {
    out.SetInternals(lon, lat);
  }
  return true;
}

// CBonne
//
// rho = a m1/sin phi1 + M1 - M, E = a m dlambda / rho, x = rho sin E,
// y = a m1/sin phi1 - rho cos E (Snyder 19-1 to 19-4); back (19-5 to 19-8).

void CBonne::OnChange(unsigned short const *)
{
  if (!ParametersReady(kFourParameters))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  ReadOrigin(p, m_cm, m_fe, m_fn);
  calc_meridional_values();
  m_ready = m_ellipsoid != nullptr;
  if (!m_ready)
    return;
  m_a = m_ellipsoid->GetSemiMajor();
  m_e2 = m_ellipsoid->GetEccentricitySquared();
  double const phi1 = Radians(p, kLatitudeOfOrigin);
  double const s1 = std::sin(phi1);
  m_sign = phi1 < 0.0 ? -1.0 : 1.0;
  if (std::fabs(s1) < kPoleTolerance) {
    m_top = m_apex = 0.0; // the sinusoidal
    return;
  }
  m_top = m_a * Kernel::ConicM(m_e2, phi1) / s1;
  m_apex = m_top + calc_mx(m_a, phi1);
}

bool CBonne::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_cm / kRadiansPerDegree);
  double const phi = y * kRadiansPerDegree;
  double const dlambda = WrapDifference(x * kRadiansPerDegree - m_cm);
  double const am = m_a * Kernel::ConicM(m_e2, phi);
  double const M = calc_mx(m_a, phi);
  if (m_top == 0.0) {
    x = am * dlambda + m_fe;
    y = M + m_fn;
    return true;
  }
  double const rho = m_apex - M;
  double const E = rho == 0.0 ? 0.0 : am * dlambda / rho;
  x = rho * std::sin(E) + m_fe;
  y = m_top - rho * std::cos(E) + m_fn;
  return true;
}

bool CBonne::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double dx = x - m_fe, dy = y - m_fn;
  double M, rho = 0.0, theta = 0.0;
  if (m_top == 0.0) {
    M = dy;
  } else {
    dy = m_top - dy;
    if (m_sign < 0.0) {
      dx = -dx;
      dy = -dy;
    }
    rho = m_sign * std::hypot(dx, dy);
    theta = std::atan2(dx, dy);
    M = m_apex - rho;
  }
  double const phi = Footpoint(M / (m_a * c0), i1, i2, i3, i4);
  double const am = m_a * Kernel::ConicM(m_e2, phi);
  // At the pole, and at rho 0, the longitude is the central meridian's.
  double dlambda = 0.0;
  if (kHalfPi - std::fabs(phi) < kPoleTolerance)
    dlambda = 0.0;
  else if (m_top == 0.0)
    dlambda = dx / am;
  else if (rho != 0.0)
    dlambda = rho * theta / am;
  x = (m_cm + dlambda) / kRadiansPerDegree;
  y = phi / kRadiansPerDegree;
  return true;
}

// CPerspectiveConic
//
// n = sin s, rho = R cos d (cot s - tan(phi - s)), theta = n dlambda,
// x = rho sin theta, y = rho0 - rho cos theta, rho0 the radius of the equator.

void CPerspectiveConic::OnChange(unsigned short const *)
{
  if (!ParametersReady(kFiveParameters))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  ReadOrigin(p, m_cm, m_fe, m_fn);
  double const phi1 = Radians(p, kStandardParallel1), phi2 = Radians(p, kStandardParallel2);
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_sigma = 0.5 * (phi1 + phi2);
  m_n = std::sin(m_sigma);
  m_ready = figure != nullptr && m_n != 0.0;
  if (!m_ready)
    return;
  m_c1 = 1.0 / std::tan(m_sigma);
  m_c2 = figure->GetSemiMajor() * std::cos(0.5 * (phi2 - phi1));
  m_rho0 = m_c2 * (m_c1 + std::tan(m_sigma));
}

bool CPerspectiveConic::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const rho = m_c2 * (m_c1 - std::tan(y * kRadiansPerDegree - m_sigma));
  double const theta = m_n * WrapDifference(x * kRadiansPerDegree - m_cm);
  x = rho * std::sin(theta) + m_fe;
  y = m_rho0 - rho * std::cos(theta) + m_fn;
  return true;
}

bool CPerspectiveConic::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double dx = x - m_fe, dy = m_rho0 - (y - m_fn);
  if (m_n < 0.0) {
    dx = -dx;
    dy = -dy;
  }
  double const rho = std::copysign(std::sqrt(dx * dx + dy * dy), m_n);
  double const lambda = std::atan2(dx, dy) / m_n;
  x = (m_cm + lambda) / kRadiansPerDegree;
  y = (m_sigma + std::atan(m_c1 - rho / m_c2)) / kRadiansPerDegree;
  return true;
}

} // namespace Velmora::CS::PJ
