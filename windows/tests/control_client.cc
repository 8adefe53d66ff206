// The library's controls in a container of their own: a ValueBox sited, initialised, sized and
// activated in place in a window, saved into a property bag and into a stream and loaded into
// new ones; the fixed sizes and run-time invisibility of the service controls; bad saved state
// refused; the life cycle as the control log records it; the DLL unloading at the end. Needs a
// display (xvfb-run). Exits non-zero at the first difference.

#include <windows.h>

#include <ocidl.h>
#include <olectl.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/dispatch_windows.h"
#include "qorvel/platform/error.h"
#include "windows/tests/memory_property_bag.h"
#include "windows/tests/test_site.h"

using namespace qorvel;
using namespace qorvel::win;
using qorvel::win::testing::MemoryPropertyBag;
using qorvel::win::testing::TestSite;

namespace {

int failures = 0;
std::string log_path;

void Check(bool ok, const std::string& what) {
  if (!ok) {
    std::printf("FAILED: %s\n", what.c_str());
    ++failures;
  }
}

template <class T>
ComPtr<T> As(IUnknown* object, REFIID iid) {
  ComPtr<T> out;
  if (object) object->QueryInterface(iid, out.put_void());
  return out;
}

ComPtr<IOleObject> CreateControl(const wchar_t* prog_id) {
  CLSID clsid;
  ComPtr<IOleObject> object;
  if (FAILED(CLSIDFromProgID(prog_id, &clsid)) ||
      FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IOleObject,
                              object.put_void()))) {
    std::printf("FAILED: can't create %ls as an OLE object\n", prog_id);
    std::exit(1);
  }
  return object;
}

