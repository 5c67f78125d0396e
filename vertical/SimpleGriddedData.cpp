#include <velmora/vertical/SimpleGriddedData.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/vertical/VerticalTables_p.h>

#include <QFile>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Velmora::CS::VR {

using EX::CVelmoraException;

namespace {
constexpr std::size_t kLargestCell = 8;

std::FILE * OpenForReading(CString const & name)
{
  if (name.isEmpty())
    return nullptr;
  return std::fopen(QFile::encodeName(name).constData(), "rb");
}

template <class T>
double As(unsigned char const * bytes)
{
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return static_cast<double>(value);
}
} // namespace

void CSimpleGriddedData::FileCloser::operator()(std::FILE * file) const { std::fclose(file); }

CSimpleGriddedData::CSimpleGriddedData(Layout const & layout)
  : m_layout(layout), m_dataPath(DB::CDataSource::GetDataPath())
{
}

CSimpleGriddedData::CSimpleGriddedData(CSimpleGriddedData const & other)
  : m_layout(other.m_layout), m_dataPath(other.m_dataPath)
{
}

CSimpleGriddedData & CSimpleGriddedData::operator=(CSimpleGriddedData const & other)
{
  if (&other != this) {
    CloseGridFile();
    m_layout = other.m_layout;
    m_dataPath = other.m_dataPath;
  }
  return *this;
}

CSimpleGriddedData::~CSimpleGriddedData() = default;

int CSimpleGriddedData::CellSize(CellType type)
{
  switch (type) {
  case kFloatCell: return 4;
  case kDoubleCell: return 8;
  case kShortCell:
  case kUnsignedShortCell: return 2;
  case kLongCell:
  case kUnsignedLongCell: return 4;
  }
  return 0;
}

long CSimpleGriddedData::CellIndex(long row, long column) const
{
  long const rows = m_layout.rows;
  long const columns = m_layout.columns;
  switch (m_layout.order) {
  case kNorthWestFirst: return (rows - row - 1) * columns + column;
  case kSouthWestFirst: return columns * row + column;
  case kNorthEastFirst: return (rows - row) * columns - column - 1;
  case kSouthEastFirst: return (row + 1) * columns - column - 1;
  }
  return -1;
}

void CSimpleGriddedData::CloseGridFile() const
{
  m_file.reset();
  m_cells.clear();
  m_cells.shrink_to_fit();
  m_fileName.clear();
  m_ready = false;
}

void CSimpleGriddedData::InitializeGridFile(CString const & name) const
{
  CloseGridFile();
  std::FILE * file = OpenForReading(name);
  if (!file && !m_dataPath.isEmpty())
    file = OpenForReading(CString(m_dataPath + name));
  if (!file)
    throw CVelmoraException(CVelmoraException::kFileNotFound, "CSimpleGriddedData::InitializeGridFile",
                            Table::kCannotOpenFile);
  m_fileLength = std::fseek(file, 0, SEEK_END) == 0 ? std::ftell(file) : -1;
  m_file.reset(file);
  m_fileName = name;
  m_ready = true;
}

void CSimpleGriddedData::LoadData() const
{
  if (!m_layout.loadWhole || !m_file)
    return;
  // The layout comes from a data file: it must fit the grid file before
  // anything is allocated for it.
  if (!LayoutIsSane() ||
      m_fileLength - m_layout.startOffset < m_layout.rows * m_layout.columns * CellSize(m_layout.cellType)) {
    CloseGridFile();
    throw CVelmoraException(CVelmoraException::kGridRead, "CSimpleGriddedData::LoadData", Table::kGridSizeMismatch);
  }
  std::size_t const size = static_cast<std::size_t>(CellSize(m_layout.cellType));
  std::size_t const count = static_cast<std::size_t>(m_layout.rows) * static_cast<std::size_t>(m_layout.columns);
  std::vector<unsigned char> raw(size * count);
  if (std::fseek(m_file.get(), m_layout.startOffset, SEEK_SET) != 0 ||
      std::fread(raw.data(), 1, raw.size(), m_file.get()) != raw.size()) {
    CloseGridFile();
    throw CVelmoraException(CVelmoraException::kGridRead, "CSimpleGriddedData::LoadData", Table::kGridSizeMismatch);
  }
  m_cells.resize(count);
  for (std::size_t i = 0; i < count; ++i)
    m_cells[i] = Decode(raw.data() + i * size);
  m_file.reset(); // everything is in memory now
}

