// Text forms reached through the public value and point classes.
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/CoordPoints.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

using namespace VelmoraTest;
using namespace Velmora;
using namespace Velmora::ML;


TEST(AngularValueText, EveryNamedFormatReadsBackThroughTheValue)
{
  char const * const formats[] = {"DDdMM", "DDdMMdSS", "DD_MM", "DD_MM_SS", "DDMM", "DDMMSS", "Packed DMS", "DD"};
  CAngularValue v;
  for (char const * format : formats) {
    v.SetFormat(CString(format));
    for (double angle : {-179.999999, -45.5125, -0.25, 0.0, 12.5, 59.99999999, 179.9}) {
      v.SetValue(angle);
      CString const text = v.ToString();
      CAngularValue back;
      back.SetFormat(CString(format));
      ASSERT_TRUE(back.FromString(text)) << format << " " << static_cast<char const *>(text);
      // Six decimals of the finest field: a minute field keeps 1e-6/60 degree.
      EXPECT_NEAR(back.GetInternal(), v.GetInternal(), 2e-8) << format << " " << static_cast<char const *>(text);
    }
  }
}

TEST(AngularValueText, UnitsAndRangeApplyToText)
{
  // A value shown in arc seconds writes and reads seconds.
  CAngularValue seconds;
  seconds.SetUnits(CAngularUnit(CString("Arc second"), CString("sec"), 3600.0));
  seconds.SetFormat(CString("DD"));
  seconds.SetInternal(0.5);
  EXPECT_EQ(seconds.ToString(), CString("1800"));
  ASSERT_TRUE(seconds.FromString(Wide("900").c_str()));
  EXPECT_EQ(seconds.GetInternal(), 0.25);

  // Read text passes through the range reduction, and fires the event.
  struct Count : CFormattedValueEvent
  {
    int n = 0;
    void OnChange(CFormattedValue const *) override { ++n; }
  } count;
  CAngularValue v;
  v.SetEventHandler(&count);
  v.SetFormat(CString("DD_MM_SS"));
  ASSERT_TRUE(v.FromString(Wide("190_30_00").c_str()));
  EXPECT_DOUBLE_EQ(v.GetInternal(), -169.5);
  EXPECT_EQ(count.n, 1);
  EXPECT_FALSE(v.FromString(Wide("").c_str()));
  EXPECT_FALSE(v.FromString(nullptr));
  EXPECT_EQ(count.n, 1);

  // Hemisphere letters give the sign.
  v.SetFormat(CString("DD"));
  ASSERT_TRUE(v.FromString(Wide("12.5W").c_str()));
  EXPECT_EQ(v.GetInternal(), -12.5);
}

TEST(AngularValueText, BadPatternsRaiseCode54)
{
  CAngularValue v;
  try {
    v.SetFormat(CString("DD MM SS.sssssssssssssssss"));
    v.ToString();
    FAIL() << "no exception";
  } catch (EX::CVelmoraException const & e) {
    EXPECT_EQ(e.GetErrorCode(), 54);
    EXPECT_EQ(e.GetDetails(), CString("Decimal precision beyond 15 digits is not supported"));
  }
  try {
    v.SetFormat(CString("DD 1 MM"));
    FAIL() << "no exception";
  } catch (EX::CVelmoraException const & e) {
    EXPECT_EQ(e.GetLocation(), CString("CAngularValue::FindReserveChars"));
  }
  EXPECT_EQ(v.GetFormat(), CString("DD 1 MM")); // stored before the scan
}

TEST(GeodeticPointText, GeorefThroughThePoint)
{
  CGeodeticPoint p(0.0, 0.0, 0.0);
  p.SetStringFormat(CGeodeticPoint::kGeoref); // from numbers: the text is filled
  CString const origin = p.GetLocationString();
  EXPECT_EQ(origin.left(2), CString("NG")); // letters of index 12 and 6
  EXPECT_EQ(origin, CString("NGAA0000000000"));

  CGeodeticPoint q(CGeodeticPoint::kGeoref, Wide("GJPJ3425017166").c_str());
  EXPECT_NEAR(q.GetLon().GetInternal(), -76.4291667, 1e-7);
  EXPECT_NEAR(q.GetLat().GetInternal(), 38.2861, 1e-7);
  EXPECT_EQ(q.GetLocationString(), CString("GJPJ3425017166"));
}
