#pragma once
// The handlers of the data file's elements: the object frame and its shared
// pieces (identifiers, values with units, envelope corners, parameters), one
// handler per kind of object driven by that kind's table of children, the
// group handlers of the plural elements, and the root.
#include <velmora/datasource/sax/Groups.h>
#include <velmora/datasource/sax/SAXHandler_p.h>
#include <velmora/foundation/VelmoraException.h>

#include <memory>
#include <vector>

namespace Velmora::DB::SAX {

class CObjectHandler;

// The identifiers of an object: each `tag` joins the body's collection and
// the group's index.
class VELMORA_API CIdentifiersHandler : public CSAXHandler
{
public:
  using CSAXHandler::CSAXHandler;
  void SetObject(CSerializableDataDB * body, dbGroup * group)
  {
    m_body = body;
    m_group = group;
  }

protected:
  bool OnChild(CString const & name, XMLCh const *, XMLCh const *, XMLCh const *,
               XN::Attributes const & attributes) override;

private:
  CSerializableDataDB * m_body = nullptr;
  dbGroup * m_group = nullptr;
};

// An axis of a point style: a label and a unit.
class VELMORA_API CFormattedValueHandler : public CSAXHandler
{
public:
  CFormattedValueHandler(XN::SAX2XMLReader * reader, CDataSource * source, long unitType);
  CFormattedValueHandler(CXmlWriter * writer, CDataSource * source, long unitType);
  void SetValue(ML::CFormattedValue * value)
  {
    m_formatted = value;
    SetTarget(value);
  }
  // Writes the element `name` for `value`.
  void Write(CString const & name, ML::CFormattedValue const & value, CSerializable const & units);

protected:
  bool OnChild(CString const & name, XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
               XN::Attributes const & attributes) override;
  virtual void SetUnits(CSerializableDataDB const & units) = 0;

  ML::CFormattedValue * m_formatted = nullptr;
  long m_unitType;
  CTextHandler m_label;
  CReferenceHandler m_units;
};

class VELMORA_API CAngularValueHandler final : public CFormattedValueHandler
{
public:
  CAngularValueHandler(XN::SAX2XMLReader * reader, CDataSource * source)
    : CFormattedValueHandler(reader, source, kObjectAngularUnit)
  {
  }
  CAngularValueHandler(CXmlWriter * writer, CDataSource * source)
    : CFormattedValueHandler(writer, source, kObjectAngularUnit)
  {
  }
  void Write(CString const & name, ML::CAngularValue const & value)
  {
    CFormattedValueHandler::Write(name, value, value.GetUnits());
  }

protected:
  void SetUnits(CSerializableDataDB const & units) override;
};

class VELMORA_API CLinearValueHandler final : public CFormattedValueHandler
{
public:
  CLinearValueHandler(XN::SAX2XMLReader * reader, CDataSource * source)
    : CFormattedValueHandler(reader, source, kObjectLinearUnit)
  {
  }
  CLinearValueHandler(CXmlWriter * writer, CDataSource * source)
    : CFormattedValueHandler(writer, source, kObjectLinearUnit)
  {
  }
  void Write(CString const & name, ML::CLinearValue const & value)
  {
    CFormattedValueHandler::Write(name, value, value.GetUnits());
  }

protected:
  void SetUnits(CSerializableDataDB const & units) override;
};

// A corner of an envelope: the kind and style of the point, then its
// numbers in degrees and metres. The style may come later in the file, so
// the corner is made with a pending index and finished by the store.
class VELMORA_API CPointValueHandler : public CSAXHandler
{
public:
  using CSAXHandler::CSAXHandler;
  void SetEnvelope(ML::CEnvelopeDataDB * envelope) { m_envelope = envelope; }
  void Write(CString const & name, ML::CCoordPoint const & corner);

protected:
  void OnOpen(XN::Attributes const & attributes) override;
  bool OnChild(CString const & name, XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
               XN::Attributes const & attributes) override;
  void OnChildEnd(CString const & name) override;
  void characters(XMLCh const * chars, XMLSize_t length) override;
  void OnClose() override;

private:
  ML::CEnvelopeDataDB * m_envelope = nullptr;
  int m_kind = -1;
  long m_styleIndex = -1;
  double m_numbers[3] = {0.0, 0.0, 0.0};
  bool m_hasThird = false;
  CString m_location;
  QString m_text;
};

// A parameter collection under `parameters`, `projection`, `transformahead`
// or `transformback`: the owner's class attribute picks the records' target.
class VELMORA_API CParameterHandler : public CSAXHandler
{
public:
  // What the object does with the class attribute and at the end.
  struct Owner
  {
    virtual ~Owner() = default;
    virtual CParameterCollectionDataDB * Begin(CString const & classType) = 0;
    virtual void End() {}
  };

