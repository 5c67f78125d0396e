#include <velmora/refsys/BEllipsoid.h>

#include <velmora/foundation/VelmoraException.h>
#include <velmora/refsys/EllipsoidKernel_p.h>
#include <velmora/refsys/GeodesyConstants_p.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace Velmora::CS {

using namespace Geodesy;

namespace {

// The exception takes locations as 16-bit text; build them at compile time.
template <std::size_t N>
constexpr std::array<unsigned short, N> Ucs2(char const (&text)[N])
{
  std::array<unsigned short, N> out{};
  for (std::size_t i = 0; i < N; ++i)
    out[i] = static_cast<unsigned char>(text[i]);
  return out;
}

constexpr auto kLocationSemiMinor = Ucs2("BEllipsoid::set_SemiMajor_SemiMinor");
constexpr auto kLocationInverseFlattening = Ucs2("BEllipsoid::set_SemiMajor_InverseFlattening");
constexpr auto kLocationAxisRatio = Ucs2("BEllipsoid::set_SemiMajor_AxisRatio");

// Details per InitializationErrorCode.
constexpr std::array<char const *, 7> kInitDetails = {
  "",
  "Semi-major axis cannot be negative",
  "Semi-minor cannot be less than zero",
  "Semi-minor cannot be greater than semi-major",
  "Inverse flattening cannot be less than one",
  "Ratio of semi-minor to semi-major cannot be less than zero",
  "Ratio of semi-minor to semi-major cannot be greater than one",
};

// Azimuth reduction shared by both Vincenty routines: into [0, 2 pi].
inline double WrapAzimuth(double az)
{
  if (az < 0.0)
    az += kTwoPi;
  if (az > kTwoPi)
    az -= kTwoPi;
  return az;
}

} // namespace

// ---------------------------------------------------------------------------
// Figure

BEllipsoid::BEllipsoid()
{
  set_Default();
}

BEllipsoid::BEllipsoid(double semiMajor, double inverseFlattening)
{
  set_Default();
  set_SemiMajor_InverseFlattening(semiMajor, inverseFlattening);
}

BEllipsoid & BEllipsoid::operator=(BEllipsoid const & other)
{
  m_a = other.m_a;
  m_b = other.m_b;
  m_invF = other.m_invF;
  m_f = other.m_f;
  m_ratio = other.m_ratio;
  m_e = other.m_e;
  m_e2 = other.m_e2;
  return *this;
}

bool BEllipsoid::operator==(BEllipsoid const & other) const
{
  return m_a == other.m_a && m_b == other.m_b && m_invF == other.m_invF && m_f == other.m_f
         && m_ratio == other.m_ratio && m_e == other.m_e && m_e2 == other.m_e2;
}

void BEllipsoid::set_Default()
{
  m_a = 0.0;
  m_b = 0.0;
  m_invF = kSphereInverseFlattening;
  m_f = 0.0;
  m_ratio = 1.0;
  m_e = 0.0;
  m_e2 = 0.0;
}

void BEllipsoid::CheckInitError(InitializationErrorCode code, unsigned short const * location)
{
  if (code == kInitOk)
    return;
  throw EX::CVelmoraException(EX::CVelmoraException::kInvalidValue, CString(location),
                              CString(kInitDetails[static_cast<std::size_t>(code)]));
}

// When both axes are bad the later check's code is the one reported.
void BEllipsoid::set_SemiMajor_SemiMinor(double a, double b)
{
  InitializationErrorCode code = kInitOk;
  if (a < 0.0) {
    code = kInitNegativeSemiMajor;
    a = 0.0;
  }
  if (b < 0.0) {
    code = kInitNegativeSemiMinor;
    b = 0.0;
  } else if (a < b) {
    code = kInitSemiMinorAboveSemiMajor;
    b = a;
  }

  m_a = a;
  m_b = b;
  m_ratio = b / a;
  m_f = 1.0 - m_ratio;
  m_invF = (b == a) ? kSphereInverseFlattening : a / (a - b);
  m_e2 = 1.0 - m_ratio * m_ratio;
  m_e = std::sqrt(m_e2);

  CheckInitError(code, kLocationSemiMinor.data());
}

