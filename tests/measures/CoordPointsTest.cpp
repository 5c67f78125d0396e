#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/CoordPoints.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include <memory>

using namespace VelmoraTest;
using namespace Velmora;
using namespace Velmora::ML;
using EX::CVelmoraException;

namespace {

CLinearUnit Foot()
{
  CLinearUnit foot(CString("Foot"), CString("ft"), 1.0 / 0.3048);
  return foot;
}
} // namespace

TEST(CoordPoints, DimensionsAndInternals)
{
  CGeodeticPoint p(2);
  double a = 0, b = 0, c = 0;
  CVelmoraException const e = Raised([&] { p.SetInternals(1.0, 2.0, 3.0); });
  EXPECT_EQ(e.GetErrorCode(), 47);
  EXPECT_EQ(e.GetLocation(), CString("CGeodeticPointData::SetInternals"));
  p.GetInternals(a, b); // the first two were set before the failure
  EXPECT_EQ(a, 1.0);
  EXPECT_EQ(b, 2.0);
  EXPECT_EQ(Raised([&] { p.GetInternals(a, b, c); }).GetLocation(), CString("CGeodeticPointData::GetInternals"));
  EXPECT_EQ(Raised([&] { p.SetInUnits(1, 2, 3); }).GetLocation(), CString("CGeodeticPointData::SetInUnits"));
  EXPECT_EQ(Raised([&] { p.GetInUnits(a, b, c); }).GetLocation(), CString("CGeodeticPointData::GetInUnits"));

  CProjectedPoint q(500000.0, 4649776.22, 12.0);
  q.SetInternals(1.0, 2.0); // the two-value form zeroes the height
  q.GetInternals(a, b, c);
  EXPECT_EQ(c, 0.0);
  CVelmoraException const bad = Raised([&] { q.SetDimensions(4); });
  EXPECT_EQ(bad.GetErrorCode(), 15);
  EXPECT_EQ(bad.GetLocation(), CString("CCoordPointData::SetDimensions"));
  EXPECT_EQ(q.GetDimensions(), 3);
  EXPECT_EQ(Raised([] { CCartesianPoint(2).SetInternals(1, 2, 3); }).GetLocation(),
            CString("CCartesianPointData::SetInternals"));

  // In-units access speaks the values' own units and reduces angles.
  CGeodeticPoint g(3);
  g.GetHgt().SetUnits(Foot());
  g.SetInUnits(190.0, 45.0, 100.0);
  g.GetInternals(a, b, c);
  EXPECT_EQ(a, -170.0);
  EXPECT_NEAR(c, 30.48, 1e-12);
  g.GetInUnits(a, b, c);
  EXPECT_NEAR(c, 100.0, 1e-12);
  EXPECT_EQ(g.GetLon().GetLabel(), CString("Longitude"));
  EXPECT_EQ(CProjectedPoint().GetNorth().GetLabel(), CString("Northing"));
}

TEST(CoordPoints, CopyLocationAndFormatting)
{
  CGeodeticPoint plain(10.0, 20.0, 30.0);
  CGeodeticPoint georef(CGeodeticPoint::kGeoref, nullptr);
  CGeodeticPoint target(3);
  CVelmoraException const e = Raised([&] { target.CopyLocation(georef); });
  EXPECT_EQ(e.GetErrorCode(), 14);
  EXPECT_EQ(e.GetLocation(), CString("CGeodeticPointData::CopyLocation"));
  EXPECT_EQ(e.GetDetails(), CString("String format mismatch"));
  double a = 0, b = 0, c = 0;
  target.GetInternals(a, b, c);
  EXPECT_EQ(a, 0.0); // nothing changed

  target.GetHgt().SetUnits(Foot());
  target.CopyLocation(plain);
  target.GetInternals(a, b, c);
  EXPECT_EQ(a, 10.0);
  EXPECT_EQ(c, 30.0);
  EXPECT_EQ(target.GetHgt().GetUnits().GetAbbreviation(), CString("ft")); // formatting kept

  CGeodeticPoint flat(2);
  EXPECT_EQ(Raised([&] { flat.CopyLocation(plain); }).GetErrorCode(), 47);

  // Formatting: units come over, numbers stay.
  CProjectedPoint styled(1.0, 2.0, 3.0);
  styled.GetEast().SetUnits(Foot());
  CProjectedPoint located(100.0, 200.0, 300.0);
  located.CopyFormatting(styled);
  located.GetInternals(a, b, c);
  EXPECT_EQ(a, 100.0);
  EXPECT_EQ(located.GetEast().GetUnits().GetAbbreviation(), CString("ft"));
  EXPECT_NEAR(located.GetEast().GetValue(), 328.083989501312, 1e-9);
  CProjectedPoint twoD(5.0, 6.0);
  EXPECT_EQ(Raised([&] { twoD.CopyFormatting(styled); }).GetLocation(),
            CString("CProjectedPointData::CopyFormatting"));
}

