#pragma once
// Bivariate polynomials of degree 1 to 5, fitted to control-point pairs by
// least squares on compressed coordinates: inputs are centred and scaled to
// a span of 100, targets likewise, so that the powers stay of one size. The
// fit is direct (normal equations, one inversion) or iterative (the
// adjustor, from estimates of the affine part).
//
// The coefficient column holds X1 Xx Xy Y1 Yx Yy, then for each further
// degree its x′ terms and its y′ terms, each from the highest power of u
// down: Xx2 Xxy Xy2 Yx2 Yxy Yy2, Xx3 ... Each degree's class adds its own
// terms to the sum of the one before.
#include <velmora/transforms/mathtransforms/LeastSquaresAdjustor.h>
#include <velmora/transforms/mathtransforms/MathTransform.h>

#include <vector>

namespace Velmora::CT::MT {

class VELMORA_API CLinearPolynomial2D : public CComputedMathTransform, public CLeastSquaresAdjustor
{
public:
  static constexpr Type kType = kLinearPolynomial2D;

  CLinearPolynomial2D();
  CLinearPolynomial2D(CLinearPolynomial2D const &) = default;
  CLinearPolynomial2D & operator=(CLinearPolynomial2D const &) = default;

  Type GetType() const override { return kType; }
  CMathTransform * Clone() const override { return new CLinearPolynomial2D(*this); }
  // The settings go to the adjustor and the solution switch; any other
  // change unsolves and, once all is set, rebuilds the coefficient column.
  void OnChange(unsigned short const * name) override;
  // Also the adjustor's settings, from a polynomial.
  CMathTransform & operator=(CMathTransform const & other) override;
  // Code 31 while a parameter is unset.
  bool Transform(double & x, double & y) const override;
  using CMathTransform::Transform;
  // Code 49 with fewer pairs than the degree needs; false when the points
  // have no extent or the normal equations are singular.
  bool Solve() override;

  // The normal equations summed over the pairs, inverted once; false when
  // the inverse gives non-finite coefficients.
  virtual bool SolveDirect();
  virtual void CopyParametersToMatrix(CMatrix2D * matrix) const;
  virtual void CopyMatrixToParameters(CMatrix2D const * matrix);
  // Adds P(u, v) to x and Q(u, v) to y, for as many degrees as the column holds.
  virtual void TransformInternal(CMatrix2D const * coefficients, double & x, double & y, double u, double v) const;

  // The network of the iterative solution: two observations a pair.
  CMatrix2D * LoadEstimatedParameters() override;
  CMatrix2D * LoadActualObservations() override;
  CMatrix2D * ComputeEstimatedObservations(CMatrix2D * parameters) override;
  CMatrix2D * ComputePartials(CMatrix2D * parameters, CMatrix2D const * estimatedObservations) override;

  // Centres and spans of sources and targets into the six compression
  // parameters; false when either set of points has no extent.
  bool ComputeDataCompression();
  // Zero coefficients with the affine part fitted to the compressed targets.
  CMatrix2D * GetInitialEstimates();
  // One coefficient of the affine part (0..5) against the residuals, which lose its share.
  void AdjustCoefficient(long index, CMatrix2D * residuals);
  void AdjustAffineCoefficients(CMatrix2D * residuals);

  int GetDegree() const { return m_degree; }
  // Rows of the coefficient column: two per term of the degree.
  long GetCoefficientCount() const { return 2 * TermCount(m_degree); }
  CMatrix2D const & GetCoefficients() const { return m_coefficients; }
  bool GetDirectSolution() const { return m_direct; }

protected:
  explicit CLinearPolynomial2D(Type type);
  // Adds the terms of one degree (2 and up) of the column to x and y.
  static void AddDegree(CMatrix2D const * coefficients, int degree, double u, double v, double & x, double & y);
  static long TermCount(int degree) { return (degree + 1) * (degree + 2) / 2; }

private:
  void Rebuild();
  void ReadSettings();
  // Source coordinates to the compressed u, v.
  void Compress(double x, double y, double & u, double & v) const;
  // Every term of the degree at (u, v): 1, u, v, u², uv, v², u³ ...
  std::vector<double> Terms(double u, double v) const;
  // Row in the column of the x′ and y′ coefficients of a term.
  static long XIndex(long term);
  static long YIndex(long term);

  int m_degree;
  bool m_direct = true;
  CMatrix2D m_coefficients{0, 1};
  double m_scaleIn = 1.0;
  double m_xShiftIn = 0.0;
  double m_yShiftIn = 0.0;
  double m_scaleOut = 1.0;
  double m_xShiftOut = 0.0;
  double m_yShiftOut = 0.0;
};

class VELMORA_API CQuadraticPolynomial2D : public CLinearPolynomial2D
{
public:
  static constexpr Type kType = kQuadraticPolynomial2D;
  CQuadraticPolynomial2D() : CLinearPolynomial2D(kType) {}
  Type GetType() const override { return kType; }
  CMathTransform * Clone() const override { return new CQuadraticPolynomial2D(*this); }
  void TransformInternal(CMatrix2D const * coefficients, double & x, double & y, double u, double v) const override;

protected:
  explicit CQuadraticPolynomial2D(Type type) : CLinearPolynomial2D(type) {}
};

class VELMORA_API CCubicPolynomial2D : public CQuadraticPolynomial2D
{
public:
  static constexpr Type kType = kCubicPolynomial2D;
  CCubicPolynomial2D() : CQuadraticPolynomial2D(kType) {}
  Type GetType() const override { return kType; }
  CMathTransform * Clone() const override { return new CCubicPolynomial2D(*this); }
  void TransformInternal(CMatrix2D const * coefficients, double & x, double & y, double u, double v) const override;

protected:
  explicit CCubicPolynomial2D(Type type) : CQuadraticPolynomial2D(type) {}
};

class VELMORA_API CQuarticPolynomial2D : public CCubicPolynomial2D
{
public:
  static constexpr Type kType = kQuarticPolynomial2D;
  CQuarticPolynomial2D() : CCubicPolynomial2D(kType) {}
  Type GetType() const override { return kType; }
  CMathTransform * Clone() const override { return new CQuarticPolynomial2D(*this); }
  void TransformInternal(CMatrix2D const * coefficients, double & x, double & y, double u, double v) const override;

protected:
  explicit CQuarticPolynomial2D(Type type) : CCubicPolynomial2D(type) {}
};

class VELMORA_API CQuinticPolynomial2D : public CQuarticPolynomial2D
{
public:
  static constexpr Type kType = kQuinticPolynomial2D;
  CQuinticPolynomial2D() : CQuarticPolynomial2D(kType) {}
  Type GetType() const override { return kType; }
  CMathTransform * Clone() const override { return new CQuinticPolynomial2D(*this); }
  void TransformInternal(CMatrix2D const * coefficients, double & x, double & y, double u, double v) const override;
};

} // namespace Velmora::CT::MT
