#include <velmora/transforms/datumshifts/NationalShifts.h>

#include <velmora/foundation/VelmoraException.h>
#include <velmora/projections/TransverseMercator.h>
#include <velmora/transforms/datumshifts/GridFile_p.h>

#include <QFile>

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace Velmora::CT::DS {

using EX::CVelmoraException;
using detail::RequireParameters;
using detail::ThroughPoint;

namespace {

char const kNoData[] = "There is no grid shift data for the area around the point.";
char const kBackward[] = "Failed to resolve the backward result in a reasonable number of tries.";

// The text files are read a line at a time, 256 characters at most.
constexpr int kLineLength = 256;

// The British and the Japanese grids name a folder and a file in it.
CString FolderAndFile(CParameterCollection const & parameters)
{
  return parameters.GetString(CString("path")) + CString("/") + parameters.GetString(CString("file"));
}

// A text file by its name, else by the data path put before it; null when neither opens.
std::FILE * OpenText(CString const & name, std::string const & dataPath)
{
  std::string const given = QFile::encodeName(name).toStdString();
  for (std::string const & path : {given, dataPath + given}) {
    if (std::FILE * probe = detail::OpenGridFile(path)) { // not a folder
      std::fclose(probe);
      return std::fopen(path.c_str(), "r");
    }
  }
  return nullptr;
}

struct FileCloser
{
  void operator()(std::FILE * file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// Whether a line's first word is `keyword`.
bool StartsWithWord(char const * line, char const * keyword)
{
  while (std::isspace(static_cast<unsigned char>(*line)))
    ++line;
  std::size_t const n = std::strlen(keyword);
  return std::strncmp(line, keyword, n) == 0 &&
         (line[n] == '\0' || std::isspace(static_cast<unsigned char>(line[n])));
}

// Iterates `forward` from the target until it lands on the target within
// `tolerance` in every coordinate, at most `rounds` times; code 9 at
// `location` otherwise. `x` holds the target on entry, the result on return.
template <std::size_t N, class Forward>
void IterateBack(double (&x)[N], Forward && forward, double tolerance, int rounds, char const * location)
{
  double target[N], estimate[N];
  for (std::size_t i = 0; i < N; ++i)
    target[i] = estimate[i] = x[i];
  for (int round = 0; round < rounds; ++round) {
    double image[N];
    for (std::size_t i = 0; i < N; ++i)
      image[i] = estimate[i];
    forward(image);
    bool settled = true;
    for (std::size_t i = 0; i < N; ++i) {
      double const difference = target[i] - image[i];
      estimate[i] += difference;
      settled = settled && std::fabs(difference) <= tolerance;
    }
    if (settled) {
      for (std::size_t i = 0; i < N; ++i)
        x[i] = estimate[i];
      return;
    }
  }
  throw CVelmoraException(CVelmoraException::kMathError, location, kBackward);
}

constexpr double kBackTolerance = 1e-09; // degrees (and metres of height)
constexpr int kBackRounds = 10;

} // namespace

// OSTN02

namespace {
constexpr double kMetresPerKilometre = 1000.0;
constexpr double kOstnTolerance = 0.0001; // metres
constexpr int kOstnRounds = 21;
char const kInvalidOstn[] = "Invalid grid shift file specified.";
} // namespace

COSTN02::COSTN02() : m_dataPath(detail::CurrentDataPath()) {}

void COSTN02::OnChange(unsigned short const *) { CloseGridFile(); }

void COSTN02::InitializeGridFile() const
{
  if (IsGridReady())
    return;
  // The table's side is the terrestrial frame, the destination datum.
  try {
    COSGriddedData::InitializeGridFile(FolderAndFile(GetParameters()), GetDestDatum(), GetSrcDatum());
  } catch (CVelmoraException const & e) {
    throw CVelmoraException(e.GetErrorCode(), "COSTN02::InitializeGridFile", kInvalidOstn);
  }
}

void COSTN02::ComputeShiftValues(double x, double y, double & dEast, double & dNorth) const
{
  char const * const location = "COSTN02::ComputeShiftValues";
  long low = 0, high = 0;
  GetRecordNumbersAt(x, y, low, high, location);
  Record const sw = LookUpGridShift(low, location), se = LookUpGridShift(low + 1, location),
               ne = LookUpGridShift(high, location), nw = LookUpGridShift(high - 1, location);
  double const t = x / kMetresPerKilometre - std::floor(x / kMetresPerKilometre);
  double const u = y / kMetresPerKilometre - std::floor(y / kMetresPerKilometre);
  dEast = (1 - t) * (1 - u) * sw.east + t * (1 - u) * se.east + (1 - t) * u * nw.east + t * u * ne.east;
  dNorth = (1 - t) * (1 - u) * sw.north + t * (1 - u) * se.north + (1 - t) * u * nw.north + t * u * ne.north;
}

void COSTN02::Forward(double & lon, double & lat) const
{
  RequireParameters(GetParameters(), "COSTN02::ShiftDestToSrc");
  InitializeGridFile();
  double x = lon, y = lat;
  if (!GetProjection()->ToPlane(x, y))
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, "COSTN02::ShiftDestToSrc", kNoData);
  double dEast = 0.0, dNorth = 0.0;
  ComputeShiftValues(x, y, dEast, dNorth);
  x += dEast;
  y += dNorth;
  if (GetOutProjection()->FromPlane(x, y))
    lon = x, lat = y;
}

void COSTN02::Inverse(double & lon, double & lat) const
{
  char const * const location = "COSTN02::ShiftSrcToDest";
  RequireParameters(GetParameters(), location);
  InitializeGridFile();
  double e0 = lon, n0 = lat;
  if (!GetOutProjection()->ToPlane(e0, n0))
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, location, kNoData);
  double east = e0, north = n0, lastEast = 0.0, lastNorth = 0.0;
  for (int round = 0; round < kOstnRounds; ++round) {
    double dEast = 0.0, dNorth = 0.0;
    ComputeShiftValues(east, north, dEast, dNorth);
    east = e0 - dEast;
    north = n0 - dNorth;
    if (std::fabs(dEast - lastEast) <= kOstnTolerance && std::fabs(dNorth - lastNorth) <= kOstnTolerance) {
      if (GetProjection()->FromPlane(east, north))
        lon = east, lat = north;
      return;
    }
    lastEast = dEast;
    lastNorth = dNorth;
  }
  throw CVelmoraException(CVelmoraException::kMathError, location, "Cannot converge inverse grid shift lookup.");
}

bool COSTN02::ShiftDestToSrc(double & lon, double & lat) const
{
  Forward(lon, lat);
  return true;
}

bool COSTN02::ShiftSrcToDest(double & lon, double & lat) const
{
  Inverse(lon, lat);
  return true;
}

bool COSTN02::ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out, [this](double & lon, double & lat, double &) { Forward(lon, lat); });
}

