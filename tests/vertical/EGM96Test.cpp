// The EGM96 model on the raster the build makes from proj-data's
// egm96_15.gtx, against PROJ's vgridshift on that grid
// (scripts/gen-geoid-refs.sh): equal at the nodes to the centimetre the
// raster keeps; between nodes the library's 4 by 4 spline and PROJ's
// bilinear value part by what is measured here; near the poles both are
// bilinear.
#include <velmora/vertical/HeightModels.h>

#include "../support/ReferenceData.h"
#include "../support/TestSupport.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <filesystem>

using namespace Velmora;
using namespace Velmora::CS::VR;
using namespace VelmoraTest;

namespace {

#ifdef VELMORA_EGM96_FILE
char const kRaster[] = VELMORA_EGM96_FILE;
#else
char const kRaster[] = "";
#endif

constexpr double kRounding = 0.005 + 1e-6; // metres: the raster keeps centimetres
// Spline against bilinear between nodes, as measured on the 300 random points
// of the reference file: 0.25 m at most (where the geoid bends most), 4.2 cm
// for nine points in ten, 0.9 cm in the median.
constexpr double kSplineFromBilinear = 0.3;

CEGM96 Model(std::string const & file)
{
  CEGM96 model;
  std::filesystem::path const path(file);
  model.GetParameters().SetString(CString("path"), CString(QString::fromStdString(path.parent_path().string())));
  model.GetParameters().SetString(CString("file"), CString(QString::fromStdString(path.filename().string())));
  return model;
}

} // namespace

TEST(EGM96, AgreesWithProjAtNodesAndNearThePolesAndStaysNearItBetween)
{
  if (!QFile::exists(kRaster))
    GTEST_SKIP() << "no EGM96 raster in this build (proj-data's egm96_15.gtx missing)";
  CEGM96 const model = Model(kRaster);
  std::vector<double> between;
  for (std::vector<double> const & r : ReadRows("geoid_egm96.txt", 4)) {
    double const n = model.Interpolate(ML::CGeodeticPoint(r[1], r[2], 0.0));
    if (r[0] == 1.0)
      between.push_back(std::fabs(n - r[3]));
    else
      EXPECT_NEAR(n, r[3], kRounding) << r[1] << " " << r[2];
  }
  ASSERT_EQ(between.size(), 300u);
  std::sort(between.begin(), between.end());
  EXPECT_LE(between.back(), kSplineFromBilinear);
  EXPECT_LE(between[between.size() * 9 / 10], 0.05) << "nine in ten";
  EXPECT_LE(between[between.size() / 2], 0.015) << "median";
}

TEST(EGM96, AWrongSizedRasterIsRefused)
{
  std::filesystem::path const file = std::filesystem::temp_directory_path() / "velmora_egm96_short.dac";
  std::FILE * f = std::fopen(file.c_str(), "wb");
  std::fputs("too short", f);
  std::fclose(f);
  CEGM96 const model = Model(file.string());
  ExpectFailures({{"short", [&] { model.Interpolate(ML::CGeodeticPoint(0.0, 0.0, 0.0)); }, 59, "CEGM96::SetupInner",
                   "Grid file data doesn't match specified size."}});
  std::filesystem::remove(file);
}
