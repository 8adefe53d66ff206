#include "windows/tests/test_site.h"

#include <olectl.h>

namespace qorvel::win::testing {

TestSite::TestSite(HWND window, RECT position, bool user_mode)
    : window_(window), position_(position), user_mode_(user_mode) {}

HRESULT TestSite::QueryInterface(REFIID riid, void** out) {
  if (out == nullptr) return E_POINTER;
  if (riid == IID_IUnknown || riid == IID_IOleClientSite) {
    *out = static_cast<IOleClientSite*>(this);
  } else if (riid == IID_IOleWindow || riid == IID_IOleInPlaceSite) {
    *out = static_cast<IOleInPlaceSite*>(this);
  } else if (riid == IID_IOleInPlaceUIWindow || riid == IID_IOleInPlaceFrame) {
    *out = static_cast<IOleInPlaceFrame*>(this);
  } else if (riid == IID_IDispatch) {
    *out = static_cast<IDispatch*>(this);
  } else {
    *out = nullptr;
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG TestSite::AddRef() { return InterlockedIncrement(&refs_); }

ULONG TestSite::Release() {
  const ULONG left = InterlockedDecrement(&refs_);
  if (left == 0) delete this;
  return left;
}

HRESULT TestSite::GetMoniker(DWORD, DWORD, IMoniker** moniker) {
  if (moniker) *moniker = nullptr;
  return E_NOTIMPL;
}

HRESULT TestSite::GetContainer(IOleContainer** container) {
  if (container) *container = nullptr;
  return E_NOINTERFACE;
}

HRESULT TestSite::GetWindow(HWND* window) {
  if (window == nullptr) return E_POINTER;
  *window = window_;
  return S_OK;
}

HRESULT TestSite::OnInPlaceActivate() {
  in_place_active_ = true;
  return S_OK;
}

HRESULT TestSite::OnInPlaceDeactivate() {
  in_place_active_ = false;
  ++deactivations_;
  return S_OK;
}

HRESULT TestSite::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** doc,
                                   RECT* position, RECT* clip, OLEINPLACEFRAMEINFO* info) {
  if (frame) {
    *frame = this;
    AddRef();
  }
  if (doc) *doc = nullptr;
  if (position) *position = position_;
  if (clip) *clip = position_;
  if (info) {
    info->fMDIApp = FALSE;
    info->hwndFrame = window_;
    info->haccel = nullptr;
    info->cAccelEntries = 0;
  }
  return S_OK;
}

// A control that keeps a size of its own asks for it here; the form gives it.
HRESULT TestSite::OnPosRectChange(const RECT* position) {
  if (position == nullptr) return E_POINTER;
  position_ = *position;
  return S_OK;
}

HRESULT TestSite::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT TestSite::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS*, VARIANT* result,
                         EXCEPINFO*, UINT*) {
  if (id != DISPID_AMBIENT_USERMODE) return DISP_E_MEMBERNOTFOUND;
  if ((flags & DISPATCH_PROPERTYGET) == 0 || result == nullptr) return DISP_E_MEMBERNOTFOUND;
  ++user_mode_reads_;
  VariantInit(result);
  result->vt = VT_BOOL;
  result->boolVal = user_mode_ ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

}  // namespace qorvel::win::testing
