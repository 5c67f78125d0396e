#pragma once
// Coordinate systems. Every system brings its points to one meeting ground,
// its geodetic base: longitude and latitude in degrees from Greenwich on the
// system's own horizontal datum, height in metres.
#include <velmora/measures/Envelope.h>
#include <velmora/projections/Projection.h>
#include <velmora/measures/CoordPointCollection.h>
#include <velmora/refsys/HorizontalDatum.h>
#include <velmora/transforms/mathtransforms/MathTransform.h>
#include <velmora/vertical/VerticalReference.h>

#include <memory>

namespace Velmora::CS {

enum ECoordSysType { kChainedCoordSys = 0, kFittedCoordSys = 1, kGeocentricCoordSys = 2, kGeodeticCoordSys = 3,
                     kMosaickedCoordSys = 4, kProjectedCoordSys = 5 };

// What all system bodies share: the envelope, and the rules that use it.
class VELMORA_API CCoordSysData : public virtual CSerializableData
{
public:
  virtual CCoordSysData & operator=(CCoordSysData const & other);
  virtual ECoordSysType GetType() const = 0;
  virtual ML::CCoordPoint const & GetPointStyle() const = 0;
  virtual ML::CCoordPoint & GetPointStyle() = 0;
  virtual void SetPointStyle(ML::CCoordPoint const & style) = 0;
  virtual CHorizontalDatum const & GetHorizontalDatum() const = 0;
  virtual CHorizontalDatum & GetHorizontalDatum() = 0;
  virtual bool ToGeodeticBase(double & x, double & y) const = 0;
  virtual bool ToGeodeticBase(ML::CCoordPoint const & in, ML::CGeodeticPoint & out) const = 0;
  virtual bool FromGeodeticBase(double & x, double & y) const = 0;
  virtual bool FromGeodeticBase(ML::CGeodeticPoint const & in, ML::CCoordPoint & out) const = 0;

  ML::CEnvelope const & GetEnvelope() const { return m_envelope; }
  ML::CEnvelope & GetEnvelope() { return m_envelope; }
  void SetEnvelope(ML::CEnvelope const & envelope) { m_envelope = envelope; }

  // Types first, then the identifier level, then the kind's own fields.
  bool IsNearlyEqual(CCoordSysData const & other, CString & why) const;

protected:
  CCoordSysData() = default;
  CCoordSysData(CCoordSysData const &) = default;

  virtual bool FieldsNearlyEqual(CCoordSysData const & other, CString & why) const = 0;
  // Which side of a conversion the envelope guards: points of the system's
  // own class, or geodetic points.
  bool GuardsNative() const;
  bool GuardsGeodetic() const;
  void CheckInput(bool inBounds, char const * location) const;
  void CheckOutput(bool inBounds, char const * location) const;
  // Code 25 without a "VM" code, 26 when the source lacks the object.
  void CheckReference(CSerializable const & object, DB::CDataSource const * source, char const * location,
                      char const * missingCode, char const * missingObject) const;
  void CheckPointStyle(ML::CCoordPoint const & style, ML::ECoordPointType wanted, char const * location,
                       char const * details) const;

  ML::CEnvelope m_envelope;
};

// A system defined directly on a horizontal datum, with a style of its own point class.
template <class Style>
class TDatumSystemData : public CCoordSysData
{
public:
  ML::CCoordPoint const & GetPointStyle() const override { return m_style; }
  ML::CCoordPoint & GetPointStyle() override { return m_style; }
  CHorizontalDatum const & GetHorizontalDatum() const override { return m_datum; }
  CHorizontalDatum & GetHorizontalDatum() override { return m_datum; }
  void SetHorizontalDatum(CHorizontalDatum const & datum) { m_datum = datum; }
  void CongealInner();
  bool ReadStoredValue(CString const &, TWLVariant &) { return false; }

protected:
  TDatumSystemData() = default;
  TDatumSystemData(TDatumSystemData const &) = default;
  void AssignFields(TDatumSystemData const & other);
  bool SameFields(TDatumSystemData const & other) const;
  bool FieldsNearlyEqual(CCoordSysData const & other, CString & why) const override;
  // Envelope, point style and datum must carry "VM" codes the source holds.
  void CheckReferences(DB::CDataSource const * source, char const * location) const;

