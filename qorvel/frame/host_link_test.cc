#include "qorvel/frame/host_link.h"

#include <gtest/gtest.h>

#include <thread>

#include "hosts/simulators.h"
#include "qorvel/frame/registry_value.h"
#include "qorvel/platform/env_testing.h"

namespace qorvel {
namespace {

using namespace std::chrono_literals;
using Sent = std::pair<std::string, std::string>;  // member, first argument

std::vector<Sent> SentBy(const hosts::SimHost& host) {
  std::vector<Sent> sent;
  for (const hosts::Call& call : host.log()) {
    sent.emplace_back(call.member, call.args.empty() ? "" : call.args[0].ToText());
  }
  return sent;
}

class HostLinkTest : public ::testing::Test {
 protected:
  std::vector<Message> Boxes() { return env_.env().messages().shown(); }
  CountingRegistry& registry() { return env_.env().registry(); }
  ScopedEnv env_;
};

TEST_F(HostLinkTest, ABindReplacesTheReferenceAndAFailedOneKeepsIt) {
  auto zebrin = hosts::RunZebrin();
  HostLink& link = HostLink::Of(Host::kZebrin);
  EXPECT_EQ(link.HostExecute("X"), VariantBool::kFalse);  // empty: the call fails, no test
  EXPECT_EQ(link.ConnectToRunning(), VariantBool::kTrue);
  EXPECT_EQ(link.object(), zebrin);
  zebrin->GoAway();
  EXPECT_EQ(link.ConnectToRunning(), VariantBool::kFalse);
  EXPECT_EQ(link.object(), zebrin);  // the dead host stays
  EXPECT_EQ(link.HostExecute("X"), VariantBool::kFalse);
}

// A running host is bound without reading the registry; else the registered program starts
// maximised.
TEST_F(HostLinkTest, StartAndConnectLaunchesOnlyWhenNothingRuns) {
  hosts::InstallSimulatedHosts();
  hosts::RunZebrin();
  const int closes = registry().close_calls();
  EXPECT_EQ(HostLink::Of(Host::kZebrin).StartAndConnect(), VariantBool::kTrue);
  EXPECT_EQ(registry().close_calls(), closes);
  EXPECT_TRUE(env_.env().launches().empty());
  EXPECT_EQ(HostLink::Of(Host::kTarvik).StartAndConnect(), VariantBool::kTrue);
  ASSERT_EQ(env_.env().launches().size(), 1u);
  EXPECT_EQ(env_.env().launches()[0].path, hosts::kTarvikProgram);
  EXPECT_EQ(env_.env().launches()[0].window_style, 3);
  EXPECT_EQ(HostLink::Of(Host::kTarvik).object(), hosts::LastTarvik());
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(HostLinkTest, AFailedStartShowsOneBoxAndReturnsFalse) {
  const std::string kCheckRegistry = "\rCheck registry";
  const std::string kCheckInstall = "\rCheck installation and registry settings";
  struct Case {
    Host host;
    const char* version;  // nullptr: "CurrentVersion" missing
    const char* path;     // nullptr: "ExecutablePath" missing; else below the version read
    bool still_starting;
    std::string text, title;
    const char* launched;  // nullptr: nothing launched
  } cases[] = {
      {Host::kZebrin, nullptr, nullptr, false,
       "Cannot start remote Zebrin session" + kCheckRegistry, "Error starting Zebrin", nullptr},
      {Host::kTarvik, "2620", nullptr, false, "Cannot start remote Tarvik session" + kCheckRegistry,
       "Error starting Tarvik", nullptr},
      {Host::kZebrin, "2300", "Not Found", false,
       "Cannot start remote Zebrin session" + kCheckRegistry, "Error starting Zebrin", nullptr},
      // The version read fails and gives "Not Found", which the second key goes on with.
      {Host::kZebrin, nullptr, "/nonexistent/zebrin", false,
       "Cannot start remote Zebrin session" + kCheckInstall, "Error starting Zebrin",
       "/nonexistent/zebrin"},
      {Host::kTarvik, "2620", "not found", false,
       "Cannot start remote Tarvik session" + kCheckInstall, "Error starting Tarvik", "not found"},
      {Host::kZebrin, "2300", hosts::kZebrinProgram, true, "Zebrn cannot be linked to application",
       "Error connecting to Zebrin", hosts::kZebrinProgram},
      {Host::kTarvik, "2620", hosts::kTarvikProgram, true,
       "Tarvik cannot be linked to VB application", "Error connecting to Tarvik",
       hosts::kTarvikProgram},
  };
  for (const Case& c : cases) {
    ScopedEnv env;
    SCOPED_TRACE(c.text);
    hosts::InstallSimulatedHosts(c.still_starting ? 1h : 0h);
    const std::string host = c.host == Host::kZebrin ? "zebrin" : "tarvik";
    Registry& registry = env.env().registry();
    registry.DeleteKey(root_key::kLocalMachine, "SOFTWARE\\Halvern");
    if (c.version) {
      registry.SetString(root_key::kLocalMachine, "SOFTWARE\\Halvern\\Exec\\" + host,
                         "CurrentVersion", c.version);
    }
    if (c.path) {
      registry.SetString(root_key::kLocalMachine,
                         "SOFTWARE\\Halvern\\" + host + "\\" + (c.version ? c.version : kNotFound),
                         "ExecutablePath", c.path);
    }
    EXPECT_EQ(HostLink::Of(c.host).StartAndConnect(), VariantBool::kFalse);
    EXPECT_EQ(env.env().messages().shown(), (std::vector<Message>{{c.text, 4112, c.title}}));
    ASSERT_EQ(env.env().launches().size(), c.launched ? 1u : 0u);
    if (c.launched) {
      EXPECT_EQ(env.env().launches()[0].path, c.launched);
    }
  }
}

TEST_F(HostLinkTest, ConnectNewTakesANewInstanceOrKeepsTheReference) {
  auto running = hosts::RunTarvik();
  HostLink& link = HostLink::Of(Host::kTarvik);
  link.ConnectToRunning();
  EXPECT_EQ(link.ConnectNew(), VariantBool::kFalse);  // no class server yet
  EXPECT_EQ(link.object(), running);
  hosts::InstallSimulatedHosts();
  EXPECT_EQ(link.ConnectNew(), VariantBool::kTrue);  // whatever runs already
  EXPECT_NE(link.object(), running);
  EXPECT_EQ(link.object(), hosts::LastTarvik());
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(HostLinkTest, HostExecuteSendsACopyAndAStatusByReference) {
  auto zebrin = hosts::RunZebrin();
  HostLink& link = HostLink::Of(Host::kZebrin);
  link.ConnectToRunning();
  EXPECT_EQ(link.HostExecute("ADVANCEDOPTS WINDOWS INFORMATION ON"), VariantBool::kTrue);
  EXPECT_EQ(SentBy(*zebrin),
            (std::vector<Sent>{{"Execute", "ADVANCEDOPTS WINDOWS INFORMATION ON"}}));
  ASSERT_EQ(zebrin->log()[0].args.size(), 2u);
  EXPECT_EQ(zebrin->log()[0].args[1].vt(), 3);
  EXPECT_EQ(link.HostExecute(""), VariantBool::kFalse);  // rejected: the same as gone
}

TEST_F(HostLinkTest, ExecuteExFormsOfZebrinAndTarvik) {
  auto zebrin = hosts::RunZebrin();
  auto tarvik = hosts::RunTarvik();
  HostLink& z = HostLink::Of(Host::kZebrin);
  HostLink& t = HostLink::Of(Host::kTarvik);
  EXPECT_EQ(z.HostExecuteEx("ECHO hi"), "Error");
  EXPECT_EQ(t.HostExecuteEx("SIZE COMPONENTS"), "Error");
  EXPECT_TRUE(tarvik->log().empty());  // an empty Tarvik link sends nothing
  z.ConnectToRunning();
  t.ConnectToRunning();
  EXPECT_EQ(z.HostExecuteEx("ECHO hi"), "hi\r\n");
  EXPECT_EQ(z.HostExecuteEx("QUIET COMMAND"), "");
  EXPECT_EQ(t.HostExecuteEx("SIZE COMPONENTS"), "Components: 0\r\n");
  EXPECT_EQ(t.HostExecuteEx("NO SUCH COMMAND"), "Error");
  EXPECT_EQ(SentBy(*tarvik), (std::vector<Sent>{{"Execute", "NLTDEBUG UNTRACE COMMAND ACCEPT"},
                                                {"ExecuteEx", "SIZE COMPONENTS"},
                                                {"Execute", "NLTDEBUG UNTRACE COMMAND ACCEPT"},
                                                {"ExecuteEx", "NO SUCH COMMAND"}}));
  tarvik->FailMember("Execute", 1000, "untrace refused");  // doesn't stop the capture
  EXPECT_EQ(t.HostExecuteEx("SIZE COMPONENTS"), "Components: 0\r\n");
  zebrin->GoAway();
  tarvik->GoAway();
  EXPECT_EQ(z.HostExecuteEx("ECHO hi"), "Error");
  EXPECT_EQ(t.HostExecuteEx("SIZE COMPONENTS"), "Error");
}

// A host that takes every call and never writes the output argument.
class SilentHost : public Dispatch {
 public:
  Variant Invoke(std::string_view member, CallKind, std::span<Variant> args) override {
    calls.emplace_back(std::string(member), args.empty() ? "" : args[0].ToText());
    return Variant();
  }
  std::vector<Sent> calls;
};

TEST_F(HostLinkTest, ASilentHostGivesEmptyTextOnZebrinAndErrorOnTarvik) {
  auto host = std::make_shared<SilentHost>();
  HostLink::Of(Host::kZebrin).Bind(host);
  HostLink::Of(Host::kTarvik).Bind(host);
  EXPECT_EQ(HostLink::Of(Host::kZebrin).HostExecuteEx("PRINT X"), "");
  EXPECT_EQ(HostLink::Of(Host::kTarvik).HostExecuteEx("PRINT X"), "Error");
  EXPECT_EQ(host->calls, (std::vector<Sent>{{"ExecuteEx", "PRINT X"},
                                            {"Execute", "NLTDEBUG UNTRACE COMMAND ACCEPT"},
                                            {"ExecuteEx", "PRINT X"}}));
}

TEST_F(HostLinkTest, LinksBelongToTheThreadAndTheEnvironment) {
  auto zebrin = hosts::RunZebrin();
  HostLink::Of(Host::kZebrin).ConnectToRunning();
  bool other_empty = false;
  std::thread([&] { other_empty = HostLink::Of(Host::kZebrin).empty(); }).join();
  EXPECT_TRUE(other_empty);
  {
    ScopedEnv fresh;
    EXPECT_TRUE(HostLink::Of(Host::kZebrin).empty());
  }
  EXPECT_EQ(HostLink::Of(Host::kZebrin).object(), zebrin);
}

}  // namespace
}  // namespace qorvel
