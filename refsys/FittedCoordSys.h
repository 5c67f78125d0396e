#pragma once
// A fitted coordinate system: a local frame (a scanned map, a site grid)
// that reaches the Earth through a base system. One math transform carries
// its points to the base's points, a second carries them back.
#include <velmora/measures/CoordPointCollection.h>
#include <velmora/refsys/CoordSys.h>
#include <velmora/transforms/mathtransforms/MathTransform.h>

#include <memory>

namespace Velmora::CS {

class VELMORA_API CFittedCoordSysData : public CCoordSysData, public TBodyFactory<CFittedCoordSysData>
{
public:
  static constexpr EObjectType kObjectType = kObjectFittedCoordSys;
  static constexpr long kRootGroup = 1400;

  CFittedCoordSysData();
  CFittedCoordSysData(CFittedCoordSysData const & other);
  ~CFittedCoordSysData() override;
  virtual CFittedCoordSysData & operator=(CFittedCoordSysData const & other);

  ECoordSysType GetType() const override { return kFittedCoordSys; }
  ML::CCoordPoint const & GetPointStyle() const override { return *m_style; }
  ML::CCoordPoint & GetPointStyle() override { return *m_style; }
  // Any point class: the style is replaced by a copy of it.
  void SetPointStyle(ML::CCoordPoint const & style) override;
  // The base's datum; code 33 without a base.
  CHorizontalDatum const & GetHorizontalDatum() const override;
  CHorizontalDatum & GetHorizontalDatum() override;
  bool ToGeodeticBase(double & x, double & y) const override;
  bool ToGeodeticBase(ML::CCoordPoint const & in, ML::CGeodeticPoint & out) const override;
  bool FromGeodeticBase(double & x, double & y) const override;
  bool FromGeodeticBase(ML::CGeodeticPoint const & in, ML::CCoordPoint & out) const override;

  CCoordSys const * GetBaseCoordSys() const { return m_base.get(); }
  CCoordSys * GetBaseCoordSys() { return m_base.get(); }
  // A private copy of a geocentric, geodetic or projected system; null lets go.
  void SetBaseCoordSys(CCoordSys const * base);
  CT::MT::CMathTransform const * GetTransformAhead() const { return m_ahead.get(); }
  CT::MT::CMathTransform * GetTransformAhead() { return m_ahead.get(); }
  CT::MT::CMathTransform const * GetTransformBack() const { return m_back.get(); }
  CT::MT::CMathTransform * GetTransformBack() { return m_back.get(); }
  // Private copies; null lets go.
  void SetTransformAhead(CT::MT::CMathTransform const * transform);
  void SetTransformBack(CT::MT::CMathTransform const * transform);

  bool operator==(CFittedCoordSysData const & other) const;
  bool IsFullyDefined(DB::CDataSource const * source) const override;
  void CongealInner();
  bool ReadStoredValue(CString const &, TWLVariant &) { return false; }

protected:
  bool FieldsNearlyEqual(CCoordSysData const & other, CString & why) const override;

private:
  CCoordSys const & Base(char const * location) const;

  std::unique_ptr<ML::CCoordPoint> m_style;
  std::unique_ptr<CCoordSys> m_base;
  std::unique_ptr<CT::MT::CMathTransform> m_ahead;
  std::unique_ptr<CT::MT::CMathTransform> m_back;
};

using CFittedCoordSysDataConcrete = TDataConcrete<CFittedCoordSysData>;
using CFittedCoordSysDataDB = TDataDB<CFittedCoordSysData>;

extern template class VELMORA_API TCoordSysHandle<CFittedCoordSysData>;

class VELMORA_API CFittedCoordSys : public TCoordSysHandle<CFittedCoordSysData>
{
public:
  CFittedCoordSys() = default;
  CFittedCoordSys(CFittedCoordSys const &) = default;
  CFittedCoordSys & operator=(CFittedCoordSys const &) = default;
  // A default style of that class, a copy of `base`, and new transforms of that type both ways.
  CFittedCoordSys(CCoordSys const * base, ML::ECoordPointType pointType, CT::MT::CMathTransform::Type transformType);
  ~CFittedCoordSys() override;

  CCoordSys const * GetBaseCoordSys() const { return Body().GetBaseCoordSys(); }
  CCoordSys * GetBaseCoordSys() { return MutableBody().GetBaseCoordSys(); }
  void SetBaseCoordSys(CCoordSys const * base) { MutableBody().SetBaseCoordSys(base); }
  CT::MT::CMathTransform const * GetTransformAhead() const { return Body().GetTransformAhead(); }
  CT::MT::CMathTransform * GetTransformAhead() { return MutableBody().GetTransformAhead(); }
  void SetTransformAhead(CT::MT::CMathTransform const * transform) { MutableBody().SetTransformAhead(transform); }
  CT::MT::CMathTransform const * GetTransformBack() const { return Body().GetTransformBack(); }
  CT::MT::CMathTransform * GetTransformBack() { return MutableBody().GetTransformBack(); }
  void SetTransformBack(CT::MT::CMathTransform const * transform) { MutableBody().SetTransformBack(transform); }

  bool operator==(CFittedCoordSys const & other) const { return Body() == other.Body(); }
  bool operator!=(CFittedCoordSys const & other) const { return !(*this == other); }
  void Congeal() override;

private:
  friend class DB::CDataSource;
  explicit CFittedCoordSys(CFittedCoordSysData const & body) : TCoordSysHandle(body) {}
};

} // namespace Velmora::CS
