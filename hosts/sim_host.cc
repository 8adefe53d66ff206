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

SimHost::SimHost(std::string class_name, bool has_execute_ex)
    : class_name_(std::move(class_name)), has_execute_ex_(has_execute_ex) {}

// The log comes first, so a test sees every call, also the ones a fault turns away.
Variant SimHost::Invoke(std::string_view member, CallKind kind, std::span<Variant> args) {
  std::lock_guard lock(mu_);
  Call call{std::string(member), kind, {}};
  for (const Variant& a : args) call.args.push_back(a.Deref());
  log_.push_back(std::move(call));
  if (calls_to_vanish_ > 0 && --calls_to_vanish_ == 0) {
    gone_ = true;
    Leave();
  }
  if (gone_) Raise(err::kServerGone);
  if (auto f = failing_members_.find(UpperCase(member)); f != failing_members_.end()) {
    Raise(f->second.number, f->second.description);
  }
  return Answer(member, kind, args);
}

Variant SimHost::Answer(std::string_view member, CallKind kind, std::span<Variant> args) {
  const std::string name = UpperCase(member);
  const bool put = kind == CallKind::kPropertyPut;
  if (name == "WINDOWSTATE" && put) {
    NeedArgs(args, 1);
    window_state = args[0].ToInteger();
    return {};
  }
  if (name == "VISIBLE" && put) {
    NeedArgs(args, 1);
    visible = args[0].ToBool();
    return {};
  }
  if (put) return OtherMember(member, kind, args);
  if (name == "VERSION") return Read(args, version_);
  if (name == "BUSY") return Read(args, ToVariantBool(busy));
  if (name == "WINDOWSTATE") return Read(args, window_state);
  if (name == "VISIBLE") return Read(args, visible);
  if (name == "EXIT") {
    NeedArgs(args, 0);
    exited = true;
    Leave();
    if (!linger_on_exit) gone_ = true;
    return {};
  }
  if (name == "EXECUTE") {
    NeedArgs(args, 2);
    Command(args[0]);
    return {};
  }
  if (name == "EXECUTEEX" && has_execute_ex_) {
    NeedArgs(args, 3);
    args[2].Assign(Variant(Command(args[0])));
    return {};
  }
  return OtherMember(member, kind, args);
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

Variant SimHost::OtherMember(std::string_view, CallKind, std::span<Variant>) {
  Raise(err::kNoMember);
}

MemberShape SimHost::Shape(std::string_view member) const {
  const std::string name = UpperCase(member);
  if (name == "VERSION" || name == "BUSY" || name == "WINDOWSTATE" || name == "VISIBLE") {
    return MemberShape::kProperty;
  }
  if (name == "EXIT" || name == "EXECUTE") return MemberShape::kMethod;
  if (name == "EXECUTEEX" && has_execute_ex_) return MemberShape::kMethod;
  return OtherShape(name);
}

MemberShape SimHost::OtherShape(std::string_view) const { return MemberShape::kMissing; }

std::vector<Call> SimHost::log() const {
  std::lock_guard lock(mu_);
  return log_;
}

std::vector<std::string> SimHost::commands(std::string_view member) const {
  std::lock_guard lock(mu_);
  std::vector<std::string> out;
  for (const Call& c : log_) {
    const bool command = EqualsNoCase(c.member, "Execute") || EqualsNoCase(c.member, "ExecuteEx");
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

void SimHost::ClearLog() {
  std::lock_guard lock(mu_);
  log_.clear();
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

void SimHost::FailMember(const std::string& member, int32_t number,
                         const std::string& description) {
  std::lock_guard lock(mu_);
  failing_members_[UpperCase(member)] = {number, description};
}

void SimHost::ClearFaults() {
  std::lock_guard lock(mu_);
  scripted_.clear();
  failing_commands_.clear();
  failing_members_.clear();
  calls_to_vanish_ = 0;
  ClearOwnFaults();
}

void SimHost::GoAway() {
  std::lock_guard lock(mu_);
  gone_ = true;
  Leave();
}

void SimHost::VanishAt(int64_t n) {
  if (n < 1) Raise(err::kInvalidCall);
  std::lock_guard lock(mu_);
  calls_to_vanish_ = n;
}

bool SimHost::gone() const {
  std::lock_guard lock(mu_);
  return gone_;
}

void SimHost::RegisterRunning(Env& env, std::chrono::milliseconds delay) {
  std::shared_ptr<HostTable> table = HostTable::Of(env);
  {
    std::lock_guard lock(mu_);
    table_ = table;
  }
  table->RegisterRunning(shared_from_this(), delay);
}

void SimHost::Leave() {
  if (std::shared_ptr<HostTable> table = table_.lock()) table->RevokeRunning(*this);
  table_.reset();
}

}  // namespace qorvel::hosts
