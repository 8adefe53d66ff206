#ifndef QORVEL_WIDGETS_POINT_CLASS_FACE_H_
#define QORVEL_WIDGETS_POINT_CLASS_FACE_H_

#include "qorvel/frame/binding.h"
#include "qorvel/widgets/point_class.h"

namespace qorvel {

// The rows of _PointClass, each bound to the member of PointClass that runs it.
template <>
const BindingTable<PointClass>& BindingsOf<PointClass>();

}  // namespace qorvel

#endif  // QORVEL_WIDGETS_POINT_CLASS_FACE_H_
