#include "hosts/host_table.h"

#include "hosts/sim_host.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"

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

void HostPreset::ApplyTo(SimHost& host) const {
  if (version) host.set_version(*version);
  if (busy) host.busy = *busy;
  if (linger_on_exit) host.linger_on_exit = *linger_on_exit;
  for (const auto& [command, output] : replies) host.ScriptReply(command, output);
  for (const auto& [command, f] : failing_commands) {
    host.FailCommand(command, f.number, f.description);
  }
  for (const auto& [member, f] : failing_members) host.FailMember(member, f.number, f.description);
}

// The preset is applied outside the table's lock: a host takes its own lock first and then the
// table's when it leaves, so the table never waits on a host while holding its own.
void HostTable::AddStarted(std::shared_ptr<SimHost> host) {
  std::optional<HostPreset> preset;
  {
    std::lock_guard lock(mu_);
    if (auto it = presets_.find(UpperCase(host->class_name())); it != presets_.end()) {
      preset = it->second;
    }
  }
  if (preset) preset->ApplyTo(*host);
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
  holders_[UpperCase(host->class_name())] = host;
  running_.Register(host->class_name(), host, RunningObjects::Clock::now() + delay);
}

void HostTable::RevokeRunning(const SimHost& host) {
  std::lock_guard lock(mu_);
  auto it = holders_.find(UpperCase(host.class_name()));
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

void HostTable::SetPreset(std::string_view class_name, HostPreset preset) {
  std::lock_guard lock(mu_);
  presets_[UpperCase(class_name)] = std::move(preset);
}

void HostTable::ClearPreset(std::string_view class_name) {
  std::lock_guard lock(mu_);
  presets_.erase(UpperCase(class_name));
}

}  // namespace qorvel::hosts
