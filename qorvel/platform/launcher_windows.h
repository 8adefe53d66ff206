#ifndef QORVEL_PLATFORM_LAUNCHER_WINDOWS_H_
#define QORVEL_PLATFORM_LAUNCHER_WINDOWS_H_

#include "qorvel/platform/launcher.h"

namespace qorvel::win {

// Starts real processes. The window style is the platform's show command (3: maximised with
// focus); the task number is the process id.
class WindowsLauncher final : public Launcher {
 public:
  int32_t LaunchProgram(std::string_view path, int32_t window_style) override;
};

}  // namespace qorvel::win

#endif  // QORVEL_PLATFORM_LAUNCHER_WINDOWS_H_
