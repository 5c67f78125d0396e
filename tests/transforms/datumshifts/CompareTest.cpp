// Exact and near comparison of shifts, with the rules across methods, and
// the completeness check before a shift is stored.
#include <velmora/transforms/datumshifts/NationalShifts.h>

#include <gtest/gtest.h>

#include "../../support/TestSupport.h"
#include "ShiftDoubles.h"

#include <memory>

using namespace Velmora;
using namespace Velmora::CT::DS;
using namespace VelmoraTest;
using Velmora::CS::CHorizontalDatum;

namespace {

// A shift of a type between two datums, with values for its parameters by
// name (linear and angular in internal units) and every item set.
std::unique_ptr<CDatumShift> Shift(CDatumShift::Type type, CHorizontalDatum const & from, CHorizontalDatum const & to,
                                   std::initializer_list<std::pair<char const *, double>> values = {},
                                   bool reversed = false)
{
  std::unique_ptr<CDatumShift> shift(CDatumShiftFactory::CreateDatumShift(type));
  shift->SetSrcDatum(from);
  shift->SetDestDatum(to);
  shift->SetReverseUsage(reversed);
  CParameterCollection & parameters = shift->GetParameters();
  parameters.SetAllItems();
  for (auto const & [name, value] : values) {
    if (parameters.GetItemType(CString(name)) == CParameter::kDouble)
      parameters.SetDouble(CString(name), value);
    else
      parameters.SetItemInternal(CString(name), value);
  }
  return shift;
}

struct Outcome
{
  bool equal;
  std::string why;
};

Outcome Compare(CDatumShift const & a, CDatumShift const & b)
{
  CString why;
  bool const equal = a.IsNearlyEqual(b, why);
  EXPECT_EQ(a.IsNearlyEqual(b), equal) << "the quiet form agrees";
  return {equal, why.toStdString()};
}

} // namespace

TEST(DatumShiftCompare, ExactEqualityLeavesDatumsAndEnvelopeOut)
{
  auto a = Shift(CDatumShift::kMolodensky, kWgs84, kIntl, {{"dx", 1.0}});
  auto b = Shift(CDatumShift::kMolodensky, kIntl, kWgs84, {{"dx", 1.0}});
  b->SetEnvelope(ML::CEnvelope(ML::kGeodeticPoint));
  EXPECT_TRUE(*a == *b);
  b->SetReverseUsage(true);
  EXPECT_TRUE(*a != *b);
  b->SetReverseUsage(false);
  b->GetParameters().SetItemInternal(CString("dx"), 1.001);
  EXPECT_TRUE(*a != *b);
  auto c = Shift(CDatumShift::kGeocentricTranslation, kWgs84, kIntl, {{"dx", 1.0}});
  EXPECT_TRUE(*a != *c);
  b = Shift(CDatumShift::kMolodensky, kWgs84, kIntl, {{"dx", 1.0}});
  b->SetName(CString("named"));
  EXPECT_TRUE(*a != *b);
}

TEST(DatumShiftCompare, PlainRulesAndTheirReasons)
{
  using T = CDatumShift;
  struct Row
  {
    char const * what;
    std::unique_ptr<CDatumShift> a, b;
    bool equal;
    char const * why;
  };
  auto const gt = [](CHorizontalDatum const & f, CHorizontalDatum const & t, double dx, bool rev = false) {
    return Shift(T::kGeocentricTranslation, f, t, {{"dx", dx}, {"dy", 2.0}, {"dz", 3.0}}, rev);
  };
  std::vector<Row> rows;
  rows.push_back({"same values", gt(kWgs84, kIntl, 1.0), gt(kWgs84, kIntl, 1.0 + 5e-7), true, ""});
  rows.push_back({"source datums", gt(kWgs84, kIntl, 1.0), gt(kIntl, kIntl, 1.0), false,
                  ": source datums do not match"});
  rows.push_back({"destination datums", gt(kWgs84, kIntl, 1.0), gt(kWgs84, kWgs84, 1.0), false,
                  ": destination datums do not match"});
  // Flags and parameters both differ: the first difference is noted, the summaries add theirs.
  rows.push_back({"other flag", gt(kWgs84, kIntl, 1.0), gt(kWgs84, kIntl, 1.0, true), false,
                  ": reversed flags do not match: reversed flags do not match: dx values do not match"});
  rows.push_back({"other dx", gt(kWgs84, kIntl, 1.0), gt(kWgs84, kIntl, 1.1), false,
                  ": parameters do not match: dx values do not match"});
  rows.push_back({"no summary for a grid", Shift(T::kCanadianNTV2, kWgs84, kIntl), Shift(T::kNadcon, kWgs84, kIntl),
                  false, ": class names do not match"});
  for (Row const & row : rows) {
    Outcome const o = Compare(*row.a, *row.b);
    EXPECT_EQ(o.equal, row.equal) << row.what;
    EXPECT_EQ(o.why, row.why) << row.what;
  }
}

