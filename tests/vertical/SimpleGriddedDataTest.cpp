// Raster geoid grids: cell types, byte order, the four orders, the blend,
// snapping, the edges, and how a raster model finds and reports its file.
#include <velmora/datasource/CDataSource.h>
#include <velmora/vertical/HeightModels.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"
#include "RasterFiles.h"

#include <QTemporaryDir>

#include <cmath>
#include <limits>
#include <memory>
#include <tuple>

using namespace Velmora;
using namespace Velmora::CS::VR;
using namespace VelmoraTest;

namespace {

// A bilinear surface: bilinear interpolation must give it back exactly, and
// each corner weighs differently, so a swapped corner shows.
double Surface(long row, long column) { return 10.0 * row + column + 0.5 * row * column; }

// A 4-by-5 grid at whole degrees from (10 N, 20 E).
Layout Small(int order, int cellType, bool swap, long offset = 16)
{
  return {10.0, 20.0, 1.0, 1.0, 4, 5, static_cast<CSimpleGriddedData::CellOrder>(order),
          static_cast<CSimpleGriddedData::CellType>(cellType), swap, offset, false, false};
}

class RasterTest : public ::testing::Test
{
protected:
  QString Write(char const * name, Layout const & layout, std::function<double(long, long)> const & value = Surface)
  {
    QString const path = dir.filePath(QString::fromLatin1(name));
    EXPECT_TRUE(WriteFile(path, RasterBytes(layout, value)));
    return path;
  }

  QTemporaryDir dir;
};

} // namespace

TEST_F(RasterTest, EveryCellTypeByteOrderCellOrderAndLoadReadsTheSameGrid)
{
  // Integral cells hold integral values: the surface without its half term.
  auto const integral = [](long r, long c) { return 10.0 * r + c; };
  for (int cellType = 0; cellType <= 5; ++cellType)
    for (int order = 0; order <= 3; ++order)
      for (int variant = 0; variant < 4; ++variant) {
        bool const swap = variant & 1, whole = variant & 2;
        SCOPED_TRACE(testing::Message() << "cell type " << cellType << ", order " << order << ", swap " << swap
                                        << ", whole " << whole);
        Layout layout = Small(order, cellType, swap);
        layout.loadWhole = whole;
        CSimpleGriddedData grid(layout);
        QString const name = Write("grid.bin", layout, integral);
        grid.InitializeGridFile(CString(name));
        grid.LoadData();
        if (whole) {
          ASSERT_TRUE(QFile::remove(name)) << "a loaded grid needs its file no longer";
        }
        EXPECT_EQ(grid.BilinearInterpolation(10.0, 20.0), 0.0);    // south-west node
        EXPECT_EQ(grid.BilinearInterpolation(13.0, 24.0), 34.0);   // north-east node
        EXPECT_EQ(grid.BilinearInterpolation(11.0, 23.0), 13.0);   // inner node
        EXPECT_EQ(grid.BilinearInterpolation(12.5, 21.25), 26.25); // between nodes
      }
}

TEST_F(RasterTest, BlendsTheFourCornersByTheirDistances)
{
  Layout const layout = Small(1, 1, false);
  CSimpleGriddedData grid(layout);
  grid.InitializeGridFile(CString(Write("grid.bin", layout)));
  struct Row
  {
    double lat, lon, height;
  };
  Row const rows[] = {
    {10.0, 20.0, 0.0},      // a node
    {10.25, 20.5, 3.0625},  // corners 0, 1, 10, 11.5 weighed 3/8, 3/8, 1/8, 1/8
    {11.5, 22.0, 18.5},     // on a column line: between two nodes only
    {12.0, 21.75, 23.5},    // on a row line
    {13.0, 22.5, 36.25},    // on the north edge
    {11.5, 24.0, 22.0},     // on the east edge
    {13.0, 24.0, 40.0},     // the north-east corner
    {12.999, 23.999, 10.0 * 2.999 + 3.999 + 0.5 * 2.999 * 3.999}, // just inside it
  };
  for (Row const & r : rows)
    EXPECT_NEAR(grid.BilinearInterpolation(r.lat, r.lon), r.height, 1e-12) << r.lat << " " << r.lon;
}

