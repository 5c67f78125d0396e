#pragma once
// Velmora: every public header of the library, in one include.

// Foundation
#include <velmora/foundation/CString.h>
#include <velmora/foundation/Startup.h>
#include <velmora/foundation/TWLFile.h>
#include <velmora/foundation/TWLVariant.h>
#include <velmora/foundation/VelmoraException.h>

// Measures
#include <velmora/measures/BPoint.h>

// Reference frames
#include <velmora/refsys/BEllipsoid.h>
