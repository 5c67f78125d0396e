// The stored ellipsoid, prime meridian and horizontal datum.
#include <velmora/foundation/VelmoraException.h>
#include <velmora/refsys/HorizontalDatum.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include <cmath>

using namespace VelmoraTest;
using namespace Velmora;
using namespace Velmora::CS;
using namespace Velmora::ML;
using EX::CVelmoraException;

namespace {
constexpr double kWgs84A = 6378137.0;
constexpr double kWgs84InvF = 298.257223563;
constexpr double kNauticalMile = 1852.0;

CEllipsoid Wgs84()
{
  CEllipsoid e;
  e.GetSemiMajor().SetValue(kWgs84A);
  e.SetInvFlattening(kWgs84InvF);
  return e;
}


} // namespace

TEST(Ellipsoid, EitherAxisOrFlatteningDefinesTheFigure)
{
  CEllipsoid e = Wgs84();
  EXPECT_TRUE(e.GetInvFlatDefinitive());
  EXPECT_NEAR(e.GetSemiMinor().GetInternal(), 6356752.314245179, 1e-6);
  EXPECT_NEAR(e.GetInner().GetSemiMinor(), 6356752.314245179, 1e-6);
  EXPECT_NEAR(e.GetEccentricitySquared(), 0.00669437999014132, 1e-15);

  // Changing the semi-major axis keeps the flattening.
  e.GetSemiMajor().SetValue(6378388.0);
  EXPECT_TRUE(e.GetInvFlatDefinitive());
  EXPECT_NEAR(e.GetInvFlattening(), kWgs84InvF, 1e-9);
  EXPECT_NEAR(e.GetSemiMinor().GetInternal(), 6378388.0 * (1.0 - 1.0 / kWgs84InvF), 1e-6);

  // Setting the semi-minor axis makes it the definition.
  e.GetSemiMinor().SetValue(6356911.946);
  EXPECT_FALSE(e.GetInvFlatDefinitive());
  EXPECT_NEAR(e.GetInvFlattening(), 297.0, 1e-5); // International 1924, b to the millimetre

  // SetSemiMajor with a value in other units: the quantity counts.
  CLinearValue feet;
  feet.SetUnits(CLinearUnit(CString("Foot"), CString("ft"), 1.0 / 0.3048));
  feet.SetValue(20925646.325); // 6378137 m
  CEllipsoid byFeet;
  byFeet.SetSemiMajor(feet);
  byFeet.GetSemiMinor().SetValue(6356752.314245);
  EXPECT_NEAR(byFeet.GetInner().GetSemiMajor(), 6378137.0, 1e-3);
  EXPECT_NEAR(byFeet.GetInvFlattening(), kWgs84InvF, 1e-5);

  // An inverse flattening below one is taken as one: a sphere.
  CEllipsoid sphere;
  sphere.GetSemiMajor().SetValue(6371000.0);
  sphere.SetInvFlattening(0.5);
  EXPECT_TRUE(sphere.GetInner().IsSpherical());
  EXPECT_EQ(sphere.GetSemiMinor().GetInternal(), 6371000.0);
}

TEST(Ellipsoid, BadFiguresRaiseFromTheSetter)
{
  CEllipsoid e;
  e.GetSemiMajor().SetValue(1.0);
  CVelmoraException const x = Raised([&] { e.GetSemiMinor().SetValue(2.0); });
  EXPECT_EQ(x.GetErrorCode(), 14);
  EXPECT_EQ(x.GetLocation(), CString("BEllipsoid::set_SemiMajor_SemiMinor"));
  EXPECT_EQ(x.GetDetails(), CString("Semi-minor cannot be greater than semi-major"));
  EXPECT_EQ(e.GetInner().GetSemiMinor(), 1.0); // the figure that survives
}

TEST(Ellipsoid, StoredValuesAndCopies)
{
  CEllipsoidDataDB stored;
  TWLVariant a(CString("6378137")), invF(CString("298.257223563")), remarks(CString("GRS 1980 twin"));
  stored.SetValue("semimajor", a);
  stored.SetValue("invflattening", invF);
  stored.SetValue("remarks", remarks);
  EXPECT_TRUE(stored.GetInvFlatDefinitive());
  EXPECT_NEAR(stored.GetInner().GetSemiMinor(), 6356752.314245179, 1e-6);
  EXPECT_EQ(stored.GetRemarks(), CString("GRS 1980 twin"));

  // A copy listens to its own values, not to the original's.
  CEllipsoidDataConcrete copy(stored);
  copy.GetSemiMinor().SetValue(6356000.0);
  EXPECT_FALSE(copy.GetInvFlatDefinitive());
  EXPECT_TRUE(stored.GetInvFlatDefinitive());
  EXPECT_NEAR(stored.GetInner().GetSemiMinor(), 6356752.314245179, 1e-6);
  EXPECT_EQ(copy.GetInner().GetSemiMinor(), 6356000.0);
}

