#include <velmora/transforms/mathtransforms/Polynomial2D.h>

#include <velmora/foundation/VelmoraException.h>
#include <velmora/transforms/mathtransforms/MathTransformTable_p.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace Velmora::CT::MT {

using EX::CVelmoraException;

namespace {
// Compressed coordinates span this much along the longer side.
constexpr double kCompressedSpan = 100.0;
// Points closer together than this along both axes have no usable extent.
constexpr double kMinimumExtent = 1e-7;
// Starting bounds of the extent search.
constexpr double kFarBound = 1e32;
// Passes of the one-coefficient fits that give the first estimates.
constexpr int kAffinePasses = 5;
constexpr long kAffineCoefficients = 6;
// Terms of degree 0 and 1: 1, u, v.
constexpr long kLinearTerms = 3;

using Owned = std::unique_ptr<CMatrix2D>;

bool Named(unsigned short const * name, char const * literal) { return name && CString(name) == QLatin1String(literal); }

struct Extent
{
  double minX = kFarBound, maxX = -kFarBound, minY = kFarBound, maxY = -kFarBound;

  void Add(double x, double y)
  {
    minX = std::min(minX, x);
    maxX = std::max(maxX, x);
    minY = std::min(minY, y);
    maxY = std::max(maxY, y);
  }
  double Larger() const { return std::max(maxX - minX, maxY - minY); }
  double CentreX() const { return (maxX + minX) / 2.0; }
  double CentreY() const { return (maxY + minY) / 2.0; }
};
} // namespace

CLinearPolynomial2D::CLinearPolynomial2D() : CLinearPolynomial2D(kType) {}

CLinearPolynomial2D::CLinearPolynomial2D(Type type)
  : CComputedMathTransform(type), m_degree(Table::DegreeOf(type))
{
}

// Layout of the coefficient column

long CLinearPolynomial2D::XIndex(long term)
{
  if (term < kLinearTerms)
    return term;
  // Degree d starts at term d(d+1)/2 and at row d(d+1), x′ terms before y′ terms.
  long d = 2;
  while ((d + 1) * (d + 2) / 2 <= term)
    ++d;
  return d * (d + 1) + (term - d * (d + 1) / 2);
}

long CLinearPolynomial2D::YIndex(long term)
{
  if (term < kLinearTerms)
    return term + kLinearTerms;
  long d = 2;
  while ((d + 1) * (d + 2) / 2 <= term)
    ++d;
  return d * (d + 1) + (d + 1) + (term - d * (d + 1) / 2);
}

std::vector<double> CLinearPolynomial2D::Terms(double u, double v) const
{
  std::vector<double> terms;
  terms.reserve(static_cast<size_t>(TermCount(m_degree)));
  for (int d = 0; d <= m_degree; ++d)
    for (int j = 0; j <= d; ++j)
      terms.push_back(std::pow(u, d - j) * std::pow(v, j));
  return terms;
}

void CLinearPolynomial2D::Compress(double x, double y, double & u, double & v) const
{
  u = (x + m_xShiftIn) * m_scaleIn;
  v = (y + m_yShiftIn) * m_scaleIn;
}

// Evaluation

void CLinearPolynomial2D::AddDegree(CMatrix2D const * c, int degree, double u, double v, double & x, double & y)
{
  long const start = static_cast<long>(degree) * (degree + 1);
  for (int j = 0; j <= degree; ++j) {
    double const term = std::pow(u, degree - j) * std::pow(v, j);
    x += c->GetCell(start + j) * term;
    y += c->GetCell(start + degree + 1 + j) * term;
  }
}

void CLinearPolynomial2D::TransformInternal(CMatrix2D const * c, double & x, double & y, double u, double v) const
{
  x += c->GetCell(0) + c->GetCell(1) * u + c->GetCell(2) * v;
  y += c->GetCell(3) + c->GetCell(4) * u + c->GetCell(5) * v;
}

void CQuadraticPolynomial2D::TransformInternal(CMatrix2D const * c, double & x, double & y, double u, double v) const
{
  CLinearPolynomial2D::TransformInternal(c, x, y, u, v);
  if (c->GetRows() > 2 * TermCount(1))
    AddDegree(c, 2, u, v, x, y);
}

void CCubicPolynomial2D::TransformInternal(CMatrix2D const * c, double & x, double & y, double u, double v) const
{
  CQuadraticPolynomial2D::TransformInternal(c, x, y, u, v);
  if (c->GetRows() > 2 * TermCount(2))
    AddDegree(c, 3, u, v, x, y);
}

