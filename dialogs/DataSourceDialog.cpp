#include <velmora/dialogs/DataSourceDialog.h>

#include <velmora/dialogs/EditorForm.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/refsys/CoordSys.h>
#include <velmora/refsys/HorizontalDatum.h>
#include <velmora/transforms/datumshifts/DatumShift.h>

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>

#include <algorithm>
#include <memory>

namespace Velmora::QtDialogs {

namespace {

constexpr char kVM[] = "VM";
constexpr char kEPSG[] = "EPSG";
constexpr char kColumnName[] = "Name";
constexpr char kColumnEpsg[] = "EPSG Code";
constexpr char kSearchSection[] = "Velmora/Qt/SearchHistory";
constexpr char kRecentSection[] = "Velmora/Qt/ObjectHistory";
constexpr char kMostRecentCategory[] = "/Velmora/Qt/MostRecentCategory";
// How many searches and picked objects the history keeps.
constexpr int kHistoryLength = 20;
constexpr int kNameColumnWidth = 320;
// Item data of a search entry: its text and column.
constexpr int kSearchTextRole = Qt::UserRole;
constexpr int kSearchColumnRole = Qt::UserRole + 1;

QString Tr(char const * text) { return QString::fromUtf8(text); }

// Every single kind in a mask, in rising order.
std::vector<EObjectType> KindsOf(long mask)
{
  std::vector<EObjectType> kinds;
  for (long bit = 1; bit <= kObjectVerticalDatum; bit <<= 1)
    if (mask & bit)
      kinds.push_back(static_cast<EObjectType>(bit));
  return kinds;
}

QString PointText(ML::CCoordPoint const * point)
{
  if (!point)
    return Tr(Text::kNone);
  double a = 0, b = 0, c = 0;
  if (point->GetDimensions() > 2) {
    point->GetInUnits(a, b, c);
    return QStringLiteral("(%1, %2, %3)").arg(a).arg(b).arg(c);
  }
  point->GetInUnits(a, b);
  return QStringLiteral("(%1, %2)").arg(a).arg(b);
}

QString EnvelopeOf(CSerializableDataDB const & body)
{
  if (auto const * cs = dynamic_cast<CS::CCoordSysData const *>(&body))
    return cs->GetEnvelope().GetName();
  if (auto const * ds = dynamic_cast<CT::DS::CDatumShiftData const *>(&body))
    return ds->GetEnvelope().GetName();
  return QString();
}

ML::CEnvelope const * EnvelopeHandleOf(CSerializableDataDB const & body)
{
  if (auto const * cs = dynamic_cast<CS::CCoordSysData const *>(&body))
    return &cs->GetEnvelope();
  if (auto const * ds = dynamic_cast<CT::DS::CDatumShiftData const *>(&body))
    return &ds->GetEnvelope();
  return nullptr;
}

bool MatchesEpsg(CSerializableDataDB const * body, void * text)
{
  return IssuerCode(*body, kEPSG).compare(*static_cast<QString const *>(text), Qt::CaseInsensitive) == 0;
}

} // namespace

CDataSourceDialog::CDataSourceDialog(DB::CDataSource * dataSource, EObjectType classFilter, QWidget * parent,
                                     char const * name, bool modal)
  : CObjectBrowserDialog(dataSource, classFilter, parent, name, modal)
{
  findColumnCombo->addItems({Tr(kColumnName), Tr(kColumnEpsg)});
  connect(categoryListView, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem * row) { FillFolder(row); });
  connect(categoryListView, &DDListView::droppedOnFolder, this, [this](QTreeWidgetItem * target) {
    auto * folder = dynamic_cast<CDataSourceCategoryListItem *>(target);
    if (!folder || !m_editable)
      return;
    try {
      for (CDetailListItem * row : SelectedObjects())
        GetDataSource()->AssignGroupID(folder->GetGroupID(), row->GetObjectType(), row->GetInfo().GetIssuer(),
                                       row->GetInfo().GetCode());
    } catch (EX::CVelmoraException const & e) {
      ShowMessage(this, Tr(Text::kProduct), e.GetFullMessage());
    }
    RefreshObjects();
  });
}

CDataSourceDialog::~CDataSourceDialog() = default;

void CDataSourceDialog::SetCallback(Callback callback, void * data)
{
  m_callback = callback;
  m_callbackData = data;
}

void CDataSourceDialog::SetEditable(bool editable)
{
  m_editable = editable;
  for (QPushButton * b : {newObjectButton, editObjectButton, copyObjectButton, deleteObjectButton, newCategoryButton,
                          deleteCategoryButton})
    b->setVisible(editable);
}

std::vector<EObjectType> CDataSourceDialog::FilterTypes() const { return KindsOf(GetClassFilter()); }

// Category tree

void CDataSourceDialog::Populate()
{
  m_filling = true;
  m_modificationsAtOpen = GetDataSource()->GetNumberOfModifications();
  categoryListView->clear();
  objectsListView->clear();
  m_findIndex.clear();
  auto special = [this](char const * text, ESpecialCategory kind) {
    auto * tag = new DB::CObjectNodeTag(GetClassFilter(), GetClassFilter());
    tag->SetSpecial(kind);
    return new CCategoryListItem(categoryListView, Tr(text), tag);
  };
  m_allRow = special("*All*", eSpecialAll);
  m_recentRow = special("*Recent*", eSpecialRecent);
  m_searchRow = special("*Search*", eSpecialSearch);

  long const filter = GetClassFilter();
  std::vector<EObjectType> kinds = KindsOf(filter);
  auto addParent = [&](long mask, char const * text) {
    if (DB::CDataSource::IsSingleType(DB::CDataSource::GetCoordSysMask(filter) & mask) || !(filter & mask))
      return;
    auto * tag = new DB::CObjectNodeTag(static_cast<EObjectType>(filter & mask), static_cast<EObjectType>(filter & mask));
    tag->SetSpecial(eSpecialTypeParent);
    auto * parent = new CCategoryListItem(categoryListView, Tr(text), tag);
    for (EObjectType kind : KindsOf(filter & mask))
      AddTypeRoot(parent, kind);
    parent->setExpanded(true);
    std::erase_if(kinds, [mask](EObjectType k) { return (k & mask) != 0; });
  };
  if (!DB::CDataSource::IsSingleType(filter)) {
    addParent(kObjectAnyCoordSys, "Coordinate Systems");
    addParent(kObjectAnyCoordPoint, "Coordinate Points");
  }
  for (EObjectType kind : kinds)
    AddTypeRoot(nullptr, kind);
  LoadHistory();
  m_filling = false;
  RestoreGeometry(*this, m_settingsStem);
  SelectDefault();
}

