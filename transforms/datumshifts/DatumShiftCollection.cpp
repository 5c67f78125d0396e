#include <velmora/transforms/datumshifts/DatumShiftCollection.h>

#include <velmora/datasource/SourceLookup_p.h>
#include <velmora/foundation/VelmoraException.h>

namespace Velmora::CT::DS {

using EX::CVelmoraException;

namespace {

// An item that a stored view made for the caller is deleted after use; an
// owned one stays with its collection.
class CItem
{
public:
  CItem(CDatumShiftCollectionData const & from, long index) : m_owned(from.IsConcrete() == 0)
  {
    from.GetItem(index, &m_shift);
  }
  ~CItem()
  {
    if (m_owned)
      delete m_shift;
  }
  CItem(CItem const &) = delete;
  CItem & operator=(CItem const &) = delete;
  CDatumShift const & operator*() const { return *m_shift; }

private:
  CDatumShift * m_shift = nullptr;
  bool m_owned;
};

bool Give(CDatumShift * item, CDatumShift ** shift)
{
  if (shift)
    *shift = item;
  return item != nullptr;
}

// Two values, or three when both points have a height.
void CopyInternals(ML::CGeodeticPoint const & from, ML::CGeodeticPoint & to)
{
  if (from.GetDimensions() > 2 && to.GetDimensions() > 2) {
    double lon, lat, height;
    from.GetInternals(lon, lat, height);
    to.SetInternals(lon, lat, height);
  } else {
    double lon, lat;
    from.GetInternals(lon, lat);
    to.SetInternals(lon, lat);
  }
}

} // namespace

// Shared rules

CDatumShiftCollectionData * CDatumShiftCollectionData::Create() { return new CDatumShiftCollectionDataConcrete(); }

CDatumShiftCollectionData * CDatumShiftCollectionData::Clone(CDatumShiftCollectionData const & source)
{
  return new CDatumShiftCollectionDataConcrete(source);
}

CDatumShiftCollectionData::~CDatumShiftCollectionData() = default;

bool CDatumShiftCollectionData::IsFullyDefined(DB::CDataSource const * source) const
{
  char const * const location = "CDatumShiftCollectionData::IsFullyDefined";
  for (long i = 0; i < Count(); ++i) {
    CItem const item(*this, i);
    if (!(*item).GetIdentifiers().Exists("VM"))
      throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, "DatumShift");
    if (!DB::detail::SourceHolds(source, *item))
      throw CVelmoraException(CVelmoraException::kReferenceNotFound, location, "Datum Shift");
  }
  return true;
}

bool CDatumShiftCollectionData::operator==(CDatumShiftCollectionData const & other) const
{
  if (&other == this)
    return true;
  if (Count() != other.Count())
    return false;
  for (long i = 0; i < Count(); ++i) {
    CItem const mine(*this, i);
    CItem const theirs(other, i);
    if (*mine != *theirs)
      return false;
  }
  return true;
}

// Owned chain

CDatumShiftCollectionDataConcrete::CDatumShiftCollectionDataConcrete(CDatumShiftCollectionDataConcrete const & other)
  : CDatumShiftCollectionData()
{
  CopyItemsOf(other);
}

CDatumShiftCollectionDataConcrete::CDatumShiftCollectionDataConcrete(CDatumShiftCollectionData const & other)
{
  CopyItemsOf(other);
}

CDatumShiftCollectionDataConcrete::~CDatumShiftCollectionDataConcrete() = default;

CDatumShiftCollectionDataConcrete &
CDatumShiftCollectionDataConcrete::operator=(CDatumShiftCollectionData const & other)
{
  if (&other != this) {
    Clear();
    CopyItemsOf(other);
  }
  return *this;
}

CDatumShiftCollectionDataConcrete &
CDatumShiftCollectionDataConcrete::operator=(CDatumShiftCollectionDataConcrete const & other)
{
  return operator=(static_cast<CDatumShiftCollectionData const &>(other));
}

void CDatumShiftCollectionDataConcrete::CopyItemsOf(CDatumShiftCollectionData const & other)
{
  for (long i = 0; i < other.Count(); ++i) {
    CDatumShift * item = nullptr;
    other.GetItem(i, &item);
    if (other.IsConcrete())
      AddBack(*item);
    else
      AddBack(std::unique_ptr<CDatumShift>(item)); // made for us: kept as it is
  }
  m_cursor = -1;
}

void CDatumShiftCollectionDataConcrete::Clear()
{
  m_items.clear();
  m_cursor = -1;
}

