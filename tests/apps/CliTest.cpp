// The velmora tool run as a user runs it, on a data file the test writes,
// against PROJ's cs2cs on the same points.
#include "CliSupport.h"
#include "SampleStore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <memory>

using namespace VelmoraTest;

namespace {

// PROJ's forms of the sample systems, longitude first. ED50 shifts to WGS 84
// by EPSG 1133's translations, the one shift the sample file holds.
QStringList const kProjWgs84{"+proj=longlat", "+datum=WGS84"};
QStringList const kProjEd50{"+proj=longlat", "+ellps=intl", "+towgs84=-87,-98,-121"};
QStringList const kProjUtm32Wgs84{"+proj=utm", "+zone=32", "+datum=WGS84"};
QStringList const kProjUtm32Ed50{"+proj=utm", "+zone=32", "+ellps=intl", "+towgs84=-87,-98,-121"};

QStringList Cs2cs(QStringList const & from, QStringList const & to) { return from + QStringList{"+to"} + to; }

// Within 3 degrees of UTM 32's central meridian, across the latitudes of Europe.
std::vector<Row> Zone32Points()
{
  return {{9.0, 45.0, 0.0},     {6.1, 36.2, 12.0},   {11.9, 71.0, 250.5}, {7.25, 50.5, -30.0},
          {10.75, 59.9, 1000.0}, {8.5, 47.37, 400.0}, {11.58, 48.14, 519.0}, {6.96, 50.94, 53.0},
          {10.0, 53.55, 6.0},    {9.19, 45.46, 120.0}, {7.6, 43.7, 0.0},     {12.0, 55.68, 14.0}};
}

// Spread over the ED50 area, far from zone 32 too.
std::vector<Row> EuropePoints()
{
  return {{-9.14, 38.72, 0.0}, {-3.7, 40.42, 650.0}, {2.35, 48.86, 35.0}, {-0.13, 51.5, 10.0},
          {12.5, 41.9, 20.0},  {18.07, 59.33, 28.0}, {23.73, 37.98, 70.0}, {30.52, 50.45, 180.0},
          {24.94, 60.17, 15.0}, {-15.5, 28.1, 0.0},  {47.0, 83.0, 0.0},   {9.0, 45.0, 0.0}};
}

class Cli : public ::testing::Test
{
protected:
  static void SetUpTestSuite()
  {
    s_dir = std::make_unique<QTemporaryDir>();
    ASSERT_TRUE(s_dir->isValid());
    s_data = WriteSampleStore(s_dir->path(), VELMORA_SOURCE_DIR "/data/velmora.xsd");
  }
  static void TearDownTestSuite() { s_dir.reset(); }

