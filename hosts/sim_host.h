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

namespace qorvel::hosts {

// One call a simulated host received: the member name as sent, the kind, and the arguments as
// they arrived (references followed).
struct Call {
  std::string member;
  CallKind kind;
  std::vector<Variant> args;
};

// The common part of a simulated host: a real automation object that logs every call, answers
// the session members (version, Busy, WindowState, Visible, Exit, Execute, ExecuteEx) and takes
// faults. A concrete host supplies its command language in RunCommand.
class SimHost : public Dispatch, public std::enable_shared_from_this<SimHost> {
 public:
  explicit SimHost(std::string class_name);
  Variant Invoke(std::string_view member, CallKind kind, std::span<Variant> args) final;

  const std::string& class_name() const { return class_name_; }

  // The call log.
  std::vector<Call> log() const;
  // The command texts of Execute and ExecuteEx calls, in order ("Execute: X", "ExecuteEx: X"
  // are told apart by `Call::member` in log()).
  std::vector<std::string> commands() const;
  void ClearLog();

  // Faults.
  void set_version(Variant version);  // any value: 0, negative, beyond 16 bits, text
  // ExecuteEx of `command` (matched without regard to case) puts `output` in the output
  // argument instead of the host's own answer.
  void ScriptReply(const std::string& command, const std::string& output);
  // Every later call of `member` raises this error.
  void FailMember(const std::string& member, int32_t number, const std::string& description);
  // The host goes away: it leaves the running-object table and every later call raises 462.
  void GoAway();
  bool gone() const;

  // Registers this host as running in `env`, visible to BindRunning after `delay` (a program
  // that is still starting up).
  void RegisterRunning(Env& env, std::chrono::milliseconds delay);

  // Window and session state the members read and write.
  bool busy = false;
  VariantBool visible = VariantBool::kTrue;
  int16_t window_state = 1;
  bool exited = false;

 protected:
  // Runs one command of the host's language; returns its output. A command the host rejects
  // raises an Error, as the real host's Execute does.
  virtual std::string RunCommand(const std::string& command) = 0;
  // Members beyond the session family; raise 438 for unknown ones.
  virtual Variant OtherMember(std::string_view member, CallKind kind, std::span<Variant> args);

  mutable std::recursive_mutex mu_;

 private:
  Variant Answer(std::string_view member, CallKind kind, std::span<Variant> args);
  void GoAwayLocked();

  std::string class_name_;
  std::vector<Call> log_;
  Variant version_;
  std::map<std::string, std::string> scripted_;                     // upper-cased command -> output
  std::map<std::string, std::pair<int32_t, std::string>> failing_;  // upper-cased member
  bool gone_ = false;
  Env* registered_env_ = nullptr;
};

// Upper-case copy, for the host's case-insensitive command line.
std::string Upper(std::string_view text);

// Where the simulated programs are "installed": launcher paths and registry entries match the
// default .reg file in hosts/.
inline constexpr const char* kZebrinProgram =
    "C:\\Program Files\\Halvern\\Zebrin\\2300\\zebrin.exe";
inline constexpr const char* kTarvikProgram =
    "C:\\Program Files\\Halvern\\Tarvik\\2620\\tarvik.exe";

}  // namespace qorvel::hosts

#endif  // HOSTS_SIM_HOST_H_
