// velmora convert: points through a coordinate transform, line by line.
#include "Cli.h"
#include "PointText.h"

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/CoordPoints.h>
#include <velmora/transforms/CoordTransform.h>

#include <cstdio>
#include <unistd.h>

namespace VelmoraCli {

using namespace Velmora;

namespace {

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

void AddStep(DB::CDataSource & store, CT::CCoordTransform & transform, RouteStep const & step)
{
  std::unique_ptr<CT::DS::CDatumShift> shift(store.GetDatumShift(step.shift.issuer, step.shift.code));
  shift->SetReverseUsage(step.reversed);
  transform.GetDatumShifts().AddBack(*shift);
}

// Fills the chain as asked and says how it was chosen.
std::string SetUpRoute(DB::CDataSource & store, CT::CCoordTransform & transform, Options const & options,
                       CS::CCoordSys const & source, CS::CCoordSys const & target)
{
  transform.GetDatumShifts().Clear();
  if (options.route && *options.route == "none")
    return "none (--route none)";
  if (options.route) {
    std::string const & list = *options.route;
    for (std::size_t start = 0; start <= list.size();) {
      std::size_t const comma = std::min(list.find(',', start), list.size());
      AddStep(store, transform, ParseStep(list.substr(start, comma - start)));
      start = comma + 1;
    }
    CheckChain(transform, source, target);
    return "given: " + DescribeChain(transform);
  }
  CString const sourceDatum = VmCode(source.GetHorizontalDatum());
  if (!sourceDatum.isEmpty() && sourceDatum == VmCode(target.GetHorizontalDatum()))
    return "none (both systems are on datum " + DatumText(source) + ")";
  if (EstablishRoute(store, transform)) {
    if (transform.GetDatumShifts().Count() == 0)
      return "none (the datums are equal)";
    return "found by the store's route search: " + DescribeChain(transform);
  }
  std::vector<Route> const candidates = CandidateRoutes(store, source, target);
  if (candidates.empty())
    throw CliError("no datum shift found from " + DatumText(source) + " to " + DatumText(target) +
                   "; give one with --route, or convert without one with --route none");
  for (RouteStep const & step : WidestRoute(store, candidates))
    AddStep(store, transform, step);
  return "widest of " + std::to_string(candidates.size()) + " candidate routes: " + DescribeChain(transform);
}

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
  Code const from = ParseCode(options.from);
  Code const to = ParseCode(options.to);
  std::unique_ptr<DB::CDataSource> store = OpenStore(DataFilePath(options.data));
  std::unique_ptr<CS::CCoordSys> source(store->GetCoordSys(from.issuer, from.code));
  std::unique_ptr<CS::CCoordSys> target(store->GetCoordSys(to.issuer, to.code));
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
  CT::CCoordTransform transform(source.get(), target.get());
  std::string const how = SetUpRoute(*store, transform, options, *source, *target);
  if (options.verbose)
    std::fprintf(stderr, "velmora: %s \"%s\" to %s \"%s\"%s; datum shift: %s\n", options.from.c_str(),
                 Utf8(source->GetName()).c_str(), options.to.c_str(), Utf8(target->GetName()).c_str(),
                 options.inverse ? ", inverse" : "", how.c_str());

  bool const inverse = options.inverse;
  CS::CCoordSys const & input = inverse ? *target : *source;
  CS::CCoordSys const & output = inverse ? *source : *target;
  int const planeDecimals = options.precision.value_or(output.GetType() == CS::kGeodeticCoordSys ? 9 : 4);
  int const heightDecimals = options.precision.value_or(4);
  // Three numbers take the point path, on points made once.
  std::unique_ptr<ML::CCoordPoint> in3(ML::CCoordPointFactory::CreatePoint(input.GetPointStyle().GetType(), 3));
  std::unique_ptr<ML::CCoordPoint> out3(ML::CCoordPointFactory::CreatePoint(output.GetPointStyle().GetType(), 3));

  OutputBuffer out(stdout);
  long number = 0;
  long failed = 0;
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
    try {
      bool done;
      if (count == 2) {
        done = inverse ? transform.ConvertBack(v[0], v[1]) : transform.ConvertAhead(v[0], v[1]);
      } else {
        in3->SetInternals(v[0], v[1], v[2]);
        done = inverse ? transform.ConvertBack(*in3, *out3) : transform.ConvertAhead(*in3, *out3);
        out3->GetInternals(v[0], v[1], v[2]);
      }
      if (!done) {
        fail("the point cannot be converted");
        return;
      }
    } catch (EX::CVelmoraException const & e) {
      fail(Utf8(e.GetFullMessage()));
      return;
    }
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
  out.Flush();
  return failed == 0 ? kExitOk : kExitSomeFailed;
}

} // namespace VelmoraCli