  CHorizontalDatum m_datum;
  Style m_style;
};

extern template class VELMORA_API TDatumSystemData<ML::CCartesianPoint>;
extern template class VELMORA_API TDatumSystemData<ML::CGeodeticPoint>;

class VELMORA_API CGeocentricCoordSysData : public TDatumSystemData<ML::CCartesianPoint>,
                                            public TBodyFactory<CGeocentricCoordSysData>
{
public:
  static constexpr EObjectType kObjectType = kObjectGeocentricCoordSys;
  static constexpr long kRootGroup = 1100;

  CGeocentricCoordSysData() = default;
  CGeocentricCoordSysData(CGeocentricCoordSysData const &) = default;
  virtual CGeocentricCoordSysData & operator=(CGeocentricCoordSysData const & other);

  ECoordSysType GetType() const override { return kGeocentricCoordSys; }
  void SetPointStyle(ML::CCoordPoint const & style) override;
  bool ToGeodeticBase(double & x, double & y) const override;
  bool ToGeodeticBase(ML::CCoordPoint const & in, ML::CGeodeticPoint & out) const override;
  bool FromGeodeticBase(double & x, double & y) const override;
  bool FromGeodeticBase(ML::CGeodeticPoint const & in, ML::CCoordPoint & out) const override;

  bool operator==(CGeocentricCoordSysData const & other) const { return SameFields(other); }
  bool IsFullyDefined(DB::CDataSource const * source) const override;
};

class VELMORA_API CGeodeticCoordSysData : public TDatumSystemData<ML::CGeodeticPoint>,
                                          public TBodyFactory<CGeodeticCoordSysData>
{
public:
  static constexpr EObjectType kObjectType = kObjectGeodeticCoordSys;
  static constexpr long kRootGroup = 1200;

  CGeodeticCoordSysData() = default;
  CGeodeticCoordSysData(CGeodeticCoordSysData const & other);
  ~CGeodeticCoordSysData() override;
  virtual CGeodeticCoordSysData & operator=(CGeodeticCoordSysData const & other);

  ECoordSysType GetType() const override { return kGeodeticCoordSys; }
  // Optional: null means heights are not tied to any reference of their own.
  VR::CVerticalReference const * GetVerticalReference() const { return m_verticalReference.get(); }
  VR::CVerticalReference * GetVerticalReference() { return m_verticalReference.get(); }
  // Keeps a private copy; null lets go of the one held.
  void SetVerticalReference(VR::CVerticalReference const * reference);
  void SetPointStyle(ML::CCoordPoint const & style) override;
  // One addition each way, with no envelope test: the fast path.
  bool ToGeodeticBase(double & x, double & y) const override;
  bool ToGeodeticBase(ML::CCoordPoint const & in, ML::CGeodeticPoint & out) const override;
  bool FromGeodeticBase(double & x, double & y) const override;
  bool FromGeodeticBase(ML::CGeodeticPoint const & in, ML::CCoordPoint & out) const override;

  bool operator==(CGeodeticCoordSysData const & other) const;
  bool IsFullyDefined(DB::CDataSource const * source) const override;
  void CongealInner();

protected:
  bool FieldsNearlyEqual(CCoordSysData const & other, CString & why) const override;

private:
  std::unique_ptr<VR::CVerticalReference> m_verticalReference;
};

class CGeodeticCoordSys;

class VELMORA_API CProjectedCoordSysData : public CCoordSysData, public TBodyFactory<CProjectedCoordSysData>
{
public:
  static constexpr EObjectType kObjectType = kObjectProjectedCoordSys;
  static constexpr long kRootGroup = 1300;

  CProjectedCoordSysData();
  CProjectedCoordSysData(CProjectedCoordSysData const & other);
  ~CProjectedCoordSysData() override;
  virtual CProjectedCoordSysData & operator=(CProjectedCoordSysData const & other);

  ECoordSysType GetType() const override { return kProjectedCoordSys; }
  ML::CCoordPoint const & GetPointStyle() const override { return m_style; }
  ML::CCoordPoint & GetPointStyle() override { return m_style; }
  void SetPointStyle(ML::CCoordPoint const & style) override;
  // The datum of the inner geodetic system.
  CHorizontalDatum const & GetHorizontalDatum() const override;
  CHorizontalDatum & GetHorizontalDatum() override;
  bool ToGeodeticBase(double & x, double & y) const override;
  bool ToGeodeticBase(ML::CCoordPoint const & in, ML::CGeodeticPoint & out) const override;
  bool FromGeodeticBase(double & x, double & y) const override;
  bool FromGeodeticBase(ML::CGeodeticPoint const & in, ML::CCoordPoint & out) const override;

  CGeodeticCoordSys const & GetGeodeticCoordSys() const { return *m_geodetic; }
  CGeodeticCoordSys & GetGeodeticCoordSys() { return *m_geodetic; }
  void SetGeodeticCoordSys(CGeodeticCoordSys const & system);
  // Never null: a default transverse Mercator on the inner datum when none is set.
  PJ::CProjection const & GetProjection() const;
  PJ::CProjection & GetProjection();
  void SetProjection(PJ::CProjection const & projection);

