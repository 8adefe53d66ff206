// The ValueBox saved into a container's property bag and loaded from it, at design time in a
// form designer of our own and at run time.

#include <windows.h>

#include <ocidl.h>

#include <string>

#include "qorvel/platform/dispatch.h"
#include "windows/tests/checks.h"
#include "windows/tests/control_phases.h"
#include "windows/tests/controls.h"
#include "windows/tests/edit_keys.h"
#include "windows/tests/event_counter.h"
#include "windows/tests/memory_property_bag.h"
#include "windows/tests/test_site.h"

namespace qorvel::win::testing {
namespace {

constexpr RECT kPlace = {10, 10, 210, 36};

// A ValueBox in our own site, with UserMode as given; released with its site.
struct SitedValueBox {
  SitedValueBox(HWND form, bool user_mode) {
    HRESULT hr = S_OK;
    control = CreateControl(ValueBoxKind().prog_id, &hr);
    Check(static_cast<bool>(control), "a new ValueBox as IOleObject (" + HresultText(hr) + ")");
    site = new TestSite(form, kPlace, user_mode);
    Check(SUCCEEDED(control->SetClientSite(site)), "IOleObject::SetClientSite");
    Check(SUCCEEDED(control->QueryInterface(IID_IPersistPropertyBag, bag.put_void())),
          "the ValueBox has IPersistPropertyBag");
    box = AutomationOf(control.get());
  }
  ~SitedValueBox() {
    box = {};
    bag.reset();
    if (control) {
      control->Close(OLECLOSE_NOSAVE);
      control->SetClientSite(nullptr);
      control.reset();
    }
    if (site) site->Release();
    PumpMessages();
  }
  // In place in the form, and its EDIT window.
  HWND Activate(HWND form) {
    RECT place = kPlace;
    Check(SUCCEEDED(control->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, site, 0, form, &place)),
          "DoVerb(OLEIVERB_INPLACEACTIVATE) in our own site");
    PumpMessages();
    HWND own = InPlaceWindowOf(control.get());
    HWND edit = FindEdit(own);
    Check(own != nullptr && IsChild(form, own) && edit != nullptr,
          "the ValueBox's own window in our form, and its EDIT");
    return edit;
  }

