// The inner loop of bulk conversion: setting and reading point internals, and
// filling and reading a collection of a million points. Reports time per
// point and the collection's heap bytes per point.
#include <velmora/measures/CoordPointCollection.h>

#include <benchmark/benchmark.h>

#include <malloc.h>

using namespace Velmora::ML;

namespace {
constexpr long kPoints = 1'000'000;

size_t HeapInUse()
{
  struct mallinfo2 const info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

void PointSetGetInternals(benchmark::State & state)
{
  CGeodeticPoint point(3);
  double lon = 0.0, lat = 0.0, hgt = 0.0, sum = 0.0;
  for (auto _ : state) {
    point.SetInternals(lon, 45.0, 100.0);
    point.GetInternals(lon, lat, hgt);
    lon += 1e-9;
    sum += lat;
  }
  benchmark::DoNotOptimize(sum);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(PointSetGetInternals);

void CollectionAddInternals(benchmark::State & state)
{
  for (auto _ : state) {
    size_t const before = HeapInUse();
    CCoordPointCollection collection(CGeodeticPoint(3));
    collection.Reserve(kPoints);
    for (long i = 0; i < kPoints; ++i)
      collection.AddInternals(i * 1e-6, 45.0, 100.0);
    size_t const after = HeapInUse();
    state.counters["bytes_per_point"] = static_cast<double>(after - before) / kPoints;
    benchmark::DoNotOptimize(collection.Count());
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(CollectionAddInternals)->Unit(benchmark::kMillisecond);

void CollectionGetInternals(benchmark::State & state)
{
  CCoordPointCollection collection(CGeodeticPoint(3));
  for (long i = 0; i < kPoints; ++i)
    collection.AddInternals(i * 1e-6, 45.0, 100.0);
  double x, y, z, sum = 0.0;
  for (auto _ : state) {
    for (long i = 0; i < kPoints; ++i) {
      collection.GetInternals(i, x, y, z);
      sum += x;
    }
  }
  benchmark::DoNotOptimize(sum);
  state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(CollectionGetInternals)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
