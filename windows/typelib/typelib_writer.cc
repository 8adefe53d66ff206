#include "windows/typelib/typelib_writer.h"

#include <oleauto.h>
#include <wrl/client.h>

#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <vector>

#include "windows/typelib/double_defaults.h"
#include "windows/typelib/vtable_sizes.h"
#include "windows/typelib/wide_text.h"

namespace qorvel {
namespace {

using Microsoft::WRL::ComPtr;

// Slots of IUnknown and IDispatch, which come before a dual interface's own members.
constexpr int kDispatchSlots = 7;

class Writer {
 public:
  Writer(const TypeLibrary& lib, SYSKIND syskind) : lib_(lib), syskind_(syskind) {}

  bool Write(const std::wstring& path);
  const std::string& error() const { return error_; }

 private:
  // Records the first failure; callers return false at once.
  bool Check(HRESULT hr, const std::string& what) {
    if (SUCCEEDED(hr)) return true;
    error_ = what + " failed with " + HresultText(hr);
    return false;
  }
  bool Fail(const std::string& what) {
    error_ = what;
    return false;
  }

  bool WriteLibraryAttributes();
  bool FindDispatch();
  bool Create(const std::string& name, TYPEKIND kind, const Guid& guid, uint16_t flags,
              ComPtr<ICreateTypeInfo2>* info);
  bool WriteEnum(const EnumInfo& e);
  bool WriteInterface(const InterfaceInfo& iface);
  bool WriteMember(ICreateTypeInfo2* info, UINT slot, const MemberInfo& m, const std::string& where,
                   bool events);
  bool WriteClass(const ClassInfo& c);
  bool RefTo(ICreateTypeInfo2* info, const std::string& name, HREFTYPE* ref);
  bool DefaultValue(const ParamInfo& p, VARIANT* value);
  bool FixSavedFile(const std::wstring& path);

  const TypeLibrary& lib_;
  const SYSKIND syskind_;
  std::string error_;
  ComPtr<ICreateTypeLib2> library_;
  ComPtr<ITypeInfo> dispatch_;
  std::map<std::string, ComPtr<ICreateTypeInfo2>> created_;  // by type name
  std::vector<double> doubles_;  // the distinct Double defaults, by placeholder
};

// The storage behind one FUNCDESC: the TYPEDESC chains and default values its ELEMDESCs point
// into, kept at fixed addresses until the description is added.
struct FuncStorage {
  std::deque<TYPEDESC> types;
  std::deque<PARAMDESCEX> defaults;
  std::vector<ELEMDESC> params;

