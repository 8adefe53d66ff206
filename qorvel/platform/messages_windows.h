#ifndef QORVEL_PLATFORM_MESSAGES_WINDOWS_H_
#define QORVEL_PLATFORM_MESSAGES_WINDOWS_H_

#include "qorvel/platform/messages.h"

namespace qorvel::win {

// The environment variable that makes message boxes answer themselves. An unattended run (a
// test, a script under cscript) names a file in it; each box is then still shown, dismissed with
// OK as soon as it comes up, and recorded in the file as one line:
//
//   style TAB title TAB text CR LF
//
// style in decimal; in title and text a backslash is written "\\", CR "\r", LF "\n", TAB "\t",
// any other control character or non-ASCII character "\uXXXX" (its UTF-16 code units), so the
// file is plain ASCII, one box per line, in the order shown.
inline constexpr const char* kMessageLogVariable = "QORVEL_MESSAGE_LOG";

// The platform's message boxes.
class WindowsMessages final : public Messages {
 public:
  void ShowMessage(const std::string& text, int32_t style, const std::string& title) override;
};

// The line a box is recorded as, without its CR LF.
std::string MessageRecord(const std::string& text, int32_t style, const std::string& title);

}  // namespace qorvel::win

#endif  // QORVEL_PLATFORM_MESSAGES_WINDOWS_H_