void CQuarticPolynomial2D::TransformInternal(CMatrix2D const * c, double & x, double & y, double u, double v) const
{
  CCubicPolynomial2D::TransformInternal(c, x, y, u, v);
  if (c->GetRows() > 2 * TermCount(3))
    AddDegree(c, 4, u, v, x, y);
}

void CQuinticPolynomial2D::TransformInternal(CMatrix2D const * c, double & x, double & y, double u, double v) const
{
  CQuarticPolynomial2D::TransformInternal(c, x, y, u, v);
  if (c->GetRows() > 2 * TermCount(4))
    AddDegree(c, 5, u, v, x, y);
}

bool CLinearPolynomial2D::Transform(double & x, double & y) const
{
  if (!GetParameters().AllItemsSet() || m_coefficients.GetRows() != GetCoefficientCount())
    throw CVelmoraException(CVelmoraException::kItemsNotSet, "CLinearPolynomial2D::Transform");
  double u = 0.0, v = 0.0;
  Compress(x, y, u, v);
  double p = 0.0, q = 0.0;
  TransformInternal(&m_coefficients, p, q, u, v);
  x = p * m_scaleOut + m_xShiftOut;
  y = q * m_scaleOut + m_yShiftOut;
  return true;
}

// Parameters

void CLinearPolynomial2D::CopyParametersToMatrix(CMatrix2D * matrix) const
{
  std::vector<CString> const names = Table::CoefficientNames(m_degree);
  CParameterCollection const & parameters = GetParameters();
  for (size_t i = 0; i < names.size(); ++i)
    matrix->SetCell(static_cast<long>(i), parameters.GetDouble(names[i]));
}

void CLinearPolynomial2D::CopyMatrixToParameters(CMatrix2D const * matrix)
{
  std::vector<CString> const names = Table::CoefficientNames(m_degree);
  for (size_t i = 0; i < names.size(); ++i)
    WriteSolvedParameter(names[i], matrix->GetCell(static_cast<long>(i)));
}

// Reading goes through the const handle, so that a stored body stays shared.
void CLinearPolynomial2D::ReadSettings()
{
  CParameterCollection const & parameters = std::as_const(*this).GetParameters();
  CString const iterations(Table::kMaxIterations), threshold(Table::kConvergenceThreshold),
    direct(Table::kDirectSolution);
  // A stored body need not hold the optional settings at all.
  auto const given = [&](CString const & name) { return parameters.Exists(name) && parameters.IsItemSet(name); };
  if (given(iterations) && parameters.GetLong(iterations) > 0)
    SetMaxIterations(parameters.GetLong(iterations));
  if (given(threshold) && parameters.GetDouble(threshold) > 0.0)
    SetConvergenceThreshold(parameters.GetDouble(threshold));
  if (given(direct))
    m_direct = parameters.GetLong(direct) > 0;
}

void CLinearPolynomial2D::Rebuild()
{
  CParameterCollection const & parameters = std::as_const(*this).GetParameters();
  ReadSettings();
  // A body taken from another type, or read from a file that lacks a term,
  // leaves the transform unable to compute rather than half built.
  std::vector<CString> const names = Table::CoefficientNames(m_degree);
  bool const complete = std::all_of(names.begin(), names.end(), [&](CString const & n) { return parameters.Exists(n); });
  if (!complete || !parameters.AllItemsSet() || parameters.Count() <= 5) {
    m_coefficients = CMatrix2D(0, 1);
    return;
  }
  m_coefficients = CMatrix2D(GetCoefficientCount(), 1);
  CopyParametersToMatrix(&m_coefficients);
  m_scaleIn = parameters.GetDouble(CString(Table::kScaleIn));
  m_xShiftIn = parameters.GetDouble(CString(Table::kXShiftIn));
  m_yShiftIn = parameters.GetDouble(CString(Table::kYShiftIn));
  m_scaleOut = parameters.GetDouble(CString(Table::kScaleOut));
  m_xShiftOut = parameters.GetDouble(CString(Table::kXShiftOut));
  m_yShiftOut = parameters.GetDouble(CString(Table::kYShiftOut));
}

