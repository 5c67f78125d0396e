// The chain: order both ways, cursor operations, ownership, copies and the
// stored read-only view.
#include <velmora/transforms/datumshifts/DatumShiftCollection.h>
#include <velmora/transforms/datumshifts/ParametricShifts.h>

#include <gtest/gtest.h>

#include "../../support/TestSupport.h"
#include "ShiftDoubles.h"

#include <memory>

using namespace Velmora;
using namespace Velmora::CT::DS;
using namespace VelmoraTest;
using Velmora::ML::CGeodeticPoint;

namespace {

// Three offsets whose sum tells nothing of their order; the log does.
struct Chain
{
  std::vector<std::string> log;
  CDatumShiftCollection shifts;
  COffsetShift * a;
  COffsetShift * b;
  COffsetShift * c;

  Chain()
  {
    a = Add(1.0, 10.0, "a");
    b = Add(2.0, 20.0, "b");
    c = Add(4.0, 40.0, "c");
  }
  COffsetShift * Add(double dLon, double dLat, char const * tag)
  {
    auto shift = std::make_unique<COffsetShift>(dLon, dLat, tag, &log);
    return static_cast<COffsetShift *>(shifts.AddBack(std::move(shift)));
  }
};

std::vector<std::string> Log(std::initializer_list<char const *> entries)
{
  return std::vector<std::string>(entries.begin(), entries.end());
}

} // namespace

TEST(DatumShiftChain, ForwardRunsFirstToLastAndBackLastToFirst)
{
  for (bool pair : {false, true}) {
    Chain chain;
    chain.b->SetReverseUsage(true);
    double lon = 0.0, lat = 0.0;
    if (pair) {
      EXPECT_TRUE(chain.shifts.ShiftForward(lon, lat));
    } else {
      CGeodeticPoint out(2);
      EXPECT_TRUE(chain.shifts.ShiftForward(CGeodeticPoint(0.0, 0.0), out));
      out.GetInternals(lon, lat);
    }
    EXPECT_EQ(chain.log, Log({"a+", "b-", "c+"})) << pair;
    EXPECT_DOUBLE_EQ(lon, 3.0);
    EXPECT_DOUBLE_EQ(lat, 30.0);

    chain.log.clear();
    if (pair) {
      EXPECT_TRUE(chain.shifts.ShiftBack(lon, lat));
    } else {
      CGeodeticPoint out(2);
      EXPECT_TRUE(chain.shifts.ShiftBack(CGeodeticPoint(lon, lat), out));
      out.GetInternals(lon, lat);
    }
    EXPECT_EQ(chain.log, Log({"c-", "b+", "a-"})) << pair;
    EXPECT_DOUBLE_EQ(lon, 0.0);
    EXPECT_DOUBLE_EQ(lat, 0.0);
  }
}

TEST(DatumShiftChain, EmptyChainCopiesThePointThrough)
{
  CDatumShiftCollection empty;
  CGeodeticPoint out(3);
  EXPECT_TRUE(empty.ShiftForward(CGeodeticPoint(7.0, 8.0, 9.0), out));
  double lon, lat, height;
  out.GetInternals(lon, lat, height);
  EXPECT_DOUBLE_EQ(lon, 7.0);
  EXPECT_DOUBLE_EQ(height, 9.0);
  double x = 1.0, y = 2.0;
  EXPECT_TRUE(empty.ShiftBack(x, y));
  EXPECT_DOUBLE_EQ(x, 1.0);
}

TEST(DatumShiftChain, HeightTravelsWhenBothEndsHaveOne)
{
  Chain chain;
  CGeodeticPoint in(0.0, 0.0, 55.0), out3(3), out2(2);
  chain.shifts.ShiftForward(in, out3);
  EXPECT_DOUBLE_EQ(out3.GetHgt().GetInternal(), 55.0);
  // A two-dimensional result takes longitude and latitude only.
  chain.shifts.ShiftForward(in, out2);
  EXPECT_EQ(out2.GetDimensions(), 2);
  EXPECT_DOUBLE_EQ(out2.GetLon().GetInternal(), 7.0);
}

