// Coordinate-system text and files on the shipped data file: what WKT,
// MapInfo tables, the MIF clause and the key/value form build, and what they
// refuse. The registry-wide shares against GDAL and PROJ are the wkt_sweep
// tool's; here are the cases one file or string decides.
#include "DataFileSupport.h"

#include "../support/TestSupport.h"

#include <velmora/datasource/import/miParser.h>
#include <velmora/velmora.h>

#include <gdal_priv.h>
#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

#include <QTemporaryDir>

#include <memory>

using namespace Velmora;
using namespace VelmoraTest;
using DB::CDataSource;
using EX::CVelmoraException;

#ifdef VELMORA_SHIPPED_DATA
namespace {

constexpr double kPlaneTolerance = 1e-3; // metres

// GDAL's WKT1 of an EPSG system.
std::string GdalWkt(int epsg, bool esri = false)
{
  OGRSpatialReference srs;
  EXPECT_EQ(srs.importFromEPSG(epsg), OGRERR_NONE);
  if (esri)
    srs.morphToESRI();
  char * text = nullptr;
  srs.exportToWkt(&text);
  std::string const out(text);
  CPLFree(text);
  return out;
}

class Import : public ::testing::Test
{
protected:
  static void SetUpTestSuite()
  {
    store = new CDataSource;
    store->LoadFile(CString(VELMORA_SHIPPED_DATA));
  }
  static void TearDownTestSuite()
  {
    delete store;
    store = nullptr;
  }
  void TearDown() override { CDataSource::SetWKTForceMatch(false); }

  CString File(char const * name, std::string const & text)
  {
    CString const path = CString(dir.path()) + "/" + name;
    WriteAll(path, QByteArray::fromStdString(text));
    return path;
  }
  // Both systems take the point to the same plane coordinates.
  static void ExpectSamePlane(CS::CCoordSys const & a, CS::CCoordSys const & b, double lon, double lat)
  {
    double ax = lon, ay = lat, bx = lon, by = lat;
    ASSERT_TRUE(a.FromGeodeticBase(ax, ay));
    ASSERT_TRUE(b.FromGeodeticBase(bx, by));
    EXPECT_NEAR(ax, bx, kPlaneTolerance);
    EXPECT_NEAR(ay, by, kPlaneTolerance);
  }

  static CDataSource * store;
  QTemporaryDir dir;
};
CDataSource * Import::store = nullptr;

TEST_F(Import, EveryFailureHasItsCodeAndNothingIsHalfStored)
{
  CString const noSystem = File("words.prj", "no coordinate system in here");
  CString const unknown = File("unknown.prj", R"(PROJCS["Odd",GEOGCS["Odd geographic",DATUM["Odd_datum",
    SPHEROID["Odd spheroid",6378000,300]],PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],
    PROJECTION["No_Such_Projection"],UNIT["metre",1]])");
  CString const notTable = File("not.tab", "!table\n");
  std::unique_ptr<CS::CCoordSys> wgs84(store->GetGeodeticCoordSys(CString("EPSG"), CString("4326")));
  CDataSource unloaded;
  CDataSource readOnly;
  readOnly.LoadFile(CString(VELMORA_SHIPPED_DATA));
  readOnly.SetReadOnly(true);
  DB::miParser parser(store);
  ExpectFailures({
    {"empty string", [&] { store->ImportCoordSysFromString(CString()); }, 61, "miParser::miParser",
     "Failed to find string for Import"},
    {"not WKT", [&] { store->ImportCoordSysFromString(CString("GEOGCS[")); }, 61, "miParser::FromString",
     "Failed parsing WKT/PRJ String"},
    {"no file", [&] { store->ImportCoordSysFromFile(CString(dir.path()) + "/absent.prj"); }, 10, "miParser::miParser",
     "Failed to find file for Import"},
    {"no system in the file", [&] { store->ImportCoordSysFromFile(noSystem); }, 61, "miParser::ParseWKT",
     "Error parsing file"},
    {"unknown projection", [&] { store->ImportCoordSysFromFile(unknown); }, 61, "miParser::BuildProjection",
     "Could not create suitable projection for No_Such_Projection"},
    {"not a table", [&] { store->ImportCoordSysFromFile(notTable); }, 61, "miParser::miParser",
     "Failed opening TAB/MAP file"},
    {"writing a table", [&] { store->ExportCoordSysToFile(*wgs84, CString(dir.path()) + "/out.TAB"); }, 62,
     "miParser::ToWKT", "Writing of TAB/MAP files is currently unsupported"},
    {"no store", [&] { unloaded.ImportCoordSysFromString(CString("x")); }, 7,
     "CDataSource::ImportCoordSysFromString", ""},
    {"read-only store", [&] { readOnly.ImportCoordSysFromString(CString("x")); }, 54,
     "CDataSource::ImportCoordSysFromString", "CDataSource::ImportFile : must set Editable flag on DataSource"},
    {"read-only store, file", [&] { readOnly.ImportFile(noSystem); }, 12, "CDataSource::ImportFile",
     VELMORA_SHIPPED_DATA},
    {"MIF without its words", [&] { parser.FromMIF(CString("Earth Projection 1, 104")); }, 61, "miParser::FromMIF",
     "Failed parsing MIF CoordSys clause"},
    {"key/value form, unknown projection",
     [&] {
       store->ImportCoordSysFromStringMap(
         {{CString("PROJ"), CString("NOSUCH")}, {CString("E_RAD"), CString("6378137")}, {CString("P_RAD"), CString("6356752.314")}});
     },
     61, "CDataSource::ImportCoordSysFromStringMap", "Could not create suitable projection for NOSUCH"},
  });
  // The geodetic part of the refused system was taken out again.
  std::unique_ptr<CS::CHorizontalDatum> leftOver(
    store->GetHorizontalDatumNonThrow(CString("VM"), CString("wkt_Odd_datum")));
  EXPECT_FALSE(leftOver);
}

