#include "qorvel/platform/variant.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env.h"
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
    env_.env().registry().SetString(HKEY_CURRENT_USER, kInternationalKey, "sCurrency", "$");
  }
  ScopedEnv env_;
};

struct RoundCase {
  double value;
  int32_t expected;  // 0 with error set
  int32_t error;
};

TEST_F(VariantTest, DoubleToIntegerRoundsHalfToEvenAndOverflowsPastTheRange) {
  const RoundCase cases[] = {
      {2.5, 2, 0},         {3.5, 4, 0},           {-2.5, -2, 0},       {-3.5, -4, 0},
      {0.5, 0, 0},         {-0.5, 0, 0},          {1.5, 2, 0},         {2.4999, 2, 0},
      {2.5001, 3, 0},      {32767, 32767, 0},     {32767.4, 32767, 0}, {32767.5, 0, 6},
      {-32768, -32768, 0}, {-32768.5, -32768, 0}, {-32768.51, 0, 6},   {40000, 0, 6},
  };
  for (const RoundCase& c : cases) {
    int16_t got = 0;
    EXPECT_EQ(ErrorOf([&] { got = Variant(c.value).ToInteger(); }), c.error) << c.value;
    EXPECT_EQ(got, c.expected) << c.value;
  }
}

TEST_F(VariantTest, DoubleToLongRoundsHalfToEvenAndOverflowsPastTheRange) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const RoundCase cases[] = {
      {2147483647, 2147483647, 0},
      {2147483647.4, 2147483647, 0},
      {2147483647.5, 0, 6},
      {-2147483648.5, std::numeric_limits<int32_t>::min(), 0},
      {-2147483649, 0, 6},
      {nan, 0, 6},
      {inf, 0, 6},
      {-inf, 0, 6},
  };
  for (const RoundCase& c : cases) {
    int32_t got = 0;
    EXPECT_EQ(ErrorOf([&] { got = Variant(c.value).ToLong(); }), c.error) << c.value;
    EXPECT_EQ(got, c.expected) << c.value;
  }
}

TEST_F(VariantTest, LongToIntegerOverflowsOutsideSixteenBits) {
  EXPECT_EQ(Variant(int32_t{-32768}).ToInteger(), -32768);
  EXPECT_EQ(ErrorOf([] { Variant(int32_t{32768}).ToInteger(); }), err::kOverflow);
  EXPECT_EQ(ErrorOf([] { Variant(int32_t{-32769}).ToInteger(); }), err::kOverflow);
}

// What a text gives as an Integer, a Long or a Double: a value, or the error number.
struct Outcome {
  double value;
  int32_t error = 0;
};
const Outcome kMismatch{0, err::kTypeMismatch};
const Outcome kOverflow{0, err::kOverflow};

struct TextCase {
  const char* point;  // the text in a region with the decimal point
  const char* comma;  // the same number where the comma is the decimal symbol
  Outcome integer;
  Outcome long_;
  Outcome dbl;
};

const TextCase kTextCases[] = {
    {"12", "12", {12}, {12}, {12}},
    {"3.5", "3,5", {4}, {4}, {3.5}},  // read first, then rounded
    {"40000", "40000", kOverflow, {40000}, {40000}},
    {"&HFFFF", "&HFFFF", {-1}, {65535}, {65535}},
    {"&H10000", "&H10000", kOverflow, {65536}, {65536}},
    {"&HFFFFFFFF", "&HFFFFFFFF", {-1}, {-1}, {-1}},
    {"(2.5)", "(2,5)", {-2}, {-2}, {-2.5}},
    {"- 5", "- 5", {-5}, {-5}, {-5}},
    {"-$1,000.5", "-$1.000,5", {-1000}, {-1000}, {-1000.5}},
    {"1D2", "1D2", kMismatch, kMismatch, kMismatch},
    {"1E400", "1E400", kOverflow, kOverflow, kOverflow},
    {"1E-400", "1E-400", {0}, {0}, {0}},
    {"", "", kMismatch, kMismatch, kMismatch},
    {"12abc", "12abc", kMismatch, kMismatch, kMismatch},
    {"1.2.3", "1,2,3", kMismatch, kMismatch, kMismatch},
};

void ExpectTextReads(const char* text, const TextCase& c) {
  int16_t i = 0;
  int32_t l = 0;
  double d = 0;
  EXPECT_EQ(ErrorOf([&] { i = Variant(text).ToInteger(); }), c.integer.error) << text;
  EXPECT_EQ(i, c.integer.value) << text;
  EXPECT_EQ(ErrorOf([&] { l = Variant(text).ToLong(); }), c.long_.error) << text;
  EXPECT_EQ(l, c.long_.value) << text;
  EXPECT_EQ(ErrorOf([&] { d = Variant(text).ToDouble(); }), c.dbl.error) << text;
  EXPECT_EQ(d, c.dbl.value) << text;
}