bool COSTN02::ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out, [this](double & lon, double & lat, double &) { Inverse(lon, lat); });
}

// NTF to RGF93. Every form arrives here through Molodensky's Shift.

namespace {
// More nodes than this is no grid of a country: a header that asks for them is damaged.
constexpr double kMostNodes = 5e7;
char const kGr3dHeader[] = "The GR3D1 grid line has an unexpected format";
char const kGr3dLine[] = "Failed to get coordinates from grid file.";
} // namespace

CNTFToRGF93::CNTFToRGF93() : m_dataPath(detail::CurrentDataPath()) {}

void CNTFToRGF93::Setup() const
{
  if (m_grid)
    return;
  char const * const location = "CNTFToRGF93::Setup";
  File const file(OpenText(GetParameters().GetString(CString("file")), m_dataPath));
  if (!file)
    throw CVelmoraException(CVelmoraException::kFileNotFound, location, "Couldn't open grid shift file");
  auto const fail = [location](char const * details) {
    throw CVelmoraException(CVelmoraException::kGridRead, location, details);
  };

  auto grid = std::make_shared<Grid>();
  char line[kLineLength];
  bool header = false;
  while (!header && std::fgets(line, kLineLength, file.get())) {
    if (!StartsWithWord(line, "GR3D1"))
      continue;
    Grid & g = *grid;
    if (std::sscanf(line, " GR3D1 %lf %lf %lf %lf %lf %lf", &g.west, &g.east, &g.south, &g.north, &g.dLon,
                    &g.dLat) != 6)
      fail(kGr3dHeader);
    double const columns = std::floor((g.east - g.west) / g.dLon + 0.5);
    double const rows = std::floor((g.north - g.south) / g.dLat + 0.5);
    // Finite, ordered, and a node count that a file could hold.
    if (!(g.dLon > 0 && g.dLat > 0 && columns >= 1 && rows >= 1 && (columns + 1) * (rows + 1) <= kMostNodes))
      fail(kGr3dHeader);
    g.columns = static_cast<long>(columns);
    g.rows = static_cast<long>(rows);
    header = true;
  }
  if (!header)
    fail(kGr3dHeader);

  std::size_t const nodes = static_cast<std::size_t>((grid->columns + 1) * (grid->rows + 1));
  while (std::fgets(line, kLineLength, file.get())) {
    // The format's further header lines (GR3D2, GR3D3) name the interpolation and the precision codes.
    if (StartsWithWord(line, "GR3D2") || StartsWithWord(line, "GR3D3"))
      continue;
    if (grid->values.size() / 3 >= nodes)
      fail("Grid file contains more lines than expected based on its header.");
    double t[3];
    if (std::sscanf(line, " %*i %*f %*f %lf %lf %lf", &t[0], &t[1], &t[2]) != 3)
      fail(kGr3dLine);
    grid->values.insert(grid->values.end(), t, t + 3);
  }
  if (grid->values.size() / 3 < nodes) // a file cut short
    fail(kGr3dLine);
  m_grid = std::move(grid);
}

