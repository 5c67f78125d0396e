#pragma once
// The data source: the in-memory store of every named definition the
// library knows, read from one XML file, edited in memory and written back
// whole. Objects are found by (issuer, code), shelved in a tree of folders
// per kind, and handed out as handles the caller owns.
#include <velmora/datasource/DataSourceInfo.h>
#include <velmora/foundation/CString.h>
#include <velmora/foundation/ObjectTypes.h>

#include <limits>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Velmora {
class CSerializable;
class CSerializableData;
class CSerializableDataDB;
namespace ML {
class CAngularUnit;
class CLinearUnit;
class CCartesianPoint;
class CGeodeticPoint;
class CProjectedPoint;
class CEnvelope;
} // namespace ML
namespace CS {
class CPrimeMeridian;
class CEllipsoid;
class CHorizontalDatum;
class CCoordSys;
class CGeocentricCoordSys;
class CGeodeticCoordSys;
class CProjectedCoordSys;
class CFittedCoordSys;
namespace VR {
class CVerticalReference;
class CHeightModel;
class CVerticalDatum;
} // namespace VR
} // namespace CS
namespace CT {
class CCoordTransform;
namespace DS {
class CDatumShift;
class CDatumShiftCollection;
class CDatumShiftInfo;
class CDatumShiftInfoEx;
class CDatumShiftPreferences;
class CDatumShiftPreferencesEx;
} // namespace DS
} // namespace CT
} // namespace Velmora

namespace Velmora::DB {

namespace SAX {
class dbGroup;
}
class miParser;

// Every family of stored object: its name in the store's members and its handle.
#define VELMORA_STORE_FAMILIES(X)                                                                                \
  X(AngularUnit, ML::CAngularUnit)                                                                               \
  X(LinearUnit, ML::CLinearUnit)                                                                                 \
  X(PrimeMeridian, CS::CPrimeMeridian)                                                                           \
  X(Ellipsoid, CS::CEllipsoid)                                                                                   \
  X(HorizontalDatum, CS::CHorizontalDatum)                                                                       \
  X(DatumShift, CT::DS::CDatumShift)                                                                             \
  X(CartesianPoint, ML::CCartesianPoint)                                                                         \
  X(GeodeticPoint, ML::CGeodeticPoint)                                                                           \
  X(ProjectedPoint, ML::CProjectedPoint)                                                                         \
  X(Envelope, ML::CEnvelope)                                                                                     \
  X(VerticalReference, CS::VR::CVerticalReference)                                                               \
  X(GeocentricCoordSys, CS::CGeocentricCoordSys)                                                                 \
  X(GeodeticCoordSys, CS::CGeodeticCoordSys)                                                                     \
  X(ProjectedCoordSys, CS::CProjectedCoordSys)                                                                   \
  X(FittedCoordSys, CS::CFittedCoordSys)                                                                         \
  X(CoordTransform, CT::CCoordTransform)                                                                         \
  X(HeightModel, CS::VR::CHeightModel)                                                                           \
  X(VerticalDatum, CS::VR::CVerticalDatum)

// An area in longitude and latitude (degrees), in use only when its first
// corner lies strictly below the second in both values.
class VELMORA_API CExtents
{
public:
  CExtents() = default;
  CExtents(double minLon, double minLat, double maxLon, double maxLat);

  bool IsInUse() const { return m_inUse; }
  double GetMinLon() const { return m_minLon; }
  double GetMinLat() const { return m_minLat; }
  double GetMaxLon() const { return m_maxLon; }
  double GetMaxLat() const { return m_maxLat; }

private:
  bool m_inUse = false;
  double m_minLon = std::numeric_limits<double>::max();
  double m_minLat = std::numeric_limits<double>::max();
  double m_maxLon = std::numeric_limits<double>::max();
  double m_maxLat = std::numeric_limits<double>::max();
};

class VELMORA_API CDataSource
{
public:
  // A reference met by the reader before the object it names.
  struct dbReference
  {
    EObjectType type = kObjectNone;
    CString issuer;
    CString code;
  };
  using Predicate = bool (*)(CSerializableDataDB const * body, void * argument);

  // Makes sure the application object exists; the default issuer is "VM".
  CDataSource();
  // Settings only: a copy holds no objects and is not loaded.
  CDataSource(CDataSource const & other);
  CDataSource & operator=(CDataSource const & other);
  virtual ~CDataSource();

  // Process-wide settings.
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

