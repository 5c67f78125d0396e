#pragma once
// Parameter collections: the named, typed values that projections, datum
// shifts, height models and math transforms carry, each item with a set
// state, and a change event for the owner of the collection.
//
// CParameterCollection is a handle over a CParameterCollectionData body, by
// the rules of CDataObjectPtr: a concrete body is private to its handle, a
// database body is a read-only image of the data file shared by every handle
// over it, and the first write through a handle takes a concrete copy.
#include <velmora/foundation/CDataObjectPtr.h>
#include <velmora/measures/Values.h>

#include <cstddef>
#include <map>
#include <variant>
#include <vector>

namespace Velmora {

namespace DB {
class CDataSource;
}

// Hears of changes to a collection: `name` is the parameter that was set,
// or empty when a held angular or linear value changed by itself.
// The name passed to OnChange when no single parameter changed.
inline constexpr unsigned short kNoParameterName[] = {0};

class VELMORA_API CParameterCollectionEvent
{
public:
  virtual ~CParameterCollectionEvent();
  virtual void OnChange(unsigned short const * name) = 0;
};

// One typed value. The value lives in the parameter itself, so a collection
// costs one allocation per item (its map node) and no more.
class VELMORA_API CParameter
{
public:
  enum Type {
    kUndetermined = -1, // a stored record that the data file has not filled yet
    kDouble = 0,
    kLong = 1,
    kString = 2,
    kAngularValue = 3,
    kLinearValue = 4,
  };

  // Raises code 51 for any type but 0 to 4.
  CParameter(Type type, bool optional);

  Type GetType() const { return m_type; }
  bool IsSet() const { return m_set; }
  void SetSetState(bool set) { m_set = set; }
  bool IsOptional() const { return m_optional; }

  // Typed access; the caller checks the type first (a wrong one throws
  // std::bad_variant_access). The collections raise code 30 instead.
  double GetDouble() const { return std::get<double>(m_value); }
  void SetDouble(double value) { std::get<double>(m_value) = value; }
  long GetLong() const { return std::get<long>(m_value); }
  void SetLong(long value) { std::get<long>(m_value) = value; }
  CString const & GetString() const { return std::get<CString>(m_value); }
  void SetString(CString const & value) { std::get<CString>(m_value) = value; }
  ML::CAngularValue const & GetAngularValue() const { return std::get<ML::CAngularValue>(m_value); }
  ML::CAngularValue & GetAngularValue() { return std::get<ML::CAngularValue>(m_value); }
  ML::CLinearValue const & GetLinearValue() const { return std::get<ML::CLinearValue>(m_value); }
  ML::CLinearValue & GetLinearValue() { return std::get<ML::CLinearValue>(m_value); }

  // Type, set state and optional flag, then the values: numbers and texts
  // exactly, angular and linear values by their own operator==.
  bool operator==(CParameter const & other) const;
  bool operator!=(CParameter const & other) const { return !(*this == other); }

private:
  friend class CParameterCollectionDataDB;
  CParameter() = default; // an undetermined record

  Type m_type = kUndetermined;
  std::variant<double, long, CString, ML::CAngularValue, ML::CLinearValue> m_value;
  bool m_set = false;
  bool m_optional = false;
};

// The body of a collection: every rule on reading and comparing lives here;
// the two kinds of body differ in how they are filled and changed.
class VELMORA_API CParameterCollectionData : public CDataObject, public ML::CFormattedValueEvent
{
public:
  // A rule for IsNearlyEqual, supplied by the owner of the collection.
  struct neSpecialCase
  {
    static constexpr int kSkip = 0;            // the names are left out of the comparison
    static constexpr int kInterchangeable = 1; // any of the names may stand for another
    int kind = kSkip;
    std::vector<CString> names;
  };
  // Which group of interchangeable names a name belongs to: the index of its
  // special case in the vector given to IsNearlyEqual.
  struct InterchangeNote
  {
    std::size_t group = 0;
  };
  using InterchangeMap = std::map<CString, InterchangeNote>;
  using ItemMap = std::map<CString, CParameter>;

  // For CDataObjectPtr: a new default concrete body, a new concrete copy of any body.
  static CParameterCollectionData * Create();
  static CParameterCollectionData * Clone(CParameterCollectionData const & source);

  ~CParameterCollectionData() override;
  // Replaces the items; the listener of this body stays.
  virtual CParameterCollectionData & operator=(CParameterCollectionData const & other) = 0;

  // The items in name order, for cheap iteration.
  virtual ItemMap const & Items() const = 0;

