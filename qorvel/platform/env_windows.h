#ifndef QORVEL_PLATFORM_ENV_WINDOWS_H_
#define QORVEL_PLATFORM_ENV_WINDOWS_H_

#include <windows.h>

#include <mutex>

#include "qorvel/platform/clipboard_windows.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/launcher_windows.h"
#include "qorvel/platform/messages_windows.h"
#include "qorvel/platform/registry_windows.h"
#include "qorvel/platform/running_objects_windows.h"

namespace qorvel::win {

// The Windows platform: the system's registry, message boxes, processes, running-object table,
// clipboard and regional settings. Only the state per thread is the library's own.
class WindowsEnv final : public Env {
 public:
  WindowsEnv();
  WindowsEnv(const WindowsEnv&) = delete;
  WindowsEnv& operator=(const WindowsEnv&) = delete;
  ~WindowsEnv() override;

  WindowsRegistry& registry() override { return registry_; }
  WindowsMessages& messages() override { return messages_; }
  WindowsLauncher& launcher() override { return launcher_; }
  WindowsRunningObjects& running_objects() override { return running_objects_; }
  WindowsClipboard& clipboard() override { return clipboard_; }
  ThreadStates& thread_states() override { return thread_states_; }
  // The user's decimal, grouping and currency symbols as the regional settings give them now:
  // the user's own, written under HKEY_CURRENT_USER\Control Panel\International, else the
  // user's locale's. Kept until that key changes.
  NumberSymbols number_symbols() override;

 private:
  NumberSymbols ReadSymbols();

  std::mutex symbols_mu_;
  HKEY international_ = nullptr;  // watched for changes; nullptr: read at every number
  HANDLE changed_ = nullptr;      // set by the system when the key changes
  bool symbols_current_ = false;
  NumberSymbols symbols_;
  WindowsRegistry registry_;
  WindowsMessages messages_;
  WindowsLauncher launcher_;
  WindowsRunningObjects running_objects_;
  WindowsClipboard clipboard_;
  ThreadStates thread_states_;  // last, so the links let go of their hosts first
};

}  // namespace qorvel::win

#endif  // QORVEL_PLATFORM_ENV_WINDOWS_H_
