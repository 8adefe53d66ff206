#include "shell/lua_calls.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "qorvel/frame/dispatch_face.h"
#include "qorvel/frame/type_library.h"
#include "qorvel/platform/error.h"
#include "shell/lua_errors.h"
#include "shell/lua_values.h"

namespace qvsh {
namespace {

using qorvel::CallKind;
using qorvel::MemberInfo;
using qorvel::MemberKind;
using qorvel::Variant;

// The row of the type library the call will run, found as the dispatch face finds it: a
// method call may read a property, and a property read may call a method.
const MemberInfo* TypedMember(const qorvel::AutomationObject& object, const std::string& name,
                              CallKind kind) {
  const auto* typed = dynamic_cast<const qorvel::ClassObject*>(object.get());
  if (typed == nullptr) return nullptr;
  const qorvel::InterfaceInfo& iface = typed->interface_info();
  switch (kind) {
    case CallKind::kPropertyPut:
      return qorvel::FindMember(iface, name, MemberKind::kPut);
    case CallKind::kPropertyGet:
      if (const MemberInfo* m = qorvel::FindMember(iface, name, MemberKind::kGet)) return m;
      return qorvel::FindMember(iface, name, MemberKind::kMethod);
    default:
      if (const MemberInfo* m = qorvel::FindMember(iface, name, MemberKind::kMethod)) return m;
      return qorvel::FindMember(iface, name, MemberKind::kGet);
  }
}

bool ByRef(const MemberInfo* member, size_t i) {
  return member != nullptr && i < member->params.size() && member->params[i].by_ref;
}

// The arguments the member gets: those the script passed and, once every required parameter
// is there, the omitted by-reference ones as variables of their own, so that their final values
// come back too. A missing required parameter is left missing, for the member to refuse.
size_t ArgumentCount(const MemberInfo* member, size_t passed) {
  if (member == nullptr) return passed;
  size_t count = passed;
  for (size_t i = 0; i < member->params.size(); ++i) {
    if (i >= passed && !member->params[i].optional) return passed;
    if (member->params[i].by_ref) count = std::max(count, i + 1);
  }
  return count;
}

bool HasByRef(const MemberInfo* member) {
  return member != nullptr && std::any_of(member->params.begin(), member->params.end(),
                                          [](const qorvel::ParamInfo& p) { return p.by_ref; });
}

// Pushes the final value of each by-reference variable, in declaration order.
int PushByRef(lua_State* L, const MemberInfo* member, const std::vector<Variant>& variables) {
  int pushed = 0;
  for (size_t i = 0; i < variables.size(); ++i) {
    if (!ByRef(member, i)) continue;
    PushVariant(L, variables[i]);
    ++pushed;
  }
  return pushed;
}

// The member wrote its by-reference arguments back before it raised, so the error carries
// them in a table, as a successful call would have returned them after its result. Should
// that table fail, the member's own error still gets through.
[[noreturn]] void RaiseWithResults(lua_State* L, const MemberInfo* member,
                                   const std::vector<Variant>& variables,
                                   const qorvel::Error& error) {
  const int top = lua_gettop(L);
  // Room for the table, its values, and the error value that takes it in.
  if (!HasByRef(member) || !lua_checkstack(L, int(variables.size()) + 4)) throw error;
  try {
    lua_createtable(L, int(variables.size()), 1);
    const int pushed = PushByRef(L, member, variables);
    for (int i = pushed; i >= 1; --i) lua_rawseti(L, top + 1, i);
    lua_pushinteger(L, pushed);
    lua_setfield(L, -2, "n");
  } catch (...) {
    lua_settop(L, top);
    throw error;
  }
  throw ErrorWithResults(error, top + 1);
}

}  // namespace

int CallMember(lua_State* L, const qorvel::AutomationObject& object, const std::string& member,
               CallKind kind, int first) {
  if (!object) throw qorvel::Error(qorvel::err::kObjectNotSet);
  const MemberInfo* typed = TypedMember(object, member, kind);
  const size_t passed = size_t(std::max(0, lua_gettop(L) - first + 1));

  // The caller's variables: a by-reference parameter points at its own.
  std::vector<Variant> variables(ArgumentCount(typed, passed));
  for (size_t i = 0; i < passed; ++i) variables[i] = ToVariant(L, first + int(i));
  std::vector<Variant> args(variables.size());
  for (size_t i = 0; i < args.size(); ++i) {
    args[i] = ByRef(typed, i) ? Variant::Ref(variables[i]) : variables[i];
  }

  Variant result;
  std::optional<qorvel::Error> failure;
  try {
    result = object->Invoke(member, kind, args);
  } catch (const qorvel::Error& e) {
    failure = e;
  }
  if (failure) RaiseWithResults(L, typed, variables, *failure);

  if (!lua_checkstack(L, int(variables.size()) + 1)) throw qorvel::Error(qorvel::err::kOverflow);
  PushVariant(L, result);
  return 1 + PushByRef(L, typed, variables);
}

}  // namespace qvsh
