// The store's file: loading through the SAX handlers, committing through
// the writer into a file that then replaces the former one, the class types of the
// schema beside the data file, and the references a file makes forward.
#include <velmora/datasource/CDataSource.h>

#include <velmora/datasource/sax/CDataSourceUtil_p.h>
#include <velmora/datasource/sax/Handlers_p.h>
#include <velmora/foundation/VelmoraException.h>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/parsers/SAX2XMLFilterImpl.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/util/XMLException.hpp>

#include <QFileInfo>

#include <cstdio>

namespace Velmora::DB {

using EX::CVelmoraException;
namespace XN = XERCES_CPP_NAMESPACE;

namespace {

constexpr char kSchemaName[] = "velmora.xsd";
constexpr char kRootElement[] = "velmora";

// Limits a hostile file cannot push past. A real data file expands no entity
// of its own (the predefined ones such as &amp; do not count) and nests a
// handful of levels, folders in folders included. Each expansion costs the
// parser a reader with its buffers, and its cost grows with the square of
// the depth: these bounds keep any file of a few megabytes well under a second.
constexpr unsigned int kEntityExpansionLimit = 1000;
constexpr int kMaxElementDepth = 256;

// Whether this library started the XML platform; shared by all stores.
bool m_UtilitiesAreInitialized = false;

std::basic_string<XMLCh> ToXml(CString const & text)
{
  return std::basic_string<XMLCh>(reinterpret_cast<XMLCh const *>(text.utf16()), static_cast<std::size_t>(text.size()));
}

bool IsFile(CString const & path) { return QFileInfo(path).isFile(); }

// Byte for byte, through a small buffer; false when either side fails.
bool CopyFile(CString const & from, CString const & to)
{
  std::FILE * in = std::fopen(from.toLocal8Bit().constData(), "rb");
  if (!in)
    return false;
  std::FILE * out = std::fopen(to.toLocal8Bit().constData(), "wb");
  if (!out) {
    std::fclose(in);
    return false;
  }
  char buffer[1024];
  bool good = true;
  std::size_t n = 0;
  while (good && (n = std::fread(buffer, 1, sizeof buffer, in)) > 0)
    good = std::fwrite(buffer, 1, n, out) == n;
  good = !std::ferror(in) && good;
  std::fclose(in);
  return std::fclose(out) == 0 && good;
}

// The five lists in the order of the getters, by the schema's type names.
constexpr char const * kClassTypeNames[] = {"DatumShiftEnumType", "MathTransformEnumType", "ProjectionEnumType",
                                            "HeightModelEnumType", "VerticalDatumEnumType"};

// Between the reader and the handlers, which hand the document on by
// setContentHandler on this filter: it refuses a root other than the data
// file's and nesting beyond kMaxElementDepth before any handler sees them.
class CBoundedReader : public XN::SAX2XMLFilterImpl
{
public:
  using XN::SAX2XMLFilterImpl::SAX2XMLFilterImpl;

  void startElement(XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
                    XN::Attributes const & attributes) override
  {
    char const * const location = "CDataSource::LoadFile";
    if (++m_depth > kMaxElementDepth)
      throw CVelmoraException(CVelmoraException::kXercesParse, location,
                              CString("Elements nested deeper than %1 levels").arg(kMaxElementDepth));
    if (m_depth == 1 && SAX::FromXml(localname) != QLatin1String(kRootElement))
      throw CVelmoraException(CVelmoraException::kElementMissing, location, CString(kRootElement));
    XN::SAX2XMLFilterImpl::startElement(uri, localname, qname, attributes);
  }

