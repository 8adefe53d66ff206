#include "hosts/sim_object.h"

#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"

namespace qorvel::hosts {

SimMembers::SimMembers(std::initializer_list<SimMember> own) {
  for (const SimMember& m : own) by_name_.insert_or_assign(UpperCase(m.name), m);
}

SimMembers::SimMembers(const SimMembers& base, std::initializer_list<SimMember> own)
    : SimMembers(own) {
  by_name_.insert(base.by_name_.begin(), base.by_name_.end());  // keeps the class's own
}

const SimMember* SimMembers::Find(std::string_view member) const {
  const auto it = by_name_.find(UpperCase(member));
  return it == by_name_.end() ? nullptr : &it->second;
}

SimObject::SimObject(std::string class_name)
    : class_name_(std::move(class_name)),
      family_(std::make_shared<Family>()),
      has_parent_(false),
      mu_(family_->mu) {}

SimObject::SimObject(std::string class_name, const std::shared_ptr<SimObject>& parent,
                     std::string log_name)
    : class_name_(std::move(class_name)),
      family_(parent->family_),
      has_parent_(true),
      parent_(parent),
      log_name_(std::move(log_name)),
      mu_(family_->mu) {}

Variant SimObject::Invoke(std::string_view member, CallKind kind, std::span<Variant> args) {
  std::lock_guard lock(mu_);
  Call call{std::string(member), kind, {}, log_name_};
  for (const Variant& a : args) call.args.push_back(a.Deref());
  family_->log.push_back(std::move(call));
  CountCall();
  if (GoneLocked()) Raise(err::kServerGone);
  if (auto f = failing_members_.find(UpperCase(member)); f != failing_members_.end()) {
    Raise(f->second.number, f->second.description);
  }
  const SimMember* m = members().Find(member);
  if (m == nullptr) Raise(err::kNoMember);
  if (kind != CallKind::kPropertyPut) return m->call(*this, args);
  if (m->put == nullptr) Raise(err::kNoMember);
  return m->put(*this, args);
}

MemberShape SimObject::Shape(std::string_view member) const {
  const SimMember* m = members().Find(member);
  return m == nullptr ? MemberShape::kMissing : m->shape;
}

// A call to an object counts towards its host's vanishing too.
void SimObject::CountCall() {
  if (calls_to_vanish_ > 0 && --calls_to_vanish_ == 0) GoAwayNow();
  if (std::shared_ptr<SimObject> parent = parent_.lock()) parent->CountCall();
}

bool SimObject::GoneLocked() const {
  if (gone_) return true;
  if (!has_parent_) return false;
  const std::shared_ptr<SimObject> parent = parent_.lock();
  return parent == nullptr || parent->GoneLocked();
}

std::vector<Call> SimObject::log() const {
  std::lock_guard lock(mu_);
  return family_->log;
}

void SimObject::ClearLog() {
  std::lock_guard lock(mu_);
  family_->log.clear();
}

void SimObject::FailMember(const std::string& member, int32_t number,
                           const std::string& description) {
  std::lock_guard lock(mu_);
  failing_members_[UpperCase(member)] = {number, description};
}

void SimObject::ClearFaults() {
  std::lock_guard lock(mu_);
  failing_members_.clear();
  calls_to_vanish_ = 0;
  ClearOwnFaults();
}

void SimObject::GoAway() {
  std::lock_guard lock(mu_);
  GoAwayNow();
}

void SimObject::GoAwayNow() {
  gone_ = true;
  OnGoAway();
}

void SimObject::VanishAt(int64_t n) {
  if (n < 1) Raise(err::kInvalidCall);
  std::lock_guard lock(mu_);
  calls_to_vanish_ = n;
}

bool SimObject::gone() const {
  std::lock_guard lock(mu_);
  return GoneLocked();
}

}  // namespace qorvel::hosts