void CNTFToRGF93::PrepareParams(double lon, double lat, double t[3]) const
{
  Grid const & g = *m_grid;
  double const x = (lon - g.west) / g.dLon, y = (lat - g.south) / g.dLat;
  if (!(x >= 0 && x <= g.columns && y >= 0 && y <= g.rows))
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, "CNTFToRGF93::PrepareParams", kNoData);
  // The east and north edges belong to the last cell.
  long const column = std::min(static_cast<long>(x), g.columns - 1);
  long const row = std::min(static_cast<long>(y), g.rows - 1);
  double const u = x - column, v = y - row;
  // GetGridData: the nodes run by latitude within each column of longitude.
  auto const node = [&](long c, long r) { return &g.values[3 * static_cast<std::size_t>(c * (g.rows + 1) + r)]; };
  double const *sw = node(column, row), *se = node(column + 1, row), *nw = node(column, row + 1),
               *ne = node(column + 1, row + 1);
  // Surf: bilinear on the two fractions.
  for (int i = 0; i < 3; ++i)
    t[i] = (1 - u) * (1 - v) * sw[i] + u * (1 - v) * se[i] + (1 - u) * v * nw[i] + u * v * ne[i];
}

void CNTFToRGF93::Shift(double & lon, double & lat, double * height, bool forward) const
{
  Setup();
  if (!forward) {
    ShiftBack(lon, lat, height);
    return;
  }
  // The file's translations are from the source datum to the destination, as Molodensky's are.
  double t[3];
  PrepareParams(lon, lat, t);
  Formula(lon, lat, height, true, t[0], t[1], t[2]);
}

void CNTFToRGF93::ShiftBack(double & lon, double & lat, double * height) const
{
  // Without a height the third coordinate stays 0 and never differs.
  double x[3] = {lon, lat, height ? *height : 0.0};
  IterateBack(x, [this, height](double * y) {
    double t[3];
    PrepareParams(y[0], y[1], t);
    Formula(y[0], y[1], height ? &y[2] : nullptr, true, t[0], t[1], t[2]);
  }, kBackTolerance, kBackRounds, "CNTFToRGF93::ShiftBack");
  lon = x[0], lat = x[1];
  if (height)
    *height = x[2];
}

// Tokyo to JGD2000

namespace {

// The third-order mesh: a first-order cell is 40' of latitude by 1 degree of
// longitude, cut into 8 by 8 second-order cells, each cut into 10 by 10.
constexpr double kLatCellsPerDegree = 120.0; // third-order cells, 30"
constexpr double kLonCellsPerDegree = 80.0;  // third-order cells, 45"
constexpr double kFirstLongitude = 100.0;
constexpr double kSecondsPerDegree = 3600.0;

struct MeshPieces
{
  long first, second, third;
};

// Carries a third piece of 10 and a second piece of 8 upwards; code 43 for
// pieces outside the mesh.
void AdjustMeshPieces(MeshPieces & p)
{
  if (p.third == 10)
    p.third = 0, ++p.second;
  if (p.second == 8)
    p.second = 0, ++p.first;
  if (p.first < 0 || p.first > 99 || p.second < 0 || p.second > 7 || p.third < 0 || p.third > 9)
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, "CTokyoToJGD2000::AdjustMeshPieces", kNoData);
}

