#pragma once
// The ordered chain of datum shifts that leads from a transform's source
// datum to its destination datum. Forward walks it first to last with each
// shift's ShiftForward, back walks it last to first with ShiftBack.
//
// Two bodies: a concrete one that owns its shifts, and a stored one, a
// read-only view of references into a data source that makes a new shift
// object for every item asked for (the caller deletes those: IsConcrete
// tells which kind of body answered).
#include <velmora/foundation/CDataObjectPtr.h>
#include <velmora/transforms/datumshifts/DatumShift.h>
#include <velmora/vertical/VerticalReference.h>

#include <deque>
#include <memory>
#include <vector>

namespace Velmora::CT::DS {

// The height adjustment a chain makes on its way: after the shift numbered
// `location` (1 is right after the first item, by index in both directions).
struct CChainHeightAdjustment
{
  CS::VR::CVerticalReference const * from = nullptr;
  CS::VR::CVerticalReference const * to = nullptr;
  CS::VR::CVerticalReference::VertAdjustMode mode = CS::VR::CVerticalReference::kNoAdjustment;
  long location = -1;
};

class VELMORA_API CDatumShiftCollectionData : public CDataObject
{
public:
  // For CDataObjectPtr: a new empty concrete body, a new concrete copy of any body.
  static CDatumShiftCollectionData * Create();
  static CDatumShiftCollectionData * Clone(CDatumShiftCollectionData const & source);

