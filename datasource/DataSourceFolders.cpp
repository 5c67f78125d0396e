// The store's folders, searches, summaries, listeners, forward references
// and clearing.
#include <velmora/datasource/CDataSource.h>

#include <velmora/datasource/SourceLookup_p.h>
#include <velmora/datasource/sax/GroupImpl_p.h>
#include <velmora/datasource/sax/Groups.h>
#include <velmora/foundation/VelmoraException.h>

#include <algorithm>

namespace Velmora::DB {

using EX::CVelmoraException;

namespace {
constexpr long kRootFolder = 1;
constexpr long kPointStylesFolder = 700;
constexpr long kCoordSystemsFolder = 1000;

bool IsTopFolder(long id) { return id == kRootFolder || id == kPointStylesFolder || id == kCoordSystemsFolder; }

CString const & VMCodeOf(CSerializableData const & body)
{
  static CString const none;
  CIdentifierCollection const & ids = body.GetIdentifiers();
  return ids.Exists(CString("VM")) ? ids.GetItem(CString("VM")) : none;
}
} // namespace

// Summaries

template <class Item, char const * kLocation>
bool TInfoSet<Item, kLocation>::GetItem(long index, Item * item) const
{
  if (index < 0 || index >= Count())
    throw CVelmoraException(CVelmoraException::kIndexOutOfRange, kLocation);
  if (item)
    *item = *m_items[static_cast<std::size_t>(index)];
  return true;
}

template class TInfoSet<CObjectInfo, kObjectInfoSetLocation>;
template class TInfoSet<CCategoryInfo, kGroupInfoSetLocation>;

CObjectInfo * CObjectInfoSet::Add(CObjectInfo const & item)
{
  CObjectInfo * added = Add();
  *added = item;
  return added;
}

CCategoryInfo * CGroupInfoSet::Add(CCategoryInfo const & item)
{
  CCategoryInfo * added = Add();
  *added = item;
  return added;
}

CNodeTag::~CNodeTag() = default;

CObjectNodeTag::CObjectNodeTag(EObjectType type, EObjectType) : m_type(type) {}
CObjectNodeTag::CObjectNodeTag(EObjectType type, long groupId)
  : m_type(type), m_info(std::make_unique<CObjectInfo>(CString(), CString(), CString(), groupId))
{
}
CObjectNodeTag::CObjectNodeTag(EObjectType type, CObjectInfo const & info)
  : m_type(type), m_info(std::make_unique<CObjectInfo>(info))
{
}
CObjectNodeTag::CObjectNodeTag(EObjectType type, CString const & issuer, CString const & code, CString const & name)
  : m_type(type), m_info(std::make_unique<CObjectInfo>(name, issuer, code, 0))
{
}

// Listeners

CDataSourceListener::CDataSourceListener(CDataSource * source) { AddListener(source); }

CDataSourceListener::~CDataSourceListener() { RemoveListener(); }

void CDataSourceListener::RemoveListener()
{
  if (m_source)
    m_source->UnRegisterListener(this);
  m_source = nullptr;
}

void CDataSourceListener::AddListener(CDataSource * source)
{
  RemoveListener();
  m_source = source;
  if (m_source)
    m_source->RegisterListener(this);
}

void CDataSource::RegisterListener(CDataSourceListener * listener)
{
  if (listener && std::find(m_listeners.begin(), m_listeners.end(), listener) == m_listeners.end())
    m_listeners.push_back(listener);
}

void CDataSource::UnRegisterListener(CDataSourceListener * listener)
{
  std::erase(m_listeners, listener);
}

void CDataSource::NotifyListeners(ListenerActionType action, EObjectType type, CString const & s1,
                                  CString const & s2, CString const & s3, CString const & s4, CString const & s5)
{
  // A listener may unregister while it hears: walk a copy.
  for (CDataSourceListener * listener : std::vector<CDataSourceListener *>(m_listeners))
    listener->NotifyListener(action, type, s1, s2, s3, s4, s5);
  if (action == kStoreCleared) {
    // Those that want the next file register again.
    for (CDataSourceListener * listener : m_listeners)
      listener->DisableListener();
    m_listeners.clear();
  }
}

// Clearing

void CDataSource::Clear()
{
  NotifyListeners(kStoreCleared, kObjectNone);
  // What refers to others goes before what it refers to.
  for (long type : {kObjectCoordTransform, kObjectFittedCoordSys, kObjectProjectedCoordSys,
                    kObjectGeocentricCoordSys, kObjectGeodeticCoordSys, kObjectVerticalReference,
                    kObjectVerticalDatum, kObjectHeightModel, kObjectDatumShift, kObjectEnvelope,
                    kObjectCartesianPoint, kObjectGeodeticPoint, kObjectProjectedPoint, kObjectHorizontalDatum,
                    kObjectPrimeMeridian, kObjectEllipsoid, kObjectLinearUnit, kObjectAngularUnit})
    m_groups.erase(type);
  m_groups.clear();
  m_pendingEnvelopes.clear();
  m_pendingPointStyles.clear();
  m_pendingVerticalDatums.clear();
  m_pendingHeightModels.clear();
  m_modifications = 0;
  m_loaded = false;
  TerminateXml();
}

// Summaries and searches

bool CDataSource::GetObjectInfo(long type, CString const & issuer, CString const & code, CString & name,
                                CString & groupId) const
{
  CSerializableDataDB const * body = FindObject(type, issuer, code);
  if (!body)
    return false;
  name = body->GetName();
  groupId = CString::number(body->GetGroupID());
  return true;
}

CObjectInfoSet * CDataSource::GetObjectInfoSet(long type) const
{
  auto set = std::make_unique<CObjectInfoSet>();
  for (CSerializableDataDB * body : SearchDB(type)) {
    CString const & code = VMCodeOf(*body);
    if (!code.isEmpty())
      set->Add(CObjectInfo(body->GetName(), CString("VM"), code, body->GetGroupID()));
  }
  return set.release();
}

CGroupInfoSet * CDataSource::GetGroupInfoSet(long type) const
{
  auto set = std::make_unique<CGroupInfoSet>();
  if (SAX::dbGroup const * group = GetGroup(type))
    for (auto const & [id, folder] : group->GetFolders())
      if (id != kRootFolder && folder->Info().GetParentID() != kRootFolder)
        set->Add(folder->Info());
  return set.release();
}

std::vector<std::unique_ptr<CSerializable>> CDataSource::Search(long type) const
{
  std::vector<std::unique_ptr<CSerializable>> found;
  for (CSerializableDataDB * body : SearchDB(type))
    found.emplace_back(ObjectFactory(*body));
  return found;
}

std::vector<CSerializableDataDB *> CDataSource::SearchDB(long type) const
{
  std::vector<CSerializableDataDB *> found;
  SAX::dbGroup const * group = GetGroup(type);
  if (!group)
    return found;
  auto const vm = group->GetIndex().find(CString("VM"));
  if (vm == group->GetIndex().end())
    return found;
  for (auto const & [code, body] : vm->second)
    if (!body->IsMarkedDeleted() && std::find(found.begin(), found.end(), body) == found.end())
      found.push_back(body);
  return found;
}

std::vector<CSerializableDataDB *> CDataSource::Search(long type, long folderId, Predicate predicate,
                                                       void * argument) const
{
  std::vector<CSerializableDataDB *> found;
  SAX::dbGroup const * group = GetGroup(type);
  CFolderListViewItem const * folder = group ? group->FindFolder(folderId) : nullptr;
  if (!folder)
    return found;
  for (CSerializableDataDB * body : Gather(*group, *folder, CString()))
    if (!predicate || predicate(body, argument))
      found.push_back(body);
  return found;
}

std::vector<CSerializableDataDB *> CDataSource::Gather(SAX::dbGroup const & group, CFolderListViewItem const & folder,
                                                       CString const & filter) const
{
  std::vector<CSerializableDataDB *> found;
  for (CSerializableDataDB * body : folder.Objects())
    if (filter.isEmpty() || body->GetName().contains(filter, Qt::CaseInsensitive))
      found.push_back(body);
  for (CFolderListViewItem const * child : folder.Children()) {
    // A folder whose name matches brings all it holds.
    bool const named = !filter.isEmpty() && child->Info().GetName().contains(filter, Qt::CaseInsensitive);
    auto const below = Gather(group, *child, named ? CString() : filter);
    found.insert(found.end(), below.begin(), below.end());
  }
  return found;
}

std::vector<CSerializableDataDB *> CDataSource::SearchName(long type, long folderId, CString const & text) const
{
  std::vector<CSerializableDataDB *> found;
  SAX::dbGroup const * group = GetGroup(type);
  CFolderListViewItem const * folder = group ? group->FindFolder(folderId) : nullptr;
  if (!folder)
    return found;
  CString filter = text;
  long const parent = folder->Info().GetParentID();
  if (!IsTopFolder(parent) && folder->Info().GetName().contains(text, Qt::CaseInsensitive))
    filter.clear();
  for (CSerializableDataDB * body : Gather(*group, *folder, filter))
    if (!body->IsMarkedDeleted())
      found.push_back(body);
  return found;
}

std::vector<CSerializableDataDB *> CDataSource::Equivalent(CSerializable const & object) const
{
  std::vector<CSerializableDataDB *> found;
  SAX::dbGroup const * group = GetGroup(object.GetObjectType());
  if (!group)
    return found;
  for (CSerializableDataDB * body : SearchDB(object.GetObjectType()))
    if (group->NearlyEqual(*body, object.GetData()))
      found.push_back(body);
  return found;
}

std::vector<CSerializableDataDB *> CDataSource::GetChildObjects(long type, long folderId) const
{
  CFolderListViewItem const * folder = GetFolder(folderId, type);
  return folder ? folder->Objects() : std::vector<CSerializableDataDB *>();
}

std::vector<CCategoryInfo> CDataSource::GetChildCategories(long type, long folderId) const
{
  std::vector<CCategoryInfo> found;
  if (CFolderListViewItem const * folder = GetFolder(folderId, type))
    for (CFolderListViewItem const * child : folder->Children())
      found.push_back(child->Info());
  return found;
}

// Folders

CFolderListViewItem * CDataSource::GetFolder(long id, long type) const
{
  if (type == 0 || type == kObjectAnyCoordSys || type == kObjectAnyCoordPoint) {
    for (auto const & [kind, group] : m_groups)
      if (CFolderListViewItem * folder = group->FindFolder(id))
        return folder;
    return nullptr;
  }
  SAX::dbGroup const * group = GetGroup(type);
  return group ? group->FindFolder(id) : nullptr;
}

CString CDataSource::GetGroupName(long id, long type) const
{
  CFolderListViewItem const * folder = GetFolder(id, type);
  return folder ? folder->Info().GetName() : CString();
}

long CDataSource::GetParentGroupID(long id, long type) const
{
  CFolderListViewItem const * folder = GetFolder(id, type);
  return folder ? folder->Info().GetParentID() : -1;
}

CCategoryInfo CDataSource::GetCategoryInfoByType(long type) const
{
  CFolderListViewItem const * folder = GetFolder(GetGroupID(type), type);
  return folder ? folder->Info() : CCategoryInfo();
}

std::vector<long> CDataSource::GetAllGroupIDs(long type) const
{
  std::vector<long> ids;
  if (SAX::dbGroup const * group = GetGroup(type))
    for (auto const & [id, folder] : group->GetFolders())
      if (id != kRootFolder)
        ids.push_back(id);
  return ids;
}

long CDataSource::GetType(long folderId) const
{
  long id = folderId;
  // Only a primary id ends the walk: an id in no folder is the caller's error.
  while (!IsPrimaryGroupID(id)) {
    long const parent = GetParentGroupID(id, 0);
    if (parent < 0)
      return 0;
    id = parent;
  }
  return GetTypeByGroupID(id);
}

std::vector<long> CDataSource::FindObjectPath(long type, CString const & issuer, CString const & code) const
{
  std::vector<long> path;
  CSerializableDataDB const * body = FindObject(type, issuer, code);
  if (!body)
    return path;
  for (long id = body->GetGroupID(); id > kRootFolder; id = GetParentGroupID(id, type))
    path.push_back(id);
  return path;
}

bool CDataSource::SetLargestGroupID(long id)
{
  if (id <= m_largestGroupId)
    return false;
  m_largestGroupId = id;
  return true;
}

long CDataSource::AddNewGroup(CString const & name, long type, long parentId)
{
  char const * const location = "CDataSource::AddNewGroup";
  CheckEditable(location);
  SAX::dbGroup * group = GetGroup(type);
  if (!group)
    throw CVelmoraException(CVelmoraException::kCustom, location, "GroupType doesn't exist");
  long const id = m_largestGroupId + 1;
  m_largestGroupId = id;
  if (!group->AddSubFolder(std::make_unique<CFolderListViewItem>(name, parentId, id, static_cast<EObjectType>(type))))
    throw CVelmoraException(CVelmoraException::kCustom, location, "Adding SubFolder failed");
  if (!m_listeners.empty())
    NotifyListeners(kFolderAdded, static_cast<EObjectType>(type), CString::number(id), name);
  ++m_modifications;
  return id;
}

bool CDataSource::RemoveGroup(long type, long id)
{
  char const * const location = "CDataSource::RemoveGroup";
  CheckEditable(location);
  SAX::dbGroup * group = GetGroup(type);
  if (!group)
    throw CVelmoraException(CVelmoraException::kCustom, location, "GroupType doesn't exist");
  CString name;
  if (!m_listeners.empty())
    name = GetGroupName(id, type);
  bool const removed = group->RemoveFolder(id, 0, true);
  NotifyListeners(kFolderRemoved, static_cast<EObjectType>(type), CString::number(id), name);
  ++m_modifications;
  return removed;
}

bool CDataSource::AssignGroupName(CString const & name, long type, long id)
{
  char const * const location = "CDataSource::AssignGroupName";
  CheckEditable(location);
  SAX::dbGroup * group = GetGroup(type);
  if (!group)
    throw CVelmoraException(CVelmoraException::kCustom, location, "GroupType doesn't exist");
  CFolderListViewItem * folder = group->FindFolder(id);
  if (!folder)
    throw CVelmoraException(CVelmoraException::kCustom, location, "Can't find folder");
  folder->Info().SetName(name);
  NotifyListeners(kFolderRenamed, static_cast<EObjectType>(type), CString::number(id), name);
  ++m_modifications;
  return true;
}

bool CDataSource::AssignGroupID(long newId, long type, CString const & issuer, CString const & code)
{
  if (!m_loaded)
    throw CVelmoraException(CVelmoraException::kDataSourceNotLoaded, "CDataSource::AssignGroupID");
  CSerializableDataDB * body = FindObject(type, issuer, code);
  if (!body || body->GetGroupID() == newId)
    return false;
  long const oldId = body->GetGroupID();
  body->SetGroupID(newId);
  CFolderListViewItem * from = GetFolder(oldId, body->GetObjectType());
  CFolderListViewItem * to = GetFolder(newId, body->GetObjectType());
  if (from)
    std::erase(from->Objects(), body);
  if (!to)
    return false;
  to->Objects().push_back(body);
  NotifyListeners(kObjectMoved, static_cast<EObjectType>(type), CString::number(newId), code, body->GetName());
  ++m_modifications;
  return true;
}

bool CDataSource::AssignObjectName(CString const & name, long type, CString const & issuer, CString const & code)
{
  if (!m_loaded)
    throw CVelmoraException(CVelmoraException::kDataSourceNotLoaded, "CDataSource::AssignObjectName");
  CSerializableDataDB * body = FindObject(type, issuer, code);
  if (!body || body->GetName() == name)
    return false;
  body->SetName(name);
  NotifyListeners(kObjectChanged, static_cast<EObjectType>(type), issuer, code, name);
  ++m_modifications;
  return true;
}

CObjectInfo * CDataSource::AddObjectCopy(long type, CString const & newName, CString const & newCode,
                                         CObjectInfo const * info)
{
  if (!info)
    throw CVelmoraException(CVelmoraException::kNullPointer, "CDataSource::AddObjectCopy");
  std::unique_ptr<CSerializable> copy(GetSerializable(type, info->GetIssuer(), info->GetCode()));
  if (!copy)
    return nullptr;
  copy->SetName(newName);
  copy->SetIdentifiers(CIdentifierCollection());
  copy->GetIdentifiers().Add(CString("VM"), newCode);
  copy->SetGroupID(info->GetGroupID());
  PutSerializable(type, *copy, false);
  return new CObjectInfo(newName, CString("VM"), newCode, info->GetGroupID());
}

std::vector<CString> CDataSource::GetAngularUnitNames() const
{
  std::vector<CString> names;
  for (CSerializableDataDB * body : SearchDB(kObjectAngularUnit))
    names.push_back(body->GetName());
  return names;
}

std::vector<CString> CDataSource::GetLinearUnitNames() const
{
  std::vector<CString> names;
  for (CSerializableDataDB * body : SearchDB(kObjectLinearUnit))
    names.push_back(body->GetName());
  return names;
}

// Forward references of a file being read

namespace {
long Pend(std::vector<CDataSource::dbReference> & list, EObjectType type, CString const & issuer, CString const & code)
{
  list.push_back({type, issuer, code});
  return static_cast<long>(list.size()) - 1;
}
} // namespace

long CDataSource::AddPointStyle(EObjectType type, CString const & issuer, CString const & code)
{
  return Pend(m_pendingPointStyles, type, issuer, code);
}
long CDataSource::AddEnvelope(CString const & issuer, CString const & code)
{
  return Pend(m_pendingEnvelopes, kObjectEnvelope, issuer, code);
}
long CDataSource::AddVerticalDatum(CString const & issuer, CString const & code)
{
  return Pend(m_pendingVerticalDatums, kObjectVerticalDatum, issuer, code);
}
long CDataSource::AddHeightModel(CString const & issuer, CString const & code)
{
  return Pend(m_pendingHeightModels, kObjectHeightModel, issuer, code);
}

CSerializableDataDB * CDataSource::FindPending(std::vector<dbReference> const & list, long index) const
{
  if (index < 0 || index >= static_cast<long>(list.size()))
    return nullptr;
  dbReference const & ref = list[static_cast<std::size_t>(index)];
  return FindObject(ref.type, ref.issuer, ref.code);
}

CSerializableDataDB * CDataSource::FindPointStyleByIndex(long index) const
{
  return FindPending(m_pendingPointStyles, index);
}
CSerializableDataDB * CDataSource::FindEnvelopeByIndex(long index) const
{
  return FindPending(m_pendingEnvelopes, index);
}
CSerializableDataDB * CDataSource::FindVerticalDatumByIndex(long index) const
{
  return FindPending(m_pendingVerticalDatums, index);
}
CSerializableDataDB * CDataSource::FindHeightModelByIndex(long index) const
{
  return FindPending(m_pendingHeightModels, index);
}

// Completeness checks of objects ask the store here.

namespace detail {
bool SourceHolds(CDataSource const * source, CSerializable const & object)
{
  if (!source)
    return true;
  CIdentifierCollection const & ids = object.GetIdentifiers();
  if (!ids.Exists(CString("VM")))
    return false;
  return source->FindObject(object.GetObjectType(), CString("VM"), ids.GetItem(CString("VM"))) != nullptr;
}
} // namespace detail

} // namespace Velmora::DB
