#include <velmora/transforms/datumshifts/ParametricShifts.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/Constants.h>
#include <velmora/transforms/datumshifts/GridFile_p.h>

#include <cmath>

namespace Velmora::CT::DS {

using detail::RequireParameters;
using detail::ThroughPoint;
using Constants::kRadiansPerDegree;

namespace {

// How far Molodensky's formula keeps a latitude off the pole, in degrees,
// when the cartographic flag asks for it.
constexpr double kPoleNudge = 0.00001;

// Parts per million to a factor.
constexpr double kPartsPerMillion = 0.000001;

// Read through the const handle: a shift over a stored body must not take a
// private copy of it just to look at its values.
CParameterCollection const & Parameters(CDatumShift const & shift) { return shift.GetParameters(); }

// The rebuild of a method waits for every item and for the least count of its table row.
bool Ready(CParameterCollection const & p, long leastCount) { return p.AllItemsSet() && p.Count() >= leastCount; }

double Linear(CParameterCollection const & p, char const * name) { return p.GetItemInternal(CString(name)); }
double Radians(CParameterCollection const & p, char const * name) { return p.GetAngularValue(CString(name)).GetRadians(); }
double ScaleFactor(CParameterCollection const & p) { return p.GetDouble(CString("k")) * kPartsPerMillion + 1.0; }

CS::BEllipsoid const & SrcEllipsoid(CDatumShift const & shift) { return shift.GetSrcDatum().GetEllipsoid().GetInner(); }
CS::BEllipsoid const & DestEllipsoid(CDatumShift const & shift) { return shift.GetDestDatum().GetEllipsoid().GetInner(); }

// Geodetic in, geocentric through `middle`, geodetic out, all in place.
template <bool withHeight, class Middle>
void ThroughGeocentric(CS::BEllipsoid const & from, CS::BEllipsoid const & to, int count, ML::BPoint3D * points,
                       Middle && middle)
{
  from.FromGeodeticBase(count, points);
  middle(count, points);
  if constexpr (withHeight)
    to.ToGeodeticBase(count, points);
  else
    to.ToGeodeticLonLat(count, points);
}

// The pair forms: one point at height 0 through an array routine; the height
// that results is dropped. Nothing is allocated: this is a transform's hot loop.
template <class Routine>
bool ThroughPair(double & lon, double & lat, Routine && routine)
{
  ML::BPoint3D point(lon, lat, 0.0);
  routine(1, &point);
  lon = point.x;
  lat = point.y;
  return true;
}

// Where the point forms of the affine family report an unset parameter.
struct Locations
{
  char const * srcToDest;
  char const * destToSrc;
};

Locations LocationsOf(CDatumShift::Type type)
{
  switch (type) {
  case CDatumShift::kSevenParameter: return {"CSevenParameter::ShiftSrcToDest", "CSevenParameter::ShiftDestToSrc"};
  case CDatumShift::kSixParameter: return {"CSixParameter::ShiftSrcToDest", "CSixParameter::ShiftDestToSrc"};
  case CDatumShift::kFourParameter: return {"CFourParameter::ShiftSrcToDest", "CFourParameter::ShiftDestToSrc"};
  case CDatumShift::kMolodenskyBadekas:
    return {"CMolodenskyBadekas::ShiftSrcToDest", "CMolodenskyBadekas::ShiftDestToSrc"};
  default:
    // Bursa-Wolfe and the methods built on it report both directions under
    // the reverse label: established text that callers match.
    return {"CBursaWolfe::ShiftDestToSrc", "CBursaWolfe::ShiftDestToSrc"};
  }
}

} // namespace

// The affine frame

template <bool withHeight>
void CAffineDatumShift::Forward(int count, ML::BPoint3D * points) const
{
  ThroughGeocentric<withHeight>(SrcEllipsoid(*this), DestEllipsoid(*this), count, points,
                                [this](int n, ML::BPoint3D * p) { m_affine.TransformForward(n, p); });
}

template <bool withHeight>
void CAffineDatumShift::Back(int count, ML::BPoint3D * points) const
{
  // A singular matrix fails before the points are touched.
  m_affine.GetReverse();
  ThroughGeocentric<withHeight>(DestEllipsoid(*this), SrcEllipsoid(*this), count, points,
                                [this](int n, ML::BPoint3D * p) { m_affine.TransformReverse(n, p); });
}

void CAffineDatumShift::ShiftForward(int count, ML::BPoint3D * points) const { Forward<true>(count, points); }
void CAffineDatumShift::ShiftBack(int count, ML::BPoint3D * points) const { Back<true>(count, points); }

bool CAffineDatumShift::ShiftSrcToDest(double & lon, double & lat) const
{
  return ThroughPair(lon, lat, [this](int n, ML::BPoint3D * p) { Forward<false>(n, p); });
}

bool CAffineDatumShift::ShiftDestToSrc(double & lon, double & lat) const
{
  return ThroughPair(lon, lat, [this](int n, ML::BPoint3D * p) { Back<false>(n, p); });
}

bool CAffineDatumShift::ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  RequireParameters(GetParameters(), LocationsOf(GetType()).srcToDest);
  return ThroughPoint(in, out, [this](double & lon, double & lat, double & height) {
    ML::BPoint3D point(lon, lat, height);
    ShiftForward(1, &point);
    lon = point.x, lat = point.y, height = point.z;
  });
}

