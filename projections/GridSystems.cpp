#include <velmora/projections/GridSystems.h>

#include <velmora/foundation/Constants.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/projections/MilitaryGrid_p.h>
#include <velmora/projections/ParameterNames_p.h>
#include <velmora/projections/UTMGrid_p.h>
#include <velmora/refsys/EllipsoidKernel_p.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <iterator>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace Velmora::CS::PJ {

using Constants::kRadiansPerDegree;
using EX::CVelmoraException;
using namespace Parameter;

namespace {

// Grid references.
constexpr char kNoEpsgCode[] = "MGRS requires an EPSG code to be set in Ellipsoid reference";
constexpr char kInvalidEllipsoid[] = "Invalid Ellipsoid";
constexpr char kBadFormat[] = "Bad format in MGRS string";
constexpr char kOddDigits[] =
  "Bad format in MGRS string: coordinate part of string needs to be an even number of characters";
constexpr char kInvalidZone[] = "Invalid ZONE";
constexpr char kInvalidBand[] = "Invalid ZONE designator";
constexpr char kMgrsLabel[] = "MGRS String";
constexpr double kSquare = 100000.0;      // side of a lettered square, metres
constexpr long kSquareMetres = 100000;
constexpr double kRowCycle = 2000000.0;   // the row letters repeat every 2000 km
constexpr long kRowCycleMetres = 2000000;
constexpr long kLastNorthing = 9999999;   // northings are kept below 10000 km
constexpr int kMaxDigits = 10;            // two runs of at most five digits
constexpr double kUtmScale = 0.9996;
constexpr double kUtmFalseEasting = 500000.0;
constexpr double kUtmSouthFalseNorthing = 10000000.0;
constexpr double kNorthLimit = 84.0;
constexpr double kSouthLimit = -80.0;
constexpr double kBandHeight = 8.0;       // degrees; band X has 12
constexpr long kFirstBand = 2;            // C, the index of the band at 80 S
constexpr long kZoneWidth = 6;
constexpr long kZoneOffset = 183;         // zone 1 is centred on 177 W
constexpr long kZones = 60;
// South-west Norway: zone 31 ends at 3 E in band V, and the square's
// easting stays west of the central meridian.
constexpr double kNorwayEdge = 3.0;
constexpr long kNorwayMaxEasting = 499999;

// The UTM projection of a zone, central meridian zone x 6 - 183 degrees.
class CZoneProjection
{
public:
  CZoneProjection(CHorizontalDatum * datum, long zone, bool south) : m_tm(datum)
  {
    CParameterCollection & p = m_tm.GetParameters();
    p.SetItemInternal(CString(kCentralMeridian), static_cast<double>(zone * kZoneWidth - kZoneOffset));
    p.SetItemInternal(CString(kLatitudeOfOrigin), 0.0);
    p.SetDouble(CString(kScaleFactor), kUtmScale);
    p.SetItemInternal(CString(kFalseEasting), kUtmFalseEasting);
    p.SetItemInternal(CString(kFalseNorthing), south ? kUtmSouthFalseNorthing : 0.0);
  }
  bool Forward(double & x, double & y) const { return m_tm.ToPlane(x, y); }
  bool Inverse(double & x, double & y) const { return m_tm.FromPlane(x, y); }

private:
  CTransverseMercator m_tm;
};

// A letter of a sequence that skips I and O, from its index from 'A'.
char SkippingLetter(long index)
{
  char letter = static_cast<char>('A' + index);
  if (letter > 'H')
    ++letter;
  if (letter > 'N')
    ++letter;
  return letter;
}

// The index from 'A' of a letter of such a sequence; -1 for I and O.
long SkippingIndex(char letter)
{
  if (letter == 'I' || letter == 'O')
    return -1;
  long index = letter - 'A';
  if (letter > 'O')
    --index;
  if (letter > 'I')
    --index;
  return index;
}

bool Lettering(bool usng, long zone, int code, char const * location, char & first, char & last, double & offset)
{
  if (!UTMGrid::Lettering(usng, zone, code, first, last, offset))
    throw CVelmoraException(CVelmoraException::kCustom, location, kInvalidEllipsoid);
  return true;
}

[[noreturn]] void BadText(char const * location, char const * details)
{
  throw CVelmoraException(CVelmoraException::kCustom, location, details);
}

} // namespace

