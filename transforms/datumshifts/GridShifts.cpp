#include <velmora/transforms/datumshifts/GridShifts.h>

#include <velmora/foundation/VelmoraException.h>
#include <velmora/transforms/datumshifts/GridFile_p.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Velmora::CT::DS {

using EX::CVelmoraException;
using detail::ThroughPoint;

namespace {

constexpr double kSecondsPerDegree = 3600.0;
// Rows and columns are found by truncation after this nudge, so that a
// point on a node lands in the cell above and east of it.
constexpr double kIndexNudge = 1e-12;

// Little-endian values at a byte offset, as the files keep them; the caller
// has made sure the bytes are there.
template <class T>
T At(std::vector<unsigned char> const & bytes, std::size_t offset)
{
  T value;
  std::memcpy(&value, bytes.data() + offset, sizeof value);
  return value;
}

// Eight characters up to the first blank (or NUL).
std::string Name8(std::vector<unsigned char> const & bytes, std::size_t offset)
{
  std::string name;
  for (std::size_t i = 0; i < 8; ++i) {
    char const c = static_cast<char>(bytes[offset + i]);
    if (c == ' ' || c == '\0')
      break;
    name += c;
  }
  return name;
}

long Trunc(double value) { return static_cast<long>(value); }

} // namespace

// NTv2 -----------------------------------------------------------------------

namespace {

constexpr std::size_t kRecord = 16;        // bytes of every record
constexpr long kMinSubFiles = 1;
constexpr long kMaxSubFiles = 200;
constexpr long kSubFileHeaderRecords = 11; // SUB_NAME to GS_COUNT

char const kNoGrid[] = "There is no grid shift data for the area around the point.";
char const kBadCount[] = "Unexpected number of subfiles (expected between 1 and 200).";
char const kBadSubFile[] = "Failed to read a subfile.";

} // namespace

bool CCanadianNTV2::SubFile::Holds(double lat, double lonW) const
{
  return sLat < lat && lat <= nLat && eLong <= lonW && lonW <= wLong;
}

int CCanadianNTV2::SubFile::EdgeClass(double lat, double lonW) const
{
  if (lat < nLat && lonW < wLong)
    return 1;
  if (lat == nLat && lonW < wLong)
    return 2;
  if (lat < nLat && lonW == wLong)
    return 3;
  return 4;
}

CCanadianNTV2::CCanadianNTV2() : m_dataPath(detail::CurrentDataPath()) {}

void CCanadianNTV2::Init() const
{
  if (!m_buffer)
    InitInner();
}

