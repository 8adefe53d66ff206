#include "windows/tests/edit_keys.h"

#include <cstring>
#include <vector>

#include "qorvel/platform/com_windows.h"

namespace qorvel::win::testing {
namespace {

BOOL CALLBACK FindEditChild(HWND window, LPARAM found) {
  wchar_t name[16];
  if (GetClassNameW(window, name, 16) > 0 && _wcsicmp(name, L"Edit") == 0) {
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
  }
  return TRUE;
}

}  // namespace

HWND FindEdit(HWND root) {
  HWND found = nullptr;
  if (root == nullptr || !FindEditChild(root, reinterpret_cast<LPARAM>(&found))) return found;
  EnumChildWindows(root, FindEditChild, reinterpret_cast<LPARAM>(&found));
  return found;
}

void PumpMessages() {
  MSG msg;
  while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&msg);
    DispatchMessageW(&msg);
  }
}

void TypeKeys(HWND edit, std::wstring_view keys) {
  for (wchar_t key : keys) {
    PostMessageW(edit, WM_CHAR, key, 1);  // repeat count 1
    PumpMessages();
  }
}

std::string EditText(HWND edit) {
  const int length = GetWindowTextLengthW(edit);
  std::vector<wchar_t> text(length + 1);
  const int got = GetWindowTextW(edit, text.data(), length + 1);
  return Narrow(text.data(), got > 0 ? got : 0);
}

EditState ReadEdit(HWND edit) {
  EditState state;
  state.text = EditText(edit);
  DWORD start = 0, end = 0;
  SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
  state.sel_start = static_cast<int>(start);
  state.sel_end = static_cast<int>(end);
  return state;
}

bool PutOnClipboard(HWND owner, std::wstring_view text) {
  HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, (text.size() + 1) * sizeof(wchar_t));
  if (memory == nullptr) return false;
  auto* bytes = static_cast<wchar_t*>(GlobalLock(memory));
  std::memcpy(bytes, text.data(), text.size() * sizeof(wchar_t));
  bytes[text.size()] = 0;
  GlobalUnlock(memory);
  if (!OpenClipboard(owner)) {
    GlobalFree(memory);
    return false;
  }
  EmptyClipboard();
  const bool put = SetClipboardData(CF_UNICODETEXT, memory) != nullptr;
  if (!put) GlobalFree(memory);  // the clipboard owns it only once it took it
  CloseClipboard();
  return put;
}

}  // namespace qorvel::win::testing
