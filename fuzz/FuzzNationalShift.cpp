// The national grid readers: the first byte picks the GR3D1 text grid, the
// Tokyo mesh file or the Ordnance Survey's shift records; two floats give a
// point; the rest is the file. Each is shifted forward and back there and at
// a second point nearby.
#include <velmora/refsys/HorizontalDatum.h>
#include <velmora/transforms/datumshifts/NationalShifts.h>

#include "FuzzInput.h"
#include "FuzzShift.h"

#include <cstdint>

using namespace Velmora;
using VelmoraFuzz::Shift;
using VelmoraFuzz::Take;
using VelmoraFuzz::Write;

namespace {

CS::CHorizontalDatum Datum(double semiMajor, double inverseFlattening)
{
  CS::CHorizontalDatum datum;
  datum.GetEllipsoid().GetSemiMajor().SetValue(semiMajor);
  datum.GetEllipsoid().SetInvFlattening(inverseFlattening);
  return datum;
}

void Run(CT::DS::CDatumShift & shift, double lon, double lat)
{
  shift.SetSrcDatum(Datum(6378249.2, 293.4660212936269));
  shift.SetDestDatum(Datum(6378137.0, 298.257222101));
  Shift(shift, lon, lat);
  Shift(shift, lon + 0.01, lat - 0.01); // another cell
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size)
{
  std::uint8_t const kind = Take<std::uint8_t>(data, size) % 3;
  double const lon = Take<float>(data, size), lat = Take<float>(data, size);
  if (kind == 0) {
    CT::DS::CNTFToRGF93 shift;
    shift.GetParameters().SetString(CString("file"), CString(Write("grid.txt", data, size)));
    Run(shift, lon, lat);
  } else {
    CString const file(Write(kind == 1 ? "mesh.par" : "ostn.dat", data, size));
    CT::DS::CTokyoToJGD2000 tokyo;
    CT::DS::COSTN02 ostn;
    CT::DS::CDatumShift & shift = kind == 1 ? static_cast<CT::DS::CDatumShift &>(tokyo) : ostn;
    shift.GetParameters().SetString(CString("path"), CString(VelmoraFuzz::Scratch().path()));
    shift.GetParameters().SetString(CString("file"), CString(kind == 1 ? "mesh.par" : "ostn.dat"));
    Run(shift, lon, lat);
  }
  return 0;
}
