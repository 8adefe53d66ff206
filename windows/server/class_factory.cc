#include "windows/server/class_factory.h"

#include <new>

#include "qorvel/platform/com_windows.h"
#include "qorvel/platform/dispatch_windows.h"
#include "qorvel/platform/error.h"
#include "windows/server/control_object.h"
#include "windows/server/module.h"

namespace qorvel::win {

HRESULT ClassFactory::QueryInterface(REFIID riid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (riid != IID_IUnknown && riid != IID_IClassFactory) return E_NOINTERFACE;
  *out = static_cast<IClassFactory*>(this);
  AddRef();
  return S_OK;
}

ULONG ClassFactory::AddRef() { return InterlockedIncrement(&refs_); }

ULONG ClassFactory::Release() {
  const ULONG left = InterlockedDecrement(&refs_);
  if (left == 0) delete this;
  return left;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID riid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  try {
    ComPtr<IDispatch> object = ComPtr<IDispatch>::Attach(NewClassObject(class_name_));
    return object->QueryInterface(riid, out);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const Error& error) {
    return ErrorHresult(error.number());
  }
}

HRESULT ClassFactory::LockServer(BOOL lock) {
  LockModule(lock != FALSE);
  return S_OK;
}

}  // namespace qorvel::win