  ComPtr<IOleObject> control;
  TestSite* site = nullptr;
  ComPtr<IPersistPropertyBag> bag;
  AutomationObject box;
};

bool Holds(const MemoryPropertyBag& bag, const wchar_t* name, VARTYPE type) {
  const VARIANT* value = bag.Find(name);
  return value != nullptr && value->vt == type;
}

void CheckSaved(HWND form, MemoryPropertyBag& saved) {
  SitedValueBox box(form, /*user_mode=*/false);
  Check(SUCCEEDED(box.bag->InitNew()), "IPersistPropertyBag::InitNew");
  SetMember(box.box, "value", 2.5);
  SetMember(box.box, "DecimalPlaces", int16_t{3});
  SetMember(box.box, "Readonly", true);
  Check(box.bag->Save(&saved, TRUE, TRUE) == S_OK, "IPersistPropertyBag::Save into our bag");
  const auto& order = saved.write_order();
  Check(order == std::vector<std::wstring>{L"Value", L"DecimalPlaces", L"ReadOnly"},
        "the bag holds Value, DecimalPlaces and ReadOnly, written in that order: " +
            DescribeBag(saved));
  Check(Holds(saved, L"Value", VT_R8) && saved.Find(L"Value")->dblVal == 2.5 &&
            Holds(saved, L"DecimalPlaces", VT_I2) && saved.Find(L"DecimalPlaces")->iVal == 3 &&
            Holds(saved, L"ReadOnly", VT_BOOL) && saved.Find(L"ReadOnly")->boolVal == VARIANT_TRUE,
        "as a Double 2.5, an Integer 3 and a Boolean True");
}

void CheckLoadedAtDesignTime(HWND form, MemoryPropertyBag& saved, const ControlLog& log) {
  log.Clear();
  SitedValueBox box(form, /*user_mode=*/false);
  EventCounter events(box.control.get());
  Check(box.bag->Load(&saved, nullptr) == S_OK, "IPersistPropertyBag::Load from our bag");
  Check(events.heard(kValueChanged) == 0, "loading raises no ValueChanged");
  Check(GetMember(box.box, "value").ToDouble() == 2.5, "the loaded value is 2.5");
  Check(GetMember(box.box, "DecimalPlaces").ToInteger() == 3,
        "DecimalPlaces reads back 3 at design time");
  Check(GetMember(box.box, "Readonly").ToBool() == VariantBool::kTrue,
        "Readonly reads back True at design time");
  Check(GetMember(box.box, "TextValue").ToText() == "2.500", "TextValue shows 3 places: 2.500");
  if (log.named() && log.Written()) {
    const std::string sequence = Sequence(log.EventsOf("ValueBox"));
    Check(sequence.rfind("Initialize, ReadProperties", 0) == 0 &&
              sequence.find("InitProperties") == std::string::npos,
          "a loaded ValueBox's life cycle: " + sequence);
  } else {
    NotChecked("a loaded ValueBox's life cycle", "the DLL wrote nothing to the control log");
  }
  HWND edit = box.Activate(form);
  Check(EditText(edit) == "2.5", "the loaded ValueBox shows 2.5");
  Check((GetWindowLongW(edit, GWL_STYLE) & ES_READONLY) != 0, "its EDIT is locked (read-only)");
}

void CheckLoadedAtRunTime(HWND form, MemoryPropertyBag& saved) {
  SitedValueBox box(form, /*user_mode=*/true);
  Check(box.bag->Load(&saved, nullptr) == S_OK, "Load at run time");
  Check(GetMember(box.box, "value").ToDouble() == 2.5, "the value loaded at run time is 2.5");
  Check(RaisedNumber([&] { GetMember(box.box, "DecimalPlaces"); }) == 393 &&
            RaisedNumber([&] { GetMember(box.box, "Readonly"); }) == 393,
        "DecimalPlaces and Readonly can't be read at run time: 393");
  Check(box.site->user_mode_reads() > 0, "the control asked our site for the ambient UserMode");
}

void CheckDefaults(HWND form) {
  MemoryPropertyBag empty;
  {
    SitedValueBox box(form, /*user_mode=*/false);
    Check(SUCCEEDED(box.bag->InitNew()), "InitNew");
    Check(box.bag->Save(&empty, TRUE, TRUE) == S_OK && empty.size() == 0,
          "a ValueBox saved with its defaults writes no key: " + DescribeBag(empty));
  }
  SitedValueBox box(form, /*user_mode=*/false);
  Check(box.bag->Load(&empty, nullptr) == S_OK, "Load from a bag with no keys");
  Check(GetMember(box.box, "value").ToDouble() == 0 &&
            GetMember(box.box, "DecimalPlaces").ToInteger() == 6 &&
            GetMember(box.box, "Readonly").ToBool() == VariantBool::kFalse,
        "the missing keys give their defaults: value 0, 6 places, not read-only");
  HWND edit = box.Activate(form);
  Check(EditText(edit) == "0", "a ValueBox loaded with value 0 shows 0, unlike a new one");
  Check(empty.outstanding() == 0, "the control kept no reference to the bag");
}

}  // namespace

void CheckPersistence(const ControlLog& log) {
  Note("== the ValueBox in a property bag");
  const Form form(L"ValueBox persistence", {0, 360, 400, 440});
  Check(form != nullptr, "a form window");
  MemoryPropertyBag saved;
  CheckSaved(form, saved);
  CheckLoadedAtDesignTime(form, saved, log);
  CheckLoadedAtRunTime(form, saved);
  CheckDefaults(form);
  Check(saved.outstanding() == 0, "no control kept a reference to the bag");
}

}  // namespace qorvel::win::testing
