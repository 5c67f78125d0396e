// Coordinate systems from outside the data file: --from and --to take a
// .prj or MapInfo table file name or a WKT string besides an identifier;
// "info --wkt" writes a system as WKT; "import" adds what a file defines to
// the data file.
#include "Cli.h"

#include <velmora/velmora.h>

#include <cstdio>
#include <filesystem>
#include <memory>

namespace VelmoraCli {

using namespace Velmora;
namespace fs = std::filesystem;

namespace {

bool LooksLikeWkt(std::string const & text) { return text.find('[') != std::string::npos; }

bool IsSystemFile(std::string const & text)
{
  std::error_code error;
  if (!fs::is_regular_file(text, error))
    return false;
  std::string ending = fs::path(text).extension().string();
  for (char & c : ending)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ending == ".prj" || ending == ".tab" || ending == ".map" || ending == ".dat" || ending == ".wkt";
}

} // namespace

CS::CCoordSys * ResolveCoordSys(DB::CDataSource & store, std::string const & text)
{
  if (IsSystemFile(text))
    return store.ImportCoordSysFromFile(CString(text));
  if (LooksLikeWkt(text))
    return store.ImportCoordSysFromString(CString(text));
  Code const code = ParseCode(text);
  return store.GetCoordSys(code.issuer, code.code);
}

int RunInfoWkt(Options const & options)
{
  if (options.positional.size() != 1)
    throw CliError("info --wkt takes one identifier, such as EPSG:4326");
  std::unique_ptr<DB::CDataSource> store = OpenStore(DataFilePath(options.data));
  std::unique_ptr<CS::CCoordSys> system(ResolveCoordSys(*store, options.positional.front()));
  std::unique_ptr<unsigned short[]> wkt(store->ExportCoordSysToString(*system));
  std::printf("%s\n", Utf8(CString(wkt.get())).c_str());
  return 0;
}

int RunImport(Options const & options)
{
  if (options.positional.size() != 1)
    throw CliError("import takes one file: a .prj, a WKT file or a MapInfo table");
  std::string const path = DataFilePath(options.data);
  std::unique_ptr<DB::CDataSource> store = OpenStore(path);
  std::unique_ptr<CS::CCoordSys> system(store->ImportCoordSysFromFile(CString(options.positional.front())));
  store->CommitToFile(CString(path));
  std::printf("%s %s\n", PreferredCode(*system).c_str(), Quoted(system->GetName()).c_str());
  return 0;
}

} // namespace VelmoraCli
