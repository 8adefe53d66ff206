#include "qorvel/frame/dispatch_face.h"

#include <cctype>
#include <mutex>

#include "qorvel/frame/registration.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/safe_array.h"

namespace qorvel {
namespace {

VarType TypeOf(ParamType type) {
  switch (type) {
    case ParamType::kInteger:
      return VarType::kInteger;
    case ParamType::kLong:
    case ParamType::kEnum:
      return VarType::kLong;
    case ParamType::kDouble:
      return VarType::kDouble;
    case ParamType::kText:
      return VarType::kText;
    case ParamType::kBool:
      return VarType::kBool;
    case ParamType::kCollection:
      return VarType::kObject;
    default:
      return VarType::kVariant;
  }
}

Variant DefaultOf(const ParamInfo& p) {
  if (p.type == ParamType::kText) return Variant(p.default_text);
  if (TypeOf(p.type) == VarType::kVariant) return Variant();
  return Variant(p.default_number).ConvertTo(TypeOf(p.type));
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

std::mutex factories_mu;
std::map<std::string, std::function<AutomationObject()>> factories;

const ClassInfo* PublishedClass(std::string_view name) {
  const ClassInfo* c = TheTypeLibrary().FindClass(name);
  if (c == nullptr) Raise(err::kInvalidCall, "No class " + std::string(name) + " in the library");
  return c;
}

std::string Lower(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

// The default value of a key as text; empty when it isn't there or isn't text.
std::string ClassesRootText(const std::string& key) {
  const std::optional<RegValue> value =
      Env::Current().registry().GetValue(HKEY_CLASSES_ROOT, key, "");
  if (!value || (value->type != REG_SZ && value->type != REG_EXPAND_SZ)) return "";
  std::string text(value->data.begin(), value->data.end());
  return text.substr(0, text.find('\0'));
}

}  // namespace

ClassObject::ClassObject(std::string_view class_name)
    : ControlShell(class_name),
      class_(PublishedClass(class_name)),
      interface_(TheTypeLibrary().FindInterface(class_->default_interface)) {
  ObjectCreated();
}

ClassObject::~ClassObject() { ObjectDestroyed(); }

void ClassObject::Bind(std::string_view name, MemberKind kind, Handler handler) {
  const MemberInfo* member = FindMember(*interface_, name, kind);
  if (member == nullptr) {
    Raise(err::kInvalidCall, interface_->name + " has no row for " + std::string(name));
  }
  handlers_[member] = std::move(handler);
}

// A method call may read a property, and a property read may call a method, as automation
// callers mix the two.
const MemberInfo* ClassObject::Find(int32_t dispid, CallKind kind) const {
  const MemberInfo* m = FindMember(*interface_, dispid, KindOf(kind));
  if (m == nullptr && kind == CallKind::kMethod)
    m = FindMember(*interface_, dispid, MemberKind::kGet);
  if (m == nullptr && kind == CallKind::kPropertyGet) {
    m = FindMember(*interface_, dispid, MemberKind::kMethod);
  }
  return m;
}

Variant ClassObject::Invoke(std::string_view member, CallKind kind, std::span<Variant> args) {
  for (const MemberInfo& m : interface_->members) {
    if (SameNameNoCase(m.name, member)) return InvokeId(m.dispid, kind, args);
  }
  Raise(err::kNoMember);
}

MemberShape ClassObject::Shape(std::string_view member) const {
  for (const MemberInfo& m : interface_->members) {
    if (!SameNameNoCase(m.name, member)) continue;
    if (m.kind == MemberKind::kMethod) return MemberShape::kMethod;
    const size_t own = m.kind == MemberKind::kPut ? 1 : 0;
    return m.params.size() > own ? MemberShape::kIndexedProperty : MemberShape::kProperty;
  }
  return MemberShape::kMissing;
}

ClassObject::Args ClassObject::Prepare(const MemberInfo& member, std::span<Variant> args) const {
  size_t required = 0;
  for (const ParamInfo& p : member.params) required += p.optional ? 0 : 1;
  if (args.size() > member.params.size() || args.size() < required) Raise(err::kWrongArgs);
  Args prepared;
  for (size_t i = 0; i < member.params.size(); ++i) {
    const ParamInfo& p = member.params[i];
    const bool given = i < args.size() && !(p.optional && args[i].is_empty());
    if (!given) {
      prepared.push_back(DefaultOf(p));
    } else if (TypeOf(p.type) == VarType::kVariant) {
      prepared.push_back(args[i].Deref());
    } else {
      prepared.push_back(args[i].ConvertTo(TypeOf(p.type)));
    }
  }
  return prepared;
}

Variant ClassObject::InvokeId(int32_t dispid, CallKind kind, std::span<Variant> args) {
  const MemberInfo* member = Find(dispid, kind);
  if (member == nullptr) Raise(err::kNoMember);
  auto handler = handlers_.find(member);
  if (handler == handlers_.end()) Raise(err::kNoMember);
  Args prepared = Prepare(*member, args);
  Variant result = handler->second(prepared);
  for (size_t i = 0; i < args.size(); ++i) {
    if (member->params[i].by_ref && args[i].is_ref()) args[i].Assign(prepared[i]);
  }
  return result;
}

void RegisterClassFactory(const std::string& class_name, std::function<AutomationObject()> make) {
  std::lock_guard lock(factories_mu);
  factories[Lower(class_name)] = std::move(make);
}

std::function<AutomationObject()> FactoryOf(const std::string& class_name) {
  std::lock_guard lock(factories_mu);
  auto it = factories.find(Lower(class_name));
  return it == factories.end() ? nullptr : it->second;
}

AutomationObject CreateObject(std::string_view prog_id) {
  const std::string clsid = ClassesRootText(std::string(prog_id) + "\\CLSID");
  if (clsid.empty() || ClassesRootText("CLSID\\" + clsid + "\\InprocServer32").empty()) {
    Raise(err::kCantCreate);
  }
  for (const ClassInfo& c : TheTypeLibrary().classes) {
    ClassFactory factory;
    if (SameNameNoCase(ToString(c.guid), clsid) && DllGetClassObject(c.guid, &factory) == S_OK) {
      return factory();
    }
  }
  Raise(err::kCantCreate);
}

}  // namespace qorvel
