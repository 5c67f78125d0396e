// The content table of each kind of object, the handlers made from them,
// the group handlers of the plural elements and the root.
#include <velmora/datasource/sax/Handlers_p.h>

#include <velmora/datasource/sax/GroupImpl_p.h>

#include <velmora/foundation/VelmoraException.h>
#include <velmora/projections/Projection.h>

#include <span>

namespace Velmora::DB::SAX {

using EX::CVelmoraException;
using Attrs = XN::Attributes;

namespace {

// Reading helpers of the tables.

template <class Body>
CSAXHandler * ReadText(CObjectHandler & h, Body & body, Attrs const &)
{
  h.Text().SetTarget(&body);
  return &h.Text();
}

template <class Body>
CSAXHandler * ReadNumber(CObjectHandler & h, Body & body, Attrs const &)
{
  h.Double().SetTarget(&body);
  return &h.Double();
}

// Values of parameters read into a caller-kind collection: by name, where
// the type declares the item with the same type.
void ApplyRecords(CParameterCollection & target, CParameterCollectionData const & records)
{
  for (auto const & [name, item] : records.Items()) {
    if (!item.IsSet() || !target.Exists(name) || target.GetItemType(name) != item.GetType())
      continue;
    switch (item.GetType()) {
    case CParameter::kDouble: target.SetDouble(name, item.GetDouble()); break;
    case CParameter::kLong: target.SetLong(name, item.GetLong()); break;
    case CParameter::kString: target.SetString(name, item.GetString()); break;
    case CParameter::kAngularValue: target.SetAngularValue(name, item.GetAngularValue()); break;
    case CParameter::kLinearValue: target.SetLinearValue(name, item.GetLinearValue()); break;
    default: break;
    }
  }
}

// Kinds whose stored body keeps the records itself: the class picks the
// type, and the type's declaration completes the records at the end.
int SetKind(CT::DS::CDatumShiftDataDB & body, CString const & name) { return body.SetShiftType(name); }
int SetKind(CS::VR::CHeightModelDataDB & body, CString const & name) { return body.SetHeightModelType(name); }
int SetKind(CS::VR::CVerticalDatumDataDB & body, CString const & name) { return body.SetVerticalDatumType(name); }

void Declare(CT::DS::CDatumShiftDataDB & body)
{
  if (body.GetShiftType() < 0)
    return;
  std::unique_ptr<CT::DS::CDatumShift> model(CT::DS::CDatumShiftFactory::CreateDatumShift(body.GetShiftType()));
  body.GetStoredParameters().AdoptDeclarations(std::as_const(*model).GetParameters().GetData());
}

void Declare(CS::VR::CHeightModelDataDB & body)
{
  if (body.GetModelType() < 0)
    return;
  std::unique_ptr<CS::VR::CHeightModel> model(CS::VR::CHeightModelFactory::CreateHeightModel(body.GetModelType()));
  body.GetStoredParameters().AdoptDeclarations(std::as_const(*model).GetParameters().GetData());
}

void Declare(CS::VR::CVerticalDatumDataDB & body)
{
  if (body.GetDatumType() < 0)
    return;
  std::unique_ptr<CS::VR::CVerticalDatum> model(CS::VR::CVerticalDatumFactory::CreateVerticalDatum(body.GetDatumType()));
  body.GetStoredParameters().AdoptDeclarations(std::as_const(*model).GetParameters().GetData());
}

template <class Body>
class TStoredParameters final : public CParameterHandler::Owner
{
public:
  explicit TStoredParameters(Body & body) : m_body(body) {}
  CParameterCollectionDataDB * Begin(CString const & classType) override
  {
    SetKind(m_body, classType);
    return &m_body.GetStoredParameters();
  }
  void End() override { Declare(m_body); }

private:
  Body & m_body;
};

// A projected system's projection: read into records, then made by the
// factory on the inner system's datum.
class CProjectionParameters final : public CParameterHandler::Owner
{
public:
  explicit CProjectionParameters(CS::CProjectedCoordSysDataDB & body) : m_body(body) {}
  CParameterCollectionDataDB * Begin(CString const & classType) override
  {
    m_read = std::make_unique<CS::PJ::CProjectionDataDB>();
    m_type = m_read->SetProjectionType(classType);
    return &m_read->GetStoredParameters();
  }
  void End() override
  {
    if (m_type < 0)
      return;
    auto * datum = const_cast<CS::CHorizontalDatum *>(m_body.GetGeodeticCoordSys().GetHorizontalDatumPointer());
    std::unique_ptr<CS::PJ::CProjection> projection(CS::PJ::CProjectionFactory::CreateProjection(m_type, datum));
    ApplyRecords(projection->GetParameters(), m_read->GetStoredParameters());
    m_body.SetProjection(*projection);
  }

private:
  CS::CProjectedCoordSysDataDB & m_body;
  std::unique_ptr<CS::PJ::CProjectionDataDB> m_read;
  int m_type = -1;
};

// A fitted system's transform, one way.
class CTransformParameters final : public CParameterHandler::Owner
{
public:
  CTransformParameters(CS::CFittedCoordSysDataDB & body, bool ahead) : m_body(body), m_ahead(ahead) {}
  CParameterCollectionDataDB * Begin(CString const & classType) override
  {
    m_read = std::make_unique<CT::MT::CMathTransformDataDB>();
    m_type = m_read->SetMathTransformType(classType);
    return &m_read->GetStoredParameters();
  }
  void End() override
  {
    if (m_type < 0)
      return;
    std::unique_ptr<CT::MT::CMathTransform> transform(CT::MT::CMathTransformFactory::CreateMathTransform(m_type));
    ApplyRecords(transform->GetParameters(), m_read->GetStoredParameters());
    if (m_ahead)
      m_body.SetTransformAhead(transform.get());
    else
      m_body.SetTransformBack(transform.get());
  }

private:
  CS::CFittedCoordSysDataDB & m_body;
  bool m_ahead;
  std::unique_ptr<CT::MT::CMathTransformDataDB> m_read;
  int m_type = -1;
};

template <class Owner, class Body, class... A>
CSAXHandler * ReadParameters(CObjectHandler & h, Body & body, A... args)
{
  h.m_owner = std::make_unique<Owner>(body, args...);
  h.Parameters().SetOwner(h.m_owner.get());
  return &h.Parameters();
}

template <class Handle, class Body, class Set>
CSAXHandler * ReadReference(CObjectHandler & h, long mask, Attrs const & a, Set set, Body & body)
{
  if (std::unique_ptr<Handle> found = h.ResolveAs<Handle>(mask, a))
    set(body, *found);
  return &h.Reference();
}

// Envelopes, datums and styles by the systems' shared rows.
template <class Body>
CSAXHandler * ReadEnvelope(CObjectHandler & h, Body & b, Attrs const & a)
{
  return ReadReference<ML::CEnvelope>(h, kObjectEnvelope, a, [](Body & x, ML::CEnvelope const & e) { x.SetEnvelope(e); },
                                      b);
}

template <class Body>
CSAXHandler * ReadDatum(CObjectHandler & h, Body & b, Attrs const & a)
{
  return ReadReference<CS::CHorizontalDatum>(h, kObjectHorizontalDatum, a,
                                             [](Body & x, CS::CHorizontalDatum const & d) { x.SetHorizontalDatum(d); }, b);
}

template <class Body>
CSAXHandler * ReadPointStyle(CObjectHandler & h, Body & b, Attrs const & a, long mask)
{
  return ReadReference<ML::CCoordPoint>(h, mask, a, [](Body & x, ML::CCoordPoint const & p) { x.SetPointStyle(p); }, b);
}

template <class Body>
void WriteEnvelope(CObjectHandler & h, Body const & b)
{
  h.WriteReference(CString("envelope"), b.GetEnvelope());
}

template <class Body>
void WriteDatum(CObjectHandler & h, Body const & b)
{
  h.WriteReference(CString("horizontaldatum"), b.GetHorizontalDatum());
}

template <class Body>
void WritePointStyle(CObjectHandler & h, Body const & b)
{
  h.WriteReference(CString("pointstyle"), b.GetPointStyle());
}

template <class Body>
void WriteNothing(CObjectHandler &, Body const &)
{
}

struct NoFinish
{
  template <class Body>
  static void Finish(CObjectHandler &, Body &)
  {
  }
};

} // namespace

// The tables. Each row: element name, what its start tag does, how it is written.

template <>
struct TContent<ML::CAngularUnitDataDB> : NoFinish
{
  using Body = ML::CAngularUnitDataDB;
  static constexpr char kWriteLocation[] = "CAngularUnitHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"abbreviation", ReadText<Body>,
       [](CObjectHandler & h, Body const & b) {
         if (!b.GetAbbreviation().isEmpty())
           h.LeafElement(CString("abbreviation"), b.GetAbbreviation());
       }},
      {"unitsperdegree", ReadNumber<Body>,
       [](CObjectHandler & h, Body const & b) { h.LeafElement(CString("unitsperdegree"), CString(b.GetUnitsPerDegree())); }},
    };
    return rows;
  }
};

