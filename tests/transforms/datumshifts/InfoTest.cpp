// The small values of the search for shifts: defaults and equality.
#include <velmora/transforms/datumshifts/DatumShiftInfo.h>

#include <gtest/gtest.h>

#include "../../support/TestSupport.h"

using namespace Velmora;
using namespace Velmora::CT::DS;
using namespace VelmoraTest;

namespace {
void Callback(long, long, void *) {}
void OtherCallback(long, long, void *) {}
} // namespace

TEST(DatumShiftInfo, EqualityOverAllThreeFields)
{
  CDatumShiftInfo const a(Wide("VM").c_str(), Wide("1133").c_str(), true);
  EXPECT_EQ(a.GetIssuer(), Wide("VM"));
  EXPECT_EQ(a.GetCode(), Wide("1133"));
  EXPECT_TRUE(a.GetReverse());
  CDatumShiftInfo b(a);
  EXPECT_TRUE(a == b);
  b.SetReverse(false);
  EXPECT_TRUE(a != b);
  b = a;
  b.SetCode(Wide("1134").c_str());
  EXPECT_TRUE(a != b);
  b = a;
  b.SetIssuer(Wide("EPSG").c_str());
  EXPECT_TRUE(a != b);
  CDatumShiftInfo const empty;
  EXPECT_TRUE(empty.GetIssuer().empty());
  EXPECT_FALSE(empty.GetReverse());
  EXPECT_TRUE(empty == CDatumShiftInfo(nullptr, nullptr, false));
}

TEST(DatumShiftInfoEx, ComparesThePointerNotTheShift)
{
  std::unique_ptr<CDatumShift> one(CDatumShiftFactory::CreateDatumShift(CDatumShift::kMolodensky));
  std::unique_ptr<CDatumShift> two(CDatumShiftFactory::CreateDatumShift(CDatumShift::kMolodensky));
  ASSERT_TRUE(*one == *two);
  CDatumShiftInfoEx const a(one.get(), false);
  CDatumShiftInfoEx b(two.get(), false);
  EXPECT_TRUE(a != b);
  b.SetDatumShift(one.get());
  EXPECT_TRUE(a == b);
  b.SetReverse(true);
  EXPECT_TRUE(a != b);
  CDatumShiftInfoEx const empty;
  EXPECT_EQ(empty.GetDatumShift(), nullptr);
  CDatumShiftList route{a, b};
  EXPECT_EQ(route.size(), 2u);
}

TEST(DatumShiftPreferences, DefaultsAndEquality)
{
  CDatumShiftPreferences const defaults;
  EXPECT_EQ(defaults.GetOptions(), 17);
  EXPECT_EQ(defaults.GetMethod(), CDatumShift::kMolodensky);
  EXPECT_TRUE(defaults.GetIntermediateIssuer().empty());
  EXPECT_TRUE(defaults.GetAreaCode().empty());

  using Change = std::function<void(CDatumShiftPreferences &)>;
  Change const changes[] = {
    [](CDatumShiftPreferences & p) { p.SetOptions(1); },
    [](CDatumShiftPreferences & p) { p.SetIntermediateIssuer(Wide("VM").c_str()); },
    [](CDatumShiftPreferences & p) { p.SetIntermediateCode(Wide("4326").c_str()); },
    [](CDatumShiftPreferences & p) { p.SetAreaIssuer(Wide("VM").c_str()); },
    [](CDatumShiftPreferences & p) { p.SetAreaCode(Wide("9").c_str()); },
    [](CDatumShiftPreferences & p) { p.SetMethod(CDatumShift::kNadcon); },
  };
  for (Change const & change : changes) {
    CDatumShiftPreferences changed;
    change(changed);
    EXPECT_TRUE(changed != defaults);
    CDatumShiftPreferences copy(changed);
    EXPECT_TRUE(copy == changed);
  }
}

TEST(DatumShiftPreferencesEx, EqualityLeavesTheListsOut)
{
  CDatumShiftPreferencesEx const defaults;
  EXPECT_EQ(defaults.GetBitFlags(), 0u);
  EXPECT_FALSE(defaults.GetOnlyGoThruIntermediate());
  EXPECT_EQ(defaults.GetCallback(), nullptr);
  EXPECT_EQ(defaults.GetCallbackData(), nullptr);
  EXPECT_TRUE(defaults.GetArea().GetAlwaysAccept());

  CDatumShiftPreferencesEx lists;
  lists.SetExcludeList({CString("12")});
  lists.SetIncludeList({CString("13"), CString("14")});
  EXPECT_EQ(lists.GetIncludeList().size(), 2u);
  EXPECT_TRUE(lists == defaults);

  int data = 0;
  using Change = std::function<void(CDatumShiftPreferencesEx &)>;
  Change const changes[] = {
    [](CDatumShiftPreferencesEx & p) { p.SetBitFlags(1u << CDatumShift::kNadcon); },
    [](CDatumShiftPreferencesEx & p) { p.SetOnlyGoThruIntermediate(true); },
    [](CDatumShiftPreferencesEx & p) { p.SetIntermediateIssuer(Wide("VM").c_str()); },
    [](CDatumShiftPreferencesEx & p) { p.SetIntermediateCode(Wide("6326").c_str()); },
    [](CDatumShiftPreferencesEx & p) { p.SetCallback(&Callback, nullptr); },
    [&](CDatumShiftPreferencesEx & p) { p.SetCallback(nullptr, &data); },
    [](CDatumShiftPreferencesEx & p) { p.SetArea(ML::CEnvelope(ML::kGeodeticPoint)); },
  };
  for (Change const & change : changes) {
    CDatumShiftPreferencesEx changed;
    change(changed);
    EXPECT_TRUE(changed != defaults);
  }
  CDatumShiftPreferencesEx a, b;
  a.SetCallback(&Callback, &data);
  b.SetCallback(&OtherCallback, &data);
  EXPECT_TRUE(a != b);
  b.SetCallback(&Callback, &data);
  EXPECT_TRUE(a == b);
  EXPECT_EQ(a.GetCallbackData(), &data);
}
