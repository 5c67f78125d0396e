#pragma once
// The fixed numbers of the ellipsoid's geodesy, in one place. Several are
// established behaviour that results depend on, not tuning knobs.

#include <velmora/foundation/Constants.h>

namespace Velmora::CS::Geodesy {

using Constants::kHalfPi;
using Constants::kPi;
using Constants::kQuarterPi;
using Constants::kTwoPi;
inline constexpr double kThreeHalvesPi = 1.5 * kPi;

// Radians per degree; degrees come in and go out by this one factor.
inline constexpr double kDegree = Constants::kRadiansPerDegree;

// Inverse flattening that marks a sphere.
inline constexpr double kSphereInverseFlattening = 1e32;

// Geocentric to geodetic: latitude step below which the first estimate is
// kept, and the bound on Newton steps.
inline constexpr double kLatitudeTolerance = 1e-15;
inline constexpr int kMaxNewtonSteps = 50;

// Vincenty's iterations: convergence on lambda (inverse) or sigma (forward),
// and the pass limit that also ends the non-converging antipodal case.
inline constexpr double kVincentyTolerance = 5e-14;
inline constexpr int kVincentyMaxPasses = 21;

// Inverse results shorter than this, in units of b, count as coincident
// points: 0.1 mm on an Earth-sized semi-minor axis, the same for every figure.
inline constexpr double kCoincidenceThreshold = 1.5731285061295255e-11;

// Rhumb lines: coincidence and the east-west cases, in radians.
inline constexpr double kRhumbTolerance = 1e-10;

// Polygons smaller than this in both extents, radians, are summed on a plane.
inline constexpr double kPseudoPlanarExtent = 0.001;

// End of the band series of AuthalicRadius(lat1, lat2).
inline constexpr double kSeriesTolerance = 1e-25;

} // namespace Velmora::CS::Geodesy
