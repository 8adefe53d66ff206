// SafeArray values in Lua: SafeArray(type, {lower, count}, ...), ArrayOf(type, nested tables
// [, lower]) and the methods get, put, lbound, ubound, dims, type and redim.
#include <array>
#include <span>
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

// --- ArrayOf: nested tables as an array of as many dimensions as they are deep.

// As many as the automation runtime's arrays take; a table that holds itself stops here too.
constexpr int kMostDims = 60;
constexpr int kNestedArg = 2;  // where ArrayOf takes its tables

// "[2][3]", the place of a nested table by its positions from 1; "the table" for the outermost.
std::string Place(const std::vector<int32_t>& at, size_t depth) {
  if (depth == 0) return "the table";
  std::string place;
  for (size_t d = 0; d < depth; ++d) place += "[" + std::to_string(at[d]) + "]";
  return place;
}

// The length of the table at `index`, whose keys must be 1 to that length and nothing else: a
// key the array has no place for would be lost.
int32_t ListLength(lua_State* L, int index, const std::vector<int32_t>& at, size_t depth) {
  index = lua_absindex(L, index);
  const lua_Unsigned length = lua_rawlen(L, index);
  lua_Unsigned keys = 0;
  bool list = length <= INT32_MAX;
  lua_pushnil(L);
  while (list && lua_next(L, index) != 0) {
    lua_pop(L, 1);
    const lua_Integer key = lua_isinteger(L, -1) ? lua_tointeger(L, -1) : 0;
    list = key >= 1 && lua_Unsigned(key) <= length;
    ++keys;
  }
  if (!list) lua_pop(L, 1);  // the key lua_next left
  if (!list || keys != length) {
    throw ArgError(kNestedArg,
                   Place(at, depth) + " is no list: keys from 1 up without gaps expected");
  }
  return int32_t(length);
}

// The shape nested tables promise by their first entries: the count at each depth, and the
// Lua type of the first element.
struct NestedShape {
  std::vector<int32_t> counts;
  int leaf_type = LUA_TNIL;
};

NestedShape ShapeOf(lua_State* L) {
  NestedShape shape;
  const std::vector<int32_t> at(kMostDims, 1);
  lua_pushvalue(L, kNestedArg);
  while (true) {
    if (shape.counts.size() == kMostDims) {
      throw ArgError(kNestedArg, "tables nested deeper than " + std::to_string(kMostDims) +
                                     " levels, or a table that holds itself");
    }
    shape.counts.push_back(ListLength(L, -1, at, shape.counts.size()));
    if (shape.counts.back() == 0) break;
    lua_rawgeti(L, -1, 1);
    lua_remove(L, -2);
    if (lua_type(L, -1) != LUA_TTABLE) {
      shape.leaf_type = lua_type(L, -1);
      break;
    }
  }
  lua_pop(L, 1);
  return shape;
}

// Puts the value on top of the stack at the element whose positions are `at`. The place goes
// into a conversion error's description: which of thousands of numbers was the bad one.
void PutElement(lua_State* L, const std::vector<int32_t>& at, int32_t lower, SafeArray& array) {
  std::array<int32_t, kMostDims> subscripts;
  for (size_t d = 0; d < at.size(); ++d) subscripts[d] = int32_t(int64_t{lower} + at[d] - 1);
  try {
    array.Put(std::span(subscripts.data(), at.size()), ToVariant(L, -1));
  } catch (const qorvel::Error& e) {
    throw qorvel::Error(e.number(), e.description() + " at " + Place(at, at.size()));
  }
}

// Puts the elements of the table on top of the stack, at `depth`, into `array` from `lower`;
// `at` holds the positions of the tables around it, and of the element in hand.
void Fill(lua_State* L, const NestedShape& shape, size_t depth, std::vector<int32_t>& at,
          int32_t lower, SafeArray& array) {
  const size_t dims = shape.counts.size();
  const std::vector<int32_t> first(dims, 1);
  if (const int32_t length = ListLength(L, -1, at, depth); length != shape.counts[depth]) {
    throw ArgError(kNestedArg, "ragged tables: " + Place(at, depth) + " has " +
                                   std::to_string(length) +
                                   (length == 1 ? " entry, " : " entries, ") + Place(first, depth) +
                                   " has " + std::to_string(shape.counts[depth]));
  }
  for (int32_t i = 1; i <= shape.counts[depth]; ++i) {
    at[depth] = i;
    lua_rawgeti(L, -1, i);
    const bool table = lua_type(L, -1) == LUA_TTABLE;
    if (table != (depth + 1 < dims)) {
      throw ArgError(kNestedArg,
                     "ragged tables: " + Place(at, depth + 1) + " is a " + luaL_typename(L, -1) +
                         ", " + Place(first, depth + 1) + " a " +
                         (depth + 1 < dims ? "table" : lua_typename(L, shape.leaf_type)));
    }
    if (table) {
      Fill(L, shape, depth + 1, at, lower, array);
    } else {
      PutElement(L, at, lower, array);
    }
    lua_pop(L, 1);
  }
}

// ArrayOf(type, nested [, lower]): grid[lat][lon] = {x, y, z} gives a lats by lons by 3 array.
int ArrayOf(lua_State* L) {
  const VarType type = kTypes[ArgOption(L, 1, kTypeNames)];
  ArgTable(L, 2);
  const int32_t lower = lua_isnoneornil(L, 3) ? 1 : ArgInt32(L, 3);
  lua_settop(L, 2);
  if (!lua_checkstack(L, kMostDims + 8)) throw qorvel::Error(qorvel::err::kOutOfMemory);
  const NestedShape shape = ShapeOf(L);
  std::vector<Bound> bounds;
  for (int32_t count : shape.counts) bounds.push_back({lower, count});
  SafeArray array(type, bounds);
  std::vector<int32_t> at(shape.counts.size(), 1);
  Fill(L, shape, 0, at, lower, array);
  PushArray(L, std::move(array));
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
  lua_register(L, "ArrayOf", Protected<ArrayOf>);
}

}  // namespace qvsh