TEST(Ellipsoid, ComparisonTexts)
{
  CEllipsoid a = Wgs84(), b = Wgs84();
  EXPECT_TRUE(a.IsNearlyEqual(b));
  EXPECT_TRUE(a == b);
  b.GetSemiMajor().SetValue(kWgs84A + 0.5);
  CString why;
  EXPECT_FALSE(a.IsNearlyEqual(b, why));
  EXPECT_EQ(why, CString(": semi-major does not match: 6378137 != 6378137.5"));

  CEllipsoid c = Wgs84();
  c.SetInvFlattening(298.2);
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(c, why)); // both by flattening: semi-minor not compared
  EXPECT_EQ(why, CString(": inverse flattening does not match : 298.257 != 298.2"));
  c.SetInvFlattening(kWgs84InvF + 5e-5);
  EXPECT_TRUE(a.IsNearlyEqual(c));

  CEllipsoid byAxes;
  byAxes.GetSemiMajor().SetValue(kWgs84A);
  byAxes.GetSemiMinor().SetValue(6356752.3);
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(byAxes, why));
  EXPECT_EQ(why, CString(": semi-minor does not match: 6356752.314245179 != 6356752.3"));
}

TEST(Ellipsoid, CompletenessAsksForAxisUnits)
{
  CEllipsoid e = Wgs84();
  e.GetIdentifiers().Add("VM", "WGS84");
  CVelmoraException const x = Raised([&] { e.IsFullyDefined(nullptr); });
  EXPECT_EQ(x.GetErrorCode(), 25);
  EXPECT_EQ(x.GetLocation(), CString("CEllipsoidData::IsFullyDefined"));
  EXPECT_EQ(x.GetDetails(), CString("LinearUnits(SemiMajor)"));
  e.GetSemiMajor().GetUnits().GetIdentifiers().Add("VM", "METRE");
  EXPECT_TRUE(e.IsFullyDefined(nullptr)); // the derived semi-minor is not asked
  e.GetSemiMinor().SetValue(6356752.0);
  EXPECT_EQ(Raised([&] { e.IsFullyDefined(nullptr); }).GetDetails(), CString("LinearUnits(SemiMinor)"));
}

TEST(Ellipsoid, GeodesicsOverPoints)
{
  CEllipsoid const e = Wgs84();
  CGeodeticPoint const a(10.0, 50.0), b(11.0, 51.0);
  double s, az12, az21;
  EXPECT_TRUE(e.ComputeInverse(a, b, s, az12, az21));
  CGeodeticPoint end(2);
  EXPECT_TRUE(e.ComputeDirect(a, s, az12, end));
  EXPECT_NEAR(end.GetLon().GetInternal(), 11.0, 1e-9);
  EXPECT_NEAR(end.GetLat().GetInternal(), 51.0, 1e-9);

  CLinearValue radius;
  CAngularValue lat;
  lat.SetInternal(0.0);
  EXPECT_TRUE(e.ComputeRadiusAtLatitude(lat, radius));
  EXPECT_NEAR(radius.GetInternal(), 6335439.327, 1e-3); // meridional radius at the equator
  double scale = 0;
  CLinearValue height;
  height.SetInternal(1000.0);
  EXPECT_TRUE(e.ComputeOrthometricScaleAtLatitude(lat, height, scale));
  EXPECT_NEAR(scale, 6335439.327 / (6335439.327 + 1000.0), 1e-9);
}

TEST(Ellipsoid, CoordinatedGridOffsets)
{
  CEllipsoid const e = Wgs84();
  CGeodeticPoint const a(-70.0, 40.0);
  // A point 10 nautical miles east and 5 north, along the grid axes.
  CGeodeticPoint east(2), b(2);
  e.ComputeDirect(a, 10 * kNauticalMile, 3.141592653589793 / 2, east);
  e.ComputeDirect(a, 5 * kNauticalMile, 0.0, b);
  b.GetLon().SetInternal(east.GetLon().GetInternal());
  unsigned short text[16] = {};
  ASSERT_TRUE(e.CCGridInverse(a, b, text));
  EXPECT_EQ(CString(text), CString("W010/005"));
  ASSERT_TRUE(e.CCGridInverse(b, a, text));
  EXPECT_EQ(CString(text), CString("G010/005"));
  EXPECT_EQ(Raised([&] { e.CCGridInverse(a, b, nullptr); }).GetErrorCode(), 55);

  CGeodeticPoint end(2);
  EXPECT_FALSE(e.CCGridDirect(a, Wide("X010/005").c_str(), end));
  EXPECT_FALSE(e.CCGridDirect(a, Wide("W010/05").c_str(), end)); // too short
  ASSERT_TRUE(e.CCGridDirect(a, Wide("w010/005").c_str(), end));
  EXPECT_NEAR(end.GetLat().GetInternal(), b.GetLat().GetInternal(), 1e-9);
  // The east-west leg runs at 90 radians, as it always has: not due east.
  CGeodeticPoint leg(2);
  e.ComputeDirect(a, 10 * kNauticalMile, 90.0, leg);
  EXPECT_DOUBLE_EQ(end.GetLon().GetInternal(), leg.GetLon().GetInternal());
  EXPECT_GT(std::fabs(end.GetLon().GetInternal() - b.GetLon().GetInternal()), 0.01);
  CVelmoraException const x = Raised([&] { e.CCGridDirect(a, nullptr, end); });
  EXPECT_EQ(x.GetLocation(), CString("CEllipsoidData::CCGridInverse"));
}