void CLinearPolynomial2D::OnChange(unsigned short const * name)
{
  if (IsWritingSolution())
    return;
  CParameterCollection const & parameters = std::as_const(*this).GetParameters();
  if (Named(name, Table::kMaxIterations)) {
    SetMaxIterations(parameters.GetLong(CString(name)));
    return;
  }
  if (Named(name, Table::kConvergenceThreshold)) {
    SetConvergenceThreshold(parameters.GetDouble(CString(name)));
    return;
  }
  if (Named(name, Table::kDirectSolution)) {
    m_direct = parameters.GetLong(CString(name)) > 0;
    return;
  }
  m_solved = false;
  Rebuild();
}

CMathTransform & CLinearPolynomial2D::operator=(CMathTransform const & other)
{
  if (&other == this)
    return *this;
  CComputedMathTransform::operator=(other);
  if (auto const * adjustor = dynamic_cast<CLeastSquaresAdjustor const *>(&other))
    CLeastSquaresAdjustor::operator=(*adjustor);
  if (auto const * polynomial = dynamic_cast<CLinearPolynomial2D const *>(&other))
    m_direct = polynomial->m_direct;
  return *this;
}

// Solving

bool CLinearPolynomial2D::ComputeDataCompression()
{
  Extent source, target;
  for (CPointPair const & pair : m_pairs) {
    source.Add(pair.sourceX, pair.sourceY);
    target.Add(pair.targetX, pair.targetY);
  }
  double const sourceExtent = source.Larger();
  double const targetExtent = target.Larger();
  if (sourceExtent < kMinimumExtent || targetExtent < kMinimumExtent)
    return false;
  // Inputs are shifted then scaled up; targets come back scaled then shifted.
  m_xShiftIn = -source.CentreX();
  m_yShiftIn = -source.CentreY();
  m_scaleIn = kCompressedSpan / sourceExtent;
  m_xShiftOut = target.CentreX();
  m_yShiftOut = target.CentreY();
  m_scaleOut = targetExtent / kCompressedSpan;
  WriteSolvedParameter(CString(Table::kScaleIn), m_scaleIn);
  WriteSolvedParameter(CString(Table::kXShiftIn), m_xShiftIn);
  WriteSolvedParameter(CString(Table::kYShiftIn), m_yShiftIn);
  WriteSolvedParameter(CString(Table::kScaleOut), m_scaleOut);
  WriteSolvedParameter(CString(Table::kXShiftOut), m_xShiftOut);
  WriteSolvedParameter(CString(Table::kYShiftOut), m_yShiftOut);
  return true;
}

bool CLinearPolynomial2D::SolveDirect()
{
  // N = Σ t tᵀ over the pairs, with t the terms at the compressed source; the
  // x′ and y′ coefficients share N and differ in the right-hand side Σ t·target.
  long const count = TermCount(m_degree);
  CMatrix2D normal(count, count), rightX(count, 1), rightY(count, 1);
  for (CPointPair const & pair : m_pairs) {
    double u = 0.0, v = 0.0;
    Compress(pair.sourceX, pair.sourceY, u, v);
    std::vector<double> const t = Terms(u, v);
    double const xt = (pair.targetX - m_xShiftOut) / m_scaleOut;
    double const yt = (pair.targetY - m_yShiftOut) / m_scaleOut;
    for (long i = 0; i < count; ++i) {
      double const ti = t[static_cast<size_t>(i)];
      for (long j = 0; j < count; ++j)
        normal.AddToCell(i, j, ti * t[static_cast<size_t>(j)]);
      rightX.AddToCell(i, ti * xt);
      rightY.AddToCell(i, ti * yt);
    }
  }
  normal.InvertSelf();
  Owned const cx(normal * rightX);
  Owned const cy(normal * rightY);
  m_coefficients = CMatrix2D(GetCoefficientCount(), 1);
  bool finite = true;
  for (long term = 0; term < count; ++term) {
    double const a = cx->GetCell(term), b = cy->GetCell(term);
    finite = finite && std::isfinite(a) && std::isfinite(b);
    m_coefficients.SetCell(XIndex(term), a);
    m_coefficients.SetCell(YIndex(term), b);
  }
  return finite;
}

