#pragma once
// Velmora: every public header of the library, in one include.

// Foundation
#include <velmora/foundation/CDataObject.h>
#include <velmora/foundation/CDataObjectPtr.h>
#include <velmora/foundation/CIdentifierCollection.h>
#include <velmora/foundation/CSerializable.h>
#include <velmora/foundation/CSerializableData.h>
#include <velmora/foundation/CString.h>
#include <velmora/foundation/Constants.h>
#include <velmora/foundation/Family.h>
#include <velmora/foundation/ObjectTypes.h>
#include <velmora/foundation/Startup.h>
#include <velmora/foundation/TWLFile.h>
#include <velmora/foundation/TWLVariant.h>
#include <velmora/foundation/VelmoraException.h>

// Parameters
#include <velmora/foundation/ParameterCollection.h>
#include <velmora/foundation/ParameterizedHandle.h>

// Measures
#include <velmora/measures/BPoint.h>
#include <velmora/measures/CoordPointCollection.h>
#include <velmora/measures/CoordPoints.h>
#include <velmora/measures/Envelope.h>
#include <velmora/measures/Units.h>
#include <velmora/measures/Values.h>

// Reference frames
#include <velmora/refsys/BEllipsoid.h>
#include <velmora/refsys/Ellipsoid.h>
#include <velmora/refsys/HorizontalDatum.h>
#include <velmora/refsys/PrimeMeridian.h>
#include <velmora/refsys/CoordSys.h>
#include <velmora/refsys/FittedCoordSys.h>

// Projections
#include <velmora/projections/Azimuthal.h>
#include <velmora/projections/Conic.h>
#include <velmora/projections/Cylindrical.h>
#include <velmora/projections/MeridionalUtil.h>
#include <velmora/projections/Oblique.h>
#include <velmora/projections/Projection.h>
#include <velmora/projections/GridSystems.h>
#include <velmora/projections/TransverseMercator.h>
#include <velmora/projections/WorldMap.h>

// Transforms
#include <velmora/transforms/CoordTransform.h>
#include <velmora/transforms/datumshifts/DatumShift.h>
#include <velmora/transforms/datumshifts/DatumShiftCollection.h>
#include <velmora/transforms/datumshifts/DatumShiftInfo.h>
#include <velmora/transforms/datumshifts/GridShifts.h>
#include <velmora/transforms/datumshifts/NationalShifts.h>
#include <velmora/transforms/datumshifts/ParametricShifts.h>
#include <velmora/transforms/mathtransforms/Affine3D.h>

// Math transforms
#include <velmora/transforms/mathtransforms/LeastSquaresAdjustor.h>
#include <velmora/transforms/mathtransforms/MathTransform.h>
#include <velmora/transforms/mathtransforms/Matrix2D.h>
#include <velmora/transforms/mathtransforms/OldSchool.h>
#include <velmora/transforms/mathtransforms/Polynomial2D.h>

// Vertical
#include <velmora/vertical/HeightModel.h>
#include <velmora/vertical/HeightModels.h>
#include <velmora/vertical/SimpleGriddedData.h>
#include <velmora/vertical/VerticalDatum.h>
#include <velmora/vertical/VerticalReference.h>

// Data source
#include <velmora/datasource/CDataSource.h>
#include <velmora/datasource/DataSourceInfo.h>
#include <velmora/datasource/sax/Groups.h>
#include <velmora/datasource/sax/dbGroup.h>
#include <velmora/datasource/sax/CValueHandler.h>
