#include <velmora/transforms/CoordTransform.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/datasource/SourceLookup_p.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/refsys/FittedCoordSys.h>

#include <cmath>

namespace Velmora::CT {

using EX::CVelmoraException;

namespace {
using CS::VR::CVerticalReference;

constexpr char kPointLocation[] = "CCoordTransformData::ConvertBack";
constexpr char kInitLocation[] = "CCoordTransformData::InitializeVerticalTransform";

// Points kept as text: Georef, MGRS and the like on geodetic and projected points.
bool CarriesStringFormat(ML::CCoordPoint const & point)
{
  auto const type = point.GetType();
  return (type == ML::kGeodeticPoint || type == ML::kProjectedPoint) && point.PointData().GetStringFormatValue() != 0;
}
} // namespace

// One direction of the point and collection paths: ahead runs source to
// destination, back the other way with the back mode and location.
struct CCoordTransformData::Direction
{
  CS::CCoordSys const * from;
  CS::CCoordSys const * to;
  CVerticalReference const * fromReference;
  CVerticalReference const * toReference;
  VertAdjustMode mode;
  long location;
  bool forward;
};

CCoordTransformData::Direction CCoordTransformData::Ahead() const
{
  return {m_source, m_destination, m_sourceReference, m_destinationReference, m_aheadMode, m_aheadLocation, true};
}

CCoordTransformData::Direction CCoordTransformData::Back() const
{
  return {m_destination, m_source, m_destinationReference, m_sourceReference, m_backMode, m_backLocation, false};
}

// Body

CCoordTransformData * CCoordTransformData::Create() { return new CCoordTransformDataConcrete(); }

CCoordTransformData * CCoordTransformData::Clone(CCoordTransformData const & source)
{
  return new CCoordTransformDataConcrete(source);
}

CCoordTransformData::CCoordTransformData() = default;

// The cached vertical pointers point into the other's chain and systems:
// they are not taken, a concrete copy resolves its own.
CCoordTransformData::CCoordTransformData(CCoordTransformData const & other)
  : CSerializableData(other), m_source(other.m_source), m_destination(other.m_destination), m_shifts(other.m_shifts),
    m_implicit(other.m_implicit)
{
}

CCoordTransformData::~CCoordTransformData() = default;

CCoordTransformData & CCoordTransformData::operator=(CCoordTransformData const & other)
{
  if (&other == this)
    return *this;
  CSerializableData::operator=(other);
  m_source = other.m_source;
  m_destination = other.m_destination;
  m_shifts = other.m_shifts;
  m_implicit = other.m_implicit;
  ResetVertical();
  return *this;
}

void CCoordTransformData::ResetVertical()
{
  m_sourceReference = m_destinationReference = nullptr;
  m_adjustmentDatum = nullptr;
  m_aheadMode = m_backMode = CVerticalReference::kNoAdjustment;
  m_aheadLocation = m_backLocation = -1;
  m_verticalValid = false;
}

void CCoordTransformData::SetSrcCoordSys(CS::CCoordSys * system)
{
  if (!system)
    throw CVelmoraException(CVelmoraException::kInvalidValue, "CCoordTransformData::SetSrcCoordSys");
  m_source = system;
}

void CCoordTransformData::SetDestCoordSys(CS::CCoordSys * system)
{
  if (!system)
    throw CVelmoraException(CVelmoraException::kInvalidValue, "CCoordTransformData::SetDestCoordSys");
  m_destination = system;
}

void CCoordTransformData::CheckBound(char const * location) const
{
  if (!m_source || !m_destination)
    throw CVelmoraException(CVelmoraException::kCoordSysMissing, location);
}

namespace {

// A figure or parameter that a file got wrong shows as a number that is not
// finite; such a point is not converted, whatever the stages said.
bool FiniteResult(bool done, double x, double y) { return done && std::isfinite(x) && std::isfinite(y); }

bool FiniteResult(bool done, ML::CCoordPoint const & point)
{
  if (!done)
    return false;
  double x = 0.0, y = 0.0, z = 0.0;
  if (point.GetDimensions() == 3)
    point.GetInternals(x, y, z);
  else
    point.GetInternals(x, y);
  return FiniteResult(std::isfinite(z), x, y);
}

} // namespace

// Pair path. The chain's answer is not looked at: a shift that cannot shift
// says so by an exception.

bool CCoordTransformData::ConvertAhead(double & x, double & y) const
{
  CheckBound("CCoordTransformData::ConvertAhead");
  if (!m_source->ToGeodeticBase(x, y))
    return false;
  if (m_shifts.Count() > 0)
    m_shifts.ShiftForward(x, y);
  return FiniteResult(m_destination->FromGeodeticBase(x, y), x, y);
}

bool CCoordTransformData::ConvertBack(double & x, double & y) const
{
  CheckBound("CCoordTransformData::ConvertBack");
  if (!m_destination->ToGeodeticBase(x, y))
    return false;
  if (m_shifts.Count() > 0)
    m_shifts.ShiftBack(x, y);
  return FiniteResult(m_source->FromGeodeticBase(x, y), x, y);
}

// Point path

bool CCoordTransformData::PassCoordinatesOnly(ML::CCoordPoint const & in, ML::CCoordPoint const & out)
{
  bool answer = true;
  // A text point must carry exactly the other's dimensions through the full
  // path; the input is changed for that in spite of being const.
  if (CarriesStringFormat(in)) {
    const_cast<ML::CCoordPoint &>(in).SetDimensions(out.GetDimensions());
    answer = false;
  }
  if (CarriesStringFormat(out)) {
    const_cast<ML::CCoordPoint &>(out).SetDimensions(in.GetDimensions());
    answer = false;
  }
  if (in.GetDimensions() == 3 && out.GetDimensions() == 3)
    return false;
  return answer;
}

bool CCoordTransformData::ConvertPoint(ML::CCoordPoint const & in, ML::CCoordPoint & out, Direction const & way) const
{
  // The same location in both directions: callers have come to rely on it.
  CheckBound(kPointLocation);
  if (PassCoordinatesOnly(in, out)) {
    double x, y;
    in.GetInternals(x, y);
    bool const result = way.forward ? ConvertAhead(x, y) : ConvertBack(x, y);
    // The two-number write would zero a height; this path must leave it be.
    if (out.GetDimensions() == 3) {
      double a, b, height;
      out.GetInternals(a, b, height);
      out.SetInternals(x, y, height);
    } else {
      out.SetInternals(x, y);
    }
    return result;
  }

  bool done = !m_verticalValid;
  ML::CGeodeticPoint a(in.GetDimensions());
  if (!way.from->ToGeodeticBase(in, a))
    return false;
  if (!done && way.location < 1) {
    CVerticalReference::AdjustHeight(way.fromReference, way.toReference, way.mode, a);
    done = true;
  }
  if (m_shifts.Count() == 0)
    return FiniteResult(way.to->FromGeodeticBase(a, out), out);

  ML::CGeodeticPoint b(in.GetDimensions());
  if (done) {
    if (way.forward)
      m_shifts.ShiftForward(a, b);
    else
      m_shifts.ShiftBack(a, b);
  } else if (way.forward) {
    m_shifts.ShiftForward(a, b, way.fromReference, way.toReference, way.mode, way.location);
  } else {
    m_shifts.ShiftBack(a, b, way.fromReference, way.toReference, way.mode, way.location);
  }
  return FiniteResult(way.to->FromGeodeticBase(b, out), out);
}

bool CCoordTransformData::ConvertAhead(ML::CCoordPoint const & in, ML::CCoordPoint & out) const
{
  return ConvertPoint(in, out, Ahead());
}

bool CCoordTransformData::ConvertBack(ML::CCoordPoint const & in, ML::CCoordPoint & out) const
{
  return ConvertPoint(in, out, Back());
}

// Collection path: two work points for the whole call.

long CCoordTransformData::ConvertCollection(ML::CCoordPointCollection const & in, ML::CCoordPointCollection & out,
                                            Direction const & way) const
{
  ML::CCoordPoint const * const outStyle = out.GetPointStyle();
  ML::CCoordPoint const * const inStyle = in.GetPointStyle();
  std::unique_ptr<ML::CCoordPoint> w(ML::CCoordPointFactory::CreatePoint(*outStyle, outStyle->GetDimensions()));
  std::unique_ptr<ML::CCoordPoint> v(ML::CCoordPointFactory::CreatePoint(*inStyle, inStyle->GetDimensions()));
  out.Clear();
  bool const normal = in.IsNormalPoint();
  long const count = in.Count();
  out.Reserve(count);
  long written = 0;
  for (long index = 0; index < count; ++index) {
    if (normal) {
      double x, y, z;
      in.GetInternals(index, x, y, z);
      if (v->GetDimensions() == 2)
        v->SetInternals(x, y);
      else
        v->SetInternals(x, y, z);
    } else if (v->GetType() == ML::kGeodeticPoint) {
      static_cast<ML::CGeodeticPoint &>(*v).SetLocationString(in.GetLocationString(index));
    } else if (v->GetType() == ML::kProjectedPoint) {
      static_cast<ML::CProjectedPoint &>(*v).SetLocationString(in.GetLocationString(index));
    }
    if (ConvertPoint(*v, *w, way)) {
      out.AddPoint(*w);
      ++written;
    }
  }
  return written;
}

long CCoordTransformData::ConvertAhead(ML::CCoordPointCollection const & in, ML::CCoordPointCollection & out) const
{
  return ConvertCollection(in, out, Ahead());
}

long CCoordTransformData::ConvertBack(ML::CCoordPointCollection const & in, ML::CCoordPointCollection & out) const
{
  return ConvertCollection(in, out, Back());
}

// Vertical set-up

CVerticalReference const * CCoordTransformData::GetVerticalReferenceOf(CS::CCoordSys const & system) const
{
  // A geodetic base without a reference of its own means ellipsoidal heights.
  auto const ofGeodetic = [this](CS::CGeodeticCoordSys const & geodetic) {
    CVerticalReference const * reference = geodetic.GetVerticalReference();
    return reference ? reference : &m_implicit;
  };
  auto const ofSystem = [&](CS::CCoordSys const & s) -> CVerticalReference const * {
    switch (s.GetType()) {
    case CS::kGeocentricCoordSys: return &m_implicit;
    case CS::kGeodeticCoordSys: return ofGeodetic(static_cast<CS::CGeodeticCoordSys const &>(s));
    case CS::kProjectedCoordSys:
      return ofGeodetic(static_cast<CS::CProjectedCoordSys const &>(s).GetGeodeticCoordSys());
    default: return nullptr;
    }
  };
  if (system.GetType() == CS::kFittedCoordSys) {
    CS::CCoordSys const * base = static_cast<CS::CFittedCoordSys const &>(system).GetBaseCoordSys();
    if (!base || base->GetType() == CS::kFittedCoordSys)
      return nullptr;
    return ofSystem(*base);
  }
  return ofSystem(system);
}

CS::CHorizontalDatum const * CCoordTransformData::GetAdjustmentDatum(CVerticalReference const * from,
                                                                CVerticalReference const * to)
{
  auto const datumOf = [](CVerticalReference const * reference) -> CS::CHorizontalDatum const * {
    if (!reference || !reference->GetHeightModel())
      return nullptr;
    return &reference->GetHeightModel()->GetHorizontalDatum();
  };
  CS::CHorizontalDatum const * const first = datumOf(from);
  CS::CHorizontalDatum const * const second = datumOf(to);
  if (first && second && !(*first == *second))
    throw CVelmoraException(CVelmoraException::kVerticalTransform, "CCoordTransformData::GetAdjustmentDatum",
                            "Vertical transforms must occur on a single horizontal datum.");
  return first ? first : second;
}

long CCoordTransformData::GetHeightAdjustmentLocation(CS::CHorizontalDatum const & datum, bool forward) const
{
  CS::CCoordSys const * const start = forward ? m_source : m_destination;
  if (start->GetHorizontalDatum() == datum)
    return 0;
  long const count = m_shifts.Count();
  bool const owned = m_shifts.IsConcrete() != 0;
  for (long i = 0; i < count; ++i) {
    DS::CDatumShift * shift = nullptr;
    m_shifts.GetItem(i, &shift);
    // A stored view makes each item anew for the asker.
    std::unique_ptr<DS::CDatumShift> made(owned ? nullptr : shift);
    // Where the point lies after this shift, in the direction of the walk.
    bool const destinationSide = forward != shift->GetReverseUsage();
    CS::CHorizontalDatum const & reached = destinationSide ? shift->GetDestDatum() : shift->GetSrcDatum();
    if (reached == datum)
      return i + 1;
  }
  return -1;
}

bool CCoordTransformData::InitializeVerticalTransform()
{
  if (!m_source || !m_destination)
    return false;
  m_verticalValid = true;
  m_sourceReference = GetVerticalReferenceOf(*m_source);
  m_destinationReference = GetVerticalReferenceOf(*m_destination);
  auto const fail = [this](char const * details) {
    m_verticalValid = false;
    throw CVelmoraException(CVelmoraException::kVerticalTransform, kInitLocation, details);
  };
  if (!m_sourceReference || !m_destinationReference)
    fail("One or both coordinate systems are missing vertical references.");
  try {
    m_adjustmentDatum = GetAdjustmentDatum(m_sourceReference, m_destinationReference);
  } catch (...) {
    m_verticalValid = false;
    throw;
  }

  // Ahead first, then back: no adjustment either way ends the set-up quietly.
  for (auto * mode : {&m_aheadMode, &m_backMode}) {
    bool const ahead = mode == &m_aheadMode;
    *mode = ahead ? CVerticalReference::GetConversionMode(m_sourceReference, m_destinationReference)
                  : CVerticalReference::GetConversionMode(m_destinationReference, m_sourceReference);
    if (*mode == CVerticalReference::kNoAdjustment) {
      m_verticalValid = false;
      return false;
    }
    if (*mode == CVerticalReference::kInvalidAdjustment)
      fail("Conversion mode between vertical references is invalid.");
  }

  if (m_adjustmentDatum) {
    m_aheadLocation = GetHeightAdjustmentLocation(*m_adjustmentDatum, true);
    m_backLocation = GetHeightAdjustmentLocation(*m_adjustmentDatum, false);
    if (m_aheadLocation == -1)
      fail("No compatible horizontal datum found in coordinate transform on which to perform the height model "
           "adjustment.");
  } else {
    m_aheadLocation = m_backLocation = -1;
  }
  return true;
}

// Comparison and completeness

namespace {
template <class System>
bool Differ(CS::CCoordSys const & mine, CS::CCoordSys const & theirs)
{
  auto const * other = dynamic_cast<System const *>(&theirs);
  return !other || static_cast<System const &>(mine) != *other;
}

// Two systems compared by the rules of this side's kind.
bool SystemsDiffer(CS::CCoordSys const * mine, CS::CCoordSys const * theirs)
{
  if (!mine)
    return theirs != nullptr;
  if (!theirs)
    return true;
  switch (mine->GetType()) {
  case CS::kFittedCoordSys: return Differ<CS::CFittedCoordSys>(*mine, *theirs);
  case CS::kGeocentricCoordSys: return Differ<CS::CGeocentricCoordSys>(*mine, *theirs);
  case CS::kGeodeticCoordSys: return Differ<CS::CGeodeticCoordSys>(*mine, *theirs);
  case CS::kProjectedCoordSys: return Differ<CS::CProjectedCoordSys>(*mine, *theirs);
  default:
    throw CVelmoraException(CVelmoraException::kClassNotSupported, "CCoordTransformData::operator==", "(Unknown)");
  }
}
} // namespace

bool CCoordTransformData::operator==(CCoordTransformData const & other) const
{
  if (&other == this)
    return true;
  if (SystemsDiffer(m_source, other.m_source) || SystemsDiffer(m_destination, other.m_destination))
    return false;
  return m_shifts == other.m_shifts;
}

bool CCoordTransformData::IsNearlyEqual(CCoordTransformData const & other, CString & why) const
{
  auto const base = IsNearlyEqualBase(other, why);
  if (base == kNearlyEqualBaseSame)
    return true;
  if (base != kNearlyEqualBaseUndecided)
    return false;
  auto const nearly = [&why](CS::CCoordSys const * a, CS::CCoordSys const * b) {
    if (!a || !b)
      return a == b;
    return a->IsNearlyEqual(*b, why);
  };
  if (!nearly(m_source, other.m_source)) {
    why += CString(": source coord systems do not match");
    return false;
  }
  if (!nearly(m_destination, other.m_destination)) {
    why += CString(": dest coord systems do not match");
    return false;
  }
  return true;
}

bool CCoordTransformData::IsFullyDefined(DB::CDataSource const * source) const
{
  bool const base = CSerializableData::IsFullyDefined(source);
  char const * const location = "CCoordTransformData::IsFullyDefined";
  auto const check = [&](CS::CCoordSys const * system, char const * needsCode, char const * notFound) {
    if (!system || !system->GetIdentifiers().Exists("VM"))
      throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, needsCode);
    if (!DB::detail::SourceHolds(source, *system))
      throw CVelmoraException(CVelmoraException::kReferenceNotFound, location, notFound);
  };
  check(m_source, "Source CoordSys", "Source Coord Sys");
  check(m_destination, "Destination CoordSys", "Destination Coord Sys");
  return base;
}

