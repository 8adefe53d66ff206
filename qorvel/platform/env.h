#ifndef QORVEL_PLATFORM_ENV_H_
#define QORVEL_PLATFORM_ENV_H_

#include "qorvel/platform/clipboard.h"
#include "qorvel/platform/launcher.h"
#include "qorvel/platform/memory_registry.h"
#include "qorvel/platform/messages.h"
#include "qorvel/platform/numbers.h"
#include "qorvel/platform/registry.h"
#include "qorvel/platform/running_objects.h"
#include "qorvel/platform/thread_states.h"

namespace qorvel {

// The platform services the library reaches, and the state it keeps per thread. Each platform
// has its own Default(), in its own file; the portable environment below runs everywhere.
class Env {
 public:
  virtual ~Env() = default;
  virtual Registry& registry() = 0;
  virtual Messages& messages() = 0;
  virtual Launcher& launcher() = 0;
  virtual RunningObjects& running_objects() = 0;
  virtual Clipboard& clipboard() = 0;
  virtual ThreadStates& thread_states() = 0;
  // The symbols of the user's regional settings now in force. Asked for once per number read or
  // written, so an environment keeps them until the settings change.
  virtual NumberSymbols number_symbols() = 0;

  // The platform's environment for the whole process, made on first use.
  static Env& Default();
  // The installed environment, or Default().
  static Env& Current();
  // Installs `env` (nullptr: back to the default) and returns what was installed before.
  static Env* Install(Env* env);
};

// Passes every call on to another environment, so a wrapper overrides only what it changes.
class EnvWrapper : public Env {
 public:
  explicit EnvWrapper(Env* target) : target_(target) {}
  Env* target() const { return target_; }

  Registry& registry() override { return target_->registry(); }
  Messages& messages() override { return target_->messages(); }
  Launcher& launcher() override { return target_->launcher(); }
  RunningObjects& running_objects() override { return target_->running_objects(); }
  Clipboard& clipboard() override { return target_->clipboard(); }
  ThreadStates& thread_states() override { return target_->thread_states(); }
  NumberSymbols number_symbols() override { return target_->number_symbols(); }

 private:
  Env* const target_;
};

// The portable platform: every service in memory, programs started in this process or as real
// processes.
class PortableEnv : public Env {
 public:
  PortableEnv();  // seeds the regional settings from the process locale
  ~PortableEnv() override;

  MemoryRegistry& registry() override { return registry_; }
  MessageLog& messages() override { return messages_; }
  // Where in-process programs (the simulated hosts) are installed for it to start.
  PortableLauncher& launcher() override { return launcher_; }
  MemoryRunningObjects& running_objects() override { return running_objects_; }
  MemoryClipboard& clipboard() override { return clipboard_; }
  ThreadStates& thread_states() override { return thread_states_; }
  NumberSymbols number_symbols() override;

 private:
  MemoryRegistry registry_;
  MessageLog messages_;
  PortableLauncher launcher_;
  MemoryRunningObjects running_objects_;
  MemoryClipboard clipboard_;
  ThreadStates thread_states_;  // last, so the links let go of their hosts first
};

// The portable environment `env` is or wraps, for what only it has (the in-memory hive, the
// in-process programs); nullptr when `env` is another platform's.
PortableEnv* PortableEnvOf(Env& env);

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_ENV_H_
