#pragma once
// What the shift methods share: how they find and read their grid files, and
// the point forms around a computation on plain numbers.
#include <velmora/foundation/ParameterCollection.h>
#include <velmora/measures/CoordPoints.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace Velmora::CT::DS::detail {

// The data path as it stands now, kept by a method when it is built: a later
// change of the path does not reach an object that exists.
std::string CurrentDataPath();

// Whether the file opens for reading by its name as given, or else with the
// data path put before it, the two joined with nothing between.
bool GridFileOpens(CString const & name, std::string const & dataPath);

// The file opened for reading in binary mode by its name as given; null when
// it does not open (or names a folder).
std::FILE * OpenGridFile(std::string const & path);

// A grid file read whole, shared by every copy of the shift that loaded it.
using GridBytes = std::shared_ptr<std::vector<unsigned char> const>;

// The rest of an open file from its start; false on a short read.
bool ReadWhole(std::FILE * file, std::vector<unsigned char> & bytes);

// Code 31 at `location` while any parameter is unset.
void RequireParameters(CParameterCollection const & parameters, char const * location);

// The point forms: a height takes part only when `in` has one, and `out`
// receives as many numbers as it holds.
template <class Compute>
bool ThroughPoint(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out, Compute && compute)
{
  double lon = 0.0, lat = 0.0, height = 0.0;
  if (in.GetDimensions() > 2)
    in.GetInternals(lon, lat, height);
  else
    in.GetInternals(lon, lat);
  compute(lon, lat, height);
  if (out.GetDimensions() > 2)
    out.SetInternals(lon, lat, height);
  else
    out.SetInternals(lon, lat);
  return true;
}

} // namespace Velmora::CT::DS::detail
