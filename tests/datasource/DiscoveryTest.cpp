// Finding datum shifts in a store built in memory: the options and type
// flags, direct and reverse matches, routes through an intermediate datum,
// include and exclude lists, areas, the order routes come in, removed shifts,
// and a transform filled by the search that converts like a hand computation.
#include <velmora/datasource/CDataSource.h>
#include <velmora/velmora.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include <cmath>
#include <limits>
#include <list>
#include <memory>
#include <numbers>
#include <set>
#include <string>
#include <vector>

using namespace Velmora;
using namespace Velmora::CT::DS;
using namespace VelmoraTest;
using Velmora::CS::CGeodeticCoordSys;
using Velmora::CS::CHorizontalDatum;
using Velmora::CT::CCoordTransform;
using Velmora::DB::CDataSource;
using Velmora::DB::CExtents;

namespace {

using Values = std::initializer_list<std::pair<char const *, double>>;

// A loaded store with units, Greenwich, three ellipsoids, one point style,
// envelopes and datums; each test adds the shifts it needs.
class ShiftStore
{
public:
  CDataSource source;

  explicit ShiftStore(bool epsgWgs84 = true)
  {
    source.SetLoaded(true);
    ML::CAngularUnit degree(CString("Degree"), CString("deg"), 1.0);
    degree.GetIdentifiers().Add("VM", "1");
    EXPECT_TRUE(source.PutAngularUnit(degree, false));
    ML::CLinearUnit metre(CString("Metre"), CString("m"), 1.0);
    metre.GetIdentifiers().Add("VM", "1");
    EXPECT_TRUE(source.PutLinearUnit(metre, false));
    m_degree.reset(source.GetAngularUnit(CString("1")));
    m_metre.reset(source.GetLinearUnit(CString("1")));

    CS::CPrimeMeridian greenwich;
    greenwich.SetName(CString("Greenwich"));
    greenwich.GetIdentifiers().Add("VM", "1");
    greenwich.GetLongitude().SetUnits(*m_degree);
    EXPECT_TRUE(source.PutPrimeMeridian(greenwich, false));

    Ellipsoid("1", "WGS 84", 6378137.0, 298.257223563);
    Ellipsoid("2", "International 1924", 6378388.0, 297.0);
    Ellipsoid("3", "Clarke 1866", 6378206.4, 294.9786982);

    ML::CGeodeticPoint style(2);
    style.SetName(CString("Degrees"));
    style.GetIdentifiers().Add("VM", "1");
    style.GetLon().SetUnits(*m_degree);
    style.GetLat().SetUnits(*m_degree);
    EXPECT_TRUE(source.PutGeodeticPoint(style, false));

    Envelope("EU", -10.0, 35.0, 30.0, 70.0);
    Envelope("NA", -170.0, 10.0, -50.0, 80.0);
    Envelope("DE", 5.0, 47.0, 15.0, 55.0);
    Envelope("ANY", -180.0, -90.0, 180.0, 90.0, true);

    Datum("WGS84", "World Geodetic System 1984", "1", epsgWgs84 ? "6326" : nullptr);
    Datum("ED50", "European Datum 1950", "2");
    Datum("NAD27", "North American Datum 1927", "3");
    Datum("PD", "Potsdam", "2");
  }

  void Ellipsoid(char const * code, char const * name, double a, double inverseFlattening)
  {
    CS::CEllipsoid ellipsoid;
    ellipsoid.SetName(CString(name));
    ellipsoid.GetIdentifiers().Add("VM", code);
    ML::CLinearValue axis;
    axis.SetUnits(*m_metre);
    axis.SetValue(a);
    ellipsoid.SetSemiMajor(axis);
    ellipsoid.SetInvFlattening(inverseFlattening);
    EXPECT_TRUE(source.PutEllipsoid(ellipsoid, false));
  }

  // Corners in degrees; `anywhere` makes the envelope accept every point.
  void Envelope(char const * code, double minLon, double minLat, double maxLon, double maxLat, bool anywhere = false,
                char const * epsg = nullptr)
  {
    std::unique_ptr<ML::CGeodeticPoint> style(source.GetGeodeticPoint(CString("1")));
    ML::CGeodeticPoint minimum = *style, maximum = *style;
    minimum.SetInternals(minLon, minLat);
    maximum.SetInternals(maxLon, maxLat);
    ML::CEnvelope envelope;
    envelope.SetName(CString(code));
    envelope.GetIdentifiers().Add("VM", code);
    if (epsg)
      envelope.GetIdentifiers().Add("EPSG", epsg);
    envelope.SetMinPoint(minimum);
    envelope.SetMaxPoint(maximum);
    envelope.SetAlwaysAccept(anywhere);
    EXPECT_TRUE(source.PutEnvelope(envelope, false));
  }

  void Datum(char const * code, char const * name, char const * ellipsoid, char const * epsg = nullptr)
  {
    CHorizontalDatum datum;
    datum.SetName(CString(name));
    datum.GetIdentifiers().Add("VM", code);
    if (epsg)
      datum.GetIdentifiers().Add("EPSG", epsg);
    std::unique_ptr<CS::CEllipsoid> figure(source.GetEllipsoid(CString(ellipsoid)));
    std::unique_ptr<CS::CPrimeMeridian> greenwich(source.GetPrimeMeridian(CString("1")));
    datum.SetEllipsoid(*figure);
    datum.SetPrimeMeridian(*greenwich);
    EXPECT_TRUE(source.PutHorizontalDatum(datum, false));
  }

