// A user's program: only the installed umbrella header and the library.
#include <velmora/velmora.h>

#include <cstdio>
#include <cstring>

using namespace Velmora;

static int failures = 0;

static void Expect(bool ok, char const * what)
{
  if (!ok) {
    std::fprintf(stderr, "consumer: FAILED %s\n", what);
    ++failures;
  }
}

int main()
{
  try {
    throw EX::CVelmoraException(27, "CIdentifierCollection::GetItem", "EPSG");
  } catch (EX::CVelmoraException const & e) {
    Expect(e.GetErrorCode() == 27, "code");
    Expect(std::strcmp(static_cast<char const *>(CString(e.GetFullMessage())),
                       "Specified parameter not found in the collection [CIdentifierCollection::GetItem]: EPSG") == 0,
           "full message");
  }
  Expect(CString("abcdefghij").GetClipped(7, CString::kClipEnd) == CString("abcd..."), "GetClipped");
  Expect(TWLVariant(0L).isValid() && !TWLVariant().isValid(), "TWLVariant");
  Expect(VMInitialize(), "VMInitialize without a display");
  Expect(VMTerminate(), "VMTerminate");
  std::printf("consumer: %s\n", failures ? "failed" : "ok");
  return failures ? 1 : 0;
}
