#include "qorvel/platform/messages.h"

namespace qorvel {

void MessageLog::ShowMessage(const std::string& text, int32_t style, const std::string& title) {
  std::lock_guard lock(mu_);
  shown_.push_back(Message{text, style, title});
}

std::vector<Message> MessageLog::shown() const {
  std::lock_guard lock(mu_);
  return shown_;
}

void MessageLog::Clear() {
  std::lock_guard lock(mu_);
  shown_.clear();
}

}  // namespace qorvel
