// The editor form: captions of every panel, the viewer, validation and the third axis.
#include "ModalDriver.h"

#include <velmora/dialogs/EditorForm.h>
#include <velmora/foundation/Startup.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QLineEdit>
#include <QRadioButton>
#include <QSettings>
#include <QTest>

#include <gtest/gtest.h>

using namespace Velmora;
using namespace Velmora::QtDialogs;
using VelmoraTest::ModalDriver;
using VelmoraTest::ScratchStore;

namespace {

bool const g_started = VMInitialize();

struct FormCase
{
  EObjectType type;
  char const * code;
  char const * editing;
  char const * viewing;
};

// The first object of each kind in the small file.
FormCase const kForms[] = {
  {kObjectAngularUnit, "1", "Angular Unit Editor", "Angular Unit Viewer"},
  {kObjectLinearUnit, "1", "Linear Unit Editor", "Linear Unit Viewer"},
  {kObjectPrimeMeridian, "1", "Prime Meridian Editor", "Prime Meridian Viewer"},
  {kObjectEllipsoid, "1", "Ellipsoid Editor", "Ellipsoid Viewer"},
  {kObjectHorizontalDatum, "1", "Horizontal Datum Editor", "Horizontal Datum Viewer"},
  {kObjectDatumShift, "1", "Datum Shift Editor", "Datum Shift Viewer"},
  {kObjectVerticalReference, "1", "Vertical Reference Editor", "Vertical Reference Viewer"},
  {kObjectVerticalDatum, "1", "Vertical Datum Editor", "Vertical Datum Viewer"},
  {kObjectHeightModel, "1", "Height Model Editor", "Height Model Viewer"},
  {kObjectGeodeticCoordSys, "1", "Geodetic Coordinate System Editor", "Geodetic Coordinate System Viewer"},
  {kObjectGeocentricCoordSys, "1", "Geocentric Coordinate System Editor", "Geocentric Coordinate System Viewer"},
  {kObjectProjectedCoordSys, "32632", "Projected Coordinate System Editor", "Projected Coordinate System Viewer"},
  {kObjectFittedCoordSys, "1", "Fitted Coordinate System Editor", "Fitted Coordinate System Viewer"},
  {kObjectCoordTransform, "1", "Coordinate Transformation Editor", "Coordinate Transformation Viewer"},
  {kObjectCartesianPoint, "1", "Cartesian Point Style Editor", "Cartesian Point Style Viewer"},
  {kObjectGeodeticPoint, "1", "Geodetic Point Style Editor", "Geodetic Point Style Viewer"},
  {kObjectProjectedPoint, "1", "Projected Point Style Editor", "Projected Point Style Viewer"},
  {kObjectEnvelope, "1", "Envelope Editor", "Envelope Viewer"},
};

QString const kSmallFile = QStringLiteral(VELMORA_TEST_DATA "/datasource/all_kinds.xml");

} // namespace

TEST(EditorForm, PanelCaptionsAndReadOnlyViewer)
{
  ScratchStore store(kSmallFile);
  for (FormCase const & c : kForms) {
    DB::CObjectNodeTag tag(c.type, CString("VM"), CString(c.code), CString());
    CEditorForm editor(&store.source, &tag, false);
    EXPECT_EQ(editor.GetTitleBarCaption(), c.editing);
    CEditorForm viewer(&store.source, &tag, true);
    EXPECT_EQ(viewer.GetTitleBarCaption(), c.viewing);
    for (QLineEdit * edit : viewer.findChildren<QLineEdit *>())
      EXPECT_TRUE(edit->isReadOnly() || !edit->isEnabled()) << c.viewing;
    for (QAbstractButton * button : viewer.findChildren<QAbstractButton *>()) {
      if (!qobject_cast<QAbstractItemView *>(button->parentWidget())) {
        EXPECT_TRUE(!button->isEnabled() || button == viewer.okButton || button->isHidden())
          << c.viewing << " " << button->text().toStdString();
      }
    }
  }
}

TEST(EditorForm, NewObjectWithoutReferencesStaysOpenWithTheValidationBox)
{
  ScratchStore store(kSmallFile);
  DB::CObjectNodeTag tag(kObjectHorizontalDatum, 500L);
  CEditorForm form(&store.source, &tag, false, true, nullptr, nullptr, true);
  form.show();
  ModalDriver driver;
  driver.Press("OK");
  QTest::mouseClick(form.okButton, Qt::LeftButton);
  ASSERT_EQ(driver.Seen().size(), 1u);
  EXPECT_EQ(driver.Seen()[0].caption, "Velmora Validation");
  EXPECT_TRUE(driver.Seen()[0].text.startsWith(
    "Edited object is not fully specified or is otherwise invalid. Error location: C"));
  EXPECT_TRUE(form.isVisible());
  EXPECT_EQ(form.result(), 0);

  // A transform cannot be made here.
  DB::CObjectNodeTag transform(kObjectCoordTransform, 1500L);
  try {
    form.CreateNewObject(&transform);
    FAIL();
  } catch (EX::CVelmoraException const & e) {
    EXPECT_EQ(e.GetErrorCode(), 54);
    EXPECT_EQ(e.GetLocation(), "CEditorForm::CreateNewObject");
  }
  form.reject();
  QSettings settings(QSettings::UserScope, "Tarnwell");
  EXPECT_TRUE(settings.contains("/Velmora/Qt/EditorForm.X"));
}

TEST(EditorForm, DimensionsShowAndHideTheThirdAxis)
{
  ScratchStore store(kSmallFile);
  DB::CObjectNodeTag tag(kObjectProjectedPoint, CString("VM"), CString("1"), CString());
  CEditorForm form(&store.source, &tag);
  form.show();
  QRadioButton * two = nullptr;
  QRadioButton * three = nullptr;
  for (QRadioButton * b : form.findChildren<QRadioButton *>())
    (b->text() == "2D" ? two : three) = b;
  ASSERT_TRUE(two && three);
  auto visibleAxes = [&] {
    int visible = 0;
    for (QWidget * w : form.findChildren<QWidget *>())
      visible += w->inherits("Velmora::QtDialogs::StyleWidget") && w->isVisible();
    return visible;
  };
  QTest::mouseClick(three, Qt::LeftButton);
  EXPECT_EQ(visibleAxes(), 3);
  QTest::mouseClick(two, Qt::LeftButton);
  EXPECT_EQ(visibleAxes(), 2);
}
