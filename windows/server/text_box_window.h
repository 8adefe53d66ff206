#ifndef QORVEL_WINDOWS_SERVER_TEXT_BOX_WINDOW_H_
#define QORVEL_WINDOWS_SERVER_TEXT_BOX_WINDOW_H_

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

#include "qorvel/platform/text_box.h"

namespace qorvel::win {

// A portable TextBox shown as a real EDIT child window. The model stays the one authority over
// the text: every character the user types goes to the model's key handling, never to the EDIT,
// and the EDIT is then made to show what the model holds. The EDIT keeps only what the model
// leaves to the platform: moving the caret and selecting, whose result is read back into the
// model. The model must outlive this object.
class TextBoxWindow {
 public:
  // Creates the EDIT as a child of `parent`, showing the model as it stands; nullptr when the
  // system refuses the window (GetLastError says why).
  static std::unique_ptr<TextBoxWindow> Create(TextBox& model, HWND parent);
  TextBoxWindow(const TextBoxWindow&) = delete;
  TextBoxWindow& operator=(const TextBoxWindow&) = delete;
  ~TextBoxWindow();  // destroys the EDIT; safe from inside one of the model's handlers

  // The EDIT, or nullptr once it has been destroyed with its parent.
  HWND hwnd() const { return hwnd_; }
  TextBox& model() const { return model_; }

  // Makes the EDIT show the model after the control has changed it from its own side: text,
  // caret and selection, Locked, BackColor, position and size. Changes only what differs, so
  // the owner may call it after every member call. The window calls it itself after each thing
  // the user does.
  void Sync();
  // Position and size from the model's twips, at the DPI of the window's DC.
  void Layout();
  // The answer to the parent's WM_CTLCOLOREDIT or WM_CTLCOLORSTATIC for this EDIT (lParam ==
  // hwnd()): sets the DC's colours and returns the background brush. A read-only EDIT asks with
  // WM_CTLCOLORSTATIC, so a parent must pass both on.
  LRESULT ColorFor(HDC dc);

 private:
  class Guard;
  class Syncing;

  TextBoxWindow(TextBox& model, HWND parent);
  static LRESULT CALLBACK Procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);
  LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam, const Guard& guard);
  LRESULT Default(UINT message, WPARAM wparam, LPARAM lparam);  // the EDIT's own handling
  // Runs one of the model's operations, then Sync; false when the box or its window was
  // destroyed meanwhile.
  template <class Operation>
  bool Run(Operation operation, const Guard& guard);
  void DeleteKey();
  void Cut();
  void PullSelection();               // the EDIT's caret and selection into the model
  void PullText(const Guard& guard);  // a text written into the EDIT by others
  void SyncText();
  void SyncSelection();
  void SyncColor();
  std::wstring WindowText() const;

  TextBox& model_;
  HWND hwnd_ = nullptr;
  WNDPROC edit_procedure_ = nullptr;
  int syncing_ = 0;        // inside Sync, whose own writes to the EDIT are not the user's
  bool* alive_ = nullptr;  // the innermost Guard's flag, which the destructor clears
  uint32_t shown_color_ = 0;
  HBRUSH brush_ = nullptr;
  bool own_brush_ = false;  // a solid brush of ours, not one of the system's colour brushes
  float laid_out_[4] = {};  // Left, Top, Width, Height at the last Layout
};

}  // namespace qorvel::win

#endif  // QORVEL_WINDOWS_SERVER_TEXT_BOX_WINDOW_H_
