#include "qorvel/platform/variant.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <span>
#include <stdexcept>
#include <tuple>
#include <vector>

#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/platform/numbers.h"
#include "qorvel/platform/safe_array.h"

namespace qorvel {
namespace {

// An object to hold in a variant; what it answers doesn't matter here.
class Thing : public Dispatch {
 public:
  Variant Invoke(std::string_view, CallKind, std::span<Variant>) override { return 1; }
};

// Every case runs with its own platform, the point as decimal symbol and the dollar, whatever
// the machine's locale says.
class VariantTest : public testing::Test {
 protected:
  void SetUp() override {
    SetDecimalSymbol(env_.env().registry(), ".");
    env_.env().registry().SetString(root_key::kCurrentUser, kInternationalKey, "sCurrency", "$");
  }
  ScopedEnv env_;
};

struct ConversionCase {
  Variant value;
  VarType target;
  double expected;  // 0 with an error
  int32_t error;
};

void ExpectConversions(std::span<const ConversionCase> cases) {
  for (const ConversionCase& c : cases) {
    double got = 0;
    EXPECT_EQ(ErrorOf([&] { got = c.value.ConvertTo(c.target).ToDouble(); }), c.error)
        << c.value.ToText() << " to " << int(c.target);
    EXPECT_EQ(got, c.expected) << c.value.ToText() << " to " << int(c.target);
  }
}

constexpr VarType kInt = VarType::kInteger, kLong = VarType::kLong;

TEST_F(VariantTest, NumbersRoundHalfToEvenAndOverflowPastTheTarget) {
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  // clang-format off
  const ConversionCase cases[] = {
      {2.5, kInt, 2, 0},         {3.5, kInt, 4, 0},           {-2.5, kInt, -2, 0},
      {-0.5, kInt, 0, 0},        {2.5001, kInt, 3, 0},        {32767.4, kInt, 32767, 0},
      {32767.5, kInt, 0, 6},     {-32768.5, kInt, -32768, 0}, {-32768.51, kInt, 0, 6},
      {2147483647.4, kLong, 2147483647, 0},     {2147483647.5, kLong, 0, 6},
      {-2147483648.5, kLong, -2147483648.0, 0}, {-2147483649.0, kLong, 0, 6},
      {inf, kLong, 0, 6},        {nan, kLong, 0, 6}};
  // clang-format on
  ExpectConversions(cases);
  EXPECT_EQ(ErrorOf([] { Variant(int32_t{32768}).ToInteger(); }), err::kOverflow);
  EXPECT_EQ(ErrorOf([] { Variant(int32_t{-32769}).ToInteger(); }), err::kOverflow);
}

// Text is read for its target first (the same hex digits are -1 as an Integer and 65535 as a
// Long), then rounded; the reading itself is the regional number reader's.
TEST_F(VariantTest, TextIsReadForItsTargetThenRounded) {
  const ConversionCase cases[] = {
      {"3.5", kInt, 4, 0},        {"(2.5)", kLong, -2, 0}, {"40000", kInt, 0, 6},
      {"40000", kLong, 40000, 0}, {"&HFFFF", kInt, -1, 0}, {"&HFFFF", kLong, 65535, 0},
      {"1E400", kLong, 0, 6},     {"1D2", kLong, 0, 13},   {"", kInt, 0, 13},
  };
  ExpectConversions(cases);
  SetDecimalSymbol(env_.env().registry(), ",");
  EXPECT_EQ(Variant("-$1.000,5").ToDouble(), -1000.5);
  EXPECT_EQ(Variant("3,5").ToInteger(), 4);
  EXPECT_EQ(Variant(2.5).ToText(), "2,5");
}

TEST_F(VariantTest, ValuesBecomeTextAndTruthValues) {
  EXPECT_EQ(Variant(0.1).ToText(), "0.1");
  EXPECT_EQ(Variant(VariantBool::kFalse).ToText(), "False");
  EXPECT_EQ(Variant(MakeVariantBool(5)).ToText(), "True");
  struct Case {
    Variant value;
    int16_t expected;
  };
  const Case cases[] = {
      {Variant(), 0},        {Variant(0.0), 0},     {Variant(0.1), -1},      {Variant(-5), -1},
      {Variant("True"), -1}, {Variant("false"), 0}, {Variant(" TRUE "), -1}, {Variant("0"), 0},
      {Variant("2.5"), -1},  {Variant(true), -1},
  };
  for (const Case& c : cases) EXPECT_EQ(RawBool(c.value.ToBool()), c.expected) << c.value.vt();
  EXPECT_EQ(ErrorOf([] { Variant("yes").ToBool(); }), err::kTypeMismatch);
}

// Members that test for exactly -1 or 0 rely on other values coming through unchanged.
TEST_F(VariantTest, VariantBoolKeepsAnySixteenBitValue) {
  for (int16_t raw : {int16_t{-1}, int16_t{0}, int16_t{1}, int16_t{5}, int16_t{-32768}}) {
    Variant v(MakeVariantBool(raw));
    EXPECT_EQ(RawBool(v.ToBool()), raw);
    EXPECT_EQ(v.ToInteger(), raw);
    EXPECT_EQ(v.ToLong(), raw);
    EXPECT_EQ(v.ToDouble(), raw);
    VariantBool target = VariantBool::kFalse;
    Variant::Ref(target).Assign(v);
    EXPECT_EQ(RawBool(target), raw);
  }
}

TEST_F(VariantTest, EmptyReadsAsZeroAndNullObjectsAndArraysAreNoScalars) {
  Variant empty;
  EXPECT_EQ(empty.ToLong(), 0);
  EXPECT_EQ(empty.ToDouble(), 0);
  EXPECT_EQ(empty.ToBool(), VariantBool::kFalse);
  EXPECT_EQ(empty.ToText(), "");
  EXPECT_EQ(empty.ToObject(), nullptr);
  try {
    Variant::Null().ToText();
    FAIL() << "no error";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 94);
    EXPECT_EQ(e.description(), "Invalid use of Null");
  }
  const Variant object(AutomationObject(std::make_shared<Thing>()));
  const Variant array(SafeArray(VarType::kDouble, {{1, 2}}));
  for (VarType type :
       {VarType::kInteger, VarType::kLong, VarType::kDouble, VarType::kBool, VarType::kText}) {
    EXPECT_EQ(ErrorOf([&] { Variant::Null().ConvertTo(type); }), 94) << int(type);
    EXPECT_EQ(ErrorOf([&] { object.ConvertTo(type); }), 13) << int(type);
    EXPECT_EQ(ErrorOf([&] { array.ConvertTo(type); }), 13) << int(type);
  }
  EXPECT_EQ(ErrorOf([] { Variant(2.0).ToObject(); }), err::kTypeMismatch);
  EXPECT_EQ(ErrorOf([] { Variant(2.0).ToArray(); }), err::kTypeMismatch);
}

// The VARIANT type codes a client sees, conversions and dereferences included.
TEST_F(VariantTest, TypeCodesCarryTheArrayAndReferenceFlags) {
  int16_t i = 0;
  double d = 0;
  std::string s;
  SafeArray doubles(VarType::kDouble, {{1, 3}});
  SafeArray variants;
  Variant v(2.0);
  struct Case {
    Variant value;
    uint16_t vt;
  };
  // clang-format off
  const Case cases[] = {
      {Variant(), 0x0000},       {Variant::Null(), 0x0001},   {int16_t{1}, 0x0002},
      {1, 0x0003},               {1.0, 0x0005},               {"x", 0x0008},
      {AutomationObject(), 0x0009},  // Nothing is an object
      {VariantBool::kTrue, 0x000B},     {doubles, 0x2005},    {variants, 0x200C},
      {Variant::Ref(i), 0x4002}, {Variant::Ref(s), 0x4008},   {Variant::Ref(v), 0x400C},
      {Variant::Ref(doubles), 0x6005},  {Variant::Ref(variants), 0x600C},
      {Variant::Ref(d).ConvertTo(VarType::kVariant), 0x0005},
      {Variant(7).ConvertTo(VarType::kEmpty), 0x0000}};
  // clang-format on
  for (const Case& c : cases) {
    EXPECT_EQ(c.value.vt(), c.vt);
    EXPECT_EQ(c.value.is_ref(), (c.vt & kByRefFlag) != 0) << std::hex << c.vt;
    EXPECT_EQ(c.value.is_array(), (c.vt & kArrayFlag) != 0) << std::hex << c.vt;
  }
  EXPECT_EQ(Variant::Ref(v).type(), VarType::kDouble);  // what the Variant holds
  EXPECT_EQ(Variant::Ref(doubles).type(), VarType::kDouble);
}

// A write through a reference lands in the caller's storage converted to its type, or not at
// all; a read sees the storage as it is now.
TEST_F(VariantTest, ReferencesReadAndWriteTheCallersStorage) {
  int16_t i = 1;
  int32_t l = 1;
  double d = 1;
  VariantBool b = VariantBool::kFalse;
  std::string s = "kept";
  AutomationObject o;
  Variant v;
  AutomationObject thing = std::make_shared<Thing>();
  EXPECT_EQ(ErrorOf([&] { Variant::Ref(i).Assign(40000); }), err::kOverflow);
  EXPECT_EQ(ErrorOf([&] { Variant::Ref(i).Assign("abc"); }), err::kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { Variant::Ref(s).Assign(Variant::Null()); }), 94);
  EXPECT_EQ(ErrorOf([&] { Variant::Ref(o).Assign(1.0); }), err::kTypeMismatch);
  EXPECT_EQ(i, 1);
  EXPECT_EQ(s, "kept");
  Variant::Ref(i).Assign("2.5");
  Variant::Ref(l).Assign(3.5);
  Variant::Ref(d).Assign("0.25");
  Variant::Ref(b).Assign(7);
  Variant::Ref(s).Assign(int32_t{42});
  Variant::Ref(o).Assign(thing);
  Variant::Ref(v).Assign(int16_t{9});
  EXPECT_EQ(std::tie(i, l, d, b, s, o),
            std::make_tuple(int16_t{2}, 4, 0.25, VariantBool::kTrue, std::string("42"), thing));
  EXPECT_EQ(v.vt(), 0x0002);  // a Variant takes the value as it is

