#include "windows/tests/atl_host.h"

namespace qorvel::win::testing {
namespace {

// Each ATL version names its window class after itself.
struct AtlDll {
  const wchar_t* file;
  const char* name;
  const wchar_t* window_class;
};
constexpr AtlDll kAtlDlls[] = {
    {L"atl.dll", "atl.dll", L"AtlAxWin"},
    {L"atl110.dll", "atl110.dll", L"AtlAxWin110"},
    {L"atl100.dll", "atl100.dll", L"AtlAxWin100"},
};

template <class F>
F Function(HMODULE module, const char* name) {
  return reinterpret_cast<F>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

}  // namespace

AtlHost::AtlHost() {
  for (const AtlDll& atl : kAtlDlls) {
    HMODULE module = LoadLibraryW(atl.file);
    if (module == nullptr) continue;
    auto init = Function<BOOL(WINAPI*)()>(module, "AtlAxWinInit");
    auto create = Function<CreateControlEx>(module, "AtlAxCreateControlEx");
    auto get_control = Function<GetControlFn>(module, "AtlAxGetControl");
    if (init == nullptr || create == nullptr || get_control == nullptr || !init()) {
      FreeLibrary(module);
      continue;
    }
    dll_ = atl.name;
    class_ = atl.window_class;
    create_ = create;
    get_control_ = get_control;
    return;  // kept loaded: its window class lives in it
  }
}

HWND AtlHost::CreateControlWindow(HWND parent, const wchar_t* name, const RECT& rect) const {
  return CreateWindowExW(0, class_.c_str(), name, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN,
                         rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                         parent, nullptr, GetModuleHandleW(nullptr), nullptr);
}

ComPtr<IUnknown> AtlHost::GetControl(HWND window) const {
  ComPtr<IUnknown> control;
  if (get_control_ == nullptr || FAILED(get_control_(window, control.put()))) control.reset();
  return control;
}

}  // namespace qorvel::win::testing
