// The text protocol of the machining control beside the least work possible on the same text:
// one pass that splits it. The ratio is what the protocol's rules cost on top of reading.
#include <benchmark/benchmark.h>

#include "hosts/simulators.h"
#include "qorvel/machining/tarvik3.h"
#include "qorvel/machining/tarvik_stuff.h"
#include "qorvel/platform/collection.h"
#include "qorvel/platform/env_testing.h"

namespace {

using namespace qorvel;

const std::string kTypicalModel =
    "Minimum: X -50.000 Y -25.000 Z 0.000\r\nMaximum: X 50.000 Y 25.000 Z 30.000\r\n"
    "Components: 12\r\n";

std::string LongReply() {
  std::string text = "Minimum: X -50.000 Y -25.000 Z 0.000\r\n";
  text += std::string(20000, ' ');
  text += "Maximum: X 50.000      Y 25.000          Z 30.000\r\n";
  text += std::string(10000, ' ');
  return text + "Components: 12\r\n";
}

std::string ToolpathReply(int count) {
  std::string text = std::to_string(count) + " toolpaths\r\n";
  for (int i = 0; i < count; ++i) {
    text += (i == count / 2 ? "*'Toolpath " : "'Toolpath ") + std::to_string(i) + "'\r\n";
  }
  return text;
}

// The baseline: one pass that cuts the text at every blank and line break.
size_t SplitOnce(std::string_view text) {
  size_t fields = 0;
  size_t start = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == ' ' || text[i] == '\n') {
      fields += i > start;
      start = i + 1;
    }
  }
  return fields + (start < text.size());
}

void BM_SplitBaselineTypical(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(SplitOnce(kTypicalModel));
}
BENCHMARK(BM_SplitBaselineTypical);

void BM_CollapseBlanksTypical(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(tarvik_stuff::CollapseBlanks(kTypicalModel));
}
BENCHMARK(BM_CollapseBlanksTypical);

void BM_SplitBaselineLong(benchmark::State& state) {
  const std::string text = LongReply();
  for (auto _ : state) benchmark::DoNotOptimize(SplitOnce(text));
}
BENCHMARK(BM_SplitBaselineLong);

void BM_CollapseBlanksLong(benchmark::State& state) {
  const std::string text = LongReply();
  for (auto _ : state) benchmark::DoNotOptimize(tarvik_stuff::CollapseBlanks(text));
}
BENCHMARK(BM_CollapseBlanksLong);

// ReadExtents goes through the link to a simulated host that answers with a scripted reply;
// the host's own cost is measured apart with the same reply handed back unparsed.
void ReadExtentsWith(benchmark::State& state, const std::string& reply, bool parse) {
  ScopedEnv env;
  auto host = hosts::RunTarvik();
  host->ScriptReply("SIZE MODEL", reply);
  HostLink& link = HostLink::Of(Host::kTarvik);
  link.ConnectToRunning();
  SafeArray values;
  for (auto _ : state) {
    std::string name = ";";
    if (parse) {
      benchmark::DoNotOptimize(tarvik_stuff::ReadExtents(1, values, name));
    } else {
      benchmark::DoNotOptimize(SplitOnce(tarvik_stuff::QuietHostQuery("SIZE MODEL")));
    }
    host->ClearLog();
  }
  link.Clear();
}

void BM_QueryAndSplitTypical(benchmark::State& s) { ReadExtentsWith(s, kTypicalModel, false); }
void BM_ReadExtentsTypical(benchmark::State& s) { ReadExtentsWith(s, kTypicalModel, true); }
void BM_QueryAndSplitLong(benchmark::State& s) { ReadExtentsWith(s, LongReply(), false); }
void BM_ReadExtentsLong(benchmark::State& s) { ReadExtentsWith(s, LongReply(), true); }
BENCHMARK(BM_QueryAndSplitTypical);
BENCHMARK(BM_ReadExtentsTypical);
BENCHMARK(BM_QueryAndSplitLong);
BENCHMARK(BM_ReadExtentsLong);

void BM_SplitBaselineToolpaths(benchmark::State& state) {
  const std::string text = ToolpathReply(100000);
  for (auto _ : state) benchmark::DoNotOptimize(SplitOnce(text));
}
BENCHMARK(BM_SplitBaselineToolpaths)->Unit(benchmark::kMillisecond);

void BM_GetToolpathList100k(benchmark::State& state) {
  ScopedEnv env;
  auto host = hosts::RunTarvik();
  host->ScriptReply("PRINT ENTITY TOOLPATHS", ToolpathReply(100000));
  HostLink::Of(Host::kTarvik).Clear();
  Tarvik3 control;
  control.Initialize();
  int32_t bind_only = 0;
  control.Connect(bind_only);
  AutomationObject list = NewCollection();
  int32_t active = 0;
  for (auto _ : state) {
    control.GetToolpathList(list, active);
    host->ClearLog();
  }
  control.Terminate();
}
BENCHMARK(BM_GetToolpathList100k)->Unit(benchmark::kMillisecond);

}  // namespace
