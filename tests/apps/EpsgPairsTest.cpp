// The tool on the data file the build made from the EPSG registry, against
// cs2cs given the same EPSG codes: systems in each unit the registry uses,
// read and written in those units (or in metres and degrees with --si), and
// areas of use across the antimeridian. The library's conversions themselves
// are checked system by system by the EPSG sweep; this is the tool's side.
#include <gtest/gtest.h>

#include "CliSupport.h"

#include <QFile>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

using namespace VelmoraTest;

namespace {

// A grid of points around (x, y), `step` apart, three by three.
std::vector<Row> Around(double x, double y, double step)
{
  std::vector<Row> points;
  for (int i = -1; i <= 1; ++i)
    for (int j = -1; j <= 1; ++j)
      points.push_back({x + i * step, y + j * step, 0.0});
  return points;
}

QString ShippedData()
{
#ifdef VELMORA_SHIPPED_DATA
  return QString(VELMORA_SHIPPED_DATA);
#else
  return QString();
#endif
}

constexpr double kFootUS = 1200.0 / 3937.0;  // metres
constexpr double kFoot = 0.3048;             // metres
constexpr double kGoldCoastFoot = 0.3047997101815088;
constexpr double kSearsYard = 0.914398414616029;
constexpr double kDegreesPerGrad = 0.9;

struct UnitCase
{
  char const * what;
  QStringList tool;  // the tool's options after "convert"
  QStringList cs2cs; // cs2cs's flags and the two EPSG codes
  double x, y, step; // where the points are, in the input's units
  bool geodeticOutput;
  double unit; // metres of the output unit: 1 mm is 0.001 / unit of it
  int dimensions = 2; // three take the point path
};

UnitCase const kUnitCases[] = {
  {"NAD83 to Delaware (ftUS)", {"--from", "EPSG:4269", "--to", "EPSG:2235"}, {"-r", "EPSG:4269", "EPSG:2235"},
   -75.5, 39.0, 0.2, false, kFootUS},
  {"Delaware (ftUS) to NAD83 by --inverse", {"--from", "EPSG:4269", "--to", "EPSG:2235", "--inverse"},
   {"-s", "EPSG:2235", "EPSG:4269"}, 600000.0, 400000.0, 20000.0, true, 1.0},
  {"NAD83 to Delaware in metres by --si", {"--from", "EPSG:4269", "--to", "EPSG:2235", "--si"},
   {"-r", "EPSG:4269", "+to", "+proj=tmerc", "+lat_0=38", "+lon_0=-75.4166666666667", "+k=0.999995",
    "+x_0=200000.0001016", "+y_0=0", "+ellps=GRS80", "+units=m"},
   -75.5, 39.0, 0.2, false, 1.0},
  {"NAD83 to New York Long Island (ftUS, Lambert)", {"--from", "EPSG:4269", "--to", "EPSG:2263"},
   {"-r", "EPSG:4269", "EPSG:2263"}, -73.5, 40.8, 0.2, false, kFootUS},
  {"NAD83 to Arizona East (international foot)", {"--from", "EPSG:4269", "--to", "EPSG:2222"},
   {"-r", "EPSG:4269", "EPSG:2222"}, -110.0, 33.0, 0.5, false, kFoot},
  {"Accra to Ghana National Grid (Gold Coast foot)", {"--from", "EPSG:4168", "--to", "EPSG:2136"},
   {"-r", "EPSG:4168", "EPSG:2136"}, -1.0, 6.5, 0.5, false, kGoldCoastFoot},
  {"NZGD49 to North Island Grid (British yard)", {"--from", "EPSG:4272", "--to", "EPSG:27291"},
   {"-r", "EPSG:4272", "EPSG:27291"}, 175.5, -39.0, 0.5, false, kSearsYard},
  {"NTF (Paris) in degrees by --si to NTF", {"--from", "EPSG:4807", "--to", "EPSG:4275", "--si"},
   {"-r", "-s", "EPSG:4807", "EPSG:4275"}, 0.5, 46.5, 0.5, true, 1.0},
  // Pseudo-Mercator: spherical formulas on WGS 84's own latitudes, by the
  // route to the twin of WGS 84 on the sphere of a.
  {"WGS 84 to Pseudo-Mercator", {"--from", "EPSG:4326", "--to", "EPSG:3857"}, {"-r", "EPSG:4326", "EPSG:3857"},
   100.0, 0.0, 40.0, false, 1.0},
  {"ETRS89 to Pseudo-Mercator", {"--from", "EPSG:4258", "--to", "EPSG:3857"}, {"-r", "EPSG:4258", "EPSG:3857"},
   10.0, 60.0, 20.0, false, 1.0},
  // Areas across the antimeridian: every point of the area converts.
  {"Fiji 1986 to Fiji Map Grid", {"--from", "EPSG:4720", "--to", "EPSG:3460"}, {"-r", "EPSG:4720", "EPSG:3460"},
   -179.7, -18.0, 0.4, false, 1.0},
  {"Fiji 1986 to Fiji Map Grid with heights", {"--from", "EPSG:4720", "--to", "EPSG:3460"},
   {"-r", "EPSG:4720", "EPSG:3460"}, -179.7, -18.0, 0.4, false, 1.0, 3},
  {"Pulkovo 1942 to Gauss-Kruger zone 60", {"--from", "EPSG:4284", "--to", "EPSG:3389"},
   {"-r", "-s", "EPSG:4284", "EPSG:3389"}, 179.8, 66.0, 0.5, false, 1.0},
  {"RGWF96 to UTM zone 1S", {"--from", "EPSG:8900", "--to", "EPSG:8903"}, {"-r", "EPSG:8900", "EPSG:8903"},
   -178.0, -14.0, 0.3, false, 1.0},
};

} // namespace

