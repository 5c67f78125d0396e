// The grid readers: NTv2 against PROJ's hgridshift on the real grids of
// proj-data and on a nested grid, NADCON against PROJ on the same values,
// the rules at the edges of a grid, and what damaged files raise. The
// reference rows are scripts/gen-grid-refs.sh's, the test grids
// tools/make-test-grids.py's.
#include <velmora/transforms/datumshifts/GridShifts.h>

#include "../../support/ReferenceData.h"
#include "../../support/ShiftReference.h"
#include "../../support/TestSupport.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>

using namespace Velmora;
using namespace Velmora::CT::DS;
using namespace VelmoraTest;

namespace {

constexpr double kForward = 1e-9;       // degrees, forward against PROJ
// PROJ's inverse iterates to its own tolerance; the NTv2 back direction
// takes four fixed steps, the NADCON one iterates to 1e-9 degree. Their gaps
// from PROJ as measured: NTv2 9.3e-11 degree at most (nzgd2k; BETA2007
// 7.8e-11, ntf_r93 4.0e-11, nested 4.2e-11, CHENYX06 6.6e-13), NADCON 1.6e-10.
constexpr double kNtv2Back = 2e-10;
constexpr double kNadconBack = 5e-10;
constexpr double kFloat = 1e-10;       // degrees: the files keep seconds as 32-bit floats

std::string Grid(std::string const & name) { return TestData("grids/" + name); }
std::string ProjGrid(std::string const & name) { return "/usr/share/proj/" + name; }

std::unique_ptr<CCanadianNTV2> Ntv2(std::string const & path)
{
  auto shift = std::make_unique<CCanadianNTV2>();
  shift->GetParameters().SetString(CString("cantrans_file"), CString(QString::fromStdString(path)));
  return shift;
}

std::unique_ptr<CNadcon> Nadcon(std::string const & las, std::string const & los, char const * type = "NADCON")
{
  auto shift = std::make_unique<CNadcon>();
  CParameterCollection & p = shift->GetParameters();
  p.SetString(CString("las_name"), CString(QString::fromStdString(las)));
  p.SetString(CString("los_name"), CString(QString::fromStdString(los)));
  p.SetString(CString("type"), CString(type));
  return shift;
}

} // namespace

TEST(GridShifts, Ntv2AgreesWithProjOnTheRealGrids)
{
  struct
  {
    char const * file;
    char const * rows;
  } const grids[] = {{"BETA2007.gsb", "grid_beta2007.txt"},
                     {"CHENYX06.gsb", "grid_chenyx06.txt"},
                     {"ntf_r93.gsb", "grid_ntf_r93.txt"},
                     {"nzgd2kgrid0005.gsb", "grid_nzgd2k.txt"}};
  for (auto const & g : grids) {
    if (!std::filesystem::exists(ProjGrid(g.file)))
      GTEST_SKIP() << ProjGrid(g.file) << " missing (Debian package proj-data)";
    auto const shift = Ntv2(ProjGrid(g.file));
    EXPECT_LE(ExpectAgreesWithProj(*shift, g.rows, kForward), kNtv2Back) << g.file;
    EXPECT_EQ(shift->NumberOfSubFiles(), 1);
  }
}

TEST(GridShifts, NestedGridsServeFromTheDeepestAndAgreeWithProj)
{
  auto const shift = Ntv2(Grid("nested.gsb"));
  EXPECT_LE(ExpectAgreesWithProj(*shift, "grid_nested.txt", kForward), kNtv2Back);
  EXPECT_EQ(shift->NumberOfSubFiles(), 4);

  // The parent's surface, in seconds: 1 + d + d^2 / 2 of latitude (d in
  // tens of degrees past 40 N), -2 + (w + 10) / 10 of longitude (w degrees west).
  // On its northern edge (class 2) between two nodes, and on its north-west
  // corner (class 4) at the node alone.
  double lon = 5.25, lat = 44.0;
  shift->ShiftForward(lon, lat);
  EXPECT_NEAR(lat, 44.0 + 1.48 / 3600.0, kFloat);
  EXPECT_NEAR(lon, 5.25 + 1.525 / 3600.0, kFloat);
  lon = -10.0, lat = 44.0;
  shift->ShiftForward(lon, lat);
  EXPECT_NEAR(lat, 44.0 + 1.48 / 3600.0, kFloat);
  EXPECT_NEAR(lon, -10.0, kFloat);

  // The southern edge belongs to no grid; the second grid's north edge does.
  EXPECT_EQ(Raised([&] {
              double x = -0.5, y = 30.0;
              shift->ShiftForward(x, y);
            }).GetDetails(),
            CString("There is no grid shift data for the area around the point."));
  lon = -0.5, lat = 31.0;
  shift->ShiftForward(lon, lat);
  EXPECT_NEAR(lat, 31.0 + 3.0 / 3600.0, kFloat);
}

TEST(GridShifts, NadconOnTheValuesOfAnNtv2GridAgreesWithProj)
{
  auto const shift = Nadcon(Grid("beta2007.las"), Grid("beta2007.los"));
  EXPECT_LE(ExpectAgreesWithProj(*shift, "grid_beta2007.txt", kForward), kNadconBack);
}

