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

  ScopedEnv env_;
  std::shared_ptr<SimTarvik> tarvik_;
  AutomationObject host_;
};

// Sizes of models and toolpaths, units and dialog settings reach these tests through the
// control's members; what follows is what no control shows.
TEST_F(SimTarvikTest, PatternsWorkplanesAndEntityLists) {
  tarvik_->AddToolpath("Rough 1", {-40, -20, 1, 40, 20, 29});
  tarvik_->AddToolpath("Finish 2", {0, 0, 0, 1, 1, 1});
  tarvik_->AddPattern("Holes", {0, 0, 5, 80, 40, 5});
  tarvik_->AddWorkplane("Top", {10, 20, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1});
  tarvik_->SetActive(EntityKind::kToolpath, "finish 2");
  // clang-format off
  const std::pair<const char*, const char*> cases[] = {
      {"SIZE TOOLPATH rough 1",
       "Minimum: X -40.000 Y -20.000 Z 1.000\r\nMaximum: X 40.000 Y 20.000 Z 29.000\r\n"},
      {"SIZE PATTERN \"Holes\"",
       "Minimum: X 0.000 Y 0.000 Z 5.000\r\nMaximum: X 80.000 Y 40.000 Z 5.000\r\n"},
      {"SIZE WORKPLANE \"Top\"",
       "Position: X 10.000 Y 20.000 Z 0.000\r\nVector: X 1.000 Y 0.000 Z 0.000\r\n"
       "Vector: X 0.000 Y 1.000 Z 0.000\r\nVector: X 0.000 Y 0.000 Z 1.000\r\n"},
      {"print entity toolpath", "2 toolpaths\r\n'Rough 1'\r\n*'Finish 2'\r\n"},
      {"PRINT ENTITY PATTERN", "1 patterns\r\n'Holes'\r\n"},
      {"print formvalue infobar.units", "MM\r\n"},
      {"PRINT FORMVALUE ROUGHMENUBAR.VIEW.DIALOGS.ERROR", "TRUE\r\n"}};
  // clang-format on
  for (const auto& [command, reply] : cases) EXPECT_EQ(Ask(command), reply) << command;
  Send("ACTIVATE TOOLPATH \"Rough 1\"");
  EXPECT_EQ(tarvik_->active(EntityKind::kToolpath), "Rough 1");
}

TEST_F(SimTarvikTest, WhatItDoesntKnowIsRejectedWithTheReason) {
  EXPECT_EQ(Ask("SIZE BLOCK"), "");
  tarvik_->AddToolpath("Rough 1", {0, 0, 0, 1, 1, 1});
  // clang-format off
  const std::pair<const char*, const char*> cases[] = {
      {"SIZE MODEL", "No model loaded"},
      {"SIZE TOOLPATH \"Nope\"", "Toolpath not found: Nope"},
      {"SIZE TOOLPATH \"\"Rough 1\"\"", "Toolpath not found: \"Rough 1\""},
      {"SIZE TOOLPATH ;", "Toolpath not found: ;"},
      {"SIZE PATTERN \"\"", "Pattern not found: "},
      {"SIZE WORKPLANE \"Rough 1\"", "Workplane not found: Rough 1"},
      {"SIZE TOOLPATHS \"Rough 1\"", "Unknown command: SIZE TOOLPATHS \"Rough 1\""},
      {"SIZE", "Unknown command: SIZE"},
      {"SIZE BLOCK NOW", "Unknown command: SIZE BLOCK NOW"},
      {"EDIT UNITS FEET", "Unknown units: FEET"},
      {"DIALOGS MESSAGE MAYBE", "DIALOGS takes MESSAGE or ERROR, then ON or OFF"},
      {"DIALOGS WARNING ON", "DIALOGS takes MESSAGE or ERROR, then ON or OFF"},
      {"PRINT FORMVALUE INFOBAR.SPEED", "Unknown form value: INFOBAR.SPEED"},
      {"PRINT ENTITY SPOONS", "Unknown entity type: SPOONS"},
      {"ACTIVATE PATTERN Nope", "Pattern not found: Nope"}};
  // clang-format on
  for (const auto& [command, why] : cases) EXPECT_EQ(Rejection(command), why) << command;
}

TEST_F(SimTarvikTest, NumbersFollowTheRegionalSettings) {
  SetDecimalSymbol(Env::Current().registry(), ",");
  Env::Current().registry().SetString(root_key::kCurrentUser, kInternationalKey, "sThousand", ".");
  tarvik_->LoadModel({-1.5, 0, 0, 2.25, 1, 1}, 1);
  Send("EDIT BLOCK RESETLIMIT 0,5");
  Send("EDIT BLOCK RESET");
  EXPECT_EQ(Ask("SIZE BLOCK"),
            "Information: Xmin: -2,000 Xmax: 2,750\r\nYmin: -0,500 Ymax: 1,500\r\n"
            "Zmin: -0,500 Zmax: 1,500\r\n");
  EXPECT_EQ(Ask("SIZE MODEL").substr(0, 21), "Minimum: X -1,500 Y 0");
}

}  // namespace
}  // namespace qorvel::hosts
