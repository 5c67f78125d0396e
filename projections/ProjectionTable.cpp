#include <velmora/projections/ProjectionTable_p.h>

#include <array>
#include <cstring>

namespace Velmora::CS::PJ::Table {

namespace {

// Short names for the parameters most rows share.
constexpr char const * cm = "central_meridian";
constexpr char const * lo = "latitude_of_origin";
constexpr char const * fe = "false_easting";
constexpr char const * fn = "false_northing";
constexpr char const * sf = "scale_factor";
constexpr char const * r = "spherical_radius";
constexpr char const * sp1 = "standard_parallel1";
constexpr char const * sp2 = "standard_parallel2";
constexpr char const * sl1 = "standard_longitude1";
constexpr char const * sl2 = "standard_longitude2";
constexpr char const * rot = "xy_plane_rotation";

// "Transverse Mercator 27" names the state plane Mercator class on purpose;
// "EckertI" and "Gnomic" are spelt as files and users know them.
Row const kRows[] = {
  {"Aitoff", {cm, fe, fn}},
  {"Alaska 27", {"nos_code", "param1", "param2"}},
  {"Albers Equal Area", {cm, lo, sp1, sp2, fe, fn}},
  {"Azimuthal Equal Area", {cm, lo, fe, fn, rot}},
  {"Azimuthal Equidistant", {cm, lo, fe, fn, rot}},
  {"Behrmann", {cm, fe, fn}},
  {"Belgium 72", {lo, cm, sp1, sp2, fe, fn}},
  {"Bipolar Oblique Conformal Conic", {}},
  {"Bonne", {cm, lo, fe, fn}},
  {"Cassini", {cm, lo, fe, fn}},
  {"Craster Parabolic", {cm, fe, fn}},
  {"Danish System 34", {cm, lo, sf, fe, fn, "region"}},
  {"Danish System 34 1999", {cm, lo, sf, fe, fn, "region"}},
  {"Double Stereographic", {cm, lo, sf, fe, fn}},
  {"EckertI", {cm, fe, fn}},
  {"EckertII", {cm, fe, fn}},
  {"EckertIII", {cm, fe, fn}},
  {"EckertIV", {cm, r, fe, fn}},
  {"EckertV", {cm, fe, fn}},
  {"EckertVI", {cm, r, fe, fn}},
  {"Egyseges Orszagos Vetulet", {}},
  {"Equal Area Cylindrical", {cm, lo, fe, fn}},
  {"Equidistant Conic", {cm, lo, sp1, sp2, fe, fn}},
  {"Equidistant Cylindrical", {cm, lo, fe, fn}},
  {"European Stereographic", {cm, lo, sf, fe, fn}},
  {"Fuller", {}},
  {"Gall Stereographic", {cm, fe, fn}},
  {"Gnomic", {cm, lo, r, fe, fn}},
  {"Goode Homolosine", {cm, fe, fn}},
  {"Guam 27", {"nos_code"}},
  {"Hammer Aitoff", {cm, fe, fn}},
  {"Hotine Oblique Mercator", {lo, sf, sp1, sl1, sp2, sl2, fe, fn}},
  {"Hotine Oblique Mercator 1pt", {cm, lo, sf, "azimuth", "azimuth_skew", fe, fn}},
  {"Hotine Oblique Mercator 1pt Method2", {cm, lo, sf, "azimuth", "azimuth_skew", fe, fn}},
  {"IMW Polyconic", {cm, "true_scale_longitude", "latitude_north", "latitude_south", fe, fn}},
  {"Krovak", {cm, lo, "azimuth", "latitude_of_true_scale", sf, fe, fn}},
  {"Laborde", {cm, lo, sf, "azimuth", "azimuth_skew", fe, fn}},
  {"Lambert 27",
   {"nos_code", "param1", "param2", "param3", "param4", "param5", "param6", "param7", "param8", "param9", "param10"}},
  {"Lambert Conformal Conic", {lo, cm, sp1, sp2, fe, fn}},
  {"Lambert Conformal Conic Extended", {lo, cm, sp1, sp2, fe, fn, "average_elevation", "average_geoid_height"}},
  {"Lambert Tangent", {lo, cm, sf, fe, fn}},
  {"Loximuthal", {cm, lo, fe, fn}},
  {"McBryde Thomas Flat Polar Quartic", {cm, fe, fn}},
  {"Mercator", {cm, lo, sf, fe, fn}},
  {"Military Grid Reference System", {}},
  {"Miller Cylindrical", {cm, r, fe, fn}},
  {"Mollweide", {cm, r, fe, fn}},
  {"New Zealand Map Grid", {cm, lo, fe, fn}},
  {"Oblique Mercator Azimuth",
   {cm, lo, sf, "azimuth", fe, fn, "rotation_angle", "unrectified_flag", "center_flag", "use_gamma_flag",
    "azimuth_is_gamma"}},
  {"Oblique Mercator Two Points",
   {lo, sf, sp1, sl1, sp2, sl2, fe, fn, "rotation_angle", "unrectified_flag", "use_gamma_flag"}},
  {"Orthographic", {cm, lo, r, fe, fn}},
  {"Perspective Conic", {cm, sp1, sp2, fe, fn}},
  {"Polar Azimuthal Equal Area", {cm, lo, fe, fn}},
  {"Polar Equidistant", {cm, lo, fe, fn}},
  {"Polar Stereographic", {cm, lo, sf, fe, fn}},
  {"Polyconic", {cm, lo, fe, fn}},
  {"Quartic Authalic", {cm, fe, fn}},
  {"Robinson", {cm, fe, fn}},
  {"Sinusoidal", {cm, fe, fn}},
  {"Space Oblique Mercator",
   {cm, "satellite_p1", "satellite_p2", "satellite_lon0", "satellite_a", "satellite_e", "satellite_incl",
    "satellite_gamma"}},
  {"Stereographic", {cm, lo, sf, fe, fn, rot}},
  {"Stereographic 70", {cm, lo, sf, fe, fn}},
  {"Swiss Oblique Mercator", {}},
  {"Tilted Perspective", {"height", "azimuth", "tilt", cm, lo, fe, fn}},
  {"Times", {cm, fe, fn}},
  {"Transverse Mercator", {cm, lo, sf, fe, fn}},
  {"Transverse Mercator 27", {"nos_code", "param1", "param2", "param3", "param4", "param5"}},
  {"Transverse Mercator Extended", {cm, lo, sf, fe, fn, "average_elevation", "average_geoid_height"}},
  {"Transverse Mercator Snyder", {cm, lo, sf, fe, fn}},
  {"Transverse Mercator South Oriented", {cm, lo, sf, fe, fn}},
  {"Two Point Fit", {sl1, "standard_latitude1", "standard_latitude2", sl2, "north1", "north2", "east1", "east2"}},
  {"Universal Transverse Mercator", {"zone", "is_north", "autoset"}},
  {"Van Der Grinten", {cm, r, fe, fn}},
  {"Van Der Grinten IV", {cm, fe, fn}},
  {"V and H", {}},
  {"Vertical Perspective", {"height", cm, lo, fe, fn}},
  {"Winkel I", {cm, lo, fe, fn}},
  {"Winkel II", {cm, lo, fe, fn}},
  {"Winkel Tripel", {cm, lo, fe, fn}},
};
static_assert(std::size(kRows) == 79, "one row per projection type");

bool In(char const * parameter, std::initializer_list<char const *> names)
{
  for (char const * name : names)
    if (std::strcmp(parameter, name) == 0)
      return true;
  return false;
}

} // namespace

Row const * RowOf(int type)
{
  if (type < 0 || static_cast<size_t>(type) >= std::size(kRows))
    return nullptr;
  return &kRows[type];
}

int TypeOf(CString const & name)
{
  for (size_t i = 0; i < std::size(kRows); ++i)
    if (name == QLatin1String(kRows[i].name))
      return static_cast<int>(i);
  return -1;
}

Kind KindOf(char const * parameter)
{
  if (In(parameter, {"false_easting", "false_northing", "spherical_radius", "north1", "north2", "east1", "east2",
                     "average_elevation", "average_geoid_height", "satellite_a", "height"}))
    return Kind::kLinear;
  if (In(parameter, {"scale_factor", "param1", "param2", "param3", "param4", "param5", "param6", "param7", "param8",
                     "param9", "param10", "satellite_p1", "satellite_p2", "satellite_e", "satellite_gamma"}))
    return Kind::kDouble;
  if (In(parameter, {"nos_code", "unrectified_flag", "center_flag", "use_gamma_flag", "azimuth_is_gamma", "zone",
                     "is_north", "autoset"}))
    return Kind::kLong;
  if (In(parameter, {"region"}))
    return Kind::kString;
  if (In(parameter, {"central_meridian", "latitude_of_origin", "latitude_of_true_scale", "standard_parallel1",
                     "standard_parallel2", "standard_longitude1", "standard_longitude2", "standard_latitude1",
                     "standard_latitude2", "azimuth", "azimuth_skew", "true_scale_longitude", "latitude_north",
                     "latitude_south", "satellite_lon0", "satellite_incl", "tilt", "xy_plane_rotation",
                     "rotation_angle"}))
    return Kind::kAngular;
  return Kind::kUnknown;
}

} // namespace Velmora::CS::PJ::Table
