#ifndef QORVEL_MODELLING_ULMORA27_FACE_H_
#define QORVEL_MODELLING_ULMORA27_FACE_H_

#include "qorvel/frame/binding.h"
#include "qorvel/modelling/ulmora27.h"

namespace qorvel {

// The rows of _Ulmora27, each bound to the member of Ulmora27 that runs it.
template <>
const BindingTable<Ulmora27>& BindingsOf<Ulmora27>();

}  // namespace qorvel

#endif  // QORVEL_MODELLING_ULMORA27_FACE_H_
