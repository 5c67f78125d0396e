// Writes the EGM96 geoid raster that ships beside the data file from PROJ's
// egm96_15.gtx (proj-data): the 15-minute layout of the NGA's WW15MGH.DAC,
// 721 rows from 90 N to 90 S by 1440 columns from 0 E eastwards, each a
// big-endian 16-bit height in centimetres. The GTX file holds the same nodes
// as big-endian 32-bit metres from 90 S and 180 W, after a 40-byte header
// (south, west, row and column spacing as doubles, rows and columns as
// 32-bit integers), so the values are rounded to the centimetre.
//   gen_egm96 --gtx /usr/share/proj/egm96_15.gtx --out WW15MGH.DAC
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int kRows = 721, kColumns = 1440;
constexpr double kSpacing = 0.25;

std::uint64_t BigEndian(unsigned char const * p, int bytes)
{
  std::uint64_t v = 0;
  for (int i = 0; i < bytes; ++i)
    v = (v << 8) | p[i];
  return v;
}

double Double(unsigned char const * p)
{
  std::uint64_t const bits = BigEndian(p, 8);
  double v;
  std::memcpy(&v, &bits, 8);
  return v;
}

float Float(unsigned char const * p)
{
  std::uint32_t const bits = static_cast<std::uint32_t>(BigEndian(p, 4));
  float v;
  std::memcpy(&v, &bits, 4);
  return v;
}

int Fail(char const * why)
{
  std::fprintf(stderr, "gen_egm96: %s\n", why);
  return 1;
}

} // namespace

int main(int argc, char ** argv)
{
  std::string gtx, out;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (!std::strcmp(argv[i], "--gtx"))
      gtx = argv[i + 1];
    else if (!std::strcmp(argv[i], "--out"))
      out = argv[i + 1];
  }
  if (gtx.empty() || out.empty())
    return Fail("usage: gen_egm96 --gtx FILE --out FILE");
  std::FILE * in = std::fopen(gtx.c_str(), "rb");
  if (!in)
    return Fail("cannot open the GTX file");
  std::vector<unsigned char> bytes(40 + std::size_t(kRows) * kColumns * 4);
  bool const read = std::fread(bytes.data(), 1, bytes.size(), in) == bytes.size();
  std::fclose(in);
  if (!read)
    return Fail("the GTX file is shorter than a 721 by 1440 grid");
  double const south = Double(&bytes[0]), west = Double(&bytes[8]);
  double const dlat = Double(&bytes[16]), dlon = Double(&bytes[24]);
  long const rows = static_cast<std::int32_t>(BigEndian(&bytes[32], 4));
  long const columns = static_cast<std::int32_t>(BigEndian(&bytes[36], 4));
  if (south != -90.0 || west != -180.0 || dlat != kSpacing || dlon != kSpacing || rows != kRows || columns != kColumns)
    return Fail("not the 15-minute EGM96 grid from 90 S and 180 W");

  std::vector<unsigned char> raster(std::size_t(kRows) * kColumns * 2);
  for (int r = 0; r < kRows; ++r) {     // ours from the north
    for (int c = 0; c < kColumns; ++c) { // ours from 0 E
      int const gtxRow = kRows - 1 - r, gtxColumn = (c + kColumns / 2) % kColumns;
      float const metres = Float(&bytes[40 + (std::size_t(gtxRow) * kColumns + gtxColumn) * 4]);
      long const cm = std::lround(metres * 100.0);
      if (cm < INT16_MIN || cm > INT16_MAX)
        return Fail("a height beyond 16 bits of centimetres");
      std::uint16_t const bits = static_cast<std::uint16_t>(static_cast<std::int16_t>(cm));
      std::size_t const at = (std::size_t(r) * kColumns + c) * 2;
      raster[at] = static_cast<unsigned char>(bits >> 8);
      raster[at + 1] = static_cast<unsigned char>(bits & 0xff);
    }
  }
  std::FILE * file = std::fopen(out.c_str(), "wb");
  if (!file || std::fwrite(raster.data(), 1, raster.size(), file) != raster.size() || std::fclose(file) != 0)
    return Fail("cannot write the raster");
  return 0;
}
