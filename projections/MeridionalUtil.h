#pragma once
// The meridional arc and its inverse series, shared by the projections that
// measure distance along the meridian on the ellipsoid.
#include <velmora/projections/Projection.h>

namespace Velmora::CS::PJ {

class VELMORA_API CMeridionalUtil : public CProjection
{
protected:
  using CProjection::CProjection;

  // Fills the eight coefficients from the datum's ellipsoid.
  void calc_meridional_values();
  // The meridional arc from the equator to `lat` (radians) on a radius.
  double calc_mx(double radius, double lat) const;

  double c0 = 0.0, c1 = 0.0, c2 = 0.0, c3 = 0.0;
  double i1 = 0.0, i2 = 0.0, i3 = 0.0, i4 = 0.0;
  BEllipsoid const * m_ellipsoid = nullptr;
};

} // namespace Velmora::CS::PJ