  using CSAXHandler::CSAXHandler;
  void SetOwner(Owner * owner) { m_owner = owner; }
  // Writes the element `name` with the class and every set parameter.
  void Write(CString const & name, CString const & classType, CParameterCollectionData const & parameters);

protected:
  void OnOpen(XN::Attributes const & attributes) override;
  bool OnChild(CString const & name, XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
               XN::Attributes const & attributes) override;
  void OnChildEnd(CString const & name) override;
  void characters(XMLCh const * chars, XMLSize_t length) override;
  void OnClose() override;

private:
  Owner * m_owner = nullptr;
  CParameterCollectionDataDB * m_records = nullptr;
  CString m_name;
  CSerializableDataDB const * m_units = nullptr;
  QString m_text;
  bool m_inItem = false;
};

// A coordinate transform's list of shift references.
class VELMORA_API CDatumShiftListHandler : public CSAXHandler
{
public:
  using CSAXHandler::CSAXHandler;
  void SetTransform(CT::CCoordTransformDataDB * transform) { m_transform = transform; }

protected:
  bool OnChild(CString const & name, XMLCh const *, XMLCh const *, XMLCh const *,
               XN::Attributes const & attributes) override;

private:
  CT::CCoordTransformDataDB * m_transform = nullptr;
};

// The frame of every object: attributes, remarks and identifiers. The kind's
// own children come from its content table.
class VELMORA_API CObjectHandler : public CSAXHandler
{
public:
  CObjectHandler(XN::SAX2XMLReader * reader, CSAXHandler * parent, CString const & elementName,
                 CDataSource * source);
  CObjectHandler(CXmlWriter * writer, CSAXHandler * parent, CString const & elementName, CDataSource * source);
  ~CObjectHandler() override;

  // The object to read into or to write; the group whose index it joins.
  void SetObject(CSerializableDataDB * body, dbGroup * group);
  bool writeElement() override;

  // Shared pieces, for the content tables.
  CTextHandler & Text() { return m_text; }
  CDoubleHandler & Double() { return m_double; }
  CReferenceHandler & Reference() { return m_reference; }
  CAngularValueHandler & AngularValue() { return m_angular; }
  CLinearValueHandler & LinearValue() { return m_linear; }
  CPointValueHandler & PointValue() { return m_point; }
  CParameterHandler & Parameters() { return m_parameters; }
  CDatumShiftListHandler & DatumShiftList() { return m_shiftList; }

  // The stored object that a reference's attributes name in `mask`, as a new
  // handle; null when absent.
  std::unique_ptr<CSerializable> Resolve(long mask, XN::Attributes const & attributes) const;
  template <class Handle>
  std::unique_ptr<Handle> ResolveAs(long mask, XN::Attributes const & attributes) const
  {
    std::unique_ptr<CSerializable> found = Resolve(mask, attributes);
    if (auto * typed = dynamic_cast<Handle *>(found.get())) {
      found.release();
      return std::unique_ptr<Handle>(typed);
    }
    return nullptr;
  }
  // A reference element; code 25 with `details` when the object has no identifiers.
  template <class Object>
  void WriteReference(CString const & name, Object const & object, char const * details = "id")
  {
    if (object.GetIdentifiers().Count() == 0)
      throw EX::CVelmoraException(EX::CVelmoraException::kReferenceNeedsIdentifier, WriteLocation(), details);
    AttributeElement(name, ReferenceAttributes(object));
  }
  // A value with its unit in the attributes.
  template <class Value>
  void WriteValue(CString const & name, Value const & value, char const * details)
  {
    if (value.GetUnits().GetIdentifiers().Count() == 0)
      throw EX::CVelmoraException(EX::CVelmoraException::kReferenceNeedsIdentifier, WriteLocation(), details);
    AttributeElement(name, ReferenceAttributes(value.GetUnits()), CString(value.GetValue()));
  }
  // What a kind keeps while its object is read: a parameter owner, a first system.
  std::unique_ptr<CParameterHandler::Owner> m_owner;
  std::unique_ptr<CSerializable> m_held;

protected:
  virtual char const * WriteLocation() const = 0;
  virtual void WriteContent() = 0;
  // A child of the kind's own: the handler it goes to, or null to pass it over.
  virtual CSAXHandler * ContentChild(CString const & name, XN::Attributes const & attributes) = 0;
  virtual void Finish() {}

  void OnOpen(XN::Attributes const & attributes) override;
  bool OnChild(CString const & name, XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
               XN::Attributes const & attributes) override;
  void OnClose() override { Finish(); }