template <>
struct TContent<ML::CLinearUnitDataDB> : NoFinish
{
  using Body = ML::CLinearUnitDataDB;
  static constexpr char kWriteLocation[] = "CLinearUnitHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"abbreviation", ReadText<Body>,
       [](CObjectHandler & h, Body const & b) {
         if (!b.GetAbbreviation().isEmpty())
           h.LeafElement(CString("abbreviation"), b.GetAbbreviation());
       }},
      {"unitspermeter", ReadNumber<Body>,
       [](CObjectHandler & h, Body const & b) { h.LeafElement(CString("unitspermeter"), CString(b.GetUnitsPerMeter())); }},
    };
    return rows;
  }
};

template <>
struct TContent<CS::CPrimeMeridianDataDB> : NoFinish
{
  using Body = CS::CPrimeMeridianDataDB;
  static constexpr char kWriteLocation[] = "CPrimeMeridianHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"longitude",
       [](CObjectHandler & h, Body & b, Attrs const & a) -> CSAXHandler * {
         if (auto unit = h.ResolveAs<ML::CAngularUnit>(kObjectAngularUnit, a))
           b.GetLongitude().SetUnits(*unit);
         return ReadNumber(h, b, a);
       },
       [](CObjectHandler & h, Body const & b) {
         h.WriteValue(CString("longitude"), b.GetLongitude(), "AngularUnits(Longitude)");
       }},
    };
    return rows;
  }
};

