#pragma once
// The rows of the category and object lists, and the tree that carries them
// with drag and drop of object rows onto folders.
#include <velmora/datasource/DataSourceInfo.h>
#include <velmora/transforms/datumshifts/DatumShiftInfo.h>

#include <QTimer>
#include <QTreeWidget>

#include <list>
#include <memory>

namespace Velmora::QtDialogs {

// What a category row stands for beside the store's own folders.
enum ESpecialCategory : int {
  eSpecialNone = 0,
  eSpecialAll = 1,     // "*All*"
  eSpecialRecent = 2,  // "*Recent*"
  eSpecialSearch = 3,  // "*Search*"
  eSpecialSearchEntry = 4,
  eSpecialTypeParent = 5,  // "Coordinate Systems", "Coordinate Points"
};

// A row with the tag of what it shows; the row owns its tag.
class VELMORA_API DDListViewItem : public QTreeWidgetItem
{
public:
  DDListViewItem(QTreeWidget * view, DB::CNodeTag * tag);
  DDListViewItem(QTreeWidgetItem * parent, DB::CNodeTag * tag);
  ~DDListViewItem() override;

  DB::CNodeTag * GetTag() const { return m_tag.get(); }
  void SetTag(DB::CNodeTag * tag) { m_tag.reset(tag); }
  // The type and the object or folder, whatever the kind of tag.
  EObjectType GetObjectType() const;
  bool IsFolder() const { return m_tag && m_tag->GetIsFolderTag(); }
  int GetSpecial() const { return m_tag ? m_tag->GetSpecial() : 0; }

private:
  std::unique_ptr<DB::CNodeTag> m_tag;
};

// A tree whose rows can be dragged onto the folder rows of another such tree.
// A drag that rests over a closed folder opens it.
class VELMORA_API DDListView : public QTreeWidget
{
  Q_OBJECT
public:
  explicit DDListView(QWidget * parent = nullptr);
  // Rows of `source` may be dropped on this tree's folders.
  void AcceptDropsFrom(QTreeWidget * source);

signals:
  // Rows of the accepted source were dropped on `folder`.
  void droppedOnFolder(QTreeWidgetItem * folder);

protected slots:
  void openFolder();

protected:
  void dragEnterEvent(QDragEnterEvent * event) override;
  void dragMoveEvent(QDragMoveEvent * event) override;
  void dropEvent(QDropEvent * event) override;

private:
  DDListViewItem * FolderAt(QPoint const & pos) const;

  QTreeWidget * m_source = nullptr;
  QTimer m_openTimer;
  QTreeWidgetItem * m_hovered = nullptr;
};

class VELMORA_API CCategoryListItem : public DDListViewItem
{
public:
  CCategoryListItem(QTreeWidget * view, QString const & text, DB::CNodeTag * tag);
  CCategoryListItem(QTreeWidgetItem * parent, QString const & text, DB::CNodeTag * tag);
};

// A folder of the store; filled with its children when first opened.
class VELMORA_API CDataSourceCategoryListItem : public CCategoryListItem
{
public:
  CDataSourceCategoryListItem(QTreeWidget * view, DB::CCategoryInfo const & info, EObjectType type);
  CDataSourceCategoryListItem(QTreeWidgetItem * parent, DB::CCategoryInfo const & info, EObjectType type);
  long GetGroupID() const;
  bool IsFilled() const { return m_filled; }
  void SetFilled(bool filled) { m_filled = filled; }

private:
  bool m_filled = false;
};

// "Matching Datum Shifts" and the categories of routes through an intermediate datum.
class VELMORA_API CDatumShiftCategoryListItem : public CCategoryListItem
{
public:
  CDatumShiftCategoryListItem(QTreeWidget * view, QString const & text, int legs);
  int GetLegs() const { return m_legs; }

private:
  int m_legs;
};

// An object row: the first column is the name.
class VELMORA_API CDetailListItem : public DDListViewItem
{
public:
  CDetailListItem(QTreeWidget * view, EObjectType type, DB::CObjectInfo const & info);
  DB::CObjectInfo const & GetInfo() const;
};

// A route of one or two shifts, or the choice of none (an empty route).
class VELMORA_API CDatumShiftDetailListItem : public QTreeWidgetItem
{
public:
  CDatumShiftDetailListItem(QTreeWidget * view, std::list<CT::DS::CDatumShiftInfo> const & route);
  std::list<CT::DS::CDatumShiftInfo> const & GetRoute() const { return m_route; }

private:
  std::list<CT::DS::CDatumShiftInfo> m_route;
};

} // namespace Velmora::QtDialogs
