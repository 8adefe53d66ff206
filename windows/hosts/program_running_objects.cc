#include "windows/hosts/program_running_objects.h"

#include <windows.h>

#include <objbase.h>

#include <vector>

#include "qorvel/platform/com_windows.h"
#include "qorvel/platform/text.h"

namespace qorvel::win {

bool ProgramRunningObjects::Published(std::string_view class_name) {
  CLSID clsid;
  return SUCCEEDED(CLSIDFromProgID(Widen(class_name).c_str(), &clsid));
}

void ProgramRunningObjects::Register(const std::string& class_name, AutomationObject object,
                                     Clock::time_point visible_from) {
  if (!Published(class_name)) return own_.Register(class_name, std::move(object), visible_from);
  const std::string key = LowerCase(class_name);
  pending_.erase(key);
  if (object && visible_from > Clock::now()) {
    Revoke(class_name);  // the program that held the name before has ended
    pending_[key] = {std::move(object), visible_from};
    return;
  }
  system_.Register(class_name, std::move(object));
  registered_.insert(key);
}

void ProgramRunningObjects::Revoke(const std::string& class_name) {
  if (!Published(class_name)) return own_.Revoke(class_name);
  const std::string key = LowerCase(class_name);
  pending_.erase(key);
  if (registered_.erase(key)) system_.Revoke(class_name);
}

AutomationObject ProgramRunningObjects::BindRunning(std::string_view class_name) const {
  return Published(class_name) ? system_.BindRunning(class_name) : own_.BindRunning(class_name);
}

void ProgramRunningObjects::RegisterClassServer(const std::string& class_name, Factory factory) {
  system_.RegisterClassServer(class_name, std::move(factory));
  served_.insert(class_name);
}

void ProgramRunningObjects::RevokeClassServer(const std::string& class_name) {
  system_.RevokeClassServer(class_name);
  served_.erase(class_name);
}

AutomationObject ProgramRunningObjects::CreateNew(std::string_view class_name) const {
  return system_.CreateNew(class_name);
}

void ProgramRunningObjects::RegisterDue() {
  std::vector<std::pair<std::string, AutomationObject>> due;
  for (auto it = pending_.begin(); it != pending_.end();) {
    if (it->second.visible_from > Clock::now()) {
      ++it;
      continue;
    }
    due.emplace_back(it->first, std::move(it->second.object));
    it = pending_.erase(it);
  }
  for (auto& [key, object] : due) {
    system_.Register(key, std::move(object));
    registered_.insert(key);
  }
}

void ProgramRunningObjects::RevokeAll() {
  pending_.clear();
  for (const std::string& key : std::set<std::string>(registered_)) Revoke(key);
  for (const std::string& name : std::set<std::string>(served_)) RevokeClassServer(name);
}

}  // namespace qorvel::win
