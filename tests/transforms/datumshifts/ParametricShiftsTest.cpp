// The parametric shifts: agreement with PROJ on published parameter sets,
// the way each form treats heights and unset parameters, and the deliberate
// quirks (sticky null Molodensky, pole nudge, unwrapped longitude rotation,
// unscaled Molodensky-Badekas pivot term).
#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/Constants.h>
#include <velmora/transforms/datumshifts/ParametricShifts.h>

#include <gtest/gtest.h>

#include "../../support/ReferenceData.h"
#include "../../support/TestSupport.h"

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

using namespace Velmora;
using namespace Velmora::CT::DS;
using namespace VelmoraTest;
using Velmora::CS::CHorizontalDatum;
using Velmora::ML::BPoint3D;
using Velmora::ML::CGeodeticPoint;

namespace {

CHorizontalDatum Datum(double semiMajor, double inverseFlattening)
{
  CHorizontalDatum datum;
  datum.GetEllipsoid().GetSemiMajor().SetValue(semiMajor);
  datum.GetEllipsoid().SetInvFlattening(inverseFlattening);
  return datum;
}

// The figures PROJ knows as WGS84, intl, airy and bessel.
CHorizontalDatum const kWgs84 = Datum(6378137.0, 298.257223563);
CHorizontalDatum const kIntl = Datum(6378388.0, 297.0);
CHorizontalDatum const kAiry = Datum(6377563.396, 299.3249646);
CHorizontalDatum const kBessel = Datum(6377397.155, 299.1528128);

constexpr double kArcSecond = 1.0 / 3600.0;

using Values = std::initializer_list<std::pair<char const *, double>>;

// Every item set, then the given values (linear in metres, angular in
// degrees, k in parts per million).
void Define(CDatumShift & shift, CHorizontalDatum const & from, CHorizontalDatum const & to, Values values)
{
  shift.SetSrcDatum(from);
  shift.SetDestDatum(to);
  CParameterCollection & parameters = shift.GetParameters();
  parameters.SetAllItems();
  for (auto const & [name, value] : values) {
    if (parameters.GetItemType(CString(name)) == CParameter::kDouble)
      parameters.SetDouble(CString(name), value);
    else
      parameters.SetItemInternal(CString(name), value);
  }
}

std::unique_ptr<CDatumShift> Make(CDatumShift::Type type, CHorizontalDatum const & from, CHorizontalDatum const & to,
                                  Values values)
{
  std::unique_ptr<CDatumShift> shift(CDatumShiftFactory::CreateDatumShift(type));
  Define(*shift, from, to, values);
  return shift;
}

// The published sets. ED50 and Tokyo by three translations; OSGB 1936 by
// seven parameters with rotations in the position-vector sense.
Values const kEd50{{"dx", -87.0}, {"dy", -98.0}, {"dz", -121.0}};
Values const kTokyo{{"dx", -148.0}, {"dy", 507.0}, {"dz", 685.0}};
Values const kOsgb{{"dx", 446.448},
                   {"dy", -125.157},
                   {"dz", 542.06},
                   {"rx", 0.15 * kArcSecond},
                   {"ry", 0.247 * kArcSecond},
                   {"rz", 0.842 * kArcSecond},
                   {"k", -20.489}};

struct Pair
{
  BPoint3D from, to;
};

std::vector<Pair> ReadPairs(char const * name)
{
  std::vector<Pair> pairs;
  for (auto const & r : VelmoraTest::ReadRows(name, 6))
    pairs.push_back({BPoint3D(r[0], r[1], r[2]), BPoint3D(r[3], r[4], r[5])});
  EXPECT_GT(pairs.size(), 10u) << name;
  return pairs;
}

BPoint3D Shifted(CDatumShift const & shift, BPoint3D const & p, bool forward)
{
  CGeodeticPoint const in(p.x, p.y, p.z);
  CGeodeticPoint out(3);
  EXPECT_TRUE(forward ? shift.ShiftForward(in, out) : shift.ShiftBack(in, out));
  BPoint3D r;
  out.GetInternals(r.x, r.y, r.z);
  return r;
}

constexpr double kDegreeTolerance = 1e-9;
constexpr double kHeightTolerance = 0.001;

// Each file's pairs, one way: from the left column to the right (forward)
// or from the right to the left (back). Reports the largest differences.
void ExpectAgreement(CDatumShift const & shift, char const * file, bool forward, char const * what)
{
  double worstAngle = 0.0, worstHeight = 0.0;
  for (Pair const & p : ReadPairs(file)) {
    BPoint3D const & in = forward ? p.from : p.to;
    BPoint3D const & want = forward ? p.to : p.from;
    BPoint3D const got = Shifted(shift, in, forward);
    double const angle = std::fmax(std::fabs(got.x - want.x), std::fabs(got.y - want.y));
    double const height = std::fabs(got.z - want.z);
    EXPECT_LE(angle, kDegreeTolerance) << what << " at " << in.x << " " << in.y;
    EXPECT_LE(height, kHeightTolerance) << what << " at " << in.x << " " << in.y;
    worstAngle = std::fmax(worstAngle, angle);
    worstHeight = std::fmax(worstHeight, height);
  }
  std::printf("[ against PROJ ] %-58s max %.2e deg, %.2e m\n", what, worstAngle, worstHeight);
}

using VelmoraTest::CartographicFlag;

} // namespace

