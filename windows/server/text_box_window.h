#ifndef WINDOWS_SERVER_TEXT_BOX_WINDOW_H_
#define WINDOWS_SERVER_TEXT_BOX_WINDOW_H_

#include <windows.h>

#include <memory>

#include "qorvel/platform/text_box.h"

namespace qorvel::win {

// Text1 of a control as a real EDIT child window.
// A stand-in with the interface of the binding that routes the user's typing through the
// TextBox model, until that lands: it shows what the model holds, and nothing typed into it
// reaches the model.
class TextBoxWindow {
 public:
  // nullptr when the system refuses the window.
  static std::unique_ptr<TextBoxWindow> Create(TextBox& model, HWND parent);
  TextBoxWindow(const TextBoxWindow&) = delete;
  TextBoxWindow& operator=(const TextBoxWindow&) = delete;
  ~TextBoxWindow();

  HWND hwnd() const { return hwnd_; }
  // The EDIT shows the model as it stands now.
  void Sync();
  // Position and size from the model's twips.
  void Layout();
  // The parent's answer to WM_CTLCOLOREDIT and WM_CTLCOLORSTATIC for this EDIT.
  LRESULT ColorFor(HDC dc);

 private:
  TextBoxWindow(TextBox& model, HWND parent);

  TextBox& model_;
  HWND hwnd_ = nullptr;
  HBRUSH brush_ = nullptr;
};

}  // namespace qorvel::win

#endif  // WINDOWS_SERVER_TEXT_BOX_WINDOW_H_