  FuncStorage() = default;
  FuncStorage(const FuncStorage&) = delete;
  FuncStorage& operator=(const FuncStorage&) = delete;
  ~FuncStorage() {
    for (PARAMDESCEX& d : defaults) VariantClear(&d.varDefaultValue);
  }
};

VARTYPE BaseVt(ParamType type) {
  switch (type) {
    case ParamType::kInteger:
      return VT_I2;
    case ParamType::kLong:
      return VT_I4;
    case ParamType::kDouble:
    case ParamType::kDoubleArray:
      return VT_R8;
    case ParamType::kText:
    case ParamType::kTextArray:
      return VT_BSTR;
    case ParamType::kBool:
      return VT_BOOL;
    case ParamType::kVariant:
      return VT_VARIANT;
    case ParamType::kCollection:
      return VT_DISPATCH;
    case ParamType::kEnum:
      return VT_USERDEFINED;
    case ParamType::kNone:
      break;
  }
  return VT_EMPTY;
}

// The default VARIANT of a parameter, in the parameter's own type; a Double stands in as its
// placeholder until the file is saved.
bool Writer::DefaultValue(const ParamInfo& p, VARIANT* value) {
  VariantInit(value);
  switch (p.type) {
    case ParamType::kDouble: {
      size_t index = 0;
      while (index < doubles_.size() && doubles_[index] != p.default_number) ++index;
      if (index == doubles_.size()) doubles_.push_back(p.default_number);
      V_VT(value) = VT_BSTR;
      V_BSTR(value) = SysAllocString(Wide(DoublePlaceholder(index)).c_str());
      return V_BSTR(value) != nullptr;
    }
    case ParamType::kBool:
      V_VT(value) = VT_BOOL;
      V_BOOL(value) = p.default_number != 0 ? VARIANT_TRUE : VARIANT_FALSE;
      return true;
    case ParamType::kLong:
    case ParamType::kEnum:
      V_VT(value) = VT_I4;
      V_I4(value) = static_cast<LONG>(p.default_number);
      return true;
    case ParamType::kInteger:
      V_VT(value) = VT_I2;
      V_I2(value) = static_cast<SHORT>(p.default_number);
      return true;
    case ParamType::kText:
      V_VT(value) = VT_BSTR;
      V_BSTR(value) = SysAllocString(Wide(p.default_text).c_str());
      return V_BSTR(value) != nullptr;
    default:
      return false;
  }
}

bool Writer::Write(const std::wstring& path) {
  if (!Check(CreateTypeLib2(syskind_, path.c_str(), &library_), "CreateTypeLib2")) return false;
  if (!WriteLibraryAttributes() || !FindDispatch()) return false;
  // Enumerations first: the interfaces refer to them, and the classes to the interfaces.
  for (const EnumInfo& e : lib_.enums) {
    if (!WriteEnum(e)) return false;
  }
  for (const InterfaceInfo& iface : lib_.interfaces) {
    if (!WriteInterface(iface)) return false;
  }
  for (const ClassInfo& c : lib_.classes) {
    if (!WriteClass(c)) return false;
  }
  for (auto& [name, info] : created_) {
    if (!Check(info->LayOut(), "LayOut of " + name)) return false;
  }
  return Check(library_->SaveAllChanges(), "SaveAllChanges") && FixSavedFile(path);
}

// What the system's writer can't express is put right in the saved file: Double defaults, and
// vtable sizes of a library for another processor than the writer's.
bool Writer::FixSavedFile(const std::wstring& path) {
  const std::filesystem::path file(path);
  std::ifstream in(file, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (!in.good() && !in.eof()) return Fail("the saved library could not be read back");
  in.close();
  std::string error;
  if (!PatchDoubleDefaults(doubles_, &bytes, &error) ||
      !FixVtableSizes(syskind_ == SYS_WIN64 ? 8 : 4, &bytes, &error)) {
    return Fail(error);
  }
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), std::streamsize(bytes.size()));
  out.close();
  return out ? true : Fail("the library could not be written back with its fixes");
}

bool Writer::WriteLibraryAttributes() {
  const Guid& g = lib_.guid;
  GUID guid;
  static_assert(sizeof guid == sizeof g);
  memcpy(&guid, &g, sizeof guid);
  std::wstring name = Wide(lib_.name), help = Wide(lib_.help_string);
  std::wstring help_file = Wide(lib_.help_file);
  return Check(library_->SetName(name.data()), "SetName") &&
         Check(library_->SetGuid(guid), "SetGuid") &&
         Check(library_->SetDocString(help.data()), "SetDocString") &&
         Check(library_->SetHelpFileName(help_file.data()), "SetHelpFileName") &&
         Check(library_->SetVersion(lib_.major_version, lib_.minor_version), "SetVersion") &&
         Check(library_->SetLcid(lib_.locale), "SetLcid") &&
         Check(library_->SetLibFlags(lib_.control_library ? LIBFLAG_FCONTROL : 0), "SetLibFlags");
}

// IDispatch as the system's standard library describes it; every interface derives from it.
bool Writer::FindDispatch() {
  ComPtr<ITypeLib> stdole;
  return Check(LoadRegTypeLib(IID_StdOle, 2, 0, 0, &stdole), "LoadRegTypeLib of stdole2") &&
         Check(stdole->GetTypeInfoOfGuid(IID_IDispatch, &dispatch_), "IDispatch in stdole2");
}

bool Writer::Create(const std::string& name, TYPEKIND kind, const Guid& g, uint16_t flags,
                    ComPtr<ICreateTypeInfo2>* info) {
  ComPtr<ICreateTypeInfo> created;
  std::wstring wide = Wide(name);
  GUID guid;
  memcpy(&guid, &g, sizeof guid);
  if (!Check(library_->CreateTypeInfo(wide.data(), kind, &created), "CreateTypeInfo " + name) ||
      !Check(created.As(info), "ICreateTypeInfo2 of " + name) ||
      !Check((*info)->SetGuid(guid), "SetGuid of " + name)) {
    return false;
  }
  if (flags != 0 && !Check((*info)->SetTypeFlags(flags), "SetTypeFlags of " + name)) return false;
  created_[name] = *info;
  return true;
}

bool Writer::RefTo(ICreateTypeInfo2* info, const std::string& name, HREFTYPE* ref) {
  auto found = created_.find(name);
  if (found == created_.end()) return Fail("no type " + name + " before its first use");
  ComPtr<ITypeInfo> target;
  return Check(found->second.As(&target), "ITypeInfo of " + name) &&
         Check(info->AddRefTypeInfo(target.Get(), ref), "AddRefTypeInfo " + name);
}

bool Writer::WriteEnum(const EnumInfo& e) {
  ComPtr<ICreateTypeInfo2> info;
  if (!Create(e.name, TKIND_ENUM, e.guid, 0, &info)) return false;
  for (size_t i = 0; i < e.members.size(); ++i) {
    const auto& [name, value] = e.members[i];
    VARIANT v;
    VariantInit(&v);
    V_VT(&v) = VT_I4;
    V_I4(&v) = value;
    VARDESC desc = {};
    desc.memid = EnumMemberId(i);
    desc.varkind = VAR_CONST;
    desc.lpvarValue = &v;
    desc.elemdescVar.tdesc.vt = VT_I4;
    std::wstring wide = Wide(name);
    const std::string where = e.name + "." + name;
    if (!Check(info->AddVarDesc(UINT(i), &desc), "AddVarDesc " + where) ||
        !Check(info->SetVarName(UINT(i), wide.data()), "SetVarName " + where)) {
      return false;
    }
  }
  return true;
}

bool Writer::WriteInterface(const InterfaceInfo& iface) {
  // The system adds the dispatchable flag itself, from the base.
  const uint16_t flags = iface.type_flags() & ~kTypeFlagDispatchable;
  ComPtr<ICreateTypeInfo2> info;
  if (!Create(iface.name, iface.events ? TKIND_DISPATCH : TKIND_INTERFACE, iface.guid, flags,
              &info)) {
    return false;
  }
  HREFTYPE base;
  if (!Check(info->AddRefTypeInfo(dispatch_.Get(), &base), "IDispatch for " + iface.name) ||
      !Check(info->AddImplType(0, base), "AddImplType IDispatch to " + iface.name)) {
    return false;
  }
  for (size_t slot = 0; slot < iface.members.size(); ++slot) {
    const MemberInfo& m = iface.members[slot];
    if (!WriteMember(info.Get(), UINT(slot), m, iface.name + "." + m.name, iface.events)) {
      return false;
    }
  }
  return true;
}

bool Writer::WriteMember(ICreateTypeInfo2* info, UINT slot, const MemberInfo& m,
                         const std::string& where, bool events) {
  FuncStorage storage;
  std::vector<ParamInfo> params = m.params;
  if (!events && m.has_retval()) params.push_back(m.retval_param());
  for (const ParamInfo& p : params) {
    ELEMDESC elem = {};
    TYPEDESC* desc = &elem.tdesc;
    if (p.by_ref || p.retval) {
      desc->vt = VT_PTR;
      desc = desc->lptdesc = &storage.types.emplace_back();
    }
    if (p.type == ParamType::kTextArray || p.type == ParamType::kDoubleArray) {
      desc->vt = VT_SAFEARRAY;
      desc = desc->lptdesc = &storage.types.emplace_back();
    }
    desc->vt = BaseVt(p.type);
    if (desc->vt == VT_EMPTY) return Fail(where + ": parameter " + p.name + " has no type");
    if (p.type == ParamType::kEnum && !RefTo(info, p.enum_name, &desc->hreftype)) return false;
    elem.paramdesc.wParamFlags = ParamFlags(p);
    if (p.has_default) {
      PARAMDESCEX& ex = storage.defaults.emplace_back();
      ex.cBytes = sizeof ex;
      if (!DefaultValue(p, &ex.varDefaultValue)) {
        return Fail(where + ": no default value of the type of " + p.name);
      }
      elem.paramdesc.pparamdescex = &ex;
    }
    storage.params.push_back(elem);
  }

  FUNCDESC func = {};
  func.memid = m.dispid;
  func.funckind = events ? FUNC_DISPATCH : FUNC_PUREVIRTUAL;
  func.invkind = m.kind == MemberKind::kGet   ? INVOKE_PROPERTYGET
                 : m.kind == MemberKind::kPut ? INVOKE_PROPERTYPUT
                                              : INVOKE_FUNC;
  func.callconv = CC_STDCALL;
  func.cParams = SHORT(storage.params.size());
  func.lprgelemdescParam = storage.params.data();
  const int pointer = syskind_ == SYS_WIN64 ? 8 : 4;
  func.oVft = events ? 0 : SHORT((kDispatchSlots + slot) * pointer);
  func.elemdescFunc.tdesc.vt = events ? VT_VOID : VT_HRESULT;
  func.wFuncFlags = m.browsable ? 0 : FUNCFLAG_FNONBROWSABLE;
  if (!Check(info->AddFuncDesc(slot, &func), "AddFuncDesc " + where)) return false;

  // The function's name, then its parameters' names; the new value of a put and the retval
  // parameter go unnamed, as COM has it.
  std::vector<std::wstring> names = {Wide(m.name)};
  size_t named = m.params.size();
  if (m.kind == MemberKind::kPut && named > 0) --named;
  for (size_t i = 0; i < named; ++i) names.push_back(Wide(m.params[i].name));
  std::vector<LPOLESTR> pointers;
  for (std::wstring& n : names) pointers.push_back(n.data());
  if (!Check(info->SetFuncAndParamNames(slot, pointers.data(), UINT(pointers.size())),
             "SetFuncAndParamNames " + where)) {
    return false;
  }
  if (m.help.empty()) return true;
  std::wstring help = Wide(m.help);
  return Check(info->SetFuncDocString(slot, help.data()), "SetFuncDocString " + where);
}

bool Writer::WriteClass(const ClassInfo& c) {
  ComPtr<ICreateTypeInfo2> info;
  if (!Create(c.name, TKIND_COCLASS, c.guid, c.type_flags(), &info)) return false;
  const std::vector<ImplementedInterface> list = c.implemented_interfaces();
  for (size_t i = 0; i < list.size(); ++i) {
    HREFTYPE ref;
    const std::string where = c.name + " " + list[i].name;
    if (!RefTo(info.Get(), list[i].name, &ref) ||
        !Check(info->AddImplType(UINT(i), ref), "AddImplType " + where) ||
        !Check(info->SetImplTypeFlags(UINT(i), list[i].flags), "SetImplTypeFlags " + where)) {
      return false;
    }
  }
  return true;
}

}  // namespace

bool WriteTypeLibrary(const TypeLibrary& lib, const std::wstring& path, SYSKIND syskind,
                      std::string* error) {
  Writer writer(lib, syskind);
  if (writer.Write(path)) return true;
  *error = writer.error();
  return false;
}

}  // namespace qorvel
