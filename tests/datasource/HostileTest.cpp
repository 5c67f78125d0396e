// Files a stranger may hand the store, in data/datasource/hostile, each named
// "<what>.code<N>.xml": its load fails with code N (0: it loads), quickly
// whatever it asks of the parser. One store reads them all in name order, as
// the fuzz target does, and writes each file it loads, so that the
// sanitizers see every body a load leaves behind. A fuzzing find joins them
// as one more file.
#include "DataFileSupport.h"

#include <velmora/velmora.h>

#include <QElapsedTimer>
#include <QRegularExpression>

using namespace VelmoraTest;
using Velmora::DB::CDataSource;
using Velmora::EX::CVelmoraException;

namespace {

// A guard against a hang, far above what each takes and below the 20 s and
// more that they took unbounded; not a measure of speed.
constexpr qint64 kHangGuardMs = 5000;

TEST_F(DataFileTest, HostileFilesLoadOrFailWithTheCodeTheirNamesCarryAndQuickly)
{
  QDir const folder(DataFile("hostile"));
  QStringList const names = folder.entryList({"*.xml"}, QDir::Files, QDir::Name);
  ASSERT_FALSE(names.isEmpty());
  CDataSource source;
  for (QString const & name : names) {
    CString const path = Path(name.toUtf8().constData());
    ASSERT_TRUE(QFile::copy(folder.filePath(name), path));
    int const expected = QRegularExpression(R"(\.code(\d+)\.xml$)").match(name).captured(1).toInt();
    QElapsedTimer timer;
    timer.start();
    CVelmoraException e; // code 0 unless the load raises
    try {
      source.LoadFile(path);
    } catch (CVelmoraException const & raised) {
      e = raised;
    }
    EXPECT_LT(timer.elapsed(), kHangGuardMs) << name.toStdString();
    EXPECT_EQ(e.GetErrorCode(), expected) << name.toStdString();
    EXPECT_EQ(source.IsLoaded(), expected == 0) << name.toStdString();
    if (expected == 0) {
      EXPECT_TRUE(source.CommitToFile(Path("written.xml"))) << name.toStdString();
    } else {
      EXPECT_EQ(e.GetLocation(), CString(expected == CVelmoraException::kInvalidValue ? "CEllipsoidDataDB::SetValue"
                                                                                       : "CDataSource::LoadFile"));
    }
  }
}

} // namespace
