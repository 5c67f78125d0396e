#pragma once
// World map projections: pseudocylindrical and other small-scale maps of the
// whole sphere. All but the sinusoidal are spherical, on the radius in
// spherical_radius where the type has that parameter, else on the semi-major
// axis of the datum's figure; the sinusoidal is ellipsoidal.
#include <velmora/projections/MeridionalUtil.h>
#include <velmora/projections/Projection.h>

namespace Velmora::CS::PJ {

// What the spherical world maps share: the central meridian, the false origin,
// the radius and, where the type has one, the latitude of latitude_of_origin,
// read once every parameter is set. ToPlane centres the longitude, converts to
// radians and hands the class's Forward the longitude from the central meridian;
// FromPlane takes off the false origin and hands the rest to Inverse.
class VELMORA_API CWorldMap : public CProjection
{
public:
  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

protected:
  CWorldMap(CString const & typeName, CHorizontalDatum * datum) : CProjection(typeName, datum) {}

  // The class's own constants, once the shared ones are read.
  virtual void Prepare() {}
  // Longitude from the central meridian and latitude (radians) to metres from
  // the false origin; false where the point has no image.
  virtual bool Forward(double lambda, double phi, double & x, double & y) const = 0;
  // Metres from the false origin to longitude from the central meridian and latitude.
  virtual bool Inverse(double x, double y, double & lambda, double & phi) const = 0;

