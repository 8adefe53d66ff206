#ifndef QORVEL_PLATFORM_LAUNCHER_H_
#define QORVEL_PLATFORM_LAUNCHER_H_

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace qorvel {

// Starts programs by path with a window style.
class Launcher {
 public:
  virtual ~Launcher() = default;
  // Returns a task number as soon as the process exists; raises 53 when the path can't be
  // started.
  virtual int32_t LaunchProgram(std::string_view path, int32_t window_style) = 0;
};

// The portable launcher. A path installed as an in-process program (the simulated hosts) starts
// that program here; any other path starts a real process.
class PortableLauncher final : public Launcher {
 public:
  int32_t LaunchProgram(std::string_view path, int32_t window_style) override;
  void InstallProgram(const std::string& path, std::function<void()> start);

 private:
  std::mutex mu_;
  std::map<std::string, std::function<void()>, std::less<>> programs_;
  int32_t next_task_ = 1000;
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_LAUNCHER_H_
