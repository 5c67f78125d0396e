#pragma once
// The names of the parameters that the projections read, and their reading
// in internal units, in one place.
#include <velmora/foundation/Constants.h>
#include <velmora/foundation/ParameterCollection.h>

namespace Velmora::CS::PJ::Parameter {

inline constexpr char kCentralMeridian[] = "central_meridian";
inline constexpr char kLatitudeOfOrigin[] = "latitude_of_origin";
inline constexpr char kStandardParallel1[] = "standard_parallel1";
inline constexpr char kStandardParallel2[] = "standard_parallel2";
inline constexpr char kScaleFactor[] = "scale_factor";
inline constexpr char kFalseEasting[] = "false_easting";
inline constexpr char kFalseNorthing[] = "false_northing";
inline constexpr char kAverageElevation[] = "average_elevation";
inline constexpr char kAverageGeoidHeight[] = "average_geoid_height";
inline constexpr char kZone[] = "zone";
inline constexpr char kIsNorth[] = "is_north";
inline constexpr char kAutoset[] = "autoset";

// A linear or angular value in internal units: metres or degrees.
inline double Internal(CParameterCollection const & p, char const * name) { return p.GetItemInternal(CString(name)); }

// An angular value in radians.
inline double Radians(CParameterCollection const & p, char const * name)
{
  return Internal(p, name) * Constants::kRadiansPerDegree;
}

} // namespace Velmora::CS::PJ::Parameter
