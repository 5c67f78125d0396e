// The tool's only calls into the store's datum shift search.
#include "Cli.h"

#include <velmora/datasource/CDataSource.h>
#include <velmora/transforms/CoordTransform.h>
#include <velmora/transforms/datumshifts/DatumShiftInfo.h>

namespace VelmoraCli {

using namespace Velmora;

#if VELMORA_CLI_ROUTE_SEARCH

bool EstablishRoute(DB::CDataSource & store, CT::CCoordTransform & transform)
{
  return store.EstablishDatumShift(transform, CT::DS::CDatumShiftPreferences());
}

std::vector<Route> CandidateRoutes(DB::CDataSource const & store, CS::CCoordSys const & source,
                                   CS::CCoordSys const & target)
{
  CT::DS::CDatumShiftPreferencesEx preferences; // no area, every method
  preferences.SetIntermediateIssuer(CString("EPSG"));
  preferences.SetIntermediateCode(CString("6326"));
  std::list<std::list<CT::DS::CDatumShiftInfo>> found;
  store.GetValidDatumShifts(source, target, preferences, found);
  std::vector<Route> routes;
  for (auto const & candidate : found) {
    Route route;
    for (CT::DS::CDatumShiftInfo const & step : candidate) {
      CString const issuer(step.GetIssuer().c_str());
      route.push_back({{issuer.isEmpty() ? CString("VM") : issuer, CString(step.GetCode().c_str())}, step.GetReverse()});
    }
    routes.push_back(std::move(route));
  }
  return routes;
}

#else

// Built without the store's route search: routes are given with --route.
namespace {
[[noreturn]] void NoSearch()
{
  throw CliError("this build of velmora has no datum shift search; give the shifts with --route, or --route none");
}
} // namespace

bool EstablishRoute(DB::CDataSource &, CT::CCoordTransform &) { NoSearch(); }

std::vector<Route> CandidateRoutes(DB::CDataSource const &, CS::CCoordSys const &, CS::CCoordSys const &)
{
  NoSearch();
}

#endif

} // namespace VelmoraCli
