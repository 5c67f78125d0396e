#pragma once
// Lists the routes of datum shifts between two coordinate systems that the
// store knows, and the choice of none, and returns the route chosen.
#include <velmora/dialogs/ObjectBrowserDialog.h>
#include <velmora/transforms/datumshifts/DatumShiftInfo.h>

#include <list>

namespace Velmora::CS {
class CCoordSys;
}
namespace Velmora::CT::DS {
class CDatumShiftCollection;
}

namespace Velmora::QtDialogs {

class VELMORA_API CDatumShiftPicker : public CObjectBrowserDialog
{
  Q_OBJECT
public:
  CDatumShiftPicker(DB::CDataSource * dataSource, CS::CCoordSys const & source, CS::CCoordSys const & target,
                    CT::DS::CDatumShiftPreferencesEx const & prefs, QWidget * parent = nullptr,
                    char const * name = nullptr, bool modal = true);
  ~CDatumShiftPicker() override;

  // A new collection with the chosen route, the caller's; null for the choice of none.
  EDialogState Show(CT::DS::CDatumShiftCollection ** shifts);

  QPushButton * viewObject2Button;

public slots:
  void OnViewObject1Clicked();
  void OnViewObject2Clicked();
  void OnViewObjectClicked() override;
  void OnObjectDoubleClicked(QTreeWidgetItem * item, int column) override;
  void OnObjectRightClicked(QPoint const &) override {}
  void OnCategoryRightClicked(QPoint const &) override {}
  void OnObjectRenamed(QTreeWidgetItem *, int) override {}
  void OnCategoryRenamed(QTreeWidgetItem *, int) override {}
  void OnCategorySelected() override;
  void OnObjectSelected() override;
  void done(int result) override;

protected:
  void Populate() override;

private:
  using Route = std::list<CT::DS::CDatumShiftInfo>;
  void ViewShift(int leg);
  CString EnvelopeName(CT::DS::CDatumShiftInfo const & info) const;

  std::list<Route> m_routes;
  QString m_noShiftText;
};

} // namespace Velmora::QtDialogs
