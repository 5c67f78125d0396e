#include <velmora/refsys/FittedCoordSys.h>

#include <velmora/foundation/VelmoraException.h>

namespace Velmora::CS {

using EX::CVelmoraException;

namespace {
constexpr char kToLocation[] = "CFittedCoordSys::ToGeodeticBase";
constexpr char kFromLocation[] = "CFittedCoordSys::FromGeodeticBase";

std::unique_ptr<ML::CCoordPoint> CopyOf(ML::CCoordPoint const & style)
{
  return std::unique_ptr<ML::CCoordPoint>(ML::CCoordPointFactory::CreatePoint(style, style.GetDimensions()));
}

std::unique_ptr<CT::MT::CMathTransform> CopyOf(CT::MT::CMathTransform const * transform)
{
  return std::unique_ptr<CT::MT::CMathTransform>(transform ? transform->Clone() : nullptr);
}

// A private copy of a plain system, by its kind and typed assignment.
std::unique_ptr<CCoordSys> CopyOf(CCoordSys const * system)
{
  if (!system)
    return nullptr;
  switch (system->GetType()) {
  case kGeocentricCoordSys:
    return std::make_unique<CGeocentricCoordSys>(static_cast<CGeocentricCoordSys const &>(*system));
  case kGeodeticCoordSys:
    return std::make_unique<CGeodeticCoordSys>(static_cast<CGeodeticCoordSys const &>(*system));
  case kProjectedCoordSys:
    return std::make_unique<CProjectedCoordSys>(static_cast<CProjectedCoordSys const &>(*system));
  default:
    throw CVelmoraException(CVelmoraException::kClassNotSupported, "CFittedCoordSysData::SetBaseCoordSys",
                            "CoordSys(Unknown)");
  }
}
} // namespace

// Body

CFittedCoordSysData::CFittedCoordSysData() : m_style(std::make_unique<ML::CProjectedPoint>(2)) {}

CFittedCoordSysData::CFittedCoordSysData(CFittedCoordSysData const & other)
  : CSerializableData(other), CCoordSysData(other), m_style(CopyOf(*other.m_style)), m_base(CopyOf(other.m_base.get())),
    m_ahead(CopyOf(other.m_ahead.get())), m_back(CopyOf(other.m_back.get()))
{
}

CFittedCoordSysData::~CFittedCoordSysData() = default;

CFittedCoordSysData & CFittedCoordSysData::operator=(CFittedCoordSysData const & other)
{
  if (&other == this)
    return *this;
  CCoordSysData::operator=(other);
  m_style = CopyOf(*other.m_style);
  m_base = CopyOf(other.m_base.get());
  m_ahead = CopyOf(other.m_ahead.get());
  m_back = CopyOf(other.m_back.get());
  return *this;
}

void CFittedCoordSysData::SetPointStyle(ML::CCoordPoint const & style) { m_style = CopyOf(style); }

CCoordSys const & CFittedCoordSysData::Base(char const * location) const
{
  if (!m_base)
    throw CVelmoraException(CVelmoraException::kCoordSysMissing, location);
  return *m_base;
}

CHorizontalDatum const & CFittedCoordSysData::GetHorizontalDatum() const
{
  return Base("CFittedCoordSysData::GetHorizontalDatum").GetHorizontalDatum();
}

CHorizontalDatum & CFittedCoordSysData::GetHorizontalDatum()
{
  Base("CFittedCoordSysData::GetHorizontalDatum");
  return m_base->GetHorizontalDatum();
}

void CFittedCoordSysData::SetBaseCoordSys(CCoordSys const * base) { m_base = CopyOf(base); }
void CFittedCoordSysData::SetTransformAhead(CT::MT::CMathTransform const * transform) { m_ahead = CopyOf(transform); }
void CFittedCoordSysData::SetTransformBack(CT::MT::CMathTransform const * transform) { m_back = CopyOf(transform); }

bool CFittedCoordSysData::ToGeodeticBase(ML::CCoordPoint const & in, ML::CGeodeticPoint & out) const
{
  CheckInput(m_envelope.InBounds(in), kToLocation);
  if (in.GetType() != m_style->GetType())
    throw CVelmoraException(CVelmoraException::kInputWrongClass, kToLocation);
  CCoordSys const & base = Base(kToLocation);
  std::unique_ptr<ML::CCoordPoint> t(ML::CCoordPointFactory::CreatePoint(base.GetPointStyle(), in.GetDimensions()));
  if (!m_ahead || !m_ahead->Transform(in, *t))
    return false;
  return base.ToGeodeticBase(*t, out);
}

bool CFittedCoordSysData::FromGeodeticBase(ML::CGeodeticPoint const & in, ML::CCoordPoint & out) const
{
  if (out.GetType() != m_style->GetType())
    throw CVelmoraException(CVelmoraException::kOutputWrongClass, kFromLocation);
  CCoordSys const & base = Base(kFromLocation);
  std::unique_ptr<ML::CCoordPoint> t(ML::CCoordPointFactory::CreatePoint(base.GetPointStyle(), in.GetDimensions()));
  bool const reached = base.FromGeodeticBase(in, *t);
  bool const result = reached && m_back && m_back->Transform(*t, out);
  CheckOutput(m_envelope.InBounds(out), kFromLocation);
  return result;
}

bool CFittedCoordSysData::ToGeodeticBase(double & x, double & y) const
{
  std::unique_ptr<ML::CCoordPoint> in(ML::CCoordPointFactory::CreatePoint(m_style->GetType(), 2));
  in->SetInternals(x, y);
  ML::CGeodeticPoint out(2);
  bool const result = ToGeodeticBase(*in, out);
  out.GetInternals(x, y);
  return result;
}

bool CFittedCoordSysData::FromGeodeticBase(double & x, double & y) const
{
  ML::CGeodeticPoint const in(x, y);
  std::unique_ptr<ML::CCoordPoint> out(ML::CCoordPointFactory::CreatePoint(m_style->GetType(), 2));
  bool const result = FromGeodeticBase(in, *out);
  out->GetInternals(x, y);
  return result;
}

namespace {
template <class T>
bool SameOwned(std::unique_ptr<T> const & a, std::unique_ptr<T> const & b)
{
  return a && b ? *a == *b : !a && !b;
}
} // namespace

bool CFittedCoordSysData::operator==(CFittedCoordSysData const & other) const
{
  return CSerializableData::operator==(other) && m_envelope == other.m_envelope &&
         m_style->GetType() == other.m_style->GetType() && m_style->PointData().Equals(other.m_style->PointData()) &&
         SameOwned(m_base, other.m_base) && SameOwned(m_ahead, other.m_ahead) && SameOwned(m_back, other.m_back);
}

bool CFittedCoordSysData::FieldsNearlyEqual(CCoordSysData const & other, CString & why) const
{
  auto const & fitted = static_cast<CFittedCoordSysData const &>(other);
  if (!m_base != !fitted.m_base) {
    why += CString(": base coordinate system defined on one side but not the other");
    return false;
  }
  if (!m_ahead != !fitted.m_ahead) {
    why += CString(": transform ahead defined on one side but not the other");
    return false;
  }
  if (!m_back != !fitted.m_back) {
    why += CString(": transform back defined on one side but not the other");
    return false;
  }
  CString detail;
  if (m_base && !m_base->IsNearlyEqual(*fitted.m_base, detail)) {
    why += CString(": base coordinate systems do not match ") + detail;
    return false;
  }
  if (m_ahead && !m_ahead->IsNearlyEqual(*fitted.m_ahead, detail)) {
    why += CString(": forward math transforms do not match ") + detail;
    return false;
  }
  if (m_back && !m_back->IsNearlyEqual(*fitted.m_back, detail)) {
    why += CString(": back math transforms do not match ") + detail;
    return false;
  }
  return true;
}

bool CFittedCoordSysData::IsFullyDefined(DB::CDataSource const * source) const
{
  char const * const location = "CFittedCoordSysData::IsFullyDefined";
  bool const base = CSerializableData::IsFullyDefined(source);
  CheckReference(m_envelope, source, location, "Envelope", "Envelope");
  CheckReference(*m_style, source, location, "PointStyle", "PointStyle");
  if (!m_base)
    throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, "BaseCoordSys");
  CheckReference(*m_base, source, location, "BaseCoordSys", "BaseCoordSys");
  // The base's own test, under the location it has always been reported with.
  if (!m_base->IsFullyDefined(source))
    throw CVelmoraException(CVelmoraException::kNotFullySpecified, "GetBaseCoordSys::IsFullyDefined");
  return base;
}

