#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "hosts/simulators.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/error.h"

namespace qorvel::hosts {
namespace {

using namespace std::chrono_literals;

class SimHostTest : public ::testing::Test {
 protected:
  ScopedEnv env_;
};

std::string ExecuteEx(const AutomationObject& host, std::string command) {
  int32_t status = 0;
  std::string output = "untouched";
  std::vector<Variant> args{Variant::Ref(command), Variant::Ref(status), Variant::Ref(output)};
  CallMember(host, "ExecuteEx", args);
  return output;
}

int32_t ErrorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const Error& e) {
    return e.number();
  }
  return 0;
}

TEST_F(SimHostTest, LogsEveryCallAsSentEvenFailedOnes) {
  auto z = RunZebrin();
  AutomationObject host = z;
  GetMember(host, "VERSION");
  EXPECT_EQ(ErrorOf([&] { CallMember(host, "NoSuchMember"); }), 438);
  ASSERT_EQ(z->log().size(), 2u);
  EXPECT_EQ(z->log()[0].member, "VERSION");
  EXPECT_EQ(z->log()[1].member, "NoSuchMember");
}

TEST_F(SimHostTest, FaultsVersionScriptFailureAndGoingAway) {
  auto z = RunZebrin();
  AutomationObject host = z;
  EXPECT_EQ(GetMember(host, "version").ToLong(), 2300);
  z->set_version(int32_t{70000});
  EXPECT_EQ(GetMember(host, "version").ToLong(), 70000);
  z->ScriptReply("print thing", "scripted\r\n");
  EXPECT_EQ(ExecuteEx(host, "PRINT THING"), "scripted\r\n");
  z->FailMember("busy", 1234, "busy broke");
  try {
    GetMember(host, "Busy");
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 1234);
    EXPECT_EQ(e.description(), "busy broke");
  }
  z->GoAway();
  EXPECT_EQ(ErrorOf([&] { GetMember(host, "version"); }), 462);
  EXPECT_EQ(ErrorOf([&] { Env::Current().running_objects().BindRunning("Zebrin.Document"); }), 429);
}

TEST_F(SimHostTest, StartsThroughTheLauncherAfterItsDelay) {
  InstallSimulatedHosts(1h);
  Env::Current().launcher().LaunchProgram(kZebrinProgram, 3);
  ASSERT_NE(LastStarted("Zebrin.Document"), nullptr);
  EXPECT_EQ(ErrorOf([&] { Env::Current().running_objects().BindRunning("Zebrin.Document"); }), 429);
  InstallSimulatedHosts();
  Env::Current().launcher().LaunchProgram(kTarvikProgram, 3);
  EXPECT_EQ(Env::Current().running_objects().BindRunning("Tarvik.Document"),
            LastStarted("Tarvik.Document"));
}

TEST_F(SimHostTest, ClassServerGivesSeparateInstances) {
  InstallSimulatedHosts();
  auto a = Env::Current().running_objects().CreateNew("Tarvik.Document");
  auto b = Env::Current().running_objects().CreateNew("Tarvik.Document");
  EXPECT_NE(a, b);
  EXPECT_EQ(StartedHosts().size(), 2u);
}

