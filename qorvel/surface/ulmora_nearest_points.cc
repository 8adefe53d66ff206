#include "qorvel/surface/ulmora_nearest_points.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/error.h"
#include "qorvel/surface/surface_info_module.h"

namespace qorvel {
namespace {

// A point count, or three times it, in a Long: beyond is the platform's overflow.
int32_t CheckedLong(int64_t n) {
  if (n > INT32_MAX || n < INT32_MIN) Raise(err::kOverflow);
  return static_cast<int32_t>(n);
}

// Resized with nothing kept: 0.0 in every element, an output of Variant elements too (which a
// resize alone would leave Empty).
void Zeroed(SafeArray& out, int32_t lower, int32_t count) {
  out.Redim({{lower, count}}, false);
  if (out.element_type() == VarType::kDouble) return;
  for (int64_t k = 0; k < count; ++k) out.Put({static_cast<int32_t>(lower + k)}, 0.0);
}

}  // namespace

void UlmoraNearestPoints::GetNearestPoints(std::string& SurfaceName, SafeArray& InputX,
                                           SafeArray& InputY, SafeArray& InputZ, SafeArray& OutputX,
                                           SafeArray& OutputY, SafeArray& OutputZ) {
  const int32_t upper = InputX.UBound(1), lower = InputX.LBound(1);
  if (InputY.UBound(1) != upper || InputZ.UBound(1) != upper || InputY.LBound(1) != lower ||
      InputZ.LBound(1) != lower) {
    Raise(err::kInputsNotAlike);
  }
  const int32_t n = CheckedLong(int64_t{upper} + 1 - lower);
  if (lower < 0 || upper < 0) Raise(err::kInputsBadBounds);
  if (n < 1) Raise(err::kSubscript);  // no array runs from 1 to 0
  for (SafeArray* out : {&OutputX, &OutputY, &OutputZ}) Zeroed(*out, lower, n);

  BindApplication();
  if (!IsHostReady()) Raise(err::kNearestNotConnected);
  if (SurfaceName.empty()) Raise(err::kNoSurfaceName);
  DocumentRef = GetMember(ApplicationRef, "activedocument").ToObject();
  if (!DocumentRef) Raise(err::kNoActiveModel);
  const std::string exists = "SURFACE['" + SurfaceName + "'].EXISTS";
  if (surface_info_module::EqualsZero(surface_info_module::Evaluate(ApplicationRef, exists))) {
    Raise(err::kNoSuchSurface);
  }

  const SafeArray flat = FlatPoints(InputX, InputY, InputZ, lower, n);
  int32_t count = n;
  Variant points(flat), answer(flat);  // two copies: the host writes only into the second
  std::vector<Variant> args{Variant::Ref(SurfaceName), Variant::Ref(count), Variant::Ref(points),
                            Variant::Ref(answer)};
  CallMember(DocumentRef, "getnearestpoint", args);

  ReadAnswer(answer.ToArray(), lower, n, {&OutputX, &OutputY, &OutputZ});
}

void UlmoraNearestPoints::Terminate() {
  ApplicationRef = nullptr;
  DocumentRef = nullptr;
}

// A failed bind keeps the reference of an earlier call, dead or alive.
void UlmoraNearestPoints::BindApplication() {
  HoldBack(
      [&] { ApplicationRef = Env::Current().running_objects().BindRunning("Ulmora.Application"); });
}

bool UlmoraNearestPoints::IsHostReady() {
  if (!ApplicationRef) return false;
  return GetMember(ApplicationRef, "version").ToDouble() > 0;
}

// Inputs of Double are read whole, in one pass over the points when all three are; any other
// array element by element, converted, so one of another shape fails with the platform's own
// error.
SafeArray UlmoraNearestPoints::FlatPoints(const SafeArray& x, const SafeArray& y,
                                          const SafeArray& z, int32_t lower, int32_t count) {
  SafeArray flat(VarType::kDouble, {{0, CheckedLong(int64_t{count} * 3 + 1)}});
  const std::span<double> out = flat.MutableDoubles();
  const SafeArray* inputs[] = {&x, &y, &z};
  const auto whole = [](const SafeArray* in) {
    return in->dims() == 1 && in->element_type() == VarType::kDouble;
  };
  if (std::ranges::all_of(inputs, whole)) {
    const double *xs = x.Doubles().data(), *ys = y.Doubles().data(), *zs = z.Doubles().data();
    for (size_t k = 0; k < size_t(count); ++k) {
      out[3 * k] = xs[k];
      out[3 * k + 1] = ys[k];
      out[3 * k + 2] = zs[k];
    }
    return flat;
  }
  for (size_t c = 0; c < 3; ++c) {
    const SafeArray& in = *inputs[c];
    if (whole(&in)) {
      const std::span<const double> values = in.Doubles();
      for (int32_t k = 0; k < count; ++k) out[3 * size_t(k) + c] = values[size_t(k)];
    } else {
      for (int32_t k = 0; k < count; ++k) out[3 * size_t(k) + c] = in.Get({lower + k}).ToDouble();
    }
  }
  return flat;
}

// The answer is read from element 0, whatever the client's bounds: whole when it is an array of
// Double long enough, else element by element, so a short or odd answer fails at the first
// element concerned with the outputs filled up to there.
void UlmoraNearestPoints::ReadAnswer(const SafeArray& answer, int32_t lower, int32_t count,
                                     std::array<SafeArray*, 3> outputs) {
  const bool whole = answer.dims() == 1 && answer.element_type() == VarType::kDouble &&
                     answer.LBound(1) == 0 && answer.size() >= 3 * int64_t{count} &&
                     std::ranges::all_of(outputs, [](const SafeArray* o) {
                       return o->element_type() == VarType::kDouble;
                     });
  if (whole) {
    const double* values = answer.Doubles().data();
    double *xs = outputs[0]->MutableDoubles().data(), *ys = outputs[1]->MutableDoubles().data(),
           *zs = outputs[2]->MutableDoubles().data();
    for (size_t k = 0; k < size_t(count); ++k) {
      xs[k] = values[3 * k];
      ys[k] = values[3 * k + 1];
      zs[k] = values[3 * k + 2];
    }
    return;
  }
  for (int32_t k = 0; k < count; ++k) {
    for (int32_t c = 0; c < 3; ++c) {
      outputs[c]->Put({lower + k}, answer.Get({3 * k + c}).ToDouble());
    }
  }
}

}  // namespace qorvel
