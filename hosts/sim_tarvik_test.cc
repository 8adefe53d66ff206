#include "hosts/sim_tarvik.h"

#include <gtest/gtest.h>

#include <functional>

#include "hosts/simulators.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/numbers.h"

namespace qorvel::hosts {
namespace {

class SimTarvikTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tarvik_ = RunTarvik();
    host_ = tarvik_;
  }

  // The host's output for a command, as HostExecuteEx receives it.
  std::string Ask(std::string command) {
    int32_t status = 0;
    std::string output;
    std::vector<Variant> args{Variant::Ref(command), Variant::Ref(status), Variant::Ref(output)};
    CallMember(host_, "ExecuteEx", args);
    return output;
  }
  void Send(std::string command) {
    int32_t status = 0;
    std::vector<Variant> args{Variant::Ref(command), Variant::Ref(status)};
    CallMember(host_, "Execute", args);
  }
  // The description of the error a command raises; "" when the host takes it.
  std::string Rejection(const std::string& command) {
    try {
      Ask(command);
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), kCommandRejected) << command;
      return e.description();
    }
    return "";
  }
  void LoadModel() { tarvik_->LoadModel({-50, -25, 0, 50, 25, 30}, 12); }

  ScopedEnv env_;
  std::shared_ptr<SimTarvik> tarvik_;
  AutomationObject host_;
};

TEST_F(SimTarvikTest, SizeRepliesHaveTheShapesTheControlReads) {
  EXPECT_EQ(Ask("SIZE COMPONENTS"), "Components: 0\r\n");
  EXPECT_EQ(Ask("SIZE BLOCK"), "");
  EXPECT_EQ(Rejection("SIZE MODEL"), "No model loaded");
  LoadModel();
  tarvik_->AddToolpath("Rough 1", {-40, -20, 1, 40, 20, 29});
  tarvik_->AddPattern("Holes", {0, 0, 5, 80, 40, 5});
  tarvik_->AddWorkplane("Top", {10, 20, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1});
  const std::pair<const char*, const char*> cases[] = {
      {"SIZE COMPONENTS", "Components: 12\r\n"},
      {"size model",
       "Minimum: X -50.000 Y -25.000 Z 0.000\r\nMaximum: X 50.000 Y 25.000 Z 30.000\r\n"
       "Components: 12\r\n"},
      {"SIZE TOOLPATH \"Rough 1\"",
       "Minimum: X -40.000 Y -20.000 Z 1.000\r\nMaximum: X 40.000 Y 20.000 Z 29.000\r\n"},
      {"SIZE TOOLPATH rough 1",
       "Minimum: X -40.000 Y -20.000 Z 1.000\r\nMaximum: X 40.000 Y 20.000 Z 29.000\r\n"},
      {"SIZE PATTERN \"Holes\"",
       "Minimum: X 0.000 Y 0.000 Z 5.000\r\nMaximum: X 80.000 Y 40.000 Z 5.000\r\n"},
      {"SIZE WORKPLANE \"Top\"",
       "Position: X 10.000 Y 20.000 Z 0.000\r\nVector: X 1.000 Y 0.000 Z 0.000\r\n"
       "Vector: X 0.000 Y 1.000 Z 0.000\r\nVector: X 0.000 Y 0.000 Z 1.000\r\n"},
  };
  for (const auto& [command, reply] : cases) EXPECT_EQ(Ask(command), reply) << command;
}

TEST_F(SimTarvikTest, SizeOfWhatIsNotThereIsRejected) {
  tarvik_->AddToolpath("Rough 1", {0, 0, 0, 1, 1, 1});
  const std::pair<const char*, const char*> cases[] = {
      {"SIZE TOOLPATH \"Nope\"", "Toolpath not found: Nope"},
      {"SIZE TOOLPATH \"\"Rough 1\"\"", "Toolpath not found: \"Rough 1\""},
      {"SIZE TOOLPATH ;", "Toolpath not found: ;"},
      {"SIZE PATTERN \"\"", "Pattern not found: "},
      {"SIZE WORKPLANE \"Rough 1\"", "Workplane not found: Rough 1"},
      {"SIZE TOOLPATHS \"Rough 1\"", "Unknown command: SIZE TOOLPATHS \"Rough 1\""},
      {"SIZE", "Unknown command: SIZE"},
      {"SIZE BLOCK NOW", "Unknown command: SIZE BLOCK NOW"},
  };
  for (const auto& [command, why] : cases) EXPECT_EQ(Rejection(command), why) << command;
}

