#include "qorvel/platform/numbers.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <locale>

#include "qorvel/platform/env.h"
#include "qorvel/platform/registry.h"

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

std::string_view Trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
  return s;
}

std::optional<double> ToDouble(const std::string& plain) {
  double value = 0;
  auto [end, ec] = std::from_chars(plain.data(), plain.data() + plain.size(), value);
  if (ec != std::errc() || end != plain.data() + plain.size()) return std::nullopt;
  return value;
}

std::string TextValue(const std::optional<RegValue>& value, const char* fallback) {
  if (!value || (value->type != REG_SZ && value->type != REG_EXPAND_SZ)) return fallback;
  std::string text(value->data.begin(), value->data.end());
  while (!text.empty() && text.back() == '\0') text.pop_back();
  return text.empty() ? fallback : text;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text, const NumberSymbols& symbols) {
  text = Trim(text);
  std::string plain;
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) {
    if (text[0] == '-') plain += '-';
    text.remove_prefix(1);
  }
  bool digits = false;
  bool fraction = false;
  while (!text.empty()) {
    if (std::isdigit(static_cast<unsigned char>(text[0]))) {
      plain += text[0];
      digits = true;
      text.remove_prefix(1);
    } else if (!fraction && text.starts_with(symbols.decimal)) {
      plain += '.';
      fraction = true;
      text.remove_prefix(symbols.decimal.size());
    } else if (!fraction && digits && !symbols.thousand.empty() &&
               text.starts_with(symbols.thousand)) {
      text.remove_prefix(symbols.thousand.size());
    } else {
      break;
    }
  }
  if (!digits) return std::nullopt;
  if (!text.empty() && (text[0] == 'e' || text[0] == 'E' || text[0] == 'd' || text[0] == 'D')) {
    plain += 'e';
    text.remove_prefix(1);
    if (!text.empty() && (text[0] == '+' || text[0] == '-')) {
      plain += text[0];
      text.remove_prefix(1);
    }
    if (text.empty()) return std::nullopt;
    while (!text.empty() && std::isdigit(static_cast<unsigned char>(text[0]))) {
      plain += text[0];
      text.remove_prefix(1);
    }
  }
  if (!text.empty()) return std::nullopt;
  return ToDouble(plain);
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
  if (!std::isfinite(value)) return FormatGeneral(value, symbols);  // no digits to picture
  const size_t point = picture.find('.');
  const std::string_view whole_part = picture.substr(0, point);
  const std::string_view frac_part =
      point == std::string_view::npos ? std::string_view() : picture.substr(point + 1);
  const int min_whole = static_cast<int>(std::count(whole_part.begin(), whole_part.end(), '0'));
  const bool grouping = whole_part.find(',') != std::string_view::npos;
  const int max_frac = static_cast<int>(std::count(frac_part.begin(), frac_part.end(), '0') +
                                        std::count(frac_part.begin(), frac_part.end(), '#'));
  const int min_frac = static_cast<int>(std::count(frac_part.begin(), frac_part.end(), '0'));

  // Round half away from zero on the 15-digit text, to max_frac places.
  std::string digits = "0";
  int int_len = 1;  // digits in front of the decimal point
  if (value != 0) {
    Digits d = SignificantDigits(std::fabs(value));
    int keep = d.exponent + 1 + max_frac;  // digits that stay
    if (keep < 0) {
      digits = "0";
    } else {
      std::string kept = d.digits.substr(0, std::min<size_t>(keep, d.digits.size()));
      bool carry = keep < static_cast<int>(d.digits.size()) && d.digits[keep] >= '5';
      kept.resize(keep, '0');
      for (int i = keep - 1; carry && i >= 0; --i) {
        if (kept[i] == '9') {
          kept[i] = '0';
        } else {
          ++kept[i];
          carry = false;
        }
      }
      int exponent = d.exponent;
      if (carry) {
        kept.insert(kept.begin(), '1');
        ++exponent;
      }
      digits = kept.empty() ? "0" : kept;
      int_len = exponent + 1;
      if (int_len <= 0) {  // all behind the point
        digits = std::string(1 - int_len, '0') + digits;
        int_len = 1;
      }
    }
  }
  std::string whole = digits.substr(0, int_len);
  std::string frac = digits.size() > size_t(int_len) ? digits.substr(int_len) : "";
  frac.resize(max_frac, '0');
  while (static_cast<int>(frac.size()) > min_frac && frac.back() == '0') frac.pop_back();
  const bool zero = whole.find_first_not_of('0') == std::string::npos &&
                    frac.find_first_not_of('0') == std::string::npos;
  whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size()));
  if (static_cast<int>(whole.size()) < min_whole) whole.insert(0, min_whole - whole.size(), '0');
  if (grouping) {
    for (int i = static_cast<int>(whole.size()) - 3; i > 0; i -= 3) {
      whole.insert(i, symbols.thousand);
    }
  }
  std::string out = (value < 0 && !zero) ? "-" : "";
  out += whole;
  if (point != std::string_view::npos) out += symbols.decimal + frac;
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

NumberSymbols CurrentNumberSymbols() {
  const Registry& registry = Env::Current().registry();
  return NumberSymbols{
      TextValue(registry.GetValue(HKEY_CURRENT_USER, kInternationalKey, "sDecimal"), "."),
      TextValue(registry.GetValue(HKEY_CURRENT_USER, kInternationalKey, "sThousand"), ",")};
}

std::optional<double> ParseNumber(std::string_view text) {
  return ParseNumber(text, CurrentNumberSymbols());
}
std::string FormatGeneral(double value) { return FormatGeneral(value, CurrentNumberSymbols()); }
std::string FormatPattern(double value, std::string_view picture) {
  return FormatPattern(value, picture, CurrentNumberSymbols());
}

void SeedNumberSymbols(Registry& registry) {
  std::string decimal = ".";
  std::string thousand = ",";
  try {
    const std::locale user("");
    const auto& punct = std::use_facet<std::numpunct<char>>(user);
    // A byte outside ASCII is half of a multi-byte symbol here and no symbol on its own.
    auto usable = [](char c) { return c > ' ' && c < 0x7F && !std::isdigit(c); };
    const char point = punct.decimal_point();
    const char sep = punct.thousands_sep();
    if (usable(point)) decimal = std::string(1, point);
    thousand = usable(sep) && sep != decimal[0] ? std::string(1, sep) : decimal == "," ? "." : ",";
  } catch (const std::exception&) {
    // No usable process locale: keep the point and the comma.
  }
  if (!registry.GetValue(HKEY_CURRENT_USER, kInternationalKey, "sDecimal")) {
    registry.SetString(HKEY_CURRENT_USER, kInternationalKey, "sDecimal", decimal);
  }
  if (!registry.GetValue(HKEY_CURRENT_USER, kInternationalKey, "sThousand")) {
    registry.SetString(HKEY_CURRENT_USER, kInternationalKey, "sThousand", thousand);
  }
}

void SetDecimalSymbol(Registry& registry, const std::string& symbol) {
  registry.SetString(HKEY_CURRENT_USER, kInternationalKey, "sDecimal", symbol);
}

}  // namespace qorvel
