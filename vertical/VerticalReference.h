#pragma once
// A vertical reference says what a height means: above the ellipsoid, or
// above a vertical datum tied to the ellipsoid by a height model. It owns
// private copies of its optional datum and model; with neither, heights are
// ellipsoidal.
#include <velmora/vertical/HeightModel.h>
#include <velmora/vertical/VerticalDatum.h>

#include <memory>

namespace Velmora::CS::VR {

class VELMORA_API CVerticalReferenceData : public virtual CSerializableData,
                                           public TBodyFactory<CVerticalReferenceData>
{
public:
  static constexpr EObjectType kObjectType = kObjectVerticalReference;
  static constexpr long kRootGroup = 900;

  CVerticalReferenceData() = default;
  CVerticalReferenceData(CVerticalReferenceData const & other);
  ~CVerticalReferenceData() override;
  virtual CVerticalReferenceData & operator=(CVerticalReferenceData const & other);

  CVerticalDatum const * GetVerticalDatum() const { return m_verticalDatum.get(); }
  CVerticalDatum * GetVerticalDatum() { return m_verticalDatum.get(); }
  CHeightModel const * GetHeightModel() const { return m_heightModel.get(); }
  CHeightModel * GetHeightModel() { return m_heightModel.get(); }
  // Keep a private copy, made by the factory and assigned; the held object
  // listens to its own parameters and is prepared at once. Null lets go.
  void SetVerticalDatum(CVerticalDatum const * datum);
  void SetHeightModel(CHeightModel const * model);

  // Identifiers, then datums and models: both absent, or both present and nearly equal.
  bool IsNearlyEqual(CVerticalReferenceData const & other, CString & why) const;
  bool IsNearlyEqual(CVerticalReferenceData const & other) const;
  bool operator==(CVerticalReferenceData const & other) const;
  // A datum and a model, where held, need a "VM" code (25) and must be in the source (26).
  bool IsFullyDefined(DB::CDataSource const * source) const override;
  void CongealInner();
  bool ReadStoredValue(CString const &, TWLVariant &) { return false; }

private:
  std::unique_ptr<CVerticalDatum> m_verticalDatum;
  std::unique_ptr<CHeightModel> m_heightModel;
};

using CVerticalReferenceDataConcrete = TDataConcrete<CVerticalReferenceData>;

// The stored body. The datum and model may be defined later in the data
// file than the reference: until the end of the file it keeps the index of
// each pending reference (-1 for none), and the store then fills them in.
class VELMORA_API CVerticalReferenceDataDB final : public CVerticalReferenceData, public CSerializableDataDB
{
public:
  CVerticalReferenceDataDB();
  // How a store copies a caller's reference into itself.
  CVerticalReferenceDataDB(CVerticalReferenceData const & source, DB::CDataSource const * store);

  long GetVerticalDatumIndex() const { return m_verticalDatumIndex; }
  void SetVerticalDatumIndex(long index) { m_verticalDatumIndex = index; }
  long GetHeightModelIndex() const { return m_heightModelIndex; }
  void SetHeightModelIndex(long index) { m_heightModelIndex = index; }

  void SetValue(CString const & key, TWLVariant & value) override { CSerializableDataDB::SetValue(key, value); }

private:
  long m_verticalDatumIndex = -1;
  long m_heightModelIndex = -1;
};

class VELMORA_API CVerticalReference : public THandle<CVerticalReferenceData>
{
public:
  // How a height goes from one reference to another.
  enum VertAdjustMode : int {
    kNoAdjustment = 0,      // nothing to do, or undefined
    kInvalidAdjustment = 1, // no way between the two
    kEllipsoidToDatum = 2,  // onto a datum with a height model
    kDatumToEllipsoid = 3,  // from a datum with a height model
    kDatumToDatum = 4,      // through the ellipsoid, from one datum and model to another
    kNGVD29ToNAVD88 = 5,    // between the two North American datums, without a model
  };

  CVerticalReference() = default;
  CVerticalReference(CVerticalReference const &) = default;
  CVerticalReference & operator=(CVerticalReference const &) = default;
  // Private copies of either, where given.
  CVerticalReference(CVerticalDatum const * datum, CHeightModel const * model);
  ~CVerticalReference() override;

  CVerticalDatum const * GetVerticalDatum() const { return Body().GetVerticalDatum(); }
  CVerticalDatum * GetVerticalDatum() { return MutableBody().GetVerticalDatum(); }
  CHeightModel const * GetHeightModel() const { return Body().GetHeightModel(); }
  CHeightModel * GetHeightModel() { return MutableBody().GetHeightModel(); }
  void SetVerticalDatum(CVerticalDatum const * datum) { MutableBody().SetVerticalDatum(datum); }
  void SetHeightModel(CHeightModel const * model) { MutableBody().SetHeightModel(model); }

  bool IsNearlyEqual(CVerticalReference const & other, CString & why) const
  {
    return Body().IsNearlyEqual(other.Body(), why);
  }
  bool IsNearlyEqual(CVerticalReference const & other) const { return Body().IsNearlyEqual(other.Body()); }
  bool operator==(CVerticalReference const & other) const { return Body() == other.Body(); }
  bool operator!=(CVerticalReference const & other) const { return !(*this == other); }
  // Also the datum and the model, where held.
  void Congeal() override;

  // How to take a height from `from` to `to`.
  static VertAdjustMode GetConversionMode(CVerticalReference const * from, CVerticalReference const * to);
  // Applies `mode` to the height of `point`, asking the datums and models at
  // its longitude and latitude; what they raise passes through. False only
  // for the invalid mode, which leaves a height of 0. A mode that needs a
  // reference, datum or model that is missing raises code 34 or 32.
  static bool AdjustHeight(CVerticalReference const * from, CVerticalReference const * to, VertAdjustMode mode,
                           ML::CGeodeticPoint & point);

private:
  friend class DB::CDataSource;
  explicit CVerticalReference(CVerticalReferenceData const & body) : THandle(body) {}
};

} // namespace Velmora::CS::VR
