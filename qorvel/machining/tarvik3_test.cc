#include "qorvel/machining/tarvik3.h"

#include <gtest/gtest.h>

#include <string>

#include "hosts/simulators.h"
#include "qorvel/frame/host_link.h"
#include "qorvel/platform/collection.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/platform/numbers.h"

namespace qorvel {
namespace {

using hosts::SimTarvik;

class Tarvik3Test : public ::testing::Test {
 protected:
  void SetUp() override {
    SetDecimalSymbol(env_.env().registry(), ".");
    control_.Initialize();
  }
  static HostLink& Link() { return HostLink::Of(Host::kTarvik); }
  // The members take the client's variables; these pass what a client that leaves them out
  // passes.
  void Connect(int32_t mode = 0) { control_.Connect(mode); }
  void ResizeBlock(double offset, VariantBool xmin = VariantBool::kFalse,
                   VariantBool xmax = VariantBool::kFalse, VariantBool ymin = VariantBool::kFalse,
                   VariantBool ymax = VariantBool::kFalse, VariantBool zmin = VariantBool::kFalse,
                   VariantBool zmax = VariantBool::kFalse) {
    control_.ResizeBlock(offset, xmin, xmax, ymin, ymax, zmin, zmax);
  }
  void DefineTool(int32_t type, double diameter, double length = -1, double tip_radius = -1,
                  double angle = -1, double chamfer = -1, double x_offset = 0, double y_offset = 0,
                  int32_t number = -1, std::string name = "") {
    control_.DefineTool(type, diameter, length, tip_radius, angle, chamfer, x_offset, y_offset,
                        number, name);
  }
  std::shared_ptr<SimTarvik> Connected() {
    auto host = hosts::RunTarvik();
    Connect();
    host->ClearLog();
    return host;
  }
  // The commands the host got, without the untrace that precedes each capture.
  static std::vector<std::string> Sent(const SimTarvik& host) {
    std::vector<std::string> out;
    for (const std::string& c : host.commands()) {
      if (c != "NLTDEBUG UNTRACE COMMAND ACCEPT") out.push_back(c);
    }
    return out;
  }