  CParameterCollectionEvent * GetEventHandler() const { return m_handler; }
  void SetEventHandler(CParameterCollectionEvent * handler) { m_handler = handler; }
  // A held value changed: passed on with an empty name.
  void OnChange(ML::CFormattedValue const * changed) override;

  bool Exists(CString const & name) const;
  long Count() const { return static_cast<long>(Items().size()); }
  // In name order; code 48 outside 0 to Count() - 1.
  CString const & ParameterNameAtIndex(long index) const;
  CParameter::Type GetItemType(CString const & name) const;
  bool IsItemSet(CString const & name) const;
  // True when no item is both unset and required.
  virtual bool AllItemsSet() const;
  double GetDouble(CString const & name) const;
  long GetLong(CString const & name) const;
  CString const & GetString(CString const & name) const;
  ML::CAngularValue const & GetAngularValue(CString const & name) const;
  ML::CLinearValue const & GetLinearValue(CString const & name) const;
  // Degrees or metres of an angular or linear item.
  double GetItemInternal(CString const & name) const;

  virtual void Clear() = 0;
  virtual bool Remove(CString const & name) = 0;
  void UnsetAllItems() { SetAllItems(false); }
  void SetAllItems() { SetAllItems(true); }
  virtual void SetAllItems(bool state) = 0;
  virtual void SetItemSetState(CString const & name, bool state) = 0;
  virtual bool AddDouble(CString const & name, bool optional) = 0;
  virtual bool AddLong(CString const & name, bool optional) = 0;
  virtual bool AddString(CString const & name, bool optional) = 0;
  virtual bool AddAngularValue(CString const & name, bool optional) = 0;
  virtual bool AddLinearValue(CString const & name, bool optional) = 0;
  virtual void SetDouble(CString const & name, double value) = 0;
  virtual void SetLong(CString const & name, long value) = 0;
  virtual void SetString(CString const & name, CString const & value) = 0;
  virtual void SetAngularValue(CString const & name, ML::CAngularValue const & value) = 0;
  virtual void SetLinearValue(CString const & name, ML::CLinearValue const & value) = 0;
  virtual void SetItemInternal(CString const & name, double value) = 0;

  // Same items by name (kind-1 names may stand for each other, kind-0 names
  // are left out), same types and set states, values within 1e-6; angular
  // and linear values with or without their units. Reasons go to `why`.
  bool IsNearlyEqual(CParameterCollectionData const & other, CString & why,
                     std::vector<neSpecialCase> const * specials = nullptr, bool useUnits = true) const;
  bool IsNearlyEqual(CParameterCollectionData const & other,
                     std::vector<neSpecialCase> const * specials = nullptr, bool useUnits = true) const;
  // One item here against one there, both of `type`; a double appends "a != b".
  bool IsItemNearlyEqual(CParameterCollectionData const & other, CString & why, CParameter::Type type,
                         CString const & nameHere, CString const & nameThere, bool useUnits = true) const;
  bool IsItemNearlyEqual(CParameterCollectionData const & other, CParameter::Type type,
                         CString const & nameHere, CString const & nameThere, bool useUnits = true) const;

  // Before a write to a store: every unit of a value item needs a "VM"
  // identifier (code 25), and `source`, if given, must hold it (code 26).
  bool IsFullyDefined(DB::CDataSource const * source) const;

  // Exact: same names, and items equal by CParameter::operator==.
  bool operator==(CParameterCollectionData const & other) const { return Items() == other.Items(); }
  bool operator!=(CParameterCollectionData const & other) const { return !(*this == other); }

protected:
  CParameterCollectionData() = default;
  // A copy starts without a listener, as a copied value does.
  CParameterCollectionData(CParameterCollectionData const & other);

  // The class named in failure locations.
  virtual char const * BodyName() const = 0;
  // The walk behind AllItemsSet, without any cache.
  bool EveryRequiredItemSet() const;
  void Notify(CString const & name) const;

private:
  CParameter const & Find(CString const & name, char const * operation) const;
  CParameter const & Find(CString const & name, CParameter::Type type, char const * operation) const;

  // Code 25 without a "VM" code, 26 when the source lacks the unit.
  static void CheckUnit(CSerializable const & unit, char const * kind, CString const & name,
                        DB::CDataSource const * source);

  CParameterCollectionEvent * m_handler = nullptr;
};

// The body owned by one handle, and the only one that changes.
class VELMORA_API CParameterCollectionDataConcrete : public CParameterCollectionData
{
public:
  CParameterCollectionDataConcrete() = default;
  CParameterCollectionDataConcrete(CParameterCollectionDataConcrete const & source);
  // Copies of the items of any body; code 51 for an item of unknown type.
  explicit CParameterCollectionDataConcrete(CParameterCollectionData const & source);
  ~CParameterCollectionDataConcrete() override;
  CParameterCollectionDataConcrete & operator=(CParameterCollectionDataConcrete const & other);
  CParameterCollectionDataConcrete & operator=(CParameterCollectionData const & other) override;

