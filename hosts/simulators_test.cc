#include "hosts/simulators.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <thread>

#include "hosts/host_table.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/error_testing.h"

namespace qorvel::hosts {
namespace {

using namespace std::chrono_literals;

class SimulatorsTest : public ::testing::Test {
 protected:
  RunningObjects& running() { return Env::Current().running_objects(); }
  Launcher& launcher() { return Env::Current().launcher(); }
  // A registry text value as the controls read it: the stored bytes without the closing zero.
  std::string RegText(const std::string& key, const std::string& name) {
    std::optional<RegValue> value =
        Env::Current().registry().GetValue(root_key::kLocalMachine, key, name);
    if (!value || value->type != reg_type::kString || value->data.empty()) return "(none)";
    return std::string(value->data.begin(), value->data.end() - 1);
  }

  ScopedEnv env_;
};

TEST_F(SimulatorsTest, RunRegistersTheHostAsRunningAfterItsDelay) {
  auto zebrin = RunZebrin();
  EXPECT_EQ(running().BindRunning("zebrin.document"), zebrin);
  auto starting = RunTarvik(1h);
  EXPECT_EQ(ErrorOf([&] { running().BindRunning("Tarvik.Document"); }), err::kCantCreate);
  auto quick = RunTarvik(20ms);
  std::this_thread::sleep_for(40ms);
  EXPECT_EQ(running().BindRunning("Tarvik.Document"), quick);
  EXPECT_EQ(StartedHosts(), (std::vector<std::shared_ptr<SimHost>>{zebrin, starting, quick}));
}

TEST_F(SimulatorsTest, LauncherStartsANewSimulatorWithTheDelayInForce) {
  InstallSimulatedHosts(1h);
  EXPECT_EQ(launcher().LaunchProgram(kZebrinProgram, 3) > 0, true);
  auto first = LastZebrin();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(ErrorOf([&] { running().BindRunning("Zebrin.Document"); }), err::kCantCreate);

  SetStartDelay(0ms);
  launcher().LaunchProgram(kZebrinProgram, 3);
  EXPECT_NE(LastZebrin(), first);
  EXPECT_EQ(running().BindRunning("Zebrin.Document"), LastZebrin());
  launcher().LaunchProgram(kTarvikProgram, 3);
  EXPECT_EQ(running().BindRunning("Tarvik.Document"), LastTarvik());
  EXPECT_EQ(LastStarted("TARVIK.DOCUMENT"), LastTarvik());
  EXPECT_EQ(StartedHosts().size(), 3u);
}

TEST_F(SimulatorsTest, DefaultRegFileInstallsBothProgramsAndIsTheOneBuiltIn) {
  std::ifstream file(QORVEL_SOURCE_DIR "/hosts/simulated_hosts.reg", std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  EXPECT_EQ(text.str(), DefaultRegText());

  InstallSimulatedHosts();
  EXPECT_EQ(RegText("SOFTWARE\\Halvern\\Exec\\zebrin", "CurrentVersion"), "2300");
  EXPECT_EQ(RegText("SOFTWARE\\Halvern\\zebrin\\2300", "ExecutablePath"), kZebrinProgram);
  EXPECT_EQ(RegText("SOFTWARE\\Halvern\\Exec\\tarvik", "CurrentVersion"), "2620");
  EXPECT_EQ(RegText("SOFTWARE\\Halvern\\tarvik\\2620", "ExecutablePath"), kTarvikProgram);
}

TEST_F(SimulatorsTest, NewHostsOfAClassTakeItsPresetHoweverTheyStart) {
  InstallSimulatedHosts();
  HostPreset preset;
  preset.version = Variant("2400");
  preset.linger_on_exit = true;
  preset.replies["PRINT VERSION"] = "old";
  preset.failing_members["busy"] = {70, "Denied"};
  HostTable::Of(Env::Current())->SetPreset("zebrin.DOCUMENT", preset);

  launcher().LaunchProgram(kZebrinProgram, 3);
  const std::vector<AutomationObject> made = {LastZebrin(), RunZebrin(),
                                              running().CreateNew("Zebrin.Document")};
  for (const AutomationObject& host : made) {
    EXPECT_EQ(GetMember(host, "version").ToText(), "2400");
    std::string command = "print version", output;
    int32_t status = 0;
    std::vector<Variant> args{Variant::Ref(command), Variant::Ref(status), Variant::Ref(output)};
    CallMember(host, "ExecuteEx", args);
    EXPECT_EQ(output, "old");
    EXPECT_EQ(ErrorOf([&] { GetMember(host, "Busy"); }), 70);
    CallMember(host, "Exit");
    EXPECT_EQ(GetMember(host, "version").ToText(), "2400");  // lingers
  }
  EXPECT_EQ(GetMember(running().CreateNew("Tarvik.Document"), "version").ToLong(),
            SimTarvik::kDefaultVersion);

  HostTable::Of(Env::Current())->ClearPreset("Zebrin.Document");
  EXPECT_EQ(GetMember(RunZebrin(), "version").ToLong(), SimZebrin::kDefaultVersion);
  EXPECT_EQ(GetMember(made[0], "version").ToText(), "2400");  // made before: kept
}

}  // namespace
}  // namespace qorvel::hosts