namespace MilitaryGrid {

bool Format(CHorizontalDatum * datum, int ellipsoidCode, bool usng, double lon, double lat, char const * location,
            CString & text)
{
  if (ellipsoidCode == 0)
    throw CVelmoraException(CVelmoraException::kCustom, location, kNoEpsgCode);
  // The longitude to six decimals, as it has always been written, then
  // folded into -180 to 180.
  char printed[64];
  std::snprintf(printed, sizeof printed, "%f", lon);
  lon = std::atof(printed);
  if (lon < -180.0 || lon > 180.0) {
    lon = std::fmod(lon, 360.0);
    if (lon > 180.0)
      lon -= 360.0;
    else if (lon < -180.0)
      lon += 360.0;
  }
  long zone = ((static_cast<long>(std::floor(lon)) + 180) / kZoneWidth) % kZones + 1;
  if (lat > kNorthLimit || lat < kSouthLimit)
    return false;

  // Bands of 8 degrees from C at 80 S, skipping I and O; X takes 72 to 84.
  char band = SkippingLetter(kFirstBand + static_cast<long>((lat - kSouthLimit) / kBandHeight));
  if (band > 'X')
    band = 'X';
  if (zone == 31 && band == 'V' && lon > kNorwayEdge)
    zone = 32;
  if (band == 'X') {
    if (zone == 32)
      zone = lon >= 9.0 ? 33 : 31;
    else if (zone == 34)
      zone = lon < 21.0 ? 33 : 35;
    else if (zone == 36)
      zone = lon < 33.0 ? 35 : 37;
  }

  char first = 0, last = 0;
  double offset = 0.0;
  Lettering(usng, zone, ellipsoidCode, location, first, last, offset);

  double x = lon, y = lat;
  if (!CZoneProjection(datum, zone, lat < 0.0).Forward(x, y))
    return false;
  long easting = static_cast<long>(std::floor(x + 0.5));
  long northing = static_cast<long>(std::floor(y + 0.5));
  if (zone == 31 && band == 'V' && easting > kNorwayMaxEasting)
    easting = kNorwayMaxEasting;

  char column = static_cast<char>(first + easting / kSquareMetres - 1);
  if (first == 'J' && column > 'N')
    ++column;
  easting %= kSquareMetres;

  if (northing > kLastNorthing)
    northing = kLastNorthing;
  northing %= kRowCycleMetres;
  northing -= static_cast<long>(offset);
  if (northing < 0)
    northing += kRowCycleMetres;
  char const row = SkippingLetter(northing / kSquareMetres);
  northing %= kSquareMetres;

  char formatted[64];
  std::snprintf(formatted, sizeof formatted, "%2d%c%c%c%05ld%05ld", static_cast<int>(zone), band, column, row,
                easting, northing);
  text = CString(formatted);
  return true;
}

void Parse(CHorizontalDatum * datum, int ellipsoidCode, bool usng, CString const & text, char const * location,
           double & lon, double & lat)
{
  QByteArray const s = text.trimmed().toUpper().toLatin1();
  int at = 0;
  while (at < s.size() && s[at] >= '0' && s[at] <= '9')
    ++at;
  if (at == 0 || at > 2 || s.size() < at + 3)
    BadText(location, kBadFormat);
  long const zone = std::atol(s.left(at).constData());
  if (zone < 1 || zone > kZones)
    BadText(location, kInvalidZone);
  char const band = s[at];
  if (band < 'C' || band > 'X' || SkippingIndex(band) < 0)
    BadText(location, kInvalidBand);
  char const column = s[at + 1], row = s[at + 2];
  QByteArray const digits = s.mid(at + 3);
  for (char d : digits)
    if (d < '0' || d > '9')
      BadText(location, kBadFormat);
  if (digits.size() % 2 != 0)
    BadText(location, kOddDigits);
  if (digits.size() > kMaxDigits)
    BadText(location, kBadFormat);

  if (ellipsoidCode == 0)
    throw CVelmoraException(CVelmoraException::kCustom, location, kNoEpsgCode);
  char first = 0, last = 0;
  double offset = 0.0;
  Lettering(usng, zone, ellipsoidCode, location, first, last, offset);
  long const rowIndex = SkippingIndex(row);
  if (column < first || column > last || column == 'O' || rowIndex < 0 || row > 'V')
    BadText(location, kBadFormat);
  long columnIndex = column - first + 1;
  if (first == 'J' && column > 'O')
    --columnIndex;

  // The digits name metres once padded to five figures each.
  int const half = static_cast<int>(digits.size() / 2);
  double const unit = std::pow(10.0, 5 - half);
  double const east = half ? std::atof(digits.left(half).constData()) * unit : 0.0;
  double const north = half ? std::atof(digits.mid(half).constData()) * unit : 0.0;
  double const x = columnIndex * kSquare + east;
  double const cycle = std::fmod(rowIndex * kSquare + offset + north, kRowCycle);

  // The band's middle parallel picks the 2000 km cycle: a band spans 1330 km
  // at most, so the nearest cycle is the band's own.
  bool const south = band < 'N';
  long bandNorth = 0, bandSouth = 0, east0 = 0, west0 = 0;
  UTMGrid::Limits(band, zone, bandNorth, bandSouth, east0, west0);
  CZoneProjection const projection(datum, zone, south);
  double middleX = static_cast<double>(zone * kZoneWidth - kZoneOffset);
  double middleY = 0.5 * static_cast<double>(bandNorth + bandSouth);
  if (!projection.Forward(middleX, middleY))
    BadText(location, kBadFormat);
  double const y = cycle + kRowCycle * std::round((middleY - cycle) / kRowCycle);
  lon = x;
  lat = y;
  if (!projection.Inverse(lon, lat))
    BadText(location, kBadFormat);
}

} // namespace MilitaryGrid

