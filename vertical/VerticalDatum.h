#pragma once
// Vertical datums: what a height is counted from. The abstract datum, its
// bodies, the three types and the factory.
#include <velmora/foundation/ParameterCollection.h>
#include <velmora/foundation/ParameterizedHandle.h>
#include <velmora/measures/Envelope.h>
#include <velmora/vertical/NGSGriddedData.h>

#include <memory>

namespace Velmora::CS::VR {

class VELMORA_API CVerticalDatumData : public virtual CSerializableData, public TBodyFactory<CVerticalDatumData>
{
public:
  static constexpr EObjectType kObjectType = kObjectVerticalDatum;
  static constexpr long kRootGroup = 930;

  CVerticalDatumData() = default;
  CVerticalDatumData(CVerticalDatumData const &) = default;
  virtual CVerticalDatumData & operator=(CVerticalDatumData const & other);

  ML::CEnvelope const & GetEnvelope() const { return m_envelope; }
  ML::CEnvelope & GetEnvelope() { return m_envelope; }
  void SetEnvelope(ML::CEnvelope const & envelope) { m_envelope = envelope; }
  CString const & GetClassType() const { return m_classType; }
  void SetClassType(CString const & type) { m_classType = type; }
  CParameterCollection const & GetParameters() const { return m_parameters; }
  CParameterCollection & GetParameters() { return m_parameters; }

  // Identifiers, class types, parameters.
  bool IsNearlyEqual(CVerticalDatumData const & other, CString & why) const;
  bool IsNearlyEqual(CVerticalDatumData const & other) const;
  bool operator==(CVerticalDatumData const & other) const;
  // A class type (code 53), and an envelope the source holds (25, 26).
  bool IsFullyDefined(DB::CDataSource const * source) const override;
  void CongealInner();
  bool ReadStoredValue(CString const &, TWLVariant &) { return false; }

protected:
  ML::CEnvelope m_envelope;
  CString m_classType;
  CParameterCollection m_parameters;
};

using CVerticalDatumDataConcrete = TDataConcrete<CVerticalDatumData>;

// The stored body: its parameters are a read-only image of the data file.
class VELMORA_API CVerticalDatumDataDB final : public CVerticalDatumData, public CSerializableDataDB
{
public:
  CVerticalDatumDataDB();
  // How a store copies a caller's datum into itself.
  CVerticalDatumDataDB(CVerticalDatumData const & source, DB::CDataSource const * store);
  ~CVerticalDatumDataDB() override;

  // The type of a class type text, exactly as spelt; -1 for any other text.
  static int GetVerticalDatumType(CString const & classType);
  // The reader's class attribute: the type of that name, or -1 and no change.
  int SetVerticalDatumType(CString const & classType);
  int GetDatumType() const { return m_type; }
  CParameterCollectionDataDB & GetStoredParameters() { return *m_stored; }

  void SetValue(CString const & key, TWLVariant & value) override { CSerializableDataDB::SetValue(key, value); }

private:
  int m_type = -1;
  std::unique_ptr<CParameterCollectionDataDB> m_stored;
};

} // namespace Velmora::CS::VR

extern template class VELMORA_API Velmora::TParameterizedHandle<Velmora::CS::VR::CVerticalDatumData>;

namespace Velmora::CS::VR {

class VELMORA_API CVerticalDatum : public TParameterizedHandle<CVerticalDatumData>
{
public:
  // One value per kind of datum; the numbers are stable.
  enum Type : int {
    kNGVD29 = 0,
    kNAVD88 = 1,
    kGeneric = 2,
    kTypeCount
  };

  // The class type text of a type; empty for a value out of range.
  static CString TypeName(int type);

  ~CVerticalDatum() override;
  // Takes the other's body.
  virtual CVerticalDatum & operator=(CVerticalDatum const & other);
  virtual Type GetType() const = 0;
  // What the datum adds at the point, in metres; see each type.
  virtual double Interpolate(ML::CGeodeticPoint const & point) const = 0;
  void OnChange(unsigned short const *) override {}

  ML::CEnvelope const & GetEnvelope() const { return Body().GetEnvelope(); }
  ML::CEnvelope & GetEnvelope() { return MutableBody().GetEnvelope(); }
  void SetEnvelope(ML::CEnvelope const & envelope) { MutableBody().SetEnvelope(envelope); }
  using TParameterizedHandle::GetParameters;
  CString const & GetTypeName() const { return Body().GetClassType(); }

  bool IsNearlyEqual(CVerticalDatum const & other, CString & why) const { return Body().IsNearlyEqual(other.Body(), why); }
  bool IsNearlyEqual(CVerticalDatum const & other) const { return Body().IsNearlyEqual(other.Body()); }
  bool operator==(CVerticalDatum const & other) const { return Body() == other.Body(); }
  bool operator!=(CVerticalDatum const & other) const { return !(*this == other); }

protected:
  // Sets the class type and registers the type's parameters, unset.
  explicit CVerticalDatum(Type type);
  CVerticalDatum(CVerticalDatum const & other);

private:
  friend class DB::CDataSource;
  void AttachBody(CVerticalDatumData const & body) { AttachStored(body); }
};

// Gives a class its type.
template <class Base, CVerticalDatum::Type TypeValue>
class TVerticalDatum : public Base
{
public:
  static constexpr CVerticalDatum::Type kType = TypeValue;

  CVerticalDatum::Type GetType() const override { return TypeValue; }
  using Base::operator=;

protected:
  TVerticalDatum() : Base(TypeValue) {}
  TVerticalDatum(TVerticalDatum const &) = default;
  TVerticalDatum & operator=(TVerticalDatum const &) = default;
};

// The North American datums, tied to each other by the VERTCON grids
// ("path" a folder or .par list, "extension" of the files), titled NGS files
// of millimetres. Interpolate gives NAVD88 minus NGVD29 at the point in
// metres, bilinear in the cell and cut to the whole millimetre; 0.0 while a
// parameter is unset.
class VELMORA_API CVertCon94 : public CVerticalDatum, public CNGSGriddedData
{
public:
  double Interpolate(ML::CGeodeticPoint const & point) const override;
  // A change of "path" or "extension" lets the files go.
  void OnChange(unsigned short const * name) override;

protected:
  explicit CVertCon94(Type type) : CVerticalDatum(type), CNGSGriddedData(kTitled) {}
  CVertCon94(CVertCon94 const &) = default;
  CVertCon94 & operator=(CVertCon94 const &) = default;
};

class VELMORA_API CNGVD29 final : public TVerticalDatum<CVertCon94, CVerticalDatum::kNGVD29>
{
public:
  CNGVD29() = default;
};

class VELMORA_API CNAVD88 final : public TVerticalDatum<CVertCon94, CVerticalDatum::kNAVD88>
{
public:
  CNAVD88() = default;
};

// A datum tied to nothing: it adds 0 inside its envelope and raises code 43 outside.
class VELMORA_API CGenericVerticalDatum final : public TVerticalDatum<CVerticalDatum, CVerticalDatum::kGeneric>
{
public:
  CGenericVerticalDatum() = default;
  double Interpolate(ML::CGeodeticPoint const & point) const override;
};

class VELMORA_API CVerticalDatumFactory
{
public:
  // A new datum of that type; the caller owns it. Code 50 outside the table.
  static CVerticalDatum * CreateVerticalDatum(CVerticalDatum::Type type);
  static CVerticalDatum * CreateVerticalDatum(int type)
  {
    return CreateVerticalDatum(static_cast<CVerticalDatum::Type>(type));
  }
};

} // namespace Velmora::CS::VR
