// Vertical references: the conversion mode between every pair of kinds of
// reference, height adjustment with known geoid heights from small Iberian
// rasters, ownership of the datum and model, comparison, completeness, Congeal.
#include <velmora/vertical/HeightModels.h>
#include <velmora/vertical/VerticalReference.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"
#include "RasterFiles.h"

#include <QTemporaryDir>

#include <cstring>
#include <memory>
#include <optional>

using namespace Velmora;
using namespace Velmora::CS::VR;
using namespace VelmoraTest;

namespace {

using Mode = CVerticalReference::VertAdjustMode;

double Surface(long row, long column) { return 10.0 * row + column + 0.5 * row * column; }
double HalfSurface(long row, long column) { return 0.5 * Surface(row, column); }

// Grid node (row 40.25, column 80.5) of the Iberian raster: corners 2080,
// 2101, 2130 and 2151.5 weighed 3/8, 3/8, 1/8, 1/8.
double const kLon = 0.0625;
double const kLat = 40.53125;
double const kGeoidA = 2103.0625;
double const kGeoidB = 1051.53125;

// The kinds of reference the conversion mode tells apart.
enum Kind {
  kNull,
  kEllipsoid,       // neither datum nor model
  kModelOnly,       // a model without a datum counts as ellipsoidal
  kNGVD29,
  kNAVD88,
  kGeneric,
  kNGVD29Iber,
  kNAVD88Iber,
  kGenericIber,
  kGenericGeoid99,  // the other model type
  kKindCount
};

std::unique_ptr<CVerticalReference> Reference(Kind kind)
{
  if (kind == kNull)
    return nullptr;
  auto reference = std::make_unique<CVerticalReference>();
  std::unique_ptr<CVerticalDatum> datum;
  std::unique_ptr<CHeightModel> model;
  switch (kind) {
  case kNGVD29:
  case kNGVD29Iber: datum.reset(CVerticalDatumFactory::CreateVerticalDatum(CVerticalDatum::kNGVD29)); break;
  case kNAVD88:
  case kNAVD88Iber: datum.reset(CVerticalDatumFactory::CreateVerticalDatum(CVerticalDatum::kNAVD88)); break;
  case kGeneric:
  case kGenericIber:
  case kGenericGeoid99: datum.reset(CVerticalDatumFactory::CreateVerticalDatum(CVerticalDatum::kGeneric)); break;
  default: break;
  }
  if (kind == kModelOnly || kind == kNGVD29Iber || kind == kNAVD88Iber || kind == kGenericIber)
    model.reset(CHeightModelFactory::CreateHeightModel(CHeightModel::kIBERGEO95));
  if (kind == kGenericGeoid99)
    model.reset(CHeightModelFactory::CreateHeightModel(CHeightModel::kGEOID99));
  reference->SetVerticalDatum(datum.get());
  reference->SetHeightModel(model.get());
  return reference;
}

class AdjustTest : public ::testing::Test
{
protected:
  void SetUp() override
  {
    ASSERT_TRUE(WriteFile(dir.filePath("a.bin"), RasterBytes(IBERGEO95Layout(), Surface)));
    ASSERT_TRUE(WriteFile(dir.filePath("b.bin"), RasterBytes(IBERGEO95Layout(), HalfSurface)));
  }

  // A reference with an optional datum (its grids named, where it has
  // parameters, so that asking it raises) and an Iberian model over a file.
  CVerticalReference Make(std::optional<CVerticalDatum::Type> datumType, char const * file, bool datumSetUp = false)
  {
    CVerticalReference reference;
    if (datumType) {
      std::unique_ptr<CVerticalDatum> datum(CVerticalDatumFactory::CreateVerticalDatum(*datumType));
      if (datumSetUp)
        for (char const * name : {"path", "extension"})
          datum->GetParameters().SetString(CString(name), CString(dir.path() + "/"));
      reference.SetVerticalDatum(datum.get());
    }
    if (file) {
      CIBERGEO95 model;
      model.GetParameters().SetString("path", CString(dir.path()));
      model.GetParameters().SetString("file", CString(file));
      reference.SetHeightModel(&model);
    }
    return reference;
  }

