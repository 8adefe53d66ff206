#ifndef HOSTS_HOST_TABLE_H_
#define HOSTS_HOST_TABLE_H_

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env.h"

namespace qorvel::hosts {

class SimHost;

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

  void AddStarted(std::shared_ptr<SimHost> host);
  std::vector<std::shared_ptr<SimHost>> started() const;

  // Registers `host` as running under its class name, visible after `delay`; it then holds the
  // entry until another host takes it.
  void RegisterRunning(const std::shared_ptr<SimHost>& host, std::chrono::milliseconds delay);
  // Takes `host` out of the table, if it still holds its class's entry.
  void RevokeRunning(const SimHost& host);

  std::chrono::milliseconds start_delay() const;
  void set_start_delay(std::chrono::milliseconds delay);

 private:
  RunningObjects& running_;  // the owner of this table
  mutable std::mutex mu_;
  std::vector<std::shared_ptr<SimHost>> started_;
  std::map<std::string, std::weak_ptr<SimHost>> holders_;  // upper-cased class name
  std::chrono::milliseconds start_delay_{};
};

}  // namespace qorvel::hosts

#endif  // HOSTS_HOST_TABLE_H_
