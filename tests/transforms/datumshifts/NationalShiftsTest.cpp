// The national shifts: the GR3D1 and Tokyo readers against PROJ on twins of
// their grids (xyzgridshift, hgridshift), OSTN02 against the exact affine
// field of its records, the North Sea polynomial against Guidance Note 7-2's
// example and its joins, and what damaged files and points outside raise.
// Grids by tools/make-test-grids.py, rows by scripts/gen-grid-refs.sh.
#include <velmora/transforms/datumshifts/NationalShifts.h>

#include "../../support/ShiftReference.h"
#include "../../support/TestSupport.h"
#include "ShiftDoubles.h"

#include <memory>

using namespace Velmora;
using namespace Velmora::CT::DS;
using namespace VelmoraTest;

namespace {

CString Path(std::string const & name) { return CString(QString::fromStdString(TestData("grids/" + name))); }

// Clarke 1880 (IGN), GRS80 and Airy 1830, as PROJ's clrk80ign, GRS80 and airy.
CS::CHorizontalDatum const kNtf = Datum(6378249.2, 293.4660212936269);
CS::CHorizontalDatum const kGrs80 = Datum(6378137.0, 298.257222101);
CS::CHorizontalDatum const kAiry = Datum(6377563.396, 299.3249646);

std::unique_ptr<CNTFToRGF93> Gr3d(std::string const & name)
{
  auto shift = std::make_unique<CNTFToRGF93>();
  shift->GetParameters().SetString(CString("file"), Path(name));
  shift->SetSrcDatum(kNtf);
  shift->SetDestDatum(kGrs80);
  return shift;
}

template <class Shift>
std::unique_ptr<Shift> InFolder(std::string const & folder, char const * file, CS::CHorizontalDatum const & source,
                                CS::CHorizontalDatum const & destination)
{
  auto shift = std::make_unique<Shift>();
  shift->GetParameters().SetString(CString("path"), Path(folder));
  shift->GetParameters().SetString(CString("file"), CString(file));
  shift->SetSrcDatum(source);
  shift->SetDestDatum(destination);
  return shift;
}

// OSGB36 (Airy) to ETRS89 (GRS80): the table runs from the destination.
std::unique_ptr<COSTN02> Ostn(char const * file) { return InFolder<COSTN02>("os", file, kAiry, kGrs80); }
std::unique_ptr<CTokyoToJGD2000> Tokyo(char const * file) { return InFolder<CTokyoToJGD2000>("tokyo", file, kWgs84, kWgs84); }

template <class Shift>
std::function<void()> Forward(std::function<std::unique_ptr<Shift>()> make, double lon, double lat, bool back = false)
{
  return [=] {
    auto const shift = make();
    double x = lon, y = lat;
    back ? shift->ShiftBack(x, y) : shift->ShiftForward(x, y);
  };
}

} // namespace

TEST(NationalShifts, Gr3dAndTokyoAgreeWithProjOnTheSameValues)
{
  // Molodensky's formula against PROJ's exact geocentric translation: its own
  // error, measured 6.2e-8 degree at most (7 mm of latitude) both ways.
  EXPECT_LE(ExpectAgreesWithProj(*Gr3d("gr3d/gr3d1_test.txt"), "grid_gr3d1.txt", 7e-8), 7e-8);
  // Bilinear on the same float values, 9e-11 degree apart at most (PROJ
  // interpolates in single precision); back 1.0e-10, PROJ iterating to its own tolerance.
  EXPECT_LE(ExpectAgreesWithProj(*Tokyo("tky_test.par"), "grid_tokyo.txt", 1e-10), 2e-10);
}

TEST(NationalShifts, OstnReproducesItsAffineFieldBothWays)
{
  // The table's direction is from the destination; the other iterates to 0.1 mm.
  EXPECT_LE(ExpectAgreesWithProj(*Ostn("ostn_test.dat"), "grid_ostn.txt", 1e-9, true), 2e-9);
  // A height passes unchanged.
  ML::CGeodeticPoint out(3);
  Ostn("ostn_test.dat")->ShiftBack(ML::CGeodeticPoint(-1.9, 52.7, 42.0), out);
  double lon, lat, height;
  out.GetInternals(lon, lat, height);
  EXPECT_EQ(height, 42.0);
}

TEST(NationalShifts, NorthSeaFollowsGuidanceNoteAndJoinsItsZones)
{
  CED50ToED87NorthSea shift;
  shift.SetSrcDatum(kIntl);
  shift.SetDestDatum(kIntl);
  auto const at = [&](double lon, double lat, bool back = false) {
    back ? shift.ShiftBack(lon, lat) : shift.ShiftForward(lon, lat);
    return std::pair(lon, lat);
  };
  // EPSG Guidance Note 7-2, reversible polynomial of degree 4: 52 30' 30" N, 2 E.
  auto const [lon, lat] = at(2.0, 52.508333333);
  EXPECT_NEAR(lat - 52.508333333, -3.12958e-06, 1e-11);
  EXPECT_NEAR(lon - 2.0, 9.80126e-06, 1e-11);
  // Back subtracts the shift at the given point.
  EXPECT_NEAR(at(lon, lat, true).second, 52.508333333, 1e-10);
  // North of 65 N: EPSG's ED50 to ED87 (2), as PROJ's helmert gives it.
  EXPECT_NEAR(at(10.0, 70.0).first, 10.000137020279, 1e-9);
  EXPECT_NEAR(at(10.0, 70.0).second, 70.000022772990, 1e-9);
  EXPECT_NEAR(at(3.0, 65.0).second, 65.000032743172, 1e-9); // the blend's w = 1
  // Each zone's shift meets the next at 62 N and 65 N.
  for (double join : {62.0, 65.0}) {
    auto const below = at(3.0, join), above = at(3.0, join + 1e-9);
    EXPECT_NEAR(below.first - 3.0, above.first - 3.0, 1e-12) << join;
    EXPECT_NEAR(below.second - join, above.second - join - 1e-9, 1e-12) << join;
  }
}

