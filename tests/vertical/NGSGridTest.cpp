// The NGS grid readers on files of tools/make-test-grids.py: binary files of
// a biquadratic surface, which the quadratic window reproduces exactly,
// found through a .par list and in a folder; the titled GEOID96 format of
// the same surface; VERTCON's titled millimetres of a plane; and what their
// edges and damaged files give.
#include <velmora/vertical/HeightModels.h>
#include <velmora/vertical/VerticalReference.h>

#include "../support/ReferenceData.h"
#include "../support/TestSupport.h"

#include <cmath>
#include <memory>

using namespace Velmora;
using namespace Velmora::CS::VR;
using namespace VelmoraTest;

namespace {

constexpr double kFloat = 1e-5; // metres: the files keep 32-bit floats

// The files' surface, in metres (tools/make-test-grids.py).
double Surface(double lon, double lat)
{
  double const x = (lon - 250.0) / 0.25, y = (lat - 30.0) / 0.25;
  return -20.0 + 0.5 * x + 0.25 * y + 0.01 * x * x - 0.02 * y * y + 0.003 * x * y;
}

template <class T>
std::unique_ptr<T> Grids(std::string const & path, char const * extension)
{
  auto model = std::make_unique<T>();
  model->GetParameters().SetString(CString("path"), CString(QString::fromStdString(TestData("grids/ngs/" + path))));
  model->GetParameters().SetString(CString("extension"), CString(extension));
  return model;
}

double At(CHeightModel const & model, double lon, double lat)
{
  return model.Interpolate(ML::CGeodeticPoint(lon, lat, 0.0));
}

} // namespace

TEST(NGSGrids, BinaryFilesOfAListOrAFolderReproduceTheirSurface)
{
  for (auto const & model : {Grids<CGEOID03>("list.par", ".bin"), Grids<CGEOID03>("", ".bin")}) {
    for (double const lon : {250.1, 251.3, 252.6, 253.9}) // both files, the open one changing
      for (double const lat : {30.05, 30.9, 31.7})
        EXPECT_NEAR(At(*model, lon, lat), Surface(lon, lat), kFloat) << lon << " " << lat;
    // West longitudes count from 360; the east edge still has a full window.
    EXPECT_NEAR(At(*model, -107.4, 31.2), Surface(252.6, 31.2), kFloat);
    EXPECT_NEAR(At(*model, 254.0, 31.0), Surface(254.0, 31.0), kFloat);
    EXPECT_EQ(model->GetGridFiles().size(), 2u);
  }
}

TEST(NGSGrids, TheTitledGeoid96FormatReproducesItsSurface)
{
  auto const model = Grids<CGEOID96>("titled", ".geo");
  for (double const lon : {250.0, 250.4, 253.3, 256.0})
    for (double const lat : {30.0, 30.6, 32.0})
      EXPECT_NEAR(At(*model, lon, lat), Surface(lon, lat), kFloat) << lon << " " << lat;
}

TEST(NGSGrids, VertconGivesWholeMillimetresOfItsPlaneAndMovesHeightsBetweenTheDatums)
{
  CNGVD29 ngvd29;
  ngvd29.GetParameters().SetString(CString("path"), CString(QString::fromStdString(TestData("grids/ngs/vertcon"))));
  ngvd29.GetParameters().SetString(CString("extension"), CString(".94"));
  for (double const lon : {-110.0, -108.37, -104.0})
    for (double const lat : {30.0, 31.13, 32.0}) {
      double const mm = 100.0 + 3.0 * (lon + 110.0) / 0.25 + 5.0 * (lat - 30.0) / 0.25;
      EXPECT_NEAR(ngvd29.Interpolate(ML::CGeodeticPoint(lon, lat, 0.0)), std::trunc(mm) * 0.001, 1e-9);
    }
  // NGVD29 to NAVD88 without models adds the difference; back, it takes it off.
  CNAVD88 navd88;
  CVerticalReference const from(&ngvd29, nullptr), to(&navd88, nullptr);
  ASSERT_EQ(CVerticalReference::GetConversionMode(&from, &to), 5);
  ML::CGeodeticPoint point(-109.0, 31.0, 10.0);
  CVerticalReference::AdjustHeight(&from, &to, CVerticalReference::VertAdjustMode(5), point);
  EXPECT_NEAR(point.GetHgt().GetInternal(), 10.0 + 0.132, 1e-9);
}

TEST(NGSGrids, EdgesAndDamagedFilesRaiseTheirCodes)
{
  auto const binary = Grids<CGEOID03>("list.par", ".bin");
  auto const shortFile = Grids<CGEOID96>("short", ".geo");
  auto const otherFile = Grids<CGEOID96>("other", ".geo");
  char const * const size = "Grid file data doesn't match specified size.";
  ExpectFailures({
    // The window of the last row reaches past the file.
    {"north edge", [&] { At(*binary, 251.0, 32.0); }, 59, "CGEOID03::Interpolate", "Grid interpolation failure."},
    {"no file there", [&] { At(*binary, 251.0, 40.0); }, 10, "CGEOID03::Interpolate",
     "No grid file exists for that location."},
    {"length", [&] { At(*shortFile, 251.0, 31.0); }, 59, "CNGSGriddedData::InitializeGridFile", size},
    {"identifier", [&] { At(*otherFile, 251.0, 31.0); }, 59, "CNGSGriddedData::InitializeGridFile",
     "During read of title and File ID."},
  });
}

// EGM96 over the Alps in both formats (tools/make-test-grids.py) against
// PROJ's vgridshift on the gtx they were copied from
// (scripts/gen-geoid-refs.sh): equal at the nodes; between them the
// quadratic window and PROJ's bilinear differ by a measured amount: at most
// 0.34 m for the binary reader's window (from the node below) and 0.29 m for
// the titled reader's (centred on the nearest node), on undulations that
// change by up to 3.4 m from node to node.
TEST(NGSGrids, EgmValuesAgreeWithProjAtNodes_QuadraticWithin35cmOfBilinearBetween)
{
  constexpr double kQuadraticFromBilinear = 0.35; // metres
  std::vector<std::unique_ptr<CHeightModel>> models;
  models.push_back(Grids<CGEOID03>("egm96", ".bin"));
  models.push_back(Grids<CGEOID96>("egm96titled", ".geo"));
  for (auto const & model : models) {
    double worst = 0.0;
    for (std::vector<double> const & r : ReadRows("geoid_egm96_alps.txt", 4)) {
      double const n = At(*model, r[1], r[2]);
      if (r[0] == 0.0)
        EXPECT_NEAR(n, r[3], kFloat) << r[1] << " " << r[2];
      else
        worst = std::max(worst, std::fabs(n - r[3]));
    }
    EXPECT_LE(worst, kQuadraticFromBilinear);
  }
}
