#pragma once
// What a data source tells of its contents without handing out objects:
// folders, object summaries, the tags a tree view keeps per row, and the
// listener that hears of every edit.
#include <velmora/foundation/CString.h>
#include <velmora/foundation/ObjectTypes.h>

#include <memory>
#include <vector>

namespace Velmora {
class CSerializableDataDB;
}

namespace Velmora::DB {

class CDataSource;

// What happened in a store, as its listeners are told.
enum ListenerActionType : int {
  kObjectChanged = 0,
  kObjectAdded = 1,
  kObjectRemoved = 2,
  kObjectMoved = 3,
  kStoreCleared = 4,
  kFolderRenamed = 5,
  kFolderAdded = 6,
  kFolderRemoved = 7,
};

// One folder of a store's tree: its name, place and kind.
class VELMORA_API CCategoryInfo
{
public:
  CCategoryInfo() = default;
  CCategoryInfo(CString const & name, long id, long parentId, EObjectType type)
    : m_name(name), m_id(id), m_parentId(parentId), m_type(type)
  {
  }

  CString const & GetName() const { return m_name; }
  void SetName(CString const & name) { m_name = name; }
  long GetID() const { return m_id; }
  void SetID(long id) { m_id = id; }
  long GetParentID() const { return m_parentId; }
  void SetParentID(long id) { m_parentId = id; }
  EObjectType GetType() const { return m_type; }
  void SetType(EObjectType type) { m_type = type; }
  long GetChildCount() const { return m_childCount; }
  void SetChildCount(long count) { m_childCount = count; }

  bool operator==(CCategoryInfo const & other) const = default;

private:
  CString m_name;
  long m_id = 0;
  long m_parentId = 0;
  EObjectType m_type = kObjectNone;
  long m_childCount = 0;
};

// A folder with its child folders and the objects shelved directly in it.
// Nothing here is owned: the group's folder map owns folders, its object map bodies.
class VELMORA_API CFolderListViewItem
{
public:
  CFolderListViewItem(CString const & name, long parentId, long id, EObjectType type)
    : m_info(name, id, parentId, type)
  {
  }

  CCategoryInfo & Info() { return m_info; }
  CCategoryInfo const & Info() const { return m_info; }
  std::vector<CFolderListViewItem *> & Children() { return m_children; }
  std::vector<CFolderListViewItem *> const & Children() const { return m_children; }
  std::vector<CSerializableDataDB *> & Objects() { return m_objects; }
  std::vector<CSerializableDataDB *> const & Objects() const { return m_objects; }

private:
  CCategoryInfo m_info;
  std::vector<CFolderListViewItem *> m_children;
  std::vector<CSerializableDataDB *> m_objects;
};

// The summary of one stored object.
class VELMORA_API CObjectInfo
{
public:
  CObjectInfo() = default;
  CObjectInfo(CString const & name, CString const & issuer, CString const & code, long groupId)
    : m_name(name), m_groupId(groupId), m_issuer(issuer), m_code(code)
  {
  }

  CString const & GetName() const { return m_name; }
  void SetName(CString const & name) { m_name = name; }
  long GetGroupID() const { return m_groupId; }
  void SetGroupID(long id) { m_groupId = id; }
  CString const & GetIssuer() const { return m_issuer; }
  void SetIssuer(CString const & issuer) { m_issuer = issuer; }
  CString const & GetCode() const { return m_code; }
  void SetCode(CString const & code) { m_code = code; }

