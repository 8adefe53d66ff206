#include "qorvel/server/classes.h"

#include "qorvel/frame/control.h"
#include "qorvel/machining/tarvik3_face.h"
#include "qorvel/modelling/ulmora27_face.h"
#include "qorvel/platform/text.h"
#include "qorvel/session/zebrin_face.h"
#include "qorvel/widgets/value_box_face.h"

namespace qorvel {
namespace {

struct LibraryClass {
  const char* name;
  ClassFactory make;
};

// The classes built so far; the type library publishes all seven.
constexpr LibraryClass kClasses[] = {
    {"Zebrin", &NewControl<Zebrin>},
    {"Tarvik3", &NewControl<Tarvik3>},
    {"Ulmora27", &NewControl<Ulmora27>},
    {"ValueBox", &NewControl<ValueBox>},
};

}  // namespace

ClassFactory FactoryOf(std::string_view class_name) {
  for (const LibraryClass& c : kClasses) {
    if (EqualsNoCase(c.name, class_name)) return c.make;
  }
  return nullptr;
}

}  // namespace qorvel
