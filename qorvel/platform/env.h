#ifndef QORVEL_PLATFORM_ENV_H_
#define QORVEL_PLATFORM_ENV_H_

#include "qorvel/platform/clipboard.h"
#include "qorvel/platform/launcher.h"
#include "qorvel/platform/memory_registry.h"
#include "qorvel/platform/messages.h"
#include "qorvel/platform/registry.h"
#include "qorvel/platform/running_objects.h"
#include "qorvel/platform/thread_states.h"

namespace qorvel {

// The platform services the library reaches, and the state it keeps per thread. The portable
// implementation holds everything in memory; a Win32 one stands beside it.
class Env {
 public:
  virtual ~Env() = default;
  virtual Registry& registry() = 0;
  virtual Messages& messages() = 0;
  virtual Launcher& launcher() = 0;
  virtual RunningObjects& running_objects() = 0;
  virtual Clipboard& clipboard() = 0;
  virtual ThreadStates& thread_states() = 0;

  // The installed environment, or the process-wide portable one.
  static Env& Current();
  // Installs `env` (nullptr: back to the default) and returns what was installed before.
  static Env* Install(Env* env);
};

// The portable platform: every service in memory, programs started in this process or as real
// processes. Tests may put an observing wrapper in front of the registry or the launcher.
class PortableEnv : public Env {
 public:
  PortableEnv();  // seeds the regional settings from the process locale
  ~PortableEnv() override;

  Registry& registry() override { return *registry_; }
  MessageLog& messages() override { return messages_; }
  Launcher& launcher() override { return *launcher_; }
  MemoryRunningObjects& running_objects() override { return running_objects_; }
  MemoryClipboard& clipboard() override { return clipboard_; }
  ThreadStates& thread_states() override { return thread_states_; }

  // Where in-process programs (the simulated hosts) are installed for the launcher to start.
  PortableLauncher& programs() { return programs_; }

 protected:
  void ObserveRegistry(Registry* wrapper) { registry_ = wrapper; }
  void ObserveLauncher(Launcher* wrapper) { launcher_ = wrapper; }

 private:
  MemoryRegistry memory_registry_;
  MessageLog messages_;
  PortableLauncher programs_;
  MemoryRunningObjects running_objects_;
  MemoryClipboard clipboard_;
  Registry* registry_ = &memory_registry_;
  Launcher* launcher_ = &programs_;
  ThreadStates thread_states_;  // last, so the links let go of their hosts first
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_ENV_H_
