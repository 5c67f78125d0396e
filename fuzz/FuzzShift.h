#pragma once
// What the grid shift fuzz targets share: the input written to a file the
// reader opens, and a shift tried both ways with its failures swallowed.
#include <velmora/foundation/VelmoraException.h>
#include <velmora/transforms/datumshifts/DatumShift.h>

#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace VelmoraFuzz {

// The folder of the files the targets write, for the life of the process.
inline QTemporaryDir const & Scratch()
{
  static QTemporaryDir const dir;
  return dir;
}

inline QString Write(char const * name, std::uint8_t const * data, std::size_t size)
{
  QString const path = Scratch().filePath(name);
  QFile out(path);
  if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate))
    std::abort();
  out.write(reinterpret_cast<char const *>(data), static_cast<qint64>(size));
  return path;
}

inline void Shift(Velmora::CT::DS::CDatumShift const & shift, double lon, double lat)
{
  for (bool back : {false, true}) {
    double x = lon, y = lat;
    try {
      back ? shift.ShiftBack(x, y) : shift.ShiftForward(x, y);
    } catch (Velmora::EX::CVelmoraException const &) {
    }
  }
}

} // namespace VelmoraFuzz
