// The tool's only calls into the store's datum shift search.
#include "Cli.h"

#include <velmora/datasource/CDataSource.h>
#include <velmora/measures/Envelope.h>
#include <velmora/transforms/datumshifts/DatumShift.h>
#include <velmora/transforms/CoordTransform.h>
#include <velmora/transforms/datumshifts/DatumShiftInfo.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <map>
#include <memory>
#include <tuple>

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
double AreaOf(CT::DS::CDatumShift const & shift)
{
  constexpr double kWorld = 360.0 * 180.0;
  ML::CEnvelope const & area = shift.GetEnvelope();
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

// What the choice weighs of one candidate.
struct Weighed
{
  Route const * route = nullptr;
  std::size_t order = 0;             // the store's own pick first, then the widest areas
  double area = 0.0;                 // the smallest area of use of its shifts
  std::vector<std::string> missing;  // grid files not found
  bool holds = true;                 // every area of use holds the point
  bool grids = false;                // it takes a grid
};

} // namespace

std::vector<std::string> GridFolders(std::string const & given)
{
  std::vector<std::string> folders;
  auto add = [&](char const * list) {
    if (!list)
      return;
    std::string text(list);
    for (std::size_t start = 0; start <= text.size();) {
      std::size_t const end = std::min(text.find(':', start), text.size());
      if (end > start)
        folders.push_back(text.substr(start, end - start));
      start = end + 1;
    }
  };
  add(given.empty() ? nullptr : given.c_str());
  add(std::getenv("VELMORA_GRIDS"));
  add(std::getenv("PROJ_DATA"));
  add(std::getenv("PROJ_LIB"));
  add("/usr/share/proj");
  return folders;
}

std::vector<std::string> ResolveGrids(CT::DS::CDatumShift & shift, std::vector<std::string> const & folders,
                                      std::vector<std::string> * used)
{
  // The parameters that name a whole file, by method.
  static std::map<int, std::vector<char const *>> const kNames = {
    {CT::DS::CDatumShift::kCanadianNTV2, {"cantrans_file"}},
    {CT::DS::CDatumShift::kNadcon, {"las_name", "los_name"}},
    {CT::DS::CDatumShift::kNTFToRGF93, {"file"}}};
  std::vector<std::string> missing;
  auto const names = kNames.find(shift.GetType());
  if (names == kNames.end())
    return missing;
  std::error_code error;
  for (char const * parameter : names->second) {
    CString const key(parameter);
    if (!shift.GetParameters().IsItemSet(key))
      continue;
    std::string const name = Utf8(shift.GetParameters().GetString(key));
    std::string found;
    if (std::filesystem::is_regular_file(name, error))
      found = name;
    for (std::size_t i = 0; found.empty() && i < folders.size(); ++i)
      if (std::filesystem::is_regular_file(folders[i] + "/" + name, error))
        found = folders[i] + "/" + name;
    if (found.empty()) {
      missing.push_back(name);
      continue;
    }
    shift.GetParameters().SetString(key, CString(QString::fromStdString(found)));
    if (used)
      used->push_back(found);
  }
  return missing;
}

std::string RouteText(Route const & route)
{
  std::string text;
  for (RouteStep const & step : route)
    text += (text.empty() ? "" : ", then ") + std::string(step.reversed ? "-" : "") + ToText(step.shift);
  return text;
}

Route ChooseRoute(DB::CDataSource & store, std::vector<Route> const & candidates, bool storePick,
                  std::vector<std::string> const & folders, double const * point, std::vector<std::string> & skipped)
{
  std::vector<Weighed> weighed;
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    Weighed w;
    w.route = &candidates[i];
    w.area = std::numeric_limits<double>::max();
    for (RouteStep const & step : candidates[i]) {
      std::unique_ptr<CT::DS::CDatumShift> shift(store.GetDatumShiftNonThrow(step.shift.issuer, step.shift.code));
      if (!shift) {
        w.missing.push_back(ToText(step.shift));
        continue;
      }
      w.area = std::min(w.area, AreaOf(*shift));
      std::vector<std::string> const missing = ResolveGrids(*shift, folders, nullptr);
      w.missing.insert(w.missing.end(), missing.begin(), missing.end());
      w.grids = w.grids || shift->GetType() == CT::DS::CDatumShift::kCanadianNTV2 ||
                shift->GetType() == CT::DS::CDatumShift::kNadcon;
      ML::CEnvelope const & area = shift->GetEnvelope();
      if (point && !area.GetAlwaysAccept() && area.GetMinPoint() && !area.InBounds(point[0], point[1]))
        w.holds = false;
    }
    weighed.push_back(std::move(w));
  }
  // The store's own pick stays first; the others by their areas, widest first.
  std::stable_sort(weighed.begin() + (storePick ? 1 : 0), weighed.end(),
                   [](Weighed const & a, Weighed const & b) { return a.area > b.area; });
  for (std::size_t i = 0; i < weighed.size(); ++i)
    weighed[i].order = i;
  // Runnable first; then those whose areas hold the point, those that take a
  // national grid (the most accurate of a registry's shifts, where present),
  // and the shorter.
  auto const key = [](Weighed const & w) {
    return std::make_tuple(!w.missing.empty(), !w.holds, !w.grids, w.route->size(), w.order);
  };
  std::sort(weighed.begin(), weighed.end(), [&](Weighed const & a, Weighed const & b) { return key(a) < key(b); });
  Weighed const & best = weighed.front();
  if (!best.missing.empty())
    throw CliError("no route can run here: grid file '" + best.missing.front() +
                   "' not found (give its folder with --grids or VELMORA_GRIDS)");
  for (Weighed const & w : weighed) {
    if (w.order >= best.order)
      continue;
    std::string text = RouteText(*w.route) + ": ";
    text += !w.missing.empty() ? "grid file '" + w.missing.front() + "' not found"
            : !w.holds         ? "its area of use does not hold the first point"
                               : "a national grid route is taken before it";
    skipped.push_back(text);
  }
  return *best.route;
}

} // namespace VelmoraCli
