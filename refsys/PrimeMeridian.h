#pragma once
// How far a longitude of zero lies from Greenwich, in degrees east.
#include <velmora/measures/CoordPoints.h>

namespace Velmora::CS {

class VELMORA_API CPrimeMeridianData : public virtual CSerializableData, public TBodyFactory<CPrimeMeridianData>
{
public:
  static constexpr EObjectType kObjectType = kObjectPrimeMeridian;
  static constexpr long kRootGroup = 300;

  CPrimeMeridianData() = default;
  CPrimeMeridianData(CPrimeMeridianData const &) = default;
  virtual CPrimeMeridianData & operator=(CPrimeMeridianData const & other);

  ML::CAngularValue const & GetLongitude() const { return m_longitude; }
  ML::CAngularValue & GetLongitude() { return m_longitude; }

  // Longitudes are shifted as they are, with no range reduction.
  bool ToGreenwich(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const;
  bool FromGreenwich(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const;

  bool IsNearlyEqual(CPrimeMeridianData const & other, CString & why) const;
  bool IsNearlyEqual(CPrimeMeridianData const & other) const;
  bool operator==(CPrimeMeridianData const & other) const;
  bool IsFullyDefined(DB::CDataSource const * source) const override;
  bool ReadStoredValue(CString const & key, TWLVariant & value);

private:
  ML::CAngularValue m_longitude;
};

using CPrimeMeridianDataConcrete = TDataConcrete<CPrimeMeridianData>;
using CPrimeMeridianDataDB = TDataDB<CPrimeMeridianData>;

class VELMORA_API CPrimeMeridian : public THandle<CPrimeMeridianData>
{
public:
  CPrimeMeridian() = default;
  CPrimeMeridian(CPrimeMeridian const &) = default;
  CPrimeMeridian & operator=(CPrimeMeridian const &) = default;
  ~CPrimeMeridian() override;

  ML::CAngularValue const & GetLongitude() const { return Body().GetLongitude(); }
  ML::CAngularValue & GetLongitude() { return MutableBody().GetLongitude(); }
  bool ToGreenwich(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
  {
    return Body().ToGreenwich(in, out);
  }
  bool FromGreenwich(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
  {
    return Body().FromGreenwich(in, out);
  }

  bool IsNearlyEqual(CPrimeMeridian const & other, CString & why) const { return Body().IsNearlyEqual(other.Body(), why); }
  bool IsNearlyEqual(CPrimeMeridian const & other) const { return Body().IsNearlyEqual(other.Body()); }
  bool operator==(CPrimeMeridian const & other) const { return Body() == other.Body(); }
  bool operator!=(CPrimeMeridian const & other) const { return !(*this == other); }
  void Congeal() override;

private:
  friend class DB::CDataSource;
  explicit CPrimeMeridian(CPrimeMeridianData const & body) : THandle(body) {}
};

} // namespace Velmora::CS