// CMilitaryGridReferenceSystem

CMilitaryGridReferenceSystem::CMilitaryGridReferenceSystem(CHorizontalDatum * datum) : TProjection(datum)
{
  OnChange(nullptr);
}

void CMilitaryGridReferenceSystem::OnChange(unsigned short const *)
{
  m_epsgCode = 0;
  CHorizontalDatum const * datum = GetHorizontalDatum();
  if (!datum)
    return;
  CIdentifierCollection const & ids = datum->GetEllipsoid().GetIdentifiers();
  CString const issuer("EPSG");
  if (ids.Exists(issuer))
    m_epsgCode = static_cast<int>(ids.GetItem(issuer).toLong());
}

bool CMilitaryGridReferenceSystem::ToPlane(ML::CGeodeticPoint const & in, ML::CProjectedPoint & out) const
{
  CHorizontalDatum * datum = const_cast<CMilitaryGridReferenceSystem *>(this)->GetHorizontalDatum();
  if (!datum)
    return false;
  CString text;
  if (!MilitaryGrid::Format(datum, m_epsgCode, false, in.GetLon().GetInternal(), in.GetLat().GetInternal(),
                            "CMilitaryGridReferenceSystem::ToPlane", text))
    return false;
  if (out.GetStringFormat() == ML::CProjectedPoint::kNone)
    out.SetStringFormat(ML::CProjectedPoint::kMGRS);
  out.SetLocationString(text);
  CString const label(kMgrsLabel);
  out.GetEast().SetLabel(label);
  out.GetNorth().SetLabel(label);
  return true;
}

bool CMilitaryGridReferenceSystem::FromPlane(ML::CProjectedPoint const & in, ML::CGeodeticPoint & out) const
{
  CHorizontalDatum * datum = const_cast<CMilitaryGridReferenceSystem *>(this)->GetHorizontalDatum();
  if (!datum || in.GetStringFormat() == ML::CProjectedPoint::kNone)
    return false;
  double lon = 0.0, lat = 0.0;
  MilitaryGrid::Parse(datum, m_epsgCode, false, in.GetLocationString(), "CMilitaryGridReferenceSystem::FromPlane",
                      lon, lat);
  out.SetInternals(lon, lat);
  return true;
}

// CNewZealandMapGrid
//
// Forward: dpsi = sum A_n dphi^n with dphi in units of 1e5 seconds of arc,
// zeta = dpsi + i dlambda, z = sum B_n zeta^n, N + iE = false values + a z.
// Inverse: zeta0 = sum C_n z^n, then Newton steps
// zeta <- (z + sum (n-1) B_n zeta^n) / sum n B_n zeta^(n-1), and
// dphi = sum D_n dpsi^n. (Technical Circular 1973/32; OSG TR 4.1.)

namespace {

using Complex = std::complex<double>;

constexpr double kNzmgRadius = 6378388.0; // International 1924
constexpr double kSecondsPerDegree = 3600.0;
constexpr double kNzmgLatitudeUnit = 1e-05; // dphi in units of 1e5 seconds
constexpr int kNzmgNewtonSteps = 2;
constexpr long kNzmgParameterCount = 4;

constexpr double kNzmgA[] = {0.6399175073, -0.1358797613, 0.063294409, -0.02526853, 0.0117879,
                             -0.0055161,   0.0026906,     -0.001333,   0.00067,     -0.00034};
constexpr Complex kNzmgB[] = {{0.7557853228, 0.0},        {0.249204646, 0.003371507}, {-0.001541739, 0.041058560},
                              {-0.10162907, 0.01727609},  {-0.26623489, -0.36249218}, {-0.6870983, -1.1651967}};
constexpr Complex kNzmgC[] = {{1.3231270439, 0.0},        {-0.577245789, -0.007809598}, {0.508307513, -0.112208952},
                              {-0.15094762, 0.18200602},  {1.01418179, 1.64497696},     {1.9660549, 2.5127645}};
constexpr double kNzmgD[] = {1.5627014243, 0.5185406398, -0.03333098, -0.1052906, -0.0368594,
                             0.007317,     0.01220,      0.00394,     -0.0013};

// sum c_n x^n, n from 1, by Horner's rule.
template <class T, class C, std::size_t N>
T PowerSeries(C const (&c)[N], T x)
{
  T sum = c[N - 1];
  for (std::size_t n = N - 1; n > 0; --n)
    sum = sum * x + c[n - 1];
  return sum * x;
}

} // namespace

