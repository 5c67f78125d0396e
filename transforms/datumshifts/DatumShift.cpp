#include <velmora/transforms/datumshifts/DatumShift.h>

#include <velmora/datasource/SourceLookup_p.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/transforms/datumshifts/DatumShiftTable_p.h>

#include <cmath>

namespace Velmora::CT::DS {

using EX::CVelmoraException;

namespace {

CString const kOutsideEnvelope("Point is not within the specified envelope.");
// The tolerance of the cross-method comparisons, in internal units.
constexpr double kTolerance = 0.000001;

void Register(CParameterCollection & parameters, Table::Parameter const & parameter)
{
  CString const name(parameter.name);
  switch (parameter.kind) {
  case Table::Kind::kDouble: parameters.AddDouble(name, false); break;
  case Table::Kind::kString: parameters.AddString(name, false); break;
  case Table::Kind::kAngular: parameters.AddAngularValue(name, false); break;
  case Table::Kind::kLinear: parameters.AddLinearValue(name, false); break;
  }
}

bool Near(double a, double b) { return std::fabs(a - b) < kTolerance; }

} // namespace

// Body

CDatumShiftData & CDatumShiftData::operator=(CDatumShiftData const & other)
{
  if (&other == this)
    return *this;
  CSerializableData::operator=(other);
  m_envelope = other.m_envelope;
  m_srcDatum = other.m_srcDatum;
  m_destDatum = other.m_destDatum;
  m_reversed = other.m_reversed;
  m_classType = other.m_classType;
  m_parameters = other.m_parameters;
  return *this;
}

bool CDatumShiftData::operator==(CDatumShiftData const & other) const
{
  return CSerializableData::operator==(other) && m_reversed == other.m_reversed &&
         m_parameters == other.m_parameters && m_classType == other.m_classType;
}

bool CDatumShiftData::IsNearlyEqual(CDatumShiftData const & other, CString & why) const
{
  auto const base = IsNearlyEqualBase(other, why);
  if (base == kNearlyEqualBaseDifferent)
    return false;
  // The very same object needs no look at its datums.
  if (base == kNearlyEqualBaseUndecided) {
    if (!m_srcDatum.IsNearlyEqual(other.m_srcDatum)) {
      why += CString(": source datums do not match");
      return false;
    }
    if (!m_destDatum.IsNearlyEqual(other.m_destDatum)) {
      why += CString(": destination datums do not match");
      return false;
    }
  }
  bool const sameFlags = m_reversed == other.m_reversed;
  bool const sameClass = m_classType == other.m_classType;
  bool const sameParameters = m_parameters.IsNearlyEqual(other.m_parameters);
  if (sameFlags && sameClass && sameParameters)
    return true;
  if (!sameFlags)
    why += CString(": reversed flags do not match");
  else if (!sameClass)
    why += CString(": class names do not match");
  else
    why += CString(": parameters do not match");
  return CrossMethodNearlyEqual(other, why);
}

bool CDatumShiftData::IsNearlyEqual(CDatumShiftData const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

bool CDatumShiftData::CrossMethodNearlyEqual(CDatumShiftData const & other, CString & why) const
{
  CString const & mine = m_classType;
  CString const & theirs = other.m_classType;
  auto const pair = [&](char const * a, char const * b) {
    return (mine == CString(a) && theirs == CString(b)) || (mine == CString(b) && theirs == CString(a));
  };

  // A rotation of longitudes stored the other way round, used reversed, is the same
  // job. Its amount is deliberately not compared; nothing else is tried for it.
  if (mine == CString("LongitudeRotation")) {
    return theirs == mine && m_reversed != other.m_reversed && m_srcDatum.IsNearlyEqual(other.m_destDatum) &&
           m_destDatum.IsNearlyEqual(other.m_srcDatum);
  }

  // Molodensky's formula approximates the same three translations.
  if (pair("Molodensky", "GeocentricTranslation") && m_parameters.IsNearlyEqual(other.m_parameters))
    return true;

  // The two seven-parameter forms are compared with the rotations of the other
  // negated. Established behaviour that stored comparisons rely on, kept although
  // both methods turn the same way.
  if (pair("BursaWolfe", "SevenParameter")) {
    CParameterCollection const & a = m_parameters;
    CParameterCollection const & b = other.m_parameters;
    for (char const * name : {"dx", "dy", "dz"})
      if (!Near(a.GetItemInternal(CString(name)), b.GetItemInternal(CString(name))))
        return false;
    for (char const * name : {"rx", "ry", "rz"})
      if (!Near(a.GetItemInternal(CString(name)), -b.GetItemInternal(CString(name))))
        return false;
    return Near(a.GetDouble(CString("k")), b.GetDouble(CString("k")));
  }

  Affine3DSummary first, second;
  if (!PopulateSummary(first) || !other.PopulateSummary(second))
    return false;
  if (SummariesNearlyEqual(first, second, why, true))
    return true;
  bool const sameFlags = first.reversed == second.reversed;
  // With the same flags, turning the first round only makes sense for a shift
  // from a datum to itself, where direction is no part of the job.
  if (sameFlags && !first.srcDatum->IsNearlyEqual(*first.destDatum))
    return false;
  if (!NegateSummary(first))
    return false;
  return SummariesNearlyEqual(first, second, why, !sameFlags);
}

bool CDatumShiftData::PopulateSummary(Affine3DSummary & summary) const
{
  summary.srcDatum = &m_srcDatum;
  summary.destDatum = &m_destDatum;
  summary.reversed = m_reversed;
  CParameterCollection const & p = m_parameters;
  auto const translations = [&] {
    summary.dx = p.GetLinearValue(CString("dx"));
    summary.dy = p.GetLinearValue(CString("dy"));
    summary.dz = p.GetLinearValue(CString("dz"));
  };
  auto const rotations = [&] {
    summary.rx = p.GetAngularValue(CString("rx"));
    summary.ry = p.GetAngularValue(CString("ry"));
    summary.rz = p.GetAngularValue(CString("rz"));
  };
  auto const scale = [&] { summary.k = p.GetDouble(CString("k")); };
  auto const is = [&](char const * name) { return m_classType == CString(name); };

  if (is("Molodensky") || is("GeocentricTranslation")) {
    translations();
  } else if (is("BursaWolfe") || is("SevenParameter")) {
    translations();
    rotations();
    scale();
  } else if (is("MolodenskyBadekas")) {
    translations();
    rotations();
    scale();
    summary.xp = p.GetLinearValue(CString("xp"));
    summary.yp = p.GetLinearValue(CString("yp"));
    summary.zp = p.GetLinearValue(CString("zp"));
  } else if (is("SixParameter")) {
    translations();
    rotations();
  } else if (is("FourParameter")) {
    translations();
    scale();
  } else {
    return false;
  }
  return true;
}

bool CDatumShiftData::SummariesNearlyEqual(Affine3DSummary const & a, Affine3DSummary const & b, CString & why,
                                           bool compareFlags)
{
  if (compareFlags && a.reversed != b.reversed) {
    why += CString(": reversed flags do not match");
    return false;
  }
  if (!a.srcDatum->IsNearlyEqual(*b.srcDatum)) {
    why += CString(": source datums do not match");
    return false;
  }
  if (!a.destDatum->IsNearlyEqual(*b.destDatum)) {
    why += CString(": destination datums do not match");
    return false;
  }
  if (!Near(a.k, b.k)) {
    why += CString(": k values do not match");
    return false;
  }
  // Internal values only: the same rotation in seconds or in degrees is the same job.
  // The first value that differs is named, in this order.
  auto const same = [&why](auto const & here, auto const & there, char const * text) {
    CString detail;
    if (here.IsNearlyEqual(there, detail, false))
      return true;
    why += CString(text);
    return false;
  };
  return same(a.dx, b.dx, ": dx values do not match") && same(a.dy, b.dy, ": dy values do not match") &&
         same(a.dz, b.dz, ": dz values do not match") && same(a.rx, b.rx, ": rx values do not match") &&
         same(a.ry, b.ry, ": ry values do not match") && same(a.rz, b.rz, ": rz values do not match") &&
         same(a.xp, b.xp, ": xp values do not match") && same(a.yp, b.yp, ": yp values do not match") &&
         same(a.zp, b.zp, ": zp values do not match");
}

bool CDatumShiftData::NegateSummary(Affine3DSummary & summary)
{
  if (summary.k != 0.0 || summary.rx.GetInternal() != 0.0 || summary.ry.GetInternal() != 0.0 ||
      summary.rz.GetInternal() != 0.0)
    return false;
  for (ML::CLinearValue * v : {&summary.dx, &summary.dy, &summary.dz})
    v->SetInternal(-v->GetInternal());
  summary.reversed = !summary.reversed;
  return true;
}

bool CDatumShiftData::IsFullyDefined(DB::CDataSource const * source) const
{
  bool const base = CSerializableData::IsFullyDefined(source);
  bool const parameters = m_parameters.IsFullyDefined(source);
  char const * const location = "CDatumShiftData::IsFullyDefined";
  if (m_classType.isEmpty())
    throw CVelmoraException(CVelmoraException::kWrongSerializedClass, location, "ClassType");
  struct Reference
  {
    CSerializable const & object;
    char const * needsCode;
    char const * missing;
  };
  // The destination datum reports a missing code with the source's words: established text.
  for (Reference const & r : {Reference{m_envelope, "Envelope", "Envelope"},
                              Reference{m_srcDatum, "Source Datum", "Source HorizontalDatum"},
                              Reference{m_destDatum, "Source Datum", "Destination HorizontalDatum"}}) {
    if (!r.object.GetIdentifiers().Exists("VM"))
      throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, r.needsCode);
    if (!DB::detail::SourceHolds(source, r.object))
      throw CVelmoraException(CVelmoraException::kReferenceNotFound, location, r.missing);
  }
  return base && parameters;
}

void CDatumShiftData::CongealInner()
{
  m_parameters.Congeal();
  m_envelope.Congeal();
  m_srcDatum.Congeal();
  m_destDatum.Congeal();
}

// Stored body

CDatumShiftDataDB::CDatumShiftDataDB()
  : CSerializableData(CString(), kObjectType, kRootGroup), m_stored(std::make_unique<CParameterCollectionDataDB>())
{
  PointAtStoredParameters();
}

CDatumShiftDataDB::CDatumShiftDataDB(CDatumShiftDataDB const & other)
  : CSerializableData(other), CDatumShiftData(other), CSerializableDataDB(other), m_type(other.m_type),
    m_source(other.m_source), m_stored(std::make_unique<CParameterCollectionDataDB>(*other.m_stored))
{
  PointAtStoredParameters();
}

CDatumShiftDataDB::CDatumShiftDataDB(CDatumShiftData const & source, DB::CDataSource const * store)
  : CSerializableData(source), CDatumShiftData(source), m_type(Table::TypeOf(source.GetClassType())),
    m_source(store),
    m_stored(std::make_unique<CParameterCollectionDataDB>(source.GetParameters().GetData(), store))
{
  PointAtStoredParameters();
}

CDatumShiftDataDB::~CDatumShiftDataDB() = default;

void CDatumShiftDataDB::PointAtStoredParameters()
{
  m_parameters.GetData(); // materialise the handle before pointing it at the stored body
  m_parameters = CParameterCollection(*m_stored);
}

CDatumShiftDataDB & CDatumShiftDataDB::operator=(CDatumShiftData const & other)
{
  if (&other == this)
    return *this;
  CDatumShiftData::operator=(other);
  *m_stored = other.GetParameters().GetData();
  PointAtStoredParameters();
  m_type = Table::TypeOf(m_classType);
  return *this;
}

CDatumShiftDataDB & CDatumShiftDataDB::operator=(CDatumShiftDataDB const & other)
{
  operator=(static_cast<CDatumShiftData const &>(other));
  m_source = other.m_source;
  return *this;
}

int CDatumShiftDataDB::GetDatumShiftType(CString const & classType) { return Table::TypeOf(classType); }

void CDatumShiftDataDB::SetShiftType(int type)
{
  if (Table::Row const * row = Table::RowOf(type)) {
    m_type = type;
    m_classType = CString(row->name);
  }
}

int CDatumShiftDataDB::SetShiftType(CString const & classType)
{
  int const type = Table::TypeOf(classType);
  SetShiftType(type);
  return type;
}

void CDatumShiftDataDB::SetValue(CString const & key, TWLVariant & value)
{
  if (!ReadStoredValue(key, value))
    CSerializableDataDB::SetValue(key, value);
}

// The shift

CString CDatumShift::TypeName(int type)
{
  Table::Row const * row = Table::RowOf(type);
  return row ? CString(row->name) : CString();
}

CDatumShift::CDatumShift(unsigned short const * typeName) : CDatumShift(CString(typeName)) {}

CDatumShift::CDatumShift(CString const & typeName)
{
  CDatumShiftData & body = MutableBody();
  body.SetClassType(typeName);
  if (Table::Row const * row = Table::RowOf(Table::TypeOf(typeName)))
    for (Table::Parameter const & parameter : row->parameters)
      Register(body.GetParameters(), parameter);
  Listen();
}

CDatumShift::CDatumShift(CDatumShift const & other)
  : THandle(other), CParameterCollectionEvent()
{
  Listen();
}

CDatumShift::~CDatumShift() = default;

void CDatumShift::Listen()
{
  // A shared body is not written to: it is heard from once a write makes it ours.
  CDatumShiftData const * body = m_data.Peek();
  if (body && body->GetDataObjectType() == kEDataObjectConcrete)
    MutableBody().GetParameters().SetEventHandler(this);
}

CParameterCollection & CDatumShift::GetParameters()
{
  CParameterCollection & parameters = MutableBody().GetParameters();
  // A copied or fetched body may still name another listener, or none.
  if (parameters.GetEventHandler() != this)
    parameters.SetEventHandler(this);
  return parameters;
}

CDatumShift & CDatumShift::operator=(CDatumShift const & other)
{
  if (&other == this)
    return *this;
  m_data = other.m_data;
  Listen();
  OnChange(reinterpret_cast<unsigned short const *>(u""));
  return *this;
}

void CDatumShift::OnChange(unsigned short const *) {}

void CDatumShift::Congeal()
{
  m_data.Dereference();
  MutableBody().CongealInner();
  Listen();
}

void CDatumShift::AttachBody(CDatumShiftData const & body)
{
  m_data.Reset(&body);
  Listen();
  OnChange(reinterpret_cast<unsigned short const *>(u""));
}

bool CDatumShift::ShiftForward(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  if (!GetEnvelope().InBounds(in))
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, "CDatumShift::ShiftForward", kOutsideEnvelope);
  return GetReverseUsage() ? ShiftDestToSrc(in, out) : ShiftSrcToDest(in, out);
}

