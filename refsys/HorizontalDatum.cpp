#include <velmora/refsys/HorizontalDatum.h>

#include <velmora/datasource/SourceLookup_p.h>
#include <velmora/foundation/VelmoraException.h>

namespace Velmora::CS {

using EX::CVelmoraException;

CHorizontalDatumData & CHorizontalDatumData::operator=(CHorizontalDatumData const & other)
{
  CSerializableData::operator=(other);
  m_ellipsoid = other.m_ellipsoid;
  m_primeMeridian = other.m_primeMeridian;
  return *this;
}

bool CHorizontalDatumData::IsNearlyEqual(CHorizontalDatumData const & other, CString & why) const
{
  auto const base = IsNearlyEqualBase(other, why);
  if (base != kNearlyEqualBaseUndecided)
    return base == kNearlyEqualBaseSame;
  if (EPSGOnOneSideOnly(other)) {
    why += CString(": EPSG code exists for one horizontal datum but not the other");
    return false;
  }
  CString detail;
  if (!m_ellipsoid.IsNearlyEqual(other.m_ellipsoid, detail)) {
    why += CString(": ellipsoids do not match ") + detail;
    return false;
  }
  if (!m_primeMeridian.IsNearlyEqual(other.m_primeMeridian, detail)) {
    why += CString(": prime meridians do not match ") + detail;
    return false;
  }
  return true;
}

bool CHorizontalDatumData::IsNearlyEqual(CHorizontalDatumData const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

bool CHorizontalDatumData::operator==(CHorizontalDatumData const & other) const
{
  return CSerializableData::operator==(other) && m_ellipsoid == other.m_ellipsoid &&
         m_primeMeridian == other.m_primeMeridian;
}

bool CHorizontalDatumData::IsFullyDefined(DB::CDataSource const * source) const
{
  bool const base = CSerializableData::IsFullyDefined(source);
  char const * const location = "CHorizontalDatumData::IsFullyDefined";
  struct Inner
  {
    CSerializable const & object;
    char const * name;
  };
  for (Inner const inner : {Inner{m_ellipsoid, "Ellipsoid"}, Inner{m_primeMeridian, "PrimeMeridian"}}) {
    if (!inner.object.GetIdentifiers().Exists("VM"))
      throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, inner.name);
    if (!DB::detail::SourceHolds(source, inner.object))
      throw CVelmoraException(CVelmoraException::kReferenceNotFound, location, inner.name);
  }
  return base;
}

void CHorizontalDatumData::CongealInner()
{
  m_ellipsoid.Congeal();
  m_primeMeridian.Congeal();
}

CHorizontalDatum::~CHorizontalDatum() = default;

void CHorizontalDatum::Congeal()
{
  m_data.Dereference();
  MutableBody().CongealInner();
}

} // namespace Velmora::CS
