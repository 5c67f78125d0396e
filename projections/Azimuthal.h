#pragma once
// Azimuthal and stereographic projections: projections about a centre point.
// Sources: Snyder, "Map Projections: A Working Manual", USGS Professional
// Paper 1395 (1987), chapters 20 to 25, equation numbers as cited; EPSG
// Guidance Note 7-2, methods 9809, 9810, 9820, 9829.
// Angles in radians and lengths in metres inside; no false easting or
// northing in the shared pieces.
#include <velmora/projections/MeridionalUtil.h>
#include <velmora/projections/Projection.h>

namespace Velmora::CS::PJ {

// A turn of the plane about the centre by r: E = x cos r + y sin r,
// N = -x sin r + y cos r, as EPSG's angle from the rectified to the skewed
// grid turns the oblique Mercator (Guidance Note 7-2, method 9812).
struct BPlaneTurn
{
  double c = 1.0, s = 0.0;

  void Set(double r);
  void Apply(double & x, double & y) const;
  void Undo(double & x, double & y) const;
};

// The stereographic of a figure in every aspect, on the conformal latitude
// chi (Snyder 21-26 to 21-38; on a sphere chi = phi and it is Snyder 20-1
// to 20-18). A centre within 1e-7 of a pole takes the polar form
// rho = akm1 t, with akm1 either 2 a k0 / sqrt((1+e)^(1+e) (1-e)^(1-e))
// (a scale k0 at the pole) or a k m_c / t_c (a scale k on the parallel
// phi_c), as Guidance Note 7-2 writes methods 9810 and 9829.
struct BStereographic
{
  double a = 0.0, e = 0.0, e2 = 0.0;
  double lam0 = 0.0, phi0 = 0.0, fe = 0.0, fn = 0.0;
  BPlaneTurn turn;
  int pole = 0;   // 1 north polar, -1 south polar, 0 oblique or equatorial
  double akm1 = 0.0;
  double sinChi1 = 0.0, cosChi1 = 1.0;
  double eatanhe[32] = {};
  int eatanheTerms = 0;

