#pragma once
// CSerializable: root of every handle. A handle is small and polymorphic; its
// fields live in a body (see CDataObjectPtr.h for who owns which body).
// Const members read through the const body, setters through the non-const
// one, and so take a private copy of a shared body.
#include <velmora/foundation/CSerializableData.h>

namespace Velmora {

class VELMORA_API CSerializable
{
public:
  virtual ~CSerializable();

  virtual bool HasIdentifierIn(CSerializable const & other) const;
  virtual long GetGroupID() const;
  virtual EObjectType GetObjectType() const;
  // Make the whole tree below this handle concrete, so that it outlives its data source.
  virtual void Congeal() = 0;

  CString const & GetName() const { return GetData().GetName(); }
  void SetName(CString const & name) { GetData().SetName(name); }
  CString const & GetRemarks() const { return GetData().GetRemarks(); }
  void SetRemarks(CString const & remarks) { GetData().SetRemarks(remarks); }
  CIdentifierCollection & GetIdentifiers() { return GetData().GetIdentifiers(); }
  CIdentifierCollection const & GetIdentifiers() const { return GetData().GetIdentifiers(); }
  void SetIdentifiers(CIdentifierCollection const & identifiers) { GetData().SetIdentifiers(identifiers); }
  void SetGroupID(long group) { GetData().SetGroupID(group); }
  void GetIssuerAndCode(CString & issuer, CString & code) const { GetData().GetIssuerAndCode(issuer, code); }
  CString const & GetIssuerCode(CString const & issuer) const { return GetData().GetIssuerCode(issuer); }
  bool IsFullyDefined(DB::CDataSource const * source) const { return GetData().IsFullyDefined(source); }

  eNearlyEqualBaseResult IsNearlyEqualBase(CSerializable const & other, CString & why) const
  {
    return GetData().IsNearlyEqualBase(other.GetData(), why);
  }
  eNearlyEqualBaseResult IsNearlyEqualBase(CSerializable const & other) const
  {
    return GetData().IsNearlyEqualBase(other.GetData());
  }

  // Name-level fields only; each family compares its own fields.
  bool operator==(CSerializable const & other) const { return GetData() == other.GetData(); }
  bool operator!=(CSerializable const & other) const { return !(*this == other); }

protected:
  CSerializable() = default;
  CSerializable(CSerializable const &) = default;
  CSerializable & operator=(CSerializable const &) = default;

private:
  // The store reads and copies bodies of every family through this.
  friend class DB::CDataSource;
  virtual CSerializableData & GetData() = 0;
  virtual CSerializableData const & GetData() const = 0;

};

} // namespace Velmora
