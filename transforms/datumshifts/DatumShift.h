#pragma once
// The datum shift framework: one abstract class that every shift method
// derives from, and its body. A shift moves a geodetic point (longitude and
// latitude in degrees, height in metres) from its source datum to its
// destination datum and back. Its parameters live in its body; what a method
// computes from them lives in the method's class, rebuilt in OnChange.
#include <velmora/foundation/Family.h>
#include <velmora/foundation/ParameterCollection.h>
#include <velmora/measures/Envelope.h>
#include <velmora/refsys/HorizontalDatum.h>

#include <memory>

namespace Velmora::CT::DS {

class CDatumShift;
class CDatumShiftFactory;

class VELMORA_API CDatumShiftData : public virtual CSerializableData, public TBodyFactory<CDatumShiftData>
{
public:
  static constexpr EObjectType kObjectType = kObjectDatumShift;
  static constexpr long kRootGroup = 600;

  CDatumShiftData() = default;
  CDatumShiftData(CDatumShiftData const &) = default;
  // A new body of that class type string, with no parameters yet.
  explicit CDatumShiftData(CString const & classType) : m_classType(classType) {}
  virtual CDatumShiftData & operator=(CDatumShiftData const & other);

  // In degrees on the source side; a stored body is shared, an owned one copied.
  ML::CEnvelope const & GetEnvelope() const { return m_envelope; }
  ML::CEnvelope & GetEnvelope() { return m_envelope; }
  void SetEnvelope(ML::CEnvelope const & envelope) { m_envelope = envelope; }
  CS::CHorizontalDatum const & GetSrcDatum() const { return m_srcDatum; }
  CS::CHorizontalDatum & GetSrcDatum() { return m_srcDatum; }
  void SetSrcDatum(CS::CHorizontalDatum const & datum) { m_srcDatum = datum; }
  CS::CHorizontalDatum const & GetDestDatum() const { return m_destDatum; }
  CS::CHorizontalDatum & GetDestDatum() { return m_destDatum; }
  void SetDestDatum(CS::CHorizontalDatum const & datum) { m_destDatum = datum; }
  bool GetReverseUsage() const { return m_reversed; }
  void SetReverseUsage(bool reversed) { m_reversed = reversed; }
  CString const & GetClassType() const { return m_classType; }
  void SetClassType(CString const & classType) { m_classType = classType; }
  CParameterCollection const & GetParameters() const { return m_parameters; }
  CParameterCollection & GetParameters() { return m_parameters; }

  // Whether the two do the same job, also across methods; reasons go to `why`.
  bool IsNearlyEqual(CDatumShiftData const & other, CString & why) const;
  bool IsNearlyEqual(CDatumShiftData const & other) const;
  // Frame fields, flag, parameters and class type; datums and envelope take no part.
  bool operator==(CDatumShiftData const & other) const;
  bool operator!=(CDatumShiftData const & other) const { return !(*this == other); }
  bool IsFullyDefined(DB::CDataSource const * source) const override;
  // Parameters, envelope, source datum, destination datum: all made private.
  void CongealInner();
  bool ReadStoredValue(CString const &, TWLVariant &) { return false; }

private:
  // A shift of the affine family in one form, so that unlike methods can be compared.
  struct Affine3DSummary
  {
    ML::CAngularValue rx, ry, rz;
    ML::CLinearValue dx, dy, dz, xp, yp, zp;
    double k = 0.0;
    CS::CHorizontalDatum const * srcDatum = nullptr;
    CS::CHorizontalDatum const * destDatum = nullptr;
    bool reversed = false;
  };