  EDataObjectType GetDataObjectType() const override { return kEDataObjectConcrete; }
  ItemMap const & Items() const override { return m_items; }
  bool AllItemsSet() const override;

  using CParameterCollectionData::SetAllItems;
  void Clear() override;
  bool Remove(CString const & name) override;
  void SetAllItems(bool state) override;
  void SetItemSetState(CString const & name, bool state) override;
  // Raise code 15 for an empty name and 29 for one that exists; fire nothing.
  bool AddDouble(CString const & name, bool optional) override;
  bool AddLong(CString const & name, bool optional) override;
  bool AddString(CString const & name, bool optional) override;
  bool AddAngularValue(CString const & name, bool optional) override;
  bool AddLinearValue(CString const & name, bool optional) override;
  // Store, mark set, then OnChange(name).
  void SetDouble(CString const & name, double value) override;
  void SetLong(CString const & name, long value) override;
  void SetString(CString const & name, CString const & value) override;
  void SetAngularValue(CString const & name, ML::CAngularValue const & value) override;
  void SetLinearValue(CString const & name, ML::CLinearValue const & value) override;
  void SetItemInternal(CString const & name, double value) override;

  // Makes the units of every value item concrete, so they outlive their store.
  virtual void Congeal();

protected:
  char const * BodyName() const override { return "CParameterCollectionDataConcrete"; }

private:
  bool Add(CString const & name, bool optional, CParameter::Type type, char const * operation);
  ItemMap::value_type & Writable(CString const & name, CParameter::Type type, char const * operation);
  void Stored(ItemMap::value_type & entry);
  // Values held here report their changes to this body.
  void Listen(CParameter & item);

  ItemMap m_items;
  mutable bool m_allSet = false; // a true answer of AllItemsSet, kept until an item is added or unset
};

// The body a data source holds: a read-only image of the data file, filled
// by the XML reader. Every change made through the collection interface is
// ignored; a handle that writes gets a concrete copy first.
class VELMORA_API CParameterCollectionDataDB : public CParameterCollectionData, public DB::SAX::CValueHandler
{
public:
  CParameterCollectionDataDB() = default;
  CParameterCollectionDataDB(CParameterCollectionDataDB const & source);
  // How a store copies a caller's collection into itself.
  CParameterCollectionDataDB(CParameterCollectionData const & source, DB::CDataSource const * store);
  ~CParameterCollectionDataDB() override;
  CParameterCollectionDataDB & operator=(CParameterCollectionDataDB const & other);
  CParameterCollectionDataDB & operator=(CParameterCollectionData const & other) override;

  EDataObjectType GetDataObjectType() const override { return kEDataObjectDB; }
  ItemMap const & Items() const override { return m_records; }

  // The reader's side. A record is made by name with its type undetermined;
  // SetValue then fills the first undetermined record in name order, so the
  // reader creates a record at its start tag and feeds its value at its end
  // tag. False if the name is empty or taken.
  bool AddRecord(CString const & name);
  // Keys "float", "integer", "string", "angular", "linear"; others are ignored.
  void SetValue(CString const & key, TWLVariant & value) override;
  // The unit from the element's attributes, given after the value: the
  // number read is taken in this unit. Codes 15, 27, and 30 for a record of
  // another type.
  void SetRecordUnits(CString const & name, ML::CAngularUnit const & units);
  void SetRecordUnits(CString const & name, ML::CLinearUnit const & units);
  // Completes the records from the declaration of the owner's type: a record
  // takes the declared optional flag, and a declared item that the file left
  // out (the writer leaves out unset items) joins as declared.
  void AdoptDeclarations(CParameterCollectionData const & declared);

  using CParameterCollectionData::SetAllItems;
  void Clear() override {}
  bool Remove(CString const &) override { return false; }
  void SetAllItems(bool) override {}
  void SetItemSetState(CString const &, bool) override {}
  bool AddDouble(CString const &, bool) override { return false; }
  bool AddLong(CString const &, bool) override { return false; }
  bool AddString(CString const &, bool) override { return false; }
  bool AddAngularValue(CString const &, bool) override { return false; }
  bool AddLinearValue(CString const &, bool) override { return false; }
  void SetDouble(CString const &, double) override {}
  void SetLong(CString const &, long) override {}
  void SetString(CString const &, CString const &) override {}
  void SetAngularValue(CString const &, ML::CAngularValue const &) override {}
  void SetLinearValue(CString const &, ML::CLinearValue const &) override {}
  void SetItemInternal(CString const &, double) override {}

protected:
  char const * BodyName() const override { return "CParameterCollectionDataDB"; }

private:
  ItemMap m_records;
};

// The handle. Reading goes through the const body (made lazily, shared if
// stored); every change goes through the non-const body, which is private.
class VELMORA_API CParameterCollection
{
public:
  CParameterCollection() = default;
  CParameterCollection(CParameterCollection const & other) = default;
  // Over a given body: a stored one is shared, an owned one copied.
  explicit CParameterCollection(CParameterCollectionData const & body) : m_data(&body) {}
  CParameterCollection & operator=(CParameterCollection const & other) = default;