// The pieces of a position counted in third-order cells, and its fraction within the cell.
MeshPieces Pieces(double cells, double & fraction)
{
  if (!(cells >= 0 && cells < 100 * 80)) // beyond two digits of the first piece
    throw CVelmoraException(CVelmoraException::kInputOutOfBounds, "CTokyoToJGD2000::AdjustMeshPieces", kNoData);
  long const whole = static_cast<long>(cells);
  fraction = cells - whole;
  MeshPieces p{whole / 80, whole % 80 / 10, whole % 10};
  AdjustMeshPieces(p);
  return p;
}

MeshPieces Next(MeshPieces p)
{
  ++p.third;
  AdjustMeshPieces(p);
  return p;
}

// The printed code: latitude pieces d, e, f, longitude pieces a, b, c, as d a e b f c.
long GetMeshCode(MeshPieces const & lon, MeshPieces const & lat)
{
  return ((((lat.first * 100 + lon.first) * 10 + lat.second) * 10 + lon.second) * 10 + lat.third) * 10 + lon.third;
}

} // namespace

CTokyoToJGD2000::CTokyoToJGD2000() : m_dataPath(detail::CurrentDataPath()) {}

void CTokyoToJGD2000::Setup() const
{
  if (m_mesh)
    return;
  char const * const location = "CTokyoToJGD2000::Setup";
  File const file(OpenText(FolderAndFile(GetParameters()), m_dataPath));
  if (!file)
    throw CVelmoraException(CVelmoraException::kFileNotFound, location, "Couldn't open grid shift file");
  // Once to count the valid lines, once to keep them; other lines (the
  // titles) are passed over.
  auto mesh = std::make_shared<Mesh>();
  long counted = 0, kept = 0;
  for (int pass = 0; pass < 2; ++pass) {
    std::rewind(file.get());
    char line[kLineLength];
    while (std::fgets(line, kLineLength, file.get())) {
      int code = 0;
      double dLat = 0.0, dLon = 0.0;
      if (std::sscanf(line, " %i %lf %lf", &code, &dLat, &dLon) != 3)
        continue;
      if (pass == 0) {
        ++counted;
      } else {
        ++kept;
        (*mesh)[code] = {dLat, dLon};
      }
    }
  }
  if (counted != kept)
    throw CVelmoraException(CVelmoraException::kGridRead, location,
                            "Valid line count changed between first and second readings.");
  m_mesh = std::move(mesh);
}

void CTokyoToJGD2000::GridShift(double & lat, double & lon) const
{
  // GetMeshCodes: the cell's pieces and the four corners' codes.
  double v = 0.0, u = 0.0;
  MeshPieces const south = Pieces(lat * kLatCellsPerDegree, v);
  MeshPieces const west = Pieces((lon - kFirstLongitude) * kLonCellsPerDegree, u);
  MeshPieces const north = Next(south), east = Next(west);
  std::pair<double, double> corner[4];
  long const codes[4] = {GetMeshCode(west, south), GetMeshCode(east, south), GetMeshCode(west, north),
                         GetMeshCode(east, north)};
  for (int i = 0; i < 4; ++i) {
    auto const found = m_mesh->find(codes[i]);
    if (found == m_mesh->end())
      throw CVelmoraException(CVelmoraException::kInputOutOfBounds, "CTokyoToJGD2000::GridShift", kNoData);
    corner[i] = found->second;
  }
  // a + (b - a) u + (c - a) v + u v (d - b - c + a), a to d the south-west, south-east, north-west, north-east.
  auto const bilinear = [u, v](double a, double b, double c, double d) {
    return a + (b - a) * u + (c - a) * v + u * v * (d - b - c + a);
  };
  lat += bilinear(corner[0].first, corner[1].first, corner[2].first, corner[3].first) / kSecondsPerDegree;
  lon += bilinear(corner[0].second, corner[1].second, corner[2].second, corner[3].second) / kSecondsPerDegree;
}

void CTokyoToJGD2000::IterateMeshBack(double & lat, double & lon) const
{
  double x[2] = {lat, lon};
  IterateBack(x, [this](double * y) { GridShift(y[0], y[1]); }, kBackTolerance, kBackRounds,
              "CTokyoToJGD2000::ShiftBack");
  lat = x[0], lon = x[1];
}

