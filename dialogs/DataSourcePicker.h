#pragma once
// Picks one object or several from a data source; views but does not edit.
#include <velmora/dialogs/DataSourceDialog.h>

namespace Velmora::QtDialogs {

class VELMORA_API CDataSourcePicker : public CDataSourceDialog
{
  Q_OBJECT
public:
  CDataSourcePicker(DB::CDataSource * dataSource, EObjectType classFilter, QWidget * parent = nullptr,
                    char const * name = nullptr, bool modal = true);
  ~CDataSourcePicker() override;

  // The selected object, a new one the caller owns, and its type.
  EDialogState Show(CSerializable const ** object, EObjectType * type = nullptr);
  // The selected objects, new ones the caller owns; the type of the first.
  EDialogState Show(std::list<CSerializable *> & objects, EObjectType * type = nullptr);
};

} // namespace Velmora::QtDialogs
