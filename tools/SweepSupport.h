#pragma once
// What the sweeps against PROJ share: PROJ objects held and released, the
// points of an area of use, the comparison of one projected system with
// PROJ's, and the tallies of outcomes.
#include <velmora/velmora.h>

#include <proj.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace SweepSupport {

using namespace Velmora;

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
inline bool IsSeriesMethod(std::string const & method)
{
  return method == "9807" || method == "9808" || method == "1111";
}

// The Lambert conformal methods' inverse stops its iteration once a step
// is below 1e-7 radian, as the library's conic is specified: it leaves up to
// 2.7e-8 degree (measured against PROJ over the cone), judged here at this.
constexpr double kLambertInverse = 4e-8;
// The Lambert azimuthal equal-area inverse takes the latitude from the
// authalic latitude by the series to e^6, as the library's type is
// specified: it leaves up to 1.44e-8 degree (measured against PROJ).
constexpr double kAuthalicSeriesInverse = 1.5e-8;
// Of the cylindrical family, the Mercator's inverse stops the same way (and
// takes t from the base 2.7182818281828, which moves latitudes by up to
// 3.8e-9 degree even on a sphere); the equal-area cylinder's inverse is a
// series to e^6 (1.4e-8 degree), Cassini-Soldner's the registry's reverse
// series, not quite the inverse of its forward one (1.2e-6 degree at 5
// degrees from the central meridian, 7.4e-8 over the registry's areas), and
// the polyconic's and Bonne's arcs series to e^6 against PROJ's to e^8.
constexpr double kMercatorInverse = 4e-8;
constexpr double kSeriesInverse = 1.5e-8;
constexpr double kCassiniInverse = 1e-7;
constexpr double kBonneInverse = 5e-8;
// Krovak's inverse stops the same way: 1.14e-8 degree measured over the
// Czech and Slovak grids. Laborde's follows the registry's complex form
// where PROJ's labrd sums Laborde's series: they part by 4.1e-9 degree at
// the sweep's points of Madagascar.
constexpr double kKrovakInverse = 2e-8;
constexpr double kLabordeInverse = 1e-8;
inline double InverseTolerance(std::string const & method)
{
  if (method == "9801" || method == "9802" || method == "9803")
    return kLambertInverse;
  if (method == "9819")
    return kKrovakInverse;
  if (method == "9813")
    return kLabordeInverse;
  if (method == "9820" || method == "1027")
    return kAuthalicSeriesInverse;
  if (method == "9804" || method == "9805" || method == "1024" || method == "1026")
    return kMercatorInverse;
  if (method == "9806")
    return kCassiniInverse;
  if (method == "9818" || method == "9835" || method == "9834")
    return kSeriesInverse;
  return method == "9827" ? kBonneInverse : kInverseTolerance;
}

// Methods whose PROJ formula is not the registry's: the library follows the
// registry's Guidance Note (its worked example is checked among the
// projection tests) and the sweeps do not judge it against PROJ.
inline bool ProjDiffers(std::string const & method)
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

inline bool FrameOf(PJ_CONTEXT * ctx, PJ * crs, GeographicFrame & frame)
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

inline double Wrap180(double lon)
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
inline bool AreaPoints(PJ_CONTEXT * ctx, PJ * object, std::vector<std::pair<double, double>> & points)
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

inline std::string MethodOf(PJ_CONTEXT * ctx, PJ * operation, std::map<std::string, std::string> & names)
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

inline std::string Format(char const * format, double a, double b, double c = 0.0, double d = 0.0)
{
  char text[200];
  std::snprintf(text, sizeof text, format, a, b, c, d);
  return text;
}

// The longitude of natural origin of a conversion, in degrees; NaN without one.
inline double CentralMeridian(PJ_CONTEXT * ctx, PJ * conversion)
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
inline double EllipsoidRounding(PJ_CONTEXT * ctx, PJ * crs, PJ * operation)
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
Outcome CompareProjected(Proj & proj, CS::CCoordSys const * ours, std::string const & code, PJ * crs,
                         std::string const & method, Report & report, PJ * area = nullptr);
// "4326,32632" as a set of codes.
std::set<std::string> CodeList(std::string const & text);
// The EPSG codes of a kind that PROJ knows, shortest first.
std::vector<std::string> Codes(Proj & proj, PJ_TYPE type);

} // namespace SweepSupport
