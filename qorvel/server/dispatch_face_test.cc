#include "qorvel/frame/dispatch_face.h"

#include <gtest/gtest.h>

#include <functional>

#include "hosts/simulators.h"
#include "qorvel/frame/control.h"
#include "qorvel/frame/host_link.h"
#include "qorvel/machining/tarvik3_face.h"
#include "qorvel/platform/collection.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/server/registration.h"
#include "qorvel/session/zebrin.h"
#include "qorvel/session/zebrin_face.h"

namespace qorvel {
namespace {

// A property read with its index arguments.
Variant Get(const AutomationObject& object, std::string_view name, std::vector<Variant> args) {
  return GetMember(object, name, args);
}

class DispatchFaceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    zebrin_host_ = hosts::RunZebrin();
    tarvik_host_ = hosts::RunTarvik();
    zebrin_ = std::dynamic_pointer_cast<ClassObject>(NewControl<Zebrin>());
    tarvik_ = std::dynamic_pointer_cast<ClassObject>(NewControl<Tarvik3>());
  }
  void TearDown() override {
    zebrin_.reset();
    tarvik_.reset();
  }

  ScopedEnv env_;
  std::shared_ptr<hosts::SimZebrin> zebrin_host_;
  std::shared_ptr<hosts::SimTarvik> tarvik_host_;
  std::shared_ptr<ClassObject> zebrin_;
  std::shared_ptr<ClassObject> tarvik_;
};

TEST_F(DispatchFaceTest, ByNameWithoutCaseAndByDispid) {
  Call(zebrin_, "connect");
  EXPECT_EQ(GetMember(zebrin_, "VERSION").ToLong(), 2300);
  std::vector<Variant> none;
  EXPECT_EQ(zebrin_->InvokeById(0x68030005, CallKind::kPropertyGet, none).ToLong(), 2300);
  std::vector<Variant> state{Variant(int32_t{2})};
  zebrin_->InvokeById(0x68030002, CallKind::kPropertyPut, state);
  EXPECT_EQ(zebrin_host_->window_state, 2);
  EXPECT_EQ(zebrin_->Shape("Visible"), MemberShape::kProperty);
  EXPECT_EQ(zebrin_->Shape("execute"), MemberShape::kMethod);
  EXPECT_EQ(tarvik_->Shape("BlockSize"), MemberShape::kIndexedProperty);
  EXPECT_EQ(zebrin_->Shape("Nope"), MemberShape::kMissing);
  EXPECT_EQ(Call(zebrin_, "Connected").ToBool(), VariantBool::kTrue);  // a get called as method
  zebrin_host_->ClearLog();
  EXPECT_EQ(Get(zebrin_, "ExecuteEx", {"PRINT"}).vt(), 8);  // and a method read as a property
  EXPECT_EQ(zebrin_host_->commands(), std::vector<std::string>{"PRINT"});
}

// A get stands in for a method call and the other way round; nothing stands in for a put.
TEST_F(DispatchFaceTest, ErrorNumbers) {
  std::vector<Variant> none, index{1};
  const std::pair<std::function<void()>, int32_t> cases[] = {
      {[&] { Call(zebrin_, "Nope"); }, 438},
      {[&] { GetMember(zebrin_, "InformationWindow"); }, 438},  // put only
      {[&] { Call(zebrin_, "InformationWindow", true); }, 438},
      {[&] { SetMember(zebrin_, "Connected", true); }, 438},  // no put
      {[&] { SetMember(zebrin_, "Execute", "X"); }, 438},
      {[&] { zebrin_->InvokeById(0x12345, CallKind::kMethod, none); }, 438},
      {[&] { Call(zebrin_, "Execute"); }, 450},
      {[&] { Call(zebrin_, "Execute", "a", "b"); }, 450},
      {[&] { GetMember(tarvik_, "BlockSize"); }, 450},
      {[&] { SetMember(tarvik_, "Units", Variant(), index); }, 450},
      {[&] { Call(tarvik_, "SetBlock", "x", 1.0); }, 13},
      {[&] { Call(tarvik_, "SetBlock", 2.5e10, 1.0); }, 6},
      {[&] { Call(zebrin_, "Connected"); }, 0},
  };
  for (size_t i = 0; i < std::size(cases); ++i)
    EXPECT_EQ(ErrorOf(cases[i].first), cases[i].second) << i;
}

