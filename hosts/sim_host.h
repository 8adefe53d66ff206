#ifndef HOSTS_SIM_HOST_H_
#define HOSTS_SIM_HOST_H_

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/sim_object.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/text.h"

namespace qorvel::hosts {

class HostTable;

// The error number a simulated host raises from Execute and ExecuteEx when it rejects a
// command; the description says why, as the host's command line would.
inline constexpr int32_t kCommandRejected = 1000;

// Refuses a command as a host's command line does: kCommandRejected with the reason.
[[noreturn]] void RejectCommand(const std::string& why);
// A number in a command, read by the regional settings; anything else refuses the command.
double CommandNumber(const std::string& word);

// A simulated host application: a simulated object that answers the session members (version,
// Busy, WindowState, Visible, Exit, Execute, and ExecuteEx where the host has it), takes
// scripted replies and failing commands, and registers in the running-object table. A concrete
// host supplies its command language in RunCommand and its table of members, built on
// SessionMembers().
class SimHost : public SimObject {
 public:
  // The command texts of Execute and ExecuteEx calls to the host itself, in order; with
  // `member` ("Execute" or "ExecuteEx", any case), only those sent through that member.
  std::vector<std::string> commands(std::string_view member = {}) const;

  // Faults.
  void set_version(Variant version);  // any value: 0, negative, beyond 16 bits, text
  Variant version() const;
  // Execute and ExecuteEx of `command` (matched without regard to case) take it without
  // running it, and ExecuteEx puts `output` in the output argument.
  void ScriptReply(const std::string& command, const std::string& output);
  // Execute and ExecuteEx of `command` (matched without regard to case) raise this error.
  void FailCommand(const std::string& command, int32_t number, const std::string& description);

  // Registers this host as running in `env`, visible to BindRunning after `delay` (a program
  // that is still starting up). Going away takes it out again.
  void RegisterRunning(Env& env, std::chrono::milliseconds delay);

  // Window and session state the members read and write.
  bool busy = false;
  VariantBool visible = VariantBool::kTrue;
  int16_t window_state = 1;
  bool exited = false;
  // Exit makes the host go away at once. When set, Exit only takes it out of the running-object
  // table and it goes on answering until GoAway: a program that needs a moment to close.
  bool linger_on_exit = false;

 protected:
  explicit SimHost(std::string class_name);

  // Runs one command of the host's language; returns its output. A command the host rejects
  // raises an Error, as the real host's Execute does. Runs under `mu_`.
  virtual std::string RunCommand(const std::string& command) = 0;

  // The session members, without ExecuteEx, which not every host has.
  static const SimMembers& SessionMembers();
  // ExecuteEx(command, status, output): Execute that puts the command's output in `output`.
  static SimMember ExecuteExMember();

  void ClearOwnFaults() override;  // scripted replies and failing commands
  void OnGoAway() override;        // leaves the running-object table

 private:
  struct Failure {
    int32_t number;
    std::string description;
  };

  // The session members' handlers.
  Variant GetVersion(std::span<Variant> args);
  Variant GetBusy(std::span<Variant> args);
  Variant GetWindowState(std::span<Variant> args);
  void PutWindowState(std::span<Variant> args);
  Variant GetVisible(std::span<Variant> args);
  void PutVisible(std::span<Variant> args);
  void Exit(std::span<Variant> args);
  void Execute(std::span<Variant> args);
  void ExecuteEx(std::span<Variant> args);

  std::string Command(const Variant& command);
  void Leave();  // out of the running-object table, under `mu_`

  Variant version_;
  std::map<std::string, std::string> scripted_;      // upper-cased command -> output
  std::map<std::string, Failure> failing_commands_;  // upper-cased command
  std::weak_ptr<HostTable> table_;                   // where this host is registered as running
};

// Where the simulated programs are "installed": launcher paths and registry entries match the
// default .reg file in hosts/.
// The automation class names the simulators register under, as the real programs do.
inline constexpr const char* kZebrinClass = "Zebrin.Document";
inline constexpr const char* kTarvikClass = "Tarvik.Document";
inline constexpr const char* kUlmoraClass = "Ulmora.Application";

inline constexpr const char* kZebrinProgram =
    "C:\\Program Files\\Halvern\\Zebrin\\2300\\zebrin.exe";
inline constexpr const char* kTarvikProgram =
    "C:\\Program Files\\Halvern\\Tarvik\\2620\\tarvik.exe";

}  // namespace qorvel::hosts

#endif  // HOSTS_SIM_HOST_H_
