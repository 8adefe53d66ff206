// The simulated Ulmora as scripts set it up and read it back: its entities, the selection, the
// created and updated lists, how it answers counts and chosen expressions, and what the
// control's commands and batches left behind.
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hosts/sim_ulmora.h"
#include "qorvel/platform/safe_array.h"
#include "shell/lua_errors.h"
#include "shell/lua_values.h"
#include "shell/sim_api.h"

namespace qvsh {
namespace {

using qorvel::SafeArray;
using qorvel::Variant;
using qorvel::VarType;
using qorvel::hosts::SimUlmora;

// A sequence of texts: {"P1", "L1"}.
std::vector<std::string> ArgNames(lua_State* L, int arg) {
  ArgTable(L, arg);
  std::vector<std::string> names;
  const lua_Integer n = lua_Integer(lua_rawlen(L, arg));
  for (lua_Integer i = 1; i <= n; ++i) {
    lua_rawgeti(L, arg, i);
    if (lua_type(L, -1) != LUA_TSTRING) throw ArgError(arg, "a list of names expected");
    names.push_back(StringAt(L, -1));
    lua_pop(L, 1);
  }
  return names;
}

// A property as the host keeps it: numbers as Double, a list of numbers as an array of Double
// from 0, texts, truth values, and arrays made with SafeArray as they are.
Variant PropertyAt(lua_State* L, int arg, int index, const std::string& name) {
  const std::string expected = "property " + name + ": a number, text, boolean or list of numbers";
  switch (lua_type(L, index)) {
    case LUA_TNUMBER:
      return lua_tonumber(L, index);
    case LUA_TSTRING:
    case LUA_TBOOLEAN:
      return ToVariant(L, index);
    case LUA_TTABLE: {
      const lua_Integer n = lua_Integer(lua_rawlen(L, index));
      if (n > INT32_MAX) throw ArgError(arg, expected);
      SafeArray array(VarType::kDouble, {qorvel::Bound{0, int32_t(n)}});
      for (lua_Integer i = 1; i <= n; ++i) {
        lua_rawgeti(L, index, i);
        if (lua_type(L, -1) != LUA_TNUMBER) throw ArgError(arg, expected);
        array.PutDouble(int32_t(i - 1), lua_tonumber(L, -1));
        lua_pop(L, 1);
      }
      return Variant(std::move(array));
    }
    default:
      if (SafeArray* array = TestArray(L, index)) return Variant(*array);
      throw ArgError(arg, expected);
  }
}

// A one-dimensional array of Double comes back as a list, anything else as PushVariant gives it.
void PushProperty(lua_State* L, const Variant& value) {
  if (!value.is_array() || value.ToArray().element_type() != VarType::kDouble ||
      value.ToArray().dims() != 1) {
    PushVariant(L, value);
    return;
  }
  const SafeArray array = value.ToArray();
  lua_createtable(L, int(array.size()), 0);
  for (int32_t i = 0; i < int32_t(array.size()); ++i) {
    lua_pushnumber(L, array.GetDouble(array.LBound() + i));
    lua_rawseti(L, -2, i + 1);
  }
}

// Sim.Ulmora.AddEntity(ulmora, name, type [, {X = 1, POSITION = {1, 2, 3}, KIND = "Kalvane"}])
int AddEntity(lua_State* L) {
  std::shared_ptr<SimUlmora> host = ArgHost<SimUlmora>(L, 1);
  SimUlmora::Entity entity{ArgString(L, 2), ArgString(L, 3), {}};
  if (!lua_isnoneornil(L, 4)) {
    ArgTable(L, 4);
    lua_pushnil(L);
    while (lua_next(L, 4) != 0) {
      if (lua_type(L, -2) != LUA_TSTRING) throw ArgError(4, "property names expected as keys");
      const std::string name = StringAt(L, -2);
      entity.properties[name] = PropertyAt(L, 4, lua_gettop(L), name);
      lua_pop(L, 1);
    }
  }
  host->AddEntity(std::move(entity));
  return 0;
}

// {name=, type=, properties={X=, POSITION={...}, ...}}, or nil
int Entity(lua_State* L) {
  std::optional<SimUlmora::Entity> entity = ArgHost<SimUlmora>(L, 1)->entity(ArgString(L, 2));
  if (!entity) return 0;
  lua_createtable(L, 0, 3);
  PushString(L, entity->name);
  lua_setfield(L, -2, "name");
  PushString(L, entity->type);
  lua_setfield(L, -2, "type");
  lua_createtable(L, 0, int(entity->properties.size()));
  for (const auto& [name, value] : entity->properties) {
    PushProperty(L, value);
    SetField(L, name);
  }
  lua_setfield(L, -2, "properties");
  return 1;
}

int Entities(lua_State* L) {
  std::vector<std::string> names;
  for (const SimUlmora::Entity& e : ArgHost<SimUlmora>(L, 1)->entities()) names.push_back(e.name);
  PushStrings(L, names);
  return 1;
}

int Select(lua_State* L) {
  ArgHost<SimUlmora>(L, 1)->Select(ArgNames(L, 2));
  return 0;
}

int MarkCreated(lua_State* L) {
  ArgHost<SimUlmora>(L, 1)->MarkCreated(ArgNames(L, 2));
  return 0;
}

int MarkUpdated(lua_State* L) {
  ArgHost<SimUlmora>(L, 1)->MarkUpdated(ArgNames(L, 2));
  return 0;
}

int Selection(lua_State* L) {
  PushStrings(L, ArgHost<SimUlmora>(L, 1)->selection());
  return 1;
}

int Created(lua_State* L) {
  PushStrings(L, ArgHost<SimUlmora>(L, 1)->created());
  return 1;
}

int Updated(lua_State* L) {
  PushStrings(L, ArgHost<SimUlmora>(L, 1)->updated());
  return 1;
}

int CountsAsText(lua_State* L) {
  ArgHost<SimUlmora>(L, 1)->set_counts_as_text(lua_toboolean(L, 2));
  return 0;
}

// Sim.Ulmora.ScriptEvaluate(ulmora, expression, reply): any value, nil for Empty.
int ScriptEvaluate(lua_State* L) {
  std::shared_ptr<SimUlmora> host = ArgHost<SimUlmora>(L, 1);
  host->ScriptEvaluate(ArgString(L, 2), ToVariant(L, 3));
  return 0;
}

int Dialogs(lua_State* L) {
  lua_pushboolean(L, ArgHost<SimUlmora>(L, 1)->dialogs());
  return 1;
}

int Batches(lua_State* L) {
  PushStrings(L, ArgHost<SimUlmora>(L, 1)->batches());
  return 1;
}

}  // namespace

void PushUlmoraFunctions(lua_State* L) {
  const luaL_Reg functions[] = {{"AddEntity", Protected<AddEntity>},
                                {"Entity", Protected<Entity>},
                                {"Entities", Protected<Entities>},
                                {"Select", Protected<Select>},
                                {"MarkCreated", Protected<MarkCreated>},
                                {"MarkUpdated", Protected<MarkUpdated>},
                                {"Selection", Protected<Selection>},
                                {"Created", Protected<Created>},
                                {"Updated", Protected<Updated>},
                                {"CountsAsText", Protected<CountsAsText>},
                                {"ScriptEvaluate", Protected<ScriptEvaluate>},
                                {"Dialogs", Protected<Dialogs>},
                                {"Batches", Protected<Batches>},
                                {nullptr, nullptr}};
  luaL_newlib(L, functions);
  AddSurfaceFunctions(L);
}

}  // namespace qvsh
