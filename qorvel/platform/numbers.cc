#include "qorvel/platform/numbers.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <locale>

#include "qorvel/platform/env.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/registry.h"
#include "qorvel/platform/text.h"

namespace qorvel {
namespace {

// The value's 15 significant digits (trailing zeros kept) and the power of ten of the first.
struct Digits {
  std::string digits;
  int exponent = 0;
};

Digits SignificantDigits(double magnitude) {
  char text[32];
  std::snprintf(text, sizeof text, "%.14e", magnitude);
  Digits d;
  d.digits += text[0];
  d.digits.append(text + 2, 14);
  d.exponent = std::atoi(text + 17);
  return d;
}

// The 15-digit text of a magnitude times 10^shift, rounded half away from zero to `places`
// decimals: the whole digits without leading zeros, and exactly `places` fraction digits.
// Shifting the text rather than the double keeps the scaling exact.
struct Fixed {
  std::string whole;
  std::string frac;
};

Fixed FixedText(double magnitude, int shift, int places) {
  if (magnitude == 0) return {"", std::string(places, '0')};
  const Digits d = SignificantDigits(magnitude);
  const int exponent = d.exponent + shift;
  std::string text = exponent >= 0 ? d.digits : std::string(-exponent, '0') + d.digits;
  size_t whole = exponent >= 0 ? exponent + 1 : 1;
  if (text.size() <= whole + places) text.resize(whole + places + 1, '0');
  const bool up = text[whole + places] >= '5';
  text.resize(whole + places);
  if (up) {
    int i = static_cast<int>(text.size()) - 1;
    for (; i >= 0 && text[i] == '9'; --i) text[i] = '0';
    if (i >= 0) {
      ++text[i];
    } else {
      text.insert(text.begin(), '1');
      ++whole;
    }
  }
  Fixed f{text.substr(0, whole), text.substr(whole)};
  f.whole.erase(0, f.whole.find_first_not_of('0'));
  return f;
}

// A picture taken apart: the literal text around its digit placeholders, and what the
// placeholders ask for in front of and behind the point.
struct Picture {
  std::string prefix;
  std::string suffix;
  int min_whole = 0;      // '0's in front of the point
  bool grouping = false;  // a ',' between placeholders in front of the point
  int thousands = 0;      // ','s right before the point or the end, each dividing by 1000
  bool point = false;
  int min_frac = 0;  // '0's behind the point
  int max_frac = 0;  // '0's and '#'s behind the point
};

Picture ParsePicture(std::string_view text) {
  Picture p;
  enum { kPrefix, kNumber, kSuffix } part = kPrefix;
  int commas = 0;  // commas not yet followed by a placeholder
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool placeholder = c == '0' || c == '#';
    const bool number = placeholder || (c == '.' && !p.point) || (c == ',' && part == kNumber);
    if (part != kSuffix && number) {
      part = kNumber;
      if (c == '.') {
        p.point = true;
        p.thousands = commas;
        commas = 0;
      } else if (c == ',') {
        if (!p.point) ++commas;
      } else if (p.point) {
        ++p.max_frac;
        if (c == '0') ++p.min_frac;
      } else {
        p.grouping = p.grouping || commas > 0;
        commas = 0;
        if (c == '0') ++p.min_whole;
      }
      continue;
    }
    // Literal text: a character, one escaped by a backslash, or a quoted run.
    std::string& literal = part == kPrefix ? p.prefix : p.suffix;
    if (part == kNumber) part = kSuffix;
    if (c == '\\' && i + 1 < text.size()) {
      literal += text[++i];
    } else if (c == '"') {
      const size_t close = std::min(text.find('"', i + 1), text.size());
      literal.append(text.substr(i + 1, close - i - 1));
      i = close;
    } else {
      literal += c;
    }
  }
  if (!p.point) p.thousands = commas;
  return p;
}

std::optional<double> ToDouble(const std::string& plain) {
  double value = 0;
  auto [end, ec] = std::from_chars(plain.data(), plain.data() + plain.size(), value);
  if (ec != std::errc() || end != plain.data() + plain.size()) return std::nullopt;
  return value;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Takes `prefix` off the front of `text` if it stands there.
bool Take(std::string_view& text, std::string_view prefix) {
  if (prefix.empty() || !text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

// "&H1F", "&O17" or "&17" after the "&". A pattern of up to 16 bits is an Integer's only for an
// Integer; one of up to 32 bits is a Long's whatever the target, so "&HFFFFFFFF" is -1.
NumberReading ReadRadix(std::string_view text, NumberTarget target) {
  int base = 8;
  if (Take(text, "H") || Take(text, "h")) {
    base = 16;
  } else if (!Take(text, "O")) {
    Take(text, "o");
  }
  uint64_t bits = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), bits, base);
  if (text.empty() || end != text.data() + text.size() ||
      (ec != std::errc() && ec != std::errc::result_out_of_range)) {
    return {};
  }
  if (ec == std::errc::result_out_of_range || bits > 0xFFFFFFFF) {
    return {NumberStatus::kOverflow, 0};
  }
  if (bits <= 0xFFFF && target == NumberTarget::kInteger) {
    return {NumberStatus::kNumber, static_cast<double>(static_cast<int16_t>(bits))};
  }
  if (bits <= 0xFFFF) return {NumberStatus::kNumber, static_cast<double>(bits)};
  return {NumberStatus::kNumber, static_cast<double>(static_cast<int32_t>(bits))};
}

std::string TextValue(const std::optional<RegValue>& value, const char* fallback) {
  if (!value || (value->type != reg_type::kString && value->type != reg_type::kExpandString))
    return fallback;
  std::string text(value->data.begin(), value->data.end());
  while (!text.empty() && text.back() == '\0') text.pop_back();
  return text.empty() ? fallback : text;
}

}  // namespace

NumberReading ReadNumber(std::string_view text, NumberTarget target, const NumberSymbols& symbols) {
  text = TrimBlanks(text);
  if (Take(text, "&")) return ReadRadix(text, target);

  // What may stand around the digits, each at most once: a sign or an opening parenthesis, and
  // the currency symbol, with blanks anywhere among them.
  bool negative = false;
  bool sign = false;
  bool parens = false;
  bool currency = false;
  auto take_sign = [&] {
    if (sign || parens || text.empty() || (text[0] != '-' && text[0] != '+')) return false;
    sign = true;
    negative = text[0] == '-';
    text.remove_prefix(1);
    return true;
  };
  auto take_currency = [&] { return !currency && (currency = Take(text, symbols.currency)); };
  auto take_blank = [&] { return Take(text, " ") || Take(text, "\t"); };
  while (take_blank() || take_sign() || take_currency() ||
         (!sign && !parens && (parens = Take(text, "(")))) {
  }

  std::string plain;
  bool fraction = false;
  int whole_digits = 0;   // significant digits in front of the decimal symbol
  int leading_zeros = 0;  // zeros behind the decimal symbol before the first other digit
  bool significant = false;
  while (!text.empty()) {
    if (IsDigit(text[0])) {
      significant = significant || text[0] != '0';
      if (significant && !fraction) ++whole_digits;
      if (!significant && fraction) ++leading_zeros;
      plain += text[0];
      text.remove_prefix(1);
    } else if (!fraction && Take(text, symbols.decimal)) {
      plain += '.';
      fraction = true;
    } else if (!fraction && !plain.empty() && Take(text, symbols.thousand)) {
    } else {
      break;
    }
  }
  if (plain.empty() || plain == ".") return {};

  // "E" starts an exponent only with digits behind it, so a currency such as "EUR" still ends a
  // number. "D", which VBA source allows, is no exponent letter here.
  int exponent = 0;
  if (text.size() >= 2 && (text[0] == 'E' || text[0] == 'e')) {
    const size_t digits = text[1] == '+' || text[1] == '-' ? 2 : 1;
    if (text.size() > digits && IsDigit(text[digits])) {
      const bool down = text[1] == '-';
      plain += 'e';
      plain += text.substr(1, digits - 1);
      text.remove_prefix(digits);
      while (!text.empty() && IsDigit(text[0])) {
        exponent = std::min(exponent * 10 + (text[0] - '0'), 100000);
        plain += text[0];
        text.remove_prefix(1);
      }
      if (down) exponent = -exponent;
    }
  }

  bool closed = false;
  while (take_blank() || take_sign() || take_currency() ||
         (parens && !closed && (closed = Take(text, ")")))) {
  }
  if (!text.empty() || parens != closed) return {};

  double value = 0;
  auto [end, ec] = std::from_chars(plain.data(), plain.data() + plain.size(), value);
  if (end != plain.data() + plain.size() ||
      (ec != std::errc() && ec != std::errc::result_out_of_range)) {
    return {};
  }
  if (ec == std::errc::result_out_of_range) {
    // Past the range one way or the other: the power of ten of the first digit tells which.
    const int power = (whole_digits > 0 ? whole_digits - 1 : -leading_zeros - 1) + exponent;
    if (power > 0) return {NumberStatus::kOverflow, 0};
    value = 0;
  }
  return {NumberStatus::kNumber, negative || parens ? -value : value};
}

std::optional<double> ParseNumber(std::string_view text, const NumberSymbols& symbols) {
  const NumberReading reading = ReadNumber(text, NumberTarget::kDouble, symbols);
  if (reading.status != NumberStatus::kNumber) return std::nullopt;
  return reading.value;
}

std::string FormatGeneral(double value, const NumberSymbols& symbols) {
  if (value == 0 || !std::isfinite(value)) return value == 0 ? "0" : std::to_string(value);
  Digits d = SignificantDigits(std::fabs(value));
  while (d.digits.size() > 1 && d.digits.back() == '0') d.digits.pop_back();
  std::string out = value < 0 ? "-" : "";
  if (d.exponent >= 15 || d.exponent < -4) {
    out += d.digits[0];
    if (d.digits.size() > 1) out += symbols.decimal + d.digits.substr(1);
    char exp[16];
    std::snprintf(exp, sizeof exp, "E%c%02d", d.exponent < 0 ? '-' : '+', std::abs(d.exponent));
    return out + exp;
  }
  if (d.exponent < 0) {
    return out + "0" + symbols.decimal + std::string(-d.exponent - 1, '0') + d.digits;
  }
  const size_t whole = d.exponent + 1;
  if (d.digits.size() <= whole) return out + d.digits + std::string(whole - d.digits.size(), '0');
  return out + d.digits.substr(0, whole) + symbols.decimal + d.digits.substr(whole);
}

std::string FormatPattern(double value, std::string_view picture, const NumberSymbols& symbols) {
  // No digits to picture, or no picture: the general form.
  if (!std::isfinite(value) || picture.empty()) return FormatGeneral(value, symbols);
  const Picture p = ParsePicture(picture);
  Fixed f = FixedText(std::fabs(value), -3 * p.thousands, p.max_frac);
  while (static_cast<int>(f.frac.size()) > p.min_frac && f.frac.back() == '0') f.frac.pop_back();
  if (static_cast<int>(f.whole.size()) < p.min_whole) {
    f.whole.insert(0, p.min_whole - f.whole.size(), '0');
  }
  if (p.grouping) {
    for (int i = static_cast<int>(f.whole.size()) - 3; i > 0; i -= 3) {
      f.whole.insert(i, symbols.thousand);
    }
  }
  // A negative value keeps its sign even when it rounds to zero, as Format does: "-0.".
  std::string out = value < 0 ? "-" : "";
  out += p.prefix;
  out += f.whole;
  if (p.point) out += symbols.decimal + f.frac;
  out += p.suffix;
  return out;
}

double ReadNumberPrefix(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
  std::string plain;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    if (text[i] == '-') plain += '-';
    ++i;
  }
  auto digits = [&] {
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) plain += text[i++];
  };
  digits();
  if (i < text.size() && text[i] == '.') {
    plain += text[i++];
    digits();
  }
  if (i + 1 < text.size() &&
      (text[i] == 'E' || text[i] == 'e' || text[i] == 'D' || text[i] == 'd')) {
    const size_t mark = plain.size();
    const size_t at = i;
    plain += 'e';
    ++i;
    if (text[i] == '+' || text[i] == '-') plain += text[i++];
    const size_t before = plain.size();
    digits();
    if (plain.size() == before) {  // no exponent digits: the number ends at the letter
      plain.resize(mark);
      i = at;
    }
  }
  return ToDouble(plain).value_or(0);
}

