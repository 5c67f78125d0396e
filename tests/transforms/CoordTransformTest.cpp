// The coordinate transform from end to end: WGS 84 to UTM against PROJ on
// every path, the failure table, the light and full paths, dropped points in
// collections, and heights adjusted at their place in a chain of shifts.
#include <velmora/projections/TransverseMercator.h>
#include <velmora/transforms/CoordTransform.h>
#include <velmora/vertical/HeightModels.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"
#include "../vertical/RasterFiles.h"
#include "datumshifts/ShiftDoubles.h"

#include <QTemporaryDir>

#include <cmath>
#include <limits>
#include <memory>
#include <string>

using namespace Velmora;
using namespace Velmora::CS;
using namespace Velmora::CT;
using namespace Velmora::ML;
using namespace VelmoraTest;
using Velmora::CS::VR::CVerticalReference;

namespace {

CHorizontalDatum Datum(char const * name, double a)
{
  CHorizontalDatum datum;
  datum.SetName(CString(name));
  datum.GetEllipsoid().GetSemiMajor().SetValue(a);
  datum.GetEllipsoid().SetInvFlattening(298.257223563);
  return datum;
}

CHorizontalDatum Wgs84() { return Datum("WGS 84", 6378137.0); }

CGeodeticCoordSys Geodetic(CHorizontalDatum const & datum)
{
  CGeodeticCoordSys system;
  system.SetHorizontalDatum(datum);
  return system;
}

CProjectedCoordSys Utm32North(CHorizontalDatum const & datum = Wgs84())
{
  CProjectedCoordSys system;
  system.SetGeodeticCoordSys(Geodetic(datum));
  PJ::CUniversalTransverseMercator utm;
  utm.GetParameters().SetLong(CString("autoset"), 0);
  utm.GetParameters().SetLong(CString("is_north"), 1);
  utm.GetParameters().SetLong(CString("zone"), 32);
  system.SetProjection(utm);
  return system;
}

// A geodetic system that cannot take points east of 90 degrees.
class CHalfWorldSystem : public CGeodeticCoordSys
{
public:
  using CGeodeticCoordSys::CGeodeticCoordSys;
  bool ToGeodeticBase(double & x, double & y) const override
  {
    return x <= 90.0 && CGeodeticCoordSys::ToGeodeticBase(x, y);
  }
  bool ToGeodeticBase(CCoordPoint const & in, CGeodeticPoint & out) const override
  {
    double x, y;
    in.GetInternals(x, y);
    return x <= 90.0 && CGeodeticCoordSys::ToGeodeticBase(in, out);
  }
};

// Lines "zone north lon lat E N" of PROJ's utm on WGS 84, zone 32 north, within 4 degrees of 9 E.
std::vector<std::array<double, 4>> Utm32References()
{
  std::vector<std::array<double, 4>> rows;
  for (std::vector<double> const & r : ReadRows("tmerc_utm_wgs84.txt", 6))
    if (r[0] == 32 && r[1] == 1 && std::fabs(r[2] - 9.0) <= 4.0)
      rows.push_back({r[2], r[3], r[4], r[5]});
  return rows;
}

} // namespace

TEST(CoordTransform, Wgs84ToUtm32AgreesWithProjOnEveryPathAndComesBack)
{
  CGeodeticCoordSys source = Geodetic(Wgs84());
  CProjectedCoordSys destination = Utm32North();
  CCoordTransform transform(&source, &destination);
  auto const rows = Utm32References();
  ASSERT_GT(rows.size(), 100u);

  CCoordPointCollection in{CGeodeticPoint(2)};
  for (auto const & r : rows)
    in.AddInternals(r[0], r[1], 0.0);
  CCoordPointCollection out{CProjectedPoint(2)};
  ASSERT_EQ(transform.ConvertAhead(in, out), static_cast<long>(rows.size()));

  double worstMetres = 0.0, worstDegrees = 0.0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    auto const & r = rows[i];
    double x = r[0], y = r[1];
    ASSERT_TRUE(transform.ConvertAhead(x, y));
    worstMetres = std::max(worstMetres, std::hypot(x - r[2], y - r[3]));
    // The point and collection paths are the pair path: to the last bit.
    CProjectedPoint point(2);
    ASSERT_TRUE(transform.ConvertAhead(CGeodeticPoint(r[0], r[1]), point));
    double px, py, cx, cy, cz;
    point.GetInternals(px, py);
    out.GetInternals(static_cast<long>(i), cx, cy, cz);
    EXPECT_EQ(px, x);
    EXPECT_EQ(py, y);
    EXPECT_EQ(cx, x);
    EXPECT_EQ(cy, y);
    ASSERT_TRUE(transform.ConvertBack(x, y));
    worstDegrees = std::max({worstDegrees, std::fabs(x - r[0]), std::fabs(y - r[1])});
  }
  // The library's UTM is a series; PROJ's is exact to nanometres.
  EXPECT_LT(worstMetres, 1e-4);
  EXPECT_LT(worstDegrees, 1e-9);

  CCoordPointCollection back{CGeodeticPoint(2)};
  EXPECT_EQ(transform.ConvertBack(out, back), static_cast<long>(rows.size()));
}