TEST(ShippedData, EachSystemsOwnUnitsAgreeWithCs2csToAMillimetre)
{
  if (ShippedData().isEmpty() || !QFile::exists(ShippedData()))
    GTEST_SKIP() << "no EPSG registry: the data file was not built";
  for (UnitCase const & u : kUnitCases) {
    ProjCase c;
    c.what = u.what;
    c.tool = u.tool + QStringList{"--strict"};
    c.cs2cs = u.cs2cs;
    c.points = Around(u.x, u.y, u.step);
    c.geodeticOutput = u.geodeticOutput;
    c.tolerance = 0.001 / u.unit;
    c.dimensions = u.dimensions;
    ExpectAgreesWithProj(c, ShippedData());
  }
}

// cs2cs reads every geographic system in degrees; the tool reads NTF (Paris)
// in its own grads, counted from Paris, so its input is cs2cs's over 0.9.
TEST(ShippedData, GradsInAreTheSystemsOwnUnit)
{
  if (ShippedData().isEmpty() || !QFile::exists(ShippedData()))
    GTEST_SKIP() << "no EPSG registry: the data file was not built";
  std::vector<Row> const degrees = Around(0.5, 46.5, 0.5);
  std::vector<Row> grads = degrees;
  for (Row & r : grads)
    r = {r[0] / kDegreesPerGrad, r[1] / kDegreesPerGrad, 0.0};
  ProgramRun const ours = RunTool(
    {"convert", "--data", ShippedData(), "--precision", "10", "--from", "EPSG:4807", "--to", "EPSG:4275"},
    PointsText(grads, 2));
  ProgramRun const theirs = RunProgram("cs2cs", {"-d", "10", "-r", "-s", "EPSG:4807", "EPSG:4275"}, PointsText(degrees, 2));
  ASSERT_EQ(ours.exitCode, 0) << ours.err.toStdString();
  std::vector<Row> const a = ParseRows(ours.out), b = ParseRows(theirs.out);
  ASSERT_EQ(a.size(), degrees.size());
  ASSERT_EQ(b.size(), degrees.size());
  for (std::size_t i = 0; i < a.size(); ++i)
    EXPECT_LE(Apart(a[i], b[i], true), 0.001) << i;
  // Back the other way, the output is in grads again.
  ProgramRun const back = RunTool(
    {"convert", "--data", ShippedData(), "--precision", "10", "--from", "EPSG:4807", "--to", "EPSG:4275", "--inverse"},
    ours.out);
  std::vector<Row> const c = ParseRows(back.out);
  ASSERT_EQ(c.size(), grads.size());
  for (std::size_t i = 0; i < c.size(); ++i)
    EXPECT_NEAR(c[i][0], grads[i][0], 1e-9) << i;
}

