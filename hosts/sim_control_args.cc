#include "hosts/sim_control_args.h"

#include <cmath>

#include "hosts/simulators.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"

namespace qorvel::hosts {
namespace {

struct HostName {
  const char* short_name;
  const char* class_name;
};
constexpr HostName kHostNames[] = {
    {"Zebrin", kZebrinClass}, {"Tarvik", kTarvikClass}, {"Ulmora", kUlmoraClass}};

bool IsNumber(const Variant& v) {
  switch (v.type()) {
    case VarType::kInteger:
    case VarType::kLong:
    case VarType::kDouble:
      return !v.is_array();
    default:
      return false;
  }
}

// A host given by name is the newest simulator of its class.
std::shared_ptr<SimHost> Newest(const char* class_name) {
  std::shared_ptr<SimHost> host = LastStarted(class_name);
  if (!host) {
    Raise(err::kInvalidCall,
          std::string("No simulated ") + class_name + " has started: Run it first");
  }
  return host;
}

}  // namespace

ControlArgs::ControlArgs(std::string_view member, std::span<Variant> args) : member_(member) {
  for (const Variant& arg : args) args_.push_back(arg.Deref());
}

void ControlArgs::Takes(size_t min, size_t max) const {
  if (args_.size() < min || args_.size() > max) {
    Raise(err::kWrongArgs, "SimControl." + member_ + " takes " +
                               (min == max ? std::to_string(min)
                                           : std::to_string(min) + " to " + std::to_string(max)) +
                               " arguments, got " + std::to_string(args_.size()));
  }
}

bool ControlArgs::Given(size_t i) const { return i < args_.size() && !args_[i].is_empty(); }

void ControlArgs::Bad(size_t i, const std::string& expected) const {
  Raise(err::kInvalidCall,
        "SimControl." + member_ + ", argument " + std::to_string(i + 1) + ": " + expected);
}

const char* ControlArgs::ClassName(size_t i) const {
  if (Given(i) && args_[i].type() == VarType::kText) {
    const std::string name = args_[i].ToText();
    for (const HostName& h : kHostNames) {
      if (EqualsNoCase(name, h.short_name) || EqualsNoCase(name, h.class_name)) {
        return h.class_name;
      }
    }
  }
  Bad(i, "\"Zebrin\", \"Tarvik\" or \"Ulmora\" expected");
}

std::shared_ptr<SimObject> ControlArgs::Object(size_t i) const {
  if (Given(i) && args_[i].type() == VarType::kObject && !args_[i].is_array()) {
    if (auto object = std::dynamic_pointer_cast<SimObject>(args_[i].ToObject())) return object;
    Bad(i, "a host name or a simulated object expected");
  }
  return Newest(ClassName(i));
}

std::shared_ptr<SimHost> ControlArgs::Host(size_t i) const {
  if (auto host = std::dynamic_pointer_cast<SimHost>(Object(i))) return host;
  Bad(i, "a host name or a simulated host expected");
}

std::shared_ptr<SimTarvik> ControlArgs::Tarvik(size_t i) const {
  if (auto host = std::dynamic_pointer_cast<SimTarvik>(Object(i))) return host;
  Bad(i, "\"Tarvik\" or a simulated Tarvik expected");
}

std::shared_ptr<SimUlmora> ControlArgs::Ulmora(size_t i) const {
  if (auto host = std::dynamic_pointer_cast<SimUlmora>(Object(i))) return host;
  Bad(i, "\"Ulmora\" or a simulated Ulmora expected");
}

std::string ControlArgs::Text(size_t i) const {
  if (!Given(i) || args_[i].type() != VarType::kText || args_[i].is_array()) {
    Bad(i, "text expected");
  }
  return args_[i].ToText();
}

std::string ControlArgs::Text(size_t i, const std::string& fallback) const {
  return Given(i) ? Text(i) : fallback;
}

double ControlArgs::Number(size_t i) const {
  if (!Given(i) || !IsNumber(args_[i])) Bad(i, "a number expected");
  return args_[i].ToDouble();
}

double ControlArgs::Number(size_t i, double fallback) const {
  return Given(i) ? Number(i) : fallback;
}

int32_t ControlArgs::Long(size_t i) const {
  const double n = Number(i);
  if (n != std::floor(n) || n < INT32_MIN || n > INT32_MAX) Bad(i, "a whole number expected");
  return int32_t(n);
}

int32_t ControlArgs::Long(size_t i, int32_t fallback) const {
  return Given(i) ? Long(i) : fallback;
}

bool ControlArgs::Flag(size_t i) const {
  if (Given(i) && args_[i].type() == VarType::kBool && !args_[i].is_array()) {
    return args_[i].ToBool() != VariantBool::kFalse;
  }
  if (Given(i) && IsNumber(args_[i])) return args_[i].ToDouble() != 0;
  Bad(i, "True or False expected");
}

int ControlArgs::GridCount(size_t i, int fallback) const {
  if (!Given(i)) return fallback;
  const double n = Number(i);
  if (!(n >= 1 && n <= kMaxGridCount) || n != std::floor(n)) {
    Bad(i, "a whole number from 1 to 32767 expected");
  }
  return int(n);
}

SafeArray ControlArgs::Array(size_t i) const {
  if (!Given(i) || !args_[i].is_array()) Bad(i, "an array expected");
  return args_[i].ToArray();
}

Vec3 ControlArgs::Point(size_t i) const {
  if (!Given(i)) Bad(i, "an array of three numbers expected");
  return PointIn(args_[i], i);
}

Vec3 ControlArgs::PointIn(const Variant& value, size_t i) const {
  const std::string expected = "an array of three numbers expected";
  if (!value.is_array()) Bad(i, expected);
  const SafeArray array = value.ToArray();
  if (array.dims() != 1 || array.size() != 3) Bad(i, expected);
  double c[3];
  for (int32_t k = 0; k < 3; ++k) {
    const Variant v = array.Get({array.LBound() + k});
    if (!IsNumber(v)) Bad(i, expected);
    c[k] = v.ToDouble();
  }
  return {c[0], c[1], c[2]};
}

Vec3 ControlArgs::Point(size_t i, Vec3 fallback) const { return Given(i) ? Point(i) : fallback; }

std::vector<std::string> ControlArgs::Names(size_t i) const {
  const std::string expected = "a name or an array of names expected";
  if (Given(i) && args_[i].type() == VarType::kText && !args_[i].is_array()) return {Text(i)};
  if (!Given(i) || !args_[i].is_array()) Bad(i, expected);
  const SafeArray array = args_[i].ToArray();
  std::vector<std::string> names;
  if (array.dims() == 0) return names;
  if (array.dims() != 1) Bad(i, expected);
  for (int64_t k = 0; k < array.size(); ++k) {
    const Variant v = array.GetFlat(k);
    if (v.type() != VarType::kText || v.is_array()) Bad(i, expected);
    names.push_back(v.ToText());
  }
  return names;
}

Variant TextList(const std::vector<std::string>& texts) {
  SafeArray array(VarType::kVariant, {Bound{0, int32_t(texts.size())}});
  for (size_t i = 0; i < texts.size(); ++i) array.Put({int32_t(i)}, Variant(texts[i]));
  return Variant(std::move(array));
}

Variant NumberList(std::span<const double> numbers) {
  SafeArray array(VarType::kVariant, {Bound{0, int32_t(numbers.size())}});
  for (size_t i = 0; i < numbers.size(); ++i) array.Put({int32_t(i)}, Variant(numbers[i]));
  return Variant(std::move(array));
}

}  // namespace qorvel::hosts