void CNewZealandMapGrid::OnChange(unsigned short const *)
{
  m_ready = ParametersReady(kNzmgParameterCount);
  if (!m_ready)
    return;
  CParameterCollection const & p = GetParameters();
  m_lon0 = Internal(p, kCentralMeridian);
  m_lat0 = Internal(p, kLatitudeOfOrigin);
  m_fe = Internal(p, kFalseEasting);
  m_fn = Internal(p, kFalseNorthing);
}

bool CNewZealandMapGrid::ToPlane(double & x, double & y) const
{
  if (!m_ready)
    return false;
  double const dphi = (y - m_lat0) * kSecondsPerDegree * kNzmgLatitudeUnit;
  Complex const zeta(PowerSeries(kNzmgA, dphi), (x - m_lon0) * kRadiansPerDegree);
  Complex const z = PowerSeries(kNzmgB, zeta);
  y = m_fn + kNzmgRadius * z.real();
  x = m_fe + kNzmgRadius * z.imag();
  return true;
}

bool CNewZealandMapGrid::FromPlane(double & x, double & y) const
{
  if (!m_ready)
    return false;
  Complex const z((y - m_fn) / kNzmgRadius, (x - m_fe) / kNzmgRadius);
  Complex zeta = PowerSeries(kNzmgC, z);
  for (int step = 0; step < kNzmgNewtonSteps; ++step) {
    Complex numerator = z, denominator = kNzmgB[0];
    Complex power = zeta; // zeta^(n-1) for the term n + 1
    for (std::size_t n = 1; n < std::size(kNzmgB); ++n) {
      denominator += static_cast<double>(n + 1) * kNzmgB[n] * power;
      power *= zeta;
      numerator += static_cast<double>(n) * kNzmgB[n] * power;
    }
    zeta = numerator / denominator;
  }
  double const dphi = PowerSeries(kNzmgD, zeta.real());
  y = m_lat0 + dphi / (kSecondsPerDegree * kNzmgLatitudeUnit);
  x = m_lon0 + zeta.imag() / kRadiansPerDegree;
  return true;
}


// CSpaceObliqueMercator
//
// Snyder 27-1 to 27-25 for a circular orbit on the ellipsoid, with lambda''
// the transformed longitude along the ground track and phi'' the
// transformed latitude across it:
//   x/a = B lambda'' + A2 sin 2lambda'' + A4 sin 4lambda'' - S/sqrt(J^2 + S^2) ln tan(pi/4 + phi''/2)
//   y/a = C1 sin lambda'' + C3 sin 3lambda'' + J/sqrt(J^2 + S^2) ln tan(pi/4 + phi''/2)

namespace {

constexpr long kSomParameterCount = 8;
constexpr double kSomTolerance = 1e-07;  // radians, both iterations
constexpr int kSomRounds = 50;
constexpr int kSomTries = 3;             // starts of the forward iteration
constexpr int kSimpsonIntervals = 10;    // 9-degree steps over a quarter turn
constexpr double kSimpsonStep = Constants::kPi / 20.0;

} // namespace

double CSpaceObliqueMercator::SeriesS(double lambdaPP, double & H) const
{
  double const s2 = std::sin(lambdaPP) * std::sin(lambdaPP);
  double const w = 1.0 + m_W * s2, q = 1.0 + m_Q * s2;
  H = std::sqrt(q / w) * (w / (q * q) - m_p * m_cosI);
  return m_p * m_sinI * std::cos(lambdaPP) * std::sqrt((1.0 + m_T * s2) / (w * q));
}

