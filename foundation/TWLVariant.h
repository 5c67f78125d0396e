#pragma once
// TWLVariant: a value kept as text, with no type tag. It carries element and
// attribute values from the XML reader into the bodies' SetValue.
#include <velmora/foundation/CString.h>

namespace Velmora {

class VELMORA_API TWLVariant
{
public:
  TWLVariant() = default;
  TWLVariant(CString const & text) : m_text(text) {}
  TWLVariant(TWLVariant const & other) = default;
  TWLVariant(double const & value) : m_text(value) {}
  TWLVariant(long const & value) : m_text(value) {}

  TWLVariant & operator=(TWLVariant const & other) = default;
  TWLVariant & operator=(double const & value)
  {
    m_text = CString(value);
    return *this;
  }
  TWLVariant & operator=(long const & value)
  {
    m_text = CString(value);
    return *this;
  }

  void clear() { m_text = CString(); }
  CString toString() const { return m_text; }
  // Malformed text reads as zero: the reader never fails on a value.
  double toDouble() const { return m_text.toDouble(); }
  long toInt() const { return m_text.toLong(nullptr, 10); }
  bool isValid() const { return m_text.length() > 0; }

private:
  CString m_text;
};

} // namespace Velmora
