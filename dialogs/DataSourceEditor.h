#pragma once
// The browser that edits a data source, and the picker that returns objects of it.
#include <velmora/dialogs/DataSourceDialog.h>

namespace Velmora::QtDialogs {

class VELMORA_API CDataSourceEditor : public CDataSourceDialog
{
  Q_OBJECT
public:
  CDataSourceEditor(DB::CDataSource * dataSource, EObjectType classFilter, QWidget * parent = nullptr,
                    char const * name = nullptr, bool modal = true);
  ~CDataSourceEditor() override;

  EDialogState Show();
  // The selected object, a new one the caller owns, and its type.
  EDialogState Show(CSerializable const ** object, EObjectType * type = nullptr);
  // The selected objects, new ones the caller owns; the type of the first.
  EDialogState Show(std::list<CSerializable *> & objects, EObjectType * type = nullptr);
};

} // namespace Velmora::QtDialogs