bool CTokyoToJGD2000::ShiftSrcToDest(double & lon, double & lat) const
{
  Setup();
  GridShift(lat, lon);
  return true;
}

bool CTokyoToJGD2000::ShiftDestToSrc(double & lon, double & lat) const
{
  Setup();
  IterateMeshBack(lat, lon);
  return true;
}

bool CTokyoToJGD2000::ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out, [this](double & lon, double & lat, double &) { ShiftSrcToDest(lon, lat); });
}

bool CTokyoToJGD2000::ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out, [this](double & lon, double & lat, double &) { ShiftDestToSrc(lon, lat); });
}

// ED50 to ED87 in the North Sea

namespace {

// "ED50 to ED87 (1)" of the EPSG dataset (Norwegian Mapping Authority
// publication 1990:1), the reversible polynomial of degree 4 whose worked
// example EPSG Guidance Note 7-2 gives: shifts in degrees of
// U = latitude - 55, V = longitude, in the terms
// 1, U, V, U2, UV, V2, U3, U2V, UV2, V3, U4, U3V, U2V2, UV3, V4.
constexpr double kEvaluationLatitude = 55.0;
constexpr double kLatitudeTerms[15] = {-5.56098e-06, -1.55391e-06, -4.0262e-07,  -5.09693e-07, -8.19775e-07,
                                       -2.47592e-07, 1.36682e-07,  1.86198e-07,  1.2335e-07,   5.68797e-08,
                                       -2.32217e-09, -7.69931e-09, -7.86953e-09, -6.12216e-09, -4.01382e-09};
constexpr double kLongitudeTerms[15] = {1.48944e-05, 2.68191e-06,  2.4529e-06,   2.944e-07,   1.5226e-06,
                                        9.10592e-07, -3.68241e-07, -8.51732e-07, -5.66713e-07, -1.85188e-07,
                                        2.84312e-08, 6.84853e-08,  5.00828e-08,  4.15937e-08, 7.62236e-09};

// "ED50 to ED87 (2)" of the EPSG dataset, north of 65 N, held as its
// inverse (ED87 to ED50): translations 1.51, 0.84, 3.5 m, position-vector
// rotations 0.3905", 0.1417", 0.5701" (in radians below, negated as the small
// rotation matrix takes them) and a scale of 1 - 0.609e-6.
constexpr double kNegatedRotations[3] = {-1.8931974247327383e-06, -6.869809861322124e-07, -2.763922796005465e-06};
constexpr double kScale = 0.999999391;
constexpr double kTranslations[3] = {1.51, 0.84, 3.5};

// The polynomial alone up to here, the Bursa-Wolf alone beyond the second.
constexpr double kPolynomialNorth = 62.0;
constexpr double kBursaWolfSouth = 65.0;

double Quartic(double const (&c)[15], double u, double v)
{
  double const u2 = u * u, v2 = v * v;
  return c[0] + c[1] * u + c[2] * v + c[3] * u2 + c[4] * u * v + c[5] * v2 + c[6] * u2 * u + c[7] * u2 * v +
         c[8] * u * v2 + c[9] * v2 * v + c[10] * u2 * u2 + c[11] * u2 * u * v + c[12] * u2 * v2 + c[13] * u * v2 * v +
         c[14] * v2 * v2;
}

} // namespace

CED50ToED87NorthSea::CED50ToED87NorthSea()
{
  m_affine.Reset();
  m_affine.RotateXYZApproximate(kNegatedRotations[0], kNegatedRotations[1], kNegatedRotations[2]);
  m_affine.Scale(kScale, kScale, kScale);
  m_affine.Shift(kTranslations[0], kTranslations[1], kTranslations[2]);
}

