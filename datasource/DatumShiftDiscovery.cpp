// Finding the datum shifts between two coordinate systems: one route for a
// transform, or every candidate route for a user to choose from. Candidates
// are found by "VM" codes, never by comparing datum parameters; a route has
// one shift, or two through an intermediate datum.
#include <velmora/datasource/CDataSource.h>

#include <velmora/datasource/sax/dbGroup.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/transforms/CoordTransform.h>
#include <velmora/transforms/datumshifts/DatumShiftCollection.h>
#include <velmora/transforms/datumshifts/DatumShiftInfo.h>

#include <algorithm>
#include <memory>
#include <set>

namespace Velmora::DB {

using EX::CVelmoraException;
using CT::DS::CDatumShift;
using CT::DS::CDatumShiftCollection;
using CT::DS::CDatumShiftDataDB;
using CT::DS::CDatumShiftInfo;
using CT::DS::CDatumShiftInfoEx;
using CT::DS::CDatumShiftList;
using CT::DS::CDatumShiftPreferences;
using CT::DS::CDatumShiftPreferencesEx;

namespace {

// The meanings of the bits of CDatumShiftPreferences::GetOptions.
enum ShiftOption : int {
  kOptionDirect = 1,
  kOptionIntermediate = 2,
  kOptionAreaGiven = 4,
  kOptionAnyArea = 8,
  kOptionAnyMethod = 16
};

// The bits of CDatumShiftPreferencesEx::GetBitFlags that name shift types.
constexpr CT::DS::BitFlag kTypeBits = 0x0FFFFFFF;

CString const kVM("VM");

// Of a body or a handle; empty without one.
template <class Object>
CString VMCodeOf(Object const & object)
{
  CIdentifierCollection const & ids = object.GetIdentifiers();
  return ids.Exists(kVM) ? ids.GetItem(kVM) : CString();
}

// An envelope with nothing to test against: it accepts every point.
bool IsEmptyEnvelope(ML::CEnvelope const & envelope)
{
  return envelope.GetAlwaysAccept() || !envelope.GetMinPoint() || !envelope.GetMaxPoint();
}

bool Contains(std::vector<CString> const & list, CString const & code)
{
  return std::find(list.begin(), list.end(), code) != list.end();
}

// A new handle over a stored shift, congealed unless the caller wants the bare view.
std::unique_ptr<CDatumShift> MakeShift(CDatumShiftDataDB const & body, bool congeal)
{
  std::unique_ptr<CDatumShift> shift(dynamic_cast<CDatumShift *>(CDataSource::ObjectFactory(body)));
  if (shift && congeal)
    shift->Congeal();
  return shift;
}

} // namespace

CExtents::CExtents(double minLon, double minLat, double maxLon, double maxLat)
  : m_inUse(minLon < maxLon && minLat < maxLat), m_minLon(minLon), m_minLat(minLat), m_maxLon(maxLon),
    m_maxLat(maxLat)
{
}

bool CDataSource::EstablishDatumShift(CT::CCoordTransform & transform, CDatumShiftPreferences const & prefs)
{
  char const * const location = "CDataSource::EstablishDatumShift";
  if (!m_loaded)
    throw CVelmoraException(CVelmoraException::kDataSourceNotLoaded, location);
  CDatumShiftCollection & chain = transform.GetDatumShifts();
  chain.Clear();
  if (!transform.GetSrcCoordSys() || !transform.GetDestCoordSys())
    throw CVelmoraException(CVelmoraException::kCoordSysMissing, location);
  CS::CHorizontalDatum const & source = transform.GetSrcCoordSys()->GetHorizontalDatum();
  CS::CHorizontalDatum const & target = transform.GetDestCoordSys()->GetHorizontalDatum();
  if (source == target)
    return true;

  // Only the first candidate of a search is used; the rest die with the answer.
  auto const takeFirst = [&chain](CDatumShiftCollection const & found) {
    CDatumShift * first = nullptr;
    found.GetFront(&first);
    chain.AddBack(*first);
  };

  if (prefs.GetOptions() & kOptionDirect) {
    std::unique_ptr<CDatumShiftCollection> direct(ValidDatumShifts(transform, source, target, prefs));
    if (direct && direct->Count() > 0) {
      takeFirst(*direct);
      return true;
    }
  }
  if (!(prefs.GetOptions() & kOptionIntermediate))
    return false;

  std::unique_ptr<CS::CHorizontalDatum> intermediate;
  if (!prefs.GetIntermediateIssuer().empty() && !prefs.GetIntermediateCode().empty())
    intermediate.reset(GetHorizontalDatumNonThrow(CString(prefs.GetIntermediateIssuer()),
                                                  CString(prefs.GetIntermediateCode())));
  // WGS 84 is the datum most shifts are published against.
  if (!intermediate)
    intermediate.reset(GetHorizontalDatum(CString("EPSG"), CString("6326")));
  if (*intermediate == source || *intermediate == target)
    return false;

  std::unique_ptr<CDatumShiftCollection> first(ValidDatumShifts(transform, source, *intermediate, prefs));
  if (!first || first->Count() == 0)
    return false;
  takeFirst(*first);
  std::unique_ptr<CDatumShiftCollection> second(ValidDatumShifts(transform, *intermediate, target, prefs));
  if (!second || second->Count() == 0) {
    chain.RemoveBack();
    return false;
  }
  takeFirst(*second);
  return true;
}

CDatumShiftCollection * CDataSource::ValidDatumShifts(CT::CCoordTransform & transform,
                                                       CS::CHorizontalDatum const & sourceDatum,
                                                       CS::CHorizontalDatum const & targetDatum,
                                                       CDatumShiftPreferences const & prefs) const
{
  int const options = prefs.GetOptions();
  bool const anyArea = (options & kOptionAnyArea) != 0;
  bool areaKnown = true;
  CString areaCode;
  if (anyArea) {
    // no area to compare
  } else if (options & kOptionAreaGiven) {
    CString const issuer(prefs.GetAreaIssuer());
    areaCode = CString(prefs.GetAreaCode());
    if (issuer != kVM) {
      // An area named by another registry is compared by its "VM" code; unknown, it matches nothing.
      CSerializableDataDB const * envelope = FindObject(kObjectEnvelope, issuer, areaCode);
      areaKnown = envelope != nullptr;
      areaCode = envelope ? VMCodeOf(*envelope) : CString();
    }
  } else if (CS::CCoordSys const * system = transform.GetSrcCoordSys()) {
    areaCode = VMCodeOf(system->GetEnvelope());
  }

  CString const sourceCode = VMCodeOf(sourceDatum);
  CString const targetCode = VMCodeOf(targetDatum);

  SAX::dbGroup const * group = GetGroup(kObjectDatumShift);
  if (!group)
    return nullptr;
  auto const column = group->GetIndex().find(kVM);
  if (column == group->GetIndex().end())
    return nullptr;

  // Removed shifts are deliberately not skipped here: only the listing leaves them out.
  std::unique_ptr<CDatumShiftCollection> found;
  std::set<CSerializableDataDB const *> seen;
  for (auto const & [code, stored] : column->second) {
    if (!seen.insert(stored).second)
      continue;
    auto const * body = dynamic_cast<CDatumShiftDataDB const *>(stored);
    if (!body)
      continue;
    CString const from = VMCodeOf(body->GetSrcDatum());
    CString const to = VMCodeOf(body->GetDestDatum());
    bool reverse = false;
    if (from == sourceCode && to == targetCode)
      reverse = false;
    else if (from == targetCode && to == sourceCode)
      reverse = true;
    else
      continue;
    if (!(options & kOptionAnyMethod) && body->GetShiftType() != prefs.GetMethod())
      continue;
    if (!anyArea && (!areaKnown || VMCodeOf(body->GetEnvelope()) != areaCode))
      continue;
    std::unique_ptr<CDatumShift> shift = MakeShift(*body, true);
    if (!shift)
      continue;
    if (reverse)
      shift->SetReverseUsage(true);
    if (!found)
      found = std::make_unique<CDatumShiftCollection>();
    found->AddBack(std::move(shift));
  }
  return found.release();
}

bool CDataSource::GetDSList(CExtents const & extents, bool reverse, CDatumShiftPreferencesEx const & prefs,
                            CString const & fromCode, CString const & toCode, std::list<CDatumShiftInfoEx> & out,
                            bool skipCongeal) const
{
  std::size_t const before = out.size();
  CT::DS::BitFlag const types = prefs.GetBitFlags() & kTypeBits;
  for (CSerializableDataDB const * stored : SearchDB(kObjectDatumShift)) {
    auto const * body = dynamic_cast<CDatumShiftDataDB const *>(stored);
    if (!body)
      continue;
    // One direction only: the caller asks again with the codes swapped.
    if (VMCodeOf(body->GetSrcDatum()) != fromCode || VMCodeOf(body->GetDestDatum()) != toCode)
      continue;
    int const type = body->GetShiftType();
    if (types != 0 && (type < 0 || type >= CDatumShift::kTypeCount || !(types & (CT::DS::BitFlag(1) << type))))
      continue;
    CString const code = VMCodeOf(*body);
    if (!prefs.GetIncludeList().empty() && !Contains(prefs.GetIncludeList(), code))
      continue;
    if (!prefs.GetExcludeList().empty() && Contains(prefs.GetExcludeList(), code))
      continue;
    // The area must lie wholly inside the shift's envelope.
    ML::CEnvelope const & envelope = body->GetEnvelope();
    if (extents.IsInUse() && !IsEmptyEnvelope(envelope) &&
        !(envelope.InBounds(extents.GetMinLon(), extents.GetMinLat()) &&
          envelope.InBounds(extents.GetMaxLon(), extents.GetMaxLat())))
      continue;
    std::unique_ptr<CDatumShift> shift = MakeShift(*body, !skipCongeal);
    if (!shift)
      continue;
    out.emplace_back(shift.release(), reverse);
  }
  return out.size() > before;
}

bool CDataSource::GetValidDatumShiftsEx(CS::CCoordSys const & source, CS::CCoordSys const & target,
                                        CDatumShiftPreferencesEx const & prefs, std::list<CDatumShiftList> & result,
                                        bool skipCongeal) const
{
  if (!m_loaded)
    throw CVelmoraException(CVelmoraException::kDataSourceNotLoaded, "CDataSource::GetValidDatumShiftsEx");
  CString const sourceCode = VMCodeOf(source.GetHorizontalDatum());
  CString const targetCode = VMCodeOf(target.GetHorizontalDatum());
  if (sourceCode == targetCode)
    return true;

  CExtents extents;
  ML::CEnvelope const & area = prefs.GetArea();
  bool const areaGiven = !IsEmptyEnvelope(area);
  if (areaGiven) {
    double minLon = 0.0, minLat = 0.0, maxLon = 0.0, maxLat = 0.0;
    area.GetMinPoint()->GetInternals(minLon, minLat);
    area.GetMaxPoint()->GetInternals(maxLon, maxLat);
    extents = CExtents(minLon, minLat, maxLon, maxLat);
  }

  std::list<CDatumShiftList> routes;
  if (!prefs.GetOnlyGoThruIntermediate()) {
    std::list<CDatumShiftInfoEx> forward, backward;
    GetDSList(extents, false, prefs, sourceCode, targetCode, forward, skipCongeal);
    GetDSList(extents, true, prefs, targetCode, sourceCode, backward, skipCongeal);
    for (CDatumShiftInfoEx const & info : forward)
      routes.push_back(CDatumShiftList{info});
    for (CDatumShiftInfoEx const & info : backward)
      routes.push_back(CDatumShiftList{info});
  }

  CString const issuer(prefs.GetIntermediateIssuer());
  CString middle(prefs.GetIntermediateCode());
  if (issuer != kVM) {
    CSerializableDataDB const * datum = FindObject(kObjectHorizontalDatum, issuer, middle);
    middle = datum ? VMCodeOf(*datum) : CString();
  }
  if (!middle.isEmpty() && middle != sourceCode && middle != targetCode) {
    // Each leg looks against its direction only when its own direction found nothing.
    std::list<CDatumShiftInfoEx> firstLeg, secondLeg;
    if (!GetDSList(extents, false, prefs, sourceCode, middle, firstLeg, skipCongeal))
      GetDSList(extents, true, prefs, middle, sourceCode, firstLeg, skipCongeal);
    if (!GetDSList(extents, false, prefs, middle, targetCode, secondLeg, skipCongeal))
      GetDSList(extents, true, prefs, targetCode, middle, secondLeg, skipCongeal);
    for (CDatumShiftInfoEx const & first : firstLeg)
      for (CDatumShiftInfoEx const & second : secondLeg)
        routes.push_back(CDatumShiftList{first, second});
    // A leg that pairs with nothing hands its shifts to no route: they are freed here.
    if (secondLeg.empty())
      for (CDatumShiftInfoEx const & first : firstLeg)
        delete first.GetDatumShift();
    if (firstLeg.empty())
      for (CDatumShiftInfoEx const & second : secondLeg)
        delete second.GetDatumShift();
  }

  if (areaGiven) {
    // Routes whose every shift names an area of its own come before those valid anywhere.
    auto const specific = [](CDatumShiftList const & route) {
      return !IsEmptyEnvelope(route.front().GetDatumShift()->GetEnvelope()) &&
             (route.size() < 2 || !IsEmptyEnvelope(route.back().GetDatumShift()->GetEnvelope()));
    };
    std::list<CDatumShiftList> general;
    for (auto it = routes.begin(); it != routes.end();) {
      auto const next = std::next(it);
      if (!specific(*it))
        general.splice(general.end(), routes, it);
      it = next;
    }
    routes.splice(routes.end(), general);
  }
  result.splice(result.end(), routes);
  return !result.empty();
}

bool CDataSource::GetValidDatumShifts(CS::CCoordSys const & source, CS::CCoordSys const & target,
                                      CDatumShiftPreferencesEx const & prefs,
                                      std::list<std::list<CDatumShiftInfo>> & result) const
{
  if (!m_loaded)
    throw CVelmoraException(CVelmoraException::kDataSourceNotLoaded, "CDataSource::GetValidDatumShifts");
  std::list<CDatumShiftList> routes;
  bool const found = GetValidDatumShiftsEx(source, target, prefs, routes, false);
  // A shift handle may serve several routes through an intermediate datum: each is freed once.
  std::set<CDatumShift *> made;
  for (CDatumShiftList const & route : routes) {
    std::list<CDatumShiftInfo> plain;
    for (CDatumShiftInfoEx const & info : route) {
      CDatumShift const & shift = *info.GetDatumShift();
      CString const code = VMCodeOf(shift);
      CString const name = shift.GetName();
      plain.emplace_back(static_cast<unsigned short const *>(code), static_cast<unsigned short const *>(name),
                         info.GetReverse());
      made.insert(info.GetDatumShift());
    }
    result.push_back(std::move(plain));
  }
  for (CDatumShift * shift : made)
    delete shift;
  return found;
}

} // namespace Velmora::DB
