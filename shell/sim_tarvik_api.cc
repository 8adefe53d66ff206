// The simulated Tarvik's state, as scripts set it up and read it back: the model, named
// toolpaths, patterns and workplanes, the block, the tool and the units.
#include <memory>
#include <string>
#include <vector>

#include "hosts/sim_tarvik.h"
#include "shell/lua_errors.h"
#include "shell/lua_values.h"
#include "shell/sim_api.h"

namespace qvsh {
namespace {

using qorvel::hosts::EntityKind;
using qorvel::hosts::SimTarvik;

const char* const kLimitNames[] = {"xmin", "xmax", "ymin", "ymax", "zmin", "zmax"};

std::vector<double> ArgNumbers(lua_State* L, int first, int count) {
  std::vector<double> numbers;
  for (int i = 0; i < count; ++i) numbers.push_back(ArgNumber(L, first + i));
  return numbers;
}

// xmin, ymin, zmin, xmax, ymax, zmax
SimTarvik::Box ArgBox(lua_State* L, int first) {
  SimTarvik::Box box;
  for (int i = 0; i < 6; ++i) box[i] = ArgNumber(L, first + i);
  return box;
}

EntityKind ArgKind(lua_State* L, int arg) {
  const char* const kinds[] = {"toolpath", "pattern", "workplane", nullptr};
  return static_cast<EntityKind>(ArgOption(L, arg, kinds));
}

// Sim.Tarvik.LoadModel(tarvik, xmin, ymin, zmin, xmax, ymax, zmax [, components])
int LoadModel(lua_State* L) {
  const auto components = OptInteger(L, 8, 1);
  if (components < 0 || components > INT32_MAX) throw ArgError(8, "a component count expected");
  ArgHost<SimTarvik>(L, 1)->LoadModel(ArgBox(L, 2), int32_t(components));
  return 0;
}

int ClearModel(lua_State* L) {
  ArgHost<SimTarvik>(L, 1)->ClearModel();
  return 0;
}

int AddToolpath(lua_State* L) {
  ArgHost<SimTarvik>(L, 1)->AddToolpath(ArgString(L, 2), ArgBox(L, 3));
  return 0;
}

int AddPattern(lua_State* L) {
  ArgHost<SimTarvik>(L, 1)->AddPattern(ArgString(L, 2), ArgBox(L, 3));
  return 0;
}

// Sim.Tarvik.AddWorkplane(tarvik, name, x, y, z, then the three axis vectors)
int AddWorkplane(lua_State* L) {
  ArgHost<SimTarvik>(L, 1)->AddEntity(EntityKind::kWorkplane, ArgString(L, 2),
                                      ArgNumbers(L, 3, 12));
  return 0;
}

int SetActive(lua_State* L) {
  ArgHost<SimTarvik>(L, 1)->SetActive(ArgKind(L, 2), ArgString(L, 3));
  return 0;
}

// {defined=, xmin=, ..., zmax=, locked={xmin=, ...}}
int Block(lua_State* L) {
  const SimTarvik::Block block = ArgHost<SimTarvik>(L, 1)->block();
  lua_createtable(L, 0, 8);
  lua_pushboolean(L, block.defined);
  lua_setfield(L, -2, "defined");
  lua_createtable(L, 0, 6);
  for (int i = 0; i < 6; ++i) {
    lua_pushnumber(L, block.limits[i]);
    lua_setfield(L, -3, kLimitNames[i]);
    lua_pushboolean(L, block.locked[i]);
    lua_setfield(L, -2, kLimitNames[i]);
  }
  lua_setfield(L, -2, "locked");
  return 1;
}

// The tool settings as sent: {DIAMETER="10.", TOOLTYPE="TIPRADIUSED", ...}
int Tool(lua_State* L) {
  const std::map<std::string, std::string> tool = ArgHost<SimTarvik>(L, 1)->tool();
  lua_createtable(L, 0, int(tool.size()));
  for (const auto& [name, value] : tool) {
    PushString(L, value);
    SetField(L, name);
  }
  return 1;
}

int Units(lua_State* L) {
  PushString(L, ArgHost<SimTarvik>(L, 1)->units());
  return 1;
}

}  // namespace

void PushTarvikFunctions(lua_State* L) {
  const luaL_Reg functions[] = {{"LoadModel", Protected<LoadModel>},
                                {"ClearModel", Protected<ClearModel>},
                                {"AddToolpath", Protected<AddToolpath>},
                                {"AddPattern", Protected<AddPattern>},
                                {"AddWorkplane", Protected<AddWorkplane>},
                                {"SetActive", Protected<SetActive>},
                                {"Block", Protected<Block>},
                                {"Tool", Protected<Tool>},
                                {"Units", Protected<Units>},
                                {nullptr, nullptr}};
  luaL_newlib(L, functions);
}

}  // namespace qvsh
