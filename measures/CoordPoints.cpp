#include <velmora/measures/CoordPoints.h>

#include <velmora/datasource/SourceLookup_p.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/Georef_p.h>

namespace Velmora::ML {

using EX::CVelmoraException;

namespace {

CString Location(char const * className, char const * method)
{
  return CString(className) + CString("::") + CString(method);
}

bool ValuesNearlyEqual(CFormattedValue const & a, CFormattedValue const & b, CString & why)
{
  if (a.GetType() == 1)
    return static_cast<CAngularValue const &>(a).IsNearlyEqual(static_cast<CAngularValue const &>(b), why, true);
  return static_cast<CLinearValue const &>(a).IsNearlyEqual(static_cast<CLinearValue const &>(b), why, true);
}

bool ValuesSame(CFormattedValue const & a, CFormattedValue const & b)
{
  if (a.GetType() != b.GetType())
    return false;
  if (a.GetType() == 1)
    return static_cast<CAngularValue const &>(a) == static_cast<CAngularValue const &>(b);
  return static_cast<CLinearValue const &>(a) == static_cast<CLinearValue const &>(b);
}

void AssignValueQuiet(CFormattedValue & to, CFormattedValue const & from)
{
  if (to.GetType() == 1)
    static_cast<CAngularValue &>(to).AssignQuiet(static_cast<CAngularValue const &>(from));
  else
    static_cast<CLinearValue &>(to).AssignQuiet(static_cast<CLinearValue const &>(from));
}

CSerializable const & UnitsOf(CFormattedValue const & value)
{
  if (value.GetType() == 1)
    return static_cast<CAngularValue const &>(value).GetUnits();
  return static_cast<CLinearValue const &>(value).GetUnits();
}

} // namespace

// Shared body

CCoordPointData & CCoordPointData::operator=(CCoordPointData const & other)
{
  CSerializableData::operator=(other);
  m_dimensions = other.m_dimensions;
  return *this;
}

void CCoordPointData::SetDimensions(short dimensions)
{
  if (dimensions != 2 && dimensions != 3)
    throw CVelmoraException(CVelmoraException::kInvalidParameter, "CCoordPointData::SetDimensions");
  m_dimensions = dimensions;
}

void CCoordPointData::ThrowNoThirdDimension(char const * method) const
{
  throw CVelmoraException(CVelmoraException::kNoThirdDimension, Location(Texts().className, method));
}

void CCoordPointData::GetInternals(double & a, double & b, double & c) const
{
  if (m_dimensions == 2)
    ThrowNoThirdDimension("GetInternals");
  a = Value(0).GetInternal();
  b = Value(1).GetInternal();
  c = Value(2).GetInternal();
}

void CCoordPointData::GetInternals(double & a, double & b) const
{
  a = Value(0).GetInternal();
  b = Value(1).GetInternal();
}

void CCoordPointData::SetInternals(double a, double b, double c)
{
  Value(0).SetInternal(a);
  Value(1).SetInternal(b);
  if (m_dimensions == 2)
    ThrowNoThirdDimension("SetInternals");
  Value(2).SetInternal(c);
}

void CCoordPointData::SetInternals(double a, double b)
{
  Value(0).SetInternal(a);
  Value(1).SetInternal(b);
  Value(2).SetInternal(0.0);
}

void CCoordPointData::GetInUnits(double & a, double & b, double & c) const
{
  if (m_dimensions == 2)
    ThrowNoThirdDimension("GetInUnits");
  a = Value(0).GetValue();
  b = Value(1).GetValue();
  c = Value(2).GetValue();
}

void CCoordPointData::GetInUnits(double & a, double & b) const
{
  a = Value(0).GetValue();
  b = Value(1).GetValue();
}

void CCoordPointData::SetInUnits(double a, double b, double c)
{
  Value(0).SetValue(a);
  Value(1).SetValue(b);
  if (m_dimensions == 2)
    ThrowNoThirdDimension("SetInUnits");
  Value(2).SetValue(c);
}

void CCoordPointData::SetInUnits(double a, double b)
{
  Value(0).SetValue(a);
  Value(1).SetValue(b);
  Value(2).SetValue(0.0);
}

double CCoordPointData::ToInternal(int axis, double inUnits) const
{
  CFormattedValue const & value = Value(axis);
  if (value.GetType() == 1)
    return static_cast<CAngularValue const &>(value).GetUnits().ToBaseUnits(inUnits);
  return static_cast<CLinearValue const &>(value).GetUnits().ToBaseUnits(inUnits);
}

bool CCoordPointData::IsNearlyEqual(CCoordPointData const & other, CString & why) const
{
  if (GetType() != other.GetType()) {
    why += CString(": types do not match");
    return false;
  }
  auto const base = IsNearlyEqualBase(other, why);
  if (base != kNearlyEqualBaseUndecided)
    return base == kNearlyEqualBaseSame;
  if (m_dimensions != other.m_dimensions) {
    why += CString(": dimensions do not match");
    return false;
  }
  return FieldsNearlyEqual(other, why);
}

bool CCoordPointData::FieldsNearlyEqual(CCoordPointData const & other, CString & why) const
{
  KindTexts const & texts = Texts();
  for (int axis = 0; axis < m_dimensions; ++axis) {
    CString detail;
    if (!ValuesNearlyEqual(Value(axis), other.Value(axis), detail)) {
      why += CString(": ") + CString(texts.axes[axis].compare) + CString(" coords do not match ") + detail;
      return false;
    }
  }
  return true;
}

bool CCoordPointData::SameFields(CCoordPointData const & other) const
{
  if (!CSerializableData::operator==(other) || m_dimensions != other.m_dimensions ||
      m_stringFormat != other.m_stringFormat || m_location != other.m_location)
    return false;
  for (int axis = 0; axis < 3; ++axis)
    if (!ValuesSame(Value(axis), other.Value(axis)))
      return false;
  return true;
}

bool CCoordPointData::IsFullyDefined(DB::CDataSource const * source) const
{
  CSerializableData::IsFullyDefined(source);
  KindTexts const & texts = Texts();
  CString const location = Location(texts.className, "IsFullyDefined");
  for (int axis = 0; axis < m_dimensions; ++axis) {
    CSerializable const & units = UnitsOf(Value(axis));
    if (!units.GetIdentifiers().Exists("VM"))
      throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, texts.axes[axis].unitsDetail);
    if (!DB::detail::SourceHolds(source, units))
      throw CVelmoraException(CVelmoraException::kReferenceNotFound, location, texts.axes[axis].sourceDetail);
  }
  return true;
}