void CDataSourceDialog::AddTypeRoot(QTreeWidgetItem * parent, EObjectType type)
{
  DB::CCategoryInfo const info = GetDataSource()->GetCategoryInfoByType(type);
  MakeFolderRow(parent, info, type);
}

CDataSourceCategoryListItem * CDataSourceDialog::MakeFolderRow(QTreeWidgetItem * parent,
                                                               DB::CCategoryInfo const & info, EObjectType type)
{
  auto * row = parent ? new CDataSourceCategoryListItem(parent, info, type)
                      : new CDataSourceCategoryListItem(categoryListView, info, type);
  if (m_editable && !DB::CDataSource::IsPrimaryGroupID(info.GetID()))
    row->setFlags(row->flags() | Qt::ItemIsEditable);
  return row;
}

CDetailListItem * CDataSourceDialog::MakeObjectRow(EObjectType type, DB::CObjectInfo const & info)
{
  return new CDetailListItem(objectsListView, type, info);
}

void CDataSourceDialog::FillFolder(QTreeWidgetItem * item)
{
  auto * row = dynamic_cast<CDataSourceCategoryListItem *>(item);
  if (!row || row->IsFilled())
    return;
  row->SetFilled(true);
  bool const wasFilling = m_filling;
  m_filling = true;
  for (DB::CCategoryInfo const & child : GetDataSource()->GetChildCategories(row->GetObjectType(), row->GetGroupID()))
    MakeFolderRow(row, child, row->GetObjectType());
  if (row->childCount() == 0)
    row->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicator);
  m_filling = wasFilling;
}

CDataSourceCategoryListItem * CDataSourceDialog::FindFolderRow(long groupId, EObjectType type)
{
  // Opens the folders on the way down so that the row exists.
  std::vector<long> path;
  // Up to the kind's own top folder: the shared parents of several kinds have no row.
  for (long id = groupId; id > 1; id = GetDataSource()->GetParentGroupID(id, type)) {
    path.insert(path.begin(), id);
    if (DB::CDataSource::IsPrimaryGroupID(id))
      break;
  }
  QTreeWidgetItem * parent = nullptr;
  CDataSourceCategoryListItem * found = nullptr;
  for (long id : path) {
    found = nullptr;
    int const count = parent ? parent->childCount() : categoryListView->topLevelItemCount();
    for (int i = 0; i < count && !found; ++i) {
      QTreeWidgetItem * child = parent ? parent->child(i) : categoryListView->topLevelItem(i);
      if (auto * folder = dynamic_cast<CDataSourceCategoryListItem *>(child);
          folder && folder->GetGroupID() == id && folder->GetObjectType() == type)
        found = folder;
      // The type roots may sit under "Coordinate Systems" or "Coordinate Points".
      for (int j = 0; !found && !parent && j < child->childCount(); ++j)
        if (auto * folder = dynamic_cast<CDataSourceCategoryListItem *>(child->child(j));
            folder && folder->GetGroupID() == id && folder->GetObjectType() == type)
          found = folder;
    }
    if (!found)
      return nullptr;
    FillFolder(found);
    parent = found;
  }
  return found;
}

void CDataSourceDialog::SelectDefault()
{
  DB::CDataSource & source = *GetDataSource();
  if (!m_defaultCode.isEmpty()) {
    CString const issuer = m_defaultIssuer.isEmpty() ? CString(kVM) : m_defaultIssuer;
    long const mask = m_defaultType ? m_defaultType : GetClassFilter();
    CSerializableDataDB * body = nullptr;
    try {
      body = source.FindObject(mask, issuer, m_defaultCode);
    } catch (EX::CVelmoraException const &) {
    }
    if (body) {
      EObjectType const type = body->GetObjectType();
      if (CDataSourceCategoryListItem * folder = FindFolderRow(body->GetGroupID(), type)) {
        for (QTreeWidgetItem * p = folder->parent(); p; p = p->parent())
          p->setExpanded(true);
        categoryListView->setCurrentItem(folder);
        CString const code = IssuerCode(*body, kVM);
        for (int i = 0; i < objectsListView->topLevelItemCount(); ++i) {
          auto * row = static_cast<CDetailListItem *>(objectsListView->topLevelItem(i));
          if (row->GetInfo().GetCode() == code) {
            objectsListView->setCurrentItem(row);
            objectsListView->scrollToItem(row);
            break;
          }
        }
        return;
      }
    }
  }
  QSettings settings(QSettings::UserScope, kSettingsOrganisation);
  long const recent = settings.value(kMostRecentCategory, 0).toLongLong();
  for (EObjectType type : FilterTypes()) {
    if (recent > 1 && source.GetFolder(recent, type) && source.GetType(recent) == type)
      if (CDataSourceCategoryListItem * folder = FindFolderRow(recent, type)) {
        for (QTreeWidgetItem * p = folder->parent(); p; p = p->parent())
          p->setExpanded(true);
        categoryListView->setCurrentItem(folder);
        return;
      }
  }
  // The first folder of the store.
  for (int i = 0; i < categoryListView->topLevelItemCount(); ++i) {
    QTreeWidgetItem * row = categoryListView->topLevelItem(i);
    if (dynamic_cast<CDataSourceCategoryListItem *>(row) || static_cast<DDListViewItem *>(row)->GetSpecial() ==
                                                               eSpecialTypeParent) {
      categoryListView->setCurrentItem(row);
      return;
    }
  }
}

