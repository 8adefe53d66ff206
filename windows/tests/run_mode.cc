// The six controls at run time in Wine's ATL host: each created, in-place activated and sized
// as its kind says, its life cycle as the DLL logs it; the ValueBox typed into; everything gone
// when the form is destroyed.

#include <windows.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "qorvel/platform/dispatch.h"
#include "windows/tests/checks.h"
#include "windows/tests/control_phases.h"
#include "windows/tests/controls.h"
#include "windows/tests/edit_keys.h"
#include "windows/tests/event_counter.h"

namespace qorvel::win::testing {
namespace {

// Where ATL sites a control that doesn't have what ATL needs: the class's own answer to
// CoCreateInstance for IOleObject.
std::string WhyNotSited(const ControlKind& kind) {
  HRESULT hr = S_OK;
  ComPtr<IOleObject> control = CreateControl(kind.prog_id, &hr);
  if (hr == E_NOINTERFACE) return "the control has no IOleObject: it isn't an ActiveX control yet";
  if (FAILED(hr)) return "CoCreateInstance for IOleObject gave " + HresultText(hr);
  return "the control was made, but ATL didn't keep it";
}

bool Near(long got, long want) { return std::labs(got - want) <= 1; }

void CheckExtent(const ControlKind& kind, IUnknown* control, HWND window, const char* where) {
  const std::optional<SIZEL> extent = ExtentOf(control);
  Check(extent.has_value(), std::string(kind.name) + " answers GetExtent " + where);
  long want_x = 0, want_y = 0;
  std::string why;
  switch (kind.sizing) {
    case Sizing::kFixed500:
      want_x = want_y = HimetricOfTwips(500);
      why = "500 by 500 twips, whatever ATL asked";
      break;
    case Sizing::kImage480:
      want_x = want_y = HimetricOfTwips(480);
      why = "its image's 480 by 480 twips, whatever ATL asked";
      break;
    case Sizing::kFree: {
      RECT client;
      GetClientRect(window, &client);
      want_x = HimetricOfPixels(client.right, true);
      want_y = HimetricOfPixels(client.bottom, false);
      why = "the size ATL gave it, " + std::to_string(client.right) + " by " +
            std::to_string(client.bottom) + " pixels";
      break;
    }
  }
  Check(Near(extent->cx, want_x) && Near(extent->cy, want_y),
        std::string(kind.name) + "'s extent " + where + " is " + std::to_string(extent->cx) +
            " by " + std::to_string(extent->cy) + " HIMETRIC: " + why);
}

void CheckLifeCycle(const ControlLog& log, const ControlKind& kind) {
  const std::string what = std::string(kind.name) + "'s life cycle in ATL";
  if (!log.named()) return NotChecked(what, "QORVEL_CONTROL_LOG isn't set");
  const std::vector<std::string> events = log.EventsOf(kind.name);
  if (events.empty()) return NotChecked(what, "the DLL wrote nothing to the control log");
  const std::string sequence = Sequence(events);
  Check(sequence.rfind("Initialize, InitProperties, Resize", 0) == 0 &&
            sequence.find("Terminate") == std::string::npos,
        what + ": " + sequence);
}

// The ValueBox's EDIT fills the control (Text1 follows any size of 100 twips and more).
void CheckEditFills(HWND window, HWND edit, const char* when) {
  RECT client, box;
  GetClientRect(window, &client);
  GetWindowRect(edit, &box);
  Check(box.right - box.left == client.right && box.bottom - box.top == client.bottom,
        std::string("the ValueBox's EDIT fills the control ") + when + ": " +
            std::to_string(box.right - box.left) + " by " + std::to_string(box.bottom - box.top) +
            " pixels");
}

void CheckValueBoxAtRunTime(IUnknown* control, HWND window) {
  const ControlKind& kind = ValueBoxKind();
  const AutomationObject box = AutomationOf(control);
  const auto raised = RaisedNumber([&] { GetMember(box, "DecimalPlaces"); });
  Check(raised == 393,
        "reading ValueBox.DecimalPlaces in ATL raises 393: ATL offers no ambient UserMode, so the "
        "control runs");
  HWND edit = FindEdit(window);
  Check(edit != nullptr, "the ValueBox shows its Text1 as a real EDIT window");
  Check(IsWindowVisible(edit), "the ValueBox's EDIT is visible at run time");
  CheckEditFills(window, edit, "as ATL sized it");
  // A new size from the container: ATL passes it on with SetExtent and SetObjectRects.
  RECT place;
  GetWindowRect(window, &place);
  MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&place), 2);
  MoveWindow(window, place.left, place.top, 230, 30, TRUE);
  PumpMessages();
  CheckExtent(kind, control, window, "after ATL resized it");
  CheckEditFills(window, edit, "after ATL resized it");

