#include "SweepSupport.h"

#include <algorithm>
#include <memory>
#include <sstream>

namespace SweepSupport {

// One projected system: our pair path both ways against PROJ.
// `ours` is any system of the library's that stands for the same EPSG system; null counts as
// absent. The points come from the area of use of `area`, else of `crs`.
Outcome CompareProjected(Proj & proj, CS::CCoordSys const * ours, std::string const & code, PJ * crs,
                         std::string const & method, Report & report, PJ * area)
{
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
  if (!op || !cs || !FrameOf(ctx, base.pj, frame) || !AreaPoints(ctx, area ? area : crs, points) ||
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

std::set<std::string> CodeList(std::string const & text)
{
  std::set<std::string> codes;
  std::stringstream list(text);
  for (std::string c; std::getline(list, c, ',');)
    codes.insert(c);
  return codes;
}

} // namespace SweepSupport
