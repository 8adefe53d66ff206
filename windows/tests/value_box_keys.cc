// The ValueBox typed into key by key in Wine's ATL host, through its real EDIT window: the
// table of keys with the text, caret, value and events each must leave, in a region whose
// decimal symbol is the point and in one whose symbol is the comma; Backspace, the clipboard
// and focus.

#include <windows.h>

#include <cstdio>
#include <string>

#include "qorvel/platform/dispatch.h"
#include "windows/tests/checks.h"
#include "windows/tests/control_phases.h"
#include "windows/tests/controls.h"
#include "windows/tests/edit_keys.h"
#include "windows/tests/event_counter.h"
#include "windows/tests/regional_symbols.h"

namespace qorvel::win::testing {
namespace {

// One row: the keys that bring a new box to the state before, where the caret goes then
// (-2: where the typing left it; -1 as the end: everything selected), the key, and what it
// must leave. '.' stands for the region's decimal symbol in keys and texts.
struct KeyRow {
  const wchar_t* setup;
  int sel_start, sel_end;
  const char* text_before;
  double value_before;
  wchar_t key;
  const char* text;
  int caret;
  double value;
  bool event;
};

constexpr int kAsTyped = -2;
constexpr KeyRow kRows[] = {
    {L"", kAsTyped, 0, "", 0, L'1', "1", 1, 1, true},
    {L"1", kAsTyped, 0, "1", 1, L'.', "1.", 2, 1, false},
    {L"1.", kAsTyped, 0, "1.", 1, L'5', "1.5", 3, 1.5, true},
    {L"1.5", kAsTyped, 0, "1.5", 1.5, L'0', "1.50", 4, 1.5, false},
    {L"1.50", kAsTyped, 0, "1.50", 1.5, L'7', "1.507", 5, 1.507, true},
    {L"", kAsTyped, 0, "", 0, L'.', "0.", 2, 0, false},
    {L"5", 0, 0, "5", 5, L'.', "0.5", 2, 0.5, true},
    {L"", kAsTyped, 0, "", 0, L'-', "-", 1, 0, false},
    {L"-", kAsTyped, 0, "-", 0, L'.', "-0.", 3, 0, false},
    {L"-", kAsTyped, 0, "-", 0, L'5', "-5", 2, -5, true},
    {L"-5", 0, 0, "-5", -5, L'.', "-5", 0, -5, false},
    {L"-5", 0, -1, "-5", -5, L'.', "0.", 2, 0, true},
    {L"5", 1, 1, "5", 5, L'-', "5", 1, 5, false},
    {L"-5", 0, 0, "-5", -5, L'-', "--5", 1, 0, true},
    {L"5", kAsTyped, 0, "5", 5, kBackspace, "0", 0, 0, true},
    {L"", kAsTyped, 0, "", 0, kBackspace, "", 0, 0, false},
    {L"5\b", 1, 1, "0", 0, L'5', "5", 1, 5, true},
    {L"1.5", kAsTyped, 0, "1.5", 1.5, L'.', "1.5", 3, 1.5, false},
    // The other region's symbol is swallowed like any other character.
    {L"1", kAsTyped, 0, "1", 1, L'!', "1", 1, 1, false},
};

// Text with '.' as the region's symbol and '!' as the other region's.
std::wstring InRegion(std::wstring_view keys, wchar_t decimal) {
  std::wstring result(keys);
  const wchar_t other = decimal == L'.' ? L',' : L'.';
  for (wchar_t& c : result) c = c == L'.' ? decimal : c == L'!' ? other : c;
  return result;
}
std::string InRegion(std::string_view text, char decimal) {
  std::string result(text);
  for (char& c : result) {
    if (c == '.') c = decimal;
  }
  return result;
}

std::string Shown(std::wstring_view keys) {
  std::string text;
  for (wchar_t c : keys) {
    text += c == kBackspace ? std::string("<BS>")
            : c == kPaste   ? std::string("<paste>")
                            : std::string(1, static_cast<char>(c));
  }
  return text;
}

std::string Number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

// A new ValueBox sited by ATL in `form`, its EDIT focused, its events counted.
struct SitedBox {
  SitedBox(const AtlHost& atl, HWND form) {
    window = atl.CreateControlWindow(form, ValueBoxKind().prog_id, {10, 40, 210, 66});
    control = atl.GetControl(window);
    Check(static_cast<bool>(control), "ATL sites a new ValueBox");
    edit = FindEdit(window);
    Check(edit != nullptr, "the ValueBox has its EDIT window");
    box = AutomationOf(control.get());
    events = std::make_unique<EventCounter>(control.get());
    Check(events->connected(), "a sink connects to ValueBox's events");
    SetFocus(edit);
    PumpMessages();
  }
  ~SitedBox() {
    events.reset();
    box = {};
    control.reset();
    DestroyWindow(window);
    PumpMessages();
  }
  double value() const { return GetMember(box, "value").ToDouble(); }