  // 1 for a body that owns its items, 0 for a stored view.
  virtual int IsConcrete() const = 0;
  ~CDatumShiftCollectionData() override;
  virtual CDatumShiftCollectionData & operator=(CDatumShiftCollectionData const & other) = 0;
  virtual void Clear() = 0;
  virtual long Count() const = 0;
  // A new item of the argument's type, assigned from it; the cursor goes to it.
  virtual CDatumShift * AddFront(CDatumShift const & shift) = 0;
  // A new item from the factory; the cursor goes to it.
  virtual CDatumShift * AddFront(CDatumShift::Type type) = 0;
  // Takes over a shift of any class as it is. A copy of the collection
  // rebuilds each item by its type, as AddBack(CDatumShift const &) does.
  virtual CDatumShift * AddFront(std::unique_ptr<CDatumShift> shift) = 0;
  virtual CDatumShift * AddBack(CDatumShift const & shift) = 0;
  virtual CDatumShift * AddBack(CDatumShift::Type type) = 0;
  virtual CDatumShift * AddBack(std::unique_ptr<CDatumShift> shift) = 0;
  // False on an empty collection.
  virtual bool RemoveFront() = 0;
  virtual bool RemoveBack() = 0;
  // The cursor moves and the item under it is given; false (and null) on an
  // empty collection, past the back or before the front, with the cursor left.
  virtual bool GetFront(CDatumShift ** shift) const = 0;
  virtual bool GetBack(CDatumShift ** shift) const = 0;
  virtual bool GetNext(CDatumShift ** shift) const = 0;
  virtual bool GetPrev(CDatumShift ** shift) const = 0;
  // Code 48 outside 0 to Count() - 1.
  virtual bool GetItem(long index, CDatumShift ** shift) const = 0;
  // Through every shift in order; a shift's failure passes through unchanged.
  // With the height adjusted from `from` to `to` right after shift `location`.
  virtual bool ShiftForward(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out,
                            CS::VR::CVerticalReference const * from, CS::VR::CVerticalReference const * to,
                            CS::VR::CVerticalReference::VertAdjustMode mode, long location) const = 0;
  virtual bool ShiftForward(double & lon, double & lat) const = 0;
  virtual bool ShiftForward(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const = 0;
  virtual bool ShiftBack(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out,
                         CS::VR::CVerticalReference const * from, CS::VR::CVerticalReference const * to,
                         CS::VR::CVerticalReference::VertAdjustMode mode, long location) const = 0;
  virtual bool ShiftBack(double & lon, double & lat) const = 0;
  virtual bool ShiftBack(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const = 0;
  virtual void Congeal() = 0;

  // Every item must carry a "VM" code (code 25) that `source` knows (code 26).
  bool IsFullyDefined(DB::CDataSource const * source) const;
  // Same count, then item by item.
  bool operator==(CDatumShiftCollectionData const & other) const;
  bool operator!=(CDatumShiftCollectionData const & other) const { return !(*this == other); }

protected:
  CDatumShiftCollectionData() = default;
  CDatumShiftCollectionData(CDatumShiftCollectionData const &) = default;
};

class VELMORA_API CDatumShiftCollectionDataConcrete final : public CDatumShiftCollectionData
{
public:
  CDatumShiftCollectionDataConcrete() = default;
  CDatumShiftCollectionDataConcrete(CDatumShiftCollectionDataConcrete const & other);
  // Copies of the items of any body: a stored view's items are kept as made.
  explicit CDatumShiftCollectionDataConcrete(CDatumShiftCollectionData const & other);
  ~CDatumShiftCollectionDataConcrete() override;

  EDataObjectType GetDataObjectType() const override { return kEDataObjectConcrete; }
  int IsConcrete() const override { return 1; }
  CDatumShiftCollectionDataConcrete & operator=(CDatumShiftCollectionData const & other) override;
  CDatumShiftCollectionDataConcrete & operator=(CDatumShiftCollectionDataConcrete const & other);
  void Clear() override;
  long Count() const override { return static_cast<long>(m_items.size()); }
  CDatumShift * AddFront(CDatumShift const & shift) override;
  CDatumShift * AddFront(CDatumShift::Type type) override;
  CDatumShift * AddFront(std::unique_ptr<CDatumShift> shift) override;
  CDatumShift * AddBack(CDatumShift const & shift) override;
  CDatumShift * AddBack(CDatumShift::Type type) override;
  CDatumShift * AddBack(std::unique_ptr<CDatumShift> shift) override;
  bool RemoveFront() override;
  bool RemoveBack() override;
  bool GetFront(CDatumShift ** shift) const override;
  bool GetBack(CDatumShift ** shift) const override;
  bool GetNext(CDatumShift ** shift) const override;
  bool GetPrev(CDatumShift ** shift) const override;
  bool GetItem(long index, CDatumShift ** shift) const override;
  bool ShiftForward(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out, CS::VR::CVerticalReference const * from,
                    CS::VR::CVerticalReference const * to, CS::VR::CVerticalReference::VertAdjustMode mode,
                    long location) const override;
  bool ShiftForward(double & lon, double & lat) const override;
  bool ShiftForward(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftBack(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out, CS::VR::CVerticalReference const * from,
                 CS::VR::CVerticalReference const * to, CS::VR::CVerticalReference::VertAdjustMode mode,
                 long location) const override;
  bool ShiftBack(double & lon, double & lat) const override;
  bool ShiftBack(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  // Every item made private, so that the chain outlives its data source.
  void Congeal() override;

private:
  void CopyItemsOf(CDatumShiftCollectionData const & other);
  // One walk for all four point forms; a null adjustment adjusts nothing.
  void Walk(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out, bool forward,
            CChainHeightAdjustment const * adjustment) const;
  // Gives the item at the cursor, or false and null when the cursor is off the items.
  bool AtCursor(long cursor, CDatumShift ** shift) const;

  std::deque<std::unique_ptr<CDatumShift>> m_items;
  // Index of the item last given or added; -1 before the front.
  mutable long m_cursor = -1;
};

// A stored transform's list of shifts: references into its data source, each
// with the flag the transform uses it with.
class VELMORA_API CDatumShiftCollectionDataDB final : public CDatumShiftCollectionData
{
public:
  struct dbDatumShiftRef
  {
    bool reversed = false;
    CDatumShiftDataDB const * shift = nullptr;
  };

  CDatumShiftCollectionDataDB() = default;
  CDatumShiftCollectionDataDB(CDatumShiftCollectionDataDB const & other) = default;
  ~CDatumShiftCollectionDataDB() override;

  EDataObjectType GetDataObjectType() const override { return kEDataObjectDB; }
  int IsConcrete() const override { return 0; }
  // References are replaced by the other's, if it is a stored view too.
  CDatumShiftCollectionDataDB & operator=(CDatumShiftCollectionData const & other) override;
  CDatumShiftCollectionDataDB & operator=(CDatumShiftCollectionDataDB const & other);

  // The reader's side: one reference more, at the back.
  void AddReference(CDatumShiftDataDB const & shift, bool reversed);
  std::vector<dbDatumShiftRef> const & GetReferences() const { return m_refs; }
  // The names of the referenced shifts in order, joined by ", ".
  CString GetShiftNames() const;

  // Read-only: what would change the list does nothing.
  void Clear() override {}
  long Count() const override { return static_cast<long>(m_refs.size()); }
  CDatumShift * AddFront(CDatumShift const &) override { return nullptr; }
  CDatumShift * AddFront(CDatumShift::Type) override { return nullptr; }
  CDatumShift * AddFront(std::unique_ptr<CDatumShift>) override { return nullptr; }
  CDatumShift * AddBack(CDatumShift const &) override { return nullptr; }
  CDatumShift * AddBack(CDatumShift::Type) override { return nullptr; }
  CDatumShift * AddBack(std::unique_ptr<CDatumShift>) override { return nullptr; }
  bool RemoveFront() override { return false; }
  bool RemoveBack() override { return false; }
  // A new shift over the referenced body, with the reference's flag; the caller owns it.
  bool GetFront(CDatumShift ** shift) const override;
  bool GetBack(CDatumShift ** shift) const override;
  bool GetNext(CDatumShift ** shift) const override;
  bool GetPrev(CDatumShift ** shift) const override;
  bool GetItem(long index, CDatumShift ** shift) const override;
  // A stored view converts nothing: a transform makes its body concrete first.
  bool ShiftForward(ML::CGeodeticPoint const &, ML::CGeodeticPoint &, CS::VR::CVerticalReference const *,
                    CS::VR::CVerticalReference const *, CS::VR::CVerticalReference::VertAdjustMode,
                    long) const override
  {
    return false;
  }
  bool ShiftForward(double &, double &) const override { return false; }
  bool ShiftForward(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const override { return false; }
  bool ShiftBack(ML::CGeodeticPoint const &, ML::CGeodeticPoint &, CS::VR::CVerticalReference const *,
                 CS::VR::CVerticalReference const *, CS::VR::CVerticalReference::VertAdjustMode, long) const override
  {
    return false;
  }
  bool ShiftBack(double &, double &) const override { return false; }
  bool ShiftBack(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const override { return false; }
  void Congeal() override {}

private:
  bool AtCursor(long cursor, CDatumShift ** shift) const;
  CDatumShift * Make(dbDatumShiftRef const & ref) const;

  std::vector<dbDatumShiftRef> m_refs;
  mutable long m_cursor = -1;
};

// The handle. Reading and shifting go through the const body, so a stored
// view stays shared; every change goes through a private concrete body.
class VELMORA_API CDatumShiftCollection
{
public:
  CDatumShiftCollection() = default;
  CDatumShiftCollection(CDatumShiftCollection const & other) = default;
  // Over a given body: a stored one is shared, an owned one copied.
  explicit CDatumShiftCollection(CDatumShiftCollectionData const & body) : m_data(&body) {}
  CDatumShiftCollection & operator=(CDatumShiftCollection const & other) = default;
  ~CDatumShiftCollection();

  CDatumShiftCollectionData const & GetData() const { return *m_data; }
  CDatumShiftCollectionData & GetData() { return *m_data; }
  // Whether the items given out belong to the collection (1) or to the caller (0).
  int IsConcrete() const { return m_data->IsConcrete(); }

  void Clear() { m_data->Clear(); }
  long Count() const { return m_data->Count(); }
  CDatumShift * AddFront(CDatumShift const & shift) { return m_data->AddFront(shift); }
  CDatumShift * AddFront(CDatumShift::Type type) { return m_data->AddFront(type); }
  CDatumShift * AddFront(std::unique_ptr<CDatumShift> shift) { return m_data->AddFront(std::move(shift)); }
  CDatumShift * AddBack(CDatumShift const & shift) { return m_data->AddBack(shift); }
  CDatumShift * AddBack(CDatumShift::Type type) { return m_data->AddBack(type); }
  CDatumShift * AddBack(std::unique_ptr<CDatumShift> shift) { return m_data->AddBack(std::move(shift)); }
  bool RemoveFront() { return m_data->RemoveFront(); }
  bool RemoveBack() { return m_data->RemoveBack(); }
  bool GetFront(CDatumShift ** shift) const { return m_data->GetFront(shift); }
  bool GetBack(CDatumShift ** shift) const { return m_data->GetBack(shift); }
  bool GetNext(CDatumShift ** shift) const { return m_data->GetNext(shift); }
  bool GetPrev(CDatumShift ** shift) const { return m_data->GetPrev(shift); }
  bool GetItem(long index, CDatumShift ** shift) const { return m_data->GetItem(index, shift); }
  bool ShiftForward(double & lon, double & lat) const { return m_data->ShiftForward(lon, lat); }
  bool ShiftForward(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
  {
    return m_data->ShiftForward(in, out);
  }
  bool ShiftBack(double & lon, double & lat) const { return m_data->ShiftBack(lon, lat); }
  bool ShiftBack(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const { return m_data->ShiftBack(in, out); }
  bool ShiftForward(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out, CS::VR::CVerticalReference const * from,
                    CS::VR::CVerticalReference const * to, CS::VR::CVerticalReference::VertAdjustMode mode,
                    long location) const
  {
    return m_data->ShiftForward(in, out, from, to, mode, location);
  }
  bool ShiftBack(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out, CS::VR::CVerticalReference const * from,
                 CS::VR::CVerticalReference const * to, CS::VR::CVerticalReference::VertAdjustMode mode,
                 long location) const
  {
    return m_data->ShiftBack(in, out, from, to, mode, location);
  }
  void Congeal() { m_data->Congeal(); }
  bool IsFullyDefined(DB::CDataSource const * source) const { return m_data->IsFullyDefined(source); }

  bool operator==(CDatumShiftCollection const & other) const { return *m_data == *other.m_data; }
  bool operator!=(CDatumShiftCollection const & other) const { return !(*this == other); }

private:
  CDataObjectPtr<CDatumShiftCollectionData> m_data;
};

} // namespace Velmora::CT::DS
