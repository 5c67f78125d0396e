#include <velmora/foundation/CIdentifierCollection.h>

#include <velmora/foundation/VelmoraException.h>

#include <iterator>

namespace Velmora {

using EX::CVelmoraException;

CDataObject::~CDataObject() = default;

CIdentifierCollection::~CIdentifierCollection() = default;

CIdentifierCollection & CIdentifierCollection::operator=(CIdentifierCollection const & other)
{
  m_items = other.m_items;
  return *this;
}

void CIdentifierCollection::Clear() { m_items.clear(); }

bool CIdentifierCollection::Exists(CString const & issuer) const
{
  return !issuer.isEmpty() && m_items.count(issuer) != 0;
}

void CIdentifierCollection::Remove(CString const & issuer)
{
  char const * const location = "CIdentifierCollection::Remove";
  if (issuer.isEmpty())
    throw CVelmoraException(CVelmoraException::kInvalidParameter, location);
  if (m_items.erase(issuer) == 0)
    throw CVelmoraException(CVelmoraException::kItemNotFound, location, issuer);
}

void CIdentifierCollection::Add(CString const & issuer, CString const & code)
{
  if (!m_items.emplace(issuer, code).second)
    throw CVelmoraException(CVelmoraException::kItemExists, "CIdentifierCollection::Add", issuer);
}

CString const & CIdentifierCollection::GetItem(CString const & issuer) const
{
  char const * const location = "CIdentifierCollection::GetItem";
  if (issuer.isEmpty())
    throw CVelmoraException(CVelmoraException::kInvalidParameter, location);
  auto const it = m_items.find(issuer);
  if (it == m_items.end())
    throw CVelmoraException(CVelmoraException::kItemNotFound, location, issuer);
  return it->second;
}

CIdentifierCollection::Map::const_iterator CIdentifierCollection::At(long index, char const * location) const
{
  if (index < 0 || index >= Count())
    throw CVelmoraException(CVelmoraException::kIndexOutOfRange, location);
  return std::next(m_items.begin(), index);
}

void CIdentifierCollection::GetItem(long index, CString & issuer, CString & code) const
{
  auto const it = At(index, "CIdentifierCollection::GetItem");
  issuer = it->first;
  code = it->second;
}

void CIdentifierCollection::GetItem(long index, unsigned short const ** issuer, unsigned short const ** code) const
{
  auto const it = At(index, "CIdentifierCollection::GetItem");
  if (issuer)
    *issuer = it->first;
  if (code)
    *code = it->second;
}

void CIdentifierCollection::SetItem(CString const & issuer, CString const & code)
{
  auto const it = m_items.find(issuer);
  if (issuer.isEmpty() || it == m_items.end())
    throw CVelmoraException(CVelmoraException::kItemNotFound, "CIdentifierCollection::SetItem", issuer);
  it->second = code;
}

long CIdentifierCollection::Count() const { return static_cast<long>(m_items.size()); }

bool CIdentifierCollection::HasIdentifierIn(CIdentifierCollection const & other) const
{
  if (m_items.empty() || other.m_items.empty())
    return false;
  auto const & first = *m_items.begin();
  auto const there = other.m_items.find(first.first);
  return there != other.m_items.end() && there->second == first.second;
}

} // namespace Velmora
