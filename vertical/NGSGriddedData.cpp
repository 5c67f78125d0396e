#include <velmora/vertical/NGSGriddedData.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/vertical/VerticalTables_p.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace Velmora::CS::VR {

using EX::CVelmoraException;

namespace {

char const kHeaderLocation[] = "CNGSGriddedData::InitializeGridFile";
char const kTitleRead[] = "During read of title and File ID.";
constexpr long kBinaryHeader = 44;
constexpr int kParLine = 256; // characters of a .par line that count
constexpr double kSecondsPerDegree = 3600.0;

std::FILE * Open(CString const & name) { return std::fopen(QFile::encodeName(name).constData(), "rb"); }

[[noreturn]] void Fail(char const * details)
{
  throw CVelmoraException(CVelmoraException::kGridRead, kHeaderLocation, details);
}

template <class T>
T Take(unsigned char const * bytes)
{
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

// Cuts trailing blanks.
void Trim(char * text)
{
  for (std::size_t n = std::strlen(text); n > 0 && text[n - 1] == ' '; --n)
    text[n - 1] = '\0';
}

} // namespace

bool CGridFile::Contains(double lat, double & lon) const
{
  if (!(lat >= south && lat <= north))
    return false;
  for (double const candidate : {lon, lon + 360.0, lon - 360.0})
    if (candidate >= west && candidate <= east) {
      lon = candidate;
      return true;
    }
  return false;
}

CNGSGriddedData::CNGSGriddedData(Format format) : m_format(format), m_dataPath(DB::CDataSource::GetDataPath()) {}

CNGSGriddedData::CNGSGriddedData(CNGSGriddedData const & other)
  : m_format(other.m_format), m_dataPath(other.m_dataPath)
{
}

CNGSGriddedData & CNGSGriddedData::operator=(CNGSGriddedData const & other)
{
  if (&other != this) {
    SmokeGridFileCollection();
    m_format = other.m_format;
    m_dataPath = other.m_dataPath;
  }
  return *this;
}

CNGSGriddedData::~CNGSGriddedData() { SmokeGridFileCollection(); }

void CNGSGriddedData::Close() const
{
  if (m_open && m_open->file)
    std::fclose(m_open->file);
  if (m_open)
    m_open->file = nullptr;
  m_open = nullptr;
}

void CNGSGriddedData::SmokeGridFileCollection() const
{
  Close();
  m_files.clear();
  m_ready = false;
}

void CNGSGriddedData::GetFileListFromDirectory(CString path, CString const & extension) const
{
  while (path.endsWith(QLatin1Char('/')) || path.endsWith(QLatin1Char('\\')))
    path.chop(1);
  QDir const folder(path);
  if (!QFileInfo(path).isDir())
    return;
  QStringList const names = folder.entryList(QStringList{"*" + extension}, QDir::Files, QDir::Name);
  for (QString const & name : names) {
    auto grid = std::make_unique<CGridFile>();
    grid->name = CString(folder.filePath(name));
    m_files.push_back(std::move(grid));
  }
}

void CNGSGriddedData::ReadParFile(CString const & name, CString const & extension) const
{
  QFile list(name);
  if (!list.open(QIODevice::ReadOnly | QIODevice::Text))
    return;
  QDir const folder = QFileInfo(name).dir();
  while (!list.atEnd()) {
    QString const line = QString::fromLocal8Bit(list.readLine()).left(kParLine).trimmed();
    if (line.size() <= 1 || line.startsWith(QLatin1Char('*')))
      continue;
    QString const word = line.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts).last();
    auto grid = std::make_unique<CGridFile>();
    grid->name = CString(folder.filePath(word + extension));
    m_files.push_back(std::move(grid));
  }
}

void CNGSGriddedData::ReadHeader(CGridFile & grid) const
{
  std::FILE * file = Open(grid.name);
  if (!file)
    throw CVelmoraException(CVelmoraException::kFileNotFound, "CNGSGriddedData::OpenFile", Table::kCannotOpenFile);
  std::fseek(file, 0, SEEK_END);
  long const size = std::ftell(file);
  std::fseek(file, 0, SEEK_SET);
  unsigned char header[96] = {};
  std::size_t const wanted = m_format == kTitled ? 96 : kBinaryHeader;
  std::size_t const got = std::fread(header, 1, wanted, file);
  std::fclose(file);
  if (m_format == kTitled) {
    if (got < 64)
      Fail(kTitleRead);
    std::memcpy(grid.title, header, 56);
    std::memcpy(grid.identifier, header + 56, 8);
    Trim(grid.title);
    Trim(grid.identifier);
    if (std::strncmp(grid.identifier, "GEOGRD", 6) != 0 && std::strcmp(grid.identifier, "vertc2.0") != 0)
      Fail(kTitleRead);
    if (got < wanted)
      Fail(Table::kGridSizeMismatch);
    grid.columns = Take<std::int32_t>(header + 64);
    grid.rows = Take<std::int32_t>(header + 68);
    grid.third = Take<std::int32_t>(header + 72);
    grid.west = Take<float>(header + 76);
    grid.columnSpacing = std::floor(Take<float>(header + 80) * kSecondsPerDegree + 0.5) / kSecondsPerDegree;
    grid.south = Take<float>(header + 84);
    grid.rowSpacing = std::floor(Take<float>(header + 88) * kSecondsPerDegree + 0.5) / kSecondsPerDegree;
    grid.angle = Take<float>(header + 92);
  } else {
    if (got < wanted)
      Fail(Table::kGridSizeMismatch);
    grid.south = Take<double>(header);
    grid.west = Take<double>(header + 8);
    grid.rowSpacing = Take<double>(header + 16);
    grid.columnSpacing = Take<double>(header + 24);
    grid.rows = Take<std::int32_t>(header + 32);
    grid.columns = Take<std::int32_t>(header + 36);
    grid.third = Take<std::int32_t>(header + 40);
  }
  // Counts and steps a lookup can trust, and exactly the file's length.
  bool const sane = grid.columns > 0 && grid.rows > 0 && grid.columns < (1L << 24) && grid.rows < (1L << 24) &&
                    grid.columnSpacing > 0 && grid.rowSpacing > 0 && std::isfinite(grid.west) &&
                    std::isfinite(grid.south) && std::isfinite(grid.columnSpacing) && std::isfinite(grid.rowSpacing);
  if (!sane) // before the counts enter a product that could overflow
    Fail(Table::kGridSizeMismatch);
  long long const expected = m_format == kTitled ? (grid.columns + 1LL) * (grid.rows + 1LL) * 4
                                                 : kBinaryHeader + grid.columns * 1LL * grid.rows * 4;
  if (size != expected)
    Fail(Table::kGridSizeMismatch);
  grid.east = (grid.columns - 1) * grid.columnSpacing + grid.west;
  grid.north = (grid.rows - 1) * grid.rowSpacing + grid.south;
}