  // This store's settings.
  bool GetSpaceElements() const { return m_spaceElements; }
  void SetSpaceElements(bool space) { m_spaceElements = space; }
  bool GetReadOnly() const { return m_readOnly; }
  void SetReadOnly(bool readOnly) { m_readOnly = readOnly; }
  CString GetDefaultIssuer() const { return m_defaultIssuer; }
  void SetDefaultIssuer(CString const & issuer) { m_defaultIssuer = issuer; }
  void SetDefaultIssuer(unsigned short const * issuer) { m_defaultIssuer = CString(issuer); }
  CString GetFileName() const { return m_fileName; }
  void SetFileName(CString const & name) { m_fileName = name; }
  void SetFileName(unsigned short const * name) { m_fileName = CString(name); }
  bool IsLoaded() const { return m_loaded; }
  void SetLoaded(bool loaded) { m_loaded = loaded; }
  long GetNumberOfModifications() const { return m_modifications; }

  // Kinds of object.
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
  // The text up to and including the last "/", else the last "\"; else empty.
  static CString GetPath(CString const & fileName);

  // The families: Get gives a new object the caller owns (code 7 before a
  // load, 24 when absent, 66 when removed); the NonThrow form gives null
  // instead. Remove marks an object deleted until the next load. Put stores
  // a copy.
#define VELMORA_STORE_MEMBERS(Name, Handle)                                                                      \
  Handle * Get##Name(unsigned short const * issuer, unsigned short const * code);                                \
  Handle * Get##Name(CString const & issuer, CString const & code);                                              \
  Handle * Get##Name(unsigned short const * code);                                                               \
  Handle * Get##Name(CString const & code);                                                                      \
  Handle * Get##Name##NonThrow(unsigned short const * issuer, unsigned short const * code);                       \
  Handle * Get##Name##NonThrow(CString const & issuer, CString const & code);                                    \
  bool Remove##Name(unsigned short const * issuer, unsigned short const * code);                                 \
  bool Remove##Name(CString const & issuer, CString const & code);                                               \
  bool Remove##Name(unsigned short const * code);                                                                \
  bool Remove##Name(CString const & code);                                                                       \
  bool Put##Name(Handle const & object, bool overwrite);
  VELMORA_STORE_FAMILIES(VELMORA_STORE_MEMBERS)
#undef VELMORA_STORE_MEMBERS

  // The same by a single kind bit; null or false for any other value.
  CSerializable * GetSerializable(long type, CString const & issuer, CString const & code);
  bool RemoveSerializable(long type, CString const & issuer, CString const & code);
  bool PutSerializable(long type, CSerializable const & object, bool overwrite);
  // A coordinate system of any kind.
  CS::CCoordSys * GetCoordSys(CString const & issuer, CString const & code);

  // The one search by identifier: each kind bit of the mask in rising order;
  // code 66 for a removed object.
  CSerializableDataDB * FindObject(long typeMask, CString const & issuer, CString const & code) const;
  CSerializable * CreateObject(CSerializableDataDB const & body) const { return ObjectFactory(body); }
  // A new handle over a stored body, of the body's own class.
  static CSerializable * ObjectFactory(CSerializableDataDB const & body);

  // Name and group id of an object, as text; false when absent.
  bool GetObjectInfo(long type, CString const & issuer, CString const & code, CString & name, CString & groupId) const;
  // Every undeleted object of the kind with a "VM" code; the caller owns the set.
  CObjectInfoSet * GetObjectInfoSet(long type) const;
  // Every folder of the kind but the top ones; the caller owns the set.
  CGroupInfoSet * GetGroupInfoSet(long type) const;

  // Every undeleted object of a kind, as handles the caller owns.
  std::vector<std::unique_ptr<CSerializable>> Search(long type) const;
  // The same as bodies, in the order of their "VM" codes.
  std::vector<CSerializableDataDB *> SearchDB(long type) const;
  // The bodies under a folder that the predicate accepts; a null predicate accepts all.
  std::vector<CSerializableDataDB *> Search(long type, long folderId, Predicate predicate, void * argument) const;
  // Names containing the text, in tree order; a folder named so gives all it holds.
  std::vector<CSerializableDataDB *> SearchName(long type, long folderId, CString const & text) const;
  // The stored objects of the object's kind that compare nearly equal to it.
  std::vector<CSerializableDataDB *> Equivalent(CSerializable const & object) const;
  std::vector<CSerializableDataDB *> GetChildObjects(long type, long folderId) const;
  std::vector<CCategoryInfo> GetChildCategories(long type, long folderId) const;