void CSpaceObliqueMercator::OnChange(unsigned short const *)
{
  m_ready = ParametersReady(kSomParameterCount);
  if (!m_ready)
    return;
  CParameterCollection const & p = GetParameters();
  auto const number = [&p](char const * name) { return p.GetDouble(CString(name)); };
  m_a = Internal(p, "satellite_a");
  double const e = number("satellite_e");
  m_e2 = e * e;
  m_lon0 = Radians(p, "satellite_lon0");
  double const incl = Radians(p, "satellite_incl");
  m_sinI = std::sin(incl);
  m_cosI = std::cos(incl);
  m_p = number("satellite_p2") / number("satellite_p1");
  m_start = Constants::kPi * number("satellite_gamma");
  m_ready = m_a > 0.0 && m_e2 < 1.0 && std::isfinite(m_p);
  if (!m_ready)
    return;

  double const oneMinus = 1.0 - m_e2;
  m_J = oneMinus * oneMinus * oneMinus;
  double const w = (1.0 - m_e2 * m_cosI * m_cosI) / oneMinus;
  m_W = w * w - 1.0;
  m_Q = m_e2 * m_sinI * m_sinI / oneMinus;
  m_T = m_e2 * m_sinI * m_sinI * (2.0 - m_e2) / (oneMinus * oneMinus);
  m_U = m_e2 * m_cosI * m_cosI / oneMinus;

  // Simpson's rule over lambda'' from 0 to pi/2 of the Fourier coefficients
  // of dx/dlambda'' and dy/dlambda'' (Snyder, chapter 27: B, A2, A4 from
  // (HJ - S^2)/sqrt(J^2 + S^2), C1, C3 from S(H + J)/sqrt(J^2 + S^2)).
  double sumB = 0.0, sumA2 = 0.0, sumA4 = 0.0, sumC1 = 0.0, sumC3 = 0.0;
  for (int k = 0; k <= kSimpsonIntervals; ++k) {
    double const weight = (k == 0 || k == kSimpsonIntervals) ? 1.0 : (k % 2 ? 4.0 : 2.0);
    double const lambdaPP = k * kSimpsonStep;
    double H;
    double const S = SeriesS(lambdaPP, H);
    double const root = std::sqrt(m_J * m_J + S * S);
    double const fx = weight * (H * m_J - S * S) / root;
    double const fy = weight * S * (H + m_J) / root;
    sumB += fx;
    sumA2 += fx * std::cos(2.0 * lambdaPP);
    sumA4 += fx * std::cos(4.0 * lambdaPP);
    sumC1 += fy * std::cos(lambdaPP);
    sumC3 += fy * std::cos(3.0 * lambdaPP);
  }
  // (step/3) times 2/pi for B, times 4/(n pi) for A_n and C_n.
  m_B = sumB / 30.0;
  m_A2 = sumA2 / 30.0;
  m_A4 = sumA4 / 60.0;
  m_C1 = sumC1 / 15.0;
  m_C3 = sumC3 / 45.0;
}

bool CSpaceObliqueMercator::ToPlane(double & x, double & y) const
{
  if (!m_ready)
    return false;
  double const phi = std::clamp(y * kRadiansPerDegree, -Constants::kHalfPi, Constants::kHalfPi);
  double const lambda = x * kRadiansPerDegree - m_lon0;
  double const numeratorPhi = (1.0 - m_e2) * std::tan(phi) * m_sinI;
  // lambda'' solves tan lambda'' = ((1 - e^2) tan phi sin i + sin lambda_t cos i) / cos lambda_t,
  // lambda_t = lambda + p lambda'', on the branch within half a turn of the
  // start; a path runs from pi gamma to pi gamma + 2 pi.
  double centre = phi >= 0.0 ? Constants::kHalfPi : 3.0 * Constants::kHalfPi;
  double lambdaPP = centre;
  bool converged = false;
  for (int attempt = 0; attempt < kSomTries; ++attempt) {
    double previous = centre;
    converged = false;
    for (int round = 0; round < kSomRounds && !converged; ++round) {
      double const lambdaT = lambda + m_p * previous;
      lambdaPP = std::atan2(numeratorPhi + std::sin(lambdaT) * m_cosI, std::cos(lambdaT));
      lambdaPP += Constants::kTwoPi * std::round((centre - lambdaPP) / Constants::kTwoPi);
      converged = std::fabs(lambdaPP - previous) < kSomTolerance;
      previous = lambdaPP;
    }
    if (!converged || (lambdaPP > m_start && lambdaPP < m_start + Constants::kTwoPi))
      break;
    centre = lambdaPP <= m_start ? 5.0 * Constants::kHalfPi : Constants::kHalfPi;
  }
  if (!converged)
    return false;
  double const lambdaT = lambda + m_p * lambdaPP;
  double const sinPhi = std::sin(phi);
  double const sinPhiPP = ((1.0 - m_e2) * m_cosI * sinPhi - m_sinI * std::cos(phi) * std::sin(lambdaT)) /
                          std::sqrt(1.0 - m_e2 * sinPhi * sinPhi);
  double const phiPP = std::asin(std::clamp(sinPhiPP, -1.0, 1.0));
  double const isometric = std::log(std::tan(Constants::kQuarterPi + 0.5 * phiPP));
  double H;
  double const S = SeriesS(lambdaPP, H);
  double const root = std::sqrt(m_J * m_J + S * S);
  x = m_a * (m_B * lambdaPP + m_A2 * std::sin(2.0 * lambdaPP) + m_A4 * std::sin(4.0 * lambdaPP) -
             isometric * S / root);
  y = m_a * (m_C1 * std::sin(lambdaPP) + m_C3 * std::sin(3.0 * lambdaPP) + isometric * m_J / root);
  return std::isfinite(x) && std::isfinite(y);
}