  double m_R = 0.0;    // radius of the sphere
  double m_lam0 = 0.0; // central meridian
  double m_phi1 = 0.0; // latitude_of_origin where the type has it
  double m_fe = 0.0, m_fn = 0.0;
  bool m_ready = false;
};

// Aitoff's projection (Snyder & Voxland 1989, An Album of Map Projections):
// x = 2 cos phi sin(lambda/2) / sinc alpha, y = sin phi / sinc alpha with
// cos alpha = cos phi cos(lambda/2), on the semi-major axis. Its inverse is
// Newton's method in both unknowns on the analytic partials, stopping at steps
// of 1e-7 radian; false when 30 rounds do not get there.
class VELMORA_API CAitoff final : public TProjection<CAitoff, CProjection::kAitoff, CWorldMap>
{
public:
  explicit CAitoff(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Craster's parabolic (Putnins P4) equal-area projection, closed both ways
// (Snyder, Map Projections: A Working Manual, 1987, p. 248 ff.).
class VELMORA_API CCrasterParabolic final
  : public TProjection<CCrasterParabolic, CProjection::kCrasterParabolic, CWorldMap>
{
public:
  explicit CCrasterParabolic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Eckert I: straight meridians broken at the equator (Snyder & Voxland 1989).
class VELMORA_API CEckertI final : public TProjection<CEckertI, CProjection::kEckertI, CWorldMap>
{
public:
  explicit CEckertI(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Eckert II: the equal-area form of Eckert I (Snyder & Voxland 1989).
class VELMORA_API CEckertII final : public TProjection<CEckertII, CProjection::kEckertII, CWorldMap>
{
public:
  explicit CEckertII(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Eckert III: elliptical meridians, equally spaced parallels (Snyder & Voxland 1989).
class VELMORA_API CEckertIII final : public TProjection<CEckertIII, CProjection::kEckertIII, CWorldMap>
{
public:
  explicit CEckertIII(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Eckert IV: the equal-area form of Eckert III (Snyder 1987, 32-1 to 32-7),
// with the rounded constants 0.4222382 and 1.3265004 of Snyder's text: they
// stand 2.1e-8 short of the exact 2 sqrt(pi/(4 + pi)) in y, some 0.18 m at
// the poles of the Earth.
class VELMORA_API CEckertIV final : public TProjection<CEckertIV, CProjection::kEckertIV, CWorldMap>
{
public:
  explicit CEckertIV(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  // Newton's method on theta + sin theta cos theta + 2 sin theta = (2 + pi/2)
  // sin latitude, from the theta given (radians), steps of 1e-7, 50 rounds.
  // False where it fails, and at a pole, where the derivative 2 cos theta
  // (1 + cos theta) vanishes: theta is then the pole itself.
  bool converge(double latitude, double & theta) const;

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Eckert V: sinusoidal meridians, equally spaced parallels (Snyder & Voxland 1989).
class VELMORA_API CEckertV final : public TProjection<CEckertV, CProjection::kEckertV, CWorldMap>
{
public:
  explicit CEckertV(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Eckert VI: the equal-area form of Eckert V (Snyder 1987, 31-1 to 31-8).
class VELMORA_API CEckertVI final : public TProjection<CEckertVI, CProjection::kEckertVI, CWorldMap>
{
public:
  explicit CEckertVI(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  // Newton's method on theta + sin theta = (1 + pi/2) sin latitude, as
  // CEckertIV::converge.
  bool converge(double latitude, double & theta) const;

protected:
  void Prepare() override;
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;

private:
  double m_module = 0.0; // R / sqrt(2 + pi)
};

// Goode's homolosine, uninterrupted (Snyder & Voxland 1989): the sinusoidal
// below 40 deg 44' 11.8" (0.7109307819790236 radian), Mollweide from there,
// lowered by 0.0528 R to meet it.
class VELMORA_API CGoodeHomolosine final
  : public TProjection<CGoodeHomolosine, CProjection::kGoodeHomolosine, CWorldMap>
{
public:
  explicit CGoodeHomolosine(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// The Hammer (Hammer-Aitoff) equal-area projection, closed both ways (Snyder
// 1987, p. 232 ff.); the inverse refuses a point off the map.
class VELMORA_API CHammerAitoff final : public TProjection<CHammerAitoff, CProjection::kHammerAitoff, CWorldMap>
{
public:
  explicit CHammerAitoff(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// The loximuthal projection about the central latitude latitude_of_origin
// (Snyder & Voxland 1989): straight rhumb lines from the central point.
class VELMORA_API CLoximuthal final : public TProjection<CLoximuthal, CProjection::kLoximuthal, CWorldMap>
{
public:
  explicit CLoximuthal(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// McBryde-Thomas flat-polar quartic, equal-area (Snyder & Voxland 1989).
// Forward by Newton's method, 100 rounds, steps of 1e-7; false if they fail.
class VELMORA_API CMcBrydeThomasFlatPolarQuartic final
  : public TProjection<CMcBrydeThomasFlatPolarQuartic, CProjection::kMcBrydeThomasFlatPolarQuartic, CWorldMap>
{
public:
  explicit CMcBrydeThomasFlatPolarQuartic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Mollweide's equal-area projection (Snyder 1987, 31-1 to 31-8): Newton's
// method on 2 theta, stopping at a step of 1e-7 radian.
class VELMORA_API CMollweide final : public TProjection<CMollweide, CProjection::kMollweide, CWorldMap>
{
public:
  explicit CMollweide(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  void Prepare() override;
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;

private:
  double m_k1 = 0.0, m_k2 = 0.0; // sqrt(8) R / pi and sqrt(2) R
};

// The quartic authalic (Snyder & Voxland 1989), closed both ways.
class VELMORA_API CQuarticAuthalic final : public TProjection<CQuarticAuthalic, CProjection::kQuarticAuthalic, CWorldMap>
{
public:
  explicit CQuarticAuthalic(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Robinson's projection from his table of lengths of parallels and their
// distances from the equator at every 5 degrees (Robinson 1974; Snyder,
// Flattening the Earth, 1993, table on p. 214), interpolated by the
// three-point (Stirling) form rather than a spline, with the multipliers
// 0.8477512782251756 and 1.3508202760235382 of this library. The inverse
// iterates the latitude to 1e-7 m in y.
class VELMORA_API CRobinson final : public TProjection<CRobinson, CProjection::kRobinson, CWorldMap>
{
public:
  explicit CRobinson(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// The sinusoidal on the datum's ellipsoid (Snyder 1987, 30-8 to 30-11): the
// parallels at their true length, y the meridional arc of CMeridionalUtil.
class VELMORA_API CSinusoidal final : public TProjection<CSinusoidal, CProjection::kSinusoidal, CMeridionalUtil>
{
public:
  explicit CSinusoidal(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

  void OnChange(unsigned short const * name) override;
  bool ToPlane(double & x, double & y) const override;
  bool FromPlane(double & x, double & y) const override;
  using CProjection::FromPlane;
  using CProjection::ToPlane;

private:
  double m_a = 0.0, m_e2 = 0.0;
  double m_lam0 = 0.0, m_fe = 0.0, m_fn = 0.0;
  bool m_ready = false;
};

// The Times projection (Moir 1965; Snyder, Flattening the Earth, 1993,
// p. 213): Gall's stereographic spacing of the parallels with curved
// meridians, y = (1 + sqrt 2 / 2) R tan(phi/2), on this library's
// coefficients of the length of the parallels.
class VELMORA_API CTimes final : public TProjection<CTimes, CProjection::kTimes, CWorldMap>
{
public:
  explicit CTimes(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Van der Grinten's projection (Snyder 1987, 29-1 to 29-6; the inverse by
// the trigonometric solution of a cubic, 29-29 to 29-33).
class VELMORA_API CVanDerGrinten final : public TProjection<CVanDerGrinten, CProjection::kVanDerGrinten, CWorldMap>
{
public:
  explicit CVanDerGrinten(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Van der Grinten IV (Snyder & Voxland 1989): meridians and parallels arcs
// of circles. Its inverse is numeric: a search over shrinking tiles of the
// sphere, then Newton steps on the analytic partials to 1e-7 radian. The
// slowest conversion of the library; see the benchmark.
class VELMORA_API CVanDerGrintenIV final
  : public TProjection<CVanDerGrintenIV, CProjection::kVanDerGrintenIV, CWorldMap>
{
public:
  explicit CVanDerGrintenIV(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Winkel I: the mean of the equirectangular on the standard parallel
// latitude_of_origin and the sinusoidal (Snyder & Voxland 1989).
class VELMORA_API CWinkelI final : public TProjection<CWinkelI, CProjection::kWinkelI, CWorldMap>
{
public:
  explicit CWinkelI(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Winkel II: the mean of the equirectangular on the standard parallel
// latitude_of_origin and a Mollweide-like map with x = lambda cos theta,
// y = (pi/2) sin theta (Snyder & Voxland 1989). The inverse solves the
// latitude by Newton's method to 1e-7 radian.
class VELMORA_API CWinkelII final : public TProjection<CWinkelII, CProjection::kWinkelII, CWorldMap>
{
public:
  explicit CWinkelII(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

// Winkel's tripel: the mean of Aitoff's projection and the equirectangular
// on the standard parallel latitude_of_origin (Snyder & Voxland 1989). The
// inverse is Aitoff's two-unknown Newton method.
class VELMORA_API CWinkelTripel final : public TProjection<CWinkelTripel, CProjection::kWinkelTripel, CWorldMap>
{
public:
  explicit CWinkelTripel(CHorizontalDatum * datum = nullptr) : TProjection(datum) {}

protected:
  bool Forward(double lambda, double phi, double & x, double & y) const override;
  bool Inverse(double x, double y, double & lambda, double & phi) const override;
};

} // namespace Velmora::CS::PJ
