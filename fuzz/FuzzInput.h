#pragma once
// What the fuzz targets share: reading values off the front of an input.
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace VelmoraFuzz {

// The next value of the input, zero-filled once it runs out; the input moves on.
template <class T>
T Take(std::uint8_t const *& data, std::size_t & size)
{
  T value{};
  std::size_t const n = size < sizeof value ? size : sizeof value;
  std::memcpy(&value, data, n);
  data += n;
  size -= n;
  return value;
}

} // namespace VelmoraFuzz
