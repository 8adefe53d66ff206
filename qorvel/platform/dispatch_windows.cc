#include "qorvel/platform/dispatch_windows.h"

#include <atomic>
#include <new>

#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/text.h"
#include "qorvel/platform/variant_windows.h"

namespace qorvel::win {

// {6B4B4EE1-214D-43BB-85C8-86927029C609}
const IID IID_IQorvelObject = {
    0x6b4b4ee1, 0x214d, 0x43bb, {0x85, 0xc8, 0x86, 0x92, 0x70, 0x29, 0xc6, 0x09}};

namespace {

std::atomic<LONG> live_dispatches{0};
std::atomic<Exposer> exposer{nullptr};
const char kThisModule = 0;

// The runtime's number for an HRESULT that carries no number of its own.
int32_t NumberOf(HRESULT hr) {
  if (HRESULT_FACILITY(hr) == FACILITY_CONTROL) return HRESULT_CODE(hr);
  switch (hr) {
    case DISP_E_UNKNOWNNAME:
    case DISP_E_MEMBERNOTFOUND:
      return err::kNoMember;
    case DISP_E_TYPEMISMATCH:
      return err::kTypeMismatch;
    case DISP_E_BADPARAMCOUNT:
    case DISP_E_PARAMNOTOPTIONAL:
      return err::kWrongArgs;
    case DISP_E_OVERFLOW:
      return err::kOverflow;
    case DISP_E_BADINDEX:
      return err::kSubscript;
    case E_OUTOFMEMORY:
      return err::kOutOfMemory;
    case E_INVALIDARG:
      return err::kInvalidCall;
    case RPC_E_DISCONNECTED:
    case RPC_E_SERVER_DIED:
    case RPC_E_SERVER_DIED_DNE:
    case CO_E_OBJNOTCONNECTED:
    case HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE):
    case HRESULT_FROM_WIN32(RPC_S_CALL_FAILED):
      return err::kServerGone;
    case REGDB_E_CLASSNOTREG:
    case CO_E_CLASSSTRING:
    case MK_E_UNAVAILABLE:
    case CO_E_SERVER_EXEC_FAILURE:
      return err::kCantCreate;
    default:
      return static_cast<int32_t>(hr);
  }
}

WORD FlagsOf(CallKind kind) {
  switch (kind) {
    case CallKind::kPropertyGet:
      return DISPATCH_PROPERTYGET;
    case CallKind::kPropertyPut:
      return DISPATCH_PROPERTYPUT;
    default:  // as a late-bound VB caller asks: a method, or a property read with arguments
      return DISPATCH_METHOD | DISPATCH_PROPERTYGET;
  }
}

void FreeExcepInfo(EXCEPINFO& info) {
  SysFreeString(info.bstrSource);
  SysFreeString(info.bstrDescription);
  SysFreeString(info.bstrHelpFile);
}

// A platform object behind the library's Dispatch.
class ClientDispatch final : public Dispatch {
 public:
  explicit ClientDispatch(IDispatch* object) : object_(object) {}
  IDispatch* get() const { return object_.get(); }

  Variant Invoke(std::string_view member, CallKind kind, std::span<Variant> args) override {
    return InvokeById(IdOf(member), kind, args);
  }

  Variant InvokeById(int32_t id, CallKind kind, std::span<Variant> args) override {
    OutgoingArgs out(args, kind == CallKind::kPropertyPut);
    UniqueVariant result;
    EXCEPINFO info{};
    UINT arg_err = 0;
    const HRESULT hr =
        object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, FlagsOf(kind), out.params(),
                        kind == CallKind::kPropertyPut ? nullptr : &result, &info, &arg_err);
    if (hr == DISP_E_EXCEPTION && info.pfnDeferredFillIn) info.pfnDeferredFillIn(&info);
    Error error = ErrorOf(hr, &info);
    FreeExcepInfo(info);
    out.WriteBack();  // a failed call's by-reference results are the caller's too
    if (FAILED(hr)) throw error;
    return FromVariant(result);
  }

 private:
  DISPID IdOf(std::string_view member) {
    const std::string key = UpperCase(member);
    {
      std::lock_guard lock(mu_);
      if (auto it = ids_.find(key); it != ids_.end()) return it->second;
    }
    std::wstring name = Widen(member);
    LPOLESTR names[] = {name.data()};
    DISPID id = DISPID_UNKNOWN;
    const HRESULT hr = object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(hr)) throw ErrorOf(hr, nullptr);
    std::lock_guard lock(mu_);
    ids_.emplace(key, id);
    return id;
  }

  ComPtr<IDispatch> object_;
  std::mutex mu_;
  std::map<std::string, DISPID, std::less<>> ids_;
};

IDispatch* DefaultExposer(AutomationObject object) { return new ObjectDispatch(std::move(object)); }

}  // namespace

HRESULT ErrorHresult(int32_t number) {
  if (number < 0) return static_cast<HRESULT>(number);  // a platform HRESULT passed on
  return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, number & 0xffff);
}

HRESULT ReportError(const Error& error, EXCEPINFO* excep_info) {
  const HRESULT hr = ErrorHresult(error.number());
  const std::wstring description = Widen(error.description());
  ComPtr<ICreateErrorInfo> create;
  if (SUCCEEDED(CreateErrorInfo(create.put()))) {
    create->SetDescription(const_cast<LPOLESTR>(description.c_str()));
    ComPtr<IErrorInfo> info;
    if (SUCCEEDED(create->QueryInterface(IID_IErrorInfo, info.put_void()))) {
      SetErrorInfo(0, info.get());
    }
  }
  if (excep_info) {
    *excep_info = EXCEPINFO{};
    excep_info->scode = hr;
    excep_info->bstrDescription = SysAllocString(description.c_str());
  }
  return DISP_E_EXCEPTION;
}

