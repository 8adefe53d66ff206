// The control's members for the simulated Tarvik's state: the model, named toolpaths, patterns
// and workplanes, the block, the tool and the units.
#include <vector>

#include "hosts/sim_control_args.h"
#include "qorvel/platform/text.h"

namespace qorvel::hosts {
namespace {

// Six numbers from argument `first` on: xmin, ymin, zmin, xmax, ymax, zmax.
SimTarvik::Box BoxAt(const ControlArgs& a, size_t first) {
  SimTarvik::Box box;
  for (size_t i = 0; i < 6; ++i) box[i] = a.Number(first + i);
  return box;
}

// LoadModel(host, xmin, ymin, zmin, xmax, ymax, zmax [, components])
Variant LoadModel(ControlArgs& a) {
  a.Takes(7, 8);
  const int32_t components = a.Long(7, 1);
  if (components < 0) a.Bad(7, "a component count expected");
  a.Tarvik(0)->LoadModel(BoxAt(a, 1), components);
  return {};
}

Variant ClearModel(ControlArgs& a) {
  a.Takes(1, 1);
  a.Tarvik(0)->ClearModel();
  return {};
}

// AddToolpath(host, name, xmin, ymin, zmin, xmax, ymax, zmax), AddPattern likewise.
Variant AddToolpath(ControlArgs& a) {
  a.Takes(8, 8);
  a.Tarvik(0)->AddToolpath(a.Text(1), BoxAt(a, 2));
  return {};
}

Variant AddPattern(ControlArgs& a) {
  a.Takes(8, 8);
  a.Tarvik(0)->AddPattern(a.Text(1), BoxAt(a, 2));
  return {};
}

// AddWorkplane(host, name, x, y, z, then the three axis vectors)
Variant AddWorkplane(ControlArgs& a) {
  a.Takes(14, 14);
  std::vector<double> numbers;
  for (size_t i = 2; i < 14; ++i) numbers.push_back(a.Number(i));
  a.Tarvik(0)->AddEntity(EntityKind::kWorkplane, a.Text(1), std::move(numbers));
  return {};
}

EntityKind KindAt(const ControlArgs& a, size_t i) {
  const std::string kind = a.Text(i);
  if (EqualsNoCase(kind, "toolpath")) return EntityKind::kToolpath;
  if (EqualsNoCase(kind, "pattern")) return EntityKind::kPattern;
  if (EqualsNoCase(kind, "workplane")) return EntityKind::kWorkplane;
  a.Bad(i, "\"toolpath\", \"pattern\" or \"workplane\" expected");
}

// SetActive(host, "toolpath", "pattern" or "workplane", name)
Variant SetActive(ControlArgs& a) {
  a.Takes(3, 3);
  a.Tarvik(0)->SetActive(KindAt(a, 1), a.Text(2));
  return {};
}

// Block(host): Array(defined, xmin, xmax, ymin, ymax, zmin, zmax, then whether each is locked).
Variant Block(ControlArgs& a) {
  a.Takes(1, 1);
  const SimTarvik::Block block = a.Tarvik(0)->block();
  SafeArray array(VarType::kVariant, {Bound{0, 13}});
  array.Put({0}, Variant(block.defined));
  for (int32_t i = 0; i < 6; ++i) {
    array.Put({1 + i}, Variant(block.limits[i]));
    array.Put({7 + i}, Variant(bool(block.locked[i])));
  }
  return Variant(std::move(array));
}

// Tool(host): the tool settings as sent, "DIAMETER=10." and so on, by name.
Variant Tool(ControlArgs& a) {
  a.Takes(1, 1);
  std::vector<std::string> lines;
  for (const auto& [name, value] : a.Tarvik(0)->tool()) lines.push_back(name + "=" + value);
  return TextList(lines);
}

Variant Units(ControlArgs& a) {
  a.Takes(1, 1);
  return a.Tarvik(0)->units();
}

constexpr ControlMember kTarvikControls[] = {
    {"LoadModel", LoadModel},
    {"ClearModel", ClearModel},
    {"AddToolpath", AddToolpath},
    {"AddPattern", AddPattern},
    {"AddWorkplane", AddWorkplane},
    {"SetActive", SetActive},
    {"Block", Block},
    {"Tool", Tool},
    {"Units", Units},
};

}  // namespace

std::span<const ControlMember> TarvikControls() { return kTarvikControls; }

}  // namespace qorvel::hosts
