#pragma once
// Cylindrical and other standard projections: the Mercator, Miller's
// cylinder, the equal-area and equidistant cylinders, Gall's stereographic
// cylinder, Cassini-Soldner, the American and the International Map of the
// World polyconics, Bonne, and the perspective conic.
//
// Figures: the Mercator, the equal-area cylinder, Cassini-Soldner, the
// polyconics and Bonne are ellipsoidal on the datum's figure; Miller's
// cylinder takes its own spherical_radius; the equidistant cylinder, Gall's
// cylinder and the perspective conic are spherical on the semi-major axis.
// On a datum whose figure is a sphere every one is the spherical form.
#include <velmora/projections/MeridionalUtil.h>
#include <velmora/projections/Projection.h>

namespace Velmora::CS::PJ {

// The normal-aspect Mercator (Snyder 7-1, 7-2, 7-7, 7-9; EPSG Guidance Note
// 7-2, methods 9804 and 9805). latitude_of_origin is the latitude of true
// scale, whose parallel radius over a scales scale_factor:
// k0 = scale_factor cos phi1 / sqrt(1 - e2 sin^2 phi1), so that variant A
// takes phi1 = 0 and variant B a scale of 1. Exact forward. While the data
// source's cartographic flag is on, the poles are clamped to 89.9999999
// degrees. The inverse takes t from the exponential base 2.7182818281828
// (a relative 1.0e-10 short of e: latitudes move by up to 3.8e-9 degree,
// some 0.4 mm, even on a sphere) and ends its latitude iteration at a step
// of 1e-7 radian: measured within 3.2e-8 degree of the exact inverse.
class VELMORA_API CMercator final : public TProjection<CMercator, CProjection::kMercator>
{
public:
  explicit CMercator(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_cm = 0.0, m_fe = 0.0, m_fn = 0.0;
  double m_ak0 = 0.0;      // a k0, metres per radian of longitude
  double m_psiPerY = 0.0;  // ln(2.7182818281828) / (a k0), the inverse's exponent per metre
  double m_e = 0.0;
  double m_eatanhe[32] = {}; // the series of e atanh(e x) of the figure
  int m_eatanheTerms = 0;
  bool m_ready = false;
};

// Miller's cylinder on the sphere of spherical_radius (Snyder 11-1, 11-2,
// 11-6): exact. Latitudes beyond the poles are clamped to 1.5707 radians.
class VELMORA_API CMillerCylindrical final : public TProjection<CMillerCylindrical, CProjection::kMillerCylindrical>
{
public:
  explicit CMillerCylindrical(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_cm = 0.0, m_R = 0.0, m_fe = 0.0, m_fn = 0.0;
  bool m_ready = false;
};

// Lambert's cylindrical equal-area projection, normal aspect, on the
// ellipsoid (Snyder 10-15, 10-16, 10-17, 3-12, 3-18; EPSG Guidance Note 7-2,
// method 9835). latitude_of_origin is the latitude of true scale. Exact
// forward; the inverse takes the latitude from the authalic latitude by
// Snyder's series to e^6, measured within 1.5e-8 degree on the Earth.
class VELMORA_API CEqualAreaCylindrical : public TProjection<CEqualAreaCylindrical, CProjection::kEqualAreaCylindrical>
{
public:
  explicit CEqualAreaCylindrical(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

protected:
  CEqualAreaCylindrical(CString const & typeName, CHorizontalDatum * datum) : TProjection(typeName, datum) {}

  // The cached constants from the figure, with the true-scale latitude given
  // by its sine and cosine.
  void Prepare(double cm, double sinPhi1, double cosPhi1, double fe, double fn);

private:
  double m_cm = 0.0, m_fe = 0.0, m_fn = 0.0;
  double m_a = 0.0, m_e = 0.0, m_e2 = 0.0;
  double m_k0 = 0.0, m_qp = 0.0;
  double m_b2 = 0.0, m_b4 = 0.0, m_b6 = 0.0; // the authalic series
  bool m_ready = false;
};

// Behrmann's equal-area cylinder: the equal-area cylinder true to scale at
// 30 degrees, on the ellipsoid as its base is.
class VELMORA_API CBehrmann final : public TProjection<CBehrmann, CProjection::kBehrmann, CEqualAreaCylindrical>
{
public:
  explicit CBehrmann(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}
  void OnChange(unsigned short const * name) override;
};

// The equidistant cylinder (plate carree when latitude_of_origin, here the
// latitude of true scale, is 0) on the sphere of the semi-major axis
// (Snyder 12-1, 12-2, 12-3; EPSG Guidance Note 7-2, method 1029): exact.
class VELMORA_API CEquidistantCylindrical final
  : public TProjection<CEquidistantCylindrical, CProjection::kEquidistantCylindrical>
{
public:
  explicit CEquidistantCylindrical(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_cm = 0.0, m_fe = 0.0, m_fn = 0.0;
  double m_R = 0.0, m_Rcos = 0.0; // R, and R cos phi1
  bool m_ready = false;
};

// Gall's stereographic cylinder, secant at 45 degrees, on the sphere of the
// semi-major axis (Snyder, "Flattening the Earth" (1993); PROJ's gall): exact.
class VELMORA_API CGallStereographic final : public TProjection<CGallStereographic, CProjection::kGallStereographic>
{
public:
  explicit CGallStereographic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_cm = 0.0, m_fe = 0.0, m_fn = 0.0, m_R = 0.0;
  bool m_ready = false;
};

// Cassini-Soldner on the ellipsoid (Snyder 13-5 to 13-13; EPSG Guidance
// Note 7-2, method 9806): the series in A to A^5, as the registry defines
// the method, on the meridian arc of CMeridionalUtil, and back by the
// registry's series in D to D^5. The two series are not each other's
// inverse: a round trip moves a point by up to 1.2e-6 degree at 5 degrees
// from the central meridian (13 cm), far less near it. Forward within
// 0.3 mm of PROJ's cass up to 5 degrees out.
class VELMORA_API CCassini final : public TProjection<CCassini, CProjection::kCassini, CMeridionalUtil>
{
public:
  explicit CCassini(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_cm = 0.0, m_fe = 0.0, m_fn = 0.0;
  double m_a = 0.0, m_e2 = 0.0, m_ep2 = 0.0, m_M0 = 0.0;
  bool m_ready = false;
};

// The American polyconic on the ellipsoid (Snyder 18-1 to 18-22; EPSG
// Guidance Note 7-2, method 9818), on the meridian arc of CMeridionalUtil;
// the inverse is Snyder's Newton scheme, ending at a step of 1e-7 radian.
class VELMORA_API CPolyconic final : public TProjection<CPolyconic, CProjection::kPolyconic, CMeridionalUtil>
{
public:
  explicit CPolyconic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_cm = 0.0, m_fe = 0.0, m_fn = 0.0;
  double m_a = 0.0, m_e2 = 0.0, m_M0 = 0.0;
  bool m_ready = false;
};

// The modified polyconic of the International Map of the World (Snyder,
// "Flattening the Earth" (1993); PROJ's documentation of imw_p):
// the parallels latitude_south and latitude_north are true to scale, as are
// the two meridians true_scale_longitude east and west of the central one;
// meridians are straight lines between their points on those parallels,
// every parallel a circle of radius N cot phi. Ellipsoidal, on the meridian
// arc of CMeridionalUtil; the inverse iterates to 1e-7 radian.
class VELMORA_API CIMWPolyconic final : public TProjection<CIMWPolyconic, CProjection::kIMWPolyconic, CMeridionalUtil>
{
public:
  explicit CIMWPolyconic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(ML::CGeodeticPoint const & in, ML::CProjectedPoint & out) const override;
  bool FromPlane(ML::CProjectedPoint const & in, ML::CGeodeticPoint & out) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  // Radians in, metres from the central meridian out, without false values.
  void Forward(double lambda, double phi, double & x, double & y) const;
  // The chord point of a standard parallel at longitude lambda.
  void OnParallel(int which, double lambda, double & x, double & y) const;

  double m_cm = 0.0, m_fe = 0.0, m_fn = 0.0;
  double m_a = 0.0, m_e2 = 0.0;
  double m_lambda1 = 0.0;              // true_scale_longitude
  double m_phi[2] = {}, m_sin[2] = {}, m_R[2] = {}; // south, north parallels: latitude, sine, N cot phi
  double m_C2 = 0.0;                   // height of the northern parallel's circle at the central meridian
  double m_P = 0.0, m_Q = 0.0, m_Pp = 0.0, m_Qp = 0.0; // the central meridian's points by the arc
  bool m_ready = false;
};

// Bonne's pseudoconic on the ellipsoid (Snyder 19-1 to 19-12; EPSG Guidance
// Note 7-2, method 9827), the standard parallel being latitude_of_origin,
// on the meridian arc of CMeridionalUtil. With the standard parallel at the
// equator it is the sinusoidal.
class VELMORA_API CBonne final : public TProjection<CBonne, CProjection::kBonne, CMeridionalUtil>
{
public:
  explicit CBonne(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_cm = 0.0, m_fe = 0.0, m_fn = 0.0;
  double m_a = 0.0, m_e2 = 0.0;
  double m_apex = 0.0; // a m1 / sin phi1 + M1: the apex's distance along the arc, metres; 0 for the sinusoidal
  double m_top = 0.0;  // a m1 / sin phi1, the apex's northing
  double m_sign = 1.0; // of phi1
  bool m_ready = false;
};

// The perspective conic on the sphere of the semi-major axis, from a point
// on the cone's axis, secant at standard_parallel1 and standard_parallel2;
// the origin is at the equator on the central meridian (Snyder, "Flattening
// the Earth" (1993); PROJ's pconic): rho = R cos d (cot s - tan(phi - s)),
// s and d the half sum and half difference of the parallels.
class VELMORA_API CPerspectiveConic final : public TProjection<CPerspectiveConic, CProjection::kPerspectiveConic>
{
public:
  explicit CPerspectiveConic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_cm = 0.0, m_fe = 0.0, m_fn = 0.0;
  double m_n = 0.0, m_sigma = 0.0, m_c1 = 0.0, m_c2 = 0.0, m_rho0 = 0.0; // c1 = cot s, c2 = R cos d
  bool m_ready = false;
};

} // namespace Velmora::CS::PJ
