#pragma once
// How shift methods find their grid files, and what they raise where their
// mathematics is not carried yet.
#include <velmora/foundation/ParameterCollection.h>

#include <string>

namespace Velmora::CT::DS::detail {

// The data path as it stands now, kept by a method when it is built: a later
// change of the path does not reach an object that exists.
std::string CurrentDataPath();

// Whether the file opens for reading by its name as given, or else with the
// data path put before it, the two joined with nothing between.
bool GridFileOpens(CString const & name, std::string const & dataPath);

// Code 31 at `location` while any parameter is unset.
void RequireParameters(CParameterCollection const & parameters, char const * location);

// Code 50 at `location`: the method exists, its computation does not yet.
[[noreturn]] void NotCarried(char const * location, CString const & classType);

} // namespace Velmora::CT::DS::detail
