#pragma once
// Which EPSG operation methods become which projection and datum shift types
// of the library, and where each parameter of the type takes its value from.
// The one place of these decisions; the README's tables are drawn from it.
#include <string>
#include <vector>

namespace VelmoraData {

// A parameter of a library type: from an EPSG parameter, or a fixed value.
struct ParameterSource
{
  char const * name;  // the library's parameter name
  char const * epsg;  // EPSG parameter code, or null for the fixed value
  double fixed = 0.0; // in degrees, metres or as a plain number
};

// Axes that a projected system's coordinate system may have for a method.
enum class Axes {
  kEastNorth, // east and north in either order
  kWestSouth, // the south-oriented methods
  kPolar      // east and north of a polar aspect, given as "along" a meridian; east/north taken too
};

struct ProjectionMethod
{
  char const * epsg;
  int type; // CProjection::Type
  Axes axes;
  std::vector<ParameterSource> parameters;
};

// The mapped projection methods; null for a method the library has no type for.
ProjectionMethod const * FindProjectionMethod(std::string const & epsgMethod);
std::vector<ProjectionMethod> const & ProjectionMethods();

enum class ShiftKind {
  kTranslation,        // geocentric translations
  kPositionVector,     // seven parameters, rotations as published
  kCoordinateFrame,    // seven parameters, rotations of the other sign
  kBadekasPosition,    // Molodensky-Badekas, position-vector rotations
  kBadekasFrame,       // Molodensky-Badekas, coordinate-frame rotations
  kMolodensky,         // the Molodensky formula (standard or abridged)
  kLongitudeRotation,  // a prime meridian change
  kNTv2,               // an NTv2 grid file
  kNadcon,             // a pair of NADCON files
  kGeocentricGrid      // IGN's grid of geocentric translations (GR3D1 text)
};

struct ShiftMethod
{
  char const * epsg;
  int type; // CDatumShift::Type
  ShiftKind kind;
};

ShiftMethod const * FindShiftMethod(std::string const & epsgMethod);
std::vector<ShiftMethod> const & ShiftMethods();

} // namespace VelmoraData
