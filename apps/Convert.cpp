// velmora convert: points through a coordinate transform, line by line.
#include "Cli.h"
#include "PointText.h"

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/CoordPoints.h>
#include <velmora/transforms/CoordTransform.h>
#include <velmora/vertical/VerticalReference.h>

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace VelmoraCli {

using namespace Velmora;

namespace {

// Routes passed over that --verbose names, at the most.
constexpr std::size_t kSkippedShown = 10;

// "VM:1", "-VM:1" or "VM:1:reverse": a stored shift and the way it is used.
RouteStep ParseStep(std::string item)
{
  bool reversed = false;
  std::string const suffix = ":reverse";
  if (!item.empty() && item.front() == '-') {
    reversed = true;
    item.erase(0, 1);
  } else if (item.size() > suffix.size() && item.compare(item.size() - suffix.size(), suffix.size(), suffix) == 0) {
    reversed = true;
    item.erase(item.size() - suffix.size());
  }
  return {ParseCode(item), reversed};
}

std::string Describe(CT::DS::CDatumShift const & shift)
{
  std::string text = PreferredCode(shift) + " " + Quoted(shift.GetName());
  if (shift.GetReverseUsage())
    text += " reversed";
  return text;
}

std::string DescribeChain(CT::CCoordTransform const & transform)
{
  CT::DS::CDatumShiftCollection const & chain = transform.GetDatumShifts();
  std::string text;
  for (long i = 0; i < chain.Count(); ++i) {
    CT::DS::CDatumShift * shift = nullptr;
    if (!chain.GetItem(i, &shift) || !shift)
      continue;
    // A stored view hands out new objects; a concrete chain lends its own.
    std::unique_ptr<CT::DS::CDatumShift> owned(chain.IsConcrete() ? nullptr : shift);
    if (!text.empty())
      text += ", then ";
    text += Describe(*shift);
  }
  return text;
}

std::string DatumText(CS::CCoordSys const & system)
{
  CS::CHorizontalDatum const & datum = system.GetHorizontalDatum();
  return Quoted(datum.GetName()) + " (" + PreferredCode(datum) + ")";
}

// Warns when the given shifts do not lead from the source datum to the target datum.
void CheckChain(CT::CCoordTransform const & transform, CS::CCoordSys const & source, CS::CCoordSys const & target)
{
  CT::DS::CDatumShiftCollection const & chain = transform.GetDatumShifts();
  CString at = VmCode(source.GetHorizontalDatum());
  for (long i = 0; i < chain.Count(); ++i) {
    CT::DS::CDatumShift * shift = nullptr;
    if (!chain.GetItem(i, &shift) || !shift)
      continue;
    std::unique_ptr<CT::DS::CDatumShift> owned(chain.IsConcrete() ? nullptr : shift);
    bool const reversed = shift->GetReverseUsage();
    CS::CHorizontalDatum const & from = reversed ? shift->GetDestDatum() : shift->GetSrcDatum();
    CS::CHorizontalDatum const & to = reversed ? shift->GetSrcDatum() : shift->GetDestDatum();
    if (VmCode(from) != at)
      std::fprintf(stderr, "velmora: warning: %s starts on datum \"%s\", not where the route stands\n",
                   Describe(*shift).c_str(), Utf8(from.GetName()).c_str());
    at = VmCode(to);
  }
  if (at != VmCode(target.GetHorizontalDatum()))
    std::fprintf(stderr, "velmora: warning: the route does not end on the target datum %s\n",
                 DatumText(target).c_str());
}

// The route's shifts into the chain, their grid files found in the folders.
void SetChain(DB::CDataSource & store, CT::CCoordTransform & transform, Route const & route,
              std::vector<std::string> const & folders, std::vector<std::string> & grids)
{
  transform.GetDatumShifts().Clear();
  for (RouteStep const & step : route) {
    std::unique_ptr<CT::DS::CDatumShift> shift(store.GetDatumShift(step.shift.issuer, step.shift.code));
    std::vector<std::string> const missing = ResolveGrids(*shift, folders, &grids);
    if (!missing.empty())
      throw CliError("grid file '" + missing.front() + "' of " + ToText(step.shift) +
                     " not found (give its folder with --grids or VELMORA_GRIDS)");
    shift->SetReverseUsage(step.reversed);
    transform.GetDatumShifts().AddBack(*shift);
  }
}

// The shifts of the chain as a route.
Route RouteOf(CT::CCoordTransform const & transform)
{
  Route route;
  CT::DS::CDatumShiftCollection const & chain = transform.GetDatumShifts();
  for (long i = 0; i < chain.Count(); ++i) {
    CT::DS::CDatumShift * shift = nullptr;
    if (!chain.GetItem(i, &shift) || !shift)
      continue;
    std::unique_ptr<CT::DS::CDatumShift> owned(chain.IsConcrete() ? nullptr : shift);
    route.push_back({{CString("VM"), VmCode(*shift)}, shift->GetReverseUsage()});
  }
  return route;
}

// Fills the chain as asked and says how it was chosen. `point`, when given,
// is the first point on the source datum, which the areas of use should hold.
std::string SetUpRoute(DB::CDataSource & store, CT::CCoordTransform & transform, Options const & options,
                       CS::CCoordSys const & source, CS::CCoordSys const & target, double const * point)
{
  transform.GetDatumShifts().Clear();
  if (options.route && *options.route == "none")
    return "none (--route none)";
  std::vector<std::string> const folders = GridFolders(options.grids);
  std::vector<std::string> grids;
  auto const withGrids = [&grids](std::string text) {
    for (std::string const & grid : grids)
      text += "; grid " + grid;
    return text;
  };
  if (options.route) {
    Route given;
    std::string const & list = *options.route;
    for (std::size_t start = 0; start <= list.size();) {
      std::size_t const comma = std::min(list.find(',', start), list.size());
      given.push_back(ParseStep(list.substr(start, comma - start)));
      start = comma + 1;
    }
    SetChain(store, transform, given, folders, grids);
    CheckChain(transform, source, target);
    return withGrids("given: " + DescribeChain(transform));
  }
  CString const sourceDatum = VmCode(source.GetHorizontalDatum());
  if (!sourceDatum.isEmpty() && sourceDatum == VmCode(target.GetHorizontalDatum()))
    return "none (both systems are on datum " + DatumText(source) + ")";
  // The store's own pick first, then every candidate it lists.
  std::vector<Route> candidates;
  bool const found = EstablishRoute(store, transform);
  if (found && transform.GetDatumShifts().Count() == 0)
    return "none (the datums are equal)";
  Route const pick = found ? RouteOf(transform) : Route();
  candidates.push_back(pick);
  auto const same = [](Route const & a, Route const & b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](RouteStep const & x, RouteStep const & y) {
             return x.reversed == y.reversed && x.shift.code == y.shift.code && x.shift.issuer == y.shift.issuer;
           });
  };
  for (Route & route : CandidateRoutes(store, source, target))
    if (!same(route, pick))
      candidates.push_back(std::move(route));
  if (!found)
    candidates.erase(candidates.begin());
  if (candidates.empty())
    throw CliError("no datum shift found from " + DatumText(source) + " to " + DatumText(target) +
                   "; give one with --route, or convert without one with --route none");
  std::vector<std::string> skipped;
  Route const chosen = ChooseRoute(store, candidates, found, folders, point, skipped);
  SetChain(store, transform, chosen, folders, grids);
  std::string how = found && same(chosen, pick)
                      ? "found by the store's route search: "
                      : "chosen of " + std::to_string(candidates.size()) + " candidate routes: ";
  how = withGrids(how + DescribeChain(transform));
  for (std::size_t i = 0; i < skipped.size() && i < kSkippedShown; ++i)
    how += "\nvelmora: passed over " + skipped[i];
  if (skipped.size() > kSkippedShown)
    how += "\nvelmora: and " + std::to_string(skipped.size() - kSkippedShown) + " more routes passed over";
  return how;
}

