// Fitted systems: a scanned map fitted to UTM by control points, converting
// through a transform to WGS 84 and back; the order of failures; the factory;
// comparison texts.
#include <velmora/projections/TransverseMercator.h>
#include <velmora/refsys/FittedCoordSys.h>
#include <velmora/transforms/CoordTransform.h>
#include <velmora/transforms/mathtransforms/Polynomial2D.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include <cmath>
#include <memory>

using namespace Velmora;
using namespace Velmora::CS;
using namespace Velmora::ML;
using namespace VelmoraTest;
using Velmora::CT::MT::CMathTransform;

namespace {

CProjectedCoordSys Utm32North()
{
  CHorizontalDatum wgs84;
  wgs84.GetEllipsoid().GetSemiMajor().SetValue(6378137.0);
  wgs84.GetEllipsoid().SetInvFlattening(298.257223563);
  CGeodeticCoordSys geodetic;
  geodetic.SetHorizontalDatum(wgs84);
  CProjectedCoordSys system;
  system.SetName(CString("UTM"));
  system.SetGeodeticCoordSys(geodetic);
  PJ::CUniversalTransverseMercator utm;
  utm.GetParameters().SetLong(CString("autoset"), 0);
  utm.GetParameters().SetLong(CString("is_north"), 1);
  utm.GetParameters().SetLong(CString("zone"), 32);
  system.SetProjection(utm);
  return system;
}

// A 4000 by 3000 pixel scan at 2 m a pixel, turned 1 degree, its corner at (480000, 5250000).
void PixelToUtm(double column, double row, double & e, double & n)
{
  double const turn = 1.0 * 3.14159265358979323846 / 180.0;
  double const u = 2.0 * column, v = -2.0 * row;
  e = 480000.0 + u * std::cos(turn) - v * std::sin(turn);
  n = 5250000.0 + u * std::sin(turn) + v * std::cos(turn);
}

// Control points: a 5 by 4 lattice over the scan.
void ControlPoints(CCoordPointCollection & pixels, CCoordPointCollection & utm)
{
  for (int i = 0; i <= 4; ++i)
    for (int j = 0; j <= 3; ++j) {
      double const column = 1000.0 * i, row = 1000.0 * j;
      double e, n;
      PixelToUtm(column, row, e, n);
      pixels.AddInternals(column, row, 0.0);
      utm.AddInternals(e, n, 0.0);
    }
}

std::unique_ptr<CFittedCoordSys> ScannedMap(CProjectedCoordSys const & utm, CMathTransform::Type type)
{
  CCoordPointCollection pixels{CProjectedPoint(2)}, metres{CProjectedPoint(2)};
  ControlPoints(pixels, metres);
  std::unique_ptr<CFittedCoordSys> fitted(
    CCoordSysFactory::CreateFittedCoordSys(&utm, kProjectedPoint, type, pixels, metres, 0, 0, 0.0));
  for (CMathTransform * t : {fitted->GetTransformAhead(), fitted->GetTransformBack()})
    EXPECT_TRUE(dynamic_cast<CT::MT::CComputedMathTransform &>(*t).Solve());
  return fitted;
}

} // namespace

TEST(FittedCoordSys, ScannedMapReachesWgs84ThroughATransformAndComesBack)
{
  CProjectedCoordSys const utm = Utm32North();
  for (auto type : {CMathTransform::kLinearPolynomial2D, CMathTransform::kQuadraticPolynomial2D}) {
    auto fitted = ScannedMap(utm, type);
    EXPECT_EQ(fitted->GetName(), CString("FittedCoordSys based on UTM"));
    EXPECT_EQ(fitted->GetType(), kFittedCoordSys);

    CHorizontalDatum wgs84 = utm.GetHorizontalDatum();
    CGeodeticCoordSys geodetic;
    geodetic.SetHorizontalDatum(wgs84);
    CT::CCoordTransform transform(fitted.get(), &geodetic);
    for (double column : {0.0, 1234.5, 3999.0})
      for (double row : {0.0, 777.25, 2999.0}) {
        double e, n;
        PixelToUtm(column, row, e, n);
        double lon = e, lat = n;
        ASSERT_TRUE(utm.ToGeodeticBase(lon, lat));
        // Pair path.
        double x = column, y = row;
        ASSERT_TRUE(transform.ConvertAhead(x, y));
        EXPECT_NEAR(x, lon, 1e-9) << column << " " << row;
        EXPECT_NEAR(y, lat, 1e-9);
        ASSERT_TRUE(transform.ConvertBack(x, y));
        EXPECT_NEAR(x, column, 1e-4);
        EXPECT_NEAR(y, row, 1e-4);
        // Point path agrees.
        CGeodeticPoint out(2);
        ASSERT_TRUE(transform.ConvertAhead(CProjectedPoint(column, row), out));
        EXPECT_NEAR(out.GetLon().GetInternal(), lon, 1e-9);
      }
  }
}

