#ifndef SHELL_SIM_API_H_
#define SHELL_SIM_API_H_

#include <lua.hpp>

namespace qvsh {

// Adds the functions that set up and inspect a simulated Tarvik to the table on top of the
// stack (the global Sim).
void AddTarvikFunctions(lua_State* L);
// The same for a simulated Ulmora, and Sim.RunUlmora.
void AddUlmoraFunctions(lua_State* L);

}  // namespace qvsh

#endif  // SHELL_SIM_API_H_
