// The shared pieces of an object element: the frame, identifiers, values
// with units, envelope corners, parameter collections and shift lists.
#include <velmora/datasource/sax/Handlers_p.h>

#include <velmora/foundation/VelmoraException.h>

namespace Velmora::DB::SAX {

using EX::CVelmoraException;

namespace {
constexpr char16_t kCode[] = u"code";
constexpr char16_t kIssuer[] = u"issuer";
constexpr char16_t kName[] = u"name";
constexpr char16_t kClass[] = u"class";
constexpr char16_t kReversed[] = u"reversed";

CSerializableDataDB * Find(CDataSource * source, long mask, XN::Attributes const & attributes)
{
  if (!source)
    return nullptr;
  return source->FindObject(mask, AttributeValue(attributes, kIssuer), AttributeValue(attributes, kCode));
}
} // namespace

// Identifiers

bool CIdentifiersHandler::OnChild(CString const & name, XMLCh const *, XMLCh const *, XMLCh const *,
                                  XN::Attributes const & attributes)
{
  if (name == QLatin1String("tag") && m_body) {
    CString const issuer = AttributeValue(attributes, kIssuer);
    CString const code = AttributeValue(attributes, kCode);
    m_body->GetIdentifiers().Add(issuer, code);
    if (m_group)
      m_group->AddByCategory(issuer, code, m_body);
  }
  return false;
}

// Values of point styles

CFormattedValueHandler::CFormattedValueHandler(XN::SAX2XMLReader * reader, CDataSource * source, long unitType)
  : CSAXHandler(reader, nullptr, CString(), source), m_unitType(unitType),
    m_label(reader, this, CString("label"), source), m_units(reader, this, CString("units"), source)
{
}

CFormattedValueHandler::CFormattedValueHandler(CXmlWriter * writer, CDataSource * source, long unitType)
  : CSAXHandler(writer, nullptr, CString(), source), m_unitType(unitType),
    m_label(writer, this, CString("label"), source), m_units(writer, this, CString("units"), source)
{
}

bool CFormattedValueHandler::OnChild(CString const & name, XMLCh const * uri, XMLCh const * localname,
                                     XMLCh const * qname, XN::Attributes const & attributes)
{
  if (name == QLatin1String("label")) {
    m_label.SetTarget(m_formatted);
    HandOver(m_label, uri, localname, qname, attributes);
    return true;
  }
  if (name == QLatin1String("units")) {
    if (CSerializableDataDB const * units = Find(m_source, m_unitType, attributes))
      SetUnits(*units);
    HandOver(m_units, uri, localname, qname, attributes);
    return true;
  }
  return false;
}

void CFormattedValueHandler::Write(CString const & name, ML::CFormattedValue const & value,
                                   CSerializable const & units)
{
  OpenElement(name);
  if (!value.GetLabel().isEmpty())
    LeafElement(CString("label"), value.GetLabel());
  AttributeElement(CString("units"), ReferenceAttributes(units));
  CloseElement(name);
}

void CAngularValueHandler::SetUnits(CSerializableDataDB const & units)
{
  std::unique_ptr<CSerializable> handle(CDataSource::ObjectFactory(units));
  if (auto const * unit = dynamic_cast<ML::CAngularUnit const *>(handle.get()))
    static_cast<ML::CAngularValue *>(m_formatted)->SetUnits(*unit);
}

void CLinearValueHandler::SetUnits(CSerializableDataDB const & units)
{
  std::unique_ptr<CSerializable> handle(CDataSource::ObjectFactory(units));
  if (auto const * unit = dynamic_cast<ML::CLinearUnit const *>(handle.get()))
    static_cast<ML::CLinearValue *>(m_formatted)->SetUnits(*unit);
}

// Envelope corners

namespace {
struct CornerKind
{
  char const * element;
  ML::ECoordPointType type;
  EObjectType style;
  char const * axes[3];
};

constexpr CornerKind kCornerKinds[] = {
  {"geodeticpoint", ML::kGeodeticPoint, kObjectGeodeticPoint, {"longitude", "latitude", "height"}},
  {"projectedpoint", ML::kProjectedPoint, kObjectProjectedPoint, {"easting", "northing", "height"}},
  {"cartesianpoint", ML::kCartesianPoint, kObjectCartesianPoint, {"xaxis", "yaxis", "zaxis"}},
};

CornerKind const * CornerOf(ML::ECoordPointType type)
{
  for (auto const & kind : kCornerKinds)
    if (kind.type == type)
      return &kind;
  return nullptr;
}
} // namespace

void CPointValueHandler::OnOpen(XN::Attributes const &)
{
  m_kind = -1;
  m_styleIndex = -1;
  m_numbers[0] = m_numbers[1] = m_numbers[2] = 0.0;
  m_hasThird = false;
  m_location.clear();
  m_text.clear();
}

bool CPointValueHandler::OnChild(CString const & name, XMLCh const *, XMLCh const *, XMLCh const *,
                                 XN::Attributes const & attributes)
{
  m_text.clear();
  for (int i = 0; i < 3; ++i) {
    if (name == QLatin1String(kCornerKinds[i].element) && m_source) {
      m_kind = i;
      // The style may be defined further on: the store resolves it at the end.
      m_styleIndex = m_source->AddPointStyle(kCornerKinds[i].style, AttributeValue(attributes, kIssuer),
                                             AttributeValue(attributes, kCode));
    }
  }
  return false;
}

void CPointValueHandler::characters(XMLCh const * chars, XMLSize_t length)
{
  m_text.append(QString::fromUtf16(chars, static_cast<qsizetype>(length)));
}

void CPointValueHandler::OnChildEnd(CString const & name)
{
  if (m_kind >= 0) {
    CornerKind const & kind = kCornerKinds[m_kind];
    for (int axis = 0; axis < 3; ++axis) {
      if (name == QLatin1String(kind.axes[axis])) {
        m_numbers[axis] = TWLVariant(CString(m_text.trimmed())).toDouble();
        if (axis == 2)
          m_hasThird = true;
      }
    }
    if (name == QLatin1String("locationstring"))
      m_location = CString(m_text);
  }
  m_text.clear();
}

void CPointValueHandler::OnClose()
{
  if (m_kind < 0 || !m_envelope)
    return;
  CornerKind const & kind = kCornerKinds[m_kind];
  std::unique_ptr<ML::CCoordPoint> corner(ML::CCoordPointFactory::CreatePoint(kind.type, m_hasThird ? 3 : 2));
  if (m_hasThird)
    corner->SetInternals(m_numbers[0], m_numbers[1], m_numbers[2]);
  else
    corner->SetInternals(m_numbers[0], m_numbers[1]);
  // The location text waits for the style, which says what the text means.
  if (m_elementName == QLatin1String("minimum")) {
    m_envelope->SetMinPoint(*corner);
    m_envelope->SetMinStyleIndex(m_styleIndex);
    m_envelope->SetMinLocation(m_location);
  } else {
    m_envelope->SetMaxPoint(*corner);
    m_envelope->SetMaxStyleIndex(m_styleIndex);
    m_envelope->SetMaxLocation(m_location);
  }
  // Corners in the file make a real limit.
  m_envelope->SetAlwaysAccept(false);
}

void CPointValueHandler::Write(CString const & name, ML::CCoordPoint const & corner)
{
  CornerKind const * kind = CornerOf(corner.GetType());
  if (!kind)
    return;
  OpenElement(name);
  OpenElement(CString(kind->element), ReferenceAttributes(corner));
  double a = 0.0, b = 0.0, c = 0.0;
  bool const third = corner.GetDimensions() == 3;
  if (third)
    corner.GetInternals(a, b, c);
  else
    corner.GetInternals(a, b);
  LeafElement(CString(kind->axes[0]), CString(a));
  LeafElement(CString(kind->axes[1]), CString(b));
  if (third)
    LeafElement(CString(kind->axes[2]), CString(c));
  if (corner.GetType() != ML::kCartesianPoint && corner.PointData().GetStringFormatValue() != 0) {
    auto const & text = dynamic_cast<ML::CTextPointData const &>(corner.PointData());
    LeafElement(CString("locationstring"), text.GetLocationString());
  }
  CloseElement(CString(kind->element));
  CloseElement(name);
}

// Parameters

void CParameterHandler::OnOpen(XN::Attributes const & attributes)
{
  m_records = m_owner ? m_owner->Begin(AttributeValue(attributes, kClass)) : nullptr;
  m_inItem = false;
}

bool CParameterHandler::OnChild(CString const & name, XMLCh const *, XMLCh const *, XMLCh const *,
                                XN::Attributes const & attributes)
{
  m_text.clear();
  m_units = nullptr;
  m_inItem = false;
  if (!m_records)
    return false;
  m_name = AttributeValue(attributes, kName);
  bool const angular = name == QLatin1String("angular");
  bool const linear = name == QLatin1String("linear");
  if (angular || linear)
    m_units = Find(m_source, angular ? kObjectAngularUnit : kObjectLinearUnit, attributes);
  // The record is made at the start tag and filled at the end tag.
  m_inItem = m_records->AddRecord(m_name);
  return false;
}

void CParameterHandler::characters(XMLCh const * chars, XMLSize_t length)
{
  if (m_inItem)
    m_text.append(QString::fromUtf16(chars, static_cast<qsizetype>(length)));
}

void CParameterHandler::OnChildEnd(CString const & name)
{
  if (!m_inItem || !m_records)
    return;
  m_inItem = false;
  bool const numeric = name != QLatin1String("string");
  TWLVariant value(CString(numeric ? m_text.trimmed() : m_text));
  m_records->SetValue(name, value);
  if (!m_units)
    return;
  std::unique_ptr<CSerializable> unit(CDataSource::ObjectFactory(*m_units));
  if (auto const * angular = dynamic_cast<ML::CAngularUnit const *>(unit.get()))
    m_records->SetRecordUnits(m_name, *angular);
  else if (auto const * linear = dynamic_cast<ML::CLinearUnit const *>(unit.get()))
    m_records->SetRecordUnits(m_name, *linear);
}

void CParameterHandler::OnClose()
{
  if (m_owner)
    m_owner->End();
  m_records = nullptr;
}

void CParameterHandler::Write(CString const & name, CString const & classType,
                              CParameterCollectionData const & parameters)
{
  char const * const location = "CParameterHandler::writeElement";
  OpenElement(name, {{CString("class"), classType}});
  for (auto const & [item, parameter] : parameters.Items()) {
    // An unset item has no value to keep; the reader declares it again from the type.
    if (!parameter.IsSet())
      continue;
    AttributeMap attributes{{CString("name"), item}};
    switch (parameter.GetType()) {
    case CParameter::kDouble: AttributeElement(CString("float"), attributes, CString(parameter.GetDouble())); break;
    case CParameter::kLong: AttributeElement(CString("integer"), attributes, CString(parameter.GetLong())); break;
    case CParameter::kString: AttributeElement(CString("string"), attributes, parameter.GetString()); break;
    case CParameter::kAngularValue: {
      ML::CAngularValue const & value = parameter.GetAngularValue();
      if (value.GetUnits().GetIdentifiers().Count() == 0)
        throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location,
                                CString("AngularUnits(") + item + CString(")"));
      attributes.merge(ReferenceAttributes(value.GetUnits()));
      AttributeElement(CString("angular"), attributes, CString(value.GetValue()));
      break;
    }
    case CParameter::kLinearValue: {
      ML::CLinearValue const & value = parameter.GetLinearValue();
      if (value.GetUnits().GetIdentifiers().Count() == 0)
        throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location,
                                CString("LinearUnits(") + item + CString(")"));
      attributes.merge(ReferenceAttributes(value.GetUnits()));
      AttributeElement(CString("linear"), attributes, CString(value.GetValue()));
      break;
    }
    default: break;
    }
  }
  CloseElement(name);
}

