#include "shell/lua_values.h"

#include <cstdint>
#include <string>

#include "qorvel/platform/collection.h"
#include "qorvel/platform/error.h"
#include "shell/lua_errors.h"
#include "shell/qvsh.h"

namespace qvsh {
namespace {

using qorvel::Variant;
using qorvel::VariantBool;
using qorvel::VarType;

constexpr const char* kBoolMeta = "qvsh.bool";

Variant NumberToVariant(lua_State* L, int index) {
  if (lua_isinteger(L, index)) {
    const lua_Integer n = lua_tointeger(L, index);
    if (n >= INT32_MIN && n <= INT32_MAX) return Variant(int32_t(n));
  }
  return Variant(double(lua_tonumber(L, index)));
}

void PushBoolResult(lua_State* L, VariantBool value) {
  const int16_t raw = qorvel::RawBool(value);
  if (raw == -1 || raw == 0) {
    lua_pushboolean(L, raw == -1);
  } else {
    lua_pushinteger(L, raw);
  }
}

// Bool(n): a truth value of exactly n, for members that tell -1 and 0 from the rest.
int NewBool(lua_State* L) {
  const lua_Integer raw = ArgInteger(L, 1);
  if (raw < INT16_MIN || raw > INT16_MAX) throw ArgError(1, "not a 16-bit value");
  auto* value = static_cast<VariantBool*>(lua_newuserdatauv(L, sizeof(VariantBool), 0));
  *value = qorvel::MakeVariantBool(int16_t(raw));
  luaL_setmetatable(L, kBoolMeta);
  return 1;
}

int BoolToString(lua_State* L) {
  const auto* value = static_cast<VariantBool*>(luaL_checkudata(L, 1, kBoolMeta));
  lua_pushfstring(L, "Bool(%d)", int(qorvel::RawBool(*value)));
  return 1;
}

int BoolEquals(lua_State* L) {
  const auto* a = static_cast<VariantBool*>(luaL_testudata(L, 1, kBoolMeta));
  const auto* b = static_cast<VariantBool*>(luaL_testudata(L, 2, kBoolMeta));
  lua_pushboolean(L, a != nullptr && b != nullptr && *a == *b);
  return 1;
}

int NewCollection(lua_State* L) {
  PushObject(L, qorvel::NewCollection());
  return 1;
}

}  // namespace

Variant ToVariant(lua_State* L, int index) {
  switch (lua_type(L, index)) {
    case LUA_TNIL:
    case LUA_TNONE:
      return Variant();
    case LUA_TBOOLEAN:
      return Variant(qorvel::ToVariantBool(lua_toboolean(L, index)));
    case LUA_TNUMBER:
      return NumberToVariant(L, index);
    case LUA_TSTRING: {
      size_t size = 0;
      const char* text = lua_tolstring(L, index, &size);
      return Variant(std::string(text, size));
    }
    case LUA_TUSERDATA:
      if (const qorvel::AutomationObject* object = TestObject(L, index)) return Variant(*object);
      if (const qorvel::SafeArray* array = TestArray(L, index)) return Variant(*array);
      if (void* raw = luaL_testudata(L, index, kBoolMeta)) {
        return Variant(*static_cast<VariantBool*>(raw));
      }
      break;
  }
  throw qorvel::Error(qorvel::err::kTypeMismatch);
}

void PushVariant(lua_State* L, const Variant& value) {
  const Variant v = value.Deref();
  if (v.is_array()) return PushArray(L, v.ToArray());
  switch (v.type()) {
    case VarType::kInteger:
    case VarType::kLong:
      lua_pushinteger(L, v.ToLong());
      return;
    case VarType::kDouble:
      lua_pushnumber(L, v.ToDouble());
      return;
    case VarType::kText: {
      const std::string text = v.ToText();
      lua_pushlstring(L, text.data(), text.size());
      return;
    }
    case VarType::kBool:
      return PushBoolResult(L, v.ToBool());
    case VarType::kObject:
      if (qorvel::AutomationObject object = v.ToObject()) return PushObject(L, std::move(object));
      break;
    default:
      break;
  }
  lua_pushnil(L);
}

void OpenValues(lua_State* L) {
  luaL_newmetatable(L, kBoolMeta);
  lua_pushcfunction(L, BoolToString);
  lua_setfield(L, -2, "__tostring");
  lua_pushcfunction(L, BoolEquals);
  lua_setfield(L, -2, "__eq");
  lua_pop(L, 1);
  lua_register(L, "Bool", Protected<NewBool>);
  lua_register(L, "Collection", Protected<NewCollection>);
}

}  // namespace qvsh
