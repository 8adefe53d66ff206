#ifndef QORVEL_PLATFORM_ENV_TESTING_H_
#define QORVEL_PLATFORM_ENV_TESTING_H_

#include <string>
#include <vector>

#include "qorvel/platform/env.h"

namespace qorvel {

// For tests: a launcher that logs every launch, failed ones too, and passes it on.
class RecordingLauncher final : public Launcher {
 public:
  struct Launch {
    std::string path;
    int32_t window_style;
  };
  explicit RecordingLauncher(Launcher& target) : target_(target) {}
  int32_t LaunchProgram(std::string_view path, int32_t window_style) override {
    launches_.push_back({std::string(path), window_style});
    return target_.LaunchProgram(path, window_style);
  }
  const std::vector<Launch>& launches() const { return launches_; }

 private:
  Launcher& target_;
  std::vector<Launch> launches_;
};

// For tests: a registry that counts the handles its readers open and close.
class CountingRegistry final : public RegistryWrapper {
 public:
  using RegistryWrapper::RegistryWrapper;

  int32_t RegOpenKeyA(RegKey root, std::string_view sub_key, RegKey* result) override {
    const int32_t status = RegistryWrapper::RegOpenKeyA(root, sub_key, result);
    if (status == reg_status::kSuccess) ++opens_;
    return status;
  }
  int32_t RegCloseKey(RegKey key) override {
    ++close_calls_;
    const int32_t status = RegistryWrapper::RegCloseKey(key);
    if (status == reg_status::kSuccess && key < root_key::kClassesRoot) ++closes_;
    return status;
  }

  // Handles opened and not closed yet; every RegCloseKey call, whatever it closed.
  int open_handles() const { return opens_ - closes_; }
  int close_calls() const { return close_calls_; }

 private:
  int opens_ = 0;
  int closes_ = 0;
  int close_calls_ = 0;
};

// A fresh portable environment with its registry and launcher observed.
class TestEnv final : public EnvWrapper {
 public:
  TestEnv() : EnvWrapper(&portable_) {}

  CountingRegistry& registry() override { return registry_; }
  RecordingLauncher& launcher() override { return launcher_; }
  const std::vector<RecordingLauncher::Launch>& launches() const { return launcher_.launches(); }

  // What tests read back, as the portable environment holds it.
  MessageLog& messages() override { return portable_.messages(); }
  MemoryRunningObjects& running_objects() override { return portable_.running_objects(); }
  MemoryClipboard& clipboard() override { return portable_.clipboard(); }
  // The environment behind the observers; its registry() is the hive itself.
  PortableEnv& portable() { return portable_; }

 private:
  PortableEnv portable_;
  CountingRegistry registry_{portable_.registry()};
  RecordingLauncher launcher_{portable_.launcher()};
};

// A fresh test environment installed for the life of a scope.
class ScopedEnv {
 public:
  ScopedEnv() : previous_(Env::Install(&env_)) {}
  ~ScopedEnv() { Env::Install(previous_); }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;
  TestEnv& env() { return env_; }

 private:
  TestEnv env_;
  Env* previous_;
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_ENV_TESTING_H_