  static ProgramRun Tool(QStringList const & arguments, QByteArray const & input = {})
  {
    return RunTool(QStringList{arguments.front(), "--data", s_data} + arguments.mid(1), input);
  }
  // Whether this build of the tool searches routes itself.
  static std::unique_ptr<QTemporaryDir> s_dir;
  static QString s_data;
};

std::unique_ptr<QTemporaryDir> Cli::s_dir;
QString Cli::s_data;

std::string Text(QByteArray const & bytes) { return bytes.toStdString(); }

// Conversions

TEST_F(Cli, ProjectionsAgreeWithProjToAMillimetre)
{
  std::vector<ProjCase> const cases = {
    {"WGS 84 to UTM 32N", {"--from", "EPSG:4326", "--to", "EPSG:32632"}, Cs2cs(kProjWgs84, kProjUtm32Wgs84),
     Zone32Points(), 2, false},
    {"UTM 32N to WGS 84 by --inverse", {"--from", "EPSG:4326", "--to", "EPSG:32632", "--inverse"},
     Cs2cs(kProjUtm32Wgs84, kProjWgs84),
     {{500000.0, 4982950.4, 0}, {270000.0, 4010000.0, 0}, {720000.0, 7880000.0, 0}, {389000.0, 5600000.0, 0}},
     2, true},
    {"ED50 to ED50 / UTM 32N, no shift", {"--from", "EPSG:4230", "--to", "EPSG:23032"},
     Cs2cs(kProjEd50, kProjUtm32Ed50), Zone32Points(), 2, false},
    // Three numbers take the point path; heights pass unchanged on one datum.
    {"WGS 84 to UTM 32N with heights", {"--from", "EPSG:4326", "--to", "EPSG:32632"},
     Cs2cs(kProjWgs84, kProjUtm32Wgs84), Zone32Points(), 3, false},
  };
  for (ProjCase const & c : cases)
    ExpectAgreesWithProj(c, s_data);

  // The height column on one datum is the input's.
  ProgramRun const run = Tool({"convert", "--from", "EPSG:4326", "--to", "EPSG:32632"}, "11.9 71 250.5\n");
  EXPECT_EQ(ParseRows(run.out).at(0)[2], 250.5);
}

TEST_F(Cli, GivenShiftsAgreeWithProjUsingTheSameTranslation)
{
  std::vector<ProjCase> const cases = {
    {"WGS 84 to ED50, shift reversed", {"--from", "EPSG:4326", "--to", "EPSG:4230", "--route", "-EPSG:1133"},
     Cs2cs(kProjWgs84, kProjEd50), EuropePoints(), 2, true},
    {"ED50 to WGS 84, shift forward", {"--from", "EPSG:4230", "--to", "EPSG:4326", "--route", "VM:1"},
     Cs2cs(kProjEd50, kProjWgs84), EuropePoints(), 2, true},
    {"WGS 84 to ED50 / UTM 32N, the suffix form", {"--from", "EPSG:4326", "--to", "EPSG:23032", "--route", "VM:1:reverse"},
     Cs2cs(kProjWgs84, kProjUtm32Ed50), Zone32Points(), 2, false},
    {"ED50 / UTM 32N to WGS 84 / UTM 32N", {"--from", "EPSG:23032", "--to", "EPSG:32632", "--route", "1"},
     Cs2cs(kProjUtm32Ed50, kProjUtm32Wgs84),
     {{500000.0, 4982950.4, 0}, {270000.0, 4010000.0, 0}, {720000.0, 7880000.0, 0}, {389000.0, 5600000.0, 0}},
     2, false},
    // With heights the shift moves through them; PROJ does the same for the
    // horizontal position (the height column is not compared).
    {"WGS 84 to ED50 with heights", {"--from", "EPSG:4326", "--to", "EPSG:4230", "--route", "-VM:1"},
     Cs2cs(kProjWgs84, kProjEd50), EuropePoints(), 3, true},
  };
  for (ProjCase const & c : cases)
    ExpectAgreesWithProj(c, s_data);
}

TEST_F(Cli, RouteNoneConvertsWithoutAShiftAndVerboseSaysWhichRoute)
{
  ProgramRun const plain = Tool({"convert", "--from", "EPSG:4230", "--to", "EPSG:4326", "--route", "none", "--verbose"},
                         "9 45\n");
  EXPECT_EQ(plain.exitCode, 0);
  EXPECT_EQ(Text(plain.out), "9.000000000 45.000000000\n"); // same ellipsoid-free numbers: no shift at all
  EXPECT_TRUE(plain.err.contains("datum shift: none (--route none)")) << Text(plain.err);

  ProgramRun const given = Tool({"convert", "--from", "EPSG:4326", "--to", "EPSG:4230", "--route", "-VM:1", "-v"}, "9 45\n");
  EXPECT_TRUE(given.err.contains("datum shift: given: EPSG:1133 \"ED50 to WGS 84 (1)\" reversed")) << Text(given.err);

  ProgramRun const same = Tool({"convert", "--from", "EPSG:4326", "--to", "EPSG:32632", "-v"}, "9 45\n");
  EXPECT_EQ(same.exitCode, 0);
  EXPECT_TRUE(same.err.contains("datum shift: none (both systems are on datum")) << Text(same.err);

  // A route that does not join the two datums converts, with warnings.
  ProgramRun const wrong = Tool({"convert", "--from", "EPSG:4326", "--to", "EPSG:4230", "--route", "VM:1"}, "9 45\n");
  EXPECT_EQ(wrong.exitCode, 0);
  EXPECT_TRUE(wrong.err.contains("warning: EPSG:1133 \"ED50 to WGS 84 (1)\" starts on datum \"European Datum 1950\""))
    << Text(wrong.err);
  EXPECT_TRUE(wrong.err.contains("warning: the route does not end on the target datum")) << Text(wrong.err);
}

TEST_F(Cli, TheStoresRouteSearchFindsTheShiftBothWays)
{
  // From ED50 the shift's area is the source system's: the store's search
  // takes it. From WGS 84 (area World) only the candidate list has it.
  ProgramRun const ahead = Tool({"convert", "--from", "EPSG:4230", "--to", "EPSG:4326", "-v"}, "9 45\n");
  EXPECT_TRUE(ahead.err.contains("found by the store's route search: EPSG:1133")) << Text(ahead.err);
  ProgramRun const back = Tool({"convert", "--from", "EPSG:4326", "--to", "EPSG:4230", "-v"}, "9 45\n");
  EXPECT_TRUE(back.err.contains("candidate route")) << Text(back.err);
  EXPECT_TRUE(back.err.contains("EPSG:1133 \"ED50 to WGS 84 (1)\" reversed")) << Text(back.err);
  ExpectAgreesWithProj({"WGS 84 to ED50, route found", {"--from", "EPSG:4326", "--to", "EPSG:4230"},
                        Cs2cs(kProjWgs84, kProjEd50), EuropePoints(), 2, true},
                       s_data);

  ProgramRun const routes = Tool({"routes", "--from", "EPSG:4326", "--to", "EPSG:4230"});
  EXPECT_EQ(routes.exitCode, 0);
  EXPECT_EQ(Text(routes.out), "1. -VM:1 \"ED50 to WGS 84 (1)\" (GeocentricTranslation)\n");
}

// Text in and out

TEST_F(Cli, OneLineOutForEachLineInWithTheAskedDecimals)
{
  // Blank lines stay, CR LF ends and commas are read, the last line needs no end.
  QByteArray const input = "9 45\r\n\n  +9.5,\t46.25  \n8.999999999999 0";
  ProgramRun const run = Tool({"convert", "--from", "EPSG:4326", "--to", "EPSG:32632", "--precision", "2"}, input);
  EXPECT_EQ(run.exitCode, 0) << Text(run.err);
  QList<QByteArray> const lines = run.out.split('\n');
  ASSERT_EQ(lines.size(), 5) << Text(run.out);
  EXPECT_EQ(lines[0], "500000.00 4982950.40");
  EXPECT_TRUE(lines[1].isEmpty());
  EXPECT_EQ(lines[2], "538541.40 5121946.30");
  EXPECT_EQ(lines[3], "500000.00 0.00"); // no "-0.00" for a value just below zero
  EXPECT_TRUE(lines[4].isEmpty());

  // Points as arguments: two numbers, negative ones too, or one argument per point.
  ProgramRun const args = Tool({"convert", "--from", "EPSG:32632", "--to", "EPSG:4326", "500000", "4982950.4002"});
  EXPECT_EQ(Text(args.out), "9.000000000 45.000000000\n");
  ProgramRun const two = Tool({"convert", "--from", "EPSG:4326", "--to", "EPSG:4230", "--route", "none", "-3.5", "40"});
  EXPECT_EQ(Text(two.out), "-3.500000000 40.000000000\n") << Text(two.err);
  ProgramRun const lines2 = Tool({"convert", "--from", "EPSG:4326", "--to", "EPSG:4230", "--route", "none", "--precision",
                           "1", "10 50", "11 51 5"});
  EXPECT_EQ(Text(lines2.out), "10.0 50.0\n11.0 51.0 5.0\n") << Text(lines2.err);
}

// Bad input

TEST_F(Cli, AnUnknownCodeIsTheStoresMessage)
{
  ProgramRun const run = Tool({"convert", "--from", "EPSG:4326", "--to", "EPSG:9999"}, "9 45\n");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_TRUE(run.out.isEmpty());
  EXPECT_EQ(Text(run.err),
            "velmora: Specified identifier not found in data source [CDataSource::Get##name]: EPSG/name/9999\n");
  ProgramRun const info = Tool({"info", "XY:1"});
  EXPECT_EQ(info.exitCode, 2);
  EXPECT_EQ(Text(info.err), "velmora: Specified identifier not found in data source [CDataSource::Get##name]: XY/name/1\n");
  ProgramRun const shift = Tool({"convert", "--from", "EPSG:4326", "--to", "EPSG:4230", "--route", "VM:7"}, "9 45\n");
  EXPECT_EQ(shift.exitCode, 2);
  EXPECT_TRUE(shift.err.startsWith("velmora: Specified identifier not found in data source")) << Text(shift.err);
}

TEST_F(Cli, ALineThatIsNotAPointIsToldByNumberAndTheOthersConvert)
{
  QByteArray const input = "9 45\nnine 45\n9\n9 45 1 2\n9 45 x\n9 +-45\n10 50\n";
  ProgramRun const run = Tool({"convert", "--from", "EPSG:4326", "--to", "EPSG:32632", "--precision", "1"}, input);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(Text(run.out), "500000.0 4982950.4\n*\n*\n*\n*\n*\n571666.4 5539109.8\n");
  QList<QByteArray> const errors = run.err.trimmed().split('\n');
  ASSERT_EQ(errors.size(), 5) << Text(run.err);
  EXPECT_EQ(errors[0], "velmora: line 2: not a point (two or three numbers): \"nine 45\"");
  EXPECT_TRUE(errors[1].startsWith("velmora: line 3: "));
  EXPECT_TRUE(errors[2].startsWith("velmora: line 4: "));
  EXPECT_TRUE(errors[3].startsWith("velmora: line 5: "));
  EXPECT_TRUE(errors[4].startsWith("velmora: line 6: "));
}

TEST_F(Cli, PointsOutsideAnAreaConvertAndAreCountedUnlessStrict)
{
  // West of the ED50 area: converted all the same, and told once.
  QStringList const toEd50{"convert", "--from", "EPSG:4326", "--to", "EPSG:4230", "--route", "-VM:1"};
  ProgramRun const lenient = Tool(toEd50, "-60 45\n9 45\n-61 45\n");
  EXPECT_EQ(lenient.exitCode, 0);
  EXPECT_EQ(Text(lenient.err),
            "velmora: 2 points lay outside an area of use and were converted all the same (--strict refuses them)\n");
  EXPECT_EQ(ParseRows(lenient.out).size(), 3u);
  EXPECT_FALSE(lenient.out.contains('*')) << Text(lenient.out);

  // --strict: the shift refuses it with the library's message; the next point converts.
  ProgramRun const shifted = Tool(toEd50 + QStringList{"--strict"}, "-60 45\n9 45\n");
  EXPECT_EQ(shifted.exitCode, 1);
  EXPECT_EQ(Text(shifted.err), "velmora: line 1: Input point out of bounds [CDatumShift::ShiftForward]: "
                               "Point is not within the specified envelope.\n");
  QList<QByteArray> const lines = shifted.out.split('\n');
  EXPECT_EQ(lines[0], "*");
  EXPECT_TRUE(lines[1].startsWith("9.00105")) << Text(shifted.out);

  // North of it, on the projected side: ED50 / UTM 32N tests its own area.
  ProgramRun const projected =
    Tool({"convert", "--from", "EPSG:23032", "--to", "EPSG:4230", "--strict"}, "500000 9800000\n");
  EXPECT_EQ(projected.exitCode, 1);
  EXPECT_TRUE(projected.err.contains("[CProjectedCoordSys::ToGeodeticBase]")) << Text(projected.err);
}

TEST_F(Cli, CommandLineMistakesAreOneLineAndStatusTwo)
{
  struct Case
  {
    QStringList arguments;
    char const * message;
  };
  for (Case const & c : {
         Case{{"convert", "--from", "EPSG:4326"}, "velmora: convert needs --from AUTH:CODE and --to AUTH:CODE"},
         Case{{"convert", "--from", "EPSG:4326", "--to", "EPSG:32632", "--precision", "x"},
              "velmora: --precision takes a whole number from 0 to 17, not 'x'"},
         Case{{"convert", "--from", "EPSG:", "--to", "EPSG:32632"},
              "velmora: 'EPSG:' is not an identifier: write AUTHORITY:CODE, such as EPSG:4326"},
         Case{{"convert", "--from", "EPSG:4326", "--to", "EPSG:32632", "--bogus"}, "velmora: unknown option --bogus"},
         Case{{"search", "WGS", "--type", "planet"}, "velmora: unknown kind 'planet'; --type takes one of: crs, "},
       }) {
    ProgramRun const run = Tool(c.arguments);
    EXPECT_EQ(run.exitCode, 2) << c.message;
    EXPECT_TRUE(run.err.startsWith(c.message)) << Text(run.err);
  }
  ProgramRun const missing = RunTool({"info", "EPSG:4326", "--data", s_dir->filePath("absent.xml")});
  EXPECT_EQ(missing.exitCode, 2);
  EXPECT_EQ(Text(missing.err), "velmora: cannot read the data file " + s_dir->filePath("absent.xml").toStdString() + "\n");
  ProgramRun const unknown = RunTool({"frobnicate"});
  EXPECT_EQ(unknown.exitCode, 2);
  EXPECT_TRUE(unknown.err.startsWith("velmora: unknown command 'frobnicate'\nusage:")) << Text(unknown.err);
}

// A sample file damaged where a load does not look: the conversion stops
// before the first point, with the code of what is missing, and status 2.
TEST_F(Cli, ADamagedDataFileStopsTheConversionWithItsCode)
{
  QFile sound(s_data);
  ASSERT_TRUE(sound.open(QIODevice::ReadOnly));
  QByteArray const bytes = sound.readAll();
  QString const path = s_dir->filePath("damaged.xml");
  char const * const missing = "velmora: Object to be referenced requires an identifier ";
  for (auto const & [before, after, message] : std::initializer_list<std::array<char const *, 3>>{
         {"<ellipsoid code=\"1\" issuer=\"VM\"/>", "<ellipsoid code=\"99\" issuer=\"VM\"/>",
          "[CHorizontalDatumData::IsFullyDefined]: Ellipsoid\n"},
         {"<geodeticcoordsys code=\"1\" issuer=\"VM\"/>", "<geodeticcoordsys code=\"1\"/>",
          "[CProjectedCoordSysData::IsFullyDefined]: GeodeticBase\n"},
         {"<semimajor code=\"1\" issuer=\"VM\">6378137</semimajor>", "",
          "[CEllipsoidData::IsFullyDefined]: LinearUnits(SemiMajor)\n"}}) {
    QFile damaged(path);
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly | QIODevice::Truncate));
    damaged.write(QByteArray(bytes).replace(before, after));
    damaged.close();
    ProgramRun const run = RunTool({"convert", "--data", path, "--from", "EPSG:4326", "--to", "EPSG:32632"}, "9 45\n");
    EXPECT_EQ(run.exitCode, 2) << before;
    EXPECT_TRUE(run.out.isEmpty()) << Text(run.out);
    EXPECT_EQ(Text(run.err), std::string(missing) + message);
  }
}