TEST(PrimeMeridian, ShiftsWithoutReduction)
{
  CPrimeMeridian paris;
  paris.GetLongitude().SetValue(2.5);
  CGeodeticPoint const in(179.0, 48.0, 10.0);
  CGeodeticPoint out(3);
  EXPECT_TRUE(paris.ToGreenwich(in, out));
  EXPECT_EQ(out.GetLon().GetInternal(), 181.5);
  EXPECT_EQ(out.GetHgt().GetInternal(), 10.0);
  CGeodeticPoint back(3);
  EXPECT_TRUE(paris.FromGreenwich(out, back));
  EXPECT_EQ(back.GetLon().GetInternal(), 179.0);
  // The location copy's failures come through.
  CGeodeticPoint georef(CGeodeticPoint::kGeoref, nullptr);
  EXPECT_EQ(Raised([&] { paris.ToGreenwich(in, georef); }).GetErrorCode(), 14);

  CPrimeMeridian greenwich;
  CString why;
  EXPECT_FALSE(paris.IsNearlyEqual(greenwich, why));
  EXPECT_EQ(why, CString(": longitudes do not match : ignoring units, but inner values are still not equal : 2.5 != 0"));
  CPrimeMeridianDataDB stored;
  TWLVariant lon(CString("362.5"));
  stored.SetValue("longitude", lon); // through the value's range reduction
  EXPECT_EQ(stored.GetLongitude().GetInternal(), 2.5);
}

TEST(HorizontalDatum, InnerObjectsAndComparison)
{
  CHorizontalDatum datum;
  EXPECT_EQ(datum.GetEllipsoid().GetInner().GetSemiMajor(), 0.0); // default body, made lazily
  datum.SetEllipsoid(Wgs84());
  CHorizontalDatum other(datum);
  EXPECT_TRUE(datum.IsNearlyEqual(other));
  other.GetIdentifiers().Add("EPSG", "6326");
  CString why;
  EXPECT_FALSE(datum.IsNearlyEqual(other, why));
  EXPECT_EQ(why, CString(": EPSG code exists for one horizontal datum but not the other"));

  CHorizontalDatum paris(datum);
  CPrimeMeridian meridian;
  meridian.GetLongitude().SetValue(2.33722917);
  paris.SetPrimeMeridian(meridian);
  why.clear();
  EXPECT_FALSE(datum.IsNearlyEqual(paris, why));
  EXPECT_TRUE(why.startsWith(QStringLiteral(": prime meridians do not match : longitudes do not match")));

  CHorizontalDatum clarke(datum);
  clarke.GetEllipsoid().SetInvFlattening(293.465);
  why.clear();
  EXPECT_FALSE(datum.IsNearlyEqual(clarke, why));
  EXPECT_TRUE(why.startsWith(QStringLiteral(": ellipsoids do not match ")));
  EXPECT_NEAR(datum.GetEllipsoid().GetInvFlattening(), kWgs84InvF, 1e-9); // the copy was private

  datum.GetIdentifiers().Add("VM", "WGS84");
  CVelmoraException const x = Raised([&] { datum.IsFullyDefined(nullptr); });
  EXPECT_EQ(x.GetErrorCode(), 25);
  EXPECT_EQ(x.GetLocation(), CString("CHorizontalDatumData::IsFullyDefined"));
  EXPECT_EQ(x.GetDetails(), CString("Ellipsoid"));
  datum.GetEllipsoid().GetIdentifiers().Add("VM", "WGS84");
  EXPECT_EQ(Raised([&] { datum.IsFullyDefined(nullptr); }).GetDetails(), CString("PrimeMeridian"));
  datum.Congeal();
}
