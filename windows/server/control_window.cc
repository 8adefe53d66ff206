#include "windows/server/control_window.h"

#include <mutex>

#include "qorvel/platform/error.h"
#include "windows/server/module.h"

namespace qorvel::win {
namespace {

constexpr wchar_t kClassName[] = L"QorvelOLEControl";
std::mutex class_mu;
bool class_registered = false;

void RegisterClassOnce(WNDPROC procedure) {
  std::lock_guard lock(class_mu);
  if (class_registered) return;
  WNDCLASSEXW wc{};
  wc.cbSize = sizeof(wc);
  wc.style = CS_HREDRAW | CS_VREDRAW;
  wc.lpfnWndProc = procedure;
  wc.hInstance = ThisModule();
  wc.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // the arrow
  wc.lpszClassName = kClassName;
  if (!RegisterClassExW(&wc) && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) {
    Raise(static_cast<int32_t>(HRESULT_FROM_WIN32(GetLastError())),
          "The control's window class can't be registered");
  }
  class_registered = true;
}

}  // namespace

ControlWindow::ControlWindow(HWND parent, Paint paint) : paint_(std::move(paint)) {
  RegisterClassOnce(&ControlWindow::Procedure);
  hwnd_ = CreateWindowExW(0, kClassName, L"", WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, 0,
                          0, parent, nullptr, ThisModule(), nullptr);
  if (hwnd_ == nullptr) {
    Raise(static_cast<int32_t>(HRESULT_FROM_WIN32(GetLastError())),
          "The control's window can't be made");
  }
  SetWindowLongPtrW(hwnd_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

ControlWindow::~ControlWindow() {
  SetWindowLongPtrW(hwnd_, GWLP_USERDATA, 0);
  DestroyWindow(hwnd_);
}

void ControlWindow::Place(const RECT& rect) {
  SetWindowPos(hwnd_, nullptr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
               SWP_NOZORDER | SWP_NOACTIVATE);
}

void ControlWindow::Show(bool visible) { ShowWindow(hwnd_, visible ? SW_SHOWNA : SW_HIDE); }

void ControlWindow::Repaint() { InvalidateRect(hwnd_, nullptr, TRUE); }

// The painter draws over the window's own background; focus goes on to the first child (a
// text box), which takes the keys.
LRESULT CALLBACK ControlWindow::Procedure(HWND hwnd, UINT message, WPARAM w, LPARAM l) {
  auto* self = reinterpret_cast<ControlWindow*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
  switch (message) {
    case WM_PAINT: {
      PAINTSTRUCT ps;
      HDC dc = BeginPaint(hwnd, &ps);
      RECT client;
      GetClientRect(hwnd, &client);
      FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
      if (self != nullptr && self->paint_) {
        try {
          self->paint_(dc, client);
        } catch (...) {  // a failed paint leaves the background; it must not end the host
        }
      }
      EndPaint(hwnd, &ps);
      return 0;
    }
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORSTATIC:
      if (self != nullptr && self->child_color_) {
        return self->child_color_(reinterpret_cast<HDC>(w), reinterpret_cast<HWND>(l));
      }
      return DefWindowProcW(hwnd, message, w, l);
    case WM_SETFOCUS:
      if (HWND child = GetWindow(hwnd, GW_CHILD)) SetFocus(child);
      return 0;
    default:
      return DefWindowProcW(hwnd, message, w, l);
  }
}

void ControlWindow::UnregisterClass() {
  std::lock_guard lock(class_mu);
  if (class_registered) UnregisterClassW(kClassName, ThisModule());
  class_registered = false;
}

}  // namespace qorvel::win