template <>
struct TContent<CS::CEllipsoidDataDB>
{
  using Body = CS::CEllipsoidDataDB;
  static constexpr char kWriteLocation[] = "CEllipsoidHandler::writeElement";
  static CSAXHandler * ReadAxis(CObjectHandler & h, Body & b, Attrs const & a, bool major)
  {
    if (auto unit = h.ResolveAs<ML::CLinearUnit>(kObjectLinearUnit, a))
      (major ? b.GetSemiMajor() : b.GetSemiMinor()).SetUnits(*unit);
    return ReadNumber(h, b, a);
  }
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"semimajor",
       [](CObjectHandler & h, Body & b, Attrs const & a) { return ReadAxis(h, b, a, true); },
       [](CObjectHandler & h, Body const & b) {
         h.WriteValue(CString("semimajor"), b.GetSemiMajor(), "LinearUnits(SemiMajor)");
       }},
      // One of the two that follow defines the figure: the writer picks it.
      {"invflattening", ReadNumber<Body>,
       [](CObjectHandler & h, Body const & b) {
         if (b.GetInvFlatDefinitive())
           h.LeafElement(CString("invflattening"), CString(b.GetInvFlattening()));
       }},
      {"semiminor",
       [](CObjectHandler & h, Body & b, Attrs const & a) { return ReadAxis(h, b, a, false); },
       [](CObjectHandler & h, Body const & b) {
         if (!b.GetInvFlatDefinitive())
           h.WriteValue(CString("semiminor"), b.GetSemiMinor(), "LinearUnits(SemiMajor)");
       }},
    };
    return rows;
  }
  // The derived quantities once, from what the file gave.
  static void Finish(CObjectHandler &, Body & b) { b.Initialize(); }
};

template <>
struct TContent<CS::CHorizontalDatumDataDB> : NoFinish
{
  using Body = CS::CHorizontalDatumDataDB;
  // Shared with the ellipsoid's handler, as files' diagnostics have always read.
  static constexpr char kWriteLocation[] = "CEllipsoidHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"ellipsoid",
       [](CObjectHandler & h, Body & b, Attrs const & a) {
         return ReadReference<CS::CEllipsoid>(h, kObjectEllipsoid, a,
                                              [](Body & x, CS::CEllipsoid const & e) { x.SetEllipsoid(e); }, b);
       },
       [](CObjectHandler & h, Body const & b) { h.WriteReference(CString("ellipsoid"), b.GetEllipsoid()); }},
      {"primemeridian",
       [](CObjectHandler & h, Body & b, Attrs const & a) {
         return ReadReference<CS::CPrimeMeridian>(
           h, kObjectPrimeMeridian, a, [](Body & x, CS::CPrimeMeridian const & p) { x.SetPrimeMeridian(p); }, b);
       },
       [](CObjectHandler & h, Body const & b) { h.WriteReference(CString("primemeridian"), b.GetPrimeMeridian()); }},
    };
    return rows;
  }
};

template <>
struct TContent<CT::DS::CDatumShiftDataDB> : NoFinish
{
  using Body = CT::DS::CDatumShiftDataDB;
  static constexpr char kWriteLocation[] = "CDatumShiftHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static char const * const location = "CDatumShiftHandler::writeElement()";
    static TChildRow<Body> const rows[] = {
      {"envelope",
       [](CObjectHandler & h, Body & b, Attrs const & a) -> CSAXHandler * {
         // Envelopes come later in the file.
         b.SetEnvelopeIndex(h.GetDataSource()->AddEnvelope(AttributeValue(a, u"issuer"), AttributeValue(a, u"code")));
         return &h.Reference();
       },
       [](CObjectHandler & h, Body const & b) {
         if (b.GetEnvelope().GetIdentifiers().Count() == 0)
           throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, "Envelope");
         h.WriteReference(CString("envelope"), b.GetEnvelope());
       }},
      {"sourcedatum",
       [](CObjectHandler & h, Body & b, Attrs const & a) {
         return ReadReference<CS::CHorizontalDatum>(
           h, kObjectHorizontalDatum, a, [](Body & x, CS::CHorizontalDatum const & d) { x.SetSrcDatum(d); }, b);
       },
       [](CObjectHandler & h, Body const & b) {
         if (b.GetSrcDatum().GetIdentifiers().Count() == 0)
           throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, "HorizontalDatum(Source)");
         h.WriteReference(CString("sourcedatum"), b.GetSrcDatum());
       }},
      {"targetdatum",
       [](CObjectHandler & h, Body & b, Attrs const & a) {
         return ReadReference<CS::CHorizontalDatum>(
           h, kObjectHorizontalDatum, a, [](Body & x, CS::CHorizontalDatum const & d) { x.SetDestDatum(d); }, b);
       },
       [](CObjectHandler & h, Body const & b) {
         if (b.GetDestDatum().GetIdentifiers().Count() == 0)
           throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, "HorizontalDatum(Source)");
         h.WriteReference(CString("targetdatum"), b.GetDestDatum());
       }},
      {"parameters", [](CObjectHandler & h, Body & b, Attrs const &) { return ReadParameters<TStoredParameters<Body>>(h, b); },
       [](CObjectHandler & h, Body const & b) {
         h.Parameters().Write(CString("parameters"), b.GetClassType(), b.GetParameters().GetData());
       }},
    };
    return rows;
  }
};