TEST_F(RasterTest, OutsideTheGridOrNearMissingDataGivesTheNoDataValue)
{
  Layout const layout = Small(1, 1, false);
  // One node without data.
  auto const holed = [](long r, long c) { return r == 2 && c == 2 ? 999.0 : Surface(r, c); };
  CSimpleGriddedData grid(layout);
  grid.InitializeGridFile(CString(Write("grid.bin", layout, holed)));
  double const nan = std::numeric_limits<double>::quiet_NaN();
  struct Row
  {
    double lat, lon;
  };
  Row const outside[] = {
    {9.999, 21.0}, {11.0, 19.999}, {14.0, 21.0}, {11.0, 25.0}, // a cell beyond the last node
    {13.5, 21.0}, {11.0, 24.5},                                // past the last node, inside the last cell
    {1e300, 21.0}, {nan, 21.0}, {11.0, nan},
    {12.0, 22.0}, {11.5, 21.5}, {12.5, 22.5},                  // touching the node without data
  };
  for (Row const & r : outside)
    EXPECT_EQ(grid.BilinearInterpolation(r.lat, r.lon), CSimpleGriddedData::kNoDataValue) << r.lat << " " << r.lon;
  // A cell that doesn't touch it still blends.
  EXPECT_EQ(grid.BilinearInterpolation(10.5, 20.5), 5.625);
}

TEST_F(RasterTest, SnappingTakesTheNodeWithinTheTolerance)
{
  Layout layout = Small(1, 1, false);
  layout.snap = true;
  CSimpleGriddedData grid(layout);
  grid.InitializeGridFile(CString(Write("grid.bin", layout)));
  double const near = 0.5e-5;
  EXPECT_EQ(grid.BilinearInterpolation(11.0 + near, 22.0 - near), Surface(1, 2));
  EXPECT_EQ(grid.BilinearInterpolation(13.0 - near, 24.0 - near), Surface(3, 4)); // snaps onto the last node
  // One axis snaps, the other blends.
  EXPECT_EQ(grid.BilinearInterpolation(11.0 + near, 22.5), 0.5 * (Surface(1, 2) + Surface(1, 3)));
  // Beyond the tolerance no snap.
  double const far = 2e-5;
  EXPECT_NE(grid.BilinearInterpolation(11.0 + far, 22.0), Surface(1, 2));
  // Without the flag, no snap either.
  CSimpleGriddedData plain(Small(1, 1, false));
  plain.InitializeGridFile(CString(Write("plain.bin", Small(1, 1, false))));
  EXPECT_NE(plain.BilinearInterpolation(11.0 + near, 22.0), Surface(1, 2));
}

TEST_F(RasterTest, ShortAndMissingFilesRaiseWithTheirTexts)
{
  Layout layout = Small(1, 1, false);
  QByteArray bytes = RasterBytes(layout, Surface);
  bytes.chop(8); // the north-east node is missing
  QString const shortName = dir.filePath("short.bin");
  ASSERT_TRUE(WriteFile(shortName, bytes));

  CSimpleGriddedData cellwise(layout);
  cellwise.InitializeGridFile(CString(shortName));
  EXPECT_EQ(cellwise.BilinearInterpolation(10.0, 20.0), 0.0);
  layout.loadWhole = true;
  CSimpleGriddedData whole(layout);
  whole.InitializeGridFile(CString(shortName));
  CSimpleGriddedData never(layout);
  // Counts a hostile data file may give: checked before any allocation or index.
  Layout huge = layout;
  huge.rows = huge.columns = 1L << 40;
  CSimpleGriddedData hugeWhole(huge);
  hugeWhole.InitializeGridFile(CString(shortName));
  huge.loadWhole = false;
  CSimpleGriddedData hugeCellwise(huge);
  hugeCellwise.InitializeGridFile(CString(shortName));
  ExpectFailures({
    {"counts beyond the file", [&] { hugeWhole.LoadData(); }, 59, "CSimpleGriddedData::LoadData",
     "Grid file data doesn't match specified size."},
    {"counts beyond any index", [&] { hugeCellwise.BilinearInterpolation(10.0, 20.0); }, 59,
     "CSimpleGriddedData::BilinearInterpolation", "Grid interpolation failure."},
    {"cell past the end", [&] { cellwise.BilinearInterpolation(13.0, 24.0); }, 59,
     "CSimpleGriddedData::BilinearInterpolation", "Grid interpolation failure."},
    {"whole load of a short file", [&] { whole.LoadData(); }, 59, "CSimpleGriddedData::LoadData",
     "Grid file data doesn't match specified size."},
    {"no such file", [&] { never.InitializeGridFile(CString(dir.filePath("none.bin"))); }, 10,
     "CSimpleGriddedData::InitializeGridFile", "Cannot open specified grid data file."},
    {"read before set-up", [&] { never.BilinearInterpolation(10.0, 20.0); }, 59,
     "CSimpleGriddedData::BilinearInterpolation", "Grid interpolation failure."},
  });
  EXPECT_FALSE(whole.IsGridReady());
}

