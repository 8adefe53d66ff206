#ifndef QORVEL_SESSION_ZEBRIN_FACE_H_
#define QORVEL_SESSION_ZEBRIN_FACE_H_

#include "qorvel/frame/binding.h"
#include "qorvel/session/zebrin.h"

namespace qorvel {

// The rows of _Zebrin, each bound to the member of Zebrin that runs it.
template <>
const BindingTable<Zebrin>& BindingsOf<Zebrin>();

}  // namespace qorvel

#endif  // QORVEL_SESSION_ZEBRIN_FACE_H_
