#include <velmora/refsys/CoordSys.h>

#include <velmora/datasource/SourceLookup_p.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/projections/TransverseMercator.h>

namespace Velmora::CS {

using EX::CVelmoraException;

namespace {
CString const kOutsideEnvelope("Point is not within the specified envelope.");
} // namespace

// Shared body

CCoordSysData & CCoordSysData::operator=(CCoordSysData const & other)
{
  CSerializableData::operator=(other);
  m_envelope = other.m_envelope;
  return *this;
}

bool CCoordSysData::GuardsNative() const
{
  if (m_envelope.GetAlwaysAccept())
    return false;
  ML::CCoordPoint const * corner = m_envelope.GetMinPoint();
  return !corner || corner->GetType() != ML::kGeodeticPoint || GetType() == kGeodeticCoordSys;
}

bool CCoordSysData::GuardsGeodetic() const
{
  if (m_envelope.GetAlwaysAccept())
    return false;
  ML::CCoordPoint const * corner = m_envelope.GetMinPoint();
  return corner && corner->GetType() == ML::kGeodeticPoint;
}

void CCoordSysData::CheckInput(bool inBounds, char const * location) const
{
  if (!inBounds)
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, location, kOutsideEnvelope);
}

void CCoordSysData::CheckOutput(bool inBounds, char const * location) const
{
  if (!inBounds)
    throw CVelmoraException(CVelmoraException::kOutputOutOfBounds, location);
}

void CCoordSysData::CheckReference(CSerializable const & object, DB::CDataSource const * source,
                                   char const * location, char const * missingCode, char const * missingObject) const
{
  if (!object.GetIdentifiers().Exists("VM"))
    throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, missingCode);
  if (!DB::detail::SourceHolds(source, object))
    throw CVelmoraException(CVelmoraException::kReferenceNotFound, location, missingObject);
}

void CCoordSysData::CheckPointStyle(ML::CCoordPoint const & style, ML::ECoordPointType wanted, char const * location,
                                    char const * details) const
{
  if (style.GetType() != wanted)
    throw CVelmoraException(CVelmoraException::kWrongSerializedClass, location, details);
}

bool CCoordSysData::IsNearlyEqual(CCoordSysData const & other, CString & why) const
{
  if (GetType() != other.GetType()) {
    why += CString(": CoordSys types do not match");
    return false;
  }
  auto const base = IsNearlyEqualBase(other, why);
  if (base != kNearlyEqualBaseUndecided)
    return base == kNearlyEqualBaseSame;
  return FieldsNearlyEqual(other, why);
}

// A stored body refers to a stored style: only the frame level is taken.
template <class Style>
void AssignStyle(CSerializableData const & body, Style & target, ML::CCoordPoint const & style)
{
  if (body.GetDataObjectType() == kEDataObjectDB)
    static_cast<ML::CCoordPoint &>(target) = style;
  else
    target = static_cast<Style const &>(style);
}

// Systems on a datum

template <class Style>
void TDatumSystemData<Style>::AssignFields(TDatumSystemData const & other)
{
  CCoordSysData::operator=(other);
  m_datum = other.m_datum;
  m_style = other.m_style;
}

template <class Style>
bool TDatumSystemData<Style>::SameFields(TDatumSystemData const & other) const
{
  return CSerializableData::operator==(other) && m_envelope == other.m_envelope && m_datum == other.m_datum &&
         m_style.PointData().Equals(other.m_style.PointData());
}

template <class Style>
bool TDatumSystemData<Style>::FieldsNearlyEqual(CCoordSysData const & other, CString & why) const
{
  CString detail;
  if (m_datum.IsNearlyEqual(static_cast<TDatumSystemData const &>(other).m_datum, detail))
    return true;
  why += CString(": horizontal datums do not match ") + detail;
  return false;
}

template <class Style>
void TDatumSystemData<Style>::CheckReferences(DB::CDataSource const * source, char const * location) const
{
  CheckReference(m_envelope, source, location, "Envelope", "Envelope");
  CheckReference(m_style, source, location, "PointStyle", "PointStyle");
  CheckReference(m_datum, source, location, "HorizontalDatum", "HorizontalDatum");
}

template <class Style>
void TDatumSystemData<Style>::CongealInner()
{
  m_envelope.Congeal();
  m_datum.Congeal();
  m_style.Congeal();
}

template class TDatumSystemData<ML::CCartesianPoint>;
template class TDatumSystemData<ML::CGeodeticPoint>;

// Geocentric

