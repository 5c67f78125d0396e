#include <velmora/transforms/datumshifts/GridFile_p.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/VelmoraException.h>

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace Velmora::CT::DS::detail {

using EX::CVelmoraException;

std::FILE * OpenGridFile(std::string const & path)
{
  if (path.empty())
    return nullptr;
  // A folder opens for reading on some systems, but holds no grid.
  std::error_code error;
  if (std::filesystem::is_directory(path, error))
    return nullptr;
  return std::fopen(path.c_str(), "rb");
}

namespace {
bool Opens(std::string const & path)
{
  std::FILE * file = OpenGridFile(path);
  if (!file)
    return false;
  std::fclose(file);
  return true;
}
} // namespace

bool ReadWhole(std::FILE * file, std::vector<unsigned char> & bytes)
{
  if (std::fseek(file, 0, SEEK_END) != 0)
    return false;
  long const size = std::ftell(file);
  if (size < 0 || std::fseek(file, 0, SEEK_SET) != 0)
    return false;
  bytes.resize(static_cast<std::size_t>(size));
  return bytes.empty() || std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size();
}

std::string CurrentDataPath() { return DB::CDataSource::GetDataPath().toStdString(); }

bool GridFileOpens(CString const & name, std::string const & dataPath)
{
  std::string const given = name.toStdString();
  return Opens(given) || Opens(dataPath + given);
}

void RequireParameters(CParameterCollection const & parameters, char const * location)
{
  if (!parameters.AllItemsSet())
    throw CVelmoraException(CVelmoraException::kItemsNotSet, location);
}

} // namespace Velmora::CT::DS::detail
