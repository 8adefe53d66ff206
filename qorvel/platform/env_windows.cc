#include "qorvel/platform/env_windows.h"

#include <string>

#include "qorvel/platform/com_windows.h"

namespace qorvel {
namespace win {
namespace {

// One of the user's regional symbols: the text the user set in the registry, else the locale's,
// else `fallback`.
std::string Symbol(const WindowsRegistry& registry, const char* value_name, LCTYPE locale_item,
                   const char* fallback) {
  if (auto value = registry.GetValue(root_key::kCurrentUser, kInternationalKey, value_name);
      value && (value->type == reg_type::kString || value->type == reg_type::kExpandString)) {
    std::string text(value->data.begin(), value->data.end());
    while (!text.empty() && text.back() == '\0') text.pop_back();
    if (!text.empty()) return text;
  }
  wchar_t text[16];  // the system's limit for these symbols is shorter still
  const int length = GetLocaleInfoW(LOCALE_USER_DEFAULT, locale_item, text, 16);
  if (length <= 1) return fallback;  // the length counts the terminator
  return Narrow(text, static_cast<size_t>(length - 1));
}

}  // namespace

// The system caches the locale's symbols and doesn't see a value written straight into the
// registry, which is how scripts and the library's own SetDecimalSymbol change them; so the
// registry is read first, and again only when the key reports a change.
WindowsEnv::WindowsEnv() {
  const std::wstring key = Widen(kInternationalKey);
  if (RegOpenKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, KEY_NOTIFY | KEY_READ, &international_) !=
      ERROR_SUCCESS) {
    international_ = nullptr;
    return;
  }
  changed_ = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  if (changed_ == nullptr) {
    RegCloseKey(international_);
    international_ = nullptr;
  }
}

WindowsEnv::~WindowsEnv() {
  if (international_) RegCloseKey(international_);
  if (changed_) CloseHandle(changed_);
}

NumberSymbols WindowsEnv::ReadSymbols() {
  NumberSymbols symbols;
  symbols.decimal = Symbol(registry_, "sDecimal", LOCALE_SDECIMAL, ".");
  symbols.thousand = Symbol(registry_, "sThousand", LOCALE_STHOUSAND, ",");
  symbols.currency = Symbol(registry_, "sCurrency", LOCALE_SCURRENCY, "$");
  return symbols;
}

NumberSymbols WindowsEnv::number_symbols() {
  std::lock_guard lock(symbols_mu_);
  if (international_ == nullptr) return ReadSymbols();
  if (!symbols_current_ || WaitForSingleObject(changed_, 0) == WAIT_OBJECT_0) {
    // Watched again before reading, so a change during the read isn't missed. The watch must
    // outlive the thread that sets it, as any thread may ask next; where the system can't do
    // that, nothing is kept.
    symbols_current_ =
        RegNotifyChangeKeyValue(international_, FALSE,
                                REG_NOTIFY_CHANGE_LAST_SET | REG_NOTIFY_THREAD_AGNOSTIC, changed_,
                                TRUE) == ERROR_SUCCESS;
    symbols_ = ReadSymbols();
  }
  return symbols_;
}

}  // namespace win

// On Windows the platform's own services; PortableEnv stays for tests that want a hive in
// memory.
Env& Env::Default() {
  static win::WindowsEnv* const env = new win::WindowsEnv;  // lives until the process ends
  return *env;
}

}  // namespace qorvel
