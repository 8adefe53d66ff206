#ifndef HOSTS_SIM_CONTROL_ARGS_H_
#define HOSTS_SIM_CONTROL_ARGS_H_

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/sim_host.h"
#include "hosts/sim_tarvik.h"
#include "hosts/sim_ulmora.h"
#include "hosts/surface_geometry.h"
#include "qorvel/platform/safe_array.h"
#include "qorvel/platform/variant.h"

namespace qorvel::hosts {

// The arguments of one call to the control, read with the checks every member needs. Indexes
// are 0-based; a bad argument is error 5 that names the member, the argument (from 1) and what
// was expected. References are followed, and an argument left out or Empty takes the fallback.
class ControlArgs {
 public:
  ControlArgs(std::string_view member, std::span<Variant> args);

  // 450 unless between `min` and `max` arguments came.
  void Takes(size_t min, size_t max) const;
  size_t size() const { return args_.size(); }
  bool Given(size_t i) const;
  const Variant& Value(size_t i) const { return args_[i]; }

  // A host by name, or a simulated object.
  std::shared_ptr<SimObject> Object(size_t i) const;
  std::shared_ptr<SimHost> Host(size_t i) const;
  std::shared_ptr<SimTarvik> Tarvik(size_t i) const;
  std::shared_ptr<SimUlmora> Ulmora(size_t i) const;
  // The automation class a host name stands for: "Zebrin" -> "Zebrin.Document".
  const char* ClassName(size_t i) const;

  std::string Text(size_t i) const;
  std::string Text(size_t i, const std::string& fallback) const;
  double Number(size_t i) const;
  double Number(size_t i, double fallback) const;
  int32_t Long(size_t i) const;
  int32_t Long(size_t i, int32_t fallback) const;
  bool Flag(size_t i) const;
  // A whole number of positions, 1 to kMaxGridCount.
  int GridCount(size_t i, int fallback) const;
  // An array of three numbers.
  Vec3 Point(size_t i) const;
  Vec3 Point(size_t i, Vec3 fallback) const;
  // A point that argument `i` holds inside it, such as an element of an array of points.
  Vec3 PointIn(const Variant& value, size_t i) const;
  // An array of texts, or one text.
  std::vector<std::string> Names(size_t i) const;
  SafeArray Array(size_t i) const;

  [[noreturn]] void Bad(size_t i, const std::string& expected) const;

 private:
  std::string member_;
  std::vector<Variant> args_;  // dereferenced
};

// What members give back: lists as arrays of Variant from 0.
Variant TextList(const std::vector<std::string>& texts);
Variant NumberList(std::span<const double> numbers);

// A member of the control: its name and what it does.
struct ControlMember {
  std::string_view name;
  Variant (*call)(ControlArgs& args);
};

// The members of each part, kept beside the code they drive.
std::span<const ControlMember> HostControls();
std::span<const ControlMember> TarvikControls();
std::span<const ControlMember> UlmoraControls();
std::span<const ControlMember> SurfaceControls();

}  // namespace qorvel::hosts

#endif  // HOSTS_SIM_CONTROL_ARGS_H_
