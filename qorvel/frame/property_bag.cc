#include "qorvel/frame/property_bag.h"

#include <algorithm>

#include "qorvel/platform/text.h"

namespace qorvel {
namespace {

bool IsNumber(VarType type) {
  return type == VarType::kInteger || type == VarType::kLong || type == VarType::kDouble ||
         type == VarType::kBool;
}

// Whether a value equals its default, as the bag compares them: numbers by value whatever
// their type (a Double 0 against the Integer 0), text by its characters.
bool SameValue(const Variant& a, const Variant& b) {
  if (a.is_array() || b.is_array()) return false;
  if (IsNumber(a.type()) && IsNumber(b.type())) return a.ToDouble() == b.ToDouble();
  if (a.type() != b.type()) return false;
  if (a.type() == VarType::kText) return a.ToText() == b.ToText();
  return a.type() == VarType::kEmpty || a.type() == VarType::kNull;
}

}  // namespace

std::vector<std::pair<std::string, Variant>>::const_iterator PropertyBag::Find(
    std::string_view name) const {
  return std::find_if(entries_.begin(), entries_.end(),
                      [&](const auto& e) { return EqualsNoCase(e.first, name); });
}

Variant PropertyBag::ReadProperty(std::string_view name, const Variant& default_value) const {
  auto it = Find(name);
  return it == entries_.end() ? default_value.Deref() : it->second;
}

void PropertyBag::WriteProperty(std::string_view name, const Variant& value,
                                const Variant& default_value) {
  if (!SameValue(value.Deref(), default_value.Deref())) return Restore(name, value);
  auto it = Find(name);
  if (it != entries_.end()) entries_.erase(it);
}

void PropertyBag::Restore(std::string_view name, const Variant& value) {
  auto it = entries_.begin() + (Find(name) - entries_.cbegin());
  if (it != entries_.end()) {
    it->second = value.Deref();
  } else {
    entries_.emplace_back(std::string(name), value.Deref());
  }
}

void PropertyBag::Append(std::string_view name, const Variant& value) {
  entries_.emplace_back(std::string(name), value.Deref());
}

bool PropertyBag::Contains(std::string_view name) const { return Find(name) != entries_.end(); }

}  // namespace qorvel