  // Every parameter set with the store's units: linear in metres, angular in degrees.
  void Shift(char const * code, CDatumShift::Type type, char const * from, char const * to, char const * area,
             Values values = {})
  {
    std::unique_ptr<CDatumShift> shift(CDatumShiftFactory::CreateDatumShift(type));
    shift->SetName(CString("shift ") + code);
    shift->GetIdentifiers().Add("VM", code);
    std::unique_ptr<CHorizontalDatum> source_(source.GetHorizontalDatum(CString(from)));
    std::unique_ptr<CHorizontalDatum> target(source.GetHorizontalDatum(CString(to)));
    std::unique_ptr<ML::CEnvelope> envelope(source.GetEnvelope(CString(area)));
    shift->SetSrcDatum(*source_);
    shift->SetDestDatum(*target);
    shift->SetEnvelope(*envelope);
    CParameterCollection & parameters = shift->GetParameters();
    for (long i = 0; i < parameters.Count(); ++i) {
      CString const name = parameters.ParameterNameAtIndex(i);
      if (parameters.GetItemType(name) == CParameter::kLinearValue) {
        ML::CLinearValue value;
        value.SetUnits(*m_metre);
        parameters.SetLinearValue(name, value);
      } else if (parameters.GetItemType(name) == CParameter::kAngularValue) {
        ML::CAngularValue value;
        value.SetUnits(*m_degree);
        parameters.SetAngularValue(name, value);
      }
    }
    parameters.SetAllItems();
    for (auto const & [name, value] : values) {
      if (parameters.GetItemType(CString(name)) == CParameter::kDouble)
        parameters.SetDouble(CString(name), value);
      else
        parameters.SetItemInternal(CString(name), value);
    }
    EXPECT_TRUE(source.PutDatumShift(*shift, false)) << code;
  }

  // A geodetic system on a stored datum, with a stored envelope or the default one.
  CGeodeticCoordSys System(char const * datum, char const * area = nullptr)
  {
    CGeodeticCoordSys system;
    std::unique_ptr<CHorizontalDatum> stored(source.GetHorizontalDatum(CString(datum)));
    system.SetHorizontalDatum(*stored);
    if (area) {
      std::unique_ptr<ML::CEnvelope> envelope(source.GetEnvelope(CString(area)));
      system.SetEnvelope(*envelope);
    }
    return system;
  }

private:
  std::unique_ptr<ML::CAngularUnit> m_degree;
  std::unique_ptr<ML::CLinearUnit> m_metre;
};

CString VMCode(CSerializable const & object) { return object.GetIdentifiers().GetItem(CString("VM")); }

// A chain as "code" or "code~" for a shift used reversed, joined by spaces.
std::string Chain(CDatumShiftCollection const & chain)
{
  std::string text;
  for (long i = 0; i < chain.Count(); ++i) {
    CDatumShift * shift = nullptr;
    chain.GetItem(i, &shift);
    text += i ? " " : "";
    text += VMCode(*shift).toStdString();
    text += shift->GetReverseUsage() ? "~" : "";
  }
  return text;
}

// Routes of the listing; frees each shift object once, as the caller must.
struct Routes
{
  std::list<CDatumShiftList> list;
  Routes() = default;
  Routes(Routes const &) = delete;
  ~Routes()
  {
    std::set<CDatumShift *> owned;
    for (auto const & route : list)
      for (auto const & info : route)
        owned.insert(info.GetDatumShift());
    for (CDatumShift * shift : owned)
      delete shift;
  }
  // "code" or "code~" for reverse, shifts of a route joined by "+", routes by spaces.
  std::string Text() const
  {
    std::string text;
    for (auto const & route : list) {
      text += text.empty() ? "" : " ";
      bool first = true;
      for (auto const & info : route) {
        text += first ? "" : "+";
        text += VMCode(*info.GetDatumShift()).toStdString();
        text += info.GetReverse() ? "~" : "";
        first = false;
      }
    }
    return text;
  }
};

CDatumShiftPreferences Options(int options)
{
  CDatumShiftPreferences prefs;
  prefs.SetOptions(options);
  return prefs;
}

ML::CEnvelope Area(double minLon, double minLat, double maxLon, double maxLat)
{
  ML::CEnvelope area(ML::kGeodeticPoint);
  area.GetMinPoint()->SetInternals(minLon, minLat, 0.0);
  area.GetMaxPoint()->SetInternals(maxLon, maxLat, 0.0);
  area.SetAlwaysAccept(false);
  return area;
}

std::vector<CString> Codes(std::initializer_list<char const *> codes)
{
  std::vector<CString> out;
  for (char const * code : codes)
    out.emplace_back(code);
  return out;
}

} // namespace

