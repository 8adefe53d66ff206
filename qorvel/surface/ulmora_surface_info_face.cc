#include "qorvel/surface/ulmora_surface_info_face.h"

namespace qorvel {
namespace {

using U = UlmoraSurfaceInfo;
using R = Rows<U>;
using G = U::TangentGroup;
using S = U::SurfaceStore;

// A flag property, read and written, over one group's DirFree or MagFree.
template <G S::*Group, SafeArray G::*Flags>
std::vector<Binding<U>> FlagRows(const char* name) {
  return {R::Get<&U::Flag<Group, Flags>>(name), R::Put<&U::SetFlag<Group, Flags>>(name)};
}

// The Get and Set members of one tangent group.
template <G S::*Group>
std::vector<Binding<U>> VectorRows(const char* get, const char* set) {
  return {R::Method<&U::GetVector<Group>>(get), R::Method<&U::SetVector<Group>>(set)};
}

}  // namespace

template <>
const BindingTable<UlmoraSurfaceInfo>& BindingsOf<UlmoraSurfaceInfo>() {
  static const BindingTable<UlmoraSurfaceInfo> table(
      "UlmoraSurfaceInfo",
      {{R::Get<&U::Active>("Active"), R::Method<&U::Reset>("Reset"),
        R::Method<&U::GetSurface>("GetSurface"), R::Method<&U::UpdateSurface>("UpdateSurface"),
        R::Get<&U::NumLats>("NumLats"), R::Get<&U::NumLongs>("NumLongs"),
        R::Method<&U::CheckParams>("CheckParams"), R::Method<&U::GetPoint>("GetPoint"),
        R::Method<&U::SetPoint>("SetPoint"), R::Get<&U::world>("world"),
        R::Put<&U::set_world>("world"), R::Get<&U::SurfaceName>("SurfaceName")},
       FlagRows<&S::UAfter, &G::DirFree>("UDIRAfter_Free"),
       FlagRows<&S::UBefore, &G::DirFree>("UDIRBefore_Free"),
       FlagRows<&S::TAfter, &G::DirFree>("TDIRAfter_Free"),
       FlagRows<&S::TBefore, &G::DirFree>("TDIRBefore_Free"),
       FlagRows<&S::UAfter, &G::MagFree>("UMAGAfter_Free"),
       FlagRows<&S::UBefore, &G::MagFree>("UMAGBefore_Free"),
       FlagRows<&S::TAfter, &G::MagFree>("TMAGAfter_Free"),
       FlagRows<&S::TBefore, &G::MagFree>("TMAGBefore_Free"),
       VectorRows<&S::UBefore>("GetUVECBefore", "SetUVECBefore"),
       VectorRows<&S::UAfter>("GetUVECAfter", "SetUVECAfter"),
       VectorRows<&S::TBefore>("GetTVECBefore", "SetTVECBefore"),
       VectorRows<&S::TAfter>("GetTVECAfter", "SetTVECAfter")});
  return table;
}

}  // namespace qorvel