void CFittedCoordSysData::CongealInner()
{
  m_style->Congeal();
  if (m_base)
    m_base->Congeal();
  for (auto * transform : {m_ahead.get(), m_back.get()})
    if (transform)
      transform->Congeal();
  m_envelope.Congeal();
}

// Handle

template class TCoordSysHandle<CFittedCoordSysData>;

CFittedCoordSys::CFittedCoordSys(CCoordSys const * base, ML::ECoordPointType pointType,
                                 CT::MT::CMathTransform::Type transformType)
{
  CFittedCoordSysData & body = MutableBody();
  std::unique_ptr<ML::CCoordPoint> style(ML::CCoordPointFactory::CreatePoint(pointType, 2));
  body.SetPointStyle(*style);
  body.SetBaseCoordSys(base);
  std::unique_ptr<CT::MT::CMathTransform> ahead(CT::MT::CMathTransformFactory::CreateMathTransform(transformType));
  std::unique_ptr<CT::MT::CMathTransform> back(CT::MT::CMathTransformFactory::CreateMathTransform(transformType));
  body.SetTransformAhead(ahead.get());
  body.SetTransformBack(back.get());
}

CFittedCoordSys::~CFittedCoordSys() = default;

void CFittedCoordSys::Congeal()
{
  m_data.Dereference();
  MutableBody().CongealInner();
}

CFittedCoordSys * CCoordSysFactory::CreateFittedCoordSys(CCoordSys const * base, ML::ECoordPointType pointType,
                                                         CT::MT::CMathTransform::Type transformType,
                                                         ML::CCoordPointCollection const & from,
                                                         ML::CCoordPointCollection const & to, int first, int second,
                                                         double limit)
{
  int type = transformType;
  if (type == -1 && first > 0 && second > 0)
    type = CT::MT::CMathTransformFactory::DetermineBestMathTransform(from, to, first, second, limit, 7);
  auto system = std::make_unique<CFittedCoordSys>(base, pointType, static_cast<CT::MT::CMathTransform::Type>(type));
  system->SetName(CString("FittedCoordSys based on ") + (base ? base->GetName() : CString()));
  auto * ahead = dynamic_cast<CT::MT::CComputedMathTransform *>(system->GetTransformAhead());
  auto * back = dynamic_cast<CT::MT::CComputedMathTransform *>(system->GetTransformBack());
  if (ahead)
    ahead->AddPointList(from, to);
  if (back)
    back->AddPointList(to, from);
  return system.release();
}

} // namespace Velmora::CS
