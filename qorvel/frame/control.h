#ifndef QORVEL_FRAME_CONTROL_H_
#define QORVEL_FRAME_CONTROL_H_

#include <type_traits>

#include "qorvel/frame/control_shell.h"
#include "qorvel/frame/dispatch_face.h"
#include "qorvel/frame/pictures.h"

namespace qorvel {

// The object of a control class, held apart so it is made before the shell that sends it its
// events and the face that runs its members.
template <class C>
struct ControlObject {
  C object_;
};

// A published control: the object of class C behind its face and in its shell. C derives from
// ControlEvents and overrides the container's events it handles; a C without Resize keeps the
// size its traits give. Sited hands C its shell and face before anything else.
template <class C>
class Control final : private ControlObject<C>, public ClassObject, public ControlShell {
  static_assert(std::is_base_of_v<ControlEvents, C>, "a control class handles ControlEvents");

 public:
  explicit Control(const ShellTraits& traits)
      : ClassObject(BindingsOf<C>()), ControlShell(traits, this->object_) {
    this->object_.Sited(*this, *this);
  }
  C& object() { return this->object_; }

 private:
  Variant Run(size_t slot, std::span<Variant> args) override {
    return BindingsOf<C>().Run(slot, this->object_, args);
  }
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
