#pragma once
// The bodies of the object frame: the fields every stored object has, and
// the two markers that say who owns a body.
#include <velmora/datasource/sax/CValueHandler.h>
#include <velmora/foundation/CIdentifierCollection.h>

namespace Velmora {

namespace DB {
class CDataSource;
}

class VELMORA_API CSerializableData : public CDataObject
{
public:
  CSerializableData(CString const & name, EObjectType type, long group);
  CSerializableData(CSerializableData const & other) = default;
  ~CSerializableData() override;
  virtual CSerializableData & operator=(CSerializableData const & other);

  virtual void SetObjectType(EObjectType type) { m_objectType = type; }
  virtual CString const & GetName() const { return m_name; }
  virtual void SetName(CString const & name) { m_name = name; }
  virtual CString const & GetRemarks() const { return m_remarks; }
  virtual void SetRemarks(CString const & remarks) { m_remarks = remarks; }
  virtual bool HasIdentifierIn(CSerializableData const & other) const;
  virtual CIdentifierCollection & GetIdentifiers() { return m_identifiers; }
  virtual CIdentifierCollection const & GetIdentifiers() const { return m_identifiers; }
  virtual void SetIdentifiers(CIdentifierCollection const & identifiers) { m_identifiers = identifiers; }
  // Checked before an object is written to a store: the store must hold
  // whatever the object refers to. The base needs a kind and a "VM" code.
  virtual bool IsFullyDefined(DB::CDataSource const * source) const;

  EObjectType GetObjectType() const { return m_objectType; }
  long GetGroupID() const { return m_groupID; }
  void SetGroupID(long group) { m_groupID = group; }
  // "VM" if the object has it, else the issuer as given; raises as GetItem does.
  void GetIssuerAndCode(CString & issuer, CString & code) const;
  CString const & GetIssuerCode(CString const & issuer) const;
  void MarkDeleted() const { m_deleted = true; }
  bool IsMarkedDeleted() const { return m_deleted; }

  eNearlyEqualBaseResult IsNearlyEqualBase(CSerializableData const & other, CString & why) const;
  eNearlyEqualBaseResult IsNearlyEqualBase(CSerializableData const & other) const;

  // Exactly one of the two carries an "EPSG" code: they cannot be the same definition.
  bool EPSGOnOneSideOnly(CSerializableData const & other) const;

  bool operator==(CSerializableData const & other) const;
  bool operator!=(CSerializableData const & other) const { return !(*this == other); }

protected:
  CSerializableData();

private:
  CString m_name;
  CString m_remarks;
  EObjectType m_objectType = kObjectNone;
  long m_groupID = 0;
  CIdentifierCollection m_identifiers;
  mutable bool m_deleted = false;
};

// Marks a body owned by exactly one handle.
class VELMORA_API CSerializableDataConcrete : public virtual CSerializableData
{
public:
  EDataObjectType GetDataObjectType() const override { return kEDataObjectConcrete; }
};

// Marks a body owned by a data source and shared by handles; the XML reader
// fills it by key.
class VELMORA_API CSerializableDataDB : public virtual CSerializableData, public DB::SAX::CValueHandler
{
public:
  EDataObjectType GetDataObjectType() const override { return kEDataObjectDB; }
  void SetValue(CString const & key, TWLVariant & value) override;
  // Read-only for the user: the object came from a published registry.
  bool IsFromSource() const;
};

} // namespace Velmora
