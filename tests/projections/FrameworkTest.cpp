// The projection framework: the factory and its table of types, the
// parameter contract, comparison, and the wrappers' rules.
#include <velmora/datasource/CDataSource.h>
#include <velmora/projections/Cylindrical.h>
#include <velmora/projections/Conic.h>
#include <velmora/projections/Oblique.h>
#include <velmora/projections/Projection.h>
#include <velmora/projections/TransverseMercator.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include <memory>

using namespace Velmora;
using namespace Velmora::CS;
using namespace Velmora::CS::PJ;
using namespace VelmoraTest;

namespace {

// The table as users know it: type name, then each parameter with its kind
// (d double, l long, s string, a angular, m linear), in registration order.
struct Expected
{
  int type;
  char const * name;
  std::vector<std::pair<char const *, CParameter::Type>> parameters;
};

constexpr auto D = CParameter::kDouble;
constexpr auto L = CParameter::kLong;
constexpr auto S = CParameter::kString;
constexpr auto A = CParameter::kAngularValue;
constexpr auto M = CParameter::kLinearValue;

std::vector<Expected> const kExpected = {
  {0, "Aitoff", {{"central_meridian", A}, {"false_easting", M}, {"false_northing", M}}},
  {1, "Alaska 27", {{"nos_code", L}, {"param1", D}, {"param2", D}}},
  {6, "Belgium 72",
   {{"latitude_of_origin", A}, {"central_meridian", A}, {"standard_parallel1", A}, {"standard_parallel2", A},
    {"false_easting", M}, {"false_northing", M}}},
  {7, "Bipolar Oblique Conformal Conic", {}},
  {11, "Danish System 34",
   {{"central_meridian", A}, {"latitude_of_origin", A}, {"scale_factor", D}, {"false_easting", M},
    {"false_northing", M}, {"region", S}}},
  {14, "EckertI", {{"central_meridian", A}, {"false_easting", M}, {"false_northing", M}}},
  {27, "Gnomic",
   {{"central_meridian", A}, {"latitude_of_origin", A}, {"spherical_radius", M}, {"false_easting", M},
    {"false_northing", M}}},
  {37, "Lambert 27",
   {{"nos_code", L}, {"param1", D}, {"param2", D}, {"param3", D}, {"param4", D}, {"param5", D}, {"param6", D},
    {"param7", D}, {"param8", D}, {"param9", D}, {"param10", D}}},
  {48, "Oblique Mercator Azimuth",
   {{"central_meridian", A}, {"latitude_of_origin", A}, {"scale_factor", D}, {"azimuth", A}, {"false_easting", M},
    {"false_northing", M}, {"rotation_angle", A}, {"unrectified_flag", L}, {"center_flag", L},
    {"use_gamma_flag", L}, {"azimuth_is_gamma", L}}},
  {59, "Space Oblique Mercator",
   {{"central_meridian", A}, {"satellite_p1", D}, {"satellite_p2", D}, {"satellite_lon0", A}, {"satellite_a", M},
    {"satellite_e", D}, {"satellite_incl", A}, {"satellite_gamma", D}}},
  {63, "Tilted Perspective",
   {{"height", M}, {"azimuth", A}, {"tilt", A}, {"central_meridian", A}, {"latitude_of_origin", A},
    {"false_easting", M}, {"false_northing", M}}},
  {66, "Transverse Mercator 27",
   {{"nos_code", L}, {"param1", D}, {"param2", D}, {"param3", D}, {"param4", D}, {"param5", D}}},
  {70, "Two Point Fit",
   {{"standard_longitude1", A}, {"standard_latitude1", A}, {"standard_latitude2", A}, {"standard_longitude2", A},
    {"north1", M}, {"north2", M}, {"east1", M}, {"east2", M}}},
  {74, "V and H", {}},
  {78, "Winkel Tripel",
   {{"central_meridian", A}, {"latitude_of_origin", A}, {"false_easting", M}, {"false_northing", M}}},
};

std::unique_ptr<CProjection> Make(int type) { return std::unique_ptr<CProjection>(CProjectionFactory::CreateProjection(type, nullptr)); }

} // namespace