void CCanadianNTV2::InitInner() const
{
  std::string const name = GetParameters().GetString(CString("cantrans_file")).toStdString();
  std::FILE * file = detail::OpenGridFile(name);
  if (!file)
    file = detail::OpenGridFile(m_dataPath + name);
  if (!file)
    throw CVelmoraException(CVelmoraException::kFileNotFound, "CCanadianNTV2::OpenFile", "Couldn't open NTV2 file");
  auto bytes = std::make_shared<std::vector<unsigned char>>();
  bool const read = detail::ReadWhole(file, *bytes);
  std::fclose(file);
  auto const fail = [](char const * details) {
    throw CVelmoraException(CVelmoraException::kGridRead, "CCanadianNTV2::Init", details);
  };
  // The three overview values lie in the first three records.
  if (!read || bytes->size() < 3 * kRecord)
    fail(kBadCount);
  std::vector<unsigned char> const & b = *bytes;
  long const overview = At<std::int32_t>(b, 8);
  long const subRecords = At<std::int32_t>(b, 24);
  long const count = At<std::int32_t>(b, 40);
  if (count < kMinSubFiles || count > kMaxSubFiles)
    fail(kBadCount);

  long const records = static_cast<long>(b.size() / kRecord);
  std::vector<SubFile> subFiles(static_cast<std::size_t>(count) + 1);
  long r = overview;
  for (long i = 1; i <= count; ++i) {
    if (r < 0 || r > records - kSubFileHeaderRecords)
      fail(kBadSubFile);
    std::size_t const at = static_cast<std::size_t>(r) * kRecord;
    if (Name8(b, at) != "SUB_NAME")
      fail(kBadSubFile);
    SubFile & s = subFiles[static_cast<std::size_t>(i)];
    s.name = Name8(b, at + 8);
    s.parent = Name8(b, at + kRecord + 8);
    double * const bounds[] = {&s.sLat, &s.nLat, &s.eLong, &s.wLong, &s.latInc, &s.longInc};
    for (std::size_t k = 0; k < 6; ++k)
      *bounds[k] = At<double>(b, at + (4 + k) * kRecord + 8);
    s.count = At<std::int32_t>(b, at + 10 * kRecord + 8);
    s.first = r + kSubFileHeaderRecords;
    // A damaged header must not lead a lookup outside the nodes it has.
    bool const sane = std::isfinite(s.sLat) && std::isfinite(s.nLat) && std::isfinite(s.eLong) &&
                      std::isfinite(s.wLong) && s.latInc > 0.0 && s.longInc > 0.0 && std::isfinite(s.latInc) &&
                      std::isfinite(s.longInc) && s.sLat <= s.nLat && s.eLong <= s.wLong && s.count >= 0 &&
                      s.count <= records - s.first;
    if (!sane)
      fail(kBadSubFile);
    double const rows = std::floor((s.nLat - s.sLat) / s.latInc + kIndexNudge) + 1.0;
    double const columns = std::floor((s.wLong - s.eLong) / s.longInc + kIndexNudge) + 1.0;
    if (rows * columns > static_cast<double>(s.count))
      fail(kBadSubFile);
    r = s.first + s.count;
  }
  m_overviewRecords = static_cast<int>(overview);
  m_subFileRecords = static_cast<int>(subRecords);
  m_count = count;
  m_subFiles = std::move(subFiles);
  m_buffer = std::move(bytes);
}

void CCanadianNTV2::FGrid(double lat, double lonW, int & edge, long & sub) const
{
  // A class number stands for a sub-file number in step 4 below; past the
  // count it names none.
  auto const nameOf = [this](long number) {
    return number >= 1 && number <= m_count ? m_subFiles[static_cast<std::size_t>(number)].name : std::string();
  };
  std::string parent = "NONE";
  sub = 0;
  edge = 0;
  for (;;) {
    std::string const remembered = parent;
    long byClass[5] = {};
    for (long i = 1; i <= m_count; ++i) {
      SubFile const & s = m_subFiles[static_cast<std::size_t>(i)];
      if (!((s.parent == parent || m_count == 1) && s.Holds(lat, lonW)))
        continue;
      long child = 0;
      for (long j = 1; j <= m_count; ++j)
        if (m_subFiles[static_cast<std::size_t>(j)].parent == s.name &&
            m_subFiles[static_cast<std::size_t>(j)].Holds(lat, lonW))
          child = j;
      int const cls = s.EdgeClass(lat, lonW);
      if (byClass[cls])
        return; // the previous round's answer stands
      byClass[cls] = child ? child : i;
    }
    for (int cls = 1; cls <= 4; ++cls) {
      if (!byClass[cls])
        continue;
      sub = byClass[cls];
      edge = cls;
      parent = nameOf(cls);
    }
    if (parent == remembered)
      return;
  }
}

