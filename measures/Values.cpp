#include <velmora/measures/Values.h>

#include <velmora/foundation/Constants.h>
#include <velmora/measures/AngleText_p.h>

#include <charconv>
#include <cmath>
#include <cstdio>

namespace Velmora::ML {

namespace {

// Two values are the same number when this close in internal units...
constexpr double kEqualTolerance = 1e-7;
// ...and nearly equal when this close, in the units compared.
constexpr double kNearTolerance = 1e-6;
// The interval every out-of-range angle is reduced into, whatever the range.
constexpr double kFullTurn = 360.0;
constexpr double kHalfTurn = 180.0;

double g_validRange = 180.0;
double g_rangeCenter = 0.0;

CString const kMGRS("MGRS");

CString Number16(double value) { return CString(QString::number(value, 'g', 16)); }

// A leading number as wcstod reads one: blanks, a sign, then the longest
// number; nothing readable is 0. Independent of the process locale.
double LeadingNumber(QString const & text)
{
  QByteArray const bytes = text.toUtf8();
  char const * p = bytes.constData();
  char const * end = p + bytes.size();
  while (p < end && (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\r'))
    ++p;
  bool negative = false;
  if (p < end && (*p == '+' || *p == '-'))
    negative = *p++ == '-';
  double value = 0.0;
  if (std::from_chars(p, end, value).ec != std::errc())
    return 0.0;
  return negative ? -value : value;
}

} // namespace

CFormattedValueEvent::~CFormattedValueEvent() = default;

CFormattedValue::~CFormattedValue() = default;

CFormattedValue::CFormattedValue(CFormattedValue const & other)
  : CValueHandler(), m_label(other.m_label), m_format(other.m_format), m_text(other.m_text),
    m_internal(other.m_internal), m_handler(nullptr)
{
}

void CFormattedValue::SetValue(CString const & key, TWLVariant & value)
{
  if (key == CString("label"))
    m_label = value.toString();
}

void CFormattedValue::SetFormat(unsigned short const * format) { m_format = CString(format); }

void CFormattedValue::AssignFields(CFormattedValue const & other)
{
  m_label = other.m_label;
  m_format = other.m_format;
  m_text = other.m_text;
  m_internal = other.m_internal;
}

bool CFormattedValue::SameQuantity(CFormattedValue const & other) const
{
  return &other == this || std::fabs(m_internal - other.m_internal) <= kEqualTolerance;
}

bool CFormattedValue::NumbersNearlyEqual(CFormattedValue const & other, CString & why, bool inUnits) const
{
  if (inUnits) {
    if (std::fabs(GetValue() - other.GetValue()) <= kNearTolerance)
      return true;
    why += CString(": values are not equal : %1 != %2").arg(Number16(GetValue()), Number16(other.GetValue()));
    return false;
  }
  if (std::fabs(m_internal - other.m_internal) <= kNearTolerance)
    return true;
  why += CString(": ignoring units, but inner values are still not equal : %1 != %2")
           .arg(Number16(m_internal), Number16(other.m_internal));
  return false;
}

// Linear

CLinearValue::CLinearValue(CLinearValue const & other) : CFormattedValue(other), m_units(other.m_units) {}

CLinearValue::~CLinearValue() = default;

CLinearValue & CLinearValue::operator=(CLinearValue const & other)
{
  AssignQuiet(other);
  Notify();
  return *this;
}

void CLinearValue::AssignQuiet(CLinearValue const & other)
{
  if (&other == this)
    return;
  AssignFields(other);
  m_units = other.m_units;
}

void CLinearValue::SetValue(double value)
{
  m_internal = m_units.ToBaseUnits(value);
  Notify();
}

CString CLinearValue::ToString() const
{
  if (m_format == kMGRS)
    return CString(m_text);
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*g", 15, GetValue());
  return CString(buffer);
}

bool CLinearValue::FromString(unsigned short const * text)
{
  if (!text || !*text)
    return false;
  CString const s(text);
  if (m_format == kMGRS)
    m_text = s;
  else
    m_internal = m_units.ToBaseUnits(LeadingNumber(s));
  Notify();
  return true;
}


bool CLinearValue::IsNearlyEqual(CLinearValue const & other, bool checkUnits) const
{
  CString why;
  return IsNearlyEqual(other, why, checkUnits);
}

bool CLinearValue::IsNearlyEqual(CLinearValue const & other, CString & why, bool checkUnits) const
{
  if (checkUnits) {
    CString unitsWhy;
    if (!m_units.IsNearlyEqual(other.m_units, unitsWhy)) {
      why += CString(": Linear Units do not match ") + unitsWhy;
      return false;
    }
  }
  return NumbersNearlyEqual(other, why, checkUnits);
}

// Angular

CAngularValue::CAngularValue() = default;

CAngularValue::CAngularValue(CAngularValue const & other)
  : CFormattedValue(other), m_units(other.m_units),
    m_text(other.m_text ? std::make_unique<CAngleText>(*other.m_text) : nullptr)
{
}

CAngularValue::~CAngularValue() = default;

CAngularValue & CAngularValue::operator=(CAngularValue const & other)
{
  AssignQuiet(other);
  Notify();
  return *this;
}

void CAngularValue::AssignQuiet(CAngularValue const & other)
{
  if (&other == this)
    return;
  AssignFields(other);
  m_units = other.m_units;
  if (other.m_text)
    m_text = std::make_unique<CAngleText>(*other.m_text);
  else
    m_text.reset();
}

double CAngularValue::GetValidRange() { return g_validRange; }
void CAngularValue::SetValidRange(double range) { g_validRange = range; }
double CAngularValue::GetRangeCenter() { return g_rangeCenter; }
void CAngularValue::SetRangeCenter(double center) { g_rangeCenter = center; }

double CAngularValue::EnsureInRange(double x)
{
  if (x <= g_validRange + g_rangeCenter && x >= -g_rangeCenter - g_validRange)
    return x;
  double const r = std::fmod(x, kFullTurn);
  if (r <= -kHalfTurn)
    return r + kFullTurn;
  if (r > kHalfTurn)
    return r - kFullTurn;
  return r;
}

void CAngularValue::SetValue(double value)
{
  m_internal = EnsureInRange(m_units.ToBaseUnits(value));
  Notify();
}

double CAngularValue::GetRadians() const { return m_internal * Constants::kRadiansPerDegree; }

void CAngularValue::SetRadians(double radians)
{
  m_internal = EnsureInRange(radians / Constants::kRadiansPerDegree);
  Notify();
}

void CAngularValue::SetToDefault(double value)
{
  CAngularUnit & units = m_units;
  units.SetName("Degrees (deg)");
  units.SetAbbreviation("deg");
  units.SetUnitsPerDegree(1.0);
  CIdentifierCollection & ids = units.GetIdentifiers();
  if (ids.Exists("VM"))
    ids.SetItem("VM", "DEGREES");
  else
    ids.Add("VM", "DEGREES");
  SetValue(value);
}

CAngleText & CAngularValue::Engine() const
{
  if (!m_text)
    m_text = std::make_unique<CAngleText>();
  return *m_text;
}

void CAngularValue::SetFormat(unsigned short const * format)
{
  CFormattedValue::SetFormat(format);
  Engine().SetFormat(CString(m_format));
}

CString CAngularValue::ToString() const
{
  CAngleText & engine = Engine();
  if (engine.GetFormat() != CString(m_format))
    engine.SetFormat(CString(m_format));
  return engine.ToString(GetValue());
}

bool CAngularValue::FromString(unsigned short const * text)
{
  if (!text || !*text)
    return false;
  CAngleText & engine = Engine();
  if (engine.GetFormat() != CString(m_format))
    engine.SetFormat(CString(m_format));
  double angle = 0.0;
  if (!engine.FromString(CString(text), angle))
    return false;
  m_internal = EnsureInRange(m_units.ToBaseUnits(angle));
  Notify();
  return true;
}


bool CAngularValue::IsNearlyEqual(CAngularValue const & other, bool checkUnits) const
{
  CString why;
  return IsNearlyEqual(other, why, checkUnits);
}

bool CAngularValue::IsNearlyEqual(CAngularValue const & other, CString & why, bool checkUnits) const
{
  if (checkUnits) {
    CString unitsWhy;
    if (!m_units.IsNearlyEqual(other.m_units, unitsWhy)) {
      why += CString(":angular units do not match ") + unitsWhy;
      return false;
    }
  }
  return NumbersNearlyEqual(other, why, checkUnits);
}

} // namespace Velmora::ML
