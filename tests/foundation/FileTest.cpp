#include <velmora/foundation/TWLFile.h>
#include <velmora/foundation/VelmoraException.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using Velmora::CString;
using Velmora::TWLFile;
using Velmora::EX::CVelmoraException;

class TWLFileTest : public ::testing::Test
{
protected:
  QTemporaryDir dir;
  CString Path(char const * name) const { return CString(dir.filePath(QString::fromUtf8(name))); }
};

TEST_F(TWLFileTest, WritesUtf8AndReadsLinesBack)
{
  CString const path = Path("text.xml");
  {
    TWLFile f(path);
    EXPECT_FALSE(f.Exists());
    ASSERT_TRUE(f.Open(TWLFile::kWriteOnly));
    CString const line(QString::fromUtf8("Gau\xC3\x9F\n"));
    EXPECT_EQ(f.Write(line), 6); // the sharp s takes two bytes
    EXPECT_EQ(f.Write("second\n", 7), 7);
    EXPECT_TRUE(f.Status());
  }
  TWLFile f(path);
  EXPECT_TRUE(f.Exists());
  EXPECT_EQ(f.Size(), 13);
  ASSERT_TRUE(f.Open(TWLFile::kReadOnly));
  CString line;
  ASSERT_TRUE(f.ReadLine(line));
  EXPECT_EQ(QString(line), QString::fromUtf8("Gau\xC3\x9F\n"));
  ASSERT_TRUE(f.ReadLine(line));
  EXPECT_EQ(line, CString("second\n"));
  EXPECT_FALSE(f.ReadLine(line));
  f.Close();
  EXPECT_TRUE(f.Remove());
  EXPECT_FALSE(f.Exists());
}

TEST_F(TWLFileTest, ReadBlock)
{
  CString const path = Path("block.bin");
  {
    TWLFile f(path);
    ASSERT_TRUE(f.Open(TWLFile::kWriteOnly));
    f.Write("\x01\x02\x03\x04", 4);
  }
  TWLFile f(path);
  ASSERT_TRUE(f.Open(TWLFile::kReadOnly));
  char buffer[8] = {};
  EXPECT_EQ(f.ReadBlock(buffer, sizeof buffer), 4);
  EXPECT_EQ(buffer[3], 4);
}

TEST_F(TWLFileTest, WriteToReadOnlyFileRaisesCode12)
{
  CString const path = Path("readonly.xml");
  {
    QFile seed(path);
    ASSERT_TRUE(seed.open(QIODevice::WriteOnly));
    seed.write("x");
  }
  CString const details =
    CString("Failed to write to file <") + path + CString(">.  Make sure it is available for writing.");
  TWLFile f(path);
  ASSERT_TRUE(f.Open(TWLFile::kReadOnly));
  for (int overload = 0; overload < 2; ++overload) {
    try {
      if (overload == 0)
        f.Write(CString("text"));
      else
        f.Write("text", 4);
      ADD_FAILURE() << "no exception from overload " << overload;
    } catch (CVelmoraException const & e) {
      EXPECT_EQ(e.GetErrorCode(), 12);
      EXPECT_EQ(e.GetLocation(), CString("TWLFile::Write"));
      EXPECT_EQ(e.GetDetails(), details);
      EXPECT_EQ(e.GetFullMessage(),
                CString("Attempted to write to a read only file [TWLFile::Write]: ") + details);
    }
  }
  // A file that was never opened fails the same way.
  TWLFile closed(Path("never-opened.xml"));
  EXPECT_THROW(closed.Write("x", 1), CVelmoraException);
}

TEST_F(TWLFileTest, OpenModes)
{
  TWLFile missing(Path("missing.xml"));
  EXPECT_FALSE(missing.Open(TWLFile::kReadOnly));
  EXPECT_FALSE(missing.Open(7));
  TWLFile rw(Path("rw.xml"));
  ASSERT_TRUE(rw.Open(TWLFile::kReadWrite));
  EXPECT_EQ(rw.Write("abc", 3), 3);
}
