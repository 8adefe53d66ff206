#include "qorvel/platform/running_objects_windows.h"

#include <oleauto.h>

#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include "qorvel/platform/com_windows.h"
#include "qorvel/platform/dispatch_windows.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"

namespace qorvel::win {
namespace {

HRESULT ClassIdOf(std::string_view class_name, CLSID* clsid) {
  const std::wstring name = Widen(class_name);
  if (name.starts_with(L"{")) return CLSIDFromString(name.c_str(), clsid);
  return CLSIDFromProgID(name.c_str(), clsid);
}

[[noreturn]] void RaiseRefused(std::string_view what, std::string_view class_name, HRESULT hr) {
  char code[16];
  std::snprintf(code, sizeof code, "0x%08lX", static_cast<unsigned long>(hr));
  Raise(err::kInvalidCall,
        std::string(what) + " \"" + std::string(class_name) + "\" was refused (" + code + ")");
}

// The class object a server registers: each CreateInstance makes one object through the
// server's factory and hands it out as the platform object ExposeObject makes of it.
class FactoryObject final : public IClassFactory {
 public:
  explicit FactoryObject(RunningObjects::Factory factory) : factory_(std::move(factory)) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    if (out == nullptr) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory)) {
      *out = static_cast<IClassFactory*>(this);
      AddRef();
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return InterlockedIncrement(&refs_); }
  ULONG STDMETHODCALLTYPE Release() override {
    const LONG refs = InterlockedDecrement(&refs_);
    if (refs == 0) delete this;
    return refs;
  }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    AutomationObject object;
    try {
      object = factory_();
    } catch (const Error& error) {
      ReportError(error, nullptr);  // leaves the description for the caller's error object
      return ErrorHresult(error.number());
    } catch (...) {
      return E_UNEXPECTED;  // nothing else may cross into the caller's process
    }
    if (!object) return E_FAIL;
    ComPtr<IDispatch> exposed = ComPtr<IDispatch>::Attach(ExposeObject(std::move(object)));
    if (!exposed) return E_OUTOFMEMORY;
    return exposed->QueryInterface(riid, out);
  }
  // The server program decides when it ends; locks don't keep it alive.
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  RunningObjects::Factory factory_;
  LONG refs_ = 1;
};

AutomationObject AsDispatch(IUnknown* object) {
  ComPtr<IDispatch> dispatch;
  if (object == nullptr || FAILED(object->QueryInterface(IID_IDispatch, dispatch.put_void()))) {
    Raise(err::kCantCreate);
  }
  return WrapDispatch(dispatch.get());
}

}  // namespace

WindowsRunningObjects::~WindowsRunningObjects() {
  for (const auto& [name, cookie] : running_) RevokeActiveObject(cookie, nullptr);
  for (const auto& [name, cookie] : servers_) CoRevokeClassObject(cookie);
}

// A real program registers its object when it is ready to serve it, so there is no start-up to
// play here: `visible_from` is not waited for and the object is visible at once.
void WindowsRunningObjects::Register(const std::string& class_name, AutomationObject object,
                                     Clock::time_point /*visible_from*/) {
  Revoke(class_name);
  if (!object) return;
  CLSID clsid;
  if (HRESULT hr = ClassIdOf(class_name, &clsid); FAILED(hr)) {
    RaiseRefused("Registering the running object", class_name, hr);
  }
  ComPtr<IDispatch> exposed = ComPtr<IDispatch>::Attach(ExposeObject(std::move(object)));
  if (!exposed) Raise(err::kOutOfMemory);
  DWORD cookie = 0;
  // Strong: the table keeps the object alive until it is revoked, as the portable table does.
  if (HRESULT hr = RegisterActiveObject(exposed.get(), clsid, ACTIVEOBJECT_STRONG, &cookie);
      FAILED(hr)) {
    RaiseRefused("Registering the running object", class_name, hr);
  }
  std::lock_guard lock(mu_);
  running_[LowerCase(class_name)] = cookie;
}

// The cookie registered under a class name, taken out of `cookies`; none when there is none.
std::optional<DWORD> WindowsRunningObjects::TakeCookie(std::map<std::string, DWORD>& cookies,
                                                       const std::string& class_name) {
  std::lock_guard lock(mu_);
  auto it = cookies.find(LowerCase(class_name));
  if (it == cookies.end()) return std::nullopt;
  const DWORD cookie = it->second;
  cookies.erase(it);
  return cookie;
}

// Outside the lock: revoking releases the object, whose last release may run library code.
void WindowsRunningObjects::Revoke(const std::string& class_name) {
  if (const std::optional<DWORD> cookie = TakeCookie(running_, class_name)) {
    RevokeActiveObject(*cookie, nullptr);
  }
}

AutomationObject WindowsRunningObjects::BindRunning(std::string_view class_name) const {
  CLSID clsid;
  if (FAILED(ClassIdOf(class_name, &clsid))) Raise(err::kCantCreate);
  ComPtr<IUnknown> running;
  if (FAILED(GetActiveObject(clsid, nullptr, running.put()))) Raise(err::kCantCreate);
  return AsDispatch(running.get());
}

void WindowsRunningObjects::RegisterClassServer(const std::string& class_name, Factory factory) {
  RevokeClassServer(class_name);
  if (!factory) return;
  CLSID clsid;
  if (HRESULT hr = ClassIdOf(class_name, &clsid); FAILED(hr)) {
    RaiseRefused("Serving the class", class_name, hr);
  }
  ComPtr<IClassFactory> class_object =
      ComPtr<IClassFactory>::Attach(new FactoryObject(std::move(factory)));
  DWORD cookie = 0;
  if (HRESULT hr = CoRegisterClassObject(clsid, class_object.get(), CLSCTX_LOCAL_SERVER,
                                         REGCLS_MULTIPLEUSE, &cookie);
      FAILED(hr)) {
    RaiseRefused("Serving the class", class_name, hr);
  }
  std::lock_guard lock(mu_);
  servers_[LowerCase(class_name)] = cookie;
}

void WindowsRunningObjects::RevokeClassServer(const std::string& class_name) {
  if (const std::optional<DWORD> cookie = TakeCookie(servers_, class_name)) {
    CoRevokeClassObject(*cookie);
  }
}

AutomationObject WindowsRunningObjects::CreateNew(std::string_view class_name) const {
  CLSID clsid;
  if (FAILED(ClassIdOf(class_name, &clsid))) Raise(err::kCantCreate);
  ComPtr<IDispatch> created;
  if (FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER | CLSCTX_INPROC_SERVER,
                              IID_IDispatch, created.put_void()))) {
    Raise(err::kCantCreate);
  }
  return WrapDispatch(created.get());
}

}  // namespace qorvel::win