NumberSymbols CurrentNumberSymbols() { return Env::Current().number_symbols(); }

NumberSymbols ReadNumberSymbols(const Registry& registry) {
  NumberSymbols symbols;
  symbols.decimal =
      TextValue(registry.GetValue(root_key::kCurrentUser, kInternationalKey, "sDecimal"), ".");
  symbols.thousand =
      TextValue(registry.GetValue(root_key::kCurrentUser, kInternationalKey, "sThousand"), ",");
  symbols.currency =
      TextValue(registry.GetValue(root_key::kCurrentUser, kInternationalKey, "sCurrency"), "$");
  return symbols;
}

NumberReading ReadNumber(std::string_view text, NumberTarget target) {
  return ReadNumber(text, target, CurrentNumberSymbols());
}
std::optional<double> ParseNumber(std::string_view text) {
  return ParseNumber(text, CurrentNumberSymbols());
}
std::string FormatGeneral(double value) { return FormatGeneral(value, CurrentNumberSymbols()); }
std::string FormatPattern(double value, std::string_view picture) {
  return FormatPattern(value, picture, CurrentNumberSymbols());
}

void SeedNumberSymbols(Registry& registry) {
  NumberSymbols locale;
  std::string sep;
  try {
    const std::locale user("");
    const auto& punct = std::use_facet<std::numpunct<char>>(user);
    // A byte outside ASCII is half of a multi-byte symbol here and no symbol on its own.
    auto usable = [](char c) { return c > ' ' && c < 0x7F && !std::isdigit(c); };
    if (usable(punct.decimal_point())) locale.decimal = std::string(1, punct.decimal_point());
    if (usable(punct.thousands_sep())) sep = std::string(1, punct.thousands_sep());
    // A whole symbol, so bytes of a multi-byte one are welcome; digits and blanks are not.
    const std::string symbol = std::use_facet<std::moneypunct<char>>(user).curr_symbol();
    if (!symbol.empty() && symbol.find_first_of("0123456789 \t") == std::string::npos) {
      locale.currency = symbol;
    }
  } catch (const std::exception&) {
    // No usable process locale: keep the point, the comma and the dollar.
  }
  auto seed = [&registry](const char* name, const std::string& text) {
    if (!registry.GetValue(root_key::kCurrentUser, kInternationalKey, name)) {
      registry.SetString(root_key::kCurrentUser, kInternationalKey, name, text);
    }
  };
  seed("sDecimal", locale.decimal);
  // The grouping symbol must differ from the decimal symbol in force, which the user may have
  // set apart from the locale.
  const std::string decimal =
      TextValue(registry.GetValue(root_key::kCurrentUser, kInternationalKey, "sDecimal"), ".");
  seed("sThousand", !sep.empty() && sep != decimal ? sep : decimal == "," ? "." : ",");
  seed("sCurrency", locale.currency);
}

