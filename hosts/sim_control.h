#ifndef HOSTS_SIM_CONTROL_H_
#define HOSTS_SIM_CONTROL_H_

#include <functional>
#include <memory>
#include <span>
#include <string_view>

#include "hosts/sim_host.h"
#include "qorvel/platform/dispatch.h"

namespace qorvel::hosts {

// The class name a script creates the control by.
inline constexpr const char* kSimControlClass = "QorvelSim.Control";

// The simulated hosts for a script that has only automation objects: what qvsh's Sim table
// gives, as methods of one object. The first argument names the host, "Zebrin", "Tarvik" or
// "Ulmora" (or the class name), meaning the newest simulator of it started in the current
// environment; a simulated object itself (a host, a document) goes as well. Lists come back as
// arrays of Variant from 0, the only arrays a script can index, and a left-out optional argument
// (Empty) takes its default.
class SimControl : public Dispatch {
 public:
  // What the program that serves the control does beyond the simulators.
  struct Hooks {
    // Ends the program, after Quit has ended every simulator.
    std::function<void()> quit;
    // Hears of each simulator that Launch starts, as the program started by that name would.
    std::function<void(const std::shared_ptr<SimHost>&)> launched;
  };
  explicit SimControl(Hooks hooks = {});

  Variant Invoke(std::string_view member, CallKind kind, std::span<Variant> args) override;
  MemberShape Shape(std::string_view member) const override;

 private:
  Hooks hooks_;
};

}  // namespace qorvel::hosts

#endif  // HOSTS_SIM_CONTROL_H_
