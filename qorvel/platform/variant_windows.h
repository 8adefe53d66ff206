#ifndef QORVEL_PLATFORM_VARIANT_WINDOWS_H_
#define QORVEL_PLATFORM_VARIANT_WINDOWS_H_

// The one place where the library's values meet the platform's: Variant and SafeArray to and
// from VARIANT and SAFEARRAY, and the arguments of IDispatch::Invoke in both directions.

#include <windows.h>

#include <oleauto.h>

#include <span>
#include <vector>

#include "qorvel/platform/safe_array.h"
#include "qorvel/platform/variant.h"

namespace qorvel::win {

// A copy of `value` (references followed) in a VARIANT the caller clears. Objects go out as
// IDispatch: a platform object as itself, one of the library's through ExposeObject.
void ToVariant(const Variant& value, VARIANT* out);
// A copy of a VARIANT's value, references followed. Numbers of types the library doesn't carry
// arrive as Long when they are whole and fit, else as Double; a missing argument (VT_ERROR
// DISP_E_PARAMNOTFOUND) as Empty. 13 for a type that has no such meaning.
Variant FromVariant(const VARIANT& v);

// A new SAFEARRAY the caller destroys, of the array's own element type or of `element`; the
// bounds and the memory order are the same on both sides, so numbers are copied in one piece.
SAFEARRAY* ToSafeArray(const SafeArray& array);
SAFEARRAY* ToSafeArray(const SafeArray& array, VARTYPE element);
// 13 for an element type the library doesn't carry; a fixed-size array stays fixed.
SafeArray FromSafeArray(const SAFEARRAY* array);

// The arguments of a call that came in through IDispatch::Invoke, in the caller's order. A
// number, truth value or Integer by reference points straight at the caller's variable; text,
// arrays, objects and Variant variables by reference are held here and go back in the caller's
// own form: a typed array as its own element type, a Variant variable that was Empty or held
// Variants as an array of Variant, which is all a script can index.
class IncomingArgs {
 public:
  explicit IncomingArgs(const DISPPARAMS& params);
  IncomingArgs(const IncomingArgs&) = delete;
  IncomingArgs& operator=(const IncomingArgs&) = delete;

  std::span<Variant> args() { return args_; }
  void WriteBack();

 private:
  struct Held {
    VARIANT* caller;  // the caller's argument, VT_BYREF
    std::string text;
    Variant value;
    SafeArray array;
    AutomationObject object;
    bool typed_array = false;  // the Variant variable held an array of another type than Variant
  };
  Variant Take(VARIANT& arg);

  std::vector<Held> held_;  // reserved for every argument, so references into it stay put
  std::vector<Variant> args_;
};

// The arguments of a call going out through IDispatch::Invoke. Each by-reference argument goes
// as a reference to a VARIANT held here, of its target's type; WriteBack gives the targets the
// values the callee left.
class OutgoingArgs {
 public:
  OutgoingArgs(std::span<Variant> args, bool property_put);
  OutgoingArgs(const OutgoingArgs&) = delete;
  OutgoingArgs& operator=(const OutgoingArgs&) = delete;
  ~OutgoingArgs();

  DISPPARAMS* params() { return &params_; }
  void WriteBack();

 private:
  void Clear();

  std::span<Variant> args_;
  std::vector<VARIANT> passed_;   // in the platform's order: last argument first
  std::vector<VARIANT> targets_;  // what the by-reference arguments point at; reserved likewise
  DISPID put_ = DISPID_PROPERTYPUT;
  DISPPARAMS params_{};
};

}  // namespace qorvel::win

#endif  // QORVEL_PLATFORM_VARIANT_WINDOWS_H_