TEST_F(Import, TwoSystemsInOneFileAreBothStoredAndTheFirstReturned)
{
  // Misspelt "SPHERIOD" as older writers have it.
  std::string const first = R"(PROJCS["First TM",GEOGCS["GCS_Own",DATUM["D_Own_datum",SPHERIOD["Own",6378200,299]],
    PRIMEM["Greenwich",0],UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],
    PARAMETER["False_Easting",100000],PARAMETER["False_Northing",0],PARAMETER["Central_Meridian",9],
    PARAMETER["Scale_Factor",0.9999],PARAMETER["Latitude_Of_Origin",0],UNIT["Meter",1]])";
  std::string second = first;
  second.replace(second.find("First TM"), 8, "Second TM");
  std::unique_ptr<CS::CCoordSys> imported(store->ImportCoordSysFromFile(File("two.prj", first + "\n" + second)));
  ASSERT_TRUE(imported);
  EXPECT_EQ(imported->GetName(), CString("First TM"));
  EXPECT_EQ(imported->GetIssuerCode(CString("WKT")), CString("wkt_First TM"));
  std::unique_ptr<CS::CProjectedCoordSys> other(
    store->GetProjectedCoordSysNonThrow(CString("VM"), CString("wkt_Second TM")));
  EXPECT_TRUE(other);
  // A point 1 degree east of the meridian on the equator: k0 times the arc, plus the false easting.
  double x = 10.0, y = 0.0;
  ASSERT_TRUE(imported->FromGeodeticBase(x, y));
  EXPECT_NEAR(y, 0.0, kPlaneTolerance);
  EXPECT_GT(x, 100000.0 + 0.9999 * 111000.0);
  // Written back, the ellipsoid's keyword is spelt right.
  unsigned short * wkt = store->ExportCoordSysToString(*imported);
  CString const text(wkt);
  delete[] wkt;
  EXPECT_TRUE(text.contains(QLatin1String("SPHEROID[\"Own\",6378200,299")) && !text.contains(QLatin1String("SPHERIOD")))
    << text.toStdString();
}

TEST_F(Import, DatumNamesReachTheirCodesByTableAndByTokens)
{
  struct Case
  {
    char const * name;
    char const * code;
  } const cases[] = {
    {"D_WGS_1984", "6326"},          {"Arc_1950", "6209"},           {"nad 83 (harn)", "6152"},
    {"nad 83", "6269"},
    {"World Geodetic 84", "6326"},   {"NAD 1983 HPGN", "6152"},      {"north 27", "6267"},
    {"Terrestrial 77", "6122"},      {"NZGD 49", "6272"},            {"EUREF 89", "6133"},
    {"ED 87", "6231"},               {"Some datum", ""},
  };
  for (Case const & c : cases)
    EXPECT_EQ(DB::miParser::DatumCodeFromName(CString(c.name)), CString(c.code)) << c.name;
  double const adindan[7] = {-162, -12, 206, 0, 0, 0, 0};
  EXPECT_EQ(DB::miParser::DatumCodeFromShift(adindan), CString("6201"));
}

TEST_F(Import, ForcedMatchingReturnsTheStoredSystem)
{
  // A UTM zone, and a grad system on the Paris meridian, whose ESRI form GDAL
  // reads with the Greenwich NTF datum's code: the import must keep Paris.
  struct Case
  {
    int epsg;
    double lon, lat;
  } const cases[] = {{32632, 11.5, 52.0}, {27561, 2.8, 49.7}};
  for (auto const & [epsg, lon, lat] : cases) {
    std::unique_ptr<CS::CCoordSys> const stored(store->GetProjectedCoordSys(CString("EPSG"), CString::number(epsg)));
    for (bool esri : {false, true}) {
      CDataSource::SetWKTForceMatch(true);
      std::unique_ptr<CS::CCoordSys> matched(store->ImportCoordSysFromString(CString(GdalWkt(epsg, esri).c_str())));
      EXPECT_EQ(matched->GetIssuerCode(CString("EPSG")), CString::number(epsg)) << esri;
      CDataSource::SetWKTForceMatch(false);
      std::unique_ptr<CS::CCoordSys> built(store->ImportCoordSysFromString(CString(GdalWkt(epsg, esri).c_str())));
      EXPECT_FALSE(built->GetIdentifiers().Exists(CString("EPSG"))) << esri;
      ExpectSamePlane(*stored, *built, lon, lat);
    }
  }
}

