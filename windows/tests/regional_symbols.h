#ifndef WINDOWS_TESTS_REGIONAL_SYMBOLS_H_
#define WINDOWS_TESTS_REGIONAL_SYMBOLS_H_

// The user's decimal and grouping symbols (HKCU\Control Panel\International, sDecimal and
// sThousand) set for a while and put back as they were, values that were missing included:
// the prefix is shared with the other suites.

#include <windows.h>

#include <optional>
#include <string>

namespace qorvel::win::testing {

class RegionalSymbols {
 public:
  RegionalSymbols(const wchar_t* decimal, const wchar_t* thousand);
  RegionalSymbols(const RegionalSymbols&) = delete;
  RegionalSymbols& operator=(const RegionalSymbols&) = delete;
  ~RegionalSymbols();

  bool set() const { return set_; }

 private:
  std::optional<std::wstring> old_decimal_;
  std::optional<std::wstring> old_thousand_;
  bool opened_ = false;  // nothing to put back when the key couldn't be read
  bool set_ = false;
};

}  // namespace qorvel::win::testing

#endif  // WINDOWS_TESTS_REGIONAL_SYMBOLS_H_