TEST(DatumShiftDiscovery, ExtentsAreInUseOnlyWithCornersStrictlyInOrder)
{
  CExtents const unset;
  EXPECT_FALSE(unset.IsInUse());
  double const largest = std::numeric_limits<double>::max();
  EXPECT_EQ(unset.GetMinLon(), largest);
  EXPECT_EQ(unset.GetMinLat(), largest);
  EXPECT_EQ(unset.GetMaxLon(), largest);
  EXPECT_EQ(unset.GetMaxLat(), largest);

  CExtents const area(-10.0, 35.0, 30.0, 70.0);
  EXPECT_TRUE(area.IsInUse());
  EXPECT_EQ(area.GetMinLon(), -10.0);
  EXPECT_EQ(area.GetMinLat(), 35.0);
  EXPECT_EQ(area.GetMaxLon(), 30.0);
  EXPECT_EQ(area.GetMaxLat(), 70.0);
  EXPECT_FALSE(CExtents(5.0, 35.0, 5.0, 70.0).IsInUse());   // equal longitudes
  EXPECT_FALSE(CExtents(-10.0, 40.0, 30.0, 40.0).IsInUse()); // equal latitudes
  EXPECT_FALSE(CExtents(30.0, 35.0, -10.0, 70.0).IsInUse()); // crossed longitudes
  EXPECT_FALSE(CExtents(-10.0, 70.0, 30.0, 35.0).IsInUse()); // crossed latitudes
}

TEST(DatumShiftDiscovery, EveryMemberNeedsALoadedStore)
{
  CDataSource empty;
  CGeodeticCoordSys a, b;
  CCoordTransform transform(&a, &b);
  std::list<CDatumShiftList> routes;
  std::list<std::list<CDatumShiftInfo>> plain;
  ExpectFailures({
    {"establish", [&] { empty.EstablishDatumShift(transform, CDatumShiftPreferences()); }, 7,
     "CDataSource::EstablishDatumShift", ""},
    {"list", [&] { empty.GetValidDatumShiftsEx(a, b, CDatumShiftPreferencesEx(), routes, false); }, 7,
     "CDataSource::GetValidDatumShiftsEx", ""},
    {"plain list", [&] { empty.GetValidDatumShifts(a, b, CDatumShiftPreferencesEx(), plain); }, 7,
     "CDataSource::GetValidDatumShifts", ""},
  });
}

TEST(DatumShiftDiscovery, EqualDatumsNeedNoShift)
{
  ShiftStore s;
  s.Shift("1", CDatumShift::kMolodensky, "ED50", "WGS84", "EU");
  CGeodeticCoordSys a = s.System("ED50", "EU"), b = s.System("ED50", "EU");
  CCoordTransform transform(&a, &b);
  transform.GetDatumShifts().AddBack(CDatumShift::kMolodensky); // emptied first
  EXPECT_TRUE(s.source.EstablishDatumShift(transform, CDatumShiftPreferences()));
  EXPECT_EQ(transform.GetDatumShifts().Count(), 0);

  // The listing leaves what the caller holds as it was.
  Routes routes;
  routes.list.push_back(CDatumShiftList{});
  EXPECT_TRUE(s.source.GetValidDatumShiftsEx(a, b, CDatumShiftPreferencesEx(), routes.list, false));
  ASSERT_EQ(routes.list.size(), 1u);
  EXPECT_TRUE(routes.list.front().empty());
}

TEST(DatumShiftDiscovery, DefaultOptionsTakeAnyMethodInTheSourceSystemsArea)
{
  ShiftStore s;
  s.Shift("1", CDatumShift::kGeocentricTranslation, "ED50", "WGS84", "EU", {{"dx", -87.0}});
  s.Shift("2", CDatumShift::kMolodensky, "ED50", "WGS84", "NA", {{"dx", -80.0}});
  s.Shift("3", CDatumShift::kMolodensky, "ED50", "WGS84", "EU", {{"dx", -87.0}});
  s.Shift("4", CDatumShift::kMolodensky, "ED50", "WGS84", "DE", {{"dx", -90.0}});
  CGeodeticCoordSys wgs84 = s.System("WGS84");
  struct Case
  {
    char const * area;
    int options;
    CDatumShift::Type method;
    char const * chain;
    bool found;
  };
  for (Case const c : {
         // 17 is a direct shift of any method, in the area of the source system: the lowest code there.
         Case{"EU", 17, CDatumShift::kMolodensky, "1", true},
         Case{"DE", 17, CDatumShift::kMolodensky, "4", true},
         Case{"NA", 17, CDatumShift::kMolodensky, "2", true},
         Case{"ANY", 17, CDatumShift::kMolodensky, "", false}, // no shift of that area
         // Without 16 only the method counts, by default Molodensky.
         Case{"EU", 1, CDatumShift::kMolodensky, "3", true},
         Case{"EU", 1, CDatumShift::kGeocentricTranslation, "1", true},
         Case{"DE", 1, CDatumShift::kGeocentricTranslation, "", false},
         Case{"ANY", 1 | 8, CDatumShift::kMolodensky, "2", true}, // any area: the lowest Molodensky code
         Case{"ANY", 1 | 8 | 16, CDatumShift::kMolodensky, "1", true},
         Case{"EU", 16, CDatumShift::kMolodensky, "", false}, // neither a direct route nor one through
       }) {
    CGeodeticCoordSys ed50 = s.System("ED50", c.area);
    CCoordTransform transform(&ed50, &wgs84);
    CDatumShiftPreferences prefs = Options(c.options);
    prefs.SetMethod(c.method);
    EXPECT_EQ(s.source.EstablishDatumShift(transform, prefs), c.found) << c.area << " " << c.options;
    EXPECT_EQ(Chain(transform.GetDatumShifts()), c.chain) << c.area << " " << c.options;
  }
}