namespace {

// What would make a number written with `symbol` read otherwise than it was written: the reason,
// or nullptr. A blank is refused only where `blank_ok` is false.
const char* SymbolFault(std::string_view symbol, bool blank_ok) {
  if (symbol.empty()) return "it is empty";
  for (const char c : symbol) {
    if (IsDigit(c)) return "a digit in it would read as part of the number";
    if (c == '+' || c == '-') return "a sign in it would read as the number's sign";
    if (c == '(' || c == ')') return "parentheses mark a negative number";
    if (c == '&') return "\"&\" starts a hex or octal number";
    if (c == 'E' || c == 'e') return "\"E\" starts an exponent";
    if (c == ' ' && blank_ok) continue;
    if (static_cast<unsigned char>(c) <= ' ' || c == '\x7F') {
      return "blanks and control characters are skipped around a number or end it";
    }
  }
  return nullptr;
}

[[noreturn]] void RefuseSymbol(std::string_view symbol, const char* role, const char* why) {
  Raise(err::kInvalidCall,
        "\"" + std::string(symbol) + "\" can't be the " + role + " symbol: " + why);
}

}  // namespace

void CheckDecimalSymbol(std::string_view symbol, std::string_view currency) {
  if (const char* why = SymbolFault(symbol, /*blank_ok=*/false)) {
    RefuseSymbol(symbol, "decimal", why);
  }
  // "$5" would read as five, not as a half.
  if (symbol == currency) RefuseSymbol(symbol, "decimal", "it is the currency symbol");
}

void CheckGroupingSymbol(std::string_view symbol, std::string_view decimal) {
  if (const char* why = SymbolFault(symbol, /*blank_ok=*/true)) {
    RefuseSymbol(symbol, "grouping", why);
  }
  if (symbol == decimal) RefuseSymbol(symbol, "grouping", "it is the decimal symbol");
}

void SetDecimalSymbol(Registry& registry, const std::string& symbol) {
  CheckDecimalSymbol(
      symbol,
      TextValue(registry.GetValue(root_key::kCurrentUser, kInternationalKey, "sCurrency"), "$"));
  const std::string thousand =
      TextValue(registry.GetValue(root_key::kCurrentUser, kInternationalKey, "sThousand"), ",");
  if (thousand == symbol) {
    registry.SetString(root_key::kCurrentUser, kInternationalKey, "sThousand",
                       symbol == "," ? "." : ",");
  }
  registry.SetString(root_key::kCurrentUser, kInternationalKey, "sDecimal", symbol);
}

}  // namespace qorvel