TEST_F(SimHostTest, DefaultRegFileIsTheOneBuiltIn) {
  std::ifstream file(QORVEL_SOURCE_DIR "/hosts/simulated_hosts.reg", std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  EXPECT_EQ(text.str(), DefaultRegText());
  InstallSimulatedHosts();
  auto path = Env::Current().registry().GetValue(
      HKEY_LOCAL_MACHINE, "SOFTWARE\\Halvern\\tarvik\\2620", "ExecutablePath");
  ASSERT_TRUE(path.has_value());
  EXPECT_EQ(std::string(path->data.begin(), path->data.end() - 1), kTarvikProgram);
}

class SimTarvikTest : public SimHostTest {
 protected:
  void SetUp() override {
    tarvik_ = RunTarvik();
    host_ = tarvik_;
  }
  std::string Ask(const std::string& command) { return ExecuteEx(host_, command); }

  std::shared_ptr<SimTarvik> tarvik_;
  AutomationObject host_;
};

TEST_F(SimTarvikTest, SizeRepliesHaveTheShapesTheControlReads) {
  EXPECT_EQ(Ask("SIZE COMPONENTS"), "Components: 0\r\n");
  EXPECT_EQ(Ask("SIZE BLOCK"), "");
  EXPECT_EQ(ErrorOf([&] { Ask("SIZE MODEL"); }), 1000);
  tarvik_->LoadModel({-50, -25, 0, 50, 25, 30}, 12);
  EXPECT_EQ(Ask("size model"),
            "Minimum: X -50.000 Y -25.000 Z 0.000\r\nMaximum: X 50.000 Y 25.000 Z 30.000\r\n"
            "Components: 12\r\n");
  tarvik_->AddEntity(EntityKind::kToolpath, "Rough 1", {-40, -20, 1, 40, 20, 29});
  EXPECT_EQ(Ask("SIZE TOOLPATH \"Rough 1\""),
            "Minimum: X -40.000 Y -20.000 Z 1.000\r\nMaximum: X 40.000 Y 20.000 Z 29.000\r\n");
  EXPECT_EQ(ErrorOf([&] { Ask("SIZE TOOLPATH \"Nope\""); }), 1000);
  tarvik_->AddEntity(EntityKind::kWorkplane, "W", {10, 20, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1});
  EXPECT_EQ(Ask("SIZE WORKPLANE W"),
            "Position: X 10.000 Y 20.000 Z 0.000\r\nVector: X 1.000 Y 0.000 Z 0.000\r\n"
            "Vector: X 0.000 Y 1.000 Z 0.000\r\nVector: X 0.000 Y 0.000 Z 1.000\r\n");
}

TEST_F(SimTarvikTest, BlockResetWrapsTheUnlockedLimitsAroundTheModel) {
  tarvik_->LoadModel({-50, -25, 0, 50, 25, 30}, 12);
  for (const char* c : {"EDIT BLOCKTYPE LIMITS", "EDIT BLOCK LIMITTYPE MODEL",
                        "EDIT BLOCK ALL UNLOCK", "edit block zmin lock", "EDIT BLOCK RESETLIMIT 5.",
                        "EDIT BLOCK RESET", "EDIT BLOCK ALL UNLOCK"}) {
    Ask(c);
  }
  EXPECT_EQ(Ask("SIZE BLOCK"),
            "Information: Xmin: -55.000 Xmax: 55.000\r\nYmin: -30.000 Ymax: 30.000\r\n"
            "Zmin: -5.000 Zmax: 35.000\r\n");
  Ask("EDIT BLOCK ZMIN LOCK");
  Ask("EDIT BLOCK RESETLIMIT 1");
  Ask("EDIT BLOCK RESET");
  EXPECT_EQ(tarvik_->block().limits[4], -5);
  EXPECT_EQ(tarvik_->block().limits[5], 31);
}

TEST_F(SimTarvikTest, SettingsToolsAndEntityLists) {
  EXPECT_EQ(Ask("print formvalue roughmenubar.view.dialogs.message"), "TRUE\r\n");
  Ask("dialogs message off");
  EXPECT_EQ(Ask("print formvalue roughmenubar.view.dialogs.message"), "FALSE\r\n");
  Ask("EDIT UNITS INCHES");
  EXPECT_EQ(Ask("PRINT FORMVALUE INFOBAR.UNITS"), "INCHES\r\n");
  Ask("EDIT TOOLTYPE TAPERTIPPED");
  Ask("EDIT DIAMETER 6.");
  Ask("EDIT TOOLNAME \"Big one\"");
  EXPECT_EQ(tarvik_->tool().at("TOOLTYPE"), "TAPERTIPPED");
  EXPECT_EQ(tarvik_->tool().at("TOOLNAME"), "Big one");
  EXPECT_EQ(ErrorOf([&] { Ask("EDIT TOOLTYPE SPOON"); }), 1000);
  EXPECT_EQ(ErrorOf([&] { Ask("EDIT DIAMETER abc"); }), 1000);
  EXPECT_EQ(ErrorOf([&] { Ask("FROBNICATE"); }), 1000);
  tarvik_->AddEntity(EntityKind::kToolpath, "Rough 1", {0, 0, 0, 1, 1, 1});
  tarvik_->AddEntity(EntityKind::kToolpath, "Finish 2", {0, 0, 0, 1, 1, 1});
  tarvik_->SetActive(EntityKind::kToolpath, "Finish 2");
  EXPECT_EQ(Ask("PRINT ENTITY TOOLPATHS"), "2 toolpaths\r\n'Rough 1'\r\n*'Finish 2'\r\n");
  EXPECT_EQ(Ask("PRINT ENTITY PATTERN"), "0 patterns\r\n");
  EXPECT_EQ(ErrorOf([&] { Ask("PRINT ENTITY SPOONS"); }), 1000);
}

}  // namespace
}  // namespace qorvel::hosts
