// The eight types from the factory with their parameter lists, the stored
// body's type from its text, copies and comparisons as a fitted system uses
// them, and the search for the best type.
#include <velmora/transforms/mathtransforms/OldSchool.h>
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

std::unique_ptr<CMathTransform> Make(int type)
{
  return std::unique_ptr<CMathTransform>(CMathTransformFactory::CreateMathTransform(type));
}

std::vector<char const *> const kCompression = {"scale_in",  "Xshift_in",  "Yshift_in",
                                                "scale_out", "Xshift_out", "Yshift_out"};
std::vector<char const *> const kSettings = {"MaxIterations", "ConvergenceThreshold", "DirectSolution"};

struct Expected
{
  char const * name;
  long points;
  std::vector<char const *> own; // for the polynomials: the terms beyond the linear ones
};

// Indexed by type value.
std::vector<Expected> const kExpected = {
  {"Affine", 3, {"dxx", "dxy", "dx", "dyx", "dyy", "dy"}},
  {"First Order Polynomial", 3, {"dxx", "dxy", "dxxy", "dx", "dyy", "dyx", "dyyx", "dy"}},
  {"Second Order Polynomial",
   3,
   {"dxx", "dxy", "dxxx", "dxxy", "dxyy", "dx", "dyx", "dyy", "dyyy", "dyyx", "dyxx", "dy"}},
  {"Linear Polynomial 2D", 3, {}},
  {"Quadratic Polynomial 2D", 6, {"Xx2", "Xxy", "Xy2", "Yx2", "Yxy", "Yy2"}},
  {"Cubic Polynomial 2D", 10, {"Xx3", "Xx2y", "Xxy2", "Xy3", "Yx3", "Yx2y", "Yxy2", "Yy3"}},
  {"Quartic Polynomial 2D", 15, {"Xx4", "Xx3y", "Xx2y2", "Xxy3", "Xy4", "Yx4", "Yx3y", "Yx2y2", "Yxy3", "Yy4"}},
  {"Quintic Polynomial 2D",
   21,
   {"Xx5", "Xx4y", "Xx3y2", "Xx2y3", "Xxy4", "Xy5", "Yx5", "Yx4y", "Yx3y2", "Yx2y3", "Yxy4", "Yy5"}},
};

// The declared list of a type, built from the table of types above.
std::vector<CString> ExpectedNames(int type)
{
  std::vector<CString> names;
  if (type < CMathTransform::kLinearPolynomial2D) {
    for (char const * n : kExpected[static_cast<size_t>(type)].own)
      names.emplace_back(n);
    return names;
  }
  for (char const * n : {"X1", "Xx", "Xy", "Y1", "Yx", "Yy"})
    names.emplace_back(n);
  for (char const * n : kCompression)
    names.emplace_back(n);
  for (int t = CMathTransform::kQuadraticPolynomial2D; t <= type; ++t)
    for (char const * n : kExpected[static_cast<size_t>(t)].own)
      names.emplace_back(n);
  for (char const * n : kSettings)
    names.emplace_back(n);
  return names;
}

