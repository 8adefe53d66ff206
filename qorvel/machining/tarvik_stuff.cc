#include "qorvel/machining/tarvik_stuff.h"

#include <algorithm>

#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/numbers.h"
#include "qorvel/platform/text.h"

namespace qorvel::tarvik_stuff {
namespace {

constexpr const char* kDialogsQuery = "print formvalue roughmenubar.view.dialogs.message";
constexpr int32_t kMaxPosition = 32767;

// The words a SIZE reply loses before its numbers are split out, in this order.
constexpr std::string_view kExtentWords[] = {"Minimum:",    "Maximum:",  "X",       "Y",   "Z",
                                             "Components:", "Position:", "Vector:", "\r\n"};

struct ExtentQuery {
  const char* command;
  int32_t last_field;
  int32_t count;
};

// Kinds 1 to 4; the model needs seven fields, the count behind "Components:" included.
constexpr ExtentQuery kExtentQueries[] = {{"SIZE MODEL", 6, 6},
                                          {"SIZE WORKPLANE ", 11, 12},
                                          {"SIZE PATTERN ", 5, 6},
                                          {"SIZE TOOLPATH ", 5, 6}};

}  // namespace

std::vector<std::string_view> SplitAt(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> fields;
  if (text.empty()) return fields;
  for (size_t start = 0;;) {
    const size_t end = text.find(separator, start);
    fields.push_back(text.substr(start, end - start));
    if (end == std::string_view::npos) return fields;
    start = end + separator.size();
  }
}

// In place, and not at all where the word doesn't stand: a long reply of blanks loses its few
// words without a copy of itself for each.
void RemoveAll(std::string& text, std::string_view word) {
  size_t hit = text.find(word);
  if (hit == std::string::npos) return;
  size_t kept = hit;
  for (size_t pos = hit + word.size();;) {
    hit = text.find(word, pos);
    const size_t end = hit == std::string::npos ? text.size() : hit;
    std::copy(text.begin() + pos, text.begin() + end, text.begin() + kept);
    kept += end - pos;
    if (hit == std::string::npos) break;
    pos = hit + word.size();
  }
  text.resize(kept);
}

std::string_view StripBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

int32_t FetchHostVersion() {
  int32_t version = 0;
  return HoldBack([&] { version = GetMember(Link().object(), "version").ToLong(); }) ? version : 0;
}

std::string QuietHostQuery(const std::string& query) {
  const std::string saved = Link().HostExecuteEx(kDialogsQuery);
  Link().HostExecute("dialogs message off");
  std::string reply = Link().HostExecuteEx(query);
  if (ContainsNoCase(saved, "TRUE")) Link().HostExecute("dialogs message on");
  return reply;
}

std::string CollapseBlanks(std::string_view text) {
  text = StripBlanks(text);
  if (text.size() > kMaxPosition) Raise(err::kOverflow);
  std::string result;
  result.reserve(text.size());
  for (size_t pos = 0; pos < text.size();) {
    const size_t start = text.find_first_not_of(' ', pos);
    const size_t blank = text.find(' ', start);
    result.append(text.substr(start, blank - start));
    result.push_back(' ');
    pos = blank == std::string_view::npos ? text.size() : blank + 1;
  }
  return std::string(StripBlanks(result));
}

VariantBool ReadExtents(int16_t kind, SafeArray& values, std::string& name) {
  if (Link().empty()) return VariantBool::kFalse;
  const std::string saved = Link().HostExecuteEx(kDialogsQuery);
  Link().HostExecute("dialogs message off");
  if (name != ";") name = "\"" + name + "\"";
  const bool known = kind >= 1 && kind <= 4;
  std::string reply = "Error";
  if (known) {
    const ExtentQuery& q = kExtentQueries[kind - 1];
    reply = Link().HostExecuteEx(kind == 1 ? std::string(q.command) : q.command + name);
  }
  if (ContainsNoCase(saved, "TRUE")) Link().HostExecute("dialogs message on");
  if (ContainsNoCase(reply, "Error")) return VariantBool::kFalse;

  for (std::string_view word : kExtentWords) RemoveAll(reply, word);
  HoldBack([&] { reply = CollapseBlanks(reply); });
  const std::vector<std::string_view> fields = SplitAt(reply, " ");
  const ExtentQuery& q = kExtentQueries[kind - 1];
  if (static_cast<int32_t>(fields.size()) - 1 != q.last_field) return VariantBool::kFalse;

  const bool fits = values.fixed() && values.dims() == 1 && values.size() == q.count;
  if (!fits) {
    if (values.fixed() || values.locked()) return VariantBool::kFalse;  // can't be made anew
    values = SafeArray(VarType::kDouble, {{1, q.count}});
  }
  const int32_t lower = values.LBound();
  for (int32_t i = 0; i < q.count; ++i) {
    HoldBack([&] { values.PutDouble(lower + i, Variant(fields[i]).ToDouble()); });
  }
  return VariantBool::kTrue;
}

VariantBool ModelLoadedProbe() {
  std::string reply = QuietHostQuery("SIZE COMPONENTS");
  if (reply == "Error") return VariantBool::kFalse;
  RemoveAll(reply, "\r\n");
  for (std::string_view field : SplitAt(reply, " ")) {
    if (ReadNumberPrefix(field) != 0) return VariantBool::kTrue;
  }
  return VariantBool::kFalse;
}

std::string HostNumberText(double value) { return FormatPattern(value, "0.######"); }

}  // namespace qorvel::tarvik_stuff
