#include "windows/typelib/typelib_reader.h"

#include <oleauto.h>
#include <wrl/client.h>

#include <cstring>
#include <vector>

#include "windows/typelib/wide_text.h"

namespace qorvel {
namespace {

using Microsoft::WRL::ComPtr;

constexpr int kDispatchSlots = 7;  // IUnknown and IDispatch, before a dual interface's own

std::string HexText(unsigned value) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%x", value);
  return text;
}

Guid GuidOf(const GUID& g) {
  Guid guid;
  static_assert(sizeof guid == sizeof g);
  std::memcpy(&guid, &g, sizeof guid);
  return guid;
}

// Attribute and description holders that give their memory back to the type info.
class TypeAttr {
 public:
  explicit TypeAttr(ITypeInfo* info) : info_(info) {}
  ~TypeAttr() {
    if (attr_) info_->ReleaseTypeAttr(attr_);
  }
  HRESULT Load() { return info_->GetTypeAttr(&attr_); }
  const TYPEATTR* operator->() const { return attr_; }

 private:
  ITypeInfo* info_;
  TYPEATTR* attr_ = nullptr;
};

class FuncDesc {
 public:
  FuncDesc(ITypeInfo* info, UINT index) : info_(info), index_(index) {}
  ~FuncDesc() {
    if (desc_) info_->ReleaseFuncDesc(desc_);
  }
  HRESULT Load() { return info_->GetFuncDesc(index_, &desc_); }
  const FUNCDESC* operator->() const { return desc_; }

 private:
  ITypeInfo* info_;
  UINT index_;
  FUNCDESC* desc_ = nullptr;
};

class VarDesc {
 public:
  VarDesc(ITypeInfo* info, UINT index) : info_(info), index_(index) {}
  ~VarDesc() {
    if (desc_) info_->ReleaseVarDesc(desc_);
  }
  HRESULT Load() { return info_->GetVarDesc(index_, &desc_); }
  const VARDESC* operator->() const { return desc_; }

 private:
  ITypeInfo* info_;
  UINT index_;
  VARDESC* desc_ = nullptr;
};

class Reader {
 public:
  Reader(ITypeLib* lib, TypeLibrary* out) : lib_(lib), out_(out) {}

  bool Read(SYSKIND* syskind);
  const std::string& error() const { return error_; }

 private:
  bool Check(HRESULT hr, const std::string& what) {
    if (SUCCEEDED(hr)) return true;
    error_ = what + " failed with " + HresultText(hr);
    return false;
  }
  bool Fail(const std::string& what) {
    error_ = what;
    return false;
  }

  bool ReadLibraryAttributes(SYSKIND* syskind);
  // Name and help of a type or member; neither may carry a help context.
  bool Documentation(ITypeInfo* info, MEMBERID id, const std::string& where, std::string* name,
                     std::string* help);
  bool ReadType(UINT index);
  bool ReadEnum(ITypeInfo* info, const TYPEATTR& attr, EnumInfo* e);
  bool ReadInterface(ITypeInfo* info, const TYPEATTR& attr, bool events, InterfaceInfo* iface);
  bool ReadMember(ITypeInfo* info, UINT slot, bool events, const std::string& slot_where,
                  MemberInfo* m);
  bool InheritedMembers(ITypeInfo* info, const TYPEATTR& attr, const std::string& name,
                        UINT* first);
  bool ReadParam(ITypeInfo* info, const ELEMDESC& elem, const std::string& where, ParamInfo* p);
  bool ReadClass(ITypeInfo* info, const TYPEATTR& attr, ClassInfo* c);
  bool RefName(ITypeInfo* info, HREFTYPE ref, TYPEKIND* kind, std::string* name);

