#include <velmora/dialogs/DatumShiftPicker.h>

#include <velmora/dialogs/EditorForm.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/refsys/CoordSys.h>
#include <velmora/transforms/datumshifts/DatumShiftCollection.h>

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>

#include <map>
#include <memory>

namespace Velmora::QtDialogs {

namespace {

constexpr char kVM[] = "VM";
constexpr char kOneShiftColumns[] = "Name,Envelope,Reverse";
constexpr char kTwoShiftColumns[] = "Datum Shift 1,Envelope,Reverse 1,Datum Shift 2,Envelope,Reverse 2";
constexpr char kNoShift[] = "No Datum Shifts will be applied to the transformation.";

QString Wide(CT::DS::CDatumShiftInfo::Text const & text)
{
  return QString::fromUtf16(reinterpret_cast<char16_t const *>(text.data()), static_cast<qsizetype>(text.size()));
}
// The plain route form carries the "VM" code in its first text and the name in its second.
QString CodeOf(CT::DS::CDatumShiftInfo const & info) { return Wide(info.GetIssuer()); }
QString NameOf(CT::DS::CDatumShiftInfo const & info) { return Wide(info.GetCode()); }
QString Flag(bool value) { return value ? QStringLiteral("true") : QStringLiteral("false"); }

} // namespace

CDatumShiftPicker::CDatumShiftPicker(DB::CDataSource * dataSource, CS::CCoordSys const & source,
                                     CS::CCoordSys const & target, CT::DS::CDatumShiftPreferencesEx const & prefs,
                                     QWidget * parent, char const * name, bool modal)
  : CObjectBrowserDialog(dataSource, kObjectDatumShift, parent, name, modal)
{
  setWindowTitle("Select DatumShift(s) between " + source.GetName() + " and " + target.GetName());
  std::list<Route> routes;
  dataSource->GetValidDatumShifts(source, target, prefs, routes);
  m_routes = std::move(routes);

  for (QWidget * w : std::initializer_list<QWidget *>{newObjectButton, editObjectButton, copyObjectButton,
                                                      deleteObjectButton, newCategoryButton, deleteCategoryButton,
                                                      searchButton, findTextCombo, findColumnCombo, filterEdit})
    w->hide();
  objectsListView->setSelectionMode(QAbstractItemView::SingleSelection);
  objectsListView->setDragEnabled(false);
  viewObjectButton->setText(QStringLiteral("View Datum Shift"));
  viewObject2Button = new QPushButton(QStringLiteral("View Second Datum Shift"), this);
  viewObject2Button->setAutoDefault(false);
  layout()->itemAt(1)->layout()->removeWidget(viewObjectButton);
  static_cast<QBoxLayout *>(layout()->itemAt(1)->layout())->insertWidget(0, viewObjectButton);
  static_cast<QBoxLayout *>(layout()->itemAt(1)->layout())->insertWidget(1, viewObject2Button);
  for (QPushButton * b : {viewObjectButton, viewObject2Button})
    b->setToolTip(QStringLiteral("View selected coordinate system info"));
  connect(viewObject2Button, &QPushButton::clicked, this, &CDatumShiftPicker::OnViewObject2Clicked);
  RestoreGeometry(*this, QStringLiteral("/Velmora/Qt/DatumShiftPicker"));
}

CDatumShiftPicker::~CDatumShiftPicker() = default;

void CDatumShiftPicker::Populate()
{
  categoryListView->clear();
  categoryListView->setHeaderLabel(QStringLiteral("Routes"));
  auto * none = new CDatumShiftCategoryListItem(categoryListView, QStringLiteral("No Datum Shift"), 0);
  auto * direct = new CDatumShiftCategoryListItem(categoryListView, QStringLiteral("Matching Datum Shifts"), 1);
  (void)none;
  // Routes through an intermediate datum, one category per intermediate datum.
  std::map<QString, bool> seen;
  for (Route const & route : m_routes) {
    if (route.size() != 2)
      continue;
    std::unique_ptr<CT::DS::CDatumShift> first;
    try {
      first.reset(GetDataSource()->GetDatumShift(CString(kVM), CString(CodeOf(route.front()))));
    } catch (EX::CVelmoraException const &) {
    }
    QString const via = !first ? QString()
                        : route.front().GetReverse() ? QString(first->GetSrcDatum().GetName())
                                                     : QString(first->GetDestDatum().GetName());
    if (seen.emplace(via, true).second) {
      auto * row = new CDatumShiftCategoryListItem(categoryListView,
                                                   QStringLiteral("Using %1 as Intermediate Shift").arg(via), 2);
      row->setData(0, Qt::UserRole, via);
    }
  }
  categoryListView->setCurrentItem(direct);
}

CString CDatumShiftPicker::EnvelopeName(CT::DS::CDatumShiftInfo const & info) const
{
  try {
    std::unique_ptr<CT::DS::CDatumShift> shift(GetDataSource()->GetDatumShift(CString(kVM), CString(CodeOf(info))));
    if (shift && !shift->GetEnvelope().GetName().isEmpty())
      return shift->GetEnvelope().GetName();
  } catch (EX::CVelmoraException const &) {
  }
  return CString(Text::kNone);
}

void CDatumShiftPicker::OnCategorySelected()
{
  objectsListView->clear();
  auto * category = dynamic_cast<CDatumShiftCategoryListItem *>(categoryListView->currentItem());
  if (!category)
    return;
  int const legs = category->GetLegs();
  if (legs == 0) {
    objectsListView->setColumnCount(1);
    objectsListView->setHeaderLabels({QStringLiteral("Description")});
    auto * row = new CDatumShiftDetailListItem(nullptr, Route());
    row->setText(0, QString::fromUtf8(kNoShift));
    objectsListView->addTopLevelItem(row);
    objectsListView->setCurrentItem(row);
    return;
  }
  QStringList const columns = QString::fromUtf8(legs == 1 ? kOneShiftColumns : kTwoShiftColumns).split(',');
  objectsListView->setColumnCount(static_cast<int>(columns.size()));
  objectsListView->setHeaderLabels(columns);
  QString const via = category->data(0, Qt::UserRole).toString();
  for (Route const & route : m_routes) {
    if (static_cast<int>(route.size()) != legs)
      continue;
    if (legs == 2) {
      std::unique_ptr<CT::DS::CDatumShift> first;
      try {
        first.reset(GetDataSource()->GetDatumShift(CString(kVM), CString(CodeOf(route.front()))));
      } catch (EX::CVelmoraException const &) {
      }
      QString const through = !first ? QString()
                              : route.front().GetReverse() ? QString(first->GetSrcDatum().GetName())
                                                           : QString(first->GetDestDatum().GetName());
      if (through != via)
        continue;
    }
    auto * row = new CDatumShiftDetailListItem(nullptr, route);
    int column = 0;
    for (CT::DS::CDatumShiftInfo const & info : route) {
      row->setText(column++, NameOf(info));
      row->setText(column++, EnvelopeName(info));
      row->setText(column++, Flag(info.GetReverse()));
    }
    objectsListView->addTopLevelItem(row);
  }
  objectsListView->header()->resizeSections(QHeaderView::ResizeToContents);
  if (objectsListView->topLevelItemCount() > 0)
    objectsListView->setCurrentItem(objectsListView->topLevelItem(0));
  OnObjectSelected();
}

void CDatumShiftPicker::OnObjectSelected()
{
  auto * row = dynamic_cast<CDatumShiftDetailListItem *>(objectsListView->currentItem());
  size_t const legs = row ? row->GetRoute().size() : 0;
  viewObjectButton->setEnabled(legs >= 1);
  viewObject2Button->setEnabled(legs >= 2);
}

void CDatumShiftPicker::ViewShift(int leg)
{
  auto * row = dynamic_cast<CDatumShiftDetailListItem *>(objectsListView->currentItem());
  if (!row || static_cast<int>(row->GetRoute().size()) <= leg)
    return;
  auto it = row->GetRoute().begin();
  std::advance(it, leg);
  DB::CObjectNodeTag tag(kObjectDatumShift, CString(kVM), CString(CodeOf(*it)), CString(NameOf(*it)));
  try {
    CEditorForm form(GetDataSource(), &tag, true, true, this, nullptr, false);
    form.exec();
  } catch (EX::CVelmoraException const & e) {
    ShowMessage(this, QString::fromUtf8(Text::kProduct), e.GetFullMessage());
  }
}

void CDatumShiftPicker::OnViewObject1Clicked() { ViewShift(0); }
void CDatumShiftPicker::OnViewObject2Clicked() { ViewShift(1); }
void CDatumShiftPicker::OnViewObjectClicked() { OnViewObject1Clicked(); }
void CDatumShiftPicker::OnObjectDoubleClicked(QTreeWidgetItem *, int) { accept(); }

void CDatumShiftPicker::done(int result)
{
  SaveGeometry(*this, QStringLiteral("/Velmora/Qt/DatumShiftPicker"));
  QDialog::done(result);
}

EDialogState CDatumShiftPicker::Show(CT::DS::CDatumShiftCollection ** shifts)
{
  *shifts = nullptr;
  if (exec() != QDialog::Accepted)
    return eDialogCancelled;
  auto * row = dynamic_cast<CDatumShiftDetailListItem *>(objectsListView->currentItem());
  if (!row || row->GetRoute().empty())
    return eDialogAccepted;
  auto collection = std::make_unique<CT::DS::CDatumShiftCollection>();
  try {
    for (CT::DS::CDatumShiftInfo const & info : row->GetRoute()) {
      std::unique_ptr<CT::DS::CDatumShift> shift(
        GetDataSource()->GetDatumShift(CString(kVM), CString(CodeOf(info))));
      shift->SetReverseUsage(info.GetReverse());
      collection->AddBack(*shift);
    }
  } catch (EX::CVelmoraException const & e) {
    ShowMessage(this, QString::fromUtf8(Text::kProduct), e.GetFullMessage());
    return eDialogFailed;
  }
  *shifts = collection.release();
  return eDialogAccepted;
}

} // namespace Velmora::QtDialogs
