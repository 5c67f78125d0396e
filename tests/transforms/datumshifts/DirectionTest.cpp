// Direction and the reversed flag, and the envelope on the forward input side
// in both directions, in the point and the pair forms.
#include <velmora/datasource/CDataSource.h>
#include <velmora/transforms/datumshifts/DatumShift.h>

#include <gtest/gtest.h>

#include "../../support/TestSupport.h"
#include "ShiftDoubles.h"

using namespace Velmora;
using namespace Velmora::CT::DS;
using namespace VelmoraTest;
using Velmora::ML::CGeodeticPoint;

namespace {

struct Lonlat
{
  double lon, lat;
};

// Through the pair form or the point form, forward or back.
Lonlat Shift(CDatumShift const & shift, double lon, double lat, bool pair, bool forward)
{
  CGeodeticPoint out(2);
  if (pair)
    forward ? shift.ShiftForward(lon, lat) : shift.ShiftBack(lon, lat);
  else if (forward)
    shift.ShiftForward(CGeodeticPoint(lon, lat), out);
  else
    shift.ShiftBack(CGeodeticPoint(lon, lat), out);
  if (!pair)
    out.GetInternals(lon, lat);
  return {lon, lat};
}

} // namespace

TEST(DatumShiftDirection, ReversedSwapsTheTwoDirectionsInBothForms)
{
  struct Row
  {
    bool reversed;
    bool forward;
    char const * ran;
    double lon, lat;
  };
  Row const rows[] = {
    {false, true, "s+", 11.0, 22.0},
    {false, false, "s-", 9.0, 18.0},
    {true, true, "s-", 9.0, 18.0},
    {true, false, "s+", 11.0, 22.0},
  };
  for (bool pair : {false, true})
    for (Row const & row : rows) {
      std::vector<std::string> log;
      COffsetShift shift(1.0, 2.0, "s", &log);
      shift.SetReverseUsage(row.reversed);
      EXPECT_EQ(shift.GetReverseUsage(), row.reversed);
      Lonlat const r = Shift(shift, 10.0, 20.0, pair, row.forward);
      EXPECT_DOUBLE_EQ(r.lon, row.lon) << pair << row.reversed << row.forward;
      EXPECT_DOUBLE_EQ(r.lat, row.lat) << pair << row.reversed << row.forward;
      ASSERT_EQ(log.size(), 1u);
      EXPECT_EQ(log[0], row.ran);
      // Each form reaches its own overload of the method.
      EXPECT_EQ(shift.pairCalls, pair ? 1 : 0);
      EXPECT_EQ(shift.pointCalls, pair ? 0 : 1);
    }
}

TEST(DatumShiftDirection, BasePairFormsWrapThePointFormsAndPassTheirResult)
{
  CPointOnlyShift shift;
  double lon = 3.0, lat = 4.0;
  EXPECT_TRUE(shift.ShiftForward(lon, lat));
  EXPECT_DOUBLE_EQ(lon, 6.0);
  EXPECT_DOUBLE_EQ(lat, 8.0);
  EXPECT_FALSE(shift.ShiftBack(lon, lat));
  EXPECT_DOUBLE_EQ(lon, 3.0);
  EXPECT_DOUBLE_EQ(lat, 4.0);
}

TEST(DatumShiftEnvelope, DefaultEnvelopeNeverFires)
{
  COffsetShift shift(1000.0, 1000.0);
  EXPECT_TRUE(shift.GetEnvelope().GetAlwaysAccept());
  for (bool pair : {false, true}) {
    EXPECT_DOUBLE_EQ(Shift(shift, 500.0, -400.0, pair, true).lon, 1500.0);
    EXPECT_DOUBLE_EQ(Shift(shift, 500.0, -400.0, pair, false).lat, -1400.0);
  }
}

