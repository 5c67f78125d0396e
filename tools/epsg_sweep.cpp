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
#include "SweepSupport.h"

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
using namespace SweepSupport;

namespace {

struct Options
{
  std::string data, markdown;
  std::set<std::string> only;
  bool list = false; // every system that is not right, one line each
};


// One projected system of the shipped file: our pair path both ways against PROJ.
Outcome SweepProjected(Proj & proj, DB::CDataSource & store, std::string const & code, PJ * crs,
                       std::string const & method, Report & report)
{
  std::unique_ptr<CS::CProjectedCoordSys> ours(
    store.GetProjectedCoordSysNonThrow(CString("EPSG"), CString(QString::fromStdString(code))));
  return CompareProjected(proj, ours.get(), code, crs, method, report);
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
    else if (a == "--only")
      o.only = CodeList(value());
    else {
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
