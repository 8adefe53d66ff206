#ifndef SHELL_LUA_ERRORS_H_
#define SHELL_LUA_ERRORS_H_

#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include <lua.hpp>

#include "qorvel/platform/error.h"

namespace qvsh {

// A raised automation error reaches a script as a table with `number` and `description`, whose
// tostring is "Error <number>: <description>", and, for a failed call of a member with
// by-reference parameters, `results`. ErrorText gives that form for such a value, and
// Lua's message for any other error value.
std::string ErrorText(lua_State* L, int index);
void OpenErrors(lua_State* L);

// An automation error raised by a call that wrote back by-reference arguments: its value gets
// the field `results`, the table at stack index `results`.
class ErrorWithResults : public qorvel::Error {
 public:
  ErrorWithResults(const qorvel::Error& error, int results)
      : qorvel::Error(error), results_(results) {}
  int results() const { return results_; }

 private:
  int results_;
};

// A bad argument to a shell function, reported as Lua reports one.
class ArgError : public std::exception {
 public:
  ArgError(int arg, std::string message) : arg_(arg), message_(std::move(message)) {}
  int arg() const { return arg_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  int arg_;
  std::string message_;
};

// Lua raises its errors with longjmp, which would skip the destructors of C++ locals. So the
// body of a shell function reports every failure as a C++ exception, and Protected raises the
// Lua error only once the body's frames are gone. No exception gets past it: running out of
// memory is automation error 7, and anything else unforeseen a Lua error.
using Body = int (*)(lua_State*);
int RunProtected(lua_State* L, Body body);
template <Body body>
int Protected(lua_State* L) {
  return RunProtected(L, body);
}

// Argument checks for bodies: they throw ArgError where luaL_check* would raise.
lua_Integer ArgInteger(lua_State* L, int arg);
lua_Integer OptInteger(lua_State* L, int arg, lua_Integer fallback);
double ArgNumber(lua_State* L, int arg);
std::string ArgString(lua_State* L, int arg);
void ArgTable(lua_State* L, int arg);
// The position of the argument in `names` (nullptr-terminated); `fallback` when it is absent.
int ArgOption(lua_State* L, int arg, const char* const names[], const char* fallback = nullptr);

// Texts go to and come from Lua whole, zero bytes included. StringAt takes the string (or
// number) at `index`; SetField sets the field `key` of the table below the top to the
// value on top, and pops it.
void PushString(lua_State* L, std::string_view text);
void PushStrings(lua_State* L, const std::vector<std::string>& texts);  // as a list from 1
std::string StringAt(lua_State* L, int index);
void SetField(lua_State* L, std::string_view key);

}  // namespace qvsh

#endif  // SHELL_LUA_ERRORS_H_
