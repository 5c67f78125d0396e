// Fuzz target: arbitrary bytes as WKT text through the store's import. Every
// input must end in a result or a library exception, never a crash. The
// store is the data file named by VELMORA_FUZZ_DATA (the build's own by
// default), loaded once.
#include <velmora/velmora.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace {

Velmora::DB::CDataSource * Store()
{
  static Velmora::DB::CDataSource * store = [] {
    auto * s = new Velmora::DB::CDataSource;
    char const * path = std::getenv("VELMORA_FUZZ_DATA");
    s->LoadFile(Velmora::CString(path ? path : VELMORA_FUZZ_DEFAULT_DATA));
    return s;
  }();
  return store;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const * data, size_t size)
{
  Velmora::CString const text(QString::fromUtf8(reinterpret_cast<char const *>(data), static_cast<qsizetype>(size)));
  for (bool force : {false, true}) {
    Velmora::DB::CDataSource::SetWKTForceMatch(force);
    try {
      std::unique_ptr<Velmora::CS::CCoordSys> imported(Store()->ImportCoordSysFromString(text));
      // What was read must also be writable.
      delete[] Store()->ExportCoordSysToString(*imported);
    } catch (Velmora::EX::CVelmoraException const &) {
    }
  }
  return 0;
}
