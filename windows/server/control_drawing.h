#ifndef WINDOWS_SERVER_CONTROL_DRAWING_H_
#define WINDOWS_SERVER_CONTROL_DRAWING_H_

#include <windows.h>

#include "qorvel/frame/control_shell.h"

namespace qorvel::win {

// Paints a control as it looks to a container that draws it itself (a designer, a print): the
// picture of a host or surface control from its top left, ValueBox's box with its text. The
// control's size fills `bounds`, in the units of `dc`. A picture that can't be read draws
// nothing.
void DrawControl(const ControlShell& shell, HDC dc, const RECT& bounds);

}  // namespace qorvel::win

#endif  // WINDOWS_SERVER_CONTROL_DRAWING_H_
