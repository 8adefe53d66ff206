// The real EDIT behind a portable text box, under the system's window manager: typing through
// a key filter, the keys the EDIT handles itself, the clipboard, focus, Locked and its colours,
// and characters of more than one byte or unit. A plain program that exits non-zero at the
// first difference. With --bench it times one key against the same key in a plain EDIT.
//   text_box_window_test [--bench]

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "qorvel/platform/com_windows.h"
#include "qorvel/platform/text.h"
#include "qorvel/platform/text_box.h"
#include "windows/server/edit_units.h"
#include "windows/server/text_box_window.h"

namespace {

using qorvel::TextBox;
using qorvel::win::TextBoxWindow;

constexpr wchar_t kArabicDecimal = 0x066B;  // a decimal symbol of two bytes in UTF-8

// A small key filter, as a number box has one: digits, the Arabic decimal symbol and control
// keys pass. It writes down what the box runs (K key, C change, G and L focus), selects all on
// focus, and runs `on_key` for the key 'x' before swallowing it.
class Filter : public qorvel::TextBoxEvents {
 public:
  explicit Filter(TextBox& box) : box_(box) { box.set_events(this); }
  void Text1_Change() override { heard += 'C'; }
  void Text1_GotFocus() override {
    heard += 'G';
    box_.SetSelStart(0);
    box_.SetSelLength(qorvel::CharacterCount(box_.Text()));
  }
  void Text1_LostFocus() override { heard += 'L'; }
  void Text1_KeyPress(int16_t& key) override {
    heard += 'K';
    const auto code = static_cast<uint16_t>(key);
    if (code == 'x' && on_key) on_key();
    if (code < 32 || (code >= '0' && code <= '9') || code == kArabicDecimal) return;
    key = 0;
  }
  std::string Heard() { return std::exchange(heard, ""); }

  std::string heard;
  std::function<void()> on_key;

 private:
  TextBox& box_;
};

TextBoxWindow* g_colored = nullptr;  // the box whose colours the parent answers
UINT g_color_message = 0;            // the last colour message the parent had for it

LRESULT CALLBACK ParentProcedure(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
  if ((message == WM_CTLCOLOREDIT || message == WM_CTLCOLORSTATIC) && g_colored != nullptr &&
      reinterpret_cast<HWND>(lparam) == g_colored->hwnd()) {
    g_color_message = message;
    return g_colored->ColorFor(reinterpret_cast<HDC>(wparam));
  }
  return DefWindowProcW(hwnd, message, wparam, lparam);
}

HWND MakeParent() {
  static const bool registered = [] {
    WNDCLASSW window_class = {};
    window_class.lpfnWndProc = ParentProcedure;
    window_class.hInstance = GetModuleHandleW(nullptr);
    window_class.hbrBackground = GetSysColorBrush(COLOR_WINDOW);
    window_class.lpszClassName = L"QorvelTextBoxTest";
    return RegisterClassW(&window_class) != 0;
  }();
  if (!registered) return nullptr;
  return CreateWindowExW(0, L"QorvelTextBoxTest", L"text box", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 50,
                         50, 400, 200, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
}

[[noreturn]] void Fail(const std::string& what) {
  std::fprintf(stderr, "FAILED: %s\n", what.c_str());
  std::exit(1);
}

void Expect(bool ok, const std::string& what) {
  if (!ok) Fail(what);
}

void Pump() {
  MSG msg;
  while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&msg);
    DispatchMessageW(&msg);
  }
}

// Keys as the user types them: posted to the EDIT, then the queue runs.
void Type(HWND edit, std::wstring_view keys) {
  for (wchar_t key : keys) PostMessageW(edit, WM_CHAR, key, 1);
  Pump();
}

// A key the EDIT takes as a key down, with Shift or Ctrl held as the keyboard state says.
void Press(HWND edit, UINT key, bool shift = false, bool control = false) {
  BYTE state[256] = {};
  GetKeyboardState(state);
  state[VK_SHIFT] = shift ? 0x80 : 0;
  state[VK_CONTROL] = control ? 0x80 : 0;
  SetKeyboardState(state);
  PostMessageW(edit, WM_KEYDOWN, key, 1);
  Pump();
  state[VK_SHIFT] = state[VK_CONTROL] = 0;
  SetKeyboardState(state);
}

