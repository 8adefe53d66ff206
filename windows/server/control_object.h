#ifndef WINDOWS_SERVER_CONTROL_OBJECT_H_
#define WINDOWS_SERVER_CONTROL_OBJECT_H_

#include <windows.h>

#include <ocidl.h>
#include <ole2.h>
#include <olectl.h>

#include <memory>
#include <new>

#include "qorvel/frame/control.h"
#include "windows/server/class_dispatch.h"
#include "windows/server/control_life.h"
#include "windows/server/control_site.h"
#include "windows/server/control_window.h"
#include "windows/server/text_box_window.h"

namespace qorvel::win {

// IOleObject's advise members under names of their own: the connection point of ClassDispatch
// has an Unadvise of the same signature.
class OleObjectAdvise : public IOleObject {
 public:
  HRESULT STDMETHODCALLTYPE Advise(IAdviseSink* sink, DWORD* connection) final {
    return AdviseObject(sink, connection);
  }
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD connection) final { return UnadviseObject(connection); }
  HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA** advise) final {
    return EnumAdviseObject(advise);
  }

 protected:
  virtual HRESULT AdviseObject(IAdviseSink* sink, DWORD* connection) = 0;
  virtual HRESULT UnadviseObject(DWORD connection) = 0;
  virtual HRESULT EnumAdviseObject(IEnumSTATDATA** advise) = 0;
};

