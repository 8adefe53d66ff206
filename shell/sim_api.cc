// The simulated hosts and platform services as scripts see them: the global tables Sim,
// Registry and Regional, and MessageBoxes().
#include <string>

#include "hosts/simulators.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/numbers.h"
#include "shell/lua_values.h"

namespace qvsh {
namespace {

using qorvel::hosts::SimHost;
using qorvel::hosts::SimTarvik;

std::shared_ptr<SimHost> CheckHost(lua_State* L, int index) {
  auto host = std::dynamic_pointer_cast<SimHost>(CheckObject(L, index));
  if (!host) luaL_argerror(L, index, "not a simulated host");
  return host;
}

std::shared_ptr<SimTarvik> CheckTarvik(lua_State* L, int index) {
  auto host = std::dynamic_pointer_cast<SimTarvik>(CheckObject(L, index));
  if (!host) luaL_argerror(L, index, "not a simulated Tarvik");
  return host;
}

std::chrono::milliseconds Delay(lua_State* L, int index) {
  return std::chrono::milliseconds(luaL_optinteger(L, index, 0));
}

SimTarvik::Box CheckBox(lua_State* L, int first) {
  SimTarvik::Box box;
  for (int i = 0; i < 6; ++i) box[i] = luaL_checknumber(L, first + i);
  return box;
}

void PushStrings(lua_State* L, const std::vector<std::string>& lines) {
  lua_createtable(L, int(lines.size()), 0);
  for (size_t i = 0; i < lines.size(); ++i) {
    lua_pushstring(L, lines[i].c_str());
    lua_rawseti(L, -2, lua_Integer(i + 1));
  }
}

qorvel::hosts::EntityKind CheckKind(lua_State* L, int index) {
  const char* kinds[] = {"toolpath", "pattern", "workplane", nullptr};
  return static_cast<qorvel::hosts::EntityKind>(luaL_checkoption(L, index, nullptr, kinds));
}

const luaL_Reg kSim[] = {
    {"RunZebrin",
     [](lua_State* L) {
       PushObject(L, qorvel::hosts::RunZebrin(Delay(L, 1)));
       return 1;
     }},
    {"RunTarvik",
     [](lua_State* L) {
       PushObject(L, qorvel::hosts::RunTarvik(Delay(L, 1)));
       return 1;
     }},
    {"Install",
     [](lua_State* L) {
       qorvel::hosts::InstallSimulatedHosts(Delay(L, 1));
       return 0;
     }},
    {"LastStarted",
     [](lua_State* L) {
       auto host = qorvel::hosts::LastStarted(luaL_checkstring(L, 1));
       if (!host) return 0;
       PushObject(L, host);
       return 1;
     }},
    {"SetVersion",
     [](lua_State* L) {
       return Guarded(L, [&] {
         CheckHost(L, 1)->set_version(ToVariant(L, 2));
         return 0;
       });
     }},
    {"ScriptReply",
     [](lua_State* L) {
       CheckHost(L, 1)->ScriptReply(luaL_checkstring(L, 2), luaL_checkstring(L, 3));
       return 0;
     }},
    {"FailMember",
     [](lua_State* L) {
       CheckHost(L, 1)->FailMember(luaL_checkstring(L, 2), int32_t(luaL_checkinteger(L, 3)),
                                   luaL_checkstring(L, 4));
       return 0;
     }},
    {"GoAway",
     [](lua_State* L) {
       CheckHost(L, 1)->GoAway();
       return 0;
     }},
    {"Log",
     [](lua_State* L) {
       std::vector<std::string> lines;
       for (const auto& call : CheckHost(L, 1)->log()) {
         std::string line = call.member;
         for (const auto& arg : call.args) line += " [" + arg.ToText() + "]";
         lines.push_back(line);
       }
       PushStrings(L, lines);
       return 1;
     }},
    {"Commands",
     [](lua_State* L) {
       PushStrings(L, CheckHost(L, 1)->commands());
       return 1;
     }},
    {"ClearLog",
     [](lua_State* L) {
       CheckHost(L, 1)->ClearLog();
       return 0;
     }},
    {"LoadModel",
     [](lua_State* L) {
       auto host = CheckTarvik(L, 1);
       host->LoadModel(CheckBox(L, 2), int32_t(luaL_checkinteger(L, 8)));
       return 0;
     }},
    {"AddToolpath",
     [](lua_State* L) {
       auto host = CheckTarvik(L, 1);
       host->AddToolpath(luaL_checkstring(L, 2), CheckBox(L, 3));
       return 0;
     }},
    {"AddPattern",
     [](lua_State* L) {
       auto host = CheckTarvik(L, 1);
       host->AddPattern(luaL_checkstring(L, 2), CheckBox(L, 3));
       return 0;
     }},
    {"SetActive",
     [](lua_State* L) {
       return Guarded(L, [&] {
         CheckTarvik(L, 1)->SetActive(CheckKind(L, 2), luaL_checkstring(L, 3));
         return 0;
       });
     }},
    {nullptr, nullptr}};

}  // namespace

void OpenSimulators(lua_State* L) {
  luaL_newlib(L, kSim);
  lua_setglobal(L, "Sim");

  lua_newtable(L);
  lua_pushcfunction(L, [](lua_State* L) {
    return Guarded(L, [&] {
      qorvel::Env::Current().registry().LoadRegFile(luaL_checkstring(L, 1));
      return 0;
    });
  });
  lua_setfield(L, -2, "Load");
  lua_setglobal(L, "Registry");

  lua_newtable(L);
  lua_pushcfunction(L, [](lua_State* L) {
    qorvel::SetDecimalSymbol(qorvel::Env::Current().registry(), luaL_checkstring(L, 1));
    return 0;
  });
  lua_setfield(L, -2, "SetDecimal");
  lua_setglobal(L, "Regional");

  lua_register(L, "MessageBoxes", [](lua_State* L) {
    const auto shown = qorvel::Env::Current().messages().shown();
    lua_createtable(L, int(shown.size()), 0);
    for (size_t i = 0; i < shown.size(); ++i) {
      lua_createtable(L, 0, 3);
      lua_pushstring(L, shown[i].text.c_str());
      lua_setfield(L, -2, "text");
      lua_pushinteger(L, shown[i].style);
      lua_setfield(L, -2, "style");
      lua_pushstring(L, shown[i].title.c_str());
      lua_setfield(L, -2, "title");
      lua_rawseti(L, -2, lua_Integer(i + 1));
    }
    return 1;
  });
}

}  // namespace qvsh
