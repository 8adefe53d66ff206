#include "qorvel/platform/numbers.h"

#include <gtest/gtest.h>

#include "qorvel/platform/env.h"
#include "qorvel/platform/env_testing.h"

namespace qorvel {
namespace {

const NumberSymbols kPoint{".", ","};
const NumberSymbols kComma{",", "."};

TEST(NumbersTest, ParseNumberByRegion) {
  struct Case {
    const char* text;
    const NumberSymbols& symbols;
    std::optional<double> value;
  } cases[] = {
      {"12", kPoint, 12},
      {" -2.5 ", kPoint, -2.5},
      {"1,234.5", kPoint, 1234.5},
      {"1.5E-3", kPoint, 0.0015},
      {"+7", kPoint, 7},
      {"2,5", kComma, 2.5},
      {"1.234,5", kComma, 1234.5},
      {"5.", kPoint, 5},
      {"", kPoint, std::nullopt},
      {"abc", kPoint, std::nullopt},
      {"1x", kPoint, std::nullopt},
      {"-", kPoint, std::nullopt},
      {"1e", kPoint, std::nullopt},
      {"1e999", kPoint, std::nullopt},
      {"1 000", NumberSymbols{".", " "}, 1000},
      {"2.5", kComma, 25},  // a grouping symbol, as the runtime reads it
      {"&H1F", kPoint, 31},
      {" &hffff ", kPoint, -1},  // 16 bits make an Integer
      {"&H8000", kPoint, -32768},
      {"&H10000", kPoint, 65536},
      {"&HFFFFFFFF", kPoint, -1},  // 32 bits make a Long
      {"&H100000000", kPoint, std::nullopt},
      {"&O17", kPoint, 15},
      {"&H", kPoint, std::nullopt},
      {"&HG", kPoint, std::nullopt},
      {"&O8", kPoint, std::nullopt},
  };
  for (const Case& c : cases) EXPECT_EQ(ParseNumber(c.text, c.symbols), c.value) << c.text;
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
  registry.SetString(HKEY_CURRENT_USER, kInternationalKey, "sThousand", ".");
  SetDecimalSymbol(registry, ",");
  EXPECT_EQ(CurrentNumberSymbols().decimal, ",");
  EXPECT_EQ(FormatGeneral(2.5), "2,5");
  EXPECT_EQ(FormatPattern(1234.5, "#,##0.00"), "1.234,50");
  EXPECT_EQ(ParseNumber("1.234,5"), 1234.5);
  EXPECT_EQ(ReadNumberPrefix("2,5"), 2) << "the prefix reader keeps the point";

  registry.DeleteValue(HKEY_CURRENT_USER, kInternationalKey, "sDecimal");
  registry.SetDword(HKEY_CURRENT_USER, kInternationalKey, "sThousand", 7);
  EXPECT_EQ(CurrentNumberSymbols().decimal, ".") << "no value: the point";
  EXPECT_EQ(CurrentNumberSymbols().thousand, ",") << "not text: the comma";
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
}

}  // namespace
}  // namespace qorvel
