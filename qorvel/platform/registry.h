#ifndef QORVEL_PLATFORM_REGISTRY_H_
#define QORVEL_PLATFORM_REGISTRY_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
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

// The registry: hives of keys with typed values. Key and value names match without regard to
// case. Reads go through calls shaped like the platform's single-byte registry functions, down
// to the byte counts; the writes are the ones registration and the regional settings make. All
// of it is what the Win32 registry functions can do.
class Registry {
 public:
  virtual ~Registry() = default;

  // A handle is valid from a successful open to its close; the roots are always open.
  virtual int32_t RegOpenKeyA(RegKey root, std::string_view sub_key, RegKey* result) = 0;
  // `size` is the buffer's size on the way in and the value's size in bytes on the way out;
  // a value larger than the buffer gives reg_status::kMoreData and copies nothing.
  virtual int32_t RegQueryValueExA(RegKey key, std::string_view value_name, uint32_t* reserved,
                                   uint32_t* type, uint8_t* data, uint32_t* size) = 0;
  // How many keys sit directly below an open key; the platform call's other counts aren't needed.
  virtual int32_t RegQueryInfoKeyA(RegKey key, uint32_t* sub_keys) = 0;
  virtual int32_t RegCloseKey(RegKey key) = 0;

  // Writes below an unknown root raise error 5.
  virtual void SetValue(RegKey root, std::string_view key, std::string_view name,
                        RegValue value) = 0;
  virtual void CreateKey(RegKey root, std::string_view key) = 0;
  virtual void DeleteKey(RegKey root, std::string_view key) = 0;  // with everything below it
  virtual void DeleteValue(RegKey root, std::string_view key, std::string_view name) = 0;

  virtual std::optional<RegValue> GetValue(RegKey root, std::string_view key,
                                           std::string_view name) const = 0;

  void SetString(RegKey root, std::string_view key, std::string_view name, std::string_view text);
  void SetDword(RegKey root, std::string_view key, std::string_view name, uint32_t value);
};

// The answer of a read of `value` into a caller's buffer, as RegQueryValueExA gives it: its type
// and size always, its bytes when `data` is there and `size` says they fit, kMoreData when not.
int32_t CopyValueOut(const RegValue& value, uint32_t* type, uint8_t* data, uint32_t* size);

// Passes every call on to another registry, so an observing wrapper overrides only what it
// watches.
class RegistryWrapper : public Registry {
 public:
  explicit RegistryWrapper(Registry& target) : target_(target) {}
  Registry& target() const { return target_; }

  int32_t RegOpenKeyA(RegKey root, std::string_view sub_key, RegKey* result) override {
    return target_.RegOpenKeyA(root, sub_key, result);
  }
  int32_t RegQueryValueExA(RegKey key, std::string_view value_name, uint32_t* reserved,
                           uint32_t* type, uint8_t* data, uint32_t* size) override {
    return target_.RegQueryValueExA(key, value_name, reserved, type, data, size);
  }
  int32_t RegQueryInfoKeyA(RegKey key, uint32_t* sub_keys) override {
    return target_.RegQueryInfoKeyA(key, sub_keys);
  }
  int32_t RegCloseKey(RegKey key) override { return target_.RegCloseKey(key); }
  void SetValue(RegKey root, std::string_view key, std::string_view name, RegValue value) override {
    target_.SetValue(root, key, name, std::move(value));
  }
  void CreateKey(RegKey root, std::string_view key) override { target_.CreateKey(root, key); }
  void DeleteKey(RegKey root, std::string_view key) override { target_.DeleteKey(root, key); }
  void DeleteValue(RegKey root, std::string_view key, std::string_view name) override {
    target_.DeleteValue(root, key, name);
  }
  std::optional<RegValue> GetValue(RegKey root, std::string_view key,
                                   std::string_view name) const override {
    return target_.GetValue(root, key, name);
  }

 private:
  Registry& target_;
};

// Root keys by their names in .reg files: "HKEY_LOCAL_MACHINE", "HKLM", ...
std::optional<RegKey> RootKeyByName(std::string_view name);

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_REGISTRY_H_
