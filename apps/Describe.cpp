// velmora info, search and routes: what the data file holds.
#include "Cli.h"
#include "PointText.h"

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/CSerializableData.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/CoordPoints.h>
#include <velmora/measures/Envelope.h>
#include <velmora/measures/Units.h>
#include <velmora/measures/Values.h>
#include <velmora/projections/Projection.h>
#include <velmora/refsys/CoordSys.h>
#include <velmora/refsys/Ellipsoid.h>
#include <velmora/refsys/FittedCoordSys.h>
#include <velmora/refsys/HorizontalDatum.h>
#include <velmora/refsys/PrimeMeridian.h>
#include <velmora/transforms/datumshifts/DatumShift.h>

#include <charconv>
#include <cstdio>

namespace VelmoraCli {

using namespace Velmora;

namespace {

// Each kind of object: its bit, the word --type takes, and how info names it.
struct Kind
{
  long type;
  char const * word;
  char const * name;
};

// Coordinate systems first: a code shared with another kind means the system.
constexpr Kind kKinds[] = {
  {kObjectGeodeticCoordSys, "geodetic", "geodetic coordinate system"},
  {kObjectProjectedCoordSys, "projected", "projected coordinate system"},
  {kObjectGeocentricCoordSys, "geocentric", "geocentric coordinate system"},
  {kObjectFittedCoordSys, "fitted", "fitted coordinate system"},
  {kObjectHorizontalDatum, "datum", "horizontal datum"},
  {kObjectEllipsoid, "ellipsoid", "ellipsoid"},
  {kObjectPrimeMeridian, "meridian", "prime meridian"},
  {kObjectDatumShift, "shift", "datum shift"},
  {kObjectAngularUnit, "angularunit", "angular unit"},
  {kObjectLinearUnit, "linearunit", "linear unit"},
  {kObjectEnvelope, "envelope", "envelope"},
  {kObjectCartesianPoint, "cartesianstyle", "cartesian point style"},
  {kObjectGeodeticPoint, "geodeticstyle", "geodetic point style"},
  {kObjectProjectedPoint, "projectedstyle", "projected point style"},
  {kObjectVerticalReference, "verticalreference", "vertical reference"},
  {kObjectVerticalDatum, "verticaldatum", "vertical datum"},
  {kObjectHeightModel, "heightmodel", "height model"},
  {kObjectCoordTransform, "transform", "coordinate transform"},
};

char const * KindName(long type)
{
  for (Kind const & k : kKinds)
    if (k.type == type)
      return k.name;
  return "object";
}

// The kinds --type names; "crs" is every coordinate system, no word every kind.
std::vector<long> KindsNamed(std::string const & word)
{
  std::vector<long> kinds;
  for (Kind const & k : kKinds)
    if (word.empty() || word == k.word || (word == "crs" && (k.type & kObjectAnyCoordSys)))
      kinds.push_back(k.type);
  if (kinds.empty()) {
    std::string words = "crs";
    for (Kind const & k : kKinds)
      words += std::string(", ") + k.word;
    throw CliError("unknown kind '" + word + "'; --type takes one of: " + words);
  }
  return kinds;
}

// The shortest text that reads back as the value, without an exponent.
std::string Number(double value)
{
  char text[400];
  auto const result = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed);
  return std::string(text, result.ptr);
}

// Twelve significant digits: a value derived from others, such as 1/f from two axes.
std::string Derived(double value)
{
  char text[64];
  auto const result = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 12);
  return std::string(text, result.ptr);
}

std::string Named(CSerializable const & object)
{
  std::string const ids = Identifiers(object);
  std::string text = Quoted(object.GetName());
  if (!ids.empty())
    text += " (" + ids + ")";
  return text;
}

void Line(char const * label, std::string const & value) { std::printf("%-16s %s\n", label, value.c_str()); }