TEST_F(SimTarvikTest, NumbersFollowTheRegionalSettings) {
  SetDecimalSymbol(Env::Current().registry(), ",");
  Env::Current().registry().SetString(HKEY_CURRENT_USER, kInternationalKey, "sThousand", ".");
  tarvik_->LoadModel({-1.5, 0, 0, 2.25, 1, 1}, 1);
  Send("EDIT BLOCK RESETLIMIT 0,5");
  Send("EDIT BLOCK RESET");
  EXPECT_EQ(Ask("SIZE BLOCK"),
            "Information: Xmin: -2,000 Xmax: 2,750\r\nYmin: -0,500 Ymax: 1,500\r\n"
            "Zmin: -0,500 Zmax: 1,500\r\n");
  EXPECT_EQ(Ask("SIZE MODEL").substr(0, 21), "Minimum: X -1,500 Y 0");
}

TEST_F(SimTarvikTest, UnitsAndDialogSettingsAreFormValues) {
  EXPECT_EQ(Ask("PRINT FORMVALUE INFOBAR.UNITS"), "MM\r\n");
  Send("EDIT UNITS INCHES");
  EXPECT_EQ(Ask("print formvalue infobar.units"), "INCHES\r\n");
  Send("edit units mm");
  EXPECT_EQ(tarvik_->units(), "MM");
  EXPECT_EQ(Rejection("EDIT UNITS FEET"), "Unknown units: FEET");

  const char* message = "print formvalue roughmenubar.view.dialogs.message";
  EXPECT_EQ(Ask(message), "TRUE\r\n");
  Send("dialogs message off");
  EXPECT_EQ(Ask(message), "FALSE\r\n");
  EXPECT_TRUE(tarvik_->error_dialogs());
  Send("DIALOGS ERROR OFF");
  EXPECT_FALSE(tarvik_->error_dialogs());
  EXPECT_EQ(Ask("PRINT FORMVALUE ROUGHMENUBAR.VIEW.DIALOGS.ERROR"), "FALSE\r\n");
  Send("DIALOGS MESSAGE ON");
  EXPECT_TRUE(tarvik_->message_dialogs());
  EXPECT_EQ(Rejection("DIALOGS MESSAGE MAYBE"), "DIALOGS takes MESSAGE or ERROR, then ON or OFF");
  EXPECT_EQ(Rejection("DIALOGS WARNING ON"), "DIALOGS takes MESSAGE or ERROR, then ON or OFF");
  EXPECT_EQ(Rejection("PRINT FORMVALUE INFOBAR.SPEED"), "Unknown form value: INFOBAR.SPEED");
}

TEST_F(SimTarvikTest, EntityListsMarkTheActiveOne) {
  tarvik_->AddToolpath("Rough 1", {0, 0, 0, 1, 1, 1});
  tarvik_->AddToolpath("Finish 2", {0, 0, 0, 1, 1, 1});
  tarvik_->AddToolpath("Rest 3", {0, 0, 0, 1, 1, 1});
  EXPECT_EQ(Ask("PRINT ENTITY TOOLPATHS"),
            "3 toolpaths\r\n'Rough 1'\r\n'Finish 2'\r\n'Rest 3'\r\n");
  tarvik_->SetActive(EntityKind::kToolpath, "finish 2");
  EXPECT_EQ(Ask("print entity toolpath"),
            "3 toolpaths\r\n'Rough 1'\r\n*'Finish 2'\r\n'Rest 3'\r\n");
  Send("ACTIVATE TOOLPATH \"Rest 3\"");
  EXPECT_EQ(tarvik_->active(EntityKind::kToolpath), "Rest 3");
  tarvik_->SetActive(EntityKind::kToolpath, "");
  EXPECT_EQ(Ask("PRINT ENTITY TOOLPATHS").find('*'), std::string::npos);

  EXPECT_EQ(Ask("PRINT ENTITY PATTERN"), "0 patterns\r\n");
  tarvik_->AddWorkplane("World", {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1});
  tarvik_->SetActive(EntityKind::kWorkplane, "World");
  EXPECT_EQ(Ask("PRINT ENTITY WORKPLANE"), "1 workplanes\r\n*'World'\r\n");
  EXPECT_EQ(Rejection("PRINT ENTITY SPOONS"), "Unknown entity type: SPOONS");
  EXPECT_EQ(Rejection("ACTIVATE PATTERN Nope"), "Pattern not found: Nope");
}

}  // namespace
}  // namespace qorvel::hosts
