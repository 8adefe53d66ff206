// What one key typed into the ValueBox costs against the same key typed into a plain EDIT: the
// key filter, the text change handler, the write of the value with its event and the reformat
// all run inside the one WM_CHAR.

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>

#include "qorvel/platform/dispatch.h"
#include "windows/tests/checks.h"
#include "windows/tests/control_phases.h"
#include "windows/tests/controls.h"
#include "windows/tests/edit_keys.h"
#include "windows/tests/event_counter.h"

namespace qorvel::win::testing {
namespace {

using Clock = std::chrono::steady_clock;

// Nanoseconds per key, the best of five rounds of `keys` keys sent straight to the window
// procedure as a keyboard's WM_CHAR is dispatched: "1" and Backspace in turn, which in the
// ValueBox changes the number with every key (0, 10, 0, ...) and keeps the text short.
double NanosPerKey(HWND edit, int keys) {
  double best = 1e300;
  for (int round = 0; round < 5; ++round) {
    SetWindowTextW(edit, L"");
    const auto start = Clock::now();
    for (int i = 0; i < keys; ++i) SendMessageW(edit, WM_CHAR, i % 2 ? kBackspace : L'1', 1);
    const std::chrono::duration<double, std::nano> spent = Clock::now() - start;
    best = std::min(best, spent.count() / keys);
  }
  return best;
}

}  // namespace

void MeasureKeyCost(const AtlHost& atl, int keys) {
  keys += keys % 2;  // an even count ends each round on a Backspace
  Note("== the cost of one key");
  const Form form(L"Key cost", {0, 460, 400, 560});
  Check(form != nullptr, "a form window");
  HWND plain = CreatePlainEdit(form, {10, 10, 210, 36});
  SetFocus(plain);
  const double plain_ns = NanosPerKey(plain, keys);
  char line[200];
  std::snprintf(line, sizeof line,
                "one key by WM_CHAR into a plain EDIT (best of 5 rounds of %d): %.0f ns", keys,
                plain_ns);
  Note(line);
  HWND window = atl.CreateControlWindow(form, ValueBoxKind().prog_id, {10, 50, 210, 76});
  ComPtr<IUnknown> control = atl.GetControl(window);
  HWND edit = control ? FindEdit(window) : nullptr;
  if (edit == nullptr) {
    return NotChecked("the cost of one key typed into the ValueBox",
                      "ATL can't site a ValueBox with its EDIT window here");
  }
  EventCounter events(control.get());  // a container listens, as a form with a handler does
  SetFocus(edit);
  PumpMessages();
  events.Reset();
  const double box_ns = NanosPerKey(edit, keys);
  const AutomationObject box = AutomationOf(control.get());
  // The last key of each round is a Backspace from "10": the value 0, the text "0".
  Check(events.heard(kValueChanged) == 5 * keys && GetMember(box, "value").ToDouble() == 0 &&
            EditText(edit) == "0",
        "every timed key changed the ValueBox's value and raised ValueChanged: " +
            std::to_string(events.heard(kValueChanged)) + " events for " +
            std::to_string(5 * keys) + " keys");
  std::snprintf(line, sizeof line,
                "one key by WM_CHAR (best of 5 rounds of %d): %.0f ns into the ValueBox, %.0f ns "
                "into a plain EDIT: ratio %.1f",
                keys, box_ns, plain_ns, box_ns / plain_ns);
  Note(line);
}

}  // namespace qorvel::win::testing
