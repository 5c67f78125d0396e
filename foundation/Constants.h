#pragma once
// Numeric constants shared across the library, in one place.

namespace Velmora::Constants {

// Radians in one degree. Objects keep degrees; the mathematics works in
// radians and converts with exactly this factor, by multiplying one way and
// dividing the other.
inline constexpr double kRadiansPerDegree = 0.017453292519943295;

} // namespace Velmora::Constants