// Against PROJ (data from scripts/gen-helmert-refs.sh). The shifts map the
// source datum to the destination datum, as EPSG states the sets; the way
// back is checked on the same pairs read from right to left.

TEST(ParametricShiftsAgainstProj, GeocentricTranslationIsThreeParameterHelmert)
{
  auto const ed50 = Make(CDatumShift::kGeocentricTranslation, kIntl, kWgs84, kEd50);
  auto const tokyo = Make(CDatumShift::kGeocentricTranslation, kBessel, kWgs84, kTokyo);
  for (bool forward : {true, false}) {
    ExpectAgreement(*ed50, "helmert_ed50_wgs84.txt", forward,
                    forward ? "GeocentricTranslation ED50 to WGS 84" : "GeocentricTranslation WGS 84 to ED50");
    ExpectAgreement(*tokyo, "helmert_tokyo_wgs84.txt", forward,
                    forward ? "GeocentricTranslation Tokyo to WGS 84" : "GeocentricTranslation WGS 84 to Tokyo");
  }
}

// RotateXYZApproximate(-rx, -ry, -rz) gives the rows (1, -rz, ry), (rz, 1, -rx),
// (-ry, rx, 1): PROJ's small-angle matrix in the position-vector convention
// (the sense of +towgs84), not the coordinate-frame one.
TEST(ParametricShiftsAgainstProj, BursaWolfeIsPositionVectorHelmertWithSmallAngleRotations)
{
  auto const osgb = Make(CDatumShift::kBursaWolfe, kAiry, kWgs84, kOsgb);
  ExpectAgreement(*osgb, "helmert_osgb36_wgs84_approx.txt", true, "BursaWolfe OSGB 1936 to WGS 84");
  // Back through the exact inverse of the same matrix: PROJ's forward pairs, read backwards.
  ExpectAgreement(*osgb, "helmert_osgb36_wgs84_approx.txt", false, "BursaWolfe WGS 84 to OSGB 1936");
}

// Exact rotations in the position-vector sense, turning about x first, then y,
// then z. PROJ's +exact turns about z first: the two orders part only by
// products of two rotation angles, about 5e-10 degree for this set.
TEST(ParametricShiftsAgainstProj, SevenParameterIsPositionVectorExactHelmertUpToTheOrderOfRotations)
{
  auto const osgb = Make(CDatumShift::kSevenParameter, kAiry, kWgs84, kOsgb);
  ExpectAgreement(*osgb, "helmert_osgb36_wgs84_exact.txt", true, "SevenParameter OSGB 1936 to WGS 84");
  ExpectAgreement(*osgb, "helmert_osgb36_wgs84_exact.txt", false, "SevenParameter WGS 84 to OSGB 1936");
}

TEST(ParametricShiftsAgainstProj, MolodenskyForwardIsTheStandardFormula)
{
  auto const ed50 = Make(CDatumShift::kMolodensky, kIntl, kWgs84, kEd50);
  auto const tokyo = Make(CDatumShift::kMolodensky, kBessel, kWgs84, kTokyo);
  ExpectAgreement(*ed50, "molodensky_ed50_wgs84_forward.txt", true, "Molodensky ED50 to WGS 84");
  ExpectAgreement(*tokyo, "molodensky_tokyo_wgs84_forward.txt", true, "Molodensky Tokyo to WGS 84");
}

