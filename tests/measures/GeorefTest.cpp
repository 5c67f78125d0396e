#include <velmora/measures/Georef_p.h>

#include <gtest/gtest.h>

#include <cmath>

using Velmora::CString;
using namespace Velmora::ML;

namespace {

constexpr double kHalfDigit = 0.5 / 60000.0; // half a thousandth of a minute, in degrees

std::string Georef(double lon, double lat) { return LonLatToGeoref(lon, lat).toStdString(); }

} // namespace

TEST(Georef, LettersSkipIAndO)
{
  char const letters[] = "ABCDEFGHJKLMNPQRSTUVWXYZ";
  for (long i = 0; i < 24; ++i) {
    EXPECT_EQ(GeorefLetterFromIndex(i), letters[i]) << i;
    EXPECT_EQ(GeorefIndexFromLetter(letters[i]), i) << letters[i];
    EXPECT_EQ(GeorefIndexFromLetter(char(std::tolower(letters[i]))), i) << letters[i];
  }
}

TEST(Georef, PublishedAndHandCheckedPlaces)
{
  // Origin: 180 and 90 degrees into the grid, cells 12 (N) and 6 (G).
  EXPECT_EQ(Georef(0.0, 0.0), "NGAA0000000000");
  EXPECT_EQ(Georef(-180.0, -90.0), "AAAA0000000000");
  // Patuxent River, published to the minute as GJPJ3417 for 76.4291704W 38.286108N:
  // 103.5708296 east of 180W is cells 6 (G) and 13 (P) and 34.24978 minutes;
  // 128.286108 north of 90S is cells 8 (J) and 8 (J) and 17.16648 minutes.
  EXPECT_EQ(Georef(-76.4291704, 38.286108), "GJPJ3425017166");
  // Deal Island, published as GJQJ0207: 76W + 2', 38N + 7'.
  double lon = 0.0, lat = 0.0;
  GeorefToLonLat(CString("GJQJ0200007000"), lon, lat);
  EXPECT_NEAR(lon, -76.0 + 2.0 / 60.0, 1e-12);
  EXPECT_NEAR(lat, 38.0 + 7.0 / 60.0, 1e-12);
  GeorefToLonLat(CString("gjqj0200007000"), lon, lat);
  EXPECT_NEAR(lon, -76.0 + 2.0 / 60.0, 1e-12);
  // The eastern edge is the western one again; the pole is the band above M.
  EXPECT_EQ(Georef(180.0, 90.0), "ANAA0000000000");
  EXPECT_EQ(Georef(-360.0, 0.0), "NGAA0000000000"); // brought back by one turn
}

TEST(Georef, DigitsThatRoundToAFullDegreeCarry)
{
  double const tiny = 1e-9; // under half a digit below the whole degree
  EXPECT_EQ(Georef(10.0 - tiny, 0.0), "NGLA0000000000");  // into the next degree
  EXPECT_EQ(Georef(15.0 - tiny, 0.0), "PGAA0000000000");  // into the next cell
  EXPECT_EQ(Georef(180.0 - tiny, 0.0), "AGAA0000000000"); // round the world
  EXPECT_EQ(Georef(0.0, 45.0 - tiny), "NKAA0000000000");  // latitude as well
  // Just below the rounding point: 59.999 minutes.
  EXPECT_EQ(Georef(10.0 - 1.0 / 60000.0, 0.0), "NGKA5999900000");
}

TEST(Georef, RoundTrips)
{
  for (double lon = -180.0; lon < 180.0; lon += 7.123456789) {
    for (double lat = -90.0; lat < 90.0; lat += 3.987654321) {
      CString const text = LonLatToGeoref(lon, lat);
      ASSERT_EQ(text.size(), 14);
      double lon2 = 1e300, lat2 = 1e300;
      GeorefToLonLat(text, lon2, lat2);
      EXPECT_NEAR(lon2, lon, kHalfDigit + 1e-12) << text.toStdString();
      EXPECT_NEAR(lat2, lat, kHalfDigit + 1e-12) << text.toStdString();
      EXPECT_EQ(LonLatToGeoref(lon2, lat2), text);
    }
  }
}
