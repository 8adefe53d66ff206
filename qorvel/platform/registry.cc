#include "qorvel/platform/registry.h"

#include <algorithm>

#include "qorvel/platform/text.h"

namespace qorvel {

std::optional<RegKey> RootKeyByName(std::string_view name) {
  const std::string upper = UpperCase(name);
  const std::pair<const char*, RegKey> roots[] = {{"HKEY_CLASSES_ROOT", root_key::kClassesRoot},
                                                  {"HKCR", root_key::kClassesRoot},
                                                  {"HKEY_CURRENT_USER", root_key::kCurrentUser},
                                                  {"HKCU", root_key::kCurrentUser},
                                                  {"HKEY_LOCAL_MACHINE", root_key::kLocalMachine},
                                                  {"HKLM", root_key::kLocalMachine},
                                                  {"HKEY_USERS", root_key::kUsers},
                                                  {"HKU", root_key::kUsers},
                                                  {"HKEY_CURRENT_CONFIG", root_key::kCurrentConfig},
                                                  {"HKCC", root_key::kCurrentConfig}};
  for (const auto& [text, key] : roots) {
    if (upper == text) return key;
  }
  return std::nullopt;
}

int32_t CopyValueOut(const RegValue& value, uint32_t* type, uint8_t* data, uint32_t* size) {
  if (type) *type = value.type;
  const auto needed = static_cast<uint32_t>(value.data.size());
  if (data == nullptr) {
    if (size) *size = needed;
    return reg_status::kSuccess;
  }
  if (size == nullptr) return reg_status::kInvalidParameter;
  if (needed > *size) {
    *size = needed;
    return reg_status::kMoreData;
  }
  std::copy(value.data.begin(), value.data.end(), data);
  *size = needed;
  return reg_status::kSuccess;
}

void Registry::SetString(RegKey root, std::string_view key, std::string_view name,
                         std::string_view text) {
  RegValue value{reg_type::kString, {text.begin(), text.end()}};
  value.data.push_back(0);
  SetValue(root, key, name, std::move(value));
}

void Registry::SetDword(RegKey root, std::string_view key, std::string_view name, uint32_t v) {
  SetValue(root, key, name,
           RegValue{reg_type::kDword,
                    {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)}});
}

}  // namespace qorvel
