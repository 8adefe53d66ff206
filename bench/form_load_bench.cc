// Loading a form of many ValueBoxes: each name checked against all the others, each saved value
// checked before any control is made, then every control sited. The time per control should not
// grow with the number of controls (a full 16 MiB file once took a quarter of an hour).
#include <benchmark/benchmark.h>

#include <string>

#include "qorvel/platform/env_testing.h"
#include "qorvel/server/form.h"

namespace {

using namespace qorvel;

std::string FormOf(int64_t controls) {
  std::string text = "QorvelOLE form 1\n";
  for (int64_t i = 0; i < controls; ++i) {
    text += "Begin ValueBox Box" + std::to_string(i) + "\n  Value = Double " + std::to_string(i) +
            ".5\nEnd\n";
  }
  return text;
}

void BM_LoadForm(benchmark::State& state) {
  ScopedEnv env;
  const std::string text = FormOf(state.range(0));
  for (auto _ : state) {
    auto form = Form::FromText(text, "bench.frm");
    benchmark::DoNotOptimize(form.get());
    state.PauseTiming();
    form.reset();
    state.ResumeTiming();
  }
  state.SetComplexityN(state.range(0));
  state.counters["per_control"] =
      benchmark::Counter(double(state.range(0)), benchmark::Counter::kIsIterationInvariantRate |
                                                     benchmark::Counter::kInvert);
  state.counters["MB"] = double(text.size()) / 1e6;
}
BENCHMARK(BM_LoadForm)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMillisecond);

}  // namespace
