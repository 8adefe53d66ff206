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

// For tests: a registry that counts the handles its readers open and close, and passes every
// call on.
class CountingRegistry final : public Registry {
 public:
  explicit CountingRegistry(Registry& target) : target_(target) {}

  int32_t RegOpenKeyA(RegKey root, std::string_view sub_key, RegKey* result) override {
    const int32_t status = target_.RegOpenKeyA(root, sub_key, result);
    if (status == reg_status::kSuccess) ++opens_;
    return status;
  }
  int32_t RegQueryValueExA(RegKey key, std::string_view value_name, uint32_t* reserved,
                           uint32_t* type, uint8_t* data, uint32_t* size) override {
    return target_.RegQueryValueExA(key, value_name, reserved, type, data, size);
  }
  int32_t RegCloseKey(RegKey key) override {
    ++close_calls_;
    const int32_t status = target_.RegCloseKey(key);
    if (status == reg_status::kSuccess && key < root_key::kClassesRoot) ++closes_;
    return status;
  }
  void SetValue(RegKey root, std::string_view key, std::string_view name, RegValue value) override {
    target_.SetValue(root, key, name, std::move(value));
  }
  void CreateKey(RegKey root, std::string_view key) override { target_.CreateKey(root, key); }
  void DeleteKey(RegKey root, std::string_view key) override { target_.DeleteKey(root, key); }
  void DeleteValue(RegKey root, std::string_view key, std::string_view name) override {
    target_.DeleteValue(root, key, name);
  }
  void Apply(const std::vector<RegOp>& ops) override { target_.Apply(ops); }
  std::optional<RegValue> GetValue(RegKey root, std::string_view key,
                                   std::string_view name) const override {
    return target_.GetValue(root, key, name);
  }
  bool KeyExists(RegKey root, std::string_view key) const override {
    return target_.KeyExists(root, key);
  }
  std::vector<std::string> KeysBelow(RegKey root, std::string_view key) const override {
    return target_.KeysBelow(root, key);
  }
  uint64_t generation() const override { return target_.generation(); }

  // Handles opened and not closed yet; every RegCloseKey call, whatever it closed.
  int open_handles() const { return opens_ - closes_; }
  int close_calls() const { return close_calls_; }

 private:
  Registry& target_;
  int opens_ = 0;
  int closes_ = 0;
  int close_calls_ = 0;
};

// The portable environment with its registry and launcher observed.
class TestEnv final : public PortableEnv {
 public:
  TestEnv() {
    ObserveRegistry(&registry_);
    ObserveLauncher(&launcher_);
  }
  CountingRegistry& counted_registry() { return registry_; }
  const std::vector<RecordingLauncher::Launch>& launches() const { return launcher_.launches(); }

 private:
  CountingRegistry registry_{PortableEnv::registry()};
  RecordingLauncher launcher_{PortableEnv::launcher()};
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
