#include "qorvel/platform/memory_registry.h"

#include <algorithm>
#include <cstdio>

#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"

namespace qorvel {
namespace {

std::string Trimmed(std::string_view key) {
  while (!key.empty() && key.front() == '\\') key.remove_prefix(1);
  while (!key.empty() && key.back() == '\\') key.remove_suffix(1);
  return std::string(key);
}

bool IsRoot(RegKey key) {
  return key == root_key::kClassesRoot || key == root_key::kCurrentUser ||
         key == root_key::kLocalMachine || key == root_key::kUsers ||
         key == root_key::kCurrentConfig;
}

std::string RootPath(RegKey root) {
  char text[16];
  std::snprintf(text, sizeof text, "%08X", root);
  return text;
}

// The long name of a root for paths shown to people; the stored form is the root's number.
std::string RootName(RegKey root) {
  switch (root) {
    case root_key::kClassesRoot:
      return "HKEY_CLASSES_ROOT";
    case root_key::kCurrentUser:
      return "HKEY_CURRENT_USER";
    case root_key::kLocalMachine:
      return "HKEY_LOCAL_MACHINE";
    case root_key::kUsers:
      return "HKEY_USERS";
    case root_key::kCurrentConfig:
      return "HKEY_CURRENT_CONFIG";
  }
  return RootPath(root);
}

// Stamps are unique across registries, so a reader never mistakes one for another.
uint64_t NextGeneration() {
  static std::atomic<uint64_t> last{0};
  return ++last;
}

}  // namespace

MemoryRegistry::MemoryRegistry() : generation_(NextGeneration()) {}

void MemoryRegistry::Touch() { generation_.store(NextGeneration(), std::memory_order_release); }

// A path below a root or below an open handle; empty when the base is neither.
std::string MemoryRegistry::PathOf(RegKey root, std::string_view key) const {
  std::string base;
  if (IsRoot(root)) {
    base = RootPath(root);
  } else if (auto h = handles_.find(root); h != handles_.end()) {
    base = h->second;
  } else {
    return "";
  }
  const std::string rest = UpperCase(Trimmed(key));
  return rest.empty() ? base : base + "\\" + rest;
}

MemoryRegistry::KeyData& MemoryRegistry::MakeKey(const std::string& path) {
  if (path.empty()) Raise(err::kInvalidCall);
  for (size_t pos = path.find('\\'); pos != std::string::npos; pos = path.find('\\', pos + 1)) {
    keys_[path.substr(0, pos)];
  }
  return keys_[path];
}

// Keys below `path` sort together after "path\\", but not right after `path` itself: a sibling
// such as "path2" sorts in between, so the subtree is found by its own prefix.
void MemoryRegistry::DeleteTree(const std::string& path) {
  keys_.erase(path);
  const std::string prefix = path + "\\";
  auto it = keys_.lower_bound(prefix);
  while (it != keys_.end() && it->first.starts_with(prefix)) it = keys_.erase(it);
}

int32_t MemoryRegistry::RegOpenKeyA(RegKey root, std::string_view sub_key, RegKey* result) {
  if (result == nullptr) return reg_status::kInvalidParameter;
  std::lock_guard lock(mu_);
  const std::string path = PathOf(root, sub_key);
  if (path.empty()) return reg_status::kInvalidHandle;
  if (path.find('\\') != std::string::npos && !keys_.contains(path))
    return reg_status::kFileNotFound;
  const RegKey handle = next_handle_++;
  handles_[handle] = path;
  *result = handle;
  return reg_status::kSuccess;
}

int32_t MemoryRegistry::RegQueryValueExA(RegKey key, std::string_view value_name, uint32_t*,
                                         uint32_t* type, uint8_t* data, uint32_t* size) {
  std::lock_guard lock(mu_);
  const std::string path = PathOf(key, "");  // an open handle, or a root itself
  if (path.empty()) return reg_status::kInvalidHandle;
  auto k = keys_.find(path);
  if (k == keys_.end()) return reg_status::kFileNotFound;
  auto v = k->second.values.find(UpperCase(value_name));
  if (v == k->second.values.end()) return reg_status::kFileNotFound;
  return CopyValueOut(v->second, type, data, size);
}

int32_t MemoryRegistry::RegQueryInfoKeyA(RegKey key, uint32_t* sub_keys) {
  std::lock_guard lock(mu_);
  const std::string path = PathOf(key, "");
  if (path.empty()) return reg_status::kInvalidHandle;
  if (path.find('\\') != std::string::npos && !keys_.contains(path)) {
    return reg_status::kFileNotFound;  // deleted while open
  }
  const std::string prefix = path + "\\";
  uint32_t count = 0;
  for (auto it = keys_.lower_bound(prefix); it != keys_.end() && it->first.starts_with(prefix);
       ++it) {
    if (it->first.find('\\', prefix.size()) == std::string::npos) ++count;
  }
  if (sub_keys) *sub_keys = count;
  return reg_status::kSuccess;
}

int32_t MemoryRegistry::RegCloseKey(RegKey key) {
  std::lock_guard lock(mu_);
  if (IsRoot(key)) return reg_status::kSuccess;  // the roots stay open
  return handles_.erase(key) == 1 ? reg_status::kSuccess : reg_status::kInvalidHandle;
}

void MemoryRegistry::SetValue(RegKey root, std::string_view key, std::string_view name,
                              RegValue value) {
  std::lock_guard lock(mu_);
  MakeKey(PathOf(root, key)).values[UpperCase(name)] = std::move(value);
  Touch();
}

void MemoryRegistry::CreateKey(RegKey root, std::string_view key) {
  std::lock_guard lock(mu_);
  MakeKey(PathOf(root, key));
  Touch();
}

void MemoryRegistry::DeleteKey(RegKey root, std::string_view key) {
  std::lock_guard lock(mu_);
  DeleteTree(PathOf(root, key));
  Touch();
}

void MemoryRegistry::DeleteValue(RegKey root, std::string_view key, std::string_view name) {
  std::lock_guard lock(mu_);
  if (auto k = keys_.find(PathOf(root, key)); k != keys_.end())
    k->second.values.erase(UpperCase(name));
  Touch();
}

std::optional<RegValue> MemoryRegistry::GetValue(RegKey root, std::string_view key,
                                                 std::string_view name) const {
  std::lock_guard lock(mu_);
  auto k = keys_.find(PathOf(root, key));
  if (k == keys_.end()) return std::nullopt;
  auto v = k->second.values.find(UpperCase(name));
  if (v == k->second.values.end()) return std::nullopt;
  return v->second;
}

bool MemoryRegistry::KeyExists(RegKey root, std::string_view key) const {
  std::lock_guard lock(mu_);
  return keys_.contains(PathOf(root, key));
}

std::vector<std::string> MemoryRegistry::KeysBelow(RegKey root, std::string_view key) const {
  std::lock_guard lock(mu_);
  const std::string path = PathOf(root, key);
  const std::string prefix = path + "\\";
  std::vector<std::string> out;
  for (auto it = keys_.lower_bound(prefix); it != keys_.end() && it->first.starts_with(prefix);
       ++it) {
    const RegKey root_of_key = static_cast<RegKey>(std::stoul(it->first.substr(0, 8), nullptr, 16));
    out.push_back(RootName(root_of_key) + it->first.substr(8));
  }
  return out;
}

void MemoryRegistry::Apply(const std::vector<RegOp>& ops) {
  std::lock_guard lock(mu_);
  for (const RegOp& op : ops) {
    const std::string path = PathOf(op.root, op.key);
    switch (op.kind) {
      case RegOp::kCreateKey:
        MakeKey(path);
        break;
      case RegOp::kDeleteKey:
        DeleteTree(path);
        break;
      case RegOp::kSetValue:
        MakeKey(path).values[UpperCase(op.name)] = op.value;
        break;
      case RegOp::kDeleteValue:
        MakeKey(path).values.erase(UpperCase(op.name));
        break;
    }
  }
  Touch();
}

void MemoryRegistry::LoadRegFile(const std::string& path, size_t max_bytes) {
  LoadRegText(ReadRegFile(path, max_bytes), path);
}

// The whole file is read before anything is applied, so a malformed one changes nothing.
void MemoryRegistry::LoadRegText(std::string_view bytes, std::string_view source_name) {
  Apply(ParseRegText(bytes, source_name));
}

}  // namespace qorvel