// Point styles: one value element per axis.
struct Axes
{
  template <class Value>
  static CSAXHandler * Read(CObjectHandler & h, Value & value)
  {
    if constexpr (std::is_same_v<Value, ML::CAngularValue>) {
      h.AngularValue().SetValue(&value);
      return &h.AngularValue();
    } else {
      h.LinearValue().SetValue(&value);
      return &h.LinearValue();
    }
  }
  template <class Value>
  static void Write(CObjectHandler & h, char const * name, Value const & value)
  {
    if constexpr (std::is_same_v<Value, ML::CAngularValue>)
      h.AngularValue().Write(CString(name), value);
    else
      h.LinearValue().Write(CString(name), value);
  }
};

template <>
struct TContent<ML::CCartesianPointDataDB> : NoFinish
{
  using Body = ML::CCartesianPointDataDB;
  static constexpr char kWriteLocation[] = "CCartesianPointHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"xaxis", [](CObjectHandler & h, Body & b, Attrs const &) { return Axes::Read(h, b.m_x); },
       [](CObjectHandler & h, Body const & b) { Axes::Write(h, "xaxis", b.m_x); }},
      {"yaxis", [](CObjectHandler & h, Body & b, Attrs const &) { return Axes::Read(h, b.m_y); },
       [](CObjectHandler & h, Body const & b) { Axes::Write(h, "yaxis", b.m_y); }},
      {"zaxis", [](CObjectHandler & h, Body & b, Attrs const &) { return Axes::Read(h, b.m_z); },
       [](CObjectHandler & h, Body const & b) { Axes::Write(h, "zaxis", b.m_z); }},
    };
    return rows;
  }
};

template <>
struct TContent<ML::CGeodeticPointDataDB> : NoFinish
{
  using Body = ML::CGeodeticPointDataDB;
  static constexpr char kWriteLocation[] = "CGeodeticPointHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"longitude", [](CObjectHandler & h, Body & b, Attrs const &) { return Axes::Read(h, b.m_lon); },
       [](CObjectHandler & h, Body const & b) { Axes::Write(h, "longitude", b.m_lon); }},
      {"latitude", [](CObjectHandler & h, Body & b, Attrs const &) { return Axes::Read(h, b.m_lat); },
       [](CObjectHandler & h, Body const & b) { Axes::Write(h, "latitude", b.m_lat); }},
      {"height", [](CObjectHandler & h, Body & b, Attrs const &) { return Axes::Read(h, b.m_hgt); },
       [](CObjectHandler & h, Body const & b) { Axes::Write(h, "height", b.m_hgt); }},
      {"stringformat", ReadText<Body>,
       [](CObjectHandler & h, Body const & b) {
         h.LeafElement(CString("stringformat"), CString(b.GetStringFormat() == 1 ? "Georef" : "None"));
       }},
    };
    return rows;
  }
};

template <>
struct TContent<ML::CProjectedPointDataDB> : NoFinish
{
  using Body = ML::CProjectedPointDataDB;
  static constexpr char kWriteLocation[] = "CProjectedPointHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"easting", [](CObjectHandler & h, Body & b, Attrs const &) { return Axes::Read(h, b.m_east); },
       [](CObjectHandler & h, Body const & b) { Axes::Write(h, "easting", b.m_east); }},
      {"northing", [](CObjectHandler & h, Body & b, Attrs const &) { return Axes::Read(h, b.m_north); },
       [](CObjectHandler & h, Body const & b) { Axes::Write(h, "northing", b.m_north); }},
      {"height", [](CObjectHandler & h, Body & b, Attrs const &) { return Axes::Read(h, b.m_hgt); },
       [](CObjectHandler & h, Body const & b) { Axes::Write(h, "height", b.m_hgt); }},
      {"stringformat", ReadText<Body>,
       [](CObjectHandler & h, Body const & b) {
         int const format = b.GetStringFormat();
         h.LeafElement(CString("stringformat"), CString(format == 1 ? "MGRS" : format == 2 ? "USNG" : "None"));
       }},
    };
    return rows;
  }
};

template <>
struct TContent<ML::CEnvelopeDataDB> : NoFinish
{
  using Body = ML::CEnvelopeDataDB;
  static constexpr char kWriteLocation[] = "CEnvelopeHandler::writeElement";
  static CSAXHandler * ReadCorner(CObjectHandler & h, Body & b, Attrs const &)
  {
    h.PointValue().SetEnvelope(&b);
    return &h.PointValue();
  }
  static std::span<TChildRow<Body> const> Rows()
  {
    // An envelope without both corners is empty and writes none.
    static TChildRow<Body> const rows[] = {
      {"minimum", ReadCorner,
       [](CObjectHandler & h, Body const & b) {
         if (b.GetMinPoint() && b.GetMaxPoint())
           h.PointValue().Write(CString("minimum"), *b.GetMinPoint());
       }},
      {"maximum", ReadCorner,
       [](CObjectHandler & h, Body const & b) {
         if (b.GetMinPoint() && b.GetMaxPoint())
           h.PointValue().Write(CString("maximum"), *b.GetMaxPoint());
       }},
    };
    return rows;
  }
};

