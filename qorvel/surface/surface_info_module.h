#ifndef QORVEL_SURFACE_SURFACE_INFO_MODULE_H_
#define QORVEL_SURFACE_SURFACE_INFO_MODULE_H_

#include <cstdint>
#include <string>

#include "qorvel/platform/safe_array.h"
#include "qorvel/platform/variant.h"

// The point data of one surface of the modelling host, held on the client's side between a read
// and a write-back: a grid of points, Lateral by Longitudinal, with four tangent records at each.
// The store carries the values between host and client and computes nothing with them.
namespace qorvel::surface_info_module {

// One tangent record of every grid point: its direction (i, j, k), magnitude and two freedom
// flags. The 3-dimensional arrays are Lateral by Longitudinal by coordinate, the others Lateral by
// Longitudinal, all from 1, first subscript fastest.
struct TangentGroup {
  SafeArray Vector;     // Double
  SafeArray Magnitude;  // Double
  SafeArray DirFree;    // VariantBool
  SafeArray MagFree;    // VariantBool
};

// One per thread, shared by every surface control of the thread.
struct SurfaceStore {
  AutomationObject SurfaceHost;  // "Ulmora.Application", bound by the surface control's Reset
  std::string StoreName;
  VariantBool WorldFlag = VariantBool::kFalse;
  int16_t NLats = 0;
  int16_t NLons = 0;
  SafeArray Points;
  TangentGroup UBefore;
  TangentGroup UAfter;
  TangentGroup TBefore;
  TangentGroup TAfter;
};

// This thread's store, in the installed environment.
SurfaceStore& Store();

// Reads the surface `name` whole from the host's active document in one call: the counts by
// two Evaluates, new arrays of those counts (zeros and false), "SELECT CLEARLIST", then
// GetSurfacePointData. True when the host's status comes back 0; the store then holds the host's
// arrays with the host's bounds. Errors of the host calls and conversions go on to the caller (9
// for a count below 1, 6 for one beyond 16 bits, 13 for a data array of the wrong type).
VariantBool ReadSurface(const std::string& name);
// Sends the store whole to the active document in one SetSurfacePointData call after "SELECT
// CLEARLIST"; true when the status comes back 0. The store's arrays stay as they were.
VariantBool WriteSurface();
// New arrays for `group` of the given counts, whatever it held.
void SizeTangentGroup(TangentGroup& group, int16_t& lats, int16_t& lons);

// The host's reply to `expression`, sent by value as the surface tools send it.
Variant Evaluate(const AutomationObject& host, const std::string& expression);

// Whether a host's reply compares equal to the number 0, as a client's language compares it:
// Empty and false do, Null doesn't, and a reply that is no number can't be compared (13).
bool EqualsZero(const Variant& reply);

}  // namespace qorvel::surface_info_module

#endif  // QORVEL_SURFACE_SURFACE_INFO_MODULE_H_
