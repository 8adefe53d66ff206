#ifndef QORVEL_PLATFORM_CLIPBOARD_WINDOWS_H_
#define QORVEL_PLATFORM_CLIPBOARD_WINDOWS_H_

#include "qorvel/platform/clipboard.h"

namespace qorvel::win {

// The system clipboard's Unicode text, as UTF-8. When another program keeps the clipboard open
// past a short wait, a read finds no text and a write changes nothing, as a paste or copy that
// the system refused would.
class WindowsClipboard final : public Clipboard {
 public:
  std::string GetText() const override;
  void SetText(const std::string& text) override;
};

}  // namespace qorvel::win

#endif  // QORVEL_PLATFORM_CLIPBOARD_WINDOWS_H_