TEST(CoordTransform, FailureTable)
{
  CGeodeticCoordSys system = Geodetic(Wgs84());
  CCoordTransform unbound(nullptr, &system); // a null argument is skipped, not refused
  EXPECT_EQ(unbound.GetSrcCoordSys(), nullptr);
  EXPECT_EQ(unbound.GetDestCoordSys(), &system);
  CGeodeticPoint out(2);
  double x = 1.0, y = 2.0;
  ExpectFailures({
    {"pair ahead", [&] { unbound.ConvertAhead(x, y); }, 33, "CCoordTransformData::ConvertAhead", ""},
    {"pair back", [&] { unbound.ConvertBack(x, y); }, 33, "CCoordTransformData::ConvertBack", ""},
    // The point form ahead reports the back location: kept as it always was.
    {"point ahead", [&] { unbound.ConvertAhead(CGeodeticPoint(1.0, 2.0), out); }, 33,
     "CCoordTransformData::ConvertBack", ""},
    {"point back", [&] { unbound.ConvertBack(CGeodeticPoint(1.0, 2.0), out); }, 33,
     "CCoordTransformData::ConvertBack", ""},
    {"null source", [&] { unbound.SetSrcCoordSys(nullptr); }, 14, "CCoordTransformData::SetSrcCoordSys", ""},
    {"null destination", [&] { unbound.SetDestCoordSys(nullptr); }, 14, "CCoordTransformData::SetDestCoordSys",
     ""},
  });
  EXPECT_EQ(x, 1.0);
  EXPECT_EQ(y, 2.0);
  EXPECT_FALSE(unbound.InitializeVerticalTransform());
}

TEST(CoordTransform, EmptyChainIsBaseAndBackOnly)
{
  CHorizontalDatum paris = Wgs84();
  paris.GetPrimeMeridian().GetLongitude().SetValue(2.33722917);
  CGeodeticCoordSys source = Geodetic(paris);
  CGeodeticCoordSys destination = Geodetic(Wgs84());
  CCoordTransform transform(&source, &destination);
  double x = 1.0, y = 45.0;
  ASSERT_TRUE(transform.ConvertAhead(x, y));
  EXPECT_DOUBLE_EQ(x, 3.33722917);
  EXPECT_EQ(y, 45.0);
  CGeodeticPoint out(3);
  ASSERT_TRUE(transform.ConvertAhead(CGeodeticPoint(1.0, 45.0, 12.0), out));
  EXPECT_DOUBLE_EQ(out.GetLon().GetInternal(), 3.33722917);
  EXPECT_EQ(out.GetHgt().GetInternal(), 12.0);
}

TEST(CoordTransform, ANumberThatIsNotFiniteIsNoResultOnEitherPath)
{
  CGeodeticCoordSys source = Geodetic(Wgs84());
  CProjectedCoordSys destination = Utm32North(Datum("no size", std::numeric_limits<double>::quiet_NaN()));
  CCoordTransform transform(&source, &destination);
  double x = 9.0, y = 45.0;
  EXPECT_FALSE(transform.ConvertAhead(x, y));
  CProjectedPoint out(3);
  EXPECT_FALSE(transform.ConvertAhead(CGeodeticPoint(9.0, 45.0, 0.0), out));
}

