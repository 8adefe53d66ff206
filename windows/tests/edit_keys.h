#ifndef WINDOWS_TESTS_EDIT_KEYS_H_
#define WINDOWS_TESTS_EDIT_KEYS_H_

// Typing into an EDIT control as a user's keyboard does, by WM_CHAR, and reading back what it
// shows: the text and the caret.

#include <windows.h>

#include <string>
#include <string_view>

namespace qorvel::win::testing {

constexpr wchar_t kBackspace = 8;
constexpr wchar_t kPaste = 22;  // Ctrl+V as a character

// `root` if it is of class "Edit", else the first such window among its descendants, or
// nullptr.
HWND FindEdit(HWND root);
// Dispatches this thread's messages until none is waiting.
void PumpMessages();
// Posts WM_CHAR for each key to `edit`, each followed by the messages it causes.
void TypeKeys(HWND edit, std::wstring_view keys);

struct EditState {
  std::string text;  // UTF-8
  int sel_start = 0;
  int sel_end = 0;
};
EditState ReadEdit(HWND edit);
std::string EditText(HWND edit);
// Puts `text` on the system clipboard as Unicode text; false when the clipboard is taken.
bool PutOnClipboard(HWND owner, std::wstring_view text);

}  // namespace qorvel::win::testing

#endif  // WINDOWS_TESTS_EDIT_KEYS_H_
