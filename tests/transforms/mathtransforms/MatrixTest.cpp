// The matrix: arithmetic against hand-worked products, inversion against
// known inverses, the unpivoted elimination's behaviour on a zero pivot, and
// the size failures.
#include <velmora/transforms/mathtransforms/Matrix2D.h>

#include <gtest/gtest.h>

#include "../../support/TestSupport.h"

#include <cmath>
#include <initializer_list>
#include <memory>

using namespace Velmora;
using namespace Velmora::CT::MT;
using namespace VelmoraTest;

namespace {

using Owned = std::unique_ptr<CMatrix2D>;

CMatrix2D Make(long rows, long columns, std::initializer_list<double> cells)
{
  CMatrix2D m(rows, columns, true);
  long i = 0;
  for (double c : cells)
    m.SetCell(i++, c);
  return m;
}

void ExpectCells(CMatrix2D const & m, std::initializer_list<double> cells, double tolerance)
{
  long i = 0;
  for (double c : cells) {
    EXPECT_NEAR(m.GetCell(i), c, tolerance) << "cell " << i;
    ++i;
  }
  EXPECT_EQ(i, m.GetRows() * m.GetColumns());
}

TEST(Matrix, CellsByPairAndByIndex)
{
  CMatrix2D m(2, 3, true);
  EXPECT_EQ(m.GetCell(1, 2), 0.0);
  m.SetCell(1, 2, 5.0);
  EXPECT_EQ(m.GetCell(5), 5.0);
  m.AddToCell(5, 2.0);
  m.SubtractFromCell(1, 2, 1.0);
  EXPECT_EQ(m.GetCell(1, 2), 6.0);
  long row = -1, column = -1;
  m.GetRowAndColumn(4, row, column);
  EXPECT_EQ(row, 1);
  EXPECT_EQ(column, 1);
  m.Fill(3.5);
  ExpectCells(m, {3.5, 3.5, 3.5, 3.5, 3.5, 3.5}, 0.0);

  // A column vector is reached by its row alone.
  CMatrix2D v(4, 1);
  v.GetRowAndColumn(3, row, column);
  EXPECT_EQ(row, 3);
  EXPECT_EQ(column, 0);
}

TEST(Matrix, Arithmetic)
{
  CMatrix2D const a = Make(2, 3, {1, 2, 3, 4, 5, 6});
  CMatrix2D const b = Make(3, 2, {7, 8, 9, 10, 11, 12});
  Owned const ab(a * b);
  ASSERT_EQ(ab->GetRows(), 2);
  ASSERT_EQ(ab->GetColumns(), 2);
  ExpectCells(*ab, {58, 64, 139, 154}, 0.0);

  Owned const at(a.Transpose());
  ExpectCells(*at, {1, 4, 2, 5, 3, 6}, 0.0);
  EXPECT_EQ(at->GetRows(), 3);
  CMatrix2D turned(a);
  turned.TransposeSelf();
  EXPECT_TRUE(turned == *at);
  turned.TransposeSelf();
  EXPECT_TRUE(turned == a);

  Owned const sum(a + a);
  ExpectCells(*sum, {2, 4, 6, 8, 10, 12}, 0.0);
  Owned const zero(a - a);
  ExpectCells(*zero, {0, 0, 0, 0, 0, 0}, 0.0);

  CMatrix2D c(a);
  c += a;
  c -= a;
  c *= -2.0;
  ExpectCells(c, {-2, -4, -6, -8, -10, -12}, 0.0);
  EXPECT_TRUE(c != a);
  c = b; // assignment takes the other's size
  EXPECT_TRUE(c == b);
  EXPECT_TRUE(c.IsSameSize(b));
  EXPECT_FALSE(c.IsSquare());
  EXPECT_TRUE(ab->IsSquare());
}

TEST(Matrix, InversionAgainstKnownInverses)
{
  // Determinant 1 and integer inverses.
  CMatrix2D const a = Make(3, 3, {2, -1, 0, -1, 2, -1, 0, -1, 2});
  Owned const inverse(a.Invert());
  ExpectCells(*inverse, {0.75, 0.5, 0.25, 0.5, 1.0, 0.5, 0.25, 0.5, 0.75}, 1e-15);
  Owned const identity(a * *inverse);
  ExpectCells(*identity, {1, 0, 0, 0, 1, 0, 0, 0, 1}, 1e-15);

  CMatrix2D b = Make(2, 2, {4, 7, 2, 6});
  b.InvertSelf();
  ExpectCells(b, {0.6, -0.7, -0.2, 0.4}, 1e-15);

  CMatrix2D const c = Make(3, 3, {1, 2, 3, 0, 1, 4, 5, 6, 0});
  Owned const ci(c.Invert());
  ExpectCells(*ci, {-24, 18, 5, 20, -15, -4, -5, 4, 1}, 1e-12);
}

TEST(Matrix, ZeroPivotGivesNonFiniteCellsWithoutException)
{
  // Invertible (determinant -1), but the unpivoted elimination meets a zero first.
  CMatrix2D m = Make(2, 2, {0, 1, 1, 0});
  EXPECT_NO_THROW(m.InvertSelf());
  bool anyNonFinite = false;
  for (long i = 0; i < 4; ++i)
    anyNonFinite = anyNonFinite || !std::isfinite(m.GetCell(i));
  EXPECT_TRUE(anyNonFinite);

  // A singular matrix likewise.
  CMatrix2D const s = Make(2, 2, {1, 2, 2, 4});
  Owned inverse;
  EXPECT_NO_THROW(inverse.reset(s.Invert()));
  EXPECT_FALSE(std::isfinite(inverse->GetCell(1, 1)));
}

TEST(Matrix, SizeFailures)
{
  CMatrix2D const a(2, 3);
  CMatrix2D const b(3, 3);
  CMatrix2D d(2, 2);
  ExpectFailures({
    {"sum", [&] { Owned(a + b); }, 56, "CMatrix2D::operator+", ""},
    {"difference", [&] { Owned(a - b); }, 56, "CMatrix2D::operator-", ""},
    {"product", [&] { Owned(b * a); }, 56, "CMatrix2D::operator*", ""},
    {"add in place", [&] { d += a; }, 56, "CMatrix2D::operator+=", ""},
    {"subtract in place", [&] { d -= a; }, 56, "CMatrix2D::operator-=", ""},
    {"negative size", [] { CMatrix2D(-1, 2); }, 56, "CMatrix2D::CMatrix2D", ""},
    {"invert not square", [&] { Owned(a.Invert()); }, 57, "CMatrix2D::InvertSelf", ""},
    {"cell outside", [&] { a.GetCell(2, 0); }, 48, "CMatrix2D::GetCell", ""},
    {"index outside", [&] { d.SetCell(4, 1.0); }, 48, "CMatrix2D::SetCell", ""},
  });
  // The failed operations left the target as it was.
  EXPECT_TRUE(d == CMatrix2D(2, 2));
}

} // namespace
