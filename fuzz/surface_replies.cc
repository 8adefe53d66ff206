// UlmoraSurfaceInfo and UlmoraNearestPoints through their dispatch faces, against a simulated
// Ulmora whose replies are the input: its Evaluate answers to EXISTS, TYPE, NLATS and NLONS,
// what GetSurfacePointData writes back (counts, world flag, status, and the 17 arrays in any
// type, shape and bounds), and the answer getnearestpoint leaves (any array or value). The
// client's point arrays are of any type and bounds, and the host may vanish at any call.
// Input: the grid the host holds; the Evaluate replies; the data call's writes; the
// nearest-point answer; the call at which the host vanishes; then up to 24 calls of GetSurface,
// UpdateSurface or GetNearestPoints with their arguments.
// Properties: only the errors listed below come out; a failed read forgets the surface; a grid
// point within NumLats and NumLongs gives numbers or 9; UpdateSurface leaves the store as it
// was; GetNearestPoints leaves its inputs unchanged and, once they pass its checks, fills its
// outputs (of Double or Variant) in order with the answer's elements up to the first that
// fails, zeros after it.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "fuzz/property.h"
#include "hosts/simulators.h"
#include "qorvel/frame/control.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/surface/ulmora_nearest_points_face.h"
#include "qorvel/surface/ulmora_surface_info_face.h"

namespace qorvel {
namespace {

using fuzz::Expect;
using fuzz::RunAllowing;

constexpr const char* kNames[] = {"Patch", "Gone", ""};
constexpr const char* kProperties[] = {"EXISTS", "TYPE", "NLATS", "NLONS"};
constexpr int64_t kMostPositions = 4096;  // a larger read costs time and teaches nothing more
constexpr int kMostCalls = 24;
constexpr int32_t kRejected = hosts::kCommandRejected;

const std::vector<int32_t> kReadErrors = {60000, 60001, 60002, 5,  6,   7,
                                          9,     13,    91,    94, 462, kRejected};
const std::vector<int32_t> kWriteErrors = {60000, 60001, 60002, 6, 13, 91, 94, 462, kRejected};
const std::vector<int32_t> kGridErrors = {60000, 60004, 60005, 9};
const std::vector<int32_t> kNearestErrors = {60001, 60002, 60003, 60004, 60006, 60009,    5,
                                             6,     9,     13,    94,    462,   kRejected};

constexpr VarType kElementTypes[] = {VarType::kDouble,  VarType::kBool, VarType::kLong,
                                     VarType::kInteger, VarType::kText, VarType::kVariant};

// Doubles compared by their bits, so a NaN equals itself and -0 differs from 0.
uint64_t Bits(double d) { return std::bit_cast<uint64_t>(d); }

Variant Scalar(FuzzedDataProvider& in) {
  const int kind = in.ConsumeIntegralInRange(0, 7);
  if (kind == 0) return Variant(in.ConsumeRandomLengthString(12));
  if (kind == 1) return Variant(in.ConsumeFloatingPoint<double>());
  if (kind == 2) return Variant(in.ConsumeIntegralInRange<int32_t>(-3, 8));
  if (kind == 3) return Variant(in.ConsumeIntegral<int16_t>());
  if (kind == 4) return Variant(MakeVariantBool(in.ConsumeIntegral<int16_t>()));
  if (kind == 5 || kind == 6) return kind == 5 ? Variant::Null() : Variant();
  return Variant(std::to_string(in.ConsumeIntegralInRange(-2, 9)));  // numeric text
}

// The subscripts of element `i` of an array of `shape`, first dimension fastest.
std::vector<int32_t> At(const std::vector<Bound>& shape, int64_t i) {
  std::vector<int32_t> at(shape.size());
  for (size_t d = 0; d < shape.size(); ++d) {
    at[d] = shape[d].lower + int32_t(i % shape[d].count);
    i /= shape[d].count;
  }
  return at;
}

// An array of the element type and bounds given, its elements from the input.
SafeArray Filled(FuzzedDataProvider& in, VarType element, std::vector<Bound> bounds) {
  SafeArray a(element, std::move(bounds));
  for (int64_t i = 0; i < a.size() && in.remaining_bytes() > 0; ++i) {
    try {
      const Variant value = element != VarType::kDouble ? Scalar(in)
                            : in.ConsumeBool() ? Variant(in.ConsumeIntegralInRange(-20, 20) * 0.5)
                                               : Variant(in.ConsumeFloatingPoint<double>());
      a.Put(At(a.bounds(), i), value);
    } catch (const Error&) {  // an element that doesn't convert stays as it was
    }
  }
  return a;
}

// An array of any element type in one to three dimensions of small bounds, or an unallocated one.
SafeArray AnyArray(FuzzedDataProvider& in) {
  if (in.ConsumeIntegralInRange(0, 3) == 0) return SafeArray();
  std::vector<Bound> bounds(in.ConsumeIntegralInRange(1, 3));
  for (Bound& b : bounds) b = {in.ConsumeIntegralInRange(-1, 2), in.ConsumeIntegralInRange(0, 4)};
  return Filled(in, in.PickValueInArray(kElementTypes), bounds);
}

// What the data call writes through array argument `index` (0 to 16, in the call's order): the
// right type and shape for a small grid, or anything.
Variant DataArray(FuzzedDataProvider& in, int index) {
  if (in.ConsumeBool()) return in.ConsumeBool() ? Variant(AnyArray(in)) : Scalar(in);
  std::vector<Bound> shape = {{1, in.ConsumeIntegralInRange(1, 4)},
                              {1, in.ConsumeIntegralInRange(1, 4)}};
  if (index == 0 || (index - 1) % 4 == 0) shape.push_back({1, 3});  // points and vectors
  const bool flags = index > 0 && (index - 1) % 4 >= 2;
  return Filled(in, flags ? VarType::kBool : VarType::kDouble, shape);
}

// Whether two arrays hold the same bounds, types and values (nested arrays by type only).
bool SameArray(const SafeArray& a, const SafeArray& b) {
  bool same = a.element_type() == b.element_type() && a.bounds() == b.bounds();
  for (int64_t i = 0; same && i < a.size(); ++i) {
    const Variant x = a.Get(At(a.bounds(), i)), y = b.Get(At(a.bounds(), i));
    same = x.vt() == y.vt() &&
           (x.is_array() || x.type() == VarType::kNull ||
            (x.type() == VarType::kDouble ? Bits(x.ToDouble()) == Bits(y.ToDouble())
                                          : x.ToText() == y.ToText()));
  }
  return same;
}

struct Session {
  explicit Session(FuzzedDataProvider& in) : in(in) {}
  int32_t Lats() { return GetMember(info, "NumLats").ToLong(); }
  int32_t Lons() { return GetMember(info, "NumLongs").ToLong(); }
  std::string Name() { return GetMember(info, "SurfaceName").ToText(); }

