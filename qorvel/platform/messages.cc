#include "qorvel/platform/messages.h"

#include <iostream>

namespace qorvel {

void Messages::ShowMessage(const std::string& text, int32_t style, const std::string& title) {
  std::lock_guard lock(mu_);
  shown_.push_back(Message{text, style, title});
  if (echo_) std::cerr << title << ": " << text << std::endl;
}

std::vector<Message> Messages::shown() const {
  std::lock_guard lock(mu_);
  return shown_;
}

void Messages::Clear() {
  std::lock_guard lock(mu_);
  shown_.clear();
}

}  // namespace qorvel
