#ifndef WINDOWS_HOSTS_PROGRAM_RUNNING_OBJECTS_H_
#define WINDOWS_HOSTS_PROGRAM_RUNNING_OBJECTS_H_

#include <map>
#include <set>
#include <string>
#include <string_view>

#include "qorvel/platform/env.h"
#include "qorvel/platform/running_objects.h"

namespace qorvel::win {

// The running-object table as the simulators see it inside the program. Classes the registry
// knows go to the system's table, and one asked to become visible later waits here until
// RegisterDue, as a program still starting up would. The simulators' own bookkeeping, which no
// other process may bind to, stays in the process.
class ProgramRunningObjects final : public RunningObjects {
 public:
  explicit ProgramRunningObjects(RunningObjects& system) : system_(system) {}

  void Register(const std::string& class_name, AutomationObject object,
                Clock::time_point visible_from = {}) override;
  void Revoke(const std::string& class_name) override;
  AutomationObject BindRunning(std::string_view class_name) const override;
  void RegisterClassServer(const std::string& class_name, Factory factory) override;
  void RevokeClassServer(const std::string& class_name) override;
  AutomationObject CreateNew(std::string_view class_name) const override;

  // Registers in the system's table what has waited long enough.
  void RegisterDue();
  // How many objects the program holds in the system's table now.
  size_t registered() const { return registered_.size(); }
  // Revokes everything the program registered or serves.
  void RevokeAll();

 private:
  struct Pending {
    AutomationObject object;
    Clock::time_point visible_from;
  };
  static bool Published(std::string_view class_name);  // the registry knows its ProgID

  RunningObjects& system_;
  MemoryRunningObjects own_;
  std::map<std::string, Pending> pending_;  // lower-cased class name
  std::set<std::string> registered_;        // lower-cased class name
  std::set<std::string> served_;            // class names as served
};

// The Windows environment with the program's running-object table.
class ProgramEnv final : public EnvWrapper {
 public:
  explicit ProgramEnv(Env* system) : EnvWrapper(system), running_(system->running_objects()) {}
  ProgramRunningObjects& running_objects() override { return running_; }

 private:
  ProgramRunningObjects running_;
};

}  // namespace qorvel::win

#endif  // WINDOWS_HOSTS_PROGRAM_RUNNING_OBJECTS_H_
