// Height models and vertical datums: both factories over their tables, the
// stored bodies' type lookups, grids not read yet, the generic datum,
// comparison and completeness.
#include <velmora/vertical/HeightModels.h>
#include <velmora/vertical/VerticalDatum.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include <memory>
#include <utility>
#include <vector>

using namespace Velmora;
using namespace Velmora::CS::VR;
using namespace VelmoraTest;

namespace {

struct Expected
{
  int type;
  char const * name;
  std::vector<char const *> parameters; // in registration order
};

std::vector<Expected> const kModels = {
  {0, "US Geoid Model of 1996", {"path", "extension"}},
  {1, "US Geoid Model of 1999", {"path", "extension"}},
  {2, "US Geoid Model of 2003", {"path", "extension"}},
  {3, "Australian Geoid Model of 1998", {"path", "extension"}},
  {4, "Ordnance Survey Geoid Model of 2002", {"path", "file"}},
  {5, "Earth Geopotential Model of 1996", {"path", "file"}},
  {6, "Columbia Geoid Model of 2004", {"path", "file"}},
  {7, "Japanese GSI Geoid Model of 2000", {"path", "file"}},
  {8, "Venezuelan Geoid Model of 2004", {"path", "file"}},
  {9, "Iberian Gravimetric Geoid of 2005", {"path", "file"}},
  {10, "Iberian Geoid Model of 1995", {"path", "file"}},
};

std::vector<Expected> const kDatums = {
  {0, "National Geodetic Vertical Datum of 1929", {"path", "extension"}},
  {1, "North American Vertical Datum of 1988", {"path", "extension"}},
  {2, "Unassociated Vertical Datum", {}},
};

std::unique_ptr<CHeightModel> Model(int type)
{
  return std::unique_ptr<CHeightModel>(CHeightModelFactory::CreateHeightModel(type));
}
std::unique_ptr<CVerticalDatum> Datum(int type)
{
  return std::unique_ptr<CVerticalDatum>(CVerticalDatumFactory::CreateVerticalDatum(type));
}

// Type, name, parameters as unset texts, the object kind and its group.
template <class T>
void ExpectTableRow(T const & object, Expected const & row, long objectType, long group)
{
  EXPECT_EQ(object.GetType(), row.type);
  EXPECT_EQ(object.GetTypeName(), CString(row.name));
  EXPECT_EQ(object.GetObjectType(), objectType);
  EXPECT_EQ(object.GetGroupID(), group);
  CParameterCollection const & parameters = object.GetParameters();
  ASSERT_EQ(parameters.Count(), static_cast<long>(row.parameters.size())) << row.name;
  for (char const * name : row.parameters) {
    EXPECT_EQ(parameters.GetItemType(CString(name)), CParameter::kString) << row.name << " " << name;
    EXPECT_FALSE(parameters.IsItemSet(CString(name))) << row.name << " " << name;
  }
  EXPECT_EQ(parameters.AllItemsSet(), row.parameters.empty());
}

void SetAll(CParameterCollection & parameters)
{
  for (long i = 0; i < parameters.Count(); ++i)
    parameters.SetString(parameters.ParameterNameAtIndex(i), CString("/nowhere/"));
}

} // namespace

TEST(HeightModelFactory, EveryTypeHasItsNameAndParameters)
{
  ASSERT_EQ(static_cast<int>(kModels.size()), CHeightModel::kTypeCount);
  for (Expected const & row : kModels) {
    auto const model = Model(row.type);
    ASSERT_NE(model, nullptr) << row.type;
    ExpectTableRow(*model, row, 65536, 960);
    EXPECT_EQ(CHeightModel::TypeName(row.type), CString(row.name));
    EXPECT_EQ(CHeightModelDataDB::GetHeightModelType(CString(row.name)), row.type);
  }
  EXPECT_EQ(CHeightModel::TypeName(-1), CString());
  EXPECT_EQ(CHeightModel::TypeName(11), CString());
}

TEST(VerticalDatumFactory, EveryTypeHasItsNameAndParameters)
{
  ASSERT_EQ(static_cast<int>(kDatums.size()), CVerticalDatum::kTypeCount);
  for (Expected const & row : kDatums) {
    auto const datum = Datum(row.type);
    ASSERT_NE(datum, nullptr) << row.type;
    ExpectTableRow(*datum, row, 131072, 930);
    EXPECT_EQ(CVerticalDatum::TypeName(row.type), CString(row.name));
    EXPECT_EQ(CVerticalDatumDataDB::GetVerticalDatumType(CString(row.name)), row.type);
  }
}