bool CDatumShift::ShiftBack(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  bool const result = GetReverseUsage() ? ShiftSrcToDest(in, out) : ShiftDestToSrc(in, out);
  if (!GetEnvelope().InBounds(out))
    throw CVelmoraException(CVelmoraException::kOutputOutOfBounds, "CDatumShift::ShiftBack");
  return result;
}

// The hot path of a transform: one envelope call, no allocation here.
bool CDatumShift::ShiftForward(double & lon, double & lat) const
{
  CDatumShiftData const & body = Body();
  if (!body.GetEnvelope().InBounds(lon, lat))
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, "CDatumShift::ShiftForward", kOutsideEnvelope);
  return body.GetReverseUsage() ? ShiftDestToSrc(lon, lat) : ShiftSrcToDest(lon, lat);
}

bool CDatumShift::ShiftBack(double & lon, double & lat) const
{
  CDatumShiftData const & body = Body();
  bool const result = body.GetReverseUsage() ? ShiftSrcToDest(lon, lat) : ShiftDestToSrc(lon, lat);
  if (!body.GetEnvelope().InBounds(lon, lat))
    throw CVelmoraException(CVelmoraException::kOutputOutOfBounds, "CDatumShift::ShiftBack");
  return result;
}

bool CDatumShift::ShiftSrcToDest(double & lon, double & lat) const
{
  ML::CGeodeticPoint const in(lon, lat);
  ML::CGeodeticPoint out(2);
  bool const result = ShiftSrcToDest(in, out);
  out.GetInternals(lon, lat);
  return result;
}

bool CDatumShift::ShiftDestToSrc(double & lon, double & lat) const
{
  ML::CGeodeticPoint const in(lon, lat);
  ML::CGeodeticPoint out(2);
  bool const result = ShiftDestToSrc(in, out);
  out.GetInternals(lon, lat);
  return result;
}

} // namespace Velmora::CT::DS