void CNGSGriddedData::SetupFiles(CString const & path, CString const & extension, char const * location,
                                 char const * details) const
{
  if (m_ready)
    return;
  SmokeGridFileCollection();
  CString where = path;
  if (!QFileInfo::exists(where) && !m_dataPath.isEmpty())
    where = CString(m_dataPath + path);
  if (QFileInfo(where).isDir())
    GetFileListFromDirectory(where, extension);
  else if (QFileInfo(where).isFile())
    ReadParFile(where, extension);
  if (m_files.empty())
    throw CVelmoraException(CVelmoraException::kFileNotFound, location, details);
  try {
    for (auto const & grid : m_files)
      ReadHeader(*grid);
  } catch (...) {
    SmokeGridFileCollection(); // tried again at the next call
    throw;
  }
  m_ready = true;
}

CGridFile & CNGSGriddedData::FileFor(double lat, double lon, char const * location) const
{
  if (m_open && !m_open->Contains(lat, lon))
    Close();
  if (!m_open) {
    for (auto const & grid : m_files) {
      double l = lon;
      if (!grid->Contains(lat, l))
        continue;
      grid->file = Open(grid->name);
      if (!grid->file)
        throw CVelmoraException(CVelmoraException::kFileNotFound, "CNGSGriddedData::OpenFile",
                                Table::kCannotOpenFile);
      m_open = grid.get();
      break;
    }
  }
  if (!m_open)
    throw CVelmoraException(CVelmoraException::kFileNotFound, location, "No grid file exists for that location.");
  return *m_open;
}

bool CNGSGriddedData::ReadFloats(long offset, int count, float * values) const
{
  return m_open && offset >= 0 && std::fseek(m_open->file, offset, SEEK_SET) == 0 &&
         std::fread(values, sizeof(float), static_cast<std::size_t>(count), m_open->file) ==
           static_cast<std::size_t>(count);
}

long CNGSGriddedData::NodeOffset(CGridFile const & grid, long row, long column) const
{
  if (m_format == kTitled) // a header record first, and a lead word before each row
    return ((grid.columns + 1) * (row + 1) + column + 1) * 4;
  return kBinaryHeader + (grid.columns * row + column) * 4;
}

double CNGSGriddedData::QuadraticInterpolation(double t, double a, double b, double c)
{
  return a + t * (b - a) + ((c - b) - (b - a)) * t * 0.5 * (t - 1.0);
}

double CNGSGriddedData::BilinearInterpolation(float t, float u, float const * corners)
{
  return corners[0] + (corners[1] - corners[0]) * t + (corners[2] - corners[0]) * u +
         (corners[0] - corners[1] - corners[2] + corners[3]) * t * u;
}

double CNGSGriddedData::Quadratic(double lat, double lon, bool nearest, char const * location) const
{
  CGridFile const & grid = FileFor(lat, lon, location);
  grid.Contains(lat, lon); // the longitude as the file counts it
  double const x = (lon - grid.west) / grid.columnSpacing, y = (lat - grid.south) / grid.rowSpacing;
  long column, row;
  if (nearest) { // the window centred on the nearest node, kept inside the grid
    column = std::clamp(static_cast<long>(x + 0.5) - 1, 0L, std::max(0L, grid.columns - 3));
    row = std::clamp(static_cast<long>(y + 0.5) - 1, 0L, std::max(0L, grid.rows - 3));
  } else { // one node back from the point's cell
    column = static_cast<long>(x);
    row = static_cast<long>(y);
    if (column > 0)
      --column;
    if (row > 0)
      --row;
  }
  float const t = static_cast<float>(x - column), u = static_cast<float>(y - row);
  double across[3];
  for (int i = 0; i < 3; ++i) {
    float v[3];
    if (!ReadFloats(NodeOffset(grid, row + i, column), 3, v))
      throw CVelmoraException(CVelmoraException::kGridRead, location, Table::kGridReadFailure);
    across[i] = QuadraticInterpolation(t, v[0], v[1], v[2]);
  }
  return QuadraticInterpolation(u, across[0], across[1], across[2]);
}

} // namespace Velmora::CS::VR
