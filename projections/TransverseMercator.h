#pragma once
// The transverse Mercator family and UTM. Each class evaluates a fixed
// series on the datum's ellipsoid; none of them is the exact (Lee/Karney)
// mapping, and their errors grow with the distance from the central meridian.
#include <velmora/projections/Projection.h>

namespace Velmora::CS::PJ {

// Redfearn's series to the eighth order, the library's default transverse
// Mercator. It does not test its domain: any finite input converts.
class VELMORA_API CTransverseMercator : public TProjection<CTransverseMercator, CProjection::kTransverseMercator>
{
public:
  explicit CTransverseMercator(CHorizontalDatum * datum = nullptr);

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

protected:
  CTransverseMercator(CString const & typeName, CHorizontalDatum * datum);

  // Whether every parameter is set; if so, reads them into the members.
  bool ReadParameters();
  // The ellipsoid's constants and the arc of the origin.
  void ApplyParameters();
  // Offsets are subtracted from the false values instead of added.
  virtual bool IsSouthOriented() const { return false; }

private:
  friend class CUniversalTransverseMercator;

  // The conversions after the parameter test: degrees in, metres out and back.
  bool Forward(double & x, double & y) const;
  bool Inverse(double & x, double & y) const;
  // Meridian arc from the equator, from the sine and cosine of the latitude.
  double Arc(double lat, double s, double c) const;

