#pragma once
// The one window that shows or edits any object of a data source. It holds
// a working copy, shows the panel of its type and stores it when accepted;
// opened as a viewer, every control is read-only.
#include <velmora/dialogs/EditorWidgets.h>

#include <QDialog>

#include <memory>

class QButtonGroup;
class QCheckBox;
class QGroupBox;
class QFormLayout;
class QLabel;
class QPushButton;
class QRadioButton;
class QVBoxLayout;

namespace Velmora::ML {
class CCoordPoint;
}

namespace Velmora::QtDialogs {

class VELMORA_API CEditorForm : public QDialog
{
  Q_OBJECT
public:
  // The tag names the object to show, or for a new object its type and folder.
  // The form does not take the tag.
  CEditorForm(DB::CDataSource * dataSource, DB::CObjectNodeTag * tag, bool viewer = false, bool modal = true,
              QWidget * parent = nullptr, char const * name = nullptr, bool newObject = false);
  ~CEditorForm() override;

  int GetPrecision() const { return m_precision; }
  void SetPrecision(int digits);
  CString GetTitleBarCaption() const;
  void SetTitleBarCaption(CString const & caption);
  void SetParent(QWidget * parent);
  void LoadSettings();
  void SaveSettings() const;
  // Makes an empty object of the tag's type as the working copy.
  void CreateNewObject(DB::CObjectNodeTag * tag);

  QPushButton * okButton;
  QPushButton * cancelButton;

public slots:
  void okButton_clicked();
  void cancelButton_clicked();

protected slots:
  // Identification
  void objectWidget_changedName(QString const & name);
  void objectWidget_changedRemarks(QString const & remarks);
  void objectWidget_changedCode(QString const & issuer, QString const & code);
  // Units
  void auWidget_changedAbbreviation(QString const & text);
  void auWidget_changedUnitsPerBase(double value);
  void luWidget_changedAbbreviation(QString const & text);
  void luWidget_changedUnitsPerBase(double value);
  // Prime meridian and ellipsoid
  void pmLongitude_changedValue(double value);
  void pmLongitude_changedUnits(CSerializable const * units);
  void elSemiMajor_changedValue(double value);
  void elSemiMajor_changedUnits(CSerializable const * units);
  void elSemiMinor_changedValue(double value);
  void elSemiMinor_changedUnits(CSerializable const * units);
  void elInvFlat_changedValue(double value);
  void elInvFlat_changedDefinitive(bool definitive);
  // Datum and shift
  void hdEllipsoid_changedObject(CSerializable const * object);
  void hdPrimeMeridian_changedObject(CSerializable const * object);
  void dsEnvelope_changedObject(CSerializable const * object);
  void dsSource_changedObject(CSerializable const * object);
  void dsTarget_changedObject(CSerializable const * object);
  void dsParams_changedClass(int index);
  void dsParams_changedParamValue(int row, double value);
  // Vertical
  void vrDatum_changedObject(CSerializable const * object);
  void vrHeightModel_changedObject(CSerializable const * object);
  void vdEnvelope_changedObject(CSerializable const * object);
  void hmEnvelope_changedObject(CSerializable const * object);
  void hmDatum_changedObject(CSerializable const * object);
  // Coordinate systems
  void gcsEnvelope_changedObject(CSerializable const * object);
  void gcsPointStyle_changedObject(CSerializable const * object);
  void gcsDatum_changedObject(CSerializable const * object);
  void gcsVerticalReference_changedObject(CSerializable const * object);
  void ccsEnvelope_changedObject(CSerializable const * object);
  void ccsPointStyle_changedObject(CSerializable const * object);
  void ccsDatum_changedObject(CSerializable const * object);
  void pcsEnvelope_changedObject(CSerializable const * object);
  void pcsPointStyle_changedObject(CSerializable const * object);
  void pcsGeodetic_changedObject(CSerializable const * object);
  void fcsEnvelope_changedObject(CSerializable const * object);
  void fcsPointStyle_changedObject(CSerializable const * object);
  void fcsBaseSystem_changedObject(CSerializable const * object);
  void fcsTransform_changedParamReverseValue(int row, double value);
  // Point styles
  void cpsDimensions_Clicked(int id);
  void gpsDimensions_Clicked(int id);
  void ppsDimensions_Clicked(int id);
  // Envelope
  void enPointStyle_changedObject(CSerializable const * object);
  void enMinPoint_changedFirstOrdinate(double value);
  void enMinPoint_changedSecondOrdinate(double value);
  void enMinPoint_changedThirdOrdinate(double value);
  void enMaxPoint_changedFirstOrdinate(double value);
  void enMaxPoint_changedSecondOrdinate(double value);
  void enMaxPoint_changedThirdOrdinate(double value);
  void enExtentsCheckBox_stateChanged(int state);

protected:
  void InitializeWidgets();
  void SetUpIdentificationPanel();
  void SetUpDefinitionPanel();
  void WireEvents();
  void SetUpAngularUnitPanel();
  void SetUpLinearUnitPanel();
  void SetUpPrimeMeridianPanel();
  void SetUpEllipsoidPanel();
  void SetUpHorizontalDatumPanel();
  void SetUpDatumShiftPanel();
  void SetUpVerticalReferencePanel();
  void SetUpVerticalDatumPanel();
  void SetUpHeightModelPanel();
  void SetUpGeodeticCoordSysPanel();
  void SetUpGeocentricCoordSysPanel();
  void SetUpProjectedCoordSysPanel();
  void SetUpFittedCoordSysPanel();
  void SetUpCoordTransformPanel();
  void SetUpCartesianPointPanel();
  void SetUpGeodeticPointPanel();
  void SetUpProjectedPointPanel();
  void SetUpEnvelopePanel();
  void DisplayCartesianPointThirdDim();
  void DisplayGeodeticPointThirdDim();
  void DisplayProjectedPointThirdDim();
  void RefreshEnvelopePointControls();
  void done(int result) override;

private:
  template <class Handle>
  Handle * As() const;
  // A labelled row of the definition panel.
  void AddRow(QString const & label, QWidget * control);
  ObjectSelectWidget * AddReference(QString const & label, EObjectType type, CSerializable const * current);
  void SetPanelCaptions(char const * editing, char const * viewing);
  QButtonGroup * AddDimensions(short dimensions);
  void DisplayThirdDim(QButtonGroup * group, std::vector<QWidget *> const & thirdAxis);
  void ShowStyleAxes(ML::CCoordPoint const & style, char const * const labels[3]);
  void SetEnvelopeCorner(bool maximum, int axis, double value);
  void FinishPanel();

  DB::CDataSource * m_source;
  std::unique_ptr<CSerializable> m_object;
  EObjectType m_type = kObjectNone;
  bool m_viewer;
  bool m_newObject;
  long m_groupId = 0;
  int m_precision = 10;
  SerializableWidget * m_identification = nullptr;
  QGroupBox * m_definition = nullptr;
  QFormLayout * m_definitionLayout = nullptr;
  QButtonGroup * m_dimensions = nullptr;
  std::vector<QWidget *> m_thirdAxis;
  std::vector<CEditorWidget *> m_controls;
  QCheckBox * m_extentsCheck = nullptr;
  PointValuesWidget * m_minPoint = nullptr;
  PointValuesWidget * m_maxPoint = nullptr;
  ParameterizedClassWidget * m_params = nullptr;
};

} // namespace Velmora::QtDialogs
