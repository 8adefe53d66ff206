#ifndef QORVEL_PLATFORM_MESSAGES_H_
#define QORVEL_PLATFORM_MESSAGES_H_

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace qorvel {

struct Message {
  std::string text;
  int32_t style = 0;
  std::string title;
  bool operator==(const Message&) const = default;
};

// Message boxes. There is no screen here: every box is recorded in order, and command-line tools
// also print it to standard error. A box is answered (OK) at once.
class Messages {
 public:
  virtual ~Messages() = default;
  virtual void ShowMessage(const std::string& text, int32_t style, const std::string& title);
  std::vector<Message> shown() const;
  void Clear();
  void set_echo(bool echo) { echo_ = echo; }

 private:
  mutable std::mutex mu_;
  std::vector<Message> shown_;
  bool echo_ = false;
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_MESSAGES_H_