// Shift lists of transforms

bool CDatumShiftListHandler::OnChild(CString const & name, XMLCh const *, XMLCh const *, XMLCh const *,
                                     XN::Attributes const & attributes)
{
  if (name == QLatin1String("datumshift") && m_transform) {
    // Anything but exactly "false" reads as reversed, absence included.
    bool const reversed = AttributeValue(attributes, kReversed) != QLatin1String("false");
    if (auto const * shift = dynamic_cast<CT::DS::CDatumShiftDataDB const *>(Find(m_source, kObjectDatumShift,
                                                                                    attributes)))
      m_transform->GetStoredShifts().AddReference(*shift, reversed);
  }
  return false;
}

// The object frame

CObjectHandler::CObjectHandler(XN::SAX2XMLReader * reader, CSAXHandler * parent, CString const & elementName,
                               CDataSource * source)
  : CSAXHandler(reader, parent, elementName, source), m_text(reader, this, CString(), source),
    m_double(reader, this, CString(), source), m_reference(reader, this, CString(), source),
    m_identifiers(reader, this, CString("identifiers"), source), m_angular(reader, source),
    m_linear(reader, source), m_point(reader, this, CString(), source), m_parameters(reader, this, CString(), source),
    m_shiftList(reader, this, CString("datumshifts"), source)
{
}

