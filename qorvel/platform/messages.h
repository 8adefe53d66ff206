#ifndef QORVEL_PLATFORM_MESSAGES_H_
#define QORVEL_PLATFORM_MESSAGES_H_

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace qorvel {

// The two styles the library's boxes take: OK only, system modal, with the critical-stop or the
// exclamation icon.
inline constexpr int32_t kCriticalStopBox = 4112;
inline constexpr int32_t kExclamationBox = 4144;

// Modal message boxes: one OK button, answered before the call returns.
class Messages {
 public:
  virtual ~Messages() = default;
  virtual void ShowMessage(const std::string& text, int32_t style, const std::string& title) = 0;
};

struct Message {
  std::string text;
  int32_t style = 0;
  std::string title;
  bool operator==(const Message&) const = default;
};

// The portable message boxes. There is no screen: every box is kept in order, for scripts and
// tests to read, and answered at once.
class MessageLog : public Messages {
 public:
  void ShowMessage(const std::string& text, int32_t style, const std::string& title) override;
  std::vector<Message> shown() const;
  void Clear();

 private:
  mutable std::mutex mu_;
  std::vector<Message> shown_;
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_MESSAGES_H_