void SetClipboard(const std::wstring& text) {
  Expect(OpenClipboard(nullptr) != FALSE, "opening the clipboard");
  EmptyClipboard();
  const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes);
  std::memcpy(GlobalLock(block), text.c_str(), bytes);
  GlobalUnlock(block);
  Expect(SetClipboardData(CF_UNICODETEXT, block) != nullptr, "writing the clipboard");
  CloseClipboard();
}

std::wstring Clipboard() {
  std::wstring text;
  if (!OpenClipboard(nullptr)) return text;
  if (HANDLE data = GetClipboardData(CF_UNICODETEXT)) {
    text = static_cast<const wchar_t*>(GlobalLock(data));
    GlobalUnlock(data);
  }
  CloseClipboard();
  return text;
}

std::string Hex(const std::wstring& text) {
  std::string out;
  char unit[8];
  for (wchar_t c : text) {
    std::snprintf(unit, sizeof unit, "%04X ", static_cast<unsigned>(c));
    out += unit;
  }
  return out;
}

// The model holds `text` with the caret at `start` and `length` characters selected, and the
// EDIT shows the same: its text, and the selection from unit `from` to unit `to`.
void ExpectShown(const std::string& step, const TextBox& model, HWND edit, const std::string& text,
                 int32_t start, int32_t length, DWORD from, DWORD to) {
  Expect(model.Text() == text, step + ": the model's text is \"" + model.Text() + "\"");
  Expect(model.SelStart() == start && model.SelLength() == length,
         step + ": the model selects " + std::to_string(model.SelStart()) + "+" +
             std::to_string(model.SelLength()));
  wchar_t buffer[256] = {};
  GetWindowTextW(edit, buffer, 256);
  const std::wstring wanted = qorvel::win::EditTextOf(text);
  Expect(wanted == buffer, step + ": the EDIT shows " + Hex(buffer) + "for " + Hex(wanted));
  DWORD shown_from = 0;
  DWORD shown_to = 0;
  SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&shown_from),
               reinterpret_cast<LPARAM>(&shown_to));
  Expect(
      shown_from == from && shown_to == to,
      step + ": the EDIT selects " + std::to_string(shown_from) + ".." + std::to_string(shown_to));
}

void ExpectHeard(const std::string& step, Filter& filter, const std::string& heard) {
  const std::string got = filter.Heard();
  Expect(got == heard, step + ": the handlers ran \"" + got + "\", not \"" + heard + "\"");
}

// What the parent's colour answer sets: the text's background, and the brush's colour.
void ExpectColorAnswer(HWND edit, UINT message, COLORREF wanted, const std::string& step) {
  HDC dc = GetDC(edit);
  const auto brush = reinterpret_cast<HBRUSH>(SendMessageW(
      GetParent(edit), message, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(edit)));
  const COLORREF text_background = GetBkColor(dc);
  ReleaseDC(edit, dc);
  LOGBRUSH fill = {};
  Expect(brush != nullptr && GetObjectW(brush, sizeof fill, &fill) == sizeof fill &&
             fill.lbColor == wanted && text_background == wanted,
         step + ": the colour answer");
}

COLORREF BackgroundOf(HWND edit) {
  RedrawWindow(edit, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
  RECT client;
  GetClientRect(edit, &client);
  HDC dc = GetDC(edit);
  const COLORREF pixel = GetPixel(dc, client.right - 3, client.bottom / 2);
  ReleaseDC(edit, dc);
  return pixel;
}

void Layout(TextBox& model, TextBoxWindow& box, HWND parent) {
  HDC dc = GetDC(box.hwnd());
  const int dpi_x = GetDeviceCaps(dc, LOGPIXELSX);
  const int dpi_y = GetDeviceCaps(dc, LOGPIXELSY);
  ReleaseDC(box.hwnd(), dc);
  model.Left = 720;
  model.Top = 0;
  model.Width = 2880;
  model.Height = 360;
  box.Sync();
  RECT rect;
  GetWindowRect(box.hwnd(), &rect);
  MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&rect), 2);
  Expect(rect.left == dpi_x / 2 && rect.top == 0 && rect.right - rect.left == 2 * dpi_x &&
             rect.bottom - rect.top == dpi_y / 4,
         "layout: twips to pixels at " + std::to_string(dpi_x) + " dpi gives " +
             std::to_string(rect.left) + "," + std::to_string(rect.top) + " " +
             std::to_string(rect.right - rect.left) + "x" + std::to_string(rect.bottom - rect.top));
  model.Left = 0;
  box.Sync();
}