TEST(MathTransformFactory, EveryTypeWithItsParameters)
{
  for (int type = 0; type < CMathTransform::kTypeCount; ++type) {
    SCOPED_TRACE(kExpected[static_cast<size_t>(type)].name);
    auto transform = Make(type);
    ASSERT_NE(transform, nullptr);
    EXPECT_EQ(transform->GetType(), type);
    EXPECT_EQ(transform->GetTypeName(), CString(kExpected[static_cast<size_t>(type)].name));
    EXPECT_EQ(CMathTransform::TypeName(type), transform->GetTypeName());
    EXPECT_EQ(CMathTransform::TypeOf(transform->GetTypeName()), type);
    EXPECT_EQ(CMathTransform::RequiredPoints(type), kExpected[static_cast<size_t>(type)].points);
    std::vector<CString> const expected = ExpectedNames(type);
    EXPECT_EQ(CMathTransform::ParameterNames(type), expected);
    CParameterCollection const & p = transform->GetParameters();
    EXPECT_EQ(p.Count(), static_cast<long>(expected.size()));
    for (CString const & name : expected) {
      bool const isLong = name == CString("MaxIterations") || name == CString("DirectSolution");
      EXPECT_EQ(p.GetItemType(name), isLong ? CParameter::kLong : CParameter::kDouble) << name.toStdString();
      EXPECT_FALSE(p.IsItemSet(name));
    }
    EXPECT_FALSE(transform->IsFullyDefined());
    EXPECT_NE(dynamic_cast<CComputedMathTransform *>(transform.get()), nullptr);
  }
  EXPECT_EQ(CMathTransform::TypeOf(CString("affine")), -1);
  EXPECT_TRUE(CMathTransform::TypeName(8).isEmpty());

  // The solution settings are optional: coefficients alone make a polynomial complete.
  auto linear = Make(CMathTransform::kLinearPolynomial2D);
  for (CString const & name : ExpectedNames(CMathTransform::kLinearPolynomial2D))
    if (name != CString("MaxIterations") && name != CString("ConvergenceThreshold") &&
        name != CString("DirectSolution"))
      linear->GetParameters().SetDouble(name, 1.0);
  EXPECT_TRUE(linear->IsFullyDefined());
}

TEST(MathTransformFactory, UnknownTypes)
{
  char const * location = "MathTransformFactory::CreateMathTransform";
  ExpectFailures({
    {"minus one", [] { Make(-1); }, 50, location, ""},
    {"eight", [] { Make(8); }, 50, location, ""},
    {"stored without type", [] { delete CMathTransformFactory::CreateMathTransform(CMathTransformDataDB()); }, 50,
     location, ""},
  });
}

TEST(MathTransformFactory, StoredBodyTakesItsTypeFromText)
{
  CMathTransformDataDB body;
  EXPECT_EQ(body.GetMathTransformType(), -1);
  EXPECT_EQ(body.SetMathTransformType(CString("Cubic Polynomial 2D")), 5);
  EXPECT_EQ(body.SetMathTransformType(CString("Cubic polynomial 2D")), -1);
  EXPECT_EQ(body.GetMathTransformType(), 5);
  EXPECT_EQ(body.GetClassType(), CString("Cubic Polynomial 2D"));
  EXPECT_EQ(body.GetDataObjectType(), kEDataObjectDB);

  std::unique_ptr<CMathTransform> transform(CMathTransformFactory::CreateMathTransform(body));
  EXPECT_EQ(transform->GetType(), CMathTransform::kCubicPolynomial2D);
  CMathTransform const & reading = *transform;
  EXPECT_EQ(&reading.GetData(), static_cast<CMathTransformData const *>(&body)) << "shared, not copied";
  transform->Congeal();
  EXPECT_NE(&reading.GetData(), static_cast<CMathTransformData const *>(&body));
  EXPECT_EQ(reading.GetData().GetDataObjectType(), kEDataObjectConcrete);
  EXPECT_EQ(reading.GetParameters().GetData().GetDataObjectType(), kEDataObjectConcrete);

  // A store's copy of a caller's transform keeps its type and values.
  auto affine = Make(CMathTransform::kAffine);
  affine->GetParameters().SetDouble(CString("dx"), 4.0);
  CMathTransformDataDB const stored(affine->GetData(), nullptr);
  EXPECT_EQ(stored.GetMathTransformType(), CMathTransform::kAffine);
  EXPECT_EQ(stored.GetParameters().GetDouble(CString("dx")), 4.0);
}

void SetAffine(CMathTransform & t, double dx)
{
  CParameterCollection & p = t.GetParameters();
  p.SetDouble(CString("dxx"), 1.0);
  p.SetDouble(CString("dxy"), 0.0);
  p.SetDouble(CString("dx"), dx);
  p.SetDouble(CString("dyx"), 0.0);
  p.SetDouble(CString("dyy"), 1.0);
  p.SetDouble(CString("dy"), -2.0);
}

