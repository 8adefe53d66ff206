#include "qorvel/server/classes.h"

#include "qorvel/frame/control.h"
#include "qorvel/machining/tarvik3_face.h"
#include "qorvel/modelling/ulmora27_face.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"
#include "qorvel/session/zebrin_face.h"
#include "qorvel/surface/ulmora_nearest_points_face.h"
#include "qorvel/surface/ulmora_surface_info_face.h"
#include "qorvel/widgets/point_class_face.h"
#include "qorvel/widgets/value_box_face.h"

namespace qorvel {
namespace {

struct LibraryClass {
  const char* name;
  ClassFactory make;
  AutomationObject (*site)(Container&, const PropertyBag*);  // nullptr for a plain class
  UnstartedFactory unstarted;                                // nullptr for a plain class
  std::span<const SavedProperty> saved;
};

template <class C>
constexpr LibraryClass ControlClass(const char* name) {
  return {name, &NewControl<C>, &SiteControl<C>, &MakeControl<C>, SavedPropertiesOf<C>()};
}

// The seven classes the type library publishes.
constexpr LibraryClass kClasses[] = {
    ControlClass<Zebrin>("Zebrin"),
    ControlClass<Tarvik3>("Tarvik3"),
    ControlClass<Ulmora27>("Ulmora27"),
    ControlClass<UlmoraSurfaceInfo>("UlmoraSurfaceInfo"),
    ControlClass<UlmoraNearestPoints>("UlmoraNearestPoints"),
    ControlClass<ValueBox>("ValueBox"),
    {"PointClass", &NewInstance<PointClass>, nullptr, nullptr, {}},
};

const LibraryClass* Find(std::string_view class_name) {
  for (const LibraryClass& c : kClasses) {
    if (EqualsNoCase(c.name, class_name)) return &c;
  }
  return nullptr;
}

const LibraryClass& FindControl(std::string_view class_name) {
  const LibraryClass* c = Find(class_name);
  if (c == nullptr) Raise(err::kCantCreate);
  if (c->site == nullptr) Raise(err::kInvalidCall, std::string(c->name) + " is no control");
  return *c;
}

}  // namespace

ClassFactory FactoryOf(std::string_view class_name) {
  const LibraryClass* c = Find(class_name);
  return c ? c->make : nullptr;
}

UnstartedFactory UnstartedFactoryOf(std::string_view class_name) {
  const LibraryClass* c = Find(class_name);
  return c ? c->unstarted : nullptr;
}

AutomationObject SiteControl(std::string_view class_name, Container& form,
                             const PropertyBag* saved) {
  return FindControl(class_name).site(form, saved);
}

std::span<const SavedProperty> SavedPropertiesOf(std::string_view class_name) {
  return FindControl(class_name).saved;
}

}  // namespace qorvel
