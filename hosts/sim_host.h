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

#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/text.h"

namespace qorvel::hosts {

class HostTable;

// One call a simulated host received: the member name as sent, the kind, and the arguments as
// they arrived (references followed).
struct Call {
  std::string member;
  CallKind kind;
  std::vector<Variant> args;
};

// The error number a simulated host raises from Execute and ExecuteEx when it rejects a
// command; the description says why, as the host's command line would.
inline constexpr int32_t kCommandRejected = 1000;

// Refuses a command as a host's command line does: kCommandRejected with the reason.
[[noreturn]] void RejectCommand(const std::string& why);
// A number in a command, read by the regional settings; anything else refuses the command.
double CommandNumber(const std::string& word);

// The common part of a simulated host: a real automation object that logs every call, answers
// the session members (version, Busy, WindowState, Visible, Exit, Execute, ExecuteEx) and takes
// faults. A concrete host supplies its command language in RunCommand.
class SimHost : public Dispatch, public std::enable_shared_from_this<SimHost> {
 public:
  // A host without ExecuteEx (the modelling host has none) answers it as an unknown member.
  explicit SimHost(std::string class_name, bool has_execute_ex = true);
  Variant Invoke(std::string_view member, CallKind kind, std::span<Variant> args) final;
  MemberShape Shape(std::string_view member) const final;

  const std::string& class_name() const { return class_name_; }

  // The call log.
  std::vector<Call> log() const;
  // The command texts of Execute and ExecuteEx calls, in order; with `member` ("Execute" or
  // "ExecuteEx", any case), only those sent through that member.
  std::vector<std::string> commands(std::string_view member = {}) const;
  void ClearLog();

  // Faults.
  void set_version(Variant version);  // any value: 0, negative, beyond 16 bits, text
  Variant version() const;
  // Execute and ExecuteEx of `command` (matched without regard to case) take it without
  // running it, and ExecuteEx puts `output` in the output argument.
  void ScriptReply(const std::string& command, const std::string& output);
  // Execute and ExecuteEx of `command` (matched without regard to case) raise this error.
  void FailCommand(const std::string& command, int32_t number, const std::string& description);
  // Every later call of `member` raises this error.
  void FailMember(const std::string& member, int32_t number, const std::string& description);
  // Drops the scripted replies, failing commands and failing members, and a host's own faults.
  void ClearFaults();
  // The host goes away: it leaves the running-object table and every later call raises 462.
  void GoAway();
  // The host goes away at its n-th call from now (n >= 1): calls 1 to n - 1 are answered, and
  // call n, logged like every call, finds the host gone, as do all after it. A host that
  // vanishes halfway through a member. ClearFaults cancels a vanishing still to come.
  void VanishAt(int64_t n);
  bool gone() const;

  // Registers this host as running in `env`, visible to BindRunning after `delay` (a program
  // that is still starting up).
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
  // Runs one command of the host's language; returns its output. A command the host rejects
  // raises an Error, as the real host's Execute does. Runs under `mu_`.
  virtual std::string RunCommand(const std::string& command) = 0;
  // Members beyond the session family; raise 438 for unknown ones. Run under `mu_`.
  virtual Variant OtherMember(std::string_view member, CallKind kind, std::span<Variant> args);
  // What OtherMember knows of a member, by its upper-cased name.
  virtual MemberShape OtherShape(std::string_view upper_member) const;
  // Faults a concrete host keeps beyond these, dropped by ClearFaults. Runs under `mu_`.
  virtual void ClearOwnFaults() {}

  mutable std::recursive_mutex mu_;

 private:
  struct Failure {
    int32_t number;
    std::string description;
  };

  Variant Answer(std::string_view member, CallKind kind, std::span<Variant> args);
  std::string Command(const Variant& command);
  void Leave();  // out of the running-object table, under `mu_`

  const std::string class_name_;
  const bool has_execute_ex_;
  std::vector<Call> log_;
  Variant version_;
  std::map<std::string, std::string> scripted_;      // upper-cased command -> output
  std::map<std::string, Failure> failing_commands_;  // upper-cased command
  std::map<std::string, Failure> failing_members_;   // upper-cased member
  bool gone_ = false;
  int64_t calls_to_vanish_ = 0;     // counts down to the call the host vanishes at; 0 for none
  std::weak_ptr<HostTable> table_;  // where this host is registered as running
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
