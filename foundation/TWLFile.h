#pragma once
// TWLFile: the file wrapper of the data source's writer.
#include <velmora/foundation/CString.h>

#include <memory>

class QFile;

namespace Velmora {

class VELMORA_API TWLFile
{
public:
  enum EOpenMode { kReadOnly = 0, kWriteOnly = 1, kReadWrite = 2 };

  explicit TWLFile(CString const & fileName);
  ~TWLFile();
  TWLFile(TWLFile const &) = delete;
  TWLFile & operator=(TWLFile const &) = delete;

  CString const & GetFileName() const { return m_fileName; }

  bool Open(int mode);
  void Close();
  bool Exists() const;
  bool Remove();
  long Size() const;
  // True while the last operation left the device without an error.
  bool Status() const;

  long ReadBlock(char * data, unsigned long maxLength);
  // One line of at most 2048 characters; false at the end or on an error.
  bool ReadLine(CString & line);

  long Write(char const * data, unsigned long length);
  // The text in UTF-8.
  long Write(CString const & text);

private:
  void ThrowIfFailed(long written) const;

  CString m_fileName;
  std::unique_ptr<QFile> m_file;
};

} // namespace Velmora
