// Automation objects in Lua, after LuaCOM: obj:Method(args), obj.Prop, obj.Prop = v, and for a
// property with arguments obj:Prop(args) and obj:setProp(args, v).
#include <string>

#include "hosts/sim_host.h"
#include "qorvel/frame/dispatch_face.h"
#include "qorvel/platform/collection.h"
#include "qorvel/platform/env.h"
#include "qorvel/server/registration.h"
#include "shell/lua_calls.h"
#include "shell/lua_errors.h"
#include "shell/lua_holders.h"
#include "shell/lua_values.h"
#include "shell/qvsh.h"

namespace qvsh {
namespace {

using qorvel::AutomationObject;
using qorvel::CallKind;
using qorvel::MemberShape;

constexpr const char* kObjectMeta = "qvsh.object";

AutomationObject ArgObject(lua_State* L, int arg) {
  const AutomationObject* object = TestObject(L, arg);
  if (object == nullptr) throw ArgError(arg, "automation object expected");
  return *object;
}

// What a name on an object stands for.
struct Member {
  std::string name;
  MemberShape shape;
  bool put = false;  // reached as setName
};

Member Resolve(const qorvel::Dispatch& object, const std::string& key) {
  Member m{key, object.Shape(key)};
  if (m.shape == MemberShape::kMissing && key.size() > 3 && key.compare(0, 3, "set") == 0) {
    const MemberShape shape = object.Shape(key.substr(3));
    if (shape == MemberShape::kProperty || shape == MemberShape::kIndexedProperty) {
      m = Member{key.substr(3), shape, true};
    }
  }
  return m;
}

// The function that obj.Name gives for a method, a property with arguments, a setName, or a
// member of an object that doesn't describe its members. Upvalues: the name and the kind.
int CallClosure(lua_State* L) {
  const AutomationObject object = ArgObject(L, 1);
  const std::string name = StringAt(L, lua_upvalueindex(1));
  const auto kind = static_cast<CallKind>(lua_tointeger(L, lua_upvalueindex(2)));
  return CallMember(L, object, name, kind, 2);
}

int Index(lua_State* L) {
  const AutomationObject object = ArgObject(L, 1);
  const Member m = Resolve(*object, ArgString(L, 2));
  if (m.shape == MemberShape::kMissing) throw qorvel::Error(qorvel::err::kNoMember);
  if (m.shape == MemberShape::kProperty && !m.put) {
    lua_settop(L, 1);
    return CallMember(L, object, m.name, CallKind::kPropertyGet, 2);
  }
  const CallKind kind = m.put                                      ? CallKind::kPropertyPut
                        : m.shape == MemberShape::kIndexedProperty ? CallKind::kPropertyGet
                                                                   : CallKind::kMethod;
  lua_pushlstring(L, m.name.data(), m.name.size());
  lua_pushinteger(L, lua_Integer(kind));
  lua_pushcclosure(L, Protected<CallClosure>, 2);
  return 1;
}

int NewIndex(lua_State* L) {
  const AutomationObject object = ArgObject(L, 1);
  CallMember(L, object, ArgString(L, 2), CallKind::kPropertyPut, 3);
  return 0;
}

// Lua asks only about two different userdata, so released ones are never equal.
int Equals(lua_State* L) {
  const auto* a = FindHeld<AutomationObject>(L, 1, kObjectMeta);
  const auto* b = FindHeld<AutomationObject>(L, 2, kObjectMeta);
  lua_pushboolean(L, a != nullptr && b != nullptr && *a != nullptr && *a == *b);
  return 1;
}

std::string KindOf(const qorvel::Dispatch* object) {
  if (const auto* typed = dynamic_cast<const qorvel::ClassObject*>(object)) {
    return typed->class_info().name;
  }
  if (const auto* host = dynamic_cast<const qorvel::hosts::SimObject*>(object)) {
    return host->class_name();
  }
  if (dynamic_cast<const qorvel::Collection*>(object) != nullptr) return "Collection";
  return "object";
}

// "Zebrin: 0x5581...", "Tarvik.Document: 0x5581...", and for a finalizer's debugging print
// "object: released" rather than an error.
int ToString(lua_State* L) {
  bool released = false;
  FindHeld<AutomationObject>(L, 1, kObjectMeta, &released);
  if (released) {
    lua_pushliteral(L, "object: released");
    return 1;
  }
  const AutomationObject object = ArgObject(L, 1);
  const std::string kind = KindOf(object.get());
  lua_pushfstring(L, "%s: %p", kind.c_str(), static_cast<void*>(object.get()));
  return 1;
}

int CreateObject(lua_State* L) {
  PushObject(L, qorvel::CreateObject(ArgString(L, 1)));
  return 1;
}

int GetRunningObject(lua_State* L) {
  PushObject(L, qorvel::Env::Current().running_objects().BindRunning(ArgString(L, 1)));
  return 1;
}

}  // namespace

void PushObject(lua_State* L, AutomationObject object) {
  PushHeld(L, std::move(object), kObjectMeta);
}

const AutomationObject* TestObject(lua_State* L, int index) {
  bool released = false;
  const auto* object = FindHeld<AutomationObject>(L, index, kObjectMeta, &released);
  if (released || (object != nullptr && *object == nullptr)) {
    throw qorvel::Error(qorvel::err::kObjectNotSet);
  }
  return object;
}

void OpenObjects(lua_State* L) {
  const luaL_Reg meta[] = {{"__index", Protected<Index>},
                           {"__newindex", Protected<NewIndex>},
                           {"__eq", Equals},
                           {"__tostring", Protected<ToString>},
                           {"__gc", CollectHeld},
                           {nullptr, nullptr}};
  luaL_newmetatable(L, kObjectMeta);
  luaL_setfuncs(L, meta, 0);
  lua_pop(L, 1);
  lua_register(L, "CreateObject", Protected<CreateObject>);
  lua_register(L, "GetObject", Protected<GetRunningObject>);
}

}  // namespace qvsh
