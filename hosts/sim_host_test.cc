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

TEST_F(SimHostTest, LogsEveryCallAsSentWithItsArgumentsDereferenced) {
  GetMember(host_, "VERSION");
  EXPECT_EQ(ErrorOf([&] { CallMember(host_, "NoSuchMember"); }), err::kNoMember);
  ExecuteEx(host_, "Echo hi");
  zebrin_->FailMember("busy", 77, "no");
  EXPECT_EQ(ErrorOf([&] { GetMember(host_, "Busy"); }), 77);

  const std::vector<Call> log = zebrin_->log();
  ASSERT_EQ(log.size(), 4u);
  EXPECT_EQ(log[0].member, "VERSION");
  EXPECT_EQ(log[0].kind, CallKind::kPropertyGet);
  EXPECT_EQ(log[1].member, "NoSuchMember");
  EXPECT_EQ(log[1].kind, CallKind::kMethod);
  EXPECT_EQ(log[2].member, "ExecuteEx");
  ASSERT_EQ(log[2].args.size(), 3u);
  EXPECT_EQ(log[2].args[0].vt(), 8);  // the text itself, not the reference
  EXPECT_EQ(log[2].args[0].ToText(), "Echo hi");
  EXPECT_EQ(log[2].args[1].vt(), 3);
  EXPECT_EQ(log[2].args[2].ToText(), "untouched");  // as it arrived, before the host wrote it
  EXPECT_EQ(log[3].member, "Busy");
  EXPECT_EQ(zebrin_->commands(), std::vector<std::string>{"Echo hi"});
  Execute(host_, "ECHO there");
  EXPECT_EQ(zebrin_->commands("executeex"), std::vector<std::string>{"Echo hi"});
  EXPECT_EQ(zebrin_->commands("Execute"), std::vector<std::string>{"ECHO there"});
}

TEST_F(SimHostTest, SessionMembersReadAndWriteTheHostState) {
  EXPECT_EQ(GetMember(host_, "version").vt(), 3);
  EXPECT_EQ(GetMember(host_, "version").ToLong(), SimZebrin::kDefaultVersion);

  zebrin_->busy = true;
  EXPECT_EQ(GetMember(host_, "Busy").vt(), 11);
  EXPECT_EQ(GetMember(host_, "Busy").ToBool(), VariantBool::kTrue);

  EXPECT_EQ(GetMember(host_, "WindowState").vt(), 2);
  SetMember(host_, "WindowState", int16_t{4});
  EXPECT_EQ(zebrin_->window_state, 4);
  EXPECT_EQ(GetMember(host_, "windowstate").ToInteger(), 4);

  SetMember(host_, "Visible", MakeVariantBool(1));  // kept as it came
  EXPECT_EQ(zebrin_->visible, MakeVariantBool(1));
  SetMember(host_, "Visible", VariantBool::kFalse);
  EXPECT_EQ(GetMember(host_, "Visible").vt(), 11);
  EXPECT_EQ(GetMember(host_, "Visible").ToBool(), VariantBool::kFalse);
}

TEST_F(SimHostTest, MisusedMembersRaiseAsAnAutomationObjectDoes) {
  std::vector<Variant> one{Variant(int32_t{1})};
  struct Case {
    const char* what;
    std::function<void()> call;
    int32_t error;
  } cases[] = {
      {"version put", [&] { SetMember(host_, "version", int32_t{1}); }, err::kNoMember},
      {"Busy put", [&] { SetMember(host_, "Busy", true); }, err::kNoMember},
      {"version with an argument", [&] { GetMember(host_, "version", one); }, err::kWrongArgs},
      {"Exit with an argument", [&] { CallMember(host_, "Exit", one); }, err::kWrongArgs},
      {"Execute with one argument", [&] { CallMember(host_, "Execute", one); }, err::kWrongArgs},
      {"ExecuteEx with two", [&] { qorvel::Call(host_, "ExecuteEx", "ECHO a", int32_t{0}); },
       err::kWrongArgs},
      {"WindowState put beyond 16 bits", [&] { SetMember(host_, "WindowState", int32_t{70000}); },
       err::kOverflow},
      {"Visible put of a word", [&] { SetMember(host_, "Visible", "maybe"); }, err::kTypeMismatch},
      {"unknown method", [&] { CallMember(host_, "Quit"); }, err::kNoMember},
  };
  for (const Case& c : cases) EXPECT_EQ(ErrorOf(c.call), c.error) << c.what;
  EXPECT_FALSE(zebrin_->gone());
  EXPECT_EQ(zebrin_->window_state, 1);
}