TEST_F(VariantTest, TextReadsAsANumberForItsTargetInAPointRegion) {
  for (const TextCase& c : kTextCases) ExpectTextReads(c.point, c);
}

TEST_F(VariantTest, TextReadsAsANumberForItsTargetInACommaRegion) {
  SetDecimalSymbol(env_.env().registry(), ",");
  for (const TextCase& c : kTextCases) ExpectTextReads(c.comma, c);
  EXPECT_EQ(Variant(2.5).ToText(), "2,5");
}

TEST_F(VariantTest, NumbersBecomeText) {
  EXPECT_EQ(Variant(int16_t{-7}).ToText(), "-7");
  EXPECT_EQ(Variant(int32_t{2147483647}).ToText(), "2147483647");
  EXPECT_EQ(Variant(2.5).ToText(), "2.5");
  EXPECT_EQ(Variant(0.1).ToText(), "0.1");
  EXPECT_EQ(Variant(VariantBool::kTrue).ToText(), "True");
  EXPECT_EQ(Variant(VariantBool::kFalse).ToText(), "False");
  EXPECT_EQ(Variant(MakeVariantBool(5)).ToText(), "True");
}

TEST_F(VariantTest, VariantBoolKeepsAnySixteenBitValue) {
  for (int16_t raw : {int16_t{-1}, int16_t{0}, int16_t{1}, int16_t{5}, int16_t{-32768}}) {
    Variant v(MakeVariantBool(raw));
    EXPECT_EQ(RawBool(v.ToBool()), raw);
    EXPECT_EQ(v.ToInteger(), raw);
    EXPECT_EQ(v.ToLong(), raw);
    EXPECT_EQ(v.ToDouble(), raw);
    EXPECT_EQ(RawBool(v.Deref().ToBool()), raw);
    VariantBool target = VariantBool::kFalse;
    Variant::Ref(target).Assign(v);
    EXPECT_EQ(RawBool(target), raw);
  }
  EXPECT_EQ(Variant(true).vt(), 11);
  EXPECT_EQ(RawBool(Variant(true).ToBool()), -1);
}

TEST_F(VariantTest, ValuesBecomeTruthValues) {
  struct Case {
    Variant value;
    int16_t expected;
  };
  const Case cases[] = {
      {Variant(), 0},          {Variant(0.0), 0},
      {Variant(0.1), -1},      {Variant(int32_t{-5}), -1},
      {Variant("True"), -1},   {Variant("false"), 0},
      {Variant(" TRUE "), -1}, {Variant("0"), 0},
      {Variant("2.5"), -1},
  };
  for (const Case& c : cases) EXPECT_EQ(RawBool(c.value.ToBool()), c.expected) << c.value.vt();
  EXPECT_EQ(ErrorOf([] { Variant("yes").ToBool(); }), err::kTypeMismatch);
}

TEST_F(VariantTest, EmptyReadsAsZeroAndNullIsInvalid) {
  Variant empty;
  EXPECT_TRUE(empty.is_empty());
  EXPECT_EQ(empty.ToLong(), 0);
  EXPECT_EQ(empty.ToDouble(), 0);
  EXPECT_EQ(empty.ToText(), "");
  EXPECT_EQ(empty.ToBool(), VariantBool::kFalse);
  EXPECT_EQ(empty.ToObject(), nullptr);

  try {
    Variant::Null().ToText();
    FAIL() << "no error";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 94);
    EXPECT_EQ(e.description(), "Invalid use of Null");
  }
  for (VarType type : {VarType::kInteger, VarType::kLong, VarType::kDouble, VarType::kBool}) {
    EXPECT_EQ(ErrorOf([&] { Variant::Null().ConvertTo(type); }), 94) << int(type);
  }
}

