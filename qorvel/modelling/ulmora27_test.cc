#include "qorvel/modelling/ulmora27.h"

#include <gtest/gtest.h>

#include "hosts/simulators.h"
#include "qorvel/frame/control.h"
#include "qorvel/modelling/ulmora27_face.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error_testing.h"

namespace qorvel {
namespace {

using hosts::SimUlmora;

class Ulmora27Test : public ::testing::Test {
 protected:
  void SetUp() override {
    host_ = hosts::RunUlmora();
    for (const char* name : {"S1", "CC1", "L1", "A1", "P1"}) {
      host_->AddEntity({name, TypeOf(name), {}});
    }
    control_.Initialize();
  }
  static std::string TypeOf(const std::string& name) {
    const std::pair<const char*, const char*> types[] = {{"S1", "Surface"},
                                                         {"CC1", "Composite Curve"},
                                                         {"L1", "Line"},
                                                         {"A1", "Annotation"},
                                                         {"P1", "Point"}};
    for (const auto& [n, t] : types) {
      if (name == n) return t;
    }
    return "";
  }
  void Connect() {
    control_.Connect();
    host_->ClearLog();
  }
  // The members take the client's variables.
  void AddBatchCommand(std::string command) { control_.AddBatchCommand(command); }
  void GetFilteredSelection(SafeArray& names, SafeArray& types, int32_t& number, int32_t flag) {
    control_.GetFilteredSelection(names, types, number, flag);
  }
  // The expressions the host was asked, in order.
  std::vector<std::string> Asked() const {
    std::vector<std::string> asked;
    for (const hosts::Call& call : host_->log()) {
      if (call.member == "Evaluate") asked.push_back(call.args[0].ToText());
    }
    return asked;
  }
  static std::vector<std::string> Texts(const SafeArray& a) {
    std::vector<std::string> out;
    for (int32_t i = a.LBound(); i <= a.UBound(); ++i) out.push_back(a.Get({i}).ToText());
    return out;
  }
  std::vector<Message> Boxes() { return env_.env().messages().shown(); }

