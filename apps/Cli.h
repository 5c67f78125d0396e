#pragma once
// The parts of the command-line tool that its commands share: the parsed
// command line, the data file, identifiers as AUTH:CODE text, and the route
// search of the store behind one door.
#include <velmora/foundation/CString.h>

#include <list>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Velmora {
class CSerializable;
namespace DB {
class CDataSource;
}
namespace CS {
class CCoordSys;
}
namespace CT {
class CCoordTransform;
namespace DS {
class CDatumShiftInfo;
class CDatumShift;
} // namespace DS
} // namespace CT
} // namespace Velmora

namespace VelmoraCli {

using Velmora::CString;

// Exit statuses: every line converted; some lines failed; the command could not run.
constexpr int kExitOk = 0;
constexpr int kExitSomeFailed = 1;
constexpr int kExitError = 2;

// A failure that ends the command with one line on standard error.
class CliError : public std::runtime_error
{
public:
  using std::runtime_error::runtime_error;
};

struct Options
{
  std::string command;
  std::string from, to;
  bool inverse = false;
  bool verbose = false;
  bool si = false;     // metres and degrees instead of each system's own units
  bool strict = false; // refuse points outside an area of use
  std::optional<int> precision;
  std::optional<std::string> route; // "none", or a list of shifts
  std::string data;                 // empty: the default file
  std::string grids;                // folders of grid files, ':' between them
  std::string type;                 // search: a kind of object
  bool wkt = false;                 // info: the system as WKT
  std::vector<std::string> positional;
};

// An object's identifier as the command line writes it.
struct Code
{
  CString issuer;
  CString code;
};
// "AUTH:CODE"; a bare code is the store's own issuer "VM".
Code ParseCode(std::string const & text);
std::string ToText(Code const & code);
// Every identifier of the object, "EPSG:4326, VM:1".
std::string Identifiers(Velmora::CSerializable const & object);
// The object's "VM" code, empty without one.
CString VmCode(Velmora::CSerializable const & object);
// "EPSG:4326" if the object has an EPSG code, else its "VM" one.
std::string PreferredCode(Velmora::CSerializable const & object);
std::string Utf8(CString const & text);
// The text in double quotes.
std::string Quoted(CString const & text);

// The units of a system's three axes as its point style gives them: how
// many internal units (metres, degrees) one of them is, and their names.
struct AxisUnits
{
  double perUnit[3] = {1.0, 1.0, 1.0};
  std::string names[3];
  bool IsInternal() const { return perUnit[0] == 1.0 && perUnit[1] == 1.0 && perUnit[2] == 1.0; }
};
AxisUnits UnitsOf(Velmora::DB::CDataSource & store, Velmora::CS::CCoordSys const & system);

// The data file: --data, else the installed one beside the executable, else
// the one a build tree makes.
std::string DataFilePath(std::string const & given);
std::unique_ptr<Velmora::DB::CDataSource> OpenStore(std::string const & path);

// One step of a route as the commands print it.
struct RouteStep
{
  Code shift;
  bool reversed = false;
};
using Route = std::vector<RouteStep>;

// The store's own route search, the only callers of it in the tool. The
// first fills the transform's chain (EstablishDatumShift with the default
// preferences) and is true when it set a route or the datums are equal; the
// second lists the candidates as GetValidDatumShifts finds them, with
// WGS 84 (EPSG:6326) as the datum that two-shift routes go through.
bool EstablishRoute(Velmora::DB::CDataSource & store, Velmora::CT::CCoordTransform & transform);
std::vector<Route> CandidateRoutes(Velmora::DB::CDataSource const & store, Velmora::CS::CCoordSys const & source,
                                   Velmora::CS::CCoordSys const & target);
// The route to take of the candidates, the store's own pick first where
// `storePick` says the first is that: one whose
// grid files are all found; then one whose areas of use hold the point (the
// first point, on the source datum, when given); one that takes a national
// grid; a shorter one; the store's pick, then the widest area of use (the
// smallest of its shifts'). The better-placed ones passed over are told in
// `skipped`, with why. CliError, naming the file, when no candidate has its grids.
Route ChooseRoute(Velmora::DB::CDataSource & store, std::vector<Route> const & candidates, bool storePick,
                  std::vector<std::string> const & folders, double const * point, std::vector<std::string> & skipped);
// "VM:1, then -VM:2"
std::string RouteText(Route const & route);

// Where the tool looks for grid files: the --grids folders, VELMORA_GRIDS,
// PROJ_DATA, PROJ_LIB (each a ':' list), then /usr/share/proj.
std::vector<std::string> GridFolders(std::string const & given);
// Points a shift's grid file parameters at the files found, as given or in the
// first folder that holds them; the names not found. The paths taken are
// added to `used`.
std::vector<std::string> ResolveGrids(Velmora::CT::DS::CDatumShift & shift, std::vector<std::string> const & folders,
                                      std::vector<std::string> * used);

// A system by identifier, or imported from a .prj/.tab file name or a WKT string; the caller owns it.
Velmora::CS::CCoordSys * ResolveCoordSys(Velmora::DB::CDataSource & store, std::string const & text);
int RunInfoWkt(Options const & options);
int RunImport(Options const & options);
int RunConvert(Options const & options);
int RunInfo(Options const & options);
int RunSearch(Options const & options);
int RunRoutes(Options const & options);

} // namespace VelmoraCli
