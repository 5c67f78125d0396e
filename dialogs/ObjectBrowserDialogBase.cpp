#include <velmora/dialogs/ObjectBrowserDialogBase.h>

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

namespace Velmora::QtDialogs {

CObjectBrowserDialogBase::CObjectBrowserDialogBase(QWidget * parent, char const * name, bool modal,
                                                   Qt::WindowFlags flags)
  : QDialog(parent, flags)
{
  if (name)
    setObjectName(QString::fromUtf8(name));
  setModal(modal);
  resize(900, 560);

  categoryListView = new DDListView;
  categoryListView->setHeaderLabel(QStringLiteral("Category"));
  categoryListView->setContextMenuPolicy(Qt::CustomContextMenu);
  objectsListView = new DDListView;
  objectsListView->setRootIsDecorated(false);
  objectsListView->setUniformRowHeights(true);
  objectsListView->setSelectionMode(QAbstractItemView::ExtendedSelection);
  objectsListView->setContextMenuPolicy(Qt::CustomContextMenu);
  objectsListView->header()->setStretchLastSection(true);
  categoryListView->AcceptDropsFrom(objectsListView);

  filterEdit = new QLineEdit;
  filterEdit->setPlaceholderText(QStringLiteral("Find by name or code"));
  filterEdit->setClearButtonEnabled(true);
  findTextCombo = new QComboBox;
  findTextCombo->setEditable(true);
  findTextCombo->setMinimumContentsLength(16);
  findColumnCombo = new QComboBox;
  areaLabel = new QLabel;
  areaLabel->setWordWrap(true);
  areaLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);

  auto button = [this](char const * text) {
    auto * b = new QPushButton(QString::fromUtf8(text), this);
    b->setAutoDefault(false);
    return b;
  };
  newObjectButton = button("New Object");
  editObjectButton = button("Edit Object");
  viewObjectButton = button("View Object");
  copyObjectButton = button("Copy Object");
  deleteObjectButton = button("Delete Object");
  newCategoryButton = button("New Category");
  deleteCategoryButton = button("Delete Category");
  searchButton = button("Search");
  okButton = button("OK");
  okButton->setDefault(true);
  cancelButton = button("Cancel");

  auto * find = new QHBoxLayout;
  find->addWidget(filterEdit, 2);
  find->addWidget(findTextCombo, 1);
  find->addWidget(findColumnCombo);
  find->addWidget(searchButton);

  auto * right = new QWidget;
  auto * rightLayout = new QVBoxLayout(right);
  rightLayout->setContentsMargins(0, 0, 0, 0);
  rightLayout->addLayout(find);
  rightLayout->addWidget(objectsListView, 1);
  rightLayout->addWidget(areaLabel);

  auto * split = new QSplitter;
  split->addWidget(categoryListView);
  split->addWidget(right);
  split->setStretchFactor(0, 1);
  split->setStretchFactor(1, 3);
  split->setSizes({260, 640});

  auto * buttons = new QVBoxLayout;
  for (QPushButton * b : {newObjectButton, editObjectButton, viewObjectButton, copyObjectButton, deleteObjectButton})
    buttons->addWidget(b);
  buttons->addSpacing(12);
  for (QPushButton * b : {newCategoryButton, deleteCategoryButton})
    buttons->addWidget(b);
  buttons->addStretch(1);
  buttons->addWidget(okButton);
  buttons->addWidget(cancelButton);

  auto * top = new QHBoxLayout(this);
  top->addWidget(split, 1);
  top->addLayout(buttons);