void TypingAndEditing(TextBox& model, Filter& filter, TextBoxWindow& box, HWND parent) {
  const HWND edit = box.hwnd();
  SetFocus(edit);
  Pump();
  ExpectHeard("focus", filter, "G");

  Type(edit, L"12a3");
  ExpectShown("typing through the filter", model, edit, "123", 3, 0, 3, 3);
  ExpectHeard("typing through the filter", filter, "KCKCKKC");

  Press(edit, VK_LEFT);
  ExpectShown("left arrow", model, edit, "123", 2, 0, 2, 2);
  Press(edit, VK_HOME);
  Type(edit, L"9");
  ExpectShown("home, then a digit", model, edit, "9123", 1, 0, 1, 1);
  filter.Heard();

  Press(edit, VK_DELETE);
  ExpectShown("delete", model, edit, "923", 1, 0, 1, 1);
  ExpectHeard("delete raises no key press", filter, "C");

  Press(edit, VK_END, /*shift=*/true);
  ExpectShown("shift+end selects", model, edit, "923", 1, 2, 1, 3);
  Type(edit, L"5");
  ExpectShown("a digit over the selection", model, edit, "95", 2, 0, 2, 2);
  Type(edit, L"\b");
  ExpectShown("backspace", model, edit, "9", 1, 0, 1, 1);
  Type(edit, L"\b\b");
  ExpectShown("backspace at the start", model, edit, "", 0, 0, 0, 0);
  ExpectHeard("typing and backspace", filter, "KCKCKCK");

  Type(edit, L"9");
  SetClipboard(L"45\r\nx");
  Type(edit, L"\x16");
  ExpectShown("ctrl+v pastes the first line", model, edit, "945", 3, 0, 3, 3);
  SetClipboard(L"7a");
  SendMessageW(edit, WM_PASTE, 0, 0);
  ExpectShown("the menu's paste passes no filter", model, edit, "9457a", 5, 0, 5, 5);
  Press(edit, VK_INSERT, /*shift=*/true);
  ExpectShown("shift+insert pastes", model, edit, "9457a7a", 7, 0, 7, 7);
  ExpectHeard("pastes are key 22", filter, "KCKCKCKC");

  model.SetSelStart(1);
  model.SetSelLength(2);
  box.Sync();
  ExpectShown("a selection made by the control", model, edit, "9457a7a", 1, 2, 1, 3);
  SendMessageW(edit, WM_COPY, 0, 0);
  Expect(Clipboard() == L"45", "copy: the clipboard holds the selection");
  SetClipboard(L"");
  SendMessageW(edit, WM_CUT, 0, 0);
  ExpectShown("cut", model, edit, "97a7a", 1, 0, 1, 1);
  Expect(Clipboard() == L"45", "cut: the clipboard holds what went");
  Press(edit, VK_DELETE, /*shift=*/false, /*control=*/true);
  ExpectShown("ctrl+delete clears to the end", model, edit, "9", 1, 0, 1, 1);
  Press(edit, VK_DELETE, /*shift=*/true);
  ExpectShown("shift+delete takes the character before", model, edit, "", 0, 0, 0, 0);
  SendMessageW(edit, WM_UNDO, 0, 0);
  ExpectShown("undo keeps the model's text", model, edit, "", 0, 0, 0, 0);
  ExpectHeard("cut and delete", filter, "CCC");

  model.SetText("777");
  model.SetSelStart(3);
  box.Sync();
  ExpectShown("text written by the control", model, edit, "777", 3, 0, 3, 3);
  SetWindowTextW(edit, L"42");
  ExpectShown("text written into the window by others", model, edit, "42", 0, 0, 0, 0);
  ExpectHeard("text writes", filter, "CC");
  SendMessageW(edit, EM_SETSEL, 0, -1);
  ExpectShown("select all from the menu", model, edit, "42", 0, 2, 0, 2);

  SetFocus(parent);
  Pump();
  ExpectHeard("focus leaves", filter, "L");
}

