#include "hosts/sim_zebrin.h"

#include "qorvel/platform/error.h"

namespace qorvel::hosts {

SimZebrin::SimZebrin() : SimHost("Zebrin.Document") { set_version(kDefaultVersion); }

bool SimZebrin::information_window() const {
  std::lock_guard lock(mu_);
  return information_window_;
}

std::string SimZebrin::RunCommand(const std::string& command) {
  const std::string upper = Upper(command);
  if (upper == "ADVANCEDOPTS WINDOWS INFORMATION ON") {
    information_window_ = true;
    return "";
  }
  if (upper == "ADVANCEDOPTS WINDOWS INFORMATION OFF") {
    information_window_ = false;
    return "";
  }
  if (upper.rfind("ECHO ", 0) == 0) return command.substr(5) + "\r\n";
  if (upper == "PRINT VERSION") return "Zebrin " + std::to_string(kDefaultVersion) + "\r\n";
  if (upper.find_first_not_of(' ') == std::string::npos) {
    throw Error(1001, "Zebrin: empty command");
  }
  return "";
}

}  // namespace qorvel::hosts
