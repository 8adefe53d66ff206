#ifndef WINDOWS_TESTS_EVENT_COUNTER_H_
#define WINDOWS_TESTS_EVENT_COUNTER_H_

// Counts the events a control raises, as a container hears them: a sink for the control's
// default outgoing interface, connected through its connection point.

#include <windows.h>

#include <ocidl.h>

#include <string>

#include "qorvel/platform/com_windows.h"

namespace qorvel::win::testing {

class EventCounter {
 public:
  // Connects to `control`'s default source interface; connected() says whether that worked,
  // and error() why not.
  explicit EventCounter(IUnknown* control);
  EventCounter(const EventCounter&) = delete;
  EventCounter& operator=(const EventCounter&) = delete;
  ~EventCounter();

  bool connected() const { return cookie_ != 0; }
  const std::string& error() const { return error_; }
  // Events heard with `dispid`, and events heard with any other.
  int heard(DISPID dispid) const;
  int heard_others(DISPID dispid) const;
  void Reset();

 private:
  class Sink;
  Sink* sink_ = nullptr;
  ComPtr<IConnectionPoint> point_;
  DWORD cookie_ = 0;
  std::string error_;
};

// The DISPID of ValueBox's one event.
constexpr DISPID kValueChanged = 1;

}  // namespace qorvel::win::testing

#endif  // WINDOWS_TESTS_EVENT_COUNTER_H_
