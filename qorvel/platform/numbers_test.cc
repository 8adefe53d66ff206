#include "qorvel/platform/numbers.h"

#include <gtest/gtest.h>

#include "qorvel/platform/env.h"
#include "qorvel/platform/env_testing.h"

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
const Reading kNoNumber{NumberStatus::kNoNumber};
const Reading kOverflow{NumberStatus::kOverflow};

// Each row once in each region: the point region's text, then the comma region's.
TEST(NumbersTest, ReadNumberByRegion) {
  struct Case {
    const char* point;
    const char* comma;
    Reading reading;
  } cases[] = {
      {"12", "12", Is(12)},
      {" -2.5 ", " -2,5 ", Is(-2.5)},
      {"+7", "+7", Is(7)},
      {"5.", "5,", Is(5)},
      {".5", ",5", Is(0.5)},
      {"1,234.5", "1.234,5", Is(1234.5)},
      {"2,5", "2.5", Is(25)},  // a grouping symbol among whole digits, as the runtime reads it
      {"1.5E-3", "1,5E-3", Is(0.0015)},
      {"1e2", "1e2", Is(100)},
      {"(2.5)", "(2,5)", Is(-2.5)},
      {"5-", "5-", Is(-5)},
      {"5 -", "5 -", Is(-5)},
      {"- 5", "- 5", Is(-5)},
      {"5+", "5+", Is(5)},
      {"$5", "\u20AC5", Is(5)},
      {"5$", "5\u20AC", Is(5)},
      {"-$5", "-\u20AC5", Is(-5)},
      {"$-5", "\u20AC-5", Is(-5)},
      {"($1,234.5)", "(\u20AC1.234,5)", Is(-1234.5)},
      {"1E400", "1E400", kOverflow},
      {"1E-400", "1E-400", Is(0)},
      {"0E999", "0E999", Is(0)},
      {"1D2", "1D2", kNoNumber},  // D is an exponent letter of VBA source, not of the runtime
      {"", "", kNoNumber},
      {"abc", "abc", kNoNumber},
      {"1x", "1x", kNoNumber},
      {"-", "-", kNoNumber},
      {".", ",", kNoNumber},
      {"$", "\u20AC", kNoNumber},
      {"1e", "1e", kNoNumber},
      {"-5-", "-5-", kNoNumber},
      {"(-5)", "(-5)", kNoNumber},
      {"-(5)", "-(5)", kNoNumber},
      {"(5", "(5", kNoNumber},
      {"$$5", "\u20AC\u20AC5", kNoNumber},
      {"1.2.3", "1,2,3", kNoNumber},
      {",5", ".5", kNoNumber},  // grouping only after a digit
  };
  for (const Case& c : cases) {
    for (const auto& [text, symbols] : {std::pair{c.point, &kPoint}, std::pair{c.comma, &kComma}}) {
      const NumberReading got = ReadNumber(text, NumberTarget::kDouble, *symbols);
      EXPECT_EQ(got.status, c.reading.status) << text;
      EXPECT_EQ(got.value, c.reading.value) << text;
    }
  }
  // Past a Double's range without an exponent: as many digits as it takes.
  const std::string zeros(400, '0');
  EXPECT_EQ(ReadNumber("1" + zeros, NumberTarget::kDouble, kComma).status, NumberStatus::kOverflow);
  EXPECT_EQ(ReadNumber("0," + zeros + "1", NumberTarget::kDouble, kComma).value, 0);
  EXPECT_EQ(ReadNumber("1 000", NumberTarget::kDouble, {".", " ", "$"}).value, 1000);
  EXPECT_EQ(ReadNumber("5 kr", NumberTarget::kDouble, {",", ".", "kr"}).value, 5);
  EXPECT_EQ(ReadNumber("5EUR", NumberTarget::kDouble, {",", ".", "EUR"}).value, 5);
}

