#pragma once
// Oblique projections: Hotine's oblique Mercator in its forms, Krovak's
// oblique conic, Laborde's Madagascar grid, the Swiss and Hungarian oblique
// cylinders. All are ellipsoidal on the datum's figure unless a class says
// otherwise. The bipolar oblique conformal conic converts nothing yet: its
// ToPlane and FromPlane return false.
#include <velmora/projections/Projection.h>

namespace Velmora::CS::PJ {

// Hotine's oblique Mercator on the aposphere of one figure, in radians and
// metres (EPSG Guidance Note 7-2, methods 9812 and 9815; Snyder, Map
// Projections: A Working Manual, 9-1 to 9-47). The forward is exact; the
// inverse takes the conformal latitude back by the series to e^8 (Snyder
// 3-5), within 1e-11 degree of the exact inverse on the Earth.
struct VELMORA_API BHotineAposphere
{
  double a = 0.0, e = 0.0, e2 = 0.0;
  double B = 0.0, A = 0.0, E = 0.0, lnE = 0.0, D = 0.0, F = 0.0;
  double gamma0 = 0.0, sinGamma0 = 0.0, cosGamma0 = 1.0;
  double lambda0 = 0.0;  // longitude of the natural origin
  double alphaC = 0.0;   // azimuth of the central line at the centre
  double uc = 0.0;       // u of the centre, signed as the centre's latitude
  double sign = 1.0;     // of the centre's latitude
  double gammaC = 0.0, sinGammaC = 0.0, cosGammaC = 1.0; // rectification
  double fe = 0.0, fn = 0.0;
  bool fromCentre = false; // u counted from the centre, else the natural origin
  bool rectified = true;   // rotated by gammaC, else x = u and y = v
  bool poleTest = true;    // latitudes at the poles by their limits
  double c2 = 0.0, c4 = 0.0, c6 = 0.0, c8 = 0.0; // conformal latitude series
  double eatanhe[32] = {};
  int eatanheTerms = 0;

  // B, A, D, F and E of the centre's latitude and the scale on the central line.
  void SetCentre(double semiMajor, double eccentricitySquared, double phiC, double k0);
  // The central line through the centre (lambdaC) at azimuth alphaC; with
  // `isGamma` the angle given is gamma0, the azimuth on the aposphere.
  void SetAzimuth(double lambdaC, double angle, bool isGamma);
  // The central line through two points.
  void SetTwoPoints(double phi1, double lambda1, double phi2, double lambda2);
  void SetRectification(double angle);

  // Longitude and latitude in radians to easting and northing.
  void Forward(double lambda, double phi, double & x, double & y) const;
  // Easting and northing to longitude and latitude in radians.
  void Inverse(double x, double y, double & lambda, double & phi) const;
  // The same in degrees, in place; false for a result that is not finite.
  bool ToPlane(double & x, double & y) const;
  bool FromPlane(double & x, double & y) const;
};

// What the Hotine types share: the aposphere, set up by each OnChange, and
// the conversions through it.
template <class Derived, CProjection::Type TypeValue>
class TObliqueMercator : public TProjection<Derived, TypeValue>
{
public:
  bool ToPlane(double & x, double & y) const override
  {
    return this->GetParameters().AllItemsSet() && m_ready && m_om.ToPlane(x, y);
  }
  bool FromPlane(double & x, double & y) const override
  {
    return this->GetParameters().AllItemsSet() && m_ready && m_om.FromPlane(x, y);
  }
  using CProjection::FromPlane;
  using CProjection::ToPlane;

protected:
  using TProjection<Derived, TypeValue>::TProjection;

