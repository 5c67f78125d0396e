// Renders the browser, a picker, the datum shift picker and two editor
// panels on a data file into PNG files, for the documentation.
//   velmora-dialog-screenshots DATAFILE OUTDIR
#include <velmora/datasource/CDataSource.h>
#include <velmora/dialogs/Dialogs.h>
#include <velmora/refsys/CoordSys.h>
#include <velmora/transforms/datumshifts/DatumShiftInfo.h>

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QPixmap>
#include <QTreeWidget>

#include <cstdio>
#include <memory>

using namespace Velmora;
using namespace Velmora::QtDialogs;

namespace {

void Save(QWidget & window, QString const & file)
{
  window.show();
  for (int i = 0; i < 5; ++i)
    QApplication::processEvents();
  window.grab().save(file);
  std::printf("%s\n", qPrintable(file));
}

void SelectRow(QTreeWidget * view, QString const & text, int column = 0)
{
  QList<QTreeWidgetItem *> rows = view->findItems(text, Qt::MatchExactly | Qt::MatchRecursive, column);
  if (rows.isEmpty())
    return;
  for (QTreeWidgetItem * p = rows.front()->parent(); p; p = p->parent())
    p->setExpanded(true);
  view->setCurrentItem(rows.front());
  view->scrollToItem(rows.front());
}

} // namespace

int main(int argc, char ** argv)
{
  QApplication app(argc, argv);
  if (argc != 3) {
    std::fputs("usage: velmora-dialog-screenshots DATAFILE OUTDIR\n", stderr);
    return 2;
  }
  QDir const out(QString::fromLocal8Bit(argv[2]));
  DB::CDataSource source;
  source.LoadFile(QString::fromLocal8Bit(argv[1]));

  CDataBrowser browser(&source, false);
  InnerDataBrowser & inner = *browser.GetDialog();
  inner.SetDefaultIssuer("EPSG");
  inner.SetDefaultCode("28992");
  inner.resize(1180, 640);
  Save(inner, out.filePath("browser.png"));

  CDataSourcePicker picker(&source, kObjectAnyCoordSys);
  picker.resize(1000, 560);
  picker.SetDefaultIssuer("EPSG");
  picker.SetDefaultCode("28992");
  picker.show();
  picker.filterEdit->setText("Amersfoort");
  SelectRow(picker.GetObjectsListView(), "28992", 1);
  Save(picker, out.filePath("picker.png"));

  std::unique_ptr<CS::CCoordSys> nad27(source.GetCoordSys("EPSG", "4267"));
  std::unique_ptr<CS::CCoordSys> wgs84(source.GetCoordSys("EPSG", "4326"));
  CT::DS::CDatumShiftPreferencesEx prefs;
  CDatumShiftPicker shifts(&source, *nad27, *wgs84, prefs);
  shifts.resize(1000, 480);
  Save(shifts, out.filePath("datumshift-picker.png"));

  DB::CObjectNodeTag projected(kObjectProjectedCoordSys, CString("EPSG"), CString("28992"), CString());
  CEditorForm viewer(&source, &projected, true);
  viewer.resize(560, 640);
  Save(viewer, out.filePath("editor-projected.png"));

  DB::CObjectNodeTag ellipsoid(kObjectEllipsoid, CString("EPSG"), CString("7030"), CString());
  CEditorForm editor(&source, &ellipsoid, false);
  editor.resize(520, 480);
  Save(editor, out.filePath("editor-ellipsoid.png"));
  return 0;
}