// The geodetic system whose vertical reference says what a system's heights mean.
CS::CGeodeticCoordSys const * HeightSystem(CS::CCoordSys const & system)
{
  if (auto const * projected = dynamic_cast<CS::CProjectedCoordSys const *>(&system))
    return &projected->GetGeodeticCoordSys();
  return dynamic_cast<CS::CGeodeticCoordSys const *>(&system);
}

// Where one system has a vertical reference and the other none, the other's
// heights are above its ellipsoid, as PROJ takes them too: it gets a
// reference without datum or model. True when heights are to be adjusted.
bool GiveEllipsoidalHeights(CS::CCoordSys & source, CS::CCoordSys & target)
{
  auto const has = [](CS::CCoordSys const & s) {
    CS::CGeodeticCoordSys const * geodetic = HeightSystem(s);
    return geodetic && geodetic->GetVerticalReference();
  };
  if (has(source) == has(target))
    return has(source);
  CS::CCoordSys & plain = has(source) ? target : source;
  CS::VR::CVerticalReference const ellipsoidal;
  if (auto * geodetic = dynamic_cast<CS::CGeodeticCoordSys *>(&plain)) {
    geodetic->SetVerticalReference(ellipsoidal);
  } else if (auto * projected = dynamic_cast<CS::CProjectedCoordSys *>(&plain)) {
    CS::CGeodeticCoordSys base(projected->GetGeodeticCoordSys());
    base.SetVerticalReference(ellipsoidal);
    projected->SetGeodeticCoordSys(base);
  } else {
    return false; // geocentric heights are ellipsoidal already; fitted systems keep theirs
  }
  return true;
}

