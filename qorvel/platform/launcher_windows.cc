#include "qorvel/platform/launcher_windows.h"

#include <string>

#include "qorvel/platform/error.h"
#include "qorvel/platform/process_windows.h"

namespace qorvel::win {

int32_t WindowsLauncher::LaunchProgram(std::string_view path, int32_t window_style) {
  const std::optional<uint32_t> pid = StartProgram(std::string(path), window_style);
  if (!pid) Raise(err::kFileNotFound);
  return static_cast<int32_t>(*pid);
}

}  // namespace qorvel::win
