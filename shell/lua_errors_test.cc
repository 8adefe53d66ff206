#include "shell/lua_errors.h"

#include <gtest/gtest.h>

#include <new>

namespace qvsh {
namespace {

int OutOfMemory(lua_State*) { throw std::bad_alloc(); }
int BadArgument(lua_State*) { throw ArgError(2, "number expected, got table"); }
int Unforeseen(lua_State*) { throw 42; }

// What a script's pcall of a shell function whose body fails gets as the error.
TEST(ProtectedTest, EveryFailureBecomesALuaError) {
  const struct {
    lua_CFunction function;
    const char* error;
  } cases[] = {
      {Protected<OutOfMemory>, "Error 7: Out of memory"},
      {Protected<BadArgument>, "bad argument #2 to '?' (number expected, got table)"},
      {Protected<Unforeseen>, "unexpected exception in qvsh"},
  };
  for (const auto& c : cases) {
    lua_State* L = luaL_newstate();
    OpenErrors(L);
    lua_pushcfunction(L, c.function);
    EXPECT_EQ(lua_pcall(L, 0, 0, 0), LUA_ERRRUN);
    EXPECT_EQ(ErrorText(L, -1), c.error);
    lua_close(L);
  }
}

}  // namespace
}  // namespace qvsh