// The failures of an envelope test, of a system or a shift.
bool IsOutsideArea(EX::CVelmoraException const & e)
{
  return e.GetErrorCode() == EX::CVelmoraException::kInputOutOfBounds ||
         e.GetErrorCode() == EX::CVelmoraException::kOutputOutOfBounds;
}

// Every envelope accepts while one of these lives.
struct EnvelopesIgnored
{
  EnvelopesIgnored() { DB::CDataSource::SetIgnoreEnvelope(true); }
  ~EnvelopesIgnored() { DB::CDataSource::SetIgnoreEnvelope(false); }
  EnvelopesIgnored(EnvelopesIgnored const &) = delete;
  EnvelopesIgnored & operator=(EnvelopesIgnored const &) = delete;
};

bool IsNumber(std::string const & text)
{
  double values[3];
  int count = 0;
  ParsePoint(text, values, count);
  return count == 1 && text.find_first_of(" \t,") == std::string::npos;
}

// Points on the command line: two or three numbers make one point, else each
// argument is a line of its own ("9 45").
std::vector<std::string> ArgumentLines(std::vector<std::string> const & arguments)
{
  bool allNumbers = arguments.size() >= 2 && arguments.size() <= 3;
  for (std::string const & a : arguments)
    allNumbers = allNumbers && IsNumber(a);
  if (!allNumbers)
    return arguments;
  std::string line;
  for (std::string const & a : arguments)
    line += (line.empty() ? "" : " ") + a;
  return {line};
}

} // namespace

