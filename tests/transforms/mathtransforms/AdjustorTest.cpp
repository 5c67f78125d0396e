// The least-squares adjustor on a small nonlinear model, y = a·exp(b·t):
// convergence to the generating values, the a posteriori weight against a
// hand-computed one, the cut-off ending, and the failures of the settings
// and of an unusable network.
#include <velmora/transforms/mathtransforms/LeastSquaresAdjustor.h>

#include <gtest/gtest.h>

#include "../../support/TestSupport.h"

#include <cmath>
#include <memory>
#include <vector>

using namespace Velmora;
using namespace Velmora::CT::MT;
using namespace VelmoraTest;

namespace {

class ExponentialFit : public CLeastSquaresAdjustor
{
public:
  std::vector<double> t, y;
  double a0 = 1.0, b0 = 0.1;
  // Ways to hand the network a bad matrix.
  bool nullParameters = false, nullObservations = false, wideParameters = false, wideObservations = false;

  CMatrix2D * LoadEstimatedParameters() override
  {
    if (nullParameters)
      return nullptr;
    auto * p = new CMatrix2D(2, wideParameters ? 2 : 1);
    p->SetCell(0, 0, a0);
    p->SetCell(1, 0, b0);
    return p;
  }
  CMatrix2D * LoadActualObservations() override
  {
    if (nullObservations)
      return nullptr;
    auto * o = new CMatrix2D(static_cast<long>(y.size()), wideObservations ? 2 : 1);
    for (size_t i = 0; i < y.size(); ++i)
      o->SetCell(static_cast<long>(i), 0, y[i]);
    return o;
  }
  CMatrix2D * ComputeEstimatedObservations(CMatrix2D * p) override
  {
    auto * e = new CMatrix2D(static_cast<long>(t.size()), 1);
    for (size_t i = 0; i < t.size(); ++i)
      e->SetCell(static_cast<long>(i), p->GetCell(0) * std::exp(p->GetCell(1) * t[i]));
    return e;
  }
  CMatrix2D * ComputePartials(CMatrix2D * p, CMatrix2D const *) override
  {
    auto * d = new CMatrix2D(static_cast<long>(t.size()), 2);
    for (size_t i = 0; i < t.size(); ++i) {
      double const g = std::exp(p->GetCell(1) * t[i]);
      d->SetCell(static_cast<long>(i), 0, g);
      d->SetCell(static_cast<long>(i), 1, p->GetCell(0) * t[i] * g);
    }
    return d;
  }
};

ExponentialFit Exact(double a, double b, int n)
{
  ExponentialFit fit;
  for (int i = 0; i < n; ++i) {
    fit.t.push_back(0.5 * i);
    fit.y.push_back(a * std::exp(b * 0.5 * i));
  }
  return fit;
}

TEST(Adjustor, DefaultsAndSettingFailures)
{
  ExponentialFit fit;
  EXPECT_EQ(fit.GetUnitWeight(), 1.0);
  EXPECT_EQ(fit.GetAPosterioriUnitWeight(), 1.0);
  EXPECT_EQ(fit.GetMaxIterations(), 50);
  EXPECT_EQ(fit.GetConvergenceThreshold(), 1e-6);
  EXPECT_EQ(fit.GetObservationCount(), 0);
  EXPECT_EQ(fit.GetNonlinearResiduals(), nullptr);

  char const * details = "Value must be greater than zero.";
  ExpectFailures({
    {"iterations", [&] { fit.SetMaxIterations(0); }, 15, "CLeastSquaresAdjustor::SetMaxIterations", details},
    {"threshold", [&] { fit.SetConvergenceThreshold(-1e-3); }, 15, "CLeastSquaresAdjustor::SetConvergenceThreshold",
     details},
    {"weight", [&] { fit.SetUnitWeight(0.0); }, 15, "CLeastSquaresAdjustor::SetUnitWeight", details},
  });
  // The old values stay.
  EXPECT_EQ(fit.GetMaxIterations(), 50);
  EXPECT_EQ(fit.GetConvergenceThreshold(), 1e-6);
  EXPECT_EQ(fit.GetUnitWeight(), 1.0);

  fit.SetMaxIterations(7);
  fit.SetConvergenceThreshold(1e-9);
  ExponentialFit copy(fit);
  EXPECT_EQ(copy.GetMaxIterations(), 7);
  EXPECT_EQ(copy.GetConvergenceThreshold(), 1e-9);
}

TEST(Adjustor, ConvergesOnExactData)
{
  ExponentialFit fit = Exact(2.5, -0.3, 8);
  ASSERT_TRUE(fit.SolveNetwork());
  EXPECT_FALSE(fit.GetNetworkFailed());
  EXPECT_EQ(fit.GetObservationCount(), 8);
  EXPECT_EQ(fit.GetParameterCount(), 2);
  // The test compares sums of squares, so the default threshold stops at a
  // few parts in a million of the parameters.
  EXPECT_NEAR(fit.GetEstimatedParameters()->GetCell(0), 2.5, 1e-5);
  EXPECT_NEAR(fit.GetEstimatedParameters()->GetCell(1), -0.3, 1e-5);

  fit.SetConvergenceThreshold(1e-24);
  ASSERT_TRUE(fit.SolveNetwork());
  CMatrix2D const * p = fit.GetEstimatedParameters();
  EXPECT_NEAR(p->GetCell(0), 2.5, 1e-12);
  EXPECT_NEAR(p->GetCell(1), -0.3, 1e-12);
  CMatrix2D const * r = fit.GetNonlinearResiduals();
  ASSERT_NE(r, nullptr);
  for (long i = 0; i < r->GetRows(); ++i)
    EXPECT_NEAR(r->GetCell(i), 0.0, 1e-12);
  EXPECT_NEAR(fit.GetAPosterioriUnitWeight(), 0.0, 1e-12);

  fit.CleanNetwork();
  EXPECT_EQ(fit.GetNonlinearResiduals(), nullptr);
  EXPECT_EQ(fit.GetAPosterioriUnitWeight(), 0.0);
  EXPECT_EQ(fit.GetObservationCount(), 0);
}

TEST(Adjustor, APosterioriWeightOfNoisyData)
{
  ExponentialFit fit = Exact(2.0, 0.2, 6);
  double const noise[] = {0.01, -0.02, 0.015, 0.0, -0.01, 0.012};
  for (size_t i = 0; i < fit.y.size(); ++i)
    fit.y[i] += noise[i];
  ASSERT_TRUE(fit.SolveNetwork());
  CMatrix2D const * r = fit.GetNonlinearResiduals();
  double sum = 0.0;
  for (long i = 0; i < r->GetRows(); ++i)
    sum += r->GetCell(i) * r->GetCell(i);
  EXPECT_GT(sum, 0.0);
  EXPECT_NEAR(fit.GetAPosterioriUnitWeight(), std::sqrt(sum / (6 - 2)), 1e-12);
  EXPECT_NEAR(fit.GetEstimatedParameters()->GetCell(0), 2.0, 0.05);
}

TEST(Adjustor, CutOffKeepsTheBestAndReturnsFalse)
{
  ExponentialFit fit = Exact(2.5, -0.3, 8);
  fit.a0 = 1.0;
  fit.b0 = 0.5; // far away: one step cannot converge
  fit.SetMaxIterations(1);
  EXPECT_FALSE(fit.SolveNetwork());
  EXPECT_TRUE(fit.GetNetworkFailed());
  ASSERT_NE(fit.GetEstimatedParameters(), nullptr);

  fit.SetMaxIterations(3);
  EXPECT_FALSE(fit.SolveNetwork());
  // The parameters kept are from an earlier step than the last, and finite.
  EXPECT_TRUE(std::isfinite(fit.GetEstimatedParameters()->GetCell(0)));

  fit.SetMaxIterations(50);
  EXPECT_TRUE(fit.SolveNetwork());
  EXPECT_NEAR(fit.GetEstimatedParameters()->GetCell(1), -0.3, 1e-5);
}

TEST(Adjustor, AsManyObservationsAsParameters)
{
  // n equal to u: solved, and no a posteriori weight is computed.
  ExponentialFit fit = Exact(1.5, 0.4, 2);
  EXPECT_TRUE(fit.SolveNetwork());
  EXPECT_EQ(fit.GetAPosterioriUnitWeight(), 0.0);
  EXPECT_NEAR(fit.GetEstimatedParameters()->GetCell(0), 1.5, 1e-5);
}

TEST(Adjustor, UnusableNetworks)
{
  char const * location = "CLeastSquaresAdjustor::SolveNetwork";
  auto with = [](auto change) {
    return [change] {
      ExponentialFit fit = Exact(1.0, 1.0, 4);
      change(fit);
      fit.SolveNetwork();
    };
  };
  ExpectFailures({
    {"null observations", with([](ExponentialFit & f) { f.nullObservations = true; }), 55, location,
     "Actual observation matrix is null."},
    {"null parameters", with([](ExponentialFit & f) { f.nullParameters = true; }), 55, location,
     "Estimated parameter matrix is null."},
    {"wide observations", with([](ExponentialFit & f) { f.wideObservations = true; }), 54, location,
     "Actual observation matrix is not a column vector."},
    {"wide parameters", with([](ExponentialFit & f) { f.wideParameters = true; }), 54, location,
     "Estimated parameter matrix is not a column vector."},
    {"too few", with([](ExponentialFit & f) {
       f.t.resize(1);
       f.y.resize(1);
     }),
     49, location, ""},
  });
}

} // namespace
