// The .reg loader on a registry that already holds a few keys. The first byte picks how the
// rest reaches the loader: as it is, behind a UTF-8 mark, re-encoded as UTF-16LE behind its
// mark, or as raw UTF-16LE code units behind the mark. A refused file must leave the registry
// exactly as it was; an accepted one, loaded again, must change nothing.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/property.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/memory_registry.h"
#include "qorvel/platform/reg_file.h"

namespace qorvel {
namespace {

using fuzz::Expect;

constexpr RegKey kRoots[] = {root_key::kClassesRoot, root_key::kCurrentUser,
                             root_key::kLocalMachine, root_key::kUsers, root_key::kCurrentConfig};
constexpr const char* kSource = "fuzz.reg";

// Keys and values a file is likely to name, so that its deletes and overwrites meet something.
void Seed(Registry& registry) {
  registry.SetString(root_key::kLocalMachine, "SOFTWARE\\Halvern\\Exec\\tarvik", "CurrentVersion",
                     "2620");
  registry.SetString(root_key::kLocalMachine, "SOFTWARE\\Halvern\\tarvik\\2620", "ExecutablePath",
                     "C:\\Program Files\\Halvern\\Tarvik\\2620\\tarvik.exe");
  registry.SetString(root_key::kCurrentUser, "Control Panel\\International", "sDecimal", ",");
  registry.SetDword(root_key::kCurrentUser, "Software\\Test", "Count", 7);
  registry.SetString(root_key::kClassesRoot, "Tarvik.Document\\CLSID", "", "{0000}");
  registry.SetString(root_key::kCurrentUser, "", "AtRoot", "x");
}
constexpr const char* kSeedNames[] = {
    "", "CurrentVersion", "ExecutablePath", "sDecimal", "Count", "AtRoot", "Test"};

// Valid UTF-8 sequences as code points; any other byte as the code point of its value, so
// every byte of the input survives the trip to UTF-16.
std::string Utf16FromBytes(std::string_view bytes) {
  std::string out = "\xFF\xFE";
  auto unit = [&out](uint32_t u) {
    out += char(u & 0xFF);
    out += char(u >> 8);
  };
  for (size_t i = 0; i < bytes.size();) {
    const uint8_t b = bytes[i];
    const int length = b >= 0xF0 ? 4 : b >= 0xE0 ? 3 : b >= 0xC0 ? 2 : 1;
    uint32_t c = b;
    bool valid = length > 1 && i + length <= bytes.size();
    if (valid) {
      c = b & (0x7F >> length);
      for (int k = 1; k < length; ++k) {
        const uint8_t next = bytes[i + k];
        valid = valid && (next & 0xC0) == 0x80;
        c = c << 6 | (next & 0x3F);
      }
      valid = valid && c <= 0x10FFFF;
    }
    if (!valid) c = b;
    i += valid ? length : 1;
    if (c >= 0x10000) {
      unit(0xD800 + ((c - 0x10000) >> 10));
      unit(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
      unit(c);
    }
  }
  return out;
}

std::string Encoded(uint8_t mode, std::string_view rest) {
  switch (mode & 3) {
    case 0:
      return std::string(rest);
    case 1:
      return "\xEF\xBB\xBF" + std::string(rest);
    case 2:
      return Utf16FromBytes(rest);
    default:
      return "\xFF\xFE" + std::string(rest);
  }
}

// The value names the input's lines start with, so that a snapshot looks at them even when the
// file is refused and its changes can't be listed.
void AddValueNames(std::string_view text, std::set<std::string>& names) {
  for (size_t line = 0; line < text.size() && names.size() < 32;) {
    const size_t end = std::min(text.find('\n', line), text.size());
    size_t i = text.find_first_not_of(" \t", line);
    if (i < end && text[i] == '"') {
      std::string name;
      for (++i; i < end && text[i] != '"'; ++i) {
        if (text[i] == '\\' && i + 1 < end) ++i;
        name += text[i];
      }
      names.insert(name);
    }
    line = end + 1;
  }
}

// Every key of every root, and the probed values of each, in the order of the keys.
struct Snapshot {
  std::vector<std::string> keys;
  std::vector<std::optional<RegValue>> values;
  bool operator==(const Snapshot&) const = default;
};

Snapshot Take(const MemoryRegistry& registry, const std::set<std::string>& names) {
  Snapshot s;
  for (RegKey root : kRoots) {
    s.keys.push_back(registry.KeyExists(root, "") ? "+" : "-");
    std::vector<std::string> subkeys = {""};
    for (const std::string& key : registry.KeysBelow(root, "")) {
      s.keys.push_back(key);
      const size_t slash = key.find('\\');
      subkeys.push_back(slash == std::string::npos ? "" : key.substr(slash + 1));
    }
    for (const std::string& sub : subkeys) {
      for (const std::string& name : names) s.values.push_back(registry.GetValue(root, sub, name));
    }
  }
  return s;
}

}  // namespace
}  // namespace qorvel

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace qorvel;
  if (size == 0) return 0;
  const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::string file = Encoded(data[0], rest);

  MemoryRegistry registry;
  Seed(registry);
  std::set<std::string> names(std::begin(kSeedNames), std::end(kSeedNames));
  AddValueNames(rest, names);
  const Snapshot before = Take(registry, names);
  const uint64_t stamp = registry.generation();

  try {
    registry.LoadRegText(file, kSource);
  } catch (const Error& e) {
    Expect(e.number() == err::kInvalidCall, "a refused file raises error 5");
    Expect(e.description().starts_with(std::string(kSource) + ": "),
           "a refusal names the source and what is wrong");
    Expect(registry.generation() == stamp, "a refused file leaves the write stamp alone");
    Expect(Take(registry, names) == before, "a refused file leaves the registry as it was");
    return 0;
  }

  for (const RegOp& op : ParseRegText(file, kSource)) names.insert(op.name);
  const Snapshot once = Take(registry, names);
  try {
    registry.LoadRegText(file, kSource);
  } catch (const Error&) {
    fuzz::Broken("a file loaded once is refused the second time");
  }
  Expect(Take(registry, names) == once, "a file loaded twice gives what it gave once");
  return 0;
}
