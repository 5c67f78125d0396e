#include <velmora/measures/Envelope.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/datasource/SourceLookup_p.h>
#include <velmora/foundation/VelmoraException.h>

namespace Velmora::ML {

using EX::CVelmoraException;

namespace {
constexpr double kFullTurn = 360.0;

std::unique_ptr<CCoordPoint> CopyOf(CCoordPoint const * point)
{
  if (!point)
    return nullptr;
  return std::unique_ptr<CCoordPoint>(CCoordPointFactory::CreatePoint(*point, point->GetDimensions()));
}

bool Between(double v, double lo, double hi) { return v >= lo && v <= hi; }
} // namespace

CEnvelopeData::CEnvelopeData(CEnvelopeData const & other)
  : CSerializableData(other), m_alwaysAccept(other.m_alwaysAccept), m_min(CopyOf(other.m_min.get())),
    m_max(CopyOf(other.m_max.get()))
{
}

CEnvelopeData::CEnvelopeData(ECoordPointType cornerType)
  : m_min(CCoordPointFactory::CreatePoint(cornerType, 3)), m_max(CCoordPointFactory::CreatePoint(cornerType, 3))
{
}

CEnvelopeData & CEnvelopeData::operator=(CEnvelopeData const & other)
{
  if (&other != this) {
    CSerializableData::operator=(other);
    m_alwaysAccept = other.m_alwaysAccept;
    m_min = CopyOf(other.m_min.get());
    m_max = CopyOf(other.m_max.get());
  }
  return *this;
}

void CEnvelopeData::SetMinPoint(CCoordPoint const & point) { m_min = CopyOf(&point); }

void CEnvelopeData::SetMaxPoint(CCoordPoint const & point) { m_max = CopyOf(&point); }

bool CEnvelopeData::InBounds(double x, double y) const
{
  if (m_alwaysAccept || DB::CDataSource::GetIgnoreEnvelope())
    return true;
  if (!m_min || !m_max)
    return false;
  double minX, minY, maxX, maxY;
  m_min->GetInternals(minX, minY);
  m_max->GetInternals(maxX, maxY);
  return Between(x, minX, maxX) && Between(y, minY, maxY);
}

bool CEnvelopeData::InBounds(CCoordPoint const & point) const
{
  if (m_alwaysAccept || DB::CDataSource::GetIgnoreEnvelope())
    return true;
  if (!m_min || !m_max)
    return false;
  // Stored and owned envelopes report under one label: established text.
  if (point.GetType() != m_min->GetType())
    throw CVelmoraException(CVelmoraException::kWrongSerializedClass, "CEnvelopeDataDB::InBounds");
  double x, y, minX, minY, maxX, maxY;
  if (point.GetDimensions() == 2 || m_min->GetDimensions() == 2 || m_max->GetDimensions() == 2) {
    point.GetInternals(x, y);
    m_min->GetInternals(minX, minY);
    m_max->GetInternals(maxX, maxY);
  } else {
    double z, minZ, maxZ;
    point.GetInternals(x, y, z);
    m_min->GetInternals(minX, minY, minZ);
    m_max->GetInternals(maxX, maxY, maxZ);
    if (z < minZ || z > maxZ)
      return false;
  }
  // The first coordinate may lie a turn away; applied to every point class.
  bool const xIn = Between(x, minX, maxX) || Between(x - kFullTurn, minX, maxX) || Between(x + kFullTurn, minX, maxX);
  return xIn && Between(y, minY, maxY);
}

bool CEnvelopeData::IsNearlyEqual(CEnvelopeData const & other, CString & why) const
{
  auto const base = IsNearlyEqualBase(other, why);
  if (base != kNearlyEqualBaseUndecided)
    return base == kNearlyEqualBaseSame;
  if (EPSGOnOneSideOnly(other)) {
    why += CString(": EPSG code exists for one horizontal datum but not the other");
    return false;
  }
  if (!m_min || !m_max || !other.m_min || !other.m_max) {
    why += CString(": one envelope has no min or max points defined");
    return false;
  }
  CString detail;
  if (!m_min->IsNearlyEqual(*other.m_min, detail)) {
    why += CString(": min points do not match ") + detail;
    return false;
  }
  if (!m_max->IsNearlyEqual(*other.m_max, detail)) {
    why += CString(": max points do not match ") + detail;
    return false;
  }
  return true;
}

bool CEnvelopeData::IsNearlyEqual(CEnvelopeData const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

bool CEnvelopeData::operator==(CEnvelopeData const & other) const
{
  auto const sameCorner = [](CCoordPoint const * a, CCoordPoint const * b) {
    return a == b || (a && b && a->PointData().Equals(b->PointData()));
  };
  return CSerializableData::operator==(other) && m_alwaysAccept == other.m_alwaysAccept &&
         sameCorner(m_min.get(), other.m_min.get()) && sameCorner(m_max.get(), other.m_max.get());
}

bool CEnvelopeData::IsFullyDefined(DB::CDataSource const * source) const
{
  CSerializableData::IsFullyDefined(source);
  char const * const location = "CEnvelopeData::IsFullyDefined";
  struct Corner
  {
    CCoordPoint const * point;
    char const * missing;
  };
  for (Corner const corner : {Corner{m_min.get(), "Min Point"}, Corner{m_max.get(), "Max Point"}}) {
    if (!corner.point || !corner.point->GetIdentifiers().Exists("VM"))
      throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, "Envelope");
    if (!DB::detail::SourceHolds(source, *corner.point))
      throw CVelmoraException(CVelmoraException::kReferenceNotFound, location, corner.missing);
  }
  return true;
}

void CEnvelopeData::CongealCorners()
{
  if (m_min)
    m_min->Congeal();
  if (m_max)
    m_max->Congeal();
}

CEnvelope::CEnvelope(ECoordPointType cornerType)
{
  CEnvelopeDataConcrete const corners(cornerType);
  m_data.Reset(&corners); // an owned copy
}

CEnvelope::~CEnvelope() = default;

void CEnvelope::Congeal()
{
  m_data.Dereference();
  MutableBody().CongealCorners();
}

} // namespace Velmora::ML
