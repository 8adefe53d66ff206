// The filtered selection of the modelling control over 1,000 to 100,000 selected entities that
// all match, beside the host's own answers to the same expressions. The arrays grow at every
// match, so the control's own time per entity should stay flat as the selection grows; what it
// adds to the host's Evaluate is its part of the work.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "hosts/simulators.h"
#include "qorvel/frame/host_link.h"
#include "qorvel/modelling/ulmora27.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env_testing.h"

namespace {

using namespace qorvel;

constexpr int32_t kLines = 8;  // the filter bit of "Line"

// A simulated Ulmora whose selection holds `count` lines, and a connected control.
struct SelectionSession {
  explicit SelectionSession(int32_t count) {
    std::vector<std::string> names;
    for (int32_t i = 0; i < count; ++i) {
      names.push_back("L" + std::to_string(i));
      host->AddEntity({names.back(), "Line", {}});
    }
    host->Select(names);
    control.Initialize();
    control.Connect();
    host->ClearLog();
  }
  ~SelectionSession() { control.Terminate(); }

  ScopedEnv env;
  std::shared_ptr<hosts::SimUlmora> host = hosts::RunUlmora();
  Ulmora27 control;
};

void PerEntity(benchmark::State& state) {
  state.counters["per_entity"] =
      benchmark::Counter(double(state.range(0)), benchmark::Counter::kIsIterationInvariantRate |
                                                     benchmark::Counter::kInvert);
}

// The baseline: the host's Evaluate of the expressions the control asks, the count and each
// entity's type and name, made beforehand and sent through the same link.
void BM_HostEvaluateSelection(benchmark::State& state) {
  const int32_t count = int32_t(state.range(0));
  SelectionSession session(count);
  std::vector<std::string> asked = {"SELECTION.NUMBER"};
  for (int32_t i = 0; i < count; ++i) {
    asked.push_back("SELECTION.TYPE[" + std::to_string(i) + "]");
    asked.push_back("SELECTION.NAME[" + std::to_string(i) + "]");
  }
  const AutomationObject& host = HostLink::Of(Host::kUlmora).object();
  for (auto _ : state) {
    for (std::string& expression : asked) {
      std::vector<Variant> args{Variant::Ref(expression)};
      benchmark::DoNotOptimize(CallMember(host, "Evaluate", args));
    }
    state.PauseTiming();
    session.host->ClearLog();
    state.ResumeTiming();
  }
  PerEntity(state);
}

void BM_GetFilteredSelection(benchmark::State& state) {
  const int32_t count = int32_t(state.range(0));
  SelectionSession session(count);
  for (auto _ : state) {
    SafeArray names, types;
    int32_t number = 0, filter = kLines;
    session.control.GetFilteredSelection(names, types, number, filter);
    if (number != count) std::abort();
    state.PauseTiming();
    session.host->ClearLog();
    state.ResumeTiming();
  }
  PerEntity(state);
}

BENCHMARK(BM_HostEvaluateSelection)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GetFilteredSelection)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
