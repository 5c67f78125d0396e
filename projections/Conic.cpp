#include <velmora/projections/Conic.h>

#include <velmora/foundation/Constants.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/projections/ParameterNames_p.h>
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
constexpr long kTwoParallelCount = 6;
constexpr long kExtendedCount = 8;
constexpr long kTangentCount = 5;

// Latitude iterations of the inverses: the step at which they stop, radians,
// and their limits. The two-parallel conformal cone allows one round more
// than the tangent one.
constexpr double kIterationTolerance = 1e-07;
constexpr int kConformalRounds = 101;
constexpr int kTangentRounds = 100;
constexpr int kAuthalicRounds = 100;
// Parallels this close (radians) make a cone of one standard parallel.
constexpr double kEqualParallels = 1e-07;
// Belgium 1972's turn of the grid: 29.2985 seconds of arc, which is
// 0.000142043 radian, kept at the five figures this type has always used.
constexpr double kBelgiumRotation = 0.00014204;

BConeParameters ReadTwoParallels(CParameterCollection const & p)
{
  return {Radians(p, kCentralMeridian),   Radians(p, kLatitudeOfOrigin), Radians(p, kStandardParallel1),
          Radians(p, kStandardParallel2), Internal(p, kFalseEasting),    Internal(p, kFalseNorthing)};
}

// A longitude difference beyond half a turn is brought back by one turn:
// up when the longitude isn't positive, else down.
double ConeLongitude(double lambda, double cm)
{
  if (std::fabs(lambda - cm) > kPi)
    lambda += lambda <= 0.0 ? kTwoPi : -kTwoPi;
  return lambda;
}

// Once into -pi to pi: above pi loses a turn, at or below -pi gains one.
double WrapOnce(double lambda)
{
  if (lambda > kPi)
    return lambda - kTwoPi;
  if (lambda <= -kPi)
    return lambda + kTwoPi;
  return lambda;
}

// Polar coordinates on a cone from plane offsets (Snyder 14-10, 14-11):
// rho takes the sign of n, and so do x and rho0 - y inside atan2.
void ConePolar(double n, double rho0, double x, double y, double & rho, double & theta)
{
  double dy = rho0 - y;
  rho = std::sqrt(x * x + dy * dy);
  if (n < 0.0) {
    rho = -rho;
    x = -x;
    dy = -dy;
  }
  theta = std::atan2(x, dy);
}

// Easting and northing of the point at radius rho on the meridian lambda of
// a cone (Snyder 14-1, 14-2, 14-4), after the centering step.
void ConeToPlane(BConeParameters const & p, double n, double rho0, double rho, double lambda, double & x, double & y)
{
  double const theta = n * (ConeLongitude(lambda, p.cm) - p.cm);
  x = rho * std::sin(theta) + p.fe;
  y = rho0 - rho * std::cos(theta) + p.fn;
}

// The radius of a plane point on a cone, and its longitude in degrees.
double ConeFromPlane(BConeParameters const & p, double n, double rho0, double x, double y, double & longitude)
{
  double rho, theta;
  ConePolar(n, rho0, x - p.fe, y - p.fn, rho, theta);
  longitude = WrapOnce(theta / n + p.cm) / kRadiansPerDegree;
  return rho;
}

} // namespace

// BConformalCone
//
// t^n = exp(-n psi), with the isometric latitude psi from the sine alone;
// the inverse takes t = (rho/aF)^(1/n) and iterates the latitude.

void BConformalCone::SetFigure(double semiMajor, double eccentricitySquared)
{
  static_assert(sizeof(eatanhe) / sizeof(eatanhe[0]) == Kernel::kEAtanhETerms);
  a = semiMajor;
  e2 = eccentricitySquared;
  e = std::sqrt(e2);
  eatanheTerms = Kernel::MakeEAtanhE(e, eatanhe);
}

