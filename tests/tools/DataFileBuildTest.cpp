// The data file built from the EPSG registry: the generator on a slice of the
// registry, the file it writes against the schema and loaded back, known
// systems and shifts with their published parameters, the transverse Mercator
// systems against PROJ, a Molodensky-Badekas shift against PROJ, deprecated
// objects left out and an area across the antimeridian; then the full file of
// the build, where there is one.
#include "../datasource/DataFileSupport.h"

#include <velmora/velmora.h>

#include "../support/TestSupport.h"

#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

#include <fstream>
#include <sstream>

using namespace Velmora;
using namespace VelmoraTest;
using DB::CDataSource;

namespace {

// Systems and shifts of the slice: TM, UTM, LCC 2SP and 1SP (grads on the
// Paris meridian), Mercator across the antimeridian, a geocentric system;
// shifts by position vector, coordinate frame, Molodensky-Badekas, NADCON,
// NTv2 and a meridian change; two deprecated codes.
char const kSlice[] = "4326,4978,32632,27700,2154,31467,3832,27572,1314,1673,1066,1241,1313,1763,2037,4001";

bool HaveRegistry() { return QFile::exists(QStringLiteral(VELMORA_PROJ_DB)); }

class Slice : public ::testing::Test
{
protected:
  static void SetUpTestSuite()
  {
    if (!HaveRegistry())
      return;
    s_dir = new QTemporaryDir;
    QProcess tool;
    tool.start(QStringLiteral(VELMORA_DATA_TOOL),
               {"--db", VELMORA_PROJ_DB, "--schema", SourceSchema(), "--out", s_dir->filePath("slice.xml"),
                "--only-codes", kSlice});
    tool.waitForFinished(60000);
    s_exitCode = tool.exitStatus() == QProcess::NormalExit ? tool.exitCode() : -1;
    s_report = new QString(QString::fromUtf8(tool.readAllStandardOutput() + tool.readAllStandardError()));
    s_source = new CDataSource;
    if (s_exitCode == 0)
      s_source->LoadFile(CString(s_dir->filePath("slice.xml")));
  }
  static void TearDownTestSuite()
  {
    delete s_source;
    delete s_report;
    delete s_dir;
  }
  void SetUp() override
  {
    if (!HaveRegistry())
      GTEST_SKIP() << VELMORA_PROJ_DB << " is missing";
    ASSERT_EQ(s_exitCode, 0) << s_report->toStdString();
    ASSERT_TRUE(s_source->IsLoaded());
  }

  static CS::CProjectedCoordSys * Projected(char const * code)
  {
    return s_source->GetProjectedCoordSys(CString("EPSG"), CString(code));
  }

  static QTemporaryDir * s_dir;
  static QString * s_report;
  static CDataSource * s_source;
  static int s_exitCode;
};

QTemporaryDir * Slice::s_dir = nullptr;
QString * Slice::s_report = nullptr;
CDataSource * Slice::s_source = nullptr;
int Slice::s_exitCode = -1;

double Angle(CS::PJ::CProjection const & p, char const * name)
{
  return p.GetParameters().GetAngularValue(CString(name)).GetInternal();
}
double Length(CS::PJ::CProjection const & p, char const * name)
{
  return p.GetParameters().GetLinearValue(CString(name)).GetInternal();
}

} // namespace

TEST_F(Slice, ToolReportsItsCountsAndTheFileIsValid)
{
  // Six projected systems: the deprecated 2037 is not among them.
  EXPECT_TRUE(s_report->contains(QRegularExpression("\\n\\s+6  projected coordinate systems\\n")))
    << s_report->toStdString();
  EXPECT_TRUE(s_report->contains(QRegularExpression("\\n\\s+6  datum shifts\\n"))) << s_report->toStdString();
  EXPECT_EQ(s_source->SearchDB(kObjectProjectedCoordSys).size(), 6u);
  EXPECT_EQ(s_source->SearchDB(kObjectDatumShift).size(), 6u);
  EXPECT_EQ(s_source->SearchDB(kObjectGeocentricCoordSys).size(), 1u);
  // The schema was copied beside the file, and the file keeps to it.
  EXPECT_TRUE(QFile::exists(s_dir->filePath("velmora.xsd")));
  ExpectValid(CString(s_dir->filePath("slice.xml")));
  // The store read the class types from the schema beside the file.
  EXPECT_FALSE(s_source->GetProjectionClassTypes().empty());
}

