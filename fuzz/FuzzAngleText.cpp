// Angle text through an angular value: the first line of an input is the
// format, the rest the text read under it, which is then written again.
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/Values.h>

#include <cstdint>

using namespace Velmora;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size)
{
  QByteArray const bytes(reinterpret_cast<char const *>(data), static_cast<qsizetype>(size));
  qsizetype const cut = bytes.indexOf('\n');
  CString const format(QString::fromUtf8(cut < 0 ? bytes : bytes.left(cut)));
  CString const text(QString::fromUtf8(cut < 0 ? QByteArray() : bytes.mid(cut + 1)));
  ML::CAngularValue value;
  try {
    value.SetFormat(format);
  } catch (EX::CVelmoraException const &) {
    // The format stays stored and is used as it is.
  }
  try {
    if (value.FromString(text))
      value.ToString();
  } catch (EX::CVelmoraException const &) {
  }
  return 0;
}