TEST(DatumShiftDiscovery, AGivenAreaIsFoundByItsVMCodeOrThroughAnotherIssuer)
{
  ShiftStore s;
  s.Envelope("BE", 2.5, 49.5, 6.4, 51.5, false, "1347");
  s.Shift("1", CDatumShift::kMolodensky, "ED50", "WGS84", "EU");
  s.Shift("2", CDatumShift::kMolodensky, "ED50", "WGS84", "BE");
  CGeodeticCoordSys ed50 = s.System("ED50", "EU"), wgs84 = s.System("WGS84");
  CCoordTransform transform(&ed50, &wgs84);
  struct Case
  {
    char const * issuer;
    char const * code;
    char const * chain;
  };
  for (Case const c : {Case{"VM", "BE", "2"}, Case{"EPSG", "1347", "2"}, Case{"VM", "NA", ""},
                       Case{"EPSG", "9999", ""}}) {
    CDatumShiftPreferences prefs = Options(1 | 4);
    prefs.SetAreaIssuer(Wide(c.issuer).c_str());
    prefs.SetAreaCode(Wide(c.code).c_str());
    EXPECT_EQ(s.source.EstablishDatumShift(transform, prefs), *c.chain != 0) << c.issuer << c.code;
    EXPECT_EQ(Chain(transform.GetDatumShifts()), c.chain) << c.issuer << c.code;
  }
  // With 8 as well, the area is not looked at.
  CDatumShiftPreferences prefs = Options(1 | 4 | 8);
  prefs.SetAreaIssuer(Wide("VM").c_str());
  prefs.SetAreaCode(Wide("NA").c_str());
  EXPECT_TRUE(s.source.EstablishDatumShift(transform, prefs));
  EXPECT_EQ(Chain(transform.GetDatumShifts()), "1");
}

TEST(DatumShiftDiscovery, EstablishTakesTheFirstMatchInCodeTextOrderEitherWay)
{
  ShiftStore s;
  // As text "100" comes before "20": the order of discovery is the only tie-break.
  s.Shift("20", CDatumShift::kMolodensky, "WGS84", "ED50", "EU");
  s.Shift("100", CDatumShift::kMolodensky, "ED50", "WGS84", "EU");
  s.Shift("3", CDatumShift::kMolodensky, "ED50", "WGS84", "EU");
  CGeodeticCoordSys ed50 = s.System("ED50", "EU"), wgs84 = s.System("WGS84", "EU");
  CCoordTransform ahead(&ed50, &wgs84);
  EXPECT_TRUE(s.source.EstablishDatumShift(ahead, CDatumShiftPreferences()));
  EXPECT_EQ(Chain(ahead.GetDatumShifts()), "100");
  CCoordTransform back(&wgs84, &ed50);
  EXPECT_TRUE(s.source.EstablishDatumShift(back, CDatumShiftPreferences()));
  EXPECT_EQ(Chain(back.GetDatumShifts()), "100~"); // matched reversed: the flag is set

  // Only the reverse one left in the area: it is taken reversed.
  CGeodeticCoordSys ed50Na = s.System("ED50", "NA");
  s.Shift("5", CDatumShift::kMolodensky, "WGS84", "ED50", "NA");
  CCoordTransform reverse(&ed50Na, &wgs84);
  EXPECT_TRUE(s.source.EstablishDatumShift(reverse, CDatumShiftPreferences()));
  EXPECT_EQ(Chain(reverse.GetDatumShifts()), "5~");
}

