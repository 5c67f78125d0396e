// The tool's point lines: the input as standard input would give it, read in
// small blocks so that lines cross the block edges, each line parsed and its
// numbers printed as the tool prints them.
#include "PointText.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

using namespace VelmoraCli;

namespace {
constexpr std::size_t kBlockSize = 64;
std::FILE * g_sink = nullptr;
} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
  g_sink = std::fopen("/dev/null", "w");
  return g_sink ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size)
{
  int const fd = ::memfd_create("points", 0);
  if (fd < 0 || ::write(fd, data, size) != static_cast<ssize_t>(size) || ::lseek(fd, 0, SEEK_SET) != 0)
    std::abort();
  LineReader reader(fd, kBlockSize);
  OutputBuffer out(g_sink, kBlockSize);
  std::string_view line;
  while (reader.Next(line)) {
    double values[3];
    int count = 0;
    if (ParsePoint(line, values, count) != LineKind::kPoint)
      continue;
    for (int i = 0; i < count; ++i) {
      out.AppendFixed(values[i], 9);
      out.Append(' ');
    }
    out.Append('\n');
  }
  ::close(fd);
  return 0;
}
