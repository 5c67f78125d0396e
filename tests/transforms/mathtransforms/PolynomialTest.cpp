// The compressed bivariate polynomials: a polynomial of each degree is
// recovered from its own points by both solutions, the pair counts each
// degree needs, the compression's edge cases, coefficients given directly,
// and what unset parameters raise.
#include <velmora/transforms/mathtransforms/Polynomial2D.h>

#include <gtest/gtest.h>

#include "../../support/TestSupport.h"

#include <cmath>
#include <memory>
#include <vector>

using namespace Velmora;
using namespace Velmora::CT::MT;
using namespace VelmoraTest;

namespace {

std::unique_ptr<CLinearPolynomial2D> Make(int type)
{
  return std::unique_ptr<CLinearPolynomial2D>(
    static_cast<CLinearPolynomial2D *>(CMathTransformFactory::CreateMathTransform(type)));
}

int DegreeOf(int type) { return type - CMathTransform::kLinearPolynomial2D + 1; }

// A smooth map of local metres to a projected grid, a polynomial of the given
// degree in the source: every coefficient of degree k is of size 1/k! on
// coordinates in kilometres about a centre, so that each power matters.
struct Known
{
  int degree;
  void operator()(double x, double y, double & tx, double & ty) const
  {
    double const s = (x - 2000.0) / 1000.0, t = (y - 5750.0) / 1000.0;
    double px = 0.0, py = 0.0, factorial = 1.0;
    for (int d = 0; d <= degree; ++d) {
      if (d > 0)
        factorial *= d;
      for (int j = 0; j <= d; ++j) {
        double const term = std::pow(s, d - j) * std::pow(t, j) / factorial;
        px += (1.0 + 0.1 * j - 0.05 * d) * term;
        py += (0.7 - 0.2 * j + 0.03 * d) * term;
      }
    }
    tx = 400000.0 + 1000.0 * (px + 0.3 * t);
    ty = 5100000.0 + 1000.0 * (py - 0.3 * s);
  }
};

// Scattered source points in 1000..3000 by 5000..6500, from a fixed sequence.
std::vector<std::pair<double, double>> Scatter(int count)
{
  std::vector<std::pair<double, double>> points;
  unsigned state = 12345u;
  auto next = [&state] {
    state = state * 1103515245u + 12345u;
    return static_cast<double>((state >> 8) & 0xFFFF) / 65535.0;
  };
  for (int i = 0; i < count; ++i)
    points.emplace_back(1000.0 + 2000.0 * next(), 5000.0 + 1500.0 * next());
  return points;
}

void AddKnownPairs(CComputedMathTransform & transform, Known const & known, int count)
{
  for (auto const & [x, y] : Scatter(count)) {
    double tx = 0.0, ty = 0.0;
    known(x, y, tx, ty);
    transform.AddPoint(CPointPair(CString(), x, y, tx, ty));
  }
}

// Worst distance between the transform and the generating map at the control
// points and at points between them.
double WorstError(CMathTransform const & transform, Known const & known)
{
  double worst = 0.0;
  for (double x = 1000.0; x <= 3000.0; x += 250.0)
    for (double y = 5000.0; y <= 6500.0; y += 250.0) {
      double tx = 0.0, ty = 0.0, ax = x, ay = y;
      known(x, y, tx, ty);
      EXPECT_TRUE(transform.Transform(ax, ay));
      worst = std::max({worst, std::fabs(ax - tx), std::fabs(ay - ty)});
    }
  return worst;
}

TEST(Polynomial, RecoversEachDegreeFromItsOwnPoints)
{
  for (int type = CMathTransform::kLinearPolynomial2D; type <= CMathTransform::kQuinticPolynomial2D; ++type) {
    Known const known{DegreeOf(type)};
    for (bool direct : {true, false}) {
      SCOPED_TRACE(testing::Message() << "type " << type << (direct ? " direct" : " iterative"));
      auto transform = Make(type);
      transform->GetParameters().SetLong(CString("DirectSolution"), direct ? 1 : 0);
      EXPECT_EQ(transform->GetDirectSolution(), direct);
      AddKnownPairs(*transform, known, 40);
      ASSERT_TRUE(transform->Solve());
      EXPECT_TRUE(transform->IsSolved());
      EXPECT_TRUE(transform->IsFullyDefined());
      EXPECT_EQ(transform->GetCoefficientCount(), (DegreeOf(type) + 1) * (DegreeOf(type) + 2));
      // Targets are some hundred thousand metres; a micrometre is close to exact.
      EXPECT_LT(WorstError(*transform, known), 1e-6);
      if (!direct) {
        CMatrix2D const * residuals = transform->GetNonlinearResiduals();
        ASSERT_NE(residuals, nullptr);
        for (long i = 0; i < residuals->GetRows(); ++i)
          EXPECT_NEAR(residuals->GetCell(i), 0.0, 1e-8);
      }
    }
  }
}

TEST(Polynomial, DirectAndIterativeAgreeOnNoisyData)
{
  Known const known{2};
  auto direct = Make(CMathTransform::kCubicPolynomial2D);
  auto iterative = Make(CMathTransform::kCubicPolynomial2D);
  iterative->GetParameters().SetLong(CString("DirectSolution"), 0);
  int i = 0;
  for (auto const & [x, y] : Scatter(30)) {
    double tx = 0.0, ty = 0.0;
    known(x, y, tx, ty);
    double const noise = (i++ % 3 - 1) * 0.05;
    CPointPair const pair(CString(), x, y, tx + noise, ty - noise);
    direct->AddPoint(pair);
    iterative->AddPoint(pair);
  }
  ASSERT_TRUE(direct->Solve());
  ASSERT_TRUE(iterative->Solve());
  EXPECT_GT(iterative->GetAPosterioriUnitWeight(), 0.0);
  CString why;
  EXPECT_TRUE(direct->IsNearlyEqual(*iterative, why)) << why.toStdString();
  for (double x = 1000.0; x <= 3000.0; x += 500.0) {
    double ax = x, ay = 5500.0, bx = x, by = 5500.0;
    direct->Transform(ax, ay);
    iterative->Transform(bx, by);
    EXPECT_NEAR(ax, bx, 1e-7);
    EXPECT_NEAR(ay, by, 1e-7);
  }
}

TEST(Polynomial, RequiredPairsPerDegree)
{
  struct Row
  {
    int type;
    int required;
    char const * location;
    char const * details;
  };
  Row const rows[] = {
    {CMathTransform::kLinearPolynomial2D, 3, "LinearPolynomial2D::Solve", "3 required"},
    {CMathTransform::kQuadraticPolynomial2D, 6, "QuadraticPolynomial2D::Solve", "6 required"},
    {CMathTransform::kCubicPolynomial2D, 10, "CubicPolynomial2D::Solve", "10 required"},
    {CMathTransform::kQuarticPolynomial2D, 15, "QuarticPolynomial2D::Solve", "15 required"},
    {CMathTransform::kQuinticPolynomial2D, 21, "QuinticPolynomial2D::Solve", "21 required"},
  };
  for (Row const & row : rows) {
    SCOPED_TRACE(row.location);
    Known const known{DegreeOf(row.type)};
    auto few = Make(row.type);
    AddKnownPairs(*few, known, row.required - 1);
    ExpectFailures({{"one short", [&] { few->Solve(); }, 49, row.location, row.details}});
    EXPECT_FALSE(few->IsSolved());

    // Exactly enough: the polynomial passes through every pair (to a tenth
    // of a millimetre: a minimal scatter is less well conditioned).
    auto enough = Make(row.type);
    AddKnownPairs(*enough, known, row.required);
    ASSERT_TRUE(enough->Solve());
    for (CPointPair const & pair : enough->GetPointPairs()) {
      double x = pair.sourceX, y = pair.sourceY;
      enough->Transform(x, y);
      EXPECT_NEAR(x, pair.targetX, 1e-4);
      EXPECT_NEAR(y, pair.targetY, 1e-4);
    }
  }
}

TEST(Polynomial, Compression)
{
  // Centres and spans land in the parameters: sources scaled up to 100, targets down from their span.
  auto transform = Make(CMathTransform::kLinearPolynomial2D);
  transform->AddPoint(CPointPair(CString("a"), 10.0, 20.0, 1000.0, 500.0));
  transform->AddPoint(CPointPair(CString("b"), 30.0, 25.0, 1400.0, 600.0));
  transform->AddPoint(CPointPair(CString("c"), 20.0, 30.0, 1200.0, 800.0));
  ASSERT_TRUE(transform->Solve());
  CParameterCollection const & p = transform->GetParameters();
  EXPECT_DOUBLE_EQ(p.GetDouble(CString("Xshift_in")), -20.0);
  EXPECT_DOUBLE_EQ(p.GetDouble(CString("Yshift_in")), -25.0);
  EXPECT_DOUBLE_EQ(p.GetDouble(CString("scale_in")), 100.0 / 20.0);
  EXPECT_DOUBLE_EQ(p.GetDouble(CString("Xshift_out")), 1200.0);
  EXPECT_DOUBLE_EQ(p.GetDouble(CString("Yshift_out")), 650.0);
  EXPECT_DOUBLE_EQ(p.GetDouble(CString("scale_out")), 400.0 / 100.0);

  // All sources on one line: only that axis has extent, and the solution still runs.
  auto line = Make(CMathTransform::kLinearPolynomial2D);
  for (double x : {0.0, 1.0, 2.0, 3.0})
    line->AddPoint(CPointPair(CString(), x, 7.0, 2.0 * x, 3.0 * x + 1.0));
  bool solved = true;
  EXPECT_NO_THROW(solved = line->Solve());
  EXPECT_DOUBLE_EQ(line->GetParameters().GetDouble(CString("scale_in")), 100.0 / 3.0);
  EXPECT_DOUBLE_EQ(line->GetParameters().GetDouble(CString("Yshift_in")), -7.0);
  // Nothing tells the y coefficients apart, so the normal equations are singular.
  EXPECT_FALSE(solved);
  EXPECT_FALSE(line->IsSolved());

  // All at one place: no extent, no solution, nothing raised.
  auto point = Make(CMathTransform::kQuadraticPolynomial2D);
  for (int i = 0; i < 8; ++i)
    point->AddPoint(CPointPair(CString(), 5.0, 5.0, 10.0 + i, 10.0));
  EXPECT_FALSE(point->Solve());
  EXPECT_FALSE(point->IsSolved());
  EXPECT_FALSE(point->GetParameters().IsItemSet(CString("scale_in")));
}

TEST(Polynomial, CoefficientsGivenDirectlyNeedNoPairs)
{
  auto transform = Make(CMathTransform::kQuadraticPolynomial2D);
  CParameterCollection & p = transform->GetParameters();
  // x′ = ((u² + 2u - v + 3) * 2) + 100 and y′ = ((uv + 1) * 2) - 50, with u = (x - 1) * 0.5 and v = (y + 2) * 0.5.
  char const * zero[] = {"Xxy", "Xy2", "Yx", "Yy", "Yx2", "Yy2"};
  for (char const * name : zero)
    p.SetDouble(CString(name), 0.0);
  p.SetDouble(CString("X1"), 3.0);
  p.SetDouble(CString("Xx"), 2.0);
  p.SetDouble(CString("Xy"), -1.0);
  p.SetDouble(CString("Xx2"), 1.0);
  p.SetDouble(CString("Y1"), 1.0);
  p.SetDouble(CString("Yxy"), 1.0);
  p.SetDouble(CString("scale_in"), 0.5);
  p.SetDouble(CString("Xshift_in"), -1.0);
  p.SetDouble(CString("Yshift_in"), 2.0);
  p.SetDouble(CString("scale_out"), 2.0);
  p.SetDouble(CString("Xshift_out"), 100.0);
  double early = 0.0;
  EXPECT_THROW(transform->Transform(early, early), EX::CVelmoraException); // one value still unset
  p.SetDouble(CString("Yshift_out"), -50.0);
  EXPECT_TRUE(transform->IsFullyDefined());

  double x = 5.0, y = 4.0; // u = 2, v = 3
  ASSERT_TRUE(transform->Transform(x, y));
  EXPECT_DOUBLE_EQ(x, (4.0 + 4.0 - 3.0 + 3.0) * 2.0 + 100.0);
  EXPECT_DOUBLE_EQ(y, (6.0 + 1.0) * 2.0 - 50.0);
  EXPECT_FALSE(transform->IsSolved());
  EXPECT_EQ(transform->GetPointCount(), 0);

  // The point form carries a height through when both points have three dimensions.
  ML::CProjectedPoint const in(5.0, 4.0, 12.5);
  ML::CProjectedPoint out(3);
  ASSERT_TRUE(transform->Transform(in, out));
  double a = 0.0, b = 0.0, h = 0.0;
  out.GetInternals(a, b, h);
  EXPECT_DOUBLE_EQ(a, 116.0);
  EXPECT_DOUBLE_EQ(h, 12.5);
}

TEST(Polynomial, UnsetParametersRaise)
{
  for (int type = CMathTransform::kLinearPolynomial2D; type <= CMathTransform::kQuinticPolynomial2D; ++type) {
    auto transform = Make(type);
    double x = 1.0, y = 2.0;
    ExpectFailures({{"unset", [&] { transform->Transform(x, y); }, 31, "CLinearPolynomial2D::Transform", ""}});
    EXPECT_EQ(x, 1.0);
  }
}

TEST(Polynomial, ChangesUnsolveAndSettingsReachTheAdjustor)
{
  Known const known{1};
  auto transform = Make(CMathTransform::kLinearPolynomial2D);
  AddKnownPairs(*transform, known, 5);
  ASSERT_TRUE(transform->Solve());
  CParameterCollection & p = transform->GetParameters();
  p.SetLong(CString("MaxIterations"), 7);
  p.SetDouble(CString("ConvergenceThreshold"), 1e-9);
  EXPECT_EQ(transform->GetMaxIterations(), 7);
  EXPECT_EQ(transform->GetConvergenceThreshold(), 1e-9);
  EXPECT_TRUE(transform->IsSolved()); // settings do not change the function
  ExpectFailures({{"zero iterations", [&] { p.SetLong(CString("MaxIterations"), 0); }, 15,
                   "CLeastSquaresAdjustor::SetMaxIterations", "Value must be greater than zero."}});
  EXPECT_EQ(transform->GetMaxIterations(), 7);

  p.SetDouble(CString("Xx"), 1.0);
  EXPECT_FALSE(transform->IsSolved());
  ASSERT_TRUE(transform->Solve());
  transform->AddPoint(CPointPair(CString(), 1500.0, 5200.0, 0.0, 0.0));
  EXPECT_FALSE(transform->IsSolved());
}

} // namespace