  Variant ref_d = Variant::Ref(d);
  d = 2.5;
  EXPECT_EQ(ref_d.ToDouble(), 2.5);
  Variant copy = ref_d;  // a copy of a reference is the same reference
  copy.Assign(4.0);
  EXPECT_EQ(d, 4.0);
  Variant plain("text");
  plain.Assign(ref_d);  // a plain Variant takes the value, not the reference
  d = 5;
  EXPECT_FALSE(plain.is_ref());
  EXPECT_EQ(plain.ToDouble(), 4.0);
  Variant inner = Variant::Ref(l);  // a reference to a Variant holding a reference
  Variant::Ref(inner).Assign(2.5);
  EXPECT_EQ(l, 2);
}

// An array in a Variant is a value: neither the array it came from nor one taken out of it
// changes it.
TEST_F(VariantTest, ArraysInVariantsAreValues) {
  SafeArray original(VarType::kDouble, {{1, 2}});
  Variant a(original);
  SafeArray from_a = a.ToArray();
  from_a.PutDouble(1, 9.0);
  original.PutDouble(2, 5.0);
  EXPECT_EQ(a.ToArray().GetDouble(1), 0.0);
  EXPECT_EQ(a.ToArray().GetDouble(2), 0.0);
}

// Memory that can't be had is held back like any other error, as 7: an allocation that fails,
// or a container asked for more than it can hold.
TEST_F(VariantTest, ErrorsHeldBackSkipTheRestOfTheStatement) {
  int32_t target = 1;
  EXPECT_FALSE(HoldBack([&] { target = Variant("abc").ToLong(); }));
  EXPECT_EQ(AutomationError(), err::kTypeMismatch);
  EXPECT_TRUE(HoldBack([&] { target = Variant("5").ToLong(); }));
  EXPECT_EQ(AutomationError(), 0) << "each held-back statement starts clear";
  auto no_memory = []() -> int32_t { throw std::bad_alloc(); };
  EXPECT_FALSE(HoldBack([&] { target = no_memory(); }));
  EXPECT_EQ(AutomationError(), err::kOutOfMemory);
  const size_t too_long = std::string().max_size() + 1;
  EXPECT_FALSE(HoldBack([&] { target = int32_t(std::string(too_long, 'x').size()); }));
  EXPECT_EQ(AutomationError(), err::kOutOfMemory);
  EXPECT_EQ(target, 5);
}

}  // namespace
}  // namespace qorvel