// A hex or octal literal is an Integer's 16-bit pattern only when read for an Integer; one of
// up to 32 bits is a Long's for every target.
TEST(NumbersTest, HexAndOctalLiteralsByTarget) {
  struct Case {
    const char* text;
    Reading integer;
    Reading wider;  // Long and Double
  } cases[] = {
      {"&H1F", Is(31), Is(31)},
      {" &hffff ", Is(-1), Is(65535)},
      {"&H8000", Is(-32768), Is(32768)},
      {"&H10000", Is(65536), Is(65536)},
      {"&HFFFFFFFF", Is(-1), Is(-1)},
      {"&H80000000", Is(-2147483648.0), Is(-2147483648.0)},
      {"&H100000000", kOverflow, kOverflow},
      {"&O17", Is(15), Is(15)},
      {"&177777", Is(-1), Is(65535)},
      {"&37777777777", Is(-1), Is(-1)},
      {"&H", kNoNumber, kNoNumber},
      {"&HG", kNoNumber, kNoNumber},
      {"&O8", kNoNumber, kNoNumber},
      {"&H 1", kNoNumber, kNoNumber},
      {"-&H1", kNoNumber, kNoNumber},
  };
  for (const Case& c : cases) {
    for (const NumberSymbols* symbols : {&kPoint, &kComma}) {
      for (NumberTarget target :
           {NumberTarget::kInteger, NumberTarget::kLong, NumberTarget::kDouble}) {
        const Reading& want = target == NumberTarget::kInteger ? c.integer : c.wider;
        const NumberReading got = ReadNumber(c.text, target, *symbols);
        EXPECT_EQ(got.status, want.status) << c.text << " " << int(target);
        EXPECT_EQ(got.value, want.value) << c.text << " " << int(target);
      }
    }
  }
  EXPECT_EQ(ParseNumber("&HFFFF", kPoint), 65535) << "a Double";
  EXPECT_EQ(ParseNumber("1E400", kPoint), std::nullopt);
}

TEST(NumbersTest, FormatGeneralLikeAutomation) {
  const std::pair<double, const char*> cases[] = {
      {0, "0"},
      {0.1 + 0.2, "0.3"},
      {1.0 / 3, "0.333333333333333"},
      {1e15, "1E+15"},
      {123456789012345, "123456789012345"},
      {0.0001, "0.0001"},
      {0.00001, "1E-05"},
      {1.5e-10, "1.5E-10"},
      {-2.5, "-2.5"},
      {2620, "2620"},
      {999999999999999.9, "1E+15"},
      {-1e-300, "-1E-300"},
      {1.23456789012345678e17, "1.23456789012346E+17"},
  };
  for (const auto& [value, text] : cases) EXPECT_EQ(FormatGeneral(value, kPoint), text) << value;
  EXPECT_EQ(FormatGeneral(-2.5, kComma), "-2,5");
}