TEST(ProjectionFactory, EveryTypeHasItsClassNameAndParameters)
{
  for (int type = 0; type < CProjection::kTypeCount; ++type) {
    auto const p = Make(type);
    ASSERT_NE(p, nullptr) << type;
    EXPECT_EQ(p->GetType(), type);
    EXPECT_EQ(p->GetTypeName(), CProjection::TypeName(type));
    EXPECT_FALSE(p->GetTypeName().isEmpty()) << type;
    // Every registered parameter is a known kind.
    CParameterCollection const & parameters = p->GetParameters();
    for (long i = 0; i < parameters.Count(); ++i)
      EXPECT_NE(parameters.GetItemType(parameters.ParameterNameAtIndex(i)), CParameter::kUndetermined);
  }
  for (Expected const & row : kExpected) {
    auto const p = Make(row.type);
    EXPECT_EQ(p->GetTypeName(), CString(row.name));
    CParameterCollection const & parameters = p->GetParameters();
    ASSERT_EQ(parameters.Count(), static_cast<long>(row.parameters.size())) << row.name;
    for (auto const & [name, kind] : row.parameters) {
      ASSERT_TRUE(parameters.Exists(CString(name))) << row.name << " " << name;
      EXPECT_EQ(parameters.GetItemType(CString(name)), kind) << row.name << " " << name;
      EXPECT_FALSE(parameters.IsItemSet(CString(name))) << row.name << " " << name;
    }
    // A row with no parameters is always ready.
    EXPECT_EQ(parameters.AllItemsSet(), row.parameters.empty()) << row.name;
  }
  EXPECT_EQ(CProjection::TypeName(65), CString("Transverse Mercator"));
  EXPECT_EQ(CProjection::TypeName(79), CString());
}

TEST(ProjectionFactory, PresetsAndRemovals)
{
  CLaborde laborde;
  EXPECT_TRUE(laborde.GetParameters().IsItemSet(CString("azimuth_skew")));
  EXPECT_FALSE(laborde.GetParameters().IsItemSet(CString("azimuth")));
  CBehrmann behrmann;
  EXPECT_FALSE(behrmann.GetParameters().Exists(CString("latitude_of_origin")));
  EXPECT_EQ(behrmann.GetParameters().Count(), 3);
}

TEST(ProjectionFactory, OutOfRangeTypesRaiseCode50)
{
  for (int type : {79, -1, 1000}) {
    auto const e = Raised([&] { Make(type); });
    EXPECT_EQ(e.GetErrorCode(), 50) << type;
    EXPECT_EQ(e.GetLocation(), CString("CProjectionFactory::CreateProjection"));
  }
}

TEST(ProjectionData, SetProjectionTypeByExactName)
{
  CProjectionDataDB body;
  EXPECT_EQ(body.GetProjectionType(), -1);
  EXPECT_EQ(body.SetProjectionType(CString("Lambert Conformal Conic")), 38);
  EXPECT_EQ(body.GetClassName(), CString("Lambert Conformal Conic"));
  // Other spellings are not ours to know here, and change nothing.
  EXPECT_EQ(body.SetProjectionType(CString("Lambert_Conformal_Conic_2SP")), -1);
  EXPECT_EQ(body.SetProjectionType(CString("transverse mercator")), -1);
  EXPECT_EQ(body.GetProjectionType(), 38);
  EXPECT_EQ(body.SetProjectionType(CString("Transverse Mercator 27")), 66);
}

TEST(Projection, ClassNamesAndParallelsCompareNearly)
{
  auto const tm = Make(CProjection::kTransverseMercator);
  auto const tmso = Make(CProjection::kTransverseMercatorSouthOriented);
  EXPECT_TRUE(tm->IsNearlyEqual(*tmso));
  EXPECT_FALSE(*tm == *tmso);
  CLambertConformalConic lcc;
  CBelgium72 belgium;
  EXPECT_TRUE(lcc.IsNearlyEqual(belgium));
  EXPECT_TRUE(belgium.IsNearlyEqual(lcc));
  auto const albers = Make(CProjection::kAlbersEqualArea);
  CString message;
  EXPECT_FALSE(lcc.IsNearlyEqual(*albers, message));
  EXPECT_EQ(message, CString(": class names do not match"));

  // Swapped standard parallels still match; a real difference does not.
  auto set = [](CProjection & p, double sp1, double sp2, double cm) {
    CParameterCollection & parameters = p.GetParameters();
    ML::CAngularValue v;
    for (auto const & [name, value] : {std::pair{"latitude_of_origin", 0.0}, std::pair{"central_meridian", cm},
                                       std::pair{"standard_parallel1", sp1}, std::pair{"standard_parallel2", sp2}}) {
      v.SetInternal(value);
      parameters.SetAngularValue(CString(name), v);
    }
  };
  CLambertConformalConic a, b;
  set(a, 33.0, 45.0, -96.0);
  set(b, 45.0, 33.0, -96.0);
  EXPECT_TRUE(a.IsNearlyEqual(b));
  EXPECT_FALSE(a == b);
  set(b, 45.0, 33.0, -97.0);
  message.clear();
  EXPECT_FALSE(a.IsNearlyEqual(b, message));
  EXPECT_EQ(message, CString(": parameters do not match "));
}