// The selection

DDListViewItem * CDataSourceDialog::CurrentCategory() const
{
  return dynamic_cast<DDListViewItem *>(categoryListView->currentItem());
}

EObjectType CDataSourceDialog::CurrentType() const
{
  DDListViewItem * row = CurrentCategory();
  return row ? row->GetObjectType() : GetClassFilter();
}

long CDataSourceDialog::CurrentFolder() const
{
  auto * row = dynamic_cast<CDataSourceCategoryListItem *>(CurrentCategory());
  return row ? row->GetGroupID() : 0;
}

std::vector<CDetailListItem *> CDataSourceDialog::SelectedObjects() const
{
  std::vector<CDetailListItem *> rows;
  for (QTreeWidgetItem * item : objectsListView->selectedItems())
    if (auto * row = dynamic_cast<CDetailListItem *>(item))
      rows.push_back(row);
  if (rows.empty())
    if (auto * row = dynamic_cast<CDetailListItem *>(objectsListView->currentItem()))
      rows.push_back(row);
  return rows;
}

// The object list

bool CDataSourceDialog::Accepts(CSerializableDataDB const & body) const
{
  if (body.IsMarkedDeleted())
    return false;
  if (!m_include.empty() || !m_exclude.empty()) {
    CString const code = IssuerCode(body, kVM);
    if (!m_include.empty() && std::find(m_include.begin(), m_include.end(), code) == m_include.end())
      return false;
    if (std::find(m_exclude.begin(), m_exclude.end(), code) != m_exclude.end())
      return false;
  }
  if (m_callback) {
    std::unique_ptr<CSerializable> object(DB::CDataSource::ObjectFactory(body));
    return object && m_callback(object.get(), m_callbackData);
  }
  return true;
}

void CDataSourceDialog::SetColumns(EObjectType type)
{
  QStringList columns{Tr(kColumnName), Tr(kColumnEpsg)};
  if (DB::CDataSource::IsCoordSysType(type)) {
    if (!DB::CDataSource::IsSingleType(type))
      columns << QStringLiteral("Type");
    columns << QStringLiteral("Envelope");
  } else if (type == kObjectDatumShift) {
    columns << QStringLiteral("Source Datum") << QStringLiteral("Destination Datum") << QStringLiteral("Class Type");
  } else if (type == kObjectHorizontalDatum) {
    columns << QStringLiteral("Ellipsoid") << QStringLiteral("Prime Meridian Name");
  }
  objectsListView->setColumnCount(static_cast<int>(columns.size()));
  objectsListView->setHeaderLabels(columns);
  // Names are the longest texts; a width from the contents would cost a pass over every row.
  objectsListView->setColumnWidth(0, kNameColumnWidth);
}

QStringList CDataSourceDialog::RowTexts(CSerializableDataDB const & body) const
{
  QStringList texts{body.GetName(), IssuerCode(body, kEPSG)};
  int const columns = objectsListView->columnCount();
  if (columns <= 2)
    return texts;
  QString const first = objectsListView->headerItem()->text(2);
  if (first == QLatin1String("Type"))
    texts << DB::CDataSource::GetTypeNameFromConstant(body.GetObjectType());
  if (objectsListView->headerItem()->text(columns - 1) == QLatin1String("Envelope")) {
    QString const envelope = EnvelopeOf(body);
    texts << (envelope.isEmpty() ? Tr(Text::kNone) : envelope);
  } else if (auto const * ds = dynamic_cast<CT::DS::CDatumShiftData const *>(&body)) {
    texts << ds->GetSrcDatum().GetName() << ds->GetDestDatum().GetName() << ds->GetClassType();
  } else if (auto const * hd = dynamic_cast<CS::CHorizontalDatumData const *>(&body)) {
    texts << hd->GetEllipsoid().GetName() << hd->GetPrimeMeridian().GetName();
  }
  return texts;
}

void CDataSourceDialog::ShowBodies(std::vector<CSerializableDataDB *> const & bodies)
{
  bool const wasFilling = m_filling;
  m_filling = true;
  objectsListView->setUpdatesEnabled(false);
  objectsListView->clear();
  objectsListView->setSortingEnabled(false);
  QList<QTreeWidgetItem *> rows;
  rows.reserve(static_cast<qsizetype>(bodies.size()));
  for (CSerializableDataDB * body : bodies) {
    if (!Accepts(*body))
      continue;
    DB::CObjectInfo const info(body->GetName(), kVM, IssuerCode(*body, kVM), body->GetGroupID());
    auto * row = new CDetailListItem(nullptr, body->GetObjectType(), info);
    QStringList const texts = RowTexts(*body);
    for (int i = 0; i < texts.size(); ++i)
      row->setText(i, texts[i]);
    if (m_editable)
      row->setFlags(row->flags() | Qt::ItemIsEditable | Qt::ItemIsDragEnabled);
    rows.append(row);
  }
  objectsListView->addTopLevelItems(rows);
  objectsListView->setUpdatesEnabled(true);
  m_filling = wasFilling;
  areaLabel->clear();
}

