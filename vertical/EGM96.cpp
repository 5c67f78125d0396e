#include <velmora/vertical/HeightModels.h>

#include <velmora/datasource/CDataSource.h>
#include <velmora/vertical/VerticalCommon_p.h>

#include <QFile>

#include <cmath>
#include <cstdio>

namespace Velmora::CS::VR {

using EX::CVelmoraException;

namespace {

constexpr double kCentimetres = 100.0;

// The natural cubic spline through values at 0, 1, ..., n - 1: its second
// derivatives, by the tridiagonal sweep for unit spacing (Press et al.,
// Numerical Recipes, section 3.3, with sigma 0.5 and diagonal 2.0).
void PrepareSpline(int n, double const * y, double * second)
{
  constexpr int kMost = 16;
  double u[kMost];
  second[0] = u[0] = 0.0;
  for (int i = 1; i < n - 1; ++i) {
    double const p = 0.5 * second[i - 1] + 2.0;
    second[i] = -0.5 / p;
    u[i] = (3.0 * (y[i + 1] - 2.0 * y[i] + y[i - 1]) - 0.5 * u[i - 1]) / p;
  }
  second[n - 1] = 0.0;
  for (int i = n - 2; i >= 0; --i)
    second[i] = second[i] * second[i + 1] + u[i];
}

// The spline at x; beyond the first or last node, the line of the end interval.
double DoSpline(int n, double const * y, double const * second, double x)
{
  if (x < 0.0)
    return y[0] + x * (y[1] - y[0]);
  if (x > n - 1)
    return y[n - 1] + (x - (n - 1)) * (y[n - 1] - y[n - 2]);
  int lo = static_cast<int>(std::floor(x));
  if (lo > n - 2)
    lo = n - 2;
  double const b = x - lo, a = 1.0 - b;
  return a * y[lo] + b * y[lo + 1] + ((a * a * a - a) * second[lo] + (b * b * b - b) * second[lo + 1]) / 6.0;
}

} // namespace

CEGM96::CEGM96() : m_dataPath(DB::CDataSource::GetDataPath()) {}

void CEGM96::OnChange(unsigned short const *) { m_grid.reset(); }

CHeightModel & CEGM96::operator=(CHeightModel const & other)
{
  if (&other == this)
    return *this;
  CHeightModel::operator=(other);
  if (auto const * same = dynamic_cast<CEGM96 const *>(&other)) {
    m_window = same->m_window;
    m_pad = same->m_pad;
    m_dataPath = same->m_dataPath;
    m_grid = same->m_grid;
  }
  return *this;
}

void CEGM96::SetupInner() const
{
  char const * const location = "CEGM96::SetupInner";
  CString const name = detail::ModelFileName(GetParameters());
  std::FILE * file = name.isEmpty() ? nullptr : std::fopen(QFile::encodeName(name).constData(), "rb");
  if (!file && !m_dataPath.isEmpty())
    file = std::fopen(QFile::encodeName(CString(m_dataPath + name)).constData(), "rb");
  if (!file)
    throw CVelmoraException(CVelmoraException::kFileNotFound, location, Table::kCannotOpenFile);
  std::vector<unsigned char> bytes(static_cast<std::size_t>(kRows * kColumns * 2));
  bool const whole = std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size() && std::fgetc(file) == EOF;
  std::fclose(file);
  if (!whole)
    throw CVelmoraException(CVelmoraException::kGridRead, location, Table::kGridSizeMismatch);

  long const width = kColumns + 2 * m_pad;
  auto grid = std::make_shared<std::vector<std::int16_t>>(static_cast<std::size_t>(kRows * width));
  for (long r = 0; r < kRows; ++r) {
    std::int16_t * const row = grid->data() + r * width;
    for (long c = 0; c < kColumns; ++c) {
      std::size_t const at = static_cast<std::size_t>(r * kColumns + c) * 2;
      row[m_pad + c] = static_cast<std::int16_t>((bytes[at] << 8) | bytes[at + 1]); // big-endian
    }
    // Across longitude 0: the last columns before the first, the first after the last.
    for (long c = 0; c < m_pad; ++c) {
      row[c] = row[kColumns + c];
      row[m_pad + kColumns + c] = row[m_pad + c];
    }
  }
  m_grid = std::move(grid);
}

double CEGM96::Node(long row, long column) const
{
  long const width = kColumns + 2 * m_pad;
  if (row < 0 || row >= kRows || column < 0 || column >= width)
    return 0.0;
  return (*m_grid)[static_cast<std::size_t>(row * width + column)];
}

double CEGM96::BilinearInterpolation(double column, double row) const
{
  long const c = static_cast<long>(std::floor(column)), r = static_cast<long>(std::floor(row));
  long const width = kColumns + 2 * m_pad;
  if (c < 0 || c + 1 >= width || r < 0 || r + 1 >= kRows)
    return 0.0;
  double const u = column - c, v = row - r;
  return ((1 - u) * (1 - v) * Node(r, c) + u * (1 - v) * Node(r, c + 1) + (1 - u) * v * Node(r + 1, c) +
          u * v * Node(r + 1, c + 1)) /
         kCentimetres;
}

double CEGM96::EquidistantSplineInterpolation(double column, double row, int window) const
{
  // The window's first node: centred on the point's cell, or for an odd
  // size on its nearest node.
  double const shift = window % 2 ? 0.5 : 0.0;
  long const firstColumn = static_cast<long>(std::floor(column + shift)) - (window - 1) / 2;
  long const firstRow = static_cast<long>(std::floor(row + shift)) - (window - 1) / 2;
  if (firstRow < 0 || firstRow + window > kRows)
    return BilinearInterpolation(column, row);
  constexpr int kMost = 16;
  double across[kMost], second[kMost], values[kMost];
  for (int i = 0; i < window; ++i) {
    for (int j = 0; j < window; ++j)
      values[j] = Node(firstRow + i, firstColumn + j);
    PrepareSpline(window, values, second);
    across[i] = DoSpline(window, values, second, column - firstColumn);
  }
  PrepareSpline(window, across, second);
  return DoSpline(window, across, second, row - firstRow) / kCentimetres;
}

double CEGM96::Interpolate(ML::CGeodeticPoint const & point) const
{
  if (!GetParameters().AllItemsSet())
    return 0.0;
  if (!m_grid)
    SetupInner();
  double lon = point.GetLon().GetInternal();
  double const lat = point.GetLat().GetInternal();
  if (lon < 0.0)
    lon += 360.0;
  return EquidistantSplineInterpolation(m_pad + lon * kNodesPerDegree, (-1.0 * lat + 90.0) * kNodesPerDegree,
                                        m_window);
}

} // namespace Velmora::CS::VR