TEST(MathTransform, CopiesAndComparisons)
{
  auto a = Make(CMathTransform::kAffine);
  SetAffine(*a, 10.0);
  std::unique_ptr<CMathTransform> copy(a->Clone());
  EXPECT_EQ(copy->GetType(), CMathTransform::kAffine);
  EXPECT_TRUE(*copy == *a);
  CString why;
  EXPECT_TRUE(copy->IsNearlyEqual(*a, why));

  // The copy is its own: a change there is heard there only.
  copy->GetParameters().SetDouble(CString("dx"), 10.0 + 1e-9);
  EXPECT_FALSE(*copy == *a);
  EXPECT_TRUE(copy->IsNearlyEqual(*a));
  double x = 0.0, y = 0.0;
  copy->Transform(x, y);
  EXPECT_DOUBLE_EQ(x, 10.0 + 1e-9);
  x = 0.0;
  a->Transform(x, y);
  EXPECT_DOUBLE_EQ(x, 10.0);

  copy->GetParameters().SetDouble(CString("dx"), 11.0);
  why.clear();
  EXPECT_FALSE(copy->IsNearlyEqual(*a, why));
  EXPECT_TRUE(why.startsWith(CString(": parameters do not match "))) << why.toStdString();

  auto other = Make(CMathTransform::kFirstOrderPolynomial);
  why.clear();
  EXPECT_FALSE(other->IsNearlyEqual(*a, why));
  EXPECT_EQ(why, CString(": class types do not match"));
  EXPECT_FALSE(*other == *a);

  // Assignment through the base takes the values and makes the receiver compute with them.
  auto b = Make(CMathTransform::kAffine);
  *b = *a;
  EXPECT_TRUE(*b == *a);
  x = 1.0;
  y = 1.0;
  ASSERT_TRUE(b->Transform(x, y));
  EXPECT_DOUBLE_EQ(x, 11.0);
  EXPECT_DOUBLE_EQ(y, -1.0);

  // Pairs take part in exact equality, and come along in copies and assignments.
  auto & computed = static_cast<CComputedMathTransform &>(*b);
  computed.AddPoint(CPointPair(CString("p"), 1.0, 2.0, 3.0, 4.0));
  EXPECT_FALSE(*b == *a);
  EXPECT_TRUE(b->IsNearlyEqual(*a));
  std::unique_ptr<CMathTransform> bc(b->Clone());
  EXPECT_TRUE(*bc == *b);
  *a = *b;
  EXPECT_EQ(static_cast<CComputedMathTransform &>(*a).GetPointPair(0).name, CString("p"));
  ExpectFailures({{"pair index", [&] { computed.GetPointPair(1); }, 48, "CComputedMathTransform::GetPointPair", ""}});
}

