// Every member of the host controls that calls its host, with the host vanishing at each of
// those calls in turn: each run must end as the member ends with a host that has gone.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "hosts/simulators.h"
#include "qorvel/frame/control.h"
#include "qorvel/frame/host_link.h"
#include "qorvel/machining/tarvik3_face.h"
#include "qorvel/modelling/ulmora27_face.h"
#include "qorvel/platform/collection.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/session/zebrin_face.h"
#include "qorvel/surface/ulmora_nearest_points_face.h"
#include "qorvel/surface/ulmora_surface_info_face.h"

namespace qorvel {
namespace {

using hosts::SimHost;
using hosts::SimTarvik;
using hosts::SimUlmora;

// A member through the dispatch face, and how it must end when its host goes at any call.
struct Member {
  const char* name;
  Host host;
  bool connected;  // whether the control has connected to the healthy host first
  std::function<Variant(const AutomationObject&)> call;
  size_t calls;         // the host calls it makes with a healthy host
  Variant gone{};       // its result once the host has gone
  size_t unneeded = 0;  // last calls its result doesn't depend on (the dialogs restore)
  size_t raised = 0;    // vanishing at calls 1 to this one reaches the client, as 462
  // For a member whose result is made of many answers: its result when the host goes at call k.
  std::function<std::string(size_t k)> gone_at = nullptr;
};
using Members = std::vector<Member>;

// A run of `list` on a Tarvik's entities: how many names it gave back, and the active line.
Variant List(const AutomationObject& tarvik, const char* list) {
  AutomationObject names = NewCollection();
  Call(names, "Add", "stale");
  int32_t active = 99;
  std::vector<Variant> args{Variant::Ref(names), Variant::Ref(active)};
  CallMember(tarvik, list, args);
  return std::to_string(GetMember(names, "Count").ToLong()) + " " + std::to_string(active);
}

Variant SizeToolpath(const AutomationObject& tarvik) {
  std::string name = "Finish 2";
  double v[6] = {7, 7, 7, 7, 7, 7};
  std::vector<Variant> args{Variant::Ref(name)};
  for (double& d : v) args.push_back(Variant::Ref(d));
  CallMember(tarvik, "SizeToolpath", args);
  std::string text;
  for (double d : v) text += Variant(d).ToText() + " ";
  return text;
}

Variant Get(const AutomationObject& control, const char* name, Variant index) {
  std::vector<Variant> args{std::move(index)};
  return GetMember(control, name, args);
}

// A property put, which has no result.
Variant Put(const AutomationObject& control, const char* name, Variant value) {
  SetMember(control, name, std::move(value));
  return Variant();
}

// An entity list of an Ulmora27 as "number|name,name".
Variant Entities(const AutomationObject& ulmora, const char* member, std::vector<Variant> more) {
  SafeArray names, types;
  int32_t number = -1;
  std::vector<Variant> args{Variant::Ref(names), Variant::Ref(types), Variant::Ref(number)};
  args.insert(args.end(), more.begin(), more.end());
  CallMember(ulmora, member, args);
  std::string text = std::to_string(number) + "|";
  for (int32_t i = 1; i <= number; ++i) text += (i > 1 ? "," : "") + names.Get({i}).ToText();
  return text;
}

const Members& TheMembers() {
  const Host Z = Host::kZebrin, T = Host::kTarvik, U = Host::kUlmora;
  const Variant no = VariantBool::kFalse;
  const auto hide = [](const AutomationObject& c) { return Put(c, "Visible", false); };
  static const Members members = {
      {"Zebrin Connect 0", Z, false, [](auto& c) { return Call(c, "Connect", 0); }, 1},
      {"Zebrin Connect 1", Z, false, [](auto& c) { return Call(c, "Connect", 1); }, 1},
      {"ExitZebrin", Z, true, [](auto& c) { return Call(c, "ExitZebrin"); }, 2},
      {"Zebrin Visible put", Z, true, hide, 3, {}, 0, 3},
      {"InformationWindow put", Z, true, [](auto& c) { return Put(c, "InformationWindow", true); },
       1},
      {"Tarvik3 Connect 0", T, false, [](auto& c) { return Call(c, "Connect", 0); }, 1},
      {"Tarvik3 Connect 1", T, false, [](auto& c) { return Call(c, "Connect", 1); }, 1},
      {"Tarvik3 Connect 2", T, false, [](auto& c) { return Call(c, "Connect", 2); }, 2, {}, 0, 1},
      {"ExitTarvik", T, true, [](auto& c) { return Call(c, "ExitTarvik"); }, 2},
      {"Tarvik3 ExecuteEx", T, true,
       [](auto& c) { return Call(c, "ExecuteEx", "PRINT FORMVALUE INFOBAR.UNITS"); }, 2, "Error"},
      {"Dialogs get", T, true, [](auto& c) { return GetMember(c, "Dialogs"); }, 2, no},
      {"Dialogs put", T, true, [](auto& c) { return Put(c, "Dialogs", true); }, 2},
      {"Tarvik3 Visible put", T, true, hide, 3, {}, 0, 3},
      {"StoreBlock, BlockSize read back", T, true,
       [](auto& c) { return Call(c, "StoreBlock"), Get(c, "BlockSize", 2); }, 7, 0.0, 1},
      {"BlockSize", T, true, [](auto& c) { return Get(c, "BlockSize", 2); }, 7, 0.0, 1},
      {"StoreModel, ModelSize read back", T, true,
       [](auto& c) { return Call(c, "StoreModel"), Get(c, "ModelSize", 2); }, 6, 0.0, 1},
      {"ModelSize", T, true, [](auto& c) { return Get(c, "ModelSize", 2); }, 6, 0.0, 1},
      {"ResizeBlock", T, true, [](auto& c) { return Call(c, "ResizeBlock", 2.5); }, 18},
      {"SetBlock", T, true, [](auto& c) { return Call(c, "SetBlock", 6, 30.0); }, 2},
      {"DefineTool", T, true,
       [](auto& c) {
         return Call(c, "DefineTool", 4, 10.0, 75.0, 1.0, 30.0, 5.0, Variant(), Variant(), 12,
                     "T1");
       },
       8},
      {"Units get", T, true, [](auto& c) { return GetMember(c, "Units"); }, 2, 0},
      {"Units put, read back", T, true,
       [](auto& c) { return Put(c, "Units", 1), GetMember(c, "Units"); }, 3, 1},
      {"IsModelLoaded", T, true, [](auto& c) { return GetMember(c, "IsModelLoaded"); }, 6, no, 1},
      {"BlockDefined", T, true, [](auto& c) { return GetMember(c, "BlockDefined"); }, 6, no, 1},
      {"GetToolpathList", T, true, [](auto& c) { return List(c, "GetToolpathList"); }, 2, "0 0"},
      {"GetPatternList", T, true, [](auto& c) { return List(c, "GetPatternList"); }, 2, "0 0"},
      {"GetWorkplaneList", T, true, [](auto& c) { return List(c, "GetWorkplaneList"); }, 2, "0 0"},
      {"SizeToolpath", T, true, [](auto& c) { return SizeToolpath(c); }, 6, "0 0 0 0 0 0 ", 1},
      {"Ulmora27 Connect", U, false, [](auto& c) { return Call(c, "Connect"); }, 1},
      {"ExitUlmora", U, true, [](auto& c) { return Call(c, "ExitUlmora"); }, 2},
      {"Ulmora27 Visible put", U, true, hide, 3, {}, 0, 3},
      // The count is read once; a name asked after the host went is the empty text.
      {"GetSelectedEntities",
       U,
       true,
       [](auto& c) { return Entities(c, "GetSelectedEntities", {}); },
       5,
       {},
       0,
       0,
       [](size_t k) -> std::string {
         return k == 1 ? "0|" : k == 2 ? "2|," : k <= 4 ? "2|S1," : "2|S1,L1";
       }},
      // An empty type matches nothing; a match whose name is lost keeps its place.
      {"GetFilteredSelection",
       U,
       true,
       [](auto& c) { return Entities(c, "GetFilteredSelection", {int32_t{255}}); },
       5,
       {},
       0,
       0,
       [](size_t k) -> std::string {
         return k <= 2 ? "0|" : k == 3 ? "1|" : k == 4 ? "1|S1" : "2|S1,";
       }},
  };
  return members;
}

// A Tarvik with something of everything the members ask about. Its units are inches, while the
// control still holds millimetres.
void Stock(SimTarvik& tarvik) {
  tarvik.LoadModel({-50, -25, 0, 50, 25, 30}, 12);
  SimTarvik::Block block;
  block.defined = true;
  block.limits = {-10, 110, -10, 60, 0, 25};
  tarvik.set_block(block);
  tarvik.AddToolpath("Rough 1", {-45, -22, 0, 45, 22, 30});
  tarvik.AddToolpath("Finish 2", {-40, -20, 1, 40, 20, 29});
  tarvik.SetActive(hosts::EntityKind::kToolpath, "Finish 2");
  tarvik.AddPattern("Holes", {0, 0, 5, 80, 40, 5});
  tarvik.SetActive(hosts::EntityKind::kPattern, "Holes");
  tarvik.AddWorkplane("Top", {10, 20, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1});
  tarvik.SetActive(hosts::EntityKind::kWorkplane, "Top");
  tarvik.set_units("INCHES");
}

// One run of a member in a fresh environment. With `vanish_at`, the host goes away at that call
// of the member: the running host, or the one that Connect creates.
class MemberRun {
 public:
  MemberRun(const Member& m, size_t vanish_at) : host_(m.host), vanish_at_(vanish_at) {
    std::shared_ptr<SimHost> running;
    if (m.host == Host::kZebrin) {
      running = hosts::RunZebrin();
      control_ = NewControl<Zebrin>();
    } else if (m.host == Host::kUlmora) {
      auto ulmora = hosts::RunUlmora();
      ulmora->AddEntity({"S1", "Surface", {}});
      ulmora->AddEntity({"L1", "Line", {}});
      ulmora->Select({"S1", "L1"});
      running = ulmora;
      control_ = NewControl<Ulmora27>();
    } else {
      auto tarvik = hosts::RunTarvik();
      Stock(*tarvik);
      running = tarvik;
      env_.env().running_objects().RegisterClassServer(ProfileOf(m.host).class_name, [this] {
        auto created = std::make_shared<SimTarvik>();
        if (vanish_at_ != 0) created->VanishAt(vanish_at_);
        return created;
      });
      control_ = NewControl<Tarvik3>();
    }
    if (m.connected) Call(control_, "Connect");
    visible_ = GetMember(control_, "Visible").ToBool();
    running->ClearLog();
    if (vanish_at != 0) running->VanishAt(vanish_at);
    error_ = ErrorOf([&] { result_ = m.call(control_); });
  }