int RunConvert(Options const & options)
{
  if (options.from.empty() || options.to.empty())
    throw CliError("convert needs --from AUTH:CODE and --to AUTH:CODE");
  std::unique_ptr<DB::CDataSource> store = OpenStore(DataFilePath(options.data));
  std::unique_ptr<CS::CCoordSys> source(ResolveCoordSys(*store, options.from));
  std::unique_ptr<CS::CCoordSys> target(ResolveCoordSys(*store, options.to));
  // A system whose references a data file left dangling, down to its
  // datum's ellipsoid, converts to nothing sensible: it stops here with the
  // code of what is missing.
  for (CS::CCoordSys const * system : {source.get(), target.get()}) {
    CS::CHorizontalDatum const & datum = system->GetHorizontalDatum();
    for (CSerializable const * part : {static_cast<CSerializable const *>(system),
                                       static_cast<CSerializable const *>(&datum),
                                       static_cast<CSerializable const *>(&datum.GetEllipsoid())})
      if (!part->IsFullyDefined(store.get()))
        throw EX::CVelmoraException(EX::CVelmoraException::kNotFullySpecified, "velmora convert",
                                    CString(VmCode(*part)));
  }
  bool const vertical = GiveEllipsoidalHeights(*source, *target);
  CT::CCoordTransform transform(source.get(), target.get());
  // The route is chosen at the first point, whose place the areas of use should hold.
  bool routed = false;
  auto const setUp = [&](double const * point) {
    routed = true;
    std::string const how = SetUpRoute(*store, transform, options, *source, *target, point);
    // Heights follow the vertical references once the chain is set.
    if (vertical)
      transform.InitializeVerticalTransform();
    if (options.verbose)
      std::fprintf(stderr, "velmora: %s \"%s\" to %s \"%s\"%s; datum shift: %s\n", options.from.c_str(),
                   Utf8(source->GetName()).c_str(), options.to.c_str(), Utf8(target->GetName()).c_str(),
                   options.inverse ? ", inverse" : "", how.c_str());
  };

  bool const inverse = options.inverse;
  CS::CCoordSys const & input = inverse ? *target : *source;
  CS::CCoordSys const & output = inverse ? *source : *target;
  // Each system's own units unless --si; internal units need no scaling.
  AxisUnits const inUnits = options.si ? AxisUnits{} : UnitsOf(*store, input);
  AxisUnits const outUnits = options.si ? AxisUnits{} : UnitsOf(*store, output);
  bool const scaleIn = !inUnits.IsInternal(), scaleOut = !outUnits.IsInternal();
  int const planeDecimals = options.precision.value_or(output.GetType() == CS::kGeodeticCoordSys ? 9 : 4);
  int const heightDecimals = options.precision.value_or(4);
  // Three numbers take the point path, on points made once.
  std::unique_ptr<ML::CCoordPoint> in3(ML::CCoordPointFactory::CreatePoint(input.GetPointStyle().GetType(), 3));
  std::unique_ptr<ML::CCoordPoint> out3(ML::CCoordPointFactory::CreatePoint(output.GetPointStyle().GetType(), 3));

  bool const strict = options.strict;
  OutputBuffer out(stdout);
  long number = 0;
  long failed = 0;
  long outside = 0;
  auto fail = [&](std::string const & why) {
    out.Append("*\n");
    ++failed;
    std::fprintf(stderr, "velmora: line %ld: %s\n", number, why.c_str());
  };
  auto convert = [&](std::string_view line) {
    ++number;
    double v[3];
    int count = 0;
    LineKind const kind = ParsePoint(line, v, count);
    if (kind == LineKind::kBlank) {
      out.Append('\n');
      return;
    }
    if (kind == LineKind::kNotAPoint) {
      fail("not a point (two or three numbers): \"" + std::string(line) + "\"");
      return;
    }
    if (scaleIn)
      for (int i = 0; i < count; ++i)
        v[i] *= inUnits.perUnit[i];
    double const given[3] = {v[0], v[1], v[2]};
    if (!routed) {
      double place[2] = {v[0], v[1]};
      bool placed = false;
      try {
        EnvelopesIgnored ignored;
        placed = input.ToGeodeticBase(place[0], place[1]);
      } catch (EX::CVelmoraException const &) {
      }
      setUp(placed ? place : nullptr);
    }
    auto run = [&]() {
      if (count == 2)
        return inverse ? transform.ConvertBack(v[0], v[1]) : transform.ConvertAhead(v[0], v[1]);
      in3->SetInternals(v[0], v[1], v[2]);
      bool const done = inverse ? transform.ConvertBack(*in3, *out3) : transform.ConvertAhead(*in3, *out3);
      out3->GetInternals(v[0], v[1], v[2]);
      return done;
    };
    try {
      bool done;
      try {
        done = run();
      } catch (EX::CVelmoraException const & e) {
        if (strict || !IsOutsideArea(e))
          throw;
        // Outside an area of use: converted all the same, and counted.
        ++outside;
        std::copy(given, given + 3, v);
        EnvelopesIgnored ignored;
        done = run();
      }
      if (!done) {
        fail("the point cannot be converted");
        return;
      }
    } catch (EX::CVelmoraException const & e) {
      fail(Utf8(e.GetFullMessage()));
      return;
    }
    if (scaleOut)
      for (int i = 0; i < count; ++i)
        v[i] /= outUnits.perUnit[i];
    out.AppendFixed(v[0], planeDecimals);
    out.Append(' ');
    out.AppendFixed(v[1], planeDecimals);
    if (count == 3) {
      out.Append(' ');
      out.AppendFixed(v[2], heightDecimals);
    }
    out.Append('\n');
  };

  if (!options.positional.empty()) {
    for (std::string const & line : ArgumentLines(options.positional))
      convert(line);
  } else {
    LineReader reader(STDIN_FILENO);
    std::string_view line;
    while (reader.Next(line))
      convert(line);
  }
  if (!routed)
    setUp(nullptr);
  out.Flush();
  if (outside)
    std::fprintf(stderr,
                 "velmora: %ld point%s lay outside an area of use and %s converted all the same "
                 "(--strict refuses them)\n",
                 outside, outside == 1 ? "" : "s", outside == 1 ? "was" : "were");
  return failed == 0 ? kExitOk : kExitSomeFailed;
}

} // namespace VelmoraCli
