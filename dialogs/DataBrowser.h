#pragma once
// The browser window of a whole data source. InnerDataBrowser listens to the
// store, so that rows follow edits made anywhere; CDataBrowser is the small
// front that applications keep.
#include <velmora/dialogs/DataSourceEditor.h>

#include <memory>

namespace Velmora::QtDialogs {

// The category tree of the browser.
class VELMORA_API DataSourceListView : public DDListView
{
  Q_OBJECT
public:
  explicit DataSourceListView(QWidget * parent = nullptr);
};

class VELMORA_API FolderListViewItem : public CDataSourceCategoryListItem
{
public:
  using CDataSourceCategoryListItem::CDataSourceCategoryListItem;
};

class VELMORA_API ObjectListViewItem : public CDetailListItem
{
public:
  using CDetailListItem::CDetailListItem;
};

class VELMORA_API InnerDataBrowser : public CDataSourceEditor, public DB::CDataSourceListener
{
  Q_OBJECT
public:
  InnerDataBrowser(DB::CDataSource * dataSource, bool readOnly, QWidget * parent = nullptr,
                   char const * name = nullptr);
  ~InnerDataBrowser() override;
  using CDataSourceEditor::GetDataSource;

  void NotifyListener(DB::ListenerActionType action, EObjectType type, CString const & s1, CString const & s2,
                      CString const & s3, CString const & s4, CString const & s5) override;
  // Writes the store to its file; false after telling the user why not.
  bool WriteDataSource();
  void accept() override;

protected:
  CDataSourceCategoryListItem * MakeFolderRow(QTreeWidgetItem * parent, DB::CCategoryInfo const & info,
                                              EObjectType type) override;
  CDetailListItem * MakeObjectRow(EObjectType type, DB::CObjectInfo const & info) override;

private:
  bool m_readOnly;
};

class VELMORA_API CDataBrowser
{
public:
  CDataBrowser(DB::CDataSource * dataSource, bool readOnly = false, QWidget * parent = nullptr,
               char const * name = nullptr);
  CDataBrowser(CDataBrowser const &) = delete;
  CDataBrowser & operator=(CDataBrowser const &) = delete;
  virtual ~CDataBrowser();

  EDialogState Show();
  void LoadSettings();
  void SetParent(QWidget * parent);
  CString GetTitleBarCaption() const;
  void SetTitleBarCaption(CString const & caption);
  InnerDataBrowser * GetDialog() const { return m_dialog.get(); }

  // The singular element of a kind in the data file, such as "projectedcoordsys".
  static CString GetClassElementName(EObjectType type);
  // The class of a kind, such as "CProjectedCoordSys".
  static CString GetClassNameA(EObjectType type);

private:
  std::unique_ptr<InnerDataBrowser> m_dialog;
};

} // namespace Velmora::QtDialogs
