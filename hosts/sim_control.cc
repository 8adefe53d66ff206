// The control's table and the members every simulated host shares: starting, faults, going
// away and the log.
#include "hosts/sim_control.h"

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "hosts/call_log.h"
#include "hosts/host_table.h"
#include "hosts/sim_control_args.h"
#include "hosts/simulators.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"

namespace qorvel::hosts {
namespace {

std::chrono::milliseconds Delay(const ControlArgs& a, size_t i) {
  const int32_t ms = a.Long(i, 0);
  if (ms < 0) a.Bad(i, "a delay of 0 ms or more expected");
  return std::chrono::milliseconds(ms);
}

std::shared_ptr<SimHost> RunHost(const char* class_name, std::chrono::milliseconds delay) {
  if (EqualsNoCase(class_name, kZebrinClass)) return RunZebrin(delay);
  if (EqualsNoCase(class_name, kTarvikClass)) return RunTarvik(delay);
  return RunUlmora(delay);
}

// Run(host [, delay ms]): a new simulator registered as running, visible after the delay.
Variant Run(ControlArgs& a) {
  a.Takes(1, 2);
  return Variant(AutomationObject(RunHost(a.ClassName(0), Delay(a, 1))));
}

Variant SetStartDelay(ControlArgs& a) {
  a.Takes(1, 1);
  hosts::SetStartDelay(Delay(a, 0));
  return {};
}

// Host(host): the newest simulator of the host, or Nothing.
Variant Host(ControlArgs& a) {
  a.Takes(1, 1);
  return Variant(AutomationObject(LastStarted(a.ClassName(0))));
}

// Started([host]): how many simulators have started, of the host or of all.
Variant Started(ControlArgs& a) {
  a.Takes(0, 1);
  const char* class_name = a.Given(0) ? a.ClassName(0) : nullptr;
  int32_t n = 0;
  for (const auto& host : StartedHosts()) {
    if (class_name == nullptr || EqualsNoCase(host->class_name(), class_name)) ++n;
  }
  return n;
}

Variant SetVersion(ControlArgs& a) {
  a.Takes(2, 2);
  a.Host(0)->set_version(a.Value(1));
  return {};
}

Variant ScriptReply(ControlArgs& a) {
  a.Takes(3, 3);
  a.Host(0)->ScriptReply(a.Text(1), a.Text(2));
  return {};
}

// The error a fault raises: the number, with the runtime's text unless a description is given.
std::string Description(const ControlArgs& a, size_t i, int32_t number) {
  return a.Text(i, DescriptionOf(number));
}

Variant FailCommand(ControlArgs& a) {
  a.Takes(3, 4);
  const int32_t number = a.Long(2);
  a.Host(0)->FailCommand(a.Text(1), number, Description(a, 3, number));
  return {};
}

Variant FailMember(ControlArgs& a) {
  a.Takes(3, 4);
  const int32_t number = a.Long(2);
  a.Object(0)->FailMember(a.Text(1), number, Description(a, 3, number));
  return {};
}

Variant ClearFaults(ControlArgs& a) {
  a.Takes(1, 1);
  a.Object(0)->ClearFaults();
  return {};
}

Variant GoAway(ControlArgs& a) {
  a.Takes(1, 1);
  a.Object(0)->GoAway();
  return {};
}

// VanishAt(host, n): answers n - 1 more calls, and goes away at the n-th.
Variant VanishAt(ControlArgs& a) {
  a.Takes(2, 2);
  const int32_t n = a.Long(1);
  if (n < 1) a.Bad(1, "a call count of 1 or more expected");
  a.Object(0)->VanishAt(n);
  return {};
}

Variant Gone(ControlArgs& a) {
  a.Takes(1, 1);
  return a.Object(0)->gone();
}

Variant SetBusy(ControlArgs& a) {
  a.Takes(2, 2);
  a.Host(0)->busy = a.Flag(1);
  return {};
}

Variant LingerOnExit(ControlArgs& a) {
  a.Takes(2, 2);
  a.Host(0)->linger_on_exit = a.Flag(1);
  return {};
}

Variant Log(ControlArgs& a) {
  a.Takes(1, 1);
  return TextList(LogLines(*a.Object(0)));
}

// Commands(host [, "Execute" or "ExecuteEx"])
Variant Commands(ControlArgs& a) {
  a.Takes(1, 2);
  const std::string member = a.Text(1, "");
  if (!member.empty() && !EqualsNoCase(member, "Execute") && !EqualsNoCase(member, "ExecuteEx")) {
    a.Bad(1, "\"Execute\" or \"ExecuteEx\" expected");
  }
  return TextList(a.Host(0)->commands(member));
}

Variant ClearLog(ControlArgs& a) {
  a.Takes(1, 1);
  a.Object(0)->ClearLog();
  return {};
}

constexpr ControlMember kHostControls[] = {
    {"Run", Run},
    {"SetStartDelay", SetStartDelay},
    {"Host", Host},
    {"Started", Started},
    {"SetVersion", SetVersion},
    {"ScriptReply", ScriptReply},
    {"FailCommand", FailCommand},
    {"FailMember", FailMember},
    {"ClearFaults", ClearFaults},
    {"GoAway", GoAway},
    {"VanishAt", VanishAt},
    {"Gone", Gone},
    {"SetBusy", SetBusy},
    {"LingerOnExit", LingerOnExit},
    {"Log", Log},
    {"Commands", Commands},
    {"ClearLog", ClearLog},
};

constexpr std::string_view kQuit = "Quit";
constexpr std::string_view kLaunch = "Launch";

// Every member of every part, by upper-cased name.
const std::map<std::string, ControlMember>& Members() {
  static const auto* members = [] {
    auto* table = new std::map<std::string, ControlMember>;
    for (auto part : {HostControls(), TarvikControls(), UlmoraControls(), SurfaceControls()}) {
      for (const ControlMember& m : part) table->emplace(UpperCase(m.name), m);
    }
    return table;
  }();
  return *members;
}

}  // namespace

std::span<const ControlMember> HostControls() { return kHostControls; }

SimControl::SimControl(Hooks hooks) : hooks_(std::move(hooks)) {}

Variant SimControl::Invoke(std::string_view member, CallKind kind, std::span<Variant> args) {
  if (kind == CallKind::kPropertyPut || Shape(member) != MemberShape::kMethod) {
    Raise(err::kNoMember);
  }
  ControlArgs a(member, args);
  if (EqualsNoCase(member, kQuit)) {
    // Quit(): every simulator goes away, as when its program ends, and so does the program.
    a.Takes(0, 0);
    for (const auto& host : StartedHosts()) host->GoAway();
    if (hooks_.quit) hooks_.quit();
    return {};
  }
  if (EqualsNoCase(member, kLaunch)) {
    // Launch(host): what the installed program does when started, with the start delay in force.
    a.Takes(1, 1);
    auto host = RunHost(a.ClassName(0), HostTable::Of(Env::Current())->start_delay());
    if (hooks_.launched) hooks_.launched(host);
    return Variant(AutomationObject(host));
  }
  return Members().at(UpperCase(member)).call(a);
}

MemberShape SimControl::Shape(std::string_view member) const {
  if (EqualsNoCase(member, kQuit) || EqualsNoCase(member, kLaunch) ||
      Members().contains(UpperCase(member))) {
    return MemberShape::kMethod;
  }
  return MemberShape::kMissing;
}

}  // namespace qorvel::hosts
