#include "hosts/sim_ulmora.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "qorvel/platform/error.h"
#include "qorvel/platform/numbers.h"
#include "qorvel/platform/safe_array.h"
#include "qorvel/platform/text.h"

namespace qorvel::hosts {
namespace {

// The three lists the expressions name, and the words that name them.
constexpr const char* kLists[] = {"SELECTION", "CREATED", "UPDATED"};

// What CREATE takes after the entity's name, by kind.
constexpr std::pair<const char*, const char*> kUsages[] = {
    {"POINT", "x y z"},
    {"LINE", "x1 y1 z1 x2 y2 z2"},
    {"ARC", "cx cy cz radius [start end]"},
    {"CURVE", "x y z x y z ..."},
    {"COMPCURVE", "part part ..."},
    {"SURFACE", "nlats nlons [kind]"},
    {"SOLID", "xmin ymin zmin xmax ymax zmax"},
    {"WORKPLANE", "x y z [xx xy xz yx yy yz zx zy zz]"},
    {"ANNOTATION", "text"},
};

// The types a composite curve is made of.
constexpr const char* kWireTypes[] = {"Line", "Arc", "Curve", "Composite Curve"};

// A vector property: a one-dimensional array of Double, indexed from 0.
Variant Vector(std::span<const double> numbers) {
  SafeArray array(VarType::kDouble, {Bound{0, int32_t(numbers.size())}});
  for (size_t i = 0; i < numbers.size(); ++i) array.PutDouble(int32_t(i), numbers[i]);
  return Variant(std::move(array));
}

bool IsNumber(const Variant& v) { return !v.is_array() && v.type() == VarType::kDouble; }

// The point's coordinates as one vector, when it keeps them one by one.
std::optional<Variant> Position(const std::map<std::string, Variant>& properties) {
  double xyz[3];
  int i = 0;
  for (const char* axis : {"X", "Y", "Z"}) {
    auto it = properties.find(axis);
    if (it == properties.end() || !IsNumber(it->second)) return std::nullopt;
    xyz[i++] = it->second.ToDouble();
  }
  return Vector(xyz);
}

std::string Usage(const std::string& kind) {
  for (const auto& [word, usage] : kUsages) {
    if (kind == word) return "Usage: CREATE " + kind + " name " + usage;
  }
  RejectCommand("Unknown entity type: " + kind);
}

// The properties of a new entity made of numbers alone; nullopt when the count doesn't fit.
std::optional<std::map<std::string, Variant>> FromNumbers(const std::string& kind,
                                                          const std::vector<double>& n) {
  auto span = [&](size_t first) { return std::span<const double>(n).subspan(first, 3); };
  if (kind == "POINT" && n.size() == 3) return {{{"X", n[0]}, {"Y", n[1]}, {"Z", n[2]}}};
  if (kind == "LINE" && n.size() == 6)
    return {{{"START", Vector(span(0))}, {"END", Vector(span(3))}}};
  if (kind == "ARC" && (n.size() == 4 || n.size() == 6)) {
    if (n[3] <= 0) RejectCommand("The radius must be above 0");
    return {{{"CENTRE", Vector(span(0))},
             {"RADIUS", n[3]},
             {"STARTANGLE", n.size() == 6 ? n[4] : 0.0},
             {"ENDANGLE", n.size() == 6 ? n[5] : 360.0}}};
  }
  if (kind == "CURVE" && n.size() >= 6 && n.size() % 3 == 0) return {{{"POINTS", Vector(n)}}};
  if (kind == "SOLID" && n.size() == 6) {
    if (n[0] > n[3] || n[1] > n[4] || n[2] > n[5])
      RejectCommand("The minimum lies above the maximum");
    return {{{"MIN", Vector(span(0))}, {"MAX", Vector(span(3))}}};
  }
  if (kind == "WORKPLANE" && (n.size() == 3 || n.size() == 12)) {
    const double unit[12] = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
    auto axis = [&](size_t first) {
      return n.size() == 12 ? Vector(span(first)) : Vector(std::span(unit).subspan(first, 3));
    };
    return {
        {{"ORIGIN", Vector(span(0))}, {"XAXIS", axis(3)}, {"YAXIS", axis(6)}, {"ZAXIS", axis(9)}}};
  }
  return std::nullopt;
}

bool Listed(const std::vector<std::string>& list, const std::string& name) {
  return std::any_of(list.begin(), list.end(),
                     [&](const auto& n) { return EqualsNoCase(n, name); });
}

void Unlist(std::vector<std::string>& list, const std::string& name) {
  std::erase_if(list, [&](const std::string& n) { return EqualsNoCase(n, name); });
}

// The one text a member takes.
std::string OneText(std::span<Variant> args) {
  if (args.size() != 1) Raise(err::kWrongArgs);
  return args[0].ToText();
}

// A list index as the library writes it: plain decimal digits. Past `size` reads as `size`.
std::optional<size_t> Index(std::string_view digits, size_t size) {
  if (digits.empty()) return std::nullopt;
  size_t value = 0;
  for (char c : digits) {
    if (c < '0' || c > '9') return std::nullopt;
    value = std::min(value * 10 + size_t(c - '0'), size);
  }
  return value;
}

}  // namespace

SimUlmora::SimUlmora() : SimHost(kUlmoraClass) { set_version(kDefaultVersion); }

// --- The model, as tests and scripts set it up.

void SimUlmora::AddEntity(Entity entity) {
  if (entity.name.empty() || entity.type.empty()) {
    Raise(err::kInvalidCall, "An entity needs a name and a type");
  }
  std::map<std::string, Variant> upper;
  for (auto& [key, value] : entity.properties) upper[UpperCase(key)] = std::move(value);
  entity.properties = std::move(upper);
  std::lock_guard lock(mu_);
  Hold(std::move(entity));
}

void SimUlmora::Hold(Entity entity) {
  const auto [it, added] = index_.emplace(UpperCase(entity.name), entities_.size());
  if (added) {
    entities_.push_back(std::move(entity));
  } else {
    entities_[it->second] = std::move(entity);
  }
}

std::vector<SimUlmora::Entity> SimUlmora::entities() const {
  std::lock_guard lock(mu_);
  return entities_;
}

std::optional<SimUlmora::Entity> SimUlmora::entity(const std::string& name) const {
  std::lock_guard lock(mu_);
  const Entity* e = Find(name);
  if (e == nullptr) return std::nullopt;
  return *e;
}

void SimUlmora::Select(std::vector<std::string> names) {
  std::lock_guard lock(mu_);
  selection_ = Known(std::move(names));
}

void SimUlmora::MarkCreated(std::vector<std::string> names) {
  std::lock_guard lock(mu_);
  created_ = Known(std::move(names));
}

void SimUlmora::MarkUpdated(std::vector<std::string> names) {
  std::lock_guard lock(mu_);
  updated_ = Known(std::move(names));
}

std::vector<std::string> SimUlmora::selection() const {
  std::lock_guard lock(mu_);
  return selection_;
}

std::vector<std::string> SimUlmora::created() const {
  std::lock_guard lock(mu_);
  return created_;
}

std::vector<std::string> SimUlmora::updated() const {
  std::lock_guard lock(mu_);
  return updated_;
}

void SimUlmora::set_counts_as_text(bool as_text) {
  std::lock_guard lock(mu_);
  counts_as_text_ = as_text;
}

bool SimUlmora::dialogs() const {
  std::lock_guard lock(mu_);
  return dialogs_;
}

std::vector<std::string> SimUlmora::batches() const {
  std::lock_guard lock(mu_);
  return batches_;
}

void SimUlmora::ScriptEvaluate(const std::string& expression, Variant reply) {
  std::lock_guard lock(mu_);
  scripted_evaluates_[UpperCase(expression)] = std::move(reply);
}

void SimUlmora::ClearOwnFaults() {
  SimHost::ClearOwnFaults();
  scripted_evaluates_.clear();
  if (document_) document_->ClearFaults();
}

// --- Surfaces and the document that holds them.

void SimUlmora::AddSurface(const std::string& name, const SurfaceGrid& grid,
                           const std::string& type) {
  std::lock_guard lock(mu_);
  try {
    surfaces_.Add(name, type, grid);
  } catch (const std::invalid_argument& e) {
    Raise(err::kInvalidCall, "Surface " + name + ": " + e.what());
  }
}

bool SimUlmora::DeleteSurface(const std::string& name) {
  std::lock_guard lock(mu_);
  return surfaces_.Remove(name);
}

std::vector<std::string> SimUlmora::surface_names() const {
  std::lock_guard lock(mu_);
  return surfaces_.names();
}

std::vector<Vec3> SimUlmora::NearestPoints(const std::string& name,
                                           const std::vector<Vec3>& points) {
  std::lock_guard lock(mu_);
  std::vector<double> flat, nearest(3 * points.size());
  for (const Vec3& p : points) flat.insert(flat.end(), {p.x, p.y, p.z});
  surfaces_.Nearest(name, flat, int32_t(points.size()), nearest);
  std::vector<Vec3> feet;
  for (size_t k = 0; k < points.size(); ++k) {
    feet.push_back({nearest[3 * k], nearest[3 * k + 1], nearest[3 * k + 2]});
  }
  return feet;
}

void SimUlmora::WithSurface(const std::string& name,
                            const std::function<void(const GridView&)>& draw) {
  std::lock_guard lock(mu_);
  draw(surfaces_.View(name));
}

void SimUlmora::CloseModel() {
  std::lock_guard lock(mu_);
  model_open_ = false;
  surfaces_.Clear();
  if (document_) document_->GoAway();
  document_ = nullptr;
}

void SimUlmora::OpenModel() {
  std::lock_guard lock(mu_);
  if (!model_open_) surfaces_.Clear();
  model_open_ = true;
}

std::shared_ptr<SimDocument> SimUlmora::document() {
  std::lock_guard lock(mu_);
  if (!model_open_) return nullptr;
  if (!document_) document_ = std::make_shared<SimDocument>(shared_from_this(), surfaces_);
  return document_;
}

Variant SimUlmora::ActiveDocument(std::span<Variant> args) {
  if (!args.empty()) Raise(err::kWrongArgs);
  return AutomationObject(document());
}

// --- The automation members beyond the session family.

// It has no ExecuteEx: the modelling host's commands give no output.
const SimMembers& SimUlmora::members() const {
  static const SimMembers members(
      SessionMembers(),
      {{"activedocument", MemberShape::kProperty, Handle<&SimUlmora::ActiveDocument>},
       {"Evaluate", MemberShape::kMethod, Handle<&SimUlmora::EvaluateMember>},
       {"exec", MemberShape::kMethod, Handle<&SimUlmora::ExecMember>},
       {"Print", MemberShape::kMethod, Handle<&SimUlmora::PrintMember>}});
  return members;
}

Variant SimUlmora::EvaluateMember(std::span<Variant> args) { return Evaluate(OneText(args)); }

void SimUlmora::ExecMember(std::span<Variant> args) { Exec(OneText(args)); }

Variant SimUlmora::PrintMember(std::span<Variant> args) { return Print(OneText(args)); }

// --- Expressions.

Variant SimUlmora::Evaluate(const std::string& expression) const {
  if (auto s = scripted_evaluates_.find(UpperCase(expression)); s != scripted_evaluates_.end()) {
    return s->second;
  }
  const std::string text(TrimBlanks(expression));
  const std::string upper = UpperCase(text);
  if (upper.starts_with("ENTITY['")) {
    const size_t close = upper.find("'].", 8);
    if (close == std::string::npos) RejectCommand("Unknown expression: " + expression);
    const std::string name = text.substr(8, close - 8);
    const std::string property = upper.substr(close + 3);
    const Entity* e = Find(name);
    if (property == "EXISTS") return e != nullptr;
    if (e == nullptr) RejectCommand("Entity not found: " + name);
    return Property(*e, property);
  }
  if (upper.starts_with("SURFACE['")) return SurfaceExpression(text, upper);
  const std::vector<std::string>* lists[] = {&selection_, &created_, &updated_};
  for (int i = 0; i < 3; ++i) {
    const std::string head = std::string(kLists[i]) + ".";
    if (upper.starts_with(head)) return ListExpression(*lists[i], upper);
  }
  RejectCommand("Unknown expression: " + expression);
}

// "SURFACE['name'].property": the name runs to the last "']." so it may hold one itself.
Variant SimUlmora::SurfaceExpression(const std::string& text, const std::string& upper) const {
  const size_t close = upper.rfind("'].");
  if (close == std::string::npos || close < 9) RejectCommand("Unknown expression: " + text);
  const std::string name = text.substr(9, close - 9);
  std::optional<Variant> value = surfaces_.Property(name, upper.substr(close + 3));
  if (!value) RejectCommand("Unknown property of a surface: " + text.substr(close + 3));
  return *value;
}

// "<LIST>.NUMBER", "<LIST>.NAME[i]", "<LIST>.TYPE[i]", upper-cased.
Variant SimUlmora::ListExpression(const std::vector<std::string>& list,
                                  const std::string& upper) const {
  const size_t dot = upper.find('.');
  const std::string what = upper.substr(dot + 1);
  if (what == "NUMBER") {
    const int32_t count = int32_t(list.size());
    return counts_as_text_ ? Variant(std::to_string(count)) : Variant(count);
  }
  const size_t open = what.find('[');
  const std::string field = what.substr(0, open);
  if ((field != "NAME" && field != "TYPE") || open == std::string::npos || !what.ends_with("]")) {
    RejectCommand("Unknown expression: " + upper);
  }
  const std::string digits = what.substr(open + 1, what.size() - open - 2);
  std::optional<size_t> index = Index(digits, list.size());
  if (!index) RejectCommand("Invalid index: " + upper);
  if (*index >= list.size()) {
    RejectCommand("Index past the end: " + upper + " (" + upper.substr(0, dot) + " holds " +
                  std::to_string(list.size()) + ")");
  }
  const Entity* e = Find(list[*index]);
  if (e == nullptr) RejectCommand("Entity not found: " + list[*index]);
  return field == "NAME" ? Variant(e->name) : Variant(e->type);
}

// NAME and TYPE come first, then what the entity holds, then a point's POSITION.
Variant SimUlmora::Property(const Entity& entity, const std::string& upper_property) const {
  if (upper_property == "NAME") return entity.name;
  if (upper_property == "TYPE") return entity.type;
  if (auto it = entity.properties.find(upper_property); it != entity.properties.end()) {
    return it->second;
  }
  if (upper_property == "POSITION") {
    if (std::optional<Variant> position = Position(entity.properties)) return *position;
  }
  RejectCommand("Unknown property: " + upper_property + " of " + entity.name);
}

// "name.property": the name runs to the last dot, so it may hold dots itself.
Variant SimUlmora::Print(const std::string& id) const {
  const std::string text(TrimBlanks(id));
  const size_t dot = text.rfind('.');
  if (dot == std::string::npos || dot == 0 || dot + 1 == text.size()) {
    RejectCommand("Print takes name.property: " + id);
  }
  const std::string name = text.substr(0, dot);
  const Entity* e = Find(name);
  if (e == nullptr) RejectCommand("Entity not found: " + name);
  return Property(*e, UpperCase(text.substr(dot + 1)));
}

// --- Commands.

std::string SimUlmora::RunCommand(const std::string& command) {
  fresh_lists_ = true;
  Run(command);
  return "";
}

// Blank lines are skipped: a client's empty batch line is no command.
void SimUlmora::Exec(const std::string& batch) {
  batches_.push_back(batch);
  fresh_lists_ = true;
  size_t start = 0;
  for (int line = 1;; ++line) {
    const size_t end = batch.find("\r\n", start);
    const std::string text =
        batch.substr(start, end == std::string::npos ? std::string::npos : end - start);
    if (!TrimBlanks(text).empty()) {
      try {
        Run(text);
      } catch (const Error& e) {
        Raise(e.number(), "Line " + std::to_string(line) + ": " + e.description());
      }
    }
    if (end == std::string::npos) return;
    start = end + 2;
  }
}

void SimUlmora::Run(const std::string& line) {
  if (line.find_first_of("\r\n") != std::string::npos) {
    RejectCommand("Line break inside a command");
  }
  Words words;
  for (size_t pos = 0; (pos = line.find_first_not_of(" \t", pos)) != std::string::npos;) {
    if (line[pos] == '"') {
      const size_t close = line.find('"', pos + 1);
      if (close == std::string::npos) RejectCommand("Unterminated quote: " + line);
      words.push_back({line.substr(pos + 1, close - pos - 1), true});
      pos = close + 1;
    } else {
      const size_t end = std::min(line.find_first_of(" \t", pos), line.size());
      words.push_back({line.substr(pos, end - pos), false});
      pos = end;
    }
  }
  if (words.empty()) RejectCommand("Empty command");
  const std::string verb = words[0].quoted ? "" : UpperCase(words[0].text);
  if (verb == "CREATE") return Create(words);
  if (verb == "MODIFY") return Modify(words);
  if (verb == "DELETE") return Delete(words);
  if (verb == "SELECT") return SelectCommand(words);
  if (verb == "DIALOG") return Dialog(words);
  RejectCommand("Unknown command: " + line);
}

// CREATE kind name arguments...
void SimUlmora::Create(const Words& words) {
  if (words.size() < 3) RejectCommand("Usage: CREATE kind name ...");
  const std::string kind = UpperCase(words[1].text);
  const std::string usage = Usage(kind);
  const std::string& name = words[2].text;
  if (name.empty()) RejectCommand("An entity needs a name");
  if (Find(name) != nullptr) RejectCommand("Entity exists: " + name);
  std::vector<std::string> args;
  for (size_t i = 3; i < words.size(); ++i) args.push_back(words[i].text);
  Entity entity{name, "", {}};
  if (kind == "COMPCURVE") {
    if (args.empty()) RejectCommand(usage);
    for (const std::string& part : args) {
      const Entity& p = Named(part);
      if (std::none_of(std::begin(kWireTypes), std::end(kWireTypes),
                       [&](const char* t) { return p.type == t; })) {
        RejectCommand("Not a curve: " + part);
      }
    }
    entity.type = "Composite Curve";
    std::string parts;
    for (const std::string& part : args) parts += (parts.empty() ? "" : " ") + Named(part).name;
    entity.properties = {{"PARTS", parts}, {"NUMBER", double(args.size())}};
  } else if (kind == "ANNOTATION") {
    if (args.size() != 1) RejectCommand(usage + " (quote a text with blanks)");
    entity.type = "Annotation";
    entity.properties = {{"TEXT", args[0]}};
  } else if (kind == "SURFACE") {
    if (args.size() != 2 && args.size() != 3) RejectCommand(usage);
    const double lats = CommandNumber(args[0]), lons = CommandNumber(args[1]);
    if (lats < 2 || lons < 2 || lats != std::floor(lats) || lons != std::floor(lons) ||
        lats > 10000 || lons > 10000) {
      RejectCommand("A surface takes 2 to 10000 laterals and longitudinals");
    }
    entity.type = "Surface";
    entity.properties = {
        {"NLATS", lats}, {"NLONS", lons}, {"KIND", args.size() == 3 ? args[2] : "Kalvane"}};
  } else {
    std::vector<double> numbers;
    for (const std::string& a : args) numbers.push_back(CommandNumber(a));
    auto properties = FromNumbers(kind, numbers);
    if (!properties) RejectCommand(usage);
    const std::string lower = LowerCase(kind.substr(1));
    entity.type = kind.substr(0, 1) + lower;
    entity.properties = std::move(*properties);
  }
  Changing();
  created_.push_back(entity.name);
  Hold(std::move(entity));
}

// MODIFY name property value...: a number takes one number, a vector as many as it holds, a
// text the rest of the line. NAME and TYPE stay.
void SimUlmora::Modify(const Words& words) {
  if (words.size() < 4) RejectCommand("Usage: MODIFY name property value...");
  Entity& e = Named(words[1].text);
  const std::string property = UpperCase(words[2].text);
  if (property == "NAME" || property == "TYPE") RejectCommand("Can't modify " + property);
  std::vector<std::string> values;
  for (size_t i = 3; i < words.size(); ++i) values.push_back(words[i].text);
  auto held = e.properties.find(property);
  std::map<std::string, Variant> changes;
  if (held == e.properties.end() && property == "POSITION" && Position(e.properties)) {
    if (values.size() != 3) RejectCommand("POSITION takes 3 numbers");
    changes = {{"X", CommandNumber(values[0])},
               {"Y", CommandNumber(values[1])},
               {"Z", CommandNumber(values[2])}};
  } else if (held == e.properties.end()) {
    RejectCommand("Unknown property: " + property + " of " + e.name);
  } else if (held->second.is_array()) {
    const int64_t size = held->second.ToArray().size();
    if (int64_t(values.size()) != size) {
      RejectCommand(property + " takes " + std::to_string(size) + " numbers");
    }
    std::vector<double> numbers;
    for (const std::string& v : values) numbers.push_back(CommandNumber(v));
    changes[property] = Vector(numbers);
  } else if (held->second.type() == VarType::kText) {
    std::string text;
    for (const std::string& v : values) text += (text.empty() ? "" : " ") + v;
    changes[property] = text;
  } else {
    if (values.size() != 1) RejectCommand(property + " takes one number");
    changes[property] = CommandNumber(values[0]);
  }
  Changing();
  for (auto& [key, value] : changes) e.properties[key] = std::move(value);
  if (!Listed(created_, e.name) && !Listed(updated_, e.name)) updated_.push_back(e.name);
}

// DELETE name...: the entities leave the model and all three lists.
void SimUlmora::Delete(const Words& words) {
  if (words.size() < 2) RejectCommand("Usage: DELETE name...");
  for (size_t i = 1; i < words.size(); ++i) Named(words[i].text);
  Changing();
  for (size_t i = 1; i < words.size(); ++i) {
    const std::string& name = words[i].text;
    std::erase_if(entities_, [&](const Entity& e) { return EqualsNoCase(e.name, name); });
    for (auto* list : {&selection_, &created_, &updated_}) Unlist(*list, name);
  }
  index_.clear();
  for (size_t i = 0; i < entities_.size(); ++i) index_.emplace(UpperCase(entities_[i].name), i);
}

// SELECT name..., SELECT ADD name..., SELECT ALL, SELECT CLEARLIST. A quoted word is a name.
void SimUlmora::SelectCommand(const Words& words) {
  auto keyword = [&](size_t i, const char* word) {
    return words.size() > i && !words[i].quoted && EqualsNoCase(words[i].text, word);
  };
  if (words.size() < 2)
    RejectCommand("Usage: SELECT [ADD] name..., SELECT ALL or SELECT CLEARLIST");
  if (keyword(1, "ALL") || keyword(1, "CLEARLIST")) {
    if (words.size() != 2) RejectCommand("Usage: SELECT " + UpperCase(words[1].text));
    selection_.clear();
    if (keyword(1, "ALL")) {
      for (const Entity& e : entities_) selection_.push_back(e.name);
    }
    return;
  }
  const bool add = keyword(1, "ADD");
  if (add && words.size() < 3) RejectCommand("Usage: SELECT ADD name...");
  std::vector<std::string> chosen = add ? selection_ : std::vector<std::string>{};
  for (size_t i = add ? 2 : 1; i < words.size(); ++i) {
    const std::string& name = Named(words[i].text).name;
    if (!Listed(chosen, name)) chosen.push_back(name);
  }
  selection_ = std::move(chosen);
}

void SimUlmora::Dialog(const Words& words) {
  const bool on = words.size() == 2 && EqualsNoCase(words[1].text, "ON");
  const bool off = words.size() == 2 && EqualsNoCase(words[1].text, "OFF");
  if (!on && !off) RejectCommand("Usage: DIALOG ON or DIALOG OFF");
  dialogs_ = on;
}

void SimUlmora::Changing() {
  if (!fresh_lists_) return;
  created_.clear();
  updated_.clear();
  fresh_lists_ = false;
}

const SimUlmora::Entity* SimUlmora::Find(const std::string& name) const {
  const auto it = index_.find(UpperCase(name));
  return it == index_.end() ? nullptr : &entities_[it->second];
}

SimUlmora::Entity& SimUlmora::Named(const std::string& name) {
  const auto it = index_.find(UpperCase(name));
  if (it == index_.end()) RejectCommand("Entity not found: " + name);
  return entities_[it->second];
}

std::vector<std::string> SimUlmora::Known(std::vector<std::string> names) const {
  for (std::string& name : names) {
    const Entity* e = Find(name);
    if (e == nullptr) Raise(err::kInvalidCall, "No entity named " + name);
    name = e->name;
  }
  return names;
}

}  // namespace qorvel::hosts
