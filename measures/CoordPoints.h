#pragma once
// Coordinate points: two or three values in one of three shapes, geodetic
// (longitude, latitude, height), projected (easting, northing, height) or
// cartesian (X, Y, Z). As a location a point carries numbers; as a stored
// style it says which units, labels and formats coordinates are shown in.
//
// Internal units are degrees and metres (GetInternals, SetInternals); the
// "in units" forms speak the units of the point's own values.
#include <velmora/foundation/Family.h>
#include <velmora/measures/Values.h>

namespace Velmora::ML {

// Fixed to int: a type outside the three is a value callers may pass, and is refused.
enum ECoordPointType : int { kCartesianPoint = 0, kGeodeticPoint = 1, kProjectedPoint = 2 };

// The fields and rules all three point bodies share. The numbers live in the
// values of each kind, reached through Value(axis).
class VELMORA_API CCoordPointData : public virtual CSerializableData
{
public:
  // Texts that differ by kind: the class label of failures and each axis's names.
  struct AxisTexts
  {
    char const * compare;      // ": <compare> coords do not match "
    char const * unitsDetail;  // code 25 details
    char const * sourceDetail; // code 26 details
  };
  struct KindTexts
  {
    char const * className;
    AxisTexts axes[3];
  };

  virtual CCoordPointData & operator=(CCoordPointData const & other);
  virtual short GetDimensions() const { return m_dimensions; }
  virtual void SetDimensions(short dimensions);
  virtual ECoordPointType GetType() const = 0;
  virtual CFormattedValue & Value(int axis) = 0;
  virtual CFormattedValue const & Value(int axis) const = 0;

  void GetInternals(double & a, double & b, double & c) const;
  void GetInternals(double & a, double & b) const;
  void SetInternals(double a, double b, double c);
  void SetInternals(double a, double b);
  void GetInUnits(double & a, double & b, double & c) const;
  void GetInUnits(double & a, double & b) const;
  void SetInUnits(double a, double b, double c);
  void SetInUnits(double a, double b);

  // Which text form a geodetic or projected point is kept in; 0 for numbers.
  int GetStringFormatValue() const { return m_stringFormat; }

  // Types, dimensions, then the kind's own comparison.
  bool IsNearlyEqual(CCoordPointData const & other, CString & why) const;
  bool IsFullyDefined(DB::CDataSource const * source) const override;

  // The internal value of one axis from a number in that axis's units.
  double ToInternal(int axis, double inUnits) const;
  // Exact equality of kind and every field.
  bool Equals(CCoordPointData const & other) const { return GetType() == other.GetType() && SameFields(other); }

protected:
  CCoordPointData() = default;
  CCoordPointData(CCoordPointData const &) = default;

  virtual KindTexts const & Texts() const = 0;
  // The kind's comparison after types and dimensions agree.
  virtual bool FieldsNearlyEqual(CCoordPointData const & other, CString & why) const;
  bool SameFields(CCoordPointData const & other) const;
  void CopyLocationFrom(CCoordPointData const & other);
  void CopyFormattingFrom(CCoordPointData const & other);
  [[noreturn]] void ThrowNoThirdDimension(char const * method) const;

  short m_dimensions = 3;
  int m_stringFormat = 0;
  QString m_location;
};

// Geodetic and projected points may be kept as a location text instead of numbers.
class VELMORA_API CTextPointData : public CCoordPointData
{
public:
  virtual CString GetLocationString() const;
  virtual void SetLocationString(unsigned short const * text);
  void SetLocationString(CString const & text) { SetLocationString(static_cast<unsigned short const *>(text)); }

protected:
  CTextPointData() = default;
  CTextPointData(CTextPointData const &) = default;
  void CheckTextFormat(char const * method) const;
};

class VELMORA_API CGeodeticPointData : public CTextPointData, public TBodyFactory<CGeodeticPointData>
{
public:
  static constexpr EObjectType kObjectType = kObjectGeodeticPoint;
  static constexpr long kRootGroup = 720;