bool CAffineDatumShift::ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  RequireParameters(GetParameters(), LocationsOf(GetType()).destToSrc);
  return ThroughPoint(in, out, [this](double & lon, double & lat, double & height) {
    ML::BPoint3D point(lon, lat, height);
    ShiftBack(1, &point);
    lon = point.x, lat = point.y, height = point.z;
  });
}

// What each affine method builds. Each operation multiplies from the left, so
// the list reads in the order in which it acts on a vector.

void CBursaWolfe::OnChange(unsigned short const *)
{
  // Six, though the method has seven parameters: the count it has always used.
  CParameterCollection const & p = Parameters(*this);
  if (!Ready(p, 6))
    return;
  double const s = ScaleFactor(p);
  m_affine.Reset();
  m_affine.RotateXYZApproximate(-Radians(p, "rx"), -Radians(p, "ry"), -Radians(p, "rz"));
  m_affine.Scale(s, s, s);
  m_affine.Shift(Linear(p, "dx"), Linear(p, "dy"), Linear(p, "dz"));
}

void CSevenParameter::OnChange(unsigned short const *)
{
  CParameterCollection const & p = Parameters(*this);
  if (!Ready(p, 7))
    return;
  double const s = ScaleFactor(p);
  m_affine.Reset();
  m_affine.RotateX(Radians(p, "rx"));
  m_affine.RotateY(Radians(p, "ry"));
  m_affine.RotateZ(Radians(p, "rz"));
  m_affine.Scale(s, s, s);
  m_affine.Shift(Linear(p, "dx"), Linear(p, "dy"), Linear(p, "dz"));
}

void CSixParameter::OnChange(unsigned short const *)
{
  CParameterCollection const & p = Parameters(*this);
  if (!Ready(p, 6))
    return;
  m_affine.Reset();
  m_affine.RotateX(Radians(p, "rx"));
  m_affine.RotateY(Radians(p, "ry"));
  m_affine.RotateZ(Radians(p, "rz"));
  m_affine.Shift(Linear(p, "dx"), Linear(p, "dy"), Linear(p, "dz"));
}

void CFourParameter::OnChange(unsigned short const *)
{
  CParameterCollection const & p = Parameters(*this);
  if (!Ready(p, 4))
    return;
  double const s = ScaleFactor(p);
  m_affine.Reset();
  m_affine.Scale(s, s, s);
  m_affine.Shift(Linear(p, "dx"), Linear(p, "dy"), Linear(p, "dz"));
}

void CMolodenskyBadekas::OnChange(unsigned short const *)
{
  CParameterCollection const & p = Parameters(*this);
  if (!Ready(p, 10))
    return;
  double const s = ScaleFactor(p);
  ML::BPoint3D const pivot(Linear(p, "xp"), Linear(p, "yp"), Linear(p, "zp"));
  m_affine.Reset();
  m_affine.RotatePointXYZApproximate(pivot, -Radians(p, "rx"), -Radians(p, "ry"), -Radians(p, "rz"));
  // Scales the linear part alone: the pivot term (I - R) P stays unscaled.
  m_affine.Scale(s, s, s);
  m_affine.Shift(Linear(p, "dx"), Linear(p, "dy"), Linear(p, "dz"));
}

