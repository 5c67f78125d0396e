#pragma once
// The form of the object browser: categories on the left, objects on the
// right, the buttons and the search field. It holds the layout only; its
// slots say so until a derived window gives them behaviour.
#include <velmora/dialogs/DialogTypes.h>
#include <velmora/dialogs/ListItems.h>

#include <QDialog>

class QComboBox;
class QLabel;
class QPushButton;
class QLineEdit;

namespace Velmora::QtDialogs {

class VELMORA_API CObjectBrowserDialogBase : public QDialog
{
  Q_OBJECT
public:
  explicit CObjectBrowserDialogBase(QWidget * parent = nullptr, char const * name = nullptr, bool modal = false,
                                    Qt::WindowFlags flags = {});
  ~CObjectBrowserDialogBase() override;

  DDListView * categoryListView;
  DDListView * objectsListView;
  QComboBox * findTextCombo;
  QComboBox * findColumnCombo;
  QLineEdit * filterEdit;
  QLabel * areaLabel;
  QPushButton * newObjectButton;
  QPushButton * editObjectButton;
  QPushButton * viewObjectButton;
  QPushButton * copyObjectButton;
  QPushButton * deleteObjectButton;
  QPushButton * newCategoryButton;
  QPushButton * deleteCategoryButton;
  QPushButton * searchButton;
  QPushButton * okButton;
  QPushButton * cancelButton;

public slots:
  virtual void OnObjectDoubleClicked(QTreeWidgetItem * item, int column);
  virtual void OnObjectRightClicked(QPoint const & pos);
  virtual void OnViewObjectClicked();
  virtual void OnNewObjectClicked();
  virtual void OnEditObjectClicked();
  virtual void OnDeleteObjectClicked();
  virtual void OnRenameObjectClicked();
  virtual void OnCopyObjectClicked();
  virtual void OnRenameCategoryClicked();
  virtual void OnNewCategoryClicked();
  virtual void OnDeleteCategoryClicked();
  virtual void OnCategoryRightClicked(QPoint const & pos);
  virtual void OnObjectRenamed(QTreeWidgetItem * item, int column);
  virtual void OnCategoryRenamed(QTreeWidgetItem * item, int column);
  virtual void OnCategorySelected();
  virtual void OnObjectSelected();
  virtual void OnSearchClicked();
  virtual void OnFindTextComboChanged(QString const & text);
  virtual void OnFilterTextChanged(QString const & text);
  virtual void OnClearSearchHistory();
  virtual void OnClearObjectHistory();
  virtual void OnSaveClicked();
  virtual void OnSaveAsClicked();

protected:
  void NotYetImplemented(char const * text);
};

} // namespace Velmora::QtDialogs
