#include <velmora/refsys/Ellipsoid.h>

#include <velmora/datasource/SourceLookup_p.h>
#include <velmora/foundation/Constants.h>
#include <velmora/foundation/VelmoraException.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace Velmora::CS {

using Constants::kRadiansPerDegree;
using EX::CVelmoraException;

namespace {
// Nautical miles per metre: coordinated grid offsets are told in them.
constexpr double kNauticalMilesPerMetre = 0.0005399568034557236;
// Axes agree within this, in metres; inverse flattenings within the other.
constexpr double kAxisTolerance = 1e-6;
constexpr double kInverseFlatteningTolerance = 0.0001;

CString Number16(double value) { return CString(QString::number(value, 'g', 16)); }

ML::BPoint2D Radians(ML::CGeodeticPoint const & p)
{
  return ML::BPoint2D(p.GetLon().GetInternal() * kRadiansPerDegree, p.GetLat().GetInternal() * kRadiansPerDegree);
}
} // namespace

CEllipsoidData::CEllipsoidData() { Listen(); }

CEllipsoidData::CEllipsoidData(CEllipsoidData const & other)
  : CSerializableData(other), ML::CFormattedValueEvent(), m_semiMajor(other.m_semiMajor),
    m_semiMinor(other.m_semiMinor), m_inner(other.m_inner), m_invFlatDefinitive(other.m_invFlatDefinitive)
{
  Listen(); // a copied value starts without its listener
}

void CEllipsoidData::Listen()
{
  m_semiMajor.SetEventHandler(this);
  m_semiMinor.SetEventHandler(this);
}

CEllipsoidData & CEllipsoidData::operator=(CEllipsoidData const & other)
{
  if (&other != this) {
    CSerializableData::operator=(other);
    m_semiMajor.AssignQuiet(other.m_semiMajor);
    m_semiMinor.AssignQuiet(other.m_semiMinor);
    m_invFlatDefinitive = other.m_invFlatDefinitive;
    m_inner = other.m_inner;
  }
  return *this;
}

void CEllipsoidData::OnChange(ML::CFormattedValue const * changed)
{
  if (changed == &m_semiMinor)
    m_invFlatDefinitive = false;
  Initialize();
}

void CEllipsoidData::Initialize()
{
  double const a = m_semiMajor.GetInternal();
  if (!m_invFlatDefinitive) {
    m_inner.set_SemiMajor_SemiMinor(a, m_semiMinor.GetInternal());
    return;
  }
  m_semiMinor.SetUnits(m_semiMajor.GetUnits());
  if (m_inner.GetInverseFlattening() <= 1.0 && m_inner.GetSemiMinor() == 0.0) {
    m_inner.set_SemiMajor_SemiMinor(a, a);
    m_semiMinor.SetInternalQuiet(a);
  } else {
    m_inner.set_SemiMajor_InverseFlattening(a, m_inner.GetInverseFlattening());
    m_semiMinor.SetInternalQuiet(m_inner.GetSemiMinor());
  }
}

void CEllipsoidData::SetSemiMajor(ML::CLinearValue const & value)
{
  m_semiMajor.AssignQuiet(value);
  if (auto * handler = m_semiMajor.GetEventHandler())
    handler->OnChange(&m_semiMajor);
  OnChange(&m_semiMajor);
}

void CEllipsoidData::SetSemiMinor(ML::CLinearValue const & value)
{
  m_semiMinor.AssignQuiet(value);
  if (auto * handler = m_semiMinor.GetEventHandler())
    handler->OnChange(&m_semiMinor);
  OnChange(&m_semiMinor);
}

void CEllipsoidData::SetInvFlattening(double inverseFlattening)
{
  m_inner.set_SemiMajor_InverseFlattening(m_inner.GetSemiMajor(), inverseFlattening < 1.0 ? 1.0 : inverseFlattening);
  // Telling the semi-minor value's listener clears the flag on the way; it is set after.
  m_semiMinor.SetInternal(m_inner.GetSemiMinor());
  m_invFlatDefinitive = true;
}

bool CEllipsoidData::ComputeInverse(ML::CGeodeticPoint const & a, ML::CGeodeticPoint const & b, double & distance,
                                    double & az12, double & az21) const
{
  m_inner.GeodeticInverse(Radians(a), Radians(b), az12, az21, distance);
  return true;
}

bool CEllipsoidData::ComputeDirect(ML::CGeodeticPoint const & start, double distance, double azimuth,
                                   ML::CGeodeticPoint & end) const
{
  ML::BPoint2D to;
  double az21 = 0.0;
  m_inner.GeodeticForward(Radians(start), azimuth, distance, to, az21);
  end.GetLon().SetInternal(to.x / kRadiansPerDegree);
  end.GetLat().SetInternal(to.y / kRadiansPerDegree);
  return true;
}

