#include "qorvel/platform/text.h"

#include <gtest/gtest.h>

namespace qorvel {
namespace {

TEST(TextTest, FindNoCaseFindsTheFirstPlaceInAnyCase) {
  constexpr size_t npos = std::string_view::npos;
  const struct {
    std::string_view text, word;
    size_t from, at;
  } cases[] = {
      {"Minimum: X 1", "x", 0, 9}, {"an Error here", "ERROR", 0, 3},
      {"eEeE", "Ee", 1, 1},        {"abc", "", 2, 2},
      {"abc", "", 4, npos},        {"abc", "abcd", 0, npos},
      {"xTRUEx", "true", 2, npos}, {"TRUE", "true", 0, 0},
      {"a-b-", "-", 2, 3},         {"\xff\xfe", "\xfe", 0, 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FindNoCase(c.text, c.word, c.from), c.at) << c.text << " / " << c.word;
  }
}

// A well-formed sequence is one character, any other byte one of its own.
TEST(TextTest, CharactersOfUtf8Text) {
  const std::string text =
      "a\u00e9\u066b\xff"
      "b\xe2\x82";  // a, é, ٫, a stray byte, b, a cut one
  EXPECT_EQ(CharacterCount(text), 7);
  EXPECT_EQ(CharacterOffset(text, 3), 5u);
  EXPECT_EQ(CharacterOffset(text, 99), text.size());
  EXPECT_EQ(CharacterCode(text, 3), 0x66Bu);
  EXPECT_EQ(CharacterCode(text, 5), 0xFFu);
  EXPECT_EQ(CharacterCode("\xed\xa0\x80", 0), 0xEDu);  // a surrogate is no character
  EXPECT_EQ(CharacterCode("\xc0\xaf", 0), 0xC0u);      // nor an overlong form
  for (uint32_t code : {0x41u, 0xE9u, 0x66Bu, 0xFFFDu, 0x1F600u}) {
    EXPECT_EQ(CharacterCode(Utf8Of(code), 0), code);
    EXPECT_EQ(CharacterCount(Utf8Of(code)), 1);
  }
}

}  // namespace
}  // namespace qorvel
