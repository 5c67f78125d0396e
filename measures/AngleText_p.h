#pragma once
// Stand-in until the angle text engine lands: same interface, reads and
// writes plain decimal numbers only.
#include <velmora/foundation/CString.h>

namespace Velmora::ML {

class CAngleText
{
public:
  void SetFormat(CString const & format) { m_format = format; }
  CString const & GetFormat() const { return m_format; }
  CString ToString(double angle) const { return CString(QString::number(angle, 'g', 15)); }
  bool FromString(CString const & text, double & angle) const
  {
    bool ok = false;
    angle = text.toDouble(&ok);
    return ok;
  }

private:
  CString m_format;
};

} // namespace Velmora::ML

namespace Velmora::ML {
// Stand-in Georef readers until the engine lands.
inline void GeorefToLonLat(CString const &, double & lon, double & lat)
{
  lon = 0.0;
  lat = 0.0;
}
inline CString LonLatToGeoref(double, double) { return CString(); }
} // namespace Velmora::ML
