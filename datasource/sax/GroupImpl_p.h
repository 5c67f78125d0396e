#pragma once
// The family-typed half of a store's group, instantiated once per family.
#include <velmora/datasource/sax/dbGroup.h>

#include <algorithm>

namespace Velmora::DB::SAX {

template <class Body, class Data>
Body * TGroup<Body, Data>::Find(CString const & code) const
{
  auto const found = m_objects.find(code);
  return found == m_objects.end() ? nullptr : found->second.get();
}

template <class Body, class Data>
bool TGroup<Body, Data>::RemoveObject(CString const & code)
{
  auto entry = m_objects.find(code);
  if (entry == m_objects.end()) {
    // Known by another code of "VM" in the index only: look for the address.
    CSerializableDataDB const * indexed = FindObjectInCategory(CString("VM"), code);
    entry = std::find_if(m_objects.begin(), m_objects.end(), [indexed](auto const & e) {
      return static_cast<CSerializableDataDB const *>(e.second.get()) == indexed;
    });
    if (!indexed || entry == m_objects.end())
      return false;
  }
  Forget(entry->second.get());
  m_objects.erase(entry);
  return true;
}

template <class Body, class Data>
bool TGroup<Body, Data>::AddObject(std::unique_ptr<CSerializableDataDB> body)
{
  auto * typed = dynamic_cast<Body *>(body.get());
  if (!typed || !typed->GetIdentifiers().Exists(CString("VM")))
    return false;
  CString const code = typed->GetIdentifiers().GetItem(CString("VM"));
  if (code.isEmpty())
    return false;
  body.release();
  std::unique_ptr<Body> & slot = m_objects[code];
  if (slot)
    Forget(slot.get());
  slot.reset(typed);
  CIdentifierCollection const & ids = typed->GetIdentifiers();
  for (long i = 0; i < ids.Count(); ++i) {
    CString issuer, idCode;
    ids.GetItem(i, issuer, idCode);
    AddByCategory(issuer, idCode, typed);
  }
  Shelve(typed);
  return true;
}

template <class Body, class Data>
std::unique_ptr<CSerializableDataDB> TGroup<Body, Data>::MakeBody(CSerializableData const & source,
                                                                  CDataSource const * store) const
{
  return std::make_unique<Body>(dynamic_cast<Data const &>(source), store);
}

template <class Body, class Data>
void TGroup<Body, Data>::Assign(CSerializableDataDB & target, CSerializableData const & source) const
{
  auto & typed = dynamic_cast<Body &>(target);
  static_cast<CSerializableData &>(typed) = source;
  static_cast<Data &>(typed) = dynamic_cast<Data const &>(source);
}

template <class Body, class Data>
bool TGroup<Body, Data>::NearlyEqual(CSerializableData const & stored, CSerializableData const & other) const
{
  auto const * a = dynamic_cast<Data const *>(&stored);
  auto const * b = dynamic_cast<Data const *>(&other);
  if (!a || !b)
    return false;
  CString why;
  return a->IsNearlyEqual(*b, why);
}

template <class Body, class Data>
Body & TGroup<Body, Data>::Entry(CString const & code)
{
  // A second object of the same code replaces the first, as a reader meets them.
  std::unique_ptr<Body> & slot = m_objects[code];
  if (slot)
    RetireBody(std::move(slot));
  slot = std::make_unique<Body>();
  return *slot;
}

} // namespace Velmora::DB::SAX
