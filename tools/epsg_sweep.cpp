// epsg_sweep: the shipped data file against PROJ, object by object.
//
// Every projected system of the EPSG registry that PROJ knows is taken from
// its own geodetic base to the plane and back, on three points of its area of
// use, by the library (the pair path a user's program takes) and by PROJ
// (proj_create_crs_to_crs between the same two EPSG codes, normalised for
// visualisation); every EPSG transformation between two geographic systems
// that PROJ can run here is taken forward on three points of its area. The
// counts by EPSG method are printed, and with --markdown written as the
// README's coverage tables. The exit status is 1 when any result is wrong.
//
//   epsg_sweep --data velmora.xml [--markdown FILE] [--only CODE,...] [--list]
#include <velmora/velmora.h>

#include <proj.h>

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace Velmora;

namespace {

// Tolerances of the comparison.
constexpr double kPlaneTolerance = 1e-3;        // metres, projected coordinates
constexpr double kInverseTolerance = 1e-9;      // degrees, back from the plane
constexpr double kShiftTolerance = 1e-8;        // degrees, a datum shift forward
constexpr double kDegreesPerRadian = 57.29577951308232;

// The transverse Mercator methods run the library's eighth-order series,
// which holds to 0.1 mm within this many degrees of the central meridian and
// drifts from the exact projection beyond: points there are measured and
// reported, not judged.
constexpr double kSeriesDomain = 4.0;
bool IsSeriesMethod(std::string const & method)
{
  return method == "9807" || method == "9808" || method == "1111";
}

// The Lambert conformal methods' inverse stops its iteration once a step
// is below 1e-7 radian, as the library's conic is specified: it leaves up to
// 2.7e-8 degree (measured against PROJ over the cone), judged here at this.
constexpr double kLambertInverse = 4e-8;
double InverseTolerance(std::string const & method)
{
  return method == "9801" || method == "9802" || method == "9803" ? kLambertInverse : kInverseTolerance;
}

// Methods whose PROJ formula is not the registry's: the library follows the
// registry's Guidance Note (its worked example is checked among the
// projection tests) and the sweep does not judge it against PROJ.
bool ProjDiffers(std::string const & method)
{
  return method == "9803"; // PROJ 9.1 leaves out the 29.2985" turn of Belgium's Lambert
}

enum class Outcome { kRight, kRefused, kWrong, kAbsent, kNotJudged };

struct Tally
{
  std::string name;
  int right = 0, refused = 0, wrong = 0, absent = 0, notJudged = 0;
  int Total() const { return right + refused + wrong + absent + notJudged; }
  void Add(Outcome o)
  {
    switch (o) {
    case Outcome::kRight: ++right; break;
    case Outcome::kRefused: ++refused; break;
    case Outcome::kWrong: ++wrong; break;
    case Outcome::kAbsent: ++absent; break;
    case Outcome::kNotJudged: ++notJudged; break;
    }
  }
};

using Tallies = std::map<std::string, Tally>; // by EPSG method code

struct Options
{
  std::string data, markdown;
  std::set<std::string> only;
  bool list = false; // every system that is not right, one line each
};

struct Proj
{
  PJ_CONTEXT * ctx = proj_context_create();
  ~Proj() { proj_context_destroy(ctx); }
};

// A PROJ object released when it goes.
struct PjPtr
{
  PJ * pj = nullptr;
  explicit PjPtr(PJ * p = nullptr) : pj(p) {}
  PjPtr(PjPtr const &) = delete;
  PjPtr & operator=(PjPtr const &) = delete;
  ~PjPtr()
  {
    if (pj)
      proj_destroy(pj);
  }
  explicit operator bool() const { return pj != nullptr; }
};

// A geographic system as PROJ counts its numbers: longitudes from its prime
// meridian, both angles in its axis unit.
struct GeographicFrame
{
  double meridian = 0.0;       // degrees east of Greenwich
  double degreesPerUnit = 1.0; // of the axes
};

bool FrameOf(PJ_CONTEXT * ctx, PJ * crs, GeographicFrame & frame)
{
  PjPtr pm(proj_get_prime_meridian(ctx, crs));
  PjPtr cs(proj_crs_get_coordinate_system(ctx, crs));
  double longitude = 0.0, toRadians = 0.0, axisToRadians = 0.0;
  if (!pm || !cs || !proj_prime_meridian_get_parameters(ctx, pm.pj, &longitude, &toRadians, nullptr) ||
      !proj_cs_get_axis_info(ctx, cs.pj, 0, nullptr, nullptr, nullptr, &axisToRadians, nullptr, nullptr, nullptr))
    return false;
  frame.meridian = longitude * toRadians * kDegreesPerRadian;
  frame.degreesPerUnit = axisToRadians * kDegreesPerRadian;
  return true;
}

double Wrap180(double lon)
{
  lon = std::fmod(lon, 360.0);
  if (lon > 180.0)
    lon -= 360.0;
  else if (lon < -180.0)
    lon += 360.0;
  return lon;
}

// Three points of an area: its middle and two points a quarter in from
// opposite corners. Longitudes from Greenwich, in -180..180.
bool AreaPoints(PJ_CONTEXT * ctx, PJ * object, std::vector<std::pair<double, double>> & points)
{
  double w = 0, s = 0, e = 0, n = 0;
  if (!proj_get_area_of_use(ctx, object, &w, &s, &e, &n, nullptr) || w == -1000.0)
    return false;
  if (e < w)
    e += 360.0; // across the antimeridian
  points.clear();
  for (double f : {0.5, 0.25, 0.75})
    points.emplace_back(Wrap180(w + f * (e - w)), s + f * (n - s));
  return true;
}

std::string MethodOf(PJ_CONTEXT * ctx, PJ * operation, std::map<std::string, std::string> & names)
{
  char const * name = nullptr;
  char const * code = nullptr;
  if (!proj_coordoperation_get_method_info(ctx, operation, &name, nullptr, &code) || !code)
    return "?";
  names[code] = name ? name : "";
  return code;
}

struct Report
{
  std::vector<std::string> lines;
  bool list = false;
  // Beyond the series' domain: points, and the largest deviations.
  int beyond = 0;
  double beyondPlane = 0.0, beyondBack = 0.0;
  // Systems whose PROJ pipeline rounds the registry's ellipsoid to a built-in one.
  std::set<std::string> rounded;
  void Say(std::string const & text)
  {
    if (list)
      lines.push_back(text);
  }
};

std::string Format(char const * format, double a, double b, double c = 0.0, double d = 0.0)
{
  char text[200];
  std::snprintf(text, sizeof text, format, a, b, c, d);
  return text;
}

// The longitude of natural origin of a conversion, in degrees; NaN without one.
double CentralMeridian(PJ_CONTEXT * ctx, PJ * conversion)
{
  int const count = proj_coordoperation_get_param_count(ctx, conversion);
  for (int i = 0; i < count; ++i) {
    char const * code = nullptr;
    double value = 0.0, toRadians = 0.0;
    if (proj_coordoperation_get_param(ctx, conversion, i, nullptr, nullptr, &code, &value, nullptr, &toRadians,
                                      nullptr, nullptr, nullptr, nullptr) &&
        code && !std::strcmp(code, "8802"))
      return value * toRadians * kDegreesPerRadian;
  }
  return std::nan("");
}

// How far PROJ's semi-major axis lies from the registry's, relative to it:
// PROJ writes an ellipsoid that is near one of its built-in ones by that
// one's name ("+ellps=bess_nam"), whose axis is rounded to the millimetre.
double EllipsoidRounding(PJ_CONTEXT * ctx, PJ * crs, PJ * operation)
{
  char const * text = proj_as_proj_string(ctx, operation, PJ_PROJ_5, nullptr);
  char const * at = text ? std::strstr(text, "+ellps=") : nullptr;
  if (!at)
    return 0.0;
  std::string const name(at + 7, std::strcspn(at + 7, " "));
  PjPtr ellipsoid(proj_get_ellipsoid(ctx, crs));
  double a = 0.0;
  if (!ellipsoid || !proj_ellipsoid_get_parameters(ctx, ellipsoid.pj, &a, nullptr, nullptr, nullptr))
    return 0.0;
  for (PJ_ELLPS const * e = proj_list_ellps(); e->id; ++e)
    if (name == e->id && !std::strncmp(e->major, "a=", 2))
      return std::fabs(std::atof(e->major + 2) - a) / a;
  return 0.0;
}

// One projected system: our pair path both ways against PROJ.
Outcome SweepProjected(Proj & proj, DB::CDataSource & store, std::string const & code, PJ * crs,
                       std::string const & method, Report & report)
{
  std::unique_ptr<CS::CProjectedCoordSys> ours(
    store.GetProjectedCoordSysNonThrow(CString("EPSG"), CString(QString::fromStdString(code))));
  if (!ours)
    return Outcome::kAbsent;
  PJ_CONTEXT * ctx = proj.ctx;
  PjPtr base(proj_crs_get_geodetic_crs(ctx, crs));
  PjPtr raw(base ? proj_create_crs_to_crs_from_pj(ctx, base.pj, crs, nullptr, nullptr) : nullptr);
  PjPtr op(raw ? proj_normalize_for_visualization(ctx, raw.pj) : nullptr);
  PjPtr cs(proj_crs_get_coordinate_system(ctx, crs));
  GeographicFrame frame;
  std::vector<std::pair<double, double>> points;
  double toMetres[2] = {1.0, 1.0};
  char const * direction[2] = {nullptr, nullptr};
  if (!op || !cs || !FrameOf(ctx, base.pj, frame) || !AreaPoints(ctx, crs, points) ||
      !proj_cs_get_axis_info(ctx, cs.pj, 0, nullptr, nullptr, &direction[0], &toMetres[0], nullptr, nullptr,
                             nullptr) ||
      !proj_cs_get_axis_info(ctx, cs.pj, 1, nullptr, nullptr, &direction[1], &toMetres[1], nullptr, nullptr,
                             nullptr)) {
    report.Say("EPSG:" + code + " PROJ cannot set it up");
    return Outcome::kWrong;
  }
  // Normalised, the first axis is the east-west one.
  bool const swapped = direction[0] && (!std::strcmp(direction[0], "north") || !std::strcmp(direction[0], "south"));
  if (swapped)
    std::swap(toMetres[0], toMetres[1]);
  double const rounding = EllipsoidRounding(ctx, crs, raw.pj);
  if (rounding > 0.0)
    report.rounded.insert(code);
  PjPtr conversion(proj_crs_get_coordoperation(ctx, crs));
  double const meridian = IsSeriesMethod(method) ? CentralMeridian(ctx, conversion.pj) : std::nan("");
  bool refused = false;
  for (auto const & [lon, lat] : points) {
    PJ_COORD c = proj_coord(Wrap180(lon - frame.meridian) / frame.degreesPerUnit, lat / frame.degreesPerUnit, 0, 0);
    c = proj_trans(op.pj, PJ_FWD, c);
    if (c.xy.x == HUGE_VAL || !std::isfinite(c.xy.x)) {
      report.Say("EPSG:" + code + " PROJ refuses " + Format("%.6f %.6f", lon, lat));
      continue; // nothing to compare with
    }
    double const east = c.xy.x * toMetres[0], north = c.xy.y * toMetres[1];
    bool const beyond = std::fabs(Wrap180(lon - meridian)) > kSeriesDomain; // false for NaN
    // PROJ's own rounding of the axis moves its plane coordinates by that
    // much of their distance from the origin; the tolerances take it in.
    double const reach = std::hypot(east, north);
    double const planeTolerance = kPlaneTolerance + rounding * reach;
    double const inverseTolerance = InverseTolerance(method) + rounding * kDegreesPerRadian;
    double x = lon, y = lat;
    try {
      if (!ours->FromGeodeticBase(x, y)) {
        refused = true;
        continue;
      }
      double const miss = std::hypot(x - east, y - north);
      if (beyond && std::isfinite(miss)) {
        double back[2] = {east, north};
        bool const inverted = ours->ToGeodeticBase(back[0], back[1]);
        ++report.beyond;
        report.beyondPlane = std::max(report.beyondPlane, miss);
        if (inverted)
          report.beyondBack =
            std::max(report.beyondBack, std::max(std::fabs(Wrap180(back[0] - lon)), std::fabs(back[1] - lat)));
        continue;
      }
      if (!(miss <= planeTolerance)) {
        report.Say("EPSG:" + code + Format(" forward off by %.3g m at %.6f %.6f", miss, lon, lat));
        return Outcome::kWrong;
      }
      x = east;
      y = north;
      if (!ours->ToGeodeticBase(x, y)) {
        refused = true;
        continue;
      }
      double const off = std::max(std::fabs(Wrap180(x - lon)), std::fabs(y - lat));
      if (!(off <= inverseTolerance)) {
        report.Say("EPSG:" + code + Format(" back off by %.3g degree at %.6f %.6f", off, lon, lat));
        return Outcome::kWrong;
      }
    } catch (EX::CVelmoraException const & e) {
      report.Say("EPSG:" + code + Format(" at %.6f %.6f: ", lon, lat) + e.GetFullMessage().toStdString());
      return Outcome::kWrong;
    }
  }
  return refused ? Outcome::kRefused : Outcome::kRight;
}

// One transformation forward, against PROJ running the same EPSG operation.
Outcome SweepShift(Proj & proj, DB::CDataSource & store, std::string const & code, PJ * operation, Report & report)
{
  std::unique_ptr<CT::DS::CDatumShift> ours(
    store.GetDatumShiftNonThrow(CString("EPSG"), CString(QString::fromStdString(code))));
  if (!ours)
    return Outcome::kAbsent;
  PJ_CONTEXT * ctx = proj.ctx;
  PjPtr source(proj_get_source_crs(ctx, operation)), target(proj_get_target_crs(ctx, operation));
  PjPtr op(proj_normalize_for_visualization(ctx, operation));
  GeographicFrame from, to;
  std::vector<std::pair<double, double>> points;
  if (!op || !FrameOf(ctx, source.pj, from) || !FrameOf(ctx, target.pj, to) || !AreaPoints(ctx, operation, points)) {
    report.Say("EPSG:" + code + " PROJ cannot set it up");
    return Outcome::kWrong;
  }
  bool refused = false;
  for (auto const & [lon, lat] : points) {
    PJ_COORD c = proj_coord(Wrap180(lon - from.meridian) / from.degreesPerUnit, lat / from.degreesPerUnit, 0, 0);
    c = proj_trans(op.pj, PJ_FWD, c);
    if (c.lp.lam == HUGE_VAL || !std::isfinite(c.lp.lam)) {
      report.Say("EPSG:" + code + " PROJ refuses " + Format("%.6f %.6f", lon, lat));
      continue;
    }
    double const lon2 = Wrap180(c.lp.lam * to.degreesPerUnit + to.meridian), lat2 = c.lp.phi * to.degreesPerUnit;
    double x = lon, y = lat;
    try {
      if (!ours->ShiftForward(x, y)) {
        refused = true;
        continue;
      }
    } catch (EX::CVelmoraException const & e) {
      // Grid files the library cannot read yet are a refusal, not a wrong answer.
      if (e.GetErrorCode() == 10) {
        refused = true;
        continue;
      }
      report.Say("EPSG:" + code + Format(" at %.6f %.6f: ", lon, lat) + e.GetFullMessage().toStdString());
      return Outcome::kWrong;
    }
    double const off = std::max(std::fabs(Wrap180(x - lon2)), std::fabs(y - lat2));
    if (!(off <= kShiftTolerance)) {
      report.Say("EPSG:" + code + Format(" off by %.3g degree at %.6f %.6f", off, lon, lat));
      return Outcome::kWrong;
    }
  }
  return refused ? Outcome::kRefused : Outcome::kRight;
}

bool IsGeographic(PJ * crs)
{
  PJ_TYPE const t = crs ? proj_get_type(crs) : PJ_TYPE_UNKNOWN;
  return t == PJ_TYPE_GEOGRAPHIC_2D_CRS || t == PJ_TYPE_GEOGRAPHIC_3D_CRS;
}

std::vector<std::string> Codes(Proj & proj, PJ_TYPE type)
{
  std::vector<std::string> codes;
  PROJ_STRING_LIST list = proj_get_codes_from_database(proj.ctx, "EPSG", type, 0);
  for (PROJ_STRING_LIST p = list; p && *p; ++p)
    codes.emplace_back(*p);
  proj_string_list_destroy(list);
  std::sort(codes.begin(), codes.end(), [](std::string const & a, std::string const & b) {
    return a.size() != b.size() ? a.size() < b.size() : a < b;
  });
  return codes;
}

std::string Table(char const * what, Tallies const & tallies, std::map<std::string, std::string> const & names,
                  int unrunnable)
{
  std::vector<Tally> rows;
  Tally all;
  for (auto const & [code, t] : tallies) {
    Tally row = t;
    auto const name = names.find(code);
    row.name = (name == names.end() ? std::string("?") : name->second) + " (" + code + ")";
    rows.push_back(row);
    all.right += t.right;
    all.refused += t.refused;
    all.wrong += t.wrong;
    all.absent += t.absent;
    all.notJudged += t.notJudged;
  }
  std::stable_sort(rows.begin(), rows.end(), [](Tally const & a, Tally const & b) { return a.Total() > b.Total(); });
  std::ostringstream out;
  out << "| " << what
      << " | in the registry | right | refused | wrong | absent | not judged (PROJ differs) |\n"
         "|---|---:|---:|---:|---:|---:|---:|\n";
  for (Tally const & r : rows)
    out << "| " << r.name << " | " << r.Total() << " | " << r.right << " | " << r.refused << " | " << r.wrong
        << " | " << r.absent << " | " << r.notJudged << " |\n";
  out << "| **all** | **" << all.Total() << "** | **" << all.right << "** | **" << all.refused << "** | **"
      << all.wrong << "** | **" << all.absent << "** | **" << all.notJudged << "** |\n";
  if (unrunnable)
    out << "\n" << unrunnable << " more that PROJ cannot run here (grid files missing) are not counted.\n";
  return out.str();
}

Options Parse(int argc, char ** argv)
{
  Options o;
  for (int i = 1; i < argc; ++i) {
    std::string const a = argv[i];
    auto value = [&]() { return i + 1 < argc ? std::string(argv[++i]) : std::string(); };
    if (a == "--data")
      o.data = value();
    else if (a == "--markdown")
      o.markdown = value();
    else if (a == "--list")
      o.list = true;
    else if (a == "--only") {
      std::stringstream codes(value());
      for (std::string c; std::getline(codes, c, ',');)
        o.only.insert(c);
    } else {
      std::fprintf(stderr, "usage: epsg_sweep --data FILE [--markdown FILE] [--only CODE,...] [--list]\n");
      std::exit(2);
    }
  }
  if (o.data.empty()) {
    std::fprintf(stderr, "epsg_sweep: --data FILE is required\n");
    std::exit(2);
  }
  return o;
}

} // namespace

