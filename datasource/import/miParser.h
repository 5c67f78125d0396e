#pragma once
// The bridge between foreign descriptions of coordinate systems and the
// store: well-known text (OGR parses and writes it), MapInfo tables (OGR's
// MapInfo driver reads them) and the MIF "CoordSys" clause. Its own work is
// the name tables and the matching of foreign names against stored objects.
// What an import builds is put into the store; the systems returned are new
// handles the caller owns.
#include <velmora/foundation/CString.h>

#include <memory>
#include <vector>

class OGRSpatialReference;

namespace Velmora {
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
namespace ML {
class CAngularUnit;
class CLinearUnit;
} // namespace ML
} // namespace Velmora

namespace Velmora::DB {

class CDataSource;

class VELMORA_API miParser
{
public:
  explicit miParser(CDataSource * source);
  ~miParser();
  miParser(miParser const &) = delete;
  miParser & operator=(miParser const &) = delete;

  // A .prj/WKT file, or a MapInfo .tab/.map/.dat by its ending.
  CS::CCoordSys * fromWKT(CString const & file);
  CS::CCoordSys * FromString(CString const & text);
  // Every definition of a WKT file is stored; the first is returned.
  CS::CCoordSys * ParseWKT(CString const & file);
  bool ToWKT(CS::CCoordSys const & coordSys, CString const & file);
  CString ToString(CS::CCoordSys const & coordSys);

  // The MIF "CoordSys" clause; empty when MapInfo has no number for the
  // projection or the datum.
  CString ToMIF(CS::CCoordSys const & coordSys);
  CS::CCoordSys * FromMIF(CString const & clause);

  // `wantTables` is set for .prj files: ESRI's names for the same objects.
  void BuildSpatialReference(OGRSpatialReference & srs, CS::CCoordSys const & coordSys, bool wantTables);
  CS::CGeodeticCoordSys * BuildGeodeticSystem(OGRSpatialReference const & srs);
  CS::CProjectedCoordSys * BuildProjectedSystem(OGRSpatialReference const & srs);
  // A new projection over the datum, its parameters set from the PROJCS node.
  CS::PJ::CProjection * BuildProjection(OGRSpatialReference const & srs, CS::CHorizontalDatum & datum,
                                        ML::CLinearUnit const & linear);

  // The tables, for callers that name things themselves.
  // The EPSG datum code for a datum name (the datum table, then the token
  // rule), or for seven shift values; empty when nothing fits.
  static CString DatumCodeFromName(CString const & name);
  static CString DatumCodeFromShift(double const values[7]);
  // The projection type of a WKT or string-form name, or -1; the flags the
  // oblique suffixes choose are given back when asked.
  int ProjectionTypeOf(CString const & name, long * centerFlag = nullptr, long * azimuthIsGamma = nullptr,
                       long * useGamma = nullptr) const;
  // The name a type is written under.
  CString ProjectionNameOf(int type, long centerFlag = 0, long azimuthIsGamma = 0, long useGamma = 0) const;
  // The stored candidate whose name fits the foreign one best, or empty: its
  // "VM" code. `type` is one kind bit of the store.
  CString MatchName(long type, CString const & foreign, CS::CEllipsoid const * ellipsoid,
                    CS::CPrimeMeridian const * meridian) const;

private:
  struct Alias
  {
    CString name;
    int type;
    long centerFlag, azimuthIsGamma, useGamma;
  };
  void CheckSource(char const * location) const;
  CS::CCoordSys * FromSpatialReference(OGRSpatialReference const & srs);
  // `epsg`: the code the text gave the whole system, preferred among equals.
  CS::CCoordSys * MatchStored(CS::CCoordSys * built, CString const & epsg = CString());
  CS::CCoordSys * ParseTab(CString const & file);

  CDataSource * m_source;
  std::vector<Alias> m_aliases;
};

} // namespace Velmora::DB
