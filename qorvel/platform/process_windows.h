#ifndef QORVEL_PLATFORM_PROCESS_WINDOWS_H_
#define QORVEL_PLATFORM_PROCESS_WINDOWS_H_

#include <cstdint>
#include <optional>
#include <string>

namespace qorvel::win {

// Starts the program at `path` (UTF-8) with no arguments and the window shown as `show_command`
// (SW_SHOWMAXIMIZED, ...) and lets it run on its own: the process id, or nullopt when the path
// can't be started.
std::optional<uint32_t> StartProgram(const std::string& path, int show_command);

}  // namespace qorvel::win

#endif  // QORVEL_PLATFORM_PROCESS_WINDOWS_H_
