#ifndef WINDOWS_SERVER_CONTROL_UNITS_H_
#define WINDOWS_SERVER_CONTROL_UNITS_H_

#include <windows.h>

#include <cmath>

namespace qorvel::win {

// A control measures itself in twips (1440 to the inch), OLE in HIMETRIC (2540 to the inch,
// hundredths of a millimetre), windows in the screen's pixels.
inline LONG TwipsToHimetric(float twips) { return std::lround(twips * 2540.0 / 1440.0); }
inline float HimetricToTwips(LONG himetric) {
  return static_cast<float>(himetric * 1440.0 / 2540.0);
}

// The screen's pixels to the inch, read once.
inline int ScreenDpi() {
  static const int dpi = [] {
    HDC screen = GetDC(nullptr);
    const int d = screen ? GetDeviceCaps(screen, LOGPIXELSX) : 96;
    if (screen) ReleaseDC(nullptr, screen);
    return d > 0 ? d : 96;
  }();
  return dpi;
}
inline int TwipsToPixels(float twips) {
  return static_cast<int>(std::lround(twips * ScreenDpi() / 1440.0));
}
inline float PixelsToTwips(int pixels) { return pixels * 1440.0f / ScreenDpi(); }

}  // namespace qorvel::win

#endif  // WINDOWS_SERVER_CONTROL_UNITS_H_
