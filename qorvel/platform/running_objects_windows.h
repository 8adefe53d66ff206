#ifndef QORVEL_PLATFORM_RUNNING_OBJECTS_WINDOWS_H_
#define QORVEL_PLATFORM_RUNNING_OBJECTS_WINDOWS_H_

#include <windows.h>

#include <map>
#include <mutex>
#include <optional>

#include "qorvel/platform/running_objects.h"

namespace qorvel::win {

// The system's running-object table and class servers. A class name is a ProgID (or a CLSID in
// braces) that the registry knows. COM must be initialised on the calling thread, and an object
// or server registered here is revoked from the same thread.
class WindowsRunningObjects final : public RunningObjects {
 public:
  WindowsRunningObjects() = default;
  WindowsRunningObjects(const WindowsRunningObjects&) = delete;
  WindowsRunningObjects& operator=(const WindowsRunningObjects&) = delete;
  ~WindowsRunningObjects() override;  // revokes whatever is still registered

  // Raises 5 naming the class when the system refuses the registration (a name the registry
  // doesn't know).
  void Register(const std::string& class_name, AutomationObject object,
                Clock::time_point visible_from = {}) override;
  void Revoke(const std::string& class_name) override;
  AutomationObject BindRunning(std::string_view class_name) const override;

  // Serves the class to other processes (CLSCTX_LOCAL_SERVER, many objects per server), each
  // object made by `factory`. Raises 5 as Register does.
  void RegisterClassServer(const std::string& class_name, Factory factory) override;
  void RevokeClassServer(const std::string& class_name) override;
  AutomationObject CreateNew(std::string_view class_name) const override;

 private:
  std::optional<DWORD> TakeCookie(std::map<std::string, DWORD>& cookies,
                                  const std::string& class_name);

  std::mutex mu_;
  std::map<std::string, DWORD> running_;  // lower-cased name -> RegisterActiveObject's cookie
  std::map<std::string, DWORD> servers_;  // lower-cased name -> CoRegisterClassObject's cookie
};

}  // namespace qorvel::win

#endif  // QORVEL_PLATFORM_RUNNING_OBJECTS_WINDOWS_H_
