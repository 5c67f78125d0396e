#include <velmora/vertical/VerticalTables_p.h>

#include <iterator>

namespace Velmora::CS::VR::Table {

namespace {

using Layout = CSimpleGriddedData::Layout;
constexpr auto kSW = CSimpleGriddedData::kSouthWestFirst;
constexpr auto kNW = CSimpleGriddedData::kNorthWestFirst;
constexpr auto kDouble = CSimpleGriddedData::kDoubleCell;
constexpr auto kFloat = CSimpleGriddedData::kFloatCell;

// The rasters as their publishers lay them out. None is loaded whole: a
// conversion reads four cells, and the Japanese grid alone is 17 MB.
constexpr Layout kGEOCOL04 = {-4.983333, -79.983333, 0.03333333333333333, 0.03333333333333333, 600, 420,
                              kSW, kDouble, false, 48, false, false};
constexpr Layout kGSIGEO2000 = {20.0, 120.0, 0.016666666666666666, 0.025, 1801, 1201,
                                kSW, kDouble, false, 48, false, true};
constexpr Layout kIBERGEO95 = {35.5, -10.0, 0.125, 0.125, 73, 121, kSW, kDouble, false, 48, false, false};
constexpr Layout kIGG2005 = {35.0, -10.0, 0.025, 0.025, 360, 560, kSW, kDouble, false, 48, false, false};
constexpr Layout kMGCV04 = {3.0, -74.0, 0.008333333333333333, 0.008333333333333333, 1201, 1561,
                            kNW, kFloat, true, 1364, false, false};

// Grids read by the header readers: one or several files in a directory
// or list, or one file.
constexpr char const * kNGSOpen = "CNGSGriddedData::InitializeGridFile";

Row const kHeightModels[] = {
  {"US Geoid Model of 1996", "CGEOID96", {kPath, kExtension}, kNGSOpen, kCannotOpenFileList, nullptr},
  {"US Geoid Model of 1999", "CGEOID99", {kPath, kExtension}, "CGEOID99::InitializeGridFile", kCannotOpenFileList,
   nullptr},
  {"US Geoid Model of 2003", "CGEOID03", {kPath, kExtension}, "CGEOID03::InitializeGridFile", kCannotOpenFileList,
   nullptr},
  {"Australian Geoid Model of 1998", "CAUSGEOID98", {kPath, kExtension}, "CAUSGEOID98::InitializeGridFile",
   kCannotOpenFileList, nullptr},
  {"Ordnance Survey Geoid Model of 2002", "COSGM02", {kPath, kFile}, "COSGriddedData::InitializeGridFile",
   kCannotOpenFile, nullptr},
  {"Earth Geopotential Model of 1996", "CEGM96", {kPath, kFile}, "CEGM96::SetupInner", kCannotOpenFile, nullptr},
  {"Columbia Geoid Model of 2004", "CGEOCOL04", {kPath, kFile}, nullptr, nullptr, &kGEOCOL04},
  {"Japanese GSI Geoid Model of 2000", "CGSIGEO2000", {kPath, kFile}, nullptr, nullptr, &kGSIGEO2000},
  {"Venezuelan Geoid Model of 2004", "CMGCV04", {kPath, kFile}, nullptr, nullptr, &kMGCV04},
  {"Iberian Gravimetric Geoid of 2005", "CIGG2005", {kPath, kFile}, nullptr, nullptr, &kIGG2005},
  {"Iberian Geoid Model of 1995", "CIBERGEO95", {kPath, kFile}, nullptr, nullptr, &kIBERGEO95},
};
static_assert(std::size(kHeightModels) == 11, "one row per height model type");

Row const kVerticalDatums[] = {
  {"National Geodetic Vertical Datum of 1929", "CNGVD29", {kPath, kExtension}, kNGSOpen, kCannotOpenFileList,
   nullptr},
  {"North American Vertical Datum of 1988", "CNAVD88", {kPath, kExtension}, kNGSOpen, kCannotOpenFileList, nullptr},
  {"Unassociated Vertical Datum", "CGenericVerticalDatum", {}, nullptr, nullptr, nullptr},
};
static_assert(std::size(kVerticalDatums) == 3, "one row per vertical datum type");

template <std::size_t N>
Row const * RowIn(Row const (&rows)[N], int type)
{
  return type >= 0 && static_cast<std::size_t>(type) < N ? &rows[type] : nullptr;
}

template <std::size_t N>
int TypeIn(Row const (&rows)[N], CString const & name)
{
  for (std::size_t i = 0; i < N; ++i)
    if (name == QLatin1String(rows[i].name))
      return static_cast<int>(i);
  return -1;
}

} // namespace

Row const * HeightModelRow(int type) { return RowIn(kHeightModels, type); }
Row const * VerticalDatumRow(int type) { return RowIn(kVerticalDatums, type); }
int HeightModelTypeOf(CString const & name) { return TypeIn(kHeightModels, name); }
int VerticalDatumTypeOf(CString const & name) { return TypeIn(kVerticalDatums, name); }

} // namespace Velmora::CS::VR::Table