void CCanadianNTV2::Interpolate(long sub, int edge, double lat, double lonW, double & dlat, double & dlon,
                                char const * location) const
{
  SubFile const & s = m_subFiles[static_cast<std::size_t>(sub)];
  long const nlon = Trunc((s.wLong - s.eLong) / s.longInc + kIndexNudge) + 1;
  long const row = Trunc((lat - s.sLat) / s.latInc + kIndexNudge) + 1;
  long const col = Trunc((lonW - s.eLong) / s.longInc + kIndexNudge);
  long const base = (row - 1) * nlon;
  bool const wrap = col == -1 || col + 1 > nlon;
  long const cell = wrap ? base + nlon : base + col + 1;
  long const k = cell + s.first - 1;
  long const k2 = (wrap ? base + 1 : cell + 1) + s.first - 1;
  if (k != s.cached) {
    std::vector<unsigned char> const & b = *m_buffer;
    auto const node = [&](long record, double * shift) {
      // A node outside the sub-file's own records is no data of this grid.
      if (record < s.first || record >= s.first + s.count)
        throw CVelmoraException(CVelmoraException::kInputOutOfBounds, location, kNoGrid);
      std::size_t const at = static_cast<std::size_t>(record) * kRecord;
      shift[0] = At<float>(b, at);
      shift[1] = At<float>(b, at + 4);
    };
    double * const a = s.corners, * const bb = s.corners + 2, * const c = s.corners + 4, * const d = s.corners + 6;
    node(k, a);
    switch (edge) {
    case 1:
      node(k2, bb);
      node(k + nlon, c);
      node(k2 + nlon, d);
      break;
    case 2:
      node(k2, bb);
      c[0] = a[0], c[1] = a[1];
      d[0] = bb[0], d[1] = bb[1];
      break;
    case 3:
      bb[0] = a[0], bb[1] = a[1];
      node(k + nlon, c);
      d[0] = c[0], d[1] = c[1];
      break;
    default:
      bb[0] = c[0] = d[0] = a[0];
      bb[1] = c[1] = d[1] = a[1];
      break;
    }
    s.cached = k;
  }
  double const x = (lat - ((row - 1) * s.latInc + s.sLat)) / s.latInc;
  double const y = (lonW - (col * s.longInc + s.eLong)) / s.longInc;
  double const * const q = s.corners;
  for (int i = 0; i < 2; ++i) {
    double const a = q[i], b = q[2 + i], c = q[4 + i], d = q[6 + i];
    (i == 0 ? dlat : dlon) = a + (c - a) * x + (b - a) * y + (a - b - c + d) * x * y;
  }
}

void CCanadianNTV2::Forward(double & lon, double & lat) const
{
  Init();
  double const seconds = lat * kSecondsPerDegree, west = lon * -kSecondsPerDegree;
  int edge = 0;
  long sub = 0;
  FGrid(seconds, west, edge, sub);
  if (!sub)
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, "CCanadianNTV2::ShiftSrcToDest", kNoGrid);
  double dlat = 0.0, dlon = 0.0;
  Interpolate(sub, edge, seconds, west, dlat, dlon, "CCanadianNTV2::ShiftSrcToDest");
  lat += dlat / kSecondsPerDegree;
  lon -= dlon / kSecondsPerDegree;
}

void CCanadianNTV2::Back(double & lon, double & lat) const
{
  constexpr int kSteps = 4;
  char const * const location = "CCanadianNTV2::ShiftDestToSrc";
  Init();
  double const seconds = lat * kSecondsPerDegree, west = lon * -kSecondsPerDegree;
  int edge = 0;
  long sub = 0;
  FGrid(seconds, west, edge, sub);
  if (!sub)
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, location, kNoGrid);
  double dlat = 0.0, dlon = 0.0;
  for (int step = 1; step <= kSteps; ++step) {
    double const tlat = seconds - dlat, tlon = west - dlon;
    if (step > 1) {
      FGrid(tlat, tlon, edge, sub);
      if (!sub)
        throw CVelmoraException(CVelmoraException::kInputOutOfBounds, location, kNoGrid);
    }
    Interpolate(sub, edge, tlat, tlon, dlat, dlon, location);
  }
  lat -= dlat / kSecondsPerDegree;
  lon -= dlon / -kSecondsPerDegree;
}

bool CCanadianNTV2::ShiftSrcToDest(double & lon, double & lat) const
{
  double x = lon, y = lat;
  Forward(x, y);
  lon = x, lat = y;
  return true;
}

bool CCanadianNTV2::ShiftDestToSrc(double & lon, double & lat) const
{
  double x = lon, y = lat;
  Back(x, y);
  lon = x, lat = y;
  return true;
}

bool CCanadianNTV2::ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out, [this](double & lon, double & lat, double &) { Forward(lon, lat); });
}

bool CCanadianNTV2::ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out, [this](double & lon, double & lat, double &) { Back(lon, lat); });
}

// NADCON ---------------------------------------------------------------------

