#ifndef WINDOWS_TESTS_CONTROL_LOG_H_
#define WINDOWS_TESTS_CONTROL_LOG_H_

// The DLL's record of its controls' life-cycle events: when QORVEL_CONTROL_LOG names a file, the
// DLL appends one line per event a container sends, "ClassName Event" (e.g. "ValueBox
// Initialize"). The runner sets the variable before any program starts, as the DLL reads it.

#include <string>
#include <vector>

namespace qorvel::win::testing {

class ControlLog {
 public:
  ControlLog();  // from the environment

  bool named() const { return !path_.empty(); }
  // Empties the file, so the next read sees only what follows.
  void Clear() const;
  // The events logged for `class_name` since the last Clear, in order; none when the file isn't
  // there (the DLL doesn't write it).
  std::vector<std::string> EventsOf(const std::string& class_name) const;
  // Whether the DLL has written the file at all since it was cleared.
  bool Written() const;

 private:
  std::wstring path_;
};

// "Initialize, InitProperties, Resize" from the events, with runs of one event shown once,
// since a control that sets its own size hears a Resize for each change.
std::string Sequence(const std::vector<std::string>& events);

}  // namespace qorvel::win::testing

#endif  // WINDOWS_TESTS_CONTROL_LOG_H_