TEST_F(VariantTest, ObjectsAndArraysDoNotConvertToScalars) {
  Variant object(AutomationObject(std::make_shared<Thing>()));
  Variant array(SafeArray(VarType::kDouble, {{1, 2}}));
  for (const Variant* v : {&object, &array}) {
    EXPECT_EQ(ErrorOf([&] { v->ToLong(); }), err::kTypeMismatch);
    EXPECT_EQ(ErrorOf([&] { v->ToDouble(); }), err::kTypeMismatch);
    EXPECT_EQ(ErrorOf([&] { v->ToText(); }), err::kTypeMismatch);
    EXPECT_EQ(ErrorOf([&] { v->ToBool(); }), err::kTypeMismatch);
  }
  EXPECT_EQ(ErrorOf([] { Variant(2.0).ToObject(); }), err::kTypeMismatch);
  EXPECT_EQ(ErrorOf([] { Variant(2.0).ToArray(); }), err::kTypeMismatch);
  EXPECT_EQ(Variant(AutomationObject()).vt(), 9);  // Nothing is an object
  EXPECT_EQ(Variant(AutomationObject()).ToObject(), nullptr);
}

TEST_F(VariantTest, TypeCodesCarryTheArrayAndReferenceFlags) {
  int16_t i = 0;
  int32_t l = 0;
  double d = 0;
  VariantBool b = VariantBool::kFalse;
  std::string s;
  AutomationObject o;
  SafeArray doubles(VarType::kDouble, {{1, 3}});
  SafeArray variants;
  Variant v(2.0);
  struct Case {
    Variant value;
    uint16_t vt;
    VarType type;
  };
  const Case cases[] = {
      {Variant(), 0x0000, VarType::kEmpty},
      {Variant::Null(), 0x0001, VarType::kNull},
      {Variant(int16_t{1}), 0x0002, VarType::kInteger},
      {Variant(1), 0x0003, VarType::kLong},
      {Variant(1.0), 0x0005, VarType::kDouble},
      {Variant("x"), 0x0008, VarType::kText},
      {Variant(o), 0x0009, VarType::kObject},
      {Variant(VariantBool::kTrue), 0x000B, VarType::kBool},
      {Variant(doubles), 0x2005, VarType::kDouble},
      {Variant(SafeArray(VarType::kText, {{1, 1}})), 0x2008, VarType::kText},
      {Variant(variants), 0x200C, VarType::kVariant},
      {Variant::Ref(i), 0x4002, VarType::kInteger},
      {Variant::Ref(l), 0x4003, VarType::kLong},
      {Variant::Ref(d), 0x4005, VarType::kDouble},
      {Variant::Ref(s), 0x4008, VarType::kText},
      {Variant::Ref(o), 0x4009, VarType::kObject},
      {Variant::Ref(b), 0x400B, VarType::kBool},
      {Variant::Ref(v), 0x400C, VarType::kDouble},
      {Variant::Ref(doubles), 0x6005, VarType::kDouble},
      {Variant::Ref(variants), 0x600C, VarType::kVariant},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.value.vt(), c.vt);
    EXPECT_EQ(c.value.type(), c.type) << std::hex << c.vt;
    EXPECT_EQ(c.value.is_ref(), (c.vt & kByRefFlag) != 0) << std::hex << c.vt;
    EXPECT_EQ(c.value.Deref().is_ref(), false) << std::hex << c.vt;
    EXPECT_EQ(c.value.is_array(), (c.vt & kArrayFlag) != 0) << std::hex << c.vt;
  }
}

TEST_F(VariantTest, WritesThroughReferencesLandInTheCallersStorageConverted) {
  int16_t i = 1;
  int32_t l = 1;
  double d = 1;
  VariantBool b = VariantBool::kFalse;
  std::string s;
  AutomationObject o;
  Variant v;
  AutomationObject thing = std::make_shared<Thing>();

  Variant::Ref(i).Assign("2.5");
  Variant::Ref(l).Assign(3.5);
  Variant::Ref(d).Assign("0.25");
  Variant::Ref(b).Assign(7);
  Variant::Ref(s).Assign(int32_t{42});
  Variant::Ref(o).Assign(thing);
  Variant::Ref(v).Assign(int16_t{9});

  EXPECT_EQ(i, 2);
  EXPECT_EQ(l, 4);
  EXPECT_EQ(d, 0.25);
  EXPECT_EQ(b, VariantBool::kTrue);
  EXPECT_EQ(s, "42");
  EXPECT_EQ(o, thing);
  EXPECT_EQ(v.vt(), 0x0002);  // a Variant takes the value as it is
  EXPECT_EQ(v.ToInteger(), 9);
}

TEST_F(VariantTest, ReadsThroughReferencesSeeTheCallersStorageNow) {
  double d = 1.5;
  std::string s = "before";
  Variant ref_d = Variant::Ref(d);
  Variant ref_s = Variant::Ref(s);
  d = 2.5;
  s = "after";
  EXPECT_EQ(ref_d.ToDouble(), 2.5);
  EXPECT_EQ(ref_s.ToText(), "after");
  EXPECT_EQ(ref_d.Deref().vt(), 0x0005);
  Variant copy = ref_d;  // a copy of a reference is the same reference
  copy.Assign(4.0);
  EXPECT_EQ(d, 4.0);
}

