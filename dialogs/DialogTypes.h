#pragma once
// What every window of the dialogs library shares: how a window was closed,
// the texts and settings that several windows use, and small helpers.
#include <velmora/datasource/CDataSource.h>
#include <velmora/datasource/DataSourceInfo.h>
#include <velmora/foundation/CSerializable.h>
#include <velmora/foundation/CSerializableData.h>

#include <QString>

class QWidget;

namespace Velmora::QtDialogs {

// How a window was closed.
enum EDialogState : int {
  eDialogCancelled = 0,
  eDialogAccepted = 1,
  eDialogFailed = 2,
};

// Texts shown by more than one window.
namespace Text {
inline constexpr char kProduct[] = "Velmora";
inline constexpr char kConfirm[] = "Confirm";
inline constexpr char kTransformEditing[] = "Coordinate Transform editing is not supported at this time.";
inline constexpr char kTransformViewing[] = "Coordinate Transform viewing is not supported at this time.";
inline constexpr char kNoDataSource[] = "Dialog requires a DataSource object.";
inline constexpr char kNone[] = "<None>";
} // namespace Text

// The user's settings of every window live under this organisation.
inline constexpr char kSettingsOrganisation[] = "Tarnwell";

// Window geometry under "<stem>.Width", ".Height", ".X", ".Y".
VELMORA_API void SaveGeometry(QWidget const & window, QString const & stem);
VELMORA_API void RestoreGeometry(QWidget & window, QString const & stem);

// The object's code of an issuer; empty where it has none.
VELMORA_API QString IssuerCode(CSerializableData const & object, char const * issuer);
VELMORA_API QString IssuerCode(CSerializable const & object, char const * issuer);

// One above the largest numeric "VM" code of the kind: the code of a new object.
VELMORA_API QString NextFreeCode(DB::CDataSource const & source, long type);

// A message box of the product, modal to `parent`; answers the button pressed.
VELMORA_API void ShowMessage(QWidget * parent, QString const & caption, QString const & text);

} // namespace Velmora::QtDialogs
