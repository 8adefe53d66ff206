#include "qorvel/platform/launcher.h"

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "qorvel/platform/error.h"

extern char** environ;

namespace qorvel {

namespace {

// Programs started here run on their own; their exits are collected at later launches so they
// don't linger as zombies.
std::mutex children_mu;
std::vector<pid_t> children;

void ReapFinishedChildren() {
  std::lock_guard lock(children_mu);
  std::erase_if(children, [](pid_t pid) { return waitpid(pid, nullptr, WNOHANG) != 0; });
}

void RememberChild(pid_t pid) {
  std::lock_guard lock(children_mu);
  children.push_back(pid);
}

bool IsExecutableFile(const std::string& path) {
  struct stat info;
  return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(path.c_str(), X_OK) == 0;
}

// Starts the program with no arguments; false when it could not be started.
bool Spawn(const std::string& path, pid_t* pid) {
  if (!IsExecutableFile(path)) return false;
  std::string program = path;
  char* argv[] = {program.data(), nullptr};
  return posix_spawn(pid, program.c_str(), nullptr, nullptr, argv, environ) == 0;
}

}  // namespace

int32_t Launcher::LaunchProgram(std::string_view path, int32_t window_style) {
  std::function<void()> start;
  int32_t task;
  {
    std::lock_guard lock(mu_);
    launches_.push_back(Launch{std::string(path), window_style});
    auto it = simulated_.find(path);
    if (it != simulated_.end()) start = it->second;
    task = next_task_++;
  }
  // A simulated program starts outside the lock: it registers itself with the platform.
  if (start) {
    start();
    return task;
  }
  ReapFinishedChildren();
  pid_t pid;
  if (!Spawn(std::string(path), &pid)) Raise(err::kFileNotFound);
  RememberChild(pid);
  return task;
}

void Launcher::RegisterSimulated(const std::string& path, std::function<void()> start) {
  std::lock_guard lock(mu_);
  simulated_[path] = std::move(start);
}

std::vector<Launcher::Launch> Launcher::launches() const {
  std::lock_guard lock(mu_);
  return launches_;
}

}  // namespace qorvel
