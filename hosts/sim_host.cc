#include "hosts/sim_host.h"

#include <algorithm>
#include <cctype>

#include "qorvel/platform/error.h"

namespace qorvel::hosts {

std::string Upper(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

SimHost::SimHost(std::string class_name) : class_name_(std::move(class_name)) {}

Variant SimHost::Invoke(std::string_view member, CallKind kind, std::span<Variant> args) {
  std::lock_guard lock(mu_);
  Call call{std::string(member), kind, {}};
  for (const Variant& a : args) call.args.push_back(a.Deref());
  log_.push_back(std::move(call));
  if (gone_) Raise(err::kServerGone);
  if (auto f = failing_.find(Upper(member)); f != failing_.end()) {
    throw Error(f->second.first, f->second.second);
  }
  return Answer(member, kind, args);
}

namespace {

void NeedArgs(std::span<Variant> args, size_t count) {
  if (args.size() != count) Raise(err::kWrongArgs);
}

}  // namespace

Variant SimHost::Answer(std::string_view member, CallKind kind, std::span<Variant> args) {
  const std::string name = Upper(member);
  const bool put = kind == CallKind::kPropertyPut;
  if (name == "VERSION" && !put) return version_;
  if (name == "BUSY" && !put) return ToVariantBool(busy);
  if (name == "WINDOWSTATE") {
    if (!put) return window_state;
    NeedArgs(args, 1);
    window_state = args[0].ToInteger();
    return {};
  }
  if (name == "VISIBLE") {
    if (!put) return visible;
    NeedArgs(args, 1);
    visible = args[0].ToBool();
    return {};
  }
  if (name == "EXIT" && kind == CallKind::kMethod) {
    exited = true;
    GoAwayLocked();
    return {};
  }
  if (name == "EXECUTE" && kind == CallKind::kMethod) {
    NeedArgs(args, 2);
    RunCommand(args[0].ToText());
    return {};
  }
  if (name == "EXECUTEEX" && kind == CallKind::kMethod) {
    NeedArgs(args, 3);
    const std::string command = args[0].ToText();
    auto scripted = scripted_.find(Upper(command));
    args[2].Assign(Variant(scripted != scripted_.end() ? scripted->second : RunCommand(command)));
    return {};
  }
  return OtherMember(member, kind, args);
}

Variant SimHost::OtherMember(std::string_view, CallKind, std::span<Variant>) {
  Raise(err::kNoMember);
}

std::vector<Call> SimHost::log() const {
  std::lock_guard lock(mu_);
  return log_;
}

std::vector<std::string> SimHost::commands() const {
  std::lock_guard lock(mu_);
  std::vector<std::string> out;
  for (const Call& c : log_) {
    const std::string name = Upper(c.member);
    if ((name == "EXECUTE" || name == "EXECUTEEX") && !c.args.empty()) {
      out.push_back(c.args[0].ToText());
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

void SimHost::ScriptReply(const std::string& command, const std::string& output) {
  std::lock_guard lock(mu_);
  scripted_[Upper(command)] = output;
}

void SimHost::FailMember(const std::string& member, int32_t number,
                         const std::string& description) {
  std::lock_guard lock(mu_);
  failing_[Upper(member)] = {number, description};
}

void SimHost::GoAway() {
  std::lock_guard lock(mu_);
  GoAwayLocked();
}

void SimHost::GoAwayLocked() {
  gone_ = true;
  if (registered_env_ != nullptr) registered_env_->running_objects().Revoke(class_name_);
  registered_env_ = nullptr;
}

bool SimHost::gone() const {
  std::lock_guard lock(mu_);
  return gone_;
}

void SimHost::RegisterRunning(Env& env, std::chrono::milliseconds delay) {
  std::lock_guard lock(mu_);
  registered_env_ = &env;
  env.running_objects().Register(class_name_, shared_from_this(),
                                 RunningObjects::Clock::now() + delay);
}

}  // namespace qorvel::hosts