  CGeodeticPointData();
  CGeodeticPointData(CGeodeticPointData const & other) = default;
  virtual CGeodeticPointData & operator=(CGeodeticPointData const & other);

  ECoordPointType GetType() const override { return kGeodeticPoint; }
  CFormattedValue & Value(int axis) override;
  CFormattedValue const & Value(int axis) const override;

  CAngularValue m_lon;
  CAngularValue m_lat;
  CLinearValue m_hgt;

  int GetStringFormat() const { return m_stringFormat; }
  // Stores the format; only Georef (1) has a location text here.
  void SetStringFormat(int format);
  CString GetLocationString() const override;
  void SetLocationString(unsigned short const * text) override;
  using CTextPointData::SetLocationString;
  void SetGeorefString(CString const & text);
  CString GetGeorefString() const;

  void CopyLocation(CGeodeticPointData const & other) { CopyLocationFrom(other); }
  void CopyFormatting(CGeodeticPointData const & other) { CopyFormattingFrom(other); }
  bool operator==(CGeodeticPointData const & other) const { return SameFields(other); }
  bool ReadStoredValue(CString const & key, TWLVariant & value);

protected:
  KindTexts const & Texts() const override;
};

class VELMORA_API CProjectedPointData : public CTextPointData, public TBodyFactory<CProjectedPointData>
{
public:
  static constexpr EObjectType kObjectType = kObjectProjectedPoint;
  static constexpr long kRootGroup = 730;

  CProjectedPointData();
  CProjectedPointData(CProjectedPointData const & other) = default;
  virtual CProjectedPointData & operator=(CProjectedPointData const & other);

  ECoordPointType GetType() const override { return kProjectedPoint; }
  CFormattedValue & Value(int axis) override;
  CFormattedValue const & Value(int axis) const override;

  CLinearValue m_east;
  CLinearValue m_north;
  CLinearValue m_hgt;

  int GetStringFormat() const { return m_stringFormat; }
  void SetStringFormat(int format) { m_stringFormat = format; }

  void CopyLocation(CProjectedPointData const & other) { CopyLocationFrom(other); }
  void CopyFormatting(CProjectedPointData const & other) { CopyFormattingFrom(other); }
  bool operator==(CProjectedPointData const & other) const { return SameFields(other); }
  bool ReadStoredValue(CString const & key, TWLVariant & value);

protected:
  KindTexts const & Texts() const override;
  bool FieldsNearlyEqual(CCoordPointData const & other, CString & why) const override;
};

class VELMORA_API CCartesianPointData : public CCoordPointData, public TBodyFactory<CCartesianPointData>
{
public:
  static constexpr EObjectType kObjectType = kObjectCartesianPoint;
  static constexpr long kRootGroup = 710;

  CCartesianPointData() = default;
  CCartesianPointData(CCartesianPointData const & other) = default;
  virtual CCartesianPointData & operator=(CCartesianPointData const & other);

  ECoordPointType GetType() const override { return kCartesianPoint; }
  CFormattedValue & Value(int axis) override;
  CFormattedValue const & Value(int axis) const override;

  CLinearValue m_x;
  CLinearValue m_y;
  CLinearValue m_z;

  void CopyLocation(CCartesianPointData const & other) { CopyLocationFrom(other); }
  void CopyFormatting(CCartesianPointData const & other) { CopyFormattingFrom(other); }
  bool operator==(CCartesianPointData const & other) const { return SameFields(other); }
  bool ReadStoredValue(CString const &, TWLVariant &) { return false; }

protected:
  KindTexts const & Texts() const override;
};

using CGeodeticPointDataConcrete = TDataConcrete<CGeodeticPointData>;
using CGeodeticPointDataDB = TDataDB<CGeodeticPointData>;
using CProjectedPointDataConcrete = TDataConcrete<CProjectedPointData>;
using CProjectedPointDataDB = TDataDB<CProjectedPointData>;
using CCartesianPointDataConcrete = TDataConcrete<CCartesianPointData>;
using CCartesianPointDataDB = TDataDB<CCartesianPointData>;

// The abstract point handle.
class VELMORA_API CCoordPoint : public CSerializable
{
public:
  ~CCoordPoint() override;

