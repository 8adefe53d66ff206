#include "qorvel/platform/com_windows.h"

#include "qorvel/platform/error.h"

namespace qorvel::win {

std::wstring Widen(std::string_view utf8) {
  if (utf8.empty()) return {};
  const int size = static_cast<int>(utf8.size());
  const int n = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0);
  std::wstring out(static_cast<size_t>(n), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, out.data(), n);
  return out;
}

std::string Narrow(const wchar_t* text, size_t length) {
  if (text == nullptr || length == 0) return {};
  const int size = static_cast<int>(length);
  const int n = WideCharToMultiByte(CP_UTF8, 0, text, size, nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<size_t>(n), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, size, out.data(), n, nullptr, nullptr);
  return out;
}

// Texts keep their zero bytes: the length is passed, not found.
Bstr::Bstr(std::string_view utf8) {
  const std::wstring wide = Widen(utf8);
  b_ = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (b_ == nullptr) Raise(err::kOutOfMemory);
}

}  // namespace qorvel::win
