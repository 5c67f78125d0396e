// The 3-D affine matrix: order of composition, the rotation senses, the
// identity shortcut, the lazy inverse and its failure on a singular matrix.
#include <velmora/transforms/mathtransforms/Affine3D.h>

#include <gtest/gtest.h>

#include "../../support/TestSupport.h"

#include <cmath>

using namespace Velmora;
using Velmora::CT::MT::CAffine3D;
using Velmora::ML::BPoint2D;
using Velmora::ML::BPoint3D;
using namespace VelmoraTest;

namespace {

constexpr double kQuarterTurn = 1.5707963267948966;

BPoint3D Forward(CAffine3D const & m, BPoint3D p)
{
  m.TransformForward(1, &p);
  return p;
}

BPoint3D Reverse(CAffine3D const & m, BPoint3D p)
{
  m.TransformReverse(1, &p);
  return p;
}

void ExpectNear(BPoint3D const & got, BPoint3D const & want, double tolerance, char const * what)
{
  EXPECT_NEAR(got.x, want.x, tolerance) << what;
  EXPECT_NEAR(got.y, want.y, tolerance) << what;
  EXPECT_NEAR(got.z, want.z, tolerance) << what;
}

// Rotations, a scale per axis and a translation of datum-shift size.
CAffine3D General()
{
  CAffine3D m;
  m.RotateXYZ(0.3, -0.2, 0.7);
  m.Scale(1.5, 0.8, 2.0);
  m.Shift(446.448, -125.157, 542.06);
  return m;
}

} // namespace

TEST(Affine3D, RotationsTurnVectorsTheRightHandedWay)
{
  struct Row
  {
    char const * what;
    void (CAffine3D::*rotate)(double);
    BPoint3D in, out;
  };
  Row const rows[] = {
    {"about x, y goes to z", &CAffine3D::RotateX, {0, 1, 0}, {0, 0, 1}},
    {"about y, z goes to x", &CAffine3D::RotateY, {0, 0, 1}, {1, 0, 0}},
    {"about z, x goes to y", &CAffine3D::RotateZ, {1, 0, 0}, {0, 1, 0}},
  };
  for (Row const & row : rows) {
    CAffine3D m;
    (m.*row.rotate)(kQuarterTurn);
    ExpectNear(Forward(m, row.in), row.out, 1e-15, row.what);
  }
}

TEST(Affine3D, EachOperationActsAfterThoseBeforeIt)
{
  // Shift then a quarter turn about z: the translation turns with the point.
  CAffine3D m;
  m.Shift(1, 0, 0);
  m.RotateZ(kQuarterTurn);
  ExpectNear(Forward(m, {0, 0, 0}), {0, 1, 0}, 1e-15, "shift, then rotate");

  // RotateXYZ is x, then y, then z.
  CAffine3D combined, separate;
  combined.RotateXYZ(0.1, 0.2, 0.3);
  separate.RotateX(0.1);
  separate.RotateY(0.2);
  separate.RotateZ(0.3);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 4; ++j)
      EXPECT_EQ(combined.GetForward()[i][j], separate.GetForward()[i][j]);
  // Turning the other order gives a different matrix.
  CAffine3D reversed;
  reversed.RotateZ(0.3);
  reversed.RotateY(0.2);
  reversed.RotateX(0.1);
  EXPECT_GT(std::fabs(reversed.GetForward()[0][1] - combined.GetForward()[0][1]), 1e-3);

  // Multiply is a plain left product; Scale leaves the translation alone.
  CAffine3D product, scaled;
  product.Shift(1, 2, 3);
  scaled.Shift(1, 2, 3);
  CAffine3D::Matrix const doubling = {{2, 0, 0, 0}, {0, 2, 0, 0}, {0, 0, 2, 0}};
  product.Multiply(doubling);
  scaled.Scale(2, 2, 2);
  ExpectNear(Forward(product, {1, 1, 1}), {4, 6, 8}, 0, "multiply scales the translation");
  ExpectNear(Forward(scaled, {1, 1, 1}), {3, 4, 5}, 0, "scale does not");
  EXPECT_EQ(scaled.GetForward()[1][3], 2.0);
}

TEST(Affine3D, SmallAngleRotationHasTheFirstOrderRowsOnly)
{
  CAffine3D m;
  m.RotateXYZApproximate(0.01, 0.02, 0.03);
  CAffine3D::Matrix const want = {{1, 0.03, -0.02, 0}, {-0.03, 1, 0.01, 0}, {0.02, -0.01, 1, 0}};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 4; ++j)
      EXPECT_EQ(m.GetForward()[i][j], want[i][j]) << i << j;
}

