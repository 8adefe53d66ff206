#ifndef QORVEL_PLATFORM_TEXT_H_
#define QORVEL_PLATFORM_TEXT_H_

#include <cstddef>
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

inline bool ContainsNoCase(std::string_view text, std::string_view word) {
  return FindNoCase(text, word) != std::string_view::npos;
}

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_TEXT_H_
