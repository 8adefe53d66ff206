#include "windows/typelib/version_resource.h"

#include <charconv>
#include <optional>
#include <string_view>
#include <vector>

namespace qorvel {
namespace {

// "1.00.0005" as major.minor.revision, the build number left 0: "1,0,0,5".
std::optional<std::string> NumericVersion(std::string_view text) {
  std::vector<unsigned> parts;
  while (true) {
    const size_t dot = text.find('.');
    const std::string_view part = text.substr(0, dot);
    unsigned value = 0;
    auto [end, ec] = std::from_chars(part.data(), part.data() + part.size(), value);
    if (part.empty() || ec != std::errc() || end != part.data() + part.size() || value > 0xffff) {
      return std::nullopt;
    }
    parts.push_back(value);
    if (dot == std::string_view::npos) break;
    text.remove_prefix(dot + 1);
  }
  if (parts.size() != 3) return std::nullopt;
  return std::to_string(parts[0]) + "," + std::to_string(parts[1]) + ",0," +
         std::to_string(parts[2]);
}

// A resource script string: quotes doubled, and nothing that isn't printable ASCII.
std::optional<std::string> RcString(std::string_view text) {
  std::string out = "\"";
  for (char c : text) {
    if (c < 0x20 || c > 0x7e) return std::nullopt;
    out += c;
    if (c == '"') out += '"';
  }
  return out + "\"";
}

std::string Find(const TypeLibrary& lib, std::string_view key) {
  for (const auto& [name, value] : lib.version_block) {
    if (name == key) return value;
  }
  return {};
}

}  // namespace

std::string VersionResourceText(const TypeLibrary& lib) {
  const auto file_version = NumericVersion(Find(lib, "FileVersion"));
  const auto product_version = NumericVersion(Find(lib, "ProductVersion"));
  if (!file_version || !product_version) return {};
  std::string out = "// Generated from the type library table by make_typelib.\n";
  out += "1 VERSIONINFO\n";
  out += "FILEVERSION " + *file_version + "\n";
  out += "PRODUCTVERSION " + *product_version + "\n";
  out += "FILEFLAGSMASK 0x3f\nFILEFLAGS 0x0\nFILEOS 0x4\nFILETYPE 0x2\nFILESUBTYPE 0x0\n";
  out += "BEGIN\n  BLOCK \"StringFileInfo\"\n  BEGIN\n    BLOCK \"040904e4\"\n    BEGIN\n";
  for (const auto& [name, value] : lib.version_block) {
    const auto key = RcString(name), text = RcString(value);
    if (!key || !text) return {};
    out += "      VALUE " + *key + ", " + *text + "\n";
  }
  out += "    END\n  END\n  BLOCK \"VarFileInfo\"\n  BEGIN\n";
  out += "    VALUE \"Translation\", 0x409, 1252\n  END\nEND\n";
  return out;
}

}  // namespace qorvel
