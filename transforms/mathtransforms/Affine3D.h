#pragma once
// CAffine3D: a three-dimensional affine map kept as a 3-by-4 matrix in row
// order, the last row 0 0 0 1 implied. Every building operation multiplies
// the matrix so far from the left, so the operation called last acts last on
// a point. The inverse is made on first use and kept; the transform calls
// are const and fill that cache, so one object serves one thread at a time.
#include <velmora/foundation/Export.h>
#include <velmora/measures/BPoint.h>

namespace Velmora::CT::MT {

class VELMORA_API CAffine3D
{
public:
  using Matrix = double[3][4];

  // The identity.
  CAffine3D();

  // Back to the identity.
  void Reset();
  // new = m x old, m being a 3-by-4 matrix with the implied last row.
  void Multiply(Matrix const & m);
  // Row i of the 3-by-3 part times the i-th factor; the translation column stays.
  void Scale(double a, double b, double c);
  // Adds to the translation column.
  void Shift(double dx, double dy, double dz);
  // The right-handed rotations of a vector by an angle in radians.
  void RotateX(double angle);
  void RotateY(double angle);
  void RotateZ(double angle);
  // X first, then Y, then Z.
  void RotateXYZ(double a, double b, double c);
  // The small-angle matrix of rows (1, c, -b), (-c, 1, a), (b, -a, 1).
  void RotateXYZApproximate(double a, double b, double c);
  // The same rotations about a pivot: Shift(-pivot), rotation, Shift(pivot).
  void RotatePointXYZ(ML::BPoint3D const & pivot, double a, double b, double c);
  void RotatePointXYZApproximate(ML::BPoint3D const & pivot, double a, double b, double c);

  // Notes whether the matrix is bytewise the identity; the forward transform
  // then leaves points alone.
  void PrepareForward() const;
  // Inverts the 4-by-4 form by LU decomposition. Code 58 at
  // "CAffine3D::PrepareReverse" for a singular matrix.
  void PrepareReverse() const;

  // In place. The two-dimensional forms take z as 0 and keep x and y.
  void TransformForward(int count, ML::BPoint3D * points) const;
  void TransformReverse(int count, ML::BPoint3D * points) const;
  void TransformForward(int count, ML::BPoint2D * points) const;
  void TransformReverse(int count, ML::BPoint2D * points) const;

  Matrix const & GetForward() const { return m_forward; }
  // Prepares the inverse when needed.
  Matrix const & GetReverse() const;
  bool IsIdentity() const;

  // Doolittle elimination with partial pivoting, in place: the
  // unit lower factor below the diagonal, the upper factor on and above it,
  // the row order in `order`. False for a singular matrix.
  static bool LUDecompose(double a[4][4], int order[4]);
  // Solves the decomposed system for one right-hand side, in place.
  static void LUBackSubstitute(double const a[4][4], int const order[4], double b[4]);

private:
  // Every mutator goes through here: both caches are stale afterwards.
  void Changed();

  Matrix m_forward;
  mutable Matrix m_reverse;
  mutable bool m_reverseReady = false;
  mutable bool m_forwardReady = false;
  mutable bool m_identity = false;
};

} // namespace Velmora::CT::MT