  void endElement(XMLCh const * uri, XMLCh const * localname, XMLCh const * qname) override
  {
    --m_depth;
    XN::SAX2XMLFilterImpl::endElement(uri, localname, qname);
  }

private:
  int m_depth = 0;
};

} // namespace

void CDataSource::InitializeXml()
{
  if (m_UtilitiesAreInitialized)
    return;
  try {
    XN::XMLPlatformUtils::Initialize();
  } catch (XN::XMLException const & e) {
    throw CVelmoraException(CVelmoraException::kXercesInitialize, "CDataSource::LoadFile",
                            SAX::FromXml(e.getMessage()));
  }
  m_UtilitiesAreInitialized = true;
}

void CDataSource::TerminateXml()
{
  if (!m_UtilitiesAreInitialized)
    return;
  m_UtilitiesAreInitialized = false;
  try {
    XN::XMLPlatformUtils::Terminate();
  } catch (XN::XMLException const & e) {
    throw CVelmoraException(CVelmoraException::kXercesWrite, "CDataSource::Clear", SAX::FromXml(e.getMessage()));
  }
}

bool CDataSource::LoadFile(CString const & name)
{
  char const * const location = "CDataSource::LoadFile";
  // What a failed load read stays until now; the next load must not build
  // on it, since the groups it replaces would leave references dangling.
  if (m_loaded || !m_groups.empty())
    Clear();
  m_fileName = name;
  if (GetDataPath().isEmpty())
    SetDataPath(GetPath(name));
  InitializeXml();
  {
    // Handlers before the reader, so that the reader goes first.
    SAX::CXercesErrorHandler errors;
    XN::SecurityManager security;
    security.setEntityExpansionLimit(kEntityExpansionLimit);
    std::unique_ptr<XN::SAX2XMLReader> reader;
    std::unique_ptr<CBoundedReader> bounded;
    std::unique_ptr<SAX::CVelmoraHandler> root;
    try {
      reader.reset(XN::XMLReaderFactory::createXMLReader());
      // Nothing outside the file is ever fetched: no external DTD, no
      // external entity, whatever the document declares.
      reader->setFeature(XN::XMLUni::fgXercesLoadExternalDTD, false);
      reader->setFeature(XN::XMLUni::fgXercesDisableDefaultEntityResolution, true);
      reader->setProperty(XN::XMLUni::fgXercesSecurityManager, &security);
      bounded = std::make_unique<CBoundedReader>(reader.get());
      root = std::make_unique<SAX::CVelmoraHandler>(bounded.get(), nullptr, CString(kRootElement), this);
      bounded->setContentHandler(root.get());
      bounded->setErrorHandler(&errors);
      std::basic_string<XMLCh> const path = ToXml(name);
      XN::LocalFileInputSource source(path.c_str());
      bounded->parse(source);
    } catch (CVelmoraException const &) {
      throw;
    } catch (XN::XMLException const & e) {
      throw CVelmoraException(CVelmoraException::kXercesParse, location, SAX::FromXml(e.getMessage()));
    } catch (XN::SAXException const & e) {
      throw CVelmoraException(CVelmoraException::kXercesParse, location, SAX::FromXml(e.getMessage()));
    } catch (XN::DOMException const & e) {
      throw CVelmoraException(CVelmoraException::kXercesDOM, location, SAX::FromXml(e.getMessage()));
    } catch (std::exception const & e) {
      throw CVelmoraException(CVelmoraException::kUndefined, location, CString(e.what()));
    }
    bounded.reset();
    reader.reset();
  }
  m_loaded = true;
  LoadClassTypeLists();
  return true;
}

void CDataSource::LoadClassTypeLists()
{
  bool anyEmpty = false;
  for (auto const & list : m_classTypes)
    anyEmpty = anyEmpty || list.empty();
  if (!anyEmpty)
    return;
  for (auto & list : m_classTypes)
    list.clear();
  CString const schema = GetPath(m_fileName) + CString(kSchemaName);
  if (!IsFile(schema))
    return;
  InitializeXml();
  try {
    XN::XercesDOMParser parser;
    parser.setValidationScheme(XN::XercesDOMParser::Val_Never);
    parser.setDoNamespaces(true);
    std::basic_string<XMLCh> const path = ToXml(schema);
    parser.parse(XN::LocalFileInputSource(path.c_str()));
    XN::DOMDocument * document = parser.getDocument();
    XN::DOMElement * root = document ? document->getDocumentElement() : nullptr;
    for (XN::DOMNode * type = root ? root->getFirstChild() : nullptr; type; type = type->getNextSibling()) {
      if (type->getNodeType() != XN::DOMNode::ELEMENT_NODE ||
          SAX::FromXml(type->getLocalName()) != QLatin1String("simpleType"))
        continue;
      XN::DOMNode * nameNode = CDataSourceUtil::findAttribute(type, CString("name"));
      CString const typeName = nameNode ? SAX::FromXml(nameNode->getNodeValue()) : CString();
      for (std::size_t list = 0; list < std::size(kClassTypeNames); ++list) {
        if (typeName != QLatin1String(kClassTypeNames[list]))
          continue;
        XN::DOMNode * restriction = CDataSourceUtil::getChildNode(type, CString("xs:restriction"));
        for (XN::DOMNode * item = restriction ? restriction->getFirstChild() : nullptr; item;
             item = item->getNextSibling()) {
          if (XN::DOMNode * value = CDataSourceUtil::findAttribute(item, CString("value")))
            m_classTypes[list].push_back(SAX::FromXml(value->getNodeValue()));
        }
      }
    }
  } catch (XN::DOMException const & e) {
    throw CVelmoraException(CVelmoraException::kXercesDOM, "CDataSource::LoadClassTypeLists",
                            SAX::FromXml(e.getMessage()));
  } catch (XN::XMLException const & e) {
    throw CVelmoraException(CVelmoraException::kXercesParse, "CDataSource::LoadClassTypeLists",
                            SAX::FromXml(e.getMessage()));
  }
}

bool CDataSource::CommitToFile() { return CommitToFile(m_fileName); }

bool CDataSource::CommitToFile(CString const & name)
{
  char const * const location = "CDataSource::CommitToFile";
  // A file in another directory takes the schema along.
  if (name != m_fileName && GetPath(name) != GetPath(m_fileName)) {
    CString const target = GetPath(name) + CString(kSchemaName);
    if (!IsFile(target)) {
      CString const source = GetPath(m_fileName) + CString(kSchemaName);
      if (!IsFile(source))
        throw CVelmoraException(CVelmoraException::kInvalidParameter, location);
      CopyFile(source, target); // a directory that cannot be written fails at the writer
    }
  }
  if (!m_loaded)
    throw CVelmoraException(CVelmoraException::kDataSourceNotLoaded, location);

  // The writer replaces the former file only once the whole document is on
  // the disk (see CXmlWriter), so a failure leaves that file as it was.
  SAX::CXmlWriter writer(name);
  SAX::CVelmoraHandler root(&writer, nullptr, CString(kRootElement), this);
  bool const written = root.writeElement();
  if (name == m_fileName)
    m_modifications = 0;
  return written;
}

// References a file makes before the objects they name

void CDataSource::ResolvePendingReferences()
{
  if (SAX::dbGroup * shifts = GetGroup(kObjectDatumShift)) {
    shifts->ForEach([this](CSerializableDataDB & entry) {
      auto & shift = dynamic_cast<CT::DS::CDatumShiftDataDB &>(entry);
      if (shift.GetEnvelopeIndex() < 0)
        return;
      if (CSerializableDataDB const * body = FindEnvelopeByIndex(shift.GetEnvelopeIndex())) {
        std::unique_ptr<CSerializable> envelope(ObjectFactory(*body));
        shift.SetEnvelope(dynamic_cast<ML::CEnvelope const &>(*envelope));
      }
      shift.SetEnvelopeIndex(-1);
    });
  }
  if (SAX::dbGroup * envelopes = GetGroup(kObjectEnvelope)) {
    envelopes->ForEach([this](CSerializableDataDB & entry) {
      auto & envelope = dynamic_cast<ML::CEnvelopeDataDB &>(entry);
      // A corner becomes a copy of its style that keeps the corner's location.
      auto const finish = [this](ML::CCoordPoint const * corner, long index, CString const & text) {
        std::unique_ptr<ML::CCoordPoint> point;
        CSerializableDataDB const * style = index >= 0 ? FindPointStyleByIndex(index) : nullptr;
        if (!corner || !style)
          return point;
        point.reset(dynamic_cast<ML::CCoordPoint *>(ObjectFactory(*style)));
        if (!point)
          return point;
        double a = 0.0, b = 0.0, c = 0.0;
        point->SetDimensions(corner->GetDimensions());
        if (corner->GetDimensions() == 3) {
          corner->GetInternals(a, b, c);
          point->SetInternals(a, b, c);
        } else {
          corner->GetInternals(a, b);
          point->SetInternals(a, b);
        }
        if (!text.isEmpty()) {
          if (auto * geodetic = dynamic_cast<ML::CGeodeticPoint *>(point.get()))
            geodetic->SetLocationString(text);
          else if (auto * projected = dynamic_cast<ML::CProjectedPoint *>(point.get()))
            projected->SetLocationString(text);
        }
        return point;
      };
      if (auto minimum = finish(envelope.GetMinPoint(), envelope.GetMinStyleIndex(), envelope.GetMinLocation()))
        envelope.SetMinPoint(*minimum);
      if (auto maximum = finish(envelope.GetMaxPoint(), envelope.GetMaxStyleIndex(), envelope.GetMaxLocation()))
        envelope.SetMaxPoint(*maximum);
      envelope.SetMinStyleIndex(-1);
      envelope.SetMaxStyleIndex(-1);
      envelope.SetMinLocation(CString());
      envelope.SetMaxLocation(CString());
    });
  }
  if (SAX::dbGroup * references = GetGroup(kObjectVerticalReference)) {
    references->ForEach([this](CSerializableDataDB & entry) {
      auto & reference = dynamic_cast<CS::VR::CVerticalReferenceDataDB &>(entry);
      if (CSerializableDataDB const * body = FindVerticalDatumByIndex(reference.GetVerticalDatumIndex())) {
        std::unique_ptr<CSerializable> datum(ObjectFactory(*body));
        datum->SetName(CString());
        reference.SetVerticalDatum(dynamic_cast<CS::VR::CVerticalDatum const *>(datum.get()));
      }
      if (CSerializableDataDB const * body = FindHeightModelByIndex(reference.GetHeightModelIndex())) {
        std::unique_ptr<CSerializable> model(ObjectFactory(*body));
        model->SetName(CString());
        reference.SetHeightModel(dynamic_cast<CS::VR::CHeightModel const *>(model.get()));
      }
      reference.SetVerticalDatumIndex(-1);
      reference.SetHeightModelIndex(-1);
    });
  }
  m_pendingEnvelopes.clear();
  m_pendingPointStyles.clear();
  m_pendingVerticalDatums.clear();
  m_pendingHeightModels.clear();
}

} // namespace Velmora::DB