  bool operator==(CProjectedCoordSysData const & other) const;
  bool IsFullyDefined(DB::CDataSource const * source) const override;
  void CongealInner();
  bool ReadStoredValue(CString const &, TWLVariant &) { return false; }

protected:
  bool FieldsNearlyEqual(CCoordSysData const & other, CString & why) const override;

private:
  // The projection works on the inner system's datum; lent, not owned.
  PJ::CProjection & Projection() const;

  std::unique_ptr<CGeodeticCoordSys> m_geodetic;
  mutable std::unique_ptr<PJ::CProjection> m_projection;
  ML::CProjectedPoint m_style;
};

using CGeocentricCoordSysDataConcrete = TDataConcrete<CGeocentricCoordSysData>;
using CGeocentricCoordSysDataDB = TDataDB<CGeocentricCoordSysData>;
using CGeodeticCoordSysDataConcrete = TDataConcrete<CGeodeticCoordSysData>;
using CGeodeticCoordSysDataDB = TDataDB<CGeodeticCoordSysData>;
using CProjectedCoordSysDataConcrete = TDataConcrete<CProjectedCoordSysData>;
using CProjectedCoordSysDataDB = TDataDB<CProjectedCoordSysData>;

// The abstract system handle.
class VELMORA_API CCoordSys : public CSerializable
{
public:
  ~CCoordSys() override;

  virtual ECoordSysType GetType() const { return GetCoordSysData().GetType(); }
  virtual ML::CCoordPoint const & GetPointStyle() const { return GetCoordSysData().GetPointStyle(); }
  virtual ML::CCoordPoint & GetPointStyle() { return GetCoordSysData().GetPointStyle(); }
  virtual void SetPointStyle(ML::CCoordPoint const & style) { GetCoordSysData().SetPointStyle(style); }
  virtual CHorizontalDatum const & GetHorizontalDatum() const { return GetCoordSysData().GetHorizontalDatum(); }
  virtual CHorizontalDatum & GetHorizontalDatum() { return GetCoordSysData().GetHorizontalDatum(); }
  virtual bool ToGeodeticBase(double & x, double & y) const { return GetCoordSysData().ToGeodeticBase(x, y); }
  virtual bool ToGeodeticBase(ML::CCoordPoint const & in, ML::CGeodeticPoint & out) const
  {
    return GetCoordSysData().ToGeodeticBase(in, out);
  }
  virtual bool FromGeodeticBase(double & x, double & y) const { return GetCoordSysData().FromGeodeticBase(x, y); }
  virtual bool FromGeodeticBase(ML::CGeodeticPoint const & in, ML::CCoordPoint & out) const
  {
    return GetCoordSysData().FromGeodeticBase(in, out);
  }

  ML::CEnvelope const & GetEnvelope() const { return GetCoordSysData().GetEnvelope(); }
  void SetEnvelope(ML::CEnvelope const & envelope) { GetCoordSysData().SetEnvelope(envelope); }
  bool IsNearlyEqual(CCoordSys const & other, CString & why) const
  {
    return GetCoordSysData().IsNearlyEqual(other.GetCoordSysData(), why);
  }
  bool IsNearlyEqual(CCoordSys const & other) const;
  bool operator==(CCoordSys const & other) const { return CSerializable::operator==(other) && GetType() == other.GetType(); }
  bool operator!=(CCoordSys const & other) const { return !(*this == other); }