// The envelope holds 0..10 by 0..10 on the side that is the forward input.
// The shift moves by +5 in longitude from source to destination.
TEST(DatumShiftEnvelope, GuardsTheForwardInputSideInEachDirection)
{
  struct Row
  {
    char const * what;
    bool reversed;
    bool forward;
    double lon;
    int code; // 0: passes
  };
  Row const rows[] = {
    {"forward, input on the east edge", false, true, 10.0, 0},
    {"forward, input on the west edge", false, true, 0.0, 0},
    {"forward, input just outside", false, true, 10.000001, 43},
    {"forward, input inside though the result is outside", false, true, 9.0, 0},
    {"back, result inside though the input is outside", false, false, 14.0, 0},
    {"back, result outside though the input is inside", false, false, 4.0, 44},
    {"back, result on the edge", false, false, 5.0, 0},
    {"reversed forward: tested before, on the input", true, true, 12.0, 43},
    {"reversed forward: input inside, result outside", true, true, 2.0, 0},
    {"reversed back: result tested after", true, false, 8.0, 44},
    {"reversed back: input outside, result inside", true, false, -3.0, 0},
  };
  for (bool pair : {false, true})
    for (Row const & row : rows) {
      COffsetShift shift(5.0, 0.0);
      shift.SetEnvelope(GeodeticEnvelope(0.0, 0.0, 10.0, 10.0));
      shift.SetReverseUsage(row.reversed);
      auto const run = [&] { Shift(shift, row.lon, 5.0, pair, row.forward); };
      if (row.code == 0) {
        EXPECT_NO_THROW(run()) << row.what << " pair " << pair;
        continue;
      }
      auto const e = Raised(run);
      EXPECT_EQ(e.GetErrorCode(), row.code) << row.what << " pair " << pair;
      if (row.code == 43) {
        EXPECT_EQ(e.GetLocation(), CString("CDatumShift::ShiftForward"));
        EXPECT_EQ(e.GetDetails(), CString("Point is not within the specified envelope."));
        // Refused before the method ran.
        EXPECT_EQ(shift.pairCalls + shift.pointCalls, 0) << row.what;
      } else {
        EXPECT_EQ(e.GetLocation(), CString("CDatumShift::ShiftBack"));
        EXPECT_EQ(e.GetDetails(), CString());
        EXPECT_EQ(shift.pairCalls + shift.pointCalls, 1) << row.what;
      }
    }
}

TEST(DatumShiftEnvelope, FailedStepsLeaveInputAndHandOverResult)
{
  COffsetShift shift(5.0, 0.0);
  shift.SetEnvelope(GeodeticEnvelope(0.0, 0.0, 10.0, 10.0));

  double lon = 20.0, lat = 5.0;
  Raised([&] { shift.ShiftForward(lon, lat); });
  EXPECT_DOUBLE_EQ(lon, 20.0); // untouched on the way in

  lon = 4.0;
  Raised([&] { shift.ShiftBack(lon, lat); });
  EXPECT_DOUBLE_EQ(lon, -1.0); // the result is there on the way out

  CGeodeticPoint const in(4.0, 5.0);
  CGeodeticPoint out(2);
  Raised([&] { shift.ShiftBack(in, out); });
  EXPECT_DOUBLE_EQ(out.GetLon().GetInternal(), -1.0);
}

TEST(DatumShiftEnvelope, PointTestWrapsLongitudePairTestDoesNot)
{
  COffsetShift shift(0.0, 0.0);
  shift.SetEnvelope(GeodeticEnvelope(-10.0, -10.0, 10.0, 10.0));
  CGeodeticPoint out(2);
  EXPECT_NO_THROW(shift.ShiftForward(CGeodeticPoint(355.0, 0.0), out));
  double lon = 355.0, lat = 0.0;
  EXPECT_EQ(Raised([&] { shift.ShiftForward(lon, lat); }).GetErrorCode(), 43);
}

TEST(DatumShiftEnvelope, IgnoreSwitchOpensEveryEnvelope)
{
  COffsetShift shift(1.0, 0.0);
  shift.SetEnvelope(GeodeticEnvelope(0.0, 0.0, 1.0, 1.0));
  DB::CDataSource::SetIgnoreEnvelope(true);
  double lon = 50.0, lat = 50.0;
  EXPECT_NO_THROW(shift.ShiftForward(lon, lat));
  DB::CDataSource::SetIgnoreEnvelope(false);
  EXPECT_EQ(Raised([&] { shift.ShiftForward(lon, lat); }).GetErrorCode(), 43);
}

TEST(DatumShiftEnvelope, ThreeDimensionalPointKeepsItsHeightThroughTheGuard)
{
  COffsetShift shift(1.0, 1.0);
  shift.SetEnvelope(GeodeticEnvelope(0.0, 0.0, 10.0, 10.0));
  CGeodeticPoint out(3);
  shift.ShiftForward(CGeodeticPoint(2.0, 3.0, 120.0), out);
  double lon, lat, height;
  out.GetInternals(lon, lat, height);
  EXPECT_DOUBLE_EQ(lon, 3.0);
  EXPECT_DOUBLE_EQ(lat, 4.0);
  EXPECT_DOUBLE_EQ(height, 120.0);
}