template <>
struct TContent<CS::VR::CVerticalReferenceDataDB> : NoFinish
{
  using Body = CS::VR::CVerticalReferenceDataDB;
  static constexpr char kWriteLocation[] = "CVerticalReferenceHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    // Datums and models come later in the file: both are pending until its end.
    static TChildRow<Body> const rows[] = {
      {"verticaldatum",
       [](CObjectHandler & h, Body & b, Attrs const & a) -> CSAXHandler * {
         b.SetVerticalDatumIndex(
           h.GetDataSource()->AddVerticalDatum(AttributeValue(a, u"issuer"), AttributeValue(a, u"code")));
         return &h.Reference();
       },
       [](CObjectHandler & h, Body const & b) {
         if (b.GetVerticalDatum())
           h.WriteReference(CString("verticaldatum"), *b.GetVerticalDatum());
       }},
      {"heightmodel",
       [](CObjectHandler & h, Body & b, Attrs const & a) -> CSAXHandler * {
         b.SetHeightModelIndex(
           h.GetDataSource()->AddHeightModel(AttributeValue(a, u"issuer"), AttributeValue(a, u"code")));
         return &h.Reference();
       },
       [](CObjectHandler & h, Body const & b) {
         if (b.GetHeightModel())
           h.WriteReference(CString("heightmodel"), *b.GetHeightModel());
       }},
    };
    return rows;
  }
};

template <>
struct TContent<CS::VR::CVerticalDatumDataDB> : NoFinish
{
  using Body = CS::VR::CVerticalDatumDataDB;
  static constexpr char kWriteLocation[] = "CVerticalDatumHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"envelope", ReadEnvelope<Body>, WriteEnvelope<Body>},
      {"parameters", [](CObjectHandler & h, Body & b, Attrs const &) { return ReadParameters<TStoredParameters<Body>>(h, b); },
       [](CObjectHandler & h, Body const & b) {
         h.Parameters().Write(CString("parameters"), b.GetClassType(), b.GetParameters().GetData());
       }},
    };
    return rows;
  }
};

template <>
struct TContent<CS::VR::CHeightModelDataDB> : NoFinish
{
  using Body = CS::VR::CHeightModelDataDB;
  static constexpr char kWriteLocation[] = "CHeightModelHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"envelope", ReadEnvelope<Body>, WriteEnvelope<Body>},
      {"horizontaldatum", ReadDatum<Body>, WriteDatum<Body>},
      {"parameters", [](CObjectHandler & h, Body & b, Attrs const &) { return ReadParameters<TStoredParameters<Body>>(h, b); },
       [](CObjectHandler & h, Body const & b) {
         h.Parameters().Write(CString("parameters"), b.GetClassType(), b.GetParameters().GetData());
       }},
    };
    return rows;
  }
};

template <>
struct TContent<CS::CGeodeticCoordSysDataDB> : NoFinish
{
  using Body = CS::CGeodeticCoordSysDataDB;
  static constexpr char kWriteLocation[] = "CGeodeticCoordSysHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"pointstyle", [](CObjectHandler & h, Body & b, Attrs const & a) { return ReadPointStyle(h, b, a, kObjectGeodeticPoint); },
       WritePointStyle<Body>},
      {"envelope", ReadEnvelope<Body>, WriteEnvelope<Body>},
      {"horizontaldatum", ReadDatum<Body>, WriteDatum<Body>},
      {"verticalreference",
       [](CObjectHandler & h, Body & b, Attrs const & a) {
         return ReadReference<CS::VR::CVerticalReference>(
           h, kObjectVerticalReference, a,
           [](Body & x, CS::VR::CVerticalReference const & r) { x.SetVerticalReference(&r); }, b);
       },
       [](CObjectHandler & h, Body const & b) {
         if (b.GetVerticalReference())
           h.WriteReference(CString("verticalreference"), *b.GetVerticalReference());
       }},
    };
    return rows;
  }
};

template <>
struct TContent<CS::CGeocentricCoordSysDataDB> : NoFinish
{
  using Body = CS::CGeocentricCoordSysDataDB;
  static constexpr char kWriteLocation[] = "CGeocentricCoordSysHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"pointstyle", [](CObjectHandler & h, Body & b, Attrs const & a) { return ReadPointStyle(h, b, a, kObjectCartesianPoint); },
       WritePointStyle<Body>},
      {"envelope", ReadEnvelope<Body>, WriteEnvelope<Body>},
      {"horizontaldatum", ReadDatum<Body>, WriteDatum<Body>},
    };
    return rows;
  }
};

template <>
struct TContent<CS::CProjectedCoordSysDataDB> : NoFinish
{
  using Body = CS::CProjectedCoordSysDataDB;
  static constexpr char kWriteLocation[] = "CProjectedCoordSysHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"pointstyle", [](CObjectHandler & h, Body & b, Attrs const & a) { return ReadPointStyle(h, b, a, kObjectProjectedPoint); },
       WritePointStyle<Body>},
      {"envelope", ReadEnvelope<Body>, WriteEnvelope<Body>},
      // Before the projection, which works on this system's datum.
      {"geodeticcoordsys",
       [](CObjectHandler & h, Body & b, Attrs const & a) {
         return ReadReference<CS::CGeodeticCoordSys>(
           h, kObjectGeodeticCoordSys, a, [](Body & x, CS::CGeodeticCoordSys const & g) { x.SetGeodeticCoordSys(g); }, b);
       },
       [](CObjectHandler & h, Body const & b) { h.WriteReference(CString("geodeticcoordsys"), b.GetGeodeticCoordSys()); }},
      {"projection",
       [](CObjectHandler & h, Body & b, Attrs const &) { return ReadParameters<CProjectionParameters>(h, b); },
       [](CObjectHandler & h, Body const & b) {
         CS::PJ::CProjection const & projection = b.GetProjection();
         h.Parameters().Write(CString("projection"), projection.GetTypeName(), projection.GetParameters().GetData());
       }},
    };
    return rows;
  }
};

