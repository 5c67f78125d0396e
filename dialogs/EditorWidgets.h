#pragma once
// The controls of the editor form: each shows one part of an object and
// reports edits through its signals.
#include <velmora/dialogs/DialogTypes.h>

#include <QTableWidget>
#include <QWidget>

#include <memory>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace Velmora {
class CParameterCollection;
}

namespace Velmora::QtDialogs {

// Every control of the form can be made read-only for a viewer.
class VELMORA_API CEditorWidget : public QWidget
{
  Q_OBJECT
public:
  using QWidget::QWidget;
  virtual void SetReadOnly(bool readOnly) = 0;
};

class VELMORA_API IdentifierTableItem : public QTableWidgetItem
{
public:
  explicit IdentifierTableItem(QString const & text);
};

// The issuer and code pairs of an object.
class VELMORA_API IdentifierTable : public QTableWidget
{
  Q_OBJECT
public:
  explicit IdentifierTable(QWidget * parent = nullptr);
  void SetIdentifiers(CSerializable const & object);
};

// Name, remarks and identifiers.
class VELMORA_API SerializableWidget : public CEditorWidget
{
  Q_OBJECT
public:
  explicit SerializableWidget(QWidget * parent = nullptr);
  void SetObject(CSerializable const & object);
  void SetReadOnly(bool readOnly) override;

  QLineEdit * nameEdit;
  QPlainTextEdit * remarksEdit;
  IdentifierTable * identifiers;
  QPushButton * addIdentifierButton;
  QPushButton * deleteIdentifierButton;

signals:
  void changedName(QString const & name);
  void changedRemarks(QString const & remarks);
  void changedCode(QString const & issuer, QString const & code);

protected slots:
  void slotInsertTag();
  void slotDeleteTag();
  void slotCellChanged(int row, int column);

private:
  bool m_loading = false;
};

// A reference to a stored object of one kind, chosen with the picker.
class VELMORA_API ObjectSelectWidget : public CEditorWidget
{
  Q_OBJECT
public:
  ObjectSelectWidget(DB::CDataSource * source, EObjectType type, QWidget * parent = nullptr);
  void SetObject(CSerializable const * object);
  void SetReadOnly(bool readOnly) override;
  QLineEdit * nameEdit;
  QPushButton * chooseButton;

signals:
  void changedObject(CSerializable const * object);

protected slots:
  void slotChoose();

private:
  DB::CDataSource * m_source;
  EObjectType m_type;
  CString m_issuer;
  CString m_code;
};

// A number with its unit, the unit chosen among the store's units of its kind.
class VELMORA_API ValueWidget : public CEditorWidget
{
  Q_OBJECT
public:
  ValueWidget(DB::CDataSource * source, bool angular, QWidget * parent = nullptr);
  void SetValue(double value, QString const & unitName);
  void SetPrecision(int digits) { m_precision = digits; }
  void SetReadOnly(bool readOnly) override;
  QLineEdit * valueEdit;
  QComboBox * unitsCombo;

signals:
  void changedValue(double value);
  void changedUnits(CSerializable const * units);

private:
  DB::CDataSource * m_source;
  bool m_angular;
  int m_precision = 10;
};

// A unit's abbreviation and its factor to the base unit.
class VELMORA_API UnitsWidget : public CEditorWidget
{
  Q_OBJECT
public:
  UnitsWidget(QString const & factorLabel, QWidget * parent = nullptr);
  void SetUnits(QString const & abbreviation, double perBase, int precision);
  void SetReadOnly(bool readOnly) override;
  QLineEdit * abbreviationEdit;
  QLineEdit * factorEdit;

signals:
  void changedAbbreviation(QString const & abbreviation);
  void changedUnitsPerBase(double perBase);
};

// The inverse flattening and whether it, not the semi-minor axis, defines the ellipsoid.
class VELMORA_API InverseFlatWidget : public CEditorWidget
{
  Q_OBJECT
public:
  explicit InverseFlatWidget(QWidget * parent = nullptr);
  void SetValue(double inverseFlattening, bool definitive, int precision);
  void SetReadOnly(bool readOnly) override;
  QLineEdit * valueEdit;
  QCheckBox * definitiveCheck;

signals:
  void changedValue(double value);
  void changedDefinitive(bool definitive);
};

// One axis of a point style: its label and unit.
class VELMORA_API StyleWidget : public CEditorWidget
{
  Q_OBJECT
public:
  StyleWidget(DB::CDataSource * source, bool angular, QWidget * parent = nullptr);
  void SetAxis(QString const & label, QString const & unitName);
  void SetReadOnly(bool readOnly) override;
  QLineEdit * labelEdit;
  QComboBox * unitsCombo;

signals:
  void changedLabel(QString const & label);
  void changedUnits(CSerializable const * units);

private:
  DB::CDataSource * m_source;
  bool m_angular;
};

// The ordinates of a point.
class VELMORA_API PointValuesWidget : public CEditorWidget
{
  Q_OBJECT
public:
  explicit PointValuesWidget(QWidget * parent = nullptr);
  void SetValues(double a, double b, double c, int dimensions, int precision);
  void SetReadOnly(bool readOnly) override;
  QLineEdit * edits[3];

signals:
  void changedFirstOrdinate(double value);
  void changedSecondOrdinate(double value);
  void changedThirdOrdinate(double value);
};

// A cell of the parameter table that shows the unit of its value.
class VELMORA_API UnitsTableButton : public QWidget
{
  Q_OBJECT
public:
  UnitsTableButton(QString const & unitName, QWidget * parent = nullptr);
  QPushButton * button;
};

// The parameters of a class: name, value, unit.
class VELMORA_API ParameterTable : public QTableWidget
{
  Q_OBJECT
public:
  explicit ParameterTable(QWidget * parent = nullptr);
  void SetParameters(CParameterCollection const & parameters, int precision);
};

// The class chooser and the parameters of a parameterised object.
class VELMORA_API ParameterizedClassWidget : public CEditorWidget
{
  Q_OBJECT
public:
  ParameterizedClassWidget(std::vector<CString> const & classTypes, QWidget * parent = nullptr);
  void SetClass(QString const & classType, CParameterCollection const & parameters, int precision);
  void SetReadOnly(bool readOnly) override;
  QComboBox * classCombo;
  ParameterTable * parameters;

signals:
  void changedClass(int index);
  void changedParamValue(int row, double value);
  void changedParamUnits(int row, CSerializable const * units);

protected:
  bool m_loading = false;
};

// The same for a math transform, with the values of the reverse direction.
class VELMORA_API TransformClassWidget : public ParameterizedClassWidget
{
  Q_OBJECT
public:
  TransformClassWidget(std::vector<CString> const & classTypes, QWidget * parent = nullptr);

signals:
  void changedParamReverseValue(int row, double value);
};

} // namespace Velmora::QtDialogs