TEST_F(DispatchFaceTest, OmittedOptionalsTakeTheirDefaults) {
  Call(tarvik_, "Connect");  // no default: arrives as 0, bind only
  EXPECT_EQ(GetMember(tarvik_, "Connected").ToBool(), VariantBool::kTrue);
  tarvik_host_->ClearLog();
  Call(tarvik_, "DefineTool", int32_t{6}, 8.0, Variant(), 1.5);
  EXPECT_EQ(
      tarvik_host_->commands(),
      (std::vector<std::string>{"EDIT DIAMETER 8.", "EDIT TOOLTYPE OFFCENTRETIPRAD",
                                "EDIT TIPRADIUS 1.5", "EDIT TIPRADIUSX 0.", "EDIT TIPRADIUSY 0."}));
}

TEST_F(DispatchFaceTest, ByReferenceArgumentsAreWrittenBack) {
  Call(tarvik_, "Connect");
  tarvik_host_->AddToolpath("A", {1, 2, 3, 4, 5, 6});
  std::string name = "A";
  double v[6] = {};
  std::vector<Variant> args{Variant::Ref(name)};
  for (double& d : v) args.push_back(Variant::Ref(d));
  Variant plain_name("A");  // a by-value argument for a by-reference parameter stays as it is
  CallMember(tarvik_, "SizeToolpath", args);
  EXPECT_EQ(name, "\"A\"");
  EXPECT_EQ(std::vector<double>(v, v + 6), (std::vector<double>{1, 4, 2, 5, 3, 6}));
  std::vector<Variant> by_value{plain_name, 0, 0, 0, 0, 0, 0};
  CallMember(tarvik_, "SizeToolpath", by_value);
  EXPECT_EQ(by_value[0].ToText(), "A");
}

TEST_F(DispatchFaceTest, EveryRowOfTheBuiltClassesIsBound) {
  for (const auto& object : {zebrin_, tarvik_}) {
    for (const MemberInfo& m : object->interface_info().members) {
      EXPECT_TRUE(object->IsBound(m)) << object->class_info().name << "." << m.name;
    }
  }
}

TEST_F(DispatchFaceTest, ArgumentsConvertByTheAutomationRules) {
  Call(tarvik_, "Connect");
  tarvik_host_->ClearLog();
  SetMember(tarvik_, "WindowState", "2");  // text to an enumeration
  SetMember(tarvik_, "Units", 1.5);        // rounds half to even: 2 is no UnitsType, ignored
  EXPECT_EQ(tarvik_host_->window_state, 2);
  EXPECT_EQ(GetMember(tarvik_, "Units").ToLong(), 0);
  EXPECT_EQ(Get(tarvik_, "BlockSize", {"1"}).vt(), 5);
  // A by-reference argument that can't convert fails the call before it runs and keeps the
  // caller's variable as it was.
  std::string length = "long";
  std::vector<Variant> args{int32_t{0}, 6.0, Variant::Ref(length)};
  tarvik_host_->ClearLog();
  EXPECT_EQ(ErrorOf([&] { CallMember(tarvik_, "DefineTool", args); }), 13);
  EXPECT_EQ(length, "long");
  EXPECT_TRUE(tarvik_host_->commands().empty());
}

TEST_F(DispatchFaceTest, OmittedByReferenceArgumentsComeBackAsTheirDefaults) {
  Call(tarvik_, "Connect");
  Variant length, tip, number, name = "T1";
  std::vector<Variant> args{
      int32_t{0}, 6.0,       Variant::Ref(length), Variant::Ref(tip), Variant(), Variant(),
      Variant(),  Variant(), Variant::Ref(number), Variant::Ref(name)};
  CallMember(tarvik_, "DefineTool", args);
  EXPECT_EQ(std::make_pair(length.vt(), length.ToDouble()), std::make_pair(uint16_t{5}, -1.0));
  EXPECT_EQ(std::make_pair(number.vt(), number.ToLong()), std::make_pair(uint16_t{3}, -1));
  EXPECT_EQ(name.ToText(), "T1");
  int16_t status = 7;  // a typed variable keeps its type: Connect reads it only
  std::vector<Variant> connect{Variant::Ref(status)};
  CallMember(zebrin_, "Connect", connect);
  EXPECT_EQ(status, 7);
}