  // Folders.
  CFolderListViewItem * GetFolder(long id, long type) const;
  CString GetGroupName(long id, long type) const;
  long GetParentGroupID(long id, long type) const;
  CCategoryInfo GetCategoryInfoByType(long type) const;
  CString GetTypeName(long type) const { return GetTypeNameFromConstant(type); }
  std::vector<long> GetAllGroupIDs(long type) const;
  // The kind of objects a folder holds, found through its primary folder.
  long GetType(long folderId) const;
  // The folders from the object's own up to the top, the root left out.
  std::vector<long> FindObjectPath(long type, CString const & issuer, CString const & code) const;
  long GetLargestGroupID() const { return m_largestGroupId; }
  // True only if it raised the value.
  bool SetLargestGroupID(long id);
  long AddNewGroup(CString const & name, long type, long parentId);
  bool RemoveGroup(long type, long id);
  bool AssignGroupName(CString const & name, long type, long id);
  bool AssignGroupID(long newId, long type, CString const & issuer, CString const & code);
  bool AssignObjectName(CString const & name, long type, CString const & issuer, CString const & code);
  // A copy under a new name and "VM" code in the same folder; the caller owns the answer.
  CObjectInfo * AddObjectCopy(long type, CString const & newName, CString const & newCode, CObjectInfo const * info);

  std::vector<CString> GetAngularUnitNames() const;
  std::vector<CString> GetLinearUnitNames() const;

  // Datum shift discovery. Fills the transform's chain with one route: true
  // when the datums are equal or a route was set.
  bool EstablishDatumShift(CT::CCoordTransform & transform, CT::DS::CDatumShiftPreferences const & prefs);
  // Every candidate route, one or two shifts each, appended to `result`; true when `result` holds
  // one or the datums are equal. The shift objects are the caller's; a shift of a leg through an
  // intermediate datum serves every route it pairs into, so each object is deleted once.
  bool GetValidDatumShiftsEx(CS::CCoordSys const & source, CS::CCoordSys const & target,
                             CT::DS::CDatumShiftPreferencesEx const & prefs,
                             std::list<std::list<CT::DS::CDatumShiftInfoEx>> & result, bool skipCongeal) const;
  // The same routes by "VM" code (first text) and name (second text) of each shift.
  bool GetValidDatumShifts(CS::CCoordSys const & source, CS::CCoordSys const & target,
                           CT::DS::CDatumShiftPreferencesEx const & prefs,
                           std::list<std::list<CT::DS::CDatumShiftInfo>> & result) const;

  // Coordinate-system text and files: WKT and .prj, MapInfo .tab/.map/.dat,
  // the MIF "CoordSys" clause, the three-string and the key/value forms.
  // What an import builds is stored; the systems returned are the caller's.
  bool ImportFile(CString const & file);
  bool ImportFile(unsigned short const * file) { return ImportFile(CString(file)); }
  CS::CCoordSys * ImportCoordSysFromFile(CString const & file);
  CS::CCoordSys * ImportCoordSysFromFile(unsigned short const * file) { return ImportCoordSysFromFile(CString(file)); }
  CS::CCoordSys * ImportCoordSysFromString(CString const & text);
  CS::CCoordSys * ImportCoordSysFromString(unsigned short const * text);
  CS::CCoordSys * ImportCoordSysFromStrings(CString const & datum, CString const & projection, CString const & units);
  CS::CCoordSys * ImportCoordSysFromStringMap(std::map<CString, CString> const & map);
  bool ExportCoordSysToFile(CS::CCoordSys const & coordSys, CString const & file);
  bool ExportCoordSysToFile(CS::CCoordSys const & coordSys, unsigned short const * file)
  {
    return ExportCoordSysToFile(coordSys, CString(file));
  }
  // New wide buffers, freed by the caller with delete[].
  unsigned short * ExportCoordSysToString(CS::CCoordSys const & coordSys);
  bool ExportCoordSysToStrings(CS::CCoordSys const & coordSys, unsigned short ** datum, unsigned short ** projection,
                               unsigned short ** units) const;
  // Null when MapInfo has no number for the projection or the datum.
  unsigned short * ExportCoordSysToMIFString(CS::CCoordSys const & coordSys);

