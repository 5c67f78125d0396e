#pragma once
// The data source: the store of definitions. Here, its process-wide settings
// and the object-kind helpers; the store itself joins them.
#include <velmora/foundation/CString.h>
#include <velmora/foundation/ObjectTypes.h>

namespace Velmora::DB {

class VELMORA_API CDataSource
{
public:
  // Where grid files are looked for, joined to their names by concatenation.
  static CString GetDataPath();
  static void SetDataPath(CString const & path);
  static void SetDataPath(unsigned short const * path) { SetDataPath(CString(path)); }
  // Makes every envelope accept every point, without changing any object.
  static bool GetIgnoreEnvelope();
  static void SetIgnoreEnvelope(bool ignore);
  // Imported systems are replaced by their stored equivalents.
  static bool GetWKTForceMatch();
  static void SetWKTForceMatch(bool force);
  // Keeps cartographic computations off the poles.
  static bool GetCartographicFlag();
  static void SetCartographicFlag(bool flag);
  // Brings longitudes near a projection's central meridian before projecting.
  static bool GetCenterOnMeridianFlag();
  static void SetCenterOnMeridianFlag(bool flag);
  static double GetCenteringMargin();
  static void SetCenteringMargin(double degrees);

  // Object kinds.
  static long GetGroupID(long type) { return ObjectTypes::RootGroupOf(type); }
  static long GetTypeByGroupID(long group) { return ObjectTypes::TypeOfRootGroup(group); }
  static bool IsPrimaryGroupID(long group) { return ObjectTypes::TypeOfRootGroup(group) != 0; }
  static CString GetTypeNameFromConstant(long type) { return ObjectTypes::NameOf(type); }
  static bool IsSingleType(long type) { return ObjectTypes::IsSingle(type); }
  static long GetCoordSysMask(long type) { return type & kObjectAnyCoordSys; }
  static long GetCoordPointMask(long type) { return type & kObjectAnyCoordPoint; }
  static bool IsCoordPointType(long type) { return GetCoordPointMask(type) != 0; }
  static bool IsCoordSysType(long type) { return GetCoordSysMask(type) != 0; }
  // A single kind as it is; a mix with point bits reads as any point, else
  // with system bits as any system.
  static long GetEffectiveObjectType(long type);
};

} // namespace Velmora::DB
