#include "Mapping.h"

#include <velmora/projections/Projection.h>
#include <velmora/transforms/datumshifts/DatumShift.h>

namespace VelmoraData {

namespace {

using Velmora::CS::PJ::CProjection;
using Velmora::CT::DS::CDatumShift;

// EPSG parameter codes by their registry names.
constexpr char const * kLatNatural = "8801";     // latitude of natural origin
constexpr char const * kLonNatural = "8802";     // longitude of natural origin
constexpr char const * kScaleNatural = "8805";   // scale factor at natural origin
constexpr char const * kFalseEasting = "8806";   // false easting
constexpr char const * kFalseNorthing = "8807";  // false northing
constexpr char const * kLatCentre = "8811";      // latitude of projection centre
constexpr char const * kLonCentre = "8812";      // longitude of projection centre
constexpr char const * kAzimuth = "8813";        // azimuth of initial line
constexpr char const * kRectifiedToSkew = "8814";// angle from rectified to skew grid
constexpr char const * kScaleInitial = "8815";   // scale factor on initial line
constexpr char const * kEastingCentre = "8816";  // easting at projection centre
constexpr char const * kNorthingCentre = "8817"; // northing at projection centre
constexpr char const * kPseudoParallel = "8818"; // latitude of pseudo standard parallel
constexpr char const * kScalePseudo = "8819";    // scale factor on pseudo standard parallel
constexpr char const * kLatFalse = "8821";       // latitude of false origin
constexpr char const * kLonFalse = "8822";       // longitude of false origin
constexpr char const * kParallel1 = "8823";      // latitude of 1st standard parallel
constexpr char const * kParallel2 = "8824";      // latitude of 2nd standard parallel
constexpr char const * kEastingFalse = "8826";   // easting at false origin
constexpr char const * kNorthingFalse = "8827";  // northing at false origin
constexpr char const * kLatStandard = "8832";    // latitude of standard parallel
constexpr char const * kLonOrigin = "8833";      // longitude of origin
constexpr char const * kColatitudeAxis = "1036"; // co-latitude of cone axis

ParameterSource From(char const * name, char const * epsg) { return {name, epsg, 0.0}; }
ParameterSource Fixed(char const * name, double value) { return {name, nullptr, value}; }

std::vector<ParameterSource> TransverseMercator()
{
  return {From("central_meridian", kLonNatural), From("latitude_of_origin", kLatNatural),
          From("scale_factor", kScaleNatural), From("false_easting", kFalseEasting),
          From("false_northing", kFalseNorthing)};
}

// Methods given by a natural origin alone: the Cassini-Soldner, the polyconic,
// Bonne (whose natural origin is its standard parallel) and the spherical
// Mercator forms, whose latitude of origin is 0.
std::vector<ParameterSource> NaturalOrigin()
{
  return {From("central_meridian", kLonNatural), From("latitude_of_origin", kLatNatural),
          From("false_easting", kFalseEasting), From("false_northing", kFalseNorthing)};
}

// The Mercator on a sphere from a natural origin on the equator: true to scale there.
std::vector<ParameterSource> SphericalMercator()
{
  return {From("central_meridian", kLonNatural), From("latitude_of_origin", kLatNatural), Fixed("scale_factor", 1.0),
          From("false_easting", kFalseEasting), From("false_northing", kFalseNorthing)};
}

// The cylinders given by a standard parallel, which their type holds in latitude_of_origin.
std::vector<ParameterSource> StandardParallelCylinder()
{
  return {From("central_meridian", kLonNatural), From("latitude_of_origin", kParallel1),
          From("false_easting", kFalseEasting), From("false_northing", kFalseNorthing)};
}

std::vector<ParameterSource> TwoParallelConic()
{
  return {From("latitude_of_origin", kLatFalse),  From("central_meridian", kLonFalse),
          From("standard_parallel1", kParallel1), From("standard_parallel2", kParallel2),
          From("false_easting", kEastingFalse),   From("false_northing", kNorthingFalse)};
}

// Hotine's oblique Mercator through the general azimuth form: variant A counts
// the false values from the natural origin, variant B from the projection centre.
std::vector<ParameterSource> ObliqueMercator(bool centre)
{
  return {From("central_meridian", kLonCentre),
          From("latitude_of_origin", kLatCentre),
          From("scale_factor", kScaleInitial),
          From("azimuth", kAzimuth),
          From("false_easting", centre ? kEastingCentre : kFalseEasting),
          From("false_northing", centre ? kNorthingCentre : kFalseNorthing),
          From("rotation_angle", kRectifiedToSkew),
          Fixed("unrectified_flag", 0.0),
          Fixed("center_flag", centre ? 1.0 : 0.0),
          Fixed("use_gamma_flag", 0.0),
          Fixed("azimuth_is_gamma", 0.0)};
}

// Where a type holds the latitude of true scale in latitude_of_origin (the
// polar stereographic and the Mercator), a variant given by its standard
// parallel takes a scale of 1 there.
std::vector<ProjectionMethod> const kProjections = {
  {"9807", CProjection::kTransverseMercator, Axes::kEastNorth, TransverseMercator()},
  {"1111", CProjection::kTransverseMercator, Axes::kEastNorth, TransverseMercator()}, // TM 3D: the same plane
  {"9808", CProjection::kTransverseMercatorSouthOriented, Axes::kWestSouth, TransverseMercator()},
  {"9801",
   CProjection::kLambertTangent,
   Axes::kEastNorth,
   {From("latitude_of_origin", kLatNatural), From("central_meridian", kLonNatural),
    From("scale_factor", kScaleNatural), From("false_easting", kFalseEasting),
    From("false_northing", kFalseNorthing)}},
  {"9802", CProjection::kLambertConformalConic, Axes::kEastNorth, TwoParallelConic()},
  {"9803", CProjection::kBelgium72, Axes::kEastNorth, TwoParallelConic()},
  {"9822",
   CProjection::kAlbersEqualArea,
   Axes::kEastNorth,
   {From("central_meridian", kLonFalse), From("latitude_of_origin", kLatFalse),
    From("standard_parallel1", kParallel1), From("standard_parallel2", kParallel2),
    From("false_easting", kEastingFalse), From("false_northing", kNorthingFalse)}},
  {"9806", CProjection::kCassini, Axes::kEastNorth, NaturalOrigin()},
  {"9810",
   CProjection::kPolarStereographic,
   Axes::kPolar,
   {From("central_meridian", kLonNatural), From("latitude_of_origin", kLatNatural),
    From("scale_factor", kScaleNatural), From("false_easting", kFalseEasting),
    From("false_northing", kFalseNorthing)}},
  {"9829",
   CProjection::kPolarStereographic,
   Axes::kPolar,
   {From("central_meridian", kLonOrigin), From("latitude_of_origin", kLatStandard), Fixed("scale_factor", 1.0),
    From("false_easting", kFalseEasting), From("false_northing", kFalseNorthing)}},
  {"9830", // the false northing is moved to the pole by the builder: see MovesFalseOriginToPole
   CProjection::kPolarStereographic,
   Axes::kPolar,
   {From("central_meridian", kLonOrigin), From("latitude_of_origin", kLatStandard), Fixed("scale_factor", 1.0),
    From("false_easting", kEastingFalse), From("false_northing", kNorthingFalse)}},
  {"9809",
   CProjection::kDoubleStereographic,
   Axes::kEastNorth,
   {From("central_meridian", kLonNatural), From("latitude_of_origin", kLatNatural),
    From("scale_factor", kScaleNatural), From("false_easting", kFalseEasting),
    From("false_northing", kFalseNorthing)}},
  {"9812", CProjection::kObliqueMercatorAzimuth, Axes::kEastNorth, ObliqueMercator(false)},
  {"9815", CProjection::kObliqueMercatorAzimuth, Axes::kEastNorth, ObliqueMercator(true)},
  {"9813",
   CProjection::kLaborde,
   Axes::kEastNorth,
   {From("central_meridian", kLonCentre), From("latitude_of_origin", kLatCentre),
    From("scale_factor", kScaleInitial), From("azimuth", kAzimuth), From("azimuth_skew", kAzimuth),
    From("false_easting", kFalseEasting), From("false_northing", kFalseNorthing)}},
  {"9819",
   CProjection::kKrovak,
   Axes::kWestSouth,
   {From("central_meridian", kLonOrigin), From("latitude_of_origin", kLatCentre),
    From("azimuth", kColatitudeAxis), From("latitude_of_true_scale", kPseudoParallel),
    From("scale_factor", kScalePseudo), From("false_easting", kFalseEasting),
    From("false_northing", kFalseNorthing)}},
  {"9820",
   CProjection::kAzimuthalEqualArea,
   Axes::kPolar,
   {From("central_meridian", kLonNatural), From("latitude_of_origin", kLatNatural),
    From("false_easting", kFalseEasting), From("false_northing", kFalseNorthing),
    Fixed("xy_plane_rotation", 0.0)}},
  // The spherical form on a datum whose figure is the sphere itself: the
  // authalic radius of a sphere is its radius.
  {"1027",
   CProjection::kAzimuthalEqualArea,
   Axes::kPolar,
   {From("central_meridian", kLonNatural), From("latitude_of_origin", kLatNatural),
    From("false_easting", kFalseEasting), From("false_northing", kFalseNorthing),
    Fixed("xy_plane_rotation", 0.0)}},
  {"9804",
   CProjection::kMercator,
   Axes::kEastNorth,
   {From("central_meridian", kLonNatural), From("latitude_of_origin", kLatNatural),
    From("scale_factor", kScaleNatural), From("false_easting", kFalseEasting),
    From("false_northing", kFalseNorthing)}},
  {"9805",
   CProjection::kMercator,
   Axes::kEastNorth,
   {From("central_meridian", kLonNatural), From("latitude_of_origin", kParallel1), Fixed("scale_factor", 1.0),
    From("false_easting", kFalseEasting), From("false_northing", kFalseNorthing)}},
  {"9818", CProjection::kPolyconic, Axes::kEastNorth, NaturalOrigin()},
  {"9827", CProjection::kBonne, Axes::kEastNorth, NaturalOrigin()},
  // Pseudo-Mercator: the spherical Mercator with R = a on ellipsoidal coordinates.
  {"1024", CProjection::kMercator, Axes::kEastNorth, SphericalMercator(), Figure::kSphereOfA},
  {"1026", CProjection::kMercator, Axes::kEastNorth, SphericalMercator(), Figure::kSphereOnly},
  {"9811",
   CProjection::kNewZealandMapGrid,
   Axes::kEastNorth,
   {From("central_meridian", kLonNatural), From("latitude_of_origin", kLatNatural),
    From("false_easting", kFalseEasting), From("false_northing", kFalseNorthing)}},
  {"9835", CProjection::kEqualAreaCylindrical, Axes::kEastNorth, StandardParallelCylinder()},
  {"9834", CProjection::kEqualAreaCylindrical, Axes::kEastNorth, StandardParallelCylinder(), Figure::kSphereOnly},
  // The registry's method is ellipsoidal (northings by the meridian arc); the
  // type is the spherical form on a, as PROJ's eqc, which PROJ runs for it.
  {"1028", CProjection::kEquidistantCylindrical, Axes::kEastNorth, StandardParallelCylinder()},
  {"1029", CProjection::kEquidistantCylindrical, Axes::kEastNorth, StandardParallelCylinder(), Figure::kSphereOnly},
};

std::vector<ShiftMethod> const kShifts = {
  {"9603", CDatumShift::kGeocentricTranslation, ShiftKind::kTranslation},
  {"1031", CDatumShift::kGeocentricTranslation, ShiftKind::kTranslation},
  {"9606", CDatumShift::kBursaWolfe, ShiftKind::kPositionVector},
  {"1033", CDatumShift::kBursaWolfe, ShiftKind::kPositionVector},
  {"9607", CDatumShift::kBursaWolfe, ShiftKind::kCoordinateFrame},
  {"1032", CDatumShift::kBursaWolfe, ShiftKind::kCoordinateFrame},
  {"1061", CDatumShift::kMolodenskyBadekas, ShiftKind::kBadekasPosition},
  {"1063", CDatumShift::kMolodenskyBadekas, ShiftKind::kBadekasPosition},
  {"9636", CDatumShift::kMolodenskyBadekas, ShiftKind::kBadekasFrame},
  {"1034", CDatumShift::kMolodenskyBadekas, ShiftKind::kBadekasFrame},
  {"9604", CDatumShift::kMolodensky, ShiftKind::kMolodensky},
  {"9605", CDatumShift::kMolodensky, ShiftKind::kMolodensky},
  {"9601", CDatumShift::kLongitudeRotation, ShiftKind::kLongitudeRotation},
  {"9615", CDatumShift::kCanadianNTV2, ShiftKind::kNTv2},
  {"9613", CDatumShift::kNadcon, ShiftKind::kNadcon},
  {"1087", CDatumShift::kNTFToRGF93, ShiftKind::kGeocentricGrid},
  {"9655", CDatumShift::kNTFToRGF93, ShiftKind::kGeocentricGrid},
};

template <class Row>
Row const * Find(std::vector<Row> const & rows, std::string const & code)
{
  for (Row const & row : rows)
    if (code == row.epsg)
      return &row;
  return nullptr;
}

} // namespace

ProjectionMethod const * FindProjectionMethod(std::string const & epsgMethod)
{
  return Find(kProjections, epsgMethod);
}

std::vector<ProjectionMethod> const & ProjectionMethods() { return kProjections; }

ShiftMethod const * FindShiftMethod(std::string const & epsgMethod) { return Find(kShifts, epsgMethod); }

bool MovesFalseOriginToPole(std::string const & epsgMethod) { return epsgMethod == "9830"; }

std::vector<ShiftMethod> const & ShiftMethods() { return kShifts; }

} // namespace VelmoraData