TEST_F(VariantTest, AFailedWriteThroughAReferenceLeavesTheTargetAlone) {
  int16_t i = 3;
  std::string s = "kept";
  AutomationObject o;
  EXPECT_EQ(ErrorOf([&] { Variant::Ref(i).Assign(40000); }), err::kOverflow);
  EXPECT_EQ(ErrorOf([&] { Variant::Ref(i).Assign("abc"); }), err::kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { Variant::Ref(s).Assign(Variant::Null()); }), 94);
  EXPECT_EQ(ErrorOf([&] { Variant::Ref(o).Assign(1.0); }), err::kTypeMismatch);
  EXPECT_EQ(i, 3);
  EXPECT_EQ(s, "kept");
  EXPECT_EQ(o, nullptr);
}

TEST_F(VariantTest, AssignReplacesAPlainVariantWithTheValueNotTheReference) {
  double d = 1;
  Variant plain("text");
  plain.Assign(Variant::Ref(d));
  d = 2;
  EXPECT_FALSE(plain.is_ref());
  EXPECT_EQ(plain.ToDouble(), 1);
}

TEST_F(VariantTest, ReferenceToAVariantHoldingAReferenceWritesThrough) {
  int32_t l = 0;
  Variant inner = Variant::Ref(l);
  Variant::Ref(inner).Assign(2.5);
  EXPECT_EQ(l, 2);
}

TEST_F(VariantTest, ArraysInVariantsDoNotAliasAfterAWrite) {
  SafeArray original(VarType::kDouble, {{1, 2}});
  original.PutDouble(1, 1.0);
  Variant a(original);
  Variant b = a;
  SafeArray from_b = b.ToArray();
  from_b.PutDouble(1, 9.0);
  original.PutDouble(2, 5.0);
  EXPECT_EQ(a.ToArray().GetDouble(1), 1.0);
  EXPECT_EQ(a.ToArray().GetDouble(2), 0.0);
  EXPECT_EQ(b.ToArray().GetDouble(1), 1.0);
  EXPECT_EQ(from_b.GetDouble(1), 9.0);
}

TEST_F(VariantTest, WritesThroughAnArrayReferenceConvertToTheTargetElementType) {
  SafeArray target(VarType::kDouble, {});
  SafeArray source(VarType::kVariant, {{0, 2}});
  source.Put({0}, "1.5");
  source.Put({1}, int16_t{2});
  Variant::Ref(target).Assign(source);
  EXPECT_EQ(target.element_type(), VarType::kDouble);
  EXPECT_EQ(target.LBound(), 0);
  EXPECT_EQ(target.GetDouble(0), 1.5);
  EXPECT_EQ(target.GetDouble(1), 2.0);

  source.Put({1}, "abc");
  EXPECT_EQ(ErrorOf([&] { Variant::Ref(target).Assign(source); }), err::kTypeMismatch);
  EXPECT_EQ(target.GetDouble(1), 2.0);
  EXPECT_EQ(ErrorOf([&] { Variant::Ref(target).Assign(3.0); }), err::kTypeMismatch);
}

TEST_F(VariantTest, ConvertToGivesTheValueInTheNamedType) {
  EXPECT_EQ(Variant("7").ConvertTo(VarType::kInteger).vt(), 0x0002);
  EXPECT_EQ(Variant(7).ConvertTo(VarType::kText).ToText(), "7");
  EXPECT_EQ(Variant(0).ConvertTo(VarType::kBool).vt(), 0x000B);
  EXPECT_EQ(Variant(7).ConvertTo(VarType::kEmpty).vt(), 0x0000);
  double d = 3;
  EXPECT_EQ(Variant::Ref(d).ConvertTo(VarType::kVariant).vt(), 0x0005);
}

TEST_F(VariantTest, ErrorsHeldBackSkipTheRestOfTheStatement) {
  int32_t target = 1;
  EXPECT_FALSE(HoldBack([&] { target = Variant("abc").ToLong(); }));
  EXPECT_EQ(AutomationError(), err::kTypeMismatch);
  EXPECT_EQ(target, 1);
  EXPECT_TRUE(HoldBack([&] { target = Variant("5").ToLong(); }));
  EXPECT_EQ(target, 5);
  EXPECT_EQ(AutomationError(), 0) << "each held-back statement starts clear";
}

}  // namespace
}  // namespace qorvel
