// The cost of one HostExecute through the link to a simulated host, beside a direct call of the
// same host member: the difference is what the link adds (copy, held-back errors, late binding).
#include <benchmark/benchmark.h>

#include "hosts/simulators.h"
#include "qorvel/frame/host_link.h"
#include "qorvel/platform/env_testing.h"

namespace {

using namespace qorvel;

void BM_HostExecuteThroughLink(benchmark::State& state) {
  ScopedEnv env;
  auto host = hosts::RunZebrin();
  HostLink& link = HostLink::Of(Host::kZebrin);
  link.ConnectToRunning();
  for (auto _ : state) {
    benchmark::DoNotOptimize(link.HostExecute("ADVANCEDOPTS WINDOWS INFORMATION ON"));
    if (state.iterations() % 4096 == 0) host->ClearLog();
  }
  link.Clear();
}
BENCHMARK(BM_HostExecuteThroughLink);

void BM_DirectHostCall(benchmark::State& state) {
  ScopedEnv env;
  auto host = hosts::RunZebrin();
  for (auto _ : state) {
    std::string command = "ADVANCEDOPTS WINDOWS INFORMATION ON";
    int32_t status = 0;
    Variant args[2] = {Variant::Ref(command), Variant::Ref(status)};
    benchmark::DoNotOptimize(host->Invoke("Execute", CallKind::kMethod, args));
    if (state.iterations() % 4096 == 0) host->ClearLog();
  }
}
BENCHMARK(BM_DirectHostCall);

}  // namespace
