#pragma once
// The coordinate transform: a source system, a destination system and the
// chain of datum shifts between their horizontal datums, with an optional
// adjustment of heights between their vertical references. A point goes down
// to its system's geodetic base, along the chain, and up into the other
// system.
//
// Plain points take the pair path, which makes no point object at all; only
// three-dimensional pairs and points kept as text go through geodetic points,
// and only there can heights be adjusted.
#include <velmora/foundation/Family.h>
#include <velmora/measures/CoordPointCollection.h>
#include <velmora/refsys/CoordSys.h>
#include <velmora/transforms/datumshifts/DatumShiftCollection.h>
#include <velmora/vertical/VerticalReference.h>

#include <memory>

namespace Velmora::CT {

class CCoordTransform;

class VELMORA_API CCoordTransformData : public virtual CSerializableData
{
public:
  using VertAdjustMode = CS::VR::CVerticalReference::VertAdjustMode;

  static constexpr EObjectType kObjectType = kObjectCoordTransform;
  static constexpr long kRootGroup = 1500;

  // For CDataObjectPtr: a new concrete body, a new concrete copy of any body.
  static CCoordTransformData * Create();
  static CCoordTransformData * Clone(CCoordTransformData const & source);

  ~CCoordTransformData() override;
  virtual CCoordTransformData & operator=(CCoordTransformData const & other);

  CS::CCoordSys * GetSrcCoordSys() const { return m_source; }
  CS::CCoordSys * GetDestCoordSys() const { return m_destination; }
  // Code 14 for null: a transform may start unbound, but is never unbound on purpose.
  void SetSrcCoordSys(CS::CCoordSys * system);
  void SetDestCoordSys(CS::CCoordSys * system);
  DS::CDatumShiftCollection const & GetDatumShifts() const { return m_shifts; }
  DS::CDatumShiftCollection & GetDatumShifts() { return m_shifts; }

  // In place, without heights: the hot loop.
  bool ConvertAhead(double & x, double & y) const;
  bool ConvertBack(double & x, double & y) const;
  bool ConvertAhead(ML::CCoordPoint const & in, ML::CCoordPoint & out) const;
  bool ConvertBack(ML::CCoordPoint const & in, ML::CCoordPoint & out) const;
  // The number of points written to `out`; a point that fails is left out.
  long ConvertAhead(ML::CCoordPointCollection const & in, ML::CCoordPointCollection & out) const;
  long ConvertBack(ML::CCoordPointCollection const & in, ML::CCoordPointCollection & out) const;

  // Resolves the references, modes and locations of the height adjustment.
  bool InitializeVerticalTransform();
  bool HasValidVerticalTransform() const { return m_verticalValid; }
  CS::VR::CVerticalReference const & GetImplicitReference() const { return m_implicit; }

  bool operator==(CCoordTransformData const & other) const;
  bool operator!=(CCoordTransformData const & other) const { return !(*this == other); }
  bool IsNearlyEqual(CCoordTransformData const & other, CString & why) const;
  bool IsFullyDefined(DB::CDataSource const * source) const override;

protected:
  CCoordTransformData();
  CCoordTransformData(CCoordTransformData const & other);

  // Whether the two numbers are all that need to travel.
  static bool PassCoordinatesOnly(ML::CCoordPoint const & in, ML::CCoordPoint const & out);
  // The horizontal datum on which the height models are evaluated; null when none is involved.
  static CS::CHorizontalDatum const * GetAdjustmentDatum(CS::VR::CVerticalReference const * from,
                                                     CS::VR::CVerticalReference const * to);
  // Where in the chain a point lies on `datum`: 0 at the start, i + 1 after shift i, -1 nowhere.
  long GetHeightAdjustmentLocation(CS::CHorizontalDatum const & datum, bool forward) const;
  CS::VR::CVerticalReference const * GetVerticalReferenceOf(CS::CCoordSys const & system) const;

