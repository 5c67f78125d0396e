#pragma once
// Puts the registry's objects into a store through the library's own API, so
// that the file the store then writes is the writer's own.
#include "Registry.h"

#include <velmora/datasource/CDataSource.h>

#include <map>
#include <memory>
#include <set>
#include <string>

namespace Velmora {
class CSerializable;
namespace ML {
class CAngularUnit;
class CLinearUnit;
} // namespace ML
namespace CS {
class CHorizontalDatum;
class CGeodeticCoordSys;
} // namespace CS
} // namespace Velmora

namespace VelmoraData {

class Builder
{
public:
  // `only`, when given, limits the coordinate systems and datum shifts to
  // these EPSG codes; what they refer to comes along.
  Builder(Registry const & registry, Velmora::DB::CDataSource & store, std::set<std::string> const * only);
  ~Builder();

  void Build();

  // Why objects were left out, with how many each.
  std::map<std::string, int> const & LeftOut() const { return m_leftOut; }
  // What each registry method became, with how many.
  std::map<std::string, int> const & Made() const { return m_made; }

private:
  using CString = Velmora::CString;

  bool Wanted(std::string const & code) const { return !m_only || m_only->count(code) != 0; }
  void Skip(std::string const & reason) { ++m_leftOut[reason]; }
  std::string MethodName(std::string const & code) const;

  Velmora::ML::CAngularUnit const * AngularUnit(std::string const & code);
  Velmora::ML::CLinearUnit const * LinearUnit(std::string const & code);
  bool PrimeMeridian(std::string const & code);
  bool Ellipsoid(std::string const & code);
  Velmora::CS::CHorizontalDatum const * Datum(std::string const & code);
  CString GeodeticStyle(std::string const & angularUnit);
  CString ProjectedStyle(std::string const & linearUnit);
  CString CartesianStyle(std::string const & linearUnit);
  CString Envelope(std::vector<std::string> const & extents);
  Velmora::CS::CGeodeticCoordSys const * GeodeticCrs(std::string const & code);
  Velmora::CS::CGeodeticCoordSys const * SphereOfA(std::string const & code);
  bool OnSphere(std::string const & datum) const;
  bool GeocentricCrs(std::string const & code);
  bool ProjectedCrs(std::string const & code);
  bool GeoidCrs(std::string const & code);
  bool Shift(std::string const & code);
  long AreaFolder(long type, std::vector<std::string> const & extents);

  // A handle over the stored body of (type, VM code), not congealed, so that
  // objects put later share it.
  template <class Handle>
  Handle * Stored(long type, CString const & code);
  template <class Handle>
  Handle const * Cached(std::map<std::string, std::unique_ptr<Handle>> & cache, long type, std::string const & code);

  Registry const & m_registry;
  Velmora::DB::CDataSource & m_store;
  std::set<std::string> const * m_only;
  std::map<std::string, int> m_leftOut;
  std::map<std::string, int> m_made;
  std::map<std::string, std::unique_ptr<Velmora::ML::CAngularUnit>> m_angular;
  std::map<std::string, std::unique_ptr<Velmora::ML::CLinearUnit>> m_linear;
  std::map<std::string, std::unique_ptr<Velmora::CS::CHorizontalDatum>> m_datums;
  std::map<std::string, std::unique_ptr<Velmora::CS::CGeodeticCoordSys>> m_geodetic;
  std::map<std::string, CString> m_envelopes;
  std::map<std::pair<long, std::string>, long> m_folders;
};

} // namespace VelmoraData