// The way back is the one-step formula of the reversed set on the destination
// ellipsoid, which is what PROJ's forward computes for that set. PROJ's own
// inverse is another approximation and is not the reference.
TEST(ParametricShiftsAgainstProj, MolodenskyBackIsTheReversedSetFromTheDestinationNotAnInverse)
{
  auto const ed50 = Make(CDatumShift::kMolodensky, kIntl, kWgs84, kEd50);
  auto const tokyo = Make(CDatumShift::kMolodensky, kBessel, kWgs84, kTokyo);
  // The back files hold (destination point, result): their pairs run forward in file order.
  for (auto const & [shift, file, what] :
       {std::tuple{ed50.get(), "molodensky_ed50_wgs84_back.txt", "Molodensky WGS 84 to ED50"},
        std::tuple{tokyo.get(), "molodensky_tokyo_wgs84_back.txt", "Molodensky WGS 84 to Tokyo"}}) {
    double worstAngle = 0.0, worstHeight = 0.0;
    for (Pair const & p : ReadPairs(file)) {
      BPoint3D const got = Shifted(*shift, p.from, false);
      worstAngle = std::fmax(worstAngle, std::fmax(std::fabs(got.x - p.to.x), std::fabs(got.y - p.to.y)));
      worstHeight = std::fmax(worstHeight, std::fabs(got.z - p.to.z));
    }
    EXPECT_LE(worstAngle, kDegreeTolerance) << what;
    EXPECT_LE(worstHeight, kHeightTolerance) << what;
    std::printf("[ against PROJ ] %-58s max %.2e deg, %.2e m\n", what, worstAngle, worstHeight);
  }
}

TEST(ParametricShiftsAgainstProj, MolodenskyRoundTripClosesOnlyToTheMethodsAccuracy)
{
  auto const ed50 = Make(CDatumShift::kMolodensky, kIntl, kWgs84, kEd50);
  double worstAngle = 0.0, worstHeight = 0.0;
  for (Pair const & p : ReadPairs("molodensky_ed50_wgs84_forward.txt")) {
    BPoint3D const there = Shifted(*ed50, p.from, true);
    BPoint3D const back = Shifted(*ed50, there, false);
    worstAngle = std::fmax(worstAngle, std::fmax(std::fabs(back.x - p.from.x), std::fabs(back.y - p.from.y)));
    worstHeight = std::fmax(worstHeight, std::fabs(back.z - p.from.z));
  }
  // Not iterated: centimetres at most, but visibly more than rounding.
  EXPECT_LT(worstAngle, 1e-6);
  EXPECT_LT(worstHeight, 0.05);
  EXPECT_GT(worstAngle, 1e-9);
}

// The affine classes: one frame, different matrices.

TEST(ParametricShifts, SimplerAffineMethodsAreTheSevenParameterWithPartsLeftOut)
{
  Values const rotations{{"dx", 10.0}, {"dy", -20.0}, {"dz", 30.0}, {"rx", 2.0 * kArcSecond},
                         {"ry", -3.0 * kArcSecond}, {"rz", 5.0 * kArcSecond}};
  // The rotations of the seven-parameter set are left at 0 by SetAllItems.
  Values const scaleOnly{{"dx", 10.0}, {"dy", -20.0}, {"dz", 30.0}, {"k", 7.5}};
  // k is set by SetAllItems to 0 and never touched: the scale is exactly 1.
  auto const seven = Make(CDatumShift::kSevenParameter, kIntl, kWgs84, rotations);
  auto const six = Make(CDatumShift::kSixParameter, kIntl, kWgs84, rotations);
  auto const sevenScaled = Make(CDatumShift::kSevenParameter, kIntl, kWgs84, scaleOnly);
  auto const four = Make(CDatumShift::kFourParameter, kIntl, kWgs84, scaleOnly);
  BPoint3D const p(12.5, 47.25, 800.0);
  for (bool forward : {true, false}) {
    BPoint3D const a = Shifted(*seven, p, forward), b = Shifted(*six, p, forward);
    EXPECT_EQ(a.x, b.x);
    EXPECT_EQ(a.y, b.y);
    EXPECT_EQ(a.z, b.z);
    BPoint3D const c = Shifted(*sevenScaled, p, forward), d = Shifted(*four, p, forward);
    EXPECT_EQ(c.x, d.x);
    EXPECT_EQ(c.y, d.y);
    EXPECT_EQ(c.z, d.z);
  }
}

