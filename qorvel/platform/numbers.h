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
  std::string currency = "$";
};

// The type a text is read for. It matters to hex and octal literals alone: one that fits 16 bits
// is an Integer's bit pattern only for an Integer, so "&HFFFF" is -1 there and 65535 elsewhere.
enum class NumberTarget { kInteger, kLong, kDouble };

enum class NumberStatus {
  kNumber,
  kNoNumber,  // what the runtime calls a type mismatch
  kOverflow,  // a number too large for a Double, or a hex or octal literal past 32 bits
};
struct NumberReading {
  NumberStatus status = NumberStatus::kNoNumber;
  double value = 0;
};

// Text to number by the regional settings, as the automation runtime reads it: blanks anywhere
// around the digits; one sign in front or behind, or parentheses for a negative; the currency
// symbol in front or behind; grouping symbols among the whole digits; the decimal symbol; an
// exponent after "E". Or a hex or octal literal alone: "&H1F", "&O17", "&17". A number too small
// for a Double reads as 0.
NumberReading ReadNumber(std::string_view text, NumberTarget target, const NumberSymbols& symbols);
// The same for a Double; nullopt when the text is no number or too large.
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
NumberReading ReadNumber(std::string_view text, NumberTarget target);
std::optional<double> ParseNumber(std::string_view text);
std::string FormatGeneral(double value);
std::string FormatPattern(double value, std::string_view picture);

// Where the user's regional settings live in the registry (under HKEY_CURRENT_USER, values
// "sDecimal", "sThousand" and "sCurrency").
inline constexpr const char* kInternationalKey = "Control Panel\\International";
class Registry;
// The symbols the regional settings in `registry` give; a point, a comma and a dollar where
// they give none.
NumberSymbols ReadNumberSymbols(const Registry& registry);
// Writes the process locale's symbols into the registry where it has none yet.
void SeedNumberSymbols(Registry& registry);
// Raises error 5 unless `symbol` can be the decimal symbol beside the currency symbol
// `currency`: it must be some text with no digit, sign, parenthesis, "&", "E" or "e", blank or
// control character in it, and not the currency symbol, since numbers with any of these would
// be read otherwise than they were written.
void CheckDecimalSymbol(std::string_view symbol, std::string_view currency);
// Raises error 5 unless `symbol` can be the grouping symbol beside the decimal symbol
// `decimal`: the same characters are refused as for the decimal symbol, but for the blank,
// which some regions group digits with, and it must not be the decimal symbol.
void CheckGroupingSymbol(std::string_view symbol, std::string_view decimal);
// Sets the user's decimal symbol (scripts and tests play a comma region with it), after
// CheckDecimalSymbol against the currency symbol in `registry`; a refused one sets nothing. A
// grouping symbol equal to it gives way to the other of point and comma, so the two never match.
void SetDecimalSymbol(Registry& registry, const std::string& symbol);

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_NUMBERS_H_
