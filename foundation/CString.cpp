#include <velmora/foundation/CString.h>

#include <cmath>
#include <cstring>

namespace Velmora {

namespace {
char16_t const kEmptyUtf16[1] = {0};

QString FromUtf16Terminated(unsigned short const * text)
{
  if (!text)
    return QString();
  return QString::fromUtf16(reinterpret_cast<char16_t const *>(text));
}
} // namespace

CString const CString::kEllipse("...");

CString::CString(std::basic_string<unsigned short> const & text)
  : QString(QString::fromUtf16(reinterpret_cast<char16_t const *>(text.c_str()),
                               static_cast<qsizetype>(text.size())))
{
}

CString::CString(unsigned short const * text) : QString(FromUtf16Terminated(text)) {}

CString::CString(double value) : QString(QStringLiteral("%1").arg(value, 0, 'g', 14)) {}

CString::CString(long value) : QString(QStringLiteral("%1").arg(value, 0, 10)) {}

CString::~CString() = default;

CString::operator char const *() const
{
  m_narrow = toLatin1();
  return m_narrow.constData();
}

CString::operator unsigned short const *() const
{
  if (isNull())
    return reinterpret_cast<unsigned short const *>(kEmptyUtf16);
  return reinterpret_cast<unsigned short const *>(utf16());
}

CString CString::GetClipped(int maxLength, EClipLocation where, CString const & filler) const
{
  if (length() <= maxLength)
    return *this;
  int const n = maxLength - static_cast<int>(filler.length());
  switch (where) {
  case kClipStart:
    return CString(filler + right(n));
  case kClipMiddle: {
    int const h = static_cast<int>(std::floor(n * 0.5));
    return CString(left(h) + filler + right(h));
  }
  case kClipEnd:
    return CString(left(n) + filler);
  }
  return *this;
}

// The 8-bit side of both buffers is UTF-8, whatever the process locale, so
// that non-ASCII text survives a round trip in a program left in the C locale.

namespace {
char * NewNarrow(QByteArray const & bytes)
{
  char * out = new char[bytes.size() + 1];
  std::memcpy(out, bytes.constData(), static_cast<size_t>(bytes.size()));
  out[bytes.size()] = '\0';
  return out;
}

unsigned short * NewWide(QString const & text)
{
  auto const n = text.size();
  unsigned short * out = new unsigned short[n + 1];
  std::memcpy(out, text.utf16(), static_cast<size_t>(n) * sizeof(unsigned short));
  out[n] = 0;
  return out;
}
} // namespace

_tochar::_tochar(unsigned short const * text, bool owns_)
  : owns(owns_), m_buffer(NewNarrow(FromUtf16Terminated(text).toUtf8()))
{
}

_tochar::_tochar(char const * text, bool owns_)
  : owns(owns_), m_buffer(NewNarrow(QByteArray(text ? text : "")))
{
}

_tochar::~_tochar()
{
  if (owns)
    delete[] m_buffer;
}

_towchar::_towchar(unsigned short const * text, bool owns_)
  : owns(owns_), m_buffer(NewWide(FromUtf16Terminated(text)))
{
}

_towchar::_towchar(char const * text, bool owns_)
  : owns(owns_), m_buffer(NewWide(QString::fromUtf8(text ? text : "")))
{
}

_towchar::~_towchar()
{
  if (owns)
    delete[] m_buffer;
}

} // namespace Velmora
