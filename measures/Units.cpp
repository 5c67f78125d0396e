#include <velmora/measures/Units.h>

#include <cmath>

namespace Velmora::ML {

namespace {
// Units agree when their factors to the base unit agree this closely.
constexpr double kFactorTolerance = 1e-6;
} // namespace

CUnitData::CUnitData(CString const & name, CString const & abbreviation, double perBase)
  : m_abbreviation(abbreviation), m_perBase(perBase)
{
  SetName(name);
}

CUnitData & CUnitData::operator=(CUnitData const & other)
{
  CSerializableData::operator=(other);
  m_abbreviation = other.m_abbreviation;
  m_perBase = other.m_perBase;
  return *this;
}

bool CUnitData::SameFields(CUnitData const & other) const
{
  return CSerializableData::operator==(other) && m_abbreviation == other.m_abbreviation &&
         m_perBase == other.m_perBase;
}

bool CUnitData::FactorNearlyEqual(CUnitData const & other) const
{
  return std::fabs(m_perBase - other.m_perBase) <= kFactorTolerance;
}

bool CUnitData::ReadUnitValue(CString const & key, TWLVariant & value, char const * factorKey)
{
  if (key == CString("abbreviation"))
    m_abbreviation = value.toString();
  else if (key == CString(factorKey))
    m_perBase = value.toDouble();
  else
    return false;
  return true;
}

// Linear

CLinearUnitData::CLinearUnitData(CString const & name, CString const & abbreviation, double unitsPerMetre)
  : CUnitData(name, abbreviation, unitsPerMetre)
{
}

CLinearUnitData & CLinearUnitData::operator=(CLinearUnitData const & other)
{
  CUnitData::operator=(other);
  return *this;
}

bool CLinearUnitData::IsNearlyEqual(CLinearUnitData const & other, CString & why) const
{
  auto const base = IsNearlyEqualBase(other, why);
  if (base != kNearlyEqualBaseUndecided)
    return base == kNearlyEqualBaseSame;
  // Established behaviour: a linear unit leaves `why` as it was.
  return FactorNearlyEqual(other);
}

bool CLinearUnitData::IsNearlyEqual(CLinearUnitData const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

bool CLinearUnitData::ReadStoredValue(CString const & key, TWLVariant & value)
{
  return ReadUnitValue(key, value, "unitspermeter");
}

// Angular

CAngularUnitData::CAngularUnitData(CString const & name, CString const & abbreviation, double unitsPerDegree)
  : CUnitData(name, abbreviation, unitsPerDegree)
{
}

CAngularUnitData & CAngularUnitData::operator=(CAngularUnitData const & other)
{
  CUnitData::operator=(other);
  return *this;
}

bool CAngularUnitData::IsNearlyEqual(CAngularUnitData const & other, CString & why) const
{
  auto const base = IsNearlyEqualBase(other, why);
  if (base != kNearlyEqualBaseUndecided)
    return base == kNearlyEqualBaseSame;
  if (FactorNearlyEqual(other))
    return true;
  why += CString(": units per degree do not match");
  return false;
}

bool CAngularUnitData::IsNearlyEqual(CAngularUnitData const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

bool CAngularUnitData::ReadStoredValue(CString const & key, TWLVariant & value)
{
  return ReadUnitValue(key, value, "unitsperdegree");
}

// Handles

CLinearUnit::CLinearUnit(unsigned short const * name, unsigned short const * abbreviation, double unitsPerMetre)
  : CLinearUnit(CString(name), CString(abbreviation), unitsPerMetre)
{
}

CLinearUnit::CLinearUnit(CString const & name, CString const & abbreviation, double unitsPerMetre)
{
  Define(name, abbreviation);
  SetUnitsPerMeter(unitsPerMetre);
}

CLinearUnit::~CLinearUnit() = default;

CAngularUnit::CAngularUnit(unsigned short const * name, unsigned short const * abbreviation, double unitsPerDegree)
  : CAngularUnit(CString(name), CString(abbreviation), unitsPerDegree)
{
}

CAngularUnit::CAngularUnit(CString const & name, CString const & abbreviation, double unitsPerDegree)
{
  Define(name, abbreviation);
  SetUnitsPerDegree(unitsPerDegree);
}

CAngularUnit::~CAngularUnit() = default;

} // namespace Velmora::ML