template <>
struct TContent<CS::CFittedCoordSysDataDB> : NoFinish
{
  using Body = CS::CFittedCoordSysDataDB;
  static constexpr char kWriteLocation[] = "CFittedCoordSysHandler::writeElement";
  static void WriteTransform(CObjectHandler & h, char const * name, CT::MT::CMathTransform const * transform)
  {
    if (transform)
      h.Parameters().Write(CString(name), transform->GetTypeName(), transform->GetParameters().GetData());
  }
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      // The base comes later in the element: any point kind is looked at.
      {"pointstyle", [](CObjectHandler & h, Body & b, Attrs const & a) { return ReadPointStyle(h, b, a, kObjectAnyCoordPoint); },
       WritePointStyle<Body>},
      {"envelope", ReadEnvelope<Body>, WriteEnvelope<Body>},
      {"basecoordsys",
       [](CObjectHandler & h, Body & b, Attrs const & a) {
         return ReadReference<CS::CCoordSys>(h, kObjectAnyCoordSys, a,
                                             [](Body & x, CS::CCoordSys const & s) { x.SetBaseCoordSys(&s); }, b);
       },
       [](CObjectHandler & h, Body const & b) {
         if (b.GetBaseCoordSys())
           h.WriteReference(CString("basecoordsys"), *b.GetBaseCoordSys());
       }},
      {"transformahead",
       [](CObjectHandler & h, Body & b, Attrs const &) { return ReadParameters<CTransformParameters>(h, b, true); },
       [](CObjectHandler & h, Body const & b) { WriteTransform(h, "transformahead", b.GetTransformAhead()); }},
      {"transformback",
       [](CObjectHandler & h, Body & b, Attrs const &) { return ReadParameters<CTransformParameters>(h, b, false); },
       [](CObjectHandler & h, Body const & b) { WriteTransform(h, "transformback", b.GetTransformBack()); }},
    };
    return rows;
  }
};

template <>
struct TContent<CT::CCoordTransformDataDB>
{
  using Body = CT::CCoordTransformDataDB;
  static constexpr char kWriteLocation[] = "CCoordTransformHandler::writeElement";
  static std::span<TChildRow<Body> const> Rows()
  {
    static TChildRow<Body> const rows[] = {
      {"sourcecoordsys",
       [](CObjectHandler & h, Body &, Attrs const & a) -> CSAXHandler * {
         // Kept until the target system arrives: the body takes both at once.
         h.m_held = h.Resolve(kObjectAnyCoordSys, a);
         return &h.Reference();
       },
       [](CObjectHandler & h, Body const & b) {
         if (b.GetSrcCoordSys())
           h.WriteReference(CString("sourcecoordsys"), *b.GetSrcCoordSys());
       }},
      {"targetcoordsys",
       [](CObjectHandler & h, Body & b, Attrs const & a) -> CSAXHandler * {
         std::unique_ptr<CS::CCoordSys> source(dynamic_cast<CS::CCoordSys *>(h.m_held.release()));
         b.SetSystems(std::move(source), h.ResolveAs<CS::CCoordSys>(kObjectAnyCoordSys, a));
         return &h.Reference();
       },
       [](CObjectHandler & h, Body const & b) {
         if (b.GetDestCoordSys())
           h.WriteReference(CString("targetcoordsys"), *b.GetDestCoordSys());
       }},
      {"datumshifts",
       [](CObjectHandler & h, Body & b, Attrs const &) -> CSAXHandler * {
         h.DatumShiftList().SetTransform(&b);
         return &h.DatumShiftList();
       },
       [](CObjectHandler & h, Body const & b) {
         h.OpenElement(CString("datumshifts"));
         for (auto const & reference : const_cast<Body &>(b).GetStoredShifts().GetReferences()) {
           if (!reference.shift)
             continue;
           AttributeMap attributes = h.ReferenceAttributes(*reference.shift);
           attributes[CString("reversed")] = CString(reference.reversed ? "true" : "false");
           h.AttributeElement(CString("datumshift"), attributes);
         }
         h.CloseElement(CString("datumshifts"));
       }},
    };
    return rows;
  }
  // A source without a target still belongs to the transform.
  static void Finish(CObjectHandler & h, Body & b)
  {
    if (h.m_held)
      b.SetSystems(std::unique_ptr<CS::CCoordSys>(dynamic_cast<CS::CCoordSys *>(h.m_held.release())), nullptr);
  }
};

// One handler class per kind, named as diagnostics name them.
#define VELMORA_OBJECT_HANDLER(Name, Body)                                                                       \
  class C##Name##Handler final : public TObjectHandler<Body>                                                     \
  {                                                                                                              \
  public:                                                                                                        \
    using TObjectHandler::TObjectHandler;                                                                        \
  };                                                                                                             \
  using C##Name##GroupHandler = TGroupHandler<C##Name##Group, C##Name##Handler>;

