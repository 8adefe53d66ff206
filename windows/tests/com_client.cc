// What a VBScript under Wine can't check, checked from C++: a running host found the way
// GetObject finds it, events through a connection point, the class information, the DLL
// unloading once everything is released; and, with --bench, the cost of late-bound calls.
// Exits non-zero at the first difference.

#include <windows.h>

#include <ocidl.h>
#include <olectl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/dispatch_windows.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/safe_array.h"
#include "windows/tests/com_client_bench.h"

using namespace qorvel;
using namespace qorvel::win;

namespace {

int failures = 0;

void Check(bool ok, const std::string& what) {
  if (!ok) {
    std::printf("FAILED: %s\n", what.c_str());
    ++failures;
  }
}

// A new object of a class registered by its programmatic name, as a client's runtime makes it.
ComPtr<IDispatch> Create(const wchar_t* prog_id) {
  CLSID clsid;
  ComPtr<IDispatch> object;
  if (FAILED(CLSIDFromProgID(prog_id, &clsid)) ||
      FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_ALL, IID_IDispatch, object.put_void()))) {
    std::printf("FAILED: can't create %ls\n", prog_id);
    std::exit(1);
  }
  return object;
}

// Counts the events a connection point sends it, by DISPID.
class Sink final : public Dispatch {
 public:
  Variant Invoke(std::string_view, CallKind, std::span<Variant>) override { Raise(err::kNoMember); }
  Variant InvokeById(int32_t dispid, CallKind, std::span<Variant> args) override {
    heard += dispid == 1 && args.empty() ? 1 : 1000;
    return {};
  }
  int heard = 0;
};

class SinkDispatch final : public ObjectDispatch {
 public:
  using ObjectDispatch::ObjectDispatch;

 private:
  Variant Call(DISPID id, CallKind kind, std::span<Variant> args) override {
    return object()->InvokeById(id, kind, args);
  }
};

void CheckValueBoxEvents() {
  ComPtr<IDispatch> box = Create(L"QorvelOLE.ValueBox");
  ComPtr<IProvideClassInfo2> info;
  Check(SUCCEEDED(box->QueryInterface(IID_IProvideClassInfo2, info.put_void())),
        "ValueBox gives IProvideClassInfo2");
  GUID events{};
  Check(info && SUCCEEDED(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events)),
        "ValueBox names its outgoing interface");
  ComPtr<IConnectionPointContainer> container;
  ComPtr<IConnectionPoint> point;
  Check(SUCCEEDED(box->QueryInterface(IID_IConnectionPointContainer, container.put_void())) &&
            SUCCEEDED(container->FindConnectionPoint(events, point.put())),
        "ValueBox has a connection point for __ValueBox");
  if (!point) return;
  auto sink = std::make_shared<Sink>();
  ComPtr<IDispatch> sink_dispatch = ComPtr<IDispatch>::Attach(new SinkDispatch(sink));
  DWORD cookie = 0;
  Check(SUCCEEDED(point->Advise(sink_dispatch.get(), &cookie)) && cookie != 0, "Advise");
  AutomationObject object = WrapDispatch(box.get());
  SetMember(object, "value", 2.5);
  Check(sink->heard == 1,
        "one ValueChanged for one value put, heard " + std::to_string(sink->heard));
  Check(GetMember(object, "TextValue").ToText() == "2.500000", "TextValue after value 2.5");
  Check(SUCCEEDED(point->Unadvise(cookie)), "Unadvise");
  SetMember(object, "value", 3.0);
  Check(sink->heard == 1, "nothing heard after Unadvise");
  Check(point->Unadvise(cookie) == CONNECT_E_NOCONNECTION, "a second Unadvise is refused");
  ComPtr<IConnectionPoint> none;
  ComPtr<IDispatch> point_class = Create(L"QorvelOLE.PointClass");
  Check(FAILED(point_class->QueryInterface(IID_IConnectionPointContainer, none.put_void())),
        "PointClass has no outgoing interface");
}

void CheckTypeInformation() {
  ComPtr<IDispatch> tarvik = Create(L"QorvelOLE.Tarvik3");
  ComPtr<ITypeInfo> type;
  UINT count = 0;
  Check(SUCCEEDED(tarvik->GetTypeInfoCount(&count)) && count == 1, "Tarvik3 has type information");
  Check(SUCCEEDED(tarvik->GetTypeInfo(0, 0, type.put())), "GetTypeInfo");
  if (!type) return;
  BSTR name = nullptr;
  type->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr);
  Check(Narrow(name) == "_Tarvik3", "the type information is _Tarvik3's, not " + Narrow(name));
  SysFreeString(name);
  LPOLESTR names[] = {const_cast<LPOLESTR>(L"definetool")};
  DISPID id = 0;
  Check(SUCCEEDED(tarvik->GetIDsOfNames(IID_NULL, names, 1, 0, &id)) && id == 0x60030017,
        "DefineTool's DISPID in any case");
}

