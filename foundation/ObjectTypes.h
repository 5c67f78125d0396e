#pragma once
// Object kinds as bits, so that sets of kinds can be asked for, and the
// small enumerations the object frame shares.
#include <velmora/foundation/CString.h>

namespace Velmora {

enum EObjectType : long {
  kObjectNone = 0,
  kObjectAngularUnit = 1,
  kObjectLinearUnit = 2,
  kObjectPrimeMeridian = 4,
  kObjectEllipsoid = 8,
  kObjectHorizontalDatum = 16,
  kObjectDatumShift = 32,
  kObjectCartesianPoint = 64,
  kObjectGeodeticPoint = 128,
  kObjectProjectedPoint = 256,
  kObjectEnvelope = 512,
  kObjectVerticalReference = 1024,
  kObjectGeocentricCoordSys = 2048,
  kObjectGeodeticCoordSys = 4096,
  kObjectProjectedCoordSys = 8192,
  kObjectFittedCoordSys = 16384,
  kObjectCoordTransform = 32768,
  kObjectHeightModel = 65536,
  kObjectVerticalDatum = 131072,
  kObjectAnyCoordPoint = 448,
  kObjectAnyCoordSys = 30720,
};

// What GetDataObjectType tells of a body.
enum EDataObjectType { kEDataObjectDB = 0, kEDataObjectConcrete = 1 };

// The identifier level of comparison: decided either way, or left to the fields.
enum eNearlyEqualBaseResult {
  kNearlyEqualBaseDifferent = -1,
  kNearlyEqualBaseUndecided = 0,
  kNearlyEqualBaseSame = 1,
};

namespace ObjectTypes {
// Root group of a single kind; 0 for anything else.
VELMORA_API long RootGroupOf(long type);
// The kind whose root group this is; 0 for anything else.
VELMORA_API long TypeOfRootGroup(long group);
VELMORA_API CString NameOf(long type);
VELMORA_API bool IsSingle(long type);
} // namespace ObjectTypes

} // namespace Velmora
