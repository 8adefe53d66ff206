#include "hosts/sim_ulmora.h"

#include <gtest/gtest.h>

#include "hosts/simulators.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/platform/safe_array.h"

namespace qorvel::hosts {
namespace {

class SimUlmoraTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ulmora_ = RunUlmora();
    host_ = ulmora_;
  }

  // A member called as the control calls it: one text by reference.
  Variant Call(const char* member, std::string text) {
    std::vector<Variant> args{Variant::Ref(text)};
    return CallMember(host_, member, args);
  }
  Variant Evaluate(const std::string& expression) { return Call("Evaluate", expression); }
  void Send(std::string command) {
    int32_t status = 0;
    std::vector<Variant> args{Variant::Ref(command), Variant::Ref(status)};
    CallMember(host_, "Execute", args);
  }
  // The description of the error a member raises with the text; "" when the host takes it.
  std::string Rejection(const char* member, const std::string& text) {
    try {
      Call(member, text);
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), kCommandRejected) << text;
      return e.description();
    }
    return "";
  }
  // A three-entity model: one of each list's interesting types.
  void LoadModel() {
    Send("CREATE POINT P1 10 20 30");
    Send("CREATE LINE L1 0 0 0 10 0 0");
    Send("CREATE COMPCURVE CC1 L1");
    ulmora_->AddEntity({"Note", "Annotation", {{"text", "hello"}}});
  }

  ScopedEnv env_;
  std::shared_ptr<SimUlmora> ulmora_;
  AutomationObject host_;
};

std::vector<double> Doubles(const Variant& v) {
  const SafeArray a = v.ToArray();
  std::vector<double> out;
  for (int32_t i = a.LBound(); i <= a.UBound(); ++i) out.push_back(a.GetDouble(i));
  return out;
}

TEST_F(SimUlmoraTest, AnswersTheListExpressionsTheControlSends) {
  LoadModel();
  ulmora_->Select({"cc1", "Note", "P1"});
  ulmora_->MarkUpdated({"L1"});
  const std::pair<const char*, const char*> texts[] = {
      {"SELECTION.NAME[0]", "CC1"},
      {"SELECTION.TYPE[0]", "Composite Curve"},
      {"SELECTION.NAME[1]", "Note"},
      {"SELECTION.TYPE[1]", "Annotation"},
      {"selection.type[2]", "Point"},
      {"CREATED.NAME[0]", "CC1"},
      {"CREATED.TYPE[0]", "Composite Curve"},
      {"UPDATED.NAME[0]", "L1"},
      {"UPDATED.TYPE[0]", "Line"},
  };
  for (const auto& [expression, reply] : texts) {
    const Variant v = Evaluate(expression);
    EXPECT_EQ(v.vt(), uint16_t(VarType::kText)) << expression;
    EXPECT_EQ(v.ToText(), reply) << expression;
  }
  const std::pair<const char*, int32_t> counts[] = {
      {"SELECTION.NUMBER", 3}, {"CREATED.NUMBER", 1}, {"UPDATED.NUMBER", 1}};
  for (const auto& [expression, count] : counts) {
    EXPECT_EQ(Evaluate(expression).vt(), uint16_t(VarType::kLong)) << expression;
    EXPECT_EQ(Evaluate(expression).ToLong(), count) << expression;
  }
  ulmora_->set_counts_as_text(true);
  EXPECT_EQ(Evaluate("SELECTION.NUMBER").vt(), uint16_t(VarType::kText));
  EXPECT_EQ(Evaluate("SELECTION.NUMBER").ToText(), "3");
}

TEST_F(SimUlmoraTest, EntityExpressionsAndPrintAnswerScalarsTextsAndZeroBasedVectors) {
  LoadModel();
  EXPECT_EQ(Evaluate("ENTITY['p1'].X").vt(), uint16_t(VarType::kDouble));
  EXPECT_EQ(Evaluate("ENTITY['P1'].X").ToDouble(), 10);
  EXPECT_EQ(Evaluate("ENTITY['CC1'].TYPE").ToText(), "Composite Curve");
  EXPECT_EQ(Evaluate("ENTITY['Note'].TEXT").ToText(), "hello");
  EXPECT_EQ(Evaluate("ENTITY['P1'].EXISTS").vt(), uint16_t(VarType::kBool));
  EXPECT_EQ(Evaluate("ENTITY['P1'].EXISTS").ToBool(), VariantBool::kTrue);
  EXPECT_EQ(Evaluate("ENTITY['P9'].EXISTS").ToBool(), VariantBool::kFalse);

  const Variant position = Call("Print", "P1.POSITION");
  EXPECT_EQ(position.vt(), kArrayFlag | uint16_t(VarType::kDouble));
  EXPECT_EQ(position.ToArray().LBound(), 0);
  EXPECT_EQ(Doubles(position), (std::vector<double>{10, 20, 30}));
  EXPECT_EQ(Doubles(Call("Print", "L1.END")), (std::vector<double>{10, 0, 0}));
  EXPECT_EQ(Call("Print", "P1.X").vt(), uint16_t(VarType::kDouble));
  EXPECT_EQ(Call("Print", "p1.y").ToDouble(), 20);

  Send("MODIFY P1 POSITION 1 2 3");
  EXPECT_EQ(Evaluate("ENTITY['P1'].Z").ToDouble(), 3);
}

