// Automation objects in Lua, after LuaCOM: obj:Method(args), obj.Prop, obj.Prop = v,
// obj:Prop(args) and obj:setProp(args, v) for properties with arguments.
#include <string>
#include <vector>

#include "qorvel/frame/dispatch_face.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env.h"
#include "shell/lua_values.h"

namespace qvsh {
namespace {

using qorvel::AutomationObject;
using qorvel::CallKind;
using qorvel::MemberShape;
using qorvel::Variant;

constexpr const char* kObjectMeta = "qvsh.object";

int CallMethodUnguarded(lua_State* L);

// Calls a member with the Lua arguments from `first` on. By-reference parameters of a typed
// member get variables of their own, whose final values follow the result. Raises C++ errors:
// callers run it inside Guarded.
int CallWith(lua_State* L, const AutomationObject& object, const std::string& member, CallKind kind,
             int first) {
  const int count = lua_gettop(L) - first + 1;
  std::vector<Variant> values(count > 0 ? count : 0);
  for (int i = 0; i < count; ++i) values[i] = ToVariant(L, first + i);
  std::vector<bool> by_ref(values.size(), false);
  if (auto* typed = dynamic_cast<qorvel::ClassObject*>(object.get())) {
    for (const auto& m : typed->interface_info().members) {
      if (qorvel::SameNameNoCase(m.name, member)) {
        for (size_t i = 0; i < m.params.size() && i < by_ref.size(); ++i) {
          by_ref[i] = m.params[i].by_ref;
        }
        break;
      }
    }
  }
  std::vector<Variant> args(values.size());
  for (size_t i = 0; i < values.size(); ++i) {
    args[i] = by_ref[i] ? Variant::Ref(values[i]) : values[i];
  }
  const Variant result = object->Invoke(member, kind, args);
  PushVariant(L, result);
  int pushed = 1;
  for (size_t i = 0; i < values.size(); ++i) {
    if (!by_ref[i]) continue;
    PushVariant(L, values[i]);
    ++pushed;
  }
  return pushed;
}

int CallMethod(lua_State* L) {
  return Guarded(L, [&] { return CallMethodUnguarded(L); });
}

// Everything with a destructor lives in the guarded part: Lua's errors unwind with longjmp.
int CallMethodUnguarded(lua_State* L) {
  const AutomationObject object = CheckObject(L, 1);
  const std::string member = lua_tostring(L, lua_upvalueindex(1));
  const bool put = lua_toboolean(L, lua_upvalueindex(2));
  const auto shape = object->Shape(member);
  const CallKind kind = put ? CallKind::kPropertyPut
                        : shape == MemberShape::kIndexedProperty || shape == MemberShape::kProperty
                            ? CallKind::kPropertyGet
                            : CallKind::kMethod;
  return CallWith(L, object, member, kind, 2);
}

int IndexUnguarded(lua_State* L) {
  const AutomationObject object = CheckObject(L, 1);
  const std::string key = luaL_checkstring(L, 2);
  MemberShape shape = object->Shape(key);
  bool put = false;
  std::string member = key;
  if (shape == MemberShape::kMissing && key.size() > 3 && key.compare(0, 3, "set") == 0) {
    member = key.substr(3);
    shape = object->Shape(member);
    put = shape == MemberShape::kIndexedProperty || shape == MemberShape::kProperty;
  }
  if (shape == MemberShape::kMissing) throw qorvel::Error(qorvel::err::kNoMember);
  if (shape == MemberShape::kProperty && !put) {
    lua_settop(L, 1);
    return CallWith(L, object, member, CallKind::kPropertyGet, 2);
  }
  lua_pushstring(L, member.c_str());
  lua_pushboolean(L, put);
  lua_pushcclosure(L, CallMethod, 2);
  return 1;
}

int Index(lua_State* L) {
  return Guarded(L, [&] { return IndexUnguarded(L); });
}

int NewIndex(lua_State* L) {
  return Guarded(L, [&] {
    const AutomationObject object = CheckObject(L, 1);
    const std::string member = luaL_checkstring(L, 2);
    lua_remove(L, 2);
    CallWith(L, object, member, CallKind::kPropertyPut, 2);
    return 0;
  });
}

int Gc(lua_State* L) {
  static_cast<AutomationObject*>(luaL_checkudata(L, 1, kObjectMeta))->~AutomationObject();
  return 0;
}

int ToString(lua_State* L) {
  const AutomationObject object = CheckObject(L, 1);
  auto* typed = dynamic_cast<qorvel::ClassObject*>(object.get());
  lua_pushfstring(L, "%s: %p", typed ? typed->class_info().name.c_str() : "object",
                  static_cast<void*>(object.get()));
  return 1;
}

}  // namespace

void PushObject(lua_State* L, AutomationObject object) {
  new (lua_newuserdatauv(L, sizeof(AutomationObject), 0)) AutomationObject(std::move(object));
  luaL_setmetatable(L, kObjectMeta);
}

AutomationObject CheckObject(lua_State* L, int index) {
  return *static_cast<AutomationObject*>(luaL_checkudata(L, index, kObjectMeta));
}

void OpenObjects(lua_State* L) {
  luaL_newmetatable(L, kObjectMeta);
  const luaL_Reg meta[] = {{"__index", Index},
                           {"__newindex", NewIndex},
                           {"__gc", Gc},
                           {"__tostring", ToString},
                           {nullptr, nullptr}};
  luaL_setfuncs(L, meta, 0);
  lua_pop(L, 1);
  lua_register(L, "CreateObject", [](lua_State* L) {
    return Guarded(L, [&] {
      PushObject(L, qorvel::CreateObject(luaL_checkstring(L, 1)));
      return 1;
    });
  });
  lua_register(L, "GetObject", [](lua_State* L) {
    return Guarded(L, [&] {
      PushObject(L, qorvel::Env::Current().running_objects().BindRunning(luaL_checkstring(L, 1)));
      return 1;
    });
  });
}

}  // namespace qvsh
