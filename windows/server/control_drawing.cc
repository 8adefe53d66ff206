#include "windows/server/control_drawing.h"

#include <cstdint>
#include <cstring>
#include <span>

#include "qorvel/platform/com_windows.h"

namespace qorvel::win {
namespace {

// The first image of an .ico file as an icon, or nullptr when the bytes aren't one.
HICON IconOf(std::span<const uint8_t> ico, int* width, int* height) {
  constexpr size_t kDirBytes = 6;
  constexpr size_t kEntryBytes = 16;
  if (ico.size() < kDirBytes + kEntryBytes) return nullptr;
  auto u16 = [&](size_t at) { return static_cast<uint16_t>(ico[at] | ico[at + 1] << 8); };
  auto u32 = [&](size_t at) {
    uint32_t v;
    std::memcpy(&v, ico.data() + at, 4);
    return v;
  };
  if (u16(0) != 0 || u16(2) != 1 || u16(4) == 0) return nullptr;
  const uint32_t bytes = u32(kDirBytes + 8);
  const uint32_t offset = u32(kDirBytes + 12);
  if (offset > ico.size() || bytes > ico.size() - offset || bytes == 0) return nullptr;
  *width = ico[kDirBytes] ? ico[kDirBytes] : 256;
  *height = ico[kDirBytes + 1] ? ico[kDirBytes + 1] : 256;
  return CreateIconFromResourceEx(const_cast<PBYTE>(ico.data() + offset), bytes, TRUE, 0x00030000,
                                  *width, *height, LR_DEFAULTCOLOR);
}

void DrawPicture(std::span<const uint8_t> ico, HDC dc, int left, int top, double scale) {
  int width = 0;
  int height = 0;
  HICON icon = IconOf(ico, &width, &height);
  if (icon == nullptr) return;
  DrawIconEx(dc, left, top, icon, static_cast<int>(width * scale + 0.5),
             static_cast<int>(height * scale + 0.5), 0, nullptr, DI_NORMAL);
  DestroyIcon(icon);
}

// The platform's colour notation: the high bit names a system colour by its index.
COLORREF ColourOf(uint32_t colour) {
  if (colour & 0x80000000u) return GetSysColor(static_cast<int>(colour & 0xFF));
  return static_cast<COLORREF>(colour & 0xFFFFFF);
}

void DrawTextBox(const TextBox& box, HDC dc, RECT rect) {
  HBRUSH brush = CreateSolidBrush(ColourOf(box.BackColor));
  FillRect(dc, &rect, brush);
  DeleteObject(brush);
  DrawEdge(dc, &rect, EDGE_SUNKEN, BF_RECT | BF_ADJUST);
  InflateRect(&rect, -1, 0);
  std::wstring text = Widen(box.Text());
  const int old_mode = SetBkMode(dc, TRANSPARENT);
  DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &rect,
            DT_SINGLELINE | DT_VCENTER | DT_LEFT | DT_NOPREFIX | DT_END_ELLIPSIS);
  SetBkMode(dc, old_mode);
}

}  // namespace

void DrawControl(const ControlShell& shell, HDC dc, const RECT& bounds) {
  const UserControl& surface = shell.user_control;
  if (surface.Width <= 0 || surface.Height <= 0) return;
  const double x_scale = (bounds.right - bounds.left) / static_cast<double>(surface.Width);
  const double y_scale = (bounds.bottom - bounds.top) / static_cast<double>(surface.Height);
  // An icon's pixels are 15 twips each on the control's own scale.
  constexpr double kTwipsPerIconPixel = 15;
  if (shell.Text1) {
    const TextBox& box = *shell.Text1;
    RECT rect{bounds.left + static_cast<LONG>(box.Left * x_scale),
              bounds.top + static_cast<LONG>(box.Top * y_scale),
              bounds.left + static_cast<LONG>((box.Left + box.Width) * x_scale),
              bounds.top + static_cast<LONG>((box.Top + box.Height) * y_scale)};
    DrawTextBox(box, dc, rect);
  } else if (shell.Image1) {
    const Image& image = *shell.Image1;
    DrawPicture(image.Picture, dc, bounds.left + static_cast<int>(image.Left * x_scale),
                bounds.top + static_cast<int>(image.Top * y_scale), kTwipsPerIconPixel * x_scale);
  } else {
    DrawPicture(surface.Picture, dc, bounds.left, bounds.top, kTwipsPerIconPixel * x_scale);
  }
}

}  // namespace qorvel::win