bool CEllipsoidData::RhumbInverse(ML::CGeodeticPoint const & a, ML::CGeodeticPoint const & b, double & azimuth,
                                  double & distance) const
{
  return m_inner.RhumbInverse(Radians(a), Radians(b), azimuth, distance);
}

bool CEllipsoidData::RhumbDirect(ML::CGeodeticPoint const & start, double distance, double azimuth,
                                 ML::CGeodeticPoint & end) const
{
  ML::BPoint2D to;
  bool const ok = m_inner.RhumbDirect(Radians(start), azimuth, distance, to);
  end.GetLon().SetInternal(to.x / kRadiansPerDegree);
  end.GetLat().SetInternal(to.y / kRadiansPerDegree);
  return ok;
}

bool CEllipsoidData::ComputeRadiusAtLatitude(ML::CAngularValue const & lat, ML::CLinearValue & radius) const
{
  radius.SetInternal(m_inner.ComputeMeridionalRadiusAtLatitude(lat.GetInternal() * kRadiansPerDegree));
  return true;
}

bool CEllipsoidData::ComputeOrthometricScaleAtLatitude(ML::CAngularValue const & lat,
                                                       ML::CLinearValue const & height, double & scale) const
{
  scale = m_inner.ComputeOrthometricScaleAtLatitude(lat.GetInternal() * kRadiansPerDegree, height.GetInternal());
  return true;
}

char CEllipsoidData::QuadrantLetterFromPoints(ML::CGeodeticPoint const & a, ML::CGeodeticPoint const & b)
{
  double const latA = a.GetLat().GetInternal(), latB = b.GetLat().GetInternal();
  double const lonA = a.GetLon().GetInternal(), lonB = b.GetLon().GetInternal();
  if (latB >= latA && lonB >= lonA)
    return 'W';
  if (latB >= latA && lonB < lonA)
    return 'R';
  if (latB < latA && lonB < lonA)
    return 'G';
  if (latB < latA && lonB >= lonA)
    return 'B';
  return '-';
}

bool CEllipsoidData::CoefficientsFromQuadrantLetter(char letter, long & lonSign, long & latSign)
{
  switch (letter) {
  case 'B': case 'b': lonSign = 1; latSign = -1; return true;
  case 'G': case 'g': lonSign = -1; latSign = -1; return true;
  case 'R': case 'r': lonSign = -1; latSign = 1; return true;
  case 'W': case 'w': lonSign = 1; latSign = 1; return true;
  default: return false;
  }
}

bool CEllipsoidData::CCGridInverse(ML::CGeodeticPoint const & a, ML::CGeodeticPoint const & b,
                                   unsigned short * text) const
{
  if (!text)
    throw CVelmoraException(CVelmoraException::kNullPointer, "CEllipsoidData::CCGridInverse");
  double az12, az21, eastWest, northSouth;
  if (!ComputeInverse(a, ML::CGeodeticPoint(b.GetLon().GetInternal(), a.GetLat().GetInternal()), eastWest, az12, az21))
    return false;
  if (!ComputeInverse(a, ML::CGeodeticPoint(a.GetLon().GetInternal(), b.GetLat().GetInternal()), northSouth, az12,
                      az21))
    return false;
  auto const miles = [](double metres) {
    return static_cast<long>(std::floor(std::fabs(metres * kNauticalMilesPerMetre) + 0.5));
  };
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%c%03ld/%03ld", QuadrantLetterFromPoints(a, b), miles(eastWest),
                miles(northSouth));
  for (char const * c = buffer;; ++c, ++text) {
    *text = static_cast<unsigned char>(*c);
    if (!*c)
      break;
  }
  return true;
}

bool CEllipsoidData::CCGridDirect(ML::CGeodeticPoint const & start, unsigned short const * text,
                                  ML::CGeodeticPoint & end) const
{
  // Both grid operations report under one label: established text.
  if (!text)
    throw CVelmoraException(CVelmoraException::kNullPointer, "CEllipsoidData::CCGridInverse");
  QByteArray const narrow = CString(text).toLatin1();
  long lonSign = 0, latSign = 0;
  if (narrow.size() < 8 || !CoefficientsFromQuadrantLetter(narrow[0], lonSign, latSign))
    return false;
  double const eastWest = lonSign * std::atof(narrow.mid(1, 3).constData()) / kNauticalMilesPerMetre;
  double const northSouth = latSign * std::atof(narrow.mid(5, 3).constData()) / kNauticalMilesPerMetre;
  ML::CGeodeticPoint t(2);
  if (!ComputeDirect(start, northSouth, 0.0, t))
    return false;
  end.GetLat().SetInternal(t.GetLat().GetInternal());
  // 90.0 goes in as radians, as this operation always has: not due east.
  bool const ok = ComputeDirect(start, eastWest, 90.0, t);
  end.GetLon().SetInternal(t.GetLon().GetInternal());
  return ok;
}

