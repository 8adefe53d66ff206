#include "windows/server/text_box_window.h"

#include <olectl.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <utility>

#include "qorvel/platform/com_windows.h"
#include "qorvel/platform/env.h"
#include "windows/server/edit_units.h"

namespace qorvel::win {
namespace {

constexpr int16_t kPaste = 22;  // Ctrl+V, as the model takes every paste

// A character code as the platform's key press has it: 16 bits, signed.
int16_t KeyOf(WPARAM code) { return static_cast<int16_t>(static_cast<uint16_t>(code)); }

bool Pressed(int key) { return (GetKeyState(key) & 0x8000) != 0; }

// An OLE colour (a system colour index with the top bit set, or RGB) as the DC takes it; one the
// system doesn't know paints white.
COLORREF ColorRefOf(uint32_t color) {
  COLORREF result = RGB(255, 255, 255);
  if (OleTranslateColor(color, nullptr, &result) != S_OK) return RGB(255, 255, 255);
  return result;
}

// Twips to pixels, kept within what a window's position and size can hold.
int Pixels(float twips, int dpi) {
  if (!std::isfinite(twips)) return 0;
  const double pixels = std::round(static_cast<double>(twips) * dpi / 1440.0);
  return static_cast<int>(std::clamp(pixels, -32768.0, 32767.0));
}

// The module this code is in, the DLL when it runs as one, for the windows it makes.
HINSTANCE ThisModule() {
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&ThisModule), &module);
  return module;
}

// Messages with which the user moves the caret or selects through the EDIT's own handling.
bool IsUserInput(UINT message) {
  return (message >= WM_KEYFIRST && message <= WM_KEYLAST) ||
         (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST) || message == EM_SETSEL;
}

}  // namespace

// Whether this object outlives what a handler runs: a control's handler or a client's event may
// destroy the box while one of its messages is still being handled. The destructor clears the
// innermost flag; each guard passes the news outwards as it ends.
class TextBoxWindow::Guard {
 public:
  explicit Guard(TextBoxWindow* box) : box_(box), outer_(std::exchange(box->alive_, &alive_)) {}
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;
  ~Guard() {
    if (alive_) {
      box_->alive_ = outer_;
    } else if (outer_ != nullptr) {
      *outer_ = false;
    }
  }
  bool alive() const { return alive_; }

 private:
  TextBoxWindow* box_;
  bool* outer_;
  bool alive_ = true;
};

// The EDIT's own writes made by Sync, which are not the user's and are not read back.
class TextBoxWindow::Syncing {
 public:
  explicit Syncing(TextBoxWindow* box) : box_(box) { ++box_->syncing_; }
  Syncing(const Syncing&) = delete;
  Syncing& operator=(const Syncing&) = delete;
  ~Syncing() { --box_->syncing_; }

 private:
  TextBoxWindow* box_;
};

std::unique_ptr<TextBoxWindow> TextBoxWindow::Create(TextBox& model, HWND parent) {
  std::unique_ptr<TextBoxWindow> box(new TextBoxWindow(model, parent));
  if (box->hwnd_ == nullptr) return nullptr;
  return box;
}

TextBoxWindow::TextBoxWindow(TextBox& model, HWND parent) : model_(model) {
  hwnd_ = CreateWindowExW(WS_EX_CLIENTEDGE, L"EDIT", L"",
                          WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL | ES_LEFT, 0, 0, 0, 0, parent,
                          nullptr, ThisModule(), nullptr);
  if (hwnd_ == nullptr) return;
  SetWindowLongPtrW(hwnd_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  edit_procedure_ = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrW(hwnd_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure)));
  // The system font of a bare EDIT is bold and large; text boxes use the dialog font.
  SendMessageW(hwnd_, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)),
               FALSE);
  Layout();
  Sync();
}

TextBoxWindow::~TextBoxWindow() {
  if (alive_ != nullptr) *alive_ = false;
  if (hwnd_ != nullptr) {
    SetWindowLongPtrW(hwnd_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(edit_procedure_));
    SetWindowLongPtrW(hwnd_, GWLP_USERDATA, 0);
    DestroyWindow(hwnd_);
  }
  if (own_brush_) DeleteObject(brush_);
}

LRESULT CALLBACK TextBoxWindow::Procedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
  auto* box = reinterpret_cast<TextBoxWindow*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
  if (box == nullptr) return DefWindowProcW(hwnd, message, wparam, lparam);
  if (message == WM_NCDESTROY) {  // destroyed with its parent: the box stays, without a window
    const WNDPROC edit_procedure = box->edit_procedure_;
    SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(edit_procedure));
    SetWindowLongPtrW(hwnd, GWLP_USERDATA, 0);
    box->hwnd_ = nullptr;
    return CallWindowProcW(edit_procedure, hwnd, message, wparam, lparam);
  }
  Guard guard(box);
  // An error out of the control's handlers ends what this message did; it can't go on through
  // the system's code to the message loop.
  try {
    return box->Handle(message, wparam, lparam, guard);
  } catch (...) {
    if (guard.alive() && box->hwnd_ != nullptr) box->Sync();
    return 0;
  }
}

