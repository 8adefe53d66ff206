#ifndef QORVEL_PLATFORM_VARIANT_H_
#define QORVEL_PLATFORM_VARIANT_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace qorvel {

// VARIANT type codes, as the automation runtime numbers them.
enum class VarType : uint16_t {
  kEmpty = 0,
  kNull = 1,
  kInteger = 2,  // 16-bit signed
  kLong = 3,     // 32-bit signed
  kDouble = 5,
  kText = 8,      // BSTR
  kObject = 9,    // IDispatch
  kBool = 11,     // VariantBool
  kVariant = 12,  // only as an array element type or a by-reference target
};
inline constexpr uint16_t kArrayFlag = 0x2000;
inline constexpr uint16_t kByRefFlag = 0x4000;

// The 16-bit truth value: -1 true, 0 false; any other value is kept as it is, because several
// members test for exactly -1 or exactly 0.
enum class VariantBool : int16_t { kFalse = 0, kTrue = -1 };
constexpr VariantBool ToVariantBool(bool b) { return b ? VariantBool::kTrue : VariantBool::kFalse; }
constexpr VariantBool MakeVariantBool(int16_t raw) { return static_cast<VariantBool>(raw); }
constexpr int16_t RawBool(VariantBool b) { return static_cast<int16_t>(b); }

class Dispatch;
class SafeArray;
class Variant;

// A late-bound reference to an automation object; empty until bound.
using AutomationObject = std::shared_ptr<Dispatch>;

// A value of any automation type the library uses, or a by-reference form that points at
// somebody else's storage: what is written through it lands there at once.
class Variant {
 public:
  Variant() = default;
  Variant(int16_t v);  // NOLINT: values convert implicitly, as in the automation runtime
  Variant(int32_t v);
  Variant(double v);
  Variant(VariantBool v);
  Variant(bool v);  // true and false as VariantBool -1 and 0
  Variant(std::string v);
  Variant(std::string_view v);
  Variant(const char* v);
  Variant(AutomationObject v);
  Variant(SafeArray v);
  Variant(const Variant&);
  Variant(Variant&&) noexcept;
  Variant& operator=(const Variant&);
  Variant& operator=(Variant&&) noexcept;
  ~Variant();

  static Variant Null();

  // By-reference forms: the variant points at the caller's variable.
  static Variant Ref(int16_t& target);
  static Variant Ref(int32_t& target);
  static Variant Ref(double& target);
  static Variant Ref(VariantBool& target);
  static Variant Ref(std::string& target);
  static Variant Ref(AutomationObject& target);
  static Variant Ref(SafeArray& target);
  static Variant Ref(Variant& target);

  // The full type code, flags included: 0x4008 for text by reference, 0x2005 for an array of
  // Double, 0x600C for a reference to an array of Variant.
  uint16_t vt() const;
  // The type of the value itself, references followed.
  VarType type() const;
  bool is_ref() const;
  bool is_empty() const { return type() == VarType::kEmpty; }
  bool is_array() const;

  // Conversions by the automation rules (references followed): round half to even, error 6 on
  // overflow, 13 on a mismatch; text and numbers meet through the regional settings.
  int16_t ToInteger() const;
  int32_t ToLong() const;
  double ToDouble() const;
  VariantBool ToBool() const;
  std::string ToText() const;
  AutomationObject ToObject() const;  // 13 unless an object (Empty and Nothing give empty)
  SafeArray ToArray() const;          // 13 unless an array
  // This value converted to a type code without flags (kVariant gives the value itself).
  Variant ConvertTo(VarType type) const;

  // The value with references followed: a plain copy.
  Variant Deref() const;
  // Writes through a reference, converted to the target's type; on a plain variant replaces
  // the value.
  void Assign(const Variant& value);

 private:
  friend class SafeArray;  // takes nested arrays apart without recursion when it is freed

  struct NullTag {};
  struct Ref_ {
    uint16_t vt;
    void* target;
  };
  const Variant* Referenced() const;  // the target of a reference to a Variant, else nullptr

  using Storage = std::variant<std::monostate, NullTag, int16_t, int32_t, double, std::string,
                               AutomationObject, VariantBool, std::shared_ptr<SafeArray>, Ref_>;
  Storage value_;
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_VARIANT_H_
