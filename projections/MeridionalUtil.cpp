#include <velmora/projections/MeridionalUtil.h>

#include <cmath>

namespace Velmora::CS::PJ {

// Meridian arc to the e^6 term and its rectifying-latitude inverse in
// e1 = (1 - b/a)/(1 + b/a) (Snyder, Map Projections: A Working Manual, 3-21, 3-26).
void CMeridionalUtil::calc_meridional_values()
{
  m_ellipsoid = GetInnerEllipsoid();
  if (!m_ellipsoid)
    return;
  double const e2 = m_ellipsoid->GetEccentricitySquared();
  double const e4 = e2 * e2, e6 = e4 * e2;
  double const ratio = m_ellipsoid->GetAxisRatio();
  double const e1 = (1.0 - ratio) / (1.0 + ratio);
  double const e1_2 = e1 * e1, e1_3 = e1_2 * e1, e1_4 = e1_3 * e1;
  c0 = 1.0 - e2 / 4.0 - 3.0 * e4 / 64.0 - 5.0 * e6 / 256.0;
  c1 = 3.0 * e2 / 8.0 + 3.0 * e4 / 32.0 + 45.0 * e6 / 1024.0;
  c2 = 15.0 * e4 / 256.0 + 45.0 * e6 / 1024.0;
  c3 = 35.0 * e6 / 3072.0;
  i1 = 3.0 * e1 / 2.0 - 27.0 * e1_3 / 32.0;
  i2 = 21.0 * e1_2 / 16.0 - 55.0 * e1_4 / 32.0;
  i3 = 151.0 * e1_3 / 96.0;
  i4 = 1097.0 * e1_4 / 512.0;
}

double CMeridionalUtil::calc_mx(double radius, double lat) const
{
  return radius * (c0 * lat - c1 * std::sin(2.0 * lat) + c2 * std::sin(4.0 * lat) - c3 * std::sin(6.0 * lat));
}

} // namespace Velmora::CS::PJ
