#include "windows/tests/controls.h"

#include <cmath>
#include <cstdio>

#include "qorvel/platform/dispatch_windows.h"
#include "qorvel/platform/error.h"

namespace qorvel::win::testing {
namespace {

constexpr ControlKind kControls[] = {
    {L"QorvelOLE.Zebrin", "Zebrin", Sizing::kFixed500},
    {L"QorvelOLE.Tarvik3", "Tarvik3", Sizing::kFixed500},
    {L"QorvelOLE.Ulmora27", "Ulmora27", Sizing::kFixed500},
    {L"QorvelOLE.UlmoraNearestPoints", "UlmoraNearestPoints", Sizing::kImage480},
    {L"QorvelOLE.UlmoraSurfaceInfo", "UlmoraSurfaceInfo", Sizing::kImage480},
    {L"QorvelOLE.ValueBox", "ValueBox", Sizing::kFree},
};

}  // namespace

std::span<const ControlKind> Controls() { return kControls; }
const ControlKind& ValueBoxKind() { return kControls[5]; }

long HimetricOfTwips(double twips) { return std::lround(twips * 2540.0 / 1440.0); }

long HimetricOfPixels(long pixels, bool horizontal) {
  HDC screen = GetDC(nullptr);
  const int per_inch = GetDeviceCaps(screen, horizontal ? LOGPIXELSX : LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return MulDiv(pixels, 2540, per_inch);
}

std::string HresultText(HRESULT hr) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(hr));
  return text;
}

ComPtr<IOleObject> CreateControl(const wchar_t* prog_id, HRESULT* hr) {
  ComPtr<IOleObject> control;
  CLSID clsid;
  *hr = CLSIDFromProgID(prog_id, &clsid);
  if (SUCCEEDED(*hr)) {
    *hr =
        CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IOleObject, control.put_void());
  }
  if (FAILED(*hr)) control.reset();
  return control;
}

AutomationObject AutomationOf(IUnknown* control) {
  ComPtr<IDispatch> dispatch;
  if (control == nullptr || FAILED(control->QueryInterface(IID_IDispatch, dispatch.put_void()))) {
    return {};
  }
  return WrapDispatch(dispatch.get());
}

std::optional<int32_t> RaisedNumber(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& e) {
    return e.number();
  }
  return std::nullopt;
}

std::optional<SIZEL> ExtentOf(IUnknown* control) {
  ComPtr<IOleObject> object;
  SIZEL extent{};
  if (control == nullptr || FAILED(control->QueryInterface(IID_IOleObject, object.put_void())) ||
      FAILED(object->GetExtent(DVASPECT_CONTENT, &extent))) {
    return std::nullopt;
  }
  return extent;
}

HWND InPlaceWindowOf(IUnknown* control) {
  ComPtr<IOleInPlaceObject> in_place;
  HWND window = nullptr;
  if (control == nullptr ||
      FAILED(control->QueryInterface(IID_IOleInPlaceObject, in_place.put_void())) ||
      FAILED(in_place->GetWindow(&window))) {
    return nullptr;
  }
  return window;
}

}  // namespace qorvel::win::testing
