// The handle/body frame: ownership and copy-on-write, identifiers, the
// identifier level of comparison, and the base completeness check.
#include <velmora/foundation/CIdentifierCollection.h>
#include <velmora/foundation/ObjectTypes.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/Units.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

using namespace VelmoraTest;
using namespace Velmora;
using EX::CVelmoraException;
using ML::CLinearUnit;
using ML::CLinearUnitData;
using ML::CLinearUnitDataConcrete;
using ML::CLinearUnitDataDB;

namespace {


CLinearUnitDataDB * StoredFoot()
{
  auto * body = new CLinearUnitDataDB(CString("Foot"), CString("ft"), 3.28083989501312);
  body->GetIdentifiers().Add("VM", "FOOT");
  return body;
}

} // namespace

TEST(CDataObjectPtr, SharedBodyIsCopiedAtFirstWrite)
{
  std::unique_ptr<CLinearUnitDataDB> stored(StoredFoot());
  CDataObjectPtr<CLinearUnitData> a(stored.get());
  CDataObjectPtr<CLinearUnitData> b(a);
  // Both share the stored body; reading copies nothing.
  EXPECT_EQ(a.Peek(), stored.get());
  EXPECT_EQ(b.Peek(), stored.get());
  EXPECT_DOUBLE_EQ(static_cast<CDataObjectPtr<CLinearUnitData> const &>(a)->GetUnitsPerMeter(), 3.28083989501312);
  EXPECT_EQ(a.Peek(), stored.get());

  a->SetUnitsPerMeter(1.0); // non-const access: private copy first
  EXPECT_NE(a.Peek(), stored.get());
  EXPECT_EQ(a.Peek()->GetDataObjectType(), kEDataObjectConcrete);
  EXPECT_EQ(a.Peek()->GetName(), CString("Foot"));
  EXPECT_EQ(a.Peek()->GetIdentifiers().GetItem("VM"), CString("FOOT"));
  EXPECT_DOUBLE_EQ(b.Peek()->GetUnitsPerMeter(), 3.28083989501312);
  EXPECT_DOUBLE_EQ(stored->GetUnitsPerMeter(), 3.28083989501312);
  EXPECT_EQ(b.Peek(), stored.get());
}

TEST(CDataObjectPtr, ConcreteBodiesAreCopiedAndReusedInPlace)
{
  CLinearUnitDataConcrete metre(CString("Metre"), CString("m"), 1.0);
  CDataObjectPtr<CLinearUnitData> a(&metre);
  EXPECT_NE(a.Peek(), &metre); // an owned copy, never the caller's object
  CDataObjectPtr<CLinearUnitData> b;
  EXPECT_FALSE(b.Assigned());
  b->SetUnitsPerMeter(2.0);
  CLinearUnitData const * kept = b.Peek();
  b = a; // both concrete: assigned in place
  EXPECT_EQ(b.Peek(), kept);
  EXPECT_EQ(b.Peek()->GetName(), CString("Metre"));
  EXPECT_EQ(b.Peek()->GetUnitsPerMeter(), 1.0);

  // A stored body replaces an owned one; the owned one is dropped.
  std::unique_ptr<CLinearUnitDataDB> stored(StoredFoot());
  b.Reset(stored.get());
  EXPECT_EQ(b.Peek(), stored.get());
  b.Reset(nullptr);
  EXPECT_FALSE(b.Assigned());
  // Const access creates a default body.
  CDataObjectPtr<CLinearUnitData> const & cb = b;
  EXPECT_EQ(cb->GetUnitsPerMeter(), 1.0);
  EXPECT_TRUE(b.Assigned());
}

TEST(Handles, DefaultUnitIsCreatedAtFirstUse)
{
  CLinearUnit unit;
  EXPECT_FALSE(unit.IsDefined());
  EXPECT_EQ(unit.ToBaseUnits(5.0), 5.0);
  EXPECT_TRUE(unit.IsDefined());
  EXPECT_EQ(unit.GetObjectType(), kObjectLinearUnit);
  EXPECT_EQ(unit.GetGroupID(), 200);
  ML::CAngularUnit angle;
  EXPECT_EQ(angle.GetObjectType(), kObjectAngularUnit);
  EXPECT_EQ(angle.GetGroupID(), 100);
}

TEST(Handles, CopyOfAConcreteHandleIsIndependent)
{
  CLinearUnit a(CString("US survey foot"), CString("ftUS"), 3.28083333333333);
  CLinearUnit b(a);
  b.SetUnitsPerMeter(1.0);
  b.SetName("Renamed");
  EXPECT_DOUBLE_EQ(a.GetUnitsPerMeter(), 3.28083333333333);
  EXPECT_EQ(a.GetName(), CString("US survey foot"));
  CLinearUnit c;
  c = a;
  EXPECT_TRUE(c == a);
  c.SetAbbreviation("x");
  EXPECT_FALSE(c == a);
  EXPECT_EQ(a.GetAbbreviation(), CString("ftUS"));
  a.Congeal();
  EXPECT_DOUBLE_EQ(a.GetUnitsPerMeter(), 3.28083333333333);
}

