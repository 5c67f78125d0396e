#pragma once
// Georef location text of a geodetic point: four letters and two runs of five
// digits, "NGAA0000000000". Letters name 15-degree and then 1-degree cells,
// counted east from 180W and north from 90S, with I and O left out; the digits
// are thousandths of a minute of longitude and then of latitude.
#include <velmora/foundation/CString.h>

namespace Velmora::ML {

// Index of a cell letter, upper or lower case; I and O have none of their own.
VELMORA_API long GeorefIndexFromLetter(char c);
VELMORA_API char GeorefLetterFromIndex(long index);

// Longitude and latitude in degrees from Greenwich and the equator.
VELMORA_API void GeorefToLonLat(CString const & text, double & lon, double & lat);
VELMORA_API CString LonLatToGeoref(double lon, double lat);

} // namespace Velmora::ML
