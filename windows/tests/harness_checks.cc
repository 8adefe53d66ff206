// The acceptance program's own pieces, checked against Wine alone before they judge the DLL: a
// check of the controls means nothing if the host, the keys or the bag don't work.

#include <windows.h>

#include <string>

#include "windows/tests/atl_host.h"
#include "windows/tests/checks.h"
#include "windows/tests/control_phases.h"
#include "windows/tests/controls.h"
#include "windows/tests/edit_keys.h"
#include "windows/tests/forms.h"
#include "windows/tests/memory_property_bag.h"
#include "windows/tests/test_site.h"

namespace qorvel::win::testing {
namespace {

// Controls that Wine itself registers and that ATL can site, the first one present is used.
constexpr const wchar_t* kWineControls[] = {L"Shell.Explorer.2", L"WMPlayer.OCX"};

void CheckAtlSitesAWineControl(const AtlHost& atl) {
  Check(atl.loaded(), "Wine's ATL loads: " + atl.dll() +
                          " has AtlAxWinInit, AtlAxCreateControlEx and AtlAxGetControl");
  HWND form = CreateForm(L"ATL with one of Wine's controls", {0, 0, 320, 240});
  Check(form != nullptr, "a form window");
  for (const wchar_t* name : kWineControls) {
    CLSID clsid;
    if (FAILED(CLSIDFromProgID(name, &clsid))) continue;
    const std::string text = Narrow(name, wcslen(name));
    HWND window = atl.CreateControlWindow(form, name, {10, 10, 290, 190});
    Check(window != nullptr, "ATL's window class makes a window for " + text);
    ComPtr<IUnknown> control = atl.GetControl(window);
    Check(static_cast<bool>(control), "ATL sites " + text + ": AtlAxGetControl gives its IUnknown");
    HWND own = InPlaceWindowOf(control.get());
    Check(own != nullptr && IsChild(window, own),
          "ATL in-place activates " + text + ": its own window is a child of ATL's");
    control.reset();
    DestroyWindow(form);
    PumpMessages();
    return;
  }
  DestroyWindow(form);
  NotChecked("ATL sites one of Wine's own controls", "none of them is registered here");
}

// Our designer's site, with one of Wine's controls: it must in-place activate there as in ATL.
void CheckOurSiteActivatesAWineControl() {
  for (const wchar_t* name : kWineControls) {
    HRESULT hr = S_OK;
    ComPtr<IOleObject> control = CreateControl(name, &hr);
    if (!control) continue;
    const std::string text = Narrow(name, wcslen(name));
    HWND form = CreateForm(L"Our site with one of Wine's controls", {0, 0, 320, 240});
    RECT place = {10, 10, 290, 190};
    auto* site = new TestSite(form, place, /*user_mode=*/false);
    ComPtr<IPersistStreamInit> persist;
    bool ok = SUCCEEDED(control->SetClientSite(site)) &&
              SUCCEEDED(control->QueryInterface(IID_IPersistStreamInit, persist.put_void())) &&
              SUCCEEDED(persist->InitNew());
    hr = ok ? control->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, site, 0, form, &place) : E_FAIL;
    PumpMessages();
    HWND own = InPlaceWindowOf(control.get());
    const bool active = SUCCEEDED(hr) && site->in_place_active() && own && IsChild(form, own);
    control->Close(OLECLOSE_NOSAVE);
    control->SetClientSite(nullptr);
    persist.reset();
    control.reset();
    site->Release();
    DestroyWindow(form);
    PumpMessages();
    Check(active, "our designer's site in-place activates " + text + " (" + HresultText(hr) + ")");
    return;
  }
  NotChecked("our designer's site in-place activates one of Wine's controls",
             "none of them is registered here");
}

void CheckPlainEditTyping() {
  HWND form = CreateForm(L"A plain EDIT", {0, 0, 320, 120});
  HWND edit = CreatePlainEdit(form, {10, 10, 200, 34});
  Check(edit != nullptr, "a plain EDIT control");
  SetFocus(edit);
  TypeKeys(edit, L"12.5");
  EditState state = ReadEdit(edit);
  Check(state.text == "12.5" && state.sel_start == 4 && state.sel_end == 4,
        "keys posted as WM_CHAR reach a plain EDIT: \"" + state.text + "\", caret " +
            std::to_string(state.sel_start));
  TypeKeys(edit, std::wstring(1, kBackspace));
  state = ReadEdit(edit);
  Check(state.text == "12." && state.sel_start == 3,
        "Backspace as WM_CHAR 8: \"" + state.text + "\"");
  Check(PutOnClipboard(form, L"xy"), "text put on the clipboard");
  TypeKeys(edit, std::wstring(1, kPaste));
  state = ReadEdit(edit);
  Check(state.text == "12.xy" && state.sel_start == 5,
        "WM_CHAR 22 pastes the clipboard into a plain EDIT: \"" + state.text + "\"");
  DestroyWindow(form);
  PumpMessages();
}

void CheckPropertyBag() {
  MemoryPropertyBag bag;
  VARIANT value;
  VariantInit(&value);
  value.vt = VT_R8;
  value.dblVal = 2.5;
  Check(bag.Write(L"Value", &value) == S_OK && bag.size() == 1, "the bag keeps a written value");
  VARIANT read;
  VariantInit(&read);
  read.vt = VT_R8;
  Check(bag.Read(L"Value", &read, nullptr) == S_OK && read.vt == VT_R8 && read.dblVal == 2.5,
        "the bag reads it back as the Double it was");
  VariantInit(&read);
  read.vt = VT_I2;
  Check(bag.Read(L"Value", &read, nullptr) == S_OK && read.vt == VT_I2 && read.iVal == 2,
        "the bag converts to the type asked for (2.5 as Integer is 2, to even)");
  VariantInit(&read);
  Check(bag.Read(L"Missing", &read, nullptr) == E_INVALIDARG,
        "the bag answers E_INVALIDARG for a name never written");
}

}  // namespace

void CheckHarness(const AtlHost& atl) {
  Note("== the program's own pieces, against Wine alone");
  CheckAtlSitesAWineControl(atl);
  CheckOurSiteActivatesAWineControl();
  CheckPlainEditTyping();
  CheckPropertyBag();
}

}  // namespace qorvel::win::testing
