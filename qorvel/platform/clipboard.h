#ifndef QORVEL_PLATFORM_CLIPBOARD_H_
#define QORVEL_PLATFORM_CLIPBOARD_H_

#include <mutex>
#include <string>

namespace qorvel {

// The system clipboard, as text: what a paste into a text box inserts.
class Clipboard {
 public:
  virtual ~Clipboard() = default;
  // The clipboard's text; empty when it holds none.
  virtual std::string GetText() const = 0;
  virtual void SetText(const std::string& text) = 0;
};

// The portable clipboard: one text in memory, shared by every thread of the environment.
class MemoryClipboard final : public Clipboard {
 public:
  std::string GetText() const override {
    std::lock_guard lock(mu_);
    return text_;
  }
  void SetText(const std::string& text) override {
    std::lock_guard lock(mu_);
    text_ = text;
  }

 private:
  mutable std::mutex mu_;
  std::string text_;
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_CLIPBOARD_H_
