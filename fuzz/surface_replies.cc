// The surface controls end to end, through their dispatch faces, against a simulated Ulmora
// whose replies are the input: its Evaluate answers to EXISTS, TYPE, NLATS and NLONS, what its
// GetSurfacePointData writes back through the references (counts, world flag, status, and the
// 17 arrays in any type, shape and bounds), and the answer getnearestpoint leaves (any array
// or value). The client's own point arrays come from the input too, the model may be closed
// and opened, and the host may vanish at any call.
// Input: the grid of the surface the host holds; the call at which the host vanishes; the
// four Evaluate replies; the data call's writes; the nearest-point answer; then up to 24
// member calls, each a kind byte and its arguments.
// Properties: only the errors a member may let through come out (UlmoraSurfaceInfo: 60000 to
// 60005 of its own, 5, 6, 7, 9, 13, 91, 94, 462 and the host's refusal from the host and the
// conversions; the grid members 60000, 60004, 60005 and 9; UlmoraNearestPoints: 60001 to
// 60004, 60006, 60009, 5, 6, 9, 13, 94, 462 and the refusal); a failed read forgets the
// surface and a false one leaves no counts; a read the host answers itself gives its grid
// exactly; at any time a grid point within NumLats and NumLongs gives numbers or 9, and one
// outside raises 60004 or 60005; UpdateSurface leaves the store as it was; GetNearestPoints
// leaves its inputs unchanged, resizes the outputs to their bounds once its checks of them
// pass, and fills them in order with the answer's elements up to the first that fails, zeros
// after it.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
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
const std::vector<int32_t> kNone = {};

constexpr const char* kVectorGroups[] = {"UVECBefore", "UVECAfter", "TVECBefore", "TVECAfter"};
constexpr const char* kFlags[] = {"UDIRAfter_Free",  "UDIRBefore_Free", "TDIRAfter_Free",
                                  "TDIRBefore_Free", "UMAGAfter_Free",  "UMAGBefore_Free",
                                  "TMAGAfter_Free",  "TMAGBefore_Free"};

// --- Values from the input.

Variant Scalar(FuzzedDataProvider& in) {
  switch (in.ConsumeIntegralInRange(0, 8)) {
    case 0:
      return Variant(in.ConsumeRandomLengthString(12));
    case 1:
      return Variant(in.ConsumeFloatingPoint<double>());
    case 2:
      return Variant(in.ConsumeIntegralInRange<int32_t>(-3, 8));
    case 3:
      return Variant(in.ConsumeIntegral<int16_t>());
    case 4:
      return Variant(MakeVariantBool(in.ConsumeIntegral<int16_t>()));
    case 5:
      return Variant::Null();
    case 6:
      return Variant();
    case 7:
      return Variant(SafeArray(VarType::kDouble, {{0, in.ConsumeIntegralInRange(0, 2)}}));
    default:
      return Variant(std::to_string(in.ConsumeIntegralInRange(-2, 9)));  // numeric text
  }
}

double Number(FuzzedDataProvider& in) {
  return in.ConsumeBool() ? in.ConsumeIntegralInRange(-20, 20) * 0.5
                          : in.ConsumeFloatingPoint<double>();
}

constexpr VarType kElementTypes[] = {VarType::kDouble,  VarType::kBool, VarType::kLong,
                                     VarType::kInteger, VarType::kText, VarType::kVariant};

// An array of the element type and bounds given, its elements from the input.
SafeArray Filled(FuzzedDataProvider& in, VarType element, std::vector<Bound> bounds) {
  SafeArray a(element, std::move(bounds));
  const std::vector<Bound> shape = a.bounds();
  std::vector<int32_t> at(shape.size());
  for (int64_t i = 0; i < a.size() && in.remaining_bytes() > 0; ++i) {
    int64_t rest = i;
    for (size_t d = 0; d < shape.size(); ++d) {
      at[d] = shape[d].lower + int32_t(rest % shape[d].count);
      rest /= shape[d].count;
    }
    Variant value = element == VarType::kDouble ? Variant(Number(in)) : Scalar(in);
    try {
      a.Put(at, value);
    } catch (const Error&) {
      // an element that doesn't convert stays as it was
    }
  }
  return a;
}

