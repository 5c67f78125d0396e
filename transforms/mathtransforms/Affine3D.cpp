#include <velmora/transforms/mathtransforms/Affine3D.h>

#include <velmora/foundation/VelmoraException.h>

#include <cmath>
#include <cstring>
#include <utility>

namespace Velmora::CT::MT {

namespace {

constexpr CAffine3D::Matrix kIdentity = {{1.0, 0.0, 0.0, 0.0}, {0.0, 1.0, 0.0, 0.0}, {0.0, 0.0, 1.0, 0.0}};

// A pivot this small against the largest entry of the linear part counts as
// zero: the elimination of a rank-deficient matrix leaves rounding dust, not 0.
constexpr double kSingularRatio = 1e-14;

void Copy(CAffine3D::Matrix & to, CAffine3D::Matrix const & from) { std::memcpy(to, from, sizeof(CAffine3D::Matrix)); }

inline void Apply(CAffine3D::Matrix const & m, double & x, double & y, double & z)
{
  double const u = m[0][0] * x + m[0][1] * y + m[0][2] * z + m[0][3];
  double const v = m[1][0] * x + m[1][1] * y + m[1][2] * z + m[1][3];
  double const w = m[2][0] * x + m[2][1] * y + m[2][2] * z + m[2][3];
  x = u;
  y = v;
  z = w;
}

} // namespace

CAffine3D::CAffine3D() { Reset(); }

void CAffine3D::Changed()
{
  m_forwardReady = false;
  m_reverseReady = false;
}

void CAffine3D::Reset()
{
  Copy(m_forward, kIdentity);
  Changed();
}

void CAffine3D::Multiply(Matrix const & m)
{
  Matrix product;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 4; ++j)
      product[i][j] = m[i][0] * m_forward[0][j] + m[i][1] * m_forward[1][j] + m[i][2] * m_forward[2][j];
    product[i][3] += m[i][3];
  }
  Copy(m_forward, product);
  Changed();
}

void CAffine3D::Scale(double a, double b, double c)
{
  double const factor[3] = {a, b, c};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      m_forward[i][j] *= factor[i];
  Changed();
}

void CAffine3D::Shift(double dx, double dy, double dz)
{
  m_forward[0][3] += dx;
  m_forward[1][3] += dy;
  m_forward[2][3] += dz;
  Changed();
}

void CAffine3D::RotateX(double angle)
{
  double const c = std::cos(angle), s = std::sin(angle);
  Matrix const m = {{1.0, 0.0, 0.0, 0.0}, {0.0, c, -s, 0.0}, {0.0, s, c, 0.0}};
  Multiply(m);
}

void CAffine3D::RotateY(double angle)
{
  double const c = std::cos(angle), s = std::sin(angle);
  Matrix const m = {{c, 0.0, s, 0.0}, {0.0, 1.0, 0.0, 0.0}, {-s, 0.0, c, 0.0}};
  Multiply(m);
}

void CAffine3D::RotateZ(double angle)
{
  double const c = std::cos(angle), s = std::sin(angle);
  Matrix const m = {{c, -s, 0.0, 0.0}, {s, c, 0.0, 0.0}, {0.0, 0.0, 1.0, 0.0}};
  Multiply(m);
}

void CAffine3D::RotateXYZ(double a, double b, double c)
{
  RotateX(a);
  RotateY(b);
  RotateZ(c);
}

void CAffine3D::RotateXYZApproximate(double a, double b, double c)
{
  Matrix const m = {{1.0, c, -b, 0.0}, {-c, 1.0, a, 0.0}, {b, -a, 1.0, 0.0}};
  Multiply(m);
}

void CAffine3D::RotatePointXYZ(ML::BPoint3D const & pivot, double a, double b, double c)
{
  Shift(-pivot.x, -pivot.y, -pivot.z);
  RotateXYZ(a, b, c);
  Shift(pivot.x, pivot.y, pivot.z);
}

void CAffine3D::RotatePointXYZApproximate(ML::BPoint3D const & pivot, double a, double b, double c)
{
  Shift(-pivot.x, -pivot.y, -pivot.z);
  RotateXYZApproximate(a, b, c);
  Shift(pivot.x, pivot.y, pivot.z);
}