// GeocentricTranslation

void CGeocentricTranslation::OnChange(unsigned short const *)
{
  CParameterCollection const & p = Parameters(*this);
  if (!Ready(p, 3))
    return;
  m_dx = Linear(p, "dx");
  m_dy = Linear(p, "dy");
  m_dz = Linear(p, "dz");
}

// Forward (sign +1) from the source ellipsoid, back (sign -1) from the destination's.
template <bool withHeight>
void CGeocentricTranslation::Translate(int count, ML::BPoint3D * points, double sign) const
{
  auto const & from = sign > 0 ? SrcEllipsoid(*this) : DestEllipsoid(*this);
  auto const & to = sign > 0 ? DestEllipsoid(*this) : SrcEllipsoid(*this);
  ThroughGeocentric<withHeight>(from, to, count, points, [this, sign](int n, ML::BPoint3D * p) {
    for (int i = 0; i < n; ++i)
      p[i].x += sign * m_dx, p[i].y += sign * m_dy, p[i].z += sign * m_dz;
  });
}

void CGeocentricTranslation::ShiftForward(int count, ML::BPoint3D * points) const
{
  Translate<true>(count, points, +1.0);
}

void CGeocentricTranslation::ShiftBack(int count, ML::BPoint3D * points) const { Translate<true>(count, points, -1.0); }

bool CGeocentricTranslation::ShiftSrcToDest(double & lon, double & lat) const
{
  return ThroughPair(lon, lat, [this](int n, ML::BPoint3D * p) { Translate<false>(n, p, +1.0); });
}

bool CGeocentricTranslation::ShiftDestToSrc(double & lon, double & lat) const
{
  return ThroughPair(lon, lat, [this](int n, ML::BPoint3D * p) { Translate<false>(n, p, -1.0); });
}

bool CGeocentricTranslation::ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  RequireParameters(GetParameters(), "CGeocentricTranslation::ShiftSrcToDest");
  return ThroughPoint(in, out, [this](double & lon, double & lat, double & height) {
    ML::BPoint3D point(lon, lat, height);
    ShiftForward(1, &point);
    lon = point.x, lat = point.y, height = point.z;
  });
}

bool CGeocentricTranslation::ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  RequireParameters(GetParameters(), "CGeocentricTranslation::ShiftDestToSrc");
  return ThroughPoint(in, out, [this](double & lon, double & lat, double & height) {
    ML::BPoint3D point(lon, lat, height);
    ShiftBack(1, &point);
    lon = point.x, lat = point.y, height = point.z;
  });
}

void CGeocentricTranslation::LeastSquaresApproximation(int count, ML::CGeodeticPoint const * source,
                                                       ML::CGeodeticPoint const * destination)
{
  m_dx = m_dy = m_dz = 0.0;
  CS::BEllipsoid const & from = SrcEllipsoid(*this);
  CS::BEllipsoid const & to = DestEllipsoid(*this);
  for (int i = 0; i < count; ++i) {
    ML::BPoint3D a, b;
    source[i].GetInternals(a.x, a.y, a.z);
    destination[i].GetInternals(b.x, b.y, b.z);
    from.FromGeodeticBase(1, &a);
    to.FromGeodeticBase(1, &b);
    // The mean of the differences, summed a share at a time.
    m_dx += (b.x - a.x) / count;
    m_dy += (b.y - a.y) / count;
    m_dz += (b.z - a.z) / count;
  }
}

// Molodensky: every form goes through Shift, so that a method built on it
// replaces the formula alone.

void CMolodensky::OnChange(unsigned short const *)
{
  CParameterCollection const & p = Parameters(*this);
  if (!Ready(p, 3))
    return;
  m_dx = Linear(p, "dx");
  m_dy = Linear(p, "dy");
  m_dz = Linear(p, "dz");
  // Sticky: a shift once defined as nothing stays nothing.
  if (m_dx == 0.0 && m_dy == 0.0 && m_dz == 0.0)
    m_nullShift = true;
}

// The standard (not abridged) Molodensky formulas for the changes of
// latitude, longitude and height, as given in DMA TR 8350.2 and EPSG
// Guidance Note 7-2, evaluated at the input point on the from-ellipsoid.
void CMolodensky::Shift(double & lon, double & lat, double * height, bool forward) const
{
  RequireParameters(GetParameters(), "CMolodensky::Shift");
  if (m_nullShift)
    return;
  Formula(lon, lat, height, forward, m_dx, m_dy, m_dz);
}

