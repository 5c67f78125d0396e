#pragma once
// One kind of object in a store: the bodies themselves, an index from every
// identifier an object carries to its body, and the tree of folders the
// objects are shelved in.
#include <velmora/datasource/DataSourceInfo.h>
#include <velmora/datasource/sax/CValueHandler.h>
#include <velmora/foundation/CSerializableData.h>

#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace Velmora::DB::SAX {

class VELMORA_API dbGroup : public CValueHandler
{
public:
  using Index = std::map<CString, std::map<CString, CSerializableDataDB *>>;
  using Folders = std::map<long, std::unique_ptr<CFolderListViewItem>>;

  explicit dbGroup(EObjectType type);
  dbGroup(dbGroup const &) = delete;
  dbGroup & operator=(dbGroup const &) = delete;
  ~dbGroup() override;

  EObjectType GetType() const { return m_type; }
  // One way more to reach `object`; an identifier already taken is given to it.
  virtual bool AddByCategory(CString const & issuer, CString const & code, CSerializableDataDB * object);
  // Erases the body of that "VM" code from the index, its folder and the map.
  virtual bool RemoveObject(CString const & code) = 0;
  // Stores `body` under its "VM" code; false (and the body dropped) without one.
  virtual bool AddObject(std::unique_ptr<CSerializableDataDB> body) = 0;
  // The body a store would make of a caller's object of this kind.
  virtual std::unique_ptr<CSerializableDataDB> MakeBody(CSerializableData const & source,
                                                        CDataSource const * store) const = 0;
  // Copies the family's fields and the frame of `source` into `target`.
  virtual void Assign(CSerializableDataDB & target, CSerializableData const & source) const = 0;
  // By the rules of the family's own comparison.
  virtual bool NearlyEqual(CSerializableData const & stored, CSerializableData const & other) const = 0;
  // The stored bodies by "VM" code, in code order.
  virtual void ForEach(std::function<void(CSerializableDataDB &)> const & visit) = 0;
  virtual long Size() const = 0;

  CSerializableDataDB * FindObjectInCategory(CString const & issuer, CString const & code) const;
  bool RemoveObjectInCategory(CString const & issuer, CString const & code);
  CFolderListViewItem * FindFolder(long id) const;
  // Takes ownership; false when the parent is unknown, true and no change when the id is.
  bool AddSubFolder(std::unique_ptr<CFolderListViewItem> folder);
  bool RemoveFolder(long id, long parentId, bool removeFromParent);

  Index const & GetIndex() const { return m_index; }
  Folders const & GetFolders() const { return m_folders; }
  // Shelves a body in the folder of its group id; false when there is no such folder.
  bool Shelve(CSerializableDataDB * body);
  // The folders a kind has when its file gives none: its primary folder, under
  // the shared parent of points or of systems where it has one.
  void MakeDefaultFolders();
  // Element names of the kind in a data file.
  static char const * SingularElement(long type);
  static char const * PluralElement(long type);
  // The eighteen kinds in the order a data file holds them.
  static std::vector<long> const & FileOrder();

  void SetValue(CString const &, TWLVariant &) override {}

  // Keeps a group that this one replaces while a file is read: objects read
  // before may refer to its bodies, so they live as long as this group.
  void RetireGroup(std::unique_ptr<dbGroup> older) { m_retiredGroups.push_back(std::move(older)); }

protected:
  // Index entries and folder place of a body about to leave.
  void Forget(CSerializableDataDB * body);
  // A body that a file's later object of the same code replaces: out of the
  // index and folders, but alive, since objects read before may refer to it.
  void RetireBody(std::unique_ptr<CSerializableDataDB> body)
  {
    Forget(body.get());
    m_retiredBodies.push_back(std::move(body));
  }

private:
  EObjectType m_type;
  Folders m_folders;
  Index m_index;
  std::vector<std::unique_ptr<CSerializableDataDB>> m_retiredBodies;
  std::vector<std::unique_ptr<dbGroup>> m_retiredGroups;
};

// The bodies of one family, keyed by "VM" code. `Data` is the family's body
// class, `Body` the stored form of it.
template <class Body, class Data>
class TGroup : public dbGroup
{
public:
  using BodyType = Body;
  using DataType = Data;
  explicit TGroup(EObjectType type) : dbGroup(type) {}

  bool RemoveObject(CString const & code) override;
  bool AddObject(std::unique_ptr<CSerializableDataDB> body) override;
  std::unique_ptr<CSerializableDataDB> MakeBody(CSerializableData const & source,
                                                CDataSource const * store) const override;
  void Assign(CSerializableDataDB & target, CSerializableData const & source) const override;
  bool NearlyEqual(CSerializableData const & stored, CSerializableData const & other) const override;
  void ForEach(std::function<void(CSerializableDataDB &)> const & visit) override
  {
    for (auto & entry : m_objects)
      visit(*entry.second);
  }
  long Size() const override { return static_cast<long>(m_objects.size()); }

  // The reader's entry: a new body under `code`, replacing any before it.
  Body & Entry(CString const & code);
  Body * Find(CString const & code) const;
  std::map<CString, std::unique_ptr<Body>> const & Objects() const { return m_objects; }

private:
  // Node-stable storage: the index and the folders point into it.
  std::map<CString, std::unique_ptr<Body>> m_objects;
};

// A new empty group of a single kind, with its root folder; null for another value.
VELMORA_API std::unique_ptr<dbGroup> MakeGroup(long type);

} // namespace Velmora::DB::SAX