  BHotineAposphere m_om;
  bool m_ready = false;
};

// The conformal double projection onto an oblique cylinder: Gauss's sphere
// of the centre's latitude, turned so that its equator runs east-west
// through the centre, then Mercator's cylinder on it (EPSG Guidance Note
// 7-2, Swiss Oblique Cylinder, method 9814; Swisstopo, "Formulas and
// constants for the calculation of the Swiss conformal cylindrical
// projection", 2008). Exact both ways; the inverse's latitude iteration
// runs to 1e-12 radian.
struct BObliqueCylinder
{
  double alpha = 0.0, b0 = 0.0, sinB0 = 0.0, cosB0 = 1.0, K = 0.0, R = 0.0;
  double lambda0 = 0.0, fe = 0.0, fn = 0.0;

  void Set(double a, double eccentricitySquared, double phi0, double lambda0, double k0, double fe, double fn);
  // Longitude and isometric latitude psi (radians) to metres; false where
  // the point is a pole of the cylinder.
  bool Forward(double lambda, double psi, double & x, double & y) const;
  // Metres to longitude and isometric latitude.
  void Inverse(double x, double y, double & lambda, double & psi) const;
};

// Hotine's oblique Mercator given by two points of its central line, through
// the latitude of its centre; u is counted from the centre, where the false
// values lie, and the grid rectified by the azimuth of the central line at
// the centre (Snyder 9-21 to 9-35). No centering step.
class VELMORA_API CHotineObliqueMercator final : public TObliqueMercator<CHotineObliqueMercator, CProjection::kHotineObliqueMercator>
{
public:
  explicit CHotineObliqueMercator(CHorizontalDatum * datum = nullptr) : TObliqueMercator(datum) {}
  void OnChange(unsigned short const * name) override;
};

// Hotine's oblique Mercator by its centre and azimuth, the false values at
// the natural origin, the grid turned by azimuth_skew (EPSG variant A,
// method 9812). Points within 1e-7 radian of a pole take the pole's values.
class VELMORA_API CHotineObliqueMercator_1 final : public TObliqueMercator<CHotineObliqueMercator_1, CProjection::kHotineObliqueMercator_1>
{
public:
  explicit CHotineObliqueMercator_1(CHorizontalDatum * datum = nullptr) : TObliqueMercator(datum) {}
  void OnChange(unsigned short const * name) override;
};

// The same with the false values at the centre (EPSG variant B, method
// 9815); the pole is not singled out forward.
class VELMORA_API CHotineObliqueMercator_2 final : public TObliqueMercator<CHotineObliqueMercator_2, CProjection::kHotineObliqueMercator_2>
{
public:
  explicit CHotineObliqueMercator_2(CHorizontalDatum * datum = nullptr) : TObliqueMercator(datum) {}
  void OnChange(unsigned short const * name) override;
};

// The general oblique Mercator by centre and azimuth: center_flag counts u
// from the centre (variant B) rather than the natural origin (variant A);
// the grid is turned by rotation_angle, or by gamma0 with use_gamma_flag, or
// not at all with unrectified_flag (then x = u, y = v); azimuth_is_gamma
// reads the azimuth as gamma0.
class VELMORA_API CObliqueMercatorAzimuth final
  : public TObliqueMercator<CObliqueMercatorAzimuth, CProjection::kObliqueMercatorAzimuth>
{
public:
  explicit CObliqueMercatorAzimuth(CHorizontalDatum * datum = nullptr) : TObliqueMercator(datum) {}
  void OnChange(unsigned short const * name) override;
  // With the centering step on the centre's meridian.
  bool ToPlane(double & x, double & y) const override;
  using TObliqueMercator::FromPlane;
  using TObliqueMercator::ToPlane;

private:
  double m_lambdaC = 0.0; // degrees, for the centering step
};

// The general oblique Mercator by two points of the central line, u from
// the natural origin, with the rectification flags of the azimuth form.
class VELMORA_API CObliqueMercatorTwoPoints final : public TObliqueMercator<CObliqueMercatorTwoPoints, CProjection::kObliqueMercatorTwoPoints>
{
public:
  explicit CObliqueMercatorTwoPoints(CHorizontalDatum * datum = nullptr) : TObliqueMercator(datum) {}
  void OnChange(unsigned short const * name) override;
};

// The Swiss grid LV03 on Bessel 1841: the oblique cylinder through the old
// observatory of Bern, 46 57 08.66 N 7 26 22.50 E, scale 1, false values
// 600000 and 200000 m (EPSG Guidance Note 7-2, method 9814). Always ready.
class VELMORA_API CSwissObliqueMercator final : public TProjection<CSwissObliqueMercator, CProjection::kSwissObliqueMercator>
{
public:
  explicit CSwissObliqueMercator(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}
  void OnChange(unsigned short const *) override {}
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;
};

// The Hungarian grid EOV on GRS 1967: the oblique cylinder through
// 47 08 39.8174 N 19 02 54.8584 E, scale 0.99993, false values 650000 and
// 200000 m (EPSG CRS 23700). Always ready; false at the cylinder's poles,
// which lie on the far side of the Earth.
class VELMORA_API CEgysegesOrszagosVetulet final : public TProjection<CEgysegesOrszagosVetulet, CProjection::kEgysegesOrszagosVetulet>
{
public:
  explicit CEgysegesOrszagosVetulet(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}
  void OnChange(unsigned short const *) override {}
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;
};

// Krovak's oblique conformal conic (EPSG Guidance Note 7-2, method 9819):
// the ellipsoid onto Gauss's sphere, the sphere turned about the cone's
// axis through the pseudo-pole at the co-latitude `azimuth`, and Lambert's
// cone on the pseudo standard parallel `latitude_of_true_scale`. ToPlane
// gives the grid's X, the southing, in x and its Y, the westing, in y, both
// positive over the country; false_northing is added to X, false_easting
// to Y.
// The inverse stops its latitude iteration at a step of 1e-7 radian.
class VELMORA_API CKrovak final : public TProjection<CKrovak, CProjection::kKrovak>
{
public:
  explicit CKrovak(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}
  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_e = 0.0, m_B = 0.0, m_t0 = 0.0, m_lnT0 = 0.0, m_n = 0.0, m_r0 = 0.0, m_rFactor = 0.0;
  double m_sinAlpha = 0.0, m_cosAlpha = 1.0;
  double m_lambda0 = 0.0, m_fe = 0.0, m_fn = 0.0;
  double eatanhe[32] = {};
  int eatanheTerms = 0;
  bool m_ready = false;
};

// Laborde's oblique Mercator of Madagascar (EPSG Guidance Note 7-2, method
// 9813; IGN technical note NT/G 74): Gauss's sphere turned to the centre,
// Mercator's cylinder on it, and the complex cubic H + G H^3 of the
// azimuth; the inverse solves the cubic by Newton's steps to 1e-11.
// azimuth_skew comes preset and is not read.
class VELMORA_API CLaborde final : public TProjection<CLaborde, CProjection::kLaborde>
{
public:
  // The skew comes preset: it is set from the start, at its default value.
  explicit CLaborde(CHorizontalDatum * datum = nullptr) : TProjection(datum)
  {
    GetParameters().SetItemSetState(CString("azimuth_skew"), true);
  }
  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_e = 0.0, m_B = 0.0, m_R = 0.0, m_C = 0.0, m_sinS = 0.0, m_cosS = 1.0;
  double m_Gre = 0.0, m_Gim = 0.0;
  double m_lambdaC = 0.0, m_fe = 0.0, m_fn = 0.0;
  double eatanhe[32] = {};
  int eatanheTerms = 0;
  bool m_ready = false;
};

class VELMORA_API CBipolarObliqueConformalConic final : public TNotConverting<CBipolarObliqueConformalConic, CProjection::kBipolarObliqueConformalConic>
{
public:
  explicit CBipolarObliqueConformalConic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

} // namespace Velmora::CS::PJ
