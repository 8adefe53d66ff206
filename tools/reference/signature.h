#ifndef TOOLS_REFERENCE_SIGNATURE_H_
#define TOOLS_REFERENCE_SIGNATURE_H_

#include <functional>
#include <string>
#include <string_view>

#include "qorvel/frame/type_library.h"

namespace qorvel::reference {

// How the pieces of a signature are written out: plain words and punctuation, and type names
// (the page links an enumeration's name to its table).
struct SignatureStyle {
  std::function<std::string(std::string_view)> text;
  std::function<std::string(std::string_view vb_type, std::string_view enum_name)> type;
};
const SignatureStyle& PlainStyle();

// The type's name as Visual Basic spells it: "Boolean" for a VariantBool, "String" for text.
std::string VbTypeName(ParamType type, std::string_view enum_name);

// A member as a Visual Basic declaration: "Sub", "Function", "Property Get", "Property Let" or,
// in an event interface, "Event"; every parameter marked ByVal or ByRef, so that no reader has to
// remember that VB passes by reference unless told; Optional with its default. A declaration
// longer than `width` wraps after a comma with VB's " _" continuation, lined up under the first
// parameter.
std::string VbSignature(const MemberInfo& member, bool event, const SignatureStyle& style,
                        size_t width = 88);

}  // namespace qorvel::reference

#endif  // TOOLS_REFERENCE_SIGNATURE_H_
