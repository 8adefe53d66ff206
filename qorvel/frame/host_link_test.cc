#include "qorvel/frame/host_link.h"

#include <gtest/gtest.h>

#include <thread>

#include "hosts/simulators.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/env_testing.h"

namespace qorvel {
namespace {

using hosts::Call;
using namespace std::chrono_literals;

class HostLinkTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (Host h : {Host::kZebrin, Host::kTarvik, Host::kUlmora}) HostLink::Of(h).Clear();
  }
  void TearDown() override { SetUp(); }
  std::vector<Message> Boxes() { return env_.env().messages().shown(); }
  CountingRegistry& registry() { return env_.env().counted_registry(); }

  ScopedEnv env_;
};

TEST_F(HostLinkTest, ConnectToRunningBindsTheRunningHost) {
  auto zebrin = hosts::RunZebrin();
  HostLink& link = HostLink::Of(Host::kZebrin);
  EXPECT_EQ(link.ConnectToRunning(), VariantBool::kTrue);
  EXPECT_EQ(link.object(), zebrin);
}

TEST_F(HostLinkTest, FailedBindKeepsTheOldReference) {
  auto zebrin = hosts::RunZebrin();
  HostLink& link = HostLink::Of(Host::kZebrin);
  link.ConnectToRunning();
  zebrin->GoAway();
  EXPECT_EQ(link.ConnectToRunning(), VariantBool::kFalse);
  EXPECT_EQ(link.object(), zebrin);
  EXPECT_EQ(link.HostExecute("ANYTHING"), VariantBool::kFalse);
}