TEST(CoordPoints, ComparisonTexts)
{
  CGeodeticPoint a(10.0, 20.0, 30.0), b(10.0, 20.0, 30.0);
  EXPECT_TRUE(a.IsNearlyEqual(b));
  b.SetInternals(10.0, 20.5, 30.0);
  CString why;
  EXPECT_FALSE(a.IsNearlyEqual(b, why));
  EXPECT_EQ(why, CString(": Lat coords do not match : values are not equal : 20 != 20.5"));

  CCartesianPoint x(1.0, 2.0, 3.0);
  why.clear();
  EXPECT_FALSE(static_cast<CCoordPoint const &>(a).IsNearlyEqual(x, why));
  EXPECT_EQ(why, CString(": types do not match"));
  CGeodeticPoint flat(10.0, 20.0);
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(flat, why));
  EXPECT_EQ(why, CString(": dimensions do not match"));
  // A 2-dimensional comparison ignores the third value.
  CGeodeticPoint flat2(10.0, 20.0);
  flat2.GetHgt().SetInternal(99.0);
  EXPECT_TRUE(flat.IsNearlyEqual(flat2));

  CProjectedPoint p(1.0, 2.0, 3.0), m(CProjectedPoint::kMGRS, nullptr);
  why.clear();
  EXPECT_FALSE(p.IsNearlyEqual(m, why));
  EXPECT_EQ(why, CString(": string formats do not match"));
  CProjectedPoint p2(1.0, 2.0, 3.5);
  why.clear();
  EXPECT_FALSE(p.IsNearlyEqual(p2, why));
  EXPECT_EQ(why, CString(": Hgt coords do not match : values are not equal : 3 != 3.5"));
  CCartesianPoint y(1.0, 2.5, 3.0);
  why.clear();
  EXPECT_FALSE(x.IsNearlyEqual(y, why));
  EXPECT_EQ(why, CString(": Y coords do not match : values are not equal : 2 != 2.5"));

  // operator== of the abstract handle: name level and dimensions only.
  CCoordPoint const & ra = a;
  CGeodeticPoint far(50.0, 60.0, 70.0);
  EXPECT_TRUE(ra == far);
  EXPECT_FALSE(ra == flat);
}

TEST(CoordPoints, AbstractAssignmentTakesFrameAndDimensionsOnly)
{
  CGeodeticPoint a(1.0, 2.0, 3.0);
  a.SetName("styled");
  CGeodeticPoint b(2);
  b.SetInternals(7.0, 8.0);
  CCoordPoint & rb = b;
  rb = static_cast<CCoordPoint const &>(a);
  EXPECT_EQ(b.GetName(), CString("styled"));
  EXPECT_EQ(b.GetDimensions(), 3);
  EXPECT_EQ(b.GetLon().GetInternal(), 7.0);
  b = a; // the typed assignment takes everything
  EXPECT_EQ(b.GetLon().GetInternal(), 1.0);
}