void BEllipsoid::set_SemiMajor_InverseFlattening(double a, double invF)
{
  InitializationErrorCode code = kInitOk;
  if (a < 0.0) {
    code = kInitNegativeSemiMajor;
    a = 0.0;
  }
  m_a = a;
  bool const belowOne = invF < 1.0;
  if (belowOne) {
    code = kInitInverseFlatteningBelowOne;
  } else if (invF != 0.0 && invF != 1.0) {
    m_invF = invF;
    m_f = 1.0 / invF;
    m_ratio = 1.0 - m_f;
    m_b = a * m_ratio;
  }
  if (belowOne || invF == 1.0) {
    // Below one or exactly one: the figure falls back to a sphere.
    m_b = a;
    m_ratio = 1.0;
    m_invF = kSphereInverseFlattening;
  }
  m_f = 1.0 - m_ratio;
  m_e2 = 1.0 - m_ratio * m_ratio;
  m_e = std::sqrt(m_e2);

  CheckInitError(code, kLocationInverseFlattening.data());
}

void BEllipsoid::set_SemiMajor_AxisRatio(double a, double ratio)
{
  InitializationErrorCode code = kInitOk;
  if (a < 0.0) {
    code = kInitNegativeSemiMajor;
    a = 0.0;
  }
  if (ratio < 0.0) {
    code = kInitNegativeAxisRatio;
    ratio = 0.0;
  } else if (ratio > 1.0) {
    code = kInitAxisRatioAboveOne;
    ratio = 1.0;
  }

  m_a = a;
  m_ratio = ratio;
  m_b = a * ratio;
  m_f = 1.0 - ratio;
  m_invF = (ratio == 1.0) ? kSphereInverseFlattening : 1.0 / m_f;
  m_e2 = 1.0 - ratio * ratio;
  m_e = std::sqrt(m_e2);

  CheckInitError(code, kLocationAxisRatio.data());
}

double BEllipsoid::GetSecondEccentricitySquared() const
{
  return 1.0 / (m_ratio * m_ratio) - 1.0;
}

// ---------------------------------------------------------------------------
// Auxiliary latitudes and radii of curvature (Snyder, Map Projections: A
// Working Manual, 1987, sections 3 and 4).

double BEllipsoid::ComputeAuthalicQ(double lat) const
{
  return Kernel::AuthalicQ(m_ratio == 1.0 ? 0.0 : m_e, m_e2, std::sin(lat));
}

double BEllipsoid::ComputeAuthalicQNorthPole() const
{
  if (m_ratio == 1.0)
    return 2.0;
  return 1.0 - (m_ratio * 0.5 * m_ratio) * std::log((1.0 - m_e) / (1.0 + m_e)) / m_e;
}

double BEllipsoid::ComputeAuthalicLatitude(double lat) const
{
  return ComputeAuthalicQ(lat) / ComputeAuthalicQNorthPole();
}

double BEllipsoid::ComputeConformalLatitude(double lat) const
{
  return Kernel::ConformalLatitude(m_e, lat);
}

double BEllipsoid::ComputeGeocentricLatitude(double lat) const
{
  return std::atan(std::tan(lat) * m_ratio * m_ratio);
}

double BEllipsoid::ComputeReducedLatitude(double lat) const
{
  return std::atan(std::tan(lat) * m_ratio);
}

double BEllipsoid::ComputeGaussRadiusAtLatitude(double lat) const
{
  double const s = std::sin(lat);
  return m_b / (1.0 - m_e2 * s * s);
}