// Mode 1 sets a height to 0, which shows exactly where in the walk it ran.
TEST(DatumShiftChain, HeightAdjustmentRunsRightAfterItsLocationByIndexBothWays)
{
  using CS::VR::CVerticalReference;
  CVerticalReference const from, to;
  auto const invalid = CVerticalReference::kInvalidAdjustment;
  struct Row
  {
    long location;
    bool forward;
    double height;
    std::vector<std::string> log;
  };
  // Steps of +1, +2, +4 metres; 100 metres in.
  Row const rows[] = {
    {2, true, 4.0, Log({"a+", "b+", "c+"})},     // zeroed after b, then c
    {2, false, -1.0, Log({"c-", "b-", "a-"})},   // after b, its second-to-last step
    {3, true, 0.0, Log({"a+", "b+", "c+"})},
    {1, false, 0.0, Log({"c-", "b-", "a-"})},
    {0, true, 107.0, Log({"a+", "b+", "c+"})},   // location 0 is the transform's business
    {-1, false, 93.0, Log({"c-", "b-", "a-"})},
  };
  for (Row const & row : rows) {
    Chain chain;
    chain.a->heightStep = 1.0;
    chain.b->heightStep = 2.0;
    chain.c->heightStep = 4.0;
    CGeodeticPoint out(3);
    CGeodeticPoint const in(0.0, 0.0, 100.0);
    EXPECT_TRUE(row.forward ? chain.shifts.ShiftForward(in, out, &from, &to, invalid, row.location)
                            : chain.shifts.ShiftBack(in, out, &from, &to, invalid, row.location));
    EXPECT_EQ(out.GetHgt().GetInternal(), row.height) << row.location << (row.forward ? " forward" : " back");
    EXPECT_EQ(chain.log, row.log);
  }
}

TEST(DatumShiftChain, FailureOfAShiftPassesThroughAndStopsTheChain)
{
  Chain chain;
  chain.b->SetEnvelope(GeodeticEnvelope(100.0, 100.0, 110.0, 110.0));
  CGeodeticPoint const in(0.0, 0.0);
  CGeodeticPoint out(2);
  auto const e = Raised([&] { chain.shifts.ShiftForward(in, out); });
  EXPECT_EQ(e.GetErrorCode(), 43);
  EXPECT_EQ(e.GetLocation(), CString("CDatumShift::ShiftForward"));
  EXPECT_EQ(chain.log, Log({"a+"}));
  EXPECT_DOUBLE_EQ(in.GetLon().GetInternal(), 0.0);

  // Back: c runs, then b's result lies outside its envelope.
  chain.log.clear();
  double lon = 0.0, lat = 0.0;
  EXPECT_EQ(Raised([&] { chain.shifts.ShiftBack(lon, lat); }).GetErrorCode(), 44);
  EXPECT_EQ(chain.log, Log({"c-", "b-"}));
}

TEST(DatumShiftCursor, WalksBothWaysAndStopsAtTheEnds)
{
  Chain chain;
  CDatumShiftCollection const & shifts = chain.shifts;
  EXPECT_EQ(shifts.Count(), 3);
  EXPECT_EQ(shifts.IsConcrete(), 1);
  CDatumShift * item = nullptr;

  // After AddBack the cursor is on the new item, the last.
  EXPECT_FALSE(shifts.GetNext(&item));
  EXPECT_EQ(item, nullptr);
  EXPECT_TRUE(shifts.GetPrev(&item));
  EXPECT_EQ(item, chain.b);

  struct Step
  {
    char const * op;
    bool result;
    CDatumShift * expected;
  };
  Step const steps[] = {
    {"front", true, chain.a}, {"prev", false, nullptr}, {"next", true, chain.b}, {"next", true, chain.c},
    {"next", false, nullptr}, {"prev", true, chain.b},  {"back", true, chain.c}, {"prev", true, chain.b},
    {"prev", true, chain.a},  {"prev", false, nullptr}, {"next", true, chain.b},
  };
  for (Step const & step : steps) {
    std::string const op = step.op;
    bool const result = op == "front" ? shifts.GetFront(&item)
                        : op == "back" ? shifts.GetBack(&item)
                        : op == "next" ? shifts.GetNext(&item)
                                       : shifts.GetPrev(&item);
    EXPECT_EQ(result, step.result) << op;
    EXPECT_EQ(item, step.expected) << op;
  }
  CDatumShift * const inOrder[] = {chain.a, chain.b, chain.c};
  for (long i = 0; i < 3; ++i) {
    ASSERT_TRUE(shifts.GetItem(i, &item));
    EXPECT_EQ(item, inOrder[i]);
  }
}

TEST(DatumShiftCursor, EmptyCollectionGivesNothing)
{
  CDatumShiftCollection shifts;
  CDatumShift * item = reinterpret_cast<CDatumShift *>(&shifts);
  EXPECT_FALSE(shifts.GetFront(&item));
  EXPECT_EQ(item, nullptr);
  EXPECT_FALSE(shifts.GetBack(&item));
  EXPECT_FALSE(shifts.GetNext(&item));
  EXPECT_FALSE(shifts.GetPrev(&item));
  EXPECT_FALSE(shifts.RemoveFront());
  EXPECT_FALSE(shifts.RemoveBack());
}

