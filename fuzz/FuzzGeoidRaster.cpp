// The simple geoid rasters: the first bytes of an input are the layout a data
// file would give, the rest is the raster file, then the whole-grid load and
// a few interpolations at places the input picks.
#include <velmora/foundation/VelmoraException.h>
#include <velmora/vertical/SimpleGriddedData.h>

#include "FuzzInput.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>
#include <cstring>

using namespace Velmora;
using VelmoraFuzz::Take;
using CS::VR::CSimpleGriddedData;

namespace {

QTemporaryDir * g_dir = nullptr;


} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
  g_dir = new QTemporaryDir;
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size)
{
  CSimpleGriddedData::Layout layout{};
  layout.south = Take<double>(data, size);
  layout.west = Take<double>(data, size);
  layout.rowSpacing = Take<double>(data, size);
  layout.columnSpacing = Take<double>(data, size);
  layout.rows = Take<std::int32_t>(data, size);
  layout.columns = Take<std::int32_t>(data, size);
  std::uint8_t const flags = Take<std::uint8_t>(data, size);
  layout.order = static_cast<CSimpleGriddedData::CellOrder>(flags & 7);
  layout.cellType = static_cast<CSimpleGriddedData::CellType>((flags >> 3) & 7);
  layout.swap = flags & 64;
  layout.loadWhole = flags & 128;
  std::uint8_t const more = Take<std::uint8_t>(data, size);
  layout.snap = more & 1;
  layout.startOffset = Take<std::int16_t>(data, size);
  double const lat = Take<double>(data, size);
  double const lon = Take<double>(data, size);

  QString const path = g_dir->filePath("raster.bin");
  {
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate))
      std::abort();
    out.write(reinterpret_cast<char const *>(data), static_cast<qint64>(size));
  }
  try {
    CSimpleGriddedData grid(layout);
    grid.InitializeGridFile(CString(path));
    grid.LoadData();
    grid.BilinearInterpolation(lat, lon);
    grid.BilinearInterpolation(layout.south, layout.west);
    grid.BilinearInterpolation(layout.south + layout.rowSpacing * 0.5, layout.west + layout.columnSpacing * 0.5);
  } catch (EX::CVelmoraException const &) {
  }
  return 0;
}