TEST_F(SimHostTest, ExecuteExWritesTheOutputThroughTheReference) {
  EXPECT_EQ(ExecuteEx(host_, "ECHO Hello There"), "Hello There\r\n");
  EXPECT_EQ(ExecuteEx(host_, "anything at all"), "");
  EXPECT_EQ(ExecuteEx(host_, "print version"), "Zebrin 2300\r\n");
  // An output argument passed by value is no fault; the caller just doesn't see it.
  EXPECT_NO_THROW(qorvel::Call(host_, "ExecuteEx", "ECHO x", int32_t{0}, ""));
  EXPECT_EQ(Raised([&] { ExecuteEx(host_, "   "); }),
            std::make_pair(kCommandRejected, std::string("Empty command")));
}

TEST_F(SimHostTest, InformationWindowFollowsItsCommandsInAnyCase) {
  Execute(host_, "ADVANCEDOPTS WINDOWS INFORMATION ON");
  EXPECT_TRUE(zebrin_->information_window());
  Execute(host_, "advancedopts windows information off");
  EXPECT_FALSE(zebrin_->information_window());
  Execute(host_, "AdvancedOpts Windows Information On");
  EXPECT_TRUE(zebrin_->information_window());
}

TEST_F(SimHostTest, ScriptedReplyStandsInForTheCommandOnBothMembers) {
  zebrin_->ScriptReply("echo one", "scripted\r\n");
  EXPECT_EQ(ExecuteEx(host_, "ECHO ONE"), "scripted\r\n");
  EXPECT_EQ(ExecuteEx(host_, "ECHO two"), "two\r\n");
  zebrin_->ScriptReply("   ", "blank is fine here");
  EXPECT_NO_THROW(Execute(host_, "   "));
  zebrin_->ClearFaults();
  EXPECT_EQ(ExecuteEx(host_, "ECHO ONE"), "ONE\r\n");
}

TEST_F(SimHostTest, FailingCommandAndFailingMemberRaiseTheirErrors) {
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

TEST_F(SimHostTest, ExitEndsTheHostUnlessItLingers) {
  CallMember(host_, "Exit");
  EXPECT_TRUE(zebrin_->exited);
  EXPECT_EQ(ErrorOf([&] { GetMember(host_, "version"); }), err::kServerGone);
  EXPECT_EQ(ErrorOf([&] { Bind(); }), err::kCantCreate);

  auto slow = RunZebrin();
  slow->linger_on_exit = true;
  CallMember(slow, "exit");
  EXPECT_EQ(GetMember(slow, "version").ToLong(), 2300);  // still closing
  EXPECT_EQ(ErrorOf([&] { Bind(); }), err::kCantCreate);
  slow->GoAway();
  EXPECT_EQ(ErrorOf([&] { GetMember(slow, "version"); }), err::kServerGone);
}

TEST_F(SimHostTest, AnOlderHostGoingAwayLeavesTheNewerOneRegistered) {
  auto newer = RunZebrin();
  zebrin_->GoAway();
  EXPECT_EQ(Bind(), newer);
  CallMember(newer, "Exit");
  EXPECT_EQ(ErrorOf([&] { Bind(); }), err::kCantCreate);
}

}  // namespace
}  // namespace qorvel::hosts
