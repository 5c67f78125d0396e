#include <velmora/vertical/VerticalReference.h>

#include <velmora/vertical/VerticalCommon_p.h>

namespace Velmora::CS::VR {

using EX::CVelmoraException;

namespace {

CVerticalDatum * MakeLike(CVerticalDatum const & datum)
{
  return CVerticalDatumFactory::CreateVerticalDatum(datum.GetType());
}

CHeightModel * MakeLike(CHeightModel const & model) { return CHeightModelFactory::CreateHeightModel(model.GetType()); }

// The held object becomes a private copy of `source`, made by the factory
// so that it has the source's type.
template <class T>
void Hold(std::unique_ptr<T> & held, T const * source)
{
  if (!source) {
    held.reset();
    return;
  }
  if (held.get() != source) {
    if (held && held->GetType() != source->GetType())
      held.reset();
    if (!held)
      held.reset(MakeLike(*source));
    *held = *source; // the virtual assignment of the type
  }
  held->GetParameters().SetEventHandler(held.get());
  static_cast<CParameterCollectionEvent &>(*held).OnChange(detail::kNoName);
}

// Both absent, or both present and nearly equal.
template <class T>
bool InnerNearlyEqual(T const * a, T const * b, char const * oneMissing, char const * differ, CString & why)
{
  if (!a && !b)
    return true;
  if (!a || !b) {
    why += CString(oneMissing);
    return false;
  }
  CString detail;
  if (!a->IsNearlyEqual(*b, detail)) {
    why += CString(differ) + detail;
    return false;
  }
  return true;
}

template <class T>
bool InnerEqual(T const * a, T const * b)
{
  return a == b || (a && b && *a == *b);
}

} // namespace

// The body

CVerticalReferenceData::CVerticalReferenceData(CVerticalReferenceData const & other) : CSerializableData(other)
{
  SetVerticalDatum(other.m_verticalDatum.get());
  SetHeightModel(other.m_heightModel.get());
}

CVerticalReferenceData::~CVerticalReferenceData() = default;

CVerticalReferenceData & CVerticalReferenceData::operator=(CVerticalReferenceData const & other)
{
  if (&other != this) {
    CSerializableData::operator=(other);
    SetVerticalDatum(other.m_verticalDatum.get());
    SetHeightModel(other.m_heightModel.get());
  }
  return *this;
}

void CVerticalReferenceData::SetVerticalDatum(CVerticalDatum const * datum) { Hold(m_verticalDatum, datum); }

void CVerticalReferenceData::SetHeightModel(CHeightModel const * model) { Hold(m_heightModel, model); }

bool CVerticalReferenceData::IsNearlyEqual(CVerticalReferenceData const & other, CString & why) const
{
  auto const base = IsNearlyEqualBase(other, why);
  if (base != kNearlyEqualBaseUndecided)
    return base == kNearlyEqualBaseSame;
  return InnerNearlyEqual(GetVerticalDatum(), other.GetVerticalDatum(),
                          ": vertical datum is not defined for one of the vertical references",
                          ": vertical datums do not match ", why) &&
         InnerNearlyEqual(GetHeightModel(), other.GetHeightModel(),
                          ": height model (geoid) is not defined for one of the vertical references",
                          ": height models (geoids) do not match ", why);
}

bool CVerticalReferenceData::IsNearlyEqual(CVerticalReferenceData const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

bool CVerticalReferenceData::operator==(CVerticalReferenceData const & other) const
{
  return CSerializableData::operator==(other) && InnerEqual(GetVerticalDatum(), other.GetVerticalDatum()) &&
         InnerEqual(GetHeightModel(), other.GetHeightModel());
}

bool CVerticalReferenceData::IsFullyDefined(DB::CDataSource const * source) const
{
  bool const base = CSerializableData::IsFullyDefined(source);
  char const * const location = "CVerticalReferenceData::IsFullyDefined";
  if (m_verticalDatum)
    detail::CheckReference(*m_verticalDatum, location, "Vertical Datum", "VerticalDatum", source);
  if (m_heightModel)
    detail::CheckReference(*m_heightModel, location, "Height Model", "HeightModel", source);
  return base;
}

void CVerticalReferenceData::CongealInner()
{
  if (m_verticalDatum)
    m_verticalDatum->Congeal();
  if (m_heightModel)
    m_heightModel->Congeal();
}

CVerticalReferenceDataDB::CVerticalReferenceDataDB() : CSerializableData(CString(), kObjectType, kRootGroup) {}

CVerticalReferenceDataDB::CVerticalReferenceDataDB(CVerticalReferenceData const & source, DB::CDataSource const *)
  : CSerializableData(source), CVerticalReferenceData(source)
{
}

// The handle

CVerticalReference::CVerticalReference(CVerticalDatum const * datum, CHeightModel const * model)
{
  CVerticalReferenceData & body = MutableBody();
  body.SetVerticalDatum(datum);
  body.SetHeightModel(model);
}

CVerticalReference::~CVerticalReference() = default;

void CVerticalReference::Congeal()
{
  m_data.Dereference();
  MutableBody().CongealInner();
}

CVerticalReference::VertAdjustMode CVerticalReference::GetConversionMode(CVerticalReference const * from,
                                                                          CVerticalReference const * to)
{
  if (!from || !to)
    return kNoAdjustment;
  CVerticalDatum const * const fromDatum = from->GetVerticalDatum();
  CVerticalDatum const * const toDatum = to->GetVerticalDatum();
  CHeightModel const * const fromModel = from->GetHeightModel();
  CHeightModel const * const toModel = to->GetHeightModel();
  // A model without a datum counts as no datum at all: ellipsoidal heights.
  if (!fromDatum && !toDatum)
    return kNoAdjustment;
  if (!fromDatum)
    return toModel ? kEllipsoidToDatum : kInvalidAdjustment;
  if (!toDatum)
    return fromModel ? kDatumToEllipsoid : kInvalidAdjustment;
  if (fromModel && toModel) {
    if (fromModel->GetType() != toModel->GetType())
      return kDatumToDatum;
    return fromDatum->GetType() == toDatum->GetType() ? kNoAdjustment : kDatumToDatum;
  }
  int const a = fromDatum->GetType();
  int const b = toDatum->GetType();
  bool const northAmerican = (a == CVerticalDatum::kNGVD29 && b == CVerticalDatum::kNAVD88) ||
                             (a == CVerticalDatum::kNAVD88 && b == CVerticalDatum::kNGVD29);
  return northAmerican ? kNGVD29ToNAVD88 : kInvalidAdjustment;
}

namespace {
constexpr char kAdjustLocation[] = "CVerticalReference::AdjustHeight";

CVerticalReference const & Needed(CVerticalReference const * reference)
{
  if (!reference)
    throw CVelmoraException(CVelmoraException::kVerticalReferenceMissing, kAdjustLocation);
  return *reference;
}

CVerticalDatum const & DatumOf(CVerticalReference const & reference)
{
  CVerticalDatum const * datum = reference.GetVerticalDatum();
  if (!datum)
    throw CVelmoraException(CVelmoraException::kInnerObjectMissing, kAdjustLocation, "Vertical Datum");
  return *datum;
}

// V: only NGVD29 adds to a height, its difference to NAVD88.
double DatumPart(CVerticalReference const * reference, ML::CGeodeticPoint const & point)
{
  CVerticalDatum const * datum = Needed(reference).GetVerticalDatum();
  return datum && datum->GetType() == CVerticalDatum::kNGVD29 ? datum->Interpolate(point) : 0.0;
}

// N: the height model's surface above the ellipsoid.
double ModelPart(CVerticalReference const * reference, ML::CGeodeticPoint const & point)
{
  CHeightModel const * model = Needed(reference).GetHeightModel();
  if (!model)
    throw CVelmoraException(CVelmoraException::kInnerObjectMissing, kAdjustLocation, "Height Model");
  return model->Interpolate(point);
}
} // namespace

bool CVerticalReference::AdjustHeight(CVerticalReference const * from, CVerticalReference const * to,
                                      VertAdjustMode mode, ML::CGeodeticPoint & point)
{
  // Written through the value, so that its listeners hear of it.
  ML::CLinearValue & height = point.GetHgt();
  double const h = height.GetInternal();
  switch (mode) {
  case kNoAdjustment: return true;
  case kInvalidAdjustment: height.SetInternal(0.0); return false;
  case kEllipsoidToDatum: {
    // The model first, so that its failure is the one reported.
    double const n = ModelPart(to, point);
    double const v = DatumPart(to, point);
    height.SetInternal(h - v - n);
    return true;
  }
  case kDatumToEllipsoid: {
    double const v = DatumPart(from, point);
    double const n = ModelPart(from, point);
    height.SetInternal(h + v + n);
    return true;
  }
  case kDatumToDatum: {
    double const vFrom = DatumPart(from, point);
    double const nFrom = ModelPart(from, point);
    double const ellipsoidal = h + vFrom + nFrom;
    height.SetInternal(ellipsoidal);
    double const vTo = DatumPart(to, point);
    double const nTo = ModelPart(to, point);
    height.SetInternal(ellipsoidal - vTo - nTo);
    return true;
  }
  case kNGVD29ToNAVD88: {
    CVerticalDatum const & datum = DatumOf(Needed(from));
    double const d = datum.Interpolate(point);
    height.SetInternal(datum.GetType() == CVerticalDatum::kNGVD29 ? h + d : h - d);
    return true;
  }
  }
  height.SetInternal(0.0);
  return true;
}

} // namespace Velmora::CS::VR
