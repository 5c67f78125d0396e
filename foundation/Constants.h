#pragma once
// Numeric constants shared across the library, in one place.

namespace Velmora::Constants {

// Radians in one degree. Objects keep degrees; the mathematics works in
// radians and converts with exactly this factor, by multiplying one way and
// dividing the other.
inline constexpr double kRadiansPerDegree = 0.017453292519943295;

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kHalfPi = kPi / 2.0;
inline constexpr double kQuarterPi = kPi / 4.0;
inline constexpr double kTwoPi = 2.0 * kPi;

} // namespace Velmora::Constants
