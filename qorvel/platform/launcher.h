#ifndef QORVEL_PLATFORM_LAUNCHER_H_
#define QORVEL_PLATFORM_LAUNCHER_H_

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace qorvel {

// Starts programs. A path registered as a simulated host program starts that simulator in this
// process; any other path starts a real process. Every launch is logged, failed ones too.
class Launcher {
 public:
  virtual ~Launcher() = default;
  struct Launch {
    std::string path;
    int32_t window_style;
  };
  // Returns a task number once the process exists; raises 53 when the path can't be started.
  virtual int32_t LaunchProgram(std::string_view path, int32_t window_style);

  void RegisterSimulated(const std::string& path, std::function<void()> start);
  std::vector<Launch> launches() const;

 private:
  mutable std::mutex mu_;
  std::map<std::string, std::function<void()>, std::less<>> simulated_;
  std::vector<Launch> launches_;
  int32_t next_task_ = 1000;
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_LAUNCHER_H_
