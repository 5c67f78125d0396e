#include <velmora/transforms/mathtransforms/OldSchool.h>

#include <velmora/foundation/VelmoraException.h>

#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

namespace Velmora::CT::MT {

using EX::CVelmoraException;

namespace {
// Each pass of polyfix improves every coefficient once; five were always run.
constexpr int kPasses = 5;
constexpr long kDistinctPairs = 3;

// Names of x′ and y′ coefficients in basis order 1, x, y, xy, x², y².
constexpr char const * kXNames[] = {"dx", "dxx", "dxy", "dxxy", "dxxx", "dxyy"};
constexpr char const * kYNames[] = {"dy", "dyx", "dyy", "dyyx", "dyxx", "dyyy"};

int ColumnsOf(int type)
{
  switch (type) {
  case CMathTransform::kAffine: return 3;
  case CMathTransform::kFirstOrderPolynomial: return 4;
  case CMathTransform::kSecondOrderPolynomial: return 6;
  default: return 0;
  }
}
} // namespace

CMathTransformOldSchool::CMathTransformOldSchool(Type type) : CComputedMathTransform(type) {}

int CMathTransformOldSchool::Columns() const { return ColumnsOf(GetType()); }

char const * CMathTransformOldSchool::XName(int type, int column)
{
  return column >= 0 && column < ColumnsOf(type) ? kXNames[column] : nullptr;
}

char const * CMathTransformOldSchool::YName(int type, int column)
{
  return column >= 0 && column < ColumnsOf(type) ? kYNames[column] : nullptr;
}

double CMathTransformOldSchool::Basis(int column, double x, double y)
{
  switch (column) {
  case kOne: return 1.0;
  case kX: return x;
  case kY: return y;
  case kXY: return x * y;
  case kXX: return x * x;
  case kYY: return y * y;
  default: return 0.0;
  }
}

// Reads through the const handle, so that a stored body stays shared.
void CMathTransformOldSchool::Rebuild()
{
  CParameterCollection const & parameters = std::as_const(*this).GetParameters();
  int const type = GetType();
  m_ready = parameters.AllItemsSet();
  // A body taken from another type may lack some of this class's coefficients.
  for (int k = 0; k < Columns() && m_ready; ++k)
    m_ready = parameters.Exists(CString(XName(type, k))) && parameters.Exists(CString(YName(type, k)));
  m_cx.fill(0.0);
  m_cy.fill(0.0);
  if (!m_ready)
    return;
  for (int k = 0; k < Columns(); ++k) {
    m_cx[static_cast<size_t>(k)] = parameters.GetDouble(CString(XName(type, k)));
    m_cy[static_cast<size_t>(k)] = parameters.GetDouble(CString(YName(type, k)));
  }
}

void CMathTransformOldSchool::OnChange(unsigned short const *)
{
  if (IsWritingSolution())
    return;
  m_solved = false;
  Rebuild();
}

bool CMathTransformOldSchool::Transform(double & x, double & y) const
{
  if (!m_ready || !GetParameters().AllItemsSet())
    return false;
  double xOut = 0.0, yOut = 0.0;
  for (int k = 0; k < Columns(); ++k) {
    double const b = Basis(k, x, y);
    xOut += m_cx[static_cast<size_t>(k)] * b;
    yOut += m_cy[static_cast<size_t>(k)] * b;
  }
  x = xOut;
  y = yOut;
  return true;
}

void CMathTransformOldSchool::polyfics(long n, double const * x, double const * y, double * coefficients,
                                       double * residuals, int columns)
{
  for (int k = 0; k < columns; ++k) {
    double dot = 0.0, norm = 0.0;
    for (long i = 0; i < n; ++i) {
      double const b = Basis(k, x[i], y[i]);
      dot += b * residuals[i];
      norm += b * b;
    }
    // A column that is zero at every point (all sources on an axis) carries nothing.
    if (norm == 0.0)
      continue;
    double const q = dot / norm;
    coefficients[k] -= q;
    for (long i = 0; i < n; ++i)
      residuals[i] -= Basis(k, x[i], y[i]) * q;
  }
}

void CMathTransformOldSchool::polyfix(long n, double const * x, double const * y, double * cx, double * cy, double * rx,
                                      double * ry, int columns)
{
  for (int pass = 0; pass < kPasses; ++pass) {
    polyfics(n, x, y, cx, rx, columns);
    polyfics(n, x, y, cy, ry, columns);
  }
}

void CMathTransformOldSchool::LeastSquaresApproximation(long n, double const * source, double const * target)
{
  size_t const count = static_cast<size_t>(n);
  std::vector<double> x(count), y(count), rx(count), ry(count);
  for (size_t i = 0; i < count; ++i) {
    x[i] = source[2 * i];
    y[i] = source[2 * i + 1];
    // Model minus target, with every coefficient still zero.
    rx[i] = -target[2 * i];
    ry[i] = -target[2 * i + 1];
  }
  std::array<double, kMaxColumns> cx{}, cy{};
  int const columns = Columns();
  polyfix(n, x.data(), y.data(), cx.data(), cy.data(), rx.data(), ry.data(), columns);
  int const type = GetType();
  for (int k = 0; k < columns; ++k) {
    WriteSolvedParameter(CString(XName(type, k)), cx[static_cast<size_t>(k)]);
    WriteSolvedParameter(CString(YName(type, k)), cy[static_cast<size_t>(k)]);
  }
  Rebuild();
}

bool CMathTransformOldSchool::Solve()
{
  m_solved = false;
  if (GetPointCount() < kDistinctPairs)
    throw CVelmoraException(CVelmoraException::kTooFewPoints, "MathTransformOldSchool::Solve", "3 required");

  // Sorted, so that repeats lie together and the choice does not depend on
  // the order the pairs came in.
  std::vector<CPointPair> sorted(m_pairs);
  std::sort(sorted.begin(), sorted.end(), [](CPointPair const & a, CPointPair const & b) {
    return std::tie(a.sourceX, a.sourceY, a.targetX, a.targetY) < std::tie(b.sourceX, b.sourceY, b.targetX, b.targetY);
  });
  // A pair at a source already chosen adds nothing to the fit's geometry.
  std::vector<CPointPair const *> chosen{&sorted.front()};
  for (size_t i = 1; i < sorted.size() && static_cast<long>(chosen.size()) < kDistinctPairs; ++i) {
    bool const repeat = std::any_of(chosen.begin(), chosen.end(), [&](CPointPair const * c) {
      return c->sourceX == sorted[i].sourceX && c->sourceY == sorted[i].sourceY;
    });
    if (!repeat)
      chosen.push_back(&sorted[i]);
  }
  if (static_cast<long>(chosen.size()) < kDistinctPairs)
    return false;

  long const n = GetPointCount();
  std::vector<double> source(2 * sorted.size()), target(2 * sorted.size());
  for (size_t i = 0; i < sorted.size(); ++i) {
    source[2 * i] = sorted[i].sourceX;
    source[2 * i + 1] = sorted[i].sourceY;
    target[2 * i] = sorted[i].targetX;
    target[2 * i + 1] = sorted[i].targetY;
  }
  LeastSquaresApproximation(n, source.data(), target.data());
  m_solved = true;
  return true;
}

} // namespace Velmora::CT::MT
