#include "qorvel/platform/reg_file.h"

#include <charconv>

#include "qorvel/platform/error.h"

namespace qorvel {
namespace {

std::string Utf16ToUtf8(std::string_view bytes) {
  std::string out;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    uint32_t c = uint8_t(bytes[i]) | uint8_t(bytes[i + 1]) << 8;
    if (c >= 0xD800 && c < 0xDC00 && i + 3 < bytes.size()) {
      const uint32_t low = uint8_t(bytes[i + 2]) | uint8_t(bytes[i + 3]) << 8;
      if (low >= 0xDC00 && low < 0xE000) {
        c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
        i += 2;
      }
    }
    if (c < 0x80) {
      out += char(c);
    } else if (c < 0x800) {
      out += char(0xC0 | c >> 6);
      out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      out += char(0xE0 | c >> 12);
      out += char(0x80 | (c >> 6 & 0x3F));
      out += char(0x80 | (c & 0x3F));
    } else {
      out += char(0xF0 | c >> 18);
      out += char(0x80 | (c >> 12 & 0x3F));
      out += char(0x80 | (c >> 6 & 0x3F));
      out += char(0x80 | (c & 0x3F));
    }
  }
  return out;
}

std::string_view TrimBlanks(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
    s.remove_suffix(1);
  return s;
}

class Parser {
 public:
  Parser(std::string_view source) : source_(source) {}

  std::vector<RegOp> Parse(std::string_view text);

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    Raise(err::kInvalidCall,
          std::string(source_) + ": line " + std::to_string(line_) + ": " + what);
  }
  void KeyLine(std::string_view line);
  void ValueLine(std::string_view line);
  std::string QuotedText(std::string_view& rest);
  RegValue Data(std::string_view rest);
  std::vector<uint8_t> HexBytes(std::string_view list);
  std::vector<uint8_t> CodePageText(const std::vector<uint8_t>& utf16);

  std::string_view source_;
  int line_ = 0;
  bool unicode_ = false;  // version 5 files hold text in hex(n) forms as UTF-16LE
  bool have_key_ = false;
  bool key_deleted_ = false;
  HKEY root_ = 0;
  std::string key_;
  std::vector<RegOp> ops_;
};

std::vector<RegOp> Parser::Parse(std::string_view text) {
  bool header = false;
  std::string logical;
  int logical_start = 0;
  size_t pos = 0;
  int number = 0;
  while (pos <= text.size()) {
    const size_t end = std::min(text.find('\n', pos), text.size());
    std::string_view raw = text.substr(pos, end - pos);
    pos = end + 1;
    ++number;
    if (!raw.empty() && raw.back() == '\r') raw.remove_suffix(1);
    if (logical.empty()) logical_start = number;
    raw = TrimBlanks(raw);  // a continuation's leading blanks don't count either
    // A value line ending in a backslash goes on in the next line; key lines and comments don't.
    const bool starts_value = !logical.empty() || (!raw.empty() && raw[0] != '[' && raw[0] != ';');
    if (starts_value && !raw.empty() && raw.back() == '\\') {
      logical.append(raw.substr(0, raw.size() - 1));
      if (pos <= text.size()) continue;
    } else {
      logical.append(raw);
    }
    line_ = logical_start;
    const std::string_view line = logical;
    if (!line.empty() && line[0] != ';') {
      if (!header) {
        if (line != "REGEDIT4" && line != "Windows Registry Editor Version 5.00") {
          Fail(
              "not a registry file (expected \"REGEDIT4\" or \"Windows Registry Editor Version "
              "5.00\")");
        }
        header = true;
        unicode_ = line != "REGEDIT4";
      } else if (line[0] == '[') {
        KeyLine(line);
      } else {
        ValueLine(line);
      }
    }
    logical.clear();
  }
  if (!header) Fail("empty file");
  return std::move(ops_);
}

void Parser::KeyLine(std::string_view line) {
  if (line.back() != ']') Fail("key line without its closing ']'");
  line = line.substr(1, line.size() - 2);
  const bool remove = !line.empty() && line[0] == '-';
  if (remove) line.remove_prefix(1);
  const size_t slash = line.find('\\');
  const auto root = RootKeyByName(line.substr(0, slash));
  if (!root) Fail("unknown root key \"" + std::string(line.substr(0, slash)) + "\"");
  root_ = *root;
  key_ = slash == std::string_view::npos ? "" : std::string(line.substr(slash + 1));
  if (remove && key_.find_first_not_of('\\') == std::string::npos)
    Fail("a root key can't be deleted");
  have_key_ = true;
  key_deleted_ = remove;
  ops_.push_back({remove ? RegOp::kDeleteKey : RegOp::kCreateKey, root_, key_, "", {}});
}

