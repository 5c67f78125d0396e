#pragma once
// BEllipsoid: the plain numeric ellipsoid and the geodesy on it. Seven doubles,
// no units, no object frame; projections and datum shifts compute on it
// directly. Angles are radians unless a method says otherwise.
#include <velmora/foundation/Export.h>
#include <velmora/measures/BPoint.h>

#include <vector>

namespace Velmora::CS {

class VELMORA_API BEllipsoid
{
public:
  // Why a setter failed; only the numeric values are part of the interface.
  enum InitializationErrorCode : int {
    kInitOk = 0,
    kInitNegativeSemiMajor = 1,
    kInitNegativeSemiMinor = 2,
    kInitSemiMinorAboveSemiMajor = 3,
    kInitInverseFlatteningBelowOne = 4,
    kInitNegativeAxisRatio = 5,
    kInitAxisRatioAboveOne = 6,
  };

  // An empty figure, as set_Default leaves it.
  BEllipsoid();
  // From the semi-major axis and the inverse flattening; raises as the setter does.
  BEllipsoid(double semiMajor, double inverseFlattening);
  BEllipsoid(BEllipsoid const & other) = default;

  BEllipsoid & operator=(BEllipsoid const & other);
  // Exact on all seven fields.
  bool operator==(BEllipsoid const & other) const;
  bool operator!=(BEllipsoid const & other) const { return !(*this == other); }

  void set_Default();

  // Each setter works out the whole figure, with substitutes for bad input,
  // before it raises; after a failure the object still holds that figure.
  void set_SemiMajor_SemiMinor(double a, double b);
  void set_SemiMajor_InverseFlattening(double a, double invF);
  void set_SemiMajor_AxisRatio(double a, double ratio);

  double GetSemiMajor() const { return m_a; }
  double GetSemiMinor() const { return m_b; }
  double GetInverseFlattening() const { return m_invF; }
  double GetFlattening() const { return m_f; }
  double GetAxisRatio() const { return m_ratio; }
  double GetEccentricity() const { return m_e; }
  double GetEccentricitySquared() const { return m_e2; }

  bool IsSpherical() const { return m_b == m_a; }
  double GetSphericalRadius() const { return m_a; }

  double GetSecondEccentricitySquared() const;

  // Authalic q of a latitude and of the north pole.
  double ComputeAuthalicQ(double lat) const;
  double ComputeAuthalicQNorthPole() const;
  // The sine of the authalic latitude; callers take the arc sine themselves.
  double ComputeAuthalicLatitude(double lat) const;
  double ComputeConformalLatitude(double lat) const;
  double ComputeGeocentricLatitude(double lat) const;
  double ComputeReducedLatitude(double lat) const;

  double ComputeGaussRadiusAtLatitude(double lat) const;
  double ComputeMeridionalRadiusAtLatitude(double lat) const;
  double ComputePrimeVerticalRadiusAtLatitude(double lat) const;
  double ComputeOrthometricScaleAtLatitude(double lat, double height) const;

  static double Haversine(double x);

  // Radius of the sphere of equal area; undefined for a sphere (e = 0).
  double AuthalicRadius() const;
  // Radius of the sphere on which the band between two latitudes has the
  // ellipsoid's area; undefined for lat1 == lat2.
  double AuthalicRadius(double lat1, double lat2) const;

  // Geocentric (X, Y, Z in metres) to geodetic (longitude, latitude in
  // degrees, height in metres), in place. Points on the polar axis are
  // outside the domain.
  void ToGeodeticBase(int count, ML::BPoint3D * points) const;
  // The same without the height, for callers that drop it: z is left as it was.
  void ToGeodeticLonLat(int count, ML::BPoint3D * points) const;
  // Geodetic (degrees, metres) to geocentric, in place.
  void FromGeodeticBase(int count, ML::BPoint3D * points) const;

  // Geodesic between two (longitude, latitude) points by Vincenty's method;
  // azimuths in [0, 2 pi], az21 being the back azimuth at p2. Not meant for
  // nearly antipodal points.
  void GeodeticInverse(ML::BPoint2D const & p1, ML::BPoint2D const & p2,
                       double & az12, double & az21, double & distance) const;
  void GeodeticForward(ML::BPoint2D const & p1, double azimuth, double distance,
                       ML::BPoint2D & p2, double & az21) const;

  // Loxodrome; false, with zero results, for coincident points.
  bool RhumbInverse(ML::BPoint2D const & p1, ML::BPoint2D const & p2,
                    double & azimuth, double & distance) const;
  bool RhumbDirect(ML::BPoint2D const & p1, double azimuth, double distance,
                   ML::BPoint2D & p2) const;

  // Area in square metres of a closed ring of (longitude, latitude) vertices,
  // negative when the ring runs counter-clockwise in (longitude, latitude).
  // The vector must not be empty.
  double PolygonArea(std::vector<ML::BPoint2D> const & vertices) const;
  double PseudoPlanarPolygonArea(double lon0, double lat0,
                                 std::vector<ML::BPoint2D> const & vertices) const;
  double SphericalPolygonArea(double minLat, double maxLat,
                              std::vector<ML::BPoint2D> const & vertices) const;

private:
  template <bool withHeight>
  void ToGeodetic(int count, ML::BPoint3D * points) const;
  static void CheckInitError(InitializationErrorCode code, unsigned short const * location);

  // Isometric latitude and meridian arc, shared by the rhumb-line pair.
  double IsometricLatitude(double lat) const;
  double MeridianArc(double lat) const;

  double m_a;     // semi-major axis, metres
  double m_b;     // semi-minor axis, metres
  double m_invF;  // inverse flattening, 1e32 for a sphere
  double m_f;     // flattening 1 - b/a
  double m_ratio; // axis ratio b/a
  double m_e;     // eccentricity
  double m_e2;    // eccentricity squared 1 - (b/a)^2
};

} // namespace Velmora::CS