double BEllipsoid::ComputeMeridionalRadiusAtLatitude(double lat) const
{
  double const s = std::sin(lat);
  return (m_ratio * m_b) / std::pow(1.0 - m_e2 * s * s, 1.5);
}

double BEllipsoid::ComputePrimeVerticalRadiusAtLatitude(double lat) const
{
  double const s = std::sin(lat);
  return m_a / std::sqrt(1.0 - m_e2 * s * s);
}

double BEllipsoid::ComputeOrthometricScaleAtLatitude(double lat, double height) const
{
  double const rho = ComputeMeridionalRadiusAtLatitude(lat);
  return rho / (height + rho);
}

double BEllipsoid::Haversine(double x)
{
  double const s = std::sin(x / 2.0);
  return s * s;
}

// R_q^2 = a^2/2 * (1 + (1 - e^2)/(2e) ln((1 + e)/(1 - e))), with the log
// folded to ln((1 + e)/ratio).
double BEllipsoid::AuthalicRadius() const
{
  return m_a * std::sqrt((m_ratio * m_ratio * std::log((1.0 + m_e) / m_ratio) / m_e + 1.0) * 0.5);
}

// The band's area is b^2 dlon * integral of ds/(1 - e^2 s^2)^2 over s = sin lat;
// the integrand's binomial series sum_k (k+1) e^2k s^(2k+1)/(2k+1) is summed
// term by term and divided by the band's area on the unit sphere,
// 2 (d2^2 - d1^2) = s1 - s2 in magnitude.
double BEllipsoid::AuthalicRadius(double lat1, double lat2) const
{
  double const s1 = std::sin(lat1);
  double const s2 = std::sin(lat2);
  double t1 = s1;
  double t2 = s2;
  double sum = s2 - s1;
  double i = 1.0;
  double n = 1.0;
  double term;
  do {
    i += 1.0;
    n += 2.0;
    t1 *= s1 * m_e2 * s1;
    t2 *= s2 * m_e2 * s2;
    term = (t2 - t1) * i / n;
    sum += term;
  } while (std::fabs(term) > kSeriesTolerance);

  double const d1 = std::sin(kQuarterPi - lat1 / 2.0);
  double const d2 = std::sin(kQuarterPi - lat2 / 2.0);
  double const den = d2 * d2 - d1 * d1;
  return std::fabs(std::sqrt(std::fabs(sum / (2.0 * den))) * m_b);
}

// ---------------------------------------------------------------------------
// Geocentric and geodetic coordinates

// Newton iteration on p tan(lat) = Z + a e^2 sin(lat)/W, W = sqrt(1 - e^2
// sin^2 lat), from a first estimate by one fixed-point step off the
// geocentric latitude. The iteration runs on t = tan(lat), where the equation
// is algebraic: with sin(lat)/W = t / sqrt(1 + (1 - e^2) t^2),
//   g(t) = p t - a e^2 t / sqrt(1 + (1 - e^2) t^2) - Z,
//   g'(t) = p - a e^2 / (1 + (1 - e^2) t^2)^(3/2),
// and a step of t by dt moves the latitude by atan(dt / (1 + t (t + dt))),
// which is what the tolerance is measured on. The root is the same as on the
// latitude itself, without a sine or cosine per step.
// The height is p sqrt(1 + t^2) - a sqrt((1 + t^2) / (1 + (1 - e^2) t^2)),
// that is p / cos(lat) - N, ill-conditioned right at the poles.
void BEllipsoid::ToGeodeticBase(int count, ML::BPoint3D * points) const { ToGeodetic<true>(count, points); }

void BEllipsoid::ToGeodeticLonLat(int count, ML::BPoint3D * points) const { ToGeodetic<false>(count, points); }

