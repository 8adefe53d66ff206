// SafeArray values in Lua: SafeArray(type, {lower, count}, ...) and the methods get, put,
// lbound, ubound, dims, type and redim.
#include <string>
#include <vector>

#include "qorvel/platform/safe_array.h"
#include "shell/lua_errors.h"
#include "shell/lua_holders.h"
#include "shell/lua_values.h"
#include "shell/qvsh.h"

namespace qvsh {
namespace {

using qorvel::Bound;
using qorvel::SafeArray;
using qorvel::VarType;

constexpr const char* kArrayMeta = "qvsh.safearray";
const char* const kTypeNames[] = {"double", "bool", "text", "long", "integer", "variant", nullptr};
const VarType kTypes[] = {VarType::kDouble, VarType::kBool,    VarType::kText,
                          VarType::kLong,   VarType::kInteger, VarType::kVariant};

SafeArray& ArgArray(lua_State* L, int arg) {
  SafeArray* array = TestArray(L, arg);
  if (array == nullptr) throw ArgError(arg, "SafeArray expected");
  return *array;
}

const char* TypeName(VarType type) {
  for (int i = 0; kTypeNames[i] != nullptr; ++i) {
    if (kTypes[i] == type) return kTypeNames[i];
  }
  return "variant";
}

bool Fits32(lua_Integer n) { return n >= INT32_MIN && n <= INT32_MAX; }

int32_t ArgInt32(lua_State* L, int arg) {
  const lua_Integer n = ArgInteger(L, arg);
  if (!Fits32(n)) throw ArgError(arg, "beyond 32 bits");
  return int32_t(n);
}

// One {lower, count} table per dimension, from `first` to the last argument.
std::vector<Bound> ArgBounds(lua_State* L, int first) {
  std::vector<Bound> bounds;
  for (int arg = first; arg <= lua_gettop(L); ++arg) {
    ArgTable(L, arg);
    lua_rawgeti(L, arg, 1);
    lua_rawgeti(L, arg, 2);
    const int top = lua_gettop(L);
    const bool valid = lua_isinteger(L, top - 1) && lua_isinteger(L, top) &&
                       Fits32(lua_tointeger(L, top - 1)) && Fits32(lua_tointeger(L, top));
    const Bound bound{int32_t(lua_tointeger(L, top - 1)), int32_t(lua_tointeger(L, top))};
    lua_pop(L, 2);
    if (!valid) throw ArgError(arg, "{lower, count} of 32-bit integers expected");
    bounds.push_back(bound);
  }
  return bounds;
}

std::vector<int32_t> ArgSubscripts(lua_State* L, int first, int last) {
  std::vector<int32_t> subscripts;
  for (int arg = first; arg <= last; ++arg) subscripts.push_back(ArgInt32(L, arg));
  return subscripts;
}

int NewArray(lua_State* L) {
  const VarType type = kTypes[ArgOption(L, 1, kTypeNames)];
  PushArray(L, SafeArray(type, ArgBounds(L, 2)));
  return 1;
}

int Get(lua_State* L) {
  const SafeArray& array = ArgArray(L, 1);
  PushVariant(L, array.Get(ArgSubscripts(L, 2, lua_gettop(L))));
  return 1;
}

// a:put(i, ..., value)
int Put(lua_State* L) {
  SafeArray& array = ArgArray(L, 1);
  const int last = lua_gettop(L);
  if (last < 3) throw ArgError(last + 1, "subscripts and a value expected");
  array.Put(ArgSubscripts(L, 2, last - 1), ToVariant(L, last));
  return 0;
}

int LBound(lua_State* L) {
  lua_pushinteger(L, ArgArray(L, 1).LBound(lua_isnoneornil(L, 2) ? 1 : ArgInt32(L, 2)));
  return 1;
}

int UBound(lua_State* L) {
  lua_pushinteger(L, ArgArray(L, 1).UBound(lua_isnoneornil(L, 2) ? 1 : ArgInt32(L, 2)));
  return 1;
}

int Dims(lua_State* L) {
  lua_pushinteger(L, ArgArray(L, 1).dims());
  return 1;
}

int Type(lua_State* L) {
  lua_pushstring(L, TypeName(ArgArray(L, 1).element_type()));
  return 1;
}

// a:redim(preserve, {lower, count}, ...)
int Redim(lua_State* L) {
  SafeArray& array = ArgArray(L, 1);
  const bool preserve = lua_toboolean(L, 2);
  array.Redim(ArgBounds(L, 3), preserve);
  return 0;
}

// "SafeArray(double, 1 to 3, 0 to 1)", or "SafeArray: released" for a finalizer's print.
int ToString(lua_State* L) {
  bool released = false;
  FindHeld<SafeArray>(L, 1, kArrayMeta, &released);
  if (released) {
    lua_pushliteral(L, "SafeArray: released");
    return 1;
  }
  const SafeArray& array = ArgArray(L, 1);
  std::string text = std::string("SafeArray(") + TypeName(array.element_type());
  for (const Bound& b : array.bounds()) {
    text +=
        ", " + std::to_string(b.lower) + " to " + std::to_string(int64_t{b.lower} + b.count - 1);
  }
  text += ")";
  lua_pushlstring(L, text.data(), text.size());
  return 1;
}

}  // namespace

void PushArray(lua_State* L, SafeArray array) { PushHeld(L, std::move(array), kArrayMeta); }

SafeArray* TestArray(lua_State* L, int index) {
  bool released = false;
  SafeArray* array = FindHeld<SafeArray>(L, index, kArrayMeta, &released);
  if (released) throw qorvel::Error(qorvel::err::kObjectNotSet);
  return array;
}

void OpenArrays(lua_State* L) {
  const luaL_Reg methods[] = {{"get", Protected<Get>},       {"put", Protected<Put>},
                              {"lbound", Protected<LBound>}, {"ubound", Protected<UBound>},
                              {"dims", Protected<Dims>},     {"type", Protected<Type>},
                              {"redim", Protected<Redim>},   {nullptr, nullptr}};
  luaL_newmetatable(L, kArrayMeta);
  luaL_newlib(L, methods);
  lua_setfield(L, -2, "__index");
  lua_pushcfunction(L, Protected<ToString>);
  lua_setfield(L, -2, "__tostring");
  lua_pushcfunction(L, CollectHeld);
  lua_setfield(L, -2, "__gc");
  lua_pop(L, 1);
  lua_register(L, "SafeArray", Protected<NewArray>);
}

}  // namespace qvsh
