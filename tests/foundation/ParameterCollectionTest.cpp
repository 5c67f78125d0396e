// Parameter collections: lookups and their failures, set states, events,
// tolerant comparison, completeness, the stored body's filling, and
// copy-on-write through the handle.
#include <velmora/foundation/ParameterCollection.h>
#include <velmora/foundation/VelmoraException.h>

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

using namespace Velmora;
using EX::CVelmoraException;
using ML::CAngularUnit;
using ML::CAngularValue;
using ML::CLinearUnit;
using ML::CLinearValue;
using Special = CParameterCollectionData::neSpecialCase;

namespace {

template <class F>
CVelmoraException Raised(F && f)
{
  try {
    f();
  } catch (CVelmoraException const & e) {
    return e;
  }
  ADD_FAILURE() << "nothing raised";
  return CVelmoraException();
}

struct Listener : CParameterCollectionEvent
{
  std::vector<CString> names;
  void OnChange(unsigned short const * name) override { names.push_back(CString(name)); }
};

std::vector<CString> Names(std::initializer_list<char const *> names)
{
  return std::vector<CString>(names.begin(), names.end());
}

void Feed(CParameterCollectionDataDB & db, char const * key, char const * text)
{
  TWLVariant value{CString(text)};
  db.SetValue(key, value);
}

CAngularValue Degrees(double value)
{
  CAngularValue v;
  v.SetToDefault(value);
  return v;
}

// One required item of each type, all set.
CParameterCollection Sample()
{
  CParameterCollection c;
  c.AddAngularValue("central_meridian", false);
  c.AddDouble("false_easting", false);
  c.AddString("name", false);
  c.AddLong("zone", false);
  c.SetAngularValue("central_meridian", Degrees(9.0));
  c.SetDouble("false_easting", 500000.0);
  c.SetString("name", "UTM 32");
  c.SetLong("zone", 32);
  return c;
}

} // namespace

TEST(CParameter, EqualityLooksAtStateBeforeValue)
{
  CParameter a(CParameter::kLinearValue, false);
  CParameter b(a);
  b.SetSetState(true);
  EXPECT_TRUE(a != b);
  EXPECT_TRUE(CParameter(CParameter::kLinearValue, true) != a); // optional
  // Values compare by their own rule: 5e-8 apart is equal, 2e-7 is not.
  b.SetSetState(false);
  b.GetLinearValue().SetInternal(5e-8);
  EXPECT_TRUE(a == b);
  b.GetLinearValue().SetInternal(2e-7);
  EXPECT_FALSE(a == b);
}