void CCoordPointData::CopyLocationFrom(CCoordPointData const & other)
{
  CString const location = Location(Texts().className, "CopyLocation");
  if (m_stringFormat != other.m_stringFormat)
    throw CVelmoraException(CVelmoraException::kInvalidValue, location, "String format mismatch");
  if (m_stringFormat != 0) {
    static_cast<CTextPointData &>(*this).SetLocationString(CString(other.m_location));
    return;
  }
  Value(0).SetInternal(other.Value(0).GetInternal());
  Value(1).SetInternal(other.Value(1).GetInternal());
  if (m_dimensions != other.m_dimensions)
    throw CVelmoraException(CVelmoraException::kNoThirdDimension, location);
  if (m_dimensions == 3)
    Value(2).SetInternal(other.Value(2).GetInternal());
}

void CCoordPointData::CopyFormattingFrom(CCoordPointData const & other)
{
  if (m_dimensions != other.m_dimensions)
    throw CVelmoraException(CVelmoraException::kNoThirdDimension, Location(Texts().className, "CopyFormatting"));
  for (int axis = 0; axis < 3; ++axis) {
    double const internal = Value(axis).GetInternal();
    AssignValueQuiet(Value(axis), other.Value(axis));
    Value(axis).SetInternalQuiet(internal);
  }
}

// Points kept as text

void CTextPointData::CheckTextFormat(char const * method) const
{
  if (m_stringFormat == 0)
    throw CVelmoraException(CVelmoraException::kUndefined, Location(Texts().className, method));
}

CString CTextPointData::GetLocationString() const
{
  CheckTextFormat("GetLocationString");
  return CString(m_location);
}

void CTextPointData::SetLocationString(unsigned short const * text)
{
  if (!text)
    throw CVelmoraException(CVelmoraException::kNullPointer, Location(Texts().className, "SetLocationString"));
  CheckTextFormat("SetLocationString");
  m_location = CString(text);
}

// Geodetic

