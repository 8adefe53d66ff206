#include "windows/server/edit_units.h"

#include "qorvel/platform/text.h"

namespace qorvel::win {
namespace {

constexpr uint32_t kReplacement = 0xFFFD;

// The code the EDIT shows for the character at byte `at`.
uint32_t ShownCode(std::string_view text, size_t at) {
  const auto lead = static_cast<unsigned char>(text[at]);
  const bool stray = lead >= 0x80 && NextCharacter(text, at) == at + 1;
  return stray || lead == 0 ? kReplacement : CharacterCode(text, at);
}

int32_t UnitsOf(uint32_t code) { return code > 0xFFFF ? 2 : 1; }

}  // namespace

std::wstring EditTextOf(std::string_view text) {
  std::wstring out;
  out.reserve(text.size());
  for (size_t at = 0; at < text.size(); at = NextCharacter(text, at)) {
    const uint32_t code = ShownCode(text, at);
    if (code > 0xFFFF) {
      out += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
      out += static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    } else {
      out += static_cast<wchar_t>(code);
    }
  }
  return out;
}

int32_t UnitsBefore(std::string_view text, int32_t characters) {
  int32_t units = 0;
  for (size_t at = 0; at < text.size() && characters > 0; at = NextCharacter(text, at)) {
    units += UnitsOf(ShownCode(text, at));
    --characters;
  }
  return units;
}

int32_t CharactersBefore(std::string_view text, int32_t units) {
  int32_t characters = 0;
  for (size_t at = 0; at < text.size(); at = NextCharacter(text, at)) {
    units -= UnitsOf(ShownCode(text, at));
    if (units < 0) break;
    ++characters;
  }
  return characters;
}

}  // namespace qorvel::win
