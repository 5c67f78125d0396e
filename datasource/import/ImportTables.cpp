#include <velmora/datasource/import/ImportTables_p.h>

#include <velmora/projections/Projection.h>

#include <cmath>
#include <cstring>
#include <iterator>
#include <string>

namespace Velmora::DB::ImportTables {

namespace {

using P = CS::PJ::CProjection;

// Datum names as ESRI, MapInfo and older WKT writers spell them, lowercased;
// rows repeat where one datum had several regional shifts. The shift values
// of the first rows are DMA TR 8350.2's mean solutions (Adindan's mean for
// Ethiopia and Sudan is in no EPSG transformation; Afgooye's and Arc 1950's
// are EPSG's "to WGS 84 (1)"); the other rows carry their name and code
// only, so that only a name finds them.
DatumRow const kDatums[] = {
  {"wgs_1984", "6326", 28, {0, 0, 0, 0, 0, 0, 0}, true},
  {"mif 0", "6326"},
  {"north_american_datum_1983", "6269"},
  {"hartebeesthoek94", "6148"},
  {"ats77", "6122"},
  {"jgd2000", "6612"},
  {"new_zealand_geodetic_datum_2000", "6167"},
  {"adindan", "6201", 6, {-162, -12, 206, 0, 0, 0, 0}, true},
  {"afgooye", "6205", 3, {-43, -163, 45, 0, 0, 0, 0}, true},
  {"ain_el_abd_1970", "6204"},
  {"arc_1950", "6209", 15, {-143, -90, -294, 0, 0, 0, 0}, true},
  {"arc_1960", "6210"},
  {"australian_geodetic_datum_1966", "6202"},
  {"australian_geodetic_datum_1984", "6203"},
  {"bermuda_1957", "6216"},
  {"bogota", "6218"},
  {"campo_inchanspe", "6221"},
  {"cape", "6222"},
  {"carthage", "6223"},
  {"chatham_islands_datum_1971", "6672"},
  {"chua", "6224"},
  {"corrego_alegre", "6225"},
  {"batavia", "6211"},
  {"european_datum_1950", "6230"},
  {"european_datum_1979", "6668"},
  {"gandajika_1970", "6233"},
  {"new_zealand_geodetic_datum_1949", "6272"},
  {"guam_1963", "6675"},
  {"hito_xviii_1963", "6254"},
  {"hjorsey_1955", "6658"},
  {"hu_tzu_shan", "6236"},
  {"geodetic_datum_of_1965", "6300"},
  {"kandawala", "6244"},
  {"k0_1949", "6631"},
  {"kertau", "6245"},
  {"liberia_1964", "6251"},
  {"luzon_philippines 1911", "6253"},
  {"luzon_mindanao 1911", "6253"},
  {"mahe_1971", "6256"},
  {"selvagem_grande", "6616"},
  {"massawa", "6262"},
  {"merchich", "6261"},
  {"minna", "6263"},
  {"nahrwan_1967", "6270"},
  {"nahrwan_1967", "6270"},
  {"naparima_1972", "6271"},
  {"north_american_datum_1927", "6267"},
  {"north_american_datum_1927", "6267"},
  {"north_american_datum_1927", "6267"},
  {"north_american_datum_1927", "6267"},
  {"north_american_datum_1927", "6267"},
  {"north_american_datum_1927", "6267"},
  {"north_american_datum_1927", "6267"},
  {"north_american_datum_1927", "6267"},
  {"north_american_datum_1927", "6267"},
  {"north_american_datum_1927", "6267"},
  {"nad_michigan", "6267"},
  {"azores_occidental_islands_1939", "6182"},
  {"egypt_1907", "6229"},
  {"old_hawaiian", "6135"},
  {"fahud", "6232"},
  {"osgb_1936", "6277"},
  {"psad56", "6248"},
  {"provisional_south_american_datum_1956", "6139"},
  {"qatar_1974", "6285"},
  {"qornoq", "6194"},
  {"reunion_1947", "6626"},
  {"monte_nario", "6265"},
  {"azores_oriental 1940", "6184"},
  {"sapper_hill_1943", "6292"},
  {"schwarzeck", "6293"},
  {"south_american_datum_1969", "6618"},
  {"porto_santo", "6615"},
  {"azores_central 1948", "6183"},
  {"timbalai_1948", "6298"},
  {"tokyo", "6301"},
  {"wgs_1972", "6322"},
  {"yacare", "6309"},
  {"zanderij", "6311"},
  {"nouvelle_triangulation_francaise", "6275"},
  {"european_datum_1987", "6231"},
  {"amersfoort", "6289"},
  {"rikets_koordinatsystem_1990", "6124"},
  {"datum_73", "6274"},
  {"euref89", "6133"},
  {"american_samoa 1962", "6169"},
  {"antigua_1943", "6601"},
  {"bukit_rimpah", "6219"},
  {"dabola_1981", "6155"},
  {"azores_central 1948", "6183"},
  {"herat_north", "6255"},
  {"mgi", "6312"},
  {"kalianpur_1962", "6145"},
  {"indian_1954", "6239"},
  {"indian_1960", "6131"},
  {"indian_1975", "6240"},
  {"indonesian_datum_1974", "6238"},
  {"leigon", "6250"},
  {"montserrat_1958", "6604"},
  {"m'poraloko", "6266"},
  {"nord_sahara_1959", "6307"},
  {"azores_occidental_1939", "6182"},
  {"point_58", "6620"},
  {"pointe_noire", "6282"},
  {"porto_santo", "6615"},
  {"selvagen_grande", "6616"},
  {"sierra_leone_1968", "6175"},
  {"s_jtsk_ferro", "6818"},
  {"tananarive_1925", "6297"},
  {"voirol_1875", "6304"},
  {"nord_sahara 1959", "6307"},
  {"dhdn", "6314"},
  {"pulkovo_1942", "6284"},
  {"nouvelle_triangulation_francaise", "6275"},
  {"nouvelle_triangulation_francaise_Paris", "6807"},
  {"hungarian_datum_1972", "6237"},
  {"cape", "6222"},
  {"agd84", "6203"},
  {"agd66", "6202"},
  {"agd66", "6202"},
  {"agd66", "6202"},
  {"new_zealand_geodetic_datum_1949", "6272"},
  {"rikets_koordinatsystem_1990", "6124"},
  {"kkj", "6123"},
};
static_assert(std::size(kDatums) == 124, "one row per datum name of the table");

// Rows before this one are names only: the shift search starts here.
constexpr int kFirstShiftRow = 7;
constexpr double kShiftTolerance = 1e-7;

// Names no row matched, by tokens, in this order; each entry holds its
// alternatives ("a|b") that must all be present: either of the first pair
// and the second token.
struct TokenRule
{
  char const * any[2];
  char const * with;
  char const * other[2];
  char const * otherWith;
  char const * code;
};
TokenRule const kTokens[] = {
  {{"wgs", nullptr}, "84", {"world", nullptr}, "84", "6326"},
  {{"harn", "hpgn"}, nullptr, {nullptr, nullptr}, nullptr, "6152"},
  {{"nad", "north"}, "83", {nullptr, nullptr}, nullptr, "6269"},
  {{"nad", "north"}, "27", {nullptr, nullptr}, nullptr, "6267"},
  {{"wgs", "world"}, "72", {nullptr, nullptr}, nullptr, "6322"},
  {{"terrestrial", nullptr}, "77", {nullptr, nullptr}, nullptr, "6122"},
  {{"japanese", nullptr}, "2000", {nullptr, nullptr}, nullptr, "6612"},
  {{"nzgd", nullptr}, "49", {nullptr, nullptr}, nullptr, "6272"},
  {{"nzgd", nullptr}, "00", {nullptr, nullptr}, nullptr, "6167"},
  {{"grs", nullptr}, "80", {"euref", nullptr}, "80", "6019"},
  {{"ed", nullptr}, "50", {nullptr, nullptr}, nullptr, "6230"},
  {{"ed", nullptr}, "79", {nullptr, nullptr}, nullptr, "6668"},
  {{"ed", nullptr}, "87", {nullptr, nullptr}, nullptr, "6231"},
  {{"euref", nullptr}, "89", {nullptr, nullptr}, nullptr, "6133"},
};

bool Has(std::string const & text, char const * token) { return token && text.find(token) != std::string::npos; }

bool Holds(std::string const & text, char const * const any[2], char const * with)
{
  return (Has(text, any[0]) || Has(text, any[1])) && (!with || Has(text, with));
}

// Parameters under their WKT names. Projections defined at a centre take the
// second spelling of the origin where WKT has one.
struct ParameterName
{
  char const * parameter;
  char const * wkt;
  char const * centreWkt;
};
ParameterName const kParameters[] = {
  {"false_easting", "false_easting", nullptr},
  {"false_northing", "false_northing", nullptr},
  {"scale_factor", "scale_factor", nullptr},
  {"central_meridian", "central_meridian", "longitude_of_center"},
  {"latitude_of_origin", "latitude_of_origin", "latitude_of_center"},
  {"standard_parallel1", "standard_parallel_1", nullptr},
  {"standard_parallel2", "standard_parallel_2", nullptr},
  {"azimuth", "azimuth", nullptr},
  {"rotation_angle", "rectified_grid_angle", nullptr},
  {"xy_plane_rotation", "XY_Plane_Rotation", nullptr},
  {"standard_longitude1", "Longitude_Of_1st_Point", nullptr},
  {"standard_longitude2", "Longitude_Of_2nd_Point", nullptr},
  {"standard_latitude1", "Latitude_Of_1st_Point", nullptr},
  {"standard_latitude2", "Latitude_Of_2nd_Point", nullptr},
  {"tilt", "tilt", nullptr},
  {"height", "height", nullptr},
  {"latitude_of_true_scale", "pseudo_standard_parallel_1", nullptr},
};

// Names read besides those written.
struct ReadName
{
  char const * wkt;
  char const * parameter;
};
ReadName const kReadNames[] = {
  {"central_parallel", "latitude_of_origin"},
  {"Pseudo_Standard_Parallel_1", "latitude_of_true_scale"},
  {"longitude_of_origin", "central_meridian"},
  {"latitude_of_point_1", "standard_latitude1"},
  {"longitude_of_point_1", "standard_longitude1"},
  {"latitude_of_point_2", "standard_latitude2"},
  {"longitude_of_point_2", "standard_longitude2"},
};

// The alias table. The first name is the one written; "Lambert_Conformal_Conic_2SP_Belgium)"
// keeps its closing parenthesis, as files written with it carry it. Types
// without a WKT counterpart go by the names of their own classes.
AliasRow const kAliases[] = {
  {P::kAitoff, {"Aitoff"}},
  {P::kAlaska27, {"Alaska27"}},
  {P::kAlbersEqualArea, {"Albers_Conic_Equal_Area", "Albers", "Albers_Equal_Area"}},
  {P::kAzimuthalEqualArea, {"Lambert_Azimuthal_Equal_Area"}},
  {P::kAzimuthalEquidistant, {"Azimuthal_Equidistant"}},
  {P::kBehrmann, {"Behrmann"}},
  {P::kBelgium72, {"Lambert_Conformal_Conic_2SP_Belgium)", "Lambert_Conformal_Conic_2SP_Belgium"}},
  {P::kBipolarObliqueConformalConic,
   {"BipolarObliqueConicConformal", "BipolarObliqueConformalConic", "Bipolar Oblique Conformal Conic",
    "Bipolar Oblique Conic Conformal", "Bipolar_Oblique_Conformal_Conic", "Bipolar_Oblique_Conic_Conformal"}},
  {P::kBonne, {"Bonne"}},
  {P::kCassini, {"Cassini_Soldner", "Cassini"}},
  {P::kCrasterParabolic, {"CrasterParabolic", "Craster Parabolic", "Craster_Parabolic"}},
  {P::kDanishSystem34, {"DanishSystem34"}},
  {P::kDanishSystem34_99, {"DanishSystem34_99"}},
  {P::kDoubleStereographic,
   {"DoubleStereographic", "Double Stereographic", "Double_Stereographic", "Oblique_Stereographic"}},
  {P::kEckertI, {"Eckert_I", "EckertI", "Eckert I"}},
  {P::kEckertII, {"Eckert_II", "EckertII", "Eckert II"}},
  {P::kEckertIII, {"Eckert_III", "EckertIII", "Eckert III"}},
  {P::kEckertIV, {"Eckert_IV", "EckertIV", "Eckert IV"}},
  {P::kEckertV, {"Eckert_V", "EckertV", "Eckert V"}},
  {P::kEckertVI, {"Eckert_VI", "EckertVI", "Eckert VI"}},
  {P::kEgysegesOrszagosVetulet, {"EgysegesOrszagosVetulet"}},
  {P::kEqualAreaCylindrical, {"Cylindrical_Equal_Area"}},
  {P::kEquidistantConic, {"Equidistant_Conic"}},
  {P::kEquidistantCylindrical, {"Equidistant_Cylindrical", "Equirectangular"}},
  {P::kEuropeanStereographic, {"EuropeanStereographic", "European Stereographic", "European_Stereographic"}},
  {P::kFuller, {"Fuller"}},
  {P::kGallStereographic, {"GallStereographic", "Gall Stereographic", "Gall_Stereographic"}},
  {P::kGnomic, {"Gnomonic"}},
  {P::kGoodeHomolosine, {"GoodeHomolosine", "Goode Homolosine", "Goode_Homolosine"}},
  {P::kGuam27, {"Guam27"}},
  {P::kHammerAitoff, {"HammerAitoff", "Hammer Aitoff", "Hammer_Aitoff"}},
  {P::kHotineObliqueMercator, {"Hotine_Oblique_Mercator", "Oblique_Mercator", "Oblique Mercator", "ObliqueMercator"}},
  {P::kHotineObliqueMercator_1, {"Hotine_Oblique_Mercator_One_Point"}},
  {P::kHotineObliqueMercator_2, {"Hotine_Oblique_Mercator_One_Point_Method_2"}},
  {P::kIMWPolyconic, {"IMWPolyconic"}},
  {P::kKrovak, {"Krovak"}},
  {P::kLaborde, {"Laborde_Oblique_Mercator"}},
  {P::kLambert27, {"Lambert27"}},
  {P::kLambertConformalConic, {"Lambert_Conformal_Conic_2SP", "Lambert_Conformal_Conic"}},
  {P::kLambertConformalConicExtended, {"Lambert_Conformal_Conic_Extended"}},
  {P::kLambertTangent, {"Lambert_Conformal_Conic_1SP"}},
  {P::kLoximuthal, {"Loximuthal"}},
  {P::kMcBrydeThomasFlatPolarQuartic,
   {"McBrydeThomasFlatPolarQuartic", "McBryde_Thomas_Flat_Polar_Quartic", "Flat_Polar_Quartic"}},
  {P::kMercator, {"Mercator_1SP", "Mercator", "Mercator_2SP"}},
  {P::kMilitaryGridReferenceSystem, {"MilitaryGridReferenceSystem", "Military_Grid_Reference_System"}},
  {P::kMillerCylindrical, {"Miller_Cylindrical"}},
  {P::kMollweide, {"Mollweide"}},
  {P::kNewZealandMapGrid, {"New_Zealand_Map_Grid", "New Zealand Map Grid", "NewZealandMapGrid"}},
  {P::kOrthographic, {"Orthographic"}},
  {P::kPerspectiveConic, {"Perspective_Conic"}},
  {P::kPolarAzimuthalEqualArea, {"Polar_Azimuthal_Equal_Area"}},
  {P::kPolarEquidistant, {"Polar_Equidistant"}},
  {P::kPolarStereographic, {"Polar_Stereographic"}},
  {P::kPolyconic, {"Polyconic"}},
  {P::kQuarticAuthalic, {"Quartic_Authalic"}},
  {P::kRobinson, {"Robinson"}},
  {P::kSinusoidal, {"Sinusoidal"}},
  {P::kSpaceObliqueMercator, {"Space_Oblique_Mercator"}},
  {P::kStereographic, {"Stereographic"}},
  {P::kStereographic70, {"Stereographic_70", "Stereo70"}},
  {P::kSwissObliqueMercator, {"Swiss_Oblique_Cylindrical", "Swiss_Oblique_Mercator"}},
  {P::kTiltedPerspective, {"Tilted_Perspective"}},
  {P::kTimes, {"Times"}},
  {P::kTransverseMercator, {"Transverse_Mercator", "Gauss_Kruger", "Gauss_Krueger"}},
  {P::kMercator27, {"Mercator27"}},
  {P::kTransverseMercatorExtended, {"Transverse_Mercator_Extended"}},
  {P::kTransverseMercatorSnyder, {"Transverse_Mercator_Snyder"}},
  {P::kTransverseMercatorSouthOriented, {"Transverse_Mercator_South_Orientated", "Transverse_Mercator_South_Oriented"}},
  {P::kTwoPointFit, {"TwoPointFit"}},
  {P::kUniversalTransverseMercator, {"UniversalTransverseMercator", "UTM"}},
  {P::kVanDerGrinten, {"VanDerGrinten", "Van_der_Grinten_I"}},
  {P::kVanDerGrintenIV, {"VanDerGrintenIV", "Van_der_Grinten_IV"}},
  {P::kVandH, {"VandH"}},
  {P::kVerticalPerspective, {"Vertical_Near_Side_Perspective", "Vertical_Perspective"}},
  {P::kWinkelI, {"Winkel_I"}},
  {P::kWinkelII, {"Winkel_II"}},
  {P::kWinkelTripel, {"Winkel_Tripel"}},
};
// Two types are spelt by the oblique family's suffix pattern instead.
static_assert(std::size(kAliases) == P::kTypeCount - 2, "a row for every type outside the oblique family");

} // namespace

DatumRow const * DatumRows(int & count)
{
  count = static_cast<int>(std::size(kDatums));
  return kDatums;
}

CString DatumCodeFromName(CString const & name)
{
  std::string const lower = name.toLower().toStdString();
  for (DatumRow const & row : kDatums)
    if (lower.find(row.fragment) != std::string::npos)
      return CString(row.code);
  for (TokenRule const & rule : kTokens)
    if (Holds(lower, rule.any, rule.with) || (rule.other[0] && Holds(lower, rule.other, rule.otherWith)))
      return CString(rule.code);
  return CString();
}

CString DatumCodeFromShift(double const values[7])
{
  for (std::size_t i = kFirstShiftRow; i < std::size(kDatums); ++i) {
    DatumRow const & row = kDatums[i];
    if (!row.hasShift)
      continue;
    bool same = true;
    for (int k = 0; k < 7 && same; ++k)
      same = std::fabs(row.shift[k] - values[k]) <= kShiftTolerance;
    if (same)
      return CString(row.code);
  }
  return CString();
}

char const * WktParameterName(char const * parameter, bool centre)
{
  for (ParameterName const & p : kParameters)
    if (!std::strcmp(p.parameter, parameter))
      return centre && p.centreWkt ? p.centreWkt : p.wkt;
  return parameter;
}

char const * ParameterOfWktName(CString const & wktName)
{
  for (ParameterName const & p : kParameters)
    if (wktName.compare(QLatin1String(p.wkt), Qt::CaseInsensitive) == 0 ||
        (p.centreWkt && wktName.compare(QLatin1String(p.centreWkt), Qt::CaseInsensitive) == 0))
      return p.parameter;
  for (ReadName const & r : kReadNames)
    if (wktName.compare(QLatin1String(r.wkt), Qt::CaseInsensitive) == 0)
      return r.parameter;
  return nullptr;
}

AliasRow const * AliasRows(int & count)
{
  count = static_cast<int>(std::size(kAliases));
  return kAliases;
}

bool UsesCentreNames(int type)
{
  switch (type) {
  case P::kAlbersEqualArea:
  case P::kAzimuthalEqualArea:
  case P::kEquidistantConic:
  case P::kKrovak:
  case P::kLaborde:
  case P::kHotineObliqueMercator_1:
  case P::kHotineObliqueMercator_2:
  case P::kObliqueMercatorAzimuth:
    return true;
  default:
    return false;
  }
}

} // namespace Velmora::DB::ImportTables