TEST(Projection, EqualityComparesDatums)
{
  CHorizontalDatum wgs84, other;
  wgs84.GetEllipsoid().GetSemiMajor().SetValue(6378137.0);
  other.GetEllipsoid().GetSemiMajor().SetValue(6378388.0);
  CMercator a(&wgs84), b(&wgs84), c(&other), d;
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a == c);
  EXPECT_FALSE(a == d); // one datum null
  EXPECT_TRUE(CMercator() == d);
}

TEST(Projection, UnsetParametersConvertNothing)
{
  CMercator mercator;
  double x = 10.0, y = 50.0;
  EXPECT_FALSE(mercator.ToPlane(x, y));
  EXPECT_EQ(x, 10.0);
  ML::CGeodeticPoint in(10.0, 50.0);
  ML::CProjectedPoint out(1.0, 2.0);
  EXPECT_FALSE(mercator.ToPlane(in, out));
  EXPECT_EQ(out.GetEast().GetInternal(), 1.0); // output untouched
  EXPECT_FALSE(mercator.FromPlane(out, in));
}

TEST(Projection, FailuresOfTheContract)
{
  CMercator mercator;
  auto const scale = Raised([&] {
    double s = 0;
    mercator.ScaleFactorAtPoint(ML::CProjectedPoint(0.0, 0.0), s);
  });
  EXPECT_EQ(scale.GetErrorCode(), 37);
  EXPECT_EQ(scale.GetLocation(), CString("CProjection::ScaleFactorAtPoint"));

  mercator.SetTypeName(Wide("").c_str());
  auto const noClass = Raised([&] { mercator.IsFullyDefined(nullptr); });
  EXPECT_EQ(noClass.GetErrorCode(), 53);
  EXPECT_EQ(noClass.GetLocation(), CString("CProjectionData::IsFullyDefined"));
  EXPECT_EQ(noClass.GetDetails(), CString("ClassType"));
}

TEST(Projection, CenteringIsStrictAndOnce)
{
  double lon = 190.0;
  CProjection::CenterLongitude(lon, 0.0); // switch off: nothing
  EXPECT_EQ(lon, 190.0);
  DB::CDataSource::SetCenterOnMeridianFlag(true);
  DB::CDataSource::SetCenteringMargin(0.0);
  lon = 180.0;
  CProjection::CenterLongitude(lon, 0.0); // exactly 180 away: unchanged
  EXPECT_EQ(lon, 180.0);
  lon = 190.0;
  CProjection::CenterLongitude(lon, 0.0);
  EXPECT_EQ(lon, -170.0);
  lon = -350.0;
  CProjection::CenterLongitude(lon, 100.0);
  EXPECT_EQ(lon, 10.0);
  DB::CDataSource::SetCenteringMargin(15.0);
  lon = 190.0;
  CProjection::CenterLongitude(lon, 0.0); // within the margin
  EXPECT_EQ(lon, 190.0);
  lon = 560.0;
  CProjection::CenterLongitude(lon, 0.0); // each test once only
  EXPECT_EQ(lon, 200.0);
  DB::CDataSource::SetCenterOnMeridianFlag(false);
  DB::CDataSource::SetCenteringMargin(0.0);
}

TEST(Projection, AssignmentTakesTheBody)
{
  CHorizontalDatum datum;
  CMercator a(&datum);
  ML::CLinearValue fe;
  fe.SetInternal(500000.0);
  a.GetParameters().SetLinearValue(CString("false_easting"), fe);
  CMercator b;
  b = a;
  EXPECT_EQ(b.GetParameters().GetLinearValue(CString("false_easting")).GetInternal(), 500000.0);
  EXPECT_EQ(b.GetHorizontalDatum(), &datum);
  // The copy's parameters are its own.
  fe.SetInternal(1.0);
  b.GetParameters().SetLinearValue(CString("false_easting"), fe);
  EXPECT_EQ(a.GetParameters().GetLinearValue(CString("false_easting")).GetInternal(), 500000.0);

  // Through the base, across types: the body comes over, the type stays.
  CProjection & asBase = b;
  CEquidistantCylindrical other;
  asBase = other;
  EXPECT_EQ(b.GetType(), CProjection::kMercator);
  EXPECT_EQ(b.GetTypeName(), CString("Equidistant Cylindrical"));
}
