#include "qorvel/surface/ulmora_surface_info.h"

#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"

namespace qorvel {
namespace {

using surface_info_module::EqualsZero;
using surface_info_module::Store;
using surface_info_module::SurfaceStore;

constexpr double kOldestAccepted = 2611;
void Tell(const char* text) { Env::Current().messages().ShowMessage(text, kExclamationBox, ""); }

Variant Evaluate(const std::string& expression) {
  return surface_info_module::Evaluate(Store().SurfaceHost, expression);
}

void Forget(SurfaceStore& store) {
  store.NLats = 0;
  store.NLons = 0;
}

}  // namespace

void UlmoraSurfaceInfo::Reset() { BindSurfaceHost(); }

// Any failure ends the bind silently, with what is done so far kept: no running host leaves
// everything as it was; a failed version read leaves the control inactive.
void UlmoraSurfaceInfo::BindSurfaceHost() {
  HoldBack([&] {
    SurfaceStore& store = Store();
    store.SurfaceHost = Env::Current().running_objects().BindRunning("Ulmora.Application");
    ActiveFlag = VariantBool::kFalse;
    if (GetMember(store.SurfaceHost, "version").ToDouble() >= kOldestAccepted) {
      ActiveFlag = VariantBool::kTrue;
    }
    CurrentSurface.clear();
    Forget(store);
  });
}

// The surface held before is forgotten first, so any failure leaves none.
VariantBool UlmoraSurfaceInfo::GetSurface(std::string& SurfaceName) {
  SurfaceStore& store = Store();
  CurrentSurface.clear();
  Forget(store);
  if (ActiveFlag == VariantBool::kFalse) Raise(err::kSurfaceNotConnected);
  const std::string name = SurfaceName;
  CheckSurface(name, err::kSurfaceMissing);
  if (surface_info_module::ReadSurface(name) == VariantBool::kFalse) {
    Forget(store);
    Tell("Unable to retrieve surface information - unknown reason!");
    return VariantBool::kFalse;
  }
  CurrentSurface = name;
  return VariantBool::kTrue;
}

VariantBool UlmoraSurfaceInfo::UpdateSurface() {
  if (ActiveFlag == VariantBool::kFalse) Raise(err::kSurfaceNotConnected);
  if (CurrentSurface.empty()) {
    Tell("No surface retrieved to be updated");
    return VariantBool::kFalse;
  }
  CheckSurface(CurrentSurface, err::kSurfaceGone);
  if (surface_info_module::WriteSurface() == VariantBool::kFalse) {
    Tell("Unable to set surface data - unknown reason!");
    return VariantBool::kFalse;
  }
  return VariantBool::kTrue;
}

void UlmoraSurfaceInfo::CheckSurface(const std::string& name, const ErrorText& missing) {
  if (EqualsZero(Evaluate("SURFACE['" + name + "'].EXISTS"))) Raise(missing);
  if (!EqualsNoCase(Evaluate("SURFACE['" + name + "'].TYPE").ToText(), "Kalvane")) {
    Raise(err::kSurfaceNotKalvane);
  }
}

int32_t UlmoraSurfaceInfo::NumLats() const { return Store().NLats; }
int32_t UlmoraSurfaceInfo::NumLongs() const { return Store().NLons; }

VariantBool UlmoraSurfaceInfo::CheckParams(int32_t& Lateral, int32_t& Longitudinal) {
  const SurfaceStore& store = Store();
  if (CurrentSurface.empty()) Raise(err::kNoSurfaceSelected);
  if (Lateral < 1 || Lateral > store.NLats) Raise(err::kLateralOutOfRange);
  if (Longitudinal < 1 || Longitudinal > store.NLons) Raise(err::kLongitudinalOutOfRange);
  return VariantBool::kTrue;
}

void UlmoraSurfaceInfo::GetPoint(int32_t& Lateral, int32_t& Longitudinal, double& X, double& Y,
                                 double& Z) {
  CheckParams(Lateral, Longitudinal);
  Read3(Store().Points, Lateral, Longitudinal, X, Y, Z);
}

void UlmoraSurfaceInfo::SetPoint(int32_t& Lateral, int32_t& Longitudinal, double& X, double& Y,
                                 double& Z) {
  CheckParams(Lateral, Longitudinal);
  Write3(Store().Points, Lateral, Longitudinal, X, Y, Z);
}

VariantBool UlmoraSurfaceInfo::world() const { return Store().WorldFlag; }
void UlmoraSurfaceInfo::set_world(VariantBool& NewFlag) { Store().WorldFlag = NewFlag; }

// Every read goes by the array's own bounds, so an array the host gave in another shape
// raises 9 rather than reaching outside it.
void UlmoraSurfaceInfo::Read3(const SafeArray& a, int32_t lat, int32_t lon, double& x, double& y,
                              double& z) {
  x = a.Get({lat, lon, 1}).ToDouble();
  y = a.Get({lat, lon, 2}).ToDouble();
  z = a.Get({lat, lon, 3}).ToDouble();
}

void UlmoraSurfaceInfo::Write3(SafeArray& a, int32_t lat, int32_t lon, double x, double y,
                               double z) {
  a.Put({lat, lon, 1}, x);
  a.Put({lat, lon, 2}, y);
  a.Put({lat, lon, 3}, z);
}

}  // namespace qorvel
