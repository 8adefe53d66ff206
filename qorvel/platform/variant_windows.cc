#include "qorvel/platform/variant_windows.h"

#include <cmath>
#include <cstring>
#include <new>

#include "qorvel/platform/com_windows.h"
#include "qorvel/platform/dispatch_windows.h"
#include "qorvel/platform/error.h"

namespace qorvel::win {
namespace {

constexpr VARTYPE VtOf(VarType type) { return static_cast<VARTYPE>(type); }

// The library's element type of a platform array; 13 for one it doesn't carry.
VarType ElementOf(VARTYPE vt) {
  switch (vt) {
    case VT_I2:
    case VT_I4:
    case VT_R8:
    case VT_BSTR:
    case VT_BOOL:
    case VT_VARIANT:
      return static_cast<VarType>(vt);
    default:
      Raise(err::kTypeMismatch);
  }
}

// A by-reference argument whose pointer is missing is the caller's error, not a crash.
void CheckRef(const VARIANT& v) {
  if ((v.vt & VT_BYREF) && v.byref == nullptr) Raise(err::kInvalidCall);
}

// A number of a type the library doesn't carry (Single, Currency, Date, Decimal, bytes, 64-bit
// integers): whole values that fit a Long come as a Long, the rest as a Double.
Variant OtherNumber(const VARIANT& v) {
  UniqueVariant as_double;
  if (FAILED(VariantChangeType(&as_double, const_cast<VARIANT*>(&v), 0, VT_R8)))
    Raise(err::kTypeMismatch);
  const double d = as_double.dblVal;
  if (d == std::trunc(d) && d >= -2147483648.0 && d <= 2147483647.0) {
    return Variant(static_cast<int32_t>(d));
  }
  return Variant(d);
}

Variant FromObject(IDispatch* object) {
  if (object == nullptr) return Variant(AutomationObject());
  AutomationObject own = ExposedObject(object);
  return Variant(own ? own : WrapDispatch(object));
}

// The element at `index` of an accessed array's data.
Variant Element(const void* data, VARTYPE vt, int64_t i) {
  switch (vt) {
    case VT_I2:
      return Variant(static_cast<const int16_t*>(data)[i]);
    case VT_I4:
      return Variant(static_cast<int32_t>(static_cast<const LONG*>(data)[i]));
    case VT_R8:
      return Variant(static_cast<const double*>(data)[i]);
    case VT_BOOL:
      return Variant(MakeVariantBool(static_cast<const VARIANT_BOOL*>(data)[i]));
    case VT_BSTR:
      return Variant(Narrow(static_cast<const BSTR*>(data)[i]));
    default:
      return FromVariant(static_cast<const VARIANT*>(data)[i]);
  }
}

void PutElement(void* data, VARTYPE vt, int64_t i, const Variant& value) {
  switch (vt) {
    case VT_I2:
      static_cast<int16_t*>(data)[i] = value.ToInteger();
      return;
    case VT_I4:
      static_cast<LONG*>(data)[i] = value.ToLong();
      return;
    case VT_R8:
      static_cast<double*>(data)[i] = value.ToDouble();
      return;
    case VT_BOOL:
      static_cast<VARIANT_BOOL*>(data)[i] = RawBool(value.ToBool());
      return;
    case VT_BSTR:
      static_cast<BSTR*>(data)[i] = Bstr(value.ToText()).detach();
      return;
    default:
      ToVariant(value, &static_cast<VARIANT*>(data)[i]);
  }
}

// Access to a platform array's data for the length of a scope.
class ArrayData {
 public:
  explicit ArrayData(SAFEARRAY* array) : array_(array) {
    if (FAILED(SafeArrayAccessData(array_, &data_))) Raise(err::kArrayLocked);
  }
  ~ArrayData() { SafeArrayUnaccessData(array_); }
  void* get() const { return data_; }

