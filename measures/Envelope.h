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

// The stored body. Its corners name their point styles, which a data file may
// define after the envelope: until the end of the file the body keeps the
// index of each pending style (-1 for none), and the store then fills it in.
class VELMORA_API CEnvelopeDataDB final : public CEnvelopeData, public CSerializableDataDB
{
public:
  CEnvelopeDataDB() : CSerializableData(CString(), kObjectType, kRootGroup) {}
  CEnvelopeDataDB(CEnvelopeDataDB const & other)
    : CSerializableData(other), CEnvelopeData(other), CSerializableDataDB(other), m_minStyleIndex(other.m_minStyleIndex),
      m_maxStyleIndex(other.m_maxStyleIndex)
  {
  }
  // How a store copies a caller's envelope into itself.
  CEnvelopeDataDB(CEnvelopeData const & source, DB::CDataSource const *)
    : CSerializableData(source), CEnvelopeData(source)
  {
  }
  using CEnvelopeData::operator=;

  long GetMinStyleIndex() const { return m_minStyleIndex; }
  void SetMinStyleIndex(long index) { m_minStyleIndex = index; }
  long GetMaxStyleIndex() const { return m_maxStyleIndex; }
  void SetMaxStyleIndex(long index) { m_maxStyleIndex = index; }
  // A corner's location text, kept until its style is known.
  CString const & GetMinLocation() const { return m_minLocation; }
  void SetMinLocation(CString const & text) { m_minLocation = text; }
  CString const & GetMaxLocation() const { return m_maxLocation; }
  void SetMaxLocation(CString const & text) { m_maxLocation = text; }

  void SetValue(CString const & key, TWLVariant & value) override { CSerializableDataDB::SetValue(key, value); }

private:
  long m_minStyleIndex = -1;
  long m_maxStyleIndex = -1;
  CString m_minLocation;
  CString m_maxLocation;
};

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
