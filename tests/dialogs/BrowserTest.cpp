// The browser, the pickers and the datum shift picker, driven through their widgets.
#include "ModalDriver.h"

#include <velmora/dialogs/Dialogs.h>
#include <velmora/foundation/Startup.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/refsys/CoordSys.h>
#include <velmora/transforms/datumshifts/DatumShiftCollection.h>

#include <QComboBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTest>

#include <gtest/gtest.h>

using namespace Velmora;
using namespace Velmora::QtDialogs;
using VelmoraTest::ModalDriver;
using VelmoraTest::ScratchStore;

namespace {

// Settings go to a directory of the test run, not the user's; the
// application object comes from the library's start-up.
bool const g_isolated = [] {
  static QTemporaryDir config;
  qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
  return VMInitialize();
}();

QString const kSmallFile = QStringLiteral(VELMORA_TEST_DATA "/datasource/all_kinds.xml");

DB::CDataSource & Shipped()
{
  static DB::CDataSource * source = [] {
    auto * s = new DB::CDataSource;
    s->LoadFile(QStringLiteral(VELMORA_SHIPPED_DATA));
    return s;
  }();
  return *source;
}

QTreeWidgetItem * TopRow(QTreeWidget * view, QString const & text)
{
  QList<QTreeWidgetItem *> rows = view->findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
  return rows.isEmpty() ? nullptr : rows.front();
}

QStringList Headers(QTreeWidget * view)
{
  QStringList headers;
  for (int i = 0; i < view->columnCount(); ++i)
    headers << view->headerItem()->text(i);
  return headers;
}

long CountOf(DB::CDataSource & source, long type)
{
  std::unique_ptr<DB::CObjectInfoSet> set(source.GetObjectInfoSet(type));
  return set->Count();
}

// An editor on the angular units of the small file, with the "Grad" row selected.
struct UnitsEditor
{
  UnitsEditor() : dialog(&store.source, kObjectAngularUnit)
  {
    dialog.show();
    dialog.GetCategoryListView()->setCurrentItem(TopRow(dialog.GetCategoryListView(), "Angular Units"));
    Select("Grad");
  }
  void Select(QString const & name)
  {
    dialog.GetObjectsListView()->clearSelection();
    QTreeWidgetItem * row = TopRow(dialog.GetObjectsListView(), name);
    dialog.GetObjectsListView()->setCurrentItem(row);
    row->setSelected(true);
  }
  ScratchStore store{kSmallFile};
  CDataSourceEditor dialog;
};

} // namespace

TEST(DialogsBase, StubsShowTheirTextUnderDebug)
{
  CObjectBrowserDialogBase base;
  std::pair<QPushButton *, char const *> const cases[] = {
    {base.viewObjectButton, "Object View not yet implemented."},
    {base.newObjectButton, "Object New not yet implemented."},
    {base.editObjectButton, "Object Edit not yet implemented."},
    {base.copyObjectButton, "Copy Object not yet implemented."},
    {base.deleteObjectButton, "Detail Delete not yet implemented."},
    {base.newCategoryButton, "New Category not yet implemented."},
    {base.deleteCategoryButton, "Delete Category not yet implemented."},
  };
  for (auto const & [button, text] : cases) {
    ModalDriver driver;
    driver.Press("OK");
    QTest::mouseClick(button, Qt::LeftButton);
    ASSERT_EQ(driver.Seen().size(), 1u) << text;
    EXPECT_EQ(driver.Seen()[0].caption, "DEBUG");
    EXPECT_EQ(driver.Seen()[0].text, text);
  }
}

TEST(DialogsBase, NoDataSourceRaises54)
{
  try {
    CDataSourcePicker picker(nullptr, kObjectEllipsoid);
    FAIL();
  } catch (EX::CVelmoraException const & e) {
    EXPECT_EQ(e.GetErrorCode(), 54);
    EXPECT_EQ(e.GetLocation(), "ObjectBrowserDialog::ObjectBrowserDialog");
    EXPECT_EQ(e.GetDetails(), "Dialog requires a DataSource object.");
  }
}

