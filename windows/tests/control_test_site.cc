#include "windows/tests/control_test_site.h"

#include <olectl.h>

namespace qorvel::win {

HRESULT TestSite::QueryInterface(REFIID riid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (riid == IID_IUnknown || riid == IID_IOleClientSite) {
    *out = static_cast<IOleClientSite*>(this);
  } else if (riid == IID_IOleWindow || riid == IID_IOleInPlaceSite) {
    *out = static_cast<IOleInPlaceSite*>(this);
  } else if (riid == IID_IDispatch && ambient_) {
    *out = static_cast<IDispatch*>(this);
  } else {
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG TestSite::Release() {
  const ULONG left = --refs_;
  if (left == 0) delete this;
  return left;
}

HRESULT TestSite::GetMoniker(DWORD, DWORD, IMoniker** m) {
  if (m) *m = nullptr;
  return E_NOTIMPL;
}

HRESULT TestSite::GetContainer(IOleContainer** c) {
  if (c) *c = nullptr;
  return E_NOINTERFACE;
}

HRESULT TestSite::GetWindow(HWND* hwnd) {
  *hwnd = window_;
  return S_OK;
}

HRESULT TestSite::OnInPlaceActivate() {
  ++activations;
  return S_OK;
}

HRESULT TestSite::OnInPlaceDeactivate() {
  ++deactivations;
  return S_OK;
}

HRESULT TestSite::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** doc, LPRECT pos,
                                   LPRECT clip, LPOLEINPLACEFRAMEINFO info) {
  if (frame) *frame = nullptr;
  if (doc) *doc = nullptr;
  if (pos) *pos = place_;
  if (clip) *clip = place_;
  if (info) {
    info->fMDIApp = FALSE;
    info->hwndFrame = window_;
    info->haccel = nullptr;
    info->cAccelEntries = 0;
  }
  return S_OK;
}

HRESULT TestSite::GetTypeInfoCount(UINT* n) {
  *n = 0;
  return S_OK;
}

HRESULT TestSite::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                         UINT*) {
  if (id != DISPID_AMBIENT_USERMODE) return DISP_E_MEMBERNOTFOUND;
  if (result) {
    result->vt = VT_BOOL;
    result->boolVal = user_mode_ ? VARIANT_TRUE : VARIANT_FALSE;
  }
  return S_OK;
}

MapPropertyBag::~MapPropertyBag() {
  for (auto& [name, value] : values) VariantClear(&value);
}

HRESULT MapPropertyBag::QueryInterface(REFIID riid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (riid != IID_IUnknown && riid != IID_IPropertyBag) return E_NOINTERFACE;
  *out = static_cast<IPropertyBag*>(this);
  return S_OK;
}

// As a container's bag answers: E_INVALIDARG for a name it doesn't hold, the value converted
// to the type asked for.
HRESULT MapPropertyBag::Read(LPCOLESTR name, VARIANT* value, IErrorLog*) {
  auto it = values.find(name);
  if (it == values.end()) return E_INVALIDARG;
  const VARTYPE wanted = value->vt;
  VariantInit(value);
  if (wanted == VT_EMPTY) return VariantCopy(value, &it->second);
  return VariantChangeType(value, &it->second, 0, wanted);
}

HRESULT MapPropertyBag::Write(LPCOLESTR name, VARIANT* value) {
  VARIANT copy;
  VariantInit(&copy);
  const HRESULT hr = VariantCopy(&copy, value);
  if (FAILED(hr)) return hr;
  auto [it, fresh] = values.try_emplace(name, copy);
  if (!fresh) {
    VariantClear(&it->second);
    it->second = copy;
  }
  return S_OK;
}

}  // namespace qorvel::win