std::string Parser::QuotedText(std::string_view& rest) {
  if (rest.empty() || rest[0] != '"') Fail("expected a quoted text");
  std::string out;
  size_t i = 1;
  for (; i < rest.size() && rest[i] != '"'; ++i) {
    if (rest[i] == '\\') {
      if (++i == rest.size()) break;
      if (rest[i] != '\\' && rest[i] != '"') Fail("unknown escape \\" + std::string(1, rest[i]));
    }
    out += rest[i];
  }
  if (i >= rest.size()) Fail("text without its closing quote");
  rest.remove_prefix(i + 1);
  return out;
}

void Parser::ValueLine(std::string_view line) {
  if (!have_key_) Fail("value before any key");
  if (key_deleted_) Fail("value under a deleted key");
  std::string name;
  if (line[0] == '@') {
    line.remove_prefix(1);
  } else {
    name = QuotedText(line);
  }
  line = TrimBlanks(line);
  if (line.empty() || line[0] != '=') Fail("expected '=' after the value name");
  line = TrimBlanks(line.substr(1));
  if (line == "-") {
    ops_.push_back({RegOp::kDeleteValue, root_, key_, name, {}});
    return;
  }
  ops_.push_back({RegOp::kSetValue, root_, key_, name, Data(line)});
}

RegValue Parser::Data(std::string_view rest) {
  if (!rest.empty() && rest[0] == '"') {
    std::string text = QuotedText(rest);
    if (!TrimBlanks(rest).empty()) Fail("text after the closing quote");
    RegValue v{REG_SZ, {text.begin(), text.end()}};
    v.data.push_back(0);
    return v;
  }
  if (rest.starts_with("dword:")) {
    const std::string_view digits = rest.substr(6);
    uint32_t value = 0;
    auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (digits.empty() || digits.size() > 8 || ec != std::errc() ||
        end != digits.data() + digits.size()) {
      Fail("bad dword value \"" + std::string(digits) + "\"");
    }
    return RegValue{
        REG_DWORD,
        {uint8_t(value), uint8_t(value >> 8), uint8_t(value >> 16), uint8_t(value >> 24)}};
  }
  if (rest.starts_with("hex:")) return RegValue{REG_BINARY, HexBytes(rest.substr(4))};
  if (rest.starts_with("hex(")) {
    const size_t close = rest.find("):");
    uint32_t type = 0;
    const std::string_view digits = rest.substr(4, close == std::string_view::npos ? 0 : close - 4);
    auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), type, 16);
    if (close == std::string_view::npos || digits.empty() || ec != std::errc() ||
        end != digits.data() + digits.size()) {
      Fail("bad hex(n): type");
    }
    std::vector<uint8_t> bytes = HexBytes(rest.substr(close + 2));
    const bool text = type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
    if (text && unicode_) bytes = CodePageText(bytes);
    return RegValue{type, std::move(bytes)};
  }
  Fail("unknown value data \"" + std::string(rest) + "\"");
}

std::vector<uint8_t> Parser::HexBytes(std::string_view list) {
  std::vector<uint8_t> bytes;
  list = TrimBlanks(list);
  if (list.empty()) return bytes;
  for (size_t pos = 0; pos <= list.size();) {
    const size_t comma = std::min(list.find(',', pos), list.size());
    const std::string_view item = TrimBlanks(list.substr(pos, comma - pos));
    unsigned value = 0;
    auto [end, ec] = std::from_chars(item.data(), item.data() + item.size(), value, 16);
    if (item.empty() || item.size() > 2 || ec != std::errc() || end != item.data() + item.size()) {
      Fail("bad hex byte \"" + std::string(item) + "\"");
    }
    bytes.push_back(static_cast<uint8_t>(value));
    pos = comma + 1;
  }
  return bytes;
}

// Text the registry hands out through its single-byte calls is held in the code page, UTF-8.
std::vector<uint8_t> Parser::CodePageText(const std::vector<uint8_t>& utf16) {
  if (utf16.size() % 2 != 0) Fail("UTF-16 text with an odd number of bytes");
  const std::string text =
      Utf16ToUtf8(std::string_view(reinterpret_cast<const char*>(utf16.data()), utf16.size()));
  return {text.begin(), text.end()};
}

}  // namespace

std::vector<RegOp> ParseRegText(std::string_view bytes, std::string_view source_name) {
  std::string text;
  if (bytes.starts_with("\xFF\xFE")) {
    text = Utf16ToUtf8(bytes.substr(2));
  } else if (bytes.starts_with("\xEF\xBB\xBF")) {
    text = bytes.substr(3);
  } else {
    text = bytes;
  }
  return Parser(source_name).Parse(text);
}

}  // namespace qorvel
