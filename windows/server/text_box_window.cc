#include "windows/server/text_box_window.h"

#include <string>

#include "qorvel/platform/com_windows.h"
#include "windows/server/control_units.h"
#include "windows/server/module.h"

namespace qorvel::win {

std::unique_ptr<TextBoxWindow> TextBoxWindow::Create(TextBox& model, HWND parent) {
  std::unique_ptr<TextBoxWindow> box(new TextBoxWindow(model, parent));
  if (box->hwnd_ == nullptr) return nullptr;
  box->Sync();
  box->Layout();
  return box;
}

TextBoxWindow::TextBoxWindow(TextBox& model, HWND parent) : model_(model) {
  hwnd_ = CreateWindowExW(WS_EX_CLIENTEDGE, L"EDIT", L"", WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 0,
                          0, 0, 0, parent, nullptr, ThisModule(), nullptr);
}

TextBoxWindow::~TextBoxWindow() {
  if (hwnd_) DestroyWindow(hwnd_);
  if (brush_) DeleteObject(brush_);
}

void TextBoxWindow::Sync() {
  const std::wstring text = Widen(model_.Text());
  SetWindowTextW(hwnd_, text.c_str());
  SendMessageW(hwnd_, EM_SETREADONLY, model_.Locked, 0);
  InvalidateRect(hwnd_, nullptr, TRUE);
}

void TextBoxWindow::Layout() {
  MoveWindow(hwnd_, TwipsToPixels(model_.Left), TwipsToPixels(model_.Top),
             TwipsToPixels(model_.Width), TwipsToPixels(model_.Height), TRUE);
}

// The platform's colour notation: the high bit names a system colour by its index.
LRESULT TextBoxWindow::ColorFor(HDC dc) {
  const uint32_t colour = model_.BackColor;
  const COLORREF back = (colour & 0x80000000u) ? GetSysColor(static_cast<int>(colour & 0xFF))
                                               : static_cast<COLORREF>(colour & 0xFFFFFF);
  if (brush_) DeleteObject(brush_);
  brush_ = CreateSolidBrush(back);
  SetBkColor(dc, back);
  return reinterpret_cast<LRESULT>(brush_);
}

}  // namespace qorvel::win
