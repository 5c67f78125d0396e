#include <velmora/measures/Units.h>

#include <gtest/gtest.h>

using namespace Velmora;
using ML::CAngularUnit;
using ML::CLinearUnit;

TEST(Units, ConvertToAndFromBase)
{
  CLinearUnit const foot(CString("International foot"), CString("ft"), 1.0 / 0.3048);
  EXPECT_NEAR(foot.ToBaseUnits(1000.0), 304.8, 1e-12);
  EXPECT_NEAR(foot.FromBaseUnits(0.3048), 1.0, 1e-15);

  // A radian carries the degree factor.
  CAngularUnit const radian(CString("Radian"), CString("rad"), 0.017453292519943295);
  EXPECT_NEAR(radian.ToBaseUnits(3.141592653589793), 180.0, 1e-12);
  CAngularUnit const second(CString("Arc second"), CString("\""), 3600.0);
  EXPECT_EQ(second.FromBaseUnits(1.0), 3600.0);
  EXPECT_EQ(second.GetUnitsPerDegree(), 3600.0);

  std::basic_string<unsigned short> const name = {'m'};
  CLinearUnit const wide(name.c_str(), name.c_str(), 1.0);
  EXPECT_EQ(wide.GetName(), CString("m"));
}

TEST(Units, NearlyEqualIgnoresNamesWithinTolerance)
{
  CLinearUnit a(CString("Metre"), CString("m"), 1.0);
  CLinearUnit b(CString("Meter"), CString("mtr"), 1.0 + 5e-7);
  CString why;
  EXPECT_TRUE(a.IsNearlyEqual(b, why));
  b.SetUnitsPerMeter(1.0 + 2e-6);
  EXPECT_FALSE(a.IsNearlyEqual(b, why));
  EXPECT_TRUE(why.isEmpty()); // linear units say nothing
  EXPECT_FALSE(a == b);

  CAngularUnit c(CString("Degree"), CString("deg"), 1.0);
  CAngularUnit d(CString("Degree (deg)"), CString("d"), 1.0 + 5e-7);
  EXPECT_TRUE(c.IsNearlyEqual(d));
  d.SetUnitsPerDegree(1.0 + 2e-6);
  CString angleWhy;
  EXPECT_FALSE(c.IsNearlyEqual(d, angleWhy));
  EXPECT_EQ(angleWhy, CString(": units per degree do not match"));
}

TEST(Units, ExactEqualityCoversEveryField)
{
  CLinearUnit a(CString("Metre"), CString("m"), 1.0);
  CLinearUnit b(a);
  EXPECT_TRUE(a == b);
  b.SetRemarks("SI");
  EXPECT_TRUE(a != b);
  b = a;
  b.GetIdentifiers().Add("VM", "METRE");
  EXPECT_FALSE(a == b);
  b = a;
  b.SetUnitsPerMeter(1.0 + 1e-15);
  EXPECT_FALSE(a == b);
}