template <bool withHeight>
void BEllipsoid::ToGeodetic(int count, ML::BPoint3D * points) const
{
  double const a = m_a;
  double const e2 = m_e2;
  double const k = a * e2;
  double const ratio2 = m_ratio * m_ratio; // 1 - e^2

  for (int i = 0; i < count; ++i) {
    ML::BPoint3D & pt = points[i];
    double const X = pt.x;
    double const Y = pt.y;
    double const Z = pt.z;

    // p = sqrt(X^2 + Y^2) without overflow or underflow.
    double const ax = std::fabs(X);
    double const ay = std::fabs(Y);
    double const big = std::max(ax, ay);
    double const q = std::min(ax, ay) / big;
    double const p = std::sqrt(1.0 + q * q) * big;

    // tan of the geocentric latitude, then one fixed-point step.
    double const t0 = Z / (p * ratio2);
    double const s0 = t0 / std::sqrt(1.0 + t0 * t0);
    double t = (k * s0 / std::sqrt(1.0 - e2 * s0 * s0) + Z) / p;

    // atan(d) and d agree to far below the tolerance wherever it matters.
    if (std::fabs((t - t0) / (1.0 + t0 * t)) >= kLatitudeTolerance) {
      for (int step = 0; step < kMaxNewtonSteps; ++step) {
        double const r = 1.0 / std::sqrt(1.0 + ratio2 * t * t); // 1 / sqrt(u)
        double const g = p * t - k * t * r - Z;
        double const dg = p - k * r * r * r;
        double const dt = -g / dg;
        double const next = t + dt;
        bool const done = std::fabs(dt) < kLatitudeTolerance * std::fabs(1.0 + t * next);
        t = next;
        if (done)
          break;
      }
    }

    double const lat = std::atan(t);
    if constexpr (withHeight) {
      double const sec2 = 1.0 + t * t;
      pt.z = std::sqrt(p * p + (p * t) * (p * t)) - a * std::sqrt(sec2 / (1.0 + ratio2 * t * t));
    }
    pt.x = std::atan2(Y, X) / kDegree;
    pt.y = lat / kDegree;
  }
}

// X = (N + h) cos lat cos lon, Y = (N + h) cos lat sin lon, Z = (N b^2/a^2 + h) sin lat.
void BEllipsoid::FromGeodeticBase(int count, ML::BPoint3D * points) const
{
  double const a = m_a;
  double const e2 = m_e2;
  double const ratio2 = m_ratio * m_ratio;

  for (int i = 0; i < count; ++i) {
    ML::BPoint3D & pt = points[i];
    double const lon = pt.x * kDegree;
    double const lat = pt.y * kDegree;
    double const h = pt.z;
    double const sinLat = std::sin(lat);
    double const cosLat = std::cos(lat);
    double const N = a / std::sqrt(1.0 - e2 * sinLat * sinLat);
    double const r = (N + h) * cosLat;
    pt.x = r * std::cos(lon);
    pt.y = r * std::sin(lon);
    pt.z = (N * ratio2 + h) * sinLat;
  }
}

// ---------------------------------------------------------------------------
// Geodesics

