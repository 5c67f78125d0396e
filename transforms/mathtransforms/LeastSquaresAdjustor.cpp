#include <velmora/transforms/mathtransforms/LeastSquaresAdjustor.h>

#include <velmora/foundation/VelmoraException.h>

#include <cmath>

namespace Velmora::CT::MT {

using EX::CVelmoraException;

namespace {
constexpr char const * kSolveNetwork = "CLeastSquaresAdjustor::SolveNetwork";
constexpr char const * kNotPositive = "Value must be greater than zero.";
// Where the search for the smallest convergence value starts.
constexpr double kNoBestYet = 1e32;

using Owned = std::unique_ptr<CMatrix2D>;

// The one cell of rᵀ r: the sum of squares of a column vector.
Owned SumOfSquares(CMatrix2D const & column)
{
  Owned const turned(column.Transpose());
  return Owned(*turned * column);
}
} // namespace

CLeastSquaresAdjustor::CLeastSquaresAdjustor() = default;

CLeastSquaresAdjustor::CLeastSquaresAdjustor(CLeastSquaresAdjustor const & other)
  : m_unitWeight(other.m_unitWeight), m_maxIterations(other.m_maxIterations), m_threshold(other.m_threshold)
{
}

CLeastSquaresAdjustor & CLeastSquaresAdjustor::operator=(CLeastSquaresAdjustor const & other)
{
  m_unitWeight = other.m_unitWeight;
  m_maxIterations = other.m_maxIterations;
  m_threshold = other.m_threshold;
  return *this;
}

CLeastSquaresAdjustor::~CLeastSquaresAdjustor() = default;

void CLeastSquaresAdjustor::SetUnitWeight(double weight)
{
  if (!(weight > 0.0))
    throw CVelmoraException(CVelmoraException::kInvalidParameter, "CLeastSquaresAdjustor::SetUnitWeight", kNotPositive);
  m_unitWeight = weight;
}

void CLeastSquaresAdjustor::SetMaxIterations(long count)
{
  if (count <= 0)
    throw CVelmoraException(CVelmoraException::kInvalidParameter, "CLeastSquaresAdjustor::SetMaxIterations",
                            kNotPositive);
  m_maxIterations = count;
}

void CLeastSquaresAdjustor::SetConvergenceThreshold(double threshold)
{
  if (!(threshold > 0.0))
    throw CVelmoraException(CVelmoraException::kInvalidParameter, "CLeastSquaresAdjustor::SetConvergenceThreshold",
                            kNotPositive);
  m_threshold = threshold;
}

void CLeastSquaresAdjustor::CleanNetwork()
{
  m_actual.reset();
  m_estimated.reset();
  m_parameters.reset();
  m_corrections.reset();
  m_partials.reset();
  m_normalInverse.reset();
  m_residuals.reset();
  m_linearSquare.reset();
  m_nonlinearSquare.reset();
  m_aPosterioriUnitWeight = 0.0;
  m_observationCount = 0;
  m_parameterCount = 0;
  m_failed = false;
}

bool CLeastSquaresAdjustor::SolveNetwork()
{
  CleanNetwork();
  m_parameters.reset(LoadEstimatedParameters());
  m_actual.reset(LoadActualObservations());
  if (!m_actual)
    throw CVelmoraException(CVelmoraException::kNullPointer, kSolveNetwork, "Actual observation matrix is null.");
  if (!m_parameters)
    throw CVelmoraException(CVelmoraException::kNullPointer, kSolveNetwork, "Estimated parameter matrix is null.");
  if (m_actual->GetColumns() > 1)
    throw CVelmoraException(CVelmoraException::kCustom, kSolveNetwork,
                            "Actual observation matrix is not a column vector.");
  if (m_parameters->GetColumns() > 1)
    throw CVelmoraException(CVelmoraException::kCustom, kSolveNetwork,
                            "Estimated parameter matrix is not a column vector.");

  long const n = m_actual->GetRows();
  long const u = m_parameters->GetRows();
  if (n < u)
    throw CVelmoraException(CVelmoraException::kTooFewPoints, kSolveNetwork);
  m_observationCount = n;
  m_parameterCount = u;

  m_estimated.reset(ComputeEstimatedObservations(m_parameters.get()));
  double best = kNoBestYet;
  double bestWeight = m_aPosterioriUnitWeight;
  Owned bestParameters;

  for (long k = 1;; ++k) {
    // Misclosure l = f(x) - observed, and the design matrix A at x.
    Owned const l(*m_estimated - *m_actual);
    m_partials.reset(ComputePartials(m_parameters.get(), m_estimated.get()));
    Owned const At(m_partials->Transpose());
    Owned const normal(*At * *m_partials);
    m_normalInverse.reset(normal->Invert());
    // x = -(AᵀA)⁻¹ Aᵀ l
    Owned const Atl(*At * *l);
    m_corrections.reset(*m_normalInverse * *Atl);
    *m_corrections *= -1.0;

    *m_parameters += *m_corrections;
    m_estimated.reset(ComputeEstimatedObservations(m_parameters.get()));

    // What the linearised model expects to remain against what remains.
    Owned const Ax(*m_partials * *m_corrections);
    Owned const linear(*Ax + *l);
    m_residuals.reset(*m_estimated - *m_actual);
    m_linearSquare = SumOfSquares(*linear);
    m_nonlinearSquare = SumOfSquares(*m_residuals);
    double const convergence = std::fabs(m_linearSquare->GetCell(0) - m_nonlinearSquare->GetCell(0));

    bool const converged = convergence < m_threshold;
    if (!converged && k >= m_maxIterations)
      m_failed = true;
    if (n > u)
      m_aPosterioriUnitWeight = std::sqrt(m_nonlinearSquare->GetCell(0) / static_cast<double>(n - u));
    if (convergence < best && !m_failed) {
      best = convergence;
      bestWeight = m_aPosterioriUnitWeight;
      bestParameters = std::make_unique<CMatrix2D>(*m_parameters);
    }
    if (converged || m_failed)
      break;
  }

  if (m_failed && bestParameters) {
    m_parameters = std::move(bestParameters);
    m_aPosterioriUnitWeight = bestWeight;
    m_estimated.reset(ComputeEstimatedObservations(m_parameters.get()));
    m_residuals.reset(*m_estimated - *m_actual);
  }
  return !m_failed;
}

} // namespace Velmora::CT::MT