void BConformalCone::Forward(double & x, double & y, double & theta, double & scale) const
{
  double const lambda = ConeLongitude(x * kRadiansPerDegree, cm);
  double const s = std::sin(y * kRadiansPerDegree);
  double const c = std::sqrt((1.0 - s) * (1.0 + s)); // cos phi, phi within a quarter turn
  double const rho = aF * std::exp(-n * Kernel::IsometricLatitudeFromSine({e, eatanhe, eatanheTerms}, s));
  theta = n * (lambda - cm) - rotation;
  scale = rho * n * std::sqrt(1.0 - e2 * s * s) / (a * c);
  double sinTheta, cosTheta;
  ::sincos(theta, &sinTheta, &cosTheta);
  x = rho * sinTheta + fe;
  y = rho0 - rho * cosTheta + fn;
}

// With u = tan(pi/4 - phi/2) from the iteration, sin phi and cos phi are
// (1 - u^2)/(1 + u^2) and 2u/(1 + u^2), for the scale without more calls.
void BConformalCone::Inverse(double & x, double & y, double & theta, double & scale) const
{
  double rho;
  ConePolar(n, rho0, x - fe, y - fn, rho, theta);
  double const lambda = WrapOnce((theta + rotation) / n + cm);
  double const t = std::pow(rho / aF, 1.0 / n);
  double const u = Kernel::ConformalTangentFromT({e, eatanhe, eatanheTerms}, t, kIterationTolerance, rounds);
  double const u2 = u * u;
  double const s = (1.0 - u2) / (1.0 + u2), c = 2.0 * u / (1.0 + u2);
  scale = rho * n * std::sqrt(1.0 - e2 * s * s) / (a * c);
  x = lambda / kRadiansPerDegree;
  y = (kHalfPi - 2.0 * std::atan(u)) / kRadiansPerDegree;
}

// CLambertConformalConic

CLambertConformalConic::CLambertConformalConic(CHorizontalDatum * datum) : TProjection(datum) {}

CLambertConformalConic::CLambertConformalConic(CString const & typeName, CHorizontalDatum * datum)
  : TProjection(typeName, datum)
{
}

void CLambertConformalConic::ReadParameters()
{
  m_p = ReadTwoParallels(std::as_const(*this).GetParameters());
  m_cone.cm = m_p.cm;
  m_cone.fe = m_p.fe;
  m_cone.fn = m_p.fn;
}

// n = ln(m1/m2) / ln(t1/t2), F = m1/(n t1^n), rho0 = a F t0^n (Guidance
// Note 7-2, method 9802).
void CLambertConformalConic::Prepare(double a, double e2, double equalTolerance)
{
  BConformalCone & k = m_cone;
  k.SetFigure(a, e2);
  k.rounds = kConformalRounds;
  double const m1 = Kernel::ConicM(e2, m_p.phi1), m2 = Kernel::ConicM(e2, m_p.phi2);
  double const t1 = Kernel::ConformalT(k.e, m_p.phi1), t2 = Kernel::ConformalT(k.e, m_p.phi2);
  bool const tangent = equalTolerance > 0.0 ? std::fabs(m_p.phi1 - m_p.phi2) <= equalTolerance
                                            : std::sin(m_p.phi1) == std::sin(m_p.phi2);
  k.n = tangent ? std::sin(m_p.phi1) : std::log(m1 / m2) / std::log(t1 / t2);
  k.F = m1 / (k.n * std::pow(t1, k.n));
  k.aF = a * k.F;
  k.rho0 = k.aF * std::pow(Kernel::ConformalT(k.e, m_p.lat0), k.n);
  m_ready = true;
}

void CLambertConformalConic::PrepareOnDatum(double equalTolerance, double rotation)
{
  ReadParameters();
  m_ellipsoid = GetInnerEllipsoid();
  m_ready = false;
  if (m_ellipsoid)
    Prepare(m_ellipsoid->GetSemiMajor(), m_ellipsoid->GetEccentricitySquared(), equalTolerance);
  m_cone.rotation = rotation;
}

void CLambertConformalConic::OnChange(unsigned short const *)
{
  if (ParametersReady(kTwoParallelCount))
    PrepareOnDatum(0.0, 0.0);
}

bool CLambertConformalConic::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  m_cone.Forward(x, y, m_theta, m_scale);
  return true;
}