TEST(CIdentifierCollection, OperationsAndFailures)
{
  CIdentifierCollection ids;
  ids.Add("VM", "WGS84");
  ids.Add("EPSG", "4326");
  EXPECT_EQ(ids.Count(), 2);
  EXPECT_TRUE(ids.Exists("EPSG"));
  EXPECT_FALSE(ids.Exists(""));
  EXPECT_FALSE(ids.Exists(CString()));

  // Index order is issuer order.
  CString issuer, code;
  ids.GetItem(0, issuer, code);
  EXPECT_EQ(issuer, CString("EPSG"));
  unsigned short const * wi = nullptr;
  unsigned short const * wc = nullptr;
  ids.GetItem(1, &wi, &wc);
  EXPECT_EQ(CString(wi), CString("VM"));
  EXPECT_EQ(CString(wc), CString("WGS84"));

  struct Row
  {
    std::function<void()> call;
    int code;
    char const * location;
    char const * details;
  };
  std::vector<Row> const rows = {
    {[&] { ids.GetItem(-1, issuer, code); }, 48, "CIdentifierCollection::GetItem", ""},
    {[&] { ids.GetItem(2, issuer, code); }, 48, "CIdentifierCollection::GetItem", ""},
    {[&] { ids.GetItem(2, &wi, &wc); }, 48, "CIdentifierCollection::GetItem", ""},
    {[&] { ids.GetItem(""); }, 15, "CIdentifierCollection::GetItem", ""},
    {[&] { ids.GetItem("ESRI"); }, 27, "CIdentifierCollection::GetItem", "ESRI"},
    {[&] { ids.Remove(""); }, 15, "CIdentifierCollection::Remove", ""},
    {[&] { ids.Remove("ESRI"); }, 27, "CIdentifierCollection::Remove", "ESRI"},
    {[&] { ids.Add("EPSG", "1"); }, 29, "CIdentifierCollection::Add", "EPSG"},
    {[&] { ids.SetItem("ESRI", "1"); }, 27, "CIdentifierCollection::SetItem", "ESRI"},
  };
  for (auto const & row : rows) {
    CVelmoraException const e = Raised(row.call);
    EXPECT_EQ(e.GetErrorCode(), row.code) << row.location;
    EXPECT_EQ(e.GetLocation(), CString(row.location));
    EXPECT_EQ(e.GetDetails(), CString(row.details));
  }
  EXPECT_EQ(ids.GetItem("EPSG"), CString("4326")); // the failed Add changed nothing

  ids.SetItem("EPSG", "4979");
  EXPECT_EQ(ids.GetItem("EPSG"), CString("4979"));
  ids.Remove("EPSG");
  EXPECT_EQ(ids.Count(), 1);
  ids.Add("", "blank"); // taken without complaint
  EXPECT_EQ(ids.Count(), 2);
  ids.Clear();
  EXPECT_EQ(ids.Count(), 0);
}

TEST(CIdentifierCollection, HasIdentifierInLooksAtTheFirstPairOnly)
{
  CIdentifierCollection a, b;
  EXPECT_FALSE(a.HasIdentifierIn(b));
  a.Add("EPSG", "4326");
  a.Add("VM", "WGS84");
  EXPECT_FALSE(a.HasIdentifierIn(b));
  b.Add("EPSG", "4258");
  b.Add("VM", "WGS84");
  // The later pair agrees, but the first (EPSG) decides.
  EXPECT_FALSE(a.HasIdentifierIn(b));
  b.SetItem("EPSG", "4326");
  EXPECT_TRUE(a.HasIdentifierIn(b));
}

TEST(Comparison, IdentifierLevelDecidesBeforeFields)
{
  CLinearUnit a(CString("Metre"), CString("m"), 1.0);
  CLinearUnit b(CString("Meter"), CString("m"), 1.0);
  a.GetIdentifiers().Add("EPSG", "9001");
  b.GetIdentifiers().Add("EPSG", "9002");
  CString why;
  EXPECT_EQ(a.IsNearlyEqualBase(b, why), kNearlyEqualBaseDifferent);
  EXPECT_EQ(why, CString(": Identifier codes do not match"));
  EXPECT_FALSE(a.IsNearlyEqual(b));
  EXPECT_EQ(a.IsNearlyEqualBase(a), kNearlyEqualBaseSame);

  // VM and WKT codes never decide; an issuer on one side only is no difference.
  b.GetIdentifiers().SetItem("EPSG", "9001");
  a.GetIdentifiers().Add("VM", "METRE");
  b.GetIdentifiers().Add("VM", "OTHER");
  a.GetIdentifiers().Add("WKT", "1");
  b.GetIdentifiers().Add("WKT", "2");
  b.GetIdentifiers().Add("ESRI", "9001");
  EXPECT_EQ(a.IsNearlyEqualBase(b), kNearlyEqualBaseUndecided);
  EXPECT_TRUE(a.IsNearlyEqual(b));
}

