#ifndef QORVEL_SERVER_CLASSES_H_
#define QORVEL_SERVER_CLASSES_H_

#include <span>
#include <string_view>

#include "qorvel/frame/property_bag.h"
#include "qorvel/platform/variant.h"

namespace qorvel {

class Container;
struct UnstartedControl;

// What makes a new instance of a published class: a control comes sited in the run-time
// container, a plain class bare.
using ClassFactory = AutomationObject (*)();

// What makes a control that nothing has started, for a container that runs its life cycle
// itself (the Windows face's OLE container support) and closes it at the end.
using UnstartedFactory = UnstartedControl (*)();

// The factory of a class of the library by name (any case); nullptr for a class that isn't
// built yet or isn't the library's.
ClassFactory FactoryOf(std::string_view class_name);
// The same for a control not yet started; nullptr for a plain class or an unknown name.
UnstartedFactory UnstartedFactoryOf(std::string_view class_name);

// A new control of the library's class `class_name` (any case) sited in `form`, from `saved`
// when it isn't null. 429 for a class that isn't built; 5 for a class that is no control.
AutomationObject SiteControl(std::string_view class_name, Container& form,
                             const PropertyBag* saved);

// The properties a control of `class_name` reads back from its saved state, with the same
// errors as SiteControl.
std::span<const SavedProperty> SavedPropertiesOf(std::string_view class_name);

}  // namespace qorvel

#endif  // QORVEL_SERVER_CLASSES_H_