TEST_F(Import, MifClauseForWgs84AndRoundTripOfAZone)
{
  std::unique_ptr<CS::CCoordSys> wgs84(store->GetGeodeticCoordSys(CString("EPSG"), CString("4326")));
  unsigned short * clause = store->ExportCoordSysToMIFString(*wgs84);
  ASSERT_TRUE(clause);
  EXPECT_EQ(CString(clause), CString("CoordSys Earth Projection 1,104\nUnits \"degree\""));
  delete[] clause;

  std::unique_ptr<CS::CCoordSys> zone(store->GetProjectedCoordSys(CString("EPSG"), CString("32632")));
  clause = store->ExportCoordSysToMIFString(*zone);
  ASSERT_TRUE(clause);
  CString const text(clause);
  delete[] clause;
  EXPECT_TRUE(text.startsWith(QLatin1String("CoordSys Earth Projection 8,104\nUnits \"m\""))) << text.toStdString();
  DB::miParser parser(store);
  std::unique_ptr<CS::CCoordSys> back(parser.FromMIF(text));
  ExpectSamePlane(*zone, *back, 8.0, 48.0);
}

TEST_F(Import, MapInfoTablesConvertLikeTheStoredSystem)
{
  // Tables written by GDAL's MapInfo driver, as ogr2ogr writes them.
  struct Case
  {
    int epsg;
    double lon, lat;
  } const cases[] = {{32632, 9.5, 48.0}, {27700, -1.5, 52.5}, {31467, 9.2, 50.0}, {4326, 0.0, 0.0}};
  for (auto const & [epsg, lon, lat] : cases) {
    OGRSpatialReference srs;
    ASSERT_EQ(srs.importFromEPSG(epsg), OGRERR_NONE);
    // MapInfo numbers a datum by its shift to WGS 84; without one it writes WGS 84 itself.
    srs.AddGuessedTOWGS84();
    std::string const path = QString("%1/t%2.tab").arg(dir.path()).arg(epsg).toStdString();
    GDALAllRegister();
    GDALDriver * driver = GetGDALDriverManager()->GetDriverByName("MapInfo File");
    ASSERT_TRUE(driver);
    {
      std::unique_ptr<GDALDataset> table(driver->Create(path.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
      OGRLayer * layer = table ? table->CreateLayer("t", &srs, wkbPoint, nullptr) : nullptr;
      ASSERT_TRUE(layer);
      OGRFieldDefn field("id", OFTInteger);
      ASSERT_EQ(layer->CreateField(&field), OGRERR_NONE);
      // One point, as a copied table has: MapInfo writes its projection with the first object.
      std::unique_ptr<OGRFeature> feature(OGRFeature::CreateFeature(layer->GetLayerDefn()));
      OGRPoint point(0.0, 0.0);
      feature->SetGeometry(&point);
      ASSERT_EQ(layer->CreateFeature(feature.get()), OGRERR_NONE);
    }
    std::unique_ptr<CS::CCoordSys> imported(store->ImportCoordSysFromFile(CString(path.c_str())));
    std::unique_ptr<CS::CCoordSys> stored(store->GetCoordSys(CString("EPSG"), CString(std::to_string(epsg).c_str())));
    ASSERT_TRUE(imported && stored) << epsg;
    EXPECT_EQ(imported->GetType(), stored->GetType()) << epsg;
    if (stored->GetType() == CS::kProjectedCoordSys)
      ExpectSamePlane(*stored, *imported, lon, lat);
  }
}

TEST_F(Import, KeyValueFormBuildsATransverseMercator)
{
  std::unique_ptr<CS::CCoordSys> built(store->ImportCoordSysFromStringMap({{CString("CS_NAME"), CString("My TM")},
                                                                          {CString("PROJ"), CString("TM")},
                                                                          {CString("DT_NAME"), CString("none")},
                                                                          {CString("E_RAD"), CString("6378137")},
                                                                          {CString("P_RAD"), CString("6356752.314245")},
                                                                          {CString("PARM1"), CString("9")},
                                                                          {CString("ORG_LAT"), CString("0")},
                                                                          {CString("SCL_RED"), CString("0.9996")},
                                                                          {CString("X_OFF"), CString("500000")},
                                                                          {CString("Y_OFF"), CString("0")}}));
  std::unique_ptr<CS::CCoordSys> zone(store->GetProjectedCoordSys(CString("EPSG"), CString("32632")));
  ExpectSamePlane(*zone, *built, 10.0, 50.0);
  EXPECT_EQ(built->GetName(), CString("My TM"));
}

} // namespace
#endif
