#include <velmora/vertical/OSGriddedData.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/projections/TransverseMercator.h>
#include <velmora/refsys/HorizontalDatum.h>
#include <velmora/vertical/VerticalTables_p.h>

#include <QFile>

#include <cmath>
#include <cstdint>
#include <cstring>

namespace Velmora::CS::VR {

using EX::CVelmoraException;

namespace {

constexpr long kHeader = 2 + 4 * 8;
constexpr long kRecord = 3 * 8 + 2;
constexpr double kMetresPerKilometre = 1000.0;
char const kInvalidFile[] = "Invalid grid shift file specified.";

// The two grids' transverse Mercators (degrees, metres): the National Grid
// and Irish Transverse Mercator.
struct GridTM
{
  double meridian, origin, scale, east, north;
};
constexpr GridTM kNationalGrid{-2.0, 49.0, 0.9996012717, 400000.0, -100000.0};
constexpr GridTM kIrishTM{-8.0, 53.5, 0.99982, 600000.0, 750000.0};

// A transverse Mercator of the given numbers (degrees, metres).
void MakeTM(std::unique_ptr<PJ::CTransverseMercator> & projection, std::unique_ptr<CHorizontalDatum> & held,
            CHorizontalDatum const & datum, GridTM const & tm)
{
  auto const [meridian, origin, scale, east, north] = tm;
  held = std::make_unique<CHorizontalDatum>(datum);
  projection = std::make_unique<PJ::CTransverseMercator>();
  projection->SetHorizontalDatum(held.get());
  CParameterCollection & p = projection->GetParameters();
  p.SetItemInternal(CString("central_meridian"), meridian);
  p.SetItemInternal(CString("latitude_of_origin"), origin);
  p.SetDouble(CString("scale_factor"), scale);
  p.SetItemInternal(CString("false_easting"), east);
  p.SetItemInternal(CString("false_northing"), north);
}

} // namespace

COSGriddedData::COSGriddedData() : m_dataPath(DB::CDataSource::GetDataPath()) {}

COSGriddedData::COSGriddedData(COSGriddedData const & other) : m_dataPath(other.m_dataPath) {}

COSGriddedData & COSGriddedData::operator=(COSGriddedData const & other)
{
  if (&other != this) {
    CloseGridFile();
    m_dataPath = other.m_dataPath;
  }
  return *this;
}

COSGriddedData::~COSGriddedData() { CloseGridFile(); }

void COSGriddedData::CloseGridFile() const
{
  if (m_file)
    std::fclose(m_file);
  m_file = nullptr;
  m_kind = -1;
}

void COSGriddedData::SetNationalGrid(CHorizontalDatum const & datum) const
{
  MakeTM(m_projection, m_datum, datum, kNationalGrid);
}

void COSGriddedData::SetIrishTM(CHorizontalDatum const & datum) const
{
  MakeTM(m_projection, m_datum, datum, kIrishTM);
}

void COSGriddedData::InitializeGridFile(CString const & name, CHorizontalDatum const & datum) const
{
  char const * const location = "COSGriddedData::InitializeGridFile";
  CloseGridFile();
  std::FILE * file = name.isEmpty() ? nullptr : std::fopen(QFile::encodeName(name).constData(), "rb");
  if (!file && !m_dataPath.isEmpty())
    file = std::fopen(QFile::encodeName(CString(m_dataPath + name)).constData(), "rb");
  if (!file)
    throw CVelmoraException(CVelmoraException::kFileNotFound, location, Table::kCannotOpenFile);
  unsigned char header[kHeader];
  bool const read = std::fread(header, 1, kHeader, file) == static_cast<std::size_t>(kHeader);
  std::fseek(file, 0, SEEK_END);
  long const size = std::ftell(file);
  std::int16_t kind = -1;
  double values[4] = {};
  if (read) {
    std::memcpy(&kind, header, 2);
    std::memcpy(values, header + 2, sizeof values);
  }
  double const columns = values[0], rows = values[1];
  // Whole, positive counts of a grid that the file holds whole.
  bool const sane = read && columns >= 1 && rows >= 1 && columns < 1e6 && rows < 1e6 &&
                    columns == std::floor(columns) && rows == std::floor(rows) && std::isfinite(values[2]) &&
                    std::isfinite(values[3]) && size >= kHeader + (columns + 1) * (rows + 1) * kRecord;
  if (!sane || kind < 0 || kind > 2) {
    std::fclose(file);
    throw CVelmoraException(CVelmoraException::kGridRead, location,
                            sane ? kInvalidFile : Table::kGridSizeMismatch);
  }
  m_file = file;
  m_kind = kind;
  m_columns = columns;
  m_rows = rows;
  m_firstColumn = values[2];
  m_firstRow = values[3];
  if (kind == 0)
    SetNationalGrid(datum);
  else
    SetIrishTM(datum);
}

void COSGriddedData::InitializeGridFile(CString const & name, CHorizontalDatum const & datum,
                                        CHorizontalDatum const & outDatum) const
{
  InitializeGridFile(name, datum);
  MakeTM(m_outProjection, m_outDatum, outDatum, m_kind == 0 ? kNationalGrid : kIrishTM);
}

void COSGriddedData::GetRecordNumbers(double lon, double lat, long & low, long & high, double & x, double & y,
                                      char const * location) const
{
  x = lon;
  y = lat;
  if (!m_projection || !m_projection->ToPlane(x, y))
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, location, kInvalidFile);
  GetRecordNumbersAt(x, y, low, high, location);
}

