// How a container draws the control itself (IViewObject2), and how it learns of a change.

#include "windows/server/control_drawing.h"
#include "windows/server/control_object.h"
#include "windows/server/control_units.h"

namespace qorvel::win {

// The control draws itself the same in both modes; a container doesn't draw a control that is
// invisible at run time.
HRESULT ControlDispatch::Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC dc,
                              LPCRECTL bounds, LPCRECTL, BOOL(STDMETHODCALLTYPE*)(ULONG_PTR),
                              ULONG_PTR) {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (dc == nullptr || bounds == nullptr) return E_INVALIDARG;
  return Guarded([&] {
    DrawControl(life_.shell(), dc, {bounds->left, bounds->top, bounds->right, bounds->bottom});
    return S_OK;
  });
}

HRESULT ControlDispatch::GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC,
                                     LOGPALETTE** colors) {
  if (colors) *colors = nullptr;
  return E_NOTIMPL;
}

HRESULT ControlDispatch::Freeze(DWORD, LONG, void*, DWORD* freeze) {
  if (freeze) *freeze = 0;
  return E_NOTIMPL;
}

HRESULT ControlDispatch::Unfreeze(DWORD) { return E_NOTIMPL; }

HRESULT ControlDispatch::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) {
  view_aspects_ = aspects;
  view_flags_ = flags;
  view_sink_ = ComPtr<IAdviseSink>(sink);
  return S_OK;
}

HRESULT ControlDispatch::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) {
  if (aspects) *aspects = view_aspects_;
  if (flags) *flags = view_flags_;
  if (sink) {
    *sink = view_sink_.get();
    if (*sink) (*sink)->AddRef();
  }
  return S_OK;
}

HRESULT ControlDispatch::GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, LPSIZEL size) {
  return GetExtent(aspect, size);
}

void ControlDispatch::ViewChanged() {
  if (view_sink_ && (view_aspects_ & DVASPECT_CONTENT))
    view_sink_->OnViewChange(DVASPECT_CONTENT, -1);
}

}  // namespace qorvel::win