// Concrete body

CCoordTransformDataConcrete::CCoordTransformDataConcrete()
  : CSerializableData(CString(), kObjectType, kRootGroup)
{
  m_implicit.SetName(CString("Ellipsoidal Height (Implicit)"));
  m_implicit.SetVerticalDatum(nullptr);
  m_implicit.SetHeightModel(nullptr);
}

CCoordTransformDataConcrete::CCoordTransformDataConcrete(CCoordTransformDataConcrete const & other)
  : CSerializableData(other), CCoordTransformData(other)
{
  InitializeVerticalTransform();
}

CCoordTransformDataConcrete::CCoordTransformDataConcrete(CCoordTransformData const & other)
  : CSerializableData(other), CCoordTransformData(other)
{
  // A stored body's chain is a view; converting needs the shifts themselves.
  if (GetDatumShifts().IsConcrete() == 0)
    GetDatumShifts().Congeal();
  InitializeVerticalTransform();
}

CCoordTransformDataConcrete & CCoordTransformDataConcrete::operator=(CCoordTransformData const & other)
{
  if (&other == this)
    return *this;
  CCoordTransformData::operator=(other);
  InitializeVerticalTransform();
  return *this;
}

CCoordTransformDataConcrete & CCoordTransformDataConcrete::operator=(CCoordTransformDataConcrete const & other)
{
  return operator=(static_cast<CCoordTransformData const &>(other));
}

