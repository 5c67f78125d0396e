#include <velmora/vertical/HeightModels.h>

#include <velmora/vertical/VerticalCommon_p.h>

#include <array>
#include <new>

namespace Velmora::CS::VR {

using EX::CVelmoraException;

namespace {
Table::Row const & RowOf(CHeightModel::Type type) { return *Table::HeightModelRow(type); }

CString InterpolateLocation(CHeightModel::Type type)
{
  return CString(RowOf(type).className) + CString("::Interpolate");
}
} // namespace

CNGSGeoidModel::CNGSGeoidModel(Type type) : CHeightModel(type), CNGSGriddedData(type == kGEOID96 ? kTitled : kBinary) {}

double CNGSGeoidModel::Interpolate(ML::CGeodeticPoint const & point) const
{
  if (!GetParameters().AllItemsSet())
    return 0.0;
  Table::Row const & row = RowOf(GetType());
  SetupFiles(GetParameters().GetString(Table::kPath), GetParameters().GetString(Table::kExtension), row.openLocation,
             row.openDetails);
  CString const location = InterpolateLocation(GetType());
  if (!GetEnvelope().InBounds(point))
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, location, Table::kOutsideEnvelope);
  double lon = point.GetLon().GetInternal();
  if (lon <= 0.0) // the NGS grids count longitudes east from 0 to 360
    lon += 360.0;
  return Quadratic(point.GetLat().GetInternal(), lon, GetType() == kGEOID96, location.toStdString().c_str());
}

void CNGSGeoidModel::OnChange(unsigned short const *) { SmokeGridFileCollection(); }

CHeightModel & CNGSGeoidModel::operator=(CHeightModel const & other)
{
  if (&other == this)
    return *this;
  CHeightModel::operator=(other);
  if (other.GetType() == GetType())
    CNGSGriddedData::operator=(dynamic_cast<CNGSGriddedData const &>(other));
  return *this;
}

double COSGM02::Interpolate(ML::CGeodeticPoint const & point) const
{
  if (!GetParameters().AllItemsSet())
    return 0.0;
  if (!IsGridReady())
    InitializeGridFile(detail::ModelFileName(GetParameters()), GetHorizontalDatum());
  std::string const location = InterpolateLocation(GetType()).toStdString();
  if (!GetEnvelope().InBounds(point))
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, CString(location), Table::kOutsideEnvelope);
  long low = 0, high = 0;
  double x = 0.0, y = 0.0;
  GetRecordNumbers(point.GetLon().GetInternal(), point.GetLat().GetInternal(), low, high, x, y, location.c_str());
  return LookUpGeoidShift(low, high, x, y, location.c_str());
}

void COSGM02::OnChange(unsigned short const *) { CloseGridFile(); }

CHeightModel & COSGM02::operator=(CHeightModel const & other)
{
  if (&other == this)
    return *this;
  CHeightModel::operator=(other);
  if (other.GetType() == GetType())
    COSGriddedData::operator=(dynamic_cast<COSGriddedData const &>(other));
  return *this;
}

CSimpleRasterModel::CSimpleRasterModel(Type type)
  : CHeightModel(type), CSimpleGriddedData(*Table::HeightModelRow(type)->raster)
{
}

CString CSimpleRasterModel::GridFileName() const { return detail::ModelFileName(GetParameters()); }

double CSimpleRasterModel::Interpolate(ML::CGeodeticPoint const & point) const
{
  if (!GetParameters().AllItemsSet())
    return 0.0;
  if (!GetEnvelope().InBounds(point))
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, InterpolateLocation(GetType()),
                            Table::kOutsideEnvelope);
  CString const name = GridFileName();
  if (!IsGridReady() || GetGridFileName() != name) {
    InitializeGridFile(name);
    LoadData();
  }
  double const height = BilinearInterpolation(point.GetLat().GetInternal(), point.GetLon().GetInternal());
  if (height == kNoDataValue)
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, InterpolateLocation(GetType()),
                            Table::kNoGridData);
  return height;
}

void CSimpleRasterModel::OnChange(unsigned short const *) { CloseGridFile(); }

CHeightModel & CSimpleRasterModel::operator=(CHeightModel const & other)
{
  if (&other == this)
    return *this;
  CHeightModel::operator=(other);
  if (other.GetType() == GetType())
    CSimpleGriddedData::operator=(dynamic_cast<CSimpleGriddedData const &>(other));
  return *this;
}

// The factory

namespace {
template <class T>
CHeightModel * Make()
{
  return new T();
}

struct Entry
{
  CHeightModel::Type type;
  CHeightModel * (*make)();
};

template <class... T>
constexpr auto Entries()
{
  return std::array<Entry, sizeof...(T)>{Entry{T::kType, &Make<T>}...};
}

constexpr auto kMakers = Entries<CGEOID96, CGEOID99, CGEOID03, CAUSGEOID98, COSGM02, CEGM96, CGEOCOL04,
                                 CGSIGEO2000, CMGCV04, CIGG2005, CIBERGEO95>();

constexpr bool InTypeOrder()
{
  for (std::size_t i = 0; i < kMakers.size(); ++i)
    if (kMakers[i].type != static_cast<int>(i))
      return false;
  return kMakers.size() == CHeightModel::kTypeCount;
}
static_assert(InTypeOrder(), "the factory lists every type once, in type order");
} // namespace

CHeightModel * CHeightModelFactory::CreateHeightModel(CHeightModel::Type type)
{
  // Compared unsigned, so that negative values are out of range too.
  if (static_cast<unsigned>(type) >= static_cast<unsigned>(CHeightModel::kTypeCount))
    throw CVelmoraException(CVelmoraException::kClassNotImplemented, "CHeightModelFactory::CreateHeightModel");
  return kMakers[static_cast<std::size_t>(type)].make();
}

} // namespace Velmora::CS::VR
