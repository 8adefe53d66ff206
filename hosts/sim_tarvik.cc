#include "hosts/sim_tarvik.h"

#include <cmath>
#include <optional>

#include "qorvel/platform/error.h"
#include "qorvel/platform/numbers.h"

namespace qorvel::hosts {
namespace {

constexpr const char* kLimitWords[6] = {"XMIN", "XMAX", "YMIN", "YMAX", "ZMIN", "ZMAX"};
constexpr const char* kToolTypes[] = {"ENDMILL",         "BALLNOSED",   "TIPRADIUSED",
                                      "TAPERSPHERICAL",  "TAPERTIPPED", "TIPPEDDISC",
                                      "OFFCENTRETIPRAD", "DRILL"};
constexpr const char* kToolNumbers[] = {"DIAMETER",    "TLEN",       "TIPRADIUS",  "TAPERANGLE",
                                        "TAPERHEIGHT", "TIPRADIUSX", "TIPRADIUSY", "TOOLNUMBER"};

// The words of each entity kind: the singular and plural command words, the heading of a list
// and the name in messages.
struct KindWords {
  const char* singular;
  const char* plural;
  const char* heading;
  const char* title;
};
constexpr KindWords kKinds[3] = {{"TOOLPATH", "TOOLPATHS", "toolpaths", "Toolpath"},
                                 {"PATTERN", "PATTERNS", "patterns", "Pattern"},
                                 {"WORKPLANE", "WORKPLANES", "workplanes", "Workplane"}};

[[noreturn]] void Unknown(const std::string& command) {
  RejectCommand("Unknown command: " + command);
}

std::vector<std::string> Split(const std::string& text) {
  std::vector<std::string> words;
  size_t pos = 0;
  while ((pos = text.find_first_not_of(" \t", pos)) != std::string::npos) {
    size_t end = text.find_first_of(" \t", pos);
    if (end == std::string::npos) end = text.size();
    words.push_back(text.substr(pos, end - pos));
    pos = end;
  }
  return words;
}

// The text after the first `skip` words of a command, trimmed, without quotes around it.
std::string Rest(const std::string& command, size_t skip) {
  size_t pos = 0;
  for (; skip > 0; --skip) {
    pos = command.find_first_not_of(" \t", pos);
    if (pos == std::string::npos) return "";
    pos = command.find_first_of(" \t", pos);
    if (pos == std::string::npos) return "";
  }
  const size_t first = command.find_first_not_of(" \t", pos);
  if (first == std::string::npos) return "";
  std::string rest = command.substr(first, command.find_last_not_of(" \t") + 1 - first);
  if (rest.size() >= 2 && rest.front() == '"' && rest.back() == '"') {
    rest = rest.substr(1, rest.size() - 2);
  }
  return rest;
}

// A number as the host prints it, by the regional settings; no "-0.000" for a zero.
std::string Num(double value) { return FormatPattern(value == 0 ? 0.0 : value, "0.000"); }

std::string BoxText(const std::vector<double>& n) {
  return "Minimum: X " + Num(n[0]) + " Y " + Num(n[1]) + " Z " + Num(n[2]) + "\r\nMaximum: X " +
         Num(n[3]) + " Y " + Num(n[4]) + " Z " + Num(n[5]) + "\r\n";
}

std::string FrameText(const std::vector<double>& n) {
  std::string out;
  for (int row = 0; row < 4; ++row) {
    out += std::string(row == 0 ? "Position:" : "Vector:") + " X " + Num(n[row * 3]) + " Y " +
           Num(n[row * 3 + 1]) + " Z " + Num(n[row * 3 + 2]) + "\r\n";
  }
  return out;
}

std::string BlockText(const std::array<double, 6>& l) {
  return "Information: Xmin: " + Num(l[0]) + " Xmax: " + Num(l[1]) + "\r\nYmin: " + Num(l[2]) +
         " Ymax: " + Num(l[3]) + "\r\nZmin: " + Num(l[4]) + " Zmax: " + Num(l[5]) + "\r\n";
}

int LimitIndex(const std::string& word) {
  for (int i = 0; i < 6; ++i) {
    if (word == kLimitWords[i]) return i;
  }
  return -1;
}

std::optional<EntityKind> KindOf(const std::string& word, bool plural_too) {
  for (int i = 0; i < 3; ++i) {
    if (word == kKinds[i].singular || (plural_too && word == kKinds[i].plural)) {
      return EntityKind(i);
    }
  }
  return std::nullopt;
}

template <class T>
bool OneOf(const std::string& word, const T& list) {
  for (const char* item : list) {
    if (word == item) return true;
  }
  return false;
}

}  // namespace

SimTarvik::SimTarvik() : SimHost(kTarvikClass) { set_version(kDefaultVersion); }

const SimMembers& SimTarvik::members() const {
  static const SimMembers members(SessionMembers(), {ExecuteExMember()});
  return members;
}

// What the host would show in a dialog: information while message dialogs are on, the reason
// for a rejected command while error dialogs are on.
std::string SimTarvik::RunCommand(const std::string& command) {
  try {
    const Words words = Split(UpperCase(command));
    std::string reply = Run(command, words);
    if (message_dialogs_ && words[0] == "SIZE") ++message_dialogs_shown_;
    return reply;
  } catch (const Error&) {
    if (error_dialogs_) ++error_dialogs_shown_;
    throw;
  }
}

std::string SimTarvik::Run(const std::string& command, const Words& words) {
  if (words.empty()) RejectCommand("Empty command");
  const std::string& verb = words[0];
  if (verb == "NLTDEBUG") return "";
  if (verb == "DIALOGS") return Dialogs(words);
  if (verb == "SIZE") return Size(words, command);
  if (verb == "EDIT") return Edit(words, command);
  if (verb == "ACTIVATE") return Activate(words, command);
  if (verb == "PRINT" && words.size() >= 2 && words[1] == "FORMVALUE") return PrintFormValue(words);
  if (verb == "PRINT" && words.size() >= 2 && words[1] == "ENTITY") return PrintEntity(words);
  Unknown(command);
}

std::string SimTarvik::Dialogs(const Words& words) {
  if (words.size() != 3 || (words[2] != "ON" && words[2] != "OFF")) {
    RejectCommand("DIALOGS takes MESSAGE or ERROR, then ON or OFF");
  }
  const bool on = words[2] == "ON";
  if (words[1] == "MESSAGE") {
    message_dialogs_ = on;
  } else if (words[1] == "ERROR") {
    error_dialogs_ = on;
  } else {
    RejectCommand("DIALOGS takes MESSAGE or ERROR, then ON or OFF");
  }
  return "";
}

std::string SimTarvik::PrintFormValue(const Words& words) {
  if (words.size() != 3) RejectCommand("PRINT FORMVALUE takes one form value");
  const std::string& field = words[2];
  auto truth = [](bool on) { return on ? "TRUE\r\n" : "FALSE\r\n"; };
  if (field == "ROUGHMENUBAR.VIEW.DIALOGS.MESSAGE") return truth(message_dialogs_);
  if (field == "ROUGHMENUBAR.VIEW.DIALOGS.ERROR") return truth(error_dialogs_);
  if (field == "INFOBAR.UNITS") return units_ + "\r\n";
  RejectCommand("Unknown form value: " + field);
}

std::string SimTarvik::Size(const Words& words, const std::string& command) {
  if (words.size() < 2) Unknown(command);
  const std::string& what = words[1];
  if (what == "COMPONENTS" || what == "BLOCK" || what == "MODEL") {
    if (words.size() != 2) Unknown(command);
    if (what == "COMPONENTS") return "Components: " + std::to_string(components_) + "\r\n";
    if (what == "BLOCK") return block_.defined ? BlockText(block_.limits) : "";
    if (!model_) RejectCommand("No model loaded");
    return BoxText({model_->begin(), model_->end()}) +
           "Components: " + std::to_string(components_) + "\r\n";
  }
  std::optional<EntityKind> kind = KindOf(what, false);
  if (!kind) Unknown(command);
  const Entity& entity = Named(*kind, Rest(command, 2));
  return *kind == EntityKind::kWorkplane ? FrameText(entity.numbers) : BoxText(entity.numbers);
}

std::string SimTarvik::Edit(const Words& words, const std::string& command) {
  if (words.size() < 3) Unknown(command);
  const std::string& what = words[1];
  if (what == "BLOCK") return EditBlock(words, command);
  if (what == "TOOLNAME") {
    tool_["TOOLNAME"] = Rest(command, 2);
    return "";
  }
  if (words.size() != 3) Unknown(command);
  const std::string& value = words[2];
  if (what == "BLOCKTYPE") {
    block_.type = value;
  } else if (what == "UNITS") {
    if (value != "MM" && value != "INCHES") RejectCommand("Unknown units: " + value);
    units_ = value;
  } else if (what == "TOOLTYPE") {
    if (!OneOf(value, kToolTypes)) RejectCommand("Unknown tool type: " + value);
    tool_["TOOLTYPE"] = value;
  } else if (OneOf(what, kToolNumbers)) {
    const double number = CommandNumber(value);
    if (what == "TOOLNUMBER" && (number < 0 || number != std::floor(number))) {
      RejectCommand("Invalid tool number: " + value);
    }
    tool_[what] = value;
  } else {
    Unknown(command);
  }
  return "";
}

std::string SimTarvik::EditBlock(const Words& words, const std::string& command) {
  const std::string& what = words[2];
  if (words.size() == 3 && what == "RESET") {
    ResetBlock();
    return "";
  }
  if (words.size() != 4) Unknown(command);
  const std::string& arg = words[3];
  const bool lock_word = arg == "LOCK" || arg == "UNLOCK";
  if (what == "LIMITTYPE") {
    block_.limit_type = arg;
  } else if (what == "ALL" && lock_word) {
    block_.locked.fill(arg == "LOCK");
  } else if (what == "RESETLIMIT") {
    block_.reset_offset = CommandNumber(arg);
  } else if (int i = LimitIndex(what); i >= 0 && lock_word) {
    block_.locked[i] = arg == "LOCK";
  } else if (i >= 0) {
    const double value = CommandNumber(arg);
    if (block_.locked[i]) RejectCommand(std::string("Limit is locked: ") + kLimitWords[i]);
    block_.limits[i] = value;
    block_.defined = true;
  } else {
    Unknown(command);
  }
  return "";
}

// The unlocked limits go around the model at the reset offset; a block made by the reset
// takes all six.
void SimTarvik::ResetBlock() {
  if (!model_) RejectCommand("No model loaded");
  const Box& m = *model_;
  const double o = block_.reset_offset;
  const double around[6] = {m[0] - o, m[3] + o, m[1] - o, m[4] + o, m[2] - o, m[5] + o};
  for (int i = 0; i < 6; ++i) {
    if (!block_.defined || !block_.locked[i]) block_.limits[i] = around[i];
  }
  block_.defined = true;
}

std::string SimTarvik::PrintEntity(const Words& words) {
  if (words.size() != 3) RejectCommand("PRINT ENTITY takes one entity type");
  std::optional<EntityKind> kind = KindOf(words[2], true);
  if (!kind) RejectCommand("Unknown entity type: " + words[2]);
  const int k = int(*kind);
  const std::vector<Entity>& list = entities_[k];
  std::string out = std::to_string(list.size()) + " " + kKinds[k].heading + "\r\n";
  for (size_t i = 0; i < list.size(); ++i) {
    out += (int(i) == active_[k] ? "*'" : "'") + list[i].name + "'\r\n";
  }
  return out;
}

std::string SimTarvik::Activate(const Words& words, const std::string& command) {
  std::optional<EntityKind> kind = words.size() >= 3 ? KindOf(words[1], false) : std::nullopt;
  if (!kind) Unknown(command);
  const Entity& entity = Named(*kind, Rest(command, 2));
  active_[int(*kind)] = int(&entity - entities_[int(*kind)].data());
  return "";
}

const SimTarvik::Entity* SimTarvik::Find(EntityKind kind, const std::string& name) const {
  const std::string wanted = UpperCase(name);
  for (const Entity& e : entities_[int(kind)]) {
    if (UpperCase(e.name) == wanted) return &e;
  }
  return nullptr;
}

const SimTarvik::Entity& SimTarvik::Named(EntityKind kind, const std::string& name) const {
  const Entity* entity = Find(kind, name);
  if (!entity) RejectCommand(std::string(kKinds[int(kind)].title) + " not found: " + name);
  return *entity;
}

}  // namespace qorvel::hosts
