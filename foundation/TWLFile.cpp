#include <velmora/foundation/TWLFile.h>

#include <velmora/foundation/VelmoraException.h>

#include <QFile>

namespace Velmora {

namespace {
constexpr qint64 kMaxLineLength = 2048;
}

TWLFile::TWLFile(CString const & fileName)
  : m_fileName(fileName), m_file(std::make_unique<QFile>(fileName))
{
}

TWLFile::~TWLFile() = default;

bool TWLFile::Open(int mode)
{
  QIODevice::OpenMode qtMode;
  switch (mode) {
  case kReadOnly: qtMode = QIODevice::ReadOnly; break;
  case kWriteOnly: qtMode = QIODevice::WriteOnly; break;
  case kReadWrite: qtMode = QIODevice::ReadWrite; break;
  default: return false;
  }
  return m_file->open(qtMode);
}

void TWLFile::Close() { m_file->close(); }

bool TWLFile::Exists() const { return m_file->exists(); }

bool TWLFile::Remove() { return m_file->remove(); }

long TWLFile::Size() const { return static_cast<long>(m_file->size()); }

bool TWLFile::Status() const { return m_file->error() == QFileDevice::NoError; }

long TWLFile::ReadBlock(char * data, unsigned long maxLength)
{
  return static_cast<long>(m_file->read(data, static_cast<qint64>(maxLength)));
}

bool TWLFile::ReadLine(CString & line)
{
  QByteArray const bytes = m_file->readLine(kMaxLineLength);
  if (bytes.isEmpty() && (m_file->atEnd() || m_file->error() != QFileDevice::NoError))
    return false;
  line = CString(QString::fromUtf8(bytes));
  return true;
}

void TWLFile::ThrowIfFailed(long written) const
{
  if (written == -1)
    throw EX::CVelmoraException(
      EX::CVelmoraException::kReadOnlyFile, "TWLFile::Write",
      CString("Failed to write to file <") + m_fileName + CString(">.  Make sure it is available for writing."));
}

long TWLFile::Write(char const * data, unsigned long length)
{
  long const written = static_cast<long>(m_file->write(data, static_cast<qint64>(length)));
  ThrowIfFailed(written);
  return written;
}

long TWLFile::Write(CString const & text)
{
  QByteArray const bytes = text.toUtf8();
  long const written = static_cast<long>(m_file->write(bytes));
  ThrowIfFailed(written);
  return written;
}

} // namespace Velmora