TEST(ParametricShifts, MolodenskyBadekasLeavesThePivotTermUnscaled)
{
  double const rx = 1.5 * kArcSecond, ry = -2.5 * kArcSecond, rz = 3.5 * kArcSecond, k = 120.0;
  BPoint3D const pivot(4000000.0, 900000.0, 4900000.0), t(-80.0, 25.0, 110.0);
  auto const mb = Make(CDatumShift::kMolodenskyBadekas, kIntl, kWgs84,
                       {{"dx", t.x}, {"dy", t.y}, {"dz", t.z}, {"rx", rx}, {"ry", ry}, {"rz", rz}, {"xp", pivot.x},
                        {"yp", pivot.y}, {"zp", pivot.z}, {"k", k}});

  // X' = s R X + (I - R) P + T, R the small-angle position-vector matrix.
  double const d = Constants::kRadiansPerDegree, a = rx * d, b = ry * d, c = rz * d, s = 1.0 + k * 1e-6;
  double const R[3][3] = {{1, -c, b}, {c, 1, -a}, {-b, a, 1}};
  auto const expected = [&](BPoint3D p) {
    kIntl.GetEllipsoid().GetInner().FromGeodeticBase(1, &p);
    double const X[3] = {p.x, p.y, p.z}, P[3] = {pivot.x, pivot.y, pivot.z}, T[3] = {t.x, t.y, t.z};
    double out[3];
    for (int i = 0; i < 3; ++i)
      out[i] = s * (R[i][0] * X[0] + R[i][1] * X[1] + R[i][2] * X[2]) + P[i] -
               (R[i][0] * P[0] + R[i][1] * P[1] + R[i][2] * P[2]) + T[i];
    BPoint3D q(out[0], out[1], out[2]);
    kWgs84.GetEllipsoid().GetInner().ToGeodeticBase(1, &q);
    return q;
  };
  for (BPoint3D const & p : {BPoint3D(10.0, 50.0, 0.0), BPoint3D(-3.0, 40.0, 1500.0)}) {
    BPoint3D const got = Shifted(*mb, p, true), want = expected(p);
    EXPECT_NEAR(got.x, want.x, 1e-11);
    EXPECT_NEAR(got.y, want.y, 1e-11);
    EXPECT_NEAR(got.z, want.z, 1e-6);
    BPoint3D const back = Shifted(*mb, got, false);
    EXPECT_NEAR(back.x, p.x, 1e-11);
    EXPECT_NEAR(back.y, p.y, 1e-11);
    EXPECT_NEAR(back.z, p.z, 1e-6);
  }
  // With the pivot at the centre it is Bursa-Wolfe.
  auto const centred = Make(CDatumShift::kMolodenskyBadekas, kIntl, kWgs84,
                            {{"dx", t.x}, {"dy", t.y}, {"dz", t.z}, {"rx", rx}, {"ry", ry}, {"rz", rz}, {"k", k}});
  auto const bw = Make(CDatumShift::kBursaWolfe, kIntl, kWgs84,
                       {{"dx", t.x}, {"dy", t.y}, {"dz", t.z}, {"rx", rx}, {"ry", ry}, {"rz", rz}, {"k", k}});
  BPoint3D const p(10.0, 50.0, 200.0), u = Shifted(*centred, p, true), v = Shifted(*bw, p, true);
  EXPECT_NEAR(u.x, v.x, 1e-12);
  EXPECT_NEAR(u.y, v.y, 1e-12);
  EXPECT_NEAR(u.z, v.z, 1e-6);
}

TEST(ParametricShifts, ZeroBursaWolfeIsTheIdentityAndOnlyChangesTheEllipsoid)
{
  Values const zeros{{"dx", 0.0}, {"dy", 0.0}, {"dz", 0.0}, {"rx", 0.0}, {"ry", 0.0}, {"rz", 0.0}, {"k", 0.0}};
  CBursaWolfe bw;
  Define(bw, kIntl, kWgs84, zeros);
  EXPECT_TRUE(bw.GetAffine().IsIdentity());
  auto const translation = Make(CDatumShift::kGeocentricTranslation, kIntl, kWgs84, {});
  BPoint3D const p(5.0, 45.0, 100.0);
  for (bool forward : {true, false}) {
    BPoint3D const a = Shifted(bw, p, forward), b = Shifted(*translation, p, forward);
    EXPECT_EQ(a.x, b.x);
    EXPECT_EQ(a.y, b.y);
    EXPECT_EQ(a.z, b.z);
    EXPECT_GT(std::fabs(a.y - p.y), 1e-4) << "the ellipsoid change moves the latitude";
  }
  // Between equal figures nothing is left but the round trip through X, Y, Z.
  CBursaWolfe same;
  Define(same, kWgs84, kWgs84, zeros);
  BPoint3D const q = Shifted(same, p, true);
  EXPECT_NEAR(q.x, p.x, 1e-12);
  EXPECT_NEAR(q.y, p.y, 1e-12);
  EXPECT_NEAR(q.z, p.z, 1e-8);
}

