#pragma once
// The grid shift references of scripts/gen-grid-refs.sh: each row a point,
// PROJ's forward shift of it and PROJ's inverse shift of it, in degrees.
#include <velmora/transforms/datumshifts/DatumShift.h>

#include "ReferenceData.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace VelmoraTest {

// Forward rows to within `forward` degrees, and the largest gap of the back
// direction from PROJ's inverse. `swapped` runs the shift the other way
// round, for a method whose stored direction is PROJ's inverse.
inline double ExpectAgreesWithProj(Velmora::CT::DS::CDatumShift const & shift, std::string const & rows,
                                   double forward, bool swapped = false)
{
  double worstBack = 0.0;
  for (std::vector<double> const & r : ReadRows(rows, 6)) {
    double lon = r[0], lat = r[1];
    swapped ? shift.ShiftBack(lon, lat) : shift.ShiftForward(lon, lat);
    EXPECT_NEAR(lon, r[2], forward) << rows << " at " << r[0] << " " << r[1];
    EXPECT_NEAR(lat, r[3], forward) << rows << " at " << r[0] << " " << r[1];
    lon = r[0], lat = r[1];
    swapped ? shift.ShiftForward(lon, lat) : shift.ShiftBack(lon, lat);
    worstBack = std::max({worstBack, std::fabs(lon - r[4]), std::fabs(lat - r[5])});
  }
  return worstBack;
}

} // namespace VelmoraTest