bool CLinearPolynomial2D::Solve()
{
  m_solved = false;
  long const required = RequiredPoints(GetType());
  if (GetPointCount() < required) {
    CString location = GetTypeName();
    location.remove(QChar(' '));
    location += CString("::Solve");
    CString details(required);
    details += CString(" required");
    throw CVelmoraException(CVelmoraException::kTooFewPoints, location, details);
  }
  if (!ComputeDataCompression())
    return false;
  bool solved = false;
  if (m_direct) {
    solved = SolveDirect();
  } else {
    solved = SolveNetwork();
    m_coefficients = *GetEstimatedParameters();
  }
  CopyMatrixToParameters(&m_coefficients);
  m_solved = solved;
  return solved;
}

// The network of the iterative solution

CMatrix2D * CLinearPolynomial2D::LoadEstimatedParameters() { return GetInitialEstimates(); }

CMatrix2D * CLinearPolynomial2D::LoadActualObservations()
{
  auto observed = std::make_unique<CMatrix2D>(2 * GetPointCount(), 1);
  long row = 0;
  for (CPointPair const & pair : m_pairs) {
    observed->SetCell(row++, (pair.targetX - m_xShiftOut) / m_scaleOut);
    observed->SetCell(row++, (pair.targetY - m_yShiftOut) / m_scaleOut);
  }
  return observed.release();
}

CMatrix2D * CLinearPolynomial2D::ComputeEstimatedObservations(CMatrix2D * parameters)
{
  auto estimated = std::make_unique<CMatrix2D>(2 * GetPointCount(), 1);
  long row = 0;
  for (CPointPair const & pair : m_pairs) {
    double u = 0.0, v = 0.0, p = 0.0, q = 0.0;
    Compress(pair.sourceX, pair.sourceY, u, v);
    TransformInternal(parameters, p, q, u, v);
    estimated->SetCell(row++, p);
    estimated->SetCell(row++, q);
  }
  return estimated.release();
}

CMatrix2D * CLinearPolynomial2D::ComputePartials(CMatrix2D *, CMatrix2D const *)
{
  // Linear in the coefficients: each observation's derivative is a term.
  long const count = TermCount(m_degree);
  auto partials = std::make_unique<CMatrix2D>(2 * GetPointCount(), GetCoefficientCount());
  long row = 0;
  for (CPointPair const & pair : m_pairs) {
    double u = 0.0, v = 0.0;
    Compress(pair.sourceX, pair.sourceY, u, v);
    std::vector<double> const t = Terms(u, v);
    for (long term = 0; term < count; ++term) {
      partials->SetCell(row, XIndex(term), t[static_cast<size_t>(term)]);
      partials->SetCell(row + 1, YIndex(term), t[static_cast<size_t>(term)]);
    }
    row += 2;
  }
  return partials.release();
}

CMatrix2D * CLinearPolynomial2D::GetInitialEstimates()
{
  m_coefficients = CMatrix2D(GetCoefficientCount(), 1);
  Owned const residuals(LoadActualObservations());
  AdjustAffineCoefficients(residuals.get());
  return new CMatrix2D(m_coefficients);
}

void CLinearPolynomial2D::AdjustCoefficient(long index, CMatrix2D * residuals)
{
  // Coefficients 0..2 fit x′ (even rows), 3..5 fit y′ (odd rows), on the
  // terms 1, u, v in turn.
  long const offset = index < kLinearTerms ? 0 : 1;
  long const term = index % kLinearTerms;
  double sumBr = 0.0, sumBb = 0.0;
  long row = offset;
  for (CPointPair const & pair : m_pairs) {
    double u = 0.0, v = 0.0;
    Compress(pair.sourceX, pair.sourceY, u, v);
    double const b = term == 0 ? 1.0 : (term == 1 ? u : v);
    sumBr += b * residuals->GetCell(row);
    sumBb += b * b;
    row += 2;
  }
  if (sumBb == 0.0)
    return;
  double const c = sumBr / sumBb;
  // Later passes fit what the earlier ones left, so the shares add up.
  m_coefficients.AddToCell(index, c);
  row = offset;
  for (CPointPair const & pair : m_pairs) {
    double u = 0.0, v = 0.0;
    Compress(pair.sourceX, pair.sourceY, u, v);
    double const b = term == 0 ? 1.0 : (term == 1 ? u : v);
    residuals->SubtractFromCell(row, b * c);
    row += 2;
  }
}

void CLinearPolynomial2D::AdjustAffineCoefficients(CMatrix2D * residuals)
{
  for (int pass = 0; pass < kAffinePasses; ++pass)
    for (long index = 0; index < kAffineCoefficients; ++index)
      AdjustCoefficient(index, residuals);
}

} // namespace Velmora::CT::MT