  // The frame's fields and the dimensions only; typed handles assign the whole.
  virtual CCoordPoint & operator=(CCoordPoint const & other);
  virtual short GetDimensions() const { return GetCoordPointData().GetDimensions(); }
  virtual void SetDimensions(short dimensions) { GetCoordPointData().SetDimensions(dimensions); }
  virtual ECoordPointType GetType() const { return GetCoordPointData().GetType(); }
  virtual void GetInternals(double & a, double & b, double & c) const { GetCoordPointData().GetInternals(a, b, c); }
  virtual void GetInternals(double & a, double & b) const { GetCoordPointData().GetInternals(a, b); }
  virtual void SetInternals(double a, double b, double c) { GetCoordPointData().SetInternals(a, b, c); }
  virtual void SetInternals(double a, double b) { GetCoordPointData().SetInternals(a, b); }
  virtual void GetInUnits(double & a, double & b, double & c) const { GetCoordPointData().GetInUnits(a, b, c); }
  virtual void GetInUnits(double & a, double & b) const { GetCoordPointData().GetInUnits(a, b); }
  virtual void SetInUnits(double a, double b, double c) { GetCoordPointData().SetInUnits(a, b, c); }
  virtual void SetInUnits(double a, double b) { GetCoordPointData().SetInUnits(a, b); }

  bool IsNearlyEqual(CCoordPoint const & other, CString & why) const
  {
    return GetCoordPointData().IsNearlyEqual(other.GetCoordPointData(), why);
  }
  bool IsNearlyEqual(CCoordPoint const & other) const;
  // Name level and dimensions.
  bool operator==(CCoordPoint const & other) const;
  bool operator!=(CCoordPoint const & other) const { return !(*this == other); }

  // The body, for the library's own readers of points (styles, collections).
  CCoordPointData const & PointData() const { return GetCoordPointData(); }

protected:
  CCoordPoint() = default;
  CCoordPoint(CCoordPoint const &) = default;

private:
  virtual CCoordPointData const & GetCoordPointData() const = 0;
  virtual CCoordPointData & GetCoordPointData() = 0;
};

// What the three typed point handles share.
template <class Data>
class TPointHandle : public THandle<Data, CCoordPoint>
{
public:
  using CCoordPoint::IsNearlyEqual;
  using CCoordPoint::operator==;
  using CCoordPoint::operator!=;

  bool IsNearlyEqual(TPointHandle const & other, CString & why) const
  {
    return this->Body().IsNearlyEqual(other.Body(), why);
  }
  bool IsNearlyEqual(TPointHandle const & other) const
  {
    CString why;
    return IsNearlyEqual(other, why);
  }
  // Take the other's location, keep this point's formatting.
  void CopyLocation(TPointHandle const & other) { this->MutableBody().CopyLocation(other.Body()); }
  // Take the other's units, labels and formats, keep this point's numbers.
  void CopyFormatting(TPointHandle const & other) { this->MutableBody().CopyFormatting(other.Body()); }

  TPointHandle() = default;
  TPointHandle(TPointHandle const &) = default;
  TPointHandle & operator=(TPointHandle const &) = default;
  explicit TPointHandle(short dimensions) { this->MutableBody().SetDimensions(dimensions); }
  TPointHandle(double a, double b)
  {
    this->MutableBody().SetDimensions(2);
    this->MutableBody().SetInternals(a, b);
  }
  TPointHandle(double a, double b, double c) { this->MutableBody().SetInternals(a, b, c); }

protected:
  explicit TPointHandle(Data const & body) : THandle<Data, CCoordPoint>(body) {}

private:
  CCoordPointData const & GetCoordPointData() const override { return this->Body(); }
  CCoordPointData & GetCoordPointData() override { return this->MutableBody(); }
};

// Geodetic and projected handles may keep their location as text.
template <class Data, class FormatOption>
class TTextPointHandle : public TPointHandle<Data>
{
public:
  using TPointHandle<Data>::TPointHandle;

