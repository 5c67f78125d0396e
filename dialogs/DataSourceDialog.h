#pragma once
// Browsing a data source: the category tree by class filter, the object
// list with its columns, search as you type over the whole store, search
// with history, recent objects, and the editing actions of the browser.
#include <velmora/dialogs/ObjectBrowserDialog.h>

#include <list>
#include <vector>

namespace Velmora::QtDialogs {

class VELMORA_API CDataSourceDialog : public CObjectBrowserDialog
{
  Q_OBJECT
public:
  // Decides for each object whether the list shows it.
  using Callback = bool (*)(CSerializable const * object, void * data);

  CDataSourceDialog(DB::CDataSource * dataSource, EObjectType classFilter, QWidget * parent = nullptr,
                    char const * name = nullptr, bool modal = true);
  ~CDataSourceDialog() override;

  void SetCallback(Callback callback, void * data);
  CString GetDefaultIssuer() const { return m_defaultIssuer; }
  void SetDefaultIssuer(CString const & issuer) { m_defaultIssuer = issuer; }
  CString GetDefaultCode() const { return m_defaultCode; }
  void SetDefaultCode(CString const & code) { m_defaultCode = code; }
  EObjectType GetDefaultType() const { return m_defaultType; }
  void SetDefaultType(EObjectType type) { m_defaultType = type; }
  // "VM" codes of objects to leave out, or to show only.
  std::vector<CString> const & GetExcludeList() const { return m_exclude; }
  void SetExcludeList(std::vector<CString> const & codes) { m_exclude = codes; }
  std::vector<CString> const & GetIncludeList() const { return m_include; }
  void SetIncludeList(std::vector<CString> const & codes) { m_include = codes; }

public slots:
  void OnObjectDoubleClicked(QTreeWidgetItem * item, int column) override;
  void OnObjectRightClicked(QPoint const & pos) override;
  void OnViewObjectClicked() override;
  void OnNewObjectClicked() override;
  void OnEditObjectClicked() override;
  void OnDeleteObjectClicked() override;
  void OnRenameObjectClicked() override;
  void OnCopyObjectClicked() override;
  void OnRenameCategoryClicked() override;
  void OnNewCategoryClicked() override;
  void OnDeleteCategoryClicked() override;
  void OnCategoryRightClicked(QPoint const & pos) override;
  void OnObjectRenamed(QTreeWidgetItem * item, int column) override;
  void OnCategoryRenamed(QTreeWidgetItem * item, int column) override;
  void OnCategorySelected() override;
  void OnObjectSelected() override;
  void OnSearchClicked() override;
  void OnFindTextComboChanged(QString const & text) override;
  void OnFilterTextChanged(QString const & text) override;
  void OnClearSearchHistory() override;
  void OnClearObjectHistory() override;
  void OnSaveClicked() override;
  void OnSaveAsClicked() override;
  void accept() override;
  void done(int result) override;

protected:
  void Populate() override;
  // Rows of the store's folders and objects; the data browser makes its own kinds.
  virtual CDataSourceCategoryListItem * MakeFolderRow(QTreeWidgetItem * parent, DB::CCategoryInfo const & info,
                                                      EObjectType type);
  virtual CDetailListItem * MakeObjectRow(EObjectType type, DB::CObjectInfo const & info);

  // Whether the editing buttons and menus are offered.
  void SetEditable(bool editable);
  bool IsEditable() const { return m_editable; }
  void SetSettingsStem(QString const & stem) { m_settingsStem = stem; }
  QString const & GetSettingsStem() const { return m_settingsStem; }

  // The selected category row, the type it lists and its store folder (0 for none).
  DDListViewItem * CurrentCategory() const;
  EObjectType CurrentType() const;
  long CurrentFolder() const;
  std::vector<CDetailListItem *> SelectedObjects() const;
  // Lists again what the selected category holds.
  void RefreshObjects();
  // Shows `bodies` in the object list.
  void ShowBodies(std::vector<CSerializableDataDB *> const & bodies);
  // Remembers objects picked, for "*Recent*".
  void AddRecent(CSerializable const & object);
  // Opens the editor form on a row or a new object; true when it stored something.
  bool OpenForm(EObjectType type, DB::CObjectInfo const & info, bool viewer, bool newObject);
  CDataSourceCategoryListItem * FindFolderRow(long groupId, EObjectType type);
  // Runs the window; on acceptance hands over new objects for the selected rows.
  EDialogState RunPicker(std::list<CSerializable *> * many, CSerializable const ** one, EObjectType * type);
  bool m_filling = false;

private:
  bool Accepts(CSerializableDataDB const & body) const;
  void SetColumns(EObjectType type);
  QStringList RowTexts(CSerializableDataDB const & body) const;
  void FillFolder(QTreeWidgetItem * row);
  void AddTypeRoot(QTreeWidgetItem * parent, EObjectType type);
  void SelectDefault();
  void LoadHistory();
  void SaveHistory() const;
  void AddSearchEntry(long groupId, QString const & column, QString const & text, QString const & caption);
  std::vector<CSerializableDataDB *> RunSearch(long groupId, EObjectType type, QString const & column,
                                               QString const & text) const;
  std::vector<EObjectType> FilterTypes() const;
  void BuildFindIndex();
  bool ConfirmSave();

  Callback m_callback = nullptr;
  void * m_callbackData = nullptr;
  CString m_defaultIssuer;
  CString m_defaultCode;
  EObjectType m_defaultType = kObjectNone;
  std::vector<CString> m_exclude;
  std::vector<CString> m_include;
  bool m_editable = true;
  QString m_settingsStem;
  long m_modificationsAtOpen = 0;
  QTreeWidgetItem * m_allRow = nullptr;
  QTreeWidgetItem * m_recentRow = nullptr;
  QTreeWidgetItem * m_searchRow = nullptr;
  // The text of every object of the filter, for search as you type.
  struct FindEntry
  {
    CSerializableDataDB * body;
    QString name;
    QString code;
  };
  std::vector<FindEntry> m_findIndex;
  struct RecentEntry
  {
    QString issuer, code;
    long groupId;
  };
  std::vector<RecentEntry> m_recent;
};

} // namespace Velmora::QtDialogs
