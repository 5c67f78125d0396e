#pragma once
// Small raster files that the vertical tests write for themselves.
#include <velmora/vertical/SimpleGriddedData.h>

#include <QByteArray>
#include <QFile>
#include <QString>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

namespace VelmoraTest {

using Layout = Velmora::CS::VR::CSimpleGriddedData::Layout;
using Velmora::CS::VR::CSimpleGriddedData;

// The layouts of the library's rasters, as their publishers give them.
inline Layout IBERGEO95Layout()
{
  return {35.5, -10.0, 0.125, 0.125, 73, 121, CSimpleGriddedData::kSouthWestFirst, CSimpleGriddedData::kDoubleCell,
          false, 48, false, false};
}

// Where node (row, column) lies in the file, counted here independently of the library.
inline long FileIndex(Layout const & l, long row, long column)
{
  switch (l.order) {
  case 0: return (l.rows - row - 1) * l.columns + column;
  case 1: return l.columns * row + column;
  case 2: return (l.rows - row) * l.columns - column - 1;
  default: return (row + 1) * l.columns - column - 1;
  }
}

template <class T>
void Put(QByteArray & out, double value, bool swap)
{
  T const typed = static_cast<T>(value);
  char bytes[sizeof(T)];
  std::memcpy(bytes, &typed, sizeof(T));
  if (swap)
    std::reverse(bytes, bytes + sizeof(T));
  out.append(bytes, static_cast<int>(sizeof(T)));
}

// The file's bytes: a filler header of startOffset bytes, then every node's
// value in the layout's order, cell type and byte order.
inline QByteArray RasterBytes(Layout const & l, std::function<double(long, long)> const & value)
{
  std::vector<double> cells(static_cast<std::size_t>(l.rows * l.columns));
  for (long r = 0; r < l.rows; ++r)
    for (long c = 0; c < l.columns; ++c)
      cells[static_cast<std::size_t>(FileIndex(l, r, c))] = value(r, c);
  QByteArray out(static_cast<int>(l.startOffset), '\x5a');
  for (double v : cells) {
    switch (l.cellType) {
    case 0: Put<float>(out, v, l.swap); break;
    case 1: Put<double>(out, v, l.swap); break;
    case 2: Put<std::int16_t>(out, v, l.swap); break;
    case 3: Put<std::uint16_t>(out, v, l.swap); break;
    case 4: Put<std::int32_t>(out, v, l.swap); break;
    default: Put<std::uint32_t>(out, v, l.swap); break;
    }
  }
  return out;
}

inline bool WriteFile(QString const & name, QByteArray const & bytes)
{
  QFile file(name);
  return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace VelmoraTest
