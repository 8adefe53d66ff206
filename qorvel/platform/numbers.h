#ifndef QORVEL_PLATFORM_NUMBERS_H_
#define QORVEL_PLATFORM_NUMBERS_H_

#include <optional>
#include <string>
#include <string_view>

namespace qorvel {

// The regional symbols numbers are read and written with.
struct NumberSymbols {
  std::string decimal = ".";
  std::string thousand = ",";
};

// Text to number by the regional settings, as the automation runtime reads it: blanks around,
// a sign, grouping symbols among the digits, the decimal symbol, an exponent. nullopt when the
// text is no number.
std::optional<double> ParseNumber(std::string_view text, const NumberSymbols& symbols);
// The general form: 15 significant digits, trailing zeros dropped, exponent form ("1E+15",
// "1E-05", "1.5E-10") outside 1E-4 <= |x| < 1E+15.
std::string FormatGeneral(double value, const NumberSymbols& symbols);
// The numeric picture format: "0.######", "0", "000", "#,##0.00" and the like. Rounds half
// away from zero on the 15-digit text of the value. A "." in the picture prints the decimal
// symbol, always, even with no digit behind it.
std::string FormatPattern(double value, std::string_view picture, const NumberSymbols& symbols);
// The number at the start of a text with the point as separator, whatever the region says: an
// optional sign, digits, a fraction, an exponent. Text that starts with no number reads as 0.
double ReadNumberPrefix(std::string_view text);

// The same, with the symbols of the user's regional settings now in force.
NumberSymbols CurrentNumberSymbols();
std::optional<double> ParseNumber(std::string_view text);
std::string FormatGeneral(double value);
std::string FormatPattern(double value, std::string_view picture);

// Where the user's regional settings live in the registry (under HKEY_CURRENT_USER, values
// "sDecimal" and "sThousand").
inline constexpr const char* kInternationalKey = "Control Panel\\International";
class Registry;
// Writes the process locale's symbols into the registry where it has none yet.
void SeedNumberSymbols(Registry& registry);
// Sets the user's decimal symbol (scripts and tests play a comma region with it).
void SetDecimalSymbol(Registry& registry, const std::string& symbol);

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_NUMBERS_H_