TEST(ParametricShifts, ArrayPairAndPointFormsAgree)
{
  CBursaWolfe bw;
  Define(bw, kAiry, kWgs84, kOsgb);
  CGeocentricTranslation gt;
  Define(gt, kIntl, kWgs84, kEd50);
  std::vector<Pair> const pairs = ReadPairs("helmert_osgb36_wgs84_approx.txt");

  for (bool forward : {true, false}) {
    // The whole file through one array call, against one point at a time.
    std::vector<BPoint3D> bwPoints, gtPoints;
    for (Pair const & p : pairs) {
      bwPoints.push_back(p.from);
      gtPoints.push_back(p.from);
    }
    auto const n = static_cast<int>(pairs.size());
    forward ? bw.ShiftForward(n, bwPoints.data()) : bw.ShiftBack(n, bwPoints.data());
    forward ? gt.ShiftForward(n, gtPoints.data()) : gt.ShiftBack(n, gtPoints.data());
    for (int i = 0; i < n; ++i) {
      for (auto const & [shift, point] : {std::pair<CDatumShift const *, BPoint3D>{&bw, bwPoints[i]},
                                          std::pair<CDatumShift const *, BPoint3D>{&gt, gtPoints[i]}}) {
        BPoint3D const one = Shifted(*shift, pairs[i].from, forward);
        EXPECT_EQ(one.x, point.x);
        EXPECT_EQ(one.y, point.y);
        EXPECT_EQ(one.z, point.z);
        // The pair form is the point at height 0.
        double lon = pairs[i].from.x, lat = pairs[i].from.y;
        EXPECT_TRUE(forward ? shift->ShiftForward(lon, lat) : shift->ShiftBack(lon, lat));
        BPoint3D const flat = Shifted(*shift, {pairs[i].from.x, pairs[i].from.y, 0.0}, forward);
        EXPECT_EQ(lon, flat.x);
        EXPECT_EQ(lat, flat.y);
      }
    }
  }
}

TEST(ParametricShifts, HeightTakesPartOnlyWhenTheInputHasOne)
{
  auto const gt = Make(CDatumShift::kGeocentricTranslation, kIntl, kWgs84, kEd50);
  auto const mol = Make(CDatumShift::kMolodensky, kIntl, kWgs84, kEd50);
  for (CDatumShift const * shift : {gt.get(), mol.get()}) {
    std::string const what = shift->GetTypeName().toStdString();
    // A two-dimensional input into a three-dimensional output: the height the shift makes from 0.
    CGeodeticPoint const flat(10.0, 50.0);
    CGeodeticPoint tall(3);
    shift->ShiftForward(flat, tall);
    double lon, lat, height;
    tall.GetInternals(lon, lat, height);
    BPoint3D const atZero = Shifted(*shift, {10.0, 50.0, 0.0}, true);
    EXPECT_EQ(lon, atZero.x) << what;
    EXPECT_EQ(lat, atZero.y) << what;
    EXPECT_EQ(height, atZero.z) << what;
    EXPECT_GT(std::fabs(height), 1.0) << what;

    // A three-dimensional input into a two-dimensional output: the height still steers the position.
    CGeodeticPoint const high(10.0, 50.0, 3000.0);
    CGeodeticPoint two(2);
    shift->ShiftForward(high, two);
    EXPECT_EQ(two.GetDimensions(), 2) << what;
    double lon2, lat2;
    two.GetInternals(lon2, lat2);
    EXPECT_EQ(lat2, Shifted(*shift, {10.0, 50.0, 3000.0}, true).y) << what;
    EXPECT_NE(lat2, lat) << what;
  }
}

// Unset parameters: each point form reports where it stands, in both chain
// directions; the pair forms of the matrix methods don't look and run on the
// matrix as it stands.

