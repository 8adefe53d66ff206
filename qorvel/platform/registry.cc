#include "qorvel/platform/registry.h"

#include "qorvel/platform/error.h"
#include "qorvel/platform/reg_file.h"
#include "qorvel/platform/text.h"

namespace qorvel {

std::optional<HKEY> RootKeyByName(std::string_view name) {
  const std::string upper = UpperCase(name);
  const std::pair<const char*, HKEY> roots[] = {{"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
                                                {"HKCR", HKEY_CLASSES_ROOT},
                                                {"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
                                                {"HKCU", HKEY_CURRENT_USER},
                                                {"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
                                                {"HKLM", HKEY_LOCAL_MACHINE},
                                                {"HKEY_USERS", HKEY_USERS},
                                                {"HKU", HKEY_USERS},
                                                {"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG},
                                                {"HKCC", HKEY_CURRENT_CONFIG}};
  for (const auto& [text, key] : roots) {
    if (upper == text) return key;
  }
  return std::nullopt;
}

void Registry::SetString(HKEY root, std::string_view key, std::string_view name,
                         std::string_view text) {
  RegValue value{REG_SZ, {text.begin(), text.end()}};
  value.data.push_back(0);
  SetValue(root, key, name, std::move(value));
}

void Registry::SetDword(HKEY root, std::string_view key, std::string_view name, uint32_t v) {
  SetValue(root, key, name,
           RegValue{REG_DWORD, {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)}});
}

void Registry::LoadRegFile(const std::string& path, size_t max_bytes) {
  LoadRegText(ReadRegFile(path, max_bytes), path);
}

// The whole file is read before anything is applied, so a malformed one changes nothing.
void Registry::LoadRegText(std::string_view bytes, std::string_view source_name) {
  Apply(ParseRegText(bytes, source_name));
}

}  // namespace qorvel
