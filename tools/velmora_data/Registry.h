#pragma once
// The part of the EPSG registry that the shipped data file is made from, read
// whole from PROJ's SQLite database (proj.db) into plain records. Only the
// "EPSG" authority is read, and deprecated records are dropped here, so that
// nothing downstream has to think of them again.
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace VelmoraData {

struct Unit
{
  std::string code, name, type; // type: "angle", "length", "scale", ...
  std::optional<double> factor;  // to radians, metres or unity; none for encoded forms
};

struct Extent
{
  std::string code, name;
  double south = 0.0, north = 0.0, west = 0.0, east = 0.0;
};

struct PrimeMeridian
{
  std::string code, name;
  std::string longitude; // the registry's text, since sexagesimal values are read digit by digit
  std::string uom;
};

struct Ellipsoid
{
  std::string code, name, uom;
  double semiMajor = 0.0;
  std::optional<double> invFlattening, semiMinor;
};

struct Datum
{
  std::string code, name, ellipsoid, primeMeridian;
};

struct Axis
{
  std::string orientation, uom;
};

struct GeodeticCrs
{
  std::string code, name, type, coordinateSystem, datum;
};

struct Parameter
{
  std::string value; // as text, for the same reason as a meridian's longitude
  std::string uom;
};

struct Conversion
{
  std::string code, name, method;
  std::map<std::string, Parameter> parameters; // by EPSG parameter code
};

struct ProjectedCrs
{
  std::string code, name, coordinateSystem, base, conversion;
};

// A compound system: a horizontal system with a vertical one, by the
// vertical system's datum.
struct CompoundCrs
{
  std::string code, name, horizontal, verticalDatum, verticalDatumName;
};

// A transformation of any of the three tables, reduced to what the shift
// methods need: parameters by EPSG parameter code, grid files by role.
struct Transformation
{
  std::string code, name, method, source, target;
  std::map<std::string, Parameter> parameters;
  std::string grid, grid2;
  std::string table; // the registry table it came from, as its usages name it
};

class Registry
{
public:
  // Throws std::runtime_error when the file cannot be opened or read.
  explicit Registry(std::string const & path);

  std::map<std::string, Unit> units;
  std::map<std::string, Extent> extents;
  std::map<std::string, PrimeMeridian> primeMeridians;
  std::map<std::string, Ellipsoid> ellipsoids;
  std::map<std::string, Datum> datums;
  std::map<std::string, std::vector<Axis>> axes; // by coordinate system code, in axis order
  std::map<std::string, GeodeticCrs> geodeticCrs;
  std::map<std::string, Conversion> conversions;
  std::map<std::string, ProjectedCrs> projectedCrs;
  std::map<std::string, Transformation> transformations;
  std::map<std::string, CompoundCrs> compoundCrs;
  std::map<std::string, std::string> methodNames; // coordinate operation methods by code
  // Extent codes of an object, keyed by "table:code" as the registry's usage table names it.
  std::map<std::string, std::vector<std::string>> usages;

  std::vector<std::string> const & ExtentsOf(char const * table, std::string const & code) const;
  std::string version; // the registry's version as proj.db records it
};

} // namespace VelmoraData
