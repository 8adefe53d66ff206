#ifndef SHELL_QVSH_H_
#define SHELL_QVSH_H_

#include <lua.hpp>

namespace qvsh {

// The globals qvsh gives a script, by group. OpenErrors (lua_errors.h) comes first.
void OpenValues(lua_State* L);      // Bool, Collection
void OpenArrays(lua_State* L);      // SafeArray, ArrayOf
void OpenObjects(lua_State* L);     // CreateObject, GetObject and the object metatable
void OpenLibrary(lua_State* L);     // RegisterServer, UnregisterServer, CanUnloadNow, enumerations
void OpenPlatform(lua_State* L);    // Registry, Regional, MessageBoxes, ClearMessageBoxes
void OpenForms(lua_State* L);       // Form, LoadForm, Resize, Size, Text1, Advise, Unadvise,
                                    // Clipboard
void OpenSimulators(lua_State* L);  // Sim

}  // namespace qvsh

#endif  // SHELL_QVSH_H_
