#include "qorvel/frame/host_link.h"

#include <vector>

#include "qorvel/frame/registry_value.h"
#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env.h"

namespace qorvel {
namespace {

constexpr HostProfile kProfiles[3] = {
    {"ZebrinConnection", "Zebrin.Document", "SOFTWARE\\Halvern\\Exec\\zebrin",
     "SOFTWARE\\Halvern\\zebrin\\", "Error starting Zebrin", "Cannot start remote Zebrin session",
     "Error connecting to Zebrin", "Zebrn cannot be linked to application"},
    {"Tarvik_stuff", "Tarvik.Document", "SOFTWARE\\Halvern\\Exec\\tarvik",
     "SOFTWARE\\Halvern\\tarvik\\", "Error starting Tarvik", "Cannot start remote Tarvik session",
     "Error connecting to Tarvik", "Tarvik cannot be linked to VB application"},
    {"Ulmora_connection", "Ulmora.Application", "", "", "", "", "", ""},
};

constexpr int32_t kMaximisedWithFocus = 3;

}  // namespace

const HostProfile& ProfileOf(Host host) { return kProfiles[static_cast<int>(host)]; }

namespace {
// The three links of one thread in one environment.
struct HostLinks {
  HostLink links[3] = {HostLink(Host::kZebrin), HostLink(Host::kTarvik), HostLink(Host::kUlmora)};
};
}  // namespace

HostLink& HostLink::Of(Host host) {
  return Env::Current().thread_states().Get<HostLinks>().links[static_cast<int>(host)];
}

VariantBool HostLink::ConnectToRunning() {
  return ToVariantBool(HoldBack([&] {
    object_ = Env::Current().running_objects().BindRunning(ProfileOf(host_).class_name);
  }));
}

VariantBool HostLink::StartAndConnect() {
  const HostProfile& p = ProfileOf(host_);
  if (ConnectToRunning() == VariantBool::kTrue) return VariantBool::kTrue;
  const std::string version =
      ReadRegistryValue(root_key::kLocalMachine, p.version_key, "CurrentVersion");
  const std::string path =
      ReadRegistryValue(root_key::kLocalMachine, p.install_key_prefix + version, "ExecutablePath");
  Messages& messages = Env::Current().messages();
  if (path == kNotFound) {
    messages.ShowMessage(std::string(p.start_text) + "\rCheck registry", kCriticalStopBox,
                         p.start_title);
    return VariantBool::kFalse;
  }
  if (!HoldBack([&] { Env::Current().launcher().LaunchProgram(path, kMaximisedWithFocus); })) {
    messages.ShowMessage(std::string(p.start_text) + "\rCheck installation and registry settings",
                         kCriticalStopBox, p.start_title);
    return VariantBool::kFalse;
  }
  if (ConnectToRunning() == VariantBool::kTrue) return VariantBool::kTrue;
  messages.ShowMessage(p.link_text, kCriticalStopBox, p.link_title);
  return VariantBool::kFalse;
}

VariantBool HostLink::ConnectNew() {
  return ToVariantBool(HoldBack(
      [&] { object_ = Env::Current().running_objects().CreateNew(ProfileOf(host_).class_name); }));
}

VariantBool HostLink::HostExecute(const std::string& command) {
  std::string copy = command;
  int32_t status = 0;
  std::vector<Variant> args{Variant::Ref(copy), Variant::Ref(status)};
  return ToVariantBool(HoldBack([&] { CallMember(object_, "Execute", args); }));
}

std::string HostLink::HostExecuteEx(const std::string& command) {
  return host_ == Host::kTarvik ? ExecuteExTarvik(command) : ExecuteExZebrin(command);
}

std::string HostLink::ExecuteExZebrin(const std::string& command) {
  std::string copy = command;
  int32_t status = 0;
  std::string output;
  std::vector<Variant> args{Variant::Ref(copy), Variant::Ref(status), Variant::Ref(output)};
  if (!HoldBack([&] { CallMember(object_, "ExecuteEx", args); })) output = "Error";
  return output;
}

// Tarvik echoes commands into its output unless told not to, so every capture is preceded by
// the command that stops the trace; the preset "Error" stands when the capture fails.
std::string HostLink::ExecuteExTarvik(const std::string& command) {
  std::string copy = command;
  std::string output = "Error";
  int32_t status = 0;
  if (empty()) return output;
  std::string untrace = "NLTDEBUG UNTRACE COMMAND ACCEPT";
  std::vector<Variant> untrace_args{Variant::Ref(untrace), Variant::Ref(status)};
  HoldBack([&] { CallMember(object_, "Execute", untrace_args); });
  std::vector<Variant> args{Variant::Ref(copy), Variant::Ref(status), Variant::Ref(output)};
  HoldBack([&] { CallMember(object_, "ExecuteEx", args); });
  return output;
}

}  // namespace qorvel