void PrintParameters(CParameterCollection const & parameters)
{
  for (long i = 0; i < parameters.Count(); ++i) {
    CString const & name = parameters.ParameterNameAtIndex(i);
    std::string value;
    if (!parameters.IsItemSet(name)) {
      value = "(not set)";
    } else {
      switch (parameters.GetItemType(name)) {
      case CParameter::kDouble:
        value = Number(parameters.GetDouble(name));
        break;
      case CParameter::kLong:
        value = std::to_string(parameters.GetLong(name));
        break;
      case CParameter::kString:
        value = Utf8(parameters.GetString(name));
        break;
      case CParameter::kAngularValue: {
        ML::CAngularValue const & angle = parameters.GetAngularValue(name);
        value = Number(angle.GetValue()) + " " + Utf8(angle.GetUnits().GetAbbreviation());
        break;
      }
      case CParameter::kLinearValue: {
        ML::CLinearValue const & length = parameters.GetLinearValue(name);
        value = Number(length.GetValue()) + " " + Utf8(length.GetUnits().GetAbbreviation());
        break;
      }
      default:
        value = "(undetermined)";
      }
    }
    std::printf("  %-24s %s\n", Utf8(name).c_str(), value.c_str());
  }
}

void PrintEllipsoid(CS::CEllipsoid const & ellipsoid)
{
  Line("ellipsoid:", Named(ellipsoid));
  Line("", "a = " + Number(ellipsoid.GetSemiMajor().GetInternal()) + " m, 1/f = " +
             Derived(ellipsoid.GetInvFlattening()));
}

void PrintDatum(CS::CHorizontalDatum const & datum)
{
  Line("datum:", Named(datum));
  PrintEllipsoid(datum.GetEllipsoid());
  CS::CPrimeMeridian const & meridian = datum.GetPrimeMeridian();
  Line("prime meridian:", Named(meridian) + ", " + Number(meridian.GetLongitude().GetInternal()) +
                            " degrees from Greenwich");
}

void PrintArea(ML::CEnvelope const & envelope)
{
  ML::CCoordPoint const * low = envelope.GetMinPoint();
  ML::CCoordPoint const * high = envelope.GetMaxPoint();
  std::string text = envelope.GetName().isEmpty() ? std::string() : Quoted(envelope.GetName()) + ": ";
  if (envelope.GetAlwaysAccept() || !low || !high) {
    Line("area of use:", text + "everywhere");
    return;
  }
  double x0, y0, x1, y1;
  low->GetInternals(x0, y0);
  high->GetInternals(x1, y1);
  if (low->GetType() == ML::kGeodeticPoint)
    text += "longitude " + Number(x0) + " to " + Number(x1) + ", latitude " + Number(y0) + " to " + Number(y1);
  else
    text += "x " + Number(x0) + " to " + Number(x1) + ", y " + Number(y0) + " to " + Number(y1);
  Line("area of use:", text);
}

void PrintSystem(DB::CDataSource & store, CS::CCoordSys const & system)
{
  if (auto const * projected = dynamic_cast<CS::CProjectedCoordSys const *>(&system)) {
    Line("geodetic base:", Named(projected->GetGeodeticCoordSys()));
    PrintDatum(system.GetHorizontalDatum());
    CS::PJ::CProjection const & projection = projected->GetProjection();
    Line("projection:", Utf8(projection.GetTypeName()));
    PrintParameters(projection.GetParameters());
  } else if (auto const * fitted = dynamic_cast<CS::CFittedCoordSys const *>(&system)) {
    (void)fitted;
    PrintDatum(system.GetHorizontalDatum());
  } else {
    PrintDatum(system.GetHorizontalDatum());
  }
  AxisUnits const units = UnitsOf(store, system);
  Line("units:", units.names[0] + ", " + units.names[1] + ", heights " + units.names[2]);
  PrintArea(system.GetEnvelope());
}

void PrintShift(CT::DS::CDatumShift const & shift)
{
  Line("method:", Utf8(shift.GetTypeName()));
  Line("from datum:", Named(shift.GetSrcDatum()));
  Line("to datum:", Named(shift.GetDestDatum()));
  if (shift.GetReverseUsage())
    Line("stored as:", "reversed");
  PrintParameters(shift.GetParameters());
  PrintArea(shift.GetEnvelope());
}

} // namespace

