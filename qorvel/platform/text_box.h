#ifndef QORVEL_PLATFORM_TEXT_BOX_H_
#define QORVEL_PLATFORM_TEXT_BOX_H_

#include <cstdint>
#include <string>

namespace qorvel {

// What a text box tells the control that holds it, as the platform's single-line text box
// raises its events. The key press handler may set the key code to 0 to swallow the key.
class TextBoxEvents {
 public:
  virtual ~TextBoxEvents() = default;
  virtual void Text1_Change() {}
  virtual void Text1_GotFocus() {}
  virtual void Text1_LostFocus() {}
  virtual void Text1_KeyPress(int16_t& /*KeyAscii*/) {}
};

// A model of the platform's standard single-line text box, which a container gives a control
// as its constituent Text1. The text is UTF-8; positions count characters from 0 (a byte that
// is no part of a well-formed sequence counts as one). A key code is a 16-bit character code,
// as the platform sends it: codes from 0x8000 up come as negative numbers.
class TextBox {
 public:
  void set_events(TextBoxEvents* events) { events_ = events; }

  const std::string& Text() const { return text_; }
  // Replaces the text, puts the caret at 0 with nothing selected, and runs the change handler
  // before it returns. As the platform's box raises Change only when the text really changes,
  // a write of the same text runs no handler (the caret still goes to 0); the same holds for
  // typing and pasting. The number box rewrites its text only with its handler blocked, so it
  // doesn't depend on this.
  void SetText(std::string text);
  int32_t SelStart() const { return sel_start_; }
  void SetSelStart(int32_t position);  // limited to 0 .. the text's length; the selection goes
  int32_t SelLength() const { return sel_length_; }
  void SetSelLength(int32_t length);  // limited to what follows the caret
  std::string SelText() const;

  bool Locked = false;            // takes no typing, keeps its text
  uint32_t BackColor = 0xFFFFFF;  // white; 0x8000000F is the system colour of button faces
  float Left = 0;
  float Top = 0;
  float Width = 1095;
  float Height = 315;

  // The user at the keyboard. The key press handler sees the key first; a key that passes is
  // typed: a character replaces the selection at the caret, Backspace (8) deletes the selection
  // or the character before the caret, Ctrl+V (22) pastes the clipboard's first line the same
  // way, Ctrl+C (3) copies the selection to the clipboard; other control keys, DEL (127) and
  // the halves of surrogate pairs change nothing. A locked box runs the handler and takes
  // nothing.
  void TypeKey(int16_t key);
  // The keys and menu commands that delete without a character: Delete, Cut and the menu's
  // Delete. The selection goes, and the key press handler doesn't run, as the platform's box
  // raises no key press for them; a locked box keeps its text. A caller that deletes a character
  // selects it first. (DEL, 127, is a character code that Ctrl+Backspace types, not this.)
  void Clear();
  // Focus comes and goes: the got-focus and lost-focus handlers.
  void GotFocus();
  void LostFocus();

 private:
  void Replace(const std::string& with);  // the selection, then the caret behind what came in
  size_t ByteAt(int32_t position) const;
  void Changed();

  std::string text_;
  int32_t sel_start_ = 0;
  int32_t sel_length_ = 0;
  TextBoxEvents* events_ = nullptr;
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_TEXT_BOX_H_
