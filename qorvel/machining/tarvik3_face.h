#ifndef QORVEL_MACHINING_TARVIK3_FACE_H_
#define QORVEL_MACHINING_TARVIK3_FACE_H_

#include "qorvel/frame/binding.h"
#include "qorvel/machining/tarvik3.h"

namespace qorvel {

// The rows of _Tarvik3, each bound to the member of Tarvik3 that runs it.
template <>
const BindingTable<Tarvik3>& BindingsOf<Tarvik3>();

}  // namespace qorvel

#endif  // QORVEL_MACHINING_TARVIK3_FACE_H_
