#include <velmora/foundation/CSerializableData.h>

#include <velmora/foundation/VelmoraException.h>

namespace Velmora {

using EX::CVelmoraException;

namespace {
CString const kVM("VM");
CString const kWKT("WKT");

// -1 if some issuer of `a` that `b` also holds (other than VM and WKT) has another code.
bool CodesDiffer(CIdentifierCollection const & a, CIdentifierCollection const & b)
{
  for (auto const & [issuer, code] : a.Items()) {
    if (issuer == kVM || issuer == kWKT)
      continue;
    auto const & other = b.Items();
    auto const there = other.find(issuer);
    if (there != other.end() && there->second != code)
      return true;
  }
  return false;
}
} // namespace

CSerializableData::CSerializableData() = default;

CSerializableData::CSerializableData(CString const & name, EObjectType type, long group)
  : m_name(name), m_objectType(type), m_groupID(group)
{
}

CSerializableData::~CSerializableData() = default;

CSerializableData & CSerializableData::operator=(CSerializableData const & other)
{
  m_name = other.m_name;
  m_remarks = other.m_remarks;
  m_objectType = other.m_objectType;
  m_groupID = other.m_groupID;
  m_identifiers = other.m_identifiers;
  return *this;
}

bool CSerializableData::HasIdentifierIn(CSerializableData const & other) const
{
  return m_identifiers.HasIdentifierIn(other.m_identifiers);
}

bool CSerializableData::IsFullyDefined(DB::CDataSource const *) const
{
  char const * const location = "CSerialiable::IsFullyDefined";
  if (m_objectType == kObjectNone)
    throw CVelmoraException(CVelmoraException::kClassNotImplemented, location);
  if (!m_identifiers.Exists(kVM))
    throw CVelmoraException(CVelmoraException::kVMIdentifierRequired, location, kVM);
  return true;
}

void CSerializableData::GetIssuerAndCode(CString & issuer, CString & code) const
{
  if (m_identifiers.Exists(kVM))
    issuer = kVM;
  code = m_identifiers.GetItem(issuer);
}

CString const & CSerializableData::GetIssuerCode(CString const & issuer) const
{
  return m_identifiers.GetItem(issuer);
}

eNearlyEqualBaseResult CSerializableData::IsNearlyEqualBase(CSerializableData const & other, CString & why) const
{
  if (&other == this)
    return kNearlyEqualBaseSame;
  if (CodesDiffer(other.m_identifiers, m_identifiers) || CodesDiffer(m_identifiers, other.m_identifiers)) {
    why += CString(": Identifier codes do not match");
    return kNearlyEqualBaseDifferent;
  }
  return kNearlyEqualBaseUndecided;
}

eNearlyEqualBaseResult CSerializableData::IsNearlyEqualBase(CSerializableData const & other) const
{
  CString ignored;
  return IsNearlyEqualBase(other, ignored);
}

bool CSerializableData::EPSGOnOneSideOnly(CSerializableData const & other) const
{
  CString const epsg("EPSG");
  return m_identifiers.Exists(epsg) != other.m_identifiers.Exists(epsg);
}

bool CSerializableData::operator==(CSerializableData const & other) const
{
  return m_objectType == other.m_objectType && m_name == other.m_name && m_remarks == other.m_remarks &&
         m_identifiers == other.m_identifiers && m_groupID == other.m_groupID;
}

void CSerializableDataDB::SetValue(CString const & key, TWLVariant & value)
{
  if (key == CString("remarks"))
    SetRemarks(value.toString());
}

bool CSerializableDataDB::IsFromSource() const
{
  for (auto const & [issuer, code] : GetIdentifiers().Items()) {
    if (issuer == CString("TWL") || issuer == CString("EPSG") || issuer == CString("ERMapper") ||
        issuer.startsWith(QStringLiteral("CS")))
      return true;
  }
  return false;
}

} // namespace Velmora
