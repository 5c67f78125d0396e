#include <velmora/foundation/VelmoraException.h>
#include <velmora/projections/Azimuthal.h>
#include <velmora/projections/Conic.h>
#include <velmora/projections/Cylindrical.h>
#include <velmora/projections/Oblique.h>
#include <velmora/projections/GridSystems.h>
#include <velmora/projections/TransverseMercator.h>
#include <velmora/projections/WorldMap.h>

#include <array>
#include <new>

namespace Velmora::CS::PJ {

namespace {
template <class T>
CProjection * Make(CHorizontalDatum * datum)
{
  static_assert(T::kType >= 0 && T::kType < CProjection::kTypeCount);
  return new (std::nothrow) T(datum);
}

using Maker = CProjection * (*)(CHorizontalDatum *);

// Indexed by type: each class's own type places it, so an entry out of order fails to build.
struct Entry
{
  CProjection::Type type;
  Maker make;
};
template <class... T>
constexpr auto Entries()
{
  return std::array<Entry, sizeof...(T)>{Entry{T::kType, &Make<T>}...};
}

constexpr auto kMakers = Entries<
  CAitoff, CAlaska27, CAlbersEqualArea, CAzimuthalEqualArea, CAzimuthalEquidistant, CBehrmann, CBelgium72,
  CBipolarObliqueConformalConic, CBonne, CCassini, CCrasterParabolic, CDanishSystem34, CDanishSystem34_99,
  CDoubleStereographic, CEckertI, CEckertII, CEckertIII, CEckertIV, CEckertV, CEckertVI, CEgysegesOrszagosVetulet,
  CEqualAreaCylindrical, CEquidistantConic, CEquidistantCylindrical, CEuropeanStereographic, CFuller,
  CGallStereographic, CGnomic, CGoodeHomolosine, CGuam27, CHammerAitoff, CHotineObliqueMercator,
  CHotineObliqueMercator_1, CHotineObliqueMercator_2, CIMWPolyconic, CKrovak, CLaborde, CLambert27,
  CLambertConformalConic, CLambertConformalConicExtended, CLambertTangent, CLoximuthal, CMcBrydeThomasFlatPolarQuartic,
  CMercator, CMilitaryGridReferenceSystem, CMillerCylindrical, CMollweide, CNewZealandMapGrid, CObliqueMercatorAzimuth,
  CObliqueMercatorTwoPoints, COrthographic, CPerspectiveConic, CPolarAzimuthalEqualArea, CPolarEquidistant,
  CPolarStereographic, CPolyconic, CQuarticAuthalic, CRobinson, CSinusoidal, CSpaceObliqueMercator, CStereographic,
  CStereographic70, CSwissObliqueMercator, CTiltedPerspective, CTimes, CTransverseMercator, CMercator27,
  CTransverseMercatorExtended, CTransverseMercatorSnyder, CTransverseMercatorSouthOriented, CTwoPointFit,
  CUniversalTransverseMercator, CVanDerGrinten, CVanDerGrintenIV, CVandH, CVerticalPerspective, CWinkelI, CWinkelII,
  CWinkelTripel>();

constexpr bool InTypeOrder()
{
  for (size_t i = 0; i < kMakers.size(); ++i)
    if (kMakers[i].type != static_cast<int>(i))
      return false;
  return kMakers.size() == CProjection::kTypeCount;
}
static_assert(InTypeOrder(), "the factory lists every type once, in type order");
} // namespace

CProjection * CProjectionFactory::CreateProjection(CProjection::Type type, CHorizontalDatum * datum)
{
  // Compared unsigned, so that -1 is out of range too.
  if (static_cast<unsigned>(type) >= static_cast<unsigned>(CProjection::kTypeCount))
    throw EX::CVelmoraException(EX::CVelmoraException::kClassNotImplemented, "CProjectionFactory::CreateProjection");
  return kMakers[static_cast<size_t>(type)].make(datum);
}

} // namespace Velmora::CS::PJ
