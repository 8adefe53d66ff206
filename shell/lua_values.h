#ifndef SHELL_LUA_VALUES_H_
#define SHELL_LUA_VALUES_H_

#include <lua.hpp>

#include "qorvel/platform/error.h"
#include "qorvel/platform/variant.h"

namespace qvsh {

// Lua values and automation values, both ways. Booleans are VariantBool -1 and 0; a Bool(n)
// value carries any other 16-bit truth value; objects and arrays are userdata.
qorvel::Variant ToVariant(lua_State* L, int index);
void PushVariant(lua_State* L, const qorvel::Variant& value);

void PushObject(lua_State* L, qorvel::AutomationObject object);
qorvel::AutomationObject CheckObject(lua_State* L, int index);

// Pushes an error value with the fields `number` and `description`.
void PushError(lua_State* L, const qorvel::Error& e);

// Runs `body`, turning automation errors into Lua errors. Lua unwinds with longjmp, so the
// C++ exception and everything it owns are gone before the Lua error is raised.
template <class Body>
int Guarded(lua_State* L, Body&& body) {
  bool failed = false;
  try {
    return body();
  } catch (const qorvel::Error& e) {
    PushError(L, e);
    failed = true;
  }
  return failed ? lua_error(L) : 0;
}

void OpenValues(lua_State* L);   // Bool, SafeArray, Collection and the error value's metatable
void OpenObjects(lua_State* L);  // CreateObject, GetObject and the object metatable

}  // namespace qvsh

#endif  // SHELL_LUA_VALUES_H_