CGeodeticPointData::CGeodeticPointData()
{
  m_lon.SetLabel(CString("Longitude"));
  m_lat.SetLabel(CString("Latitude"));
  m_hgt.SetLabel(CString("Height"));
}

CGeodeticPointData & CGeodeticPointData::operator=(CGeodeticPointData const & other)
{
  CCoordPointData::operator=(other);
  m_stringFormat = other.m_stringFormat;
  m_location = other.m_location;
  m_lon.AssignQuiet(other.m_lon);
  m_lat.AssignQuiet(other.m_lat);
  m_hgt.AssignQuiet(other.m_hgt);
  return *this;
}

CFormattedValue & CGeodeticPointData::Value(int axis)
{
  return axis == 0 ? static_cast<CFormattedValue &>(m_lon) : axis == 1 ? static_cast<CFormattedValue &>(m_lat) : m_hgt;
}

CFormattedValue const & CGeodeticPointData::Value(int axis) const
{
  return const_cast<CGeodeticPointData &>(*this).Value(axis);
}

CCoordPointData::KindTexts const & CGeodeticPointData::Texts() const
{
  static KindTexts const texts = {"CGeodeticPointData",
                                  {{"Lon", "AngularUnits(Longitude)", "Lon Units"},
                                   {"Lat", "AngularUnits(Latitude)", "Lat Units"},
                                   {"Hgt", "LinearUnits(Height)", "Height Units"}}};
  return texts;
}

void CGeodeticPointData::SetStringFormat(int format)
{
  int const before = m_stringFormat;
  m_stringFormat = format;
  // Only Georef has a text here; asking for another reports as its getter does.
  if (format != CGeodeticPoint::kGeoref)
    throw CVelmoraException(CVelmoraException::kUndefined, "CGeodeticPointData::GetLocationString");
  if (before == 0)
    m_location = GetGeorefString();
}

CString CGeodeticPointData::GetLocationString() const
{
  if (m_stringFormat != CGeodeticPoint::kGeoref)
    throw CVelmoraException(CVelmoraException::kUndefined, "CGeodeticPointData::GetLocationString");
  return CString(m_location);
}

void CGeodeticPointData::SetLocationString(unsigned short const * text)
{
  char const * const location = "CGeodeticPointData::SetLocationString";
  if (!text)
    throw CVelmoraException(CVelmoraException::kNullPointer, location);
  if (m_stringFormat != CGeodeticPoint::kGeoref)
    throw CVelmoraException(CVelmoraException::kUndefined, location);
  m_location = CString(text);
  SetGeorefString(CString(text));
}

void CGeodeticPointData::SetGeorefString(CString const & text)
{
  double lon = 0.0;
  double lat = 0.0;
  GeorefToLonLat(text, lon, lat);
  m_lon.SetInternal(lon);
  m_lat.SetInternal(lat);
}

CString CGeodeticPointData::GetGeorefString() const
{
  return LonLatToGeoref(m_lon.GetInternal(), m_lat.GetInternal());
}

bool CGeodeticPointData::ReadStoredValue(CString const & key, TWLVariant & value)
{
  if (key == CString("stringformat"))
    m_stringFormat = value.toString() == CString("Georef") ? 1 : 0;
  else if (key == CString("locationstring"))
    SetLocationString(value.toString());
  else
    return false;
  return true;
}

// Projected

CProjectedPointData::CProjectedPointData()
{
  m_east.SetLabel(CString("Easting"));
  m_north.SetLabel(CString("Northing"));
  m_hgt.SetLabel(CString("Height"));
}

CProjectedPointData & CProjectedPointData::operator=(CProjectedPointData const & other)
{
  CCoordPointData::operator=(other);
  m_stringFormat = other.m_stringFormat;
  m_location = other.m_location;
  m_east.AssignQuiet(other.m_east);
  m_north.AssignQuiet(other.m_north);
  m_hgt.AssignQuiet(other.m_hgt);
  return *this;
}

CFormattedValue & CProjectedPointData::Value(int axis)
{
  return axis == 0 ? m_east : axis == 1 ? m_north : m_hgt;
}

CFormattedValue const & CProjectedPointData::Value(int axis) const
{
  return axis == 0 ? m_east : axis == 1 ? m_north : m_hgt;
}

