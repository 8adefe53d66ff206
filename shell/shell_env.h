#ifndef SHELL_SHELL_ENV_H_
#define SHELL_SHELL_ENV_H_

#include <string>

#include "qorvel/platform/env.h"
#include "qorvel/platform/messages.h"

namespace qvsh {

// Message boxes as qvsh shows them: recorded like everywhere else, and printed to standard
// error as they appear, "<title>: <text>" (the text alone without a title), a carriage return in
// the text starting an indented line (a terminal would otherwise write the second line over the
// first).
class EchoedMessages : public qorvel::MessageLog {
 public:
  void ShowMessage(const std::string& text, int32_t style, const std::string& title) override;
};

// The environment qvsh runs in: the portable one, with echoed message boxes.
class ShellEnv : public qorvel::PortableEnv {
 public:
  EchoedMessages& messages() override { return messages_; }

 private:
  EchoedMessages messages_;
};

// The boxes shown so far in the environment qvsh runs in.
qorvel::MessageLog& ShownMessages();

}  // namespace qvsh

#endif  // SHELL_SHELL_ENV_H_