void LockedAndColours(TextBox& model, Filter& filter, TextBoxWindow& box) {
  const HWND edit = box.hwnd();
  const COLORREF white = RGB(255, 255, 255);
  Expect(BackgroundOf(edit) == white, "a new box is white");
  model.Locked = true;
  model.BackColor = 0x8000000F;
  model.SetSelStart(2);
  box.Sync();
  Expect((GetWindowLongW(edit, GWL_STYLE) & ES_READONLY) != 0, "locked: the EDIT is read-only");
  const COLORREF face = BackgroundOf(edit);
  Expect(g_color_message == WM_CTLCOLORSTATIC, "locked: the EDIT asks for static colours");
  Expect(face == GetSysColor(COLOR_BTNFACE), "locked: the box has the colour of button faces");
  ExpectColorAnswer(edit, WM_CTLCOLORSTATIC, GetSysColor(COLOR_BTNFACE), "locked");
  filter.Heard();
  Type(edit, L"5\b\x16");
  SendMessageW(edit, WM_PASTE, 0, 0);
  Press(edit, VK_DELETE);
  Press(edit, VK_HOME);
  Press(edit, VK_DELETE);
  SendMessageW(edit, WM_CUT, 0, 0);
  ExpectShown("locked: keys change nothing", model, edit, "42", 0, 0, 0, 0);
  ExpectHeard("locked: the key handler still runs", filter, "KKKK");

  model.Locked = false;
  model.BackColor = 0xFFFFFF;
  box.Sync();
  Expect((GetWindowLongW(edit, GWL_STYLE) & ES_READONLY) == 0, "unlocked: the EDIT takes keys");
  Expect(BackgroundOf(edit) == white, "unlocked: white again");
  Expect(g_color_message == WM_CTLCOLOREDIT, "unlocked: the EDIT asks for edit colours");
  ExpectColorAnswer(edit, WM_CTLCOLOREDIT, white, "unlocked");
}

void CharactersOfMoreThanOneByte(TextBox& model, Filter& filter, TextBoxWindow& box) {
  const HWND edit = box.hwnd();
  model.SetText("12");
  model.SetSelStart(2);
  box.Sync();
  filter.Heard();
  Type(edit, std::wstring(1, kArabicDecimal) + L"5");
  ExpectShown("a two-byte character typed", model, edit, "12\u066b5", 4, 0, 4, 4);
  Press(edit, VK_LEFT);
  Press(edit, VK_LEFT);
  Type(edit, L"\b");
  ExpectShown("caret counted in characters", model, edit, "1\u066b5", 1, 0, 1, 1);
  Press(edit, VK_RIGHT, /*shift=*/true);
  ExpectShown("selecting the two-byte character", model, edit, "1\u066b5", 1, 1, 1, 2);
  ExpectHeard("two-byte typing", filter, "KCKCKC");

  model.SetText("a\U0001F600b");  // two units in the EDIT, one character in the model
  model.SetSelStart(2);
  model.SetSelLength(1);
  box.Sync();
  ExpectShown("a character of two units, from the control", model, edit, "a\U0001F600b", 2, 1, 3,
              4);
  Press(edit, VK_LEFT);
  ExpectShown("left of the selection", model, edit, "a\U0001F600b", 2, 0, 3, 3);
  Press(edit, VK_LEFT);
  ExpectShown("left over a character of two units", model, edit, "a\U0001F600b", 1, 0, 1, 1);
  Type(edit, L"\b");
  ExpectShown("backspace before a character of two units", model, edit, "\U0001F600b", 0, 0, 0, 0);

  model.SetText(
      "a\xff"
      "b");
  model.SetSelStart(2);
  box.Sync();
  ExpectShown("a stray byte shows as one unit", model, edit,
              "a\xff"
              "b",
              2, 0, 2, 2);
  Type(edit, L"\b");
  ExpectShown("backspace over a stray byte", model, edit, "ab", 1, 0, 1, 1);
}