// The log's lines so far, then emptied.
std::string TakeLog() {
  std::ifstream in(log_path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  in.close();
  std::ofstream(log_path, std::ios::trunc).close();
  std::string lines;
  for (char c : text.str()) {
    if (c != '\r') lines += c == '\n' ? '|' : c;
  }
  return lines;
}

HWND MakeFormWindow() {
  WNDCLASSW wc{};
  wc.lpfnWndProc = DefWindowProcW;
  wc.hInstance = GetModuleHandleW(nullptr);
  wc.lpszClassName = L"ControlClientForm";
  wc.hbrBackground = GetSysColorBrush(COLOR_WINDOW);
  RegisterClassW(&wc);
  HWND form = CreateWindowW(L"ControlClientForm", L"control client",
                            WS_OVERLAPPEDWINDOW | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 400, 300,
                            nullptr, nullptr, wc.hInstance, nullptr);
  if (form == nullptr) {
    std::printf("FAILED: no window (is there a display? run under xvfb-run)\n");
    std::exit(1);
  }
  return form;
}

SIZEL Himetric(LONG twips_w, LONG twips_h) {
  return {MulDiv(twips_w, 2540, 1440), MulDiv(twips_h, 2540, 1440)};
}

bool HasEditChild(HWND window) {
  wchar_t name[32] = {};
  HWND child = GetWindow(window, GW_CHILD);
  return child && GetClassNameW(child, name, 32) && lstrcmpiW(name, L"Edit") == 0;
}

// A ValueBox the way a container takes one: site, InitNew, extent, in place, members, saved.
void CheckValueBoxInContainer(HWND form, MemoryPropertyBag& bag, ComPtr<IStream>& stream) {
  ComPtr<IOleObject> box = CreateControl(L"QorvelOLE.ValueBox");
  DWORD misc = 0;
  Check(SUCCEEDED(box->GetMiscStatus(DVASPECT_CONTENT, &misc)) && misc == 0x20191,
        "ValueBox's misc status is 0x20191");
  auto* site = new TestSite(form, {10, 10, 130, 35}, true);
  Check(SUCCEEDED(box->SetClientSite(site)), "SetClientSite");
  auto persist = As<IPersistPropertyBag>(box.get(), IID_IPersistPropertyBag);
  Check(persist && SUCCEEDED(persist->InitNew()), "IPersistPropertyBag::InitNew");
  Check(persist && persist->InitNew() == E_UNEXPECTED, "a second InitNew is refused");
  SIZEL size = Himetric(1800, 375);
  Check(SUCCEEDED(box->SetExtent(DVASPECT_CONTENT, &size)), "SetExtent");
  SIZEL back{};
  box->GetExtent(DVASPECT_CONTENT, &back);
  Check(std::abs(back.cx - size.cx) <= 1 && std::abs(back.cy - size.cy) <= 1,
        "ValueBox keeps the container's extent, got " + std::to_string(back.cx));
  RECT place{10, 10, 130, 35};
  Check(SUCCEEDED(box->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, site, 0, form, &place)),
        "DoVerb INPLACEACTIVATE");
  auto in_place = As<IOleInPlaceObject>(box.get(), IID_IOleInPlaceObject);
  HWND window = nullptr;
  Check(in_place && SUCCEEDED(in_place->GetWindow(&window)) && window, "the control's window");
  Check(GetParent(window) == form, "the control's window is a child of the site's");
  Check(IsWindowVisible(window), "ValueBox shows at run time");
  Check(HasEditChild(window), "Text1 is an EDIT in the control's window");
  RECT r{};
  GetWindowRect(window, &r);
  MapWindowPoints(nullptr, form, reinterpret_cast<POINT*>(&r), 2);
  Check(r.left == 10 && r.top == 10 && r.right == 130 && r.bottom == 35,
        "the window stands where the site put it");
  RECT moved{20, 40, 220, 70};
  Check(in_place && SUCCEEDED(in_place->SetObjectRects(&moved, &moved)), "SetObjectRects");
  GetWindowRect(window, &r);
  Check(r.right - r.left == 200 && r.bottom - r.top == 30, "ValueBox follows the new size");
  auto active = As<IOleInPlaceActiveObject>(box.get(), IID_IOleInPlaceActiveObject);
  MSG msg{};
  Check(active && active->TranslateAccelerator(&msg) == S_FALSE, "no accelerators");

  AutomationObject object = WrapDispatch(As<IDispatch>(box.get(), IID_IDispatch).get());
  SetMember(object, "value", 2.5);
  SetMember(object, "DecimalPlaces", int16_t{3});
  Check(GetMember(object, "TextValue").ToText() == "2.500", "TextValue with 3 places");
  try {
    GetMember(object, "DecimalPlaces");
    Check(false, "DecimalPlaces can't be read at run time");
  } catch (const Error& e) {
    Check(e.number() == 393, "DecimalPlaces at run time raises 393");
  }
  auto stream_persist = As<IPersistStreamInit>(box.get(), IID_IPersistStreamInit);
  Check(stream_persist && stream_persist->IsDirty() == S_OK, "changed properties make it dirty");
  Check(SUCCEEDED(persist->Save(&bag, TRUE, FALSE)), "IPersistPropertyBag::Save");
  const VARIANT* value = bag.Find(L"Value");
  Check(value && value->vt == VT_R8 && value->dblVal == 2.5, "Value saved as a Double");
  const VARIANT* places = bag.Find(L"DecimalPlaces");
  Check(places && places->vt == VT_I2 && places->iVal == 3, "DecimalPlaces saved as an Integer");
  Check(!bag.Find(L"ReadOnly"), "ReadOnly at its default is left out");
  CreateStreamOnHGlobal(nullptr, TRUE, stream.put());
  Check(stream_persist && SUCCEEDED(stream_persist->Save(stream.get(), TRUE)),
        "IPersistStreamInit::Save");
  Check(stream_persist->IsDirty() == S_FALSE, "saving clears the dirty flag");

  Check(SUCCEEDED(box->Close(OLECLOSE_NOSAVE)), "Close");
  Check(site->deactivations() == 1, "Close deactivates in place");
  box->SetClientSite(nullptr);
  site->Release();
  Check(TakeLog() ==
            "ValueBox Initialize|ValueBox InitProperties|ValueBox Resize|ValueBox Resize|"
            "ValueBox WriteProperties|ValueBox WriteProperties|ValueBox Terminate|",
        "the life cycle of a new ValueBox in the log");
}

