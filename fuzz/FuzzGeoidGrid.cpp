// The geoid grid readers: the first byte picks the format (titled or binary
// NGS files in a folder, the Ordnance Survey's shift records, or the EGM96
// raster), the next eight a place; the rest is the file.
#include <velmora/foundation/VelmoraException.h>
#include <velmora/vertical/HeightModels.h>
#include <velmora/vertical/VerticalDatum.h>

#include <QDir>
#include "FuzzInput.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace Velmora;
using VelmoraFuzz::Take;
using namespace Velmora::CS::VR;

namespace {

QTemporaryDir * g_dir = nullptr;


} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
  g_dir = new QTemporaryDir;
  QDir(g_dir->path()).mkdir("ngs");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size)
{
  std::uint8_t const kind = Take<std::uint8_t>(data, size) % 5;
  double const lon = Take<float>(data, size), lat = Take<float>(data, size);
  QString const folder = g_dir->filePath("ngs");
  QString const file = kind < 3 ? folder + "/grid.g" : g_dir->filePath("grid.dat");
  {
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate))
      std::abort();
    out.write(reinterpret_cast<char const *>(data), static_cast<qint64>(size));
  }
  std::unique_ptr<CHeightModel> model;
  std::unique_ptr<CVerticalDatum> datum;
  switch (kind) {
  case 0: model = std::make_unique<CGEOID96>(); break;
  case 1: model = std::make_unique<CGEOID03>(); break;
  case 2: datum = std::make_unique<CNAVD88>(); break;
  case 3: model = std::make_unique<COSGM02>(); break;
  default: model = std::make_unique<CEGM96>(); break;
  }
  CParameterCollection & p = model ? model->GetParameters() : datum->GetParameters();
  p.SetString(CString("path"), CString(kind < 3 ? folder : g_dir->path()));
  if (kind < 3)
    p.SetString(CString("extension"), CString(".g"));
  else
    p.SetString(CString("file"), CString("grid.dat"));
  if (kind == 3) {
    CS::CHorizontalDatum airy;
    airy.GetEllipsoid().GetSemiMajor().SetValue(6377563.396);
    airy.GetEllipsoid().SetInvFlattening(299.3249646);
    model->SetHorizontalDatum(airy);
  }
  for (int i = 0; i < 2; ++i) {
    try {
      ML::CGeodeticPoint const point(lon + i * 0.3, lat - i * 0.2, 0.0);
      model ? model->Interpolate(point) : datum->Interpolate(point);
    } catch (EX::CVelmoraException const &) {
    }
  }
  return 0;
}
