#include "hosts/sim_zebrin.h"

#include "qorvel/platform/error.h"

namespace qorvel::hosts {

SimZebrin::SimZebrin() : SimHost(kZebrinClass) { set_version(kDefaultVersion); }

const SimMembers& SimZebrin::members() const {
  static const SimMembers members(SessionMembers(), {ExecuteExMember()});
  return members;
}

bool SimZebrin::information_window() const {
  std::lock_guard lock(mu_);
  return information_window_;
}

void SimZebrin::set_information_window(bool on) {
  std::lock_guard lock(mu_);
  information_window_ = on;
}

std::string SimZebrin::RunCommand(const std::string& command) {
  const std::string upper = UpperCase(command);
  if (upper.find_first_not_of(' ') == std::string::npos) {
    Raise(kCommandRejected, "Empty command");
  }
  if (upper == "ADVANCEDOPTS WINDOWS INFORMATION ON") {
    information_window_ = true;
  } else if (upper == "ADVANCEDOPTS WINDOWS INFORMATION OFF") {
    information_window_ = false;
  } else if (upper.starts_with("ECHO ")) {
    return command.substr(5) + "\r\n";
  } else if (upper == "PRINT VERSION") {
    return "Zebrin " + version().ToText() + "\r\n";
  }
  return "";
}

}  // namespace qorvel::hosts
