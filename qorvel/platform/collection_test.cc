#include "qorvel/platform/collection.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qorvel/platform/error.h"
#include "qorvel/platform/error_testing.h"

namespace qorvel {
namespace {

// The collection's items as text, in order.
std::string Contents(const AutomationObject& c) {
  std::string text;
  int32_t count = GetMember(c, "Count").ToLong();
  for (int32_t i = 1; i <= count; ++i) text += Call(c, "Item", i).ToText();
  return text;
}

// "a", "b" with the key "kb", "c".
AutomationObject Abc() {
  AutomationObject list = NewCollection();
  Call(list, "Add", "a");
  Call(list, "Add", "b", "kb");
  Call(list, "Add", "c");
  return list;
}

TEST(CollectionTest, ItemsAreNumberedFromOneAndOutsideIsErrorNine) {
  AutomationObject c = Abc();
  double d = 1.5;
  std::vector<Variant> by_ref{Variant::Ref(d)};
  CallMember(c, "Add", by_ref);
  d = 7;  // the collection took the value, not the caller's variable
  EXPECT_FALSE(Call(c, "Item", 4).is_ref());
  EXPECT_EQ(Call(c, "Item", 4.0).ToDouble(), 1.5);
  EXPECT_EQ(GetMember(c, "Count").vt(), 0x0003);
  std::vector<Variant> index{Variant(int16_t{2})};
  EXPECT_EQ(GetMember(c, "", index).ToText(), "b");  // the default member
  EXPECT_EQ(Call(c, "item", 1).ToText(), "a");       // names ignore case
  for (const Variant& bad : {Variant(0), Variant(-1), Variant(5), Variant()}) {
    EXPECT_EQ(ErrorOf([&] { Call(c, "Item", bad); }), err::kSubscript) << bad.ToText();
    EXPECT_EQ(ErrorOf([&] { Call(c, "Remove", bad); }), err::kSubscript) << bad.ToText();
  }
  EXPECT_EQ(Contents(c), "abc1.5");
}

// A key in use is 457 and nothing is added; a removed member's key is free again. Removal
// from either end or the middle keeps positions and keys in step.
TEST(CollectionTest, KeysMatchWithoutRegardToCaseAndAreUniqueWhileInUse) {
  AutomationObject c = NewCollection();
  for (const char* item : {"a", "b", "c", "d", "e"}) Call(c, "Add", item, std::string("k") + item);
  EXPECT_EQ(Call(c, "Item", "KB").ToText(), "b");
  EXPECT_EQ(ErrorOf([&] { Call(c, "Item", "kz"); }), err::kInvalidCall);
  EXPECT_EQ(ErrorOf([&] { Call(c, "Item", ""); }), err::kInvalidCall);
  EXPECT_EQ(ErrorOf([&] { Call(c, "Add", "x", 5); }), err::kTypeMismatch);  // keys are text
  try {
    Call(c, "Add", "x", "Kb");
    FAIL() << "no error";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 457);
    EXPECT_EQ(e.description(), "This key is already associated with an element of this collection");
  }
  Call(c, "Remove", 1);
  Call(c, "Remove", 4);
  Call(c, "Remove", "kC");
  EXPECT_EQ(Contents(c), "bd");
  EXPECT_EQ(Call(c, "Item", "KD").ToText(), "d");
  EXPECT_EQ(ErrorOf([&] { Call(c, "Remove", "kc"); }), err::kInvalidCall);
  Call(c, "Add", "c", "KC", Variant(), 1);
  EXPECT_EQ(Call(c, "Item", "kc").ToText(), "c");
  EXPECT_EQ(Contents(c), "bcd");
}

TEST(CollectionTest, AddPlacesItemsBeforeOrAfterAMember) {
  struct Case {
    Variant before, after;
    std::string contents;
    int32_t error;
  };
  const Case cases[] = {
      {Variant(), Variant(), "abcx", 0},     {Variant(1), Variant(), "xabc", 0},
      {Variant(3), Variant(), "abxc", 0},    {Variant(), Variant(1), "axbc", 0},
      {Variant(), Variant(3), "abcx", 0},    {Variant("kb"), Variant(), "axbc", 0},
      {Variant(), Variant("kb"), "abxc", 0}, {Variant(4), Variant(), "abc", 9},
      {Variant(), Variant(0), "abc", 9},     {Variant(1), Variant(1), "abc", 5},
      {Variant("kz"), Variant(), "abc", 5},
  };
  for (const Case& c : cases) {
    AutomationObject list = Abc();
    EXPECT_EQ(ErrorOf([&] { Call(list, "Add", "x", Variant(), c.before, c.after); }), c.error)
        << c.contents;
    EXPECT_EQ(Contents(list), c.contents);
  }
}

TEST(CollectionTest, ItTellsItsMembersAndRefusesOthers) {
  AutomationObject c = NewCollection();
  EXPECT_EQ(c->Shape("Count"), MemberShape::kProperty);
  for (const char* method : {"Add", "Remove", "Item", ""}) {
    EXPECT_EQ(c->Shape(method), MemberShape::kMethod) << method;
  }
  EXPECT_EQ(c->Shape("Clear"), MemberShape::kMissing);
  EXPECT_EQ(ErrorOf([&] { Call(c, "Clear"); }), err::kNoMember);
  EXPECT_EQ(ErrorOf([&] { SetMember(c, "Count", 3); }), err::kNoMember);
  EXPECT_EQ(ErrorOf([&] { Call(c, "Add"); }), err::kWrongArgs);
  EXPECT_EQ(ErrorOf([&] { Call(c, "Count", 1); }), err::kWrongArgs);
  EXPECT_EQ(ErrorOf([&] { Call(c, "Item"); }), err::kWrongArgs);
}

// Records what a put receives, so the order of its arguments can be checked.
class Recorder : public Dispatch {
 public:
  Variant Invoke(std::string_view member, CallKind kind, std::span<Variant> args) override {
    seen = std::string(member) + (kind == CallKind::kPropertyPut ? " put" : " other");
    for (const Variant& a : args) seen += " " + a.ToText();
    return {};
  }
  std::string seen;
};

TEST(LateBoundCallTest, APutSendsTheNewValueLastAndAnEmptyReferenceFailsWithNinetyOne) {
  auto recorder = std::make_shared<Recorder>();
  std::vector<Variant> index{Variant(1), Variant(2)};
  SetMember(recorder, "Cell", "value", index);
  EXPECT_EQ(recorder->seen, "Cell put 1 2 value");
  AutomationObject nothing;
  EXPECT_EQ(ErrorOf([&] { Call(nothing, "Count"); }), err::kObjectNotSet);
  EXPECT_EQ(ErrorOf([&] { GetMember(nothing, "Count"); }), err::kObjectNotSet);
  EXPECT_EQ(ErrorOf([&] { SetMember(nothing, "Count", 1); }), err::kObjectNotSet);
}

}  // namespace
}  // namespace qorvel
