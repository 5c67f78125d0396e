// The velmora tool against cs2cs on one file of a million WGS 84 points,
// longitude first, converted to UTM zone 32N: each program reads the file,
// converts and writes ten decimals to a file, in the same run. cs2cs is given
// EPSG:4326 to EPSG:32632 with -r, since EPSG:4326 puts latitude first. The
// tool reads a small data file made here through the library's API.
#include "../tests/apps/SampleStore.h"
#include "RatioReport.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

namespace {

constexpr int kPoints = 1000000;

struct Files
{
  QTemporaryDir dir;
  std::string data, input, ours, theirs;
};

Files & Setup()
{
  static Files files = [] {
    Files f;
    QString const previous = QDir::currentPath();
    QDir::setCurrent(f.dir.path()); // a commit's backup lands here
    f.data = VelmoraTest::WriteSampleStore(f.dir.path(), VELMORA_SOURCE_DIR "/data/velmora.xsd").toStdString();
    QDir::setCurrent(previous);
    f.input = f.dir.filePath("points.txt").toStdString();
    f.ours = f.dir.filePath("velmora.out").toStdString();
    f.theirs = f.dir.filePath("cs2cs.out").toStdString();
    std::FILE * out = std::fopen(f.input.c_str(), "w");
    std::mt19937_64 rng(20261121);
    std::uniform_real_distribution<double> lon(6, 12), lat(0, 84);
    for (int i = 0; i < kPoints; ++i)
      std::fprintf(out, "%.9f %.9f\n", lon(rng), lat(rng));
    std::fclose(out);
    return f;
  }();
  return files;
}

void Time(benchmark::State & state, std::string const & command)
{
  for (auto _ : state) {
    auto const start = std::chrono::steady_clock::now();
    int const status = std::system(command.c_str());
    auto const stop = std::chrono::steady_clock::now();
    if (status != 0) {
      state.SkipWithError(("failed: " + command).c_str());
      return;
    }
    state.SetIterationTime(std::chrono::duration<double>(stop - start).count());
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_Velmora_Cli(benchmark::State & state)
{
  Files const & f = Setup();
  Time(state, "QT_QPA_PLATFORM=offscreen '" VELMORA_CLI_PATH "' convert --data '" + f.data +
                "' --from EPSG:4326 --to EPSG:32632 --precision 10 < '" + f.input + "' > '" + f.ours + "'");
}

void BM_Proj_Cs2cs(benchmark::State & state)
{
  Files const & f = Setup();
  Time(state, "cs2cs -r -d 10 EPSG:4326 EPSG:32632 < '" + f.input + "' > '" + f.theirs + "'");
}

BENCHMARK(BM_Velmora_Cli)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);
BENCHMARK(BM_Proj_Cs2cs)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);

} // namespace

int main(int argc, char ** argv)
{
  return VelmoraBench::RunWithRatios(argc, argv,
                                     {{"1M points, file to file", "BM_Velmora_Cli/iterations:3/manual_time",
                                       "BM_Proj_Cs2cs/iterations:3/manual_time"}},
                                     [] { Setup(); });
}
