#ifndef SHELL_LUA_VALUES_H_
#define SHELL_LUA_VALUES_H_

#include <lua.hpp>

#include "qorvel/platform/safe_array.h"
#include "qorvel/platform/variant.h"

namespace qvsh {

// Lua values and automation values, both ways. nil is Empty; booleans are VariantBool -1 and
// 0, and a Bool(n) value carries any other 16-bit truth value; integers are Long (Double
// beyond 32 bits); objects and arrays are userdata. Anything else raises error 13.
qorvel::Variant ToVariant(lua_State* L, int index);
// Empty, Null and an empty object reference push nil; a truth value other than -1 and 0
// pushes its number.
void PushVariant(lua_State* L, const qorvel::Variant& value);

// The userdata that stand for automation objects (lua_objects.cc) and arrays (lua_arrays.cc);
// the Test functions give nullptr for any other value. Once its finalizer has run, a userdata
// holds nothing (a finalizer later in the same cycle may still reach it): the Test functions
// raise 91 for it.
void PushObject(lua_State* L, qorvel::AutomationObject object);
const qorvel::AutomationObject* TestObject(lua_State* L, int index);
void PushArray(lua_State* L, qorvel::SafeArray array);
qorvel::SafeArray* TestArray(lua_State* L, int index);

}  // namespace qvsh

#endif  // SHELL_LUA_VALUES_H_
