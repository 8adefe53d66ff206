// The platform services as scripts see them: the tables Registry and Regional, and the message
// boxes shown so far.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "qorvel/frame/type_library.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/numbers.h"
#include "qorvel/platform/text.h"
#include "shell/lua_errors.h"
#include "shell/qvsh.h"
#include "shell/shell_env.h"

namespace qvsh {
namespace {

using qorvel::RegKey;

qorvel::Registry& TheRegistry() { return qorvel::Env::Current().registry(); }

// The in-memory hive behind it, which loads .reg files and knows which keys exist.
qorvel::MemoryRegistry& TheHive() {
  qorvel::PortableEnv* portable = qorvel::PortableEnvOf(qorvel::Env::Current());
  if (portable == nullptr) {
    qorvel::Raise(qorvel::err::kInvalidCall,
                  "Registry.Load and Registry.Exists need the portable platform");
  }
  return portable->registry();
}

struct Key {
  RegKey root;
  std::string path;
};

// "HKEY_CLASSES_ROOT\QorvelOLE.Zebrin" or "HKCR\QorvelOLE.Zebrin".
Key ArgKey(lua_State* L, int arg) {
  static const struct {
    const char* name;
    const char* abbreviation;
    RegKey root;
  } kRoots[] = {{"HKEY_CLASSES_ROOT", "HKCR", qorvel::root_key::kClassesRoot},
                {"HKEY_CURRENT_USER", "HKCU", qorvel::root_key::kCurrentUser},
                {"HKEY_LOCAL_MACHINE", "HKLM", qorvel::root_key::kLocalMachine},
                {"HKEY_USERS", "HKU", qorvel::root_key::kUsers},
                {"HKEY_CURRENT_CONFIG", "HKCC", qorvel::root_key::kCurrentConfig}};
  const std::string text = ArgString(L, arg);
  const size_t cut = text.find('\\');
  const std::string root = text.substr(0, cut);
  for (const auto& r : kRoots) {
    if (qorvel::EqualsNoCase(root, r.name) || qorvel::EqualsNoCase(root, r.abbreviation)) {
      return Key{r.root, cut == std::string::npos ? "" : text.substr(cut + 1)};
    }
  }
  throw ArgError(arg,
                 "a key under HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, "
                 "HKEY_USERS or HKEY_CURRENT_CONFIG expected");
}

void PushRegValue(lua_State* L, const qorvel::RegValue& value) {
  const std::vector<uint8_t>& data = value.data;
  if ((value.type == qorvel::reg_type::kDword && data.size() == 4) ||
      (value.type == qorvel::reg_type::kQword && data.size() == 8)) {
    uint64_t n = 0;
    for (size_t i = data.size(); i-- > 0;) n = n << 8 | data[i];
    lua_pushinteger(
        L, value.type == qorvel::reg_type::kDword ? lua_Integer(uint32_t(n)) : lua_Integer(n));
    return;
  }
  size_t size = data.size();
  const bool text =
      value.type == qorvel::reg_type::kString || value.type == qorvel::reg_type::kExpandString;
  if (text && size > 0 && data[size - 1] == 0) --size;  // the terminating zero
  lua_pushlstring(L, reinterpret_cast<const char*>(data.data()), size);
}

int Load(lua_State* L) {
  TheHive().LoadRegFile(ArgString(L, 1));
  return 0;
}

// Registry.Get(key [, name]): the value as text or number; nil when it isn't there.
int Get(lua_State* L) {
  const Key key = ArgKey(L, 1);
  const std::string name = lua_isnoneornil(L, 2) ? "" : ArgString(L, 2);
  const std::optional<qorvel::RegValue> value = TheRegistry().GetValue(key.root, key.path, name);
  if (!value) return 0;
  PushRegValue(L, *value);
  return 1;
}

int Exists(lua_State* L) {
  const Key key = ArgKey(L, 1);
  lua_pushboolean(L, TheHive().KeyExists(key.root, key.path));
  return 1;
}

// A currency symbol numbers can be read with: some text, and no digit in it. The decimal and
// grouping symbols have the platform's own, stricter checks.
void CheckSymbol(int arg, const std::string& text, const char* what) {
  if (text.empty() || text.find_first_of("0123456789") != std::string::npos) {
    throw ArgError(arg, std::string(what) + " symbol expected: one or more characters, no digits");
  }
}

// A refused symbol is the platform's error 5, with its reason.
int SetDecimal(lua_State* L) {
  qorvel::SetDecimalSymbol(TheRegistry(), ArgString(L, 1));
  return 0;
}

// Regional.Set{decimal=, thousand=, currency=}: what it names, all checked before any is set,
// the decimal symbol as SetDecimal checks it. A decimal symbol alone takes the grouping symbol
// out of its way, as SetDecimal does.
int Set(lua_State* L) {
  ArgTable(L, 1);
  for (lua_pushnil(L); lua_next(L, 1) != 0; lua_pop(L, 1)) {
    const std::string key = lua_type(L, -2) == LUA_TSTRING ? StringAt(L, -2) : "";
    if (key != "decimal" && key != "thousand" && key != "currency") {
      throw ArgError(1, "only the fields decimal, thousand and currency expected");
    }
  }
  auto field = [L](const char* name) -> std::optional<std::string> {
    lua_pushstring(L, name);
    const int type = lua_rawget(L, 1);  // as lua_next saw it: no __index to raise past C++ frames
    std::optional<std::string> text;
    if (type == LUA_TSTRING) {
      size_t size = 0;
      const char* data = lua_tolstring(L, -1, &size);
      text = std::string(data, size);
    } else if (type != LUA_TNIL) {
      throw ArgError(1, std::string("text expected in field '") + name + "'");
    }
    lua_pop(L, 1);
    return text;
  };
  const auto decimal = field("decimal");
  const auto thousand = field("thousand");
  const auto currency = field("currency");
  if (currency) CheckSymbol(1, *currency, "a currency");
  const qorvel::NumberSymbols now = qorvel::CurrentNumberSymbols();
  if (decimal) qorvel::CheckDecimalSymbol(*decimal, currency.value_or(now.currency));
  if (thousand) qorvel::CheckGroupingSymbol(*thousand, decimal.value_or(now.decimal));
  if (currency && *currency == decimal.value_or(now.decimal)) {
    throw ArgError(1, "the currency symbol must differ from the decimal symbol");
  }
  // The currency first, since the decimal symbol is checked against the one in force; the
  // grouping symbol last, so one named here wins over the one the decimal symbol moved aside.
  qorvel::Registry& registry = TheRegistry();
  if (currency) {
    registry.SetString(qorvel::root_key::kCurrentUser, qorvel::kInternationalKey, "sCurrency",
                       *currency);
  }
  if (decimal) qorvel::SetDecimalSymbol(registry, *decimal);
  if (thousand) {
    registry.SetString(qorvel::root_key::kCurrentUser, qorvel::kInternationalKey, "sThousand",
                       *thousand);
  }
  return 0;
}

int Decimal(lua_State* L) {
  const std::string symbol = qorvel::CurrentNumberSymbols().decimal;
  lua_pushlstring(L, symbol.data(), symbol.size());
  return 1;
}

// {decimal=, thousand=, currency=}: the symbols now in force.
int Symbols(lua_State* L) {
  const qorvel::NumberSymbols symbols = qorvel::CurrentNumberSymbols();
  lua_createtable(L, 0, 3);
  auto set = [L](const char* name, const std::string& text) {
    lua_pushlstring(L, text.data(), text.size());
    lua_setfield(L, -2, name);
  };
  set("decimal", symbols.decimal);
  set("thousand", symbols.thousand);
  set("currency", symbols.currency);
  return 1;
}

// {{text=, style=, title=}, ...}, oldest first.
int MessageBoxes(lua_State* L) {
  const std::vector<qorvel::Message> shown = ShownMessages().shown();
  lua_createtable(L, int(shown.size()), 0);
  for (size_t i = 0; i < shown.size(); ++i) {
    lua_createtable(L, 0, 3);
    lua_pushlstring(L, shown[i].text.data(), shown[i].text.size());
    lua_setfield(L, -2, "text");
    lua_pushinteger(L, shown[i].style);
    lua_setfield(L, -2, "style");
    lua_pushlstring(L, shown[i].title.data(), shown[i].title.size());
    lua_setfield(L, -2, "title");
    lua_rawseti(L, -2, lua_Integer(i + 1));
  }
  return 1;
}

int ClearMessageBoxes(lua_State*) {
  ShownMessages().Clear();
  return 0;
}

}  // namespace

void OpenPlatform(lua_State* L) {
  const luaL_Reg registry[] = {{"Load", Protected<Load>},
                               {"Get", Protected<Get>},
                               {"Exists", Protected<Exists>},
                               {nullptr, nullptr}};
  luaL_newlib(L, registry);
  lua_setglobal(L, "Registry");
  const luaL_Reg regional[] = {{"SetDecimal", Protected<SetDecimal>},
                               {"Set", Protected<Set>},
                               {"Decimal", Protected<Decimal>},
                               {"Symbols", Protected<Symbols>},
                               {nullptr, nullptr}};
  luaL_newlib(L, regional);
  lua_setglobal(L, "Regional");
  lua_register(L, "MessageBoxes", Protected<MessageBoxes>);
  lua_register(L, "ClearMessageBoxes", Protected<ClearMessageBoxes>);
}

}  // namespace qvsh