  // The figure and the centre; k0 is the scale at the centre.
  void Set(double semiMajor, double eccentricitySquared, double phi0, double lambda0, double k0);
  // For the polar aspect: the scale k on the parallel |phic| instead.
  void SetTrueScale(double phic, double k);
  // Radians to metres about the centre; false at the antipode.
  bool Forward(double lambda, double phi, double & x, double & y) const;
  // Metres to the longitude and the conformal latitude chi.
  void ToConformal(double x, double y, double & lambda, double & chi) const;
  // Metres to longitude and latitude, chi to phi by Newton on the isometric
  // latitude, stopping at `tolerance` or after `rounds`.
  void Inverse(double x, double y, double & lambda, double & phi, double tolerance, int rounds) const;
  // Degrees to grid metres: Forward, the turn, the false origin.
  bool ToGrid(double & x, double & y) const;
  // Grid metres to offsets about the centre with the turn undone; false
  // within 1e-7 of the centre.
  bool FromGrid(double x, double y, double & dx, double & dy) const;
};

// Stereographic, oblique, equatorial or polar, on a sphere or the
// ellipsoid, with a scale at the centre and a turn of the plane. The exact
// projection; the inverse stops its Newton steps at 1e-7 radian, by when
// they have converged to rounding. Points at the antipode give false.
class VELMORA_API CStereographic final : public TProjection<CStereographic, CProjection::kStereographic>
{
public:
  explicit CStereographic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  BStereographic m_s;
  bool m_ready = false;
};

// The oblique stereographic of EPSG method 9809 (Guidance Note 7-2): the
// ellipsoid goes conformally to a sphere of radius sqrt(rho0 nu0) at the
// origin, which is then projected stereographically. Exact; the inverse
// ends its Newton steps at 1e-5 seconds of arc.
class VELMORA_API CDoubleStereographic final
  : public TProjection<CDoubleStereographic, CProjection::kDoubleStereographic>
{
public:
  explicit CDoubleStereographic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_twoRk0 = 0.0; // 2 R k0
  double m_n = 0.0;
  double m_halfLogC = 0.0; // ln(c)/2
  double m_sinChi0 = 0.0, m_cosChi0 = 1.0, m_lam0 = 0.0, m_phi0 = 0.0;
  double m_e = 0.0, m_fe = 0.0, m_fn = 0.0;
  double m_eatanhe[32] = {};
  int m_eatanheTerms = 0;
  bool m_ready = false;
};

// Polar stereographic on the ellipsoid (Guidance Note 7-2, methods 9810 and
// 9829; Snyder 21-33 to 21-40). latitude_of_origin is the latitude of true
// scale and its sign the hemisphere: at +-90 the scale_factor holds at the
// pole, elsewhere on that parallel. The south pole's plane is the north
// pole's with both axes negated about the pole. Exact; the inverse's Newton
// steps end at 1e-7 radian.
class VELMORA_API CPolarStereographic final
  : public TProjection<CPolarStereographic, CProjection::kPolarStereographic>
{
public:
  explicit CPolarStereographic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  BStereographic m_s;
  bool m_ready = false;
};

// The ellipsoidal stereographic of Snyder 21-26 to 21-28 (polar: 21-33),
// whose inverse takes the latitude from the conformal latitude by the
// series of Snyder 3-5 to e^8 instead of iterating.
class VELMORA_API CEuropeanStereographic final
  : public TProjection<CEuropeanStereographic, CProjection::kEuropeanStereographic>
{
public:
  explicit CEuropeanStereographic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  BStereographic m_s;
  double m_c2 = 0.0, m_c4 = 0.0, m_c6 = 0.0, m_c8 = 0.0; // the conformal series
  bool m_ready = false;
};

// Romania's Stereographic 1970 by its national double polynomial. The
// coefficient tables of that system are not carried yet, so this class
// converts nothing: ToPlane and FromPlane return false.
class VELMORA_API CStereographic70 final : public TNotConverting<CStereographic70, CProjection::kStereographic70>
{
public:
  explicit CStereographic70(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

// Lambert's azimuthal equal-area on the authalic sphere (Snyder 24-1 to
// 24-32, 3-11 to 3-18), polar, equatorial or oblique by the centre. The
// forward is exact; the inverse takes phi from the authalic latitude by
// Snyder's series 3-18 to e^6, which leaves up to 1e-8 degree against the
// exact inverse on the Earth's figures (none on a sphere).
struct BEqualAreaAzimuth
{
  double a = 0.0, e = 0.0, e2 = 0.0;
  double lam0 = 0.0;
  int pole = 0;
  double qp = 0.0, Rq = 0.0, D = 1.0, sinB1 = 0.0, cosB1 = 1.0;
  double b2 = 0.0, b4 = 0.0, b6 = 0.0; // the authalic series

  void Set(double semiMajor, double eccentricitySquared, double phi0, double lambda0);
  void Forward(double lambda, double phi, double & x, double & y) const;
  void Inverse(double x, double y, double & lambda, double & phi) const;
};

class VELMORA_API CAzimuthalEqualArea final : public TProjection<CAzimuthalEqualArea, CProjection::kAzimuthalEqualArea>
{
public:
  explicit CAzimuthalEqualArea(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  BEqualAreaAzimuth m_z;
  BPlaneTurn m_turn;
  double m_phi0 = 0.0, m_fe = 0.0, m_fn = 0.0;
  bool m_ready = false;
};

// The polar aspect alone, the hemisphere by the sign of latitude_of_origin.
class VELMORA_API CPolarAzimuthalEqualArea final
  : public TProjection<CPolarAzimuthalEqualArea, CProjection::kPolarAzimuthalEqualArea>
{
public:
  explicit CPolarAzimuthalEqualArea(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  BEqualAreaAzimuth m_z;
  double m_phi0 = 0.0, m_fe = 0.0, m_fn = 0.0;
  bool m_ready = false;
};

// The polar azimuthal equidistant on a meridional arc series (Snyder 25-12
// to 25-17): rho is the arc from the pole. The inverse solves the series
// for phi by Newton's method from the footpoint series, at 1e-7 radian or
// after 100 rounds.
struct BPolarArc
{
  double a = 0.0, e2 = 0.0, lam0 = 0.0;
  int pole = 1;
  double c0 = 0.0, c1 = 0.0, c2 = 0.0, c3 = 0.0; // arc per unit a
  double i1 = 0.0, i2 = 0.0, i3 = 0.0, i4 = 0.0; // footpoint
  double arcPole = 0.0;                          // in metres

  void Forward(double lambda, double phi, double & x, double & y) const;
  void Inverse(double x, double y, double & lambda, double & phi) const;
};

// The azimuthal equidistant on the ellipsoid. Polar aspect (a centre within
// 1e-7 of a pole): by BPolarArc on the arc series of CMeridionalUtil (to
// e^6: within 0.2 mm of the exact arc, some 2e-9 degree back). Other
// aspects: distance and azimuth of the geodesic from the centre, by
// Vincenty's inverse and direct, which is the projection itself.
class VELMORA_API CAzimuthalEquidistant final
  : public TProjection<CAzimuthalEquidistant, CProjection::kAzimuthalEquidistant, CMeridionalUtil>
{
public:
  explicit CAzimuthalEquidistant(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  BPolarArc m_arc;
  BPlaneTurn m_turn;
  double m_phi0 = 0.0, m_fe = 0.0, m_fn = 0.0;
  bool m_polar = false;
  bool m_ready = false;
};

// The polar aspect alone, the hemisphere by the sign of latitude_of_origin.
class VELMORA_API CPolarEquidistant final
  : public TProjection<CPolarEquidistant, CProjection::kPolarEquidistant, CMeridionalUtil>
{
public:
  explicit CPolarEquidistant(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  BPolarArc m_arc;
  double m_phi0 = 0.0, m_fe = 0.0, m_fn = 0.0;
  bool m_ready = false;
};

// The projections of a sphere of radius R seen from a point, about the
// centre (phi0, lam0): cos c and the plane of Snyder 22-2 to 22-5.
struct BSphereView
{
  double R = 0.0, sinPhi0 = 0.0, cosPhi0 = 1.0, lam0 = 0.0;

  void Set(double radius, double phi0, double lambda0);
  // cos c of a point, and its unscaled plane offsets cos phi sin dlam and
  // cos phi0 sin phi - sin phi0 cos phi cos dlam.
  double CosC(double lambda, double phi, double & u, double & v) const;
  // Longitude and latitude of the point at angular distance c (by its sine
  // and cosine) in the direction of (x, y), rho = |(x, y)| > 0 (Snyder 20-14, 20-15).
  void Invert(double x, double y, double rho, double sinC, double cosC, double & lambda, double & phi) const;
};

// The gnomonic of a sphere of radius spherical_radius (Snyder 22-1 to
// 22-5, 22-16). Points on or beyond the horizon, cos c at most 1e-7, give false.
class VELMORA_API CGnomic final : public TProjection<CGnomic, CProjection::kGnomic>
{
public:
  explicit CGnomic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  BSphereView m_v;
  double m_fe = 0.0, m_fn = 0.0;
  bool m_ready = false;
};

// The orthographic of a sphere of radius spherical_radius (Snyder 20-3,
// 20-4, 20-14 to 20-19). The forward is the textbook form for every point,
// so the far hemisphere falls on the near one; the inverse refuses points
// outside the disc of radius R.
class VELMORA_API COrthographic final : public TProjection<COrthographic, CProjection::kOrthographic>
{
public:
  explicit COrthographic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  BSphereView m_v;
  double m_fe = 0.0, m_fn = 0.0;
  bool m_ready = false;
};

// The general vertical perspective of the sphere of the datum's semi-major
// axis R seen from `height` above it, P = 1 + height/R (Snyder 23-1 to
// 23-5, 23-18), and its tilted form, the view turned by `tilt` about the
// line of azimuth `azimuth` (Snyder 23-6 to 23-10, 23-20 to 23-22). The
// forward is the textbook form; the inverse refuses plane points whose
// discriminant is negative (beyond the horizon's image).
class VELMORA_API CVerticalPerspective final
  : public TProjection<CVerticalPerspective, CProjection::kVerticalPerspective>
{
public:
  explicit CVerticalPerspective(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  BSphereView m_v;
  double m_P = 0.0, m_fe = 0.0, m_fn = 0.0;
  bool m_ready = false;
};

class VELMORA_API CTiltedPerspective final : public TProjection<CTiltedPerspective, CProjection::kTiltedPerspective>
{
public:
  explicit CTiltedPerspective(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  BSphereView m_v;
  double m_P = 0.0, m_H = 0.0, m_fe = 0.0, m_fn = 0.0;
  double m_sinGamma = 0.0, m_cosGamma = 1.0, m_sinOmega = 0.0, m_cosOmega = 1.0;
  bool m_ready = false;
};

} // namespace Velmora::CS::PJ
