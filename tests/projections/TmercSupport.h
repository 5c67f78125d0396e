#pragma once
// Shared by the transverse Mercator tests: figures, datums, projections set
// up by value, and the reading of the reference vectors.
#include <velmora/projections/TransverseMercator.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace TmercTest {

using Velmora::CString;
using VelmoraTest::ReadRows;
using Velmora::CS::CEllipsoid;
using Velmora::CS::CHorizontalDatum;
using Velmora::CS::PJ::CProjection;

struct Figure
{
  char const * name; // file suffix
  double a;
  double b;    // 0: by inverse flattening
  double invF; // 0: by semi-minor axis
  char const * epsg;
};

inline Figure const kWgs84{"wgs84", 6378137.0, 0.0, 298.257223563, "7030"};
inline Figure const kClarke1866{"clarke1866", 6378206.4, 6356583.8, 0.0, "7008"};
inline Figure const kBessel1841{"bessel1841", 6377397.155, 0.0, 299.1528128, "7004"};
inline Figure const kAiry1830{"airy1830", 6377563.396, 0.0, 299.3249646, "7001"};
inline Figure const kFigures[] = {kWgs84, kClarke1866, kBessel1841, kAiry1830};

inline std::unique_ptr<CHorizontalDatum> MakeDatum(Figure const & f, bool withCode = true)
{
  CEllipsoid e;
  e.GetSemiMajor().SetValue(f.a);
  if (f.b > 0)
    e.GetSemiMinor().SetValue(f.b);
  else
    e.SetInvFlattening(f.invF);
  if (withCode)
    e.GetIdentifiers().Add(CString("EPSG"), CString(f.epsg));
  auto datum = std::make_unique<CHorizontalDatum>();
  datum->SetEllipsoid(e);
  return datum;
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

// Longitude offset in degrees, within half a turn.
inline double LonOffset(double lon, double cm) { return std::remainder(lon - cm, 360.0); }

} // namespace TmercTest