TEST(DatumShiftCursor, AddRemoveAndBadIndices)
{
  Chain chain;
  CDatumShift * item = nullptr;
  // AddFront puts the cursor on the new first item.
  CDatumShift * front = chain.shifts.AddFront(CDatumShift::kLongitudeRotation);
  ASSERT_NE(front, nullptr);
  EXPECT_EQ(front->GetType(), CDatumShift::kLongitudeRotation);
  EXPECT_TRUE(chain.shifts.GetNext(&item));
  EXPECT_EQ(item, chain.a);

  EXPECT_TRUE(chain.shifts.RemoveFront());
  EXPECT_TRUE(chain.shifts.GetItem(0, &item));
  EXPECT_EQ(item, chain.a);
  EXPECT_TRUE(chain.shifts.RemoveBack());
  EXPECT_EQ(chain.shifts.Count(), 2);
  EXPECT_TRUE(chain.shifts.GetBack(&item));
  EXPECT_EQ(item, chain.b);

  ExpectFailures({
    {"below 0", [&] { chain.shifts.GetItem(-1, &item); }, 48, "CDatumShiftCollectionDataConcrete::GetItem", ""},
    {"at Count", [&] { chain.shifts.GetItem(2, &item); }, 48, "CDatumShiftCollectionDataConcrete::GetItem", ""},
    {"unknown type", [&] { chain.shifts.AddBack(static_cast<CDatumShift::Type>(15)); }, 50,
     "CDatumShiftFactory::CreateDatumShift", ""},
  });
  EXPECT_EQ(chain.shifts.Count(), 2);

  chain.shifts.Clear();
  EXPECT_EQ(chain.shifts.Count(), 0);
  EXPECT_FALSE(chain.shifts.GetFront(&item));
}

TEST(DatumShiftCollection, AddByObjectMakesItsTypeAndAssigns)
{
  CSevenParameter seven;
  seven.SetName(CString("ED50 to WGS 84"));
  seven.GetParameters().SetItemInternal(CString("dx"), -87.0);
  seven.SetReverseUsage(true);

  CDatumShiftCollection shifts;
  CDatumShift * item = shifts.AddBack(seven);
  ASSERT_NE(item, nullptr);
  EXPECT_NE(item, &seven);
  EXPECT_NE(dynamic_cast<CSevenParameter *>(item), nullptr);
  EXPECT_EQ(item->GetName(), CString("ED50 to WGS 84"));
  EXPECT_TRUE(item->GetReverseUsage());
  EXPECT_DOUBLE_EQ(item->GetParameters().GetItemInternal(CString("dx")), -87.0);
  EXPECT_TRUE(*item == seven);

  // The item is a copy: changing it leaves the argument.
  item->GetParameters().SetItemInternal(CString("dx"), 1.0);
  EXPECT_DOUBLE_EQ(seven.GetParameters().GetItemInternal(CString("dx")), -87.0);
}

TEST(DatumShiftCollection, CopiesComparesAndCongeals)
{
  CDatumShiftCollection a;
  a.AddBack(CDatumShift::kMolodensky)->GetParameters().SetItemInternal(CString("dx"), 3.0);
  a.AddBack(CDatumShift::kLongitudeRotation);

  CDatumShiftCollection b = a;
  EXPECT_TRUE(a == b);
  CDatumShift * first = nullptr;
  a.GetItem(0, &first);
  CDatumShift * copied = nullptr;
  b.GetItem(0, &copied);
  EXPECT_NE(first, copied);
  EXPECT_EQ(copied->GetType(), CDatumShift::kMolodensky);

  copied->SetReverseUsage(true);
  EXPECT_TRUE(a != b);
  copied->SetReverseUsage(false);
  b.RemoveBack();
  EXPECT_TRUE(a != b);

  // Assignment into a handle that holds a body reuses it.
  b = a;
  EXPECT_TRUE(a == b);
  b.Congeal();
  EXPECT_TRUE(a == b);
}

TEST(DatumShiftCollection, FullyDefinedNeedsAVMCodeOnEveryItem)
{
  CDatumShiftCollection shifts;
  EXPECT_TRUE(shifts.IsFullyDefined(nullptr));
  CDatumShift * item = shifts.AddBack(CDatumShift::kGeocentricTranslation);
  ExpectFailures({{"no VM code", [&] { shifts.IsFullyDefined(nullptr); }, 25,
                   "CDatumShiftCollectionData::IsFullyDefined", "DatumShift"}});
  item->GetIdentifiers().Add(CString("EPSG"), CString("1133"));
  EXPECT_EQ(Raised([&] { shifts.IsFullyDefined(nullptr); }).GetErrorCode(), 25);
  item->GetIdentifiers().Add(CString("VM"), CString("12"));
  EXPECT_TRUE(shifts.IsFullyDefined(nullptr));
}

