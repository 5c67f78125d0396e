#include <velmora/projections/Projection.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/Constants.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/projections/ProjectionTable_p.h>

#include <cmath>

namespace Velmora::CS::PJ {

using Constants::kRadiansPerDegree;
using EX::CVelmoraException;

namespace {
// The step north of the numeric convergence, in degrees.
constexpr double kConvergenceStep = 0.0001;
// Half the diagonal of the numeric scale's little square, in radians.
constexpr double kScaleStep = 0.00001;
constexpr double kFullTurn = 360.0;
constexpr double kHalfTurn = 180.0;

void Register(CParameterCollection & parameters, char const * name)
{
  CString const text(name);
  switch (Table::KindOf(name)) {
  case Table::Kind::kDouble: parameters.AddDouble(text, false); break;
  case Table::Kind::kLong: parameters.AddLong(text, false); break;
  case Table::Kind::kString: parameters.AddString(text, false); break;
  case Table::Kind::kAngular: parameters.AddAngularValue(text, false); break;
  case Table::Kind::kLinear: parameters.AddLinearValue(text, false); break;
  case Table::Kind::kUnknown: break;
  }
}
} // namespace

// Bodies

CProjectionData * CProjectionData::Create() { return new CProjectionDataConcrete(); }

CProjectionData * CProjectionData::Clone(CProjectionData const & source) { return new CProjectionDataConcrete(source); }

CProjectionData::~CProjectionData() = default;

CProjectionData & CProjectionData::operator=(CProjectionData const & other)
{
  m_datum = other.m_datum;
  m_parameters = other.m_parameters;
  m_className = other.m_className;
  return *this;
}

CProjectionDataDB::CProjectionDataDB() : m_stored(std::make_unique<CParameterCollectionDataDB>())
{
  m_parameters.GetData(); // materialise the handle before pointing it at the stored body
  m_parameters = CParameterCollection(*m_stored);
}

CProjectionDataDB::CProjectionDataDB(CProjectionData const & source, DB::CDataSource const *)
  : CProjectionData(source)
{
  m_type = Table::TypeOf(source.GetClassName());
}

int CProjectionDataDB::SetProjectionType(CString const & name)
{
  int const type = Table::TypeOf(name);
  if (type < 0)
    return -1;
  m_type = type;
  m_className = name;
  return type;
}

// The projection

CString CProjection::TypeName(int type)
{
  Table::Row const * row = Table::RowOf(type);
  return row ? CString(row->name) : CString();
}

CProjection::CProjection(CString const & typeName, CHorizontalDatum * datum)
{
  CProjectionData & body = *m_data;
  body.SetClassName(typeName);
  body.SetHorizontalDatum(datum);
  int const type = Table::TypeOf(typeName);
  if (Table::Row const * row = Table::RowOf(type))
    for (char const * name : row->parameters)
      Register(body.GetParameters(), name);
  body.GetParameters().SetEventHandler(this);
}

CProjection::CProjection(CProjection const & other) : CParameterCollectionEvent(), m_data(other.m_data) {}

CProjection::~CProjection() = default;

CProjection & CProjection::operator=(CProjection const & other)
{
  if (&other == this)
    return *this;
  m_data = other.m_data;
  OnChange(reinterpret_cast<unsigned short const *>(u""));
  return *this;
}

CParameterCollection & CProjection::GetParameters()
{
  CParameterCollection & parameters = m_data->GetParameters();
  // A copied or fetched body may still name another listener, or none.
  if (parameters.GetEventHandler() != this)
    parameters.SetEventHandler(this);
  return parameters;
}

void CProjection::SetHorizontalDatum(CHorizontalDatum * datum)
{
  m_data->SetHorizontalDatum(datum);
  OnChange(CString("HorizontalDatum"));
}

BEllipsoid const * CProjection::GetInnerEllipsoid() const
{
  CHorizontalDatum const * datum = GetHorizontalDatum();
  return datum ? &datum->GetEllipsoid().GetInner() : nullptr;
}

bool CProjection::ParametersReady(long count) const
{
  CParameterCollection const & parameters = GetParameters();
  return parameters.AllItemsSet() && parameters.Count() >= count;
}

void CProjection::CenterLongitude(double & longitude, double centralMeridian)
{
  if (!DB::CDataSource::GetCenterOnMeridianFlag())
    return;
  double const margin = DB::CDataSource::GetCenteringMargin();
  if (longitude > centralMeridian + kHalfTurn + margin)
    longitude -= kFullTurn;
  if (longitude < centralMeridian - kHalfTurn - margin)
    longitude += kFullTurn;
}

namespace {
// The two directions of the framework's wrappers differ only in point classes
// and in which pair conversion they call.
template <class Out, class In, class Convert>
bool ThroughPair(double & a, double & b, Convert convert)
{
  In const in(a, b);
  Out out(2);
  if (!convert(in, out))
    return false;
  out.GetInternals(a, b);
  return true;
}

template <class In, class Out, class Convert>
bool ThroughPoints(CParameterCollection const & parameters, In const & in, Out & out, Convert convert)
{
  if (!parameters.AllItemsSet())
    return false;
  double a = 0.0, b = 0.0;
  in.GetInternals(a, b);
  if (!convert(a, b))
    return false;
  if (in.GetDimensions() == 3 && out.GetDimensions() == 3) {
    double a3 = 0.0, b3 = 0.0, height = 0.0;
    in.GetInternals(a3, b3, height);
    out.SetInternals(a, b, height);
  } else {
    out.SetInternals(a, b);
  }
  return true;
}
} // namespace

bool CProjection::ToPlane(double & x, double & y) const
{
  return ThroughPair<ML::CProjectedPoint, ML::CGeodeticPoint>(
    x, y, [this](auto const & in, auto & out) { return ToPlane(in, out); });
}

bool CProjection::ToPlane(ML::CGeodeticPoint const & in, ML::CProjectedPoint & out) const
{
  return ThroughPoints(GetParameters(), in, out, [this](double & a, double & b) { return ToPlane(a, b); });
}

bool CProjection::FromPlane(double & x, double & y) const
{
  return ThroughPair<ML::CGeodeticPoint, ML::CProjectedPoint>(
    x, y, [this](auto const & in, auto & out) { return FromPlane(in, out); });
}

bool CProjection::FromPlane(ML::CProjectedPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoints(GetParameters(), in, out, [this](double & a, double & b) { return FromPlane(a, b); });
}

bool CProjection::ConvergenceAtPoint(ML::CProjectedPoint const & point, ML::CAngularValue & angle) const
{
  double const x1 = point.GetEast().GetInternal();
  double const y1 = point.GetNorth().GetInternal();
  double lon = x1, lat = y1;
  if (!FromPlane(lon, lat))
    return false;
  lat += kConvergenceStep;
  if (!ToPlane(lon, lat))
    return false;
  angle.SetInternal(-std::atan2(lon - x1, lat - y1));
  return true;
}

bool CProjection::ScaleFactorAtPoint(ML::CProjectedPoint const & point, double & scale) const
{
  if (!GetHorizontalDatum())
    throw CVelmoraException(CVelmoraException::kHorizontalDatumMissing, "CProjection::ScaleFactorAtPoint");
  double lon = point.GetEast().GetInternal();
  double lat = point.GetNorth().GetInternal();
  if (!FromPlane(lon, lat))
    return false;
  lon *= kRadiansPerDegree;
  lat *= kRadiansPerDegree;
  ML::BPoint2D const a(lon + kScaleStep, lat + kScaleStep), b(lon - kScaleStep, lat - kScaleStep);
  ML::BPoint2D const c(lon - kScaleStep, lat + kScaleStep), d(lon + kScaleStep, lat - kScaleStep);
  BEllipsoid const & figure = *GetInnerEllipsoid();
  double az12, az21, dAB, dCD;
  figure.GeodeticInverse(a, b, az12, az21, dAB);
  figure.GeodeticInverse(c, d, az12, az21, dCD);
  ML::BPoint2D plane[4] = {a, b, c, d};
  for (ML::BPoint2D & p : plane) {
    p.x /= kRadiansPerDegree;
    p.y /= kRadiansPerDegree;
    if (!ToPlane(p.x, p.y))
      return false;
  }
  double const planeAB = std::hypot(plane[0].x - plane[1].x, plane[0].y - plane[1].y);
  double const planeCD = std::hypot(plane[2].x - plane[3].x, plane[2].y - plane[3].y);
  scale = 0.5 * (planeAB / dAB + planeCD / dCD);
  return true;
}

bool CProjection::operator==(CProjection const & other) const
{
  CProjectionData const & a = GetData();
  CProjectionData const & b = other.GetData();
  if (a.GetClassName() != b.GetClassName() || !(a.GetParameters() == b.GetParameters()))
    return false;
  CHorizontalDatum const * da = a.GetHorizontalDatum();
  CHorizontalDatum const * db = b.GetHorizontalDatum();
  if (!da || !db)
    return da == db;
  return *da == *db;
}

bool CProjection::ClassNamesNearlyEqual(CString const & a, CString const & b)
{
  if (a == b)
    return true;
  // Pairs that describe one figure under two names.
  auto const pair = [&](char const * x, char const * y) {
    return (a == CString(x) && b == CString(y)) || (a == CString(y) && b == CString(x));
  };
  return pair("Transverse Mercator", "Transverse Mercator South Oriented") ||
         pair("Lambert Conformal Conic", "Belgium 72");
}

bool CProjection::ParametersNearlyEqual(CProjection const & other, CString & message) const
{
  // The two standard parallels may come in either order.
  CParameterCollectionData::neSpecialCase parallels;
  parallels.kind = 1;
  parallels.names = {CString("standard_parallel1"), CString("standard_parallel2")};
  std::vector<CParameterCollectionData::neSpecialCase> const specials = {parallels};
  return GetParameters().IsNearlyEqual(other.GetParameters(), message, &specials, true);
}

bool CProjection::IsNearlyEqual(CProjection const & other, CString & message) const
{
  if (!ClassNamesNearlyEqual(GetTypeName(), other.GetTypeName())) {
    message += CString(": class names do not match");
    return false;
  }
  CString detail;
  if (!ParametersNearlyEqual(other, detail)) {
    message += CString(": parameters do not match ");
    return false;
  }
  return true;
}

bool CProjection::IsNearlyEqual(CProjection const & other) const
{
  CString message;
  return IsNearlyEqual(other, message);
}

bool CProjection::IsFullyDefined(DB::CDataSource const * source) const
{
  if (GetData().GetClassName().isEmpty())
    throw CVelmoraException(CVelmoraException::kWrongSerializedClass, "CProjectionData::IsFullyDefined", "ClassType");
  return GetParameters().IsFullyDefined(source);
}

} // namespace Velmora::CS::PJ
