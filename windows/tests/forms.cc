#include "windows/tests/forms.h"

#include <utility>

#include "windows/tests/edit_keys.h"

namespace qorvel::win::testing {
namespace {

constexpr const wchar_t* kFormClass = L"QorvelTestForm";
constexpr const wchar_t* kStripClass = L"QorvelPictureStrip";

LRESULT CALLBACK StripProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  auto* pictures =
      reinterpret_cast<std::vector<Picture>*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  switch (message) {
    case WM_PAINT: {
      PAINTSTRUCT paint;
      HDC dc = BeginPaint(window, &paint);
      if (pictures) {
        HDC memory = CreateCompatibleDC(dc);
        for (const Picture& picture : *pictures) {
          BITMAP info;
          GetObjectW(picture.bitmap, sizeof info, &info);
          HGDIOBJ old = SelectObject(memory, picture.bitmap);
          BitBlt(dc, picture.at.x, picture.at.y, info.bmWidth, info.bmHeight, memory, 0, 0,
                 SRCCOPY);
          SelectObject(memory, old);
        }
        DeleteDC(memory);
      }
      EndPaint(window, &paint);
      return 0;
    }
    case WM_DESTROY:
      if (pictures) {
        for (const Picture& picture : *pictures) DeleteObject(picture.bitmap);
        delete pictures;
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
      }
      return 0;
  }
  return DefWindowProcW(window, message, wparam, lparam);
}

void RegisterClasses() {
  static bool registered = false;
  if (registered) return;
  WNDCLASSW form{};
  form.lpfnWndProc = DefWindowProcW;
  form.hInstance = GetModuleHandleW(nullptr);
  form.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
  form.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  form.lpszClassName = kFormClass;
  RegisterClassW(&form);
  WNDCLASSW strip = form;
  strip.lpfnWndProc = StripProc;
  strip.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
  strip.lpszClassName = kStripClass;
  RegisterClassW(&strip);
  registered = true;
}

}  // namespace

HWND CreateForm(const wchar_t* title, const RECT& rect) {
  RegisterClasses();
  HWND form =
      CreateWindowExW(0, kFormClass, title, WS_OVERLAPPEDWINDOW | WS_VISIBLE | WS_CLIPCHILDREN,
                      rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, nullptr,
                      nullptr, GetModuleHandleW(nullptr), nullptr);
  if (form) {
    SetForegroundWindow(form);
    PumpMessages();
  }
  return form;
}

void Form::Destroy() {
  if (hwnd_ == nullptr) return;
  DestroyWindow(std::exchange(hwnd_, nullptr));
  PumpMessages();
}

HWND CreateLabel(HWND parent, const wchar_t* text, const RECT& rect) {
  return CreateWindowExW(0, L"Static", text, WS_CHILD | WS_VISIBLE, rect.left, rect.top,
                         rect.right - rect.left, rect.bottom - rect.top, parent, nullptr,
                         GetModuleHandleW(nullptr), nullptr);
}

HWND CreatePlainEdit(HWND parent, const RECT& rect) {
  return CreateWindowExW(WS_EX_CLIENTEDGE, L"Edit", L"", WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL,
                         rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                         parent, nullptr, GetModuleHandleW(nullptr), nullptr);
}

HWND CreatePictureStrip(HWND parent, const RECT& rect) {
  RegisterClasses();
  HWND strip = CreateWindowExW(WS_EX_CLIENTEDGE, kStripClass, L"", WS_CHILD | WS_VISIBLE, rect.left,
                               rect.top, rect.right - rect.left, rect.bottom - rect.top, parent,
                               nullptr, GetModuleHandleW(nullptr), nullptr);
  if (strip)
    SetWindowLongPtrW(strip, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(new std::vector<Picture>));
  return strip;
}

void AddPicture(HWND strip, HBITMAP bitmap, POINT at) {
  auto* pictures = reinterpret_cast<std::vector<Picture>*>(GetWindowLongPtrW(strip, GWLP_USERDATA));
  if (pictures == nullptr) {
    DeleteObject(bitmap);
    return;
  }
  pictures->push_back({bitmap, at});
  InvalidateRect(strip, nullptr, TRUE);
}

bool Screens::Take(const wchar_t* name) const {
  if (dir_.empty()) return false;
  // Everything painted before the runner looks.
  RedrawWindow(nullptr, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  PumpMessages();
  Sleep(200);
  PumpMessages();
  const std::wstring ready = dir_ + L"\\" + name + L".ready";
  const std::wstring taken = dir_ + L"\\" + name + L".taken";
  HANDLE file = CreateFileW(ready.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  CloseHandle(file);
  for (int waited = 0; waited < 30000; waited += 50) {
    if (GetFileAttributesW(taken.c_str()) != INVALID_FILE_ATTRIBUTES) return true;
    PumpMessages();
    Sleep(50);
  }
  return false;
}

}  // namespace qorvel::win::testing
