// The simulated hosts as scripts drive them: the global table Sim, with what every host shares
// at its top and a part for each kind of host (Sim.Tarvik, Sim.Ulmora). A host is the
// automation object itself (Sim.RunTarvik(), Sim.LastStarted(...), GetObject(...)); its own
// members stay reachable as host.version or host:Execute(...), so the controls here are plain
// functions. Those of every simulated object (faults, going away, the log) take an object of a
// host as well as a host.
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "hosts/call_log.h"
#include "hosts/host_table.h"
#include "hosts/simulators.h"
#include "qorvel/platform/text.h"
#include "shell/lua_errors.h"
#include "shell/lua_values.h"
#include "shell/qvsh.h"
#include "shell/sim_api.h"

namespace qvsh {
namespace {

using qorvel::EqualsNoCase;
using qorvel::hosts::HostPreset;
using qorvel::hosts::SimHost;
using qorvel::hosts::SimObject;

// The classes the simulators register under, as presets name them.
const char* const kSimulatedClasses[] = {qorvel::hosts::kZebrinClass, qorvel::hosts::kTarvikClass,
                                         qorvel::hosts::kUlmoraClass};

std::chrono::milliseconds ArgDelay(lua_State* L, int arg) {
  const lua_Integer ms = OptInteger(L, arg, 0);
  if (ms < 0) throw ArgError(arg, "a delay of 0 ms or more expected");
  return std::chrono::milliseconds(ms);
}

int32_t ArgNumber32(lua_State* L, int arg) {
  const lua_Integer n = ArgInteger(L, arg);
  if (n < INT32_MIN || n > INT32_MAX) throw ArgError(arg, "beyond 32 bits");
  return int32_t(n);
}

std::string ArgClass(lua_State* L, int arg) {
  const std::string name = ArgString(L, arg);
  for (const char* known : kSimulatedClasses) {
    if (EqualsNoCase(name, known)) return name;
  }
  throw ArgError(
      arg, "\"Zebrin.Document\", \"Tarvik.Document\" or \"Ulmora.Application\" expected, got \"" +
               name + '"');
}

// Calls `each(name, index)` for every entry of the table at `index`, whose keys must be texts.
// `where` names the table in messages about argument `arg`.
template <class Each>
void ForEachNamed(lua_State* L, int arg, int index, const std::string& where, Each each) {
  index = lua_absindex(L, index);
  if (lua_type(L, index) != LUA_TTABLE) throw ArgError(arg, where + ": a table expected");
  lua_pushnil(L);
  while (lua_next(L, index) != 0) {
    if (lua_type(L, -2) != LUA_TSTRING) throw ArgError(arg, where + ": names expected as keys");
    each(StringAt(L, -2), lua_gettop(L));
    lua_pop(L, 1);
  }
}

bool FlagAt(lua_State* L, int arg, int index, const std::string& where) {
  if (lua_type(L, index) != LUA_TBOOLEAN) throw ArgError(arg, where + ": true or false expected");
  return lua_toboolean(L, index);
}

// {number, description}, the arguments of FailCommand and FailMember after the name.
HostPreset::Fault FaultAt(lua_State* L, int arg, int index, const std::string& where) {
  const std::string expected = where + ": {number, description} expected";
  if (lua_type(L, index) != LUA_TTABLE) throw ArgError(arg, expected);
  lua_rawgeti(L, index, 1);
  lua_rawgeti(L, index, 2);
  int is_integer = 0;
  const lua_Integer number = lua_tointegerx(L, -2, &is_integer);
  if (!is_integer || number < INT32_MIN || number > INT32_MAX || lua_type(L, -1) != LUA_TSTRING) {
    throw ArgError(arg, expected);
  }
  HostPreset::Fault fault{int32_t(number), StringAt(L, -1)};
  lua_pop(L, 2);
  return fault;
}

// {version=, busy=, lingerOnExit=, replies={[command]=output},
//  failCommands={[command]={number, description}}, failMembers={[member]={...}}}
HostPreset ArgPreset(lua_State* L, int arg) {
  HostPreset preset;
  ForEachNamed(L, arg, arg, "settings", [&](const std::string& name, int value) {
    if (name == "version") {
      preset.version = ToVariant(L, value);
    } else if (name == "busy") {
      preset.busy = FlagAt(L, arg, value, name);
    } else if (name == "lingerOnExit") {
      preset.linger_on_exit = FlagAt(L, arg, value, name);
    } else if (name == "replies") {
      ForEachNamed(L, arg, value, name, [&](const std::string& command, int output) {
        if (lua_type(L, output) != LUA_TSTRING) throw ArgError(arg, "replies: texts expected");
        preset.replies[command] = StringAt(L, output);
      });
    } else if (name == "failCommands" || name == "failMembers") {
      auto& faults = name == "failCommands" ? preset.failing_commands : preset.failing_members;
      ForEachNamed(L, arg, value, name, [&](const std::string& key, int fault) {
        faults[key] = FaultAt(L, arg, fault, name + "." + key);
      });
    } else {
      throw ArgError(arg, "unknown setting '" + name + "'");
    }
  });
  return preset;
}

int RunZebrin(lua_State* L) {
  PushObject(L, qorvel::hosts::RunZebrin(ArgDelay(L, 1)));
  return 1;
}

int RunTarvik(lua_State* L) {
  PushObject(L, qorvel::hosts::RunTarvik(ArgDelay(L, 1)));
  return 1;
}

int RunUlmora(lua_State* L) {
  PushObject(L, qorvel::hosts::RunUlmora(ArgDelay(L, 1)));
  return 1;
}

int Install(lua_State* L) {
  qorvel::hosts::InstallSimulatedHosts(ArgDelay(L, 1));
  return 0;
}

int SetStartDelay(lua_State* L) {
  qorvel::hosts::SetStartDelay(ArgDelay(L, 1));
  return 0;
}

int LastStarted(lua_State* L) {
  std::shared_ptr<SimHost> host = qorvel::hosts::LastStarted(ArgString(L, 1));
  if (!host) return 0;
  PushObject(L, std::move(host));
  return 1;
}

int Started(lua_State* L) {
  const std::vector<std::shared_ptr<SimHost>> hosts = qorvel::hosts::StartedHosts();
  lua_createtable(L, int(hosts.size()), 0);
  for (size_t i = 0; i < hosts.size(); ++i) {
    PushObject(L, hosts[i]);
    lua_rawseti(L, -2, lua_Integer(i + 1));
  }
  return 1;
}

// Sim.NextHosts(class, settings): every host of the class made from now on starts with them;
// Sim.NextHosts(class): plain hosts again.
int NextHosts(lua_State* L) {
  const std::string class_name = ArgClass(L, 1);
  auto table = qorvel::hosts::HostTable::Of(qorvel::Env::Current());
  if (lua_isnoneornil(L, 2)) {
    table->ClearPreset(class_name);
  } else {
    table->SetPreset(class_name, ArgPreset(L, 2));
  }
  return 0;
}

int SetVersion(lua_State* L) {
  ArgHost<SimHost>(L, 1)->set_version(ToVariant(L, 2));
  return 0;
}

int ScriptReply(lua_State* L) {
  ArgHost<SimHost>(L, 1)->ScriptReply(ArgString(L, 2), ArgString(L, 3));
  return 0;
}

int FailCommand(lua_State* L) {
  ArgHost<SimHost>(L, 1)->FailCommand(ArgString(L, 2), ArgNumber32(L, 3), ArgString(L, 4));
  return 0;
}

int FailMember(lua_State* L) {
  ArgHost<SimObject>(L, 1)->FailMember(ArgString(L, 2), ArgNumber32(L, 3), ArgString(L, 4));
  return 0;
}

int ClearFaults(lua_State* L) {
  ArgHost<SimObject>(L, 1)->ClearFaults();
  return 0;
}

int GoAway(lua_State* L) {
  ArgHost<SimObject>(L, 1)->GoAway();
  return 0;
}

// Sim.VanishAt(object, n): answers n - 1 more calls, and goes away at the n-th.
int VanishAt(lua_State* L) {
  std::shared_ptr<SimObject> object = ArgHost<SimObject>(L, 1);
  const lua_Integer n = ArgInteger(L, 2);
  if (n < 1) throw ArgError(2, "a call count of 1 or more expected");
  object->VanishAt(n);
  return 0;
}

int Gone(lua_State* L) {
  lua_pushboolean(L, ArgHost<SimObject>(L, 1)->gone());
  return 1;
}

int SetBusy(lua_State* L) {
  ArgHost<SimHost>(L, 1)->busy = lua_toboolean(L, 2);
  return 0;
}

int LingerOnExit(lua_State* L) {
  ArgHost<SimHost>(L, 1)->linger_on_exit = lua_toboolean(L, 2);
  return 0;
}

int Log(lua_State* L) {
  PushStrings(L, qorvel::hosts::LogLines(*ArgHost<SimObject>(L, 1)));
  return 1;
}

// Sim.Commands(host [, "Execute" or "ExecuteEx"])
int Commands(lua_State* L) {
  std::shared_ptr<SimHost> host = ArgHost<SimHost>(L, 1);
  std::string member;
  if (!lua_isnoneornil(L, 2)) {
    member = ArgString(L, 2);
    if (!EqualsNoCase(member, "Execute") && !EqualsNoCase(member, "ExecuteEx")) {
      throw ArgError(2, "\"Execute\" or \"ExecuteEx\" expected");
    }
  }
  PushStrings(L, host->commands(member));
  return 1;
}

int ClearLog(lua_State* L) {
  ArgHost<SimObject>(L, 1)->ClearLog();
  return 0;
}

}  // namespace

void OpenSimulators(lua_State* L) {
  const luaL_Reg functions[] = {{"RunZebrin", Protected<RunZebrin>},
                                {"RunTarvik", Protected<RunTarvik>},
                                {"RunUlmora", Protected<RunUlmora>},
                                {"Install", Protected<Install>},
                                {"SetStartDelay", Protected<SetStartDelay>},
                                {"LastStarted", Protected<LastStarted>},
                                {"Started", Protected<Started>},
                                {"NextHosts", Protected<NextHosts>},
                                {"SetVersion", Protected<SetVersion>},
                                {"ScriptReply", Protected<ScriptReply>},
                                {"FailCommand", Protected<FailCommand>},
                                {"FailMember", Protected<FailMember>},
                                {"ClearFaults", Protected<ClearFaults>},
                                {"GoAway", Protected<GoAway>},
                                {"VanishAt", Protected<VanishAt>},
                                {"Gone", Protected<Gone>},
                                {"SetBusy", Protected<SetBusy>},
                                {"LingerOnExit", Protected<LingerOnExit>},
                                {"Log", Protected<Log>},
                                {"Commands", Protected<Commands>},
                                {"ClearLog", Protected<ClearLog>},
                                {nullptr, nullptr}};
  luaL_newlib(L, functions);
  PushTarvikFunctions(L);
  lua_setfield(L, -2, "Tarvik");
  PushUlmoraFunctions(L);
  lua_setfield(L, -2, "Ulmora");
  lua_setglobal(L, "Sim");
}

}  // namespace qvsh
