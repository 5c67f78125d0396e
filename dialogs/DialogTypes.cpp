#include <velmora/dialogs/DialogTypes.h>

#include <velmora/foundation/CIdentifierCollection.h>

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

namespace {
QString CodeIn(CIdentifierCollection const & identifiers, char const * issuer)
{
  auto const & items = identifiers.Items();
  auto const it = items.find(CString(issuer));
  return it == items.end() ? QString() : QString(it->second);
}
} // namespace

QString IssuerCode(CSerializableData const & object, char const * issuer)
{
  return CodeIn(object.GetIdentifiers(), issuer);
}

QString IssuerCode(CSerializable const & object, char const * issuer)
{
  return CodeIn(object.GetIdentifiers(), issuer);
}

QString NextFreeCode(DB::CDataSource const & source, long type)
{
  long long largest = 0;
  for (CSerializableDataDB * body : source.SearchDB(type))
    largest = std::max(largest, IssuerCode(*body, "VM").toLongLong());
  return QString::number(largest + 1);
}

void ShowMessage(QWidget * parent, QString const & caption, QString const & text)
{
  QMessageBox::information(parent, caption, text);
}

} // namespace Velmora::QtDialogs
