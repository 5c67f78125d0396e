#pragma once
// Shared by the transverse Mercator tests: figures, datums, projections set
// up by value, and the reading of the reference vectors.
#include "../support/ReferenceData.h"

#include <velmora/projections/TransverseMercator.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace TmercTest {

using Velmora::CString;
using Velmora::CS::CHorizontalDatum;
using Velmora::CS::PJ::CProjection;

struct Figure
{
  char const * name; // file suffix
  double a;
  double invF;
  char const * epsg;
};

inline Figure const kWgs84{"wgs84", 6378137.0, 298.257223563, "7030"};
inline Figure const kClarke1866{"clarke1866", 6378206.4, 294.9786982138982, "7008"}; // b = 6356583.8
inline Figure const kBessel1841{"bessel1841", 6377397.155, 299.1528128, "7004"};
inline Figure const kAiry1830{"airy1830", 6377563.396, 299.3249646, "7001"};
inline Figure const kFigures[] = {kWgs84, kClarke1866, kBessel1841, kAiry1830};

inline std::unique_ptr<CHorizontalDatum> MakeDatum(Figure const & f, bool withCode = true)
{
  return VelmoraTest::MakeDatum(f.a, f.invF, withCode ? f.epsg : nullptr);
}

// The five common parameters, in degrees and metres.
inline void SetCommon(CProjection & p, double cm, double lat0, double k0, double fe, double fn)
{
  auto & params = p.GetParameters();
  params.SetItemInternal(CString("central_meridian"), cm);
  params.SetItemInternal(CString("latitude_of_origin"), lat0);
  params.SetDouble(CString("scale_factor"), k0);
  params.SetItemInternal(CString("false_easting"), fe);
  params.SetItemInternal(CString("false_northing"), fn);
}

inline void SetUtm(CProjection & p, long zone, bool north, bool autoset = false)
{
  auto & params = p.GetParameters();
  params.SetLong(CString("autoset"), autoset ? 1 : 0);
  params.SetLong(CString("is_north"), north ? 1 : 0);
  params.SetLong(CString("zone"), zone);
}

using VelmoraTest::ReadRows;

// Longitude offset in degrees, within half a turn.
inline double LonOffset(double lon, double cm) { return std::remainder(lon - cm, 360.0); }

} // namespace TmercTest