TEST_F(SimUlmoraTest, UnknownExpressionsIdsAndIndexesPastTheEndAreRejected) {
  LoadModel();
  ulmora_->Select({"P1"});
  const std::pair<const char*, const char*> evaluates[] = {
      {"SELECTION.NAME[1]", "Index past the end: SELECTION.NAME[1] (SELECTION holds 1)"},
      {"UPDATED.TYPE[0]", "Index past the end: UPDATED.TYPE[0] (UPDATED holds 0)"},
      {"SELECTION.NAME[99999999999999999999]",
       "Index past the end: SELECTION.NAME[99999999999999999999] (SELECTION holds 1)"},
      {"SELECTION.NAME[-1]", "Invalid index: SELECTION.NAME[-1]"},
      {"SELECTION.NAME[ 0]", "Invalid index: SELECTION.NAME[ 0]"},
      {"MODIFIED.NUMBER", "Unknown expression: MODIFIED.NUMBER"},
      {"SELECTION.COLOUR[0]", "Unknown expression: SELECTION.COLOUR[0]"},
      {"ENTITY['P9'].X", "Entity not found: P9"},
      {"ENTITY['P1'].W", "Unknown property: W of P1"},
      {"", "Unknown expression: "},
  };
  for (const auto& [expression, why] : evaluates) {
    EXPECT_EQ(Rejection("Evaluate", expression), why) << expression;
  }
  EXPECT_EQ(Rejection("Print", "P9.X"), "Entity not found: P9");
  EXPECT_EQ(Rejection("Print", "P1"), "Print takes name.property: P1");
  EXPECT_EQ(ErrorOf([&] { Call("ExecuteEx", "CREATE POINT P2 0 0 0"); }), err::kNoMember);
  EXPECT_EQ(host_->Shape("ExecuteEx"), MemberShape::kMissing);
  std::vector<Variant> array{Variant(SafeArray(VarType::kDouble, {Bound{0, 1}}))};
  EXPECT_EQ(ErrorOf([&] { CallMember(host_, "Evaluate", array); }), err::kTypeMismatch);
}

TEST_F(SimUlmoraTest, EachModelChangingCommandOrBatchStartsTheListsAfresh) {
  LoadModel();
  EXPECT_EQ(ulmora_->created(), std::vector<std::string>{"CC1"});
  Send("SELECT P1");
  Send("SELECT ADD l1 P1");
  Send("DIALOG OFF");
  EXPECT_EQ(ulmora_->created(), std::vector<std::string>{"CC1"});  // no change to the model
  EXPECT_EQ(ulmora_->selection(), (std::vector<std::string>{"P1", "L1"}));
  EXPECT_FALSE(ulmora_->dialogs());
  Send("MODIFY L1 END 5 0 0");
  EXPECT_EQ(ulmora_->created(), std::vector<std::string>{});
  EXPECT_EQ(ulmora_->updated(), std::vector<std::string>{"L1"});
  Send("DELETE P1");
  EXPECT_EQ(ulmora_->selection(), std::vector<std::string>{"L1"});
  EXPECT_EQ(ulmora_->updated(), std::vector<std::string>{});
  Send("SELECT CLEARLIST");
  EXPECT_EQ(ulmora_->selection(), std::vector<std::string>{});
  EXPECT_EQ(ErrorOf([&] { Send("SELECT P1"); }), kCommandRejected);
}

TEST_F(SimUlmoraTest, ExecStopsAtTheFirstBadLineAfterApplyingTheLinesBeforeIt) {
  Call("exec", "CREATE POINT A 0 0 0\r\n\r\nCREATE ARC B 0 0 0 5\r\nMODIFY A X 7\r\n");
  EXPECT_EQ(ulmora_->created(), (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(ulmora_->updated(), std::vector<std::string>{});  // A is new in this batch
  const std::string bad = "MODIFY A X 8\r\nCREATE WIDGET W\r\nCREATE POINT E 0 0 0";
  EXPECT_EQ(Rejection("exec", bad), "Line 2: Unknown entity type: WIDGET");
  EXPECT_EQ(ulmora_->entity("A")->properties["X"].ToDouble(), 8);
  EXPECT_FALSE(ulmora_->entity("E"));
  EXPECT_EQ(ulmora_->updated(), std::vector<std::string>{"A"});
  EXPECT_EQ(Rejection("exec", "CREATE POINT F 1 2\nSELECT F"),
            "Line 1: Line break inside a command");
  EXPECT_EQ(Rejection("exec", ""), "");
  EXPECT_EQ(ulmora_->batches().size(), 4u);
  EXPECT_EQ(ulmora_->batches()[1], bad);
}

TEST_F(SimUlmoraTest, ScriptedEvaluateRepliesGoUntilTheFaultsAreCleared) {
  ulmora_->ScriptEvaluate("selection.number", Variant("2 entities"));
  EXPECT_EQ(Evaluate("SELECTION.NUMBER").ToText(), "2 entities");
  ulmora_->ClearFaults();
  EXPECT_EQ(Evaluate("SELECTION.NUMBER").ToLong(), 0);
  ulmora_->FailMember("Print", 70, "Permission denied");
  EXPECT_EQ(ErrorOf([&] { Call("Print", "P1.X"); }), 70);
}

}  // namespace
}  // namespace qorvel::hosts
