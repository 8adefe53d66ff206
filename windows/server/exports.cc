// The four functions of the in-process server protocol, the whole export table of the DLL
// (QorvelOLE.def): each hands over to the library's own registration and class list.

#include <windows.h>

#include <ole2.h>

#include "qorvel/platform/dispatch_windows.h"
#include "qorvel/server/registration.h"
#include "windows/server/class_dispatch.h"
#include "windows/server/class_factory.h"
#include "windows/server/control_window.h"
#include "windows/server/module.h"

namespace qorvel::win {
void SetThisModule(HMODULE module);
LONG ModuleLocks();
}  // namespace qorvel::win

using namespace qorvel::win;

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    SetThisModule(instance);
    DisableThreadLibraryCalls(instance);
    SetExposer(ExposeClassObject);
  } else if (reason == DLL_PROCESS_DETACH) {
    ControlWindow::UnregisterClass();
  }
  return TRUE;
}

extern "C" HRESULT STDAPICALLTYPE DllRegisterServer() {
  return qorvel::DllRegisterServer({ThisModulePath(), sizeof(void*) == 8});
}

extern "C" HRESULT STDAPICALLTYPE DllUnregisterServer() { return qorvel::DllUnregisterServer(); }

extern "C" HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID riid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  qorvel::Guid guid{clsid.Data1, clsid.Data2, clsid.Data3, {}};
  for (int i = 0; i < 8; ++i) guid.data4[i] = clsid.Data4[i];
  qorvel::ClassFactory make = nullptr;
  const HRESULT found = qorvel::DllGetClassObject(guid, &make);
  if (found != S_OK) return found;
  const qorvel::ClassInfo* found_class = nullptr;
  for (const qorvel::ClassInfo& c : qorvel::TheTypeLibrary().classes) {
    if (ToGuid(c.guid) == clsid) found_class = &c;
  }
  if (found_class == nullptr) return CLASS_E_CLASSNOTAVAILABLE;
  IClassFactory* factory = new (std::nothrow) ClassFactory(found_class->name);
  if (factory == nullptr) return E_OUTOFMEMORY;
  const HRESULT hr = factory->QueryInterface(riid, out);
  factory->Release();
  return hr;
}

// Nothing the library made is alive (objects of its classes, or objects it handed out, such as
// collections), and no client holds a lock.
extern "C" HRESULT STDAPICALLTYPE DllCanUnloadNow() {
  const bool idle =
      qorvel::DllCanUnloadNow() == S_OK && LiveDispatches() == 0 && ModuleLocks() == 0;
  return idle ? S_OK : S_FALSE;
}
