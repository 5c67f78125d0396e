#include <velmora/dialogs/EditorForm.h>

#include <velmora/foundation/CIdentifierCollection.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/CoordPoints.h>
#include <velmora/measures/Envelope.h>
#include <velmora/measures/Units.h>
#include <velmora/refsys/CoordSys.h>
#include <velmora/refsys/Ellipsoid.h>
#include <velmora/refsys/FittedCoordSys.h>
#include <velmora/refsys/HorizontalDatum.h>
#include <velmora/refsys/PrimeMeridian.h>
#include <velmora/transforms/CoordTransform.h>
#include <velmora/transforms/datumshifts/DatumShift.h>
#include <velmora/transforms/mathtransforms/MathTransform.h>
#include <velmora/vertical/HeightModel.h>
#include <velmora/vertical/VerticalDatum.h>
#include <velmora/vertical/VerticalReference.h>

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace Velmora::QtDialogs {

namespace {

constexpr char kStem[] = "/Velmora/Qt/EditorForm";
constexpr char kVM[] = "VM";
// The first shift of a new datum shift: a stored EPSG transformation to start from.
constexpr char kTemplateShiftIssuer[] = "EPSG";
constexpr char kTemplateShiftCode[] = "1262";

QString Tr(char const * text) { return QString::fromUtf8(text); }

QString UnitName(ML::CFormattedValue const & value)
{
  if (auto const * linear = dynamic_cast<ML::CLinearValue const *>(&value))
    return linear->GetUnits().GetName();
  if (auto const * angular = dynamic_cast<ML::CAngularValue const *>(&value))
    return angular->GetUnits().GetName();
  return QString();
}

} // namespace

CEditorForm::CEditorForm(DB::CDataSource * dataSource, DB::CObjectNodeTag * tag, bool viewer, bool modal,
                         QWidget * parent, char const * name, bool newObject)
  : QDialog(parent), m_source(dataSource), m_viewer(viewer), m_newObject(newObject)
{
  if (!dataSource)
    throw EX::CVelmoraException(EX::CVelmoraException::kCustom, "CEditorForm::CEditorForm",
                                "Editor form requires a DataSource object.");
  if (name)
    setObjectName(Tr(name));
  setModal(modal);
  m_type = tag->GetObjectType();
  if (newObject) {
    CreateNewObject(tag);
  } else {
    DB::CObjectInfo const * info = tag->GetInfo();
    m_object.reset(dataSource->GetSerializable(m_type, info->GetIssuer(), info->GetCode()));
    if (!m_object)
      throw EX::CVelmoraException(EX::CVelmoraException::kCustom, "CEditorForm::CEditorForm",
                                  "No object of that kind and code.");
  }
  InitializeWidgets();
  switch (m_type) {
  case kObjectAngularUnit: SetUpAngularUnitPanel(); break;
  case kObjectLinearUnit: SetUpLinearUnitPanel(); break;
  case kObjectPrimeMeridian: SetUpPrimeMeridianPanel(); break;
  case kObjectEllipsoid: SetUpEllipsoidPanel(); break;
  case kObjectHorizontalDatum: SetUpHorizontalDatumPanel(); break;
  case kObjectDatumShift: SetUpDatumShiftPanel(); break;
  case kObjectVerticalReference: SetUpVerticalReferencePanel(); break;
  case kObjectVerticalDatum: SetUpVerticalDatumPanel(); break;
  case kObjectHeightModel: SetUpHeightModelPanel(); break;
  case kObjectGeodeticCoordSys: SetUpGeodeticCoordSysPanel(); break;
  case kObjectGeocentricCoordSys: SetUpGeocentricCoordSysPanel(); break;
  case kObjectProjectedCoordSys: SetUpProjectedCoordSysPanel(); break;
  case kObjectFittedCoordSys: SetUpFittedCoordSysPanel(); break;
  case kObjectCoordTransform: SetUpCoordTransformPanel(); break;
  case kObjectCartesianPoint: SetUpCartesianPointPanel(); break;
  case kObjectGeodeticPoint: SetUpGeodeticPointPanel(); break;
  case kObjectProjectedPoint: SetUpProjectedPointPanel(); break;
  case kObjectEnvelope: SetUpEnvelopePanel(); break;
  default: break;
  }
  SetUpIdentificationPanel();
  SetUpDefinitionPanel();
  WireEvents();
  LoadSettings();
}

CEditorForm::~CEditorForm() = default;

template <class Handle>
Handle * CEditorForm::As() const
{
  return dynamic_cast<Handle *>(m_object.get());
}

void CEditorForm::CreateNewObject(DB::CObjectNodeTag * tag)
{
  EObjectType const type = tag->GetObjectType();
  std::unique_ptr<CSerializable> object;
  switch (type) {
  case kObjectAngularUnit: object = std::make_unique<ML::CAngularUnit>(); break;
  case kObjectLinearUnit: object = std::make_unique<ML::CLinearUnit>(); break;
  case kObjectPrimeMeridian: object = std::make_unique<CS::CPrimeMeridian>(); break;
  case kObjectEllipsoid: object = std::make_unique<CS::CEllipsoid>(); break;
  case kObjectHorizontalDatum: object = std::make_unique<CS::CHorizontalDatum>(); break;
  case kObjectDatumShift:
    object.reset(m_source->GetDatumShift(CString(kTemplateShiftIssuer), CString(kTemplateShiftCode)));
    break;
  case kObjectCartesianPoint: object = std::make_unique<ML::CCartesianPoint>(); break;
  case kObjectGeodeticPoint: object = std::make_unique<ML::CGeodeticPoint>(); break;
  case kObjectProjectedPoint: object = std::make_unique<ML::CProjectedPoint>(); break;
  case kObjectEnvelope: object = std::make_unique<ML::CEnvelope>(); break;
  case kObjectVerticalReference: object = std::make_unique<CS::VR::CVerticalReference>(); break;
  case kObjectVerticalDatum: object = std::make_unique<CS::VR::CGenericVerticalDatum>(); break;
  case kObjectGeocentricCoordSys: object = std::make_unique<CS::CGeocentricCoordSys>(); break;
  case kObjectGeodeticCoordSys: object = std::make_unique<CS::CGeodeticCoordSys>(); break;
  case kObjectProjectedCoordSys: object = std::make_unique<CS::CProjectedCoordSys>(); break;
  case kObjectFittedCoordSys: object = std::make_unique<CS::CFittedCoordSys>(); break;
  case kObjectCoordTransform:
    throw EX::CVelmoraException(EX::CVelmoraException::kCustom, "CEditorForm::CreateNewObject", Text::kTransformEditing);
  default: {
    // Height models exist only as their concrete kinds: a new one starts from a stored one.
    std::vector<CSerializableDataDB *> stored = m_source->SearchDB(type);
    if (!stored.empty())
      object.reset(DB::CDataSource::ObjectFactory(*stored.front()));
    if (object)
      object->Congeal();
  }
  }
  if (!object)
    throw EX::CVelmoraException(EX::CVelmoraException::kCustom, "CEditorForm::CreateNewObject",
                                "No object of that kind can be made.");
  DB::CObjectInfo const * info = tag->GetInfo();
  QString const code = info && !info->GetCode().isEmpty() ? QString(info->GetCode()) : NextFreeCode(*m_source, type);
  m_groupId = info && info->GetGroupID() > 0 ? info->GetGroupID() : DB::CDataSource::GetGroupID(type);
  object->SetName("New " + m_source->GetTypeName(type));
  object->SetRemarks(CString());
  object->SetIdentifiers(CIdentifierCollection());
  object->GetIdentifiers().Add(CString(kVM), CString(code));
  object->SetGroupID(m_groupId);
  m_type = type;
  m_object = std::move(object);
}

// Layout

void CEditorForm::InitializeWidgets()
{
  m_identification = new SerializableWidget;
  m_definition = new QGroupBox(QStringLiteral("Definition"));
  m_definitionLayout = new QFormLayout(m_definition);
  okButton = new QPushButton(QStringLiteral("OK"));
  okButton->setDefault(true);
  cancelButton = new QPushButton(QStringLiteral("Cancel"));
  auto * buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(okButton);
  buttons->addWidget(cancelButton);
  auto * identification = new QGroupBox(QStringLiteral("Identification"));
  auto * identificationLayout = new QVBoxLayout(identification);
  identificationLayout->addWidget(m_identification);
  auto * top = new QVBoxLayout(this);
  top->addWidget(identification);
  top->addWidget(m_definition, 1);
  top->addLayout(buttons);
  resize(520, 560);
}

void CEditorForm::SetUpIdentificationPanel()
{
  m_identification->SetObject(*m_object);
  m_identification->SetReadOnly(m_viewer);
}

void CEditorForm::SetUpDefinitionPanel()
{
  for (CEditorWidget * control : m_controls)
    control->SetReadOnly(m_viewer);
  if (m_dimensions)
    for (QAbstractButton * b : m_dimensions->buttons())
      b->setEnabled(!m_viewer);
  if (m_extentsCheck)
    m_extentsCheck->setEnabled(!m_viewer);
  if (m_viewer)
    cancelButton->hide();
}

void CEditorForm::WireEvents()
{
  connect(okButton, &QPushButton::clicked, this, &CEditorForm::okButton_clicked);
  connect(cancelButton, &QPushButton::clicked, this, &CEditorForm::cancelButton_clicked);
  connect(m_identification, &SerializableWidget::changedName, this, &CEditorForm::objectWidget_changedName);
  connect(m_identification, &SerializableWidget::changedRemarks, this, &CEditorForm::objectWidget_changedRemarks);
  connect(m_identification, &SerializableWidget::changedCode, this, &CEditorForm::objectWidget_changedCode);
}

void CEditorForm::SetPanelCaptions(char const * editing, char const * viewing)
{
  setWindowTitle(Tr(m_viewer ? viewing : editing));
  m_definition->setTitle(Tr(m_viewer ? viewing : editing));
}

void CEditorForm::AddRow(QString const & label, QWidget * control)
{
  m_definitionLayout->addRow(label, control);
  if (auto * editor = dynamic_cast<CEditorWidget *>(control))
    m_controls.push_back(editor);
}

ObjectSelectWidget * CEditorForm::AddReference(QString const & label, EObjectType type, CSerializable const * current)
{
  auto * widget = new ObjectSelectWidget(m_source, type);
  widget->SetObject(current);
  AddRow(label, widget);
  return widget;
}

// Panels

void CEditorForm::SetUpAngularUnitPanel()
{
  SetPanelCaptions("Angular Unit Editor", "Angular Unit Viewer");
  auto * unit = As<ML::CAngularUnit>();
  auto * widget = new UnitsWidget(QStringLiteral("Units per Degree"));
  widget->SetUnits(unit->GetAbbreviation(), unit->GetUnitsPerDegree(), m_precision);
  AddRow(QString(), widget);
  connect(widget, &UnitsWidget::changedAbbreviation, this, &CEditorForm::auWidget_changedAbbreviation);
  connect(widget, &UnitsWidget::changedUnitsPerBase, this, &CEditorForm::auWidget_changedUnitsPerBase);
}

void CEditorForm::SetUpLinearUnitPanel()
{
  SetPanelCaptions("Linear Unit Editor", "Linear Unit Viewer");
  auto * unit = As<ML::CLinearUnit>();
  auto * widget = new UnitsWidget(QStringLiteral("Units per Meter"));
  widget->SetUnits(unit->GetAbbreviation(), unit->GetUnitsPerMeter(), m_precision);
  AddRow(QString(), widget);
  connect(widget, &UnitsWidget::changedAbbreviation, this, &CEditorForm::luWidget_changedAbbreviation);
  connect(widget, &UnitsWidget::changedUnitsPerBase, this, &CEditorForm::luWidget_changedUnitsPerBase);
}

void CEditorForm::SetUpPrimeMeridianPanel()
{
  SetPanelCaptions("Prime Meridian Editor", "Prime Meridian Viewer");
  auto * meridian = As<CS::CPrimeMeridian>();
  auto * longitude = new ValueWidget(m_source, true);
  longitude->SetPrecision(m_precision);
  longitude->SetValue(meridian->GetLongitude().GetValue(), meridian->GetLongitude().GetUnits().GetName());
  AddRow(QStringLiteral("Longitude"), longitude);
  connect(longitude, &ValueWidget::changedValue, this, &CEditorForm::pmLongitude_changedValue);
  connect(longitude, &ValueWidget::changedUnits, this, &CEditorForm::pmLongitude_changedUnits);
}

void CEditorForm::SetUpEllipsoidPanel()
{
  SetPanelCaptions("Ellipsoid Editor", "Ellipsoid Viewer");
  auto * ellipsoid = As<CS::CEllipsoid>();
  auto * major = new ValueWidget(m_source, false);
  auto * minor = new ValueWidget(m_source, false);
  major->SetPrecision(m_precision);
  minor->SetPrecision(m_precision);
  major->SetValue(ellipsoid->GetSemiMajor().GetValue(), ellipsoid->GetSemiMajor().GetUnits().GetName());
  minor->SetValue(ellipsoid->GetSemiMinor().GetValue(), ellipsoid->GetSemiMinor().GetUnits().GetName());
  auto * inverse = new InverseFlatWidget;
  inverse->SetValue(ellipsoid->GetInvFlattening(), ellipsoid->GetInvFlatDefinitive(), m_precision);
  AddRow(QStringLiteral("Semi-Major Axis"), major);
  AddRow(QStringLiteral("Semi-Minor Axis"), minor);
  AddRow(QStringLiteral("Inverse Flattening"), inverse);
  connect(major, &ValueWidget::changedValue, this, &CEditorForm::elSemiMajor_changedValue);
  connect(major, &ValueWidget::changedUnits, this, &CEditorForm::elSemiMajor_changedUnits);
  connect(minor, &ValueWidget::changedValue, this, &CEditorForm::elSemiMinor_changedValue);
  connect(minor, &ValueWidget::changedUnits, this, &CEditorForm::elSemiMinor_changedUnits);
  connect(inverse, &InverseFlatWidget::changedValue, this, &CEditorForm::elInvFlat_changedValue);
  connect(inverse, &InverseFlatWidget::changedDefinitive, this, &CEditorForm::elInvFlat_changedDefinitive);
}

void CEditorForm::SetUpHorizontalDatumPanel()
{
  SetPanelCaptions("Horizontal Datum Editor", "Horizontal Datum Viewer");
  auto * datum = As<CS::CHorizontalDatum>();
  connect(AddReference(QStringLiteral("Ellipsoid"), kObjectEllipsoid, &datum->GetEllipsoid()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::hdEllipsoid_changedObject);
  connect(AddReference(QStringLiteral("Prime Meridian"), kObjectPrimeMeridian, &datum->GetPrimeMeridian()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::hdPrimeMeridian_changedObject);
}

void CEditorForm::SetUpDatumShiftPanel()
{
  SetPanelCaptions("Datum Shift Editor", "Datum Shift Viewer");
  auto * shift = As<CT::DS::CDatumShift>();
  connect(AddReference(QStringLiteral("Envelope"), kObjectEnvelope, &shift->GetEnvelope()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::dsEnvelope_changedObject);
  connect(AddReference(QStringLiteral("Source"), kObjectHorizontalDatum, &shift->GetSrcDatum()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::dsSource_changedObject);
  connect(AddReference(QStringLiteral("Target"), kObjectHorizontalDatum, &shift->GetDestDatum()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::dsTarget_changedObject);
  m_params = new ParameterizedClassWidget(m_source->GetDatumShiftClassTypes());
  m_params->SetClass(shift->GetTypeName(), shift->GetParameters(), m_precision);
  AddRow(QStringLiteral("Method"), m_params);
  connect(m_params, &ParameterizedClassWidget::changedClass, this, &CEditorForm::dsParams_changedClass);
  connect(m_params, &ParameterizedClassWidget::changedParamValue, this, &CEditorForm::dsParams_changedParamValue);
}

void CEditorForm::SetUpVerticalReferencePanel()
{
  SetPanelCaptions("Vertical Reference Editor", "Vertical Reference Viewer");
  auto * reference = As<CS::VR::CVerticalReference>();
  connect(AddReference(QStringLiteral("Datum"), kObjectVerticalDatum, reference->GetVerticalDatum()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::vrDatum_changedObject);
  connect(AddReference(QStringLiteral("Height Model"), kObjectHeightModel, reference->GetHeightModel()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::vrHeightModel_changedObject);
}

void CEditorForm::SetUpVerticalDatumPanel()
{
  SetPanelCaptions("Vertical Datum Editor", "Vertical Datum Viewer");
  auto * datum = As<CS::VR::CVerticalDatum>();
  connect(AddReference(QStringLiteral("Envelope"), kObjectEnvelope, &datum->GetEnvelope()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::vdEnvelope_changedObject);
  m_params = new ParameterizedClassWidget(m_source->GetVerticalDatumClassTypes());
  m_params->SetClass(datum->GetTypeName(), datum->GetParameters(), m_precision);
  m_params->classCombo->setEnabled(false);
  AddRow(QStringLiteral("Method"), m_params);
}

void CEditorForm::SetUpHeightModelPanel()
{
  SetPanelCaptions("Height Model Editor", "Height Model Viewer");
  auto * model = As<CS::VR::CHeightModel>();
  connect(AddReference(QStringLiteral("Envelope"), kObjectEnvelope, &model->GetEnvelope()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::hmEnvelope_changedObject);
  connect(AddReference(QStringLiteral("Datum"), kObjectHorizontalDatum, &model->GetHorizontalDatum()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::hmDatum_changedObject);
  m_params = new ParameterizedClassWidget(m_source->GetHeightModelClassTypes());
  m_params->SetClass(model->GetTypeName(), model->GetParameters(), m_precision);
  m_params->classCombo->setEnabled(false);
  AddRow(QStringLiteral("Model"), m_params);
}

void CEditorForm::SetUpGeodeticCoordSysPanel()
{
  SetPanelCaptions("Geodetic Coordinate System Editor", "Geodetic Coordinate System Viewer");
  auto * system = As<CS::CGeodeticCoordSys>();
  connect(AddReference(QStringLiteral("Envelope"), kObjectEnvelope, &system->GetEnvelope()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::gcsEnvelope_changedObject);
  connect(AddReference(QStringLiteral("Point Style"), kObjectGeodeticPoint, &system->GetPointStyle()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::gcsPointStyle_changedObject);
  connect(AddReference(QStringLiteral("Datum"), kObjectHorizontalDatum, &system->GetHorizontalDatum()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::gcsDatum_changedObject);
  connect(AddReference(QStringLiteral("Vertical Reference"), kObjectVerticalReference,
                       system->GetVerticalReference()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::gcsVerticalReference_changedObject);
}

void CEditorForm::SetUpGeocentricCoordSysPanel()
{
  SetPanelCaptions("Geocentric Coordinate System Editor", "Geocentric Coordinate System Viewer");
  auto * system = As<CS::CGeocentricCoordSys>();
  connect(AddReference(QStringLiteral("Envelope"), kObjectEnvelope, &system->GetEnvelope()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::ccsEnvelope_changedObject);
  connect(AddReference(QStringLiteral("Point Style"), kObjectCartesianPoint, &system->GetPointStyle()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::ccsPointStyle_changedObject);
  connect(AddReference(QStringLiteral("Datum"), kObjectHorizontalDatum, &system->GetHorizontalDatum()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::ccsDatum_changedObject);
}

void CEditorForm::SetUpProjectedCoordSysPanel()
{
  SetPanelCaptions("Projected Coordinate System Editor", "Projected Coordinate System Viewer");
  auto * system = As<CS::CProjectedCoordSys>();
  connect(AddReference(QStringLiteral("Envelope"), kObjectEnvelope, &system->GetEnvelope()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::pcsEnvelope_changedObject);
  connect(AddReference(QStringLiteral("Point Style"), kObjectProjectedPoint, &system->GetPointStyle()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::pcsPointStyle_changedObject);
  connect(AddReference(QStringLiteral("Geodetic"), kObjectGeodeticCoordSys, &system->GetGeodeticCoordSys()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::pcsGeodetic_changedObject);
  m_params = new ParameterizedClassWidget(m_source->GetProjectionClassTypes());
  m_params->SetClass(system->GetProjection().GetTypeName(), system->GetProjection().GetParameters(), m_precision);
  // The projection's class is fixed here: a new class is a new system.
  m_params->classCombo->setEnabled(false);
  AddRow(QStringLiteral("Projection"), m_params);
}

void CEditorForm::SetUpFittedCoordSysPanel()
{
  SetPanelCaptions("Fitted Coordinate System Editor", "Fitted Coordinate System Viewer");
  auto * system = As<CS::CFittedCoordSys>();
  connect(AddReference(QStringLiteral("Envelope"), kObjectEnvelope, &system->GetEnvelope()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::fcsEnvelope_changedObject);
  connect(AddReference(QStringLiteral("Point Style"), kObjectAnyCoordPoint, &system->GetPointStyle()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::fcsPointStyle_changedObject);
  connect(AddReference(QStringLiteral("Base System"), kObjectAnyCoordSys, system->GetBaseCoordSys()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::fcsBaseSystem_changedObject);
  auto * transform = new TransformClassWidget(m_source->GetMathTransformClassTypes());
  if (CT::MT::CMathTransform const * ahead = system->GetTransformAhead())
    transform->SetClass(ahead->GetTypeName(), ahead->GetParameters(), m_precision);
  transform->classCombo->setEnabled(false);
  AddRow(QStringLiteral("Transform"), transform);
  connect(transform, &TransformClassWidget::changedParamReverseValue, this,
          &CEditorForm::fcsTransform_changedParamReverseValue);
}

void CEditorForm::SetUpCoordTransformPanel()
{
  SetPanelCaptions("Coordinate Transformation Editor", "Coordinate Transformation Viewer");
  auto * transform = As<CT::CCoordTransform>();
  auto label = [](CS::CCoordSys const * system) {
    return new QLabel(system ? QString(system->GetName()) : Tr(Text::kNone));
  };
  m_definitionLayout->addRow(QStringLiteral("Source Coord Sys"), label(transform->GetSrcCoordSys()));
  m_definitionLayout->addRow(QStringLiteral("Dest Coord Sys"), label(transform->GetDestCoordSys()));
  m_definitionLayout->addRow(QStringLiteral("Datum Shifts"),
                             new QLabel(QString::number(transform->GetDatumShifts().Count())));
}

QButtonGroup * CEditorForm::AddDimensions(short dimensions)
{
  auto * box = new QWidget;
  auto * row = new QHBoxLayout(box);
  row->setContentsMargins(0, 0, 0, 0);
  auto * group = new QButtonGroup(this);
  auto * two = new QRadioButton(QStringLiteral("2D"));
  auto * three = new QRadioButton(QStringLiteral("3D"));
  group->addButton(two, 2);
  group->addButton(three, 3);
  (dimensions > 2 ? three : two)->setChecked(true);
  row->addWidget(two);
  row->addWidget(three);
  row->addStretch(1);
  m_definitionLayout->addRow(QStringLiteral("Dimensions"), box);
  m_dimensions = group;
  return group;
}

void CEditorForm::ShowStyleAxes(ML::CCoordPoint const & style, char const * const labels[3])
{
  bool const angular = style.GetType() == ML::kGeodeticPoint;
  for (int axis = 0; axis < 3; ++axis) {
    // Heights are linear on every kind of point.
    auto * widget = new StyleWidget(m_source, angular && axis < 2);
    ML::CFormattedValue const & value = style.PointData().Value(axis);
    widget->SetAxis(value.GetLabel(), UnitName(value));
    // Labels and units of a stored style are shown; the style's class owns their edits.
    widget->labelEdit->setReadOnly(true);
    widget->unitsCombo->setEnabled(false);
    m_definitionLayout->addRow(Tr(labels[axis]), widget);
    if (axis == 2)
      m_thirdAxis = {widget, m_definitionLayout->labelForField(widget)};
  }
}

void CEditorForm::SetUpCartesianPointPanel()
{
  SetPanelCaptions("Cartesian Point Style Editor", "Cartesian Point Style Viewer");
  auto * style = As<ML::CCoordPoint>();
  connect(AddDimensions(style->GetDimensions()), &QButtonGroup::idClicked, this, &CEditorForm::cpsDimensions_Clicked);
  static char const * const labels[3] = {"X", "Y", "Z"};
  ShowStyleAxes(*style, labels);
  DisplayCartesianPointThirdDim();
}

void CEditorForm::SetUpGeodeticPointPanel()
{
  SetPanelCaptions("Geodetic Point Style Editor", "Geodetic Point Style Viewer");
  auto * style = As<ML::CCoordPoint>();
  connect(AddDimensions(style->GetDimensions()), &QButtonGroup::idClicked, this, &CEditorForm::gpsDimensions_Clicked);
  static char const * const labels[3] = {"Longitude", "Latitude", "Ellipsoid Height"};
  ShowStyleAxes(*style, labels);
  DisplayGeodeticPointThirdDim();
}

void CEditorForm::SetUpProjectedPointPanel()
{
  SetPanelCaptions("Projected Point Style Editor", "Projected Point Style Viewer");
  auto * style = As<ML::CCoordPoint>();
  connect(AddDimensions(style->GetDimensions()), &QButtonGroup::idClicked, this, &CEditorForm::ppsDimensions_Clicked);
  static char const * const labels[3] = {"East", "North", "Height"};
  ShowStyleAxes(*style, labels);
  DisplayProjectedPointThirdDim();
}

void CEditorForm::SetUpEnvelopePanel()
{
  SetPanelCaptions("Envelope Editor", "Envelope Viewer");
  auto * envelope = As<ML::CEnvelope>();
  connect(AddReference(QStringLiteral("Point Style"), kObjectAnyCoordPoint, envelope->GetMinPoint()),
          &ObjectSelectWidget::changedObject, this, &CEditorForm::enPointStyle_changedObject);
  m_extentsCheck = new QCheckBox(QStringLiteral("Use extents"));
  m_extentsCheck->setChecked(!envelope->GetAlwaysAccept());
  m_definitionLayout->addRow(QString(), m_extentsCheck);
  m_minPoint = new PointValuesWidget;
  m_maxPoint = new PointValuesWidget;
  AddRow(QStringLiteral("Minimum"), m_minPoint);
  AddRow(QStringLiteral("Maximum"), m_maxPoint);
  connect(m_extentsCheck, &QCheckBox::stateChanged, this, &CEditorForm::enExtentsCheckBox_stateChanged);
  connect(m_minPoint, &PointValuesWidget::changedFirstOrdinate, this, &CEditorForm::enMinPoint_changedFirstOrdinate);
  connect(m_minPoint, &PointValuesWidget::changedSecondOrdinate, this, &CEditorForm::enMinPoint_changedSecondOrdinate);
  connect(m_minPoint, &PointValuesWidget::changedThirdOrdinate, this, &CEditorForm::enMinPoint_changedThirdOrdinate);
  connect(m_maxPoint, &PointValuesWidget::changedFirstOrdinate, this, &CEditorForm::enMaxPoint_changedFirstOrdinate);
  connect(m_maxPoint, &PointValuesWidget::changedSecondOrdinate, this, &CEditorForm::enMaxPoint_changedSecondOrdinate);
  connect(m_maxPoint, &PointValuesWidget::changedThirdOrdinate, this, &CEditorForm::enMaxPoint_changedThirdOrdinate);
  RefreshEnvelopePointControls();
}

// Third axis and envelope controls

void CEditorForm::DisplayThirdDim(QButtonGroup * group, std::vector<QWidget *> const & thirdAxis)
{
  bool const three = group && group->checkedId() == 3;
  for (QWidget * w : thirdAxis)
    if (w)
      w->setVisible(three);
}

void CEditorForm::DisplayCartesianPointThirdDim() { DisplayThirdDim(m_dimensions, m_thirdAxis); }
void CEditorForm::DisplayGeodeticPointThirdDim() { DisplayThirdDim(m_dimensions, m_thirdAxis); }
void CEditorForm::DisplayProjectedPointThirdDim() { DisplayThirdDim(m_dimensions, m_thirdAxis); }

void CEditorForm::cpsDimensions_Clicked(int id)
{
  As<ML::CCoordPoint>()->SetDimensions(static_cast<short>(id));
  DisplayCartesianPointThirdDim();
}
void CEditorForm::gpsDimensions_Clicked(int id)
{
  As<ML::CCoordPoint>()->SetDimensions(static_cast<short>(id));
  DisplayGeodeticPointThirdDim();
}
void CEditorForm::ppsDimensions_Clicked(int id)
{
  As<ML::CCoordPoint>()->SetDimensions(static_cast<short>(id));
  DisplayProjectedPointThirdDim();
}

void CEditorForm::RefreshEnvelopePointControls()
{
  auto * envelope = As<ML::CEnvelope>();
  if (!envelope || !m_minPoint)
    return;
  auto show = [this](PointValuesWidget * widget, ML::CCoordPoint const * point) {
    double a = 0, b = 0, c = 0;
    int dimensions = 2;
    if (point) {
      dimensions = point->GetDimensions();
      if (dimensions > 2)
        point->GetInUnits(a, b, c);
      else
        point->GetInUnits(a, b);
    }
    widget->SetValues(a, b, c, dimensions, m_precision);
    widget->setEnabled(point && m_extentsCheck->isChecked());
  };
  show(m_minPoint, envelope->GetMinPoint());
  show(m_maxPoint, envelope->GetMaxPoint());
}

void CEditorForm::enExtentsCheckBox_stateChanged(int state)
{
  As<ML::CEnvelope>()->SetAlwaysAccept(state != Qt::Checked);
  RefreshEnvelopePointControls();
}

void CEditorForm::enPointStyle_changedObject(CSerializable const * object)
{
  auto const * style = dynamic_cast<ML::CCoordPoint const *>(object);
  auto * envelope = As<ML::CEnvelope>();
  if (!style)
    return;
  envelope->SetMinPoint(*style);
  envelope->SetMaxPoint(*style);
  RefreshEnvelopePointControls();
}

void CEditorForm::SetEnvelopeCorner(bool maximum, int axis, double value)
{
  auto * envelope = As<ML::CEnvelope>();
  ML::CCoordPoint * point = maximum ? envelope->GetMaxPoint() : envelope->GetMinPoint();
  if (!point)
    return;
  double v[3] = {0, 0, 0};
  if (point->GetDimensions() > 2) {
    point->GetInUnits(v[0], v[1], v[2]);
    v[axis] = value;
    point->SetInUnits(v[0], v[1], v[2]);
  } else if (axis < 2) {
    point->GetInUnits(v[0], v[1]);
    v[axis] = value;
    point->SetInUnits(v[0], v[1]);
  }
}

void CEditorForm::enMinPoint_changedFirstOrdinate(double value) { SetEnvelopeCorner(false, 0, value); }
void CEditorForm::enMinPoint_changedSecondOrdinate(double value) { SetEnvelopeCorner(false, 1, value); }
void CEditorForm::enMinPoint_changedThirdOrdinate(double value) { SetEnvelopeCorner(false, 2, value); }
void CEditorForm::enMaxPoint_changedFirstOrdinate(double value) { SetEnvelopeCorner(true, 0, value); }
void CEditorForm::enMaxPoint_changedSecondOrdinate(double value) { SetEnvelopeCorner(true, 1, value); }
void CEditorForm::enMaxPoint_changedThirdOrdinate(double value) { SetEnvelopeCorner(true, 2, value); }

// Change slots: each writes to the working copy.

void CEditorForm::objectWidget_changedName(QString const & name) { m_object->SetName(name); }
void CEditorForm::objectWidget_changedRemarks(QString const & remarks) { m_object->SetRemarks(remarks); }
void CEditorForm::objectWidget_changedCode(QString const & issuer, QString const & code)
{
  CIdentifierCollection & identifiers = m_object->GetIdentifiers();
  if (code.isEmpty())
    identifiers.Remove(issuer);
  else if (identifiers.Exists(issuer))
    identifiers.SetItem(issuer, code);
  else
    identifiers.Add(issuer, code);
}

void CEditorForm::auWidget_changedAbbreviation(QString const & text) { As<ML::CAngularUnit>()->SetAbbreviation(text); }
void CEditorForm::auWidget_changedUnitsPerBase(double value) { As<ML::CAngularUnit>()->SetUnitsPerDegree(value); }
void CEditorForm::luWidget_changedAbbreviation(QString const & text) { As<ML::CLinearUnit>()->SetAbbreviation(text); }
void CEditorForm::luWidget_changedUnitsPerBase(double value) { As<ML::CLinearUnit>()->SetUnitsPerMeter(value); }

void CEditorForm::pmLongitude_changedValue(double value) { As<CS::CPrimeMeridian>()->GetLongitude().SetValue(value); }
void CEditorForm::pmLongitude_changedUnits(CSerializable const * units)
{
  if (auto const * unit = dynamic_cast<ML::CAngularUnit const *>(units))
    As<CS::CPrimeMeridian>()->GetLongitude().SetUnits(*unit);
}

void CEditorForm::elSemiMajor_changedValue(double value)
{
  ML::CLinearValue axis = As<CS::CEllipsoid>()->GetSemiMajor();
  axis.SetValue(value);
  As<CS::CEllipsoid>()->SetSemiMajor(axis);
}
void CEditorForm::elSemiMajor_changedUnits(CSerializable const * units)
{
  if (auto const * unit = dynamic_cast<ML::CLinearUnit const *>(units)) {
    ML::CLinearValue axis = As<CS::CEllipsoid>()->GetSemiMajor();
    axis.SetUnits(*unit);
    As<CS::CEllipsoid>()->SetSemiMajor(axis);
  }
}
void CEditorForm::elSemiMinor_changedValue(double value)
{
  ML::CLinearValue axis = As<CS::CEllipsoid>()->GetSemiMinor();
  axis.SetValue(value);
  As<CS::CEllipsoid>()->SetSemiMinor(axis);
}
void CEditorForm::elSemiMinor_changedUnits(CSerializable const * units)
{
  if (auto const * unit = dynamic_cast<ML::CLinearUnit const *>(units)) {
    ML::CLinearValue axis = As<CS::CEllipsoid>()->GetSemiMinor();
    axis.SetUnits(*unit);
    As<CS::CEllipsoid>()->SetSemiMinor(axis);
  }
}
void CEditorForm::elInvFlat_changedValue(double value) { As<CS::CEllipsoid>()->SetInvFlattening(value); }
void CEditorForm::elInvFlat_changedDefinitive(bool definitive)
{
  As<CS::CEllipsoid>()->SetInvFlatDefinitive(definitive);
}

void CEditorForm::hdEllipsoid_changedObject(CSerializable const * object)
{
  if (auto const * e = dynamic_cast<CS::CEllipsoid const *>(object))
    As<CS::CHorizontalDatum>()->SetEllipsoid(*e);
}
void CEditorForm::hdPrimeMeridian_changedObject(CSerializable const * object)
{
  if (auto const * m = dynamic_cast<CS::CPrimeMeridian const *>(object))
    As<CS::CHorizontalDatum>()->SetPrimeMeridian(*m);
}

void CEditorForm::dsEnvelope_changedObject(CSerializable const * object)
{
  if (auto const * e = dynamic_cast<ML::CEnvelope const *>(object))
    As<CT::DS::CDatumShift>()->SetEnvelope(*e);
}
void CEditorForm::dsSource_changedObject(CSerializable const * object)
{
  if (auto const * d = dynamic_cast<CS::CHorizontalDatum const *>(object))
    As<CT::DS::CDatumShift>()->SetSrcDatum(*d);
}
void CEditorForm::dsTarget_changedObject(CSerializable const * object)
{
  if (auto const * d = dynamic_cast<CS::CHorizontalDatum const *>(object))
    As<CT::DS::CDatumShift>()->SetDestDatum(*d);
}

void CEditorForm::dsParams_changedClass(int)
{
  // A new method is a new shift object of that class carrying the same identity and datums.
  auto * old = As<CT::DS::CDatumShift>();
  int const type = CT::DS::CDatumShiftDataDB::GetDatumShiftType(m_params->classCombo->currentText());
  std::unique_ptr<CT::DS::CDatumShift> shift(type >= 0 ? CT::DS::CDatumShiftFactory::CreateDatumShift(type) : nullptr);
  if (!shift)
    return;
  shift->SetName(old->GetName());
  shift->SetRemarks(old->GetRemarks());
  shift->SetIdentifiers(old->GetIdentifiers());
  shift->SetGroupID(old->GetGroupID());
  shift->SetEnvelope(old->GetEnvelope());
  shift->SetSrcDatum(old->GetSrcDatum());
  shift->SetDestDatum(old->GetDestDatum());
  m_object = std::move(shift);
  m_params->SetClass(m_params->classCombo->currentText(), As<CT::DS::CDatumShift>()->GetParameters(), m_precision);
}

void CEditorForm::dsParams_changedParamValue(int row, double value)
{
  CParameterCollection & parameters = As<CT::DS::CDatumShift>()->GetParameters();
  CString const name = parameters.ParameterNameAtIndex(row);
  switch (parameters.GetItemType(name)) {
  case CParameter::kLong: parameters.SetLong(name, static_cast<long>(value)); break;
  case CParameter::kAngularValue: {
    ML::CAngularValue v = parameters.GetAngularValue(name);
    v.SetValue(value);
    parameters.SetAngularValue(name, v);
    break;
  }
  case CParameter::kLinearValue: {
    ML::CLinearValue v = parameters.GetLinearValue(name);
    v.SetValue(value);
    parameters.SetLinearValue(name, v);
    break;
  }
  case CParameter::kString: parameters.SetString(name, QString::number(value)); break;
  default: parameters.SetDouble(name, value);
  }
}

void CEditorForm::vrDatum_changedObject(CSerializable const * object)
{
  As<CS::VR::CVerticalReference>()->SetVerticalDatum(dynamic_cast<CS::VR::CVerticalDatum const *>(object));
}
void CEditorForm::vrHeightModel_changedObject(CSerializable const * object)
{
  As<CS::VR::CVerticalReference>()->SetHeightModel(dynamic_cast<CS::VR::CHeightModel const *>(object));
}
void CEditorForm::vdEnvelope_changedObject(CSerializable const * object)
{
  if (auto const * e = dynamic_cast<ML::CEnvelope const *>(object))
    As<CS::VR::CVerticalDatum>()->SetEnvelope(*e);
}
void CEditorForm::hmEnvelope_changedObject(CSerializable const * object)
{
  if (auto const * e = dynamic_cast<ML::CEnvelope const *>(object))
    As<CS::VR::CHeightModel>()->SetEnvelope(*e);
}
void CEditorForm::hmDatum_changedObject(CSerializable const * object)
{
  if (auto const * d = dynamic_cast<CS::CHorizontalDatum const *>(object))
    As<CS::VR::CHeightModel>()->SetHorizontalDatum(*d);
}

namespace {
void SetEnvelopeOf(CSerializable * system, CSerializable const * object)
{
  if (auto const * e = dynamic_cast<ML::CEnvelope const *>(object))
    static_cast<CS::CCoordSys *>(system)->SetEnvelope(*e);
}
void SetStyleOf(CSerializable * system, CSerializable const * object)
{
  if (auto const * p = dynamic_cast<ML::CCoordPoint const *>(object))
    static_cast<CS::CCoordSys *>(system)->SetPointStyle(*p);
}
} // namespace

void CEditorForm::gcsEnvelope_changedObject(CSerializable const * object) { SetEnvelopeOf(m_object.get(), object); }
void CEditorForm::gcsPointStyle_changedObject(CSerializable const * object) { SetStyleOf(m_object.get(), object); }
void CEditorForm::gcsDatum_changedObject(CSerializable const * object)
{
  if (auto const * d = dynamic_cast<CS::CHorizontalDatum const *>(object))
    As<CS::CGeodeticCoordSys>()->SetHorizontalDatum(*d);
}
void CEditorForm::gcsVerticalReference_changedObject(CSerializable const * object)
{
  As<CS::CGeodeticCoordSys>()->SetVerticalReference(dynamic_cast<CS::VR::CVerticalReference const *>(object));
}
void CEditorForm::ccsEnvelope_changedObject(CSerializable const * object) { SetEnvelopeOf(m_object.get(), object); }
void CEditorForm::ccsPointStyle_changedObject(CSerializable const * object) { SetStyleOf(m_object.get(), object); }
void CEditorForm::ccsDatum_changedObject(CSerializable const * object)
{
  if (auto const * d = dynamic_cast<CS::CHorizontalDatum const *>(object))
    As<CS::CGeocentricCoordSys>()->SetHorizontalDatum(*d);
}
void CEditorForm::pcsEnvelope_changedObject(CSerializable const * object) { SetEnvelopeOf(m_object.get(), object); }
void CEditorForm::pcsPointStyle_changedObject(CSerializable const * object) { SetStyleOf(m_object.get(), object); }
void CEditorForm::pcsGeodetic_changedObject(CSerializable const * object)
{
  if (auto const * g = dynamic_cast<CS::CGeodeticCoordSys const *>(object))
    As<CS::CProjectedCoordSys>()->SetGeodeticCoordSys(*g);
}
void CEditorForm::fcsEnvelope_changedObject(CSerializable const * object) { SetEnvelopeOf(m_object.get(), object); }
void CEditorForm::fcsPointStyle_changedObject(CSerializable const * object) { SetStyleOf(m_object.get(), object); }
void CEditorForm::fcsBaseSystem_changedObject(CSerializable const * object)
{
  As<CS::CFittedCoordSys>()->SetBaseCoordSys(dynamic_cast<CS::CCoordSys const *>(object));
}
void CEditorForm::fcsTransform_changedParamReverseValue(int, double)
{
  // The transform's parameters are fitted from control points, not typed in.
}

// Closing

void CEditorForm::okButton_clicked()
{
  if (m_viewer) {
    accept();
    return;
  }
  try {
    m_source->PutSerializable(m_type, *m_object, true);
  } catch (EX::CVelmoraException const & e) {
    QMessageBox::warning(this, QStringLiteral("Velmora Validation"),
                         QStringLiteral("Edited object is not fully specified or is otherwise invalid.") +
                           QStringLiteral(" Error location: ") + e.GetLocation());
    return;
  }
  accept();
}

void CEditorForm::cancelButton_clicked() { reject(); }

void CEditorForm::done(int result)
{
  SaveSettings();
  QDialog::done(result);
}

void CEditorForm::SetPrecision(int digits)
{
  m_precision = digits;
}

CString CEditorForm::GetTitleBarCaption() const { return windowTitle(); }
void CEditorForm::SetTitleBarCaption(CString const & caption) { setWindowTitle(caption); }
void CEditorForm::SetParent(QWidget * parent) { setParent(parent, windowFlags()); }
void CEditorForm::LoadSettings() { RestoreGeometry(*this, Tr(kStem)); }
void CEditorForm::SaveSettings() const { SaveGeometry(*this, Tr(kStem)); }

} // namespace Velmora::QtDialogs
