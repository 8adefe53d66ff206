#include "qorvel/platform/running_objects.h"

#include <cctype>

#include "qorvel/platform/error.h"

namespace qorvel {

namespace {
// Class names are registry names, which match without regard to case.
std::string Folded(std::string_view name) {
  std::string folded(name);
  for (char& c : folded) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return folded;
}
}  // namespace

void RunningObjects::Register(const std::string& class_name, AutomationObject object,
                              Clock::time_point visible_from) {
  std::lock_guard lock(mu_);
  running_[Folded(class_name)] = Entry{std::move(object), visible_from};
}

void RunningObjects::Revoke(const std::string& class_name) {
  std::lock_guard lock(mu_);
  running_.erase(Folded(class_name));
}

AutomationObject RunningObjects::BindRunning(std::string_view class_name) const {
  std::lock_guard lock(mu_);
  auto it = running_.find(Folded(class_name));
  if (it == running_.end() || !it->second.object || Clock::now() < it->second.visible_from) {
    Raise(err::kCantCreate);
  }
  return it->second.object;
}

void RunningObjects::RegisterClassServer(const std::string& class_name, Factory factory) {
  std::lock_guard lock(mu_);
  servers_[Folded(class_name)] = std::move(factory);
}

void RunningObjects::RevokeClassServer(const std::string& class_name) {
  std::lock_guard lock(mu_);
  servers_.erase(Folded(class_name));
}

// The server runs outside the lock: starting one may register its object in this table.
AutomationObject RunningObjects::CreateNew(std::string_view class_name) const {
  Factory factory;
  {
    std::lock_guard lock(mu_);
    auto it = servers_.find(Folded(class_name));
    if (it == servers_.end() || !it->second) Raise(err::kCantCreate);
    factory = it->second;
  }
  AutomationObject object = factory();
  if (!object) Raise(err::kCantCreate);
  return object;
}

}  // namespace qorvel