  ScopedEnv env_;
  Tarvik3 control_;
};

TEST_F(Tarvik3Test, VersionGateInModesZeroAndOne) {
  struct Case {
    int32_t version;
    int32_t error;
    VariantBool connected;
  } cases[] = {{2522, 0, VariantBool::kTrue},
               {2521, 60000, VariantBool::kFalse},
               {0, 0, VariantBool::kFalse},
               {-3, 60000, VariantBool::kFalse}};
  hosts::InstallSimulatedHosts();
  auto host = hosts::RunTarvik();
  for (int32_t mode : {0, 1}) {
    for (const Case& c : cases) {
      Link().Clear();
      control_.Initialize();
      host->set_version(c.version);
      EXPECT_EQ(ErrorOf([&] { Connect(mode); }), c.error) << c.version;
      EXPECT_EQ(Link().object(), host) << "the link stays bound";
      EXPECT_EQ(ErrorOf([&] { control_.Connected(); }), c.error);
      if (c.error == 0) {
        EXPECT_EQ(control_.Connected(), c.connected);
      }
    }
  }
  host->set_version(70000);  // beyond 16 bits: overflow, to the client
  EXPECT_EQ(ErrorOf([&] { control_.version(); }), 6);
  host->set_version(2521);
  control_.Execute("EDIT UNITS INCHES");  // still reaches the refused host
  EXPECT_EQ(host->units(), "INCHES");
  EXPECT_EQ(ErrorOf([&] { control_.Disconnect(); }), 0);
  EXPECT_TRUE(env_.env().launches().empty());
}

TEST_F(Tarvik3Test, ModeTwoCreatesAndRefusesOldHostsByEmptyingTheLink) {
  hosts::InstallSimulatedHosts();
  auto running = hosts::RunTarvik();
  Connect(2);
  EXPECT_EQ(control_.Connected(), VariantBool::kTrue);
  EXPECT_NE(Link().object(), running);
  const size_t created = hosts::StartedHosts().size();
  Connect(2);  // connected: creates nothing
  EXPECT_EQ(hosts::StartedHosts().size(), created);

  for (int32_t version : {2521, 0, -1}) {
    Link().Clear();
    control_.Initialize();
    env_.env().running_objects().RegisterClassServer("Tarvik.Document", [version] {
      auto sim = std::make_shared<SimTarvik>();
      sim->set_version(version);
      return sim;
    });
    EXPECT_EQ(ErrorOf([&] { Connect(2); }), 60000) << version;
    EXPECT_TRUE(Link().empty()) << version;
  }
  Connect(7);  // no link operation, only the probe
  EXPECT_TRUE(Link().empty());
}

TEST_F(Tarvik3Test, DialogsWriteAndRead) {
  auto host = Connected();
  control_.SetDialogs(VariantBool::kFalse);
  control_.SetDialogs(MakeVariantBool(1));
  control_.SetDialogs(VariantBool::kTrue);
  EXPECT_EQ(Sent(*host), (std::vector<std::string>{"DIALOGS MESSAGE OFF", "DIALOGS ERROR OFF",
                                                   "DIALOGS MESSAGE ON", "DIALOGS ERROR ON"}));
  EXPECT_EQ(control_.Dialogs(), VariantBool::kTrue);
  host->ScriptReply("print formvalue roughmenubar.view.dialogs.message", "true");
  EXPECT_EQ(control_.Dialogs(), VariantBool::kFalse);  // case-sensitive here
}

TEST_F(Tarvik3Test, VisibleWriteOnlyWhileConnected) {
  auto host = hosts::RunTarvik();
  Link().ConnectToRunning();  // bound, but the control never probed
  control_.SetVisible(VariantBool::kFalse);
  EXPECT_EQ(host->visible, VariantBool::kTrue);
  EXPECT_EQ(control_.Visible(), VariantBool::kTrue);
  Connect();
  control_.SetVisible(VariantBool::kFalse);
  EXPECT_EQ(host->visible, VariantBool::kFalse);
  host->GoAway();
  EXPECT_EQ(ErrorOf([&] { control_.SetVisible(VariantBool::kTrue); }), 462);
}

TEST_F(Tarvik3Test, ResizeBlockSendsTwelveCommandsBehindItsProbe) {
  auto host = Connected();
  ResizeBlock(-1.5);  // no model: no EDIT command
  for (const std::string& c : Sent(*host)) EXPECT_EQ(c.find("EDIT"), std::string::npos) << c;
  host->LoadModel({-50, -25, 0, 50, 25, 30}, 12);
  host->ClearLog();
  ResizeBlock(5, VariantBool::kFalse, VariantBool::kTrue, MakeVariantBool(1), VariantBool::kFalse,
              VariantBool::kTrue);
  EXPECT_EQ(host->log().size(), 18u);
  // clang-format off
  EXPECT_EQ(Sent(*host), (std::vector<std::string>{
      "print formvalue roughmenubar.view.dialogs.message", "dialogs message off",
      "SIZE COMPONENTS", "dialogs message on", "EDIT BLOCKTYPE LIMITS",
      "EDIT BLOCK LIMITTYPE MODEL", "EDIT BLOCK ALL UNLOCK", "EDIT BLOCK XMIN UNLOCK",
      "EDIT BLOCK XMAX LOCK", "EDIT BLOCK YMIN UNLOCK", "EDIT BLOCK YMAX UNLOCK",
      "EDIT BLOCK ZMIN LOCK", "EDIT BLOCK ZMAX UNLOCK", "EDIT BLOCK RESETLIMIT 5.",
      "EDIT BLOCK RESET", "EDIT BLOCK ALL UNLOCK"}));
  // clang-format on
  EXPECT_EQ(host->block().limits[0], -55);
}

TEST_F(Tarvik3Test, SetBlockCommandsAndNumberFormats) {
  auto host = Connected();
  control_.SetBlock(0, 1);
  control_.SetBlock(7, 1);
  control_.SetBlock(1, 1234.5678915);
  control_.SetBlock(6, 2.5);
  control_.SetBlock(3, -10);
  SetDecimalSymbol(env_.env().registry(), ",");
  control_.SetBlock(2, 0.5);
  EXPECT_EQ(Sent(*host),
            (std::vector<std::string>{"EDIT BLOCK XMIN UNLOCK", "EDIT BLOCK XMIN 1234.567892",
                                      "EDIT BLOCK ZMAX UNLOCK", "EDIT BLOCK ZMAX 2.5",
                                      "EDIT BLOCK YMIN UNLOCK", "EDIT BLOCK YMIN -10.",
                                      "EDIT BLOCK XMAX UNLOCK", "EDIT BLOCK XMAX 0,5"}));
}

// Every argument given: diameter 6, length 50, tip 1, angle 118, chamfer 2, offsets -1 and 0.5,
// number 0, name "Big one". Each type sends what it takes between the length and the number.
TEST_F(Tarvik3Test, DefineToolSendsTheCommandsTheTypeAllows) {
  // clang-format off
  const std::vector<std::vector<std::string>> by_type = {
      {"EDIT TOOLTYPE ENDMILL"},
      {"EDIT TOOLTYPE BALLNOSED"},
      {"EDIT TOOLTYPE TIPRADIUSED", "EDIT TIPRADIUS 1."},
      {"EDIT TOOLTYPE TAPERSPHERICAL", "EDIT TIPRADIUS 1.", "EDIT TAPERANGLE 118."},
      {"EDIT TOOLTYPE TAPERTIPPED", "EDIT TIPRADIUS 1.", "EDIT TAPERANGLE 118.",
       "EDIT TAPERHEIGHT 2."},
      {"EDIT TOOLTYPE TIPPEDDISC", "EDIT TIPRADIUS 1."},
      {"EDIT TOOLTYPE OFFCENTRETIPRAD", "EDIT TIPRADIUS 1.", "EDIT TIPRADIUSX -1.",
       "EDIT TIPRADIUSY 0.5"},
      {"EDIT TOOLTYPE DRILL", "EDIT TAPERANGLE 118."},
      {}};  // 8 is no type
  // clang-format on
  auto host = Connected();
  for (int32_t type = 0; type < int32_t(by_type.size()); ++type) {
    host->ClearLog();
    DefineTool(type, 6, 50, 1, 118, 2, -1, 0.5, 0, "Big one");
    std::vector<std::string> expected = {"EDIT DIAMETER 6.", "EDIT TLEN 50."};
    expected.insert(expected.end(), by_type[type].begin(), by_type[type].end());
    expected.insert(expected.end(), {"EDIT TOOLNUMBER 0", "EDIT TOOLNAME \"Big one\""});
    EXPECT_EQ(Sent(*host), expected) << type;
  }
}

TEST_F(Tarvik3Test, DefineToolDefaultsAndZeroes) {
  auto host = Connected();
  DefineTool(6, 0);
  DefineTool(0, 0.0000001, 0, 2, -1, -1, 0, 0, -2, "");
  EXPECT_EQ(Sent(*host), (std::vector<std::string>{"EDIT TOOLTYPE OFFCENTRETIPRAD",
                                                   "EDIT TIPRADIUSX 0.", "EDIT TIPRADIUSY 0.",
                                                   "EDIT DIAMETER 0.", "EDIT TOOLTYPE ENDMILL"}));
  EXPECT_EQ(host->tool().at("TOOLTYPE"), "ENDMILL");
}

TEST_F(Tarvik3Test, UnitsBothWays) {
  EXPECT_EQ(control_.Units(), 0);
  control_.SetUnits(1);  // no host: only the cache
  EXPECT_EQ(control_.Units(), 1);
  auto host = Connected();
  control_.SetUnits(2);
  control_.SetUnits(0);
  EXPECT_EQ(host->units(), "MM");
  control_.SetUnits(1);
  EXPECT_EQ(host->units(), "INCHES");
  host->ScriptReply("PRINT FORMVALUE INFOBAR.UNITS", "mm");
  EXPECT_EQ(control_.Units(), 0);
  host->ScriptReply("PRINT FORMVALUE INFOBAR.UNITS", "MM or inches");
  EXPECT_EQ(control_.Units(), 1);
  host->ScriptReply("PRINT FORMVALUE INFOBAR.UNITS", "furlongs");
  EXPECT_EQ(control_.Units(), 1);
  EXPECT_EQ(Sent(*host)[0], "EDIT UNITS MM");
}

TEST_F(Tarvik3Test, BlockCache) {
  EXPECT_EQ(control_.BlockSize(1), 0);  // never connected: nothing stored, nothing sent
  auto host = Connected();
  host->ScriptReply("SIZE BLOCK",
                    "Information: Xmin: -10.000 Xmax: 110.000\r\nYmin: -10.000 Ymax: 60.000\r\n"
                    "Zmin: 0.000 Zmax: 25.000\r\n");
  EXPECT_EQ(ErrorOf([&] { control_.BlockSize(7); }), 9);  // after the fetch
  EXPECT_EQ(control_.BlockSize(2), 110);
  EXPECT_EQ(control_.BlockSize(6), 25);
  host->ScriptReply("SIZE BLOCK", "1 2 3 4 5");
  control_.StoreBlock();
  EXPECT_EQ(control_.BlockSize(5), 5);
  EXPECT_EQ(control_.BlockSize(6), 25);  // the sixth stays
  host->ScriptReply("SIZE BLOCK", "");
  control_.StoreBlock();
  EXPECT_EQ(control_.BlockSize(1), 0);
  EXPECT_EQ(control_.BlockDefined(), VariantBool::kFalse);
  host->ScriptReply("SIZE BLOCK", "Error in block");
  EXPECT_EQ(control_.BlockDefined(), VariantBool::kTrue);
  const size_t calls = host->log().size();
  control_.BlockSize(3);  // cached: no host call
  EXPECT_EQ(host->log().size(), calls);
}

TEST_F(Tarvik3Test, ModelCacheSurvivesDisconnect) {
  auto host = Connected();
  host->LoadModel({-50, -25, 0, 50, 25, 30}, 12);
  const double expected[6] = {-50, 50, -25, 25, 0, 30};
  for (int axis = 1; axis <= 6; ++axis) EXPECT_EQ(control_.ModelSize(axis), expected[axis - 1]);
  control_.Disconnect();
  EXPECT_EQ(control_.ModelSize(2), 50);
  Link().ConnectToRunning();
  host->ScriptReply("SIZE MODEL", "Minimum: X 1 Y 2 Z 3\r\nMaximum: X 4 Y 5 Z 6\r\n");
  control_.StoreModel();
  EXPECT_EQ(control_.ModelSize(2), 0);
  EXPECT_EQ(ErrorOf([&] { control_.ModelSize(0); }), 9);
}

TEST_F(Tarvik3Test, ListsFollowTheReplyLines) {
  auto host = hosts::RunTarvik();
  Link().ConnectToRunning();  // bound, never probed: the list empties and nothing is sent
  AutomationObject list = NewCollection();
  Call(list, "Add", "left over");
  int32_t active = 99;
  control_.GetToolpathList(list, active);
  EXPECT_EQ(GetMember(list, "Count").ToLong(), 0);
  EXPECT_EQ(active, 0);
  EXPECT_TRUE(host->log().empty());
  Connect();
  struct Case {
    const char* why;
    std::string reply;
    std::vector<std::string> items;
    int32_t active;
  } cases[] = {
      // clang-format off
      {"shape", "3 entities\r\n'Rough 1'\r\n*'Finish 2'\r\n'Rest 3'\r\n",
       {"Rough 1", "Finish 2", "Rest 3"}, 2},
      {"heading 0", "0 entities\r\n'A'\r\n", {}, 0},
      {"no line break", "'A'", {}, 0},
      {"blank line still counts", "2\r\n'A'\r\n\r\n  *  'B'  \r\n", {"A", "B"}, 3},
      {"two marks: the later wins", "2\r\n*'A'\r\n*'B'\r\n", {"A", "B"}, 2},
      {"two characters, one character, only a star", "x\r\n''\r\nq\r\n*\r\n", {"q"}, 3},
      {"delimiter inside", "1\r\n'it's'\r\n", {"it's"}, 0},
      // clang-format on
  };
  for (const Case& c : cases) {
    host->ScriptReply("PRINT ENTITY TOOLPATHS", c.reply);
    control_.GetToolpathList(list, active);
    std::vector<std::string> items;
    for (int32_t i = 1; i <= GetMember(list, "Count").ToLong(); ++i) {
      items.push_back(Call(list, "Item", i).ToText());
    }
    EXPECT_EQ(items, c.items) << c.why;
    EXPECT_EQ(active, c.active) << c.why;
  }
  host->ClearLog();
  control_.GetPatternList(list, active);
  control_.GetWorkplaneList(list, active);
  EXPECT_EQ(Sent(*host),
            (std::vector<std::string>{"PRINT ENTITY PATTERN", "PRINT ENTITY WORKPLANE"}));
}

TEST_F(Tarvik3Test, SizeToolpathQuotesTheCallersName) {
  auto host = Connected();
  host->AddEntity(hosts::EntityKind::kToolpath, "Rough 1", {-40, -20, 1, 40, 20, 29});
  std::string name = "Rough 1";
  double v[6] = {9, 9, 9, 9, 9, 9};
  control_.SizeToolpath(name, v[0], v[1], v[2], v[3], v[4], v[5]);
  EXPECT_EQ(name, "\"Rough 1\"");
  EXPECT_EQ(std::vector<double>(v, v + 6), (std::vector<double>{-40, 40, -20, 20, 1, 29}));
  control_.SizeToolpath(name, v[0], v[1], v[2], v[3], v[4], v[5]);  // doubled quotes: unknown
  EXPECT_EQ(Sent(*host).end()[-2], "SIZE TOOLPATH \"\"Rough 1\"\"");
  EXPECT_EQ(std::vector<double>(v, v + 6), std::vector<double>(6, 0.0));
}

}  // namespace
}  // namespace qorvel
