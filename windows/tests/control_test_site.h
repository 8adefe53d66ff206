#ifndef WINDOWS_TESTS_CONTROL_TEST_SITE_H_
#define WINDOWS_TESTS_CONTROL_TEST_SITE_H_

// The smallest container a control can be sited in, and a property bag over a map: what the
// control client drives the library's controls with.

#include <windows.h>

#include <ocidl.h>
#include <ole2.h>

#include <map>
#include <string>

#include "qorvel/platform/com_windows.h"

namespace qorvel::win {

// A client site that holds a control in place in `window` at `place`, and answers the ambient
// UserMode with `user_mode` (or not at all, like ATL's host, when `ambient` is false).
class TestSite final : public IOleClientSite, public IOleInPlaceSite, public IDispatch {
 public:
  TestSite(HWND window, RECT place, bool ambient, bool user_mode)
      : window_(window), place_(place), ambient_(ambient), user_mode_(user_mode) {}

  void set_user_mode(bool user_mode) { user_mode_ = user_mode; }
  int activations = 0;
  int deactivations = 0;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override;

  // IOleClientSite
  HRESULT STDMETHODCALLTYPE SaveObject() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker** m) override;
  HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** c) override;
  HRESULT STDMETHODCALLTYPE ShowObject() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }
  // IOleWindow
  HRESULT STDMETHODCALLTYPE GetWindow(HWND* hwnd) override;
  HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  // IOleInPlaceSite
  HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override;
  HRESULT STDMETHODCALLTYPE OnUIActivate() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** doc,
                                             LPRECT pos, LPRECT clip,
                                             LPOLEINPLACEFRAMEINFO info) override;
  HRESULT STDMETHODCALLTYPE Scroll(SIZE) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override;
  HRESULT STDMETHODCALLTYPE DiscardUndoState() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE OnPosRectChange(LPCRECT) override { return S_OK; }
  // IDispatch: the ambient properties
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* n) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result,
                                   EXCEPINFO*, UINT*) override;

 private:
  ~TestSite() = default;
  ULONG refs_ = 1;
  HWND window_;
  RECT place_;
  bool ambient_;
  bool user_mode_;
};

// A property bag over a map, by name as written.
class MapPropertyBag final : public IPropertyBag {
 public:
  ~MapPropertyBag();
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }  // lives on the test's stack
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override;
  HRESULT STDMETHODCALLTYPE Write(LPCOLESTR name, VARIANT* value) override;

  std::map<std::wstring, VARIANT> values;
};

}  // namespace qorvel::win

#endif  // WINDOWS_TESTS_CONTROL_TEST_SITE_H_
