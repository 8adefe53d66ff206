#ifndef WINDOWS_SERVER_CONTROL_WINDOW_H_
#define WINDOWS_SERVER_CONTROL_WINDOW_H_

#include <windows.h>

#include <functional>

namespace qorvel::win {

// The window of a control that is active in place: a child of its container's window, hidden
// until shown, painted by `paint` (the client area), passing focus on to its own first child
// and its children's colour questions to `child_color`.
class ControlWindow {
 public:
  using Paint = std::function<void(HDC dc, const RECT& client)>;
  using ChildColor = std::function<LRESULT(HDC dc, HWND child)>;
  // Raises the platform's error when the window can't be made.
  ControlWindow(HWND parent, Paint paint);
  ~ControlWindow();
  ControlWindow(const ControlWindow&) = delete;
  ControlWindow& operator=(const ControlWindow&) = delete;

  HWND hwnd() const { return hwnd_; }
  // In the parent's client coordinates, in pixels.
  void Place(const RECT& rect);
  void Show(bool visible);
  void Repaint();
  void set_child_color(ChildColor child_color) { child_color_ = std::move(child_color); }

  // Before the DLL goes: the window class points into its code.
  static void UnregisterClass();

 private:
  static LRESULT CALLBACK Procedure(HWND hwnd, UINT message, WPARAM w, LPARAM l);

  HWND hwnd_ = nullptr;
  Paint paint_;
  ChildColor child_color_;
};

}  // namespace qorvel::win

#endif  // WINDOWS_SERVER_CONTROL_WINDOW_H_
