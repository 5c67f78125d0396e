#include <velmora/refsys/PrimeMeridian.h>

#include <velmora/datasource/SourceLookup_p.h>
#include <velmora/foundation/VelmoraException.h>

namespace Velmora::CS {

using EX::CVelmoraException;

CPrimeMeridianData & CPrimeMeridianData::operator=(CPrimeMeridianData const & other)
{
  CSerializableData::operator=(other);
  m_longitude.AssignQuiet(other.m_longitude);
  return *this;
}

bool CPrimeMeridianData::ToGreenwich(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  out.CopyLocation(in);
  out.GetLon().SetInternal(m_longitude.GetInternal() + in.GetLon().GetInternal());
  return true;
}

bool CPrimeMeridianData::FromGreenwich(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  out.CopyLocation(in);
  out.GetLon().SetInternal(in.GetLon().GetInternal() - m_longitude.GetInternal());
  return true;
}

bool CPrimeMeridianData::IsNearlyEqual(CPrimeMeridianData const & other, CString & why) const
{
  auto const base = IsNearlyEqualBase(other, why);
  if (base != kNearlyEqualBaseUndecided)
    return base == kNearlyEqualBaseSame;
  CString detail;
  if (m_longitude.IsNearlyEqual(other.m_longitude, detail, false))
    return true;
  why += CString(": longitudes do not match ") + detail;
  return false;
}

bool CPrimeMeridianData::IsNearlyEqual(CPrimeMeridianData const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

bool CPrimeMeridianData::operator==(CPrimeMeridianData const & other) const
{
  return CSerializableData::operator==(other) && m_longitude == other.m_longitude &&
         m_longitude.GetUnits() == other.m_longitude.GetUnits();
}

bool CPrimeMeridianData::IsFullyDefined(DB::CDataSource const * source) const
{
  bool const base = CSerializableData::IsFullyDefined(source);
  char const * const location = "CPrimeMeridianData::IsFullyDefined";
  ML::CAngularUnit const & units = m_longitude.GetUnits();
  if (!units.GetIdentifiers().Exists("VM"))
    throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, "AngularUnits(Longitude)");
  if (!DB::detail::SourceHolds(source, units))
    throw CVelmoraException(CVelmoraException::kReferenceNotFound, location, "Longitude AngularUnit");
  return base;
}

bool CPrimeMeridianData::ReadStoredValue(CString const & key, TWLVariant & value)
{
  if (key != CString("longitude"))
    return false;
  // In the value's units, through its range reduction.
  m_longitude.SetValue(value.toDouble());
  return true;
}

CPrimeMeridian::~CPrimeMeridian() = default;

void CPrimeMeridian::Congeal()
{
  m_data.Dereference();
  MutableBody().GetLongitude().GetUnits().Congeal();
}

} // namespace Velmora::CS