void CED50ToED87NorthSea::Shifts(double lon, double lat, double & dLon, double & dLat) const
{
  auto const polynomial = [lon](double at, double & x, double & y) {
    y = Quartic(kLatitudeTerms, at - kEvaluationLatitude, lon);
    x = Quartic(kLongitudeTerms, at - kEvaluationLatitude, lon);
  };
  auto const bursaWolf = [this, lon](double at, double & x, double & y) {
    ML::BPoint3D point(lon, at, 0.0);
    ShiftBack(1, &point);
    x = point.x - lon;
    y = point.y - at;
  };
  if (lat > kBursaWolfSouth) {
    bursaWolf(lat, dLon, dLat);
  } else if (lat <= kPolynomialNorth) {
    polynomial(lat, dLon, dLat);
  } else {
    double const w = (lat - kPolynomialNorth) / (kBursaWolfSouth - kPolynomialNorth);
    double pLon, pLat, bLon, bLat;
    polynomial(kPolynomialNorth, pLon, pLat);
    bursaWolf(kBursaWolfSouth, bLon, bLat);
    dLon = (1 - w) * pLon + w * bLon;
    dLat = (1 - w) * pLat + w * bLat;
  }
}

// Heights pass unchanged: the polynomial has none to give.
bool CED50ToED87NorthSea::ShiftSrcToDest(double & lon, double & lat) const
{
  double dLon, dLat;
  Shifts(lon, lat, dLon, dLat);
  lon += dLon;
  lat += dLat;
  return true;
}

bool CED50ToED87NorthSea::ShiftDestToSrc(double & lon, double & lat) const
{
  double dLon, dLat;
  Shifts(lon, lat, dLon, dLat);
  lon -= dLon;
  lat -= dLat;
  return true;
}

bool CED50ToED87NorthSea::ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out, [this](double & lon, double & lat, double &) { ShiftSrcToDest(lon, lat); });
}

bool CED50ToED87NorthSea::ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out, [this](double & lon, double & lat, double &) { ShiftDestToSrc(lon, lat); });
}

// Multiple regression equations

namespace {

// One term c U^i V^j of a regression polynomial, c in seconds of arc.
struct Term
{
  int i, j;
  double c;
};

// A datum's block: the scale K and the origin (degrees) that normalise the
// coordinates, U = K (lat - latM), V = K (lon - lonM), and the terms of the
// latitude and the longitude shift.
struct Block
{
  long id;
  double k, latM, lonM;
  std::vector<Term> dLat, dLon;
};

// The blocks by datum number. None is carried yet: the published tables have
// not been transcribed, and a block is never made up, so every number raises
// "Unexpected datum_id value".
std::vector<Block> const kMreBlocks = {};

Block const & MRELoad(CParameterCollection const & parameters)
{
  bool number = false;
  long const id = parameters.GetString(CString("datum_id")).trimmed().toLong(&number);
  for (Block const & block : kMreBlocks)
    if (number && block.id == id)
      return block;
  throw CVelmoraException(CVelmoraException::kInvalidParameter, "MRE::MRELoad", "Unexpected datum_id value");
}

double Sum(std::vector<Term> const & terms, double u, double v)
{
  double sum = 0.0;
  for (Term const & t : terms)
    sum += t.c * std::pow(u, t.i) * std::pow(v, t.j);
  return sum;
}

constexpr double kFullCircle = 360.0;

} // namespace

void CMRE::MREDatumTransformation(double lat, double lon, double & dLat, double & dLon, char const * location) const
{
  RequireParameters(GetParameters(), location);
  Block const & b = MRELoad(GetParameters());
  double const u = b.k * (lat - b.latM), v = b.k * (lon - b.lonM);
  dLat = Sum(b.dLat, u, v) / kSecondsPerDegree;
  dLon = Sum(b.dLon, u, v) / kSecondsPerDegree;
}

bool CMRE::ShiftSrcToDest(double & lon, double & lat) const
{
  if (lon > 180.0)
    lon -= kFullCircle;
  else if (lon < -180.0)
    lon += kFullCircle;
  double dLat, dLon;
  MREDatumTransformation(lat, lon, dLat, dLon, "CMRE::ShiftSrcToDest");
  lat += dLat;
  lon += dLon;
  return true;
}

bool CMRE::ShiftDestToSrc(double & lon, double & lat) const
{
  double dLat, dLon;
  MREDatumTransformation(lat, lon, dLat, dLon, "CMRE::ShiftDestToSrc");
  lat -= dLat;
  lon -= dLon;
  return true;
}

bool CMRE::ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out, [this](double & lon, double & lat, double &) { ShiftSrcToDest(lon, lat); });
}

bool CMRE::ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ThroughPoint(in, out, [this](double & lon, double & lat, double &) { ShiftDestToSrc(lon, lat); });
}

} // namespace Velmora::CT::DS
