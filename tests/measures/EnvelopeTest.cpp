#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/Envelope.h>

#include <gtest/gtest.h>

using namespace Velmora;
using namespace Velmora::ML;
using EX::CVelmoraException;

namespace {
// Corners of -10..10 in longitude, 40..60 in latitude, -100..1000 m high.
CEnvelope Europe()
{
  CEnvelope e(kGeodeticPoint);
  e.SetAlwaysAccept(false);
  e.GetMinPoint()->SetInternals(-10.0, 40.0, -100.0);
  e.GetMaxPoint()->SetInternals(10.0, 60.0, 1000.0);
  return e;
}
} // namespace

TEST(Envelope, DefaultAcceptsEverything)
{
  CEnvelope e;
  EXPECT_TRUE(e.GetAlwaysAccept());
  EXPECT_TRUE(e.InBounds(CCartesianPoint(1e9, 1e9, 1e9)));
  EXPECT_TRUE(e.InBounds(1e9, -1e9));
  EXPECT_EQ(e.GetMinPoint(), nullptr);
  EXPECT_EQ(e.GetObjectType(), kObjectEnvelope);
  EXPECT_EQ(e.GetGroupID(), 800);
}

TEST(Envelope, InclusiveCornersAndLongitudeWrap)
{
  CEnvelope const e = Europe();
  EXPECT_TRUE(e.InBounds(CGeodeticPoint(-10.0, 40.0, -100.0)));
  EXPECT_TRUE(e.InBounds(CGeodeticPoint(10.0, 60.0, 1000.0)));
  EXPECT_FALSE(e.InBounds(CGeodeticPoint(10.0000001, 50.0, 0.0)));
  EXPECT_FALSE(e.InBounds(CGeodeticPoint(0.0, 60.0000001, 0.0)));
  EXPECT_FALSE(e.InBounds(CGeodeticPoint(0.0, 50.0, 1000.5))); // height checked in 3-D
  EXPECT_TRUE(e.InBounds(CGeodeticPoint(0.0, 50.0)));         // a flat point ignores it

  // The point form wraps on both sides of the antimeridian; the pair form does not.
  EXPECT_TRUE(e.InBounds(CGeodeticPoint(355.0, 50.0, 0.0)));
  EXPECT_TRUE(e.InBounds(CGeodeticPoint(-355.0, 50.0, 0.0)));
  EXPECT_FALSE(e.InBounds(355.0, 50.0));
  EXPECT_FALSE(e.InBounds(-355.0, 50.0));
  EXPECT_TRUE(e.InBounds(-10.0, 60.0));

}

TEST(Envelope, ClassCheckAndIgnoreSwitch)
{
  CEnvelope const e = Europe();
  try {
    e.InBounds(CProjectedPoint(0.0, 50.0, 0.0));
    FAIL() << "no exception";
  } catch (CVelmoraException const & x) {
    EXPECT_EQ(x.GetErrorCode(), 53);
    EXPECT_EQ(x.GetLocation(), CString("CEnvelopeDataDB::InBounds"));
  }
  DB::CDataSource::SetIgnoreEnvelope(true);
  EXPECT_TRUE(e.InBounds(CProjectedPoint(0.0, 50.0, 0.0)));
  EXPECT_TRUE(e.InBounds(500.0, 500.0));
  DB::CDataSource::SetIgnoreEnvelope(false);
  EXPECT_FALSE(e.InBounds(500.0, 500.0));
}

TEST(Envelope, ComparisonAndCompleteness)
{
  CEnvelope a = Europe(), b = Europe();
  EXPECT_TRUE(a.IsNearlyEqual(b));
  EXPECT_TRUE(a == b);
  a.GetIdentifiers().Add("EPSG", "1262");
  CString why;
  EXPECT_FALSE(a.IsNearlyEqual(b, why));
  EXPECT_EQ(why, CString(": EPSG code exists for one horizontal datum but not the other"));
  b.GetIdentifiers().Add("EPSG", "1262");
  b.GetMaxPoint()->SetInternals(11.0, 60.0, 1000.0);
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(b, why));
  EXPECT_EQ(why, CString(": max points do not match : Lon coords do not match : values are not equal : 10 != 11"));
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(CEnvelope(), why));
  EXPECT_EQ(why, CString(": EPSG code exists for one horizontal datum but not the other"));
  CEnvelope empty;
  empty.GetIdentifiers().Add("EPSG", "1262");
  why.clear();
  EXPECT_FALSE(a.IsNearlyEqual(empty, why));
  EXPECT_EQ(why, CString(": one envelope has no min or max points defined"));

  a.GetIdentifiers().Add("VM", "EUROPE");
  try {
    a.IsFullyDefined(nullptr);
    FAIL() << "no exception";
  } catch (CVelmoraException const & x) {
    EXPECT_EQ(x.GetErrorCode(), 25);
    EXPECT_EQ(x.GetLocation(), CString("CEnvelopeData::IsFullyDefined"));
    EXPECT_EQ(x.GetDetails(), CString("Envelope"));
  }
}

TEST(Envelope, CopiesOwnTheirCorners)
{
  CEnvelope a = Europe();
  CEnvelope b(a);
  b.GetMinPoint()->SetInternals(-20.0, 30.0, 0.0);
  double lon, lat;
  a.GetMinPoint()->GetInternals(lon, lat);
  EXPECT_EQ(lon, -10.0);
  CEnvelope c;
  c.SetMinPoint(*a.GetMinPoint());
  a.GetMinPoint()->SetInternals(0.0, 0.0);
  c.GetMinPoint()->GetInternals(lon, lat);
  EXPECT_EQ(lon, -10.0);
  c.Congeal();
  EXPECT_TRUE(c.IsDefined());
}

TEST(DataSourceSettings, StaticsAndKinds)
{
  EXPECT_FALSE(DB::CDataSource::GetIgnoreEnvelope());
  DB::CDataSource::SetDataPath(CString("/grids/"));
  EXPECT_EQ(DB::CDataSource::GetDataPath(), CString("/grids/"));
  DB::CDataSource::SetCenteringMargin(2.5);
  EXPECT_EQ(DB::CDataSource::GetCenteringMargin(), 2.5);
  DB::CDataSource::SetCenteringMargin(0.0);
  DB::CDataSource::SetDataPath(CString());

  using DB::CDataSource;
  EXPECT_EQ(CDataSource::GetEffectiveObjectType(448 | 4096), 448);
  EXPECT_EQ(CDataSource::GetEffectiveObjectType(4096 | 8192), 30720);
  EXPECT_EQ(CDataSource::GetEffectiveObjectType(8192), 8192);
  EXPECT_EQ(CDataSource::GetEffectiveObjectType(1 | 2), 3);
  EXPECT_FALSE(CDataSource::IsSingleType(0));
  EXPECT_EQ(CDataSource::GetCoordSysMask(0xFFFFF), 0x7800);
  EXPECT_EQ(CDataSource::GetCoordPointMask(0xFFFFF), 0x1c0);
  EXPECT_TRUE(CDataSource::IsPrimaryGroupID(930));
  EXPECT_FALSE(CDataSource::IsPrimaryGroupID(931));
}
