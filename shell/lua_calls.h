#ifndef SHELL_LUA_CALLS_H_
#define SHELL_LUA_CALLS_H_

#include <string>

#include <lua.hpp>

#include "qorvel/platform/dispatch.h"

namespace qvsh {

// Calls `member` of `object` with the Lua arguments from `first` on, and pushes what the call
// gives the script: the result (nil for none), then, for a member of the type library, the
// final value of each by-reference parameter in declaration order, the omitted optional ones
// included. Returns the number of values pushed. Throws qorvel::Error; for a member of the type
// library with by-reference parameters, an ErrorWithResults holding those final values.
int CallMember(lua_State* L, const qorvel::AutomationObject& object, const std::string& member,
               qorvel::CallKind kind, int first);

}  // namespace qvsh

#endif  // SHELL_LUA_CALLS_H_
