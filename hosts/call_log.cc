#include "hosts/call_log.h"

namespace qorvel::hosts {
namespace {

// An argument as a log line shows it: texts quoted, numbers as the host read them.
std::string LogText(const Variant& value) {
  switch (value.type()) {
    case VarType::kEmpty:
      return "Empty";
    case VarType::kNull:
      return "Null";
    case VarType::kText:
      return '"' + value.ToText() + '"';
    case VarType::kObject:
      return "<object>";
    default:
      return value.is_array() ? "<array>" : value.ToText();
  }
}

}  // namespace

std::string LogLine(const Call& call) {
  const std::string member = call.object.empty() ? call.member : call.object + "." + call.member;
  if (call.kind == CallKind::kPropertyGet && call.args.empty()) return member;
  if (call.kind == CallKind::kPropertyPut && call.args.size() == 1) {
    return member + " = " + LogText(call.args[0]);
  }
  std::string line = member + "(";
  for (size_t i = 0; i < call.args.size(); ++i) line += (i ? ", " : "") + LogText(call.args[i]);
  return line + ")";
}

std::vector<std::string> LogLines(const SimObject& object) {
  std::vector<std::string> lines;
  for (const Call& call : object.log()) lines.push_back(LogLine(call));
  return lines;
}

}  // namespace qorvel::hosts
