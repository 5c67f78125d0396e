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

// The figure a method's formulas work on.
enum class Figure {
  kDatum,     // the datum's own
  kSphereOfA, // spherical formulas on the datum's ellipsoidal coordinates, the sphere's radius a: the
              // system is put on a twin of its base whose datum carries that sphere, joined to the base
              // by a longitude rotation of 0, which hands latitude and longitude over unchanged
  kSphereOnly // a spherical method, exact where the datum's figure is a sphere; on an ellipsoid the
              // registry takes another radius, which no type takes, so such systems are left out
};

struct ProjectionMethod
{
  char const * epsg;
  int type; // CProjection::Type
  Axes axes;
  std::vector<ParameterSource> parameters;
  Figure figure = Figure::kDatum;
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

// Polar stereographic variant C gives the grid values of its false origin,
// on the standard parallel phiF at the longitude of origin; the type counts
// them from the pole, whose northing is NF - rhoF in the south and NF + rhoF
// in the north, rhoF = a mF = a cos phiF / sqrt(1 - e2 sin^2 phiF) (EPSG
// Guidance Note 7-2, method 9830). True for the methods whose false northing
// the builder moves so, on the figure of the system's datum.
bool MovesFalseOriginToPole(std::string const & epsgMethod);

ShiftMethod const * FindShiftMethod(std::string const & epsgMethod);
std::vector<ShiftMethod> const & ShiftMethods();

} // namespace VelmoraData
