#include <velmora/transforms/datumshifts/GridFile_p.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/VelmoraException.h>

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace Velmora::CT::DS::detail {

using EX::CVelmoraException;

namespace {
bool Opens(std::string const & path)
{
  if (path.empty())
    return false;
  // A folder opens for reading on some systems, but holds no grid.
  std::error_code error;
  if (std::filesystem::is_directory(path, error))
    return false;
  std::FILE * file = std::fopen(path.c_str(), "rb");
  if (!file)
    return false;
  std::fclose(file);
  return true;
}
} // namespace

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

void NotCarried(char const * location, CString const & classType)
{
  throw CVelmoraException(CVelmoraException::kClassNotImplemented, location, classType);
}

} // namespace Velmora::CT::DS::detail
