#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <mutex>
#include <vector>

#include "qorvel/platform/process.h"

extern char** environ;

namespace qorvel {
namespace {

// Programs started here run on their own; their exits are collected at later starts so they
// don't linger as zombies.
std::mutex children_mu;
std::vector<pid_t> children;

void ReapFinishedChildren() {
  std::lock_guard lock(children_mu);
  std::erase_if(children, [](pid_t pid) { return waitpid(pid, nullptr, WNOHANG) != 0; });
}

bool IsExecutableFile(const std::string& path) {
  struct stat info;
  return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(path.c_str(), X_OK) == 0;
}

}  // namespace

bool StartProcess(const std::string& path) {
  ReapFinishedChildren();
  if (!IsExecutableFile(path)) return false;
  std::string program = path;
  char* argv[] = {program.data(), nullptr};
  pid_t pid;
  if (posix_spawn(&pid, program.c_str(), nullptr, nullptr, argv, environ) != 0) return false;
  std::lock_guard lock(children_mu);
  children.push_back(pid);
  return true;
}

}  // namespace qorvel