void CDataSourceDialog::RefreshObjects()
{
  DB::CDataSource & source = *GetDataSource();
  DDListViewItem * row = CurrentCategory();
  if (!filterEdit->text().isEmpty()) {
    OnFilterTextChanged(filterEdit->text());
    return;
  }
  if (!row) {
    objectsListView->clear();
    return;
  }
  EObjectType const type = row->GetObjectType();
  SetColumns(static_cast<EObjectType>(DB::CDataSource::GetEffectiveObjectType(type)));
  std::vector<CSerializableDataDB *> bodies;
  switch (row->GetSpecial()) {
  case eSpecialAll:
  case eSpecialTypeParent:
    for (EObjectType kind : KindsOf(type)) {
      std::vector<CSerializableDataDB *> some = source.SearchDB(kind);
      bodies.insert(bodies.end(), some.begin(), some.end());
    }
    break;
  case eSpecialRecent:
    for (RecentEntry const & entry : m_recent) {
      long const kind = source.GetFolder(entry.groupId, 0) ? source.GetType(entry.groupId) : 0;
      try {
        if (kind & GetClassFilter())
          if (CSerializableDataDB * body = source.FindObject(kind, entry.issuer, entry.code))
            bodies.push_back(body);
      } catch (EX::CVelmoraException const &) {
      }
    }
    break;
  case eSpecialSearchEntry: {
    long const groupId = static_cast<DB::CObjectNodeTag const *>(row->GetTag())->GetInfo()->GetGroupID();
    bodies = RunSearch(groupId, type, row->data(0, kSearchColumnRole).toString(),
                       row->data(0, kSearchTextRole).toString());
    break;
  }
  case eSpecialSearch:
    break;
  default:
    if (auto * folder = dynamic_cast<CDataSourceCategoryListItem *>(row))
      bodies = source.GetChildObjects(type, folder->GetGroupID());
  }
  ShowBodies(bodies);
}

void CDataSourceDialog::OnCategorySelected()
{
  if (m_filling)
    return;
  if (DDListViewItem * row = CurrentCategory()) {
    FillFolder(row);
    newCategoryButton->setEnabled(dynamic_cast<CDataSourceCategoryListItem *>(row) != nullptr);
    deleteCategoryButton->setEnabled(dynamic_cast<CDataSourceCategoryListItem *>(row) != nullptr &&
                                     !DB::CDataSource::IsPrimaryGroupID(CurrentFolder()));
  }
  RefreshObjects();
}

void CDataSourceDialog::OnObjectSelected()
{
  std::vector<CDetailListItem *> rows = SelectedObjects();
  if (rows.size() != 1) {
    areaLabel->clear();
    return;
  }
  // The area of use of the chosen object, where it has one.
  CSerializableDataDB * body = nullptr;
  try {
    body = GetDataSource()->FindObject(rows[0]->GetObjectType(), rows[0]->GetInfo().GetIssuer(),
                                       rows[0]->GetInfo().GetCode());
  } catch (EX::CVelmoraException const &) {
  }
  ML::CEnvelope const * envelope = body ? EnvelopeHandleOf(*body) : nullptr;
  if (!envelope || envelope->GetName().isEmpty()) {
    areaLabel->setText(body && envelope ? QStringLiteral("Area of use: ") + Tr(Text::kNone) : QString());
    return;
  }
  areaLabel->setText(QStringLiteral("Area of use: %1  %2 to %3")
                       .arg(envelope->GetName(), PointText(envelope->GetMinPoint()),
                            PointText(envelope->GetMaxPoint())));
}

// Search as you type: every object of the filter whose name or EPSG code holds the text.

void CDataSourceDialog::BuildFindIndex()
{
  m_findIndex.clear();
  for (EObjectType kind : FilterTypes())
    for (CSerializableDataDB * body : GetDataSource()->SearchDB(kind))
      m_findIndex.push_back({body, body->GetName(), IssuerCode(*body, kEPSG)});
}

void CDataSourceDialog::OnFilterTextChanged(QString const & text)
{
  if (m_filling)
    return;
  if (text.isEmpty()) {
    m_findIndex.clear();
    RefreshObjects();
    return;
  }
  if (m_findIndex.empty())
    BuildFindIndex();
  SetColumns(static_cast<EObjectType>(DB::CDataSource::GetEffectiveObjectType(GetClassFilter())));
  std::vector<CSerializableDataDB *> hits;
  for (FindEntry const & entry : m_findIndex)
    if (entry.name.contains(text, Qt::CaseInsensitive) || entry.code.startsWith(text))
      hits.push_back(entry.body);
  ShowBodies(hits);
}

// Search with history

std::vector<CSerializableDataDB *> CDataSourceDialog::RunSearch(long groupId, EObjectType type, QString const & column,
                                                                QString const & text) const
{
  DB::CDataSource const & source = *GetDataSource();
  std::vector<CSerializableDataDB *> hits;
  std::vector<std::pair<EObjectType, long>> folders;
  if (groupId > 0)
    folders.emplace_back(type, groupId);
  else
    for (EObjectType kind : KindsOf(type))
      folders.emplace_back(kind, DB::CDataSource::GetGroupID(kind));
  for (auto const & [kind, folder] : folders) {
    std::vector<CSerializableDataDB *> some;
    if (column == QLatin1String(kColumnEpsg)) {
      QString key = text;
      some = source.Search(kind, folder, &MatchesEpsg, &key);
    } else {
      some = source.SearchName(kind, folder, text);
    }
    hits.insert(hits.end(), some.begin(), some.end());
  }
  std::erase_if(hits, [this](CSerializableDataDB * body) { return !Accepts(*body); });
  return hits;
}

void CDataSourceDialog::OnFindTextComboChanged(QString const & text) { searchButton->setEnabled(!text.isEmpty()); }

