#include "windows/server/control_life.h"

#include "windows/server/control_log.h"

namespace qorvel::win {

void ControlLife::Log(const char* event) const { LogControlEvent(class_name_, event); }

// A failed Initialize leaves the control uninitialised, so it gets no Terminate.
void ControlLife::Initialize() {
  if (initialized_ || closed_) return;
  Log("Initialize");
  shell_->Initialize();
  initialized_ = true;
}

bool ControlLife::InitNew() {
  if (loaded_ || closed_) return false;
  Initialize();
  Log("InitProperties");
  shell_->InitNew();
  loaded_ = true;
  if (auto extent = std::exchange(pending_extent_, std::nullopt)) {
    SetExtent(extent->first, extent->second);
  }
  return true;
}

// A failed Load leaves the control unloaded, so the container may still start it afresh with
// InitNew, whose InitProperties sets every saved field again.
bool ControlLife::Load(const PropertyBag& bag) {
  if (loaded_ || closed_) return false;
  Initialize();
  Log("ReadProperties");
  shell_->Load(bag);
  loaded_ = true;
  if (auto extent = std::exchange(pending_extent_, std::nullopt)) {
    SetExtent(extent->first, extent->second);
  }
  return true;
}

void ControlLife::SetExtent(float width, float height) {
  if (closed_) return;
  if (!loaded_) {
    pending_extent_.emplace(width, height);
    return;
  }
  Log("Resize");
  shell_->SetExtent(width, height);
}

PropertyBag ControlLife::Save() {
  Log("WriteProperties");
  return shell_->Save();
}

void ControlLife::Close() noexcept {
  if (std::exchange(closed_, true) || !initialized_) return;
  Log("Terminate");
  shell_->Close();
}

void ControlLife::StartForMember() {
  if (loaded_ || closed_) return;
  if (shell_->site() == nullptr) shell_->Attach(Container::RunTime().shared_from_this());
  const auto extent =
      pending_extent_.value_or(std::pair{Container::kFirstExtent, Container::kFirstExtent});
  pending_extent_.reset();
  InitNew();
  SetExtent(extent.first, extent.second);
}

}  // namespace qorvel::win