VELMORA_OBJECT_HANDLER(AngularUnit, ML::CAngularUnitDataDB)
VELMORA_OBJECT_HANDLER(LinearUnit, ML::CLinearUnitDataDB)
VELMORA_OBJECT_HANDLER(PrimeMeridian, CS::CPrimeMeridianDataDB)
VELMORA_OBJECT_HANDLER(Ellipsoid, CS::CEllipsoidDataDB)
VELMORA_OBJECT_HANDLER(HorizontalDatum, CS::CHorizontalDatumDataDB)
VELMORA_OBJECT_HANDLER(DatumShift, CT::DS::CDatumShiftDataDB)
VELMORA_OBJECT_HANDLER(CartesianPoint, ML::CCartesianPointDataDB)
VELMORA_OBJECT_HANDLER(GeodeticPoint, ML::CGeodeticPointDataDB)
VELMORA_OBJECT_HANDLER(ProjectedPoint, ML::CProjectedPointDataDB)
VELMORA_OBJECT_HANDLER(Envelope, ML::CEnvelopeDataDB)
VELMORA_OBJECT_HANDLER(VerticalReference, CS::VR::CVerticalReferenceDataDB)
VELMORA_OBJECT_HANDLER(VerticalDatum, CS::VR::CVerticalDatumDataDB)
VELMORA_OBJECT_HANDLER(HeightModel, CS::VR::CHeightModelDataDB)
VELMORA_OBJECT_HANDLER(GeodeticCoordSys, CS::CGeodeticCoordSysDataDB)
VELMORA_OBJECT_HANDLER(GeocentricCoordSys, CS::CGeocentricCoordSysDataDB)
VELMORA_OBJECT_HANDLER(ProjectedCoordSys, CS::CProjectedCoordSysDataDB)
VELMORA_OBJECT_HANDLER(FittedCoordSys, CS::CFittedCoordSysDataDB)
VELMORA_OBJECT_HANDLER(CoordTransform, CT::CCoordTransformDataDB)
#undef VELMORA_OBJECT_HANDLER

// Group handlers

CGroupHandler::CGroupHandler(XN::SAX2XMLReader * reader, CSAXHandler * parent, CDataSource * source, long type)
  : CSAXHandler(reader, parent, CString(dbGroup::PluralElement(type)), source), m_type(type)
{
}

CGroupHandler::CGroupHandler(CXmlWriter * writer, CSAXHandler * parent, CDataSource * source, long type)
  : CSAXHandler(writer, parent, CString(dbGroup::PluralElement(type)), source), m_type(type)
{
}

CGroupHandler::~CGroupHandler() = default;

void CGroupHandler::OnOpen(XN::Attributes const &) { m_open.assign(1, 1L); }

bool CGroupHandler::OnChild(CString const & name, XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
                            XN::Attributes const & attributes)
{
  if (name == QLatin1String("group")) {
    long const id = AttributeValue(attributes, u"id").toLong(nullptr, 10);
    m_group->AddSubFolder(std::make_unique<CFolderListViewItem>(AttributeValue(attributes, u"name"), m_open.back(),
                                                                id, static_cast<EObjectType>(m_type)));
    m_source->SetLargestGroupID(id);
    m_open.push_back(id);
    return false;
  }
  if (name != QLatin1String(dbGroup::SingularElement(m_type)))
    return false; // `grouptree` and what is unknown
  long folder = AttributeValue(attributes, u"group").toLong(nullptr, 10);
  if (folder == 0)
    folder = CDataSource::GetGroupID(m_type);
  CSerializableDataDB & body = NewEntry(AttributeValue(attributes, u"id"));
  body.SetName(AttributeValue(attributes, u"name"));
  body.SetGroupID(folder);
  CObjectHandler & objects = Objects();
  objects.SetObject(&body, m_group);
  HandOver(objects, uri, localname, qname, attributes);
  return true;
}

void CGroupHandler::OnChildEnd(CString const & name)
{
  if (name == QLatin1String("group") && m_open.size() > 1)
    m_open.pop_back();
}

void CGroupHandler::OnClose()
{
  if (m_group->GetFolders().size() < 2)
    m_group->MakeDefaultFolders();
  m_group->ForEach([this](CSerializableDataDB & body) {
    if (!m_group->Shelve(&body))
      throw CVelmoraException(CVelmoraException::kIdentifierNotFound, "C##name##GroupHandler::endElement",
                              CString("Group or folder with id ") + CString(body.GetGroupID()));
  });
}

void CGroupHandler::WriteFolder(CFolderListViewItem const & folder)
{
  AttributeMap const attributes{{CString("id"), CString(folder.Info().GetID())},
                                {CString("name"), folder.Info().GetName()}};
  if (folder.Children().empty()) {
    AttributeElement(CString("group"), attributes);
    return;
  }
  OpenElement(CString("group"), attributes);
  for (CFolderListViewItem const * child : folder.Children())
    WriteFolder(*child);
  CloseElement(CString("group"));
}