TEST(ParametricShifts, UnsetParameterLocationsFollowTheMethodDirectionNotTheChain)
{
  struct Row
  {
    CDatumShift::Type type;
    char const * srcToDest; // null: that point form does not look
    char const * destToSrc;
  };
  Row const rows[] = {
    {CDatumShift::kBursaWolfe, "CBursaWolfe::ShiftDestToSrc", "CBursaWolfe::ShiftDestToSrc"},
    {CDatumShift::kSevenParameter, "CSevenParameter::ShiftSrcToDest", "CSevenParameter::ShiftDestToSrc"},
    {CDatumShift::kSixParameter, "CSixParameter::ShiftSrcToDest", "CSixParameter::ShiftDestToSrc"},
    {CDatumShift::kFourParameter, "CFourParameter::ShiftSrcToDest", "CFourParameter::ShiftDestToSrc"},
    {CDatumShift::kMolodenskyBadekas, "CMolodenskyBadekas::ShiftSrcToDest", "CMolodenskyBadekas::ShiftDestToSrc"},
    {CDatumShift::kGeocentricTranslation, "CGeocentricTranslation::ShiftSrcToDest",
     "CGeocentricTranslation::ShiftDestToSrc"},
    {CDatumShift::kMolodensky, "CMolodensky::Shift", "CMolodensky::Shift"},
    {CDatumShift::kLongitudeRotation, nullptr, "CLongitudeRotation::ShiftDestToSrc"},
  };
  for (Row const & row : rows)
    for (bool reversed : {false, true}) {
      // Fully defined first, then one item unset again.
      auto shift = Make(row.type, kIntl, kWgs84, {});
      shift->GetParameters().SetItemSetState(shift->GetParameters().ParameterNameAtIndex(0), false);
      shift->SetReverseUsage(reversed);
      CGeodeticPoint const in(10.0, 50.0);
      CGeodeticPoint out(2);
      char const * forward = reversed ? row.destToSrc : row.srcToDest;
      char const * back = reversed ? row.srcToDest : row.destToSrc;
      std::string const what = shift->GetTypeName().toStdString() + (reversed ? " reversed" : "");
      for (auto const & [location, run] :
           {std::pair<char const *, std::function<void()>>{forward, [&] { shift->ShiftForward(in, out); }},
            std::pair<char const *, std::function<void()>>{back, [&] { shift->ShiftBack(in, out); }}}) {
        if (!location) {
          EXPECT_NO_THROW(run()) << what;
          continue;
        }
        ExpectFailures({{what.c_str(), run, 31, location, ""}});
      }
    }
}

TEST(ParametricShifts, PairFormsOfUnsetMatrixMethodsRunOnTheMatrixAsItStands)
{
  // A new object: identity matrix, no translations. Between equal figures the point comes back.
  for (CDatumShift::Type type : {CDatumShift::kBursaWolfe, CDatumShift::kSevenParameter, CDatumShift::kSixParameter,
                                 CDatumShift::kFourParameter, CDatumShift::kMolodenskyBadekas,
                                 CDatumShift::kGeocentricTranslation}) {
    std::unique_ptr<CDatumShift> shift(CDatumShiftFactory::CreateDatumShift(type));
    shift->SetSrcDatum(kWgs84);
    shift->SetDestDatum(kWgs84);
    double lon = 10.0, lat = 50.0;
    EXPECT_NO_THROW(shift->ShiftForward(lon, lat));
    EXPECT_NEAR(lon, 10.0, 1e-12);
    EXPECT_NEAR(lat, 50.0, 1e-12);
  }
  // Defined, then one item unset: the pair form still uses the matrix built before.
  auto const osgb = Make(CDatumShift::kBursaWolfe, kAiry, kWgs84, kOsgb);
  double lon = -2.0, lat = 53.0;
  osgb->ShiftForward(lon, lat);
  auto unset = Make(CDatumShift::kBursaWolfe, kAiry, kWgs84, kOsgb);
  unset->GetParameters().SetItemSetState(CString("dz"), false);
  double lon2 = -2.0, lat2 = 53.0;
  unset->ShiftForward(lon2, lat2);
  EXPECT_EQ(lon, lon2);
  EXPECT_EQ(lat, lat2);
}

TEST(ParametricShifts, SingularMatrixFailsOnTheFirstWayBack)
{
  // k = -1e6 ppm makes the scale 0: every point lands on the centre.
  auto const flat = Make(CDatumShift::kFourParameter, kWgs84, kWgs84, {{"k", -1e6}});
  CGeodeticPoint out(3);
  EXPECT_NO_THROW(flat->ShiftForward(CGeodeticPoint(10.0, 50.0, 0.0), out));
  ExpectFailures({{"point form", [&] { flat->ShiftBack(CGeodeticPoint(10.0, 50.0, 0.0), out); }, 58,
                   "CAffine3D::PrepareReverse", ""}});
  double lon = 10.0, lat = 50.0;
  ExpectFailures({{"pair form", [&] { flat->ShiftBack(lon, lat); }, 58, "CAffine3D::PrepareReverse", ""}});
  EXPECT_EQ(lon, 10.0);
  EXPECT_EQ(lat, 50.0);
}

