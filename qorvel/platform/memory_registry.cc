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

bool IsRoot(HKEY key) {
  return key == HKEY_CLASSES_ROOT || key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE ||
         key == HKEY_USERS || key == HKEY_CURRENT_CONFIG;
}

std::string RootPath(HKEY root) {
  char text[16];
  std::snprintf(text, sizeof text, "%08X", root);
  return text;
}

// The long name of a root for paths shown to people; the stored form is the root's number.
std::string RootName(HKEY root) {
  switch (root) {
    case HKEY_CLASSES_ROOT:
      return "HKEY_CLASSES_ROOT";
    case HKEY_CURRENT_USER:
      return "HKEY_CURRENT_USER";
    case HKEY_LOCAL_MACHINE:
      return "HKEY_LOCAL_MACHINE";
    case HKEY_USERS:
      return "HKEY_USERS";
    case HKEY_CURRENT_CONFIG:
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
std::string MemoryRegistry::PathOf(HKEY root, std::string_view key) const {
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

int32_t MemoryRegistry::RegOpenKeyA(HKEY root, std::string_view sub_key, HKEY* result) {
  if (result == nullptr) return ERROR_INVALID_PARAMETER;
  std::lock_guard lock(mu_);
  const std::string path = PathOf(root, sub_key);
  if (path.empty()) return ERROR_INVALID_HANDLE;
  if (path.find('\\') != std::string::npos && !keys_.contains(path)) return ERROR_FILE_NOT_FOUND;
  const HKEY handle = next_handle_++;
  handles_[handle] = path;
  *result = handle;
  return ERROR_SUCCESS;
}

int32_t MemoryRegistry::RegQueryValueExA(HKEY key, std::string_view value_name, uint32_t*,
                                         uint32_t* type, uint8_t* data, uint32_t* size) {
  std::lock_guard lock(mu_);
  const std::string path = PathOf(key, "");  // an open handle, or a root itself
  if (path.empty()) return ERROR_INVALID_HANDLE;
  auto k = keys_.find(path);
  if (k == keys_.end()) return ERROR_FILE_NOT_FOUND;
  auto v = k->second.values.find(UpperCase(value_name));
  if (v == k->second.values.end()) return ERROR_FILE_NOT_FOUND;
  const RegValue& value = v->second;
  if (type) *type = value.type;
  const auto needed = static_cast<uint32_t>(value.data.size());
  if (data == nullptr) {
    if (size) *size = needed;
    return ERROR_SUCCESS;
  }
  if (size == nullptr) return ERROR_INVALID_PARAMETER;
  if (needed > *size) {
    *size = needed;
    return ERROR_MORE_DATA;
  }
  std::copy(value.data.begin(), value.data.end(), data);
  *size = needed;
  return ERROR_SUCCESS;
}

int32_t MemoryRegistry::RegCloseKey(HKEY key) {
  std::lock_guard lock(mu_);
  if (IsRoot(key)) return ERROR_SUCCESS;  // the roots stay open
  return handles_.erase(key) == 1 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

void MemoryRegistry::SetValue(HKEY root, std::string_view key, std::string_view name,
                              RegValue value) {
  std::lock_guard lock(mu_);
  MakeKey(PathOf(root, key)).values[UpperCase(name)] = std::move(value);
  Touch();
}

void MemoryRegistry::CreateKey(HKEY root, std::string_view key) {
  std::lock_guard lock(mu_);
  MakeKey(PathOf(root, key));
  Touch();
}

void MemoryRegistry::DeleteKey(HKEY root, std::string_view key) {
  std::lock_guard lock(mu_);
  DeleteTree(PathOf(root, key));
  Touch();
}

void MemoryRegistry::DeleteValue(HKEY root, std::string_view key, std::string_view name) {
  std::lock_guard lock(mu_);
  if (auto k = keys_.find(PathOf(root, key)); k != keys_.end())
    k->second.values.erase(UpperCase(name));
  Touch();
}

std::optional<RegValue> MemoryRegistry::GetValue(HKEY root, std::string_view key,
                                                 std::string_view name) const {
  std::lock_guard lock(mu_);
  auto k = keys_.find(PathOf(root, key));
  if (k == keys_.end()) return std::nullopt;
  auto v = k->second.values.find(UpperCase(name));
  if (v == k->second.values.end()) return std::nullopt;
  return v->second;
}

bool MemoryRegistry::KeyExists(HKEY root, std::string_view key) const {
  std::lock_guard lock(mu_);
  return keys_.contains(PathOf(root, key));
}

std::vector<std::string> MemoryRegistry::KeysBelow(HKEY root, std::string_view key) const {
  std::lock_guard lock(mu_);
  const std::string path = PathOf(root, key);
  const std::string prefix = path + "\\";
  std::vector<std::string> out;
  for (auto it = keys_.lower_bound(prefix); it != keys_.end() && it->first.starts_with(prefix);
       ++it) {
    const HKEY root_of_key = static_cast<HKEY>(std::stoul(it->first.substr(0, 8), nullptr, 16));
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

}  // namespace qorvel
