// Coordinate systems: the base conversions, their envelope guards and the
// order of their failures, point styles, comparison, the factory.
#include <velmora/datasource/CDataSource.h>
#include <velmora/projections/Cylindrical.h>
#include <velmora/refsys/CoordSys.h>
#include <velmora/vertical/VerticalDatum.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include <memory>

using namespace Velmora;
using namespace Velmora::CS;
using namespace Velmora::ML;
using namespace VelmoraTest;

namespace {
CHorizontalDatum Wgs84Datum()
{
  CHorizontalDatum datum;
  datum.GetEllipsoid().GetSemiMajor().SetValue(6378137.0);
  datum.GetEllipsoid().SetInvFlattening(298.257223563);
  return datum;
}

CEnvelope GeodeticEnvelope(double west, double south, double east, double north)
{
  CEnvelope e(kGeodeticPoint);
  e.SetAlwaysAccept(false);
  e.GetMinPoint()->SetInternals(west, south, -1e4);
  e.GetMaxPoint()->SetInternals(east, north, 1e4);
  return e;
}
} // namespace

TEST(GeodeticCoordSys, PrimeMeridianAndFastPath)
{
  CGeodeticCoordSys paris;
  CHorizontalDatum datum = Wgs84Datum();
  datum.GetPrimeMeridian().GetLongitude().SetValue(2.33722917);
  paris.SetHorizontalDatum(datum);
  CGeodeticPoint in(1.0, 48.0, 35.0), out(3);
  EXPECT_TRUE(paris.ToGeodeticBase(in, out));
  EXPECT_DOUBLE_EQ(out.GetLon().GetInternal(), 3.33722917);
  EXPECT_EQ(out.GetHgt().GetInternal(), 35.0);
  CGeodeticPoint back(3);
  EXPECT_TRUE(paris.FromGeodeticBase(out, back));
  EXPECT_DOUBLE_EQ(back.GetLon().GetInternal(), 1.0);

  double x = 1.0, y = 48.0;
  EXPECT_TRUE(paris.ToGeodeticBase(x, y));
  EXPECT_DOUBLE_EQ(x, 3.33722917);
  EXPECT_EQ(y, 48.0);
  // The pair path has no envelope test, by design.
  paris.SetEnvelope(GeodeticEnvelope(-5, 40, 10, 55));
  x = 100.0;
  EXPECT_TRUE(paris.FromGeodeticBase(x, y));
}

TEST(GeodeticCoordSys, EnvelopeFirstThenClass)
{
  CGeodeticCoordSys system;
  system.SetEnvelope(GeodeticEnvelope(-5, 40, 10, 55));
  CGeodeticPoint out(3);
  // A projected point meets the envelope's class check before the type test.
  auto const e = Raised([&] { system.ToGeodeticBase(CProjectedPoint(1.0, 50.0, 0.0), out); });
  EXPECT_EQ(e.GetErrorCode(), 53);
  auto const outside = Raised([&] { system.ToGeodeticBase(CGeodeticPoint(11.0, 50.0, 0.0), out); });
  EXPECT_EQ(outside.GetErrorCode(), 43);
  EXPECT_EQ(outside.GetLocation(), CString("CGeodeticCoordSys::ToGeodeticBase"));
  EXPECT_EQ(outside.GetDetails(), CString("Point is not within the specified envelope."));
  // Always accepting, the class is tested: code 45.
  CGeodeticCoordSys open;
  EXPECT_EQ(Raised([&] { open.ToGeodeticBase(CProjectedPoint(1.0, 50.0, 0.0), out); }).GetErrorCode(), 45);
  CProjectedPoint wrong(3);
  auto const wrongOut = Raised([&] { open.FromGeodeticBase(CGeodeticPoint(1.0, 50.0, 0.0), wrong); });
  EXPECT_EQ(wrongOut.GetErrorCode(), 46);
  EXPECT_EQ(wrongOut.GetLocation(), CString("CGeodeticCoordSys::FromGeodeticBase"));

  // Landing outside raises 44 and leaves the computed point in `out`.
  CGeodeticPoint landed(3);
  auto const late = Raised([&] { system.FromGeodeticBase(CGeodeticPoint(20.0, 50.0, 0.0), landed); });
  EXPECT_EQ(late.GetErrorCode(), 44);
  EXPECT_TRUE(late.GetDetails().isEmpty());
  EXPECT_EQ(landed.GetLon().GetInternal(), 20.0);

  DB::CDataSource::SetIgnoreEnvelope(true);
  EXPECT_TRUE(system.ToGeodeticBase(CGeodeticPoint(11.0, 50.0, 0.0), out));
  DB::CDataSource::SetIgnoreEnvelope(false);
}

