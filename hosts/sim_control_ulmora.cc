// The control's members for the simulated Ulmora's model: its entities, the selection, the
// created and updated lists, how it answers counts and chosen expressions, and what the
// commands and batches left behind.
#include <optional>
#include <string>
#include <vector>

#include "hosts/sim_control_args.h"
#include "qorvel/platform/text.h"

namespace qorvel::hosts {
namespace {

// A property as the host keeps it: numbers as Double, a script's array of numbers as an array of
// Double from 0, texts and truth values as they are, typed arrays as they are.
Variant PropertyAt(const ControlArgs& a, size_t i) {
  const Variant& v = a.Value(i);
  const std::string expected = "a number, text, truth value or array of numbers expected";
  if (!v.is_array()) {
    switch (v.type()) {
      case VarType::kInteger:
      case VarType::kLong:
      case VarType::kDouble:
        return v.ToDouble();
      case VarType::kText:
      case VarType::kBool:
        return v;
      default:
        a.Bad(i, expected);
    }
  }
  const SafeArray array = v.ToArray();
  if (array.element_type() != VarType::kVariant) return v;
  if (array.dims() > 1) a.Bad(i, expected);
  SafeArray doubles(VarType::kDouble, {Bound{0, int32_t(array.size())}});
  for (int64_t k = 0; k < array.size(); ++k) {
    const Variant e = array.GetFlat(k);
    if (e.is_array() || (e.type() != VarType::kInteger && e.type() != VarType::kLong &&
                         e.type() != VarType::kDouble)) {
      a.Bad(i, expected);
    }
    doubles.PutDouble(int32_t(k), e.ToDouble());
  }
  return Variant(std::move(doubles));
}

// AddEntity(host, name, type [, property, value]...): AddEntity "Ulmora", "P1", "Point",
// "POSITION", Array(1, 2, 3)
Variant AddEntity(ControlArgs& a) {
  a.Takes(3, 99);
  if (a.size() % 2 == 0) a.Bad(a.size() - 1, "a value for the property expected");
  SimUlmora::Entity entity{a.Text(1), a.Text(2), {}};
  for (size_t i = 3; i + 1 < a.size(); i += 2)
    entity.properties[UpperCase(a.Text(i))] = PropertyAt(a, i + 1);
  a.Ulmora(0)->AddEntity(std::move(entity));
  return {};
}

Variant Entities(ControlArgs& a) {
  a.Takes(1, 1);
  std::vector<std::string> names;
  for (const SimUlmora::Entity& e : a.Ulmora(0)->entities()) names.push_back(e.name);
  return TextList(names);
}

// EntityType(host, name): the type text, or Empty for an entity the model doesn't hold.
Variant EntityType(ControlArgs& a) {
  a.Takes(2, 2);
  const std::optional<SimUlmora::Entity> entity = a.Ulmora(0)->entity(a.Text(1));
  return entity ? Variant(entity->type) : Variant();
}

// EntityProperty(host, name, property): the value as the host keeps it, or Empty.
Variant EntityProperty(ControlArgs& a) {
  a.Takes(3, 3);
  const std::optional<SimUlmora::Entity> entity = a.Ulmora(0)->entity(a.Text(1));
  if (!entity) return {};
  const auto it = entity->properties.find(UpperCase(a.Text(2)));
  return it == entity->properties.end() ? Variant() : it->second;
}

// Select(host, names), MarkCreated and MarkUpdated: a name or an array of names.
Variant Select(ControlArgs& a) {
  a.Takes(2, 2);
  a.Ulmora(0)->Select(a.Names(1));
  return {};
}

Variant MarkCreated(ControlArgs& a) {
  a.Takes(2, 2);
  a.Ulmora(0)->MarkCreated(a.Names(1));
  return {};
}

Variant MarkUpdated(ControlArgs& a) {
  a.Takes(2, 2);
  a.Ulmora(0)->MarkUpdated(a.Names(1));
  return {};
}

Variant Selection(ControlArgs& a) {
  a.Takes(1, 1);
  return TextList(a.Ulmora(0)->selection());
}

Variant Created(ControlArgs& a) {
  a.Takes(1, 1);
  return TextList(a.Ulmora(0)->created());
}

Variant Updated(ControlArgs& a) {
  a.Takes(1, 1);
  return TextList(a.Ulmora(0)->updated());
}

Variant CountsAsText(ControlArgs& a) {
  a.Takes(2, 2);
  a.Ulmora(0)->set_counts_as_text(a.Flag(1));
  return {};
}

// ScriptEvaluate(host, expression, reply): Evaluate of the expression answers the reply.
Variant ScriptEvaluate(ControlArgs& a) {
  a.Takes(3, 3);
  a.Ulmora(0)->ScriptEvaluate(a.Text(1), a.Value(2));
  return {};
}

Variant Dialogs(ControlArgs& a) {
  a.Takes(1, 1);
  return a.Ulmora(0)->dialogs();
}

Variant Batches(ControlArgs& a) {
  a.Takes(1, 1);
  return TextList(a.Ulmora(0)->batches());
}

constexpr ControlMember kUlmoraControls[] = {
    {"AddEntity", AddEntity},
    {"Entities", Entities},
    {"EntityType", EntityType},
    {"EntityProperty", EntityProperty},
    {"Select", Select},
    {"MarkCreated", MarkCreated},
    {"MarkUpdated", MarkUpdated},
    {"Selection", Selection},
    {"Created", Created},
    {"Updated", Updated},
    {"CountsAsText", CountsAsText},
    {"ScriptEvaluate", ScriptEvaluate},
    {"Dialogs", Dialogs},
    {"Batches", Batches},
};

}  // namespace

std::span<const ControlMember> UlmoraControls() { return kUlmoraControls; }

}  // namespace qorvel::hosts
