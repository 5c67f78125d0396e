#pragma once
// The object browser form joined to a data source and a class filter.
#include <velmora/dialogs/ObjectBrowserDialogBase.h>

namespace Velmora::QtDialogs {

class VELMORA_API CObjectBrowserDialog : public CObjectBrowserDialogBase
{
  Q_OBJECT
public:
  // Raises code 54 without a data source.
  CObjectBrowserDialog(DB::CDataSource * dataSource, EObjectType classFilter, QWidget * parent = nullptr,
                       char const * name = nullptr, bool modal = true);
  ~CObjectBrowserDialog() override;

  DB::CDataSource * GetDataSource() const { return m_dataSource; }
  void SetDataSource(DB::CDataSource * dataSource);
  EObjectType GetClassFilter() const { return m_classFilter; }
  void SetClassFilter(EObjectType classFilter);
  CString GetTitleBarCaption() const;
  void SetTitleBarCaption(CString const & caption);
  void SetParent(QWidget * parent);
  QTreeWidget * GetCategoryListView() const { return categoryListView; }
  QTreeWidget * GetObjectsListView() const { return objectsListView; }
  // Fills the lists if they are not yet, then shows the window.
  void show();

protected:
  // Fills both lists from the store; run before the window first shows.
  virtual void Populate() {}
  void showEvent(QShowEvent * event) override;
  bool m_populated = false;

private:
  DB::CDataSource * m_dataSource;
  EObjectType m_classFilter;
};

} // namespace Velmora::QtDialogs
