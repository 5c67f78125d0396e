#include <velmora/datasource/sax/SAXHandler_p.h>

#include <velmora/foundation/VelmoraException.h>

#include <xercesc/sax/SAXParseException.hpp>

#include <QFile>
#include <QFileInfo>

#include <cstdio>

#include <unistd.h>

namespace Velmora::DB::SAX {

using EX::CVelmoraException;

namespace {
// Beside the target while a commit writes.
constexpr char kPartialSuffix[] = ".partial";
} // namespace

CString FromXml(XMLCh const * text)
{
  if (!text)
    return CString();
  return CString(QString::fromUtf16(text));
}

CString AttributeValue(XN::Attributes const & attributes, char16_t const * name)
{
  return FromXml(attributes.getValue(name));
}

// The writer

CXmlWriter::CXmlWriter(CString const & path) : m_path(path)
{
  QFileInfo const target(path);
  QString const linked = target.isSymLink() ? target.canonicalFilePath() : QString();
  m_target = QFile::encodeName(linked.isEmpty() ? QString(path) : linked);
  m_partial = m_target + kPartialSuffix;
  if (!target.isDir())
    m_file = std::fopen(m_partial.constData(), "wb");
  if (!m_file)
    throw CVelmoraException(CVelmoraException::kReadOnlyFile, "CXmlWriter::CXmlWriter",
                            CString("Couldn't open the file <") + path + CString("> for writing"));
  m_buffer.reserve(1 << 16);
}

CXmlWriter::~CXmlWriter()
{
  if (m_file) {
    std::fclose(m_file);
    std::remove(m_partial.constData());
  }
}

void CXmlWriter::Put(CString const & text)
{
  QByteArray const bytes = text.toUtf8();
  for (char const c : bytes) {
    m_buffer.push_back(c);
    // The one escape the format has: readers must see "&" as text.
    if (c == '&')
      m_buffer.append("amp;");
  }
}

void CXmlWriter::writeLn(CString const & text)
{
  m_buffer.append(static_cast<std::size_t>(2 * (m_indent > 0 ? m_indent : 0)), ' ');
  if (!text.isEmpty())
    Put(text);
  m_buffer.push_back('\n');
  if (m_buffer.size() >= (1 << 16))
    Flush();
}

void CXmlWriter::write(CString const & text)
{
  if (!text.isEmpty())
    Put(text);
}

void CXmlWriter::Flush()
{
  if (!m_file)
    WriteFailed();
  if (!m_buffer.empty() && std::fwrite(m_buffer.data(), 1, m_buffer.size(), m_file) != m_buffer.size())
    WriteFailed();
  m_buffer.clear();
}

void CXmlWriter::Close()
{
  Flush();
  // On the disk before it takes the place of the former file.
  bool const synced = std::fflush(m_file) == 0 && ::fsync(::fileno(m_file)) == 0;
  bool const closed = std::fclose(m_file) == 0;
  m_file = nullptr;
  if (synced && closed) {
    QFileInfo const former(QFile::decodeName(m_target));
    if (former.exists())
      QFile::setPermissions(QFile::decodeName(m_partial), former.permissions());
    if (std::rename(m_partial.constData(), m_target.constData()) == 0)
      return;
  }
  std::remove(m_partial.constData());
  WriteFailed();
}

void CXmlWriter::WriteFailed() const
{
  throw CVelmoraException(CVelmoraException::kXercesWrite, "CXmlWriter::Flush",
                          CString("Failed to write to file <") + m_path +
                            CString(">.  Make sure it is available for writing."));
}

// Errors

CString CXercesErrorHandler::Describe(char const * kind, XN::SAXParseException const & e)
{
  return CString(QString::asprintf("%s in %s at line %d, column %d: %s", kind,
                                   FromXml(e.getSystemId()).toUtf8().constData(),
                                   static_cast<int>(e.getLineNumber()), static_cast<int>(e.getColumnNumber()),
                                   FromXml(e.getMessage()).toUtf8().constData()));
}

void CXercesErrorHandler::warning(XN::SAXParseException const & e)
{
  throw CVelmoraException(CVelmoraException::kXercesParse, "CDataSource::LoadFile", Describe("warning", e));
}

void CXercesErrorHandler::error(XN::SAXParseException const & e)
{
  throw CVelmoraException(CVelmoraException::kXercesParse, "CDataSource::LoadFile", Describe("error", e));
}

void CXercesErrorHandler::fatalError(XN::SAXParseException const & e)
{
  throw CVelmoraException(CVelmoraException::kXercesParse, "CDataSource::LoadFile", Describe("fatal error", e));
}

// The handler base

CSAXHandler::CSAXHandler(XN::SAX2XMLReader * reader, CSAXHandler * parent, CString const & elementName,
                         CDataSource * source)
  : m_elementName(elementName), m_parent(parent), m_reader(reader), m_source(source)
{
}

CSAXHandler::CSAXHandler(CXmlWriter * writer, CSAXHandler * parent, CString const & elementName,
                         CDataSource * source)
  : m_elementName(elementName), m_parent(parent), m_writer(writer), m_source(source)
{
}

CSAXHandler::~CSAXHandler() = default;

void CSAXHandler::startElement(XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
                               XN::Attributes const & attributes)
{
  if (m_depth == 0) {
    m_depth = 1;
    OnOpen(attributes);
    return;
  }
  CString const name = FromXml(localname);
  if (!OnChild(name, uri, localname, qname, attributes))
    ++m_depth; // a child passed over, or one this handler reads itself
}

void CSAXHandler::endElement(XMLCh const *, XMLCh const * localname, XMLCh const *)
{
  if (m_depth > 1) {
    --m_depth;
    OnChildEnd(FromXml(localname));
    return;
  }
  m_depth = 0;
  OnClose();
  HandBack();
}

void CSAXHandler::characters(XMLCh const *, XMLSize_t) {}

void CSAXHandler::OnOpen(XN::Attributes const &) {}

bool CSAXHandler::OnChild(CString const &, XMLCh const *, XMLCh const *, XMLCh const *, XN::Attributes const &)
{
  return false;
}

void CSAXHandler::OnChildEnd(CString const &) {}

void CSAXHandler::HandOver(CSAXHandler & child, XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
                           XN::Attributes const & attributes)
{
  child.m_reader = m_reader;
  child.m_parent = this;
  child.m_source = m_source;
  child.m_depth = 0;
  m_reader->setContentHandler(&child);
  child.startElement(uri, localname, qname, attributes);
}

void CSAXHandler::HandBack()
{
  if (m_parent && m_reader)
    m_reader->setContentHandler(m_parent);
}

// Writing forms

namespace {
CString StartTag(CString const & name, AttributeMap const & attributes)
{
  CString tag = CString("<") + name;
  for (auto const & [key, value] : attributes)
    tag += CString(" ") + key + CString("=\"") + value + CString("\"");
  return tag;
}
} // namespace

void CSAXHandler::OpenElement(CString const & name, AttributeMap const & attributes)
{
  m_writer->writeLn(StartTag(name, attributes) + CString(">"));
  m_writer->Indent();
}

void CSAXHandler::CloseElement(CString const & name)
{
  m_writer->UnIndent();
  m_writer->writeLn(CString("</") + name + CString(">"));
}

void CSAXHandler::LeafElement(CString const & name, CString const & value)
{
  m_writer->writeLn(CString("<") + name + CString(">") + value + CString("</") + name + CString(">"));
}

void CSAXHandler::AttributeElement(CString const & name, AttributeMap const & attributes, CString const & value)
{
  CString const tag = StartTag(name, attributes);
  if (value.isEmpty())
    m_writer->writeLn(tag + CString("/>"));
  else
    m_writer->writeLn(tag + CString(">") + value + CString("</") + name + CString(">"));
}

// Leaves

void CTextHandler::OnOpen(XN::Attributes const &)
{
  m_text.clear();
  m_value.clear();
}

void CTextHandler::characters(XMLCh const * chars, XMLSize_t length)
{
  m_text.append(QString::fromUtf16(chars, static_cast<qsizetype>(length)));
}

void CTextHandler::OnClose()
{
  Store(m_text);
  if (m_target && m_value.isValid())
    m_target->SetValue(m_elementName, m_value);
}

} // namespace Velmora::DB::SAX
