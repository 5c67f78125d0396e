#pragma once
// Issuer and code pairs of an object: at most one code per issuer, kept in
// issuer order. "VM" marks the library's own objects, "EPSG" that registry.
#include <velmora/foundation/CDataObject.h>

#include <map>

namespace Velmora {

class VELMORA_API CIdentifierCollection : public CDataObject
{
public:
  CIdentifierCollection() = default;
  CIdentifierCollection(CIdentifierCollection const & other) = default;

  EDataObjectType GetDataObjectType() const override { return kEDataObjectConcrete; }
  ~CIdentifierCollection() override;
  virtual CIdentifierCollection & operator=(CIdentifierCollection const & other);

  virtual void Clear();
  virtual bool Exists(CString const & issuer) const;
  virtual void Remove(CString const & issuer);
  virtual void Add(CString const & issuer, CString const & code);
  virtual CString const & GetItem(CString const & issuer) const;
  virtual void GetItem(long index, CString & issuer, CString & code) const;
  virtual void GetItem(long index, unsigned short const ** issuer, unsigned short const ** code) const;
  virtual void SetItem(CString const & issuer, CString const & code);
  virtual long Count() const;
  // Only the first pair here, in issuer order, decides.
  virtual bool HasIdentifierIn(CIdentifierCollection const & other) const;

  bool operator==(CIdentifierCollection const & other) const { return m_items == other.m_items; }
  bool operator!=(CIdentifierCollection const & other) const { return !(*this == other); }

  using Map = std::map<CString, CString>;
  Map const & Items() const { return m_items; }

private:
  Map::const_iterator At(long index, char const * location) const;

  Map m_items;
};

} // namespace Velmora