TEST(DatumShiftCompare, IdentifiersDecideBeforeTheFields)
{
  auto a = Shift(CDatumShift::kMolodensky, kWgs84, kIntl, {{"dx", 1.0}});
  auto b = Shift(CDatumShift::kMolodensky, kWgs84, kIntl, {{"dx", 1.0}});
  a->GetIdentifiers().Add(CString("EPSG"), CString("1133"));
  b->GetIdentifiers().Add(CString("EPSG"), CString("1134"));
  Outcome const o = Compare(*a, *b);
  EXPECT_FALSE(o.equal);
  EXPECT_EQ(o.why, ": Identifier codes do not match");
  // The very same object is equal without a look at its datums.
  EXPECT_TRUE(Compare(*a, *a).equal);
  // "VM" codes are no difference.
  b->GetIdentifiers().Remove(CString("EPSG"));
  a->GetIdentifiers().Add(CString("VM"), CString("1"));
  b->GetIdentifiers().Add(CString("VM"), CString("2"));
  EXPECT_TRUE(Compare(*a, *b).equal);
}

TEST(DatumShiftCompare, LongitudeRotationOnlyMatchesItsMirror)
{
  using T = CDatumShift;
  auto const rot = [](CHorizontalDatum const & f, CHorizontalDatum const & t, double r, bool rev) {
    return Shift(T::kLongitudeRotation, f, t, {{"rotation", r}}, rev);
  };
  struct Row
  {
    char const * what;
    std::unique_ptr<CDatumShift> a, b;
    bool equal;
  };
  std::vector<Row> rows;
  // The datum check of the plain rules comes first, so a mirror has A to A.
  rows.push_back({"mirror with other flag", rot(kWgs84, kWgs84, 2.33, false), rot(kWgs84, kWgs84, 2.33, true), true});
  // The amount is not compared.
  rows.push_back({"mirror, other amount", rot(kWgs84, kWgs84, 2.33, false), rot(kWgs84, kWgs84, -9.0, true), true});
  rows.push_back({"same flag, other amount", rot(kWgs84, kWgs84, 2.33, false), rot(kWgs84, kWgs84, 1.0, false),
                  false});
  rows.push_back({"against another class", rot(kWgs84, kWgs84, 0.0, false),
                  Shift(T::kGeocentricTranslation, kWgs84, kWgs84), false});
  for (Row const & row : rows)
    EXPECT_EQ(Compare(*row.a, *row.b).equal, row.equal) << row.what;
  // Only from the rotation's side: the other way round the summaries decide.
  auto const gtFirst = Compare(*Shift(T::kGeocentricTranslation, kWgs84, kWgs84), *rot(kWgs84, kWgs84, 0.0, false));
  EXPECT_FALSE(gtFirst.equal);
}

TEST(DatumShiftCompare, MolodenskyAndGeocentricTranslationDoTheSameJob)
{
  using T = CDatumShift;
  auto const values = {std::pair{"dx", -87.0}, std::pair{"dy", -98.0}, std::pair{"dz", -121.0}};
  auto const mol = Shift(T::kMolodensky, kIntl, kWgs84, values);
  auto const gt = Shift(T::kGeocentricTranslation, kIntl, kWgs84, values);
  EXPECT_TRUE(Compare(*mol, *gt).equal);
  EXPECT_TRUE(Compare(*gt, *mol).equal);
  auto const other = Shift(T::kGeocentricTranslation, kIntl, kWgs84, {{"dx", -87.0}, {"dy", -98.0}, {"dz", -120.0}});
  Outcome const o = Compare(*mol, *other);
  EXPECT_FALSE(o.equal);
  EXPECT_EQ(o.why, ": class names do not match: dz values do not match");
}

TEST(DatumShiftCompare, BursaWolfeAgainstSevenParameterNegatesTheOthersRotations)
{
  using T = CDatumShift;
  auto const bw = [](double r, double k) {
    return Shift(T::kBursaWolfe, kIntl, kWgs84,
                 {{"dx", -84.0}, {"dy", -107.0}, {"dz", -120.0}, {"rx", r}, {"ry", 2 * r}, {"rz", -r}, {"k", k}});
  };
  auto const seven = [](double r, double k) {
    return Shift(T::kSevenParameter, kIntl, kWgs84,
                 {{"dx", -84.0}, {"dy", -107.0}, {"dz", -120.0}, {"rx", r}, {"ry", 2 * r}, {"rz", -r}, {"k", k}});
  };
  double const r = 0.0001;
  struct Row
  {
    char const * what;
    std::unique_ptr<CDatumShift> a, b;
    bool equal;
  };
  std::vector<Row> rows;
  rows.push_back({"equal non-zero rotations", bw(r, 1.5), seven(r, 1.5), false});
  rows.push_back({"opposite rotations", bw(r, 1.5), seven(-r, 1.5), true});
  rows.push_back({"opposite, either order", seven(r, 1.5), bw(-r, 1.5), true});
  rows.push_back({"zero rotations", bw(0.0, 1.5), seven(0.0, 1.5), true});
  rows.push_back({"k apart by 2e-6", bw(-r, 1.5), seven(r, 1.5 + 2e-6), false});
  rows.push_back({"rotation apart by 2e-6 degrees", bw(r, 0.0), seven(-r + 2e-6, 0.0), false});
  for (Row const & row : rows)
    EXPECT_EQ(Compare(*row.a, *row.b).equal, row.equal) << row.what;
}

