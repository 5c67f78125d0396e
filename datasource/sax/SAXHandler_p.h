#pragma once
// The plumbing of the data file's reader and writer: the base of every
// handler, the leaf handlers, the error handler that turns Xerces reports
// into exceptions, and the line writer.
//
// Each handler has two sides. Reading, it receives the SAX events of its own
// element; a child element it knows is handed to a sub-handler through the
// reader's setContentHandler, and the sub-handler hands back at its own end
// tag. Writing, writeElement emits the element through a CXmlWriter.
#include <velmora/datasource/CDataSource.h>
#include <velmora/datasource/sax/CValueHandler.h>
#include <velmora/foundation/TWLVariant.h>

#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>

#include <cstdio>
#include <map>
#include <string>

namespace Velmora::DB::SAX {

namespace XN = XERCES_CPP_NAMESPACE;

// Xerces text as a string; null reads as empty.
VELMORA_API CString FromXml(XMLCh const * text);
// The value of the attribute `name` (plain ASCII), empty when absent.
VELMORA_API CString AttributeValue(XN::Attributes const & attributes, char16_t const * name);

// Attributes as written: a sorted map, so names come out in ascending order.
using AttributeMap = std::map<CString, CString>;

// The output file of one commit: lines with an indent of two blanks per
// level, UTF-8, "\n" line ends; "&" is the one character escaped.
class VELMORA_API CXmlWriter
{
public:
  // Code 12 when the file cannot be opened for writing. The document goes
  // to a file beside `path` that takes its place in one rename at Close, so
  // that a failed write, a full disk or a kill at any moment before leaves
  // the former file byte for byte; a writer destroyed unclosed removes it.
  explicit CXmlWriter(CString const & path);
  CXmlWriter(CXmlWriter const &) = delete;
  CXmlWriter & operator=(CXmlWriter const &) = delete;
  virtual ~CXmlWriter();

  // Indent, the text if not empty, the line end.
  virtual void writeLn(CString const & text);
  // The text if not empty, nothing else.
  virtual void write(CString const & text);
  virtual void Indent() { ++m_indent; }
  virtual void UnIndent() { --m_indent; }

  void SetDefaultIssuer(char const * issuer) { m_defaultIssuer = CString(issuer); }
  CString const & GetDefaultIssuer() const { return m_defaultIssuer; }
  // Flushes, closes and puts the document in place of the former file; a
  // failure to write or to replace raises code 3 with the path.
  void Close();

private:
  void Put(CString const & text);
  void Flush();
  [[noreturn]] void WriteFailed() const;

  std::FILE * m_file = nullptr;
  CString m_path;
  QByteArray m_target;  // the file to replace, links followed
  QByteArray m_partial; // the document until it replaces the target
  CString m_defaultIssuer;
  int m_indent = 0;
  std::string m_buffer;
};

// All three Xerces reports end the parse with code 2 and the report's text.
class VELMORA_API CXercesErrorHandler : public XN::ErrorHandler
{
public:
  void warning(XN::SAXParseException const & e) override;
  void error(XN::SAXParseException const & e) override;
  void fatalError(XN::SAXParseException const & e) override;
  void resetErrors() override {}
  static char const * errorString() { return "errorString"; }

  // The text of a report: kind, system id, line, column and message.
  static CString Describe(char const * kind, XN::SAXParseException const & e);
};

class VELMORA_API CSAXHandler : public XN::DefaultHandler
{
public:
  // The reading side.
  CSAXHandler(XN::SAX2XMLReader * reader, CSAXHandler * parent, CString const & elementName, CDataSource * source);
  // The writing side.
  CSAXHandler(CXmlWriter * writer, CSAXHandler * parent, CString const & elementName, CDataSource * source);
  ~CSAXHandler() override;

  void startElement(XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
                    XN::Attributes const & attributes) override;
  void endElement(XMLCh const * uri, XMLCh const * localname, XMLCh const * qname) override;
  void characters(XMLCh const * chars, XMLSize_t length) override;

  // Emits the element; false where an object could not be written.
  virtual bool writeElement() { return true; }

  CString const & GetElementName() const { return m_elementName; }
  void SetElementName(CString const & name) { m_elementName = name; }
  void SetTarget(CValueHandler * target) { m_target = target; }
  CValueHandler * GetTarget() const { return m_target; }
  CDataSource * GetDataSource() const { return m_source; }
  CXmlWriter * GetWriter() const { return m_writer; }
  void SetWriter(CXmlWriter * writer) { m_writer = writer; }

  // Writing forms: open (with Indent), close (after UnIndent), leaf, and the
  // attribute form, which closes empty without a value.
  void OpenElement(CString const & name, AttributeMap const & attributes = {});
  void CloseElement(CString const & name);
  void LeafElement(CString const & name, CString const & value);
  void AttributeElement(CString const & name, AttributeMap const & attributes, CString const & value = CString());
  // The attributes `code` and `issuer` of a reference to a stored object:
  // the writer's default issuer ("TWL") where the object has it, else "VM".
  template <class Object>
  AttributeMap ReferenceAttributes(Object const & object) const
  {
    CString const preferred = m_writer ? m_writer->GetDefaultIssuer() : CString("TWL");
    CString issuer = preferred;
    CString code;
    if (object.GetIdentifiers().Exists(preferred))
      code = object.GetIssuerCode(preferred);
    else
      object.GetIssuerAndCode(issuer, code);
    return {{CString("code"), code}, {CString("issuer"), issuer}};
  }

protected:
  // The element's own start tag, with its attributes.
  virtual void OnOpen(XN::Attributes const & attributes);
  // A child's start tag: hand it over, or return false to pass over the child.
  virtual bool OnChild(CString const & name, XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
                       XN::Attributes const & attributes);
  // A child handled here closes (not one handed over).
  virtual void OnChildEnd(CString const & name);
  // The element's own end tag, before the hand back.
  virtual void OnClose() {}

  // Gives `child` the reader and this parent, makes it the content handler,
  // and lets it see its own start tag.
  void HandOver(CSAXHandler & child, XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
                XN::Attributes const & attributes);
  void HandBack();

  CString m_elementName;
  CSAXHandler * m_parent = nullptr;
  XN::SAX2XMLReader * m_reader = nullptr;
  CXmlWriter * m_writer = nullptr;
  CValueHandler * m_target = nullptr;
  TWLVariant m_value;
  CDataSource * m_source = nullptr;
  // Open elements inside this handler's own, it included.
  int m_depth = 0;
};

// Gathers the text of its element and gives it to the target at the end tag.
class VELMORA_API CTextHandler : public CSAXHandler
{
public:
  using CSAXHandler::CSAXHandler;
  void characters(XMLCh const * chars, XMLSize_t length) override;

protected:
  void OnOpen(XN::Attributes const & attributes) override;
  void OnClose() override;
  // The text as the variant carries it.
  virtual void Store(QString const & text) { m_value = TWLVariant(CString(text)); }

  QString m_text;
};

// The same for a number: blanks around it do not count.
class VELMORA_API CDoubleHandler : public CTextHandler
{
public:
  using CTextHandler::CTextHandler;

protected:
  void Store(QString const & text) override { m_value = TWLVariant(CString(text.trimmed())); }
};

// A reference is read from its attributes at the start tag by its parent;
// this leaf only waits for the end tag.
class VELMORA_API CReferenceHandler : public CSAXHandler
{
public:
  using CSAXHandler::CSAXHandler;
};

} // namespace Velmora::DB::SAX
