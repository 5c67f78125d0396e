#include <velmora/datasource/CDataSource.h>

namespace Velmora::DB {

namespace {
// Process-wide and unguarded: set them at start-up.
struct Settings
{
  CString dataPath;
  bool ignoreEnvelope = false;
  bool wktForceMatch = false;
  bool cartographic = false;
  bool centerOnMeridian = false;
  double centeringMargin = 0.0;
};

Settings & TheSettings()
{
  static Settings settings;
  return settings;
}
} // namespace

CString CDataSource::GetDataPath() { return TheSettings().dataPath; }
void CDataSource::SetDataPath(CString const & path) { TheSettings().dataPath = path; }
bool CDataSource::GetIgnoreEnvelope() { return TheSettings().ignoreEnvelope; }
void CDataSource::SetIgnoreEnvelope(bool ignore) { TheSettings().ignoreEnvelope = ignore; }
bool CDataSource::GetWKTForceMatch() { return TheSettings().wktForceMatch; }
void CDataSource::SetWKTForceMatch(bool force) { TheSettings().wktForceMatch = force; }
bool CDataSource::GetCartographicFlag() { return TheSettings().cartographic; }
void CDataSource::SetCartographicFlag(bool flag) { TheSettings().cartographic = flag; }
bool CDataSource::GetCenterOnMeridianFlag() { return TheSettings().centerOnMeridian; }
void CDataSource::SetCenterOnMeridianFlag(bool flag) { TheSettings().centerOnMeridian = flag; }
double CDataSource::GetCenteringMargin() { return TheSettings().centeringMargin; }
void CDataSource::SetCenteringMargin(double degrees) { TheSettings().centeringMargin = degrees; }

long CDataSource::GetEffectiveObjectType(long type)
{
  if (IsSingleType(type))
    return type;
  if (IsCoordPointType(type))
    return kObjectAnyCoordPoint;
  if (IsCoordSysType(type))
    return kObjectAnyCoordSys;
  return type;
}

} // namespace Velmora::DB
