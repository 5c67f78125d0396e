// The cylindrical and other standard projections against PROJ's merc, mill,
// cea, eqc, gall, cass, poly, imw_p, bonne and pconic: vectors written by
// scripts/gen-cylindrical-refs.sh on several figures and spheres, with
// central meridians near the antimeridian and points up to the poles.
#include "../support/ReferenceData.h"

#include <velmora/projections/Cylindrical.h>

#include <memory>

using namespace Velmora::CS::PJ;

TEST(CylindricalReference, AgreesWithProj)
{
  // Where the tolerance is not 1 mm and 1e-9 degree, it holds what the
  // type's own form leaves, measured here:
  // - the Mercator's inverse stops its latitude iteration at a step of
  //   1e-7 radian, and its base 2.7182818281828 is 1e-10 short of e:
  //   3.2e-8 degree (3.8e-9 on a sphere);
  // - the equal-area cylinders' inverse is Snyder's authalic series to e^6:
  //   1.4e-8 degree;
  // - Cassini-Soldner is the registry's series in A to A^5 and back in D to
  //   D^5, which are not each other's inverse: 1.2e-6 degree at 5 degrees
  //   from the central meridian (forward 0.28 mm from PROJ's cass);
  // - the polyconics' and Bonne's arcs are series to e^6 against PROJ's to
  //   e^8: the polyconic 0.97 mm and 1.3e-8 degree, the IMW polyconic
  //   0.25 mm and 2.3e-9, Bonne 1.2 mm, 1.7e-8 back, and 4.5e-8 round its
  //   own arc and footpoint series, up to 80 degrees.
  struct Case
  {
    CProjection::Type type;
    char const * file;
    double metres, degrees;
  } const cases[] = {
    {CProjection::kMercator, "cyl_merc_a.txt", 0.001, 4e-8},
    {CProjection::kMercator, "cyl_merc_b.txt", 0.001, 4e-8},
    {CProjection::kMillerCylindrical, "cyl_mill.txt", 0.001, 1e-9},
    {CProjection::kEqualAreaCylindrical, "cyl_cea.txt", 0.001, 1.5e-8},
    {CProjection::kBehrmann, "cyl_behrmann.txt", 0.001, 1.5e-8},
    {CProjection::kEquidistantCylindrical, "cyl_eqc.txt", 0.001, 1e-9},
    {CProjection::kGallStereographic, "cyl_gall.txt", 0.001, 1e-9},
    {CProjection::kCassini, "cyl_cass.txt", 0.001, 1.3e-6},
    {CProjection::kPolyconic, "cyl_poly.txt", 0.001, 1.5e-8},
    {CProjection::kIMWPolyconic, "cyl_imw_p.txt", 0.001, 3e-9},
    {CProjection::kBonne, "cyl_bonne.txt", 0.0013, 5e-8},
    {CProjection::kPerspectiveConic, "cyl_pconic.txt", 0.001, 1e-9},
  };
  for (Case const & c : cases) {
    std::unique_ptr<CProjection> p(CProjectionFactory::CreateProjection(c.type, nullptr));
    VelmoraTest::ExpectReference(*p, c.file, c.metres, c.degrees);
  }
}