  bool operator==(CObjectInfo const & other) const = default;

private:
  CString m_name;
  long m_groupId = 0;
  CString m_issuer;
  CString m_code;
};

// A growing array of summaries; GetItem out of range raises code 48 with `kLocation`.
template <class Item, char const * kLocation>
class TInfoSet
{
public:
  long Count() const { return static_cast<long>(m_items.size()); }
  void Clear() { m_items.clear(); }
  // Appends a blank item and gives it to be filled.
  Item * Add()
  {
    m_items.push_back(std::make_unique<Item>());
    return m_items.back().get();
  }
  bool GetItem(long index, Item * item) const;

protected:
  std::vector<std::unique_ptr<Item>> m_items;
};

inline constexpr char kObjectInfoSetLocation[] = "CObjectInfoSet::GetItem";
inline constexpr char kGroupInfoSetLocation[] = "CGroupInfoSet::GetItem";

extern template class VELMORA_API TInfoSet<CObjectInfo, kObjectInfoSetLocation>;
extern template class VELMORA_API TInfoSet<CCategoryInfo, kGroupInfoSetLocation>;

class VELMORA_API CObjectInfoSet : public TInfoSet<CObjectInfo, kObjectInfoSetLocation>
{
public:
  using TInfoSet::Add;
  CObjectInfo * Add(CObjectInfo const & item);
};

class VELMORA_API CGroupInfoSet : public TInfoSet<CCategoryInfo, kGroupInfoSetLocation>
{
public:
  using TInfoSet::Add;
  CCategoryInfo * Add(CCategoryInfo const & item);
};

// The tag a row of a tree view of a store carries.
class VELMORA_API CNodeTag
{
public:
  enum ActionType : int { kNone = 0, kOpen = 1, kEdit = 2, kDelete = 4, kCopy = 8, kNew = 16 };

  virtual ~CNodeTag();
  ActionType GetActions() const { return m_actions; }
  void SetActions(ActionType actions) { m_actions = actions; }
  int GetSpecial() const { return m_special; }
  void SetSpecial(int special) { m_special = special; }
  virtual bool GetIsFolderTag() const { return false; }

private:
  ActionType m_actions = kNone;
  int m_special = 0;
};

// A row for an object, or for a kind or folder of objects.
class VELMORA_API CObjectNodeTag : public CNodeTag
{
public:
  CObjectNodeTag(EObjectType type, EObjectType subType);
  CObjectNodeTag(EObjectType type, long groupId);
  CObjectNodeTag(EObjectType type, CObjectInfo const & info);
  CObjectNodeTag(EObjectType type, CString const & issuer, CString const & code, CString const & name);

  EObjectType GetObjectType() const { return m_type; }
  CObjectInfo const * GetInfo() const { return m_info.get(); }
  // Takes ownership.
  void SetInfo(CObjectInfo * info) { m_info.reset(info); }

private:
  EObjectType m_type;
  std::unique_ptr<CObjectInfo> m_info;
};

class VELMORA_API CFolderNodeTag : public CNodeTag
{
public:
  CFolderNodeTag(EObjectType type, CCategoryInfo const & info) : m_type(type), m_info(info) {}
  bool GetIsFolderTag() const override { return true; }
  EObjectType GetObjectType() const { return m_type; }
  CCategoryInfo const & GetInfo() const { return m_info; }

private:
  EObjectType m_type;
  CCategoryInfo m_info;
};

// Hears of every edit of one store, while registered with it.
class VELMORA_API CDataSourceListener
{
public:
  // Registers with `source`, if given.
  explicit CDataSourceListener(CDataSource * source = nullptr);
  CDataSourceListener(CDataSourceListener const &) = delete;
  CDataSourceListener & operator=(CDataSourceListener const &) = delete;
  virtual ~CDataSourceListener();

  // Unregisters and forgets the store.
  void RemoveListener();
  // Forgets the store without telling it: for a store that has let go already.
  void DisableListener() { m_source = nullptr; }
  void AddListener(CDataSource * source);
  CDataSource * GetDataSource() const { return m_source; }

  // Object actions: issuer (or new group), code, name; folder actions: id, name.
  virtual void NotifyListener(ListenerActionType action, EObjectType type, CString const & s1, CString const & s2,
                              CString const & s3, CString const & s4, CString const & s5) = 0;

private:
  CDataSource * m_source = nullptr;
};

} // namespace Velmora::DB
