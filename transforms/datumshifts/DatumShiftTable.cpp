#include <velmora/transforms/datumshifts/DatumShiftTable_p.h>

#include <iterator>

namespace Velmora::CT::DS::Table {

namespace {

// The parameters the affine family shares, by kind.
constexpr Parameter dx{"dx", Kind::kLinear};
constexpr Parameter dy{"dy", Kind::kLinear};
constexpr Parameter dz{"dz", Kind::kLinear};
constexpr Parameter rx{"rx", Kind::kAngular};
constexpr Parameter ry{"ry", Kind::kAngular};
constexpr Parameter rz{"rz", Kind::kAngular};
constexpr Parameter xp{"xp", Kind::kLinear};
constexpr Parameter yp{"yp", Kind::kLinear};
constexpr Parameter zp{"zp", Kind::kLinear};
constexpr Parameter k{"k", Kind::kDouble};

constexpr Parameter Text(char const * name) { return {name, Kind::kString}; }

// "Ordnance Survey Grid" is the stored name of the OSTN02 class: data files know it so.
// The North Sea method carries fixed constants and declares nothing a user may set.
Row const kRows[] = {
  {"BursaWolfe", {dx, dy, dz, rx, ry, rz, k}},
  {"CanadianNTV2", {Text("cantrans_file")}},
  {"ED50ToED87NorthSea", {}},
  {"FourParameter", {dx, dy, dz, k}},
  {"GeocentricTranslation", {dx, dy, dz}},
  {"LongitudeRotation", {{"rotation", Kind::kAngular}}},
  {"Molodensky", {dx, dy, dz}},
  {"MolodenskyBadekas", {dx, dy, dz, rx, ry, rz, xp, yp, zp, k}},
  {"MRE", {Text("datum_id")}},
  {"Nadcon", {Text("las_name"), Text("los_name"), Text("type")}},
  {"NTFToRGF93", {Text("file")}},
  {"Ordnance Survey Grid", {Text("path"), Text("file")}},
  {"SevenParameter", {dx, dy, dz, rx, ry, rz, k}},
  {"SixParameter", {dx, dy, dz, rx, ry, rz}},
  {"TokyoToJGD2000", {Text("path"), Text("file")}},
};
static_assert(std::size(kRows) == 15, "one row per datum shift type");

} // namespace

Row const * RowOf(int type)
{
  if (type < 0 || type >= TypeCount())
    return nullptr;
  return &kRows[type];
}

int TypeOf(CString const & name)
{
  for (int i = 0; i < TypeCount(); ++i)
    if (name == QLatin1String(kRows[i].name))
      return i;
  return -1;
}

int TypeCount() { return static_cast<int>(std::size(kRows)); }

} // namespace Velmora::CT::DS::Table