void CDataSourceDialog::OnSearchClicked()
{
  QString const text = findTextCombo->currentText();
  if (text.isEmpty())
    return;
  DDListViewItem * row = CurrentCategory();
  EObjectType const type = row ? row->GetObjectType() : GetClassFilter();
  long const groupId = CurrentFolder();
  QString const column = findColumnCombo->currentText();
  std::vector<CSerializableDataDB *> hits = RunSearch(groupId, type, column, text);
  if (hits.empty()) {
    ShowMessage(this, Tr(Text::kProduct), QStringLiteral("Search produced no results."));
    return;
  }
  QString const where = row ? row->text(0) : DB::CDataSource::GetTypeNameFromConstant(type);
  QString const caption =
    QStringLiteral("\"%1\" in \"%2\"").arg(text, where) + QStringLiteral(" for \"%3\"").arg(column);
  if (findTextCombo->findText(text) < 0)
    findTextCombo->insertItem(0, text);
  AddSearchEntry(groupId ? groupId : 0, column, text, caption);
  m_searchRow->setExpanded(true);
  categoryListView->setCurrentItem(m_searchRow->child(0));
  SaveHistory();
}

void CDataSourceDialog::AddSearchEntry(long groupId, QString const & column, QString const & text,
                                       QString const & caption)
{
  EObjectType type = GetClassFilter();
  if (groupId > 0)
    type = static_cast<EObjectType>(GetDataSource()->GetType(groupId));
  else if (DDListViewItem * row = CurrentCategory(); row && !m_filling)
    type = row->GetObjectType();
  auto * tag = new DB::CObjectNodeTag(type, groupId);
  tag->SetSpecial(eSpecialSearchEntry);
  auto * entry = new CCategoryListItem(static_cast<QTreeWidgetItem *>(nullptr), caption, tag);
  entry->setData(0, kSearchTextRole, text);
  entry->setData(0, kSearchColumnRole, column);
  m_searchRow->insertChild(0, entry);
  while (m_searchRow->childCount() > kHistoryLength)
    delete m_searchRow->takeChild(m_searchRow->childCount() - 1);
}

void CDataSourceDialog::LoadHistory()
{
  QSettings settings(QSettings::UserScope, kSettingsOrganisation);
  for (int i = kHistoryLength - 1; i >= 0; --i) {
    QString const key = QStringLiteral("/%1/%2/").arg(kSearchSection).arg(i);
    if (!settings.contains(key + "search_string"))
      continue;
    long const groupId = settings.value(key + "group_id").toLongLong();
    if (groupId > 0 && !GetDataSource()->GetFolder(groupId, 0))
      continue;
    if (groupId > 0 && !(GetDataSource()->GetType(groupId) & GetClassFilter()))
      continue;
    AddSearchEntry(groupId, settings.value(key + "column_name").toString(),
                   settings.value(key + "search_string").toString(), settings.value(key + "search_name").toString());
  }
  m_recent.clear();
  for (int i = 0; i < kHistoryLength; ++i) {
    QString const key = QStringLiteral("/%1/%2/").arg(kRecentSection).arg(i);
    if (!settings.contains(key + "code"))
      break;
    m_recent.push_back({settings.value(key + "issuer").toString(), settings.value(key + "code").toString(),
                        static_cast<long>(settings.value(key + "group_id").toLongLong())});
  }
}

void CDataSourceDialog::SaveHistory() const
{
  QSettings settings(QSettings::UserScope, kSettingsOrganisation);
  settings.remove(kSearchSection);
  for (int i = 0; m_searchRow && i < m_searchRow->childCount(); ++i) {
    auto const * entry = static_cast<DDListViewItem const *>(m_searchRow->child(i));
    QString const key = QStringLiteral("/%1/%2/").arg(kSearchSection).arg(i);
    settings.setValue(key + "group_id",
                      static_cast<qlonglong>(static_cast<DB::CObjectNodeTag const *>(entry->GetTag())->GetInfo()->GetGroupID()));
    settings.setValue(key + "column_name", entry->data(0, kSearchColumnRole));
    settings.setValue(key + "search_string", entry->data(0, kSearchTextRole));
    settings.setValue(key + "search_name", entry->text(0));
  }
  settings.remove(kRecentSection);
  for (size_t i = 0; i < m_recent.size(); ++i) {
    QString const key = QStringLiteral("/%1/%2/").arg(kRecentSection).arg(i);
    settings.setValue(key + "issuer", m_recent[i].issuer);
    settings.setValue(key + "code", m_recent[i].code);
    settings.setValue(key + "group_id", static_cast<qlonglong>(m_recent[i].groupId));
  }
}

void CDataSourceDialog::AddRecent(CSerializable const & object)
{
  QString const code = IssuerCode(object, kVM);
  // One entry per object: the key joins issuer and code.
  QString const key = QStringLiteral("%1|%2").arg(kVM, code);
  std::erase_if(m_recent, [&](RecentEntry const & e) { return QStringLiteral("%1|%2").arg(e.issuer, e.code) == key; });
  m_recent.insert(m_recent.begin(), {kVM, code, object.GetGroupID()});
  if (m_recent.size() > static_cast<size_t>(kHistoryLength))
    m_recent.resize(kHistoryLength);
  SaveHistory();
}

void CDataSourceDialog::OnClearSearchHistory()
{
  while (m_searchRow->childCount() > 0)
    delete m_searchRow->takeChild(0);
  SaveHistory();
}

void CDataSourceDialog::OnClearObjectHistory()
{
  m_recent.clear();
  SaveHistory();
  if (CurrentCategory() == m_recentRow)
    RefreshObjects();
}

// Menus