bool CEllipsoidData::IsNearlyEqual(CEllipsoidData const & other, CString & why) const
{
  auto const base = IsNearlyEqualBase(other, why);
  if (base != kNearlyEqualBaseUndecided)
    return base == kNearlyEqualBaseSame;
  double const a1 = m_semiMajor.GetInternal(), a2 = other.m_semiMajor.GetInternal();
  if (std::fabs(a1 - a2) > kAxisTolerance) {
    why += CString(": semi-major does not match: %1 != %2").arg(Number16(a1), Number16(a2));
    return false;
  }
  bool const bothByFlattening = m_invFlatDefinitive && other.m_invFlatDefinitive;
  if (!bothByFlattening) {
    double const b1 = m_semiMinor.GetInternal(), b2 = other.m_semiMinor.GetInternal();
    if (std::fabs(b1 - b2) > kAxisTolerance) {
      why += CString(": semi-minor does not match: %1 != %2").arg(Number16(b1), Number16(b2));
      return false;
    }
  }
  if (!m_invFlatDefinitive && !other.m_invFlatDefinitive)
    return true;
  double const f1 = GetInvFlattening(), f2 = other.GetInvFlattening();
  if (std::fabs(f1 - f2) <= kInverseFlatteningTolerance)
    return true;
  why += CString(": inverse flattening does not match : %1 != %2").arg(QString::number(f1), QString::number(f2));
  return false;
}

bool CEllipsoidData::IsNearlyEqual(CEllipsoidData const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

bool CEllipsoidData::operator==(CEllipsoidData const & other) const
{
  return CSerializableData::operator==(other) && m_semiMajor == other.m_semiMajor &&
         m_semiMinor == other.m_semiMinor && m_inner == other.m_inner &&
         m_invFlatDefinitive == other.m_invFlatDefinitive;
}

bool CEllipsoidData::IsFullyDefined(DB::CDataSource const * source) const
{
  bool const base = CSerializableData::IsFullyDefined(source);
  char const * const location = "CEllipsoidData::IsFullyDefined";
  struct Axis
  {
    ML::CLinearValue const & value;
    char const * unitsDetail;
    char const * sourceDetail;
  };
  Axis const axes[] = {{m_semiMajor, "LinearUnits(SemiMajor)", "SemiMajor Units"},
                       {m_semiMinor, "LinearUnits(SemiMinor)", "SemiMinor Units"}};
  // The semi-minor axis is asked for only while it defines the figure.
  int const count = m_invFlatDefinitive ? 1 : 2;
  for (int i = 0; i < count; ++i) {
    ML::CLinearUnit const & units = axes[i].value.GetUnits();
    if (!units.GetIdentifiers().Exists("VM"))
      throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, axes[i].unitsDetail);
    if (!DB::detail::SourceHolds(source, units))
      throw CVelmoraException(CVelmoraException::kReferenceNotFound, location, axes[i].sourceDetail);
  }
  return base;
}

bool CEllipsoidData::ReadStoredValue(CString const & key, TWLVariant & value)
{
  // A file's figure is taken as written or not at all: the setters would turn
  // an axis of 0, INF or NaN, or an inverse flattening below one, into a
  // figure that converts to nothing or silently into a sphere. Zero stays
  // the usual mark of a sphere's inverse flattening.
  double const number = value.toDouble();
  bool const axis = key == CString("semimajor") || key == CString("semiminor");
  bool const flattening = key == CString("invflattening");
  if ((axis && !(number > 0.0)) || (flattening && number != 0.0 && !(number >= 1.0)) ||
      ((axis || flattening) && !std::isfinite(number)))
    throw CVelmoraException(CVelmoraException::kInvalidValue, "CEllipsoidDataDB::SetValue",
                            key + CString(" ") + value.toString());
  if (key == CString("semimajor"))
    m_semiMajor.SetValue(value.toDouble());
  else if (key == CString("semiminor"))
    m_semiMinor.SetValue(value.toDouble());
  else if (key == CString("invflattening"))
    SetInvFlattening(value.toDouble());
  else
    return false;
  return true;
}

CEllipsoid::~CEllipsoid() = default;

void CEllipsoid::Congeal()
{
  m_data.Dereference();
  MutableBody().GetSemiMajor().GetUnits().Congeal();
  MutableBody().GetSemiMinor().GetUnits().Congeal();
}

} // namespace Velmora::CS