  ScopedEnv env_;
  std::shared_ptr<SimUlmora> host_;
  Ulmora27 control_;
};

TEST_F(Ulmora27Test, TheGateShowsItsBoxAtEveryProbeAndRaisesNothing) {
  const Message box{"Control only supports Ulmora2620 onwards", 4144, ""};
  struct Case {
    Variant version;
    VariantBool connected;
    int16_t read;
    size_t boxes;  // shown by Connect, then Connected and version
  } cases[] = {{int32_t{2620}, VariantBool::kTrue, 2620, 0},
               {int32_t{2619}, VariantBool::kFalse, 0, 3},
               {int32_t{-1}, VariantBool::kFalse, 0, 3},
               {int32_t{0}, VariantBool::kFalse, 0, 0},
               {int32_t{70000}, VariantBool::kFalse, 0, 0}};  // beyond 16 bits: no host
  for (const Case& c : cases) {
    ScopedEnv env;
    auto host = hosts::RunUlmora();
    host->set_version(c.version);
    Ulmora27 control;
    control.Initialize();
    control.Connect();
    EXPECT_EQ(control.Connected(), c.connected) << c.version.ToText();
    EXPECT_EQ(control.version(), c.read);
    EXPECT_EQ(env.env().messages().shown(), std::vector<Message>(c.boxes, box));
    control.Execute("SELECT ALL");  // a refused host stays bound and answers
    EXPECT_EQ(host->commands().back(), "SELECT ALL");
  }
}

TEST_F(Ulmora27Test, ConnectBindsOnlyARunningHost) {
  host_->GoAway();
  control_.Connect();
  EXPECT_EQ(control_.Connected(), VariantBool::kFalse);
  auto next = hosts::RunUlmora();
  control_.Connect();
  EXPECT_EQ(control_.version(), SimUlmora::kDefaultVersion);
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(Ulmora27Test, DialogsSendsItsCommandForMinusOneAndZeroOnly) {
  Connect();
  control_.SetDialogs(VariantBool::kFalse);
  control_.SetDialogs(MakeVariantBool(1));
  control_.SetDialogs(VariantBool::kTrue);
  EXPECT_EQ(host_->commands(), (std::vector<std::string>{"DIALOG OFF", "DIALOG ON"}));
}

TEST_F(Ulmora27Test, EvaluatePassesTheClientsStringAndTheReplyAsItCame) {
  std::string expression = "ENTITY['P1'].TYPE";
  const Variant none = control_.Evaluate(expression);  // not bound: the empty text, not Empty
  EXPECT_EQ(none.vt(), 8);
  EXPECT_EQ(none.ToText(), "");
  Connect();
  EXPECT_EQ(control_.Evaluate(expression).ToText(), "Point");
  ASSERT_EQ(host_->log().size(), 1u);
  EXPECT_EQ(host_->log()[0].args[0].ToText(), expression);
  host_->ScriptEvaluate("V", SafeArray(VarType::kDouble, {{0, 3}}));
  std::string v = "V";
  EXPECT_EQ(control_.Evaluate(v).vt(), 0x2005);  // not converted, not looked at
  std::string bad = "NO SUCH THING";
  EXPECT_EQ(control_.Evaluate(bad).vt(), 8);
}

TEST_F(Ulmora27Test, ABatchGoesWholeInOneCallAndIsGoneAfterwards) {
  AddBatchCommand("");  // on an empty buffer: still empty
  AddBatchCommand("CREATE POINT Q1 1 2 3");
  AddBatchCommand("");  // on a filled one: an empty line
  AddBatchCommand("SELECT Q1");
  EXPECT_EQ(control_.ProcessBatch(), VariantBool::kFalse);  // not bound: false, and cleared
  EXPECT_EQ(control_.ProcessBatch(), VariantBool::kFalse);
  Connect();
  EXPECT_EQ(control_.ProcessBatch(), VariantBool::kTrue);  // an empty batch still goes
  AddBatchCommand("CREATE POINT Q1 1 2 3");
  AddBatchCommand("");
  AddBatchCommand("SELECT Q1");
  EXPECT_EQ(control_.ProcessBatch(), VariantBool::kTrue);
  AddBatchCommand("DELETE NOTHING");
  EXPECT_EQ(control_.ProcessBatch(), VariantBool::kFalse);
  EXPECT_EQ(control_.ProcessBatch(), VariantBool::kTrue);  // the failed batch is gone
  EXPECT_EQ(host_->batches(),
            (std::vector<std::string>{"", "CREATE POINT Q1 1 2 3\r\n\r\nSELECT Q1",
                                      "DELETE NOTHING", ""}));
  EXPECT_EQ(host_->selection(), std::vector<std::string>{"Q1"});
}

TEST_F(Ulmora27Test, CountsReadTheNumberAtTheStartOfTheReply) {
  Connect();
  host_->Select({"S1", "L1", "P1"});
  host_->MarkUpdated({"L1"});
  EXPECT_EQ(control_.ItemsSelectedCount(), 3);
  host_->set_counts_as_text(true);
  EXPECT_EQ(control_.ItemsSelectedCount(), 3);
  EXPECT_EQ(control_.ItemsCreatedCount(), 0);
  EXPECT_EQ(control_.ItemsModifiedCount(), 1);
  const std::pair<Variant, int32_t> replies[] = {
      {"2.5 items", 2}, {" 3.5", 4}, {"none", 0}, {"", 0}, {2.5, 2}};
  for (const auto& [reply, count] : replies) {
    host_->ScriptEvaluate("SELECTION.NUMBER", reply);
    EXPECT_EQ(control_.ItemsSelectedCount(), count) << reply.ToText();
  }
  host_->ScriptEvaluate("SELECTION.NUMBER", "3E10");
  EXPECT_EQ(ErrorOf([&] { control_.ItemsSelectedCount(); }), 6);
  EXPECT_EQ(Asked()[0], "SELECTION.NUMBER");
  EXPECT_EQ(Asked()[3], "UPDATED.NUMBER");
}

TEST_F(Ulmora27Test, ListsAskNameThenTypeFromIndexZeroIntoArraysFromOne) {
  Connect();
  host_->Select({"S1", "CC1", "A1"});
  SafeArray names(VarType::kText, {{0, 9}});
  SafeArray types;
  int32_t number = -7;
  control_.GetSelectedEntities(names, types, number);
  EXPECT_EQ(number, 3);
  EXPECT_EQ(names.LBound(), 1);
  EXPECT_EQ(Texts(names), (std::vector<std::string>{"S1", "CC1", "A1"}));
  EXPECT_EQ(Texts(types), (std::vector<std::string>{"Surface", "CompCurve", "Annotation"}));
  EXPECT_EQ(Asked(),
            (std::vector<std::string>{"SELECTION.NUMBER", "SELECTION.NAME[0]", "SELECTION.TYPE[0]",
                                      "SELECTION.NAME[1]", "SELECTION.TYPE[1]", "SELECTION.NAME[2]",
                                      "SELECTION.TYPE[2]"}));
  host_->ClearLog();
  control_.GetModifiedEntities(names, types, number);  // none: the arrays stay as they were
  EXPECT_EQ(number, 0);
  EXPECT_EQ(Texts(names).size(), 3u);
  EXPECT_EQ(Asked(), std::vector<std::string>{"UPDATED.NUMBER"});
  host_->MarkCreated({"L1"});
  control_.GetCreatedEntities(names, types, number);
  EXPECT_EQ(Texts(names), std::vector<std::string>{"L1"});
}

TEST_F(Ulmora27Test, TheFilterAsksTheTypeFirstAndTheNameOnAMatch) {
  Connect();
  host_->Select({"S1", "CC1", "L1", "A1"});
  const SafeArray before(VarType::kText, {{1, 2}});
  struct Case {
    int32_t flag;
    std::vector<std::string> names, types;
  } cases[] = {{33, {"S1", "CC1"}, {"Surface", "CompCurve"}},
               {60, {"CC1", "L1"}, {"CompCurve", "Line"}},
               {255, {"S1", "CC1", "L1"}, {"Surface", "CompCurve", "Line"}},
               {256, {}, {}},
               {0, {}, {}}};
  for (const Case& c : cases) {
    SafeArray names = before;
    SafeArray types = before;
    int32_t number = 99;
    host_->ClearLog();
    GetFilteredSelection(names, types, number, c.flag);
    EXPECT_EQ(number, int32_t(c.names.size())) << c.flag;
    if (c.names.empty()) {
      EXPECT_EQ(names.UBound(), 2) << "untouched";
      EXPECT_EQ(Asked().size(), 5u) << "types only";
    } else {
      EXPECT_EQ(Texts(names), c.names) << c.flag;
      EXPECT_EQ(Texts(types), c.types) << c.flag;
    }
  }
  host_->ClearLog();
  SafeArray names, types;
  int32_t number = 0;
  GetFilteredSelection(names, types, number, 8);
  EXPECT_EQ(Asked(), (std::vector<std::string>{"SELECTION.NUMBER", "SELECTION.TYPE[0]",
                                               "SELECTION.TYPE[1]", "SELECTION.TYPE[2]",
                                               "SELECTION.NAME[2]", "SELECTION.TYPE[3]"}));
}

TEST_F(Ulmora27Test, StoredDataKeepsOneValueAndItsShape) {
  EXPECT_TRUE(control_.StoredData().is_empty());
  EXPECT_EQ(control_.StoreType(), 0);
  host_->AddEntity({"Q", "Point", {{"X", 1.5}, {"ONE", SafeArray(VarType::kDouble, {{0, 1}})}}});
  Connect();
  control_.StoreData("Q.X");
  EXPECT_EQ(control_.StoredData().vt(), 5);
  EXPECT_EQ(control_.StoreType(), 0);
  control_.StoreData("Q.ONE");  // one element is still an array
  EXPECT_EQ(control_.StoreType(), 1);
  SafeArray copy = control_.StoredData().ToArray();
  copy.PutDouble(0, 9);
  EXPECT_EQ(control_.StoredData().ToArray().GetDouble(0), 0) << "a copy each time";
  control_.Disconnect();
  EXPECT_EQ(control_.StoreType(), 1) << "outlives the connection";
  control_.StoreData("Q.X");  // fails: Empty, not the old value
  EXPECT_TRUE(control_.StoredData().is_empty());
}

// Through the dispatch face the arrays and the count come back by reference; a fixed array of
// other bounds refuses the new one (10), and the count still comes back.
TEST_F(Ulmora27Test, ArraysComeBackByReferenceThroughTheFace) {
  host_->Select({"S1", "L1"});
  AutomationObject ulmora = NewControl<Ulmora27>();
  Call(ulmora, "Connect");
  SafeArray names, types;
  int32_t number = 0;
  std::vector<Variant> args{Variant::Ref(names), Variant::Ref(types), Variant::Ref(number)};
  CallMember(ulmora, "GetSelectedEntities", args);
  EXPECT_EQ(Texts(names), (std::vector<std::string>{"S1", "L1"}));
  EXPECT_EQ(number, 2);
  SafeArray fixed = SafeArray::Fixed(VarType::kText, {{1, 1}});
  number = 0;
  std::vector<Variant> refused{Variant::Ref(fixed), Variant::Ref(types), Variant::Ref(number)};
  EXPECT_EQ(ErrorOf([&] { CallMember(ulmora, "GetSelectedEntities", refused); }), 10);
  EXPECT_EQ(number, 2);

  // A script's variables that hold no array yet get arrays of text, or stay Empty when there
  // is nothing to list.
  for (const std::vector<std::string>& selected : {std::vector<std::string>{"S1"}, {}}) {
    host_->Select(selected);
    Variant loose_names, loose_types;
    std::vector<Variant> loose{Variant::Ref(loose_names), Variant::Ref(loose_types),
                               Variant::Ref(number)};
    CallMember(ulmora, "GetSelectedEntities", loose);
    EXPECT_EQ(loose_names.vt(), selected.empty() ? 0 : 0x2008);
    EXPECT_EQ(loose_types.vt(), selected.empty() ? 0 : 0x2008);
  }
}

}  // namespace
}  // namespace qorvel
