#include <velmora/measures/Values.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include <vector>

using namespace VelmoraTest;
using namespace Velmora;
using ML::CAngularUnit;
using ML::CAngularValue;
using ML::CFormattedValue;
using ML::CFormattedValueEvent;
using ML::CLinearUnit;
using ML::CLinearValue;

namespace {
struct Recorder : CFormattedValueEvent
{
  std::vector<CFormattedValue const *> seen;
  void OnChange(CFormattedValue const * changed) override { seen.push_back(changed); }
};

} // namespace

TEST(AngularValue, RangeReductionUsesAFixedInterval)
{
  CAngularValue v;
  struct Row
  {
    double in, stored;
  };
  for (Row const r : {Row{190.0, -170.0}, Row{180.0, 180.0}, Row{-180.0, -180.0}, Row{540.0, 180.0},
                      Row{-540.0, 180.0}, Row{-190.0, 170.0}, Row{720.5, 0.5}, Row{-0.0, -0.0}}) {
    v.SetValue(r.in);
    EXPECT_EQ(v.GetInternal(), r.stored) << r.in;
  }
  v.SetInternal(190.0); // no range check
  EXPECT_EQ(v.GetInternal(), 190.0);

  // A wider range only decides what needs reducing; the result interval stays.
  CAngularValue::SetValidRange(360.0);
  v.SetValue(300.0);
  EXPECT_EQ(v.GetInternal(), 300.0);
  v.SetValue(400.0);
  EXPECT_EQ(v.GetInternal(), 40.0);
  CAngularValue::SetRangeCenter(180.0); // keeps -540..540
  v.SetValue(530.0);
  EXPECT_EQ(v.GetInternal(), 530.0);
  v.SetValue(-550.0);
  EXPECT_EQ(v.GetInternal(), 170.0);
  CAngularValue::SetValidRange(180.0);
  CAngularValue::SetRangeCenter(0.0);

  v.SetRadians(3.0 * 3.141592653589793);
  EXPECT_NEAR(v.GetInternal(), 180.0, 1e-12);
  EXPECT_NEAR(v.GetRadians(), 3.141592653589793, 1e-12);
}

TEST(AngularValue, UnitsChangeTheShownNumberOnly)
{
  CAngularValue v;
  v.SetUnits(CAngularUnit(CString("Arc second"), CString("sec"), 3600.0));
  v.SetValue(3600.0);
  EXPECT_EQ(v.GetInternal(), 1.0);
  EXPECT_EQ(v.GetValue(), 3600.0);

  Recorder r;
  v.SetEventHandler(&r);
  v.SetToDefault(-200.0);
  EXPECT_EQ(v.GetUnits().GetUnitsPerDegree(), 1.0);
  EXPECT_EQ(v.GetUnits().GetName(), CString("Degrees (deg)"));
  EXPECT_EQ(v.GetUnits().GetAbbreviation(), CString("deg"));
  EXPECT_EQ(v.GetUnits().GetIdentifiers().GetItem("VM"), CString("DEGREES"));
  EXPECT_EQ(v.GetInternal(), 160.0);
  EXPECT_EQ(r.seen.size(), 1u);
  v.SetToDefault(1.0); // the identifier exists now: replaced, not added twice
  EXPECT_EQ(v.GetUnits().GetIdentifiers().Count(), 1);
  EXPECT_EQ(v.GetType(), 1);
}

