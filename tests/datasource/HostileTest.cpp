// Files a stranger may hand the store, each in tests/data/datasource/hostile
// named "<what>.code<N>.xml": the load fails with code N (0: it loads), and
// none takes long whatever it asks of the parser. A finding of the fuzz
// targets joins the folder as one more file.
#include "DataFileSupport.h"

#include "../support/TestSupport.h"

#include <velmora/velmora.h>

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>

#include <map>

using namespace Velmora;
using namespace VelmoraTest;
using DB::CDataSource;
using EX::CVelmoraException;

namespace {

// Far above what any of them takes, far below what they took unbounded (20 s
// and more); a guard against a hang, not a measure of speed.
constexpr qint64 kHangGuardMs = 5000;

class HostileFiles : public DataFileTest
{
};

TEST_F(HostileFiles, EachLoadsOrFailsWithTheCodeItsNameCarriesAndQuickly)
{
  std::map<int, char const *> const locations{{CVelmoraException::kXercesParse, "CDataSource::LoadFile"},
                                              {CVelmoraException::kElementMissing, "CDataSource::LoadFile"},
                                              {CVelmoraException::kInvalidValue, "CEllipsoidDataDB::SetValue"}};
  QDir const folder(DataFile("hostile"));
  QStringList const names = folder.entryList({"*.xml"}, QDir::Files, QDir::Name);
  ASSERT_FALSE(names.isEmpty());
  QRegularExpression const pattern(R"(\.code(\d+)\.xml$)");
  for (QString const & name : names) {
    SCOPED_TRACE(name.toStdString());
    QRegularExpressionMatch const match = pattern.match(name);
    ASSERT_TRUE(match.hasMatch());
    int const expected = match.captured(1).toInt();
    CString const path = Path(name.toUtf8().constData());
    ASSERT_TRUE(QFile::copy(folder.filePath(name), path));

    CDataSource source;
    QElapsedTimer timer;
    timer.start();
    int code = 0;
    CString location;
    try {
      source.LoadFile(path);
    } catch (CVelmoraException const & e) {
      code = e.GetErrorCode();
      location = e.GetLocation();
    }
    EXPECT_LT(timer.elapsed(), kHangGuardMs);
    EXPECT_EQ(code, expected);
    EXPECT_EQ(source.IsLoaded(), expected == 0);
    if (code != 0 && locations.count(code))
      EXPECT_EQ(location, CString(locations.at(code)));
  }
}

} // namespace
