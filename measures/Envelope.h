#pragma once
// The area of use of a coordinate system, a datum shift or a height model:
// two corner points of one class, or the mark that everything is accepted.
#include <velmora/measures/CoordPoints.h>

#include <memory>

namespace Velmora::ML {

class VELMORA_API CEnvelopeData : public virtual CSerializableData, public TBodyFactory<CEnvelopeData>
{
public:
  static constexpr EObjectType kObjectType = kObjectEnvelope;
  static constexpr long kRootGroup = 800;

  CEnvelopeData() = default;
  CEnvelopeData(CEnvelopeData const & other);
  explicit CEnvelopeData(ECoordPointType cornerType);
  virtual CEnvelopeData & operator=(CEnvelopeData const & other);

  virtual bool GetAlwaysAccept() const { return m_alwaysAccept; }
  virtual void SetAlwaysAccept(bool accept) { m_alwaysAccept = accept; }
  // Null until the corner is given.
  virtual CCoordPoint const * GetMinPoint() const { return m_min.get(); }
  virtual CCoordPoint * GetMinPoint() { return m_min.get(); }
  virtual void SetMinPoint(CCoordPoint const & point);
  virtual CCoordPoint const * GetMaxPoint() const { return m_max.get(); }
  virtual CCoordPoint * GetMaxPoint() { return m_max.get(); }
  virtual void SetMaxPoint(CCoordPoint const & point);
  // Plain test on the corners' internals, no wrap, no class check.
  virtual bool InBounds(double x, double y) const;
  // Class check, the third dimension where all have it, and longitude wrap.
  virtual bool InBounds(CCoordPoint const & point) const;

  bool IsNearlyEqual(CEnvelopeData const & other, CString & why) const;
  bool IsNearlyEqual(CEnvelopeData const & other) const;
  bool operator==(CEnvelopeData const & other) const;
  bool IsFullyDefined(DB::CDataSource const * source) const override;
  void CongealCorners();
  bool ReadStoredValue(CString const &, TWLVariant &) { return false; }

private:
  bool m_alwaysAccept = true;
  std::unique_ptr<CCoordPoint> m_min;
  std::unique_ptr<CCoordPoint> m_max;
};

using CEnvelopeDataConcrete = TDataConcrete<CEnvelopeData>;
using CEnvelopeDataDB = TDataDB<CEnvelopeData>;

class VELMORA_API CEnvelope : public THandle<CEnvelopeData>
{
public:
  CEnvelope() = default;
  CEnvelope(CEnvelope const &) = default;
  CEnvelope & operator=(CEnvelope const &) = default;
  // Both corners made, of that point class.
  explicit CEnvelope(ECoordPointType cornerType);
  ~CEnvelope() override;

  bool GetAlwaysAccept() const { return Body().GetAlwaysAccept(); }
  void SetAlwaysAccept(bool accept) { MutableBody().SetAlwaysAccept(accept); }
  CCoordPoint const * GetMinPoint() const { return Body().GetMinPoint(); }
  CCoordPoint * GetMinPoint() { return MutableBody().GetMinPoint(); }
  void SetMinPoint(CCoordPoint const & point) { MutableBody().SetMinPoint(point); }
  CCoordPoint const * GetMaxPoint() const { return Body().GetMaxPoint(); }
  CCoordPoint * GetMaxPoint() { return MutableBody().GetMaxPoint(); }
  void SetMaxPoint(CCoordPoint const & point) { MutableBody().SetMaxPoint(point); }
  bool InBounds(CCoordPoint const & point) const { return Body().InBounds(point); }
  bool InBounds(double x, double y) const { return Body().InBounds(x, y); }

  bool IsNearlyEqual(CEnvelope const & other, CString & why) const { return Body().IsNearlyEqual(other.Body(), why); }
  bool IsNearlyEqual(CEnvelope const & other) const { return Body().IsNearlyEqual(other.Body()); }
  bool operator==(CEnvelope const & other) const { return Body() == other.Body(); }
  bool operator!=(CEnvelope const & other) const { return !(*this == other); }

  void Congeal() override;

private:
  friend class DB::CDataSource;
  explicit CEnvelope(CEnvelopeData const & body) : THandle(body) {}
};

} // namespace Velmora::ML
