#ifndef QORVEL_PLATFORM_MEMORY_REGISTRY_H_
#define QORVEL_PLATFORM_MEMORY_REGISTRY_H_

#include <atomic>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "qorvel/platform/reg_file.h"
#include "qorvel/platform/registry.h"

namespace qorvel {

// The portable registry: every hive held in memory, filled by .reg files and installers. Beside
// the platform's calls it offers what only an in-memory hive can: a whole file applied or
// nothing of it, listings, and a stamp of its last write.
class MemoryRegistry final : public Registry {
 public:
  MemoryRegistry();

  int32_t RegOpenKeyA(RegKey root, std::string_view sub_key, RegKey* result) override;
  int32_t RegQueryValueExA(RegKey key, std::string_view value_name, uint32_t* reserved,
                           uint32_t* type, uint8_t* data, uint32_t* size) override;
  int32_t RegQueryInfoKeyA(RegKey key, uint32_t* sub_keys) override;
  int32_t RegCloseKey(RegKey key) override;

  void SetValue(RegKey root, std::string_view key, std::string_view name, RegValue value) override;
  void CreateKey(RegKey root, std::string_view key) override;
  void DeleteKey(RegKey root, std::string_view key) override;
  void DeleteValue(RegKey root, std::string_view key, std::string_view name) override;
  std::optional<RegValue> GetValue(RegKey root, std::string_view key,
                                   std::string_view name) const override;

  // Applies the changes of one .reg file together.
  void Apply(const std::vector<RegOp>& ops);
  // Loads a .reg file ("REGEDIT4" or "Windows Registry Editor Version 5.00", UTF-8 or UTF-16LE
  // with its byte-order mark). A missing file raises error 53. Anything else that isn't such a
  // file raises error 5 whose description names the source and says what is wrong: the line of
  // a malformed one, the encoding of text in another, a directory, a file of more than
  // `max_bytes`, one that can't be read. Nothing of a refused file is applied.
  void LoadRegFile(const std::string& path, size_t max_bytes = kMaxRegFileBytes);
  void LoadRegText(std::string_view bytes, std::string_view source_name);

  bool KeyExists(RegKey root, std::string_view key) const;
  // Every key below `key`, as full upper-cased paths ("HKEY_CURRENT_USER\\A\\B").
  std::vector<std::string> KeysBelow(RegKey root, std::string_view key) const;

  // A stamp that changes with every write and differs between registries, so readers can keep
  // what they read last and look again only when it moved.
  uint64_t generation() const { return generation_.load(std::memory_order_acquire); }

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