void CAffine3D::PrepareForward() const
{
  // Bytewise on purpose: only a matrix that is exactly the table, not one
  // that rounds to it, may skip the product.
  m_identity = std::memcmp(m_forward, kIdentity, sizeof(Matrix)) == 0;
  m_forwardReady = true;
}

bool CAffine3D::IsIdentity() const
{
  if (!m_forwardReady)
    PrepareForward();
  return m_identity;
}

bool CAffine3D::LUDecompose(double a[4][4], int order[4])
{
  // The scale of the linear part: translations say nothing about singularity.
  double largest = 0.0;
  for (int i = 0; i < 4; ++i) {
    order[i] = i;
    for (int j = 0; j < 3; ++j)
      largest = std::fmax(largest, std::fabs(a[i][j]));
  }
  double const tiny = largest * kSingularRatio;
  for (int k = 0; k < 4; ++k) {
    int pivot = k;
    for (int i = k + 1; i < 4; ++i)
      if (std::fabs(a[i][k]) > std::fabs(a[pivot][k]))
        pivot = i;
    if (!(std::fabs(a[pivot][k]) > tiny))
      return false;
    if (pivot != k) {
      for (int j = 0; j < 4; ++j)
        std::swap(a[pivot][j], a[k][j]);
      std::swap(order[pivot], order[k]);
    }
    for (int i = k + 1; i < 4; ++i) {
      a[i][k] /= a[k][k];
      for (int j = k + 1; j < 4; ++j)
        a[i][j] -= a[i][k] * a[k][j];
    }
  }
  return true;
}

void CAffine3D::LUBackSubstitute(double const a[4][4], int const order[4], double b[4])
{
  double y[4];
  for (int i = 0; i < 4; ++i) {
    double sum = b[order[i]];
    for (int j = 0; j < i; ++j)
      sum -= a[i][j] * y[j];
    y[i] = sum;
  }
  for (int i = 3; i >= 0; --i) {
    double sum = y[i];
    for (int j = i + 1; j < 4; ++j)
      sum -= a[i][j] * b[j];
    b[i] = sum / a[i][i];
  }
}

void CAffine3D::PrepareReverse() const
{
  double lu[4][4];
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 4; ++j)
      lu[i][j] = m_forward[i][j];
  lu[3][0] = lu[3][1] = lu[3][2] = 0.0;
  lu[3][3] = 1.0;
  int order[4];
  if (!LUDecompose(lu, order))
    throw EX::CVelmoraException(EX::CVelmoraException::kMatrixSingular, "CAffine3D::PrepareReverse");
  // One column of the inverse per unit vector; the fourth row is 0 0 0 1 and not kept.
  for (int j = 0; j < 4; ++j) {
    double column[4] = {0.0, 0.0, 0.0, 0.0};
    column[j] = 1.0;
    LUBackSubstitute(lu, order, column);
    for (int i = 0; i < 3; ++i)
      m_reverse[i][j] = column[i];
  }
  m_reverseReady = true;
}

CAffine3D::Matrix const & CAffine3D::GetReverse() const
{
  if (!m_reverseReady)
    PrepareReverse();
  return m_reverse;
}

void CAffine3D::TransformForward(int count, ML::BPoint3D * points) const
{
  if (IsIdentity())
    return;
  for (int i = 0; i < count; ++i)
    Apply(m_forward, points[i].x, points[i].y, points[i].z);
}

void CAffine3D::TransformReverse(int count, ML::BPoint3D * points) const
{
  Matrix const & m = GetReverse();
  for (int i = 0; i < count; ++i)
    Apply(m, points[i].x, points[i].y, points[i].z);
}

void CAffine3D::TransformForward(int count, ML::BPoint2D * points) const
{
  if (IsIdentity())
    return;
  for (int i = 0; i < count; ++i) {
    double z = 0.0;
    Apply(m_forward, points[i].x, points[i].y, z);
  }
}

void CAffine3D::TransformReverse(int count, ML::BPoint2D * points) const
{
  Matrix const & m = GetReverse();
  for (int i = 0; i < count; ++i) {
    double z = 0.0;
    Apply(m, points[i].x, points[i].y, z);
  }
}

} // namespace Velmora::CT::MT
