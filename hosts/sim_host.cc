#include "hosts/sim_host.h"

#include <cmath>

#include "hosts/host_table.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/numbers.h"

namespace qorvel::hosts {
namespace {

void NeedArgs(std::span<Variant> args, size_t count) {
  if (args.size() != count) Raise(err::kWrongArgs);
}

// A property read, which takes no arguments.
Variant Read(std::span<Variant> args, Variant value) {
  NeedArgs(args, 0);
  return value;
}

}  // namespace

void RejectCommand(const std::string& why) { Raise(kCommandRejected, why); }

double CommandNumber(const std::string& word) {
  const std::optional<double> value = ParseNumber(word);
  if (!value || !std::isfinite(*value)) RejectCommand("Invalid number: " + word);
  return *value;
}

SimHost::SimHost(std::string class_name) : SimObject(std::move(class_name)) {}

const SimMembers& SimHost::SessionMembers() {
  static const SimMembers members{
      {"version", MemberShape::kProperty, Handle<&SimHost::GetVersion>},
      {"Busy", MemberShape::kProperty, Handle<&SimHost::GetBusy>},
      {"WindowState", MemberShape::kProperty, Handle<&SimHost::GetWindowState>,
       Handle<&SimHost::PutWindowState>},
      {"Visible", MemberShape::kProperty, Handle<&SimHost::GetVisible>,
       Handle<&SimHost::PutVisible>},
      {"Exit", MemberShape::kMethod, Handle<&SimHost::Exit>},
      {"Execute", MemberShape::kMethod, Handle<&SimHost::Execute>},
  };
  return members;
}

SimMember SimHost::ExecuteExMember() {
  return {"ExecuteEx", MemberShape::kMethod, Handle<&SimHost::ExecuteEx>};
}

Variant SimHost::GetVersion(std::span<Variant> args) { return Read(args, version_); }

Variant SimHost::GetBusy(std::span<Variant> args) { return Read(args, ToVariantBool(busy)); }

Variant SimHost::GetWindowState(std::span<Variant> args) { return Read(args, window_state); }

void SimHost::PutWindowState(std::span<Variant> args) {
  NeedArgs(args, 1);
  window_state = args[0].ToInteger();
}

Variant SimHost::GetVisible(std::span<Variant> args) { return Read(args, visible); }

void SimHost::PutVisible(std::span<Variant> args) {
  NeedArgs(args, 1);
  visible = args[0].ToBool();
}

void SimHost::Exit(std::span<Variant> args) {
  NeedArgs(args, 0);
  exited = true;
  Leave();
  if (!linger_on_exit) GoAwayNow();
}

void SimHost::Execute(std::span<Variant> args) {
  NeedArgs(args, 2);
  Command(args[0]);
}

void SimHost::ExecuteEx(std::span<Variant> args) {
  NeedArgs(args, 3);
  args[2].Assign(Variant(Command(args[0])));
}

std::string SimHost::Command(const Variant& command) {
  const std::string text = command.ToText();
  const std::string key = UpperCase(text);
  if (auto f = failing_commands_.find(key); f != failing_commands_.end()) {
    Raise(f->second.number, f->second.description);
  }
  if (auto s = scripted_.find(key); s != scripted_.end()) return s->second;
  return RunCommand(text);
}

std::vector<std::string> SimHost::commands(std::string_view member) const {
  std::vector<std::string> out;
  for (const Call& c : log()) {
    const bool command = c.object.empty() &&
                         (EqualsNoCase(c.member, "Execute") || EqualsNoCase(c.member, "ExecuteEx"));
    if (command && !c.args.empty() && (member.empty() || EqualsNoCase(c.member, member))) {
      try {
        out.push_back(c.args[0].ToText());
      } catch (const Error&) {
        out.push_back("");  // a command that was no text
      }
    }
  }
  return out;
}

void SimHost::set_version(Variant version) {
  std::lock_guard lock(mu_);
  version_ = std::move(version);
}

Variant SimHost::version() const {
  std::lock_guard lock(mu_);
  return version_;
}

void SimHost::ScriptReply(const std::string& command, const std::string& output) {
  std::lock_guard lock(mu_);
  scripted_[UpperCase(command)] = output;
}

void SimHost::FailCommand(const std::string& command, int32_t number,
                          const std::string& description) {
  std::lock_guard lock(mu_);
  failing_commands_[UpperCase(command)] = {number, description};
}

void SimHost::ClearOwnFaults() {
  scripted_.clear();
  failing_commands_.clear();
}

void SimHost::RegisterRunning(Env& env, std::chrono::milliseconds delay) {
  std::shared_ptr<HostTable> table = HostTable::Of(env);
  {
    std::lock_guard lock(mu_);
    table_ = table;
  }
  table->RegisterRunning(std::static_pointer_cast<SimHost>(shared_from_this()), delay);
}

void SimHost::OnGoAway() { Leave(); }

void SimHost::Leave() {
  if (std::shared_ptr<HostTable> table = table_.lock()) table->RevokeRunning(*this);
  table_.reset();
}

}  // namespace qorvel::hosts
