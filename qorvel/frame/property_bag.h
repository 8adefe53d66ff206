#ifndef QORVEL_FRAME_PROPERTY_BAG_H_
#define QORVEL_FRAME_PROPERTY_BAG_H_

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "qorvel/platform/variant.h"

namespace qorvel {

// A property a control reads back from its saved state, and the type it reads it as: what a
// form loader checks before it makes any control.
struct SavedProperty {
  const char* name;
  VarType type;
};

// The saved state of one control, by property name (any case). A value equal to its default
// is left out, and a missing name reads as the default, so the two must be given alike. The
// names keep the case they were written with, in the order they were first written.
class PropertyBag {
 public:
  Variant ReadProperty(std::string_view name, const Variant& default_value = Variant()) const;
  void WriteProperty(std::string_view name, const Variant& value,
                     const Variant& default_value = Variant());
  // Keeps a value as it is, default or not: a bag read back from a saved form.
  void Restore(std::string_view name, const Variant& value);
  // The same for a name the caller knows is new to the bag (a reader that checks names as
  // it goes), without looking for it: a saved block may hold many.
  void Append(std::string_view name, const Variant& value);
  bool Contains(std::string_view name) const;
  size_t size() const { return entries_.size(); }
  const std::vector<std::pair<std::string, Variant>>& entries() const { return entries_; }

 private:
  std::vector<std::pair<std::string, Variant>>::const_iterator Find(std::string_view name) const;

  std::vector<std::pair<std::string, Variant>> entries_;  // a control saves a handful
};

}  // namespace qorvel

#endif  // QORVEL_FRAME_PROPERTY_BAG_H_