CObjectHandler::CObjectHandler(CXmlWriter * writer, CSAXHandler * parent, CString const & elementName,
                               CDataSource * source)
  : CSAXHandler(writer, parent, elementName, source), m_text(writer, this, CString(), source),
    m_double(writer, this, CString(), source), m_reference(writer, this, CString(), source),
    m_identifiers(writer, this, CString("identifiers"), source), m_angular(writer, source),
    m_linear(writer, source), m_point(writer, this, CString(), source), m_parameters(writer, this, CString(), source),
    m_shiftList(writer, this, CString("datumshifts"), source)
{
}

CObjectHandler::~CObjectHandler() = default;

void CObjectHandler::SetObject(CSerializableDataDB * body, dbGroup * group)
{
  m_body = body;
  m_group = group;
  SetTarget(body);
}

std::unique_ptr<CSerializable> CObjectHandler::Resolve(long mask, XN::Attributes const & attributes) const
{
  CSerializableDataDB const * body = Find(m_source, mask, attributes);
  return std::unique_ptr<CSerializable>(body ? CDataSource::ObjectFactory(*body) : nullptr);
}

void CObjectHandler::OnOpen(XN::Attributes const &) { m_held.reset(); }

bool CObjectHandler::OnChild(CString const & name, XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
                             XN::Attributes const & attributes)
{
  CSAXHandler * child = nullptr;
  if (name == QLatin1String("remarks")) {
    m_text.SetTarget(m_body);
    child = &m_text;
  } else if (name == QLatin1String("identifiers")) {
    m_identifiers.SetObject(m_body, m_group);
    child = &m_identifiers;
  } else {
    child = ContentChild(name, attributes);
  }
  if (!child)
    return false;
  child->SetElementName(name);
  HandOver(*child, uri, localname, qname, attributes);
  return true;
}

bool CObjectHandler::writeElement()
{
  if (!m_body || m_body->IsMarkedDeleted())
    return true;
  // Every object's values are there to write, and what it refers to is stored.
  if (!m_body->IsFullyDefined(m_source))
    throw CVelmoraException(CVelmoraException::kNotFullySpecified, WriteLocation());
  CIdentifierCollection const & ids = m_body->GetIdentifiers();
  if (ids.Count() == 0)
    throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, "CObjectHandler::writeElement", "id");
  CString const vm("VM");
  OpenElement(m_elementName, {{CString("group"), CString(m_body->GetGroupID())},
                              {CString("id"), ids.Exists(vm) ? ids.GetItem(vm) : CString()},
                              {CString("name"), m_body->GetName()}});
  if (!m_body->GetRemarks().isEmpty())
    LeafElement(CString("remarks"), m_body->GetRemarks());
  OpenElement(CString("identifiers"));
  for (auto const & [issuer, code] : ids.Items())
    AttributeElement(CString("tag"), {{CString("code"), code}, {CString("issuer"), issuer}});
  CloseElement(CString("identifiers"));
  WriteContent();
  CloseElement(m_elementName);
  return true;
}

} // namespace Velmora::DB::SAX