// The raster models

namespace {

struct ModelLayout
{
  CHeightModel::Type type;
  Layout layout;
};

std::vector<ModelLayout> const kModelLayouts = {
  {CHeightModel::kGEOCOL04, {-4.983333, -79.983333, 0.03333333333333333, 0.03333333333333333, 600, 420,
                             CSimpleGriddedData::kSouthWestFirst, CSimpleGriddedData::kDoubleCell, false, 48, false,
                             false}},
  {CHeightModel::kGSIGEO2000, {20.0, 120.0, 0.016666666666666666, 0.025, 1801, 1201,
                               CSimpleGriddedData::kSouthWestFirst, CSimpleGriddedData::kDoubleCell, false, 48,
                               false, true}},
  {CHeightModel::kMGCV04, {3.0, -74.0, 0.008333333333333333, 0.008333333333333333, 1201, 1561,
                           CSimpleGriddedData::kNorthWestFirst, CSimpleGriddedData::kFloatCell, true, 1364, false,
                           false}},
  {CHeightModel::kIGG2005, {35.0, -10.0, 0.025, 0.025, 360, 560, CSimpleGriddedData::kSouthWestFirst,
                            CSimpleGriddedData::kDoubleCell, false, 48, false, false}},
  {CHeightModel::kIBERGEO95, IBERGEO95Layout()},
};

std::unique_ptr<CSimpleRasterModel> RasterModel(CHeightModel::Type type)
{
  return std::unique_ptr<CSimpleRasterModel>(
    dynamic_cast<CSimpleRasterModel *>(CHeightModelFactory::CreateHeightModel(type)));
}

void SetFile(CHeightModel & model, QString const & path, QString const & file)
{
  model.GetParameters().SetString("path", CString(path));
  model.GetParameters().SetString("file", CString(file));
}

// Restores the process-wide data path.
struct DataPathGuard
{
  CString saved = DB::CDataSource::GetDataPath();
  ~DataPathGuard() { DB::CDataSource::SetDataPath(saved); }
};

} // namespace

TEST_F(RasterTest, EachRasterModelHasItsPublishersLayout)
{
  for (ModelLayout const & m : kModelLayouts) {
    auto const model = RasterModel(m.type);
    ASSERT_NE(model, nullptr) << m.type;
    auto const fields = [](Layout const & l) {
      return std::tuple(l.south, l.west, l.rowSpacing, l.columnSpacing, l.rows, l.columns, int(l.order),
                        int(l.cellType), l.swap, l.startOffset, l.loadWhole, l.snap);
    };
    EXPECT_EQ(fields(model->GetLayout()), fields(m.layout)) << m.type;
  }
}

TEST_F(RasterTest, AModelFindsItsFileByNameThenByTheDataPathItWasBuiltWith)
{
  DataPathGuard guard;
  Write("iber.bin", IBERGEO95Layout());
  ML::CGeodeticPoint const node(-10.0 + 2 * 0.125, 35.5 + 3 * 0.125, 0.0);

  // "path" and "file" joined with a separator where the path lacks one.
  for (QString const & path : {dir.path(), dir.path() + "/"}) {
    CIBERGEO95 model;
    SetFile(model, path, "iber.bin");
    EXPECT_EQ(model.GridFileName(), CString(dir.path() + "/iber.bin"));
    EXPECT_EQ(model.Interpolate(node), Surface(3, 2));
  }

  // The data path, joined by plain concatenation, as it was when the model was built.
  DB::CDataSource::SetDataPath(CString(dir.path() + "/"));
  CIBERGEO95 built;
  DB::CDataSource::SetDataPath(CString("/nowhere/"));
  CIBERGEO95 late;
  SetFile(built, "", "iber.bin");
  SetFile(late, "", "iber.bin");
  EXPECT_EQ(built.GetGridDataPath(), CString(dir.path() + "/"));
  EXPECT_EQ(built.Interpolate(node), Surface(3, 2));
  // A copy keeps the path it came with.
  CIBERGEO95 const copy(built);
  EXPECT_EQ(copy.Interpolate(node), Surface(3, 2));
  ExpectFailures({
    {"data path of the day", [&] { late.Interpolate(node); }, 10, "CSimpleGriddedData::InitializeGridFile",
     "Cannot open specified grid data file."},
  });
}