TEST(DataSourcePicker, CoordSysFilterListsFourKindsAndSearches)
{
  CDataSourcePicker picker(&Shipped(), kObjectAnyCoordSys);
  picker.show();
  EXPECT_EQ(picker.windowTitle(), "Select Coordinate Systems from Data Source");
  QTreeWidget * categories = picker.GetCategoryListView();
  for (char const * special : {"*All*", "*Recent*", "*Search*"})
    EXPECT_NE(TopRow(categories, special), nullptr) << special;
  QTreeWidgetItem * systems = TopRow(categories, "Coordinate Systems");
  ASSERT_NE(systems, nullptr);
  ASSERT_EQ(systems->childCount(), 4);
  long kinds = 0;
  for (int i = 0; i < 4; ++i)
    kinds |= static_cast<DDListViewItem *>(systems->child(i))->GetObjectType();
  EXPECT_EQ(kinds, kObjectAnyCoordSys);

  // Search as you type, by code and by name, over every kind.
  picker.filterEdit->setText("4326");
  QTreeWidget * objects = picker.GetObjectsListView();
  EXPECT_EQ(Headers(objects).mid(0, 2), QStringList({"Name", "EPSG Code"}));
  EXPECT_FALSE(objects->findItems("4326", Qt::MatchExactly, 1).isEmpty());
  picker.filterEdit->setText("Amersfoort / RD New");
  EXPECT_EQ(objects->topLevelItemCount(), 1);
  picker.filterEdit->clear();

  // The search with history: no hits adds nothing, a hit adds an entry kept in the settings.
  QTreeWidgetItem * search = TopRow(categories, "*Search*");
  categories->setCurrentItem(systems);
  {
    ModalDriver driver;
    driver.Press("OK");
    picker.findTextCombo->setEditText("no such system anywhere");
    QTest::mouseClick(picker.searchButton, Qt::LeftButton);
    ASSERT_EQ(driver.Seen().size(), 1u);
    EXPECT_EQ(driver.Seen()[0].caption, "Velmora");
    EXPECT_EQ(driver.Seen()[0].text, "Search produced no results.");
    EXPECT_EQ(search->childCount(), 0);
  }
  picker.findTextCombo->setEditText("Amersfoort");
  QTest::mouseClick(picker.searchButton, Qt::LeftButton);
  ASSERT_EQ(search->childCount(), 1);
  EXPECT_EQ(search->child(0)->text(0), "\"Amersfoort\" in \"Coordinate Systems\" for \"Name\"");
  EXPECT_GT(objects->topLevelItemCount(), 1);
  QSettings settings(QSettings::UserScope, "Tarnwell");
  EXPECT_EQ(settings.value("/Velmora/Qt/SearchHistory/0/search_string").toString(), "Amersfoort");
  EXPECT_EQ(settings.value("/Velmora/Qt/SearchHistory/0/column_name").toString(), "Name");
}

TEST(ObjectPicker, ReturnsTheMarkedObjectAndKeepsGeometry)
{
  CObjectPicker picker(&Shipped(), kObjectGeodeticCoordSys, "EPSG", "4326");
  ModalDriver driver;
  driver.Then([](QWidget * w) { static_cast<QDialog *>(w)->accept(); });
  EObjectType type = kObjectNone;
  std::unique_ptr<CSerializable> chosen(picker.Show(&type));
  ASSERT_NE(chosen, nullptr);
  EXPECT_EQ(chosen->GetIssuerCode("EPSG"), "4326");
  EXPECT_EQ(type, kObjectGeodeticCoordSys);
  EXPECT_EQ(picker.GetDialog()->windowTitle(), "Select Geodetic from Data Source");
  QSettings settings(QSettings::UserScope, "Tarnwell");
  EXPECT_TRUE(settings.contains("/Velmora/Qt/ObjectPicker.Width"));
  EXPECT_FALSE(settings.contains("/Velmora/Qt/DataSourcePicker.Width"));

  // A cancelled pick gives nothing.
  driver.Then([](QWidget * w) { static_cast<QDialog *>(w)->reject(); });
  EXPECT_EQ(picker.Show(), nullptr);
}

