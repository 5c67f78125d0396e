#include <velmora/foundation/ObjectTypes.h>

#include <array>

namespace Velmora::ObjectTypes {

namespace {
struct TypeRow
{
  long type;
  long rootGroup;
  char const * name;
};

// The ellipsoid's name row repeats the angular unit's: established text that
// stored files and callers know.
constexpr std::array<TypeRow, 20> kTypes = {{
  {kObjectAngularUnit, 100, "Angular Units"},
  {kObjectLinearUnit, 200, "Linear Units"},
  {kObjectPrimeMeridian, 300, "Prime Meridians"},
  {kObjectEllipsoid, 400, "Angular Units"},
  {kObjectHorizontalDatum, 500, "Horizontal Datums"},
  {kObjectDatumShift, 600, "Datum Shifts"},
  {kObjectCartesianPoint, 710, "Cartesian"},
  {kObjectGeodeticPoint, 720, "Geodetic"},
  {kObjectProjectedPoint, 730, "Projected"},
  {kObjectEnvelope, 800, "Envelopes"},
  {kObjectVerticalReference, 900, "Vertical References"},
  {kObjectGeocentricCoordSys, 1100, "Geocentric"},
  {kObjectGeodeticCoordSys, 1200, "Geodetic"},
  {kObjectProjectedCoordSys, 1300, "Projected"},
  {kObjectFittedCoordSys, 1400, "Fitted"},
  {kObjectCoordTransform, 1500, "Coordinate Transforms"},
  {kObjectHeightModel, 960, "Height Models"},
  {kObjectVerticalDatum, 930, "Vertical Datums"},
  {kObjectAnyCoordPoint, 0, "Point Styles"},
  {kObjectAnyCoordSys, 0, "Coordinate Systems"},
}};
} // namespace

long RootGroupOf(long type)
{
  for (auto const & row : kTypes)
    if (row.type == type)
      return row.rootGroup;
  return 0;
}

long TypeOfRootGroup(long group)
{
  if (group == 0)
    return 0;
  for (auto const & row : kTypes)
    if (row.rootGroup == group)
      return row.type;
  return 0;
}

CString NameOf(long type)
{
  for (auto const & row : kTypes)
    if (row.type == type)
      return CString(row.name);
  return CString("");
}

bool IsSingle(long type) { return type > 0 && (type & (type - 1)) == 0; }

} // namespace Velmora::ObjectTypes