LRESULT TextBoxWindow::Handle(UINT message, WPARAM wparam, LPARAM lparam, const Guard& guard) {
  switch (message) {
    case WM_CHAR:
    case WM_IME_CHAR:  // a character the input method composed, typed as any other
      Run([&] { model_.TypeKey(KeyOf(wparam)); }, guard);
      return 0;
    case WM_UNICHAR:
      if (wparam == UNICODE_NOCHAR) return FALSE;  // asked first: send WM_CHAR instead
      if (wparam <= 0xFFFF) {
        Run([&] { model_.TypeKey(KeyOf(wparam)); }, guard);
      } else {  // as the two halves that WM_CHAR would bring, which the model leaves alone
        const WPARAM offset = wparam - 0x10000;
        if (Run([&] { model_.TypeKey(KeyOf(0xD800 + (offset >> 10 & 0x3FF))); }, guard)) {
          Run([&] { model_.TypeKey(KeyOf(0xDC00 + (offset & 0x3FF))); }, guard);
        }
      }
      return TRUE;
    case WM_PASTE:  // the menu's Paste, and the middle mouse button
      Run([&] { model_.TypeKey(kPaste); }, guard);
      return 0;
    case WM_CUT:
      Run([&] { Cut(); }, guard);
      return 0;
    case WM_CLEAR:
      Run([&] { model_.Clear(); }, guard);
      return 0;
    case WM_COPY:
      if (model_.SelLength() > 0) Env::Current().clipboard().SetText(model_.SelText());
      return 0;
    case WM_UNDO:
    case EM_UNDO:
      // The box keeps no history: every text the EDIT shows comes from the model, and the
      // model's text can't be taken back past the control's handlers.
      return FALSE;
    case WM_KEYDOWN:
      if (wparam == VK_DELETE && !Pressed(VK_MENU)) {
        Run([&] { DeleteKey(); }, guard);
        return 0;
      }
      if (wparam == VK_INSERT && Pressed(VK_SHIFT) && !Pressed(VK_MENU)) {  // Shift+Insert
        Run([&] { model_.TypeKey(kPaste); }, guard);
        return 0;
      }
      break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS: {
      const bool got = message == WM_SETFOCUS;
      if (!Run([&] { got ? model_.GotFocus() : model_.LostFocus(); }, guard)) return 0;
      return Default(message, wparam, lparam);
    }
    case WM_IME_STARTCOMPOSITION:
    case WM_IME_COMPOSITION:
    case WM_IME_ENDCOMPOSITION:
      // The system's own composition window instead of the EDIT's inline one, which would write
      // into the text; the result comes back as WM_IME_CHAR.
      return DefWindowProcW(hwnd_, message, wparam, lparam);
    case WM_SETTEXT:
    case EM_REPLACESEL:
      if (syncing_ == 0) {  // written by someone else: a write of the box's text
        const LRESULT result = Default(message, wparam, lparam);
        if (guard.alive() && hwnd_ != nullptr) PullText(guard);
        return result;
      }
      break;
    default:
      break;
  }
  const LRESULT result = Default(message, wparam, lparam);
  if (guard.alive() && hwnd_ != nullptr && syncing_ == 0 && IsUserInput(message)) {
    PullSelection();
  }
  return result;
}

LRESULT TextBoxWindow::Default(UINT message, WPARAM wparam, LPARAM lparam) {
  return CallWindowProcW(edit_procedure_, hwnd_, message, wparam, lparam);
}

template <class Operation>
bool TextBoxWindow::Run(Operation operation, const Guard& guard) {
  operation();
  if (!guard.alive()) return false;
  Sync();
  return hwnd_ != nullptr;
}

// The Delete key as the platform's EDIT has it: the selection goes (to the clipboard with
// Shift); with none, the character after the caret, before it with Shift, or all up to the end
// with Ctrl. It comes as a key down, not as a character, so the key press handler doesn't see
// it, as on the platform; the model's Clear is that deletion.
void TextBoxWindow::DeleteKey() {
  const bool shift = Pressed(VK_SHIFT);
  const bool control = Pressed(VK_CONTROL);
  if (model_.Locked || (shift && control)) return;
  if (model_.SelLength() > 0) {
    if (shift) {
      Cut();
    } else {
      model_.Clear();
    }
    return;
  }
  if (shift) {
    if (model_.SelStart() == 0) return;
    model_.SetSelStart(model_.SelStart() - 1);
    model_.SetSelLength(1);
  } else {
    model_.SetSelLength(control ? INT32_MAX : 1);
  }
  model_.Clear();
}