TEST_F(HostLinkTest, StartAndConnectWithARunningHostReadsAndLaunchesNothing) {
  hosts::InstallSimulatedHosts();
  hosts::RunZebrin();
  const int closes = registry().close_calls();
  EXPECT_EQ(HostLink::Of(Host::kZebrin).StartAndConnect(), VariantBool::kTrue);
  EXPECT_EQ(registry().close_calls(), closes);
  EXPECT_TRUE(env_.env().launches().empty());
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(HostLinkTest, StartAndConnectLaunchesTheRegisteredProgramMaximised) {
  hosts::InstallSimulatedHosts();
  EXPECT_EQ(HostLink::Of(Host::kTarvik).StartAndConnect(), VariantBool::kTrue);
  auto launches = env_.env().launches();
  ASSERT_EQ(launches.size(), 1u);
  EXPECT_EQ(launches[0].path, hosts::kTarvikProgram);
  EXPECT_EQ(launches[0].window_style, 3);
  EXPECT_EQ(HostLink::Of(Host::kTarvik).object(), hosts::LastStarted("Tarvik.Document"));
  EXPECT_TRUE(Boxes().empty());
}

struct StartCase {
  const char* name;
  Host host;
  const char* current_version;  // nullptr: value missing
  const char* path;             // nullptr: value missing
  std::chrono::milliseconds delay;
  Message box;
  const char* launched;  // nullptr: nothing launched
};

class StartFailureTest : public HostLinkTest, public ::testing::WithParamInterface<StartCase> {};

TEST_P(StartFailureTest, ShowsOneBoxAndReturnsFalse) {
  const StartCase& c = GetParam();
  hosts::InstallSimulatedHosts(c.delay);
  const bool zebrin = c.host == Host::kZebrin;
  const std::string exec_key =
      zebrin ? "SOFTWARE\\Halvern\\Exec\\zebrin" : "SOFTWARE\\Halvern\\Exec\\tarvik";
  registry().DeleteKey(HKEY_LOCAL_MACHINE, "SOFTWARE\\Halvern");
  if (c.current_version)
    registry().SetString(HKEY_LOCAL_MACHINE, exec_key, "CurrentVersion", c.current_version);
  if (c.path) {
    const std::string version = c.current_version ? c.current_version : "Not Found";
    registry().SetString(
        HKEY_LOCAL_MACHINE,
        std::string(zebrin ? "SOFTWARE\\Halvern\\zebrin\\" : "SOFTWARE\\Halvern\\tarvik\\") +
            version,
        "ExecutablePath", c.path);
  }
  EXPECT_EQ(HostLink::Of(c.host).StartAndConnect(), VariantBool::kFalse);
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_EQ(Boxes()[0], c.box);
  EXPECT_EQ(Boxes()[0].text.find('\n'), std::string::npos);
  auto launches = env_.env().launches();
  if (c.launched == nullptr) {
    EXPECT_TRUE(launches.empty());
  } else {
    ASSERT_EQ(launches.size(), 1u);
    EXPECT_EQ(launches[0].path, c.launched);
    EXPECT_EQ(launches[0].window_style, 3);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Paths, StartFailureTest,
    ::testing::Values(
        StartCase{
            "ZebrinNoVersion",
            Host::kZebrin,
            nullptr,
            nullptr,
            {},
            {"Cannot start remote Zebrin session\rCheck registry", 4112, "Error starting Zebrin"},
            nullptr},
        StartCase{
            "TarvikNoPath",
            Host::kTarvik,
            "2620",
            nullptr,
            {},
            {"Cannot start remote Tarvik session\rCheck registry", 4112, "Error starting Tarvik"},
            nullptr},
        StartCase{
            "PathThatReadsTheMarker",
            Host::kZebrin,
            "2300",
            "Not Found",
            {},
            {"Cannot start remote Zebrin session\rCheck registry", 4112, "Error starting Zebrin"},
            nullptr},
        StartCase{"PathUnderNotFoundKey",
                  Host::kZebrin,
                  nullptr,
                  "/nonexistent/zebrin",
                  {},
                  {"Cannot start remote Zebrin session\rCheck installation and registry settings",
                   4112, "Error starting Zebrin"},
                  "/nonexistent/zebrin"},
        StartCase{"MarkerInOtherCaseIsAPath",
                  Host::kTarvik,
                  "2620",
                  "not found",
                  {},
                  {"Cannot start remote Tarvik session\rCheck installation and registry settings",
                   4112, "Error starting Tarvik"},
                  "not found"},
        StartCase{"ZebrinStillStarting",
                  Host::kZebrin,
                  "2300",
                  hosts::kZebrinProgram,
                  1h,
                  {"Zebrn cannot be linked to application", 4112, "Error connecting to Zebrin"},
                  hosts::kZebrinProgram},
        StartCase{"TarvikStillStarting",
                  Host::kTarvik,
                  "2620",
                  hosts::kTarvikProgram,
                  1h,
                  {"Tarvik cannot be linked to VB application", 4112, "Error connecting to Tarvik"},
                  hosts::kTarvikProgram}),
    [](const auto& info) { return info.param.name; });

TEST_F(HostLinkTest, ConnectNewCreatesAnInstanceEvenWithOneRunning) {
  hosts::InstallSimulatedHosts();
  auto running = hosts::RunTarvik();
  HostLink& link = HostLink::Of(Host::kTarvik);
  EXPECT_EQ(link.ConnectNew(), VariantBool::kTrue);
  EXPECT_NE(link.object(), running);
  EXPECT_EQ(link.object(), hosts::LastStarted("Tarvik.Document"));
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(HostLinkTest, ConnectNewWithoutAServerKeepsTheReference) {
  auto running = hosts::RunTarvik();
  HostLink& link = HostLink::Of(Host::kTarvik);
  link.ConnectToRunning();
  EXPECT_EQ(link.ConnectNew(), VariantBool::kFalse);
  EXPECT_EQ(link.object(), running);
}

TEST_F(HostLinkTest, HostExecuteSendsTheCommandAndStatusByReference) {
  auto zebrin = hosts::RunZebrin();
  HostLink& link = HostLink::Of(Host::kZebrin);
  EXPECT_EQ(link.HostExecute("ADVANCEDOPTS WINDOWS INFORMATION ON"), VariantBool::kFalse);
  link.ConnectToRunning();
  EXPECT_EQ(link.HostExecute("ADVANCEDOPTS WINDOWS INFORMATION ON"), VariantBool::kTrue);
  const auto log = zebrin->log();
  ASSERT_EQ(log.size(), 1u);
  const Call& call = log[0];
  EXPECT_EQ(call.member, "Execute");
  ASSERT_EQ(call.args.size(), 2u);
  EXPECT_EQ(call.args[0].ToText(), "ADVANCEDOPTS WINDOWS INFORMATION ON");
  EXPECT_EQ(call.args[1].ToLong(), 0);
  EXPECT_TRUE(zebrin->information_window());
}

TEST_F(HostLinkTest, ZebrinExecuteExGivesOutputEmptyTextOrError) {
  auto zebrin = hosts::RunZebrin();
  HostLink& link = HostLink::Of(Host::kZebrin);
  EXPECT_EQ(link.HostExecuteEx("ECHO hi"), "Error");  // empty link
  link.ConnectToRunning();
  EXPECT_EQ(link.HostExecuteEx("ECHO hi"), "hi\r\n");
  EXPECT_EQ(link.HostExecuteEx("QUIET COMMAND"), "");
  zebrin->ScriptReply("PRINT X", "Error");
  EXPECT_EQ(link.HostExecuteEx("print x"), "Error");
  zebrin->GoAway();
  EXPECT_EQ(link.HostExecuteEx("ECHO hi"), "Error");
  EXPECT_EQ(link.object(), zebrin);
}

TEST_F(HostLinkTest, TarvikExecuteExUntracesBeforeEveryCapture) {
  auto tarvik = hosts::RunTarvik();
  HostLink& link = HostLink::Of(Host::kTarvik);
  EXPECT_EQ(link.HostExecuteEx("SIZE COMPONENTS"), "Error");
  EXPECT_TRUE(tarvik->log().empty());  // an empty link sends nothing
  link.ConnectToRunning();
  EXPECT_EQ(link.HostExecuteEx("SIZE COMPONENTS"), "Components: 0\r\n");
  EXPECT_EQ(link.HostExecuteEx("PRINT ENTITY TOOLPATHS"), "0 toolpaths\r\n");
  auto log = tarvik->log();
  ASSERT_EQ(log.size(), 4u);
  const std::pair<const char*, const char*> expected[] = {
      {"Execute", "NLTDEBUG UNTRACE COMMAND ACCEPT"},
      {"ExecuteEx", "SIZE COMPONENTS"},
      {"Execute", "NLTDEBUG UNTRACE COMMAND ACCEPT"},
      {"ExecuteEx", "PRINT ENTITY TOOLPATHS"}};
  for (size_t i = 0; i < log.size(); ++i) {
    EXPECT_EQ(log[i].member, expected[i].first);
    EXPECT_EQ(log[i].args[0].ToText(), expected[i].second);
  }
}

TEST_F(HostLinkTest, TarvikExecuteExKeepsErrorPresetOnFailureOrSilence) {
  auto tarvik = hosts::RunTarvik();
  HostLink& link = HostLink::Of(Host::kTarvik);
  link.ConnectToRunning();
  EXPECT_EQ(link.HostExecuteEx("NO SUCH COMMAND"), "Error");
  tarvik->FailMember("Execute", 1000, "untrace refused");
  EXPECT_EQ(link.HostExecuteEx("SIZE COMPONENTS"), "Components: 0\r\n");
  tarvik->GoAway();
  EXPECT_EQ(link.HostExecuteEx("SIZE COMPONENTS"), "Error");
}

// A host that takes every call and never writes the output argument.
class SilentHost : public Dispatch {
 public:
  Variant Invoke(std::string_view member, CallKind, std::span<Variant> args) override {
    calls.emplace_back(std::string(member), args.empty() ? "" : args[0].ToText());
    return Variant();
  }
  std::vector<std::pair<std::string, std::string>> calls;
};

TEST_F(HostLinkTest, SilentHostGivesEmptyTextOnZebrinAndErrorOnTarvik) {
  auto host = std::make_shared<SilentHost>();
  HostLink::Of(Host::kZebrin).Bind(host);
  HostLink::Of(Host::kTarvik).Bind(host);
  EXPECT_EQ(HostLink::Of(Host::kZebrin).HostExecuteEx("PRINT X"), "");
  EXPECT_EQ(HostLink::Of(Host::kTarvik).HostExecuteEx("PRINT X"), "Error");
  using Sent = std::pair<std::string, std::string>;
  EXPECT_EQ(host->calls, (std::vector<Sent>{{"ExecuteEx", "PRINT X"},
                                            {"Execute", "NLTDEBUG UNTRACE COMMAND ACCEPT"},
                                            {"ExecuteEx", "PRINT X"}}));
}

TEST_F(HostLinkTest, EachThreadHasItsOwnLinks) {
  auto zebrin = hosts::RunZebrin();
  HostLink::Of(Host::kZebrin).ConnectToRunning();
  bool other_empty = false;
  std::thread([&] { other_empty = HostLink::Of(Host::kZebrin).empty(); }).join();
  EXPECT_TRUE(other_empty);
  EXPECT_EQ(HostLink::Of(Host::kZebrin).object(), zebrin);
}

}  // namespace
}  // namespace qorvel
