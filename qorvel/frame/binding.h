#ifndef QORVEL_FRAME_BINDING_H_
#define QORVEL_FRAME_BINDING_H_

#include <cstddef>
#include <span>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "qorvel/frame/type_library.h"
#include "qorvel/platform/safe_array.h"
#include "qorvel/platform/variant.h"

namespace qorvel {

// What a C++ parameter or result type stands for on the dispatch face. kVariant takes any
// argument as it came.
template <class T>
constexpr VarType kAutomationTypeOf = VarType::kVariant;
template <>
inline constexpr VarType kAutomationTypeOf<int16_t> = VarType::kInteger;
template <>
inline constexpr VarType kAutomationTypeOf<int32_t> = VarType::kLong;
template <>
inline constexpr VarType kAutomationTypeOf<double> = VarType::kDouble;
template <>
inline constexpr VarType kAutomationTypeOf<std::string> = VarType::kText;
template <>
inline constexpr VarType kAutomationTypeOf<VariantBool> = VarType::kBool;
template <>
inline constexpr VarType kAutomationTypeOf<AutomationObject> = VarType::kObject;
template <>
inline constexpr VarType kAutomationTypeOf<void> = VarType::kEmpty;

// A prepared argument as the C++ member takes it. The dispatch face has already converted it to
// its parameter's type, so this reads the value as it stands.
template <class T>
T ValueOf(const Variant& v) {
  if constexpr (std::is_same_v<T, int16_t>) {
    return v.ToInteger();
  } else if constexpr (std::is_same_v<T, int32_t>) {
    return v.ToLong();
  } else if constexpr (std::is_same_v<T, double>) {
    return v.ToDouble();
  } else if constexpr (std::is_same_v<T, std::string>) {
    return v.ToText();
  } else if constexpr (std::is_same_v<T, VariantBool>) {
    return v.ToBool();
  } else if constexpr (std::is_same_v<T, AutomationObject>) {
    return v.ToObject();
  } else if constexpr (std::is_same_v<T, SafeArray>) {
    return v.is_empty() ? SafeArray() : v.ToArray();  // Empty: an array not yet dimensioned
  } else {
    static_assert(std::is_same_v<T, Variant>, "no automation type for this parameter");
    return v;
  }
}

// The type the dispatch face converts an argument to; arrays and VARIANTs pass as they came
// (kVariant).
VarType DispatchType(const ParamInfo& param);

// Whether a member takes a parameter of type T by non-const reference, so that what it leaves
// there can go back to the caller's variable.
template <class T>
constexpr bool kWritesBack =
    std::is_lvalue_reference_v<T> && !std::is_const_v<std::remove_reference_t<T>>;

// One parameter of a C++ member as the dispatch face checks it against its row.
struct ParamShape {
  VarType type;
  bool by_ref;  // taken by non-const reference
};

// The shape of a C++ member as the dispatch face checks it against its row.
struct Signature {
  std::vector<ParamShape> params;
  VarType result;
};

template <class M>
struct MemberTraits;
template <class C, class R, class... A>
struct MemberTraits<R (C::*)(A...)> {
  using Result = R;
  using Params = std::tuple<A...>;
  static Signature Shape() {
    return {{ParamShape{kAutomationTypeOf<std::decay_t<A>>, kWritesBack<A>}...},
            kAutomationTypeOf<R>};
  }
};
template <class C, class R, class... A>
struct MemberTraits<R (C::*)(A...) const> : MemberTraits<R (C::*)(A...)> {};

// Runs member M of `object` with the prepared arguments, one per parameter: each is read as its
// C++ type, and what the member leaves in a by-reference parameter goes back into its argument,
// also when the member fails part way, as a variable passed by reference would hold it.
template <auto M, class Object>
Variant RunMember(Object& object, std::span<Variant> args) {
  using Traits = MemberTraits<decltype(M)>;
  return [&]<size_t... I>(std::index_sequence<I...>) {
    std::tuple<std::decay_t<std::tuple_element_t<I, typename Traits::Params>>...> values{
        ValueOf<std::decay_t<std::tuple_element_t<I, typename Traits::Params>>>(args[I])...};
    const auto write_back = [&] {
      [[maybe_unused]] const auto one = [&]<size_t J>() {
        if constexpr (kWritesBack<std::tuple_element_t<J, typename Traits::Params>>) {
          args[J] = Variant(std::get<J>(values));
        }
      };
      (one.template operator()<I>(), ...);
    };
    Variant result;
    try {
      if constexpr (std::is_void_v<typename Traits::Result>) {
        (object.*M)(std::get<I>(values)...);
      } else {
        result = Variant((object.*M)(std::get<I>(values)...));
      }
    } catch (...) {
      write_back();
      throw;
    }
    write_back();
    return result;
  }
  (std::make_index_sequence<std::tuple_size_v<typename Traits::Params>>{});
}

// One row of a class's default interface and the C++ member of class C that runs it.
template <class C>
struct Binding {
  const char* name;
  MemberKind kind;
  Variant (*run)(C& object, std::span<Variant> args);
  Signature (*shape)();
};

// The rows of class C, made from its members: Rows<Zebrin>::Method<&Zebrin::Connect>("Connect").
template <class C>
struct Rows {
  template <auto M>
  static Binding<C> Method(const char* name) {
    return {name, MemberKind::kMethod, &RunMember<M, C>, &MemberTraits<decltype(M)>::Shape};
  }
  template <auto M>
  static Binding<C> Get(const char* name) {
    return {name, MemberKind::kGet, &RunMember<M, C>, &MemberTraits<decltype(M)>::Shape};
  }
  template <auto M>
  static Binding<C> Put(const char* name) {
    return {name, MemberKind::kPut, &RunMember<M, C>, &MemberTraits<decltype(M)>::Shape};
  }
};

// What the bindings of every class share: the class's rows in slot order and which are bound.
class BoundInterface {
 public:
  const ClassInfo& class_info() const { return *class_; }
  const InterfaceInfo& interface_info() const { return *interface_; }
  bool IsBound(size_t slot) const { return slot < bound_.size() && bound_[slot]; }

 protected:
  explicit BoundInterface(std::string_view class_name);
  // The slot of the row `name` and `kind` after checking that the C++ member fits it; a row
  // that isn't there, is bound twice, takes other arguments, or passes one by reference that
  // the member takes by value (or the reverse) is a fault of the binding and raises 5 naming it.
  size_t Claim(const char* name, MemberKind kind, const Signature& shape);

 private:
  const ClassInfo* class_;
  const InterfaceInfo* interface_;
  std::vector<bool> bound_;
};

// The bindings of class C, declared once per class.
template <class C>
class BindingTable : public BoundInterface {
 public:
  BindingTable(std::string_view class_name, std::initializer_list<std::vector<Binding<C>>> groups)
      : BoundInterface(class_name), runs_(interface_info().members.size()) {
    for (const std::vector<Binding<C>>& rows : groups) {
      for (const Binding<C>& row : rows) runs_[Claim(row.name, row.kind, row.shape())] = row.run;
    }
  }
  // Runs the row in `slot`, bound or not (callers ask IsBound first), on prepared arguments.
  Variant Run(size_t slot, C& object, std::span<Variant> args) const {
    return runs_[slot](object, args);
  }

 private:
  std::vector<Variant (*)(C&, std::span<Variant>)> runs_;
};

// The one table of class C; each published class defines it beside its face.
template <class C>
const BindingTable<C>& BindingsOf();

}  // namespace qorvel

#endif  // QORVEL_FRAME_BINDING_H_
