#pragma once
// CDataObjectPtr: the pointer a handle holds its body by, and the whole of
// the library's copy-on-write.
//
// A concrete body belongs to this pointer: copied with it, deleted with it.
// A database body belongs to a data source: shared by every pointer that
// holds it, never deleted here, and replaced by a private concrete copy at
// the first non-const access. A null pointer gets a default body at its first
// use, also in const access, so an unused handle costs no allocation.
//
// T supplies `static T * Create()` (a new default concrete body) and
// `static T * Clone(T const &)` (a new concrete copy of any body).
#include <velmora/foundation/CDataObject.h>

namespace Velmora {

template <class T>
class CDataObjectPtr
{
public:
  CDataObjectPtr() = default;
  explicit CDataObjectPtr(T const * body) { Reset(body); }
  CDataObjectPtr(CDataObjectPtr const & other) { Reset(other.m_body); }
  ~CDataObjectPtr() { Drop(); }

  CDataObjectPtr & operator=(CDataObjectPtr const & other)
  {
    Reset(other.m_body);
    return *this;
  }

  void Reset(T const * body)
  {
    if (body == m_body)
      return;
    if (body && IsConcrete(body)) {
      if (m_body && m_concrete) {
        *m_body = *body; // reuse our own body: its address stays
        return;
      }
      Drop();
      Hold(T::Clone(*body), true);
      return;
    }
    Drop();
    Hold(const_cast<T *>(body), false);
  }

  bool Assigned() const { return m_body != nullptr; }

  // Const access: create lazily, never copy.
  T const * operator->() const { return Lazy(); }
  T const & operator*() const { return *Lazy(); }

  // Non-const access: make the body private first.
  T * operator->() { return Dereference(); }
  T & operator*() { return *Dereference(); }

  T * Dereference()
  {
    if (!m_body)
      Hold(T::Create(), true);
    else if (!m_concrete)
      Hold(T::Clone(*m_body), true); // the shared body stays with its source
    return m_body;
  }

  // The held body as it is, without creating or copying; may be null.
  T const * Peek() const { return m_body; }

private:
  static bool IsConcrete(T const * body) { return body->GetDataObjectType() == kEDataObjectConcrete; }

  T * Lazy() const
  {
    if (!m_body)
      Hold(T::Create(), true);
    return m_body;
  }

  void Hold(T * body, bool concrete) const
  {
    m_body = body;
    m_concrete = concrete;
  }

  void Drop()
  {
    if (m_body && m_concrete)
      delete m_body;
    m_body = nullptr;
    m_concrete = false;
  }

  mutable T * m_body = nullptr;
  // Cached kind of the body, so that access needs no virtual call.
  mutable bool m_concrete = false;
};

} // namespace Velmora