TEST(DatumShiftDiscovery, RoutesThroughAnIntermediateDatum)
{
  ShiftStore s;
  s.Shift("1", CDatumShift::kMolodensky, "NAD27", "WGS84", "NA");
  s.Shift("2", CDatumShift::kMolodensky, "ED50", "WGS84", "NA");
  s.Shift("3", CDatumShift::kMolodensky, "NAD27", "PD", "NA");
  s.Shift("4", CDatumShift::kMolodensky, "PD", "ED50", "NA");
  s.Shift("5", CDatumShift::kMolodensky, "NAD27", "ED50", "NA");
  CGeodeticCoordSys nad27 = s.System("NAD27", "NA"), ed50 = s.System("ED50"), pd = s.System("PD");
  CCoordTransform transform(&nad27, &ed50);

  // Options 1 and 2: the direct shift wins.
  EXPECT_TRUE(s.source.EstablishDatumShift(transform, Options(1 | 2 | 16)));
  EXPECT_EQ(Chain(transform.GetDatumShifts()), "5");
  // Through WGS 84, found as EPSG 6326 when no intermediate is given; the second leg reversed.
  EXPECT_TRUE(s.source.EstablishDatumShift(transform, Options(2 | 16)));
  EXPECT_EQ(Chain(transform.GetDatumShifts()), "1 2~");
  // A given intermediate; an unknown one or a half-given one falls back to EPSG 6326.
  struct Case
  {
    char const * issuer;
    char const * code;
    char const * chain;
  };
  for (Case const c : {Case{"VM", "PD", "3 4"}, Case{"VM", "NOPE", "1 2~"}, Case{"", "PD", "1 2~"},
                       Case{"VM", "", "1 2~"}, Case{"EPSG", "6326", "1 2~"}}) {
    CDatumShiftPreferences prefs = Options(2 | 16);
    prefs.SetIntermediateIssuer(Wide(c.issuer).c_str());
    prefs.SetIntermediateCode(Wide(c.code).c_str());
    EXPECT_TRUE(s.source.EstablishDatumShift(transform, prefs)) << c.issuer << "/" << c.code;
    EXPECT_EQ(Chain(transform.GetDatumShifts()), c.chain) << c.issuer << "/" << c.code;
  }

  // An intermediate equal to the source or the target gives no route.
  CDatumShiftPreferences toTarget = Options(2 | 16);
  toTarget.SetIntermediateIssuer(Wide("VM").c_str());
  toTarget.SetIntermediateCode(Wide("ED50").c_str());
  EXPECT_FALSE(s.source.EstablishDatumShift(transform, toTarget));
  EXPECT_EQ(transform.GetDatumShifts().Count(), 0);
  CGeodeticCoordSys wgs84 = s.System("WGS84", "NA");
  CCoordTransform viaItself(&wgs84, &pd);
  EXPECT_FALSE(s.source.EstablishDatumShift(viaItself, Options(2 | 16)));
}

TEST(DatumShiftDiscovery, AFirstLegWithoutASecondIsTakenBack)
{
  ShiftStore s;
  s.Shift("1", CDatumShift::kMolodensky, "NAD27", "WGS84", "NA");
  CGeodeticCoordSys nad27 = s.System("NAD27", "NA"), ed50 = s.System("ED50");
  CCoordTransform transform(&nad27, &ed50);
  EXPECT_FALSE(s.source.EstablishDatumShift(transform, Options(1 | 2 | 16)));
  EXPECT_EQ(transform.GetDatumShifts().Count(), 0);
  // Neither leg: false too.
  CCoordTransform other(&ed50, &nad27);
  EXPECT_FALSE(s.source.EstablishDatumShift(other, Options(2 | 16)));
  EXPECT_EQ(other.GetDatumShifts().Count(), 0);
}

TEST(DatumShiftDiscovery, AMissingFallbackDatumRaisesCode24)
{
  ShiftStore s(false); // WGS 84 without its EPSG code
  s.Shift("1", CDatumShift::kMolodensky, "ED50", "WGS84", "EU");
  CGeodeticCoordSys ed50 = s.System("ED50"), nad27 = s.System("NAD27");
  CCoordTransform transform(&ed50, &nad27);
  auto const e = Raised([&] { s.source.EstablishDatumShift(transform, Options(2 | 16)); });
  EXPECT_EQ(e.GetErrorCode(), 24);
  EXPECT_EQ(e.GetLocation(), CString("CDataSource::Get##name"));
  EXPECT_EQ(e.GetDetails(), CString("EPSG/name/6326"));
  // A given intermediate that exists needs no fallback; option 1 alone never looks for one.
  CDatumShiftPreferences given = Options(2 | 16);
  given.SetIntermediateIssuer(Wide("VM").c_str());
  given.SetIntermediateCode(Wide("WGS84").c_str());
  EXPECT_FALSE(s.source.EstablishDatumShift(transform, given));
  EXPECT_FALSE(s.source.EstablishDatumShift(transform, Options(1 | 16)));
}

TEST(DatumShiftDiscovery, RemovedShiftsServeATransformButAreNotListed)
{
  ShiftStore s;
  s.Shift("1", CDatumShift::kMolodensky, "ED50", "WGS84", "EU");
  s.Shift("2", CDatumShift::kMolodensky, "ED50", "WGS84", "EU");
  ASSERT_TRUE(s.source.RemoveDatumShift(CString("1")));
  CGeodeticCoordSys ed50 = s.System("ED50", "EU"), wgs84 = s.System("WGS84");
  CCoordTransform transform(&ed50, &wgs84);
  EXPECT_TRUE(s.source.EstablishDatumShift(transform, CDatumShiftPreferences()));
  EXPECT_EQ(Chain(transform.GetDatumShifts()), "1");
  Routes routes;
  EXPECT_TRUE(s.source.GetValidDatumShiftsEx(ed50, wgs84, CDatumShiftPreferencesEx(), routes.list, false));
  EXPECT_EQ(routes.Text(), "2");
}

