#pragma once
// Grid systems: national grids, MGRS, and one-off grids.
// Classes whose mathematics is not yet carried convert nothing: ToPlane and
// FromPlane return false.
#include <velmora/projections/TransverseMercator.h>

namespace Velmora::CS::PJ {

// The Danish System 34: UTM-like transverse Mercator of a region, then a
// polynomial per region to the System 34 plane. The polynomial tables of
// the Danish survey (KMS) are not publicly available, so this class
// converts nothing: ToPlane and FromPlane return false. Its regions are
// kept: 1 Jylland, 2 Sjaelland, 3 Bornholm (4 is recognised by name only).
class VELMORA_API CDanishSystem34 final : public TNotConverting<CDanishSystem34, CProjection::kDanishSystem34, CTransverseMercator>
{
public:
  explicit CDanishSystem34(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}

  // By the first character: "1" or "j" region 1, "2" or "s" 2, "3" or "b" 3,
  // "4" or "u" 4; anything else, and an empty text, 0.
  static long GetRegionCode(CString const & region);
  // Sets the transverse Mercator of region 1 to 3 (scale 0.9996, false
  // easting 500000, central meridian 9 E, 15 E for Bornholm); any other
  // value raises code 15.
  void SetFromRegion(long region);
};

class VELMORA_API CDanishSystem34_99 final : public TNotConverting<CDanishSystem34_99, CProjection::kDanishSystem34_99>
{
public:
  explicit CDanishSystem34_99(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CFuller final : public TNotConverting<CFuller, CProjection::kFuller>
{
public:
  explicit CFuller(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

// The Military Grid Reference System: a point's plane "coordinate" is its
// grid reference, "%2d%c%c%c%05ld%05ld" (zone, latitude band, column and row
// letters of the 100 km square, easting and northing in it to the nearest
// metre), kept as the location string of the projected point. The square is
// that of UTM on the datum (Redfearn's series, CTransverseMercator), with the
// zone exceptions of south-west Norway and Svalbard. The lettering follows
// the ellipsoid's EPSG code: the newer "AA" scheme on WGS 84, GRS 1980 and
// their kin, the older "AL" scheme on Bessel and Clarke figures (NGA
// TR8350.2 and DMA TM 8358.1, 3-4). Domain 80 S to 84 N, both included;
// latitude 84 itself is band X. Only the point overloads convert.
class VELMORA_API CMilitaryGridReferenceSystem final
  : public TProjection<CMilitaryGridReferenceSystem, CProjection::kMilitaryGridReferenceSystem>
{
public:
  explicit CMilitaryGridReferenceSystem(CHorizontalDatum * datum = nullptr);

  void OnChange(unsigned short const * name) override;
  // A grid reference is no pair of numbers: these refuse.
  bool ToPlane(double &, double &) const override { return false; }
  bool FromPlane(double &, double &) const override { return false; }
  // The reference of the point, into `out`'s location string; false (out
  // untouched) beyond the domain or without a datum.
  bool ToPlane(ML::CGeodeticPoint const & in, ML::CProjectedPoint & out) const override;
  // The point that the location string of `in` names: its south-west corner
  // at the precision written (1 m to 100 km).
  bool FromPlane(ML::CProjectedPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  int m_epsgCode = 0; // the ellipsoid's, 0 without one
};

// The New Zealand Map Grid (Reilly 1973): a sixth-degree complex polynomial
// in the isometric latitude difference and the longitude difference on the
// International 1924 radius, conformal and within 0.02% of true scale over
// New Zealand, and meaningless far from it. Series and coefficients of
// Department of Lands and Survey Technical Circular 1973/32 and LINZ OSG
// Technical Report 4.1 (also EPSG Guidance Note 7-2, method 9811). The
// inverse starts from the published inverse series and takes two Newton
// steps, which return forward points to better than 0.1 mm over the country.
class VELMORA_API CNewZealandMapGrid final : public TProjection<CNewZealandMapGrid, CProjection::kNewZealandMapGrid>
{
public:
  explicit CNewZealandMapGrid(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_lon0 = 0.0, m_lat0 = 0.0; // degrees
  double m_fe = 0.0, m_fn = 0.0;
  bool m_ready = false;
};

// The Space Oblique Mercator of a satellite on a circular orbit, on the
// figure of satellite_a (semi-major axis) and satellite_e (eccentricity)
// (Snyder, Map Projections: A Working Manual, 27-1 to 27-25; Snyder and
// Linck's Fourier form). satellite_incl is the orbit's inclination,
// satellite_lon0 the longitude of its ascending node, satellite_p2 /
// satellite_p1 the ratio of its period to that of the Earth's rotation
// (minutes over 1440), and satellite_gamma the fraction of a half turn of
// the transformed longitude at which a path begins (0.5201613 for Landsat's
// scenes, 0 for MISR's). central_meridian must be set but plays no part. The
// series coefficients are integrated by Simpson's rule on 9-degree steps,
// as in the published tables; the iterations stop at 1e-7 radian, which
// leaves 3 cm against PROJ's lsat and misrsom. Points off the ground track by
// more than some 20 degrees lose meaning.
class VELMORA_API CSpaceObliqueMercator final : public TProjection<CSpaceObliqueMercator, CProjection::kSpaceObliqueMercator>
{
public:
  explicit CSpaceObliqueMercator(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  // S and H of Snyder's series at the transformed longitude; S is returned.
  double SeriesS(double lambdaPP, double & H) const;

  double m_a = 0.0, m_e2 = 0.0;
  double m_lon0 = 0.0;            // ascending node, radians
  double m_sinI = 0.0, m_cosI = 0.0;
  double m_p = 0.0;               // P2 / P1
  double m_J = 0.0, m_W = 0.0, m_Q = 0.0, m_T = 0.0, m_U = 0.0;
  double m_B = 0.0, m_A2 = 0.0, m_A4 = 0.0, m_C1 = 0.0, m_C3 = 0.0;
  double m_start = 0.0;           // first transformed longitude of a path, radians
  bool m_ready = false;
};

// A plane fitted to two known points: the datum's ellipsoidal Mercator about
// the meridian halfway between them (a conformal frame, x = a (lambda -
// lambda_m), y = a psi, psi the isometric latitude, Snyder 7-2 and 7-7) is
// scaled, turned and shifted so that the two points fall on their given
// east and north. Conformal; the scale is exact only along the line of the
// two points, so it suits a local grid of the extent the points span.
// Parameters: standard_longitude1, standard_latitude1 for the first point,
// at east1, north1; standard_longitude2, standard_latitude2 at east2, north2.
class VELMORA_API CTwoPointFit final : public TProjection<CTwoPointFit, CProjection::kTwoPointFit>
{
public:
  explicit CTwoPointFit(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  // The point (degrees) in the conformal frame, metres.
  void Frame(double lon, double lat, double & u, double & v) const;

  double m_a = 0.0, m_e = 0.0;
  double m_eatanhe[32] = {};
  int m_eatanheTerms = 0;
  double m_lonMid = 0.0;               // degrees
  double m_uMid = 0.0, m_vMid = 0.0;   // the middle of the two points in the frame
  double m_eMid = 0.0, m_nMid = 0.0;   // and in the plane
  double m_cos = 0.0, m_sin = 0.0;     // scale times cos and sin of the turn
  bool m_ready = false;
};

// V and H, the grid of the North American telephone rate centres: J. K.
// Donald's doubly equidistant ("elliptical") projection of 1957, distances
// from two foci in Floyd County, Kentucky and Webster County, Utah (0.4
// radian apart) on a sphere of 12481.103 units of sqrt(0.1) mile (the
// Earth shrunk by 0.3%), after a polynomial in the latitude takes the
// ellipsoid to the sphere; then turned by 76.597497 degrees and shifted to
// V = 6363.235, H = 2250.7 at the eastern focus (E. K. Grimmelmann, "V-H
// Coordinates Rediscovered", Bell Laboratories 1980). x is V and y is H, in
// those units. Meant for the United States and southern Canada; the
// inverse takes the latitude polynomial back by Newton's steps.
class VELMORA_API CVandH final : public TProjection<CVandH, CProjection::kVandH>
{
public:
  explicit CVandH(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const *) override {}
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;
  // The grid has no north to converge to: no result.
  bool ConvergenceAtPoint(ML::CProjectedPoint const &, ML::CAngularValue &) const override { return false; }
};

} // namespace Velmora::CS::PJ
