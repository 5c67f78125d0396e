#include <velmora/dialogs/DataBrowser.h>

#include <velmora/datasource/sax/dbGroup.h>
#include <velmora/foundation/VelmoraException.h>

#include <QLayout>
#include <QMessageBox>
#include <QSplitter>

namespace Velmora::QtDialogs {

namespace {

struct KindClass
{
  EObjectType type;
  char const * className;
};
constexpr KindClass kClasses[] = {
  {kObjectAngularUnit, "CAngularUnit"},
  {kObjectLinearUnit, "CLinearUnit"},
  {kObjectPrimeMeridian, "CPrimeMeridian"},
  {kObjectEllipsoid, "CEllipsoid"},
  {kObjectHorizontalDatum, "CHorizontalDatum"},
  {kObjectDatumShift, "CDatumShift"},
  {kObjectCartesianPoint, "CCartesianPoint"},
  {kObjectGeodeticPoint, "CGeodeticPoint"},
  {kObjectProjectedPoint, "CProjectedPoint"},
  {kObjectEnvelope, "CEnvelope"},
  {kObjectVerticalReference, "CVerticalReference"},
  {kObjectVerticalDatum, "CVerticalDatum"},
  {kObjectHeightModel, "CHeightModel"},
  {kObjectGeocentricCoordSys, "CGeocentricCoordSys"},
  {kObjectGeodeticCoordSys, "CGeodeticCoordSys"},
  {kObjectProjectedCoordSys, "CProjectedCoordSys"},
  {kObjectFittedCoordSys, "CFittedCoordSys"},
  {kObjectCoordTransform, "CCoordTransform"},
};

// Every kind the store holds: the browser shows them all.
constexpr long kEveryKind = 0x3ffff;

} // namespace

DataSourceListView::DataSourceListView(QWidget * parent) : DDListView(parent) {}

InnerDataBrowser::InnerDataBrowser(DB::CDataSource * dataSource, bool readOnly, QWidget * parent, char const * name)
  : CDataSourceEditor(dataSource, static_cast<EObjectType>(kEveryKind), parent, name, true),
    DB::CDataSourceListener(dataSource), m_readOnly(readOnly)
{
  SetSettingsStem(QStringLiteral("/Velmora/Qt/DataBrowser"));
  SetEditable(!readOnly && !dataSource->GetReadOnly());
  setWindowTitle(QStringLiteral("Velmora Data Browser - ") + dataSource->GetFileName());
}

InnerDataBrowser::~InnerDataBrowser() = default;

CDataSourceCategoryListItem * InnerDataBrowser::MakeFolderRow(QTreeWidgetItem * parent,
                                                              DB::CCategoryInfo const & info, EObjectType type)
{
  auto * row = parent ? new FolderListViewItem(parent, info, type) : new FolderListViewItem(categoryListView, info, type);
  if (IsEditable() && !DB::CDataSource::IsPrimaryGroupID(info.GetID()))
    row->setFlags(row->flags() | Qt::ItemIsEditable);
  return row;
}

CDetailListItem * InnerDataBrowser::MakeObjectRow(EObjectType type, DB::CObjectInfo const & info)
{
  return new ObjectListViewItem(objectsListView, type, info);
}

void InnerDataBrowser::NotifyListener(DB::ListenerActionType action, EObjectType type, CString const & s1,
                                      CString const & s2, CString const & s3, CString const &, CString const &)
{
  if (!m_populated)
    return;
  switch (action) {
  case DB::kStoreCleared:
    // The store has let go of its listeners.
    DisableListener();
    m_filling = true;
    categoryListView->clear();
    objectsListView->clear();
    m_filling = false;
    return;
  case DB::kObjectChanged:
    // Renamed or rewritten: the matching row takes the new name.
    for (int i = 0; i < objectsListView->topLevelItemCount(); ++i) {
      auto * row = static_cast<CDetailListItem *>(objectsListView->topLevelItem(i));
      if (row->GetObjectType() == type && row->GetInfo().GetCode() == s2 && row->text(0) != s3) {
        m_filling = true;
        row->setText(0, s3);
        m_filling = false;
      }
    }
    return;
  case DB::kObjectRemoved:
    for (int i = objectsListView->topLevelItemCount() - 1; i >= 0; --i) {
      auto * row = static_cast<CDetailListItem *>(objectsListView->topLevelItem(i));
      if (row->GetObjectType() == type && row->GetInfo().GetCode() == s2)
        delete row;
    }
    return;
  case DB::kFolderRenamed:
    if (CDataSourceCategoryListItem * row = FindFolderRow(s1.toLong(), type)) {
      m_filling = true;
      row->setText(0, s2);
      m_filling = false;
    }
    return;
  case DB::kFolderAdded:
  case DB::kFolderRemoved:
  case DB::kObjectAdded:
  case DB::kObjectMoved:
    // The folder tree or the listing changed shape: the listing is made again after the edit.
    QMetaObject::invokeMethod(this, [this] { RefreshObjects(); }, Qt::QueuedConnection);
    return;
  }
}

bool InnerDataBrowser::WriteDataSource()
{
  DB::CDataSource * source = GetDataSource();
  try {
    if (!source)
      throw EX::CVelmoraException(EX::CVelmoraException::kCustom, "InnerDataBrowser::WriteDataSource",
                                  "Editor form requires a DataSource object.");
    source->CommitToFile();
  } catch (EX::CVelmoraException const & e) {
    ShowMessage(this, QString::fromUtf8(Text::kProduct),
                QStringLiteral("Failed to save DataSource to file with error: ") + e.GetFullMessage());
    return false;
  }
  return true;
}

void InnerDataBrowser::accept()
{
  DB::CDataSource * source = GetDataSource();
  if (IsEditable() && source && source->GetNumberOfModifications() > 0) {
    QMessageBox::StandardButton const answer =
      QMessageBox::question(this, QString::fromUtf8(Text::kConfirm),
                            QStringLiteral("Save changes to \"%1\" ?").arg(source->GetFileName()),
                            QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    if (answer == QMessageBox::Cancel)
      return;
    if (answer == QMessageBox::Yes && !WriteDataSource())
      return;
  }
  QDialog::accept();
}

CDataBrowser::CDataBrowser(DB::CDataSource * dataSource, bool readOnly, QWidget * parent, char const * name)
  : m_dialog(std::make_unique<InnerDataBrowser>(dataSource, readOnly, parent, name))
{
}

CDataBrowser::~CDataBrowser() = default;

EDialogState CDataBrowser::Show() { return m_dialog->Show(); }
void CDataBrowser::LoadSettings() { RestoreGeometry(*m_dialog, QStringLiteral("/Velmora/Qt/DataBrowser")); }
void CDataBrowser::SetParent(QWidget * parent) { m_dialog->SetParent(parent); }
CString CDataBrowser::GetTitleBarCaption() const { return m_dialog->GetTitleBarCaption(); }
void CDataBrowser::SetTitleBarCaption(CString const & caption) { m_dialog->SetTitleBarCaption(caption); }

CString CDataBrowser::GetClassElementName(EObjectType type)
{
  return CString(DB::SAX::dbGroup::SingularElement(type));
}

CString CDataBrowser::GetClassNameA(EObjectType type)
{
  for (KindClass const & kind : kClasses)
    if (kind.type == type)
      return CString(kind.className);
  return CString();
}

} // namespace Velmora::QtDialogs
