#pragma once
// The lettering of the UTM grid: latitude bands and the 100 km square
// letters of a zone. Kept apart so that the tables can be checked directly.
#include <velmora/foundation/Export.h>

namespace Velmora::CS::PJ::UTMGrid {

// Limits in whole degrees of the latitude band `letter` within `zone`,
// with the Norway and Svalbard exceptions.
VELMORA_API void Limits(char letter, long zone, long & north, long & south, long & east, long & west);

// First and last column letter of a zone and the northing offset of its row
// letters, by the lettering pattern that the ellipsoid (EPSG code) uses;
// `usng` selects the US National Grid's choice. False for other ellipsoids.
VELMORA_API bool Lettering(bool usng, long zone, int ellipsoidCode, char & first, char & last, double & offset);

} // namespace Velmora::CS::PJ::UTMGrid