TEST(DatumShiftDiscovery, ListingGivesForwardThenReverseDirectRoutes)
{
  ShiftStore s;
  s.Shift("30", CDatumShift::kMolodensky, "WGS84", "ED50", "EU");
  s.Shift("100", CDatumShift::kMolodensky, "ED50", "WGS84", "EU");
  s.Shift("2", CDatumShift::kFourParameter, "ED50", "WGS84", "EU");
  s.Shift("21", CDatumShift::kGeocentricTranslation, "WGS84", "ED50", "NA");
  s.Shift("7", CDatumShift::kSevenParameter, "ED50", "WGS84", "ANY");
  s.Shift("9", CDatumShift::kMolodensky, "ED50", "NAD27", "EU"); // another pair of datums
  CGeodeticCoordSys ed50 = s.System("ED50"), wgs84 = s.System("WGS84");

  Routes routes;
  EXPECT_TRUE(s.source.GetValidDatumShiftsEx(ed50, wgs84, CDatumShiftPreferencesEx(), routes.list, true));
  EXPECT_EQ(routes.Text(), "100 2 7 21~ 30~");
  // The reverse flag belongs to the route; the shift object is as stored.
  EXPECT_FALSE(routes.list.back().front().GetDatumShift()->GetReverseUsage());

  // Bit flags by type; none set, or only bits above the type bits, let every type through.
  struct Case
  {
    BitFlag flags;
    char const * text;
  };
  for (Case const c : {Case{0, "100 2 7 21~ 30~"}, Case{8, "2"}, Case{1u << 6, "100 30~"},
                       Case{(1u << 4) | (1u << 12), "7 21~"}, Case{1u << 0, ""}, Case{1u << 28, "100 2 7 21~ 30~"}}) {
    CDatumShiftPreferencesEx prefs;
    prefs.SetBitFlags(c.flags);
    Routes some;
    EXPECT_EQ(s.source.GetValidDatumShiftsEx(ed50, wgs84, prefs, some.list, false), *c.text != 0) << c.flags;
    EXPECT_EQ(some.Text(), c.text) << c.flags;
  }

  // Include and exclude lists of "VM" codes, alone and together.
  struct Lists
  {
    std::vector<CString> include, exclude;
    char const * text;
  };
  for (Lists const & c : {Lists{Codes({"2", "30", "9"}), {}, "2 30~"}, Lists{{}, Codes({"100", "21"}), "2 7 30~"},
                          Lists{Codes({"2", "30"}), Codes({"30"}), "2"}, Lists{Codes({"X"}), {}, ""}}) {
    CDatumShiftPreferencesEx prefs;
    prefs.SetIncludeList(c.include);
    prefs.SetExcludeList(c.exclude);
    Routes some;
    s.source.GetValidDatumShiftsEx(ed50, wgs84, prefs, some.list, false);
    EXPECT_EQ(some.Text(), c.text);
  }

  // Only through an intermediate: no direct route at all.
  CDatumShiftPreferencesEx only;
  only.SetOnlyGoThruIntermediate(true);
  Routes none;
  EXPECT_FALSE(s.source.GetValidDatumShiftsEx(ed50, wgs84, only, none.list, false));
  EXPECT_TRUE(none.list.empty());
}

TEST(DatumShiftDiscovery, EachTypeBitAdmitsItsOwnTypeOnly)
{
  ShiftStore s;
  // One shift of every type, coded so that text order is type order.
  for (int type = 0; type < CDatumShift::kTypeCount; ++type) {
    std::string const code = (type < 10 ? "T0" : "T") + std::to_string(type);
    s.Shift(code.c_str(), static_cast<CDatumShift::Type>(type), "ED50", "WGS84", "EU");
  }
  CGeodeticCoordSys ed50 = s.System("ED50"), wgs84 = s.System("WGS84");
  for (int type = 0; type < CDatumShift::kTypeCount; ++type) {
    CDatumShiftPreferencesEx prefs;
    prefs.SetBitFlags(BitFlag(1) << type);
    Routes routes;
    EXPECT_TRUE(s.source.GetValidDatumShiftsEx(ed50, wgs84, prefs, routes.list, true)) << type;
    ASSERT_EQ(routes.list.size(), 1u) << type;
    EXPECT_EQ(routes.list.front().front().GetDatumShift()->GetType(), type);
  }
  CDatumShiftPreferencesEx all;
  Routes every;
  s.source.GetValidDatumShiftsEx(ed50, wgs84, all, every.list, true);
  EXPECT_EQ(every.list.size(), std::size_t(CDatumShift::kTypeCount));
}

TEST(DatumShiftDiscovery, AnAreaMustLieWhollyInsideAShiftsEnvelope)
{
  ShiftStore s;
  s.Shift("1", CDatumShift::kMolodensky, "ED50", "WGS84", "NA");
  s.Shift("2", CDatumShift::kMolodensky, "ED50", "WGS84", "ANY");
  s.Shift("3", CDatumShift::kMolodensky, "ED50", "WGS84", "DE");
  s.Shift("4", CDatumShift::kMolodensky, "ED50", "WGS84", "EU");
  CGeodeticCoordSys ed50 = s.System("ED50"), wgs84 = s.System("WGS84");
  struct Case
  {
    ML::CEnvelope area;
    char const * text;
  };
  // Specific routes come first, in their order, then those valid anywhere.
  for (Case const & c : {Case{Area(6.0, 48.0, 14.0, 54.0), "3 4 2"},  // inside Germany and Europe
                         Case{Area(5.0, 47.0, 15.0, 55.0), "3 4 2"},  // the corners are inclusive
                         Case{Area(0.0, 40.0, 14.0, 54.0), "4 2"},    // one corner outside Germany
                         Case{Area(-120.0, 30.0, -80.0, 50.0), "1 2"},
                         // Crossed corners drop nothing, but an area was given: the order is by class.
                         Case{Area(20.0, 40.0, -80.0, 50.0), "1 3 4 2"},
                         Case{ML::CEnvelope(), "1 2 3 4"}}) { // no area: every shift, code order
    CDatumShiftPreferencesEx prefs;
    prefs.SetArea(c.area);
    Routes some;
    s.source.GetValidDatumShiftsEx(ed50, wgs84, prefs, some.list, false);
    EXPECT_EQ(some.Text(), c.text);
  }
}