  FormatOption GetStringFormat() const { return static_cast<FormatOption>(this->Body().GetStringFormat()); }
  void SetStringFormat(FormatOption format) { this->MutableBody().SetStringFormat(format); }
  CString GetLocationString() const { return this->Body().GetLocationString(); }
  void SetLocationString(unsigned short const * text) { this->MutableBody().SetLocationString(text); }
  void SetLocationString(CString const & text) { this->MutableBody().SetLocationString(text); }
};

enum EGeodeticFormatOption { kGeodeticFormatNone = 0, kGeodeticFormatGeoref = 1 };
enum EProjectedFormatOption { kProjectedFormatNone = 0, kProjectedFormatMGRS = 1, kProjectedFormatUSNG = 2 };

class VELMORA_API CGeodeticPoint : public TTextPointHandle<CGeodeticPointData, EGeodeticFormatOption>
{
public:
  using FormatOption = EGeodeticFormatOption;
  static constexpr FormatOption kNone = kGeodeticFormatNone;
  static constexpr FormatOption kGeoref = kGeodeticFormatGeoref;

  using TTextPointHandle::TTextPointHandle;
  CGeodeticPoint(FormatOption format, unsigned short const * text);
  using TPointHandle::operator=;
  using CCoordPoint::operator=;

  CAngularValue const & GetLon() const { return Body().m_lon; }
  CAngularValue & GetLon() { return MutableBody().m_lon; }
  CAngularValue const & GetLat() const { return Body().m_lat; }
  CAngularValue & GetLat() { return MutableBody().m_lat; }
  CLinearValue const & GetHgt() const { return Body().m_hgt; }
  CLinearValue & GetHgt() { return MutableBody().m_hgt; }

private:
  friend class DB::CDataSource;
  explicit CGeodeticPoint(CGeodeticPointData const & body) : TTextPointHandle(body) {}
};

class VELMORA_API CProjectedPoint : public TTextPointHandle<CProjectedPointData, EProjectedFormatOption>
{
public:
  using FormatOption = EProjectedFormatOption;
  static constexpr FormatOption kNone = kProjectedFormatNone;
  static constexpr FormatOption kMGRS = kProjectedFormatMGRS;
  static constexpr FormatOption kUSNG = kProjectedFormatUSNG;

  using TTextPointHandle::TTextPointHandle;
  CProjectedPoint(FormatOption format, unsigned short const * text);
  using TPointHandle::operator=;
  using CCoordPoint::operator=;

  CLinearValue const & GetEast() const { return Body().m_east; }
  CLinearValue & GetEast() { return MutableBody().m_east; }
  CLinearValue const & GetNorth() const { return Body().m_north; }
  CLinearValue & GetNorth() { return MutableBody().m_north; }
  CLinearValue const & GetHgt() const { return Body().m_hgt; }
  CLinearValue & GetHgt() { return MutableBody().m_hgt; }

private:
  friend class DB::CDataSource;
  explicit CProjectedPoint(CProjectedPointData const & body) : TTextPointHandle(body) {}
};

class VELMORA_API CCartesianPoint : public TPointHandle<CCartesianPointData>
{
public:
  using TPointHandle::TPointHandle;
  using TPointHandle::operator=;
  using CCoordPoint::operator=;

  CLinearValue const & GetX() const { return Body().m_x; }
  CLinearValue & GetX() { return MutableBody().m_x; }
  CLinearValue const & GetY() const { return Body().m_y; }
  CLinearValue & GetY() { return MutableBody().m_y; }
  CLinearValue const & GetZ() const { return Body().m_z; }
  CLinearValue & GetZ() { return MutableBody().m_z; }

private:
  friend class DB::CDataSource;
  explicit CCartesianPoint(CCartesianPointData const & body) : TPointHandle(body) {}
};

class VELMORA_API CCoordPointFactory
{
public:
  // A new point of that kind; the caller owns it.
  static CCoordPoint * CreatePoint(ECoordPointType type, short dimensions);
  // A new point of the source's kind, assigned from it, with these dimensions.
  static CCoordPoint * CreatePoint(CCoordPoint const & source, short dimensions);
};

} // namespace Velmora::ML