  const AutomationObject& control() const { return control_; }
  // The host that the link holds once the member has run.
  std::shared_ptr<SimHost> host() const {
    return std::dynamic_pointer_cast<SimHost>(HostLink::Of(host_).object());
  }
  int32_t error() const { return error_; }
  const Variant& result() const { return result_; }
  VariantBool visible_before() const { return visible_; }
  bool boxes_shown() { return !env_.env().messages().shown().empty(); }

 private:
  ScopedEnv env_;
  const Host host_;
  const size_t vanish_at_;
  AutomationObject control_;
  VariantBool visible_ = VariantBool::kFalse;
  int32_t error_ = 0;
  Variant result_;
};

TEST(VanishingHostTest, EveryMemberEndsAsWithAGoneHostWhicheverCallItVanishesAt) {
  for (const Member& m : TheMembers()) {
    SCOPED_TRACE(m.name);
    size_t n = 0;
    Variant healthy;
    {
      MemberRun run(m, 0);
      ASSERT_EQ(run.error(), 0);
      n = run.host()->log().size();
      EXPECT_EQ(n, m.calls);
      healthy = run.result();
    }
    for (size_t k = 1; k <= n; ++k) {
      SCOPED_TRACE("the host vanishes at call " + std::to_string(k));
      MemberRun run(m, k);
      const std::shared_ptr<SimHost> host = run.host();
      ASSERT_TRUE(host != nullptr && host->gone());
      EXPECT_EQ(run.error(), k <= m.raised ? err::kServerGone : 0);
      if (run.error() == 0 && m.gone_at) {
        EXPECT_EQ(run.result().ToText(), m.gone_at(k));
      } else if (run.error() == 0) {
        EXPECT_EQ(run.result().ToText(), (k + m.unneeded <= n ? m.gone : healthy).ToText());
      }
      EXPECT_FALSE(run.boxes_shown());

      // Afterwards the control finds no host, and keeps the visibility it last held.
      const AutomationObject& c = run.control();
      EXPECT_EQ(GetMember(c, "Connected").ToBool(), VariantBool::kFalse);
      EXPECT_EQ(GetMember(c, "version").ToLong(), 0);
      EXPECT_EQ(GetMember(c, "Visible").ToBool(), run.visible_before());
      // The link stays bound to the dead host: a command goes to it and fails without a word.
      EXPECT_EQ(ErrorOf([&] { Call(c, "Execute", "ECHO after"); }), 0);
      EXPECT_EQ(host->commands().back(), "ECHO after");
    }
  }
}

// The surface tools hold no errors back: a host that goes at any of their calls reaches the
// client as 462, but for Reset, which raises nothing and leaves the control inactive. What
// each leaves behind is what it had done before that call.
struct SurfaceMember {
  const char* name;
  size_t calls;  // with a healthy host
  std::function<void(const AutomationObject& info, const AutomationObject& nearest)> call;
  std::function<std::string(const AutomationObject& info)> seen;  // what shows afterwards
  std::function<std::string(size_t k)> expected;                  // when it went at call k
};

TEST(VanishingHostTest, SurfaceToolsEndAsWithAGoneHostWhicheverCallItVanishesAt) {
  auto held = [](const AutomationObject& info) {
    return GetMember(info, "SurfaceName").ToText() + " " +
           std::to_string(GetMember(info, "NumLats").ToLong());
  };
  auto read = [](const AutomationObject& info) {
    std::string surface = "Patch";
    std::vector<Variant> args{Variant::Ref(surface)};
    return CallMember(info, "GetSurface", args);
  };
  SafeArray outputs[3];
  auto project = [&](const AutomationObject& nearest) {
    std::string surface = "Patch";
    SafeArray in(VarType::kDouble, {{1, 2}});
    std::vector<Variant> args{Variant::Ref(surface), Variant::Ref(in), Variant::Ref(in),
                              Variant::Ref(in)};
    for (SafeArray& out : outputs) args.push_back(Variant::Ref(out));
    CallMember(nearest, "GetNearestPoints", args);
  };
  const SurfaceMember members[] = {
      {"Reset", 1, [](auto& info, auto&) { Call(info, "Reset"); },
       [](auto& info) { return GetMember(info, "Active").ToText(); },
       [](size_t k) { return k == 0 ? "True" : "False"; }},
      // The counts are the store's from the moment the host gave them.
      {"GetSurface", 7, [&](auto& info, auto&) { read(info); }, held,
       [](size_t k) { return k == 0   ? "Patch 4"
                             : k <= 5 ? " 0"
                                      : " 4"; }},
      {"UpdateSurface", 5, [](auto& info, auto&) { Call(info, "UpdateSurface"); }, held,
       [](size_t) { return "Patch 4"; }},
      // The outputs were resized and zeroed before the first host call.
      {"GetNearestPoints", 4, [&](auto&, auto& nearest) { project(nearest); },
       [&](auto&) {
         return std::to_string(outputs[0].UBound()) + " " + outputs[2].Get({2}).ToText();
       },
       [](size_t k) { return k == 0 ? "2 0" : "2 0"; }},
  };
  for (const SurfaceMember& m : members) {
    SCOPED_TRACE(m.name);
    const bool reset = std::string(m.name) == "Reset";
    for (size_t k = 0; k <= m.calls; ++k) {
      SCOPED_TRACE("the host vanishes at call " + std::to_string(k));
      ScopedEnv env;
      auto host = hosts::RunUlmora();
      host->AddSurface("Patch", hosts::PlaneGrid({0, 0, 0}, {3, 0, 0}, {0, 2, 0}, 4, 3));
      AutomationObject info = NewControl<UlmoraSurfaceInfo>();
      AutomationObject nearest = NewControl<UlmoraNearestPoints>();
      Call(info, "Reset");
      if (std::string(m.name) == "UpdateSurface") read(info);
      host->ClearLog();
      if (k != 0) host->VanishAt(int64_t(k));
      const int32_t error = ErrorOf([&] { m.call(info, nearest); });
      if (k == 0) {
        EXPECT_EQ(host->log().size(), m.calls);
      }
      EXPECT_EQ(error, k == 0 || reset ? 0 : err::kServerGone);
      EXPECT_EQ(m.seen(info), m.expected(k));
      EXPECT_TRUE(env.env().messages().shown().empty());
    }
  }
}

}  // namespace
}  // namespace qorvel
