#ifndef QORVEL_PLATFORM_DISPATCH_H_
#define QORVEL_PLATFORM_DISPATCH_H_

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "qorvel/platform/variant.h"

namespace qorvel {

enum class CallKind { kMethod = 1, kPropertyGet = 2, kPropertyPut = 4 };

// An automation object: one entry point that invokes a member by name. Arguments come in the
// caller's order; a by-reference argument points at the caller's variable. For a property put
// the new value is the last argument. Unknown members raise 438.
// What a caller may know of a member before calling it; objects without type information
// answer kUnknown.
enum class MemberShape { kUnknown, kMissing, kMethod, kProperty, kIndexedProperty };

class Dispatch {
 public:
  virtual ~Dispatch() = default;
  virtual Variant Invoke(std::string_view member, CallKind kind, std::span<Variant> args) = 0;
  // The same by DISPID, for objects with type information and for event sinks, which hear
  // their events by number; 438 from objects that know members by name only.
  virtual Variant InvokeById(int32_t dispid, CallKind kind, std::span<Variant> args);
  virtual MemberShape Shape(std::string_view /*member*/) const { return MemberShape::kUnknown; }
};

// Late-bound calls by member name. An empty reference raises 91.
Variant CallMember(const AutomationObject& object, std::string_view member,
                   std::span<Variant> args = {});
Variant GetMember(const AutomationObject& object, std::string_view member,
                  std::span<Variant> args = {});
void SetMember(const AutomationObject& object, std::string_view member, Variant value,
               std::span<Variant> args = {});

template <class... Args>
Variant Call(const AutomationObject& object, std::string_view member, Args&&... args) {
  std::vector<Variant> list{Variant(std::forward<Args>(args))...};
  return CallMember(object, member, list);
}

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_DISPATCH_H_
