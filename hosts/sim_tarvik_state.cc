// The simulated machining host's state as tests and scripts set it up and read it back.

#include "hosts/sim_tarvik.h"
#include "qorvel/platform/error.h"

namespace qorvel::hosts {
namespace {

std::string KindName(EntityKind kind) {
  constexpr const char* kNames[3] = {"toolpath", "pattern", "workplane"};
  return kNames[int(kind)];
}

}  // namespace

void SimTarvik::LoadModel(const Box& extents, int32_t components) {
  if (components < 0) Raise(err::kInvalidCall, "A model has no negative component count");
  std::lock_guard lock(mu_);
  model_ = extents;
  components_ = components;
}

void SimTarvik::ClearModel() {
  std::lock_guard lock(mu_);
  model_.reset();
  components_ = 0;
}

std::optional<SimTarvik::Box> SimTarvik::model() const {
  std::lock_guard lock(mu_);
  return model_;
}

int32_t SimTarvik::components() const {
  std::lock_guard lock(mu_);
  return components_;
}

void SimTarvik::AddToolpath(const std::string& name, const Box& extents) {
  AddEntity(EntityKind::kToolpath, name, {extents.begin(), extents.end()});
}

void SimTarvik::AddPattern(const std::string& name, const Box& extents) {
  AddEntity(EntityKind::kPattern, name, {extents.begin(), extents.end()});
}

void SimTarvik::AddWorkplane(const std::string& name, const Frame& frame) {
  AddEntity(EntityKind::kWorkplane, name, {frame.begin(), frame.end()});
}

void SimTarvik::AddEntity(EntityKind kind, const std::string& name, std::vector<double> numbers) {
  const size_t wanted = kind == EntityKind::kWorkplane ? 12 : 6;
  if (numbers.size() != wanted) {
    Raise(err::kInvalidCall, "A " + KindName(kind) + " takes " + std::to_string(wanted) +
                                 " numbers, not " + std::to_string(numbers.size()));
  }
  std::lock_guard lock(mu_);
  for (Entity& e : entities_[int(kind)]) {
    if (EqualsNoCase(e.name, name)) {
      e.numbers = std::move(numbers);
      return;
    }
  }
  entities_[int(kind)].push_back({name, std::move(numbers)});
}

void SimTarvik::SetActive(EntityKind kind, const std::string& name) {
  std::lock_guard lock(mu_);
  if (name.empty()) {
    active_[int(kind)] = -1;
    return;
  }
  const Entity* e = Find(kind, name);
  if (!e) Raise(err::kInvalidCall, "No " + KindName(kind) + " named " + name);
  active_[int(kind)] = int(e - entities_[int(kind)].data());
}

std::vector<std::string> SimTarvik::entity_names(EntityKind kind) const {
  std::lock_guard lock(mu_);
  std::vector<std::string> names;
  for (const Entity& e : entities_[int(kind)]) names.push_back(e.name);
  return names;
}

std::string SimTarvik::active(EntityKind kind) const {
  std::lock_guard lock(mu_);
  const int i = active_[int(kind)];
  return i < 0 ? "" : entities_[int(kind)][i].name;
}

SimTarvik::Block SimTarvik::block() const {
  std::lock_guard lock(mu_);
  return block_;
}

void SimTarvik::set_block(const Block& block) {
  std::lock_guard lock(mu_);
  block_ = block;
}

std::map<std::string, std::string> SimTarvik::tool() const {
  std::lock_guard lock(mu_);
  return tool_;
}

std::string SimTarvik::units() const {
  std::lock_guard lock(mu_);
  return units_;
}

void SimTarvik::set_units(const std::string& units) {
  const std::string upper = UpperCase(units);
  if (upper != "MM" && upper != "INCHES") Raise(err::kInvalidCall, "Units are MM or INCHES");
  std::lock_guard lock(mu_);
  units_ = upper;
}

bool SimTarvik::message_dialogs() const {
  std::lock_guard lock(mu_);
  return message_dialogs_;
}

void SimTarvik::set_message_dialogs(bool on) {
  std::lock_guard lock(mu_);
  message_dialogs_ = on;
}

bool SimTarvik::error_dialogs() const {
  std::lock_guard lock(mu_);
  return error_dialogs_;
}

void SimTarvik::set_error_dialogs(bool on) {
  std::lock_guard lock(mu_);
  error_dialogs_ = on;
}

int SimTarvik::message_dialogs_shown() const {
  std::lock_guard lock(mu_);
  return message_dialogs_shown_;
}

int SimTarvik::error_dialogs_shown() const {
  std::lock_guard lock(mu_);
  return error_dialogs_shown_;
}

}  // namespace qorvel::hosts