int RunInfo(Options const & options)
{
  if (options.positional.size() != 1)
    throw CliError("info takes one identifier, such as EPSG:4326");
  Code const code = ParseCode(options.positional.front());
  std::unique_ptr<DB::CDataSource> store = OpenStore(DataFilePath(options.data));
  long found = 0;
  for (Kind const & k : kKinds) {
    if (store->FindObject(k.type, code.issuer, code.code)) {
      found = k.type;
      break;
    }
  }
  if (!found) // the store's own words for an unknown code
    std::unique_ptr<CS::CCoordSys>(store->GetCoordSys(code.issuer, code.code));
  std::unique_ptr<CSerializable> object(store->GetSerializable(found, code.issuer, code.code));
  if (!object)
    throw CliError(ToText(code) + " cannot be read");
  Line("kind:", KindName(found));
  Line("name:", Utf8(object->GetName()));
  Line("identifiers:", Identifiers(*object));
  if (!object->GetRemarks().isEmpty())
    Line("remarks:", Utf8(object->GetRemarks()));
  if (auto const * system = dynamic_cast<CS::CCoordSys const *>(object.get()))
    PrintSystem(*store, *system);
  else if (auto const * shift = dynamic_cast<CT::DS::CDatumShift const *>(object.get()))
    PrintShift(*shift);
  else if (auto const * datum = dynamic_cast<CS::CHorizontalDatum const *>(object.get()))
    PrintDatum(*datum);
  else if (auto const * ellipsoid = dynamic_cast<CS::CEllipsoid const *>(object.get()))
    PrintEllipsoid(*ellipsoid);
  else if (auto const * envelope = dynamic_cast<ML::CEnvelope const *>(object.get()))
    PrintArea(*envelope);
  return kExitOk;
}

int RunSearch(Options const & options)
{
  if (options.positional.size() != 1)
    throw CliError("search takes one text to look for in names");
  std::vector<long> const kinds = KindsNamed(options.type);
  std::unique_ptr<DB::CDataSource> store = OpenStore(DataFilePath(options.data));
  CString const text(options.positional.front());
  OutputBuffer out(stdout);
  long count = 0;
  for (long type : kinds) {
    for (CSerializableDataDB * body : store->SearchName(type, DB::CDataSource::GetGroupID(type), text)) {
      std::unique_ptr<CSerializable> object(DB::CDataSource::ObjectFactory(*body));
      out.Append(PreferredCode(*object));
      out.Append('\t');
      out.Append(KindName(type));
      out.Append('\t');
      out.Append(Utf8(object->GetName()));
      out.Append('\n');
      ++count;
    }
  }
  out.Flush();
  if (count == 0) {
    std::fprintf(stderr, "velmora: no name contains \"%s\"\n", options.positional.front().c_str());
    return kExitSomeFailed;
  }
  return kExitOk;
}

int RunRoutes(Options const & options)
{
  if (options.from.empty() || options.to.empty())
    throw CliError("routes needs --from AUTH:CODE and --to AUTH:CODE");
  Code const from = ParseCode(options.from);
  Code const to = ParseCode(options.to);
  std::unique_ptr<DB::CDataSource> store = OpenStore(DataFilePath(options.data));
  std::unique_ptr<CS::CCoordSys> source(store->GetCoordSys(from.issuer, from.code));
  std::unique_ptr<CS::CCoordSys> target(store->GetCoordSys(to.issuer, to.code));
  CString const datum = VmCode(source->GetHorizontalDatum());
  if (!datum.isEmpty() && datum == VmCode(target->GetHorizontalDatum())) {
    std::printf("both systems are on datum \"%s\": no shift is needed\n",
                Utf8(source->GetHorizontalDatum().GetName()).c_str());
    return kExitOk;
  }
  std::vector<Route> const routes = CandidateRoutes(*store, *source, *target);
  if (routes.empty()) {
    std::fprintf(stderr, "velmora: no route from \"%s\" to \"%s\"\n", Utf8(source->GetHorizontalDatum().GetName()).c_str(),
                 Utf8(target->GetHorizontalDatum().GetName()).c_str());
    return kExitSomeFailed;
  }
  int index = 0;
  for (Route const & route : routes) {
    std::string text;
    for (RouteStep const & step : route) {
      std::unique_ptr<CT::DS::CDatumShift> shift(store->GetDatumShiftNonThrow(step.shift.issuer, step.shift.code));
      if (!text.empty())
        text += ", then ";
      if (step.reversed)
        text += '-';
      text += ToText(step.shift);
      if (shift)
      {
        text += ' ';
        text += Quoted(shift->GetName());
        text += " (";
        text += Utf8(shift->GetTypeName());
        text += ')';
      }
    }
    std::printf("%d. %s\n", ++index, text.c_str());
  }
  return kExitOk;
}

} // namespace VelmoraCli
