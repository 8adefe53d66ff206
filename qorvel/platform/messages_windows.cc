#include "qorvel/platform/messages_windows.h"

#include <windows.h>

#include <cstdio>
#include <string>

#include "qorvel/platform/com_windows.h"

namespace qorvel::win {
namespace {

// The hook of a box being answered on this thread. Thread-local, as a CBT hook set for one
// thread runs on that thread only.
thread_local HHOOK answer_hook = nullptr;

// Sees the box's dialog window as it is made and queues its OK. The dialog reads its queue only
// once it is up and running, so the box is shown, and answered, in full; waiting for the box to
// be activated instead would hang on a desktop with no display, where nothing gets activated.
LRESULT CALLBACK AnswerBox(int code, WPARAM wparam, LPARAM lparam) {
  if (code == HCBT_CREATEWND) {
    HWND window = reinterpret_cast<HWND>(wparam);
    wchar_t class_name[8] = {};
    if (GetParent(window) == nullptr && GetClassNameW(window, class_name, 8) > 0 &&
        std::wstring_view(class_name) == L"#32770") {
      PostMessageW(window, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
    }
  }
  return CallNextHookEx(answer_hook, code, wparam, lparam);
}

void AppendRecord(const std::wstring& path, const std::string& record) {
  HANDLE file = CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                            nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return;  // the box was answered; only the record is lost
  // One write per record: appends from other threads and processes don't interleave with it.
  const std::string line = record + "\r\n";
  DWORD written = 0;
  WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  CloseHandle(file);
}

void AppendEscaped(const std::string& text, std::string* out) {
  for (wchar_t c : Widen(text)) {
    switch (c) {
      case L'\\':
        *out += "\\\\";
        break;
      case L'\r':
        *out += "\\r";
        break;
      case L'\n':
        *out += "\\n";
        break;
      case L'\t':
        *out += "\\t";
        break;
      default:
        if (c >= 0x20 && c < 0x7F) {
          *out += static_cast<char>(c);
        } else {
          char unit[8];
          std::snprintf(unit, sizeof unit, "\\u%04X", static_cast<unsigned>(c));
          *out += unit;
        }
    }
  }
}

// The file named by the variable; empty when it names none. Read at each box, so a test can
// turn the answering on and off.
std::wstring LogPath() {
  const std::wstring name = Widen(kMessageLogVariable);
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length =
        GetEnvironmentVariableW(name.c_str(), path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(length);  // too small: `length` counts the terminator
  }
}

}  // namespace

std::string MessageRecord(const std::string& text, int32_t style, const std::string& title) {
  std::string record = std::to_string(style) + "\t";
  AppendEscaped(title, &record);
  record += "\t";
  AppendEscaped(text, &record);
  return record;
}

void WindowsMessages::ShowMessage(const std::string& text, int32_t style,
                                  const std::string& title) {
  const std::wstring log_path = LogPath();
  const bool unattended = !log_path.empty();
  // A box asked for while another is up on this thread (an incoming call served by the first
  // box's message loop) hooks again and puts the first box's hook back after.
  HHOOK outer = answer_hook;
  if (unattended) {
    answer_hook = SetWindowsHookExW(WH_CBT, AnswerBox, nullptr, GetCurrentThreadId());
  }
  MessageBoxW(nullptr, Widen(text).c_str(), Widen(title).c_str(), static_cast<UINT>(style));
  if (unattended) {
    if (answer_hook) UnhookWindowsHookEx(answer_hook);
    answer_hook = outer;
    AppendRecord(log_path, MessageRecord(text, style, title));
  }
}

}  // namespace qorvel::win
