#include "qorvel/platform/reg_file.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "qorvel/platform/error.h"
#include "qorvel/platform/file_bytes.h"

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
  RegKey root_ = 0;
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
  if (!header) {
    Raise(err::kInvalidCall,
          std::string(source_) + (text.empty() ? ": empty file"
                                               : ": no \"REGEDIT4\" or \"Windows Registry Editor "
                                                 "Version 5.00\" line"));
  }
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
    RegValue v{reg_type::kString, {text.begin(), text.end()}};
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
        reg_type::kDword,
        {uint8_t(value), uint8_t(value >> 8), uint8_t(value >> 16), uint8_t(value >> 24)}};
  }
  if (rest.starts_with("hex:")) return RegValue{reg_type::kBinary, HexBytes(rest.substr(4))};
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
    const bool text = type == reg_type::kString || type == reg_type::kExpandString ||
                      type == reg_type::kMultiString;
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

constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

[[noreturn]] void Refuse(std::string_view source, const std::string& what) {
  Raise(err::kInvalidCall, std::string(source) + ": " + what);
}

// The text a file's first bytes show when it is one the editor doesn't write: by its
// byte-order mark, or, without one, by where the zero bytes of its first characters stand (a
// registry file starts with plain ASCII).
std::optional<std::string> ForeignEncoding(std::string_view head) {
  using namespace std::string_view_literals;
  // The UTF-32 little-endian mark starts like UTF-16's, so it comes first.
  static constexpr std::pair<std::string_view, const char*> kMarks[] = {
      {"\xFF\xFE\0\0"sv, "UTF-32 little-endian text (byte-order mark FF FE 00 00)"},
      {"\0\0\xFE\xFF"sv, "UTF-32 big-endian text (byte-order mark 00 00 FE FF)"},
      {"\xFE\xFF"sv, "UTF-16 big-endian text (byte-order mark FE FF)"},
      {kUtf16Mark, nullptr},
      {kUtf8Mark, nullptr},
  };
  for (const auto& [mark, text] : kMarks) {
    if (head.starts_with(mark)) return text ? std::optional<std::string>(text) : std::nullopt;
  }
  if (head.size() < 4) return std::nullopt;
  int zeros = 0;  // one bit per byte, the first byte highest
  for (int i = 0; i < 4; ++i) zeros = zeros << 1 | (head[i] == '\0');
  switch (zeros) {
    case 0b0111:
      return "UTF-32 little-endian text without a byte-order mark (three zero bytes after each "
             "character)";
    case 0b1110:
      return "UTF-32 big-endian text without a byte-order mark (three zero bytes before each "
             "character)";
    case 0b0101:
      return "UTF-16 little-endian text without a byte-order mark (zero bytes at odd offsets)";
    case 0b1010:
      return "UTF-16 big-endian text without a byte-order mark (zero bytes at even offsets)";
  }
  return std::nullopt;
}

// Refuses bytes that can't be the text of a registry file: text in a foreign encoding, or a
// zero byte where text has none (binary data). Works on the first bytes of a file as well as on
// all of them, so a reader can stop early.
void CheckEncoding(std::string_view bytes, std::string_view source) {
  if (const auto foreign = ForeignEncoding(bytes)) {
    Refuse(source, *foreign +
                       "; a registry file is UTF-8, or UTF-16 little-endian with its byte-order "
                       "mark FF FE");
  }
  if (bytes.starts_with(kUtf16Mark)) {
    for (size_t i = kUtf16Mark.size(); i + 1 < bytes.size(); i += 2) {
      if (bytes[i] == '\0' && bytes[i + 1] == '\0') {
        Refuse(source, "a zero character at offset " + std::to_string(i) +
                           ", which no text holds: binary data?");
      }
    }
  } else if (const size_t zero = bytes.find('\0'); zero != std::string_view::npos) {
    Refuse(source,
           "a zero byte at offset " + std::to_string(zero) + ", which no text holds: binary data?");
  }
}

}  // namespace

std::string ReadRegFile(const std::string& path, size_t limit) {
  return ReadFileBytes(path, limit, "a registry file",
                       [&](std::string_view start) { CheckEncoding(start, path); });
}

std::vector<RegOp> ParseRegText(std::string_view bytes, std::string_view source_name) {
  CheckEncoding(bytes, source_name);
  std::string text;
  if (bytes.starts_with(kUtf16Mark)) {
    if (bytes.size() % 2 != 0) {
      Refuse(source_name,
             "UTF-16 text cut off in the middle of a character (an odd number of bytes)");
    }
    text = Utf16ToUtf8(bytes.substr(2));
  } else if (bytes.starts_with(kUtf8Mark)) {
    text = bytes.substr(kUtf8Mark.size());
  } else {
    text = bytes;
  }
  return Parser(source_name).Parse(text);
}

}  // namespace qorvel