CGeocentricCoordSysData & CGeocentricCoordSysData::operator=(CGeocentricCoordSysData const & other)
{
  AssignFields(other);
  return *this;
}

void CGeocentricCoordSysData::SetPointStyle(ML::CCoordPoint const & style)
{
  CheckPointStyle(style, ML::kCartesianPoint, "CGeocentricCoordSys::SetPointStyle", "Expected a Cartesian Point Type");
  AssignStyle(*this, m_style, style);
}

bool CGeocentricCoordSysData::ToGeodeticBase(ML::CCoordPoint const & in, ML::CGeodeticPoint & out) const
{
  char const * const location = "CGeocentricCoordSys::ToGeodeticBase";
  if (in.GetType() != ML::kCartesianPoint)
    throw CVelmoraException(CVelmoraException::kInputWrongClass, location);
  if (GuardsNative())
    CheckInput(m_envelope.InBounds(in), location);
  auto const & cartesian = static_cast<ML::CCartesianPoint const &>(in);
  ML::BPoint3D point(cartesian.GetX().GetInternal(), cartesian.GetY().GetInternal(), cartesian.GetZ().GetInternal());
  m_datum.GetEllipsoid().GetInner().ToGeodeticBase(1, &point);
  ML::CGeodeticPoint const local(point.x, point.y, point.z);
  bool const result = m_datum.GetPrimeMeridian().ToGreenwich(local, out);
  if (GuardsGeodetic())
    CheckOutput(m_envelope.InBounds(out), location);
  return result;
}

bool CGeocentricCoordSysData::FromGeodeticBase(ML::CGeodeticPoint const & in, ML::CCoordPoint & out) const
{
  char const * const location = "CGeocentricCoordSys::FromGeodeticBase";
  if (out.GetType() != ML::kCartesianPoint)
    throw CVelmoraException(CVelmoraException::kOutputWrongClass, location);
  if (GuardsGeodetic())
    CheckInput(m_envelope.InBounds(in), location);
  ML::CGeodeticPoint local(3);
  m_datum.GetPrimeMeridian().FromGreenwich(in, local);
  ML::BPoint3D point(local.GetLon().GetInternal(), local.GetLat().GetInternal(), local.GetHgt().GetInternal());
  m_datum.GetEllipsoid().GetInner().FromGeodeticBase(1, &point);
  auto & cartesian = static_cast<ML::CCartesianPoint &>(out);
  cartesian.GetX().SetInternal(point.x);
  cartesian.GetY().SetInternal(point.y);
  cartesian.GetZ().SetInternal(point.z);
  if (GuardsNative())
    CheckOutput(m_envelope.InBounds(out), location);
  return true;
}

bool CGeocentricCoordSysData::ToGeodeticBase(double & x, double & y) const
{
  ML::CCartesianPoint const in(x, y);
  ML::CGeodeticPoint out(2);
  bool const result = ToGeodeticBase(in, out);
  out.GetInternals(x, y);
  return result;
}

bool CGeocentricCoordSysData::FromGeodeticBase(double & x, double & y) const
{
  ML::CGeodeticPoint const in(x, y);
  ML::CCartesianPoint out(2);
  bool const result = FromGeodeticBase(in, out);
  out.GetInternals(x, y);
  return result;
}



bool CGeocentricCoordSysData::IsFullyDefined(DB::CDataSource const * source) const
{
  bool const base = CSerializableData::IsFullyDefined(source);
  CheckReferences(source, "CGeocentricCoordSysData::IsFullyDefined");
  return base;
}


// Geodetic

CGeodeticCoordSysData::CGeodeticCoordSysData(CGeodeticCoordSysData const & other)
  : CSerializableData(other), TDatumSystemData(other) // the frame itself is copied by the most-derived body
{
  SetVerticalReference(other.m_verticalReference.get());
}

CGeodeticCoordSysData::~CGeodeticCoordSysData() = default;

CGeodeticCoordSysData & CGeodeticCoordSysData::operator=(CGeodeticCoordSysData const & other)
{
  if (&other == this)
    return *this;
  AssignFields(other);
  SetVerticalReference(other.m_verticalReference.get());
  return *this;
}

void CGeodeticCoordSysData::SetVerticalReference(VR::CVerticalReference const * reference)
{
  if (!reference)
    m_verticalReference.reset();
  else if (m_verticalReference)
    *m_verticalReference = *reference;
  else
    m_verticalReference = std::make_unique<VR::CVerticalReference>(*reference);
}