// Vincenty (1975), inverse in Rainsford's arrangement on reduced latitudes
// (tan U = r tan lat), with Vincenty's 1976 series in k1 for A and B.
void BEllipsoid::GeodeticInverse(ML::BPoint2D const & p1, ML::BPoint2D const & p2,
                                 double & az12, double & az21, double & distance) const
{
  if (p1.x == p2.x && p1.y == p2.y) {
    az12 = az21 = distance = 0.0;
    return;
  }

  double const f = m_f;
  double const r = m_ratio;
  double const L = p2.x - p1.x;

  double const TU1 = r * std::tan(p1.y);
  double const TU2 = r * std::tan(p2.y);
  double const CU1 = 1.0 / std::sqrt(TU1 * TU1 + 1.0);
  double const CU2 = 1.0 / std::sqrt(TU2 * TU2 + 1.0);
  double const S = CU1 * CU2;
  double const BAZ = S * TU2;        // cos U1 sin U2
  double const FAZ = BAZ * TU1;      // sin U1 sin U2
  double const SC = CU2 * CU1 * TU1; // sin U1 cos U2

  double X = L; // lambda
  double SX, CX, A, B, SY, CY, Y, SA, C2A, CZ, E, C, D;
  for (int pass = 1;; ++pass) {
    SX = std::sin(X);
    CX = std::cos(X);
    A = CU2 * SX;
    B = BAZ - SC * CX;
    SY = std::sqrt(A * A + B * B); // sin sigma
    CY = S * CX + FAZ;             // cos sigma
    Y = std::atan2(SY, CY);        // sigma
    SA = S * SX / SY;              // sin alpha
    C2A = 1.0 - SA * SA;           // cos^2 alpha
    CZ = 2.0 * FAZ;
    if (C2A > 0.0)
      CZ = CY - CZ / C2A; // cos 2 sigma_m
    E = 2.0 * CZ * CZ - 1.0;
    C = C2A * ((4.0 - 3.0 * C2A) * f + 4.0) * f * 0.0625;
    D = X;
    X = (1.0 - C) * ((E * CY * C + CZ) * SY * C + Y) * SA * f + L;
    if (pass >= kVincentyMaxPasses || std::fabs(D - X) <= kVincentyTolerance)
      break;
  }

  az12 = std::atan2(A, B);
  if (az12 < 0.0)
    az12 += kTwoPi;
  az21 = WrapAzimuth(std::atan2(SX * CU1, BAZ * CX - SC) + kPi);

  // u^2 = e'^2 cos^2 alpha; X3 is Vincenty's k1, D2 = -B.
  double const X2 = std::sqrt((1.0 / (r * r) - 1.0) * C2A + 1.0) + 1.0;
  double const X3 = (X2 - 2.0) / X2;
  double const D2 = (0.375 * X3 * X3 - 1.0) * X3;
  double const sigma =
    D2 * SY * (CZ + ((1.0 - 2.0 * E) * (4.0 * SY * SY - 3.0) * CZ * D2 / 6.0 - E * CY) * D2 * 0.25)
    + Y;
  double const t = (0.25 * X3 * X3 + 1.0) / (1.0 - X3) * sigma;

  if (t >= kCoincidenceThreshold) {
    distance = t * m_b;
  } else {
    az12 = az21 = distance = 0.0;
  }
}

// Vincenty (1975), direct, in the same arrangement as the inverse.
void BEllipsoid::GeodeticForward(ML::BPoint2D const & p1, double azimuth, double distance,
                                 ML::BPoint2D & p2, double & az21) const
{
  double const f = m_f;
  double const r = m_ratio;

  double az = azimuth;
  if (az < 0.0 || az > kTwoPi) {
    az = std::fmod(az, kTwoPi);
    if (az < 0.0)
      az += kTwoPi;
  }
  double const CF = std::cos(az);
  double const SF = std::sin(az);

  double const TU = r * std::tan(p1.y);
  double BAZ = 0.0; // 2 sigma_1
  if (CF != 0.0)
    BAZ = 2.0 * std::atan2(TU, CF);
  double const CU = 1.0 / std::sqrt(TU * TU + 1.0);
  double const SU = TU * CU;
  double const SA = CU * SF; // sin alpha
  double const C2 = SA * SA; // sin^2 alpha

  double const X2 = std::sqrt((1.0 / (r * r) - 1.0) * (1.0 - C2) + 1.0) + 1.0;
  double const X = (X2 - 2.0) / X2;
  double const D = (0.375 * X * X - 1.0) * X;
  double const T = distance / m_b;
  double const Y0 = T / ((0.25 * X * X + 1.0) / (1.0 - X));
  double Y = Y0; // sigma

  // SY, CY, CZ and E leave the loop as the last pass computed them, from the
  // sigma before its final update.
  double SY, CY, CZ, E;
  for (int pass = 1;; ++pass) {
    SY = std::sin(Y);
    CY = std::cos(Y);
    CZ = std::cos(BAZ + Y); // cos 2 sigma_m
    E = 2.0 * CZ * CZ - 1.0;
    double const Yold = Y;
    Y = (((SY * SY * 4.0 - 3.0) * (2.0 * E - 1.0) * CZ * D / 6.0 + E * CY) * D * 0.25 - CZ) * SY * D
        + Y0;
    if (pass >= kVincentyMaxPasses || std::fabs(Y - Yold) <= kVincentyTolerance)
      break;
  }

  double const BAZ2 = CU * CY * CF - SU * SY;
  double const lat2 = std::atan2(SU * CY + CU * SY * CF, r * std::sqrt(BAZ2 * BAZ2 + C2));
  double const lambda = std::atan2(SY * SF, CU * CY - SU * SY * CF);
  double const C = (1.0 - C2) * (4.0 + (4.0 - 3.0 * (1.0 - C2)) * f) * f * 0.0625;
  p2.x = p1.x + lambda - (1.0 - C) * ((E * CY * C + CZ) * SY * C + Y) * SA * f;
  p2.y = lat2;

  az21 = WrapAzimuth(std::atan2(SA, BAZ2) + kPi);
}

