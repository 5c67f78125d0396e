#include <velmora/projections/MeridionalUtil.h>

#include <velmora/refsys/EllipsoidKernel_p.h>

namespace Velmora::CS::PJ {

void CMeridionalUtil::calc_meridional_values()
{
  m_ellipsoid = GetInnerEllipsoid();
  if (!m_ellipsoid)
    return;
  auto const series = Kernel::MeridianArcSeries::Make(m_ellipsoid->GetEccentricitySquared(), m_ellipsoid->GetAxisRatio());
  c0 = series.c0;
  c1 = series.c1;
  c2 = series.c2;
  c3 = series.c3;
  i1 = series.i1;
  i2 = series.i2;
  i3 = series.i3;
  i4 = series.i4;
}

double CMeridionalUtil::calc_mx(double radius, double lat) const
{
  return radius * Kernel::MeridianArc(c0, c1, c2, c3, lat);
}

} // namespace Velmora::CS::PJ