void CMolodensky::Formula(double & lon, double & lat, double * height, bool forward, double tx, double ty,
                          double tz) const
{
  if (DB::CDataSource::GetCartographicFlag() && std::fabs(std::fabs(lat) - 90.0) < kPoleNudge) {
    if (lat > 90.0 || (lat >= -90.0 && lat < 0.0))
      lat += kPoleNudge;
    else
      lat -= kPoleNudge;
  }

  double const sign = forward ? 1.0 : -1.0;
  double const dx = sign * tx, dy = sign * ty, dz = sign * tz;
  CS::BEllipsoid const & from = forward ? SrcEllipsoid(*this) : DestEllipsoid(*this);
  CS::BEllipsoid const & to = forward ? DestEllipsoid(*this) : SrcEllipsoid(*this);

  double const phi = lat * kRadiansPerDegree;
  double const lam = lon * kRadiansPerDegree;
  double const h = height ? *height : 0.0;

  double const a = from.GetSemiMajor();
  double const f = 1.0 / from.GetInverseFlattening();
  double const da = to.GetSemiMajor() - a;
  double const df = 1.0 / to.GetInverseFlattening() - f;
  double const e2 = (2.0 - f) * f;
  double const q = 1.0 / (1.0 - f); // a / b

  double const sinPhi = std::sin(phi), cosPhi = std::cos(phi);
  double const sinLam = std::sin(lam), cosLam = std::cos(lam);
  double const w2 = 1.0 - e2 * sinPhi * sinPhi;
  double const w = std::sqrt(w2);
  double const N = a / w;                    // prime vertical radius
  double const M = (1.0 - e2) * a / (w * w2); // meridional radius

  if (height)
    *height = (N * df * sinPhi * sinPhi) / q + (dz * sinPhi + dy * cosPhi * sinLam + dx * cosPhi * cosLam - da * a / N) +
              h;
  lon = (lam + (dy * cosLam - dx * sinLam) / ((N + h) * cosPhi)) / kRadiansPerDegree;
  double const dphi = ((M * q + N / q) * df * sinPhi * cosPhi + N * e2 * sinPhi * cosPhi * da / a + dz * cosPhi -
                       (sinPhi * dy * sinLam + dx * sinPhi * cosLam)) /
                      (M + h);
  lat = (phi + dphi) / kRadiansPerDegree;
}

bool CMolodensky::ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out, [this](double & lon, double & lat, double & height) { Shift(lon, lat, &height, true); });
}

bool CMolodensky::ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out,
                      [this](double & lon, double & lat, double & height) { Shift(lon, lat, &height, false); });
}

bool CMolodensky::ShiftSrcToDest(double & lon, double & lat) const
{
  Shift(lon, lat, nullptr, true);
  return true;
}

bool CMolodensky::ShiftDestToSrc(double & lon, double & lat) const
{
  Shift(lon, lat, nullptr, false);
  return true;
}

// LongitudeRotation: the point form of the forward direction alone has no
// look at its parameter. No longitude is brought back into range.

void CLongitudeRotation::OnChange(unsigned short const *)
{
  CParameterCollection const & p = Parameters(*this);
  if (Ready(p, 1))
    m_rotation = p.GetItemInternal(CString("rotation"));
}

bool CLongitudeRotation::ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out, [this](double & lon, double &, double &) { lon += m_rotation; });
}

bool CLongitudeRotation::ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  RequireParameters(GetParameters(), "CLongitudeRotation::ShiftDestToSrc");
  return ThroughPoint(in, out, [this](double & lon, double &, double &) { lon -= m_rotation; });
}

bool CLongitudeRotation::ShiftSrcToDest(double & lon, double &) const
{
  RequireParameters(GetParameters(), "CLongitudeRotation::ShiftSrcToDest");
  lon += m_rotation;
  return true;
}

bool CLongitudeRotation::ShiftDestToSrc(double & lon, double &) const
{
  RequireParameters(GetParameters(), "CLongitudeRotation::ShiftDestToSrc");
  lon -= m_rotation;
  return true;
}

} // namespace Velmora::CT::DS