// A saved ValueBox in a designer: loaded, not new, and its design-time properties readable.
void CheckValueBoxLoaded(HWND form, MemoryPropertyBag& bag, IStream* stream) {
  {
    ComPtr<IOleObject> box = CreateControl(L"QorvelOLE.ValueBox");
    auto* site = new TestSite(form, {0, 0, 100, 25}, false);
    box->SetClientSite(site);
    auto persist = As<IPersistPropertyBag>(box.get(), IID_IPersistPropertyBag);
    Check(persist && SUCCEEDED(persist->Load(&bag, nullptr)), "IPersistPropertyBag::Load");
    AutomationObject object = WrapDispatch(As<IDispatch>(box.get(), IID_IDispatch).get());
    Check(GetMember(object, "value").ToDouble() == 2.5, "the loaded value");
    Check(GetMember(object, "DecimalPlaces").ToInteger() == 3, "DecimalPlaces in a designer");
    Check(GetMember(object, "Readonly").ToBool() == VariantBool::kFalse, "Readonly's default");
    box->Close(OLECLOSE_NOSAVE);
    box->SetClientSite(nullptr);
    site->Release();
  }
  Check(TakeLog() == "ValueBox Initialize|ValueBox ReadProperties|ValueBox Terminate|",
        "the life cycle of a loaded ValueBox in the log");
  {
    ComPtr<IOleObject> box = CreateControl(L"QorvelOLE.ValueBox");
    auto persist = As<IPersistStreamInit>(box.get(), IID_IPersistStreamInit);
    LARGE_INTEGER start{};
    stream->Seek(start, STREAM_SEEK_SET, nullptr);
    Check(persist && SUCCEEDED(persist->Load(stream)), "IPersistStreamInit::Load");
    AutomationObject object = WrapDispatch(As<IDispatch>(box.get(), IID_IDispatch).get());
    Check(GetMember(object, "TextValue").ToText() == "2.500", "the stream kept value and places");
  }
  Check(TakeLog() == "ValueBox Initialize|ValueBox ReadProperties|ValueBox Terminate|",
        "a loaded control that was never sized gets no Resize");
}

// Saved state that can't be right is refused with an error, and the control can still start.
void CheckBadSavedState() {
  ComPtr<IOleObject> box = CreateControl(L"QorvelOLE.ValueBox");
  MemoryPropertyBag bad;
  VARIANT big;
  big.vt = VT_I4;
  big.lVal = 100000;
  bad.Write(L"DecimalPlaces", &big);
  auto persist = As<IPersistPropertyBag>(box.get(), IID_IPersistPropertyBag);
  Check(persist && FAILED(persist->Load(&bad, nullptr)),
        "a DecimalPlaces beyond 16 bits is refused");
  Check(SUCCEEDED(persist->InitNew()), "a refused load leaves the control to start afresh");
  ComPtr<IOleObject> other = CreateControl(L"QorvelOLE.ValueBox");
  ComPtr<IStream> junk;
  CreateStreamOnHGlobal(nullptr, TRUE, junk.put());
  junk->Write("QVPB\x01\x00\x05\x00\xff\xff\x00\x00", 12, nullptr);
  LARGE_INTEGER start{};
  junk->Seek(start, STREAM_SEEK_SET, nullptr);
  auto stream_persist = As<IPersistStreamInit>(other.get(), IID_IPersistStreamInit);
  Check(stream_persist && FAILED(stream_persist->Load(junk.get())), "a damaged stream is refused");
  junk->Seek(start, STREAM_SEEK_SET, nullptr);
  Check(FAILED(stream_persist->Load(junk.get())), "and refused again, nothing half-loaded");
  box.reset();
  persist.reset();
  other.reset();
  stream_persist.reset();
  Check(TakeLog() == "ValueBox Initialize|ValueBox InitProperties|ValueBox Terminate|",
        "a bag refused before the control read it, then InitNew; the damaged stream's control "
        "never started");
}