// DHDN to ETRS89: of the registry's routes the tool takes the national grid
// BETA2007 where it finds it, and agrees with cs2cs, which takes it too.
TEST(ShippedData, GridsAreFoundWhereUsersKeepThemAndTakenFirst)
{
  if (ShippedData().isEmpty() || !QFile::exists(ShippedData()) || !QFile::exists("/usr/share/proj/BETA2007.gsb"))
    GTEST_SKIP() << "no EPSG registry or no BETA2007 grid (proj-data)";
  ProjCase c;
  c.what = "DHDN to ETRS89 through BETA2007";
  c.tool = QStringList{"--from", "EPSG:4314", "--to", "EPSG:4258"};
  c.cs2cs = QStringList{"-r", "-s", "EPSG:4314", "EPSG:4258"};
  c.points = Around(10.0, 51.0, 1.5);
  c.geodeticOutput = true;
  c.tolerance = 1e-9 * 111000.0; // 1e-9 degree on the ground
  ExpectAgreesWithProj(c, ShippedData());

  // --grids first, then VELMORA_GRIDS, then PROJ's folders.
  QTemporaryDir folder;
  ASSERT_TRUE(QFile::link("/usr/share/proj/BETA2007.gsb", folder.filePath("BETA2007.gsb")));
  QStringList const convert{"convert", "--data", ShippedData(), "--from", "EPSG:4314", "--to", "EPSG:4258", "-v", "10", "51"};
  ProgramRun const plain = RunTool(convert);
  EXPECT_TRUE(plain.err.contains("EPSG:15948") && plain.err.contains("grid /usr/share/proj/BETA2007.gsb"))
    << plain.err.toStdString();
  ProgramRun const given = RunTool(convert + QStringList{"--grids", folder.path()});
  EXPECT_TRUE(given.err.contains("grid " + folder.filePath("BETA2007.gsb").toUtf8())) << given.err.toStdString();
  ProgramRun const environment =
    RunProgram("env", QStringList{"VELMORA_GRIDS=" + folder.path(), QString(VELMORA_CLI_PATH)} + convert);
  EXPECT_TRUE(environment.err.contains("grid " + folder.filePath("BETA2007.gsb").toUtf8())) << environment.err.toStdString();
  EXPECT_EQ(given.out, plain.out);

  // A route whose grid is nowhere: passed over while another runs, named when given.
  ProgramRun const british =
    RunTool({"convert", "--data", ShippedData(), "--from", "EPSG:27700", "--to", "EPSG:4230", "-v", "400000", "300000"});
  EXPECT_EQ(british.exitCode, 0);
  EXPECT_TRUE(british.err.contains("grid file 'OSTN15_NTv2_OSGBtoETRS.gsb' not found")) << british.err.toStdString();
  ProgramRun const missing =
    RunTool({"convert", "--data", ShippedData(), "--from", "EPSG:4267", "--to", "EPSG:4269", "--route", "EPSG:1313",
             "--grids", folder.path(), "-100", "40"});
  EXPECT_EQ(missing.exitCode, 2);
  EXPECT_EQ(missing.err.toStdString(), "velmora: grid file 'NTv2_0.gsb' of EPSG:1313 not found (give its folder with "
                                       "--grids or VELMORA_GRIDS)\n");
}

// Ellipsoidal heights to EGM96 heights through the geoid raster that ships
// beside the data file: as cs2cs within what the spline and PROJ's bilinear
// value part (0.25 m at most over the world, see the EGM96 test), and back.
TEST(ShippedData, EllipsoidalHeightsBecomeEgm96HeightsAndBack)
{
  if (ShippedData().isEmpty() || !QFile::exists(QFileInfo(ShippedData()).dir().filePath("WW15MGH.DAC")))
    GTEST_SKIP() << "no data file or no EGM96 raster in this build";
  std::vector<Row> points = Around(10.0, 50.0, 0.3);
  for (Row & p : points)
    p[2] = 100.0;
  QStringList const convert{"convert", "--data", ShippedData(), "--precision", "6", "--from", "EPSG:4979", "--to",
                            "EPSG:9707"};
  ProgramRun const ours = RunTool(convert, PointsText(points, 3));
  ProgramRun const theirs = RunProgram("cs2cs", {"-d", "6", "-r", "-s", "EPSG:4979", "EPSG:9707"}, PointsText(points, 3));
  ProgramRun const back = RunTool(convert + QStringList{"--inverse"}, ours.out);
  std::vector<Row> const a = ParseRows(ours.out), b = ParseRows(theirs.out), c = ParseRows(back.out);
  ASSERT_EQ(a.size(), points.size()) << ours.err.toStdString();
  ASSERT_EQ(b.size(), points.size()) << theirs.err.toStdString();
  ASSERT_EQ(c.size(), points.size()) << back.err.toStdString();
  for (std::size_t i = 0; i < points.size(); ++i) {
    EXPECT_LT(a[i][2], 60.0) << "the geoid lies about 48 m above the ellipsoid there";
    EXPECT_NEAR(a[i][2], b[i][2], 0.25) << i;
    EXPECT_NEAR(c[i][2], 100.0, 1e-6) << i;
  }
}