TEST(DatumShiftDiscovery, ListedLegsPairInOrderAndAFirstLegWithForwardShiftsNeverTurns)
{
  ShiftStore s;
  s.Shift("1", CDatumShift::kMolodensky, "NAD27", "WGS84", "NA");
  s.Shift("2", CDatumShift::kMolodensky, "WGS84", "NAD27", "ANY"); // reverse of the first leg: not listed
  s.Shift("3", CDatumShift::kMolodensky, "NAD27", "WGS84", "ANY");
  s.Shift("4", CDatumShift::kMolodensky, "ED50", "WGS84", "EU");  // second leg only reversed: taken so
  s.Shift("5", CDatumShift::kMolodensky, "ED50", "WGS84", "ANY");
  s.Shift("6", CDatumShift::kMolodensky, "NAD27", "ED50", "ANY"); // direct
  CGeodeticCoordSys nad27 = s.System("NAD27"), ed50 = s.System("ED50");

  CDatumShiftPreferencesEx prefs;
  prefs.SetIntermediateIssuer(Wide("VM").c_str());
  prefs.SetIntermediateCode(Wide("WGS84").c_str());
  Routes routes;
  EXPECT_TRUE(s.source.GetValidDatumShiftsEx(nad27, ed50, prefs, routes.list, false));
  EXPECT_EQ(routes.Text(), "6 1+4~ 1+5~ 3+4~ 3+5~");
  // A leg's shift object serves each route it pairs into.
  EXPECT_EQ(std::next(routes.list.begin())->front().GetDatumShift(),
            std::next(routes.list.begin(), 2)->front().GetDatumShift());

  // A second leg found forward: its reverse shifts are no longer listed.
  s.Shift("8", CDatumShift::kMolodensky, "WGS84", "ED50", "NA");
  Routes forward;
  s.source.GetValidDatumShiftsEx(nad27, ed50, prefs, forward.list, false);
  EXPECT_EQ(forward.Text(), "6 1+8 3+8");

  // With an area, routes whose shifts all name an area come first, the rest after in their order.
  CDatumShiftPreferencesEx area = prefs;
  area.SetArea(Area(-100.0, 30.0, -90.0, 40.0)); // inside North America
  Routes ordered;
  s.source.GetValidDatumShiftsEx(nad27, ed50, area, ordered.list, false);
  EXPECT_EQ(ordered.Text(), "1+8 6 3+8");
  // The whole world fits only the shifts valid anywhere; the second leg then turns.
  area.SetArea(Area(-180.0, -90.0, 180.0, 90.0));
  Routes anywhere;
  s.source.GetValidDatumShiftsEx(nad27, ed50, area, anywhere.list, false);
  EXPECT_EQ(anywhere.Text(), "6 3+5~");

  // The intermediate by another issuer; unknown, or equal to an end, it adds no two-shift route.
  struct Case
  {
    char const * issuer;
    char const * code;
    char const * text;
  };
  for (Case const c : {Case{"EPSG", "6326", "6 1+8 3+8"}, Case{"EPSG", "4326", "6"}, Case{"", "", "6"},
                       Case{"VM", "ED50", "6"}, Case{"VM", "NAD27", "6"}, Case{"VM", "PD", "6"}}) {
    CDatumShiftPreferencesEx some = prefs;
    some.SetIntermediateIssuer(Wide(c.issuer).c_str());
    some.SetIntermediateCode(Wide(c.code).c_str());
    Routes listed;
    s.source.GetValidDatumShiftsEx(nad27, ed50, some, listed.list, false);
    EXPECT_EQ(listed.Text(), c.text) << c.issuer << "/" << c.code;
  }

  // From ED50 the first leg has forward shifts (4, 5): the reverse one (8) is not listed.
  Routes back;
  s.source.GetValidDatumShiftsEx(ed50, nad27, prefs, back.list, false);
  EXPECT_EQ(back.Text(), "6~ 4+2 5+2");
}