  ITypeLib* lib_;
  TypeLibrary* out_;
  std::string error_;
  int pointer_size_ = 0;  // of the library's platform
};

bool Reader::Read(SYSKIND* syskind) {
  if (!ReadLibraryAttributes(syskind)) return false;
  const UINT count = lib_->GetTypeInfoCount();
  for (UINT i = 0; i < count; ++i) {
    if (!ReadType(i)) return false;
  }
  return true;
}

bool Reader::ReadLibraryAttributes(SYSKIND* syskind) {
  TLIBATTR* attr = nullptr;
  if (!Check(lib_->GetLibAttr(&attr), "GetLibAttr")) return false;
  out_->guid = GuidOf(attr->guid);
  out_->locale = attr->lcid;
  out_->major_version = attr->wMajorVerNum;
  out_->minor_version = attr->wMinorVerNum;
  const WORD flags = attr->wLibFlags;
  *syskind = attr->syskind;
  pointer_size_ = attr->syskind == SYS_WIN64 ? 8 : 4;
  lib_->ReleaseTLibAttr(attr);
  // The loader may add the disk-image flag of its own; it says where the library came from.
  if ((flags & ~(LIBFLAG_FCONTROL | LIBFLAG_FHASDISKIMAGE)) != 0) {
    return Fail("library flags " + HexText(flags) + " hold more than the control flag");
  }
  out_->control_library = (flags & LIBFLAG_FCONTROL) != 0;
  OwnedBstr name, help, help_file;
  DWORD context = 0;
  if (!Check(lib_->GetDocumentation(-1, name.out(), help.out(), &context, help_file.out()),
             "GetDocumentation of the library")) {
    return false;
  }
  if (context != 0) return Fail("the library has help context " + std::to_string(context));
  out_->name = name.text();
  out_->help_string = help.text();
  out_->help_file = help_file.text();
  return true;
}

bool Reader::Documentation(ITypeInfo* info, MEMBERID id, const std::string& where,
                           std::string* name, std::string* help) {
  OwnedBstr name_bstr, help_bstr;
  DWORD context = 0;
  if (!Check(info->GetDocumentation(id, name_bstr.out(), help_bstr.out(), &context, nullptr),
             "GetDocumentation of " + where)) {
    return false;
  }
  if (context != 0) return Fail(where + " has help context " + std::to_string(context));
  *name = name_bstr.text();
  *help = help_bstr.text();
  return true;
}

bool Reader::ReadType(UINT index) {
  ComPtr<ITypeInfo> info;
  const std::string where = "type " + std::to_string(index);
  if (!Check(lib_->GetTypeInfo(index, &info), "GetTypeInfo of " + where)) return false;
  TypeAttr attr(info.Get());
  if (!Check(attr.Load(), "GetTypeAttr of " + where)) return false;
  std::string name, help;
  if (!Documentation(info.Get(), MEMBERID_NIL, where, &name, &help)) return false;
  if (!help.empty()) return Fail(name + " has a help string, which no type of the library has");
  switch (attr->typekind) {
    case TKIND_ENUM: {
      EnumInfo& e = out_->enums.emplace_back();
      e.name = name;
      return ReadEnum(info.Get(), *attr.operator->(), &e);
    }
    case TKIND_INTERFACE:
    case TKIND_DISPATCH: {
      InterfaceInfo& iface = out_->interfaces.emplace_back();
      iface.name = name;
      const bool dual = (attr->wTypeFlags & TYPEFLAG_FDUAL) != 0;
      if (attr->typekind == TKIND_INTERFACE || !dual) {
        return ReadInterface(info.Get(), *attr.operator->(), !dual, &iface);
      }
      // The dispatch face of a dual interface; its members are read from the vtable face.
      HREFTYPE ref;
      ComPtr<ITypeInfo> vtable;
      if (!Check(info->GetRefTypeOfImplType(-1, &ref), "vtable face of " + name) ||
          !Check(info->GetRefTypeInfo(ref, &vtable), "vtable face of " + name)) {
        return false;
      }
      TypeAttr vtable_attr(vtable.Get());
      if (!Check(vtable_attr.Load(), "GetTypeAttr of the vtable face of " + name)) return false;
      return ReadInterface(vtable.Get(), *vtable_attr.operator->(), false, &iface);
    }
    case TKIND_COCLASS: {
      ClassInfo& c = out_->classes.emplace_back();
      c.name = name;
      return ReadClass(info.Get(), *attr.operator->(), &c);
    }
    default:
      return Fail(name + " is of type kind " + std::to_string(attr->typekind) +
                  ", which the library has none of");
  }
}

bool Reader::ReadEnum(ITypeInfo* info, const TYPEATTR& attr, EnumInfo* e) {
  e->guid = GuidOf(attr.guid);
  if (attr.wTypeFlags != 0) {
    return Fail(e->name + " has type flags " + HexText(attr.wTypeFlags) + ", an enumeration none");
  }
  if (attr.cFuncs != 0) return Fail(e->name + " has functions");
  for (UINT i = 0; i < attr.cVars; ++i) {
    VarDesc desc(info, i);
    const std::string where = e->name + " member " + std::to_string(i);
    if (!Check(desc.Load(), "GetVarDesc of " + where)) return false;
    if (desc->varkind != VAR_CONST || desc->elemdescVar.tdesc.vt != VT_I4 || !desc->lpvarValue ||
        V_VT(desc->lpvarValue) != VT_I4) {
      return Fail(where + " is not a 32-bit constant");
    }
    if (desc->memid != EnumMemberId(i)) {
      return Fail(where + " has member id " + HexText(desc->memid) + " out of order");
    }
    std::string name, help;
    if (!Documentation(info, desc->memid, where, &name, &help)) return false;
    if (!help.empty()) return Fail(where + " has a help string");
    e->members.emplace_back(name, V_I4(desc->lpvarValue));
  }
  return true;
}

bool Reader::RefName(ITypeInfo* info, HREFTYPE ref, TYPEKIND* kind, std::string* name) {
  ComPtr<ITypeInfo> target;
  if (!Check(info->GetRefTypeInfo(ref, &target), "GetRefTypeInfo")) return false;
  TypeAttr attr(target.Get());
  if (!Check(attr.Load(), "GetTypeAttr of a referenced type")) return false;
  *kind = attr->typekind;
  OwnedBstr bstr;
  if (!Check(target->GetDocumentation(MEMBERID_NIL, bstr.out(), nullptr, nullptr, nullptr),
             "name of a referenced type")) {
    return false;
  }
  *name = bstr.text();
  return true;
}

bool Reader::ReadInterface(ITypeInfo* info, const TYPEATTR& attr, bool events,
                           InterfaceInfo* iface) {
  iface->guid = GuidOf(attr.guid);
  iface->events = events;
  if (attr.wTypeFlags != iface->type_flags()) {
    return Fail(iface->name + " has type flags " + HexText(attr.wTypeFlags) + " where " +
                HexText(iface->type_flags()) + " belong");
  }
  HREFTYPE base_ref;
  TYPEKIND base_kind;
  std::string base;
  if (attr.cImplTypes != 1 || !Check(info->GetRefTypeOfImplType(0, &base_ref), iface->name) ||
      !RefName(info, base_ref, &base_kind, &base) || base != iface->base_interface()) {
    return Fail(iface->name + " does not derive from " + std::string(iface->base_interface()) +
                " alone" + (error_.empty() ? "" : ": " + error_));
  }
  if (attr.cVars != 0) return Fail(iface->name + " has variables");
  UINT first = 0;
  if (events && !InheritedMembers(info, attr, iface->name, &first)) return false;
  for (UINT slot = first; slot < attr.cFuncs; ++slot) {
    MemberInfo& m = iface->members.emplace_back();
    if (!ReadMember(info, slot, events, iface->name + " slot " + std::to_string(slot - first),
                    &m)) {
      return false;
    }
  }
  // The vtable follows slot order with nothing in between. The loader lays out the members for
  // this process, but leaves the size as the library's platform has it.
  if (!events && attr.cbSizeVft != (kDispatchSlots + attr.cFuncs) * pointer_size_) {
    return Fail(iface->name + " has a vtable of " + std::to_string(attr.cbSizeVft) + " bytes for " +
                std::to_string(attr.cFuncs) + " members");
  }
  return true;
}

// A dispatch interface may list the members of IUnknown and IDispatch before its own, restricted,
// as the loader does. They are the base's; `first` receives the slot of the interface's own first.
bool Reader::InheritedMembers(ITypeInfo* info, const TYPEATTR& attr, const std::string& name,
                              UINT* first) {
  static const char* const kBase[] = {
      "QueryInterface", "AddRef",        "Release", "GetTypeInfoCount",
      "GetTypeInfo",    "GetIDsOfNames", "Invoke"};
  constexpr UINT kCount = sizeof kBase / sizeof kBase[0];
  *first = 0;
  for (UINT i = 0; i < kCount && i < attr.cFuncs; ++i) {
    FuncDesc desc(info, i);
    if (!Check(desc.Load(), "GetFuncDesc of " + name + " slot " + std::to_string(i))) return false;
    if ((desc->wFuncFlags & FUNCFLAG_FRESTRICTED) == 0) break;
    OwnedBstr member;
    if (!Check(info->GetDocumentation(desc->memid, member.out(), nullptr, nullptr, nullptr),
               "name of " + name + " slot " + std::to_string(i))) {
      return false;
    }
    if (member.text() != kBase[i]) break;
    *first = i + 1;
  }
  if (*first != 0 && *first != kCount) {
    return Fail(name + " lists part of IDispatch among its members");
  }
  return true;
}

bool Reader::ReadMember(ITypeInfo* info, UINT slot, bool events, const std::string& slot_where,
                        MemberInfo* m) {
  FuncDesc desc(info, slot);
  if (!Check(desc.Load(), "GetFuncDesc of " + slot_where)) return false;
  m->dispid = desc->memid;
  const std::string where = slot_where + " (DISPID " + HexText(desc->memid) + ")";
  switch (desc->invkind) {
    case INVOKE_FUNC:
      m->kind = MemberKind::kMethod;
      break;
    case INVOKE_PROPERTYGET:
      m->kind = MemberKind::kGet;
      break;
    case INVOKE_PROPERTYPUT:
      m->kind = MemberKind::kPut;
      break;
    default:
      return Fail(where + " has invoke kind " + std::to_string(desc->invkind));
  }
  if (desc->callconv != CC_STDCALL) return Fail(where + " is not stdcall");
  if (desc->funckind != (events ? FUNC_DISPATCH : FUNC_PUREVIRTUAL)) {
    return Fail(where + " has function kind " + std::to_string(desc->funckind));
  }
  if (desc->elemdescFunc.tdesc.vt != (events ? VT_VOID : VT_HRESULT)) {
    return Fail(where + " returns VARIANT type " + std::to_string(desc->elemdescFunc.tdesc.vt));
  }
  if (desc->cParamsOpt != 0) return Fail(where + " takes a variable number of arguments");
  if ((desc->wFuncFlags & ~FUNCFLAG_FNONBROWSABLE) != 0) {
    return Fail(where + " has function flags " + HexText(desc->wFuncFlags));
  }
  m->browsable = (desc->wFuncFlags & FUNCFLAG_FNONBROWSABLE) == 0;
  const int pointer = static_cast<int>(sizeof(void*));
  if (!events && desc->oVft != static_cast<int>((kDispatchSlots + slot) * pointer)) {
    return Fail(where + " sits at vtable offset " + std::to_string(desc->oVft));
  }
  if (!Documentation(info, desc->memid, where, &m->name, &m->help)) return false;

  int count = desc->cParams;
  if (count > 0 && (desc->lprgelemdescParam[count - 1].paramdesc.wParamFlags & PARAMFLAG_FRETVAL)) {
    ParamInfo result;
    if (events ||
        !ReadParam(info, desc->lprgelemdescParam[count - 1], where + " retval", &result)) {
      return events ? Fail(where + ": an event with a result") : false;
    }
    m->result = result.type;
    m->result_enum = result.enum_name;
    if (ParamFlags(m->retval_param()) != ParamFlags(result)) {
      return Fail(where + ": the result is not out and retval alone");
    }
    --count;
  }
  // Names come by DISPID, which a get and a put share; the names a put has are the get's own.
  std::vector<BSTR> names(count + 1, nullptr);
  UINT found = 0;
  if (!Check(info->GetNames(desc->memid, names.data(), UINT(names.size()), &found),
             "GetNames of " + where)) {
    return false;
  }
  for (int i = 0; i < count; ++i) {
    ParamInfo& p = m->params.emplace_back();
    if (UINT(i + 1) < found) p.name = Narrow(names[i + 1]);
    const std::string param_where = where + " parameter " + std::to_string(i);
    if (!ReadParam(info, desc->lprgelemdescParam[i], param_where, &p)) break;
    const bool value_of_put = m->kind == MemberKind::kPut && i + 1 == count;
    if (p.name.empty() && !value_of_put) error_ = param_where + " has no name";
    if (!error_.empty()) break;
  }
  for (BSTR name : names) SysFreeString(name);
  return error_.empty();
}

bool Reader::ReadParam(ITypeInfo* info, const ELEMDESC& elem, const std::string& where,
                       ParamInfo* p) {
  const WORD flags = elem.paramdesc.wParamFlags;
  p->retval = (flags & PARAMFLAG_FRETVAL) != 0;
  const TYPEDESC* desc = &elem.tdesc;
  if (desc->vt == VT_PTR) {
    p->by_ref = !p->retval;
    desc = desc->lptdesc;
  } else if (p->retval) {
    return Fail(where + " is a retval parameter that is not a pointer");
  }
  const bool array = desc->vt == VT_SAFEARRAY;
  if (array) desc = desc->lptdesc;
  switch (desc->vt) {
    case VT_I2:
      p->type = ParamType::kInteger;
      break;
    case VT_I4:
      p->type = ParamType::kLong;
      break;
    case VT_R8:
      p->type = array ? ParamType::kDoubleArray : ParamType::kDouble;
      break;
    case VT_BSTR:
      p->type = array ? ParamType::kTextArray : ParamType::kText;
      break;
    case VT_BOOL:
      p->type = ParamType::kBool;
      break;
    case VT_VARIANT:
      p->type = ParamType::kVariant;
      break;
    case VT_DISPATCH:
      p->type = ParamType::kCollection;
      break;
    case VT_USERDEFINED: {
      TYPEKIND kind;
      if (!RefName(info, desc->hreftype, &kind, &p->enum_name)) return false;
      if (kind != TKIND_ENUM) return Fail(where + " refers to " + p->enum_name + ", no enum");
      p->type = ParamType::kEnum;
      break;
    }
    default:
      return Fail(where + " has VARIANT type " + std::to_string(desc->vt));
  }
  if (array && p->type != ParamType::kDoubleArray && p->type != ParamType::kTextArray) {
    return Fail(where + " is an array of a type the library has no arrays of");
  }
  if (p->retval) return true;
  p->optional = (flags & PARAMFLAG_FOPT) != 0;
  p->has_default = (flags & PARAMFLAG_FHASDEFAULT) != 0;
  if (flags != ParamFlags(*p)) {
    return Fail(where + " has flags " + HexText(flags) + " where its mode gives " +
                HexText(ParamFlags(*p)));
  }
  if (!p->has_default) return true;
  if (!elem.paramdesc.pparamdescex) return Fail(where + " has a default flag and no default");
  const VARIANT& value = elem.paramdesc.pparamdescex->varDefaultValue;
  VARTYPE expected = VT_EMPTY;
  switch (p->type) {
    case ParamType::kDouble:
      expected = VT_R8;
      if (V_VT(&value) == VT_R8) p->default_number = V_R8(&value);
      break;
    case ParamType::kBool:
      expected = VT_BOOL;
      if (V_VT(&value) == VT_BOOL) p->default_number = V_BOOL(&value);
      break;
    case ParamType::kLong:
    case ParamType::kEnum:
      expected = VT_I4;
      if (V_VT(&value) == VT_I4) p->default_number = V_I4(&value);
      break;
    case ParamType::kInteger:
      expected = VT_I2;
      if (V_VT(&value) == VT_I2) p->default_number = V_I2(&value);
      break;
    case ParamType::kText:
      expected = VT_BSTR;
      if (V_VT(&value) == VT_BSTR) p->default_text = Narrow(V_BSTR(&value));
      break;
    default:
      break;
  }
  if (expected == VT_EMPTY || V_VT(&value) != expected) {
    return Fail(
        where + " has a default of VARIANT type " + std::to_string(V_VT(&value)) +
        (expected == VT_EMPTY ? ", where none belongs" : ", not " + std::to_string(expected)));
  }
  return true;
}

bool Reader::ReadClass(ITypeInfo* info, const TYPEATTR& attr, ClassInfo* c) {
  c->guid = GuidOf(attr.guid);
  c->control = (attr.wTypeFlags & TYPEFLAG_FCONTROL) != 0;
  if (attr.wTypeFlags != c->type_flags()) {
    return Fail(c->name + " has type flags " + HexText(attr.wTypeFlags));
  }
  std::vector<ImplementedInterface> list;
  for (UINT i = 0; i < attr.cImplTypes; ++i) {
    HREFTYPE ref;
    INT flags = 0;
    TYPEKIND kind;
    ImplementedInterface& impl = list.emplace_back();
    const std::string where = c->name + " interface " + std::to_string(i);
    if (!Check(info->GetRefTypeOfImplType(i, &ref), where) ||
        !Check(info->GetImplTypeFlags(i, &flags), where) ||
        !RefName(info, ref, &kind, &impl.name)) {
      return false;
    }
    impl.flags = static_cast<uint16_t>(flags);
    if (flags == kImplTypeFlagDefault && c->default_interface.empty()) {
      c->default_interface = impl.name;
    } else if (flags == (kImplTypeFlagDefault | kImplTypeFlagSource) &&
               c->event_interface.empty()) {
      c->event_interface = impl.name;
    }
  }
  const std::vector<ImplementedInterface> expected = c->implemented_interfaces();
  bool same = list.size() == expected.size();
  for (size_t i = 0; same && i < list.size(); ++i) {
    same = list[i].name == expected[i].name && list[i].flags == expected[i].flags;
  }
  if (!same) return Fail(c->name + " lists interfaces other than a default and a default source");
  return true;
}

}  // namespace

bool ReadTypeLibrary(ITypeLib* lib, TypeLibrary* out, SYSKIND* syskind, std::string* error) {
  Reader reader(lib, out);
  if (reader.Read(syskind)) return true;
  *error = reader.error();
  return false;
}

}  // namespace qorvel