TEST(ParameterCollection, FailuresNameTheOperationAndTheItem)
{
  CParameterCollectionDataConcrete c;
  c.AddDouble("d", false);
  c.AddLong("l", false);
  c.AddString("s", false);
  c.AddAngularValue("a", false);
  c.AddLinearValue("x", false);
  Listener heard;
  c.SetEventHandler(&heard);

  CParameterCollectionDataDB db;
  for (char const * name : {"a", "d"})
    db.AddRecord(name);
  Feed(db, "angular", "1");
  Feed(db, "float", "2");

  // Every lookup: an empty name is code 15, an unknown one 27, and where the
  // operation has a type, an item of another type is 30.
  struct Operation
  {
    CString location;
    std::function<void(CString const &)> call;
    char const * wrongType; // an item of another type, or null
  };
  CAngularValue const angle;
  CLinearValue const length;
  CString const concrete("CParameterCollectionDataConcrete::");
  CString const stored("CParameterCollectionDataDB::");
  std::vector<Operation> const operations = {
    {concrete + "ItemSet", [&](CString const & n) { c.IsItemSet(n); }, nullptr},
    {concrete + "SetItemSetState", [&](CString const & n) { c.SetItemSetState(n, true); }, nullptr},
    {concrete + "GetItemType", [&](CString const & n) { c.GetItemType(n); }, nullptr},
    {concrete + "Remove", [&](CString const & n) { c.Remove(n); }, nullptr},
    {concrete + "GetItem(Double)", [&](CString const & n) { c.GetDouble(n); }, "l"},
    {concrete + "GetItem(Long)", [&](CString const & n) { c.GetLong(n); }, "d"},
    {concrete + "GetItem(String)", [&](CString const & n) { c.GetString(n); }, "d"},
    {concrete + "GetItem(AngularValue)", [&](CString const & n) { c.GetAngularValue(n); }, "x"},
    {concrete + "GetItem(LinearValue)", [&](CString const & n) { c.GetLinearValue(n); }, "a"},
    {concrete + "GetItemInternal", [&](CString const & n) { c.GetItemInternal(n); }, "s"},
    {concrete + "SetItem(Double)", [&](CString const & n) { c.SetDouble(n, 1.0); }, "s"},
    {concrete + "SetItem(Long)", [&](CString const & n) { c.SetLong(n, 1); }, "d"},
    {concrete + "SetItem(String)", [&](CString const & n) { c.SetString(n, "t"); }, "l"},
    {concrete + "SetItem(AngularValue)", [&](CString const & n) { c.SetAngularValue(n, angle); }, "x"},
    {concrete + "SetItem(LinearValue)", [&](CString const & n) { c.SetLinearValue(n, length); }, "a"},
    {concrete + "SetItemInternal", [&](CString const & n) { c.SetItemInternal(n, 1.0); }, "d"},
    {stored + "ItemSet", [&](CString const & n) { db.IsItemSet(n); }, nullptr},
    {stored + "GetItem(Double)", [&](CString const & n) { db.GetDouble(n); }, "a"},
    {stored + "GetItemInternal", [&](CString const & n) { db.GetItemInternal(n); }, "d"},
    {stored + "SetRecordUnits", [&](CString const & n) { db.SetRecordUnits(n, CAngularUnit()); }, "d"},
  };
  for (Operation const & op : operations) {
    std::vector<std::pair<char const *, int>> rows = {{"", 15}, {"nope", 27}};
    if (op.wrongType)
      rows.emplace_back(op.wrongType, 30);
    for (auto const & [rowName, code] : rows) {
      char const * const name = rowName; // clang 14 lambdas cannot capture a structured binding
      CVelmoraException const e = Raised([&] { op.call(name); });
      EXPECT_EQ(e.GetErrorCode(), code) << op.location.toStdString() << " '" << name << "'";
      EXPECT_EQ(e.GetLocation(), op.location);
      EXPECT_EQ(e.GetDetails(), code == 15 ? CString() : CString(name));
      if (code == 27) {
        EXPECT_TRUE(e.GetFullMessage().contains(QLatin1String("nope"))) << e.GetFullMessage().toStdString();
      }
    }
  }

  struct Row
  {
    std::function<void()> call;
    int code;
    CString location;
    char const * details;
  };
  std::vector<Row> const rows = {
    {[&] { c.AddDouble("s", true); }, 29, concrete + "AddDouble", "s"},
    {[&] { c.AddLong("d", false); }, 29, concrete + "AddLong", "d"},
    {[&] { c.AddString("a", false); }, 29, concrete + "AddString", "a"},
    {[&] { c.AddAngularValue("a", false); }, 29, concrete + "AddAngularValue", "a"},
    {[&] { c.AddLinearValue("l", false); }, 29, concrete + "AddLinearValue", "l"},
    {[&] { c.AddDouble("", false); }, 15, concrete + "AddDouble", ""},
    {[&] { c.ParameterNameAtIndex(-1); }, 48, concrete + "ParameterNameAtIndex", ""},
    {[&] { c.ParameterNameAtIndex(5); }, 48, concrete + "ParameterNameAtIndex", ""},
    {[&] { db.ParameterNameAtIndex(2); }, 48, stored + "ParameterNameAtIndex", ""},
    {[] { CParameter(static_cast<CParameter::Type>(5), false); }, 51, "CParameter::CParameter", "5"},
    {[] { CParameter(CParameter::kUndetermined, false); }, 51, "CParameter::CParameter", "-1"},
  };
  for (Row const & row : rows) {
    CVelmoraException const e = Raised(row.call);
    EXPECT_EQ(e.GetErrorCode(), row.code) << row.location.toStdString();
    EXPECT_EQ(e.GetLocation(), row.location);
    EXPECT_EQ(e.GetDetails(), CString(row.details));
  }

  // Nothing failed half way: no item changed, no event fired.
  EXPECT_EQ(c.Count(), 5);
  EXPECT_FALSE(c.IsItemSet("d"));
  EXPECT_TRUE(heard.names.empty());
}