TEST(MathTransform, PolynomialCopiesKeepTheirSolution)
{
  auto q = Make(CMathTransform::kQuadraticPolynomial2D);
  auto & poly = static_cast<CQuadraticPolynomial2D &>(*q);
  for (int i = 0; i < 8; ++i) {
    double const x = i * 10.0, y = (i * 7) % 5 * 10.0;
    poly.AddPoint(CPointPair(CString(), x, y, 2.0 * x + 0.01 * x * y, y - 0.02 * x * x));
  }
  poly.SetMaxIterations(9);
  ASSERT_TRUE(poly.Solve());
  std::unique_ptr<CMathTransform> copy(q->Clone());
  auto const & polyCopy = static_cast<CQuadraticPolynomial2D const &>(*copy);
  EXPECT_TRUE(polyCopy.IsSolved());
  EXPECT_EQ(polyCopy.GetMaxIterations(), 9);
  EXPECT_TRUE(*copy == *q);
  double x1 = 35.0, y1 = 12.0, x2 = 35.0, y2 = 12.0;
  q->Transform(x1, y1);
  copy->Transform(x2, y2);
  EXPECT_EQ(x1, x2);
  EXPECT_EQ(y1, y2);
  EXPECT_NEAR(x1, 70.0 + 4.2, 1e-9);

  // Assignment into a fresh polynomial of the same type, through the base.
  auto r = Make(CMathTransform::kQuadraticPolynomial2D);
  *r = *q;
  EXPECT_TRUE(static_cast<CComputedMathTransform &>(*r).IsSolved());
  double x3 = 35.0, y3 = 12.0;
  r->Transform(x3, y3);
  EXPECT_EQ(x3, x1);
  // Into another type: the values, but not the solved state.
  auto c = Make(CMathTransform::kCubicPolynomial2D);
  *c = *q;
  EXPECT_FALSE(static_cast<CComputedMathTransform &>(*c).IsSolved());
  EXPECT_EQ(static_cast<CComputedMathTransform &>(*c).GetPointCount(), 8);
  EXPECT_EQ(c->GetTypeName(), CString("Quadratic Polynomial 2D"));
  // It lacks the cubic terms, so it cannot compute until solved again.
  ExpectFailures({{"lacking terms", [&] { c->Transform(x3, y3); }, 31, "CLinearPolynomial2D::Transform", ""}});
}

// The best-type search on pairs from a known map.
struct Pairs
{
  ML::CCoordPointCollection from{ML::CProjectedPoint(2)}, to{ML::CProjectedPoint(2)};

  template <class Map>
  Pairs(int count, Map map)
  {
    for (int i = 0; i < count; ++i) {
      // Spread over the rectangle 0..1000 by 0..800.
      double const x = 50.0 + (i * 379) % 900, y = 40.0 + (i * 211) % 720;
      double tx = 0.0, ty = 0.0;
      map(x, y, tx, ty);
      from.AddInternals(x, y, 0.0);
      to.AddInternals(tx, ty, 0.0);
    }
  }
};

// Invertible by a polynomial of every degree: every round trip holds.
void Affine(double x, double y, double & tx, double & ty)
{
  tx = 500000.0 + 2.0 * x - 0.5 * y;
  ty = 4000000.0 + 0.5 * x + 2.0 * y;
}

// Curved: its inverse is no polynomial.
void Smooth(double x, double y, double & tx, double & ty)
{
  tx = 500000.0 + 2.0 * x - 0.5 * y + 1e-4 * x * y;
  ty = 4000000.0 + 0.5 * x + 2.0 * y - 2e-4 * x * x;
}

TEST(MathTransformFactory, DetermineBestMathTransform)
{
  EXPECT_EQ(CMathTransformFactory::DetermineBestMathTransform(Pairs(2, Smooth).from, Pairs(2, Smooth).to, 1000, 800,
                                                              1e-6, 7),
            -1);

  // The highest type the pair count allows, when its round trip holds.
  struct Row
  {
    int count;
    int maxType;
    int expected;
  };
  for (Row const row : {Row{25, 7, 7}, Row{25, 5, 5}, Row{16, 7, 6}, Row{12, 7, 5}, Row{7, 7, 4}}) {
    Pairs const pairs(row.count, Affine);
    EXPECT_EQ(CMathTransformFactory::DetermineBestMathTransform(pairs.from, pairs.to, 1000, 800, 1e-6, row.maxType),
              row.expected)
      << row.count << " pairs";
  }

  // Curved data that a linear fit cannot take both ways within the limit:
  // with only linear types allowed, the search falls through to the affine
  // type, which it gives untested.
  Pairs const curved(5, Smooth);
  EXPECT_EQ(CMathTransformFactory::DetermineBestMathTransform(curved.from, curved.to, 1000, 800, 1e-6, 7), 0);
  // The same with a generous limit takes the linear polynomial.
  EXPECT_EQ(CMathTransformFactory::DetermineBestMathTransform(curved.from, curved.to, 1000, 800, 0.05, 7), 3);
}

} // namespace
