#include <velmora/vertical/HeightModel.h>

#include <velmora/vertical/VerticalCommon_p.h>

namespace Velmora::CS::VR {

using EX::CVelmoraException;

// Bodies

CHeightModelData & CHeightModelData::operator=(CHeightModelData const & other)
{
  if (&other != this) {
    CSerializableData::operator=(other);
    m_envelope = other.m_envelope;
    m_horizontalDatum = other.m_horizontalDatum;
    m_parameters = other.m_parameters;
    m_classType = other.m_classType;
  }
  return *this;
}

bool CHeightModelData::IsNearlyEqual(CHeightModelData const & other, CString & why) const
{
  auto const base = IsNearlyEqualBase(other, why);
  if (base != kNearlyEqualBaseUndecided)
    return base == kNearlyEqualBaseSame;
  if (m_classType != other.m_classType) {
    why += CString(QString(": class names do not match : %1 != %2").arg(m_classType, other.m_classType));
    return false;
  }
  CString detail;
  if (!m_horizontalDatum.IsNearlyEqual(other.m_horizontalDatum, detail)) {
    why += CString(": datums do not match ") + detail;
    return false;
  }
  if (!m_parameters.IsNearlyEqual(other.m_parameters, detail)) {
    why += CString(": parameters do not match ") + detail;
    return false;
  }
  return true;
}

bool CHeightModelData::IsNearlyEqual(CHeightModelData const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

bool CHeightModelData::operator==(CHeightModelData const & other) const
{
  return CSerializableData::operator==(other) && m_envelope == other.m_envelope &&
         m_horizontalDatum == other.m_horizontalDatum && m_parameters == other.m_parameters &&
         m_classType == other.m_classType;
}

bool CHeightModelData::IsFullyDefined(DB::CDataSource const * source) const
{
  bool const base = CSerializableData::IsFullyDefined(source);
  char const * const location = "CHeightModelData::IsFullyDefined";
  if (m_classType.isEmpty())
    throw CVelmoraException(CVelmoraException::kWrongSerializedClass, location, "ClassType");
  detail::CheckReference(m_envelope, location, "Envelope", "Envelope", source);
  detail::CheckReference(m_horizontalDatum, location, "HorizontalDatum", "HorizontalDatum", source);
  return base;
}

void CHeightModelData::CongealInner()
{
  m_envelope.Congeal();
  m_horizontalDatum.Congeal();
  m_parameters.Congeal();
}

CHeightModelDataDB::CHeightModelDataDB()
  : CSerializableData(CString(), kObjectType, kRootGroup), m_stored(std::make_unique<CParameterCollectionDataDB>())
{
  m_parameters = CParameterCollection(*m_stored);
}

CHeightModelDataDB::CHeightModelDataDB(CHeightModelData const & source, DB::CDataSource const *)
  : CSerializableData(source), CHeightModelData(source), m_type(GetHeightModelType(source.GetClassType()))
{
}

CHeightModelDataDB::~CHeightModelDataDB() = default;

int CHeightModelDataDB::GetHeightModelType(CString const & classType) { return Table::HeightModelTypeOf(classType); }

int CHeightModelDataDB::SetHeightModelType(CString const & classType)
{
  int const type = GetHeightModelType(classType);
  if (type < 0)
    return -1;
  m_type = type;
  m_classType = classType;
  return type;
}

// The handle

CString CHeightModel::TypeName(int type)
{
  Table::Row const * row = Table::HeightModelRow(type);
  return row ? CString(row->name) : CString();
}

CHeightModel::CHeightModel(Type type)
{
  CHeightModelData & body = MutableBody();
  body.SetClassType(TypeName(type));
  detail::RegisterParameters(body.GetParameters(), Table::HeightModelRow(type));
  body.GetParameters().SetEventHandler(this);
}

CHeightModel::CHeightModel(CHeightModel const & other) : TParameterizedHandle(other) {}

CHeightModel::~CHeightModel() = default;

CHeightModel & CHeightModel::operator=(CHeightModel const & other)
{
  if (&other != this)
    AssignFrom(other);
  return *this;
}

} // namespace Velmora::CS::VR

template class Velmora::TParameterizedHandle<Velmora::CS::VR::CHeightModelData>;
