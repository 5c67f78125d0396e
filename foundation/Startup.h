#pragma once
// The library's three C entry points: make sure a GUI application object
// exists before dialogs are used, release it, and show a warning box.
#include <velmora/foundation/Export.h>

extern "C" {
VELMORA_API bool VMInitialize(void);
VELMORA_API bool VMTerminate(void);
VELMORA_API void VMIssueWarning(unsigned short const * title, unsigned short const * text);
}