TEST(NationalShifts, DamagedFilesAndPointsOutsideRaiseTheirCodes)
{
  auto const gr3d = [](char const * name, double lon = 0.5, double lat = 45.5, bool back = false) {
    return Forward<CNTFToRGF93>([=] { return Gr3d(name); }, lon, lat, back);
  };
  auto const tokyo = [](char const * name, double lon, double lat, bool back = false) {
    return Forward<CTokyoToJGD2000>([=] { return Tokyo(name); }, lon, lat, back);
  };
  auto const ostn = [](char const * name, double lon, double lat, bool back) {
    return Forward<COSTN02>([=] { return Ostn(name); }, lon, lat, back);
  };
  char const * const noData = "There is no grid shift data for the area around the point.";
  char const * const header = "The GR3D1 grid line has an unexpected format";
  char const * const line = "Failed to get coordinates from grid file.";
  char const * const invalid = "Invalid grid shift file specified.";
  ExpectFailures({
    {"GR3D1 missing", gr3d("gr3d/absent.txt"), 10, "CNTFToRGF93::Setup", "Couldn't open grid shift file"},
    {"GR3D1 without its line", gr3d("gr3d/no_header.txt"), 59, "CNTFToRGF93::Setup", header},
    {"GR3D1 line short", gr3d("gr3d/bad_header.txt"), 59, "CNTFToRGF93::Setup", header},
    {"GR3D1 too many nodes", gr3d("gr3d/huge.txt"), 59, "CNTFToRGF93::Setup", header},
    {"node line short", gr3d("gr3d/bad_line.txt"), 59, "CNTFToRGF93::Setup", line},
    {"file cut short", gr3d("gr3d/short.txt"), 59, "CNTFToRGF93::Setup", line},
    {"a line too many", gr3d("gr3d/long.txt"), 59, "CNTFToRGF93::Setup",
     "Grid file contains more lines than expected based on its header."},
    {"GR3D1 east of the grid", gr3d("gr3d/gr3d1_test.txt", 3.01, 46.0), 43, "CNTFToRGF93::PrepareParams", noData},
    {"GR3D1 back, outside", gr3d("gr3d/gr3d1_test.txt", 0.0, 44.9, true), 43, "CNTFToRGF93::PrepareParams",
     noData},
    {"mesh missing", tokyo("absent.par", 139.51, 35.01), 10, "CTokyoToJGD2000::Setup",
     "Couldn't open grid shift file"},
    {"mesh corner missing", tokyo("holes.par", 139.51, 35.01), 43, "CTokyoToJGD2000::GridShift", noData},
    {"south of the equator", tokyo("holes.par", 139.51, -35.0), 43, "CTokyoToJGD2000::AdjustMeshPieces", noData},
    {"west of 100 E", tokyo("holes.par", 99.0, 35.0), 43, "CTokyoToJGD2000::AdjustMeshPieces", noData},
    {"mesh back swinging", tokyo("steep.par", 139.505, 35.001, true), 9, "CTokyoToJGD2000::ShiftBack",
     "Failed to resolve the backward result in a reasonable number of tries."},
    {"OSTN missing", ostn("absent.dat", -1.9, 52.7, true), 10, "COSTN02::InitializeGridFile", invalid},
    {"OSTN cut short", ostn("short.dat", -1.9, 52.7, true), 59, "COSTN02::InitializeGridFile", invalid},
    // E 418000.5, N 318000.5 on the grid: the cell of the node without data.
    {"OSTN flag 0", ostn("ostn_test.dat", -1.733262812916, 52.758645633618, true), 43,
     "COSTN02::ComputeShiftValues", "No geoid shift data exists for this area."},
    {"OSTN east of the grid", ostn("ostn_test.dat", 0.0, 52.7, true), 43, "COSTN02::ComputeShiftValues",
     "The point's x coordinate is outside the grid bounds."},
    // E 401000, N 301000 on Airy: the inverse swings between E 401 and 402 km.
    {"OSTN inverse swinging", ostn("ostn_steep.dat", -1.985231681740, 52.606427188728, false), 9,
     "COSTN02::ShiftSrcToDest", "Cannot converge inverse grid shift lookup."},
    {"OSTN unset", [] {
       COSTN02 shift;
       double lon = -1.9, lat = 52.7;
       shift.ShiftForward(lon, lat);
     }, 31, "COSTN02::ShiftSrcToDest", ""},
    {"MRE datum without a block", [] {
       CMRE shift;
       shift.GetParameters().SetString(CString("datum_id"), CString("181"));
       double lon = 32.0, lat = 14.0;
       shift.ShiftForward(lon, lat);
     }, 15, "MRE::MRELoad", "Unexpected datum_id value"},
  });
}