bool CSpaceObliqueMercator::FromPlane(double & x, double & y) const
{
  if (!m_ready)
    return false;
  double const xa = x / m_a, ya = y / m_a;
  // Snyder, chapter 27: lambda'' by fixed-point steps from x/(aB).
  double lambdaPP = xa / m_B, S = 0.0, H;
  for (int round = 0; round < kSomRounds; ++round) {
    double const previous = lambdaPP;
    S = SeriesS(lambdaPP, H);
    lambdaPP = (xa + ya * S / m_J - m_A2 * std::sin(2.0 * lambdaPP) - m_A4 * std::sin(4.0 * lambdaPP) -
                S / m_J * (m_C1 * std::sin(lambdaPP) + m_C3 * std::sin(3.0 * lambdaPP))) /
               m_B;
    if (std::fabs(lambdaPP - previous) < kSomTolerance)
      break;
  }
  double const sinL = std::sin(lambdaPP), cosL = std::cos(lambdaPP);
  double const isometric = std::sqrt(1.0 + S * S / (m_J * m_J)) *
                           (ya - m_C1 * sinL - m_C3 * std::sin(3.0 * lambdaPP));
  double const phiPP = 2.0 * std::atan(std::exp(isometric)) - Constants::kHalfPi;
  double const sinPhiPP = std::sin(phiPP), s2 = sinPhiPP * sinPhiPP;
  double const denominator = 1.0 - s2 * (1.0 + m_U);
  if (denominator == 0.0 || cosL == 0.0)
    return false;
  double lambdaT = std::atan(((1.0 - s2 / (1.0 - m_e2)) * std::tan(lambdaPP) * m_cosI -
                              sinPhiPP * m_sinI * std::sqrt((1.0 + m_Q * sinL * sinL) * (1.0 - s2) - s2 * m_U) / cosL) /
                             denominator);
  // lambda_t lies in the half turn of lambda''.
  if (cosL < 0.0)
    lambdaT -= lambdaT >= 0.0 ? Constants::kPi : -Constants::kPi;
  double const phi = std::fabs(m_sinI) < kSomTolerance
                       ? std::asin(sinPhiPP / std::sqrt((1.0 - m_e2) * (1.0 - m_e2) + m_e2 * s2))
                       : std::atan((std::tan(lambdaPP) * std::cos(lambdaT) - m_cosI * std::sin(lambdaT)) /
                                   ((1.0 - m_e2) * m_sinI));
  double lon = std::remainder(lambdaT - m_p * lambdaPP + m_lon0, Constants::kTwoPi);
  x = lon / kRadiansPerDegree;
  y = phi / kRadiansPerDegree;
  return std::isfinite(x) && std::isfinite(y);
}

// CTwoPointFit

namespace {

constexpr long kFitParameterCount = 8;
constexpr double kFitLatitudeTolerance = 1e-12; // radians, inverse isometric latitude
constexpr int kFitLatitudeRounds = 20;

} // namespace

void CTwoPointFit::Frame(double lon, double lat, double & u, double & v) const
{
  u = m_a * std::remainder(lon - m_lonMid, 360.0) * kRadiansPerDegree;
  v = m_a * Kernel::IsometricLatitudeFromSine({m_e, m_eatanhe, m_eatanheTerms}, std::sin(lat * kRadiansPerDegree));
}

