#include <velmora/dialogs/EditorWidgets.h>

#include <velmora/dialogs/ObjectPicker.h>
#include <velmora/foundation/CIdentifierCollection.h>
#include <velmora/foundation/ParameterCollection.h>
#include <velmora/measures/Units.h>
#include <velmora/measures/Values.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleValidator>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <memory>

namespace Velmora::QtDialogs {

namespace {

QString Number(double value, int precision) { return QString::number(value, 'g', precision); }

QLineEdit * NumberEdit(QWidget * parent)
{
  auto * edit = new QLineEdit(parent);
  auto * validator = new QDoubleValidator(edit);
  validator->setNotation(QDoubleValidator::ScientificNotation);
  validator->setLocale(QLocale::c());
  edit->setValidator(validator);
  return edit;
}

// Reports the number of an edit once the user is done with it.
template <class Signal, class Owner>
void OnNumber(QLineEdit * edit, Owner * owner, Signal signal)
{
  QObject::connect(edit, &QLineEdit::editingFinished, owner, [edit, owner, signal] {
    bool ok = false;
    double const value = QLocale::c().toDouble(edit->text(), &ok);
    if (ok)
      (owner->*signal)(value);
  });
}

void FillUnits(QComboBox * combo, DB::CDataSource * source, bool angular)
{
  std::vector<CString> const names = angular ? source->GetAngularUnitNames() : source->GetLinearUnitNames();
  for (CString const & name : names)
    combo->addItem(name);
}

// The stored unit of the kind with that name; null if there is none. The caller owns it.
CSerializable * UnitNamed(DB::CDataSource * source, bool angular, QString const & name)
{
  long const type = angular ? kObjectAngularUnit : kObjectLinearUnit;
  std::unique_ptr<DB::CObjectInfoSet> infos(source->GetObjectInfoSet(type));
  DB::CObjectInfo info;
  for (long i = 0; infos && i < infos->Count(); ++i) {
    infos->GetItem(i, &info);
    if (info.GetName() == name)
      return source->GetSerializable(type, info.GetIssuer(), info.GetCode());
  }
  return nullptr;
}

void SelectText(QComboBox * combo, QString const & text)
{
  int index = combo->findText(text);
  if (index < 0 && !text.isEmpty()) {
    combo->addItem(text);
    index = combo->count() - 1;
  }
  combo->setCurrentIndex(index);
}

} // namespace

IdentifierTableItem::IdentifierTableItem(QString const & text) : QTableWidgetItem(text) {}

IdentifierTable::IdentifierTable(QWidget * parent) : QTableWidget(0, 2, parent)
{
  setHorizontalHeaderLabels({QStringLiteral("Issuer"), QStringLiteral("Code")});
  horizontalHeader()->setStretchLastSection(true);
  verticalHeader()->hide();
  setMaximumHeight(110);
}

void IdentifierTable::SetIdentifiers(CSerializable const & object)
{
  CIdentifierCollection const & ids = object.GetIdentifiers();
  setRowCount(static_cast<int>(ids.Count()));
  for (long i = 0; i < ids.Count(); ++i) {
    CString issuer, code;
    ids.GetItem(i, issuer, code);
    setItem(static_cast<int>(i), 0, new IdentifierTableItem(issuer));
    setItem(static_cast<int>(i), 1, new IdentifierTableItem(code));
  }
}

SerializableWidget::SerializableWidget(QWidget * parent) : CEditorWidget(parent)
{
  nameEdit = new QLineEdit;
  remarksEdit = new QPlainTextEdit;
  remarksEdit->setMaximumHeight(70);
  identifiers = new IdentifierTable;
  addIdentifierButton = new QPushButton(QStringLiteral("Add"));
  deleteIdentifierButton = new QPushButton(QStringLiteral("Delete"));
  auto * buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(addIdentifierButton);
  buttons->addWidget(deleteIdentifierButton);
  auto * form = new QFormLayout(this);
  form->addRow(QStringLiteral("Name"), nameEdit);
  form->addRow(QStringLiteral("Remarks"), remarksEdit);
  form->addRow(QStringLiteral("Identifiers"), identifiers);
  form->addRow(buttons);
  connect(nameEdit, &QLineEdit::textEdited, this, &SerializableWidget::changedName);
  connect(remarksEdit, &QPlainTextEdit::textChanged, this, [this] {
    if (!m_loading)
      emit changedRemarks(remarksEdit->toPlainText());
  });
  connect(identifiers, &QTableWidget::cellChanged, this, &SerializableWidget::slotCellChanged);
  connect(addIdentifierButton, &QPushButton::clicked, this, &SerializableWidget::slotInsertTag);
  connect(deleteIdentifierButton, &QPushButton::clicked, this, &SerializableWidget::slotDeleteTag);
}

void SerializableWidget::SetObject(CSerializable const & object)
{
  m_loading = true;
  nameEdit->setText(object.GetName());
  remarksEdit->setPlainText(object.GetRemarks());
  identifiers->SetIdentifiers(object);
  m_loading = false;
}

void SerializableWidget::SetReadOnly(bool readOnly)
{
  nameEdit->setReadOnly(readOnly);
  remarksEdit->setReadOnly(readOnly);
  identifiers->setEditTriggers(readOnly ? QAbstractItemView::NoEditTriggers : QAbstractItemView::AllEditTriggers);
  addIdentifierButton->setEnabled(!readOnly);
  deleteIdentifierButton->setEnabled(!readOnly);
}

void SerializableWidget::slotInsertTag()
{
  m_loading = true;
  int const row = identifiers->rowCount();
  identifiers->insertRow(row);
  identifiers->setItem(row, 0, new IdentifierTableItem(QString()));
  identifiers->setItem(row, 1, new IdentifierTableItem(QString()));
  m_loading = false;
  identifiers->editItem(identifiers->item(row, 0));
}

void SerializableWidget::slotDeleteTag()
{
  int const row = identifiers->currentRow();
  if (row < 0)
    return;
  QString const issuer = identifiers->item(row, 0) ? identifiers->item(row, 0)->text() : QString();
  identifiers->removeRow(row);
  // An empty code takes the issuer's identifier away.
  if (!issuer.isEmpty())
    emit changedCode(issuer, QString());
}

void SerializableWidget::slotCellChanged(int row, int)
{
  if (m_loading || !identifiers->item(row, 0) || !identifiers->item(row, 1))
    return;
  QString const issuer = identifiers->item(row, 0)->text();
  if (!issuer.isEmpty())
    emit changedCode(issuer, identifiers->item(row, 1)->text());
}

ObjectSelectWidget::ObjectSelectWidget(DB::CDataSource * source, EObjectType type, QWidget * parent)
  : CEditorWidget(parent), m_source(source), m_type(type)
{
  nameEdit = new QLineEdit;
  nameEdit->setReadOnly(true);
  chooseButton = new QPushButton(QStringLiteral("..."));
  chooseButton->setMaximumWidth(32);
  auto * row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(nameEdit, 1);
  row->addWidget(chooseButton);
  connect(chooseButton, &QPushButton::clicked, this, &ObjectSelectWidget::slotChoose);
}

void ObjectSelectWidget::SetObject(CSerializable const * object)
{
  if (!object || object->GetName().isEmpty()) {
    nameEdit->setText(QString::fromUtf8(Text::kNone));
    m_issuer.clear();
    m_code.clear();
    return;
  }
  nameEdit->setText(object->GetName());
  m_issuer = CString("VM");
  m_code = IssuerCode(*object, "VM");
}

void ObjectSelectWidget::SetReadOnly(bool readOnly) { chooseButton->setEnabled(!readOnly); }

void ObjectSelectWidget::slotChoose()
{
  CObjectPicker picker(m_source, m_type, m_issuer, m_code, this);
  std::unique_ptr<CSerializable> chosen(picker.Show());
  if (!chosen)
    return;
  SetObject(chosen.get());
  emit changedObject(chosen.get());
}

ValueWidget::ValueWidget(DB::CDataSource * source, bool angular, QWidget * parent)
  : CEditorWidget(parent), m_source(source), m_angular(angular)
{
  valueEdit = NumberEdit(this);
  unitsCombo = new QComboBox;
  FillUnits(unitsCombo, source, angular);
  auto * row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(valueEdit, 2);
  row->addWidget(unitsCombo, 1);
  OnNumber(valueEdit, this, &ValueWidget::changedValue);
  connect(unitsCombo, &QComboBox::activated, this, [this](int) {
    std::unique_ptr<CSerializable> units(UnitNamed(m_source, m_angular, unitsCombo->currentText()));
    if (units)
      emit changedUnits(units.get());
  });
}

void ValueWidget::SetValue(double value, QString const & unitName)
{
  valueEdit->setText(Number(value, m_precision));
  SelectText(unitsCombo, unitName);
}

void ValueWidget::SetReadOnly(bool readOnly)
{
  valueEdit->setReadOnly(readOnly);
  unitsCombo->setEnabled(!readOnly);
}

UnitsWidget::UnitsWidget(QString const & factorLabel, QWidget * parent) : CEditorWidget(parent)
{
  abbreviationEdit = new QLineEdit;
  factorEdit = NumberEdit(this);
  auto * form = new QFormLayout(this);
  form->setContentsMargins(0, 0, 0, 0);
  form->addRow(QStringLiteral("Abbreviation"), abbreviationEdit);
  form->addRow(factorLabel, factorEdit);
  connect(abbreviationEdit, &QLineEdit::textEdited, this, &UnitsWidget::changedAbbreviation);
  OnNumber(factorEdit, this, &UnitsWidget::changedUnitsPerBase);
}

void UnitsWidget::SetUnits(QString const & abbreviation, double perBase, int precision)
{
  abbreviationEdit->setText(abbreviation);
  factorEdit->setText(Number(perBase, precision));
}

void UnitsWidget::SetReadOnly(bool readOnly)
{
  abbreviationEdit->setReadOnly(readOnly);
  factorEdit->setReadOnly(readOnly);
}

InverseFlatWidget::InverseFlatWidget(QWidget * parent) : CEditorWidget(parent)
{
  valueEdit = NumberEdit(this);
  definitiveCheck = new QCheckBox(QStringLiteral("Definitive"));
  auto * row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(valueEdit, 1);
  row->addWidget(definitiveCheck);
  OnNumber(valueEdit, this, &InverseFlatWidget::changedValue);
  connect(definitiveCheck, &QCheckBox::toggled, this, &InverseFlatWidget::changedDefinitive);
}

void InverseFlatWidget::SetValue(double inverseFlattening, bool definitive, int precision)
{
  valueEdit->setText(Number(inverseFlattening, precision));
  QSignalBlocker block(definitiveCheck);
  definitiveCheck->setChecked(definitive);
}

void InverseFlatWidget::SetReadOnly(bool readOnly)
{
  valueEdit->setReadOnly(readOnly);
  definitiveCheck->setEnabled(!readOnly);
}

StyleWidget::StyleWidget(DB::CDataSource * source, bool angular, QWidget * parent)
  : CEditorWidget(parent), m_source(source), m_angular(angular)
{
  labelEdit = new QLineEdit;
  unitsCombo = new QComboBox;
  FillUnits(unitsCombo, source, angular);
  auto * row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(labelEdit, 1);
  row->addWidget(unitsCombo, 1);
  connect(labelEdit, &QLineEdit::textEdited, this, &StyleWidget::changedLabel);
  connect(unitsCombo, &QComboBox::activated, this, [this](int) {
    std::unique_ptr<CSerializable> units(UnitNamed(m_source, m_angular, unitsCombo->currentText()));
    if (units)
      emit changedUnits(units.get());
  });
}

void StyleWidget::SetAxis(QString const & label, QString const & unitName)
{
  labelEdit->setText(label);
  SelectText(unitsCombo, unitName);
}

void StyleWidget::SetReadOnly(bool readOnly)
{
  labelEdit->setReadOnly(readOnly);
  unitsCombo->setEnabled(!readOnly);
}

PointValuesWidget::PointValuesWidget(QWidget * parent) : CEditorWidget(parent)
{
  auto * row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  for (QLineEdit *& edit : edits) {
    edit = NumberEdit(this);
    row->addWidget(edit);
  }
  OnNumber(edits[0], this, &PointValuesWidget::changedFirstOrdinate);
  OnNumber(edits[1], this, &PointValuesWidget::changedSecondOrdinate);
  OnNumber(edits[2], this, &PointValuesWidget::changedThirdOrdinate);
}

void PointValuesWidget::SetValues(double a, double b, double c, int dimensions, int precision)
{
  double const values[3] = {a, b, c};
  for (int i = 0; i < 3; ++i)
    edits[i]->setText(Number(values[i], precision));
  edits[2]->setVisible(dimensions > 2);
}

void PointValuesWidget::SetReadOnly(bool readOnly)
{
  for (QLineEdit * edit : edits)
    edit->setReadOnly(readOnly);
}

UnitsTableButton::UnitsTableButton(QString const & unitName, QWidget * parent) : QWidget(parent)
{
  button = new QPushButton(unitName, this);
  button->setFlat(true);
  auto * row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(button);
}

ParameterTable::ParameterTable(QWidget * parent) : QTableWidget(0, 3, parent)
{
  setHorizontalHeaderLabels({QStringLiteral("Parameter"), QStringLiteral("Value"), QStringLiteral("Units")});
  horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
  verticalHeader()->hide();
}

void ParameterTable::SetParameters(CParameterCollection const & parameters, int precision)
{
  setRowCount(static_cast<int>(parameters.Count()));
  for (long i = 0; i < parameters.Count(); ++i) {
    CString const & name = parameters.ParameterNameAtIndex(i);
    auto * nameItem = new QTableWidgetItem(name);
    nameItem->setFlags(nameItem->flags() & ~Qt::ItemIsEditable);
    setItem(static_cast<int>(i), 0, nameItem);
    QString value;
    QString units;
    if (parameters.IsItemSet(name)) {
      switch (parameters.GetItemType(name)) {
      case CParameter::kString:
        value = parameters.GetString(name);
        break;
      case CParameter::kLong:
        value = QString::number(parameters.GetLong(name));
        break;
      case CParameter::kAngularValue:
        value = Number(parameters.GetAngularValue(name).GetValue(), precision);
        units = parameters.GetAngularValue(name).GetUnits().GetName();
        break;
      case CParameter::kLinearValue:
        value = Number(parameters.GetLinearValue(name).GetValue(), precision);
        units = parameters.GetLinearValue(name).GetUnits().GetName();
        break;
      case CParameter::kDouble:
        value = Number(parameters.GetDouble(name), precision);
        break;
      default:
        break;
      }
    }
    setItem(static_cast<int>(i), 1, new QTableWidgetItem(value));
    if (!units.isEmpty())
      setCellWidget(static_cast<int>(i), 2, new UnitsTableButton(units));
  }
}

ParameterizedClassWidget::ParameterizedClassWidget(std::vector<CString> const & classTypes, QWidget * parent)
  : CEditorWidget(parent)
{
  classCombo = new QComboBox;
  for (CString const & type : classTypes)
    classCombo->addItem(type);
  parameters = new ParameterTable;
  auto * column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(classCombo);
  column->addWidget(parameters, 1);
  connect(classCombo, &QComboBox::activated, this, &ParameterizedClassWidget::changedClass);
  connect(parameters, &QTableWidget::cellChanged, this, [this](int row, int column) {
    if (m_loading || column != 1)
      return;
    bool ok = false;
    double const value = QLocale::c().toDouble(parameters->item(row, 1)->text(), &ok);
    if (ok)
      emit changedParamValue(row, value);
  });
}

void ParameterizedClassWidget::SetClass(QString const & classType, CParameterCollection const & collection,
                                        int precision)
{
  m_loading = true;
  SelectText(classCombo, classType);
  parameters->SetParameters(collection, precision);
  m_loading = false;
}

void ParameterizedClassWidget::SetReadOnly(bool readOnly)
{
  classCombo->setEnabled(!readOnly);
  for (UnitsTableButton * cell : parameters->findChildren<UnitsTableButton *>())
    cell->button->setEnabled(!readOnly);
  parameters->setEditTriggers(readOnly ? QAbstractItemView::NoEditTriggers : QAbstractItemView::AllEditTriggers);
}

TransformClassWidget::TransformClassWidget(std::vector<CString> const & classTypes, QWidget * parent)
  : ParameterizedClassWidget(classTypes, parent)
{
}

} // namespace Velmora::QtDialogs
