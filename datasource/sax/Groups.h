#pragma once
// The group of each of the eighteen kinds of stored object.
#include <velmora/datasource/sax/dbGroup.h>
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
#include <velmora/vertical/HeightModel.h>
#include <velmora/vertical/VerticalDatum.h>
#include <velmora/vertical/VerticalReference.h>

namespace Velmora::DB::SAX {

#define VELMORA_STORE_GROUP(Name, Data, Body, Type)                                                              \
  class VELMORA_API C##Name##Group final : public TGroup<Body, Data>                                             \
  {                                                                                                              \
  public:                                                                                                        \
    C##Name##Group() : TGroup(Type) {}                                                                           \
  };

VELMORA_STORE_GROUP(AngularUnit, ML::CAngularUnitData, ML::CAngularUnitDataDB, kObjectAngularUnit)
VELMORA_STORE_GROUP(LinearUnit, ML::CLinearUnitData, ML::CLinearUnitDataDB, kObjectLinearUnit)
VELMORA_STORE_GROUP(PrimeMeridian, CS::CPrimeMeridianData, CS::CPrimeMeridianDataDB, kObjectPrimeMeridian)
VELMORA_STORE_GROUP(Ellipsoid, CS::CEllipsoidData, CS::CEllipsoidDataDB, kObjectEllipsoid)
VELMORA_STORE_GROUP(HorizontalDatum, CS::CHorizontalDatumData, CS::CHorizontalDatumDataDB, kObjectHorizontalDatum)
VELMORA_STORE_GROUP(DatumShift, CT::DS::CDatumShiftData, CT::DS::CDatumShiftDataDB, kObjectDatumShift)
VELMORA_STORE_GROUP(CartesianPoint, ML::CCartesianPointData, ML::CCartesianPointDataDB, kObjectCartesianPoint)
VELMORA_STORE_GROUP(GeodeticPoint, ML::CGeodeticPointData, ML::CGeodeticPointDataDB, kObjectGeodeticPoint)
VELMORA_STORE_GROUP(ProjectedPoint, ML::CProjectedPointData, ML::CProjectedPointDataDB, kObjectProjectedPoint)
VELMORA_STORE_GROUP(Envelope, ML::CEnvelopeData, ML::CEnvelopeDataDB, kObjectEnvelope)
VELMORA_STORE_GROUP(VerticalReference, CS::VR::CVerticalReferenceData, CS::VR::CVerticalReferenceDataDB,
                    kObjectVerticalReference)
VELMORA_STORE_GROUP(VerticalDatum, CS::VR::CVerticalDatumData, CS::VR::CVerticalDatumDataDB, kObjectVerticalDatum)
VELMORA_STORE_GROUP(HeightModel, CS::VR::CHeightModelData, CS::VR::CHeightModelDataDB, kObjectHeightModel)
VELMORA_STORE_GROUP(GeodeticCoordSys, CS::CGeodeticCoordSysData, CS::CGeodeticCoordSysDataDB,
                    kObjectGeodeticCoordSys)
VELMORA_STORE_GROUP(GeocentricCoordSys, CS::CGeocentricCoordSysData, CS::CGeocentricCoordSysDataDB,
                    kObjectGeocentricCoordSys)
VELMORA_STORE_GROUP(ProjectedCoordSys, CS::CProjectedCoordSysData, CS::CProjectedCoordSysDataDB,
                    kObjectProjectedCoordSys)
VELMORA_STORE_GROUP(FittedCoordSys, CS::CFittedCoordSysData, CS::CFittedCoordSysDataDB, kObjectFittedCoordSys)
VELMORA_STORE_GROUP(CoordTransform, CT::CCoordTransformData, CT::CCoordTransformDataDB, kObjectCoordTransform)

#undef VELMORA_STORE_GROUP

} // namespace Velmora::DB::SAX
