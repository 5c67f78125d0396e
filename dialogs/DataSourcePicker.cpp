#include <velmora/dialogs/DataSourcePicker.h>

#include <QPushButton>

namespace Velmora::QtDialogs {

CDataSourcePicker::CDataSourcePicker(DB::CDataSource * dataSource, EObjectType classFilter, QWidget * parent,
                                     char const * name, bool modal)
  : CDataSourceDialog(dataSource, classFilter, parent, name, modal)
{
  SetSettingsStem(QStringLiteral("/Velmora/Qt/DataSourcePicker"));
  SetEditable(false);
  QString const typeName = DB::CDataSource::GetTypeNameFromConstant(classFilter);
  setWindowTitle(typeName.isEmpty() ? QStringLiteral("Select Object from Data Source")
                                    : QStringLiteral("Select %1 from Data Source").arg(typeName));
  okButton->setText(QStringLiteral("Select"));
}

CDataSourcePicker::~CDataSourcePicker() = default;

EDialogState CDataSourcePicker::Show(CSerializable const ** object, EObjectType * type)
{
  objectsListView->setSelectionMode(QAbstractItemView::SingleSelection);
  return RunPicker(nullptr, object, type);
}

EDialogState CDataSourcePicker::Show(std::list<CSerializable *> & objects, EObjectType * type)
{
  objectsListView->setSelectionMode(QAbstractItemView::ExtendedSelection);
  return RunPicker(&objects, nullptr, type);
}

} // namespace Velmora::QtDialogs