TEST(CoordPoints, CompletenessNamesTheAxis)
{
  CProjectedPoint p(3);
  p.GetIdentifiers().Add("VM", "PT");
  CVelmoraException const e = Raised([&] { p.IsFullyDefined(nullptr); });
  EXPECT_EQ(e.GetErrorCode(), 25);
  EXPECT_EQ(e.GetLocation(), CString("CProjectedPointData::IsFullyDefined"));
  EXPECT_EQ(e.GetDetails(), CString("LinearUnits(East)"));
  p.GetEast().GetUnits().GetIdentifiers().Add("VM", "METRE");
  p.GetNorth().GetUnits().GetIdentifiers().Add("VM", "METRE");
  EXPECT_EQ(Raised([&] { p.IsFullyDefined(nullptr); }).GetDetails(), CString("LinearUnits(Height)"));
  p.SetDimensions(2); // the height is not asked of a flat point
  EXPECT_TRUE(p.IsFullyDefined(nullptr));

  CGeodeticPoint g(3);
  g.GetIdentifiers().Add("VM", "G");
  EXPECT_EQ(Raised([&] { g.IsFullyDefined(nullptr); }).GetDetails(), CString("AngularUnits(Longitude)"));
  CCartesianPoint c(3);
  EXPECT_EQ(Raised([&] { c.IsFullyDefined(nullptr); }).GetErrorCode(), 22); // base check first
}

TEST(CoordPoints, TextFormats)
{
  CGeodeticPoint g(3);
  EXPECT_EQ(Raised([&] { g.GetLocationString(); }).GetLocation(), CString("CGeodeticPointData::GetLocationString"));
  EXPECT_EQ(Raised([&] { g.SetStringFormat(CGeodeticPoint::kNone); }).GetErrorCode(), 0);
  EXPECT_EQ(Raised([&] { g.SetLocationString(static_cast<unsigned short const *>(nullptr)); }).GetErrorCode(), 55);

  CProjectedPoint p(3);
  CVelmoraException const e = Raised([&] { p.GetLocationString(); });
  EXPECT_EQ(e.GetErrorCode(), 0);
  EXPECT_EQ(e.GetLocation(), CString("CProjectedPointData::GetLocationString"));
  EXPECT_EQ(Raised([&] { p.SetLocationString(CString("x")); }).GetLocation(),
            CString("CProjectedPointData::SetLocationString"));
  p.SetStringFormat(CProjectedPoint::kUSNG);
  p.SetLocationString(CString("18S UJ 23487 06483"));
  EXPECT_EQ(p.GetLocationString(), CString("18S UJ 23487 06483"));

  CProjectedPointDataDB stored;
  TWLVariant mgrs(CString("MGRS")), text(CString("33UXP0500044000"));
  stored.SetValue("stringformat", mgrs);
  stored.SetValue("locationstring", text);
  EXPECT_EQ(stored.GetStringFormat(), 1);
  EXPECT_EQ(stored.GetLocationString(), CString("33UXP0500044000"));
  TWLVariant other(CString("Other"));
  stored.SetValue("stringformat", other);
  EXPECT_EQ(stored.GetStringFormat(), 0);
}

TEST(CoordPointFactory, CreatesByTypeAndByExample)
{
  std::unique_ptr<CCoordPoint> c(CCoordPointFactory::CreatePoint(kCartesianPoint, 2));
  EXPECT_EQ(c->GetType(), kCartesianPoint);
  EXPECT_EQ(c->GetDimensions(), 2);
  EXPECT_EQ(c->GetObjectType(), kObjectCartesianPoint);
  CVelmoraException const e = Raised([] { CCoordPointFactory::CreatePoint(static_cast<ECoordPointType>(5), 3); });
  EXPECT_EQ(e.GetErrorCode(), 50);
  EXPECT_EQ(e.GetLocation(), CString("CCoordPointFactory::CreatePoint"));

  CGeodeticPoint source(5.0, 6.0, 7.0);
  source.GetHgt().SetUnits(Foot());
  std::unique_ptr<CCoordPoint> copy(CCoordPointFactory::CreatePoint(source, 2));
  ASSERT_EQ(copy->GetType(), kGeodeticPoint);
  EXPECT_EQ(copy->GetDimensions(), 2);
  auto const & g = static_cast<CGeodeticPoint const &>(*copy);
  EXPECT_EQ(g.GetLat().GetInternal(), 6.0);
  EXPECT_EQ(g.GetHgt().GetUnits().GetAbbreviation(), CString("ft"));
  EXPECT_EQ(source.GetDimensions(), 3);
}