TEST(DatumShiftCompare, AffineSummariesAcrossMethods)
{
  using T = CDatumShift;
  auto const xyz = {std::pair{"dx", 10.0}, std::pair{"dy", 20.0}, std::pair{"dz", 30.0}};
  struct Row
  {
    char const * what;
    std::unique_ptr<CDatumShift> a, b;
    bool equal;
    char const * why;
  };
  std::vector<Row> rows;
  rows.push_back({"four parameter with k 0 and a translation", Shift(T::kFourParameter, kIntl, kWgs84, xyz),
                  Shift(T::kGeocentricTranslation, kIntl, kWgs84, xyz), true, ": class names do not match"});
  rows.push_back({"four parameter with k 1", Shift(T::kFourParameter, kIntl, kWgs84, {{"dx", 10.0}, {"k", 1.0}}),
                  Shift(T::kGeocentricTranslation, kIntl, kWgs84, {{"dx", 10.0}}), false,
                  ": class names do not match: k values do not match"});
  rows.push_back({"six parameter with zero rotations and seven parameter",
                  Shift(T::kSixParameter, kIntl, kWgs84, xyz), Shift(T::kSevenParameter, kIntl, kWgs84, xyz), true,
                  ": class names do not match"});
  rows.push_back({"pivot differs", Shift(T::kMolodenskyBadekas, kIntl, kWgs84, {{"yp", 5.0}}),
                  Shift(T::kSevenParameter, kIntl, kWgs84), false,
                  ": class names do not match: yp values do not match"});
  rows.push_back({"rotation differs", Shift(T::kSixParameter, kIntl, kWgs84, {{"ry", 0.001}}),
                  Shift(T::kMolodenskyBadekas, kIntl, kWgs84), false,
                  ": class names do not match: ry values do not match"});
  rows.push_back({"longitude rotation has no summary", Shift(T::kGeocentricTranslation, kWgs84, kWgs84),
                  Shift(T::kLongitudeRotation, kWgs84, kWgs84), false, ": class names do not match"});
  for (Row const & row : rows) {
    Outcome const o = Compare(*row.a, *row.b);
    EXPECT_EQ(o.equal, row.equal) << row.what;
    EXPECT_EQ(o.why, row.why) << row.what;
  }
}

TEST(DatumShiftCompare, NegatedSummaries)
{
  using T = CDatumShift;
  auto const gt = [](CHorizontalDatum const & f, CHorizontalDatum const & t, double sign, bool rev) {
    return Shift(T::kGeocentricTranslation, f, t, {{"dx", sign * 5.0}, {"dy", sign * 6.0}, {"dz", sign * 7.0}}, rev);
  };
  auto const mol = [](CHorizontalDatum const & f, CHorizontalDatum const & t, double sign, bool rev) {
    return Shift(T::kMolodensky, f, t, {{"dx", sign * 5.0}, {"dy", sign * 6.0}, {"dz", sign * 7.0}}, rev);
  };
  struct Row
  {
    char const * what;
    std::unique_ptr<CDatumShift> a, b;
    bool equal;
  };
  std::vector<Row> rows;
  rows.push_back({"A to A, opposite numbers, same flags", gt(kWgs84, kWgs84, 1, false), gt(kWgs84, kWgs84, -1, false),
                  true});
  rows.push_back({"A to B, opposite numbers, other flag", gt(kWgs84, kIntl, 1, false), gt(kWgs84, kIntl, -1, true),
                  true});
  rows.push_back({"across methods, opposite numbers, other flag", mol(kWgs84, kIntl, 1, true),
                  gt(kWgs84, kIntl, -1, false), true});
  rows.push_back({"A to B, opposite numbers, same flags", gt(kWgs84, kIntl, 1, false), gt(kWgs84, kIntl, -1, false),
                  false});
  rows.push_back({"A to B, same numbers, other flag", gt(kWgs84, kIntl, 1, false), gt(kWgs84, kIntl, 1, true), false});
  // Only a pure translation can be turned round.
  rows.push_back({"rotation present", Shift(T::kSixParameter, kWgs84, kWgs84, {{"dx", 5.0}, {"rz", 0.001}}),
                  Shift(T::kSixParameter, kWgs84, kWgs84, {{"dx", -5.0}, {"rz", 0.001}}, true), false});
  rows.push_back({"scale present", Shift(T::kFourParameter, kWgs84, kWgs84, {{"dx", 5.0}, {"k", 0.5}}),
                  Shift(T::kFourParameter, kWgs84, kWgs84, {{"dx", -5.0}, {"k", 0.5}}, true), false});
  for (Row const & row : rows)
    EXPECT_EQ(Compare(*row.a, *row.b).equal, row.equal) << row.what;
}