// Stored body

CCoordTransformDataDB::CCoordTransformDataDB()
  : CSerializableData(CString(), kObjectType, kRootGroup),
    m_storedShifts(std::make_unique<DS::CDatumShiftCollectionDataDB>())
{
  PointAtStoredShifts();
}

CCoordTransformDataDB::CCoordTransformDataDB(CCoordTransformDataDB const & other)
  : CSerializableData(other), CCoordTransformData(other),
    m_storedShifts(std::make_unique<DS::CDatumShiftCollectionDataDB>(*other.m_storedShifts))
{
  PointAtStoredShifts();
}

CCoordTransformDataDB::CCoordTransformDataDB(CCoordTransformData const & source, DB::CDataSource const * store)
  : CSerializableData(source), CCoordTransformData(source),
    m_storedShifts(std::make_unique<DS::CDatumShiftCollectionDataDB>())
{
  if (auto const * stored = dynamic_cast<CCoordTransformDataDB const *>(&source))
    *m_storedShifts = *stored->m_storedShifts;
  else if (store)
    ReferStoredObjects(source, *store);
  PointAtStoredShifts();
}

// A caller's transform refers to its own systems and shifts, which die with
// it: the stored one refers to the store's objects of the same "VM" codes.
void CCoordTransformDataDB::ReferStoredObjects(CCoordTransformData const & source, DB::CDataSource const & store)
{
  CString const vm("VM");
  auto const stored = [&](CSerializable const * object, long mask) -> CSerializableDataDB const * {
    if (!object || !object->GetIdentifiers().Exists(vm))
      return nullptr;
    return store.FindObject(mask, vm, object->GetIdentifiers().GetItem(vm));
  };
  auto const system = [&](CS::CCoordSys const * object) {
    CSerializableDataDB const * body = stored(object, kObjectAnyCoordSys);
    return std::unique_ptr<CS::CCoordSys>(body ? dynamic_cast<CS::CCoordSys *>(DB::CDataSource::ObjectFactory(*body))
                                               : nullptr);
  };
  std::unique_ptr<CS::CCoordSys> from = system(source.GetSrcCoordSys());
  std::unique_ptr<CS::CCoordSys> to = system(source.GetDestCoordSys());
  if (from && to)
    SetSystems(std::move(from), std::move(to));
  DS::CDatumShiftCollection const & chain = source.GetDatumShifts();
  if (!chain.IsConcrete())
    return;
  for (long i = 0; i < chain.Count(); ++i) {
    DS::CDatumShift * shift = nullptr; // the chain's own item
    if (!chain.GetItem(i, &shift) || !shift)
      continue;
    if (auto const * body = dynamic_cast<DS::CDatumShiftDataDB const *>(stored(shift, kObjectDatumShift)))
      m_storedShifts->AddReference(*body, shift->GetReverseUsage());
  }
}

