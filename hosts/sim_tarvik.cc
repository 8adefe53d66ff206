#include "hosts/sim_tarvik.h"

#include <sstream>

#include "qorvel/platform/error.h"
#include "qorvel/platform/numbers.h"

namespace qorvel::hosts {
namespace {

constexpr const char* kLimitWords[6] = {"XMIN", "XMAX", "YMIN", "YMAX", "ZMIN", "ZMAX"};
constexpr const char* kToolTypes[] = {"ENDMILL",         "BALLNOSED",   "TIPRADIUSED",
                                      "TAPERSPHERICAL",  "TAPERTIPPED", "TIPPEDDISC",
                                      "OFFCENTRETIPRAD", "DRILL"};
constexpr const char* kEntityTitles[3] = {"toolpaths", "patterns", "workplanes"};

[[noreturn]] void Reject(const std::string& what) { throw Error(1000, "Tarvik: " + what); }

std::vector<std::string> Words(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> words;
  for (std::string w; in >> w;) words.push_back(w);
  return words;
}

double Number(const std::string& text) {
  std::optional<double> value = ParseNumber(text);
  if (!value) Reject("Invalid number: " + text);
  return *value;
}

std::string Num(double value) { return FormatPattern(value, "0.000"); }

// The text after the first `skip` words of a command, without quotes around it.
std::string Rest(const std::string& command, size_t skip) {
  std::istringstream in(command);
  for (std::string w; skip > 0 && in >> w; --skip) {
  }
  std::string rest;
  std::getline(in, rest);
  size_t first = rest.find_first_not_of(' ');
  rest = first == std::string::npos ? "" : rest.substr(first);
  while (!rest.empty() && rest.back() == ' ') rest.pop_back();
  if (rest.size() >= 2 && rest.front() == '"' && rest.back() == '"') {
    rest = rest.substr(1, rest.size() - 2);
  }
  return rest;
}

int LimitIndex(const std::string& word) {
  for (int i = 0; i < 6; ++i) {
    if (word == kLimitWords[i]) return i;
  }
  return -1;
}

}  // namespace

SimTarvik::SimTarvik() : SimHost("Tarvik.Document") { set_version(kDefaultVersion); }

void SimTarvik::LoadModel(const Box& extents, int32_t components) {
  std::lock_guard lock(mu_);
  model_ = extents;
  components_ = components;
}

void SimTarvik::ClearModel() {
  std::lock_guard lock(mu_);
  model_.reset();
  components_ = 0;
}

void SimTarvik::AddEntity(EntityKind kind, const std::string& name, std::vector<double> numbers) {
  std::lock_guard lock(mu_);
  entities_[int(kind)].push_back({name, std::move(numbers)});
}

void SimTarvik::SetActive(EntityKind kind, const std::string& name) {
  std::lock_guard lock(mu_);
  if (name.empty()) {
    active_[int(kind)] = -1;
    return;
  }
  const Entity& e = FindEntity(kind, name);
  active_[int(kind)] = int(&e - entities_[int(kind)].data());
}

SimTarvik::Block SimTarvik::block() const {
  std::lock_guard lock(mu_);
  return block_;
}
std::map<std::string, std::string> SimTarvik::tool() const {
  std::lock_guard lock(mu_);
  return tool_;
}
std::string SimTarvik::units() const {
  std::lock_guard lock(mu_);
  return units_;
}
bool SimTarvik::message_dialogs() const {
  std::lock_guard lock(mu_);
  return message_dialogs_;
}
bool SimTarvik::error_dialogs() const {
  std::lock_guard lock(mu_);
  return error_dialogs_;
}

std::string SimTarvik::RunCommand(const std::string& command) {
  const std::vector<std::string> words = Words(Upper(command));
  if (words.empty()) Reject("Empty command");
  const std::string& verb = words[0];
  if (verb == "NLTDEBUG") return "";
  if (verb == "DIALOGS") return Dialogs(words);
  if (verb == "SIZE") return Size(words, command);
  if (verb == "EDIT") return Edit(words, command);
  if (verb == "PRINT" && words.size() == 3 && words[1] == "FORMVALUE") {
    if (words[2] == "ROUGHMENUBAR.VIEW.DIALOGS.MESSAGE") {
      return message_dialogs_ ? "TRUE\r\n" : "FALSE\r\n";
    }
    if (words[2] == "INFOBAR.UNITS") return units_ + "\r\n";
    Reject("Unknown form value: " + words[2]);
  }
  if (verb == "PRINT" && words.size() == 3 && words[1] == "ENTITY") return PrintEntity(words);
  Reject("Unrecognised command: " + command);
}

std::string SimTarvik::Dialogs(const std::vector<std::string>& words) {
  if (words.size() != 3 || (words[2] != "ON" && words[2] != "OFF")) Reject("Bad DIALOGS command");
  const bool on = words[2] == "ON";
  if (words[1] == "MESSAGE") {
    message_dialogs_ = on;
  } else if (words[1] == "ERROR") {
    error_dialogs_ = on;
  } else {
    Reject("Bad DIALOGS command");
  }
  return "";
}

std::string SimTarvik::Size(const std::vector<std::string>& words, const std::string& command) {
  if (words.size() < 2) Reject("SIZE needs an object");
  const std::string& what = words[1];
  if (what == "COMPONENTS") return "Components: " + std::to_string(components_) + "\r\n";
  if (what == "BLOCK") {
    if (!block_.defined) return "";
    const auto& l = block_.limits;
    return "Information: Xmin: " + Num(l[0]) + " Xmax: " + Num(l[1]) + "\r\nYmin: " + Num(l[2]) +
           " Ymax: " + Num(l[3]) + "\r\nZmin: " + Num(l[4]) + " Zmax: " + Num(l[5]) + "\r\n";
  }
  auto box = [](const std::vector<double>& n) {
    return "Minimum: X " + Num(n[0]) + " Y " + Num(n[1]) + " Z " + Num(n[2]) + "\r\nMaximum: X " +
           Num(n[3]) + " Y " + Num(n[4]) + " Z " + Num(n[5]) + "\r\n";
  };
  if (what == "MODEL") {
    if (!model_) Reject("No model loaded");
    return box({model_->begin(), model_->end()}) + "Components: " + std::to_string(components_) +
           "\r\n";
  }
  const std::string name = Rest(command, 2);
  if (what == "TOOLPATH") return box(FindEntity(EntityKind::kToolpath, name).numbers);
  if (what == "PATTERN") return box(FindEntity(EntityKind::kPattern, name).numbers);
  if (what == "WORKPLANE") {
    const std::vector<double>& n = FindEntity(EntityKind::kWorkplane, name).numbers;
    std::string out;
    const char* heads[4] = {"Position:", "Vector:", "Vector:", "Vector:"};
    for (int row = 0; row < 4; ++row) {
      out += std::string(heads[row]) + " X " + Num(n[row * 3]) + " Y " + Num(n[row * 3 + 1]) +
             " Z " + Num(n[row * 3 + 2]) + "\r\n";
    }
    return out;
  }
  Reject("Cannot size " + what);
}

std::string SimTarvik::Edit(const std::vector<std::string>& words, const std::string& command) {
  if (words.size() < 3) Reject("Incomplete EDIT command");
  const std::string& what = words[1];
  if (what == "BLOCKTYPE") {
    block_.type = words[2];
    return "";
  }
  if (what == "BLOCK") return EditBlock(words);
  if (what == "UNITS") {
    if (words[2] != "MM" && words[2] != "INCHES") Reject("Unknown units: " + words[2]);
    units_ = words[2];
    return "";
  }
  if (what == "TOOLTYPE") {
    for (const char* type : kToolTypes) {
      if (words[2] == type) {
        tool_["TOOLTYPE"] = type;
        return "";
      }
    }
    Reject("Unknown tool type: " + words[2]);
  }
  if (what == "TOOLNAME") {
    tool_["TOOLNAME"] = Rest(command, 2);
    return "";
  }
  static const char* kToolNumbers[] = {"DIAMETER",    "TLEN",       "TIPRADIUS",  "TAPERANGLE",
                                       "TAPERHEIGHT", "TIPRADIUSX", "TIPRADIUSY", "TOOLNUMBER"};
  for (const char* field : kToolNumbers) {
    if (what == field && words.size() == 3) {
      Number(words[2]);
      tool_[field] = words[2];
      return "";
    }
  }
  Reject("Unrecognised command: " + command);
}

std::string SimTarvik::EditBlock(const std::vector<std::string>& words) {
  const std::string& what = words[2];
  const std::string arg = words.size() > 3 ? words[3] : "";
  if (what == "LIMITTYPE" && !arg.empty()) {
    block_.limit_type = arg;
  } else if (what == "ALL" && (arg == "LOCK" || arg == "UNLOCK")) {
    block_.locked.fill(arg == "LOCK");
  } else if (what == "RESETLIMIT" && !arg.empty()) {
    block_.reset_offset = Number(arg);
  } else if (what == "RESET" && arg.empty()) {
    if (!model_) Reject("No model to reset the block to");
    const Box& m = *model_;
    const double o = block_.reset_offset;
    const double around[6] = {m[0] - o, m[3] + o, m[1] - o, m[4] + o, m[2] - o, m[5] + o};
    for (int i = 0; i < 6; ++i) {
      if (!block_.locked[i] || !block_.defined) block_.limits[i] = around[i];
    }
    block_.defined = true;
  } else if (int i = LimitIndex(what); i >= 0 && !arg.empty()) {
    if (arg == "LOCK" || arg == "UNLOCK") {
      block_.locked[i] = arg == "LOCK";
    } else {
      block_.limits[i] = Number(arg);
      block_.defined = true;
    }
  } else {
    Reject("Bad EDIT BLOCK command");
  }
  return "";
}

std::string SimTarvik::PrintEntity(const std::vector<std::string>& words) {
  int kind = -1;
  if (words[2] == "TOOLPATHS") kind = 0;
  if (words[2] == "PATTERN") kind = 1;
  if (words[2] == "WORKPLANE") kind = 2;
  if (kind < 0) Reject("Unknown entity type: " + words[2]);
  const std::vector<Entity>& list = entities_[kind];
  std::string out = std::to_string(list.size()) + " " + kEntityTitles[kind] + "\r\n";
  for (size_t i = 0; i < list.size(); ++i) {
    out += (int(i) == active_[kind] ? "*'" : "'") + list[i].name + "'\r\n";
  }
  return out;
}

const SimTarvik::Entity& SimTarvik::FindEntity(EntityKind kind, const std::string& name) const {
  for (const Entity& e : entities_[int(kind)]) {
    if (Upper(e.name) == Upper(name)) return e;
  }
  Reject("Entity not found: " + name);
}

}  // namespace qorvel::hosts
