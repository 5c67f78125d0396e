#include <velmora/dialogs/DialogTypes.h>

#include <QMessageBox>
#include <QSettings>
#include <QWidget>

#include <algorithm>

namespace Velmora::QtDialogs {

void SaveGeometry(QWidget const & window, QString const & stem)
{
  if (stem.isEmpty())
    return;
  QSettings settings(QSettings::UserScope, kSettingsOrganisation);
  settings.setValue(stem + ".Width", window.width());
  settings.setValue(stem + ".Height", window.height());
  settings.setValue(stem + ".X", window.x());
  settings.setValue(stem + ".Y", window.y());
}

void RestoreGeometry(QWidget & window, QString const & stem)
{
  if (stem.isEmpty())
    return;
  QSettings settings(QSettings::UserScope, kSettingsOrganisation);
  if (!settings.contains(stem + ".Width"))
    return;
  window.resize(settings.value(stem + ".Width").toInt(), settings.value(stem + ".Height").toInt());
  window.move(settings.value(stem + ".X").toInt(), settings.value(stem + ".Y").toInt());
}

QString NextFreeCode(DB::CDataSource const & source, long type)
{
  long long largest = 0;
  for (CSerializableDataDB * body : source.SearchDB(type))
    largest = std::max(largest, body->GetIssuerCode("VM").toLongLong());
  return QString::number(largest + 1);
}

void ShowMessage(QWidget * parent, QString const & caption, QString const & text)
{
  QMessageBox::information(parent, caption, text);
}

} // namespace Velmora::QtDialogs
