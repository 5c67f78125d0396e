#pragma once
// The projection framework: one abstract class that every projection
// derives from, its body, and the factory. A projection turns geodetic
// longitude and latitude (degrees) into easting and northing (metres) and
// back. Its parameters live in its body; what it computes from them lives in
// the class as plain members, rebuilt in OnChange once every parameter is set.
#include <velmora/foundation/ParameterCollection.h>
#include <velmora/refsys/HorizontalDatum.h>

namespace Velmora::CS::PJ {

class CProjection;

class VELMORA_API CProjectionData : public CDataObject
{
public:
  static CProjectionData * Create();
  static CProjectionData * Clone(CProjectionData const & source);

  ~CProjectionData() override;
  virtual CProjectionData & operator=(CProjectionData const & other);

  // The datum is not owned: a projected coordinate system lends its own.
  CHorizontalDatum * GetHorizontalDatum() const { return m_datum; }
  void SetHorizontalDatum(CHorizontalDatum * datum) { m_datum = datum; }
  CParameterCollection const & GetParameters() const { return m_parameters; }
  CParameterCollection & GetParameters() { return m_parameters; }
  CString const & GetClassName() const { return m_className; }
  void SetClassName(CString const & name) { m_className = name; }

protected:
  CProjectionData() = default;
  CProjectionData(CProjectionData const & other) = default;

  CHorizontalDatum * m_datum = nullptr;
  CParameterCollection m_parameters;
  CString m_className;
};

class VELMORA_API CProjectionDataConcrete final : public CProjectionData
{
public:
  CProjectionDataConcrete() = default;
  CProjectionDataConcrete(CProjectionData const & source) : CProjectionData(source) {}
  EDataObjectType GetDataObjectType() const override { return kEDataObjectConcrete; }
};

class VELMORA_API CProjectionDataDB : public CProjectionData
{
public:
  CProjectionDataDB();
  CProjectionDataDB(CProjectionData const & source, DB::CDataSource const * store);
  EDataObjectType GetDataObjectType() const override { return kEDataObjectDB; }

  // The type whose name this is, exactly as spelt; -1 (and no change) for others.
  int SetProjectionType(CString const & name);
  int GetProjectionType() const { return m_type; }
  // The read-only parameters the reader fills.
  CParameterCollectionDataDB & GetStoredParameters() { return *m_stored; }

private:
  int m_type = -1;
  std::unique_ptr<CParameterCollectionDataDB> m_stored;
};

class VELMORA_API CProjection : public CParameterCollectionEvent
{
public:
  // One value per kind of projection; the numbers are stable.
  enum Type : int {
    kAitoff = 0, kAlaska27, kAlbersEqualArea, kAzimuthalEqualArea, kAzimuthalEquidistant, kBehrmann, kBelgium72,
    kBipolarObliqueConformalConic, kBonne, kCassini, kCrasterParabolic, kDanishSystem34, kDanishSystem34_99,
    kDoubleStereographic, kEckertI, kEckertII, kEckertIII, kEckertIV, kEckertV, kEckertVI,
    kEgysegesOrszagosVetulet, kEqualAreaCylindrical, kEquidistantConic, kEquidistantCylindrical,
    kEuropeanStereographic, kFuller, kGallStereographic, kGnomic, kGoodeHomolosine, kGuam27, kHammerAitoff,
    kHotineObliqueMercator, kHotineObliqueMercator_1, kHotineObliqueMercator_2, kIMWPolyconic, kKrovak, kLaborde,
    kLambert27, kLambertConformalConic, kLambertConformalConicExtended, kLambertTangent, kLoximuthal,
    kMcBrydeThomasFlatPolarQuartic, kMercator, kMilitaryGridReferenceSystem, kMillerCylindrical, kMollweide,
    kNewZealandMapGrid, kObliqueMercatorAzimuth, kObliqueMercatorTwoPoints, kOrthographic, kPerspectiveConic,
    kPolarAzimuthalEqualArea, kPolarEquidistant, kPolarStereographic, kPolyconic, kQuarticAuthalic, kRobinson,
    kSinusoidal, kSpaceObliqueMercator, kStereographic, kStereographic70, kSwissObliqueMercator,
    kTiltedPerspective, kTimes, kTransverseMercator, kMercator27, kTransverseMercatorExtended,
    kTransverseMercatorSnyder, kTransverseMercatorSouthOriented, kTwoPointFit, kUniversalTransverseMercator,
    kVanDerGrinten, kVanDerGrintenIV, kVandH, kVerticalPerspective, kWinkelI, kWinkelII, kWinkelTripel,
    kTypeCount
  };

  // The name of a type as stored and shown; empty for a value out of range.
  static CString TypeName(int type);

