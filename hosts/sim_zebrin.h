#ifndef HOSTS_SIM_ZEBRIN_H_
#define HOSTS_SIM_ZEBRIN_H_

#include <string>

#include "hosts/sim_host.h"

namespace qorvel::hosts {

// The simulated Zebrin: a bare command target. It takes any command, keeps the setting of its
// information window, and answers a few commands with output.
class SimZebrin : public SimHost {
 public:
  static constexpr int32_t kDefaultVersion = 2300;
  SimZebrin();

  bool information_window() const;

 protected:
  std::string RunCommand(const std::string& command) override;

 private:
  bool information_window_ = false;
};

}  // namespace qorvel::hosts

#endif  // HOSTS_SIM_ZEBRIN_H_
