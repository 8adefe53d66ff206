// Emptying a Collection one Remove at a time, from the front and from the back: a client that
// drains a list from item 1 should pay no more per removal than one that drains it from the end.
#include <benchmark/benchmark.h>

#include "qorvel/platform/collection.h"

namespace {

using namespace qorvel;

void BM_EmptyCollection(benchmark::State& state, bool from_front) {
  const int32_t size = static_cast<int32_t>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    Collection list;
    for (int32_t i = 1; i <= size; ++i) list.Add(Variant(i));
    state.ResumeTiming();
    for (int32_t left = size; left > 0; --left) list.Remove(Variant(from_front ? 1 : left));
  }
  state.counters["per_removal"] = benchmark::Counter(
      size, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK_CAPTURE(BM_EmptyCollection, front, true)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_EmptyCollection, back, false)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
