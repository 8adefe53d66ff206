#ifndef QORVEL_SURFACE_ULMORA_SURFACE_INFO_H_
#define QORVEL_SURFACE_ULMORA_SURFACE_INFO_H_

#include <cstdint>
#include <string>

#include "qorvel/frame/control_shell.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/variant.h"
#include "qorvel/surface/surface_info_module.h"

namespace qorvel {

// The typed face of this thread's surface store: Reset binds the modelling host, GetSurface
// reads a surface whole, the members that take a Lateral and a Longitudinal read and change
// the store in memory, and UpdateSurface sends it back whole. Most failures raise numbered
// errors; a host's false status shows a message box. Every control of a thread shares the
// store, while the surface each one last read is its own.
class UlmoraSurfaceInfo final : public ControlEvents {
 public:
  static constexpr ShellSize kShell = ShellSize::kImage;
  using TangentGroup = surface_info_module::TangentGroup;
  using SurfaceStore = surface_info_module::SurfaceStore;

  void Initialize() override { ActiveFlag = VariantBool::kFalse; }

  VariantBool Active() const { return ActiveFlag; }
  // Binds the running host; raises nothing.
  void Reset();
  VariantBool GetSurface(std::string& SurfaceName);
  VariantBool UpdateSurface();
  int32_t NumLats() const;
  int32_t NumLongs() const;
  VariantBool CheckParams(int32_t& Lateral, int32_t& Longitudinal);

  // The eight freedom flags: a group's DirFree or MagFree at a grid point.
  template <TangentGroup SurfaceStore::*Group, SafeArray TangentGroup::*Flags>
  VariantBool Flag(int32_t& Lateral, int32_t& Longitudinal);
  template <TangentGroup SurfaceStore::*Group, SafeArray TangentGroup::*Flags>
  void SetFlag(int32_t& Lateral, int32_t& Longitudinal, VariantBool& NewFlag);
  // The four tangent groups' direction and magnitude at a grid point.
  template <TangentGroup SurfaceStore::*Group>
  void GetVector(int32_t& Lateral, int32_t& Longitudinal, double& i, double& J, double& K,
                 double& Magnitude);
  template <TangentGroup SurfaceStore::*Group>
  void SetVector(int32_t& Lateral, int32_t& Longitudinal, double& i, double& J, double& K,
                 double& Magnitude);
  void GetPoint(int32_t& Lateral, int32_t& Longitudinal, double& X, double& Y, double& Z);
  void SetPoint(int32_t& Lateral, int32_t& Longitudinal, double& X, double& Y, double& Z);

  VariantBool world() const;
  void set_world(VariantBool& NewFlag);
  std::string SurfaceName() const { return CurrentSurface; }

 private:
  void BindSurfaceHost();
  // The surface's existence and type, asked of the host before each data call.
  void CheckSurface(const std::string& name, const ErrorText& missing);
  // Three coordinates at a grid point of a 3-dimensional array, in and out.
  static void Read3(const SafeArray& a, int32_t lat, int32_t lon, double& x, double& y, double& z);
  static void Write3(SafeArray& a, int32_t lat, int32_t lon, double x, double y, double z);

  VariantBool ActiveFlag = VariantBool::kFalse;
  std::string CurrentSurface;
};

template <UlmoraSurfaceInfo::TangentGroup UlmoraSurfaceInfo::SurfaceStore::*Group,
          SafeArray UlmoraSurfaceInfo::TangentGroup::*Flags>
VariantBool UlmoraSurfaceInfo::Flag(int32_t& Lateral, int32_t& Longitudinal) {
  CheckParams(Lateral, Longitudinal);
  return (surface_info_module::Store().*Group.*Flags).Get({Lateral, Longitudinal}).ToBool();
}

// Whatever 16-bit value the flag holds is stored as it is.
template <UlmoraSurfaceInfo::TangentGroup UlmoraSurfaceInfo::SurfaceStore::*Group,
          SafeArray UlmoraSurfaceInfo::TangentGroup::*Flags>
void UlmoraSurfaceInfo::SetFlag(int32_t& Lateral, int32_t& Longitudinal, VariantBool& NewFlag) {
  CheckParams(Lateral, Longitudinal);
  (surface_info_module::Store().*Group.*Flags).Put({Lateral, Longitudinal}, NewFlag);
}

template <UlmoraSurfaceInfo::TangentGroup UlmoraSurfaceInfo::SurfaceStore::*Group>
void UlmoraSurfaceInfo::GetVector(int32_t& Lateral, int32_t& Longitudinal, double& i, double& J,
                                  double& K, double& Magnitude) {
  CheckParams(Lateral, Longitudinal);
  const TangentGroup& g = surface_info_module::Store().*Group;
  Read3(g.Vector, Lateral, Longitudinal, i, J, K);
  Magnitude = g.Magnitude.Get({Lateral, Longitudinal}).ToDouble();
}

template <UlmoraSurfaceInfo::TangentGroup UlmoraSurfaceInfo::SurfaceStore::*Group>
void UlmoraSurfaceInfo::SetVector(int32_t& Lateral, int32_t& Longitudinal, double& i, double& J,
                                  double& K, double& Magnitude) {
  CheckParams(Lateral, Longitudinal);
  TangentGroup& g = surface_info_module::Store().*Group;
  Write3(g.Vector, Lateral, Longitudinal, i, J, K);
  g.Magnitude.Put({Lateral, Longitudinal}, Magnitude);
}

}  // namespace qorvel

#endif  // QORVEL_SURFACE_ULMORA_SURFACE_INFO_H_
