// The object store: the families' Get, Put and Remove, lookup, searches,
// folders and listeners.
#include <velmora/datasource/CDataSource.h>

#include <velmora/datasource/import/miParser.h>
#include <velmora/datasource/sax/GroupImpl_p.h>
#include <velmora/datasource/sax/Groups.h>
#include <velmora/foundation/Startup.h>
#include <velmora/foundation/VelmoraException.h>

#include <algorithm>
#include <exception>

namespace Velmora::DB {

using EX::CVelmoraException;

namespace {

constexpr char kVM[] = "VM";

// The single kind bits, in rising order: the order lookups try them in.
constexpr long kKindBits[] = {kObjectAngularUnit,        kObjectLinearUnit,       kObjectPrimeMeridian,
                              kObjectEllipsoid,          kObjectHorizontalDatum,  kObjectDatumShift,
                              kObjectCartesianPoint,     kObjectGeodeticPoint,    kObjectProjectedPoint,
                              kObjectEnvelope,           kObjectVerticalReference, kObjectGeocentricCoordSys,
                              kObjectGeodeticCoordSys,   kObjectProjectedCoordSys, kObjectFittedCoordSys,
                              kObjectCoordTransform,     kObjectHeightModel,       kObjectVerticalDatum};

// The group class of each family handle.
template <class Handle>
struct TStoreFamily;
#define VELMORA_STORE_TRAITS(Name, Handle)                                                                       \
  template <>                                                                                                    \
  struct TStoreFamily<Handle>                                                                                    \
  {                                                                                                              \
    using Group = SAX::C##Name##Group;                                                                           \
  };
VELMORA_STORE_FAMILIES(VELMORA_STORE_TRAITS)
#undef VELMORA_STORE_TRAITS

template <class Handle>
constexpr EObjectType KindOf()
{
  return TStoreFamily<Handle>::Group::BodyType::kObjectType;
}

// The text of code 24: where the store looked.
CString Path(CString const & issuer, CString const & code) { return issuer + "/" + "name/" + code; }

} // namespace

// Construction

CDataSource::CDataSource() : m_defaultIssuer(kVM) { VMInitialize(); }

CDataSource::CDataSource(CDataSource const & other)
  : m_fileName(other.m_fileName), m_defaultIssuer(other.m_defaultIssuer), m_readOnly(other.m_readOnly),
    m_spaceElements(other.m_spaceElements)
{
}

CDataSource & CDataSource::operator=(CDataSource const & other)
{
  if (&other != this) {
    if (m_loaded)
      Clear();
    m_fileName = other.m_fileName;
    m_defaultIssuer = other.m_defaultIssuer;
    m_readOnly = other.m_readOnly;
    m_spaceElements = other.m_spaceElements;
  }
  return *this;
}

CDataSource::~CDataSource() { Clear(); }

CString CDataSource::GetPath(CString const & fileName)
{
  qsizetype cut = fileName.lastIndexOf('/');
  if (cut < 0)
    cut = fileName.lastIndexOf('\\');
  return cut < 0 ? CString() : CString(fileName.left(cut + 1));
}

// Groups

SAX::dbGroup * CDataSource::GetGroup(long type) const
{
  auto const found = m_groups.find(type);
  return found == m_groups.end() ? nullptr : found->second.get();
}

void CDataSource::SetGroup(long type, std::unique_ptr<SAX::dbGroup> group)
{
  // A file that names a kind twice: what was read under the first name may be
  // referred to already, so it stays alive with the group that replaces it.
  std::unique_ptr<SAX::dbGroup> & slot = m_groups[type];
  if (slot && group)
    group->RetireGroup(std::move(slot));
  slot = std::move(group);
}

// Lookup

CSerializableDataDB * CDataSource::FindObject(long typeMask, CString const & issuer, CString const & code) const
{
  for (long bit : kKindBits) {
    if (!(typeMask & bit))
      continue;
    SAX::dbGroup const * group = GetGroup(bit);
    if (!group)
      continue;
    if (CSerializableDataDB * body = group->FindObjectInCategory(issuer, code)) {
      if (body->IsMarkedDeleted())
        throw CVelmoraException(CVelmoraException::kObjectDeleted, "CDataSource::FindObject");
      return body;
    }
  }
  return nullptr;
}

CSerializable * CDataSource::ObjectFactory(CSerializableDataDB const & body)
{
  using namespace CS;
  switch (body.GetObjectType()) {
  case kObjectAngularUnit: return new ML::CAngularUnit(dynamic_cast<ML::CAngularUnitData const &>(body));
  case kObjectLinearUnit: return new ML::CLinearUnit(dynamic_cast<ML::CLinearUnitData const &>(body));
  case kObjectPrimeMeridian: return new CPrimeMeridian(dynamic_cast<CPrimeMeridianData const &>(body));
  case kObjectEllipsoid: return new CEllipsoid(dynamic_cast<CEllipsoidData const &>(body));
  case kObjectHorizontalDatum: return new CHorizontalDatum(dynamic_cast<CHorizontalDatumData const &>(body));
  case kObjectDatumShift:
    return CT::DS::CDatumShiftFactory::CreateDatumShift(dynamic_cast<CT::DS::CDatumShiftDataDB const &>(body));
  case kObjectCartesianPoint: return new ML::CCartesianPoint(dynamic_cast<ML::CCartesianPointData const &>(body));
  case kObjectGeodeticPoint: return new ML::CGeodeticPoint(dynamic_cast<ML::CGeodeticPointData const &>(body));
  case kObjectProjectedPoint: return new ML::CProjectedPoint(dynamic_cast<ML::CProjectedPointData const &>(body));
  case kObjectEnvelope: return new ML::CEnvelope(dynamic_cast<ML::CEnvelopeData const &>(body));
  case kObjectVerticalReference:
    return new VR::CVerticalReference(dynamic_cast<VR::CVerticalReferenceData const &>(body));
  case kObjectGeocentricCoordSys:
    return new CGeocentricCoordSys(dynamic_cast<CGeocentricCoordSysData const &>(body));
  case kObjectGeodeticCoordSys: return new CGeodeticCoordSys(dynamic_cast<CGeodeticCoordSysData const &>(body));
  case kObjectProjectedCoordSys:
    return new CProjectedCoordSys(dynamic_cast<CProjectedCoordSysData const &>(body));
  case kObjectFittedCoordSys: return new CFittedCoordSys(dynamic_cast<CFittedCoordSysData const &>(body));
  case kObjectCoordTransform: return new CT::CCoordTransform(dynamic_cast<CT::CCoordTransformData const &>(body));
  case kObjectHeightModel: {
    auto const & stored = dynamic_cast<VR::CHeightModelDataDB const &>(body);
    std::unique_ptr<VR::CHeightModel> model(VR::CHeightModelFactory::CreateHeightModel(stored.GetModelType()));
    model->AttachBody(stored);
    return model.release();
  }
  case kObjectVerticalDatum: {
    auto const & stored = dynamic_cast<VR::CVerticalDatumDataDB const &>(body);
    std::unique_ptr<VR::CVerticalDatum> datum(VR::CVerticalDatumFactory::CreateVerticalDatum(stored.GetDatumType()));
    datum->AttachBody(stored);
    return datum.release();
  }
  default: return nullptr;
  }
}

// Families

template <class Handle>
Handle * CDataSource::GetFamily(CString const & issuer, CString const & code)
{
  char const * const location = "CDataSource::Get##name";
  if (!m_loaded)
    throw CVelmoraException(CVelmoraException::kDataSourceNotLoaded, location);
  try {
    CSerializableDataDB const * body = FindObject(KindOf<Handle>(), issuer, code);
    if (!body)
      throw CVelmoraException(CVelmoraException::kIdentifierNotFound, location, Path(issuer, code));
    std::unique_ptr<CSerializable> object(ObjectFactory(*body));
    // Lazily shared parts become the caller's own before the caller sees them.
    object->Congeal();
    return dynamic_cast<Handle *>(object.release());
  } catch (std::exception const & e) {
    throw CVelmoraException(CVelmoraException::kUndefined, location, CString(e.what()));
  }
}

template <class Handle>
Handle * CDataSource::GetFamilyNonThrow(CString const & issuer, CString const & code)
{
  try {
    return GetFamily<Handle>(issuer, code);
  } catch (...) {
    return nullptr;
  }
}

template <class Handle>
bool CDataSource::RemoveFamily(CString const & issuer, CString const & code)
{
  return RemoveSerializable(KindOf<Handle>(), issuer, code);
}

#define VELMORA_STORE_DEFINITIONS(Name, Handle)                                                                  \
  Handle * CDataSource::Get##Name(unsigned short const * issuer, unsigned short const * code)                     \
  {                                                                                                              \
    return GetFamily<Handle>(CString(issuer), CString(code));                                                    \
  }                                                                                                              \
  Handle * CDataSource::Get##Name(CString const & issuer, CString const & code)                                  \
  {                                                                                                              \
    return GetFamily<Handle>(issuer, code);                                                                      \
  }                                                                                                              \
  Handle * CDataSource::Get##Name(unsigned short const * code)                                                   \
  {                                                                                                              \
    return GetFamily<Handle>(m_defaultIssuer, CString(code));                                                    \
  }                                                                                                              \
  Handle * CDataSource::Get##Name(CString const & code) { return GetFamily<Handle>(m_defaultIssuer, code); }     \
  Handle * CDataSource::Get##Name##NonThrow(unsigned short const * issuer, unsigned short const * code)          \
  {                                                                                                              \
    return GetFamilyNonThrow<Handle>(CString(issuer), CString(code));                                            \
  }                                                                                                              \
  Handle * CDataSource::Get##Name##NonThrow(CString const & issuer, CString const & code)                        \
  {                                                                                                              \
    return GetFamilyNonThrow<Handle>(issuer, code);                                                              \
  }                                                                                                              \
  bool CDataSource::Remove##Name(unsigned short const * issuer, unsigned short const * code)                     \
  {                                                                                                              \
    return RemoveFamily<Handle>(CString(issuer), CString(code));                                                 \
  }                                                                                                              \
  bool CDataSource::Remove##Name(CString const & issuer, CString const & code)                                   \
  {                                                                                                              \
    return RemoveFamily<Handle>(issuer, code);                                                                   \
  }                                                                                                              \
  bool CDataSource::Remove##Name(unsigned short const * code)                                                    \
  {                                                                                                              \
    return RemoveFamily<Handle>(m_defaultIssuer, CString(code));                                                 \
  }                                                                                                              \
  bool CDataSource::Remove##Name(CString const & code) { return RemoveFamily<Handle>(m_defaultIssuer, code); }   \
  bool CDataSource::Put##Name(Handle const & object, bool overwrite)                                             \
  {                                                                                                              \
    return PutObject(KindOf<Handle>(), object, overwrite);                                                       \
  }
VELMORA_STORE_FAMILIES(VELMORA_STORE_DEFINITIONS)
#undef VELMORA_STORE_DEFINITIONS

CSerializable * CDataSource::GetSerializable(long type, CString const & issuer, CString const & code)
{
  if (!IsSingleType(type) || !GetGroupID(type))
    return nullptr;
  char const * const location = "CDataSource::Get##name";
  if (!m_loaded)
    throw CVelmoraException(CVelmoraException::kDataSourceNotLoaded, location);
  CSerializableDataDB const * body = FindObject(type, issuer, code);
  if (!body)
    throw CVelmoraException(CVelmoraException::kIdentifierNotFound, location, Path(issuer, code));
  std::unique_ptr<CSerializable> object(ObjectFactory(*body));
  object->Congeal();
  return object.release();
}

CS::CCoordSys * CDataSource::GetCoordSys(CString const & issuer, CString const & code)
{
  for (long type : {kObjectGeocentricCoordSys, kObjectGeodeticCoordSys, kObjectProjectedCoordSys,
                    kObjectFittedCoordSys}) {
    if (FindObject(type, issuer, code))
      return dynamic_cast<CS::CCoordSys *>(GetSerializable(type, issuer, code));
  }
  if (!m_loaded)
    throw CVelmoraException(CVelmoraException::kDataSourceNotLoaded, "CDataSource::Get##name");
  throw CVelmoraException(CVelmoraException::kIdentifierNotFound, "CDataSource::Get##name", Path(issuer, code));
}

bool CDataSource::RemoveSerializable(long type, CString const & issuer, CString const & code)
{
  if (!IsSingleType(type) || !GetGroupID(type))
    return false;
  char const * const location = "CDataSource::Remove##name";
  CheckEditable(location);
  NotifyListeners(kObjectRemoved, static_cast<EObjectType>(type), issuer, code);
  ++m_modifications;
  // Marked only: the body and its index entries stay until the next load.
  if (CSerializableDataDB const * body = FindObject(type, issuer, code)) {
    body->MarkDeleted();
    return true;
  }
  throw CVelmoraException(CVelmoraException::kIdentifierNotFound, location, Path(issuer, code));
}

bool CDataSource::PutSerializable(long type, CSerializable const & object, bool overwrite)
{
  if (!IsSingleType(type) || !GetGroupID(type))
    return false;
  return PutObject(type, object, overwrite);
}

void CDataSource::CheckEditable(char const * location) const
{
  if (!m_loaded)
    throw CVelmoraException(CVelmoraException::kDataSourceNotLoaded, location);
  if (m_readOnly)
    throw CVelmoraException(CVelmoraException::kReadOnlyFile, location, m_fileName);
}

bool CDataSource::FindDupeIdentifiers(CSerializable const & object, CString const & authority)
{
  CIdentifierCollection const & ids = object.GetIdentifiers();
  CString const ownCode = ids.Exists(authority) ? ids.GetItem(authority) : CString();
  for (long i = 0; i < ids.Count(); ++i) {
    CString issuer, code;
    ids.GetItem(i, issuer, code);
    if (issuer == authority)
      continue;
    std::unique_ptr<CSerializable> stored;
    try {
      stored.reset(GetSerializable(object.GetObjectType(), issuer, code));
    } catch (...) {
      continue; // nothing holds that identifier: it is free to take
    }
    if (!stored)
      continue;
    CIdentifierCollection const & theirs = stored->GetIdentifiers();
    if (!theirs.Exists(authority) || theirs.GetItem(authority) != ownCode)
      return true;
  }
  return false;
}

bool CDataSource::PutObject(long type, CSerializable const & object, bool overwrite)
{
  char const * const location = "CDataSource::Put##name";
  CheckEditable(location);
  if (!object.IsFullyDefined(this))
    throw CVelmoraException(CVelmoraException::kNotFullySpecified, location);
  CIdentifierCollection const & ids = object.GetIdentifiers();
  if (!ids.Exists(CString(kVM)))
    throw CVelmoraException(CVelmoraException::kVMIdentifierRequired, location);

  CSerializableDataDB * existing = nullptr;
  for (long i = 0; i < ids.Count() && !existing; ++i) {
    CString issuer, code;
    ids.GetItem(i, issuer, code);
    CSerializableDataDB * hit = FindObject(type, issuer, code);
    if (!hit)
      continue;
    if (FindDupeIdentifiers(object, issuer))
      throw CVelmoraException(CVelmoraException::kDuplicateIdentifier, location);
    existing = hit;
  }

  SAX::dbGroup * group = GetGroup(type);
  if (!group) {
    // A kind the file never mentioned gets its group, and folders, on first use.
    SetGroup(type, SAX::MakeGroup(type));
    group = GetGroup(type);
    group->MakeDefaultFolders();
  }
  std::unique_ptr<CSerializableDataDB> body = group->MakeBody(object.GetData(), this);
  CString const vmCode = ids.GetItem(CString(kVM));
  if (!existing) {
    if (!group->AddObject(std::move(body)))
      throw CVelmoraException(CVelmoraException::kVMIdentifierRequired, location);
    NotifyListeners(kObjectAdded, static_cast<EObjectType>(type), CString(kVM), vmCode, object.GetName());
  } else {
    if (!overwrite)
      throw CVelmoraException(CVelmoraException::kNoOverwrite, location);
    CIdentifierCollection const & old = existing->GetIdentifiers();
    for (long i = 0; i < ids.Count(); ++i) {
      CString issuer, code;
      ids.GetItem(i, issuer, code);
      if (!old.Exists(issuer)) {
        group->AddByCategory(issuer, code, existing);
      } else if (old.GetItem(issuer) != code) {
        CString const oldCode = old.GetItem(issuer);
        group->AddByCategory(issuer, code, existing);
        group->RemoveObjectInCategory(issuer, oldCode);
      }
    }
    // The object stays in its folder: moving is AssignGroupID's business.
    long const folder = existing->GetGroupID();
    group->Assign(*existing, *body);
    existing->SetGroupID(folder);
    NotifyListeners(kObjectChanged, static_cast<EObjectType>(type), CString(kVM), vmCode, object.GetName());
  }
  ++m_modifications;
  return true;
}

} // namespace Velmora::DB
