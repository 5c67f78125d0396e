#pragma once
// Conic projections: Lambert's conformal conic and its variants, Albers'
// equal-area conic, the equidistant conic, and the 1927 state plane zones.
// All are ellipsoidal on the datum's figure. The 1927 classes convert
// nothing yet: their ToPlane and FromPlane return false.
#include <velmora/projections/MeridionalUtil.h>
#include <velmora/projections/Projection.h>

namespace Velmora::CS::PJ {

// The Lambert conformal cone of one figure, in radians and metres: what the
// conformal classes share. rho = aF t^n (EPSG Guidance Note 7-2, method 9802;
// Snyder, Map Projections: A Working Manual, 15-1 to 15-11).
struct BConformalCone
{
  double n = 0.0;    // cone constant
  double F = 0.0;
  double aF = 0.0;   // a F, the radius of the cone at t = 1
  double rho0 = 0.0; // radius of the origin
  double a = 0.0, e = 0.0, e2 = 0.0;
  double cm = 0.0;       // central meridian
  double fe = 0.0, fn = 0.0;
  double rotation = 0.0; // turn of the grid, radians (Belgium)
  int rounds = 0;        // limit of the inverse's latitude iteration
  // Coefficients of the series of e atanh(e sin phi), and how many are used.
  double eatanhe[32] = {};
  int eatanheTerms = 0;

  // Sets a, e2 and e, and the series of e.
  void SetFigure(double semiMajor, double eccentricitySquared);

  // Longitude and latitude in degrees to metres; theta = n dlon - rotation
  // and the point scale rho n/(a m) are handed back.
  void Forward(double & x, double & y, double & theta, double & scale) const;
  // Metres to degrees, with theta and the scale of the point found.
  void Inverse(double & x, double & y, double & theta, double & scale) const;
};

// The parameters of a cone with two standard parallels, radians and metres.
struct BConeParameters
{
  double cm = 0.0, lat0 = 0.0, phi1 = 0.0, phi2 = 0.0, fe = 0.0, fn = 0.0;
};

// Lambert's conformal conic with two standard parallels, the false origin
// being latitude_of_origin and central_meridian. Exact projection; the
// inverse stops its latitude iteration at a step of 1e-7 radian, which
// leaves it within 4e-8 degree (measured 2.7e-8) of the exact inverse.
// The last conversion's theta and scale are kept for ConvergenceAtPoint and
// ScaleFactorAtPoint, so one object serves one thread.
class VELMORA_API CLambertConformalConic : public TProjection<CLambertConformalConic, CProjection::kLambertConformalConic>
{
public:
  explicit CLambertConformalConic(CHorizontalDatum * datum = nullptr);

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;
  // Theta of the point: the convergence of a conformal cone is n dlon.
  bool ConvergenceAtPoint(ML::CProjectedPoint const & point, ML::CAngularValue & angle) const override;
  // rho n / (a m) at the point.
  bool ScaleFactorAtPoint(ML::CProjectedPoint const & point, double & scale) const override;

protected:
  CLambertConformalConic(CString const & typeName, CHorizontalDatum * datum);

  // The cone on a figure (a, e2) from the parameters read; parallels whose
  // difference is at most `equalTolerance` make a tangent cone, n = sin phi1.
  void Prepare(double a, double e2, double equalTolerance);
  // The same on the datum's figure after reading the parameters, with the
  // grid turned by `rotation` radians.
  void PrepareOnDatum(double equalTolerance, double rotation);
  // Reads the six parameters of the two-parallel cone.
  void ReadParameters();

  BConformalCone m_cone;
  BConeParameters m_p;
  BEllipsoid const * m_ellipsoid = nullptr;
  bool m_ready = false;
  mutable double m_theta = 0.0; // of the last conversion
  mutable double m_scale = 0.0;
};

// The conformal conic on the figure raised by the average elevation and
// geoid height of a project: a' = a + h, and, where h is not 0,
// e'^2 = 1 - ((b + h)/a')^2.
class VELMORA_API CLambertConformalConicExtended final
  : public TProjection<CLambertConformalConicExtended, CProjection::kLambertConformalConicExtended,
                       CLambertConformalConic>
{
public:
  explicit CLambertConformalConicExtended(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}
  void OnChange(unsigned short const * name) override;
};

// The conformal conic of Belgium 1972: the grid turned by 29.2985 seconds,
// taken as 0.00014204 radian: 2.7e-9 radian short, some 1.6 cm at Belgium's
// 5,250 km from the apex (EPSG Guidance Note 7-2, method 9803).
class VELMORA_API CBelgium72 final : public TProjection<CBelgium72, CProjection::kBelgium72, CLambertConformalConic>
{
public:
  explicit CBelgium72(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}
  void OnChange(unsigned short const * name) override;
};

// Lambert's conformal conic with one standard parallel, the latitude of
// origin, and a scale there (EPSG Guidance Note 7-2, method 9801).
class VELMORA_API CLambertTangent final : public TProjection<CLambertTangent, CProjection::kLambertTangent>
{
public:
  explicit CLambertTangent(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  BConformalCone m_cone; // aF carries the scale factor
  double m_lat0 = 0.0;
  double m_k0 = 0.0;
  bool m_ready = false;
};

// Albers' equal-area conic (Snyder 14-1 to 14-21, 3-12, 3-16). Exact; the
// inverse's Newton steps end at 1e-7 radian, by when they have converged to
// rounding.
class VELMORA_API CAlbersEqualArea final : public TProjection<CAlbersEqualArea, CProjection::kAlbersEqualArea>
{
public:
  explicit CAlbersEqualArea(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_n = 0.0, m_C = 0.0, m_rho0 = 0.0;
  double m_a = 0.0, m_e = 0.0, m_e2 = 0.0, m_qp = 0.0;
  BConeParameters m_p;
  bool m_ready = false;
};

// The equidistant conic on the meridian arc of CMeridionalUtil (Snyder
// 16-1 to 16-11), true to scale along both standard parallels. The arc
// series stops at e^6: within 1 mm of the exact projection forward and
// 1.2e-8 degree back up to 84 degrees (measured 0.93 mm, 9.4e-9).
class VELMORA_API CEquidistantConic final
  : public TProjection<CEquidistantConic, CProjection::kEquidistantConic, CMeridionalUtil>
{
public:
  explicit CEquidistantConic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_n = 0.0, m_G = 0.0, m_rho0 = 0.0, m_a = 0.0, m_e2 = 0.0;
  BConeParameters m_p;
  bool m_ready = false;
};

// The 1927 state plane zones: a zone is projected by its table of constants.
class VELMORA_API CStatePlane27 : public CProjection
{
public:
  static double USFT2MTR(double feet) { return feet * kMetresPerUSFoot; }
  static double MTR2USFT(double metres) { return metres / kMetresPerUSFoot; }

protected:
  static constexpr double kMetresPerUSFoot = 0.3048006096012;
  using CProjection::CProjection;
};

class VELMORA_API CAlaska27 final : public TNotConverting<CAlaska27, CProjection::kAlaska27, CStatePlane27>
{
public:
  explicit CAlaska27(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CGuam27 final : public TNotConverting<CGuam27, CProjection::kGuam27, CStatePlane27>
{
public:
  explicit CGuam27(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CLambert27 final : public TNotConverting<CLambert27, CProjection::kLambert27, CStatePlane27>
{
public:
  explicit CLambert27(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CMercator27 final : public TNotConverting<CMercator27, CProjection::kMercator27, CStatePlane27>
{
public:
  explicit CMercator27(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

} // namespace Velmora::CS::PJ
