#include "qorvel/platform/numbers.h"

#include <gtest/gtest.h>

#include <tuple>

#include "qorvel/platform/env.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error_testing.h"

namespace qorvel {
namespace {

const NumberSymbols kPoint{".", ",", "$"};
const NumberSymbols kComma{",", ".", "\u20AC"};  // the euro sign, three bytes

// What a text reads as: a value, or no number, or overflow.
struct Reading {
  NumberStatus status;
  double value = 0;
};
Reading Is(double value) { return {NumberStatus::kNumber, value}; }
const Reading kNo{NumberStatus::kNoNumber};
const Reading kOverflow{NumberStatus::kOverflow};

void ExpectReads(std::string_view text, NumberTarget target, const NumberSymbols& symbols,
                 const Reading& want) {
  const NumberReading got = ReadNumber(text, target, symbols);
  EXPECT_EQ(got.status, want.status) << text << " " << int(target);
  EXPECT_EQ(got.value, want.value) << text << " " << int(target);
}

// Each row once in each region: the point region's text, then the comma region's.
TEST(NumbersTest, ReadNumberByRegion) {
  // clang-format off
  const std::tuple<const char*, const char*, Reading> cases[] = {
      {"12", "12", Is(12)},   {" -2.5 ", " -2,5 ", Is(-2.5)},   {"+7", "+7", Is(7)},
      {"5+", "5+", Is(5)},    {"5 -", "5 -", Is(-5)},           {"- 5", "- 5", Is(-5)},
      {"5.", "5,", Is(5)},    {".5", ",5", Is(0.5)},            {"(2.5)", "(2,5)", Is(-2.5)},
      {"1e2", "1e2", Is(100)}, {"1.5E-3", "1,5E-3", Is(0.0015)}, {"1,234.5", "1.234,5", Is(1234.5)},
      {"2,5", "2.5", Is(25)},  // a grouping symbol among whole digits, as the runtime reads it
      {"$5", "\u20AC5", Is(5)},    {"5$", "5\u20AC", Is(5)},    {"-$5", "-\u20AC5", Is(-5)},
      {"$-5", "\u20AC-5", Is(-5)}, {"($1,234.5)", "(\u20AC1.234,5)", Is(-1234.5)},
      {"1E-400", "1E-400", Is(0)}, {"0E999", "0E999", Is(0)}, {"1E400", "1E400", kOverflow},
      {"1D2", "1D2", kNo},  // D is an exponent letter of VBA source, not of the runtime
      {"", "", kNo},      {"1x", "1x", kNo},     {"-", "-", kNo},       {".", ",", kNo},
      {"1e", "1e", kNo},  {"-5-", "-5-", kNo},   {"(-5)", "(-5)", kNo}, {"-(5)", "-(5)", kNo},
      {"(5", "(5", kNo},  {"$", "\u20AC", kNo},  {"1.2.3", "1,2,3", kNo},
      {"$$5", "\u20AC\u20AC5", kNo},
      {",5", ".5", kNo}};  // grouping only after a digit
  // clang-format on
  for (const auto& [point, comma, reading] : cases) {
    ExpectReads(point, NumberTarget::kDouble, kPoint, reading);
    ExpectReads(comma, NumberTarget::kDouble, kComma, reading);
  }
  // Past a Double's range without an exponent: as many digits as it takes.
  const std::string zeros(400, '0');
  ExpectReads("1" + zeros, NumberTarget::kDouble, kComma, kOverflow);
  ExpectReads("0," + zeros + "1", NumberTarget::kDouble, kComma, Is(0));
  ExpectReads("1 000", NumberTarget::kDouble, {".", " ", "$"}, Is(1000));
  ExpectReads("5 kr", NumberTarget::kDouble, {",", ".", "kr"}, Is(5));
  ExpectReads("5EUR", NumberTarget::kDouble, {",", ".", "EUR"}, Is(5));
}

// A hex or octal literal is an Integer's 16-bit pattern only when read for an Integer; one of
// up to 32 bits is a Long's for every target.
TEST(NumbersTest, HexAndOctalLiteralsByTarget) {
  // clang-format off
  const std::tuple<const char*, Reading, Reading> cases[] = {  // Integer, then Long and Double
      {"&H1F", Is(31), Is(31)},              {" &hffff ", Is(-1), Is(65535)},
      {"&H8000", Is(-32768), Is(32768)},     {"&H10000", Is(65536), Is(65536)},
      {"&HFFFFFFFF", Is(-1), Is(-1)},        {"&H100000000", kOverflow, kOverflow},
      {"&H80000000", Is(-2147483648.0), Is(-2147483648.0)},
      {"&O17", Is(15), Is(15)},              {"&177777", Is(-1), Is(65535)},
      {"&37777777777", Is(-1), Is(-1)},      {"&H", kNo, kNo},    {"&HG", kNo, kNo},
      {"&O8", kNo, kNo},  {"&H 1", kNo, kNo},  {"-&H1", kNo, kNo}};
  // clang-format on
  for (const auto& [text, integer, wider] : cases) {
    for (const NumberSymbols* symbols : {&kPoint, &kComma}) {
      ExpectReads(text, NumberTarget::kInteger, *symbols, integer);
      ExpectReads(text, NumberTarget::kLong, *symbols, wider);
      ExpectReads(text, NumberTarget::kDouble, *symbols, wider);
    }
  }
  EXPECT_EQ(ParseNumber("&HFFFF", kPoint), 65535) << "a Double";
  EXPECT_EQ(ParseNumber("1E400", kPoint), std::nullopt);
}

// The general form where the picture is "" (as an empty picture gives it), else the picture.
TEST(NumbersTest, FormatsLikeAutomation) {
  // clang-format off
  const std::tuple<double, const char*, const char*> cases[] = {
      {0, "", "0"},           {0.1 + 0.2, "", "0.3"},   {1.0 / 3, "", "0.333333333333333"},
      {1e15, "", "1E+15"},    {0.0001, "", "0.0001"},   {123456789012345, "", "123456789012345"},
      {0.00001, "", "1E-05"}, {1.5e-10, "", "1.5E-10"}, {999999999999999.9, "", "1E+15"},
      {-2.5, "", "-2.5"},     {2620, "", "2620"},       {-1e-300, "", "-1E-300"},
      {1.23456789012345678e17, "", "1.23456789012346E+17"},
      // Pictures round half away from zero on the 15-digit text of the value.
      {1, "0.######", "1."},        {2.5, "0.######", "2.5"},           {-3, "0.######", "-3."},
      {-0.0, "0.######", "0."},     {0.0000001, "0.######", "0."},      {1e-320, "0.######", "0."},
      {-0.0000001, "0.######", "-0."},  // the sign stays, as Format keeps it
      {1234.5678915, "0.######", "1234.567892"}, {0.0000005, "0.######", "0.000001"},
      {999.9999999, "0.######", "1000."},        {0.1 + 0.2, "0.################", "0.3"},
      {-2, "0", "-2"},              {12345, "0", "12345"},              {2.5, "0", "3"},
      {-0.4, "0", "-0"},            {5, "000", "005"},                  {2620, "000", "2620"},
      {-10, "0.000", "-10.000"},    {1234567.891, "#,##0.00", "1,234,567.89"},
      {0.5, "#", "1"},              {0.4, "#", ""},                     {0.5, "#.##", ".5"},
      {1e20, "#,##0", "100,000,000,000,000,000,000"},
      {2.5, "X=0.00", "X=2.50"},    {-2.5, "X=0.0", "-X=2.5"},          {5, "0\" mm\"", "5 mm"},
      {0.125, "0.0\\%", "0.1%"},    {1234567, "0,.0", "1234.6"},
      {0.15, "0.0", "0.2"},          // 0.1499999... as a double, 0.15 as 15 digits
      {1234567, "#,##0,", "1,235"}};  // a comma before the end divides by a thousand
  // clang-format on
  for (const auto& [value, picture, text] : cases) {
    EXPECT_EQ(*picture ? FormatPattern(value, picture, kPoint) : FormatGeneral(value, kPoint), text)
        << value << " " << picture;
  }
  EXPECT_EQ(FormatPattern(2.5, "", kPoint), "2.5");
  EXPECT_EQ(FormatGeneral(-2.5, kComma), "-2,5");
  EXPECT_EQ(FormatPattern(0.5, "0.######", kComma), "0,5");
}

TEST(NumbersTest, NumberPrefixIgnoresTheRegion) {
  const std::pair<const char*, double> cases[] = {
      {"12", 12},       {"Components:", 0}, {"12abc", 12},  {"0.001", 0.001}, {"", 0},
      {"  -3.5", -3.5}, {"1,5", 1},         {"2E3x", 2000}, {"7E", 7},        {".5", 0.5}};
  for (const auto& [text, value] : cases) EXPECT_EQ(ReadNumberPrefix(text), value) << text;
}

TEST(NumbersTest, RegionalSymbolsComeFromTheRegistry) {
  ScopedEnv scoped;
  Registry& registry = scoped.env().registry();
  registry.SetString(root_key::kCurrentUser, kInternationalKey, "sThousand", ",");
  registry.SetString(root_key::kCurrentUser, kInternationalKey, "sCurrency", "kr");
  SetDecimalSymbol(registry, ",");
  EXPECT_EQ(CurrentNumberSymbols().thousand, ".") << "the grouping symbol gives way";
  EXPECT_EQ(FormatGeneral(2.5), "2,5");
  EXPECT_EQ(FormatPattern(1234.5, "#,##0.00"), "1.234,50");
  EXPECT_EQ(ParseNumber("-1.234,5 kr"), -1234.5);
  EXPECT_EQ(ReadNumber("&HFFFF", NumberTarget::kInteger).value, -1);
  EXPECT_EQ(ReadNumberPrefix("2,5"), 2) << "the prefix reader keeps the point";
  SetDecimalSymbol(registry, ".");
  EXPECT_EQ(CurrentNumberSymbols().thousand, ",") << "and back";
  registry.SetString(root_key::kCurrentUser, kInternationalKey, "sThousand", "'");
  SetDecimalSymbol(registry, ",");
  EXPECT_EQ(CurrentNumberSymbols().thousand, "'") << "one that doesn't clash stays";

  registry.DeleteValue(root_key::kCurrentUser, kInternationalKey, "sDecimal");
  registry.DeleteValue(root_key::kCurrentUser, kInternationalKey, "sCurrency");
  registry.SetDword(root_key::kCurrentUser, kInternationalKey, "sThousand", 7);
  const NumberSymbols fallback = CurrentNumberSymbols();
  EXPECT_EQ(fallback.decimal, ".") << "no value: the point";
  EXPECT_EQ(fallback.thousand, ",") << "not text: the comma";
  EXPECT_EQ(fallback.currency, "$");
}

// A decimal symbol that would read as part of a number, or be skipped around one, is refused
// before anything is set: a digit one would make 1.5 go out as "115".
TEST(NumbersTest, DecimalSymbolsThatReadBackAreSet) {
  const std::pair<const char*, bool> cases[] = {
      {",", true},  {"/", true},   {"\u00B7", true}, {"'", true},  {".", true},
      {"", false},  {"1", false},  {".5", false},    {"-", false}, {"+", false},
      {" ", false}, {"\t", false}, {", ", false},    {"(", false}, {")", false},
      {"&", false}, {"E", false},  {"e", false},     {"$", false}, {"\x01", false}};
  for (const auto& [symbol, accepted] : cases) {
    ScopedEnv scoped;  // each at the same place, with the same number of writes
    MemoryRegistry& registry = scoped.env().portable().registry();
    const uint64_t before = registry.generation();
    EXPECT_EQ(ErrorOf([&] { SetDecimalSymbol(registry, symbol); }), accepted ? 0 : 5) << symbol;
    if (accepted) {
      EXPECT_EQ(CurrentNumberSymbols().decimal, symbol);
      EXPECT_EQ(FormatPattern(1.5, "0.0"), std::string("1") + symbol + "5");
    } else {
      EXPECT_EQ(registry.generation(), before) << symbol << ": nothing set";
    }
  }
  try {
    CheckDecimalSymbol("1", "$");
    ADD_FAILURE();
  } catch (const Error& e) {
    EXPECT_EQ(e.description(),
              "\"1\" can't be the decimal symbol: a digit in it would read as part of the number");
  }
}

TEST(NumbersTest, SeedingKeepsWhatTheUserSet) {
  MemoryRegistry registry;
  registry.SetString(root_key::kCurrentUser, kInternationalKey, "sDecimal", ",");
  SeedNumberSymbols(registry);
  auto value = [&](const char* name) {
    return registry.GetValue(root_key::kCurrentUser, kInternationalKey, name).value_or(RegValue{});
  };
  EXPECT_EQ(value("sDecimal"), (RegValue{reg_type::kString, {',', 0}}));
  const RegValue thousand = value("sThousand");
  EXPECT_EQ(thousand.type, reg_type::kString);
  ASSERT_EQ(thousand.data.size(), 2u) << "one symbol and its terminator";
  EXPECT_NE(thousand.data[0], ',') << "never the decimal symbol";
  EXPECT_EQ(value("sCurrency").type, reg_type::kString);
  EXPECT_GT(value("sCurrency").data.size(), 1u) << "a symbol, the point's \"$\" if none";
}

}  // namespace
}  // namespace qorvel
