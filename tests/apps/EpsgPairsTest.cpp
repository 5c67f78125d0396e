// The tool on the data file the build made from the EPSG registry, against
// cs2cs on the same points: transverse Mercator and conic systems of many
// datums and zones within 1 mm, and datum shifts within 1 mm of PROJ where both apply
// the same EPSG transformation (named in each case: PROJ gets its published
// parameters as +towgs84, position-vector convention).
#include <gtest/gtest.h>

#include "CliSupport.h"

#include <QFile>

using namespace VelmoraTest;

namespace {

QStringList Words(char const * text) { return QString(text).split(' ', Qt::SkipEmptyParts); }

// A grid of points around (lon, lat), `step` degrees apart, three by three.
std::vector<Row> Around(double lon, double lat, double step)
{
  std::vector<Row> points;
  for (int i = -1; i <= 1; ++i)
    for (int j = -1; j <= 1; ++j)
      points.push_back({lon + i * step, lat + j * step, 0.0});
  return points;
}

struct Pair
{
  char const * from;
  char const * to;
  char const * projFrom;
  char const * projTo;
  double lon, lat; // where the points are
  char const * route = nullptr;
  double step = 0.5; // degrees between points
};

// Geodetic to projected on one datum: no datum shift is taken by either side.
Pair const kProjections[] = {
  {"EPSG:4326", "EPSG:32632", "+proj=longlat +datum=WGS84", "+proj=utm +zone=32 +datum=WGS84", 9.0, 48.0},
  {"EPSG:4326", "EPSG:32633", "+proj=longlat +datum=WGS84", "+proj=utm +zone=33 +datum=WGS84", 15.0, 52.0},
  {"EPSG:4326", "EPSG:32618", "+proj=longlat +datum=WGS84", "+proj=utm +zone=18 +datum=WGS84", -75.0, 40.0},
  {"EPSG:4326", "EPSG:32755", "+proj=longlat +datum=WGS84", "+proj=utm +zone=55 +south +datum=WGS84", 147.0, -37.0},
  {"EPSG:4326", "EPSG:32601", "+proj=longlat +datum=WGS84", "+proj=utm +zone=1 +datum=WGS84", -177.0, 60.0},
  {"EPSG:4326", "EPSG:32660", "+proj=longlat +datum=WGS84", "+proj=utm +zone=60 +datum=WGS84", 177.0, 60.0},
  {"EPSG:4326", "EPSG:32723", "+proj=longlat +datum=WGS84", "+proj=utm +zone=23 +south +datum=WGS84", -45.0, -23.0},
  {"EPSG:4258", "EPSG:25832", "+proj=longlat +ellps=GRS80", "+proj=utm +zone=32 +ellps=GRS80", 9.0, 50.0},
  {"EPSG:4258", "EPSG:25833", "+proj=longlat +ellps=GRS80", "+proj=utm +zone=33 +ellps=GRS80", 14.0, 52.0},
  {"EPSG:4269", "EPSG:26918", "+proj=longlat +ellps=GRS80", "+proj=utm +zone=18 +ellps=GRS80", -75.0, 42.0},
  {"EPSG:4269", "EPSG:26910", "+proj=longlat +ellps=GRS80", "+proj=utm +zone=10 +ellps=GRS80", -123.0, 45.0},
  {"EPSG:4283", "EPSG:28355", "+proj=longlat +ellps=GRS80", "+proj=utm +zone=55 +south +ellps=GRS80", 147.0, -35.0},
  {"EPSG:4283", "EPSG:28350", "+proj=longlat +ellps=GRS80", "+proj=utm +zone=50 +south +ellps=GRS80", 117.0, -31.0},
  {"EPSG:4277", "EPSG:27700", "+proj=longlat +ellps=airy",
   "+proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000 +ellps=airy", -1.5, 53.0},
  {"EPSG:4314", "EPSG:31467", "+proj=longlat +ellps=bessel",
   "+proj=tmerc +lat_0=0 +lon_0=9 +k=1 +x_0=3500000 +y_0=0 +ellps=bessel", 9.0, 50.0},
  {"EPSG:4314", "EPSG:31468", "+proj=longlat +ellps=bessel",
   "+proj=tmerc +lat_0=0 +lon_0=12 +k=1 +x_0=4500000 +y_0=0 +ellps=bessel", 12.0, 49.0},
  {"EPSG:4230", "EPSG:23032", "+proj=longlat +ellps=intl", "+proj=utm +zone=32 +ellps=intl", 9.0, 45.0},
  {"EPSG:4230", "EPSG:23030", "+proj=longlat +ellps=intl", "+proj=utm +zone=30 +ellps=intl", -3.0, 40.0},
  {"EPSG:4167", "EPSG:2193", "+proj=longlat +ellps=GRS80",
   "+proj=tmerc +lat_0=0 +lon_0=173 +k=0.9996 +x_0=1600000 +y_0=10000000 +ellps=GRS80", 174.0, -41.0},
  {"EPSG:4121", "EPSG:2100", "+proj=longlat +ellps=GRS80",
   "+proj=tmerc +lat_0=0 +lon_0=24 +k=0.9996 +x_0=500000 +y_0=0 +ellps=GRS80", 23.7, 38.0},
  {"EPSG:4258", "EPSG:3067", "+proj=longlat +ellps=GRS80", "+proj=utm +zone=35 +ellps=GRS80", 25.0, 62.0},
  {"EPSG:4619", "EPSG:3006", "+proj=longlat +ellps=GRS80",
   "+proj=tmerc +lat_0=0 +lon_0=15 +k=0.9996 +x_0=500000 +y_0=0 +ellps=GRS80", 16.0, 60.0},
  {"EPSG:4258", "EPSG:2180", "+proj=longlat +ellps=GRS80",
   "+proj=tmerc +lat_0=0 +lon_0=19 +k=0.9993 +x_0=500000 +y_0=-5300000 +ellps=GRS80", 19.0, 52.0},
  {"EPSG:4258", "EPSG:2157", "+proj=longlat +ellps=GRS80",
   "+proj=tmerc +lat_0=53.5 +lon_0=-8 +k=0.99982 +x_0=600000 +y_0=750000 +ellps=GRS80", -8.0, 53.3},
  {"EPSG:4757", "EPSG:3414", "+proj=longlat +ellps=WGS84",
   "+proj=tmerc +lat_0=1.36666666666667 +lon_0=103.833333333333 +k=1 +x_0=28001.642 +y_0=38744.572 "
   "+ellps=WGS84",
   103.8, 1.3, nullptr, 0.1},
  // The conics: Lambert 2SP north and south, 1SP, Albers north and south
  // (the tool gives metres whatever the system's unit).
  {"EPSG:4269", "EPSG:2227", "+proj=longlat +ellps=GRS80",
   "+proj=lcc +lat_0=36.5 +lon_0=-120.5 +lat_1=38.4333333333333 +lat_2=37.0666666666667 +x_0=2000000.0001016 "
   "+y_0=500000.0001016 +ellps=GRS80", -121.0, 37.7},
  {"EPSG:4171", "EPSG:2154", "+proj=longlat +ellps=GRS80",
   "+proj=lcc +lat_0=46.5 +lon_0=3 +lat_1=49 +lat_2=44 +x_0=700000 +y_0=6600000 +ellps=GRS80", 3.0, 46.5},
  {"EPSG:4258", "EPSG:3034", "+proj=longlat +ellps=GRS80",
   "+proj=lcc +lat_0=52 +lon_0=10 +lat_1=35 +lat_2=65 +x_0=4000000 +y_0=2800000 +ellps=GRS80", 10.0, 52.0},
  {"EPSG:4313", "EPSG:31370", "+proj=longlat +ellps=intl",
   "+proj=lcc +lat_0=90 +lon_0=4.36748666666667 +lat_1=51.1666672333333 +lat_2=49.8333339 +x_0=150000.013 "
   "+y_0=5400088.438 +ellps=intl",
   4.5, 50.6, nullptr, 0.3},
  {"EPSG:4283", "EPSG:3112", "+proj=longlat +ellps=GRS80",
   "+proj=lcc +lat_0=0 +lon_0=134 +lat_1=-18 +lat_2=-36 +x_0=0 +y_0=0 +ellps=GRS80", 134.0, -25.0},
  {"EPSG:4242", "EPSG:24200", "+proj=longlat +ellps=clrk66",
   "+proj=lcc +lat_1=18 +lat_0=18 +lon_0=-77 +k_0=1 +x_0=250000 +y_0=150000 +ellps=clrk66", -77.3, 18.1, nullptr,
   0.2},
  {"EPSG:4269", "EPSG:5070", "+proj=longlat +ellps=GRS80",
   "+proj=aea +lat_0=23 +lon_0=-96 +lat_1=29.5 +lat_2=45.5 +x_0=0 +y_0=0 +ellps=GRS80", -96.0, 38.0},
  {"EPSG:4283", "EPSG:3577", "+proj=longlat +ellps=GRS80",
   "+proj=aea +lat_0=0 +lon_0=132 +lat_1=-18 +lat_2=-36 +x_0=0 +y_0=0 +ellps=GRS80", 132.0, -25.0},
};

// Through one EPSG transformation, the same on both sides.
Pair const kShifts[] = {
  {"EPSG:4230", "EPSG:4326", "+proj=longlat +ellps=intl +towgs84=-87,-98,-121", "+proj=longlat +datum=WGS84", 9.0,
   48.0, "VM:1133"}, // ED50 to WGS 84 (1), geocentric translation
  {"EPSG:4277", "EPSG:4326", "+proj=longlat +ellps=airy +towgs84=446.448,-125.157,542.06,0.15,0.247,0.842,-20.489",
   "+proj=longlat +datum=WGS84", -1.5, 53.0, "VM:1314"}, // OSGB36 to WGS 84 (6), position vector
  {"EPSG:4314", "EPSG:4326", "+proj=longlat +ellps=bessel +towgs84=598.1,73.7,418.2,0.202,0.045,-2.455,6.7",
   "+proj=longlat +datum=WGS84", 9.0, 50.0, "VM:1777"}, // DHDN to WGS 84 (2), position vector
  {"EPSG:4121", "EPSG:4326", "+proj=longlat +ellps=GRS80 +towgs84=-199.87,74.79,246.62",
   "+proj=longlat +datum=WGS84", 23.7, 38.0, "VM:1272"}, // GGRS87 to WGS 84 (1)
  {"EPSG:4284", "EPSG:4326", "+proj=longlat +ellps=krass +towgs84=23.92,-141.27,-80.9,0,0.35,0.82,-0.12",
   "+proj=longlat +datum=WGS84", 40.0, 56.0, "VM:1267"}, // Pulkovo 1942 to WGS 84 (17)
  {"EPSG:4326", "EPSG:27700", "+proj=longlat +datum=WGS84",
   "+proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000 +ellps=airy "
   "+towgs84=446.448,-125.157,542.06,0.15,0.247,0.842,-20.489",
   -1.5, 53.0, "-VM:1314"}, // the same used backwards, then projected
  {"EPSG:4326", "EPSG:23032", "+proj=longlat +datum=WGS84", "+proj=utm +zone=32 +ellps=intl +towgs84=-87,-98,-121",
   9.0, 45.0, "-VM:1133"},
};

QString ShippedData()
{
#ifdef VELMORA_SHIPPED_DATA
  return QString(VELMORA_SHIPPED_DATA);
#else
  return QString();
#endif
}

void Compare(Pair const & pair, bool geodeticOutput)
{
  ProjCase c;
  c.what = QString(pair.from) + " to " + pair.to;
  c.tool = QStringList{"--from", pair.from, "--to", pair.to};
  if (pair.route)
    c.tool += QStringList{"--route", pair.route};
  c.cs2cs = Words(pair.projFrom) + QStringList{"+to"} + Words(pair.projTo);
  c.points = Around(pair.lon, pair.lat, pair.step);
  c.geodeticOutput = geodeticOutput;
  ExpectAgreesWithProj(c, ShippedData());
}

} // namespace

TEST(ShippedData, ProjectedSystemsOfManyDatumsAgreeWithCs2csToAMillimetre)
{
  if (ShippedData().isEmpty() || !QFile::exists(ShippedData()))
    GTEST_SKIP() << "no EPSG registry: the data file was not built";
  for (Pair const & pair : kProjections)
    Compare(pair, false);
}

TEST(ShippedData, EpsgTransformationsAgreeWithProjUsingTheSameParameters)
{
  if (ShippedData().isEmpty() || !QFile::exists(ShippedData()))
    GTEST_SKIP() << "no EPSG registry: the data file was not built";
  for (Pair const & pair : kShifts)
    Compare(pair, QString(pair.projTo).startsWith("+proj=longlat"));
}
