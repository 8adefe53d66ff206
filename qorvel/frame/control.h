#ifndef QORVEL_FRAME_CONTROL_H_
#define QORVEL_FRAME_CONTROL_H_

#include "qorvel/frame/control_shell.h"
#include "qorvel/frame/dispatch_face.h"
#include "qorvel/frame/pictures.h"

namespace qorvel {

// A published control: the object of class C behind its face and in its shell. The container's
// events go to the handlers C has; a C without Resize keeps the size its traits give. A C that
// needs its shell or its face (to read UserMode, to raise events) gets both through
// Sited(ControlShell&, ClassObject&) before its Initialize.
template <class C>
class Control final : public ClassObject, public ControlShell {
 public:
  explicit Control(const ShellTraits& traits) : ClassObject(BindingsOf<C>()), ControlShell(traits) {
    if constexpr (requires(ControlShell & s, ClassObject & f) { object_.Sited(s, f); }) {
      object_.Sited(*this, *this);
    }
  }
  C& object() { return object_; }

  void Initialize() override {
    if constexpr (requires { object_.Initialize(); }) object_.Initialize();
  }
  void InitProperties() override {
    if constexpr (requires { object_.InitProperties(); }) object_.InitProperties();
  }
  void ReadProperties(const PropertyBag& bag) override {
    if constexpr (requires { object_.ReadProperties(bag); }) object_.ReadProperties(bag);
  }
  void WriteProperties(PropertyBag& bag) override {
    if constexpr (requires { object_.WriteProperties(bag); }) object_.WriteProperties(bag);
  }
  void Resize() override {
    if constexpr (requires { object_.Resize(); }) {
      object_.Resize();
    } else {
      ControlShell::Resize();
    }
  }
  void Terminate() override {
    if constexpr (requires { object_.Terminate(); }) object_.Terminate();
  }

 private:
  Variant Run(size_t slot, std::span<Variant> args) override {
    return BindingsOf<C>().Run(slot, object_, args);
  }
  C object_;
};

// The properties C reads back from its saved state; none for a control that saves nothing.
template <class C>
constexpr std::span<const SavedProperty> SavedPropertiesOf() {
  if constexpr (requires { C::kSavedProperties; }) {
    return C::kSavedProperties;
  } else {
    return {};
  }
}

// A new control of class C sited in `form`, in the shell C declares (C::kShell) with its
// class's picture: Initialize, then InitProperties or ReadProperties of `saved`, then Resize
// have run, and Terminate runs when the last reference goes.
template <class C>
AutomationObject SiteControl(Container& form, const PropertyBag* saved) {
  const ShellTraits traits{C::kShell, ControlPicture(BindingsOf<C>().class_info().name)};
  return form.Site(std::make_unique<Control<C>>(traits), saved);
}

// The same in the run-time container, where the controls that nobody placed elsewhere sit.
template <class C>
AutomationObject NewControl() {
  return SiteControl<C>(Container::RunTime(), nullptr);
}

}  // namespace qorvel

#endif  // QORVEL_FRAME_CONTROL_H_