  CSerializableDataDB * m_body = nullptr;
  dbGroup * m_group = nullptr;

private:
  CTextHandler m_text;
  CDoubleHandler m_double;
  CReferenceHandler m_reference;
  CIdentifiersHandler m_identifiers;
  CAngularValueHandler m_angular;
  CLinearValueHandler m_linear;
  CPointValueHandler m_point;
  CParameterHandler m_parameters;
  CDatumShiftListHandler m_shiftList;
};

// One child of a kind's element: how it is read at its start tag (the
// handler to hand it to) and how the body writes it.
template <class Body>
struct TChildRow
{
  char const * name;
  CSAXHandler * (*read)(CObjectHandler & handler, Body & body, XN::Attributes const & attributes);
  void (*write)(CObjectHandler & handler, Body const & body);
};

// The content of each kind: its rows in file order, its write location and
// what runs at the end of an object. Specialised per body in Handlers.cpp.
template <class Body>
struct TContent;

template <class Body>
class TObjectHandler : public CObjectHandler
{
public:
  using CObjectHandler::CObjectHandler;

protected:
  char const * WriteLocation() const override { return TContent<Body>::kWriteLocation; }
  void WriteContent() override
  {
    Body const & body = dynamic_cast<Body const &>(*m_body);
    for (auto const & row : TContent<Body>::Rows())
      row.write(*this, body);
  }
  CSAXHandler * ContentChild(CString const & name, XN::Attributes const & attributes) override
  {
    for (auto const & row : TContent<Body>::Rows())
      if (name == QLatin1String(row.name))
        return row.read(*this, static_cast<Body &>(*m_body), attributes);
    return nullptr;
  }
  void Finish() override { TContent<Body>::Finish(*this, static_cast<Body &>(*m_body)); }
};

// The plural element of one kind: its folder tree and its objects.
class VELMORA_API CGroupHandler : public CSAXHandler
{
public:
  CGroupHandler(XN::SAX2XMLReader * reader, CSAXHandler * parent, CDataSource * source, long type);
  CGroupHandler(CXmlWriter * writer, CSAXHandler * parent, CDataSource * source, long type);
  ~CGroupHandler() override;

  // Writes the plural element: the tree, then each undeleted object.
  bool writeElement() override;
  void SetGroup(dbGroup * group) { m_group = group; }

protected:
  void OnOpen(XN::Attributes const & attributes) override;
  bool OnChild(CString const & name, XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
               XN::Attributes const & attributes) override;
  void OnChildEnd(CString const & name) override;
  void OnClose() override;

  // A new body of the kind in the group under `code`.
  virtual CSerializableDataDB & NewEntry(CString const & code) = 0;
  virtual CObjectHandler & Objects() = 0;

  long m_type;
  dbGroup * m_group = nullptr;

private:
  void WriteFolder(CFolderListViewItem const & folder);

  std::vector<long> m_open;
};

template <class Group, class Handler>
class TGroupHandler final : public CGroupHandler
{
public:
  TGroupHandler(XN::SAX2XMLReader * reader, CSAXHandler * parent, CDataSource * source, long type)
    : CGroupHandler(reader, parent, source, type),
      m_objects(reader, this, CString(dbGroup::SingularElement(type)), source)
  {
  }
  TGroupHandler(CXmlWriter * writer, CSAXHandler * parent, CDataSource * source, long type)
    : CGroupHandler(writer, parent, source, type),
      m_objects(writer, this, CString(dbGroup::SingularElement(type)), source)
  {
  }

protected:
  CSerializableDataDB & NewEntry(CString const & code) override
  {
    return static_cast<Group &>(*m_group).Entry(code);
  }
  CObjectHandler & Objects() override { return m_objects; }

private:
  Handler m_objects;
};

// The root element `velmora`.
class VELMORA_API CVelmoraHandler : public CSAXHandler
{
public:
  CVelmoraHandler(XN::SAX2XMLReader * reader, CSAXHandler * parent, CString const & elementName,
                  CDataSource * source);
  // Writes the two header lines at once and makes "TWL" the writer's default issuer.
  CVelmoraHandler(CXmlWriter * writer, CSAXHandler * parent, CString const & elementName, CDataSource * source);
  ~CVelmoraHandler() override;

  // The eighteen plural elements in file order, then the end tag; the writer is closed.
  bool writeElement() override;

  // A new handler of the plural element of `type`.
  static std::unique_ptr<CGroupHandler> MakeGroupHandler(XN::SAX2XMLReader * reader, CXmlWriter * writer,
                                                         CSAXHandler * parent, CDataSource * source, long type);

protected:
  bool OnChild(CString const & name, XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
               XN::Attributes const & attributes) override;
  void OnClose() override;

private:
  std::unique_ptr<CGroupHandler> m_group;
};

} // namespace Velmora::DB::SAX
