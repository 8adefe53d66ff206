#ifndef HOSTS_SIMULATORS_H_
#define HOSTS_SIMULATORS_H_

#include <chrono>
#include <memory>
#include <string_view>
#include <vector>

#include "hosts/sim_host.h"
#include "hosts/sim_tarvik.h"
#include "hosts/sim_zebrin.h"

namespace qorvel::hosts {

// A new simulator registered as running in the current environment, visible to BindRunning
// after `start_delay`.
std::shared_ptr<SimZebrin> RunZebrin(std::chrono::milliseconds start_delay = {});
std::shared_ptr<SimTarvik> RunTarvik(std::chrono::milliseconds start_delay = {});

// Installs the simulated programs in the current environment as the real ones would be: the
// registry entries of simulated_hosts.reg, launcher paths that start a simulator (registered as
// running after `start_delay`), and class servers that create new instances.
void InstallSimulatedHosts(std::chrono::milliseconds start_delay = {});

// The text of simulated_hosts.reg, built into the program.
std::string_view DefaultRegText();

// The simulators started so far through RunZebrin/RunTarvik, the launcher or a class server,
// oldest first; InstallSimulatedHosts starts a new list.
std::vector<std::shared_ptr<SimHost>> StartedHosts();
// The newest started simulator of a class, or nullptr.
std::shared_ptr<SimHost> LastStarted(std::string_view class_name);

}  // namespace qorvel::hosts

#endif  // HOSTS_SIMULATORS_H_
