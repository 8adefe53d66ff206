#include "tools/reference/signature.h"

#include <cstdio>
#include <vector>

namespace qorvel::reference {
namespace {

std::string DefaultText(const ParamInfo& p) {
  switch (p.type) {
    case ParamType::kBool:
      return p.default_number != 0 ? "True" : "False";
    case ParamType::kText:
      return "\"" + p.default_text + "\"";
    default: {
      char number[32];
      std::snprintf(number, sizeof number, "%.15g", p.default_number);
      return number;
    }
  }
}

bool IsArray(ParamType type) {
  return type == ParamType::kTextArray || type == ParamType::kDoubleArray;
}

// One parameter in a style.
std::string Param(const ParamInfo& p, const SignatureStyle& style) {
  std::string text;
  if (p.optional) text += style.text("Optional ");
  text += style.text(p.by_ref ? "ByRef " : "ByVal ");
  text += style.text(p.name + (IsArray(p.type) ? "()" : "") + " As ");
  text += style.type(VbTypeName(p.type, p.enum_name), p.enum_name);
  if (p.has_default) text += style.text(" = " + DefaultText(p));
  return text;
}

std::string Keyword(const MemberInfo& member, bool event) {
  if (event) return "Event ";
  switch (member.kind) {
    case MemberKind::kGet:
      return "Property Get ";
    case MemberKind::kPut:
      return "Property Let ";
    case MemberKind::kMethod:
      break;
  }
  return member.has_retval() ? "Function " : "Sub ";
}

}  // namespace

const SignatureStyle& PlainStyle() {
  static const auto* style = new SignatureStyle{
      [](std::string_view text) { return std::string(text); },
      [](std::string_view vb_type, std::string_view) { return std::string(vb_type); }};
  return *style;
}

std::string VbTypeName(ParamType type, std::string_view enum_name) {
  switch (type) {
    case ParamType::kNone:
      return "";
    case ParamType::kInteger:
      return "Integer";
    case ParamType::kLong:
      return "Long";
    case ParamType::kDouble:
    case ParamType::kDoubleArray:
      return "Double";
    case ParamType::kText:
    case ParamType::kTextArray:
      return "String";
    case ParamType::kBool:
      return "Boolean";
    case ParamType::kVariant:
      return "Variant";
    case ParamType::kEnum:
      return std::string(enum_name);
    case ParamType::kCollection:
      return "Collection";
  }
  return "";
}

std::string VbSignature(const MemberInfo& member, bool event, const SignatureStyle& style,
                        size_t width) {
  const std::string head = Keyword(member, event) + member.name + "(";
  std::string tail = ")";
  if (member.has_retval()) tail += " As " + VbTypeName(member.result, member.result_enum);
  std::string styled_tail = style.text(")");
  if (member.has_retval()) {
    styled_tail += style.text(" As ") +
                   style.type(VbTypeName(member.result, member.result_enum), member.result_enum);
  }

  // Line breaks are decided on the plain text, whose length is what the reader sees.
  std::vector<std::string> plain, styled;
  for (const ParamInfo& p : member.params) {
    plain.push_back(Param(p, PlainStyle()));
    styled.push_back(Param(p, style));
  }
  const std::string indent(head.size(), ' ');
  std::string out = style.text(head);
  size_t column = head.size();
  for (size_t i = 0; i < plain.size(); ++i) {
    const bool last = i + 1 == plain.size();
    const size_t need = plain[i].size() + (last ? tail.size() : std::string(", _").size());
    if (i > 0) {
      if (column + 2 + need > width) {
        out += style.text(", _\n" + indent);
        column = indent.size();
      } else {
        out += style.text(", ");
        column += 2;
      }
    }
    out += styled[i];
    column += plain[i].size();
  }
  return out + styled_tail;
}

}  // namespace qorvel::reference
