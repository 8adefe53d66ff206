// qvsh: runs a Lua script against the library's dispatch face and the simulated hosts, or reads
// statements from standard input when no script is named.
#include <unistd.h>

#include <iostream>
#include <string>

#include "hosts/simulators.h"
#include "qorvel/server/registration.h"
#include "shell/lua_errors.h"
#include "shell/lua_holders.h"
#include "shell/qvsh.h"
#include "shell/shell_env.h"

namespace {

constexpr const char* kUsage =
    "usage: qvsh [script [args...]]\n"
    "Runs the Lua script (\"-\" for standard input) against QorvelOLE with the simulated hosts\n"
    "installed. With no script, reads statements from standard input and prints the values of\n"
    "expressions. Reference: docs/qvsh.md\n";

// What a user finds on a machine where the library and the hosts are installed.
void SetUpLibrary() {
  qorvel::hosts::InstallSimulatedHosts();
  qorvel::DllRegisterServer();
}

lua_State* NewShell() {
  lua_State* L = qvsh::NewState();
  if (L == nullptr) return nullptr;
  luaL_openlibs(L);
  qvsh::OpenErrors(L);
  qvsh::OpenValues(L);
  qvsh::OpenArrays(L);
  qvsh::OpenObjects(L);
  qvsh::OpenLibrary(L);
  qvsh::OpenPlatform(L);
  qvsh::OpenForms(L);
  qvsh::OpenSimulators(L);
  return L;
}

// Automation errors stay as they are, to print as "Error <number>: <description>"; Lua's own
// errors get a traceback.
int MessageHandler(lua_State* L) {
  if (lua_type(L, 1) == LUA_TTABLE) return 1;
  qvsh::PushString(L, qvsh::ErrorText(L, 1) + "\n");  // whole: a message may hold zero bytes
  luaL_traceback(L, L, nullptr, 1);
  lua_concat(L, 2);
  return 1;
}

// Calls the function below its `nargs` arguments; reports a failure on standard error.
bool Call(lua_State* L, int nargs, int nresults) {
  const int base = lua_gettop(L) - nargs;
  lua_pushcfunction(L, qvsh::Protected<MessageHandler>);
  lua_insert(L, base);
  const int status = lua_pcall(L, nargs, nresults, base);
  lua_remove(L, base);
  if (status == LUA_OK) return true;
  const std::string text = qvsh::ErrorText(L, -1);
  std::cerr << (lua_type(L, -1) == LUA_TTABLE ? "" : "qvsh: ") << text << std::endl;
  lua_pop(L, 1);
  return false;
}

// The script gets its arguments as `...` and in the global `arg`, as lua gives them; "-" reads
// the script from standard input.
int RunScript(lua_State* L, int argc, char** argv) {
  lua_createtable(L, argc - 2, 2);
  for (int i = 0; i < argc; ++i) {
    lua_pushstring(L, argv[i]);
    lua_rawseti(L, -2, i - 1);
  }
  lua_setglobal(L, "arg");
  const std::string script = argv[1];
  if (luaL_loadfile(L, script == "-" ? nullptr : script.c_str()) != LUA_OK) {
    std::cerr << "qvsh: " << lua_tostring(L, -1) << std::endl;
    return 1;
  }
  for (int i = 2; i < argc; ++i) lua_pushstring(L, argv[i]);
  return Call(L, argc - 2, 0) ? 0 : 1;
}

// An expression is loaded to return its values; anything else as a statement. A chunk that
// ends too early (an open `function` or `do`) is LUA_ERRSYNTAX with "<eof>" at the end.
int Load(lua_State* L, const std::string& chunk) {
  const std::string expression = "return " + chunk;
  if (luaL_loadbuffer(L, expression.data(), expression.size(), "=stdin") == LUA_OK) return LUA_OK;
  lua_pop(L, 1);
  return luaL_loadbuffer(L, chunk.data(), chunk.size(), "=stdin");
}

bool Incomplete(lua_State* L, int status) {
  const std::string message = status == LUA_ERRSYNTAX ? lua_tostring(L, -1) : "";
  const std::string eof = "<eof>";
  return message.size() >= eof.size() &&
         message.compare(message.size() - eof.size(), eof.size(), eof) == 0;
}

void PrintResults(lua_State* L) {
  const int count = lua_gettop(L);
  if (count == 0) return;
  lua_getglobal(L, "print");
  lua_insert(L, 1);
  Call(L, count, 0);
}

int Repl(lua_State* L) {
  const bool prompt = isatty(STDIN_FILENO);
  std::string chunk;
  std::string line;
  while ((!prompt || std::cout << (chunk.empty() ? "qvsh> " : ">> ") << std::flush) &&
         std::getline(std::cin, line)) {
    chunk += line;
    const int status = Load(L, chunk);
    if (Incomplete(L, status)) {
      lua_pop(L, 1);
      chunk += "\n";
      continue;
    }
    chunk.clear();
    if (status != LUA_OK) {
      std::cerr << "qvsh: " << lua_tostring(L, -1) << std::endl;
    } else if (Call(L, 0, LUA_MULTRET)) {
      PrintResults(L);
    }
    lua_settop(L, 0);
  }
  if (prompt) std::cout << std::endl;
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && (std::string(argv[1]) == "-h" || std::string(argv[1]) == "--help")) {
    std::cout << kUsage;
    return 0;
  }
  qvsh::ShellEnv env;
  qorvel::Env* const previous = qorvel::Env::Install(&env);
  SetUpLibrary();
  lua_State* L = NewShell();
  int code = 1;
  if (L == nullptr) {
    std::cerr << "qvsh: not enough memory for a Lua state" << std::endl;
  } else {
    code = argc > 1 ? RunScript(L, argc, argv) : Repl(L);
    qvsh::CloseState(L);  // releases the script's objects while the environment is still there
  }
  qorvel::Env::Install(previous);
  return code;
}