CDatumShift * CDatumShiftCollectionDataConcrete::AddFront(CDatumShift const & shift)
{
  CDatumShift * item = AddFront(shift.GetType());
  *item = shift;
  return item;
}

CDatumShift * CDatumShiftCollectionDataConcrete::AddFront(CDatumShift::Type type)
{
  return AddFront(std::unique_ptr<CDatumShift>(CDatumShiftFactory::CreateDatumShift(type)));
}

CDatumShift * CDatumShiftCollectionDataConcrete::AddFront(std::unique_ptr<CDatumShift> shift)
{
  if (!shift)
    return nullptr;
  m_items.push_front(std::move(shift));
  m_cursor = 0;
  return m_items.front().get();
}

CDatumShift * CDatumShiftCollectionDataConcrete::AddBack(CDatumShift const & shift)
{
  CDatumShift * item = AddBack(shift.GetType());
  *item = shift;
  return item;
}

CDatumShift * CDatumShiftCollectionDataConcrete::AddBack(CDatumShift::Type type)
{
  return AddBack(std::unique_ptr<CDatumShift>(CDatumShiftFactory::CreateDatumShift(type)));
}

CDatumShift * CDatumShiftCollectionDataConcrete::AddBack(std::unique_ptr<CDatumShift> shift)
{
  if (!shift)
    return nullptr;
  m_items.push_back(std::move(shift));
  m_cursor = Count() - 1;
  return m_items.back().get();
}

bool CDatumShiftCollectionDataConcrete::RemoveFront()
{
  if (m_items.empty())
    return false;
  m_items.pop_front();
  // The cursor stays on the item it was on; from the removed one it goes before the front.
  if (m_cursor >= 0)
    --m_cursor;
  return true;
}

bool CDatumShiftCollectionDataConcrete::RemoveBack()
{
  if (m_items.empty())
    return false;
  m_items.pop_back();
  if (m_cursor >= Count())
    m_cursor = Count() - 1;
  return true;
}

bool CDatumShiftCollectionDataConcrete::AtCursor(long cursor, CDatumShift ** shift) const
{
  if (cursor < 0 || cursor >= Count())
    return Give(nullptr, shift);
  m_cursor = cursor;
  return Give(m_items[static_cast<std::size_t>(cursor)].get(), shift);
}

bool CDatumShiftCollectionDataConcrete::GetFront(CDatumShift ** shift) const { return AtCursor(0, shift); }

bool CDatumShiftCollectionDataConcrete::GetBack(CDatumShift ** shift) const { return AtCursor(Count() - 1, shift); }

bool CDatumShiftCollectionDataConcrete::GetNext(CDatumShift ** shift) const { return AtCursor(m_cursor + 1, shift); }

bool CDatumShiftCollectionDataConcrete::GetPrev(CDatumShift ** shift) const
{
  // Before the front there is nothing to go back from.
  return m_cursor < 0 ? Give(nullptr, shift) : AtCursor(m_cursor - 1, shift);
}

bool CDatumShiftCollectionDataConcrete::GetItem(long index, CDatumShift ** shift) const
{
  if (index < 0 || index >= Count())
    throw CVelmoraException(CVelmoraException::kIndexOutOfRange, "CDatumShiftCollectionDataConcrete::GetItem");
  return Give(m_items[static_cast<std::size_t>(index)].get(), shift);
}

// The pair forms are a transform's hot path: each shift works on the two
// numbers in place, nothing is allocated.
bool CDatumShiftCollectionDataConcrete::ShiftForward(double & lon, double & lat) const
{
  for (auto const & item : m_items)
    item->ShiftForward(lon, lat);
  return true;
}

bool CDatumShiftCollectionDataConcrete::ShiftBack(double & lon, double & lat) const
{
  for (auto item = m_items.rbegin(); item != m_items.rend(); ++item)
    (*item)->ShiftBack(lon, lat);
  return true;
}

// Each step reads what the last one wrote; the input itself is never touched,
// so a failure part way leaves nothing to undo. Locations count by index in
// both directions: location i + 1 is right after item i.
void CDatumShiftCollectionDataConcrete::Walk(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out, bool forward,
                                             CChainHeightAdjustment const * adjustment) const
{
  ML::CGeodeticPoint first(in.GetDimensions()), second(in.GetDimensions());
  CopyInternals(in, second);
  long const count = Count();
  for (long step = 0; step < count; ++step) {
    long const i = forward ? step : count - 1 - step;
    CopyInternals(second, first);
    if (forward)
      m_items[i]->ShiftForward(first, second);
    else
      m_items[i]->ShiftBack(first, second);
    if (adjustment && i + 1 == adjustment->location)
      CS::VR::CVerticalReference::AdjustHeight(adjustment->from, adjustment->to, adjustment->mode, second);
  }
  CopyInternals(second, out);
}

