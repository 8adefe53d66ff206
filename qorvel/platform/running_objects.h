#ifndef QORVEL_PLATFORM_RUNNING_OBJECTS_H_
#define QORVEL_PLATFORM_RUNNING_OBJECTS_H_

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "qorvel/platform/variant.h"

namespace qorvel {

// The running-object table and the class servers, by automation class name. Shared by every
// thread of the process, so it locks.
class RunningObjects {
 public:
  using Clock = std::chrono::steady_clock;
  using Factory = std::function<AutomationObject()>;

  // An object becomes visible to BindRunning from `visible_from` on (a program that is still
  // starting has not registered yet).
  void Register(const std::string& class_name, AutomationObject object,
                Clock::time_point visible_from = {});
  void Revoke(const std::string& class_name);
  // The running object registered under the name; 429 when there is none (yet).
  AutomationObject BindRunning(std::string_view class_name) const;

  void RegisterClassServer(const std::string& class_name, Factory factory);
  void RevokeClassServer(const std::string& class_name);
  // A new object from the class's server; 429 when the class has none.
  AutomationObject CreateNew(std::string_view class_name) const;

 private:
  struct Entry {
    AutomationObject object;
    Clock::time_point visible_from;
  };
  mutable std::mutex mu_;
  std::map<std::string, Entry, std::less<>> running_;
  std::map<std::string, Factory, std::less<>> servers_;
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_RUNNING_OBJECTS_H_
