// The older fits: coefficients recovered by the five passes where the basis
// columns are orthogonal (affine, first order on a centred grid), the second
// order against an independent run of the five passes, the three distinct
// pairs they need, and evaluation from parameters set directly.
#include <velmora/transforms/mathtransforms/OldSchool.h>

#include <gtest/gtest.h>

#include "../../support/TestSupport.h"

#include <memory>
#include <string>
#include <vector>

using namespace Velmora;
using namespace Velmora::CT::MT;
using namespace VelmoraTest;

namespace {

// Basis order 1, x, y, xy, x², y² and the parameter names of each.
char const * const kXNames[] = {"dx", "dxx", "dxy", "dxxy", "dxxx", "dxyy"};
char const * const kYNames[] = {"dy", "dyx", "dyy", "dyyx", "dyxx", "dyyy"};

double Evaluate(std::vector<double> const & c, double x, double y)
{
  double const basis[] = {1.0, x, y, x * y, x * x, y * y};
  double sum = 0.0;
  for (size_t k = 0; k < c.size(); ++k)
    sum += c[k] * basis[k];
  return sum;
}

// A centred 5 by 5 grid in the given order, mapped by the two coefficient lists.
void AddGrid(CComputedMathTransform & transform, std::vector<double> const & cx, std::vector<double> const & cy)
{
  for (double y : {200.0, -100.0, 0.0, 100.0, -200.0})
    for (double x : {-200.0, 100.0, 0.0, -100.0, 200.0})
      transform.AddPoint(CPointPair(CString(), x, y, Evaluate(cx, x, y), Evaluate(cy, x, y)));
}

void ExpectCoefficients(CMathTransform const & transform, std::vector<double> const & cx,
                        std::vector<double> const & cy, double tolerance)
{
  for (size_t k = 0; k < cx.size(); ++k) {
    EXPECT_NEAR(transform.GetParameters().GetDouble(CString(kXNames[k])), cx[k], tolerance) << kXNames[k];
    EXPECT_NEAR(transform.GetParameters().GetDouble(CString(kYNames[k])), cy[k], tolerance) << kYNames[k];
  }
}

TEST(OldSchool, AffineAndFirstOrderRecoverKnownCoefficients)
{
  std::vector<double> const ax = {5000.0, 1.2, -0.7}, ay = {-3000.0, 0.4, 0.9};
  CAffine affine;
  AddGrid(affine, ax, ay);
  ASSERT_TRUE(affine.Solve());
  EXPECT_TRUE(affine.IsSolved());
  ExpectCoefficients(affine, ax, ay, 1e-9);
  double x = 50.0, y = -30.0;
  ASSERT_TRUE(affine.Transform(x, y));
  EXPECT_NEAR(x, 5000.0 + 60.0 + 21.0, 1e-9);
  EXPECT_NEAR(y, -3000.0 + 20.0 - 27.0, 1e-9);

  std::vector<double> const fx = {5000.0, 1.2, -0.7, 3e-4}, fy = {-3000.0, 0.4, 0.9, -2e-4};
  CFirstOrderPolynomial first;
  AddGrid(first, fx, fy);
  ASSERT_TRUE(first.Solve());
  ExpectCoefficients(first, fx, fy, 1e-12);
}

TEST(OldSchool, SecondOrderMatchesFivePassReference)
{
  auto const rows = ReadRows("polyfix_second_order.txt", 12);
  ASSERT_EQ(rows.size(), 2u);
  std::vector<double> const trueX(rows[0].begin(), rows[0].begin() + 6), fitX(rows[0].begin() + 6, rows[0].end());
  std::vector<double> const trueY(rows[1].begin(), rows[1].begin() + 6), fitY(rows[1].begin() + 6, rows[1].end());

  CSecondOrderPolynomial second;
  AddGrid(second, trueX, trueY);
  ASSERT_TRUE(second.Solve());
  ExpectCoefficients(second, fitX, fitY, 1e-9);
  // The linear and cross terms are orthogonal to the rest and come out exact.
  EXPECT_NEAR(second.GetParameters().GetDouble(CString("dxx")), 1.2, 1e-12);
  EXPECT_NEAR(second.GetParameters().GetDouble(CString("dyyx")), -2e-4, 1e-15);
}

TEST(OldSchool, ThreeDistinctPairsNeeded)
{
  CAffine affine;
  affine.AddPoint(CPointPair(CString("a"), 0.0, 0.0, 1.0, 1.0));
  affine.AddPoint(CPointPair(CString("b"), 1.0, 0.0, 2.0, 1.0));
  ExpectFailures({{"two pairs", [&] { affine.Solve(); }, 49, "MathTransformOldSchool::Solve", "3 required"}});
  EXPECT_FALSE(affine.IsSolved());

  // A third pair at a source already given is no third point.
  affine.AddPoint(CPointPair(CString("c"), 1.0, 0.0, 2.0, 1.0));
  EXPECT_FALSE(affine.Solve());
  EXPECT_FALSE(affine.IsSolved());

  affine.AddPoint(CPointPair(CString("d"), 0.0, 1.0, 1.0, 2.0));
  EXPECT_TRUE(affine.Solve());
  EXPECT_TRUE(affine.IsSolved());
  EXPECT_TRUE(affine.IsFullyDefined());

  CSecondOrderPolynomial second;
  ExpectFailures({{"none", [&] { second.Solve(); }, 49, "MathTransformOldSchool::Solve", "3 required"}});
}

TEST(OldSchool, ParametersSetDirectly)
{
  CFirstOrderPolynomial first;
  double x = 2.0, y = 3.0;
  EXPECT_FALSE(first.Transform(x, y)); // nothing set: false, values unchanged
  EXPECT_EQ(x, 2.0);
  EXPECT_EQ(y, 3.0);
  CParameterCollection & p = first.GetParameters();
  std::vector<double> const cx = {10.0, 2.0, -1.0, 0.5}, cy = {-4.0, 1.0, 3.0, -0.25};
  for (size_t k = 0; k < cx.size(); ++k) {
    p.SetDouble(CString(kXNames[k]), cx[k]);
    if (k + 1 < cx.size())
      p.SetDouble(CString(kYNames[k]), cy[k]);
  }
  EXPECT_FALSE(first.Transform(x, y)); // dyyx still unset
  EXPECT_FALSE(first.IsFullyDefined());
  p.SetDouble(CString("dyyx"), cy[3]);
  EXPECT_TRUE(first.IsFullyDefined());
  ASSERT_TRUE(first.Transform(x, y));
  EXPECT_DOUBLE_EQ(x, Evaluate(cx, 2.0, 3.0));
  EXPECT_DOUBLE_EQ(y, Evaluate(cy, 2.0, 3.0));
  EXPECT_FALSE(first.IsSolved());
}

TEST(OldSchool, SolvedUntilAParameterChanges)
{
  CAffine affine;
  AddGrid(affine, {1.0, 1.0, 0.0}, {2.0, 0.0, 1.0});
  ASSERT_TRUE(affine.Solve());
  affine.GetParameters().SetDouble(CString("dx"), 7.0);
  EXPECT_FALSE(affine.IsSolved());
  double x = 0.0, y = 0.0;
  affine.Transform(x, y);
  EXPECT_DOUBLE_EQ(x, 7.0);
}

} // namespace
