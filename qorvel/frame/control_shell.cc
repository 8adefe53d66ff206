#include "qorvel/frame/control_shell.h"

#include <algorithm>
#include <utility>

namespace qorvel {
ControlShell::ControlShell(const ShellTraits& traits, ControlEvents& events)
    : events_(events), size_(traits.size) {
  if (size_ == ShellSize::kImage) {
    Image1 = Image{};
    Image1->Picture = traits.picture;
  } else {
    if (size_ == ShellSize::kTextBox) Text1.emplace();
    user_control.Picture = traits.picture;
  }
}

// Neither form looks at the size asked for, or at the other axis.
void ControlShell::KeepSize() {
  if (size_ == ShellSize::kHostControl) {
    user_control.Width = 500.0f;
    user_control.Height = 500.0f;
  } else if (size_ == ShellSize::kImage) {
    user_control.Width = Image1->Width;
    user_control.Height = Image1->Height;
  }
}

void ControlShell::Attach(std::shared_ptr<ControlSite> site) { site_ = std::move(site); }

void ControlShell::SetExtent(float width, float height) {
  // A handler that keeps changing the size would be sent Resize without end; the platform's
  // own recursion has a limit too.
  constexpr int kMostResizes = 16;
  user_control.Width = width;
  user_control.Height = height;
  for (int i = 0; i < kMostResizes; ++i) {
    const UserControl before = user_control;
    KeepSize();
    events_.Resize();
    if (user_control.Width == before.Width && user_control.Height == before.Height) return;
  }
}

PropertyBag ControlShell::Save() {
  PropertyBag bag;
  events_.WriteProperties(bag);
  return bag;
}

// Terminate can't reach a client that has already let the control go; its failure ends the
// handler and nothing more.
void ControlShell::Close() noexcept {
  if (std::exchange(closed_, true)) return;
  try {
    events_.Terminate();
  } catch (...) {
  }
}

bool ControlShell::UserMode() const { return site_ == nullptr || site_->UserMode(); }

void ControlShell::PropertyChanged(std::string_view name) {
  if (site_ != nullptr) site_->PropertyChanged(name);
}

Container& Container::RunTime() {
  static auto* run_time = new std::shared_ptr<Container>(std::make_shared<Container>(true));
  return **run_time;
}

void Container::Start(ControlShell& control, const PropertyBag* saved) {
  control.Attach(shared_from_this());
  control.Initialize();
  if (saved != nullptr) {
    control.Load(*saved);
  } else {
    control.InitNew();
  }
  control.SetExtent(kFirstExtent, kFirstExtent);
}

std::vector<std::string> Container::property_changes() const {
  std::lock_guard lock(mu_);
  return changes_;
}

void Container::ClearPropertyChanges() {
  std::lock_guard lock(mu_);
  changes_.clear();
}

void Container::PropertyChanged(std::string_view name) {
  std::lock_guard lock(mu_);
  if (std::find(changes_.begin(), changes_.end(), name) == changes_.end()) {
    changes_.emplace_back(name);
  }
}

}  // namespace qorvel
