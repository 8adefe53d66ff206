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

// The running-object table and the class servers, by automation class name (matched without
// regard to case).
class RunningObjects {
 public:
  using Clock = std::chrono::steady_clock;
  using Factory = std::function<AutomationObject()>;
  virtual ~RunningObjects() = default;

  // An object becomes visible to BindRunning from `visible_from` on (a program that is still
  // starting has not registered yet).
  virtual void Register(const std::string& class_name, AutomationObject object,
                        Clock::time_point visible_from = {}) = 0;
  virtual void Revoke(const std::string& class_name) = 0;
  // The running object registered under the name; 429 when there is none (yet).
  virtual AutomationObject BindRunning(std::string_view class_name) const = 0;

  virtual void RegisterClassServer(const std::string& class_name, Factory factory) = 0;
  virtual void RevokeClassServer(const std::string& class_name) = 0;
  // A new object from the class's server; 429 when the class has none.
  virtual AutomationObject CreateNew(std::string_view class_name) const = 0;
};

// The portable table, in memory. Shared by every thread of the process, so it locks.
class MemoryRunningObjects final : public RunningObjects {
 public:
  void Register(const std::string& class_name, AutomationObject object,
                Clock::time_point visible_from = {}) override;
  void Revoke(const std::string& class_name) override;
  AutomationObject BindRunning(std::string_view class_name) const override;
  void RegisterClassServer(const std::string& class_name, Factory factory) override;
  void RevokeClassServer(const std::string& class_name) override;
  AutomationObject CreateNew(std::string_view class_name) const override;

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
