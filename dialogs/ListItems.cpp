#include <velmora/dialogs/ListItems.h>

#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>

namespace Velmora::QtDialogs {

namespace {
// How long a drag rests over a closed folder before it opens.
constexpr int kOpenFolderDelayMs = 700;
} // namespace

DDListViewItem::DDListViewItem(QTreeWidget * view, DB::CNodeTag * tag) : QTreeWidgetItem(view), m_tag(tag) {}
DDListViewItem::DDListViewItem(QTreeWidgetItem * parent, DB::CNodeTag * tag) : QTreeWidgetItem(parent), m_tag(tag)
{
}
DDListViewItem::~DDListViewItem() = default;

EObjectType DDListViewItem::GetObjectType() const
{
  if (auto const * folder = dynamic_cast<DB::CFolderNodeTag const *>(m_tag.get()))
    return folder->GetObjectType();
  if (auto const * object = dynamic_cast<DB::CObjectNodeTag const *>(m_tag.get()))
    return object->GetObjectType();
  return kObjectNone;
}

DDListView::DDListView(QWidget * parent) : QTreeWidget(parent)
{
  m_openTimer.setSingleShot(true);
  connect(&m_openTimer, &QTimer::timeout, this, &DDListView::openFolder);
}

void DDListView::AcceptDropsFrom(QTreeWidget * source)
{
  m_source = source;
  setAcceptDrops(true);
  viewport()->setAcceptDrops(true);
  setDropIndicatorShown(true);
  source->setDragEnabled(true);
  source->setDragDropMode(QAbstractItemView::DragOnly);
}

DDListViewItem * DDListView::FolderAt(QPoint const & pos) const
{
  auto * row = dynamic_cast<DDListViewItem *>(itemAt(pos));
  return row && row->IsFolder() ? row : nullptr;
}

void DDListView::openFolder()
{
  if (m_hovered)
    m_hovered->setExpanded(true);
}

void DDListView::dragEnterEvent(QDragEnterEvent * event)
{
  if (m_source && event->source() == m_source)
    event->acceptProposedAction();
  else
    event->ignore();
}

void DDListView::dragMoveEvent(QDragMoveEvent * event)
{
  DDListViewItem * folder = m_source && event->source() == m_source ? FolderAt(event->position().toPoint()) : nullptr;
  if (!folder) {
    m_openTimer.stop();
    m_hovered = nullptr;
    event->ignore();
    return;
  }
  if (folder != m_hovered) {
    m_hovered = folder;
    if (!folder->isExpanded())
      m_openTimer.start(kOpenFolderDelayMs);
  }
  event->acceptProposedAction();
}

void DDListView::dropEvent(QDropEvent * event)
{
  m_openTimer.stop();
  m_hovered = nullptr;
  DDListViewItem * folder = m_source && event->source() == m_source ? FolderAt(event->position().toPoint()) : nullptr;
  if (!folder) {
    event->ignore();
    return;
  }
  event->setDropAction(Qt::CopyAction);
  event->accept();
  emit droppedOnFolder(folder);
}

CCategoryListItem::CCategoryListItem(QTreeWidget * view, QString const & text, DB::CNodeTag * tag)
  : DDListViewItem(view, tag)
{
  setText(0, text);
}
CCategoryListItem::CCategoryListItem(QTreeWidgetItem * parent, QString const & text, DB::CNodeTag * tag)
  : DDListViewItem(parent, tag)
{
  setText(0, text);
}

CDataSourceCategoryListItem::CDataSourceCategoryListItem(QTreeWidget * view, DB::CCategoryInfo const & info,
                                                         EObjectType type)
  : CCategoryListItem(view, info.GetName(), new DB::CFolderNodeTag(type, info))
{
  setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
}
CDataSourceCategoryListItem::CDataSourceCategoryListItem(QTreeWidgetItem * parent, DB::CCategoryInfo const & info,
                                                         EObjectType type)
  : CCategoryListItem(parent, info.GetName(), new DB::CFolderNodeTag(type, info))
{
  setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
}

long CDataSourceCategoryListItem::GetGroupID() const
{
  return static_cast<DB::CFolderNodeTag const *>(GetTag())->GetInfo().GetID();
}

CDatumShiftCategoryListItem::CDatumShiftCategoryListItem(QTreeWidget * view, QString const & text, int legs)
  : CCategoryListItem(view, text, new DB::CObjectNodeTag(kObjectDatumShift, kObjectDatumShift)), m_legs(legs)
{
}

CDetailListItem::CDetailListItem(QTreeWidget * view, EObjectType type, DB::CObjectInfo const & info)
  : DDListViewItem(view, new DB::CObjectNodeTag(type, info))
{
  setText(0, info.GetName());
}

DB::CObjectInfo const & CDetailListItem::GetInfo() const
{
  return *static_cast<DB::CObjectNodeTag const *>(GetTag())->GetInfo();
}

CDatumShiftDetailListItem::CDatumShiftDetailListItem(QTreeWidget * view,
                                                     std::list<CT::DS::CDatumShiftInfo> const & route)
  : QTreeWidgetItem(view), m_route(route)
{
}

} // namespace Velmora::QtDialogs