  connect(objectsListView, &QTreeWidget::itemDoubleClicked, this, &CObjectBrowserDialogBase::OnObjectDoubleClicked);
  connect(objectsListView, &QWidget::customContextMenuRequested, this,
          &CObjectBrowserDialogBase::OnObjectRightClicked);
  connect(objectsListView, &QTreeWidget::itemSelectionChanged, this, &CObjectBrowserDialogBase::OnObjectSelected);
  connect(objectsListView, &QTreeWidget::itemChanged, this, &CObjectBrowserDialogBase::OnObjectRenamed);
  connect(categoryListView, &QWidget::customContextMenuRequested, this,
          &CObjectBrowserDialogBase::OnCategoryRightClicked);
  connect(categoryListView, &QTreeWidget::itemSelectionChanged, this, &CObjectBrowserDialogBase::OnCategorySelected);
  connect(categoryListView, &QTreeWidget::itemChanged, this, &CObjectBrowserDialogBase::OnCategoryRenamed);
  connect(viewObjectButton, &QPushButton::clicked, this, &CObjectBrowserDialogBase::OnViewObjectClicked);
  connect(newObjectButton, &QPushButton::clicked, this, &CObjectBrowserDialogBase::OnNewObjectClicked);
  connect(editObjectButton, &QPushButton::clicked, this, &CObjectBrowserDialogBase::OnEditObjectClicked);
  connect(copyObjectButton, &QPushButton::clicked, this, &CObjectBrowserDialogBase::OnCopyObjectClicked);
  connect(deleteObjectButton, &QPushButton::clicked, this, &CObjectBrowserDialogBase::OnDeleteObjectClicked);
  connect(newCategoryButton, &QPushButton::clicked, this, &CObjectBrowserDialogBase::OnNewCategoryClicked);
  connect(deleteCategoryButton, &QPushButton::clicked, this, &CObjectBrowserDialogBase::OnDeleteCategoryClicked);
  connect(searchButton, &QPushButton::clicked, this, &CObjectBrowserDialogBase::OnSearchClicked);
  connect(findTextCombo, &QComboBox::currentTextChanged, this, &CObjectBrowserDialogBase::OnFindTextComboChanged);
  connect(filterEdit, &QLineEdit::textChanged, this, &CObjectBrowserDialogBase::OnFilterTextChanged);
  connect(okButton, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
}

CObjectBrowserDialogBase::~CObjectBrowserDialogBase() = default;

void CObjectBrowserDialogBase::NotYetImplemented(char const * text)
{
  QMessageBox::information(this, QStringLiteral("DEBUG"), QString::fromUtf8(text));
}

void CObjectBrowserDialogBase::OnObjectDoubleClicked(QTreeWidgetItem *, int)
{
  NotYetImplemented("Object Double Click not yet implemented.");
}
void CObjectBrowserDialogBase::OnObjectRightClicked(QPoint const &)
{
  NotYetImplemented("Object Right Click not yet implemented.");
}
void CObjectBrowserDialogBase::OnViewObjectClicked() { NotYetImplemented("Object View not yet implemented."); }
void CObjectBrowserDialogBase::OnNewObjectClicked() { NotYetImplemented("Object New not yet implemented."); }
void CObjectBrowserDialogBase::OnEditObjectClicked() { NotYetImplemented("Object Edit not yet implemented."); }
void CObjectBrowserDialogBase::OnDeleteObjectClicked() { NotYetImplemented("Detail Delete not yet implemented."); }
void CObjectBrowserDialogBase::OnRenameObjectClicked() { NotYetImplemented("Object Rename not yet implemented."); }
void CObjectBrowserDialogBase::OnCopyObjectClicked() { NotYetImplemented("Copy Object not yet implemented."); }
void CObjectBrowserDialogBase::OnRenameCategoryClicked() { NotYetImplemented("Rename Category not yet implemented."); }
void CObjectBrowserDialogBase::OnNewCategoryClicked() { NotYetImplemented("New Category not yet implemented."); }
void CObjectBrowserDialogBase::OnDeleteCategoryClicked() { NotYetImplemented("Delete Category not yet implemented."); }
void CObjectBrowserDialogBase::OnCategoryRightClicked(QPoint const &)
{
  NotYetImplemented("Category right click not yet implemented.");
}
void CObjectBrowserDialogBase::OnObjectRenamed(QTreeWidgetItem *, int)
{
  NotYetImplemented("Object rename not yet implemented.");
}
void CObjectBrowserDialogBase::OnCategoryRenamed(QTreeWidgetItem *, int)
{
  NotYetImplemented("Category rename not yet implemented.");
}
// Selection, search and saving do nothing in the bare form.
void CObjectBrowserDialogBase::OnCategorySelected() {}
void CObjectBrowserDialogBase::OnObjectSelected() {}
void CObjectBrowserDialogBase::OnSearchClicked() {}
void CObjectBrowserDialogBase::OnFindTextComboChanged(QString const &) {}
void CObjectBrowserDialogBase::OnFilterTextChanged(QString const &) {}
void CObjectBrowserDialogBase::OnClearSearchHistory() {}
void CObjectBrowserDialogBase::OnClearObjectHistory() {}
void CObjectBrowserDialogBase::OnSaveClicked() {}
void CObjectBrowserDialogBase::OnSaveAsClicked() {}

} // namespace Velmora::QtDialogs
