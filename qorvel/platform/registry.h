#ifndef QORVEL_PLATFORM_REGISTRY_H_
#define QORVEL_PLATFORM_REGISTRY_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qorvel {

// A key handle: a root key, always open, or a key RegOpenKeyA opened. The numbers below (roots,
// value types, status codes) are the platform's own, so a Win32 registry passes them through.
using RegKey = uint32_t;

namespace root_key {
inline constexpr RegKey kClassesRoot = 0x80000000;
inline constexpr RegKey kCurrentUser = 0x80000001;
inline constexpr RegKey kLocalMachine = 0x80000002;
inline constexpr RegKey kUsers = 0x80000003;
inline constexpr RegKey kCurrentConfig = 0x80000005;
}  // namespace root_key

// The type of a value as stored.
namespace reg_type {
inline constexpr uint32_t kNone = 0;
inline constexpr uint32_t kString = 1;
inline constexpr uint32_t kExpandString = 2;  // text with %VARIABLES% left for the reader
inline constexpr uint32_t kBinary = 3;
inline constexpr uint32_t kDword = 4;        // little-endian
inline constexpr uint32_t kMultiString = 7;  // texts each ending in a zero, then one more zero
inline constexpr uint32_t kQword = 11;       // little-endian
}  // namespace reg_type

// What the read calls return.
namespace reg_status {
inline constexpr int32_t kSuccess = 0;
inline constexpr int32_t kFileNotFound = 2;  // no such key or value
inline constexpr int32_t kInvalidHandle = 6;
inline constexpr int32_t kInvalidParameter = 87;
inline constexpr int32_t kMoreData = 234;  // the buffer is too small for the value
}  // namespace reg_status

struct RegValue {
  uint32_t type = reg_type::kNone;
  std::vector<uint8_t> data;  // the bytes as stored; text types hold their terminating zero
  bool operator==(const RegValue&) const = default;
};

// The most a .reg file may hold. The editor's own files are far smaller; the cap keeps a device
// or a pipe that never ends from filling memory.
inline constexpr size_t kMaxRegFileBytes = size_t{256} << 20;

// One change a .reg file asks for.
struct RegOp {
  enum Kind { kCreateKey, kDeleteKey, kSetValue, kDeleteValue } kind;
  RegKey root;
  std::string key;
  std::string name;  // empty for the default value
  RegValue value;
};

// The registry: hives of keys with typed values. Key and value names match without regard to
// case. Reads go through calls shaped like the platform's single-byte registry functions, down
// to the byte counts; writes are for installers, tests and scripts.
class Registry {
 public:
  virtual ~Registry() = default;

  // A handle is valid from a successful open to its close; the roots are always open.
  virtual int32_t RegOpenKeyA(RegKey root, std::string_view sub_key, RegKey* result) = 0;
  // `size` is the buffer's size on the way in and the value's size in bytes on the way out;
  // a value larger than the buffer gives reg_status::kMoreData and copies nothing.
  virtual int32_t RegQueryValueExA(RegKey key, std::string_view value_name, uint32_t* reserved,
                                   uint32_t* type, uint8_t* data, uint32_t* size) = 0;
  virtual int32_t RegCloseKey(RegKey key) = 0;

  // Writes below an unknown root raise error 5.
  virtual void SetValue(RegKey root, std::string_view key, std::string_view name,
                        RegValue value) = 0;
  virtual void CreateKey(RegKey root, std::string_view key) = 0;
  virtual void DeleteKey(RegKey root, std::string_view key) = 0;  // with everything below it
  virtual void DeleteValue(RegKey root, std::string_view key, std::string_view name) = 0;
  // Applies the changes of one .reg file together.
  virtual void Apply(const std::vector<RegOp>& ops) = 0;

  virtual std::optional<RegValue> GetValue(RegKey root, std::string_view key,
                                           std::string_view name) const = 0;
  virtual bool KeyExists(RegKey root, std::string_view key) const = 0;
  // Every key below `key`, as full upper-cased paths ("HKEY_CURRENT_USER\\A\\B").
  virtual std::vector<std::string> KeysBelow(RegKey root, std::string_view key) const = 0;

  // A stamp that changes with every write and differs between registries, so readers can keep
  // what they read last and look again only when it moved.
  virtual uint64_t generation() const = 0;

  void SetString(RegKey root, std::string_view key, std::string_view name, std::string_view text);
  void SetDword(RegKey root, std::string_view key, std::string_view name, uint32_t value);

  // Loads a .reg file ("REGEDIT4" or "Windows Registry Editor Version 5.00", UTF-8 or UTF-16LE
  // with its byte-order mark). A missing file raises error 53. Anything else that isn't such a
  // file raises error 5 whose description names the source and says what is wrong: the line of
  // a malformed one, the encoding of text in another, a directory, a file of more than
  // `max_bytes`, one that can't be read. Nothing of a refused file is applied.
  void LoadRegFile(const std::string& path, size_t max_bytes = kMaxRegFileBytes);
  void LoadRegText(std::string_view bytes, std::string_view source_name);
};

// Root keys by their names in .reg files: "HKEY_LOCAL_MACHINE", "HKLM", ...
std::optional<RegKey> RootKeyByName(std::string_view name);

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_REGISTRY_H_
