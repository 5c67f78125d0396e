#include <velmora/dialogs/DataSourceEditor.h>

namespace Velmora::QtDialogs {

CDataSourceEditor::CDataSourceEditor(DB::CDataSource * dataSource, EObjectType classFilter, QWidget * parent,
                                     char const * name, bool modal)
  : CDataSourceDialog(dataSource, classFilter, parent, name, modal)
{
  SetSettingsStem(QStringLiteral("/Velmora/Qt/DataSourceEditor"));
  SetEditable(!dataSource->GetReadOnly());
  setWindowTitle(QStringLiteral("Data Source Editor"));
}

CDataSourceEditor::~CDataSourceEditor() = default;

EDialogState CDataSourceEditor::Show()
{
  return exec() == QDialog::Accepted ? eDialogAccepted : eDialogCancelled;
}

EDialogState CDataSourceEditor::Show(CSerializable const ** object, EObjectType * type)
{
  return RunPicker(nullptr, object, type);
}

EDialogState CDataSourceEditor::Show(std::list<CSerializable *> & objects, EObjectType * type)
{
  return RunPicker(&objects, nullptr, type);
}

} // namespace Velmora::QtDialogs