// Looking things up

TEST_F(Cli, InfoTellsTheWholeDefinition)
{
  ProgramRun const run = Tool({"info", "EPSG:23032"});
  EXPECT_EQ(run.exitCode, 0) << Text(run.err);
  std::string const text = Text(run.out);
  for (char const * part : {"kind:            projected coordinate system\n",
                            "name:            ED50 / UTM zone 32N\n",
                            "identifiers:     EPSG:23032, VM:23032\n",
                            "geodetic base:   \"ED50\" (EPSG:4230, VM:2)\n",
                            "datum:           \"European Datum 1950\" (EPSG:6230, VM:2)\n",
                            "ellipsoid:       \"International 1924\" (EPSG:7022, VM:2)\n",
                            "a = 6378388 m, 1/f = 297\n",
                            "projection:      Transverse Mercator\n",
                            "central_meridian         9 deg\n",
                            "scale_factor             0.9996\n",
                            "false_easting            500000 m\n",
                            "area of use:     \"Europe\": longitude -16.1 to 48.3, latitude 25.6 to 84.2\n"})
    EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text;

  ProgramRun const shift = Tool({"info", "EPSG:1133"});
  EXPECT_NE(Text(shift.out).find("method:          GeocentricTranslation\n"), std::string::npos) << Text(shift.out);
  EXPECT_NE(Text(shift.out).find("from datum:      \"European Datum 1950\""), std::string::npos);
  EXPECT_NE(Text(shift.out).find("dx                       -87 m\n"), std::string::npos) << Text(shift.out);
  // A bare code is the issuer VM.
  ProgramRun const bare = Tool({"info", "32632"});
  EXPECT_NE(Text(bare.out).find("name:            WGS 84 / UTM zone 32N\n"), std::string::npos);
}

