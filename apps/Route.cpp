// The tool's only calls into the store's datum shift search.
#include "Cli.h"

#include <velmora/datasource/CDataSource.h>
#include <velmora/measures/Envelope.h>
#include <velmora/transforms/datumshifts/DatumShift.h>
#include <velmora/transforms/CoordTransform.h>
#include <velmora/transforms/datumshifts/DatumShiftInfo.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace VelmoraCli {

using namespace Velmora;

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
    // The plain listing holds each shift's "VM" code in its first text and its name in the second.
    for (CT::DS::CDatumShiftInfo const & step : candidate)
      route.push_back({{CString("VM"), CString(step.GetIssuer().c_str())}, step.GetReverse()});
    routes.push_back(std::move(route));
  }
  return routes;
}


namespace {
// Square degrees of a shift's area of use; a shift without one serves the world.
double AreaOf(DB::CDataSource & store, RouteStep const & step)
{
  constexpr double kWorld = 360.0 * 180.0;
  std::unique_ptr<CT::DS::CDatumShift> shift(
    store.GetDatumShiftNonThrow(step.shift.issuer, step.shift.code));
  if (!shift)
    return 0.0;
  ML::CEnvelope const & area = shift->GetEnvelope();
  ML::CCoordPoint const * min = area.GetMinPoint();
  ML::CCoordPoint const * max = area.GetMaxPoint();
  if (area.GetAlwaysAccept() || !min || !max)
    return kWorld;
  double x0, y0, x1, y1;
  min->GetInternals(x0, y0);
  max->GetInternals(x1, y1);
  // An area across the antimeridian takes every longitude: no wider than the world.
  return std::clamp(x1 - x0, 0.0, 360.0) * std::max(0.0, y1 - y0);
}
} // namespace

Route const & WidestRoute(DB::CDataSource & store, std::vector<Route> const & candidates)
{
  Route const * best = &candidates.front();
  double bestArea = -1.0;
  for (Route const & route : candidates) {
    double area = std::numeric_limits<double>::max();
    for (RouteStep const & step : route)
      area = std::min(area, AreaOf(store, step));
    if (area > bestArea) {
      bestArea = area;
      best = &route;
    }
  }
  return *best;
}

} // namespace VelmoraCli
