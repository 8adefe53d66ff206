#ifndef QORVEL_WIDGETS_VALUE_BOX_FACE_H_
#define QORVEL_WIDGETS_VALUE_BOX_FACE_H_

#include "qorvel/frame/binding.h"
#include "qorvel/widgets/value_box.h"

namespace qorvel {

// The rows of _ValueBox, each bound to the member of ValueBox that runs it.
template <>
const BindingTable<ValueBox>& BindingsOf<ValueBox>();

}  // namespace qorvel

#endif  // QORVEL_WIDGETS_VALUE_BOX_FACE_H_