TEST(DatumShiftPicker, ListsRoutesAndTheChoiceOfNone)
{
  DB::CDataSource & source = Shipped();
  std::unique_ptr<CS::CCoordSys> nad27(source.GetCoordSys("EPSG", "4267"));
  std::unique_ptr<CS::CCoordSys> wgs84(source.GetCoordSys("EPSG", "4326"));
  CT::DS::CDatumShiftPreferencesEx prefs;
  std::list<std::list<CT::DS::CDatumShiftInfo>> routes;
  source.GetValidDatumShifts(*nad27, *wgs84, prefs, routes);
  long const direct = std::count_if(routes.begin(), routes.end(), [](auto const & r) { return r.size() == 1; });
  ASSERT_GT(direct, 0);

  CDatumShiftPicker picker(&source, *nad27, *wgs84, prefs);
  picker.show();
  EXPECT_EQ(picker.windowTitle(), "Select DatumShift(s) between " + nad27->GetName() + " and " + wgs84->GetName());
  QTreeWidget * categories = picker.GetCategoryListView();
  QTreeWidget * objects = picker.GetObjectsListView();
  ASSERT_NE(TopRow(categories, "Matching Datum Shifts"), nullptr);
  EXPECT_EQ(Headers(objects), QStringList({"Name", "Envelope", "Reverse"}));
  EXPECT_EQ(objects->topLevelItemCount(), direct);
  for (int i = 0; i < objects->topLevelItemCount(); ++i)
    EXPECT_TRUE(objects->topLevelItem(i)->text(2) == "true" || objects->topLevelItem(i)->text(2) == "false");
  EXPECT_EQ(picker.viewObjectButton->text(), "View Datum Shift");
  EXPECT_EQ(picker.viewObject2Button->toolTip(), "View selected coordinate system info");

  // Choosing a route hands over a collection of it; choosing none hands over nothing.
  ModalDriver driver;
  driver.Then([](QWidget * w) { static_cast<QDialog *>(w)->accept(); });
  CT::DS::CDatumShiftCollection * chosen = nullptr;
  EXPECT_EQ(picker.Show(&chosen), eDialogAccepted);
  ASSERT_NE(chosen, nullptr);
  EXPECT_EQ(chosen->Count(), 1);
  delete chosen;

  categories->setCurrentItem(categories->topLevelItem(0));
  EXPECT_EQ(Headers(objects), QStringList({"Description"}));
  EXPECT_EQ(objects->topLevelItem(0)->text(0), "No Datum Shifts will be applied to the transformation.");
  driver.Then([](QWidget * w) { static_cast<QDialog *>(w)->accept(); });
  EXPECT_EQ(picker.Show(&chosen), eDialogAccepted);
  EXPECT_EQ(chosen, nullptr);
}

TEST(DataSourceEditor, DeleteAsksAndRemoves)
{
  UnitsEditor editor;
  long const before = CountOf(editor.store.source, kObjectAngularUnit);
  ModalDriver driver;
  driver.Press("&No");
  QTest::mouseClick(editor.dialog.deleteObjectButton, Qt::LeftButton);
  ASSERT_EQ(driver.Seen().size(), 1u);
  EXPECT_EQ(driver.Seen()[0].caption, "Confirm");
  EXPECT_EQ(driver.Seen()[0].text, "Delete object \"Grad\"? Any objects referencing this one will fail to load.");
  EXPECT_EQ(CountOf(editor.store.source, kObjectAngularUnit), before);
  driver.Press("&Yes");
  QTest::mouseClick(editor.dialog.deleteObjectButton, Qt::LeftButton);
  EXPECT_EQ(CountOf(editor.store.source, kObjectAngularUnit), before - 1);
  EXPECT_EQ(TopRow(editor.dialog.GetObjectsListView(), "Grad"), nullptr);
}