TEST_F(Slice, DeprecatedObjectsAreLeftOut)
{
  EXPECT_EQ(s_source->FindObject(kObjectAnyCoordSys, CString("EPSG"), CString("2037")), nullptr);
  EXPECT_EQ(s_source->FindObject(kObjectAnyCoordSys, CString("EPSG"), CString("4001")), nullptr);
  EXPECT_EQ(Raised([] { delete s_source->GetProjectedCoordSys(CString("EPSG"), CString("2037")); }).GetErrorCode(),
            24);
}

TEST_F(Slice, Wgs84GeographicIsLongitudeFirstWithBothIdentifiers)
{
  std::unique_ptr<CS::CGeodeticCoordSys> wgs84(s_source->GetGeodeticCoordSys(CString("EPSG"), CString("4326")));
  EXPECT_EQ(wgs84->GetName(), CString("WGS 84"));
  EXPECT_EQ(wgs84->GetIdentifiers().GetItem(CString("VM")), CString("4326"));
  CS::CEllipsoid const & e = wgs84->GetHorizontalDatum().GetEllipsoid();
  EXPECT_EQ(e.GetSemiMajor().GetInternal(), 6378137.0);
  EXPECT_NEAR(e.GetInvFlattening(), 298.257223563, 1e-9);
  EXPECT_EQ(e.GetIdentifiers().GetItem(CString("EPSG")), CString("7030"));
  EXPECT_EQ(wgs84->GetHorizontalDatum().GetPrimeMeridian().GetLongitude().GetInternal(), 0.0);
  auto const & style = dynamic_cast<ML::CGeodeticPoint const &>(wgs84->GetPointStyle());
  EXPECT_EQ(style.GetLon().GetLabel(), CString("Longitude"));
  EXPECT_EQ(style.GetLat().GetLabel(), CString("Latitude"));
  EXPECT_EQ(style.GetLon().GetUnits().GetUnitsPerDegree(), 1.0);
  // World-wide, and the fast path takes longitude first.
  double x = 10.0, y = 50.0;
  EXPECT_TRUE(wgs84->ToGeodeticBase(x, y));
  EXPECT_EQ(x, 10.0);
  ML::CGeodeticPoint out(2);
  EXPECT_TRUE(wgs84->ToGeodeticBase(ML::CGeodeticPoint(-179.5, -89.0), out));
}

TEST_F(Slice, ProjectedSystemsCarryTheirPublishedParameters)
{
  std::unique_ptr<CS::CProjectedCoordSys> utm(Projected("32632"));
  EXPECT_EQ(utm->GetProjection().GetTypeName(), CString("Universal Transverse Mercator"));
  EXPECT_EQ(utm->GetProjection().GetParameters().GetLong(CString("zone")), 32);
  EXPECT_EQ(utm->GetProjection().GetParameters().GetLong(CString("is_north")), 1);
  EXPECT_EQ(utm->GetProjection().GetParameters().GetLong(CString("autoset")), 0);
  EXPECT_EQ(utm->GetGeodeticCoordSys().GetIdentifiers().GetItem(CString("EPSG")), CString("4326"));

  std::unique_ptr<CS::CProjectedCoordSys> bng(Projected("27700"));
  CS::PJ::CProjection const & tm = bng->GetProjection();
  EXPECT_EQ(tm.GetTypeName(), CString("Transverse Mercator"));
  EXPECT_EQ(Angle(tm, "central_meridian"), -2.0);
  EXPECT_EQ(Angle(tm, "latitude_of_origin"), 49.0);
  EXPECT_EQ(tm.GetParameters().GetDouble(CString("scale_factor")), 0.9996012717);
  EXPECT_EQ(Length(tm, "false_easting"), 400000.0);
  EXPECT_EQ(Length(tm, "false_northing"), -100000.0);
  EXPECT_EQ(bng->GetHorizontalDatum().GetEllipsoid().GetSemiMajor().GetInternal(), 6377563.396);
  EXPECT_NEAR(bng->GetHorizontalDatum().GetEllipsoid().GetInvFlattening(), 299.3249646, 1e-9);
  // Shelved by area: the folder takes the first part of the area's name.
  std::vector<long> const path = s_source->FindObjectPath(kObjectProjectedCoordSys, CString("VM"), CString("27700"));
  ASSERT_EQ(path.size(), 3u); // UK, Projected, Coordinate Systems
  EXPECT_EQ(s_source->GetGroupName(path[0], kObjectProjectedCoordSys), CString("UK"));
  EXPECT_EQ(path[1], 1300);

  std::unique_ptr<CS::CProjectedCoordSys> gk(Projected("31467"));
  EXPECT_EQ(gk->GetProjection().GetTypeName(), CString("Transverse Mercator"));
  EXPECT_EQ(Angle(gk->GetProjection(), "central_meridian"), 9.0);
  EXPECT_EQ(gk->GetProjection().GetParameters().GetDouble(CString("scale_factor")), 1.0);
  EXPECT_EQ(Length(gk->GetProjection(), "false_easting"), 3500000.0);
  EXPECT_EQ(gk->GetHorizontalDatum().GetEllipsoid().GetIdentifiers().GetItem(CString("EPSG")), CString("7004"));

  std::unique_ptr<CS::CProjectedCoordSys> lambert93(Projected("2154"));
  CS::PJ::CProjection const & lcc = lambert93->GetProjection();
  EXPECT_EQ(lcc.GetTypeName(), CString("Lambert Conformal Conic"));
  EXPECT_EQ(Angle(lcc, "latitude_of_origin"), 46.5);
  EXPECT_EQ(Angle(lcc, "central_meridian"), 3.0);
  EXPECT_EQ(Angle(lcc, "standard_parallel1"), 49.0);
  EXPECT_EQ(Angle(lcc, "standard_parallel2"), 44.0);
  EXPECT_EQ(Length(lcc, "false_easting"), 700000.0);
  EXPECT_EQ(Length(lcc, "false_northing"), 6600000.0);

  // Lambert 1SP as the tangent cone, in grads on the Paris meridian: the unit
  // stays the registry's, the value inside is in degrees.
  std::unique_ptr<CS::CProjectedCoordSys> zone2(Projected("27572"));
  CS::PJ::CProjection const & tangent = zone2->GetProjection();
  EXPECT_EQ(tangent.GetTypeName(), CString("Lambert Tangent"));
  ML::CAngularValue const & lat0 = tangent.GetParameters().GetAngularValue(CString("latitude_of_origin"));
  EXPECT_NEAR(lat0.GetValue(), 52.0, 1e-12);
  EXPECT_NEAR(lat0.GetInternal(), 46.8, 1e-12);
  EXPECT_EQ(lat0.GetUnits().GetIdentifiers().GetItem(CString("EPSG")), CString("9105"));
  EXPECT_EQ(tangent.GetParameters().GetDouble(CString("scale_factor")), 0.99987742);
  EXPECT_EQ(Length(tangent, "false_northing"), 2200000.0);
  EXPECT_NEAR(zone2->GetHorizontalDatum().GetPrimeMeridian().GetLongitude().GetInternal(), 2.33722917, 1e-8);
}