void CDataSourceDialog::OnCategoryRightClicked(QPoint const & pos)
{
  auto * row = dynamic_cast<DDListViewItem *>(categoryListView->itemAt(pos));
  if (!row)
    return;
  categoryListView->setCurrentItem(row);
  QMenu menu(this);
  if (row->GetSpecial() == eSpecialSearch || row->GetSpecial() == eSpecialSearchEntry)
    menu.addAction(QStringLiteral("Clear Search History"), this, &CDataSourceDialog::OnClearSearchHistory);
  else if (row->GetSpecial() == eSpecialRecent)
    menu.addAction(QStringLiteral("Clear Recent Object History"), this, &CDataSourceDialog::OnClearObjectHistory);
  else if (m_editable && dynamic_cast<CDataSourceCategoryListItem *>(row)) {
    menu.addAction(QStringLiteral("New Category"), this, &CDataSourceDialog::OnNewCategoryClicked);
    menu.addAction(QStringLiteral("Delete Category"), this, &CDataSourceDialog::OnDeleteCategoryClicked);
    menu.addAction(QStringLiteral("Rename Category"), this, &CDataSourceDialog::OnRenameCategoryClicked);
  }
  if (!menu.isEmpty())
    menu.exec(categoryListView->viewport()->mapToGlobal(pos));
}

void CDataSourceDialog::OnObjectRightClicked(QPoint const & pos)
{
  QMenu menu(this);
  menu.addAction(QStringLiteral("View Object"), this, &CDataSourceDialog::OnViewObjectClicked);
  if (m_editable) {
    menu.addAction(QStringLiteral("New Object"), this, &CDataSourceDialog::OnNewObjectClicked);
    menu.addAction(QStringLiteral("Edit Object"), this, &CDataSourceDialog::OnEditObjectClicked);
    menu.addAction(QStringLiteral("Copy Object"), this, &CDataSourceDialog::OnCopyObjectClicked);
    menu.addAction(QStringLiteral("Delete Object"), this, &CDataSourceDialog::OnDeleteObjectClicked);
    menu.addAction(QStringLiteral("Rename"), this, &CDataSourceDialog::OnRenameObjectClicked);
  }
  menu.exec(objectsListView->viewport()->mapToGlobal(pos));
}

// Objects

bool CDataSourceDialog::OpenForm(EObjectType type, DB::CObjectInfo const & info, bool viewer, bool newObject)
{
  DB::CObjectNodeTag tag(type, info);
  try {
    CEditorForm form(GetDataSource(), &tag, viewer, true, this, nullptr, newObject);
    return form.exec() == QDialog::Accepted && !viewer;
  } catch (EX::CVelmoraException const & e) {
    ShowMessage(this, Tr(Text::kProduct), e.GetFullMessage());
  }
  return false;
}

void CDataSourceDialog::OnObjectDoubleClicked(QTreeWidgetItem *, int)
{
  if (m_editable)
    OnEditObjectClicked();
  else
    accept();
}

void CDataSourceDialog::OnViewObjectClicked()
{
  std::vector<CDetailListItem *> rows = SelectedObjects();
  if (rows.empty())
    return;
  if (rows[0]->GetObjectType() == kObjectCoordTransform) {
    ShowMessage(this, Tr(Text::kProduct), Tr(Text::kTransformViewing));
    return;
  }
  OpenForm(rows[0]->GetObjectType(), rows[0]->GetInfo(), true, false);
}

void CDataSourceDialog::OnNewObjectClicked()
{
  EObjectType const type = CurrentType();
  if (type == kObjectCoordTransform) {
    ShowMessage(this, Tr(Text::kProduct), Tr(Text::kTransformEditing));
    return;
  }
  if (!DB::CDataSource::IsSingleType(type)) {
    ShowMessage(this, Tr(Text::kProduct), QStringLiteral("You must select a specific object type."));
    return;
  }
  long const folder = CurrentFolder() ? CurrentFolder() : DB::CDataSource::GetGroupID(type);
  DB::CObjectInfo info(QString(), kVM, NextFreeCode(*GetDataSource(), type), folder);
  if (OpenForm(type, info, false, true)) {
    try {
      // The form shelves a new object at the top; it belongs in the folder shown.
      GetDataSource()->AssignGroupID(folder, type, kVM, info.GetCode());
    } catch (EX::CVelmoraException const & e) {
      ShowMessage(this, Tr(Text::kProduct), e.GetFullMessage());
    }
    RefreshObjects();
  }
}

void CDataSourceDialog::OnEditObjectClicked()
{
  std::vector<CDetailListItem *> rows = SelectedObjects();
  if (rows.empty())
    return;
  CDetailListItem * row = rows[0];
  EObjectType const type = row->GetObjectType();
  if (type == kObjectCoordTransform) {
    ShowMessage(this, Tr(Text::kProduct), Tr(Text::kTransformEditing));
    return;
  }
  DB::CObjectInfo const info = row->GetInfo();
  CSerializableDataDB const * body = nullptr;
  try {
    body = GetDataSource()->FindObject(type, info.GetIssuer(), info.GetCode());
  } catch (EX::CVelmoraException const & e) {
    ShowMessage(this, Tr(Text::kProduct), e.GetFullMessage());
    return;
  }
  bool const readOnly = GetDataSource()->GetReadOnly() || (body && body->IsFromSource());
  if (readOnly)
    QMessageBox::information(this, QStringLiteral("Read-only Object"),
                             QStringLiteral("The object is read-only. To modify a read-only object, use 'Copy "
                                            "Object' to create and edit a copy."));
  if (OpenForm(type, info, readOnly, false))
    RefreshObjects();
}

