#include "qorvel/platform/variant.h"

#include <cmath>
#include <limits>

#include "qorvel/platform/error.h"
#include "qorvel/platform/numbers.h"
#include "qorvel/platform/safe_array.h"
#include "qorvel/platform/text.h"

namespace qorvel {

namespace {

inline constexpr int32_t kInvalidUseOfNull = 94;

[[noreturn]] void RaiseNull() { Raise(kInvalidUseOfNull, "Invalid use of Null"); }

// Banker's rounding, as the automation runtime rounds every Double it stores in an integer.
double RoundHalfEven(double x) {
  double floor = std::floor(x);
  double fraction = x - floor;
  if (fraction > 0.5) return floor + 1;
  if (fraction < 0.5) return floor;
  return std::fmod(floor, 2.0) == 0 ? floor : floor + 1;
}

template <class Int>
Int RoundToInt(double x) {
  if (!std::isfinite(x)) Raise(err::kOverflow);
  double rounded = RoundHalfEven(x);
  if (rounded < std::numeric_limits<Int>::min() || rounded > std::numeric_limits<Int>::max()) {
    Raise(err::kOverflow);
  }
  return static_cast<Int>(rounded);
}

// The target matters to hex and octal literals: "&HFFFF" is -1 as an Integer, 65535 otherwise.
double TextToNumber(const std::string& text, NumberTarget target) {
  const NumberReading number = ReadNumber(text, target);
  if (number.status == NumberStatus::kOverflow) Raise(err::kOverflow);
  if (number.status != NumberStatus::kNumber) Raise(err::kTypeMismatch);
  return number.value;
}

}  // namespace

Variant::Variant(int16_t v) : value_(v) {}
Variant::Variant(int32_t v) : value_(v) {}
Variant::Variant(double v) : value_(v) {}
Variant::Variant(VariantBool v) : value_(v) {}
Variant::Variant(bool v) : value_(ToVariantBool(v)) {}
Variant::Variant(std::string v) : value_(std::move(v)) {}
Variant::Variant(std::string_view v) : value_(std::string(v)) {}
Variant::Variant(const char* v) : value_(std::string(v ? v : "")) {}
Variant::Variant(AutomationObject v) : value_(std::move(v)) {}
// A copy, not the array itself: a variant holds a plain resizable array whatever it was given.
Variant::Variant(SafeArray v)
    : value_(std::make_shared<SafeArray>(static_cast<const SafeArray&>(v))) {}

// Arrays sit behind a pointer only because the type is incomplete here; copies get their own
// array object, which shares storage with the original until one of them writes.
Variant::Variant(const Variant& other) : value_(other.value_) {
  if (auto* array = std::get_if<std::shared_ptr<SafeArray>>(&value_)) {
    *array = std::make_shared<SafeArray>(**array);
  }
}

Variant::Variant(Variant&& other) noexcept : value_(std::move(other.value_)) {
  other.value_ = std::monostate{};
}

Variant& Variant::operator=(const Variant& other) {
  if (this != &other) *this = Variant(other);
  return *this;
}

Variant& Variant::operator=(Variant&& other) noexcept {
  if (this != &other) {
    value_ = std::move(other.value_);
    other.value_ = std::monostate{};
  }
  return *this;
}

Variant::~Variant() = default;

Variant Variant::Null() {
  Variant v;
  v.value_ = NullTag{};
  return v;
}

// By-reference forms keep the target's type code, so a write through them converts to it.
Variant Variant::Ref(int16_t& target) {
  Variant v;
  v.value_ = Ref_{kByRefFlag | uint16_t(VarType::kInteger), &target};
  return v;
}
Variant Variant::Ref(int32_t& target) {
  Variant v;
  v.value_ = Ref_{kByRefFlag | uint16_t(VarType::kLong), &target};
  return v;
}
Variant Variant::Ref(double& target) {
  Variant v;
  v.value_ = Ref_{kByRefFlag | uint16_t(VarType::kDouble), &target};
  return v;
}
Variant Variant::Ref(VariantBool& target) {
  Variant v;
  v.value_ = Ref_{kByRefFlag | uint16_t(VarType::kBool), &target};
  return v;
}
Variant Variant::Ref(std::string& target) {
  Variant v;
  v.value_ = Ref_{kByRefFlag | uint16_t(VarType::kText), &target};
  return v;
}
Variant Variant::Ref(AutomationObject& target) {
  Variant v;
  v.value_ = Ref_{kByRefFlag | uint16_t(VarType::kObject), &target};
  return v;
}
// The element type of an array can change when the array is replaced, so vt() reads it from
// the target each time.
Variant Variant::Ref(SafeArray& target) {
  Variant v;
  v.value_ = Ref_{kByRefFlag | kArrayFlag, &target};
  return v;
}
Variant Variant::Ref(Variant& target) {
  Variant v;
  v.value_ = Ref_{kByRefFlag | uint16_t(VarType::kVariant), &target};
  return v;
}

uint16_t Variant::vt() const {
  switch (value_.index()) {
    case 0:
      return uint16_t(VarType::kEmpty);
    case 1:
      return uint16_t(VarType::kNull);
    case 2:
      return uint16_t(VarType::kInteger);
    case 3:
      return uint16_t(VarType::kLong);
    case 4:
      return uint16_t(VarType::kDouble);
    case 5:
      return uint16_t(VarType::kText);
    case 6:
      return uint16_t(VarType::kObject);
    case 7:
      return uint16_t(VarType::kBool);
    case 8:
      return kArrayFlag | uint16_t(std::get<8>(value_)->element_type());
    default: {
      const Ref_& ref = std::get<Ref_>(value_);
      if (ref.vt & kArrayFlag) {
        return ref.vt | uint16_t(static_cast<SafeArray*>(ref.target)->element_type());
      }
      return ref.vt;
    }
  }
}

bool Variant::is_ref() const { return std::holds_alternative<Ref_>(value_); }

// A reference to a Variant reports the type of the value it reaches.
const Variant* Variant::Referenced() const {
  const Ref_* ref = std::get_if<Ref_>(&value_);
  if (ref && ref->vt == (kByRefFlag | uint16_t(VarType::kVariant))) {
    return static_cast<const Variant*>(ref->target);
  }
  return nullptr;
}

VarType Variant::type() const {
  if (const Variant* target = Referenced()) return target->type();
  return static_cast<VarType>(vt() & ~(kByRefFlag | kArrayFlag));
}

bool Variant::is_array() const {
  if (const Variant* target = Referenced()) return target->is_array();
  return (vt() & kArrayFlag) != 0;
}

Variant Variant::Deref() const {
  const Ref_* ref = std::get_if<Ref_>(&value_);
  if (!ref) return *this;
  if (ref->vt & kArrayFlag) return Variant(*static_cast<SafeArray*>(ref->target));
  switch (static_cast<VarType>(ref->vt & ~kByRefFlag)) {
    case VarType::kInteger:
      return Variant(*static_cast<int16_t*>(ref->target));
    case VarType::kLong:
      return Variant(*static_cast<int32_t*>(ref->target));
    case VarType::kDouble:
      return Variant(*static_cast<double*>(ref->target));
    case VarType::kBool:
      return Variant(*static_cast<VariantBool*>(ref->target));
    case VarType::kText:
      return Variant(*static_cast<std::string*>(ref->target));
    case VarType::kObject:
      return Variant(*static_cast<AutomationObject*>(ref->target));
    default:
      return static_cast<Variant*>(ref->target)->Deref();
  }
}

double Variant::ToDouble() const {
  if (is_ref()) return Deref().ToDouble();
  switch (value_.index()) {
    case 0:
      return 0;
    case 1:
      RaiseNull();
    case 2:
      return std::get<int16_t>(value_);
    case 3:
      return std::get<int32_t>(value_);
    case 4:
      return std::get<double>(value_);
    case 5:
      return TextToNumber(std::get<std::string>(value_), NumberTarget::kDouble);
    case 7:
      return RawBool(std::get<VariantBool>(value_));
    default:
      Raise(err::kTypeMismatch);
  }
}

int32_t Variant::ToLong() const {
  if (is_ref()) return Deref().ToLong();
  switch (value_.index()) {
    case 2:
      return std::get<int16_t>(value_);
    case 3:
      return std::get<int32_t>(value_);
    case 5:
      return RoundToInt<int32_t>(TextToNumber(std::get<std::string>(value_), NumberTarget::kLong));
    case 7:
      return RawBool(std::get<VariantBool>(value_));
    default:
      return RoundToInt<int32_t>(ToDouble());
  }
}

int16_t Variant::ToInteger() const {
  if (is_ref()) return Deref().ToInteger();
  switch (value_.index()) {
    case 2:
      return std::get<int16_t>(value_);
    case 5:
      return RoundToInt<int16_t>(
          TextToNumber(std::get<std::string>(value_), NumberTarget::kInteger));
    case 7:
      return RawBool(std::get<VariantBool>(value_));
    default:
      return RoundToInt<int16_t>(ToDouble());
  }
}

VariantBool Variant::ToBool() const {
  if (is_ref()) return Deref().ToBool();
  if (const VariantBool* b = std::get_if<VariantBool>(&value_)) return *b;
  if (const std::string* text = std::get_if<std::string>(&value_)) {
    std::string_view word = TrimBlanks(*text);
    if (EqualsNoCase(word, "True")) return VariantBool::kTrue;
    if (EqualsNoCase(word, "False")) return VariantBool::kFalse;
  }
  return ToVariantBool(ToDouble() != 0);
}

std::string Variant::ToText() const {
  if (is_ref()) return Deref().ToText();
  switch (value_.index()) {
    case 0:
      return "";
    case 1:
      RaiseNull();
    case 2:
      return std::to_string(std::get<int16_t>(value_));
    case 3:
      return std::to_string(std::get<int32_t>(value_));
    case 4:
      return FormatGeneral(std::get<double>(value_));
    case 5:
      return std::get<std::string>(value_);
    case 7:
      return std::get<VariantBool>(value_) == VariantBool::kFalse ? "False" : "True";
    default:
      Raise(err::kTypeMismatch);
  }
}

AutomationObject Variant::ToObject() const {
  if (is_ref()) return Deref().ToObject();
  if (std::holds_alternative<std::monostate>(value_)) return nullptr;
  if (const AutomationObject* object = std::get_if<AutomationObject>(&value_)) return *object;
  Raise(err::kTypeMismatch);
}

SafeArray Variant::ToArray() const {
  if (is_ref()) return Deref().ToArray();
  if (const auto* array = std::get_if<std::shared_ptr<SafeArray>>(&value_)) return **array;
  Raise(err::kTypeMismatch);
}

Variant Variant::ConvertTo(VarType type) const {
  switch (type) {
    case VarType::kEmpty:
      return Variant();
    case VarType::kNull:
      return Null();
    case VarType::kInteger:
      return ToInteger();
    case VarType::kLong:
      return ToLong();
    case VarType::kDouble:
      return ToDouble();
    case VarType::kText:
      return ToText();
    case VarType::kObject:
      return ToObject();
    case VarType::kBool:
      return ToBool();
    case VarType::kVariant:
      return Deref();
  }
  Raise(err::kTypeMismatch);
}

// The value is converted before anything is written, so a failed conversion leaves the target
// as it was.
void Variant::Assign(const Variant& value) {
  const Ref_* ref = std::get_if<Ref_>(&value_);
  if (!ref) {
    *this = value.Deref();
    return;
  }
  if (ref->vt & kArrayFlag) {
    static_cast<SafeArray*>(ref->target)->AssignFrom(value.ToArray());
    return;
  }
  switch (static_cast<VarType>(ref->vt & ~kByRefFlag)) {
    case VarType::kInteger:
      *static_cast<int16_t*>(ref->target) = value.ToInteger();
      return;
    case VarType::kLong:
      *static_cast<int32_t*>(ref->target) = value.ToLong();
      return;
    case VarType::kDouble:
      *static_cast<double*>(ref->target) = value.ToDouble();
      return;
    case VarType::kBool:
      *static_cast<VariantBool*>(ref->target) = value.ToBool();
      return;
    case VarType::kText:
      *static_cast<std::string*>(ref->target) = value.ToText();
      return;
    case VarType::kObject:
      *static_cast<AutomationObject*>(ref->target) = value.ToObject();
      return;
    default:
      static_cast<Variant*>(ref->target)->Assign(value);
      return;
  }
}

}  // namespace qorvel
