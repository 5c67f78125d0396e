// The corners of the format: a nearly empty store, files without folders,
// numbers as written, and flags left out.
#include "DataFileSupport.h"

#include "../support/TestSupport.h"

#include <velmora/datasource/sax/dbGroup.h>
#include <velmora/velmora.h>

#include <QStringList>

using namespace Velmora;
using namespace VelmoraTest;
using DB::CDataSource;

namespace {

class EdgeCases : public DataFileTest
{
};

// A store made in memory: a metre (also TWL's "METRE" if asked) and one ellipsoid on it.
void PutEllipsoid(CDataSource & source, char const * name = "WGS 84", char const * code = "7", double a = 6378137.0,
                  double invF = 298.257223563, bool twlMetre = false)
{
  source.SetLoaded(true);
  ML::CLinearUnit metre(CString("Metre"), CString("m"), 1.0);
  metre.GetIdentifiers().Add(CString("VM"), CString("1"));
  if (twlMetre)
    metre.GetIdentifiers().Add(CString("TWL"), CString("METRE"));
  ASSERT_TRUE(source.PutLinearUnit(metre, false));
  std::unique_ptr<ML::CLinearUnit> stored(source.GetLinearUnit(CString("1")));
  CS::CEllipsoid ellipsoid;
  ellipsoid.SetName(CString(name));
  ellipsoid.GetIdentifiers().Add(CString("VM"), CString(code));
  ML::CLinearValue axis;
  axis.SetUnits(*stored);
  axis.SetValue(a);
  ellipsoid.SetSemiMajor(axis);
  ellipsoid.SetInvFlattening(invF);
  ASSERT_TRUE(source.PutEllipsoid(ellipsoid, false));
}

TEST_F(EdgeCases, OneEllipsoidGivesEveryPluralElementInOrder)
{
  CDataSource source;
  PutEllipsoid(source);
  source.SetFileName(Path("one.xml"));
  ASSERT_TRUE(source.CommitToFile());
  EXPECT_EQ(source.GetNumberOfModifications(), 0);
  ExpectValid(Path("one.xml"));
  QStringList const lines = QString::fromUtf8(ReadAll(Path("one.xml"))).split('\n');

  // The header, then the eighteen elements, each after one empty line.
  EXPECT_EQ(lines[0], "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>");
  EXPECT_EQ(lines[1], "<velmora xmlns:xs=\"http://www.w3.org/2001/XMLSchema-instance\" "
                      "xs:noNamespaceSchemaLocation=\"velmora.xsd\">");
  int found = 0;
  for (qsizetype i = 2; i < lines.size(); ++i) {
    if (lines[i].isEmpty() && i + 1 < lines.size() && lines[i + 1].startsWith("  <") && !lines[i + 1].startsWith("  </")) {
      long const type = DB::SAX::dbGroup::FileOrder()[std::size_t(found)];
      EXPECT_EQ(lines[i + 1], QString("  <") + DB::SAX::dbGroup::PluralElement(type) + ">");
      // Those without objects hold their folder tree and nothing else.
      if (type != kObjectLinearUnit && type != kObjectEllipsoid) {
        qsizetype end = i + 1;
        while (!lines[end].startsWith(QString("  </")))
          ++end;
        EXPECT_EQ(lines[end - 1].trimmed(), "</grouptree>") << DB::SAX::dbGroup::PluralElement(type);
      }
      ++found;
    }
  }
  EXPECT_EQ(found, 18);
  EXPECT_EQ(lines[lines.size() - 2], "</velmora>");
  EXPECT_TRUE(lines.last().isEmpty()); // the file ends in a line feed

  // The semi-major axis without a decimal point, the inverse flattening in full.
  EXPECT_TRUE(lines.contains("      <semimajor code=\"1\" issuer=\"VM\">6378137</semimajor>"));
  EXPECT_TRUE(lines.contains("      <invflattening>298.257223563</invflattening>"));
  EXPECT_TRUE(lines.contains("    <ellipsoid group=\"400\" id=\"7\" name=\"WGS 84\">"));

  CDataSource reread;
  ASSERT_TRUE(reread.LoadFile(Path("one.xml")));
  std::unique_ptr<CS::CEllipsoid> ellipsoid(reread.GetEllipsoid(CString("7")));
  EXPECT_EQ(ellipsoid->GetSemiMajor().GetValue(), 6378137.0);
  EXPECT_NEAR(ellipsoid->GetInvFlattening(), 298.257223563, 1e-9);
  EXPECT_TRUE(ellipsoid->GetInvFlatDefinitive());
}

TEST_F(EdgeCases, AFileWithoutFoldersGetsTheDefaultTreeAndGroupZeroIsThePrimaryFolder)
{
  QByteArray const text = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n"
                          "<velmora>\n"
                          "  <linearunits>\n"
                          "    <grouptree/>\n"
                          "    <linearunit id=\"1\" name=\"Metre\">\n"
                          "      <identifiers><tag code=\"1\" issuer=\"VM\"/></identifiers>\n"
                          "      <unitspermeter>1</unitspermeter>\n"
                          "    </linearunit>\n"
                          "  </linearunits>\n"
                          "  <ellipsoids>\n"
                          "    <grouptree></grouptree>\n"
                          "    <ellipsoid group=\"0\" id=\"1\" name=\"Sphere\">\n"
                          "      <identifiers><tag code=\"1\" issuer=\"VM\"/></identifiers>\n"
                          "      <semimajor code=\"1\" issuer=\"VM\">6371000</semimajor>\n"
                          "      <semiminor code=\"1\" issuer=\"VM\">6371000</semiminor>\n"
                          "    </ellipsoid>\n"
                          "  </ellipsoids>\n"
                          "  <projectedcoordsystems><grouptree/></projectedcoordsystems>\n"
                          "</velmora>\n";
  WriteAll(Path("bare.xml"), text);
  CDataSource source;
  ASSERT_TRUE(source.LoadFile(Path("bare.xml")));
  // The ellipsoid's folder takes its name from the first row of the type names.
  EXPECT_EQ(source.GetGroupName(400, kObjectEllipsoid), CString("Angular Units"));
  EXPECT_EQ(source.GetParentGroupID(400, kObjectEllipsoid), 1);
  EXPECT_EQ(source.GetGroupName(1000, kObjectProjectedCoordSys), CString("Coordinate Systems"));
  EXPECT_EQ(source.GetParentGroupID(1300, kObjectProjectedCoordSys), 1000);
  EXPECT_EQ(source.GetChildObjects(kObjectEllipsoid, 400).size(), 1u);
  EXPECT_EQ(source.GetChildObjects(kObjectLinearUnit, 200).size(), 1u);
  std::unique_ptr<CS::CEllipsoid> sphere(source.GetEllipsoid(CString("1")));
  EXPECT_FALSE(sphere->GetInvFlatDefinitive());
  EXPECT_NEAR(sphere->GetEccentricity(), 0.0, 1e-12);
  // Written back, the group is the primary folder's.
  ASSERT_TRUE(source.CommitToFile(Path("bare2.xml")));
  EXPECT_TRUE(ReadAll(Path("bare2.xml")).contains("<ellipsoid group=\"400\" id=\"1\" name=\"Sphere\">"));
  ExpectValid(Path("bare2.xml"));
}

TEST_F(EdgeCases, ReversedReadsTrueUnlessItIsExactlyFalse)
{
  struct Case
  {
    char const * attribute;
    bool reversed;
  };
  for (Case const c : {Case{"", true}, Case{" reversed=\"false\"", false}, Case{" reversed=\"true\"", true},
                       Case{" reversed=\"False\"", true}}) {
    QByteArray bytes = ReadAll(DataFile("all_kinds.xml"));
    bytes.replace("<datumshift code=\"1\" issuer=\"VM\" reversed=\"false\"/>",
                  QByteArray("<datumshift code=\"1\" issuer=\"VM\"") + c.attribute + "/>");
    WriteAll(Path("reversed.xml"), bytes);
    CDataSource source;
    ASSERT_TRUE(source.LoadFile(Path("reversed.xml")));
    auto * stored = dynamic_cast<CT::CCoordTransformDataDB *>(
      source.FindObject(kObjectCoordTransform, CString("VM"), CString("1")));
    ASSERT_TRUE(stored);
    auto const & references = stored->GetStoredShifts().GetReferences();
    ASSERT_EQ(references.size(), 1u) << c.attribute;
    EXPECT_EQ(references.front().reversed, c.reversed) << c.attribute;
  }
}

TEST_F(EdgeCases, ForwardReferencesAreResolvedAtTheEndOfTheFile)
{
  CDataSource source;
  ASSERT_TRUE(source.LoadFile(Stage("all_kinds.xml")));
  // The shift names an envelope that comes later in the file.
  std::unique_ptr<CT::DS::CDatumShift> shift(source.GetDatumShift(CString("1")));
  EXPECT_EQ(shift->GetEnvelope().GetName(), CString("North America"));
  EXPECT_FALSE(shift->GetEnvelope().GetAlwaysAccept());
  // Its corners became copies of their style, with the numbers of the file.
  ML::CCoordPoint const * minimum = shift->GetEnvelope().GetMinPoint();
  ASSERT_TRUE(minimum);
  EXPECT_EQ(minimum->GetName(), CString("Degrees"));
  double lon = 0.0, lat = 0.0, h = 0.0;
  minimum->GetInternals(lon, lat, h);
  EXPECT_EQ(lon, -170.0);
  EXPECT_EQ(lat, 10.0);
  EXPECT_EQ(h, -100.0);
  // The vertical reference's datum and model, with their names cleared.
  std::unique_ptr<CS::VR::CVerticalReference> reference(source.GetVerticalReference(CString("1")));
  ASSERT_TRUE(reference->GetVerticalDatum() && reference->GetHeightModel());
  EXPECT_TRUE(reference->GetVerticalDatum()->GetName().isEmpty());
  EXPECT_EQ(reference->GetHeightModel()->GetIdentifiers().GetItem(CString("VM")), CString("1"));
  // Parameters read into the projection the system is made with.
  std::unique_ptr<CS::CProjectedCoordSys> utm(source.GetProjectedCoordSys(CString("32632")));
  double x = 9.0, y = 45.0;
  ASSERT_TRUE(utm->FromGeodeticBase(x, y));
  EXPECT_NEAR(x, 500000.0, 1e-6);
  EXPECT_NEAR(y, 4982950.400, 1e-3); // cs2cs +proj=utm +zone=32 +datum=WGS84 at 9E 45N
}

} // namespace

// References name the writer's own issuer where the object has it, else "VM";
// the reader finds them either way.
TEST_F(EdgeCases, ReferencesPreferTheWritersIssuer)
{
  CDataSource source;
  PutEllipsoid(source, "Clarke 1866", "8", 6378206.4, 294.978698213898, true);
  source.SetFileName(Path("twl.xml"));
  ASSERT_TRUE(source.CommitToFile());
  QString const text = QString::fromUtf8(ReadAll(Path("twl.xml")));
  EXPECT_TRUE(text.contains("<semimajor code=\"METRE\" issuer=\"TWL\">6378206.4</semimajor>")) << text.toStdString();

  CDataSource reread;
  ASSERT_TRUE(reread.LoadFile(Path("twl.xml")));
  std::unique_ptr<CS::CEllipsoid> back(reread.GetEllipsoid(CString("8")));
  EXPECT_TRUE(back->IsNearlyEqual(*std::unique_ptr<CS::CEllipsoid>(source.GetEllipsoid(CString("8")))));
}
