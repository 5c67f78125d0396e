// The azimuthal family against PROJ's stere, ups, sterea, laea, aeqd, gnom,
// ortho, nsper and tpers: vectors written by scripts/gen-azimuthal-refs.sh
// in every aspect, on spheres and ellipsoids, turned planes through PROJ's
// affine step.
#include "../support/ReferenceData.h"

#include <velmora/projections/Azimuthal.h>

#include <memory>

using namespace Velmora::CS::PJ;

TEST(AzimuthalReference, AgreesWithProj)
{
  // Exact projections: 1 mm and 1e-9 degree. The equal-area inverses take
  // phi from beta by the authalic series to e^6: measured 1.44e-8 degree
  // from the exact inverse, held at 1.5e-8. The polar equidistant's arc is
  // the series to e^6: measured 0.75 mm and 6.7e-9 degree at 60 degrees
  // from the pole, held at 1 mm and 7e-9. The European stereographic's
  // inverse by the conformal series to e^8 is exact to 3e-11 degree.
  struct Case
  {
    CProjection::Type type;
    char const * file;
    double metres, degrees;
  } const cases[] = {
    {CProjection::kStereographic, "azimuthal_stere.txt", 0.001, 1e-9},
    {CProjection::kStereographic, "azimuthal_stere_turned.txt", 0.001, 1e-9},
    {CProjection::kEuropeanStereographic, "azimuthal_stere_k.txt", 0.001, 1e-9},
    {CProjection::kPolarStereographic, "azimuthal_polar_a.txt", 0.001, 1e-9},
    {CProjection::kPolarStereographic, "azimuthal_ups.txt", 0.001, 1e-9},
    {CProjection::kPolarStereographic, "azimuthal_polar_b.txt", 0.001, 1e-9},
    {CProjection::kDoubleStereographic, "azimuthal_sterea.txt", 0.001, 1e-9},
    {CProjection::kAzimuthalEqualArea, "azimuthal_laea.txt", 0.001, 1.5e-8},
    {CProjection::kAzimuthalEqualArea, "azimuthal_laea_turned.txt", 0.001, 1.5e-8},
    {CProjection::kPolarAzimuthalEqualArea, "azimuthal_laea_polar.txt", 0.001, 1.5e-8},
    {CProjection::kAzimuthalEquidistant, "azimuthal_aeqd.txt", 0.001, 7e-9},
    {CProjection::kAzimuthalEquidistant, "azimuthal_aeqd_turned.txt", 0.001, 1e-9},
    {CProjection::kPolarEquidistant, "azimuthal_aeqd_polar.txt", 0.001, 7e-9},
    {CProjection::kGnomic, "azimuthal_gnom.txt", 0.001, 1e-9},
    {CProjection::kOrthographic, "azimuthal_ortho.txt", 0.001, 1e-9},
    {CProjection::kVerticalPerspective, "azimuthal_nsper.txt", 0.001, 1e-9},
    {CProjection::kTiltedPerspective, "azimuthal_tpers.txt", 0.001, 1e-9},
  };
  for (Case const & c : cases) {
    std::unique_ptr<CProjection> p(CProjectionFactory::CreateProjection(c.type, nullptr));
    VelmoraTest::ExpectReference(*p, c.file, c.metres, c.degrees);
  }
}