CCoordPointData::KindTexts const & CProjectedPointData::Texts() const
{
  static KindTexts const texts = {"CProjectedPointData",
                                  {{"East", "LinearUnits(East)", "East Units"},
                                   {"North", "LinearUnits(North)", "North Units"},
                                   {"Hgt", "LinearUnits(Height)", "Height Units"}}};
  return texts;
}

bool CProjectedPointData::FieldsNearlyEqual(CCoordPointData const & other, CString & why) const
{
  if (m_stringFormat != other.GetStringFormatValue()) {
    why += CString(": string formats do not match");
    return false;
  }
  return CCoordPointData::FieldsNearlyEqual(other, why);
}

bool CProjectedPointData::ReadStoredValue(CString const & key, TWLVariant & value)
{
  if (key == CString("stringformat")) {
    CString const text = value.toString();
    m_stringFormat = text == CString("MGRS") ? 1 : text == CString("USNG") ? 2 : 0;
  } else if (key == CString("locationstring")) {
    SetLocationString(value.toString());
  } else {
    return false;
  }
  return true;
}

// Cartesian

CCartesianPointData & CCartesianPointData::operator=(CCartesianPointData const & other)
{
  CCoordPointData::operator=(other);
  m_x.AssignQuiet(other.m_x);
  m_y.AssignQuiet(other.m_y);
  m_z.AssignQuiet(other.m_z);
  return *this;
}

CFormattedValue & CCartesianPointData::Value(int axis)
{
  return axis == 0 ? m_x : axis == 1 ? m_y : m_z;
}

CFormattedValue const & CCartesianPointData::Value(int axis) const
{
  return axis == 0 ? m_x : axis == 1 ? m_y : m_z;
}

CCoordPointData::KindTexts const & CCartesianPointData::Texts() const
{
  static KindTexts const texts = {"CCartesianPointData",
                                  {{"X", "LinearUnits(X)", "X Units"},
                                   {"Y", "LinearUnits(Y)", "Y Units"},
                                   {"Z", "LinearUnits(Z)", "Z Units"}}};
  return texts;
}

// Handles

CCoordPoint::~CCoordPoint() = default;

CCoordPoint & CCoordPoint::operator=(CCoordPoint const & other)
{
  if (&other != this)
    GetCoordPointData() = other.GetCoordPointData();
  return *this;
}

bool CCoordPoint::IsNearlyEqual(CCoordPoint const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

bool CCoordPoint::operator==(CCoordPoint const & other) const
{
  return CSerializable::operator==(other) && GetDimensions() == other.GetDimensions();
}


CGeodeticPoint::CGeodeticPoint(FormatOption format, unsigned short const * text)
{
  // Format 0 is the default already; only Georef has a text to set.
  if (format != kNone)
    SetStringFormat(format);
  if (text)
    SetLocationString(text);
}

CProjectedPoint::CProjectedPoint(FormatOption format, unsigned short const * text)
{
  SetStringFormat(format);
  if (text)
    SetLocationString(text);
}

// Factory

CCoordPoint * CCoordPointFactory::CreatePoint(ECoordPointType type, short dimensions)
{
  switch (type) {
  case kCartesianPoint: return new CCartesianPoint(dimensions);
  case kGeodeticPoint: return new CGeodeticPoint(dimensions);
  case kProjectedPoint: return new CProjectedPoint(dimensions);
  }
  throw CVelmoraException(CVelmoraException::kClassNotImplemented, "CCoordPointFactory::CreatePoint");
}

CCoordPoint * CCoordPointFactory::CreatePoint(CCoordPoint const & source, short dimensions)
{
  CCoordPoint * point = nullptr;
  switch (source.GetType()) {
  case kCartesianPoint:
    point = new CCartesianPoint(static_cast<CCartesianPoint const &>(source));
    break;
  case kGeodeticPoint:
    point = new CGeodeticPoint(static_cast<CGeodeticPoint const &>(source));
    break;
  case kProjectedPoint:
    point = new CProjectedPoint(static_cast<CProjectedPoint const &>(source));
    break;
  default:
    throw CVelmoraException(CVelmoraException::kClassNotImplemented, "CCoordPointFactory::CreatePoint");
  }
  if (point->GetDimensions() != dimensions)
    point->SetDimensions(dimensions);
  return point;
}

} // namespace Velmora::ML