bool CLambertConformalConic::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  m_cone.Inverse(x, y, m_theta, m_scale);
  return true;
}

bool CLambertConformalConic::ConvergenceAtPoint(ML::CProjectedPoint const & point, ML::CAngularValue & angle) const
{
  double x = point.GetEast().GetInternal(), y = point.GetNorth().GetInternal();
  if (!FromPlane(x, y))
    return false;
  angle.SetInternal(m_theta);
  return true;
}

bool CLambertConformalConic::ScaleFactorAtPoint(ML::CProjectedPoint const & point, double & scale) const
{
  if (!GetHorizontalDatum())
    throw CVelmoraException(CVelmoraException::kHorizontalDatumMissing, "CLambertConformalConic::ScaleFactorAtPoint");
  double x = point.GetEast().GetInternal(), y = point.GetNorth().GetInternal();
  if (!FromPlane(x, y))
    return false;
  scale = m_scale;
  return true;
}

// CLambertConformalConicExtended

void CLambertConformalConicExtended::OnChange(unsigned short const *)
{
  if (!ParametersReady(kExtendedCount))
    return;
  ReadParameters();
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  double const h = Internal(p, kAverageElevation) + Internal(p, kAverageGeoidHeight);
  m_ellipsoid = GetInnerEllipsoid();
  m_ready = false;
  if (!m_ellipsoid)
    return;
  double const raisedA = m_ellipsoid->GetSemiMajor() + h;
  double e2 = m_ellipsoid->GetEccentricitySquared();
  if (std::fabs(h) != 0.0) {
    double const ratio = (m_ellipsoid->GetSemiMinor() + h) / raisedA;
    e2 = 1.0 - ratio * ratio;
  }
  Prepare(raisedA, e2, 0.0);
}

// CBelgium72

void CBelgium72::OnChange(unsigned short const *)
{
  if (ParametersReady(kTwoParallelCount))
    PrepareOnDatum(kEqualParallels, kBelgiumRotation);
}

// CLambertTangent
//
// n = sin phi0, F = m0/(n t0^n), r = a F k0 t^n (Guidance Note 7-2, method 9801).

void CLambertTangent::OnChange(unsigned short const *)
{
  if (!ParametersReady(kTangentCount))
    return;
  CParameterCollection const & p = std::as_const(*this).GetParameters();
  m_lat0 = Radians(p, kLatitudeOfOrigin);
  m_k0 = p.GetDouble(CString(kScaleFactor));
  BConformalCone & k = m_cone;
  k.cm = Radians(p, kCentralMeridian);
  k.fe = Internal(p, kFalseEasting);
  k.fn = Internal(p, kFalseNorthing);
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = figure != nullptr;
  if (!m_ready)
    return;
  k.SetFigure(figure->GetSemiMajor(), figure->GetEccentricitySquared());
  k.rounds = kTangentRounds;
  k.n = std::sin(m_lat0);
  double const t0n = std::pow(Kernel::ConformalT(k.e, m_lat0), k.n);
  k.F = Kernel::ConicM(k.e2, m_lat0) / (k.n * t0n);
  k.aF = k.a * m_k0 * k.F;
  k.rho0 = k.aF * t0n;
}

bool CLambertTangent::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double theta, scale;
  m_cone.Forward(x, y, theta, scale);
  return true;
}

bool CLambertTangent::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double theta, scale;
  m_cone.Inverse(x, y, theta, scale);
  return true;
}

// CAlbersEqualArea
//
// n = (m1^2 - m2^2)/(q2 - q1), C = m1^2 + n q1, rho = a sqrt(C - n q)/n
// (Snyder 14-12 to 14-14); parallels that meet take the limit n = sin phi1.