TEST_F(Slice, AnAreaOfUseRefusesPointsOutsideIt)
{
  // A point of Britain is refused by UTM 32N.
  std::unique_ptr<CS::CProjectedCoordSys> utm(Projected("32632"));
  double x = -1.5, y = 52.5;
  EXPECT_EQ(Raised([&] { utm->FromGeodeticBase(x, y); }).GetErrorCode(), 43);
}

// The two-number test of an envelope has no wrap: an area across 180 keeps
// its latitudes and takes every longitude a conversion may give.
TEST_F(Slice, AnAreaAcrossTheAntimeridianTakesEveryLongitude)
{
  std::unique_ptr<CS::CProjectedCoordSys> pdc(Projected("3832"));
  ML::CEnvelope const & area = pdc->GetEnvelope();
  EXPECT_FALSE(area.GetAlwaysAccept());
  double minLon, minLat, maxLon, maxLat;
  area.GetMinPoint()->GetInternals(minLon, minLat);
  area.GetMaxPoint()->GetInternals(maxLon, maxLat);
  EXPECT_EQ(minLon, -360.0);
  EXPECT_EQ(maxLon, 360.0);
  EXPECT_EQ(minLat, -60.0);
  EXPECT_EQ(maxLat, 66.67);
  EXPECT_FALSE(area.InBounds(0.0, 70.0));
  // An area that stays on one side keeps its longitudes.
  std::unique_ptr<CS::CProjectedCoordSys> utm(Projected("32632"));
  utm->GetEnvelope().GetMinPoint()->GetInternals(minLon, minLat);
  utm->GetEnvelope().GetMaxPoint()->GetInternals(maxLon, maxLat);
  EXPECT_EQ(minLon, 6.0);
  EXPECT_EQ(maxLon, 12.0);
}

