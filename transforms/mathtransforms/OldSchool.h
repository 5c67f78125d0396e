#pragma once
// The three older fits: affine, first order (with the xy term) and second
// order (with x² and y² as well). They are solved by repeated passes of
// one-column least squares over all pairs, once three distinct pairs are at
// hand, and report unset parameters by a false result.
#include <velmora/transforms/mathtransforms/MathTransform.h>

#include <array>

namespace Velmora::CT::MT {

class VELMORA_API CMathTransformOldSchool : public CComputedMathTransform
{
public:
  // The basis columns, in the order the fits go through them.
  enum Column : int { kOne = 0, kX, kY, kXY, kXX, kYY, kMaxColumns };

  void OnChange(unsigned short const * name) override;
  // False, with x and y unchanged, while a parameter is unset.
  bool Transform(double & x, double & y) const override;
  using CMathTransform::Transform;
  // Code 49 with fewer than 3 pairs; false with fewer than 3 distinct sources.
  bool Solve() override;

  // The value of a basis column at (x, y).
  static double Basis(int column, double x, double y);
  // Five passes, each one polyfics for the x targets and one for the y
  // targets. The residuals come in as model minus target (the negated targets
  // for zero coefficients) and leave as what remains.
  static void polyfix(long n, double const * x, double const * y, double * cx, double * cy, double * rx, double * ry,
                      int columns = 3);
  // One pass over the basis columns: each takes the least-squares step of
  // its own coefficient against the current residuals.
  static void polyfics(long n, double const * x, double const * y, double * coefficients, double * residuals,
                       int columns = 3);

protected:
  explicit CMathTransformOldSchool(Type type);
  CMathTransformOldSchool(CMathTransformOldSchool const &) = default;
  CMathTransformOldSchool & operator=(CMathTransformOldSchool const &) = default;

  // Fits the n pairs whose coordinates source and target hold, x of pair i
  // at 2i and y at 2i + 1, and writes the coefficients to the parameters.
  virtual void LeastSquaresApproximation(long n, double const * source, double const * target);
  // How many basis columns the class uses: 3, 4 or 6.
  int Columns() const;

private:
  // Coefficient names of x′ and y′ in basis order; null past the class's columns.
  static char const * XName(int type, int column);
  static char const * YName(int type, int column);
  void Rebuild();

  std::array<double, kMaxColumns> m_cx{};
  std::array<double, kMaxColumns> m_cy{};
  bool m_ready = false;
};

// x′ = dxx·x + dxy·y + dx, y′ = dyx·x + dyy·y + dy.
class VELMORA_API CAffine : public CMathTransformOldSchool
{
public:
  static constexpr Type kType = kAffine;
  CAffine() : CMathTransformOldSchool(kType) {}
  CAffine(CAffine const &) = default;
  CAffine & operator=(CAffine const &) = default;
  Type GetType() const override { return kType; }
  CMathTransform * Clone() const override { return new CAffine(*this); }
};

// The affine terms and dxxy·x·y, dyyx·x·y.
class VELMORA_API CFirstOrderPolynomial : public CMathTransformOldSchool
{
public:
  static constexpr Type kType = kFirstOrderPolynomial;
  CFirstOrderPolynomial() : CMathTransformOldSchool(kType) {}
  CFirstOrderPolynomial(CFirstOrderPolynomial const &) = default;
  CFirstOrderPolynomial & operator=(CFirstOrderPolynomial const &) = default;
  Type GetType() const override { return kType; }
  CMathTransform * Clone() const override { return new CFirstOrderPolynomial(*this); }
};

// The first-order terms and dxxx·x², dxyy·y², dyxx·x², dyyy·y².
class VELMORA_API CSecondOrderPolynomial : public CMathTransformOldSchool
{
public:
  static constexpr Type kType = kSecondOrderPolynomial;
  CSecondOrderPolynomial() : CMathTransformOldSchool(kType) {}
  CSecondOrderPolynomial(CSecondOrderPolynomial const &) = default;
  CSecondOrderPolynomial & operator=(CSecondOrderPolynomial const &) = default;
  Type GetType() const override { return kType; }
  CMathTransform * Clone() const override { return new CSecondOrderPolynomial(*this); }
};

} // namespace Velmora::CT::MT
