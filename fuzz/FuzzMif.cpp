// Fuzz target: arbitrary bytes as a MIF "CoordSys" clause. Every input must
// end in a result or a library exception, never a crash. The store is the
// data file named by VELMORA_FUZZ_DATA (the build's own by default).
#include <velmora/datasource/import/miParser.h>
#include <velmora/velmora.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

extern "C" int LLVMFuzzerTestOneInput(uint8_t const * data, size_t size)
{
  static Velmora::DB::CDataSource * store = [] {
    auto * s = new Velmora::DB::CDataSource;
    char const * path = std::getenv("VELMORA_FUZZ_DATA");
    s->LoadFile(Velmora::CString(path ? path : VELMORA_FUZZ_DEFAULT_DATA));
    return s;
  }();
  static Velmora::DB::miParser parser(store);
  Velmora::CString const clause(QString::fromUtf8(reinterpret_cast<char const *>(data), static_cast<qsizetype>(size)));
  try {
    std::unique_ptr<Velmora::CS::CCoordSys> imported(parser.FromMIF(clause));
    parser.ToMIF(*imported);
  } catch (Velmora::EX::CVelmoraException const &) {
  }
  return 0;
}
