#include "hosts/simulators.h"

#include <mutex>

namespace qorvel::hosts {
namespace {

constexpr std::string_view kDefaultReg = R"(REGEDIT4

; Installs the simulated hosts where the controls look for the real programs.

[HKEY_LOCAL_MACHINE\SOFTWARE\Halvern\Exec\zebrin]
"CurrentVersion"="2300"

[HKEY_LOCAL_MACHINE\SOFTWARE\Halvern\zebrin\2300]
"ExecutablePath"="C:\\Program Files\\Halvern\\Zebrin\\2300\\zebrin.exe"

[HKEY_LOCAL_MACHINE\SOFTWARE\Halvern\Exec\tarvik]
"CurrentVersion"="2620"

[HKEY_LOCAL_MACHINE\SOFTWARE\Halvern\tarvik\2620]
"ExecutablePath"="C:\\Program Files\\Halvern\\Tarvik\\2620\\tarvik.exe"
)";

std::mutex started_mu;
std::vector<std::shared_ptr<SimHost>> started;

template <class Sim>
std::shared_ptr<Sim> Track(std::shared_ptr<Sim> sim) {
  std::lock_guard lock(started_mu);
  started.push_back(sim);
  return sim;
}

template <class Sim>
std::shared_ptr<Sim> Run(std::chrono::milliseconds start_delay) {
  auto sim = Track(std::make_shared<Sim>());
  sim->RegisterRunning(Env::Current(), start_delay);
  return sim;
}

}  // namespace

std::shared_ptr<SimZebrin> RunZebrin(std::chrono::milliseconds start_delay) {
  return Run<SimZebrin>(start_delay);
}

std::shared_ptr<SimTarvik> RunTarvik(std::chrono::milliseconds start_delay) {
  return Run<SimTarvik>(start_delay);
}

void InstallSimulatedHosts(std::chrono::milliseconds start_delay) {
  {
    std::lock_guard lock(started_mu);
    started.clear();
  }
  Env& env = Env::Current();
  env.registry().LoadRegText(kDefaultReg, "simulated_hosts.reg");
  env.launcher().RegisterSimulated(kZebrinProgram, [start_delay] { RunZebrin(start_delay); });
  env.launcher().RegisterSimulated(kTarvikProgram, [start_delay] { RunTarvik(start_delay); });
  env.running_objects().RegisterClassServer("Zebrin.Document",
                                            [] { return Track(std::make_shared<SimZebrin>()); });
  env.running_objects().RegisterClassServer("Tarvik.Document",
                                            [] { return Track(std::make_shared<SimTarvik>()); });
}

std::string_view DefaultRegText() { return kDefaultReg; }

std::vector<std::shared_ptr<SimHost>> StartedHosts() {
  std::lock_guard lock(started_mu);
  return started;
}

std::shared_ptr<SimHost> LastStarted(std::string_view class_name) {
  std::lock_guard lock(started_mu);
  for (auto it = started.rbegin(); it != started.rend(); ++it) {
    if ((*it)->class_name() == class_name) return *it;
  }
  return nullptr;
}

}  // namespace qorvel::hosts