  // False for a class outside the affine family.
  bool PopulateSummary(Affine3DSummary & summary) const;
  static bool SummariesNearlyEqual(Affine3DSummary const & a, Affine3DSummary const & b, CString & why,
                                   bool compareFlags);
  // The same job the other way round; only a pure translation can be turned.
  static bool NegateSummary(Affine3DSummary & summary);
  // The cross-method rules, once the plain comparison has failed.
  bool CrossMethodNearlyEqual(CDatumShiftData const & other, CString & why) const;

protected:
  ML::CEnvelope m_envelope;
  CS::CHorizontalDatum m_srcDatum;
  CS::CHorizontalDatum m_destDatum;
  bool m_reversed = false;
  CString m_classType;
  CParameterCollection m_parameters;
};

using CDatumShiftDataConcrete = TDataConcrete<CDatumShiftData>;

// The body a data source holds. Its parameters are a read-only image of the
// file, filled by the reader; a handle that writes takes a concrete copy.
class VELMORA_API CDatumShiftDataDB final : public CDatumShiftData, public CSerializableDataDB
{
public:
  CDatumShiftDataDB();
  CDatumShiftDataDB(CDatumShiftDataDB const & other);
  // How a store copies a caller's shift into itself.
  CDatumShiftDataDB(CDatumShiftData const & source, DB::CDataSource const * store);
  ~CDatumShiftDataDB() override;
  CDatumShiftDataDB & operator=(CDatumShiftData const & other) override;
  CDatumShiftDataDB & operator=(CDatumShiftDataDB const & other);

  // The type value of a class type string; -1 for any other text.
  static int GetDatumShiftType(CString const & classType);
  int GetShiftType() const { return m_type; }
  // Type and class type string together; out of range changes nothing.
  void SetShiftType(int type);
  // The type the text names, exactly as spelt; -1 (and no change) for others.
  int SetShiftType(CString const & classType);

  // The store this body belongs to; null for one made outside a store.
  DB::CDataSource const * GetDataSource() const { return m_source; }
  // The read-only parameters the reader fills.
  CParameterCollectionDataDB & GetStoredParameters() { return *m_stored; }
  // The envelope a data file names before defining it: the index of the
  // pending reference until the end of the file, else -1.
  long GetEnvelopeIndex() const { return m_envelopeIndex; }
  void SetEnvelopeIndex(long index) { m_envelopeIndex = index; }

  void SetValue(CString const & key, TWLVariant & value) override;

private:
  void PointAtStoredParameters();

  int m_type = -1;
  long m_envelopeIndex = -1;
  DB::CDataSource const * m_source = nullptr;
  std::unique_ptr<CParameterCollectionDataDB> m_stored;
};

// The abstract shift. ShiftForward and ShiftBack are the chain's directions:
// forward runs ShiftSrcToDest, or ShiftDestToSrc when the shift is used
// reversed, and back the other one. The envelope always guards the forward
// input side: the input before a forward step, the result after a back step.
class VELMORA_API CDatumShift : public THandle<CDatumShiftData>, public CParameterCollectionEvent
{
public:
  // One value per method; the numbers are stable.
  enum Type : int {
    kBursaWolfe = 0,
    kCanadianNTV2 = 1,
    kED50ToED87NorthSea = 2,
    kFourParameter = 3,
    kGeocentricTranslation = 4,
    kLongitudeRotation = 5,
    kMolodensky = 6,
    kMolodenskyBadekas = 7,
    kMRE = 8,
    kNadcon = 9,
    kNTFToRGF93 = 10,
    kOrdnanceSurveyGrid = 11,
    kSevenParameter = 12,
    kSixParameter = 13,
    kTokyoToJGD2000 = 14,
    kTypeCount = 15
  };

  // The class type string of a type; empty for a value out of range.
  static CString TypeName(int type);

  ~CDatumShift() override;

  void Congeal() override;
  // Takes over the other's body; a method copies its own state from one of its type.
  virtual CDatumShift & operator=(CDatumShift const & other);
  // The base hears nothing; methods rebuild what they cache.
  void OnChange(unsigned short const * name) override;
  virtual Type GetType() const = 0;