TEST(ParameterCollection, NameOrderAndSetStates)
{
  CParameterCollection c;
  EXPECT_TRUE(c.AllItemsSet());
  c.AddDouble("scale_factor", false);
  c.AddLong("false_easting", true);
  EXPECT_EQ(c.ParameterNameAtIndex(0), CString("false_easting"));
  EXPECT_EQ(c.ParameterNameAtIndex(1), CString("scale_factor"));
  EXPECT_FALSE(c.Exists(""));
  EXPECT_FALSE(c.Exists("Scale_Factor"));

  // An optional item left unset does not hold AllItemsSet back; a required one does.
  EXPECT_FALSE(c.AllItemsSet());
  c.SetDouble("scale_factor", 1.0);
  EXPECT_TRUE(c.AllItemsSet());
  // The kept answer goes when an item is unset or added.
  c.SetItemSetState("scale_factor", false);
  EXPECT_FALSE(c.AllItemsSet());
  c.SetItemSetState("scale_factor", true);
  c.AddString("latitude_of_origin", false);
  EXPECT_FALSE(c.AllItemsSet());
  c.SetAllItems();
  EXPECT_TRUE(c.IsItemSet("false_easting"));
  EXPECT_TRUE(c.AllItemsSet());
  c.UnsetAllItems();
  EXPECT_FALSE(c.IsItemSet("latitude_of_origin"));
  EXPECT_FALSE(c.AllItemsSet());

  EXPECT_TRUE(c.Remove("latitude_of_origin"));
  EXPECT_EQ(c.Count(), 2);
  c.Clear();
  EXPECT_TRUE(c.AllItemsSet());
}

TEST(ParameterCollection, EventsNameTheItemAndCopiesForwardTheirOwn)
{
  CParameterCollection c;
  Listener heard;
  c.SetEventHandler(&heard);
  c.AddDouble("false_easting", false);
  c.AddLong("zone", false);
  c.AddString("region", true);
  c.AddAngularValue("central_meridian", false);
  c.AddLinearValue("height", true);
  EXPECT_TRUE(heard.names.empty()); // adding fires nothing

  c.SetDouble("false_easting", 500000.0);
  c.SetLong("zone", 33);
  c.SetString("region", "DK");
  // A value is stored by assignment: its own change comes first, unnamed.
  c.SetAngularValue("central_meridian", Degrees(9.0));
  c.SetLinearValue("height", CLinearValue());
  c.SetItemInternal("central_meridian", 15.0);
  c.SetItemSetState("zone", false); // set states and failures fire nothing
  c.SetAllItems();
  Raised([&] { c.SetDouble("zone", 1.0); });
  EXPECT_EQ(heard.names, Names({"false_easting", "zone", "region", "", "central_meridian", "", "height", "",
                                "central_meridian"}));

  // A copy starts without a listener, and its values report to the copy.
  CParameterCollection copy(c);
  EXPECT_EQ(copy.GetEventHandler(), nullptr);
  EXPECT_EQ(copy.GetAngularValue("central_meridian").GetEventHandler(), &copy.GetData());
  Listener heardCopy;
  copy.SetEventHandler(&heardCopy);
  heard.names.clear();
  copy.SetItemInternal("height", 2.0);
  EXPECT_EQ(heardCopy.names, Names({"", "height"}));
  EXPECT_TRUE(heard.names.empty());
  c.SetItemInternal("height", 3.0);
  EXPECT_EQ(heard.names, Names({"", "height"}));
  EXPECT_EQ(heardCopy.names.size(), 2u);
  EXPECT_EQ(copy.GetItemInternal("height"), 2.0);

  // Assigning between concrete handles reuses the target's body and keeps its listener.
  CParameterCollectionData const * body = &std::as_const(copy).GetData();
  copy = c;
  EXPECT_EQ(&std::as_const(copy).GetData(), body);
  EXPECT_EQ(copy.GetItemInternal("height"), 3.0);
  heard.names.clear();
  heardCopy.names.clear();
  copy.SetItemInternal("central_meridian", 1.0);
  EXPECT_EQ(heardCopy.names, Names({"", "central_meridian"}));
  EXPECT_TRUE(heard.names.empty());
  EXPECT_EQ(c.GetItemInternal("central_meridian"), 15.0);
}

