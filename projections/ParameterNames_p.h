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
inline constexpr char kStandardLongitude1[] = "standard_longitude1";
inline constexpr char kStandardLongitude2[] = "standard_longitude2";
inline constexpr char kLatitudeOfTrueScale[] = "latitude_of_true_scale";
inline constexpr char kAzimuth[] = "azimuth";
inline constexpr char kAzimuthSkew[] = "azimuth_skew";
inline constexpr char kRotationAngle[] = "rotation_angle";
inline constexpr char kUnrectifiedFlag[] = "unrectified_flag";
inline constexpr char kCenterFlag[] = "center_flag";
inline constexpr char kUseGammaFlag[] = "use_gamma_flag";
inline constexpr char kAzimuthIsGamma[] = "azimuth_is_gamma";

// A linear or angular value in internal units: metres or degrees.
inline double Internal(CParameterCollection const & p, char const * name) { return p.GetItemInternal(CString(name)); }

// An angular value in radians.
inline double Radians(CParameterCollection const & p, char const * name)
{
  return Internal(p, name) * Constants::kRadiansPerDegree;
}

} // namespace Velmora::CS::PJ::Parameter
