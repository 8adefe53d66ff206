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

class CollectionTest : public testing::Test {
 protected:
  AutomationObject c_ = NewCollection();
};

TEST_F(CollectionTest, ItemsAreNumberedFromOne) {
  EXPECT_EQ(GetMember(c_, "Count").ToLong(), 0);
  Call(c_, "Add", "a");
  Call(c_, "Add", "b");
  Call(c_, "Add", "c");
  EXPECT_EQ(GetMember(c_, "Count").vt(), 0x0003);
  EXPECT_EQ(GetMember(c_, "Count").ToLong(), 3);
  EXPECT_EQ(Call(c_, "Item", 1).ToText(), "a");
  EXPECT_EQ(Call(c_, "Item", 3.0).ToText(), "c");
  std::vector<Variant> index{Variant(int16_t{2})};
  EXPECT_EQ(GetMember(c_, "Item", index).ToText(), "b");
  EXPECT_EQ(GetMember(c_, "", index).ToText(), "b");  // the default member
  EXPECT_EQ(Call(c_, "item", 2).ToText(), "b");       // names ignore case
}

TEST_F(CollectionTest, IndexesOutsideOneToCountAreErrorNine) {
  Call(c_, "Add", 1);
  Call(c_, "Add", 2);
  for (int32_t index : {0, -1, 3}) {
    EXPECT_EQ(ErrorOf([&] { Call(c_, "Item", index); }), err::kSubscript) << index;
    EXPECT_EQ(ErrorOf([&] { Call(c_, "Remove", index); }), err::kSubscript) << index;
  }
  EXPECT_EQ(ErrorOf([&] { Call(c_, "Item", Variant()); }), err::kSubscript);
  EXPECT_EQ(GetMember(c_, "Count").ToLong(), 2);
}

TEST_F(CollectionTest, KeysFindItemsWithoutRegardToCase) {
  Call(c_, "Add", 10, "First");
  Call(c_, "Add", 20);
  Call(c_, "Add", 30, "third");
  EXPECT_EQ(Call(c_, "Item", "first").ToLong(), 10);
  EXPECT_EQ(Call(c_, "Item", "THIRD").ToLong(), 30);
  EXPECT_EQ(ErrorOf([&] { Call(c_, "Item", "second"); }), err::kInvalidCall);
  EXPECT_EQ(ErrorOf([&] { Call(c_, "Item", ""); }), err::kInvalidCall);
}

TEST_F(CollectionTest, ADuplicateKeyIsRefusedAndNothingIsAdded) {
  Call(c_, "Add", 1, "k");
  try {
    Call(c_, "Add", 2, "K");
    FAIL() << "no error";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 457);
    EXPECT_EQ(e.description(), "This key is already associated with an element of this collection");
  }
  EXPECT_EQ(GetMember(c_, "Count").ToLong(), 1);
  EXPECT_EQ(ErrorOf([&] { Call(c_, "Add", 2, 5); }), err::kTypeMismatch);  // keys are text
}

TEST_F(CollectionTest, AddPlacesItemsBeforeOrAfterAMember) {
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
    AutomationObject list = NewCollection();
    Call(list, "Add", "a");
    Call(list, "Add", "b", "kb");
    Call(list, "Add", "c");
    EXPECT_EQ(ErrorOf([&] { Call(list, "Add", "x", Variant(), c.before, c.after); }), c.error)
        << c.contents;
    EXPECT_EQ(Contents(list), c.contents);
  }
}

TEST_F(CollectionTest, RemoveByPositionOrKeyFreesTheKey) {
  Call(c_, "Add", "a", "ka");
  Call(c_, "Add", "b", "kb");
  Call(c_, "Add", "c");
  Call(c_, "Remove", 2);
  EXPECT_EQ(Contents(c_), "ac");
  Call(c_, "Remove", "KA");
  EXPECT_EQ(Contents(c_), "c");
  Call(c_, "Add", "again", "ka");
  EXPECT_EQ(Call(c_, "Item", "ka").ToText(), "again");
  EXPECT_EQ(ErrorOf([&] { Call(c_, "Remove", "kb"); }), err::kInvalidCall);
}

TEST_F(CollectionTest, AddKeepsTheValueNotTheCallersVariable) {
  double d = 1.5;
  std::vector<Variant> args{Variant::Ref(d)};
  CallMember(c_, "Add", args);
  d = 7;
  EXPECT_EQ(Call(c_, "Item", 1).ToDouble(), 1.5);
  auto& collection = static_cast<Collection&>(*c_);
  ASSERT_EQ(collection.size(), 1u);
  EXPECT_FALSE(collection.items()[0].is_ref());
}

TEST_F(CollectionTest, ItTellsItsMembersAndRefusesOthers) {
  EXPECT_EQ(c_->Shape("Count"), MemberShape::kProperty);
  EXPECT_EQ(c_->Shape("Add"), MemberShape::kMethod);
  EXPECT_EQ(c_->Shape("Remove"), MemberShape::kMethod);
  EXPECT_EQ(c_->Shape("Item"), MemberShape::kMethod);
  EXPECT_EQ(c_->Shape("Clear"), MemberShape::kMissing);
  EXPECT_EQ(ErrorOf([&] { Call(c_, "Clear"); }), err::kNoMember);
  EXPECT_EQ(ErrorOf([&] { SetMember(c_, "Count", 3); }), err::kNoMember);
  EXPECT_EQ(ErrorOf([&] { Call(c_, "Add"); }), err::kWrongArgs);
  EXPECT_EQ(ErrorOf([&] { Call(c_, "Count", 1); }), err::kWrongArgs);
  EXPECT_EQ(ErrorOf([&] { Call(c_, "Item"); }), err::kWrongArgs);
}

TEST(LateBoundCallTest, AnEmptyReferenceFailsEveryCallWithNinetyOne) {
  AutomationObject nothing;
  EXPECT_EQ(ErrorOf([&] { Call(nothing, "Count"); }), err::kObjectNotSet);
  EXPECT_EQ(ErrorOf([&] { GetMember(nothing, "Count"); }), err::kObjectNotSet);
  EXPECT_EQ(ErrorOf([&] { SetMember(nothing, "Count", 1); }), err::kObjectNotSet);
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

TEST(LateBoundCallTest, APutSendsTheNewValueLast) {
  auto recorder = std::make_shared<Recorder>();
  std::vector<Variant> index{Variant(1), Variant(2)};
  SetMember(recorder, "Cell", "value", index);
  EXPECT_EQ(recorder->seen, "Cell put 1 2 value");
}

}  // namespace
}  // namespace qorvel