void CTwoPointFit::OnChange(unsigned short const *)
{
  BEllipsoid const * figure = GetInnerEllipsoid();
  m_ready = figure && ParametersReady(kFitParameterCount);
  if (!m_ready)
    return;
  CParameterCollection const & p = GetParameters();
  m_a = figure->GetSemiMajor();
  m_e = std::sqrt(figure->GetEccentricitySquared());
  m_eatanheTerms = Kernel::MakeEAtanhE(m_e, m_eatanhe);
  double const lon1 = Internal(p, "standard_longitude1"), lat1 = Internal(p, "standard_latitude1");
  double const lon2 = Internal(p, "standard_longitude2"), lat2 = Internal(p, "standard_latitude2");
  double const e1 = Internal(p, "east1"), n1 = Internal(p, "north1");
  double const e2 = Internal(p, "east2"), n2 = Internal(p, "north2");
  m_lonMid = lon1 + 0.5 * std::remainder(lon2 - lon1, 360.0);
  double u1, v1, u2, v2;
  Frame(lon1, lat1, u1, v1);
  Frame(lon2, lat2, u2, v2);
  m_uMid = 0.5 * (u1 + u2);
  m_vMid = 0.5 * (v1 + v2);
  m_eMid = 0.5 * (e1 + e2);
  m_nMid = 0.5 * (n1 + n2);
  // Scale and turn from the frame's vector between the points to the plane's.
  double const frameLength = std::hypot(u2 - u1, v2 - v1);
  double const planeLength = std::hypot(e2 - e1, n2 - n1);
  m_ready = frameLength > 0.0 && planeLength > 0.0;
  if (!m_ready)
    return;
  double const scale = planeLength / frameLength;
  double const turn = std::atan2(n2 - n1, e2 - e1) - std::atan2(v2 - v1, u2 - u1);
  m_cos = scale * std::cos(turn);
  m_sin = scale * std::sin(turn);
}

bool CTwoPointFit::ToPlane(double & x, double & y) const
{
  if (!m_ready || std::fabs(y) >= 90.0)
    return false;
  double u, v;
  Frame(x, y, u, v);
  u -= m_uMid;
  v -= m_vMid;
  x = m_eMid + m_cos * u - m_sin * v;
  y = m_nMid + m_sin * u + m_cos * v;
  return true;
}

bool CTwoPointFit::FromPlane(double & x, double & y) const
{
  if (!m_ready)
    return false;
  double const de = x - m_eMid, dn = y - m_nMid;
  double const norm = m_cos * m_cos + m_sin * m_sin;
  double const u = m_uMid + (m_cos * de + m_sin * dn) / norm;
  double const v = m_vMid + (m_cos * dn - m_sin * de) / norm;
  double const t = std::exp(-v / m_a);
  y = Kernel::LatitudeFromT({m_e, m_eatanhe, m_eatanheTerms}, t, kFitLatitudeTolerance, kFitLatitudeRounds) /
      kRadiansPerDegree;
  x = std::remainder(m_lonMid + u / m_a / kRadiansPerDegree, 360.0);
  return true;
}

// CVandH
//
// Forward: the latitude goes to the sphere by beta = phi (K1 + K2 phi^2 +
// ... + K5 phi^8); with p the unit vector of (beta, lambda + 52 degrees), the
// arcs dE, dW to the foci E and W give, on the line of the foci (0.4 apart),
// h = (dE^2 - dW^2 + 0.16)/0.8 and v = sqrt|dE^2 - h^2|, signed by the side
// of the line (the pole P of the grid); then the turn and shift.
// Inverse: p = alpha E + beta W + gamma (E x W) with E.p = cos dE and
// W.p = cos dW, a 2-by-2 system, and |p| = 1 for gamma, signed like v.

namespace {

constexpr double kVHLongitudeShift = 0.9075712110370514; // 52 degrees
constexpr double kVHK[] = {0.99435487, 0.00336523, -0.00065596, 0.00005606, -0.00000188};
constexpr double kVHEast[] = {0.40426992, 0.68210848, 0.60933887};
constexpr double kVHWest[] = {0.65517646, 0.3773379, 0.6544921};
constexpr double kVHPole[] = {-0.5559778217300487, -0.3457284881610899, 0.755883902605524};
constexpr double kVHFociArc = 0.4;
constexpr double kVHCos = 0.231790398, kVHSin = 0.972765753; // turn of 76.597497 degrees
constexpr double kVHV0 = 6363.235, kVHH0 = 2250.7;
constexpr double kVHRadius = 12481.103;
constexpr int kVHLatitudeSteps = 4;

double Dot(double const (&a)[3], double const (&b)[3]) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

// beta(phi) and its derivative.
double VHSphereLatitude(double phi, double & derivative)
{
  double const p2 = phi * phi;
  double sum = 0.0, slope = 0.0;
  for (int n = 4; n >= 0; --n) {
    sum = sum * p2 + kVHK[n];
    slope = slope * p2 + (2 * n + 1) * kVHK[n];
  }
  derivative = slope;
  return phi * sum;
}

} // namespace

