// The data file through CDataSource::LoadFile, as a stranger's file arrives.
// The XML platform is started once here, so that the store's own start and
// end in each load only count; the store lives across inputs, so that the
// schema beside the file is read once, at the first load.
#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/VelmoraException.h>

#include <xercesc/util/PlatformUtils.hpp>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>
#include <memory>

using namespace Velmora;

namespace {

struct Stage
{
  QTemporaryDir dir;
  CString file;
  std::unique_ptr<DB::CDataSource> store;
};

Stage * g_stage = nullptr;

void Write(CString const & path, std::uint8_t const * data, std::size_t size)
{
  QFile out(path);
  if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate))
    std::abort();
  out.write(reinterpret_cast<char const *>(data), static_cast<qint64>(size));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
  ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
  xercesc::XMLPlatformUtils::Initialize();
  g_stage = new Stage;
  g_stage->file = CString(g_stage->dir.filePath("velmora.xml"));
  if (!QFile::copy(VELMORA_SOURCE_DIR "/data/velmora.xsd", g_stage->dir.filePath("velmora.xsd")))
    std::abort();
  g_stage->store = std::make_unique<DB::CDataSource>();
  // A sound first load reads the class types of the schema.
  QFile seed(VELMORA_SOURCE_DIR "/tests/data/datasource/all_kinds.xml");
  if (!seed.open(QIODevice::ReadOnly))
    std::abort();
  QByteArray const bytes = seed.readAll();
  Write(g_stage->file, reinterpret_cast<std::uint8_t const *>(bytes.constData()), std::size_t(bytes.size()));
  g_stage->store->LoadFile(g_stage->file);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size)
{
  Write(g_stage->file, data, size);
  try {
    g_stage->store->LoadFile(g_stage->file);
  } catch (EX::CVelmoraException const &) {
    // The documented answer to a bad file.
  }
  return 0;
}