// A running host, found as GetObject finds it, is the one the library's control talks to.
void CheckRunningHost() {
  AutomationObject sim = WrapDispatch(Create(L"QorvelSim.Control").get());
  Call(sim, "Run", "Zebrin");
  CLSID clsid;
  ComPtr<IUnknown> running;
  ComPtr<IDispatch> host;
  Check(SUCCEEDED(CLSIDFromProgID(L"Zebrin.Document", &clsid)) &&
            SUCCEEDED(GetActiveObject(clsid, nullptr, running.put())) &&
            SUCCEEDED(running->QueryInterface(IID_IDispatch, host.put_void())),
        "GetActiveObject finds the running Zebrin");
  if (!host) return;
  AutomationObject zebrin = WrapDispatch(Create(L"QorvelOLE.Zebrin").get());
  Call(zebrin, "Connect");
  Check(GetMember(zebrin, "Connected").ToBool() == VariantBool::kTrue, "Zebrin connects");
  Call(zebrin, "Execute", "LINE 0 0 10 10");
  const SafeArray log = Call(sim, "Log", "Zebrin").ToArray();
  const std::string last = log.GetFlat(log.size() - 1).ToText();
  Check(last == "Execute(\"LINE 0 0 10 10\", 0)", "the host saw the command: " + last);
  Call(zebrin, "Disconnect");
  Call(sim, "GoAway", "Zebrin");
  try {
    GetMember(WrapDispatch(host.get()), "version");
    Check(false, "a host that has gone answers 462");
  } catch (const Error& e) {
    Check(e.number() == err::kServerGone,
          "a host that has gone answers 462, not " + std::to_string(e.number()));
  }
}

// A VB client's typed arrays (Dim Names() As String) come back typed: what a script can't pass.
void CheckTypedArraysComeBackTyped() {
  AutomationObject sim = WrapDispatch(Create(L"QorvelSim.Control").get());
  Call(sim, "Run", "Ulmora");
  ComPtr<IDispatch> ulmora = Create(L"QorvelOLE.Ulmora27");
  AutomationObject u = WrapDispatch(ulmora.get());
  Call(u, "Connect");
  Call(u, "Execute", "CREATE POINT P1 1 2 3");
  Call(u, "Execute", "CREATE LINE L1 0 0 0 1 1 1");
  Call(u, "Execute", "SELECT L1 P1");
  SAFEARRAY* names = nullptr;
  SAFEARRAY* types = nullptr;
  LONG number = 0;
  VARIANT args[3];  // the platform's order: last argument first
  args[0].vt = VT_BYREF | VT_I4;
  args[0].plVal = &number;
  args[1].vt = VT_BYREF | VT_ARRAY | VT_BSTR;
  args[1].pparray = &types;
  args[2].vt = VT_BYREF | VT_ARRAY | VT_BSTR;
  args[2].pparray = &names;
  DISPPARAMS params{args, nullptr, 3, 0};
  LPOLESTR member[] = {const_cast<LPOLESTR>(L"GetSelectedEntities")};
  DISPID id = 0;
  ulmora->GetIDsOfNames(IID_NULL, member, 1, 0, &id);
  const HRESULT hr =
      ulmora->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr);
  VARTYPE vt = VT_EMPTY;
  Check(SUCCEEDED(hr) && number == 2 && names && SUCCEEDED(SafeArrayGetVartype(names, &vt)) &&
            vt == VT_BSTR,
        "GetSelectedEntities into typed arrays gives arrays of text");
  if (names) {
    BSTR second = nullptr;
    LONG at = 2;
    SafeArrayGetElement(names, &at, &second);
    Check(Narrow(second) == "P1", "the second name: " + Narrow(second));
    SysFreeString(second);
    SafeArrayDestroy(names);
  }
  if (types) SafeArrayDestroy(types);
  Call(sim, "GoAway", "Ulmora");
}

// Everything released, the DLL says it can go.
void CheckUnload() {
  CoFreeUnusedLibrariesEx(0, 0);
  HMODULE dll = GetModuleHandleA("QorvelOLE.dll");
  if (dll == nullptr) return;  // already unloaded: the answer was yes
  auto can_unload = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(
      reinterpret_cast<void*>(GetProcAddress(dll, "DllCanUnloadNow")));
  Check(can_unload && can_unload() == S_OK, "DllCanUnloadNow says yes once all is released");
}

}  // namespace

int main(int argc, char** argv) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const bool bench = argc > 1 && std::strcmp(argv[1], "--bench") == 0;
  try {
    CheckValueBoxEvents();
    CheckTypeInformation();
    CheckRunningHost();
    CheckTypedArraysComeBackTyped();
    if (bench) RunBenchmarks(argc > 2 ? std::atoi(argv[2]) : 1000);
  } catch (const Error& e) {
    Check(false, "raised " + std::to_string(e.number()) + " " + e.description());
  }
  CheckUnload();
  CoUninitialize();
  std::printf("%s\n", failures ? "com_client: FAILED" : "com_client: passed");
  return failures ? 1 : 0;
}
