#include "shell/shell_env.h"

#include <iostream>

namespace qvsh {

void EchoedMessages::ShowMessage(const std::string& text, int32_t style, const std::string& title) {
  MessageLog::ShowMessage(text, style, title);
  std::string shown =
      title.empty() ? "" : title + ": ";  // a box without a title shows its text only
  for (char c : text) shown += c == '\r' ? std::string("\n    ") : std::string(1, c);
  std::cerr << shown << std::endl;
}

// qvsh installs its own environment, so every box lands in a log it can read.
qorvel::MessageLog& ShownMessages() {
  return static_cast<qorvel::MessageLog&>(qorvel::Env::Current().messages());
}

}  // namespace qvsh
