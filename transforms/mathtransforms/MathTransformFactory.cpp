#include <velmora/foundation/VelmoraException.h>
#include <velmora/transforms/mathtransforms/MathTransform.h>
#include <velmora/transforms/mathtransforms/OldSchool.h>
#include <velmora/transforms/mathtransforms/Polynomial2D.h>

#include <cmath>
#include <memory>

namespace Velmora::CT::MT {

using EX::CVelmoraException;

namespace {
// Stations along each edge of the round-trip rectangle: its ends and the tenths between.
constexpr int kStations = 10;

// Pair counts that allow each polynomial, from the highest down.
struct Threshold
{
  long pairs;
  int type;
};
constexpr Threshold kThresholds[] = {
  {21, CMathTransform::kQuinticPolynomial2D}, {15, CMathTransform::kQuarticPolynomial2D},
  {10, CMathTransform::kCubicPolynomial2D},   {6, CMathTransform::kQuadraticPolynomial2D},
  {3, CMathTransform::kLinearPolynomial2D},
};

// Forward then back at one point; false when either fails or the point
// comes back further than the tolerances.
bool RoundTrip(CMathTransform const & ahead, CMathTransform const & back, double x, double y, double toleranceX,
               double toleranceY)
{
  double a = x, b = y;
  try {
    if (!ahead.Transform(a, b) || !back.Transform(a, b))
      return false;
  } catch (CVelmoraException const &) {
    return false;
  }
  // Written so that a NaN fails too.
  return std::fabs(a - x) <= toleranceX && std::fabs(b - y) <= toleranceY;
}

bool RoundTripsAlongEdges(CMathTransform const & ahead, CMathTransform const & back, int first, int second,
                          double limit)
{
  double const w = first, h = second;
  double const toleranceX = limit * w, toleranceY = limit * h;
  for (int i = 0; i <= kStations; ++i) {
    double const s = static_cast<double>(i) / kStations;
    if (!RoundTrip(ahead, back, s * w, 0.0, toleranceX, toleranceY) ||
        !RoundTrip(ahead, back, s * w, h, toleranceX, toleranceY) ||
        !RoundTrip(ahead, back, 0.0, s * h, toleranceX, toleranceY) ||
        !RoundTrip(ahead, back, w, s * h, toleranceX, toleranceY))
      return false;
  }
  return true;
}
} // namespace

CMathTransform * CMathTransformFactory::CreateMathTransform(CMathTransform::Type type)
{
  switch (type) {
  case CMathTransform::kAffine: return new CAffine();
  case CMathTransform::kFirstOrderPolynomial: return new CFirstOrderPolynomial();
  case CMathTransform::kSecondOrderPolynomial: return new CSecondOrderPolynomial();
  case CMathTransform::kLinearPolynomial2D: return new CLinearPolynomial2D();
  case CMathTransform::kQuadraticPolynomial2D: return new CQuadraticPolynomial2D();
  case CMathTransform::kCubicPolynomial2D: return new CCubicPolynomial2D();
  case CMathTransform::kQuarticPolynomial2D: return new CQuarticPolynomial2D();
  case CMathTransform::kQuinticPolynomial2D: return new CQuinticPolynomial2D();
  case CMathTransform::kTypeCount: break;
  }
  throw CVelmoraException(CVelmoraException::kClassNotImplemented, "MathTransformFactory::CreateMathTransform");
}

CMathTransform * CMathTransformFactory::CreateMathTransform(CMathTransformDataDB const & body)
{
  std::unique_ptr<CMathTransform> transform(CreateMathTransform(body.GetMathTransformType()));
  transform->AttachBody(body);
  return transform.release();
}

int CMathTransformFactory::DetermineBestMathTransform(ML::CCoordPointCollection const & from,
                                                      ML::CCoordPointCollection const & to, int first, int second,
                                                      double limit, int maxType)
{
  long const count = std::min(from.Count(), to.Count());
  int type = -1;
  for (Threshold const & threshold : kThresholds)
    if (count >= threshold.pairs) {
      type = threshold.type;
      break;
    }
  if (type < 0)
    return -1;
  if (type > maxType)
    type = maxType;

  for (; type >= 1; --type) {
    std::unique_ptr<CMathTransform> ahead(CreateMathTransform(type));
    std::unique_ptr<CMathTransform> back(CreateMathTransform(type));
    auto & aheadComputed = static_cast<CComputedMathTransform &>(*ahead);
    auto & backComputed = static_cast<CComputedMathTransform &>(*back);
    aheadComputed.AddPointList(from, to);
    backComputed.AddPointList(to, from);
    bool solved = false;
    try {
      solved = aheadComputed.Solve() && backComputed.Solve();
    } catch (CVelmoraException const &) {
      solved = false;
    }
    if (solved && RoundTripsAlongEdges(*ahead, *back, first, second, limit))
      return type;
  }
  return type;
}

} // namespace Velmora::CT::MT