TEST(FittedCoordSys, FailuresInTheirOrder)
{
  CFittedCoordSys bare(nullptr, kProjectedPoint, CMathTransform::kAffine);
  EXPECT_EQ(bare.GetBaseCoordSys(), nullptr);
  CGeodeticPoint geodetic(2);
  CProjectedPoint projected(2);
  ExpectFailures({
    {"wrong class in", [&] { bare.ToGeodeticBase(CGeodeticPoint(1.0, 2.0), geodetic); }, 45,
     "CFittedCoordSys::ToGeodeticBase", ""},
    {"no base ahead", [&] { bare.ToGeodeticBase(CProjectedPoint(1.0, 2.0), geodetic); }, 33,
     "CFittedCoordSys::ToGeodeticBase", ""},
    {"wrong class out", [&] { bare.FromGeodeticBase(CGeodeticPoint(1.0, 2.0), geodetic); }, 46,
     "CFittedCoordSys::FromGeodeticBase", ""},
    {"no base back", [&] { bare.FromGeodeticBase(CGeodeticPoint(1.0, 2.0), projected); }, 33,
     "CFittedCoordSys::FromGeodeticBase", ""},
    {"no datum", [&] { bare.GetHorizontalDatum(); }, 33, "CFittedCoordSysData::GetHorizontalDatum", ""},
    {"fitted base", [&] { bare.SetBaseCoordSys(&bare); }, 52, "CFittedCoordSysData::SetBaseCoordSys",
     "CoordSys(Unknown)"},
  });

  // The envelope comes before the class of the point.
  CEnvelope envelope(kProjectedPoint);
  envelope.SetAlwaysAccept(false);
  envelope.GetMinPoint()->SetInternals(0.0, 0.0);
  envelope.GetMaxPoint()->SetInternals(10.0, 10.0);
  bare.SetEnvelope(envelope);
  auto const e = Raised([&] { bare.ToGeodeticBase(CProjectedPoint(20.0, 2.0), geodetic); });
  EXPECT_EQ(e.GetErrorCode(), 43);
  EXPECT_EQ(e.GetDetails(), CString("Point is not within the specified envelope."));

  // No best-type search without a rectangle: -1 reaches the transform factory as it is.
  CCoordPointCollection none{CProjectedPoint(2)};
  auto const f = Raised([&] {
    delete CCoordSysFactory::CreateFittedCoordSys(nullptr, kProjectedPoint, static_cast<CMathTransform::Type>(-1),
                                                  none, none, 0, 100, 0.01);
  });
  EXPECT_EQ(f.GetErrorCode(), 50);
}

TEST(FittedCoordSys, BestTypeSearchAndComparison)
{
  CProjectedCoordSys const utm = Utm32North();
  CCoordPointCollection pixels{CProjectedPoint(2)}, metres{CProjectedPoint(2)};
  ControlPoints(pixels, metres);
  // Twenty pairs allow a quartic, but four rows of control cannot fix a term in y to the fourth:
  // the search falls to the cubic.
  std::unique_ptr<CFittedCoordSys> best(CCoordSysFactory::CreateFittedCoordSys(
    &utm, kProjectedPoint, static_cast<CMathTransform::Type>(-1), pixels, metres, 4000, 3000, 1e-3));
  EXPECT_EQ(best->GetTransformAhead()->GetType(), CMathTransform::kCubicPolynomial2D);

  auto a = ScannedMap(utm, CMathTransform::kLinearPolynomial2D);
  auto b = ScannedMap(utm, CMathTransform::kLinearPolynomial2D);
  EXPECT_TRUE(a->IsNearlyEqual(*b));
  EXPECT_TRUE(*a == *b);
  CFittedCoordSys copy(*a);
  EXPECT_TRUE(copy == *a);

  CString why;
  auto c = ScannedMap(utm, CMathTransform::kQuadraticPolynomial2D);
  EXPECT_FALSE(a->IsNearlyEqual(*c, why));
  EXPECT_TRUE(why.startsWith(QStringLiteral(": forward math transforms do not match "))) << why.toStdString();
  b->SetBaseCoordSys(nullptr);
  why.clear();
  EXPECT_FALSE(a->IsNearlyEqual(*b, why));
  EXPECT_EQ(why, CString(": base coordinate system defined on one side but not the other"));
  b->SetBaseCoordSys(&utm);
  b->SetTransformBack(nullptr);
  why.clear();
  EXPECT_FALSE(a->IsNearlyEqual(*b, why));
  EXPECT_EQ(why, CString(": transform back defined on one side but not the other"));

  // Completeness: the base must be a stored, identified system.
  a->GetIdentifiers().Add("VM", "SCAN1");
  CEnvelope envelope;
  envelope.GetIdentifiers().Add("VM", "WORLD");
  a->SetEnvelope(envelope);
  CProjectedPoint style(2);
  style.GetIdentifiers().Add("VM", "PIXELS");
  a->SetPointStyle(style);
  auto const e = Raised([&] { a->IsFullyDefined(nullptr); });
  EXPECT_EQ(e.GetErrorCode(), 25);
  EXPECT_EQ(e.GetDetails(), CString("BaseCoordSys"));
  EXPECT_EQ(e.GetLocation(), CString("CFittedCoordSysData::IsFullyDefined"));
}