int main(int argc, char ** argv)
{
  QCoreApplication app(argc, argv);
  Options const options = Parse(argc, argv);
  DB::CDataSource store;
  store.LoadFile(CString(QString::fromStdString(options.data)));
  Proj proj;
  proj_log_level(proj.ctx, PJ_LOG_NONE);
  // Grid files are looked for where PROJ keeps its own, beside proj.db.
  if (char const * db = proj_context_get_database_path(proj.ctx)) {
    std::string folder(db);
    folder.erase(folder.find_last_of('/') + 1);
    DB::CDataSource::SetDataPath(CString(QString::fromStdString(folder)));
  }
  Report report;
  report.list = options.list;
  std::map<std::string, std::string> names;
  auto wanted = [&](std::string const & code) { return options.only.empty() || options.only.count(code); };

  Tallies projected;
  for (std::string const & code : Codes(proj, PJ_TYPE_PROJECTED_CRS)) {
    if (!wanted(code))
      continue;
    PjPtr crs(proj_create_from_database(proj.ctx, "EPSG", code.c_str(), PJ_CATEGORY_CRS, 0, nullptr));
    PjPtr conversion(crs ? proj_crs_get_coordoperation(proj.ctx, crs.pj) : nullptr);
    if (!conversion)
      continue;
    std::string const method = MethodOf(proj.ctx, conversion.pj, names);
    Outcome o = SweepProjected(proj, store, code, crs.pj, method, report);
    if (ProjDiffers(method) && o != Outcome::kAbsent && o != Outcome::kRefused)
      o = Outcome::kNotJudged;
    if (o == Outcome::kRefused || o == Outcome::kAbsent)
      report.Say("EPSG:" + code + (o == Outcome::kAbsent ? " absent" : " refused") + " (method " + method + ")");
    projected[method].Add(o);
  }

  Tallies shifts;
  int unrunnable = 0;
  for (std::string const & code : Codes(proj, PJ_TYPE_TRANSFORMATION)) {
    if (!wanted(code))
      continue;
    PjPtr op(proj_create_from_database(proj.ctx, "EPSG", code.c_str(), PJ_CATEGORY_COORDINATE_OPERATION, 0,
                                       nullptr));
    if (!op)
      continue;
    PjPtr source(proj_get_source_crs(proj.ctx, op.pj)), target(proj_get_target_crs(proj.ctx, op.pj));
    if (!IsGeographic(source.pj) || !IsGeographic(target.pj))
      continue;
    if (!proj_coordoperation_is_instantiable(proj.ctx, op.pj)) {
      ++unrunnable;
      continue;
    }
    std::string const method = MethodOf(proj.ctx, op.pj, names);
    Outcome const o = SweepShift(proj, store, code, op.pj, report);
    if (o == Outcome::kRefused || o == Outcome::kAbsent)
      report.Say("EPSG:" + code + (o == Outcome::kAbsent ? " absent" : " refused") + " (method " + method + ")");
    shifts[method].Add(o);
  }

  for (std::string const & line : report.lines)
    std::printf("%s\n", line.c_str());
  std::string tables = "Projected systems, from their geodetic base to the plane and back:\n\n" +
                             Table("EPSG method", projected, names, 0) +
                             "\nTransformations between two geographic systems, forward:\n\n" +
                             Table("EPSG method", shifts, names, unrunnable);
  std::string notes;
  if (report.beyond)
    notes += "\n" + std::to_string(report.beyond) + Format(
      " points of transverse Mercator systems lie more than %g degrees from the central meridian, where the "
      "library's series is not the exact projection: measured, not judged (largest deviation %.2g m forward, "
      "%.2g degree back).\n", kSeriesDomain, report.beyondPlane, report.beyondBack);
  if (!report.rounded.empty()) {
    notes += "\nPROJ rounds the registry's ellipsoid to a built-in one for " + std::to_string(report.rounded.size()) +
             " systems (";
    for (std::string const & code : report.rounded)
      notes += (code == *report.rounded.begin() ? "EPSG:" : ", EPSG:") + code;
    notes += "); their tolerances grow by what that rounding moves.\n";
  }
  tables.insert(tables.find("\nTransformations"), notes);
  std::printf("%s", tables.c_str());
  if (!options.markdown.empty())
    std::ofstream(options.markdown) << tables;
  int wrong = 0;
  for (auto const * t : {&projected, &shifts})
    for (auto const & [code, tally] : *t)
      wrong += tally.wrong;
  std::printf("%s\n", wrong ? "epsg_sweep: wrong results above" : "epsg_sweep: no wrong result");
  return wrong ? 1 : 0;
}