bool CGeodeticCoordSysData::operator==(CGeodeticCoordSysData const & other) const
{
  if (!SameFields(other))
    return false;
  auto const * mine = m_verticalReference.get();
  auto const * theirs = other.m_verticalReference.get();
  return mine && theirs ? *mine == *theirs : mine == theirs;
}

bool CGeodeticCoordSysData::FieldsNearlyEqual(CCoordSysData const & other, CString & why) const
{
  auto const & geodetic = static_cast<CGeodeticCoordSysData const &>(other);
  auto const * mine = m_verticalReference.get();
  auto const * theirs = geodetic.m_verticalReference.get();
  if (!mine != !theirs) {
    why += CString(": both geodetic coord systems do not have valid vertical references");
    return false;
  }
  if (!TDatumSystemData::FieldsNearlyEqual(other, why))
    return false;
  CString detail;
  if (mine && !mine->IsNearlyEqual(*theirs, detail)) {
    why += CString(": vertical references do not match ") + detail;
    return false;
  }
  return true;
}

void CGeodeticCoordSysData::CongealInner()
{
  // Field order: envelope, datum, vertical reference, point style.
  m_envelope.Congeal();
  m_datum.Congeal();
  if (m_verticalReference)
    m_verticalReference->Congeal();
  m_style.Congeal();
}

void CGeodeticCoordSysData::SetPointStyle(ML::CCoordPoint const & style)
{
  CheckPointStyle(style, ML::kGeodeticPoint, "CGeodeticCoordSys::SetPointStyle", "Expected a Geodetic Point Type");
  AssignStyle(*this, m_style, style);
}

bool CGeodeticCoordSysData::ToGeodeticBase(ML::CCoordPoint const & in, ML::CGeodeticPoint & out) const
{
  char const * const location = "CGeodeticCoordSys::ToGeodeticBase";
  // The envelope comes first, before the class of the point is known good.
  CheckInput(m_envelope.InBounds(in), location);
  if (in.GetType() != ML::kGeodeticPoint)
    throw CVelmoraException(CVelmoraException::kInputWrongClass, location);
  return m_datum.GetPrimeMeridian().ToGreenwich(static_cast<ML::CGeodeticPoint const &>(in), out);
}

bool CGeodeticCoordSysData::FromGeodeticBase(ML::CGeodeticPoint const & in, ML::CCoordPoint & out) const
{
  char const * const location = "CGeodeticCoordSys::FromGeodeticBase";
  if (out.GetType() != ML::kGeodeticPoint)
    throw CVelmoraException(CVelmoraException::kOutputWrongClass, location);
  bool const result = m_datum.GetPrimeMeridian().FromGreenwich(in, static_cast<ML::CGeodeticPoint &>(out));
  CheckOutput(m_envelope.InBounds(out), location);
  return result;
}

bool CGeodeticCoordSysData::ToGeodeticBase(double & x, double &) const
{
  x += m_datum.GetPrimeMeridian().GetLongitude().GetInternal();
  return true;
}

bool CGeodeticCoordSysData::FromGeodeticBase(double & x, double &) const
{
  x -= m_datum.GetPrimeMeridian().GetLongitude().GetInternal();
  return true;
}



bool CGeodeticCoordSysData::IsFullyDefined(DB::CDataSource const * source) const
{
  bool const base = CSerializableData::IsFullyDefined(source);
  char const * const location = "CGeodeticCoordSysData::IsFullyDefined";
  CheckReferences(source, location);
  if (m_verticalReference)
    CheckReference(*m_verticalReference, source, location, "VerticalReference", "VerticalReference");
  return base;
}


// Projected

CProjectedCoordSysData::CProjectedCoordSysData() : m_geodetic(std::make_unique<CGeodeticCoordSys>()) {}

CProjectedCoordSysData::CProjectedCoordSysData(CProjectedCoordSysData const & other)
  : CSerializableData(other), CCoordSysData(other),
    m_geodetic(std::make_unique<CGeodeticCoordSys>(*other.m_geodetic)), m_style(other.m_style)
{
  if (other.m_projection)
    SetProjection(*other.m_projection);
}

CProjectedCoordSysData::~CProjectedCoordSysData() = default;

CProjectedCoordSysData & CProjectedCoordSysData::operator=(CProjectedCoordSysData const & other)
{
  if (&other == this)
    return *this;
  CCoordSysData::operator=(other);
  *m_geodetic = *other.m_geodetic;
  m_style = other.m_style;
  if (other.m_projection)
    SetProjection(*other.m_projection);
  else
    m_projection.reset();
  return *this;
}