TEST(GeocentricCoordSys, RoundTripsWithHeights)
{
  CGeocentricCoordSys ecef;
  ecef.SetHorizontalDatum(Wgs84Datum());
  for (double h : {-10000.0, 0.0, 250.5, 1e7}) {
    CGeodeticPoint geo(12.5, 47.25, h);
    CCartesianPoint xyz(3);
    ASSERT_TRUE(ecef.FromGeodeticBase(geo, xyz));
    CGeodeticPoint back(3);
    ASSERT_TRUE(ecef.ToGeodeticBase(xyz, back));
    EXPECT_NEAR(back.GetLon().GetInternal(), 12.5, 1e-11);
    EXPECT_NEAR(back.GetLat().GetInternal(), 47.25, 1e-11);
    EXPECT_NEAR(back.GetHgt().GetInternal(), h, 1e-6);
  }
  // Known value: the equator at Greenwich lies one semi-major axis out.
  CCartesianPoint xyz(3);
  ecef.FromGeodeticBase(CGeodeticPoint(0.0, 0.0, 0.0), xyz);
  EXPECT_NEAR(xyz.GetX().GetInternal(), 6378137.0, 1e-6);

  CGeodeticPoint out(3);
  auto const e = Raised([&] { ecef.ToGeodeticBase(CGeodeticPoint(0, 0, 0), out); });
  EXPECT_EQ(e.GetErrorCode(), 45);
  EXPECT_EQ(e.GetLocation(), CString("CGeocentricCoordSys::ToGeodeticBase"));
  CGeodeticPoint notCartesian(3);
  EXPECT_EQ(Raised([&] { ecef.FromGeodeticBase(CGeodeticPoint(0, 0, 0), notCartesian); }).GetErrorCode(), 46);

  // A geodetic envelope guards the geodetic side in both directions.
  ecef.SetEnvelope(GeodeticEnvelope(0, 0, 10, 10));
  EXPECT_EQ(Raised([&] { ecef.FromGeodeticBase(CGeodeticPoint(20, 5, 0), xyz); }).GetErrorCode(), 43);
  CCartesianPoint far(3);
  ecef.SetEnvelope(CEnvelope());
  ecef.FromGeodeticBase(CGeodeticPoint(20, 5, 0), far);
  ecef.SetEnvelope(GeodeticEnvelope(0, 0, 10, 10));
  EXPECT_EQ(Raised([&] { ecef.ToGeodeticBase(far, out); }).GetErrorCode(), 44);
  EXPECT_NEAR(out.GetLon().GetInternal(), 20.0, 1e-9);

  // A native envelope guards the cartesian side.
  CEnvelope box(kCartesianPoint);
  box.SetAlwaysAccept(false);
  box.GetMinPoint()->SetInternals(6e6, -1e6, -1e6);
  box.GetMaxPoint()->SetInternals(6.4e6, 1e6, 1e6);
  ecef.SetEnvelope(box);
  EXPECT_TRUE(ecef.ToGeodeticBase(CCartesianPoint(6378137.0, 0.0, 0.0), out));
  EXPECT_EQ(Raised([&] { ecef.ToGeodeticBase(CCartesianPoint(6.5e6, 0.0, 0.0), out); }).GetErrorCode(), 43);
}

TEST(CoordSys, PointStylesByClass)
{
  CGeodeticCoordSys geodetic;
  auto const e = Raised([&] { geodetic.SetPointStyle(CCartesianPoint(3)); });
  EXPECT_EQ(e.GetErrorCode(), 53);
  EXPECT_EQ(e.GetLocation(), CString("CGeodeticCoordSys::SetPointStyle"));
  EXPECT_EQ(e.GetDetails(), CString("Expected a Geodetic Point Type"));
  CProjectedCoordSys projected;
  EXPECT_EQ(Raised([&] { projected.SetPointStyle(CGeodeticPoint(3)); }).GetDetails(),
            CString("Expected a Projected Point Type"));
  CGeocentricCoordSys geocentric;
  EXPECT_EQ(Raised([&] { geocentric.SetPointStyle(CProjectedPoint(3)); }).GetLocation(),
            CString("CGeocentricCoordSys::SetPointStyle"));

  CProjectedPoint style(2);
  style.GetEast().SetUnits(CLinearUnit(CString("Foot"), CString("ft"), 1.0 / 0.3048));
  projected.SetPointStyle(style);
  EXPECT_EQ(projected.GetPointStyle().GetDimensions(), 2);
  EXPECT_EQ(static_cast<CProjectedPoint const &>(projected.GetPointStyle()).GetEast().GetUnits().GetAbbreviation(),
            CString("ft"));
}

