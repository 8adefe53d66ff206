#ifndef QORVEL_PLATFORM_REGISTRY_WINDOWS_H_
#define QORVEL_PLATFORM_REGISTRY_WINDOWS_H_

#include <windows.h>

#include <map>
#include <mutex>

#include "qorvel/platform/registry.h"

namespace qorvel::win {

// The system registry. A key handle is a pointer on 64-bit Windows and doesn't fit a RegKey, so
// the keys opened here are numbered in a table; the roots keep their own numbers. Text crosses
// in the library's code page, UTF-8: names and text values go through the wide calls, and text
// values come back as UTF-8 with their byte counts.
class WindowsRegistry final : public Registry {
 public:
  WindowsRegistry() = default;
  WindowsRegistry(const WindowsRegistry&) = delete;
  WindowsRegistry& operator=(const WindowsRegistry&) = delete;
  ~WindowsRegistry() override;

  int32_t RegOpenKeyA(RegKey root, std::string_view sub_key, RegKey* result) override;
  int32_t RegQueryValueExA(RegKey key, std::string_view value_name, uint32_t* reserved,
                           uint32_t* type, uint8_t* data, uint32_t* size) override;
  int32_t RegQueryInfoKeyA(RegKey key, uint32_t* sub_keys) override;
  int32_t RegCloseKey(RegKey key) override;

  // A write the system refuses (an unknown root, no access) raises error 5; deleting what
  // isn't there is no error.
  void SetValue(RegKey root, std::string_view key, std::string_view name, RegValue value) override;
  void CreateKey(RegKey root, std::string_view key) override;
  void DeleteKey(RegKey root, std::string_view key) override;
  void DeleteValue(RegKey root, std::string_view key, std::string_view name) override;
  std::optional<RegValue> GetValue(RegKey root, std::string_view key,
                                   std::string_view name) const override;

 private:
  // The system's key for a root or an open handle; nullptr for neither. Called under mu_.
  HKEY KeyOf(RegKey key) const;

  mutable std::mutex mu_;  // held across each call that uses an open handle, so none closes it
  std::map<RegKey, HKEY> handles_;
  RegKey next_handle_ = 0x100;
};

}  // namespace qorvel::win

#endif  // QORVEL_PLATFORM_REGISTRY_WINDOWS_H_