CHorizontalDatum const & CProjectedCoordSysData::GetHorizontalDatum() const
{
  return m_geodetic->GetHorizontalDatum();
}

CHorizontalDatum & CProjectedCoordSysData::GetHorizontalDatum() { return m_geodetic->GetHorizontalDatum(); }

void CProjectedCoordSysData::SetPointStyle(ML::CCoordPoint const & style)
{
  CheckPointStyle(style, ML::kProjectedPoint, "CProjectedCoordSys::SetPointStyle", "Expected a Projected Point Type");
  AssignStyle(*this, m_style, style);
}

void CProjectedCoordSysData::SetGeodeticCoordSys(CGeodeticCoordSys const & system) { *m_geodetic = system; }

PJ::CProjection & CProjectedCoordSysData::Projection() const
{
  // Read through the const path, so a stored inner system is not copied.
  auto * const datum = const_cast<CHorizontalDatum *>(m_geodetic->GetHorizontalDatumPointer());
  if (!m_projection)
    m_projection = std::make_unique<PJ::CTransverseMercator>(datum);
  else if (m_projection->GetHorizontalDatum() != datum)
    m_projection->SetHorizontalDatum(datum);
  return *m_projection;
}

PJ::CProjection const & CProjectedCoordSysData::GetProjection() const { return Projection(); }

PJ::CProjection & CProjectedCoordSysData::GetProjection() { return Projection(); }

void CProjectedCoordSysData::SetProjection(PJ::CProjection const & projection)
{
  if (m_projection && m_projection->GetType() != projection.GetType())
    m_projection.reset();
  auto * const datum = const_cast<CHorizontalDatum *>(m_geodetic->GetHorizontalDatumPointer());
  if (!m_projection)
    m_projection.reset(PJ::CProjectionFactory::CreateProjection(projection.GetType(), datum));
  *m_projection = projection;
  m_projection->SetHorizontalDatum(datum);
  m_projection->GetParameters(); // hear the parameters' changes ourselves
}

bool CProjectedCoordSysData::ToGeodeticBase(ML::CCoordPoint const & in, ML::CGeodeticPoint & out) const
{
  char const * const location = "CProjectedCoordSys::ToGeodeticBase";
  if (in.GetType() != ML::kProjectedPoint)
    throw CVelmoraException(CVelmoraException::kInputWrongClass, location);
  if (GuardsNative())
    CheckInput(m_envelope.InBounds(in), location);
  ML::CGeodeticPoint t(in.GetDimensions());
  bool const result = Projection().FromPlane(static_cast<ML::CProjectedPoint const &>(in), t);
  m_geodetic->GetHorizontalDatum().GetPrimeMeridian().ToGreenwich(t, out);
  if (GuardsGeodetic())
    CheckOutput(m_envelope.InBounds(out), location);
  return result;
}

bool CProjectedCoordSysData::FromGeodeticBase(ML::CGeodeticPoint const & in, ML::CCoordPoint & out) const
{
  char const * const location = "CProjectedCoordSys::FromGeodeticBase";
  if (out.GetType() != ML::kProjectedPoint)
    throw CVelmoraException(CVelmoraException::kOutputWrongClass, location);
  if (GuardsGeodetic())
    CheckInput(m_envelope.InBounds(in), location);
  ML::CGeodeticPoint t(in.GetDimensions());
  m_geodetic->GetHorizontalDatum().GetPrimeMeridian().FromGreenwich(in, t);
  bool const result = Projection().ToPlane(t, static_cast<ML::CProjectedPoint &>(out));
  if (GuardsNative())
    CheckOutput(m_envelope.InBounds(out), location);
  return result;
}

// The pair forms are the hot loop of a transform: the envelope is asked
// once whether it guards at all, and the datum is reached once.
bool CProjectedCoordSysData::ToGeodeticBase(double & x, double & y) const
{
  char const * const location = "CProjectedCoordSys::ToGeodeticBase";
  bool const guarded = !m_envelope.GetAlwaysAccept();
  if (guarded && GuardsNative())
    CheckInput(m_envelope.InBounds(x, y), location);
  CHorizontalDatum const & datum = *m_geodetic->GetHorizontalDatumPointer();
  bool const result = Projection().FromPlane(x, y);
  x += datum.GetPrimeMeridian().GetLongitude().GetInternal();
  if (guarded && GuardsGeodetic())
    CheckOutput(m_envelope.InBounds(x, y), location);
  return result;
}

