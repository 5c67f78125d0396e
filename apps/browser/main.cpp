// velmora-browser: browses, edits and saves a Velmora data file in the data browser.
//   velmora-browser [--read-only] [FILE]
// Without FILE it opens the shipped data file: share/velmora/velmora.xml beside
// the installed program, or data/velmora.xml of the build tree.
#include <velmora/datasource/CDataSource.h>
#include <velmora/dialogs/DataBrowser.h>
#include <velmora/foundation/VelmoraException.h>

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>

#include <cstdio>

namespace {

QString ShippedDataFile()
{
  QDir const here(QCoreApplication::applicationDirPath());
  for (QString const & relative : {QStringLiteral("../share/velmora/velmora.xml"), QStringLiteral("../data/velmora.xml")})
    if (QFileInfo const file(here.filePath(relative)); file.isFile())
      return file.canonicalFilePath();
  return QString();
}

} // namespace

int main(int argc, char ** argv)
{
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("velmora-browser"));
  QStringList arguments = QApplication::arguments().mid(1);
  bool const readOnly = arguments.removeAll(QStringLiteral("--read-only")) > 0;
  if (arguments.contains(QStringLiteral("--help")) || arguments.size() > 1) {
    std::fputs("usage: velmora-browser [--read-only] [FILE]\n", stderr);
    return arguments.contains(QStringLiteral("--help")) ? 0 : 2;
  }
  QString const file = arguments.isEmpty() ? ShippedDataFile() : arguments.front();
  if (file.isEmpty()) {
    std::fputs("velmora-browser: no data file found; give one\n", stderr);
    return 1;
  }
  using namespace Velmora;
  DB::CDataSource source;
  try {
    source.LoadFile(QFileInfo(file).absoluteFilePath());
    source.SetReadOnly(readOnly || !QFileInfo(file).isWritable());
    QtDialogs::CDataBrowser browser(&source, source.GetReadOnly());
    browser.LoadSettings();
    browser.Show();
  } catch (EX::CVelmoraException const & e) {
    QMessageBox::critical(nullptr, QStringLiteral("Velmora"), e.GetFullMessage());
    return 1;
  }
  return 0;
}
