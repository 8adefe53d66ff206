#include "hosts/host_table.h"

#include "hosts/sim_host.h"
#include "qorvel/platform/error.h"

namespace qorvel::hosts {
namespace {

// A class name no real program registers under.
constexpr const char* kTableName = "QorvelOLE.SimulatedHostTable";

std::mutex table_creation_mu;

}  // namespace

std::shared_ptr<HostTable> HostTable::Of(Env& env) {
  std::lock_guard lock(table_creation_mu);
  RunningObjects& running = env.running_objects();
  try {
    if (auto table = std::dynamic_pointer_cast<HostTable>(running.BindRunning(kTableName))) {
      return table;
    }
  } catch (const Error&) {
    // Not made yet.
  }
  auto table = std::make_shared<HostTable>(running);
  running.Register(kTableName, table);
  return table;
}

Variant HostTable::Invoke(std::string_view, CallKind, std::span<Variant>) { Raise(err::kNoMember); }

void HostTable::AddStarted(std::shared_ptr<SimHost> host) {
  std::lock_guard lock(mu_);
  started_.push_back(std::move(host));
}

std::vector<std::shared_ptr<SimHost>> HostTable::started() const {
  std::lock_guard lock(mu_);
  return started_;
}

void HostTable::RegisterRunning(const std::shared_ptr<SimHost>& host,
                                std::chrono::milliseconds delay) {
  std::lock_guard lock(mu_);
  holders_[Upper(host->class_name())] = host;
  running_.Register(host->class_name(), host, RunningObjects::Clock::now() + delay);
}

void HostTable::RevokeRunning(const SimHost& host) {
  std::lock_guard lock(mu_);
  auto it = holders_.find(Upper(host.class_name()));
  if (it == holders_.end() || it->second.lock().get() != &host) return;
  holders_.erase(it);
  running_.Revoke(host.class_name());
}

std::chrono::milliseconds HostTable::start_delay() const {
  std::lock_guard lock(mu_);
  return start_delay_;
}

void HostTable::set_start_delay(std::chrono::milliseconds delay) {
  std::lock_guard lock(mu_);
  start_delay_ = delay;
}

}  // namespace qorvel::hosts
