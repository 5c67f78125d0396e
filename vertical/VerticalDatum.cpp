#include <velmora/vertical/VerticalDatum.h>

#include <velmora/vertical/VerticalCommon_p.h>

#include <array>

#include <algorithm>
#include <cmath>
#include <string>

namespace Velmora::CS::VR {

using EX::CVelmoraException;

// Bodies

CVerticalDatumData & CVerticalDatumData::operator=(CVerticalDatumData const & other)
{
  if (&other != this) {
    CSerializableData::operator=(other);
    m_envelope = other.m_envelope;
    m_classType = other.m_classType;
    m_parameters = other.m_parameters;
  }
  return *this;
}

bool CVerticalDatumData::IsNearlyEqual(CVerticalDatumData const & other, CString & why) const
{
  auto const base = IsNearlyEqualBase(other, why);
  if (base != kNearlyEqualBaseUndecided)
    return base == kNearlyEqualBaseSame;
  if (m_classType != other.m_classType) {
    why += CString(QString(": class names do not match : %1 != %2").arg(m_classType, other.m_classType));
    return false;
  }
  if (!m_parameters.IsNearlyEqual(other.m_parameters)) {
    why += CString(": parameters do not match");
    return false;
  }
  return true;
}

bool CVerticalDatumData::IsNearlyEqual(CVerticalDatumData const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

bool CVerticalDatumData::operator==(CVerticalDatumData const & other) const
{
  return CSerializableData::operator==(other) && m_envelope == other.m_envelope &&
         m_classType == other.m_classType && m_parameters == other.m_parameters;
}

bool CVerticalDatumData::IsFullyDefined(DB::CDataSource const * source) const
{
  bool const base = CSerializableData::IsFullyDefined(source);
  char const * const location = "CVerticalDatumData::IsFullyDefined";
  if (m_classType.isEmpty())
    throw CVelmoraException(CVelmoraException::kWrongSerializedClass, location, "ClassType");
  detail::CheckReference(m_envelope, location, "Envelope", "Envelope", source);
  return base;
}

void CVerticalDatumData::CongealInner()
{
  m_envelope.Congeal();
  m_parameters.Congeal();
}

CVerticalDatumDataDB::CVerticalDatumDataDB()
  : CSerializableData(CString(), kObjectType, kRootGroup), m_stored(std::make_unique<CParameterCollectionDataDB>())
{
  m_parameters = CParameterCollection(*m_stored);
}

CVerticalDatumDataDB::CVerticalDatumDataDB(CVerticalDatumData const & source, DB::CDataSource const *)
  : CSerializableData(source), CVerticalDatumData(source), m_type(GetVerticalDatumType(source.GetClassType()))
{
}

CVerticalDatumDataDB::~CVerticalDatumDataDB() = default;

int CVerticalDatumDataDB::GetVerticalDatumType(CString const & classType)
{
  return Table::VerticalDatumTypeOf(classType);
}

int CVerticalDatumDataDB::SetVerticalDatumType(CString const & classType)
{
  int const type = GetVerticalDatumType(classType);
  if (type < 0)
    return -1;
  m_type = type;
  m_classType = classType;
  return type;
}

// The handle

CString CVerticalDatum::TypeName(int type)
{
  Table::Row const * row = Table::VerticalDatumRow(type);
  return row ? CString(row->name) : CString();
}

CVerticalDatum::CVerticalDatum(Type type)
{
  CVerticalDatumData & body = MutableBody();
  body.SetClassType(TypeName(type));
  detail::RegisterParameters(body.GetParameters(), Table::VerticalDatumRow(type));
  body.GetParameters().SetEventHandler(this);
}

CVerticalDatum::CVerticalDatum(CVerticalDatum const & other) : TParameterizedHandle(other) {}

CVerticalDatum::~CVerticalDatum() = default;

CVerticalDatum & CVerticalDatum::operator=(CVerticalDatum const & other)
{
  if (&other != this)
    AssignFrom(other);
  return *this;
}

// The types

double CVertCon94::Interpolate(ML::CGeodeticPoint const & point) const
{
  constexpr double kMetresPerMillimetre = 0.001;
  if (!GetParameters().AllItemsSet())
    return 0.0;
  Table::Row const & row = *Table::VerticalDatumRow(GetType());
  SetupFiles(GetParameters().GetString(Table::kPath), GetParameters().GetString(Table::kExtension), row.openLocation,
             row.openDetails);
  CString const location = CString(row.className) + CString("::Interpolate");
  std::string const where = location.toStdString();
  double lat = point.GetLat().GetInternal(), lon = point.GetLon().GetInternal();
  CGridFile const & grid = FileFor(lat, lon, where.c_str());
  grid.Contains(lat, lon);
  double const x = (lon - grid.west) / grid.columnSpacing, y = (lat - grid.south) / grid.rowSpacing;
  // The cell of the point; on the last row or column the one before it.
  long const column = std::min(static_cast<long>(x), grid.columns - 2);
  long const row0 = std::min(static_cast<long>(y), grid.rows - 2);
  float corners[4];
  if (column < 0 || row0 < 0 || !ReadFloats(NodeOffset(grid, row0, column), 2, corners) ||
      !ReadFloats(NodeOffset(grid, row0 + 1, column), 2, corners + 2))
    throw CVelmoraException(CVelmoraException::kGridRead, location, Table::kGridReadFailure);
  float const t = static_cast<float>(x - column), u = static_cast<float>(y - row0);
  return std::trunc(BilinearInterpolation(t, u, corners)) * kMetresPerMillimetre;
}

void CVertCon94::OnChange(unsigned short const *) { SmokeGridFileCollection(); }

double CGenericVerticalDatum::Interpolate(ML::CGeodeticPoint const & point) const
{
  if (!GetEnvelope().InBounds(point))
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, "CGenericVerticalDatum::Interpolate",
                            Table::kOutsideEnvelope);
  return 0.0;
}

// The factory

namespace {
template <class T>
CVerticalDatum * Make()
{
  return new T();
}

struct Entry
{
  CVerticalDatum::Type type;
  CVerticalDatum * (*make)();
};

template <class... T>
constexpr auto Entries()
{
  return std::array<Entry, sizeof...(T)>{Entry{T::kType, &Make<T>}...};
}

constexpr auto kMakers = Entries<CNGVD29, CNAVD88, CGenericVerticalDatum>();

constexpr bool InTypeOrder()
{
  for (std::size_t i = 0; i < kMakers.size(); ++i)
    if (kMakers[i].type != static_cast<int>(i))
      return false;
  return kMakers.size() == CVerticalDatum::kTypeCount;
}
static_assert(InTypeOrder(), "the factory lists every type once, in type order");
} // namespace

CVerticalDatum * CVerticalDatumFactory::CreateVerticalDatum(CVerticalDatum::Type type)
{
  if (static_cast<unsigned>(type) >= static_cast<unsigned>(CVerticalDatum::kTypeCount))
    throw CVelmoraException(CVelmoraException::kClassNotImplemented, "CVerticalDatumFactory::CreateVerticalDatum");
  return kMakers[static_cast<std::size_t>(type)].make();
}

} // namespace Velmora::CS::VR

template class Velmora::TParameterizedHandle<Velmora::CS::VR::CVerticalDatumData>;
