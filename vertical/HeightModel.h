#pragma once
// Height models: the surface (a geoid) that ties heights on a vertical
// datum to the ellipsoid, defined on a horizontal datum. This header has the
// abstract model, its bodies and the factory; the types are in HeightModels.h.
#include <velmora/foundation/ParameterCollection.h>
#include <velmora/foundation/ParameterizedHandle.h>
#include <velmora/measures/Envelope.h>
#include <velmora/refsys/HorizontalDatum.h>

#include <memory>

namespace Velmora::CS::VR {

class VELMORA_API CHeightModelData : public virtual CSerializableData, public TBodyFactory<CHeightModelData>
{
public:
  static constexpr EObjectType kObjectType = kObjectHeightModel;
  static constexpr long kRootGroup = 960;

  CHeightModelData() = default;
  CHeightModelData(CHeightModelData const &) = default;
  virtual CHeightModelData & operator=(CHeightModelData const & other);

  ML::CEnvelope const & GetEnvelope() const { return m_envelope; }
  ML::CEnvelope & GetEnvelope() { return m_envelope; }
  void SetEnvelope(ML::CEnvelope const & envelope) { m_envelope = envelope; }
  CHorizontalDatum const & GetHorizontalDatum() const { return m_horizontalDatum; }
  CHorizontalDatum & GetHorizontalDatum() { return m_horizontalDatum; }
  void SetHorizontalDatum(CHorizontalDatum const & datum) { m_horizontalDatum = datum; }
  CParameterCollection const & GetParameters() const { return m_parameters; }
  CParameterCollection & GetParameters() { return m_parameters; }
  CString const & GetClassType() const { return m_classType; }
  void SetClassType(CString const & type) { m_classType = type; }

  // Identifiers, class types, horizontal datums, parameters.
  bool IsNearlyEqual(CHeightModelData const & other, CString & why) const;
  bool IsNearlyEqual(CHeightModelData const & other) const;
  bool operator==(CHeightModelData const & other) const;
  // A class type (code 53), and an envelope and datum the source holds (25, 26).
  bool IsFullyDefined(DB::CDataSource const * source) const override;
  void CongealInner();
  // The inner objects and parameters are attached by the reader, not by value.
  bool ReadStoredValue(CString const &, TWLVariant &) { return false; }

protected:
  ML::CEnvelope m_envelope;
  CHorizontalDatum m_horizontalDatum;
  CParameterCollection m_parameters;
  CString m_classType;
};

using CHeightModelDataConcrete = TDataConcrete<CHeightModelData>;

// The stored body: its parameters are a read-only image of the data file.
class VELMORA_API CHeightModelDataDB final : public CHeightModelData, public CSerializableDataDB
{
public:
  CHeightModelDataDB();
  // How a store copies a caller's model into itself.
  CHeightModelDataDB(CHeightModelData const & source, DB::CDataSource const * store);
  ~CHeightModelDataDB() override;

  // The type of a class type text, exactly as spelt; -1 for any other text.
  static int GetHeightModelType(CString const & classType);
  // The reader's class attribute: the type of that name, or -1 and no change.
  int SetHeightModelType(CString const & classType);
  int GetModelType() const { return m_type; }
  // The parameters the reader fills.
  CParameterCollectionDataDB & GetStoredParameters() { return *m_stored; }

  void SetValue(CString const & key, TWLVariant & value) override { CSerializableDataDB::SetValue(key, value); }

private:
  int m_type = -1;
  std::unique_ptr<CParameterCollectionDataDB> m_stored;
};

} // namespace Velmora::CS::VR

extern template class VELMORA_API Velmora::TParameterizedHandle<Velmora::CS::VR::CHeightModelData>;

namespace Velmora::CS::VR {

class VELMORA_API CHeightModel : public TParameterizedHandle<CHeightModelData>
{
public:
  // One value per kind of model; the numbers are stable.
  enum Type : int {
    kGEOID96 = 0,
    kGEOID99 = 1,
    kGEOID03 = 2,
    kAUSGEOID98 = 3,
    kOSGM02 = 4,
    kEGM96 = 5,
    kGEOCOL04 = 6,
    kGSIGEO2000 = 7,
    kMGCV04 = 8,
    kIGG2005 = 9,
    kIBERGEO95 = 10,
    kTypeCount
  };

  // The class type text of a type; empty for a value out of range.
  static CString TypeName(int type);

  ~CHeightModel() override;
  // Takes the other's body; whatever was prepared from files is dropped.
  virtual CHeightModel & operator=(CHeightModel const & other);
  virtual Type GetType() const = 0;
  // Height of the model's surface above the ellipsoid at the point, in
  // metres; 0.0 while a parameter is unset.
  virtual double Interpolate(ML::CGeodeticPoint const & point) const = 0;
  void OnChange(unsigned short const *) override {}

  ML::CEnvelope const & GetEnvelope() const { return Body().GetEnvelope(); }
  ML::CEnvelope & GetEnvelope() { return MutableBody().GetEnvelope(); }
  void SetEnvelope(ML::CEnvelope const & envelope) { MutableBody().SetEnvelope(envelope); }
  CHorizontalDatum const & GetHorizontalDatum() const { return Body().GetHorizontalDatum(); }
  CHorizontalDatum & GetHorizontalDatum() { return MutableBody().GetHorizontalDatum(); }
  void SetHorizontalDatum(CHorizontalDatum const & datum) { MutableBody().SetHorizontalDatum(datum); }
  using TParameterizedHandle::GetParameters;
  CString const & GetTypeName() const { return Body().GetClassType(); }

  bool IsNearlyEqual(CHeightModel const & other, CString & why) const { return Body().IsNearlyEqual(other.Body(), why); }
  bool IsNearlyEqual(CHeightModel const & other) const { return Body().IsNearlyEqual(other.Body()); }
  bool operator==(CHeightModel const & other) const { return Body() == other.Body(); }
  bool operator!=(CHeightModel const & other) const { return !(*this == other); }

protected:
  // Sets the class type and registers the type's parameters, unset.
  explicit CHeightModel(Type type);
  CHeightModel(CHeightModel const & other);

private:
  friend class DB::CDataSource;
  // A stored body for a model the factory made by its class type.
  void AttachBody(CHeightModelData const & body) { AttachStored(body); }
};

class VELMORA_API CHeightModelFactory
{
public:
  // A new model of that type; the caller owns it. Code 50 outside the table.
  static CHeightModel * CreateHeightModel(CHeightModel::Type type);
  static CHeightModel * CreateHeightModel(int type) { return CreateHeightModel(static_cast<CHeightModel::Type>(type)); }
};

} // namespace Velmora::CS::VR
