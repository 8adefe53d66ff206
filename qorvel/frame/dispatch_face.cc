#include "qorvel/frame/dispatch_face.h"

#include <atomic>
#include <optional>

#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/safe_array.h"
#include "qorvel/platform/text.h"

namespace qorvel {
namespace {

std::atomic<int> live_objects{0};

Variant DefaultOf(const ParamInfo& p) {
  if (p.type == ParamType::kText) return Variant(p.default_text);
  if (DispatchType(p) == VarType::kVariant) return Variant();
  return Variant(p.default_number).ConvertTo(DispatchType(p));
}

MemberKind KindOf(CallKind kind) {
  switch (kind) {
    case CallKind::kPropertyGet:
      return MemberKind::kGet;
    case CallKind::kPropertyPut:
      return MemberKind::kPut;
    default:
      return MemberKind::kMethod;
  }
}

bool IsArrayParam(const ParamInfo& p) {
  return p.type == ParamType::kTextArray || p.type == ParamType::kDoubleArray;
}

// An array the client hasn't dimensioned yet: an Empty variable, or an array with no bounds.
// The member gets one of the parameter's own element type to resize, as a typed variable of
// the client's language would hold. A dimensioned one comes as it is, so an input the member
// only reads goes back unchanged.
bool IsUndimensionedArray(const ParamInfo& p, const Variant& arg) {
  if (!IsArrayParam(p)) return false;
  if (arg.is_empty()) return true;
  return arg.is_array() && arg.ToArray().dims() == 0;
}

const InterfaceInfo* EventInterfaceOf(const ClassInfo& c) {
  return c.event_interface.empty() ? nullptr : TheTypeLibrary().FindInterface(c.event_interface);
}

}  // namespace

int LiveObjects() { return live_objects.load(); }

ClassObject::ClassObject(const BoundInterface& bound)
    : bound_(bound), events_(EventInterfaceOf(bound.class_info())) {
  ++live_objects;
}

ClassObject::~ClassObject() { --live_objects; }

bool ClassObject::IsBound(const MemberInfo& member) const {
  const std::vector<MemberInfo>& rows = interface_info().members;
  return &member >= rows.data() && &member < rows.data() + rows.size() &&
         bound_.IsBound(static_cast<size_t>(&member - rows.data()));
}

// A method call may read a property, and a property read may call a method, as automation
// callers mix the two.
const MemberInfo* ClassObject::Find(int32_t dispid, CallKind kind) const {
  const InterfaceInfo& iface = interface_info();
  const MemberInfo* m = FindMember(iface, dispid, KindOf(kind));
  if (m == nullptr && kind == CallKind::kMethod) m = FindMember(iface, dispid, MemberKind::kGet);
  if (m == nullptr && kind == CallKind::kPropertyGet) {
    m = FindMember(iface, dispid, MemberKind::kMethod);
  }
  return m;
}

Variant ClassObject::Invoke(std::string_view member, CallKind kind, std::span<Variant> args) {
  for (const MemberInfo& m : interface_info().members) {
    if (EqualsNoCase(m.name, member)) return InvokeById(m.dispid, kind, args);
  }
  Raise(err::kNoMember);
}

MemberShape ClassObject::Shape(std::string_view member) const {
  for (const MemberInfo& m : interface_info().members) {
    if (!EqualsNoCase(m.name, member)) continue;
    if (m.kind == MemberKind::kMethod) return MemberShape::kMethod;
    const size_t own = m.kind == MemberKind::kPut ? 1 : 0;
    return m.params.size() > own ? MemberShape::kIndexedProperty : MemberShape::kProperty;
  }
  return MemberShape::kMissing;
}

std::vector<Variant> ClassObject::Prepare(const MemberInfo& member, std::span<Variant> args) const {
  size_t required = 0;
  for (const ParamInfo& p : member.params) required += p.optional ? 0 : 1;
  if (args.size() > member.params.size() || args.size() < required) Raise(err::kWrongArgs);
  std::vector<Variant> prepared;
  prepared.reserve(member.params.size());
  for (size_t i = 0; i < member.params.size(); ++i) {
    const ParamInfo& p = member.params[i];
    const bool given = i < args.size() && !(p.optional && args[i].is_empty());
    if (!given) {
      prepared.push_back(DefaultOf(p));
    } else if (IsUndimensionedArray(p, args[i])) {
      prepared.push_back(SafeArray(AutomationType(p.type), {}));
    } else if (DispatchType(p) == VarType::kVariant) {
      prepared.push_back(args[i].Deref());
    } else {
      prepared.push_back(args[i].ConvertTo(DispatchType(p)));
    }
  }
  return prepared;
}

// The one boundary where memory that can't be had becomes the client's error 7: whatever
// member ran out, the caller gets an automation error, never a C++ exception.
Variant ClassObject::InvokeById(int32_t dispid, CallKind kind, std::span<Variant> args) {
  return OutOfMemoryAsError([&] {
    const MemberInfo* member = Find(dispid, kind);
    if (member == nullptr || !IsBound(*member)) Raise(err::kNoMember);
    std::vector<Variant> prepared = Prepare(*member, args);
    const size_t slot = static_cast<size_t>(member - interface_info().members.data());
    Variant result;
    try {
      result = Run(slot, prepared);
    } catch (...) {
      HoldBack([&] { WriteBack(*member, args, prepared); });  // the member's own error wins
      throw;
    }
    WriteBack(*member, args, prepared);
    return result;
  });
}

// Every by-reference argument gets its final value; one that can't take it (a fixed or locked
// array of other bounds) doesn't keep the others from theirs, and its error comes last.
void ClassObject::WriteBack(const MemberInfo& member, std::span<Variant> args,
                            std::span<const Variant> prepared) {
  std::optional<Error> refused;
  for (size_t i = 0; i < args.size(); ++i) {
    if (!member.params[i].by_ref || !args[i].is_ref()) continue;
    // An Empty variable whose array the member left undimensioned stays Empty.
    if (args[i].is_empty() && prepared[i].is_array() && prepared[i].ToArray().dims() == 0) {
      continue;
    }
    try {
      args[i].Assign(prepared[i]);
    } catch (const Error& e) {
      if (!refused) refused = e;
    }
  }
  if (refused) Raise(refused->number(), refused->description());
}

int32_t ClassObject::Advise(AutomationObject sink) {
  if (events_ == nullptr) Raise(err::kNoMember);
  if (!sink) Raise(err::kObjectNotSet);
  std::lock_guard lock(sinks_mu_);
  sinks_.emplace_back(next_cookie_, std::move(sink));
  return next_cookie_++;
}

void ClassObject::Unadvise(int32_t cookie) {
  std::lock_guard lock(sinks_mu_);
  if (std::erase_if(sinks_, [&](const auto& s) { return s.first == cookie; }) == 0) {
    Raise(err::kInvalidCall, "No sink is connected with cookie " + std::to_string(cookie));
  }
}

// The sinks are copied first: a handler may connect or disconnect sinks, or raise the event
// again, while the event runs.
void ClassObject::RaiseEvent(int32_t dispid, std::span<Variant> args) {
  if (events_ == nullptr || FindMember(*events_, dispid, MemberKind::kMethod) == nullptr) {
    Raise(err::kInvalidCall, class_info().name + " has no event " + std::to_string(dispid));
  }
  std::vector<std::pair<int32_t, AutomationObject>> sinks;
  {
    std::lock_guard lock(sinks_mu_);
    sinks = sinks_;
  }
  for (const auto& [cookie, sink] : sinks) {
    try {
      sink->InvokeById(dispid, CallKind::kMethod, args);
    } catch (const std::exception&) {
    }
  }
}

}  // namespace qorvel
