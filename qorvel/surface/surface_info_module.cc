#include "qorvel/surface/surface_info_module.h"

#include <array>
#include <vector>

#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/error.h"

namespace qorvel::surface_info_module {
namespace {

constexpr int kArrays = 17;
using ArrayArgs = std::array<Variant, kArrays>;

// The 17 arrays of the store in the order of the data calls, with the element type each must
// come back in.
struct StoreArray {
  SafeArray& array;
  VarType element;
};
std::array<StoreArray, kArrays> ArraysOf(SurfaceStore& s) {
  auto group = [](TangentGroup& g) {
    return std::array<StoreArray, 4>{{{g.Vector, VarType::kDouble},
                                      {g.Magnitude, VarType::kDouble},
                                      {g.DirFree, VarType::kBool},
                                      {g.MagFree, VarType::kBool}}};
  };
  const auto ub = group(s.UBefore), ua = group(s.UAfter), tb = group(s.TBefore),
             ta = group(s.TAfter);
  return {{{s.Points, VarType::kDouble},
           ub[0],
           ub[1],
           ub[2],
           ub[3],
           ua[0],
           ua[1],
           ua[2],
           ua[3],
           tb[0],
           tb[1],
           tb[2],
           tb[3],
           ta[0],
           ta[1],
           ta[2],
           ta[3]}};
}

// Copies of the store's arrays, each in a VARIANT of its own: copies share storage until one
// side writes, so a host that only reads them costs nothing.
ArrayArgs CopiesOf(SurfaceStore& store) {
  ArrayArgs args;
  const auto arrays = ArraysOf(store);
  for (int i = 0; i < kArrays; ++i) args[i] = Variant(arrays[i].array);
  return args;
}

int16_t Count(const Variant& reply) {
  const int16_t count = reply.ToInteger();
  if (count < 1) Raise(err::kSubscript);  // no upper bound an array can be made with
  return count;
}

void ClearSelection(SurfaceStore& store, int32_t& status) {
  std::vector<Variant> args{Variant("SELECT CLEARLIST"), Variant::Ref(status)};
  CallMember(store.SurfaceHost, "Execute", args);
}

// GetSurfacePointData or SetSurfacePointData in its one wire form: the store's own name,
// counts and world flag by reference, so what the host writes lands in the store at once.
void DataCall(const AutomationObject& document, const char* member, SurfaceStore& store,
              ArrayArgs& arrays, int32_t& status) {
  std::vector<Variant> args{Variant::Ref(store.StoreName), Variant(int16_t{1}),
                            Variant::Ref(store.NLats),     Variant(int16_t{1}),
                            Variant::Ref(store.NLons),     Variant::Ref(store.WorldFlag)};
  args.reserve(24);
  for (Variant& array : arrays) args.push_back(Variant::Ref(array));
  args.push_back(Variant::Ref(status));
  CallMember(document, member, args);
}

void NewArrays(SurfaceStore& store) {
  store.Points = SafeArray(VarType::kDouble, {{1, store.NLats}, {1, store.NLons}, {1, 3}});
  for (TangentGroup* g : {&store.UBefore, &store.UAfter, &store.TBefore, &store.TAfter}) {
    SizeTangentGroup(*g, store.NLats, store.NLons);
  }
}

}  // namespace

SurfaceStore& Store() { return Env::Current().thread_states().Get<SurfaceStore>(); }

void SizeTangentGroup(TangentGroup& group, int16_t& lats, int16_t& lons) {
  const std::vector<Bound> grid = {{1, lats}, {1, lons}};
  group.Vector = SafeArray(VarType::kDouble, {{1, lats}, {1, lons}, {1, 3}});
  group.Magnitude = SafeArray(VarType::kDouble, grid);
  group.DirFree = SafeArray(VarType::kBool, grid);
  group.MagFree = SafeArray(VarType::kBool, grid);
}

VariantBool ReadSurface(const std::string& name) {
  SurfaceStore& store = Store();
  int32_t status = 0;
  const AutomationObject document = GetMember(store.SurfaceHost, "activedocument").ToObject();
  const int16_t lats = Count(Evaluate(store.SurfaceHost, "SURFACE['" + name + "'].NLATS"));
  const int16_t lons = Count(Evaluate(store.SurfaceHost, "SURFACE['" + name + "'].NLONS"));
  store.StoreName = name;
  store.NLats = lats;
  store.NLons = lons;
  NewArrays(store);
  ClearSelection(store, status);
  ArrayArgs arrays = CopiesOf(store);
  DataCall(document, "GetSurfacePointData", store, arrays, status);
  if (status != 0) return VariantBool::kFalse;
  const auto targets = ArraysOf(store);
  for (int i = 0; i < kArrays; ++i) {
    if (arrays[i].vt() != (kArrayFlag | static_cast<uint16_t>(targets[i].element))) {
      Raise(err::kTypeMismatch);
    }
    targets[i].array = arrays[i].ToArray();
  }
  return VariantBool::kTrue;
}

VariantBool WriteSurface() {
  SurfaceStore& store = Store();
  int32_t status = 0;
  const AutomationObject document = GetMember(store.SurfaceHost, "activedocument").ToObject();
  ArrayArgs arrays = CopiesOf(store);
  ClearSelection(store, status);
  DataCall(document, "SetSurfacePointData", store, arrays, status);
  return ToVariantBool(status == 0);
}

Variant Evaluate(const AutomationObject& host, const std::string& expression) {
  std::vector<Variant> args{Variant(expression)};
  return CallMember(host, "Evaluate", args);
}

bool EqualsZero(const Variant& reply) {
  const Variant value = reply.Deref();
  if (value.type() == VarType::kNull) return false;
  if (value.is_empty()) return true;
  return value.ToDouble() == 0;
}

}  // namespace qorvel::surface_info_module