  CParameterCollectionData const & GetData() const { return *m_data; }
  CParameterCollectionData & GetData() { return *m_data; }

  CParameterCollectionEvent * GetEventHandler() const { return m_data->GetEventHandler(); }
  void SetEventHandler(CParameterCollectionEvent * handler) { m_data->SetEventHandler(handler); }

  bool Exists(CString const & name) const { return m_data->Exists(name); }
  long Count() const { return m_data->Count(); }
  CString const & ParameterNameAtIndex(long index) const { return m_data->ParameterNameAtIndex(index); }
  CParameter::Type GetItemType(CString const & name) const { return m_data->GetItemType(name); }
  bool IsItemSet(CString const & name) const { return m_data->IsItemSet(name); }
  bool AllItemsSet() const { return m_data->AllItemsSet(); }
  double GetDouble(CString const & name) const { return m_data->GetDouble(name); }
  long GetLong(CString const & name) const { return m_data->GetLong(name); }
  CString const & GetString(CString const & name) const { return m_data->GetString(name); }
  ML::CAngularValue const & GetAngularValue(CString const & name) const { return m_data->GetAngularValue(name); }
  ML::CLinearValue const & GetLinearValue(CString const & name) const { return m_data->GetLinearValue(name); }
  double GetItemInternal(CString const & name) const { return m_data->GetItemInternal(name); }

  void Clear() { m_data->Clear(); }
  bool Remove(CString const & name) { return m_data->Remove(name); }
  void UnsetAllItems() { m_data->UnsetAllItems(); }
  void SetAllItems() { m_data->SetAllItems(); }
  void SetAllItems(bool state) { m_data->SetAllItems(state); }
  void SetItemSetState(CString const & name, bool state) { m_data->SetItemSetState(name, state); }
  bool AddDouble(CString const & name, bool optional) { return m_data->AddDouble(name, optional); }
  bool AddLong(CString const & name, bool optional) { return m_data->AddLong(name, optional); }
  bool AddString(CString const & name, bool optional) { return m_data->AddString(name, optional); }
  bool AddAngularValue(CString const & name, bool optional) { return m_data->AddAngularValue(name, optional); }
  bool AddLinearValue(CString const & name, bool optional) { return m_data->AddLinearValue(name, optional); }
  void SetDouble(CString const & name, double value) { m_data->SetDouble(name, value); }
  void SetLong(CString const & name, long value) { m_data->SetLong(name, value); }
  void SetString(CString const & name, CString const & value) { m_data->SetString(name, value); }
  void SetAngularValue(CString const & name, ML::CAngularValue const & value) { m_data->SetAngularValue(name, value); }
  void SetLinearValue(CString const & name, ML::CLinearValue const & value) { m_data->SetLinearValue(name, value); }
  void SetItemInternal(CString const & name, double value) { m_data->SetItemInternal(name, value); }

  // A private concrete body, with concrete units in every value.
  void Congeal() { static_cast<CParameterCollectionDataConcrete *>(m_data.Dereference())->Congeal(); }

  bool IsNearlyEqual(CParameterCollection const & other, CString & why,
                     std::vector<CParameterCollectionData::neSpecialCase> const * specials = nullptr,
                     bool useUnits = true) const
  {
    return m_data->IsNearlyEqual(*other.m_data, why, specials, useUnits);
  }
  bool IsNearlyEqual(CParameterCollection const & other,
                     std::vector<CParameterCollectionData::neSpecialCase> const * specials = nullptr,
                     bool useUnits = true) const
  {
    return m_data->IsNearlyEqual(*other.m_data, specials, useUnits);
  }
  bool IsFullyDefined(DB::CDataSource const * source) const { return m_data->IsFullyDefined(source); }

  bool operator==(CParameterCollection const & other) const { return *m_data == *other.m_data; }
  bool operator!=(CParameterCollection const & other) const { return !(*this == other); }

private:
  CDataObjectPtr<CParameterCollectionData> m_data;
};

} // namespace Velmora