bool CSimpleGriddedData::LayoutIsSane() const
{
  long const size = CellSize(m_layout.cellType);
  bool const knownOrder = m_layout.order >= kNorthWestFirst && m_layout.order <= kSouthEastFirst;
  if (!knownOrder || size == 0 || m_layout.rows <= 0 || m_layout.columns <= 0 || m_layout.startOffset < 0)
    return false;
  // Dividing instead of multiplying: the test itself cannot overflow.
  long const largest = std::numeric_limits<long>::max();
  return m_layout.rows <= largest / m_layout.columns &&
         m_layout.rows * m_layout.columns <= (largest - m_layout.startOffset) / size;
}

double CSimpleGriddedData::Decode(unsigned char * bytes) const
{
  std::size_t const size = static_cast<std::size_t>(CellSize(m_layout.cellType));
  if (m_layout.swap)
    std::reverse(bytes, bytes + size);
  switch (m_layout.cellType) {
  case kFloatCell: return As<float>(bytes);
  case kDoubleCell: return As<double>(bytes);
  case kShortCell: return As<std::int16_t>(bytes);
  case kUnsignedShortCell: return As<std::uint16_t>(bytes);
  case kLongCell: return As<std::int32_t>(bytes);
  case kUnsignedLongCell: return As<std::uint32_t>(bytes);
  }
  return kNoDataValue;
}

double CSimpleGriddedData::Cell(long row, long column) const
{
  if (!m_cells.empty())
    return m_cells[static_cast<std::size_t>(CellIndex(row, column))];
  char const * const location = "CSimpleGriddedData::BilinearInterpolation";
  // Before the index, which such a layout could overflow.
  if (!m_file || !LayoutIsSane())
    throw CVelmoraException(CVelmoraException::kGridRead, location, Table::kGridReadFailure);
  long const index = CellIndex(row, column);
  std::size_t const size = static_cast<std::size_t>(CellSize(m_layout.cellType));
  unsigned char bytes[kLargestCell];
  long const offset = m_layout.startOffset + index * static_cast<long>(size);
  if (std::fseek(m_file.get(), offset, SEEK_SET) != 0 || std::fread(bytes, 1, size, m_file.get()) != size)
    throw CVelmoraException(CVelmoraException::kGridRead, location, Table::kGridReadFailure);
  return Decode(bytes);
}

double CSimpleGriddedData::BilinearInterpolation(double lat, double lon) const
{
  double const x = (lon - m_layout.west) / m_layout.columnSpacing;
  double const y = (lat - m_layout.south) / m_layout.rowSpacing;
  double const fi = std::floor(x);
  double const fj = std::floor(y);
  // Tested as doubles, so that no position is cast out of range (NaN fails too).
  if (!(fi >= 0.0 && fi < static_cast<double>(m_layout.columns) && fj >= 0.0 &&
        fj < static_cast<double>(m_layout.rows)))
    return kNoDataValue;
  long i = static_cast<long>(fi);
  long j = static_cast<long>(fj);
  double t = x - fi;
  double u = y - fj;
  if (m_layout.snap) {
    auto const snap = [](double & fraction, long & index) {
      if (fraction < kSnapTolerance) {
        fraction = 0.0;
      } else if (fraction > 1.0 - kSnapTolerance) {
        fraction = 0.0;
        ++index;
      }
    };
    snap(t, i);
    snap(u, j);
  }

  struct Corner
  {
    long row;
    long column;
    double weight;
  };
  Corner const corners[] = {
    {j, i, (1.0 - t) * (1.0 - u)},
    {j, i + 1, t * (1.0 - u)},
    {j + 1, i, (1.0 - t) * u},
    {j + 1, i + 1, t * u},
  };
  double height = 0.0;
  for (Corner const & corner : corners) {
    if (corner.weight == 0.0)
      continue;
    if (corner.row >= m_layout.rows || corner.column >= m_layout.columns)
      return kNoDataValue; // beyond the last node: no data to blend with
    double const value = Cell(corner.row, corner.column);
    if (value == kNoDataValue)
      return kNoDataValue;
    height += corner.weight * value;
  }
  return height;
}

} // namespace Velmora::CS::VR