namespace {

constexpr std::size_t kNadconHeader = 96; // bytes of the header the two files must share
constexpr double kNadconTolerance = 0.000000001; // degrees, of the back iteration
constexpr int kNadconTries = 10;

} // namespace

CNadcon::CNadcon() : m_dataPath(detail::CurrentDataPath()) {}

void CNadcon::Setup() const
{
  if (!m_loaded)
    SetupInner();
}

void CNadcon::SetupInner() const
{
  CParameterCollection const & parameters = GetParameters();
  std::string const las = parameters.GetString(CString("las_name")).toStdString();
  std::string const los = parameters.GetString(CString("los_name")).toStdString();
  std::FILE * files[2] = {detail::OpenGridFile(las), detail::OpenGridFile(los)};
  auto const closeBoth = [&files] {
    for (std::FILE *& f : files)
      if (f) {
        std::fclose(f);
        f = nullptr;
      }
  };
  if (!files[0] || !files[1]) {
    closeBoth();
    files[0] = detail::OpenGridFile(m_dataPath + las);
    files[1] = detail::OpenGridFile(m_dataPath + los);
  }
  if (!files[0] || !files[1]) {
    closeBoth();
    throw CVelmoraException(CVelmoraException::kFileNotFound, "CNadcon::Setup", "Couldn't open las and/or los files");
  }
  auto latitudes = std::make_shared<std::vector<unsigned char>>();
  auto longitudes = std::make_shared<std::vector<unsigned char>>();
  bool const readLas = detail::ReadWhole(files[0], *latitudes) && latitudes->size() >= kNadconHeader;
  bool const readLos = detail::ReadWhole(files[1], *longitudes) && longitudes->size() >= kNadconHeader;
  closeBoth();
  if (!readLas)
    throw CVelmoraException(CVelmoraException::kFileRead, "CNadcon::Setup", "Failed to read grid data from las file");
  if (!readLos)
    throw CVelmoraException(CVelmoraException::kFileRead, "CNadcon::Setup", "Failed to read grid data from los file");
  if (std::memcmp(latitudes->data(), longitudes->data(), kNadconHeader) != 0)
    throw CVelmoraException(CVelmoraException::kInvalidParameter, "CNadcon::Setup",
                            "Header bytes from the las file do not match those from the los file");

  std::vector<unsigned char> const & h = *latitudes;
  m_identification.assign(reinterpret_cast<char const *>(h.data()), 56);
  m_identification.resize(std::strlen(m_identification.c_str()));
  m_program.assign(reinterpret_cast<char const *>(h.data()) + 56, 8);
  m_program.resize(std::strlen(m_program.c_str()));
  auto const low16 = [&](std::size_t at) { return static_cast<int>(static_cast<std::int16_t>(At<std::int32_t>(h, at))); };
  m_nc = low16(64);
  m_nr = low16(68);
  m_nz = low16(72);
  m_xmin = At<float>(h, 76);
  m_dx = At<float>(h, 80);
  m_ymin = At<float>(h, 84);
  m_dy = At<float>(h, 88);
  m_angle = At<float>(h, 92);
  m_xmax = (m_nc - 1) * m_dx + m_xmin;
  m_ymax = (m_nr - 1) * m_dy + m_ymin;
  m_dx = std::fabs(m_dx);
  m_dy = std::fabs(m_dy);
  m_rowSize = static_cast<std::uint16_t>(m_nc * 4 + 4);
  m_las = std::move(latitudes);
  m_los = std::move(longitudes);
  m_negate = parameters.IsItemSet(CString("type")) && parameters.GetString(CString("type")) == CString("HARN");
  m_loaded = true;
}