// An array of any of the element types, one to three dimensions of small bounds.
SafeArray AnyArray(FuzzedDataProvider& in) {
  const VarType element = in.PickValueInArray(kElementTypes);
  std::vector<Bound> bounds(in.ConsumeIntegralInRange(1, 3));
  for (Bound& b : bounds) b = {in.ConsumeIntegralInRange(-1, 2), in.ConsumeIntegralInRange(0, 4)};
  return Filled(in, element, bounds);
}

// The element type and shape array `index` (0 to 16, in the data calls' order) has for a grid.
VarType ElementOf(int index) {
  return index > 0 && (index - 1) % 4 >= 2 ? VarType::kBool : VarType::kDouble;
}
std::vector<Bound> ShapeOf(int index, int16_t lats, int16_t lons) {
  std::vector<Bound> shape = {{1, lats}, {1, lons}};
  if (index == 0 || (index - 1) % 4 == 0) shape.push_back({1, 3});
  return shape;
}

// What the data call writes through array argument `index`: the right type and shape for a
// small grid, the right type in any shape, any array, or no array at all.
Variant DataArray(FuzzedDataProvider& in, int index) {
  switch (in.ConsumeIntegralInRange(0, 3)) {
    case 0: {
      const auto lats = in.ConsumeIntegralInRange<int16_t>(1, 4);
      const auto lons = in.ConsumeIntegralInRange<int16_t>(1, 4);
      return Filled(in, ElementOf(index), ShapeOf(index, lats, lons));
    }
    case 1: {
      std::vector<Bound> bounds(in.ConsumeIntegralInRange(1, 3));
      for (Bound& b : bounds) {
        b = {in.ConsumeIntegralInRange(-1, 2), in.ConsumeIntegralInRange(0, 4)};
      }
      return Filled(in, ElementOf(index), bounds);
    }
    case 2:
      return AnyArray(in);
    default:
      return Scalar(in);
  }
}

// The nearest-point answer for `count` points: an array of Double from 0 of about the right
// length, one from another lower bound, one of Variant elements, any array, or no array.
Variant Answer(FuzzedDataProvider& in, int32_t count) {
  const int32_t length = std::max(0, 3 * count + 1 + in.ConsumeIntegralInRange(-4, 1));
  switch (in.ConsumeIntegralInRange(0, 4)) {
    case 0:
      return Filled(in, VarType::kDouble, {{0, length}});
    case 1:
      return Filled(in, VarType::kDouble, {{in.ConsumeIntegralInRange(-1, 2), length}});
    case 2:
      return Filled(in, VarType::kVariant, {{0, length}});
    case 3:
      return AnyArray(in);
    default:
      return Scalar(in);
  }
}

// A count reply as the read converts it; nullopt when it doesn't convert.
std::optional<int16_t> CountOf(const Variant& reply) {
  try {
    return reply.ToInteger();
  } catch (const Error&) {
    return std::nullopt;
  }
}

// --- Checks.