  double m_b = 0.0;
  double m_e = 0.0;
  double m_cm = 0.0;   // central meridian, radians
  double m_lat0 = 0.0; // latitude of origin, radians
  double m_fe = 0.0;
  double m_fn = 0.0;
  double m_k0 = 0.0;
  double m_a = 0.0;
  double m_e2 = 0.0;
  double m_ep2 = 0.0; // second eccentricity squared
  double m_A = 0.0, m_B = 0.0, m_C = 0.0, m_D = 0.0, m_E = 0.0;
  double m_M0 = 0.0;
  BEllipsoid const * m_ellipsoid = nullptr;
  // Derived once for the inverse: the meridian radius numerator b^2/a, its
  // reciprocal and that of k0.
  double m_rhoNumerator = 0.0;
  double m_rhoInverse = 0.0;
  double m_k0Inverse = 0.0;
  bool m_south = false;
  bool m_ready = false; // constants computed from an ellipsoid
};

class VELMORA_API CTransverseMercatorSouthOriented final
  : public TProjection<CTransverseMercatorSouthOriented, CProjection::kTransverseMercatorSouthOriented,
                       CTransverseMercator>
{
public:
  explicit CTransverseMercatorSouthOriented(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool IsSouthOriented() const override { return true; }
};

// Transverse Mercator on an ellipsoid raised to the mean ground level of a
// project (average elevation plus geoid height), with shorter series.
class VELMORA_API CTransverseMercatorExtended final
  : public TProjection<CTransverseMercatorExtended, CProjection::kTransverseMercatorExtended>
{
public:
  explicit CTransverseMercatorExtended(CHorizontalDatum * datum = nullptr);

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double Arc(double lat, double s, double c) const;

  double m_b = 0.0;
  double m_e = 0.0;
  double m_cm = 0.0;
  double m_lat0 = 0.0;
  double m_fe = 0.0;
  double m_fn = 0.0;
  double m_k0 = 0.0;
  double m_a = 0.0;
  double m_e2 = 0.0;
  double m_ep2 = 0.0;
  double m_A = 0.0, m_B = 0.0, m_C = 0.0, m_D = 0.0, m_E = 0.0;
  double m_M0 = 0.0;
  BEllipsoid const * m_ellipsoid = nullptr;
  double m_raisedA = 0.0; // the semi-axes lifted by elevation and geoid height
  double m_raisedB = 0.0;
  double m_flattening = 0.0;
  bool m_ready = false;
};

// Snyder's sixth-order series (Map Projections: A Working Manual, 8-9 to
// 8-25), with the point scale of the last forward conversion kept.
class VELMORA_API CTransverseMercatorSnyder final
  : public TProjection<CTransverseMercatorSnyder, CProjection::kTransverseMercatorSnyder>
{
public:
  explicit CTransverseMercatorSnyder(CHorizontalDatum * datum = nullptr);

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;
  // Analytic: the scale that the forward series gives at the point.
  bool ScaleFactorAtPoint(ML::CProjectedPoint const & point, double & scale) const override;

private:
  double m_cm = 0.0;
  double m_lat0 = 0.0;
  double m_fe = 0.0;
  double m_fn = 0.0;
  double m_k0 = 0.0;
  double m_a = 0.0;
  double m_ep2 = 0.0;
  double m_e2 = 0.0;
  mutable double m_k = 0.0; // written by every forward conversion
  double m_c0 = 0.0, m_c1 = 0.0, m_c2 = 0.0, m_c3 = 0.0;
  double m_M0 = 0.0;
  double m_e1 = 0.0; // (1 - sqrt(1 - e2)) / (1 + sqrt(1 - e2))
  bool m_ready = false;
};

// UTM: an owned transverse Mercator whose central meridian and false
// northing follow the zone and hemisphere, optionally chosen per point.
class VELMORA_API CUniversalTransverseMercator final
  : public TProjection<CUniversalTransverseMercator, CProjection::kUniversalTransverseMercator>
{
public:
  explicit CUniversalTransverseMercator(CHorizontalDatum * datum = nullptr);
  CUniversalTransverseMercator(CUniversalTransverseMercator const & other);
  CUniversalTransverseMercator & operator=(CUniversalTransverseMercator const & other);
  using TProjection::operator=;
  ~CUniversalTransverseMercator() override;

  void OnChange(unsigned short const * name) override;
  void OnChangeSafe() override;
  void SetHorizontalDatum(CHorizontalDatum * datum) override;

  bool ToPlane(double & x, double & y) const override;
  bool ToPlane(ML::CGeodeticPoint const & in, ML::CProjectedPoint & out) const override;
  bool FromPlane(double & x, double & y) const override;
  bool FromPlane(ML::CProjectedPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ConvergenceAtPoint(ML::CProjectedPoint const & point, ML::CAngularValue & angle) const override;
  bool ScaleFactorAtPoint(ML::CProjectedPoint const & point, double & scale) const override;

private:
  // The latitude band of a grid square and the lettering of a zone.
  static void UTMLim(char letter, long zone, long & north, long & south, long & east, long & west);
  static bool UTMSet(bool flag, long zone, int ellipsoidCode, char & first, char & last, double & offset);
  void SetInnerTransformParameters(long & zone, bool & north);
  // Chooses zone and hemisphere for a point (degrees), writing the parameters.
  void DivineParameters(ML::CGeodeticPoint const & point);
  void DivineParameters(double lon, double lat);
  int GetEllipsoidEPSGCode() const;
  // The grid reference of a point: MGRS lettering, or (usng) the US National Grid's.
  bool FormatMGRSString(ML::CGeodeticPoint const & point, bool usng, CString & text) const;
  // The south-west corner of the square a grid reference names, on this plane.
  void ParseMGRSString(CString const & text, bool usng, ML::CProjectedPoint & out) const;
  // The numeric point of a point given by numbers or by a grid reference.
  bool PrepareInputPoint(ML::CProjectedPoint & out, ML::CProjectedPoint const & in) const;
  // Latitude limits and automatic zoning, then the inner forward conversion.
  bool Forward(double & x, double & y) const;

  CTransverseMercator * m_inner = nullptr;
  int m_epsgCode = 0;
  // Cached from the parameters by OnChangeSafe, for the per-point path.
  bool m_autoset = false;
  long m_zone = 0;
  bool m_north = true;
};

} // namespace Velmora::CS::PJ