// The service controls: a fixed size whatever is asked, invisible at run time, shown and drawn
// in a designer, InitProperties with InitNew though they save nothing.
void CheckServiceControls(HWND form) {
  struct Case {
    const wchar_t* prog_id;
    LONG twips;
    DWORD misc;
  };
  for (const Case& c : {Case{L"QorvelOLE.Zebrin", 500, 0x24591},
                        Case{L"QorvelOLE.UlmoraSurfaceInfo", 480, 0x20591}}) {
    const std::string name = Narrow(c.prog_id, wcslen(c.prog_id));
    ComPtr<IOleObject> control = CreateControl(c.prog_id);
    DWORD misc = 0;
    control->GetMiscStatus(DVASPECT_CONTENT, &misc);
    Check(misc == c.misc, name + "'s misc status");
    auto* site = new TestSite(form, {0, 0, 300, 200}, true);
    auto persist = As<IPersistStreamInit>(control.get(), IID_IPersistStreamInit);
    Check(persist && SUCCEEDED(persist->InitNew()), name + " InitNew");
    control->SetClientSite(site);
    SIZEL asked = Himetric(4000, 3000);
    control->SetExtent(DVASPECT_CONTENT, &asked);
    SIZEL kept{};
    control->GetExtent(DVASPECT_CONTENT, &kept);
    Check(kept.cx == MulDiv(c.twips, 2540, 1440) && kept.cy == kept.cx,
          name + " keeps its size, not " + std::to_string(kept.cx));
    RECT place{0, 0, 300, 200};
    control->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, site, 0, form, &place);
    HWND window = nullptr;
    As<IOleInPlaceObject>(control.get(), IID_IOleInPlaceObject)->GetWindow(&window);
    Check(window && !IsWindowVisible(window), name + " shows nothing at run time");
    site->set_user_mode(false);
    As<IOleControl>(control.get(), IID_IOleControl)->OnAmbientPropertyChange(-709);
    Check(window && IsWindowVisible(window), name + " shows itself in a designer");
    RECT r{};
    GetClientRect(window, &r);
    Check(r.right == MulDiv(c.twips, 96, 1440), name + "'s window has its own size");
    HDC dc = CreateCompatibleDC(nullptr);
    HBITMAP bitmap = CreateCompatibleBitmap(GetDC(nullptr), 40, 40);
    SelectObject(dc, bitmap);
    RECTL bounds{0, 0, 34, 34};
    auto view = As<IViewObject2>(control.get(), IID_IViewObject2);
    Check(view && SUCCEEDED(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, dc, &bounds,
                                       nullptr, nullptr, 0)),
          name + " draws its picture");
    DeleteDC(dc);
    DeleteObject(bitmap);
    ComPtr<IStream> stream;
    CreateStreamOnHGlobal(nullptr, TRUE, stream.put());
    Check(SUCCEEDED(persist->Save(stream.get(), TRUE)), name + " saves (nothing)");
    control->SetClientSite(nullptr);
    site->Release();
    control.reset();
    persist.reset();
    view.reset();
    const std::string n = name.substr(name.find('.') + 1);
    const std::string log = TakeLog();
    Check(log == n + " Initialize|" + n + " InitProperties|" + n + " Resize|" + n +
                     " WriteProperties|" + n + " Terminate|",
          name + "'s life cycle in the log, Terminate at the last release: " + log);
  }
}

// A scripting client never initialises: the control starts itself at its first member.
void CheckScriptingClient() {
  CLSID clsid;
  CLSIDFromProgID(L"QorvelOLE.ValueBox", &clsid);
  ComPtr<IDispatch> box;
  CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, box.put_void());
  Check(TakeLog().empty(), "nothing runs before the first member");
  AutomationObject object = WrapDispatch(box.get());
  Check(GetMember(object, "TextValue").ToText() == "0.000000", "a new ValueBox's TextValue");
  box.reset();
  object.reset();
  Check(TakeLog() ==
            "ValueBox Initialize|ValueBox InitProperties|ValueBox Resize|ValueBox Terminate|",
        "a scripting client's control starts itself in the run-time container");
}

void CheckUnload() {
  CoFreeUnusedLibrariesEx(0, 0);
  HMODULE dll = GetModuleHandleA("QorvelOLE.dll");
  if (dll == nullptr) return;
  auto can_unload = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(
      reinterpret_cast<void*>(GetProcAddress(dll, "DllCanUnloadNow")));
  Check(can_unload && can_unload() == S_OK, "DllCanUnloadNow says yes after the form closes");
}

}  // namespace

int main() {
  wchar_t temp[MAX_PATH];
  GetTempPathW(MAX_PATH, temp);
  log_path = Narrow(temp, wcslen(temp)) + "qorvel_control_client.log";
  DeleteFileA(log_path.c_str());
  SetEnvironmentVariableW(L"QORVEL_CONTROL_LOG", Widen(log_path).c_str());
  OleInitialize(nullptr);
  HWND form = MakeFormWindow();
  try {
    MemoryPropertyBag bag;
    ComPtr<IStream> stream;
    CheckValueBoxInContainer(form, bag, stream);
    CheckValueBoxLoaded(form, bag, stream.get());
    CheckBadSavedState();
    CheckServiceControls(form);
    CheckScriptingClient();
  } catch (const Error& e) {
    Check(false, "raised " + std::to_string(e.number()) + " " + e.description());
  }
  DestroyWindow(form);
  CheckUnload();
  OleUninitialize();
  std::printf("%s\n", failures ? "control_client: FAILED" : "control_client: passed");
  return failures ? 1 : 0;
}
