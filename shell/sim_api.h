#ifndef SHELL_SIM_API_H_
#define SHELL_SIM_API_H_

#include <memory>
#include <string>

#include <lua.hpp>

#include "hosts/simulators.h"
#include "shell/lua_errors.h"
#include "shell/lua_values.h"

namespace qvsh {

// What a bad argument says was expected, by the class the function wants.
template <class Sim>
inline constexpr const char* kSimExpected = nullptr;
template <>
inline constexpr const char* kSimExpected<qorvel::hosts::SimObject> =
    "simulated host or object expected";
template <>
inline constexpr const char* kSimExpected<qorvel::hosts::SimHost> = "simulated host expected";
template <>
inline constexpr const char* kSimExpected<qorvel::hosts::SimTarvik> = "simulated Tarvik expected";
template <>
inline constexpr const char* kSimExpected<qorvel::hosts::SimUlmora> = "simulated Ulmora expected";

// The simulated object of class `Sim` at argument `arg`, e.g. ArgHost<SimUlmora>(L, 1); a bad
// argument for anything else.
template <class Sim>
std::shared_ptr<Sim> ArgHost(lua_State* L, int arg) {
  static_assert(kSimExpected<Sim> != nullptr, "say what a bad argument expected");
  const qorvel::AutomationObject* object = TestObject(L, arg);
  auto sim = object ? std::dynamic_pointer_cast<Sim>(*object) : nullptr;
  if (!sim) throw ArgError(arg, kSimExpected<Sim>);
  return sim;
}

// Each pushes a new table of the functions that set up and inspect one kind of simulated host:
// Sim.Tarvik and Sim.Ulmora.
void PushTarvikFunctions(lua_State* L);
void PushUlmoraFunctions(lua_State* L);
// Adds the surface functions to the Sim.Ulmora table on the top of the stack.
void AddSurfaceFunctions(lua_State* L);

}  // namespace qvsh

#endif  // SHELL_SIM_API_H_
