#pragma once
// Velmora's dialogs, in one include; link Velmora::velmora-dialogs.
#include <velmora/dialogs/DataBrowser.h>
#include <velmora/dialogs/DataSourceDialog.h>
#include <velmora/dialogs/DataSourceEditor.h>
#include <velmora/dialogs/DataSourcePicker.h>
#include <velmora/dialogs/DatumShiftPicker.h>
#include <velmora/dialogs/DialogTypes.h>
#include <velmora/dialogs/EditorForm.h>
#include <velmora/dialogs/EditorWidgets.h>
#include <velmora/dialogs/ListItems.h>
#include <velmora/dialogs/ObjectBrowserDialog.h>
#include <velmora/dialogs/ObjectBrowserDialogBase.h>
#include <velmora/dialogs/ObjectPicker.h>