void CDataSourceDialog::OnCopyObjectClicked()
{
  std::vector<CDetailListItem *> rows = SelectedObjects();
  if (rows.empty())
    return;
  EObjectType const type = rows[0]->GetObjectType();
  if (type == kObjectCoordTransform) {
    ShowMessage(this, Tr(Text::kProduct), Tr(Text::kTransformEditing));
    return;
  }
  DB::CObjectInfo const source = rows[0]->GetInfo();
  std::unique_ptr<DB::CObjectInfo> copy;
  try {
    copy.reset(GetDataSource()->AddObjectCopy(type, QStringLiteral("Copy of: %1").arg(source.GetName()),
                                              NextFreeCode(*GetDataSource(), type), &source));
    if (copy && CurrentFolder())
      GetDataSource()->AssignGroupID(CurrentFolder(), type, copy->GetIssuer(), copy->GetCode());
  } catch (EX::CVelmoraException const &) {
    copy.reset();
  }
  if (!copy) {
    ShowMessage(this, Tr(Text::kProduct), QStringLiteral("Unable to create a copy."));
    return;
  }
  if (!OpenForm(type, *copy, false, false)) {
    try {
      GetDataSource()->RemoveSerializable(type, copy->GetIssuer(), copy->GetCode());
    } catch (EX::CVelmoraException const & e) {
      ShowMessage(this, Tr(Text::kProduct), e.GetFullMessage());
    }
  }
  RefreshObjects();
}

void CDataSourceDialog::OnDeleteObjectClicked()
{
  std::vector<CDetailListItem *> rows = SelectedObjects();
  if (rows.empty())
    return;
  QString const question =
    rows.size() == 1
      ? QStringLiteral("Delete object \"%1\"? Any objects referencing this one will fail to load.")
          .arg(rows[0]->GetInfo().GetName())
      : QStringLiteral("Delete objects? Any objects referencing these ones will fail to load.");
  if (QMessageBox::question(this, Tr(Text::kConfirm), question, QMessageBox::Yes | QMessageBox::No) !=
      QMessageBox::Yes)
    return;
  for (CDetailListItem * row : rows) {
    try {
      GetDataSource()->RemoveSerializable(row->GetObjectType(), row->GetInfo().GetIssuer(), row->GetInfo().GetCode());
    } catch (EX::CVelmoraException const & e) {
      ShowMessage(this, Tr(Text::kProduct), e.GetFullMessage());
    }
  }
  m_findIndex.clear();
  RefreshObjects();
}

void CDataSourceDialog::OnRenameObjectClicked()
{
  std::vector<CDetailListItem *> rows = SelectedObjects();
  if (!rows.empty() && m_editable)
    objectsListView->editItem(rows[0], 0);
}

void CDataSourceDialog::OnObjectRenamed(QTreeWidgetItem * item, int column)
{
  auto * row = dynamic_cast<CDetailListItem *>(item);
  if (m_filling || !row || column != 0)
    return;
  DB::CObjectInfo const info = row->GetInfo();
  QString const name = row->text(0);
  if (name == info.GetName())
    return;
  auto restore = [&] {
    m_filling = true;
    row->setText(0, info.GetName());
    m_filling = false;
  };
  if (name.trimmed().isEmpty()) {
    ShowMessage(this, Tr(Text::kProduct), QStringLiteral("Name string cannot be empty."));
    restore();
    return;
  }
  try {
    CSerializableDataDB const * body = GetDataSource()->FindObject(row->GetObjectType(), info.GetIssuer(), info.GetCode());
    if (body && body->IsFromSource()) {
      ShowMessage(this, Tr(Text::kProduct), QStringLiteral("Cannot rename object from established source."));
      restore();
      return;
    }
    GetDataSource()->AssignObjectName(name, row->GetObjectType(), info.GetIssuer(), info.GetCode());
    auto * tag = static_cast<DB::CObjectNodeTag *>(row->GetTag());
    DB::CObjectInfo renamed = info;
    renamed.SetName(name);
    tag->SetInfo(new DB::CObjectInfo(renamed));
  } catch (EX::CVelmoraException const & e) {
    ShowMessage(this, Tr(Text::kProduct), e.GetFullMessage());
    restore();
  }
}

// Categories

void CDataSourceDialog::OnNewCategoryClicked()
{
  auto * row = dynamic_cast<CDataSourceCategoryListItem *>(CurrentCategory());
  if (!row)
    return;
  try {
    QString const name = QStringLiteral("New Category");
    long const id = GetDataSource()->AddNewGroup(name, row->GetObjectType(), row->GetGroupID());
    FillFolder(row);
    CDataSourceCategoryListItem * child = nullptr;
    for (int i = 0; i < row->childCount() && !child; ++i)
      if (auto * c = dynamic_cast<CDataSourceCategoryListItem *>(row->child(i)); c && c->GetGroupID() == id)
        child = c;
    if (!child) {
      m_filling = true;
      child = MakeFolderRow(row, DB::CCategoryInfo(name, id, row->GetGroupID(), row->GetObjectType()),
                            row->GetObjectType());
      m_filling = false;
    }
    row->setExpanded(true);
    categoryListView->setCurrentItem(child);
    categoryListView->editItem(child, 0);
  } catch (EX::CVelmoraException const & e) {
    ShowMessage(this, Tr(Text::kProduct), e.GetFullMessage());
  }
}