// Molodensky's own rules.

TEST(ParametricShifts, ZeroMolodenskyIsANullShiftForGoodWhileZeroTranslationIsNot)
{
  CMolodensky mol;
  Define(mol, kIntl, kWgs84, {{"dx", 0.0}, {"dy", 0.0}, {"dz", 0.0}});
  EXPECT_TRUE(mol.IsNullShift());
  BPoint3D const p(5.0, 45.0, 100.0);
  for (bool forward : {true, false}) {
    BPoint3D const q = Shifted(mol, p, forward);
    EXPECT_EQ(q.x, p.x);
    EXPECT_EQ(q.y, p.y);
    EXPECT_EQ(q.z, p.z);
  }
  auto const translation = Make(CDatumShift::kGeocentricTranslation, kIntl, kWgs84, {});
  EXPECT_GT(std::fabs(Shifted(*translation, p, true).y - p.y), 1e-4);

  // Later values change nothing: the mark is never cleared.
  mol.GetParameters().SetItemInternal(CString("dx"), -87.0);
  mol.GetParameters().SetItemInternal(CString("dy"), -98.0);
  EXPECT_TRUE(mol.IsNullShift());
  EXPECT_EQ(Shifted(mol, p, true).y, p.y);
  double lon = p.x, lat = p.y;
  mol.ShiftForward(lon, lat);
  EXPECT_EQ(lon, p.x);

  // The mark travels with an assignment, also through the base class.
  auto fresh = Make(CDatumShift::kMolodensky, kIntl, kWgs84, kEd50);
  EXPECT_NE(Shifted(*fresh, p, true).y, p.y);
  *fresh = static_cast<CDatumShift const &>(mol);
  EXPECT_TRUE(dynamic_cast<CMolodensky &>(*fresh).IsNullShift());
  EXPECT_EQ(Shifted(*fresh, p, true).y, p.y);
}

TEST(ParametricShifts, MolodenskyNudgesPolesOnlyWithTheCartographicFlag)
{
  auto const mol = Make(CDatumShift::kMolodensky, kIntl, kWgs84, kEd50);
  auto const shifted = [&](double lat, bool flag) {
    CartographicFlag const setting(flag);
    double lon = 20.0;
    mol->ShiftForward(lon, lat);
    return BPoint3D(lon, lat, 0.0);
  };
  auto const same = [](BPoint3D const & a, BPoint3D const & b, char const * what) {
    EXPECT_EQ(a.x, b.x) << what;
    EXPECT_EQ(a.y, b.y) << what;
  };
  // On a pole, or past it within the band: moved by 0.00001 degree, towards
  // the equator from the pole, further out from beyond it.
  same(shifted(90.0, true), shifted(90.0 - 0.00001, false), "north pole");
  same(shifted(-90.0, true), shifted(-90.0 + 0.00001, false), "south pole");
  same(shifted(90.0000005, true), shifted(90.0000005 + 0.00001, false), "beyond the north pole");
  same(shifted(-90.0000005, true), shifted(-90.0000005 - 0.00001, false), "beyond the south pole");
  same(shifted(89.999995, true), shifted(89.999995 - 0.00001, false), "inside the band");
  // Outside the band nothing moves.
  same(shifted(89.9999, true), shifted(89.9999, false), "outside the band");
  // Without the flag the formula meets cos(90 degrees), which is not quite 0:
  // the longitude runs away, a thousand times further than a hundred-thousandth
  // of a degree off the pole.
  double const onPole = shifted(90.0, false).x, offPole = shifted(90.0, true).x;
  EXPECT_GT(std::fabs(onPole), 1e6);
  EXPECT_GT(std::fabs(onPole - 20.0), 1000.0 * std::fabs(offPole - 20.0));
}

