#include "qorvel/machining/tarvik_stuff.h"

#include <gtest/gtest.h>

#include "hosts/simulators.h"
#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/platform/numbers.h"

namespace qorvel::tarvik_stuff {
namespace {

TEST(CollapseBlanksTest, ReducesRunsOfBlanksOnly) {
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"x", "x"},
      {"     ", ""},
      {"a b", "a b"},
      {"ab c", "ab c"},
      {"  -10.000   110.000  ", "-10.000 110.000"},
      {"a\t  b", "a\t b"},  // a tab belongs to its token
      {"1\r\n 2", "1\r\n 2"},
  };
  for (const auto& [in, out] : cases) EXPECT_EQ(CollapseBlanks(in), out) << '"' << in << '"';
}

TEST(CollapseBlanksTest, OverflowsPastSixteenBitPositions) {
  EXPECT_EQ(CollapseBlanks(std::string(32767, 'x')).size(), 32767u);
  EXPECT_EQ(ErrorOf([] { CollapseBlanks(std::string(32768, 'x')); }), 6);
}

class ExtentsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Link().Clear();
    host_ = hosts::RunTarvik();
    Link().ConnectToRunning();
  }
  void TearDown() override { Link().Clear(); }
  // Reads with the host answering `reply` to the sizing command.
  VariantBool Read(int16_t kind, const std::string& command, const std::string& reply,
                   SafeArray& values, std::string name = ";") {
    host_->ScriptReply(command, reply);
    return ReadExtents(kind, values, name);
  }
  std::vector<double> Values(const SafeArray& a) {
    std::vector<double> out;
    for (int32_t i = a.LBound(); i <= a.UBound(); ++i) out.push_back(a.GetDouble(i));
    return out;
  }

  ScopedEnv env_;
  std::shared_ptr<hosts::SimTarvik> host_;
};

TEST_F(ExtentsTest, QuietQueryIsSixHostCallsWithRestore) {
  host_->ClearLog();
  SafeArray values;
  Read(1, "SIZE MODEL", "", values);
  std::vector<std::string> sent;
  for (const hosts::Call& call : host_->log())
    sent.push_back(call.member + " " + call.args[0].ToText());
  EXPECT_EQ(sent, (std::vector<std::string>{
                      "Execute NLTDEBUG UNTRACE COMMAND ACCEPT",
                      "ExecuteEx print formvalue roughmenubar.view.dialogs.message",
                      "Execute dialogs message off", "Execute NLTDEBUG UNTRACE COMMAND ACCEPT",
                      "ExecuteEx SIZE MODEL", "Execute dialogs message on"}));
}

TEST_F(ExtentsTest, RestoreOnlyWhenSavedSettingHeldTrueInAnyCase) {
  const std::pair<const char*, bool> cases[] = {
      {"TRUE\r\n", true}, {"true", true}, {"xTrUex", true}, {"FALSE\r\n", false}, {"", false}};
  for (const auto& [saved, restored] : cases) {
    host_->ScriptReply("print formvalue roughmenubar.view.dialogs.message", saved);
    host_->ClearLog();
    QuietHostQuery("SIZE BLOCK");
    EXPECT_EQ(host_->commands().back() == "dialogs message on", restored) << saved;
  }
}

// Models and toolpaths are read through the control's own members; workplanes give twelve.
TEST_F(ExtentsTest, WorkplanesAndPatternsQuoteTheName) {
  SafeArray values;
  EXPECT_EQ(Read(2, "SIZE WORKPLANE W",
                 "Position: X 10.000 Y 20.000 Z 0.000\r\nVector: X 1.000 Y 0.000 Z 0.000\r\n"
                 "Vector: X 0.000 Y 1.000 Z 0.000\r\nVector: X 0.000 Y 0.000 Z 1.000\r\n",
                 values, "W"),
            VariantBool::kFalse);  // "W" became "\"W\"" on the way out
  std::string wp = ";";
  host_->ScriptReply("SIZE WORKPLANE ;",
                     "Position: X 10.000 Y 20.000 Z 0.000\r\nVector: X 1.000 Y 0.000 Z 0.000\r\n"
                     "Vector: X 0.000 Y 1.000 Z 0.000\r\nVector: X 0.000 Y 0.000 Z 1.000\r\n");
  EXPECT_EQ(ReadExtents(2, values, wp), VariantBool::kTrue);
  EXPECT_EQ(values.UBound(), 12);
  std::string empty;
  ReadExtents(3, values, empty);
  EXPECT_EQ(host_->commands()[host_->commands().size() - 2], "SIZE PATTERN \"\"");
}

