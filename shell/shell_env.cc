#include "shell/shell_env.h"

#include <iostream>

namespace qvsh {

void EchoedMessages::ShowMessage(const std::string& text, int32_t style, const std::string& title) {
  Messages::ShowMessage(text, style, title);
  std::string shown = title + ": ";
  for (char c : text) shown += c == '\r' ? std::string("\n    ") : std::string(1, c);
  std::cerr << shown << std::endl;
}

}  // namespace qvsh