// The stored view

namespace {

struct Store
{
  CDatumShiftDataDB first;
  CDatumShiftDataDB second;
  CDatumShiftCollectionDataDB view;

  Store()
  {
    first.SetShiftType(CDatumShift::kGeocentricTranslation);
    first.SetName(CString("first"));
    second.SetShiftType(CString("LongitudeRotation"));
    second.SetName(CString("second"));
    second.SetReverseUsage(true);
    view.AddReference(first, true);
    view.AddReference(second, true);
  }
};

} // namespace

TEST(DatumShiftCollectionDB, GivesNewShiftsOverTheStoredBodies)
{
  Store store;
  EXPECT_EQ(store.view.IsConcrete(), 0);
  EXPECT_EQ(store.view.Count(), 2);
  EXPECT_EQ(store.view.GetShiftNames(), CString("first, second"));

  CDatumShift * item = nullptr;
  ASSERT_TRUE(store.view.GetFront(&item));
  std::unique_ptr<CDatumShift> first(item);
  EXPECT_NE(dynamic_cast<CGeocentricTranslation *>(item), nullptr);
  EXPECT_EQ(item->GetName(), CString("first"));
  // The flag of the reference wins; the stored body keeps its own.
  EXPECT_TRUE(item->GetReverseUsage());
  EXPECT_FALSE(store.first.GetReverseUsage());

  ASSERT_TRUE(store.view.GetNext(&item));
  std::unique_ptr<CDatumShift> second(item);
  EXPECT_EQ(item->GetType(), CDatumShift::kLongitudeRotation);
  // Each call makes a new object.
  ASSERT_TRUE(store.view.GetPrev(&item));
  std::unique_ptr<CDatumShift> again(item);
  EXPECT_NE(again.get(), first.get());
  EXPECT_FALSE(store.view.GetPrev(&item));

  ExpectFailures({{"index 2", [&] { store.view.GetItem(2, &item); }, 48, "CDatumShiftCollectionDataDB::GetItem", ""}});
}

TEST(DatumShiftCollectionDB, IsReadOnlyAndConvertsNothing)
{
  Store store;
  EXPECT_EQ(store.view.AddBack(CDatumShift::kMolodensky), nullptr);
  EXPECT_EQ(store.view.AddFront(CDatumShift::kMolodensky), nullptr);
  EXPECT_EQ(store.view.AddBack(std::make_unique<COffsetShift>(1.0, 1.0)), nullptr);
  EXPECT_FALSE(store.view.RemoveBack());
  EXPECT_FALSE(store.view.RemoveFront());
  store.view.Clear();
  EXPECT_EQ(store.view.Count(), 2);
  double lon = 1.0, lat = 2.0;
  EXPECT_FALSE(store.view.ShiftForward(lon, lat));
  EXPECT_FALSE(store.view.ShiftBack(lon, lat));
  CGeodeticPoint out(2);
  out.SetInternals(5.0, 6.0);
  EXPECT_FALSE(store.view.ShiftForward(CGeodeticPoint(1.0, 2.0), out));
  EXPECT_DOUBLE_EQ(lon, 1.0);
  EXPECT_DOUBLE_EQ(out.GetLon().GetInternal(), 5.0);
}

TEST(DatumShiftCollectionDB, HandleSharesTheViewUntilWrittenThenOwnsCopies)
{
  Store store;
  CDatumShiftCollection shared(store.view);
  EXPECT_EQ(shared.IsConcrete(), 0);
  CDatumShiftCollection const & reading = shared;
  EXPECT_EQ(reading.Count(), 2);
  EXPECT_EQ(shared.IsConcrete(), 0);

  CDatumShiftCollection owned = shared;
  owned.Congeal();
  EXPECT_EQ(owned.IsConcrete(), 1);
  EXPECT_EQ(owned.Count(), 2);
  EXPECT_TRUE(owned == shared);
  CDatumShift * item = nullptr;
  owned.GetItem(1, &item);
  EXPECT_EQ(item->GetType(), CDatumShift::kLongitudeRotation);
  EXPECT_TRUE(item->GetReverseUsage());
  // A written copy leaves the store alone.
  owned.Clear();
  EXPECT_EQ(store.view.Count(), 2);
}
