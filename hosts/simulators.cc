#include "hosts/simulators.h"

#include "hosts/host_table.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"

namespace qorvel::hosts {
namespace {

// Kept equal to simulated_hosts.reg, so the installation works wherever the program runs.
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

template <class Sim>
std::shared_ptr<Sim> New(Env& env) {
  auto sim = std::make_shared<Sim>();
  HostTable::Of(env)->AddStarted(sim);
  return sim;
}

template <class Sim>
std::shared_ptr<Sim> Run(Env& env, std::chrono::milliseconds start_delay) {
  auto sim = New<Sim>(env);
  sim->RegisterRunning(env, start_delay);
  return sim;
}

// A program started by the launcher takes the delay in force when it starts.
template <class Sim>
void Launch(Env& env) {
  Run<Sim>(env, HostTable::Of(env)->start_delay());
}

}  // namespace

std::shared_ptr<SimZebrin> RunZebrin(std::chrono::milliseconds start_delay) {
  return Run<SimZebrin>(Env::Current(), start_delay);
}

std::shared_ptr<SimTarvik> RunTarvik(std::chrono::milliseconds start_delay) {
  return Run<SimTarvik>(Env::Current(), start_delay);
}

std::shared_ptr<SimUlmora> RunUlmora(std::chrono::milliseconds start_delay) {
  return Run<SimUlmora>(Env::Current(), start_delay);
}

std::shared_ptr<SimZebrin> NewZebrin() { return New<SimZebrin>(Env::Current()); }

std::shared_ptr<SimTarvik> NewTarvik() { return New<SimTarvik>(Env::Current()); }

// The launcher and the class servers belong to `env`, so they may keep a reference to it.
void InstallSimulatedHosts(std::chrono::milliseconds start_delay) {
  Env& env = Env::Current();
  PortableEnv* portable = PortableEnvOf(env);
  if (portable == nullptr) {
    Raise(err::kInvalidCall, "The simulated hosts run on the portable platform only");
  }
  HostTable::Of(env)->set_start_delay(start_delay);
  portable->registry().LoadRegText(kDefaultReg, "simulated_hosts.reg");
  portable->launcher().InstallProgram(kZebrinProgram, [&env] { Launch<SimZebrin>(env); });
  portable->launcher().InstallProgram(kTarvikProgram, [&env] { Launch<SimTarvik>(env); });
  env.running_objects().RegisterClassServer(kZebrinClass, [&env] { return New<SimZebrin>(env); });
  env.running_objects().RegisterClassServer(kTarvikClass, [&env] { return New<SimTarvik>(env); });
}

void SetStartDelay(std::chrono::milliseconds start_delay) {
  HostTable::Of(Env::Current())->set_start_delay(start_delay);
}

std::string_view DefaultRegText() { return kDefaultReg; }

std::vector<std::shared_ptr<SimHost>> StartedHosts() {
  return HostTable::Of(Env::Current())->started();
}

std::shared_ptr<SimHost> LastStarted(std::string_view class_name) {
  const std::vector<std::shared_ptr<SimHost>> started = StartedHosts();
  for (auto it = started.rbegin(); it != started.rend(); ++it) {
    if (EqualsNoCase((*it)->class_name(), class_name)) return *it;
  }
  return nullptr;
}

std::shared_ptr<SimZebrin> LastZebrin() {
  return std::dynamic_pointer_cast<SimZebrin>(LastStarted(kZebrinClass));
}

std::shared_ptr<SimTarvik> LastTarvik() {
  return std::dynamic_pointer_cast<SimTarvik>(LastStarted(kTarvikClass));
}

std::shared_ptr<SimUlmora> LastUlmora() {
  return std::dynamic_pointer_cast<SimUlmora>(LastStarted(kUlmoraClass));
}

}  // namespace qorvel::hosts