TEST(Comparison, BaseCompletenessNeedsKindAndVMCode)
{
  CLinearUnitDataConcrete unit;
  EXPECT_TRUE(unit.IsFullyDefined(nullptr)); // units need no identifier
  unit.CSerializableData::SetObjectType(kObjectLinearUnit);
  CVelmoraException const noVM = Raised([&] { unit.CSerializableData::IsFullyDefined(nullptr); });
  EXPECT_EQ(noVM.GetErrorCode(), 22);
  EXPECT_EQ(noVM.GetLocation(), CString("CSerialiable::IsFullyDefined"));
  EXPECT_EQ(noVM.GetDetails(), CString("VM"));
  unit.GetIdentifiers().Add("VM", "M");
  EXPECT_TRUE(unit.CSerializableData::IsFullyDefined(nullptr));
  unit.SetObjectType(kObjectNone);
  CVelmoraException const noType = Raised([&] { unit.CSerializableData::IsFullyDefined(nullptr); });
  EXPECT_EQ(noType.GetErrorCode(), 50);
}

TEST(Comparison, IssuerAndCode)
{
  CLinearUnit unit;
  unit.GetIdentifiers().Add("EPSG", "9001");
  CString issuer("EPSG"), code;
  unit.GetIssuerAndCode(issuer, code);
  EXPECT_EQ(issuer, CString("EPSG"));
  EXPECT_EQ(code, CString("9001"));
  unit.GetIdentifiers().Add("VM", "METRE");
  unit.GetIssuerAndCode(issuer, code);
  EXPECT_EQ(issuer, CString("VM"));
  EXPECT_EQ(code, CString("METRE"));
  CString none("ESRI");
  CLinearUnit bare;
  EXPECT_THROW(bare.GetIssuerAndCode(none, code), CVelmoraException);
  EXPECT_EQ(unit.GetIssuerCode("EPSG"), CString("9001"));
}

TEST(StoredBodies, ReadValuesAndSourceFlag)
{
  CLinearUnitDataDB body;
  TWLVariant abbreviation(CString("ch"));
  TWLVariant factor(CString("0.0497096953789867"));
  TWLVariant remarks(CString("Gunter's chain"));
  TWLVariant unknown(CString("x"));
  body.SetValue("abbreviation", abbreviation);
  body.SetValue("unitspermeter", factor);
  body.SetValue("remarks", remarks);
  body.SetValue("colour", unknown); // ignored
  EXPECT_EQ(body.GetAbbreviation(), CString("ch"));
  EXPECT_DOUBLE_EQ(body.GetUnitsPerMeter(), 0.0497096953789867);
  EXPECT_EQ(body.GetRemarks(), CString("Gunter's chain"));

  ML::CAngularUnitDataDB angle;
  TWLVariant perDegree(CString("3600"));
  angle.SetValue("unitsperdegree", perDegree);
  angle.SetValue("unitspermeter", factor); // not an angular key
  EXPECT_EQ(angle.GetUnitsPerDegree(), 3600.0);

  EXPECT_FALSE(body.IsFromSource());
  body.GetIdentifiers().Add("VM", "CHAIN");
  EXPECT_FALSE(body.IsFromSource());
  for (char const * issuer : {"TWL", "EPSG", "ERMapper", "CSMAP"}) {
    CLinearUnitDataDB source;
    source.GetIdentifiers().Add(issuer, "1");
    EXPECT_TRUE(source.IsFromSource()) << issuer;
  }
  CLinearUnitDataDB near;
  near.GetIdentifiers().Add("C", "1");
  EXPECT_FALSE(near.IsFromSource());
}

TEST(ObjectTypes, Lookups)
{
  EXPECT_EQ(ObjectTypes::RootGroupOf(kObjectProjectedCoordSys), 1300);
  EXPECT_EQ(ObjectTypes::RootGroupOf(kObjectAnyCoordSys), 0);
  EXPECT_EQ(ObjectTypes::RootGroupOf(3), 0);
  EXPECT_EQ(ObjectTypes::TypeOfRootGroup(960), kObjectHeightModel);
  EXPECT_EQ(ObjectTypes::TypeOfRootGroup(0), 0);
  EXPECT_EQ(ObjectTypes::NameOf(kObjectEllipsoid), CString("Angular Units"));
  EXPECT_EQ(ObjectTypes::NameOf(kObjectAnyCoordPoint), CString("Point Styles"));
  EXPECT_EQ(ObjectTypes::NameOf(3), CString(""));
  EXPECT_TRUE(ObjectTypes::IsSingle(131072));
  EXPECT_FALSE(ObjectTypes::IsSingle(0));
  EXPECT_FALSE(ObjectTypes::IsSingle(448));
}
