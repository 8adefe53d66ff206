// The modelling control's reply readers, end to end: a simulated Ulmora answers the control's
// expressions and its Print with values from the input, and the control's members run over them.
// Input: the replies to the expressions of kAsked in turn, each a kind byte (text, Double, Long,
// truth value, Null, Empty, an array of Double, or the simulator's own answer) and its value;
// then the value Print gives; then a filter.
// Properties: only the errors a member may let through come out (6 for a count beyond a Long,
// 13 and 94 for a reply that is no text, 9 for a negative count at the resize); the arrays a
// list fills run from 1 to its number; the filter gives only types it asked for, under their
// client names; StoreType follows the stored value's form.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/property.h"
#include "hosts/simulators.h"
#include "qorvel/modelling/ulmora27.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/numbers.h"

namespace qorvel {
namespace {

using fuzz::Expect;
using fuzz::RunAllowing;

constexpr const char* kAsked[] = {
    "SELECTION.NUMBER",  "SELECTION.NAME[0]", "SELECTION.TYPE[0]", "SELECTION.NAME[1]",
    "SELECTION.TYPE[1]", "SELECTION.NAME[2]", "SELECTION.TYPE[2]", "CREATED.NUMBER",
    "CREATED.NAME[0]",   "CREATED.TYPE[0]",   "UPDATED.NUMBER",
};
constexpr size_t kMostEntities = 64;  // a longer list costs time and teaches nothing more
const std::vector<int32_t> kReplyErrors = {6, 9, 13, 94};
const std::vector<std::string> kClientTypes = {"Surface", "Solid",     "Arc",   "Line",
                                               "Curve",   "CompCurve", "Point", "Workplane"};

// A reply of the kind the input asks for; nullopt leaves the simulator's own answer.
std::optional<Variant> Reply(FuzzedDataProvider& in) {
  switch (in.ConsumeIntegralInRange(0, 7)) {
    case 0:
      return Variant(in.ConsumeRandomLengthString(24));
    case 1:
      return Variant(in.ConsumeFloatingPoint<double>());
    case 2:
      return Variant(in.ConsumeIntegralInRange<int32_t>(-3, 8));
    case 3:
      return Variant(MakeVariantBool(in.ConsumeIntegral<int16_t>()));
    case 4:
      return Variant::Null();
    case 5:
      return Variant();
    case 6: {
      SafeArray a(VarType::kDouble,
                  {{in.ConsumeIntegralInRange(-2, 2), in.ConsumeIntegralInRange<int32_t>(0, 3)}});
      return Variant(a);
    }
    default:
      return std::nullopt;
  }
}

// Whether a count reply would ask for more entities than the run should go through.
bool TooLong(const Variant& reply) {
  if (reply.is_array()) return false;
  if (reply.type() == VarType::kText) return ReadNumberPrefix(reply.ToText()) > kMostEntities;
  if (reply.type() == VarType::kDouble) return !(reply.ToDouble() <= kMostEntities);
  return false;
}

void ExpectFilled(const SafeArray& names, const SafeArray& types, int32_t number) {
  if (number <= 0) return;
  Expect(names.LBound() == 1 && names.UBound() == number, "names run from 1 to the number");
  Expect(types.LBound() == 1 && types.UBound() == number, "types run from 1 to the number");
  for (int32_t i = 1; i <= number; ++i) {
    Expect(types.Get({i}).ToText() != "Composite Curve", "a composite curve is a CompCurve");
  }
}

}  // namespace
}  // namespace qorvel

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace qorvel;
  FuzzedDataProvider in(data, size);
  ScopedEnv env;
  auto host = hosts::RunUlmora();
  for (const char* name : {"S1", "CC1", "L1"}) host->AddEntity({name, "Surface", {}});
  host->Select({"S1", "CC1", "L1"});
  for (const char* expression : kAsked) {
    std::optional<Variant> reply = Reply(in);
    if (!reply) continue;
    if (std::string(expression).ends_with("NUMBER") && TooLong(*reply)) return 0;
    host->ScriptEvaluate(expression, *reply);
  }
  std::optional<Variant> printed = Reply(in);
  host->AddEntity({"E", "Point", {{"V", printed.value_or(Variant(1.5))}}});
  int32_t filter = in.ConsumeIntegral<int32_t>();

  Ulmora27 control;
  control.Initialize();
  control.Connect();
  RunAllowing(kReplyErrors, [&] { control.ItemsSelectedCount(); });
  RunAllowing(kReplyErrors, [&] { control.ItemsModifiedCount(); });

  SafeArray names, types;
  int32_t number = 0;
  if (RunAllowing(kReplyErrors, [&] { control.GetSelectedEntities(names, types, number); })) {
    ExpectFilled(names, types, number);
  }
  SafeArray created_names, created_types;
  if (RunAllowing(kReplyErrors,
                  [&] { control.GetCreatedEntities(created_names, created_types, number); })) {
    ExpectFilled(created_names, created_types, number);
  }
  SafeArray kept(VarType::kText, {{1, 2}}), kept_types(VarType::kText, {{1, 2}});
  if (RunAllowing(kReplyErrors,
                  [&] { control.GetFilteredSelection(kept, kept_types, number, filter); })) {
    Expect(number >= 0, "the filter counts its matches");
    ExpectFilled(kept, kept_types, number);
    for (int32_t i = 1; i <= number; ++i) {
      const std::string type = kept_types.Get({i}).ToText();
      size_t row = 0;
      while (row < kClientTypes.size() && kClientTypes[row] != type) ++row;
      Expect(row < kClientTypes.size() && (filter & (1 << row)) != 0,
             "the filter gives only the types it asked for");
    }
  }

  control.StoreData("E.V");
  const Variant stored = control.StoredData();
  Expect(control.StoreType() == (stored.is_array() ? 1 : 0), "StoreType follows the form");
  std::string expression = in.ConsumeRandomLengthString(32);
  control.Evaluate(expression);  // raises nothing, whatever is asked
  return 0;
}
