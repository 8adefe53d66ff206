#include "qorvel/platform/collection.h"

#include <algorithm>
#include <memory>

#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"

namespace qorvel {

namespace {

bool IsMember(std::string_view member, std::string_view name) { return EqualsNoCase(member, name); }

// Keys are text; an Empty key or empty text means the member has none.
std::string KeyOf(const Variant& key) {
  if (key.is_empty()) return "";
  if (key.type() != VarType::kText) Raise(err::kTypeMismatch);
  return LowerCase(key.ToText());
}

void ExpectArgs(std::span<Variant> args, size_t least, size_t most) {
  if (args.size() < least || args.size() > most) Raise(err::kWrongArgs);
}

Variant ArgOrEmpty(std::span<Variant> args, size_t i) {
  return i < args.size() ? args[i] : Variant();
}

}  // namespace

int32_t Collection::Count() const { return static_cast<int32_t>(members_.size()); }

size_t Collection::Position(const Variant& index) const {
  if (index.type() == VarType::kText) {
    std::string key = KeyOf(index);
    if (key.empty() || !keys_.contains(key)) Raise(err::kInvalidCall);
    auto it = std::find_if(members_.begin(), members_.end(),
                           [&](const Member& m) { return m.key == key; });
    return static_cast<size_t>(it - members_.begin());
  }
  int32_t number = index.ToLong();
  if (number < 1 || number > Count()) Raise(err::kSubscript);
  return static_cast<size_t>(number - 1);
}

Variant Collection::Item(const Variant& index) const { return members_[Position(index)].item; }

void Collection::Add(const Variant& item, const Variant& key, const Variant& before,
                     const Variant& after) {
  if (!before.is_empty() && !after.is_empty()) Raise(err::kInvalidCall);
  std::string folded = KeyOf(key);
  if (!folded.empty() && keys_.contains(folded)) Raise(err::kDuplicateKey);
  size_t at = members_.size();
  if (!before.is_empty()) at = Position(before);
  if (!after.is_empty()) at = Position(after) + 1;
  if (!folded.empty()) keys_.insert(folded);
  try {
    members_.insert(members_.begin() + at, Member{item.Deref(), folded});
  } catch (...) {
    keys_.erase(folded);  // an item that couldn't be added keeps no key
    throw;
  }
}

void Collection::Remove(const Variant& index) {
  auto at = members_.begin() + Position(index);
  keys_.erase(at->key);
  members_.erase(at);
}

Variant Collection::Invoke(std::string_view member, CallKind kind, std::span<Variant> args) {
  MemberShape shape = Shape(member);
  if (shape == MemberShape::kMissing || kind == CallKind::kPropertyPut) Raise(err::kNoMember);
  if (IsMember(member, "Count")) {
    ExpectArgs(args, 0, 0);
    return Count();
  }
  if (IsMember(member, "Add")) {
    ExpectArgs(args, 1, 4);
    Add(args[0], ArgOrEmpty(args, 1), ArgOrEmpty(args, 2), ArgOrEmpty(args, 3));
    return {};
  }
  ExpectArgs(args, 1, 1);
  if (IsMember(member, "Remove")) {
    Remove(args[0]);
    return {};
  }
  return Item(args[0]);
}

MemberShape Collection::Shape(std::string_view member) const {
  if (IsMember(member, "Count")) return MemberShape::kProperty;
  if (member.empty() || IsMember(member, "Item") || IsMember(member, "Add") ||
      IsMember(member, "Remove")) {
    return MemberShape::kMethod;
  }
  return MemberShape::kMissing;
}

AutomationObject NewCollection() { return std::make_shared<Collection>(); }

}  // namespace qorvel