TEST_F(Cli, SearchListsNamesContainingTheTextByKind)
{
  ProgramRun const all = Tool({"search", "utm"});
  EXPECT_EQ(all.exitCode, 0);
  QList<QByteArray> found = all.out.trimmed().split('\n');
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, (QList<QByteArray>{"EPSG:23032\tprojected coordinate system\tED50 / UTM zone 32N",
                                      "EPSG:32632\tprojected coordinate system\tWGS 84 / UTM zone 32N"}));
  ProgramRun const datums = Tool({"search", "1950", "--type", "datum"});
  EXPECT_EQ(Text(datums.out), "EPSG:6230\thorizontal datum\tEuropean Datum 1950\n");
  ProgramRun const systems = Tool({"search", "ED50", "--type", "crs"});
  EXPECT_EQ(systems.out.count('\n'), 2) << Text(systems.out);
  ProgramRun const none = Tool({"search", "Tokyo"});
  EXPECT_EQ(none.exitCode, 1);
  EXPECT_EQ(Text(none.err), "velmora: no name contains \"Tokyo\"\n");
}

// Finding the data file

TEST_F(Cli, TheDefaultDataFileIsFoundFromTheProgramsPlace)
{
  QTemporaryDir tree;
  ASSERT_TRUE(tree.isValid());
  auto place = [&](QString const & program, QString const & data) {
    QDir().mkpath(QFileInfo(tree.filePath(program)).path());
    QDir().mkpath(QFileInfo(tree.filePath(data)).path());
    ASSERT_TRUE(QFile::copy(VELMORA_CLI_PATH, tree.filePath(program)));
    QFile(tree.filePath(program)).setPermissions(QFile::ExeOwner | QFile::ReadOwner);
    if (!data.isEmpty()) {
      ASSERT_TRUE(QFile::copy(s_data, tree.filePath(data)));
      ASSERT_TRUE(QFile::copy(s_dir->filePath("velmora.xsd"), QFileInfo(tree.filePath(data)).path() + "/velmora.xsd"));
    }
  };
  // Installed, and a build tree.
  place("bin/velmora", "share/velmora/velmora.xml");
  place("apps/velmora", "data/velmora.xml");
  for (char const * program : {"bin/velmora", "apps/velmora"}) {
    ProgramRun const run = RunProgram(tree.filePath(program), {"convert", "--from", "EPSG:4326", "--to", "EPSG:32632"}, "9 45\n");
    EXPECT_EQ(Text(run.out), "500000.0000 4982950.4002\n") << program << ": " << Text(run.err);
  }
  // Neither.
  QTemporaryDir bare;
  QDir().mkpath(bare.filePath("bin"));
  ASSERT_TRUE(QFile::copy(VELMORA_CLI_PATH, bare.filePath("bin/velmora")));
  QFile(bare.filePath("bin/velmora")).setPermissions(QFile::ExeOwner | QFile::ReadOwner);
  ProgramRun const run = RunProgram(bare.filePath("bin/velmora"), {"info", "EPSG:4326"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_TRUE(run.err.startsWith("velmora: no data file found (looked for ")) << Text(run.err);
  EXPECT_TRUE(run.err.contains("; give one with --data FILE")) << Text(run.err);
}

} // namespace
