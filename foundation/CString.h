#pragma once
// CString: the library's string. A QString with a virtual destructor, so it
// can be a member of polymorphic bodies, plus the conversions old callers use.
#include <velmora/foundation/Export.h>

#include <QByteArray>
#include <QChar>
#include <QString>

#include <string>

namespace Velmora {

class VELMORA_API CString : public QString
{
public:
  // Where GetClipped removes characters.
  // Fixed to int: callers may pass any value, which then clips nothing.
  enum EClipLocation : int { kClipStart = 0, kClipMiddle = 1, kClipEnd = 2 };

  static CString const kEllipse; // "..."

  CString() = default;
  CString(QString const & s) : QString(s) {}
  CString(CString const & s) : QString(s) {}
  CString(CString && s) noexcept : QString(std::move(s)) {}
  CString(QChar c) : QString(c) {}
  CString(QByteArray const & bytes) : QString(QString::fromUtf8(bytes)) {}
  CString(QChar const * text, int length) : QString(text, length) {}
  CString(char const * text) : QString(QString::fromUtf8(text)) {}
  CString(std::basic_string<char> const & text) : QString(QString::fromStdString(text)) {}
  CString(std::basic_string<unsigned short> const & text);
  CString(unsigned short const * text);
  // "%1" formatted with 'g' and precision 14.
  CString(double value);
  // "%1" formatted in base 10.
  CString(long value);
  CString(int value) : CString(static_cast<long>(value)) {}
  virtual ~CString();

  CString & operator=(CString const & other)
  {
    QString::operator=(other);
    return *this;
  }
  CString & operator=(CString && other) noexcept
  {
    QString::operator=(std::move(other));
    return *this;
  }
  CString & operator+=(CString const & other)
  {
    QString::operator+=(other);
    return *this;
  }
  CString & operator+=(char const & c)
  {
    QString::operator+=(QLatin1Char(c));
    return *this;
  }

  // The text as 8-bit characters; the pointer lives until the next call on this object.
  operator char const *() const;
  // The 16-bit buffer, terminated; never null, also for a null string.
  operator unsigned short const *() const;

  CString substr(int start, int length = -1) const { return CString(mid(start, length)); }

  CString GetClipped(int maxLength, EClipLocation where, CString const & filler = kEllipse) const;

private:
  mutable QByteArray m_narrow;
};

// Owned copies of text in the other width. A copy by assignment shares the
// buffer: only one of the two may keep `owns` set.
class VELMORA_API _tochar
{
public:
  _tochar(unsigned short const * text, bool owns = true);
  _tochar(char const * text, bool owns = true);
  _tochar(_tochar const &) = default;
  _tochar & operator=(_tochar const &) = default; // copies the pointer, not the text
  ~_tochar();

  char const * c_str() const { return m_buffer; }
  operator char *() { return m_buffer; }
  operator char const *() const { return m_buffer; }

  bool owns;

private:
  char * m_buffer;
};

class VELMORA_API _towchar
{
public:
  _towchar(unsigned short const * text, bool owns = true);
  _towchar(char const * text, bool owns = true);
  _towchar(_towchar const &) = default;
  _towchar & operator=(_towchar const &) = default; // copies the pointer, not the text
  ~_towchar();

  unsigned short const * c_str() const { return m_buffer; }
  operator unsigned short *() { return m_buffer; }
  operator unsigned short const *() const { return m_buffer; }

  bool owns;

private:
  unsigned short * m_buffer;
};

} // namespace Velmora
