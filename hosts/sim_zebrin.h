#ifndef HOSTS_SIM_ZEBRIN_H_
#define HOSTS_SIM_ZEBRIN_H_

#include <string>

#include "hosts/sim_host.h"

namespace qorvel::hosts {

// The simulated Zebrin: a bare command target. It takes any command that isn't blank, keeps the
// setting of its information window, and answers "ECHO <text>" and "PRINT VERSION" with output.
class SimZebrin : public SimHost {
 public:
  static constexpr int32_t kDefaultVersion = 2300;
  SimZebrin();

  bool information_window() const;
  void set_information_window(bool on);

 protected:
  std::string RunCommand(const std::string& command) override;
  const SimMembers& members() const override;

 private:
  bool information_window_ = false;
};

}  // namespace qorvel::hosts

#endif  // HOSTS_SIM_ZEBRIN_H_
