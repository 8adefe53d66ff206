#ifndef QORVEL_PLATFORM_MEMORY_REGISTRY_H_
#define QORVEL_PLATFORM_MEMORY_REGISTRY_H_

#include <atomic>
#include <map>
#include <mutex>

#include "qorvel/platform/registry.h"

namespace qorvel {

// The portable registry: every hive held in memory, filled by .reg files and installers.
class MemoryRegistry final : public Registry {
 public:
  MemoryRegistry();

  int32_t RegOpenKeyA(RegKey root, std::string_view sub_key, RegKey* result) override;
  int32_t RegQueryValueExA(RegKey key, std::string_view value_name, uint32_t* reserved,
                           uint32_t* type, uint8_t* data, uint32_t* size) override;
  int32_t RegCloseKey(RegKey key) override;

  void SetValue(RegKey root, std::string_view key, std::string_view name, RegValue value) override;
  void CreateKey(RegKey root, std::string_view key) override;
  void DeleteKey(RegKey root, std::string_view key) override;
  void DeleteValue(RegKey root, std::string_view key, std::string_view name) override;
  void Apply(const std::vector<RegOp>& ops) override;

  std::optional<RegValue> GetValue(RegKey root, std::string_view key,
                                   std::string_view name) const override;
  bool KeyExists(RegKey root, std::string_view key) const override;
  std::vector<std::string> KeysBelow(RegKey root, std::string_view key) const override;
  uint64_t generation() const override { return generation_.load(std::memory_order_acquire); }

 private:
  struct KeyData {
    std::map<std::string, RegValue> values;  // by upper-cased value name
  };
  // Keys are held flat under their full upper-cased paths: "80000002\\SOFTWARE\\HALVERN".
  std::string PathOf(RegKey root, std::string_view key) const;
  KeyData& MakeKey(const std::string& path);
  void DeleteTree(const std::string& path);
  void Touch();

  mutable std::mutex mu_;
  std::map<std::string, KeyData> keys_;
  std::map<RegKey, std::string> handles_;  // open handle -> key path
  RegKey next_handle_ = 0x100;
  std::atomic<uint64_t> generation_;
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_MEMORY_REGISTRY_H_