TEST(ParameterCollection, NearlyEqualWithReasons)
{
  using Change = std::function<void(CParameterCollection &)>;
  auto const replace = [](char const * gone, char const * added, double value) -> Change {
    return [=](CParameterCollection & b) {
      b.Remove(gone);
      b.AddDouble(added, false);
      b.SetDouble(added, value);
    };
  };
  Change const grads = [](CParameterCollection & b) {
    CAngularValue v = b.GetAngularValue("central_meridian");
    v.SetUnits(CAngularUnit(CString("Grad"), CString("gr"), 400.0 / 360.0));
    b.SetAngularValue("central_meridian", v);
  };
  Change const addScale = [](CParameterCollection & b) {
    b.AddDouble("scale_factor", true);
    b.SetDouble("scale_factor", 0.9996);
  };
  std::vector<Special> const skip = {{Special::kSkip, Names({"scale_factor"})}};
  std::vector<Special> const alias = {{Special::kInterchangeable, Names({"false_easting", "easting_offset"})}};
  CString const lead(": match for param ");
  CString const values(" found by name, but param values do not match ");

  struct Row
  {
    char const * label;
    Change change;
    std::vector<Special> const * specials;
    bool useUnits;
    bool equal;
    CString why;
  };
  std::vector<Row> const rows = {
    {"same", [](auto &) {}, nullptr, true, true, ""},
    {"within 1e-6", [](auto & b) { b.SetDouble("false_easting", 500000.0000009); }, nullptr, true, true, ""},
    {"double off", [](auto & b) { b.SetDouble("false_easting", 500000.5); }, nullptr, true, false,
     lead + "false_easting" + values + "500000 != 500000.5"},
    {"long off", [](auto & b) { b.SetLong("zone", 33); }, nullptr, true, false, lead + "zone" + values},
    {"angle off", [](auto & b) { b.SetAngularValue("central_meridian", Degrees(9.5)); }, nullptr, true, false,
     lead + "central_meridian" + values + ": values are not equal : 9 != 9.5"},
    {"other unit", grads, nullptr, true, false,
     lead + "central_meridian" + values + ":angular units do not match : units per degree do not match"},
    {"other unit, units ignored", grads, nullptr, false, true, ""},
    {"one fewer", [](auto & b) { b.Remove("zone"); }, nullptr, true, false, ": parameter counts do not match"},
    {"renamed", replace("zone", "zone_number", 32.0), nullptr, true, false, ": matching parameter not found for zone"},
    {"other type", replace("zone", "zone", 32.0), nullptr, true, false,
     lead + "zone found by name, but not of same type"},
    {"unset", [](auto & b) { b.SetItemSetState("name", false); }, nullptr, true, false,
     lead + "name found by name, but param not in same set state"},
    {"extra item", addScale, nullptr, true, false, ": parameter counts do not match"},
    {"extra item skipped", addScale, &skip, true, true, ""},
    {"alias without rule", replace("false_easting", "easting_offset", 500000.0), nullptr, true, false,
     ": matching parameter not found for false_easting"},
    {"alias", replace("false_easting", "easting_offset", 500000.0), &alias, true, true, ""},
    {"alias off", replace("false_easting", "easting_offset", 1.0), &alias, true, false,
     lead + "false_easting" + values + "500000 != 1"},
  };
  CParameterCollection const base = Sample();
  for (Row const & row : rows) {
    CParameterCollection other = base;
    row.change(other);
    CString why;
    EXPECT_EQ(base.IsNearlyEqual(other, why, row.specials, row.useUnits), row.equal) << row.label;
    EXPECT_EQ(why, row.why) << row.label << ": " << why.toStdString();
    EXPECT_EQ(base.IsNearlyEqual(other, row.specials, row.useUnits), row.equal) << row.label;
  }

  // The item level on its own, under two names.
  CParameterCollection other = base;
  addScale(other);
  CString why;
  EXPECT_FALSE(base.GetData().IsItemNearlyEqual(other.GetData(), why, CParameter::kDouble, "false_easting",
                                                "scale_factor"));
  EXPECT_EQ(why, CString("500000 != 0.9996"));
}

TEST(ParameterCollection, FullyDefinedNeedsLibraryUnits)
{
  CParameterCollection c;
  c.AddDouble("scale_factor", false); // plain items have nothing to check
  c.AddAngularValue("cm", false);
  c.AddLinearValue("h", false);
  auto const details = [&] {
    CVelmoraException const e = Raised([&] { c.IsFullyDefined(nullptr); });
    EXPECT_EQ(e.GetErrorCode(), 25);
    EXPECT_EQ(e.GetLocation(), CString("CParameterCollectionData::IsFullyDefined"));
    return e.GetDetails();
  };
  EXPECT_EQ(details(), CString("AngularUnits(cm)"));
  c.SetAngularValue("cm", Degrees(1.0)); // the degree carries "VM"
  CLinearValue h;
  h.GetUnits().GetIdentifiers().Add("EPSG", "9001"); // any other issuer is not enough
  c.SetLinearValue("h", h);
  EXPECT_EQ(details(), CString("LinearUnits(h)"));
  h.GetUnits().GetIdentifiers().Add("VM", "METRE");
  c.SetLinearValue("h", h);
  EXPECT_TRUE(c.IsFullyDefined(nullptr));
}