TEST_F(RasterTest, AModelReadsAgainWhenItsFileChanges)
{
  Write("a.bin", IBERGEO95Layout());
  Write("b.bin", IBERGEO95Layout(), [](long r, long c) { return -Surface(r, c); });
  CIBERGEO95 model;
  ML::CGeodeticPoint const node(-10.0 + 0.125, 35.5 + 0.25, 0.0);
  SetFile(model, dir.path(), "a.bin");
  EXPECT_EQ(model.Interpolate(node), Surface(2, 1));
  model.GetParameters().SetString("file", CString("b.bin"));
  EXPECT_EQ(model.Interpolate(node), -Surface(2, 1));
  // A missing file fails, and a model set right again recovers.
  model.GetParameters().SetString("file", CString("none.bin"));
  EXPECT_EQ(Raised([&] { model.Interpolate(node); }).GetErrorCode(), 10);
  model.GetParameters().SetString("file", CString("a.bin"));
  EXPECT_EQ(model.Interpolate(node), Surface(2, 1));
}

TEST_F(RasterTest, AModelRaisesOutsideItsGridAndItsEnvelope)
{
  Write("iber.bin", IBERGEO95Layout(), [](long r, long c) { return r == 40 && c == 60 ? 999.0 : Surface(r, c); });
  CIBERGEO95 model;
  EXPECT_EQ(model.Interpolate(ML::CGeodeticPoint(0.0, 40.0, 0.0)), 0.0) << "unset parameters give 0";
  SetFile(model, dir.path(), "iber.bin");

  ML::CEnvelope envelope(ML::kGeodeticPoint);
  envelope.SetAlwaysAccept(false);
  envelope.GetMinPoint()->SetInternals(-5.0, 36.0, -1000.0);
  envelope.GetMaxPoint()->SetInternals(5.0, 44.0, 1000.0);
  CIBERGEO95 bounded(model);
  bounded.SetEnvelope(envelope);

  char const * const location = "CIBERGEO95::Interpolate";
  ExpectFailures({
    {"west of the grid", [&] { model.Interpolate(ML::CGeodeticPoint(-10.0625, 40.0, 0.0)); }, 43, location,
     "No grid data exists for that location."},
    {"past the east edge", [&] { model.Interpolate(ML::CGeodeticPoint(5.0625, 40.0, 0.0)); }, 43, location,
     "No grid data exists for that location."},
    {"north of the grid", [&] { model.Interpolate(ML::CGeodeticPoint(0.0, 44.6, 0.0)); }, 43, location,
     "No grid data exists for that location."},
    {"next to a node without data", [&] { model.Interpolate(ML::CGeodeticPoint(-2.5 + 0.0625, 40.5, 0.0)); }, 43,
     location, "No grid data exists for that location."},
    {"outside the envelope", [&] { bounded.Interpolate(ML::CGeodeticPoint(-6.0, 40.0, 0.0)); }, 43, location,
     "Point is not within the specified envelope."},
  });
  EXPECT_EQ(bounded.Interpolate(ML::CGeodeticPoint(-4.0, 40.0, 0.0)), Surface(36, 48));
  // The edges of the grid are nodes like any other.
  EXPECT_EQ(model.Interpolate(ML::CGeodeticPoint(5.0, 44.5, 0.0)), Surface(72, 120));
  EXPECT_EQ(model.Interpolate(ML::CGeodeticPoint(-10.0, 35.5, 0.0)), Surface(0, 0));
}
