#include "qorvel/frame/binding.h"

#include "qorvel/platform/error.h"

namespace qorvel {
namespace {

// A C++ Variant takes any argument, and a row typed VARIANT gives any C++ type what came.
bool Fits(VarType cpp, VarType row) {
  return cpp == row || cpp == VarType::kVariant || row == VarType::kVariant;
}

}  // namespace

VarType DispatchType(const ParamInfo& param) {
  return (AutomationVt(param) & kArrayFlag) != 0 ? VarType::kVariant : AutomationType(param.type);
}

BoundInterface::BoundInterface(std::string_view class_name) {
  class_ = TheTypeLibrary().FindClass(class_name);
  if (class_ == nullptr) Raise(err::kInvalidCall, "No class " + std::string(class_name));
  interface_ = TheTypeLibrary().FindInterface(class_->default_interface);
  bound_.resize(interface_->members.size());
}

size_t BoundInterface::Claim(const char* name, MemberKind kind, const Signature& shape) {
  const MemberInfo* row = FindMember(*interface_, name, kind);
  const std::string fault = interface_->name + "." + name + ": ";
  if (row == nullptr) Raise(err::kInvalidCall, fault + "no such row");
  const size_t slot = static_cast<size_t>(row - interface_->members.data());
  if (bound_[slot]) Raise(err::kInvalidCall, fault + "bound twice");
  bool fits =
      shape.params.size() == row->params.size() && Fits(shape.result, AutomationType(row->result));
  for (size_t i = 0; fits && i < shape.params.size(); ++i) {
    fits = Fits(shape.params[i].type, DispatchType(row->params[i]));
  }
  if (!fits) Raise(err::kInvalidCall, fault + "the member's arguments or result differ");
  // A member that takes by value what the row passes by reference would drop what it leaves
  // there; one that takes by reference what is passed by value writes where nobody reads.
  for (size_t i = 0; i < shape.params.size(); ++i) {
    const ParamInfo& param = row->params[i];
    if (shape.params[i].by_ref != param.by_ref) {
      Raise(err::kInvalidCall,
            fault + param.name + " is passed by " + (param.by_ref ? "reference" : "value") +
                " but the member takes it by " + (shape.params[i].by_ref ? "reference" : "value"));
    }
  }
  bound_[slot] = true;
  return slot;
}

}  // namespace qorvel
