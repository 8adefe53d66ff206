#include "qorvel/frame/form_file.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <unordered_set>

#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"

namespace qorvel {
namespace {

bool IsNameStart(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }
bool IsNamePart(char c) { return IsNameStart(c) || (c >= '0' && c <= '9'); }

}  // namespace

bool IsFormName(std::string_view text) {
  return !text.empty() && IsNameStart(text[0]) && std::all_of(text.begin(), text.end(), IsNamePart);
}

namespace {

constexpr std::string_view kHeader = "QorvelOLE form 1";

std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (char c : text) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        out += c;
    }
  }
  return out + "\"";
}

std::string ValueText(const Variant& v) {
  char number[32];
  switch (v.type()) {
    case VarType::kInteger:
      return "Integer " + std::to_string(v.ToInteger());
    case VarType::kLong:
      return "Long " + std::to_string(v.ToLong());
    case VarType::kBool:
      return "Boolean " + std::to_string(RawBool(v.ToBool()));
    case VarType::kDouble: {
      const auto [end, ec] = std::to_chars(number, number + sizeof number, v.ToDouble());
      return "Double " + std::string(number, end);
    }
    case VarType::kText:
      return "String " + Quoted(v.ToText());
    case VarType::kEmpty:
      return "Empty";
    case VarType::kNull:
      return "Null";
    default:
      Raise(err::kTypeMismatch, "A form file keeps no arrays or objects");
  }
}

// A line of the file without its blanks, and without the carriage return of a CR LF end.
std::string_view LineText(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return TrimBlanks(line);
}

// Reads a form line by line; every fault names the source and the line.
class Reader {
 public:
  explicit Reader(std::string_view source) : source_(source) {}

  std::vector<SavedControl> Read(std::string_view text) {
    bool header = false;
    for (size_t pos = 0; pos <= text.size();) {
      const size_t end = std::min(text.find('\n', pos), text.size());
      const std::string_view line = LineText(text.substr(pos, end - pos));
      ++line_;
      pos = end + 1;
      if (line.empty() || line[0] == ';') continue;
      if (!header) {
        if (line != kHeader) Fail("not a form file (expected \"" + std::string(kHeader) + "\")");
        header = true;
      } else {
        Line(line);
      }
    }
    if (!header) Fail("empty file");
    if (open_) Fail("the block of " + controls_.back().name + " has no End");
    return std::move(controls_);
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    Raise(err::kInvalidCall,
          std::string(source_) + ": line " + std::to_string(line_) + ": " + what);
  }

  void Line(std::string_view line) {
    if (line.starts_with("Begin ")) return Begin(TrimBlanks(line.substr(6)));
    if (line == "End") {
      if (!open_) Fail("End without Begin");
      open_ = false;
      return;
    }
    if (!open_) Fail("a property outside a Begin ... End block");
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos) Fail("expected: Name = Type value");
    const std::string_view name = TrimBlanks(line.substr(0, equals));
    if (!IsFormName(name)) Fail("not a property name: " + std::string(name));
    if (!block_properties_.insert(UpperCase(name)).second) {
      Fail("the property " + std::string(name) + " comes twice");
    }
    SavedControl& control = controls_.back();
    control.bag.Append(name, Value(TrimBlanks(line.substr(equals + 1))));
    control.property_lines.push_back(line_);
  }

  void Begin(std::string_view rest) {
    if (open_) Fail("Begin inside the block of " + controls_.back().name);
    const size_t blank = rest.find(' ');
    const std::string_view class_name = rest.substr(0, blank);
    const std::string_view name =
        blank == std::string_view::npos ? "" : TrimBlanks(rest.substr(blank));
    if (!IsFormName(class_name) || !IsFormName(name)) Fail("expected: Begin Class Name");
    if (!names_.insert(UpperCase(name)).second) {
      Fail("a second control named " + std::string(name));
    }
    controls_.push_back({std::string(class_name), std::string(name), {}, line_, {}});
    block_properties_.clear();
    open_ = true;
  }

  Variant Value(std::string_view text) {
    const size_t blank = text.find(' ');
    const std::string_view type = text.substr(0, blank);
    const std::string_view rest =
        blank == std::string_view::npos ? "" : TrimBlanks(text.substr(blank));
    if (type == "Empty" || type == "Null") {
      if (!rest.empty()) Fail(std::string(type) + " takes no value");
      return type == "Empty" ? Variant() : Variant::Null();
    }
    if (type == "String") return Variant(Unquoted(rest));
    if (type == "Double") {
      double d = 0;
      const auto [end, ec] = std::from_chars(rest.data(), rest.data() + rest.size(), d);
      if (ec != std::errc() || end != rest.data() + rest.size() || !std::isfinite(d)) {
        Fail("not a Double: " + std::string(rest));
      }
      return Variant(d);
    }
    int64_t n = 0;
    const auto [end, ec] = std::from_chars(rest.data(), rest.data() + rest.size(), n);
    const bool whole = ec == std::errc() && end == rest.data() + rest.size();
    if (type == "Long" && whole && n >= INT32_MIN && n <= INT32_MAX) return Variant(int32_t(n));
    const bool short_int = whole && n >= INT16_MIN && n <= INT16_MAX;
    if (type == "Integer" && short_int) return Variant(int16_t(n));
    if (type == "Boolean" && short_int) return Variant(MakeVariantBool(int16_t(n)));
    if (type == "Integer" || type == "Long" || type == "Boolean") {
      Fail("not " + std::string(type == "Integer" ? "an " : "a ") + std::string(type) + ": " +
           std::string(rest));
    }
    Fail("unknown type: " + std::string(type));
  }

  std::string Unquoted(std::string_view text) {
    if (text.size() < 2 || text.front() != '"' || text.back() != '"') Fail("a String in quotes");
    std::string out;
    for (size_t i = 1; i + 1 < text.size(); ++i) {
      char c = text[i];
      if (c == '"') Fail("a quote inside a String must be written \\\"");
      if (c == '\\') {
        if (i + 2 >= text.size()) Fail("a String ends in a lone backslash");
        const char e = text[++i];
        c = e == 'r' ? '\r' : e == 'n' ? '\n' : e == 't' ? '\t' : e;
        if (e != 'r' && e != 'n' && e != 't' && e != '"' && e != '\\') {
          Fail(std::string("unknown escape \\") + e);
        }
      }
      out += c;
    }
    return out;
  }

  std::string_view source_;
  int line_ = 0;
  bool open_ = false;
  std::vector<SavedControl> controls_;
  std::unordered_set<std::string> names_;             // upper-cased, of every control
  std::unordered_set<std::string> block_properties_;  // upper-cased, of the open block
};

}  // namespace

std::string FormText(const std::vector<SavedControl>& controls) {
  std::string text = std::string(kHeader) + "\n";
  for (const SavedControl& c : controls) {
    text += "Begin " + c.class_name + " " + c.name + "\n";
    for (const auto& [name, value] : c.bag.entries()) {
      text += "  " + name + " = " + ValueText(value) + "\n";
    }
    text += "End\n";
  }
  return text;
}

std::vector<SavedControl> ParseFormText(std::string_view text, std::string_view source) {
  return Reader(source).Read(text);
}

}  // namespace qorvel