// ---------------------------------------------------------------------------
// Rhumb lines (Snyder 1987, eqs. 3-7, 3-21, 3-26; Bennett 1996 for the plan)

double BEllipsoid::IsometricLatitude(double lat) const
{
  return Kernel::IsometricLatitude(m_e, lat);
}

double BEllipsoid::MeridianArc(double lat) const
{
  return m_a * Kernel::MeridianArcSeries::Make(m_e2, m_ratio).Arc(lat);
}

bool BEllipsoid::RhumbInverse(ML::BPoint2D const & p1, ML::BPoint2D const & p2,
                              double & azimuth, double & distance) const
{
  double const dLat = p1.y - p2.y;
  double const dLon = p1.x - p2.x;
  if (std::fabs(dLat) < kRhumbTolerance && std::fabs(dLon) < kRhumbTolerance) {
    azimuth = distance = 0.0;
    return false;
  }

  double const a = m_a;
  azimuth = std::atan2(a * p2.x - a * p1.x, a * IsometricLatitude(p2.y) - a * IsometricLatitude(p1.y));

  double s;
  if (std::fabs(dLat) < kRhumbTolerance) {
    // Along a parallel: the arc of its circle, radius N cos lat.
    double const sinLat = std::sin(p1.y);
    s = std::cos(p1.y) * (p2.x - p1.x) * a / std::sqrt(1.0 - m_e2 * sinLat * sinLat);
  } else {
    s = (MeridianArc(p2.y) - MeridianArc(p1.y)) / std::cos(azimuth);
  }

  distance = std::fabs(s);
  if (azimuth < 0.0)
    azimuth += kTwoPi;
  return true;
}

bool BEllipsoid::RhumbDirect(ML::BPoint2D const & p1, double azimuth, double distance,
                             ML::BPoint2D & p2) const
{
  double const absAz = std::fabs(azimuth);
  bool const nearQuarter = std::fabs(absAz - kHalfPi) < kRhumbTolerance;
  bool const nearThreeQuarters = std::fabs(absAz - kThreeHalvesPi) < kRhumbTolerance;

  if (!nearQuarter && !nearThreeQuarters) {
    // Latitude from the meridian arc by the rectifying latitude mu and its
    // inverse series in n = (a - b)/(a + b) (Snyder 1987, eq. 3-26).
    auto const series = Kernel::MeridianArcSeries::Make(m_e2, m_ratio);
    double const M2 = distance * std::cos(azimuth) + MeridianArc(p1.y);
    double const lat2 = series.Footpoint(M2 / (m_a * series.c0));
    p2.y = lat2;
    p2.x = p1.x + std::tan(azimuth) * (IsometricLatitude(lat2) - IsometricLatitude(p1.y));
    return true;
  }

  // East-west along the parallel. Only an azimuth near +pi/2 goes east: one
  // near -pi/2 or near either 3 pi/2 goes west, -3 pi/2 included, as
  // established behaviour has it.
  double s = distance;
  if (nearThreeQuarters || azimuth < 0.0)
    s = -s;
  double const sinLat = std::sin(p1.y);
  p2.y = p1.y;
  p2.x = p1.x + s * std::sqrt(1.0 - m_e2 * sinLat * sinLat) / (std::cos(p1.y) * m_a);
  return true;
}