bool CVandH::ToPlane(double & x, double & y) const
{
  double derivative;
  double const beta = VHSphereLatitude(y * kRadiansPerDegree, derivative);
  double const lambda = -(x * kRadiansPerDegree + kVHLongitudeShift);
  double const p[3] = {std::cos(beta) * std::sin(lambda), std::cos(beta) * std::cos(lambda), std::sin(beta)};
  auto const arc = [&p](double const (&focus)[3]) {
    double const c = std::min(Dot(focus, p), 1.0);
    return std::atan2(std::sqrt(1.0 - c * c), c);
  };
  double const dE = arc(kVHEast), dW = arc(kVHWest);
  double const h = (dE * dE - dW * dW + kVHFociArc * kVHFociArc) / (2.0 * kVHFociArc);
  double v = std::sqrt(std::fabs(dE * dE - h * h));
  if (Dot(kVHPole, p) < 0.0)
    v = -v;
  x = kVHV0 + kVHRadius * (kVHCos * h - kVHSin * v);
  y = kVHH0 + kVHRadius * (kVHSin * h + kVHCos * v);
  return true;
}

bool CVandH::FromPlane(double & x, double & y) const
{
  double const t1 = (x - kVHV0) / kVHRadius, t2 = (y - kVHH0) / kVHRadius;
  double const h = kVHCos * t1 + kVHSin * t2;
  double const v = kVHCos * t2 - kVHSin * t1;
  double const cosE = std::cos(std::hypot(h, v)), cosW = std::cos(std::hypot(h - kVHFociArc, v));
  // The published vectors are unit to 8 figures only: the Gram matrix keeps
  // their lengths.
  double const ee = Dot(kVHEast, kVHEast), ww = Dot(kVHWest, kVHWest), g = Dot(kVHEast, kVHWest);
  double const det = ee * ww - g * g; // |E x W|^2
  double const alpha = (ww * cosE - g * cosW) / det, beta = (ee * cosW - g * cosE) / det;
  double const cross[3] = {kVHEast[1] * kVHWest[2] - kVHEast[2] * kVHWest[1],
                           kVHEast[2] * kVHWest[0] - kVHEast[0] * kVHWest[2],
                           kVHEast[0] * kVHWest[1] - kVHEast[1] * kVHWest[0]};
  double const inPlane = alpha * alpha * ee + beta * beta * ww + 2.0 * alpha * beta * g;
  double gamma = std::sqrt(std::max(0.0, (1.0 - inPlane) / det));
  if ((Dot(kVHPole, cross) < 0.0) != (v < 0.0))
    gamma = -gamma;
  double p[3];
  for (int i = 0; i < 3; ++i)
    p[i] = alpha * kVHEast[i] + beta * kVHWest[i] + gamma * cross[i];
  double const sphereLatitude = std::asin(std::clamp(p[2], -1.0, 1.0));
  double phi = sphereLatitude / kVHK[0];
  for (int step = 0; step < kVHLatitudeSteps; ++step) {
    double derivative;
    phi -= (VHSphereLatitude(phi, derivative) - sphereLatitude) / derivative;
  }
  x = std::remainder(-std::atan2(p[0], p[1]) - kVHLongitudeShift, Constants::kTwoPi) / kRadiansPerDegree;
  y = phi / kRadiansPerDegree;
  return true;
}


// CDanishSystem34

namespace {

constexpr double kSystem34CentralMeridian = 0.15707963267948966; // 9 E, radians
constexpr double kBornholmCentralMeridian = 0.2617993877991494;  // 15 E
constexpr double kSystem34Scale = 0.9996;
constexpr double kSystem34FalseEasting = 500000.0;
constexpr long kBornholm = 3;

} // namespace

long CDanishSystem34::GetRegionCode(CString const & region)
{
  if (region.isEmpty())
    return 0;
  switch (region.at(0).unicode()) {
  case '1': case 'j': return 1;
  case '2': case 's': return 2;
  case '3': case 'b': return 3;
  case '4': case 'u': return 4;
  default: return 0;
  }
}

void CDanishSystem34::SetFromRegion(long region)
{
  if (region < 1 || region > kBornholm)
    throw CVelmoraException(CVelmoraException::kInvalidParameter, "CDanishSystem34::SetFromRegion",
                            "Unexpected region value.");
  CParameterCollection & p = GetParameters();
  double const cm = region == kBornholm ? kBornholmCentralMeridian : kSystem34CentralMeridian;
  p.SetItemInternal(CString(kCentralMeridian), cm / kRadiansPerDegree);
  p.SetDouble(CString(kScaleFactor), kSystem34Scale);
  p.SetItemInternal(CString(kFalseEasting), kSystem34FalseEasting);
}

} // namespace Velmora::CS::PJ
