#include <velmora/datasource/sax/dbGroup.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/datasource/sax/GroupImpl_p.h>
#include <velmora/datasource/sax/Groups.h>

#include <algorithm>

namespace Velmora::DB::SAX {

namespace {
struct ElementRow
{
  long type;
  char const * singular;
  char const * plural;
};

// In the order a data file holds them.
constexpr ElementRow kElements[] = {
  {kObjectAngularUnit, "angularunit", "angularunits"},
  {kObjectLinearUnit, "linearunit", "linearunits"},
  {kObjectPrimeMeridian, "primemeridian", "primemeridians"},
  {kObjectEllipsoid, "ellipsoid", "ellipsoids"},
  {kObjectHorizontalDatum, "horizontaldatum", "horizontaldatums"},
  {kObjectDatumShift, "datumshift", "datumshifts"},
  {kObjectCartesianPoint, "cartesianpointstyle", "cartesianpointstyles"},
  {kObjectGeodeticPoint, "geodeticpointstyle", "geodeticpointstyles"},
  {kObjectProjectedPoint, "projectedpointstyle", "projectedpointstyles"},
  {kObjectEnvelope, "envelope", "envelopes"},
  {kObjectVerticalReference, "verticalreference", "verticalreferences"},
  {kObjectVerticalDatum, "verticaldatum", "verticaldatums"},
  {kObjectHeightModel, "heightmodel", "heightmodels"},
  {kObjectGeodeticCoordSys, "geodeticcoordsys", "geodeticcoordsystems"},
  {kObjectGeocentricCoordSys, "geocentriccoordsys", "geocentriccoordsystems"},
  {kObjectProjectedCoordSys, "projectedcoordsys", "projectedcoordsystems"},
  {kObjectFittedCoordSys, "fittedcoordsys", "fittedcoordsystems"},
  {kObjectCoordTransform, "coordtransform", "coordtransforms"},
};

constexpr long kRootFolder = 1;
constexpr long kPointStylesFolder = 700;
constexpr long kCoordSystemsFolder = 1000;

ElementRow const * RowOf(long type)
{
  for (auto const & row : kElements)
    if (row.type == type)
      return &row;
  return nullptr;
}
} // namespace

char const * dbGroup::SingularElement(long type)
{
  ElementRow const * row = RowOf(type);
  return row ? row->singular : "";
}

std::vector<long> const & dbGroup::FileOrder()
{
  static std::vector<long> const order = [] {
    std::vector<long> kinds;
    for (auto const & row : kElements)
      kinds.push_back(row.type);
    return kinds;
  }();
  return order;
}

char const * dbGroup::PluralElement(long type)
{
  ElementRow const * row = RowOf(type);
  return row ? row->plural : "";
}

// The root folder keeps, as files have always had it, the kind's primary id
// in its parent field and the kind itself in its id field.
dbGroup::dbGroup(EObjectType type) : m_type(type)
{
  m_folders[kRootFolder] = std::make_unique<CFolderListViewItem>(
    CString(SingularElement(type)), CDataSource::GetGroupID(type), static_cast<long>(type), kObjectNone);
}

dbGroup::~dbGroup() = default;

bool dbGroup::AddByCategory(CString const & issuer, CString const & code, CSerializableDataDB * object)
{
  m_index[issuer][code] = object;
  return true;
}

CSerializableDataDB * dbGroup::FindObjectInCategory(CString const & issuer, CString const & code) const
{
  auto const byIssuer = m_index.find(issuer);
  if (byIssuer == m_index.end())
    return nullptr;
  auto const byCode = byIssuer->second.find(code);
  return byCode == byIssuer->second.end() ? nullptr : byCode->second;
}

bool dbGroup::RemoveObjectInCategory(CString const & issuer, CString const & code)
{
  auto const byIssuer = m_index.find(issuer);
  if (byIssuer == m_index.end())
    return false;
  return byIssuer->second.erase(code) > 0;
}

CFolderListViewItem * dbGroup::FindFolder(long id) const
{
  auto const found = m_folders.find(id);
  return found == m_folders.end() ? nullptr : found->second.get();
}

bool dbGroup::AddSubFolder(std::unique_ptr<CFolderListViewItem> folder)
{
  CFolderListViewItem * parent = FindFolder(folder->Info().GetParentID());
  if (!parent)
    return false;
  long const id = folder->Info().GetID();
  if (m_folders.count(id))
    return true;
  CFolderListViewItem * added = folder.get();
  m_folders[id] = std::move(folder);
  parent->Children().push_back(added);
  parent->Info().SetChildCount(static_cast<long>(parent->Children().size()));
  return true;
}

bool dbGroup::RemoveFolder(long id, long parentId, bool removeFromParent)
{
  CFolderListViewItem * folder = FindFolder(id);
  if (!folder)
    return false;
  if (removeFromParent) {
    if (CFolderListViewItem * parent = FindFolder(folder->Info().GetParentID())) {
      auto & siblings = parent->Children();
      siblings.erase(std::remove(siblings.begin(), siblings.end(), folder), siblings.end());
      parent->Info().SetChildCount(static_cast<long>(siblings.size()));
    }
  }
  for (CFolderListViewItem * child : std::vector<CFolderListViewItem *>(folder->Children()))
    RemoveFolder(child->Info().GetID(), id, false);
  // Erasing bodies drops them from this folder's vector: walk a copy.
  for (CSerializableDataDB * body : std::vector<CSerializableDataDB *>(folder->Objects())) {
    CIdentifierCollection const & ids = body->GetIdentifiers();
    if (ids.Exists(CString("VM")))
      RemoveObject(ids.GetItem(CString("VM")));
  }
  (void)parentId;
  m_folders.erase(id);
  return true;
}

bool dbGroup::Shelve(CSerializableDataDB * body)
{
  CFolderListViewItem * folder = FindFolder(body->GetGroupID());
  if (!folder)
    return false;
  folder->Objects().push_back(body);
  return true;
}

void dbGroup::Forget(CSerializableDataDB * body)
{
  CIdentifierCollection const & ids = body->GetIdentifiers();
  for (long i = 0; i < ids.Count(); ++i) {
    CString issuer, code;
    ids.GetItem(i, issuer, code);
    if (FindObjectInCategory(issuer, code) == body)
      RemoveObjectInCategory(issuer, code);
  }
  // Old identifiers a Put replaced may still point here.
  for (auto & byIssuer : m_index)
    std::erase_if(byIssuer.second, [body](auto const & entry) { return entry.second == body; });
  if (CFolderListViewItem * folder = FindFolder(body->GetGroupID())) {
    auto & objects = folder->Objects();
    objects.erase(std::remove(objects.begin(), objects.end(), body), objects.end());
  }
}

void dbGroup::MakeDefaultFolders()
{
  long const primary = CDataSource::GetGroupID(m_type);
  long parent = kRootFolder;
  if (CDataSource::IsCoordSysType(m_type) || CDataSource::IsCoordPointType(m_type)) {
    bool const systems = CDataSource::IsCoordSysType(m_type);
    parent = systems ? kCoordSystemsFolder : kPointStylesFolder;
    long const mask = systems ? kObjectAnyCoordSys : kObjectAnyCoordPoint;
    AddSubFolder(std::make_unique<CFolderListViewItem>(CDataSource::GetTypeNameFromConstant(mask), kRootFolder,
                                                       parent, static_cast<EObjectType>(mask)));
  }
  AddSubFolder(
    std::make_unique<CFolderListViewItem>(CDataSource::GetTypeNameFromConstant(m_type), parent, primary, m_type));
}

std::unique_ptr<dbGroup> MakeGroup(long type)
{
  switch (type) {
  case kObjectAngularUnit: return std::make_unique<CAngularUnitGroup>();
  case kObjectLinearUnit: return std::make_unique<CLinearUnitGroup>();
  case kObjectPrimeMeridian: return std::make_unique<CPrimeMeridianGroup>();
  case kObjectEllipsoid: return std::make_unique<CEllipsoidGroup>();
  case kObjectHorizontalDatum: return std::make_unique<CHorizontalDatumGroup>();
  case kObjectDatumShift: return std::make_unique<CDatumShiftGroup>();
  case kObjectCartesianPoint: return std::make_unique<CCartesianPointGroup>();
  case kObjectGeodeticPoint: return std::make_unique<CGeodeticPointGroup>();
  case kObjectProjectedPoint: return std::make_unique<CProjectedPointGroup>();
  case kObjectEnvelope: return std::make_unique<CEnvelopeGroup>();
  case kObjectVerticalReference: return std::make_unique<CVerticalReferenceGroup>();
  case kObjectVerticalDatum: return std::make_unique<CVerticalDatumGroup>();
  case kObjectHeightModel: return std::make_unique<CHeightModelGroup>();
  case kObjectGeodeticCoordSys: return std::make_unique<CGeodeticCoordSysGroup>();
  case kObjectGeocentricCoordSys: return std::make_unique<CGeocentricCoordSysGroup>();
  case kObjectProjectedCoordSys: return std::make_unique<CProjectedCoordSysGroup>();
  case kObjectFittedCoordSys: return std::make_unique<CFittedCoordSysGroup>();
  case kObjectCoordTransform: return std::make_unique<CCoordTransformGroup>();
  default: return nullptr;
  }
}

} // namespace Velmora::DB::SAX
