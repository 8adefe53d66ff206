#ifndef QORVEL_WINDOWS_SERVER_EDIT_UNITS_H_
#define QORVEL_WINDOWS_SERVER_EDIT_UNITS_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace qorvel::win {

// A text box's UTF-8 text as an EDIT holds it, and positions between the two: the model counts
// characters, the EDIT UTF-16 units. Each character becomes one unit, or two above U+FFFF. A
// byte that is no part of well-formed UTF-8, and NUL, which would end the window's text, show
// as U+FFFD, so that every character still has exactly one place in the EDIT.
std::wstring EditTextOf(std::string_view text);
// The units before character `characters` (the whole text's units past its end).
int32_t UnitsBefore(std::string_view text, int32_t characters);
// The characters wholly before unit `units`: a position inside a surrogate pair falls back to
// the start of its character.
int32_t CharactersBefore(std::string_view text, int32_t units);

}  // namespace qorvel::win

#endif  // QORVEL_WINDOWS_SERVER_EDIT_UNITS_H_