TEST(CoordSys, ComparisonTexts)
{
  CGeodeticCoordSys a, b;
  a.SetHorizontalDatum(Wgs84Datum());
  b.SetHorizontalDatum(Wgs84Datum());
  EXPECT_TRUE(a.IsNearlyEqual(b));
  CGeocentricCoordSys c;
  CString why;
  EXPECT_FALSE(a.IsNearlyEqual(c, why));
  EXPECT_EQ(why, CString(": CoordSys types do not match"));
  CHorizontalDatum other = Wgs84Datum();
  other.GetEllipsoid().GetSemiMajor().SetValue(6378388.0);
  b.SetHorizontalDatum(other);
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(b, why));
  EXPECT_TRUE(why.startsWith(QStringLiteral(": horizontal datums do not match : ellipsoids do not match")));
  // Point styles and envelopes do not count.
  b.SetHorizontalDatum(Wgs84Datum());
  b.SetEnvelope(GeodeticEnvelope(0, 0, 1, 1));
  EXPECT_TRUE(a.IsNearlyEqual(b));

  CProjectedCoordSys p, q;
  why.clear();
  EXPECT_FALSE(p.IsNearlyEqual(q, why));
  EXPECT_EQ(why, CString(": projection is not defined for one of the projected coordinate systems"));
  p.GetProjection();
  q.GetProjection();
  EXPECT_TRUE(p.IsNearlyEqual(q));
}

TEST(GeodeticCoordSys, OptionalVerticalReference)
{
  CGeodeticCoordSys a, b;
  a.SetHorizontalDatum(Wgs84Datum());
  b.SetHorizontalDatum(Wgs84Datum());
  EXPECT_EQ(a.GetVerticalReference(), nullptr);

  VR::CVerticalReference navd88;
  std::unique_ptr<VR::CVerticalDatum> datum(
    VR::CVerticalDatumFactory::CreateVerticalDatum(VR::CVerticalDatum::kNAVD88));
  navd88.SetVerticalDatum(datum.get());
  a.SetVerticalReference(navd88);
  // A private copy: the caller's reference may change or go.
  ASSERT_NE(a.GetVerticalReference(), nullptr);
  EXPECT_NE(a.GetVerticalReference(), &navd88);
  navd88.SetVerticalDatum(nullptr);
  ASSERT_NE(a.GetVerticalReference()->GetVerticalDatum(), nullptr);

  // Presence is compared before the datums, the references after them.
  CString why;
  EXPECT_FALSE(a.IsNearlyEqual(b, why));
  EXPECT_EQ(why, CString(": both geodetic coord systems do not have valid vertical references"));
  EXPECT_FALSE(a == b);
  b.SetVerticalReference(navd88);
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(b, why));
  EXPECT_TRUE(why.startsWith(QStringLiteral(": vertical references do not match : vertical datum is not defined")))
    << why.toStdString();
  CHorizontalDatum other = Wgs84Datum();
  other.GetEllipsoid().GetSemiMajor().SetValue(6378388.0);
  b.SetHorizontalDatum(other);
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(b, why));
  EXPECT_TRUE(why.startsWith(QStringLiteral(": horizontal datums do not match"))) << why.toStdString();

  // Copies carry their own reference; equal until one of them changes.
  CGeodeticCoordSys c(a);
  EXPECT_TRUE(c == a);
  EXPECT_TRUE(c.IsNearlyEqual(a));
  c.SetVerticalReference(nullptr);
  EXPECT_EQ(c.GetVerticalReference(), nullptr);
  EXPECT_NE(a.GetVerticalReference(), nullptr);
  EXPECT_FALSE(c == a);

  // A projected system reaches it through its geodetic base.
  CProjectedCoordSys projected;
  projected.SetGeodeticCoordSys(a);
  ASSERT_NE(projected.GetGeodeticCoordSys().GetVerticalReference(), nullptr);

  // Completeness asks for the reference after the datum, only where there is one.
  CEnvelope envelope;
  envelope.GetIdentifiers().Add("VM", "WORLD");
  CGeodeticPoint style(3);
  style.GetIdentifiers().Add("VM", "LL");
  CHorizontalDatum identified = Wgs84Datum();
  identified.GetIdentifiers().Add("VM", "WGS84");
  a.GetIdentifiers().Add("VM", "LL84-NAVD88");
  a.SetEnvelope(envelope);
  a.SetPointStyle(style);
  a.SetHorizontalDatum(identified);
  auto const e = Raised([&] { a.IsFullyDefined(nullptr); });
  EXPECT_EQ(e.GetErrorCode(), 25);
  EXPECT_EQ(e.GetDetails(), CString("VerticalReference"));
  EXPECT_EQ(e.GetLocation(), CString("CGeodeticCoordSysData::IsFullyDefined"));
  a.GetVerticalReference()->GetIdentifiers().Add("VM", "NAVD88");
  EXPECT_NO_THROW(a.IsFullyDefined(nullptr));
  a.SetVerticalReference(nullptr);
  EXPECT_NO_THROW(a.IsFullyDefined(nullptr));
}