  ~CProjection() override;
  void OnChange(unsigned short const * name) override = 0;
  virtual CProjectionData const & GetData() const { return *m_data; }
  virtual CProjectionData & GetData() { return *m_data; }
  // Takes over the other's body; the cached constants only from a projection of the same type.
  virtual CProjection & operator=(CProjection const & other);
  virtual CHorizontalDatum const * GetHorizontalDatum() const { return m_data->GetHorizontalDatum(); }
  virtual CHorizontalDatum * GetHorizontalDatum() { return m_data->GetHorizontalDatum(); }
  // Not owned; the cached constants are rebuilt at once.
  virtual void SetHorizontalDatum(CHorizontalDatum * datum);
  virtual Type GetType() const = 0;
  // Longitude and latitude in degrees in, easting and northing in metres out, in place.
  virtual bool ToPlane(double & x, double & y) const;
  virtual bool ToPlane(ML::CGeodeticPoint const & in, ML::CProjectedPoint & out) const;
  virtual bool FromPlane(double & x, double & y) const;
  virtual bool FromPlane(ML::CProjectedPoint const & in, ML::CGeodeticPoint & out) const;
  // Grid convergence in radians, through a small step north.
  virtual bool ConvergenceAtPoint(ML::CProjectedPoint const & point, ML::CAngularValue & angle) const;
  // Point scale from two small diagonals, planar over ellipsoidal.
  virtual bool ScaleFactorAtPoint(ML::CProjectedPoint const & point, double & scale) const;
  virtual void OnChangeSafe() { OnChange(nullptr); }

  bool operator==(CProjection const & other) const;
  bool operator!=(CProjection const & other) const { return !(*this == other); }
  bool IsNearlyEqual(CProjection const & other, CString & message) const;
  bool IsNearlyEqual(CProjection const & other) const;
  CParameterCollection const & GetParameters() const { return m_data->GetParameters(); }
  // Writable parameters; this projection hears of every change.
  CParameterCollection & GetParameters();
  CString GetTypeName() const { return m_data->GetClassName(); }
  void SetTypeName(unsigned short const * name) { m_data->SetClassName(CString(name)); }
  bool IsFullyDefined(DB::CDataSource const * source) const;

  // Shifts a longitude by a turn towards the central meridian when the data
  // source's centering switch is on; strict comparisons, each once.
  static void CenterLongitude(double & longitude, double centralMeridian);

protected:
  // Registers the parameters of the named type, in order, unset.
  CProjection(CString const & typeName, CHorizontalDatum * datum);
  CProjection(CProjection const & other);
  // The figure of the datum's ellipsoid; null without a datum.
  BEllipsoid const * GetInnerEllipsoid() const;
  // Whether every parameter is set and at least `count` are registered.
  bool ParametersReady(long count) const;

private:
  static bool ClassNamesNearlyEqual(CString const & a, CString const & b);
  bool ParametersNearlyEqual(CProjection const & other, CString & message) const;

  CDataObjectPtr<CProjectionData> m_data;
};

// Gives a class its type and the assignment rules of projections: the virtual
// assignment copies cached constants only from the same type, the typed one always.
template <class Derived, CProjection::Type TypeValue, class Base = CProjection>
class TProjection : public Base
{
public:
  static constexpr CProjection::Type kType = TypeValue;

  CProjection::Type GetType() const override { return TypeValue; }
  CProjection & operator=(CProjection const & other) override
  {
    if (&other == this)
      return *this;
    if (other.GetType() == TypeValue)
      static_cast<Derived &>(*this) = static_cast<Derived const &>(other);
    else
      CProjection::operator=(other);
    return *this;
  }

protected:
  explicit TProjection(CHorizontalDatum * datum) : Base(CProjection::TypeName(TypeValue), datum) {}
  TProjection(CString const & typeName, CHorizontalDatum * datum) : Base(typeName, datum) {}
  TProjection(TProjection const &) = default;
  TProjection & operator=(TProjection const &) = default;
};

// A projection whose mathematics this library does not carry yet: it has its
// type and parameters, and converts nothing.
template <class Derived, CProjection::Type TypeValue, class Base = CProjection>
class TNotConverting : public TProjection<Derived, TypeValue, Base>
{
public:
  void OnChange(unsigned short const *) override {}
  bool ToPlane(double &, double &) const override { return false; }
  bool FromPlane(double &, double &) const override { return false; }
  using CProjection::FromPlane;
  using CProjection::ToPlane;

protected:
  using TProjection<Derived, TypeValue, Base>::TProjection;
};

class VELMORA_API CProjectionFactory
{
public:
  // A new projection of that type over the datum; the caller owns it.
  static CProjection * CreateProjection(CProjection::Type type, CHorizontalDatum * datum);
  static CProjection * CreateProjection(int type, CHorizontalDatum * datum)
  {
    return CreateProjection(static_cast<CProjection::Type>(type), datum);
  }
};

} // namespace Velmora::CS::PJ