TEST(GridShifts, NadconReadsItsLastColumnIntoTheNextRowAndNegatesHarn)
{
  // 24 columns, 3 rows, one degree apart from 0 E, 0 N: latitude shifts
  // 10 c + r seconds, longitude shifts 20 + c seconds west.
  auto const shift = Nadcon(Grid("bad/small.las"), Grid("bad/small.los"));
  double dlat = 0.0, dlon = 0.0;
  shift->ConvertToNAD83(0.5, 0.5, dlat, dlon);
  EXPECT_DOUBLE_EQ(dlat * 3600.0, 5.5);
  EXPECT_DOUBLE_EQ(dlon * 3600.0, -20.5);
  // The last column: its eastern neighbours are the next row's lead word
  // and first value, weighted by nothing on the column itself.
  shift->ConvertToNAD83(0.5, 23.0, dlat, dlon);
  EXPECT_DOUBLE_EQ(dlat * 3600.0, 230.5);
  // The last row reads past the file.
  ExpectFailures({{"last row", [&] { shift->ConvertToNAD83(2.0, 0.5, dlat, dlon); }, 48, "CNadcon::GetGridData",
                   "The grid id associated with that location is outside the range supported by the las/los files"}});

  auto const harn = Nadcon(Grid("bad/small.las"), Grid("bad/small.los"), "HARN");
  harn->ConvertToNAD83(0.5, 0.5, dlat, dlon);
  EXPECT_DOUBLE_EQ(dlat * 3600.0, -5.5);
  EXPECT_DOUBLE_EQ(dlon * 3600.0, 20.5);
}

TEST(GridShifts, ACopyKeepsTheGridItLoaded)
{
  auto original = Ntv2(Grid("nested.gsb"));
  double lon = 1.9, lat = 41.9;
  original->ShiftForward(lon, lat);
  CCanadianNTV2 copy(*original);
  original.reset();
  double x = 1.9, y = 41.9;
  copy.ShiftForward(x, y);
  EXPECT_EQ(x, lon);
  EXPECT_EQ(y, lat);
  // The point form carries a height through.
  ML::CGeodeticPoint out(3);
  copy.ShiftForward(ML::CGeodeticPoint(1.9, 41.9, 25.0), out);
  double a, b, h;
  out.GetInternals(a, b, h);
  EXPECT_EQ(a, lon);
  EXPECT_EQ(h, 25.0);
}

TEST(GridShifts, DamagedFilesAndPointsOutsideRaiseTheirCodes)
{
  auto const ntv2 = [](char const * name) {
    return [name] {
      double lon = 0.5, lat = 0.5;
      Ntv2(Grid(name))->ShiftForward(lon, lat);
    };
  };
  auto const nadcon = [](char const * las, char const * los, double lon, double lat, bool back = false) {
    return [=] {
      auto const shift = Nadcon(Grid(las), Grid(los));
      double x = lon, y = lat;
      back ? shift->ShiftBack(x, y) : shift->ShiftForward(x, y);
    };
  };
  char const * const count = "Unexpected number of subfiles (expected between 1 and 200).";
  char const * const subfile = "Failed to read a subfile.";
  char const * const noData = "There is no grid shift data for the area around the point.";
  ExpectFailures({
    {"no file", ntv2("absent.gsb"), 10, "CCanadianNTV2::OpenFile", "Couldn't open NTV2 file"},
    {"no sub-file", ntv2("bad/count0.gsb"), 59, "CCanadianNTV2::Init", count},
    {"201 sub-files", ntv2("bad/count201.gsb"), 59, "CCanadianNTV2::Init", count},
    {"cut in the header", ntv2("bad/header.gsb"), 59, "CCanadianNTV2::Init", count},
    {"no SUB_NAME", ntv2("bad/nosubname.gsb"), 59, "CCanadianNTV2::Init", subfile},
    {"cut in a sub-file", ntv2("bad/short.gsb"), 59, "CCanadianNTV2::Init", subfile},
    {"outside every grid", [] {
       double lon = 20.0, lat = 20.0;
       Ntv2(Grid("nested.gsb"))->ShiftBack(lon, lat);
     }, 43, "CCanadianNTV2::ShiftDestToSrc", noData},
    {"no NADCON files", nadcon("absent.las", "small.los", 0.5, 0.5), 10, "CNadcon::Setup",
     "Couldn't open las and/or los files"},
    {"headers differ", nadcon("bad/small.las", "bad/other.los", 0.5, 0.5), 15, "CNadcon::Setup",
     "Header bytes from the las file do not match those from the los file"},
    {"los cut short", nadcon("bad/small.las", "bad/short.los", 0.5, 0.5), 11, "CNadcon::Setup",
     "Failed to read grid data from los file"},
    {"west of the grid", nadcon("bad/small.las", "bad/small.los", -0.5, 0.5), 43, "CNadcon::ConvertToNAD83",
     noData},
    {"back iteration swinging", nadcon("bad/steep.las", "bad/steep.los", 0.5, 0.5, true), 9,
     "CNadcon::ShiftDestToSrc", "Failed to resolve the backward result in a reasonable number of tries."},
    // Its steps leave the grid before the tenth: the grid's code, not 9.
    {"back iteration leaving", nadcon("bad/steep.las", "bad/steep.los", 0.5, 0.25, true), 43,
     "CNadcon::ConvertToNAD83", noData},
  });
  EXPECT_EQ(Ntv2(Grid("bad/count200.gsb"))->NumberOfSubFiles(), 0); // not loaded before a shift
  auto const many = Ntv2(Grid("bad/count200.gsb"));
  many->Init();
  EXPECT_EQ(many->NumberOfSubFiles(), 200);
}