void CAlbersEqualArea::OnChange(unsigned short const *)
{
  if (!ParametersReady(kTwoParallelCount))
    return;
  m_p = ReadTwoParallels(std::as_const(*this).GetParameters());
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = figure != nullptr;
  if (!m_ready)
    return;
  m_a = figure->GetSemiMajor();
  m_e2 = figure->GetEccentricitySquared();
  m_e = std::sqrt(m_e2);
  double const m1 = Kernel::ConicM(m_e2, m_p.phi1), m2 = Kernel::ConicM(m_e2, m_p.phi2);
  double const q1 = Kernel::AuthalicQ(m_e, m_e2, std::sin(m_p.phi1));
  double const q2 = Kernel::AuthalicQ(m_e, m_e2, std::sin(m_p.phi2));
  m_qp = Kernel::AuthalicQ(m_e, m_e2, 1.0);
  m_n = std::fabs(m_p.phi1 - m_p.phi2) <= kEqualParallels ? std::sin(m_p.phi1) : (m1 * m1 - m2 * m2) / (q2 - q1);
  m_C = m1 * m1 + m_n * q1;
  m_rho0 = m_a * std::sqrt(m_C - m_n * Kernel::AuthalicQ(m_e, m_e2, std::sin(m_p.lat0))) / m_n;
}

bool CAlbersEqualArea::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_p.cm / kRadiansPerDegree);
  double const q = Kernel::AuthalicQ(m_e, m_e2, std::sin(y * kRadiansPerDegree));
  ConeToPlane(m_p, m_n, m_rho0, m_a * std::sqrt(m_C - m_n * q) / m_n, x * kRadiansPerDegree, x, y);
  return true;
}

bool CAlbersEqualArea::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const r = ConeFromPlane(m_p, m_n, m_rho0, x, y, x) * m_n / m_a;
  double const q = (m_C - r * r) / m_n;
  double phi;
  // At q of the pole the Newton step divides by cos phi = 0: the pole it is.
  if (std::fabs(q) >= m_qp)
    phi = std::copysign(kHalfPi, q);
  else
    phi = Kernel::LatitudeFromAuthalicQ(m_e, m_e2, q, std::asin(q / 2.0), kIterationTolerance, kAuthalicRounds);
  y = phi / kRadiansPerDegree;
  return true;
}

// CEquidistantConic
//
// n = (m1 - m2)/(M2 - M1), G = m1/n + M1, rho = a G - M, the arcs M per unit
// a from calc_mx (Snyder 16-1 to 16-5); the inverse by the footpoint of the
// rectifying latitude mu = M/(a c0) (Snyder 3-26, 16-10).

void CEquidistantConic::OnChange(unsigned short const *)
{
  if (!ParametersReady(kTwoParallelCount))
    return;
  m_p = ReadTwoParallels(std::as_const(*this).GetParameters());
  calc_meridional_values();
  m_ready = m_ellipsoid != nullptr;
  if (!m_ready)
    return;
  m_a = m_ellipsoid->GetSemiMajor();
  m_e2 = m_ellipsoid->GetEccentricitySquared();
  double const m1 = Kernel::ConicM(m_e2, m_p.phi1), m2 = Kernel::ConicM(m_e2, m_p.phi2);
  double const M1 = calc_mx(1.0, m_p.phi1), M2 = calc_mx(1.0, m_p.phi2);
  m_n = std::fabs(m_p.phi1 - m_p.phi2) > kEqualParallels ? (m1 - m2) / (M2 - M1) : std::sin(m_p.phi1);
  m_G = m1 / m_n + M1;
  m_rho0 = m_a * m_G - calc_mx(m_a, m_p.lat0);
}

bool CEquidistantConic::ToPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  CenterLongitude(x, m_p.cm / kRadiansPerDegree);
  ConeToPlane(m_p, m_n, m_rho0, m_a * m_G - calc_mx(m_a, y * kRadiansPerDegree), x * kRadiansPerDegree, x, y);
  return true;
}

bool CEquidistantConic::FromPlane(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || !m_ready)
    return false;
  double const mu = (m_G - ConeFromPlane(m_p, m_n, m_rho0, x, y, x) / m_a) / c0;
  y = (mu + i1 * std::sin(2.0 * mu) + i2 * std::sin(4.0 * mu) + i3 * std::sin(6.0 * mu) +
       i4 * std::sin(8.0 * mu)) / kRadiansPerDegree;
  return true;
}

} // namespace Velmora::CS::PJ