TEST(CoordTransform, LightPathLeavesHeightsAndFullPathCarriesThem)
{
  CGeodeticCoordSys source = Geodetic(Datum("A", 6378137.0));
  CGeodeticCoordSys destination = Geodetic(Datum("B", 6378138.0));
  CCoordTransform transform(&source, &destination);
  auto * shift =
    static_cast<COffsetShift *>(transform.GetDatumShifts().AddBack(std::make_unique<COffsetShift>(0.5, 0.25)));

  // Two dimensions in, three out: the pair path; out keeps its old height.
  CGeodeticPoint out(10.0, 10.0, 77.0);
  ASSERT_TRUE(transform.ConvertAhead(CGeodeticPoint(1.0, 2.0), out));
  EXPECT_EQ(shift->pairCalls, 1);
  EXPECT_EQ(shift->pointCalls, 0);
  EXPECT_EQ(out.GetLon().GetInternal(), 1.5);
  EXPECT_EQ(out.GetLat().GetInternal(), 2.25);
  EXPECT_EQ(out.GetHgt().GetInternal(), 77.0);

  // Both three-dimensional, no vertical set-up: heights go as the shift takes them.
  ASSERT_TRUE(transform.ConvertAhead(CGeodeticPoint(1.0, 2.0, 30.0), out));
  EXPECT_EQ(shift->pointCalls, 1);
  EXPECT_EQ(out.GetHgt().GetInternal(), 30.0);
  shift->heightStep = 5.0;
  ASSERT_TRUE(transform.ConvertAhead(CGeodeticPoint(1.0, 2.0, 30.0), out));
  EXPECT_EQ(out.GetHgt().GetInternal(), 35.0);
  CGeodeticPoint back(3);
  ASSERT_TRUE(transform.ConvertBack(out, back));
  EXPECT_EQ(back.GetLon().GetInternal(), 1.0);
  EXPECT_EQ(back.GetHgt().GetInternal(), 30.0);

}

TEST(CoordTransform, PointsKeptAsTextTakeTheFullPathWithTheOthersDimensions)
{
  CGeodeticCoordSys source = Geodetic(Wgs84());
  CGeodeticCoordSys destination = Geodetic(Wgs84());
  CCoordTransform transform(&source, &destination);
  CGeodeticPoint text(2);
  text.SetStringFormat(CGeodeticPoint::kGeoref);
  text.SetInternals(1.0, 2.0);
  CGeodeticPoint out(3);
  // The work point of the full path is plain, so the base's copy of a
  // Georef location refuses it: what it raises travels through.
  auto const e = Raised([&] { transform.ConvertAhead(text, out); });
  EXPECT_EQ(e.GetErrorCode(), 14);
  EXPECT_EQ(e.GetDetails(), CString("String format mismatch"));
  EXPECT_EQ(text.GetDimensions(), 3); // changed in spite of the const reference
  // Plain points of two and three dimensions stay on the light path.
  CGeodeticPoint plain(2);
  ASSERT_TRUE(transform.ConvertAhead(CGeodeticPoint(1.0, 2.0, 3.0), plain));
  EXPECT_EQ(plain.GetLon().GetInternal(), 1.0);
}

TEST(CoordTransform, CollectionDropsFailedPointsAndKeepsOrder)
{
  CHalfWorldSystem source;
  source.SetHorizontalDatum(Wgs84());
  CGeodeticCoordSys destination = Geodetic(Wgs84());
  CCoordTransform transform(&source, &destination);
  CCoordPointCollection in{CGeodeticPoint(2)};
  for (double lon : {10.0, 100.0, 20.0, 120.0, 30.0})
    in.AddInternals(lon, 1.0, 0.0);
  CCoordPointCollection out{CGeodeticPoint(2)};
  out.AddInternals(-1.0, -1.0, 0.0); // cleared first
  EXPECT_EQ(transform.ConvertAhead(in, out), 3);
  ASSERT_EQ(out.Count(), 3);
  double lon, lat, h;
  for (long i = 0; i < 3; ++i) {
    out.GetInternals(i, lon, lat, h);
    EXPECT_EQ(lon, 10.0 * (i + 1));
  }
  // A failing pair path leaves the point as the system left it.
  double x = 100.0, y = 1.0;
  EXPECT_FALSE(transform.ConvertAhead(x, y));
  EXPECT_EQ(x, 100.0);
}

