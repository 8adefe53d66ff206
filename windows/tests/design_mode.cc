// The six controls in a form designer of our own, whose ambient UserMode is false: each sited,
// started new and in-place activated, sized as its kind says, and drawn through IViewObject
// into a strip of pictures; the ValueBox's design-time properties readable.

#include <windows.h>

#include <ocidl.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "qorvel/platform/dispatch.h"
#include "windows/tests/checks.h"
#include "windows/tests/control_phases.h"
#include "windows/tests/controls.h"
#include "windows/tests/edit_keys.h"
#include "windows/tests/forms.h"
#include "windows/tests/test_site.h"

namespace qorvel::win::testing {
namespace {

constexpr int kCell = 140;
constexpr int kDrawn = 48;  // pixels drawn for each picture: more than any control's size

struct Designed {
  ComPtr<IOleObject> control;
  TestSite* site = nullptr;
};

long PixelsOfHimetric(long himetric, bool horizontal) {
  HDC screen = GetDC(nullptr);
  const int per_inch = GetDeviceCaps(screen, horizontal ? LOGPIXELSX : LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return MulDiv(himetric, per_inch, 2540);
}

// The control drawn by IViewObject::Draw at its own extent on white; its pixels come back in
// `bits`, one COLORREF-like value each.
HBITMAP Draw(IUnknown* control, const SIZEL& extent, std::vector<DWORD>* bits, HRESULT* hr) {
  ComPtr<IViewObject> view;
  *hr = control->QueryInterface(IID_IViewObject, view.put_void());
  if (FAILED(*hr)) return nullptr;
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = kDrawn;
  info.bmiHeader.biHeight = -kDrawn;  // top-down
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* pixels = nullptr;
  HDC screen = GetDC(nullptr);
  HDC dc = CreateCompatibleDC(screen);
  ReleaseDC(nullptr, screen);
  HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
  HGDIOBJ old = SelectObject(dc, bitmap);
  RECT all = {0, 0, kDrawn, kDrawn};
  FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  const RECTL bounds = {0, 0, PixelsOfHimetric(extent.cx, true),
                        PixelsOfHimetric(extent.cy, false)};
  *hr =
      view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, dc, &bounds, nullptr, nullptr, 0);
  GdiFlush();
  const auto* first = static_cast<const DWORD*>(pixels);
  bits->assign(first, first + kDrawn * kDrawn);
  SelectObject(dc, old);
  DeleteDC(dc);
  return bitmap;
}

int Painted(const std::vector<DWORD>& bits) {
  int painted = 0;
  for (DWORD pixel : bits) painted += (pixel & 0xFFFFFF) != 0xFFFFFF;
  return painted;
}

void Release(std::vector<Designed>& designed) {
  for (Designed& d : designed) {
    if (d.control) {
      d.control->Close(OLECLOSE_NOSAVE);
      d.control->SetClientSite(nullptr);
      d.control.reset();
    }
    if (d.site) d.site->Release();
  }
  designed.clear();
  PumpMessages();
}

void CheckExtent(const ControlKind& kind, IUnknown* control, const SIZEL& asked) {
  const std::optional<SIZEL> extent = ExtentOf(control);
  Check(extent.has_value(), std::string(kind.name) + " answers GetExtent at design time");
  const long want_x = kind.sizing == Sizing::kFixed500   ? HimetricOfTwips(500)
                      : kind.sizing == Sizing::kImage480 ? HimetricOfTwips(480)
                                                         : asked.cx;
  const long want_y = kind.sizing == Sizing::kFree ? asked.cy : want_x;
  Check(std::abs(extent->cx - want_x) <= 1 && std::abs(extent->cy - want_y) <= 1,
        std::string(kind.name) + " at design time is " + std::to_string(extent->cx) + " by " +
            std::to_string(extent->cy) + " HIMETRIC after the designer asked for " +
            std::to_string(asked.cx) + " by " + std::to_string(asked.cy));
}

void DesignAll(HWND form, HWND strip, std::vector<Designed>& designed) {
  std::vector<std::vector<DWORD>> drawings;
  int x = 10;
  for (const ControlKind& kind : Controls()) {
    const bool value_box = kind.sizing == Sizing::kFree;
    CreateLabel(form, kind.prog_id + 10, {x, 10, x + kCell - 10, 30});
    RECT place = {x, 40, x + (value_box ? 120 : 64), 40 + (value_box ? 26 : 64)};
    HRESULT hr = S_OK;
    Designed& d = designed.emplace_back();
    d.control = CreateControl(kind.prog_id, &hr);
    Check(static_cast<bool>(d.control),
          std::string("a new ") + kind.name + " as IOleObject (" + HresultText(hr) + ")");
    d.site = new TestSite(form, place, /*user_mode=*/false);
    Check(SUCCEEDED(d.control->SetClientSite(d.site)), "SetClientSite with our designer's site");
    ComPtr<IPersistStreamInit> persist;
    Check(SUCCEEDED(d.control->QueryInterface(IID_IPersistStreamInit, persist.put_void())) &&
              SUCCEEDED(persist->InitNew()),
          std::string(kind.name) + " starts new through IPersistStreamInit::InitNew");
    // A designer's user drags the control to 1000 by 1000 HIMETRIC; the ValueBox, which follows
    // its container, to the size of the place it is given (120 by 26 pixels at 96 dpi).
    const SIZEL asked =
        value_box ? SIZEL{MulDiv(120, 2540, 96), MulDiv(26, 2540, 96)} : SIZEL{1000, 1000};
    SIZEL ask = asked;
    d.control->SetExtent(DVASPECT_CONTENT, &ask);
    hr = d.control->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, d.site, 0, form, &place);
    Check(SUCCEEDED(hr) && d.site->in_place_active(),
          std::string(kind.name) + " in-place activates in our designer (" + HresultText(hr) + ")");
    PumpMessages();
    HWND own = InPlaceWindowOf(d.control.get());
    Check(own != nullptr && IsChild(form, own) && IsWindowVisible(own),
          std::string(kind.name) + " shows its own window in our form at design time");
    CheckExtent(kind, d.control.get(), asked);
    const SIZEL extent = ExtentOf(d.control.get()).value_or(asked);
    std::vector<DWORD> bits;
    HBITMAP bitmap = Draw(d.control.get(), extent, &bits, &hr);
    Check(bitmap != nullptr && SUCCEEDED(hr), std::string(kind.name) +
                                                  " draws itself through IViewObject::Draw (" +
                                                  HresultText(hr) + ")");
    AddPicture(strip, bitmap, {x, 8});
    if (!value_box) {
      Check(Painted(bits) > 0, std::string(kind.name) + " draws its picture: " +
                                   std::to_string(Painted(bits)) + " pixels not white");
      for (size_t other = 0; other < drawings.size(); ++other) {
        Check(drawings[other] != bits,
              std::string(kind.name) + "'s picture differs from " + Controls()[other].name + "'s");
      }
      drawings.push_back(bits);
    }
    x += kCell;
  }
}

void CheckValueBoxAtDesignTime(IUnknown* control) {
  const AutomationObject box = AutomationOf(control);
  Check(GetMember(box, "DecimalPlaces").ToInteger() == 6,
        "ValueBox.DecimalPlaces reads 6 at design time");
  Check(GetMember(box, "Readonly").ToBool() == VariantBool::kFalse,
        "ValueBox.Readonly reads False at design time");
  HWND edit = FindEdit(InPlaceWindowOf(control));
  Check(edit != nullptr && EditText(edit).empty(), "a new ValueBox shows an empty box");
}

}  // namespace

void CheckDesignMode(const Screens& screens) {
  Note("== design mode: the six controls in a designer of our own (UserMode false)");
  const Form form(L"QorvelOLE controls at design time", {0, 0, 6 * kCell + 30, 230});
  Check(form != nullptr, "a form window");
  CreateLabel(form, L"Drawn with IViewObject::Draw:", {10, 110, 300, 130});
  HWND strip = CreatePictureStrip(form, {10, 132, 6 * kCell + 10, 132 + 66});
  std::vector<Designed> designed;
  try {
    DesignAll(form, strip, designed);
    CheckValueBoxAtDesignTime(designed.back().control.get());
    if (screens.wanted())
      Check(screens.Take(L"design"), "the runner took the design-mode screenshot");
  } catch (...) {
    if (screens.wanted()) screens.Take(L"design");  // the screen as it stood at the difference
    Release(designed);
    throw;
  }
  Release(designed);
}

}  // namespace qorvel::win::testing
