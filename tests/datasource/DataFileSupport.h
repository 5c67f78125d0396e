#pragma once
// A scratch directory with the schema in it, file helpers, and the
// validation of a written file against the schema.
#include <velmora/datasource/CDataSource.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <string>

namespace VelmoraTest {

using Velmora::CString;

inline CString SourceSchema() { return CString(VELMORA_SOURCE_DIR "/data/velmora.xsd"); }
inline CString DataFile(char const * name) { return CString(VELMORA_TEST_DATA "/datasource/") + CString(name); }

inline QByteArray ReadAll(CString const & path)
{
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
    return QByteArray();
  return file.readAll();
}

inline void WriteAll(CString const & path, QByteArray const & bytes)
{
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
  file.write(bytes);
}

// Counts what the schema validation reports.
class CountingErrors : public xercesc::HandlerBase
{
public:
  void warning(xercesc::SAXParseException const &) override { ++count; }
  void error(xercesc::SAXParseException const & e) override { Note(e); }
  void fatalError(xercesc::SAXParseException const & e) override { Note(e); }
  int count = 0;
  std::string first;

private:
  void Note(xercesc::SAXParseException const & e)
  {
    if (count++ == 0)
      first = QString::fromUtf16(e.getMessage()).toStdString() + " at line " + std::to_string(e.getLineNumber());
  }
};

// The file against the schema that lies beside it, with validation on.
inline void ExpectValid(CString const & path)
{
  xercesc::XMLPlatformUtils::Initialize();
  {
    xercesc::XercesDOMParser parser;
    parser.setValidationScheme(xercesc::XercesDOMParser::Val_Always);
    parser.setDoNamespaces(true);
    parser.setDoSchema(true);
    parser.setValidationSchemaFullChecking(true);
    parser.setValidationConstraintFatal(true);
    CountingErrors errors;
    parser.setErrorHandler(&errors);
    std::u16string const name = path.toStdU16String();
    parser.parse(xercesc::LocalFileInputSource(name.c_str()));
    EXPECT_EQ(errors.count, 0) << path.toStdString() << ": " << errors.first;
  }
  xercesc::XMLPlatformUtils::Terminate();
}

// A scratch directory holding the schema, as a data file expects it beside itself.
class DataFileTest : public ::testing::Test
{
protected:
  void SetUp() override
  {
    ASSERT_TRUE(m_dir.isValid());
    ASSERT_TRUE(QFile::copy(SourceSchema(), Path("velmora.xsd")));
  }
  CString Path(char const * name) const { return CString(m_dir.filePath(QString::fromUtf8(name))); }
  // Copies a file of the test data into the scratch directory.
  CString Stage(char const * name)
  {
    CString const target = Path(name);
    QFile::copy(DataFile(name), target);
    return target;
  }

  QTemporaryDir m_dir;
};

} // namespace VelmoraTest
