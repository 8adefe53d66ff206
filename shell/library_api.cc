// The library's own face: the in-process server calls and the enumerations of the type library.
#include "qorvel/frame/type_library.h"
#include "qorvel/server/registration.h"
#include "shell/lua_errors.h"
#include "shell/qvsh.h"

namespace qvsh {
namespace {

// The server calls give their results as the platform does: 0 for S_OK, 1 for S_FALSE.
int RegisterServer(lua_State* L) {
  lua_pushinteger(L, qorvel::DllRegisterServer());
  return 1;
}

int UnregisterServer(lua_State* L) {
  lua_pushinteger(L, qorvel::DllUnregisterServer());
  return 1;
}

int CanUnloadNow(lua_State* L) {
  lua_pushboolean(L, qorvel::DllCanUnloadNow() == qorvel::hresult::kOk);
  return 1;
}

}  // namespace

void OpenLibrary(lua_State* L) {
  lua_register(L, "RegisterServer", Protected<RegisterServer>);
  lua_register(L, "UnregisterServer", Protected<UnregisterServer>);
  lua_register(L, "CanUnloadNow", Protected<CanUnloadNow>);
  for (const qorvel::EnumInfo& e : qorvel::TheTypeLibrary().enums) {
    for (const auto& [name, value] : e.members) {
      lua_pushinteger(L, value);
      lua_setglobal(L, name.c_str());
    }
  }
}

}  // namespace qvsh