TEST(DataSourceEditor, RenameRules)
{
  UnitsEditor editor;
  struct Case
  {
    char const * row;
    char const * name;
    char const * message; // null: the rename goes through
  } const cases[] = {
    {"Grad", "", "Name string cannot be empty."},
    {"Degree", "Deg", "Cannot rename object from established source."},
    {"Grad", "Gon", nullptr},
  };
  for (Case const & c : cases) {
    ModalDriver driver;
    driver.Press("OK");
    TopRow(editor.dialog.GetObjectsListView(), c.row)->setText(0, c.name);
    if (c.message) {
      ASSERT_EQ(driver.Seen().size(), 1u) << c.row;
      EXPECT_EQ(driver.Seen()[0].caption, "Velmora");
      EXPECT_EQ(driver.Seen()[0].text, c.message);
      EXPECT_NE(TopRow(editor.dialog.GetObjectsListView(), c.row), nullptr);
    } else {
      EXPECT_TRUE(driver.Seen().empty());
      CString name, group;
      ASSERT_TRUE(editor.store.source.GetObjectInfo(kObjectAngularUnit, "VM", "2", name, group));
      EXPECT_EQ(name, c.name);
    }
  }
}

TEST(DataSourceEditor, ReadOnlyEditOpensAViewer)
{
  UnitsEditor editor;
  editor.Select("Degree");
  ModalDriver driver;
  QString caption;
  bool nameReadOnly = false;
  driver.Press("OK").Then([&](QWidget * w) {
    caption = w->windowTitle();
    nameReadOnly = w->findChild<QLineEdit *>()->isReadOnly();
    static_cast<QDialog *>(w)->accept();
  });
  QTest::mouseClick(editor.dialog.editObjectButton, Qt::LeftButton);
  ASSERT_FALSE(driver.Seen().empty());
  EXPECT_EQ(driver.Seen()[0].caption, "Read-only Object");
  EXPECT_EQ(driver.Seen()[0].text, "The object is read-only. To modify a read-only object, use 'Copy Object' to "
                                   "create and edit a copy.");
  EXPECT_EQ(caption, "Angular Unit Viewer");
  EXPECT_TRUE(nameReadOnly);
}

TEST(DataSourceEditor, CancelledCopyLeavesNothingAndCloseAsksOnlyAfterChanges)
{
  UnitsEditor editor;
  long const before = CountOf(editor.store.source, kObjectAngularUnit);
  ModalDriver driver;
  QString caption;
  driver.Then([&](QWidget * w) {
    caption = w->windowTitle();
    static_cast<QDialog *>(w)->reject();
  });
  QTest::mouseClick(editor.dialog.copyObjectButton, Qt::LeftButton);
  EXPECT_EQ(caption, "Angular Unit Editor");
  EXPECT_EQ(CountOf(editor.store.source, kObjectAngularUnit), before);

  // Nothing changed that the user kept: closing asks nothing.
  CDataSourceEditor unchanged(&editor.store.source, kObjectLinearUnit);
  unchanged.show();
  QTest::mouseClick(unchanged.okButton, Qt::LeftButton);
  EXPECT_TRUE(driver.Seen().empty());

  // After a change it asks, with its three answers.
  CDataSourceEditor changed(&editor.store.source, kObjectLinearUnit);
  changed.show();
  editor.store.source.AssignObjectName("Feet", kObjectLinearUnit, "VM", "2");
  QStringList buttons;
  driver.Then([&](QWidget * w) {
    for (QAbstractButton * b : static_cast<QMessageBox *>(w)->buttons())
      buttons << b->text();
    static_cast<QMessageBox *>(w)->buttons().back()->click();
  });
  QTest::mouseClick(changed.okButton, Qt::LeftButton);
  ASSERT_EQ(driver.Seen().size(), 1u);
  EXPECT_EQ(driver.Seen()[0].caption, "Confirm");
  EXPECT_EQ(driver.Seen()[0].text,
            "Would you like to save changes to \"" + editor.store.source.GetFileName() + "\"?");
  buttons.sort();
  EXPECT_EQ(buttons, QStringList({"Continue without Saving", "Save", "Save As"}));
}