TEST_F(DispatchFaceTest, ABindingThatDoesntFitItsRowIsRefused) {
  using R = Rows<Zebrin>;
  const auto refused = [](std::vector<Binding<Zebrin>> rows) {
    return ErrorOf([&] { BindingTable<Zebrin> table("Zebrin", {rows}); });
  };
  EXPECT_EQ(refused({R::Method<&Zebrin::Disconnect>("ExitTarvik")}), 5);  // no such row
  EXPECT_EQ(refused({R::Method<&Zebrin::Disconnect>("ExitZebrin"),        // bound twice
                     R::Method<&Zebrin::Disconnect>("ExitZebrin")}),
            5);
  EXPECT_EQ(refused({R::Method<&Zebrin::Execute>("ExitZebrin")}), 5);   // takes an argument
  EXPECT_EQ(refused({R::Get<&Zebrin::Busy>("version")}), 5);            // another result
  EXPECT_EQ(refused({R::Put<&Zebrin::SetWindowState>("Visible")}), 5);  // another type
  EXPECT_EQ(ErrorOf([] { BindingTable<Zebrin> table("Nothing", {}); }), 5);
  // A by-reference row on a member that takes its argument by value would lose what the member
  // leaves there, and the reverse writes where nobody reads: both are refused, naming the row.
  const auto refusal = [](std::vector<Binding<Zebrin>> rows) {
    try {
      BindingTable<Zebrin> table("Zebrin", {rows});
    } catch (const Error& e) {
      return std::to_string(e.number()) + " " + e.description();
    }
    return std::string("bound");
  };
  EXPECT_EQ(refusal({R::Method<&Zebrin::SetWindowState>("Connect")}),
            "5 _Zebrin.Connect: ConnectionStatus is passed by reference but the member takes it "
            "by value");
  EXPECT_EQ(refusal({R::Put<&Zebrin::Connect>("WindowState")}),
            "5 _Zebrin.WindowState: NewState is passed by value but the member takes it by "
            "reference");
}

// A class whose member runs out of memory; bound to a row of _Zebrin.
struct Greedy {
  void Execute(const std::string&) { throw std::bad_alloc(); }
};

}  // namespace

template <>
const BindingTable<Greedy>& BindingsOf<Greedy>() {
  static const BindingTable<Greedy> table("Zebrin",
                                          {{Rows<Greedy>::Method<&Greedy::Execute>("Execute")}});
  return table;
}

