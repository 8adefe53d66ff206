#ifndef QORVEL_PLATFORM_ENV_H_
#define QORVEL_PLATFORM_ENV_H_

#include "qorvel/platform/launcher.h"
#include "qorvel/platform/messages.h"
#include "qorvel/platform/registry.h"
#include "qorvel/platform/running_objects.h"

namespace qorvel {

// The platform services the library reaches: registry, message boxes, launcher and the
// running-object table. The portable implementation keeps them all in memory; tests install a
// fresh one per case.
class Env {
 public:
  virtual ~Env() = default;
  virtual Registry& registry() = 0;
  virtual Messages& messages() = 0;
  virtual Launcher& launcher() = 0;
  virtual RunningObjects& running_objects() = 0;

  // The installed environment, or the process-wide portable one.
  static Env& Current();
  // Installs `env` (nullptr: back to the default) and returns what was installed before.
  static Env* Install(Env* env);
};

class PortableEnv : public Env {
 public:
  PortableEnv();  // seeds the regional settings from the process locale
  Registry& registry() override { return registry_; }
  Messages& messages() override { return messages_; }
  Launcher& launcher() override { return launcher_; }
  RunningObjects& running_objects() override { return running_objects_; }

 private:
  Registry registry_;
  Messages messages_;
  Launcher launcher_;
  RunningObjects running_objects_;
};

// A fresh portable environment for the life of a scope.
class ScopedEnv {
 public:
  ScopedEnv() : previous_(Env::Install(&env_)) {}
  ~ScopedEnv() { Env::Install(previous_); }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;
  PortableEnv& env() { return env_; }

 private:
  PortableEnv env_;
  Env* previous_;
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_ENV_H_