  CS::CCoordSys * m_source = nullptr;
  CS::CCoordSys * m_destination = nullptr;
  DS::CDatumShiftCollection m_shifts;
  CS::VR::CVerticalReference m_implicit;
  CS::VR::CVerticalReference const * m_sourceReference = nullptr;
  CS::VR::CVerticalReference const * m_destinationReference = nullptr;
  CS::CHorizontalDatum const * m_adjustmentDatum = nullptr;
  VertAdjustMode m_aheadMode = CS::VR::CVerticalReference::kNoAdjustment;
  VertAdjustMode m_backMode = CS::VR::CVerticalReference::kNoAdjustment;
  long m_aheadLocation = -1;
  long m_backLocation = -1;
  bool m_verticalValid = false;

private:
  // The point path in either direction: the systems, modes and location swap.
  struct Direction;
  bool ConvertPair(double & x, double & y, Direction const & way) const;
  bool ConvertPoint(ML::CCoordPoint const & in, ML::CCoordPoint & out, Direction const & way) const;
  long ConvertCollection(ML::CCoordPointCollection const & in, ML::CCoordPointCollection & out,
                         Direction const & way) const;
  Direction Ahead() const;
  Direction Back() const;
  void CheckBound(char const * location) const;
  void ResetVertical();
};

// A transform built in code. Copies resolve their vertical set-up again,
// against their own chain.
class VELMORA_API CCoordTransformDataConcrete final : public CCoordTransformData, public CSerializableDataConcrete
{
public:
  CCoordTransformDataConcrete();
  CCoordTransformDataConcrete(CCoordTransformDataConcrete const & other);
  explicit CCoordTransformDataConcrete(CCoordTransformData const & other);
  CCoordTransformDataConcrete & operator=(CCoordTransformData const & other) override;
  CCoordTransformDataConcrete & operator=(CCoordTransformDataConcrete const & other);
};

// A transform as a data source keeps it: its two systems are its own, made
// by the store, and its chain is a read-only view of stored shifts.
class VELMORA_API CCoordTransformDataDB final : public CCoordTransformData, public CSerializableDataDB
{
public:
  CCoordTransformDataDB();
  CCoordTransformDataDB(CCoordTransformDataDB const & other);
  // How a store copies a caller's transform into itself.
  CCoordTransformDataDB(CCoordTransformData const & source, DB::CDataSource const * store);
  ~CCoordTransformDataDB() override;
  CCoordTransformDataDB & operator=(CCoordTransformData const & other) override;

  // Takes over the two systems; the base's pointers point at them.
  void SetSystems(std::unique_ptr<CS::CCoordSys> source, std::unique_ptr<CS::CCoordSys> destination);
  DS::CDatumShiftCollectionDataDB & GetStoredShifts() { return *m_storedShifts; }
  CString GetShiftNames() const { return m_storedShifts->GetShiftNames(); }

private:
  void PointAtStoredShifts();
  void ReferStoredObjects(CCoordTransformData const & source, DB::CDataSource const & store);

  std::unique_ptr<CS::CCoordSys> m_ownedSource;
  std::unique_ptr<CS::CCoordSys> m_ownedDestination;
  std::unique_ptr<DS::CDatumShiftCollectionDataDB> m_storedShifts;
};

class VELMORA_API CCoordTransform : public THandle<CCoordTransformData>
{
public:
  CCoordTransform() = default;
  CCoordTransform(CCoordTransform const &) = default;
  CCoordTransform & operator=(CCoordTransform const &) = default;
  // Null arguments are skipped, not refused: the transform stays unbound on that side.
  CCoordTransform(CS::CCoordSys * source, CS::CCoordSys * destination);
  ~CCoordTransform() override;

  CS::CCoordSys const * GetSrcCoordSys() const { return Body().GetSrcCoordSys(); }
  CS::CCoordSys * GetSrcCoordSys() { return Body().GetSrcCoordSys(); }
  CS::CCoordSys const * GetDestCoordSys() const { return Body().GetDestCoordSys(); }
  CS::CCoordSys * GetDestCoordSys() { return Body().GetDestCoordSys(); }
  void SetSrcCoordSys(CS::CCoordSys * system) { MutableBody().SetSrcCoordSys(system); }
  void SetDestCoordSys(CS::CCoordSys * system) { MutableBody().SetDestCoordSys(system); }
  DS::CDatumShiftCollection & GetDatumShifts() { return MutableBody().GetDatumShifts(); }
  DS::CDatumShiftCollection const & GetDatumShifts() const { return Body().GetDatumShifts(); }

  bool ConvertAhead(double & x, double & y) const { return Body().ConvertAhead(x, y); }
  bool ConvertBack(double & x, double & y) const { return Body().ConvertBack(x, y); }
  bool ConvertAhead(ML::CCoordPoint const & in, ML::CCoordPoint & out) const { return Body().ConvertAhead(in, out); }
  bool ConvertBack(ML::CCoordPoint const & in, ML::CCoordPoint & out) const { return Body().ConvertBack(in, out); }
  long ConvertAhead(ML::CCoordPointCollection const & in, ML::CCoordPointCollection & out) const
  {
    return Body().ConvertAhead(in, out);
  }
  long ConvertBack(ML::CCoordPointCollection const & in, ML::CCoordPointCollection & out) const
  {
    return Body().ConvertBack(in, out);
  }

  bool InitializeVerticalTransform() { return MutableBody().InitializeVerticalTransform(); }
  bool HasValidVerticalTransform() const { return Body().HasValidVerticalTransform(); }

  bool operator==(CCoordTransform const & other) const { return Body() == other.Body(); }
  bool operator!=(CCoordTransform const & other) const { return !(*this == other); }
  bool IsNearlyEqual(CCoordTransform const & other, CString & why) const
  {
    return Body().IsNearlyEqual(other.Body(), why);
  }
  bool IsNearlyEqual(CCoordTransform const & other) const;

  // A private body, then both systems and the chain; nothing refers to a store after it.
  void Congeal() override;

private:
  friend class DB::CDataSource;
  explicit CCoordTransform(CCoordTransformData const & body) : THandle(body) {}
};

} // namespace Velmora::CT
