#include "hosts/sim_host.h"

#include <gtest/gtest.h>

#include <functional>

#include "hosts/simulators.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"

namespace qorvel::hosts {
namespace {

std::string ExecuteEx(const AutomationObject& host, std::string command) {
  int32_t status = 0;
  std::string output = "untouched";
  std::vector<Variant> args{Variant::Ref(command), Variant::Ref(status), Variant::Ref(output)};
  CallMember(host, "ExecuteEx", args);
  return output;
}

void Execute(const AutomationObject& host, std::string command) {
  int32_t status = 0;
  std::vector<Variant> args{Variant::Ref(command), Variant::Ref(status)};
  CallMember(host, "Execute", args);
}

// The error a call raises: number and description; 0 and "" when it raises none.
std::pair<int32_t, std::string> Raised(const std::function<void()>& call) {
  try {
    call();
  } catch (const Error& e) {
    return {e.number(), e.description()};
  }
  return {0, ""};
}

int32_t ErrorOf(const std::function<void()>& call) { return Raised(call).first; }

class SimHostTest : public ::testing::Test {
 protected:
  void SetUp() override {
    zebrin_ = RunZebrin();
    host_ = zebrin_;
  }
  AutomationObject Bind() {
    return Env::Current().running_objects().BindRunning("Zebrin.Document");
  }

  ScopedEnv env_;
  std::shared_ptr<SimZebrin> zebrin_;
  AutomationObject host_;
};

// Scripted replies stand in on both members and go with the faults.
TEST_F(SimHostTest, FaultsRaiseTheirErrorsUntilCleared) {
  zebrin_->ScriptReply("   ", "blank is fine here");
  zebrin_->ScriptReply("echo X", "scripted");
  EXPECT_EQ(ExecuteEx(host_, "ECHO x"), "scripted");
  EXPECT_NO_THROW(Execute(host_, "   "));
  zebrin_->FailCommand("ADVANCEDOPTS WINDOWS INFORMATION ON", 1234, "refused");
  EXPECT_EQ(Raised([&] { Execute(host_, "advancedopts windows information on"); }),
            std::make_pair(1234, std::string("refused")));
  EXPECT_FALSE(zebrin_->information_window());
  EXPECT_EQ(ExecuteEx(host_, "ECHO still here"), "still here\r\n");

  zebrin_->FailMember("EXECUTEEX", 5000, "broken");
  EXPECT_EQ(Raised([&] { ExecuteEx(host_, "ECHO x"); }),
            std::make_pair(5000, std::string("broken")));
  EXPECT_NO_THROW(Execute(host_, "ECHO x"));
  EXPECT_EQ(GetMember(host_, "version").ToLong(), 2300);
  zebrin_->ClearFaults();
  EXPECT_EQ(ExecuteEx(host_, "ECHO x"), "x\r\n");
}

TEST_F(SimHostTest, GoneHostFailsEveryCallWith462AndLeavesTheTable) {
  zebrin_->GoAway();
  EXPECT_TRUE(zebrin_->gone());
  const std::function<void()> calls[] = {
      [&] { GetMember(host_, "version"); },     [&] { GetMember(host_, "Busy"); },
      [&] { GetMember(host_, "WindowState"); }, [&] { SetMember(host_, "Visible", true); },
      [&] { CallMember(host_, "Exit"); },       [&] { Execute(host_, "ECHO x"); },
      [&] { ExecuteEx(host_, "ECHO x"); },      [&] { CallMember(host_, "NoSuchMember"); },
  };
  for (const auto& call : calls) {
    EXPECT_EQ(Raised(call), std::make_pair(err::kServerGone, DescriptionOf(err::kServerGone)));
  }
  EXPECT_EQ(zebrin_->log().size(), std::size(calls));  // still logged
  EXPECT_EQ(ErrorOf([&] { Bind(); }), err::kCantCreate);
}

TEST_F(SimHostTest, AHostSetToVanishAnswersUntilItsNthCall) {
  zebrin_->VanishAt(3);
  EXPECT_EQ(GetMember(host_, "version").ToLong(), 2300);
  EXPECT_EQ(ExecuteEx(host_, "ECHO two"), "two\r\n");
  EXPECT_EQ(Bind(), host_);  // still running before its third call
  EXPECT_EQ(ErrorOf([&] { Execute(host_, "ECHO three"); }), err::kServerGone);
  EXPECT_TRUE(zebrin_->gone());
  EXPECT_EQ(ErrorOf([&] { GetMember(host_, "Busy"); }), err::kServerGone);
  EXPECT_EQ(ErrorOf([&] { Bind(); }), err::kCantCreate);
  EXPECT_EQ(zebrin_->commands(), (std::vector<std::string>{"ECHO two", "ECHO three"}));

  auto other = RunZebrin();
  other->VanishAt(1);
  other->ClearFaults();  // a vanishing still to come is a fault like the others
  EXPECT_EQ(GetMember(other, "version").ToLong(), 2300);
  EXPECT_EQ(ErrorOf([&] { other->VanishAt(0); }), err::kInvalidCall);
}

// A lingering host still answers after Exit but is no longer running; an older host going
// away leaves the newer one registered.
TEST_F(SimHostTest, ExitEndsTheHostUnlessItLingers) {
  auto newer = RunZebrin();
  zebrin_->linger_on_exit = true;
  CallMember(host_, "exit");
  EXPECT_EQ(GetMember(host_, "version").ToLong(), 2300);  // still closing
  EXPECT_EQ(Bind(), newer);
  CallMember(newer, "Exit");
  EXPECT_TRUE(newer->exited);
  EXPECT_EQ(ErrorOf([&] { GetMember(newer, "version"); }), err::kServerGone);
  EXPECT_EQ(ErrorOf([&] { Bind(); }), err::kCantCreate);
}

}  // namespace
}  // namespace qorvel::hosts