  EventCounter events(control);
  Check(events.connected(), "a sink connects to ValueBox's events: " + events.error());
  SetFocus(edit);
  TypeKeys(edit, L"12.5");
  const EditState state = ReadEdit(edit);
  const double value = GetMember(box, "value").ToDouble();
  Check(state.text == "12.5" && state.sel_start == 4 && value == 12.5 &&
            events.heard(kValueChanged) == 3 && events.heard_others(kValueChanged) == 0,
        "12.5 typed into the ValueBox in ATL: text \"" + state.text + "\", value " +
            std::to_string(value) + ", " + std::to_string(events.heard(kValueChanged)) +
            " ValueChanged (1, 12 and 12.5)");
  Check(GetMember(box, "TextValue").ToText() == "12.500000", "its TextValue is 12.500000");
}

// Each control in a window of ATL's class in `form`, checked as it comes; `controls` keeps them.
void SiteAll(const AtlHost& atl, const ControlLog& log, HWND form,
             std::vector<ComPtr<IUnknown>>& controls) {
  int x = 10;
  for (const ControlKind& kind : Controls()) {
    const bool value_box = kind.sizing == Sizing::kFree;
    const int width = value_box ? 200 : 64;
    const int height = value_box ? 26 : 64;
    CreateLabel(form, kind.prog_id + 10, {x, 10, x + (value_box ? 200 : 130), 30});
    log.Clear();
    HWND window = atl.CreateControlWindow(form, kind.prog_id, {x, 40, x + width, 40 + height});
    Check(window != nullptr, std::string("ATL's window class makes a window for ") + kind.name);
    ComPtr<IUnknown> control = atl.GetControl(window);
    if (!control) Check(false, std::string("ATL sites ") + kind.name + ": " + WhyNotSited(kind));
    Check(true, std::string("ATL sites ") + kind.name + ": AtlAxGetControl gives its IUnknown");
    controls.push_back(control);
    HWND own = InPlaceWindowOf(control.get());
    Check(own != nullptr && IsChild(window, own),
          std::string(kind.name) + " is in-place active: its own window is a child of ATL's");
    CheckExtent(kind, control.get(), window, "in ATL");
    CheckLifeCycle(log, kind);
    if (value_box) CheckValueBoxAtRunTime(control.get(), window);
    x += width + 10 + (value_box ? 0 : 70);
  }
}

}  // namespace

void CheckRunMode(const AtlHost& atl, const ControlLog& log, const Screens& screens) {
  Note("== run mode: the six controls sited by " + atl.dll());
  Form form(L"QorvelOLE controls in Wine's ATL host (run mode)", {0, 0, 900, 200});
  Check(form != nullptr, "a form window");
  std::vector<ComPtr<IUnknown>> controls;
  try {
    SiteAll(atl, log, form, controls);
  } catch (...) {
    if (screens.wanted()) screens.Take(L"run");  // the screen as it stood at the difference
    controls.clear();
    throw;
  }
  if (screens.wanted()) Check(screens.Take(L"run"), "the runner took the run-mode screenshot");
  log.Clear();
  form.Destroy();
  controls.clear();
  PumpMessages();
  if (log.named() && log.Written()) {
    for (const ControlKind& kind : Controls()) {
      const std::vector<std::string> events = log.EventsOf(kind.name);
      Check(events == std::vector<std::string>{"Terminate"},
            std::string(kind.name) +
                " hears Terminate once when its form is destroyed: " + Sequence(events));
    }
  } else {
    NotChecked("Terminate when the form is destroyed", "the DLL wrote nothing to the control log");
  }
}

}  // namespace qorvel::win::testing