void Lifetimes(TextBox& model, Filter& filter, std::unique_ptr<TextBoxWindow>& box) {
  // The control's handler destroys the box while the box is handling the key.
  const HWND edit = box->hwnd();
  filter.on_key = [&] { box.reset(); };
  Type(edit, L"x7");
  Expect(box == nullptr && !IsWindow(edit), "destroyed from its own key handler");
  filter.on_key = nullptr;

  // The parent goes first: the box stays, without a window, and does nothing.
  HWND parent = MakeParent();
  auto orphan = TextBoxWindow::Create(model, parent);
  Expect(orphan != nullptr, "a second box");
  DestroyWindow(parent);
  Expect(orphan->hwnd() == nullptr, "the box knows its window is gone");
  model.SetText("1");
  orphan->Sync();
  orphan.reset();

  Expect(TextBoxWindow::Create(model, reinterpret_cast<HWND>(0x1234)) == nullptr,
         "no box under a parent that isn't a window");
}

// Seconds for `rounds` of a digit and a Backspace sent straight to `edit`, the best round.
double BestRound(HWND edit, int keys, int rounds) {
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  double best = 1e9;
  for (int round = 0; round < rounds; ++round) {
    LARGE_INTEGER start;
    LARGE_INTEGER end;
    QueryPerformanceCounter(&start);
    for (int i = 0; i < keys / 2; ++i) {
      SendMessageW(edit, WM_CHAR, L'5', 1);
      SendMessageW(edit, WM_CHAR, L'\b', 1);
    }
    QueryPerformanceCounter(&end);
    best = std::min(best, static_cast<double>(end.QuadPart - start.QuadPart) / frequency.QuadPart);
  }
  return best;
}

int Bench() {
  const HWND parent = MakeParent();
  TextBox model;
  Filter filter(model);
  model.SetText("12345678");
  model.SetSelStart(8);
  auto box = TextBoxWindow::Create(model, parent);
  const HWND plain = CreateWindowExW(WS_EX_CLIENTEDGE, L"EDIT", L"12345678",
                                     WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 0, 40, 100, 24, parent,
                                     nullptr, GetModuleHandleW(nullptr), nullptr);
  if (box == nullptr || plain == nullptr) Fail("bench: no windows");
  SendMessageW(plain, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)),
               FALSE);
  SendMessageW(plain, EM_SETSEL, 8, 8);
  constexpr int kKeys = 4000;
  constexpr int kRounds = 5;
  const double boxed = BestRound(box->hwnd(), kKeys, kRounds);
  const double bare = BestRound(plain, kKeys, kRounds);
  Expect(model.Text() == "12345678", "bench: the text is back where it started");
  std::printf("one key (WM_CHAR, best of %d rounds of %d keys, a digit then Backspace):\n", kRounds,
              kKeys);
  std::printf("  text box window  %8.2f us\n", boxed / kKeys * 1e6);
  std::printf("  plain EDIT       %8.2f us\n", bare / kKeys * 1e6);
  std::printf("  ratio            %8.2f\n", boxed / bare);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--bench") == 0) return Bench();
  const HWND parent = MakeParent();
  Expect(parent != nullptr, "a top-level window");
  TextBox model;
  Filter filter(model);
  auto box = TextBoxWindow::Create(model, parent);
  Expect(box != nullptr, "the box's window");
  g_colored = box.get();
  Layout(model, *box, parent);
  TypingAndEditing(model, filter, *box, parent);
  LockedAndColours(model, filter, *box);
  CharactersOfMoreThanOneByte(model, filter, *box);
  g_colored = nullptr;
  Lifetimes(model, filter, box);
  DestroyWindow(parent);
  std::printf("text box window: passed\n");
  return 0;
}
