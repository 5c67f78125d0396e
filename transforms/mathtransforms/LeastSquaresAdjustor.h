#pragma once
// An iterative least-squares adjustment of a network of observations
// (Gauss-Newton on the normal equations). A subclass says what is observed,
// how the observations follow from the parameters and what the partial
// derivatives are; SolveNetwork does the rest.
#include <velmora/transforms/mathtransforms/Matrix2D.h>

#include <memory>

namespace Velmora::CT::MT {

class VELMORA_API CLeastSquaresAdjustor
{
public:
  CLeastSquaresAdjustor();
  // A copy takes the settings; the working matrices of a solution stay behind.
  CLeastSquaresAdjustor(CLeastSquaresAdjustor const & other);
  CLeastSquaresAdjustor & operator=(CLeastSquaresAdjustor const & other);

  // A new column matrix of the first estimates of the parameters.
  virtual CMatrix2D * LoadEstimatedParameters() = 0;
  // A new column matrix of the observations.
  virtual CMatrix2D * LoadActualObservations() = 0;
  // A new column matrix of the observations that the parameters predict.
  virtual CMatrix2D * ComputeEstimatedObservations(CMatrix2D * parameters) = 0;
  // A new observations-by-parameters matrix of the partial derivatives at the
  // parameters; the predicted observations at them come along for models
  // that can reuse them.
  virtual CMatrix2D * ComputePartials(CMatrix2D * parameters, CMatrix2D const * estimatedObservations) = 0;

  virtual ~CLeastSquaresAdjustor();

  virtual long GetMaxIterations() const { return m_maxIterations; }
  // Code 15 for a value that is not positive; the old value stays.
  virtual void SetMaxIterations(long count);
  virtual double GetConvergenceThreshold() const { return m_threshold; }
  virtual void SetConvergenceThreshold(double threshold);

  // Back to clean: no working matrices, counts and flag zero, a posteriori weight 0.0.
  virtual void CleanNetwork();
  // True when the iteration converged; false when it was cut off at the
  // maximum, with the best parameters seen kept. Codes 55, 54 and 49 for an
  // unusable network.
  virtual bool SolveNetwork();

  double GetUnitWeight() const { return m_unitWeight; }
  void SetUnitWeight(double weight);
  double GetAPosterioriUnitWeight() const { return m_aPosterioriUnitWeight; }
  long GetObservationCount() const { return m_observationCount; }
  long GetParameterCount() const { return m_parameterCount; }
  // Whether the last solution was cut off before it converged.
  bool GetNetworkFailed() const { return m_failed; }

  // The results of the last solution, still owned here; null while clean.
  CMatrix2D const * GetEstimatedParameters() const { return m_parameters.get(); }
  CMatrix2D const * GetNonlinearResiduals() const { return m_residuals.get(); }
  CMatrix2D const * GetNormalInverse() const { return m_normalInverse.get(); }

private:
  double m_unitWeight = 1.0;
  double m_aPosterioriUnitWeight = 1.0;
  long m_maxIterations = 50;
  double m_threshold = 1e-6;
  long m_observationCount = 0;
  long m_parameterCount = 0;

  std::unique_ptr<CMatrix2D> m_actual;
  std::unique_ptr<CMatrix2D> m_estimated;
  std::unique_ptr<CMatrix2D> m_parameters;
  std::unique_ptr<CMatrix2D> m_corrections;
  std::unique_ptr<CMatrix2D> m_partials;
  std::unique_ptr<CMatrix2D> m_normalInverse;
  std::unique_ptr<CMatrix2D> m_residuals;
  std::unique_ptr<CMatrix2D> m_linearSquare;
  std::unique_ptr<CMatrix2D> m_nonlinearSquare;
  bool m_failed = false;
};

} // namespace Velmora::CT::MT