bool CProjectedCoordSysData::FromGeodeticBase(double & x, double & y) const
{
  char const * const location = "CProjectedCoordSys::FromGeodeticBase";
  bool const guarded = !m_envelope.GetAlwaysAccept();
  if (guarded && GuardsGeodetic())
    CheckInput(m_envelope.InBounds(x, y), location);
  CHorizontalDatum const & datum = *m_geodetic->GetHorizontalDatumPointer();
  x -= datum.GetPrimeMeridian().GetLongitude().GetInternal();
  bool const result = Projection().ToPlane(x, y);
  if (guarded && GuardsNative())
    CheckOutput(m_envelope.InBounds(x, y), location);
  return result;
}

bool CProjectedCoordSysData::FieldsNearlyEqual(CCoordSysData const & other, CString & why) const
{
  auto const & that = static_cast<CProjectedCoordSysData const &>(other);
  if (!m_projection || !that.m_projection) {
    why += CString(": projection is not defined for one of the projected coordinate systems");
    return false;
  }
  CString detail;
  if (!m_geodetic->IsNearlyEqual(*that.m_geodetic, detail)) {
    why += CString(": inner geodetic coordinate systems do not match ") + detail;
    return false;
  }
  if (!m_projection->IsNearlyEqual(*that.m_projection, detail)) {
    why += CString(": projections do not match ") + detail;
    return false;
  }
  return true;
}

bool CProjectedCoordSysData::operator==(CProjectedCoordSysData const & other) const
{
  return CSerializableData::operator==(other) && m_envelope == other.m_envelope &&
         *m_geodetic == *other.m_geodetic && GetProjection() == other.GetProjection() &&
         m_style.PointData().Equals(other.m_style.PointData());
}

bool CProjectedCoordSysData::IsFullyDefined(DB::CDataSource const * source) const
{
  bool const base = CSerializableData::IsFullyDefined(source);
  char const * const location = "CProjectedCoordSysData::IsFullyDefined";
  CheckReference(m_envelope, source, location, "Envelope", "Envelope");
  CheckReference(m_style, source, location, "PointStyle", "PointStyle");
  CheckReference(*m_geodetic, source, location, "GeodeticBase", "GeodeticCoordSys");
  GetProjection().IsFullyDefined(source);
  return base;
}

void CProjectedCoordSysData::CongealInner()
{
  m_geodetic->Congeal();
  PJ::CProjection & projection = Projection();
  projection.GetData(); // a private body for the projection
  projection.GetParameters().Congeal();
  m_envelope.Congeal();
  m_style.Congeal();
}

// Handles

CCoordSys::~CCoordSys() = default;

template class TCoordSysHandle<CGeocentricCoordSysData>;
template class TCoordSysHandle<CGeodeticCoordSysData>;
template class TCoordSysHandle<CProjectedCoordSysData>;

bool CCoordSys::IsNearlyEqual(CCoordSys const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

CGeocentricCoordSys::~CGeocentricCoordSys() = default;
CGeodeticCoordSys::~CGeodeticCoordSys() = default;
CProjectedCoordSys::~CProjectedCoordSys() = default;

void CGeocentricCoordSys::Congeal()
{
  m_data.Dereference();
  MutableBody().CongealInner();
}

void CGeodeticCoordSys::Congeal()
{
  m_data.Dereference();
  MutableBody().CongealInner();
}

void CProjectedCoordSys::Congeal()
{
  m_data.Dereference();
  MutableBody().CongealInner();
}

CCoordSys * CCoordSysFactory::CreateCoordSys(ECoordSysType type)
{
  char const * const location = "CCoordSysFactory::CreateCoordSys";
  switch (type) {
  case kGeocentricCoordSys: return new CGeocentricCoordSys();
  case kGeodeticCoordSys: return new CGeodeticCoordSys();
  case kProjectedCoordSys: return new CProjectedCoordSys();
  case kChainedCoordSys:
    throw CVelmoraException(CVelmoraException::kClassNotSupported, location, "CS::CChainedCoordSys");
  case kFittedCoordSys:
    throw CVelmoraException(CVelmoraException::kClassNotSupported, location, "CS::CFittedCoordSys");
  case kMosaickedCoordSys:
    throw CVelmoraException(CVelmoraException::kClassNotSupported, location, "CS::CMosaickedCoordSys");
  }
  throw CVelmoraException(CVelmoraException::kClassNotImplemented, location);
}

} // namespace Velmora::CS