TEST(VerticalFactories, TypesOutsideTheTablesRaiseAndUnknownNamesGiveMinusOne)
{
  ExpectFailures({
    {"model -1", [] { Model(-1); }, 50, "CHeightModelFactory::CreateHeightModel", ""},
    {"model 11", [] { Model(11); }, 50, "CHeightModelFactory::CreateHeightModel", ""},
    {"datum -1", [] { Datum(-1); }, 50, "CVerticalDatumFactory::CreateVerticalDatum", ""},
    {"datum 3", [] { Datum(3); }, 50, "CVerticalDatumFactory::CreateVerticalDatum", ""},
  });
  for (char const * text : {"", "iberian geoid model of 1995", "Iberian Geoid Model of 1995 ", "GEOID96"})
    EXPECT_EQ(CHeightModelDataDB::GetHeightModelType(CString(text)), -1) << text;
  for (char const * text : {"", "unassociated vertical datum", "NAVD88"})
    EXPECT_EQ(CVerticalDatumDataDB::GetVerticalDatumType(CString(text)), -1) << text;
}

TEST(VerticalFactories, StoredBodiesTakeTheirTypeFromTheClassAttribute)
{
  CHeightModelDataDB model;
  EXPECT_EQ(model.SetHeightModelType(CString("Iberian Geoid Model of 1995")), 10);
  EXPECT_EQ(model.SetHeightModelType(CString("Unknown")), -1);
  EXPECT_EQ(model.GetModelType(), 10);
  EXPECT_EQ(model.GetClassType(), CString("Iberian Geoid Model of 1995"));
  EXPECT_EQ(std::as_const(model).GetParameters().GetData().GetDataObjectType(), kEDataObjectDB);
  CVerticalDatumDataDB datum;
  EXPECT_EQ(datum.SetVerticalDatumType(CString("North American Vertical Datum of 1988")), 1);
  EXPECT_EQ(datum.SetVerticalDatumType(CString("")), -1);
  EXPECT_EQ(datum.GetDatumType(), 1);
  // A caller's object copied into a store knows its type by its class type.
  CHeightModelDataConcrete concrete;
  concrete.SetClassType(CHeightModel::TypeName(CHeightModel::kGEOID03));
  EXPECT_EQ(CHeightModelDataDB(concrete, nullptr).GetModelType(), 2);
}

TEST(VerticalFactories, GridModelsGiveZeroUntilSetUpThenRaiseForAMissingGrid)
{
  struct Row
  {
    int type;
    char const * location;
    char const * details;
  };
  Row const models[] = {
    {0, "CNGSGriddedData::InitializeGridFile", "Cannot open specified grid data file(s)."},
    {1, "CGEOID99::InitializeGridFile", "Cannot open specified grid data file(s)."},
    {2, "CGEOID03::InitializeGridFile", "Cannot open specified grid data file(s)."},
    {3, "CAUSGEOID98::InitializeGridFile", "Cannot open specified grid data file(s)."},
    {4, "COSGriddedData::InitializeGridFile", "Cannot open specified grid data file."},
    {5, "CEGM96::SetupInner", "Cannot open specified grid data file."},
  };
  ML::CGeodeticPoint const point(-100.0, 40.0, 10.0);
  for (Row const & row : models) {
    auto const model = Model(row.type);
    EXPECT_EQ(model->Interpolate(point), 0.0) << row.type;
    model->GetParameters().SetString("path", CString("/nowhere/"));
    EXPECT_EQ(model->Interpolate(point), 0.0) << "one parameter still unset, " << row.type;
    SetAll(model->GetParameters());
    ExpectFailures({{"set up", [&] { model->Interpolate(point); }, 10, row.location, row.details}});
  }
  for (int type : {0, 1}) {
    auto const datum = Datum(type);
    EXPECT_EQ(datum->Interpolate(point), 0.0);
    SetAll(datum->GetParameters());
    ExpectFailures({{"vertcon", [&] { datum->Interpolate(point); }, 10, "CNGSGriddedData::InitializeGridFile",
                     "Cannot open specified grid data file(s)."}});
  }
  // The raster models raise for a missing file in their reader.
  auto const raster = Model(CHeightModel::kIBERGEO95);
  SetAll(raster->GetParameters());
  ExpectFailures({{"raster", [&] { raster->Interpolate(ML::CGeodeticPoint(0.0, 40.0, 0.0)); }, 10,
                   "CSimpleGriddedData::InitializeGridFile", "Cannot open specified grid data file."}});
}

TEST(VerticalDatums, TheGenericDatumAddsNothingInsideItsEnvelope)
{
  CGenericVerticalDatum datum;
  EXPECT_EQ(datum.Interpolate(ML::CGeodeticPoint(170.0, -80.0, 5.0)), 0.0) << "a default envelope takes all";
  ML::CEnvelope envelope(ML::kGeodeticPoint);
  envelope.SetAlwaysAccept(false);
  envelope.GetMinPoint()->SetInternals(0.0, 0.0, -100.0);
  envelope.GetMaxPoint()->SetInternals(10.0, 10.0, 100.0);
  datum.SetEnvelope(envelope);
  EXPECT_EQ(datum.Interpolate(ML::CGeodeticPoint(10.0, 0.0, 0.0)), 0.0) << "on the edge";
  ExpectFailures({
    {"east", [&] { datum.Interpolate(ML::CGeodeticPoint(10.5, 5.0, 0.0)); }, 43, "CGenericVerticalDatum::Interpolate",
     "Point is not within the specified envelope."},
    {"too high", [&] { datum.Interpolate(ML::CGeodeticPoint(5.0, 5.0, 101.0)); }, 43,
     "CGenericVerticalDatum::Interpolate", "Point is not within the specified envelope."},
  });
}

