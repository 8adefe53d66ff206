#ifndef WINDOWS_TESTS_FORMS_H_
#define WINDOWS_TESTS_FORMS_H_

// The windows the acceptance program shows: top-level forms with labels, a strip of pictures
// drawn by the controls themselves, and the pause that lets the runner take a screenshot.

#include <windows.h>

#include <string>
#include <vector>

namespace qorvel::win::testing {

// A visible top-level window in the button-face colour, at `rect` on the screen.
HWND CreateForm(const wchar_t* title, const RECT& rect);
// A form for the length of a scope: however the scope is left, the window goes, and the messages
// its going sends are answered.
class Form {
 public:
  Form(const wchar_t* title, const RECT& rect) : hwnd_(CreateForm(title, rect)) {}
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;
  ~Form() { Destroy(); }
  // The window goes now, for a check of what its going does.
  void Destroy();
  operator HWND() const { return hwnd_; }  // NOLINT: stands for its window in Win32 calls

 private:
  HWND hwnd_;
};

// A line of text at `rect` in `parent`.
HWND CreateLabel(HWND parent, const wchar_t* text, const RECT& rect);
// A plain EDIT control at `rect` in `parent`.
HWND CreatePlainEdit(HWND parent, const RECT& rect);

// A child window that shows bitmaps at places of its client area; it owns them.
struct Picture {
  HBITMAP bitmap;
  POINT at;
};
HWND CreatePictureStrip(HWND parent, const RECT& rect);
void AddPicture(HWND strip, HBITMAP bitmap, POINT at);

// When the runner asked for screenshots (--screens DIR), tells it the screen shows `name` by
// the file DIR\name.ready and waits, still answering the windows' messages, until it has left
// DIR\name.taken. False when nobody was asked or nobody answered in time.
class Screens {
 public:
  explicit Screens(std::wstring dir) : dir_(std::move(dir)) {}
  bool Take(const wchar_t* name) const;
  bool wanted() const { return !dir_.empty(); }

 private:
  std::wstring dir_;
};

}  // namespace qorvel::win::testing

#endif  // WINDOWS_TESTS_FORMS_H_
