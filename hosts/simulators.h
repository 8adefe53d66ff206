#ifndef HOSTS_SIMULATORS_H_
#define HOSTS_SIMULATORS_H_

#include <chrono>
#include <memory>
#include <string_view>
#include <vector>

#include "hosts/sim_host.h"
#include "hosts/sim_tarvik.h"
#include "hosts/sim_ulmora.h"
#include "hosts/sim_zebrin.h"

namespace qorvel::hosts {

// A new simulator registered as running in the current environment, visible to BindRunning
// after `start_delay`.
std::shared_ptr<SimZebrin> RunZebrin(std::chrono::milliseconds start_delay = {});
std::shared_ptr<SimTarvik> RunTarvik(std::chrono::milliseconds start_delay = {});
// The modelling host has no launcher path, registry entries or class server: the control
// can't start it, so this is the only way it runs.
std::shared_ptr<SimUlmora> RunUlmora(std::chrono::milliseconds start_delay = {});

// A new simulator as a class server makes it: started, not registered as running.
std::shared_ptr<SimZebrin> NewZebrin();
std::shared_ptr<SimTarvik> NewTarvik();

// Installs the simulated programs in the current environment as the real ones would be: the
// registry entries of simulated_hosts.reg, launcher paths (kZebrinProgram, kTarvikProgram)
// that start a simulator registered as running after `start_delay`, and class servers that
// create new instances, not registered as running.
void InstallSimulatedHosts(std::chrono::milliseconds start_delay = {});
// The start-up delay of the programs that the launcher starts from now on.
void SetStartDelay(std::chrono::milliseconds start_delay);

// The text of simulated_hosts.reg, built into the program.
std::string_view DefaultRegText();

// The simulators of the current environment started so far through RunZebrin, RunTarvik,
// RunUlmora, the launcher or a class server, oldest first.
std::vector<std::shared_ptr<SimHost>> StartedHosts();
// The newest started simulator of a class (named in any case), or nullptr.
std::shared_ptr<SimHost> LastStarted(std::string_view class_name);
std::shared_ptr<SimZebrin> LastZebrin();
std::shared_ptr<SimTarvik> LastTarvik();
std::shared_ptr<SimUlmora> LastUlmora();

}  // namespace qorvel::hosts

#endif  // HOSTS_SIMULATORS_H_
