// The grid shift readers: the first byte picks NTv2 or NADCON. For NTv2 the
// rest is the file; for NADCON the next four bytes give the length of the
// latitude file, then come the two files. Each is shifted forward and back
// at places the input picks.
#include <velmora/transforms/datumshifts/GridShifts.h>

#include "FuzzInput.h"
#include "FuzzShift.h"

#include <algorithm>
#include <cstdint>

using namespace Velmora;
using VelmoraFuzz::Shift;
using VelmoraFuzz::Take;
using VelmoraFuzz::Write;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size)
{
  std::uint8_t const kind = Take<std::uint8_t>(data, size);
  double const lon = Take<float>(data, size), lat = Take<float>(data, size);
  if (kind & 1) {
    std::uint32_t const first = std::min<std::uint32_t>(Take<std::uint32_t>(data, size), size);
    CT::DS::CNadcon nadcon;
    CParameterCollection & p = nadcon.GetParameters();
    p.SetString(CString("las_name"), CString(Write("grid.las", data, first)));
    p.SetString(CString("los_name"), CString(Write("grid.los", data + first, size - first)));
    p.SetString(CString("type"), CString(kind & 2 ? "HARN" : "NADCON"));
    Shift(nadcon, lon, lat);
  } else {
    CT::DS::CCanadianNTV2 ntv2;
    ntv2.GetParameters().SetString(CString("cantrans_file"), CString(Write("grid.gsb", data, size)));
    Shift(ntv2, lon, lat);
    Shift(ntv2, lon + 0.5, lat - 0.25); // another cell, the corner cache moved
  }
  return 0;
}