TEST_F(ExtentsTest, RefusedReplies) {
  struct Case {
    const char* why;
    int16_t kind;
    const char* command;
    const char* reply;
  } cases[] = {
      {"error word anywhere", 3, "SIZE PATTERN ;", "Minimum: X 1 Y 2 Z 3 Maximum: X 4 Y 5 ERROR"},
      {"six numbers, no count", 1, "SIZE MODEL",
       "Minimum: X 1 Y 2 Z 3\r\nMaximum: X 4 Y 5 Z 6\r\n"},
      {"unknown word adds a field", 4, "SIZE TOOLPATH ;",
       "Minimum: X 1 Y 2 Z 3 Maximum: X 4 Y 5 Z 6 mm"},
      {"small x stays", 4, "SIZE TOOLPATH ;", "Minimum: x 1 Y 2 Z 3 Maximum: X 4 Y 5 Z 6"},
      {"lines run together", 4, "SIZE TOOLPATH ;", "Minimum: X 1 Y 2 Z 3\r\n4 Y 5 Z 6"},
      {"empty", 4, "SIZE TOOLPATH ;", ""},
      {"unknown kind", 5, "", ""},
  };
  for (const Case& c : cases) {
    SafeArray values(VarType::kDouble, {{1, 2}});
    values.PutDouble(1, 99);
    EXPECT_EQ(Read(c.kind, c.command, c.reply, values), VariantBool::kFalse) << c.why;
    EXPECT_EQ(values.GetDouble(1), 99) << c.why;
  }
}

// A field that doesn't convert leaves its zero; numbers follow the regional decimal symbol.
TEST_F(ExtentsTest, FieldsConvertOneByOneInTheRegion) {
  SafeArray values;
  EXPECT_EQ(Read(4, "SIZE TOOLPATH ;", "Minimum: X 1 Y abc Z 3 Maximum: X 4 Y 5 Z 6", values),
            VariantBool::kTrue);
  EXPECT_EQ(Values(values), (std::vector<double>{1, 0, 3, 4, 5, 6}));
  SetDecimalSymbol(env_.env().registry(), ",");
  EXPECT_EQ(Read(4, "SIZE TOOLPATH ;", "Minimum: X 1,5 Y 2 Z 3 Maximum: X 4 Y 5 Z 6,25", values),
            VariantBool::kTrue);
  EXPECT_EQ(Values(values), (std::vector<double>{1.5, 2, 3, 4, 5, 6.25}));
}

TEST_F(ExtentsTest, EmptyLinkSendsNothingButTheProbeStillAsks) {
  Link().Clear();
  host_->ClearLog();
  SafeArray values;
  std::string name = "x";
  EXPECT_EQ(ReadExtents(4, values, name), VariantBool::kFalse);
  EXPECT_EQ(name, "x");
  EXPECT_EQ(ModelLoadedProbe(), VariantBool::kFalse);
  EXPECT_TRUE(host_->log().empty());
}

TEST_F(ExtentsTest, ModelProbeReadsAnyNonZeroNumberPrefix) {
  const std::pair<const char*, bool> cases[] = {
      {"Components: 12\r\n", true},
      {"Components: 0\r\n", false},
      {"0 0.000  0\r\n", false},
      {"0 0 0.001 0", true},
      {"Error", false},
      {"Components:\r\n7", false},  // "Components:7" reads 0
      {"Error 5", true},
      {"", false},
  };
  for (const auto& [reply, loaded] : cases) {
    host_->ScriptReply("SIZE COMPONENTS", reply);
    EXPECT_EQ(ModelLoadedProbe(), ToVariantBool(loaded)) << reply;
  }
}

}  // namespace
}  // namespace qorvel::tarvik_stuff