TEST(StoredParameters, FillInNameOrderAndIgnoreChanges)
{
  CParameterCollectionDataDB db;
  for (char const * name : {"zone", "false_easting", "central_meridian", "region"})
    EXPECT_TRUE(db.AddRecord(name)) << name;
  EXPECT_FALSE(db.AddRecord("zone"));
  EXPECT_FALSE(db.AddRecord(""));
  EXPECT_EQ(db.GetDataObjectType(), kEDataObjectDB);
  EXPECT_EQ(db.GetItemType("zone"), CParameter::kUndetermined);
  EXPECT_FALSE(db.AllItemsSet());

  // Each value goes to the first record, by name, whose type is still open.
  Feed(db, "colour", "red"); // not a parameter key
  EXPECT_EQ(db.GetItemType("central_meridian"), CParameter::kUndetermined);
  Feed(db, "angular", "200");
  Feed(db, "float", "1000");
  Feed(db, "string", "DK");
  Feed(db, "integer", "33");
  Feed(db, "linear", "7"); // no open record left
  EXPECT_EQ(db.GetItemType("central_meridian"), CParameter::kAngularValue);
  EXPECT_EQ(db.GetDouble("false_easting"), 1000.0);
  EXPECT_EQ(db.GetString("region"), CString("DK"));
  EXPECT_EQ(db.GetLong("zone"), 33);
  EXPECT_TRUE(db.AllItemsSet());
  EXPECT_TRUE(db.IsItemSet("zone"));

  // The unit of the element: the number read is in it.
  db.SetRecordUnits("central_meridian", CAngularUnit(CString("Grad"), CString("gr"), 400.0 / 360.0));
  EXPECT_NEAR(db.GetItemInternal("central_meridian"), 180.0, 1e-12);
  EXPECT_EQ(Raised([&] { db.SetRecordUnits("zone", CLinearUnit()); }).GetErrorCode(), 30);

  // A read-only image: every change is ignored without complaint.
  db.SetDouble("false_easting", 1.0);
  db.SetString("region", "SE");
  db.SetItemInternal("central_meridian", 1.0);
  db.SetDouble("nowhere", 1.0);
  db.UnsetAllItems();
  EXPECT_FALSE(db.Remove("zone"));
  EXPECT_FALSE(db.AddDouble("extra", false));
  db.Clear();
  EXPECT_EQ(db.Count(), 4);
  EXPECT_EQ(db.GetDouble("false_easting"), 1000.0);
  EXPECT_EQ(db.GetString("region"), CString("DK"));
  EXPECT_NEAR(db.GetItemInternal("central_meridian"), 180.0, 1e-12);
  EXPECT_TRUE(db.AllItemsSet());
}

TEST(StoredParameters, HandleCopiesAtFirstWrite)
{
  CParameterCollectionDataDB db;
  db.AddRecord("false_easting");
  db.AddRecord("central_meridian");
  Feed(db, "angular", "9");
  Feed(db, "float", "500000");

  CParameterCollection a(db);
  CParameterCollection b(a);
  EXPECT_EQ(&std::as_const(a).GetData(), &db); // shared, reading copies nothing
  EXPECT_EQ(a.GetDouble("false_easting"), 500000.0);
  EXPECT_EQ(&std::as_const(b).GetData(), &db);

  Listener heard;
  a.SetEventHandler(&heard); // a write: a takes a private copy
  a.SetDouble("false_easting", 0.0);
  EXPECT_NE(&std::as_const(a).GetData(), &db);
  EXPECT_EQ(std::as_const(a).GetData().GetDataObjectType(), kEDataObjectConcrete);
  EXPECT_EQ(heard.names, Names({"false_easting"}));
  EXPECT_EQ(a.GetAngularValue("central_meridian").GetInternal(), 9.0);
  EXPECT_EQ(db.GetDouble("false_easting"), 500000.0);
  EXPECT_EQ(&std::as_const(b).GetData(), &db);
  EXPECT_TRUE(a != b);

  // Congealing leaves an equal, private collection.
  CParameterCollection c(db);
  c.Congeal();
  EXPECT_EQ(std::as_const(c).GetData().GetDataObjectType(), kEDataObjectConcrete);
  EXPECT_TRUE(c == b);
  EXPECT_TRUE(c.IsNearlyEqual(b));

  // A record the file never filled cannot be copied; the handle stays shared.
  CParameterCollectionDataDB half;
  half.AddRecord("open");
  CParameterCollection d(half);
  CVelmoraException const e = Raised([&] { d.SetDouble("open", 1.0); });
  EXPECT_EQ(e.GetErrorCode(), 51);
  EXPECT_EQ(e.GetLocation(), CString("CParameterCollectionDataConcrete::operator="));
  EXPECT_EQ(e.GetDetails(), CString("open"));
  EXPECT_EQ(&std::as_const(d).GetData(), &half);
}
