#include "qorvel/platform/registry_windows.h"

#include <cstring>
#include <string>
#include <vector>

#include "qorvel/platform/com_windows.h"
#include "qorvel/platform/error.h"

namespace qorvel::win {
namespace {

HKEY RootOf(RegKey key) {
  switch (key) {
    case root_key::kClassesRoot:
      return HKEY_CLASSES_ROOT;
    case root_key::kCurrentUser:
      return HKEY_CURRENT_USER;
    case root_key::kLocalMachine:
      return HKEY_LOCAL_MACHINE;
    case root_key::kUsers:
      return HKEY_USERS;
    case root_key::kCurrentConfig:
      return HKEY_CURRENT_CONFIG;
  }
  return nullptr;
}

bool IsText(uint32_t type) {
  return type == reg_type::kString || type == reg_type::kExpandString ||
         type == reg_type::kMultiString;
}

// Stored text is UTF-16; the library holds it as UTF-8, terminators and all. A stray last byte
// can't be a character and is dropped.
std::vector<uint8_t> LibraryBytes(uint32_t type, std::vector<uint8_t> stored) {
  if (!IsText(type)) return stored;
  std::wstring wide(stored.size() / 2, L'\0');
  std::memcpy(wide.data(), stored.data(), wide.size() * sizeof(wchar_t));
  const std::string text = Narrow(wide.data(), wide.size());
  return {text.begin(), text.end()};
}

std::vector<uint8_t> StoredBytes(const RegValue& value) {
  if (!IsText(value.type)) return value.data;
  const std::wstring wide =
      Widen(std::string_view(reinterpret_cast<const char*>(value.data.data()), value.data.size()));
  const auto* bytes = reinterpret_cast<const uint8_t*>(wide.data());
  return {bytes, bytes + wide.size() * sizeof(wchar_t)};
}

// One value as stored, read whole; the status of the read when it fails.
LSTATUS ReadStored(HKEY key, const std::wstring& name, DWORD* type, std::vector<uint8_t>* data) {
  DWORD size = 0;
  LSTATUS status = RegQueryValueExW(key, name.c_str(), nullptr, type, nullptr, &size);
  // The value may grow between asking for its size and reading it; then ask again.
  while (status == ERROR_SUCCESS) {
    data->resize(size);
    status = RegQueryValueExW(key, name.c_str(), nullptr, type, data->data(), &size);
    if (status == ERROR_SUCCESS) data->resize(size);
    if (status != ERROR_MORE_DATA) break;
    status = ERROR_SUCCESS;
  }
  return status;
}

// A key opened or created here; closes itself.
class OwnedKey {
 public:
  ~OwnedKey() {
    if (key_) ::RegCloseKey(key_);
  }
  HKEY* put() { return &key_; }
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

}  // namespace

WindowsRegistry::~WindowsRegistry() {
  for (const auto& [number, key] : handles_) ::RegCloseKey(key);
}

HKEY WindowsRegistry::KeyOf(RegKey key) const {
  if (HKEY root = RootOf(key)) return root;
  auto it = handles_.find(key);
  return it == handles_.end() ? nullptr : it->second;
}

int32_t WindowsRegistry::RegOpenKeyA(RegKey root, std::string_view sub_key, RegKey* result) {
  if (result == nullptr) return reg_status::kInvalidParameter;
  std::lock_guard lock(mu_);
  HKEY base = KeyOf(root);
  if (base == nullptr) return reg_status::kInvalidHandle;
  HKEY opened = nullptr;
  const LSTATUS status = RegOpenKeyExW(base, Widen(sub_key).c_str(), 0, KEY_READ, &opened);
  if (status != ERROR_SUCCESS) return status;
  // Numbers below the roots' range, skipping any still open after a wrap.
  while (handles_.contains(next_handle_) || next_handle_ >= root_key::kClassesRoot) {
    next_handle_ = next_handle_ >= root_key::kClassesRoot ? 0x100 : next_handle_ + 1;
  }
  handles_[next_handle_] = opened;
  *result = next_handle_++;
  return reg_status::kSuccess;
}

int32_t WindowsRegistry::RegQueryValueExA(RegKey key, std::string_view value_name, uint32_t*,
                                          uint32_t* type, uint8_t* data, uint32_t* size) {
  std::vector<uint8_t> bytes;
  DWORD stored_type = 0;
  {
    std::lock_guard lock(mu_);
    HKEY system_key = KeyOf(key);
    if (system_key == nullptr) return reg_status::kInvalidHandle;
    const LSTATUS status = ReadStored(system_key, Widen(value_name), &stored_type, &bytes);
    if (status != ERROR_SUCCESS) return status;
  }
  return CopyValueOut({stored_type, LibraryBytes(stored_type, std::move(bytes))}, type, data, size);
}

int32_t WindowsRegistry::RegQueryInfoKeyA(RegKey key, uint32_t* sub_keys) {
  std::lock_guard lock(mu_);
  HKEY system_key = KeyOf(key);
  if (system_key == nullptr) return reg_status::kInvalidHandle;
  DWORD count = 0;
  const LSTATUS status = RegQueryInfoKeyW(system_key, nullptr, nullptr, nullptr, &count, nullptr,
                                          nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  if (status == ERROR_SUCCESS && sub_keys) *sub_keys = count;
  return status;
}

int32_t WindowsRegistry::RegCloseKey(RegKey key) {
  if (RootOf(key)) return reg_status::kSuccess;  // the roots stay open
  std::lock_guard lock(mu_);
  auto it = handles_.find(key);
  if (it == handles_.end()) return reg_status::kInvalidHandle;
  const LSTATUS status = ::RegCloseKey(it->second);
  handles_.erase(it);
  return status;
}

void WindowsRegistry::SetValue(RegKey root, std::string_view key, std::string_view name,
                               RegValue value) {
  const std::vector<uint8_t> stored = StoredBytes(value);
  std::lock_guard lock(mu_);
  HKEY base = KeyOf(root);
  OwnedKey target;
  if (base == nullptr || RegCreateKeyExW(base, Widen(key).c_str(), 0, nullptr, 0, KEY_SET_VALUE,
                                         nullptr, target.put(), nullptr) != ERROR_SUCCESS) {
    Raise(err::kInvalidCall);
  }
  if (RegSetValueExW(target.get(), Widen(name).c_str(), 0, value.type, stored.data(),
                     static_cast<DWORD>(stored.size())) != ERROR_SUCCESS) {
    Raise(err::kInvalidCall);
  }
}

void WindowsRegistry::CreateKey(RegKey root, std::string_view key) {
  std::lock_guard lock(mu_);
  HKEY base = KeyOf(root);
  OwnedKey created;
  if (base == nullptr || RegCreateKeyExW(base, Widen(key).c_str(), 0, nullptr, 0, KEY_READ, nullptr,
                                         created.put(), nullptr) != ERROR_SUCCESS) {
    Raise(err::kInvalidCall);
  }
}

void WindowsRegistry::DeleteKey(RegKey root, std::string_view key) {
  // An empty name would take the whole hive below `root` with it.
  while (!key.empty() && key.front() == '\\') key.remove_prefix(1);
  if (key.empty()) Raise(err::kInvalidCall);
  std::lock_guard lock(mu_);
  HKEY base = KeyOf(root);
  if (base == nullptr) Raise(err::kInvalidCall);
  const LSTATUS status = RegDeleteTreeW(base, Widen(key).c_str());
  if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) Raise(err::kInvalidCall);
}

void WindowsRegistry::DeleteValue(RegKey root, std::string_view key, std::string_view name) {
  std::lock_guard lock(mu_);
  HKEY base = KeyOf(root);
  if (base == nullptr) Raise(err::kInvalidCall);
  OwnedKey target;
  LSTATUS status = RegOpenKeyExW(base, Widen(key).c_str(), 0, KEY_SET_VALUE, target.put());
  if (status == ERROR_SUCCESS) status = RegDeleteValueW(target.get(), Widen(name).c_str());
  if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) Raise(err::kInvalidCall);
}

std::optional<RegValue> WindowsRegistry::GetValue(RegKey root, std::string_view key,
                                                  std::string_view name) const {
  std::lock_guard lock(mu_);
  HKEY base = KeyOf(root);
  if (base == nullptr) return std::nullopt;
  OwnedKey source;
  if (RegOpenKeyExW(base, Widen(key).c_str(), 0, KEY_QUERY_VALUE, source.put()) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  DWORD type = 0;
  std::vector<uint8_t> bytes;
  if (ReadStored(source.get(), Widen(name), &type, &bytes) != ERROR_SUCCESS) return std::nullopt;
  return RegValue{type, LibraryBytes(type, std::move(bytes))};
}

}  // namespace qorvel::win