  HWND window = nullptr;
  HWND edit = nullptr;
  ComPtr<IUnknown> control;
  AutomationObject box;
  std::unique_ptr<EventCounter> events;
};

void CheckRow(const AtlHost& atl, HWND form, const KeyRow& row, wchar_t decimal) {
  const char symbol = static_cast<char>(decimal);
  SitedBox sited(atl, form);
  TypeKeys(sited.edit, InRegion(row.setup, decimal));
  if (row.sel_start != kAsTyped) {
    SendMessageW(sited.edit, EM_SETSEL, row.sel_start, row.sel_end);
  }
  const std::string key = Shown(InRegion(std::wstring(1, row.key), decimal));
  const std::string before =
      "\"" + InRegion(row.text_before, symbol) + "\" (" + Number(row.value_before) + ")";
  EditState state = ReadEdit(sited.edit);
  Check(state.text == InRegion(row.text_before, symbol) && sited.value() == row.value_before,
        "typing \"" + Shown(InRegion(row.setup, decimal)) + "\" gives " + before);
  sited.events->Reset();
  TypeKeys(sited.edit, InRegion(std::wstring(1, row.key), decimal));
  state = ReadEdit(sited.edit);
  const double value = sited.value();
  const int heard = sited.events->heard(kValueChanged);
  const std::string want = "\"" + InRegion(row.text, symbol) + "\" caret " +
                           std::to_string(row.caret) + " value " + Number(row.value) +
                           (row.event ? " with ValueChanged" : " without event");
  const std::string got = "\"" + state.text + "\" caret " + std::to_string(state.sel_start) +
                          " value " + Number(value) + ", " + std::to_string(heard) + " events";
  Check(state.text == InRegion(row.text, symbol) && state.sel_start == row.caret &&
            state.sel_end == row.caret && value == row.value && heard == (row.event ? 1 : 0) &&
            sited.events->heard_others(kValueChanged) == 0,
        before + " + " + key + " -> " + want + (got == want ? "" : " (got " + got + ")"));
}

void CheckPaste(const AtlHost& atl, HWND form, const wchar_t* setup, bool select_all,
                std::wstring_view pasted, const std::string& text, double value, bool event) {
  SitedBox sited(atl, form);
  TypeKeys(sited.edit, setup);
  if (select_all) SendMessageW(sited.edit, EM_SETSEL, 0, -1);
  Check(PutOnClipboard(form, pasted), "text put on the clipboard");
  sited.events->Reset();
  TypeKeys(sited.edit, std::wstring(1, kPaste));
  const EditState state = ReadEdit(sited.edit);
  const int heard = sited.events->heard(kValueChanged);
  Check(state.text == text && sited.value() == value && heard == (event ? 1 : 0),
        "\"" + Narrow(pasted.data(), pasted.size()) + "\" pasted over \"" +
            Narrow(setup, wcslen(setup)) + "\" -> \"" + state.text + "\" value " +
            Number(sited.value()) + ", " + std::to_string(heard) + " events");
}

void CheckFocus(const AtlHost& atl, HWND form) {
  HWND other = CreatePlainEdit(form, {250, 40, 350, 66});
  {
    SitedBox sited(atl, form);
    TypeKeys(sited.edit, L"-");
    SetFocus(other);
    PumpMessages();
    Check(EditText(sited.edit) == "-" && sited.value() == 0,
          "a lone \"-\" stays in the box when it loses focus, the value 0");
    TypeKeys(other, L"x");  // the focus really moved
    SetFocus(sited.edit);
    PumpMessages();
    const EditState state = ReadEdit(sited.edit);
    Check(state.sel_start == 0 && state.sel_end == 1,
          "focus gained selects the whole text: " + std::to_string(state.sel_start) + ".." +
              std::to_string(state.sel_end));
  }
  DestroyWindow(other);
}

void CheckRegion(const AtlHost& atl, HWND form, wchar_t decimal, const wchar_t* thousand) {
  const RegionalSymbols region(std::wstring(1, decimal).c_str(), thousand);
  Check(region.set(),
        std::string("the region's decimal symbol set to \"") + static_cast<char>(decimal) + "\"");
  for (const KeyRow& row : kRows) CheckRow(atl, form, row, decimal);
  const std::wstring two_and_a_half = InRegion(L"2.5", decimal);
  CheckPaste(atl, form, L"", false, two_and_a_half, Narrow(two_and_a_half.data(), 3), 2.5, true);
}

}  // namespace

void CheckValueBoxKeys(const AtlHost& atl) {
  Note("== the ValueBox typed into, key by key, in ATL");
  const Form form(L"ValueBox keys", {0, 220, 400, 340});
  Check(form != nullptr, "a form window");
  Note("-- decimal symbol \".\"");
  CheckRegion(atl, form, L'.', L",");
  Note("-- decimal symbol \",\"");
  CheckRegion(atl, form, L',', L".");
  Note("-- Backspace, paste and focus");
  CheckPaste(atl, form, L"5", true, L"abc", "0", 0, true);
  CheckPaste(atl, form, L"", false, L"abc", "abc", 0, false);
  CheckFocus(atl, form);
}

}  // namespace qorvel::win::testing