TEST(DatumShiftCompare, ReasonsAppendToWhatIsThere)
{
  auto a = Shift(CDatumShift::kMolodensky, kWgs84, kIntl);
  auto b = Shift(CDatumShift::kMolodensky, kIntl, kIntl);
  CString why("earlier");
  EXPECT_FALSE(a->IsNearlyEqual(*b, why));
  EXPECT_EQ(why, CString("earlier: source datums do not match"));
}

TEST(DatumShiftFullyDefined, CodesInOrderOfTheChecks)
{
  auto const vm = [](CSerializable & object, char const * code) {
    object.GetIdentifiers().Add(CString("VM"), CString(code));
  };
  // Text parameters have no units to check.
  std::unique_ptr<CDatumShift> shift(CDatumShiftFactory::CreateDatumShift(CDatumShift::kMRE));
  char const * const location = "CDatumShiftData::IsFullyDefined";
  ExpectFailures({{"no VM code", [&] { shift->IsFullyDefined(nullptr); }, 22, "CSerialiable::IsFullyDefined", "VM"}});
  vm(*shift, "7");
  ExpectFailures({{"envelope", [&] { shift->IsFullyDefined(nullptr); }, 25, location, "Envelope"}});
  ML::CEnvelope envelope;
  vm(envelope, "8");
  shift->SetEnvelope(envelope);
  ExpectFailures({{"source datum", [&] { shift->IsFullyDefined(nullptr); }, 25, location, "Source Datum"}});
  vm(shift->GetSrcDatum(), "9");
  // The destination's missing code is reported with the source's words.
  ExpectFailures({{"destination datum", [&] { shift->IsFullyDefined(nullptr); }, 25, location, "Source Datum"}});
  vm(shift->GetDestDatum(), "10");
  EXPECT_TRUE(shift->IsFullyDefined(nullptr));

  // A value parameter's unit is checked before the references.
  std::unique_ptr<CDatumShift> rotation(CDatumShiftFactory::CreateDatumShift(CDatumShift::kLongitudeRotation));
  vm(*rotation, "12");
  ExpectFailures({{"unit", [&] { rotation->IsFullyDefined(nullptr); }, 25, "CParameterCollectionData::IsFullyDefined",
                   "AngularUnits(rotation)"}});

  CDatumShiftDataDB untyped;
  untyped.GetIdentifiers().Add(CString("VM"), CString("11"));
  ExpectFailures({{"class type", [&] { untyped.IsFullyDefined(nullptr); }, 53, location, "ClassType"}});
}

TEST(DatumShiftCongeal, MakesTheTreePrivateAndKeepsListening)
{
  CDatumShiftDataDB body;
  body.SetShiftType(CDatumShift::kMolodensky);
  std::unique_ptr<CDatumShift> shift(CDatumShiftFactory::CreateDatumShift(body));
  shift->Congeal();
  EXPECT_EQ(shift->ShiftData().GetDataObjectType(), kEDataObjectConcrete);
  CDatumShift const & reading = *shift;
  EXPECT_EQ(reading.GetParameters().GetEventHandler(), shift.get());
}

TEST(DatumShiftCopy, CopiesAndAssignmentsListenToThemselves)
{
  CMolodensky first;
  first.GetParameters().SetItemInternal(CString("dx"), 4.0);
  CMolodensky const second(first);
  EXPECT_EQ(second.GetParameters().GetEventHandler(), &second);
  EXPECT_TRUE(second == first);
  CGeocentricTranslation third;
  CDatumShift & asBase = third;
  asBase = first; // another type: the body only
  CDatumShift const & reading = third;
  EXPECT_EQ(reading.GetParameters().GetEventHandler(), &third);
  EXPECT_EQ(reading.GetTypeName(), CString("Molodensky"));
  EXPECT_DOUBLE_EQ(reading.GetParameters().GetItemInternal(CString("dx")), 4.0);
  EXPECT_EQ(third.GetType(), CDatumShift::kGeocentricTranslation);
}