  // The body, for the library's own code that converts in bulk.
  CCoordSysData const & SystemData() const { return GetCoordSysData(); }

protected:
  CCoordSys() = default;
  CCoordSys(CCoordSys const &) = default;
  CCoordSys & operator=(CCoordSys const &) = default;

private:
  virtual CCoordSysData const & GetCoordSysData() const = 0;
  virtual CCoordSysData & GetCoordSysData() = 0;
};

template <class Data>
class TCoordSysHandle : public THandle<Data, CCoordSys>
{
public:
  TCoordSysHandle() = default;
  TCoordSysHandle(TCoordSysHandle const &) = default;
  TCoordSysHandle & operator=(TCoordSysHandle const &) = default;

protected:
  explicit TCoordSysHandle(Data const & body) : THandle<Data, CCoordSys>(body) {}

private:
  // Out of line and instantiated once in the library: user programs that
  // call them devirtualised must find them exported.
  CCoordSysData const & GetCoordSysData() const override;
  CCoordSysData & GetCoordSysData() override;
};

template <class Data>
CCoordSysData const & TCoordSysHandle<Data>::GetCoordSysData() const
{
  return this->Body();
}

template <class Data>
CCoordSysData & TCoordSysHandle<Data>::GetCoordSysData()
{
  return this->MutableBody();
}

extern template class VELMORA_API TCoordSysHandle<CGeocentricCoordSysData>;
extern template class VELMORA_API TCoordSysHandle<CGeodeticCoordSysData>;
extern template class VELMORA_API TCoordSysHandle<CProjectedCoordSysData>;

class VELMORA_API CGeocentricCoordSys : public TCoordSysHandle<CGeocentricCoordSysData>
{
public:
  CGeocentricCoordSys() = default;
  CGeocentricCoordSys(CGeocentricCoordSys const &) = default;
  CGeocentricCoordSys & operator=(CGeocentricCoordSys const &) = default;
  ~CGeocentricCoordSys() override;
  void SetHorizontalDatum(CHorizontalDatum const & datum) { MutableBody().SetHorizontalDatum(datum); }
  bool operator==(CGeocentricCoordSys const & other) const { return Body() == other.Body(); }
  bool operator!=(CGeocentricCoordSys const & other) const { return !(*this == other); }
  void Congeal() override;

private:
  friend class DB::CDataSource;
  explicit CGeocentricCoordSys(CGeocentricCoordSysData const & body) : TCoordSysHandle(body) {}
};

class VELMORA_API CGeodeticCoordSys : public TCoordSysHandle<CGeodeticCoordSysData>
{
public:
  CGeodeticCoordSys() = default;
  CGeodeticCoordSys(CGeodeticCoordSys const &) = default;
  CGeodeticCoordSys & operator=(CGeodeticCoordSys const &) = default;
  ~CGeodeticCoordSys() override;
  void SetHorizontalDatum(CHorizontalDatum const & datum) { MutableBody().SetHorizontalDatum(datum); }
  // The datum where it lies, for projections that borrow it without a copy.
  CHorizontalDatum const * GetHorizontalDatumPointer() const { return &Body().GetHorizontalDatum(); }
  VR::CVerticalReference const * GetVerticalReference() const { return Body().GetVerticalReference(); }
  VR::CVerticalReference * GetVerticalReference() { return MutableBody().GetVerticalReference(); }
  void SetVerticalReference(VR::CVerticalReference const * reference) { MutableBody().SetVerticalReference(reference); }
  void SetVerticalReference(VR::CVerticalReference const & reference) { SetVerticalReference(&reference); }
  bool operator==(CGeodeticCoordSys const & other) const { return Body() == other.Body(); }
  bool operator!=(CGeodeticCoordSys const & other) const { return !(*this == other); }
  void Congeal() override;

private:
  friend class DB::CDataSource;
  explicit CGeodeticCoordSys(CGeodeticCoordSysData const & body) : TCoordSysHandle(body) {}
};

class VELMORA_API CProjectedCoordSys : public TCoordSysHandle<CProjectedCoordSysData>
{
public:
  CProjectedCoordSys() = default;
  CProjectedCoordSys(CProjectedCoordSys const &) = default;
  CProjectedCoordSys & operator=(CProjectedCoordSys const &) = default;
  ~CProjectedCoordSys() override;

  CGeodeticCoordSys const & GetGeodeticCoordSys() const { return Body().GetGeodeticCoordSys(); }
  CGeodeticCoordSys & GetGeodeticCoordSys() { return MutableBody().GetGeodeticCoordSys(); }
  void SetGeodeticCoordSys(CGeodeticCoordSys const & system) { MutableBody().SetGeodeticCoordSys(system); }
  PJ::CProjection const & GetProjection() const { return Body().GetProjection(); }
  PJ::CProjection & GetProjection() { return MutableBody().GetProjection(); }
  void SetProjection(PJ::CProjection const & projection) { MutableBody().SetProjection(projection); }
  bool operator==(CProjectedCoordSys const & other) const { return Body() == other.Body(); }
  bool operator!=(CProjectedCoordSys const & other) const { return !(*this == other); }
  void Congeal() override;

private:
  friend class DB::CDataSource;
  explicit CProjectedCoordSys(CProjectedCoordSysData const & body) : TCoordSysHandle(body) {}
};

class CFittedCoordSys;

class VELMORA_API CCoordSysFactory
{
public:
  // A new default system of that kind; the caller owns it.
  static CCoordSys * CreateCoordSys(ECoordSysType type);
  static CCoordSys * CreateCoordSys(int type) { return CreateCoordSys(static_cast<ECoordSysType>(type)); }
  // A system fitted to `base` by control points `from` (its own) and `to`
  // (the base's). With `transformType` -1 and a rectangle of `first` by
  // `second` the best polynomial that survives a round trip within `limit`
  // is chosen. The caller owns the result.
  static CFittedCoordSys * CreateFittedCoordSys(CCoordSys const * base, ML::ECoordPointType pointType,
                                                CT::MT::CMathTransform::Type transformType,
                                                ML::CCoordPointCollection const & from,
                                                ML::CCoordPointCollection const & to, int first, int second,
                                                double limit);
};

} // namespace Velmora::CS
