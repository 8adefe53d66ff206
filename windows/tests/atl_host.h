#ifndef WINDOWS_TESTS_ATL_HOST_H_
#define WINDOWS_TESTS_ATL_HOST_H_

// Wine's own ATL control host, loaded at run time as any program that hosts controls loads it:
// its window class sites the control named by the window's text when the window is made.

#include <windows.h>

#include <string>

#include "qorvel/platform/com_windows.h"

namespace qorvel::win::testing {

class AtlHost {
 public:
  // Loads the first ATL DLL that has the hosting functions and registers its window class;
  // loaded() says whether one was found.
  AtlHost();
  AtlHost(const AtlHost&) = delete;
  AtlHost& operator=(const AtlHost&) = delete;

  bool loaded() const { return create_ != nullptr; }
  const std::string& dll() const { return dll_; }
  const std::wstring& window_class() const { return class_; }

  // A child window of `parent` at `rect` (client pixels) in which ATL sites the control named by
  // `name`, a ProgID or a CLSID in braces; the window exists even when the control couldn't be
  // made, as with ATL's own window class.
  HWND CreateControlWindow(HWND parent, const wchar_t* name, const RECT& rect) const;
  // The control sited in `window`, or null.
  ComPtr<IUnknown> GetControl(HWND window) const;

 private:
  using CreateControlEx = HRESULT(WINAPI*)(LPCOLESTR, HWND, IStream*, IUnknown**, IUnknown**,
                                           REFIID, IUnknown*);
  using GetControlFn = HRESULT(WINAPI*)(HWND, IUnknown**);

  std::string dll_;
  std::wstring class_;
  CreateControlEx create_ = nullptr;
  GetControlFn get_control_ = nullptr;
};

}  // namespace qorvel::win::testing

#endif  // WINDOWS_TESTS_ATL_HOST_H_
