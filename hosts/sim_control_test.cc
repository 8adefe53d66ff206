#include "hosts/sim_control.h"

#include <gtest/gtest.h>

#include "hosts/simulators.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/error_testing.h"

namespace qorvel::hosts {
namespace {

// The error a statement raises.
template <class Statement>
Error CaughtError(Statement&& statement) {
  try {
    statement();
  } catch (const Error& e) {
    return e;
  }
  ADD_FAILURE() << "no error raised";
  return Error(0, "");
}

std::vector<std::string> Texts(const Variant& list) {
  const SafeArray array = list.ToArray();
  EXPECT_EQ(array.element_type(), VarType::kVariant);  // all a script can index
  EXPECT_EQ(array.LBound(), 0);
  std::vector<std::string> texts;
  for (int64_t i = 0; i < array.size(); ++i) texts.push_back(array.GetFlat(i).ToText());
  return texts;
}

class SimControlTest : public ::testing::Test {
 protected:
  template <class... Args>
  Variant Call(std::string_view member, Args&&... args) {
    std::vector<Variant> list{Variant(std::forward<Args>(args))...};
    return control_->Invoke(member, CallKind::kMethod, list);
  }

  ScopedEnv env_;
  bool quit_ = false;
  std::shared_ptr<SimControl> control_ = std::make_shared<SimControl>(
      SimControl::Hooks{.quit = [this] { quit_ = true; }, .launched = {}});
};

TEST_F(SimControlTest, RunStartsAHostThatNamesReachAndThatTheLogShows) {
  const Variant zebrin = Call("run", "Zebrin");
  EXPECT_EQ(Env::Current().running_objects().BindRunning("Zebrin.Document"), zebrin.ToObject());
  EXPECT_EQ(Call("HOST", "zebrin.document").ToObject(), zebrin.ToObject());
  Call("SetVersion", "Zebrin", 2410);
  EXPECT_EQ(GetMember(zebrin.ToObject(), "version").ToLong(), 2410);
  std::string command = "ECHO a";
  int32_t status = 0;
  std::vector<Variant> args{Variant::Ref(command), Variant::Ref(status)};
  CallMember(zebrin.ToObject(), "Execute", args);
  EXPECT_EQ(Texts(Call("Log", "Zebrin")),
            (std::vector<std::string>{"version", "Execute(\"ECHO a\", 0)"}));
  EXPECT_EQ(Texts(Call("Commands", "Zebrin")), std::vector<std::string>{"ECHO a"});
  EXPECT_EQ(Call("Started", "Zebrin").ToLong(), 1);
  EXPECT_EQ(Call("Started", "Tarvik").ToLong(), 0);
  EXPECT_TRUE(Call("Host", "Tarvik").ToObject() == nullptr);  // Nothing, not an error
}

TEST_F(SimControlTest, LeftOutArgumentsTakeTheirDefaults) {
  Call("Run", "Zebrin");
  Call("FailMember", "Zebrin", "Visible", 70);  // the runtime's text for the number
  const Error e = CaughtError([&] { GetMember(LastZebrin(), "Visible"); });
  EXPECT_EQ(e.number(), 70);
  EXPECT_EQ(e.description(), DescriptionOf(70));
  Call("Run", "Ulmora");
  Call("AddPlane", "Ulmora", "P", Variant(), Variant(), Variant(), 3);  // Empty: the default
  EXPECT_EQ(Texts(Call("Surfaces", "Ulmora")), std::vector<std::string>{"P"});
}

TEST_F(SimControlTest, BadArgumentsAreClearErrors) {
  EXPECT_EQ(ErrorOf([&] { Call("Log", "Zebrin"); }), err::kInvalidCall);  // none started
  Call("Run", "Tarvik");
  const Error wrong_host = CaughtError([&] { Call("AddPlane", "Tarvik", "P"); });
  EXPECT_EQ(wrong_host.number(), err::kInvalidCall);
  EXPECT_NE(wrong_host.description().find("AddPlane, argument 1"), std::string::npos);
  EXPECT_EQ(ErrorOf([&] { Call("Run", "Lathe"); }), err::kInvalidCall);
  EXPECT_EQ(ErrorOf([&] { Call("VanishAt", "Tarvik", "two"); }), err::kInvalidCall);
  EXPECT_EQ(ErrorOf([&] { Call("GoAway"); }), err::kWrongArgs);
  EXPECT_EQ(ErrorOf([&] { Call("NoSuchMember"); }), err::kNoMember);
  std::vector<Variant> put{Variant(1)};
  EXPECT_EQ(ErrorOf([&] { control_->Invoke("Run", CallKind::kPropertyPut, put); }), err::kNoMember);
}

TEST_F(SimControlTest, SurfacesTakePointsAsScriptArrays) {
  Call("Run", "Ulmora");
  auto point = [](double x, double y, double z) {
    SafeArray p(VarType::kVariant, {Bound{0, 3}});
    p.Put({0}, x), p.Put({1}, y), p.Put({2}, z);
    return Variant(std::move(p));
  };
  Call("AddPlane", "Ulmora", "P", point(0, 0, 0), point(10, 0, 0), point(0, 10, 0));
  const Variant foot = Call("Nearest", "Ulmora", "P", point(3, 4, 5));
  EXPECT_NEAR(foot.ToArray().GetFlat(0).ToDouble(), 3, 1e-9);
  EXPECT_NEAR(foot.ToArray().GetFlat(2).ToDouble(), 0, 1e-9);
  const Error degenerate =
      CaughtError([&] { Call("AddPlane", "Ulmora", "Q", point(0, 0, 0), point(0, 0, 0)); });
  EXPECT_EQ(degenerate.number(), err::kInvalidCall);
  EXPECT_EQ(degenerate.description().rfind("Surface Q: ", 0), 0u);
}

TEST_F(SimControlTest, QuitEndsEverySimulatorAndThenTheProgram) {
  Call("Run", "Zebrin");
  Call("Run", "Tarvik");
  Call("Quit");
  EXPECT_TRUE(quit_);
  EXPECT_TRUE(LastZebrin()->gone());
  EXPECT_TRUE(LastTarvik()->gone());
  EXPECT_EQ(ErrorOf([&] { Env::Current().running_objects().BindRunning("Zebrin.Document"); }),
            err::kCantCreate);
}

TEST_F(SimControlTest, LaunchStartsAsTheProgramWouldAndTellsTheProgram) {
  std::shared_ptr<SimHost> heard;
  SimControl control({.quit = {}, .launched = [&](const auto& host) { heard = host; }});
  Call("SetStartDelay", 0);
  std::vector<Variant> args{Variant("Tarvik")};
  const Variant tarvik = control.Invoke("Launch", CallKind::kMethod, args);
  EXPECT_EQ(heard, tarvik.ToObject());
  EXPECT_EQ(Env::Current().running_objects().BindRunning("Tarvik.Document"), heard);
}

}  // namespace
}  // namespace qorvel::hosts