namespace {

TEST_F(DispatchFaceTest, OutOfMemoryReachesTheClientAsError7) {
  auto greedy = std::make_shared<Instance<Greedy>>();
  EXPECT_EQ(ErrorOf([&] { Call(greedy, "Execute", "x"); }), 7);
  std::vector<Variant> args{Variant("x")};
  EXPECT_EQ(ErrorOf([&] { greedy->InvokeById(0x6003000a, CallKind::kMethod, args); }), 7);
  EXPECT_EQ(ErrorOf([&] { Call(greedy, "Disconnect"); }), 438);  // a row it doesn't bind
}

// A plain class comes bare: no container, no shell, no outgoing interface.
TEST_F(DispatchFaceTest, PointClassHoldsThreeCoordinatesOneAtATime) {
  DllRegisterServer();
  AutomationObject point = CreateObject("QorvelOLE.PointClass");
  EXPECT_EQ(std::dynamic_pointer_cast<ControlShell>(point), nullptr);
  EXPECT_EQ(ErrorOf([&] { std::dynamic_pointer_cast<ClassObject>(point)->Advise(point); }), 438);
  const auto xyz = [&] {
    return std::vector<double>{GetMember(point, "X").ToDouble(), GetMember(point, "Y").ToDouble(),
                               GetMember(point, "Z").ToDouble()};
  };
  EXPECT_EQ(xyz(), (std::vector<double>{0, 0, 0}));
  double y = 2.5;
  std::vector<Variant> by_ref{Variant::Ref(y)};
  point->Invoke("Y", CallKind::kPropertyPut, by_ref);
  EXPECT_EQ(xyz(), (std::vector<double>{0, 2.5, 0}));
  SetMember(point, "z", "-1");  // text converts by the automation rules
  EXPECT_EQ(xyz(), (std::vector<double>{0, 2.5, -1}));
}

// A sink that writes down what it hears.
class Sink : public Dispatch {
 public:
  Variant Invoke(std::string_view, CallKind, std::span<Variant>) override { Raise(438); }
  Variant InvokeById(int32_t dispid, CallKind, std::span<Variant> args) override {
    heard.push_back(std::to_string(dispid) + ":" + (args.empty() ? "" : args[0].ToText()));
    if (fail) Raise(5);
    return Variant();
  }
  std::vector<std::string> heard;
  bool fail = false;
};

TEST_F(DispatchFaceTest, EventsReachTheConnectedSinksByDispid) {
  auto first = std::make_shared<Sink>();
  auto second = std::make_shared<Sink>();
  first->fail = true;  // its failure is the client's: the second still hears the event
  const int32_t cookie = zebrin_->Advise(first);
  zebrin_->Advise(second);
  Call(zebrin_, "Connect");  // ConnectionChange is declared and never raised
  EXPECT_TRUE(first->heard.empty());

  VariantBool connected = VariantBool::kTrue;
  std::vector<Variant> args{Variant::Ref(connected)};
  zebrin_->RaiseEvent(1, args);
  EXPECT_EQ(first->heard, std::vector<std::string>{"1:True"});
  EXPECT_EQ(second->heard, std::vector<std::string>{"1:True"});

  zebrin_->Unadvise(cookie);
  zebrin_->RaiseEvent(1, args);
  EXPECT_EQ(first->heard.size(), 1u);
  EXPECT_EQ(second->heard.size(), 2u);
  EXPECT_EQ(ErrorOf([&] { zebrin_->Unadvise(cookie); }), 5);
  EXPECT_EQ(ErrorOf([&] { zebrin_->RaiseEvent(2, args); }), 5);  // no such event
  EXPECT_EQ(ErrorOf([&] { zebrin_->Advise(nullptr); }), 91);
  EXPECT_NE(tarvik_->Advise(second), 0);  // __Tarvik3 declares no event but takes a sink
}

class HostControlLifeTest : public ::testing::Test {
 protected:
  void SetUp() override { DllRegisterServer(); }
  ScopedEnv env_;
};

TEST_F(HostControlLifeTest, TerminateOfOneInstanceDisconnectsTheOthers) {
  auto host = hosts::RunZebrin();
  AutomationObject first = CreateObject("qorvelole.zebrin");
  AutomationObject second = CreateObject("QorvelOLE.Zebrin");
  auto shell = std::dynamic_pointer_cast<ControlShell>(first);  // sited in the run-time container
  ASSERT_NE(shell, nullptr);
  EXPECT_EQ(shell->site(), &Container::RunTime());
  EXPECT_EQ(shell->user_control.Width, 500);
  EXPECT_EQ(std::dynamic_pointer_cast<ClassObject>(first)->class_info().name, "Zebrin");
  shell.reset();
  Call(first, "Connect");
  Call(second, "Execute", "BEFORE");
  EXPECT_EQ(GetMember(second, "Connected").ToBool(), VariantBool::kTrue);

  first.reset();  // the container destroys it: Terminate runs Disconnect
  host->ClearLog();
  Call(second, "Execute", "AFTER");
  EXPECT_EQ(GetMember(second, "Connected").ToBool(), VariantBool::kFalse);
  EXPECT_TRUE(host->log().empty());  // the link is empty under the second one too
  EXPECT_FALSE(host->exited);        // the host goes on running
  EXPECT_TRUE(env_.env().messages().shown().empty());

  Call(second, "Connect");  // its flag is false already: one Connect binds again
  EXPECT_EQ(GetMember(second, "Connected").ToBool(), VariantBool::kTrue);
}

TEST_F(HostControlLifeTest, DestroyedWithoutAHostDoesNothingVisible) {
  AutomationObject zebrin = CreateObject("QorvelOLE.Zebrin");
  EXPECT_EQ(GetMember(zebrin, "version").ToLong(), 0);
  zebrin.reset();
  EXPECT_TRUE(env_.env().messages().shown().empty());
  EXPECT_TRUE(HostLink::Of(Host::kZebrin).empty());
  EXPECT_EQ(DllCanUnloadNow(), hresult::kOk);
}

}  // namespace
}  // namespace qorvel
