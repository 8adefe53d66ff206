#ifndef QORVEL_SURFACE_ULMORA_NEAREST_POINTS_FACE_H_
#define QORVEL_SURFACE_ULMORA_NEAREST_POINTS_FACE_H_

#include "qorvel/frame/binding.h"
#include "qorvel/surface/ulmora_nearest_points.h"

namespace qorvel {

// The one row of _UlmoraNearestPoints.
template <>
const BindingTable<UlmoraNearestPoints>& BindingsOf<UlmoraNearestPoints>();

}  // namespace qorvel

#endif  // QORVEL_SURFACE_ULMORA_NEAREST_POINTS_FACE_H_