TEST_F(Slice, ShiftsTakeThePositionVectorSenseAndTheirFiles)
{
  std::unique_ptr<CT::DS::CDatumShift> osgb(s_source->GetDatumShift(CString("EPSG"), CString("1314")));
  EXPECT_EQ(osgb->GetTypeName(), CString("BursaWolfe"));
  CParameterCollection const & pv = osgb->GetParameters();
  EXPECT_EQ(pv.GetLinearValue(CString("dx")).GetInternal(), 446.448);
  EXPECT_NEAR(pv.GetAngularValue(CString("rz")).GetValue(), 0.842, 1e-12); // arc-seconds as published
  EXPECT_EQ(pv.GetAngularValue(CString("rz")).GetUnits().GetUnitsPerDegree(), 3600.0);
  EXPECT_EQ(pv.GetDouble(CString("k")), -20.489);
  EXPECT_EQ(osgb->GetSrcDatum().GetIdentifiers().GetItem(CString("EPSG")), CString("6277"));
  EXPECT_EQ(osgb->GetDestDatum().GetIdentifiers().GetItem(CString("EPSG")), CString("6326"));

  // DHDN to WGS 84 (1) is published in the coordinate frame sense: rotations
  // change sign, translations and scale stay.
  std::unique_ptr<CT::DS::CDatumShift> dhdn(s_source->GetDatumShift(CString("EPSG"), CString("1673")));
  CParameterCollection const & cf = dhdn->GetParameters();
  EXPECT_EQ(dhdn->GetTypeName(), CString("BursaWolfe"));
  EXPECT_NEAR(cf.GetAngularValue(CString("rx")).GetValue(), 1.04, 1e-12);
  EXPECT_NEAR(cf.GetAngularValue(CString("ry")).GetValue(), 0.35, 1e-12);
  EXPECT_NEAR(cf.GetAngularValue(CString("rz")).GetValue(), -3.08, 1e-12);
  EXPECT_EQ(cf.GetDouble(CString("k")), 8.3);

  std::unique_ptr<CT::DS::CDatumShift> nadcon(s_source->GetDatumShift(CString("EPSG"), CString("1241")));
  EXPECT_EQ(nadcon->GetTypeName(), CString("Nadcon"));
  EXPECT_EQ(nadcon->GetParameters().GetString(CString("las_name")), CString("conus.las"));
  EXPECT_EQ(nadcon->GetParameters().GetString(CString("los_name")), CString("conus.los"));
  std::unique_ptr<CT::DS::CDatumShift> ntv2(s_source->GetDatumShift(CString("EPSG"), CString("1313")));
  EXPECT_EQ(ntv2->GetTypeName(), CString("CanadianNTV2"));
  EXPECT_EQ(ntv2->GetParameters().GetString(CString("cantrans_file")), CString("NTv2_0.gsb"));

  // NTF (Paris) to NTF: the registry's rotation is the Paris meridian, which
  // the geodetic systems already take out: nothing of it remains.
  std::unique_ptr<CT::DS::CDatumShift> paris(s_source->GetDatumShift(CString("EPSG"), CString("1763")));
  EXPECT_EQ(paris->GetTypeName(), CString("LongitudeRotation"));
  EXPECT_EQ(paris->GetParameters().GetAngularValue(CString("rotation")).GetInternal(), 0.0);
}

// The file of the build, when the registry was there to build it from.
TEST(ShippedDataFile, HoldsTheRegistrysSystemsWithoutDeprecatedOnes)
{
  QString const path = QStringLiteral(VELMORA_DATA_FILE);
  if (path.isEmpty() || !QFile::exists(path))
    GTEST_SKIP() << "no data file in this build";
  EXPECT_TRUE(QFile::exists(QFileInfo(path).dir().filePath("velmora.xsd")));
  CDataSource source;
  ASSERT_TRUE(source.LoadFile(CString(path)));
  auto const projected = source.SearchDB(kObjectProjectedCoordSys);
  EXPECT_GE(projected.size(), 5000u);
  EXPECT_GE(source.SearchDB(kObjectGeodeticCoordSys).size(), 700u);
  EXPECT_GE(source.SearchDB(kObjectDatumShift).size(), 1000u);
  // Every stored system carries the registry's code beside its own, and they agree.
  for (CSerializableDataDB const * body : projected)
    ASSERT_EQ(body->GetIdentifiers().GetItem(CString("EPSG")), body->GetIdentifiers().GetItem(CString("VM")));
  for (char const * code : {"2037", "2038", "2008"})
    EXPECT_EQ(source.FindObject(kObjectAnyCoordSys, CString("EPSG"), CString(code)), nullptr) << code;
  for (char const * code : {"4326", "32632", "27700", "2154", "31467", "3832", "28992", "3035"})
    EXPECT_NE(source.FindObject(kObjectAnyCoordSys, CString("EPSG"), CString(code)), nullptr) << code;
  std::unique_ptr<CS::CProjectedCoordSys> utm(source.GetProjectedCoordSys(CString("EPSG"), CString("32632")));
  double x = 9.0, y = 45.0;
  ASSERT_TRUE(utm->FromGeodeticBase(x, y));
  EXPECT_NEAR(y, 4982950.400227, 1e-3);
}