void COSGriddedData::GetRecordNumbersAt(double x, double y, long & low, long & high, char const * location) const
{
  double const i = std::floor(x / kMetresPerKilometre) - m_firstColumn;
  double const j = std::floor(y / kMetresPerKilometre) - m_firstRow;
  if (!(i >= 0 && i < m_columns))
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, location,
                            "The point's x coordinate is outside the grid bounds.");
  if (!(j >= 0 && j < m_rows))
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, location,
                            "The point's y coordinate is outside the grid bounds.");
  low = static_cast<long>((m_columns + 1) * j + i);
  high = static_cast<long>(m_columns) + 2 + low;
}

COSGriddedData::Record COSGriddedData::Read(long record, char const * location) const
{
  unsigned char bytes[kRecord];
  if (!m_file || std::fseek(m_file, kHeader + record * kRecord, SEEK_SET) != 0 ||
      std::fread(bytes, 1, kRecord, m_file) != static_cast<std::size_t>(kRecord))
    throw CVelmoraException(CVelmoraException::kGridRead, location, Table::kGridReadFailure);
  Record r;
  std::memcpy(&r.east, bytes, 8);
  std::memcpy(&r.north, bytes + 8, 8);
  std::memcpy(&r.geoid, bytes + 16, 8);
  std::int16_t flag;
  std::memcpy(&flag, bytes + 24, 2);
  r.flag = flag;
  return r;
}

COSGriddedData::Record COSGriddedData::LookUpGridShift(long record, char const * location) const
{
  if (m_kind < 0)
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, location, kInvalidFile);
  Record const r = Read(record, location);
  if (r.flag == 0)
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, location, "No geoid shift data exists for this area.");
  return r;
}

double COSGriddedData::LookUpGeoidShift(long low, long high, double x, double y, char const * location) const
{
  Record const sw = Read(low, location), se = Read(low + 1, location), ne = Read(high, location),
               nw = Read(high - 1, location);
  if (!sw.flag || !se.flag || !ne.flag || !nw.flag)
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, location,
                            "There is no grid shift data for the area around the point.");
  double const t = x / kMetresPerKilometre - std::floor(x / kMetresPerKilometre);
  double const u = y / kMetresPerKilometre - std::floor(y / kMetresPerKilometre);
  return (1 - t) * u * nw.geoid + t * u * ne.geoid + (1 - t) * (1 - u) * sw.geoid + t * (1 - u) * se.geoid;
}

} // namespace Velmora::CS::VR