 private:
  SAFEARRAY* array_;
  void* data_ = nullptr;
};

bool IsFixed(const SAFEARRAY* array) {
  return (array->fFeatures & (FADF_FIXEDSIZE | FADF_STATIC | FADF_EMBEDDED)) != 0 ||
         array->cLocks > 0;
}

// The VARIANT a by-reference Variant argument finally stands for: a script's variable may
// itself hold a reference to the caller's caller's.
VARIANT* Target(VARIANT* v) {
  for (int depth = 0; depth < 8 && v->vt == (VT_BYREF | VT_VARIANT) && v->pvarVal; ++depth) {
    v = v->pvarVal;
  }
  return v;
}

// A value as a Variant variable of the caller gets it. An array goes back typed into a variable
// that held a typed array (a program's own copy of its data), and as an array of Variant into
// one that was Empty or held Variants: the only arrays a script can index.
void ToCallerVariant(const Variant& value, bool typed, VARIANT* out) {
  if (!value.is_array() || typed) return ToVariant(value, out);
  VariantInit(out);
  out->parray = ToSafeArray(value.ToArray(), VT_VARIANT);
  out->vt = VT_ARRAY | VT_VARIANT;
}

// A typed array variable of the caller gets the array in its own element type: in place when
// the caller's array can't be replaced (the member kept to its bounds), else a new one.
void WriteArray(const SafeArray& array, SAFEARRAY** place, VARTYPE element) {
  SAFEARRAY* fresh = ToSafeArray(array, element);
  if (*place != nullptr && IsFixed(*place)) {
    const HRESULT hr = fresh ? SafeArrayCopyData(fresh, *place) : E_INVALIDARG;
    if (fresh) SafeArrayDestroy(fresh);
    if (FAILED(hr)) Raise(err::kArrayLocked);
    return;
  }
  if (*place != nullptr) SafeArrayDestroy(*place);
  *place = fresh;
}

}  // namespace

void ToVariant(const Variant& value, VARIANT* out) {
  VariantInit(out);
  if (value.is_array()) {  // whose type() is its elements'
    const SafeArray array = value.ToArray();
    out->parray = ToSafeArray(array);
    out->vt = VT_ARRAY | VtOf(array.element_type());
    return;
  }
  switch (value.type()) {
    case VarType::kEmpty:
      return;
    case VarType::kNull:
      out->vt = VT_NULL;
      return;
    case VarType::kInteger:
      out->iVal = value.ToInteger();
      out->vt = VT_I2;
      return;
    case VarType::kLong:
      out->lVal = value.ToLong();
      out->vt = VT_I4;
      return;
    case VarType::kDouble:
      out->dblVal = value.ToDouble();
      out->vt = VT_R8;
      return;
    case VarType::kBool:
      out->boolVal = RawBool(value.ToBool());
      out->vt = VT_BOOL;
      return;
    case VarType::kText:
      out->bstrVal = Bstr(value.ToText()).detach();
      out->vt = VT_BSTR;
      return;
    case VarType::kObject: {
      const AutomationObject object = value.ToObject();
      IDispatch* platform = WrappedDispatch(object);
      if (platform) platform->AddRef();
      out->pdispVal = platform ? platform : object ? ExposeObject(object) : nullptr;
      out->vt = VT_DISPATCH;
      return;
    }
    default:
      Raise(err::kTypeMismatch);
  }
}

Variant FromVariant(const VARIANT& in) {
  const VARIANT* v = &in;
  CheckRef(*v);
  if (v->vt == (VT_BYREF | VT_VARIANT)) v = Target(v->pvarVal);
  CheckRef(*v);
  const bool ref = (v->vt & VT_BYREF) != 0;
  const VARTYPE vt = v->vt & ~VT_BYREF;
  if (vt & VT_ARRAY) return Variant(FromSafeArray(ref ? *v->pparray : v->parray));
  switch (vt) {
    case VT_EMPTY:
      return Variant();
    case VT_NULL:
      return Variant::Null();
    case VT_I2:
      return Variant(static_cast<int16_t>(ref ? *v->piVal : v->iVal));
    case VT_I4:
      return Variant(static_cast<int32_t>(ref ? *v->plVal : v->lVal));
    case VT_R8:
      return Variant(ref ? *v->pdblVal : v->dblVal);
    case VT_BOOL:
      return Variant(MakeVariantBool(ref ? *v->pboolVal : v->boolVal));
    case VT_BSTR:
      return Variant(Narrow(ref ? *v->pbstrVal : v->bstrVal));
    case VT_DISPATCH:
      return FromObject(ref ? *v->ppdispVal : v->pdispVal);
    case VT_UNKNOWN: {
      IUnknown* unknown = ref ? *v->ppunkVal : v->punkVal;
      if (unknown == nullptr) return Variant(AutomationObject());
      ComPtr<IDispatch> object;
      if (FAILED(unknown->QueryInterface(IID_IDispatch, object.put_void()))) {
        Raise(err::kTypeMismatch);
      }
      return FromObject(object.get());
    }
    case VT_ERROR:
      // How a client leaves out an optional argument in the middle of a list.
      if ((ref ? *v->pscode : v->scode) == DISP_E_PARAMNOTFOUND) return Variant();
      Raise(err::kTypeMismatch);
    default:
      return OtherNumber(*v);
  }
}

SAFEARRAY* ToSafeArray(const SafeArray& array) {
  return ToSafeArray(array, VtOf(array.element_type()));
}

SAFEARRAY* ToSafeArray(const SafeArray& array, VARTYPE element) {
  if (array.dims() == 0) return nullptr;  // an array not yet dimensioned
  std::vector<SAFEARRAYBOUND> bounds;
  for (const Bound& b : array.bounds()) {
    bounds.push_back({static_cast<ULONG>(b.count), static_cast<LONG>(b.lower)});
  }
  SAFEARRAY* out = SafeArrayCreate(element, static_cast<UINT>(bounds.size()), bounds.data());
  if (out == nullptr) Raise(err::kOutOfMemory);
  try {
    ArrayData data(out);
    if (element == VT_R8 && array.element_type() == VarType::kDouble) {
      const std::span<const double> numbers = array.Doubles();
      if (!numbers.empty()) std::memcpy(data.get(), numbers.data(), numbers.size_bytes());
    } else {
      for (int64_t i = 0; i < array.size(); ++i)
        PutElement(data.get(), element, i, array.GetFlat(i));
    }
  } catch (...) {
    SafeArrayDestroy(out);
    throw;
  }
  return out;
}

SafeArray FromSafeArray(const SAFEARRAY* in) {
  if (in == nullptr || in->cDims == 0) return SafeArray();
  SAFEARRAY* array = const_cast<SAFEARRAY*>(in);  // the platform's calls take no const
  VARTYPE vt = VT_EMPTY;
  if (FAILED(SafeArrayGetVartype(array, &vt))) Raise(err::kTypeMismatch);
  const VarType element = ElementOf(vt);
  std::vector<Bound> bounds;
  for (UINT d = 1; d <= in->cDims; ++d) {
    LONG lower = 0;
    LONG upper = 0;
    SafeArrayGetLBound(array, d, &lower);
    SafeArrayGetUBound(array, d, &upper);
    bounds.push_back(
        {static_cast<int32_t>(lower), static_cast<int32_t>(int64_t{upper} - int64_t{lower} + 1)});
  }
  SafeArray out = IsFixed(in) ? SafeArray::Fixed(element, bounds) : SafeArray(element, bounds);
  ArrayData data(array);
  if (element == VarType::kDouble) {
    const std::span<double> numbers = out.MutableDoubles();
    if (!numbers.empty()) std::memcpy(numbers.data(), data.get(), numbers.size_bytes());
  } else {
    for (int64_t i = 0; i < out.size(); ++i) out.PutFlat(i, Element(data.get(), vt, i));
  }
  return out;
}

IncomingArgs::IncomingArgs(const DISPPARAMS& params) {
  const UINT n = params.cArgs;
  if (n > 0 && params.rgvarg == nullptr) Raise(err::kInvalidCall);
  args_.reserve(n);
  held_.reserve(n);
  for (UINT i = 0; i < n; ++i) args_.push_back(Take(params.rgvarg[n - 1 - i]));
}

Variant IncomingArgs::Take(VARIANT& arg) {
  if (!(arg.vt & VT_BYREF)) return FromVariant(arg);
  CheckRef(arg);
  const VARTYPE vt = arg.vt & ~VT_BYREF;
  switch (vt) {  // the caller's storage has the library's layout: write straight into it
    case VT_I2:
      return Variant::Ref(*reinterpret_cast<int16_t*>(arg.piVal));
    case VT_I4:
      return Variant::Ref(*reinterpret_cast<int32_t*>(arg.plVal));
    case VT_R8:
      return Variant::Ref(*arg.pdblVal);
    case VT_BOOL:
      return Variant::Ref(*reinterpret_cast<VariantBool*>(arg.pboolVal));
    default:
      break;
  }
  Held& held = held_.emplace_back();
  held.caller = &arg;
  switch (vt) {
    case VT_BSTR:
      held.text = Narrow(*arg.pbstrVal);
      return Variant::Ref(held.text);
    case VT_DISPATCH:
      held.object = FromVariant(arg).ToObject();
      return Variant::Ref(held.object);
    case VT_VARIANT: {
      const VARIANT* target = Target(arg.pvarVal);
      const VARTYPE held_vt = target->vt & ~VT_BYREF;
      held.typed_array = (held_vt & VT_ARRAY) && (held_vt & VT_TYPEMASK) != VT_VARIANT;
      held.value = FromVariant(*arg.pvarVal);
      return Variant::Ref(held.value);
    }
    default:
      break;
  }
  if (!(vt & VT_ARRAY)) {
    held_.pop_back();
    Raise(err::kTypeMismatch);
  }
  held.array = FromSafeArray(*arg.pparray);
  return Variant::Ref(held.array);
}

void IncomingArgs::WriteBack() {
  for (Held& held : held_) {
    VARIANT* caller = held.caller;
    switch (caller->vt & ~VT_BYREF) {
      case VT_BSTR: {
        BSTR text = Bstr(held.text).detach();
        SysFreeString(*caller->pbstrVal);
        *caller->pbstrVal = text;
        break;
      }
      case VT_DISPATCH: {
        UniqueVariant object;
        ToVariant(Variant(held.object), &object);
        IDispatch* old = std::exchange(*caller->ppdispVal, object.pdispVal);
        object.vt = VT_EMPTY;  // handed over
        if (old) old->Release();
        break;
      }
      case VT_VARIANT: {
        VARIANT fresh;
        ToCallerVariant(held.value, held.typed_array, &fresh);
        VARIANT* target = Target(caller->pvarVal);
        VariantClear(target);
        *target = fresh;
        break;
      }
      default:
        WriteArray(held.array, caller->pparray, caller->vt & ~(VT_BYREF | VT_ARRAY));
    }
  }
}

OutgoingArgs::OutgoingArgs(std::span<Variant> args, bool property_put) : args_(args) {
  const size_t n = args.size();
  passed_.resize(n);
  targets_.reserve(n);
  for (VARIANT& v : passed_) VariantInit(&v);
  try {
    for (size_t i = 0; i < n; ++i) {
      VARIANT& slot = passed_[n - 1 - i];
      const Variant& arg = args[i];
      if (!arg.is_ref()) {
        ToVariant(arg, &slot);
        continue;
      }
      VARIANT& target = targets_.emplace_back();
      ToVariant(arg, &target);
      if (arg.vt() == (kByRefFlag | static_cast<uint16_t>(VarType::kVariant))) {
        slot.pvarVal = &target;
        slot.vt = VT_BYREF | VT_VARIANT;
        continue;
      }
      // A typed reference: the callee sees the type of the library's variable.
      target.vt = static_cast<VARTYPE>(arg.vt() & ~kByRefFlag);
      slot.byref = &target.lVal;  // every member of the union starts here
      slot.vt = VT_BYREF | target.vt;
    }
  } catch (...) {
    Clear();
    throw;
  }
  params_.rgvarg = passed_.data();
  params_.cArgs = static_cast<UINT>(n);
  if (property_put) {
    params_.rgdispidNamedArgs = &put_;
    params_.cNamedArgs = 1;
  }
}

OutgoingArgs::~OutgoingArgs() { Clear(); }

void OutgoingArgs::Clear() {
  for (VARIANT& v : passed_) VariantClear(&v);  // by-reference ones don't own their targets
  for (VARIANT& v : targets_) VariantClear(&v);
  passed_.clear();
  targets_.clear();
}

void OutgoingArgs::WriteBack() {
  size_t held = 0;
  for (Variant& arg : args_) {
    if (arg.is_ref()) arg.Assign(FromVariant(targets_[held++]));
  }
}

}  // namespace qorvel::win
