// The entity lists of Tarvik3 and the extents of one toolpath.
#include "qorvel/machining/tarvik3.h"
#include "qorvel/machining/tarvik_stuff.h"
#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/error.h"

namespace qorvel {

namespace {

// Drops the two delimiters around a name. A line shorter than two characters can't be cut;
// the caller holds that error back and keeps the line as it was.
std::string_view DropDelimiters(std::string_view line) {
  if (line.size() < 2) Raise(err::kInvalidCall);
  return line.substr(1, line.size() - 2);
}

}  // namespace

void Tarvik3::FillList(const char* command, AutomationObject& list, int32_t& active) {
  int32_t count = 0;
  HoldBack([&] { count = GetMember(list, "Count").ToLong(); });
  for (int32_t i = count; i >= 1; --i) HoldBack([&] { Call(list, "Remove", i); });
  active = 0;
  if (ConnectedFlag != VariantBool::kTrue) return;
  const std::string reply = Link().HostExecuteEx(command);
  if (!reply.empty() && reply[0] == '0') return;
  if (reply.find("\r\n") == std::string::npos) return;

  const auto lines = tarvik_stuff::SplitAt(reply, "\r\n");
  for (size_t i = 1; i < lines.size(); ++i) {
    std::string_view line = tarvik_stuff::StripBlanks(lines[i]);
    const bool was_empty = line.empty();
    if (!line.empty() && line[0] == '*') {
      active = static_cast<int32_t>(i);
      line = tarvik_stuff::StripBlanks(line.substr(1));
    }
    if (!was_empty) HoldBack([&] { line = DropDelimiters(line); });
    if (!line.empty()) HoldBack([&] { Call(list, "Add", std::string(line)); });
  }
}

void Tarvik3::GetToolpathList(AutomationObject& ToolpathList, int32_t& ActiveToolpath) {
  FillList("PRINT ENTITY TOOLPATHS", ToolpathList, ActiveToolpath);
}

void Tarvik3::GetPatternList(AutomationObject& PatternList, int32_t& ActivePattern) {
  FillList("PRINT ENTITY PATTERN", PatternList, ActivePattern);
}

void Tarvik3::GetWorkplaneList(AutomationObject& WorkplaneList, int32_t& ActiveWorkplane) {
  FillList("PRINT ENTITY WORKPLANE", WorkplaneList, ActiveWorkplane);
}

void Tarvik3::SizeToolpath(std::string& ToolpathName, double& XMIN, double& XMAX, double& YMIN,
                           double& YMAX, double& ZMIN, double& ZMAX) {
  XMIN = XMAX = YMIN = YMAX = ZMIN = ZMAX = 0;
  SafeArray values;
  if (tarvik_stuff::ReadExtents(4, values, ToolpathName) != VariantBool::kTrue) return;
  XMIN = values.GetDouble(1);
  XMAX = values.GetDouble(4);
  YMIN = values.GetDouble(2);
  YMAX = values.GetDouble(5);
  ZMIN = values.GetDouble(3);
  ZMAX = values.GetDouble(6);
}

}  // namespace qorvel
