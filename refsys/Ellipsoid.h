#pragma once
// The stored ellipsoid: axes as values with units around the numeric
// BEllipsoid, and the geodesic operations on points. Either the semi-minor
// axis or the inverse flattening defines the figure; the other is derived.
#include <velmora/measures/CoordPoints.h>
#include <velmora/refsys/BEllipsoid.h>

#include <vector>

namespace Velmora::CS {

class VELMORA_API CEllipsoidData : public virtual CSerializableData,
                                   public ML::CFormattedValueEvent,
                                   public TBodyFactory<CEllipsoidData>
{
public:
  static constexpr EObjectType kObjectType = kObjectEllipsoid;
  static constexpr long kRootGroup = 400;

  CEllipsoidData();
  CEllipsoidData(CEllipsoidData const & other);
  virtual CEllipsoidData & operator=(CEllipsoidData const & other);

  // Either axis value changed: rebuild the figure.
  void OnChange(ML::CFormattedValue const * changed) override;

  ML::CLinearValue const & GetSemiMajor() const { return m_semiMajor; }
  ML::CLinearValue & GetSemiMajor() { return m_semiMajor; }
  ML::CLinearValue const & GetSemiMinor() const { return m_semiMinor; }
  ML::CLinearValue & GetSemiMinor() { return m_semiMinor; }
  void SetSemiMajor(ML::CLinearValue const & value);
  void SetSemiMinor(ML::CLinearValue const & value);
  double GetInvFlattening() const { return m_inner.GetInverseFlattening(); }
  void SetInvFlattening(double inverseFlattening);
  bool GetInvFlatDefinitive() const { return m_invFlatDefinitive; }
  void SetInvFlatDefinitive(bool definitive) { m_invFlatDefinitive = definitive; }
  double GetEccentricity() const { return m_inner.GetEccentricity(); }
  double GetEccentricitySquared() const { return m_inner.GetEccentricitySquared(); }
  double GetFlattening() const { return m_inner.GetFlattening(); }
  double GetAxisRatio() const { return m_inner.GetAxisRatio(); }
  BEllipsoid const & GetInner() const { return m_inner; }
  void QueryInner(BEllipsoid & inner) const { inner = m_inner; }

  // Points in internal degrees; azimuths in radians.
  bool ComputeInverse(ML::CGeodeticPoint const & a, ML::CGeodeticPoint const & b, double & distance,
                      double & az12, double & az21) const;
  bool ComputeDirect(ML::CGeodeticPoint const & start, double distance, double azimuth,
                     ML::CGeodeticPoint & end) const;
  bool RhumbInverse(ML::CGeodeticPoint const & a, ML::CGeodeticPoint const & b, double & azimuth,
                    double & distance) const;
  bool RhumbDirect(ML::CGeodeticPoint const & start, double distance, double azimuth, ML::CGeodeticPoint & end) const;
  bool ComputeRadiusAtLatitude(ML::CAngularValue const & lat, ML::CLinearValue & radius) const;
  bool ComputeOrthometricScaleAtLatitude(ML::CAngularValue const & lat, ML::CLinearValue const & height,
                                         double & scale) const;
  // Grid offsets of b from a in nautical miles, as "W010/005"; the caller's buffer takes it.
  bool CCGridInverse(ML::CGeodeticPoint const & a, ML::CGeodeticPoint const & b, unsigned short * text) const;
  bool CCGridDirect(ML::CGeodeticPoint const & start, unsigned short const * text, ML::CGeodeticPoint & end) const;
  double PolygonArea(std::vector<ML::BPoint2D> const & vertices) const { return m_inner.PolygonArea(vertices); }

  bool IsNearlyEqual(CEllipsoidData const & other, CString & why) const;
  bool IsNearlyEqual(CEllipsoidData const & other) const;
  bool operator==(CEllipsoidData const & other) const;
  bool IsFullyDefined(DB::CDataSource const * source) const override;
  bool ReadStoredValue(CString const & key, TWLVariant & value);
  // Derives the figure from the defining values; the reader calls it once per
  // ellipsoid, after the last of them.
  void Initialize();

private:
  void Listen();
  static char QuadrantLetterFromPoints(ML::CGeodeticPoint const & a, ML::CGeodeticPoint const & b);
  static bool CoefficientsFromQuadrantLetter(char letter, long & lonSign, long & latSign);

  ML::CLinearValue m_semiMajor;
  ML::CLinearValue m_semiMinor;
  BEllipsoid m_inner;
  bool m_invFlatDefinitive = false;
};

using CEllipsoidDataConcrete = TDataConcrete<CEllipsoidData>;
using CEllipsoidDataDB = TDataDB<CEllipsoidData>;

class VELMORA_API CEllipsoid : public THandle<CEllipsoidData>
{
public:
  CEllipsoid() = default;
  CEllipsoid(CEllipsoid const &) = default;
  CEllipsoid & operator=(CEllipsoid const &) = default;
  ~CEllipsoid() override;