// One of the library's six controls as an OLE control: the class's dispatch face with what a
// container needs to site it, size it, activate it in place in a window of its own, draw it
// and save it. The container drives the control's life cycle (ControlLife); a scripting client
// that never does gets a control that starts itself at its first member call. The
// implementation is split by job: control_object.cc (the object, IOleObject, IOleControl),
// control_in_place.cc (activation, the window, IOleInPlaceObject and IOleInPlaceActiveObject),
// control_view.cc (IViewObject2), control_persist.cc (IPersistStreamInit and
// IPersistPropertyBag).
class ControlDispatch final : public ClassDispatch,
                              public OleObjectAdvise,
                              public IOleInPlaceObject,
                              public IOleInPlaceActiveObject,
                              public IViewObject2,
                              public IOleControl,
                              public IPersistStreamInit,
                              public IPersistPropertyBag {
 public:
  explicit ControlDispatch(UnstartedControl control);
  ~ControlDispatch() override;

  // IUnknown
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    return ClassDispatch::QueryInterface(riid, out);
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ClassDispatch::AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return ClassDispatch::Release(); }

  // IOleObject
  HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) override;
  HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite** site) override;
  HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR app, LPCOLESTR object) override;
  HRESULT STDMETHODCALLTYPE Close(DWORD save_option) override;
  HRESULT STDMETHODCALLTYPE SetMoniker(DWORD which, IMoniker* moniker) override;
  HRESULT STDMETHODCALLTYPE GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) override;
  HRESULT STDMETHODCALLTYPE InitFromData(IDataObject* data, BOOL creation, DWORD) override;
  HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD, IDataObject** data) override;
  HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, LPMSG msg, IOleClientSite* active_site, LONG index,
                                   HWND parent, LPCRECT pos) override;
  HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB** verbs) override;
  HRESULT STDMETHODCALLTYPE Update() override;
  HRESULT STDMETHODCALLTYPE IsUpToDate() override;
  HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID* clsid) override;
  HRESULT STDMETHODCALLTYPE GetUserType(DWORD form, LPOLESTR* type) override;
  HRESULT STDMETHODCALLTYPE SetExtent(DWORD aspect, SIZEL* size) override;
  HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, SIZEL* size) override;
  HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD aspect, DWORD* status) override;
  HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE* palette) override;

  // IOleWindow, for both in-place interfaces
  HRESULT STDMETHODCALLTYPE GetWindow(HWND* hwnd) override;
  HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL enter) override;
  // IOleInPlaceObject
  HRESULT STDMETHODCALLTYPE InPlaceDeactivate() override;
  HRESULT STDMETHODCALLTYPE UIDeactivate() override;
  HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT pos, LPCRECT clip) override;
  HRESULT STDMETHODCALLTYPE ReactivateAndUndo() override;
  // IOleInPlaceActiveObject
  HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG msg) override;
  HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL activate) override;
  HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL activate) override;
  HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT border, IOleInPlaceUIWindow* window,
                                         BOOL frame) override;
  HRESULT STDMETHODCALLTYPE EnableModeless(BOOL enable) override;

  // IViewObject2
  HRESULT STDMETHODCALLTYPE Draw(DWORD aspect, LONG index, void* aspect_info,
                                 DVTARGETDEVICE* device, HDC target_dc, HDC dc, LPCRECTL bounds,
                                 LPCRECTL window_bounds,
                                 BOOL(STDMETHODCALLTYPE* keep_going)(ULONG_PTR),
                                 ULONG_PTR keep_going_arg) override;
  HRESULT STDMETHODCALLTYPE GetColorSet(DWORD aspect, LONG index, void* aspect_info,
                                        DVTARGETDEVICE* device, HDC target_dc,
                                        LOGPALETTE** colors) override;
  HRESULT STDMETHODCALLTYPE Freeze(DWORD aspect, LONG index, void* aspect_info,
                                   DWORD* freeze) override;
  HRESULT STDMETHODCALLTYPE Unfreeze(DWORD freeze) override;
  HRESULT STDMETHODCALLTYPE SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) override;
  HRESULT STDMETHODCALLTYPE GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) override;
  HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, LONG index, DVTARGETDEVICE* device,
                                      LPSIZEL size) override;

  // IOleControl
  HRESULT STDMETHODCALLTYPE GetControlInfo(CONTROLINFO* info) override;
  HRESULT STDMETHODCALLTYPE OnMnemonic(MSG* msg) override;
  HRESULT STDMETHODCALLTYPE OnAmbientPropertyChange(DISPID id) override;
  HRESULT STDMETHODCALLTYPE FreezeEvents(BOOL freeze) override;

  // IPersist, for both persistence interfaces
  HRESULT STDMETHODCALLTYPE GetClassID(CLSID* clsid) override;
  // IPersistStreamInit and IPersistPropertyBag
  HRESULT STDMETHODCALLTYPE InitNew() override;
  HRESULT STDMETHODCALLTYPE IsDirty() override;
  HRESULT STDMETHODCALLTYPE Load(IStream* stream) override;
  HRESULT STDMETHODCALLTYPE Save(IStream* stream, BOOL clear_dirty) override;
  HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) override;
  HRESULT STDMETHODCALLTYPE Load(IPropertyBag* bag, IErrorLog* log) override;
  HRESULT STDMETHODCALLTYPE Save(IPropertyBag* bag, BOOL clear_dirty, BOOL save_all) override;

 protected:
  HRESULT AdviseObject(IAdviseSink* sink, DWORD* connection) override;
  HRESULT UnadviseObject(DWORD connection) override;
  HRESULT EnumAdviseObject(IEnumSTATDATA** advise) override;

 private:
  void* QueryOther(REFIID riid) override;
  Variant Call(DISPID id, CallKind kind, std::span<Variant> args) override;

  // The one translation of the library's errors for the control interfaces: the error's
  // HRESULT, with its description as the thread's error information.
  template <class F>
  static HRESULT Guarded(F&& step) noexcept;

  // The control's own size in pixels, as its window takes it.
  SIZE PixelSize() const;
  // Whether the control shows itself now: a control invisible at run time doesn't, there.
  bool ShowsItself() const;
  void InPlaceActivate(LONG verb, IOleClientSite* active_site, HWND parent, LPCRECT pos);
  void UIActivate();
  void Layout();
  void ViewChanged();

  ControlLife life_;
  DWORD misc_status_;
  std::shared_ptr<ClientSite> site_;
  ComPtr<IOleAdviseHolder> advise_holder_;
  ComPtr<IAdviseSink> view_sink_;
  DWORD view_aspects_ = 0;
  DWORD view_flags_ = 0;
  // In place: the site's interfaces, the window and Text1's window in it.
  ComPtr<IOleInPlaceSite> in_place_site_;
  ComPtr<IOleInPlaceFrame> frame_;
  ComPtr<IOleInPlaceUIWindow> document_;
  RECT position_{};
  std::unique_ptr<ControlWindow> window_;
  std::unique_ptr<TextBoxWindow> text1_window_;
  bool ui_active_ = false;
  bool dirty_ = false;
};

template <class F>
HRESULT ControlDispatch::Guarded(F&& step) noexcept {
  try {
    return step();
  } catch (const Error& error) {
    ReportError(error, nullptr);
    return ErrorHresult(error.number());
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

// The object a class factory hands out for a class of the library: a control's with the OLE
// control interfaces, not started; a plain class's through ExposeObject.
IDispatch* NewClassObject(std::string_view class_name);

}  // namespace qorvel::win

#endif  // WINDOWS_SERVER_CONTROL_OBJECT_H_
