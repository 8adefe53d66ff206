#ifndef QORVEL_SURFACE_ULMORA_SURFACE_INFO_FACE_H_
#define QORVEL_SURFACE_ULMORA_SURFACE_INFO_FACE_H_

#include "qorvel/frame/binding.h"
#include "qorvel/surface/ulmora_surface_info.h"

namespace qorvel {

// The rows of _UlmoraSurfaceInfo, each bound to the member of UlmoraSurfaceInfo that runs it.
template <>
const BindingTable<UlmoraSurfaceInfo>& BindingsOf<UlmoraSurfaceInfo>();

}  // namespace qorvel

#endif  // QORVEL_SURFACE_ULMORA_SURFACE_INFO_FACE_H_
