#include <velmora/transforms/mathtransforms/MathTransform.h>

#include <velmora/foundation/VelmoraException.h>
#include <velmora/transforms/mathtransforms/MathTransformTable_p.h>

#include <algorithm>

namespace Velmora::CT::MT {

using EX::CVelmoraException;

// Bodies

CMathTransformData * CMathTransformData::Create() { return new CMathTransformDataConcrete(); }

CMathTransformData * CMathTransformData::Clone(CMathTransformData const & source)
{
  return new CMathTransformDataConcrete(source);
}

CMathTransformData::~CMathTransformData() = default;

CMathTransformData & CMathTransformData::operator=(CMathTransformData const & other)
{
  if (&other == this)
    return *this;
  m_parameters = other.m_parameters;
  m_classType = other.m_classType;
  return *this;
}

bool CMathTransformData::operator==(CMathTransformData const & other) const
{
  return m_classType == other.m_classType && m_parameters == other.m_parameters;
}

bool CMathTransformData::IsFullyDefined(DB::CDataSource const * source) const
{
  if (m_classType.isEmpty())
    throw CVelmoraException(CVelmoraException::kWrongSerializedClass, "CMathTransformData::IsFullyDefined", "ClassType");
  return m_parameters.AllItemsSet() && m_parameters.IsFullyDefined(source);
}

CMathTransformDataDB::CMathTransformDataDB() : m_stored(std::make_unique<CParameterCollectionDataDB>())
{
  PointAtStoredParameters();
}

CMathTransformDataDB::CMathTransformDataDB(CMathTransformData const & source, DB::CDataSource const * store)
  : CMathTransformData(source),
    m_stored(std::make_unique<CParameterCollectionDataDB>(source.GetParameters().GetData(), store))
{
  PointAtStoredParameters();
  m_type = Table::TypeOf(m_classType);
}

void CMathTransformDataDB::PointAtStoredParameters()
{
  m_parameters.GetData(); // materialise the handle before pointing it at the stored body
  m_parameters = CParameterCollection(*m_stored);
}

int CMathTransformDataDB::SetMathTransformType(CString const & classType)
{
  int const type = Table::TypeOf(classType);
  if (type < 0)
    return -1;
  m_type = type;
  m_classType = classType;
  return type;
}

// The transform

CString CMathTransform::TypeName(int type)
{
  char const * name = Table::NameOf(type);
  return name ? CString(name) : CString();
}

int CMathTransform::TypeOf(CString const & classType) { return Table::TypeOf(classType); }

long CMathTransform::RequiredPoints(int type) { return Table::RequiredPoints(type); }

std::vector<CString> CMathTransform::ParameterNames(int type)
{
  std::vector<CString> names;
  for (Table::Parameter const & parameter : Table::ParametersOf(type))
    names.push_back(parameter.name);
  return names;
}

CMathTransform::CMathTransform(Type type)
{
  CMathTransformData & body = *m_data;
  body.SetClassType(TypeName(type));
  CParameterCollection & parameters = body.GetParameters();
  for (Table::Parameter const & parameter : Table::ParametersOf(type)) {
    if (parameter.kind == Table::Kind::kLong)
      parameters.AddLong(parameter.name, parameter.optional);
    else
      parameters.AddDouble(parameter.name, parameter.optional);
  }
  Listen();
}

CMathTransform::CMathTransform(CMathTransform const & other) : CParameterCollectionEvent(), m_data(other.m_data)
{
  Listen();
}

CMathTransform::~CMathTransform() = default;

void CMathTransform::Listen()
{
  // A shared body is not written to: it is heard from once a write makes it ours.
  CMathTransformData const * body = m_data.Peek();
  if (body && body->GetDataObjectType() == kEDataObjectConcrete)
    m_data->GetParameters().SetEventHandler(this);
}

void CMathTransform::AttachBody(CMathTransformData const & body)
{
  m_data.Reset(&body);
  Listen();
  OnChange(reinterpret_cast<unsigned short const *>(u""));
}

CParameterCollection & CMathTransform::GetParameters()
{
  CParameterCollection & parameters = m_data->GetParameters();
  // A copied or fetched body may still name another listener, or none.
  if (parameters.GetEventHandler() != this)
    parameters.SetEventHandler(this);
  return parameters;
}

void CMathTransform::OnChange(unsigned short const *) {}

void CMathTransform::Congeal()
{
  m_data->GetParameters().Congeal();
  Listen();
}

CMathTransform & CMathTransform::operator=(CMathTransform const & other)
{
  if (&other == this)
    return *this;
  m_data = other.m_data;
  Listen();
  OnChange(reinterpret_cast<unsigned short const *>(u""));
  return *this;
}

bool CMathTransform::Transform(ML::CCoordPoint const & in, ML::CCoordPoint & out) const
{
  double x = 0.0, y = 0.0;
  in.GetInternals(x, y);
  if (!Transform(x, y))
    return false;
  if (in.GetDimensions() == 3 && out.GetDimensions() == 3) {
    double a = 0.0, b = 0.0, height = 0.0;
    in.GetInternals(a, b, height);
    out.SetInternals(x, y, height);
  } else {
    out.SetInternals(x, y);
  }
  return true;
}

bool CMathTransform::operator==(CMathTransform const & other) const { return GetData() == other.GetData(); }

bool CMathTransform::IsNearlyEqual(CMathTransform const & other, CString & why) const
{
  if (GetTypeName() != other.GetTypeName()) {
    why += CString(": class types do not match");
    return false;
  }
  CParameterCollectionData::neSpecialCase settings;
  settings.kind = 0;
  settings.names = {CString(Table::kMaxIterations), CString(Table::kConvergenceThreshold),
                    CString(Table::kDirectSolution)};
  std::vector<CParameterCollectionData::neSpecialCase> const specials = {settings};
  CString detail;
  if (!GetParameters().IsNearlyEqual(other.GetParameters(), detail, &specials, true)) {
    why += CString(": parameters do not match ");
    why += detail;
    return false;
  }
  return true;
}

bool CMathTransform::IsNearlyEqual(CMathTransform const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

// Pairs and computed transforms

bool CPointPair::operator==(CPointPair const & other) const
{
  return name == other.name && sourceX == other.sourceX && sourceY == other.sourceY && targetX == other.targetX &&
         targetY == other.targetY;
}

CComputedMathTransform & CComputedMathTransform::operator=(CComputedMathTransform const & other)
{
  CMathTransform::operator=(other);
  m_pairs = other.m_pairs;
  m_solved = other.m_solved;
  return *this;
}

bool CComputedMathTransform::operator==(CMathTransform const & other) const
{
  if (!CMathTransform::operator==(other))
    return false;
  auto const * computed = dynamic_cast<CComputedMathTransform const *>(&other);
  return !computed || m_pairs == computed->m_pairs;
}

CMathTransform & CComputedMathTransform::operator=(CMathTransform const & other)
{
  if (&other == this)
    return *this;
  auto const * computed = dynamic_cast<CComputedMathTransform const *>(&other);
  if (computed)
    m_pairs = computed->m_pairs;
  CMathTransform::operator=(other);
  m_solved = computed && computed->GetType() == GetType() && computed->m_solved;
  return *this;
}

void CComputedMathTransform::AddPoint(ML::CCoordPoint const & from, ML::CCoordPoint const & to)
{
  CPointPair pair;
  pair.name = from.GetName();
  from.GetInternals(pair.sourceX, pair.sourceY);
  to.GetInternals(pair.targetX, pair.targetY);
  AddPoint(pair);
}

void CComputedMathTransform::AddPoint(CPointPair const & pair)
{
  m_pairs.push_back(pair);
  m_solved = false;
}

long CComputedMathTransform::AddPointList(ML::CCoordPointCollection const & from, ML::CCoordPointCollection const & to)
{
  long const count = std::min(from.Count(), to.Count());
  m_pairs.reserve(m_pairs.size() + static_cast<size_t>(count));
  for (long i = 0; i < count; ++i) {
    CPointPair pair;
    double z = 0.0;
    from.GetInternals(i, pair.sourceX, pair.sourceY, z);
    to.GetInternals(i, pair.targetX, pair.targetY, z);
    // Names live in the points; a collection without a style has none to give.
    if (from.GetPointStyle()) {
      std::unique_ptr<ML::CCoordPoint> const named(from.GetPoint(i));
      pair.name = named->GetName();
    }
    m_pairs.push_back(pair);
  }
  if (count > 0)
    m_solved = false;
  return count;
}

void CComputedMathTransform::ClearPoints()
{
  m_pairs.clear();
  m_solved = false;
}

CPointPair const & CComputedMathTransform::GetPointPair(long index) const
{
  if (index < 0 || index >= GetPointCount())
    throw CVelmoraException(CVelmoraException::kIndexOutOfRange, "CComputedMathTransform::GetPointPair");
  return m_pairs[static_cast<size_t>(index)];
}

void CComputedMathTransform::WriteSolvedParameter(CString const & name, double value)
{
  m_writing = true;
  try {
    GetParameters().SetDouble(name, value);
  } catch (...) {
    m_writing = false;
    throw;
  }
  m_writing = false;
}

} // namespace Velmora::CT::MT
