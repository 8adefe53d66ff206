#ifndef WINDOWS_TESTS_CONTROLS_H_
#define WINDOWS_TESTS_CONTROLS_H_

// The six controls as a container sees them, and the small steps every check of them takes.

#include <windows.h>

#include <ocidl.h>
#include <oleidl.h>

#include <functional>
#include <optional>
#include <span>
#include <string>

#include "qorvel/platform/com_windows.h"
#include "qorvel/platform/dispatch.h"

namespace qorvel::win::testing {

// How a control sizes itself: fixed at 500 by 500 twips, at its image's 480 by 480, or as
// the container says.
enum class Sizing { kFixed500, kImage480, kFree };

struct ControlKind {
  const wchar_t* prog_id;
  const char* name;  // the class name, as the control log writes it
  Sizing sizing;
};
std::span<const ControlKind> Controls();
const ControlKind& ValueBoxKind();

// Twips to HIMETRIC, 1440 and 2540 to the inch, rounded.
long HimetricOfTwips(double twips);
// Screen pixels to HIMETRIC as a container converts them (AtlPixelToHiMetric), rounded.
long HimetricOfPixels(long pixels, bool horizontal);

std::string HresultText(HRESULT hr);

// A new control as IOleObject, as a container creates it; null with the HRESULT in `hr`.
ComPtr<IOleObject> CreateControl(const wchar_t* prog_id, HRESULT* hr);
// The control's automation face (its IDispatch), for late-bound reads and writes.
AutomationObject AutomationOf(IUnknown* control);
// The error number `action` raises, if any.
std::optional<int32_t> RaisedNumber(const std::function<void()>& action);

// IOleObject::GetExtent of the content, in HIMETRIC; nullopt when it fails.
std::optional<SIZEL> ExtentOf(IUnknown* control);
// The control's own in-place window (IOleInPlaceObject::GetWindow), or nullptr.
HWND InPlaceWindowOf(IUnknown* control);

}  // namespace qorvel::win::testing

#endif  // WINDOWS_TESTS_CONTROLS_H_