// A locked box still gives its selection away, as a read-only EDIT does.
void TextBoxWindow::Cut() {
  if (model_.SelLength() == 0) return;
  Env::Current().clipboard().SetText(model_.SelText());
  model_.Clear();
}

void TextBoxWindow::PullSelection() {
  DWORD start = 0;
  DWORD end = 0;
  SendMessageW(hwnd_, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
  const std::string& text = model_.Text();
  const int32_t from = CharactersBefore(text, static_cast<int32_t>(start));
  const int32_t to = CharactersBefore(text, static_cast<int32_t>(end));
  if (from != model_.SelStart() || to - from != model_.SelLength()) {
    model_.SetSelStart(from);
    model_.SetSelLength(to - from);
  }
  SyncSelection();  // a caret the EDIT put inside a surrogate pair goes to the pair's start
}

void TextBoxWindow::PullText(const Guard& guard) {
  const std::wstring shown = WindowText();
  if (shown == EditTextOf(model_.Text())) {
    PullSelection();
    return;
  }
  Run([&] { model_.SetText(Narrow(shown.data(), shown.size())); }, guard);
}

void TextBoxWindow::Sync() {
  if (hwnd_ == nullptr) return;
  SyncText();
  SyncSelection();
  const bool read_only = (GetWindowLongW(hwnd_, GWL_STYLE) & ES_READONLY) != 0;
  if (read_only != model_.Locked) SendMessageW(hwnd_, EM_SETREADONLY, model_.Locked, 0);
  SyncColor();
  const float place[4] = {model_.Left, model_.Top, model_.Width, model_.Height};
  if (!std::equal(place, place + 4, laid_out_)) Layout();
}

void TextBoxWindow::SyncText() {
  const std::wstring wanted = EditTextOf(model_.Text());
  if (WindowText() == wanted) return;
  Syncing syncing(this);
  SetWindowTextW(hwnd_, wanted.c_str());
}

void TextBoxWindow::SyncSelection() {
  const std::string& text = model_.Text();
  const auto from = static_cast<DWORD>(UnitsBefore(text, model_.SelStart()));
  const auto to = static_cast<DWORD>(UnitsBefore(text, model_.SelStart() + model_.SelLength()));
  DWORD start = 0;
  DWORD end = 0;
  SendMessageW(hwnd_, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
  if (start == from && end == to) return;  // as it stands, which keeps the EDIT's anchor
  Syncing syncing(this);
  SendMessageW(hwnd_, EM_SETSEL, from, to);  // the caret at the end, as the model has it
}

void TextBoxWindow::SyncColor() {
  const uint32_t color = model_.BackColor;
  if (brush_ != nullptr && color == shown_color_) return;
  if (own_brush_) DeleteObject(brush_);
  const uint32_t index = color & 0xFFFFFF;
  if ((color & 0xFF000000) == 0x80000000 && index <= COLOR_MENUBAR) {
    brush_ = GetSysColorBrush(static_cast<int>(index));  // follows the system's colours
    own_brush_ = false;
  } else {
    brush_ = CreateSolidBrush(ColorRefOf(color));
    own_brush_ = true;
  }
  shown_color_ = color;
  InvalidateRect(hwnd_, nullptr, TRUE);
}

void TextBoxWindow::Layout() {
  if (hwnd_ == nullptr) return;
  HDC dc = GetDC(hwnd_);
  const int dpi_x = GetDeviceCaps(dc, LOGPIXELSX);
  const int dpi_y = GetDeviceCaps(dc, LOGPIXELSY);
  ReleaseDC(hwnd_, dc);
  SetWindowPos(hwnd_, nullptr, Pixels(model_.Left, dpi_x), Pixels(model_.Top, dpi_y),
               std::max(0, Pixels(model_.Width, dpi_x)), std::max(0, Pixels(model_.Height, dpi_y)),
               SWP_NOZORDER | SWP_NOACTIVATE);
  laid_out_[0] = model_.Left;
  laid_out_[1] = model_.Top;
  laid_out_[2] = model_.Width;
  laid_out_[3] = model_.Height;
}

LRESULT TextBoxWindow::ColorFor(HDC dc) {
  SetBkColor(dc, ColorRefOf(shown_color_));
  SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
  return reinterpret_cast<LRESULT>(brush_);
}

std::wstring TextBoxWindow::WindowText() const {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(hwnd_)) + 1, L'\0');
  text.resize(
      static_cast<size_t>(GetWindowTextW(hwnd_, text.data(), static_cast<int>(text.size()))));
  return text;
}

}  // namespace qorvel::win
