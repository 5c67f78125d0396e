#pragma once
// One import's objects: found in the store where an authority code, the
// datum table or a name finds them, made and stored where not. What can make
// an import fail is checked before anything is stored, so that nothing is
// left half stored.
#include <velmora/foundation/CString.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class OGRSpatialReference;

namespace Velmora {
class CParameterCollection;
class CSerializable;
namespace ML {
class CAngularUnit;
class CLinearUnit;
class CEnvelope;
} // namespace ML
namespace CS {
class CCoordSys;
class CEllipsoid;
class CGeodeticCoordSys;
class CHorizontalDatum;
class CPrimeMeridian;
class CProjectedCoordSys;
namespace PJ {
class CProjection;
}
} // namespace CS
} // namespace Velmora

namespace Velmora::DB {

class CDataSource;
class miParser;

class ImportObjects
{
public:
  ImportObjects(CDataSource & store, miParser const & parser) : m_store(store), m_parser(parser) {}

  CS::CGeodeticCoordSys * Geodetic(OGRSpatialReference const & srs);
  CS::CProjectedCoordSys * Projected(OGRSpatialReference const & srs);
  CS::PJ::CProjection * Projection(OGRSpatialReference const & srs, CS::CHorizontalDatum & datum,
                                   ML::CLinearUnit const & linear);

  // The key/value form past the lookups of stored systems by name.
  CS::CCoordSys * FromStringMap(std::map<CString, CString> const & map);

  // The "VM" code of the stored object of `type` whose name fits best, or empty.
  static CString MatchName(CDataSource const & store, long type, CString const & foreign,
                           CS::CEllipsoid const * ellipsoid, CS::CPrimeMeridian const * meridian);
  // WKT1 of a geodetic or projected system; empty for other kinds.
  static std::string ComposeWkt(CDataSource const & store, CS::CCoordSys const & coordSys, miParser const & parser);

  // Stored units and point styles, made when missing.
  ML::CAngularUnit * AngularUnit(CString const & name, double unitsPerDegree, char const * epsg);
  // The unit the WKT gives its geographic angles in.
  ML::CAngularUnit * GeographicUnit(OGRSpatialReference const & srs);
  ML::CLinearUnit * LinearUnit(CString const & name, double unitsPerMetre, char const * epsg);
  CString GeodeticStyle(ML::CAngularUnit const & unit);
  CString ProjectedStyle(ML::CLinearUnit const & unit);
  CString StandardEnvelope();
  // A projection parameter in degrees or in the unit's lengths.
  static void SetAngle(CParameterCollection & p, char const * name, double degrees, ML::CAngularUnit const & unit);
  static void SetLength(CParameterCollection & p, char const * name, double value, ML::CLinearUnit const & unit);
  // Puts the object, replacing one of the same "VM" code.
  void Put(long type, CSerializable const & object);

private:
  CS::CHorizontalDatum * Datum(OGRSpatialReference const & srs);
  CS::CHorizontalDatum * NewDatum(OGRSpatialReference const & srs);
  void ShiftToWgs84(OGRSpatialReference const & srs, CS::CHorizontalDatum const & datum);

  CDataSource & m_store;
  miParser const & m_parser;
};

} // namespace Velmora::DB