// ---------------------------------------------------------------------------
// Areas

double BEllipsoid::PolygonArea(std::vector<ML::BPoint2D> const & vertices) const
{
  double minLon = vertices.front().x;
  double maxLon = minLon;
  double minLat = vertices.front().y;
  double maxLat = minLat;
  for (ML::BPoint2D const & v : vertices) {
    minLon = std::min(minLon, v.x);
    maxLon = std::max(maxLon, v.x);
    minLat = std::min(minLat, v.y);
    maxLat = std::max(maxLat, v.y);
  }

  if (maxLon - minLon <= kPseudoPlanarExtent && maxLat - minLat <= kPseudoPlanarExtent)
    return PseudoPlanarPolygonArea((minLon + maxLon) / 2.0, (minLat + maxLat) / 2.0, vertices);
  return SphericalPolygonArea(minLat, maxLat, vertices);
}

// Shoelace sum on the local plane, scaled by cos(lat0) and the Gauss radius.
double BEllipsoid::PseudoPlanarPolygonArea(double lon0, double lat0,
                                           std::vector<ML::BPoint2D> const & vertices) const
{
  double sum = 0.0;
  ML::BPoint2D P = vertices.back();
  for (ML::BPoint2D const & Q : vertices) {
    sum += (P.x - lon0) * (Q.y - lat0) - (Q.x - lon0) * (P.y - lat0);
    P = Q;
  }
  double const R = ComputeGaussRadiusAtLatitude(lat0);
  return std::cos(lat0) * -0.5 * sum * R * R;
}

// Sum of the signed triangles that each edge makes with the north pole, each
// by L'Huilier's theorem on the unit sphere, then scaled by the radius of the
// sphere that gives the polygon's latitude band the ellipsoid's area.
double BEllipsoid::SphericalPolygonArea(double minLat, double maxLat,
                                        std::vector<ML::BPoint2D> const & vertices) const
{
  double total = 0.0;
  ML::BPoint2D P = vertices.back();
  for (ML::BPoint2D const & Q : vertices) {
    if (Q.x != P.x) {
      // c: the edge by the haversine formula; x, y: colatitudes of its ends.
      double const c = 2.0 * std::asin(std::sqrt(Haversine(Q.y - P.y)
                                                 + std::cos(P.y) * std::cos(Q.y) * Haversine(Q.x - P.x)));
      double const x = kHalfPi - Q.y;
      double const y = kHalfPi - P.y;
      double const h = (y + x + c) / 2.0;
      double const E = std::fabs(4.0 * std::atan(std::sqrt(std::fabs(
                         std::tan(h / 2.0) * std::tan((h - c) / 2.0) * std::tan((h - x) / 2.0)
                         * std::tan((h - y) / 2.0)))));

      // East over less than half the globe subtracts, and so does west over
      // more than half: the antimeridian needs no special case.
      double const d = Q.x - P.x;
      double const limit = (Q.x <= P.x) ? -kPi : kPi;
      if (limit < d)
        total += E;
      else
        total -= E;
    }
    P = Q;
  }

  double R;
  if (maxLat != minLat) {
    R = AuthalicRadius(minLat, maxLat);
  } else {
    double const s = std::sin(minLat);
    R = m_b / (1.0 - m_e2 * s * s);
  }
  return R * total * R;
}

} // namespace Velmora::CS
