#include <velmora/measures/CoordPointCollection.h>

#include <velmora/foundation/VelmoraException.h>

namespace Velmora::ML {

using EX::CVelmoraException;

namespace {
CString const kUnknownPoint("CoordPoint(Unknown)");

bool KnownType(CCoordPoint const & point)
{
  auto const type = point.GetType();
  return type == kCartesianPoint || type == kGeodeticPoint || type == kProjectedPoint;
}

QString TextAt(std::vector<QString> const & texts, long index)
{
  return texts.empty() ? QString() : texts[static_cast<size_t>(index)];
}
} // namespace

CCoordPointCollection::CCoordPointCollection() = default;

CCoordPointCollection::CCoordPointCollection(CCoordPoint const & style)
{
  if (!KnownType(style))
    throw CVelmoraException(CVelmoraException::kClassNotSupported, "CCoordPointCollection::CCoordPointCollection",
                            kUnknownPoint);
  SetPointStyle(style);
}

CCoordPointCollection::CCoordPointCollection(CCoordPointCollection const & other)
  : m_xyz(other.m_xyz), m_names(other.m_names), m_locations(other.m_locations)
{
  if (other.m_style)
    SetPointStyle(*other.m_style);
}

CCoordPointCollection & CCoordPointCollection::operator=(CCoordPointCollection const & other)
{
  if (&other != this) {
    CCoordPointCollection copy(other);
    std::swap(m_style, copy.m_style);
    m_normal = copy.m_normal;
    m_xyz.swap(copy.m_xyz);
    m_names.swap(copy.m_names);
    m_locations.swap(copy.m_locations);
  }
  return *this;
}

CCoordPointCollection::~CCoordPointCollection() = default;

bool CCoordPointCollection::operator==(CCoordPointCollection const & other) const
{
  if (static_cast<bool>(m_style) != static_cast<bool>(other.m_style))
    return false;
  if (m_style && !m_style->PointData().Equals(other.m_style->PointData()))
    return false;
  if (m_xyz != other.m_xyz)
    return false;
  for (long i = 0; i < Count(); ++i)
    if (TextAt(m_names, i) != TextAt(other.m_names, i) || TextAt(m_locations, i) != TextAt(other.m_locations, i))
      return false;
  return true;
}

void CCoordPointCollection::SetPointStyle(CCoordPoint const & style)
{
  m_style.reset(CCoordPointFactory::CreatePoint(style, style.GetDimensions()));
  m_normal = m_style->PointData().GetStringFormatValue() == 0;
}

void CCoordPointCollection::SetText(std::vector<QString> & texts, long index, long count, QString const & text)
{
  if (texts.empty()) {
    if (text.isEmpty())
      return;
    texts.resize(static_cast<size_t>(count));
  }
  texts[static_cast<size_t>(index)] = text;
}

void CCoordPointCollection::Store(long index, CCoordPoint const & point)
{
  SetText(m_names, index, Count(), point.GetName());
  double * xyz = &m_xyz[static_cast<size_t>(index) * 3];
  if (!IsNormalPoint()) {
    bool const hasText = point.GetType() != kCartesianPoint && point.PointData().GetStringFormatValue() != 0;
    SetText(m_locations, index, Count(),
            hasText ? static_cast<CTextPointData const &>(point.PointData()).GetLocationString() : QString());
    xyz[0] = xyz[1] = xyz[2] = 0.0;
    return;
  }
  if (point.GetDimensions() == 3)
    point.GetInternals(xyz[0], xyz[1], xyz[2]);
  else {
    point.GetInternals(xyz[0], xyz[1]);
    xyz[2] = 0.0;
  }
}

void CCoordPointCollection::AddPoint(CCoordPoint const & point)
{
  m_xyz.insert(m_xyz.end(), 3, 0.0);
  if (!m_names.empty())
    m_names.emplace_back();
  if (!m_locations.empty())
    m_locations.emplace_back();
  Store(Count() - 1, point);
}

void CCoordPointCollection::AddInternals(double x, double y, double z)
{
  m_xyz.push_back(x);
  m_xyz.push_back(y);
  m_xyz.push_back(z);
  if (!m_names.empty())
    m_names.emplace_back();
  if (!m_locations.empty())
    m_locations.emplace_back();
}

void CCoordPointCollection::AddInUnits(double x, double y, double z)
{
  if (!m_style) {
    AddInternals(x, y, z);
    return;
  }
  CCoordPointData const & style = m_style->PointData();
  AddInternals(style.ToInternal(0, x), style.ToInternal(1, y), style.ToInternal(2, z));
}

void CCoordPointCollection::CheckIndex(long index, char const * location) const
{
  if (index < 0 || index >= Count())
    throw CVelmoraException(CVelmoraException::kIndexOutOfRange, location);
}

void CCoordPointCollection::CheckStringFormat(bool wanted, char const * location) const
{
  if (IsNormalPoint() == wanted)
    throw CVelmoraException(CVelmoraException::kInvalidValue, location,
                            wanted ? "Point does not use string format" : "Point uses string format");
}

CCoordPoint * CCoordPointCollection::GetPoint(long index) const
{
  char const * const location = "CCoordPointCollection::GetPoint";
  CheckIndex(index, location);
  if (!m_style || !KnownType(*m_style))
    throw CVelmoraException(CVelmoraException::kClassNotSupported, location, kUnknownPoint);
  std::unique_ptr<CCoordPoint> point(CCoordPointFactory::CreatePoint(*m_style, m_style->GetDimensions()));
  point->SetName(CString(TextAt(m_names, index)));
  if (IsNormalPoint()) {
    double const * xyz = &m_xyz[static_cast<size_t>(index) * 3];
    if (point->GetDimensions() == 3)
      point->SetInternals(xyz[0], xyz[1], xyz[2]);
    else
      point->SetInternals(xyz[0], xyz[1]);
  } else {
    CString const text(TextAt(m_locations, index));
    if (point->GetType() == kGeodeticPoint)
      static_cast<CGeodeticPoint &>(*point).SetLocationString(text);
    else
      static_cast<CProjectedPoint &>(*point).SetLocationString(text);
  }
  return point.release();
}

CCoordPoint * CCoordPointCollection::GetPoint(unsigned short const * name) const
{
  return GetPoint(IndexWithName(name));
}

long CCoordPointCollection::IndexWithName(unsigned short const * name) const
{
  if (!name)
    throw CVelmoraException(CVelmoraException::kInvalidParameter, "CCoordPointCollection::IndexWithName");
  QString const wanted = CString(name);
  if (m_names.empty())
    return wanted.isEmpty() && Count() > 0 ? 0 : -1;
  for (size_t i = 0; i < m_names.size(); ++i)
    if (m_names[i] == wanted)
      return static_cast<long>(i);
  return -1;
}

bool CCoordPointCollection::Exists(unsigned short const * name) const { return IndexWithName(name) >= 0; }

void CCoordPointCollection::GetInternals(long index, double & x, double & y, double & z) const
{
  CheckIndex(index, "CCoordPointCollection::GetInternals");
  // The getter reports under the setter's label: established text.
  CheckStringFormat(false, "CCoordPointCollection::SetInternals");
  double const * xyz = &m_xyz[static_cast<size_t>(index) * 3];
  x = xyz[0];
  y = xyz[1];
  z = xyz[2];
}

void CCoordPointCollection::SetInternals(long index, double x, double y, double z)
{
  char const * const location = "CCoordPointCollection::SetInternals";
  CheckIndex(index, location);
  CheckStringFormat(false, location);
  double * xyz = &m_xyz[static_cast<size_t>(index) * 3];
  xyz[0] = x;
  xyz[1] = y;
  xyz[2] = z;
}

void CCoordPointCollection::SetPoint(long index, CCoordPoint const & point)
{
  CheckIndex(index, "CCoordPointCollection::SetPoint");
  Store(index, point);
}

void CCoordPointCollection::SetPoint(unsigned short const * name, CCoordPoint const & point)
{
  SetPoint(IndexWithName(name), point);
}

CString CCoordPointCollection::GetLocationString(long index) const
{
  char const * const location = "CCoordPointCollection::GetLocationString";
  CheckIndex(index, location);
  CheckStringFormat(true, location);
  return CString(TextAt(m_locations, index));
}

void CCoordPointCollection::SetLocationString(long index, unsigned short const * text)
{
  char const * const location = "CCoordPointCollection::SetLocationString";
  CheckIndex(index, location);
  CheckStringFormat(true, location);
  SetText(m_locations, index, Count(), CString(text));
}

void CCoordPointCollection::Remove(long index)
{
  CheckIndex(index, "CCoordPointCollection::Remove");
  auto const at = static_cast<ptrdiff_t>(index);
  m_xyz.erase(m_xyz.begin() + at * 3, m_xyz.begin() + at * 3 + 3);
  if (!m_names.empty())
    m_names.erase(m_names.begin() + at);
  if (!m_locations.empty())
    m_locations.erase(m_locations.begin() + at);
}

void CCoordPointCollection::Clear()
{
  m_xyz.clear();
  m_names.clear();
  m_locations.clear();
}

} // namespace Velmora::ML
