// The cost of one HostExecute through the link to a simulated host, beside a direct call of the
// same host member: the difference is what the link adds (copy, held-back errors, late binding).
#include <benchmark/benchmark.h>

#include "hosts/simulators.h"
#include "qorvel/frame/control.h"
#include "qorvel/frame/host_link.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/session/zebrin_face.h"

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

// The control's member finds this thread's link in the installed environment on every call.
void BM_ZebrinExecute(benchmark::State& state) {
  ScopedEnv env;
  auto host = hosts::RunZebrin();
  Zebrin zebrin;
  int32_t bind_only = 0;
  zebrin.Connect(bind_only);
  for (auto _ : state) {
    zebrin.Execute("ADVANCEDOPTS WINDOWS INFORMATION ON");
    if (state.iterations() % 4096 == 0) host->ClearLog();
  }
  zebrin.Disconnect();
}
BENCHMARK(BM_ZebrinExecute);

// A client's late-bound call: the member found by name, its argument converted once, the
// binding's adapter, then the control's member.
void BM_ExecuteThroughDispatchFace(benchmark::State& state) {
  ScopedEnv env;
  auto host = hosts::RunZebrin();
  AutomationObject zebrin = NewControl<Zebrin>();
  Call(zebrin, "Connect");
  for (auto _ : state) {
    Call(zebrin, "Execute", "ADVANCEDOPTS WINDOWS INFORMATION ON");
    if (state.iterations() % 4096 == 0) host->ClearLog();
  }
}
BENCHMARK(BM_ExecuteThroughDispatchFace);

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
