#pragma once
// Runs the registered benchmarks and prints, for each pair of ours and PROJ's
// on the same input, the time per item and the ratio.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

namespace VelmoraBench {

struct RatioPair
{
  char const * what;
  char const * ours;
  char const * proj;
};

// Keeps the console output and notes each run's time per item, from the
// items-per-second rate that SetItemsProcessed gives.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
  void ReportRuns(std::vector<Run> const & runs) override
  {
    ConsoleReporter::ReportRuns(runs);
    for (Run const & run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred)
        continue;
      auto const rate = run.counters.find("items_per_second");
      if (rate != run.counters.end() && rate->second.value > 0)
        m_ns[run.benchmark_name()] = 1e9 / rate->second.value;
    }
  }

  double PerItemNs(std::string const & name) const
  {
    auto const t = m_ns.find(name);
    return t == m_ns.end() ? 0.0 : t->second;
  }

private:
  std::map<std::string, double> m_ns;
};

// Times `convert` on a fresh copy of `source` each iteration; the copy is
// made outside the timing. Items are the points of `source`.
template <class Point, class Convert>
void TimeOnCopies(benchmark::State & state, std::vector<Point> const & source, Convert && convert)
{
  std::vector<Point> points;
  for (auto _ : state) {
    state.PauseTiming();
    points = source;
    state.ResumeTiming();
    convert(points);
    benchmark::DoNotOptimize(points.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(source.size()));
}

inline int RunWithRatios(int argc, char ** argv, std::initializer_list<RatioPair> pairs, void (*prepare)())
{
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  prepare(); // build the input before any timing
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::printf("\n%-24s %14s %14s %16s\n", "per point", "Velmora ns", "PROJ ns", "Velmora / PROJ");
  for (RatioPair const & p : pairs) {
    double const ours = reporter.PerItemNs(p.ours);
    double const proj = reporter.PerItemNs(p.proj);
    if (ours > 0 && proj > 0)
      std::printf("%-24s %14.1f %14.1f %16.2f\n", p.what, ours, proj, ours / proj);
  }
  benchmark::Shutdown();
  return 0;
}

} // namespace VelmoraBench
