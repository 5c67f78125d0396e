// Georef text through a geodetic point in the Georef format, and the text
// that a point at the place it gave writes again.
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/CoordPoints.h>

#include <cstdint>

using namespace Velmora;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size)
{
  CString const text(QString::fromUtf8(reinterpret_cast<char const *>(data), static_cast<qsizetype>(size)));
  try {
    ML::CGeodeticPoint point;
    point.SetStringFormat(ML::CGeodeticPoint::kGeoref);
    point.SetLocationString(text);
    double lon = 0.0, lat = 0.0;
    point.GetInternals(lon, lat);
    ML::CGeodeticPoint again;
    again.SetInternals(lon, lat);
    again.SetStringFormat(ML::CGeodeticPoint::kGeoref);
    again.GetLocationString();
  } catch (EX::CVelmoraException const &) {
  }
  return 0;
}
