#include <velmora/measures/Georef_p.h>

#include <cctype>
#include <cmath>
#include <cstdio>

namespace Velmora::ML {

namespace {

constexpr double kCell = 15.0;             // degrees of a lettered quadrangle
constexpr double kDigitsPerDegree = 60000.0; // thousandths of a minute
constexpr long kDigitsPerDegreeWhole = 60000;
constexpr int kDigitCount = 5;

double Digits(CString const & text, int start)
{
  return text.mid(start, kDigitCount).toLong() / kDigitsPerDegree;
}

double Wrap(double x)
{
  if (x < 0.0)
    return x + 360.0;
  if (x >= 360.0)
    return x - 360.0;
  return x;
}

// Letters and digits of one coordinate, x counted from the cell origin.
void Encode(double x, bool isLongitude, char & cell, char & degree, long & digits)
{
  double whole = std::floor(x);
  digits = long(std::floor((x - whole) * kDigitsPerDegree + 0.5));
  // Rounding up to a full degree carries into the degree itself; on 180E
  // the longitude starts again at 180W.
  if (digits >= kDigitsPerDegreeWhole) {
    digits -= kDigitsPerDegreeWhole;
    whole += 1.0;
    if (isLongitude && whole >= 360.0)
      whole -= 360.0;
  }
  double const quadrangle = std::floor(whole / kCell);
  cell = GeorefLetterFromIndex(long(quadrangle));
  degree = GeorefLetterFromIndex(long(whole - quadrangle * kCell));
}

} // namespace

long GeorefIndexFromLetter(char c)
{
  c = char(std::toupper(static_cast<unsigned char>(c)));
  if (c < 'I')
    return c - 65;
  if (c < 'O')
    return c - 66;
  return c - 67;
}

char GeorefLetterFromIndex(long index)
{
  if (index < 8)
    return char('A' + index);
  if (index < 13)
    return char('A' + index + 1);
  return char('A' + index + 2);
}

void GeorefToLonLat(CString const & text, double & lon, double & lat)
{
  // A short text reads its missing letters as NUL, as its missing digits read as 0.
  auto letter = [&text](int i) { return GeorefIndexFromLetter(i < text.size() ? text[i].toLatin1() : '\0'); };
  lon = letter(0) * kCell + letter(2) + Digits(text, 4) - 180.0;
  lat = letter(1) * kCell + letter(3) + Digits(text, 4 + kDigitCount) - 90.0;
}

CString LonLatToGeoref(double lon, double lat)
{
  if (!std::isfinite(lon) || !std::isfinite(lat))
    return CString();
  char lonCell, lonDegree, latCell, latDegree;
  long lonDigits, latDigits;
  Encode(Wrap(lon + 180.0), true, lonCell, lonDegree, lonDigits);
  Encode(Wrap(lat + 90.0), false, latCell, latDegree, latDigits);
  char text[32];
  std::snprintf(text, sizeof text, "%c%c%c%c%05ld%05ld", lonCell, latCell, lonDegree, latDegree,
                lonDigits, latDigits);
  return CString(text);
}

} // namespace Velmora::ML