  // GetPoint: whether it gave the point, in p.
  bool GetPoint(int32_t lat, int32_t lon, double (&p)[3],
                const std::vector<int32_t>& allowed = kGridErrors) {
    std::vector<Variant> args{Variant::Ref(lat), Variant::Ref(lon), Variant::Ref(p[0]),
                              Variant::Ref(p[1]), Variant::Ref(p[2])};
    return RunAllowing(allowed, [&] { CallMember(info, "GetPoint", args); });
  }

  // What the store says of itself: its surface, its counts, and point (1, 1) if it reads.
  auto Store() {
    double p[3] = {};
    const bool read = GetPoint(1, 1, p);
    return std::tuple(Name(), Lats(), Lons(), read, Bits(p[0]), Bits(p[1]), Bits(p[2]));
  }

  // A point within the counts reads, or raises 9 where the host's arrays fall short of them.
  void CheckStore() {
    const int32_t lats = Lats(), lons = Lons();
    double p[3];
    for (const auto& [lat, lon] : {std::pair{1, 1}, {lats, lons}, {lats, 1}, {1, lons}}) {
      if (!Name().empty() && lats >= 1 && lons >= 1) GetPoint(lat, lon, p, {9});
    }
  }

  void GetSurface() {
    std::string name = in.PickValueInArray(kNames);
    std::vector<Variant> args{Variant::Ref(name)};
    const bool read = RunAllowing(kReadErrors, [&] { CallMember(info, "GetSurface", args); });
    Expect(read || Name().empty(), "a failed read forgets the surface");
  }

  void UpdateSurface() {
    const auto before = Store();
    RunAllowing(kWriteErrors, [&] { Call(info, "UpdateSurface"); });
    Expect(Store() == before, "a write keeps the store");
  }

  // A client's array: of `bound` in Double or Variant, or any array.
  SafeArray ClientArray(Bound bound) {
    if (in.ConsumeBool()) return AnyArray(in);
    return Filled(in, in.ConsumeBool() ? VarType::kDouble : VarType::kVariant, {bound});
  }