TEST(DatumShiftDiscovery, ThePlainListingNamesEachShiftByCodeAndName)
{
  ShiftStore s;
  s.Shift("1", CDatumShift::kMolodensky, "NAD27", "WGS84", "NA");
  s.Shift("2", CDatumShift::kMolodensky, "ED50", "WGS84", "EU");
  s.Shift("3", CDatumShift::kMolodensky, "ED50", "NAD27", "ANY");
  CGeodeticCoordSys nad27 = s.System("NAD27"), ed50 = s.System("ED50");
  CDatumShiftPreferencesEx prefs;
  prefs.SetIntermediateIssuer(Wide("EPSG").c_str());
  prefs.SetIntermediateCode(Wide("6326").c_str());
  std::list<std::list<CDatumShiftInfo>> plain;
  EXPECT_TRUE(s.source.GetValidDatumShifts(nad27, ed50, prefs, plain));
  std::list<std::list<CDatumShiftInfo>> const expected{
    {CDatumShiftInfo(Wide("3").c_str(), Wide("shift 3").c_str(), true)},
    {CDatumShiftInfo(Wide("1").c_str(), Wide("shift 1").c_str(), false),
     CDatumShiftInfo(Wide("2").c_str(), Wide("shift 2").c_str(), true)}};
  EXPECT_EQ(plain, expected);

  std::list<std::list<CDatumShiftInfo>> none;
  CGeodeticCoordSys pd = s.System("PD");
  EXPECT_FALSE(s.source.GetValidDatumShifts(pd, ed50, CDatumShiftPreferencesEx(), none));
  EXPECT_TRUE(none.empty());
}

namespace {

// Geodetic to earth-centred and back on one ellipsoid (degrees, metres); the
// inverse iterates the latitude to convergence (Heiskanen and Moritz 5-3).
struct Figure
{
  double a, e2;
  Figure(double semiMajor, double inverseFlattening)
    : a(semiMajor), e2((2.0 - 1.0 / inverseFlattening) / inverseFlattening)
  {
  }
  void ToCartesian(double lon, double lat, double h, double & x, double & y, double & z) const
  {
    double const phi = lat * std::numbers::pi / 180.0, lambda = lon * std::numbers::pi / 180.0;
    double const n = a / std::sqrt(1.0 - e2 * std::sin(phi) * std::sin(phi));
    x = (n + h) * std::cos(phi) * std::cos(lambda);
    y = (n + h) * std::cos(phi) * std::sin(lambda);
    z = (n * (1.0 - e2) + h) * std::sin(phi);
  }
  void ToGeodetic(double x, double y, double z, double & lon, double & lat) const
  {
    double const p = std::hypot(x, y);
    double phi = std::atan2(z, p * (1.0 - e2));
    for (int i = 0; i < 20; ++i) {
      double const n = a / std::sqrt(1.0 - e2 * std::sin(phi) * std::sin(phi));
      double const h = p / std::cos(phi) - n;
      phi = std::atan2(z, p * (1.0 - e2 * n / (n + h)));
    }
    lon = std::atan2(y, x) * 180.0 / std::numbers::pi;
    lat = phi * 180.0 / std::numbers::pi;
  }
};

} // namespace

TEST(DatumShiftDiscovery, AnEstablishedTransformConvertsLikeTheShiftByHand)
{
  ShiftStore s;
  s.Shift("1", CDatumShift::kGeocentricTranslation, "ED50", "WGS84", "EU",
          {{"dx", -87.0}, {"dy", -98.0}, {"dz", -121.0}});
  CGeodeticCoordSys ed50 = s.System("ED50", "EU"), wgs84 = s.System("WGS84", "EU");
  CDatumShiftPreferences prefs;
  prefs.SetMethod(CDatumShift::kGeocentricTranslation);
  Figure const international(6378388.0, 297.0), wgs(6378137.0, 298.257223563);

  CCoordTransform ahead(&ed50, &wgs84);
  ASSERT_TRUE(s.source.EstablishDatumShift(ahead, prefs));
  double lon = 9.0, lat = 48.0;
  ASSERT_TRUE(ahead.ConvertAhead(lon, lat));
  double x, y, z, expectLon, expectLat;
  international.ToCartesian(9.0, 48.0, 0.0, x, y, z);
  wgs.ToGeodetic(x - 87.0, y - 98.0, z - 121.0, expectLon, expectLat);
  EXPECT_NEAR(lon, expectLon, 1e-9);
  EXPECT_NEAR(lat, expectLat, 1e-9);
  EXPECT_GT(std::hypot(lon - 9.0, lat - 48.0), 1e-4); // it did move, by about a hundred metres

  // The same shift found reversed takes WGS 84 back to ED50.
  CCoordTransform back(&wgs84, &ed50);
  ASSERT_TRUE(s.source.EstablishDatumShift(back, prefs));
  EXPECT_EQ(Chain(back.GetDatumShifts()), "1~");
  double lon2 = 9.0, lat2 = 48.0;
  ASSERT_TRUE(back.ConvertAhead(lon2, lat2));
  wgs.ToCartesian(9.0, 48.0, 0.0, x, y, z);
  international.ToGeodetic(x + 87.0, y + 98.0, z + 121.0, expectLon, expectLat);
  EXPECT_NEAR(lon2, expectLon, 1e-9);
  EXPECT_NEAR(lat2, expectLat, 1e-9);

  // And it agrees with the stored shift applied directly.
  std::unique_ptr<CDatumShift> stored(s.source.GetDatumShift(CString("1")));
  double lon3 = 9.0, lat3 = 48.0;
  ASSERT_TRUE(stored->ShiftForward(lon3, lat3));
  EXPECT_EQ(lon3, lon);
  EXPECT_EQ(lat3, lat);
}
