#include "qorvel/platform/text.h"

#include <algorithm>
#include <cstring>

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

// Candidates are found with memchr, once for each case of the word's first letter, and each
// of the two is sought again only once passed: a long reply with no such letter costs two
// scans of memory, not a comparison at every byte.
size_t FindNoCase(std::string_view text, std::string_view word, size_t from) {
  constexpr size_t npos = std::string_view::npos;
  if (from > text.size()) return npos;
  if (word.empty()) return from;
  if (word.size() > text.size()) return npos;
  const size_t last = text.size() - word.size();  // the last place a hit can start
  const char cases[2] = {UpperChar(word[0]), LowerChar(word[0])};
  auto next = [&](char c, size_t at) -> size_t {
    if (at > last) return npos;
    const void* hit = std::memchr(text.data() + at, c, last - at + 1);
    return hit == nullptr ? npos : static_cast<size_t>(static_cast<const char*>(hit) - text.data());
  };
  size_t upper = next(cases[0], from);
  size_t lower = cases[1] == cases[0] ? npos : next(cases[1], from);
  while (upper != npos || lower != npos) {
    const size_t at = std::min(upper, lower);
    if (std::equal(word.begin() + 1, word.end(), text.begin() + at + 1, SameNoCase)) return at;
    if (at == upper) upper = next(cases[0], at + 1);
    if (at == lower) lower = next(cases[1], at + 1);
  }
  return npos;
}

std::string_view TrimBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") + 1 - first);
}

namespace {

// The length of the well-formed UTF-8 sequence at `at`, or 1 for a byte that starts none:
// no overlong forms, no surrogates, nothing past U+10FFFF.
size_t SequenceLength(std::string_view text, size_t at) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[at + i]); };
  const unsigned char lead = byte(0);
  size_t length = 1;
  unsigned char low = 0x80, high = 0xBF;  // the second byte's range
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  }
  if (length == 1 || at + length > text.size()) return 1;
  if (byte(1) < low || byte(1) > high) return 1;
  for (size_t i = 2; i < length; ++i) {
    if (byte(i) < 0x80 || byte(i) > 0xBF) return 1;
  }
  return length;
}

}  // namespace

size_t NextCharacter(std::string_view text, size_t at) { return at + SequenceLength(text, at); }

int32_t CharacterCount(std::string_view text) {
  int32_t count = 0;
  for (size_t at = 0; at < text.size(); at = NextCharacter(text, at)) ++count;
  return count;
}

size_t CharacterOffset(std::string_view text, int32_t n) {
  size_t at = 0;
  for (int32_t i = 0; i < n && at < text.size(); ++i) at = NextCharacter(text, at);
  return at;
}

uint32_t CharacterCode(std::string_view text, size_t at) {
  const size_t length = SequenceLength(text, at);
  const auto lead = static_cast<unsigned char>(text[at]);
  if (length == 1) return lead;
  uint32_t code = lead & (0x7F >> length);
  for (size_t i = 1; i < length; ++i) code = code << 6 | (text[at + i] & 0x3F);
  return code;
}

std::string Utf8Of(uint32_t code) {
  std::string out;
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | code >> 6);
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | code >> 12);
    out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | code >> 18);
    out += static_cast<char>(0x80 | (code >> 12 & 0x3F));
    out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
  return out;
}

}  // namespace qorvel
