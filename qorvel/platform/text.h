#ifndef QORVEL_PLATFORM_TEXT_H_
#define QORVEL_PLATFORM_TEXT_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qorvel {

// Text without regard to case, as automation member names, registry names, class names and the
// hosts' command lines compare it: ASCII letters fold, every other byte stands as it is.
char UpperChar(char c);
char LowerChar(char c);
std::string UpperCase(std::string_view text);
std::string LowerCase(std::string_view text);
bool EqualsNoCase(std::string_view a, std::string_view b);
// The first place at or after `from` where `word` stands in `text`, or npos.
size_t FindNoCase(std::string_view text, std::string_view word, size_t from = 0);
// The text without the blanks and tabs around it.
std::string_view TrimBlanks(std::string_view text);

// UTF-8 text character by character, as a text box counts it: a well-formed sequence is one
// character, and any other byte is a character of its own, so every byte string has a reading.
size_t NextCharacter(std::string_view text, size_t at);  // the byte after the one at `at`
int32_t CharacterCount(std::string_view text);
// Where character `n` starts (the end for `n` at or past the count).
size_t CharacterOffset(std::string_view text, int32_t n);
// The code of the character at byte `at`; a stray byte stands for its own value.
uint32_t CharacterCode(std::string_view text, size_t at);
std::string Utf8Of(uint32_t code);

inline bool ContainsNoCase(std::string_view text, std::string_view word) {
  return FindNoCase(text, word) != std::string_view::npos;
}

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_TEXT_H_