  void GetNearestPoints() {
    std::string name = in.PickValueInArray(kNames);
    const Bound bound = {in.ConsumeIntegralInRange(-1, 2), in.ConsumeIntegralInRange(0, 5)};
    SafeArray arrays[6];  // the three inputs, then the three outputs
    for (SafeArray& a : arrays) a = ClientArray(bound);
    // Copies share storage until one side writes, so these keep what the client passed.
    const SafeArray kept[3] = {arrays[0], arrays[1], arrays[2]};
    std::vector<Variant> args{Variant::Ref(name)};
    for (SafeArray& a : arrays) args.push_back(Variant::Ref(a));
    const bool ran =
        RunAllowing(kNearestErrors, [&] { CallMember(nearest, "GetNearestPoints", args); });
    for (int c = 0; c < 3; ++c) Expect(SameArray(arrays[c], kept[c]), "the inputs stay");

    // Inputs of one first bound from 0 up pass the checks that come before the outputs are
    // sized; the fill is checked only against a scripted answer and outputs that hold numbers.
    const Bound first = arrays[0].dims() >= 1 ? arrays[0].bounds()[0] : Bound{-1, 0};
    bool checked = answer && first.lower >= 0 && first.count >= 1;
    for (int c = 0; c < 6; ++c) {
      const VarType type = arrays[c].element_type();
      checked = checked && (c < 3 ? arrays[c].dims() >= 1 && arrays[c].bounds()[0] == first
                                  : type == VarType::kDouble || type == VarType::kVariant);
    }
    if (!checked) return;
    std::vector<uint64_t> filled, prefix;  // the outputs in the order they are filled
    for (int32_t k = 0; k < first.count; ++k) {
      for (int c = 3; c < 6; ++c) {
        Expect(arrays[c].dims() == 1 && arrays[c].bounds()[0] == first, "outputs take the bound");
        filled.push_back(Bits(arrays[c].Get({first.lower + k}).ToDouble()));
      }
    }
    try {  // the answer's elements from 0 up to the first that isn't there or isn't a number
      for (int32_t j = 0; prefix.size() < filled.size(); ++j) {
        prefix.push_back(Bits(answer->ToArray().Get({j}).ToDouble()));
      }
    } catch (const Error&) {
    }
    // Whole, or up to the element that failed with zeros after it, or zeros all through when
    // the call failed before the answer came.
    const bool whole = prefix.size() == filled.size();
    Expect(!ran || whole, "a call that succeeds read the whole answer");
    if (!ran && (whole || !std::equal(prefix.begin(), prefix.end(), filled.begin())))
      prefix.clear();
    prefix.resize(filled.size(), 0);
    Expect(filled == prefix, "outputs hold the answer up to the element that failed, zeros after");
  }

  void RunCalls() {
    for (int call = 0; call < kMostCalls && in.remaining_bytes() > 0; ++call) {
      const int kind = in.ConsumeIntegralInRange(0, 3);
      if (kind <= 1) GetSurface();
      if (kind == 2) UpdateSurface();
      if (kind == 3) GetNearestPoints();
      CheckStore();
    }
  }

  FuzzedDataProvider& in;
  ScopedEnv env;
  std::shared_ptr<hosts::SimUlmora> host = hosts::RunUlmora();
  AutomationObject info = NewControl<UlmoraSurfaceInfo>();
  AutomationObject nearest = NewControl<UlmoraNearestPoints>();
  std::optional<Variant> answer;  // the scripted nearest-point answer, if any
};

}  // namespace
}  // namespace qorvel

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace qorvel;
  FuzzedDataProvider in(data, size);
  Session s(in);
  const int lats = in.ConsumeIntegralInRange(1, 5), lons = in.ConsumeIntegralInRange(1, 5);
  s.host->AddSurface("Patch", hosts::PlaneGrid({0, 0, 0}, {4, 0, 0}, {0, 3, 1}, lats, lons));

  // The Evaluate replies; a read that would make large arrays is left out.
  int64_t counts[2] = {lats, lons};
  for (int p = 0; p < 4; ++p) {
    if (!in.ConsumeBool()) continue;
    const Variant reply = Scalar(in);
    if (p >= 2) {  // as the read converts it
      RunAllowing({6, 13, 94}, [&] { counts[p - 2] = std::max<int16_t>(reply.ToInteger(), 0); });
    }
    s.host->ScriptEvaluate(std::string("SURFACE['Patch'].") + kProperties[p], reply);
    s.host->ScriptEvaluate(std::string("SURFACE['Gone'].") + kProperties[p], reply);
  }
  const int64_t positions = counts[0] * counts[1];
  if (positions > kMostPositions && positions * 24 <= INT32_MAX) return 0;

  // The data call's writes: the counts, the world flag, the arrays and the status (4 is by value).
  const std::shared_ptr<hosts::SimDocument> document = s.host->document();
  for (int w = in.ConsumeIntegralInRange(0, 4); w > 0; --w) {
    const int at = in.ConsumeIntegralInRange(3, 24);
    if (at == 4) continue;
    const Variant value = at == 3 || at == 5 ? Variant(in.ConsumeIntegralInRange<int16_t>(-2, 7))
                          : at == 6  ? Variant(MakeVariantBool(in.ConsumeIntegral<int16_t>()))
                          : at == 24 ? Variant(in.ConsumeIntegralInRange<int32_t>(-1, 2))
                                     : DataArray(in, at - 7);
    document->ScriptArgument("GetSurfacePointData", at, value);
  }
  if (in.ConsumeBool()) {  // room for up to five points, or anything
    const Bound bound = {in.ConsumeIntegralInRange(-1, 1), in.ConsumeIntegralInRange(0, 16)};
    s.answer = in.ConsumeBool() ? Scalar(in) : Variant(s.ClientArray(bound));
    document->ScriptArgument("getnearestpoint", 4, *s.answer);
  }
  if (const int call = in.ConsumeIntegralInRange(0, 40); call > 0) s.host->VanishAt(call);

  RunAllowing({}, [&] { Call(s.info, "Reset"); });
  s.RunCalls();
  return 0;
}
