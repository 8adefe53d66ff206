#include "shell/lua_values.h"

#include <vector>

#include "qorvel/platform/collection.h"
#include "qorvel/platform/safe_array.h"

namespace qvsh {
namespace {

using qorvel::SafeArray;
using qorvel::Variant;
using qorvel::VarType;

constexpr const char* kObjectMeta = "qvsh.object";
constexpr const char* kArrayMeta = "qvsh.safearray";
constexpr const char* kBoolMeta = "qvsh.bool";
constexpr const char* kErrorMeta = "qvsh.error";

SafeArray& CheckArray(lua_State* L, int index) {
  return *static_cast<SafeArray*>(luaL_checkudata(L, index, kArrayMeta));
}

void PushArray(lua_State* L, SafeArray array) {
  new (lua_newuserdatauv(L, sizeof(SafeArray), 0)) SafeArray(std::move(array));
  luaL_setmetatable(L, kArrayMeta);
}

std::vector<int32_t> Subscripts(lua_State* L, int first) {
  std::vector<int32_t> subs;
  for (int i = first; i <= lua_gettop(L); ++i) subs.push_back(int32_t(luaL_checkinteger(L, i)));
  return subs;
}

VarType ElementType(lua_State* L, int index) {
  const char* names[] = {"double", "bool", "text", "long", "integer", "variant", nullptr};
  const VarType types[] = {VarType::kDouble, VarType::kBool,    VarType::kText,
                           VarType::kLong,   VarType::kInteger, VarType::kVariant};
  return types[luaL_checkoption(L, index, "variant", names)];
}

// SafeArray(type, {lower, count}, ...): one table per dimension.
int NewArray(lua_State* L) {
  return Guarded(L, [&] {
    const VarType type = ElementType(L, 1);
    std::vector<qorvel::Bound> bounds;
    for (int i = 2; i <= lua_gettop(L); ++i) {
      luaL_checktype(L, i, LUA_TTABLE);
      lua_geti(L, i, 1);
      lua_geti(L, i, 2);
      bounds.push_back({int32_t(luaL_checkinteger(L, -2)), int32_t(luaL_checkinteger(L, -1))});
      lua_pop(L, 2);
    }
    PushArray(L, SafeArray(type, bounds));
    return 1;
  });
}

const luaL_Reg kArrayMethods[] = {
    {"get",
     [](lua_State* L) {
       return Guarded(L, [&] {
         PushVariant(L, CheckArray(L, 1).Get(Subscripts(L, 2)));
         return 1;
       });
     }},
    {"put",
     [](lua_State* L) {
       return Guarded(L, [&] {
         Variant value = ToVariant(L, lua_gettop(L));
         lua_pop(L, 1);
         CheckArray(L, 1).Put(Subscripts(L, 2), value);
         return 0;
       });
     }},
    {"lbound",
     [](lua_State* L) {
       return Guarded(L, [&] {
         lua_pushinteger(L, CheckArray(L, 1).LBound(int32_t(luaL_optinteger(L, 2, 1))));
         return 1;
       });
     }},
    {"ubound",
     [](lua_State* L) {
       return Guarded(L, [&] {
         lua_pushinteger(L, CheckArray(L, 1).UBound(int32_t(luaL_optinteger(L, 2, 1))));
         return 1;
       });
     }},
    {"dims",
     [](lua_State* L) {
       lua_pushinteger(L, CheckArray(L, 1).dims());
       return 1;
     }},
    {"redim",
     [](lua_State* L) {
       return Guarded(L, [&] {
         SafeArray& array = CheckArray(L, 1);
         const bool preserve = lua_toboolean(L, 2);
         std::vector<qorvel::Bound> bounds;
         for (int i = 3; i <= lua_gettop(L); ++i) {
           lua_geti(L, i, 1);
           lua_geti(L, i, 2);
           bounds.push_back({int32_t(luaL_checkinteger(L, -2)), int32_t(luaL_checkinteger(L, -1))});
           lua_pop(L, 2);
         }
         array.Redim(bounds, preserve);
         return 0;
       });
     }},
    {nullptr, nullptr}};

int ErrorToString(lua_State* L) {
  lua_getfield(L, 1, "number");
  lua_getfield(L, 1, "description");
  lua_pushfstring(L, "Error %d: %s", int(lua_tointeger(L, -2)), lua_tostring(L, -1));
  return 1;
}

}  // namespace

void PushError(lua_State* L, const qorvel::Error& e) {
  lua_createtable(L, 0, 2);
  lua_pushinteger(L, e.number());
  lua_setfield(L, -2, "number");
  lua_pushstring(L, e.description().c_str());
  lua_setfield(L, -2, "description");
  luaL_setmetatable(L, kErrorMeta);
}

Variant ToVariant(lua_State* L, int index) {
  switch (lua_type(L, index)) {
    case LUA_TNIL:
    case LUA_TNONE:
      return Variant();
    case LUA_TBOOLEAN:
      return Variant(qorvel::ToVariantBool(lua_toboolean(L, index)));
    case LUA_TNUMBER:
      if (lua_isinteger(L, index)) {
        const lua_Integer n = lua_tointeger(L, index);
        if (n >= INT32_MIN && n <= INT32_MAX) return Variant(int32_t(n));
      }
      return Variant(double(lua_tonumber(L, index)));
    case LUA_TSTRING: {
      size_t size = 0;
      const char* text = lua_tolstring(L, index, &size);
      return Variant(std::string(text, size));
    }
    case LUA_TUSERDATA:
      if (void* p = luaL_testudata(L, index, kObjectMeta)) {
        return Variant(*static_cast<qorvel::AutomationObject*>(p));
      }
      if (void* p = luaL_testudata(L, index, kArrayMeta))
        return Variant(*static_cast<SafeArray*>(p));
      if (void* p = luaL_testudata(L, index, kBoolMeta)) {
        return Variant(*static_cast<qorvel::VariantBool*>(p));
      }
      [[fallthrough]];
    default:
      throw qorvel::Error(qorvel::err::kTypeMismatch);
  }
}

void PushVariant(lua_State* L, const Variant& value) {
  const Variant v = value.Deref();
  if (v.is_array()) return PushArray(L, v.ToArray());
  switch (v.type()) {
    case VarType::kInteger:
    case VarType::kLong:
      lua_pushinteger(L, v.ToLong());
      break;
    case VarType::kDouble:
      lua_pushnumber(L, v.ToDouble());
      break;
    case VarType::kText:
      lua_pushstring(L, v.ToText().c_str());
      break;
    case VarType::kBool: {
      const int16_t raw = qorvel::RawBool(v.ToBool());
      if (raw == -1 || raw == 0) {
        lua_pushboolean(L, raw == -1);
      } else {
        lua_pushinteger(L, raw);  // a truth value other than -1 and 0 shows its number
      }
      break;
    }
    case VarType::kObject: {
      qorvel::AutomationObject object = v.ToObject();
      if (object) {
        PushObject(L, std::move(object));
      } else {
        lua_pushnil(L);
      }
      break;
    }
    default:
      lua_pushnil(L);
  }
}

void OpenValues(lua_State* L) {
  luaL_newmetatable(L, kErrorMeta);
  lua_pushcfunction(L, ErrorToString);
  lua_setfield(L, -2, "__tostring");
  lua_pop(L, 1);

  luaL_newmetatable(L, kArrayMeta);
  luaL_newlib(L, kArrayMethods);
  lua_setfield(L, -2, "__index");
  lua_pushcfunction(L, [](lua_State* L) {
    CheckArray(L, 1).~SafeArray();
    return 0;
  });
  lua_setfield(L, -2, "__gc");
  lua_pop(L, 1);
  lua_register(L, "SafeArray", NewArray);

  luaL_newmetatable(L, kBoolMeta);
  lua_pop(L, 1);
  lua_register(L, "Bool", [](lua_State* L) {
    const lua_Integer raw = luaL_checkinteger(L, 1);
    luaL_argcheck(L, raw >= -32768 && raw <= 32767, 1, "not a 16-bit value");
    *static_cast<qorvel::VariantBool*>(lua_newuserdatauv(L, sizeof(qorvel::VariantBool), 0)) =
        qorvel::MakeVariantBool(int16_t(raw));
    luaL_setmetatable(L, kBoolMeta);
    return 1;
  });
  lua_register(L, "Collection", [](lua_State* L) {
    PushObject(L, qorvel::NewCollection());
    return 1;
  });
}

}  // namespace qvsh