TEST(LinearValue, UnitsAndText)
{
  CLinearValue v;
  v.SetInternal(1000.0);
  v.SetUnits(CLinearUnit(CString("Foot"), CString("ft"), 3.28));
  EXPECT_DOUBLE_EQ(v.GetValue(), 3280.0);
  EXPECT_EQ(v.GetInternal(), 1000.0);
  v.SetValue(328.0);
  EXPECT_DOUBLE_EQ(v.GetInternal(), 100.0);
  EXPECT_EQ(v.GetType(), 0);

  v.SetUnits(CLinearUnit());
  v.SetInternal(1234.5678901234567);
  EXPECT_EQ(v.ToString(), CString("1234.56789012346")); // 15 significant digits
  EXPECT_TRUE(v.FromString(Wide(" -12.5e1 m").c_str()));
  EXPECT_EQ(v.GetInternal(), -125.0);
  EXPECT_TRUE(v.FromString(Wide("abc").c_str())); // unreadable text reads as 0
  EXPECT_EQ(v.GetInternal(), 0.0);
  EXPECT_FALSE(v.FromString(nullptr));
  EXPECT_FALSE(v.FromString(Wide("").c_str()));

  // MGRS mode keeps the text and leaves the number alone.
  Recorder r;
  v.SetEventHandler(&r);
  v.SetInternal(7.0);
  v.SetFormat(CString("MGRS"));
  EXPECT_TRUE(v.FromString(Wide("32UMU1234567890").c_str()));
  EXPECT_EQ(v.GetInternal(), 7.0);
  EXPECT_EQ(v.ToString(), CString("32UMU1234567890"));
  EXPECT_EQ(r.seen.size(), 2u);
}

TEST(Values, EventsAndCopies)
{
  Recorder r;
  CLinearValue a;
  a.SetEventHandler(&r);
  a.SetInternalQuiet(1.0);
  EXPECT_TRUE(r.seen.empty());
  a.SetInternal(2.0);
  ASSERT_EQ(r.seen.size(), 1u);
  EXPECT_EQ(r.seen[0], &a);

  CLinearValue source;
  source.SetLabel(CString("Easting"));
  source.SetInternal(5.0);
  a.AssignQuiet(source); // no event, listener kept
  EXPECT_EQ(r.seen.size(), 1u);
  EXPECT_EQ(a.GetEventHandler(), &r);
  EXPECT_EQ(a.GetLabel(), CString("Easting"));
  a = source; // assignment tells the listener
  EXPECT_EQ(r.seen.size(), 2u);

  CLinearValue const copy(a); // a copy starts without a listener
  EXPECT_EQ(copy.GetEventHandler(), nullptr);
  EXPECT_EQ(copy.GetInternal(), 5.0);

  TWLVariant label(CString("Northing"));
  a.SetValue(CString("label"), label);
  EXPECT_EQ(a.GetLabel(), CString("Northing"));
}

TEST(Values, ComparisonTolerancesAndTexts)
{
  CLinearValue a, b;
  a.SetInternal(10.0);
  b.SetInternal(10.0 + 5e-8);
  EXPECT_TRUE(a == b);
  b.SetInternal(10.0 + 2e-7);
  EXPECT_TRUE(a != b);
  EXPECT_TRUE(a.IsNearlyEqual(b, true));

  b.SetInternal(10.5);
  CString why;
  EXPECT_FALSE(a.IsNearlyEqual(b, why, true));
  EXPECT_EQ(why, CString(": values are not equal : 10 != 10.5"));
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(b, why, false));
  EXPECT_EQ(why, CString(": ignoring units, but inner values are still not equal : 10 != 10.5"));

  // Same quantity, other units: equal only when units are ignored.
  b.SetInternal(10.0);
  b.SetUnits(CLinearUnit(CString("Foot"), CString("ft"), 3.28));
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(b, why, true));
  EXPECT_EQ(why, CString(": Linear Units do not match "));
  EXPECT_TRUE(a.IsNearlyEqual(b, false));

  CAngularValue c, d;
  d.SetUnits(CAngularUnit(CString("Grad"), CString("gr"), 400.0 / 360.0));
  why.clear();
  EXPECT_FALSE(c.IsNearlyEqual(d, why, true));
  EXPECT_EQ(why, CString(":angular units do not match : units per degree do not match"));
  c.SetInternal(0.1);
  d.SetInternal(0.1 + 1e-12);
  EXPECT_TRUE(c.IsNearlyEqual(d, false));
  EXPECT_TRUE(c == d);
}
