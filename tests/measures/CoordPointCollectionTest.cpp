#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/CoordPointCollection.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include <functional>
#include <memory>

using namespace VelmoraTest;
using namespace Velmora;
using namespace Velmora::ML;
using EX::CVelmoraException;


TEST(CoordPointCollection, NumbersInInsertionOrder)
{
  CGeodeticPoint style(3);
  style.GetHgt().SetUnits(CLinearUnit(CString("Foot"), CString("ft"), 1.0 / 0.3048));
  CCoordPointCollection c(style);
  EXPECT_TRUE(c.IsNormalPoint());
  c.AddInternals(1.0, 2.0, 3.0);
  c.AddInUnits(4.0, 5.0, 100.0); // height in feet
  CGeodeticPoint named(7.0, 8.0, 9.0);
  named.SetName("P3");
  c.AddPoint(named);
  ASSERT_EQ(c.Count(), 3);

  double x, y, z;
  c.GetInternals(1, x, y, z);
  EXPECT_NEAR(z, 30.48, 1e-12);
  EXPECT_EQ(c.IndexWithName(Wide("P3").c_str()), 2);
  EXPECT_EQ(c.IndexWithName(Wide("none").c_str()), -1);
  EXPECT_TRUE(c.Exists(Wide("").c_str())); // unnamed records have the empty name

  std::unique_ptr<CCoordPoint> p(c.GetPoint(Wide("P3").c_str()));
  ASSERT_EQ(p->GetType(), kGeodeticPoint);
  EXPECT_EQ(p->GetName(), CString("P3"));
  EXPECT_EQ(static_cast<CGeodeticPoint &>(*p).GetLat().GetInternal(), 8.0);
  EXPECT_EQ(static_cast<CGeodeticPoint &>(*p).GetHgt().GetUnits().GetAbbreviation(), CString("ft"));

  c.Remove(0); // closes the gap
  EXPECT_EQ(c.IndexWithName(Wide("P3").c_str()), 1);
  c.GetInternals(0, x, y, z);
  EXPECT_EQ(x, 4.0);

  c.SetInternals(0, -1.0, -2.0, -3.0);
  CCoordPointCollection copy(c);
  EXPECT_TRUE(copy == c);
  copy.SetInternals(0, 0.0, 0.0, 0.0);
  EXPECT_TRUE(copy != c);
  copy = c;
  EXPECT_TRUE(copy == c);
  c.Clear();
  EXPECT_EQ(c.Count(), 0);

  // A flat point stores a zero height.
  CCoordPointCollection flat(CGeodeticPoint(2));
  flat.AddPoint(CGeodeticPoint(1.0, 2.0));
  flat.GetInternals(0, x, y, z);
  EXPECT_EQ(z, 0.0);
}

TEST(CoordPointCollection, TextStylesKeepText)
{
  CProjectedPoint style(CProjectedPoint::kMGRS, nullptr);
  CCoordPointCollection c(style);
  EXPECT_FALSE(c.IsNormalPoint());
  CProjectedPoint located(CProjectedPoint::kMGRS, Wide("33UXP0500044000").c_str());
  c.AddPoint(located);
  EXPECT_EQ(c.GetLocationString(0), CString("33UXP0500044000"));
  c.SetLocationString(0, Wide("4QFJ1234567890").c_str());
  std::unique_ptr<CCoordPoint> p(c.GetPoint(0));
  EXPECT_EQ(static_cast<CProjectedPoint &>(*p).GetLocationString(), CString("4QFJ1234567890"));

  // Changing to a numeric style keeps the records.
  c.SetPointStyle(CProjectedPoint(3));
  EXPECT_TRUE(c.IsNormalPoint());
  EXPECT_EQ(c.Count(), 1);
}

TEST(CoordPointCollection, EveryFailure)
{
  CCoordPointCollection numbers(CCartesianPoint(3));
  numbers.AddInternals(1, 2, 3);
  CCoordPointCollection text(CProjectedPoint(CProjectedPoint::kUSNG, nullptr));
  text.AddInternals(0, 0, 0);
  double x, y, z;
  long const count = numbers.Count();
  CCartesianPoint point(3);
  ExpectFailures({
    {"GetInternals -1", [&] { numbers.GetInternals(-1, x, y, z); }, 48, "CCoordPointCollection::GetInternals", ""},
    {"GetInternals Count", [&] { numbers.GetInternals(count, x, y, z); }, 48, "CCoordPointCollection::GetInternals", ""},
    {"GetInternals text", [&] { text.GetInternals(0, x, y, z); }, 14, "CCoordPointCollection::SetInternals",
     "Point uses string format"},
    {"SetInternals -1", [&] { numbers.SetInternals(-1, 0, 0, 0); }, 48, "CCoordPointCollection::SetInternals", ""},
    {"SetInternals text", [&] { text.SetInternals(0, 0, 0, 0); }, 14, "CCoordPointCollection::SetInternals",
     "Point uses string format"},
    {"GetLocationString Count", [&] { numbers.GetLocationString(count); }, 48,
     "CCoordPointCollection::GetLocationString", ""},
    {"GetLocationString numbers", [&] { numbers.GetLocationString(0); }, 14,
     "CCoordPointCollection::GetLocationString", "Point does not use string format"},
    {"SetLocationString -1", [&] { text.SetLocationString(-1, nullptr); }, 48,
     "CCoordPointCollection::SetLocationString", ""},
    {"SetLocationString numbers", [&] { numbers.SetLocationString(0, Wide("x").c_str()); }, 14,
     "CCoordPointCollection::SetLocationString", "Point does not use string format"},
    {"GetPoint Count", [&] { delete numbers.GetPoint(count); }, 48, "CCoordPointCollection::GetPoint", ""},
    {"SetPoint -1", [&] { numbers.SetPoint(-1, point); }, 48, "CCoordPointCollection::SetPoint", ""},
    {"SetPoint unknown name", [&] { numbers.SetPoint(Wide("none").c_str(), point); }, 48,
     "CCoordPointCollection::SetPoint", ""},
    {"Remove Count", [&] { numbers.Remove(count); }, 48, "CCoordPointCollection::Remove", ""},
    {"IndexWithName null", [&] { numbers.IndexWithName(nullptr); }, 15, "CCoordPointCollection::IndexWithName", ""},
  });
  CCoordPointCollection styleless;
  styleless.AddInternals(1, 2, 3);
  ExpectFailures({{"GetPoint without style", [&] { delete styleless.GetPoint(0L); }, 52,
               "CCoordPointCollection::GetPoint", "CoordPoint(Unknown)"}});
}
