#include "qorvel/server/classes.h"

#include <gtest/gtest.h>

#include <memory>

#include "qorvel/frame/dispatch_face.h"
#include "qorvel/frame/type_library.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"

namespace qorvel {
namespace {

// A class's bindings are checked against its rows when its first object is made, so one object
// of each published class shows that none of them binds a member that doesn't fit.
TEST(ClassesTest, EveryPublishedClassIsMadeWithItsWholeTable) {
  ScopedEnv env;
  int made = 0;
  for (const ClassInfo& c : TheTypeLibrary().classes) {
    SCOPED_TRACE(c.name);
    const ClassFactory make = FactoryOf(c.name);
    ASSERT_NE(make, nullptr);
    AutomationObject object;
    try {
      object = make();
    } catch (const Error& e) {
      ADD_FAILURE() << "error " << e.number() << ": " << e.description();
      continue;
    }
    const auto bound = std::dynamic_pointer_cast<ClassObject>(object);
    ASSERT_NE(bound, nullptr);
    for (const MemberInfo& m : bound->interface_info().members) {
      EXPECT_TRUE(bound->IsBound(m)) << m.name;
    }
    ++made;
  }
  EXPECT_EQ(made, 7);
}

}  // namespace
}  // namespace qorvel