bool CDatumShiftCollectionDataConcrete::ShiftForward(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  Walk(in, out, true, nullptr);
  return true;
}

bool CDatumShiftCollectionDataConcrete::ShiftBack(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  Walk(in, out, false, nullptr);
  return true;
}

bool CDatumShiftCollectionDataConcrete::ShiftForward(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out,
                                                     CS::VR::CVerticalReference const * from,
                                                     CS::VR::CVerticalReference const * to,
                                                     CS::VR::CVerticalReference::VertAdjustMode mode,
                                                     long location) const
{
  CChainHeightAdjustment const adjustment{from, to, mode, location};
  Walk(in, out, true, &adjustment);
  return true;
}

bool CDatumShiftCollectionDataConcrete::ShiftBack(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out,
                                                  CS::VR::CVerticalReference const * from,
                                                  CS::VR::CVerticalReference const * to,
                                                  CS::VR::CVerticalReference::VertAdjustMode mode,
                                                  long location) const
{
  CChainHeightAdjustment const adjustment{from, to, mode, location};
  Walk(in, out, false, &adjustment);
  return true;
}

void CDatumShiftCollectionDataConcrete::Congeal()
{
  for (auto const & item : m_items)
    item->Congeal();
}

// Stored view

CDatumShiftCollectionDataDB::~CDatumShiftCollectionDataDB() = default;

CDatumShiftCollectionDataDB & CDatumShiftCollectionDataDB::operator=(CDatumShiftCollectionData const & other)
{
  if (auto const * stored = dynamic_cast<CDatumShiftCollectionDataDB const *>(&other))
    return operator=(*stored);
  return *this;
}

CDatumShiftCollectionDataDB & CDatumShiftCollectionDataDB::operator=(CDatumShiftCollectionDataDB const & other)
{
  m_refs = other.m_refs;
  m_cursor = -1;
  return *this;
}

void CDatumShiftCollectionDataDB::AddReference(CDatumShiftDataDB const & shift, bool reversed)
{
  m_refs.push_back(dbDatumShiftRef{reversed, &shift});
}

CString CDatumShiftCollectionDataDB::GetShiftNames() const
{
  CString names;
  for (std::size_t i = 0; i < m_refs.size(); ++i) {
    if (i > 0)
      names += CString(", ");
    names += m_refs[i].shift->GetName();
  }
  return names;
}

CDatumShift * CDatumShiftCollectionDataDB::Make(dbDatumShiftRef const & ref) const
{
  CDatumShift * shift = CDatumShiftFactory::CreateDatumShift(*ref.shift);
  // Only a flag that differs is written, so the shift stays on the stored body otherwise.
  if (shift->GetReverseUsage() != ref.reversed)
    shift->SetReverseUsage(ref.reversed);
  return shift;
}

bool CDatumShiftCollectionDataDB::AtCursor(long cursor, CDatumShift ** shift) const
{
  if (cursor < 0 || cursor >= Count())
    return Give(nullptr, shift);
  m_cursor = cursor;
  return Give(Make(m_refs[static_cast<std::size_t>(cursor)]), shift);
}

bool CDatumShiftCollectionDataDB::GetFront(CDatumShift ** shift) const { return AtCursor(0, shift); }

bool CDatumShiftCollectionDataDB::GetBack(CDatumShift ** shift) const { return AtCursor(Count() - 1, shift); }

bool CDatumShiftCollectionDataDB::GetNext(CDatumShift ** shift) const { return AtCursor(m_cursor + 1, shift); }

bool CDatumShiftCollectionDataDB::GetPrev(CDatumShift ** shift) const
{
  return m_cursor < 0 ? Give(nullptr, shift) : AtCursor(m_cursor - 1, shift);
}

bool CDatumShiftCollectionDataDB::GetItem(long index, CDatumShift ** shift) const
{
  if (index < 0 || index >= Count())
    throw CVelmoraException(CVelmoraException::kIndexOutOfRange, "CDatumShiftCollectionDataDB::GetItem");
  return Give(Make(m_refs[static_cast<std::size_t>(index)]), shift);
}

// The handle

CDatumShiftCollection::~CDatumShiftCollection() = default;

} // namespace Velmora::CT::DS
