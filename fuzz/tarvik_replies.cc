// The machining control's reply parsers, end to end: a simulated Tarvik answers the control's
// queries with text from the input, and the control's members run over it.
// Input: one settings byte (bits 0-1 the host's version; bits 2-3 the decimal symbol, or long
// replies; bits 4-7 the member before which the host goes away, 0 for none), one axis byte,
// then the replies, split by NUL, in the order of kScripted; a reply left out is the
// simulator's own answer. Long replies have their first blank widened past what the blank
// collapse can count, so its overflow path runs without inputs of that size.
// Properties: only the errors a member may raise come out (60000 from the gate, 9 for a bad
// axis); every limit read is finite; a list holds only non-empty names, one per reply line.
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/property.h"
#include "hosts/simulators.h"
#include "qorvel/frame/host_link.h"
#include "qorvel/machining/tarvik3.h"
#include "qorvel/platform/collection.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/numbers.h"

namespace qorvel {
namespace {

using fuzz::Expect;
using fuzz::RunAllowing;

constexpr const char* kScripted[] = {
    "print formvalue roughmenubar.view.dialogs.message",
    "SIZE BLOCK",
    "SIZE MODEL",
    "SIZE COMPONENTS",
    "SIZE TOOLPATH \"A\"",
    "PRINT ENTITY TOOLPATHS",
    "PRINT FORMVALUE INFOBAR.UNITS",
};
constexpr int32_t kVersions[] = {2620, 2522, 2521, 0};
constexpr const char* kDecimals[] = {".", ",", "\xD9\xAB", "."};
constexpr size_t kLongBlankRun = 32768;
constexpr int32_t kGate = 60000;
constexpr int32_t kSubscript = 9;

bool IsTruth(VariantBool b) { return b == VariantBool::kTrue || b == VariantBool::kFalse; }

// Runs the members in turn; the host goes away before member number `gone_before`.
class Session {
 public:
  Session(hosts::SimTarvik& host, int gone_before) : host_(host), gone_before_(gone_before) {}

  template <class Member>
  bool Run(const std::vector<int32_t>& allowed, Member&& member) {
    if (++step_ == gone_before_) host_.GoAway();
    return RunAllowing(allowed, member);
  }

 private:
  hosts::SimTarvik& host_;
  const int gone_before_;
  int step_ = 0;
};

// `reply` is the scripted one, if the input scripted it.
void ExpectList(const AutomationObject& list, int32_t active,
                const std::optional<std::string>& reply) {
  const int32_t count = GetMember(list, "Count").ToLong();
  for (int32_t i = 1; i <= count; ++i) {
    const Variant item = Call(list, "Item", i);
    Expect(item.type() == VarType::kText, "a list holds texts");
    Expect(!item.ToText().empty(), "a list holds no empty name");
    Expect(item.ToText().find("\r\n") == std::string::npos, "a name stands on one line");
  }
  Expect(active >= 0, "the active index is 0 or a line of the reply");
  if (!reply) return;
  int32_t lines = 0;  // behind the heading
  for (size_t at = reply->find("\r\n"); at != std::string::npos; at = reply->find("\r\n", at + 2)) {
    ++lines;
  }
  Expect(count <= lines, "a list holds at most one name per reply line");
  Expect(active >= 0 && active <= lines, "the active index is a line of the reply or 0");
}

}  // namespace
}  // namespace qorvel

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace qorvel;
  if (size < 2) return 0;
  const uint8_t settings = data[0];
  const int32_t odd_axis = static_cast<int8_t>(data[1]);
  std::string_view rest(reinterpret_cast<const char*>(data) + 2, size - 2);

  ScopedEnv scope;
  SetDecimalSymbol(scope.env().registry(), kDecimals[(settings >> 2) & 3]);
  const bool long_replies = (settings >> 2 & 3) == 3;
  hosts::InstallSimulatedHosts();
  auto host = hosts::RunTarvik();
  const int32_t version = kVersions[settings & 3];
  host->set_version(version);
  host->LoadModel({-50, -25, 0, 50, 25, 30}, 12);
  host->AddToolpath("A", {-40, -20, 1, 40, 20, 29});
  std::optional<std::string> toolpath_reply;
  for (const char* command : kScripted) {
    if (rest.empty()) break;
    const size_t end = std::min(rest.find('\0'), rest.size());
    std::string reply(rest.substr(0, end));
    if (const size_t blank = reply.find(' '); long_replies && blank != std::string::npos) {
      reply.insert(blank, kLongBlankRun, ' ');
    }
    host->ScriptReply(command, reply);
    if (std::string_view(command) == "PRINT ENTITY TOOLPATHS") toolpath_reply = reply;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }

  // Only a refused version raises the gate's error, and only from the members that probe.
  const bool refused = version != 0 && version < 2522;
  const std::vector<int32_t> gate = refused ? std::vector<int32_t>{kGate} : std::vector<int32_t>{};
  std::vector<int32_t> gate_or_axis = gate;
  gate_or_axis.push_back(kSubscript);
  const bool bad_axis = odd_axis < 1 || odd_axis > 6;

  Tarvik3 control;
  Session session(*host, settings >> 4);
  session.Run({}, [&] { control.Initialize(); });
  int32_t bind_only = 0;
  session.Run(gate, [&] { control.Connect(bind_only); });
  session.Run(gate, [&] {
    for (int32_t axis = 1; axis <= 6; ++axis) {
      Expect(std::isfinite(control.BlockSize(axis)), "a block limit is finite");
    }
  });
  if (session.Run(gate_or_axis, [&] { control.BlockSize(odd_axis); })) {
    Expect(!bad_axis, "a bad axis raises 9");
  }
  session.Run({}, [&] {
    for (int32_t axis = 1; axis <= 6; ++axis) {
      Expect(std::isfinite(control.ModelSize(axis)), "a model limit is finite");
    }
  });
  Expect(session.Run({kSubscript}, [&] { control.ModelSize(odd_axis); }) == !bad_axis,
         "ModelSize raises 9 exactly for a bad axis");
  session.Run({}, [&] { Expect(IsTruth(control.IsModelLoaded()), "IsModelLoaded is a truth"); });
  session.Run({}, [&] { Expect(IsTruth(control.BlockDefined()), "BlockDefined is a truth"); });
  session.Run({}, [&] {
    AutomationObject list = NewCollection();
    Call(list, "Add", "left over");
    int32_t active = -7;
    control.GetToolpathList(list, active);
    ExpectList(list, active, toolpath_reply);
  });
  session.Run({}, [&] {
    std::string name = "A";
    double limits[6] = {1, 2, 3, 4, 5, 6};
    control.SizeToolpath(name, limits[0], limits[1], limits[2], limits[3], limits[4], limits[5]);
    for (double limit : limits) Expect(std::isfinite(limit), "a toolpath limit is finite");
    // Quoted in place unless the link was empty and nothing was asked.
    Expect(name == (HostLink::Of(Host::kTarvik).empty() ? "A" : "\"A\""),
           "the toolpath's name comes back quoted when it was sent");
  });
  session.Run({}, [&] {
    const int32_t units = control.Units();
    Expect(units == 0 || units == 1, "Units is millimetres or inches");
  });
  session.Run({}, [&] { Expect(IsTruth(control.Dialogs()), "Dialogs is a truth"); });
  session.Run(gate, [&] {
    control.StoreBlock();
    control.StoreModel();
    for (int32_t axis = 1; axis <= 6; ++axis) {
      Expect(std::isfinite(control.BlockSize(axis)) && std::isfinite(control.ModelSize(axis)),
             "limits stored again are finite");
    }
  });
  return 0;
}