TEST(ParametricShifts, GeocentricTranslationFromPointPairsIsTheMeanDifference)
{
  auto const truth = Make(CDatumShift::kGeocentricTranslation, kBessel, kWgs84, kTokyo);
  std::vector<CGeodeticPoint> source, destination;
  for (BPoint3D const & p : {BPoint3D(130.0, 32.0, 10.0), BPoint3D(140.0, 36.0, 500.0), BPoint3D(142.0, 43.0, 0.0),
                             BPoint3D(135.5, 34.7, 2000.0)}) {
    source.emplace_back(p.x, p.y, p.z);
    BPoint3D q = Shifted(*truth, p, true);
    // One measured pair is off by a metre in X: the mean takes a quarter of it.
    if (destination.empty()) {
      kWgs84.GetEllipsoid().GetInner().FromGeodeticBase(1, &q);
      q.x += 1.0;
      kWgs84.GetEllipsoid().GetInner().ToGeodeticBase(1, &q);
    }
    destination.emplace_back(q.x, q.y, q.z);
  }

  CGeocentricTranslation estimate;
  estimate.SetSrcDatum(kBessel);
  estimate.SetDestDatum(kWgs84);
  estimate.LeastSquaresApproximation(4, source.data(), destination.data());
  EXPECT_NEAR(estimate.GetDx(), -148.0 + 0.25, 1e-6);
  EXPECT_NEAR(estimate.GetDy(), 507.0, 1e-6);
  EXPECT_NEAR(estimate.GetDz(), 685.0, 1e-6);
  // The parameters are not touched; the pair form already uses the numbers.
  EXPECT_FALSE(estimate.GetParameters().AllItemsSet());
  auto const estimated = Make(CDatumShift::kGeocentricTranslation, kBessel, kWgs84,
                              {{"dx", -148.0 + 0.25}, {"dy", 507.0}, {"dz", 685.0}});
  double lon = 140.0, lat = 36.0, lon2 = 140.0, lat2 = 36.0;
  estimate.ShiftForward(lon, lat);
  estimated->ShiftForward(lon2, lat2);
  EXPECT_NEAR(lon, lon2, 1e-11);
  EXPECT_NEAR(lat, lat2, 1e-11);

  estimate.LeastSquaresApproximation(0, source.data(), destination.data());
  EXPECT_EQ(estimate.GetDx(), 0.0);
  EXPECT_EQ(estimate.GetDy(), 0.0);
  EXPECT_EQ(estimate.GetDz(), 0.0);
}

TEST(ParametricShifts, LongitudeRotationAddsWithoutWrapping)
{
  auto const paris = Make(CDatumShift::kLongitudeRotation, kIntl, kIntl, {{"rotation", 2.0}});
  BPoint3D const forward = Shifted(*paris, {179.0, 48.0, 35.0}, true);
  EXPECT_EQ(forward.x, 181.0);
  EXPECT_EQ(forward.y, 48.0);
  EXPECT_EQ(forward.z, 35.0);
  EXPECT_EQ(Shifted(*paris, {181.0, 48.0, 35.0}, false).x, 179.0);
  double lon = -179.0, lat = 10.0;
  paris->ShiftBack(lon, lat);
  EXPECT_EQ(lon, -181.0);
  EXPECT_EQ(lat, 10.0);
  // A two-dimensional input gets height 0.
  CGeodeticPoint out(3);
  paris->ShiftForward(CGeodeticPoint(1.0, 2.0), out);
  double x, y, z;
  out.GetInternals(x, y, z);
  EXPECT_EQ(x, 3.0);
  EXPECT_EQ(z, 0.0);
}

TEST(ParametricShifts, AssignmentCarriesTheBuiltMatrix)
{
  CBursaWolfe source;
  Define(source, kAiry, kWgs84, kOsgb);
  BPoint3D const p(-2.0, 53.0, 100.0);
  BPoint3D const want = Shifted(source, p, true);

  CBursaWolfe copy(source);
  CBursaWolfe assigned;
  assigned = source;
  std::unique_ptr<CDatumShift> viaBase(CDatumShiftFactory::CreateDatumShift(CDatumShift::kBursaWolfe));
  *viaBase = static_cast<CDatumShift const &>(source);
  for (CDatumShift const * shift : {static_cast<CDatumShift const *>(&copy),
                                    static_cast<CDatumShift const *>(&assigned),
                                    static_cast<CDatumShift const *>(viaBase.get())}) {
    BPoint3D const got = Shifted(*shift, p, true);
    EXPECT_EQ(got.x, want.x);
    EXPECT_EQ(got.y, want.y);
    EXPECT_EQ(got.z, want.z);
    BPoint3D const back = Shifted(*shift, got, false);
    EXPECT_NEAR(back.y, p.y, 1e-11);
  }
}
