#pragma once
// Linear and angular units. The base of linear measure is the metre, of
// angular measure the degree; a unit is a name, an abbreviation and how many
// of it make one base unit.
#include <velmora/foundation/Family.h>

namespace Velmora::ML {

// What both unit bodies share.
class VELMORA_API CUnitData : public virtual CSerializableData
{
public:
  CString const & GetAbbreviation() const { return m_abbreviation; }
  void SetAbbreviation(CString const & abbreviation) { m_abbreviation = abbreviation; }
  double ToBaseUnits(double value) const { return value / m_perBase; }
  double FromBaseUnits(double value) const { return m_perBase * value; }
  // A unit needs no identifier to be complete.
  bool IsFullyDefined(DB::CDataSource const *) const override { return true; }

protected:
  CUnitData() = default;
  CUnitData(CUnitData const &) = default;
  CUnitData(CString const & name, CString const & abbreviation, double perBase);
  CUnitData & operator=(CUnitData const & other);
  bool SameFields(CUnitData const & other) const;
  bool FactorNearlyEqual(CUnitData const & other) const;
  bool ReadUnitValue(CString const & key, TWLVariant & value, char const * factorKey);

  CString m_abbreviation;
  double m_perBase = 1.0;
};

class VELMORA_API CLinearUnitData : public CUnitData, public TBodyFactory<CLinearUnitData>
{
public:
  static constexpr EObjectType kObjectType = kObjectLinearUnit;
  static constexpr long kRootGroup = 200;

  CLinearUnitData() = default;
  CLinearUnitData(CLinearUnitData const &) = default;
  CLinearUnitData(CString const & name, CString const & abbreviation, double unitsPerMetre);
  virtual CLinearUnitData & operator=(CLinearUnitData const & other);

  double GetUnitsPerMeter() const { return m_perBase; }
  void SetUnitsPerMeter(double unitsPerMetre) { m_perBase = unitsPerMetre; }

  // Within 1e-6 units per metre; names and abbreviations do not count.
  bool IsNearlyEqual(CLinearUnitData const & other, CString & why) const;
  bool IsNearlyEqual(CLinearUnitData const & other) const;
  bool operator==(CLinearUnitData const & other) const { return SameFields(other); }
  bool operator!=(CLinearUnitData const & other) const { return !SameFields(other); }

  bool ReadStoredValue(CString const & key, TWLVariant & value);
};

class VELMORA_API CAngularUnitData : public CUnitData, public TBodyFactory<CAngularUnitData>
{
public:
  static constexpr EObjectType kObjectType = kObjectAngularUnit;
  static constexpr long kRootGroup = 100;

  CAngularUnitData() = default;
  CAngularUnitData(CAngularUnitData const &) = default;
  CAngularUnitData(CString const & name, CString const & abbreviation, double unitsPerDegree);
  virtual CAngularUnitData & operator=(CAngularUnitData const & other);

  double GetUnitsPerDegree() const { return m_perBase; }
  void SetUnitsPerDegree(double unitsPerDegree) { m_perBase = unitsPerDegree; }

  bool IsNearlyEqual(CAngularUnitData const & other, CString & why) const;
  bool IsNearlyEqual(CAngularUnitData const & other) const;
  bool operator==(CAngularUnitData const & other) const { return SameFields(other); }
  bool operator!=(CAngularUnitData const & other) const { return !SameFields(other); }

  bool ReadStoredValue(CString const & key, TWLVariant & value);
};

using CLinearUnitDataConcrete = TDataConcrete<CLinearUnitData>;
using CLinearUnitDataDB = TDataDB<CLinearUnitData>;
using CAngularUnitDataConcrete = TDataConcrete<CAngularUnitData>;
using CAngularUnitDataDB = TDataDB<CAngularUnitData>;

// The handle members both unit families share.
template <class Data>
class TUnit : public THandle<Data>
{
public:
  CString const & GetAbbreviation() const { return this->Body().GetAbbreviation(); }
  void SetAbbreviation(CString const & abbreviation) { this->MutableBody().SetAbbreviation(abbreviation); }
  double ToBaseUnits(double value) const { return this->Body().ToBaseUnits(value); }
  double FromBaseUnits(double value) const { return this->Body().FromBaseUnits(value); }

  bool IsNearlyEqual(TUnit const & other, CString & why) const
  {
    return this->Body().IsNearlyEqual(other.Body(), why);
  }
  bool IsNearlyEqual(TUnit const & other) const { return this->Body().IsNearlyEqual(other.Body()); }
  bool operator==(TUnit const & other) const { return this->Body() == other.Body(); }
  bool operator!=(TUnit const & other) const { return !(*this == other); }

protected:
  TUnit() = default;
  TUnit(TUnit const &) = default;
  TUnit & operator=(TUnit const &) = default;
  explicit TUnit(Data const & body) : THandle<Data>(body) {}
  void Define(CString const & name, CString const & abbreviation)
  {
    Data & body = this->MutableBody();
    body.SetName(name);
    body.SetAbbreviation(abbreviation);
  }
};

class VELMORA_API CLinearUnit : public TUnit<CLinearUnitData>
{
public:
  CLinearUnit() = default;
  CLinearUnit(CLinearUnit const &) = default;
  CLinearUnit & operator=(CLinearUnit const &) = default;
  CLinearUnit(unsigned short const * name, unsigned short const * abbreviation, double unitsPerMetre);
  CLinearUnit(CString const & name, CString const & abbreviation, double unitsPerMetre);
  ~CLinearUnit() override;

  double GetUnitsPerMeter() const { return Body().GetUnitsPerMeter(); }
  void SetUnitsPerMeter(double unitsPerMetre) { MutableBody().SetUnitsPerMeter(unitsPerMetre); }

private:
  friend class DB::CDataSource;
  explicit CLinearUnit(CLinearUnitData const & body) : TUnit(body) {}
};

class VELMORA_API CAngularUnit : public TUnit<CAngularUnitData>
{
public:
  CAngularUnit() = default;
  CAngularUnit(CAngularUnit const &) = default;
  CAngularUnit & operator=(CAngularUnit const &) = default;
  CAngularUnit(unsigned short const * name, unsigned short const * abbreviation, double unitsPerDegree);
  CAngularUnit(CString const & name, CString const & abbreviation, double unitsPerDegree);
  ~CAngularUnit() override;

  double GetUnitsPerDegree() const { return Body().GetUnitsPerDegree(); }
  void SetUnitsPerDegree(double unitsPerDegree) { MutableBody().SetUnitsPerDegree(unitsPerDegree); }

private:
  friend class DB::CDataSource;
  explicit CAngularUnit(CAngularUnitData const & body) : TUnit(body) {}
};

} // namespace Velmora::ML
