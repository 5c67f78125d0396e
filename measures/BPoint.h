#pragma once
// BPoint2D and BPoint3D: the plain points of the numeric layer. Bare doubles
// without units, so that arrays of them go straight through the ellipsoid and
// the projections. Used as geodetic points, x is the longitude and y the latitude.

namespace Velmora::ML {

struct BPoint2D
{
  double x;
  double y;

  constexpr BPoint2D() : x(0.0), y(0.0) {}
  constexpr BPoint2D(double x_, double y_) : x(x_), y(y_) {}
};

struct BPoint3D
{
  double x;
  double y;
  double z;

  constexpr BPoint3D() : x(0.0), y(0.0), z(0.0) {}
  constexpr BPoint3D(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}
};

} // namespace Velmora::ML