TEST(CoordTransform, ComparisonAndCompleteness)
{
  CGeodeticCoordSys a = Geodetic(Wgs84());
  CGeodeticCoordSys b = Geodetic(Wgs84());
  CGeodeticCoordSys other = Geodetic(Datum("Other", 6378388.0));
  CProjectedCoordSys utm = Utm32North();
  CCoordTransform first(&a, &utm), second(&b, &utm), third(&a, &other);
  EXPECT_TRUE(first == second);
  EXPECT_TRUE(first.IsNearlyEqual(second));
  EXPECT_FALSE(first == third);
  CString why;
  EXPECT_FALSE(first.IsNearlyEqual(third, why));
  EXPECT_EQ(why, CString(": CoordSys types do not match: dest coord systems do not match"));
  CCoordTransform fourth(&other, &utm);
  why.clear();
  EXPECT_FALSE(first.IsNearlyEqual(fourth, why));
  EXPECT_TRUE(why.endsWith(QStringLiteral(": source coord systems do not match"))) << why.toStdString();
  EXPECT_TRUE(why.startsWith(QStringLiteral(": horizontal datums do not match"))) << why.toStdString();
  // The chains take part in equality only.
  second.GetDatumShifts().AddBack(std::make_unique<COffsetShift>(1.0, 1.0));
  EXPECT_FALSE(first == second);
  EXPECT_TRUE(first.IsNearlyEqual(second));

  first.GetIdentifiers().Add("VM", "T1");
  auto const e = Raised([&] { first.IsFullyDefined(nullptr); });
  EXPECT_EQ(e.GetErrorCode(), 25);
  EXPECT_EQ(e.GetDetails(), CString("Source CoordSys"));
  EXPECT_EQ(e.GetLocation(), CString("CCoordTransformData::IsFullyDefined"));
  a.GetIdentifiers().Add("VM", "LL84");
  EXPECT_EQ(Raised([&] { first.IsFullyDefined(nullptr); }).GetDetails(), CString("Destination CoordSys"));
  utm.GetIdentifiers().Add("VM", "UTM84-32N");
  EXPECT_TRUE(first.IsFullyDefined(nullptr));
}

// Heights between an ellipsoidal source and a destination on a generic
// vertical datum with an Iberian geoid, through two shifts A -> B -> C that
// move a point one raster step east, then one north.
class VerticalTransformTest : public ::testing::Test
{
protected:
  static double Surface(long row, long column) { return 10.0 * row + column + 0.5 * row * column; }

  void SetUp() override
  {
    ASSERT_TRUE(WriteFile(dir.filePath("geoid.bin"), RasterBytes(IBERGEO95Layout(), Surface)));
    source = Geodetic(A);
    destination = Geodetic(C);
  }

  // The destination's reference, with its model on `modelDatum`.
  void Refer(CHorizontalDatum const & modelDatum)
  {
    VR::CIBERGEO95 model;
    model.GetParameters().SetString("path", CString(dir.path()));
    model.GetParameters().SetString("file", CString("geoid.bin"));
    model.SetHorizontalDatum(modelDatum);
    std::unique_ptr<VR::CVerticalDatum> datum(
      VR::CVerticalDatumFactory::CreateVerticalDatum(VR::CVerticalDatum::kGeneric));
    CVerticalReference reference(datum.get(), &model);
    destination.SetVerticalReference(reference);
  }

  void Chain(CCoordTransform & transform)
  {
    auto east = std::make_unique<COffsetShift>(0.125, 0.0, "east", &log);
    east->SetSrcDatum(A);
    east->SetDestDatum(B);
    auto north = std::make_unique<COffsetShift>(0.0, 0.125, "north", &log);
    north->SetSrcDatum(B);
    north->SetDestDatum(C);
    transform.GetDatumShifts().AddBack(std::move(east));
    transform.GetDatumShifts().AddBack(std::move(north));
  }

  QTemporaryDir dir;
  CHorizontalDatum const A = Datum("A", 6378137.0);
  CHorizontalDatum const B = Datum("B", 6378138.0);
  CHorizontalDatum const C = Datum("C", 6378139.0);
  CGeodeticCoordSys source, destination;
  std::vector<std::string> log;
  // Raster node (row 40, column 80) and the nodes one step east and north-east.
  double const lon = 0.0, lat = 40.5, h = 100.0;
  double const geoidEast = 2101.0, geoidNorthEast = 2151.5;
};

TEST_F(VerticalTransformTest, AdjustedRightAfterTheShiftThatReachesTheModelsDatum)
{
  struct Row
  {
    char const * what;
    CHorizontalDatum const * modelDatum;
    double geoid; // where the adjustment is made, ahead and back alike
  };
  Row const rows[] = {
    {"model on B: after the first shift ahead, the second back", &B, geoidEast},
    {"model on C: after the second shift ahead, before any back", &C, geoidNorthEast},
  };
  for (Row const & row : rows) {
    Refer(*row.modelDatum);
    CCoordTransform transform(&source, &destination);
    Chain(transform);
    ASSERT_TRUE(transform.InitializeVerticalTransform()) << row.what;
    EXPECT_TRUE(transform.HasValidVerticalTransform());
    CGeodeticPoint out(3);
    ASSERT_TRUE(transform.ConvertAhead(CGeodeticPoint(lon, lat, h), out));
    EXPECT_DOUBLE_EQ(out.GetHgt().GetInternal(), h - row.geoid) << row.what;
    EXPECT_EQ(out.GetLon().GetInternal(), lon + 0.125);
    EXPECT_EQ(out.GetLat().GetInternal(), lat + 0.125);
    CGeodeticPoint back(3);
    ASSERT_TRUE(transform.ConvertBack(out, back));
    EXPECT_DOUBLE_EQ(back.GetHgt().GetInternal(), h) << row.what;
    EXPECT_EQ(back.GetLon().GetInternal(), lon);
    // The pair path never touches a height.
    CGeodeticPoint flat(2);
    ASSERT_TRUE(transform.ConvertAhead(CGeodeticPoint(lon, lat), flat));
  }
  EXPECT_EQ(log.size(), 12u); // two shifts ahead, back and on the pair path, twice
}

