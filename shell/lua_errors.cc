#include "shell/lua_errors.h"

#include <new>

namespace qvsh {
namespace {

constexpr const char* kErrorMeta = "qvsh.error";

int ErrorToString(lua_State* L) {
  PushString(L, ErrorText(L, 1));
  return 1;
}

bool IsErrorValue(lua_State* L, int index) {
  if (lua_type(L, index) != LUA_TTABLE || !lua_getmetatable(L, index)) return false;
  luaL_getmetatable(L, kErrorMeta);
  const bool ours = lua_rawequal(L, -1, -2);
  lua_pop(L, 2);
  return ours;
}

std::string TypeMessage(lua_State* L, int arg, const char* expected) {
  return std::string(expected) + " expected, got " + luaL_typename(L, arg);
}

// What a failed body raises: an automation error (number and description), a bad argument, or
// another Lua error with a message.
struct Failure {
  int32_t number = 0;
  std::string text;
  int arg = 0;
  int results = 0;  // the stack index of the call's by-reference results, if any
};

// The exception being handled, as a failure. Taking a copy of its text may itself run out of
// memory; that is then the failure, so nothing escapes towards Lua's C frames.
Failure CurrentFailure() noexcept {
  try {
    try {
      throw;
    } catch (const ErrorWithResults& e) {
      return {e.number(), e.description(), 0, e.results()};
    } catch (const qorvel::Error& e) {
      return {e.number(), e.description()};
    } catch (const ArgError& e) {
      return {0, e.what(), e.arg()};
    } catch (const std::bad_alloc&) {
      return {qorvel::err::kOutOfMemory, {}};
    } catch (const std::exception& e) {
      return {0, e.what()};
    } catch (...) {
      return {0, "unexpected exception in qvsh"};
    }
  } catch (...) {
    return {qorvel::err::kOutOfMemory, {}};
  }
}

void PushFailure(lua_State* L, const Failure& f) {
  if (f.number == 0) {
    lua_pushlstring(L, f.text.data(), f.text.size());
    return;
  }
  lua_createtable(L, 0, 3);
  lua_pushinteger(L, f.number);
  lua_setfield(L, -2, "number");
  if (f.number == qorvel::err::kOutOfMemory && f.text.empty()) {
    lua_pushliteral(L, "Out of memory");  // no room to ask for the runtime's text
  } else {
    lua_pushlstring(L, f.text.data(), f.text.size());
  }
  lua_setfield(L, -2, "description");
  if (f.results != 0) {
    lua_pushvalue(L, f.results);
    lua_setfield(L, -2, "results");
  }
  luaL_setmetatable(L, kErrorMeta);
}

}  // namespace

std::string ErrorText(lua_State* L, int index) {
  index = lua_absindex(L, index);
  if (IsErrorValue(L, index)) {
    lua_getfield(L, index, "number");
    lua_getfield(L, index, "description");
    std::string text = "Error " + std::to_string(lua_tointeger(L, -2)) + ": ";
    if (lua_isstring(L, -1)) text += StringAt(L, -1);
    lua_pop(L, 2);
    return text;
  }
  if (lua_isstring(L, index)) return StringAt(L, index);
  return std::string("(error object is a ") + luaL_typename(L, index) + " value)";
}

void OpenErrors(lua_State* L) {
  luaL_newmetatable(L, kErrorMeta);
  lua_pushcfunction(L, Protected<ErrorToString>);
  lua_setfield(L, -2, "__tostring");
  lua_pop(L, 1);
}

int RunProtected(lua_State* L, Body body) {
  int bad_arg = 0;
  {
    Failure failure;
    try {
      return body(L);
    } catch (...) {
      failure = CurrentFailure();
    }
    PushFailure(L, failure);
    bad_arg = failure.arg;
  }  // Lua raises with longjmp: the failure's text must be gone by then
  if (bad_arg != 0) return luaL_argerror(L, bad_arg, lua_tostring(L, -1));
  return lua_error(L);
}

lua_Integer ArgInteger(lua_State* L, int arg) {
  int is_integer = 0;
  const lua_Integer n = lua_tointegerx(L, arg, &is_integer);
  if (!is_integer) {
    throw ArgError(arg, lua_isnumber(L, arg) ? "number has no integer representation"
                                             : TypeMessage(L, arg, "number"));
  }
  return n;
}

lua_Integer OptInteger(lua_State* L, int arg, lua_Integer fallback) {
  return lua_isnoneornil(L, arg) ? fallback : ArgInteger(L, arg);
}

double ArgNumber(lua_State* L, int arg) {
  int is_number = 0;
  const double n = lua_tonumberx(L, arg, &is_number);
  if (!is_number) throw ArgError(arg, TypeMessage(L, arg, "number"));
  return n;
}

std::string ArgString(lua_State* L, int arg) {
  size_t size = 0;
  const char* text = lua_type(L, arg) == LUA_TSTRING || lua_type(L, arg) == LUA_TNUMBER
                         ? lua_tolstring(L, arg, &size)
                         : nullptr;
  if (text == nullptr) throw ArgError(arg, TypeMessage(L, arg, "string"));
  return std::string(text, size);
}

void ArgTable(lua_State* L, int arg) {
  if (lua_type(L, arg) != LUA_TTABLE) throw ArgError(arg, TypeMessage(L, arg, "table"));
}

int ArgOption(lua_State* L, int arg, const char* const names[], const char* fallback) {
  const std::string name =
      fallback != nullptr && lua_isnoneornil(L, arg) ? fallback : ArgString(L, arg);
  for (int i = 0; names[i] != nullptr; ++i) {
    if (name == names[i]) return i;
  }
  throw ArgError(arg, "invalid option '" + name + "'");
}

void PushString(lua_State* L, std::string_view text) {
  lua_pushlstring(L, text.data(), text.size());
}

void PushStrings(lua_State* L, const std::vector<std::string>& texts) {
  lua_createtable(L, int(texts.size()), 0);
  for (size_t i = 0; i < texts.size(); ++i) {
    PushString(L, texts[i]);
    lua_rawseti(L, -2, lua_Integer(i + 1));
  }
}

std::string StringAt(lua_State* L, int index) {
  size_t size = 0;
  const char* text = lua_tolstring(L, index, &size);
  return std::string(text, size);
}

void SetField(lua_State* L, std::string_view key) {
  PushString(L, key);
  lua_insert(L, -2);
  lua_rawset(L, -3);
}

}  // namespace qvsh