  ML::CLinearValue const & GetSemiMajor() const { return Body().GetSemiMajor(); }
  ML::CLinearValue & GetSemiMajor() { return MutableBody().GetSemiMajor(); }
  ML::CLinearValue const & GetSemiMinor() const { return Body().GetSemiMinor(); }
  ML::CLinearValue & GetSemiMinor() { return MutableBody().GetSemiMinor(); }
  void SetSemiMajor(ML::CLinearValue const & value) { MutableBody().SetSemiMajor(value); }
  void SetSemiMinor(ML::CLinearValue const & value) { MutableBody().SetSemiMinor(value); }
  double GetInvFlattening() const { return Body().GetInvFlattening(); }
  void SetInvFlattening(double inverseFlattening) { MutableBody().SetInvFlattening(inverseFlattening); }
  bool GetInvFlatDefinitive() const { return Body().GetInvFlatDefinitive(); }
  void SetInvFlatDefinitive(bool definitive) { MutableBody().SetInvFlatDefinitive(definitive); }
  double GetEccentricity() const { return Body().GetEccentricity(); }
  double GetEccentricitySquared() const { return Body().GetEccentricitySquared(); }
  BEllipsoid const & GetInner() const { return Body().GetInner(); }
  void QueryInner(BEllipsoid & inner) const { Body().QueryInner(inner); }

  bool ComputeInverse(ML::CGeodeticPoint const & a, ML::CGeodeticPoint const & b, double & distance,
                      double & az12, double & az21) const
  {
    return Body().ComputeInverse(a, b, distance, az12, az21);
  }
  bool ComputeDirect(ML::CGeodeticPoint const & start, double distance, double azimuth, ML::CGeodeticPoint & end) const
  {
    return Body().ComputeDirect(start, distance, azimuth, end);
  }
  bool RhumbInverse(ML::CGeodeticPoint const & a, ML::CGeodeticPoint const & b, double & azimuth,
                    double & distance) const
  {
    return Body().RhumbInverse(a, b, azimuth, distance);
  }
  bool RhumbDirect(ML::CGeodeticPoint const & start, double distance, double azimuth, ML::CGeodeticPoint & end) const
  {
    return Body().RhumbDirect(start, distance, azimuth, end);
  }
  bool ComputeRadiusAtLatitude(ML::CAngularValue const & lat, ML::CLinearValue & radius) const
  {
    return Body().ComputeRadiusAtLatitude(lat, radius);
  }
  bool ComputeOrthometricScaleAtLatitude(ML::CAngularValue const & lat, ML::CLinearValue const & height,
                                         double & scale) const
  {
    return Body().ComputeOrthometricScaleAtLatitude(lat, height, scale);
  }
  bool CCGridInverse(ML::CGeodeticPoint const & a, ML::CGeodeticPoint const & b, unsigned short * text) const
  {
    return Body().CCGridInverse(a, b, text);
  }
  bool CCGridDirect(ML::CGeodeticPoint const & start, unsigned short const * text, ML::CGeodeticPoint & end) const
  {
    return Body().CCGridDirect(start, text, end);
  }
  double PolygonArea(std::vector<ML::BPoint2D> const & vertices) const { return Body().PolygonArea(vertices); }

  bool IsNearlyEqual(CEllipsoid const & other, CString & why) const { return Body().IsNearlyEqual(other.Body(), why); }
  bool IsNearlyEqual(CEllipsoid const & other) const { return Body().IsNearlyEqual(other.Body()); }
  bool operator==(CEllipsoid const & other) const { return Body() == other.Body(); }
  bool operator!=(CEllipsoid const & other) const { return !(*this == other); }
  void Congeal() override;

private:
  friend class DB::CDataSource;
  explicit CEllipsoid(CEllipsoidData const & body) : THandle(body) {}
};

} // namespace Velmora::CS
