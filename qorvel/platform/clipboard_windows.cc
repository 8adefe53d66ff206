#include "qorvel/platform/clipboard_windows.h"

#include <windows.h>

#include <cstring>
#include <string>

#include "qorvel/platform/com_windows.h"

namespace qorvel::win {
namespace {

// The clipboard, open for as long as this lives. Another program holds it only for moments,
// so opening is tried again for a little while before giving up.
class OpenClipboardScope {
 public:
  explicit OpenClipboardScope(HWND owner) {
    for (int attempt = 0; attempt < 20 && !open_; ++attempt) {
      if (attempt > 0) Sleep(10);
      open_ = OpenClipboard(owner) != FALSE;
    }
  }
  OpenClipboardScope(const OpenClipboardScope&) = delete;
  OpenClipboardScope& operator=(const OpenClipboardScope&) = delete;
  ~OpenClipboardScope() {
    if (open_) CloseClipboard();
  }
  bool open() const { return open_; }

 private:
  bool open_ = false;
};

// A hidden message-only window to own the clipboard while it is written: with no owner, the
// system may refuse the data.
class OwnerWindow {
 public:
  OwnerWindow()
      : window_(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                GetModuleHandleW(nullptr), nullptr)) {}
  OwnerWindow(const OwnerWindow&) = delete;
  OwnerWindow& operator=(const OwnerWindow&) = delete;
  ~OwnerWindow() {
    if (window_) DestroyWindow(window_);
  }
  HWND get() const { return window_; }

 private:
  HWND window_;
};

}  // namespace

std::string WindowsClipboard::GetText() const {
  if (!IsClipboardFormatAvailable(CF_UNICODETEXT)) return "";
  OpenClipboardScope clipboard(nullptr);
  if (!clipboard.open()) return "";
  HANDLE data = GetClipboardData(CF_UNICODETEXT);
  if (data == nullptr) return "";
  const auto* text = static_cast<const wchar_t*>(GlobalLock(data));
  if (text == nullptr) return "";
  // The text ends at its terminator, or at the end of the block if another program left it out.
  const size_t capacity = GlobalSize(data) / sizeof(wchar_t);
  const size_t length = wcsnlen(text, capacity);
  std::string result = Narrow(text, length);
  GlobalUnlock(data);
  return result;
}

void WindowsClipboard::SetText(const std::string& text) {
  const std::wstring wide = Widen(text);
  const size_t bytes = (wide.size() + 1) * sizeof(wchar_t);
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes);
  if (block == nullptr) return;
  void* target = GlobalLock(block);
  if (target == nullptr) {
    GlobalFree(block);
    return;
  }
  std::memcpy(target, wide.c_str(), bytes);
  GlobalUnlock(block);
  OwnerWindow owner;
  OpenClipboardScope clipboard(owner.get());
  // Once the clipboard takes the block it is the clipboard's; otherwise it is still ours.
  if (!clipboard.open() || !EmptyClipboard() ||
      SetClipboardData(CF_UNICODETEXT, block) == nullptr) {
    GlobalFree(block);
  }
}

}  // namespace qorvel::win
