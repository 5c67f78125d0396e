// OSGM02 on a shift-record grid of tools/make-test-grids.py: a 10 km square
// of the National Grid from E 400 km, N 300 km holding the geoid plane
// 50 + E'/1000 + N'/500 m, with one node without data.
#include <velmora/projections/TransverseMercator.h>
#include <velmora/vertical/HeightModels.h>

#include "../support/ReferenceData.h"
#include "../support/TestSupport.h"

using namespace Velmora;
using namespace Velmora::CS::VR;
using namespace VelmoraTest;

namespace {

CS::CHorizontalDatum Airy()
{
  CS::CHorizontalDatum datum;
  datum.GetEllipsoid().GetSemiMajor().SetValue(6377563.396);
  datum.GetEllipsoid().SetInvFlattening(299.3249646);
  return datum;
}

COSGM02 Model(char const * file)
{
  COSGM02 model;
  model.SetHorizontalDatum(Airy());
  model.GetParameters().SetString(CString("path"), CString(QString::fromStdString(TestData("grids/os"))));
  model.GetParameters().SetString(CString("file"), CString(file));
  return model;
}

// The geodetic point of National Grid coordinates, by the library's own
// transverse Mercator (checked against PROJ elsewhere).
ML::CGeodeticPoint Place(double east, double north)
{
  CS::CHorizontalDatum airy = Airy();
  CS::PJ::CTransverseMercator grid;
  grid.SetHorizontalDatum(&airy);
  CParameterCollection & p = grid.GetParameters();
  p.SetItemInternal(CString("central_meridian"), -2.0);
  p.SetItemInternal(CString("latitude_of_origin"), 49.0);
  p.SetDouble(CString("scale_factor"), 0.9996012717);
  p.SetItemInternal(CString("false_easting"), 400000.0);
  p.SetItemInternal(CString("false_northing"), -100000.0);
  double x = east, y = north;
  EXPECT_TRUE(grid.FromPlane(x, y));
  return ML::CGeodeticPoint(x, y, 0.0);
}

} // namespace

TEST(OSGM02, IsBilinearInItsKilometreCellsAndRefusesWhereThereIsNoData)
{
  COSGM02 const model = Model("osgm_test.dat");
  for (double const east : {400000.0, 401250.5, 403999.0, 409999.0})
    for (double const north : {300000.0, 302500.25, 309999.0})
      EXPECT_NEAR(model.Interpolate(Place(east, north)), 50.0 + (east - 400000.0) / 1000.0 + (north - 300000.0) / 500.0,
                  1e-6)
        << east << " " << north;
  char const * const location = "COSGM02::Interpolate";
  COSGM02 const damaged = Model("short.dat");
  ExpectFailures({
    {"a corner without data", [&] { model.Interpolate(Place(404500.0, 304500.0)); }, 43, location,
     "There is no grid shift data for the area around the point."},
    {"west of the grid", [&] { model.Interpolate(Place(399500.0, 305000.0)); }, 43, location,
     "The point's x coordinate is outside the grid bounds."},
    {"north of the grid", [&] { model.Interpolate(Place(405000.0, 310500.0)); }, 43, location,
     "The point's y coordinate is outside the grid bounds."},
    {"cut short", [&] { damaged.Interpolate(Place(405000.0, 305000.0)); }, 59, "COSGriddedData::InitializeGridFile",
     "Grid file data doesn't match specified size."},
  });
}
