#pragma once
// The name tables of coordinate-system import and export.
#include <velmora/foundation/CString.h>

#include <initializer_list>

namespace Velmora::DB::ImportTables {

// Issuers and the well-known objects of the store that imports fall back on.
inline constexpr char kEPSG[] = "EPSG";
inline constexpr char kVM[] = "VM";
inline constexpr char kDegreeCode[] = "9102";
inline constexpr char kMetreCode[] = "9001";

// A UTM zone as transverse Mercator parameters.
inline constexpr double kUtmScale = 0.9996;
inline constexpr double kUtmFalseEasting = 500000.0;       // metres
inline constexpr double kUtmSouthFalseNorthing = 10000000.0; // metres
inline constexpr double kUtmZoneWidth = 6.0;               // degrees
inline constexpr double kUtmZoneOffset = 183.0;            // degrees: zone 1's meridian is -177
inline constexpr int kUtmZones = 60;

// One row of the datum table: a fragment of a lowercased datum name, the EPSG
// datum code it stands for, and where known the ellipsoid number and the seven
// values of the row's shift to WGS 84 (dx, dy, dz metres; rx, ry, rz arc
// seconds; k).
struct DatumRow
{
  char const * fragment;
  char const * code;
  int ellipsoid = 0;
  double shift[7] = {};
  bool hasShift = false;
};

// The rows in table order.
DatumRow const * DatumRows(int & count);
// The first row whose fragment the lowercased name holds, then the token rule.
CString DatumCodeFromName(CString const & name);
// Rows from the eighth on whose seven values all lie within 1e-7 of these.
CString DatumCodeFromShift(double const values[7]);

// A projection parameter's WKT name, and back; the parameter's own name when
// it has none. `centre` asks for the names of projections defined at a centre.
char const * WktParameterName(char const * parameter, bool centre);
// The parameter a WKT name stands for; null when none.
char const * ParameterOfWktName(CString const & wktName);

// The alias table: (type, names) rows, the first name the one written.
struct AliasRow
{
  int type;
  std::initializer_list<char const *> names;
};
AliasRow const * AliasRows(int & count);
// Types whose WKT counts the origin from a centre (latitude_of_center, longitude_of_center).
bool UsesCentreNames(int type);

} // namespace Velmora::DB::ImportTables