bool CGroupHandler::writeElement()
{
  OpenElement(m_elementName);
  OpenElement(CString("grouptree"));
  CFolderListViewItem const * root = m_group->FindFolder(1);
  if (root && !root->Children().empty())
    WriteFolder(*root->Children().front());
  CloseElement(CString("grouptree"));
  bool written = true;
  CObjectHandler & objects = Objects();
  m_group->ForEach([&](CSerializableDataDB & body) {
    objects.SetObject(&body, m_group);
    written = objects.writeElement() && written;
  });
  CloseElement(m_elementName);
  return written;
}

// The root

CVelmoraHandler::CVelmoraHandler(XN::SAX2XMLReader * reader, CSAXHandler * parent, CString const & elementName,
                                 CDataSource * source)
  : CSAXHandler(reader, parent, elementName, source)
{
}

CVelmoraHandler::CVelmoraHandler(CXmlWriter * writer, CSAXHandler * parent, CString const & elementName,
                                 CDataSource * source)
  : CSAXHandler(writer, parent, elementName, source)
{
  writer->SetDefaultIssuer("TWL");
  writer->writeLn(CString("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>"));
  writer->writeLn(CString("<") + elementName +
                  CString(" xmlns:xs=\"http://www.w3.org/2001/XMLSchema-instance\""
                          " xs:noNamespaceSchemaLocation=\"velmora.xsd\">"));
}

CVelmoraHandler::~CVelmoraHandler() = default;

std::unique_ptr<CGroupHandler> CVelmoraHandler::MakeGroupHandler(XN::SAX2XMLReader * reader, CXmlWriter * writer,
                                                                 CSAXHandler * parent, CDataSource * source, long type)
{
#define VELMORA_GROUP_CASE(Name, Kind)                                                                           \
  case Kind:                                                                                                     \
    if (writer)                                                                                                  \
      return std::make_unique<C##Name##GroupHandler>(writer, parent, source, type);                              \
    return std::make_unique<C##Name##GroupHandler>(reader, parent, source, type);
  switch (type) {
    VELMORA_GROUP_CASE(AngularUnit, kObjectAngularUnit)
    VELMORA_GROUP_CASE(LinearUnit, kObjectLinearUnit)
    VELMORA_GROUP_CASE(PrimeMeridian, kObjectPrimeMeridian)
    VELMORA_GROUP_CASE(Ellipsoid, kObjectEllipsoid)
    VELMORA_GROUP_CASE(HorizontalDatum, kObjectHorizontalDatum)
    VELMORA_GROUP_CASE(DatumShift, kObjectDatumShift)
    VELMORA_GROUP_CASE(CartesianPoint, kObjectCartesianPoint)
    VELMORA_GROUP_CASE(GeodeticPoint, kObjectGeodeticPoint)
    VELMORA_GROUP_CASE(ProjectedPoint, kObjectProjectedPoint)
    VELMORA_GROUP_CASE(Envelope, kObjectEnvelope)
    VELMORA_GROUP_CASE(VerticalReference, kObjectVerticalReference)
    VELMORA_GROUP_CASE(VerticalDatum, kObjectVerticalDatum)
    VELMORA_GROUP_CASE(HeightModel, kObjectHeightModel)
    VELMORA_GROUP_CASE(GeodeticCoordSys, kObjectGeodeticCoordSys)
    VELMORA_GROUP_CASE(GeocentricCoordSys, kObjectGeocentricCoordSys)
    VELMORA_GROUP_CASE(ProjectedCoordSys, kObjectProjectedCoordSys)
    VELMORA_GROUP_CASE(FittedCoordSys, kObjectFittedCoordSys)
    VELMORA_GROUP_CASE(CoordTransform, kObjectCoordTransform)
  default: return nullptr;
  }
#undef VELMORA_GROUP_CASE
}

bool CVelmoraHandler::OnChild(CString const & name, XMLCh const * uri, XMLCh const * localname, XMLCh const * qname,
                              XN::Attributes const & attributes)
{
  for (long type : dbGroup::FileOrder()) {
    if (name != QLatin1String(dbGroup::PluralElement(type)))
      continue;
    m_group.reset();
    m_source->SetGroup(type, MakeGroup(type));
    m_group = MakeGroupHandler(m_reader, nullptr, this, m_source, type);
    m_group->SetGroup(m_source->GetGroup(type));
    HandOver(*m_group, uri, localname, qname, attributes);
    return true;
  }
  return false;
}

void CVelmoraHandler::OnClose() { m_source->ResolvePendingReferences(); }

bool CVelmoraHandler::writeElement()
{
  bool written = true;
  for (long type : dbGroup::FileOrder()) {
    std::unique_ptr<CGroupHandler> handler = MakeGroupHandler(nullptr, m_writer, this, m_source, type);
    // A kind the store never had is written with the folders it would get.
    std::unique_ptr<dbGroup> standIn;
    dbGroup * group = m_source->GetGroup(type);
    if (!group) {
      standIn = MakeGroup(type);
      standIn->MakeDefaultFolders();
      group = standIn.get();
    }
    handler->SetGroup(group);
    m_writer->writeLn(CString());
    m_writer->Indent();
    written = handler->writeElement() && written;
    m_writer->UnIndent();
  }
  m_writer->writeLn(CString("</") + m_elementName + CString(">"));
  m_writer->Close();
  return written;
}

} // namespace Velmora::DB::SAX