TEST(DataSourceEditor, SaveAsAsksBeforeReplacing)
{
  UnitsEditor editor;
  QString const target = editor.store.dir.filePath("other");
  QFile::copy(kSmallFile, target + ".xml");
  ModalDriver driver;
  driver
    .Then([&](QWidget * w) {
      auto * dialog = qobject_cast<QFileDialog *>(w);
      EXPECT_EQ(dialog->windowTitle(), "Save As");
      EXPECT_EQ(dialog->nameFilters(), QStringList({"Geodetic Data Source (*.xml)"}));
      dialog->selectFile(target);
      QMetaObject::invokeMethod(dialog, "accept");
    })
    .Press("&No");
  editor.dialog.OnSaveAsClicked();
  ASSERT_EQ(driver.Seen().size(), 1u);
  EXPECT_EQ(driver.Seen()[0].text,
            "File " + target + ".xml:\nThe specified file already exists, do you want to replace it?");
}

TEST(DataSourceEditor, NewObjectNeedsOneEditableKind)
{
  ScratchStore store(kSmallFile);
  std::pair<EObjectType, char const *> const cases[] = {
    {kObjectCoordTransform, "Coordinate Transform editing is not supported at this time."},
    {kObjectAnyCoordSys, "You must select a specific object type."},
  };
  for (auto const & [filter, text] : cases) {
    CDataSourceEditor editor(&store.source, filter);
    editor.show();
    ModalDriver driver;
    driver.Press("OK");
    editor.GetCategoryListView()->setCurrentItem(editor.GetCategoryListView()->topLevelItem(0));
    QTest::mouseClick(editor.newObjectButton, Qt::LeftButton);
    ASSERT_EQ(driver.Seen().size(), 1u);
    EXPECT_EQ(driver.Seen()[0].caption, "Velmora");
    EXPECT_EQ(driver.Seen()[0].text, text);
  }
}

TEST(DataSourceEditor, DeleteCategoryAsks)
{
  UnitsEditor editor;
  QTest::mouseClick(editor.dialog.newCategoryButton, Qt::LeftButton);
  QTreeWidgetItem * folder = editor.dialog.GetCategoryListView()->currentItem();
  ASSERT_EQ(folder->text(0), "New Category");
  long const id = static_cast<CDataSourceCategoryListItem *>(folder)->GetGroupID();
  ModalDriver driver;
  driver.Press("&Yes");
  QTest::mouseClick(editor.dialog.deleteCategoryButton, Qt::LeftButton);
  ASSERT_EQ(driver.Seen().size(), 1u);
  EXPECT_EQ(driver.Seen()[0].text,
            "Delete category \"New Category\" and all the sub-categories and objects it contains?");
  EXPECT_EQ(editor.store.source.GetFolder(id, kObjectAngularUnit), nullptr);
}

TEST(DataBrowser, RowsFollowEditsMadeElsewhere)
{
  ScratchStore store(kSmallFile);
  CDataBrowser browser(&store.source, false);
  InnerDataBrowser & inner = *browser.GetDialog();
  inner.show();
  inner.GetCategoryListView()->setCurrentItem(TopRow(inner.GetCategoryListView(), "Angular Units"));
  store.source.AssignObjectName("Gon", kObjectAngularUnit, "VM", "2");
  EXPECT_NE(TopRow(inner.GetObjectsListView(), "Gon"), nullptr);
  store.source.RemoveAngularUnit("VM", "2");
  EXPECT_EQ(TopRow(inner.GetObjectsListView(), "Gon"), nullptr);
  EXPECT_EQ(CDataBrowser::GetClassElementName(kObjectProjectedCoordSys), "projectedcoordsys");
  inner.reject();
  QSettings settings(QSettings::UserScope, "Tarnwell");
  EXPECT_TRUE(settings.contains("/Velmora/Qt/DataBrowser.Height"));
}