TEST(NumbersTest, PicturesRoundHalfAwayOnFifteenDigits) {
  struct Case {
    double value;
    const char* picture;
    const char* text;
  } cases[] = {
      {1, "0.######", "1."},
      {2.5, "0.######", "2.5"},
      {-3, "0.######", "-3."},
      {1234.5678915, "0.######", "1234.567892"},
      {0.0000001, "0.######", "0."},
      {-0.0000001, "0.######", "-0."},  // the sign stays, as Format keeps it
      {-0.0, "0.######", "0."},
      {0.0000005, "0.######", "0.000001"},
      {-2, "0", "-2"},
      {12345, "0", "12345"},
      {2.5, "0", "3"},
      {5, "000", "005"},
      {2620, "000", "2620"},
      {-10, "0.000", "-10.000"},
      {1234567.891, "#,##0.00", "1,234,567.89"},
      {999.9999999, "0.######", "1000."},
      {0.1 + 0.2, "0.################", "0.3"},
      {-0.4, "0", "-0"},
      {1e20, "#,##0", "100,000,000,000,000,000,000"},
      {0.5, "#", "1"},
      {0.4, "#", ""},
      {0.5, "#.##", ".5"},
      {2.5, "X=0.00", "X=2.50"},
      {-2.5, "X=0.0", "-X=2.5"},
      {5, "0\" mm\"", "5 mm"},
      {0.125, "0.0\\%", "0.1%"},
      {0.15, "0.0", "0.2"},          // 0.1499999... as a double, 0.15 as 15 digits
      {1234567, "#,##0,", "1,235"},  // a comma before the end divides by a thousand
      {1234567, "0,.0", "1234.6"},
      {1e-320, "0.######", "0."},
      {2.5, "", "2.5"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(FormatPattern(c.value, c.picture, kPoint), c.text) << c.value << " " << c.picture;
  }
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
  registry.SetString(HKEY_CURRENT_USER, kInternationalKey, "sThousand", ",");
  registry.SetString(HKEY_CURRENT_USER, kInternationalKey, "sCurrency", "kr");
  SetDecimalSymbol(registry, ",");
  EXPECT_EQ(CurrentNumberSymbols().thousand, ".") << "the grouping symbol gives way";
  EXPECT_EQ(FormatGeneral(2.5), "2,5");
  EXPECT_EQ(FormatPattern(1234.5, "#,##0.00"), "1.234,50");
  EXPECT_EQ(ParseNumber("-1.234,5 kr"), -1234.5);
  EXPECT_EQ(ReadNumber("&HFFFF", NumberTarget::kInteger).value, -1);
  EXPECT_EQ(ReadNumberPrefix("2,5"), 2) << "the prefix reader keeps the point";

  SetDecimalSymbol(registry, ".");
  EXPECT_EQ(CurrentNumberSymbols().thousand, ",") << "and back";
  registry.SetString(HKEY_CURRENT_USER, kInternationalKey, "sThousand", "'");
  SetDecimalSymbol(registry, ",");
  EXPECT_EQ(CurrentNumberSymbols().thousand, "'") << "one that doesn't clash stays";

  registry.DeleteValue(HKEY_CURRENT_USER, kInternationalKey, "sDecimal");
  registry.DeleteValue(HKEY_CURRENT_USER, kInternationalKey, "sCurrency");
  registry.SetDword(HKEY_CURRENT_USER, kInternationalKey, "sThousand", 7);
  EXPECT_EQ(CurrentNumberSymbols().decimal, ".") << "no value: the point";
  EXPECT_EQ(CurrentNumberSymbols().thousand, ",") << "not text: the comma";
  EXPECT_EQ(CurrentNumberSymbols().currency, "$");
}

TEST(NumbersTest, SymbolsFollowTheEnvironmentInForce) {
  for (const char* symbol : {",", "/", "."}) {
    ScopedEnv scoped;  // each at the same place, with the same number of writes
    SetDecimalSymbol(scoped.env().registry(), symbol);
    EXPECT_EQ(CurrentNumberSymbols().decimal, symbol);
    EXPECT_EQ(FormatPattern(1.5, "0.0"), std::string("1") + symbol + "5");
  }
}

TEST(NumbersTest, SeedingKeepsWhatTheUserSet) {
  MemoryRegistry registry;
  registry.SetString(HKEY_CURRENT_USER, kInternationalKey, "sDecimal", ",");
  SeedNumberSymbols(registry);
  EXPECT_EQ(registry.GetValue(HKEY_CURRENT_USER, kInternationalKey, "sDecimal")->data,
            (std::vector<uint8_t>{',', 0}));
  const auto thousand = registry.GetValue(HKEY_CURRENT_USER, kInternationalKey, "sThousand");
  ASSERT_TRUE(thousand.has_value());
  EXPECT_EQ(thousand->type, REG_SZ);
  EXPECT_EQ(thousand->data.size(), 2u) << "one symbol and its terminator";
  EXPECT_NE(thousand->data[0], ',') << "never the decimal symbol";
  const auto currency = registry.GetValue(HKEY_CURRENT_USER, kInternationalKey, "sCurrency");
  ASSERT_TRUE(currency.has_value());
  EXPECT_GT(currency->data.size(), 1u) << "a symbol, the point's \"$\" if the locale has none";
}

}  // namespace
}  // namespace qorvel
