#pragma once
// The grid references of MGRS and the US National Grid, shared by
// CMilitaryGridReferenceSystem and the grid-string formats of UTM.
#include <velmora/foundation/CString.h>
#include <velmora/refsys/HorizontalDatum.h>

namespace Velmora::CS::PJ::MilitaryGrid {

// The reference of a point (degrees) on the datum, whose ellipsoid has the
// EPSG code given (0: none); `usng` chooses the US National Grid's
// lettering. False, and `text` untouched, beyond 84 N and 80 S. Failures
// (no EPSG code, an ellipsoid without a lettering) are code 54 at `location`.
bool Format(CHorizontalDatum * datum, int ellipsoidCode, bool usng, double lon, double lat, char const * location,
            CString & text);

// The south-west corner (degrees) of the square that `text` names; a text
// that does not parse is code 54 at `location`.
void Parse(CHorizontalDatum * datum, int ellipsoidCode, bool usng, CString const & text, char const * location,
           double & lon, double & lat);

} // namespace Velmora::CS::PJ::MilitaryGrid