Error ErrorOf(HRESULT hr, const EXCEPINFO* info) {
  if (hr == DISP_E_EXCEPTION && info) {
    const int32_t number = info->wCode ? info->wCode : NumberOf(info->scode);
    std::string text = Narrow(info->bstrDescription);
    return text.empty() ? Error(number) : Error(number, std::move(text));
  }
  return Error(NumberOf(hr));
}

AutomationObject WrapDispatch(IDispatch* object) {
  if (object == nullptr) return nullptr;
  return std::make_shared<ClientDispatch>(object);
}

IDispatch* WrappedDispatch(const AutomationObject& object) {
  const auto* client = dynamic_cast<const ClientDispatch*>(object.get());
  return client ? client->get() : nullptr;
}

IDispatch* ExposeObject(AutomationObject object) {
  const Exposer installed = exposer.load();
  return (installed ? installed : DefaultExposer)(std::move(object));
}

void SetExposer(Exposer e) { exposer.store(e); }

AutomationObject ExposedObject(IUnknown* object) {
  ComPtr<IQorvelObject> own;
  if (object == nullptr || FAILED(object->QueryInterface(IID_IQorvelObject, own.put_void())) ||
      own->Module() != &kThisModule) {
    return nullptr;
  }
  return own->Object();
}

CallKind KindOfFlags(WORD flags) {
  if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) return CallKind::kPropertyPut;
  if (flags & DISPATCH_METHOD) return CallKind::kMethod;
  return CallKind::kPropertyGet;
}

LONG LiveDispatches() { return live_dispatches.load(); }

ObjectDispatch::ObjectDispatch(AutomationObject object) : object_(std::move(object)) {
  ++live_dispatches;
}

ObjectDispatch::~ObjectDispatch() { --live_dispatches; }

const void* ObjectDispatch::Module() { return &kThisModule; }

HRESULT ObjectDispatch::QueryInterface(REFIID riid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (riid == IID_IUnknown || riid == IID_IDispatch) {
    *out = static_cast<IDispatch*>(this);
  } else if (riid == IID_ISupportErrorInfo) {
    *out = static_cast<ISupportErrorInfo*>(this);
  } else if (riid == IID_IQorvelObject) {
    *out = static_cast<IQorvelObject*>(this);
  } else {
    *out = QueryOther(riid);
  }
  if (*out == nullptr) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

ULONG ObjectDispatch::AddRef() { return InterlockedIncrement(&refs_); }

ULONG ObjectDispatch::Release() {
  const ULONG left = InterlockedDecrement(&refs_);
  if (left == 0) delete this;
  return left;
}

HRESULT ObjectDispatch::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT ObjectDispatch::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info) *info = nullptr;
  return DISP_E_BADINDEX;
}

HRESULT ObjectDispatch::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
  // Only the member is named; its arguments are passed by position.
  for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
  try {
    ids[0] = IdOfName(Narrow(names[0], wcslen(names[0])));
  } catch (...) {
    return E_OUTOFMEMORY;
  }
  if (ids[0] == DISPID_UNKNOWN) return DISP_E_UNKNOWNNAME;
  return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT ObjectDispatch::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                               VARIANT* result, EXCEPINFO* excep_info, UINT*) {
  if (params == nullptr) return E_INVALIDARG;
  const CallKind kind = KindOfFlags(flags);
  const UINT named_allowed = kind == CallKind::kPropertyPut ? 1 : 0;
  if (params->cNamedArgs > named_allowed ||
      (params->cNamedArgs == 1 && params->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT)) {
    return DISP_E_NONAMEDARGS;
  }
  if (result) VariantInit(result);
  try {
    IncomingArgs in(*params);
    Variant value;
    try {
      value = Call(id, kind, in.args());
    } catch (const Error&) {
      try {
        in.WriteBack();
      } catch (...) {  // the member's own error is the one to report
      }
      throw;
    }
    in.WriteBack();
    if (result) ToVariant(value, result);
    return S_OK;
  } catch (const Error& error) {
    return ReportError(error, excep_info);
  } catch (const std::bad_alloc&) {
    return ReportError(Error(err::kOutOfMemory), excep_info);
  }
}

HRESULT ObjectDispatch::InterfaceSupportsErrorInfo(REFIID) { return S_OK; }

void* ObjectDispatch::QueryOther(REFIID) { return nullptr; }

DISPID ObjectDispatch::IdOfName(const std::string& name) {
  if (object_->Shape(name) == MemberShape::kMissing) return DISPID_UNKNOWN;
  const std::string key = UpperCase(name);
  std::lock_guard lock(names_mu_);
  if (auto it = ids_.find(key); it != ids_.end()) return it->second;
  names_.push_back(name);
  const DISPID id = static_cast<DISPID>(names_.size());
  ids_.emplace(key, id);
  return id;
}

Variant ObjectDispatch::Call(DISPID id, CallKind kind, std::span<Variant> args) {
  std::string name;
  {
    std::lock_guard lock(names_mu_);
    if (id < 1 || static_cast<size_t>(id) > names_.size()) Raise(err::kNoMember);
    name = names_[static_cast<size_t>(id) - 1];
  }
  return object_->Invoke(name, kind, args);
}

}  // namespace qorvel::win