TEST(VerticalComparison, ModelsCompareByClassDatumAndParametersWithTheirReasons)
{
  CIBERGEO95 a;
  SetAll(a.GetParameters());
  CIBERGEO95 b(a);
  CString why;
  EXPECT_TRUE(a.IsNearlyEqual(b, why));
  EXPECT_TRUE(a == b);
  b.SetName(CString("another name"));
  EXPECT_TRUE(a.IsNearlyEqual(b)) << "names don't count";
  EXPECT_FALSE(a == b) << "but are fields";

  CIGG2005 other;
  SetAll(other.GetParameters());
  EXPECT_FALSE(a.IsNearlyEqual(other, why));
  EXPECT_EQ(why, CString(": class names do not match : Iberian Geoid Model of 1995 != Iberian Gravimetric Geoid of 2005"));

  CIBERGEO95 moved(a);
  moved.GetHorizontalDatum().GetPrimeMeridian().GetLongitude().SetInternal(2.337229167);
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(moved, why));
  EXPECT_TRUE(why.startsWith(": datums do not match ")) << why.toStdString();

  CIBERGEO95 elsewhere(a);
  elsewhere.GetParameters().SetString("file", CString("other.bin"));
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(elsewhere, why));
  EXPECT_TRUE(why.startsWith(": parameters do not match ")) << why.toStdString();

  // Codes of one issuer that differ decide at once.
  CIBERGEO95 coded(a);
  a.GetIdentifiers().Add("EPSG", "1");
  coded.GetIdentifiers().Add("EPSG", "2");
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(coded, why));
  EXPECT_EQ(why, CString(": Identifier codes do not match"));
}

TEST(VerticalComparison, DatumsCompareByClassAndParameters)
{
  CNGVD29 a;
  CNGVD29 c(a);
  CString why;
  EXPECT_TRUE(a.IsNearlyEqual(c));
  EXPECT_FALSE(a.IsNearlyEqual(CNAVD88(), why));
  EXPECT_EQ(why, CString(": class names do not match : National Geodetic Vertical Datum of 1929 != North American "
                         "Vertical Datum of 1988"));
  c.GetParameters().SetString("path", CString("/grids/"));
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(c, why));
  EXPECT_EQ(why, CString(": parameters do not match"));
}

TEST(VerticalCompleteness, ModelsAndDatumsNeedAClassAndIdentifiedInnerObjects)
{
  CHeightModelDataConcrete model;
  CVerticalDatumDataConcrete datum;
  ExpectFailures({
    {"model without VM", [&] { model.IsFullyDefined(nullptr); }, 22, "CSerialiable::IsFullyDefined", "VM"},
    {"datum without VM", [&] { datum.IsFullyDefined(nullptr); }, 22, "CSerialiable::IsFullyDefined", "VM"},
  });
  model.GetIdentifiers().Add("VM", "7");
  datum.GetIdentifiers().Add("VM", "8");
  ExpectFailures({
    {"model class", [&] { model.IsFullyDefined(nullptr); }, 53, "CHeightModelData::IsFullyDefined", "ClassType"},
    {"datum class", [&] { datum.IsFullyDefined(nullptr); }, 53, "CVerticalDatumData::IsFullyDefined", "ClassType"},
  });
  model.SetClassType(CHeightModel::TypeName(CHeightModel::kIBERGEO95));
  datum.SetClassType(CVerticalDatum::TypeName(CVerticalDatum::kGeneric));
  ExpectFailures({
    {"model envelope", [&] { model.IsFullyDefined(nullptr); }, 25, "CHeightModelData::IsFullyDefined", "Envelope"},
    {"datum envelope", [&] { datum.IsFullyDefined(nullptr); }, 25, "CVerticalDatumData::IsFullyDefined", "Envelope"},
  });
  model.GetEnvelope().GetIdentifiers().Add("VM", "1");
  datum.GetEnvelope().GetIdentifiers().Add("VM", "1");
  EXPECT_TRUE(datum.IsFullyDefined(nullptr));
  ExpectFailures({
    {"model datum", [&] { model.IsFullyDefined(nullptr); }, 25, "CHeightModelData::IsFullyDefined",
     "HorizontalDatum"},
  });
  model.GetHorizontalDatum().GetIdentifiers().Add("VM", "6326");
  EXPECT_TRUE(model.IsFullyDefined(nullptr));
}