double CNadcon::Bilinear(std::vector<unsigned char> const & grid, long row, long col, double u, double v) const
{
  // The nodes (row, col), (row, col + 1), then the same one row up. Reads
  // past the last column fall into the next row's lead word and values, as
  // the file's layout makes them; past the end, the location fails.
  long long const offset = static_cast<long long>(row + 1) * m_rowSize + static_cast<long long>(col) * 4 + 4;
  long long const limit = static_cast<long long>(grid.size()) - 8;
  if (offset < 0 || offset > limit || offset + m_rowSize > limit)
    throw CVelmoraException(CVelmoraException::kIndexOutOfRange, "CNadcon::GetGridData",
                            "The grid id associated with that location is outside the range supported by the "
                            "las/los files");
  std::size_t const at = static_cast<std::size_t>(offset);
  double const t1 = At<float>(grid, at), t3 = At<float>(grid, at + 4);
  double const t2 = At<float>(grid, at + static_cast<std::size_t>(m_rowSize));
  double const t4 = At<float>(grid, at + static_cast<std::size_t>(m_rowSize) + 4);
  return t1 + (t3 - t1) * u + (t2 - t1) * v + (t4 - t3 - t2 + t1) * u * v;
}

void CNadcon::ConvertToNAD83(double lat, double lon, double & dlat, double & dlon) const
{
  Setup();
  // Written so that a NaN is outside too.
  if (!(lon >= m_xmin && lon <= m_xmax && lat >= m_ymin && lat <= m_ymax))
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, "CNadcon::ConvertToNAD83",
                            "There is no grid shift data for the area around the point.");
  double const fy = std::fabs(lat - m_ymin) / m_dy, fx = std::fabs(lon - m_xmin) / m_dx;
  if (!(fx < static_cast<double>(std::numeric_limits<long>::max() / 8) &&
        fy < static_cast<double>(std::numeric_limits<long>::max() / 8)))
    throw CVelmoraException(CVelmoraException::kIndexOutOfRange, "CNadcon::GetGridData",
                            "The grid id associated with that location is outside the range supported by the "
                            "las/los files");
  long const col = Trunc(fx), row = Trunc(fy);
  double const u = fx - col, v = fy - row;
  double lat2 = Bilinear(*m_las, row, col, u, v) / kSecondsPerDegree;
  double lon2 = Bilinear(*m_los, row, col, u, v) / -kSecondsPerDegree;
  if (m_negate) {
    lat2 = -lat2;
    lon2 = -lon2;
  }
  dlat = lat2;
  dlon = lon2;
}

void CNadcon::Forward(double & lon, double & lat) const
{
  double dlat = 0.0, dlon = 0.0;
  ConvertToNAD83(lat, lon, dlat, dlon);
  lat += dlat;
  lon += dlon;
}

bool CNadcon::Back(double & lon, double & lat) const
{
  double const lat0 = lat, lon0 = lon;
  double la = lat0, lo = lon0;
  for (int count = 0;;) {
    double dlat = 0.0, dlon = 0.0;
    ConvertToNAD83(la, lo, dlat, dlon);
    double const tlat = la + dlat, tlon = lo + dlon;
    if (std::fabs(lat0 - tlat) <= kNadconTolerance && std::fabs(lon0 - tlon) <= kNadconTolerance) {
      lat = la, lon = lo;
      return true;
    }
    la += lat0 - tlat;
    lo += lon0 - tlon;
    if (++count == kNadconTries) {
      lat = tlat, lon = tlon;
      return false;
    }
  }
}

namespace {
[[noreturn]] void NoConvergence()
{
  throw CVelmoraException(CVelmoraException::kMathError, "CNadcon::ShiftDestToSrc",
                          "Failed to resolve the backward result in a reasonable number of tries.");
}
} // namespace

bool CNadcon::ShiftSrcToDest(double & lon, double & lat) const
{
  double x = lon, y = lat;
  Forward(x, y);
  lon = x, lat = y;
  return true;
}

bool CNadcon::ShiftDestToSrc(double & lon, double & lat) const
{
  double x = lon, y = lat;
  bool const settled = Back(x, y);
  lon = x, lat = y;
  if (!settled)
    NoConvergence();
  return true;
}

bool CNadcon::ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out, [this](double & lon, double & lat, double &) { Forward(lon, lat); });
}

bool CNadcon::ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  bool settled = true;
  ThroughPoint(in, out, [&](double & lon, double & lat, double &) { settled = Back(lon, lat); });
  if (!settled)
    NoConvergence();
  return true;
}

} // namespace Velmora::CT::DS