TEST_F(VerticalTransformTest, AdjustedAtOnceWhenTheSourceIsOnTheModelsDatum)
{
  Refer(A);
  CCoordTransform transform(&source, &destination);
  Chain(transform);
  ASSERT_TRUE(transform.InitializeVerticalTransform());
  CGeodeticPoint out(3);
  ASSERT_TRUE(transform.ConvertAhead(CGeodeticPoint(lon, lat, h), out));
  EXPECT_DOUBLE_EQ(out.GetHgt().GetInternal(), h - Surface(40, 80));
}

TEST_F(VerticalTransformTest, SetUpFailuresLeaveTheTransformBound)
{
  // No shift reaches the model's datum.
  Refer(Datum("Elsewhere", 6378140.0));
  CCoordTransform transform(&source, &destination);
  Chain(transform);
  auto const e = Raised([&] { transform.InitializeVerticalTransform(); });
  EXPECT_EQ(e.GetErrorCode(), 60);
  EXPECT_EQ(e.GetLocation(), CString("CCoordTransformData::InitializeVerticalTransform"));
  EXPECT_EQ(e.GetDetails(), CString("No compatible horizontal datum found in coordinate transform on which to "
                                    "perform the height model adjustment."));
  EXPECT_FALSE(transform.HasValidVerticalTransform());

  // Models on two horizontal datums.
  Refer(B);
  CGeodeticCoordSys otherSource = destination;
  Refer(C);
  CCoordTransform twoDatums(&otherSource, &destination);
  auto const single = Raised([&] { twoDatums.InitializeVerticalTransform(); });
  EXPECT_EQ(single.GetErrorCode(), 60);
  EXPECT_EQ(single.GetLocation(), CString("CCoordTransformData::GetAdjustmentDatum"));
  EXPECT_EQ(single.GetDetails(), CString("Vertical transforms must occur on a single horizontal datum."));
  EXPECT_FALSE(twoDatums.HasValidVerticalTransform());

  // A datum without a model cannot be reached from ellipsoidal heights.
  std::unique_ptr<VR::CVerticalDatum> navd88(
    VR::CVerticalDatumFactory::CreateVerticalDatum(VR::CVerticalDatum::kNAVD88));
  CGeodeticCoordSys bare = Geodetic(C);
  bare.SetVerticalReference(CVerticalReference(navd88.get(), nullptr));
  CCoordTransform invalid(&source, &bare);
  auto const mode = Raised([&] { invalid.InitializeVerticalTransform(); });
  EXPECT_EQ(mode.GetErrorCode(), 60);
  EXPECT_EQ(mode.GetDetails(), CString("Conversion mode between vertical references is invalid."));

  // Ellipsoidal on both sides: nothing to do, and no complaint.
  CGeocentricCoordSys g1, g2;
  CCoordTransform geocentric(&g1, &g2);
  EXPECT_FALSE(geocentric.InitializeVerticalTransform());
  EXPECT_FALSE(geocentric.HasValidVerticalTransform());
}

TEST_F(VerticalTransformTest, CopiesResolveTheirOwnSetUp)
{
  Refer(C);
  CCoordTransform transform(&source, &destination); // no shifts: C is reached at the end only
  source.SetHorizontalDatum(C);
  EXPECT_FALSE(transform.HasValidVerticalTransform());
  // A private copy runs the set-up of its own, even for an original that never did.
  CCoordTransform copy(transform);
  copy.GetDatumShifts();
  EXPECT_TRUE(copy.HasValidVerticalTransform());
  EXPECT_FALSE(transform.HasValidVerticalTransform());
  CGeodeticPoint out(3);
  ASSERT_TRUE(copy.ConvertAhead(CGeodeticPoint(lon, lat, h), out));
  EXPECT_DOUBLE_EQ(out.GetHgt().GetInternal(), h - Surface(40, 80));
  ASSERT_TRUE(transform.ConvertAhead(CGeodeticPoint(lon, lat, h), out));
  EXPECT_EQ(out.GetHgt().GetInternal(), h);
}