bool SameDouble(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// Whether two arrays hold the same bounds, types and values (nested arrays by type only).
bool SameArray(const SafeArray& a, const SafeArray& b) {
  if (a.element_type() != b.element_type() || a.bounds() != b.bounds()) return false;
  const std::vector<Bound> shape = a.bounds();
  std::vector<int32_t> at(shape.size());
  for (int64_t i = 0; i < a.size(); ++i) {
    int64_t rest = i;
    for (size_t d = 0; d < shape.size(); ++d) {
      at[d] = shape[d].lower + int32_t(rest % shape[d].count);
      rest /= shape[d].count;
    }
    const Variant x = a.Get(at), y = b.Get(at);
    if (x.vt() != y.vt()) return false;
    if (x.is_array() || x.type() == VarType::kNull) continue;
    if (x.type() == VarType::kDouble ? !SameDouble(x.ToDouble(), y.ToDouble())
                                     : x.ToText() != y.ToText()) {
      return false;
    }
  }
  return true;
}

// The doubles of `answer` from element 0 in order, up to the first that isn't there or doesn't
// convert, at most `count`.
std::vector<double> AnswerPrefix(const Variant& answer, int32_t count) {
  std::vector<double> values;
  try {
    const SafeArray a = answer.ToArray();
    for (int32_t j = 0; j < count; ++j) values.push_back(a.Get({j}).ToDouble());
  } catch (const Error&) {
  }
  return values;
}

struct Session {
  explicit Session(FuzzedDataProvider& in) : in(in) {}

  // --- The members, through the dispatch faces.

  // Runs `call`: 0, or the number of the error it raised, which must be one of `allowed`.
  int32_t Outcome(const std::vector<int32_t>& allowed, const std::function<void()>& call) {
    try {
      call();
      return 0;
    } catch (const Error& e) {
      if (std::ranges::find(allowed, e.number()) != allowed.end()) return e.number();
      std::fprintf(stderr, "broken property: error %d escaped: %s\n", e.number(),
                   e.description().c_str());
      std::abort();
    }
  }
  int32_t Lats() { return GetMember(info, "NumLats").ToLong(); }
  int32_t Lons() { return GetMember(info, "NumLongs").ToLong(); }
  std::string Name() { return GetMember(info, "SurfaceName").ToText(); }

  // GetPoint: 0 with the point in p, or the error number.
  int32_t GetPoint(int32_t lat, int32_t lon, double (&p)[3],
                   const std::vector<int32_t>& allowed = kGridErrors) {
    std::vector<Variant> args{Variant::Ref(lat), Variant::Ref(lon), Variant::Ref(p[0]),
                              Variant::Ref(p[1]), Variant::Ref(p[2])};
    return Outcome(allowed, [&] { CallMember(info, "GetPoint", args); });
  }

  // What any grid point says about the store: within the counts numbers or 9, outside them
  // 60004 before 60005, and with no surface held 60000 first.
  void CheckStore() {
    const std::string name = Name();
    const int32_t lats = Lats(), lons = Lons();
    double p[3];
    if (name.empty()) {
      Expect(GetPoint(1, 1, p) == 60000, "no surface held: 60000");
      return;
    }
    Expect(GetPoint(0, 1, p) == 60004, "lateral 0: 60004");
    Expect(GetPoint(lats + 1, 0, p) == 60004, "lateral past NumLats: 60004 first");
    if (lats < 1) return;
    Expect(GetPoint(1, lons + 1, p) == 60005, "longitudinal past NumLongs: 60005");
    if (lons < 1) return;
    for (const auto& [lat, lon] : {std::pair{1, 1}, {lats, lons}, {lats, 1}, {1, lons}}) {
      GetPoint(lat, lon, p, {9});  // numbers or 9
      for (const char* group : kVectorGroups) {
        double v[4];
        int32_t la = lat, lo = lon;
        std::vector<Variant> args{Variant::Ref(la),   Variant::Ref(lo),   Variant::Ref(v[0]),
                                  Variant::Ref(v[1]), Variant::Ref(v[2]), Variant::Ref(v[3])};
        Outcome({9}, [&] { CallMember(info, std::string("Get") + group, args); });
      }
      for (const char* flag : kFlags) {
        std::vector<Variant> at{lat, lon};
        Outcome({9}, [&] { GetMember(info, flag, at); });
      }
    }
  }

  // A read the host answered itself holds the host's grid exactly.
  void CheckHostsGrid(const std::string& name) {
    host->WithSurface(name, [&](const hosts::GridView& grid) {
      Expect(Lats() == grid.nlats && Lons() == grid.nlons, "the host's counts");
      for (int lat = 1; lat <= grid.nlats; ++lat) {
        for (int lon = 1; lon <= grid.nlons; ++lon) {
          double p[3];
          Expect(GetPoint(lat, lon, p, kNone) == 0, "a point of the host's grid reads");
          const hosts::Vec3 q = grid.Point(lat, lon);
          Expect(SameDouble(p[0], q.x) && SameDouble(p[1], q.y) && SameDouble(p[2], q.z),
                 "the host's point, exactly");
        }
      }
    });
  }

  void GetSurface() {
    std::string name = in.PickValueInArray(kNames);
    VariantBool got = VariantBool::kFalse;
    std::vector<Variant> args{Variant::Ref(name)};
    const int32_t e =
        Outcome(kReadErrors, [&] { got = CallMember(info, "GetSurface", args).ToBool(); });
    if (e != 0) {
      Expect(Name().empty(), "a failed read forgets the surface");
    } else if (got == VariantBool::kFalse) {
      Expect(Name().empty() && Lats() == 0 && Lons() == 0, "a false read leaves no counts");
    } else {
      Expect(Name() == name, "a read holds its surface");
      if (!data_scripted && name == "Patch" && !host->gone() && host->document()) {
        CheckHostsGrid(name);
      }
    }
  }

  void UpdateSurface() {
    const std::string name = Name();
    const int32_t lats = Lats(), lons = Lons();
    double before[3], after[3];
    const int32_t e_before = GetPoint(1, 1, before);
    Outcome(kWriteErrors, [&] { Call(info, "UpdateSurface"); });
    Expect(Name() == name && Lats() == lats && Lons() == lons, "a write keeps the store's counts");
    const int32_t e_after = GetPoint(1, 1, after);
    Expect(e_before == e_after, "a write keeps the store");
    if (e_before == 0) {
      for (int c = 0; c < 3; ++c) Expect(SameDouble(before[c], after[c]), "a write keeps points");
    }
  }

  int32_t GridIndex(int32_t count) {
    switch (in.ConsumeIntegralInRange(0, 3)) {
      case 0:
        return 1;
      case 1:
        return count;
      case 2:
        return count + 1;
      default:
        return in.ConsumeIntegralInRange(-1, 6);
    }
  }

  void SetMembers(int kind) {
    int32_t lat = GridIndex(Lats()), lon = GridIndex(Lons());
    double v[4] = {Number(in), Number(in), Number(in), Number(in)};
    std::vector<Variant> args{Variant::Ref(lat),  Variant::Ref(lon),  Variant::Ref(v[0]),
                              Variant::Ref(v[1]), Variant::Ref(v[2]), Variant::Ref(v[3])};
    if (kind == 0) {
      args.pop_back();
      Outcome(kGridErrors, [&] { CallMember(info, "SetPoint", args); });
    } else if (kind == 1) {
      const std::string member = std::string("Set") + in.PickValueInArray(kVectorGroups);
      Outcome(kGridErrors, [&] { CallMember(info, member, args); });
    } else {
      std::vector<Variant> at{lat, lon};
      VariantBool flag = MakeVariantBool(in.ConsumeIntegral<int16_t>());
      const char* name = in.PickValueInArray(kFlags);
      Outcome(kGridErrors, [&] { SetMember(info, name, Variant::Ref(flag), at); });
    }
  }

  // --- GetNearestPoints.

  SafeArray InputArray(int32_t lower, int32_t count) {
    switch (in.ConsumeIntegralInRange(0, 5)) {
      case 0:
        return Filled(in, VarType::kVariant, {{lower, count}});
      case 1:
        return AnyArray(in);
      case 2:
        return Filled(in, VarType::kDouble, {{lower, count}, {1, 1}});
      default:
        return Filled(in, VarType::kDouble, {{lower, count}});
    }
  }

  SafeArray OutputArray() {
    switch (in.ConsumeIntegralInRange(0, 2)) {
      case 0:
        return SafeArray();
      case 1:
        return SafeArray(VarType::kVariant, {{0, 2}});
      default:
        return Filled(in, VarType::kDouble, {{in.ConsumeIntegralInRange(0, 2), 2}});
    }
  }

  void GetNearestPoints() {
    std::string name = in.PickValueInArray(kNames);
    const int32_t lower = in.ConsumeIntegralInRange(-1, 2);
    const int32_t count = in.ConsumeIntegralInRange(0, 5);
    SafeArray inputs[3], outputs[3];
    for (SafeArray& a : inputs) a = InputArray(lower, count);
    for (SafeArray& a : outputs) a = OutputArray();
    // Copies share storage until one side writes, so these keep what the client passed.
    const SafeArray kept_inputs[3] = {inputs[0], inputs[1], inputs[2]};
    const SafeArray kept_outputs[3] = {outputs[0], outputs[1], outputs[2]};
    std::vector<Variant> args{Variant::Ref(name),       Variant::Ref(inputs[0]),
                              Variant::Ref(inputs[1]),  Variant::Ref(inputs[2]),
                              Variant::Ref(outputs[0]), Variant::Ref(outputs[1]),
                              Variant::Ref(outputs[2])};
    const int32_t e =
        Outcome(kNearestErrors, [&] { CallMember(nearest, "GetNearestPoints", args); });

    for (int c = 0; c < 3; ++c) {
      Expect(SameArray(inputs[c], kept_inputs[c]), "the inputs stay as they were");
    }
    // The checks before the resize: one dimension at least, the same first bounds, from 0 up.
    bool resized = true;
    for (const SafeArray& a : inputs) {
      resized = resized && a.dims() >= 1 && a.bounds()[0] == inputs[0].bounds()[0];
    }
    resized = resized && inputs[0].LBound() >= 0 && inputs[0].bounds()[0].count >= 1;
    if (!resized) {
      for (int c = 0; c < 3; ++c) {
        Expect(SameArray(outputs[c], kept_outputs[c]), "outputs stay as they were");
      }
      return;
    }
    const int32_t first = inputs[0].LBound(), n = inputs[0].bounds()[0].count;
    for (const SafeArray& a : outputs) {
      Expect(a.dims() == 1 && a.bounds()[0] == Bound{first, n}, "outputs take the inputs' bounds");
    }
    // The outputs in the order they are filled, point by point.
    std::vector<double> filled;
    for (int32_t k = 0; k < n; ++k) {
      for (const SafeArray& a : outputs) filled.push_back(a.Get({first + k}).ToDouble());
    }
    std::optional<Variant> answer = scripted_answer;
    if (!answer && echo && e == 0) answer = Variant(Flat(inputs, first, n));
    if (!answer) {
      if (e == 0) {
        for (double v : filled) Expect(std::isfinite(v), "projections are finite");
      }
      return;
    }
    // Whole, or up to the element that failed with zeros after it, or zeros all through when
    // the call failed before the answer came.
    std::vector<double> prefix = AnswerPrefix(*answer, 3 * n);
    if (e == 0) {
      Expect(prefix.size() == size_t(3 * n), "a call that succeeds read the whole answer");
    } else if (prefix.size() == size_t(3 * n) ||
               !std::ranges::equal(filled.begin(), filled.begin() + prefix.size(), prefix.begin(),
                                   prefix.end(), SameDouble)) {
      prefix.clear();
    }
    prefix.resize(filled.size(), 0.0);
    Expect(std::ranges::equal(filled, prefix, SameDouble),
           "outputs hold the answer in order up to the element that failed, zeros after it");
  }

  // The points in the host's layout, as the control sends them.
  static SafeArray Flat(const SafeArray (&inputs)[3], int32_t first, int32_t n) {
    SafeArray flat(VarType::kDouble, {{0, 3 * n + 1}});
    for (int32_t k = 0; k < n; ++k) {
      for (int32_t c = 0; c < 3; ++c) {
        flat.PutDouble(3 * k + c, inputs[c].Get({first + k}).ToDouble());
      }
    }
    return flat;
  }

  void RunCalls() {
    for (int call = 0; call < kMostCalls && in.remaining_bytes() > 0; ++call) {
      switch (in.ConsumeIntegralInRange(0, 9)) {
        case 0:
          RunAllowing(kNone, [&] { Call(info, "Reset"); });
          break;
        case 1:
        case 2:
          GetSurface();
          break;
        case 3:
          UpdateSurface();
          break;
        case 4:
        case 5:
          SetMembers(in.ConsumeIntegralInRange(0, 2));
          break;
        case 6: {
          VariantBool world = MakeVariantBool(in.ConsumeIntegral<int16_t>());
          RunAllowing(kNone, [&] { SetMember(info, "world", Variant::Ref(world)); });
          Expect(GetMember(info, "world").ToBool() == world, "world keeps what it was given");
          break;
        }
        case 7:
          GetNearestPoints();
          break;
        case 8:
          if (host->document()) {
            host->CloseModel();
          } else {  // a new document, which answers as the host does
            host->OpenModel();
            host->AddSurface("Patch", grid);
            echo = false;
            scripted_answer.reset();
          }
          break;
        default:
          break;
      }
      CheckStore();
    }
  }

  FuzzedDataProvider& in;
  ScopedEnv env;
  std::shared_ptr<hosts::SimUlmora> host = hosts::RunUlmora();
  hosts::SurfaceGrid grid;
  AutomationObject info = NewControl<UlmoraSurfaceInfo>();
  AutomationObject nearest = NewControl<UlmoraNearestPoints>();
  bool data_scripted = false;
  bool echo = false;
  std::optional<Variant> scripted_answer;
};

}  // namespace
}  // namespace qorvel

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace qorvel;
  FuzzedDataProvider in(data, size);
  Session s(in);
  const int lats = in.ConsumeIntegralInRange(1, 5), lons = in.ConsumeIntegralInRange(1, 5);
  s.grid = hosts::PlaneGrid({0, 0, 0}, {4, 0, 0}, {0, 3, 1}, lats, lons);
  s.host->AddSurface("Patch", s.grid);
  const int vanish_at = in.ConsumeIntegralInRange(0, 40);

  // The Evaluate replies; a read that would make large arrays is left out.
  std::optional<int16_t> counts[2] = {int16_t(lats), int16_t(lons)};
  for (int p = 0; p < 4; ++p) {
    if (!in.ConsumeBool()) continue;
    Variant reply = Scalar(in);
    if (p >= 2) counts[p - 2] = CountOf(reply);
    s.host->ScriptEvaluate(std::string("SURFACE['Patch'].") + kProperties[p], reply);
    s.host->ScriptEvaluate(std::string("SURFACE['Gone'].") + kProperties[p], reply);
  }
  if (counts[0] && counts[1] && *counts[0] > 0 && *counts[1] > 0) {
    const int64_t positions = int64_t{*counts[0]} * *counts[1];
    if (positions > kMostPositions && positions * 24 <= INT32_MAX) return 0;
  }

  // The data call's writes: the counts, the world flag, an array or the status.
  const std::shared_ptr<hosts::SimDocument> document = s.host->document();
  for (int w = in.ConsumeIntegralInRange(0, 4); w > 0; --w) {
    const int position = in.ConsumeIntegralInRange(3, 24);
    Variant value;
    if (position == 3 || position == 5) {
      value = in.ConsumeIntegralInRange<int16_t>(-2, 7);
    } else if (position == 4) {
      continue;  // by value: nothing goes back
    } else if (position == 6) {
      value = MakeVariantBool(in.ConsumeIntegral<int16_t>());
    } else if (position == 24) {
      value = in.ConsumeIntegralInRange<int32_t>(-1, 2);
    } else {
      value = DataArray(in, position - 7);
    }
    document->ScriptArgument("GetSurfacePointData", position, value);
    s.data_scripted = true;
  }
  s.echo = in.ConsumeBool();
  document->set_echo_nearest(s.echo);
  if (in.ConsumeBool()) {
    s.scripted_answer = Answer(in, in.ConsumeIntegralInRange(0, 5));
    document->ScriptArgument("getnearestpoint", 4, *s.scripted_answer);
  }
  if (vanish_at > 0) s.host->VanishAt(vanish_at);

  RunAllowing(kNone, [&] { Call(s.info, "Reset"); });
  s.RunCalls();
  return 0;
}