CCoordTransformDataDB::~CCoordTransformDataDB() = default;

CCoordTransformDataDB & CCoordTransformDataDB::operator=(CCoordTransformData const & other)
{
  if (&other == this)
    return *this;
  CCoordTransformData::operator=(other);
  if (auto const * stored = dynamic_cast<CCoordTransformDataDB const *>(&other))
    *m_storedShifts = *stored->m_storedShifts;
  PointAtStoredShifts();
  return *this;
}

void CCoordTransformDataDB::SetSystems(std::unique_ptr<CS::CCoordSys> source, std::unique_ptr<CS::CCoordSys> destination)
{
  m_ownedSource = std::move(source);
  m_ownedDestination = std::move(destination);
  m_source = m_ownedSource.get();
  m_destination = m_ownedDestination.get();
}

void CCoordTransformDataDB::PointAtStoredShifts()
{
  m_shifts = DS::CDatumShiftCollection(*m_storedShifts);
}

// Handle

CCoordTransform::CCoordTransform(CS::CCoordSys * source, CS::CCoordSys * destination)
{
  if (source)
    MutableBody().SetSrcCoordSys(source);
  if (destination)
    MutableBody().SetDestCoordSys(destination);
}

CCoordTransform::~CCoordTransform() = default;

bool CCoordTransform::IsNearlyEqual(CCoordTransform const & other) const
{
  CString why;
  return IsNearlyEqual(other, why);
}

void CCoordTransform::Congeal()
{
  m_data.Dereference();
  CCoordTransformData & body = MutableBody();
  if (body.GetSrcCoordSys())
    body.GetSrcCoordSys()->Congeal();
  if (body.GetDestCoordSys())
    body.GetDestCoordSys()->Congeal();
  body.GetDatumShifts().Congeal();
}

} // namespace Velmora::CT