void CDataSourceDialog::OnDeleteCategoryClicked()
{
  auto * row = dynamic_cast<CDataSourceCategoryListItem *>(CurrentCategory());
  if (!row || DB::CDataSource::IsPrimaryGroupID(row->GetGroupID()))
    return;
  if (QMessageBox::question(
        this, Tr(Text::kConfirm),
        QStringLiteral("Delete category \"%1\" and all the sub-categories and objects it contains?").arg(row->text(0)),
        QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
    return;
  try {
    GetDataSource()->RemoveGroup(row->GetObjectType(), row->GetGroupID());
    QTreeWidgetItem * parent = row->parent();
    delete row;
    if (parent)
      categoryListView->setCurrentItem(parent);
    m_findIndex.clear();
  } catch (EX::CVelmoraException const & e) {
    ShowMessage(this, Tr(Text::kProduct), e.GetFullMessage());
  }
}

void CDataSourceDialog::OnRenameCategoryClicked()
{
  auto * row = dynamic_cast<CDataSourceCategoryListItem *>(CurrentCategory());
  if (row && m_editable && !DB::CDataSource::IsPrimaryGroupID(row->GetGroupID()))
    categoryListView->editItem(row, 0);
}

void CDataSourceDialog::OnCategoryRenamed(QTreeWidgetItem * item, int column)
{
  auto * row = dynamic_cast<CDataSourceCategoryListItem *>(item);
  if (m_filling || !row || column != 0)
    return;
  auto const * tag = static_cast<DB::CFolderNodeTag const *>(row->GetTag());
  QString const old = tag->GetInfo().GetName();
  QString const name = row->text(0);
  if (name == old)
    return;
  auto restore = [&] {
    m_filling = true;
    row->setText(0, old);
    m_filling = false;
  };
  if (name.trimmed().isEmpty()) {
    ShowMessage(this, Tr(Text::kProduct), QStringLiteral("Name string cannot be empty."));
    restore();
    return;
  }
  try {
    GetDataSource()->AssignGroupName(name, row->GetObjectType(), row->GetGroupID());
    DB::CCategoryInfo info = tag->GetInfo();
    info.SetName(name);
    row->SetTag(new DB::CFolderNodeTag(row->GetObjectType(), info));
  } catch (EX::CVelmoraException const & e) {
    ShowMessage(this, Tr(Text::kProduct), e.GetFullMessage());
    restore();
  }
}

// Closing and saving

void CDataSourceDialog::OnSaveClicked()
{
  try {
    GetDataSource()->CommitToFile();
    m_modificationsAtOpen = GetDataSource()->GetNumberOfModifications();
  } catch (EX::CVelmoraException const & e) {
    ShowMessage(this, Tr(Text::kProduct), e.GetFullMessage());
  }
}

void CDataSourceDialog::OnSaveAsClicked()
{
  QString name = QFileDialog::getSaveFileName(this, QStringLiteral("Save As"),
                                              QDir::currentPath() + QStringLiteral("/untitled.xml"),
                                              QStringLiteral("Geodetic Data Source (*.xml)"), nullptr,
                                              QFileDialog::DontConfirmOverwrite | QFileDialog::DontUseNativeDialog);
  if (name.isEmpty())
    return;
  if (!name.endsWith(QLatin1String(".xml")))
    name += QLatin1String(".xml");
  QFileInfo const file(name);
  if (file.exists() && !file.isWritable()) {
    ShowMessage(this, Tr(Text::kProduct),
                "File " + name +
                  ":\nThe specified file is read-only.  Please select another file or make it writable.");
    return;
  }
  if (file.exists()) {
    QMessageBox box(QMessageBox::Question, Tr(Text::kProduct),
                    "File " + name + ":\nThe specified file already exists, do you want to replace it?",
                    QMessageBox::NoButton, this);
    QPushButton * yes = box.addButton(QStringLiteral("&Yes"), QMessageBox::YesRole);
    box.addButton(QStringLiteral("&No"), QMessageBox::NoRole);
    box.exec();
    if (box.clickedButton() != yes)
      return;
  }
  try {
    GetDataSource()->CommitToFile(name);
  } catch (EX::CVelmoraException const & e) {
    ShowMessage(this, Tr(Text::kProduct), e.GetFullMessage());
  }
}

bool CDataSourceDialog::ConfirmSave()
{
  if (!m_editable || GetDataSource()->GetNumberOfModifications() == m_modificationsAtOpen ||
      GetDataSource()->GetNumberOfModifications() == 0)
    return true;
  QMessageBox box(QMessageBox::Question, Tr(Text::kConfirm),
                  QStringLiteral("Would you like to save changes to \"%1\"?").arg(GetDataSource()->GetFileName()),
                  QMessageBox::NoButton, this);
  QPushButton * save = box.addButton(QStringLiteral("Save"), QMessageBox::AcceptRole);
  QPushButton * saveAs = box.addButton(QStringLiteral("Save As"), QMessageBox::AcceptRole);
  box.addButton(QStringLiteral("Continue without Saving"), QMessageBox::RejectRole);
  box.exec();
  if (box.clickedButton() == save)
    OnSaveClicked();
  else if (box.clickedButton() == saveAs)
    OnSaveAsClicked();
  return true;
}

EDialogState CDataSourceDialog::RunPicker(std::list<CSerializable *> * many, CSerializable const ** one,
                                          EObjectType * type)
{
  if (one)
    *one = nullptr;
  if (exec() != QDialog::Accepted)
    return eDialogCancelled;
  std::vector<CDetailListItem *> rows = SelectedObjects();
  if (one && rows.size() > 1)
    rows.resize(1);
  try {
    for (CDetailListItem * row : rows) {
      CSerializable * object =
        GetDataSource()->GetSerializable(row->GetObjectType(), row->GetInfo().GetIssuer(), row->GetInfo().GetCode());
      if (!object)
        continue;
      if (type && row == rows.front())
        *type = row->GetObjectType();
      AddRecent(*object);
      if (one)
        *one = object;
      else
        many->push_back(object);
    }
  } catch (EX::CVelmoraException const & e) {
    ShowMessage(this, Tr(Text::kProduct), e.GetFullMessage());
    return eDialogFailed;
  }
  return eDialogAccepted;
}

void CDataSourceDialog::accept()
{
  ConfirmSave();
  QDialog::accept();
}

void CDataSourceDialog::done(int result)
{
  SaveGeometry(*this, m_settingsStem);
  if (long const folder = CurrentFolder()) {
    QSettings settings(QSettings::UserScope, kSettingsOrganisation);
    settings.setValue(kMostRecentCategory, static_cast<qlonglong>(folder));
  }
  QDialog::done(result);
}

} // namespace Velmora::QtDialogs
