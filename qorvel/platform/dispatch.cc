#include "qorvel/platform/dispatch.h"

#include "qorvel/platform/error.h"

namespace qorvel {

namespace {
Dispatch& Bound(const AutomationObject& object) {
  if (!object) Raise(err::kObjectNotSet);
  return *object;
}
}  // namespace

Variant Dispatch::InvokeById(int32_t, CallKind, std::span<Variant>) { Raise(err::kNoMember); }

Variant CallMember(const AutomationObject& object, std::string_view member,
                   std::span<Variant> args) {
  return Bound(object).Invoke(member, CallKind::kMethod, args);
}

Variant GetMember(const AutomationObject& object, std::string_view member,
                  std::span<Variant> args) {
  return Bound(object).Invoke(member, CallKind::kPropertyGet, args);
}

// The new value goes last, after the index arguments, as the object expects it for a put.
void SetMember(const AutomationObject& object, std::string_view member, Variant value,
               std::span<Variant> args) {
  Dispatch& target = Bound(object);
  std::vector<Variant> all(args.begin(), args.end());
  all.push_back(std::move(value));
  target.Invoke(member, CallKind::kPropertyPut, all);
}

}  // namespace qorvel
