#ifndef QORVEL_SURFACE_ULMORA_NEAREST_POINTS_H_
#define QORVEL_SURFACE_ULMORA_NEAREST_POINTS_H_

#include <array>
#include <string>

#include "qorvel/frame/control_shell.h"
#include "qorvel/platform/safe_array.h"
#include "qorvel/platform/variant.h"

namespace qorvel {

// Projects a list of points on a named surface of the modelling host's active model: all of
// them in one host call, the nearest point of each coming back in the outputs. It binds the
// running host itself at each call, into references of its own, and raises a numbered error
// for every failed check.
class UlmoraNearestPoints final : public ControlEvents {
 public:
  static constexpr ShellSize kShell = ShellSize::kImage;

  void GetNearestPoints(std::string& SurfaceName, SafeArray& InputX, SafeArray& InputY,
                        SafeArray& InputZ, SafeArray& OutputX, SafeArray& OutputY,
                        SafeArray& OutputZ);
  void Terminate() override;

 private:
  void BindApplication();
  bool IsHostReady();
  // The points of the inputs one after another, x, y, z each, with one trailing 0.
  static SafeArray FlatPoints(const SafeArray& x, const SafeArray& y, const SafeArray& z,
                              int32_t lower, int32_t count);
  static void ReadAnswer(const SafeArray& answer, int32_t lower, int32_t count,
                         std::array<SafeArray*, 3> outputs);

  AutomationObject ApplicationRef;
  AutomationObject DocumentRef;
};

}  // namespace qorvel

#endif  // QORVEL_SURFACE_ULMORA_NEAREST_POINTS_H_
