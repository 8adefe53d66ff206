#include "qorvel/platform/text_box.h"

#include <algorithm>

#include "qorvel/platform/env.h"
#include "qorvel/platform/text.h"

namespace qorvel {
namespace {

constexpr int16_t kBackspace = 8;
constexpr int16_t kCopy = 3;    // Ctrl+C
constexpr int16_t kPaste = 22;  // Ctrl+V

// A single-line box takes the clipboard's first line only.
std::string FirstLine(const std::string& text) {
  return text.substr(0, text.find_first_of("\r\n"));
}

// Codes that stand for a character of their own: not the control codes, not DEL, and not the
// halves of a surrogate pair.
bool IsCharacter(uint16_t code) {
  return code >= 32 && code != 127 && (code < 0xD800 || code > 0xDFFF);
}

}  // namespace

void TextBox::SetText(std::string text) {
  const bool changed = text != text_;
  text_ = std::move(text);
  sel_start_ = 0;
  sel_length_ = 0;
  if (changed) Changed();
}

void TextBox::SetSelStart(int32_t position) {
  sel_start_ = std::clamp<int32_t>(position, 0, CharacterCount(text_));
  sel_length_ = 0;
}

void TextBox::SetSelLength(int32_t length) {
  sel_length_ = std::clamp<int32_t>(length, 0, CharacterCount(text_) - sel_start_);
}

std::string TextBox::SelText() const {
  const size_t from = ByteAt(sel_start_);
  return text_.substr(from, ByteAt(sel_start_ + sel_length_) - from);
}

size_t TextBox::ByteAt(int32_t position) const { return CharacterOffset(text_, position); }

void TextBox::TypeKey(int16_t key) {
  if (events_ != nullptr) events_->Text1_KeyPress(key);
  if (key == kCopy) {  // a locked box still gives its text away
    if (sel_length_ > 0) Env::Current().clipboard().SetText(SelText());
    return;
  }
  if (key == 0 || Locked) return;
  if (key == kBackspace) {
    if (sel_length_ == 0 && sel_start_ > 0) {
      --sel_start_;
      sel_length_ = 1;
    }
    Replace("");
  } else if (key == kPaste) {
    Replace(FirstLine(Env::Current().clipboard().GetText()));
  } else if (IsCharacter(static_cast<uint16_t>(key))) {
    Replace(Utf8Of(static_cast<uint16_t>(key)));
  }
}

void TextBox::Clear() {
  if (!Locked) Replace("");
}

void TextBox::GotFocus() {
  if (events_ != nullptr) events_->Text1_GotFocus();
}

void TextBox::LostFocus() {
  if (events_ != nullptr) events_->Text1_LostFocus();
}

void TextBox::Replace(const std::string& with) {
  if (sel_length_ == 0 && with.empty()) return;  // nothing selected, nothing typed
  const std::string before = text_;
  const size_t from = ByteAt(sel_start_);
  text_.replace(from, ByteAt(sel_start_ + sel_length_) - from, with);
  sel_start_ += CharacterCount(with);
  sel_length_ = 0;
  if (text_ != before) Changed();
}

void TextBox::Changed() {
  if (events_ != nullptr) events_->Text1_Change();
}

}  // namespace qorvel