TEST(Affine3D, RotationsAboutAPivotKeepThePivot)
{
  BPoint3D const pivot(3912000.0, 300000.0, 5015000.0);
  for (bool exact : {true, false}) {
    CAffine3D m;
    if (exact)
      m.RotatePointXYZ(pivot, 0.0, 0.0, kQuarterTurn);
    else
      m.RotatePointXYZApproximate(pivot, 1e-5, -2e-5, 3e-5);
    ExpectNear(Forward(m, pivot), pivot, 1e-9, exact ? "exact" : "small angle");
  }
  CAffine3D m;
  m.RotatePointXYZ(pivot, 0.0, 0.0, kQuarterTurn);
  ExpectNear(Forward(m, {pivot.x + 10, pivot.y, pivot.z}), {pivot.x, pivot.y + 10, pivot.z}, 1e-9,
             "a point beside the pivot turns about it");
}

TEST(Affine3D, IdentityIsRecognisedBytewiseAndSkipsTheProduct)
{
  CAffine3D m;
  EXPECT_TRUE(m.IsIdentity());
  // Transforms that cancel exactly land on the table again.
  m.Shift(5, 0, 0);
  EXPECT_FALSE(m.IsIdentity());
  m.Shift(-5, 0, 0);
  EXPECT_TRUE(m.IsIdentity());
  // A rotation too small to change any point is still no identity.
  m.RotateZ(1e-30);
  EXPECT_FALSE(m.IsIdentity());
  m.Reset();
  EXPECT_TRUE(m.IsIdentity());

  // Skipped, not multiplied: even values no product would keep come back as they were.
  BPoint3D points[2] = {{INFINITY, 1, 2}, {NAN, -0.0, 3}};
  m.TransformForward(2, points);
  EXPECT_TRUE(std::isinf(points[0].x));
  EXPECT_TRUE(std::isnan(points[1].x));
  EXPECT_TRUE(std::signbit(points[1].y));
}

TEST(Affine3D, EveryMutatorMakesTheCachesStale)
{
  struct Row
  {
    char const * what;
    std::function<void(CAffine3D &)> change;
  };
  CAffine3D::Matrix const swapXY = {{0, 1, 0, 0}, {1, 0, 0, 0}, {0, 0, 1, 0}};
  Row const rows[] = {
    {"Shift", [](CAffine3D & m) { m.Shift(1, 2, 3); }},
    {"Scale", [](CAffine3D & m) { m.Scale(2, 3, 4); }},
    {"Multiply", [&](CAffine3D & m) { m.Multiply(swapXY); }},
    {"RotateX", [](CAffine3D & m) { m.RotateX(0.5); }},
    {"RotateY", [](CAffine3D & m) { m.RotateY(0.5); }},
    {"RotateZ", [](CAffine3D & m) { m.RotateZ(0.5); }},
    {"RotateXYZ", [](CAffine3D & m) { m.RotateXYZ(0.1, 0.2, 0.3); }},
    {"RotateXYZApproximate", [](CAffine3D & m) { m.RotateXYZApproximate(0.1, 0.2, 0.3); }},
    {"RotatePointXYZ", [](CAffine3D & m) { m.RotatePointXYZ({1, 2, 3}, 0.1, 0.2, 0.3); }},
    {"RotatePointXYZApproximate", [](CAffine3D & m) { m.RotatePointXYZApproximate({1, 2, 3}, 0.1, 0.2, 0.3); }},
  };
  BPoint3D const p(7, -11, 13);
  for (Row const & row : rows) {
    CAffine3D m;
    // Both caches filled for the identity first.
    ExpectNear(Forward(m, p), p, 0, row.what);
    ExpectNear(Reverse(m, p), p, 0, row.what);
    row.change(m);
    CAffine3D fresh;
    row.change(fresh);
    ExpectNear(Forward(m, p), Forward(fresh, p), 0, row.what);
    ExpectNear(Reverse(m, p), Reverse(fresh, p), 0, row.what);
    EXPECT_GT(std::fabs(Forward(m, p).x - p.x) + std::fabs(Forward(m, p).y - p.y) + std::fabs(Forward(m, p).z - p.z),
              1e-3)
      << row.what;
  }
  // Reset too.
  CAffine3D m = General();
  Reverse(m, p);
  m.Reset();
  ExpectNear(Reverse(m, p), p, 0, "Reset");
}