  // Listeners.
  void RegisterListener(CDataSourceListener * listener);
  void UnRegisterListener(CDataSourceListener * listener);
  void NotifyListeners(ListenerActionType action, EObjectType type, CString const & s1 = CString(),
                       CString const & s2 = CString(), CString const & s3 = CString(),
                       CString const & s4 = CString(), CString const & s5 = CString());

  // Files.
  bool LoadFile(CString const & name);
  bool LoadFile(unsigned short const * name) { return LoadFile(CString(name)); }
  bool CommitToFile();
  bool CommitToFile(CString const & name);
  bool CommitToFile(unsigned short const * name) { return CommitToFile(CString(name)); }
  // The class type names the schema beside the data file lists.
  void LoadClassTypeLists();
  std::vector<CString> const & GetDatumShiftClassTypes() const { return m_classTypes[0]; }
  std::vector<CString> const & GetMathTransformClassTypes() const { return m_classTypes[1]; }
  std::vector<CString> const & GetProjectionClassTypes() const { return m_classTypes[2]; }
  std::vector<CString> const & GetHeightModelClassTypes() const { return m_classTypes[3]; }
  std::vector<CString> const & GetVerticalDatumClassTypes() const { return m_classTypes[4]; }

  // The reader's side: the group of a kind, made when its element opens.
  SAX::dbGroup * GetGroup(long type) const;
  void SetGroup(long type, std::unique_ptr<SAX::dbGroup> group);
  // Forward references, resolved at the end of the file.
  long AddPointStyle(EObjectType type, CString const & issuer, CString const & code);
  long AddEnvelope(CString const & issuer, CString const & code);
  long AddVerticalDatum(CString const & issuer, CString const & code);
  long AddHeightModel(CString const & issuer, CString const & code);
  CSerializableDataDB * FindPointStyleByIndex(long index) const;
  CSerializableDataDB * FindEnvelopeByIndex(long index) const;
  CSerializableDataDB * FindVerticalDatumByIndex(long index) const;
  CSerializableDataDB * FindHeightModelByIndex(long index) const;
  // Every pending index turned into a body, then the lists emptied.
  void ResolvePendingReferences();

private:
  template <class Handle>
  Handle * GetFamily(CString const & issuer, CString const & code);
  template <class Handle>
  Handle * GetFamilyNonThrow(CString const & issuer, CString const & code);
  template <class Handle>
  bool RemoveFamily(CString const & issuer, CString const & code);
  bool PutObject(long type, CSerializable const & object, bool overwrite);
  bool FindDupeIdentifiers(CSerializable const & object, CString const & authority);
  void CheckEditable(char const * location) const;
  void Clear();
  // The XML platform, started by the first load and stopped by Clear.
  static void InitializeXml();
  static void TerminateXml();
  std::vector<CSerializableDataDB *> Gather(SAX::dbGroup const & group, CFolderListViewItem const & folder,
                                            CString const & filter) const;
  CSerializableDataDB * FindPending(std::vector<dbReference> const & list, long index) const;
  // The search behind EstablishDatumShift; null when nothing matches. The caller owns the answer.
  CT::DS::CDatumShiftCollection * ValidDatumShifts(CT::CCoordTransform & transform, CS::CHorizontalDatum const & source,
                                                   CS::CHorizontalDatum const & target,
                                                   CT::DS::CDatumShiftPreferences const & prefs) const;
  // The search behind GetValidDatumShiftsEx: shifts from `fromCode` to `toCode` as stored.
  bool GetDSList(CExtents const & extents, bool reverse, CT::DS::CDatumShiftPreferencesEx const & prefs,
                 CString const & fromCode, CString const & toCode, std::list<CT::DS::CDatumShiftInfoEx> & out,
                 bool skipCongeal) const;

  std::vector<dbReference> m_pendingEnvelopes;
  std::vector<dbReference> m_pendingPointStyles;
  std::vector<dbReference> m_pendingVerticalDatums;
  std::vector<dbReference> m_pendingHeightModels;
  std::vector<CDataSourceListener *> m_listeners;
  CString m_fileName;
  CString m_defaultIssuer;
  bool m_readOnly = false;
  bool m_spaceElements = false;
  bool m_loaded = false;
  long m_largestGroupId = 1500;
  long m_modifications = 0;
  std::vector<CString> m_classTypes[5];
  std::map<long, std::unique_ptr<SAX::dbGroup>> m_groups;
  // Made at the first import or export and kept.
  miParser & Parser() const;
  mutable std::unique_ptr<miParser> m_parser;
};

} // namespace Velmora::DB
