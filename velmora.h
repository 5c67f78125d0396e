#pragma once
// Velmora: every public header of the library, in one include.

// Foundation
#include <velmora/foundation/CString.h>
#include <velmora/foundation/Startup.h>
#include <velmora/foundation/TWLFile.h>
#include <velmora/foundation/TWLVariant.h>
#include <velmora/foundation/VelmoraException.h>

// Object frame
#include <velmora/datasource/sax/CValueHandler.h>
#include <velmora/foundation/CDataObject.h>
#include <velmora/foundation/CDataObjectPtr.h>
#include <velmora/foundation/CIdentifierCollection.h>
#include <velmora/foundation/CSerializable.h>
#include <velmora/foundation/CSerializableData.h>
#include <velmora/foundation/Family.h>
#include <velmora/foundation/ObjectTypes.h>

// Parameters
#include <velmora/foundation/ParameterCollection.h>

// Measures
#include <velmora/measures/Units.h>
#include <velmora/measures/Values.h>
#include <velmora/foundation/Constants.h>
