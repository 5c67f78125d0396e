#pragma once
// A horizontal datum: an ellipsoid and a prime meridian.
#include <velmora/refsys/Ellipsoid.h>
#include <velmora/refsys/PrimeMeridian.h>

namespace Velmora::CS {

class VELMORA_API CHorizontalDatumData : public virtual CSerializableData, public TBodyFactory<CHorizontalDatumData>
{
public:
  static constexpr EObjectType kObjectType = kObjectHorizontalDatum;
  static constexpr long kRootGroup = 500;

  CHorizontalDatumData() = default;
  CHorizontalDatumData(CHorizontalDatumData const &) = default;
  virtual CHorizontalDatumData & operator=(CHorizontalDatumData const & other);

  CEllipsoid const & GetEllipsoid() const { return m_ellipsoid; }
  CEllipsoid & GetEllipsoid() { return m_ellipsoid; }
  // A stored body is shared, an owned one copied.
  void SetEllipsoid(CEllipsoid const & ellipsoid) { m_ellipsoid = ellipsoid; }
  CPrimeMeridian const & GetPrimeMeridian() const { return m_primeMeridian; }
  CPrimeMeridian & GetPrimeMeridian() { return m_primeMeridian; }
  void SetPrimeMeridian(CPrimeMeridian const & meridian) { m_primeMeridian = meridian; }

  bool IsNearlyEqual(CHorizontalDatumData const & other, CString & why) const;
  bool IsNearlyEqual(CHorizontalDatumData const & other) const;
  bool operator==(CHorizontalDatumData const & other) const;
  bool IsFullyDefined(DB::CDataSource const * source) const override;
  void CongealInner();
  // The inner objects are attached by the reader, not by value.
  bool ReadStoredValue(CString const &, TWLVariant &) { return false; }

private:
  CEllipsoid m_ellipsoid;
  CPrimeMeridian m_primeMeridian;
};

using CHorizontalDatumDataConcrete = TDataConcrete<CHorizontalDatumData>;
using CHorizontalDatumDataDB = TDataDB<CHorizontalDatumData>;

class VELMORA_API CHorizontalDatum : public THandle<CHorizontalDatumData>
{
public:
  CHorizontalDatum() = default;
  CHorizontalDatum(CHorizontalDatum const &) = default;
  CHorizontalDatum & operator=(CHorizontalDatum const &) = default;
  ~CHorizontalDatum() override;

  CEllipsoid const & GetEllipsoid() const { return Body().GetEllipsoid(); }
  CEllipsoid & GetEllipsoid() { return MutableBody().GetEllipsoid(); }
  void SetEllipsoid(CEllipsoid const & ellipsoid) { MutableBody().SetEllipsoid(ellipsoid); }
  CPrimeMeridian const & GetPrimeMeridian() const { return Body().GetPrimeMeridian(); }
  CPrimeMeridian & GetPrimeMeridian() { return MutableBody().GetPrimeMeridian(); }
  void SetPrimeMeridian(CPrimeMeridian const & meridian) { MutableBody().SetPrimeMeridian(meridian); }

  bool IsNearlyEqual(CHorizontalDatum const & other, CString & why) const
  {
    return Body().IsNearlyEqual(other.Body(), why);
  }
  bool IsNearlyEqual(CHorizontalDatum const & other) const { return Body().IsNearlyEqual(other.Body()); }
  bool operator==(CHorizontalDatum const & other) const { return Body() == other.Body(); }
  bool operator!=(CHorizontalDatum const & other) const { return !(*this == other); }
  void Congeal() override;

private:
  friend class DB::CDataSource;
  explicit CHorizontalDatum(CHorizontalDatumData const & body) : THandle(body) {}
};

} // namespace Velmora::CS