TEST(CoordSys, Completeness)
{
  CGeodeticCoordSys system;
  system.GetIdentifiers().Add("VM", "WGS84");
  auto const e = Raised([&] { system.IsFullyDefined(nullptr); });
  EXPECT_EQ(e.GetErrorCode(), 25);
  EXPECT_EQ(e.GetLocation(), CString("CGeodeticCoordSysData::IsFullyDefined"));
  EXPECT_EQ(e.GetDetails(), CString("Envelope"));
  CEnvelope envelope;
  envelope.GetIdentifiers().Add("VM", "WORLD");
  system.SetEnvelope(envelope);
  EXPECT_EQ(Raised([&] { system.IsFullyDefined(nullptr); }).GetDetails(), CString("PointStyle"));

  CProjectedCoordSys projected;
  projected.GetIdentifiers().Add("VM", "UTM32");
  projected.SetEnvelope(envelope);
  CProjectedPoint style(3);
  style.GetIdentifiers().Add("VM", "EN");
  projected.SetPointStyle(style);
  auto const base = Raised([&] { projected.IsFullyDefined(nullptr); });
  EXPECT_EQ(base.GetDetails(), CString("GeodeticBase"));
  EXPECT_EQ(base.GetLocation(), CString("CProjectedCoordSysData::IsFullyDefined"));
}

TEST(CoordSysFactory, KindsAndUnsupportedKinds)
{
  for (auto type : {kGeocentricCoordSys, kGeodeticCoordSys, kProjectedCoordSys}) {
    std::unique_ptr<CCoordSys> system(CCoordSysFactory::CreateCoordSys(type));
    EXPECT_EQ(system->GetType(), type);
  }
  std::unique_ptr<CCoordSys> projected(CCoordSysFactory::CreateCoordSys(kProjectedCoordSys));
  EXPECT_EQ(projected->GetObjectType(), kObjectProjectedCoordSys);
  EXPECT_EQ(projected->GetGroupID(), 1300);
  ExpectFailures({
    {"chained", [] { CCoordSysFactory::CreateCoordSys(0); }, 52, "CCoordSysFactory::CreateCoordSys",
     "CS::CChainedCoordSys"},
    {"fitted", [] { CCoordSysFactory::CreateCoordSys(1); }, 52, "CCoordSysFactory::CreateCoordSys",
     "CS::CFittedCoordSys"},
    {"mosaicked", [] { CCoordSysFactory::CreateCoordSys(4); }, 52, "CCoordSysFactory::CreateCoordSys",
     "CS::CMosaickedCoordSys"},
    {"six", [] { CCoordSysFactory::CreateCoordSys(6); }, 50, "CCoordSysFactory::CreateCoordSys", ""},
  });
}

TEST(ProjectedCoordSys, DefaultProjectionAndOwnership)
{
  CProjectedCoordSys system;
  EXPECT_EQ(system.GetProjection().GetType(), PJ::CProjection::kTransverseMercator);
  CGeodeticCoordSys base;
  base.SetHorizontalDatum(Wgs84Datum());
  system.SetGeodeticCoordSys(base);
  // The projection works on the inner system's datum.
  EXPECT_EQ(system.GetProjection().GetHorizontalDatum(), system.GetGeodeticCoordSys().GetHorizontalDatumPointer());
  PJ::CMercator mercator;
  system.SetProjection(mercator);
  EXPECT_EQ(system.GetProjection().GetType(), PJ::CProjection::kMercator);
  EXPECT_NE(&system.GetProjection(), static_cast<PJ::CProjection const *>(&mercator));
  // A copy has a projection of its own.
  CProjectedCoordSys copy(system);
  EXPECT_NE(&copy.GetProjection(), &system.GetProjection());
  EXPECT_EQ(copy.GetProjection().GetType(), PJ::CProjection::kMercator);
  EXPECT_TRUE(copy.IsNearlyEqual(system));

  CGeodeticPoint out(3);
  EXPECT_EQ(Raised([&] { system.ToGeodeticBase(CGeodeticPoint(0, 0, 0), out); }).GetErrorCode(), 45);
  CGeodeticPoint notProjected(3);
  auto const e = Raised([&] { system.FromGeodeticBase(CGeodeticPoint(0, 0, 0), notProjected); });
  EXPECT_EQ(e.GetErrorCode(), 46);
  EXPECT_EQ(e.GetLocation(), CString("CProjectedCoordSys::FromGeodeticBase"));
}
