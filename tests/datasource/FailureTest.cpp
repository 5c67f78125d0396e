// What a load or a commit refuses, with its code, place and text, and what
// it leaves behind.
#include "DataFileSupport.h"

#include "../support/TestSupport.h"

#include <velmora/velmora.h>

#include <QDir>

using namespace Velmora;
using namespace VelmoraTest;
using DB::CDataSource;
using EX::CVelmoraException;

namespace {

class Failures : public DataFileTest
{
protected:
  // The file of every kind, changed by `edit`, staged under `name`.
  CString Edited(char const * name, std::function<void(QByteArray &)> const & edit)
  {
    QByteArray bytes = ReadAll(DataFile("all_kinds.xml"));
    edit(bytes);
    CString const path = Path(name);
    WriteAll(path, bytes);
    return path;
  }
};

TEST_F(Failures, ParserReportsEndTheLoadWithCodeTwo)
{
  CString const broken = Edited("broken.xml", [](QByteArray & b) { b.truncate(b.indexOf("</ellipsoids>")); });
  CDataSource source;
  auto const e = Raised([&] { source.LoadFile(broken); });
  EXPECT_EQ(e.GetErrorCode(), CVelmoraException::kXercesParse);
  EXPECT_EQ(e.GetLocation(), CString("CDataSource::LoadFile"));
  EXPECT_TRUE(e.GetDetails().startsWith(QString("fatal error in ") + broken + " at line ")) << e.GetDetails().toStdString();
  EXPECT_FALSE(source.IsLoaded());

  // A warning is as final as an error: a notation declared twice.
  CString const warned = Edited("warned.xml", [](QByteArray & b) {
    b.replace("<velmora xmlns", "<!DOCTYPE velmora [ <!NOTATION n SYSTEM \"a\"> <!NOTATION n SYSTEM \"b\"> ]>\n<velmora xmlns");
  });
  auto const w = Raised([&] { source.LoadFile(warned); });
  EXPECT_EQ(w.GetErrorCode(), CVelmoraException::kXercesParse);
  EXPECT_TRUE(w.GetDetails().startsWith(QString("warning in ") + warned + " at line 2, column ")) << w.GetDetails().toStdString();
  EXPECT_FALSE(source.IsLoaded());
}

TEST_F(Failures, AGroupThatNoFolderDefinesStopsTheLoad)
{
  CString const path = Edited("orphan.xml", [](QByteArray & b) {
    b.replace("<ellipsoid group=\"400\" id=\"2\"", "<ellipsoid group=\"4242\" id=\"2\"");
  });
  CDataSource source;
  ExpectFailures({{"unknown folder", [&] { source.LoadFile(path); }, CVelmoraException::kIdentifierNotFound,
                   "C##name##GroupHandler::endElement", "Group or folder with id 4242"}});
  EXPECT_FALSE(source.IsLoaded());
}

TEST_F(Failures, AMissingTargetLoadsEmptyAndStopsTheWriterWithTheFormerFileKept)
{
  CString const path = Edited("missing.xml", [](QByteArray & b) {
    b.replace("<ellipsoid code=\"2\" issuer=\"VM\"/>", "<ellipsoid code=\"99\" issuer=\"VM\"/>");
  });
  QByteArray const before = ReadAll(path);
  CDataSource source;
  ASSERT_TRUE(source.LoadFile(path));
  std::unique_ptr<CS::CHorizontalDatum> datum(source.GetHorizontalDatum(CString("2")));
  EXPECT_TRUE(datum->GetEllipsoid().GetIdentifiers().Count() == 0);
  // The datum's own completeness check names the reference that lacks an identifier.
  auto const e = Raised([&] { source.CommitToFile(); });
  EXPECT_EQ(e.GetErrorCode(), CVelmoraException::kReferenceNeedsIdentifier);
  EXPECT_EQ(e.GetLocation(), CString("CHorizontalDatumData::IsFullyDefined"));
  // The writer had begun on a file of its own, which is gone again.
  EXPECT_EQ(ReadAll(path), before);
  EXPECT_TRUE(source.IsLoaded());
  EXPECT_FALSE(QFile::exists(path + ".partial"));
}

TEST_F(Failures, PathsThatCannotBeWrittenLeaveFileAndStoreAsTheyWere)
{
  CString const path = Stage("all_kinds.xml");
  CDataSource source;
  ASSERT_TRUE(source.LoadFile(path));
  QByteArray const before = ReadAll(path);
  CString const directory = CString(m_dir.path());
  CString const nowhere = Path("no/such/dir/file.xml");
  ExpectFailures({
    {"a directory", [&] { source.CommitToFile(directory); }, CVelmoraException::kReadOnlyFile, "CXmlWriter::CXmlWriter",
     (CString("Couldn't open the file <") + directory + CString("> for writing")).toUtf8().constData()},
    {"no directory", [&] { source.CommitToFile(nowhere); }, CVelmoraException::kReadOnlyFile, "CXmlWriter::CXmlWriter",
     (CString("Couldn't open the file <") + nowhere + CString("> for writing")).toUtf8().constData()},
  });
  EXPECT_EQ(ReadAll(path), before);
  EXPECT_TRUE(source.IsLoaded());
  std::unique_ptr<CS::CEllipsoid> wgs84(source.GetEllipsoid(CString("1")));
  EXPECT_EQ(wgs84->GetName(), CString("WGS 84"));
}

TEST_F(Failures, AReadOnlyStoreRefusesEditsButCommits)
{
  CString const path = Stage("all_kinds.xml");
  CDataSource source;
  ASSERT_TRUE(source.LoadFile(path));
  source.SetReadOnly(true);
  std::unique_ptr<CS::CEllipsoid> wgs84(source.GetEllipsoid(CString("1")));
  ExpectFailures({{"put", [&] { source.PutEllipsoid(*wgs84, true); }, CVelmoraException::kReadOnlyFile,
                   "CDataSource::Put##name", path.toUtf8().constData()}});
  CString const copy = Path("copy.xml");
  EXPECT_TRUE(source.CommitToFile(copy));
  EXPECT_EQ(ReadAll(copy), ReadAll(path));
}

TEST_F(Failures, ANewDirectoryGetsTheSchemaOrTheCommitFailsWithoutOne)
{
  CString const path = Stage("all_kinds.xml");
  CDataSource source;
  ASSERT_TRUE(source.LoadFile(path));
  ASSERT_TRUE(QDir(m_dir.path()).mkdir("elsewhere"));
  CString const moved = Path("elsewhere/moved.xml");
  ASSERT_TRUE(source.CommitToFile(moved));
  EXPECT_EQ(ReadAll(Path("elsewhere/velmora.xsd")), ReadAll(SourceSchema()));
  EXPECT_EQ(source.GetFileName(), path); // the store keeps its own file
  CDataSource there;
  ASSERT_TRUE(there.LoadFile(moved));
  EXPECT_EQ(there.GetProjectionClassTypes().size(), std::size_t(CS::PJ::CProjection::kTypeCount));

  ASSERT_TRUE(QFile::remove(Path("velmora.xsd")));
  ASSERT_TRUE(QDir(m_dir.path()).mkdir("bare"));
  ExpectFailures({{"no schema", [&] { source.CommitToFile(Path("bare/file.xml")); },
                   CVelmoraException::kInvalidParameter, "CDataSource::CommitToFile", ""}});
  EXPECT_FALSE(QFile::exists(Path("bare/file.xml")));
  // Before a load, the schema comes first, then the store's state.
  CDataSource empty;
  ExpectFailures({{"not loaded", [&] { empty.CommitToFile(moved); }, CVelmoraException::kDataSourceNotLoaded,
                   "CDataSource::CommitToFile", ""}});
}

TEST_F(Failures, AmpersandsSurviveAndAngleBracketsAreRefusedOnTheNextLoad)
{
  CString const path = Stage("all_kinds.xml");
  CDataSource source;
  ASSERT_TRUE(source.LoadFile(path));
  ASSERT_TRUE(source.AssignObjectName(CString("Metre & more"), kObjectLinearUnit, CString("VM"), CString("1")));
  CString const amp = Path("amp.xml");
  ASSERT_TRUE(source.CommitToFile(amp));
  EXPECT_TRUE(ReadAll(amp).contains("name=\"Metre &amp; more\""));
  CDataSource reread;
  ASSERT_TRUE(reread.LoadFile(amp));
  std::unique_ptr<ML::CLinearUnit> metre(reread.GetLinearUnit(CString("1")));
  EXPECT_EQ(metre->GetName(), CString("Metre & more"));
  EXPECT_EQ(reread.GetGroupName(1501, kObjectLinearUnit), CString("Feet & inches"));

  ASSERT_TRUE(source.AssignObjectName(CString("a<b"), kObjectLinearUnit, CString("VM"), CString("1")));
  CString const angle = Path("angle.xml");
  ASSERT_TRUE(source.CommitToFile(angle));
  CDataSource refused;
  auto const e = Raised([&] { refused.LoadFile(angle); });
  EXPECT_EQ(e.GetErrorCode(), CVelmoraException::kXercesParse);
  EXPECT_TRUE(e.GetDetails().startsWith("fatal error in ")) << e.GetDetails().toStdString();
}

TEST_F(Failures, TheSchemaListsTheClassTypesOfTheCode)
{
  CDataSource source;
  ASSERT_TRUE(source.LoadFile(Stage("all_kinds.xml")));
  auto const expect = [](std::vector<CString> const & listed, int count, CString (*name)(int), char const * what) {
    ASSERT_EQ(listed.size(), std::size_t(count)) << what;
    for (int i = 0; i < count; ++i)
      EXPECT_EQ(listed[std::size_t(i)], name(i)) << what << " " << i;
  };
  expect(source.GetDatumShiftClassTypes(), CT::DS::CDatumShift::kTypeCount, CT::DS::CDatumShift::TypeName, "shifts");
  expect(source.GetMathTransformClassTypes(), CT::MT::CMathTransform::kTypeCount, CT::MT::CMathTransform::TypeName,
         "math transforms");
  expect(source.GetProjectionClassTypes(), CS::PJ::CProjection::kTypeCount, CS::PJ::CProjection::TypeName,
         "projections");
  expect(source.GetHeightModelClassTypes(), CS::VR::CHeightModel::kTypeCount, CS::VR::CHeightModel::TypeName,
         "height models");
  expect(source.GetVerticalDatumClassTypes(), CS::VR::CVerticalDatum::kTypeCount, CS::VR::CVerticalDatum::TypeName,
         "vertical datums");
}

} // namespace
