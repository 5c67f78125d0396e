#include <velmora/foundation/ParameterCollection.h>

#include <velmora/datasource/SourceLookup_p.h>

#include <velmora/foundation/VelmoraException.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>

namespace Velmora {

using EX::CVelmoraException;

namespace {

constexpr double kItemTolerance = 1e-6;

// What listeners get when a held value changed by itself.
unsigned short const kNoName[1] = {0};

[[noreturn]] void Fail(CVelmoraException::Code code, char const * body, char const * operation,
                       CString const & details = CString())
{
  // Locations are composed only here, so the lookups themselves build no text.
  throw CVelmoraException(code, QString::fromLatin1(body) + QLatin1String("::") + QLatin1String(operation), details);
}

template <class Map>
auto & Lookup(Map & items, CString const & name, char const * body, char const * operation)
{
  if (name.isEmpty())
    Fail(CVelmoraException::kInvalidParameter, body, operation);
  auto const it = items.find(name);
  if (it == items.end())
    Fail(CVelmoraException::kItemNotFound, body, operation, name);
  return *it;
}

void CheckType(CParameter const & item, CParameter::Type type, CString const & name, char const * body,
               char const * operation)
{
  if (item.GetType() != type)
    Fail(CVelmoraException::kItemWrongType, body, operation, name);
}

CString Number16(double value) { return CString(QString::number(value, 'g', 16)); }

} // namespace

CParameterCollectionEvent::~CParameterCollectionEvent() = default;

// CParameter

CParameter::CParameter(Type type, bool optional) : m_type(type), m_optional(optional)
{
  switch (type) {
  case kDouble:
    break; // the variant starts as 0.0
  case kLong:
    m_value.emplace<long>(0L);
    break;
  case kString:
    m_value.emplace<CString>();
    break;
  case kAngularValue:
    m_value.emplace<ML::CAngularValue>();
    break;
  case kLinearValue:
    m_value.emplace<ML::CLinearValue>();
    break;
  default:
    throw CVelmoraException(CVelmoraException::kParameterTypeNotImplemented, "CParameter::CParameter",
                            CString(static_cast<long>(type)));
  }
}

bool CParameter::operator==(CParameter const & other) const
{
  if (m_type != other.m_type || m_set != other.m_set || m_optional != other.m_optional)
    return false;
  switch (m_type) {
  case kDouble:
    return GetDouble() == other.GetDouble();
  case kLong:
    return GetLong() == other.GetLong();
  case kString:
    return GetString() == other.GetString();
  case kAngularValue:
    return GetAngularValue() == other.GetAngularValue();
  case kLinearValue:
    return GetLinearValue() == other.GetLinearValue();
  default:
    return true; // two unfilled records
  }
}

// CParameterCollectionData

CParameterCollectionData * CParameterCollectionData::Create() { return new CParameterCollectionDataConcrete(); }

CParameterCollectionData * CParameterCollectionData::Clone(CParameterCollectionData const & source)
{
  return new CParameterCollectionDataConcrete(source);
}

CParameterCollectionData::CParameterCollectionData(CParameterCollectionData const & other)
  : CDataObject(other), ML::CFormattedValueEvent(other)
{
}

CParameterCollectionData::~CParameterCollectionData() = default;

void CParameterCollectionData::OnChange(ML::CFormattedValue const *)
{
  if (m_handler)
    m_handler->OnChange(kNoName);
}

void CParameterCollectionData::Notify(CString const & name) const
{
  if (m_handler)
    m_handler->OnChange(name);
}

CParameter const & CParameterCollectionData::Find(CString const & name, char const * operation) const
{
  return Lookup(Items(), name, BodyName(), operation).second;
}

CParameter const & CParameterCollectionData::Find(CString const & name, CParameter::Type type,
                                                  char const * operation) const
{
  CParameter const & item = Find(name, operation);
  CheckType(item, type, name, BodyName(), operation);
  return item;
}

bool CParameterCollectionData::Exists(CString const & name) const
{
  return !name.isEmpty() && Items().count(name) != 0;
}

CString const & CParameterCollectionData::ParameterNameAtIndex(long index) const
{
  if (index < 0 || index >= Count())
    Fail(CVelmoraException::kIndexOutOfRange, BodyName(), "ParameterNameAtIndex");
  return std::next(Items().begin(), index)->first;
}

CParameter::Type CParameterCollectionData::GetItemType(CString const & name) const
{
  return Find(name, "GetItemType").GetType();
}

bool CParameterCollectionData::IsItemSet(CString const & name) const { return Find(name, "ItemSet").IsSet(); }

bool CParameterCollectionData::AllItemsSet() const { return EveryRequiredItemSet(); }

bool CParameterCollectionData::EveryRequiredItemSet() const
{
  ItemMap const & items = Items();
  return std::all_of(items.begin(), items.end(), [](ItemMap::value_type const & entry) {
    return entry.second.IsSet() || entry.second.IsOptional();
  });
}

double CParameterCollectionData::GetDouble(CString const & name) const
{
  return Find(name, CParameter::kDouble, "GetItem(Double)").GetDouble();
}

long CParameterCollectionData::GetLong(CString const & name) const
{
  return Find(name, CParameter::kLong, "GetItem(Long)").GetLong();
}

CString const & CParameterCollectionData::GetString(CString const & name) const
{
  return Find(name, CParameter::kString, "GetItem(String)").GetString();
}

ML::CAngularValue const & CParameterCollectionData::GetAngularValue(CString const & name) const
{
  return Find(name, CParameter::kAngularValue, "GetItem(AngularValue)").GetAngularValue();
}

ML::CLinearValue const & CParameterCollectionData::GetLinearValue(CString const & name) const
{
  return Find(name, CParameter::kLinearValue, "GetItem(LinearValue)").GetLinearValue();
}

double CParameterCollectionData::GetItemInternal(CString const & name) const
{
  CParameter const & item = Find(name, "GetItemInternal");
  if (item.GetType() == CParameter::kAngularValue)
    return item.GetAngularValue().GetInternal();
  if (item.GetType() == CParameter::kLinearValue)
    return item.GetLinearValue().GetInternal();
  Fail(CVelmoraException::kItemWrongType, BodyName(), "GetItemInternal", name);
}

bool CParameterCollectionData::IsNearlyEqual(CParameterCollectionData const & other,
                                             std::vector<neSpecialCase> const * specials, bool useUnits) const
{
  CString why;
  return IsNearlyEqual(other, why, specials, useUnits);
}

bool CParameterCollectionData::IsNearlyEqual(CParameterCollectionData const & other, CString & why,
                                             std::vector<neSpecialCase> const * specials, bool useUnits) const
{
  if (&other == this)
    return true;

  std::vector<CString const *> skipped;
  InterchangeMap interchange;
  long skippedHere = 0;
  long skippedThere = 0;
  if (specials) {
    for (std::size_t group = 0; group < specials->size(); ++group) {
      neSpecialCase const & special = (*specials)[group];
      for (CString const & name : special.names) {
        if (special.kind == neSpecialCase::kSkip) {
          skipped.push_back(&name);
          skippedHere += Exists(name) ? 1 : 0;
          skippedThere += other.Exists(name) ? 1 : 0;
        } else if (special.kind == neSpecialCase::kInterchangeable) {
          interchange.emplace(name, InterchangeNote{group});
        }
      }
    }
  }

  if (Count() - skippedHere != other.Count() - skippedThere) {
    why += CString(": parameter counts do not match");
    return false;
  }

  ItemMap const & there = other.Items();
  for (auto const & [name, item] : Items()) {
    bool const skip =
      std::any_of(skipped.begin(), skipped.end(), [&name = name](CString const * s) { return *s == name; });
    if (skip)
      continue;

    // The same name first; an interchangeable name stands in when that one is
    // missing or differs, so that swapped parallels still match.
    std::vector<ItemMap::const_iterator> candidates;
    if (auto const same = there.find(name); same != there.end())
      candidates.push_back(same);
    if (auto const note = interchange.find(name); note != interchange.end())
      for (CString const & alias : (*specials)[note->second.group].names)
        if (auto const other = there.find(alias); alias != name && other != there.end())
          candidates.push_back(other);
    if (candidates.empty()) {
      why += CString(": matching parameter not found for ") + name;
      return false;
    }

    auto const differ = [&why, &name = name](char const * what) {
      why += CString(": match for param ") + name + QLatin1String(what);
      return false;
    };
    bool matched = false;
    for (auto const & candidate : candidates) {
      CParameter const & theirs = candidate->second;
      if (item.GetType() == theirs.GetType() && item.IsSet() == theirs.IsSet() &&
          IsItemNearlyEqual(other, item.GetType(), name, candidate->first, useUnits)) {
        matched = true;
        break;
      }
    }
    if (matched)
      continue;
    // Report against the first candidate, as a plain comparison would.
    CParameter const & theirs = candidates.front()->second;
    if (item.GetType() != theirs.GetType())
      return differ(" found by name, but not of same type");
    if (item.IsSet() != theirs.IsSet())
      return differ(" found by name, but param not in same set state");
    CString detail;
    IsItemNearlyEqual(other, detail, item.GetType(), name, candidates.front()->first, useUnits);
    differ(" found by name, but param values do not match ");
    why += detail;
    return false;
  }
  return true;
}

bool CParameterCollectionData::IsItemNearlyEqual(CParameterCollectionData const & other, CParameter::Type type,
                                                 CString const & nameHere, CString const & nameThere,
                                                 bool useUnits) const
{
  CString why;
  return IsItemNearlyEqual(other, why, type, nameHere, nameThere, useUnits);
}

bool CParameterCollectionData::IsItemNearlyEqual(CParameterCollectionData const & other, CString & why,
                                                 CParameter::Type type, CString const & nameHere,
                                                 CString const & nameThere, bool useUnits) const
{
  switch (type) {
  case CParameter::kDouble: {
    double const here = GetDouble(nameHere);
    double const there = other.GetDouble(nameThere);
    if (std::fabs(here - there) <= kItemTolerance)
      return true;
    why += CString(QStringLiteral("%1 != %2").arg(Number16(here), Number16(there)));
    return false;
  }
  case CParameter::kLong:
    return GetLong(nameHere) == other.GetLong(nameThere);
  case CParameter::kString:
    return GetString(nameHere) == other.GetString(nameThere);
  case CParameter::kAngularValue:
    return GetAngularValue(nameHere).IsNearlyEqual(other.GetAngularValue(nameThere), why, useUnits);
  case CParameter::kLinearValue:
    return GetLinearValue(nameHere).IsNearlyEqual(other.GetLinearValue(nameThere), why, useUnits);
  default:
    return true; // unfilled records hold nothing to differ in
  }
}

void CParameterCollectionData::CheckUnit(CSerializable const & unit, char const * kind, CString const & name,
                                         DB::CDataSource const * source)
{
  char const * const location = "CParameterCollectionData::IsFullyDefined";
  CVelmoraException::Code code = CVelmoraException::kUndefined;
  if (!unit.GetIdentifiers().Exists(QStringLiteral("VM")))
    code = CVelmoraException::kReferenceNeedsIdentifier;
  else if (!DB::detail::SourceHolds(source, unit))
    code = CVelmoraException::kReferenceNotFound;
  else
    return;
  throw CVelmoraException(code, location, QString::fromLatin1(kind) + QLatin1Char('(') + name + QLatin1Char(')'));
}

bool CParameterCollectionData::IsFullyDefined(DB::CDataSource const * source) const
{
  for (auto const & [name, item] : Items()) {
    if (item.GetType() == CParameter::kAngularValue)
      CheckUnit(item.GetAngularValue().GetUnits(), "AngularUnits", name, source);
    else if (item.GetType() == CParameter::kLinearValue)
      CheckUnit(item.GetLinearValue().GetUnits(), "LinearUnits", name, source);
  }
  return true;
}

// CParameterCollectionDataConcrete

CParameterCollectionDataConcrete::CParameterCollectionDataConcrete(CParameterCollectionDataConcrete const & source)
  : CParameterCollectionDataConcrete(static_cast<CParameterCollectionData const &>(source))
{
}

CParameterCollectionDataConcrete::CParameterCollectionDataConcrete(CParameterCollectionData const & source)
  : CParameterCollectionData(source)
{
  *this = source;
}

CParameterCollectionDataConcrete::~CParameterCollectionDataConcrete() = default;

CParameterCollectionDataConcrete &
CParameterCollectionDataConcrete::operator=(CParameterCollectionDataConcrete const & other)
{
  return *this = static_cast<CParameterCollectionData const &>(other);
}

CParameterCollectionDataConcrete & CParameterCollectionDataConcrete::operator=(CParameterCollectionData const & other)
{
  if (&other == this)
    return *this;
  // Copied aside first, so that a bad item leaves this body as it was.
  ItemMap copies;
  for (auto const & [name, item] : other.Items()) {
    if (item.GetType() < CParameter::kDouble || item.GetType() > CParameter::kLinearValue)
      Fail(CVelmoraException::kParameterTypeNotImplemented, BodyName(), "operator=", name);
    copies.emplace_hint(copies.end(), name, item);
  }
  m_items.swap(copies); // nodes keep their addresses, so the values can be registered now
  for (auto & entry : m_items)
    Listen(entry.second);
  m_allSet = false;
  return *this;
}

void CParameterCollectionDataConcrete::Listen(CParameter & item)
{
  if (item.GetType() == CParameter::kAngularValue)
    item.GetAngularValue().SetEventHandler(this);
  else if (item.GetType() == CParameter::kLinearValue)
    item.GetLinearValue().SetEventHandler(this);
}

bool CParameterCollectionDataConcrete::AllItemsSet() const
{
  if (!m_allSet)
    m_allSet = EveryRequiredItemSet();
  return m_allSet;
}

void CParameterCollectionDataConcrete::Clear() { m_items.clear(); }

bool CParameterCollectionDataConcrete::Remove(CString const & name)
{
  m_items.erase(Lookup(m_items, name, BodyName(), "Remove").first);
  return true;
}

void CParameterCollectionDataConcrete::SetAllItems(bool state)
{
  for (auto & entry : m_items)
    entry.second.SetSetState(state);
  m_allSet = state;
}

void CParameterCollectionDataConcrete::SetItemSetState(CString const & name, bool state)
{
  Lookup(m_items, name, BodyName(), "SetItemSetState").second.SetSetState(state);
  if (!state)
    m_allSet = false;
}

bool CParameterCollectionDataConcrete::Add(CString const & name, bool optional, CParameter::Type type,
                                           char const * operation)
{
  m_allSet = false;
  if (name.isEmpty())
    Fail(CVelmoraException::kInvalidParameter, BodyName(), operation);
  auto const [it, added] = m_items.try_emplace(name, type, optional);
  if (!added)
    Fail(CVelmoraException::kItemExists, BodyName(), operation, name);
  Listen(it->second);
  return true;
}

bool CParameterCollectionDataConcrete::AddDouble(CString const & name, bool optional)
{
  return Add(name, optional, CParameter::kDouble, "AddDouble");
}

bool CParameterCollectionDataConcrete::AddLong(CString const & name, bool optional)
{
  return Add(name, optional, CParameter::kLong, "AddLong");
}

bool CParameterCollectionDataConcrete::AddString(CString const & name, bool optional)
{
  return Add(name, optional, CParameter::kString, "AddString");
}

bool CParameterCollectionDataConcrete::AddAngularValue(CString const & name, bool optional)
{
  return Add(name, optional, CParameter::kAngularValue, "AddAngularValue");
}

bool CParameterCollectionDataConcrete::AddLinearValue(CString const & name, bool optional)
{
  return Add(name, optional, CParameter::kLinearValue, "AddLinearValue");
}

CParameterCollectionData::ItemMap::value_type &
CParameterCollectionDataConcrete::Writable(CString const & name, CParameter::Type type, char const * operation)
{
  auto & entry = Lookup(m_items, name, BodyName(), operation);
  CheckType(entry.second, type, name, BodyName(), operation);
  return entry;
}

void CParameterCollectionDataConcrete::Stored(ItemMap::value_type & entry)
{
  entry.second.SetSetState(true);
  Notify(entry.first);
}

void CParameterCollectionDataConcrete::SetDouble(CString const & name, double value)
{
  auto & entry = Writable(name, CParameter::kDouble, "SetItem(Double)");
  entry.second.SetDouble(value);
  Stored(entry);
}

void CParameterCollectionDataConcrete::SetLong(CString const & name, long value)
{
  auto & entry = Writable(name, CParameter::kLong, "SetItem(Long)");
  entry.second.SetLong(value);
  Stored(entry);
}

void CParameterCollectionDataConcrete::SetString(CString const & name, CString const & value)
{
  auto & entry = Writable(name, CParameter::kString, "SetItem(String)");
  entry.second.SetString(value);
  Stored(entry);
}

void CParameterCollectionDataConcrete::SetAngularValue(CString const & name, ML::CAngularValue const & value)
{
  auto & entry = Writable(name, CParameter::kAngularValue, "SetItem(AngularValue)");
  entry.second.GetAngularValue() = value; // by assignment: the value's own event comes first
  Stored(entry);
}

void CParameterCollectionDataConcrete::SetLinearValue(CString const & name, ML::CLinearValue const & value)
{
  auto & entry = Writable(name, CParameter::kLinearValue, "SetItem(LinearValue)");
  entry.second.GetLinearValue() = value;
  Stored(entry);
}

void CParameterCollectionDataConcrete::SetItemInternal(CString const & name, double value)
{
  auto & entry = Lookup(m_items, name, BodyName(), "SetItemInternal");
  CParameter & item = entry.second;
  if (item.GetType() == CParameter::kAngularValue)
    item.GetAngularValue().SetInternal(value);
  else if (item.GetType() == CParameter::kLinearValue)
    item.GetLinearValue().SetInternal(value);
  else
    Fail(CVelmoraException::kItemWrongType, BodyName(), "SetItemInternal", name);
  Stored(entry);
}

void CParameterCollectionDataConcrete::Congeal()
{
  for (auto & entry : m_items) {
    CParameter & item = entry.second;
    if (item.GetType() == CParameter::kAngularValue)
      item.GetAngularValue().GetUnits().Congeal();
    else if (item.GetType() == CParameter::kLinearValue)
      item.GetLinearValue().GetUnits().Congeal();
  }
}

// CParameterCollectionDataDB

CParameterCollectionDataDB::CParameterCollectionDataDB(CParameterCollectionDataDB const & source)
  : CParameterCollectionData(source), DB::SAX::CValueHandler(source), m_records(source.m_records)
{
}

CParameterCollectionDataDB::CParameterCollectionDataDB(CParameterCollectionData const & source,
                                                       DB::CDataSource const *)
  : CParameterCollectionData(source), m_records(source.Items())
{
}

CParameterCollectionDataDB::~CParameterCollectionDataDB() = default;

CParameterCollectionDataDB & CParameterCollectionDataDB::operator=(CParameterCollectionDataDB const & other)
{
  return *this = static_cast<CParameterCollectionData const &>(other);
}

CParameterCollectionDataDB & CParameterCollectionDataDB::operator=(CParameterCollectionData const & other)
{
  if (&other != this) {
    ItemMap copies(other.Items());
    m_records.swap(copies);
  }
  return *this;
}

bool CParameterCollectionDataDB::AddRecord(CString const & name)
{
  return !name.isEmpty() && m_records.emplace(name, CParameter()).second;
}

void CParameterCollectionDataDB::SetValue(CString const & key, TWLVariant & value)
{
  CParameter::Type type;
  if (key == QLatin1String("float"))
    type = CParameter::kDouble;
  else if (key == QLatin1String("integer"))
    type = CParameter::kLong;
  else if (key == QLatin1String("string"))
    type = CParameter::kString;
  else if (key == QLatin1String("angular"))
    type = CParameter::kAngularValue;
  else if (key == QLatin1String("linear"))
    type = CParameter::kLinearValue;
  else
    return;

  auto const record = std::find_if(m_records.begin(), m_records.end(), [](ItemMap::value_type const & entry) {
    return entry.second.GetType() == CParameter::kUndetermined;
  });
  if (record == m_records.end())
    return;
  CParameter & item = record->second;
  item = CParameter(type, false);
  switch (type) {
  case CParameter::kDouble:
    item.SetDouble(value.toDouble());
    break;
  case CParameter::kLong:
    item.SetLong(value.toInt());
    break;
  case CParameter::kString:
    item.SetString(value.toString());
    break;
  // Held as read, until SetRecordUnits says in which unit it was written.
  case CParameter::kAngularValue:
    item.GetAngularValue().SetInternalQuiet(value.toDouble());
    break;
  case CParameter::kLinearValue:
    item.GetLinearValue().SetInternalQuiet(value.toDouble());
    break;
  default:
    break;
  }
  item.SetSetState(true);
}

void CParameterCollectionDataDB::SetRecordUnits(CString const & name, ML::CAngularUnit const & units)
{
  auto & entry = Lookup(m_records, name, BodyName(), "SetRecordUnits");
  CheckType(entry.second, CParameter::kAngularValue, name, BodyName(), "SetRecordUnits");
  ML::CAngularValue & value = entry.second.GetAngularValue();
  double const number = value.GetInternal();
  value.SetUnits(units);
  value.SetValue(number);
}

void CParameterCollectionDataDB::SetRecordUnits(CString const & name, ML::CLinearUnit const & units)
{
  auto & entry = Lookup(m_records, name, BodyName(), "SetRecordUnits");
  CheckType(entry.second, CParameter::kLinearValue, name, BodyName(), "SetRecordUnits");
  ML::CLinearValue & value = entry.second.GetLinearValue();
  double const number = value.GetInternal();
  value.SetUnits(units);
  value.SetValue(number);
}

void CParameterCollectionDataDB::AdoptDeclarations(CParameterCollectionData const & declared)
{
  for (auto const & [name, item] : declared.Items()) {
    auto const record = m_records.find(name);
    if (record == m_records.end())
      m_records.emplace(name, item);
    else if (record->second.GetType() == item.GetType())
      record->second.m_optional = item.IsOptional();
  }
}

} // namespace Velmora
