// qvsh: runs Lua scripts against the library's dispatch face and the simulated hosts, or reads
// statements from standard input when no script is named.
#include <cstdio>
#include <iostream>
#include <string>

#include "hosts/simulators.h"
#include "qorvel/frame/dispatch_face.h"
#include "qorvel/frame/registration.h"
#include "qorvel/frame/type_library.h"
#include "qorvel/machining/tarvik3_face.h"
#include "qorvel/platform/env.h"
#include "qorvel/session/zebrin_face.h"
#include "shell/lua_values.h"

namespace qvsh {
void OpenSimulators(lua_State* L);
}

namespace {

void OpenEnumerations(lua_State* L) {
  for (const qorvel::EnumInfo& e : qorvel::TheTypeLibrary().enums) {
    for (const auto& [name, value] : e.members) {
      lua_pushinteger(L, value);
      lua_setglobal(L, name.c_str());
    }
  }
}

// "Error 60000: Control only supports Tarvik3 onwards" for automation errors, Lua's own
// message otherwise.
std::string Describe(lua_State* L, int index) {
  index = lua_absindex(L, index);
  if (lua_istable(L, index)) {
    lua_getfield(L, index, "number");
    lua_getfield(L, index, "description");
    std::string text = "Error " + std::to_string(lua_tointeger(L, -2)) + ": " +
                       (lua_tostring(L, -1) ? lua_tostring(L, -1) : "");
    lua_pop(L, 2);
    return text;
  }
  const char* message = lua_tostring(L, index);
  return message ? message : "error";
}

bool Run(lua_State* L, int status) {
  if (status == LUA_OK) status = lua_pcall(L, 0, LUA_MULTRET, 0);
  if (status != LUA_OK) {
    std::cerr << Describe(L, -1) << "\n";
    lua_pop(L, 1);
    return false;
  }
  return true;
}

int Repl(lua_State* L) {
  std::string line;
  while (std::cout << "qvsh> " << std::flush, std::getline(std::cin, line)) {
    lua_settop(L, 0);
    // An expression prints its values; anything else runs as a statement.
    int status = luaL_loadstring(L, ("return " + line).c_str());
    if (status != LUA_OK) {
      lua_pop(L, 1);
      status = luaL_loadstring(L, line.c_str());
    }
    if (!Run(L, status)) continue;
    for (int i = 1; i <= lua_gettop(L); ++i) {
      std::cout << luaL_tolstring(L, i, nullptr) << (i < lua_gettop(L) ? "\t" : "\n");
      lua_pop(L, 1);
    }
  }
  std::cout << "\n";
  return 0;
}

// The in-process server calls, by their results: 0 for S_OK, 1 for S_FALSE.
void OpenServer(lua_State* L) {
  lua_register(L, "RegisterServer", [](lua_State* L) {
    lua_pushinteger(L, qorvel::DllRegisterServer());
    return 1;
  });
  lua_register(L, "UnregisterServer", [](lua_State* L) {
    lua_pushinteger(L, qorvel::DllUnregisterServer());
    return 1;
  });
  lua_register(L, "CanUnloadNow", [](lua_State* L) {
    lua_pushboolean(L, qorvel::DllCanUnloadNow() == qorvel::S_OK);
    return 1;
  });
}

}  // namespace

int main(int argc, char** argv) {
  qorvel::Env::Current().messages().set_echo(true);
  qorvel::hosts::InstallSimulatedHosts();
  qorvel::RegisterClassFactory("Zebrin", qorvel::NewZebrinObject);
  qorvel::RegisterClassFactory("Tarvik3", qorvel::NewTarvik3Object);
  qorvel::DllRegisterServer();

  lua_State* L = luaL_newstate();
  luaL_openlibs(L);
  qvsh::OpenValues(L);
  qvsh::OpenObjects(L);
  qvsh::OpenSimulators(L);
  OpenEnumerations(L);
  OpenServer(L);

  int code = 0;
  if (argc > 1) {
    code = Run(L, luaL_loadfile(L, argv[1])) ? 0 : 1;
  } else {
    code = Repl(L);
  }
  lua_close(L);
  return code;
}
