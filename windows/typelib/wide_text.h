#ifndef QORVEL_WINDOWS_TYPELIB_WIDE_TEXT_H_
#define QORVEL_WINDOWS_TYPELIB_WIDE_TEXT_H_

#include <windows.h>

#include <string>
#include <string_view>

namespace qorvel {

// The table's text is UTF-8; OLE's is UTF-16.
std::wstring Wide(std::string_view text);
std::string Narrow(const wchar_t* text);  // null gives empty text, as a null BSTR is empty

// A BSTR freed when it goes out of scope.
class OwnedBstr {
 public:
  OwnedBstr() = default;
  OwnedBstr(const OwnedBstr&) = delete;
  OwnedBstr& operator=(const OwnedBstr&) = delete;
  ~OwnedBstr() { SysFreeString(bstr_); }
  BSTR* out() { return &bstr_; }
  std::string text() const { return Narrow(bstr_); }

 private:
  BSTR bstr_ = nullptr;
};

// Text for an HRESULT: "0x80029c4a".
std::string HresultText(HRESULT hr);

}  // namespace qorvel

#endif  // QORVEL_WINDOWS_TYPELIB_WIDE_TEXT_H_