TEST(Affine3D, ReverseIsTheInverseOfTheFullMatrix)
{
  CAffine3D const m = General();
  // Geocentric coordinates of Earth size: the round trip keeps them to well under a micrometre.
  BPoint3D const points[] = {{3912000.0, 300000.0, 5015000.0}, {-2000000.0, 6000000.0, -800000.0}, {0, 0, 0}};
  for (BPoint3D const & p : points)
    ExpectNear(Reverse(m, Forward(m, p)), p, 1e-8, "reverse after forward");

  // The two matrices multiply to the identity, translation column included.
  CAffine3D::Matrix const & f = m.GetForward();
  CAffine3D::Matrix const & r = m.GetReverse();
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 4; ++j) {
      double v = r[i][0] * f[0][j] + r[i][1] * f[1][j] + r[i][2] * f[2][j] + (j == 3 ? r[i][3] : 0.0);
      EXPECT_NEAR(v, i == j ? 1.0 : 0.0, 1e-12) << i << j;
    }

  // A tiny but regular scale is no singularity.
  CAffine3D small;
  small.Scale(1e-9, 1e-9, 1e-9);
  ExpectNear(Reverse(small, {1e-9, 2e-9, 3e-9}), {1, 2, 3}, 1e-12, "tiny scale");
}

TEST(Affine3D, SingularMatrixRaisesOnTheFirstReverseUse)
{
  struct Row
  {
    char const * what;
    std::function<void(CAffine3D &)> make;
  };
  Row const rows[] = {
    {"a zero scale on one axis", [](CAffine3D & m) { m.Scale(1, 0, 1); }},
    {"everything onto the centre", [](CAffine3D & m) { m.Scale(0, 0, 0); }},
    {"two dependent rows after a rotation",
     [](CAffine3D & m) {
       m.RotateXYZ(0.3, 0.4, 0.5);
       CAffine3D::Matrix const flatten = {{1, 2, 3, 0}, {2, 4, 6, 0}, {0, 0, 1, 0}};
       m.Multiply(flatten);
     }},
  };
  for (Row const & row : rows) {
    CAffine3D m;
    row.make(m);
    BPoint3D p(1, 2, 3);
    EXPECT_NO_THROW(m.TransformForward(1, &p)) << row.what;
    BPoint3D q(1, 2, 3);
    ExpectFailures({{row.what, [&] { m.TransformReverse(1, &q); }, 58, "CAffine3D::PrepareReverse", ""}});
    ExpectNear(q, {1, 2, 3}, 0, "a refused reverse leaves the point alone");
  }
}

TEST(Affine3D, LUSolvesSystemsThatNeedRowExchanges)
{
  // A zero on the diagonal: without pivoting the first step would divide by it.
  double a[4][4] = {{0, 2, 0, 1}, {3, 0, 0, 0}, {0, 0, 4, 0}, {0, 1, 0, 5}};
  double const original[4][4] = {{0, 2, 0, 1}, {3, 0, 0, 0}, {0, 0, 4, 0}, {0, 1, 0, 5}};
  int order[4];
  ASSERT_TRUE(CAffine3D::LUDecompose(a, order));
  double const x[4] = {1, -2, 3, 0.5};
  double b[4];
  for (int i = 0; i < 4; ++i)
    b[i] = original[i][0] * x[0] + original[i][1] * x[1] + original[i][2] * x[2] + original[i][3] * x[3];
  CAffine3D::LUBackSubstitute(a, order, b);
  for (int i = 0; i < 4; ++i)
    EXPECT_NEAR(b[i], x[i], 1e-15) << i;

  double zero[4][4] = {{1, 2, 3, 4}, {2, 4, 6, 8}, {0, 0, 1, 0}, {0, 0, 0, 1}};
  EXPECT_FALSE(CAffine3D::LUDecompose(zero, order));
}

TEST(Affine3D, PlanarPointsGoThroughAtZeroHeight)
{
  CAffine3D m;
  m.Shift(10, 20, 30);
  // z leaves the plane: x and y are what a point at z = 0 gets.
  m.RotateX(kQuarterTurn);
  BPoint2D points[2] = {{1, 2}, {-3, 4}};
  m.TransformForward(2, points);
  BPoint3D const a = Forward(m, {1, 2, 0}), b = Forward(m, {-3, 4, 0});
  EXPECT_DOUBLE_EQ(points[0].x, a.x);
  EXPECT_DOUBLE_EQ(points[0].y, a.y);
  EXPECT_DOUBLE_EQ(points[1].x, b.x);
  EXPECT_DOUBLE_EQ(points[1].y, b.y);

  BPoint2D back[1] = {{7, 8}};
  m.TransformReverse(1, back);
  BPoint3D const c = Reverse(m, {7, 8, 0});
  EXPECT_DOUBLE_EQ(back[0].x, c.x);
  EXPECT_DOUBLE_EQ(back[0].y, c.y);

  CAffine3D identity;
  BPoint2D same[1] = {{NAN, 1}};
  identity.TransformForward(1, same);
  EXPECT_TRUE(std::isnan(same[0].x));
}
