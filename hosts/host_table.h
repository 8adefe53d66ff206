#ifndef HOSTS_HOST_TABLE_H_
#define HOSTS_HOST_TABLE_H_

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

class SimHost;

// What each new simulator of one class is made with, before anyone can reach it: a host that
// was installed at that version, or that has that fault, from its first call on. Unset fields
// keep the simulator's own defaults.
struct HostPreset {
  struct Fault {
    int32_t number;
    std::string description;
  };
  std::optional<Variant> version;
  std::optional<bool> busy;
  std::optional<bool> linger_on_exit;
  std::map<std::string, std::string> replies;     // command -> output, as SimHost::ScriptReply
  std::map<std::string, Fault> failing_commands;  // as SimHost::FailCommand
  std::map<std::string, Fault> failing_members;   // as SimHost::FailMember

  void ApplyTo(SimHost& host) const;
};

// The simulators of one environment: those started so far, the one that holds each class's
// entry in the running-object table, and the start-up delay of launched programs. It lives in
// the environment's own running-object table, so it ends with the environment and a fresh
// environment starts with a fresh table.
class HostTable : public Dispatch {
 public:
  // The table of `env`, made on first use.
  static std::shared_ptr<HostTable> Of(Env& env);

  explicit HostTable(RunningObjects& running) : running_(running) {}

  // Not for clients: every member is unknown.
  Variant Invoke(std::string_view member, CallKind kind, std::span<Variant> args) override;
  MemberShape Shape(std::string_view) const override { return MemberShape::kMissing; }

  // Every simulator passes here as it is made, and takes its class's preset.
  void AddStarted(std::shared_ptr<SimHost> host);
  std::vector<std::shared_ptr<SimHost>> started() const;

  // Registers `host` as running under its class name, visible after `delay`; it then holds the
  // entry until another host takes it.
  void RegisterRunning(const std::shared_ptr<SimHost>& host, std::chrono::milliseconds delay);
  // Takes `host` out of the table, if it still holds its class's entry.
  void RevokeRunning(const SimHost& host);

  std::chrono::milliseconds start_delay() const;
  void set_start_delay(std::chrono::milliseconds delay);

  // From now on every simulator of `class_name` (any case) is made with `preset`, however it
  // starts: run directly, by the launcher or by a class server. Replaces the class's preset.
  void SetPreset(std::string_view class_name, HostPreset preset);
  // Plain simulators of that class again.
  void ClearPreset(std::string_view class_name);

 private:
  RunningObjects& running_;  // the owner of this table
  mutable std::mutex mu_;
  std::vector<std::shared_ptr<SimHost>> started_;
  std::map<std::string, std::weak_ptr<SimHost>> holders_;  // upper-cased class name
  std::chrono::milliseconds start_delay_{};
  std::map<std::string, HostPreset> presets_;  // upper-cased class name
};

}  // namespace qorvel::hosts

#endif  // HOSTS_HOST_TABLE_H_
