#include "qorvel/platform/running_objects.h"

#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"

namespace qorvel {

// Class names are registry names, which match without regard to case: they are kept folded.

void MemoryRunningObjects::Register(const std::string& class_name, AutomationObject object,
                                    Clock::time_point visible_from) {
  std::lock_guard lock(mu_);
  running_[LowerCase(class_name)] = Entry{std::move(object), visible_from};
}

void MemoryRunningObjects::Revoke(const std::string& class_name) {
  std::lock_guard lock(mu_);
  running_.erase(LowerCase(class_name));
}

AutomationObject MemoryRunningObjects::BindRunning(std::string_view class_name) const {
  std::lock_guard lock(mu_);
  auto it = running_.find(LowerCase(class_name));
  if (it == running_.end() || !it->second.object || Clock::now() < it->second.visible_from) {
    Raise(err::kCantCreate);
  }
  return it->second.object;
}

void MemoryRunningObjects::RegisterClassServer(const std::string& class_name, Factory factory) {
  std::lock_guard lock(mu_);
  servers_[LowerCase(class_name)] = std::move(factory);
}

void MemoryRunningObjects::RevokeClassServer(const std::string& class_name) {
  std::lock_guard lock(mu_);
  servers_.erase(LowerCase(class_name));
}

// The server runs outside the lock: starting one may register its object in this table.
AutomationObject MemoryRunningObjects::CreateNew(std::string_view class_name) const {
  Factory factory;
  {
    std::lock_guard lock(mu_);
    auto it = servers_.find(LowerCase(class_name));
    if (it == servers_.end() || !it->second) Raise(err::kCantCreate);
    factory = it->second;
  }
  AutomationObject object = factory();
  if (!object) Raise(err::kCantCreate);
  return object;
}

}  // namespace qorvel
