#include "qorvel/platform/text.h"

#include <algorithm>

namespace qorvel {

// The C library's toupper follows the process locale; names and commands must not.
char UpperChar(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
char LowerChar(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string UpperCase(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = UpperChar(c);
  return out;
}

std::string LowerCase(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = LowerChar(c);
  return out;
}

namespace {
bool SameNoCase(char a, char b) { return UpperChar(a) == UpperChar(b); }
}  // namespace

bool EqualsNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), SameNoCase);
}

size_t FindNoCase(std::string_view text, std::string_view word, size_t from) {
  if (from > text.size()) return std::string_view::npos;
  const auto hit =
      std::search(text.begin() + from, text.end(), word.begin(), word.end(), SameNoCase);
  return hit == text.end() && !word.empty() ? std::string_view::npos
                                            : static_cast<size_t>(hit - text.begin());
}

std::string_view TrimBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") + 1 - first);
}

}  // namespace qorvel
