#include "windows/tests/regional_symbols.h"

namespace qorvel::win::testing {
namespace {

constexpr const wchar_t* kInternational = L"Control Panel\\International";

std::optional<std::wstring> ReadValue(HKEY key, const wchar_t* name) {
  wchar_t text[64];
  DWORD size = sizeof text;
  DWORD type = 0;
  if (RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(text), &size) !=
          ERROR_SUCCESS ||
      type != REG_SZ) {
    return std::nullopt;
  }
  return std::wstring(text, size / sizeof(wchar_t)).c_str();  // up to the terminator
}

bool WriteValue(HKEY key, const wchar_t* name, const std::optional<std::wstring>& value) {
  if (!value) {
    const LONG result = RegDeleteValueW(key, name);
    return result == ERROR_SUCCESS || result == ERROR_FILE_NOT_FOUND;
  }
  return RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value->c_str()),
                        static_cast<DWORD>((value->size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

}  // namespace

RegionalSymbols::RegionalSymbols(const wchar_t* decimal, const wchar_t* thousand) {
  HKEY key = nullptr;
  if (RegCreateKeyExW(HKEY_CURRENT_USER, kInternational, 0, nullptr, 0, KEY_READ | KEY_WRITE,
                      nullptr, &key, nullptr) != ERROR_SUCCESS) {
    return;
  }
  opened_ = true;
  old_decimal_ = ReadValue(key, L"sDecimal");
  old_thousand_ = ReadValue(key, L"sThousand");
  set_ = WriteValue(key, L"sDecimal", std::wstring(decimal)) &&
         WriteValue(key, L"sThousand", std::wstring(thousand));
  RegCloseKey(key);
}

RegionalSymbols::~RegionalSymbols() {
  HKEY key = nullptr;
  if (!opened_ ||
      RegOpenKeyExW(HKEY_CURRENT_USER, kInternational, 0, KEY_WRITE, &key) != ERROR_SUCCESS) {
    return;
  }
  WriteValue(key, L"sDecimal", old_decimal_);
  WriteValue(key, L"sThousand", old_thousand_);
  RegCloseKey(key);
}

}  // namespace qorvel::win::testing
