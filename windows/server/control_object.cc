#include "windows/server/control_object.h"

#include "qorvel/platform/text.h"
#include "qorvel/server/classes.h"
#include "windows/server/control_units.h"
#include "windows/server/module.h"

namespace qorvel::win {

ControlDispatch::ControlDispatch(UnstartedControl control)
    : ClassDispatch(control.face),
      life_(control.shell, control.face->class_info().name),
      misc_status_(control.face->class_info().misc_status) {}

// A container that let the control go without closing it gets Terminate here; the site is
// let go so a control still held elsewhere can't reach a container that has gone.
ControlDispatch::~ControlDispatch() {
  InPlaceDeactivate();
  life_.Close();
  life_.Attach(nullptr);
}

void* ControlDispatch::QueryOther(REFIID riid) {
  if (riid == IID_IOleObject) return static_cast<IOleObject*>(this);
  if (riid == IID_IOleWindow || riid == IID_IOleInPlaceObject) {
    return static_cast<IOleInPlaceObject*>(this);
  }
  if (riid == IID_IOleInPlaceActiveObject) return static_cast<IOleInPlaceActiveObject*>(this);
  if (riid == IID_IViewObject || riid == IID_IViewObject2) return static_cast<IViewObject2*>(this);
  if (riid == IID_IOleControl) return static_cast<IOleControl*>(this);
  if (riid == IID_IPersist || riid == IID_IPersistStreamInit) {
    return static_cast<IPersistStreamInit*>(this);
  }
  if (riid == IID_IPersistPropertyBag) return static_cast<IPersistPropertyBag*>(this);
  return ClassDispatch::QueryOther(riid);
}

// A member may change Text1 (value, SetValue, Readonly): its window shows the change after the
// call, a failed one included.
Variant ControlDispatch::Call(DISPID id, CallKind kind, std::span<Variant> args) {
  life_.StartForMember();
  struct SyncText1 {
    TextBoxWindow* window;
    ~SyncText1() {
      if (window) window->Sync();
    }
  } sync{text1_window_.get()};
  return ClassDispatch::Call(id, kind, args);
}

// IOleObject

// The control is initialised as soon as it has a site, and reads its ambient UserMode from it.
HRESULT ControlDispatch::SetClientSite(IOleClientSite* site) {
  return Guarded([&] {
    if (site == nullptr) {
      site_.reset();
      life_.Attach(nullptr);
      return S_OK;
    }
    site_ = std::make_shared<ClientSite>(site, [this](std::string_view) { dirty_ = true; });
    life_.Attach(site_);
    life_.Initialize();
    return S_OK;
  });
}

HRESULT ControlDispatch::GetClientSite(IOleClientSite** site) {
  if (site == nullptr) return E_POINTER;
  *site = site_ ? site_->get() : nullptr;
  if (*site) (*site)->AddRef();
  return S_OK;
}

HRESULT ControlDispatch::SetHostNames(LPCOLESTR, LPCOLESTR) { return S_OK; }

// The end of the control's life: out of place, the advise sinks told, then Terminate.
HRESULT ControlDispatch::Close(DWORD save_option) {
  return Guarded([&] {
    if (save_option == OLECLOSE_SAVEIFDIRTY && dirty_ && site_) site_->get()->SaveObject();
    InPlaceDeactivate();
    if (advise_holder_) advise_holder_->SendOnClose();
    life_.Close();
    return S_OK;
  });
}

HRESULT ControlDispatch::SetMoniker(DWORD, IMoniker*) { return E_NOTIMPL; }

HRESULT ControlDispatch::GetMoniker(DWORD, DWORD, IMoniker** moniker) {
  if (moniker) *moniker = nullptr;
  return E_NOTIMPL;
}

HRESULT ControlDispatch::InitFromData(IDataObject*, BOOL, DWORD) { return E_NOTIMPL; }

HRESULT ControlDispatch::GetClipboardData(DWORD, IDataObject** data) {
  if (data) *data = nullptr;
  return E_NOTIMPL;
}

HRESULT ControlDispatch::EnumVerbs(IEnumOLEVERB** verbs) {
  if (verbs == nullptr) return E_POINTER;
  *verbs = nullptr;
  return OLE_S_USEREG;
}

HRESULT ControlDispatch::Update() { return S_OK; }

HRESULT ControlDispatch::IsUpToDate() { return S_OK; }

HRESULT ControlDispatch::GetUserClassID(CLSID* clsid) { return GetClassID(clsid); }

HRESULT ControlDispatch::GetUserType(DWORD, LPOLESTR* type) {
  if (type == nullptr) return E_POINTER;
  *type = nullptr;
  return OLE_S_USEREG;
}

// The container's size; a control of fixed size keeps its own, which GetExtent then reports.
HRESULT ControlDispatch::SetExtent(DWORD aspect, SIZEL* size) {
  if (size == nullptr) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (size->cx < 0 || size->cy < 0) return E_INVALIDARG;
  return Guarded([&] {
    life_.SetExtent(HimetricToTwips(size->cx), HimetricToTwips(size->cy));
    Layout();
    ViewChanged();
    return S_OK;
  });
}

HRESULT ControlDispatch::GetExtent(DWORD aspect, SIZEL* size) {
  if (size == nullptr) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  const UserControl& surface = life_.shell().user_control;
  size->cx = TwipsToHimetric(surface.Width);
  size->cy = TwipsToHimetric(surface.Height);
  return S_OK;
}

HRESULT ControlDispatch::GetMiscStatus(DWORD aspect, DWORD* status) {
  if (status == nullptr) return E_POINTER;
  *status = aspect == DVASPECT_CONTENT ? misc_status_ : 0;
  return S_OK;
}

HRESULT ControlDispatch::SetColorScheme(LOGPALETTE*) { return E_NOTIMPL; }

HRESULT ControlDispatch::AdviseObject(IAdviseSink* sink, DWORD* connection) {
  if (sink == nullptr || connection == nullptr) return E_POINTER;
  if (!advise_holder_) {
    const HRESULT hr = CreateOleAdviseHolder(advise_holder_.put());
    if (FAILED(hr)) return hr;
  }
  return advise_holder_->Advise(sink, connection);
}

HRESULT ControlDispatch::UnadviseObject(DWORD connection) {
  return advise_holder_ ? advise_holder_->Unadvise(connection) : OLE_E_NOCONNECTION;
}

HRESULT ControlDispatch::EnumAdviseObject(IEnumSTATDATA** advise) {
  if (advise == nullptr) return E_POINTER;
  *advise = nullptr;
  return advise_holder_ ? advise_holder_->EnumAdvise(advise) : S_OK;
}

// IOleControl

HRESULT ControlDispatch::GetControlInfo(CONTROLINFO* info) {
  if (info == nullptr) return E_POINTER;
  info->hAccel = nullptr;
  info->cAccel = 0;
  info->dwFlags = 0;
  return S_OK;
}

HRESULT ControlDispatch::OnMnemonic(MSG*) { return E_NOTIMPL; }

// UserMode is the one ambient property the controls read; a change shows or hides a control
// that is invisible at run time.
HRESULT ControlDispatch::OnAmbientPropertyChange(DISPID id) {
  if (id != DISPID_AMBIENT_USERMODE && id != DISPID_UNKNOWN) return S_OK;
  return Guarded([&] {
    if (site_) site_->RefreshUserMode();
    if (window_) {
      window_->Show(ShowsItself());
      window_->Repaint();
    }
    ViewChanged();
    return S_OK;
  });
}

HRESULT ControlDispatch::FreezeEvents(BOOL) { return S_OK; }

// The class factory's object: a control's face over a control that nothing has started.
IDispatch* NewClassObject(std::string_view class_name) {
  if (UnstartedFactory make = UnstartedFactoryOf(class_name)) {
    return static_cast<ClassDispatch*>(new ControlDispatch(make()));
  }
  ClassFactory make = FactoryOf(class_name);
  if (make == nullptr) Raise(err::kCantCreate);
  return ExposeObject(make());
}

}  // namespace qorvel::win
