#include "qorvel/platform/launcher.h"

#include "qorvel/platform/error.h"
#include "qorvel/platform/process.h"

namespace qorvel {

int32_t PortableLauncher::LaunchProgram(std::string_view path, int32_t /*window_style*/) {
  std::function<void()> start;
  int32_t task;
  {
    std::lock_guard lock(mu_);
    if (auto it = programs_.find(path); it != programs_.end()) start = it->second;
    task = next_task_++;
  }
  // An in-process program starts outside the lock: it registers itself with the platform.
  if (start) {
    start();
  } else if (!StartProcess(std::string(path))) {
    Raise(err::kFileNotFound);
  }
  return task;
}

void PortableLauncher::InstallProgram(const std::string& path, std::function<void()> start) {
  std::lock_guard lock(mu_);
  programs_[path] = std::move(start);
}

}  // namespace qorvel
