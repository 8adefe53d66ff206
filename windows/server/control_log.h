#ifndef WINDOWS_SERVER_CONTROL_LOG_H_
#define WINDOWS_SERVER_CONTROL_LOG_H_

#include <string_view>

namespace qorvel::win {

// When the environment variable QORVEL_CONTROL_LOG names a file, appends one line to it,
// "ClassName Event", for each life-cycle event a container sends a control: what a test of a
// real container can't see from outside. Without the variable, or when the file can't be
// written, nothing happens.
void LogControlEvent(std::string_view class_name, std::string_view event) noexcept;

}  // namespace qorvel::win

#endif  // WINDOWS_SERVER_CONTROL_LOG_H_
