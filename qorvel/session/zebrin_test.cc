#include "qorvel/session/zebrin.h"

#include <gtest/gtest.h>

#include "hosts/simulators.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/error_testing.h"

namespace qorvel {
namespace {

using hosts::SimZebrin;

class ZebrinTest : public ::testing::Test {
 protected:
  void SetUp() override { zebrin_.Initialize(); }
  // Connect takes the client's variable; a client that leaves it out passes 0.
  void Connect(int32_t status = 0) { zebrin_.Connect(status); }
  std::shared_ptr<SimZebrin> ConnectedHost() {
    auto host = hosts::RunZebrin();
    Connect();
    host->ClearLog();
    return host;
  }
  std::vector<std::string> Members(const SimZebrin& host) {
    std::vector<std::string> out;
    for (const auto& call : host.log()) out.push_back(call.member);
    return out;
  }

  ScopedEnv env_;
  Zebrin zebrin_;
};

TEST_F(ZebrinTest, WithAnEmptyLinkEveryMemberFailsQuietly) {
  EXPECT_EQ(zebrin_.version(), 0);
  EXPECT_EQ(zebrin_.Connected(), VariantBool::kFalse);
  EXPECT_EQ(zebrin_.Busy(), VariantBool::kFalse);
  EXPECT_EQ(zebrin_.WindowState(), 0);
  EXPECT_EQ(zebrin_.ExecuteEx("ECHO x"), "Error");
  EXPECT_EQ(zebrin_.Visible(), VariantBool::kFalse);
  zebrin_.Execute("ECHO x");
  zebrin_.SetInformationWindow(VariantBool::kTrue);
  zebrin_.SetWindowState(2);
  zebrin_.ExitZebrin();
  zebrin_.Disconnect();
  Connect();
  EXPECT_EQ(zebrin_.Connected(), VariantBool::kFalse);
  EXPECT_EQ(ErrorOf([&] { zebrin_.SetVisible(VariantBool::kTrue); }), 91);  // only this raises
}

TEST_F(ZebrinTest, ConnectWithAnyValueButOneBindsOnly) {
  hosts::InstallSimulatedHosts();
  for (int32_t status : {0, 2, -1}) {
    Connect(status);
    EXPECT_EQ(zebrin_.Connected(), VariantBool::kFalse) << status;
  }
  EXPECT_TRUE(env_.env().launches().empty());
  EXPECT_TRUE(env_.env().messages().shown().empty());
  Connect(1);
  EXPECT_EQ(zebrin_.Connected(), VariantBool::kTrue);
  EXPECT_EQ(zebrin_.version(), SimZebrin::kDefaultVersion);
  EXPECT_EQ(env_.env().launches().size(), 1u);
}

TEST_F(ZebrinTest, ConnectWhileConnectedNeverRebinds) {
  hosts::InstallSimulatedHosts();
  auto first = ConnectedHost();
  first->GoAway();
  auto second = hosts::RunZebrin();
  Connect(1);  // the flag was still true: only the probe runs
  EXPECT_EQ(zebrin_.Connected(), VariantBool::kFalse);
  EXPECT_TRUE(env_.env().launches().empty());
  Connect();
  EXPECT_EQ(zebrin_.Connected(), VariantBool::kTrue);
  EXPECT_EQ(HostLink::Of(Host::kZebrin).object(), second);
}

TEST_F(ZebrinTest, VersionsThatCountAsNotConnected) {
  auto host = hosts::RunZebrin();
  Connect();
  // clang-format off
  const std::pair<Variant, int16_t> cases[] = {
      {Variant(int32_t{0}), 0},  {Variant(int32_t{70000}), 0},     {Variant("junk"), 0},
      {Variant("2400"), 2400},   {Variant(int32_t{-5}), -5},       {Variant(int32_t{32767}), 32767},
      {Variant(2.5), 2}};  // half to even
  // clang-format on
  for (const auto& [reply, version] : cases) {
    host->set_version(reply);
    EXPECT_EQ(zebrin_.version(), version) << reply.ToText();
    EXPECT_EQ(zebrin_.Connected(), ToVariantBool(version != 0)) << reply.ToText();
  }
  host->set_version(int32_t{0});
  zebrin_.Execute("ECHO still reaches the host");
  EXPECT_EQ(host->commands().back(), "ECHO still reaches the host");
}

TEST_F(ZebrinTest, LiveHostMembers) {
  auto host = ConnectedHost();
  host->busy = true;
  host->window_state = 4;
  EXPECT_EQ(zebrin_.Busy(), VariantBool::kTrue);
  EXPECT_EQ(zebrin_.WindowState(), 4);
  EXPECT_EQ(zebrin_.ExecuteEx("ECHO hello"), "hello\r\n");
  EXPECT_EQ(zebrin_.ExecuteEx("QUIET"), "");
  zebrin_.SetInformationWindow(VariantBool::kTrue);
  EXPECT_TRUE(host->information_window());
  zebrin_.SetInformationWindow(VariantBool::kFalse);
  EXPECT_FALSE(host->information_window());
  zebrin_.SetInformationWindow(MakeVariantBool(1));
  EXPECT_EQ(host->commands(),
            (std::vector<std::string>{"ECHO hello", "QUIET", "ADVANCEDOPTS WINDOWS INFORMATION ON",
                                      "ADVANCEDOPTS WINDOWS INFORMATION OFF"}));
}

TEST_F(ZebrinTest, WindowStatePutTakesOnlyTheFourStates) {
  auto host = ConnectedHost();
  for (int32_t state : {3, 0, 16}) zebrin_.SetWindowState(state);
  EXPECT_TRUE(host->log().empty());
  zebrin_.SetWindowState(8);
  ASSERT_EQ(host->log().size(), 1u);
  EXPECT_EQ(host->log()[0].member, "WindowState");
  EXPECT_EQ(host->log()[0].kind, CallKind::kPropertyPut);
  EXPECT_EQ(host->log()[0].args[0].vt(), 2);  // a 16-bit integer
  host->window_state = 1;
  EXPECT_EQ(zebrin_.WindowState(), 1);  // what the host says, not the cache
}

TEST_F(ZebrinTest, VisiblePutWritesOnlyWhenTheHostDiffers) {
  auto host = ConnectedHost();
  struct Case {
    int16_t yesno;
    VariantBool host_before;
    std::vector<std::string> calls;
    VariantBool host_after;
  } cases[] = {
      // clang-format off
      {-1, VariantBool::kTrue, {"Visible", "Visible"}, VariantBool::kTrue},
      {-1, VariantBool::kFalse, {"Visible", "Visible"}, VariantBool::kTrue},
      {0, VariantBool::kTrue, {"Visible", "Visible", "Visible"}, VariantBool::kFalse},
      {0, VariantBool::kFalse, {"Visible", "Visible"}, VariantBool::kFalse},
      {5, VariantBool::kTrue, {"Visible", "Visible"}, VariantBool::kTrue},
      // clang-format on
  };
  for (const Case& c : cases) {
    host->visible = c.host_before;
    host->ClearLog();
    zebrin_.SetVisible(MakeVariantBool(c.yesno));
    EXPECT_EQ(Members(*host), c.calls) << c.yesno;
    EXPECT_EQ(host->visible, c.host_after) << c.yesno;
  }
  host->GoAway();  // the host's error reaches the client; the last value held stays
  EXPECT_EQ(ErrorOf([&] { zebrin_.SetVisible(VariantBool::kFalse); }), 462);
  EXPECT_EQ(zebrin_.Visible(), MakeVariantBool(5));
}

TEST_F(ZebrinTest, ExitCallsExitAndProbesWithoutEmptyingTheLink) {
  auto host = ConnectedHost();
  host->linger_on_exit = true;  // a host that needs a moment to close
  zebrin_.ExitZebrin();
  EXPECT_EQ(Members(*host), (std::vector<std::string>{"Exit", "version"}));
  EXPECT_EQ(zebrin_.Connected(), VariantBool::kTrue);
  EXPECT_EQ(HostLink::Of(Host::kZebrin).object(), host);  // the link isn't emptied
  host->GoAway();
  EXPECT_EQ(zebrin_.Connected(), VariantBool::kFalse);
}

TEST_F(ZebrinTest, InstancesOnOneThreadShareTheLink) {
  auto host = hosts::RunZebrin();
  Zebrin second;
  second.Initialize();
  Connect();
  EXPECT_EQ(second.Connected(), VariantBool::kTrue);  // bound by the first
  second.Terminate();
  EXPECT_TRUE(HostLink::Of(Host::kZebrin).empty());
  EXPECT_EQ(zebrin_.Connected(), VariantBool::kFalse);
}

}  // namespace
}  // namespace qorvel