  // Code 43 when the input lies outside the envelope; the method's own failures pass through.
  bool ShiftForward(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const;
  bool ShiftForward(double & lon, double & lat) const;
  // Code 44 when the result lies outside the envelope; `out` holds it then.
  bool ShiftBack(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const;
  bool ShiftBack(double & lon, double & lat) const;

  ML::CEnvelope const & GetEnvelope() const { return Body().GetEnvelope(); }
  void SetEnvelope(ML::CEnvelope const & envelope) { MutableBody().SetEnvelope(envelope); }
  CS::CHorizontalDatum const & GetSrcDatum() const { return Body().GetSrcDatum(); }
  CS::CHorizontalDatum & GetSrcDatum() { return MutableBody().GetSrcDatum(); }
  void SetSrcDatum(CS::CHorizontalDatum const & datum) { MutableBody().SetSrcDatum(datum); }
  CS::CHorizontalDatum const & GetDestDatum() const { return Body().GetDestDatum(); }
  CS::CHorizontalDatum & GetDestDatum() { return MutableBody().GetDestDatum(); }
  void SetDestDatum(CS::CHorizontalDatum const & datum) { MutableBody().SetDestDatum(datum); }
  bool GetReverseUsage() const { return Body().GetReverseUsage(); }
  void SetReverseUsage(bool reversed) { MutableBody().SetReverseUsage(reversed); }
  CParameterCollection const & GetParameters() const { return Body().GetParameters(); }
  // Writable parameters; this shift hears of every change.
  CParameterCollection & GetParameters();
  CString GetTypeName() const { return Body().GetClassType(); }

  bool operator==(CDatumShift const & other) const { return Body() == other.Body(); }
  bool operator!=(CDatumShift const & other) const { return !(*this == other); }
  bool IsNearlyEqual(CDatumShift const & other, CString & why) const { return Body().IsNearlyEqual(other.Body(), why); }
  bool IsNearlyEqual(CDatumShift const & other) const { return Body().IsNearlyEqual(other.Body()); }

  // The body, for the library's own code (the store, comparisons in bulk).
  CDatumShiftData const & ShiftData() const { return Body(); }

protected:
  // A new concrete body of that class type, with the type's parameters declared, unset.
  explicit CDatumShift(unsigned short const * typeName);
  explicit CDatumShift(CString const & typeName);
  CDatumShift(CDatumShift const & other);

  // The method's two directions, as stored. The pair forms wrap the point
  // forms; a method that can work without points overrides them.
  virtual bool ShiftSrcToDest(double & lon, double & lat) const;
  virtual bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const = 0;
  virtual bool ShiftDestToSrc(double & lon, double & lat) const;
  virtual bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const = 0;

private:
  friend class CDatumShiftFactory;
  // Over a stored body, shared: how a method object is given what the store holds.
  void AttachBody(CDatumShiftData const & body);
  // The collection of an owned body names this shift as its listener.
  void Listen();
};

// Gives a method its type and the assignment rules of shifts: the virtual
// assignment copies the method's own state only from the same type.
template <class Derived, CDatumShift::Type TypeValue, class Base = CDatumShift>
class TDatumShift : public Base
{
public:
  static constexpr CDatumShift::Type kType = TypeValue;

  CDatumShift::Type GetType() const override { return TypeValue; }
  CDatumShift & operator=(CDatumShift const & other) override
  {
    if (&other == this)
      return *this;
    if (other.GetType() == TypeValue && dynamic_cast<Derived const *>(&other))
      static_cast<Derived &>(*this) = static_cast<Derived const &>(other);
    else
      CDatumShift::operator=(other);
    return *this;
  }

protected:
  TDatumShift() : Base(CDatumShift::TypeName(TypeValue)) {}
  explicit TDatumShift(CString const & typeName) : Base(typeName) {}
  TDatumShift(TDatumShift const &) = default;
  // Through the base's own assignment, so that a method built on another
  // method copies the state that one caches as well.
  TDatumShift & operator=(TDatumShift const & other)
  {
    Base::operator=(other);
    return *this;
  }
};

class VELMORA_API CDatumShiftFactory
{
public:
  // A new shift of that type, parameters declared and unset; the caller owns it.
  // Code 50 for a value outside the table.
  static CDatumShift * CreateDatumShift(CDatumShift::Type type);
  static CDatumShift * CreateDatumShift(int type) { return CreateDatumShift(static_cast<CDatumShift::Type>(type)); }
  // A shift of the stored body's type over that body, shared, as the store
  // hands its shifts out; the caller owns it. Code 50 for an unknown type.
  static CDatumShift * CreateDatumShift(CDatumShiftDataDB const & body);
  // The parameter names of a type in the order the method declares them
  // (the collection itself keeps name order); empty out of range.
  static std::vector<CString> GetParameterNames(CDatumShift::Type type);
};

} // namespace Velmora::CT::DS