  QTemporaryDir dir;
};

// Counts the writes to a height.
struct WriteCounter : ML::CFormattedValueEvent
{
  int writes = 0;
  void OnChange(ML::CFormattedValue const *) override { ++writes; }
};

} // namespace

TEST(VerticalConversionMode, EveryPairOfKindsOfReference)
{
  // Rows: from; columns: to; in the order of Kind.
  int const expected[kKindCount][kKindCount] = {
    {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, // null
    {0, 0, 0, 1, 1, 1, 2, 2, 2, 2}, // ellipsoid
    {0, 0, 0, 1, 1, 1, 2, 2, 2, 2}, // model only
    {0, 1, 1, 1, 5, 1, 1, 5, 1, 1}, // NGVD29
    {0, 1, 1, 5, 1, 1, 5, 1, 1, 1}, // NAVD88
    {0, 1, 1, 1, 1, 1, 1, 1, 1, 1}, // generic
    {0, 3, 3, 1, 5, 1, 0, 4, 4, 4}, // NGVD29 + IBERGEO95
    {0, 3, 3, 5, 1, 1, 4, 0, 4, 4}, // NAVD88 + IBERGEO95
    {0, 3, 3, 1, 1, 1, 4, 4, 0, 4}, // generic + IBERGEO95
    {0, 3, 3, 1, 1, 1, 4, 4, 4, 0}, // generic + GEOID99
  };
  for (int from = 0; from < kKindCount; ++from)
    for (int to = 0; to < kKindCount; ++to) {
      auto const a = Reference(static_cast<Kind>(from));
      auto const b = Reference(static_cast<Kind>(to));
      EXPECT_EQ(CVerticalReference::GetConversionMode(a.get(), b.get()), expected[from][to])
        << "from " << from << " to " << to;
    }
}

TEST_F(AdjustTest, EveryModeWithKnownGeoidHeights)
{
  auto const G = CVerticalDatum::kGeneric;
  auto const NAVD88 = CVerticalDatum::kNAVD88;
  auto const NGVD29 = CVerticalDatum::kNGVD29;
  CVerticalReference const ellipsoid;
  CVerticalReference const genericA = Make(G, "a.bin");
  CVerticalReference const navdA = Make(NAVD88, "a.bin", true); // its own grid is never asked for
  CVerticalReference const navdB = Make(NAVD88, "b.bin", true);
  CVerticalReference const ngvdA = Make(NGVD29, "a.bin");       // unset grids: it adds 0
  CVerticalReference const ngvd = Make(NGVD29, nullptr);
  CVerticalReference const navd = Make(NAVD88, nullptr);

  struct Row
  {
    char const * what;
    CVerticalReference const * from;
    CVerticalReference const * to;
    int mode;
    double lon, lat, height;
    bool result;
    int writes;
  };
  double const h = 100.0;
  Row const rows[] = {
    {"nothing to do", &genericA, &navdB, 0, kLon, kLat, h, true, 0},
    {"invalid", &genericA, &navdB, 1, kLon, kLat, 0.0, false, 1},
    {"onto the generic datum", &ellipsoid, &genericA, 2, kLon, kLat, h - kGeoidA, true, 1},
    {"onto NAVD88", &ellipsoid, &navdA, 2, kLon, kLat, h - kGeoidA, true, 1},
    {"onto a node", &ellipsoid, &genericA, 2, 0.0, 40.5, h - 2080.0, true, 1},
    {"onto the north-east corner", &ellipsoid, &genericA, 2, 5.0, 44.5, h - Surface(72, 120), true, 1},
    {"onto the south-west corner", &ellipsoid, &genericA, 2, -10.0, 35.5, h, true, 1},
    {"off the generic datum", &genericA, &ellipsoid, 3, kLon, kLat, h + kGeoidA, true, 1},
    {"off NGVD29 with unset grids", &ngvdA, &ellipsoid, 3, kLon, kLat, h + kGeoidA, true, 1},
    {"from one model to another", &genericA, &navdB, 4, kLon, kLat, h + kGeoidA - kGeoidB, true, 2},
    {"and back", &navdB, &genericA, 4, kLon, kLat, h + kGeoidB - kGeoidA, true, 2},
    {"NGVD29 to NAVD88", &ngvd, &navd, 5, kLon, kLat, h, true, 1},
    {"a generic datum by mode 5", &genericA, &navd, 5, kLon, kLat, h, true, 1},
    {"an unknown mode", &genericA, &navdB, 9, kLon, kLat, 0.0, true, 1},
  };
  for (Row const & row : rows) {
    ML::CGeodeticPoint point(row.lon, row.lat, h);
    WriteCounter counter;
    point.GetHgt().SetEventHandler(&counter);
    EXPECT_EQ(CVerticalReference::AdjustHeight(row.from, row.to, static_cast<Mode>(row.mode), point), row.result)
      << row.what;
    EXPECT_EQ(point.GetHgt().GetInternal(), row.height) << row.what;
    EXPECT_EQ(counter.writes, row.writes) << row.what;
    double lon, lat;
    point.GetInternals(lon, lat);
    EXPECT_EQ(lon, row.lon) << row.what;
    EXPECT_EQ(lat, row.lat) << row.what;
  }
}

TEST_F(AdjustTest, FailuresOfTheDatumsAndModelsPassThroughInTheirOrder)
{
  auto const NGVD29 = CVerticalDatum::kNGVD29;
  CVerticalReference const ngvdA = Make(NGVD29, "a.bin", true); // asking its datum raises
  CVerticalReference const ngvd = Make(NGVD29, nullptr, true);
  CVerticalReference const genericA = Make(CVerticalDatum::kGeneric, "a.bin");
  CVerticalReference const ellipsoid;
  CVerticalReference const generic = Make(CVerticalDatum::kGeneric, nullptr);
  double const outsideLon = -11.0;

  ML::CGeodeticPoint point(outsideLon, kLat, 100.0);
  char const * const vertcon = "CNGSGriddedData::InitializeGridFile";
  char const * const adjust = "CVerticalReference::AdjustHeight";
  ExpectFailures({
    {"mode 2 asks the model first", [&] { CVerticalReference::AdjustHeight(&ellipsoid, &ngvdA, Mode(2), point); }, 43,
     "CIBERGEO95::Interpolate", "No grid data exists for that location."},
    {"mode 3 asks the datum first", [&] { CVerticalReference::AdjustHeight(&ngvdA, &ellipsoid, Mode(3), point); }, 10,
     vertcon, "Cannot open specified grid data file(s)."},
    {"mode 4 asks the datum first", [&] { CVerticalReference::AdjustHeight(&ngvdA, &genericA, Mode(4), point); }, 10,
     vertcon, "Cannot open specified grid data file(s)."},
    {"mode 5 asks the datum of from", [&] { CVerticalReference::AdjustHeight(&ngvd, &generic, Mode(5), point); }, 10,
     vertcon, "Cannot open specified grid data file(s)."},
    {"no model", [&] { CVerticalReference::AdjustHeight(&ellipsoid, &generic, Mode(2), point); }, 32, adjust,
     "Height Model"},
    {"no datum for mode 5", [&] { CVerticalReference::AdjustHeight(&ellipsoid, &generic, Mode(5), point); }, 32,
     adjust, "Vertical Datum"},
    {"no reference", [&] { CVerticalReference::AdjustHeight(&genericA, nullptr, Mode(2), point); }, 34, adjust, ""},
  });
  // Mode 4 stores the ellipsoidal height before it asks the second reference.
  ML::CGeodeticPoint inside(kLon, kLat, 100.0);
  EXPECT_EQ(Raised([&] { CVerticalReference::AdjustHeight(&genericA, &ngvdA, Mode(4), inside); }).GetErrorCode(), 10);
  EXPECT_EQ(inside.GetHgt().GetInternal(), 100.0 + kGeoidA);
}

TEST_F(AdjustTest, AReferenceOwnsPrivateCopiesOfItsDatumAndModel)
{
  CIBERGEO95 model;
  model.GetParameters().SetString("path", CString(dir.path()));
  model.GetParameters().SetString("file", CString("a.bin"));
  CNAVD88 datum;
  CVerticalReference reference(&datum, &model);
  CHeightModel * const held = reference.GetHeightModel();
  ASSERT_TRUE(held && reference.GetVerticalDatum());
  EXPECT_TRUE(held != &model && *held == model);
  EXPECT_NE(reference.GetVerticalDatum(), &datum);
  EXPECT_EQ(held->GetParameters().GetEventHandler(), static_cast<CParameterCollectionEvent *>(held));
  ML::CGeodeticPoint const point(kLon, kLat, 0.0);
  EXPECT_EQ(held->Interpolate(point), kGeoidA);

  // Changing the caller's object leaves the copy; setting it again assigns
  // in place, and the grid is read again.
  model.GetParameters().SetString("file", CString("b.bin"));
  EXPECT_EQ(held->Interpolate(point), kGeoidA);
  reference.SetHeightModel(&model);
  EXPECT_EQ(reference.GetHeightModel(), held);
  EXPECT_EQ(held->Interpolate(point), kGeoidB);
  reference.SetHeightModel(reference.GetHeightModel());
  EXPECT_EQ(held->GetParameters().GetString("file"), CString("b.bin"));

  // Another type: a new object of that type.
  CGEOID03 other;
  reference.SetHeightModel(&other);
  EXPECT_EQ(reference.GetHeightModel()->GetType(), CHeightModel::kGEOID03);
  CGenericVerticalDatum generic;
  reference.SetVerticalDatum(&generic);
  EXPECT_NE(dynamic_cast<CGenericVerticalDatum *>(reference.GetVerticalDatum()), nullptr);

  // A copied reference has copies of its own; null lets go.
  CVerticalReference const copy(reference);
  EXPECT_NE(copy.GetHeightModel(), reference.GetHeightModel());
  EXPECT_TRUE(copy == reference);
  reference.SetHeightModel(nullptr);
  reference.SetVerticalDatum(nullptr);
  EXPECT_TRUE(!reference.GetHeightModel() && !reference.GetVerticalDatum() && copy.GetHeightModel());
}

TEST(VerticalReferenceComparison, DatumsThenModelsWithTheirReasons)
{
  auto const empty = Reference(kEllipsoid);
  auto const navd = Reference(kNAVD88);
  auto const ngvd = Reference(kNGVD29);
  auto const navdIber = Reference(kNAVD88Iber);
  auto const navdIber2 = Reference(kNAVD88Iber);
  navdIber2->GetHeightModel()->GetParameters().SetString("file", CString("x.bin"));
  auto const modelOnly = Reference(kModelOnly);
  auto const empty2 = Reference(kEllipsoid);
  auto const navdIberAgain = Reference(kNAVD88Iber);

  struct Row
  {
    CVerticalReference const * a;
    CVerticalReference const * b;
    bool nearly;
    bool equal;
    char const * why; // the start of the reason
  };
  Row const rows[] = {
    {empty.get(), empty2.get(), true, true, ""},
    {navdIber.get(), navdIberAgain.get(), true, true, ""},
    {empty.get(), navd.get(), false, false, ": vertical datum is not defined for one of the vertical references"},
    {navd.get(), empty.get(), false, false, ": vertical datum is not defined for one of the vertical references"},
    {navd.get(), ngvd.get(), false, false,
     ": vertical datums do not match : class names do not match : North American Vertical Datum of 1988 != "
     "National Geodetic Vertical Datum of 1929"},
    {navd.get(), navdIber.get(), false, false,
     ": height model (geoid) is not defined for one of the vertical references"},
    {empty.get(), modelOnly.get(), false, false,
     ": height model (geoid) is not defined for one of the vertical references"},
    {navdIber.get(), navdIber2.get(), false, false, ": height models (geoids) do not match : parameters do not match "},
  };
  for (Row const & row : rows) {
    CString why;
    EXPECT_EQ(row.a->IsNearlyEqual(*row.b, why), row.nearly) << row.why;
    EXPECT_EQ(why.left(static_cast<int>(std::strlen(row.why))), CString(row.why)) << why.toStdString();
    EXPECT_EQ(*row.a == *row.b, row.equal) << row.why;
    EXPECT_EQ(*row.a != *row.b, !row.equal) << row.why;
  }
}

TEST(VerticalReferenceCompleteness, TheReferenceAndWhatItHoldsNeedIdentifiers)
{
  auto const reference = Reference(kNAVD88Iber);
  ExpectFailures({{"no VM", [&] { reference->IsFullyDefined(nullptr); }, 22, "CSerialiable::IsFullyDefined", "VM"}});
  reference->GetIdentifiers().Add("VM", "900");
  char const * const location = "CVerticalReferenceData::IsFullyDefined";
  ExpectFailures({{"datum", [&] { reference->IsFullyDefined(nullptr); }, 25, location, "Vertical Datum"}});
  reference->GetVerticalDatum()->GetIdentifiers().Add("VM", "5703");
  ExpectFailures({{"model", [&] { reference->IsFullyDefined(nullptr); }, 25, location, "Height Model"}});
  reference->GetHeightModel()->GetIdentifiers().Add("VM", "1");
  EXPECT_TRUE(reference->IsFullyDefined(nullptr));

  auto const bare = Reference(kEllipsoid);
  bare->GetIdentifiers().Add("VM", "901");
  EXPECT_TRUE(bare->IsFullyDefined(nullptr));
  EXPECT_EQ(bare->GetObjectType(), 1024);
  EXPECT_EQ(bare->GetGroupID(), 900);
}

namespace {
// A handle over a stored body, as the data source makes them.
struct StoredReference : CVerticalReference
{
  explicit StoredReference(CVerticalReferenceData const & body) { m_data.Reset(&body); }
};
} // namespace

TEST_F(AdjustTest, CongealTakesTheReferenceAndItsObjectsOutOfTheStore)
{
  auto store = std::make_unique<CVerticalReferenceDataDB>();
  EXPECT_EQ(store->GetVerticalDatumIndex(), -1);
  EXPECT_EQ(store->GetHeightModelIndex(), -1);
  CVerticalReference const source = Make(CVerticalDatum::kGeneric, "a.bin");
  store->SetVerticalDatum(source.GetVerticalDatum());
  store->SetHeightModel(source.GetHeightModel());

  StoredReference handle(*store);
  CVerticalReference const & reading = handle;
  EXPECT_EQ(reading.GetHeightModel(), store->GetHeightModel()) << "shared until written";
  StoredReference writer(*store);
  writer.SetHeightModel(nullptr);
  EXPECT_NE(store->GetHeightModel(), nullptr) << "a write leaves the store alone";

  handle.Congeal();
  EXPECT_NE(reading.GetHeightModel(), store->GetHeightModel());
  EXPECT_NE(reading.GetVerticalDatum(), store->GetVerticalDatum());
  EXPECT_TRUE(reading == source);
  store.reset();
  ASSERT_NE(reading.GetHeightModel(), nullptr);
  EXPECT_EQ(reading.GetHeightModel()->Interpolate(ML::CGeodeticPoint(kLon, kLat, 0.0)), kGeoidA);
  EXPECT_EQ(reading.GetHeightModel()->GetParameters().GetEventHandler(),
            static_cast<CParameterCollectionEvent const *>(reading.GetHeightModel()));
}
